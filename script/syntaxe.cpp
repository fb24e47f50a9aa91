#include "script/syntaxe.h"

#include "core/chaines.h"

#include <cstring>

namespace {

bool EstChiffre(char c) { return c >= '0' && c <= '9'; }

int ValeurHexa(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

uint32_t LitDecimal(const char* p) {
    uint32_t v = 0;
    for (; EstChiffre(*p); ++p) v = v * 10u + (uint32_t)(*p - '0');
    return v;
}

} // namespace

int32_t LitNombre(const char* texte) {
    const char* p = texte;
    if (!p) return 0;
    if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
        uint32_t v = 0;
        for (p += 2; ValeurHexa(*p) >= 0; ++p) v = v * 16u + (uint32_t)ValeurHexa(*p);
        return (int32_t)v;
    }
    if (p[0] == '0' && (p[1] == 'b' || p[1] == 'B')) {
        uint32_t v = 0;
        for (p += 2; *p == '0' || *p == '1'; ++p) v = v * 2u + (uint32_t)(*p - '0');
        return (int32_t)v;
    }
    if (EstChiffre(*p)) return (int32_t)LitDecimal(p);
    if (*p == 't' || *p == 'v' || *p == 'T' || *p == 'V') return 1;
    if (*p == 'f' || *p == 'F') return 0;
    if (strncmp(p, "rgb", 3) == 0 || strncmp(p, "RGB", 3) == 0) {
        const char* ouvre = strchr(p, '(');
        if (!ouvre) return 0;
        const char* q = ouvre + 1;
        while (*q == ' ' || *q == '\t') ++q;
        uint32_t rouge = (uint32_t)LitNombre(q) % 256u;
        q = ArgumentSuivant(q);
        uint32_t vert = LitDecimal(q) % 256u;
        q = ArgumentSuivant(q);
        uint32_t bleu = (uint32_t)LitNombre(q) % 256u;
        return (int32_t)(rouge | vert << 8 | bleu << 16);
    }
    return 0;
}

const char* ArgumentSuivant(const char* texte) {
    const char* p = texte;
    int profondeur = 0;
    for (; *p; ++p) {
        if (*p == '(') {
            ++profondeur;
        } else if (*p == ')') {
            if (profondeur == 0) break;
            --profondeur;
        } else if (profondeur == 0 && (*p == ',' || *p == ' ' || *p == '\t')) {
            break;
        }
    }
    if (*p) ++p;
    while (*p == ' ' || *p == '\t') ++p;
    return p;
}

int EstNombre(const char* texte) {
    if (!texte || !*texte) return 0;
    const char* p = texte;
    bool hexa = false;
    if (*p == '0') {
        if (p[1] == 'x' || p[1] == 'X')
            hexa = true;
        else if (p[1] != 'b' && p[1] != 'B')
            return 0; // a bare 0, or 0 and anything else
        p += 2;
        if (!*p) return 0;
    }
    for (; *p; ++p)
        if (!(EstChiffre(*p) || (hexa && ValeurHexa(*p) >= 0))) return 0;
    return 1;
}

char* LitChaine(char** texte) {
    if (!texte || !*texte) return nullptr;
    char* p = *texte;
    if (!EstGuillemet(*p)) return nullptr;
    char* fin = strchr(p + 1, *p);
    if (!fin) return nullptr;
    *fin = 0;
    *texte = fin + 1;
    return p + 1;
}
