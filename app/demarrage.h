// The program's entry: defaults, the project, then batch mode or the window.
#pragma once
#include <cstddef>

enum ModeDemarrage { MODE_FENETRE = 0, MODE_LOT = 1 };

// Works out the project file and the mode from the command line (the text
// behind the program's name).
ModeDemarrage AnalyseLigneCommande(const char* ligne, char* projet, size_t taille);

// Batch mode: splits the chain at each ':' outside double quotes and hands
// every link, with its own leading '-', to ExecuteConv.
void ExecuteChaineLot(const char* ligne);

// The whole start sequence; gives the process's exit code (0 on every path).
int Demarre(const char* ligne, const char* argv0);
