#include "script/interpreteur.h"

#include "core/modeles.h"
#include "core/reglages.h"
#include "script/crochets.h"
#include "script/fonctions.h"
#include "tests/support/enregistreur.h"
#include "tests/support/scripts.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

namespace {

const std::string ERREUR = "[Macro execution error] ";

// What conv saw: its text, and the state of the run at that moment.
struct AppelConv {
    std::string texte;
    int32_t messages;
    bool selection;
};
std::vector<AppelConv> AppelsConv;
std::vector<std::string> Appels;

struct Interpreteur : ::testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages e;
    Interpreteur() {
        AppelsConv.clear();
        Appels.clear();
        CrochetsScript.conv = [](const char* texte) {
            AppelsConv.push_back({texte, messages, SelectionArbreActive});
        };
    }
    ~Interpreteur() override {
        CrochetsScript = CrochetsScriptParDefaut;
        Fonctions = FonctionsParDefaut;
    }
};

} // namespace

TEST(InterpreteurFichier, CheminVideOuAbsentDonneZero) {
    DossierTemporaire dossier;
    for (const char* chemin : {"", "absent.spt"}) {
        ResultatScript = 7;
        EXPECT_EQ(ExecuteFichierScript(chemin, nullptr), 0);
        EXPECT_EQ(ResultatScript, 1);
    }
}

TEST_F(Interpreteur, CasseCommentairesEtGuillemets) {
    Execute("SCRIPT = \"Mon Script.SPT\"\nEditeur.Timing = 0X1F\nConvert.Mode = HalfTone\n");
    EXPECT_STREQ(ScriptPrincipal, "Mon Script.SPT");
    EXPECT_EQ(ReglagesEdit.timing, 31);
    EXPECT_EQ(ReglagesConv.mode, 1);

    ReglagesEdit.timing = 10;
    Execute("script = \"a#b;c\"   # commentaire \"x\"\naideperso = 'd\"e;f' ; autre\ndirectory = *l'un#*\n"
            "# editeur.timing = 5\n   ; editeur.timing = 6\nediteur.grille = 1# coll\xE9\nconv \"a\\\"B #c\" "
            "D\n");
    EXPECT_STREQ(ScriptPrincipal, "a#b;c");
    EXPECT_STREQ(AideUtilisateur, "d\"e;f");
    EXPECT_STREQ(RepertoireNote, "l'un#");
    EXPECT_EQ(Editeur(), "t10 g1 a96 z0");
    EXPECT_TRUE(e.messages.empty());
    // A quote behind a backslash does not close: the case and the '#' behind it stay.
    ASSERT_EQ(AppelsConv.size(), 1u);
    EXPECT_EQ(AppelsConv[0].texte, "\"a\\\"B #c\" d");
}

TEST_F(Interpreteur, LignesLonguesEtFinsDeLigneCrLf) {
    // The first 999 characters are a comment; the rest runs as a line of its own.
    Execute("#" + std::string(998, 'x') + "editeur.timing = 7\n" + "editeur.grille = 1" +
            std::string(999 - 18, ' ') + "\n" + "editeur.alphagrille = 5\n");
    EXPECT_EQ(Editeur(), "t7 g1 a5 z0");
    ReglagesEdit = {};
    Execute("editeur.timing = 7\r\nscript = \"avec cr\"\r\ngoto plus bas\r\neditor.grid = 1\r\n"
            "plus bas:\r\neditor.alphagrid = 5\r\n");
    EXPECT_EQ(Editeur(), "t7 g0 a5 z0");
    EXPECT_STREQ(ScriptPrincipal, "avec cr");
    EXPECT_TRUE(e.messages.empty());
}

TEST_F(Interpreteur, FormesDeLaGrammaire) {
    for (const char* ligne : {"convert.nuances=5", "convert.nuances 5", "convert.nuances == 5",
                              "  convert . nuances\t=\t5", "convert.nuances=\t= 5 6"}) {
        ReglagesConv.nuances = 32;
        Execute(ligne);
        EXPECT_EQ(ReglagesConv.nuances, 5) << ligne;
    }
    // The index may stand behind the object or behind the member.
    for (const char* ligne :
         {"fonds.visible[3] = 0", "fonds[3].visible = 0", "maps [3] . visible 0", "fonds.visible[3]=0"}) {
        ReglagesPlans = ReglagesFonds{};
        Execute(ligne);
        for (int i = 0; i < NB_PLANS_MAX; ++i)
            EXPECT_EQ(ReglagesPlans.visible[i], i == 2 ? 0 : 1) << ligne;
    }
    // A later member replaces the earlier one; a dot within a member name is part of it.
    Execute("fonds.alphahex .alphagfx = 7");
    EXPECT_EQ(ReglagesPlans.alphaGfx, 7);
    EXPECT_EQ(ReglagesPlans.alphaHex, 96);
    EXPECT_TRUE(e.messages.empty());
    Execute("fonds.alphahex.alphagfx = 8");
    EXPECT_EQ(e.messages, std::vector<std::string>{
                              ERREUR + "The method alphahex.alphagfx of the object fonds doesn't exist."});
}

TEST_F(Interpreteur, IndiceCourantPourLesFonctions) {
    // A function of an indexed object gets the statement's index.
    Fonctions.fondsGrille = [](char* arguments) {
        Appels.push_back(std::to_string(IndiceCourant) + "|" + arguments);
    };
    Execute("fonds[2].grille 8, 8\nmaps.grid[5] = 16 4\nfonds.stepping 1\n");
    EXPECT_EQ(Appels, (std::vector<std::string>{"1|8, 8", "4|16 4", "0|1"}));
}

TEST_F(Interpreteur, MessagesDErreurExactsEtLeScriptContinue) {
    Execute("bidule = 1\nBidule.Truc[2] = 1\nconvert.bidule = 1\nconvert = 3\nfonds.visible[21] = 1\n"
            "fonds[0].visible = 1\nfonds.visible[0x80000000] = 1\ndeffolder[11] = \"x\"\nscript = abc\n"
            "deffolder[1] = abc\nsystem.directory 5\neditor.timing = 3\n");
    const char* const attendus[] = {
        "The object bidule doesn't exist.",
        "The object bidule doesn't exist.",
        "The method bidule of the object convert doesn't exist.",
        "The method  of the object convert doesn't exist.",
        "Table visible of object fonds.\nThe array index (21) is out of bounds.",
        "Table visible of object fonds.\nThe array index (0) is out of bounds.",
        "Table visible of object fonds.\nThe array index (-2147483648) is out of bounds.",
        "Table  of object deffolder.\nThe array index (11) is out of bounds.",
        "Object script.\nIt is missing arguments and/or their type is wrong.",
        "Object deffolder.\nIt is missing arguments and/or their type is wrong.",
        "Object system.\nIt is missing arguments and/or their type is wrong.",
    };
    ASSERT_EQ(e.messages.size(), std::size(attendus));
    for (size_t i = 0; i < e.messages.size(); ++i) {
        EXPECT_EQ(e.messages[i], ERREUR + attendus[i]);
        EXPECT_EQ(e.styles[i], BOITE_OK | ICONE_ARRET);
    }
    EXPECT_STREQ(ScriptPrincipal, "script.spt");
    EXPECT_EQ(ReglagesPlans.visible[0], 1);
    EXPECT_EQ(ReglagesEdit.timing, 3);
    EXPECT_EQ(FinScript, 0);
}

TEST_F(Interpreteur, LignesSansInstructionEtArgumentsAbsents) {
    ReglagesConv.precisionMax = 77;
    Execute(
        "\n   \t  \n# seul\n   ; seul\n=\n = = \nediteur.timing = -1\nconvert.precisionmax\nconv\nconv   \n");
    EXPECT_TRUE(e.messages.empty());
    EXPECT_EQ(ReglagesEdit.timing, 0);
    EXPECT_EQ(ReglagesConv.precisionMax, 0);
    ASSERT_EQ(AppelsConv.size(), 2u);
    EXPECT_EQ(AppelsConv[0].texte + AppelsConv[1].texte, "");
}

TEST_F(Interpreteur, EtiquettesEtGotoEnAvantSeulement) {
    // Labels are passed over when no search runs.
    Execute("editeur.timing = 3\netiquette:\n  _autre une :  # commentaire\nconvert.nuances = "
            "5:\neditor.grid = 1\n");
    EXPECT_EQ(Editeur(), "t3 g1 a96 z0");
    EXPECT_EQ(ReglagesConv.nuances, 32);

    ReglagesEdit = {};
    Execute("goto Plus Loin\neditor.timing = 3\n_plus loin:\neditor.grid = 1\n");
    EXPECT_EQ(Editeur(), "t10 g1 a96 z0");
    // A label above the statement is not found: the run ends quietly.
    Execute("haut:\neditor.alphagrid = 1\ngoto haut\neditor.timing = 3\n");
    EXPECT_EQ(Editeur(), "t10 g1 a1 z0");
    // The search goes on from the next line, so a second label below is found.
    Execute("haut:\ngoto haut\neditor.timing = 3\nhaut:\neditor.zeromask = 1\n");
    EXPECT_EQ(Editeur(), "t10 g1 a1 z1");
    EXPECT_TRUE(e.messages.empty());
    // The search does not outlive its run.
    EXPECT_STREQ(EtiquetteCherchee, "");
    Execute("editor.timing = 4\n");
    EXPECT_EQ(ReglagesEdit.timing, 4);
}

TEST_F(Interpreteur, FinRetourEtQuitteArretentLeScript) {
    const struct {
        const char* instruction;
        int fin;
        int resultat;
    } cas[] = {{"retour 5", 1, 5}, {"return 0x10", 1, 16}, {"retour", 1, 0}, {"fin", 1, 1},
               {"End", 1, 1},      {"quitte", 2, 1},       {"QUIT", 2, 1}};
    for (const auto& c : cas) {
        ReglagesEdit = ReglagesEditeur{};
        Execute(std::string("editor.grid = 1\n") + c.instruction + "\neditor.timing = 3\n");
        EXPECT_EQ(Editeur(), "t10 g1 a96 z0") << c.instruction;
        EXPECT_EQ(FinScript * 100 + ResultatScript, c.fin * 100 + c.resultat) << c.instruction;
    }
    // The next run starts afresh.
    Execute("editor.timing = 3\n");
    EXPECT_EQ(FinScript * 100 + ResultatScript, 1);
    EXPECT_EQ(ReglagesEdit.timing, 3);
}

TEST_F(Interpreteur, MessagesAZeroPendantLeScript) {
    EcritFichier("inclus.spt", "conv dedans\n");
    ASSERT_EQ(messages, 1);
    Execute("conv a\nmessages = 1\nconv b\nmessages = 0\ninclude \"inclus.spt\"\nconv apres\n");
    // Behind an include the run goes on as its end left it.
    std::string vus;
    for (const AppelConv& a : AppelsConv)
        vus += a.texte + ":" + std::to_string(a.messages) + (a.selection ? "s " : " ");
    EXPECT_EQ(vus, "a:0 b:1 dedans:0 apres:1s ");
    EXPECT_EQ(messages, 1);
    EXPECT_TRUE(SelectionArbreActive);
}

TEST_F(Interpreteur, MsgboxTexteEtTitre) {
    Execute("msgbox\nmsgbox \"Le Texte\", \"T1\", \"Le Titre\"\nmsgbox 'Seul'\nmsgbox \"Ab\" ,  *Titre*\n");
    const std::vector<std::string> attendus = {
        "[User message] Breakpoint defined here (MsgBox without argument).",
        "[Le Titre] Le Texte",
        "[User message] Seul",
        "[Titre] Ab",
    };
    EXPECT_EQ(e.messages, attendus);
    EXPECT_EQ(e.styles, std::vector<int>(4, BOITE_OKANNULER | ICONE_INFORMATION));
    EXPECT_EQ(FinScript, 0);
}

TEST_F(Interpreteur, MsgboxAnnulerAvecOuSansEtiquette) {
    const std::string script =
        "msgbox \"Continuer ?\" Sinon Goto Ailleurs\neditor.timing = 3\nailleurs:\neditor.grid = 1\n";
    Execute(script);
    EXPECT_EQ(Editeur(), "t3 g1 a96 z0");

    ReglagesEdit = ReglagesEditeur{};
    e.reponses = {REPONSE_ANNULER};
    Execute(script);
    EXPECT_EQ(Editeur(), "t10 g1 a96 z0");
    EXPECT_EQ(FinScript, 0);

    ReglagesEdit = ReglagesEditeur{};
    e.reponses = {REPONSE_ANNULER};
    Execute("msgbox \"Continuer ?\", \"Question\"\neditor.timing = 3\n");
    EXPECT_EQ(ReglagesEdit.timing, 10);
    EXPECT_EQ(FinScript, 1);
}

TEST_F(Interpreteur, IncludeExecuteLeFichier) {
    EcritFichier("court.spt", "editor.grid = 1\n");
    EcritFichier("arret.spt", "editor.alphagrid = 1\nfin\neditor.zeromask = 1\n");
    Execute("include \"court.spt\"\neditor.timing = 3\n");
    EXPECT_EQ(Editeur(), "t3 g1 a96 z0");
    // An inner fin ends the including run too.
    Execute("inclure 'arret.spt'\neditor.timing = 4\n");
    EXPECT_EQ(Editeur(), "t3 g1 a1 z0");
    EXPECT_TRUE(e.messages.empty());

    Execute("include court.spt\ninclude \"absent.spt\"\neditor.timing = 5\n");
    EXPECT_EQ(e.messages,
              (std::vector<std::string>{
                  ERREUR + "Function: include\nFilename incorrectly defined (don't forget quote marks)",
                  "[Unable to include this file] absent.spt"}));
    EXPECT_EQ(ReglagesEdit.timing, 5);
}

TEST_F(Interpreteur, IncludeLesBlocsLisentLeurPropreFichier) {
    EcritFichier("modele.spt", "defmodele \"Dedans\" {\n 1, 4, \"a\", \"b\"\n}\neditor.grid = 1\n");
    Execute("include \"modele.spt\"\ndefmodele \"Dehors\" {\n 2, 8, \"x\", \"y\"\n 1, 4, \"z\", \"\"\n}\n"
            "editor.timing = 3\n");
    EXPECT_TRUE(e.messages.empty());
    EXPECT_EQ(Editeur(), "t3 g1 a96 z0");
    ASSERT_EQ(NbModeles, 3);
    EXPECT_EQ(std::string(TableModeles[1].nom) + std::to_string(TableModeles[1].nbParametres) +
                  TableModeles[2].nom + std::to_string(TableModeles[2].nbParametres),
              "Dedans1Dehors2");
}

TEST_F(Interpreteur, IncludeDeSoiMemeSeTermine) {
    // Twice in itself: without a guard this would run 2^32 times. A file
    // already being included is refused, once per attempt.
    EcritFichier("soi.spt", "include \"soi.spt\"\ninclude \"soi.spt\"\neditor.grid = 1\n");
    ASSERT_EQ(ExecuteFichierScript("soi.spt", nullptr), 1);
    EXPECT_EQ(ReglagesEdit.grille, 1);
    EXPECT_EQ(FinScript, 0);
    EXPECT_EQ(e.messages, std::vector<std::string>(4, "[Unable to include this file] soi.spt"));
    // Two files that include each other end the same way.
    EcritFichier("a.spt", "include \"b.spt\"\n");
    EcritFichier("b.spt", "include \"a.spt\"\neditor.timing = 7\n");
    e.messages.clear();
    Execute("include \"a.spt\"\n");
    EXPECT_EQ(ReglagesEdit.timing, 7);
    EXPECT_EQ(e.messages, std::vector<std::string>{"[Unable to include this file] a.spt"});
}

TEST_F(Interpreteur, ExecLanceLaCommande) {
    PlateformeCourante.lanceCommande = [](const char* ligne) {
        Appels.push_back(ligne);
        return 1;
    };
    Execute("exec \"Notepad Lisez Moi.txt\"\nexec sansguillemets\neditor.timing = 3\n");
    EXPECT_EQ(Appels, std::vector<std::string>{"Notepad Lisez Moi.txt"});
    EXPECT_EQ(ReglagesEdit.timing, 3);
}
