// The pixel layer against a slow reference: every block routine, on random
// blocks, positions (inside, across the edges, negative, past the limits),
// frames, mirrors, masks and alphas, must give the reference's pixels, and
// nothing may be written outside the frame.
#include "render/blitters.h"

#include "core/reglages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr int L = 40, H = 24; // a small surface: rows of 120 bytes

struct Surface {
    Image image;
    Surface() {
        CreeImage(image, L, H, 24);
        for (int i = 0; i < image.pas * H; ++i) image.pixels[i] = (uint8_t)(i * 7 + 3);
    }
    ~Surface() { LibereImage(image); }
    uint8_t* At(int x, int r) { return image.pixels + (H - 1 - r) * image.pas + x * 3; }
};

// The slow reference: one pixel at a time, straight from the rules.
void Reference(Surface& s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal, bool direct,
               bool transp, bool alpha, int a, bool mh, bool mv, uint32_t masque) {
    const Cadre& c = CadreDessin;
    for (int j = 0; j < h; ++j)
        for (int i = 0; i < l; ++i) {
            // Relative coordinates below 0 are cut at the origin.
            int rx = x + (mh ? l - 1 - i : i), ry = y + (mv ? h - 1 - j : j);
            if (rx < 0 || ry < 0) continue;
            int tx = c.xOrigine + rx, ty = c.yOrigine + ry;
            if (tx >= c.xLimite || ty >= c.yLimite || tx < 0 || ty < 0 || tx >= L || ty >= H) continue;
            uint32_t w = src[j * l + i];
            uint8_t px[3];
            if (direct) {
                if (transp && w >= 0x1000000u) continue;
                px[0] = w & 0xFF, px[1] = w >> 8 & 0xFF, px[2] = w >> 16 & 0xFF;
            } else {
                if (transp && w == 0) continue;
                memcpy(px, pal + (w & masque & 0xFF) * 3, 3);
            }
            uint8_t* d = s.At(tx, ty);
            for (int k = 0; k < 3; ++k) d[k] = alpha ? (uint8_t)((px[k] * a + d[k] * (255 - a)) >> 8) : px[k];
        }
}

struct Blitters : testing::Test {
    void SetUp() override {
        ModeDirect = 0;
        ChoisitCadre(0, 0, L, H);
    }
};

} // namespace

TEST_F(Blitters, LesHuitRoutinesSuiventLaReference) {
    std::mt19937 alea(1234);
    std::vector<uint8_t> palette(256 * 3);
    for (auto& b : palette) b = (uint8_t)alea();
    for (int essai = 0; essai < 4000; ++essai) {
        const int routine = essai % 8;
        const bool transp = routine & 1, alpha = routine & 2, miroir = routine & 4;
        ModeDirect = (essai / 8) % 2;
        const int l = 1 + (int)(alea() % 20), h = 1 + (int)(alea() % 20);
        const int x = (int)(alea() % 70) - 25, y = (int)(alea() % 50) - 20;
        // Frames inside, at the surface's edges, and past them.
        const int ox = (int)(alea() % 12) - 4, oy = (int)(alea() % 12) - 4;
        ChoisitCadre(ox, oy, ox + (int)(alea() % 50), oy + (int)(alea() % 34));
        std::vector<uint32_t> src((size_t)l * h);
        for (auto& w : src) {
            switch (alea() % 4) {
            case 0: w = 0; break;
            case 1: w = 0x1000000u | (uint32_t)alea(); break;
            default: w = ModeDirect ? (uint32_t)alea() & 0xFFFFFF : (uint32_t)alea() % 300;
            }
        }
        const bool mh = miroir && (alea() & 1), mv = miroir && (alea() & 1);
        const uint32_t masque = !miroir ? 0xFFFFFFFFu : (alea() & 1) ? 15 : 255;
        const int a = (int)(alea() % 256);

        Surface attendu, obtenu;
        Reference(attendu, x, y, l, h, src.data(), palette.data(), ModeDirect, transp, alpha, a, mh, mv, masque);
        Image* s = &obtenu.image;
        const uint32_t* p = src.data();
        const uint8_t* pal = palette.data();
        switch (routine) {
        case 0: AfficheBloc(s, x, y, l, h, p, pal); break;
        case 1: AfficheBlocTransp(s, x, y, l, h, p, pal); break;
        case 2: AfficheBlocAlpha(s, x, y, l, h, p, pal, a); break;
        case 3: AfficheBlocTranspAlpha(s, x, y, l, h, p, pal, a); break;
        case 4: AfficheBlocMiroir(s, x, y, l, h, p, pal, mh, mv, masque); break;
        case 5: AfficheBlocMiroirTransp(s, x, y, l, h, p, pal, mh, mv, masque); break;
        case 6: AfficheBlocMiroirAlpha(s, x, y, l, h, p, pal, mh, mv, masque, a); break;
        case 7: AfficheBlocMiroirTranspAlpha(s, x, y, l, h, p, pal, mh, mv, masque, a); break;
        }
        ASSERT_EQ(memcmp(attendu.image.pixels, obtenu.image.pixels, (size_t)obtenu.image.pas * H), 0)
            << "essai " << essai << " routine " << routine << " direct " << ModeDirect << " bloc " << x << "," << y
            << " " << l << "x" << h << " cadre " << ox << "," << oy;
    }
}

TEST_F(Blitters, CasLimites) {
    uint8_t pal[256 * 3] = {};
    pal[0] = 10, pal[1] = 20, pal[2] = 30; // entry 0
    pal[3] = 255, pal[4] = 255, pal[5] = 255;
    // A block above the top keeps its lower rows aligned with the source.
    {
        Surface s;
        const uint32_t src[3] = {1, 0, 1};
        AfficheBloc(&s.image, 2, -2, 1, 3, src, pal);
        EXPECT_EQ(s.At(2, 0)[0], 255);
    }
    // Entirely right of the limit: nothing changes.
    {
        Surface s, t;
        std::vector<uint32_t> src(64, 1);
        ChoisitCadre(0, 0, 10, H);
        AfficheBloc(&s.image, 10, 0, 8, 8, src.data(), pal);
        EXPECT_EQ(memcmp(s.image.pixels, t.image.pixels, (size_t)s.image.pas * H), 0);
    }
    // 255 over 255: 254 with alpha 255 and with alpha 128.
    for (int a : {255, 128}) {
        Surface s;
        RemplitRect(&s.image, 0, 0, 1, 1, 0xFFFFFF);
        RemplitRectAlpha(&s.image, 0, 0, 1, 1, 0xFFFFFF, a);
        EXPECT_EQ(s.At(0, 0)[0], 254) << a;
    }
    // A raw 16 under mask 15 is not transparent: entry 0 of its bank.
    {
        Surface s;
        const uint32_t src[1] = {16};
        AfficheBlocMiroirTransp(&s.image, 0, 0, 1, 1, src, pal, 0, 0, 15);
        EXPECT_EQ(s.At(0, 0)[2], 30);
    }
    // A direct word with the top byte set: skipped when transparent, else its low bytes.
    {
        Surface s;
        ModeDirect = 1;
        const uint32_t src[1] = {0x01112233};
        AfficheBlocTransp(&s.image, 0, 0, 1, 1, src, nullptr);
        EXPECT_NE(s.At(0, 0)[0], 0x33);
        AfficheBloc(&s.image, 0, 0, 1, 1, src, nullptr);
        EXPECT_EQ(s.At(0, 0)[0], 0x33);
        EXPECT_EQ(s.At(0, 0)[2], 0x11);
    }
    // Nothing to draw on or from.
    AfficheBloc(nullptr, 0, 0, 1, 1, nullptr, pal);
}

TEST_F(Blitters, CadresEtBords) {
    // Which pixels a call touches, as text: one character a pixel, '#' touched.
    auto Dessin = [](auto&& dessine) {
        Surface s, t;
        dessine(&s.image);
        std::string texte;
        for (int r = 0; r < 8; ++r) {
            for (int x = 0; x < 8; ++x) texte += memcmp(s.At(x, r), t.At(x, r), 3) ? '#' : '.';
            texte += '\n';
        }
        return texte;
    };
    // A frame called at (1, 2, 5, 4) covers rows 1 to 4, columns 1 to 5.
    EXPECT_EQ(Dessin([](Image* s) { AfficheCadreAlpha(s, 1, 2, 5, 4, 0xFFFFFF, 255); }),
              "........\n.#####..\n.#...#..\n.#...#..\n.#####..\n........\n........\n........\n");
    EXPECT_EQ(Dessin([](Image* s) { AfficheCadreAlpha(s, 2, 1, 1, 3, 0xFFFFFF, 255); }),
              "..#.....\n..#.....\n..#.....\n........\n........\n........\n........\n........\n");
    EXPECT_EQ(Dessin([](Image* s) { AfficheCadreAlpha(s, 1, 3, 4, 1, 0xFFFFFF, 255); }),
              "........\n........\n.####...\n........\n........\n........\n........\n........\n");
    EXPECT_EQ(Dessin([](Image* s) { AfficheBordBloc(s, 1, 1, 4, 3, 0xFFFFFF, 255); }),
              "....#...\n....#...\n.####...\n........\n........\n........\n........\n........\n");
    // Corners are blended once: with alpha 128 over a white fill they equal the edges.
    Surface s;
    RemplitRect(&s.image, 0, 0, 8, 8, 0xFFFFFF);
    AfficheCadreAlpha(&s.image, 1, 2, 5, 4, 0x000000, 128);
    EXPECT_EQ(s.At(1, 1)[0], s.At(3, 1)[0]);
    EXPECT_EQ(s.At(1, 1)[0], (255 * 127) >> 8);
    // A frame far beyond every edge touches nothing and runs no long loop.
    ChoisitCadre(0, 0, L, H);
    AfficheCadreAlpha(&s.image, -2000000000, -2000000000, 2100000000, 2100000000, 0, 255);
}

TEST_F(Blitters, TuilesDeCartes) {
    // Two tiles; the second has index 1 in its top-left pixel and 0 elsewhere.
    std::vector<uint32_t> tuiles(128, 2);
    std::fill(tuiles.begin() + 64, tuiles.end(), 0);
    tuiles[64] = 1;
    uint8_t pal[256 * 3] = {};
    for (int i = 0; i < 256; ++i) pal[i * 3] = (uint8_t)i;
    Surface s;
    VueTuiles vue{1, pal, tuiles.data()};
    // Tile 1, mirrored both ways, bank 3: its pixel lands at the bottom-right, entry 3*16+1.
    AfficheTuile(&s.image, 0, 0, vue, 1 | CELLULE_MIROIR_H | CELLULE_MIROIR_V | 3u << 12, 0);
    EXPECT_EQ(s.At(7, 7)[0], 49);
    EXPECT_NE(s.At(0, 0)[0], 48); // index 0 is transparent...
    AfficheTuileOpaque(&s.image, 8, 0, vue, 1 | 3u << 12, 0);
    EXPECT_EQ(s.At(9, 0)[0], 48); // ...but painted by the opaque form
    // Depth 8: the bank bits are ignored, the mask is 255.
    vue.quatreBits = 0;
    AfficheTuileOpaque(&s.image, 16, 0, vue, 0 | 3u << 12, 0);
    EXPECT_EQ(s.At(16, 0)[0], 2);
}

TEST_F(Blitters, NombresSurLesBlocs) {
    Image& e = SurfaceEditeur;
    ASSERT_EQ(CreeImage(e, 32, 32, 24), 1);
    ChoisitCadre(0, 0, 32, 32);
    tilex = tiley = 16;
    RemplitRect(&e, 0, 0, 32, 32, 0x808080);
    auto Lit = [&](int x, int r) {
        const uint8_t* p = e.pixels + (31 - r) * e.pas + x * 3;
        return p[0] == 0xFF ? '.' : p[0] == 0x00 ? '#' : ' ';
    };
    AfficheNombreBloc(0, 0, 0x1A, 0x000000, false);
    // Units at column 8, tens 4 to the left, on rows 7 to 11.
    std::string chiffres;
    for (int r = 7; r < 12; ++r) {
        for (int x = 4; x < 11; ++x) chiffres += Lit(x, r);
        chiffres += '\n';
    }
    EXPECT_EQ(chiffres, "..# .#.\n.## #.#\n..# ###\n..# #.#\n..# #.#\n");
    // Four digits for wide cells, the upper two 6 rows higher.
    AfficheNombreBloc(0, 0, 0x2000, 0x000000, true);
    EXPECT_EQ(Lit(4, 1), '#'); // the top row of the "2" in the fourth place
    EXPECT_EQ(Lit(5, 1), '#');
    LibereImage(e);
}
