// What every fuzz target shares: a quiet platform, a scratch folder in
// memory (/dev/shm) that is the working directory, the hooks that start-up
// sets, the reset of the globals between two inputs, and the small element
// files that conversions and loaders need around them.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

// Pictures here may hold at most this many pixels (256 x 256): every bound
// check still runs, but a header of a few bytes no longer turns most inputs
// into a decode of millions of pixels.
constexpr int64_t PIXELS_FUZZ = int64_t(1) << 16;

// Once, from LLVMFuzzerInitialize: the pixel bound lowered to PIXELS_FUZZ,
// the quiet platform (boxes answered with their first button, nothing
// printed, no command started, dialogs cancelled), a scratch folder of that
// name made the working directory and removed at exit, the hooks of
// start-up, the preview surface, the template variables saved as start-up
// leaves them. With libFuzzer's arguments, the paths among them are made
// full first (they are read after the folder changes), and crash files go
// to where the target was started.
void PrepareCible(const char* nom, int* argc = nullptr, char*** argv = nullptr);

// Puts back every global a target may have touched: element table, settings
// and colour tables, models, formats (their pools freed), template
// variables, interpreter state, the `données` text, previews, the kept
// picture. With formats false the format table stays and "Standard" is
// chosen again.
void ReinitialiseEtat(bool formats = true);

// Files of the scratch folder that a target needs. RemetFichiers writes them
// back as they were and removes any other file, so that one input never
// sees what an earlier one wrote.
void GardeFichier(const std::string& nom);
void RemetFichiers();

// Writes a file of the scratch folder.
void EcritFichier(const std::string& nom, const void* donnees, size_t taille);
void EcritFichier(const std::string& nom, const std::string& contenu);
std::string LitFichier(const std::string& nom);

// The input as text, cut at its first zero byte.
std::string Texte(const uint8_t* donnees, size_t taille);

// False for an input that names a device or process file (/dev/zero,
// /proc/self/fd/0): reading those never ends or waits for a terminal.
bool SansPeripherique(const uint8_t* donnees, size_t taille);
// False for a text that may name a path outside the scratch folder: an
// absolute path or a ".." component. Conversions write where they are told.
bool CheminsLocaux(const char* texte);

// A small picture with several colours and repeated tiles (16 x 16), as
// 24-bit pixels written by our own writer to that path (its type from the
// MIME type).
bool EcritImageExemple(const char* chemin, const char* mime, int largeur = 16, int hauteur = 16);

// A picture of 16 x 16 pixels all of different colours.
bool EcritImageCouleurs(const char* chemin, const char* mime);

// Writes image.bmp and converts it with the format in use: a tileset with
// its palette and map, an 8-bit bitmap with its palette, a 16-bit bitmap.
// Also couleurs.bmp, of 256 colours, and its 8-bit bitmap with a full
// palette (couleurs.pal.c with Standard). Every file of the folder is then
// kept (GardeFichier).
void PrepareElementsExemple();
// The same, and inclus.spt holding that script (kept too): what a project's
// or a script's statements may reach.
void PrepareElementsEtInclusion(const char* script);

// Defines the format "Essai" through a defformat script: every section with
// templates of its own (binary fields, hexadecimal, conditions, user texts,
// every_x and line rules). The format in use stays as it was.
void DefinitFormatEssai();
constexpr const char* FORMAT_ESSAI = "Essai";

// The example elements written in both formats, "Essai" defined, and
// "Standard" chosen again: the start of the targets that read element files.
void PrepareDeuxFormats();

// Defines the model "Ennemis" (an integer and an 8-byte text) and leaves
// "Default" selected.
void DefinitModeleEnnemis();
// Writes a list file of three objects of "Ennemis" through the list template
// of the format in use, linked to that tileset.
void EcritListeExemple(const char* chemin, const char* lienMosaique);
