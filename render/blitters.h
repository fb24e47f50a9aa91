// The pixel layer: blocks of 32-bit source pixels, fills and frames drawn
// into 24-bit surfaces (or 32-bit work pictures, whose fourth byte becomes 0
// where anything is drawn), clipped by CadreDessin. The routines never allocate
// and never fail: a null surface or source draws nothing.
//
// Source pixels are one 32-bit word each. Indexed (ModeDirect 0): a palette
// index, the palette being 3 bytes an entry in pixel order (blue, green, red)
// and 256 entries long; a raw word of 0 is transparent, tested before the
// mask. Direct (ModeDirect 1): blue in bits 0-7, green 8-15, red 16-23; a word
// of 0x1000000 or more is transparent. Blending on each channel:
// (source * a + target * (255 - a)) >> 8.
#pragma once
#include "core/gba.h"
#include "platform/image.h"
#include "render/surfaces.h"

#include <cstdint>

extern int ModeDirect;

void AfficheBloc(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal);
void AfficheBlocTransp(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal);
void AfficheBlocAlpha(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal, int alpha);
void AfficheBlocTranspAlpha(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal,
                            int alpha);
void AfficheBlocMiroir(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal, int miroirH,
                       int miroirV, uint32_t masque);
void AfficheBlocMiroirTransp(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal,
                             int miroirH, int miroirV, uint32_t masque);
void AfficheBlocMiroirAlpha(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal,
                            int miroirH, int miroirV, uint32_t masque, int alpha);
void AfficheBlocMiroirTranspAlpha(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal,
                                  int miroirH, int miroirV, uint32_t masque, int alpha);

void RemplitRect(Image* s, int x, int y, int l, int h, uint32_t couleur);
void RemplitRectAlpha(Image* s, int x, int y, int l, int h, uint32_t couleur, int alpha);
// A hollow frame over rows y - 1 to y + h - 2: called with (x - 1, y, w + 2,
// h + 2) it surrounds a fill at (x, y, w, h) by one pixel.
void AfficheCadreAlpha(Image* s, int x, int y, int l, int h, uint32_t couleur, int alpha);
// The right and bottom edge of one grid cell, same rows as the frame.
void AfficheBordBloc(Image* s, int x, int y, int l, int h, uint32_t couleur, int alpha);

// What a tile drawing reads of a plane or a preview.
struct VueTuiles {
    int quatreBits;         // tiles of depth 4: the cell's bank picks 16 entries
    const uint8_t* palette; // 256 entries
    const uint32_t* tuiles; // 8 x 8 tiles of 64 words
};


// One 8 x 8 tile of a map cell: transparent index 0, blended when alpha is
// not 0. The opaque form paints index 0 too.
void AfficheTuile(Image* s, int x, int y, const VueTuiles& vue, uint32_t cellule, int alpha);
void AfficheTuileOpaque(Image* s, int x, int y, const VueTuiles& vue, uint32_t cellule, int alpha);

// Writes a value in hexadecimal over the tilex x tiley block at (x, y) of
// SurfaceEditeur: 2 digits, or 4 for cells wider than 8 bits; exactly that
// many with "Append zeros", else 2 when the rest is 0.
void AfficheNombreBloc(int x, int y, uint32_t valeur, uint32_t couleur, bool cellulesLarges);
