#include "core/reglages.h"

#include "core/elements.h"
#include "platform/texte.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Texte(uint32_t octets) {
    char sortie[64];
    TexteTailleMemoire(octets, sortie, sizeof sortie);
    return sortie;
}

} // namespace

// A unit adds a 1024th of itself: "8 MB" is 8 * 2^20 + 2^10; the result is
// truncated. No letter, or o, is the number itself. Letters are tried in the
// order t, g, m, k, o, not by position: "3 octets" is 3 TB. No number, or 2^32
// and more, is 0: no limit.
TEST(TailleMemoire, TexteVersOctets) {
    const std::pair<const char*, uint32_t> cas[] = {
        {"8 MB", 8389632u}, {"8 mb", 8389632u}, {"192 kB", 196609u}, {"1.5 GB", 1610612736u + 1048576u},
        {"0.3 k", 308u},    {"100", 100u},      {"100 o", 100u},     {"4294967295", 4294967295u},
        {"5 ok", 5121u},    {"1 km", 1049600u}, {"3 octets", 0u},    {"Max.", 0u},
        {"", 0u},           {"4 GB", 0u},       {"4294967296", 0u},  {"4095.999 MB", 4294967271u}};
    for (const auto& [texte, octets] : cas)
        EXPECT_EQ(LitTailleMemoire(texte), octets) << texte;
}

TEST(TailleMemoire, OctetsVersTexte) {
    // Decimals are cut, not rounded.
    const std::pair<uint32_t, const char*> cas[] = {
        {0, "Max."},       {999, "999 B"},       {1000, "0.976 kB"},      {1500, "1.464 kB"},
        {1536, "1.5 kB"},  {1024, "1 kB"},       {1023999, "999.999 kB"}, {1024000, "0.976 MB"},
        {8389632, "8 MB"}, {33554432u, "32 MB"}, {4294967295u, "4 GB"}};
    for (const auto& [octets, texte] : cas)
        EXPECT_EQ(Texte(octets), texte) << octets;
    // The texts a user types come back as typed.
    for (const char* texte : {"8 MB", "192 kB", "32 MB", "1.5 GB", "640 kB"})
        EXPECT_EQ(Texte(LitTailleMemoire(texte)), texte);
    char petit[4];
    TexteTailleMemoire(8389632, petit, sizeof petit);
    EXPECT_STREQ(petit, "8 M");
}

TEST(Reglages, ReinitialiseRemetLesDefauts) {
    ReglagesConv.masque[1] = 9;
    ReglagesConv.nuances = 4;
    ReglagesSys = {3, 0, 1, 0, 0};
    ReglagesEdit.timing = 99;
    ReglagesPlans.alphaGfx = 1;
    ReglagesHexa.fondActif = 0;
    tilex = 16;
    CopieBornee(ScriptPrincipal, "autre.spt");
    CopieBornee(AideUtilisateur, "x.htm");
    CopieBornee(DossierDefaut[TYPE_CARTE], "cartes");

    ReinitialiseReglages();

    const ReglagesConversion& c = ReglagesConv;
    EXPECT_EQ(c.masque[0] << 16 | c.masque[1] << 8 | c.masque[2], 255 << 16 | 254);
    EXPECT_EQ(c.nuances, 32);
    EXPECT_EQ(c.precisionMax, 512);
    EXPECT_EQ(ReglagesSys.objetsMax, 1024);
    EXPECT_EQ(ReglagesSys.sauverParamsMaps, 1);
    EXPECT_EQ(ReglagesSys.sauverParamsMapsAuto, 0);
    EXPECT_EQ(ReglagesSys.memoireMax, 33554432u);
    EXPECT_EQ(ReglagesSys.selectionFormatAuto, 1);
    EXPECT_EQ(ReglagesEdit.timing, 10);
    EXPECT_EQ(ReglagesPlans.alphaGfx, 128);
    EXPECT_EQ(ReglagesHexa.fondActif, 1);
    EXPECT_EQ(tilex, 8);
    EXPECT_STREQ(ScriptPrincipal, "script.spt");
    EXPECT_STREQ(AideUtilisateur, "lisezmoi.htm");
    EXPECT_STREQ(DossierDefaut[TYPE_CARTE], "");
}
