// Template writer: templates with their variables and directives, element
// formats, and the value loops of bitmaps, palettes, tilesets and maps.
#include "core/reglages.h"
#include "format/ecriture.h"
#include "format/formats.h"
#include "format/variables.h"
#include "platform/texte.h"
#include "tests/support/enregistreur.h"
#include "tests/support/tampons.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Ecriture : TestFormat {};

std::string Gabarit(const char* gabarit) {
    return Ecrit([&](FILE* f) { EcritGabarit(gabarit, f); });
}

} // namespace

TEST_F(Ecriture, Bitmap16DeDeuxPixelsOctetPourOctet) {
    sizex = 2;
    sizey = 1;
    MetTexteVariable("file", "img.bmp");
    MetTexteVariable("name", "img");
    MetEntierVariable("memory", 4);
    const SectionFormat& b16 = FormatCourant.sections[SECTION_BITMAP16];
    const uint32_t valeurs[] = {0x001f, 0x7fff};
    std::string fichier = Ecrit([&](FILE* f) {
        EcritGabarit(b16.declaration, f);
        EcritValeursLignes(f, b16, b16.element, valeurs, 2, 1);
        EcritGabarit(b16.end, f);
    });
    // %user2% is no variable: it writes nothing. line takes the blank back and
    // ends the row; end goes back over that line end.
    EXPECT_EQ(fichier, "//img.bmp\r\n//Converti avec  par Zorvan\r\n//Bitmap 16 bits\r\n//Taille: 2*1\r\n"
                       "//M\xE9moire: 4 octets\r\n\r\nconst unsigned short img_bitmap16[1][2]=\t{\r\n"
                       "0x001f, 0x7fff,};\r\n");
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Ecriture, VariablesEtDirectives) {
    sizex = 255;
    tilebase = -2;
    MetTexteVariable("name", "Nom_1");
    MetEntierVariable("depth", 0x01020304);
    FormatCourant.user[3] = "du format";
    CopieBornee(TextesUser[3], "lu dans le fichier");
    const struct {
        const char* gabarit;
        std::string attendu;
    } cas[] = {
        {"%+if=x%yes%+else%no%+end%", "yes"},
        {"%+if<>x%a%+else%b%+endif%c", "ac"},
        {"%+else%skipped%+end%after", "after"},
        {"%+else%never ends", ""},
        {"<%+noerror%|%+endnoerror%>", "<|>"},
        {"%sizex% %$sizex%", "255 ff"},
        {"%#2sizex%%#1sizex%", std::string("\xFF\x00\xFF", 3)},
        {"%#4depth%", std::string("\x04\x03\x02\x01", 4)},
        {"%tilebase% %$tilebase%", "-2 fffffffe"},
        {"%$name%%#2name%", "Nom_1Nom_1"},
        {"[%unknown%](\"%link%\")", "[](\"\")"},
        {"a%%b", "ab"},
        {"%user[3]%|%$user[3]%", "lu dans le fichier|lu dans le fichier"},
        {"%user[9]%%user3%", ""},
        {"abc\b\bZ", "aZc"},
        {"\bab\b", "ab"},
        {"a%sizex", "a255"}, // ends inside a field: what was collected counts
        {"a%+else", "a"},
    };
    for (const auto& c : cas)
        EXPECT_EQ(Gabarit(c.gabarit), c.attendu) << c.gabarit;
    EXPECT_TRUE(journal.messages.empty());

    // An over-long field name is cut, and the text goes on behind it.
    std::string long_ = "<%" + std::string(1500, 'n') + "%>";
    EXPECT_EQ(Gabarit(long_.c_str()), "<>");

    EXPECT_EQ(Gabarit("<%#3sizex%%#0sizex%>"), "<>");
    EXPECT_EQ(journal.messages, (std::vector<std::string>{"[Debuging] Binary typing error (3)",
                                                          "[Debuging] Binary typing error (0)"}));
}

TEST_F(Ecriture, FormatsDElement) {
    const struct {
        const char* format;
        uint32_t valeur;
        std::string attendu;
    } cas[] = {
        {"0x%04x, ", 31, "0x001f, "},
        {"0x%08x, ", 0xdeadbeef, "0xdeadbeef, "},
        {"%X", 255, "FF"},
        {"%i;", 1234, "1234;"},
        {"%4x|%02X", 10, "   a|0A"},
        {"%2b", 0x1234, "\x34\x12"},
        {"%1b", 0x1ff, "\xFF"},
        {"%4b", 0x01020304, "\x04\x03\x02\x01"},
        {"%2b%b", 0xabcd, "\xCD\xAB\xCD\xAB"}, // the width stays in force
        {"a%qb", 7, "ab"},                     // an unknown letter drops both
        {"\b%i", 5, "\b5"},                    // no take-back in an element format
        {"<%b>", 7, "<>"},
        {"<%3b>", 7, "<>"},
    };
    for (const auto& c : cas) {
        journal.messages.clear();
        EXPECT_EQ(Ecrit([&](FILE* f) { EcritValeur(f, c.format, c.valeur); }), c.attendu) << c.format;
        const bool erreur = c.attendu == "<>";
        EXPECT_EQ(journal.messages,
                  std::vector<std::string>(erreur, "[Debuging] Binary type error (please use "
                                                   "%1b, %2b, %4b only)"))
            << c.format;
    }
}

TEST_F(Ecriture, EveryXSelonLaLigne) {
    std::vector<uint32_t> valeurs;
    for (uint32_t i = 0; i < 16; ++i)
        valeurs.push_back(i);
    SectionFormat s{"", 4, "|", "%i ", "", "", "L", "", ""};
    const struct {
        const char* ligne;
        int n_every;
        bool parColonne;
        const char* attendu;
    } cas[] = {
        // With a line, v is the column: every_x once per row, before column 4.
        {"L", 4, false, "0 1 2 3 |4 5 6 7 L8 9 10 11 |12 13 14 15 L"},
        // Without, v runs over the file: also before the first value of row 2.
        {"", 4, false, "0 1 2 3 |4 5 6 7 |8 9 10 11 |12 13 14 15 "},
        // An editor map counts by column in any case.
        {"", 4, true, "0 1 2 3 |4 5 6 7 8 9 10 11 |12 13 14 15 "},
        {"L", 3, false, "0 1 2 |3 4 5 |6 7 L8 9 10 |11 12 13 |14 15 L"},
        {"L", 0, false, "0 1 2 3 4 5 6 7 L8 9 10 11 12 13 14 15 L"},
        {"", -1, false, "0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 "},
    };
    for (const auto& c : cas) {
        s.line = c.ligne;
        s.n_every = c.n_every;
        EXPECT_EQ(
            Ecrit([&](FILE* f) { EcritValeursLignes(f, s, s.element, valeurs.data(), 8, 2, c.parColonne); }),
            c.attendu)
            << c.ligne << " " << c.n_every;
    }
    // A palette counts colours and writes no line.
    s.n_every = 3, s.line = "L";
    EXPECT_EQ(Ecrit([&](FILE* f) { EcritValeursPalette(f, s, valeurs.data(), 7); }), "0 1 2 |3 4 5 |6 ");
}

TEST_F(Ecriture, MosaiqueSelonLaProfondeur) {
    // Two tiles of 8 pixels; at 4 bits only the low half of a pixel counts.
    const uint32_t pixels[] = {1, 2, 3, 4, 5, 6, 7, 8, 0x1a, 0xb, 0xc, 0xd, 0xe, 0xf, 0x10, 0x11};
    SectionFormat s{"", 3, "/", "e%i ", "%02x ", "t%i ", "|", "", ""};
    const struct {
        int profondeur;
        const char* ligne;
        const char* attendu;
    } cas[] = {
        // Two pixels a value, the first in the low half; v is the pixel number
        // in the tile, going up by two: every_x before pixel 6.
        {4, "|", "21 43 65 /87 |ba dc fe /10 |"},
        // With no line, v is the value's number in the file.
        {4, "", "21 43 65 /87 ba dc /fe 10 "},
        {8, "|", "e1 e2 e3 /e4 e5 e6 /e7 e8 |e26 e11 e12 /e13 e14 e15 /e16 e17 |"},
        {15, "", "t1 t2 t3 /t4 t5 t6 /t7 t8 t26 /t11 t12 t13 /t14 t15 t16 /t17 "},
    };
    for (const auto& c : cas) {
        s.line = c.ligne;
        EXPECT_EQ(Ecrit([&](FILE* f) { EcritValeursMosaique(f, s, pixels, 2, 8, c.profondeur); }), c.attendu)
            << c.profondeur << " " << c.ligne;
    }

    // Map cells of 8, 16 and 32 bits, with the line of "Standard".
    const SectionFormat& map = FormatCourant.sections[SECTION_MAP];
    const uint32_t cellules[] = {0x12, 0x3, 0x45, 0xef};
    const std::pair<const char*, const char*> cartes[] = {
        {map.element2, "0x12, 0x03},\r\n\t{0x45, 0xef},\r\n\t{"},
        {map.element, "0x0012, 0x0003},\r\n\t{0x0045, 0x00ef},\r\n\t{"},
        {map.element3, "0x00000012, 0x00000003},\r\n\t{0x00000045, 0x000000ef},\r\n\t{"},
    };
    for (const auto& [element, attendu] : cartes)
        EXPECT_EQ(Ecrit([&](FILE* f) { EcritValeursLignes(f, map, element, cellules, 2, 2); }), attendu);
}
