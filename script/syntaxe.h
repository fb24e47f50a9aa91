// The number and string forms of the script language.
#pragma once
#include <cstdint>

// A number at the start of the text: 0x hexadecimal, 0b binary, decimal,
// t... or v... (1), f... (0), rgb(r, g, b) (a colour word, red lowest). Text
// behind the number is ignored; anything else, a minus sign included, is 0.
// Values wrap at 32 bits.
int32_t LitNombre(const char* texte);
// The start of the next argument of a list: an argument ends at a comma, a
// blank or a ')' outside brackets; blanks and tabs behind that are skipped.
const char* ArgumentSuivant(const char* texte);
inline char* ArgumentSuivant(char* texte) { return (char*)ArgumentSuivant((const char*)texte); }
// 1 when the whole text is a number: decimal digits, or 0x / 0b and digits.
int EstNombre(const char* texte);
// Takes the quoted string (", ' or *, no escapes) at the front of *texte: ends
// it in place, moves *texte behind the closing quote and gives its start; null
// when the text does not begin with a quote or the quote is not closed.
char* LitChaine(char** texte);
