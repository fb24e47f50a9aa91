#include "core/projet.h"

#include "core/crochets.h"
#include "core/elements.h"
#include "core/modeles.h"
#include "core/reglages.h"
#include "platform/texte.h"
#include "tests/support/enregistreur.h"
#include "tests/support/projets.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

const std::string MESSAGE_ANCIEN =
    "[Attention] This is an older project file version (or newer)\nTessellarium will "
    "try to update of this file, but will first back it up as Projet.tsl.bak, ok?";
const std::string MESSAGE_ECHEC =
    "[Error] None of the built-in filters can load the project file.\nTessellarium "
    "will now start with a new (empty) project.";

std::string ProjetParDefaut(const std::string& lignes = "") {
    return Projet(
        DebutInfos("script.spt", "lisezmoi.htm") +
            "\n  convert.couleurMasque = RGB(255,0,254)\n"
            "  convert.luminosite   GAMMA=RGB(1.000,1.000,1.000)  ADD=RGB(0.0,0.0,0.0)  "
            "ALPHA=RGB(0.0,0.0,0.0)\n  convert.mode = 0\n\n  system.sauverParamsMapsAuto = false\n" +
            MODELE_DEFAUT + "  Modele = \"Default\"\n  Fin\n",
        lignes);
}

// A hand-written project: empty infos, the rows given, then the données body.
std::string Saisi(const std::string& lignes, const std::string& donnees = "  End\n") {
    return Projet(OUVERTURE_INFOS + "  Fin\n", lignes, donnees);
}

std::string Rangee(const std::string& nom, uint32_t type, const std::string& fichier = "",
                   const std::string& base = "", const std::string& dossier = "") {
    return nom + "|" + std::to_string(type) + "|" + fichier + "|" + base + "|" + dossier + "\n";
}

// The table as text, one row a line.
std::string Table() {
    std::string s;
    for (int i = 0; i < NbElements; ++i) {
        const ElementProjet& e = Elements[i];
        s += Rangee(e.nom, e.type, e.fichier, e.fichierBase, e.dossier);
    }
    return s;
}

void Charge(const std::string& texte) {
    EcritFichier("projet.tsl", texte);
    ChargeProjet("projet.tsl");
}

std::string SauveEtLit() {
    SauveProjet("projet.tsl");
    return LitFichier("projet.tsl");
}

std::string Remplace(std::string s, const std::string& de, const std::string& par) {
    for (size_t p = s.find(de); p != std::string::npos; p = s.find(de, p + par.size()))
        s.replace(p, de.size(), par);
    return s;
}

// What the interpreter would be given: the rest of the file, the label, and
// the table at that moment.
struct AppelScript {
    std::string texte;
    bool sansEtiquette;
    int nbElements;
};
std::vector<AppelScript> AppelsScript;

void ScriptEnregistre(FILE* fichier, const char* etiquette) {
    std::string texte;
    char tampon[65536];
    for (size_t n; (n = fread(tampon, 1, sizeof tampon, fichier)) > 0;)
        texte.append(tampon, n);
    AppelsScript.push_back({texte, etiquette == nullptr, NbElements});
    fclose(fichier);
}

// A project with some of everything, as a user's would be.
std::string ProjetComplet(const std::string& donnees = "  # run at every load\n  End\nnotes behind End\n\n") {
    return Saisi(Ligne("niveaux", "dossier") + Ligne("monde 1", "dossier", "", "", "niveaux") +
                     Ligne("decor", "tileset", "decor.til.c", "images\\decor.bmp", "monde 1") +
                     Ligne("decor", "carte", "decor.map.c", "images\\decor.bmp") +
                     Ligne("objets", "liste", "o.lst.c"),
                 donnees);
}

} // namespace

// ---- Writing -------------------------------------------------------------------

TEST(ProjetEcriture, ElementsEtDossiersEnLatin1) {
    DossierTemporaire dossier;
    EXPECT_EQ(SauveEtLit(), ProjetParDefaut());
    AjouteElementBrut(NouveauDossier("Niveaux"));
    AjouteElementBrut(NouveauDossier("Monde 1", "Niveaux"));
    AjouteElementBrut(DansDossier(
        NouvelElement(TYPE_CARTE, "caf\xE9", "cartes\\caf\xE9.map.c", "images\\caf\xE9 1.bmp"), "Monde 1"));
    AjouteElementBrut(NouvelElement(TYPE_MOSAIQUE, "decor", "decor.til.c", ""));
    AjouteElementBrut(NouvelElement(TYPE_LISTE, "objets", "objets.lst.c", "objets.png"));
    // A row of a file always has its Base line, even empty.
    EXPECT_EQ(SauveEtLit(),
              ProjetParDefaut(
                  Ligne("Niveaux", "dossier") + Ligne("Monde 1", "dossier", "", "", "Niveaux") +
                  Ligne("caf\xE9", "carte", "cartes\\caf\xE9.map.c", "images\\caf\xE9 1.bmp", "Monde 1") +
                  Ligne("decor", "tileset", "decor.til.c") + "  Base: \n" +
                  Ligne("objets", "liste", "objets.lst.c", "objets.png")));
}

TEST(ProjetEcriture, ReglagesEtModelesHorsDefaut) {
    DossierTemporaire dossier;
    CopieBornee(ScriptPrincipal, "jeu.spt");
    CopieBornee(AideUtilisateur, "aide perso.htm");
    // gamma is kept as reciprocals.
    ReglagesConv = {.masque = {10, 20, 30},
                    .gamma = {0.5, 1, 0.25},
                    .add = {1.5, -2, 127.5},
                    .alpha = {-5, 0, 30},
                    .nuances = 16,
                    .nuancesAvant = 1,
                    .tronquer = 1,
                    .mode = METHODE_OPTIMALE,
                    .precisionMax = 64,
                    .utilMaxCoul = 1};
    ReglagesSys = {300, 0, 1, 8389632, 0};
    ReglagesEdit.timing = 25;
    CopieBornee(DossierDefaut[0], "Divers");
    CopieBornee(DossierDefaut[TYPE_CARTE], "cartes");
    CopieBornee(DossierDefaut[NB_DOSSIERS_DEFAUT - 1], "Fin de table");
    Crochets.nomFormatCourant = [] { return "Mon format"; };
    ModeleParametres& m = TableModeles[NbModeles++];
    CopieBornee(m.nom, "Ennemis");
    AjouteParametre(m, "vie", 1, 2, "100");
    AjouteParametre(m, "dit \"oui\"", 2, 8, "c:\\x");
    ModeleSelectionne = 1;
    EXPECT_EQ(SauveEtLit(), Projet(InfosCompletes(), ""));

    // No limit is written as such, not left out.
    ReglagesSys.memoireMax = 0;
    EXPECT_NE(SauveEtLit().find("\n  system.MemoireMax = Max.\n"), std::string::npos);
}

TEST(ProjetEcriture, SansNomOnDemandeEtEchecSilencieux) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    SauveProjet(""); // cancelled: nothing is written
    EXPECT_TRUE(std::filesystem::is_empty(dossier.chemin));
    enregistreur.fichiers.push_back("nouveau");
    SauveProjet("");
    EXPECT_EQ(LitFichier("nouveau.tsl"), ProjetParDefaut());
    SauveProjet("pas/de/dossier/p.tsl");
    EXPECT_TRUE(enregistreur.messages.empty());
    EXPECT_EQ(enregistreur.dialogues.size(), 2u);
}

// ---- Save and load again ---------------------------------------------------------

// What is behind End is kept byte for byte and never run; infos and données
// go to the interpreter right behind their openings.
TEST(ProjetAllerRetour, SauveChargeSauveDonneLesMemesOctets) {
    DossierTemporaire dossier;
    Crochets.executeScript = ScriptEnregistre;
    const std::string corps =
        "  deffolder[2] = \"cartes\"\n  End\n  conv tset src=secret.bmp\nnote \xE9t\xE9\n\n";
    Charge(ProjetComplet(corps));
    const std::string table = Table();
    const std::string premier = SauveEtLit();
    ASSERT_TRUE(premier.ends_with(OUVERTURE_DONNEES + corps));
    for (int cycle = 0; cycle < 3; ++cycle) {
        AppelsScript.clear();
        NbElements = 0;
        ChargeProjet("projet.tsl");
        EXPECT_EQ(Table(), table);
        ASSERT_EQ(AppelsScript.size(), 2u);
        EXPECT_EQ(AppelsScript[0].texte, premier.substr(premier.find(" .section infos\n") + 16));
        EXPECT_EQ(AppelsScript[0].nbElements, 5); // the table is read first
        EXPECT_EQ(AppelsScript[1].texte, corps);
        EXPECT_TRUE(AppelsScript[0].sansEtiquette && AppelsScript[1].sansEtiquette);
        EXPECT_EQ(std::string(DonneesProjet, TailleDonneesProjet), corps);
        EXPECT_EQ(SauveEtLit(), premier);
    }
}

// Past its buffer the section is still run in full, and the file, which a
// save would cut, is never written over.
TEST(ProjetAllerRetour, DonneesAuDelaDuMillionJamaisReecrites) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    Crochets.executeScript = ScriptEnregistre;
    AppelsScript.clear();
    std::string corps = "  End\n";
    while (corps.size() < TAILLE_DONNEES_MAX + 100)
        corps += "ligne " + std::to_string(corps.size()) + "\n";
    Charge(Saisi("", corps));
    ASSERT_EQ(AppelsScript.size(), 2u);
    EXPECT_EQ(AppelsScript[1].texte, corps); // run in full
    EXPECT_EQ(TailleDonneesProjet, TAILLE_DONNEES_MAX);
    EXPECT_STREQ(ProjetTronque.raison, "its donn\xE9" "es section is longer than 1000000 bytes");
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "neuve", "n.map.c"));
    EXPECT_EQ(SauveEtLit(), Saisi("", corps));
    ASSERT_EQ(enregistreur.messages.size(), 1u);
    EXPECT_TRUE(enregistreur.messages[0].starts_with("[Project file] projet.tsl could not be read whole: its donn"));

    // Exactly the buffer's size fits; the project is saved again.
    corps.resize(TAILLE_DONNEES_MAX);
    Charge(Saisi("", corps));
    EXPECT_STREQ(ProjetTronque.raison, "");
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "neuve", "n.map.c"));
    EXPECT_NE(SauveEtLit(), Saisi("", corps));
}

// ---- Reading the element list ------------------------------------------------

TEST(ProjetLecture, ClesDansToutOrdreEtLignesGardeesTellesQuelles) {
    DossierTemporaire dossier;
    Charge(Saisi(
        " #--------------\n  El\xE9ment: b\n  Base: b.bmp\n\tDossier: d\n  Fichier: b.map.c\n  Type: carte\n"
        " #\n  El\xE9ment: d\n  Fichier: ignore.c\n  Type: dossier\n" +
        Ligne("d2", "dossier", "", "", "d") + Ligne("p", "palette", "p.pal.c") +
        Ligne("p", "palette", "autre.pal.c") + Ligne("vide", "")));
    EXPECT_EQ(Table(), Rangee("b", TYPE_CARTE | ELEMENT_RANGE, "b.map.c", "b.bmp", "d") +
                           Rangee("d", ELEMENT_DOSSIER, "ignore.c") +
                           Rangee("d2", ELEMENT_DOSSIER | ELEMENT_RANGE, "", "", "d") +
                           Rangee("p", TYPE_PALETTE, "p.pal.c") + Rangee("p", TYPE_PALETTE, "autre.pal.c") +
                           Rangee("vide", TYPE_AUCUN));
}

TEST(ProjetLecture, TypeInconnuFinEtFinDeFichier) {
    DossierTemporaire dossier;
    // Keys are case-sensitive: "type: carte" is not a key and ends the row.
    Charge(Saisi(Ligne("a", "carte", "a.map.c") + Ligne("x", "sprite", "x.c") + Ligne("y", "Carte") +
                 " #\n  El\xE9ment: z\n  type: carte\n  Fichier: z.c\n" + Ligne("b", "(sprite)", "b.c") +
                 " #\n  FIN de la liste\n" + Ligne("apres", "carte")));
    EXPECT_EQ(Table(),
              Rangee("a", TYPE_CARTE, "a.map.c") + Rangee("z", TYPE_AUCUN) + Rangee("b", TYPE_SPRITE, "b.c"));

    // The end of the file inside a row keeps the row.
    const std::string derniere = Ligne("fin", "", "f.c");
    Charge(ENTETE + " .section fichiers\n" + Ligne("a", "carte") + derniere.substr(0, derniere.size() - 1));
    EXPECT_EQ(Table(), Rangee("a", TYPE_CARTE) + Rangee("fin", TYPE_AUCUN, "f.c"));
}

TEST(ProjetLecture, MilleLignesAuPlusDansLOrdre) {
    DossierTemporaire dossier;
    std::string lignes;
    for (int i = 0; i < NB_ELEMENTS_MAX + 5; ++i)
        lignes += Ligne("e" + std::to_string(i), "carte");
    Charge(Saisi(lignes));
    ASSERT_EQ(NbElements, NB_ELEMENTS_MAX);
    EXPECT_STREQ(Elements[0].nom, "e0");
    EXPECT_STREQ(Elements[NB_ELEMENTS_MAX - 1].nom, "e999");
    // The rows past the table stay in the file.
    EXPECT_STREQ(ProjetTronque.raison, "it holds more than 1000 elements");
    EXPECT_EQ(SauveEtLit(), Saisi(lignes));
}

TEST(ProjetLecture, ChampsEtLignesBornes) {
    DossierTemporaire dossier;
    const std::string longue(1500, 'n'), tresLongue(3000, 'f'), bruit(5000, 'x');
    Charge(Saisi(Ligne(longue, "carte", longue, longue, longue) + " " + bruit + "\n" +
                 Ligne("suite", "tileset") + "  Fichier: " + tresLongue + "\n" + Ligne("fin", "palette")));
    ASSERT_EQ(NbElements, 3);
    EXPECT_EQ(std::string(Elements[0].nom), longue.substr(0, TAILLE_NOM - 1));
    EXPECT_EQ(std::string(Elements[0].fichier), longue.substr(0, TAILLE_CHEMIN - 1));
    EXPECT_EQ(std::string(Elements[0].fichierBase), longue.substr(0, TAILLE_CHEMIN - 1));
    EXPECT_EQ(std::string(Elements[0].dossier), longue.substr(0, TAILLE_DOSSIER - 1));
    // A line past 2047 characters goes on as a line of its own, which ends the row.
    EXPECT_EQ(Table().substr(Table().find('\n') + 1),
              Rangee("suite", TYPE_MOSAIQUE, tresLongue.substr(0, TAILLE_CHEMIN - 1)) +
                  Rangee("fin", TYPE_PALETTE));
    // What was cut stays in the file.
    EXPECT_STREQ(ProjetTronque.raison,
                 "an element's name, folder or path is longer than its field (30, 32 and 259 characters)");
    const std::string avant = LitFichier("projet.tsl");
    EXPECT_EQ(SauveEtLit(), avant);

    // A line of exactly 2047 characters is whole; one more is cut.
    const std::string cle = "  Fichier: ";
    for (size_t longueur : {2047, 2048}) {
        Charge(Saisi(Ligne("a", "carte") + cle + std::string(longueur - cle.size(), 'f') + "\n" +
                     Ligne("b", "carte")));
        EXPECT_EQ(NbElements, 2) << longueur;
        EXPECT_EQ(std::string(ProjetTronque.raison).find("2047") != std::string::npos, longueur == 2048) << longueur;
    }
}

TEST(ProjetLecture, SectionsTrouveesSansEgardALaCasseOuAbsentes) {
    DossierTemporaire dossier;
    // Exactly one character, of any kind, between ".section" and the name.
    const struct {
        const char* ouverture;
        int lignes;
    } cas[] = {{"\t.SECTION FICHIERS\n", 1},
               {".section\tfichiers\n", 1},
               {".section  fichiers\n", 0},
               {".section fichiers2\n", 0},
               {".sectionfichiers\n", 0}};
    for (const auto& c : cas) {
        Charge(ENTETE + c.ouverture + Ligne("c", "carte") + " Fin\n");
        EXPECT_EQ(Table(), c.lignes ? Rangee("c", TYPE_CARTE) : "") << c.ouverture;
    }

    // No fichiers section: an empty table, and the données section still read.
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "reste", "r.c"));
    Charge(ENTETE + " .section " + DONNEES + "\n  End\n");
    EXPECT_EQ(NbElements, 0);
    EXPECT_EQ(std::string(DonneesProjet, TailleDonneesProjet), "  End\n");
}

TEST(ProjetLecture, FichierAbsentOuVideNeChangeRien) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    Charge(Saisi(Ligne("a", "carte"), "  End\nx\n"));
    ChargeProjet("absent.tsl");
    EXPECT_EQ(Table(), Rangee("a", TYPE_CARTE));
    EXPECT_EQ(DonneesProjet, nullptr); // the données text of the last load goes
    EcritFichier("vide.tsl", "");
    ChargeProjet("vide.tsl");
    EXPECT_EQ(Table(), Rangee("a", TYPE_CARTE));
    EXPECT_TRUE(enregistreur.messages.empty());
    EXPECT_FALSE(std::filesystem::exists("absent.tsl.bak") || std::filesystem::exists("vide.tsl.bak"));
    EXPECT_TRUE(SauveEtLit().ends_with(FIN_DONNEES_DEFAUT));
}

// ---- Encodings and line ends -------------------------------------------------

TEST(ProjetEncodage, Utf8BomEtCrLfLusCommeLatin1) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    const std::string latin1 = ProjetComplet();
    Charge(latin1);
    ASSERT_EQ(NbElements, 5);
    const std::string table = Table();
    const std::string attendu = SauveEtLit();
    const std::string utf8 = Remplace(latin1, "\xE9", "\xC3\xA9");
    for (const std::string& texte :
         {utf8, "\xEF\xBB\xBF" + latin1, "\xEF\xBB\xBF" + utf8, Remplace(latin1, "\n", "\r\n")}) {
        NbElements = 0;
        Charge(texte);
        EXPECT_EQ(Table(), table);
        EXPECT_EQ(SauveEtLit(), attendu);
    }
    EXPECT_TRUE(enregistreur.messages.empty());
    EXPECT_FALSE(std::filesystem::exists("projet.tsl.bak"));
}

// ---- The older format ----------------------------------------------------------

namespace {

std::string Mot32(uint32_t v) {
    return {char(v & 0xff), char(v >> 8 & 0xff), char(v >> 16 & 0xff), char(v >> 24 & 0xff)};
}

std::string Champ(const std::string& s, size_t largeur) {
    return (s + std::string(largeur, '\0')).substr(0, largeur);
}

std::string Enregistrement(const std::string& base, const std::string& fichier, const std::string& nom,
                           uint32_t typeMoinsUn) {
    return Mot32(0xdeadbeef) + Champ(base, 260) + Champ(fichier, 260) + Champ(nom, 32) + Mot32(typeMoinsUn);
}

std::string Binaire(uint32_t n, const std::string& enregistrements) {
    return "Tessellarium 02" + Mot32(n) + enregistrements;
}

} // namespace

TEST(ProjetAncien, AutreEnteteSauvegardeEtTableVide) {
    DossierTemporaire dossier;
    // A trailing blank, another tool, no line feed.
    for (const std::string entete : {"#Fichier de projet Tessellarium \n", "#Project file of another tool\n",
                                     "#Fichier de projet Tessellarium"}) {
        EnregistreurMessages enregistreur;
        EcritFichier("projet.tsl.bak", "ancienne copie");
        AjouteElementBrut(NouvelElement(TYPE_CARTE, "avant", "a.c"));
        const std::string texte =
            entete + (entete.back() == '\n' ? Saisi(Ligne("a", "carte")).substr(ENTETE.size()) : "");
        Charge(texte);
        EXPECT_EQ(enregistreur.messages, (std::vector<std::string>{MESSAGE_ANCIEN, MESSAGE_ECHEC})) << entete;
        EXPECT_EQ(enregistreur.styles[0] & MASQUE_BOUTONS, BOITE_OK);
        EXPECT_EQ(LitFichier("projet.tsl.bak"), texte);
        EXPECT_EQ(NbElements, 0);
        EXPECT_EQ(LitFichier("projet.tsl"), texte); // the file itself is left alone
    }
}

TEST(ProjetAncien, BinaireLuParAjouteElement) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    CopieBornee(DossierDefaut[TYPE_MOSAIQUE], "Tuiles");
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "avant", "a.c"));
    const std::string nom32(32, 'n');
    const std::string texte =
        Binaire(4, Enregistrement("img\\mer.bmp", "mer.map.c", "mer", TYPE_CARTE - 1) +
                       Enregistrement("img\\t.bmp", "t.til.c", "tuiles", TYPE_MOSAIQUE - 1) +
                       Enregistrement("", "p.pal.c", nom32, TYPE_PALETTE - 1) +
                       Enregistrement("", "mer2.map.c", "mer", TYPE_CARTE - 1));
    Charge(texte);
    EXPECT_EQ(enregistreur.messages, (std::vector<std::string>{MESSAGE_ANCIEN}));
    EXPECT_EQ(LitFichier("projet.tsl.bak"), texte);
    // Through AjouteElement: default folders apply, and a clash of names is renamed.
    EXPECT_EQ(Table(),
              Rangee("mer", TYPE_CARTE, "mer.map.c", "img\\mer.bmp") +
                  Rangee("tuiles", TYPE_MOSAIQUE | ELEMENT_RANGE, "t.til.c", "img\\t.bmp", "Tuiles") +
                  Rangee(nom32.substr(0, TAILLE_NOM - 1), TYPE_PALETTE, "p.pal.c") +
                  Rangee("mer2", TYPE_CARTE, "mer2.map.c"));
    // Its first save is in the text form, with the default données body.
    std::string sauve = SauveEtLit();
    EXPECT_TRUE(sauve.starts_with(ENTETE) && sauve.ends_with(FIN_DONNEES_DEFAUT));
}

TEST(ProjetAncien, BinaireTronqueOuFaux) {
    DossierTemporaire dossier;
    const std::string un = Enregistrement("b.bmp", "a.map.c", "a", 0);
    const struct {
        std::string texte;
        int lignes;
        bool echec;
    } cas[] = {
        {"Tessellarium 02", 0, true},                                            // no count
        {Binaire(3, un + un.substr(0, 300)), 1, false},                          // records cut short
        {Binaire(0xffffffff, un + Enregistrement("", "c.c", "c", 6)), 2, false}, // count beyond the table
        {"Tessellarium 01" + Mot32(1) + un, 0, true},                            // another magic
        {Binaire(1, Enregistrement("", "", "", 0x7fffffff)), 1, false},          // a type out of range
    };
    for (const auto& c : cas) {
        EnregistreurMessages enregistreur;
        Charge(c.texte);
        EXPECT_EQ(NbElements, c.lignes);
        EXPECT_EQ(enregistreur.messages.size(), c.echec ? 2u : 1u);
        EXPECT_EQ(enregistreur.messages.back() == MESSAGE_ECHEC, c.echec);
        for (int i = 0; i < NbElements; ++i)
            EXPECT_EQ(Elements[i].type & ~TYPE_MASQUE, 0u);
    }
}

// ---- Damaged files -------------------------------------------------------------

TEST(ProjetRobustesse, OctetsAleatoiresEtProjetsTronques) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    Crochets.executeScript = ScriptEnregistre;
    std::mt19937 alea(20240611);
    // Random bytes mixed with pieces of the project syntax.
    const std::string morceaux[] = {
        "El\xE9ment: ",    "  Type: ",  "dossier", "carte",   "  Fichier: ",
        "Base: ",          "Dossier: ", "\n",      "\r\n",    " .section fichiers\n",
        OUVERTURE_DONNEES, "Fin",       "\xC3",    {"\0", 1}, "\xEF\xBB\xBF"};
    std::vector<std::string> textes;
    const std::string complet = ProjetComplet();
    for (size_t coupe = 0; coupe < complet.size(); coupe += 37)
        textes.push_back(complet.substr(0, coupe));
    textes.push_back(Binaire(2, Enregistrement("a", "b", "c", 1)).substr(0, 200));
    for (int n = 0; n < 40; ++n) {
        std::string texte = n % 2 ? ENTETE : "";
        for (size_t longueur = alea() % 6000; texte.size() < longueur;)
            texte += alea() % 3 == 0 ? morceaux[alea() % std::size(morceaux)] : std::string(1, (char)alea());
        textes.push_back(texte);
    }

    for (const std::string& texte : textes) {
        Charge(texte);
        ASSERT_LE(NbElements, NB_ELEMENTS_MAX);
        for (int i = 0; i < NbElements; ++i) {
            const ElementProjet& e = Elements[i];
            ASSERT_TRUE(memchr(e.nom, 0, sizeof e.nom) && memchr(e.dossier, 0, sizeof e.dossier) &&
                        memchr(e.fichier, 0, sizeof e.fichier) &&
                        memchr(e.fichierBase, 0, sizeof e.fichierBase));
        }
        ASSERT_LE(TailleDonneesProjet, TAILLE_DONNEES_MAX);
        SauveProjet("projet.tsl");
    }
    // A project cut inside a row keeps what was read of it.
    Charge(complet.substr(0, complet.find("monde 1")));
    EXPECT_EQ(Table(), Rangee("niveaux", ELEMENT_DOSSIER) + Rangee("", TYPE_AUCUN));
}
