// Pictures: the first byte picks the road, the rest is the file.
//   0: LitImageMemoire (PNG, GIF, JPEG, TIFF, BMP by their first bytes);
//   1: ChargeImage of a file named without a known extension (the libraries);
//   2: ChargeImage of a ".bmp" file (our own reader);
//   3: ChargeImage kept aside for the optimal method (ImageGardee).
#include "convert/images.h"
#include "core/reglages.h"
#include "platform/imagefichier.h"
#include "tests/fuzz/commun.h"

#include <cstdlib>

namespace {

void Verifie(const Image& image) {
    if (image.largeur <= 0 || image.hauteur <= 0 || !image.pixels || image.pas < image.largeur * 3) abort();
    volatile uint8_t somme = 0;
    for (int y = 0; y < image.hauteur; ++y) {
        const uint8_t* rangee = image.pixels + (size_t)y * image.pas;
        somme = somme + rangee[0] + rangee[image.largeur * 3 - 1];
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    PrepareCible("images", argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
    if (taille < 1) return 0;
    ReinitialiseEtat();
    const int route = donnees[0] % 4;
    ++donnees;
    --taille;
    if (route == 0) {
        static const uint8_t transparent[3] = {255, 0, 254};
        Image image;
        int bits = 0;
        if (LitImageMemoire(donnees, taille, image, bits, transparent)) Verifie(image);
        LibereImage(image);
        return 0;
    }
    const char* nom = route == 2 ? "entree.bmp" : "entree.img";
    EcritFichier(nom, donnees, taille);
    if (route == 3) ReglagesConv.mode = METHODE_OPTIMALE;
    int largeur = 0, hauteur = 0;
    if (ChargeImage(nom, largeur, hauteur, route == 3) && route == 3) Verifie(ImageGardee);
    LibereImageGardee();
    return 0;
}
