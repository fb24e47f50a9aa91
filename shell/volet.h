// The preview pane of the main window and the title strip above it, as plain
// functions: where things stand, what a scroll request does, what the hover
// says. The window only delivers events and copies pixels.
#pragma once
#include "platform/image.h"

#include <cstdint>

// Geometry, in client pixels of the main window.
constexpr int VOLET_X = 170, VOLET_Y = 30, VOLET_COTE = 256;
constexpr int BANDEAU_X = 170, BANDEAU_Y = 10, BANDEAU_L = 380, BANDEAU_H = 16;
constexpr int LOUPE_X = 472, LOUPE_Y = 108, LOUPE_COTE = 64;

constexpr int TAILLE_TITRE = 1024;
extern char TitreCourant[TAILLE_TITRE]; // the text of the title strip

// The title strip's picture (380 x 16, 24-bit): its gradient and its four
// corners cut in CouleurFond.
void DessineBandeau(Image& bandeau);
// Where the title starts in the strip: 5, or right-aligned in 5..375 when
// its width is above 370 pixels.
int DebutTitre(int largeurTexte);

// Scroll requests of the pane's bars.
enum RequeteDefilement { LIGNE_MOINS, LIGNE_PLUS, PAGE_MOINS, PAGE_PLUS, VERS_FIN, VERS_DEBUT, POSITION };
// The new position for a request on an axis of that size (surface pixels).
int Defile(int position, RequeteDefilement requete, int valeur, int taille);

// What the hover shows at a client point over the pane: up to two texts
// and, for tilesets and maps, the block to zoom (its rectangle in the
// surface). Gives false when the point shows nothing.
struct Survol {
    char texte1[32] = "", texte2[32] = "";
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0; // where each text goes
    bool loupe = false;
    int blocX = 0, blocY = 0, blocL = 0, blocH = 0;
};
bool SurvoleApercu(int mx, int my, Survol& survol);

// A file dropped on the main window: its extension looked up in the six
// sections of each format, in table order; a match becomes a row of that
// type. Gives the row, or -1 when no format knows the extension.
int AjouteFichierDepose(const char* chemin);
