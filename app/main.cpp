// The program. A batch run (a command line that begins with '-', or an
// option) never loads the window layer; the desktop program is a module
// beside the program, loaded only on the window road, which holds the whole
// system with Qt and runs the start sequence itself.
#include "app/demarrage.h"
#include "platform/memoire.h"

#include <dlfcn.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <string>

namespace {

// The window road, with somewhere to show a window: a display, or a Qt
// platform asked for (offscreen in tests).
bool RouteFenetre(int argc, char** argv) {
    if (argc >= 2 && argv[1][0] == '-') return false;
    return getenv("DISPLAY") || getenv("WAYLAND_DISPLAY") || getenv("QT_QPA_PLATFORM");
}

// The module beside the program, or under ../lib/tessellarium once installed.
bool LanceModule(int argc, char** argv, int& code) {
    char chemin[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", chemin, sizeof chemin - 1);
    if (n <= 0) return false;
    chemin[n] = 0;
    std::string dossier(chemin);
    dossier.resize(dossier.rfind('/') + 1);
    for (const std::string& essai :
         {dossier + "tessellarium-fenetre.so", dossier + "../lib/tessellarium/tessellarium-fenetre.so"}) {
        void* module = dlopen(essai.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!module) continue;
        auto entree = (int (*)(int, char**))dlsym(module, "PrincipalFenetre");
        if (!entree) continue;
        code = entree(argc, argv);
        return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    PrepareMemoire();
    int code = 0;
    if (RouteFenetre(argc, argv) && LanceModule(argc, argv, code)) return code;
    return Principal(argc, argv);
}
