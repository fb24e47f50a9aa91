// Parameter models of object lists: the table, as plain data. The format
// engine reads and writes objects through them; the project file saves them.
#pragma once
#include <cstdint>

constexpr int NB_MODELES_MAX = 10;
constexpr int NB_PARAMETRES_MAX = 100;
constexpr int TAILLE_NOM_MODELE = 512;
constexpr int TAILLE_NOM_PARAMETRE = 32;
constexpr int TAILLE_DEFAUT_PARAMETRE = 16;
constexpr int TAILLE_OBJET_BASE = 12; // x, y and type of every object
// A parameter takes at most this many bytes of an object; scripts give sizes
// unchecked, so a size is brought within 0 and this when it is stored, and a
// model's object size can never wrap.
constexpr int TAILLE_PARAMETRE_MAX = 65536;
inline int32_t TailleParametreBornee(int32_t taille) {
    return taille < 0 ? 0 : taille > TAILLE_PARAMETRE_MAX ? TAILLE_PARAMETRE_MAX : taille;
}

enum GenreParametre { PARAMETRE_ENTIER = 1, PARAMETRE_BRUT = 2 };

struct ModeleParametres {
    char nom[TAILLE_NOM_MODELE];
    int32_t nbParametres;
    int32_t genres[NB_PARAMETRES_MAX];
    int32_t tailles[NB_PARAMETRES_MAX];
    char noms[NB_PARAMETRES_MAX][TAILLE_NOM_PARAMETRE];
    char defauts[NB_PARAMETRES_MAX][TAILLE_DEFAUT_PARAMETRE];
    int32_t taille; // 12 plus the sum of tailles
};

extern ModeleParametres TableModeles[NB_MODELES_MAX];
extern int NbModeles;
extern int ModeleSelectionne;

// Clears the table and makes model 0 "Default", with no parameters, selected.
void InitialiseModeles();
// 12 plus the sizes of the model's parameters.
int32_t TailleModele(const ModeleParametres& modele);

// Slot of the model of that exact name, or -1.
int TrouveModele(const char* nom);
// Selects the model of that name; absent: the box "Model %s not found".
void ChoisitModele(const char* nom);
// The same with no message: 1 when found (its size is recomputed), else 0.
int SelectionneModele(const char* nom);
// Adds a parameter to a model, or replaces the one of that name. Nothing
// happens with an empty name or 100 parameters already.
void AjouteParametre(ModeleParametres& modele, const char* nom, int genre, int taille, const char* defaut);
