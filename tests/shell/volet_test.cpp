// The preview pane's logic without a window: scroll requests and the hover.
#include "core/reglages.h"
#include "editor/edition.h"
#include "render/apercus.h"
#include "render/surfaces.h"
#include "shell/volet.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

TEST(Volet, DefilementBorneALaTaille) {
    const struct {
        int position;
        RequeteDefilement requete;
        int valeur, taille, attendu;
    } cas[] = {
        {0, LIGNE_PLUS, 0, 300, 32},   {32, PAGE_PLUS, 0, 300, 44},    {44, LIGNE_MOINS, 0, 300, 12},
        {12, PAGE_MOINS, 0, 300, 0},   {0, VERS_FIN, 0, 1000, 744},    {500, VERS_DEBUT, 0, 1000, 0},
        {0, POSITION, 600, 1000, 600}, {0, POSITION, 900, 1000, 744}, {0, LIGNE_PLUS, 0, 200, 0},
    };
    for (const auto& c : cas) EXPECT_EQ(Defile(c.position, c.requete, c.valeur, c.taille), c.attendu) << c.position << " " << c.requete;
    EXPECT_EQ(DebutTitre(100), 5);
    EXPECT_EQ(DebutTitre(371), 4); // right-aligned at 375
    EXPECT_EQ(DebutTitre(500), -125);
}

TEST(Volet, SurvolDesPalettesTuilesEtCartes) {
    ASSERT_EQ(CreeSurfaceApercu(), 1);
    ChoisitCadre(0, 0, LARGEUR_SURFACE_INITIALE, HAUTEUR_SURFACE_INITIALE);
    // A palette of 20 colours: two rows, entry 17 at (1, 1).
    uint8_t palette[768] = {};
    for (int i = 0; i < 60; ++i) palette[i] = (uint8_t)(8 * i + 8);
    ApercuPalette(palette, 20);
    TypeApercu = APERCU_PALETTE;
    Survol s;
    ASSERT_TRUE(SurvoleApercu(VOLET_X + 16 + 3, VOLET_Y + 16 + 5, s));
    EXPECT_STREQ(s.texte1, "Idx: 11 hex");
    EXPECT_STREQ(s.texte2, "022,021,020"); // entry 17 holds blue 160, green 168, red 176: red first, / 8
    EXPECT_EQ(std::pair(s.x1, s.y1), std::pair(460, 160));
    EXPECT_FALSE(SurvoleApercu(VOLET_X + 16 * 5, VOLET_Y + 16, s)); // entry 21 is blank
    EXPECT_FALSE(SurvoleApercu(VOLET_X + 3, VOLET_Y + 16 * 3, s));  // no third row
    EXPECT_FALSE(SurvoleApercu(VOLET_X - 1, VOLET_Y, s));           // off the pane
    // A tileset of 16 x 8 blocks in rows of 16 blocks, scrolled.
    TypeApercu = APERCU_MOSAIQUE;
    tilex = 16;
    tiley = 8;
    sizex = 256;
    sizey = 64;
    DecalageX = 0;
    DecalageY = 8;
    ASSERT_TRUE(SurvoleApercu(VOLET_X + 40, VOLET_Y + 3, s));
    EXPECT_STREQ(s.texte1, "018  "); // row 1, column 2
    EXPECT_TRUE(s.loupe);
    EXPECT_EQ(std::pair(s.blocX, s.blocY), std::pair(32, 8));
    EXPECT_FALSE(SurvoleApercu(VOLET_X + 40, VOLET_Y + 60, s)); // row 8 is past 64 pixels
    TypeApercu = APERCU_CARTE;
    ASSERT_TRUE(SurvoleApercu(VOLET_X + 40, VOLET_Y + 3, s));
    EXPECT_STREQ(s.texte1, "02,01  ");
    EXPECT_EQ(s.x1, 486);
    TypeApercu = APERCU_BITMAP16; // bitmaps have no hover
    EXPECT_FALSE(SurvoleApercu(VOLET_X + 40, VOLET_Y + 3, s));
    DecalageY = 0;
}

} // namespace
