#include "app/demarrage.h"

#include "core/elements.h"
#include "core/projet.h"
#include "core/reglages.h"
#include "platform/fichiers.h"
#include "platform/imagefichier.h"
#include "tests/support/enregistreur.h"
#include "tests/support/projets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

std::string Repertoire() {
    return std::filesystem::current_path().string();
}

// The names that reached ExecuteConv, in the order of the messages.
std::vector<std::string> Liens(const char* ligne) {
    EnregistreurMessages enregistreur;
    ExecuteChaineLot(ligne);
    std::vector<std::string> noms;
    const std::string prefixe = "[Debuging] Unrecognized convertion identifier: ";
    for (const std::string& m : enregistreur.messages)
        noms.push_back(m.compare(0, prefixe.size(), prefixe) == 0 ? m.substr(prefixe.size()) : "?" + m);
    return noms;
}

using Noms = std::vector<std::string>;

std::string ProjetUneCarte(const std::string& nom, const std::string& donnees) {
    return Projet("", Ligne(nom, "carte", nom + ".map.c"), donnees);
}

} // namespace

// The last character goes without being looked at; batch mode never names a project.
TEST(LigneCommande, FormesEtModes) {
    const struct {
        const char* ligne;
        int mode;
        const char* projet;
    } cas[] = {{"", MODE_FENETRE, "projet.tsl"},
               {nullptr, MODE_FENETRE, "projet.tsl"},
               {"\"a b/p.tsl\"", MODE_FENETRE, "a b/p.tsl"},
               {"\"a b/p.tslx", MODE_FENETRE, "a b/p.tsl"},
               {"mes projets/p 2.tsl ", MODE_FENETRE, "mes projets/p 2.tsl "},
               {"-src=a.bmp", MODE_LOT, "projet.tsl"},
               {"-\"autre.tsl\"", MODE_LOT, "projet.tsl"}};
    char projet[64];
    for (const auto& c : cas) {
        EXPECT_EQ(AnalyseLigneCommande(c.ligne, projet, sizeof projet), c.mode) << c.ligne;
        EXPECT_STREQ(projet, c.projet);
    }
    EXPECT_EQ(AnalyseLigneCommande("0123456789abcdef", projet, 8), MODE_FENETRE);
    EXPECT_STREQ(projet, "0123456");
}

TEST(ChaineLot, LiensCoupesAuxDeuxPointsHorsGuillemets) {
    EXPECT_EQ(Liens("-a:b c:-d"), (Noms{"a", "b", "c", "d"}));
    // A quoted colon stays in its link, quotes and all.
    EXPECT_EQ(Liens("-\"x:y\":z"), (Noms{"\"x:y\"", "z"}));
    EXPECT_EQ(Liens("-src=\"c:/img.bmp\" +q:r"), (Noms{"q", "r"})); // src is known
    // An unclosed quote runs to the end.
    EXPECT_EQ(Liens("-a:\"b:c"), (Noms{"a", "\"b:c"}));
    // An empty link in the middle does not stop the chain; a trailing ':' adds nothing.
    EXPECT_EQ(Liens("-a::b"), (Noms{"a", "b"}));
    EXPECT_EQ(Liens("-a:"), (Noms{"a"}));
    EXPECT_EQ(Liens("-:"), Noms{});
}

TEST(Demarrage, LotSansProjetEcritProjetTsl) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    // Start-up puts every default back before the project is read.
    ReglagesEdit.timing = 99;
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "vieux", "v.c"));

    EXPECT_EQ(Demarre("-zz:\"autre.tsl\"", nullptr), 0);
    EXPECT_EQ(std::string(CheminProjet), Repertoire() + "/projet.tsl");
    EXPECT_EQ(enregistreur.messages, (Noms{"[Debuging] Unrecognized convertion identifier: zz",
                                           "[Debuging] Unrecognized convertion identifier: \"autre.tsl\""}));
    EXPECT_EQ(enregistreur.attente, 1); // the busy dialog stays up to the end
    EXPECT_FALSE(std::filesystem::exists("autre.tsl"));

    const std::string texte = LitFichier("projet.tsl");
    EXPECT_TRUE(texte.starts_with(ENTETE));
    EXPECT_NE(texte.find("  Directory = \"" + Repertoire() + "\"\n"), std::string::npos);
    EXPECT_EQ(texte.find("Timing"), std::string::npos);
    EXPECT_NE(texte.find(" .section fichiers\n Fin\n"), std::string::npos);
    EXPECT_TRUE(texte.ends_with(OUVERTURE_DONNEES + FIN_DONNEES_DEFAUT));
}

TEST(Demarrage, LotGardeLeProjetEnPlace) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    const std::string donnees = "  End\nnotes de l'utilisateur\n";
    EcritFichier("projet.tsl", ProjetUneCarte("mer", donnees));

    EXPECT_EQ(Demarre("-q", nullptr), 0);
    EXPECT_EQ(NbElements, 1);
    const std::string texte = LitFichier("projet.tsl");
    EXPECT_NE(texte.find(Ligne("mer", "carte", "mer.map.c")), std::string::npos);
    EXPECT_TRUE(texte.ends_with(donnees));
    EXPECT_EQ(enregistreur.messages.size(), 1u);
}

TEST(Demarrage, CheminAvecOuSansGuillemetsMemeProjet) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    const std::string base = Repertoire();
    const std::string sousDossier = base + "/mes projets";
    std::filesystem::create_directory(sousDossier);
    const std::string projet = ProjetUneCarte("lac", "  End\n");
    EcritFichier(sousDossier + "/p 1.tsl", projet);

    const std::string lignes[] = {"\"" + sousDossier + "/p 1.tsl\"", sousDossier + "/p 1.tsl",
                                  "mes projets/p 1.tsl", "\"mes projets/../mes projets/p 1.tsl\""};
    for (const std::string& ligne : lignes) {
        std::filesystem::current_path(base);
        NbElements = 0;
        EXPECT_EQ(Demarre(ligne.c_str(), nullptr), 0) << ligne; // the window road of a build without windows
        EXPECT_EQ(std::string(CheminProjet), sousDossier + "/p 1.tsl") << ligne;
        EXPECT_EQ(Repertoire(), sousDossier) << ligne;
        ASSERT_EQ(NbElements, 1) << ligne;
        EXPECT_STREQ(Elements[0].nom, "lac");
    }
    // Starting towards the window writes nothing.
    EXPECT_EQ(LitFichier(sousDossier + "/p 1.tsl"), projet);
    EXPECT_TRUE(enregistreur.messages.empty());
}

// A disk that fills up during a batch run: the conversion stops with the
// message of the file it could not write, adds nothing, and every file that
// was there before, the project included, stays as it was.
TEST(Demarrage, DisquePleinRienNEstPerdu) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    const std::string projet = ProjetUneCarte("mer", "  End\n");
    EcritFichier("projet.tsl", projet);
    EcritFichier("a.map.c", "ancienne carte");
    Image image;
    ASSERT_EQ(CreeImage(image, 16, 8, 24), 1);
    image.pixels[0] = 200;
    ASSERT_EQ(EcritBmp("a.bmp", image, 16, 8), 1);
    LibereImage(image);

    OctetsAvantEchecEcriture = 40;
    EXPECT_EQ(Demarre("-tset src=a.bmp", nullptr), 0);
    OctetsAvantEchecEcriture = -1;
    EXPECT_EQ(enregistreur.messages,
              Noms{"[a.map.c] Unable to open the file for writing.\nThe file name is probably erroneous."});
    EXPECT_EQ(NbElements, 1);
    EXPECT_EQ(LitFichier("a.map.c"), "ancienne carte");
    EXPECT_EQ(LitFichier("projet.tsl"), projet);
    std::vector<std::string> noms;
    for (const auto& e : std::filesystem::directory_iterator("."))
        noms.push_back(e.path().filename().string());
    std::sort(noms.begin(), noms.end());
    EXPECT_EQ(noms, (Noms{"a.bmp", "a.map.c", "projet.tsl"}));
}
