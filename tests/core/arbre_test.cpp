// The project tree built from the element table, and kept in step with it by
// adding and removing rows.
#include "core/arbre.h"

#include "core/elements.h"
#include "platform/texte.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

namespace {

// The seven roots, each followed by the lines given for it.
std::string Racines(const std::map<std::string, std::string>& sous = {}) {
    std::string s;
    for (const char* racine : {"Tilesets", "Maps", "Lists", "Palettes", "Bitmaps", "  8 bits", "  16 bits"}) {
        s += std::string(racine) + "\n";
        if (auto it = sous.find(racine); it != sous.end()) s += it->second;
    }
    return s;
}

ElementProjet Carte(const char* nom, const char* dossier = nullptr) {
    ElementProjet e = NouvelElement(TYPE_CARTE, nom, (std::string(nom) + ".map.c").c_str());
    return dossier ? DansDossier(e, dossier) : e;
}

} // namespace

TEST(Arbre, RacinesEtLignesSousLeurRacine) {
    DossierTemporaire dt;
    ArbreMemoire arbre;
    ReconstruitArbre();
    EXPECT_EQ(arbre.Dessin(), Racines());

    AjouteElementBrut(NouvelElement(TYPE_MOSAIQUE, "t1", "t1.til.c"));
    AjouteElementBrut(Carte("m1"));
    AjouteElementBrut(NouvelElement(TYPE_BITMAP8, "b8", "b8.c"));
    AjouteElementBrut(NouvelElement(TYPE_BITMAP16, "b16", "b16.c"));
    AjouteElementBrut(NouvelElement(TYPE_PALETTE, "p", "p.pal.c"));
    AjouteElementBrut(NouvelElement(TYPE_LISTE, "l", "l.c"));
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "niveaux\\m2", "m2.map.c"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_MOSAIQUE, "tb", "tb.til.c"), "bitmaps"));
    AjouteElementBrut(NouveauDossier("Haut"));
    AjouteElementBrut(Carte("mr", "racine"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_LISTE, "l0", "l0.c"), "listes"));
    ReconstruitArbre();

    EXPECT_EQ(arbre.Dessin(), Racines({{"Tilesets", "  t1\n"},
                                       {"Maps", "  m1\n  m2\n"},
                                       {"Lists", "  l\n  l0\n"},
                                       {"Palettes", "  p\n"},
                                       {"  8 bits", "    b8\n"},
                                       {"  16 bits", "    b16\n  tb\n"}}) +
                                  "Haut\nmr\n");
    EXPECT_EQ(arbre.Compte(), 7 + NbElements);
    const ArbreMemoire::Noeud* choisi = arbre.Trouve(arbre.selection);
    ASSERT_NE(choisi, nullptr);
    EXPECT_EQ(choisi->texte, "Tilesets");
    EXPECT_FALSE(ArbreEnReconstruction);
    for (int i = 0; i < NbElements; ++i)
        EXPECT_NE(arbre.Trouve(Elements[i].arbreItem), nullptr) << Elements[i].nom;

    // A second rebuild gives the same tree, not a second copy.
    ReconstruitArbre();
    EXPECT_EQ(arbre.Compte(), 7 + NbElements);
}

TEST(Arbre, DossiersDansNimporteQuelOrdre) {
    DossierTemporaire dt;
    ArbreMemoire arbre;
    AjouteElementBrut(Carte("a", "F2"));
    AjouteElementBrut(NouveauDossier("F2", "F1"));
    AjouteElementBrut(Carte("b", "F1"));
    AjouteElementBrut(NouveauDossier("F1"));
    AjouteElementBrut(Carte("c", "F2"));
    AjouteElementBrut(Carte("perdu", "Absent"));
    AjouteElementBrut(NouveauDossier("F3", "F1"));
    ReconstruitArbre();
    EXPECT_EQ(arbre.Dessin(), Racines() + "F1\n  F2\n    a\n    c\n  b\n  F3\n");
    // Out of the tree, not out of the table.
    EXPECT_EQ(NbElements, 7);
    EXPECT_EQ(Elements[5].arbreItem, 0u);
    EXPECT_EQ(TrouveElement(TYPE_CARTE, "perdu"), 5);
}

TEST(Arbre, AjoutEtSuppressionSuiventLaTable) {
    DossierTemporaire dt;
    ArbreMemoire arbre;
    AjouteElementBrut(Carte("m1"));
    AjouteElementBrut(NouveauDossier("F"));
    AjouteElementBrut(Carte("f1", "F"));
    ReconstruitArbre();

    AjouteElement(Carte("m2"));
    AjouteElement(DansDossier(NouvelElement(TYPE_PALETTE, "fp", "fp.pal.c"), "F"));
    int perdu = AjouteElement(DansDossier(NouvelElement(TYPE_PALETTE, "x", "x.pal.c"), "Absent"));
    EXPECT_EQ(Elements[perdu].arbreItem, 0u);
    EXPECT_EQ(arbre.Dessin(), Racines({{"Maps", "  m1\n  m2\n"}}) + "F\n  f1\n  fp\n");

    // The same element again moves to the end, in the table and among its siblings.
    AjouteElement(Carte("m1"));
    SupprimeElement(TrouveElement(TYPE_CARTE, "f1"));
    EXPECT_EQ(arbre.Dessin(), Racines({{"Maps", "  m2\n  m1\n"}}) + "F\n  fp\n");

    // A deleted folder takes its nodes with it; the rebuild puts its rows back
    // under their roots.
    SupprimeDossier(TrouveElement(TYPE_AUCUN, "F"));
    EXPECT_EQ(arbre.Dessin(), Racines({{"Maps", "  m2\n  m1\n"}}));
    ReconstruitArbre();
    EXPECT_EQ(arbre.Dessin(), Racines({{"Maps", "  m2\n  m1\n"}, {"Palettes", "  fp\n"}}));
}

TEST(Arbre, DossierImbriqueSupprimeSansNoeudPerdu) {
    DossierTemporaire dt;
    ArbreMemoire arbre;
    // The sub-folder stands before its parent, so it is removed after the
    // parent's node has taken its own node away.
    AjouteElementBrut(NouveauDossier("S", "F"));
    AjouteElementBrut(Carte("s1", "S"));
    AjouteElementBrut(NouveauDossier("F"));
    AjouteElementBrut(Carte("f1", "F"));
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
    EXPECT_EQ(arbre.Dessin(), Racines({{"Maps", "  s1\n  f1\n"}}));
}

TEST(Arbre, RetireEtInsereGardentLaLigne) {
    DossierTemporaire dt;
    ArbreMemoire arbre;
    for (const char* nom : {"a", "b", "c"})
        AjouteElementBrut(NouvelElement(TYPE_LISTE, nom, nom));
    ReconstruitArbre();

    RetireDeArbre(1);
    EXPECT_EQ(NbElements, 3);
    EXPECT_EQ(Elements[1].arbreItem, 0u);
    EXPECT_EQ(arbre.Compte(), 7 + 2);

    // Moved to another root, each goes in row order among its new siblings.
    for (int i : {1, 2, 0}) {
        RetireDeArbre(i);
        Elements[i] = DansDossier(Elements[i], "palettes");
        InsereDansArbre(i);
    }
    EXPECT_EQ(arbre.Dessin(), Racines({{"Palettes", "  a\n  b\n  c\n"}}));
}

TEST(Arbre, SansArbre) {
    DossierTemporaire dt;
    {
        ArbreMemoire arbre;
        AjouteElementBrut(Carte("m"));
        ReconstruitArbre();
        ASSERT_NE(Elements[0].arbreItem, 0u);
    }
    ASSERT_EQ(ArbreProjet, nullptr);
    ReconstruitArbre();
    EXPECT_EQ(Elements[0].arbreItem, 0u);

    AjouteElementBrut(NouveauDossier("F"));
    int i = AjouteElement(Carte("n", "F"));
    ASSERT_EQ(i, 2);
    EXPECT_EQ(Elements[i].arbreItem, 0u);
    AjouteElement(Carte("m"));
    RetireDeArbre(0);
    SupprimeDossier(0);
    EXPECT_EQ(NbElements, 2);
    EXPECT_STREQ(Elements[0].nom, "n");
    EXPECT_STREQ(Elements[1].nom, "m");
    for (int j = 0; j < NbElements; ++j)
        EXPECT_EQ(Elements[j].arbreItem, 0u);
}
