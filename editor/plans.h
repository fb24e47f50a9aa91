// The map editor's document: a stack of up to 20 planes, each a map or a
// list of the project opened with its tileset and palette, one of them
// active. Opening, saving, closing, links, conditions, the title and memory
// texts. Editing and undo are in edition.h, drawing in composition.h.
//
// Planes count from 0 here and from 1 in scripts and dialogs. Cells are
// 32-bit in memory whatever their width in the file; only the save reads
// formatCellule.
#pragma once
#include "core/elements.h"
#include "core/modeles.h"
#include "core/reglages.h"
#include "format/variables.h"

#include <cstdint>

constexpr int TAILLE_TEXTE_PLAN = 260;
constexpr int NB_CONDITIONS_MAX = 20;
constexpr uint8_t FIN_LIENS = 255;
constexpr int TAILLE_OBJET_BASE_PLAN = 12; // x, y, type: until the list's model is known

// Width of a cell in the file and of its values.
enum FormatCellule { CELLULE_8_BITS = 0, CELLULE_16_BITS = 1, CELLULE_32_BITS = 2 };
// The values a cell of that width can hold: 0xFF, 0xFFFF or all bits.
uint32_t MasqueFormat(int formatCellule);

// A display rule for cell values: the first whose range holds a value
// decides what it shows.
struct Condition {
    int32_t valeurMin;
    int32_t valeurMax;
    int32_t decalage;      // valeurMin minus the replacement value
    uint8_t sansIncrement; // every value of the range shows the replacement
};

// Undo by whole snapshots of a plane, one after the other in one block.
struct PileAnnulation {
    uint8_t* tampon = nullptr;
    int perdu = 0;     // the saved state cannot be reached by undo any more
    int courant = -1;  // snapshot that matches the plane; -1 when empty
    int sommet = -1;   // newest snapshot; redo goes up to it
    int64_t octets = 0; // bytes of tampon, counted in MemoireAnnulation
    int enregistre = 0; // courant at the last save
};

struct Plan {
    int sizex, sizey;   // size in cells (a list: the width in blocks its file declares)
    int tilex, tiley;   // cell on the screen: the tile size, 16 while hex mode shows the plane
    int baseX, baseY;   // tile graphics; never changed by hex mode
    int nbTuiles;       // blocks of the tileset
    int tilebase;       // "Reference tile number", added to each value before the lookup
    uint32_t gfxmask;   // "Display tile mask", when no condition applies
    int formatCellule;  // FormatCellule
    int tuiles4Bits;    // tiles of depth 4: bits 12-15 choose a bank under emulgba
    double vitesseX, vitesseY; // scroll speed against the document's position, 1.0 = 100%
    uint8_t* palette;   // 256 colours blue, green, red; owned
    uint32_t* tuiles;   // 8 x 8 units of 64 words; owned
    uint32_t* cellules; // sizex x sizey; owned; none for a list
    char lienTileset[TAILLE_TEXTE_PLAN]; // the tileset's link: its palette
    char file[TAILLE_TEXTE_PLAN];        // where the plane is saved
    char link[TAILLE_TEXTE_PLAN];        // the file's link: its tileset
    char name[TAILLE_TEXTE_PLAN];
    int typePlan;       // TYPE_CARTE or TYPE_LISTE
    int tailleObjet;    // bytes of one list object
    uint8_t* objets;    // room for capaciteObjets objects; owned
    int nbObjets;
    int capaciteObjets; // system.objetsmax when the list was opened
    int grilleX, grilleY; // "Snap grid", in pixels
    int modeDirect;     // the tileset holds direct 15-bit colours
    const ModeleParametres* modele; // of a list; not owned
    char type[TAILLE_TEXTE_PLAN];   // the list file's type text
    char textes[8][TAILLE_TEXTE_USER]; // user texts, put back before the file is written
    int emulgba;        // cells shown as GBA text map entries; cell mask 1023
};

extern Plan Plans[NB_PLANS_MAX];
extern int NbPlans;
extern int PlanActif;
extern ElementProjet* PlanElement[NB_PLANS_MAX]; // the element a plane shows
extern int PlanRouvrir[NB_PLANS_MAX];            // written to the state script
extern uint16_t NbConditions[NB_PLANS_MAX];
extern Condition Conditions[NB_PLANS_MAX][NB_CONDITIONS_MAX];
// Planes edited together with each plane, ending in FIN_LIENS (or full).
extern uint8_t Liens[NB_PLANS_MAX][NB_PLANS_MAX];
extern PileAnnulation Piles[NB_PLANS_MAX];
extern int64_t MemoireAnnulation;
extern int64_t LimiteMemoireAnnulation;
// The texts the window shows: its title and the memory label.
extern char TitreEditeur[TAILLE_TEXTE_PLAN + 32];
extern char TexteMemoire[32];

// The working state of the plane being processed lives in the shared sizes
// (tilex, sizex, NbTuiles, tilebase, gfxmask...), through which the loaders
// and the template writer read a map. SauvePlan copies them into a record,
// ChargePlan sets them from one (sizes in cells, the tile graphics' size).
void SauvePlan(Plan& p);
void ChargePlan(const Plan& p);

// How a plane is worked on while another may be active: its cell size and
// grid step, its speeds (relative to the active plane's when it is not the
// active one), its cell mask.
struct PreparationPlan {
    int tilex, tiley;
    int grilleX, grilleY;
    double vitesseX, vitesseY;
    uint32_t masque;
};
PreparationPlan PreparePlan(int n);

// The plane's cell mask for the tile range: 1023 under emulgba, else all bits.
inline uint32_t MasqueCellule(const Plan& p) { return p.emulgba > 0 ? 1023u : 0xFFFFFFFFu; }

// What a value shows on a plane: the first condition whose range holds it,
// else the value ANDed with the mask.
int32_t ConvertitCellule(uint32_t valeur, int plan, uint32_t masque);
// The cell value that shows tile t (the picker's inverse).
int32_t InverseCellule(int32_t tuile, int plan);

// Opens an element as a new plane (or into slot NbPlans). 0 opened; 1 the
// file could not be loaded; 2 already open; 3 no slot left.
int OuvrePlan(int element);
// "Add a background..." (Ctrl+M) once the element is chosen: with 20 planes
// open, the message and -1; else as OuvrePlan.
int AjouteFond(int element);
// Writes a plane to its file through the format of its extension, then runs
// "onsave <name>". 1 written; 0 failed (the old file stays whole).
int EnregistrePlan(int n);
// Saves the planes linked to the active one, in the order of its links.
void EnregistreLies();
// A plane is modified when its undo state differs from the saved one.
bool PlanModifie(int n);
void MajTitre();
void MajMemoire();
// Makes plane n active; out of range or already active changes nothing.
void ActivePlan(int n);
// Gives the active plane tiles of nw x nh pixels ("Blocks format").
// 1 done; 0 after the memory message.
int ConvertitTailleTuiles(int nw, int nh);
// maps.add "name", slot: by element name, into a slot from 1 or appended.
void AjoutePlanNomme(const char* nom, int emplacement);
// Links planes (numbers from 1); 0, repeated and unknown numbers dropped.
void LiePlans(const int* numeros, int nombre);
// Adds a display condition to a plane; at most 20, no two alike.
void AjouteCondition(int plan, int32_t bas, int32_t haut, int32_t remplacement, bool constant);
// Frees every plane and its undo buffer: NbPlans 0.
void FermePlans();
// The document's settings as a new editor has them: conditions, links,
// alphas, grid, zoom, hex mode (the blending switch stays as it is).
void ReinitialiseDocument();
// A script changed a plane's speed: the window lays itself out again once.
extern bool VitesseChangee;

// The editor's life. OuvreEditeur opens an element as plane 1 with every
// document setting at its default, runs the state script beside it and
// "onopen <name>"; gives 1 when the editor stands, 0 when it closed again
// (a tile size it cannot show, a script that returned 0, no plane).
int OuvreEditeur(int element);
// Asks for each modified plane (once per group of links), saves what the
// answers say and frees everything. 0 when the user cancelled.
int FermeEditeur();

// The script rows of fonds / maps, plugged into the dictionary.
void InstalleEditeur();
