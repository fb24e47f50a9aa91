// Pictures in and out of a conversion: which reader a path takes, where the
// loaded picture goes, what a failure leaves, and the type an export writes.
#include "convert/images.h"

#include "core/reglages.h"
#include "platform/fichiers.h"
#include "platform/imagefichier.h"
#include "render/apercus.h"
#include "render/surfaces.h"
#include "tests/support/enregistreur.h"
#include "tests/support/images.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

namespace {

struct Images : testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages journal;
    const std::vector<uint32_t> couleurs = Degrade(7, 5);
    std::string png, bmp8; // the picture as a PNG and as an 8-bit BMP

    void SetUp() override {
        InitialiseImages();
        ASSERT_TRUE(ImageLibDisponible);
        ASSERT_EQ(CreeSurfaceApercu(), 1);
        RemplitApercu();
        ImageLocale image(7, 5, couleurs);
        ASSERT_EQ(EcritImageType("modele.png", "image/png", image.image, 7, 5), 1);
        png = LitFichier("modele.png");
        std::vector<uint32_t> indices;
        for (uint32_t i = 0; i < couleurs.size(); ++i)
            indices.push_back(i);
        bmp8 = FabriqueBmp({40, 7, 5, 8, 0, 0, {}, couleurs, LignesBmp(8, 7, 5, true, indices)});
    }
    void TearDown() override { EXPECT_TRUE(journal.messages.empty()); }

    // A small surface full of a pattern, its padding included.
    static void RemplitApercu() {
        ASSERT_EQ(DimensionneApercu(9, 4, true), 1);
        for (int i = 0; i < SurfaceApercu.pas * SurfaceApercu.hauteur; ++i)
            SurfaceApercu.pixels[i] = (uint8_t)(i * 31 + 7);
    }
    static std::string Empreinte() {
        return std::to_string(LargeurApercu) + "x" + std::to_string(HauteurApercu) + ":" +
               std::string((const char*)SurfaceApercu.pixels,
                           (size_t)SurfaceApercu.pas * SurfaceApercu.hauteur);
    }
    // The logical picture of the surface.
    static std::vector<uint32_t> Apercu() {
        const std::vector<uint32_t> tout = PixelsDe(SurfaceApercu);
        std::vector<uint32_t> v;
        for (int y = 0; y < HauteurApercu; ++y)
            for (int x = 0; x < LargeurApercu; ++x)
                v.push_back(tout[(size_t)y * SurfaceApercu.largeur + x]);
        return v;
    }
    static int Charge(const std::string& chemin, bool garder = false) {
        int largeur = -1, hauteur = -1;
        const int bon = ChargeImage(chemin.c_str(), largeur, hauteur, garder);
        EXPECT_TRUE(!bon || (largeur == 7 && hauteur == 5)) << chemin;
        return bon;
    }
};

} // namespace

TEST_F(Images, LeCheminChoisitLeLecteur) {
    const struct {
        const char* nom;
        bool png; // else the BMP
        bool bibliotheque;
        int attendu;
    } cas[] = {
        {"a.png", true, true, 1},  {"a.PNG", true, true, 1},     {"a.bmp.png", true, true, 1},
        {"a.Bmp", false, true, 1}, {"a.png", false, true, 1},    // the content tells the type
        {"a.BMP", true, true, 0},  {"a.png.bmp", true, true, 0}, // capitals too go the BMP way
        {"a.png", true, false, 0}, {"a.png", false, false, 1},   {"a.BMP", false, false, 1},
    };
    for (const auto& c : cas) {
        RemplitApercu();
        EcritFichier(c.nom, c.png ? png : bmp8);
        ImageLibDisponible = c.bibliotheque;
        const std::string avant = Empreinte();
        ASSERT_EQ(Charge(c.nom), c.attendu) << c.nom << " " << c.png << c.bibliotheque;
        if (c.attendu) {
            EXPECT_EQ(Apercu(), couleurs) << c.nom;
        } else {
            EXPECT_EQ(Empreinte(), avant) << c.nom;
        }
        std::filesystem::remove(c.nom);
    }
}

TEST_F(Images, GarderSelonLeMode) {
    // Those that go to the surface first, then those kept one after another.
    const struct {
        bool garder;
        int mode, quinzeBits;
        bool png;
        int bitsGardes; // 0: the surface
    } cas[] = {
        {true, 0, 0, false, 0}, {true, 1, 1, false, 0}, {true, 2, 1, true, 0},  {false, 2, 0, false, 0},
        {true, 2, 0, false, 8}, {true, 1, 0, true, 24}, {true, 2, 0, true, 24},
    };
    EcritFichier("a.bmp", bmp8);
    EcritFichier("a.png", png);
    for (const auto& c : cas) {
        const std::string trace = std::to_string(c.garder) + " mode " + std::to_string(c.mode) + " 15 bits " +
                                  std::to_string(c.quinzeBits) + (c.png ? " png" : " bmp");
        RemplitApercu();
        ReglagesConv.mode = (MethodeCouleurs)c.mode;
        ReglagesConv.quinzeBits = c.quinzeBits;
        const std::string avant = Empreinte();
        ASSERT_EQ(Charge(c.png ? "a.png" : "a.bmp", c.garder), 1) << trace;
        EXPECT_EQ(ImageGardee.pixels != nullptr, c.bitsGardes != 0) << trace;
        if (c.bitsGardes) {
            EXPECT_EQ(Empreinte(), avant) << trace;
            EXPECT_EQ(BitsImageGardee, c.bitsGardes) << trace;
            EXPECT_EQ(PixelsDe(ImageGardee), couleurs) << trace;
        } else {
            EXPECT_EQ(Apercu(), couleurs) << trace;
        }
    }
    LibereImageGardee();
    EXPECT_EQ(ImageGardee.pixels, nullptr);
    EXPECT_EQ(BitsImageGardee, 0);
}

TEST_F(Images, TransparentDevientLaCouleurDeMasque) {
    const std::string rgba("\x10\x20\x30\x00\x40\x50\x60\xFF", 8);
    EcritFichier("t.png", FabriquePng({2, 1, PNG_COLOR_TYPE_RGBA, 8, false, {}, {}, rgba}));
    int largeur = 0, hauteur = 0;
    ASSERT_EQ(ChargeImage("t.png", largeur, hauteur, false), 1);
    EXPECT_EQ(Apercu(), (std::vector<uint32_t>{0xFF00FE, 0x405060})); // the mask colour by default
    ReglagesConv.masque[0] = 10;
    ReglagesConv.masque[1] = 20;
    ReglagesConv.masque[2] = 30;
    ASSERT_EQ(ChargeImage("t.png", largeur, hauteur, false), 1);
    EXPECT_EQ(Apercu(), (std::vector<uint32_t>{0x0A141E, 0x405060}));
}

TEST_F(Images, EchecLaisseLApercu) {
    EcritFichier("vide.png", "");
    EcritFichier("coupe.png", png.substr(0, png.size() / 2));
    EcritFichier("coupe.bmp", bmp8.substr(0, bmp8.size() - 8));
    EcritFichier("texte.jpg", "not a picture");
    const std::string avant = Empreinte();
    for (const char* nom : {"absent.png", "absent.bmp", "vide.png", "coupe.png", "coupe.bmp", "texte.jpg"})
        EXPECT_EQ(Charge(nom), 0) << nom;
    int largeur = 0, hauteur = 0;
    EXPECT_EQ(ChargeImage(nullptr, largeur, hauteur, false), 0);
    EXPECT_EQ(Empreinte(), avant);
}

TEST_F(Images, ExportEcritLeTypeDeLExtension) {
    const struct {
        const char* nom;
        const char* fichier; // what is written
        std::string debut;
        int ecartAdmis;
    } cas[] = {
        {"x.png", "x.png", "\x89PNG", 0},
        {"x.jpg", "x.jpg", "\xFF\xD8\xFF", 16},
        {"x.jpeg", "x.jpeg", "\xFF\xD8\xFF", 16},
        {"x.bmp", "x.bmp", "BM", 0},
        {"x.gif", "x.gif", "GIF8", 0},
        {"x.tiff", "x.tiff", std::string("II*\0", 4), 0},
        // Any other extension, capitals included, gets ".bmp" after it.
        {"x.tif", "x.tif.bmp", "BM", 0},
        {"x.PNG", "x.PNG.bmp", "BM", 0},
        {"x.", "x..bmp", "BM", 0},
        {"x", "x.bmp", "BM", 0},
        {"d.png/x", "d.png/x.bmp", "BM", 0},
    };
    ASSERT_TRUE(std::filesystem::create_directory("d.png"));
    for (const auto& c : cas) {
        // The 7 x 5 picture on a surface 8 pixels wide: the column beyond is not written.
        ASSERT_EQ(DimensionneApercu(7, 5, true), 1);
        ASSERT_EQ(SurfaceApercu.largeur, 8);
        for (int i = 0; i < 40; ++i) {
            uint8_t* p = SurfaceApercu.pixels +
                         (size_t)(SurfaceApercu.hauteur - 1 - i / 8) * SurfaceApercu.pas + 3 * (i % 8);
            const uint32_t couleur = i % 8 < 7 ? couleurs[i / 8 * 7 + i % 8] : 0x00FF00;
            p[0] = (uint8_t)couleur;
            p[1] = (uint8_t)(couleur >> 8);
            p[2] = (uint8_t)(couleur >> 16);
        }
        ASSERT_EQ(ExporteImage(c.nom), 1) << c.nom;
        EXPECT_EQ(LitFichier(c.fichier).substr(0, c.debut.size()), c.debut) << c.nom;
        EXPECT_EQ(FichierExiste(c.nom), strcmp(c.nom, c.fichier) == 0) << c.nom;
        RemplitApercu();
        ASSERT_EQ(Charge(c.fichier), 1) << c.nom;
        EXPECT_LE(EcartMax(Apercu(), couleurs), c.ecartAdmis) << c.nom;
        std::filesystem::remove(c.fichier);
    }
}

TEST_F(Images, SansBibliothequeSeulBmpSExporte) {
    ImageLibDisponible = false;
    ASSERT_EQ(DimensionneApercu(7, 5, true), 1);
    EXPECT_EQ(ExporteImage("y.png"), 0);
    EXPECT_EQ(ExporteImage("y.jpg"), 0);
    EXPECT_FALSE(FichierExiste("y.png") || FichierExiste("y.jpg"));
    ASSERT_EQ(ExporteImage("y.tif"), 1);
    EXPECT_EQ(LitFichier("y.tif.bmp").substr(0, 2), "BM");
    ASSERT_EQ(ExporteImage("y.bmp"), 1);
    EXPECT_EQ(LitFichier("y.bmp").size(), 54u + 24 * 5); // 7 pixels, rows of 24 bytes
    EXPECT_EQ(ExporteImage(nullptr), 0);
}
