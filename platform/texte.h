// Bounded text helpers. Every copy into a fixed-width text field goes through
// CopieBornee: it always ends the field and cuts what does not fit.
#pragma once
#include <cstddef>

// Copies at most taille - 1 bytes of source into dest and ends it. Gives the
// length written. A null source copies nothing.
size_t CopieBornee(char* dest, size_t taille, const char* source);

// The same for a source that may have no terminator within longueur bytes
// (fixed-width fields of binary files).
size_t CopieBorneeN(char* dest, size_t taille, const char* source, size_t longueur);

// Appends source behind the text already in dest, within taille bytes.
size_t AjouteBorne(char* dest, size_t taille, const char* source);

template <size_t N> size_t CopieBornee(char (&dest)[N], const char* source) {
    return CopieBornee(dest, N, source);
}
template <size_t N> size_t AjouteBorne(char (&dest)[N], const char* source) {
    return AjouteBorne(dest, N, source);
}

// Formats into a fixed buffer, cutting what does not fit (printf rules).
int FormateBorne(char* dest, size_t taille, const char* format, ...) __attribute__((format(printf, 3, 4)));

// Latin-1 aware comparison of a text against a key written in Latin-1: a byte
// of 0xA0 and above in the key also matches its two-byte UTF-8 spelling, so a
// file saved by a modern editor reads the same. Gives the number of bytes of
// texte that the key covers, or 0 when texte does not begin with the key.
size_t CommenceParLatin1(const char* texte, const char* cle);
