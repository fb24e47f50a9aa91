#include "core/crochets.h"
#include "core/elements.h"
#include "core/modeles.h"
#include "core/projet.h"
#include "core/reglages.h"
#include "platform/texte.h"
#include "script/evenements.h"
#include "script/fonctions.h"
#include "script/interpreteur.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

const std::string DONNEES = "donn\xE9"
                            "es";

// The format named by the project, as the main window reports it once chosen.
const char* FormatNoteCourant() {
    return FormatNote[0] ? FormatNote : nullptr;
}

// The project's `infos` as the writer spells it, with every "if" line present.
std::string Infos(const std::string& nuances = "16") {
    return "\n#Useful informations about the last session\n .section infos\n"
           "  Directory = \"" +
           std::filesystem::current_path().string() +
           "\"\n"
           "  Script = \"jeu.spt\"\n  UserHelp = \"aide.htm\"\n"
           "\n  convert.couleurMasque = RGB(1,2,3)\n"
           "  convert.luminosite   GAMMA=RGB(2.000,2.000,2.000)  ADD=RGB(10.0,-20.0,127.5)  "
           "ALPHA=RGB(-5.0,0.0,30.0)\n"
           "  convert.mode = 2\n\n"
           "  system.sauverParamsMaps = false\n"
           "  system.sauverParamsMapsAuto = true\n"
           "  system.objetsMax = 300\n"
           "  editeur.Timing = 25\n"
           "  system.MemoireMax = 8 MB\n"
           "  system.selectionFormatAuto = false\n"
           "  convert.nuances = " +
           nuances +
           "\n"
           "  convert.nuancesAvant = true\n"
           "  convert.tronquer = true\n"
           "  convert.utilMaxCoul = true\n"
           "  convert.precisionMax = 64\n"
           "  DefFolder[2] = \"cartes\"\n"
           "  DefFolder[8] = \"mes listes\"\n"
           "  Format = \"Mon format\"\n\n"
           "  DefModele \"Default\"\t\t{\n  }\n\n"
           "  DefModele \"Ennemis\"\t\t{\n"
           "  \t1, 4, \"vitesse\", \"3\"\n"
           "  \t2, 8, \"nom \\\"x\\\"\", \"a\\\\b\"\n"
           "  }\n\n"
           "  Modele = \"Ennemis\"\n"
           "  Fin\n";
}

std::string Projet(const std::string& infos, const std::string& donnees) {
    return "#Fichier de projet Tessellarium\n" + infos +
           "\n#Project tree elements\n .section fichiers\n"
           " #--------------\n  El\xE9ment: fond\n  Type: carte\n  Fichier: fond.map.c\n  Base: fond.bmp\n"
           " Fin\n"
           "\n#Section where you can enter any script command. It permits you to set here different "
           "variables.\n"
           " .section " +
           DONNEES + "\n" + donnees;
}

// Loads a project and selects the model it names, as the main window's start-up does.
void Charge(const std::string& texte) {
    EcritFichier("projet.tsl", texte);
    ChargeProjet("projet.tsl");
    SelectionneModele(ModeleNote);
}

std::string Trois(const double (&v)[3]) {
    char s[96];
    FormateBorne(s, sizeof s, "%g,%g,%g", v[0], v[1], v[2]);
    return s;
}

struct ProjetScript : ::testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages e;
    ProjetScript() {
        InstalleInterpreteur();
        Crochets.nomFormatCourant = FormatNoteCourant;
    }
};

} // namespace

TEST_F(ProjetScript, InfosChargeesPuisReecritesALIdentique) {
    const std::string texte = Projet(Infos(), "  End\n\n\n\n");
    Charge(texte);
    EXPECT_TRUE(e.messages.empty());
    EXPECT_STREQ(ScriptPrincipal, "jeu.spt");
    EXPECT_STREQ(AideUtilisateur, "aide.htm");
    EXPECT_EQ(std::string(RepertoireNote), std::filesystem::current_path().string());
    const ReglagesConversion& c = ReglagesConv;
    EXPECT_EQ(c.masque[0], 1);
    EXPECT_EQ(c.masque[2], 3);
    EXPECT_EQ(Trois(c.gamma), "0.5,0.5,0.5");
    EXPECT_EQ(Trois(c.add), "10,-20,127.5");
    EXPECT_EQ(Trois(c.alpha), "-5,0,30");
    EXPECT_EQ(c.mode, 2);
    EXPECT_EQ(ReglagesSys.sauverParamsMaps, 0);
    EXPECT_EQ(ReglagesSys.sauverParamsMapsAuto, 1);
    EXPECT_EQ(ReglagesSys.objetsMax, 300);
    EXPECT_EQ(ReglagesEdit.timing, 25);
    EXPECT_EQ(ReglagesSys.memoireMax, 8389632u);
    EXPECT_EQ(ReglagesSys.selectionFormatAuto, 0);
    EXPECT_EQ(c.nuances, 16);
    EXPECT_EQ(c.nuancesAvant, 1);
    EXPECT_EQ(c.tronquer, 1);
    EXPECT_EQ(c.utilMaxCoul, 1);
    EXPECT_EQ(c.precisionMax, 64);
    EXPECT_STREQ(DossierDefaut[TYPE_CARTE], "cartes");
    EXPECT_STREQ(DossierDefaut[TYPE_LISTE], "mes listes");
    EXPECT_STREQ(FormatNote, "Mon format");
    ASSERT_EQ(NbModeles, 2);
    EXPECT_EQ(ModeleSelectionne, 1);
    EXPECT_EQ(TableModeles[1].nbParametres, 2);
    EXPECT_STREQ(TableModeles[1].noms[1], "nom \"x\"");
    EXPECT_STREQ(TableModeles[1].defauts[1], "a\\b");
    EXPECT_EQ(TableModeles[1].taille, 24);
    ASSERT_EQ(NbElements, 1);

    SauveProjet("copie.tsl");
    EXPECT_EQ(LitFichier("copie.tsl"), texte);
}

TEST_F(ProjetScript, DonneesPasseAvantInfosEtGardeSonTexte) {
    const std::string donnees = "  convert.nuances = 8\n"
                                "  End\n"
                                "  bidule = 3\n"
                                "  editor.timing = 77\n"
                                "# notes de l'utilisateur\n";
    Charge(Projet(Infos(), donnees));
    EXPECT_TRUE(e.messages.empty());
    EXPECT_EQ(ReglagesConv.nuances, 8);
    EXPECT_EQ(ReglagesEdit.timing, 25);

    SauveProjet("projet.tsl");
    const std::string sauve = LitFichier("projet.tsl");
    EXPECT_EQ(sauve, Projet(Infos("8"), donnees));
    ReinitialiseReglages();
    InitialiseModeles();
    Charge(sauve);
    EXPECT_TRUE(e.messages.empty());
    SauveProjet("projet.tsl");
    EXPECT_EQ(LitFichier("projet.tsl"), sauve);
}

TEST_F(ProjetScript, ProjetEditeEnUtf8) {
    const std::string latin1 =
        Projet(Infos(), "  convert.mode = tram\xE9\n  r\xE9pertoire = \"ici\"\n  dossierd\xE9"
                        "f[4] = \"m\"\n  End\n");
    std::string utf8 = latin1;
    for (size_t i = 0; (i = utf8.find('\xE9', i)) != std::string::npos; i += 2)
        utf8.replace(i, 1, "\xC3\xA9");
    // What the writer makes of each, up to the user's own section.
    std::string sauves[2];
    for (int n = 0; n < 2; ++n) {
        ReinitialiseReglages();
        InitialiseModeles();
        Charge(n == 0 ? latin1 : utf8);
        EXPECT_EQ(ReglagesConv.mode, 1);
        EXPECT_STREQ(RepertoireNote, "ici");
        EXPECT_STREQ(DossierDefaut[TYPE_MOSAIQUE], "m");
        EXPECT_EQ(NbElements, 1);
        SauveProjet("sauve.tsl");
        const std::string sauve = LitFichier("sauve.tsl");
        sauves[n] = sauve.substr(0, sauve.find(" .section donn"));
    }
    EXPECT_TRUE(e.messages.empty());
    EXPECT_EQ(sauves[1], sauves[0]);
}

// ---- Random and mutated scripts ----------------------------------------------------

namespace {

// A small generator of its own, so that the scripts are the same on every system.
struct Hasard {
    std::mt19937 g{20240611u};
    uint32_t operator()(uint32_t n) { return n ? (uint32_t)(g() % n) : 0; }
    template <size_t N> const char* Parmi(const char* const (&t)[N]) { return t[(*this)(N)]; }
};

std::vector<std::string> NomsDuDictionnaire() {
    std::vector<std::string> noms;
    for (int i = 0; i < DictionnairePrincipal.nombre; ++i) {
        const LigneDictionnaire& l = DictionnairePrincipal.lignes[i];
        noms.push_back(l.nom);
        if (l.genre == GENRE_OBJET)
            for (int j = 0; j < l.membres->nombre; ++j)
                noms.push_back(std::string(l.nom) + "." + l.membres->lignes[j].nom);
    }
    return noms;
}

// clang-format off
const char* const VALEURS[] = {
    "0", "1", "-1", "2", "0x7fffffff", "0xffffffff", "0b101", "99999999999", "rgb(255,0,254)", "RGB(1 2 3)",
    "rgb(", "\"texte\"", "'a\"b'", "*x*", "\"sans fin", "true", "false", "8 MB", "Max.", "5 GB", "gamma=2",
    "ADD=50%", "alpha=rgb(-1,2,3)", "gamma=0", "beta", "gamma=", "tram\xE9", "tram\xC3\xA9", "halftone",
    "\"a\\\\b\", 1, 0", "7, \"x\"", "8 8", "2.5", "-3", "", "{", "}", "\"f.spt\"", "\"absent.spt\"",
    "\"Ennemis\"", "\"Default\"", "sinon goto e1", "\"q\" sinon goto e2", "\"t\", \"u\", \"v\""};
const char* const INDICES[] = {"", "", "", "[1]", "[3]", "[0]", "[20]", "[21]", "[-2]", "[0x7fffffff]",
                               "[0x80000000]", "["};
const char* const SEPARATEURS[] = {" = ", "=", " ", " == ", "\t", " =\t= "};
const char* const PARTICULIERES[] = {
    "e1:", "_e2:", "goto e1", "goto e2", "goto absente", "fin", "retour 3", "quitte", "msgbox", "# commentaire",
    "; autre", "=", "   ", ":", "_:", "include \"f.spt\"", "include f.spt", "include \"autre.spt\"",
    "defmodele \"M\" {\n 1, 4, \"p\", \"d\"\n 2, 300, 'q', *r*\n}", "definemodel Sans {\n{\n 1 2\n}",
    "defmodele Oubli", "defmodele \"Grand\" {\n 2, 2147483647, 'a', 'b'\n 2, 99999999999, 'c', 'd'\n}",
    "defformat \"F\" {\n map {\n  ext = \".x\"\n }\n}", "defformat G {\n tileset {\n", "conv tset src=a.bmp",
    "liste.ajparam \"p\", 1, 0", "liste.ajparam \"g\", 2, 0x7fffffff", "liste.reinitparams",
    "selmodele \"M\"", "selmodele \"Nul\""};
// clang-format on
const char SALETES[] = "\"'*[](){}:#;=.,\\ \t\r\n_-0x\xE9\xC3\xA9";

std::string LigneAuHasard(Hasard& h, const std::vector<std::string>& noms) {
    if (h(4) == 0) return h.Parmi(PARTICULIERES);
    std::string ligne = noms[h((uint32_t)noms.size())];
    if (h(3) == 0) {
        size_t point = ligne.find('.');
        ligne.insert(point == std::string::npos ? ligne.size() : point, h.Parmi(INDICES));
    } else {
        ligne += h.Parmi(INDICES);
    }
    ligne += h.Parmi(SEPARATEURS);
    ligne += h.Parmi(VALEURS);
    if (h(8) == 0) ligne += std::string(h(1200), h(2) ? 'x' : ' ');
    if (h(10) == 0)
        for (char& c : ligne)
            if (c >= 'a' && c <= 'z') c = (char)(c - 'a' + 'A');
    return ligne;
}

void Mute(Hasard& h, std::string& s) {
    if (s.empty()) return;
    size_t i = h((uint32_t)s.size());
    switch (h(5)) {
    case 0:
        s[i] = SALETES[h(sizeof SALETES - 1)];
        break;
    case 1:
        s.insert(i, 1, SALETES[h(sizeof SALETES - 1)]);
        break;
    case 2:
        s.erase(i, 1 + h(8));
        break;
    case 3: {
        size_t debut = s.rfind('\n', i);
        debut = debut == std::string::npos ? 0 : debut + 1;
        size_t fin = s.find('\n', i);
        s.insert(debut, s.substr(debut, fin == std::string::npos ? std::string::npos : fin - debut + 1));
        break;
    }
    case 4:
        s[i] = (char)h(256);
        break;
    }
}

// An include of the file itself nests up to the interpreter's limit: with two
// of them a run would take 2^32 runs. Every include but the first is spoilt.
void UneSeuleInclusion(std::string& s) {
    std::string replie = s;
    for (char& c : replie)
        if (c >= 'A' && c <= 'Z') c = (char)(c - 'A' + 'a');
    size_t i = replie.find("inclu");
    while (i != std::string::npos && (i = replie.find("inclu", i + 1)) != std::string::npos)
        s[i] = 'x';
}

void VerifieEtat(const std::string& script) {
    ASSERT_GE(FinScript, 0) << script;
    ASSERT_LE(FinScript, 2) << script;
    ASSERT_EQ(messages, 1) << script;
    ASSERT_TRUE(SelectionArbreActive) << script;
    ASSERT_STREQ(EtiquetteCherchee, "") << script;
    ASSERT_EQ(FichierScriptCourant, nullptr) << script;
    ASSERT_GE(ReglagesSys.objetsMax, 3) << script;
    ASSERT_GE(ReglagesConv.nuances, 1) << script;
    ASSERT_GE(ReglagesConv.mode, 0) << script;
    ASSERT_LE(ReglagesConv.mode, 2) << script;
    for (uint8_t z : ReglagesConv.zero)
        ASSERT_LE(z, 31) << script;
    ASSERT_GT(ReglagesEdit.zoom, 0.0) << script;
    ASSERT_GE(NbModeles, 1) << script;
    ASSERT_LE(NbModeles, NB_MODELES_MAX) << script;
    ASSERT_GE(ModeleSelectionne, 0) << script;
    ASSERT_LT(ModeleSelectionne, NbModeles) << script;
    for (int m = 0; m < NbModeles; ++m) {
        const ModeleParametres& modele = TableModeles[m];
        ASSERT_LT(strlen(modele.nom), sizeof modele.nom) << script;
        ASSERT_GE(modele.nbParametres, 0) << script;
        ASSERT_LE(modele.nbParametres, NB_PARAMETRES_MAX) << script;
        ASSERT_EQ(modele.taille, TailleModele(modele)) << script;
    }
    ASSERT_LT(strlen(ScriptPrincipal), sizeof ScriptPrincipal) << script;
    for (const char* d : DossierDefaut)
        ASSERT_LT(strnlen(d, TAILLE_DOSSIER_DEFAUT), (size_t)TAILLE_DOSSIER_DEFAUT);
}

} // namespace

TEST_F(ProjetScript, ScriptsAuHasardEtMutes) {
    const std::vector<std::string> noms = NomsDuDictionnaire();
    ASSERT_GT(noms.size(), 150u);
    // A valid script to mutate: a project's own lines without their Fin, labels and blocks.
    std::string base = Infos();
    base.erase(base.rfind("  Fin\n"));
    base += "e1:\nmsgbox \"q\", \"t\" sinon goto e2\n_e2:\n"
            "defformat \"F\" {\n map {\n  ext = \".x\"\n }\n}\n"
            "fonds[2].visible = 0\nliste.ajparam \"p\", 1, 0\ngoto e3\nbidule\ne3:\n";
    EcritFichier("autre.spt", "editor.timing = 3\ninclude \"f.spt\"\n");
    Hasard h;
    for (int n = 0; n < 3000; ++n) {
        std::string script;
        if (n % 2 == 0) {
            script = base;
            for (uint32_t k = 1 + h(6); k > 0; --k)
                Mute(h, script);
        } else {
            for (uint32_t k = 1 + h(25); k > 0; --k)
                script += LigneAuHasard(h, noms) + (h(12) ? "\n" : "\r\n");
        }
        UneSeuleInclusion(script);
        EcritFichier("f.spt", script);
        e.messages.clear();
        e.styles.clear();
        e.reponses.clear();
        if (h(3) == 0) e.reponses = {REPONSE_ANNULER, REPONSE_OK, REPONSE_ANNULER};
        const char* etiquette = h(4) == 0 ? (h(2) ? "e1" : "E2") : nullptr;
        ASSERT_EQ(ExecuteFichierScript("f.spt", etiquette), 1);
        VerifieEtat(script);

        std::vector<ElementMenu> menu;
        int procedures = ConstruitMenuProcedures("f.spt", menu);
        ASSERT_EQ(menu.size(), procedures ? (size_t)procedures : 1u);
        for (int i = 0; i < procedures; ++i)
            ASSERT_EQ(menu[i].commande, COMMANDE_PROCEDURE_PREMIERE + i);

        if (n % 500 == 499) {
            // Start again from the defaults now and then, so that a full model table does not hide the
            // blocks.
            ReinitialiseReglages();
            InitialiseModeles();
        }
    }
}
