// The editor's state script: which planes were open and how they were set,
// the document's options and the window's place, written beside the main
// map as statements of the script language and run again at the next
// opening. Only what differs from the defaults is written.
#pragma once

// Where the editor window stands: set by the window layer and by
// editor.move; written as the Editor.Move line.
struct PlaceEditeur {
    int largeur = 640, hauteur = 480;
    int x = 0, y = 0;
    bool maximisee = false;
};
extern PlaceEditeur PositionEditeur;

// Writes the state script of the main plane (nothing unless
// system.sauverparamsmaps is on). Gives 1 when written or not wanted.
int EcritEtatEditeur();
// Ctrl+S: the linked planes, then the state script.
void EnregistreEditeur();
