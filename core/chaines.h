// Quoted strings of the script language, as the project file and the model
// blocks write them.
#pragma once
#include <cstddef>

// Writes texte between two `guillemet` characters, each backslash doubled,
// each line feed as \n, each quote of the same kind behind a backslash, and
// ends the output. Stops taking text at taille - 2 characters of output.
void EcritChaineEchappee(char* sortie, const char* texte, char guillemet, size_t taille);
