// Object lists: the object template built from the list section and the
// parameter model, and objects written and read through it.
#include "core/modeles.h"
#include "format/formats.h"
#include "format/lecture.h"
#include "format/liste.h"
#include "platform/texte.h"
#include "tests/support/enregistreur.h"
#include "tests/support/tampons.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

struct Liste : TestFormat {
    ModeleParametres& Modele() { return TableModeles[ModeleSelectionne]; }
};

using Parametre = std::tuple<const char*, int, int>; // name, kind, size

void Parametres(ModeleParametres& m, const std::vector<Parametre>& p) {
    m.nbParametres = 0;
    m.taille = TailleModele(m);
    for (const auto& [nom, genre, taille] : p)
        AjouteParametre(m, nom, genre, taille, "");
}

// One object of the model: x, y, type, then the parameters.
struct Objet {
    std::vector<uint8_t> octets;
    const ModeleParametres* m;
    explicit Objet(const ModeleParametres& modele) : octets((size_t)TailleModele(modele), 0), m(&modele) {}
    void Entier(int32_t decalage, int32_t v) { memcpy(octets.data() + decalage, &v, 4); }
    void Base(int32_t x, int32_t y, int32_t type) { Entier(0, x), Entier(4, y), Entier(8, type); }
    uint8_t* Parametre(int i) { return octets.data() + TAILLE_OBJET_BASE + DecalageParametre(*m, i); }
};

std::string EcritObjets(const char* gabarit, const std::vector<Objet>& objets) {
    return Ecrit([&](FILE* f) {
        for (const Objet& o : objets)
            EcritObjetListe(f, gabarit, *o.m, o.octets.data());
    });
}

} // namespace

TEST_F(Liste, GabaritConstruitDuModele) {
    const struct {
        const char* element; // null: the built-in one
        std::vector<Parametre> parametres;
        const char* attendu;
    } cas[] = {
        {nullptr, {{"speed", 1, 4}, {"0x<flags>", 1, 4}}, "\r\n\t{#type#,#x#,#y#,#speed#,0x#0x<flags>#},"},
        {nullptr, {}, "\r\n\t{#type#,#x#,#y#},"},
        // A name that is only a bracketed word keeps its brackets.
        {nullptr, {{"<speed>", 1, 4}}, "\r\n\t{#type#,#x#,#y#,#<speed>#},"},
        // The last '<' before the first '>' splits the decorations.
        {nullptr, {{"x<y<z>w>", 2, 8}}, "\r\n\t{#type#,#x#,#y#,x<y#x<y<z>w>#w>},"},
        {"#+param:'[':']'#|#+param:\"(\" and then \")\"#",
         {{"a", 1, 4}, {"b", 1, 4}},
         "[#a#][#b#]|(#a#)(#b#)"},
        // Malformed: the text stays as it stands.
        {"{#x##+param:\",\"#}", {{"a", 1, 4}}, "{#x##+param:\",\"#}"},
        {"{#x##+param:\",\":\"\"}", {{"a", 1, 4}}, "{#x##+param:\",\":\"\"}"},
    };
    const char* standard = FormatCourant.sections[SECTION_LIST].element;
    for (const auto& c : cas) {
        FormatCourant.sections[SECTION_LIST].element = c.element ? c.element : standard;
        Parametres(Modele(), c.parametres);
        ConstruitGabaritListe();
        EXPECT_STREQ(GabaritListe, c.attendu);
    }

    // Another format names the parameters itself: no expansion.
    TableFormats[1] = TableFormats[0];
    CopieBornee(TableFormats[1].nom, "Autre");
    NbFormats = 2;
    ChoisitFormat("Autre");
    Parametres(Modele(), {{"speed", 1, 4}});
    ConstruitGabaritListe();
    EXPECT_STREQ(GabaritListe, standard);
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Liste, PlaceDesParametres) {
    Parametres(Modele(), {{"a", 1, 4}, {"nom", 2, 8}, {"b", 1, 4}, {"texte", 2, 16}});
    const int32_t attendus[] = {0, 4, 12, 16, 32};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(DecalageParametre(Modele(), i), attendus[i]) << i;
    EXPECT_EQ(TailleModele(Modele()), 44);
}

TEST_F(Liste, ObjetsEcrits) {
    ModeleParametres& m = Modele();
    Parametres(m, {{"speed", 1, 4}, {"nom", 2, 8}, {"0x<flags>", 1, 4}});
    ConstruitGabaritListe();
    ASSERT_STREQ(GabaritListe, "\r\n\t{#type#,#x#,#y#,#speed#,#nom#,0x#0x<flags>#},");
    Objet a(m), b(m);
    a.Base(-3, 12, 7);
    a.Entier(12, 250);
    CopieBornee((char*)a.Parametre(1), 8, "abc");
    a.Entier(12 + DecalageParametre(m, 2), 16);
    b.Base(0, 1, 2);
    memcpy(b.Parametre(1), "ABCDEFGH", 8); // fills its field: cut there
    b.Entier(12 + DecalageParametre(m, 2), -1);
    EXPECT_EQ(EcritObjets(GabaritListe, {a, b}),
              "\r\n\t{7,-3,12,250,abc,0x16},\r\n\t{2,0,1,0,ABCDEFGH,0x-1},");

    // A Raw text is written in full; unknown fields write nothing; a template
    // that ends inside a field stops there.
    Parametres(m, {{"texte", 2, 32}});
    Objet c(m);
    CopieBornee((char*)c.Parametre(0), 32, "un texte assez long, 27 car");
    EXPECT_EQ(EcritObjets("<#texte#|#inconnu#|#x", {c}), "<un texte assez long, 27 car||");
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Liste, EntiersDeMoinsDe4OctetsGardentLeursOctetsBas) {
    // Sizes 2, 1 and 0: an object of 15 bytes, and nothing read or written past it.
    ModeleParametres& m = Modele();
    Parametres(m, {{"a", 1, 2}, {"b", 1, 1}, {"c", 1, 0}});
    ConstruitGabaritListe();
    Donnees d("\r\n\t{7,1,2,258,-1,5},\r\n};\r\n");
    Objet lu(m);
    bool erreur = false;
    LitObjetListe(0, d.t, GabaritListe, m, lu.octets.data(), LISTE_NORMALE, "", erreur);
    EXPECT_FALSE(erreur);
    EXPECT_EQ(EcritObjets(GabaritListe, {lu}), "\r\n\t{7,1,2,258,255,0},");
}

TEST_F(Liste, AllerRetourEnMode0) {
    ModeleParametres& m = Modele();
    Parametres(m, {{"speed", 1, 4}, {"nom", 2, 12}, {"0x<flags>", 1, 4}});
    ConstruitGabaritListe();
    std::vector<Objet> objets;
    std::mt19937 alea(5);
    const char* noms[] = {"", "a", "boss_2", "onze car.."};
    for (int i = 0; i < 12; ++i) {
        Objet o(m);
        o.Base((int32_t)alea(), -i, i * 1000 - 5000);
        o.Entier(12, i == 3 ? INT32_MIN : (int32_t)alea());
        CopieBornee((char*)o.Parametre(1), 12, noms[i % 4]);
        o.Entier(12 + DecalageParametre(m, 2), -i * 7);
        objets.push_back(o);
    }
    Donnees d("const liste[]=\t{" + EcritObjets(GabaritListe, objets) + "\r\n};\r\n");
    int32_t position = 0;
    for (const Objet& attendu : objets) {
        Objet lu(m);
        bool erreur = false;
        position = LitObjetListe(position, d.t, GabaritListe, m, lu.octets.data(), LISTE_NORMALE, "", erreur);
        ASSERT_LE(position, d.t.taille);
        EXPECT_FALSE(erreur);
        EXPECT_EQ(lu.octets, attendu.octets);
    }
    EXPECT_EQ(d.t.taille - position, 6); // the end "\r\n};\r\n" is left
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Liste, ErreursEnMode0EtRecuperation) {
    ModeleParametres& m = Modele();
    Parametres(m, {{"speed", 1, 4}});
    ConstruitGabaritListe();
    const std::string differe = "[Debuging] The file format doesn't match with the expected one. (#)";
    const std::string fatale = "[Debuging] File format fatal error (#)";
    const struct {
        std::string donnees;
        int mode;
        int32_t retour; // -1: the failure position
        bool erreur;
        std::vector<std::string> messages;
        std::vector<int32_t> xytv; // x, y, type, speed
    } cas[] = {
        // Mode 0: the head is nowhere, then a delimiter is nowhere.
        {"no list here", LISTE_NORMALE, -1, true, {differe}, {0, 0, 0, 99}},
        {"\r\n\t{1,2", LISTE_NORMALE, -1, true, {fatale}, {0, 0, 1, 99}},
        // Mode 2 is silent; the end mark ends an object of the older model.
        {"\r\n\t{5,6,7},\r\n\t{8,9,10},", LISTE_RECUPERATION, 9, false, {}, {6, 7, 5, 99}},
        {"no list here", LISTE_RECUPERATION, 8, true, {}, {0, 0, 0, 99}},
        {"\r\n\t{1,2", LISTE_RECUPERATION, 6, true, {}, {0, 0, 1, 99}},
        {"\r\n\t{},\r\n\t{8", LISTE_RECUPERATION, 4, false, {}, {0, 0, 0, 99}},
    };
    for (const auto& c : cas) {
        journal.messages.clear();
        Donnees d(c.donnees);
        Objet o(m);
        o.Entier(12, 99); // a default value that the file does not give
        bool erreur = false;
        int32_t p = LitObjetListe(0, d.t, GabaritListe, m, o.octets.data(), c.mode, "},", erreur);
        SCOPED_TRACE(testing::PrintToString(c.donnees) + " mode " + std::to_string(c.mode));
        EXPECT_EQ(p, c.retour < 0 ? d.t.taille + 1 : c.retour);
        EXPECT_EQ(erreur, c.erreur);
        EXPECT_EQ(journal.messages, c.messages);
        std::vector<int32_t> xytv(4);
        memcpy(xytv.data(), o.octets.data(), 16);
        EXPECT_EQ(xytv, c.xytv);
    }
}

TEST_F(Liste, ListesAbimeesSansDebordement) {
    ModeleParametres& m = Modele();
    Parametres(m, {{"speed", 1, 4}, {"nom", 2, 6}});
    ConstruitGabaritListe();
    std::vector<Objet> objets;
    for (int i = 0; i < 6; ++i) {
        Objet o(m);
        o.Base(i, -i, 3 * i);
        CopieBornee((char*)o.Parametre(1), 6, "nom");
        objets.push_back(o);
    }
    const std::string fichier = EcritObjets(GabaritListe, objets) + "\r\n};\r\n";
    std::mt19937 alea(11);
    for (int i = 0; i < 2000; ++i) {
        const std::string s = Abime(fichier, alea, "#,{}\r\n-9x7");
        Donnees d(s);
        for (int mode : {LISTE_NORMALE, LISTE_RECUPERATION}) {
            int32_t p = 0;
            for (int k = 0; k < 8 && p <= d.t.taille; ++k) {
                Objet o(m);
                bool erreur = false;
                p = LitObjetListe(p, d.t, GabaritListe, m, o.octets.data(), mode, "},", erreur);
                ASSERT_TRUE(p >= 0 && p <= d.t.taille + 1) << testing::PrintToString(s);
            }
        }
        journal.messages.clear();
    }
}
