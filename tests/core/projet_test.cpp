#include "core/projet.h"

#include "core/crochets.h"
#include "core/elements.h"
#include "core/modeles.h"
#include "core/reglages.h"
#include "platform/texte.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

const std::string ENTETE = "#Fichier de projet Tessellarium\n";
const std::string OUVERTURE_INFOS = "\n#Useful informations about the last session\n .section infos\n";
const std::string OUVERTURE_FICHIERS = "\n#Project tree elements\n .section fichiers\n";
const std::string DONNEES = "donn\xE9"
                            "es";
const std::string OUVERTURE_DONNEES = "\n#Section where you can enter any script command. It permits you to "
                                      "set here different variables.\n .section " +
                                      DONNEES + "\n";
const std::string FIN_DONNEES_DEFAUT = "  End\n\n\n\n";
const std::string MESSAGE_ANCIEN =
    "[Attention] This is an older project file version (or newer)\nTessellarium will "
    "try to update of this file, but will first back it up as Projet.tsl.bak, ok?";
const std::string MESSAGE_ECHEC =
    "[Error] None of the built-in filters can load the project file.\nTessellarium "
    "will now start with a new (empty) project.";

std::string Repertoire() {
    return std::filesystem::current_path().string();
}

// The lines of `infos` up to the colour block, as a project with these texts writes them.
std::string DebutInfos(const std::string& script = "script.spt", const std::string& aide = "lisezmoi.htm") {
    return OUVERTURE_INFOS + "  Directory = \"" + Repertoire() + "\"\n  Script = \"" + script +
           "\"\n  UserHelp = \"" + aide + "\"\n";
}

const std::string COULEURS_DEFAUT =
    "\n  convert.couleurMasque = RGB(255,0,254)\n"
    "  convert.luminosite   GAMMA=RGB(1.000,1.000,1.000)  ADD=RGB(0.0,0.0,0.0)  "
    "ALPHA=RGB(0.0,0.0,0.0)\n"
    "  convert.mode = 0\n\n";
const std::string MODELE_DEFAUT = "  DefModele \"Default\"\t\t{\n  }\n\n";

std::string ProjetParDefaut() {
    return ENTETE + DebutInfos() + COULEURS_DEFAUT + "  system.sauverParamsMapsAuto = false\n" +
           MODELE_DEFAUT + "  Modele = \"Default\"\n  Fin\n" + OUVERTURE_FICHIERS + " Fin\n" +
           OUVERTURE_DONNEES + FIN_DONNEES_DEFAUT;
}

// A hand-written project: short infos, the rows given, then the données body.
std::string Projet(const std::string& lignes, const std::string& donnees = "  End\n") {
    return ENTETE + "\n .section infos\n  Fin\n\n .section fichiers\n" + lignes + " Fin\n\n .section " +
           DONNEES + "\n" + donnees;
}

// One row as the writer spells it; an empty type leaves the Type line out.
std::string Ligne(const std::string& nom, const std::string& type, const std::string& fichier = "",
                  const std::string& base = "", const std::string& dossier = "") {
    std::string s = " #--------------\n  El\xE9ment: " + nom + "\n";
    if (!type.empty()) s += "  Type: " + type + "\n";
    if (!fichier.empty()) s += "  Fichier: " + fichier + "\n";
    if (!base.empty()) s += "  Base: " + base + "\n";
    if (!dossier.empty()) s += "  Dossier: " + dossier + "\n";
    return s;
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

ElementProjet Rang(uint32_t type, const char* nom, const char* fichier, const char* base,
                   const char* dossier) {
    ElementProjet e = NouvelElement(type, nom, fichier, base);
    if (*dossier) {
        e.type |= ELEMENT_RANGE;
        CopieBornee(e.dossier, dossier);
    }
    return e;
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
    size_t n;
    while ((n = fread(tampon, 1, sizeof tampon, fichier)) > 0)
        texte.append(tampon, n);
    AppelsScript.push_back({texte, etiquette == nullptr, NbElements});
    fclose(fichier);
}

const char* FormatStandard() {
    return "Standard";
}

// A project with some of everything, as a user's would be.
std::string ProjetComplet() {
    return Projet(Ligne("niveaux", "dossier") + Ligne("monde 1", "dossier", "", "", "niveaux") +
                      Ligne("decor", "tileset", "decor.til.c", "images\\decor.bmp", "monde 1") +
                      Ligne("decor", "carte", "decor.map.c", "images\\decor.bmp") +
                      Ligne("objets", "liste", "o.lst.c"),
                  "  # run at every load\n  End\nnotes behind End\n\n");
}

} // namespace

// ---- Writing -------------------------------------------------------------------

TEST(ProjetEcriture, ProjetParDefautOctetPourOctet) {
    DossierTemporaire dossier;
    EXPECT_EQ(SauveEtLit(), ProjetParDefaut());
}

TEST(ProjetEcriture, ReglagesHorsDefautDossiersEtFormat) {
    DossierTemporaire dossier;
    CopieBornee(ScriptPrincipal, "outils.spt");
    CopieBornee(AideUtilisateur, "aide perso.htm");
    ReglagesConversion& c = ReglagesConv;
    c.masque[0] = 10, c.masque[1] = 20, c.masque[2] = 30;
    c.gamma[0] = 0.5, c.gamma[2] = 0.25; // kept as reciprocals
    c.add[0] = 1.5, c.add[1] = -2;
    c.alpha[2] = 0.5;
    c.mode = 2;
    ReglagesSys.sauverParamsMaps = 0;
    ReglagesSys.sauverParamsMapsAuto = 1;
    ReglagesSys.objetsMax = 300;
    ReglagesEdit.timing = 25;
    ReglagesSys.memoireMax = 8389632;
    ReglagesSys.selectionFormatAuto = 0;
    c.nuances = 16;
    c.nuancesAvant = 1;
    c.tronquer = 1;
    c.utilMaxCoul = 1;
    c.precisionMax = 1024;
    CopieBornee(DossierDefaut[0], "Divers");
    CopieBornee(DossierDefaut[TYPE_MOSAIQUE], "Tuiles");
    CopieBornee(DossierDefaut[NB_DOSSIERS_DEFAUT - 1], "Fin de table");
    Crochets.nomFormatCourant = FormatStandard;

    EXPECT_EQ(SauveEtLit(), ENTETE + DebutInfos("outils.spt", "aide perso.htm") +
                                "\n  convert.couleurMasque = RGB(10,20,30)\n"
                                "  convert.luminosite   GAMMA=RGB(2.000,1.000,4.000)  ADD=RGB(1.5,-2.0,0.0)  "
                                "ALPHA=RGB(0.0,0.0,0.5)\n"
                                "  convert.mode = 2\n\n"
                                "  system.sauverParamsMaps = false\n"
                                "  system.sauverParamsMapsAuto = true\n"
                                "  system.objetsMax = 300\n"
                                "  editeur.Timing = 25\n"
                                "  system.MemoireMax = 8 MB\n"
                                "  system.selectionFormatAuto = false\n"
                                "  convert.nuances = 16\n"
                                "  convert.nuancesAvant = true\n"
                                "  convert.tronquer = true\n"
                                "  convert.utilMaxCoul = true\n"
                                "  convert.precisionMax = 1024\n"
                                "  DefFolder[1] = \"Divers\"\n"
                                "  DefFolder[4] = \"Tuiles\"\n"
                                "  DefFolder[10] = \"Fin de table\"\n"
                                "  Format = \"Standard\"\n\n" +
                                MODELE_DEFAUT + "  Modele = \"Default\"\n  Fin\n" + OUVERTURE_FICHIERS +
                                " Fin\n" + OUVERTURE_DONNEES + FIN_DONNEES_DEFAUT);

    // No limit is written as such, not left out.
    ReglagesSys.memoireMax = 0;
    EXPECT_NE(SauveEtLit().find("\n  system.MemoireMax = Max.\n"), std::string::npos);
}

TEST(ProjetEcriture, ModelesEchappesEtModeleChoisi) {
    DossierTemporaire dossier;
    ModeleParametres& m = TableModeles[1];
    CopieBornee(m.nom, "Ennemis");
    struct {
        int genre, taille;
        const char *nom, *defaut;
    } parametres[] = {{1, 2, "vie", "100"}, {2, 4, "dit \"oui\"", "c:\\x"}, {1, 1, "a\nb", "\\\""}};
    for (const auto& p : parametres) {
        int i = m.nbParametres++;
        m.genres[i] = p.genre;
        m.tailles[i] = p.taille;
        CopieBornee(m.noms[i], p.nom);
        CopieBornee(m.defauts[i], p.defaut);
    }
    NbModeles = 2;
    ModeleSelectionne = 1;

    std::string texte = SauveEtLit();
    size_t debut = texte.find("  DefModele");
    size_t fin = texte.find(OUVERTURE_FICHIERS);
    ASSERT_NE(debut, std::string::npos);
    EXPECT_EQ(texte.substr(debut, fin - debut), MODELE_DEFAUT + "  DefModele \"Ennemis\"\t\t{\n"
                                                                "  \t"
                                                                R"(1, 2, "vie", "100")"
                                                                "\n"
                                                                "  \t"
                                                                R"(2, 4, "dit \"oui\"", "c:\\x")"
                                                                "\n"
                                                                "  \t"
                                                                R"(1, 1, "a\nb", "\\\"")"
                                                                "\n"
                                                                "  }\n\n"
                                                                "  Modele = \"Ennemis\"\n  Fin\n");
}

TEST(ProjetEcriture, ElementsEtDossiersEnLatin1) {
    DossierTemporaire dossier;
    AjouteElementBrut(Rang(ELEMENT_DOSSIER, "Niveaux", "", "", ""));
    AjouteElementBrut(Rang(ELEMENT_DOSSIER, "Monde 1", "", "", "Niveaux"));
    AjouteElementBrut(
        Rang(TYPE_CARTE, "caf\xE9", "cartes\\caf\xE9.map.c", "images\\caf\xE9 1.bmp", "Monde 1"));
    AjouteElementBrut(Rang(TYPE_MOSAIQUE, "decor", "decor.til.c", "", ""));
    AjouteElementBrut(Rang(TYPE_LISTE, "objets", "objets.lst.c", "objets.png", ""));

    std::string texte = SauveEtLit();
    size_t debut = texte.find(OUVERTURE_FICHIERS);
    ASSERT_NE(debut, std::string::npos);
    EXPECT_EQ(texte.substr(debut),
              OUVERTURE_FICHIERS +
                  " #--------------\n  El\xE9ment: Niveaux\n  Type: dossier\n"
                  " #--------------\n  El\xE9ment: Monde 1\n  Type: dossier\n  Dossier: Niveaux\n"
                  " #--------------\n  El\xE9ment: caf\xE9\n  Type: carte\n  Fichier: cartes\\caf\xE9.map.c\n"
                  "  Base: images\\caf\xE9 1.bmp\n  Dossier: Monde 1\n"
                  " #--------------\n  El\xE9ment: decor\n  Type: tileset\n  Fichier: decor.til.c\n  Base: \n"
                  " #--------------\n  El\xE9ment: objets\n  Type: liste\n  Fichier: objets.lst.c\n"
                  "  Base: objets.png\n"
                  " Fin\n" +
                  OUVERTURE_DONNEES + FIN_DONNEES_DEFAUT);
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

TEST(ProjetAllerRetour, SauveChargeSauveDonneLesMemesOctets) {
    DossierTemporaire dossier;
    Charge(ProjetComplet());
    const std::string table = Table();
    const std::string premier = SauveEtLit();

    NbElements = 0;
    ChargeProjet("projet.tsl");
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(SauveEtLit(), premier);
}

TEST(ProjetAllerRetour, TexteDerriereEndGardeEtJamaisDonneAilleurs) {
    DossierTemporaire dossier;
    Crochets.executeScript = ScriptEnregistre;
    const std::string corps =
        "  deffolder[2] = \"cartes\"\n  End\n  conv tset src=secret.bmp\nnote \xE9t\xE9\n\n";
    Charge(Projet(Ligne("a", "carte", "a.map.c"), corps));
    const std::string premier = SauveEtLit();
    ASSERT_EQ(premier.substr(premier.size() - OUVERTURE_DONNEES.size() - corps.size()),
              OUVERTURE_DONNEES + corps);

    for (int cycle = 0; cycle < 5; ++cycle) {
        AppelsScript.clear();
        ChargeProjet("projet.tsl");
        // Infos first, right behind its opening, with the table already read;
        // then the données section, right behind its opening.
        ASSERT_EQ(AppelsScript.size(), 2u);
        size_t infos = premier.find(" .section infos\n") + 16;
        EXPECT_EQ(AppelsScript[0].texte, premier.substr(infos));
        EXPECT_EQ(AppelsScript[0].nbElements, 1);
        EXPECT_EQ(AppelsScript[1].texte, corps);
        EXPECT_TRUE(AppelsScript[0].sansEtiquette && AppelsScript[1].sansEtiquette);
        EXPECT_EQ(std::string(DonneesProjet, TailleDonneesProjet), corps);
        EXPECT_EQ(SauveEtLit(), premier);
    }
}

TEST(ProjetAllerRetour, DonneesAuDelaDuMillionCoupeesALaSauvegarde) {
    DossierTemporaire dossier;
    Crochets.executeScript = ScriptEnregistre;
    std::string corps = "  End\n";
    while (corps.size() < TAILLE_DONNEES_MAX + 100)
        corps += "ligne " + std::to_string(corps.size()) + "\n";
    Charge(Projet("", corps));
    ASSERT_EQ(AppelsScript.size(), 2u);
    EXPECT_EQ(AppelsScript[1].texte, corps); // run in full
    EXPECT_EQ(TailleDonneesProjet, TAILLE_DONNEES_MAX);
    std::string texte = SauveEtLit();
    EXPECT_EQ(texte.substr(texte.find(OUVERTURE_DONNEES) + OUVERTURE_DONNEES.size()),
              corps.substr(0, TAILLE_DONNEES_MAX));
}

// ---- Reading the element list ------------------------------------------------

TEST(ProjetLecture, ClesDansToutOrdreEtLignesGardeesTellesQuelles) {
    DossierTemporaire dossier;
    Charge(Projet(
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
    Charge(Projet(Ligne("a", "carte", "a.map.c") + Ligne("x", "sprite", "x.c") + Ligne("y", "Carte") +
                  " #\n  El\xE9ment: z\n  type: carte\n  Fichier: z.c\n" + Ligne("b", "(sprite)", "b.c") +
                  " #\n  FIN de la liste\n" + Ligne("apres", "carte")));
    EXPECT_EQ(Table(),
              Rangee("a", TYPE_CARTE, "a.map.c") + Rangee("z", TYPE_AUCUN) + Rangee("b", TYPE_SPRITE, "b.c"));

    // The end of the file inside a row keeps the row.
    const std::string derniere = Ligne("fin", "", "f.c");
    EcritFichier("projet.tsl", ENTETE + " .section fichiers\n" + Ligne("a", "carte") +
                                   derniere.substr(0, derniere.size() - 1));
    ChargeProjet("projet.tsl");
    EXPECT_EQ(Table(), Rangee("a", TYPE_CARTE) + Rangee("fin", TYPE_AUCUN, "f.c"));
}

TEST(ProjetLecture, MilleLignesAuPlusDansLOrdre) {
    DossierTemporaire dossier;
    std::string lignes;
    for (int i = 0; i < NB_ELEMENTS_MAX + 5; ++i)
        lignes += Ligne("e" + std::to_string(i), "carte");
    Charge(Projet(lignes));
    ASSERT_EQ(NbElements, NB_ELEMENTS_MAX);
    EXPECT_STREQ(Elements[0].nom, "e0");
    EXPECT_STREQ(Elements[NB_ELEMENTS_MAX - 1].nom, "e999");
}

TEST(ProjetLecture, ChampsEtLignesBornes) {
    DossierTemporaire dossier;
    const std::string longue(1500, 'n'), tresLongue(3000, 'f'), bruit(5000, 'x');
    Charge(Projet(Ligne(longue, "carte", longue, longue, longue) + " " + bruit + "\n" +
                  Ligne("suite", "tileset", "", "", "") + "  Fichier: " + tresLongue + "\n" +
                  Ligne("fin", "palette")));
    ASSERT_EQ(NbElements, 3);
    EXPECT_EQ(std::string(Elements[0].nom), longue.substr(0, TAILLE_NOM - 1));
    EXPECT_EQ(std::string(Elements[0].fichier), longue.substr(0, TAILLE_CHEMIN - 1));
    EXPECT_EQ(std::string(Elements[0].fichierBase), longue.substr(0, TAILLE_CHEMIN - 1));
    EXPECT_EQ(std::string(Elements[0].dossier), longue.substr(0, TAILLE_DOSSIER - 1));
    // A line past 2047 characters goes on as a line of its own, which ends the row.
    EXPECT_EQ(Table().substr(Table().find('\n') + 1),
              Rangee("suite", TYPE_MOSAIQUE, tresLongue.substr(0, TAILLE_CHEMIN - 1)) +
                  Rangee("fin", TYPE_PALETTE));
}

TEST(ProjetLecture, SectionsTrouveesSansEgardALaCasseOuAbsentes) {
    DossierTemporaire dossier;
    EcritFichier("projet.tsl", ENTETE + "\t.SECTION FICHIERS\n" + Ligne("a", "carte") + " Fin\n");
    ChargeProjet("projet.tsl");
    EXPECT_EQ(Table(), Rangee("a", TYPE_CARTE));

    // Exactly one character, of any kind, between ".section" and the name.
    EcritFichier("projet.tsl", ENTETE + ".section\tfichiers\n" + Ligne("b", "carte") + " Fin\n");
    ChargeProjet("projet.tsl");
    EXPECT_EQ(Table(), Rangee("b", TYPE_CARTE));
    for (const char* ouverture : {".section  fichiers\n", ".section fichiers2\n", ".sectionfichiers\n"}) {
        EcritFichier("projet.tsl", ENTETE + ouverture + Ligne("c", "carte") + " Fin\n");
        ChargeProjet("projet.tsl");
        EXPECT_EQ(NbElements, 0) << ouverture;
    }

    // No fichiers section: an empty table, and the données section still read.
    AjouteElementBrut(NouvelElement(TYPE_CARTE, "reste", "r.c"));
    EcritFichier("projet.tsl", ENTETE + " .section " + DONNEES + "\n  End\n");
    ChargeProjet("projet.tsl");
    EXPECT_EQ(NbElements, 0);
    EXPECT_EQ(std::string(DonneesProjet, TailleDonneesProjet), "  End\n");
}

TEST(ProjetLecture, FichierAbsentOuVideNeChangeRien) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    Charge(Projet(Ligne("a", "carte"), "  End\nx\n"));
    ChargeProjet("absent.tsl");
    EXPECT_EQ(Table(), Rangee("a", TYPE_CARTE));
    EXPECT_EQ(DonneesProjet, nullptr); // the données text of the last load goes
    EcritFichier("vide.tsl", "");
    ChargeProjet("vide.tsl");
    EXPECT_EQ(Table(), Rangee("a", TYPE_CARTE));
    EXPECT_TRUE(enregistreur.messages.empty());
    EXPECT_FALSE(std::filesystem::exists("absent.tsl.bak") || std::filesystem::exists("vide.tsl.bak"));
    const std::string sauve = SauveEtLit();
    EXPECT_EQ(sauve.substr(sauve.size() - FIN_DONNEES_DEFAUT.size()), FIN_DONNEES_DEFAUT);
}

// ---- Encodings and line ends -------------------------------------------------

TEST(ProjetEncodage, Utf8BomEtCrLfLusCommeLatin1) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    const std::string latin1 = ProjetComplet();
    Charge(latin1);
    const std::string table = Table();
    const std::string attendu = SauveEtLit();
    ASSERT_EQ(NbElements, 5);

    const std::string variantes[] = {
        Remplace(latin1, "\xE9", "\xC3\xA9"),
        "\xEF\xBB\xBF" + latin1,
        "\xEF\xBB\xBF" + Remplace(latin1, "\xE9", "\xC3\xA9"),
        Remplace(latin1, "\n", "\r\n"),
    };
    for (const std::string& texte : variantes) {
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
    const std::string entetes[] = {
        "#Fichier de projet Tessellarium \n", // trailing blank
        "#Project file of another tool\n",
        "#Fichier de projet Tessellarium", // no line feed
    };
    for (const std::string& entete : entetes) {
        EnregistreurMessages enregistreur;
        EcritFichier("projet.tsl.bak", "ancienne copie");
        AjouteElementBrut(NouvelElement(TYPE_CARTE, "avant", "a.c"));
        const std::string texte =
            entete + (entete.back() == '\n' ? Projet(Ligne("a", "carte")).substr(ENTETE.size()) : "");
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
    EXPECT_EQ(sauve.substr(0, ENTETE.size()), ENTETE);
    EXPECT_EQ(sauve.substr(sauve.size() - FIN_DONNEES_DEFAUT.size()), FIN_DONNEES_DEFAUT);
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
    const std::string morceaux[] = {"El\xE9ment: ",
                                    "  Type: ",
                                    "dossier",
                                    "carte",
                                    "  Fichier: ",
                                    "Base: ",
                                    "Dossier: ",
                                    "\n",
                                    "\r\n",
                                    " .section fichiers\n",
                                    " .section " + DONNEES,
                                    "Fin",
                                    "\xC3",
                                    std::string(1, '\0'),
                                    "\xEF\xBB\xBF"};
    std::vector<std::string> textes;
    const std::string complet = ProjetComplet();
    for (size_t coupe = 0; coupe < complet.size(); coupe += 37)
        textes.push_back(complet.substr(0, coupe));
    textes.push_back(Binaire(2, Enregistrement("a", "b", "c", 1)).substr(0, 200));
    for (int n = 0; n < 40; ++n) {
        std::string texte = n % 2 ? ENTETE : "";
        size_t longueur = alea() % 6000;
        while (texte.size() < longueur) {
            if (alea() % 3 == 0)
                texte += morceaux[alea() % std::size(morceaux)];
            else
                texte += (char)(alea() % 256);
        }
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
