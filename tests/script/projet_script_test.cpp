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
#include "tests/support/projets.h"
#include "tests/support/scripts.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

// The format named by the project, as the main window reports it once chosen.
const char* FormatNoteCourant() {
    return FormatNote[0] ? FormatNote : nullptr;
}

std::string ProjetFond(const std::string& infos, const std::string& donnees) {
    return Projet(infos, Ligne("fond", "carte", "fond.map.c", "fond.bmp"), donnees);
}

// Loads a project and selects the model it names, as the main window's start-up does.
void Charge(const std::string& texte) {
    EcritFichier("projet.tsl", texte);
    ChargeProjet("projet.tsl");
    SelectionneModele(ModeleNote);
}

std::string Sauve() {
    SauveProjet("sauve.tsl");
    return LitFichier("sauve.tsl");
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

// Each setting left out or misread would change the text written back.
TEST_F(ProjetScript, InfosChargeesPuisReecritesALIdentique) {
    const std::string texte = ProjetFond(InfosCompletes(), FIN_DONNEES_DEFAUT);
    Charge(texte);
    EXPECT_TRUE(e.messages.empty());
    EXPECT_EQ(std::string(RepertoireNote), std::filesystem::current_path().string());
    EXPECT_EQ(Texte(ReglagesConv.gamma) + " " + Texte(ReglagesConv.add), "0.5,1,0.25 1.5,-2,127.5");
    EXPECT_EQ(ReglagesSys.memoireMax, 8389632u);
    EXPECT_STREQ(DossierDefaut[0], "Divers");
    EXPECT_STREQ(FormatNote, "Mon format");
    ASSERT_EQ(NbModeles, 2);
    EXPECT_EQ(ModeleSelectionne, 1);
    EXPECT_STREQ(TableModeles[1].noms[1], "dit \"oui\"");
    EXPECT_STREQ(TableModeles[1].defauts[1], "c:\\x");
    EXPECT_EQ(TableModeles[1].taille, 22);
    ASSERT_EQ(NbElements, 1);
    EXPECT_EQ(Sauve(), texte);
}

// The données section runs behind infos, up to its End; its text, UTF-8 included, goes back as it was.
TEST_F(ProjetScript, DonneesPasseAvantInfosEtGardeSonTexte) {
    const std::string donnees = "  convert.nuances = 8\n  r\xC3\xA9pertoire = \"ici\"\n"
                                "  End\n  bidule = 3\n  editor.timing = 77\n# notes de l'utilisateur\n";
    Charge(ProjetFond(InfosCompletes(), donnees));
    EXPECT_EQ(ReglagesConv.nuances, 8);
    EXPECT_EQ(ReglagesEdit.timing, 25);
    EXPECT_STREQ(RepertoireNote, "ici");
    const std::string sauve = Sauve();
    EXPECT_EQ(sauve, ProjetFond(InfosCompletes("8"), donnees));
    ReinitialiseReglages();
    InitialiseModeles();
    Charge(sauve);
    EXPECT_EQ(Sauve(), sauve);
    EXPECT_TRUE(e.messages.empty());
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

// Whatever the script did, the run ends in a state that the rest of the
// program can live with.
void VerifieEtat(const std::string& script) {
    const ReglagesConversion& c = ReglagesConv;
    ASSERT_TRUE(FinScript >= 0 && FinScript <= 2 && messages == 1 && SelectionArbreActive &&
                !EtiquetteCherchee[0] && !FichierScriptCourant)
        << script;
    ASSERT_TRUE(ReglagesSys.objetsMax >= 3 && c.nuances >= 1 && c.mode >= 0 && c.mode <= 2 &&
                c.zero[0] <= 31 && c.zero[1] <= 31 && c.zero[2] <= 31 && ReglagesEdit.zoom > 0)
        << script;
    ASSERT_TRUE(NbModeles >= 1 && NbModeles <= NB_MODELES_MAX && ModeleSelectionne >= 0 &&
                ModeleSelectionne < NbModeles)
        << script;
    for (int m = 0; m < NbModeles; ++m) {
        const ModeleParametres& modele = TableModeles[m];
        ASSERT_TRUE(strlen(modele.nom) < sizeof modele.nom && modele.nbParametres >= 0 &&
                    modele.nbParametres <= NB_PARAMETRES_MAX && modele.taille == TailleModele(modele))
            << script;
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
    std::string base = InfosCompletes();
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
            // Now and then from the defaults, so that a full model table does not hide the blocks.
            ReinitialiseReglages();
            InitialiseModeles();
        }
    }
}
