// Everything that changes the cells of a plane: the value and the block the
// user paints with, copying a block from the planes, painting a rectangle
// (the block repeated from its top left corner), linked planes, and undo by
// whole snapshots. The rules are the same for every tile size and cell
// width: a rectangle covers whole cells of the plane it works on.
#pragma once
#include "editor/plans.h"

#include <cstdint>

// ---- The view: what the window shows and where the pointer is ----------------------
// Rectangles handed to the editing functions are in view pixels: window
// pixels less the margin, divided by the zoom.
struct VueEditeur {
    int largeurVue = 384, hauteurVue = 256;   // in window pixels
    int largeurVueZ = 384, hauteurVueZ = 256; // in plane pixels
    int largeurSelecteur = 128;               // the picker's width in plane pixels
    int decalageSelecteur = 0;                // the picker's scroll position in pixels
    int curseurX = 0, curseurY = 0;           // pointer in the view, plane pixels
    int selecteurX = 0, selecteurY = 0;       // pointer in the picker
    bool sourisDansSelecteur = false;
    int departX = 0, departY = 0;             // plane position where a drag began
    bool capturee = false;                    // the mouse is held by a drag
    bool peintureActive = false;              // a left-button paint drag is open
    bool copieActive = false;                 // a right-button copy drag is open
    int objetTire = 0;                        // dragged object + 1
    bool magnetisme = true;                   // object positions snap to the grid
};
extern VueEditeur Vue;
// The document's scroll position, in pixels; a plane's offset is this times
// its speed.
extern int DecalageX;
extern int DecalageY;
// View pixels to plane pixels of the active plane and back: the plane's
// offset rounded down to its grid step.
int VersMondeX(int x);
int VersMondeY(int y);
int VersVueX(int x);
int VersVueY(int y);

// ---- What the user paints with ----------------------------------------------------------

constexpr int COTE_MOTIF = 1024; // cells a side of a block slot
constexpr int NB_EMPLACEMENTS_MOTIF = 6;

struct EtatMotif {
    int largeurMotif = 0, hauteurMotif = 0;     // cells; 0 when no block is held
    int largeurMotifPx = 0, hauteurMotifPx = 0; // pixels
    int nbPlansMotif = 1;                       // planes that took part in the last copy
    int planSource = 0;                         // active plane when the block was taken
    uint8_t planPresent[5] = {};                // the copy from that link succeeded
    int rectangleMotif[4] = {};                 // the copy's rectangle in view pixels, as given
};
extern EtatMotif Motif;
extern uint32_t ValeurCourante; // painted when no block is held
// Six slots of 1024 x 1024 cells, row pitch 1024; slots 0-4 the first five
// links, slot 5 always zero. Allocated once, at the first opening.
extern uint32_t* MotifCellules;
// Allocates the slots at the first opening of the editor; false when the
// memory is not there (after the message).
bool PrepareMotif();

// The objects of the active list plane that are selected.
constexpr int NB_SELECTION_MAX = 1024;
extern int ObjetCourant; // last object pressed, -1 none
extern int SelectionObjets[NB_SELECTION_MAX];
extern int NbSelectionObjets;
uint32_t* EmplacementMotif(int emplacement);
int MotifActif();
bool MotifTenu();

// Converts a view rectangle into cells of a plane; false when it lies wholly
// outside the plane.
bool RectangleCellules(int plan, int x0, int y0, int x1, int y1, int c[4]);
int CopieBloc(int plan, int emplacement, int x0, int y0, int x1, int y1);
void CopieSelection(int x0, int y0, int x1, int y1, bool seulActif);
void PeintBloc(int plan, int emplacement, int x0, int y0, int x1, int y1);
void PeintSelection(int x0, int y0, int x1, int y1, bool seulActif);
// The "Paste" command: the block back into the rectangle it came from.
void ColleMotif();
void LacheMotif();
// The value of a cell of the active plane picked as the pattern.
void ChoisitValeur(uint32_t valeur);
// The + and - of the grid step.
void DoubleGrille();
void DiviseGrille();

// ---- Undo ---------------------------------------------------------------------------------
// Which buttons the window enables.
extern bool AnnulerActif;
extern bool RetablirActif;
// For tests: an undo buffer may not grow past this many bytes, as if the
// allocation were refused.
extern int64_t OctetsAnnulationMax;

void EmpileEtat(int plan);
void EmpileLies();
void AnnuleEtat(int plan);
void AnnuleLies();
void RetablitEtat(int plan);
void RetablitLies();
void ReinitAnnulation(int plan);
void ReinitLies();
void MajBoutonsAnnulation();
void LiberePile(int plan);

// ---- Hex mode ------------------------------------------------------------------------------
// The active map plane shown as numbers in cells of 16 x 16 pixels on white;
// its tile graphics keep their size.
void BasculeModeHexa();
// The value box's text: its leading hexadecimal digits (upper or lower
// case, at most 100 characters read), within the cell format's mask, as
// the pattern. Gives the value.
uint32_t TapeValeurHexa(const char* texte);
// The box's text for the pattern: lower-case hexadecimal.
void TexteValeurHexa(char* sortie, int taille);
