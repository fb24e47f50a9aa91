// The BMP reader on the input as a whole file in memory.
#include "platform/imagefichier.h"
#include "tests/fuzz/commun.h"

#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    PixelsImageMax = PIXELS_FUZZ;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
    Image image;
    int bits = 0;
    if (LitBmp(donnees, taille, image, bits)) {
        if (image.largeur <= 0 || image.hauteur <= 0 || !image.pixels || image.pas < image.largeur * 3) abort();
        // Every row must be there: its first and last bytes are read.
        volatile uint8_t somme = 0;
        for (int y = 0; y < image.hauteur; ++y) {
            const uint8_t* rangee = image.pixels + (size_t)y * image.pas;
            somme = somme + rangee[0] + rangee[image.largeur * 3 - 1];
        }
    }
    LibereImage(image);
    return 0;
}
