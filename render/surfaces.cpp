#include "render/surfaces.h"

Image SurfaceApercu;

int CreeSurfaceApercu() {
    return CreeImage(SurfaceApercu, LARGEUR_SURFACE_INITIALE, HAUTEUR_SURFACE_INITIALE, 24);
}
