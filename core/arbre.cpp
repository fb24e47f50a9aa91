#include "core/arbre.h"

#include "core/chemins.h"

#include <cstring>

const OperationsArbre* ArbreProjet = nullptr;
bool ArbreEnReconstruction = false;

RacineArbre RacinesArbre[NB_RACINES] = {
    {"racine", "root", nullptr, -1, -1, 0},
    {"mosaiques", "tilesets", "Tilesets", RACINE_HAUT, TYPE_MOSAIQUE, 0},
    {"cartes", "maps", "Maps", RACINE_HAUT, TYPE_CARTE, 0},
    {"palettes", "palettes", "Palettes", RACINE_HAUT, TYPE_PALETTE, 0},
    {"bitmaps", "bitmaps", "Bitmaps", RACINE_HAUT, -1, 0},
    {"bitmaps8", "bitmaps8", "8 bits", RACINE_BITMAPS, TYPE_BITMAP8, 0},
    {"bitmaps16", "bitmaps16", "16 bits", RACINE_BITMAPS, TYPE_BITMAP16, 0},
    {"listes", "liste", "Lists", RACINE_HAUT, TYPE_LISTE, 0},
};

namespace {

// The roots in the order of the tree: Tilesets, Maps, Lists, Palettes, Bitmaps,
// then "8 bits" and "16 bits" under Bitmaps. Not the order of RacinesArbre.
const int OrdreRacines[] = {RACINE_MOSAIQUES, RACINE_CARTES,   RACINE_LISTES,   RACINE_PALETTES,
                            RACINE_BITMAPS,   RACINE_BITMAPS8, RACINE_BITMAPS16};

// Where a row hangs: a root, or a folder by name.
struct Parent {
    int racine;          // row of RacinesArbre, or -1 for a folder
    const char* dossier; // the folder's name when racine is -1
};

Parent ParentDe(const ElementProjet& e) {
    if (!EstRange(e)) {
        if (EstDossier(e)) return {RACINE_HAUT, nullptr};
        for (int r = 1; r < NB_RACINES; ++r)
            if (RacinesArbre[r].type == (int)TypeDe(e)) return {r, nullptr};
        // No root holds "aucun" or "(sprite)": such rows, which only a
        // hand-made project holds, stand at the top level so they stay visible.
        return {RACINE_HAUT, nullptr};
    }
    for (int r = 0; r < NB_RACINES; ++r)
        if (strcmp(e.dossier, RacinesArbre[r].nomDossier) == 0) return {r, nullptr};
    return {-1, e.dossier};
}

bool MemeParent(const Parent& a, const Parent& b) {
    if (a.racine != b.racine) return false;
    return a.racine >= 0 || strcmp(a.dossier, b.dossier) == 0;
}

// The node under which the row goes, 0 for the top level; -1 when its folder
// has no node (yet).
int64_t NoeudParent(const Parent& p) {
    if (p.racine >= 0) return RacinesArbre[p.racine].noeud;
    for (int i = 0; i < NbElements; ++i)
        if (EstDossier(Elements[i]) && strcmp(Elements[i].nom, p.dossier) == 0)
            return Elements[i].arbreItem ? (int64_t)Elements[i].arbreItem : -1;
    return -1;
}

// The node the row's node goes behind: its nearest sibling row before it with
// a node; failing that, behind the fixed roots of the same parent.
NoeudArbre Precedent(int index, const Parent& p) {
    for (int j = index - 1; j >= 0; --j)
        if (Elements[j].arbreItem && MemeParent(ParentDe(Elements[j]), p)) return Elements[j].arbreItem;
    if (p.racine < 0) return 0;
    NoeudArbre dernier = 0;
    for (int r : OrdreRacines)
        if (RacinesArbre[r].parent == p.racine && RacinesArbre[r].noeud) dernier = RacinesArbre[r].noeud;
    return dernier;
}

} // namespace

void InsereDansArbre(int index) {
    if (!ArbreProjet || index < 0 || index >= NbElements) return;
    ElementProjet& e = Elements[index];
    Parent p = ParentDe(e);
    int64_t parent = NoeudParent(p);
    if (parent < 0) return;
    e.arbreItem = ArbreProjet->insere((NoeudArbre)parent, Precedent(index, p), DernierComposant(e.nom));
}

void RetireDeArbre(int index) {
    if (index < 0 || index >= NbElements) return;
    ElementProjet& e = Elements[index];
    if (ArbreProjet && e.arbreItem) ArbreProjet->supprime(e.arbreItem);
    e.arbreItem = 0;
}

void ReconstruitArbre() {
    for (int i = 0; i < NbElements; ++i) Elements[i].arbreItem = 0;
    for (RacineArbre& r : RacinesArbre) r.noeud = 0;
    if (!ArbreProjet) return;

    ArbreEnReconstruction = true;
    ArbreProjet->redessine(0);
    ArbreProjet->vide();
    NoeudArbre precedent[NB_RACINES] = {};
    for (int r : OrdreRacines) {
        RacineArbre& racine = RacinesArbre[r];
        NoeudArbre parent = RacinesArbre[racine.parent].noeud;
        racine.noeud = ArbreProjet->insere(parent, precedent[racine.parent], racine.texte);
        precedent[racine.parent] = racine.noeud;
    }
    // Folders may stand after their contents: pass again while a pass inserts.
    for (bool insere = true; insere;) {
        insere = false;
        for (int i = 0; i < NbElements; ++i) {
            if (Elements[i].arbreItem) continue;
            InsereDansArbre(i);
            if (Elements[i].arbreItem) insere = true;
        }
    }
    ArbreEnReconstruction = false;
    ArbreProjet->redessine(1);
    ArbreProjet->selectionne(RacinesArbre[RACINE_MOSAIQUES].noeud);
}
