// The list editor: a list is a plane of objects placed freely, each with a
// position in pixels, a type that is also its tile number, and the list
// model's parameters. The gestures of maps paint, copy and undo objects;
// clicks select and drag them. These are the functions the window calls.
#pragma once
#include <cstdint>

// The objects of a copy from each of the first five links, positions
// relative to the block's corner.
struct EmplacementObjets {
    int taille = 0;   // bytes of one object
    int nombre = 0;
    int capacite = 0; // objects the buffer holds
    uint8_t* objets = nullptr;
};
extern EmplacementObjets MotifObjets[5];
// Ctrl+C's objects, positions absolute; they outlive the editor.
constexpr int NB_COPIES_MAX = 1024;
extern uint8_t* ObjetsCopies;
extern int NbObjetsCopies;
extern int TailleObjetsCopies;
// "Object parameters" for the selection (the window's dialog): 1 when
// something changed. Null: no dialog.
extern int (*DialogueParametresObjets)();

int AjouteObjet(int plan, int x, int y, int type);
void RetireObjet(int plan, int n);
// The topmost object at a plane position, or -1.
int ObjetTouche(int plan, int px, int py);
int CopieObjets(int plan, int emplacement, int x0, int y0, int x1, int y1);
void PeintObjets(int plan, int emplacement, int x0, int y0, int x1, int y1);
void BasculeObjet(int n);
void SelectionneRectangle(int plan, int x0, int y0, int x1, int y1);

// Ctrl+C, Delete, Ctrl+X, Ctrl+V on the active list plane.
void CopieObjetsChoisis();
void SupprimeObjetsChoisis();
void CoupeObjetsChoisis();
void ColleObjetsCopies();

// The gestures on the active list plane, at the cursor of Vue.
void PresseListe(bool ctrl, bool doubleClic);
void RelacheObjetTire();
// A right drag over a rectangle of view pixels.
void GlisseDroitListe(int x0, int y0, int x1, int y1, bool ctrl);

void LibereMotifObjets();
