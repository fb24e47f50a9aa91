#include "platform/texte.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

size_t CopieBornee(char* dest, size_t taille, const char* source) {
    if (!dest || taille == 0) return 0;
    size_t n = 0;
    if (source)
        while (n + 1 < taille && source[n]) {
            dest[n] = source[n];
            ++n;
        }
    dest[n] = 0;
    return n;
}

size_t CopieBorneeN(char* dest, size_t taille, const char* source, size_t longueur) {
    if (!dest || taille == 0) return 0;
    size_t n = 0;
    if (source)
        while (n + 1 < taille && n < longueur && source[n]) {
            dest[n] = source[n];
            ++n;
        }
    dest[n] = 0;
    return n;
}

size_t AjouteBorne(char* dest, size_t taille, const char* source) {
    if (!dest || taille == 0) return 0;
    size_t deja = strnlen(dest, taille - 1);
    return deja + CopieBornee(dest + deja, taille - deja, source);
}

int FormateBorne(char* dest, size_t taille, const char* format, ...) {
    if (!dest || taille == 0) return 0;
    va_list args;
    va_start(args, format);
    int n = vsnprintf(dest, taille, format, args);
    va_end(args);
    if (n < 0) {
        dest[0] = 0;
        return 0;
    }
    return n < (int)taille ? n : (int)taille - 1;
}

size_t CommenceParLatin1(const char* texte, const char* cle) {
    size_t i = 0;
    for (const unsigned char* c = (const unsigned char*)cle; *c; ++c) {
        unsigned char t = (unsigned char)texte[i];
        if (t == *c) {
            ++i;
            continue;
        }
        // U+00A0..U+00FF in UTF-8: C2 A0..C2 BF, C3 80..C3 BF.
        if (*c >= 0xA0 && t == (*c >= 0xC0 ? 0xC3 : 0xC2) &&
            (unsigned char)texte[i + 1] == (*c >= 0xC0 ? *c - 0x40 : *c)) {
            i += 2;
            continue;
        }
        return 0;
    }
    return i;
}
