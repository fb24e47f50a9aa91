#include "script/evenements.h"

#include "core/reglages.h"
#include "platform/fichiers.h"
#include "platform/texte.h"
#include "script/interpreteur.h"

#include <cstring>

int ExecuteEvenement(const char* etiquette) {
    ExecuteFichierScript(ScriptPrincipal, etiquette);
    return ResultatScript;
}

int EvenementOuverture(const char* nom) {
    char etiquette[TAILLE_ETIQUETTE];
    FormateBorne(etiquette, sizeof etiquette, "onopen %s", nom);
    return ExecuteEvenement(etiquette);
}

int EvenementSauvegarde(const char* nom) {
    char etiquette[TAILLE_ETIQUETTE];
    FormateBorne(etiquette, sizeof etiquette, "onsave %s", nom);
    return ExecuteEvenement(etiquette);
}

int ConstruitMenuProcedures(const char* chemin, std::vector<ElementMenu>& menu) {
    menu.clear();
    if (!chemin || !*chemin) {
        menu.push_back({"(No script specified)", COMMANDE_PROCEDURE_VIDE, false});
        return 0;
    }
    FILE* f = OuvreFichier(chemin, "rb");
    if (!f) {
        menu.push_back({"(No script)", COMMANDE_PROCEDURE_VIDE, false});
        return 0;
    }
    int compte = 0;
    char ligne[1000];
    while (fgets(ligne, sizeof ligne, f)) {
        // Cut at the first '#' or ';', quotes or not, with the blanks before
        // it; else at the line end.
        size_t n = strcspn(ligne, "#;\r\n");
        while (n > 0 && (ligne[n - 1] == ' ' || ligne[n - 1] == '\t')) --n;
        ligne[n] = 0;
        char* p = ligne;
        while (*p == ' ' || *p == '\t') ++p;
        char* deuxPoints = strchr(p, ':');
        if (!deuxPoints || deuxPoints[1] != 0) continue;
        if (*p != '_') continue;
        menu.push_back({std::string(p + 1, deuxPoints), COMMANDE_PROCEDURE_PREMIERE + compte, true});
        ++compte;
    }
    fclose(f);
    if (compte == 0) menu.push_back({"(None)", COMMANDE_PROCEDURE_VIDE, false});
    return compte;
}

void NomScriptParams(const char* fichier, char* sortie, size_t taille) {
    CopieBornee(sortie, taille, fichier);
    // The second dot from the end, the first character not counted.
    size_t n = strlen(sortie);
    int points = 0;
    size_t i = n;
    while (i > 1) {
        --i;
        if (sortie[i] == '.' && ++points == 2) {
            if (char* suivant = strchr(sortie + i + 1, '.')) *suivant = 0;
            break;
        }
    }
    AjouteBorne(sortie, taille, ".spt");
}
