#include "convert/images.h"

#include "core/reglages.h"
#include "platform/fichiers.h"
#include "platform/imagefichier.h"
#include "platform/texte.h"
#include "render/apercus.h"
#include "render/surfaces.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

Image ImageGardee;
int BitsImageGardee = 0;
bool ImageLibDisponible = false;
const char* RaisonEchecImage = "";

void InitialiseImages() { ImageLibDisponible = CodecsDisponibles(); }

void LibereImageGardee() {
    LibereImage(ImageGardee);
    BitsImageGardee = 0;
}

int ChargeImage(const char* chemin, int& largeur, int& hauteur, bool garder) {
    if (!chemin) return 0;
    // The type test runs on the lower-cased path, so ".BMP" goes the BMP way.
    std::string bas(chemin);
    for (char& c : bas)
        if (c >= 'A' && c <= 'Z') c = (char)(c - 'A' + 'a');
    const bool bmp = bas.size() >= 4 && bas.compare(bas.size() - 4, 4, ".bmp") == 0;

    size_t taille = 0;
    uint8_t* donnees = LitFichierEntier(chemin, taille);
    if (!donnees) {
        RaisonEchecImage = errno == ENOENT ? "not found" : strerror(errno);
        return 0;
    }
    Image lue;
    int bits = 0;
    int bon;
    const bool parLibrairie = ImageLibDisponible && !bmp;
    if (parLibrairie) {
        // Fully transparent pixels take the mask colour, so transparency
        // survives the conversion.
        const uint8_t* m = ReglagesConv.masque;
        const uint8_t transparent[3] = {m[0], m[1], m[2]};
        bon = LitImageMemoire(donnees, taille, lue, bits, transparent);
    } else {
        bon = LitBmp(donnees, taille, lue, bits);
    }
    if (!bon || lue.largeur <= 0 || lue.hauteur <= 0) {
        const bool connu = parLibrairie ? TypeImageConnu(donnees, taille) : taille >= 2 && donnees[0] == 'B' && donnees[1] == 'M';
        RaisonEchecImage = connu ? "damaged" : parLibrairie ? "not a picture" : "not a BMP picture";
        free(donnees);
        LibereImage(lue);
        return 0;
    }
    free(donnees);

    const int l = lue.largeur, h = lue.hauteur;
    if (garder && ReglagesConv.mode != METHODE_NORMALE && !ReglagesConv.quinzeBits) {
        LibereImageGardee();
        ImageGardee = lue;
        BitsImageGardee = bits;
    } else if (lue.bits == 24 && l % 4 == 0 && lue.largeur == l && lue.pas == l * 3) {
        // Decoded with the very layout the surface would get for this size
        // (rows of a whole number of 4-pixel groups): it becomes the surface,
        // with no second copy.
        LibereImage(SurfaceApercu);
        SurfaceApercu = lue;
        LargeurApercu = l;
        HauteurApercu = h;
        ChoisitCadre(0, 0, l, h);
    } else {
        if (!DimensionneApercu(l, h, true)) {
            RaisonEchecImage = strerror(ENOMEM);
            LibereImage(lue);
            return 0;
        }
        // Both are bottom-up; the picture's top row is the surface's row
        // HauteurApercu - 1 from the bottom of what it allocated.
        for (int y = 0; y < h; ++y)
            memcpy(SurfaceApercu.pixels + (size_t)(SurfaceApercu.hauteur - 1 - y) * SurfaceApercu.pas,
                   lue.pixels + (size_t)(h - 1 - y) * lue.pas, (size_t)l * 3);
        ChoisitCadre(0, 0, l, h);
        LibereImage(lue);
    }
    largeur = l;
    hauteur = h;
    return 1;
}

int ExporteImage(const char* chemin) {
    if (!chemin) return 0;
    static const struct {
        const char* extension;
        const char* mime;
    } types[] = {{"png", "image/png"}, {"jpg", "image/jpeg"}, {"jpeg", "image/jpeg"},
                 {"bmp", "image/bmp"}, {"gif", "image/gif"},  {"tiff", "image/tiff"}};
    const char* point = strrchr(chemin, '.');
    const char* separateur = DernierSeparateur(chemin);
    const char* extension = point && (!separateur || point > separateur) ? point + 1 : nullptr;
    std::string cible(chemin);
    const char* mime = nullptr;
    for (const auto& t : types)
        if (extension && strcmp(extension, t.extension) == 0) mime = t.mime;
    if (!mime) {
        cible += ".bmp";
        mime = "image/bmp";
    }
    if (!ImageLibDisponible && strcmp(mime, "image/bmp") != 0) return 0;
    return EcritImageType(cible.c_str(), mime, SurfaceApercu, LargeurApercu, HauteurApercu);
}
