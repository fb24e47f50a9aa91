// The built-in functions of the dictionary. Every function row calls through
// a member of Fonctions: a later subsystem plugs its own function into the
// row by setting that member. Members whose behaviour belongs to the map
// editor, the specimen or the bits window do nothing until then.
#pragma once
#include "script/interpreteur.h"

#include <cstddef>

struct FonctionsDictionnaire {
    // Top level.
    FonctionScript ok, msgbox, visible, quitte, fin, exec, aller, retour, effets;
    FonctionScript defformat, defmodele, format, modele, selformat, selmodele, inclure, conv;
    // fonds / maps: on the plane of the statement's index.
    FonctionScript fondsAjoute, fondsReinit, fondsLie, fondsVitesse, fondsCondition, fondsGrille, fondsEmulGba;
    // system
    FonctionScript objetsMax, memoireMax, systemeEmulGba;
    // convert
    FonctionScript couleurMasque, couleurZero, luminosite, nuances, nuancesAvant, mode, tronquer;
    // editeur / editor
    FonctionScript editeurDeplace, editeurZoom;
    // specimen
    FonctionScript specimenAffiche, specimenAjouteMap, specimenDeplace;
    // bits
    FonctionScript bitsAffiche, bitsTexte, bitsActif, bitsDeplace;
    // liste
    FonctionScript reinitParams, ajParam;
};
extern FonctionsDictionnaire Fonctions;
// The functions as built, to put back after a test.
extern const FonctionsDictionnaire FonctionsParDefaut;

// Names noted by `format` and `modele`, chosen when the main window starts.
extern char FormatNote[TAILLE_CHAINE_SCRIPT];
extern char ModeleNote[TAILLE_CHAINE_SCRIPT];

// The name of a defformat or defmodele block: a double-quoted name, or the
// text before "{" on the same line. Gives 0, with the message, when an
// unquoted name has no "{".
int NomDeBloc(const char* arguments, char* nom, size_t taille);
// The next run of digits from p, which moves behind it; wraps at 32 bits.
int LitChiffres(const char*& p);
// 1 for a bit number the bits window knows (8 to 15); else the message.
int VerifieNumeroBit(int bit);
// Reads a defmodele block from the file and stores the model of that name.
void DefinitModele(FILE* fichier, const char* nom);
