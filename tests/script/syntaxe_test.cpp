#include "script/syntaxe.h"

#include "core/chaines.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

struct CasNombre {
    const char* texte;
    int32_t attendu;
};

// What a pointer to the start of the next argument leaves to read.
std::string Reste(const char* texte) { return ArgumentSuivant(texte); }

} // namespace

TEST(Syntaxe, LitNombreSelonLesPremiersCaracteres) {
    const CasNombre cas[] = {
        {"0x1f", 0x1f},
        {"0xABcd", 0xabcd},
        {"0x123456789", 0x23456789}, // wraps at 32 bits
        {"0xffffffff", -1},
        {"0x", 0},
        {"0b1011", 11},
        {"0b102", 2}, // binary digits up to the first other character
        {"42", 42},
        {"12abc", 12},
        {"7 8", 7},
        {"true", 1},
        {"t", 1},
        {"vrai", 1},
        {"false", 0},
        {"faux", 0},
        {"rgb(255,0,254)", 0xfe00ff},
        {"rgb (1, 2, 3)", 0x030201},
        {"rgb(1 2 3)", 0x030201},
        {"rgb(0x10,0x20,0x30)", 0x300010}, // the second component is decimal only
        {"rgb(256,257,0b11)", 0x030100},   // each component modulo 256
        {"rgb(rgb(1,2,3),1,0)", 0x000101},
        {"rgb", 0},
        {"rgb 1,2,3", 0},
        {"-1", 0},
        {"x12", 0},
        {"", 0},
        {" 5", 0},
    };
    for (const CasNombre& c : cas) EXPECT_EQ(LitNombre(c.texte), c.attendu) << c.texte;
}

TEST(Syntaxe, ArgumentSuivantCompteLesParentheses) {
    EXPECT_EQ(Reste("a, b"), "b");
    EXPECT_EQ(Reste("a b"), "b");
    EXPECT_EQ(Reste("a\t\tb"), "b");
    // A blank before the comma leaves the comma at the start of the next one.
    EXPECT_EQ(Reste("a ,b"), ",b");
    EXPECT_EQ(Reste("rgb(1, 2, 3), 4"), "4");
    EXPECT_EQ(Reste("f(a,(b c)) d"), "d");
    EXPECT_EQ(Reste("a) b"), "b");
    // At the end of the text, the text's end.
    const char* texte = "seul";
    EXPECT_EQ(ArgumentSuivant(texte), texte + 4);
    const char* vide = "";
    EXPECT_EQ(ArgumentSuivant(vide), vide);
    const char* parenthese = "rgb(1,2";
    EXPECT_EQ(ArgumentSuivant(parenthese), parenthese + strlen(parenthese));
}

TEST(Syntaxe, EstNombreVeutToutLeTexte) {
    EXPECT_EQ(EstNombre(""), 0);
    EXPECT_EQ(EstNombre("0"), 0);
    EXPECT_EQ(EstNombre("012"), 0);
    EXPECT_EQ(EstNombre("0x1F"), 1);
    EXPECT_EQ(EstNombre("0xaf09"), 1);
    EXPECT_EQ(EstNombre("0x1g"), 0);
    EXPECT_EQ(EstNombre("0b101"), 1);
    EXPECT_EQ(EstNombre("0b1a"), 0);
    EXPECT_EQ(EstNombre("123"), 1);
    EXPECT_EQ(EstNombre("12a"), 0);
    EXPECT_EQ(EstNombre("1 2"), 0);
    EXPECT_EQ(EstNombre("-3"), 0);
}

TEST(Syntaxe, LitChaineTroisGuillemetsSansEchappement) {
    char texte[] = "\"Un texte\" reste";
    char* p = texte;
    char* s = LitChaine(&p);
    ASSERT_NE(s, nullptr);
    EXPECT_STREQ(s, "Un texte");
    EXPECT_STREQ(p, " reste");

    char apostrophes[] = "'dit \"oui\"',x";
    p = apostrophes;
    s = LitChaine(&p);
    ASSERT_NE(s, nullptr);
    EXPECT_STREQ(s, "dit \"oui\"");
    EXPECT_STREQ(p, ",x");

    char etoiles[] = "*l'autre*";
    p = etoiles;
    s = LitChaine(&p);
    ASSERT_NE(s, nullptr);
    EXPECT_STREQ(s, "l'autre");
    EXPECT_STREQ(p, "");

    // No escapes: the first equal character closes the string.
    char barre[] = "\"a\\\"b\"";
    p = barre;
    s = LitChaine(&p);
    ASSERT_NE(s, nullptr);
    EXPECT_STREQ(s, "a\\");
    EXPECT_STREQ(p, "b\"");

    char ouverte[] = "\"sans fin";
    p = ouverte;
    EXPECT_EQ(LitChaine(&p), nullptr);
    EXPECT_EQ(p, ouverte);
    EXPECT_STREQ(ouverte, "\"sans fin");

    char nue[] = "mot \"x\"";
    p = nue;
    EXPECT_EQ(LitChaine(&p), nullptr);
    EXPECT_EQ(p, nue);
}

TEST(Syntaxe, CopieChaineEchappeeTraiteLesEchappements) {
    char sortie[64];
    const char* texte = "\"l1\\nl2\\b\\\"\\\\\\q\" suite";
    const char* apres = CopieChaineEchappee(sortie, texte, sizeof sortie);
    EXPECT_STREQ(sortie, "l1\r\nl2\b\"\\q");
    EXPECT_STREQ(apres, " suite");

    // The other quote kinds, each closed by its own.
    apres = CopieChaineEchappee(sortie, "'a\"b' x", sizeof sortie);
    EXPECT_STREQ(sortie, "a\"b");
    EXPECT_STREQ(apres, " x");
    apres = CopieChaineEchappee(sortie, "*a\\*b*", sizeof sortie);
    EXPECT_STREQ(sortie, "a*b");
    EXPECT_STREQ(apres, "");

    // Cut at size - 1 characters; the position is still behind the string.
    char petite[4];
    apres = CopieChaineEchappee(petite, "\"abcdef\",", sizeof petite);
    EXPECT_STREQ(petite, "abc");
    EXPECT_STREQ(apres, ",");

    // Unclosed, or not a string: the text itself.
    const char* ouverte = "\"abc\\\"";
    EXPECT_EQ(CopieChaineEchappee(sortie, ouverte, sizeof sortie), ouverte);
    const char* mot = "abc";
    EXPECT_EQ(CopieChaineEchappee(sortie, mot, sizeof sortie), mot);
}

TEST(Syntaxe, EcritChaineEchappeeSeRelitALIdentique) {
    const char* textes[] = {"simple", "", "dit \"oui\"", "c:\\dos\\", "\\\"", "l'un", "a\nb", "**"};
    for (char guillemet : {'"', '\'', '*'}) {
        for (const char* t : textes) {
            char ecrit[256], relu[256];
            EcritChaineEchappee(ecrit, t, guillemet, sizeof ecrit);
            ASSERT_EQ(ecrit[0], guillemet) << t;
            const char* apres = CopieChaineEchappee(relu, ecrit, sizeof relu);
            EXPECT_EQ(apres, ecrit + strlen(ecrit)) << ecrit;
            // A line feed comes back with the carriage return of \n.
            std::string attendu = t;
            if (attendu == "a\nb") attendu = "a\r\nb";
            EXPECT_EQ(std::string(relu), attendu) << ecrit;
        }
    }
    char ecrit[64];
    EcritChaineEchappee(ecrit, "a\"b\\c\nd", '"', sizeof ecrit);
    EXPECT_STREQ(ecrit, "\"a\\\"b\\\\c\\nd\"");

    // A short output keeps whole escapes, its quotes and its end.
    char court[7];
    memset(court, 'x', sizeof court);
    EcritChaineEchappee(court, "ab\"cdef", '"', sizeof court);
    EXPECT_LT(strlen(court), sizeof court);
    EXPECT_EQ(court[0], '"');
    EXPECT_EQ(court[strlen(court) - 1], '"');
    char relu[16];
    CopieChaineEchappee(relu, court, sizeof relu);
    EXPECT_EQ(std::string("ab\"cdef").rfind(relu, 0), 0u) << court;
}
