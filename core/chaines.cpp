#include "core/chaines.h"

#include <cstring>

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

const char* CopieChaineEchappee(char* sortie, const char* texte, size_t taille) {
    if (sortie && taille) sortie[0] = 0;
    if (!texte || !EstGuillemet(texte[0])) return texte;
    char guillemet = texte[0];
    // First find the closing quote: an unclosed string copies nothing.
    const char* fin = texte + 1;
    while (*fin && *fin != guillemet) {
        if (*fin == '\\' && fin[1]) ++fin;
        ++fin;
    }
    if (*fin != guillemet) return texte;

    size_t pos = 0;
    auto ecrit = [&](char c) {
        if (sortie && pos + 1 < taille) sortie[pos++] = c;
    };
    for (const char* p = texte + 1; p < fin; ++p) {
        if (*p == '\\' && p + 1 < fin) {
            ++p;
            if (*p == 'n') {
                ecrit('\r');
                ecrit('\n');
            } else if (*p == 'b')
                ecrit('\b');
            else
                ecrit(*p);
        } else
            ecrit(*p);
    }
    if (sortie && taille) sortie[pos] = 0;
    return fin + 1;
}

namespace {

bool CaractereIdentifiant(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

} // namespace

bool EstIdentifiantC(const char* nom) {
    if (!nom || !*nom || (*nom >= '0' && *nom <= '9')) return false;
    for (const char* p = nom; *p; ++p)
        if (!CaractereIdentifiant(*p)) return false;
    return true;
}

void RendIdentifiantC(char* nom, size_t taille) {
    if (!nom || taille < 2) return;
    size_t n = 0;
    for (char* p = nom; *p; ++p, ++n)
        if (!CaractereIdentifiant(*p)) *p = '_';
    if (nom[0] >= '0' && nom[0] <= '9') {
        if (n + 1 >= taille) n = taille - 2; // the last character makes room
        memmove(nom + 1, nom, n);
        nom[0] = '_';
        nom[n + 1] = 0;
    }
}
