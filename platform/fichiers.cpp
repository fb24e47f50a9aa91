#include "platform/fichiers.h"

#include "platform/texte.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <strings.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The file system's own spelling of a path.
std::string CheminSysteme(const char* chemin) {
    std::string s = chemin ? chemin : "";
#ifndef _WIN32
    for (char& c : s)
        if (c == '\\') c = '/';
#endif
    return s;
}

} // namespace

const char* DernierSeparateur(const char* chemin) {
    const char* dernier = nullptr;
    for (const char* p = chemin; p && *p; ++p)
        if (EstSeparateur(*p)) dernier = p;
    return dernier;
}

FILE* OuvreFichier(const char* chemin, const char* mode) {
    if (!chemin || !*chemin) return nullptr;
    return fopen(CheminSysteme(chemin).c_str(), mode);
}

bool FichierExiste(const char* chemin) {
    if (!chemin || !*chemin) return false;
    return access(CheminSysteme(chemin).c_str(), F_OK) == 0;
}

int TrouveExtension(const char* chemin, const char* const* extensions, int nombre, char* sortie, size_t taille) {
    if (!chemin || !*chemin || !sortie || taille == 0) return 0;
    const std::string base = chemin;
    for (int i = 0; i < nombre; ++i)
        if (FichierExiste((base + extensions[i]).c_str())) {
            CopieBornee(sortie, taille, (base + extensions[i]).c_str());
            return 1;
        }
    // Then in any case: the folder is read once.
    const char* separateur = DernierSeparateur(chemin);
    const std::string dossier = separateur ? base.substr(0, (size_t)(separateur - chemin) + 1) : std::string();
    const std::string nom = separateur ? std::string(separateur + 1) : base;
    DIR* d = opendir(dossier.empty() ? "." : CheminSysteme(dossier.c_str()).c_str());
    if (!d) return 0;
    int meilleure = nombre;
    std::string trouve;
    while (const dirent* entree = readdir(d)) {
        const char* n = entree->d_name;
        if (strncmp(n, nom.c_str(), nom.size()) != 0) continue;
        for (int i = 0; i < meilleure; ++i)
            if (strcasecmp(n + nom.size(), extensions[i]) == 0) {
                meilleure = i;
                trouve = n;
            }
    }
    closedir(d);
    if (meilleure == nombre) return 0;
    CopieBornee(sortie, taille, (dossier + trouve).c_str());
    return 1;
}

bool MemeFichier(const char* a, const char* b) {
    if (!a || !b) return false;
    struct stat ea, eb;
    const bool ia = stat(CheminSysteme(a).c_str(), &ea) == 0, ib = stat(CheminSysteme(b).c_str(), &eb) == 0;
    if (ia || ib) return ia && ib && ea.st_dev == eb.st_dev && ea.st_ino == eb.st_ino;
    char ca[4096], cb[4096];
    return CheminComplet(a, ca, sizeof ca) && CheminComplet(b, cb, sizeof cb) && strcmp(ca, cb) == 0;
}

bool FichierEgal(const char* chemin, const char* octets, size_t taille) {
    FILE* f = OuvreFichier(chemin, "rb");
    if (!f) return false;
    bool egal = true;
    char tampon[65536];
    size_t vus = 0;
    for (size_t lus; egal && (lus = fread(tampon, 1, sizeof tampon, f)) > 0; vus += lus)
        egal = vus + lus <= taille && memcmp(tampon, octets + vus, lus) == 0;
    egal = egal && !ferror(f) && vus == taille;
    fclose(f);
    return egal;
}

int CopieFichier(const char* source, const char* cible) {
    FILE* entree = OuvreFichier(source, "rb");
    if (!entree) return 0;
    // Written whole or not at all, as every other file.
    EcritureSure ecriture;
    FILE* sortie = CommenceEcritureSure(ecriture, cible);
    if (!sortie) {
        fclose(entree);
        return 0;
    }
    char tampon[65536];
    size_t lus;
    bool bon = true;
    while ((lus = fread(tampon, 1, sizeof tampon, entree)) > 0)
        if (fwrite(tampon, 1, lus, sortie) != lus) {
            bon = false;
            break;
        }
    if (ferror(entree)) bon = false;
    fclose(entree);
    if (!bon) {
        AbandonneEcritureSure(ecriture);
        return 0;
    }
    return TermineEcritureSure(ecriture);
}

int SupprimeFichier(const char* chemin) {
    if (!chemin || !*chemin) return 0;
    return remove(CheminSysteme(chemin).c_str()) == 0 ? 1 : 0;
}

int RepertoireCourant(char* sortie, size_t taille) {
    if (!sortie || taille == 0) return 0;
    if (!getcwd(sortie, taille)) {
        sortie[0] = 0;
        return 0;
    }
    size_t n = strlen(sortie);
    if (n > 1 && EstSeparateur(sortie[n - 1])) sortie[n - 1] = 0;
    return 1;
}

int ChangeRepertoire(const char* chemin) {
    if (!chemin || !*chemin) return 0;
    return chdir(CheminSysteme(chemin).c_str()) == 0 ? 1 : 0;
}

int CheminComplet(const char* chemin, char* sortie, size_t taille) {
    if (!sortie || taille == 0) return 0;
    sortie[0] = 0;
    std::string brut;
    bool absolu = chemin && EstSeparateur(chemin[0]);
#ifdef _WIN32
    absolu = absolu || (chemin && chemin[0] && chemin[1] == ':');
#endif
    if (!absolu) {
        char courant[4096];
        if (!RepertoireCourant(courant, sizeof courant)) return 0;
        brut = courant;
        brut += '/';
    }
    brut += chemin ? chemin : "";

    // Resolve "." and ".." component by component; keep the separator style of
    // the text the user gave.
    std::string prefixe;
    size_t i = 0;
    if (!brut.empty() && EstSeparateur(brut[0])) {
        prefixe = brut.substr(0, 1);
        i = 1;
    }
#ifdef _WIN32
    else if (brut.size() >= 2 && brut[1] == ':') {
        prefixe = brut.substr(0, 2);
        i = 2;
        if (i < brut.size() && EstSeparateur(brut[i])) prefixe += brut[i++];
    }
#endif
    std::string pile;
    std::string morceau;
    auto pousse = [&](const std::string& c, char sep) {
        if (c.empty() || c == ".") return;
        if (c == "..") {
            size_t p = pile.find_last_of("\\/");
            pile = p == std::string::npos ? std::string() : pile.substr(0, p);
            return;
        }
        if (!pile.empty()) pile += sep;
        pile += c;
    };
    char sep = '/';
    for (; i <= brut.size(); ++i) {
        if (i == brut.size() || EstSeparateur(brut[i])) {
            pousse(morceau, sep);
            if (i < brut.size()) sep = brut[i];
            morceau.clear();
        } else
            morceau += brut[i];
    }
    std::string resultat = prefixe + pile;
    if (resultat.size() + 1 > taille) return 0;
    CopieBornee(sortie, taille, resultat.c_str());
    return 1;
}

void CheminExecutable(const char* argv0, char* sortie, size_t taille) {
    if (!sortie || taille == 0) return;
    sortie[0] = 0;
#ifdef __linux__
    char lien[4096];
    ssize_t n = readlink("/proc/self/exe", lien, sizeof lien - 1);
    if (n > 0) {
        lien[n] = 0;
        CopieBornee(sortie, taille, lien);
        return;
    }
#endif
    if (argv0) CheminComplet(argv0, sortie, taille);
}

// ---- Writing whole or not at all ---------------------------------------------------------

long long OctetsAvantEchecEcriture = -1;
bool TemporairesAnonymes = true;
bool BasculeSeparee = true;

namespace {

// A stream that takes a given number of bytes, then fails as a full disk does.
struct DisqueLimite {
    int descripteur;
    long long reste;
};

ssize_t EcritLimite(void* cookie, const char* octets, size_t taille) {
    auto* d = (DisqueLimite*)cookie;
    if (d->reste <= 0) {
        errno = ENOSPC;
        return -1;
    }
    const size_t n = (long long)taille < d->reste ? taille : (size_t)d->reste;
    const ssize_t ecrits = write(d->descripteur, octets, n);
    if (ecrits > 0) d->reste -= ecrits;
    return ecrits;
}

int ChercheLimite(void* cookie, off64_t* position, int depuis) {
    const off_t r = lseek(((DisqueLimite*)cookie)->descripteur, *position, depuis);
    if (r < 0) return -1;
    *position = r;
    return 0;
}

int FermeLimite(void* cookie) {
    auto* d = (DisqueLimite*)cookie;
    const int r = close(d->descripteur);
    delete d;
    return r;
}

// Named temporary files alive now, removed by the handler of SIGINT, SIGTERM
// and SIGHUP before the signal does what it would have done.
constexpr int NB_TEMPORAIRES_NOMMES = 16;
char TemporairesNommes[NB_TEMPORAIRES_NOMMES][4096];
volatile sig_atomic_t TemporaireEnPlace[NB_TEMPORAIRES_NOMMES];
const int SignauxNettoyes[] = {SIGINT, SIGTERM, SIGHUP};

void NettoieEtRelance(int signal) {
    for (int i = 0; i < NB_TEMPORAIRES_NOMMES; ++i)
        if (TemporaireEnPlace[i]) unlink(TemporairesNommes[i]);
    ::signal(signal, SIG_DFL);
    raise(signal);
}

// Once, at the first named file: signals that would end the process with
// their default action remove the named files first. A signal the program
// ignores or handles itself is left alone.
void InstalleNettoyage() {
    static bool installe = false;
    if (installe) return;
    installe = true;
    for (int s : SignauxNettoyes) {
        struct sigaction avant;
        if (sigaction(s, nullptr, &avant) != 0 || avant.sa_handler != SIG_DFL) continue;
        struct sigaction action = {};
        action.sa_handler = NettoieEtRelance;
        sigemptyset(&action.sa_mask);
        sigaction(s, &action, nullptr);
    }
}

void InscritTemporaire(const char* chemin) {
    InstalleNettoyage();
    for (int i = 0; i < NB_TEMPORAIRES_NOMMES; ++i)
        if (!TemporaireEnPlace[i]) {
            CopieBornee(TemporairesNommes[i], chemin);
            TemporaireEnPlace[i] = 1;
            return;
        }
}

void RayeTemporaire(const char* chemin) {
    for (int i = 0; i < NB_TEMPORAIRES_NOMMES; ++i)
        if (TemporaireEnPlace[i] && strcmp(TemporairesNommes[i], chemin) == 0) TemporaireEnPlace[i] = 0;
}

// Removes the named temporary file, if any.
void SupprimeTemporaire(EcritureSure& e) {
    if (!e.temporaire[0]) return;
    unlink(e.temporaire);
    RayeTemporaire(e.temporaire);
    e.temporaire[0] = 0;
}

// The file a path finally names, following symbolic links (a link to a file
// yet to be made names that file).
std::string SuitLiens(std::string chemin) {
    for (int saut = 0; saut < 40; ++saut) {
        struct stat etat;
        if (lstat(chemin.c_str(), &etat) != 0 || !S_ISLNK(etat.st_mode)) break;
        char lien[4096];
        const ssize_t n = readlink(chemin.c_str(), lien, sizeof lien - 1);
        if (n <= 0) break;
        lien[n] = 0;
        if (lien[0] == '/') {
            chemin = lien;
        } else {
            const size_t barre = chemin.rfind('/');
            chemin = (barre == std::string::npos ? std::string() : chemin.substr(0, barre + 1)) + lien;
        }
    }
    return chemin;
}

std::string DossierDe(const std::string& chemin) {
    const size_t barre = chemin.rfind('/');
    if (barre == std::string::npos) return ".";
    return barre == 0 ? "/" : chemin.substr(0, barre);
}

// A name beside the target that no file has yet: "<target>.XXXXXX".
bool NomTemporaire(const char* cible, char* sortie, size_t taille) {
    static const char lettres[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    static uint64_t graine = (uint64_t)getpid() << 32 ^ (uint64_t)time(nullptr) ^ (uint64_t)(uintptr_t)&graine;
    for (int essai = 0; essai < 100; ++essai) {
        char suffixe[8] = ".";
        for (int i = 1; i < 7; ++i) {
            graine = graine * 6364136223846793005ull + 1442695040888963407ull;
            suffixe[i] = lettres[(graine >> 33) % (sizeof lettres - 1)];
        }
        FormateBorne(sortie, taille, "%s%s", cible, suffixe);
        struct stat etat;
        if (lstat(sortie, &etat) != 0 && errno == ENOENT) return true;
    }
    return false;
}

// Gives the new file a name of its own beside the target (the named ones
// have it already). Gives false with erreur set.
bool DonneNom(EcritureSure& e) {
    if (!e.anonyme) return true;
    char procedure[64];
    FormateBorne(procedure, sizeof procedure, "/proc/self/fd/%d", e.descripteur);
    for (int essai = 0; essai < 10; ++essai) {
        if (!NomTemporaire(e.cible, e.temporaire, sizeof e.temporaire)) break;
        if (linkat(e.descripteur, "", AT_FDCWD, e.temporaire, AT_EMPTY_PATH) == 0 ||
            linkat(AT_FDCWD, procedure, AT_FDCWD, e.temporaire, AT_SYMLINK_FOLLOW) == 0) {
            InscritTemporaire(e.temporaire);
            return true;
        }
        if (errno != EEXIST) break;
    }
    e.erreur = errno ? errno : EIO;
    e.temporaire[0] = 0;
    return false;
}

void Ferme(EcritureSure& e) {
    if (e.fichier) fclose(e.fichier); // closes the descriptor too
    e.fichier = nullptr;
    e.descripteur = -1;
}

} // namespace

FILE* CommenceEcritureSure(EcritureSure& e, const char* chemin) {
    e = EcritureSure{};
    if (!chemin || !*chemin) {
        e.erreur = ENOENT;
        return nullptr;
    }
    const std::string cible = SuitLiens(CheminSysteme(chemin));
    if (cible.size() + 8 >= sizeof e.temporaire) {
        e.erreur = ENAMETOOLONG;
        return nullptr;
    }
    CopieBornee(e.cible, cible.c_str());
    // The new file gets the target's permissions, or the usual ones for a
    // new file.
    struct stat etat;
    const bool existe = stat(e.cible, &etat) == 0;
    if (existe && S_ISDIR(etat.st_mode)) {
        e.erreur = EISDIR;
        return nullptr;
    }
    const mode_t masque = umask(0);
    umask(masque);
    const mode_t mode = existe ? etat.st_mode & 07777 : 0666 & ~masque;

    int fd = -1;
    if (TemporairesAnonymes) {
        fd = open(DossierDe(cible).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
        if (fd >= 0) {
            e.anonyme = true;
        } else if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL && errno != ENOSYS) {
            e.erreur = errno; // no folder, no right to write there, a full disk...
            return nullptr;
        }
    }
    if (fd < 0) {
        CopieBornee(e.temporaire, (cible + ".XXXXXX").c_str());
        fd = mkostemp(e.temporaire, O_CLOEXEC);
        if (fd < 0) {
            e.erreur = errno;
            e.temporaire[0] = 0;
            return nullptr;
        }
        InscritTemporaire(e.temporaire);
    }
    fchmod(fd, mode);
    e.descripteur = fd;
    if (OctetsAvantEchecEcriture >= 0) {
        cookie_io_functions_t fonctions = {nullptr, EcritLimite, ChercheLimite, FermeLimite};
        e.fichier = fopencookie(new DisqueLimite{fd, OctetsAvantEchecEcriture}, "wb", fonctions);
    } else {
        e.fichier = fdopen(fd, "wb");
    }
    if (!e.fichier) {
        e.erreur = errno;
        close(fd);
        e.descripteur = -1;
        SupprimeTemporaire(e);
        return nullptr;
    }
    return e.fichier;
}

int AcheveEcritureSure(EcritureSure& e) {
    if (!e.fichier) return 0;
    if (e.acheve) return 1;
    errno = 0;
    if (fflush(e.fichier) == 0 && !ferror(e.fichier)) {
        e.acheve = true;
        return 1;
    }
    e.erreur = errno ? errno : EIO;
    Ferme(e);
    SupprimeTemporaire(e);
    return 0;
}

namespace {

// Old files of a set kept under a second name during the swap, at most.
constexpr int NB_JEU_GARDE = 8;

// The swap: every new file gets a name beside its target, and every old file
// of a set a second name that keeps it; then each new name replaces its
// target whole. A rename that fails puts the old files back, so the set
// changes whole or not at all; the extra names go in every case. Gives the
// index of the one that failed (its erreur set), or -1.
int Bascule(EcritureSure* const* ecritures, int nombre) {
    int rate = -1;
    for (int i = 0; i < nombre && rate < 0; ++i)
        if (!DonneNom(*ecritures[i])) rate = i;
    // Fixed room: the helper process allocates nothing.
    char anciens[NB_JEU_GARDE][4096];
    for (int i = 0; i < nombre && i < NB_JEU_GARDE; ++i) {
        anciens[i][0] = 0;
        if (rate >= 0 || nombre == 1 || access(ecritures[i]->cible, F_OK) != 0) continue; // nothing to keep
        if (NomTemporaire(ecritures[i]->cible, anciens[i], sizeof anciens[i]) && link(ecritures[i]->cible, anciens[i]) != 0)
            anciens[i][0] = 0;
        // Without a second name (a file system with no links) a late failure
        // cannot be undone; the swap goes on all the same.
    }
    int places = 0;
    for (; rate < 0 && places < nombre; ++places) {
        EcritureSure& e = *ecritures[places];
        if (rename(e.temporaire, e.cible) != 0) {
            e.erreur = errno;
            rate = places;
            break;
        }
        RayeTemporaire(e.temporaire);
        e.temporaire[0] = 0;
    }
    if (rate >= 0)
        for (int i = 0; i < places && i < NB_JEU_GARDE; ++i) {
            char* ancien = anciens[i];
            if (ancien[0] ? rename(ancien, ecritures[i]->cible) == 0 : unlink(ecritures[i]->cible) == 0) ancien[0] = 0;
        }
    for (int i = 0; i < nombre; ++i) {
        EcritureSure& e = *ecritures[i];
        if (i < NB_JEU_GARDE && anciens[i][0]) unlink(anciens[i]);
        if (!e.temporaire[0]) continue;
        unlink(e.temporaire);
        RayeTemporaire(e.temporaire);
        e.temporaire[0] = 0;
    }
    return rate;
}

// The swap made by a process of its own, which finishes it even when this one
// is killed in the middle (kill -9): the set is then the old one or the new
// one, never a mix, and no name is left behind. Gives what Bascule gives, or
// -2 when no such process could be had.
int BasculeAParte(EcritureSure* const* ecritures, int nombre) {
    int tube[2];
    if (pipe2(tube, O_CLOEXEC) != 0) return -2;
    const pid_t pid = fork();
    if (pid < 0) {
        close(tube[0]);
        close(tube[1]);
        return -2;
    }
    if (pid == 0) {
        const int rate = Bascule(ecritures, nombre);
        const int compte[2] = {rate, rate >= 0 ? ecritures[rate]->erreur : 0};
        ssize_t ecrit = write(tube[1], compte, sizeof compte);
        _exit(ecrit == (ssize_t)sizeof compte ? 0 : 1);
    }
    close(tube[1]);
    int compte[2];
    size_t lus = 0;
    while (lus < sizeof compte) {
        const ssize_t n = read(tube[0], (char*)compte + lus, sizeof compte - lus);
        if (n > 0) lus += (size_t)n;
        else if (n == 0 || errno != EINTR) break;
    }
    close(tube[0]);
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (lus < sizeof compte) {
        ecritures[0]->erreur = EIO; // the process died before it could tell
        return 0;
    }
    if (compte[0] >= 0) ecritures[compte[0]]->erreur = compte[1];
    return compte[0];
}

} // namespace

int PlaceEcrituresSures(EcritureSure* const* ecritures, int nombre, int* echec) {
    int rate = -1;
    for (int i = 0; i < nombre && rate < 0; ++i)
        if (!ecritures[i]->acheve || !ecritures[i]->fichier) rate = i;
    // A named file is closed before it takes its place: the last of its
    // bytes may be refused only now. An anonymous one stays open, since its
    // descriptor is all that gives it a name.
    bool anonymes = false;
    for (int i = 0; i < nombre && rate < 0; ++i) {
        EcritureSure& e = *ecritures[i];
        anonymes = anonymes || e.anonyme;
        if (e.anonyme) continue;
        errno = 0;
        const bool ferme = fclose(e.fichier) == 0;
        e.fichier = nullptr;
        e.descripteur = -1;
        if (!ferme) {
            e.erreur = errno ? errno : EIO;
            rate = i;
        }
    }

    if (rate < 0) {
        // The signals that would end the process wait until every target has
        // its new file or none has.
        sigset_t signaux, avant;
        sigemptyset(&signaux);
        for (int s : SignauxNettoyes) sigaddset(&signaux, s);
        sigprocmask(SIG_BLOCK, &signaux, &avant);
        // One named file needs one rename, which no kill can cut in two.
        rate = BasculeSeparee && (nombre > 1 || anonymes) ? BasculeAParte(ecritures, nombre) : -2;
        if (rate == -2) rate = Bascule(ecritures, nombre);
        sigprocmask(SIG_SETMASK, &avant, nullptr);
    }
    // The swap took or removed every name; a named file that never reached
    // it goes here.
    for (int i = 0; i < nombre; ++i) {
        EcritureSure& e = *ecritures[i];
        Ferme(e);
        if (rate >= 0) SupprimeTemporaire(e);
        RayeTemporaire(e.temporaire);
        e.temporaire[0] = 0;
        e.acheve = false;
    }
    if (echec) *echec = rate;
    return rate < 0 ? 1 : 0;
}

int TermineEcritureSure(EcritureSure& e) {
    if (!AcheveEcritureSure(e)) return 0;
    EcritureSure* une = &e;
    return PlaceEcrituresSures(&une, 1);
}

void AbandonneEcritureSure(EcritureSure& e) {
    Ferme(e);
    SupprimeTemporaire(e);
    e.acheve = false;
}

// ---- Runs that share one project ---------------------------------------------------------

int VerrouilleDossierDe(const char* chemin, int delai) {
    const int fd = open(DossierDe(SuitLiens(CheminSysteme(chemin))).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return -2;
    timespec debut;
    clock_gettime(CLOCK_MONOTONIC, &debut);
    for (long pause = 1;; pause = pause < 32 ? pause * 2 : 50) {
        if (flock(fd, LOCK_EX | LOCK_NB) == 0) return fd;
        if (errno != EWOULDBLOCK && errno != EINTR) {
            close(fd);
            return -2;
        }
        timespec maintenant;
        clock_gettime(CLOCK_MONOTONIC, &maintenant);
        const long long ecoule =
            (long long)(maintenant.tv_sec - debut.tv_sec) * 1000 + (maintenant.tv_nsec - debut.tv_nsec) / 1000000;
        if (ecoule >= delai) {
            close(fd);
            return -1;
        }
        const timespec attente = {0, pause * 1000000};
        nanosleep(&attente, nullptr);
    }
}

void LibereVerrou(int descripteur) {
    if (descripteur >= 0) close(descripteur); // the lock goes with its descriptor
}
