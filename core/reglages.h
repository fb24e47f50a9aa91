// Settings that outlive a statement: process-wide texts and the settings
// structs behind the script dictionary. Each field carries its default and its
// script words; ReinitialiseReglages puts every default back (start-up, tests).
// The project file writes the non-default ones back as statements.
#pragma once
#include <cstddef>
#include <cstdint>

// ---- Process-wide texts ----------------------------------------------------

constexpr int TAILLE_CHEMIN_PROJET = 1000;
constexpr int TAILLE_TEXTE_REGLAGE = 512;

extern char RepertoireProgramme[260];             // folder of the program's own file
extern char CheminProjet[TAILLE_CHEMIN_PROJET];   // full path of the current project file
extern char ScriptPrincipal[TAILLE_TEXTE_REGLAGE]; // script / script
extern char AideUtilisateur[TAILLE_TEXTE_REGLAGE]; // aideperso / userhelp
extern char RepertoireNote[TAILLE_TEXTE_REGLAGE];  // répertoire / directory: kept, read by nothing

// ---- Conversion --------------------------------------------------------------

// How a picture of many colours is brought to a palette (convert.mode).
enum MethodeCouleurs { METHODE_NORMALE = 0, METHODE_TRAMEE = 1, METHODE_OPTIMALE = 2 };

// Colour components are in the order red, green, blue.
struct ReglagesConversion {
    uint8_t masque[3] = {255, 0, 254}; // convert.couleurmasque / maskcolor
    uint8_t zero[3] = {0, 0, 0};       // convert.couleurzero / zerocolor, each component divided by 8
    double gamma[3] = {1.0, 1.0, 1.0}; // convert.luminosite GAMMA=, kept as 1 / the value given
    double add[3] = {0.0, 0.0, 0.0};   // convert.luminosite ADD=
    double alpha[3] = {0.0, 0.0, 0.0}; // convert.luminosite ALPHA=
    int nuances = 32;                  // convert.nuances / shades
    int nuancesAvant = 0;              // convert.nuancesavant / shadesbefore
    int tronquer = 0;                  // convert.tronquer / truncate
    MethodeCouleurs mode = METHODE_NORMALE; // convert.mode / quantization
    int precisionMax = 512;            // convert.precisionmax / maxprecision
    int utilMaxCoul = 0;               // convert.utilmaxcoul / usemaxcolors

    // One conversion, filled by the wizard or by conv before it runs.
    int typeCarte = 1;          // cells of 8, 16 or 32 bits: 0, 1, 2
    int quatreBits = 0;         // tiles of 4 bits a pixel
    int quinzeBits = 0;         // tiles of direct 15-bit colours
    int genereCarte = 1;        // write the map
    int optimise = 1;           // remove duplicate tiles
    int paletteExistante = -1;  // row of an existing palette, or -1
    int mosaiqueExistante = -1; // row of an existing tileset, or -1
    int compareCouleurs = 1;
    int compareTuiles = 1;
    int sortieLargeur = 0;      // area converted; 0: the picture's size
    int sortieHauteur = 0;
    char nomMosaique[TAILLE_TEXTE_REGLAGE] = "";
    char nomBitmap8[TAILLE_TEXTE_REGLAGE] = "";
    char nomBitmap16[TAILLE_TEXTE_REGLAGE] = "";
    char nomPalette[TAILLE_TEXTE_REGLAGE] = "";
    char nomCarte[TAILLE_TEXTE_REGLAGE] = "";
};
extern ReglagesConversion ReglagesConv;

// Sizes shared by the format engine, the previews and the editor. A load
// changes them; a caller that needs them saves and restores them.
extern int tilex; // convert.tilex
extern int tiley; // convert.tiley
extern int sizex;
extern int sizey;
extern int NbTuiles;
// How map cells reach tiles: cell + tilebase, ANDed with gfxmask.
extern int tilebase; // tile base setting, start value 0
extern int gfxmask;  // gfx mask setting, start value -1 (all bits)

// The shared sizes as one value: taken before a load, put back after it, in
// whole or in the parts named (the loaders leave some of what they read).
enum : unsigned {
    TAILLES_TUILE = 1,     // tilex, tiley
    TAILLES_CARTE = 2,     // sizex, sizey
    TAILLES_NB_TUILES = 4, // NbTuiles
    TAILLES_AFFICHAGE = 8, // tilebase, gfxmask
    TAILLES_TOUTES = 15,
};
struct TaillesPartagees {
    int tilex, tiley, sizex, sizey, nbTuiles, tilebase, gfxmask;

    static TaillesPartagees Sauve();
    void Restaure(unsigned parties = TAILLES_TOUTES) const;
};

// ---- System ----------------------------------------------------------------

constexpr uint32_t MEMOIRE_MAX_DEFAUT = 33554432;

struct ReglagesSysteme {
    int objetsMax = 1024;               // system.objetsmax / maxobjects
    int sauverParamsMaps = 1;           // system.sauverparamsmaps / savemapsparams
    int sauverParamsMapsAuto = 0;       // system.sauverparamsmapsauto / savemapsparamsauto
    uint32_t memoireMax = MEMOIRE_MAX_DEFAUT; // system.memoiremax / maxmemory, 0: no limit
    int selectionFormatAuto = 1;        // system.selectionformatauto / autoformatselection
};
extern ReglagesSysteme ReglagesSys;

// ---- Map editor --------------------------------------------------------------

struct ReglagesEditeur {
    int popupInfos = 1;         // editeur.popupinfos
    int tempsPopup = 61;        // editeur.tempspopup / popuptime
    int blocInvisible = 65535;  // editeur.blocinvisible / invisibleblock
    int zoomPrecis = 0;         // editeur.zoomprecis / precisezoom
    int grille = 0;             // editeur.grille / grid
    int couleurGrille = 0x404040; // editeur.couleurgrille / gridcolor
    int alphaGrille = 96;       // editeur.alphagrille / alphagrid
    int masqueZero = 0;         // editeur.masquezero / zeromask
    int timing = 10;            // editeur.timing
    double zoom = 1.0;          // editeur.zoom
    int bitsMasqueZero = 1;     // bits.masquezero / zeromask
};
extern ReglagesEditeur ReglagesEdit;

constexpr int NB_PLANS_MAX = 20;

struct ReglagesFonds {
    int alphaPremierPlan = 160; // fonds.alphapremplan / alphaforeground
    int proprePalette = 1;      // fonds.proprepalette / multipalettes
    int transparence = 0;       // fonds.transparence / transparency
    int alphaHex = 96;          // fonds.alphahex
    int alphaGfx = 128;         // fonds.alphagfx
    int visible[NB_PLANS_MAX] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}; // fonds.visible[n]
};
extern ReglagesFonds ReglagesPlans;

struct ReglagesModeHexa {
    int actif = 0;       // modehexa.actif / enabled
    int combleZeros = 0; // modehexa.comblezeros / fillzeros
    int fondActif = 1;   // modehexa.fondactif / activemap
};
extern ReglagesModeHexa ReglagesHexa;

// Puts every setting of this file back to its default.
void ReinitialiseReglages();

// ---- Size texts ("8 MB", "Max.") -----------------------------------------------

// Text to bytes: "8 MB" gives 8,389,632; no number, or 4 GB and more, gives 0.
uint32_t LitTailleMemoire(const char* texte);
// Bytes to text: 0 gives "Max.".
void TexteTailleMemoire(uint32_t valeur, char* sortie, size_t taille);
