// The conv command end to end: the real program in batch mode, in a fresh
// folder, on pictures drawn here. Every file it writes is compared whole with
// bytes worked out by hand from the conversion rules: colours numbered in the
// order they first appear (rows of the area from the top), index 0 for the
// mask colour and the padding, tiles numbered as first met and written as 8x8
// units, components reduced to 5 bits by dropping their low 3 bits.
#include "tests/app/programme.h"
#include "tests/support/enregistreur.h"
#include "tests/support/projets.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

// ---- Pictures ----------------------------------------------------------------------

constexpr uint32_t MASQUE = 0xFF00FE;       // the default mask colour
constexpr uint32_t INVISIBLE = 0xFF000000u; // a PNG pixel of alpha 0

// 0xRRGGBB colours, top row first.
struct Dessin {
    int largeur = 0, hauteur = 0;
    std::vector<uint32_t> pixels;
    uint32_t Au(int x, int y) const { return pixels[(size_t)y * largeur + x]; }
};

// The letters of the drawings; each colour has junk in the 3 bits the GBA drops.
constexpr uint32_t R = 0xFF0707, V = 0x10F814, B = 0x2A3BFC, J = 0xC0A080, N = 0x000000;
const std::map<char, uint32_t> LETTRES = {{'.', MASQUE}, {'R', R}, {'V', V}, {'B', B}, {'J', J}, {'N', N}};

// Each letter is a square of cote x cote pixels.
Dessin DeLettres(const std::vector<std::string>& lignes, int cote = 1) {
    Dessin d{(int)lignes[0].size() * cote, (int)lignes.size() * cote, {}};
    for (int y = 0; y < d.hauteur; ++y)
        for (int x = 0; x < d.largeur; ++x)
            d.pixels.push_back(LETTRES.at(lignes[y / cote][x / cote]));
    return d;
}

// The GBA colour: blue x 1024 + green x 32 + red, 5 bits each.
uint32_t Gba(uint32_t c) {
    return (c >> 19 & 31) | (c >> 11 & 31) << 5 | (c >> 3 & 31) << 10;
}

std::string Le(uint32_t v, int octets) {
    std::string s;
    for (int i = 0; i < octets; ++i)
        s += (char)(v >> 8 * i);
    return s;
}

void EcritBmp(const std::string& nom, const Dessin& d) {
    const size_t pas = ((size_t)d.largeur * 3 + 3) / 4 * 4;
    std::string t = "BM" + Le((uint32_t)(54 + pas * d.hauteur), 4) + Le(0, 4) + Le(54, 4) + Le(40, 4) +
                    Le((uint32_t)d.largeur, 4) + Le((uint32_t)d.hauteur, 4) + Le(1, 2) + Le(24, 2) +
                    std::string(24, '\0');
    for (int y = d.hauteur - 1; y >= 0; --y) {
        std::string ligne;
        for (int x = 0; x < d.largeur; ++x)
            ligne += Le(d.Au(x, y), 3); // blue, green, red
        ligne.resize(pas, '\0');
        t += ligne;
    }
    EcritFichier(nom, t);
}

void AjouteOctetsPng(png_structp png, png_bytep d, size_t n) {
    ((std::string*)png_get_io_ptr(png))->append((const char*)d, n);
}

// RGBA, the INVISIBLE pixels with alpha 0.
void EcritPng(const std::string& nom, const Dessin& d) {
    std::string sortie;
    std::vector<png_byte> ligne((size_t)d.largeur * 4);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png)) == 0) {
        png_set_write_fn(png, &sortie, AjouteOctetsPng, nullptr);
        png_set_IHDR(png, info, (png_uint_32)d.largeur, (png_uint_32)d.hauteur, 8, PNG_COLOR_TYPE_RGBA,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        for (int y = 0; y < d.hauteur; ++y) {
            for (int x = 0; x < d.largeur; ++x) {
                const uint32_t c = d.Au(x, y);
                const png_byte p[4] = {(png_byte)(c >> 16), (png_byte)(c >> 8), (png_byte)c,
                                       (png_byte)(c == INVISIBLE ? 0 : 255)};
                std::copy(p, p + 4, &ligne[(size_t)x * 4]);
            }
            png_write_row(png, ligne.data());
        }
        png_write_end(png, info);
    }
    png_destroy_write_struct(&png, &info);
    EcritFichier(nom, sortie);
}

// ---- The program and the project ----------------------------------------------------

// Runs the program on a batch line in the working folder; gives its standard error.
std::string Lance(const std::string& ligne) {
    const Execution e = Execute({ligne});
    EXPECT_EQ(e.code, 0) << ligne;
    return e.erreurs;
}

// Raw little-endian files: the declarations hold what the readers need (a
// text ends at '|'), no line ends anywhere.
const std::string FORMAT_BRUT = R"(  defformat "Brut" {
    bitmap16 {
      declaration = "%#2sizex%%#2sizey%"
      n_every = 0
      element = "%2b"
      line = ""
      end = ""
      ext = ".b16.bin"
    }
    bitmap8 {
      declaration = "%#2sizex%%#2sizey%%link%|"
      n_every = 0
      element = "%1b"
      line = ""
      end = ""
      ext = ".b8.bin"
    }
    palette {
      declaration = "%#2size%"
      n_every = 0
      element = "%2b"
      end = ""
      ext = ".pal.bin"
    }
    tileset {
      declaration = "%#2size%%#1depth%%#1tilex%%#1tiley%%link%|"
      n_every = 0
      element = "%1b"
      element2 = "%1b"
      element3 = "%2b"
      line = ""
      end = ""
      ext = ".til.bin"
    }
    map {
      declaration = "%#2sizex%%#2sizey%%#1depth%%#1tilex%%#1tiley%%link%|"
      n_every = 0
      element = "%2b"
      element2 = "%1b"
      element3 = "%4b"
      line = ""
      end = ""
      ext = ".map.bin"
    }
  }
  selformat "Brut"
)";

void ProjetBrut(const std::string& lignes = "") {
    EcritFichier("projet.tsl", Projet("", lignes, FORMAT_BRUT + "  End\n"));
}

// The element rows of the project as the program saved it.
std::string Rangees() {
    const std::string t = LitFichier("projet.tsl");
    const size_t debut = t.find(OUVERTURE_FICHIERS);
    if (debut == std::string::npos) return "<no element section>";
    const size_t d = debut + OUVERTURE_FICHIERS.size();
    return t.substr(d, t.find(" Fin\n", d) - d);
}

// ---- Expected files -------------------------------------------------------------------

using Unite = std::vector<uint32_t>; // the 64 values of an 8x8 unit, row by row

// Units of one value each.
std::vector<Unite> Plates(const std::vector<uint32_t>& valeurs) {
    std::vector<Unite> unites;
    for (uint32_t v : valeurs)
        unites.push_back(Unite(64, v));
    return unites;
}
// One digit a unit; blanks are passed over.
std::vector<Unite> Plates(const std::string& chiffres) {
    std::vector<uint32_t> valeurs;
    for (char c : chiffres)
        if (c != ' ') valeurs.push_back((uint32_t)(c - '0'));
    return Plates(valeurs);
}

// The unit at (x0, y0) of the picture, each pixel through valeur.
Unite Bloc(const Dessin& d, int x0, int y0, const std::function<uint32_t(uint32_t)>& valeur) {
    Unite u;
    for (int y = y0; y < y0 + 8; ++y)
        for (int x = x0; x < x0 + 8; ++x)
            u.push_back(valeur(d.Au(x, y)));
    return u;
}

// Colour to index, the index being the letter's place in ordre.
std::function<uint32_t(uint32_t)> Indices(const std::string& ordre) {
    return [ordre](uint32_t c) {
        for (size_t i = 0; i < ordre.size(); ++i)
            if (LETTRES.at(ordre[i]) == c) return (uint32_t)i;
        return 999u;
    };
}

std::string FichierPalette(const std::vector<uint32_t>& couleurs) {
    std::string s = Le((uint32_t)couleurs.size(), 2);
    for (uint32_t c : couleurs)
        s += Le(c, 2);
    return s;
}

// 4 bits: pairs, the first pixel in the low half, each modulo 16.
std::string FichierTuiles(int nombre, int profondeur, int tx, int ty, const std::string& lien,
                          const std::vector<Unite>& unites) {
    std::string s = Le((uint32_t)nombre, 2) + Le((uint32_t)profondeur, 1) + Le((uint32_t)tx, 1) +
                    Le((uint32_t)ty, 1) + lien + "|";
    for (const Unite& u : unites)
        for (size_t i = 0; i < 64; i += profondeur == 4 ? 2 : 1)
            s += profondeur == 4 ? Le(u[i] % 16 | u[i + 1] % 16 << 4, 1) : Le(u[i], profondeur == 15 ? 2 : 1);
    return s;
}

std::string FichierCarte(int colonnes, int rangees, int octets, const std::string& lien,
                         const std::vector<uint32_t>& cellules, int tx = 8, int ty = 8) {
    std::string s = Le((uint32_t)colonnes, 2) + Le((uint32_t)rangees, 2) + Le((uint32_t)octets * 8, 1) +
                    Le((uint32_t)tx, 1) + Le((uint32_t)ty, 1) + lien + "|";
    for (uint32_t c : cellules)
        s += Le(c, octets);
    return s;
}

// The three rows of a tileset conversion, the palette's left out when empty.
std::string RangeesMosaique(const std::string& til, const std::string& pal, const std::string& map,
                            const std::string& source = "a.bmp") {
    auto Nom = [](const std::string& f) { return f.substr(0, f.find('.')); };
    return Ligne(Nom(til), "tileset", til, source) +
           (pal.empty() ? "" : Ligne(Nom(pal), "palette", pal, source)) +
           (map.empty() ? "" : Ligne(Nom(map), "carte", map, source));
}

const std::vector<uint32_t> PALETTE_RVBJN = {0, Gba(R), Gba(V), Gba(B), Gba(J), Gba(N)};

const char* const OUVERTURE_DONNEES_ECHOUEE =
    "] Unable to open the file for writing.\nThe file name is probably erroneous.\n";
const char* const OUVERTURE_IMAGE_ECHOUEE = "] Unable to open the file for writing.\nMaybe the name is wrong "
                                            "or you don't have access to this directory.\n";
const char* const QUESTION_COULEURS = "[Oops...] The source bitmap contains more colors than wanted.\n"
                                      "A filter will be applied (don't worry, it will be much better than "
                                      "with paint ;)\nHowever, this can be very long!\n"
                                      "It is still recommended to continue.\n";

// ---- The built-in C format and round trips ----------------------------------------------

std::string Hexa(uint32_t v, int chiffres) {
    std::string s = "0x";
    for (int i = chiffres - 1; i >= 0; --i)
        s += "0123456789abcdef"[v >> 4 * i & 15];
    return s;
}

// Values as the built-in templates lay them out: "0x..., " each, the blank of
// every n-th one taken back for a line end, the last ", " taken back by the end.
std::string SuiteC(const std::vector<uint32_t>& v, int chiffres, size_t parLigne) {
    std::string s;
    for (size_t i = 0; i < v.size(); ++i)
        s += (i == 0 ? "" : i % parLigne ? ", " : ",\r\n") + Hexa(v[i], chiffres);
    return s + "};\r\n";
}

std::string Tete(const std::string& source, const std::string& quoi, const std::string& taille, int memoire,
                 const std::string& declaration) {
    return "//" + source + "\r\n//Converti avec Tessellarium par Zorvan\r\n//" + quoi +
           "\r\n//Taille: " + taille + "\r\n//M\xE9moire: " + std::to_string(memoire) + " octets\r\n\r\n" +
           declaration;
}

// Some colours, then pixels drawn at random among them or vide; every colour
// appears when there is room.
Dessin AuHasard(int largeur, int hauteur, const std::vector<uint32_t>& couleurs, uint32_t vide) {
    Dessin d{largeur, hauteur, {}};
    uint32_t graine = 2024;
    for (size_t i = 0; i < (size_t)largeur * hauteur; ++i) {
        graine = graine * 1103515245u + 12345u;
        const uint32_t k = graine >> 16;
        d.pixels.push_back(i < couleurs.size() ? couleurs[i]
                           : k % 8 == 0        ? vide
                                               : couleurs[k / 8 % couleurs.size()]);
    }
    return d;
}

std::vector<uint32_t> QuinzeCouleurs() {
    std::vector<uint32_t> c;
    for (uint32_t k = 0; k < 15; ++k) // red 2k in 5 bits
        c.push_back((16 * k + k % 8) << 16 | ((31 - 2 * k) * 8 + k * 3 % 8) << 8 | ((5 * k % 32) * 8 + 7));
    return c;
}

std::vector<uint32_t> DeuxCentCinquanteCinqCouleurs() {
    std::vector<uint32_t> c;
    for (uint32_t i = 0; i < 255; ++i) // red i % 32, blue i / 32 in 5 bits
        c.push_back((i % 32 * 8 + i % 8) << 16 | (7 * i % 32 * 8 + i / 8 % 8) << 8 | (i / 32 * 8 + 3));
    return c;
}

// A C array as the built-in format writes it: the sizes in brackets behind its
// name, then every value of the initialiser.
struct TableauC {
    std::vector<long> tailles;
    std::vector<uint32_t> valeurs;
};

TableauC LitTableauC(const std::string& texte) {
    TableauC t;
    const size_t egal = texte.find("]=\t{");
    if (egal == std::string::npos) return t;
    for (size_t p = texte.rfind('\n', egal); (p = texte.find('[', p)) < egal; ++p)
        t.tailles.push_back(strtol(texte.c_str() + p + 1, nullptr, 10));
    for (size_t p = egal; (p = texte.find("0x", p)) != std::string::npos; p += 2)
        t.valeurs.push_back((uint32_t)strtoul(texte.c_str() + p + 2, nullptr, 16));
    return t;
}

// Tiles, map and palette read back into pixels: each is the picture's colour
// in 5 bits, or index 0 where the picture is transparent or absent.
void VerifieAllerRetour(const Dessin& d, const std::string& base, int tx, int ty, bool quatreBits) {
    const TableauC pal = LitTableauC(LitFichier(base + ".pal.c"));
    const TableauC til = LitTableauC(LitFichier(base + ".til.c"));
    const TableauC map = LitTableauC(LitFichier(base + ".map.c"));
    ASSERT_EQ(map.tailles.size(), 2u) << base;
    const long rangees = map.tailles[0], colonnes = map.tailles[1];
    EXPECT_EQ(colonnes, (d.largeur + tx - 1) / tx);
    EXPECT_EQ(rangees, (d.hauteur + ty - 1) / ty);
    ASSERT_EQ(map.valeurs.size(), (size_t)(rangees * colonnes));
    EXPECT_LE(pal.valeurs.size(), quatreBits ? 16u : 256u);
    ASSERT_EQ(pal.tailles, std::vector<long>{(long)pal.valeurs.size()});
    const size_t unites = (size_t)(tx / 8) * (ty / 8);
    int fautes = 0;
    std::string premiere;
    for (int y = 0; y < rangees * ty; ++y)
        for (int x = 0; x < colonnes * tx; ++x) {
            const size_t tuile = map.valeurs[(size_t)(y / ty * colonnes + x / tx)];
            const size_t n =
                (tuile * unites + (size_t)(y % ty / 8 * (tx / 8) + x % tx / 8)) * 64 + y % 8 * 8 + x % 8;
            ASSERT_LT(quatreBits ? n / 2 : n, til.valeurs.size()) << base;
            const uint32_t index = quatreBits ? til.valeurs[n / 2] >> n % 2 * 4 & 15 : til.valeurs[n];
            const uint32_t c = x < d.largeur && y < d.hauteur ? d.Au(x, y) : INVISIBLE;
            const bool vide = c == MASQUE || c == INVISIBLE;
            const bool bon =
                vide ? index == 0 : index != 0 && index < pal.valeurs.size() && pal.valeurs[index] == Gba(c);
            if (!bon && fautes++ == 0) premiere = std::to_string(x) + "," + std::to_string(y);
        }
    EXPECT_EQ(fautes, 0) << base << ": first at " << premiere;
}

} // namespace

// ---- Tilesets through a binary format ------------------------------------------------------

// Top left all mask, top right and bottom left the same tile, bottom right
// another: three tiles, whatever the depth.
TEST(ConvTuiles, ProfondeursFichierParFichier) {
    const Dessin dessin =
        DeLettres({"........RRRRVVVV", "........RRRVVVVB", "........RRVVVVBB", "........RVVVVBBB",
                   "........VVVVBBBB", "........VVVBBBBJ", "........VVBBBBJJ", "........VBBBBJJJ",
                   "RRRRVVVVN.N.N.N.", "RRRVVVVB.N.N.N.N", "RRVVVVBBNNNNRRRR", "RVVVVBBBRRRRNNNN",
                   "VVVVBBBBN......R", "VVVBBBBJNN....RR", "VVBBBBJJNNN..RRR", "VBBBBJJJNNNNRRRR"});
    const struct {
        const char* ligne;
        int profondeur;
    } cas[] = {{"-tset src=a.bmp", 8},
               {"-tset src=a.bmp +16c", 4},
               {"-tset src=a.bmp cmode=4", 4},
               {"-tset src=a.bmp cmode=15", 15},
               {"-tset src=a.bmp +16c -16c", 8}};
    for (const auto& c : cas) {
        DossierTemporaire dossier;
        ProjetBrut();
        EcritBmp("a.bmp", dessin);
        EXPECT_EQ(Lance(c.ligne), "") << c.ligne;
        const bool direct = c.profondeur == 15;
        // Direct colours: the mask colour is 0xFFFF, and there is no palette.
        auto valeur = direct ? [](uint32_t p) { return p == MASQUE ? 0xFFFFu : Gba(p); } : Indices(".RVBJN");
        const std::vector<Unite> tuiles = {Bloc(dessin, 0, 0, valeur), Bloc(dessin, 8, 0, valeur),
                                           Bloc(dessin, 8, 8, valeur)};
        EXPECT_EQ(LitFichier("a.til.bin"),
                  FichierTuiles(3, c.profondeur, 8, 8, direct ? "" : "a.pal.bin", tuiles))
            << c.ligne;
        EXPECT_EQ(LitFichier("a.map.bin"), FichierCarte(2, 2, 2, "a.til.bin", {0, 1, 1, 2})) << c.ligne;
        if (direct)
            EXPECT_FALSE(std::filesystem::exists("a.pal.bin"));
        else
            EXPECT_EQ(LitFichier("a.pal.bin"), FichierPalette(PALETTE_RVBJN)) << c.ligne;
        EXPECT_EQ(Rangees(), RangeesMosaique("a.til.bin", direct ? "" : "a.pal.bin", "a.map.bin")) << c.ligne;
    }
}

// Flat 8x8 blocks: a tile of several units is stored unit by unit, left to
// right then top to bottom, and the declaration gives the tile size.
TEST(ConvTuiles, TaillesDeTuiles) {
    const Dessin dessin = DeLettres({"RVVR", "BJJB", "RVNN", "BJ.."}, 8);
    const std::string large = "1221000000000000 3443000000000000 1255000000000000 3400000000000000";
    const struct {
        const char* tdim;
        int tx, ty, colonnes, rangees;
        std::vector<uint32_t> cellules;
        int nombre;
        const char* unites; // the value of each unit, tile after tile
    } cas[] = {
        {"", 8, 8, 4, 4, {0, 1, 1, 0, 2, 3, 3, 2, 0, 1, 4, 4, 2, 3, 5, 5}, 6, "1 2 3 4 5 0"},
        {"tdim=16x16", 16, 16, 2, 2, {0, 1, 0, 2}, 3, "1234 2143 5500"},
        {"tdim=16", 16, 8, 2, 4, {0, 1, 2, 3, 0, 4, 2, 5}, 6, "12 21 34 43 55 00"},
        {"tdim=8x16", 8, 16, 4, 2, {0, 1, 1, 0, 0, 1, 2, 2}, 3, "13 24 50"},
        {"tdim=32x8", 32, 8, 1, 4, {0, 1, 2, 3}, 4, "1221 3443 1255 3400"},
        // 128 is the largest size: one tile of 16 units a row, padded.
        {"tdim=128x8", 128, 8, 1, 4, {0, 1, 2, 3}, 4, large.c_str()},
    };
    for (const auto& c : cas) {
        DossierTemporaire dossier;
        ProjetBrut();
        EcritBmp("a.bmp", dessin);
        EXPECT_EQ(Lance(std::string("-tset src=a.bmp ") + c.tdim), "") << c.tdim;
        EXPECT_EQ(LitFichier("a.til.bin"),
                  FichierTuiles(c.nombre, 8, c.tx, c.ty, "a.pal.bin", Plates(c.unites)))
            << c.tdim;
        EXPECT_EQ(LitFichier("a.map.bin"),
                  FichierCarte(c.colonnes, c.rangees, 2, "a.til.bin", c.cellules, c.tx, c.ty))
            << c.tdim;
        EXPECT_EQ(LitFichier("a.pal.bin"), FichierPalette(PALETTE_RVBJN)) << c.tdim;
    }
}

// A 20 x 20 picture of one colour: the area is rounded up to whole tiles and
// what lies beyond the picture is index 0; mdim cuts or widens it.
TEST(ConvTuiles, AireEtBourrage) {
    const Dessin dessin = DeLettres({"R"}, 20);
    const struct {
        const char* mdim;
        int colonnes, rangees;
        std::vector<uint32_t> cellules;
        std::vector<std::pair<int, int>> tuiles; // colour on so many columns and rows of each
    } cas[] = {
        {"", 3, 3, {0, 0, 1, 0, 0, 1, 2, 2, 3}, {{8, 8}, {4, 8}, {8, 4}, {4, 4}}},
        {"mdim=8x8", 1, 1, {0}, {{8, 8}}},
        {"mdim=16", 2, 3, {0, 0, 0, 0, 1, 1}, {{8, 8}, {8, 4}}}, // no height: the picture's
        {"mdim=40x8", 5, 1, {0, 0, 1, 2, 2}, {{8, 8}, {4, 8}, {0, 0}}},
        {"mdim=0x4", 3, 1, {0, 0, 1}, {{8, 8}, {4, 8}}}, // 4 rows round up to 8
    };
    for (const auto& c : cas) {
        DossierTemporaire dossier;
        ProjetBrut();
        EcritBmp("a.bmp", dessin);
        EXPECT_EQ(Lance(std::string("-tset src=a.bmp ") + c.mdim), "") << c.mdim;
        std::vector<Unite> tuiles;
        for (auto [l, h] : c.tuiles) {
            tuiles.emplace_back();
            for (int y = 0; y < 8; ++y)
                for (int x = 0; x < 8; ++x)
                    tuiles.back().push_back(x < l && y < h ? 1 : 0);
        }
        EXPECT_EQ(LitFichier("a.til.bin"), FichierTuiles((int)tuiles.size(), 8, 8, 8, "a.pal.bin", tuiles))
            << c.mdim;
        EXPECT_EQ(LitFichier("a.map.bin"), FichierCarte(c.colonnes, c.rangees, 2, "a.til.bin", c.cellules))
            << c.mdim;
        EXPECT_EQ(LitFichier("a.pal.bin"), FichierPalette({0, Gba(R)})) << c.mdim;
    }
}

// Tiles R, V, R: the map's cells and names, duplicates kept or not.
TEST(ConvTuiles, CartesEtNoms) {
    const struct {
        const char* ligne;
        const char *til, *pal, *map; // map "": none written
        int octets;
        std::vector<uint32_t> cellules, tuiles;
    } cas[] = {
        {"", "a.til.bin", "a.pal.bin", "a.map.bin", 2, {0, 1, 0}, {1, 2}},
        {"-opt", "a.til.bin", "a.pal.bin", "a.map.bin", 2, {0, 1, 2}, {1, 2, 1}},
        {"mapmode=8", "a.til.bin", "a.pal.bin", "a.map.bin", 1, {0, 1, 0}, {1, 2}},
        {"-txt", "a.til.bin", "a.pal.bin", "a.map.bin", 1, {0, 1, 0}, {1, 2}},
        {"-txt mapmode=16", "a.til.bin", "a.pal.bin", "a.map.bin", 2, {0, 1, 0}, {1, 2}},
        {"mapmode=32 -opt", "a.til.bin", "a.pal.bin", "a.map.bin", 4, {0, 1, 2}, {1, 2, 1}},
        {"-gmap", "a.til.bin", "a.pal.bin", "", 0, {}, {1, 2}},
        // A flag with no prefix keeps its value; "!" sets it.
        {"-opt opt", "a.til.bin", "a.pal.bin", "a.map.bin", 2, {0, 1, 2}, {1, 2, 1}},
        {"-gmap !gmap", "a.til.bin", "a.pal.bin", "a.map.bin", 2, {0, 1, 0}, {1, 2}},
        {"dst=sortie", "sortie.til.bin", "sortie.pal.bin", "sortie.map.bin", 2, {0, 1, 0}, {1, 2}},
        {"map=plan pal=teintes", "a.til.bin", "teintes.pal.bin", "plan.map.bin", 2, {0, 1, 0}, {1, 2}},
    };
    for (const auto& c : cas) {
        DossierTemporaire dossier;
        ProjetBrut();
        EcritBmp("a.bmp", DeLettres({"RVR"}, 8));
        EXPECT_EQ(Lance(std::string("-tset src=a.bmp ") + c.ligne), "") << c.ligne;
        std::set<std::string> attendus = {"a.bmp", "projet.tsl", c.til, c.pal};
        EXPECT_EQ(LitFichier(c.til), FichierTuiles((int)c.tuiles.size(), 8, 8, 8, c.pal, Plates(c.tuiles)))
            << c.ligne;
        EXPECT_EQ(LitFichier(c.pal), FichierPalette({0, Gba(R), Gba(V)})) << c.ligne;
        if (c.map[0]) {
            attendus.insert(c.map);
            EXPECT_EQ(LitFichier(c.map), FichierCarte(3, 1, c.octets, c.til, c.cellules)) << c.ligne;
        }
        EXPECT_EQ(Fichiers(), attendus) << c.ligne;
        EXPECT_EQ(Rangees(), RangeesMosaique(c.til, c.pal, c.map)) << c.ligne;
    }
}

// 300 different tiles, numbered as met: an 8-bit cell keeps the low 8 bits
// (the C format would show more), after a warning that only a run with a
// project asks.
TEST(ConvTuiles, PlusDeTuilesQueLaRotationNeLit) {
    Dessin dessin{160, 120, std::vector<uint32_t>(160 * 120, N)};
    const std::vector<uint32_t> couleurs = DeuxCentCinquanteCinqCouleurs();
    for (int k = 0; k < 300; ++k) { // tile k: its column's and its row's colour in its first two pixels
        dessin.pixels[(size_t)(k / 20 * 8) * 160 + k % 20 * 8] = couleurs[1 + k % 20];
        dessin.pixels[(size_t)(k / 20 * 8) * 160 + k % 20 * 8 + 1] = couleurs[1 + k / 20];
    }
    const std::string avertissement =
        "[Tiles converter] The bitmap contains more tiles than available on GBA (1024 "
        "tiles for text mode and 256 for rotation mode)\nThe result should be crappy...\n";
    const struct {
        const char* ligne;
        bool projet, avertit;
        uint32_t modulo;
    } cas[] = {{"-tset src=a.bmp mapmode=8", true, true, 256},
               {"-tset src=a.bmp mapmode=8", false, false, 256},
               {"-tset src=a.bmp", true, false, 1024}};
    for (const auto& c : cas) {
        DossierTemporaire dossier;
        if (c.projet) EcritFichier("projet.tsl", Projet("", ""));
        EcritBmp("a.bmp", dessin);
        EXPECT_EQ(Lance(c.ligne), c.avertit ? avertissement : "") << c.ligne;
        std::vector<uint32_t> cellules;
        for (uint32_t k = 0; k < 300; ++k)
            cellules.push_back(k % c.modulo);
        const TableauC carte = LitTableauC(LitFichier("a.map.c"));
        EXPECT_EQ(carte.tailles, (std::vector<long>{15, 20})) << c.ligne;
        EXPECT_EQ(carte.valeurs, cellules) << c.ligne;
        EXPECT_NE(LitFichier("a.til.c").find("//Taille: 8*8*300\r\n"), std::string::npos) << c.ligne;
        EXPECT_EQ(Rangees(), RangeesMosaique("a.til.c", "a.pal.c", "a.map.c")) << c.ligne;
    }
}

// ---- Existing elements extended ------------------------------------------------------------

// base: entry 0 (never kept), R, V, R. The picture: R, V, B, mask. Of two
// equal colours the later one is taken.
TEST(ConvExistants, PaletteEtendue) {
    const struct {
        const char* ligne;
        int profondeur;
        std::vector<uint32_t> palette, tuiles;
    } cas[] = {
        {"upal=base", 8, {0, Gba(R), Gba(V), Gba(R), Gba(B)}, {3, 2, 4, 0}},
        {"!upal=base", 8, {0, Gba(R), Gba(V), Gba(R), Gba(R), Gba(V), Gba(B)}, {4, 5, 6, 0}}, // never matched
        {"upal=base +16c", 4, {0, Gba(R), Gba(V), Gba(R), Gba(B)}, {3, 2, 4, 0}},
        // A row of 16 of their own: transparent is its entry 0, number 16.
        {"!upal=base +16c",
         4,
         {0, Gba(R), Gba(V), Gba(R), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, Gba(R), Gba(V), Gba(B)},
         {17, 18, 19, 16}},
    };
    for (const auto& c : cas) {
        DossierTemporaire dossier;
        ProjetBrut(Ligne("base", "palette", "base.pal.bin", "vieux.bmp"));
        EcritFichier("base.pal.bin", FichierPalette({0x7FFF, Gba(R), Gba(V), Gba(R)}));
        EcritBmp("a.bmp", DeLettres({"RVB."}, 8));
        EXPECT_EQ(Lance(std::string("-tset src=a.bmp ") + c.ligne), "") << c.ligne;
        EXPECT_EQ(LitFichier("base.pal.bin"), FichierPalette(c.palette)) << c.ligne;
        EXPECT_EQ(LitFichier("a.til.bin"),
                  FichierTuiles(4, c.profondeur, 8, 8, "base.pal.bin", Plates(c.tuiles)))
            << c.ligne;
        EXPECT_EQ(LitFichier("a.map.bin"), FichierCarte(4, 1, 2, "a.til.bin", {0, 1, 2, 3})) << c.ligne;
        EXPECT_FALSE(std::filesystem::exists("a.pal.bin")) << c.ligne;
        // The palette's row moves to the end with its old fields.
        EXPECT_EQ(Rangees(), Ligne("a", "tileset", "a.til.bin", "a.bmp") +
                                 Ligne("base", "palette", "base.pal.bin", "vieux.bmp") +
                                 Ligne("a", "carte", "a.map.bin", "a.bmp"))
            << c.ligne;
    }
}

// base: tile 0 all transparent, tile 1 all index 1. The picture: mask, R, V.
TEST(ConvExistants, MosaiqueEtendue) {
    const struct {
        const char* ligne;
        int profondeur; // of the existing file, which the output keeps
        std::vector<uint32_t> tuiles, cellules;
    } cas[] = {
        {"util=base", 8, {0, 1, 2}, {0, 1, 2}},
        {"!util=base", 8, {0, 1, 0, 1, 2}, {2, 3, 4}}, // numbered after the old tiles, even the equal ones
        {"util=base", 4, {0, 1, 2}, {0, 1, 2}},
    };
    for (const auto& c : cas) {
        DossierTemporaire dossier;
        ProjetBrut(Ligne("base", "tileset", "base.til.bin", "vieux.bmp"));
        EcritFichier("base.til.bin", FichierTuiles(2, c.profondeur, 8, 8, "vieux.pal.bin", Plates("01")));
        EcritBmp("a.bmp", DeLettres({".RV"}, 8));
        EXPECT_EQ(Lance(std::string("-tset src=a.bmp ") + c.ligne), "") << c.ligne;
        EXPECT_EQ(LitFichier("base.til.bin"),
                  FichierTuiles((int)c.tuiles.size(), c.profondeur, 8, 8, "a.pal.bin", Plates(c.tuiles)))
            << c.ligne;
        EXPECT_EQ(LitFichier("a.map.bin"), FichierCarte(3, 1, 2, "base.til.bin", c.cellules)) << c.ligne;
        EXPECT_EQ(LitFichier("a.pal.bin"), FichierPalette({0, Gba(R), Gba(V)})) << c.ligne;
        EXPECT_EQ(Rangees(), Ligne("base", "tileset", "base.til.bin", "vieux.bmp") +
                                 Ligne("a", "palette", "a.pal.bin", "a.bmp") +
                                 Ligne("a", "carte", "a.map.bin", "a.bmp"))
            << c.ligne;
    }
}

// Random pictures of tiles drawn from a small pool, over an existing tileset
// holding some of the same tiles (and twice some): the numbers and the store
// are those of the plain way, a linear search from the search start (the
// first tile with util, the first new one with !util).
TEST(ConvExistants, DoublonsCommeLaRechercheLineaire) {
    std::mt19937 alea(31337);
    auto de = [&](int n) { return (int)(alea() % (unsigned)n); };
    const std::string lettres = ".RVBJN";
    for (int essai = 0; essai < 24; ++essai) {
        std::vector<std::vector<char>> reserve((size_t)(2 + de(5)));
        for (auto& motif : reserve) {
            motif.assign(64, '.');
            const int fond = de(6), autre = de(6);
            for (char& c : motif) c = lettres[(size_t)(de(4) ? fond : autre)];
        }
        const int colonnes = 2 + de(5), rangees = 1 + de(4);
        std::vector<int> places((size_t)colonnes * rangees);
        for (int& p : places) p = de((int)reserve.size());
        std::vector<std::string> lignes((size_t)rangees * 8, std::string((size_t)colonnes * 8, '.'));
        for (int r = 0; r < rangees; ++r)
            for (int k = 0; k < colonnes; ++k)
                for (int i = 0; i < 64; ++i)
                    lignes[(size_t)(r * 8 + i / 8)][(size_t)(k * 8 + i % 8)] =
                        reserve[(size_t)places[(size_t)r * colonnes + k]][(size_t)i];
        // Indices as the palette numbers colours: first met from the top.
        std::string ordre = ".";
        for (const std::string& l : lignes)
            for (char c : l)
                if (ordre.find(c) == std::string::npos) ordre += c;
        auto unite = [&](const std::vector<char>& motif) {
            Unite u;
            for (char c : motif) {
                const size_t i = ordre.find(c);
                u.push_back(i == std::string::npos ? 0u : (uint32_t)i);
            }
            return u;
        };
        std::vector<Unite> magasin;
        for (int t = 1 + de(5); t > 0; --t) magasin.push_back(unite(reserve[(size_t)de((int)reserve.size())]));
        if (de(2)) magasin.push_back(magasin[(size_t)de((int)magasin.size())]);
        const size_t anciennes = magasin.size();
        const bool util = de(2);
        const size_t debut = util ? 0 : anciennes;
        std::vector<uint32_t> cellules;
        for (int p : places) {
            const Unite u = unite(reserve[(size_t)p]);
            size_t t = debut;
            while (t < magasin.size() && magasin[t] != u) ++t;
            if (t == magasin.size()) magasin.push_back(u);
            cellules.push_back((uint32_t)t);
        }
        const std::string ligne = std::string("-tset src=a.bmp ") + (util ? "util=base" : "!util=base");
        SCOPED_TRACE("essai " + std::to_string(essai) + ": " + ligne);
        DossierTemporaire dossier;
        ProjetBrut(Ligne("base", "tileset", "base.til.bin", "vieux.bmp"));
        std::vector<Unite> existantes(magasin.begin(), magasin.begin() + (long)anciennes);
        EcritFichier("base.til.bin", FichierTuiles((int)anciennes, 8, 8, 8, "vieux.pal.bin", existantes));
        EcritBmp("a.bmp", DeLettres(lignes));
        ASSERT_EQ(Lance(ligne), "");
        ASSERT_EQ(LitFichier("a.map.bin"), FichierCarte(colonnes, rangees, 2, "base.til.bin", cellules));
        ASSERT_EQ(LitFichier("base.til.bin"), FichierTuiles((int)magasin.size(), 8, 8, 8, "a.pal.bin", magasin));
    }
}

// ---- Bitmaps ------------------------------------------------------------------------------

TEST(ConvBitmaps, HuitEtSeizeBits) {
    const Dessin dessin = DeLettres({"R.N", "VRJ"});
    const std::string tete = Le(3, 2) + Le(2, 2);
    std::string seize = tete;
    for (uint32_t p : dessin.pixels)
        seize += Le(Gba(p), 2); // the mask colour is a colour here
    const std::string huit = tete + "a.pal.bin|" + std::string("\x01\x00\x02\x03\x01\x04", 6);
    const std::string palette = FichierPalette({0, Gba(R), Gba(N), Gba(V), Gba(J)});
    const struct {
        const char* ligne;
        std::map<std::string, std::string> fichiers;
        std::string rangees;
    } cas[] = {
        {"-b16 src=a.bmp", {{"a.b16.bin", seize}}, Ligne("a", "bitmap 16 bits", "a.b16.bin", "a.bmp")},
        {"-b8 src=a.bmp",
         {{"a.b8.bin", huit}, {"a.pal.bin", palette}},
         Ligne("a", "bitmap 8 bits", "a.b8.bin", "a.bmp") + Ligne("a", "palette", "a.pal.bin", "a.bmp")},
        // Without an extension the first picture type present; dst is a base name.
        {"-b8 src=a dst=image",
         {{"image.b8.bin", tete + "image.pal.bin|" + huit.substr(tete.size() + 10)},
          {"image.pal.bin", palette}},
         Ligne("image", "bitmap 8 bits", "image.b8.bin", "a.bmp") +
             Ligne("image", "palette", "image.pal.bin", "a.bmp")},
        {"-b8 src=a.bmp col=0", {}, ""},
        {"-b8 src=a.bmp col=256", {}, ""},
    };
    for (const auto& c : cas) {
        DossierTemporaire dossier;
        ProjetBrut();
        EcritBmp("a.bmp", dessin);
        EcritPng("a.png", DeLettres({"JJJ", "JJJ"})); // never read: .bmp comes first
        EXPECT_EQ(Lance(c.ligne), "") << c.ligne;
        std::set<std::string> attendus = {"a.bmp", "a.png", "projet.tsl"};
        for (const auto& [nom, contenu] : c.fichiers) {
            attendus.insert(nom);
            EXPECT_EQ(LitFichier(nom), contenu) << c.ligne << " " << nom;
        }
        EXPECT_EQ(Fichiers(), attendus) << c.ligne;
        EXPECT_EQ(Rangees(), c.rangees) << c.ligne;
    }
}

// ---- More colours than allowed ---------------------------------------------------------------

// Sixteen colours in every row: fifteen at least 2 apart in red, the last one
// a single step from the fifteenth. Whichever way the threshold is searched
// (bisection for tiles, downwards for bitmaps), 15 colours fit only by joining
// those two, and nothing else moves. A project file runs as a script, after
// which conversions ask their questions: the question is printed and takes
// OK. Without a project no script has run, and it is never asked.
TEST(ConvCouleurs, SeuilChercheQuandTropDeCouleurs) {
    Dessin dessin{16, 8, std::vector<uint32_t>(128)};
    std::vector<uint32_t> palette = {0};
    for (int x = 0; x < 16; ++x) {
        const uint32_t c = (uint32_t)(x < 15 ? 16 * x + 5 : 239) << 16 | 0x2028; // red 2x, or 29
        if (x < 15) palette.push_back(Gba(c));
        for (int y = 0; y < 8; ++y)
            dessin.pixels[(size_t)y * 16 + x] = c;
    }
    auto index = [](uint32_t c) { return std::min(((c >> 16) - 5) / 16 + 1, 15u); };
    const std::vector<Unite> tuiles = {Bloc(dessin, 0, 0, index), Bloc(dessin, 8, 0, index)};
    std::string bitmap = Le(16, 2) + Le(8, 2) + "b.pal.bin|";
    for (uint32_t p : dessin.pixels)
        bitmap += Le(index(p), 1);

    for (bool projet : {true, false}) {
        DossierTemporaire dossier;
        if (projet) ProjetBrut();
        EcritBmp("a.bmp", dessin);
        const std::string question = projet ? QUESTION_COULEURS : "";
        EXPECT_EQ(Lance("-tset src=a.bmp +16c:-tset src=a.bmp cmode=4 dst=c:-b8 src=a.bmp col=15 pal=b"),
                  question + question + question);
        if (!projet) {
            // The built-in format: the palettes' sizes say the same.
            for (const char* f : {"a.pal.c", "c.pal.c", "b.pal.c"})
                EXPECT_NE(LitFichier(f).find("//Taille: 16\r\n"), std::string::npos) << f;
            continue;
        }
        for (const char* f : {"a.pal.bin", "c.pal.bin", "b.pal.bin"})
            EXPECT_EQ(LitFichier(f), FichierPalette(palette)) << f;
        EXPECT_EQ(LitFichier("a.til.bin"), FichierTuiles(2, 4, 8, 8, "a.pal.bin", tuiles));
        EXPECT_EQ(LitFichier("c.til.bin"), FichierTuiles(2, 4, 8, 8, "c.pal.bin", tuiles));
        EXPECT_EQ(LitFichier("a.b8.bin"), bitmap);
    }
}

// ---- The built-in C format ----------------------------------------------------------------

TEST(ConvFormatC, FichiersEntiers) {
    auto Deux = [](size_t n, uint32_t v) { // a tile of v, then one of 0
        std::vector<uint32_t> t(2 * n, 0);
        std::fill_n(t.begin(), n, v);
        return t;
    };
    const std::string tuiles8 = Tete("a.bmp", "Tileset 8 bits (\"a.pal.c\")", "8*8*2", 128,
                                     "const unsigned char a_tiles[128]=\t{\r\n") +
                                SuiteC(Deux(64, 1), 2, 12);
    const std::string tuiles4 = Tete("a.bmp", "Tileset 4 bits (\"a.pal.c\")", "8*8*2", 64,
                                     "const unsigned char a_tiles[64]=\t{\r\n") +
                                SuiteC(Deux(32, 0x11), 2, 12);
    auto Palette = [](const std::string& source, const std::string& nom) {
        return Tete(source, "Palette", "2", 4, "const unsigned short " + nom + "_palette[2]=\t{\r\n") +
               "0x0000, 0x001f};\r\n";
    };
    const std::string carte = Tete("a.bmp", "Map (\"\",\"a.til.c\",0,ffffffff)", "8*8 * 2*1", 4,
                                   "const unsigned short a_map[1][2]=\t{\r\n\t{0x0000, 0x0001}\r\n};\r\n");
    // The 16-bit declaration names %user2%, which is no variable.
    const std::string seize =
        "//b.bmp\r\n//Converti avec  par Zorvan\r\n//Bitmap 16 bits\r\n//Taille: 2*1\r\n"
        "//M\xE9moire: 4 octets\r\n\r\nconst unsigned short b_bitmap16[1][2]=\t{\r\n"
        "0x001f, 0x7c1f,};\r\n";
    const std::string huit = Tete("b.bmp", "Bitmap 8 bits (\"b.pal.c\")", "2*1", 2,
                                  "const unsigned char jeu_bitmap8[1][2]=\t{\r\n") +
                             "0x01, 0x00};\r\n";
    const struct {
        const char* ligne;
        std::map<std::string, std::string> fichiers;
    } cas[] = {
        {"-tset src=a.bmp", {{"a.til.c", tuiles8}, {"a.pal.c", Palette("a.bmp", "a")}, {"a.map.c", carte}}},
        {"-tset src=a.bmp +16c namepal=teintes",
         {{"a.til.c", tuiles4}, {"a.pal.c", Palette("a.bmp", "teintes")}, {"a.map.c", carte}}},
        {"-b16 src=b.bmp", {{"b.b16.c", seize}}},
        {"-b8 src=b.bmp name=jeu", {{"b.b8.c", huit}, {"b.pal.c", Palette("b.bmp", "jeu")}}},
    };
    for (const auto& c : cas) {
        DossierTemporaire dossier;
        EcritBmp("a.bmp", DeLettres({"R."}, 8));
        EcritBmp("b.bmp", DeLettres({"R."}));
        EXPECT_EQ(Lance(c.ligne), "") << c.ligne;
        std::set<std::string> attendus = {"a.bmp", "b.bmp", "projet.tsl"};
        for (const auto& [nom, contenu] : c.fichiers) {
            attendus.insert(nom);
            EXPECT_EQ(LitFichier(nom), contenu) << c.ligne << " " << nom;
        }
        EXPECT_EQ(Fichiers(), attendus) << c.ligne;
    }
}

// Every kind of output of one chain, each file compiled alone by the host's C
// compiler; too many values for an array's size is an error too.
TEST(ConvFormatC, LesFichiersCompilent) {
    if (std::system("cc --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "no C compiler";
    DossierTemporaire dossier;
    EcritBmp("a.bmp", AuHasard(21, 13, QuinzeCouleurs(), MASQUE));
    EXPECT_EQ(Lance("-tset src=a.bmp:-tset src=a.bmp +16c dst=q:-tset src=a.bmp cmode=15 dst=k:"
                    "-tset src=a.bmp mapmode=8 dst=h:-tset src=a.bmp mapmode=32 tdim=16x16 dst=t:"
                    "-b8 src=a.bmp dst=w:-b16 src=a.bmp"),
              "");
    std::set<std::string> sources;
    for (const std::string& f : Fichiers())
        if (f.ends_with(".c")) sources.insert(f);
    EXPECT_EQ(sources,
              (std::set<std::string>{"a.til.c", "a.pal.c", "a.map.c", "q.til.c", "q.pal.c", "q.map.c",
                                     "k.til.c", "k.map.c", "h.til.c", "h.pal.c", "h.map.c", "t.til.c",
                                     "t.pal.c", "t.map.c", "w.b8.c", "w.pal.c", "a.b16.c"}));
    for (const std::string& f : sources)
        EXPECT_EQ(std::system(("cc -fsyntax-only -Werror -finput-charset=latin1 " + f).c_str()), 0) << f;
}

// At most 15 colours in 4 bits, at most 255 in 8 bits with tiles of 16 x 16
// from a PNG whose transparent pixels stand for the mask colour; both sizes
// leave padding.
TEST(ConvFormatC, AllerRetour) {
    DossierTemporaire dossier;
    const Dessin quinze = AuHasard(21, 13, QuinzeCouleurs(), MASQUE);
    const Dessin deuxCents = AuHasard(40, 26, DeuxCentCinquanteCinqCouleurs(), INVISIBLE);
    EcritBmp("a.bmp", quinze);
    EcritPng("b.png", deuxCents);
    EXPECT_EQ(Lance("-tset src=a.bmp +16c:-tset src=b tdim=16x16"), "");
    VerifieAllerRetour(quinze, "a", 8, 8, true);
    VerifieAllerRetour(deuxCents, "b", 16, 16, false);
    EXPECT_EQ(LitTableauC(LitFichier("a.pal.c")).valeurs.size(), 16u);
    EXPECT_EQ(LitTableauC(LitFichier("b.pal.c")).valeurs.size(), 256u);
}

// ---- Bad input --------------------------------------------------------------------------------

// Each adds nothing to the project and writes no file.
TEST(ConvFautes, RienAjoute) {
    const std::string donnees = OUVERTURE_DONNEES_ECHOUEE, image = OUVERTURE_IMAGE_ECHOUEE;
    const std::string debug = "[Debuging] ",
                      palette = debug + "Internal error: TrouveElement(TYPE_PALETTE,chneUPal)\n";
    const std::string tuiles = debug + "Internal error: TrouveElement(TYPE_MOSAIQUE,chneUTil)\n";
    const std::string dimensions =
        debug + "Error on tileset dimensions (must be multiple of 8 and less than 128)\n";
    const std::string negatives = debug + "Negative map dimensions\n";
    const struct {
        const char* ligne;
        std::string erreurs;
        std::set<std::string> ecrits;
    } cas[] = {
        {"-tset src=absent.bmp", "", {}},
        {"-tset src=absent", "", {}},
        {"-b16 src=absent.png", "", {}},
        {"-tset src=a.bmp dst=nulpart/x", "[nulpart/x.map.bin" + donnees, {}},
        {"-tset src=a.bmp dst=a.bmp/x -gmap", "[a.bmp/x.til.bin" + image, {}},
        // The outputs replace their old files together or not at all.
        {"-tset src=a.bmp pal=nulpart/p", "[nulpart/p.pal.bin" + donnees, {}},
        {"-b16 src=a.bmp dst=nulpart/x", "[nulpart/x.b16.bin" + image, {}},
        {"-b8 src=a.bmp pal=nulpart/p", "[nulpart/p.pal.bin" + donnees, {}},
        // The kind comes after src: no path derived, the first output has none.
        {"-src=a.bmp tset", "[" + donnees, {}},
        {"-src=a.bmp", "", {}},
        {"-tset src=a.bmp upal=nothere", palette, {}},
        {"-b8 src=a.bmp upal=nothere", palette, {}},
        {"-tset src=a.bmp util=nothere", tuiles, {}},
        {"-tset src=a.bmp tdim=12x8", dimensions, {}},
        {"-tset src=a.bmp tdim=8x136", dimensions, {}},
        {"-tset src=a.bmp tdim=-8x8", dimensions, {}},
        {"-tset src=a.bmp tdim=0x8", dimensions, {}}, // a tile has at least one unit
        {"-tset src=a.bmp mdim=-8x8", negatives, {}},
        {"-tset src=a.bmp mdim=8x-8", negatives, {}},
        {"-tset src=a.bmp col=0", "", {}},
        {"-tset src=a.bmp col=256", "", {}},
        {"-b8 src=a.bmp col=-1", "", {}},
    };
    for (const auto& c : cas) {
        DossierTemporaire dossier;
        ProjetBrut();
        EcritBmp("a.bmp", DeLettres({"RV"}, 8));
        EXPECT_EQ(Lance(c.ligne), c.erreurs) << c.ligne;
        std::set<std::string> attendus = c.ecrits;
        attendus.insert({"a.bmp", "projet.tsl"});
        EXPECT_EQ(Fichiers(), attendus) << c.ligne;
        EXPECT_EQ(Rangees(), "") << c.ligne;
    }
}
