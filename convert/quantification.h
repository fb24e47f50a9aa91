// Colour quantisation: an index for every pixel and a palette of at most 256
// GBA colours. Three methods, chosen by convert.mode: the normal method
// searches a colour distance at which the picture fits, the halftone method
// dithers onto a fixed palette, the optimal method builds an octree.
//
// The palette is a block of triples blue, green, red, each 0 to 31. During
// quantisation triple k is palette index k + 1: entry 0 (transparent) is
// inserted by the caller afterwards. An index of 0 means transparent.
// A method that succeeds writes every index of the area, so the caller need
// not clear them first.
#pragma once
#include <cstdint>

constexpr int TRIPLES_REDUCTION = 257;
constexpr int TAILLE_PALETTE_REDUCTION = 3 * TRIPLES_REDUCTION; // 771 bytes

// One pass of the normal method over the area of largeur x hauteur pixels of
// SurfaceApercu, read through CadreDessin (pixels at or beyond its limits are
// padding). Gives the number of triples, maxi when utilmaxcoul is set, or -1
// when more than maxi were needed. Mask and padding pixels take the index
// transparent (0, or fixes for 4-bit tiles that keep an existing palette
// apart). Triples before debut stay in the palette but are never matched.
int ReductionNormale(uint32_t* indices, uint8_t* palette, int hauteur, int largeur, int seuil, int fixes, int debut,
                     int maxi, uint32_t transparent = 0);

// The normal method with its threshold search: seuil 0 first, then (after the
// question when messages are on) downward from precisionmax for a bitmap, by
// bisection for tiles. Gives the number of triples, or -1 after a message
// (or a Cancel) when the picture cannot be reduced.
int ReductionNormaleCherchee(uint32_t* indices, uint8_t* palette, int hauteur, int largeur, int fixes, int debut,
                             int maxi, bool tuiles, uint32_t transparent = 0);

// Ordered dithering of ImageGardee onto a fixed 256-colour palette whose
// entries 245 and 255 are white and (0, 0, 1). The palette receives all 256
// entries through the colour tables. Always gives 255.
int ReductionTramee(uint32_t* indices, uint8_t* palette, int hauteur, int largeur);

// The octree of ImageGardee, with at most limite - fixes colours appended
// behind the fixes triples. Releases ImageGardee. Gives fixes plus the number
// of colours, or 0 after a message.
int ReductionOptimale(uint32_t* indices, uint8_t* palette, int hauteur, int largeur, int fixes, int limite);

// The fixed palette of the halftone method: 256 entries red, green, blue.
void PaletteTramee(uint8_t sortie[256][3]);
