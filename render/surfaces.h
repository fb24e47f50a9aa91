// The work surfaces of the system: 24-bit pictures, rows bottom-up, bytes
// blue, green, red, rows a multiple of 4 bytes. The pixel at column x of row r
// (row 0 on top) lies at byte (hauteur - 1 - r) * pas + x * 3.
#pragma once
#include "platform/image.h"

#include <cstdint>

constexpr int LARGEUR_SURFACE_INITIALE = 1280;
constexpr int HAUTEUR_SURFACE_INITIALE = 1024;

extern Image SurfaceApercu;   // element previews; the only one made again at another size
extern Image SurfaceEditeur;  // the map editor
extern Image SurfaceSpecimen; // the specimen map

// The size the caller of a preview asked for, not rounded.
extern int LargeurApercu;
extern int HauteurApercu;

// The clip frame of every drawing routine. Coordinates given to a routine are
// relative to the origin; the limits are absolute and exclusive.
struct Cadre {
    int xOrigine;
    int yOrigine;
    int xLimite;
    int yLimite;
};
extern Cadre CadreDessin;

void ChoisitCadre(int xOrigine, int yOrigine, int xLimite, int yLimite);
// Limits to the preview's size; the origin stays.
void CadreComplet();

// Colour word: red in bits 0-7, green 8-15, blue 16-23. The background behind
// every preview; its lowest red bit is 1, so no expanded GBA colour equals it.
extern uint32_t CouleurFond;

// Makes SurfaceApercu at its start size. Gives 1 when it was made.
int CreeSurfaceApercu();
// Makes the editor and specimen surfaces at their start size.
int CreeSurfacesEditeur();
