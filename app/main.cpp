#include "app/demarrage.h"
#include "platform/memoire.h"

#include <string>

int main(int argc, char** argv) {
    PrepareMemoire();
    // The command line is the arguments joined by single blanks.
    std::string ligne;
    for (int i = 1; i < argc; ++i) {
        if (i > 1) ligne += ' ';
        ligne += argv[i];
    }
    return Demarre(ligne.c_str(), argc > 0 ? argv[0] : nullptr);
}
