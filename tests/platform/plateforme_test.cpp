#include "platform/image.h"
#include "platform/memoire.h"
#include "platform/plateforme.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

TEST(PlateformeSansFenetre, UneLigneParBoiteSurLaSortieDErreur) {
    PlateformeCourante = PlateformeSansFenetre;
    testing::internal::CaptureStderr();
    int r1 = BoiteMessage("Ligne un\nligne deux", "Titre");
    int r2 = BoiteMessage("Question ?", "Q", BOITE_OUINON | ICONE_QUESTION);
    int r3 = BoiteMessage("Encore ?", "Q", BOITE_OUINONANNULER);
    int r4 = BoiteMessage("Continuer ?", "Q", BOITE_OKANNULER);
    MessageDebugF("Unrecognized convertion identifier: %s", "xyz");
    std::string sortie = testing::internal::GetCapturedStderr();
    EXPECT_EQ(sortie, "[Titre] Ligne un\nligne deux\n[Q] Question ?\n[Q] Encore ?\n[Q] Continuer ?\n"
                      "[Debuging] Unrecognized convertion identifier: xyz\n");
    // A question takes its first answer.
    EXPECT_EQ(r1, REPONSE_OK);
    EXPECT_EQ(r2, REPONSE_OUI);
    EXPECT_EQ(r3, REPONSE_OUI);
    EXPECT_EQ(r4, REPONSE_OK);
}

TEST(PlateformeSansFenetre, DialoguesDeFichierAnnules) {
    PlateformeCourante = PlateformeSansFenetre;
    char sortie[32] = "propose.tsl";
    EXPECT_EQ(PlateformeCourante.choisitFichier(DIALOGUE_SAUVER, sortie, sizeof sortie, "\x01x\0*.x\0", "T", "."), 0);
    EXPECT_STREQ(sortie, "");
    PlateformeCourante.afficheAttente(1); // a no-op that must not fail
    PlateformeCourante.afficheAttente(0);
}

TEST(Enregistreur, RetientLesBoitesEtDonneLesReponsesPrevues) {
    EnregistreurMessages journal;
    journal.reponses = {REPONSE_NON};
    EXPECT_EQ(BoiteMessage("a", "T1", BOITE_OUINON), REPONSE_NON);
    EXPECT_EQ(BoiteMessage("b", "T2", BOITE_OUINON), REPONSE_OUI);
    MessageDebug("c");
    EXPECT_EQ(journal.messages, (std::vector<std::string>{"[T1] a", "[T2] b", "[Debuging] c"}));
    EXPECT_EQ(journal.styles[0], BOITE_OUINON);
}

TEST(Verifie, MessageDErreurInterne) {
    EnregistreurMessages journal;
    int valeur = 3;
    EXPECT_TRUE(VERIFIE(valeur == 3));
    EXPECT_TRUE(journal.messages.empty());
    EXPECT_FALSE(VERIFIE(valeur > 4));
    ASSERT_EQ(journal.messages.size(), 1u);
    EXPECT_EQ(journal.messages[0],
              "[Internal error] An error has happened because the following condition is false: valeur > 4");
}

TEST(CreeImage, TroisVerificationsEtAucuneImage) {
    EnregistreurMessages journal;
    Image image;
    EXPECT_EQ(CreeImage(image, 0, -3, 12), 0);
    EXPECT_EQ(journal.messages,
              (std::vector<std::string>{
                  "[Internal error] An error has happened because the following condition is false: "
                  "(ibitcount == 8) || (ibitcount == 16) || (ibitcount == 24) || (ibitcount == 32)",
                  "[Internal error] An error has happened because the following condition is false: cx > 0",
                  "[Internal error] An error has happened because the following condition is false: cy > 0",
              }));
    EXPECT_EQ(image.pixels, nullptr);

    journal.messages.clear();
    EXPECT_EQ(CreeImage(image, 5, 0, 24), 0);
    EXPECT_EQ(journal.messages, (std::vector<std::string>{"[Internal error] An error has happened because the "
                                                          "following condition is false: cy > 0"}));
}

TEST(CreeImage, LignesAligneesSurQuatreOctetsEtEffacees) {
    EnregistreurMessages journal;
    Image image;
    for (int bits : {8, 16, 24, 32}) {
        ASSERT_EQ(CreeImage(image, 5, 3, bits), 1) << bits;
        EXPECT_EQ(image.pas % 4, 0);
        EXPECT_GE(image.pas, 5 * bits / 8);
        EXPECT_LT(image.pas, 5 * bits / 8 + 4);
        for (int i = 0; i < image.pas * image.hauteur; ++i) ASSERT_EQ(image.pixels[i], 0);
    }
    EXPECT_EQ(PasImage(1280, 24), 3840);
    EXPECT_EQ(PasImage(5, 24), 16);
    EXPECT_EQ(PasImage(3, 8), 4);
    // Too large to be a surface of the system: refused, with no box.
    EXPECT_EQ(CreeImage(image, 1 << 20, 1 << 20, 32), 0);
    EXPECT_EQ(image.pixels, nullptr);
    EXPECT_TRUE(journal.messages.empty());
    LibereImage(image);
}

TEST(PagesEnFond, NEcritRienDansLeBloc) {
    // The block is written by this thread while the other makes its pages
    // present, and it starts and ends inside a page: every byte keeps what
    // was written, inside and around it, and untouched memory reads clear.
    const size_t taille = (size_t)6 << 20;
    uint8_t* bloc = (uint8_t*)malloc(taille);
    ASSERT_NE(bloc, nullptr);
    {
        const PagesEnFond pages(bloc + 100, taille - 300);
        for (size_t i = 0; i < taille; ++i) bloc[i] = (uint8_t)(i * 7 + 3);
    }
    size_t differents = 0;
    for (size_t i = 0; i < taille; ++i) differents += bloc[i] != (uint8_t)(i * 7 + 3);
    EXPECT_EQ(differents, 0u);
    free(bloc);

    uint8_t* neuf = (uint8_t*)calloc(taille, 1);
    ASSERT_NE(neuf, nullptr);
    { const PagesEnFond pages(neuf, taille); }
    size_t nonNuls = 0;
    for (size_t i = 0; i < taille; ++i) nonNuls += neuf[i] != 0;
    EXPECT_EQ(nonNuls, 0u);
    free(neuf);
    // A null or small block is left alone.
    const PagesEnFond rien(nullptr, taille), petit(&nonNuls, sizeof nonNuls);
}

TEST(CreeImage, GrandeSurfaceEffaceeSansFuite) {
    // A large surface comes clear, drawn on and cleared it is clear again,
    // and freed it leaves nothing (the sanitizers would see a leak or a
    // mapping freed as heap memory).
    Image surface, copie;
    ASSERT_EQ(CreeSurface(surface, 1280, 1024, 24), 1);
    ASSERT_EQ(CreeImage(copie, 1280, 1024, 24), 1);
    const size_t taille = (size_t)surface.pas * surface.hauteur;
    EXPECT_EQ(memcmp(surface.pixels, copie.pixels, taille), 0);
    for (size_t i = 0; i < taille; i += 4093) surface.pixels[i] = 0x5A;
    EffaceImage(surface);
    ASSERT_NE(surface.pixels, nullptr);
    EXPECT_EQ(surface.largeur, 1280);
    EXPECT_EQ(memcmp(surface.pixels, copie.pixels, taille), 0);
    LibereImage(surface);
    LibereImage(copie);
    EXPECT_EQ(surface.pixels, nullptr);
    EXPECT_EQ(surface.carte, 0u);
}
