// Test support for picture files: BMP and PNG files made byte by byte, and
// pictures as lists of 0xRRGGBB colours, top row first.
#pragma once
#include "platform/image.h"

#include <png.h>

#include <csetjmp>
#include <cstdint>
#include <string>
#include <vector>

inline std::vector<uint32_t> PixelsDe(const Image& image) {
    std::vector<uint32_t> v;
    for (int y = 0; y < image.hauteur; ++y)
        for (int x = 0; x < image.largeur; ++x) {
            const uint8_t* p = image.pixels + (size_t)(image.hauteur - 1 - y) * image.pas + 3 * x;
            v.push_back((uint32_t)p[2] << 16 | (uint32_t)p[1] << 8 | p[0]);
        }
    return v;
}

// A 24-bit picture that frees itself.
struct ImageLocale {
    Image image;
    ImageLocale(int largeur, int hauteur, const std::vector<uint32_t>& couleurs = {}) {
        CreeImage(image, largeur, hauteur, 24);
        for (size_t i = 0; i < couleurs.size(); ++i)
            Pose((int)(i % largeur), (int)(i / largeur), couleurs[i]);
    }
    ~ImageLocale() { LibereImage(image); }
    ImageLocale(const ImageLocale&) = delete;
    ImageLocale& operator=(const ImageLocale&) = delete;
    void Pose(int x, int y, uint32_t c) {
        uint8_t* p = image.pixels + (size_t)(image.hauteur - 1 - y) * image.pas + 3 * x;
        p[0] = (uint8_t)c;
        p[1] = (uint8_t)(c >> 8);
        p[2] = (uint8_t)(c >> 16);
    }
};

// A smooth picture, at most 16 x 16: distinct colours that a JPEG keeps close.
inline std::vector<uint32_t> Degrade(int largeur, int hauteur) {
    std::vector<uint32_t> v;
    for (int y = 0; y < hauteur; ++y)
        for (int x = 0; x < largeur; ++x)
            v.push_back((uint32_t)(x * 17) << 16 | (uint32_t)(y * 15) << 8 | (uint32_t)(255 - x * 8 - y * 4));
    return v;
}

// The largest difference of one component between two pictures.
inline int EcartMax(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b) {
    int ecart = a.size() == b.size() ? 0 : 256;
    for (size_t i = 0; i < a.size() && i < b.size(); ++i)
        for (int d = 0; d < 24; d += 8) {
            const int difference = (int)(a[i] >> d & 255) - (int)(b[i] >> d & 255);
            ecart = difference > ecart ? difference : -difference > ecart ? -difference : ecart;
        }
    return ecart;
}

// n distinct colours.
inline std::vector<uint32_t> PaletteTest(int n) {
    std::vector<uint32_t> p;
    for (uint32_t i = 0; i < (uint32_t)n; ++i)
        p.push_back(((i * 37 + 11) & 255) << 16 | ((i * 101 + 7) & 255) << 8 | ((255 - i * 13) & 255));
    return p;
}

// Little-endian fields.
inline void Pose16(std::string& t, size_t p, uint32_t v) {
    t[p] = (char)v;
    t[p + 1] = (char)(v >> 8);
}
inline void Pose32(std::string& t, size_t p, uint32_t v) {
    Pose16(t, p, v);
    Pose16(t, p + 2, v >> 16);
}

// A BMP file. The masks stand inside headers of 52 bytes and more, after the
// header otherwise; the pixels follow the palette.
struct Bmp {
    int entete = 40;
    int32_t largeur = 1;
    int32_t hauteur = 1; // negative: rows from the top
    int bits = 24;
    uint32_t compression = 0;
    uint32_t couleursDites = 0;
    std::vector<uint32_t> masques;
    std::vector<uint32_t> palette;
    std::string pixels;
};

inline std::string FabriqueBmp(const Bmp& b) {
    std::string t(14 + b.entete, '\0');
    t[0] = 'B';
    t[1] = 'M';
    Pose32(t, 14, (uint32_t)b.entete);
    if (b.entete == 12) {
        Pose16(t, 18, (uint32_t)b.largeur);
        Pose16(t, 20, (uint32_t)b.hauteur);
        Pose16(t, 22, 1);
        Pose16(t, 24, (uint32_t)b.bits);
    } else {
        Pose32(t, 18, (uint32_t)b.largeur);
        Pose32(t, 22, (uint32_t)b.hauteur);
        Pose16(t, 26, 1);
        Pose16(t, 28, (uint32_t)b.bits);
        Pose32(t, 30, b.compression);
        Pose32(t, 34, (uint32_t)b.pixels.size());
        Pose32(t, 46, b.couleursDites);
    }
    for (size_t i = 0; i < b.masques.size(); ++i) {
        if (b.entete < 52) t.append(4, '\0');
        Pose32(t, b.entete < 52 ? t.size() - 4 : 54 + 4 * i, b.masques[i]);
    }
    for (uint32_t c : b.palette) {
        t += {(char)c, (char)(c >> 8), (char)(c >> 16)};
        if (b.entete != 12) t += '\0';
    }
    Pose32(t, 10, (uint32_t)t.size());
    t += b.pixels;
    Pose32(t, 2, (uint32_t)t.size());
    return t;
}

// Rows as a file stores them, each padded to 4 bytes, the bottom row first
// unless top-down. Values come top row first: an index up to 8 bits, the word
// at 16 and 32 bits, 0xRRGGBB at 24.
inline std::string LignesBmp(int bits, int largeur, int hauteur, bool basEnHaut,
                             const std::vector<uint32_t>& v) {
    const size_t pas = ((size_t)largeur * bits + 31) / 32 * 4;
    std::string t;
    for (int r = 0; r < hauteur; ++r) {
        const int y = basEnHaut ? hauteur - 1 - r : r;
        std::string ligne(pas, '\0');
        for (int x = 0; x < largeur; ++x) {
            const uint32_t c = v[(size_t)y * largeur + x];
            if (bits <= 8)
                ligne[x * bits / 8] = (char)(ligne[x * bits / 8] | c << (8 - bits - x * bits % 8));
            else if (bits == 16)
                Pose16(ligne, 2 * x, c);
            else if (bits == 24)
                ligne.replace(3 * x, 3, {(char)c, (char)(c >> 8), (char)(c >> 16)});
            else
                Pose32(ligne, 4 * x, c);
        }
        t += ligne;
    }
    return t;
}

// A PNG written by libpng from raw rows of its colour type and depth.
struct Png {
    int largeur = 1;
    int hauteur = 1;
    int type = PNG_COLOR_TYPE_RGB;
    int profondeur = 8;
    bool entrelace = false;
    std::vector<uint32_t> palette;
    std::vector<uint8_t> alphas; // tRNS of a palette
    std::string lignes;
};

inline void AjoutePng(png_structp png, png_bytep d, size_t n) {
    ((std::string*)png_get_io_ptr(png))->append((const char*)d, n);
}

inline std::string FabriquePng(const Png& p) {
    std::string sortie;
    std::vector<png_color> couleurs;
    for (uint32_t c : p.palette)
        couleurs.push_back({(png_byte)(c >> 16), (png_byte)(c >> 8), (png_byte)c});
    const size_t pas = p.lignes.size() / (size_t)p.hauteur;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png)) == 0) {
        png_set_write_fn(png, &sortie, AjoutePng, nullptr);
        png_set_IHDR(png, info, (png_uint_32)p.largeur, (png_uint_32)p.hauteur, p.profondeur, p.type,
                     p.entrelace ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                     PNG_FILTER_TYPE_DEFAULT);
        if (!couleurs.empty()) png_set_PLTE(png, info, couleurs.data(), (int)couleurs.size());
        if (!p.alphas.empty()) png_set_tRNS(png, info, p.alphas.data(), (int)p.alphas.size(), nullptr);
        png_write_info(png, info);
        for (int passe = png_set_interlace_handling(png); passe > 0; --passe)
            for (int y = 0; y < p.hauteur; ++y)
                png_write_row(png, (png_const_bytep)p.lignes.data() + y * pas);
        png_write_end(png, info);
    } else {
        sortie.clear();
    }
    png_destroy_write_struct(&png, &info);
    return sortie;
}
