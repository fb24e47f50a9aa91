// The work surfaces of the system: 24-bit pictures, rows bottom-up, blue,
// green, red. The preview surface is made once at start and lives to the end
// of the run.
#pragma once
#include "platform/image.h"

constexpr int LARGEUR_SURFACE_INITIALE = 1280;
constexpr int HAUTEUR_SURFACE_INITIALE = 1024;

extern Image SurfaceApercu;

// Makes SurfaceApercu at its start size. Gives 1 when it was made.
int CreeSurfaceApercu();
