// The template writer: templates with `%` fields and `%+` directives, element
// formats (a reduced printf for one number), and the loops that write the
// values of bitmaps, palettes, tilesets and maps. Files are binary: "\r\n" in
// a template is written as those two bytes, and the character 8 takes the
// last byte written back.
#pragma once
#include "format/formats.h"

#include <cstdint>
#include <cstdio>

constexpr int LONGUEUR_CHAMP_MAX = 999;

void EcritGabarit(const char* gabarit, FILE* fichier);
void EcritVariable(FILE* fichier, const char* champ);
void EcritValeur(FILE* fichier, const char* format, uint32_t valeur);

// Rows of values (bitmaps and maps): v is the column when the section has a
// line template or parColonne is set, else the number in the file. every_x
// goes before each value whose v is a non-zero multiple of n_every; line
// follows every row.
void EcritValeursLignes(FILE* fichier, const SectionFormat& section, const char* element, const uint32_t* valeurs,
                        int largeur, int hauteur, bool parColonne = false);
// Palette colours (15-bit words); no line template.
void EcritValeursPalette(FILE* fichier, const SectionFormat& section, const uint32_t* couleurs, int nombre);
// Tiles of pixelsParTuile words each, run one after the other. At 4 bits a
// value holds two pixels, the first in its low half, through element2; at 15
// bits element3; else element. line follows every tile.
void EcritValeursMosaique(FILE* fichier, const SectionFormat& section, const uint32_t* pixels, int nbTuiles,
                          int pixelsParTuile, int profondeur);
