// The project: one flat table of rows, each an element (a file of a known
// type with a short name) or a folder. The tree the user sees is built from
// the table by the rows' folder names (core/arbre.h); nothing else indexes
// project data.
//
// Sections: element types and rows; the table; adding and removing; look-ups;
// default folders.
#pragma once
#include <cstdint>

// ---- Element types and rows ----------------------------------------------

// The type word: element type in the low 14 bits, two flags above.
constexpr uint32_t TYPE_MASQUE = 0x3fff;
constexpr uint32_t ELEMENT_DOSSIER = 0x4000; // the row is a folder (type 0 below)
constexpr uint32_t ELEMENT_RANGE = 0x8000;   // `dossier` is in force

enum TypeElement : uint32_t {
    TYPE_AUCUN = 0,
    TYPE_CARTE = 1,
    TYPE_SPRITE = 2,
    TYPE_MOSAIQUE = 3,
    TYPE_BITMAP8 = 4,
    TYPE_BITMAP16 = 5,
    TYPE_PALETTE = 6,
    TYPE_LISTE = 7,
};
constexpr int NB_TYPES_ELEMENT = 8;

// The text of each type in the project file, by value.
extern const char* const TextesTypes[NB_TYPES_ELEMENT];

constexpr int TAILLE_CHEMIN = 260;
constexpr int TAILLE_NOM = 31;    // 30 characters and the end
constexpr int TAILLE_DOSSIER = 33;
constexpr int LONGUEUR_NOM_MAX = TAILLE_NOM - 1;

struct ElementProjet {
    uint32_t arbreItem;                // node in the project tree, 0 when none; not saved
    char fichierBase[TAILLE_CHEMIN];   // the picture the element was made from, or empty
    char fichier[TAILLE_CHEMIN];       // the element's own file, relative to the project where it can be
    char nom[TAILLE_NOM];              // short name of the element or of the folder
    char dossier[TAILLE_DOSSIER];      // folder or root holding the row, under ELEMENT_RANGE
    uint32_t type;                     // type word
};

inline uint32_t TypeDe(const ElementProjet& e) { return e.type & TYPE_MASQUE; }
inline bool EstDossier(const ElementProjet& e) { return (e.type & ELEMENT_DOSSIER) != 0; }
inline bool EstRange(const ElementProjet& e) { return (e.type & ELEMENT_RANGE) != 0; }

// A row of that type, name and file, with no flags.
ElementProjet NouvelElement(uint32_t type, const char* nom, const char* fichier, const char* fichierBase = "");

// ---- The table -------------------------------------------------------------

constexpr int NB_ELEMENTS_MAX = 1000;
// Rows 0 to NbElements - 1 are in use, with no gaps. An index holds until the
// next removal; the tree node is the handle that lasts through a run.
extern ElementProjet Elements[NB_ELEMENTS_MAX];
extern int NbElements;

// ---- Adding and removing ---------------------------------------------------

// Adds a row with duplicate handling, default folder and tree insertion. The
// same element again (same type, name, file and, when given, folder) moves to
// the end and keeps its old fields. Gives the row's index, or -1 when the
// table is full.
int AjouteElement(ElementProjet ligne);
// Appends the row as it stands (project reader). Gives its index, or -1 when
// the table is full.
int AjouteElementBrut(const ElementProjet& ligne);
// Removes a row and its tree node; rows behind it move down one place.
void SupprimeElement(int index);
// Removes a folder: rows directly in it fall back to the root of their type,
// folders in it go with everything in them, whose elements fall back too. The
// caller rebuilds the tree.
void SupprimeDossier(int index);
// Gives ligne.nom a name that no other row of its type has, by a number at its
// end. With memeFichierCompte, a row of the same file does not count as a clash.
void NomUnique(ElementProjet& ligne, bool memeFichierCompte);

// ---- Look-ups --------------------------------------------------------------

// First row of that masked type and exact name, or -1.
int TrouveElement(uint32_t type, const char* nom);
// Row of the n-th element (from 1) of that type; NbElements when fewer.
int NiemeElement(uint32_t type, int n);
// The same over maps and lists together.
int NiemeCarteOuListe(int n);

// ---- Default folders -------------------------------------------------------

constexpr int NB_DOSSIERS_DEFAUT = 10;
constexpr int TAILLE_DOSSIER_DEFAUT = 512;
// Indexed by element type: folder or root new elements of that type go to.
extern char DossierDefaut[NB_DOSSIERS_DEFAUT][TAILLE_DOSSIER_DEFAUT];
