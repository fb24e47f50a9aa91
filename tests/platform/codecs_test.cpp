// The library formats: pictures written by type and read back, files made
// with the libraries themselves (palettes, transparency, other depths), and
// damaged files, which must fail without a crash.
#include "platform/fichiers.h"
#include "platform/imagefichier.h"
#include "tests/support/enregistreur.h"
#include "tests/support/images.h"

#include <gif_lib.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <filesystem>
#include <random>

namespace {

const uint8_t TRANSPARENT[3] = {1, 2, 3};
constexpr uint32_t T = 0x010203; // what a transparent pixel reads as

struct Relu {
    int bon = 0;
    int bits = 0;
    int largeur = 0;
    std::vector<uint32_t> pixels;
};

// Decodes from a block of exactly the file's size.
Relu Decode(const std::string& fichier) {
    std::vector<uint8_t> d(fichier.begin(), fichier.end());
    Image image;
    Relu r;
    r.bon = LitImageMemoire(d.data(), d.size(), image, r.bits, TRANSPARENT);
    EXPECT_EQ(image.pixels != nullptr, r.bon == 1);
    r.largeur = image.largeur;
    r.pixels = PixelsDe(image);
    LibereImage(image);
    return r;
}

// Writes the top-left part of a larger picture; gives the file's bytes.
std::string Ecrit(const DossierTemporaire& dossier, const char* mime, const std::vector<uint32_t>& couleurs,
                  int l, int h) {
    ImageLocale image(l + 2, h + 1);
    for (size_t i = 0; i < couleurs.size(); ++i)
        image.Pose((int)(i % l), (int)(i / l), couleurs[i]);
    const std::string chemin = dossier.Dans("image");
    EXPECT_EQ(EcritImageType(chemin.c_str(), mime, image.image, l, h), 1) << mime;
    size_t taille = 0;
    uint8_t* d = LitFichierEntier(chemin.c_str(), taille);
    const std::string fichier(d ? (const char*)d : "", taille);
    free(d);
    return fichier;
}

int AjouteGif(GifFileType* gif, const GifByteType* d, int n) {
    ((std::string*)gif->UserData)->append((const char*)d, (size_t)n);
    return n;
}

// One frame (left, top, width, height) on a screen; its rows in file order,
// pass by pass when interlaced.
std::string FabriqueGif(int largeur, int hauteur, int fond, int transparent, const int cadre[4],
                        const std::vector<uint8_t>& indices, bool entrelace = false) {
    static const GifColorType palette[4] = {
        {0x10, 0x20, 0x30}, {0x40, 0x50, 0x60}, {0x70, 0x80, 0x90}, {0xA0, 0xB0, 0xC0}};
    static const int depart[] = {0, 4, 2, 1}, saut[] = {8, 8, 4, 2};
    std::string sortie;
    int erreur = 0;
    GifFileType* gif = EGifOpen(&sortie, AjouteGif, &erreur);
    ColorMapObject* carte = GifMakeMapObject(4, palette);
    EGifSetGifVersion(gif, true);
    EGifPutScreenDesc(gif, largeur, hauteur, 8, fond, carte);
    const GifByteType controle[4] = {1, 0, 0, (GifByteType)transparent};
    if (transparent >= 0) EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, controle);
    EGifPutImageDesc(gif, cadre[0], cadre[1], cadre[2], cadre[3], entrelace, nullptr);
    for (int p = 0; p < (entrelace ? 4 : 1); ++p)
        for (int y = entrelace ? depart[p] : 0; y < cadre[3]; y += entrelace ? saut[p] : 1)
            EGifPutLine(gif, (GifPixelType*)indices.data() + (size_t)y * cadre[2], cadre[2]);
    GifFreeMapObject(carte);
    EGifCloseFile(gif, &erreur);
    return sortie;
}

} // namespace

TEST(Codecs, AllerRetourParType) {
    DossierTemporaire dossier;
    const struct {
        const char* mime;
        std::string debut;
        int ecartAdmis;
    } cas[] = {{"image/png", "\x89PNG", 0},
               {"image/tiff", std::string("II*\0", 4), 0},
               {"image/gif", "GIF8", 0},
               {"image/bmp", "BM", 0},
               {"image/jpeg", "\xFF\xD8\xFF", 24}};
    const auto couleurs = Degrade(15, 17);
    for (const auto& c : cas) {
        const std::string fichier = Ecrit(dossier, c.mime, couleurs, 15, 17);
        EXPECT_EQ(fichier.substr(0, c.debut.size()), c.debut) << c.mime;
        const Relu r = Decode(fichier);
        ASSERT_EQ(r.bon, 1) << c.mime;
        EXPECT_EQ(r.largeur, 15);
        EXPECT_EQ(r.bits, 24) << c.mime;
        EXPECT_LE(EcartMax(r.pixels, couleurs), c.ecartAdmis) << c.mime;
    }
    // Past 256 colours, a GIF takes the nearest of 6 reds, 7 greens, 6 blues.
    std::vector<uint32_t> nombreuses;
    for (uint32_t i = 0; i < 400; ++i)
        nombreuses.push_back((i % 20 * 13) << 16 | (i / 20 * 13) << 8 | (i * 7 % 256));
    const Relu r = Decode(Ecrit(dossier, "image/gif", nombreuses, 20, 20));
    ASSERT_EQ(r.bon, 1);
    for (size_t i = 0; i < r.pixels.size(); ++i) {
        const int rouge = r.pixels[i] >> 16, vert = r.pixels[i] >> 8 & 255, bleu = r.pixels[i] & 255;
        ASSERT_TRUE(rouge % 51 == 0 && bleu % 51 == 0 && vert == (vert * 6 + 127) / 255 * 255 / 6) << i;
        ASSERT_LE(EcartMax({r.pixels[i]}, {nombreuses[i]}), 25) << i;
        ASSERT_LE(std::abs(vert - (int)(nombreuses[i] >> 8 & 255)), 21) << i;
    }
    ImageLocale image(2, 2);
    EXPECT_EQ(EcritImageType(dossier.Dans("x").c_str(), "image/webp", image.image, 2, 2), 0);
    EXPECT_FALSE(FichierExiste(dossier.Dans("x").c_str()));
    EXPECT_EQ(EcritImageType(dossier.Dans("absent/x").c_str(), "image/png", image.image, 2, 2), 0);
}

// A picture file is replaced only once it is whole: a disk that fills up
// midway, with every encoder, leaves the old file and nothing else.
TEST(Codecs, EcritureCoupeeGardeLAncienFichier) {
    DossierTemporaire dossier;
    const std::string chemin = dossier.Dans("image");
    ImageLocale image(40, 30);
    for (int i = 0; i < 40 * 30; ++i) image.Pose(i % 40, i / 40, (uint32_t)i * 2654435761u >> 8);
    for (const char* mime : {"image/bmp", "image/png", "image/jpeg", "image/gif", "image/tiff"}) {
        EcritFichier(chemin, "ancien");
        OctetsAvantEchecEcriture = 60;
        EXPECT_EQ(EcritImageType(chemin.c_str(), mime, image.image, 40, 30), 0) << mime;
        OctetsAvantEchecEcriture = -1;
        EXPECT_EQ(LitFichier(chemin), "ancien") << mime;
        size_t fichiers = 0;
        for (const auto& e : std::filesystem::directory_iterator(dossier.chemin)) fichiers += e.is_regular_file();
        EXPECT_EQ(fichiers, 1u) << mime;
        // With room enough, the same call replaces it.
        ASSERT_EQ(EcritImageType(chemin.c_str(), mime, image.image, 40, 30), 1) << mime;
        EXPECT_GT(LitFichier(chemin).size(), 60u) << mime;
    }
}

TEST(Codecs, VariantesPng) {
    std::string entrelacee;
    for (uint32_t c : Degrade(9, 9))
        entrelacee += {(char)(c >> 16), (char)(c >> 8), (char)c};
    const std::vector<uint32_t> pal = {0x102030, 0x405060, 0x708090, 0xA0B0C0},
                                gris = {0x111111, 0x222222, 0x333333};
    const std::string indices("\x00\x01\x02\x03\x01\x00", 6), grisAlpha("\x40\x00\x41\x02", 4);
    const std::string rgba("\x10\x20\x30\x00\x40\x50\x60\x01\x70\x80\x90\xFF\xFF\xFF\xFF\x00", 16);
    const std::string rgb16("\xAB\xFF\x12\x00\x00\xFF\x01\x80\xFF\xFF\x7F\x7F", 12); // high bytes kept
    const struct {
        const char* nom;
        Png png;
        std::vector<uint32_t> attendus;
    } cas[] = {
        // Index 1 fully transparent, index 2 half: only the first takes the colour given.
        {"palette, tRNS",
         {3, 2, PNG_COLOR_TYPE_PALETTE, 8, false, pal, {255, 0, 128}, indices},
         {0x102030, T, 0x708090, 0xA0B0C0, T, 0x102030}},
        {"2-bit palette",
         {5, 1, PNG_COLOR_TYPE_PALETTE, 2, false, gris, {}, "\x24\x80"},
         {0x111111, 0x333333, 0x222222, 0x111111, 0x333333}},
        {"RGBA", {2, 2, PNG_COLOR_TYPE_RGBA, 8, false, {}, {}, rgba}, {T, 0x405060, 0x708090, T}},
        {"16-bit RGB", {2, 1, PNG_COLOR_TYPE_RGB, 16, false, {}, {}, rgb16}, {0xAB1200, 0x01FF7F}},
        {"8-bit grey",
         {3, 1, PNG_COLOR_TYPE_GRAY, 8, false, {}, {}, std::string("\x00\x7F\xFF", 3)},
         {0x000000, 0x7F7F7F, 0xFFFFFF}},
        {"2-bit grey",
         {4, 1, PNG_COLOR_TYPE_GRAY, 2, false, {}, {}, "\x1B"},
         {0, 0x555555, 0xAAAAAA, 0xFFFFFF}},
        {"grey and alpha", {2, 1, PNG_COLOR_TYPE_GRAY_ALPHA, 8, false, {}, {}, grisAlpha}, {T, 0x414141}},
        {"interlaced", {9, 9, PNG_COLOR_TYPE_RGB, 8, true, {}, {}, entrelacee}, Degrade(9, 9)},
    };
    for (const auto& c : cas) {
        const Relu r = Decode(FabriquePng(c.png));
        ASSERT_EQ(r.bon, 1) << c.nom;
        EXPECT_EQ(r.largeur, c.png.largeur) << c.nom;
        EXPECT_EQ(r.bits, 24) << c.nom;
        EXPECT_EQ(r.pixels, c.attendus) << c.nom;
    }
}

TEST(Codecs, GifTransparentEtCadreSurLEcran) {
    const int cadre[4] = {1, 1, 2, 2};
    // Index 2 transparent: in the frame, and on the screen around it.
    EXPECT_EQ(Decode(FabriqueGif(4, 3, 3, 2, cadre, {0, 2, 1, 3})).pixels,
              (std::vector<uint32_t>{T, T, T, T, T, 0x102030, T, T, T, 0x405060, 0xA0B0C0, T}));
    // Without one, the screen's background colour (3) around the frame.
    const uint32_t F = 0xA0B0C0;
    EXPECT_EQ(Decode(FabriqueGif(4, 3, 3, -1, cadre, {0, 2, 1, 3})).pixels,
              (std::vector<uint32_t>{F, F, F, F, F, 0x102030, 0x708090, F, F, 0x405060, F, F}));
    // Interlaced rows go back to their place.
    std::vector<uint8_t> indices;
    for (int i = 0; i < 22; ++i)
        indices.push_back((uint8_t)(i * 3 % 4));
    const int plein[4] = {0, 0, 2, 11};
    const uint32_t couleurs[4] = {0x102030, 0x405060, 0x708090, 0xA0B0C0};
    std::vector<uint32_t> attendus;
    for (uint8_t i : indices)
        attendus.push_back(couleurs[i]);
    EXPECT_EQ(Decode(FabriqueGif(2, 11, 0, -1, plein, indices, true)).pixels, attendus);
}

TEST(Codecs, TaillesDemesureesRefusees) {
    // A PNG header declaring other sizes, its checksum made again.
    const std::string petit = FabriquePng({1, 1, PNG_COLOR_TYPE_GRAY, 8, false, {}, {}, std::string(1, 0)});
    const uint32_t tailles[][2] = {{100000, 100000}, {0, 5}, {8192, 8192}};
    for (const auto& t : tailles) {
        std::string f = petit;
        for (int i = 0; i < 4; ++i) {
            f[16 + i] = (char)(t[0] >> (24 - 8 * i));
            f[20 + i] = (char)(t[1] >> (24 - 8 * i));
        }
        const uint32_t crc = (uint32_t)crc32(0, (const Bytef*)f.data() + 12, 17);
        for (int i = 0; i < 4; ++i)
            f[29 + i] = (char)(crc >> (24 - 8 * i));
        EXPECT_EQ(Decode(f).bon, 0) << t[0] << " x " << t[1];
    }
    // A whole file of 8192 x 8192: each side is admitted, not their product.
    const std::string grand =
        FabriquePng({8192, 8192, PNG_COLOR_TYPE_GRAY, 1, false, {}, {}, std::string(8192 * 1024, 0)});
    ASSERT_LT(grand.size(), 100000u);
    EXPECT_EQ(Decode(grand).bon, 0);
    DossierTemporaire dossier;
    std::string gif = Ecrit(dossier, "image/gif", Degrade(4, 4), 4, 4);
    Pose16(gif, 6, 8192); // the screen
    Pose16(gif, 8, 8192);
    EXPECT_EQ(Decode(gif).bon, 0);
    std::string jpeg = Ecrit(dossier, "image/jpeg", Degrade(4, 4), 4, 4);
    const size_t sof = jpeg.find("\xFF\xC0");
    ASSERT_NE(sof, std::string::npos);
    jpeg.replace(sof + 5, 4, "\x20\x00\x20\x00", 4);
    EXPECT_EQ(Decode(jpeg).bon, 0);
}

TEST(Codecs, FichiersCoupesOuAbimes) {
    DossierTemporaire dossier;
    // A cut fails unless it takes only bytes a decoder never needs: the PNG
    // end chunk, the GIF trailer, the padding of the last BMP row.
    const struct {
        const char* mime;
        size_t facultatifs;
    } cas[] = {{"image/png", 12}, {"image/gif", 1}, {"image/bmp", 3}, {"image/tiff", 0}, {"image/jpeg", 0}};
    for (const auto& c : cas) {
        const std::string fichier = Ecrit(dossier, c.mime, Degrade(15, 17), 15, 17);
        for (size_t n = 0; n <= fichier.size(); ++n) {
            const Relu r = Decode(fichier.substr(0, n));
            ASSERT_EQ(r.bon, n < fichier.size() - c.facultatifs ? 0 : 1) << c.mime << " cut at " << n;
            ASSERT_EQ(r.pixels.size(), r.bon ? 15u * 17u : 0u);
        }
    }
    // A TIFF whose one strip (at byte 8; its place is told at the end) is
    // damaged, or lies past the end of the file.
    const std::string tiff = Ecrit(dossier, "image/tiff", Degrade(15, 17), 15, 17);
    const uint32_t ifd =
        (uint8_t)tiff[4] | (uint8_t)tiff[5] << 8 | (uint8_t)tiff[6] << 16 | (uint32_t)(uint8_t)tiff[7] << 24;
    size_t bande = 0;
    for (size_t e = ifd + 2; e < ifd + 2 + 12 * (uint8_t)tiff[ifd]; e += 12)
        if (tiff[e] == 0x11 && tiff[e + 1] == 1) bande = e + 8; // StripOffsets, tag 273
    ASSERT_TRUE(bande && tiff[bande] == 8);
    std::string abime = tiff;
    for (size_t k = 8; k < 300; ++k)
        abime[k] = (char)(k * 7);
    EXPECT_EQ(Decode(abime).bon, 0);
    abime = tiff;
    Pose32(abime, bande, (uint32_t)tiff.size() + 1000);
    EXPECT_EQ(Decode(abime).bon, 0);
    // Garbage after each signature, and no signature.
    std::mt19937 alea(99);
    const std::string signatures[] = {std::string("\x89PNG\r\n\x1a\n", 8),
                                      "\xFF\xD8\xFF",
                                      "GIF87a",
                                      "GIF89a",
                                      std::string("II*\0", 4),
                                      std::string("MM\0*", 4),
                                      "BM"};
    for (const std::string& s : signatures)
        for (int essai = 0; essai < 20; ++essai) {
            std::string f = s;
            for (int i = 0; i < 300; ++i)
                f += (char)alea();
            EXPECT_EQ(Decode(f).bon, 0) << s << " " << essai;
        }
    EXPECT_EQ(Decode("").bon, 0);
    EXPECT_EQ(Decode("P6\n1 1\n255\n\x01\x02\x03").bon, 0);
    Image image;
    int bits = 0;
    EXPECT_EQ(LitImageMemoire(nullptr, 10, image, bits, TRANSPARENT), 0);
}
