// The element table: adding with duplicate handling and default folders, the
// bound of 1000 rows, removing rows and folders, look-ups.
#include "core/elements.h"

#include "platform/texte.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>
#include <string>

namespace {

// The names of the rows, in table order, as "nom nom ...".
std::string Noms() {
    std::string s;
    for (int i = 0; i < NbElements; ++i) s += (i ? " " : "") + std::string(Elements[i].nom);
    return s;
}

} // namespace

TEST(Elements, MemeElementRevientEnFinEtGardeSesChamps) {
    DossierTemporaire dt;
    ElementProjet ancien = DansDossier(NouvelElement(TYPE_CARTE, "niveau", "niveau.map.c", "niveau.bmp"), "cartes");
    ASSERT_EQ(AjouteElement(ancien), 0);
    AjouteElement(NouvelElement(TYPE_MOSAIQUE, "decor", "decor.til.c"));

    // Same name, type and file, no folder of its own: the old row moves to the end.
    EXPECT_EQ(AjouteElement(NouvelElement(TYPE_CARTE, "niveau", "niveau.map.c", "autre.bmp")), 1);
    ASSERT_EQ(NbElements, 2);
    EXPECT_EQ(Noms(), "decor niveau");
    EXPECT_STREQ(Elements[1].fichierBase, "niveau.bmp");
    EXPECT_STREQ(Elements[1].dossier, "cartes");
    EXPECT_EQ(Elements[1].type, TYPE_CARTE | ELEMENT_RANGE);

    // Named in its own folder, it is the same element only in the same folder.
    AjouteElement(DansDossier(NouvelElement(TYPE_CARTE, "niveau", "niveau.map.c"), "cartes"));
    AjouteElement(NouvelElement(TYPE_MOSAIQUE, "decor", "decor.til.c"));
    EXPECT_EQ(Noms(), "niveau decor");
    AjouteElement(DansDossier(NouvelElement(TYPE_CARTE, "niveau", "niveau.map.c"), "palettes"));
    ASSERT_EQ(NbElements, 3);
    EXPECT_STREQ(Elements[0].dossier, "cartes");
    EXPECT_STREQ(Elements[2].dossier, "palettes");
}

TEST(Elements, NomEnDoubleNumerote) {
    DossierTemporaire dt;
    AjouteElement(NouvelElement(TYPE_CARTE, "carte", "a.map.c"));
    AjouteElement(NouvelElement(TYPE_CARTE, "carte", "b.map.c"));
    AjouteElement(NouvelElement(TYPE_CARTE, "carte", "c.map.c"));
    // Another type may share the name.
    AjouteElement(NouvelElement(TYPE_PALETTE, "carte", "a.pal.c"));
    EXPECT_EQ(Noms(), "carte carte2 carte3 carte");
    EXPECT_STREQ(Elements[2].fichier, "c.map.c");

    // A number already at the end goes on from there.
    AjouteElement(NouvelElement(TYPE_CARTE, "map12", "x.map.c"));
    AjouteElement(NouvelElement(TYPE_CARTE, "map12", "y.map.c"));
    EXPECT_STREQ(Elements[NbElements - 1].nom, "map13");

    // Thirty characters that clash: the number takes the last place.
    const char* long30 = "abcdefghijklmnopqrstuvwxyzABCD";
    AjouteElement(NouvelElement(TYPE_LISTE, long30, "l1.c"));
    AjouteElement(NouvelElement(TYPE_LISTE, long30, "l2.c"));
    EXPECT_STREQ(Elements[NbElements - 1].nom, "abcdefghijklmnopqrstuvwxyzABC2");

    // The renamed file is already there under its number: it is the same
    // element, and moves to the end instead of becoming "carte4".
    int avant = NbElements;
    AjouteElement(NouvelElement(TYPE_CARTE, "carte", "b.map.c"));
    EXPECT_EQ(NbElements, avant);
    EXPECT_STREQ(Elements[NbElements - 1].nom, "carte2");
    EXPECT_EQ(TrouveElement(TYPE_CARTE, "carte4"), -1);
}

TEST(Elements, NomUniqueSansAjouter) {
    DossierTemporaire dt;
    AjouteElementBrut(NouvelElement(TYPE_MOSAIQUE, "fond0", "f.til.c"));
    AjouteElementBrut(NouvelElement(TYPE_MOSAIQUE, "fond2", "g.til.c"));

    ElementProjet e = NouvelElement(TYPE_MOSAIQUE, "fond0", "h.til.c");
    NomUnique(e, true);
    EXPECT_STREQ(e.nom, "fond3"); // 0 starts at 2, and 2 is taken

    // A row of the same file counts as a clash only when asked.
    e = NouvelElement(TYPE_MOSAIQUE, "fond2", "g.til.c");
    NomUnique(e, true);
    EXPECT_STREQ(e.nom, "fond2");
    NomUnique(e, false);
    EXPECT_STREQ(e.nom, "fond3");

    // Nine digits: only the last eight are the number, here 0.
    AjouteElementBrut(NouvelElement(TYPE_MOSAIQUE, "v100000000", "i.til.c"));
    e = NouvelElement(TYPE_MOSAIQUE, "v100000000", "j.til.c");
    NomUnique(e, true);
    EXPECT_STREQ(e.nom, "v12");
}

TEST(Elements, DossierParDefaut) {
    DossierTemporaire dt;
    CopieBornee(DossierDefaut[TYPE_PALETTE], "couleurs");
    int i = AjouteElement(NouvelElement(TYPE_PALETTE, "pal", "pal.pal.c"));
    EXPECT_EQ(Elements[i].type, TYPE_PALETTE | ELEMENT_RANGE);
    EXPECT_STREQ(Elements[i].dossier, "couleurs");

    i = AjouteElement(DansDossier(NouvelElement(TYPE_PALETTE, "pal2", "p2.pal.c"), "racine"));
    EXPECT_STREQ(Elements[i].dossier, "racine");

    // Other types are not touched.
    i = AjouteElement(NouvelElement(TYPE_CARTE, "c", "c.map.c"));
    EXPECT_EQ(Elements[i].type, TYPE_CARTE);
    EXPECT_STREQ(Elements[i].dossier, "");
}

TEST(Elements, TablePleine) {
    DossierTemporaire dt;
    for (int i = 0; i < NB_ELEMENTS_MAX; ++i) {
        char nom[TAILLE_NOM];
        FormateBorne(nom, sizeof nom, "e%d", i);
        ASSERT_EQ(AjouteElementBrut(NouvelElement(TYPE_CARTE, nom, "f.c")), i);
    }
    EXPECT_EQ(AjouteElementBrut(NouvelElement(TYPE_CARTE, "trop", "t.c")), -1);
    EXPECT_EQ(AjouteElement(NouvelElement(TYPE_CARTE, "trop", "t.c")), -1);
    // A clash with the last row is renamed, then refused all the same.
    EXPECT_EQ(AjouteElement(NouvelElement(TYPE_CARTE, "e999", "autre.c")), -1);
    EXPECT_EQ(NbElements, NB_ELEMENTS_MAX);
    EXPECT_STREQ(Elements[NB_ELEMENTS_MAX - 1].nom, "e999");
    EXPECT_STREQ(Elements[NB_ELEMENTS_MAX - 1].fichier, "f.c");

    // The same element again still moves within a full table.
    EXPECT_EQ(AjouteElement(NouvelElement(TYPE_CARTE, "e0", "f.c")), NB_ELEMENTS_MAX - 1);
    EXPECT_STREQ(Elements[0].nom, "e1");
    EXPECT_STREQ(Elements[NB_ELEMENTS_MAX - 1].nom, "e0");
}

TEST(Elements, SupprimeElementDecaleLesLignes) {
    DossierTemporaire dt;
    for (const char* nom : {"a", "b", "c", "d"}) AjouteElement(NouvelElement(TYPE_LISTE, nom, nom));
    SupprimeElement(1);
    EXPECT_EQ(Noms(), "a c d");
    SupprimeElement(2);
    EXPECT_EQ(Noms(), "a c");
    SupprimeElement(2); // beyond the rows: nothing
    SupprimeElement(-1);
    EXPECT_EQ(Noms(), "a c");
}

TEST(Elements, SupprimeDossierEtSonContenu) {
    DossierTemporaire dt;
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "dedans", "d.map.c"), "F"));
    AjouteElementBrut(NouveauDossier("T", "S")); // listed before its parent
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_MOSAIQUE, "sous", "s.til.c"), "T"));
    AjouteElementBrut(NouveauDossier("S", "F"));
    AjouteElementBrut(NouveauDossier("F"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_PALETTE, "ailleurs", "a.pal.c"), "G"));
    AjouteElementBrut(NouveauDossier("G"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_LISTE, "rangee", "r.c"), "listes"));

    SupprimeDossier(TrouveElement(TYPE_AUCUN, "F"));
    EXPECT_EQ(Noms(), "dedans sous ailleurs G rangee");
    EXPECT_EQ(Elements[0].type, TYPE_CARTE);
    EXPECT_STREQ(Elements[0].dossier, "");
    EXPECT_EQ(Elements[1].type, TYPE_MOSAIQUE);
    EXPECT_STREQ(Elements[1].dossier, "");
    // Rows outside keep their folder.
    EXPECT_STREQ(Elements[2].dossier, "G");
    EXPECT_STREQ(Elements[4].dossier, "listes");
}

TEST(Elements, SupprimeDossiersEnCycle) {
    DossierTemporaire dt;
    AjouteElementBrut(NouveauDossier("A", "B"));
    AjouteElementBrut(NouveauDossier("B", "A"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "m", "m.map.c"), "B"));
    AjouteElementBrut(NouveauDossier("C", "C"));
    SupprimeDossier(0);
    EXPECT_EQ(Noms(), "m C");
    EXPECT_EQ(Elements[0].type, TYPE_CARTE);
    SupprimeDossier(1);
    EXPECT_EQ(Noms(), "m");
}

TEST(Elements, Recherches) {
    DossierTemporaire dt;
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "m1", "1"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_LISTE, "l1", "2"), "listes"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_CARTE, "m2", "3"), "cartes"));
    AjouteElementBrut(NouvelElement(TYPE_PALETTE, "m1", "4"));
    AjouteElementBrut(NouveauDossier("m1"));

    EXPECT_EQ(TrouveElement(TYPE_CARTE, "m2"), 2); // flags do not count
    EXPECT_EQ(TrouveElement(TYPE_PALETTE, "m1"), 3);
    EXPECT_EQ(TrouveElement(TYPE_AUCUN, "m1"), 4);
    EXPECT_EQ(TrouveElement(TYPE_CARTE, "M1"), -1);
    EXPECT_EQ(TrouveElement(TYPE_CARTE, "m"), -1);
    EXPECT_EQ(TrouveElement(TYPE_MOSAIQUE, "m1"), -1);

    EXPECT_EQ(NiemeElement(TYPE_CARTE, 1), 0);
    EXPECT_EQ(NiemeElement(TYPE_CARTE, 2), 2);
    EXPECT_EQ(NiemeElement(TYPE_CARTE, 3), NbElements);
    EXPECT_EQ(NiemeElement(TYPE_CARTE, 0), NbElements);
    EXPECT_EQ(NiemeElement(TYPE_MOSAIQUE, 1), NbElements);
    EXPECT_EQ(NiemeCarteOuListe(1), 0);
    EXPECT_EQ(NiemeCarteOuListe(2), 1);
    EXPECT_EQ(NiemeCarteOuListe(3), 2);
    EXPECT_EQ(NiemeCarteOuListe(4), NbElements);
}
