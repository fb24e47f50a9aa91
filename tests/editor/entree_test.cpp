// The editor's input without a window: sequences of events at client
// pixels, with the clock and the modifier keys set by the test, checked
// through the model.
#include "tests/editor/editeur.h"

#include "editor/entree.h"

#include <filesystem>

namespace {

int ModifsEssai = 0;

struct Entree : EditeurEssai {
    int a = -1;
    void SetUp() override {
        EditeurEssai::SetUp();
        PlateformeCourante.modificateurs = [] { return ModifsEssai; };
        ModifsEssai = 0;
        a = Carte("a", 80, 60, 3); // 640 x 480 pixels of 8 x 8 cells
        ASSERT_EQ(OuvreEditeur(a), 1);
        DispositionEditeur = Disposition{};
        DisposeEditeur(512, 320); // the view: 256 x 256 at (10, 10)
    }
    static uint32_t Cellule(int x, int y) { return Plans[PlanActif].cellules[(size_t)y * Plans[PlanActif].sizex + x]; }
    static void Tick(int ms) {
        HorlogeEssai += ms;
        TickEditeur();
    }
};

TEST_F(Entree, PeindreEnGlissantEtDefilerAuxBords) {
    EXPECT_EQ(std::pair(Vue.largeurVue, Vue.hauteurVue), std::pair(256, 256));
    ChoisitValeur(7);
    // Press on cell (1, 1), drag to cell (3, 2), release: six cells.
    Tick(0);
    SourisPresse(BOUTON_GAUCHE, 10 + 9, 10 + 9);
    SourisBouge(10 + 30, 10 + 20);
    SourisRelache(BOUTON_GAUCHE, 10 + 30, 10 + 20);
    for (int y = 1; y <= 2; ++y)
        for (int x = 1; x <= 3; ++x) EXPECT_EQ(Cellule(x, y), 7u) << x << "," << y;
    EXPECT_FALSE(Vue.peintureActive);
    // A drag past the right edge scrolls a cell each 50 ms, five times as fast with Shift.
    SourisPresse(BOUTON_GAUCHE, 10 + 9, 10 + 9);
    SourisBouge(400, 100);
    EXPECT_EQ(Vue.curseurX, 255 - 256 % 8);
    Tick(120);
    EXPECT_EQ(DecalageX, 16);
    ModifsEssai = MODIF_SHIFT;
    Tick(30);
    EXPECT_EQ(DecalageX, 16 + 5 * 8); // the 20 ms left over and 30 more, in steps of 10
    ModifsEssai = 0;
    // Plain moves past the edge without a drag do nothing.
    SourisRelache(BOUTON_GAUCHE, 400, 100);
    const int apres = DecalageX;
    SourisBouge(400, 100);
    Tick(500);
    EXPECT_EQ(DecalageX, apres);
}

TEST_F(Entree, CopierADroitePanoramiqueEtMolette) {
    // A right drag over one cell with no links picks its value.
    const uint32_t v = Cellule(2, 2);
    SourisPresse(BOUTON_DROIT, 10 + 17, 10 + 17);
    SourisRelache(BOUTON_DROIT, 10 + 17, 10 + 17);
    EXPECT_EQ(ValeurCourante, v);
    EXPECT_FALSE(MotifTenu());
    // Over 2 x 2 cells it holds a block, which a left press during a right drag cancels.
    SourisPresse(BOUTON_DROIT, 10, 10);
    SourisBouge(10 + 15, 10 + 15);
    SourisRelache(BOUTON_DROIT, 10 + 15, 10 + 15);
    EXPECT_EQ(std::pair(Motif.largeurMotif, Motif.hauteurMotif), std::pair(2, 2));
    SourisPresse(BOUTON_DROIT, 10, 10);
    SourisPresse(BOUTON_GAUCHE, 10, 10);
    EXPECT_FALSE(Vue.copieActive);
    // The wheel drops the block first, then counts the value down.
    Molette(120);
    EXPECT_FALSE(MotifTenu());
    ChoisitValeur(5);
    Molette(120);
    EXPECT_EQ(ValeurCourante, 4u);
    Molette(-120);
    Molette(-120);
    EXPECT_EQ(ValeurCourante, 6u);
    EXPECT_STREQ(LignesNotification.texte[LignesNotification.nombre - 1], "Pattern: 6 (0006)");
    // Ctrl and the wheel zoom by halves between 1 and 4; the view follows.
    ModifsEssai = MODIF_CTRL;
    Molette(120);
    EXPECT_EQ(ReglagesEdit.zoom, 1.5);
    EXPECT_EQ(Vue.largeurVueZ, 170);
    for (int i = 0; i < 10; ++i) Molette(120);
    EXPECT_EQ(ReglagesEdit.zoom, 4.0);
    for (int i = 0; i < 10; ++i) Molette(-120);
    EXPECT_EQ(ReglagesEdit.zoom, 1.0);
    ModifsEssai = 0;
    // The middle button pans: the document follows the pointer by grid steps.
    DecalageX = DecalageY = 80;
    SourisPresse(BOUTON_MILIEU, 200, 200);
    SourisBouge(200, 200);
    SourisBouge(168, 184);
    EXPECT_EQ(std::pair(DecalageX, DecalageY), std::pair(80 + 32, 80 + 16));
    SourisRelache(BOUTON_MILIEU, 168, 184);
    SourisBouge(100, 100);
    EXPECT_EQ(DecalageX, 112);
}

TEST_F(Entree, SelecteurTouchesEtBornes) {
    // The picker: 16 tiles a row at (largeurVue + 54, 10); tile 3 of the first row.
    Tick(0);
    SourisBouge(256 + 54 + 3 * 8 + 2, 10 + 2);
    EXPECT_TRUE(Vue.sourisDansSelecteur);
    SourisRelache(BOUTON_GAUCHE, 256 + 54 + 3 * 8 + 2, 10 + 2);
    EXPECT_EQ(ValeurCourante, Plans[0].nbTuiles > 3 ? 3u : ValeurCourante);
    // Arrows scroll by 32 pixels; the bottom of a bar is the limit, not 32767.
    CommandeClavier(ED_DROITE);
    EXPECT_EQ(DecalageX, 32);
    DefileVue(false, 5, 0);
    EXPECT_EQ(DecalageY, (61 * 8 - 256 - 1) / 8 * 8);
    DefileVue(true, 6, 203);
    EXPECT_EQ(DecalageX, 200);
    // The grid step doubles up to 64 and halves, with its notification.
    CommandeClavier(ED_GRILLE_PLUS);
    EXPECT_EQ(Plans[0].grilleX, 16);
    EXPECT_STREQ(LignesNotification.texte[LignesNotification.nombre - 1], "Grid step: 16x16");
    CommandeClavier(ED_GRILLE_MOINS);
    CommandeClavier(ED_GRILLE_MOINS);
    Tick(10); // a map's grid never goes below its cells
    EXPECT_EQ(Plans[0].grilleX, 8);
    // Ctrl+Z and Ctrl+Y undo and redo a paint; Ctrl+H toggles hex mode; Ctrl+S saves.
    const uint32_t avant = Cellule(0, 0);
    ChoisitValeur(avant + 1);
    DecalageX = DecalageY = 0;
    SourisPresse(BOUTON_GAUCHE, 12, 12);
    SourisRelache(BOUTON_GAUCHE, 12, 12);
    EXPECT_EQ(Cellule(0, 0), avant + 1);
    CommandeClavier(ED_ANNULER);
    EXPECT_EQ(Cellule(0, 0), avant);
    CommandeClavier(ED_RETABLIR);
    EXPECT_EQ(Cellule(0, 0), avant + 1);
    CommandeClavier(ED_HEXA);
    EXPECT_EQ(Plans[0].tilex, 16);
    CommandeClavier(ED_HEXA);
    EXPECT_EQ(Plans[0].tilex, 8);
    EXPECT_TRUE(CommandeClavier(ED_SAUVER));
    EXPECT_EQ(std::string(TitreEditeur), "a - Map editor");
    EXPECT_TRUE(std::filesystem::exists("a.map.spt"));
    EXPECT_FALSE(CommandeClavier(ED_OPTIONS)); // a dialog: the window's
    // The cursor stays on the map and on whole cells of the view.
    Vue.curseurX = -5;
    Vue.curseurY = 300;
    BorneCurseur();
    EXPECT_EQ(std::pair(Vue.curseurX, Vue.curseurY), std::pair(0, 255 - 256 % 8));
}

TEST_F(Entree, ShiftSurUnePlanListeEtPartage) {
    Tick(0);
    EXPECT_TRUE(Vue.magnetisme);
    Plans[0].typePlan = TYPE_LISTE; // only the flag matters to the tick
    ModifsEssai = MODIF_SHIFT;
    Tick(10);
    EXPECT_FALSE(Vue.magnetisme);
    Plans[0].typePlan = TYPE_CARTE;
    ModifsEssai = 0;
    // The splitter dragged 40 pixels left widens the picker and narrows the view.
    SaisitPartage(300);
    SourisBouge(260, 100);
    Tick(10);
    EXPECT_EQ(DispositionEditeur.panneauSelecteur, 168);
    EXPECT_EQ(Vue.largeurVue, 216);
    SourisRelache(BOUTON_GAUCHE, 260, 100);
    SourisBouge(100, 100);
    Tick(10);
    EXPECT_EQ(DispositionEditeur.panneauSelecteur, 168);
}

} // namespace
