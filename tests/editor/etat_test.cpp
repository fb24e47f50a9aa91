// The editor's state script: written, run again at the next opening, and
// written again to the same bytes.
#include "tests/editor/editeur.h"

#include "editor/etat.h"

namespace {

using Etat = EditeurEssai;

TEST_F(Etat, DocumentParDefaut) {
    const int a = Carte("a", 4, 2, 3);
    ASSERT_EQ(OuvreEditeur(a), 1);
    ASSERT_EQ(EcritEtatEditeur(), 1);
    EXPECT_EQ(LitFichier("a.map.spt"), "    Maps.Add \"a\", 1\n    ModeHexa.ActiveMap = true\n"
                                       "    Editor.Move 640, 480, 0, 0, false\n    End\n\n\n\n");
    // Without system.sauverparamsmaps nothing is written.
    ReglagesSys.sauverParamsMaps = 0;
    EcritFichier("a.map.spt", "x");
    EXPECT_EQ(EcritEtatEditeur(), 1);
    EXPECT_EQ(LitFichier("a.map.spt"), "x");
}

TEST_F(Etat, EcritRelitEcritLesMemesOctets) {
    Carte("b", 4, 2, 5);
    Carte("c", 6, 2, 7);
    const int a = Carte("a", 8, 4, 3);
    ASSERT_EQ(OuvreEditeur(a), 1);
    Execute("maps.add \"b\"\nmaps.add \"c\"\nmaps[2].scrollrate 0.5, 2\nmaps[3].grid 16, 4\n"
            "maps[1].addcondition 5, 9, 20 =\nmaps[1].addcondition 0x10, 0x1f, 0\nmaps[2].visible = 0\n"
            "fonds.link 1, 3\nmaps[3].emulgba 1\nmodehexa.enabled = 1\nmodehexa.fillzeros = 1\n"
            "maps.transparency = 1\nmaps.alphaforeground = 200\neditor.grid = 1\neditor.gridcolor = rgb(1,2,3)\n"
            "editor.zoom 2.5\neditor.move 800, 600, 10, 20, 1\n");
    ASSERT_EQ(NbPlans, 3);
    ASSERT_EQ(EcritEtatEditeur(), 1);
    const std::string premier = LitFichier("a.map.spt");
    EXPECT_EQ(premier, "    Maps.Add \"a\", 1\n"
                       "    Maps[1].AddCondition 0x5,0x9 0x14=\n"
                       "    Maps[1].AddCondition 0x10,0x1f 0x0\n"
                       "    Maps.Add \"b\", 2\n"
                       "    Maps[2].Visible = false\n"
                       "    Maps[2].ScrollRate 0.500000, 2.000000\n"
                       "    Maps.Add \"c\", 3\n"
                       "    Maps[3].Grid 16, 4\n"
                       "    Maps[3].EmulGBA = true\n"
                       "    Maps.Transparency = true\n"
                       "    ModeHexa.Enabled = true\n"
                       "    ModeHexa.ActiveMap = true\n"
                       "    ModeHexa.FillZeros = true\n"
                       "    Editor.Grid = true\n"
                       "    Editor.GridColor = RGB(1,2,3)\n"
                       "    Maps.AlphaForeground = 200\n"
                       "    Editor.Zoom = 2.50\n"
                       "    Editor.Move 800, 600, 10, 20, true\n"
                       "    Fonds.Link 1, 3\n"
                       "    End\n\n\n\n");
    // The close writes nothing new when nothing was saved; the next opening
    // runs the script and gives the same document.
    EXPECT_EQ(FermeEditeur(), 1);
    PositionEditeur = PlaceEditeur{};
    ReglagesPlans.transparence = 0;
    ASSERT_EQ(OuvreEditeur(a), 1);
    EXPECT_EQ(NbPlans, 3);
    EXPECT_EQ(Plans[1].vitesseX, 0.5);
    EXPECT_EQ(ReglagesPlans.visible[1], 0);
    ASSERT_EQ(EcritEtatEditeur(), 1);
    EXPECT_EQ(LitFichier("a.map.spt"), premier);
    EXPECT_TRUE(journal.messages.empty()) << journal.messages.front();
}

TEST_F(Etat, LigneFausseDonneSonMessageEtLeResteSApplique) {
    Carte("b", 4, 2, 5);
    const int a = Carte("a", 8, 4, 3);
    EcritFichier("a.map.spt", "    Maps.Add \"b\", 2\n    Maps[2].Bidule 3\n    Maps[2].Grid 32, 0\n"
                              "    Maps.Add \"disparu\", 3\n    End\n\n    Maps[2].Grid 64, 64\n");
    ASSERT_EQ(OuvreEditeur(a), 1);
    EXPECT_EQ(NbPlans, 2);
    EXPECT_EQ(std::pair(Plans[1].grilleX, Plans[1].grilleY), std::pair(32, 32)); // and nothing behind End
    ASSERT_EQ(journal.messages.size(), 1u);
    EXPECT_EQ(journal.messages[0].rfind("[Macro execution error]", 0), 0u) << journal.messages[0];
    // A saved plane on the way to closing writes the script, as does automatic saving.
    ChoisitValeur(1);
    Vue.peintureActive = true;
    PeintSelection(0, 0, 0, 0, false);
    Execute("maps[2].grid 8, 16\n");
    journal.reponses = {REPONSE_OUI};
    EXPECT_EQ(FermeEditeur(), 1);
    EXPECT_NE(LitFichier("a.map.spt").find("    Maps[2].Grid 8, 16\n"), std::string::npos);
    ASSERT_EQ(OuvreEditeur(a), 1);
    Execute("maps[2].grid 32, 32\n");
    ReglagesSys.sauverParamsMapsAuto = 1;
    EXPECT_EQ(FermeEditeur(), 1);
    EXPECT_NE(LitFichier("a.map.spt").find("    Maps[2].Grid 32, 32\n"), std::string::npos);
}

} // namespace
