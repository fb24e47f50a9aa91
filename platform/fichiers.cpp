#include "platform/fichiers.h"

#include "platform/texte.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
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

} // namespace

FILE* CommenceEcritureSure(EcritureSure& e, const char* chemin) {
    e = EcritureSure{};
    if (!chemin || !*chemin) return nullptr;
    const std::string cible = CheminSysteme(chemin);
    if (cible.size() + 8 >= sizeof e.temporaire) return nullptr;
    CopieBornee(e.cible, cible.c_str());
    CopieBornee(e.temporaire, (cible + ".XXXXXX").c_str());
    const int fd = mkstemp(e.temporaire);
    if (fd < 0) return nullptr;
    // The new file gets the target's permissions, or the usual ones for a
    // new file (mkstemp makes it private).
    struct stat etat;
    mode_t mode;
    if (stat(e.cible, &etat) == 0) {
        mode = etat.st_mode & 07777;
    } else {
        const mode_t masque = umask(0);
        umask(masque);
        mode = 0666 & ~masque;
    }
    fchmod(fd, mode);
    if (OctetsAvantEchecEcriture >= 0) {
        cookie_io_functions_t fonctions = {nullptr, EcritLimite, ChercheLimite, FermeLimite};
        e.fichier = fopencookie(new DisqueLimite{fd, OctetsAvantEchecEcriture}, "wb", fonctions);
    } else {
        e.fichier = fdopen(fd, "wb");
    }
    if (!e.fichier) {
        close(fd);
        unlink(e.temporaire);
        return nullptr;
    }
    return e.fichier;
}

int TermineEcritureSure(EcritureSure& e) {
    if (!e.fichier) return 0;
    bool bon = fflush(e.fichier) == 0 && !ferror(e.fichier);
    if (fclose(e.fichier) != 0) bon = false;
    e.fichier = nullptr;
    if (bon && rename(e.temporaire, e.cible) == 0) return 1;
    unlink(e.temporaire);
    return 0;
}

void AbandonneEcritureSure(EcritureSure& e) {
    if (!e.fichier) return;
    fclose(e.fichier);
    e.fichier = nullptr;
    unlink(e.temporaire);
}
