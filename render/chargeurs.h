// Element files: the loaders of palettes, bitmaps, tilesets and maps. Each
// reads a file written through a format back into memory (palettes and tiles
// into caller buffers, bitmaps straight into SurfaceApercu, map cells into a
// caller buffer), following the links to the files it depends on.
#pragma once
#include "format/variables.h"

#include <cstdint>

constexpr int UNITES_MAX = 8192;            // 8 x 8 units a tileset may hold
constexpr int64_t CELLULES_MAX = 4096 * 4096; // cells a map may declare

// What the last map or list load read besides its values, for the editor.
struct CarteLue {
    char chemin[260];       // the element's file
    char nom[260];          // name
    char lien[260];         // link: the tileset's file
    char type[260];         // type
    char lienMosaique[260]; // the tileset's link: its palette (set by every tileset load)
    int formatCellule;      // cells of 8, 16 or 32 bits: 0, 1, 2
    char textes[8][TAILLE_TEXTE_USER]; // user[1] to user[8] as the file gave them
};
extern CarteLue DerniereCarte;

// A palette into 256 entries of blue, green, red (component x 8), cleared
// first. Gives the number of colours read, 0 on failure.
int ChargePalette(uint8_t* palette, const char* chemin);
// A bitmap of the element's row, drawn into SurfaceApercu.
void ChargeBitmap16(int element);
void ChargeBitmap8(int element);
// A tileset: 8 x 8 units of 64 words each into *tuiles (allocated with malloc
// when null; the caller frees it), and its palette when one is wanted. raw
// keeps 15-bit values as in the file. Gives the units read; 0 on failure; -1
// after the memory message (the tiles are freed then).
int ChargeMosaique(uint8_t* palette, uint32_t** tuiles, const char* chemin, bool brut);
// The objects of a list in memory: nombre objects of taille bytes each (x,
// y, type, then the model's parameters), in room for capacite objects.
struct ListeObjets {
    uint8_t* objets = nullptr; // malloc'ed; the owner frees it
    int capacite = 0;
    int nombre = 0;
    int taille = 0;
};

// A map of the element's row, with its tileset and palette: cells (32-bit,
// row by row) into *cellules, allocated and cleared when null. sizex and sizey
// hold its size in cells. Gives 1 on success, 0 on failure.
int ChargeCarte(uint8_t* palette, uint32_t** tuiles, uint32_t** cellules, int element);
// A list of the element's row with its tileset and palette. The objects' room
// is made for system.objetsmax objects of the model's size. A file that does
// not fit the template is offered a recovery pass. Gives 1 on success.
int ChargeListe(uint8_t* palette, uint32_t** tuiles, int element, ListeObjets& liste);
