// Template reader: templates run backwards, element formats, recovery from
// damaged files, and the round trip of every kind of data through the writer.
#include "core/reglages.h"
#include "format/ecriture.h"
#include "format/formats.h"
#include "format/lecture.h"
#include "format/variables.h"
#include "platform/texte.h"
#include "tests/support/enregistreur.h"
#include "tests/support/tampons.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace {

struct Lecture : TestFormat {};

// ---- Round trip through the writer -------------------------------------------

enum Genre { LIGNES, PALETTE, MOSAIQUE };
struct Cas {
    const char* nom;
    SectionFormat section;
    Genre genre;
    int element;            // 1: element, 2: element2, 3: element3
    int profondeur;         // bits of a value; tilesets: 4, 8 or 15
    uint32_t masque;        // the widest value
    const char* variables;  // what the declaration carries
    const char* autreLigne; // the other line variant (null: none), and its end
    const char* autreFin;
};

const char* Element(const SectionFormat& s, int n) {
    return n == 2 ? s.element2 : n == 3 ? s.element3 : s.element;
}

// Assembler text, the map section of a user's format; raw bytes, that serve
// bitmaps, tilesets and maps.
// clang-format off
const SectionFormat Assembleur = {
    "@ %name% %sizex%x%sizey% tiles \"%link%\"\n\t.global %name%\n%name%:\n\t.hword ", 6, "\b\n\t.hword ",
    "0x%04X,", "%i,", "0x%08X,", "\b\n\t.hword ", "\b\b\b\b\b\b\b\b@ end\n", ".s"};
const SectionFormat Binaire = {
    "TSB1%#2sizex%%#2sizey%%#4size%%#1depth%%name%;", 4, "\n", "%2b", "%1b", "%4b", "\xFF\xFE", "END", ".bin"};
// clang-format on

std::vector<Cas> TousLesCas() {
    const SectionFormat* S = FormatCourant.sections;
    const char *b16 = "sizex sizey name memory", *b8 = "sizex sizey name memory link";
    const char *pal = "size name memory", *til = "size name link depth tilex tiley memory";
    const char* map = "sizex sizey name link tilex tiley tilebase gfxmask type memory";
    const char *asm_ = "sizex sizey name link", *bin = "sizex sizey size depth name";
    const char* finC = "\b\b};\r\n";
    return {
        {"bitmap16", S[SECTION_BITMAP16], LIGNES, 1, 16, 0x7fff, b16, "", finC},
        {"bitmap8", S[SECTION_BITMAP8], LIGNES, 1, 8, 0xff, b8, "\b\r\n", finC},
        {"palette", S[SECTION_PALETTE], PALETTE, 1, 16, 0x7fff, pal, nullptr, nullptr},
        {"tileset 4", S[SECTION_TILESET], MOSAIQUE, 2, 4, 0xf, til, "\b\r\n", finC},
        {"tileset 8", S[SECTION_TILESET], MOSAIQUE, 1, 8, 0xff, til, "\b\r\n", finC},
        {"tileset 15", S[SECTION_TILESET], MOSAIQUE, 3, 15, 0x7fff, til, "\b\r\n", finC},
        {"map 8", S[SECTION_MAP], LIGNES, 2, 8, 0xff, map, "", finC},
        {"map 16", S[SECTION_MAP], LIGNES, 1, 16, 0xffff, map, "", finC},
        {"map 32", S[SECTION_MAP], LIGNES, 3, 32, 0xffffffff, map, "", finC},
        {"asm 8", Assembleur, LIGNES, 2, 8, 0xff, asm_, "", "\b\n@ end\n"},
        {"asm 16", Assembleur, LIGNES, 1, 16, 0xffff, asm_, "", "\b\n@ end\n"},
        {"asm 32", Assembleur, LIGNES, 3, 32, 0xffffffff, asm_, "", "\b\n@ end\n"},
        {"binaire 16", Binaire, LIGNES, 1, 16, 0xffff, bin, "", "END"},
        {"binaire tuiles 4", Binaire, MOSAIQUE, 2, 4, 0xf, bin, "", "END"},
        {"binaire tuiles 15", Binaire, MOSAIQUE, 3, 15, 0x7fff, bin, "", "END"},
        {"binaire carte 8", Binaire, LIGNES, 2, 8, 0xff, bin, "", "END"},
        {"binaire carte 32", Binaire, LIGNES, 3, 32, 0xffffffff, bin, "", "END"},
    };
}

// Data of w values a row (a tile) and h rows (tiles), with both extremes.
std::vector<uint32_t> Genere(const Cas& c, int w, int h, uint32_t graine) {
    std::mt19937 alea(graine);
    std::vector<uint32_t> v((size_t)w * (size_t)h);
    for (uint32_t& x : v)
        x = (uint32_t)alea() & c.masque;
    v.front() = c.masque;
    if (v.size() > 1) v.back() = 0;
    return v;
}

void PrepareEcriture(const Cas& c, int w, int h) {
    RestaureVariables();
    ChargeTextesUser();
    sizex = w, sizey = h, tilex = 16, tiley = 8, tilebase = 3, gfxmask = 0x3ff;
    for (const auto& [nom, texte] : {std::pair{"file", "source.bmp"},
                                     {"name", "essai_1"},
                                     {"link", "gfx\\essai.pal.c"},
                                     {"type", "short"}})
        MetTexteVariable(nom, texte);
    MetEntierVariable("size", c.genre == MOSAIQUE ? h : w * h);
    MetEntierVariable("memory", w * h * 2);
    MetEntierVariable("depth", c.profondeur);
}

std::string EcritDonnees(const Cas& c, const SectionFormat& s, const std::vector<uint32_t>& v, int w, int h) {
    return Ecrit([&](FILE* f) {
        EcritGabarit(s.declaration, f);
        if (c.genre == LIGNES)
            EcritValeursLignes(f, s, Element(s, c.element), v.data(), w, h);
        else if (c.genre == PALETTE)
            EcritValeursPalette(f, s, v.data(), w * h);
        else
            EcritValeursMosaique(f, s, v.data(), h, w, c.profondeur);
        EcritGabarit(s.end, f);
    });
}

struct Resultat {
    std::vector<uint32_t> valeurs;
    int32_t position = 0;
    bool horsBornes = false; // a position outside 0 .. size + 1
};

// Reads back in the writer's order: declaration, then every_x where the writer
// wrote it, each value, and line after each row or tile. Stops at the first
// position beyond the data.
Resultat LitDonnees(const TamponLecture& t, const Cas& c, const SectionFormat& s, int w, int h) {
    Resultat r;
    auto Suit = [&](int32_t p) {
        if (p < 0 || p > t.taille + 1) r.horsBornes = true;
        r.position = p;
        return p >= 0 && p <= t.taille;
    };
    auto Avant = [&](long v) {
        return s.n_every < 1 || v < 1 || v % s.n_every != 0 || Suit(LitGabarit(r.position, t, s.every_x));
    };
    if (!Suit(LitGabarit(0, t, s.declaration))) return r;
    const char* element = Element(s, c.element);
    int32_t lu = 0;
    if (c.genre == MOSAIQUE) {
        const int pas = c.profondeur == 4 ? 2 : 1;
        long numero = 0;
        for (int tuile = 0; tuile < h; ++tuile) {
            for (int i = 0; i < w; i += pas, ++numero) {
                if (!Avant(s.line[0] ? i : numero) || !Suit(LitValeur(r.position, t, element, lu))) return r;
                r.valeurs.push_back((uint32_t)lu & c.masque);
                if (pas == 2 && i + 1 < w) r.valeurs.push_back((uint32_t)lu >> 4 & 0xf);
            }
            if (!Suit(LitGabarit(r.position, t, s.line))) return r;
        }
        return r;
    }
    const bool colonne = c.genre == LIGNES && s.line[0];
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            if (!Avant(colonne ? x : (long)y * w + x) || !Suit(LitValeur(r.position, t, element, lu)))
                return r;
            r.valeurs.push_back((uint32_t)lu & c.masque);
        }
        if (c.genre == LIGNES && !Suit(LitGabarit(r.position, t, s.line))) return r;
    }
    return r;
}

const std::pair<int, int> Tailles[] = {{1, 1}, {2, 1}, {1, 3},  {3, 2},  {5, 17}, {7, 5},
                                       {8, 8}, {9, 4}, {12, 3}, {16, 2}, {24, 1}, {37, 23}};

} // namespace

TEST_F(Lecture, AllerRetourDeToutesLesSections) {
    std::vector<Cas> cas = TousLesCas();
    int fichiers = 0;
    for (size_t k = 0; k < cas.size(); ++k) {
        const Cas& c = cas[k];
        for (int variante = 0; variante < (c.autreLigne ? 2 : 1); ++variante) {
            for (int n : {c.section.n_every, 0, 1, 3, 8}) {
                SectionFormat s = c.section;
                s.n_every = n;
                if (variante == 1) s.line = c.autreLigne, s.end = c.autreFin;
                for (const auto& [w, h] : Tailles) {
                    SCOPED_TRACE(std::string(c.nom) + " line " + std::to_string(variante) + " n_every " +
                                 std::to_string(n) + " " + std::to_string(w) + "x" + std::to_string(h));
                    std::vector<uint32_t> valeurs =
                        Genere(c, w, h, (uint32_t)(k * 1000 + (size_t)(w * 37 + h)));
                    PrepareEcriture(c, w, h);
                    Donnees d(EcritDonnees(c, s, valeurs, w, h));
                    ++fichiers;

                    RestaureVariables();
                    ChargeTextesUser();
                    sizex = sizey = tilex = tiley = tilebase = 0;
                    gfxmask = -1;
                    TamponsTexte<32> b;
                    Resultat r = LitDonnees(d.t, c, s, w, h);
                    EXPECT_FALSE(r.horsBornes);
                    EXPECT_LE(r.position, d.t.taille);
                    EXPECT_EQ(r.valeurs, valeurs);
                    // What the declaration carries comes back.
                    const struct {
                        std::string nom;
                        int64_t lu, ecrit;
                    } lus[] = {{"sizex", sizex, w},
                               {"sizey", sizey, h},
                               {"tilex", tilex, 16},
                               {"tiley", tiley, 8},
                               {"size", ValeurVariable("size"), c.genre == MOSAIQUE ? h : w * h},
                               {"memory", ValeurVariable("memory"), w * h * 2},
                               {"depth", ValeurVariable("depth"), c.profondeur},
                               {"tilebase", tilebase, 3},
                               {"gfxmask", gfxmask, 0x3ff},
                               {"name", std::string(b.nom) == "essai_1", 1},
                               {"link", std::string(b.lien) == "gfx\\essai.pal.c", 1},
                               {"type", std::string(b.type) == "short", 1}};
                    const std::string porte = " " + std::string(c.variables) + " ";
                    for (const auto& v : lus)
                        EXPECT_TRUE(porte.find(" " + v.nom + " ") == std::string::npos || v.lu == v.ecrit)
                            << v.nom << " " << v.lu;
                    if (HasFailure()) return;
                }
            }
        }
    }
    EXPECT_GT(fichiers, 1500);
    EXPECT_TRUE(journal.messages.empty()) << journal.messages.front();
}

TEST_F(Lecture, DeclarationDeCarteAncienneEtNouvelle) {
    const SectionFormat& map = FormatCourant.sections[SECTION_MAP];
    sizex = 4, sizey = 3, tilex = tiley = 8, tilebase = 7, gfxmask = 0x1f;
    MetTexteVariable("link", "a.til.c");
    MetTexteVariable("name", "niveau");
    MetTexteVariable("type", "short");
    const std::string ecrit = Ecrit([&](FILE* f) { EcritGabarit(map.declaration, f); });
    ASSERT_NE(ecrit.find("(\"\",\"a.til.c\",7,1f)\r\n"), std::string::npos);
    ASSERT_NE(ecrit.find("octets\r\n\r\nconst unsigned short niveau_map[3][4]=\t{\r\n\t{"),
              std::string::npos);

    // An older file: no tile base and mask, and no blank line before "const".
    std::string ancien = ecrit;
    ancien.replace(ancien.find(",7,1f)"), 6, ")");
    ancien.replace(ancien.find("\r\n\r\nconst"), 4, "\r\n");

    const struct {
        const std::string* fichier;
        int tilebase, gfxmask;
    } attendus[] = {{&ecrit, 7, 0x1f}, {&ancien, 5, 0x3ff}};
    for (const auto& a : attendus) {
        RestaureVariables();
        sizex = sizey = 0;
        tilebase = 5; // the start values stand when the file has none
        gfxmask = 0x3ff;
        TamponsTexte<32> b;
        Donnees d(*a.fichier + "0x0001, ");
        EXPECT_EQ(LitGabarit(0, d.t, map.declaration), (int32_t)a.fichier->size());
        EXPECT_EQ(tilebase, a.tilebase);
        EXPECT_EQ(gfxmask, a.gfxmask);
        EXPECT_EQ(std::string(b.nom) + "|" + b.lien + "|" + b.type, "niveau|a.til.c|short");
        EXPECT_EQ(sizex * 10 + sizey, 43);
    }
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Lecture, GabaritsCasParticuliers) {
    const std::string differe = "[Debuging] The file format doesn't match with the expected one.";
    const std::string recupere = "[Debuging] Attempts to recover from a fatal reading error...";
    const struct {
        const char* gabarit;
        std::string donnees;
        int32_t retour;  // -1: the failure position
        const char* nom; // the name buffer afterwards
        int sizex;
        std::vector<std::string> messages;
    } cas[] = {
        // The condition looks at the text ahead and picks the branch.
        {"%+if<>c%\r\nc%+else%c%+endif%onst %name%;", "\r\nconst abc;x", 12, "abc", 0, {}},
        {"%+if<>c%\r\nc%+else%c%+endif%onst %name%;", "const abc;x", 10, "abc", 0, {}},
        {"%+if<>c%\r\nc%+else%c%+endif%onst %name%;", "xconst abc;x", -1, "avant", 0, {differe}},
        // Junk before the head is skipped.
        {"//%name%\r\n", "\xEF\xBB\xBFjunk / x//abc\r\nrest", 18, "abc", 0, {}},
        // A text field right before another field gets nothing.
        {"<%name%%sizex%>", "<12>x", 4, "avant", 12, {}},
        // A literal that differs, and a head found nowhere.
        {"%+if=X%XY%sizex%;", "XZ5;;", -1, "avant", 0, {differe}},
        {"AB%sizex%;", "AC5;;", -1, "avant", 0, {differe}},
        // A delimiter found nowhere: the first one of four characters or more
        // that is found ends the value; the fields between are lost.
        {"(%name%)/%sizey%/END!%sizex%.", "(abc/12/END!7.rest", 14, "abc/12", 7, {recupere}},
        // Recovery finds nothing: the value stays empty and the literal differs.
        {"(%name%)/%sizex%;", "(abc12;", -1, "avant", 0, {recupere, differe}},
        // A delimiter that ends right at the data's end counts as missing.
        {"<%name%>", "<abc>", 2, "avant", 0, {recupere}},
        // A template that ends inside a field.
        {"<%name", "<abc>", 1, "avant", 0, {}},
    };
    for (const auto& c : cas) {
        RestaureVariables();
        sizex = sizey = 0;
        char nom[32] = "avant";
        MetTamponVariable("name", nom, sizeof nom);
        journal.messages.clear();
        Donnees d(c.donnees);
        EXPECT_EQ(LitGabarit(0, d.t, c.gabarit), c.retour < 0 ? d.t.taille + 1 : c.retour) << c.gabarit;
        EXPECT_STREQ(nom, c.nom) << c.gabarit;
        EXPECT_EQ(sizex, c.sizex) << c.gabarit;
        EXPECT_EQ(sizey, 0) << c.gabarit; // the recovery loses it
        EXPECT_EQ(journal.messages, c.messages) << c.gabarit;
    }
}

TEST_F(Lecture, SilenceDesErreursDeLecture) {
    const char* gabarit = "(%name%)/%sizex%/END!%sizey%.";
    Donnees d("(abc/12/END!7.rest");
    EXPECT_EQ(LitGabarit(0, d.t, (std::string("%+noerror%") + gabarit).c_str()), 14);
    EXPECT_TRUE(journal.messages.empty());
    EXPECT_TRUE(SilenceLecture);
    // The switch lasts across calls until %+endnoerror%.
    EXPECT_EQ(LitGabarit(0, d.t, gabarit), 14);
    EXPECT_TRUE(journal.messages.empty());
    LitGabarit(0, d.t, "%+endnoerror%");
    EXPECT_FALSE(SilenceLecture);
    EXPECT_EQ(LitGabarit(0, d.t, gabarit), 14);
    EXPECT_EQ(journal.messages.size(), 1u);
}

TEST_F(Lecture, ChampsBinaires) {
    // With no literal behind, the bytes at the position; with one, the bytes up to it.
    const struct {
        const char* gabarit;
        std::string donnees;
        int32_t retour, size;
        std::vector<std::string> messages;
    } cas[] = {{"%#4size%", std::string("\x01\x02\x03\x04zz", 6), 4, 0x04030201, {}},
               {"%#2size%", "\xFE\xFF", 2, -2, {}},
               {"%#1size%", "\x80!", 1, -128, {}},
               {"%#4size%;;", std::string("\x05\x00\x00\x00;;tail", 10), 6, 5, {}},
               {"%#2size%;;", std::string("\x05\x01;;tail", 8), 4, 0x105, {}},
               {"%#3size%", "abcd", 3, 99, {"[Debuging] Binary tiping error"}}};
    for (const auto& c : cas) {
        RestaureVariables();
        MetEntierVariable("size", 99);
        journal.messages.clear();
        Donnees d(c.donnees);
        EXPECT_EQ(LitGabarit(0, d.t, c.gabarit), c.retour) << c.gabarit;
        EXPECT_EQ(ValeurVariable("size"), c.size) << c.gabarit;
        EXPECT_EQ(journal.messages, c.messages) << c.gabarit;
    }
}

TEST_F(Lecture, VariablesLues) {
    char nom[8] = "avant";
    MetTamponVariable("name", nom, sizeof nom);
    const struct {
        const char* champ;
        std::string valeur;
        int32_t sizex;
    } cas[] = {{"$sizex", "1f,", 31},
               {"$sizex", "0x10", 0},
               {"sizex", "  -12)", -12},
               {"#3sizex", "abc", 1},
               {"sizexx", "5", 1}}; // names compare exactly
    for (const auto& c : cas) {
        sizex = 1;
        LitVariable(c.champ, c.valeur.data(), c.valeur.size());
        EXPECT_EQ(sizex, c.sizex) << c.champ;
    }
    EXPECT_EQ(journal.messages, std::vector<std::string>{"[Debuging] Binary tiping error"});

    LitVariable("user[2]", "du fichier", 10);
    EXPECT_STREQ(TextesUser[2], "du fichier");
    LitVariable("name", "beaucoup trop long", 18); // cut to the buffer
    EXPECT_STREQ(nom, "beaucou");

    // A value of more than 999 characters is cut to 999.
    std::vector<char> grand(2000, 0);
    MetTamponVariable("name", grand.data(), grand.size());
    Donnees d("<" + std::string(1500, 'a') + ">tail");
    EXPECT_EQ(LitGabarit(0, d.t, "<%name%>"), 1502);
    EXPECT_EQ(strlen(grand.data()), 999u);
}

TEST_F(Lecture, ValeursParFormatDElement) {
    // The trailing blank that \b took back costs nothing. -1: the failure position.
    const struct {
        const char* format;
        std::string donnees;
        int32_t retour, resultat;
        bool message;
    } cas[] = {{"0x%04x, ", "0x001f,\r\n", 7, 31, false},
               {"0x%04x, ", "0x001f, 0x0002", 8, 31, false},
               {"0x%04x, ", "zz", -1, 77, false},
               {"%i,", "123,4", 4, 123, false},
               {"%X", "1Fa", 2, 31, false},
               {"%x", "1Fa", 1, 1, false},
               {"%2b", "\x34\x12", 2, 0x1234, false},
               {"%2b", "\xFE\xFF", 2, -2, false},
               {"%1b", "\x80", 1, -128, false},
               {"%4b", "\x04\x03\x02\x01", 4, 0x01020304, false},
               {"%4b", "ab", -1, 77, false},
               {"%3b", "abcd", 3, 77, true},
               {"%b", "abcd", -1, 77, true},
               {"%q!", "!", 1, 77, false},
               {"ab", "a", 1, 77, false}};
    for (const auto& c : cas) {
        journal.messages.clear();
        Donnees d(c.donnees);
        int32_t r = 77;
        EXPECT_EQ(LitValeur(0, d.t, c.format, r), c.retour < 0 ? d.t.taille + 1 : c.retour) << c.format;
        EXPECT_EQ(r, c.resultat) << c.format;
        EXPECT_EQ(journal.messages, c.message ? std::vector<std::string>{"[Debuging] Binary tiping error"}
                                              : std::vector<std::string>{})
            << c.format;
    }
    Donnees d("0x0001, ");
    int32_t r = 0;
    EXPECT_EQ(LitValeur(d.t.taille, d.t, "0x%04x, ", r), d.t.taille + 1);
    EXPECT_EQ(LitValeur(d.t.taille + 1, d.t, "0x%04x, ", r), d.t.taille + 1);
    EXPECT_EQ(LitGabarit(d.t.taille + 1, d.t, "0x"), d.t.taille + 1);
}

TEST_F(Lecture, ChargementDuTampon) {
    TamponLecture t;
    EXPECT_EQ(ChargeTampon("absent.c", t), 0);
    EcritFichier("petit.bin", std::string("a\0b\r\n", 5));
    ASSERT_EQ(ChargeTampon("petit.bin", t), 1);
    EXPECT_EQ(t.taille, 5);
    EXPECT_EQ(std::string(t.donnees, 6), std::string("a\0b\r\n\0", 6));
    // A longer file is cut at 8 MiB.
    EcritFichier("grand.bin", std::string((size_t)TAILLE_TAMPON_LECTURE + 10, 'x'));
    ASSERT_EQ(ChargeTampon("grand.bin", t), 1);
    EXPECT_EQ(t.taille, TAILLE_TAMPON_LECTURE);
    EXPECT_EQ(t.donnees[t.taille], 0);
    // Something that is not a regular file (a pipe here) is read in growing
    // steps, whole.
    ASSERT_EQ(mkfifo("tube", 0600), 0);
    std::string contenu(200003, 0);
    for (size_t i = 0; i < contenu.size(); ++i) contenu[i] = (char)('a' + i % 23);
    std::thread ecrivain([&] { EcritFichier("tube", contenu); });
    ASSERT_EQ(ChargeTampon("tube", t), 1);
    ecrivain.join();
    ASSERT_EQ(t.taille, (int32_t)contenu.size());
    EXPECT_EQ(std::string(t.donnees, t.taille), contenu);
    EXPECT_EQ(t.donnees[t.taille], 0);
    LibereTampon(t);
    EXPECT_EQ(t.donnees, nullptr);
}

// ---- Damaged input ------------------------------------------------------------------

namespace {

const std::string Alphabet = "0123456789abcdefxX,; {}()[]\"/\\%#*\r\n\t\b=+-_cst\xE9\xFF";

char Au(std::mt19937& alea) {
    return alea() % 4 ? Alphabet[alea() % Alphabet.size()] : (char)alea();
}

} // namespace

TEST_F(Lecture, FichiersAbimesSansDebordement) {
    std::vector<Cas> cas = TousLesCas();
    cas.erase(cas.begin() + 9, cas.end()); // the sections of "Standard"
    std::mt19937 alea(20240611);
    int lectures = 0;
    auto Lit = [&](const Cas& c, const std::string& fichier, int w, int h) {
        RestaureVariables();
        TamponsTexte<8> b;
        Donnees d(fichier);
        Resultat r = LitDonnees(d.t, c, c.section, w, h);
        ++lectures;
        EXPECT_FALSE(r.horsBornes) << c.nom << " " << testing::PrintToString(fichier);
        if (journal.messages.size() > 1000) journal.messages.clear();
    };
    for (const Cas& c : cas) {
        for (const auto& [w, h] : {std::pair{3, 2}, {9, 4}, {16, 3}}) {
            PrepareEcriture(c, w, h);
            const std::string fichier = EcritDonnees(c, c.section, Genere(c, w, h, alea()), w, h);
            for (int i = 0; i < 120; ++i)
                Lit(c, Abime(fichier, alea, Alphabet), w, h);
            for (size_t l = 0; l < fichier.size(); l += 1 + fichier.size() / 60)
                Lit(c, fichier.substr(0, l), w, h);
            if (HasFailure()) return;
        }
        for (int i = 0; i < 120; ++i) {
            std::string hasard;
            for (size_t l = alea() % 300; l; --l)
                hasard += Au(alea);
            Lit(c, hasard, 4, 3);
        }
    }
    EXPECT_GT(lectures, 5000);
}

TEST_F(Lecture, GabaritsAuHasardSansDebordement) {
    const char* morceaux[] = {"%name%",    "%sizex%",    "%$gfxmask%",    "%#2size%",  "%#3size%",
                              "%#4depth%", "%+if=,%",    "%+if<>c%",      "%+if?%",    "%+else%",
                              "%+end%",    "%+noerror%", "%+endnoerror%", "%user[2]%", "%%",
                              "\b",        "//",         "abcd",          "\r\n",      ",",
                              "0x",        ")",          "%nam"};
    const char* formats[] = {"0x", "%04x", "%i", "%X", "%2b", "%1b", "%4b",
                             "%b", "%3b",  ", ", ",",  "%q",  "%"};
    std::mt19937 alea(77);
    char nom[4];
    for (int i = 0; i < 3000; ++i) {
        std::string gabarit, format, donnees;
        for (int k = 1 + (int)(alea() % 8); k; --k)
            gabarit += morceaux[alea() % std::size(morceaux)];
        for (int k = 1 + (int)(alea() % 4); k; --k)
            format += formats[alea() % std::size(formats)];
        for (size_t l = alea() % 120; l; --l)
            donnees += Au(alea);
        RestaureVariables();
        MetTamponVariable("name", nom, sizeof nom);
        Donnees d(donnees);
        for (int32_t depart : {0, d.t.taille / 2, d.t.taille, d.t.taille + 1}) {
            int32_t p = LitGabarit(depart, d.t, gabarit.c_str());
            EXPECT_TRUE(p >= 0 && p <= d.t.taille + 1) << testing::PrintToString(gabarit) << " " << depart;
            int32_t v = 0;
            p = LitValeur(depart, d.t, format.c_str(), v);
            EXPECT_TRUE((p > depart || p == d.t.taille + 1) && p <= d.t.taille + 1)
                << testing::PrintToString(format) << " " << depart;
        }
        journal.messages.clear();
        if (HasFailure()) return;
    }
}
