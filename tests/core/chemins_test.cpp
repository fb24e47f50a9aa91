// Path operations: extensions, folders, short names, paths relative to the
// working directory, and the file dialogs.
#include "core/chemins.h"

#include "core/reglages.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "tests/support/enregistreur.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace {

std::string Dossier(const char* chemin) {
    char c[TAILLE_CHEMIN_PROJET];
    CopieBornee(c, chemin);
    RepertoireDe(c);
    return c;
}

std::string Court(const char* chemin) {
    char c[TAILLE_NOM_COURT];
    NomCourt(chemin, c);
    return c;
}

std::string AvecExtension(const char* chemin) {
    char c[64];
    CopieBornee(c, chemin);
    AjouteExtensionDefaut(c, sizeof c, ".tsl");
    return c;
}

std::string Relatif(const std::string& chemin) {
    char c[TAILLE_CHEMIN_PROJET];
    CopieBornee(c, chemin.c_str());
    CheminRelatif(c, sizeof c);
    return c;
}

std::string Courant() {
    char w[TAILLE_CHEMIN_PROJET];
    EXPECT_EQ(RepertoireCourant(w, sizeof w), 1);
    return w;
}

std::string EnBarresInverses(std::string s) {
    for (char& c : s)
        if (c == '/') c = '\\';
    return s;
}

} // namespace

TEST(Chemins, Extension) {
    const char* c = "a.map.c";
    EXPECT_EQ(Extension(c), c + 2);
    EXPECT_STREQ(Extension("niveaux\\a.map.c"), "map.c");
    EXPECT_STREQ(Extension("v1.2/sous.d\\a.b.c"), "b.c");
    // A dot only in a folder: the text behind it, to the end.
    EXPECT_STREQ(Extension("v1.2\\carte"), "2\\carte");
    EXPECT_STREQ(Extension("niveaux\\carte"), "niveaux\\carte");
    EXPECT_STREQ(Extension("carte"), "carte");
    EXPECT_STREQ(Extension(""), "");
}

TEST(Chemins, RepertoireDe) {
    EXPECT_EQ(Dossier("a\\b\\c.map.c"), "a\\b");
    EXPECT_EQ(Dossier("a/b\\c"), "a/b");
    EXPECT_EQ(Dossier("a\\b/c"), "a\\b");
    EXPECT_EQ(Dossier("\\c"), "");
    EXPECT_EQ(Dossier("c.map.c"), "");
}

TEST(Chemins, NomCourt) {
    EXPECT_EQ(Court("niveaux\\sous\\carte.map.c"), "carte");
    EXPECT_EQ(Court("niveaux/sous/carte.map.c"), "carte");
    EXPECT_EQ(Court("carte"), "carte");
    EXPECT_EQ(Court("d.x\\sans"), "sans");
    EXPECT_EQ(Court("abcdefghijklmnopqrstuvwxyz0123456789"), "abcdefghijklmnopqrstuvwxyz0123");
    // Cut to 30 first: a dot beyond that changes nothing.
    EXPECT_EQ(Court("abcdefghijklmnopqrstuvwxyz01234.bmp"), "abcdefghijklmnopqrstuvwxyz0123");
    EXPECT_EQ(Court(".cache"), "");
}

TEST(Chemins, AjouteExtensionDefaut) {
    EXPECT_EQ(AvecExtension("projet"), "projet.tsl");
    EXPECT_EQ(AvecExtension("jeux\\projet"), "jeux\\projet.tsl");
    EXPECT_EQ(AvecExtension("projet.tsl"), "projet.tsl");
    EXPECT_EQ(AvecExtension("projet.txt"), "projet.txt");
    EXPECT_EQ(AvecExtension("v1.0\\projet"), "v1.0\\projet");
    char petit[8] = "projet";
    AjouteExtensionDefaut(petit, sizeof petit, ".tsl");
    EXPECT_STREQ(petit, "projet.");
}

TEST(Chemins, CheminRelatifDansLeDossierEtSonParent) {
    DossierTemporaire dt;
    std::filesystem::create_directories(dt.Dans("sous/plus"));
    ASSERT_EQ(ChangeRepertoire(dt.Dans("sous/plus").c_str()), 1);
    const std::string w = Courant();
    const std::string parent = Dossier(w.c_str());
    const std::string grandParent = Dossier(parent.c_str());

    EXPECT_EQ(Relatif(w + "/a.bmp"), "a.bmp");
    EXPECT_EQ(Relatif(w + "/d/a.bmp"), "d/a.bmp");
    EXPECT_EQ(Relatif("a.bmp"), "a.bmp");
    EXPECT_EQ(Relatif(EnBarresInverses(w) + "\\d\\a.bmp"), "d\\a.bmp");

    EXPECT_EQ(Relatif(parent + "/autre/a.bmp"), "../autre/a.bmp");
    std::string r = Relatif(EnBarresInverses(parent) + "\\autre\\a.bmp");
    ASSERT_GE(r.size(), 3u);
    EXPECT_EQ(r.substr(0, 2), "..");
    EXPECT_TRUE(EstSeparateur(r[2]));
    EXPECT_EQ(r.substr(3), "autre\\a.bmp");

    // A folder whose name only begins with ours is beside it, not inside.
    EXPECT_EQ(Relatif(w + "C/x"), "../plusC/x");
    // The same one step up: no "..\\" into a folder beside the parent.
    EXPECT_EQ(Relatif(parent + "Z/x"), parent + "Z/x");
    // One step up at most.
    EXPECT_EQ(Relatif(grandParent + "/x"), grandParent + "/x");
}

TEST(Chemins, CheminRelatifJamaisLaRacine) {
    DossierTemporaire dt;
    // A folder right under the root: inside it is relative, beside it stays whole.
    const std::string w = Courant();
    const std::string haut = w.substr(0, w.find('/', 1));
    ASSERT_EQ(ChangeRepertoire(haut.c_str()), 1);
    EXPECT_EQ(Relatif(haut + "/a/b"), "a/b");
    EXPECT_EQ(Relatif("/zz_ailleurs/b"), "/zz_ailleurs/b");
    EXPECT_EQ(Relatif("\\zz_ailleurs\\b"), "\\zz_ailleurs\\b");

    ASSERT_EQ(ChangeRepertoire("/"), 1);
    EXPECT_EQ(Relatif("/zz_ailleurs/b"), "/zz_ailleurs/b");
}

namespace {

// A file dialog that leaves the working directory elsewhere, as the system's
// dialogs may, before it answers as the recorder does.
decltype(Plateforme::choisitFichier) DialogueEnregistre = nullptr;
int DialogueQuiSeDeplace(int genre, char* sortie, size_t taille, const char* filtre, const char* titre,
                         const char* repertoire) {
    ChangeRepertoire("/");
    return DialogueEnregistre(genre, sortie, taille, filtre, titre, repertoire);
}

} // namespace

TEST(Chemins, DialoguesDeFichiers) {
    DossierTemporaire dt;
    EnregistreurMessages enr;
    DialogueEnregistre = PlateformeCourante.choisitFichier;
    PlateformeCourante.choisitFichier = DialogueQuiSeDeplace;
    std::filesystem::create_directory(dt.Dans("projets"));
    std::filesystem::create_directory(dt.Dans("travail"));
    CopieBornee(CheminProjet, dt.Dans("projets/demo.tsl").c_str());
    ASSERT_EQ(ChangeRepertoire(dt.Dans("travail").c_str()), 1);
    const std::string travail = Courant();

    const char filtre[] = "\1Pictures\0*.bmp\0\0";
    char sortie[TAILLE_CHEMIN_PROJET] = "";
    enr.fichiers.push_back("choisi.bmp");
    EXPECT_NE(ChoisitFichierOuvert(sortie, sizeof sortie, filtre), 0);
    EXPECT_STREQ(sortie, "choisi.bmp");
    EXPECT_EQ(Courant(), travail);

    EXPECT_EQ(ChoisitFichierSauve(sortie, sizeof sortie, filtre), 0);
    EXPECT_EQ(Courant(), travail);

    ASSERT_EQ(enr.dialogues.size(), 2u);
    EXPECT_EQ(enr.dialogues[0], "To open a file|" + dt.Dans("projets"));
    EXPECT_EQ(enr.dialogues[1], "To save a file|" + dt.Dans("projets"));
    EXPECT_TRUE(enr.messages.empty());
}
