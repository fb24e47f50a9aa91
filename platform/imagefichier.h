// Picture files. Every reader yields a 24-bit picture in the surfaces' layout
// (rows bottom-up, blue green red, rows a multiple of 4 bytes) and tells the
// depth the file itself used. Readers take the whole file in memory, check
// every size against the data before they allocate, and fail rather than
// guess: a failed read leaves the picture empty and shows nothing.
#pragma once
#include "platform/image.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

// No picture the system reads may be larger than this, whatever it declares.
constexpr int COTE_IMAGE_MAX = 32768;
constexpr int64_t PIXELS_IMAGE_MAX = int64_t(1) << 25;
// Nor a picture file larger than this.
constexpr size_t TAILLE_FICHIER_IMAGE_MAX = size_t(256) << 20;

// The pixel bound in force: PIXELS_IMAGE_MAX, which only the fuzz targets
// lower (so that a few header bytes cannot make every input a large picture).
extern int64_t PixelsImageMax;

// True when the sizes may be allocated.
bool TailleImageAdmise(int64_t largeur, int64_t hauteur);

// Reads a whole file, at most TAILLE_FICHIER_IMAGE_MAX bytes. Gives a malloc'd
// buffer (free it), or null with errno saying why (EFBIG: too large).
uint8_t* LitFichierEntier(const char* chemin, size_t& taille);

// BMP: core and info headers up to V5; 1, 4 and 8 bits with a palette, 16 bits
// (5-5-5 or bit fields), 24, 32 (plain or bit fields), RLE4 and RLE8, rows
// bottom-up or top-down. Gives 1 on success.
int LitBmp(const uint8_t* donnees, size_t taille, Image& image, int& bitsFichier);

// Writes the top largeur x hauteur pixels of a bottom-up 24-bit picture as a
// 24-bit BMP. Gives 1 on success.
int EcritBmp(const char* chemin, const Image& image, int largeur, int hauteur);

// An encoder: l x h pixels (already cut to the picture) to a stream, which it
// leaves open. Gives 1 on success.
using EcrivainImage = int (*)(FILE* f, const Image& image, int l, int h);
int EcritBmpFlux(FILE* f, const Image& image, int l, int h);
// Every picture file is written whole or not at all: through a temporary
// file that replaces the target once the encoder succeeded, so a failed or
// cut-off write leaves the old file as it was. Gives 1 on success.
int EcritImageSure(const char* chemin, EcrivainImage ecrit, const Image& image, int largeur, int hauteur);

// ---- Image libraries (PNG, JPEG, GIF, TIFF) --------------------------------------

// True when at least one library was built in.
bool CodecsDisponibles();

// Reads a picture whatever its type, recognised by its first bytes (BMP
// included). Pixels whose alpha is 0 (PNG, GIF, TIFF) take the colour
// transparent (red, green, blue). A library decode is kept as 24 bits, so
// bitsFichier is 24 except for BMP content. Gives 1 on success.
int LitImageMemoire(const uint8_t* donnees, size_t taille, Image& image, int& bitsFichier,
                    const uint8_t transparent[3]);

// True when the first bytes are those of a type that LitImageMemoire reads.
bool TypeImageConnu(const uint8_t* donnees, size_t taille);

// Writes the top largeur x hauteur pixels of a bottom-up 24-bit picture with
// the encoder of that MIME type: "image/png", "image/jpeg", "image/bmp",
// "image/gif", "image/tiff". A GIF keeps the exact colours of a picture of at
// most 256 colours, else takes the nearest of a fixed cube. Gives 1 on success.
int EcritImageType(const char* chemin, const char* mime, const Image& image, int largeur, int hauteur);
