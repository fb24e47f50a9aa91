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
