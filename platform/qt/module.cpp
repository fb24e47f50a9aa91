// The desktop module's entry: the whole start sequence, with the window
// layer in place of the headless one.
#include "app/demarrage.h"
#include "platform/qt/fenetre_qt.h"
#include "shell/fenetre.h"

extern "C" __attribute__((visibility("default"))) int PrincipalFenetre(int argc, char** argv) {
    ArgumentsQt(argc, argv);
    LanceurFenetre = LanceFenetreQt;
    return Principal(argc, argv);
}
