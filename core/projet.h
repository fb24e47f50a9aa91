// The project file (".tsl"): a text file of three sections. `infos` is written
// anew at each save from the settings; `fichiers` is the element table;
// `données` belongs to the user, is run at each load and written back byte for
// byte. An older binary form is still read.
#pragma once
#include <cstddef>
#include <cstdio>

constexpr const char* NOM_PROJET_DEFAUT = "projet.tsl";
constexpr const char* ENTETE_PROJET = "#Fichier de projet Tessellarium\n";
constexpr size_t TAILLE_DONNEES_MAX = 1000000;
constexpr int LONGUEUR_LIGNE_PROJET = 2047;

// The raw text of the `données` section as read, or null when the project had
// none. Its first TailleDonneesProjet bytes go back at the next save.
extern char* DonneesProjet;
extern size_t TailleDonneesProjet;

// A project that did not fit this program's tables when it was read (more
// than 1000 rows, a `données` section longer than its buffer, a line or a
// field cut): `raison` says which limit, and the file in `chemin` is never
// written over, so that nothing of it is lost. Empty after a load that fit.
struct ProjetIncomplet {
    char raison[200];
    char chemin[1000];
};
extern ProjetIncomplet ProjetTronque;

void ChargeProjet(const char* chemin);
// Writes the project. An empty path first asks for a name. A file that holds
// the very bytes already is not written again (its time stays), and a file
// that was read cut short is not written over (ProjetTronque). Gives 1 when
// the file holds the project, 0 when it was not written (silently: the
// window, which would lose the user's work, says so).
int SauveProjet(const char* chemin);
// The save dialog for a project; sortie stays empty when cancelled.
void ChoisitNomProjet(char* sortie, size_t taille);
// Makes the project's path full, stores it in CheminProjet, and makes its
// folder the working directory.
void DefinitProjet(const char* chemin);
// Opens the file and reads up to the section opening of that name (case
// folded); gives the file positioned on the line behind it, or null.
FILE* TrouveSection(const char* chemin, const char* nom);
// The older binary form. ChargeAncienProjet gives 1 on success.
int ChargeAncienProjet(const char* chemin);
void ConvertitAncienProjet(const char* chemin);

// Reads one line of at most taille - 1 bytes, without its line end ("\n" or
// "\r\n"). A longer line goes on as the next one. Gives 0 at the end of the
// file, 2 for a line cut at the limit, else 1.
int LitLigneTexte(FILE* fichier, char* ligne, size_t taille);
