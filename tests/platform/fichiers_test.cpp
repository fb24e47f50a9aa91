#include "platform/fichiers.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sys/stat.h>
#include <vector>
#include <filesystem>

TEST(Fichiers, CheminCompletResoutPointsEtRelatifs) {
    DossierTemporaire dossier;
    char sortie[1000];
    ASSERT_EQ(CheminComplet("projet.tsl", sortie, sizeof sortie), 1);
    EXPECT_EQ(std::string(sortie), dossier.Dans("projet.tsl"));
    ASSERT_EQ(CheminComplet("./a/../b/./c.tsl", sortie, sizeof sortie), 1);
    EXPECT_EQ(std::string(sortie), dossier.Dans("b/c.tsl"));
    ASSERT_EQ(CheminComplet("/x/y/../../../z", sortie, sizeof sortie), 1);
    EXPECT_STREQ(sortie, "/z");
    // Backslashes separate too, and keep their place in the result.
    ASSERT_EQ(CheminComplet("/x\\y\\..\\w", sortie, sizeof sortie), 1);
    EXPECT_STREQ(sortie, "/x\\w");
    // A result that does not fit is refused.
    char court[8];
    EXPECT_EQ(CheminComplet("/abcdefghij", court, sizeof court), 0);
}

TEST(Fichiers, OuvreAccepteLesBarresInverses) {
    DossierTemporaire dossier;
    ASSERT_TRUE(std::filesystem::create_directory(dossier.Dans("sous")));
    EcritFichier(dossier.Dans("sous/a.txt"), "contenu");
    FILE* f = OuvreFichier("sous\\a.txt", "rb");
    ASSERT_NE(f, nullptr);
    char tampon[16] = {};
    EXPECT_EQ(fread(tampon, 1, sizeof tampon, f), 7u);
    fclose(f);
    EXPECT_TRUE(FichierExiste("sous\\a.txt"));
    EXPECT_FALSE(FichierExiste("sous\\b.txt"));
    EXPECT_EQ(OuvreFichier("", "rb"), nullptr);

    ASSERT_EQ(CopieFichier("sous/a.txt", "copie.bak"), 1);
    EXPECT_EQ(LitFichier(dossier.Dans("copie.bak")), "contenu");
    EXPECT_EQ(CopieFichier("absent.txt", "x.bak"), 0);
    EXPECT_FALSE(FichierExiste("x.bak"));
    EXPECT_EQ(SupprimeFichier("copie.bak"), 1);
    EXPECT_FALSE(FichierExiste("copie.bak"));
}

TEST(Fichiers, RepertoireCourantSansSeparateurFinal) {
    DossierTemporaire dossier;
    char courant[1000];
    ASSERT_EQ(RepertoireCourant(courant, sizeof courant), 1);
    EXPECT_EQ(std::string(courant), dossier.chemin);
    char petit[4];
    EXPECT_EQ(RepertoireCourant(petit, sizeof petit), 0);
    ASSERT_EQ(ChangeRepertoire("/"), 1);
    ASSERT_EQ(RepertoireCourant(courant, sizeof courant), 1);
    EXPECT_STREQ(courant, "/");
    EXPECT_EQ(ChangeRepertoire(dossier.Dans("absent").c_str()), 0);
    const char* chemin = "a\\b/c\\d";
    EXPECT_EQ(DernierSeparateur(chemin), chemin + 5);
    EXPECT_EQ(DernierSeparateur("abc"), nullptr);
}

// A file written whole or not at all: the old one stays when the writing
// fails, and nothing is left behind but the target.
TEST(Fichiers, EcritureSureRemplaceOuLaisseLAncien) {
    DossierTemporaire dossier;
    EcritFichier(dossier.Dans("cible.txt"), "ancien contenu");
    chmod("cible.txt", 0640);
    auto ecrit = [](const char* chemin, const std::string& texte) {
        EcritureSure e;
        FILE* f = CommenceEcritureSure(e, chemin);
        if (!f) return -1;
        fwrite(texte.data(), 1, texte.size(), f);
        fseek(f, -1, SEEK_CUR); // templates take back their last byte
        fputc('!', f);
        return TermineEcritureSure(e);
    };
    auto fichiers = [] {
        std::vector<std::string> noms;
        for (const auto& e : std::filesystem::directory_iterator("."))
            noms.push_back(e.path().filename().string());
        std::sort(noms.begin(), noms.end());
        return noms;
    };

    OctetsAvantEchecEcriture = 5; // a full disk after 5 bytes
    EXPECT_EQ(ecrit("cible.txt", "nouveau contenu plus long"), 0);
    EXPECT_EQ(LitFichier(dossier.Dans("cible.txt")), "ancien contenu");
    EXPECT_EQ(fichiers(), std::vector<std::string>{"cible.txt"});

    // A copy is written the same way: cut short, it leaves the old copy.
    EcritFichier(dossier.Dans("source.txt"), "une source plus longue que cinq octets");
    EcritFichier(dossier.Dans("copie.bak"), "ancienne copie");
    EXPECT_EQ(CopieFichier("source.txt", "copie.bak"), 0);
    EXPECT_EQ(LitFichier(dossier.Dans("copie.bak")), "ancienne copie");
    EXPECT_EQ(fichiers(), (std::vector<std::string>{"cible.txt", "copie.bak", "source.txt"}));
    SupprimeFichier("source.txt");
    SupprimeFichier("copie.bak");

    OctetsAvantEchecEcriture = 100; // room enough, through the same stream
    EXPECT_EQ(ecrit("cible.txt", "nouveau."), 1);
    OctetsAvantEchecEcriture = -1;
    EXPECT_EQ(LitFichier(dossier.Dans("cible.txt")), "nouveau!");
    struct stat etat;
    ASSERT_EQ(stat("cible.txt", &etat), 0);
    EXPECT_EQ(etat.st_mode & 0777, 0640u); // the target keeps its permissions

    EXPECT_EQ(ecrit("sous\\neuf.txt", "x"), -1); // no such folder
    EXPECT_EQ(ecrit("neuf.txt", "abc"), 1);
    EXPECT_EQ(LitFichier(dossier.Dans("neuf.txt")), "ab!");
    EXPECT_EQ(fichiers(), (std::vector<std::string>{"cible.txt", "neuf.txt"}));

    EcritureSure e;
    ASSERT_NE(CommenceEcritureSure(e, "cible.txt"), nullptr);
    fputs("perdu", e.fichier);
    AbandonneEcritureSure(e);
    EXPECT_EQ(LitFichier(dossier.Dans("cible.txt")), "nouveau!");
    EXPECT_EQ(fichiers(), (std::vector<std::string>{"cible.txt", "neuf.txt"}));
}
