// Element previews: files of every kind written through the built-in format,
// loaded and drawn as the tree draws a selection, and checked pixel by pixel;
// the memory limit; missing, oversized and damaged files; the preview as BMP; lists.
#include "render/apercus.h"

#include "core/elements.h"
#include "core/reglages.h"
#include "format/ecriture.h"
#include "format/formats.h"
#include "format/liste.h"
#include "core/modeles.h"
#include "platform/texte.h"
#include "format/variables.h"
#include "render/blitters.h"
#include "render/chargeurs.h"
#include "render/surfaces.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Valeurs = std::vector<uint32_t>;
using Textes = std::vector<std::string>;

// prof: tileset depth (4, 8, 15) or map cell bits (8, 16, 32); l x h: size of a bitmap or map.
struct Entete {
    IndexSection section;
    int prof = 0, l = 0, h = 0, tx = 8, ty = 8, blocs = 0, base = 0, masque = -1;
    const char* lien = nullptr;
};

// A whole file; the globals are put back after, so a load must read them.
void Ecrit(const char* chemin, const Entete& e, const Valeurs& v) {
    FILE* f = fopen(chemin, "wb");
    ASSERT_NE(f, nullptr);
    RestaureVariables();
    ChargeTextesUser();
    const FormatChoisi& fc = FormatCourant;
    const bool carte = e.section == SECTION_MAP, mosaique = e.section == SECTION_TILESET;
    MetTexteVariable("file", "source.bmp");
    MetTexteVariable("name", "essai");
    if (e.lien) MetTexteVariable("link", mosaique && e.prof == 15 ? "" : e.lien);
    MetTexteVariable("type", e.prof == 8 || (mosaique && e.prof == 4) ? fc.type8
                             : e.prof == 32                           ? fc.type32
                                                                      : fc.type16);
    MetEntierVariable("depth", e.prof);
    MetEntierVariable("size", mosaique ? e.blocs : e.section == SECTION_PALETTE ? (int)v.size() : 0);
    MetEntierVariable("memory", (int)v.size() * 2);
    sizex = e.l, sizey = e.h, tilex = e.tx, tiley = e.ty, tilebase = e.base, gfxmask = e.masque;
    const SectionFormat& s = fc.sections[e.section];
    EcritGabarit(s.declaration, f);
    if (e.section == SECTION_PALETTE)
        EcritValeursPalette(f, s, v.data(), (int)v.size());
    else if (mosaique)
        EcritValeursMosaique(f, s, v.data(), (int)v.size() / 64, 64, e.prof);
    else {
        // A declaration larger than the values given writes just those.
        const bool complet = (int64_t)e.l * e.h <= (int64_t)v.size();
        EcritValeursLignes(f, s,
                           carte && e.prof == 8    ? s.element2
                           : carte && e.prof == 32 ? s.element3
                                                   : s.element,
                           v.data(), complet ? e.l : (int)v.size(), complet ? e.h : 1);
    }
    EcritGabarit(s.end, f);
    fclose(f);
    tilex = tiley = 8, sizex = sizey = tilebase = 0, gfxmask = -1;
}
void EcritPalette(const char* chemin, const Valeurs& v) { Ecrit(chemin, {SECTION_PALETTE}, v); }
void EcritBitmap(const char* chemin, const char* lien, int l, int h, const Valeurs& v) {
    Ecrit(chemin, {lien ? SECTION_BITMAP8 : SECTION_BITMAP16, 0, l, h, 8, 8, 0, 0, -1, lien}, v);
}
void EcritMosaique(const char* chemin, int prof, int tx, int ty, int blocs, const Valeurs& v) {
    Ecrit(chemin, {SECTION_TILESET, prof, 0, 0, tx, ty, blocs, 0, -1, "p.pal.c"}, v);
}
void EcritCarte(const char* chemin, const char* lien, int bits, int tx, int l, int h, const Valeurs& v,
                int base = 0, int masque = -1) {
    Ecrit(chemin, {SECTION_MAP, bits, l, h, tx, tx, 0, base, masque, lien}, v);
}
int Ligne(uint32_t type, const char* fichier) { return AjouteElement(NouvelElement(type, "essai", fichier)); }

uint32_t Gba(uint32_t i) { return (i * 2731 + 1234) & 0x7FFF; }
Valeurs Palette(int n) {
    Valeurs v;
    for (int i = 0; i < n; ++i) v.push_back(Gba((uint32_t)i));
    return v;
}
// A 15-bit colour as a colour word (red in the low byte), each component x 8.
uint32_t Mot(uint32_t v) { return (v & 31) * 8 | ((v >> 5 & 31) * 8) << 8 | ((v >> 10 & 31) * 8) << 16; }
// Pixel k of unit u of the test tilesets; at 15 bits pixel 9 is transparent.
uint32_t Pix(int prof, uint32_t u, int k) {
    if (prof == 4) return (u * 5 + (uint32_t)k) & 15;
    return prof == 15 ? (k == 9 ? 65535 : Gba(u * 64 + (uint32_t)k)) : (u * 64 + (uint32_t)k * 3) % 256;
}
Valeurs Unites(int prof, int n) {
    Valeurs v;
    for (int k = 0; k < n * 64; ++k) v.push_back(Pix(prof, (uint32_t)k / 64, k % 64));
    return v;
}
// Index 0 and the transparent word show the background; a 4-bit bank picks 16 entries.
uint32_t CouleurTuile(int prof, uint32_t w, uint32_t banque) {
    if (prof == 15) return w == 65535 ? CouleurFond : Mot(w);
    return w == 0 ? CouleurFond : Mot(Gba(banque * 16 + w));
}
// The 8-bit tile colour of unit u, pixel k, with the test palette.
uint32_t Couleur8(uint32_t u, int k) { return CouleurTuile(8, Pix(8, u, k), 0); }

uint32_t Pixel(int x, int r) {
    const Image& s = SurfaceApercu;
    const uint8_t* p = s.pixels + (size_t)(s.hauteur - 1 - r) * s.pas + (size_t)x * 3;
    return (uint32_t)p[2] | (uint32_t)p[1] << 8 | (uint32_t)p[0] << 16;
}
void CompareApercu(int l, int h, const std::function<uint32_t(int, int)>& attendu) {
    ASSERT_EQ(LargeurApercu, l);
    ASSERT_EQ(HauteurApercu, h);
    int fautes = 0;
    for (int r = 0; r < h && fautes < 4; ++r)
        for (int x = 0; x < l && fautes < 4; ++x)
            if (Pixel(x, r) != attendu(x, r)) {
                ++fautes;
                ADD_FAILURE() << "pixel " << x << "," << r << ": " << std::hex << Pixel(x, r)
                              << " instead of " << attendu(x, r);
            }
}

const std::string Interne =
    "[Internal error] An error has happened because the following condition is false: ";

struct Apercu : testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages journal;
    void SetUp() override {
        InitialiseFormats();
        NouvelleSurface();
    }
    void TearDown() override { LibereImage(SurfaceApercu); }
    static void NouvelleSurface() {
        ASSERT_EQ(CreeSurfaceApercu(), 1);
        ChoisitCadre(0, 0, LARGEUR_SURFACE_INITIALE, HAUTEUR_SURFACE_INITIALE);
    }
    // Draws a row of the tree afresh and checks its kind and logical size.
    void Montre(uint32_t type, const char* fichier, int apercu, int l, int h) {
        NouvelleSurface();
        ApercuElement(Ligne(type, fichier));
        EXPECT_EQ(TypeApercu, apercu);
        EXPECT_EQ(std::pair(sizex, sizey), std::pair(l, h));
    }
};
struct Charge : Apercu {};

} // namespace

TEST_F(Apercu, PaletteUnPixelParCouleurSeizeParRangee) {
    EcritPalette("p.pal.c", {0x001F, 0x03E0, 0x7C00, 0x1234});
    uint8_t pal[768];
    memset(pal, 0xAA, sizeof pal);
    ASSERT_EQ(ChargePalette(pal, "p.pal.c"), 4);
    const uint8_t octets[12] = {0, 0, 248, 0, 248, 0, 248, 0, 0, 32, 136, 160}; // blue, green, red
    EXPECT_EQ(memcmp(pal, octets, 12), 0);
    EXPECT_EQ(std::count(pal + 12, pal + 768, 0), 768 - 12);
    for (int n : {17, 300}) {
        SCOPED_TRACE(n);
        EcritPalette("p.pal.c", Palette(n));
        const int lues = std::min(n, 256), rangees = (lues + 15) / 16;
        ASSERT_EQ(ChargePalette(pal, "p.pal.c"), lues);
        EXPECT_EQ(std::count(pal + lues * 3, pal + 768, 0), 768 - lues * 3);
        Montre(TYPE_PALETTE, "p.pal.c", APERCU_PALETTE, 16, rangees);
        CompareApercu(16, rangees, [&](int x, int r) { // entry 0 is shown as it stands
            return r * 16 + x < lues ? Mot(Gba((uint32_t)(r * 16 + x))) : CouleurFond;
        });
    }
}

TEST_F(Apercu, Bitmap16EtBitmap8) {
    EcritPalette("p.pal.c", Palette(6));
    for (const char* lien : {(const char*)nullptr, "p.pal.c"}) {
        SCOPED_TRACE(lien ? "8 bits" : "16 bits");
        Valeurs v; // 8 bits: index 0 is drawn like any other; 6 and above lie outside the palette
        for (int i = 0; i < 15; ++i) v.push_back(lien ? (uint32_t)(i * 3 % 10) : Gba((uint32_t)i + 40));
        EcritBitmap("b.b.c", lien, 5, 3, v);
        Montre(lien ? TYPE_BITMAP8 : TYPE_BITMAP16, "b.b.c", lien ? APERCU_BITMAP8 : APERCU_BITMAP16, 5, 3);
        CompareApercu(5, 3, [&](int x, int r) {
            const uint32_t w = v[(size_t)(r * 5 + x)];
            return !lien ? Mot(w) : w < 6 ? Mot(Gba(w)) : CouleurFond;
        });
    }
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Apercu, MosaiqueParBlocsDansDesRangeesDe256Pixels) {
    EcritPalette("p.pal.c", Palette(256));
    const struct { int prof, tx, ty, blocs; } cas[] = {
        {15, 8, 8, 3}, {8, 8, 8, 33}, {8, 16, 8, 17}, {8, 8, 16, 5}, {4, 16, 16, 17}};
    for (const auto& c : cas) {
        SCOPED_TRACE(std::to_string(c.prof) + " bits, " + std::to_string(c.tx) + "x" + std::to_string(c.ty) +
                     ", " + std::to_string(c.blocs) + " blocks");
        const int s = c.tx * c.ty / 64, parRangee = 256 / c.tx;
        const int rangees = (c.blocs + parRangee - 1) / parRangee;
        EcritMosaique("t.til.c", c.prof, c.tx, c.ty, c.blocs, Unites(c.prof, c.blocs * s));
        Montre(TYPE_MOSAIQUE, "t.til.c", APERCU_MOSAIQUE, 256, rangees * c.ty);
        EXPECT_EQ(NbTuiles, c.blocs);
        CompareApercu(256, rangees * c.ty, [&](int x, int r) {
            const int b = r / c.ty * parRangee + x / c.tx;
            const uint32_t u = (uint32_t)(b * s + r % c.ty / 8 * (c.tx / 8) + x % c.tx / 8);
            return b >= c.blocs ? CouleurFond : CouleurTuile(c.prof, Pix(c.prof, u, r % 8 * 8 + x % 8), 0);
        });
    }
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Apercu, CarteDessineeParSesTuiles) {
    EcritPalette("p.pal.c", Palette(256));
    constexpr int L = 4, H = 2;
    const Valeurs miroirs = {0x401, 0x802, 0xC03, 0x404, 1, 2, 3, 0x400},
                  banques = {0x1001, 0x2002, 0xF403, 4, 0x1000, 0x5C02, 1, 2},
                  au_dela = {0x401, 0x400, 1025, 1026, 0, 1, 0x402, 0x801},
                  grands = {0, 1, 2, 3, 0x401, 2, 1, 0x800};
    const struct {
        const char* nom;
        int bits, t, prof, blocs, emul, base, masque;
        Valeurs cellules;
    } cas[] = {
        {"16-bit cells; the tile count draws nothing", 16, 8, 8, 5, 1, 0, -1, {0, 1, 2, 3, 4, 5, 4, 1}},
        {"8-bit cells", 8, 8, 8, 5, 1, 0, -1, {4, 3, 2, 1, 0, 5, 255, 2}},
        {"32-bit cells; negative ones draw nothing", 32, 8, 8, 5, 1, 0, -1,
         {1, 0x80000001, 0x7FFFFC01, 3, 0xFFFFFFFF, 2, 0x10000, 4}},
        {"tilebase then gfxmask", 16, 8, 8, 5, 1, 1, 3, {0, 1, 2, 3, 4, 5, 6, 7}},
        {"mirrors, emulgba on", 16, 8, 8, 5, 1, 0, -1, miroirs},
        {"mirror bits past the tiles, emulgba off", 16, 8, 8, 5, 0, 0, -1, miroirs},
        {"4-bit banks, emulgba on", 16, 8, 4, 5, 1, 0, -1, banques},
        {"4-bit banks, emulgba off", 16, 8, 4, 5, 0, 0, -1, banques},
        {"15-bit tiles", 16, 8, 15, 5, 1, 0, -1, {0x401, 1, 2, 3, 4, 5, 0x800, 0}},
        {"16 x 16 blocks, emulgba on", 16, 16, 8, 3, 1, 0, -1, grands},
        {"16 x 16 blocks, emulgba off", 16, 16, 8, 3, 0, 0, -1, grands},
        {"16 x 16 blocks of 4 bits", 16, 16, 4, 3, 1, 0, -1, {0, 1, 2, 0x401, 0x1002, 0xC01, 1, 3}},
        {"over 1024 tiles, emulgba on", 16, 8, 8, 1026, 1, 0, -1, au_dela},
        {"over 1024 tiles, emulgba off", 16, 8, 8, 1026, 0, 0, -1, au_dela},
    };
    for (const auto& c : cas) {
        SCOPED_TRACE(c.nom);
        const int s = c.t * c.t / 64, t = c.t;
        EcritMosaique("t.til.c", c.prof, t, t, c.blocs, Unites(c.prof, c.blocs * s));
        EcritCarte("m.map.c", "t.til.c", c.bits, t, L, H, c.cellules, c.base, c.masque);
        EmulGba = c.emul;
        Montre(TYPE_CARTE, "m.map.c", APERCU_CARTE, L * t, H * t);
        EXPECT_EQ(NbTuiles, c.blocs);
        CompareApercu(L * t, H * t, [&](int x, int r) {
            const uint32_t stockee = c.cellules[(size_t)(r / t * L + x / t)];
            const int32_t cell = (int32_t)((stockee + (uint32_t)c.base) & (uint32_t)c.masque);
            if (cell < 0 || ((uint32_t)cell & (c.emul ? 1023u : ~0u)) >= (uint32_t)c.blocs)
                return CouleurFond;
            const int i = x % t / 8, j = r % t / 8;
            int px = x % 8, py = r % 8;
            uint32_t unite = (uint32_t)(j * (t / 8) + i) + (uint32_t)cell * (uint32_t)s, banque = 0;
            if (c.emul) { // the GBA layout: tile, mirrors and bank of each tile's own value
                const uint32_t v = (uint32_t)((t / 8) * j + (int64_t)t * t * cell / 64 + i);
                unite = v & 1023, banque = c.prof == 4 ? v >> 12 & 15 : 0;
                px = v & 0x400 ? 7 - px : px;
                py = v & 0x800 ? 7 - py : py;
            }
            return CouleurTuile(c.prof, Pix(c.prof, unite, py * 8 + px), banque);
        });
    }
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Charge, CarteSansLienPrendLesTuilesDonnees) {
    EcritPalette("p.pal.c", Palette(256));
    EcritMosaique("t.til.c", 8, 8, 8, 4, Unites(8, 4));
    EcritCarte("a.map.c", "t.til.c", 16, 8, 2, 1, {1, 2});
    EcritCarte("b.map.c", "", 16, 8, 2, 1, {3, 1});
    const int a = Ligne(TYPE_CARTE, "a.map.c"), b = Ligne(TYPE_CARTE, "b.map.c");
    uint8_t pal[768];
    uint32_t *tuiles = nullptr, *cellules = nullptr;
    const auto charge = [&](int ligne) {
        free(cellules), cellules = nullptr;
        return ChargeCarte(pal, &tuiles, &cellules, ligne);
    };
    EXPECT_EQ(charge(b), 0); // no tiles loaded before
    ASSERT_EQ(charge(a), 1);
    memset(pal + 3, 0, 3); // what the caller passes in is what is drawn
    ASSERT_EQ(charge(b), 1);
    ASSERT_NE(tuiles, nullptr);
    EXPECT_EQ(Valeurs(cellules, cellules + 2), (Valeurs{3, 1}));
    EXPECT_EQ(NbTuiles, 4);
    ApercuCarte(pal, tuiles, cellules);
    CompareApercu(16, 8, [&](int x, int r) {
        const uint32_t w = Pix(8, x < 8 ? 3 : 1, r * 8 + x % 8);
        return w == 0 ? CouleurFond : w == 1 ? 0 : Mot(Gba(w));
    });
    free(tuiles);
    free(cellules);
}

TEST_F(Apercu, LimiteApercuReduitALaLimite) {
    const struct {
        uint32_t limite;
        int l, h, lAttendue, hAttendue;
        uint64_t refusee;
    } cas[] = {{3000, 100, 20, 70, 14, 6000},  {3000, 40, 25, 31, 31, 3000}, {3000, 999, 1, 999, 1, 0},
               {0, 5000, 5000, 5000, 5000, 0}, {MEMOIRE_MAX_DEFAUT, 4000, 2000, 4000, 2000, 0},
               {MEMOIRE_MAX_DEFAUT, 4096, 4096, 3344, 3344, 50331648}};
    for (const auto& c : cas) {
        SCOPED_TRACE(std::to_string(c.limite) + ": " + std::to_string(c.l) + "x" + std::to_string(c.h));
        ReglagesSys.memoireMax = c.limite;
        MemoireRefusee = 0;
        int l = c.l, h = c.h;
        LimiteApercu(l, h);
        EXPECT_EQ(std::pair(l, h), std::pair(c.lAttendue, c.hAttendue));
        EXPECT_EQ(MemoireRefusee, c.refusee);
    }
    ReglagesSys.memoireMax = 3000; // taller than wide: a positive size of an area near the limit
    int l = 10, h = 200;
    LimiteApercu(l, h);
    EXPECT_TRUE(l > 0 && h > l && l * h <= 1000 && l * h >= 800) << l << "x" << h;
    EXPECT_EQ(MemoireRefusee, 6000u);
}

TEST_F(Apercu, DimensionneApercuGardeLAncienneSurfaceSurEchec) {
    ReglagesSys.memoireMax = 0; // no limit: a surface too big to be made
    EXPECT_EQ(DimensionneApercu(100000, 100000, false), 0);
    EXPECT_EQ(MemoireRefusee, 30000000000u);
    EXPECT_EQ(DimensionneApercu(0, 4, false), 0);
    EXPECT_EQ(DimensionneApercu(4, -1, false), 0);
    EXPECT_EQ(journal.messages, (Textes{Interne + "cx > 0", Interne + "cy > 0"}));
    EXPECT_NE(SurfaceApercu.pixels, nullptr);
    EXPECT_EQ(std::pair(LargeurApercu, HauteurApercu),
              std::pair(LARGEUR_SURFACE_INITIALE, HAUTEUR_SURFACE_INITIALE));
    journal.messages.clear(); // a bitmap whose header gives no width is resized all the same
    EcritBitmap("b.b16.c", nullptr, 0, 3, {});
    ApercuElement(Ligne(TYPE_BITMAP16, "b.b16.c"));
    ASSERT_FALSE(journal.messages.empty());
    EXPECT_EQ(journal.messages.back(), Interne + "cx > 0");
}

TEST_F(Apercu, CarteAuDelaDeLaLimiteMontreSonCoinHautGauche) {
    EcritPalette("p.pal.c", Palette(256));
    EcritMosaique("t.til.c", 8, 8, 8, 32, Unites(8, 32));
    Valeurs cellules;
    for (uint32_t i = 0; i < 32; ++i) cellules.push_back(i);
    EcritCarte("m.map.c", "t.til.c", 16, 8, 8, 4, cellules);
    const int ligne = Ligne(TYPE_CARTE, "m.map.c");
    const auto attendu = [](int x, int r) {
        return Couleur8((uint32_t)(r / 8 * 8 + x / 8), r % 8 * 8 + x % 8);
    };
    ReglagesSys.memoireMax = 3000; // 1,000 pixels: 44 x 22 of the 64 x 32
    ApercuElement(ligne);
    EXPECT_EQ(MemoireRefusee, 64u * 32 * 3);
    EXPECT_EQ(std::pair(sizex, sizey), std::pair(64, 32));
    EXPECT_EQ(std::pair(CadreDessin.xLimite, CadreDessin.yLimite), std::pair(44, 22));
    // Whole columns of cells only (44 / 8), but the last row begun is drawn.
    CompareApercu(44, 22, [&](int x, int r) { return x < 40 ? attendu(x, r) : CouleurFond; });
    ReglagesSys.memoireMax = 0;
    ApercuElement(ligne);
    EXPECT_EQ(MemoireRefusee, 0u);
    CompareApercu(64, 32, attendu);
}

TEST_F(Apercu, FichiersAbsentsDonnentLeurBoite) {
    EcritBitmap("sans.b8.c", "absente.pal.c", 2, 1, {1, 2});
    Ecrit("sans.til.c", {SECTION_TILESET, 8, 0, 0, 8, 8, 1, 0, -1, "absente.pal.c"}, Unites(8, 1));
    EcritCarte("sans.map.c", "absente.til.c", 16, 8, 1, 1, {0});
    const struct {
        uint32_t type;
        const char *fichier, *boite;
    } cas[] = {
        {TYPE_PALETTE, "x.pal.c", "[x.pal.c] The palette file doesn't exist."},
        {TYPE_BITMAP16, "x.b16.c", "[x.b16.c] The specified 16 bits bitmap file doesn't exist"},
        {TYPE_BITMAP8, "x.b8.c", "[x.b8.c] The specified 8 bits bitmap file doesn't exist"},
        {TYPE_MOSAIQUE, "x.til.c", "[x.til.c] The specified tileset file doesn't exist"},
        {TYPE_CARTE, "x.map.c", "[x.map.c] The specified map file doesn't exist"},
        {TYPE_BITMAP8, "sans.b8.c", "[absente.pal.c] The palette file doesn't exist."},
        {TYPE_MOSAIQUE, "sans.til.c", "[absente.pal.c] The palette file doesn't exist."},
        {TYPE_CARTE, "sans.map.c", "[absente.til.c] The specified tileset file doesn't exist"},
    };
    for (const auto& c : cas) {
        SCOPED_TRACE(c.fichier);
        journal.messages.clear();
        NouvelleSurface();
        SurfaceApercu.pixels[0] = 0x5A;
        ApercuElement(Ligne(c.type, c.fichier));
        EXPECT_EQ(journal.messages, Textes{c.boite});
        EXPECT_EQ(LargeurApercu, LARGEUR_SURFACE_INITIALE); // nothing drawn
        EXPECT_TRUE(c.fichier[0] != 'x' || SurfaceApercu.pixels[0] == 0x5A);
    }
}

TEST_F(Charge, MosaiqueDePlusDe8192UnitesDonneLaBoite) {
    const struct { int declarees, ecrites, resultat; } cas[] = {
        {8192, 8192, 8192}, {20000, 8200, -1}, {8193, 8193, -1}, {20000, 100, 100}};
    for (const auto& c : cas) {
        SCOPED_TRACE(std::to_string(c.declarees) + " declared, " + std::to_string(c.ecrites) + " written");
        journal.messages.clear();
        Ecrit("g.til.c", {SECTION_TILESET, 8, 0, 0, 8, 8, c.declarees}, Unites(8, c.ecrites));
        uint32_t* tuiles = nullptr;
        EXPECT_EQ(ChargeMosaique(nullptr, &tuiles, "g.til.c", false), c.resultat);
        if (c.resultat < 0) {
            EXPECT_EQ(tuiles, nullptr);
            EXPECT_EQ(journal.messages, Textes{"[g.til.c] The tiles count is greater than available memory. "
                                               "The format is probably wrong..."});
        } else {
            EXPECT_TRUE(journal.messages.empty());
            ASSERT_NE(tuiles, nullptr);
            EXPECT_EQ(tuiles[(size_t)c.resultat * 64 - 1], Pix(8, (uint32_t)c.resultat - 1, 63));
        }
        free(tuiles);
    }
    // Sides and count whose product passes 64 bits: what the file holds is read.
    Ecrit("g.til.c", {SECTION_TILESET, 8, 0, 0, INT32_MAX, INT32_MAX, INT32_MAX}, Unites(8, 1));
    uint32_t* tuiles = nullptr;
    EXPECT_EQ(ChargeMosaique(nullptr, &tuiles, "g.til.c", false), 1);
    free(tuiles);
}

// A file of each loader cut at every length: what is read is a prefix of the
// data growing with the length (the value at the cut may be read in part), the
// rest stays 0, and nothing is read past the end.
TEST_F(Charge, FichiersTronquesGardentCeQuiEstLu) {
    Valeurs indices, unites, pixels; // never 0, so that 0 means "not read"
    for (uint32_t i = 0; i < 15; ++i) indices.push_back(i + 1), pixels.push_back(Mot(Gba(i)));
    for (uint32_t i = 0; i < 3 * 64; ++i) unites.push_back(i % 255 + 1);
    EcritPalette("e.pal.c", Palette(40));
    EcritBitmap("e.b16.c", nullptr, 5, 3, Palette(15));
    EcritMosaique("e.til.c", 8, 8, 8, 3, unites);
    EcritMosaique("m.til.c", 8, 8, 8, 3, unites);
    EcritPalette("p.pal.c", Palette(40));
    EcritCarte("e.map.c", "m.til.c", 16, 8, 5, 3, indices);
    uint8_t pal[768];
    uint32_t *t = nullptr, *c = nullptr;
    const auto palette = [&] {
        Valeurs v(40);
        for (int i = 0, n = ChargePalette(pal, "t.pal.c"); i < n && i < 40; ++i)
            v[(size_t)i] = (uint32_t)(pal[i * 3 + 2] / 8 | pal[i * 3 + 1] / 8 << 5 | pal[i * 3] / 8 << 10);
        return v;
    };
    const auto bitmap = [&] { // through the surface, where the background reads as 0
        ApercuElement(Ligne(TYPE_BITMAP16, "t.b16.c"));
        Valeurs v(15);
        for (int i = 0; LargeurApercu == 5 && HauteurApercu == 3 && i < 15; ++i)
            v[(size_t)i] = Pixel(i % 5, i / 5) == CouleurFond ? 0 : Pixel(i % 5, i / 5);
        return v;
    };
    const auto mosaique = [&] {
        return ChargeMosaique(nullptr, &t, "t.til.c", false) > 0 ? Valeurs(t, t + 3 * 64) : Valeurs(3 * 64);
    };
    const auto carte = [&] {
        return ChargeCarte(pal, &t, &c, Ligne(TYPE_CARTE, "t.map.c")) ? Valeurs(c, c + 15) : Valeurs(15);
    };
    const std::tuple<const char*, std::function<Valeurs()>, Valeurs> cas[] = {
        {".pal.c", palette, Palette(40)}, {".b16.c", bitmap, pixels}, {".til.c", mosaique, unites},
        {".map.c", carte, indices}};
    for (const auto& [ext, lit, attendu] : cas) {
        const std::string entier = LitFichier(std::string("e") + ext);
        size_t avant = 0;
        for (size_t longueur = 0; longueur <= entier.size(); ++longueur) {
            SCOPED_TRACE(ext + (" cut at " + std::to_string(longueur)));
            EcritFichier(std::string("t") + ext, entier.substr(0, longueur));
            const Valeurs lu = lit();
            free(t), free(c), t = c = nullptr;
            size_t n = 0;
            while (n < lu.size() && lu[n] == attendu[n]) ++n;
            for (size_t i = n + 1; i < lu.size(); ++i) ASSERT_EQ(lu[i], 0u) << "value " << i;
            EXPECT_GE(n, avant);
            avant = n;
        }
        EXPECT_EQ(avant, attendu.size());
    }
}

// Random bytes changed, and tile sizes that aren't multiples of 8 or don't fit
// an int once multiplied: surface and frame stay in agreement, nothing is read
// outside the buffers, and the tile sizes give no internal error.
TEST_F(Charge, FichiersAbimesSansDebordement) {
    EcritPalette("p.pal.c", Palette(256));
    EcritBitmap("f.b16.c", nullptr, 5, 3, Palette(15));
    EcritBitmap("f.b8.c", "p.pal.c", 5, 3, Valeurs(15, 3));
    EcritMosaique("f.til.c", 4, 8, 8, 20, Unites(4, 20));
    EcritMosaique("m.til.c", 8, 8, 8, 20, Unites(8, 20));
    EcritCarte("f.map.c", "m.til.c", 16, 8, 4, 2, {0, 1, 19, 0x401, 0xC02, 12, 7, 3});
    const auto montre = [&](uint32_t type, const std::string& fichier, const std::string& contenu) {
        SCOPED_TRACE(fichier);
        EcritFichier(fichier, contenu);
        ApercuElement(Ligne(type, fichier.c_str()));
        ASSERT_TRUE(SurfaceApercu.pixels && LargeurApercu <= SurfaceApercu.largeur &&
                    HauteurApercu == SurfaceApercu.hauteur && CadreDessin.xLimite <= LargeurApercu &&
                    CadreDessin.yLimite <= HauteurApercu);
    };
    std::mt19937 alea(2024);
    const std::pair<uint32_t, const char*> fichiers[] = {
        {TYPE_PALETTE, "p.pal.c"}, {TYPE_BITMAP16, "f.b16.c"}, {TYPE_BITMAP8, "f.b8.c"},
        {TYPE_MOSAIQUE, "f.til.c"}, {TYPE_CARTE, "f.map.c"}};
    for (const auto& [type, fichier] : fichiers) {
        const std::string entier = LitFichier(fichier);
        for (int essai = 0; essai < 60; ++essai) {
            std::string abime = entier;
            for (int n = 0; n < 1 + essai % 3; ++n) abime[alea() % abime.size()] = (char)(alea() % 256);
            EmulGba = essai % 2;
            montre(type, std::string("x") + strchr(fichier, '.'), abime);
        }
    }
    const std::string mosaique = LitFichier("m.til.c"), carte = LitFichier("f.map.c"); // both hold "8*8"
    const std::pair<int64_t, int64_t> tailles[] = {{8, 9},         {9, 8},           {12, 12},      {24, 20},
                                                   {70000, 70000}, {400000, 400000}, {600000000, 8}};
    for (const auto& [tx, ty] : tailles) {
        const std::string texte = std::to_string(tx) + "*" + std::to_string(ty);
        for (EmulGba = 0; EmulGba < 2; ++EmulGba) {
            journal.messages.clear();
            montre(TYPE_MOSAIQUE, "x.til.c", std::string(mosaique).replace(mosaique.find("8*8"), 3, texte));
            EXPECT_EQ(NbTuiles, 20 / (tx * ty / 64)) << texte;
            montre(TYPE_CARTE, "x.map.c", std::string(carte).replace(carte.find("8*8"), 3, texte));
            EXPECT_EQ(NbTuiles, 20 / (tx / 8 * (ty / 8))) << texte;
            for (const std::string& m : journal.messages)
                EXPECT_EQ(m.find("[Internal error]"), std::string::npos) << m;
        }
    }
}

// Such tile sizes drawn straight from a buffer followed by a guard area whose colour
// (index 200) must never show.
TEST_F(Apercu, TuilesLuesDansLeTamponSeulement) {
    uint8_t pal[768];
    for (int i = 0; i < 256 * 3; ++i) pal[i] = (uint8_t)(Mot(Gba((uint32_t)i / 3)) >> (16 - 8 * (i % 3)));
    constexpr int N = 20;
    Valeurs tuiles((size_t)(N + 64) * 64, 200);
    for (size_t k = 0; k < (size_t)N * 64; ++k) tuiles[k] = (uint32_t)(k % 7 + 1);
    const Valeurs cellules = {0, 1, 2, 19, 0x401, 0xC02, 18, 7, 5, 13, 17, 16};
    const auto sansGarde = [](int x, int r) { return Pixel(x, r) == Mot(Gba(200)) ? 0 : Pixel(x, r); };
    for (const auto& [tx, ty] : {std::pair{8, 9}, {9, 8}, {12, 12}, {24, 20}, {16, 12}}) {
        for (EmulGba = 0; EmulGba < 2; ++EmulGba) {
            SCOPED_TRACE(std::to_string(tx) + "x" + std::to_string(ty) + " emulgba " +
                         std::to_string(EmulGba));
            tilex = tx, tiley = ty, NbTuiles = N;
            ApercuMosaique(pal, tuiles.data());
            CompareApercu(LargeurApercu, HauteurApercu, sansGarde);
            tilex = tx, tiley = ty, sizex = 4, sizey = 3, NbTuiles = N / (tx / 8 * (ty / 8));
            ApercuCarte(pal, tuiles.data(), cellules.data());
            CompareApercu(LargeurApercu, HauteurApercu, sansGarde);
        }
    }
}

TEST_F(Apercu, EcritApercuBmpDeLaTailleLogique) {
    EcritBitmap("b.b16.c", nullptr, 5, 3, Palette(15));
    ApercuElement(Ligne(TYPE_BITMAP16, "b.b16.c"));
    ASSERT_EQ(SurfaceApercu.largeur, 8); // rows of the surface rounded up to 4 pixels
    ASSERT_EQ(EcritApercuBmp("apercu.bmp"), 1);
    const std::string f = LitFichier("apercu.bmp");
    ASSERT_EQ(f.size(), 54u + 16 * 3); // rows of 15 bytes padded to 16
    // Size, data offset, header size, width, height, planes, bits, compression, data size.
    const uint8_t entete[38] = {'B', 'M', 102, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 5,
                                0, 0, 0, 3, 0, 0, 0, 1, 0, 24, 0, 0, 0, 0, 0, 48, 0, 0, 0};
    EXPECT_EQ(f.substr(0, 38), std::string((const char*)entete, 38));
    for (int r = 0; r < 3; ++r) { // rows bottom-up, pixels blue, green, red, as on the surface
        const size_t rangee = 54 + (size_t)(2 - r) * 16;
        for (int x = 0; x < 5; ++x) {
            const uint8_t* p = (const uint8_t*)f.data() + rangee + (size_t)x * 3;
            const uint32_t couleur = (uint32_t)p[2] | (uint32_t)p[1] << 8 | (uint32_t)p[0] << 16;
            EXPECT_EQ(couleur, Mot(Gba((uint32_t)(r * 5 + x)))) << x << "," << r;
            EXPECT_EQ(couleur, Pixel(x, r));
        }
        EXPECT_EQ(f[rangee + 15], 0);
    }
}

namespace {

struct Objet {
    int32_t x, y, type, vitesse;
    char nom[8];
};

// A list file as the list editor writes it: declaration, one object template and line per object, end.
void EcritListe(const char* chemin, const char* modele, const std::vector<Objet>& objets) {
    ASSERT_GE(SelectionneModele(modele), 1);
    ConstruitGabaritListe();
    FILE* f = fopen(chemin, "wb");
    ASSERT_NE(f, nullptr);
    RestaureVariables();
    ChargeTextesUser();
    MetTexteVariable("name", "essai");
    MetTexteVariable("link", "t.til.c");
    MetTexteVariable("type", "SPRITE_LISTE");
    MetTexteVariable("model", modele);
    MetEntierVariable("size", (int)objets.size());
    const SectionFormat& s = FormatCourant.sections[SECTION_LIST];
    EcritGabarit(s.declaration, f);
    const ModeleParametres& m = TableModeles[ModeleSelectionne];
    for (const Objet& o : objets) {
        std::vector<uint8_t> octets((size_t)TailleModele(m));
        memcpy(octets.data(), &o, std::min(octets.size(), sizeof o));
        EcritObjetListe(f, GabaritListe, m, octets.data());
        EcritGabarit(s.line, f);
    }
    EcritGabarit(s.end, f);
    fclose(f);
}

const std::vector<Objet> Trois = {{1, 2, 3, 40, "a"}, {-5, 600, 7, -1, "bcdefg"}, {0, 0, 0, 0, ""}};

struct Liste : Apercu {
    ListeObjets liste;
    uint32_t* tuiles = nullptr;
    uint8_t palette[256 * 3] = {};
    int ligne = -1;
    void SetUp() override {
        Apercu::SetUp();
        EcritPalette("p.pal.c", Palette(4));
        EcritMosaique("t.til.c", 8, 8, 8, 2, Unites(8, 2));
        CopieBornee(TableModeles[1].nom, "Ennemis");
        NbModeles = 2;
        AjouteParametre(TableModeles[1], "vitesse", PARAMETRE_ENTIER, 4, "0");
        AjouteParametre(TableModeles[1], "nom", PARAMETRE_BRUT, 8, "");
        EcritListe("l.lst.c", "Ennemis", Trois);
        ligne = Ligne(TYPE_LISTE, "l.lst.c");
    }
    void TearDown() override {
        free(liste.objets);
        free(tuiles);
        Apercu::TearDown();
    }
    int Relit() { return ChargeListe(palette, &tuiles, ligne, liste); }
    const Objet& Lu(int i) { return *(const Objet*)(liste.objets + (size_t)i * liste.taille); }
};

} // namespace

TEST_F(Liste, ObjetsRelusAvecLeurModele) {
    SelectionneModele("Default");
    ASSERT_EQ(Relit(), 1);
    EXPECT_STREQ(TableModeles[ModeleSelectionne].nom, "Ennemis"); // named by the file
    ASSERT_EQ(liste.nombre, 3);
    EXPECT_EQ(liste.taille, 24);
    EXPECT_EQ(liste.capacite, ReglagesSys.objetsMax);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(memcmp(&Lu(i), &Trois[(size_t)i], 16), 0) << i;
        EXPECT_STREQ(Lu(i).nom, Trois[(size_t)i].nom);
    }
    EXPECT_EQ(NbTuiles, 2);
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Liste, ModeleQuiAGagneUnParametreRecupere) {
    AjouteParametre(TableModeles[1], "vie", PARAMETRE_ENTIER, 4, "7");
    const std::string question =
        "[Attention] The list format is incorrect, a more powerful algorithm will be tried to recuperate "
        "your file even if some data is missing or the model has changed. This operation can fail, so you "
        "have to verify if your list is correct before saving it.";
    // The misread shows its box first; then the question, cancelled: the load gives up.
    journal.reponses = {REPONSE_OK, REPONSE_ANNULER};
    EXPECT_EQ(Relit(), 0);
    EXPECT_EQ(journal.messages, (Textes{"[Debuging] File format fatal error (#)", question}));
    journal.messages.clear(); // accepted: x, y and type come back and the new parameter takes its default
    ASSERT_EQ(Relit(), 1);
    EXPECT_EQ(journal.messages.back(), question);
    ASSERT_EQ(liste.nombre, 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(memcmp(&Lu(i), &Trois[(size_t)i], 12), 0) << i;
        int32_t vie;
        memcpy(&vie, liste.objets + (size_t)i * liste.taille + 24, 4);
        EXPECT_EQ(vie, 7) << i;
    }
}

TEST_F(Liste, ModeleInconnuEtTropDObjets) {
    CopieBornee(TableModeles[1].nom, "Autre");
    EXPECT_EQ(Relit(), 0);
    EXPECT_EQ(journal.messages, Textes{"[Error] Unable to use the specified parameter model: Ennemis"});
    CopieBornee(TableModeles[1].nom, "Ennemis");
    journal.messages.clear();
    ReglagesSys.objetsMax = 2;
    EXPECT_EQ(Relit(), 0);
    EXPECT_EQ(journal.messages,
              Textes{"[l.lst.c] Unable to load this list because it contains more elements than the maximum "
                     "allowed. Modify the maximum number of elements per list in the options."});
}

// Every size a file or a script declares, at its largest, is refused or
// bounded before anything is allocated for it.
TEST_F(Liste, TaillesDeclareesAuPlusGrand) {
    // Tiles: the store holds 8,192 units whatever the declaration says.
    Ecrit("g.til.c", {SECTION_TILESET, 8, 0, 0, 8, 8, INT32_MAX}, Unites(8, 100));
    uint32_t* lues = nullptr;
    EXPECT_EQ(ChargeMosaique(nullptr, &lues, "g.til.c", false), 100);
    free(lues);
    // Maps and bitmaps: 2^31 - 1 cells a side.
    EcritCarte("m.map.c", "t.til.c", 16, 8, INT32_MAX, INT32_MAX, {1, 2});
    uint32_t* cellules = nullptr;
    EXPECT_EQ(ChargeCarte(palette, &tuiles, &cellules, Ligne(TYPE_CARTE, "m.map.c")), 0);
    EXPECT_EQ(cellules, nullptr);
    EcritBitmap("b.b16.c", nullptr, INT32_MAX, INT32_MAX, {1, 2});
    ChargeBitmap16(Ligne(TYPE_BITMAP16, "b.b16.c"));
    EXPECT_NE(LargeurApercu, INT32_MAX); // the preview was not sized for it

    // A parameter of any size takes at most 64 KiB of an object, so a model's
    // size never wraps; the objects' room stays within 64 MiB.
    AjouteParametre(TableModeles[1], "enorme", PARAMETRE_BRUT, INT32_MAX, "");
    AjouteParametre(TableModeles[1], "negatif", PARAMETRE_BRUT, INT32_MIN, "");
    EXPECT_EQ(TableModeles[1].taille, TAILLE_OBJET_BASE + 4 + 8 + TAILLE_PARAMETRE_MAX);
    ReglagesSys.objetsMax = INT32_MAX;
    journal.messages.clear();
    EXPECT_EQ(Relit(), 0);
    EXPECT_EQ(liste.objets, nullptr);
}
