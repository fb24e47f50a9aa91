// The desktop program's times, offscreen, with a plain clock: from the
// window road's start (the application made, the project loaded) to the
// first paint of the main window on the example project, and from the
// selection of a 128 x 128-cell map to its preview painted. Medians of 9.
//   QT_QPA_PLATFORM=offscreen build-bench/bench/bench_fenetre <source folder>
#include "app/demarrage.h"
#include "convert/conv.h"
#include "convert/couleurs.h"
#include "convert/images.h"
#include "core/elements.h"
#include "core/projet.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "platform/imagefichier.h"
#include "render/surfaces.h"
#include "script/crochets.h"
#include "script/interpreteur.h"
#include "editor/edition.h"
#include "editor/editeur.h"
#include "editor/entree.h"
#include "editor/plans.h"
#include "shell/qt/editeur_carte.h"
#include "shell/qt/fenetre_principale.h"

#include <QApplication>
#include <QTreeWidget>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

double Ms(std::chrono::steady_clock::time_point a, std::chrono::steady_clock::time_point b) {
    return std::chrono::duration<double, std::milli>(b - a).count();
}

double Mediane(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

// A level of 1024 x 1024 pixels: 8 x 8 cells of a few patterns.
void Niveau(const char* nom) {
    Image image;
    CreeImage(image, 1024, 1024, 24);
    for (int y = 0; y < 1024; ++y)
        for (int x = 0; x < 1024; ++x) {
            const int motif = (x / 8 * 7 + y / 8 * 13) % 11;
            uint8_t* p = image.pixels + (size_t)(1023 - y) * image.pas + 3 * (size_t)x;
            p[0] = (uint8_t)(motif * 20 + (x & 7) * 4);
            p[1] = (uint8_t)(motif * 13 + (y & 7) * 8);
            p[2] = (uint8_t)(200 - motif * 9);
        }
    EcritBmp(nom, image, 1024, 1024);
    LibereImage(image);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        fprintf(stderr, "usage: bench_fenetre <source folder>\n");
        return 2;
    }
    const std::string dossier = std::filesystem::temp_directory_path() / "tess-bench-fenetre";
    std::filesystem::remove_all(dossier);
    std::filesystem::create_directories(dossier);
    for (const char* f : {"niveau.png", "decor.png", "titre.bmp", "projet.tsl"})
        std::filesystem::copy_file(std::string(argv[1]) + "/examples/demo/" + f, dossier + "/" + f);
    std::filesystem::current_path(dossier);
    InstalleInterpreteur();
    InstalleFormats();
    CrochetsScript.conv = [](const char* t) { ExecuteConv(t); };
    CrochetsScript.reconstruitTablesCouleur = ConstruitTablesCouleur;
    ConstruitTablesCouleur();
    InitialiseFormats();
    InitialiseImages();
    messages = 0;
    ChargeProjet("projet.tsl");
    DefinitProjet("projet.tsl");
    CreeSurfaceApercu();
    Niveau("grand.bmp");
    ExecuteChaineLot("-tset src=niveau +16c:-tset src=decor:-b16 src=titre:-tset src=grand");
    SauveProjet(CheminProjet);

    std::vector<double> debut, selection;
    QApplication* app = nullptr;
    for (int essai = 0; essai < 9; ++essai) {
        const auto t0 = std::chrono::steady_clock::now();
        if (!app) app = new QApplication(argc, argv);
        NbElements = 0;
        ChargeProjet("projet.tsl");
        auto* fenetre = new FenetrePrincipaleQt();
        fenetre->resize(620, 400);
        fenetre->show();
        fenetre->Demarre();
        fenetre->grab(); // the first paint
        const auto t1 = std::chrono::steady_clock::now();
        debut.push_back(Ms(t0, t1));
        // The large map: its node selected, its preview painted.
        const int e = TrouveElement(TYPE_CARTE, "grand");
        QTreeWidgetItem* item = nullptr;
        for (QTreeWidgetItemIterator it(fenetre->Arbre()); *it; ++it)
            if ((*it)->data(0, Qt::UserRole).toULongLong() == Elements[e].arbreItem) item = *it;
        const auto t2 = std::chrono::steady_clock::now();
        fenetre->Arbre()->setCurrentItem(item);
        fenetre->Volet()->grab();
        selection.push_back(Ms(t2, std::chrono::steady_clock::now()));
        delete fenetre;
    }
    printf("window road to the first paint (application, project, window): %.1f ms (median of 9; first %.1f ms)\n",
           Mediane(debut), debut[0]);
    printf("selecting a 128 x 128-cell map to its preview painted: %.1f ms (median of 9)\n", Mediane(selection));

    // The editor: four planes of 128 x 128 cells with parallax, one blended,
    // the view 1280 x 1024 shown at zoom 2 (2560 x 2048 window pixels).
    for (const char* nom : {"grand2", "grand3", "grand4"})
        ExecuteConv((std::string("tset src=grand.bmp dst=") + nom).c_str());
    InstalleEditeur();
    CreeSurfacesEditeur();
    OuvreEditeur(TrouveElement(TYPE_CARTE, "grand"));
    ExecuteScript(tmpfile(), nullptr);
    FILE* f = tmpfile();
    fputs("maps.add \"grand2\"\nmaps.add \"grand3\"\nmaps.add \"grand4\"\nmaps[2].scrollrate 0.5, 0.5\n"
          "maps[3].scrollrate 2, 2\nmaps.transparency = 1\neditor.zoom 2\n",
          f);
    rewind(f);
    ExecuteScript(f, nullptr);
    {
        EditeurCarteQt editeur(nullptr);
        editeur.show();
        editeur.resize(640 + 2304, 400 + 1792);
        editeur.Dispose();
        std::vector<double> ticks;
        for (int i = 0; i < 21; ++i) {
            DecalageX = 8 * i;
            const auto t = std::chrono::steady_clock::now();
            editeur.Tick();
            ticks.push_back(Ms(t, std::chrono::steady_clock::now()));
        }
        printf("editor tick, 4 planes (one blended), view 1280 x 1024 shown at zoom 2: %.1f ms (median of 21)\n",
               Mediane(ticks));
    }
    FermeEditeur();

    // A map of 1024 x 1024 cells: a paint, from the release to the frame shown, its snapshot included.
    std::string carte = "//enorme.map.c\r\n//Converti avec Tessellarium par Zorvan\r\n//Map (\"\",\"grand.til.c\")\r\n"
                        "//Taille: 8*8 * 1024*1024\r\n//M\xE9moire: 2097152 octets\r\n"
                        "const unsigned short enorme_map[1024][1024]=\t{\r\n\t{";
    for (int y = 0; y < 1024; ++y) {
        for (int x = 0; x < 1024; ++x) carte += x % 8 == 7 ? "0x0001,\r\n" : "0x0001, ";
        carte.resize(carte.size() - 3);
        carte += y < 1023 ? "},\r\n\t{" : "}\r\n};\r\n";
    }
    FILE* c = fopen("enorme.map.c", "wb");
    fwrite(carte.data(), 1, carte.size(), c);
    fclose(c);
    AjouteElement(NouvelElement(TYPE_CARTE, "enorme", "enorme.map.c"));
    ReglagesEdit.zoom = 1.0;
    OuvreEditeur(TrouveElement(TYPE_CARTE, "enorme"));
    {
        EditeurCarteQt editeur(nullptr);
        editeur.show();
        editeur.Tick();
        std::vector<double> gestes;
        ChoisitValeur(2);
        for (int i = 0; i < 11; ++i) {
            SourisPresse(BOUTON_GAUCHE, 20 + i, 20);
            SourisBouge(200, 150);
            const auto t = std::chrono::steady_clock::now();
            SourisRelache(BOUTON_GAUCHE, 200, 150);
            editeur.Tick();
            gestes.push_back(Ms(t, std::chrono::steady_clock::now()));
        }
        printf("paint on a 1024 x 1024-cell map, release to the frame shown (snapshot included): %.1f ms (median of 11)\n",
               Mediane(gestes));
    }
    FermeEditeur();
    delete app;
    std::filesystem::current_path("/");
    std::filesystem::remove_all(dossier);
    return 0;
}
