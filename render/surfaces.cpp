#include "render/surfaces.h"

Image SurfaceApercu;
Image SurfaceEditeur;
Image SurfaceSpecimen;
int LargeurApercu = LARGEUR_SURFACE_INITIALE;
int HauteurApercu = HAUTEUR_SURFACE_INITIALE;
Cadre CadreDessin = {0, 0, LARGEUR_SURFACE_INITIALE, HAUTEUR_SURFACE_INITIALE};
// A light grey until the window gives its own (red 0xF1: lowest bit 1).
uint32_t CouleurFond = 0xF0F0F1;

void ChoisitCadre(int xOrigine, int yOrigine, int xLimite, int yLimite) {
    CadreDessin = {xOrigine, yOrigine, xLimite, yLimite};
}

void CadreComplet() {
    CadreDessin.xLimite = LargeurApercu;
    CadreDessin.yLimite = HauteurApercu;
}

int CreeSurfaceApercu() {
    LargeurApercu = LARGEUR_SURFACE_INITIALE;
    HauteurApercu = HAUTEUR_SURFACE_INITIALE;
    ChoisitCadre(0, 0, LARGEUR_SURFACE_INITIALE, HAUTEUR_SURFACE_INITIALE);
    return CreeSurface(SurfaceApercu, LARGEUR_SURFACE_INITIALE, HAUTEUR_SURFACE_INITIALE, 24);
}

int CreeSurfacesEditeur() {
    int a = CreeSurface(SurfaceEditeur, LARGEUR_SURFACE_INITIALE, HAUTEUR_SURFACE_INITIALE, 24);
    int b = CreeSurface(SurfaceSpecimen, LARGEUR_SURFACE_INITIALE, HAUTEUR_SURFACE_INITIALE, 24);
    return a && b;
}
