// The real program (TESS_PROGRAMME), run through the shell in the working
// folder, for the end-to-end tests of batch mode.
#pragma once
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

// A text as one shell word.
inline std::string Guillemets(const std::string& s) {
    std::string r = "'";
    for (char c : s)
        r += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return r + "'";
}

struct Execution {
    int code = -1;        // the exit code, or -1 when the program did not exit by itself
    std::string erreurs;  // standard error
    std::string sortie;   // standard output
};

// The program with these arguments. A lanceur is shell text that gets the
// program and its arguments behind it ("sh -c '...; exec \"$0\" \"$@\"'").
inline Execution Execute(const std::vector<std::string>& arguments, const std::string& lanceur = "") {
    const std::string fichierErreurs =
        std::filesystem::temp_directory_path() / ("tess-erreurs-" + std::to_string(getpid()));
    std::string commande = (lanceur.empty() ? "exec" : lanceur) + " " + Guillemets(TESS_PROGRAMME);
    for (const std::string& a : arguments)
        commande += " " + Guillemets(a);
    commande = "sh -c " + Guillemets(commande) + " 2>" + Guillemets(fichierErreurs);
    Execution e;
    FILE* tube = popen(commande.c_str(), "r");
    if (!tube) return e;
    char tampon[4096];
    for (size_t n; (n = fread(tampon, 1, sizeof tampon, tube)) > 0;)
        e.sortie.append(tampon, n);
    const int etat = pclose(tube);
    e.code = WIFEXITED(etat) ? WEXITSTATUS(etat) : -1;
    if (FILE* f = fopen(fichierErreurs.c_str(), "rb")) {
        for (size_t n; (n = fread(tampon, 1, sizeof tampon, f)) > 0;)
            e.erreurs.append(tampon, n);
        fclose(f);
    }
    std::filesystem::remove(fichierErreurs);
    return e;
}

// The names in the working folder.
inline std::set<std::string> Fichiers(const std::string& dossier = ".") {
    std::set<std::string> noms;
    for (const auto& f : std::filesystem::directory_iterator(dossier))
        noms.insert(f.path().filename().string());
    return noms;
}
