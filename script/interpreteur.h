// The statement interpreter: one line, one statement of an object, an
// optional member and index, and arguments, looked up in the dictionary and
// applied at once. The project file, the main script and its hooks, map
// parameter scripts and the "Execute (script)" dialog all run through here.
#pragma once
#include <cstdint>
#include <cstdio>

// ---- Dictionary rows -------------------------------------------------------

enum GenreLigne {
    GENRE_NOEUD = 0,    // a root of the project tree: selects it and shows its form
    GENRE_TEXTE = 1,    // a text field of the form on show
    GENRE_COCHE = 2,    // a check box of the form
    GENRE_RADIO = 3,    // a radio button of the form
    GENRE_COMBO = 4,    // a combo box of the form
    GENRE_FONCTION = 5, // a built-in function, given the arguments' text
    GENRE_ENTIER = 6,   // a 32-bit integer
    GENRE_CHAINE = 7,   // a text of 512 bytes
    GENRE_REEL = 8,     // a double
    GENRE_OBJET = 9,    // a member table
    GENRE_TABLEAU = 10, // an array of integers, texts or doubles
};

constexpr int TAILLE_CHAINE_SCRIPT = 512;

// A function row calls through a variable, so that a later subsystem can plug
// its own function into a row that already exists.
using FonctionScript = void (*)(char* arguments);

struct TableDictionnaire;
struct TableauScript {
    int nombre;
    int genre; // GENRE_ENTIER, GENRE_CHAINE (TAILLE_CHAINE_SCRIPT bytes each) or GENRE_REEL
    void* base;
};

struct LigneDictionnaire {
    const char* nom; // lower case; accents in Latin-1
    int genre;
    int controle = 0;                      // kinds 0 to 4: root or form slot
    FonctionScript* fonction = nullptr;    // kind 5
    int32_t* entier = nullptr;             // kind 6
    char* chaine = nullptr;                // kind 7
    double* reel = nullptr;                // kind 8
    const TableDictionnaire* membres = nullptr; // kind 9
    const TableauScript* tableau = nullptr;     // kind 10
};

struct TableDictionnaire {
    int nombre;
    const LigneDictionnaire* lignes;
};

// The top-level table (script/dictionnaire.cpp).
extern const TableDictionnaire DictionnairePrincipal;

// ---- State of a run --------------------------------------------------------

extern int FinScript;       // 0 running; 1 fin, end, retour or a cancelled box; 2 quitte
extern int ResultatScript;  // 1 at the start of a run; retour n sets it
extern int IndiceCourant;   // the statement's index, from 0
extern FILE* FichierScriptCourant; // file of the statement being run
extern int32_t messages;    // 0: conversions ask no questions
extern bool SelectionArbreActive; // a selection change of the tree shows a form
constexpr int TAILLE_ETIQUETTE = 1000;
extern char EtiquetteCherchee[TAILLE_ETIQUETTE]; // label searched for, or empty

// ---- Runs --------------------------------------------------------------------

// Runs a script file, from a label when one is given. Gives 0 when the path
// is empty or the file cannot be opened, else 1. ResultatScript is 1 first.
int ExecuteFichierScript(const char* chemin, const char* etiquette);
// Runs an open text stream to its end (or to fin, retour, a label search that
// finds nothing), from a label when one is given, and closes it.
void ExecuteScript(FILE* fichier, const char* etiquette);

// The message box of a statement error, titled "Macro execution error".
void ErreurScript(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Makes the core's project reader run its sections through this interpreter.
void InstalleInterpreteur();
