// The project tree: built from the element table at any time, never stored.
// The tree itself is behind ArbreProjet, a plain struct of operations that the
// window layer fills; with no tree (batch mode, a project being loaded) every
// operation here only keeps the table's node ids at 0.
#pragma once
#include "core/elements.h"

#include <cstdint>

using NoeudArbre = uint32_t; // 0: no node, or the tree's top level as a parent

struct OperationsArbre {
    // Inserts a node under parent (0: top level) right after the sibling
    // precedent (0: as the first child). Gives its id, never 0 on success.
    NoeudArbre (*insere)(NoeudArbre parent, NoeudArbre precedent, const char* texte);
    // Deletes a node with all the nodes under it.
    void (*supprime)(NoeudArbre noeud);
    // Deletes every node.
    void (*vide)();
    void (*selectionne)(NoeudArbre noeud);
    // Stops (0) or resumes (1) redrawing.
    void (*redessine)(int actif);
};

// The tree in use, or null when there is none.
extern const OperationsArbre* ArbreProjet;
// Raised while ReconstruitArbre runs: selection changes of the tree do nothing.
extern bool ArbreEnReconstruction;

// The fixed roots of the tree. A root is known by the name stored in a row's
// `dossier` and by the name of the "Default folder for..." menu.
struct RacineArbre {
    const char* nomDossier;
    const char* nomMenu;
    const char* texte;      // label of the node; null for the top level
    int parent;             // row of the parent root
    int type;               // element type held, or -1
    NoeudArbre noeud;       // id of its node, 0 when there is none
};
constexpr int NB_RACINES = 8;
enum {
    RACINE_HAUT = 0,
    RACINE_MOSAIQUES,
    RACINE_CARTES,
    RACINE_PALETTES,
    RACINE_BITMAPS,
    RACINE_BITMAPS8,
    RACINE_BITMAPS16,
    RACINE_LISTES,
};
extern RacineArbre RacinesArbre[NB_RACINES];

// Deletes every node, creates the roots, inserts all rows whose parent can be
// found (folders listed after their contents included), selects "Tilesets".
void ReconstruitArbre();
// Inserts one row under its parent, in row order among its siblings. A row
// whose folder has no node yet is left out for now.
void InsereDansArbre(int index);
// Deletes the row's node and keeps the row.
void RetireDeArbre(int index);
