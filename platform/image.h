// Pictures: the work surfaces of the system (preview, editor, specimen) and
// the pictures that loaders hand around. Rows are bottom-up, each padded to a
// multiple of 4 bytes; 24-bit pixels are blue, green, red.
#pragma once
#include <cstddef>
#include <cstdint>

struct Image {
    int largeur = 0;
    int hauteur = 0;
    int bits = 0;      // 8, 16, 24 or 32
    int pas = 0;       // bytes per row
    uint8_t* pixels = nullptr;
    size_t carte = 0;  // bytes mapped for the pixels; 0 when they come from the heap
};

// Bytes of one row of a picture of that width and depth.
int PasImage(int largeur, int bits);

// Makes a cleared picture, after freeing what image held. Checks its arguments
// with the "Internal error" box. Gives 1 when the picture was made, else 0 (bad
// arguments or not enough memory), and then image is empty.
int CreeImage(Image& image, int cx, int cy, int ibitcount);
// The same for a surface that may well stay blank (a work surface, a cleared
// one): a large one takes pages fresh from the system, which cost nothing
// until drawn on.
int CreeSurface(Image& image, int cx, int cy, int ibitcount);
void LibereImage(Image& image);
// Sets every byte of a picture to 0. A large one takes fresh zeroed memory of
// the same shape instead, so that pages nothing draws on afterwards are never
// touched.
void EffaceImage(Image& image);
