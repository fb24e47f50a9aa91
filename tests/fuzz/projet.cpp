// The project reader on the input as a project file: the text form with its
// three sections run through the interpreter, or the older binary form,
// which the reader recognises by itself and converts.
#include "core/projet.h"
#include "core/reglages.h"
#include "tests/fuzz/commun.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    PrepareCible("projet", argc, argv);
    // What a project's statements may reach: a picture, element files, a
    // script to include.
    PrepareElementsEtInclusion("convert.nuances = 16\nsystem.objetsmax = 12\nretour 3\n");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
    if (!SansPeripherique(donnees, taille)) return 0;
    RemetFichiers();
    ReinitialiseEtat();
    EcritFichier(NOM_PROJET_DEFAUT, donnees, taille);
    ChargeProjet(CheminProjet);
    return 0;
}
