#include "script/interpreteur.h"

#include "core/modeles.h"
#include "core/reglages.h"
#include "script/crochets.h"
#include "script/fonctions.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::string ERREUR = "[Macro execution error] ";

// Runs the text as a script file of the working directory.
void Execute(const std::string& texte) {
    EcritFichier("essai.spt", texte);
    ASSERT_EQ(ExecuteFichierScript("essai.spt", nullptr), 1);
}

// What conv saw: its text, and the state of the run at that moment.
struct AppelConv {
    std::string texte;
    int32_t messages;
    bool selection;
};
std::vector<AppelConv> AppelsConv;
void ConvEnregistre(const char* texte) {
    AppelsConv.push_back({texte, messages, SelectionArbreActive});
}

// A function of an indexed object: its arguments and the statement's index.
std::vector<std::string> AppelsIndexes;
void GrilleEnregistree(char* arguments) {
    AppelsIndexes.push_back(std::to_string(IndiceCourant) + "|" + arguments);
}

std::vector<std::string> Commandes;
int CommandeEnregistree(const char* ligne) {
    Commandes.push_back(ligne);
    return 1;
}

struct Interpreteur : ::testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages e;
    Interpreteur() {
        AppelsConv.clear();
        AppelsIndexes.clear();
        Commandes.clear();
    }
    ~Interpreteur() override {
        CrochetsScript = CrochetsScriptParDefaut;
        Fonctions = FonctionsParDefaut;
    }
};

} // namespace

TEST(InterpreteurFichier, CheminVideOuAbsentDonneZero) {
    DossierTemporaire dossier;
    ResultatScript = 7;
    EXPECT_EQ(ExecuteFichierScript("", nullptr), 0);
    EXPECT_EQ(ResultatScript, 1);
    ResultatScript = 7;
    EXPECT_EQ(ExecuteFichierScript("absent.spt", nullptr), 0);
    EXPECT_EQ(ResultatScript, 1);
}

TEST_F(Interpreteur, CasseCommentairesEtGuillemets) {
    CrochetsScript.conv = ConvEnregistre;
    Execute("SCRIPT = \"Mon Script.SPT\"\nEditeur.Timing = 0X1F\nConvert.Mode = HalfTone\n");
    EXPECT_STREQ(ScriptPrincipal, "Mon Script.SPT");
    EXPECT_EQ(ReglagesEdit.timing, 31);
    EXPECT_EQ(ReglagesConv.mode, 1);

    ReglagesEdit.timing = 10;
    Execute("script = \"a#b;c\"   # commentaire \"x\"\n"
            "aideperso = 'd\"e;f' ; autre\n"
            "directory = *l'un#*\n"
            "# editeur.timing = 5\n"
            "   ; editeur.timing = 6\n"
            "editeur.grille = 1# coll\xE9\n"
            "conv \"a\\\"B #c\" D\n");
    EXPECT_STREQ(ScriptPrincipal, "a#b;c");
    EXPECT_STREQ(AideUtilisateur, "d\"e;f");
    EXPECT_STREQ(RepertoireNote, "l'un#");
    EXPECT_EQ(ReglagesEdit.timing, 10);
    EXPECT_EQ(ReglagesEdit.grille, 1);
    EXPECT_TRUE(e.messages.empty());
    // A quote behind a backslash does not close: the case and the '#' behind it stay.
    ASSERT_EQ(AppelsConv.size(), 1u);
    EXPECT_EQ(AppelsConv[0].texte, "\"a\\\"B #c\" d");
}

TEST_F(Interpreteur, LigneTropLongueContinueCommeLigneSuivante) {
    // The first 999 characters are a comment; the rest runs as a line of its own.
    Execute("#" + std::string(998, 'x') + "editeur.timing = 7\n" + "editeur.grille = 1" +
            std::string(999 - 18, ' ') + "\n" + "editeur.alphagrille = 5\n");
    EXPECT_EQ(ReglagesEdit.timing, 7);
    EXPECT_EQ(ReglagesEdit.grille, 1);
    EXPECT_EQ(ReglagesEdit.alphaGrille, 5);
    EXPECT_TRUE(e.messages.empty());
}

TEST_F(Interpreteur, FinsDeLigneCrLf) {
    Execute("editeur.timing = 7\r\nscript = \"avec cr\"\r\ngoto plus bas\r\neditor.grid = 1\r\n"
            "plus bas:\r\neditor.alphagrid = 5\r\n");
    EXPECT_EQ(ReglagesEdit.timing, 7);
    EXPECT_STREQ(ScriptPrincipal, "avec cr");
    EXPECT_EQ(ReglagesEdit.grille, 0);
    EXPECT_EQ(ReglagesEdit.alphaGrille, 5);
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
    Fonctions.fondsGrille = GrilleEnregistree;
    Execute("fonds[2].grille 8, 8\nmaps.grid[5] = 16 4\nfonds.stepping 1\n");
    const std::vector<std::string> attendus = {"1|8, 8", "4|16 4", "0|1"};
    EXPECT_EQ(AppelsIndexes, attendus);
}

TEST_F(Interpreteur, MessagesDErreurExacts) {
    const struct {
        const char* ligne;
        const char* message;
    } cas[] = {
        {"bidule = 1", "The object bidule doesn't exist."},
        {"Bidule.Truc[2] = 1", "The object bidule doesn't exist."},
        {"convert.bidule = 1", "The method bidule of the object convert doesn't exist."},
        {"convert = 3", "The method  of the object convert doesn't exist."},
        {"fonds.visible[21] = 1", "Table visible of object fonds.\nThe array index (21) is out of bounds."},
        {"fonds[0].visible = 1", "Table visible of object fonds.\nThe array index (0) is out of bounds."},
        {"fonds.visible[0x80000000] = 1",
         "Table visible of object fonds.\nThe array index (-2147483648) is out of bounds."},
        {"deffolder[11] = \"x\"", "Table  of object deffolder.\nThe array index (11) is out of bounds."},
        {"script = abc", "Object script.\nIt is missing arguments and/or their type is wrong."},
        {"deffolder[1] = abc", "Object deffolder.\nIt is missing arguments and/or their type is wrong."},
        {"system.directory 5", "Object system.\nIt is missing arguments and/or their type is wrong."},
    };
    for (const auto& c : cas) {
        e.messages.clear();
        e.styles.clear();
        Execute(c.ligne);
        ASSERT_EQ(e.messages.size(), 1u) << c.ligne;
        EXPECT_EQ(e.messages[0], ERREUR + c.message);
        EXPECT_EQ(e.styles[0], BOITE_OK | ICONE_ARRET);
    }
    EXPECT_STREQ(ScriptPrincipal, "script.spt");
    EXPECT_EQ(ReglagesPlans.visible[0], 1);
}

TEST_F(Interpreteur, UneErreurNArretePasLeScript) {
    Execute(
        "bidule = 1\neditor.timing = 3\nconvert = 3\nfonds.visible[21] = 0\nscript = x\neditor.grid = 1\n");
    EXPECT_EQ(e.messages.size(), 4u);
    EXPECT_EQ(ReglagesEdit.timing, 3);
    EXPECT_EQ(ReglagesEdit.grille, 1);
    EXPECT_EQ(FinScript, 0);
}

TEST_F(Interpreteur, LignesSansInstructionEtArgumentsAbsents) {
    CrochetsScript.conv = ConvEnregistre;
    ReglagesConv.precisionMax = 77;
    Execute("\n   \t  \n# seul\n   ; seul\n=\n = = \n"
            "editeur.timing = -1\nconvert.precisionmax\nconv\nconv   \n");
    EXPECT_TRUE(e.messages.empty());
    EXPECT_EQ(ReglagesEdit.timing, 0);
    EXPECT_EQ(ReglagesConv.precisionMax, 0);
    ASSERT_EQ(AppelsConv.size(), 2u);
    EXPECT_EQ(AppelsConv[0].texte, "");
    EXPECT_EQ(AppelsConv[1].texte, "");
}

TEST_F(Interpreteur, EtiquettesPasseesHorsRecherche) {
    Execute("editeur.timing = 3\netiquette:\n  _autre une :  # commentaire\n"
            "convert.nuances = 5:\neditor.grid = 1\n");
    EXPECT_EQ(ReglagesEdit.timing, 3);
    EXPECT_EQ(ReglagesConv.nuances, 32);
    EXPECT_EQ(ReglagesEdit.grille, 1);
    EXPECT_TRUE(e.messages.empty());
}

TEST_F(Interpreteur, GotoEnAvantSeulement) {
    Execute("goto Plus Loin\neditor.timing = 3\n_plus loin:\neditor.grid = 1\n");
    EXPECT_EQ(ReglagesEdit.timing, 10);
    EXPECT_EQ(ReglagesEdit.grille, 1);

    // A label above the statement is not found: the run ends quietly.
    Execute("haut:\neditor.alphagrid = 1\ngoto haut\neditor.timing = 3\n");
    EXPECT_EQ(ReglagesEdit.alphaGrille, 1);
    EXPECT_EQ(ReglagesEdit.timing, 10);
    // The search goes on from the next line, so a second label below is found.
    Execute("haut:\ngoto haut\neditor.timing = 3\nhaut:\neditor.zeromask = 1\n");
    EXPECT_EQ(ReglagesEdit.timing, 10);
    EXPECT_EQ(ReglagesEdit.masqueZero, 1);
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
        EXPECT_EQ(ReglagesEdit.grille, 1) << c.instruction;
        EXPECT_EQ(ReglagesEdit.timing, 10) << c.instruction;
        EXPECT_EQ(FinScript, c.fin) << c.instruction;
        EXPECT_EQ(ResultatScript, c.resultat) << c.instruction;
    }
    // The next run starts afresh.
    Execute("editor.timing = 3\n");
    EXPECT_EQ(FinScript, 0);
    EXPECT_EQ(ResultatScript, 1);
    EXPECT_EQ(ReglagesEdit.timing, 3);
}

TEST_F(Interpreteur, MessagesAZeroPendantLeScript) {
    CrochetsScript.conv = ConvEnregistre;
    EcritFichier("inclus.spt", "conv dedans\n");
    ASSERT_EQ(messages, 1);
    Execute("conv a\nmessages = 1\nconv b\nmessages = 0\ninclude \"inclus.spt\"\nconv apres\n");
    ASSERT_EQ(AppelsConv.size(), 4u);
    EXPECT_EQ(AppelsConv[0].messages, 0);
    EXPECT_FALSE(AppelsConv[0].selection);
    EXPECT_EQ(AppelsConv[1].messages, 1);
    EXPECT_EQ(AppelsConv[2].texte, "dedans");
    EXPECT_EQ(AppelsConv[2].messages, 0);
    EXPECT_FALSE(AppelsConv[2].selection);
    // Behind an include the run goes on as its end left it.
    EXPECT_EQ(AppelsConv[3].messages, 1);
    EXPECT_TRUE(AppelsConv[3].selection);
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
    for (int style : e.styles)
        EXPECT_EQ(style, BOITE_OKANNULER | ICONE_INFORMATION);
    EXPECT_EQ(FinScript, 0);
}

TEST_F(Interpreteur, MsgboxAnnulerAvecOuSansEtiquette) {
    const std::string script =
        "msgbox \"Continuer ?\" Sinon Goto Ailleurs\neditor.timing = 3\nailleurs:\neditor.grid = 1\n";
    Execute(script);
    EXPECT_EQ(ReglagesEdit.timing, 3);
    EXPECT_EQ(ReglagesEdit.grille, 1);

    ReglagesEdit = ReglagesEditeur{};
    e.reponses = {REPONSE_ANNULER};
    Execute(script);
    EXPECT_EQ(ReglagesEdit.timing, 10);
    EXPECT_EQ(ReglagesEdit.grille, 1);
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
    EXPECT_EQ(ReglagesEdit.grille, 1);
    EXPECT_EQ(ReglagesEdit.timing, 3);

    // An inner fin ends the including run too.
    Execute("inclure 'arret.spt'\neditor.timing = 4\n");
    EXPECT_EQ(ReglagesEdit.alphaGrille, 1);
    EXPECT_EQ(ReglagesEdit.masqueZero, 0);
    EXPECT_EQ(ReglagesEdit.timing, 3);
    EXPECT_TRUE(e.messages.empty());
}

TEST_F(Interpreteur, IncludeLesBlocsLisentLeurPropreFichier) {
    EcritFichier("modele.spt", "defmodele \"Dedans\" {\n 1, 4, \"a\", \"b\"\n}\neditor.grid = 1\n");
    Execute("include \"modele.spt\"\ndefmodele \"Dehors\" {\n 2, 8, \"x\", \"y\"\n 1, 4, \"z\", \"\"\n}\n"
            "editor.timing = 3\n");
    EXPECT_TRUE(e.messages.empty());
    EXPECT_EQ(ReglagesEdit.grille, 1);
    EXPECT_EQ(ReglagesEdit.timing, 3);
    ASSERT_EQ(NbModeles, 3);
    EXPECT_STREQ(TableModeles[1].nom, "Dedans");
    EXPECT_EQ(TableModeles[1].nbParametres, 1);
    EXPECT_STREQ(TableModeles[2].nom, "Dehors");
    EXPECT_EQ(TableModeles[2].nbParametres, 2);
}

TEST_F(Interpreteur, IncludeEnErreur) {
    Execute("include court.spt\ninclude \"absent.spt\"\neditor.timing = 3\n");
    const std::vector<std::string> attendus = {
        ERREUR + "Function: include\nFilename incorrectly defined (don't forget quote marks)",
        "[Unable to include this file] absent.spt",
    };
    EXPECT_EQ(e.messages, attendus);
    EXPECT_EQ(ReglagesEdit.timing, 3);
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
    PlateformeCourante.lanceCommande = CommandeEnregistree;
    Execute("exec \"Notepad Lisez Moi.txt\"\nexec sansguillemets\neditor.timing = 3\n");
    EXPECT_EQ(Commandes, std::vector<std::string>{"Notepad Lisez Moi.txt"});
    EXPECT_EQ(ReglagesEdit.timing, 3);
}
