#include "core/modeles.h"

#include "platform/texte.h"

#include <cstring>

ModeleParametres TableModeles[NB_MODELES_MAX];
int NbModeles = 0;
int ModeleSelectionne = 0;

void InitialiseModeles() {
    memset(TableModeles, 0, sizeof TableModeles);
    CopieBornee(TableModeles[0].nom, "Default");
    TableModeles[0].taille = TAILLE_OBJET_BASE;
    NbModeles = 1;
    ModeleSelectionne = 0;
}

int32_t TailleModele(const ModeleParametres& modele) {
    int32_t taille = TAILLE_OBJET_BASE;
    int n = modele.nbParametres < 0 ? 0 : modele.nbParametres > NB_PARAMETRES_MAX ? NB_PARAMETRES_MAX
                                                                                   : modele.nbParametres;
    int64_t somme = taille;
    for (int i = 0; i < n; ++i) somme += TailleParametreBornee(modele.tailles[i]);
    return (int32_t)somme; // at most 12 + 100 x 65536
}

#include "platform/plateforme.h"

int TrouveModele(const char* nom) {
    for (int i = 0; i < NbModeles && i < NB_MODELES_MAX; ++i)
        if (strcmp(TableModeles[i].nom, nom) == 0) return i;
    return -1;
}

int SelectionneModele(const char* nom) {
    int i = TrouveModele(nom);
    if (i < 0) return 0;
    ModeleSelectionne = i;
    TableModeles[i].taille = TailleModele(TableModeles[i]);
    return 1;
}

void ChoisitModele(const char* nom) {
    if (TrouveModele(nom) < 0) {
        BoiteMessageF("Error in ChoisitModele", BOITE_OK, "Model %s not found", nom);
        return;
    }
    ModeleSelectionne = TrouveModele(nom);
}

void AjouteParametre(ModeleParametres& modele, const char* nom, int genre, int taille, const char* defaut) {
    if (!nom || !nom[0]) return;
    int n = modele.nbParametres < 0 ? 0 : modele.nbParametres;
    if (n >= NB_PARAMETRES_MAX) return;
    // Names are compared as stored, that is cut to the field.
    char coupe[TAILLE_NOM_PARAMETRE];
    CopieBornee(coupe, nom);
    int i = 0;
    while (i < n && strcmp(modele.noms[i], coupe) != 0) ++i;
    CopieBornee(modele.noms[i], coupe);
    CopieBornee(modele.defauts[i], defaut ? defaut : "");
    modele.genres[i] = genre;
    modele.tailles[i] = TailleParametreBornee(taille);
    if (i == n) modele.nbParametres = n + 1;
    modele.taille = TailleModele(modele);
}
