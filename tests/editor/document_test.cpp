// The editor's document end to end: maps made by conv opened as planes,
// painted, copied, undone and redone, saved; each saved file is compared
// whole with bytes worked out here from the format's rules, and read back.
#include "tests/editor/editeur.h"

#include "format/ecriture.h"
#include "platform/fichiers.h"
#include "render/chargeurs.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace {

// The built-in map layout written by hand: the file conv wrote, its first
// line naming the map's own file, its values replaced.
std::string CarteStandard(const std::string& ecrite, const std::string& fichier, const std::vector<uint32_t>& c,
                          int largeur, int octets) {
    const std::string ouverture = "=\t{\r\n\t{";
    const size_t debut = ecrite.find(ouverture);
    std::string s = "//" + fichier + ecrite.substr(ecrite.find("\r\n"), debut + ouverture.size() - ecrite.find("\r\n"));
    for (size_t i = 0; i < c.size(); ++i) {
        const int x = (int)(i % (size_t)largeur);
        if (x > 0 && x % 8 == 0) s.replace(s.size() - 1, 1, "\r\n");
        char v[16];
        snprintf(v, sizeof v, octets == 1 ? "0x%02x, " : octets == 2 ? "0x%04x, " : "0x%08x, ", c[i]);
        s += v;
        if (x == largeur - 1) s.replace(s.size() - 2, 2, "},\r\n\t{");
    }
    s.resize(s.size() - 5);
    return s + "\r\n};\r\n";
}

// A block of cells repeated over a rectangle, as painting does.
void Repete(std::vector<uint32_t>& c, int largeur, const std::vector<uint32_t>& bloc, int bl, int bh, int x0, int y0,
            int x1, int y1) {
    for (int y = y0; y <= y1; ++y)
        for (int x = x0; x <= x1; ++x) {
            const uint32_t v = bloc[(size_t)((y - y0) % bh * bl + (x - x0) % bl)];
            if (v != 0xFFFF) c[(size_t)y * largeur + x] = v;
        }
}

std::vector<uint32_t> Bloc(const std::vector<uint32_t>& c, int largeur, int x0, int y0, int l, int h) {
    std::vector<uint32_t> b;
    for (int y = y0; y < y0 + h; ++y)
        for (int x = x0; x < x0 + l; ++x) b.push_back(c[(size_t)y * largeur + x]);
    return b;
}

using Document = EditeurEssai;

TEST_F(Document, PeindreCopierAnnulerEnregistrerSurDeuxPlansLies) {
    // The value painted carries what the cell width holds: a 4-bit map's
    // bank and mirror bits, a 32-bit map's high half.
    const struct {
        const char* options;
        int octets;
        uint32_t valeur;
    } cas[] = {{"", 2, 5}, {"mapmode=8", 1, 0xF5}, {"mapmode=32", 4, 0x12345}, {"+16c", 2, 0x2C05}};
    for (const auto& k : cas) {
        SCOPED_TRACE(k.options);
        FermePlans();
        LacheMotif();
        NbElements = 0;
        const int a = Carte("a", 12, 6, 3, k.options), b = Carte("b", 10, 5, 5, k.options);
        ASSERT_GE(a, 0);
        ASSERT_GE(b, 0);
        const std::string ecriteA = LitFichier("a.map.c"), ecriteB = LitFichier("b.map.c");
        ASSERT_EQ(OuvreEditeur(a), 1);
        Execute("maps.add \"b\"\nfonds.liemap 1, 2\n");
        ASSERT_EQ(NbPlans, 2);
        EXPECT_EQ(std::string(TitreEditeur), "a - Map editor");
        const std::vector<uint32_t> A0 = Cellules(0), B0 = Cellules(1);
        EXPECT_EQ(Plans[0].formatCellule, k.octets == 1 ? 0 : k.octets == 2 ? 1 : 2);

        // A value paints the active plane only; a left click without a drag is one cell.
        ChoisitValeur(k.valeur);
        Vue.peintureActive = true;
        PeintSelection(0, 0, 15, 7, false);
        PeintSelection(8, 40, 8, 40, false);
        std::vector<uint32_t> A1 = A0;
        A1[0] = A1[1] = A1[5 * 12 + 1] = k.valeur;
        EXPECT_EQ(Cellules(0), A1);
        EXPECT_EQ(Cellules(1), B0);
        EXPECT_EQ(std::string(TitreEditeur), "a* - Map editor");

        // A 2 x 2 block copied from both planes, painted bottom right to top
        // left over 5 x 3 cells: the block repeats from the top left corner.
        Vue.peintureActive = false;
        CopieSelection(15, 23, 0, 8, false);
        EXPECT_EQ(Motif.nbPlansMotif, 2);
        EXPECT_EQ(std::pair(Motif.largeurMotif, Motif.hauteurMotif), std::pair(2, 2));
        Vue.peintureActive = true;
        PeintSelection(63, 23, 24, 0, false);
        Vue.peintureActive = false;
        std::vector<uint32_t> A2 = A1, B2 = B0;
        Repete(A2, 12, Bloc(A1, 12, 0, 1, 2, 2), 2, 2, 3, 0, 7, 2);
        Repete(B2, 10, Bloc(B0, 10, 0, 1, 2, 2), 2, 2, 3, 0, 7, 2);
        EXPECT_EQ(Cellules(0), A2);
        EXPECT_EQ(Cellules(1), B2);

        // Undo takes both planes back a step at a time; redo forward again.
        AnnuleLies();
        EXPECT_EQ(Cellules(0), A1);
        EXPECT_EQ(Cellules(1), B0);
        AnnuleLies();
        AnnuleLies();
        EXPECT_EQ(Cellules(0), A0);
        EXPECT_FALSE(AnnulerActif);
        EXPECT_EQ(std::string(TitreEditeur), "a - Map editor"); // back at the saved state
        RetablitLies();
        RetablitLies();
        RetablitLies();
        EXPECT_EQ(Cellules(0), A2);
        EXPECT_EQ(Cellules(1), B2);
        EXPECT_FALSE(RetablirActif);

        // Ctrl+S saves the linked planes, each then running its hook; the
        // files are the format's bytes for the cells, and read back the same.
        EcritFichier("script.spt", "onsave b:\neditor.grid = 1\n");
        ReglagesEdit.grille = 0;
        EnregistreLies();
        EXPECT_EQ(ReglagesEdit.grille, 1);
        EXPECT_EQ(std::string(TitreEditeur), "a - Map editor");
        EXPECT_EQ(LitFichier("a.map.c"), CarteStandard(ecriteA, "a.map.c", A2, 12, k.octets));
        EXPECT_EQ(LitFichier("b.map.c"), CarteStandard(ecriteB, "b.map.c", B2, 10, k.octets));
        FermePlans();
        EXPECT_EQ(Relues(a), A2);
        EXPECT_EQ(Relues(b), B2);
    }
    EXPECT_TRUE(journal.messages.empty()) << journal.messages.front();
}

TEST_F(Document, RetablirDisparaitApresUneNouvellePeintureEtLeBlocInvisibleEpargne) {
    const int a = Carte("a", 8, 4, 3);
    ASSERT_EQ(OuvreEditeur(a), 1);
    const std::vector<uint32_t> A0 = Cellules(0);
    Vue.peintureActive = true;
    ChoisitValeur(2);
    PeintSelection(0, 0, 0, 0, false);
    AnnuleLies();
    EXPECT_TRUE(RetablirActif);
    ChoisitValeur(3);
    PeintSelection(8, 0, 8, 0, false);
    EXPECT_FALSE(RetablirActif);
    RetablitLies();
    std::vector<uint32_t> attendu = A0;
    attendu[1] = 3;
    EXPECT_EQ(Cellules(0), attendu);

    // 0xFFFF in a block leaves the cell; 0 leaves it only under zeromask.
    Plans[0].cellules[0] = 0xFFFF;
    Plans[0].cellules[1] = 0;
    Vue.peintureActive = false;
    CopieSelection(0, 0, 15, 0, true);
    Vue.peintureActive = true;
    Plans[0].cellules[16] = Plans[0].cellules[17] = 7;
    ReglagesEdit.masqueZero = 1;
    PeintSelection(0, 16, 15, 16, false);
    EXPECT_EQ(Plans[0].cellules[16], 7u);
    EXPECT_EQ(Plans[0].cellules[17], 7u);
    ReglagesEdit.masqueZero = 0;
    PeintSelection(0, 16, 15, 16, false);
    EXPECT_EQ(Plans[0].cellules[16], 7u);
    EXPECT_EQ(Plans[0].cellules[17], 0u);
}

// A format of the user's own, in bytes: the tileset's name and a line end
// (\n in a format text is a CR LF), the cell width, the size, the cells. A
// new format starts as a copy of the selected one: what it does not want
// is set empty.
TEST_F(Document, FormatBinaireDeLUtilisateur) {
    const int a = Carte("a", 6, 3, 3);
    Execute("defformat \"Octets\" {\n map {\n  ext = \".bin\"\n  declaration = \"%link%\\n%#1depth%%#2sizex%%#2sizey%\"\n"
            "  element = \"%2b\"\n  element2 = \"%1b\"\n  element3 = \"%4b\"\n  n_every = 0\n  line = \"\"\n"
            "  end = \"\"\n }\n}\n");
    auto Le = [](uint32_t v, int n) {
        std::string s;
        for (int i = 0; i < n; ++i) s += (char)(v >> 8 * i);
        return s;
    };
    std::vector<uint32_t> cellules(12);
    for (size_t i = 0; i < cellules.size(); ++i) cellules[i] = (uint32_t)(i * 3 % 5);
    std::string fichier = "a.til.c\r\n" + Le(16, 1) + Le(4, 2) + Le(3, 2);
    for (uint32_t c : cellules) fichier += Le(c, 2);
    EcritFichier("niveau.bin", fichier);
    ElementProjet ligne = NouvelElement(TYPE_CARTE, "niveau", "niveau.bin");
    const int n = AjouteElement(ligne);
    ASSERT_GE(n, 0);
    ASSERT_GE(a, 0);
    ASSERT_EQ(OuvreEditeur(n), 1) << (journal.messages.empty() ? "" : journal.messages[0]);
    EXPECT_EQ(Cellules(0), cellules);
    ChoisitValeur(0x1234);
    Vue.peintureActive = true;
    PeintSelection(8, 8, 23, 8, false);
    cellules[5] = cellules[6] = 0x1234;
    EnregistreLies();
    std::string attendu = "a.til.c\r\n" + Le(16, 1) + Le(4, 2) + Le(3, 2);
    for (uint32_t c : cellules) attendu += Le(c, 2);
    EXPECT_EQ(LitFichier("niveau.bin"), attendu);
    EXPECT_EQ(Relues(n), cellules);
}

TEST_F(Document, MauvaisesEntreesNOuvrentRienAMoitie) {
    const int a = Carte("a", 4, 2, 3);
    ASSERT_GE(a, 0);
    // A map whose tileset is missing, and one declared past the limits.
    std::string texte = LitFichier("a.map.c");
    std::string sansTuiles = texte;
    sansTuiles.replace(sansTuiles.find("a.til.c"), 7, "z.til.c");
    EcritFichier("sans.map.c", sansTuiles);
    AjouteElement(NouvelElement(TYPE_CARTE, "sans", "sans.map.c"));
    EcritFichier("abime.pal.c", "//x\r\nconst unsigned short z[3]={ zz");
    std::string paletteAbimee = LitFichier("a.til.c");
    paletteAbimee.replace(paletteAbimee.find("a.pal.c"), 7, "abime.pal.c");
    EcritFichier("abime.til.c", paletteAbimee);
    std::string sansPalette = texte;
    sansPalette.replace(sansPalette.find("a.til.c"), 7, "abime.til.c");
    EcritFichier("abimee.map.c", sansPalette);
    AjouteElement(NouvelElement(TYPE_CARTE, "abimee", "abimee.map.c"));
    std::string enorme = texte;
    enorme.replace(enorme.find("[2][4]"), 6, "[5000][5000]");
    EcritFichier("enorme.map.c", enorme);
    AjouteElement(NouvelElement(TYPE_CARTE, "enorme", "enorme.map.c"));
    ASSERT_EQ(OuvreEditeur(a), 1);
    journal.messages.clear();
    Execute("maps.add \"sans\"\nmaps.add \"abimee\"\nmaps.add \"enorme\"\nmaps.add \"inconnu\"\nmaps.add \"a\"\n");
    EXPECT_EQ(NbPlans, 1);
    EXPECT_EQ(journal.messages, (std::vector<std::string>{
                                    "[z.til.c] The specified tileset file doesn't exist",
                                    "[Debuging] Attempts to recover from a fatal reading error...",
                                    "[Debuging] Attempts to recover from a fatal reading error...",
                                    "[Debuging] The file format doesn't match with the expected one.",
                                }));

    // Twenty planes at most; a slot number still replaces.
    for (int i = 0; i < 20; ++i) {
        const std::string nom = "c" + std::to_string(i);
        EcritFichier(nom + ".map.c", texte);
        AjouteElement(NouvelElement(TYPE_CARTE, nom.c_str(), (nom + ".map.c").c_str()));
    }
    for (int i = 0; i < 20; ++i) Execute("maps.add \"c" + std::to_string(i) + "\"\n");
    EXPECT_EQ(NbPlans, 20);
    EXPECT_EQ(std::string(PlanElement[19]->nom), "c18");
    journal.messages.clear();
    EXPECT_EQ(AjouteFond(TrouveElement(TYPE_CARTE, "c19")), -1);
    EXPECT_EQ(journal.messages, std::vector<std::string>{"[Error] The background limit is reached!"});
    Execute("maps.add \"c19\", 3\n");
    EXPECT_EQ(NbPlans, 20);
    EXPECT_EQ(std::string(PlanElement[2]->nom), "c19");
    EXPECT_EQ(std::string(PlanElement[1]->nom), "c0");
}

TEST_F(Document, UndoSansMemoireSeTaitEtLEtoileResteJusquALaSauvegarde) {
    const int a = Carte("a", 8, 4, 3);
    ASSERT_EQ(OuvreEditeur(a), 1);
    journal.messages.clear();
    OctetsAnnulationMax = 0; // every growth of the undo buffer is refused
    ChoisitValeur(1);
    Vue.peintureActive = true;
    PeintSelection(0, 0, 0, 0, false);
    EXPECT_EQ(Plans[0].cellules[0], 1u);
    EXPECT_EQ(Piles[0].tampon, nullptr);
    EXPECT_TRUE(journal.messages.empty());
    OctetsAnnulationMax = INT64_MAX;
    PeintSelection(8, 0, 8, 0, false);
    EXPECT_EQ(std::string(TitreEditeur), "a* - Map editor");
    AnnuleLies(); // nothing below the new first snapshot
    EXPECT_EQ(Plans[0].cellules[1], 1u);
    EXPECT_EQ(std::string(TitreEditeur), "a* - Map editor");
    EnregistreLies();
    EXPECT_EQ(std::string(TitreEditeur), "a - Map editor");
}

// Past the memory limit the stack forgets its oldest states: it keeps
// three snapshots, and undo still reaches the oldest one kept; the saved
// state is out of reach, so the star stays.
TEST_F(Document, LimiteDeMemoireFaitUnAnneau) {
    const int a = Carte("a", 8, 4, 3);
    ASSERT_EQ(OuvreEditeur(a), 1);
    const int64_t instantane = 8 * 4 * 4;
    LimiteMemoireAnnulation = 3 * instantane;
    Vue.peintureActive = true;
    for (uint32_t v = 1; v <= 6; ++v) {
        ChoisitValeur(v);
        PeintSelection(0, 0, 0, 0, false);
    }
    EXPECT_EQ(Piles[0].courant, 2);
    EXPECT_EQ(Piles[0].perdu, 1);
    EXPECT_EQ(MemoireAnnulation, 3 * instantane);
    AnnuleLies();
    AnnuleLies();
    EXPECT_EQ(Plans[0].cellules[0], 4u);
    AnnuleLies(); // nothing older is left
    EXPECT_EQ(Plans[0].cellules[0], 4u);
    EXPECT_EQ(std::string(TitreEditeur), "a* - Map editor");
}

TEST_F(Document, SauvegardeRateeGardeLAncienFichierEtLaMarque) {
    const int a = Carte("a", 8, 4, 3);
    const std::string avant = LitFichier("a.map.c");
    ASSERT_EQ(OuvreEditeur(a), 1);
    ChoisitValeur(9);
    Vue.peintureActive = true;
    PeintSelection(0, 0, 0, 0, false);
    journal.messages.clear();
    OctetsAvantEchecEcriture = 100; // a disk that fills up
    EXPECT_EQ(EnregistrePlan(0), 0);
    OctetsAvantEchecEcriture = -1;
    EXPECT_EQ(LitFichier("a.map.c"), avant);
    EXPECT_EQ(journal.messages.size(), 1u);
    EXPECT_TRUE(PlanModifie(0));
    EXPECT_EQ(std::string(TitreEditeur), "a* - Map editor");
    EXPECT_EQ(Plans[0].cellules[0], 9u);
    std::vector<std::string> fichiers;
    for (const auto& e : std::filesystem::directory_iterator(".")) fichiers.push_back(e.path().filename().string());
    EXPECT_EQ(std::count_if(fichiers.begin(), fichiers.end(),
                            [](const std::string& f) { return f.rfind("a.map.c", 0) == 0 && f != "a.map.c"; }),
              0);
}

TEST_F(Document, FermerDemandeUneFoisParGroupeDePlansLies) {
    Carte("b", 4, 2, 5);
    const int a = Carte("a", 8, 4, 3);
    ASSERT_EQ(OuvreEditeur(a), 1);
    Execute("maps.add \"b\"\nmaps.link 1, 2\n");
    ChoisitValeur(4);
    Vue.peintureActive = true;
    CopieSelection(0, 0, 7, 7, false);
    PeintSelection(8, 0, 15, 7, false);
    journal.messages.clear();
    journal.reponses = {REPONSE_OUI};
    EXPECT_EQ(FermeEditeur(), 1);
    EXPECT_EQ(journal.messages, std::vector<std::string>{"[Question] The file a has been modified. Do you want to "
                                                        "save the changes?"});
    EXPECT_FALSE(EditeurOuvert);
    EXPECT_EQ(NbPlans, 0);
    EXPECT_NE(LitFichier("b.map.c").find("0x"), std::string::npos);

    // The save on the way wrote the state script: b comes back with a.
    ASSERT_EQ(OuvreEditeur(a), 1);
    EXPECT_EQ(NbPlans, 2);
    PeintSelection(0, 0, 0, 0, false);
    journal.reponses = {REPONSE_ANNULER};
    EXPECT_EQ(FermeEditeur(), 0);
    EXPECT_EQ(NbPlans, 2);
}

TEST_F(Document, ScriptDEtatEtEvenementOuvrentEtReglent) {
    Carte("b", 4, 2, 5);
    const int a = Carte("a", 8, 4, 3);
    EcritFichier("a.map.spt", "maps.add \"b\"\nfonds[2].grille 16, 0\nfonds.liemap 1, 2, 2, 7\n"
                              "fonds[2].vitessedefil 0.5, -1\nfonds.ajcondition 5, 9, 20 =\n"
                              "maps[1].addcondition 10, 12, 30\nmaps[1].addcondition 10, 12, 30\nfonds[2].emulgba 1\n");
    ASSERT_EQ(OuvreEditeur(a), 1);
    ASSERT_EQ(NbPlans, 2);
    EXPECT_EQ(std::pair(Plans[1].grilleX, Plans[1].grilleY), std::pair(16, 16));
    EXPECT_EQ(Liens[0][0], 0);
    EXPECT_EQ(Liens[0][1], 1);
    EXPECT_EQ(Liens[0][2], FIN_LIENS);
    EXPECT_EQ(Plans[1].vitesseX, 0.5);
    EXPECT_EQ(Plans[1].vitesseY, 1.0);
    EXPECT_EQ(Plans[1].emulgba, 1);
    EXPECT_EQ(NbConditions[0], 2);
    // 5..9 shown as 20 each; 10..12 counting from 30; the picker inverts.
    EXPECT_EQ(ConvertitCellule(7, 0, 0xFFFFFFFF), 20);
    EXPECT_EQ(ConvertitCellule(11, 0, 0xFFFFFFFF), 31);
    EXPECT_EQ(ConvertitCellule(0x1234, 0, 0xFF), 0x34);
    EXPECT_EQ(InverseCellule(20, 0), 5);
    EXPECT_EQ(InverseCellule(32, 0), 12);
    EXPECT_EQ(InverseCellule(33, 0), 33);

    // A hook that returns 0 closes the editor at once.
    FermeEditeur();
    EcritFichier("script.spt", "onopen a:\nreturn 0\n");
    EXPECT_EQ(OuvreEditeur(a), 0);
    EXPECT_EQ(NbPlans, 0);
    EXPECT_FALSE(EditeurOuvert);
}

TEST_F(Document, TaillesDeTuilesEtTexteMemoire) {
    const int a = Carte("a", 4, 4, 3, "tdim=16x16");
    ASSERT_GE(a, 0);
    ASSERT_EQ(OuvreEditeur(a), 1);
    EXPECT_EQ(Plans[0].baseX, 16);
    const std::vector<uint32_t> avant = Cellules(0);
    const int tuiles = Plans[0].nbTuiles;
    // 16 x 16 blocks as 8 x 8 tiles: each cell becomes four of its units.
    ASSERT_EQ(ConvertitTailleTuiles(8, 8), 1);
    EXPECT_EQ(std::pair(Plans[0].sizex, Plans[0].sizey), std::pair(4, 4));
    EXPECT_EQ(Plans[0].nbTuiles, tuiles * 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(Plans[0].cellules[y * 4 + x], avant[(size_t)(y / 2 * 2 + x / 2)] * 4 + (y % 2) * 2 + x % 2);
    EXPECT_TRUE(PlanModifie(0));
    FermePlans();

    // A tile size the editor cannot show.
    const int b = Carte("b", 2, 2, 3, "tdim=8x24");
    journal.messages.clear();
    EXPECT_EQ(OuvreEditeur(b), 0);
    ASSERT_EQ(journal.messages.size(), 1u);
    EXPECT_EQ(journal.messages[0].rfind("[Oops!] Your map format is not useable", 0), 0u);

    const struct {
        int64_t octets;
        const char* texte;
    } cas[] = {{0, "Mem: 0.00 ko"},          {10239, "Mem: 10.00 ko"},       {10240, "Mem: 10.0 ko"},
               {1023999, "Mem: 999 ko"},     {1024000, "Mem: 0.98 Mo"},      {104857599, "Mem: 100.0 Mo"},
               {1048575999, "Mem: 999 Mo"},  {1048576000, "Mem: 0.98 Go"}};
    for (const auto& c : cas) {
        MemoireAnnulation = c.octets;
        MajMemoire();
        EXPECT_EQ(std::string(TexteMemoire), c.texte);
    }
    MemoireAnnulation = 0;
}

} // namespace

namespace {

// A list opens as a plane with its objects, and saves them sorted by x,
// then y, in the file only.
TEST_F(Document, ListeOuverteEtEnregistreeTriee) {
    const int a = Carte("a", 4, 2, 3);
    EcritFichier("l.lst.c", "//l.lst.c\r\n//Converti avec Tessellarium par Zorvan\r\n//Liste (\"a.til.c\")\r\n"
                            "//Taille: 8*8\r\n//M\xE9moire: 36 octets\r\n\r\n#include \"def.h\"\r\n\r\n"
                            "const unsigned int l_liste_nbEle=3;\r\n\r\nconst SPRITE_LISTE l_liste[]=\t{"
                            "\r\n\t{3,10,20},\r\n\t{1,5,6},\r\n\t{2,5,2},\r\n};\r\n");
    AjouteElement(NouvelElement(TYPE_LISTE, "l", "l.lst.c"));
    ASSERT_EQ(OuvreEditeur(a), 1);
    Execute("maps.add \"l\"\n");
    ASSERT_EQ(NbPlans, 2);
    const Plan& l = Plans[1];
    EXPECT_EQ(l.typePlan, TYPE_LISTE);
    ASSERT_EQ(l.nbObjets, 3);
    int32_t premier[3];
    memcpy(premier, l.objets, 12);
    EXPECT_EQ(std::vector<int32_t>(premier, premier + 3), (std::vector<int32_t>{10, 20, 3}));
    ASSERT_EQ(EnregistrePlan(1), 1);
    const std::string ecrite = LitFichier("l.lst.c");
    const size_t a1 = ecrite.find("{1,5,6}"), a2 = ecrite.find("{2,5,2}"), a3 = ecrite.find("{3,10,20}");
    ASSERT_NE(a3, std::string::npos);
    EXPECT_LT(a2, a1);
    EXPECT_LT(a1, a3);
    memcpy(premier, l.objets, 12); // the order in memory stays
    EXPECT_EQ(premier[2], 3);
    EXPECT_EQ(journal.messages, std::vector<std::string>{});
}

} // namespace

namespace {

// One view rectangle gives each linked plane the cells under it by that
// plane's own cell size and its speed relative to the active plane's.
TEST_F(Document, PlansDeTaillesEtVitessesDifferentes) {
    Carte("g", 16, 16, 5, "tdim=16x16"); // 8 x 8 cells of 16 pixels
    const int a = Carte("a", 24, 16, 3);
    ASSERT_EQ(OuvreEditeur(a), 1);
    Execute("maps.add \"g\"\nmaps.link 1, 2\nmaps[2].scrollrate 0.5, 0.5\n");
    ASSERT_EQ(NbPlans, 2);
    ASSERT_EQ(std::pair(Plans[1].sizex, Plans[1].sizey), std::pair(8, 8));
    DecalageX = 64; // plane 1 is 8 cells along, plane 2 (speed 0.5, 16 pixels) 2 cells
    const std::vector<uint32_t> g0 = Cellules(1), a0 = Cellules(0);
    Vue.peintureActive = true;
    // Plane 1: cells 8-9 x 0-1; plane 2: cell 2 x 0. The block's size is the
    // last plane's copy: one cell.
    CopieSelection(0, 0, 15, 15, false);
    EXPECT_EQ(std::pair(Motif.largeurMotif, Motif.hauteurMotif), std::pair(1, 1));
    EXPECT_EQ(std::pair(Motif.largeurMotifPx, Motif.hauteurMotifPx), std::pair(8, 8));
    // Plane 1: cells 12-15 x 4-5; plane 2: cells 4-5 x 2.
    PeintSelection(32, 32, 63, 47, false);
    std::vector<uint32_t> g1 = g0, a1 = a0;
    g1[2 * 8 + 4] = g1[2 * 8 + 5] = g0[2];
    for (int y = 4; y <= 5; ++y)
        for (int x = 12; x <= 15; ++x) a1[(size_t)y * 24 + x] = a0[8];
    EXPECT_EQ(Cellules(1), g1);
    EXPECT_EQ(Cellules(0), a1);
}

} // namespace
