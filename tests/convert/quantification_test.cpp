// Colour quantisation: the normal method against a plain, slow rendering of
// its passes and threshold searches on many random pictures, and small
// pictures worked out by hand for the halftone and octree methods.
#include "convert/quantification.h"

#include "convert/couleurs.h"
#include "convert/images.h"
#include "core/reglages.h"
#include "render/apercus.h"
#include "render/surfaces.h"
#include "script/interpreteur.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

namespace {

struct Rvb {
    uint8_t r, g, b;
};
using Rangees = std::vector<std::vector<Rvb>>; // from the top
constexpr Rvb MASQUE = {255, 0, 254};          // the default mask colour

const std::string QUESTION =
    "[Oops...] The source bitmap contains more colors than wanted.\n"
    "A filter will be applied (don't worry, it will be much better than with paint ;)\n"
    "However, this can be very long!\nIt is still recommended to continue.";
const std::string INATTEIGNABLE =
    "[Oops...] Unable to convert the bitmap because the required colors count cannot be reached.";
const std::string TROP_PEU = "[Fatal error] The available color number is too low for this conversion.";

// Pixel (x, y from the top) of a 24-bit picture whose rows lie bottom-up.
uint8_t* Pixel(Image& image, int x, int y) {
    return image.pixels + (size_t)(image.hauteur - 1 - y) * image.pas + 3 * (size_t)x;
}
void Peint(Image& image, int x, int y, Rvb c) {
    uint8_t* p = Pixel(image, x, y);
    p[0] = c.b;
    p[1] = c.g;
    p[2] = c.r;
}

// SurfaceApercu holding a picture of largeur x hauteur, rows given from the top.
void Apercu(const Rangees& rangees) {
    const int h = (int)rangees.size(), l = (int)rangees[0].size();
    ASSERT_EQ(DimensionneApercu(l, h, true), 1);
    ChoisitCadre(0, 0, l, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < l; ++x)
            Peint(SurfaceApercu, x, y, rangees[y][x]);
}

// ImageGardee holding the picture, with the depth the file is said to have.
void Garde(const Rangees& rangees, int bits = 24) {
    const int h = (int)rangees.size(), l = (int)rangees[0].size();
    ASSERT_EQ(CreeImage(ImageGardee, l, h, 24), 1);
    BitsImageGardee = bits;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < l; ++x)
            Peint(ImageGardee, x, y, rangees[y][x]);
}

void Tables(int (*rouge)(int), int (*vert)(int), int (*bleu)(int)) {
    for (int i = 0; i < 256; ++i) {
        TableRouge[i] = (uint8_t)rouge(i);
        TableVerte[i] = (uint8_t)vert(i);
        TableBleue[i] = (uint8_t)bleu(i);
    }
}

// Triple k of a palette block as {blue, green, red}.
std::array<int, 3> Triple(const uint8_t* palette, int k) {
    return {palette[3 * k], palette[3 * k + 1], palette[3 * k + 2]};
}

// ---- The normal method, written plainly --------------------------------------

int EgalitesVues = 0; // matches where a later triple at the same distance won

struct Resultat {
    int valeur = 0;
    std::vector<uint32_t> indices;
    std::vector<uint8_t> palette;
};

// The four methods over an area of largeur x hauteur: the normal one on
// SurfaceApercu, the others on the kept picture.
Resultat Normale(int hauteur, int largeur, int seuil, int fixes, int debut, int maxi,
                 std::vector<uint8_t> palette, uint32_t transparent = 0) {
    Resultat s{0, std::vector<uint32_t>((size_t)hauteur * largeur, 999), palette};
    s.valeur = ReductionNormale(s.indices.data(), s.palette.data(), hauteur, largeur, seuil, fixes, debut,
                                maxi, transparent);
    return s;
}
Resultat Cherchee(int hauteur, int largeur, int fixes, int debut, int maxi, bool tuiles,
                  std::vector<uint8_t> palette, uint32_t transparent = 0) {
    Resultat s{0, std::vector<uint32_t>((size_t)hauteur * largeur, 999), palette};
    s.valeur = ReductionNormaleCherchee(s.indices.data(), s.palette.data(), hauteur, largeur, fixes, debut,
                                        maxi, tuiles, transparent);
    return s;
}
Resultat Trame(int hauteur, int largeur) {
    Resultat s{0, std::vector<uint32_t>((size_t)hauteur * largeur, 999),
               std::vector<uint8_t>(TAILLE_PALETTE_REDUCTION)};
    s.valeur = ReductionTramee(s.indices.data(), s.palette.data(), hauteur, largeur);
    return s;
}
Resultat Octree(int hauteur, int largeur, int fixes, int limite, std::vector<uint8_t> palette = {}) {
    palette.resize(TAILLE_PALETTE_REDUCTION, 0);
    Resultat s{0, std::vector<uint32_t>((size_t)hauteur * largeur, 999), palette};
    s.valeur = ReductionOptimale(s.indices.data(), s.palette.data(), hauteur, largeur, fixes, limite);
    return s;
}

int PasseReference(Resultat& s, int hauteur, int largeur, int seuil, int fixes, int debut, int maxi,
                   uint32_t transparent) {
    for (int i = 3 * fixes; i < TAILLE_PALETTE_REDUCTION; ++i)
        s.palette[(size_t)i] = 0;
    std::vector<std::array<int, 3>> triples; // r, g, b
    for (int k = 0; k < fixes; ++k)
        triples.push_back({s.palette[3 * k + 2], s.palette[3 * k + 1], s.palette[3 * k]});
    s.indices.assign((size_t)hauteur * largeur, 0);
    const Cadre& c = CadreDessin;
    for (int y = 0; y < hauteur; ++y)
        for (int x = 0; x < largeur; ++x) {
            uint32_t& sortie = s.indices[(size_t)y * largeur + x];
            const int X = c.xOrigine + x, Y = c.yOrigine + y;
            if (X >= c.xLimite || Y >= c.yLimite || X >= SurfaceApercu.largeur ||
                Y >= SurfaceApercu.hauteur) {
                sortie = transparent;
                continue;
            }
            const uint8_t* p = Pixel(SurfaceApercu, X, Y);
            const uint8_t* m = ReglagesConv.masque;
            if (p[2] == m[0] && p[1] == m[1] && p[0] == m[2]) {
                sortie = transparent;
                continue;
            }
            const int r = TableRouge[p[2]], g = TableVerte[p[1]], b = TableBleue[p[0]];
            int choisi = -1, proche = seuil;
            for (int k = debut; k < (int)triples.size(); ++k) {
                const int d = (triples[k][0] - r) * (triples[k][0] - r) +
                              (triples[k][1] - g) * (triples[k][1] - g) +
                              (triples[k][2] - b) * (triples[k][2] - b);
                if (d <= proche) {
                    if (choisi >= 0 && d == proche) ++EgalitesVues;
                    proche = d;
                    choisi = k;
                }
            }
            if (choisi < 0) {
                triples.push_back({r, g, b});
                if ((int)triples.size() > maxi) return s.valeur = -1;
                choisi = (int)triples.size() - 1;
            }
            sortie = (uint32_t)choisi + 1;
        }
    for (int k = fixes; k < (int)triples.size(); ++k) {
        s.palette[3 * (size_t)k] = (uint8_t)triples[k][2];
        s.palette[3 * (size_t)k + 1] = (uint8_t)triples[k][1];
        s.palette[3 * (size_t)k + 2] = (uint8_t)triples[k][0];
    }
    return s.valeur = ReglagesConv.utilMaxCoul ? maxi : (int)triples.size();
}

// The search, with the boxes it should show; the answer to the question is
// taken from reponse.
int RechercheReference(Resultat& s, int hauteur, int largeur, int fixes, int debut, int maxi, bool tuiles,
                       uint32_t transparent, int reponse, std::vector<std::string>& boites) {
    if (PasseReference(s, hauteur, largeur, 0, fixes, debut, maxi, transparent) != -1) return s.valeur;
    if (messages) {
        boites.push_back(QUESTION);
        if (reponse == REPONSE_ANNULER) return s.valeur = -1;
    }
    const int precision = ReglagesConv.precisionMax;
    int seuil = 0;
    if (!tuiles) {
        int plus = -1;
        for (int t = precision;; --t) {
            const int r = PasseReference(s, hauteur, largeur, t, fixes, debut, maxi, transparent);
            if (r == -1) break;
            if (r > plus) {
                plus = r;
                seuil = t;
            }
            if (t <= 0) break;
        }
    } else {
        int bas = -1, haut = precision, essai = haut;
        for (;;) {
            if (PasseReference(s, hauteur, largeur, essai, fixes, debut, maxi, transparent) == -1)
                bas = essai;
            else
                haut = essai;
            if (bas + 1 >= haut) break;
            essai = (bas + haut) / 2;
        }
        seuil = haut;
    }
    if (PasseReference(s, hauteur, largeur, seuil, fixes, debut, maxi, transparent) < 1) {
        boites.push_back(INATTEIGNABLE);
        return s.valeur = -1;
    }
    return s.valeur;
}

// A random case: few source colours close together (frequent ties), mask
// pixels and pixels one step from the mask, an area sometimes wider or taller
// than the picture, a preloaded palette.
struct Tirage {
    int largeur, hauteur, fixes, debut, maxi;
    uint32_t transparent;
    std::vector<uint8_t> palette;
};

Tirage Tire(std::mt19937& alea) {
    auto de = [&](int n) { return (int)(alea() % (unsigned)n); };
    const int l = 1 + de(9), h = 1 + de(7);
    if (de(4) == 0)
        Tables([](int i) { return i * 3 / 64; }, [](int i) { return i * 3 / 64; },
               [](int i) { return i / 8; });
    else
        ConstruitTablesCouleur();
    // Half of the colours differ from an earlier one in a single component.
    std::vector<std::array<int, 3>> niveaux((size_t)(1 + de(8)));
    for (size_t i = 0; i < niveaux.size(); ++i) {
        niveaux[i] = {de(6), de(6), de(6)};
        if (i && de(2)) {
            niveaux[i] = niveaux[(size_t)de((int)i)];
            niveaux[i][(size_t)de(3)] = de(6);
        }
    }
    std::vector<Rvb> couleurs;
    for (const auto& n : niveaux)
        couleurs.push_back(
            {(uint8_t)(8 * n[0] + de(8)), (uint8_t)(8 * n[1] + de(8)), (uint8_t)(8 * n[2] + de(8))});
    Rangees rangees((size_t)h, std::vector<Rvb>((size_t)l));
    for (auto& rangee : rangees)
        for (Rvb& p : rangee) {
            const int t = de(12);
            p = t < 2 ? MASQUE : t == 2 ? Rvb{255, 0, 255} : couleurs[(size_t)de((int)couleurs.size())];
        }
    Apercu(rangees);
    Tirage c;
    c.largeur = l + (de(3) == 0 ? 1 + de(3) : 0);
    c.hauteur = h + (de(3) == 0 ? 1 + de(2) : 0);
    c.fixes = de(5);
    c.debut = de(2) ? 0 : c.fixes;
    c.maxi = de(8) == 0 ? 255 + de(3) : c.fixes - 1 + de((int)couleurs.size() + 3);
    c.transparent = de(2) ? 0 : (uint32_t)c.fixes;
    c.palette.assign(TAILLE_PALETTE_REDUCTION, 0x5A); // leftovers behind the fixes
    for (int i = 0; i < 3 * c.fixes; ++i)
        c.palette[(size_t)i] = (uint8_t)de(6);
    // Now and then a given triple repeats an earlier one or is a colour of
    // the picture (with the usual tables): the last equal one must win.
    for (int t = 1; t < c.fixes; ++t) {
        const int choix = de(4);
        if (choix == 0) {
            const int avant = de(t);
            for (int k = 0; k < 3; ++k) c.palette[(size_t)(3 * t + k)] = c.palette[(size_t)(3 * avant + k)];
        }
        if (choix == 1) {
            const auto& n = niveaux[(size_t)de((int)niveaux.size())];
            for (int k = 0; k < 3; ++k) c.palette[(size_t)(3 * t + k)] = (uint8_t)n[(size_t)(2 - k)];
        }
    }
    ReglagesConv.utilMaxCoul = de(4) == 0;
    return c;
}

struct Quantification : testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages journal;
    void SetUp() override {
        ConstruitTablesCouleur();
        messages = 1;
    }
    void TearDown() override {
        messages = 1;
        LibereImageGardee();
    }
};

} // namespace

// ---- Normal method -----------------------------------------------------------------

TEST_F(Quantification, PasseNormaleEgaleLaMethodeDirecte) {
    std::mt19937 alea(4321);
    int echecs = 0, reussites = 0;
    EgalitesVues = 0;
    for (int n = 0; n < 600; ++n) {
        Tirage c = Tire(alea);
        const int seuil = n % 7 == 0 ? -1 - (int)(alea() % 2) : n % 11 == 0 ? 3000 : (int)(alea() % 40);
        SCOPED_TRACE("tirage " + std::to_string(n) + " seuil " + std::to_string(seuil));
        Resultat attendu{0, {}, c.palette};
        PasseReference(attendu, c.hauteur, c.largeur, seuil, c.fixes, c.debut, c.maxi, c.transparent);
        const Resultat r =
            Normale(c.hauteur, c.largeur, seuil, c.fixes, c.debut, c.maxi, c.palette, c.transparent);
        ASSERT_EQ(r.valeur, attendu.valeur);
        // The fixes stay; what follows a refused pass is not used.
        ASSERT_TRUE(std::equal(r.palette.begin(), r.palette.begin() + 3 * c.fixes, c.palette.begin()));
        if (r.valeur == -1) {
            ++echecs;
            continue;
        }
        ++reussites;
        ASSERT_EQ(r.indices, attendu.indices);
        ASSERT_EQ(r.palette, attendu.palette);
    }
    // The draw reaches both outcomes and equal distances.
    EXPECT_GT(echecs, 60);
    EXPECT_GT(reussites, 200);
    EXPECT_GT(EgalitesVues, 100);
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Quantification, RechercheEgaleLaMethodeDirecte) {
    std::mt19937 alea(8765);
    const int precisions[] = {512, 3000, -2, 0, 1, 7, 25, 60};
    int recherches = 0, refus = 0;
    for (int n = 0; n < 400; ++n) {
        Tirage c = Tire(alea);
        const bool tuiles = n % 2;
        ReglagesConv.precisionMax = precisions[alea() % 8];
        messages = (int32_t)(alea() % 2);
        const int reponse = alea() % 6 == 0 ? REPONSE_ANNULER : REPONSE_OK;
        journal.messages.clear();
        journal.reponses = {reponse};
        SCOPED_TRACE("tirage " + std::to_string(n) + (tuiles ? " tuiles" : " bitmap") + " precision " +
                     std::to_string(ReglagesConv.precisionMax));
        Resultat attendu{0, {}, c.palette};
        std::vector<std::string> boites;
        RechercheReference(attendu, c.hauteur, c.largeur, c.fixes, c.debut, c.maxi, tuiles, c.transparent,
                           reponse, boites);
        const Resultat r =
            Cherchee(c.hauteur, c.largeur, c.fixes, c.debut, c.maxi, tuiles, c.palette, c.transparent);
        ASSERT_EQ(r.valeur, attendu.valeur);
        ASSERT_EQ(journal.messages, boites);
        ASSERT_EQ(journal.titreAttente, 0);
        recherches += !boites.empty() && boites[0] == QUESTION;
        if (r.valeur == -1) {
            ++refus;
            continue;
        }
        ASSERT_EQ(r.indices, attendu.indices);
        ASSERT_EQ(r.palette, attendu.palette);
    }
    EXPECT_GT(recherches, 40);
    EXPECT_GT(refus, 40);
    EXPECT_LT(refus, 300);
}

// A picture of colours in clusters: a few centres, each pixel one of them
// with noise up to ecart on each component (or the mask, one pixel in 40);
// the rows below basDebut draw from the second set half of the time. Then the
// downward search on it, against the plain method. Gives the search's value.
int AmasContreReference(std::mt19937& alea, int l, int h, int nbCentres, int nbDessous, int basDebut, int ecart,
                        int maxi) {
    auto de = [&](int n) { return (int)(alea() % (unsigned)n); };
    std::vector<Rvb> centres((size_t)nbCentres), dessous((size_t)(nbDessous > 0 ? nbDessous : 1));
    for (Rvb& c : centres) c = {(uint8_t)de(256), (uint8_t)de(256), (uint8_t)de(256)};
    for (Rvb& c : dessous) c = {(uint8_t)de(256), (uint8_t)de(256), (uint8_t)de(256)};
    auto bruit = [&](uint8_t v) { return (uint8_t)std::clamp(v + de(2 * ecart + 1) - ecart, 0, 255); };
    Rangees rangees((size_t)h, std::vector<Rvb>((size_t)l));
    for (int y = 0; y < h; ++y)
        for (Rvb& p : rangees[(size_t)y]) {
            const auto& choix = nbDessous > 0 && y >= basDebut && de(2) ? dessous : centres;
            const Rvb& c = choix[(size_t)de((int)choix.size())];
            p = de(40) == 0 ? MASQUE : Rvb{bruit(c.r), bruit(c.g), bruit(c.b)};
        }
    Apercu(rangees);
    const int fixes = de(3), debut = de(2) ? 0 : fixes;
    std::vector<uint8_t> palette(TAILLE_PALETTE_REDUCTION, 0);
    // Now and then a fixed triple beyond 5 bits, which no colour can equal.
    for (int i = 0; i < 3 * fixes; ++i) palette[(size_t)i] = (uint8_t)(de(6) ? de(32) : de(256));
    Resultat attendu{0, {}, palette};
    std::vector<std::string> boites;
    RechercheReference(attendu, h, l, fixes, debut, maxi, false, 0, REPONSE_OK, boites);
    const Resultat r = Cherchee(h, l, fixes, debut, maxi, false, palette);
    EXPECT_EQ(r.valeur, attendu.valeur);
    // What a refused search leaves is not looked at.
    if (r.valeur != -1) {
        EXPECT_EQ(r.indices, attendu.indices);
        EXPECT_EQ(r.palette, attendu.palette);
    }
    return r.valeur;
}

// Thousands of colours: the downward search meets many thresholds whose
// shells hold colours of the picture and many that hold none, which it may
// carry over from the threshold above; small limits stop it high up.
TEST_F(Quantification, RechercheSurDesMilliersDeCouleurs) {
    std::mt19937 alea(4242);
    ConstruitTablesCouleur();
    messages = 0;
    const int maxis[] = {255, 9, 4};
    int reussites = 0;
    for (int n = 0; n < 60 && !HasFailure(); ++n) {
        ReglagesConv.precisionMax = 60 + (int)(alea() % 140);
        SCOPED_TRACE("image " + std::to_string(n) + " precision " + std::to_string(ReglagesConv.precisionMax));
        const int cote = 40 + (int)(alea() % 30);
        reussites += AmasContreReference(alea, cote, cote, 2 + (int)(alea() % 6), 0, 0, 8 + (int)(alea() % 60),
                                         maxis[n % 3]) != -1;
    }
    EXPECT_GT(reussites, 12);
}

// Large enough for the last pass to run in two halves: few colours (the pass
// at threshold 0) or thousands (after the search); the lower rows have
// colours of their own, so the second half adds triples too.
TEST_F(Quantification, DernierePasseEnDeuxMoities) {
    std::mt19937 alea(777);
    ConstruitTablesCouleur();
    messages = 0;
    for (int n = 0; n < 4 && !HasFailure(); ++n) {
        ReglagesConv.precisionMax = 10 + (int)(alea() % 20);
        SCOPED_TRACE("image " + std::to_string(n) + " precision " + std::to_string(ReglagesConv.precisionMax));
        const bool peu = n % 2 == 0;
        EXPECT_GT(AmasContreReference(alea, 256, 260, peu ? 150 : 3 + (int)(alea() % 4), peu ? 60 : 1 + (int)(alea() % 3),
                                      195, peu ? 0 : 30, 255),
                  0);
    }
}

TEST_F(Quantification, PasseNormaleCasCalculesALaMain) {
    // Reds of 5 bits 10, 12 on top and 11, 20 below; blue and green 0.
    struct Cas {
        int fixes, debut, seuil, maxi, util;
        int resultat;
        std::vector<uint32_t> indices; // top row, then bottom row
        std::vector<int> rouges;       // red of each triple, the fixes included
    };
    const Cas cas[] = {
        {0, 0, 1, 255, 0, 3, {1, 2, 2, 3}, {10, 12, 20}},     // 11 is as close to 10 as to 12: the later wins
        {0, 0, 0, 255, 0, 4, {1, 2, 3, 4}, {10, 12, 11, 20}}, // rows from the top, left to right
        {0, 0, 4, 255, 0, 2, {1, 1, 1, 2}, {10, 20}},         // the threshold itself is close enough
        {0, 0, -1, 255, 0, 4, {1, 2, 3, 4}, {10, 12, 11, 20}}, // below 0 nothing matches
        {0, 0, 1, 3, 0, 3, {1, 2, 2, 3}, {10, 12, 20}},        // exactly maxi
        {0, 0, 1, 2, 0, -1, {}, {}},
        {0, 0, 1, 255, 1, 255, {1, 2, 2, 3}, {10, 12, 20}},   // usemaxcolors gives maxi
        {1, 0, 1, 255, 0, 2, {1, 1, 1, 2}, {11, 20}},         // a preloaded 11 takes 10, 11 and 12
        {1, 1, 1, 255, 0, 4, {2, 3, 3, 4}, {11, 10, 12, 20}}, // ... unless it lies before debut
    };
    Apercu({{{80, 0, 0}, {96, 7, 7}}, {{88, 0, 0}, {167, 0, 0}}});
    for (const Cas& c : cas) {
        SCOPED_TRACE("fixes " + std::to_string(c.fixes) + " debut " + std::to_string(c.debut) + " seuil " +
                     std::to_string(c.seuil) + " maxi " + std::to_string(c.maxi));
        ReglagesConv.utilMaxCoul = c.util;
        std::vector<uint8_t> palette(TAILLE_PALETTE_REDUCTION, 0x77);
        if (c.fixes) {
            palette[0] = palette[1] = 0;
            palette[2] = 11;
        }
        const Resultat r = Normale(2, 2, c.seuil, c.fixes, c.debut, c.maxi, palette);
        EXPECT_EQ(r.valeur, c.resultat);
        if (c.resultat == -1) continue;
        EXPECT_EQ(r.indices, c.indices);
        for (int k = 0; k < TRIPLES_REDUCTION; ++k) {
            const int rouge = k < (int)c.rouges.size() ? c.rouges[(size_t)k] : 0;
            ASSERT_EQ(Triple(r.palette.data(), k), (std::array<int, 3>{0, 0, rouge})) << k;
        }
    }
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Quantification, MasqueCompareAvantLesTablesEtMarge) {
    // One step from the mask either way is a colour, even when the tables make
    // it the mask's 5-bit value (255 and 254 both give 31 by default).
    Apercu({{MASQUE, {255, 0, 255}, {254, 0, 254}, MASQUE}});
    std::vector<uint8_t> palette(TAILLE_PALETTE_REDUCTION, 0);
    Resultat r = Normale(1, 4, 0, 0, 0, 255, palette);
    EXPECT_EQ(r.valeur, 1);
    EXPECT_EQ(r.indices, (std::vector<uint32_t>{0, 1, 1, 0}));
    EXPECT_EQ(Triple(r.palette.data(), 0), (std::array<int, 3>{31, 0, 31}));

    Tables([](int i) { return i % 32; }, [](int i) { return i % 32; }, [](int i) { return i % 32; });
    r = Normale(1, 4, 0, 0, 0, 255, palette, 7);
    EXPECT_EQ(r.valeur, 2);
    EXPECT_EQ(r.indices, (std::vector<uint32_t>{7, 1, 2, 7}));
    EXPECT_EQ(Triple(r.palette.data(), 1), (std::array<int, 3>{30, 0, 30}));

    // An area of 8 x 3 over a picture of 5 x 2 (whose surface rows hold 8
    // pixels): the rest is padding, with the index given for transparent.
    ConstruitTablesCouleur();
    Apercu(Rangees(2, std::vector<Rvb>(5, Rvb{40, 80, 120})));
    palette[0] = 15; // the same colour, never matched
    palette[1] = 10;
    palette[2] = 5;
    r = Normale(3, 8, 0, 1, 1, 255, palette, 1);
    EXPECT_EQ(r.valeur, 2);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(r.indices[(size_t)(8 * y + x)], x < 5 && y < 2 ? 2u : 1u) << x << "," << y;
    EXPECT_EQ(Triple(r.palette.data(), 1), (std::array<int, 3>{15, 10, 5}));
}

TEST_F(Quantification, RechercheVersLeBasOuParDichotomie) {
    // Reds 0, 2, 3 of 5 bits and room for 2: threshold 0 gives 3 triples,
    // 1 to 8 give 2, 9 and up give 1.
    const Rangees rouges = {{{0, 0, 0}, {16, 0, 0}, {24, 0, 0}}};
    // Room for 2 does not grow with the threshold here. In 5 bits A (3,0,4),
    // B (2,2,2), C (3,1,1), D (2,4,4): AB 9, AC 10, AD 17, BC 3, BD 8, CD 19.
    // Up to 7 D needs a third triple; at 8 B takes C and D; at 9 A takes B and
    // C, and D is too far from A and C; from 10 up A takes B and C.
    const Rangees abcd = {{{24, 0, 32}, {16, 16, 16}, {24, 8, 8}, {16, 32, 32}}};
    // Blues 0 and 3: at threshold 9 one triple takes both.
    const Rangees bleus = {{{0, 0, 0}, {0, 0, 24}}};
    using T = std::array<int, 3>;
    struct Cas {
        const Rangees* image;
        bool tuiles;
        int precision, maxi, reponse, util;
        int32_t questions;
        int resultat;
        std::vector<uint32_t> indices;
        std::vector<T> triples;
        std::vector<std::string> boites;
    };
    const Cas cas[] = {
        // Downward: the most triples seen is 2, first at threshold 8.
        {&rouges, false, 512, 2, REPONSE_OK, 0, 1, 2, {1, 1, 2}, {T{0, 0, 0}, T{0, 0, 3}}, {QUESTION}},
        {&rouges, false, 512, 2, REPONSE_OK, 0, 0, 2, {1, 1, 2}, {T{0, 0, 0}, T{0, 0, 3}}, {}},
        {&rouges, false, 3000, 2, REPONSE_OK, 0, 0, 2, {1, 1, 2}, {T{0, 0, 0}, T{0, 0, 3}}, {}},
        // Bisection: 512, 255, 127, 63, 31, 15, 7, 3, 1 fit and 0 does not: threshold 1.
        {&rouges, true, 512, 2, REPONSE_OK, 0, 1, 2, {1, 2, 2}, {T{0, 0, 0}, T{0, 0, 2}}, {QUESTION}},
        {&rouges, true, 2, 2, REPONSE_OK, 0, 0, 2, {1, 2, 2}, {T{0, 0, 0}, T{0, 0, 2}}, {}},
        // 12, 11, 10 give 2, 9 stops: 12. The bisection tries 12, 5, 8, 6, 7: 8.
        {&abcd, false, 12, 2, REPONSE_OK, 0, 0, 2, {1, 1, 1, 2}, {T{4, 0, 3}, T{4, 4, 2}}, {}},
        {&abcd, true, 12, 2, REPONSE_OK, 0, 0, 2, {1, 2, 2, 2}, {T{4, 0, 3}, T{2, 2, 2}}, {}},
        {&bleus, false, 9, 1, REPONSE_OK, 0, 0, 1, {1, 1}, {T{0, 0, 0}}, {}},
        // A search that ends at threshold 0 cannot fit.
        {&rouges, false, -1, 2, REPONSE_OK, 0, 1, -1, {}, {}, {QUESTION, INATTEIGNABLE}},
        {&rouges, true, 0, 2, REPONSE_OK, 0, 0, -1, {}, {}, {INATTEIGNABLE}},
        {&rouges, false, 512, 0, REPONSE_OK, 0, 0, -1, {}, {}, {INATTEIGNABLE}},
        {&rouges, false, 512, 2, REPONSE_ANNULER, 0, 1, -1, {}, {}, {QUESTION}},
        // Enough room at once: no question.
        {&rouges, false, 512, 3, REPONSE_OK, 0, 1, 3, {1, 2, 3}, {T{0, 0, 0}, T{0, 0, 2}, T{0, 0, 3}}, {}},
        {&rouges, true, 512, 255, REPONSE_OK, 1, 1, 255, {1, 2, 3}, {T{0, 0, 0}, T{0, 0, 2}, T{0, 0, 3}}, {}},
    };
    for (const Cas& c : cas) {
        SCOPED_TRACE(std::string(c.tuiles ? "tiles" : "bitmap") + " precision " +
                     std::to_string(c.precision) + " maxi " + std::to_string(c.maxi));
        Apercu(*c.image);
        ReglagesConv.precisionMax = c.precision;
        ReglagesConv.utilMaxCoul = c.util;
        messages = c.questions;
        journal.messages.clear();
        journal.reponses = {c.reponse};
        const int largeur = (int)(*c.image)[0].size();
        const Resultat r = Cherchee(1, largeur, 0, 0, c.maxi, c.tuiles,
                                    std::vector<uint8_t>(TAILLE_PALETTE_REDUCTION, 0x77));
        EXPECT_EQ(r.valeur, c.resultat);
        EXPECT_EQ(journal.messages, c.boites);
        EXPECT_EQ(journal.titreAttente, 0);
        if (c.resultat == -1) continue;
        EXPECT_EQ(r.indices, c.indices);
        for (size_t k = 0; k < c.triples.size(); ++k)
            EXPECT_EQ(Triple(r.palette.data(), (int)k), c.triples[k]) << k;
    }

    // usemaxcolors with maxi 0 and a preloaded red 0 that every threshold
    // from 9 up matches: the search ends on 0, which is refused.
    Apercu(rouges);
    ReglagesConv.precisionMax = 512;
    ReglagesConv.utilMaxCoul = 1;
    messages = 0;
    journal.messages.clear();
    const std::vector<uint8_t> noir(TAILLE_PALETTE_REDUCTION, 0);
    EXPECT_EQ(Cherchee(1, 3, 1, 0, 0, false, noir).valeur, -1);
    EXPECT_EQ(journal.messages, std::vector<std::string>{INATTEIGNABLE});

    // A picture of mask colour only fits at once with no triple.
    Apercu({{MASQUE, MASQUE}});
    ReglagesConv.utilMaxCoul = 0;
    messages = 1;
    journal.messages.clear();
    const Resultat r = Cherchee(1, 2, 0, 0, 1, false, noir);
    EXPECT_EQ(r.valeur, 0);
    EXPECT_EQ(r.indices, (std::vector<uint32_t>{0, 0}));
    EXPECT_TRUE(journal.messages.empty());
}

// ---- Halftone ----------------------------------------------------------------------

TEST_F(Quantification, TrameePaletteFixeATraversLesTables) {
    uint8_t fixe[256][3];
    PaletteTramee(fixe);
    EXPECT_EQ(std::vector<int>(fixe[245], fixe[245] + 3), (std::vector<int>{255, 255, 255}));
    EXPECT_EQ(std::vector<int>(fixe[255], fixe[255] + 3), (std::vector<int>{0, 0, 1}));

    Tables([](int i) { return i % 32; }, [](int i) { return 31 - i / 8; }, [](int i) { return i * 5 % 32; });
    Garde({{{10, 20, 30}}});
    const Resultat r = Trame(1, 1);
    EXPECT_EQ(r.valeur, 255);
    for (int i = 0; i < 256; ++i)
        ASSERT_EQ(
            Triple(r.palette.data(), i),
            (std::array<int, 3>{TableBleue[fixe[i][2]], TableVerte[fixe[i][1]], TableRouge[fixe[i][0]]}))
            << i;
    EXPECT_EQ(Triple(r.palette.data(), 255), (std::array<int, 3>{5, 31, 0}));
    EXPECT_EQ(Triple(r.palette.data(), 245), (std::array<int, 3>{27, 0, 31}));
    EXPECT_EQ(ImageGardee.pixels, nullptr);
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Quantification, TrameeCouleursDuCubeMasqueEtMarge) {
    uint8_t fixe[256][3];
    PaletteTramee(fixe);
    const Rvb cube[] = {{0, 0, 0},     {255, 255, 255}, {51, 102, 153},
                        {204, 0, 255}, {153, 51, 0},    {255, 204, 102}};
    for (const Rvb& c : cube) {
        SCOPED_TRACE(std::to_string(c.r) + "," + std::to_string(c.g) + "," + std::to_string(c.b));
        // 10 x 9 pixels (past one whole pattern), one of mask colour; an area of 12 x 10.
        Rangees image(9, std::vector<Rvb>(10, c));
        image[4][3] = MASQUE;
        Garde(image);
        const Resultat r = Trame(10, 12);
        const uint32_t premier = r.indices[0];
        ASSERT_TRUE(premier >= 1 && premier <= 256) << premier;
        EXPECT_EQ(std::vector<int>(fixe[premier - 1], fixe[premier - 1] + 3),
                  (std::vector<int>{c.r, c.g, c.b}));
        for (int y = 0; y < 10; ++y)
            for (int x = 0; x < 12; ++x) {
                const bool vide = x >= 10 || y >= 9 || (x == 3 && y == 4);
                ASSERT_EQ(r.indices[(size_t)(12 * y + x)], vide ? 0u : premier) << x << "," << y;
            }
        EXPECT_EQ(ImageGardee.pixels, nullptr);
    }

    // A flat grey between two levels of the cube mixes those two only, and an
    // 8 x 8 block keeps its mean within a few steps.
    for (int v : {30, 128, 200}) {
        SCOPED_TRACE(v);
        Garde(Rangees(8, std::vector<Rvb>(8, Rvb{(uint8_t)v, (uint8_t)v, (uint8_t)v})));
        const int bas = v / 51 * 51, haut = bas + 51;
        int somme = 0, hauts = 0;
        for (uint32_t i : Trame(8, 8).indices) {
            ASSERT_TRUE(i >= 1 && i <= 256) << i;
            for (int k = 0; k < 3; ++k)
                ASSERT_TRUE(fixe[i - 1][k] == bas || fixe[i - 1][k] == haut) << i;
            somme += fixe[i - 1][0];
            hauts += fixe[i - 1][0] == haut;
        }
        EXPECT_NEAR(somme / 64.0, v, 4.0);
        EXPECT_TRUE(hauts > 0 && hauts < 64) << hauts;
    }
}

// ---- Octree ------------------------------------------------------------------------

TEST_F(Quantification, OptimaleOrdreDeLArbre) {
    // Top bits of red, green, blue make the child number: T (0,64,64) and
    // S (64,0,0) share child 0 then take 3 and 4; R 1, Q 3, P 4 at the top.
    // P becomes (128,0,0) through the tables.
    const Rvb P = {135, 3, 7}, Q = {0, 128, 128}, R = {0, 0, 128}, S = {64, 0, 0}, T = {0, 64, 64};
    Garde({{P, Q, R, MASQUE, S, T}});
    const Resultat r = Octree(2, 7, 2, 7, {1, 2, 3, 4, 5, 6}); // an area of 7 x 2
    EXPECT_EQ(r.valeur, 7);
    EXPECT_EQ(r.indices, (std::vector<uint32_t>{7, 6, 5, 0, 4, 3, 0, 0, 0, 0, 0, 0, 0, 0}));
    const std::array<int, 3> attendus[] = {{1, 2, 3},  {4, 5, 6},   {8, 8, 0},  {0, 0, 8},
                                           {16, 0, 0}, {16, 16, 0}, {0, 0, 16}, {0, 0, 0}};
    for (int k = 0; k < 8; ++k)
        EXPECT_EQ(Triple(r.palette.data(), k), attendus[k]) << k;
    EXPECT_EQ(ImageGardee.pixels, nullptr);
    EXPECT_TRUE(journal.messages.empty());
}

TEST_F(Quantification, OptimaleReductionDesFeuilles) {
    // Room for 3. a (0,0,0) and b (8,0,0) part at the level-4 node, like
    // c (128,128,128) and d (136,128,128); e (16,0,0) parts from a one level
    // higher. The fourth colour met forces one merge: the deepest, and among
    // the deepest the node made last. Pixels are read from the bottom row up.
    const Rvb a = {0, 0, 0}, b = {8, 0, 0}, c = {128, 128, 128}, d = {136, 128, 128}, e = {16, 0, 0};
    Rangees moyenne(5, std::vector<Rvb>(4, d));
    moyenne[4] = {a, b, c, d};
    std::vector<uint32_t> dix(20, 3);
    dix[16] = 1;
    dix[17] = 2;
    struct Cas {
        const char* nom;
        Rangees image;
        std::vector<uint32_t> indices; // from the top row
        std::vector<std::array<int, 3>> triples;
    };
    const Cas cas[] = {
        {"c and d met last", {{c, d}, {a, b}}, {3, 3, 1, 2}, {{0, 0, 0}, {0, 0, 1}, {16, 16, 16}}},
        {"a and b met last", {{a, b}, {c, d}}, {1, 1, 2, 3}, {{0, 0, 0}, {16, 16, 16}, {16, 16, 17}}},
        {"the deeper pair", {{a, e}, {c, d}}, {1, 2, 3, 3}, {{0, 0, 0}, {0, 0, 2}, {16, 16, 16}}},
        // Rounded down: c once and d 17 times give a red of 135.56, 16 in 5 bits.
        {"mean", moyenne, dix, {{0, 0, 0}, {0, 0, 1}, {16, 16, 16}}},
    };
    for (const Cas& k : cas) {
        SCOPED_TRACE(k.nom);
        Garde(k.image);
        const Resultat r = Octree((int)k.image.size(), (int)k.image[0].size(), 0, 3);
        EXPECT_EQ(r.valeur, 3);
        EXPECT_EQ(r.indices, k.indices);
        for (int t = 0; t < 3; ++t)
            EXPECT_EQ(Triple(r.palette.data(), t), k.triples[(size_t)t]) << t;
    }

    // Room for 2: 0 (8 pixels) with 8 (1), and 16 (8) with 24 (1) fold into
    // their level-4 nodes, 0 and 16 after rounding down. 8 is as far from
    // either: the first colour takes it.
    const Rvb z = {0, 0, 0}, h = {8, 0, 0}, s = {16, 0, 0}, v = {24, 0, 0};
    Garde({{z, z, z, s, s, s}, {z, z, z, s, s, s}, {z, h, s, v, z, s}});
    const Resultat r = Octree(3, 6, 0, 2);
    EXPECT_EQ(r.valeur, 2);
    EXPECT_EQ(r.indices, (std::vector<uint32_t>{1, 1, 1, 2, 2, 2, 1, 1, 1, 2, 2, 2, 1, 1, 2, 2, 1, 2}));
    EXPECT_EQ(Triple(r.palette.data(), 1), (std::array<int, 3>{0, 0, 2}));
}

TEST_F(Quantification, OptimaleVoitLesCouleursApresLesTables) {
    // 15 and 8 are the same after the tables: two colours, not three.
    Garde({{{15, 0, 0}, {8, 0, 0}, {255, 255, 255}}});
    Resultat r = Octree(1, 3, 0, 3);
    EXPECT_EQ(r.valeur, 2);
    EXPECT_EQ(r.indices, (std::vector<uint32_t>{1, 1, 2}));
    EXPECT_EQ(Triple(r.palette.data(), 0), (std::array<int, 3>{0, 0, 1}));
    EXPECT_EQ(Triple(r.palette.data(), 1), (std::array<int, 3>{31, 31, 31}));

    // Inverted tables: white becomes black, the first colour of the tree.
    Tables([](int i) { return 31 - i / 8; }, [](int i) { return 31 - i / 8; },
           [](int i) { return 31 - i / 8; });
    Garde({{{0, 0, 0}, {255, 255, 255}}});
    r = Octree(1, 2, 0, 256);
    EXPECT_EQ(r.valeur, 2);
    EXPECT_EQ(r.indices, (std::vector<uint32_t>{2, 1}));
    EXPECT_EQ(Triple(r.palette.data(), 0), (std::array<int, 3>{0, 0, 0}));
    EXPECT_EQ(Triple(r.palette.data(), 1), (std::array<int, 3>{31, 31, 31}));
}

// The octree method written plainly: every pixel walks from the root and
// adds to its leaf, the tree reduces after every pixel, and every pixel looks
// through the whole palette. Runs on its own copy of the picture; boites gets
// what the method says.
struct NoeudReference {
    bool feuille = false;
    uint64_t nombre = 0, rouge = 0, vert = 0, bleu = 0;
    int fils[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
    int suivant = -1;
};

int OctreeReference(Rangees image, int bits, int hauteur, int largeur, int fixes, int limite, Resultat& s,
                    std::vector<std::string>& boites) {
    const int place = limite - fixes;
    if (place < 2) {
        boites.push_back(TROP_PEU);
        return 0;
    }
    const int h = (int)image.size(), l = (int)image[0].size();
    std::vector<NoeudReference> noeuds(1);
    int reductibles[9] = {0, -1, -1, -1, -1, -1, -1, -1, -1};
    int feuilles = 0;
    std::vector<std::vector<bool>> masque((size_t)h, std::vector<bool>((size_t)l, false));
    for (int y = h - 1; y >= 0 && bits == 24; --y)
        for (int x = 0; x < l; ++x) {
            Rvb& p = image[(size_t)y][(size_t)x];
            if (p.r == MASQUE.r && p.g == MASQUE.g && p.b == MASQUE.b) {
                masque[(size_t)y][(size_t)x] = true;
                continue;
            }
            p = {(uint8_t)(TableRouge[p.r] * 8), (uint8_t)(TableVerte[p.g] * 8), (uint8_t)(TableBleue[p.b] * 8)};
            int n = 0;
            for (int k = 0; k < 8 && !noeuds[(size_t)n].feuille; ++k) {
                const int b = 7 - k;
                const int f = 4 * (p.r >> b & 1) + 2 * (p.g >> b & 1) + (p.b >> b & 1);
                if (noeuds[(size_t)n].fils[f] < 0) {
                    noeuds.emplace_back();
                    const int nouveau = (int)noeuds.size() - 1;
                    if (k + 1 == 8) {
                        noeuds.back().feuille = true;
                        ++feuilles;
                    } else {
                        noeuds.back().suivant = reductibles[k + 1];
                        reductibles[k + 1] = nouveau;
                    }
                    noeuds[(size_t)n].fils[f] = nouveau;
                }
                n = noeuds[(size_t)n].fils[f];
            }
            NoeudReference& feuille = noeuds[(size_t)n];
            ++feuille.nombre;
            feuille.rouge += p.r;
            feuille.vert += p.g;
            feuille.bleu += p.b;
            while (feuilles > place) {
                int niveau = 7;
                while (niveau > 0 && reductibles[niveau] < 0) --niveau;
                const int r = reductibles[niveau];
                if (r < 0) return 0; // nothing left to fold: no message
                reductibles[niveau] = noeuds[(size_t)r].suivant;
                int enfants = 0;
                for (int& e : noeuds[(size_t)r].fils) {
                    if (e < 0) continue;
                    noeuds[(size_t)r].nombre += noeuds[(size_t)e].nombre;
                    noeuds[(size_t)r].rouge += noeuds[(size_t)e].rouge;
                    noeuds[(size_t)r].vert += noeuds[(size_t)e].vert;
                    noeuds[(size_t)r].bleu += noeuds[(size_t)e].bleu;
                    e = -1;
                    ++enfants;
                }
                noeuds[(size_t)r].feuille = true;
                feuilles += 1 - enfants;
            }
        }
    std::vector<std::array<int, 3>> couleurs;
    std::vector<int> pile = {0};
    while (!pile.empty()) {
        const NoeudReference& n = noeuds[(size_t)pile.back()];
        pile.pop_back();
        if (n.feuille) {
            if (n.nombre)
                couleurs.push_back({(int)(n.rouge / n.nombre), (int)(n.vert / n.nombre), (int)(n.bleu / n.nombre)});
            continue;
        }
        for (int f = 7; f >= 0; --f)
            if (n.fils[f] >= 0) pile.push_back(n.fils[f]);
    }
    if (couleurs.size() < 2) {
        boites.push_back(INATTEIGNABLE);
        return 0;
    }
    s.indices.assign((size_t)hauteur * largeur, 0);
    for (int y = 0; y < hauteur && y < h; ++y)
        for (int x = 0; x < largeur && x < l; ++x) {
            if (masque[(size_t)y][(size_t)x]) continue;
            const Rvb& p = image[(size_t)y][(size_t)x];
            int meilleur = 0, plusProche = -1;
            for (int k = 0; k < (int)couleurs.size(); ++k) {
                const int dr = couleurs[(size_t)k][0] - p.r, dg = couleurs[(size_t)k][1] - p.g,
                          db = couleurs[(size_t)k][2] - p.b;
                const int d = dr * dr + dg * dg + db * db;
                if (plusProche < 0 || d < plusProche) {
                    plusProche = d;
                    meilleur = k;
                }
            }
            s.indices[(size_t)y * largeur + x] = (uint32_t)(meilleur + fixes + 1);
        }
    for (size_t k = 0; k < couleurs.size(); ++k) {
        s.palette[3 * (fixes + k)] = (uint8_t)(couleurs[k][2] >> 3);
        s.palette[3 * (fixes + k) + 1] = (uint8_t)(couleurs[k][1] >> 3);
        s.palette[3 * (fixes + k) + 2] = (uint8_t)(couleurs[k][0] >> 3);
    }
    return fixes + (int)couleurs.size();
}

// Random pictures against the plain octree: few colours that never fold,
// clusters that fold at the lower levels, and noise that folds up to the top;
// areas wider, narrower, taller and shorter than the picture; the mask; room
// from 2 to 256; now and then tables of other values, or an 8-bit file.
TEST_F(Quantification, OptimaleEgaleLArbreDirect) {
    std::mt19937 alea(9090);
    auto de = [&](int n) { return (int)(alea() % (unsigned)n); };
    int reussites = 0;
    for (int n = 0; n < 300 && !HasFailure(); ++n) {
        SCOPED_TRACE("tirage " + std::to_string(n));
        if (n % 10 == 9)
            Tables([](int i) { return (i * 7 + 3) % 32; }, [](int i) { return 31 - i / 8; },
                   [](int i) { return i % 40; });
        else
            ConstruitTablesCouleur();
        const int l = 1 + de(40), h = 1 + de(40);
        const int sorte = n % 3;
        std::vector<Rvb> centres((size_t)(1 + de(12)));
        for (Rvb& c : centres) c = {(uint8_t)de(256), (uint8_t)de(256), (uint8_t)de(256)};
        const int ecart = 1 + de(40);
        auto bruit = [&](uint8_t v) { return (uint8_t)std::clamp(v + de(2 * ecart + 1) - ecart, 0, 255); };
        Rangees image((size_t)h, std::vector<Rvb>((size_t)l));
        for (auto& rangee : image)
            for (Rvb& p : rangee) {
                const Rvb& c = centres[(size_t)de((int)centres.size())];
                p = de(25) == 0   ? MASQUE
                    : sorte == 0 ? c
                    : sorte == 1 ? Rvb{bruit(c.r), bruit(c.g), bruit(c.b)}
                                 : Rvb{(uint8_t)de(256), (uint8_t)de(256), (uint8_t)de(256)};
            }
        const int bits = n % 37 == 36 ? 8 : 24;
        const int hauteur = std::max(1, h + de(9) - 4), largeur = std::max(1, l + de(9) - 4);
        const int fixes = de(4), limite = n % 17 == 0 ? fixes + 1 + de(2) : fixes + 2 + de(n % 2 ? 12 : 250);
        std::vector<uint8_t> palette(TAILLE_PALETTE_REDUCTION);
        for (uint8_t& v : palette) v = (uint8_t)de(32);
        Resultat attendu{0, {}, palette};
        std::vector<std::string> boites;
        attendu.valeur = OctreeReference(image, bits, hauteur, largeur, fixes, limite, attendu, boites);
        journal.messages.clear();
        Garde(image, bits);
        const Resultat r = Octree(hauteur, largeur, fixes, limite, palette);
        ASSERT_EQ(r.valeur, attendu.valeur);
        ASSERT_EQ(journal.messages, boites);
        EXPECT_EQ(ImageGardee.pixels, nullptr);
        if (r.valeur == 0) continue;
        ++reussites;
        ASSERT_EQ(r.indices, attendu.indices);
        ASSERT_EQ(r.palette, attendu.palette);
    }
    EXPECT_GT(reussites, 200);
}

TEST_F(Quantification, OptimaleRefuse) {
    const Rangees trois = {{{0, 0, 0}, {255, 255, 255}, {0, 128, 0}}};
    const Rangees une = {{{40, 40, 40}, {40, 40, 40}, MASQUE}};
    struct Cas {
        const char* nom;
        const Rangees* image;
        int bits, fixes, limite;
        std::string boite;
    };
    const Cas cas[] = {
        {"room for 1", &trois, 24, 0, 1, TROP_PEU},
        {"room for 1 after fixes", &trois, 24, 5, 6, TROP_PEU},
        {"an 8-bit file", &trois, 8, 0, 255, INATTEIGNABLE},
        {"one colour", &une, 24, 0, 255, INATTEIGNABLE},
        // Three colours apart at the top fold into the root: one colour.
        {"three apart at the top, room for 2", &trois, 24, 0, 2, INATTEIGNABLE},
    };
    for (const Cas& c : cas) {
        SCOPED_TRACE(c.nom);
        journal.messages.clear();
        Garde(*c.image, c.bits);
        EXPECT_EQ(Octree(1, 3, c.fixes, c.limite).valeur, 0);
        EXPECT_EQ(journal.messages, std::vector<std::string>{c.boite});
    }
    // Room for exactly 2 is enough when two of them share a branch.
    journal.messages.clear();
    Garde({{{0, 0, 0}, {8, 0, 0}, {255, 255, 255}}});
    const Resultat r = Octree(1, 3, 4, 6);
    EXPECT_EQ(r.valeur, 6);
    EXPECT_EQ(r.indices, (std::vector<uint32_t>{5, 5, 6}));
    EXPECT_TRUE(journal.messages.empty());
}
