#include "script/syntaxe.h"

#include "core/chaines.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

// LitChaine on a copy: "string|rest", or "null|text left" when it gives none.
std::string Prend(const std::string& texte) {
    std::string copie = texte;
    char* p = copie.data();
    char* s = LitChaine(&p);
    return std::string(s ? s : "null") + "|" + p;
}

// CopieChaineEchappee: "string|rest"; "=" as rest when it gave the text itself.
std::string Copie(const char* texte, size_t taille = 64) {
    char sortie[64];
    const char* apres = CopieChaineEchappee(sortie, texte, taille);
    return std::string(sortie) + "|" + (apres == texte ? "=" : apres);
}

} // namespace

TEST(Syntaxe, LitNombreSelonLesPremiersCaracteres) {
    const struct {
        const char* texte;
        int32_t attendu;
    } cas[] = {
        // clang-format off
        {"0x1f", 0x1f}, {"0xABcd", 0xabcd}, {"0x123456789", 0x23456789}, {"0xffffffff", -1}, {"0x", 0},
        {"0b1011", 11}, {"0b102", 2}, {"42", 42}, {"12abc", 12}, {"7 8", 7},
        {"true", 1}, {"t", 1}, {"vrai", 1}, {"false", 0}, {"faux", 0},
        {"rgb(255,0,254)", 0xfe00ff}, {"rgb (1, 2, 3)", 0x030201}, {"RGB(1 2 3)", 0x030201},
        {"rgb(0x10,0x20,0x30)", 0x300010}, // the second component is decimal only
        {"rgb(256,257,0b11)", 0x030100},   // each component modulo 256
        {"rgb(rgb(1,2,3),1,0)", 0x000101}, // an argument in brackets is one argument
        {"rgb", 0}, {"rgb 1,2,3", 0}, {"-1", 0}, {"x12", 0}, {"", 0}, {" 5", 0},
        // clang-format on
    };
    for (const auto& c : cas)
        EXPECT_EQ(LitNombre(c.texte), c.attendu) << c.texte;
}

TEST(Syntaxe, ArgumentSuivantCompteLesParentheses) {
    EXPECT_STREQ(ArgumentSuivant("a, b"), "b");
    EXPECT_STREQ(ArgumentSuivant("a b"), "b");
    EXPECT_STREQ(ArgumentSuivant("a\t\tb"), "b");
    // A blank before the comma leaves the comma at the start of the next one.
    EXPECT_STREQ(ArgumentSuivant("a ,b"), ",b");
    EXPECT_STREQ(ArgumentSuivant("rgb(1, 2, 3), 4"), "4");
    EXPECT_STREQ(ArgumentSuivant("f(a,(b c)) d"), "d");
    EXPECT_STREQ(ArgumentSuivant("a) b"), "b");
    for (const char* texte : {"seul", "", "rgb(1,2"})
        EXPECT_EQ(ArgumentSuivant(texte), texte + strlen(texte));
}

TEST(Syntaxe, EstNombreVeutToutLeTexte) {
    for (const char* oui : {"0x1F", "0xaf09", "0b101", "123"})
        EXPECT_EQ(EstNombre(oui), 1) << oui;
    for (const char* non : {"", "0", "012", "0x1g", "0b1a", "12a", "1 2", "-3"})
        EXPECT_EQ(EstNombre(non), 0) << non;
}

TEST(Syntaxe, LitChaineTroisGuillemetsSansEchappement) {
    EXPECT_EQ(Prend("\"Un texte\" reste"), "Un texte| reste");
    EXPECT_EQ(Prend("'dit \"oui\"',x"), "dit \"oui\"|,x");
    EXPECT_EQ(Prend("*l'autre*"), "l'autre|");
    // No escapes: the first equal character closes the string.
    EXPECT_EQ(Prend("\"a\\\"b\""), "a\\|b\"");
    // Unclosed, or no quote: none, and the pointer stays.
    EXPECT_EQ(Prend("\"sans fin"), "null|\"sans fin");
    EXPECT_EQ(Prend("mot \"x\""), "null|mot \"x\"");
}

TEST(Syntaxe, CopieChaineEchappeeTraiteLesEchappements) {
    EXPECT_EQ(Copie("\"l1\\nl2\\b\\\"\\\\\\q\" suite"), "l1\r\nl2\b\"\\q| suite");
    EXPECT_EQ(Copie("'a\"b' x"), "a\"b| x");
    EXPECT_EQ(Copie("*a\\*b*"), "a*b|");
    // Cut at size - 1 characters; the position is still behind the string.
    EXPECT_EQ(Copie("\"abcdef\",", 4), "abc|,");
    // Unclosed, or not a string: the text itself.
    EXPECT_EQ(Copie("\"abc\\\""), "|=");
    EXPECT_EQ(Copie("abc"), "|=");
}

TEST(Syntaxe, EcritChaineEchappeeSeRelitALIdentique) {
    char ecrit[64];
    EcritChaineEchappee(ecrit, "a\"b\\c\nd'", '"', sizeof ecrit);
    EXPECT_STREQ(ecrit, "\"a\\\"b\\\\c\\nd'\"");

    for (char guillemet : {'"', '\'', '*'}) {
        for (const char* t : {"simple", "", "dit \"oui\"", "c:\\dos\\", "\\\"", "l'un", "**", "a\nb"}) {
            EcritChaineEchappee(ecrit, t, guillemet, sizeof ecrit);
            // A line feed comes back with the carriage return of \n.
            std::string attendu = strcmp(t, "a\nb") == 0 ? "a\r\nb" : t;
            EXPECT_EQ(Copie(ecrit), attendu + "|") << ecrit;
        }
    }

    // A short output keeps whole escapes, its quotes and its end.
    char court[7];
    memset(court, 'x', sizeof court);
    EcritChaineEchappee(court, "ab\"cdef", '"', sizeof court);
    ASSERT_LT(strlen(court), sizeof court);
    EXPECT_STREQ(court, "\"ab\\\"\"");
}
