#include "format/variables.h"

#include "core/reglages.h"
#include "format/formats.h"
#include "platform/texte.h"

#include <cstring>

namespace {

constexpr VariableGabarit Texte(const char* nom) { return {nom, VARIABLE_TEXTE, nullptr, nullptr, 0, nullptr, 0}; }
constexpr VariableGabarit Pointeur(const char* nom, int32_t* p) {
    return {nom, VARIABLE_POINTEUR, nullptr, nullptr, 0, p, 0};
}
constexpr VariableGabarit Entier(const char* nom) { return {nom, VARIABLE_ENTIER, nullptr, nullptr, 0, nullptr, 0}; }

// The start values, for the table and for its saved copy.
#define VARIABLES_DEPART                                                                                       \
    {                                                                                                          \
        Texte("file"), Pointeur("sizex", &sizex), Pointeur("sizey", &sizey), Entier("size"), Entier("memory"), \
            Texte("name"), Texte("link"), Pointeur("tilex", &tilex), Pointeur("tiley", &tiley),               \
            Entier("depth"), Texte("type"), Texte("null"), Texte("bits"), Pointeur("gfxmask", &gfxmask),      \
            Pointeur("tilebase", &tilebase), Texte("model"),                                                   \
    }

VariableGabarit VariablesSauvees[NB_VARIABLES] = VARIABLES_DEPART;

} // namespace

VariableGabarit TableVariables[NB_VARIABLES] = VARIABLES_DEPART;
char TextesUser[9][TAILLE_TEXTE_USER];

void SauveVariables() { memcpy(VariablesSauvees, TableVariables, sizeof TableVariables); }
void RestaureVariables() { memcpy(TableVariables, VariablesSauvees, sizeof TableVariables); }

void ChargeTextesUser() {
    for (int i = 1; i < 9; ++i) CopieBornee(TextesUser[i], FormatCourant.user[i]);
}

VariableGabarit* TrouveVariable(const char* nom) {
    for (VariableGabarit& v : TableVariables)
        if (strcmp(v.nom, nom) == 0) return &v;
    return nullptr;
}

void MetTexteVariable(const char* nom, const char* texte) {
    if (VariableGabarit* v = TrouveVariable(nom)) {
        v->texte = texte;
        v->tampon = nullptr;
        v->taille = 0;
    }
}

void MetTamponVariable(const char* nom, char* tampon, size_t taille) {
    if (VariableGabarit* v = TrouveVariable(nom)) {
        v->texte = tampon;
        v->tampon = tampon;
        v->taille = taille;
    }
}

void MetEntierVariable(const char* nom, int32_t valeur) {
    VariableGabarit* v = TrouveVariable(nom);
    if (!v) return;
    if (v->genre == VARIABLE_POINTEUR && v->pointeur)
        *v->pointeur = valeur;
    else if (v->genre == VARIABLE_ENTIER)
        v->entier = valeur;
}

int32_t ValeurVariable(const char* nom) {
    const VariableGabarit* v = TrouveVariable(nom);
    if (!v) return 0;
    if (v->genre == VARIABLE_POINTEUR) return v->pointeur ? *v->pointeur : 0;
    return v->genre == VARIABLE_ENTIER ? v->entier : 0;
}

ChampVariable AnalyseChamp(const char* champ) {
    ChampVariable c{CHAMP_DECIMAL, 0, 0, champ};
    if (champ[0] == '$') {
        c.forme = CHAMP_HEXA;
        c.nom = champ + 1;
    } else if (champ[0] == '#' && champ[1] >= '0' && champ[1] <= '9') {
        c.forme = CHAMP_BINAIRE;
        c.octets = champ[1] - '0';
        c.nom = champ + 2;
    }
    if (strncmp(c.nom, "user[", 5) == 0 && c.nom[5] >= '1' && c.nom[5] <= '8') c.user = c.nom[5] - '0';
    return c;
}
