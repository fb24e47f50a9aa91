// Whole batch runs of the real program, timed from process start to exit.
//
//   mesure genere <folder>                      writes the pictures of the cases
//   mesure temps <program> <folder> [runs] [part] times every case (or those whose
//                                               name and source hold part), prints the table
//   mesure plancher <picture> <bytes> <output>  the floor of one case (see below)
//
// For each case the program runs in a fresh folder holding the picture (and a
// project when the case needs a setting); the line gives the median of the
// runs, the peak memory of the slowest process, and the floor: a process that
// only decodes the same picture and writes a file as large as all that the
// case wrote, timed the same way in the same run.
#include "platform/image.h"
#include "platform/imagefichier.h"
#include "platform/memoire.h"
#include "bench/images_bench.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

using bench::Niveau;
using bench::Photo;

struct Cas {
    const char* nom;
    const char* image; // without extension
    const char* commande;
    const char* donnees; // statements of the project's données section, or null
};

const Cas TousLesCas[] = {
    {"256x256 15 colours, 4-bit tiles", "niveau256", "-tset src=niveau256.EXT +16c", nullptr},
    {"512x512 200 colours, 8-bit tiles", "niveau512", "-tset src=niveau512.EXT", nullptr},
    {"1024x1024 level 255 colours, 8-bit tiles", "niveau1024", "-tset src=niveau1024.EXT", nullptr},
    {"1024x1024 photo, b8 255 colours (normal)", "photo1024", "-b8 src=photo1024.EXT", nullptr},
    {"1024x1024 photo, b8 255 colours (optimal)", "photo1024", "-b8 src=photo1024.EXT", "  convert.mode = optimal\n"},
    {"1024x1024 photo, b16", "photo1024", "-b16 src=photo1024.EXT", nullptr},
};

int Genere(const char* dossier) {
    fs::create_directories(dossier);
    struct {
        const char* nom;
        int cote;
        void (*dessine)(Image&, int);
    } images[] = {
        {"niveau256", 256, [](Image& i, int c) { Niveau(i, c, 15, 40); }},
        {"niveau512", 512, [](Image& i, int c) { Niveau(i, c, 200, 270); }},
        {"niveau1024", 1024, [](Image& i, int c) { Niveau(i, c, 255, 400); }},
        {"photo1024", 1024, Photo},
    };
    for (const auto& d : images) {
        Image image;
        if (!CreeImage(image, d.cote, d.cote, 24)) return 1;
        d.dessine(image, d.cote);
        const std::string base = std::string(dossier) + "/" + d.nom;
        if (!EcritImageType((base + ".png").c_str(), "image/png", image, d.cote, d.cote) ||
            !EcritImageType((base + ".bmp").c_str(), "image/bmp", image, d.cote, d.cote))
            return 1;
        LibereImage(image);
    }
    return 0;
}

double Maintenant() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec + (double)t.tv_nsec * 1e-9;
}

// Runs argv in the folder; gives the seconds taken and the peak memory in KiB.
bool Lance(const std::vector<std::string>& arguments, const std::string& dossier, double& secondes, long& memoire) {
    std::vector<char*> argv;
    for (const std::string& a : arguments) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    const double debut = Maintenant();
    const pid_t pid = fork();
    if (pid < 0) return false;
    if (pid == 0) {
        if (chdir(dossier.c_str()) != 0) _exit(127);
        if (!freopen("/dev/null", "w", stderr)) _exit(127);
        execv(argv[0], argv.data());
        _exit(127);
    }
    int etat = 0;
    rusage usage{};
    if (wait4(pid, &etat, 0, &usage) != pid) return false;
    secondes = Maintenant() - debut;
    memoire = usage.ru_maxrss;
    return WIFEXITED(etat) && WEXITSTATUS(etat) == 0;
}

double Mediane(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
}

int Temps(const char* programme, const char* images, int essais, const char* filtre) {
    const std::string moi = fs::canonical("/proc/self/exe").string();
    const std::string prog = fs::absolute(programme).string();
    const fs::path travail = fs::temp_directory_path() / ("tess_mesure_" + std::to_string(getpid()));
    printf("%-46s %6s %10s %9s %11s %6s\n", "case", "source", "median ms", "peak MiB", "floor ms", "ratio");
    for (const Cas& c : TousLesCas)
        for (const char* ext : {"png", "bmp"}) {
            if (filtre && !strstr((std::string(c.nom) + " " + ext).c_str(), filtre)) continue;
            std::string commande = c.commande;
            commande.replace(commande.find("EXT"), 3, ext);
            const std::string image = std::string(c.image) + "." + ext;
            std::vector<double> temps, planchers;
            long pic = 0;
            uintmax_t octets = 0;
            auto prepare = [&] {
                // Each run starts with no file data waiting to be written,
                // whatever the runs before it left.
                sync();
                fs::remove_all(travail);
                fs::create_directories(travail);
                fs::copy_file(fs::path(images) / image, travail / image);
                if (!c.donnees) return true;
                FILE* f = fopen((travail / "projet.tsl").c_str(), "wb");
                if (!f) return false;
                fprintf(f, "#Fichier de projet Tessellarium\n\n .section donn\xE9" "es\n%s  End\n", c.donnees);
                return fclose(f) == 0;
            };
            double s;
            long m;
            // One run first, not timed: how much the case writes.
            bool bon = prepare() && Lance({prog, commande}, travail.string(), s, m);
            for (const auto& e : fs::directory_iterator(travail))
                if (e.path().extension() == ".c") octets += e.file_size();
            for (int i = 0; i < essais && bon; ++i) {
                // The floor first, in the fresh folder: a run of the program
                // may leave the file system busy (a project saved over the
                // old one starts its writeback), which the floor must not pay.
                bon = prepare() &&
                      Lance({moi, "plancher", image, std::to_string(octets), "plancher.out"}, travail.string(), s, m);
                planchers.push_back(s);
                sync(); // nor what the floor wrote
                bon = bon && Lance({prog, commande}, travail.string(), s, m);
                temps.push_back(s);
                pic = std::max(pic, m);
            }
            if (!bon) {
                printf("%-46s %6s   failed\n", c.nom, ext);
                continue;
            }
            const double t = Mediane(temps) * 1000, p = Mediane(planchers) * 1000;
            printf("%-46s %6s %10.1f %9.1f %11.1f %6.2f\n", c.nom, ext, t, (double)pic / 1024.0, p, t / p);
            fflush(stdout);
        }
    fs::remove_all(travail);
    return 0;
}

int Plancher(const char* image, const char* octets, const char* sortie) {
    size_t taille = 0;
    uint8_t* donnees = LitFichierEntier(image, taille);
    Image lue;
    int bits = 0;
    const uint8_t transparent[3] = {255, 0, 254};
    if (!donnees || !LitImageMemoire(donnees, taille, lue, bits, transparent)) return 1;
    free(donnees);
    const size_t n = (size_t)strtoull(octets, nullptr, 10);
    std::vector<char> tampon(n, 'x');
    FILE* f = fopen(sortie, "wb");
    if (!f || fwrite(tampon.data(), 1, n, f) != n) return 1;
    fclose(f);
    LibereImage(lue);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::string verbe = argc > 1 ? argv[1] : "";
    if (verbe == "genere" && argc == 3) return Genere(argv[2]);
    if (verbe == "temps" && argc >= 4)
        return Temps(argv[2], argv[3], argc > 4 ? atoi(argv[4]) : 9, argc > 5 ? argv[5] : nullptr);
    if (verbe == "plancher" && argc == 5) {
        PrepareMemoire(); // as the program takes its memory
        return Plancher(argv[2], argv[3], argv[4]);
    }
    fprintf(stderr, "usage: mesure genere <folder> | temps <program> <folder> [runs] [part] | plancher <picture> <bytes> <out>\n");
    return 2;
}
