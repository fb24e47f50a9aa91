#include "platform/texte.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(Texte, CopieBorneeCoupeEtTermine) {
    char champ[6];
    memset(champ, 'x', sizeof champ);
    EXPECT_EQ(CopieBornee(champ, "abcdefgh"), 5u);
    EXPECT_STREQ(champ, "abcde");
    EXPECT_EQ(CopieBornee(champ, "ab"), 2u);
    EXPECT_STREQ(champ, "ab");
    EXPECT_EQ(CopieBornee(champ, nullptr), 0u);
    EXPECT_STREQ(champ, "");
    EXPECT_EQ(CopieBornee(champ, 1, "abc"), 0u);
    EXPECT_EQ(champ[0], 0);
}

TEST(Texte, CopieBorneeNLitUnChampSansFin) {
    // A fixed-width field of a binary file need not hold a terminator.
    const char champ[4] = {'a', 'b', 'c', 'd'};
    char dest[16];
    EXPECT_EQ(CopieBorneeN(dest, sizeof dest, champ, sizeof champ), 4u);
    EXPECT_STREQ(dest, "abcd");
    EXPECT_EQ(CopieBorneeN(dest, 3, champ, sizeof champ), 2u);
    EXPECT_STREQ(dest, "ab");
    EXPECT_EQ(CopieBorneeN(dest, sizeof dest, "x\0yz", 4), 1u);
    EXPECT_STREQ(dest, "x");
}

TEST(Texte, AjouteEtFormateRestentDansLeChamp) {
    char champ[8] = "abc";
    EXPECT_EQ(AjouteBorne(champ, "defghij"), 7u);
    EXPECT_STREQ(champ, "abcdefg");
    EXPECT_EQ(AjouteBorne(champ, "z"), 7u);
    EXPECT_STREQ(champ, "abcdefg");

    char petit[5];
    EXPECT_EQ(FormateBorne(petit, sizeof petit, "%d-%s", 12, "abcdef"), 4);
    EXPECT_STREQ(petit, "12-a");
    EXPECT_EQ(FormateBorne(petit, sizeof petit, "%d", 7), 1);
    EXPECT_STREQ(petit, "7");
}

TEST(Texte, CleLatin1AccepteAussiUtf8) {
    EXPECT_EQ(CommenceParLatin1("El\xE9ment: a", "El\xE9ment: "), 9u);
    EXPECT_EQ(CommenceParLatin1("El\xC3\xA9ment: a", "El\xE9ment: "), 10u);
    EXPECT_EQ(CommenceParLatin1("donn\xC3\xA9" "es", "donn\xE9" "es"), 8u);
    // Below U+00C0 the UTF-8 lead byte is C2.
    EXPECT_EQ(CommenceParLatin1("\xC2\xB0x", "\xB0x"), 3u);
    EXPECT_EQ(CommenceParLatin1("Element: a", "El\xE9ment: "), 0u);
    EXPECT_EQ(CommenceParLatin1("El\xC3\x89ment: ", "El\xE9ment: "), 0u); // É is another letter
    EXPECT_EQ(CommenceParLatin1("El\xC3", "El\xE9ment: "), 0u);          // cut inside the sequence
    EXPECT_EQ(CommenceParLatin1("Fichier", "Fichier: "), 0u);
}
