#include "core/elements.h"

#include "core/arbre.h"
#include "platform/texte.h"

#include <cstdio>
#include <cstring>

const char* const TextesTypes[NB_TYPES_ELEMENT] = {
    "aucun", "carte", "(sprite)", "tileset", "bitmap 8 bits", "bitmap 16 bits", "palette", "liste",
};

ElementProjet Elements[NB_ELEMENTS_MAX];
int NbElements = 0;
char DossierDefaut[NB_DOSSIERS_DEFAUT][TAILLE_DOSSIER_DEFAUT];

ElementProjet NouvelElement(uint32_t type, const char* nom, const char* fichier, const char* fichierBase) {
    ElementProjet e{};
    e.type = type;
    CopieBornee(e.nom, nom);
    CopieBornee(e.fichier, fichier);
    CopieBornee(e.fichierBase, fichierBase);
    return e;
}

namespace {

bool MemeNomEtType(const ElementProjet& a, const ElementProjet& b) {
    return TypeDe(a) == TypeDe(b) && strcmp(a.nom, b.nom) == 0;
}

// The same element again: same name, type and file, and the same folder when
// the new row names one.
bool MemeElement(const ElementProjet& existant, const ElementProjet& nouveau) {
    return MemeNomEtType(existant, nouveau) && strcmp(existant.fichier, nouveau.fichier) == 0 &&
           (!EstRange(nouveau) || strcmp(existant.dossier, nouveau.dossier) == 0);
}

} // namespace

void NomUnique(ElementProjet& ligne, bool memeFichierCompte) {
    // Digits at the end of the name, eight at most, give the first number.
    char base[TAILLE_NOM];
    CopieBornee(base, ligne.nom);
    size_t fin = strlen(base);
    size_t debutChiffres = fin;
    while (debutChiffres > 0 && fin - debutChiffres < 8 && base[debutChiffres - 1] >= '0' &&
           base[debutChiffres - 1] <= '9')
        --debutChiffres;
    long numero = 0;
    for (size_t i = debutChiffres; i < fin; ++i) numero = numero * 10 + (base[i] - '0');
    base[debutChiffres] = 0;
    if (numero == 0) numero = 2;

    char candidat[TAILLE_NOM];
    CopieBornee(candidat, ligne.nom);
    for (;;) {
        int trouve = -1;
        for (int i = 0; i < NbElements; ++i)
            if (TypeDe(Elements[i]) == TypeDe(ligne) && strcmp(Elements[i].nom, candidat) == 0) {
                trouve = i;
                break;
            }
        if (trouve < 0) break;
        if (memeFichierCompte && strcmp(Elements[trouve].fichier, ligne.fichier) == 0) break;

        char chiffres[16];
        int nChiffres = FormateBorne(chiffres, sizeof chiffres, "%ld", numero);
        size_t garde = strlen(base);
        if (garde + nChiffres >= (size_t)LONGUEUR_NOM_MAX) garde = LONGUEUR_NOM_MAX - nChiffres;
        CopieBorneeN(candidat, sizeof candidat, base, garde);
        AjouteBorne(candidat, chiffres);
        ++numero;
    }
    CopieBornee(ligne.nom, candidat);
}

int AjouteElement(ElementProjet ligne) {
    ligne.arbreItem = 0;
    for (int passe = 0;; ++passe) {
        bool memeNom = false;
        int meme = -1;
        for (int i = 0; i < NbElements; ++i) {
            if (!MemeNomEtType(Elements[i], ligne)) continue;
            memeNom = true;
            if (MemeElement(Elements[i], ligne)) {
                meme = i;
                break;
            }
        }
        if (meme >= 0) {
            // Moves to the end with all its old fields.
            ligne = Elements[meme];
            ligne.arbreItem = 0;
            SupprimeElement(meme);
            break;
        }
        if (!memeNom) break;
        NomUnique(ligne, true);
        if (passe == 1) break; // a second clash is renamed once more, with no further pass
    }
    if (NbElements >= NB_ELEMENTS_MAX) return -1;

    uint32_t type = TypeDe(ligne);
    if (type < (uint32_t)NB_DOSSIERS_DEFAUT && DossierDefaut[type][0] && !EstRange(ligne)) {
        ligne.type |= ELEMENT_RANGE;
        CopieBornee(ligne.dossier, DossierDefaut[type]);
    }
    int index = NbElements;
    Elements[index] = ligne;
    ++NbElements;
    InsereDansArbre(index);
    return index;
}

int AjouteElementBrut(const ElementProjet& ligne) {
    if (NbElements >= NB_ELEMENTS_MAX) return -1;
    Elements[NbElements] = ligne;
    return NbElements++;
}

void SupprimeElement(int index) {
    if (index < 0 || index >= NbElements) return;
    RetireDeArbre(index);
    memmove(&Elements[index], &Elements[index + 1], sizeof(ElementProjet) * (size_t)(NbElements - index - 1));
    --NbElements;
}

void SupprimeDossier(int index) {
    if (index < 0 || index >= NbElements) return;
    // Mark the folder and every folder inside it, at any depth. Marking by
    // rows, not by recursion, also ends on folders that hold each other.
    bool marque[NB_ELEMENTS_MAX] = {};
    marque[index] = true;
    for (bool ajoute = true; ajoute;) {
        ajoute = false;
        for (int i = 0; i < NbElements; ++i) {
            if (marque[i] || !EstDossier(Elements[i]) || !EstRange(Elements[i])) continue;
            for (int j = 0; j < NbElements; ++j)
                if (marque[j] && strcmp(Elements[i].dossier, Elements[j].nom) == 0) {
                    marque[i] = ajoute = true;
                    break;
                }
        }
    }
    // The folder's node goes with every node under it: the rows that had one
    // there lose their id now, so that no id of a deleted node is used again.
    RetireDeArbre(index);
    // Elements inside fall back to the root of their type.
    for (int i = 0; i < NbElements; ++i) {
        if (!EstRange(Elements[i])) continue;
        for (int j = 0; j < NbElements; ++j)
            if (marque[j] && strcmp(Elements[i].dossier, Elements[j].nom) == 0) {
                Elements[i].arbreItem = 0;
                if (!marque[i]) {
                    Elements[i].type &= ~ELEMENT_RANGE;
                    Elements[i].dossier[0] = 0;
                }
                break;
            }
    }
    for (int i = NbElements - 1; i >= 0; --i)
        if (marque[i]) SupprimeElement(i);
}

int TrouveElement(uint32_t type, const char* nom) {
    for (int i = 0; i < NbElements; ++i)
        if (TypeDe(Elements[i]) == type && strcmp(Elements[i].nom, nom) == 0) return i;
    return -1;
}

int NiemeElement(uint32_t type, int n) {
    for (int i = 0; i < NbElements; ++i)
        if (TypeDe(Elements[i]) == type && --n == 0) return i;
    return NbElements;
}

int NiemeCarteOuListe(int n) {
    for (int i = 0; i < NbElements; ++i) {
        uint32_t t = TypeDe(Elements[i]);
        if ((t == TYPE_CARTE || t == TYPE_LISTE) && --n == 0) return i;
    }
    return NbElements;
}
