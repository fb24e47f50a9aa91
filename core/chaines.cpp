#include "core/chaines.h"

void EcritChaineEchappee(char* sortie, const char* texte, char guillemet, size_t taille) {
    if (!sortie || taille < 3) {
        if (sortie && taille) sortie[0] = 0;
        return;
    }
    size_t pos = 0;
    sortie[pos++] = guillemet;
    for (const char* p = texte; p && *p; ++p) {
        char paire = 0;
        if (*p == '\\')
            paire = '\\';
        else if (*p == '\n')
            paire = 'n';
        else if (*p == guillemet)
            paire = guillemet;
        size_t besoin = paire ? 2 : 1;
        if (pos + besoin > taille - 2) break;
        if (paire) {
            sortie[pos++] = '\\';
            sortie[pos++] = paire;
        } else
            sortie[pos++] = *p;
    }
    sortie[pos++] = guillemet;
    sortie[pos] = 0;
}
