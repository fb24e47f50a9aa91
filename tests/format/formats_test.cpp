// Format definitions: the built-in "Standard", defformat blocks, selection by
// name and by extension, and the format named in the project file.
#include "core/projet.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "script/interpreteur.h"
#include "tests/support/enregistreur.h"
#include "tests/support/scripts.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

struct Formats : testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages journal;
    void SetUp() override {
        InitialiseFormats();
        InstalleFormats();
    }
};

int Slot(const char* nom) {
    for (int i = 0; i < NbFormats; ++i)
        if (strcmp(TableFormats[i].nom, nom) == 0) return i;
    return -1;
}

} // namespace

TEST_F(Formats, StandardEstLeFormatChoisiAuDepart) {
    ASSERT_EQ(NbFormats, 1);
    EXPECT_STREQ(NomFormatCourant(), "Standard");
    const SectionFormat& b8 = FormatCourant.sections[SECTION_BITMAP8];
    EXPECT_STREQ(b8.declaration,
                 "//%file%\r\n//Converti avec Tessellarium par Zorvan\r\n//Bitmap 8 bits (\"%link%\")\r\n"
                 "//Taille: %sizex%*%sizey%\r\n//M\xE9moire: %memory% octets\r\n\r\n"
                 "const unsigned char %name%_bitmap8[%sizey%][%sizex%]=\t{\r\n");
    EXPECT_EQ(b8.n_every, 12);
    EXPECT_STREQ(b8.line, "");
    const SectionFormat& map = FormatCourant.sections[SECTION_MAP];
    EXPECT_STREQ(map.element3, "0x%08x, ");
    EXPECT_STREQ(map.line, "\b\b},\r\n\t{");
    EXPECT_STREQ(map.end, "\b\b\b\b\b\r\n};\r\n");
    EXPECT_EQ(FormatCourant.sections[SECTION_LIST].n_every, 0);
    EXPECT_STREQ(FormatCourant.sections[SECTION_LIST].element, "\r\n\t{#type#,#x#,#y##+param:\",\":\"\"#},");
    const char* exts[] = {".b16.c", ".b8.c", ".pal.c", ".til.c", ".map.c", ".lst.c"};
    for (int s = 0; s < NB_SECTIONS; ++s)
        EXPECT_STREQ(FormatCourant.sections[s].ext, exts[s]);
    EXPECT_STREQ(FormatCourant.type16, "short");
    EXPECT_STREQ(FormatCourant.typesd, "SPRITE_LISTE");
    EXPECT_STREQ(FormatCourant.user[1], "#include \"def.h\"");
    EXPECT_STREQ(FormatCourant.user[8], "");
}

TEST_F(Formats, NouveauFormatCopieLeFormatChoisi) {
    // Only the ext of bitmap8 differs from "Standard"; keys in capitals work and
    // the value keeps its case; a '#' in quotes stays, outside it is a comment.
    Execute("defformat \"Autre\" {\n  BITMAP8 {\n    EXT = \".B8.Txt#x\"   # comment\n  }\n}\n");
    int autre = Slot("Autre");
    ASSERT_EQ(autre, 1);
    EXPECT_EQ(NbFormats, 2);
    EXPECT_TRUE(journal.messages.empty());
    const DefinitionFormat& d = TableFormats[autre];
    EXPECT_STREQ(d.sections[SECTION_BITMAP8].ext, ".B8.Txt#x");
    for (int s = 0; s < NB_SECTIONS; ++s) {
        if (s != SECTION_BITMAP8) {
            EXPECT_STREQ(d.sections[s].ext, TableFormats[0].sections[s].ext);
        }
        EXPECT_STREQ(d.sections[s].declaration, TableFormats[0].sections[s].declaration);
        EXPECT_EQ(d.sections[s].n_every, TableFormats[0].sections[s].n_every);
    }
    // A definition does not select.
    EXPECT_STREQ(NomFormatCourant(), "Standard");

    // Made while "Autre" is selected, a third format copies "Autre".
    Execute("selformat \"Autre\"\ndefformat Troisieme {\n  map {\n    n_every = 4\n    element = 'x%i'\n  }\n"
            "  type16 = \"hword\"\n  user[3] = *trois*\n}\n");
    int trois = Slot("troisieme"); // an unquoted name is folded with its line
    ASSERT_GE(trois, 0);
    const DefinitionFormat& t = TableFormats[trois];
    EXPECT_EQ(std::string(t.sections[SECTION_BITMAP8].ext) + "|" +
                  std::to_string(t.sections[SECTION_MAP].n_every) + "|" + t.sections[SECTION_MAP].element +
                  "|" + t.type16 + "|" + t.user[3],
              ".B8.Txt#x|4|x%i|hword|trois");
}

TEST_F(Formats, RedefinitionPriseALaProchaineSelection) {
    Execute("defformat \"F\" {\n map {\n  ext = \".m1\"\n }\n}\nselformat \"F\"\n"
            "defformat \"F\" {\n map {\n  element = \"%d,\"\n }\n}\n");
    EXPECT_STREQ(FormatCourant.sections[SECTION_MAP].element, "0x%04x, ");
    Execute("selformat \"F\"\n");
    EXPECT_STREQ(FormatCourant.sections[SECTION_MAP].element, "%d,");
    EXPECT_STREQ(FormatCourant.sections[SECTION_MAP].ext, ".m1"); // kept from the first definition
    EXPECT_EQ(NbFormats, 2);
}

TEST_F(Formats, MessagesEtFinsDeBloc) {
    Execute("defformat \"G\"\n"
            "{\n"              // an unknown section of no name: no effect
            "  ext = \".x\"\n" // outside any section
            "  ? = 3\n"        // no key: '?' is unexpected
            "  tileset {\n"
            "    n_chaque = 3\n"
            "  }\n"
            "}\n"
            "convert.nuances = 7\n" // the script goes on behind the block
            "defformat pasdaccolade\n"
            "selformat \"Absent\"\n");
    EXPECT_EQ(journal.messages,
              (std::vector<std::string>{
                  "[Debuging] Field definition must be defined in a section (ext=\".x\")",
                  "[Debuging] Unexpected character: ?",
                  "[Macro execution error] You have forgotten the format opening { (on the same line).",
                  "[Internal error: ChoisitFormat] Format not found: Absent",
              }));
    int g = Slot("G");
    ASSERT_GE(g, 0);
    EXPECT_EQ(TableFormats[g].sections[SECTION_TILESET].n_every, 3);
    EXPECT_EQ(ReglagesConv.nuances, 7);
    EXPECT_EQ(Slot("pasdaccolade"), -1);

    // The end of the file before the closing brace ends the definition.
    Execute("defformat \"H\" {\n bitmap16 {\n  ext = \".h\"\n");
    ASSERT_GE(Slot("H"), 0);
    EXPECT_STREQ(TableFormats[Slot("H")].sections[SECTION_BITMAP16].ext, ".h");
}

TEST_F(Formats, TablePleineEtPoolPleinRefusesProprement) {
    std::string script;
    for (int i = 1; i < NB_FORMATS_MAX; ++i)
        script += "defformat \"f" + std::to_string(i) + "\" {\n map {\n  ext = \".e" + std::to_string(i) +
                  "\"\n }\n}\n";
    script += "defformat \"deTrop\" {\n map {\n  ext = \".trop\"\n }\n}\nconvert.nuances = 9\n";
    Execute(script);
    EXPECT_EQ(NbFormats, NB_FORMATS_MAX);
    EXPECT_EQ(Slot("deTrop"), -1);
    EXPECT_EQ(ReglagesConv.nuances, 9); // the refused block did not run as statements
    EXPECT_TRUE(journal.messages.empty());

    // More text than a pool holds: the values that do not fit are refused,
    // the others stay.
    std::string longue(4000, 'a');
    std::string bloc = "defformat \"f1\" {\n map {\n";
    for (int i = 0; i < 300; ++i)
        bloc += "  declaration = \"" + longue + std::to_string(i) + "\"\n";
    bloc += "  ext = \"" + longue + "\"\n }\n}\n";
    Execute(bloc);
    const char* decl = TableFormats[Slot("f1")].sections[SECTION_MAP].declaration;
    ASSERT_GT(strlen(decl), 4000u);
    EXPECT_EQ(strncmp(decl, longue.c_str(), 4000), 0);
    EXPECT_LT(atoi(decl + 4000), 299);
}

TEST_F(Formats, UnNouveauDepartReprendLesPools) {
    Execute("defformat \"A\" {\n map {\n  ext = \".a\"\n }\n}\ndefformat \"B\" {\n map {\n  ext = \".b\"\n }\n}\n");
    ASSERT_EQ(NbFormats, 3);
    char* const pa = TableFormats[1].pool;
    char* const pb = TableFormats[2].pool;
    ASSERT_TRUE(pa && pb && pa != pb);
    // A slot copied from another shares its pool, which goes back once.
    TableFormats[3] = TableFormats[2];
    NbFormats = 4;

    InitialiseFormats();
    Execute("defformat \"C\" {\n map {\n  ext = \".c\"\n }\n}\ndefformat \"D\" {\n map {\n  ext = \".d\"\n }\n}\n"
            "defformat \"E\" {\n map {\n  ext = \".e\"\n }\n}\n");
    ASSERT_EQ(NbFormats, 4);
    char* const pc = TableFormats[Slot("C")].pool;
    char* const pd = TableFormats[Slot("D")].pool;
    char* const pe = TableFormats[Slot("E")].pool;
    EXPECT_TRUE((pc == pa && pd == pb) || (pc == pb && pd == pa));
    EXPECT_TRUE(pe && pe != pa && pe != pb);
    EXPECT_STREQ(TableFormats[Slot("C")].sections[SECTION_MAP].ext, ".c");
    EXPECT_STREQ(TableFormats[Slot("D")].sections[SECTION_MAP].ext, ".d");
    EXPECT_STREQ(TableFormats[Slot("E")].sections[SECTION_MAP].ext, ".e");
}

TEST_F(Formats, ChoixParExtension) {
    Execute("defformat \"A\" {\n palette {\n  ext = \".map.c\"\n }\n}\n"
            "defformat \"B\" {\n map {\n  ext = \".txt\"\n }\n}\n");
    // "Standard" has .map.c in its map section and comes first.
    Execute("selformat \"B\"\n");
    ChoisitFormatParExtension("niveaux\\pic.map.c");
    EXPECT_STREQ(NomFormatCourant(), "Standard");
    ChoisitFormatParExtension("pic.txt");
    EXPECT_STREQ(NomFormatCourant(), "B");
    ChoisitFormatParExtension("pic.bin"); // no format has it: no change, no message
    EXPECT_STREQ(NomFormatCourant(), "B");
    ChoisitFormatParExtension("map.c"); // no dot before: the whole name is compared
    EXPECT_STREQ(NomFormatCourant(), "B");
    ReglagesSys.selectionFormatAuto = 0;
    ChoisitFormatParExtension("pic.map.c");
    EXPECT_STREQ(NomFormatCourant(), "B");
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Formats, LeProjetNommeLeFormatChoisi) {
    InstalleInterpreteur();
    Execute("defformat \"Asm\" {\n map {\n  ext = \".s\"\n }\n}\nselformat \"Asm\"\n");
    SauveProjet("projet.tsl");
    std::string texte = LitFichier(dossier.Dans("projet.tsl"));
    EXPECT_NE(texte.find("\n  Format = \"Asm\"\n\n  DefModele \"Default\""), std::string::npos);
    // Read back, the name is only noted: the selection stays as it is.
    InitialiseFormats();
    ChargeProjet("projet.tsl");
    EXPECT_STREQ(NomFormatCourant(), "Standard");
}
