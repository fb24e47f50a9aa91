// The BMP reader against files made byte by byte: every depth, header and
// compression it takes, and damaged files it must refuse without reading
// outside the data. The writer is checked byte for byte and read back.
#include "platform/imagefichier.h"
#include "tests/support/enregistreur.h"
#include "tests/support/images.h"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr uint32_t RLE8 = 1, RLE4 = 2, CHAMPS = 3, CHAMPS_ALPHA = 6;

struct Lu {
    int bon = 0;
    int bits = 0;
    int largeur = 0, hauteur = 0;
    std::vector<uint32_t> pixels;
};

// Reads the first n bytes from a block of exactly that size, so that the
// address sanitizer catches a read past the end.
Lu Lit(const std::string& fichier, size_t n = std::string::npos) {
    std::vector<uint8_t> d(fichier.begin(), fichier.begin() + (ptrdiff_t)std::min(n, fichier.size()));
    ImageLocale sortie(3, 3); // what the picture held goes in any case
    Lu r;
    r.bon = LitBmp(d.data(), d.size(), sortie.image, r.bits);
    EXPECT_TRUE(r.bon == 0 || r.bon == 1);
    EXPECT_EQ(sortie.image.pixels != nullptr, r.bon == 1);
    if (r.bon) {
        EXPECT_EQ(sortie.image.bits, 24);
        EXPECT_TRUE(TailleImageAdmise(sortie.image.largeur, sortie.image.hauteur));
    }
    r.largeur = sortie.image.largeur;
    r.hauteur = sortie.image.hauteur;
    r.pixels = PixelsDe(sortie.image);
    return r;
}

// A file of the given values, top row first; the full test palette up to 8 bits.
std::string Fichier(int entete, int bits, int largeur, int hauteur, const std::vector<uint32_t>& valeurs,
                    uint32_t compression = 0, std::vector<uint32_t> masques = {},
                    std::vector<uint32_t> palette = {}, uint32_t couleursDites = 0) {
    if (bits <= 8 && palette.empty()) palette = PaletteTest(1 << bits);
    return FabriqueBmp({entete, largeur, hauteur, bits, compression, couleursDites, masques, palette,
                        LignesBmp(bits, largeur, std::abs(hauteur), hauteur > 0, valeurs)});
}

std::string FichierRle(int bits, int largeur, int hauteur, const std::string& codes) {
    return FabriqueBmp({40, largeur, hauteur, bits, bits == 8 ? RLE8 : RLE4, 0, {}, PaletteTest(16), codes});
}

std::vector<uint32_t> Suite(int n, uint32_t pas, uint32_t modulo) {
    std::vector<uint32_t> v;
    for (int i = 0; i < n; ++i)
        v.push_back((uint32_t)i * pas % modulo);
    return v;
}

std::vector<uint32_t> Couleurs(const std::vector<uint32_t>& indices, const std::vector<uint32_t>& palette) {
    std::vector<uint32_t> v;
    for (uint32_t i : indices)
        v.push_back(i < palette.size() ? palette[i] : 0);
    return v;
}

// Bottom row: a run, an odd absolute run and its pad; end of line; a run, a
// delta two right and one up, a run; end of line; an even absolute run; end
// of picture, then a run that must not be drawn.
const std::string CODES_RLE8("\x03\x01\x00\x03\x05\x06\x07\x00\x00\x00"
                             "\x02\x04\x00\x02\x02\x01\x02\x0C\x00\x00"
                             "\x00\x04\x08\x09\x0A\x0B\x00\x01\x02\x0F",
                             30);
// A run alternating two nibbles; end of line; absolute runs of 3 nibbles (2
// bytes) and 4; end of line; 5 nibbles (3 bytes and a pad), a delta of one, a
// single pixel, end of picture.
const std::string CODES_RLE4("\x07\x12\x00\x00"
                             "\x00\x03\x34\x50\x00\x04\x67\x89\x00\x00"
                             "\x00\x05\xAB\xCD\xE0\x00\x00\x02\x01\x00\x01\xF0\x00\x01",
                             28);

} // namespace

TEST(Bmp, ChaqueProfondeurEnteteEtCompressionDonneSesPixels) {
    const auto pal = PaletteTest(256), pal16 = PaletteTest(16);
    const auto i1 = Suite(22, 5, 2), i4 = Suite(15, 7, 16), i8 = Suite(15, 73, 256);
    const std::vector<uint32_t> rgb = {0x010203, 0xFFFFFF, 0x000000, 0x80FF01, 0x123456, 0xFEDCBA};
    // 5-5-5 words and their colours: 31 -> 255, 16 -> 132, 1 -> 8; the top bit is no colour.
    const std::vector<uint32_t> m555 = {0x7FFF, 0x7C00, 0x03E0, 0x001F, 0x4210, 0x8001};
    const std::vector<uint32_t> r555 = {0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF, 0x848484, 0x000008};
    // 5-6-5: six bits of green, 1 -> 4 and 32 -> 130. 4-4-4: 1 -> 17.
    const std::vector<uint32_t> m565 = {0xF800, 0x07E0, 0x001F, 0x0020, 0x8410, 0xFFFF};
    const std::vector<uint32_t> r565 = {0xFF0000, 0x00FF00, 0x0000FF, 0x000400, 0x848284, 0xFFFFFF};
    const std::vector<uint32_t> m444 = {0x0F00, 0x00F0, 0x000F, 0x0111, 0xFFFF, 0xF000};
    const std::vector<uint32_t> r444 = {0xFF0000, 0x00FF00, 0x0000FF, 0x111111, 0xFFFFFF, 0x000000};
    // 32 bits: the top byte is no colour; fields swapped; fields of 10 bits (512 -> 128, 3 -> 1).
    const std::vector<uint32_t> m32 = {0xAA112233, 0x00FFFFFF, 0xFF000000,
                                       0x00000080, 0x00010000, 0x7F7F7F7F};
    const std::vector<uint32_t> r32 = {0x112233, 0xFFFFFF, 0x000000, 0x000080, 0x010000, 0x7F7F7F};
    const std::vector<uint32_t> bgr32 = {0x332211, 0xFFFFFF, 0x000000, 0x800000, 0x000001, 0x7F7F7F};
    const std::vector<uint32_t> m10 = {0x3FF00000, 0x000FFC00, 0x000003FF,
                                       0x20000000, 0x00000003, 0xC0000000};
    const std::vector<uint32_t> r10 = {0xFF0000, 0x00FF00, 0x0000FF, 0x800000, 0x000001, 0x000000};
    const std::vector<uint32_t> bgr = {0xFF, 0xFF00, 0xFF0000}, dix = {0x3FF00000, 0x000FFC00, 0x3FF};
    const std::vector<uint32_t> f565 = {0xF800, 0x07E0, 0x001F};
    struct Cas {
        const char* nom;
        std::string fichier;
        int largeur, hauteur, bits;
        std::vector<uint32_t> attendus;
    } cas[] = {
        {"1 bit, core header", Fichier(12, 1, 11, 2, i1), 11, 2, 1, Couleurs(i1, pal)},
        {"4 bits", Fichier(40, 4, 5, 3, i4), 5, 3, 4, Couleurs(i4, pal)},
        {"8 bits, core header", Fichier(12, 8, 5, 3, i8), 5, 3, 8, Couleurs(i8, pal)},
        {"8 bits", Fichier(40, 8, 5, 3, i8), 5, 3, 8, Couleurs(i8, pal)},
        {"8 bits, header 108", Fichier(108, 8, 5, 3, i8), 5, 3, 8, Couleurs(i8, pal)},
        {"8 bits, header 124, top-down", Fichier(124, 8, 3, -5, i8), 3, 5, 8, Couleurs(i8, pal)},
        // Three colours declared, the pixels right after them; a higher index is black.
        {"8 bits, 3 colours",
         Fichier(40, 8, 3, 2, {0, 1, 2, 2, 200, 0}, 0, {}, {0x112233, 0xFFFFFF, 0x808080}, 3),
         3,
         2,
         8,
         {0x112233, 0xFFFFFF, 0x808080, 0x808080, 0x000000, 0x112233}},
        {"4 bits, 2 colours",
         Fichier(40, 4, 3, 1, {1, 0, 1}, 0, {}, {0xABCDEF, 0x010101}, 2),
         3,
         1,
         4,
         {0x010101, 0xABCDEF, 0x010101}},
        {"16 bits 5-5-5", Fichier(40, 16, 3, 2, m555), 3, 2, 16, r555},
        {"16 bits 5-6-5 fields", Fichier(40, 16, 3, 2, m565, CHAMPS, f565), 3, 2, 16, r565},
        {"16 bits 5-6-5, header 52", Fichier(52, 16, 3, 2, m565, CHAMPS, f565), 3, 2, 16, r565},
        {"16 bits 4-4-4, header 56", Fichier(56, 16, 2, -3, m444, CHAMPS, {0xF00, 0xF0, 0xF, 0xF000}), 2, 3,
         16, r444},
        {"24 bits", Fichier(40, 24, 3, 2, rgb), 3, 2, 24, rgb},
        {"24 bits top-down", Fichier(40, 24, 1, -6, rgb), 1, 6, 24, rgb},
        {"24 bits, core header", Fichier(12, 24, 2, 3, rgb), 2, 3, 24, rgb},
        {"32 bits", Fichier(40, 32, 3, 2, m32), 3, 2, 32, r32},
        {"32 bits fields, header 108", Fichier(108, 32, 6, 1, m32, CHAMPS, bgr), 6, 1, 32, bgr32},
        {"32 bits fields", Fichier(40, 32, 2, 3, m32, CHAMPS, bgr), 2, 3, 32, bgr32},
        {"32 bits alpha fields",
         Fichier(40, 32, 2, 3, m32, CHAMPS_ALPHA, {0xFF, 0xFF00, 0xFF0000, 0xFF000000}), 2, 3, 32, bgr32},
        {"32 bits 10-bit fields, header 124", Fichier(124, 32, 3, -2, m10, CHAMPS, dix), 3, 2, 32, r10},
        {"RLE8", FichierRle(8, 6, 4, CODES_RLE8), 6, 4, 8,
         Couleurs({8, 9, 10, 11, 0, 0, 0, 0, 0, 0, 12, 12, 4, 4, 0, 0, 0, 0, 1, 1, 1, 5, 6, 7}, pal16)},
        // Data that stops without the end of picture is taken as it stands.
        {"RLE8 without its end", FichierRle(8, 6, 4, CODES_RLE8.substr(0, 26)), 6, 4, 8,
         Couleurs({8, 9, 10, 11, 0, 0, 0, 0, 0, 0, 12, 12, 4, 4, 0, 0, 0, 0, 1, 1, 1, 5, 6, 7}, pal16)},
        {"RLE4", FichierRle(4, 7, 3, CODES_RLE4), 7, 3, 4,
         Couleurs({10, 11, 12, 13, 14, 0, 15, 3, 4, 5, 6, 7, 8, 9, 1, 2, 1, 2, 1, 2, 1}, pal16)},
    };
    for (const Cas& c : cas) {
        const Lu r = Lit(c.fichier);
        ASSERT_EQ(r.bon, 1) << c.nom;
        EXPECT_EQ(r.largeur, c.largeur) << c.nom;
        EXPECT_EQ(r.hauteur, c.hauteur) << c.nom;
        EXPECT_EQ(r.bits, c.bits) << c.nom;
        EXPECT_EQ(r.pixels, c.attendus) << c.nom;
    }
}

TEST(Bmp, RleQuiSortDeLImageEstRefuse) {
    const struct {
        const char* nom;
        int bits, largeur, hauteur;
        std::string codes;
    } cas[] = {
        {"run past the row", 8, 6, 4, std::string("\x07\x01\x00\x01", 4)},
        {"absolute run past the row", 8, 6, 4, std::string("\x00\x07\x01\x02\x03\x04\x05\x06\x07\x00", 10)},
        {"run past the picture", 8, 6, 2, std::string("\x00\x00\x00\x00\x01\x01", 6)},
        {"delta past the row", 8, 6, 4, std::string("\x00\x02\x07\x00\x00\x01", 6)},
        {"delta past the picture", 8, 6, 4, std::string("\x00\x02\x00\x05\x00\x01", 6)},
        {"cut absolute run", 8, 6, 4, std::string("\x00\x05\x01\x02", 4)},
        {"cut delta", 8, 6, 4, std::string("\x00\x02\x01", 3)},
        {"4-bit run past the row", 4, 7, 3, std::string("\x08\x12\x00\x01", 4)},
        {"4-bit absolute run past the row", 4, 3, 3, std::string("\x00\x04\x12\x34\x00\x01", 6)},
        {"4-bit cut absolute run", 4, 7, 3, std::string("\x00\x05\x12\x34", 4)},
        {"top-down", 8, 2, -2, std::string("\x00\x01", 2)}, // RLE rows run bottom-up only
    };
    for (const auto& c : cas)
        EXPECT_EQ(Lit(FichierRle(c.bits, c.largeur, c.hauteur, c.codes)).bon, 0) << c.nom;
}

TEST(Bmp, EntetesTaillesEtCombinaisonsInvalides) {
    const std::string bon = Fichier(40, 8, 5, 3, Suite(15, 1, 256));
    ASSERT_EQ(Lit(bon).bon, 1);
    const int64_t tailles[][2] = {{0, 3},           {-5, 3},    {5, 0},      {100000, 3},   {5, 100000},
                                  {100000, 100000}, {32769, 1}, {1, -32769}, {32768, 1025}, {1, INT32_MIN}};
    for (const auto& t : tailles) {
        std::string f = bon;
        Pose32(f, 18, (uint32_t)t[0]);
        Pose32(f, 22, (uint32_t)t[1]);
        EXPECT_EQ(Lit(f).bon, 0) << t[0] << " x " << t[1];
    }
    // Depths and compressions that do not go together, with room for any of them.
    const uint32_t combinaisons[][2] = {{4, RLE8},   {8, RLE4}, {16, RLE8}, {24, CHAMPS},
                                        {8, CHAMPS}, {24, 4},   {24, 5},    {32, 7},
                                        {2, 0},      {0, 0},    {48, 0},    {1, RLE4}};
    for (const auto& c : combinaisons) {
        const Bmp b{
            40, 4, 4, (int)c[0], c[1], 0, {0xF800, 0x07E0, 0x001F}, PaletteTest(256), std::string(512, 0)};
        EXPECT_EQ(Lit(FabriqueBmp(b)).bon, 0) << c[0] << " bits, compression " << c[1];
    }
    const std::string rgb = Fichier(40, 24, 3, 2, Suite(6, 77, 1 << 24)); // pixels from byte 54
    const uint32_t n = (uint32_t)rgb.size();
    const uint32_t alterations[][2] = {
        {10, n},      {10, n + 100},    {10, 0xFFFFFFFF}, {10, 54 + 4}, // no room left for the pixels
        {14, 0},      {14, 11},         {14, 13},         {14, 39},     // header sizes
        {14, n - 13}, {14, 0xFFFFFFF0},                                 // headers larger than the file
        {46, 200},                                                      // more colours than the file holds
    };
    for (const auto& a : alterations) {
        std::string f = rgb;
        Pose32(f, a[0], a[1]);
        if (a[0] == 46) Pose16(f, 28, 8);
        EXPECT_EQ(Lit(f).bon, 0) << a[0] << " = " << a[1];
    }
    std::string f = rgb;
    f[1] = 'A';
    EXPECT_EQ(Lit(f).bon, 0);
    Image vide;
    int bits = 0;
    EXPECT_EQ(LitBmp(nullptr, 100, vide, bits), 0);
}

TEST(Bmp, FichierCoupeAChaqueLongueur) {
    // Every cut fails until the last row is there, its padding excepted.
    const struct {
        int entete, bits, largeur, hauteur;
        uint32_t compression;
        std::vector<uint32_t> masques;
    } cas[] = {{40, 8, 5, 3, 0, {}},
               {40, 24, 3, -2, 0, {}},
               {12, 1, 11, 2, 0, {}},
               {40, 4, 5, 3, 0, {}},
               {40, 32, 3, 2, CHAMPS, {0xFF, 0xFF00, 0xFF0000}},
               {124, 16, 3, 2, CHAMPS, {0xF800, 0x7E0, 0x1F}}};
    for (const auto& c : cas) {
        const int n = c.largeur * std::abs(c.hauteur);
        const std::string f =
            Fichier(c.entete, c.bits, c.largeur, c.hauteur,
                    Suite(n, 97, c.bits >= 24 ? 1u << 24 : 1u << c.bits), c.compression, c.masques);
        const size_t bitsLigne = (size_t)c.largeur * c.bits;
        const size_t fin = f.size() - (bitsLigne + 31) / 32 * 4 + (bitsLigne + 7) / 8;
        const Lu entier = Lit(f);
        ASSERT_EQ(entier.bon, 1);
        for (size_t k = 0; k < f.size(); ++k) {
            const Lu r = Lit(f, k);
            ASSERT_EQ(r.bon, k >= fin ? 1 : 0) << k << " of " << f.size();
            ASSERT_EQ(r.pixels, k >= fin ? entier.pixels : std::vector<uint32_t>{}) << k;
        }
    }
}

TEST(Bmp, MutationsAleatoiresNeSortentPasDesDonnees) {
    const std::string modeles[] = {
        Fichier(40, 8, 5, 3, Suite(15, 73, 256)),
        Fichier(12, 1, 11, 2, Suite(22, 5, 2)),
        Fichier(40, 24, 3, -2, Suite(6, 77, 1 << 24)),
        Fichier(40, 16, 3, 2, Suite(6, 999, 65536), CHAMPS, {0xF800, 0x07E0, 0x001F}),
        Fichier(124, 32, 3, 2, Suite(6, 12345, 1 << 30), CHAMPS, {0xFF, 0xFF00, 0xFF0000}),
        FichierRle(8, 6, 4, CODES_RLE8),
        FichierRle(4, 7, 3, CODES_RLE4),
    };
    std::mt19937 alea(20240611);
    int lus = 0;
    for (int essai = 0; essai < 4000; ++essai) {
        std::string f = modeles[essai % std::size(modeles)];
        for (int k = 1 + (int)(alea() % 4); k > 0; --k) {
            // Half the changes fall in the headers, where the sizes and offsets are.
            const size_t p = alea() % 2 ? alea() % 70 % f.size() : alea() % f.size();
            f[p] = (char)(alea() % 3 ? alea() : (uint8_t)f[p] ^ (1u << (alea() % 8)));
        }
        if (alea() % 8 == 0) f.resize(alea() % f.size());
        const Lu r = Lit(f);
        ASSERT_EQ(r.pixels.size(), (size_t)r.largeur * r.hauteur) << essai;
        if (r.bon) ++lus;
    }
    EXPECT_GT(lus, 400); // enough files stay readable to reach the pixel loops
}

TEST(Bmp, EcritureOctetPourOctetEtRelecture) {
    DossierTemporaire dossier;
    std::mt19937 alea(7);
    const std::string chemin = dossier.Dans("e.bmp");
    for (int largeur = 1; largeur <= 7; ++largeur)
        for (int hauteur = 1; hauteur <= 3; ++hauteur) {
            // The top-left part of a larger picture, every byte of it random.
            ImageLocale source(largeur + 3, hauteur + 2);
            for (int i = 0; i < source.image.pas * source.image.hauteur; ++i)
                source.image.pixels[i] = (uint8_t)alea();
            const auto tout = PixelsDe(source.image);
            std::vector<uint32_t> haut;
            for (int y = 0; y < hauteur; ++y)
                for (int x = 0; x < largeur; ++x)
                    haut.push_back(tout[(size_t)y * (largeur + 3) + x]);
            ASSERT_EQ(EcritBmp(chemin.c_str(), source.image, largeur, hauteur), 1);
            const std::string ecrit = LitFichier(chemin);
            EXPECT_EQ(ecrit, Fichier(40, 24, largeur, hauteur, haut)) << largeur << " x " << hauteur;
            EXPECT_EQ(Lit(ecrit).pixels, haut);
        }
    // Sizes beyond the picture are cut to it; nothing to write, or nowhere, fails.
    ImageLocale petite(2, 2, {1, 2, 3, 4});
    ASSERT_EQ(EcritBmp(chemin.c_str(), petite.image, 50, 50), 1);
    EXPECT_EQ(Lit(LitFichier(chemin)).pixels, (std::vector<uint32_t>{1, 2, 3, 4}));
    EXPECT_EQ(EcritBmp(chemin.c_str(), petite.image, 0, 2), 0);
    EXPECT_EQ(EcritBmp(dossier.Dans("absent/d.bmp").c_str(), petite.image, 2, 2), 0);
    size_t taille = 1;
    EXPECT_EQ(LitFichierEntier(dossier.Dans("absent.bmp").c_str(), taille), nullptr);
    EXPECT_EQ(taille, 0u);
}
