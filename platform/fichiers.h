// Files, folders and paths as the system sees them.
//
// Paths in project data may use '\' (projects made on Windows) or '/'; both
// separate components everywhere in the system. Only the calls below turn a
// path into one the file system in use understands.
#pragma once
#include <cstddef>
#include <cstdio>

inline bool EstSeparateur(char c) { return c == '\\' || c == '/'; }

// The path's last separator, or null.
const char* DernierSeparateur(const char* chemin);

// fopen on a system path (modes as fopen). Every file the system opens goes
// through here.
FILE* OuvreFichier(const char* chemin, const char* mode);
bool FichierExiste(const char* chemin);
// Copies a file, overwriting the target. Gives 1 on success.
int CopieFichier(const char* source, const char* cible);
// Removes a file. Gives 1 on success.
int SupprimeFichier(const char* chemin);

// The working directory, without a trailing separator. Gives 0 when it cannot
// be had or does not fit.
int RepertoireCourant(char* sortie, size_t taille);
// Makes a folder the working directory. Gives 1 on success.
int ChangeRepertoire(const char* chemin);

// Makes chemin a full path: relative paths are taken from the working
// directory, "." and ".." components are resolved. Gives 0 when the result does
// not fit in taille.
int CheminComplet(const char* chemin, char* sortie, size_t taille);

// Full path of the program's own file, or empty.
void CheminExecutable(const char* argv0, char* sortie, size_t taille);

// ---- Writing whole or not at all ---------------------------------------------------------

// A file written through a temporary file in the same folder, which replaces
// the target only once every byte has been written: a full disk, a crash or a
// kill during the writing leaves the old file whole.
struct EcritureSure {
    FILE* fichier = nullptr;
    char temporaire[4096] = "";
    char cible[4096] = "";
};
// Gives the stream to write to, or null when the folder cannot take the file.
FILE* CommenceEcritureSure(EcritureSure& ecriture, const char* chemin);
// Closes the stream and puts the new file in place. Gives 1 on success; on
// failure the temporary file is removed and the target is as it was.
int TermineEcritureSure(EcritureSure& ecriture);
// Drops what was written; the target is as it was.
void AbandonneEcritureSure(EcritureSure& ecriture);

// For tests: streams of CommenceEcritureSure refuse every byte past this
// many (a full disk); below 0, never.
extern long long OctetsAvantEchecEcriture;
