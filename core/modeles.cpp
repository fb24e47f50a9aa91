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
    for (int i = 0; i < n; ++i) taille += modele.tailles[i];
    return taille;
}
