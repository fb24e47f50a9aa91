// The template reader: runs a template backwards over a file loaded whole. A
// position is an offset into the data; the data size plus 1 is the one
// failure result of the family. Damaged files are survived: the reader hunts
// forward for delimiters and, failing that, for shorter and later ones.
#pragma once
#include <cstddef>
#include <cstdint>

constexpr int32_t TAILLE_TAMPON_LECTURE = 8388608; // a longer file is cut there
constexpr int LONGUEUR_DELIMITEUR_SUR = 4;         // shorter delimiters are not trusted in recovery

struct TamponLecture {
    char* donnees = nullptr; // taille bytes, then a zero
    int32_t taille = 0;
};

// Reads a file into a buffer of its size (at most 8 MiB). Gives 1 on success.
int ChargeTampon(const char* chemin, TamponLecture& tampon);
void LibereTampon(TamponLecture& tampon);
inline int32_t EchecLecture(const TamponLecture& t) { return t.taille + 1; }

// Set by %+noerror%, cleared by %+endnoerror%; lasts across calls and files.
extern bool SilenceLecture;

// Matches a template at the position; gives the position behind it, or the
// failure position.
int32_t LitGabarit(int32_t position, const TamponLecture& tampon, const char* gabarit);
// Reads one number through an element format; gives the position behind it,
// or the failure position when no character matched.
int32_t LitValeur(int32_t position, const TamponLecture& tampon, const char* format, int32_t& resultat);
// Stores a value read for a field (with the "$" and "#n" prefixes) in
// TextesUser or TableVariables.
void LitVariable(const char* champ, const char* valeur, size_t longueur);
