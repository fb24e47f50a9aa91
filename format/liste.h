// Object lists through templates: the object template built from the list
// section and the parameter model, and one object written or read through it.
// An object in memory is x, y and type (signed 32-bit each), then the model's
// parameters one after the other with no padding.
#pragma once
#include "core/modeles.h"
#include "format/lecture.h"

#include <cstdint>
#include <cstdio>

constexpr int TAILLE_GABARIT_LISTE = 1000;
extern char GabaritListe[TAILLE_GABARIT_LISTE];

// Bytes of the parameters before parameter i; the parameter lies 12 further
// in an object.
int32_t DecalageParametre(const ModeleParametres& modele, int i);
// An Integer parameter holds a 32-bit word, yet its size comes from scripts
// as given: one of fewer than 4 bytes keeps the word's low bytes, so that no
// value reaches past its own place in the object.
void PoseEntierParametre(uint8_t* champ, int32_t taille, int32_t valeur);
int32_t EntierParametre(const uint8_t* champ, int32_t taille);
// GabaritListe from the list section of the format in use; "Standard" expands
// its "#+param:<before>:<after>#" to one field per parameter of the model.
void ConstruitGabaritListe();
void EcritObjetListe(FILE* fichier, const char* gabarit, const ModeleParametres& modele, const uint8_t* objet);

enum ModeLectureListe { LISTE_NORMALE = 0, LISTE_RECUPERATION = 2 };
// Reads one object. Mode 0: a mismatch shows a message, raises erreur and
// gives the failure position. Mode 2: silent, and the end mark ends the
// object. objet holds the model's size in bytes.
int32_t LitObjetListe(int32_t position, const TamponLecture& tampon, const char* gabarit,
                      const ModeleParametres& modele, uint8_t* objet, int mode, const char* marqueFin, bool& erreur);
