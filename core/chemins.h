// Path operations shared by every part of the system. Both '\' and '/'
// separate components.
#pragma once
#include <cstddef>

// The text behind the first dot of the last component that holds a dot
// ("a.map.c" gives "map.c"); the whole path when no component has one.
const char* Extension(const char* chemin);
// Cuts the path in place at its last separator; empty when it has none.
void RepertoireDe(char* chemin);
// The last component of a path.
const char* DernierComposant(const char* chemin);
// Makes a path relative to the working directory, in place, where it can:
// inside it, or inside its parent as "..\". A drive or file system root is
// never used as a parent.
void CheminRelatif(char* chemin, size_t taille);
// Appends ext (".tsl") when the path does not end in it and holds no dot.
void AjouteExtensionDefaut(char* chemin, size_t taille, const char* ext);
// Short name of a file: its last component, cut to 30 characters, then at the
// first dot. sortie holds at least TAILLE_NOM_COURT bytes.
constexpr size_t TAILLE_NOM_COURT = 31;
void NomCourt(const char* chemin, char* sortie);

// The system's file dialogs, titled "To open a file" and "To save a file".
// They start in the project's folder and put the working directory back.
// Give 0 when the user cancels.
int ChoisitFichierOuvert(char* sortie, size_t taille, const char* filtre);
int ChoisitFichierSauve(char* sortie, size_t taille, const char* filtre);
