// Test support: a recording platform and an in-memory project tree.
#pragma once
#include "core/arbre.h"
#include "core/elements.h"
#include "platform/plateforme.h"

#include <deque>
#include <string>
#include <vector>

// The row placed in a folder (ELEMENT_RANGE).
ElementProjet DansDossier(ElementProjet ligne, const char* dossier);
// A folder row, inside another folder when dans is given.
ElementProjet NouveauDossier(const char* nom, const char* dans = nullptr);

// While it lives, message boxes are recorded as "[title] text" instead of
// printed, and questions take the scripted answers in order (then the first
// button, as headless runs do). File dialogs answer with the scripted paths
// in order, then "cancelled".
struct EnregistreurMessages {
    EnregistreurMessages();
    ~EnregistreurMessages();
    EnregistreurMessages(const EnregistreurMessages&) = delete;
    EnregistreurMessages& operator=(const EnregistreurMessages&) = delete;

    std::vector<std::string> messages;  // "[title] text", one per box
    std::vector<int> styles;            // the style of each box
    std::deque<int> reponses;           // answers to give, in order
    std::deque<std::string> fichiers;   // paths the file dialogs give, in order
    std::vector<std::string> dialogues; // "title|initial folder" of each file dialog
    int attente = 0;                    // last state of the busy dialog
    int titreAttente = 0;               // last state of "Please wait..." on the strip
};

// An in-memory tree behind ArbreProjet while it lives.
struct ArbreMemoire {
    ArbreMemoire();
    ~ArbreMemoire();
    ArbreMemoire(const ArbreMemoire&) = delete;
    ArbreMemoire& operator=(const ArbreMemoire&) = delete;

    struct Noeud {
        NoeudArbre id;
        NoeudArbre parent;
        std::string texte;
        std::vector<NoeudArbre> enfants;
    };
    std::vector<Noeud> noeuds; // index = id - 1; deleted nodes have id 0
    std::vector<NoeudArbre> racine; // top-level children
    NoeudArbre selection = 0;
    // Deletions asked for a node that no longer exists: a real tree control may
    // have given that id to another node since.
    int suppressionsPerdues = 0;

    const Noeud* Trouve(NoeudArbre id) const;
    // The tree as text, one node a line, two blanks of indent a level.
    std::string Dessin() const;
    // Number of live nodes.
    int Compte() const;
};

// A fresh folder under the system's temporary folder, made the working
// directory while it lives; the project state (table, settings, models, the
// `données` text, CheminProjet) is reset on entry. The folder and what is in
// it are removed at the end.
struct DossierTemporaire {
    DossierTemporaire();
    ~DossierTemporaire();
    DossierTemporaire(const DossierTemporaire&) = delete;
    DossierTemporaire& operator=(const DossierTemporaire&) = delete;

    std::string chemin; // full path, no trailing separator
    std::string avant;  // working directory to go back to

    // Full path of a file inside.
    std::string Dans(const std::string& nom) const { return chemin + "/" + nom; }
};

// Whole-file helpers for byte-exact checks.
std::string LitFichier(const std::string& chemin);
void EcritFichier(const std::string& chemin, const std::string& contenu);
