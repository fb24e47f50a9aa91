// Quoted strings of the script language, as the project file and the model
// blocks write them.
#pragma once
#include <cstddef>

// Writes texte between two `guillemet` characters, each backslash doubled,
// each line feed as \n, each quote of the same kind behind a backslash, and
// ends the output. Stops taking text at taille - 2 characters of output.
void EcritChaineEchappee(char* sortie, const char* texte, char guillemet, size_t taille);

// Copies the quoted string at the start of texte (between ", ' or *) into
// sortie, with one escape at each backslash: \n gives a carriage return and a
// line feed, \b a backspace, a backslash and any other character that
// character. Writes at most taille - 1 characters. Gives the position behind
// the closing quote, or texte itself when it does not begin with a quote
// character or the string is not closed (sortie is then empty).
const char* CopieChaineEchappee(char* sortie, const char* texte, size_t taille);

inline bool EstGuillemet(char c) { return c == '"' || c == '\'' || c == '*'; }

// C names. A name is one when it holds only ASCII letters, digits and '_' and
// does not begin with a digit.
bool EstIdentifiantC(const char* nom);
// Makes nom one in place: any other character becomes '_', and a name that
// begins with a digit gets a '_' in front, the end cut to stay within taille.
void RendIdentifiantC(char* nom, size_t taille);
