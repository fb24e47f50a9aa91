// The program's entry: defaults, the project, then batch mode or the window.
#pragma once
#include <cstddef>
#include <string>

enum ModeDemarrage { MODE_FENETRE = 0, MODE_LOT = 1 };

// Works out the project file and the mode from the command line (the text
// behind the program's name).
ModeDemarrage AnalyseLigneCommande(const char* ligne, char* projet, size_t taille);

// Batch mode: splits the chain at each ':' outside double quotes and hands
// every link, with its own leading '-', to ExecuteConv.
void ExecuteChaineLot(const char* ligne);

// The whole start sequence. strict: a batch run for Makefiles, whose failures
// each get a line naming their file and make the exit code 1. Gives the
// process's exit code: 0, or 1 for a strict run in which something failed.
int Demarre(const char* ligne, const char* argv0, bool strict = false);

// How long a batch run waits for another one that holds its project, in
// milliseconds (a minute; tests shorten it).
extern int DelaiVerrouProjet;

// The options, arguments that begin with "--" wherever they stand; the other
// arguments, joined by single blanks, are the command line.
struct OptionsProgramme {
    bool strict = false;
    bool aide = false;
    bool version = false;
    const char* inconnue = nullptr; // the first argument that is no option
};
OptionsProgramme LitArguments(int argc, char** argv, std::string& ligne);

// main's whole work: the options, then the start sequence. Gives the exit
// code: that of Demarre, 0 after --help or --version, 2 for a command line
// refused; those last two touch no file.
int Principal(int argc, char** argv);
