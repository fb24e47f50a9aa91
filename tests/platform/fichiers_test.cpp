#include "platform/fichiers.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace {

std::set<std::string> Fichiers(const std::string& dossier) {
    std::set<std::string> noms;
    for (const auto& f : std::filesystem::directory_iterator(dossier))
        noms.insert(f.path().filename().string());
    return noms;
}

} // namespace

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
// fails, and nothing is left behind but the target. Anonymous temporary files
// and named ones behave the same.
class EcritureSureDesDeuxSortes : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override { TemporairesAnonymes = GetParam(); }
    void TearDown() override { TemporairesAnonymes = true; }
};
INSTANTIATE_TEST_SUITE_P(Fichiers, EcritureSureDesDeuxSortes, testing::Bool());

TEST_P(EcritureSureDesDeuxSortes, RemplaceOuLaisseLAncien) {
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
        const std::set<std::string> noms = Fichiers(".");
        return std::vector<std::string>(noms.begin(), noms.end());
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

// The files of one set take their places together: a failure on the second
// leaves the first as it was. A link is written through to its file.
TEST_P(EcritureSureDesDeuxSortes, JeuEnsembleOuPasDuTout) {
    DossierTemporaire dossier;
    EcritFichier(dossier.Dans("a.txt"), "ancien");
    std::filesystem::create_directory("vrai");
    std::filesystem::create_symlink("vrai/b.txt", "b.txt");
    EcritureSure a, b;
    EcritureSure* jeu[] = {&a, &b};
    auto Commence = [&] {
        ASSERT_NE(CommenceEcritureSure(a, "a.txt"), nullptr);
        ASSERT_NE(CommenceEcritureSure(b, "b.txt"), nullptr);
        fputs("neuf a", a.fichier);
        fputs("neuf b", b.fichier);
        ASSERT_EQ(AcheveEcritureSure(a), 1);
        ASSERT_EQ(AcheveEcritureSure(b), 1);
    };
    Commence();
    std::filesystem::create_directory("vrai/b.txt"); // b's place is taken
    int echec = -1;
    EXPECT_EQ(PlaceEcrituresSures(jeu, 2, &echec), 0);
    EXPECT_EQ(echec, 1);
    EXPECT_EQ(b.erreur, EISDIR);
    EXPECT_EQ(LitFichier("a.txt"), "ancien");
    EXPECT_EQ(Fichiers("."), (std::set<std::string>{"a.txt", "b.txt", "vrai"}));
    EXPECT_EQ(Fichiers("vrai"), std::set<std::string>{"b.txt"});

    std::filesystem::remove("vrai/b.txt");
    Commence();
    EXPECT_EQ(PlaceEcrituresSures(jeu, 2, &echec), 1);
    EXPECT_EQ(LitFichier("a.txt"), "neuf a");
    EXPECT_TRUE(std::filesystem::is_symlink("b.txt"));
    EXPECT_EQ(LitFichier("vrai/b.txt"), "neuf b");
    EXPECT_EQ(Fichiers("."), (std::set<std::string>{"a.txt", "b.txt", "vrai"}));
}

// Named temporary files go with the process that a SIGTERM ends.
TEST(Fichiers, TemporaireNommeSupprimeAuSigterm) {
    DossierTemporaire dossier;
    const pid_t pid = fork();
    if (pid == 0) {
        TemporairesAnonymes = false;
        EcritureSure e;
        if (CommenceEcritureSure(e, "c.txt")) fputs("perdu", e.fichier);
        raise(SIGTERM);
        _exit(0);
    }
    int etat = 0;
    ASSERT_EQ(waitpid(pid, &etat, 0), pid);
    EXPECT_TRUE(WIFSIGNALED(etat) && WTERMSIG(etat) == SIGTERM);
    EXPECT_TRUE(Fichiers(".").empty());
}
