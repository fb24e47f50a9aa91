// The colour tables against their formula's known values, and the script
// statements that rebuild them.
#include "convert/couleurs.h"

#include "core/reglages.h"
#include "script/crochets.h"
#include "script/interpreteur.h"
#include "tests/support/enregistreur.h"
#include "tests/support/scripts.h"

#include <gtest/gtest.h>

namespace {

struct Couleurs : testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages journal;
    void SetUp() override { CrochetsScript.reconstruitTablesCouleur = ConstruitTablesCouleur; }
    // The values a table takes, without repeats, in order.
    static std::vector<int> Valeurs(const uint8_t* table) {
        std::vector<int> v;
        for (int i = 0; i < 256; ++i)
            if (v.empty() || v.back() != table[i]) v.push_back(table[i]);
        return v;
    }
};

} // namespace

TEST_F(Couleurs, SansEffetLaTableEstIDivisePar8) {
    ConstruitTablesCouleur();
    for (int i = 0; i < 256; ++i) {
        ASSERT_EQ(TableRouge[i], i / 8) << i;
        ASSERT_EQ(TableVerte[i], i / 8) << i;
        ASSERT_EQ(TableBleue[i], i / 8) << i;
    }
}

TEST_F(Couleurs, NuancesEtEffetsExtremes) {
    struct Cas {
        const char* script;
        std::vector<int> valeurs; // what the red table holds, in order
    };
    const Cas cas[] = {
        {"convert.nuances = 2\n", {0, 31}},
        {"convert.nuances = 1\n", {0}},
        {"convert.luminosite add=255\n", {31}},
        {"convert.luminosite alpha=255\n", {31}},
        {"convert.luminosite alpha=rgb(-255, 0, 0)\n", {0}},
        {"convert.luminosite gamma=0\n", {0, 31}}, // a gamma of 0 stays within the tables
    };
    for (const Cas& c : cas) {
        ReinitialiseReglages();
        Execute(c.script);
        EXPECT_EQ(Valeurs(TableRouge), c.valeurs) << c.script;
    }
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Couleurs, GammaEclaircitLesTonsMoyens) {
    Execute("convert.luminosite gamma=2\n");
    EXPECT_DOUBLE_EQ(ReglagesConv.gamma[0], 0.5);
    EXPECT_EQ(TableRouge[64], 16);
    EXPECT_EQ(TableRouge[0], 0);
    EXPECT_EQ(TableRouge[255], 31);
    // Blending towards black on green only, shades applied before.
    Execute("convert.luminosite alpha=rgb(0, -128, 0)\nconvert.nuancesavant = 1\n");
    EXPECT_EQ(TableRouge[64], 16);
    EXPECT_LT(TableVerte[255], 31);
    EXPECT_EQ(TableBleue[255], 31);
}
