// Element previews: how each element type becomes pixels in SurfaceApercu,
// and how big that surface gets. Everything works on buffers: given the
// loaded palette, tiles and cells, the drawing runs without a window.
#pragma once
#include <cstdint>

enum TypeApercuElement {
    APERCU_AUCUN = -1,
    APERCU_BITMAP8 = 9,
    APERCU_BITMAP16 = 10,
    APERCU_CARTE = 11,
    APERCU_PALETTE = 13,
    APERCU_MOSAIQUE = 14,
};
extern int TypeApercu;
// Bytes that the last full-size surface would have needed; 0 when it fitted.
extern uint64_t MemoireRefusee;
// Tile numbers of map cells are 10 bits, and mirror and bank bits apply.
extern int EmulGba;

// Shrinks a wanted size to the preview memory limit (system.memoiremax).
void LimiteApercu(int& largeur, int& hauteur);
// Prepares SurfaceApercu for a picture of that size (shrunk to the limit
// unless exact) and clears it to CouleurFond. Gives 1 when the surface has
// the logical size asked for (or the limited one).
int DimensionneApercu(int largeur, int hauteur, bool exact);

// A palette: one pixel a colour, 16 a row.
void ApercuPalette(uint8_t* palette, int nombre);
// A tileset: blocks of tilex x tiley in rows of 256 pixels; NbTuiles tiles.
void ApercuMosaique(uint8_t* palette, const uint32_t* tuiles);
// A map of sizex x sizey cells (32-bit, row by row); NbTuiles tiles.
void ApercuCarte(uint8_t* palette, const uint32_t* tuiles, const uint32_t* cellules);
// Reads a bitmap element's file and draws it in one pass.
void ApercuBitmap8(int element);
void ApercuBitmap16(int element);
// The preview of element row i, as the tree's selection shows it.
void ApercuElement(int element);

// Writes the logical area of SurfaceApercu as a 24-bit BMP. Gives 1 on success.
int EcritApercuBmp(const char* chemin);
