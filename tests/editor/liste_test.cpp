// The list editor end to end: an empty list of a model with parameters of
// three sizes opens as a plane; objects are placed, dragged, copied and
// painted as blocks, pasted, selected, deleted, undone; the saved file holds
// them sorted and reads back to the same objects.
#include "tests/editor/editeur.h"

#include "editor/liste.h"

#include <cstring>
#include <tuple>

namespace {

// x, y, type, then "vie" (2 bytes), "nom" (8 bytes of text), "vitesse" (4 bytes).
using Objet = std::tuple<int32_t, int32_t, int32_t, int32_t, std::string, int32_t>;

std::vector<Objet> Objets(int plan) {
    std::vector<Objet> v;
    const Plan& p = Plans[plan];
    for (int n = 0; n < p.nbObjets; ++n) {
        const uint8_t* o = p.objets + (size_t)n * p.tailleObjet;
        int32_t champs[3], vitesse = 0;
        int16_t vie;
        memcpy(champs, o, 12);
        memcpy(&vie, o + 12, 2);
        memcpy(&vitesse, o + 22, 4);
        v.emplace_back(champs[0], champs[1], champs[2], vie, std::string((const char*)o + 14, strnlen((const char*)o + 14, 8)),
                       vitesse);
    }
    return v;
}

struct Liste : EditeurEssai {
    int carte = -1;
    void SetUp() override {
        EditeurEssai::SetUp();
        Execute("defmodele \"Ennemi\" {\n 1 2 \"vie\" \"3\"\n 2 8 \"nom\" \"bob\"\n 1 4 \"vitesse\" \"0x10\"\n}\n"
                "selmodele \"Ennemi\"\n");
        carte = Carte("a", 20, 12, 3);
        EcritFichier("l.lst.c", "//l.lst.c\r\n//Converti avec Tessellarium par Zorvan\r\n//Liste (\"a.til.c\", \"Ennemi\")\r\n"
                                "//Taille: 8*8\r\n//M\xE9moire: 0 octets\r\n\r\n#include \"def.h\"\r\n\r\n"
                                "const unsigned int l_liste_nbEle=0;\r\n\r\nconst SPRITE_LISTE l_liste[]=\t{\r\n};\r\n");
        AjouteElement(NouvelElement(TYPE_LISTE, "l", "l.lst.c"));
    }
    // Opens the map with the list as plane 2, active.
    void Ouvre() {
        ASSERT_EQ(OuvreEditeur(carte), 1);
        Execute("maps.add \"l\"\n");
        ASSERT_EQ(NbPlans, 2);
        ActivePlan(1);
        ASSERT_EQ(Plans[1].typePlan, TYPE_LISTE);
    }
    static void Clic(int x, int y, bool ctrl = false) {
        Vue.curseurX = x;
        Vue.curseurY = y;
        PresseListe(ctrl, false);
    }
};

TEST_F(Liste, PlacerTirerCopierPeindreAnnulerEnregistrer) {
    Ouvre();
    EXPECT_EQ(Plans[1].tailleObjet, 12 + 2 + 8 + 4);
    // Three clicks with a type place three objects on the grid, with the model's defaults.
    ChoisitValeur(5);
    Clic(20, 20);
    Clic(40, 8);
    Clic(10, 30);
    EXPECT_EQ(Objets(1), (std::vector<Objet>{{16, 16, 5, 3, "bob", 16}, {40, 8, 5, 3, "bob", 16}, {8, 24, 5, 3, "bob", 16}}));
    // A press on an object and a release elsewhere drags it, on the grid.
    Clic(17, 17);
    EXPECT_EQ(Vue.objetTire, 1);
    EXPECT_EQ(ValeurCourante, 0u);
    Vue.curseurX = 50;
    Vue.curseurY = 33;
    RelacheObjetTire();
    EXPECT_EQ(std::get<0>(Objets(1)[0]), 48);
    EXPECT_EQ(std::get<1>(Objets(1)[0]), 32);
    // A right drag over (0,0)-(47,47) takes the two objects in it as a block
    // of 48 pixels; painted at (96,56) it repeats once.
    ObjetCourant = -1;
    GlisseDroitListe(0, 0, 47, 47, false);
    EXPECT_EQ(std::pair(Motif.largeurMotifPx, Motif.hauteurMotifPx), std::pair(48, 48));
    EXPECT_EQ(MotifObjets[0].nombre, 2); // the list is its own only link: slot 0
    PeintSelection(96, 56, 143, 103, false);
    std::vector<Objet> attendu = {{48, 32, 5, 3, "bob", 16}, {40, 8, 5, 3, "bob", 16}, {8, 24, 5, 3, "bob", 16},
                                  {136, 64, 5, 3, "bob", 16}, {104, 80, 5, 3, "bob", 16}};
    EXPECT_EQ(Objets(1), attendu);
    AnnuleLies();
    EXPECT_EQ(Plans[1].nbObjets, 3);
    RetablitLies();
    EXPECT_EQ(Objets(1), attendu);
    // Copy and paste one object: it comes to the view's top left corner, selected.
    LacheMotif();
    Clic(41, 9);
    EXPECT_EQ(ObjetCourant, 1);
    RelacheObjetTire();
    CopieObjetsChoisis();
    ColleObjetsCopies();
    attendu.emplace_back(0, 0, 5, 3, "bob", 16);
    EXPECT_EQ(Objets(1), attendu);
    EXPECT_EQ(NbSelectionObjets, 1);
    // Ctrl and a right drag toggle the objects under it; Delete takes the selection away.
    GlisseDroitListe(100, 60, 150, 100, true);
    EXPECT_EQ(NbSelectionObjets, 3);
    GlisseDroitListe(130, 60, 150, 70, true); // takes (136,64) out again
    EXPECT_EQ(NbSelectionObjets, 2);
    SupprimeObjetsChoisis();
    attendu.erase(attendu.begin() + 5);
    attendu.erase(attendu.begin() + 4);
    EXPECT_EQ(Objets(1), attendu);

    // The cursor over a list: a copy drag fills its rectangle in blue at the
    // pulse's alpha, on the grid.
    ComposeVue();
    auto Pixel = [](int x, int y) {
        const uint8_t* q = SurfaceEditeur.pixels + (size_t)(SurfaceEditeur.hauteur - 1 - y) * SurfaceEditeur.pas + 3 * x;
        return (uint32_t)q[2] << 16 | (uint32_t)q[1] << 8 | q[0];
    };
    const uint32_t avant = Pixel(70, 70);
    Vue.copieActive = true;
    Vue.departX = 66;
    Vue.departY = 66;
    Vue.curseurX = 90;
    Vue.curseurY = 90;
    ComposeVue();
    const uint32_t bleu = 0x0000FF;
    auto Melange = [](uint32_t s, uint32_t d, int a) {
        uint32_t r = 0;
        for (int c = 0; c < 24; c += 8) r |= (((s >> c & 255) * (uint32_t)a + (d >> c & 255) * (uint32_t)(255 - a)) >> 8) << c;
        return r;
    };
    EXPECT_EQ(Pixel(70, 70), Melange(bleu, avant, Pulsation(HorlogeEssai)));
    Vue.copieActive = false;

    // Saved sorted by x then y; the order in memory stays; read back the same.
    ASSERT_EQ(EnregistrePlan(1), 1);
    EXPECT_EQ(Objets(1), attendu);
    std::sort(attendu.begin(), attendu.end());
    FermePlans();
    EditeurOuvert = false;
    Ouvre();
    EXPECT_EQ(Objets(1), attendu);
    EXPECT_TRUE(journal.messages.empty()) << journal.messages.front();
}

TEST_F(Liste, ListePleineEtFichierAbime) {
    Execute("system.objetsmax = 3\n");
    Ouvre();
    ChoisitValeur(2);
    for (int i = 0; i < 4; ++i) Clic(i * 16, 0);
    EXPECT_EQ(Plans[1].nbObjets, 3);
    EXPECT_EQ(journal.messages, std::vector<std::string>{"[Error] Too many elements, please redefine the maximum "
                                                         "number of elements for lists in the general options."});
    // A paste into the full list stops at once, with the list's name as title.
    Clic(1, 1);
    RelacheObjetTire();
    CopieObjetsChoisis();
    journal.messages.clear();
    ColleObjetsCopies();
    EXPECT_EQ(journal.messages.size(), 1u);
    EXPECT_EQ(journal.messages[0].rfind("[l] Too many elements", 0), 0u);
    FermePlans();
    EditeurOuvert = false;

    // A list whose objects do not fit the template offers the recovery pass.
    std::string abime = LitFichier("l.lst.c");
    abime.replace(abime.find("nbEle=0"), 7, "nbEle=2");
    abime.replace(abime.find("\t{\r\n};"), 6, "\t{\r\n\t{7;9;9},\r\n};");
    EcritFichier("l.lst.c", abime);
    journal.messages.clear();
    journal.reponses = {REPONSE_OK, REPONSE_ANNULER}; // the reader's box, then the question
    ASSERT_EQ(OuvreEditeur(carte), 1);
    Execute("maps.add \"l\"\n");
    EXPECT_EQ(NbPlans, 1); // refused at the question
    ASSERT_FALSE(journal.messages.empty());
    EXPECT_EQ(journal.messages.back().rfind("[Attention] The list format is incorrect", 0), 0u);
}

} // namespace
