#include "platform/image.h"

#include "platform/plateforme.h"

#include <cstdlib>
#include <cstring>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace {
// No surface of the system comes near this; a larger request is refused
// rather than tried.
constexpr uint64_t TailleImageMax = uint64_t(1) << 31;
// From this size on, pixels are mapped pages of their own.
constexpr uint64_t TailleCarteMin = uint64_t(1) << 20;
} // namespace

int PasImage(int largeur, int bits) { return (int)(((int64_t)largeur * bits + 31) / 32 * 4); }

namespace {

int Cree(Image& image, int cx, int cy, int ibitcount, bool surface) {
    LibereImage(image);
    bool bon = VERIFIE((ibitcount == 8) || (ibitcount == 16) || (ibitcount == 24) || (ibitcount == 32));
    bon = VERIFIE(cx > 0) && bon;
    bon = VERIFIE(cy > 0) && bon;
    if (!bon) return 0;
    uint64_t pas = ((uint64_t)cx * (uint64_t)ibitcount + 31) / 32 * 4;
    uint64_t taille = pas * (uint64_t)cy;
    if (taille > TailleImageMax) return 0;
    size_t carte = 0;
    uint8_t* pixels = nullptr;
#if defined(__linux__)
    // The heap hands back memory used before, which calloc must clear;
    // fresh pages are clear already, but each costs a fault when first
    // written, so they go only to surfaces that may stay blank.
    if (surface && taille >= TailleCarteMin) {
        void* p = mmap(nullptr, (size_t)taille, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (p != MAP_FAILED) {
#ifdef MADV_HUGEPAGE
            madvise(p, (size_t)taille, MADV_HUGEPAGE);
#endif
            pixels = (uint8_t*)p;
            carte = (size_t)taille;
        }
    }
#endif
    if (!pixels) pixels = (uint8_t*)calloc((size_t)taille, 1);
    if (!pixels) return 0;
    image.carte = carte;
    image.largeur = cx;
    image.hauteur = cy;
    image.bits = ibitcount;
    image.pas = (int)pas;
    image.pixels = pixels;
    return 1;
}

} // namespace

int CreeImage(Image& image, int cx, int cy, int ibitcount) { return Cree(image, cx, cy, ibitcount, false); }

int CreeSurface(Image& image, int cx, int cy, int ibitcount) { return Cree(image, cx, cy, ibitcount, true); }

void EffaceImage(Image& image) {
    if (!image.pixels) return;
    const size_t taille = (size_t)image.pas * (size_t)image.hauteur;
    if (taille >= ((size_t)1 << 20)) {
        Image neuve;
        if (CreeSurface(neuve, image.largeur, image.hauteur, image.bits) && neuve.pas == image.pas) {
            LibereImage(image);
            image = neuve;
            return;
        }
        LibereImage(neuve);
    }
    memset(image.pixels, 0, taille);
}

void LibereImage(Image& image) {
#if defined(__linux__)
    if (image.carte) munmap(image.pixels, image.carte);
    else
#endif
        free(image.pixels);
    image = Image{};
}
