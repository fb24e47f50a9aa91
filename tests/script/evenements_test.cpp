#include "script/evenements.h"

#include "core/reglages.h"
#include "platform/texte.h"
#include "script/interpreteur.h"
#include "tests/support/enregistreur.h"
#include "tests/support/scripts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::string Menu(const std::vector<ElementMenu>& menu) {
    std::string s;
    for (const ElementMenu& m : menu)
        s += m.texte + "|" + std::to_string(m.commande) + (m.actif ? "" : "|off") + "\n";
    return s;
}

// The main script of the project, as a file of the working directory.
void ScriptDuProjet(const std::string& texte) {
    EcritFichier("principal.spt", texte);
    CopieBornee(ScriptPrincipal, "principal.spt");
}

const char* const PROCEDURES =
    "editor.timing = 1\n_Ma Procedure:\neditor.grid = 1\nfin\n"
    "  _Suite  Sans Fin :   # commentaire: oui\neditor.alphagrid = 7\n"
    "_derniere: ; autre\neditor.zeromask = 1\nonquit:\naideperso = \"c:/aide.htm\"\n";

struct Evenements : ::testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages e;
};

} // namespace

TEST_F(Evenements, MenuDesProcedures) {
    EcritFichier("proc.spt", PROCEDURES);
    std::vector<ElementMenu> menu;
    EXPECT_EQ(ConstruitMenuProcedures("proc.spt", menu), 3);
    EXPECT_EQ(Menu(menu), "Ma Procedure|16384\nSuite  Sans Fin |16385\nderniere|16386\n");

    // With none, one entry that says why, greyed.
    EXPECT_EQ(ConstruitMenuProcedures("", menu), 0);
    EXPECT_EQ(Menu(menu), "(No script specified)|16383|off\n");
    EXPECT_EQ(ConstruitMenuProcedures("absent.spt", menu), 0);
    EXPECT_EQ(Menu(menu), "(No script)|16383|off\n");
    EcritFichier("sans.spt", "onstart:\neditor.timing = 3\n# _cachee:\n");
    EXPECT_EQ(ConstruitMenuProcedures("sans.spt", menu), 0);
    EXPECT_EQ(Menu(menu), "(None)|16383|off\n");
}

TEST_F(Evenements, ChoisirUneProcedureExecuteSonEtiquette) {
    EcritFichier("proc.spt", PROCEDURES);
    std::vector<ElementMenu> menu;
    ASSERT_EQ(ConstruitMenuProcedures("proc.spt", menu), 3);
    ASSERT_EQ(ExecuteFichierScript("proc.spt", menu[0].texte.c_str()), 1);
    EXPECT_EQ(Editeur(), "t10 g1 a96 z0");
    // With no fin the procedure runs on into the next one.
    ReglagesEdit = ReglagesEditeur{};
    ASSERT_EQ(ExecuteFichierScript("proc.spt", menu[1].texte.c_str()), 1);
    EXPECT_EQ(Editeur(), "t10 g0 a7 z1");
    EXPECT_TRUE(e.messages.empty());
}

TEST_F(Evenements, CrochetOnquit) {
    ScriptDuProjet(
        "onstart:\neditor.timing = 3\nfin\nOnQuit:\neditor.grid = 1\nretour 0\neditor.alphagrid = 1\n");
    EXPECT_EQ(ExecuteEvenement("onquit"), 0);
    EXPECT_EQ(Editeur(), "t10 g1 a96 z0");
    // A label that the file does not hold, or no file: 1, and nothing runs.
    EXPECT_EQ(ExecuteEvenement("onsave carte"), 1);
    EXPECT_EQ(ReglagesEdit.timing, 10);
    for (const char* script : {"absent.spt", ""}) {
        CopieBornee(ScriptPrincipal, script);
        EXPECT_EQ(ExecuteEvenement("onquit"), 1);
    }
    EXPECT_TRUE(e.messages.empty());
}

TEST_F(Evenements, CrochetsOuvertureEtSauvegardeParNom) {
    ScriptDuProjet("onopen niveau1:\nretour 0\n_OnSave Carte A:\neditor.grid = 1\nfin\nonstart:\nquitte\n");
    EXPECT_EQ(EvenementOuverture("Niveau1"), 0);
    EXPECT_EQ(EvenementOuverture("Niveau2"), 1);
    EXPECT_EQ(EvenementSauvegarde("Carte A"), 1);
    EXPECT_EQ(ReglagesEdit.grille, 1);
    EXPECT_EQ(ExecuteEvenement("onstart"), 1);
    EXPECT_EQ(FinScript, 2);
}

TEST(NomScriptParams, DeuxiemePointDepuisLaFin) {
    const struct {
        const char* fichier;
        const char* attendu;
    } cas[] = {
        {"niveau.map.c", "niveau.map.spt"},
        {"niveau.c", "niveau.c.spt"},
        {"niveau", "niveau.spt"},
        {"cartes\\niveau.map.c", "cartes\\niveau.map.spt"},
        {"mes.cartes\\niveau.map.c", "mes.cartes\\niveau.map.spt"},
        // The second dot from the end may stand in a folder's name.
        {"mes.cartes\\niveau.c", "mes.cartes\\niveau.spt"},
        // The first character is not counted.
        {".niveau.c", ".niveau.c.spt"},
        {"a.b.c.d", "a.b.c.spt"},
    };
    for (const auto& c : cas) {
        char sortie[260];
        NomScriptParams(c.fichier, sortie, sizeof sortie);
        EXPECT_STREQ(sortie, c.attendu) << c.fichier;
    }
}
