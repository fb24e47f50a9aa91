// The picture of the editor, rebuilt whole at each tick: the other planes
// with their parallax and blending, the active plane over them, its grid,
// the cursor's preview and popup, the notifications; and the tile picker.
//
// Planes are composed in a 32-bit work picture by 8 x 8 units: each
// plane's tileset is resolved once into pixels (palette, banks, direct
// colours), kept until its palette or tiles change, and every unit of the
// view takes the units of the planes over it, from the highest that covers
// it whole when nothing blends; the two halves of the view go to two
// threads. Where units do not line up (hex mode's cells of 16 over larger
// tiles) the planes are drawn tile by tile through the blitters. Both give
// the same pixels.
#pragma once
#include "platform/image.h"

#include <cstdint>

// The picker's own picture: largeurSelecteur x hauteurVueZ.
extern Image SurfaceSelecteur;

// The triangle wave of the animated colours: one period per 1024 ms, 1..255.
int Pulsation(int64_t millisecondes);

// One frame at the clock's time: the planes, the cursor, the notifications
// into SurfaceEditeur (the rectangle largeurVueZ x hauteurVueZ), the picker
// into SurfaceSelecteur.
void ComposeVue();
// The planes only, into SurfaceEditeur's view rectangle (steps 1 to 7 but
// the cursor): by units when they line up, else through the blitters.
void ComposePlans();
void DessineSelecteur(int64_t maintenant);

// The blitter route for one plane, as the tick draws it.
void DessineCarte(const uint8_t* palette, int decalageX, int decalageY, int alpha, int plan);
void DessineListe(const uint8_t* palette, int decalageX, int decalageY, int alpha, int plan);
void DessineCurseurCarte(int x, int y, int64_t maintenant);
void DessineCurseurListe(int x, int y, int64_t maintenant);

// The picker's brightness and how long the cursor has rested on its cell.
extern int AlphaSelecteur;
extern int TempsSurvol;
// Threads of the unit route (1 or 2).
extern int FilsComposition;
// For tests and the benchmark: false draws every plane through the blitters.
extern bool RouteParUnites;
// For tests: false keeps to SSE2 where the processor has more.
extern bool ComposeAvx2;
