// The main script's hooks and the Procedures menu.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

// Runs the hook of that label in ScriptPrincipal ("onstart", "onquit") and
// gives ResultatScript; a missing file or label gives 1.
int ExecuteEvenement(const char* etiquette);
// "onopen <nom>" and "onsave <nom>" for an element of the editor.
int EvenementOuverture(const char* nom);
int EvenementSauvegarde(const char* nom);

constexpr int COMMANDE_PROCEDURE_PREMIERE = 16384; // 0x4000
constexpr int COMMANDE_PROCEDURE_VIDE = 16383;     // a disabled placeholder

struct ElementMenu {
    std::string texte;
    int commande;
    bool actif;
};

// The Procedures menu of a script: one item for each label that begins with
// '_', in file order, numbered from 16384; placeholders when the path is
// empty ("(No script specified)"), the file cannot be opened ("(No script)")
// or it has no such label ("(None)"). Gives the number of procedures.
int ConstruitMenuProcedures(const char* chemin, std::vector<ElementMenu>& menu);

// The parameter script of an element's file: niveau.map.c gives
// niveau.map.spt, niveau.c gives niveau.c.spt.
void NomScriptParams(const char* fichier, char* sortie, size_t taille);
