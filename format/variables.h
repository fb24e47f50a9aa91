// Template variables: the `%name%` fields that templates write and read back,
// and the eight user texts of the format in use.
#pragma once
#include <cstddef>
#include <cstdint>

enum GenreVariable {
    VARIABLE_TEXTE = 0,    // a text; absent while its pointer is null
    VARIABLE_POINTEUR = 1, // an integer that lives elsewhere
    VARIABLE_ENTIER = 2,   // an integer held in the row
};

struct VariableGabarit {
    const char* nom;
    int genre;
    const char* texte;  // VARIABLE_TEXTE: the text written; null: absent
    char* tampon;       // VARIABLE_TEXTE: where a read value goes, or null
    size_t taille;      // bytes of tampon
    int32_t* pointeur;  // VARIABLE_POINTEUR
    int32_t entier;     // VARIABLE_ENTIER
};

constexpr int NB_VARIABLES = 16;
extern VariableGabarit TableVariables[NB_VARIABLES];

constexpr int TAILLE_TEXTE_USER = 512;
extern char TextesUser[9][TAILLE_TEXTE_USER]; // user[1] to user[8]

// Keeps the table as it stands (start-up, after the project's scripts).
void SauveVariables();
// Puts the table back to that copy; every read or write of a file begins so.
void RestaureVariables();
// Copies the user texts of the format in use into TextesUser.
void ChargeTextesUser();

// The row of that exact name, or null.
VariableGabarit* TrouveVariable(const char* nom);
// A text written by the next template (null: absent).
void MetTexteVariable(const char* nom, const char* texte);
// A buffer that a read fills; its text is also what a write writes.
void MetTamponVariable(const char* nom, char* tampon, size_t taille);
// An integer: held in the row, or stored where the row points.
void MetEntierVariable(const char* nom, int32_t valeur);
// The integer value of a row (held or pointed to); 0 for a text row.
int32_t ValeurVariable(const char* nom);

// The prefix of a `%...%` field: "$" hexadecimal, "#" and a digit binary with
// that many bytes, else decimal; and the user text it names, if any.
enum FormeChamp { CHAMP_DECIMAL, CHAMP_HEXA, CHAMP_BINAIRE };
struct ChampVariable {
    FormeChamp forme;
    int octets;      // binary form: the digit
    int user;        // 1 to 8 for "user[n", else 0
    const char* nom; // the field behind its prefix
};
ChampVariable AnalyseChamp(const char* champ);
