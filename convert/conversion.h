// The three conversions of the picture in SurfaceApercu (or ImageGardee) into
// element files, written through FormatCourant. They read the settings of
// ReglagesConv, show every message themselves, and do not touch the project:
// the caller adds the rows after a success.
#pragma once
#include "core/elements.h"

// rows[0]: the bitmap.
int ConvertitBitmap16(ElementProjet* lignes);
// rows[0]: the bitmap, rows[1]: the palette. maxi: colour limit, 1 to 255.
int ConvertitBitmap8(ElementProjet* lignes, int maxi);
// rows[0]: the tileset, rows[1]: the palette, rows[2]: the map.
int ConvertitMosaique(ElementProjet* lignes, int maxi);

// Row y of the area that a conversion reads, through CadreDessin: pixel x
// (blue, green, red) lies 3 x bytes from the pointer for x from debut up to
// fin; null when the row is at or beyond the limits.
const uint8_t* LigneSource(int y, int& debut, int& fin);
