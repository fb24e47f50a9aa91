// BMP, read and written by our own code: always present, whatever libraries
// the build found.
#include "platform/fichiers.h"
#include "platform/imagefichier.h"

#include <cstdlib>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {

uint32_t L16(const uint8_t* p) { return (uint32_t)p[0] | (uint32_t)p[1] << 8; }
uint32_t L32(const uint8_t* p) { return L16(p) | L16(p + 2) << 16; }
void E16(uint8_t* p, uint32_t v) {
    p[0] = (uint8_t)v;
    p[1] = (uint8_t)(v >> 8);
}
void E32(uint8_t* p, uint32_t v) {
    E16(p, v);
    E16(p + 2, v >> 16);
}

constexpr uint32_t BI_RGB = 0, BI_RLE8 = 1, BI_RLE4 = 2, BI_BITFIELDS = 3, BI_ALPHABITFIELDS = 6;

// One colour component described by a bit mask, scaled to 8 bits.
struct Champ {
    uint32_t masque = 0;
    int decalage = 0;
    uint32_t maximum = 0;

    void Definit(uint32_t m) {
        masque = m;
        decalage = 0;
        maximum = 0;
        if (!m) return;
        while (!(m & 1)) {
            m >>= 1;
            ++decalage;
        }
        maximum = m; // a mask with holes is taken as its span
    }
    uint8_t Valeur(uint32_t pixel) const {
        if (!maximum) return 0;
        const uint64_t v = (pixel & masque) >> decalage;
        return (uint8_t)((v * 255 + maximum / 2) / maximum);
    }
};

// Indices of an RLE picture, one byte a pixel, rows from the bottom as stored.
// Runs that leave the picture or data that stops inside a delta or an absolute
// run fail the load; data that simply ends without the end-of-picture code is
// taken as it stands.
bool DecodeRle(const uint8_t* d, size_t n, bool quatre, int largeur, int hauteur, uint8_t* indices) {
    size_t p = 0;
    int x = 0, y = 0;
    auto pose = [&](uint8_t v) {
        if (x >= largeur || y >= hauteur) return false;
        indices[(size_t)y * largeur + x++] = v;
        return true;
    };
    while (p + 1 < n) {
        const uint8_t compte = d[p], valeur = d[p + 1];
        p += 2;
        if (compte > 0) {
            for (int i = 0; i < compte; ++i)
                if (!pose(quatre ? (uint8_t)(i & 1 ? valeur & 15 : valeur >> 4) : valeur)) return false;
            continue;
        }
        if (valeur == 0) { // end of line
            x = 0;
            ++y;
        } else if (valeur == 1) { // end of picture
            return true;
        } else if (valeur == 2) { // delta
            if (p + 2 > n) return false;
            x += d[p];
            y += d[p + 1];
            p += 2;
            if (x > largeur || y > hauteur) return false;
        } else { // absolute run, padded to a whole word
            const size_t octets = quatre ? ((size_t)valeur + 1) / 2 : valeur;
            if (p + octets > n) return false;
            for (int i = 0; i < valeur; ++i) {
                const uint8_t b = quatre ? d[p + i / 2] : d[p + i];
                if (!pose(quatre ? (uint8_t)(i & 1 ? b & 15 : b >> 4) : b)) return false;
            }
            p += (octets + 1) & ~(size_t)1;
        }
    }
    return true; // a lone byte left over is padding
}

} // namespace

int64_t PixelsImageMax = PIXELS_IMAGE_MAX;

bool TailleImageAdmise(int64_t largeur, int64_t hauteur) {
    return largeur > 0 && hauteur > 0 && largeur <= COTE_IMAGE_MAX && hauteur <= COTE_IMAGE_MAX &&
           largeur * hauteur <= PixelsImageMax;
}

uint8_t* LitFichierEntier(const char* chemin, size_t& taille) {
    taille = 0;
    FILE* f = OuvreFichier(chemin, "rb");
    if (!f) return nullptr;
    struct stat etat;
    if (fstat(fileno(f), &etat) == 0 && S_ISDIR(etat.st_mode)) {
        fclose(f);
        errno = EISDIR;
        return nullptr;
    }
    uint8_t* donnees = nullptr;
    long longueur = -1;
    errno = 0;
    if (fseek(f, 0, SEEK_END) == 0) longueur = ftell(f);
    if (longueur >= 0 && (unsigned long)longueur <= TAILLE_FICHIER_IMAGE_MAX && fseek(f, 0, SEEK_SET) == 0) {
        donnees = (uint8_t*)malloc(longueur > 0 ? (size_t)longueur : 1);
        if (donnees && fread(donnees, 1, (size_t)longueur, f) != (size_t)longueur) {
            free(donnees);
            donnees = nullptr;
        }
    } else if (longueur > 0) {
        errno = EFBIG;
    }
    const int erreur = errno ? errno : EIO;
    fclose(f);
    errno = donnees ? 0 : erreur;
    if (donnees) taille = (size_t)longueur;
    return donnees;
}

int LitBmp(const uint8_t* d, size_t n, Image& image, int& bitsFichier) {
    LibereImage(image);
    if (!d || n < 26 || d[0] != 'B' || d[1] != 'M') return 0;
    const uint32_t debutPixels = L32(d + 10);
    const uint32_t entete = L32(d + 14);
    if (entete < 12 || entete > n - 14) return 0;

    int64_t largeur, hauteur;
    uint32_t bits, compression = BI_RGB, couleursDites = 0;
    const bool noyau = entete == 12; // the old core header: 16-bit sizes, 3-byte palette entries
    if (noyau) {
        largeur = L16(d + 18);
        hauteur = L16(d + 20);
        bits = L16(d + 24);
    } else if (entete >= 40) {
        largeur = (int32_t)L32(d + 18);
        hauteur = (int32_t)L32(d + 22);
        bits = L16(d + 28);
        compression = L32(d + 30);
        couleursDites = L32(d + 46);
    } else {
        return 0;
    }
    const bool basEnHaut = hauteur > 0; // rows stored from the bottom
    if (hauteur < 0) hauteur = -hauteur;
    if (!TailleImageAdmise(largeur, hauteur)) return 0;

    const bool rle = compression == BI_RLE8 || compression == BI_RLE4;
    const bool champs = compression == BI_BITFIELDS || compression == BI_ALPHABITFIELDS;
    if (compression == BI_RLE8 && bits != 8) return 0;
    if (compression == BI_RLE4 && bits != 4) return 0;
    if (champs && bits != 16 && bits != 32) return 0;
    if (compression != BI_RGB && !rle && !champs) return 0; // JPEG or PNG inside a BMP, or unknown
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return 0;
    if (rle && !basEnHaut) return 0;

    // Colour fields of 16 and 32 bits.
    Champ rouge, vert, bleu;
    size_t finEntete = 14 + (size_t)entete;
    if (champs) {
        const uint8_t* m;
        if (entete >= 52) {
            m = d + 54;
        } else {
            if (finEntete + 12 > n) return 0;
            m = d + finEntete;
            finEntete += compression == BI_ALPHABITFIELDS ? 16 : 12;
        }
        rouge.Definit(L32(m));
        vert.Definit(L32(m + 4));
        bleu.Definit(L32(m + 8));
    } else if (bits == 16) {
        rouge.Definit(0x7C00);
        vert.Definit(0x03E0);
        bleu.Definit(0x001F);
    } else {
        rouge.Definit(0xFF0000);
        vert.Definit(0xFF00);
        bleu.Definit(0xFF);
    }

    // Palette: entries the file declares, or all that the depth can reach.
    uint8_t palette[256][3] = {};
    if (bits <= 8) {
        const uint32_t possibles = 1u << bits;
        uint32_t nombre = couleursDites && couleursDites < possibles ? couleursDites : possibles;
        const size_t tailleEntree = noyau ? 3 : 4;
        if (finEntete > n) return 0;
        const size_t disponibles = (n - finEntete) / tailleEntree;
        if (nombre > disponibles) {
            if (couleursDites) return 0;
            nombre = (uint32_t)disponibles; // a palette cut short by the pixels' offset: the rest is black
        }
        if (debutPixels >= finEntete && (debutPixels - finEntete) / tailleEntree < nombre)
            nombre = (uint32_t)((debutPixels - finEntete) / tailleEntree);
        for (uint32_t i = 0; i < nombre; ++i) {
            const uint8_t* e = d + finEntete + i * tailleEntree;
            palette[i][0] = e[0];
            palette[i][1] = e[1];
            palette[i][2] = e[2];
        }
    }

    if (debutPixels >= n) return 0;
    const uint8_t* pixels = d + debutPixels;
    const size_t reste = n - debutPixels;
    const int l = (int)largeur, h = (int)hauteur;

    uint8_t* indices = nullptr;
    size_t pas = 0;
    if (rle) {
        indices = (uint8_t*)calloc((size_t)l * (size_t)h, 1);
        if (!indices) return 0;
        if (!DecodeRle(pixels, reste, compression == BI_RLE4, l, h, indices)) {
            free(indices);
            return 0;
        }
    } else {
        pas = ((size_t)l * bits + 31) / 32 * 4;
        const size_t dernier = ((size_t)l * bits + 7) / 8; // the last row may lack its padding
        if (pas * (size_t)(h - 1) + dernier > reste) return 0;
    }

    if (!CreeImage(image, l, h, 24)) {
        free(indices);
        return 0;
    }
    for (int r = 0; r < h; ++r) {
        // r counts stored rows; the picture's row from the top follows from the order.
        const int duHaut = basEnHaut ? h - 1 - r : r;
        uint8_t* sortie = image.pixels + (size_t)(h - 1 - duHaut) * image.pas;
        if (rle) {
            const uint8_t* ligne = indices + (size_t)r * l;
            for (int x = 0; x < l; ++x) memcpy(sortie + 3 * x, palette[ligne[x]], 3);
            continue;
        }
        const uint8_t* ligne = pixels + (size_t)r * pas;
        switch (bits) {
        case 1:
        case 4:
        case 8: {
            const int parOctet = 8 / (int)bits;
            const uint8_t masque = (uint8_t)((1u << bits) - 1);
            for (int x = 0; x < l; ++x) {
                const int decalage = (int)bits * (parOctet - 1 - x % parOctet);
                memcpy(sortie + 3 * x, palette[(ligne[x / parOctet] >> decalage) & masque], 3);
            }
            break;
        }
        case 24:
            memcpy(sortie, ligne, (size_t)l * 3);
            break;
        default: {
            const int octets = (int)bits / 8;
            for (int x = 0; x < l; ++x) {
                const uint32_t v = octets == 2 ? L16(ligne + 2 * x) : L32(ligne + 4 * x);
                sortie[3 * x] = bleu.Valeur(v);
                sortie[3 * x + 1] = vert.Valeur(v);
                sortie[3 * x + 2] = rouge.Valeur(v);
            }
        }
        }
    }
    free(indices);
    bitsFichier = (int)bits;
    return 1;
}

int EcritImageSure(const char* chemin, EcrivainImage ecrit, const Image& image, int largeur, int hauteur) {
    const int l = largeur < image.largeur ? largeur : image.largeur;
    const int h = hauteur < image.hauteur ? hauteur : image.hauteur;
    if (!image.pixels || image.bits != 24 || l <= 0 || h <= 0) return 0;
    EcritureSure ecriture;
    FILE* f = CommenceEcritureSure(ecriture, chemin);
    if (!f) return 0;
    if (!ecrit(f, image, l, h)) {
        AbandonneEcritureSure(ecriture);
        return 0;
    }
    return TermineEcritureSure(ecriture);
}

int EcritBmp(const char* chemin, const Image& image, int largeur, int hauteur) {
    return EcritImageSure(chemin, EcritBmpFlux, image, largeur, hauteur);
}

int EcritBmpFlux(FILE* f, const Image& s, int l, int h) {
    const uint32_t pas = ((uint32_t)l * 3 + 3) / 4 * 4;
    uint8_t entete[54] = {'B', 'M'};
    E32(entete + 2, 54 + pas * (uint32_t)h);
    E32(entete + 10, 54);
    E32(entete + 14, 40);
    E32(entete + 18, (uint32_t)l);
    E32(entete + 22, (uint32_t)h);
    E16(entete + 26, 1);
    E16(entete + 28, 24);
    E32(entete + 34, pas * (uint32_t)h);
    bool bon = fwrite(entete, 1, sizeof entete, f) == sizeof entete;
    // The picture's top rows stand at the end of the bottom-up memory; the
    // file starts with the lowest row of the part written.
    uint8_t zeros[3] = {};
    for (int r = h - 1; r >= 0 && bon; --r) {
        const uint8_t* ligne = s.pixels + (size_t)(s.hauteur - 1 - r) * s.pas;
        bon = fwrite(ligne, 1, (size_t)l * 3, f) == (size_t)l * 3 &&
              fwrite(zeros, 1, pas - (uint32_t)l * 3, f) == pas - (uint32_t)l * 3;
    }
    return bon ? 1 : 0;
}
