// The element table: adding with duplicate handling and default folders, the
// bound of 1000 rows, removing rows and folders, look-ups.
#include "core/elements.h"

#include "platform/texte.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>
#include <string>

namespace {

// The rows in table order, as "nom nom ...", or "nom/dossier" for a row in a folder.
std::string Noms() {
    std::string s;
    for (int i = 0; i < NbElements; ++i)
        s += (i ? " " : "") + std::string(Elements[i].nom) + (EstRange(Elements[i]) ? "/" : "") +
             Elements[i].dossier;
    return s;
}

ElementProjet Carte(const char* nom, const char* fichier, const char* dossier = nullptr) {
    ElementProjet e = NouvelElement(TYPE_CARTE, nom, fichier);
    return dossier ? DansDossier(e, dossier) : e;
}

} // namespace

TEST(Elements, MemeElementRevientEnFinEtGardeSesChamps) {
    DossierTemporaire dt;
    ASSERT_EQ(AjouteElement(
                  DansDossier(NouvelElement(TYPE_CARTE, "niveau", "niveau.map.c", "niveau.bmp"), "cartes")),
              0);
    AjouteElement(NouvelElement(TYPE_MOSAIQUE, "decor", "decor.til.c"));

    // Same name, type and file, no folder of its own: the old row moves to the end.
    EXPECT_EQ(AjouteElement(NouvelElement(TYPE_CARTE, "niveau", "niveau.map.c", "autre.bmp")), 1);
    EXPECT_EQ(Noms(), "decor niveau/cartes");
    EXPECT_STREQ(Elements[1].fichierBase, "niveau.bmp");
    EXPECT_EQ(Elements[1].type, TYPE_CARTE | ELEMENT_RANGE);

    // Named in its own folder, it is the same element only in the same folder.
    AjouteElement(Carte("niveau", "niveau.map.c", "cartes"));
    AjouteElement(NouvelElement(TYPE_MOSAIQUE, "decor", "decor.til.c"));
    EXPECT_EQ(Noms(), "niveau/cartes decor");
    AjouteElement(Carte("niveau", "niveau.map.c", "palettes"));
    EXPECT_EQ(Noms(), "niveau/cartes decor niveau/palettes");
}

TEST(Elements, NomEnDoubleNumerote) {
    DossierTemporaire dt;
    for (const char* fichier : {"a.map.c", "b.map.c", "c.map.c"})
        AjouteElement(Carte("carte", fichier));
    // Another type may share the name.
    AjouteElement(NouvelElement(TYPE_PALETTE, "carte", "a.pal.c"));
    // A number already at the end goes on from there.
    AjouteElement(Carte("map12", "x.map.c"));
    AjouteElement(Carte("map12", "y.map.c"));
    EXPECT_EQ(Noms(), "carte carte2 carte3 carte map12 map13");
    EXPECT_STREQ(Elements[2].fichier, "c.map.c");

    // Thirty characters that clash: the number takes the last place.
    const char* long30 = "abcdefghijklmnopqrstuvwxyzABCD";
    AjouteElement(NouvelElement(TYPE_LISTE, long30, "l1.c"));
    AjouteElement(NouvelElement(TYPE_LISTE, long30, "l2.c"));
    EXPECT_STREQ(Elements[NbElements - 1].nom, "abcdefghijklmnopqrstuvwxyzABC2");

    // The renamed file is already there under its number: it is the same
    // element, and moves to the end instead of becoming "carte4".
    int avant = NbElements;
    AjouteElement(Carte("carte", "b.map.c"));
    EXPECT_EQ(NbElements, avant);
    EXPECT_STREQ(Elements[NbElements - 1].nom, "carte2");
}

TEST(Elements, NomUniqueSansAjouter) {
    DossierTemporaire dt;
    AjouteElementBrut(NouvelElement(TYPE_MOSAIQUE, "fond0", "f.til.c"));
    AjouteElementBrut(NouvelElement(TYPE_MOSAIQUE, "fond2", "g.til.c"));
    AjouteElementBrut(NouvelElement(TYPE_MOSAIQUE, "v100000000", "i.til.c"));
    auto Unique = [](const char* nom, const char* fichier, bool memeFichier) {
        ElementProjet e = NouvelElement(TYPE_MOSAIQUE, nom, fichier);
        NomUnique(e, memeFichier);
        return std::string(e.nom);
    };
    EXPECT_EQ(Unique("fond0", "h.til.c", true), "fond3"); // 0 starts at 2, and 2 is taken
    // A row of the same file counts as a clash only when asked.
    EXPECT_EQ(Unique("fond2", "g.til.c", true), "fond2");
    EXPECT_EQ(Unique("fond2", "g.til.c", false), "fond3");
    // Nine digits: only the last eight are the number, here 0.
    EXPECT_EQ(Unique("v100000000", "j.til.c", true), "v12");
}

TEST(Elements, DossierParDefaut) {
    DossierTemporaire dt;
    CopieBornee(DossierDefaut[TYPE_PALETTE], "couleurs");
    AjouteElement(NouvelElement(TYPE_PALETTE, "pal", "pal.pal.c"));
    AjouteElement(DansDossier(NouvelElement(TYPE_PALETTE, "pal2", "p2.pal.c"), "racine"));
    // Other types are not touched.
    AjouteElement(Carte("c", "c.map.c"));
    EXPECT_EQ(Noms(), "pal/couleurs pal2/racine c");
}

TEST(Elements, TablePleine) {
    DossierTemporaire dt;
    for (int i = 0; i < NB_ELEMENTS_MAX; ++i)
        ASSERT_EQ(AjouteElementBrut(Carte(("e" + std::to_string(i)).c_str(), "f.c")), i);
    EXPECT_EQ(AjouteElementBrut(Carte("trop", "t.c")), -1);
    EXPECT_EQ(AjouteElement(Carte("trop", "t.c")), -1);
    // A clash with the last row is renamed, then refused all the same.
    EXPECT_EQ(AjouteElement(Carte("e999", "autre.c")), -1);
    EXPECT_EQ(NbElements, NB_ELEMENTS_MAX);
    EXPECT_STREQ(Elements[NB_ELEMENTS_MAX - 1].nom, "e999");
    EXPECT_STREQ(Elements[NB_ELEMENTS_MAX - 1].fichier, "f.c");

    // The same element again still moves within a full table.
    EXPECT_EQ(AjouteElement(Carte("e0", "f.c")), NB_ELEMENTS_MAX - 1);
    EXPECT_STREQ(Elements[0].nom, "e1");
    EXPECT_STREQ(Elements[NB_ELEMENTS_MAX - 1].nom, "e0");
}

TEST(Elements, SupprimeElementDecaleLesLignes) {
    DossierTemporaire dt;
    for (const char* nom : {"a", "b", "c", "d"})
        AjouteElement(NouvelElement(TYPE_LISTE, nom, nom));
    SupprimeElement(1);
    EXPECT_EQ(Noms(), "a c d");
    SupprimeElement(2);
    SupprimeElement(2); // beyond the rows: nothing
    SupprimeElement(-1);
    EXPECT_EQ(Noms(), "a c");
}

TEST(Elements, SupprimeDossierEtSonContenu) {
    DossierTemporaire dt;
    AjouteElementBrut(Carte("dedans", "d.map.c", "F"));
    AjouteElementBrut(NouveauDossier("T", "S")); // listed before its parent
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_MOSAIQUE, "sous", "s.til.c"), "T"));
    AjouteElementBrut(NouveauDossier("S", "F"));
    AjouteElementBrut(NouveauDossier("F"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_PALETTE, "ailleurs", "a.pal.c"), "G"));
    AjouteElementBrut(NouveauDossier("G"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_LISTE, "rangee", "r.c"), "listes"));

    // The rows inside come out of any folder; rows outside keep theirs.
    SupprimeDossier(TrouveElement(TYPE_AUCUN, "F"));
    EXPECT_EQ(Noms(), "dedans sous ailleurs/G G rangee/listes");
    EXPECT_EQ(Elements[0].type, TYPE_CARTE);
    EXPECT_EQ(Elements[1].type, TYPE_MOSAIQUE);

    // Folders in a cycle.
    NbElements = 0;
    AjouteElementBrut(NouveauDossier("A", "B"));
    AjouteElementBrut(NouveauDossier("B", "A"));
    AjouteElementBrut(Carte("m", "m.map.c", "B"));
    AjouteElementBrut(NouveauDossier("C", "C"));
    SupprimeDossier(0);
    EXPECT_EQ(Noms(), "m C/C");
    EXPECT_EQ(Elements[0].type, TYPE_CARTE);
    SupprimeDossier(1);
    EXPECT_EQ(Noms(), "m");
}

TEST(Elements, Recherches) {
    DossierTemporaire dt;
    AjouteElementBrut(Carte("m1", "1"));
    AjouteElementBrut(DansDossier(NouvelElement(TYPE_LISTE, "l1", "2"), "listes"));
    AjouteElementBrut(Carte("m2", "3", "cartes"));
    AjouteElementBrut(NouvelElement(TYPE_PALETTE, "m1", "4"));
    AjouteElementBrut(NouveauDossier("m1"));

    EXPECT_EQ(TrouveElement(TYPE_CARTE, "m2"), 2); // flags do not count
    EXPECT_EQ(TrouveElement(TYPE_PALETTE, "m1"), 3);
    EXPECT_EQ(TrouveElement(TYPE_AUCUN, "m1"), 4);
    for (const char* absent : {"M1", "m"})
        EXPECT_EQ(TrouveElement(TYPE_CARTE, absent), -1);
    EXPECT_EQ(TrouveElement(TYPE_MOSAIQUE, "m1"), -1);

    // Out of range: NbElements.
    std::string n;
    for (int i : {1, 2, 3, 0})
        n += std::to_string(NiemeElement(TYPE_CARTE, i)) + " ";
    for (int i : {1, 2, 3, 4})
        n += std::to_string(NiemeCarteOuListe(i)) + " ";
    EXPECT_EQ(n, "0 2 5 5 0 1 2 5 ");
    EXPECT_EQ(NiemeElement(TYPE_MOSAIQUE, 1), NbElements);
}
