#include "core/crochets.h"

namespace {
void LitSansExecuter(FILE* fichier, const char*) {
    if (fichier) fclose(fichier);
}
const char* AucunFormat() { return nullptr; }
} // namespace

const CrochetsCore CrochetsParDefaut = {LitSansExecuter, AucunFormat};
CrochetsCore Crochets = CrochetsParDefaut;
