// What the interpreter reaches in subsystems built above it: the wizard form
// and the main window (window layer), formats, colour tables, conv. Each is a
// function pointer with a harmless default; the owner sets it at start-up.
#pragma once
#include <cstdio>

// Controls of the wizard form that statements reach (kinds 1 to 4).
enum ControleFormulaire {
    CONTROLE_TEXTE_01 = 1, // source file
    CONTROLE_TEXTE_02,     // destination, tileset file or width
    CONTROLE_TEXTE_03,     // palette file or height
    CONTROLE_TEXTE_04,     // map file
    CONTROLE_TEXTE_05,     // number of colours
    CONTROLE_CHECK_PALETTE,
    CONTROLE_CHECK_MAP,
    CONTROLE_CHECK_TILESET,
    CONTROLE_CHECK_OPTIMISE,
    CONTROLE_CHECK_16, // no form has it
    CONTROLE_RADIO_TEXTE,
    CONTROLE_RADIO_ROTATION,
    CONTROLE_COMBO_PALETTE,
    CONTROLE_COMBO_TILESET,
    CONTROLE_COMBO_TAILLE,
    CONTROLE_COMBO_TILES,
    CONTROLE_COMBO_MAP,
};

struct OperationsFormulaire {
    // Selects a root of the project tree (RACINE_...) and shows its form.
    void (*selectionneRacine)(int racine);
    // 1 when the form on show has that control.
    int (*controlePresent)(int controle);
    void (*metTexte)(int controle, const char* texte);
    // Sets a check box or radio button, then runs the form's dependency rule.
    void (*metCoche)(int controle, int etat);
    // Selects the entry of exactly that text; 0 when there is none.
    int (*choisitDansCombo)(int controle, const char* texte);
    // The form's main button, as a click.
    void (*ok)();
    // Hides (0) or shows the main window.
    void (*visible)(int montre);
};
// Default: no window, no form: every control is absent.
extern OperationsFormulaire CrochetsFormulaire;
extern const OperationsFormulaire FormulaireAbsent;

struct OperationsScript {
    // Reads a format definition block from the script file, for that name.
    // Default: passes over the block.
    void (*definitFormat)(FILE* fichier, const char* nom);
    // Selects a format by exact name. Default: nothing.
    void (*choisitFormat)(const char* nom);
    // Rebuilds the colour tables after a colour setting. Default: nothing.
    void (*reconstruitTablesCouleur)();
    // The conv command with the rest of its line. Default: nothing.
    void (*conv)(const char* texte);
};
extern OperationsScript CrochetsScript;
extern const OperationsScript CrochetsScriptParDefaut;

// Reads over a format definition block: sections open with "name {" and
// close with "}", and a "}" outside a section ends the block, as does the end
// of the file.
void PasseDefinitionFormat(FILE* fichier);
