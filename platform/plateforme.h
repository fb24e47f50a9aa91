// The platform seam: everything the system asks of a window system, in one
// plain struct of function pointers. The headless defaults below serve batch
// mode and tests; the window layer installs its own versions at start-up, and
// tests install a recording version (tests/support). Callers never test which
// one is in place.
#pragma once
#include <cstdarg>
#include <cstddef>
#include <cstdint>

struct Image;

// Buttons of a message box. A headless run answers with the first button.
constexpr int BOITE_OK = 0;
constexpr int BOITE_OKANNULER = 1;
constexpr int BOITE_OUINONANNULER = 3;
constexpr int BOITE_OUINON = 4;
constexpr int MASQUE_BOUTONS = 0x0f;
// Icon flags, or-ed with the buttons.
constexpr int ICONE_ARRET = 0x10;
constexpr int ICONE_QUESTION = 0x20;
constexpr int ICONE_ATTENTION = 0x30;
constexpr int ICONE_INFORMATION = 0x40;
// Answers.
constexpr int REPONSE_OK = 1;
constexpr int REPONSE_ANNULER = 2;
constexpr int REPONSE_OUI = 6;
constexpr int REPONSE_NON = 7;

// Which file dialog is asked for.
enum GenreDialogueFichier { DIALOGUE_OUVRIR = 0, DIALOGUE_SAUVER = 1 };

struct Plateforme {
    // Shows a message box and gives the button chosen (REPONSE_...).
    int (*boiteMessage)(const char* texte, const char* titre, int style);
    // Shows (1) or hides (0) the busy dialog "Busy. Please wait while operating...".
    void (*afficheAttente)(int visible);
    // A system file dialog. sortie holds the proposed name on entry and the chosen
    // path on exit. filtre: first byte the filter chosen at first, then pairs of
    // zero-ended texts, ended by an empty text. Gives 0 when cancelled.
    int (*choisitFichier)(int genre, char* sortie, size_t taille, const char* filtre, const char* titre,
                          const char* repertoireInitial);
    // Starts a command line with the system and does not wait for it. Gives 1 when started.
    int (*lanceCommande)(const char* ligne);
    // Shows "Please wait..." on the main window's strip during a long
    // operation (1), or puts its title back (0).
    void (*titreAttente)(int visible);
    // Milliseconds from any fixed origin: the only clock of the editor's
    // pulses, fades, popup delay and edge scrolling.
    int64_t (*millisecondes)();
    // Bytes of physical memory free now.
    uint64_t (*memoireLibre)();
    // Text over a 24-bit surface, its top left corner at (x, y), without
    // background, in the colour word given (red in bits 0-7); clipped by the
    // surface. The headless default is a built-in 5 x 7 bitmap font, the same
    // pixels on every machine.
    void (*dessineTexte)(Image& surface, int x, int y, const char* texte, uint32_t couleur);
    // Width in pixels of a text in that font.
    int (*largeurTexte)(const char* texte);
    // Ctrl (1) and Shift (2) held at this instant.
    int (*modificateurs)();
};

// The seam in force. Starts with the headless defaults.
extern Plateforme PlateformeCourante;
// The headless defaults, to put back after a test or a window layer.
extern const Plateforme PlateformeSansFenetre;

// Short forms through the seam.
inline int64_t Millisecondes() { return PlateformeCourante.millisecondes(); }
inline void DessineTexte(Image& surface, int x, int y, const char* texte, uint32_t couleur) {
    PlateformeCourante.dessineTexte(surface, x, y, texte, couleur);
}
inline int LargeurTexte(const char* texte) { return PlateformeCourante.largeurTexte(texte); }
inline int Modificateurs() { return PlateformeCourante.modificateurs(); }
// The built-in font: each printable ASCII character 5 x 7 pixels, 3 rows
// below the text's top, in a cell 6 pixels wide; other bytes show as a
// hollow box.
constexpr int LARGEUR_CAR_POLICE = 6;
void DessineTextePolice(Image& surface, int x, int y, const char* texte, uint32_t couleur);
int LargeurTextePolice(const char* texte);
int BoiteMessage(const char* texte, const char* titre, int style = BOITE_OK);
// A message without a title of its own: the plain box titled "Debuging".
void MessageDebug(const char* texte);
// Same, formatted (printf rules, cut at 1024 bytes).
void MessageDebugF(const char* format, ...) __attribute__((format(printf, 1, 2)));
// A formatted box with a title of its own.
int BoiteMessageF(const char* titre, int style, const char* format, ...) __attribute__((format(printf, 3, 4)));

// The same with a va_list, for callers that take their own arguments.
int BoiteMessageV(const char* titre, int style, const char* format, va_list args);

// Internal check: shows "An error has happened because the following condition
// is false: <condition>" titled "Internal error" and gives the condition's value.
bool Verifie(bool valeur, const char* condition);
#define VERIFIE(condition) Verifie((condition), #condition)

// ---- Strict batch runs -----------------------------------------------------------

// A batch run asked to be strict (--strict, for Makefiles): besides the
// system's own message, every failure writes one line
// "tessellarium: <file>: <reason>" on standard error, and the run ends with
// exit code 1 if any came. Failures are counted in every run; only a strict
// one writes the lines.
struct RigueurLot {
    bool stricte = false;
    int echecs = 0;
};
extern RigueurLot Rigueur;
void SignaleEchec(const char* format, ...) __attribute__((format(printf, 1, 2)));
