// Pictures in and out of a conversion: ChargeImage brings an image file into
// SurfaceApercu (or keeps it aside for the halftone and octree methods), and
// ExporteImage writes the surface to an image file.
#pragma once
#include "platform/image.h"

// The loaded picture kept outside the surface, as 24-bit pixels with the depth
// the file used. Present only between a ChargeImage with garder set and the
// quantisation that consumes it.
extern Image ImageGardee;
extern int BitsImageGardee;

// Set at start-up when the image libraries are built in; without them only
// BMP is read.
extern bool ImageLibDisponible;
void InitialiseImages();

// Loads a picture: 1 when it stands in SurfaceApercu (or in ImageGardee), 0 on
// failure, with no message and the surface as it was. largeur and hauteur
// receive the picture's size.
int ChargeImage(const char* chemin, int& largeur, int& hauteur, bool garder);

// Why the last ChargeImage failed, in words: "not found", the system's reason
// for a file that could not be read, "not a picture" (no reader knows its
// first bytes), or "damaged" (a reader knew them and refused the rest).
extern const char* RaisonEchecImage;

// Releases ImageGardee.
void LibereImageGardee();

// Writes the logical picture of SurfaceApercu to an image file, the type from
// the path's last extension; any other extension gets ".bmp" appended (the
// text in chemin is left as it is). Gives 1 on success, no message.
int ExporteImage(const char* chemin);
