// The conv command on the input as its text, in a folder that holds small
// pictures (image.bmp of a few colours, couleurs.bmp of 256, 16 x 16 each)
// and the element files made from them, with existing palettes ("pal" and
// the full "pal256") and a tileset ("til") in the element table, so that
// every kind of conversion runs to its files. Texts that may name a path
// outside the folder are left out: conversions write where they are told.
#include "convert/conv.h"
#include "core/elements.h"
#include "tests/fuzz/commun.h"

#include <string>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    PrepareCible("conv", argc, argv);
    PrepareElementsExemple();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
    std::string texte = Texte(donnees, taille);
    if (!CheminsLocaux(texte.c_str())) return 0;
    RemetFichiers();
    ReinitialiseEtat();
    AjouteElementBrut(NouvelElement(TYPE_PALETTE, "pal", "image.pal.c", "image.bmp"));
    AjouteElementBrut(NouvelElement(TYPE_MOSAIQUE, "til", "image.til.c", "image.bmp"));
    AjouteElementBrut(NouvelElement(TYPE_PALETTE, "pal256", "couleurs.pal.c", "couleurs.bmp"));
    ExecuteConv(texte.c_str());
    return 0;
}
