#include "convert/conv.h"

#include "platform/plateforme.h"
#include "platform/texte.h"

#include <cstring>

namespace {

constexpr size_t LONGUEUR_NOM_PARAMETRE = 100;
constexpr size_t LONGUEUR_VALEUR_PARAMETRE = 500;

enum Prefixe { PREFIXE_AUCUN, PREFIXE_OUI, PREFIXE_NON, PREFIXE_SPECIAL };

struct ParametreConv {
    const char* nom;
};

// The parameters conv knows. The conversions fill this table; a name not in it
// is reported and parsing goes on.
const ParametreConv TableParametres[] = {{nullptr}};
constexpr int NbParametres = 0;

// Looked up from the last row to the first.
int TrouveParametre(const char* nom) {
    for (int i = NbParametres - 1; i >= 0; --i)
        if (strcmp(TableParametres[i].nom, nom) == 0) return i;
    return -1;
}

} // namespace

void ExecuteConv(const char* texte) {
    const char* p = texte ? texte : "";
    while (*p == '\t') ++p;
    while (*p) {
        while (*p == ' ') ++p;
        if (!*p) break;
        Prefixe prefixe = PREFIXE_AUCUN;
        if (*p == '+') prefixe = PREFIXE_OUI;
        else if (*p == '-') prefixe = PREFIXE_NON;
        else if (*p == '!') prefixe = PREFIXE_SPECIAL;
        if (prefixe != PREFIXE_AUCUN) ++p;

        // Names and values longer than their limits are cut.
        char nom[LONGUEUR_NOM_PARAMETRE + 1];
        const char* debut = p;
        while (*p && *p != ' ' && *p != '=') ++p;
        CopieBorneeN(nom, sizeof nom, debut, (size_t)(p - debut));

        char valeur[LONGUEUR_VALEUR_PARAMETRE + 1] = "";
        if (*p == '=') {
            ++p;
            if (*p == '"') {
                debut = ++p;
                while (*p && *p != '"') ++p;
                CopieBorneeN(valeur, sizeof valeur, debut, (size_t)(p - debut));
                if (*p == '"') ++p;
            } else {
                debut = p;
                while (*p && *p != ' ') ++p;
                CopieBorneeN(valeur, sizeof valeur, debut, (size_t)(p - debut));
            }
        }
        // A lone prefix ("-" on its own) names nothing and is passed over.
        if (!nom[0] && !valeur[0]) continue;
        if (TrouveParametre(nom) < 0) MessageDebugF("Unrecognized convertion identifier: %s", nom);
    }
}
