// The editor window's input, without a window: its layout, and the state
// machine that mouse, wheel, keys, scroll bars and the tick drive. The
// window layer turns its own events into these calls and shows
// SurfaceEditeur; tests call them with a clock of their own.
#pragma once
#include <cstdint>

// Layout, in client pixels of the editor window. Recomputed at each resize,
// zoom change and drag of the splitter.
struct Disposition {
    int largeurInitiale = 0, hauteurInitiale = 0; // client size at creation
    int deltaL = 0, deltaH = 0;                   // client size less that
    int panneauSelecteur = 128;                   // the picker pane in window pixels
    int largeurSelecteurEcran = 128;
};
extern Disposition DispositionEditeur;
// The client area's size: the view, the picker and the pane within limits.
void DisposeEditeur(int largeurClient, int hauteurClient);

enum BoutonSouris { BOUTON_GAUCHE, BOUTON_DROIT, BOUTON_MILIEU };
constexpr int MODIF_CTRL = 1, MODIF_SHIFT = 2;

// Keys the Part's accelerator table knows, as commands.
enum CommandeEditeur {
    ED_SAUVER = 40004,
    ED_AIDE = 40011,
    ED_ANNULER = 40019,
    ED_RETABLIR = 40020,
    ED_HEXA = 40021,
    ED_PLAN_1 = 40022, // to 40026: planes 1 to 5
    ED_AJOUTE_FOND = 40027,
    ED_SPECIMEN = 40029,
    ED_SCRIPT = 40030,
    ED_AIDE_PERSO = 40031,
    ED_GAUCHE = 40033,
    ED_DROITE = 40034,
    ED_HAUT = 40035,
    ED_BAS = 40036,
    ED_COLLER = 40037,
    ED_COPIER = 40039,
    ED_SUPPRIMER = 40040,
    ED_GRILLE_PLUS = 40041,
    ED_GRILLE_MOINS = 40042,
    ED_COUPER = 40043,
    ED_PLAN_6 = 40046, // to 40049: planes 6 to 9
    ED_PLAN_10 = 40050,
    ED_PARAMETRES = 40052,
    ED_OPTIONS = 40053,
};

// Mouse events at client pixels.
void SourisBouge(int x, int y);
void SourisPresse(BoutonSouris bouton, int x, int y, bool doubleClic = false);
void SourisRelache(BoutonSouris bouton, int x, int y);
void Molette(int delta);
void CaptureePerdue();
// A press on the splitter between the view and the picker, at client x.
void SaisitPartage(int x);
// A command of the editor's keys or buttons; false for one the window must
// handle itself (a dialog).
bool CommandeClavier(int commande);
// Scroll bars of the view: a request by its number (0 line
// less, 1 line more, 2 page less, 3 page more, 4 top, 5 bottom, 6 thumb).
void DefileVue(bool horizontal, int requete, int position);
// The refresh tick at the clock's time: grid steps, edge scrolling, the frame.
void TickEditeur();

// Keeps the cursor on the map and on whole cells of the view.
void BorneCurseur();
// Keeps the scroll position within the map plus one cell, on the grid.
void BorneDefilement();
