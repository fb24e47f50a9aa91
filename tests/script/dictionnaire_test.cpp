#include "core/arbre.h"
#include "core/elements.h"
#include "core/modeles.h"
#include "core/reglages.h"
#include "platform/texte.h"
#include "script/crochets.h"
#include "script/fonctions.h"
#include "script/interpreteur.h"
#include "tests/support/enregistreur.h"
#include "tests/support/scripts.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

const std::string ERREUR = "[Macro execution error] ";
const std::string BITS_HORS_LIMITES =
    "[Debuging] Bits renaming: the specified bit number is out of range (valid values are 8 to 15).";

// A pair of statements, French and English, and the setting both must reach
// (the names that other tests use in both languages are left out):
// 'i' an integer, 't' a text, 'c' three colour bytes, 'r' three doubles, 'd' a double.
struct Paire {
    const char* francais;
    const char* anglais;
    const void* reglage;
    const char* attendu;
    char genre = 'i';
};

std::string Lit(const Paire& p) {
    const void* r = p.reglage;
    return p.genre == 't'   ? std::string((const char*)r)
           : p.genre == 'c' ? Texte(*(const uint8_t(*)[3])r)
           : p.genre == 'r' ? Texte(*(const double(*)[3])r)
           : p.genre == 'd' ? std::to_string(*(const double*)r)
                            : std::to_string(*(const int*)r);
}

const Paire Paires[] = {
    {"fonds.alphapremplan = 7", "maps.alphaforeground = 7", &ReglagesPlans.alphaPremierPlan, "7"},
    {"fonds.proprepalette = 0", "maps.multipalettes = 0", &ReglagesPlans.proprePalette, "0"},
    {"fonds.transparence = 1", "maps.transparency = 1", &ReglagesPlans.transparence, "1"},
    {"fonds.alphahex = 3", "maps.alphahex = 3", &ReglagesPlans.alphaHex, "3"},
    {"fonds.alphagfx = 4", "maps.alphagfx = 4", &ReglagesPlans.alphaGfx, "4"},
    {"fonds.visible[20] = 0", "maps[20].visible = 0", &ReglagesPlans.visible[19], "0"},
    {"modehexa.actif = 1", "modehexa.enabled = 1", &ReglagesHexa.actif, "1"},
    {"modehexa.comblezeros = 1", "modehexa.fillzeros = 1", &ReglagesHexa.combleZeros, "1"},
    {"modehexa.fondactif = 0", "modehexa.activemap = 0", &ReglagesHexa.fondActif, "0"},
    {"r\xE9pertoire = \"D\"", "directory = \"D\"", RepertoireNote, "D", 't'},
    {"system.r\xE9pertoire = \"D\"", "system.directory = \"D\"", RepertoireNote, "D", 't'},
    {"aideperso = \"a.htm\"", "userhelp = \"a.htm\"", AideUtilisateur, "a.htm", 't'},
    {"system.objetsmax = 100", "system.maxobjects = 100", &ReglagesSys.objetsMax, "100"},
    {"system.sauverparamsmaps = faux", "system.savemapsparams = false", &ReglagesSys.sauverParamsMaps, "0"},
    {"system.sauverparamsmapsauto = vrai", "system.savemapsparamsauto = true",
     &ReglagesSys.sauverParamsMapsAuto, "1"},
    {"system.memoiremax = 8 MB", "system.maxmemory = 8 MB", &ReglagesSys.memoireMax, "8389632"},
    {"system.selectionformatauto = 0", "system.autoformatselection = 0", &ReglagesSys.selectionFormatAuto,
     "0"},
    {"convert.couleurzero = rgb(8,16,255)", "convert.zerocolor = rgb(8,16,255)", ReglagesConv.zero, "1,2,31",
     'c'},
    {"convert.utilmaxcoul = 1", "convert.usemaxcolors = 1", &ReglagesConv.utilMaxCoul, "1"},
    {"convert.luminosite add=3", "convert.lighting add=3", ReglagesConv.add, "3,3,3", 'r'},
    {"effets alpha=3", "effects alpha=3", ReglagesConv.alpha, "3,3,3", 'r'},
    {"convert.precisionmax = 64", "convert.maxprecision = 64", &ReglagesConv.precisionMax, "64"},
    {"convert.tilex = 16", "convert.tilex = 0x10", &tilex, "16"},
    {"convert.tiley = 32", "convert.tiley 32", &tiley, "32"},
    {"editeur.popupinfos = 0", "editor.popupinfos = 0", &ReglagesEdit.popupInfos, "0"},
    {"editeur.tempspopup = 5", "editor.popuptime = 5", &ReglagesEdit.tempsPopup, "5"},
    {"editeur.blocinvisible = 7", "editor.invisibleblock = 7", &ReglagesEdit.blocInvisible, "7"},
    {"editeur.zoomprecis = 1", "editor.precisezoom = 1", &ReglagesEdit.zoomPrecis, "1"},
    {"editeur.couleurgrille = 0x102030", "editor.gridcolor = 0x102030", &ReglagesEdit.couleurGrille,
     "1056816"},
    {"editeur.masquezero = 1", "editor.zeromask = 1", &ReglagesEdit.masqueZero, "1"},
    {"dossiers.cartes = \"c\"", "folders.maps = \"c\"", DossierDefaut[TYPE_CARTE], "c", 't'},
    {"dossiers.mosaiques = \"m\"", "folders.tilesets = \"m\"", DossierDefaut[TYPE_MOSAIQUE], "m", 't'},
    {"dossiers.listes = \"l\"", "folders.lists = \"l\"", DossierDefaut[TYPE_LISTE], "l", 't'},
    {"dossiers.bitmaps8 = \"b\"", "folders.bitmaps8 = \"b\"", DossierDefaut[TYPE_BITMAP8], "b", 't'},
    {"dossiers.bitmaps16 = \"b\"", "folders.bitmaps16 = \"b\"", DossierDefaut[TYPE_BITMAP16], "b", 't'},
    {"dossiers.palettes = \"p\"", "folders.palettes = \"p\"", DossierDefaut[TYPE_PALETTE], "p", 't'},
    {"dossiers.dossier[7] = \"d\"", "folders[7].folder = \"d\"", DossierDefaut[6], "d", 't'},
    {"dossierd\xE9"
     "f[10] = \"d\"",
     "deffolder[10] = \"d\"", DossierDefaut[9], "d", 't'},
    // Index 2 is the type 1: the same folder as dossiers.cartes.
    {"deffolder[2] = \"cartes\"", "folders.dossier[2] = \"cartes\"", DossierDefaut[TYPE_CARTE], "cartes",
     't'},
    {"bits.masquezero = 0", "bits.zeromask = 0", &ReglagesEdit.bitsMasqueZero, "0"},
};

// A model as one text: name{kind size name default;...}record size.
std::string Decrit(const ModeleParametres& m) {
    std::string s = std::string(m.nom) + "{";
    for (int i = 0; i < m.nbParametres; ++i)
        s += std::to_string(m.genres[i]) + " " + std::to_string(m.tailles[i]) + " " + m.noms[i] + " " +
             m.defauts[i] + ";";
    return s + "}" + std::to_string(m.taille);
}

int Reconstructions = 0;
std::vector<std::string> Appels;
void Note(const std::string& appel) {
    Appels.push_back(appel);
}
std::string N(int n) {
    return std::to_string(n);
}

// A form with every control but CONTROLE_TEXTE_05, whose combo boxes hold "32x32" only.
const OperationsFormulaire FormulaireEnregistre = {
    [](int racine) { Note("racine|" + N(racine)); },
    [](int controle) { return (int)(controle != CONTROLE_TEXTE_05); },
    [](int controle, const char* texte) { Note("texte|" + N(controle) + "|" + texte); },
    [](int controle, int etat) { Note("coche|" + N(controle) + "|" + N(etat)); },
    [](int controle, const char* texte) {
        Note("combo|" + N(controle) + "|" + texte);
        return (int)(std::string(texte) == "32x32");
    },
    [] { Note("ok"); },
    [](int montre) { Note("visible|" + N(montre)); }};

struct Dictionnaire : ::testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages e;
    Dictionnaire() {
        Appels.clear();
        Reconstructions = 0;
    }
    ~Dictionnaire() override {
        CrochetsScript = CrochetsScriptParDefaut;
        CrochetsFormulaire = FormulaireAbsent;
    }
};

} // namespace

TEST_F(Dictionnaire, PairesFrancaisAnglais) {
    for (const Paire& p : Paires) {
        for (const char* ligne : {p.francais, p.anglais}) {
            ReinitialiseReglages();
            ASSERT_NE(Lit(p), p.attendu) << "default of " << ligne;
            Execute(ligne);
            EXPECT_EQ(Lit(p), p.attendu) << ligne;
        }
    }
    EXPECT_TRUE(e.messages.empty());
}

TEST_F(Dictionnaire, AccentsEnUtf8CommeEnLatin1) {
    Execute("dossierd\xC3\xA9"
            "f[2] = \"u\"\nr\xC3\xA9pertoire = \"r\"\nconvert.mode = tram\xC3\xA9\n");
    EXPECT_STREQ(DossierDefaut[TYPE_CARTE], "u");
    EXPECT_STREQ(RepertoireNote, "r");
    EXPECT_EQ(ReglagesConv.mode, 1);
    Execute("system.r\xC3\xA9pertoire = \"s\"\n");
    EXPECT_STREQ(RepertoireNote, "s");
    EXPECT_TRUE(e.messages.empty());
}

TEST_F(Dictionnaire, SystemeObjetsMemoireEtEmulGba) {
    const struct {
        const char* valeur;
        int attendu;
    } objets[] = {{"2", 3}, {"0", 3}, {"-5", 3}, {"3", 3}, {"4", 4}, {"5000", 5000}};
    for (const auto& c : objets) {
        Execute(std::string("system.objetsmax = ") + c.valeur);
        EXPECT_EQ(ReglagesSys.objetsMax, c.attendu) << c.valeur;
    }
    Execute("system.memoiremax = Max.");
    EXPECT_EQ(ReglagesSys.memoireMax, 0u);
    EXPECT_TRUE(e.messages.empty());
    Execute("system.emulgba 1");
    EXPECT_EQ(e.messages,
              std::vector<std::string>{
                  "[Error] System.emulGBA is not available anymore. Please use Maps[x].emulGBA instead"});
}

TEST_F(Dictionnaire, CouleurMasqueEnMajuscules) {
    ReglagesConv.masque[1] = 7;
    Execute("convert.couleurMasque = RGB(255,0,254)");
    EXPECT_EQ(Texte(ReglagesConv.masque), "255,0,254");
    Execute("convert.maskcolor = 0x0a0b0c");
    EXPECT_EQ(Texte(ReglagesConv.masque), "12,11,10");
}

TEST_F(Dictionnaire, ModeParChiffreOuParMot) {
    const struct {
        const char* valeur;
        int attendu;
    } cas[] = {{"2", 2},       {"0", 0},        {"1", 1},        {"normal", 0},  {"initial", 0},
               {"optimal", 2}, {"meilleur", 2}, {"HalfTone", 1}, {"TRAM\xE9", 1}};
    for (const auto& c : cas) {
        ReglagesConv.mode = c.attendu == 1 ? METHODE_NORMALE : METHODE_TRAMEE;
        Execute(std::string("convert.mode = ") + c.valeur);
        EXPECT_EQ(ReglagesConv.mode, c.attendu) << c.valeur;
    }
    EXPECT_TRUE(e.messages.empty());
    for (const std::string inconnu : {"3", "bidule", "1 2", "tram\xC9"}) {
        e.messages.clear();
        ReglagesConv.mode = METHODE_OPTIMALE;
        Execute("convert.quantization = " + inconnu);
        EXPECT_EQ(ReglagesConv.mode, 2) << inconnu;
        EXPECT_EQ(e.messages,
                  std::vector<std::string>{
                      "[Macro execution error] The following color quantization method was not found: " + inconnu});
    }
}

TEST_F(Dictionnaire, LuminositeFormesEtErreurs) {
    auto Effets = [] {
        return Texte(ReglagesConv.gamma) + " " + Texte(ReglagesConv.add) + " " + Texte(ReglagesConv.alpha);
    };
    Execute("convert.luminosite gamma=2");
    EXPECT_EQ(Effets(), "0.5,0.5,0.5 0,0,0 0,0,0");
    Execute("convert.luminosite ADD=50%");
    EXPECT_EQ(Effets(), "0.5,0.5,0.5 127.5,127.5,127.5 0,0,0");
    Execute("convert.luminosite alpha = rgb( -10, 20 30)   gamma RGB(1,2,4)");
    EXPECT_EQ(Effets(), "1,0.5,0.25 127.5,127.5,127.5 -10,20,30");
    // The project's own line.
    Execute(
        "convert.luminosite   GAMMA=RGB(2.000,4.000,0.500)  ADD=RGB(1.0,-2.0,3.5)  ALPHA=RGB(0.0,5.0,6.0)");
    EXPECT_EQ(Effets(), "0.5,0.25,2 1,-2,3.5 0,5,6");
    EXPECT_TRUE(e.messages.empty());

    // Items before an unknown one keep their effect.
    Execute("convert.luminosite add=7 beta=2 alpha=9");
    EXPECT_EQ(Effets(), "0.5,0.25,2 7,7,7 0,5,6");
    EXPECT_EQ(e.messages,
              std::vector<std::string>{"[Erreur d'ex\xE9"
                                       "cution de macro] Dans la fonction de convert.luminosite: le "
                                       "param\xE8tre \xE0 r\xE9gler n'est pas connu.\nExemple: "
                                       "convert.luminosite GAMMA=RGB(1.0,1.3,1.0)"});

    // The message names the text that could not be read.
    for (const std::string faute : {"gamma=abc", "add=rgb(1,abc", "alpha=.5"}) {
        e.messages.clear();
        Execute("convert.luminosite " + faute);
        const std::string fin = faute.substr(faute.find_last_of("=,") + 1);
        EXPECT_EQ(e.messages,
                  std::vector<std::string>{ERREUR + "Color effects system error, parsing: " + fin});
    }
    EXPECT_EQ(Effets(), "0.5,0.25,2 7,7,7 0,5,6");
}

TEST_F(Dictionnaire, TablesDeCouleurReconstruites) {
    CrochetsScript.reconstruitTablesCouleur = [] { ++Reconstructions; };
    const char* lignes[] = {"convert.luminosite",       "convert.lighting gamma=1", "effets add=0",
                            "effects alpha=0",          "convert.nuances = 8",      "convert.shades 4",
                            "convert.nuancesavant = 1", "convert.shadesbefore 0",   "convert.tronquer = 1",
                            "convert.truncate = 0",     "convert.luminosite beta"};
    int attendu = 0;
    for (const char* ligne : lignes) {
        Execute(ligne);
        EXPECT_EQ(Reconstructions, ++attendu) << ligne;
    }
    EXPECT_EQ(ReglagesConv.nuances * 100 + ReglagesConv.nuancesAvant * 10 + ReglagesConv.tronquer, 400);
    EXPECT_EQ(Texte(ReglagesConv.gamma), "1,1,1");
}

TEST_F(Dictionnaire, BitsEtZoomDeLEditeur) {
    Execute("bits[1].bittext 7, \"x\"\nbits.textebit 8, \"x\"\nbits.bitenabled 15, 1\nbits.bitactif 16, 1\n");
    EXPECT_EQ(e.messages, (std::vector<std::string>{BITS_HORS_LIMITES, BITS_HORS_LIMITES}));
    Execute("editor.zoom 2.5\neditor.zoom 0\neditor.zoom -1\neditor.zoom x");
    EXPECT_DOUBLE_EQ(ReglagesEdit.zoom, 2.5);
    Execute("editeur.zoom 0.25");
    EXPECT_DOUBLE_EQ(ReglagesEdit.zoom, 0.25);
}

TEST_F(Dictionnaire, FormatEtModeleNotesOuChoisis) {
    CrochetsScript.choisitFormat = [](const char* nom) { Note("selformat|" + std::string(nom)); };
    Execute("format \"Mon Format\"\nmodele \"Mon Modele\"\nsetformat \"Autre Format\"\nselformat x\n");
    EXPECT_STREQ(FormatNote, "Mon Format");
    EXPECT_STREQ(ModeleNote, "Mon Modele");
    EXPECT_EQ(Appels, std::vector<std::string>{"selformat|Autre Format"});
    EXPECT_EQ(ModeleSelectionne, 0);
    Execute("model 'Second'\n");
    EXPECT_STREQ(ModeleNote, "Second");
    EXPECT_TRUE(e.messages.empty());

    Execute("selmodele \"Inconnu\"\n");
    EXPECT_EQ(e.messages, std::vector<std::string>{"[Error in ChoisitModele] Model Inconnu not found"});
    Execute("defmodele \"Ennemis\" {\n}\nsetmodel \"Ennemis\"\n");
    EXPECT_EQ(ModeleSelectionne, 1);
}

TEST_F(Dictionnaire, DefModeleBlocs) {
    Execute(
        "defmodele \"Ennemis\" {\n\t1, 4, \"vitesse\", \"3\"\n   2,8,\"nom \\\"x\\\"\",\"a\\\\b\"\n\n  }\n"
        "definemodel Tirs Rapides\t{\n{\n1 2 'degats' '5'\n}\neditor.timing = 5\n");
    EXPECT_TRUE(e.messages.empty());
    EXPECT_EQ(ReglagesEdit.timing, 5);
    ASSERT_EQ(NbModeles, 3);
    EXPECT_EQ(Decrit(TableModeles[1]), "Ennemis{1 4 vitesse 3;2 8 nom \"x\" a\\b;}24");
    // An unquoted name is folded with its line.
    EXPECT_EQ(Decrit(TableModeles[2]), "tirs rapides{1 2 degats 5;}14");

    // A second definition replaces the parameters of the model.
    Execute("defmodele \"Ennemis\"\n{\n 1, 16, \"seul\", \"\"\n}\n");
    EXPECT_EQ(NbModeles, 3);
    EXPECT_EQ(Decrit(TableModeles[1]), "Ennemis{1 16 seul ;}28");

    Execute("defmodele Sans Accolade\n1, 4, \"a\", \"b\"\n");
    ASSERT_FALSE(e.messages.empty());
    EXPECT_EQ(e.messages[0], ERREUR + "You have forgotten the format opening { (on the same line).");
    EXPECT_EQ(NbModeles, 3);
}

TEST_F(Dictionnaire, DefModeleTableDeDixPleine) {
    std::string script;
    for (int i = 1; i < NB_MODELES_MAX; ++i)
        script += "defmodele \"M" + std::to_string(i) + "\" {\n1, 4, \"p\", \"\"\n}\n";
    Execute(script);
    ASSERT_EQ(NbModeles, NB_MODELES_MAX);
    // The refused block is read through, not run as statements.
    Execute("defmodele \"Onzieme\" {\n 1, 4, \"a\", \"b\"\n bidule = 3\n}\neditor.timing = 5\n");
    EXPECT_TRUE(e.messages.empty());
    EXPECT_EQ(NbModeles, NB_MODELES_MAX);
    EXPECT_EQ(TrouveModele("Onzieme"), -1);
    EXPECT_EQ(ReglagesEdit.timing, 5);
    for (int i = 1; i < NB_MODELES_MAX; ++i)
        EXPECT_EQ(TableModeles[i].nbParametres, 1);
}

TEST_F(Dictionnaire, ParametresDuModeleCourant) {
    Execute("liste.ajparam \"speed\", 1, 0\nliste.addparam \"nom\", 2, 8\nliste.addparam \"nom\", 2, 6\n");
    const ModeleParametres& m = TableModeles[ModeleSelectionne];
    EXPECT_EQ(Decrit(m), "Default{1 4 speed ;2 6 nom ;}22");
    Execute("liste.reinitparams");
    EXPECT_EQ(Decrit(m), "Default{}12");
    Execute("liste.ajparam sansguillemets, 1, 4\n");
    EXPECT_EQ(m.nbParametres, 0);
    Execute("liste.ajparam 'a', 1, 4\n");
    EXPECT_EQ(m.nbParametres, 1);
}

TEST_F(Dictionnaire, DefFormatPasseLeBlocEtConvRecoitLaLigne) {
    CrochetsScript.definitFormat = [](FILE* f, const char* nom) {
        Note("defformat|" + std::string(nom));
        PasseDefinitionFormat(f);
    };
    CrochetsScript.conv = [](const char* texte) { Note("conv|" + std::string(texte)); };
    Execute("defformat \"Mon Format\" {\n  map {\n    ext = \".x.c\"  # commentaire\n"
            "    element = \"0x%04x, \"\n  }\n  type8 = \"u8\"\n}\ndefinefmt Autre {\n}\n"
            "conv tset src=\"Image A.bmp\"  Dest=x\neditor.timing = 5\n");
    EXPECT_TRUE(e.messages.empty());
    EXPECT_EQ(ReglagesEdit.timing, 5);
    EXPECT_EQ(Appels, (std::vector<std::string>{"defformat|Mon Format", "defformat|autre",
                                                "conv|tset src=\"Image A.bmp\"  dest=x"}));
}

TEST_F(Dictionnaire, FormulaireRecoitLesControles) {
    // With no form nothing happens.
    Execute("tree-maps\ntexte-source \"a.bmp\"\ncheck-map 1\ncombo-taille \"64x64\"\ntexte-01 x\nok\n");
    EXPECT_TRUE(e.messages.empty());
    CrochetsFormulaire = FormulaireEnregistre;
    Execute("arbre-cartes\ntree-bitmaps16\ntexte-source \"Image.bmp\"\ntext-sizex 'Large'\n"
            "texte-palette \"p.pal.c\"\ntext-map \"m\"\ntexte-couleurs \"16\"\ncheck-palette 2\n"
            "check-optimize true\nradio-text 1\ncombo-size \"32x32\"\ncombo-tileset \"64x64\"\n"
            "texte-01 sansguillemets\nvisible 0\nok\n");
    // The end of a run shows the main window again.
    const std::vector<std::string> attendus = {"racine|" + N(RACINE_CARTES),
                                               "racine|" + N(RACINE_BITMAPS16),
                                               "texte|" + N(CONTROLE_TEXTE_01) + "|Image.bmp",
                                               "texte|" + N(CONTROLE_TEXTE_02) + "|Large",
                                               "texte|" + N(CONTROLE_TEXTE_03) + "|p.pal.c",
                                               "texte|" + N(CONTROLE_TEXTE_04) + "|m",
                                               "coche|" + N(CONTROLE_CHECK_PALETTE) + "|2",
                                               "coche|" + N(CONTROLE_CHECK_OPTIMISE) + "|1",
                                               "coche|" + N(CONTROLE_RADIO_TEXTE) + "|1",
                                               "combo|" + N(CONTROLE_COMBO_TAILLE) + "|32x32",
                                               "combo|" + N(CONTROLE_COMBO_TILESET) + "|64x64",
                                               "visible|0",
                                               "ok",
                                               "visible|1"};
    EXPECT_EQ(Appels, attendus);
    EXPECT_EQ(
        e.messages,
        (std::vector<std::string>{
            ERREUR +
                "Object: combo-tileset.\nThe searched text into the combobox has not been found (64x64).",
            ERREUR + "Object texte-01.\nIt is missing arguments and/or their type is wrong."}));
}
