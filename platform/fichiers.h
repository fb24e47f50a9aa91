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
// The first extension of the list (".png"...) with which chemin names an
// existing file: each as written first, then each in any letter case
// ("Level.PNG"). Gives 1 with the path in sortie, or 0.
int TrouveExtension(const char* chemin, const char* const* extensions, int nombre, char* sortie, size_t taille);
// True when both paths name one file (links followed), or, for files yet to
// be made, the same full path.
bool MemeFichier(const char* a, const char* b);
// True when the file holds exactly these bytes.
bool FichierEgal(const char* chemin, const char* octets, size_t taille);
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

// A file written to a temporary file in the target's folder, which replaces
// the target only once every byte has been written: a full disk, a crash or a
// kill during the writing leaves the old file whole. Where the file system
// has them, the temporary file is anonymous (O_TMPFILE) and vanishes with the
// process whatever kills it; elsewhere it is named "<target>.XXXXXX" and
// removed on failure and on SIGINT, SIGTERM and SIGHUP. A target that is a
// symbolic link is written through to the file it names.
struct EcritureSure {
    FILE* fichier = nullptr;
    int descripteur = -1;       // kept open until the file is in place
    bool anonyme = false;       // no name yet: O_TMPFILE
    bool acheve = false;        // every byte has reached the file
    char temporaire[4096] = ""; // the temporary name, when it has one
    char cible[4096] = "";      // the target, links followed
    int erreur = 0;             // the system's reason for a failure (errno), or 0
};
// Gives the stream to write to, or null (erreur set) when the folder cannot
// take the file.
FILE* CommenceEcritureSure(EcritureSure& ecriture, const char* chemin);
// Checks that every byte reached the file, without putting it in place yet.
// Gives 1; on failure 0, with erreur set and the new file dropped.
int AcheveEcritureSure(EcritureSure& ecriture);
// Puts files that AcheveEcritureSure completed in place together: every target
// gets its new file, or, on a failure, none does and no temporary file stays.
// A process of its own makes the swap, so that it ends whole even when this
// one is killed in the middle; SIGINT, SIGTERM and SIGHUP wait for its end.
// Sets of up to 8 files are undone whole when a late rename fails. Gives 1 on
// success; on failure 0, with the failing one's index in *echec and its
// erreur set.
int PlaceEcrituresSures(EcritureSure* const* ecritures, int nombre, int* echec = nullptr);
// AcheveEcritureSure, then PlaceEcrituresSures of this one file. Gives 1 on
// success; on failure the target is as it was.
int TermineEcritureSure(EcritureSure& ecriture);
// Drops what was written; the target is as it was.
void AbandonneEcritureSure(EcritureSure& ecriture);

// For tests: streams of CommenceEcritureSure refuse every byte past this
// many (a full disk); below 0, never.
extern long long OctetsAvantEchecEcriture;
// For tests: false makes every writing take the named temporary file, as on a
// file system without anonymous ones.
extern bool TemporairesAnonymes;
// For the fuzz targets, where a fork at every write costs nine runs in ten:
// false makes the swap in this process, which a kill may then cut.
extern bool BasculeSeparee;

// ---- Runs that share one project ---------------------------------------------------------

// An advisory lock (flock) on the folder that holds the file, links followed,
// so that it holds while each save replaces the file itself. Waits at most
// delai milliseconds. Gives the descriptor that holds it (kept until
// LibereVerrou or the end of the process), -1 when another holder kept it
// past the delay, -2 when the folder takes no lock (nothing to wait for).
int VerrouilleDossierDe(const char* chemin, int delai);
void LibereVerrou(int descripteur);
