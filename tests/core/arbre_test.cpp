// The project tree built from the element table, and kept in step with it by
// adding and removing rows.
#include "core/arbre.h"

#include "core/elements.h"
#include "platform/texte.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>
#include <string>

namespace {

const char* const RacinesSeules = "Tilesets\n"
                                  "Maps\n"
                                  "Lists\n"
                                  "Palettes\n"
                                  "Bitmaps\n"
                                  "  8 bits\n"
                                  "  16 bits\n";

} // namespace

TEST(Arbre, RacinesEtLignesSousLeurRacine) {
    DossierTemporaire dt;
    ArbreMemoire arbre;
    ReconstruitArbre();
    EXPECT_EQ(arbre.Dessin(), RacinesSeules);

    AjouteElementBrut(NouvelElement(TYPE_MOSAIQUE, "t1", "t1.til.c"));
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "m1", "m1.map.c"));
    AjouteElementBrut(NouvelElement(TYPE_BITMAP8, "b8", "b8.c"));
    AjouteElementBrut(NouvelElement(TYPE_BITMAP16, "b16", "b16.c"));
    AjouteElementBrut(NouvelElement(TYPE_PALETTE, "p", "p.pal.c"));
    AjouteElementBrut(NouvelElement(TYPE_LISTE, "l", "l.c"));
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "niveaux\\m2", "m2.map.c"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_MOSAIQUE, "tb", "tb.til.c"), "bitmaps"));
    AjouteElementBrut(NouveauDossier("Haut"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "mr", "mr.map.c"), "racine"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_LISTE, "l0", "l0.c"), "listes"));
    ReconstruitArbre();

    EXPECT_EQ(arbre.Dessin(), "Tilesets\n"
                              "  t1\n"
                              "Maps\n"
                              "  m1\n"
                              "  m2\n"
                              "Lists\n"
                              "  l\n"
                              "  l0\n"
                              "Palettes\n"
                              "  p\n"
                              "Bitmaps\n"
                              "  8 bits\n"
                              "    b8\n"
                              "  16 bits\n"
                              "    b16\n"
                              "  tb\n"
                              "Haut\n"
                              "mr\n");
    EXPECT_EQ(arbre.Compte(), 7 + NbElements);
    const ArbreMemoire::Noeud* choisi = arbre.Trouve(arbre.selection);
    ASSERT_NE(choisi, nullptr);
    EXPECT_EQ(choisi->texte, "Tilesets");
    EXPECT_FALSE(ArbreEnReconstruction);
    for (int i = 0; i < NbElements; ++i) EXPECT_NE(arbre.Trouve(Elements[i].arbreItem), nullptr) << Elements[i].nom;

    // A second rebuild gives the same tree, not a second copy.
    ReconstruitArbre();
    EXPECT_EQ(arbre.Compte(), 7 + NbElements);
}

TEST(Arbre, DossiersDansNimporteQuelOrdre) {
    DossierTemporaire dt;
    ArbreMemoire arbre;
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "a", "a.map.c"), "F2"));
    AjouteElementBrut(NouveauDossier("F2", "F1"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "b", "b.map.c"), "F1"));
    AjouteElementBrut(NouveauDossier("F1"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "c", "c.map.c"), "F2"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "perdu", "p.map.c"), "Absent"));
    AjouteElementBrut(NouveauDossier("F3", "F1"));
    ReconstruitArbre();

    EXPECT_EQ(arbre.Dessin(), std::string(RacinesSeules) + "F1\n"
                                                           "  F2\n"
                                                           "    a\n"
                                                           "    c\n"
                                                           "  b\n"
                                                           "  F3\n");
    // Out of the tree, not out of the table.
    EXPECT_EQ(NbElements, 7);
    EXPECT_EQ(Elements[5].arbreItem, 0u);
    EXPECT_EQ(TrouveElement(TYPE_CARTE, "perdu"), 5);
}

TEST(Arbre, AjoutEtSuppressionSuiventLaTable) {
    DossierTemporaire dt;
    ArbreMemoire arbre;
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "m1", "m1.map.c"));
    AjouteElementBrut(NouveauDossier("F"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "f1", "f1.map.c"), "F"));
    ReconstruitArbre();

    AjouteElement(NouvelElement(TYPE_CARTE, "m2", "m2.map.c"));
    AjouteElement(DansDossier(NouvelElement(TYPE_PALETTE, "fp", "fp.pal.c"), "F"));
    int perdu = AjouteElement(DansDossier(NouvelElement(TYPE_PALETTE, "x", "x.pal.c"), "Absent"));
    EXPECT_EQ(Elements[perdu].arbreItem, 0u);
    EXPECT_EQ(arbre.Dessin(), "Tilesets\n"
                              "Maps\n"
                              "  m1\n"
                              "  m2\n"
                              "Lists\n"
                              "Palettes\n"
                              "Bitmaps\n"
                              "  8 bits\n"
                              "  16 bits\n"
                              "F\n"
                              "  f1\n"
                              "  fp\n");

    // The same element again moves to the end, in the table and among its siblings.
    AjouteElement(NouvelElement(TYPE_CARTE, "m1", "m1.map.c"));
    SupprimeElement(TrouveElement(TYPE_CARTE, "f1"));
    EXPECT_EQ(arbre.Dessin(), "Tilesets\n"
                              "Maps\n"
                              "  m2\n"
                              "  m1\n"
                              "Lists\n"
                              "Palettes\n"
                              "Bitmaps\n"
                              "  8 bits\n"
                              "  16 bits\n"
                              "F\n"
                              "  fp\n");

    // A deleted folder takes its nodes with it; the rebuild puts its rows back
    // under their roots.
    SupprimeDossier(TrouveElement(TYPE_AUCUN, "F"));
    EXPECT_EQ(arbre.Dessin(), "Tilesets\n"
                              "Maps\n"
                              "  m2\n"
                              "  m1\n"
                              "Lists\n"
                              "Palettes\n"
                              "Bitmaps\n"
                              "  8 bits\n"
                              "  16 bits\n");
    ReconstruitArbre();
    EXPECT_EQ(arbre.Dessin(), "Tilesets\n"
                              "Maps\n"
                              "  m2\n"
                              "  m1\n"
                              "Lists\n"
                              "Palettes\n"
                              "  fp\n"
                              "Bitmaps\n"
                              "  8 bits\n"
                              "  16 bits\n");
}

TEST(Arbre, DossierImbriqueSupprimeSansNoeudPerdu) {
    DossierTemporaire dt;
    ArbreMemoire arbre;
    // The sub-folder stands before its parent, so it is removed after the
    // parent's node has taken its own node away.
    AjouteElementBrut(DansDossier(NouveauDossier("S"), "F"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "s1", "s1.map.c"), "S"));
    AjouteElementBrut(NouveauDossier("F"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "f1", "f1.map.c"), "F"));
    ReconstruitArbre();
    ASSERT_NE(Elements[0].arbreItem, 0u);

    SupprimeDossier(TrouveElement(TYPE_AUCUN, "F"));
    EXPECT_EQ(arbre.suppressionsPerdues, 0);
    ASSERT_EQ(NbElements, 2);
    for (int i = 0; i < NbElements; ++i) {
        EXPECT_FALSE(EstRange(Elements[i])) << Elements[i].nom;
        EXPECT_EQ(Elements[i].arbreItem, 0u) << Elements[i].nom;
    }
    ReconstruitArbre();
    EXPECT_EQ(arbre.Dessin(), "Tilesets\n"
                              "Maps\n"
                              "  s1\n"
                              "  f1\n"
                              "Lists\n"
                              "Palettes\n"
                              "Bitmaps\n"
                              "  8 bits\n"
                              "  16 bits\n");
}

TEST(Arbre, RetireEtInsereGardentLaLigne) {
    DossierTemporaire dt;
    ArbreMemoire arbre;
    for (const char* nom : {"a", "b", "c"}) AjouteElementBrut(NouvelElement(TYPE_LISTE, nom, nom));
    ReconstruitArbre();

    RetireDeArbre(1);
    EXPECT_EQ(NbElements, 3);
    EXPECT_EQ(Elements[1].arbreItem, 0u);
    EXPECT_EQ(arbre.Compte(), 7 + 2);

    // Moved to another root, each goes in row order among its new siblings.
    auto deplace = [](int i) {
        RetireDeArbre(i);
        Elements[i] = DansDossier(Elements[i], "palettes");
        InsereDansArbre(i);
    };
    deplace(1);
    deplace(2);
    deplace(0);
    EXPECT_EQ(arbre.Dessin(), "Tilesets\n"
                              "Maps\n"
                              "Lists\n"
                              "Palettes\n"
                              "  a\n"
                              "  b\n"
                              "  c\n"
                              "Bitmaps\n"
                              "  8 bits\n"
                              "  16 bits\n");
}

TEST(Arbre, SansArbre) {
    DossierTemporaire dt;
    {
        ArbreMemoire arbre;
        AjouteElementBrut(NouvelElement(TYPE_CARTE, "m", "m.map.c"));
        ReconstruitArbre();
        ASSERT_NE(Elements[0].arbreItem, 0u);
    }
    ASSERT_EQ(ArbreProjet, nullptr);
    ReconstruitArbre();
    EXPECT_EQ(Elements[0].arbreItem, 0u);

    AjouteElementBrut(NouveauDossier("F"));
    int i = AjouteElement(DansDossier(NouvelElement(TYPE_CARTE, "n", "n.map.c"), "F"));
    ASSERT_EQ(i, 2);
    EXPECT_EQ(Elements[i].arbreItem, 0u);
    AjouteElement(NouvelElement(TYPE_CARTE, "m", "m.map.c"));
    RetireDeArbre(0);
    SupprimeDossier(0);
    EXPECT_EQ(NbElements, 2);
    EXPECT_STREQ(Elements[0].nom, "n");
    EXPECT_STREQ(Elements[1].nom, "m");
    for (int j = 0; j < NbElements; ++j) EXPECT_EQ(Elements[j].arbreItem, 0u);
}
