#include "platform/image.h"

#include "platform/plateforme.h"

#include <cstdlib>
#include <cstring>

namespace {
// No surface of the system comes near this; a larger request is refused
// rather than tried.
constexpr uint64_t TailleImageMax = uint64_t(1) << 31;
} // namespace

int PasImage(int largeur, int bits) { return (int)(((int64_t)largeur * bits + 31) / 32 * 4); }

int CreeImage(Image& image, int cx, int cy, int ibitcount) {
    LibereImage(image);
    bool bon = VERIFIE((ibitcount == 8) || (ibitcount == 16) || (ibitcount == 24) || (ibitcount == 32));
    bon = VERIFIE(cx > 0) && bon;
    bon = VERIFIE(cy > 0) && bon;
    if (!bon) return 0;
    uint64_t pas = ((uint64_t)cx * (uint64_t)ibitcount + 31) / 32 * 4;
    uint64_t taille = pas * (uint64_t)cy;
    if (taille > TailleImageMax) return 0;
    uint8_t* pixels = (uint8_t*)calloc((size_t)taille, 1);
    if (!pixels) return 0;
    image.largeur = cx;
    image.hauteur = cy;
    image.bits = ibitcount;
    image.pas = (int)pas;
    image.pixels = pixels;
    return 1;
}

void EffaceImage(Image& image) {
    if (!image.pixels) return;
    const size_t taille = (size_t)image.pas * (size_t)image.hauteur;
    if (taille >= ((size_t)1 << 20)) {
        Image neuve;
        if (CreeImage(neuve, image.largeur, image.hauteur, image.bits) && neuve.pas == image.pas) {
            LibereImage(image);
            image = neuve;
            return;
        }
        LibereImage(neuve);
    }
    memset(image.pixels, 0, taille);
}

void LibereImage(Image& image) {
    free(image.pixels);
    image = Image{};
}
