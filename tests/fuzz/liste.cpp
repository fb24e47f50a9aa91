// The list loader on the input as a list file, with its recovery pass: the
// question that offers it is answered OK. The first byte holds flags: 1 the
// format "Essai" rather than "Standard", 2 the format goes by the file's
// extension, 4 the input brings its own script first, up to a zero byte,
// run before the load (a defmodele block that changes the models, say).
// The rest is the file; its model is named inside it ("Ennemis" in the
// seeds).
#include "core/elements.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "render/chargeurs.h"
#include "script/interpreteur.h"
#include "tests/fuzz/commun.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    PrepareCible("liste", argc, argv);
    PrepareDeuxFormats();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
    if (taille < 1 || !SansPeripherique(donnees, taille)) return 0;
    const uint8_t drapeaux = donnees[0];
    ++donnees;
    --taille;
    ReinitialiseEtat(false);
    DefinitModeleEnnemis();
    if (drapeaux & 4) {
        const uint8_t* zero = (const uint8_t*)memchr(donnees, 0, taille);
        const size_t longueur = zero ? (size_t)(zero - donnees) : taille;
        RemetFichiers(); // what an earlier script wrote goes
        if (longueur > 0) {
            std::vector<uint8_t> script(donnees, donnees + longueur);
            if (FILE* f = fmemopen(script.data(), script.size(), "rb")) ExecuteScript(f, nullptr);
        }
        donnees += zero ? longueur + 1 : longueur;
        taille -= zero ? longueur + 1 : longueur;
    }
    if (drapeaux & 1) ChoisitFormat(FORMAT_ESSAI);
    const bool parExtension = (drapeaux & 2) != 0;
    ReglagesSys.selectionFormatAuto = parExtension;
    std::string nom = std::string("entree") + (parExtension ? FormatCourant.sections[SECTION_LIST].ext : ".fz");
    EcritFichier(nom, donnees, taille);

    const int ligne = AjouteElementBrut(NouvelElement(TYPE_LISTE, "entree", nom.c_str()));
    uint8_t palette[256 * 3];
    uint32_t* tuiles = nullptr;
    ListeObjets liste;
    ChargeListe(palette, &tuiles, ligne, liste);
    free(liste.objets);
    free(tuiles);
    return 0;
}
