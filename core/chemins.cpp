#include "core/chemins.h"

#include "core/reglages.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"

#include <cstring>

const char* Extension(const char* chemin) {
    // Components from the last to the first: the first that holds a dot gives
    // the text behind that dot.
    size_t fin = strlen(chemin);
    while (true) {
        size_t debut = fin;
        while (debut > 0 && !EstSeparateur(chemin[debut - 1])) --debut;
        for (size_t i = debut; i < fin; ++i)
            if (chemin[i] == '.') return chemin + i + 1;
        if (debut == 0) return chemin;
        fin = debut - 1;
    }
}

void RepertoireDe(char* chemin) {
    char* p = (char*)DernierSeparateur(chemin);
    if (p)
        *p = 0;
    else
        chemin[0] = 0;
}

const char* DernierComposant(const char* chemin) {
    const char* p = DernierSeparateur(chemin);
    return p ? p + 1 : chemin;
}

namespace {

// Length of the part of chemin that spells prefixe, separators of either kind
// being equal, when that part is followed by a separator; else 0.
size_t PrefixeDeChemin(const char* chemin, const char* prefixe, size_t longueur) {
    for (size_t i = 0; i < longueur; ++i) {
        char a = chemin[i], b = prefixe[i];
        if (a == 0) return 0;
        if (a != b && !(EstSeparateur(a) && EstSeparateur(b))) return 0;
    }
    return EstSeparateur(chemin[longueur]) ? longueur : 0;
}

} // namespace

void CheminRelatif(char* chemin, size_t taille) {
    char w[TAILLE_CHEMIN_PROJET];
    if (!RepertoireCourant(w, sizeof w)) return;
    size_t lw = strlen(w);
    while (lw > 0 && EstSeparateur(w[lw - 1])) w[--lw] = 0;
    if (lw == 0) return;

    // Inside the working directory. The separator behind W is required, so
    // that "C:\proj" does not claim "C:\projects\a.bmp".
    if (size_t n = PrefixeDeChemin(chemin, w, lw)) {
        memmove(chemin, chemin + n + 1, strlen(chemin + n + 1) + 1);
        return;
    }
    // Inside its parent, one step up at most; a drive or file system root is
    // never taken as the parent.
    const char* sep = DernierSeparateur(w);
    if (!sep || sep == w || sep[-1] == ':') return;
    size_t lp = (size_t)(sep - w);
    if (size_t n = PrefixeDeChemin(chemin, w, lp)) {
        char resultat[TAILLE_CHEMIN_PROJET];
        FormateBorne(resultat, sizeof resultat, "..%c%s", *sep, chemin + n + 1);
        CopieBornee(chemin, taille, resultat);
    }
}

void AjouteExtensionDefaut(char* chemin, size_t taille, const char* ext) {
    size_t lc = strlen(chemin), le = strlen(ext);
    if (lc >= le && strcmp(chemin + lc - le, ext) == 0) return;
    if (strchr(chemin, '.')) return;
    AjouteBorne(chemin, taille, ext);
}

void NomCourt(const char* chemin, char* sortie) {
    CopieBornee(sortie, TAILLE_NOM_COURT, DernierComposant(chemin));
    if (char* point = strchr(sortie, '.')) *point = 0;
}

namespace {

int ChoisitFichier(int genre, char* sortie, size_t taille, const char* filtre, const char* titre) {
    char avant[TAILLE_CHEMIN_PROJET];
    bool revenir = RepertoireCourant(avant, sizeof avant) != 0;
    char depart[TAILLE_CHEMIN_PROJET];
    CopieBornee(depart, CheminProjet);
    RepertoireDe(depart);
    int resultat = PlateformeCourante.choisitFichier(genre, sortie, taille, filtre, titre, depart);
    if (revenir) ChangeRepertoire(avant);
    return resultat;
}

} // namespace

int ChoisitFichierOuvert(char* sortie, size_t taille, const char* filtre) {
    return ChoisitFichier(DIALOGUE_OUVRIR, sortie, taille, filtre, "To open a file");
}

int ChoisitFichierSauve(char* sortie, size_t taille, const char* filtre) {
    return ChoisitFichier(DIALOGUE_SAUVER, sortie, taille, filtre, "To save a file");
}
