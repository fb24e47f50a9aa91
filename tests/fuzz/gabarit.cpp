// The template reader through the element file loaders. The first byte picks
// the loader, the second the format ("Standard" or "Essai", defined at
// start-up by a defformat script) and whether the format goes by the file's
// extension; the rest is the file. The files a loaded one links to (tileset,
// palette) are there in both formats.
#include "core/elements.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "render/chargeurs.h"
#include "tests/fuzz/commun.h"

#include <cstdlib>
#include <string>

namespace {

enum Chargeur {
    PALETTE,
    MOSAIQUE_BRUTE,
    MOSAIQUE,
    MOSAIQUE_SANS_PALETTE,
    CARTE,
    BITMAP8,
    BITMAP16,
    NB_CHARGEURS,
};

IndexSection SectionDe(int chargeur) {
    switch (chargeur) {
    case PALETTE:
        return SECTION_PALETTE;
    case CARTE:
        return SECTION_MAP;
    case BITMAP8:
        return SECTION_BITMAP8;
    case BITMAP16:
        return SECTION_BITMAP16;
    default:
        return SECTION_TILESET;
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    PrepareCible("gabarit", argc, argv);
    PrepareDeuxFormats();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
    if (taille < 2 || !SansPeripherique(donnees, taille)) return 0;
    ReinitialiseEtat(false);
    const int chargeur = donnees[0] % NB_CHARGEURS;
    if (donnees[1] & 1) ChoisitFormat(FORMAT_ESSAI);
    // By extension: the file is named as the chosen format names its files,
    // so the loader may keep it or pick the first format of that extension.
    const bool parExtension = (donnees[1] & 2) != 0;
    ReglagesSys.selectionFormatAuto = parExtension;
    std::string nom = std::string("entree") + (parExtension ? FormatCourant.sections[SectionDe(chargeur)].ext : ".fz");
    EcritFichier(nom, donnees + 2, taille - 2);

    uint8_t palette[256 * 3];
    uint32_t* tuiles = nullptr;
    uint32_t* cellules = nullptr;
    static const uint32_t types[NB_CHARGEURS] = {TYPE_PALETTE, TYPE_MOSAIQUE, TYPE_MOSAIQUE, TYPE_MOSAIQUE,
                                                 TYPE_CARTE,   TYPE_BITMAP8,  TYPE_BITMAP16};
    const int ligne = AjouteElementBrut(NouvelElement(types[chargeur], "entree", nom.c_str()));
    switch (chargeur) {
    case PALETTE:
        ChargePalette(palette, nom.c_str());
        break;
    case MOSAIQUE_BRUTE:
        ChargeMosaique(palette, &tuiles, nom.c_str(), true);
        break;
    case MOSAIQUE:
        ChargeMosaique(palette, &tuiles, nom.c_str(), false);
        break;
    case MOSAIQUE_SANS_PALETTE:
        ChargeMosaique(nullptr, &tuiles, nom.c_str(), false);
        break;
    case CARTE:
        ChargeCarte(palette, &tuiles, &cellules, ligne);
        break;
    case BITMAP8:
        ChargeBitmap8(ligne);
        break;
    case BITMAP16:
        ChargeBitmap16(ligne);
        break;
    }
    free(tuiles);
    free(cellules);
    return 0;
}
