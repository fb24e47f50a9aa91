// The editor's tools by numbers: the operation and condition language over
// a held pattern, in tables of texts and the cells they give, and "Blocks
// copy" over planes made in memory.
#include "tests/editor/editeur.h"
#include "tools/operations.h"

#include <string>
#include <vector>

namespace {

struct Outils : EditeurEssai {
    void SetUp() override {
        EditeurEssai::SetUp();
        ASSERT_TRUE(PrepareMotif());
    }
    // One plane's worth of pattern: a row of cells in slot 0.
    static void Motif1(const std::vector<int32_t>& cellules) {
        Motif.nbPlansMotif = 1;
        Motif.largeurMotif = (int)cellules.size();
        Motif.hauteurMotif = 1;
        for (size_t i = 0; i < cellules.size(); ++i) EmplacementMotif(0)[i] = (uint32_t)cellules[i];
    }
    static std::vector<int32_t> Lu(int emplacement = 0) {
        std::vector<int32_t> v;
        for (int i = 0; i < Motif.largeurMotif; ++i) v.push_back((int32_t)EmplacementMotif(emplacement)[i]);
        return v;
    }
};

const std::vector<int32_t> Rangee = {-2, -1, 0, 1, 2, 5, 9, 10, 11, 12, 13, 14, 0xFFFF, 100};

TEST_F(Outils, OperationsEtConditions) {
    // Each case against the same row; the expected cell by cell, worked out
    // from the rules (left to right, no precedence; 0xFFFF never touched).
    auto Chaque = [](auto f) {
        std::vector<int32_t> v;
        for (int32_t c : Rangee) v.push_back(c == 0xFFFF ? c : f(c));
        return v;
    };
    const struct {
        const char *operation, *condition;
        std::vector<int32_t> attendu;
    } cas[] = {
        {"+10", ">=10 and <=13", Chaque([](int32_t c) { return c >= 10 && c <= 13 ? c + 10 : c; })},
        {"=0", "<0", Chaque([](int32_t c) { return c < 0 ? 0 : c; })},
        {"+-5", "", Chaque([](int32_t c) { return c - 5; })}, // +0, then -5
        {"=7", ">=10 or =0 and <5", Chaque([](int32_t c) { return (c >= 10 || c == 0) && c < 5 ? 7 : c; })},
        {"&~3", "", Chaque([](int32_t c) { return c & ~3; })},
        {"=1", ">0 and &2", Chaque([](int32_t c) { return ((c > 0) & (c & 2)) ? 1 : c; })},
        {"=1", "&2 and &6", Chaque([](int32_t c) { return (c & 2 & (c & 6)) ? 1 : c; })},
        {"*2^0xff", "!5", Chaque([](int32_t c) { return c != 5 ? (int32_t)(((uint32_t)c * 2) ^ 0xff) : c; })},
        {"|0b100", "~4", Chaque([](int32_t c) { return (c & 4) == 0 ? c | 4 : c; })},
        {"%3", ">=1 and <=9", Chaque([](int32_t c) { return c >= 1 && c <= 9 ? c % 3 : c; })},
        {"/0", "", Rangee}, // division by 0 leaves the cell
        {"%0+1", "==9", Chaque([](int32_t c) { return c == 9 ? 10 : c; })},
        {"-1", "<=-1", Chaque([](int32_t c) { return c <= 0 ? c - 1 : c; })}, // "-1" reads as 0
        {"=~0", "=100", Chaque([](int32_t c) { return c == 100 ? -1 : c; })},
    };
    for (const auto& c : cas) {
        Motif1(Rangee);
        EXPECT_EQ(ExecuteOperations(c.operation, c.condition, false), 1) << c.operation << " " << c.condition;
        EXPECT_EQ(Lu(), c.attendu) << c.operation << " " << c.condition;
    }
    // Past the tenth operation nothing counts, nor past 999 characters.
    std::string longue;
    for (int i = 0; i < 600; ++i) longue += "+1";
    Motif1({0, 3});
    ExecuteOperations(longue.c_str(), "", false);
    EXPECT_EQ(Lu(), (std::vector<int32_t>{10, 13}));
    // A zero is left under zeromask.
    ReglagesEdit.masqueZero = 1;
    Motif1({0, 3});
    ExecuteOperations("+1", "", false);
    EXPECT_EQ(Lu(), (std::vector<int32_t>{0, 4}));
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Outils, EchecsDesOperations) {
    const std::string lien = "[Error during condition execution] Unknown test linker.\nValid links: and, or.\n"
                             "Example: >=10 and <=13";
    const std::string test = "[Error during condition execution] Unknown test to do.\nValid tests: =, <, <=, >=, >, "
                             "!=\nExample: >10";
    const std::string operateur = "[Error during operation execution] Unknown operator.\nValid operators: |, &, +, -, "
                                  "*, /, %, ^, =.\nExample: +10";
    const struct {
        const char *operation, *condition;
        std::string message;
        std::vector<int32_t> attendu;
    } cas[] = {
        {"+1", "<5 xor >2", lien, {1, 7, 2}},        // before any cell
        {"+1", "?5", test, {1, 7, 2}},               // at the first cell
        {"+1", ">1 and ?5", test, {1, 7, 2}},        // the first cell fails too: all tests run
        {"+1$2", "", operateur, {2, 7, 2}},          // the first cell had +1
        {"+1$2", ">5", operateur, {1, 8, 2}},        // the first cell that passes
        {"", "", operateur, {1, 7, 2}},              // the end of the text is an unknown operator
    };
    for (const auto& c : cas) {
        journal.messages.clear();
        Motif1({1, 7, 2});
        EXPECT_EQ(ExecuteOperations(c.operation, c.condition, false), 0) << c.operation << " " << c.condition;
        EXPECT_EQ(journal.messages, std::vector<std::string>{c.message}) << c.operation << " " << c.condition;
        EXPECT_EQ(Lu(), c.attendu) << c.operation << " " << c.condition;
    }
    // No pattern: nothing to do, and nothing said.
    journal.messages.clear();
    Motif.nbPlansMotif = 0;
    EXPECT_EQ(ExecuteOperations("$", "", false), 1);
    Motif.nbPlansMotif = 1;
    Motif.largeurMotif = 0;
    EXPECT_EQ(ExecuteOperations("$", "", false), 1);
    EXPECT_TRUE(journal.messages.empty());
}

// ---- Blocks copy ---------------------------------------------------------------------------------

struct CopieBlocs : Outils {
    // Three planes linked, the second a list, cells numbered y * 100 + x.
    void SetUp() override {
        Outils::SetUp();
        NbPlans = 3;
        for (int n = 0; n < 3; ++n) {
            Plan& p = Plans[n];
            p = Plan{};
            p.typePlan = n == 1 ? TYPE_LISTE : TYPE_CARTE;
            p.sizex = 10 + n;
            p.sizey = 6;
            p.tilex = p.tiley = p.baseX = p.baseY = 8;
            p.vitesseX = p.vitesseY = 1;
            if (n != 1) {
                p.cellules = (uint32_t*)malloc(sizeof(uint32_t) * (size_t)p.sizex * p.sizey);
                for (int i = 0; i < p.sizex * p.sizey; ++i) p.cellules[i] = (uint32_t)(i / p.sizex * 100 + i % p.sizex);
            }
            LiberePile(n);
        }
        PlanActif = 0;
        ReinitialiseDocument();
        const int tous[] = {1, 2, 3};
        LiePlans(tous, 3);
    }
    static uint32_t C(int plan, int x, int y) { return Plans[plan].cellules[(size_t)y * Plans[plan].sizex + x]; }
};

TEST_F(CopieBlocs, PrendreDeplacerRepeter) {
    // Take 2 x 2 at (1, 1) from the planes of the links; the list counts as a position.
    ASSERT_EQ(ExecuteCopieBlocs("1", "1", "2", "2", "", "", false), 1);
    EXPECT_EQ(Motif.nbPlansMotif, 3);
    EXPECT_EQ(std::pair(Motif.largeurMotif, Motif.hauteurMotif), std::pair(2, 2));
    EXPECT_EQ(EmplacementMotif(2)[COTE_MOTIF + 1], 202u);
    // Repeated over 5 x 3 at (4, 2): the left column again in the fifth, the top row in the third.
    ASSERT_EQ(ExecuteCopieBlocs("", "", "5", "3", "4", "2", false), 1);
    for (int plan : {0, 2})
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 5; ++x)
                EXPECT_EQ(C(plan, 4 + x, 2 + y), (uint32_t)((1 + y % 2) * 100 + 1 + x % 2)) << plan << " " << x << "," << y;
    EXPECT_EQ(Plans[1].cellules, nullptr); // the list is untouched
    // A move of 4 x 4 one cell to the right leaves a column of zeros.
    ASSERT_EQ(ExecuteCopieBlocs("0", "0", "4", "4", "1", "0", true), 1);
    for (int y = 0; y < 4; ++y) {
        EXPECT_EQ(C(0, 0, y), 0u);
        for (int x = 0; x < 4; ++x) EXPECT_EQ(C(0, 1 + x, y), (uint32_t)(y * 100 + x));
    }
    EXPECT_EQ(C(2, 0, 1), 100u); // the other plane stays under "only the active plane"
    // Undo takes the move back.
    AnnuleLies();
    EXPECT_EQ(C(0, 0, 1), 100u);
    // With "only the active plane", one plane takes part.
    ASSERT_EQ(ExecuteCopieBlocs("0", "0", "*", "*", "", "", true), 1);
    EXPECT_EQ(Motif.nbPlansMotif, 1);
    EXPECT_EQ(std::pair(Motif.largeurMotif, Motif.hauteurMotif), std::pair(10, 6)); // "*" up to the map's edge
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(CopieBlocs, RefusEtBornes) {
    EXPECT_EQ(ExecuteCopieBlocs("", "", "2", "2", "", "", false), 0);
    EXPECT_EQ(ExecuteCopieBlocs("3", "", "2", "2", "", "4", false), 0); // half a pair is no pair
    // Off the plane: nothing written, nothing broken.
    const std::vector<uint32_t> avant(Plans[0].cellules, Plans[0].cellules + 60);
    EXPECT_EQ(ExecuteCopieBlocs("2", "2", "3", "3", "50", "50", false), 1);
    EXPECT_EQ(std::vector<uint32_t>(Plans[0].cellules, Plans[0].cellules + 60), avant);
    // A map of 1024 cells a side: "*" from 0, 0 reaches the limit.
    Plan& p = Plans[0];
    free(p.cellules);
    p.sizex = p.sizey = 1024;
    p.cellules = (uint32_t*)calloc(1024 * 1024, 4);
    EXPECT_EQ(ExecuteCopieBlocs("0", "0", "*", "*", "", "", true), 0);
    EXPECT_EQ(journal.messages, (std::vector<std::string>{
                                    "[Error] The supplied informations are insufficient.",
                                    "[Error] The supplied informations are insufficient.",
                                    "[Please don't exagerate! ^^] The copy size is limited to 1024x1024...",
                                }));
}

} // namespace
