// The editor's frame against a slow reference that follows the drawing rules
// pixel by pixel: planes in order with the active one on top, parallax in
// whole cells, index 0 transparent, blending, conditions, GBA banks and
// mirrors, direct colours, the grid. Both routes of the editor (by units,
// by blitters) must give the reference's pixels. Then the picker, the
// popup's delay and the notifications at fixed clock values.
#include "tests/editor/editeur.h"

#include "render/blitters.h"

#include <random>

namespace {

// ---- Planes made in memory ---------------------------------------------------------------

struct Options {
    int sizex, sizey, base, nbTuiles;
    bool direct = false, quatreBits = false, emul = false;
};

void Installe(int slot, const Options& o, std::mt19937& aleas) {
    Plan& p = Plans[slot];
    p = Plan{};
    p.typePlan = TYPE_CARTE;
    p.sizex = o.sizex;
    p.sizey = o.sizey;
    p.tilex = p.tiley = p.baseX = p.baseY = p.grilleX = p.grilleY = o.base;
    p.nbTuiles = o.nbTuiles;
    p.gfxmask = 0xFFFFFFFF;
    p.vitesseX = p.vitesseY = 1.0;
    p.modeDirect = o.direct;
    p.tuiles4Bits = o.quatreBits;
    p.emulgba = o.emul;
    p.formatCellule = CELLULE_16_BITS;
    p.palette = (uint8_t*)malloc(768);
    for (int i = 0; i < 768; ++i) p.palette[i] = (uint8_t)aleas();
    const size_t mots = (size_t)o.nbTuiles * o.base * o.base;
    p.tuiles = (uint32_t*)malloc(mots * 4);
    for (size_t i = 0; i < mots; ++i) {
        const uint32_t r = aleas();
        // A third of the pixels transparent, and some whole tiles opaque.
        const bool plein = (i / 64) % 5 == 0;
        if (o.direct) p.tuiles[i] = !plein && r % 3 == 0 ? 0x1000000u | r : r & 0xFFFFFF;
        else p.tuiles[i] = !plein && r % 3 == 0 ? 0 : 1 + r % (o.quatreBits ? 15 : 255);
    }
    p.cellules = (uint32_t*)malloc((size_t)o.sizex * o.sizey * 4);
    for (int i = 0; i < o.sizex * o.sizey; ++i) {
        uint32_t v = aleas() % (uint32_t)(o.nbTuiles + 3); // a few out of range
        if (o.emul) v = (v % (uint32_t)o.nbTuiles) | (aleas() & 0xFC00u);
        p.cellules[i] = v;
    }
    PlanElement[slot] = nullptr;
    ReglagesPlans.visible[slot] = 1;
    NbConditions[slot] = 0;
}

// ---- The reference -----------------------------------------------------------------------------

uint32_t Melange(uint32_t s, uint32_t d, int a) {
    uint32_t r = 0;
    for (int c = 0; c < 24; c += 8)
        r |= (((s >> c & 255) * (uint32_t)a + (d >> c & 255) * (uint32_t)(255 - a)) >> 8) << c;
    return r;
}

// 0xRRGGBB of one plane's pixel at a view position, or -1 when it shows nothing.
int64_t PixelPlan(int n, int x, int y, const uint8_t* palette) {
    const Plan& p = Plans[n];
    const int ox = (int)(DecalageX * p.vitesseX / p.tilex), oy = (int)(DecalageY * p.vitesseY / p.tiley);
    int nx = p.sizex - ox, ny = p.sizey - oy;
    if (nx > Vue.largeurVueZ / p.tilex) nx = Vue.largeurVueZ / p.tilex + 1;
    if (ny > Vue.hauteurVueZ / p.tiley) ny = Vue.hauteurVueZ / p.tiley + 1;
    const int i = x / p.tilex, j = y / p.tiley;
    if (i >= nx || j >= ny) return -1;
    const int sx = x - i * p.tilex, sy = y - j * p.tiley;
    if (sx >= p.baseX || sy >= p.baseY) return -1;
    const uint32_t v = p.cellules[(size_t)(oy + j) * p.sizex + ox + i] + (uint32_t)p.tilebase;
    const int32_t t = ConvertitCellule(v, n, p.gfxmask);
    if (t < 0 || ((uint32_t)t & (p.emulgba ? 1023u : 0xFFFFFFFFu)) >= (uint32_t)p.nbTuiles) return -1;
    const int ux = sx / 8, uy = sy / 8, px = sx % 8, py = sy % 8;
    uint32_t w;
    int banque = 0, masque = 255;
    if (p.emulgba) {
        const uint32_t c = (uint32_t)(uy * (p.baseX / 8) + ux) + (uint32_t)t * (uint32_t)(p.baseX * p.baseY / 64);
        const int qx = c & 0x400 ? 7 - px : px, qy = c & 0x800 ? 7 - py : py;
        w = p.tuiles[(c & 1023) * 64 + (uint32_t)(qy * 8 + qx)];
        if (p.tuiles4Bits) banque = (int)(c >> 12 & 15), masque = 15;
    } else {
        w = p.tuiles[(size_t)t * p.baseX * p.baseY + (size_t)(uy * (p.baseX / 8) + ux) * 64 + (size_t)(py * 8 + px)];
    }
    if (p.modeDirect) return w >= 0x1000000u ? -1 : (int64_t)(w & 0xFFFFFF); // blue in the low byte, as in 0xRRGGBB
    if (w == 0) return -1;
    const uint8_t* c = palette + banque * 48 + (w & (uint32_t)masque) * 3;
    return (int64_t)c[2] << 16 | c[1] << 8 | c[0];
}

// One plane over the picture, pixel by pixel.
void DessinePlan(std::vector<uint32_t>& image, int n, int alpha) {
    const int l = Vue.largeurVueZ, h = Vue.hauteurVueZ;
    uint8_t* palette = ReglagesPlans.proprePalette ? Plans[n].palette : Plans[PlanActif].palette;
    palette[0] = (uint8_t)(CouleurFond >> 16);
    palette[1] = (uint8_t)(CouleurFond >> 8);
    palette[2] = (uint8_t)CouleurFond;
    const Plan& p = Plans[n];
    if (p.typePlan == TYPE_LISTE) {
        // Objects in order, each block at its position less the plane's
        // offset in whole grid steps; no tilebase.
        const int ox = (int)(DecalageX * p.vitesseX / p.grilleX) * p.grilleX;
        const int oy = (int)(DecalageY * p.vitesseY / p.grilleY) * p.grilleY;
        for (int k = 0; k < p.nbObjets; ++k) {
            int32_t o[3];
            memcpy(o, p.objets + (size_t)k * p.tailleObjet, 12);
            const int32_t t = ConvertitCellule((uint32_t)o[2], n, p.gfxmask);
            if (t < 0 || t >= p.nbTuiles) continue;
            for (int py = 0; py < p.baseY; ++py)
                for (int px = 0; px < p.baseX; ++px) {
                    const int x = o[0] - ox + px, y = o[1] - oy + py;
                    if (x < 0 || y < 0 || x >= l || y >= h) continue;
                    const uint32_t w = p.tuiles[(size_t)t * p.baseX * p.baseY +
                                                (size_t)((py / 8) * (p.baseX / 8) + px / 8) * 64 + (py % 8) * 8 + px % 8];
                    if (w == 0) continue;
                    const uint8_t* c = palette + (w & 255) * 3;
                    const uint32_t couleur = (uint32_t)c[2] << 16 | (uint32_t)c[1] << 8 | c[0];
                    uint32_t& d = image[(size_t)y * l + x];
                    d = alpha ? Melange(couleur, d, alpha) : couleur;
                }
        }
        return;
    }
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < l; ++x) {
            const int64_t c = PixelPlan(n, x, y, palette);
            if (c < 0) continue;
            uint32_t& d = image[(size_t)y * l + x];
            d = alpha ? Melange((uint32_t)c, d, alpha) : (uint32_t)c;
        }
}

std::vector<uint32_t> Reference() {
    std::vector<uint32_t> image((size_t)Vue.largeurVueZ * Vue.hauteurVueZ,
                                (CouleurFond & 255) << 16 | (CouleurFond & 0xFF00) | CouleurFond >> 16);
    for (int i = 0; i < NbPlans; ++i)
        if (i != PlanActif && ReglagesPlans.visible[i]) DessinePlan(image, i, ReglagesPlans.transparence ? ReglagesPlans.alphaGfx : 0);
    DessinePlan(image, PlanActif, NbPlans >= 2 && ReglagesPlans.transparence ? ReglagesPlans.alphaPremierPlan : 0);
    return image;
}

// The view's rectangle of SurfaceEditeur, 0xRRGGBB.
std::vector<uint32_t> Vue24(const Image& s, int l, int h) {
    std::vector<uint32_t> v;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < l; ++x) {
            const uint8_t* p = s.pixels + (size_t)(s.hauteur - 1 - y) * s.pas + 3 * x;
            v.push_back((uint32_t)p[2] << 16 | (uint32_t)p[1] << 8 | p[0]);
        }
    return v;
}

struct Composition : EditeurEssai {
    std::mt19937 aleas{1234};
    void TearDown() override {
        RouteParUnites = true;
        ReglagesEdit.grille = 0;
        EditeurEssai::TearDown();
    }
    // Both routes against the reference, over the view's rectangle.
    void Compare(const std::string& cas) {
        const std::vector<uint32_t> attendu = Reference();
        for (int route = 0; route < 3; ++route) {
            RouteParUnites = route < 2;
            ComposeAvx2 = route == 0;
            memset(SurfaceEditeur.pixels, 0x5A, (size_t)SurfaceEditeur.pas * SurfaceEditeur.hauteur);
            ComposePlans();
            const std::vector<uint32_t> vu = Vue24(SurfaceEditeur, Vue.largeurVueZ, Vue.hauteurVueZ);
            size_t k = 0;
            while (k < vu.size() && vu[k] == attendu[k]) ++k;
            const char* noms[] = {" (units, widest vectors)", " (units, SSE2)", " (blitters)"};
            EXPECT_EQ(k, vu.size()) << cas << noms[route] << ": first difference at x "
                                    << k % (size_t)Vue.largeurVueZ << " y " << k / (size_t)Vue.largeurVueZ;
        }
        ComposeAvx2 = true;
    }
};

TEST_F(Composition, LesDeuxRoutesDonnentLesPixelsDeLaReference) {
    Vue.largeurVueZ = 203;
    Vue.hauteurVueZ = 150;
    const Options options[] = {
        {40, 30, 8, 40},            {25, 20, 16, 12},         {60, 50, 8, 30, true},
        {30, 30, 8, 24, false, true, true}, {35, 25, 8, 20, false, false, true}, {12, 9, 32, 6},
    };
    NbPlans = 6;
    for (int i = 0; i < NbPlans; ++i) Installe(i, options[i], aleas);
    const struct {
        double vitesse[6];
        int decalageX, decalageY, actif, transparence, proprePalette, cache;
    } cas[] = {
        {{1, 1, 1, 1, 1, 1}, 0, 0, 0, 0, 1, -1},          {{0.5, 2, 1, 0, 1, 0.5}, 37, 53, 0, 0, 1, -1},
        {{0.5, 2, 1, 0, 1, 0.5}, 37, 53, 2, 1, 1, -1},    {{1, 0.5, 2, 1, 1, 1}, 96, 8, 3, 1, 0, 4},
        {{2, 2, 2, 2, 2, 2}, 200, 120, 5, 1, 1, 5},       {{1, 1, 1, 1, 1, 1}, 9, 3, 4, 0, 0, 1},
    };
    for (const auto& c : cas) {
        for (int i = 0; i < NbPlans; ++i) {
            Plans[i].vitesseX = Plans[i].vitesseY = c.vitesse[i];
            ReglagesPlans.visible[i] = i != c.cache;
        }
        DecalageX = c.decalageX;
        DecalageY = c.decalageY;
        PlanActif = c.actif;
        ReglagesPlans.transparence = c.transparence;
        ReglagesPlans.proprePalette = c.proprePalette;
        Compare("case " + std::to_string(&c - cas));
    }
    // Conditions and a display mask on one plane, a reference tile on another.
    AjouteCondition(0, 5, 9, 2, false);
    AjouteCondition(0, 10, 12, 1, true);
    Plans[1].gfxmask = 0x7;
    Plans[2].tilebase = 3;
    Compare("conditions");
    // A single plane never blends.
    NbPlans = 1;
    PlanActif = 0;
    ReglagesPlans.transparence = 1;
    Compare("one plane");
}

// A list plane between map planes keeps its place in the order, and its
// selected object its frame, by either route.
TEST_F(Composition, PlanListeEntreLesCartes) {
    Vue.largeurVueZ = 131;
    Vue.hauteurVueZ = 77;
    NbPlans = 3;
    Installe(0, {30, 20, 8, 20}, aleas);
    Installe(2, {30, 20, 8, 20}, aleas);
    Installe(1, {30, 20, 8, 20}, aleas);
    Plan& liste = Plans[1];
    free(liste.cellules);
    liste.cellules = nullptr;
    liste.typePlan = TYPE_LISTE;
    liste.tailleObjet = 12;
    liste.capaciteObjets = 40;
    liste.nbObjets = 40;
    liste.objets = (uint8_t*)malloc(40 * 12);
    for (int i = 0; i < 40; ++i) {
        const int32_t o[3] = {(int32_t)(aleas() % 160) - 10, (int32_t)(aleas() % 100) - 10, (int32_t)(aleas() % 24)};
        memcpy(liste.objets + i * 12, o, 12);
    }
    liste.grilleX = liste.grilleY = 8;
    for (int transparence : {0, 1}) {
        ReglagesPlans.transparence = transparence;
        for (int actif : {1, 2}) {
            PlanActif = actif;
            DecalageX = 13;
            Compare("active " + std::to_string(actif) + " blending " + std::to_string(transparence));
        }
    }
    // The current object's frame and fill, red with green pulsing, by either route.
    ObjetCourant = 3;
    PlanActif = 2;
    ReglagesPlans.transparence = 0;
    std::vector<uint32_t> vues[2];
    for (bool unites : {true, false}) {
        RouteParUnites = unites;
        ComposePlans();
        vues[unites] = Vue24(SurfaceEditeur, Vue.largeurVueZ, Vue.hauteurVueZ);
    }
    EXPECT_EQ(vues[0], vues[1]);
    RouteParUnites = true;
    ObjetCourant = -1;
    const std::vector<uint32_t> sans = (ComposePlans(), Vue24(SurfaceEditeur, Vue.largeurVueZ, Vue.hauteurVueZ));
    int32_t o[3];
    memcpy(o, liste.objets + 3 * 12, 12);
    const int x = o[0] - 8, y = o[1]; // DecalageX 13 is one grid step of 8
    if (x >= 0 && y >= 0 && x < Vue.largeurVueZ && y < Vue.hauteurVueZ) {
        const size_t k = (size_t)y * Vue.largeurVueZ + x;
        EXPECT_EQ(vues[1][k], Melange(0xFF0000u | (uint32_t)Pulsation(HorlogeEssai) << 8, sans[k], 0x80));
    }
}

// Hex mode: white ground, the other planes as graphics, the active plane's
// graphics behind at the 16-pixel pitch when asked, then each cell's value
// plus tilebase in 3 x 5 digits, each digit a box of white with the glyph
// in black: the low digit at the cell's centre, the next 4 pixels left, the
// third and fourth a row of 6 pixels higher.
// The glyphs' shapes are the pixel layer's own (15 bits, top row first).
const uint16_t Chiffres[16] = {0x2B6A, 0x1649, 0x62A7, 0x628E, 0x5BC9, 0x798E, 0x39AA, 0x7294,
                               0x2AAA, 0x2ACE, 0x2BED, 0x6BAE, 0x3923, 0x6B6E, 0x79A7, 0x79A4};

void ChiffresReference(std::vector<uint32_t>& image, int l, int h, int x, int y, uint32_t v, bool larges) {
    int colonne = x + 8, ligne = y + 7;
    for (int k = 0; k < (larges ? 4 : 2); ++k) {
        for (int r = 0; r < 5; ++r)
            for (int c = 0; c < 3; ++c) {
                const int px = colonne + c, py = ligne + r;
                if (px < 0 || py < 0 || px >= l || py >= h) continue;
                const bool plein = Chiffres[v & 15] >> (14 - (r * 3 + c)) & 1;
                image[(size_t)py * l + px] = plein ? 0 : 0xFFFFFF;
            }
        v >>= 4;
        colonne -= 4;
        if (k == 1) {
            if (!ReglagesHexa.combleZeros && v == 0) break;
            ligne -= 6;
            colonne += 8;
        }
    }
}

TEST_F(Composition, ModeHexaContreLaReference) {
    Vue.largeurVueZ = 150;
    Vue.hauteurVueZ = 90;
    NbPlans = 2;
    Installe(0, {30, 20, 8, 20}, aleas);
    Installe(1, {25, 15, 8, 20}, aleas);
    const uint32_t valeurs[] = {0x7, 0x12, 0xAB, 0x1234, 0x12345, 0xFFFFFFFF};
    for (int i = 0; i < 25 * 15; ++i) Plans[1].cellules[i] = valeurs[i % 6];
    Plans[1].tilebase = 1;
    PlanActif = 1;
    BasculeModeHexa();
    EXPECT_EQ(std::pair(Plans[1].tilex, Plans[1].baseX), std::pair(16, 8));
    for (int format : {0, 1, 2})
        for (int zeros : {0, 1})
            for (int fond : {0, 1})
                for (int transparence : {0, 1}) {
                    Plans[1].formatCellule = format;
                    ReglagesHexa.combleZeros = zeros;
                    ReglagesHexa.fondActif = fond;
                    ReglagesPlans.transparence = transparence;
                    DecalageX = 40;
                    std::vector<uint32_t> attendu(150 * 90, 0xFFFFFF);
                    DessinePlan(attendu, 0, transparence ? ReglagesPlans.alphaHex : 0);
                    if (fond) DessinePlan(attendu, 1, ReglagesPlans.alphaHex);
                    const int ox = DecalageX / 16;
                    for (int j = 0; j < 90 / 16 + 1; ++j)
                        for (int i = 0; i < 150 / 16 + 1 && ox + i < 25; ++i)
                            ChiffresReference(attendu, 150, 90, i * 16, j * 16, Plans[1].cellules[j * 25 + ox + i] + 1,
                                              format > 0);
                    ComposePlans();
                    const std::vector<uint32_t> vu = Vue24(SurfaceEditeur, 150, 90);
                    size_t k = 0;
                    while (k < vu.size() && vu[k] == attendu[k]) ++k;
                    EXPECT_EQ(k, vu.size()) << "format " << format << " zeros " << zeros << " graphics " << fond
                                            << " blending " << transparence << ": first difference at x " << k % 150
                                            << " y " << k / 150;
                }
    BasculeModeHexa();
    EXPECT_EQ(std::pair(Plans[1].tilex, Plans[1].tiley), std::pair(8, 8));
    // The value box: leading hexadecimal digits, within the cell format's mask.
    const struct {
        int format;
        const char* texte;
        uint32_t valeur;
    } cas[] = {{0, "1FF", 0xFF}, {1, "12g4", 0x12}, {1, "", 0}, {1, "zz", 0}, {1, "abCD1", 0xBCD1}, {2, "123456789", 0x23456789}};
    for (const auto& c : cas) {
        Plans[1].formatCellule = c.format;
        EXPECT_EQ(TapeValeurHexa(c.texte), c.valeur) << c.texte;
        EXPECT_EQ(ValeurCourante, c.valeur);
    }
    char texte[16];
    TexteValeurHexa(texte, sizeof texte);
    EXPECT_STREQ(texte, "23456789");
}

TEST_F(Composition, GrilleDuPlanActifSeulement) {
    Vue.largeurVueZ = 96;
    Vue.hauteurVueZ = 64;
    NbPlans = 2;
    Installe(0, {20, 10, 8, 10}, aleas);
    Installe(1, {9, 7, 8, 10}, aleas);
    PlanActif = 1;
    DecalageX = 20;
    Plans[1].grilleX = 16;
    Plans[1].grilleY = 8;
    ReglagesEdit.grille = 1;
    ComposePlans();
    const std::vector<uint32_t> avecGrille = Vue24(SurfaceEditeur, 96, 64);
    ReglagesEdit.grille = 0;
    ComposePlans();
    const std::vector<uint32_t> sans = Vue24(SurfaceEditeur, 96, 64);
    // The grid blends the right and bottom edge of each 16 x 8 step, up to
    // the last step that starts inside the map (9 cells less the 16 pixels
    // of offset) and no further.
    int differences = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 96; ++x) {
            const bool change = avecGrille[(size_t)y * 96 + x] != sans[(size_t)y * 96 + x];
            differences += change;
            const bool bord = (x % 16 == 15 || y % 8 == 7) && x < 64 && y < 56;
            if (change) {
                EXPECT_TRUE(bord) << x << "," << y;
            }
        }
    EXPECT_GT(differences, 200);
}

TEST_F(Composition, PulsationSelecteurEtPopup) {
    EXPECT_EQ(Pulsation(0), 255);
    EXPECT_EQ(Pulsation(2), 254);
    EXPECT_EQ(Pulsation(510), 1);
    EXPECT_EQ(Pulsation(512), 1); // 0 becomes 1
    EXPECT_EQ(Pulsation(514), 1);
    EXPECT_EQ(Pulsation(1022), 255);
    EXPECT_EQ(Pulsation(1024 + 100), Pulsation(100));

    Vue.largeurVueZ = 160;
    Vue.hauteurVueZ = 96;
    Vue.largeurSelecteur = 32;
    NbPlans = 1;
    PlanActif = 0;
    Installe(0, {30, 20, 8, 12}, aleas);
    Plans[0].tuiles[5 * 64] = 7; // first pixel of tile 5
    ValeurCourante = 5;
    // The picker: 4 tiles a row; the current one drawn at full strength,
    // the others at 75 while the mouse is away.
    HorlogeEssai = 5000;
    DessineSelecteur(HorlogeEssai);
    auto Pixel = [](const Image& s, int x, int y) {
        const uint8_t* p = s.pixels + (size_t)(s.hauteur - 1 - y) * s.pas + 3 * x;
        return (uint32_t)p[2] << 16 | (uint32_t)p[1] << 8 | p[0];
    };
    const uint8_t* c7 = Plans[0].palette + 21;
    const uint32_t fond = (CouleurFond & 255) << 16 | (CouleurFond & 0xFF00) | CouleurFond >> 16;
    const uint32_t sept = (uint32_t)c7[2] << 16 | (uint32_t)c7[1] << 8 | c7[0];
    EXPECT_EQ(Pixel(SurfaceSelecteur, 8, 8), Melange(sept, fond, 255));
    const uint32_t w = Plans[0].tuiles[64];
    const uint8_t* c1 = Plans[0].palette + 3 * (w & 255);
    const uint32_t un = (uint32_t)c1[2] << 16 | (uint32_t)c1[1] << 8 | c1[0];
    EXPECT_EQ(Pixel(SurfaceSelecteur, 8, 0), Melange(un, fond, 75));

    // The popup waits tempspopup x 10 ms of rest on one cell.
    Vue.curseurX = 20;
    Vue.curseurY = 20;
    ReglagesEdit.tempsPopup = 61;
    auto Frame = [&](int64_t t) {
        HorlogeEssai = t;
        ComposeVue();
        return Vue24(SurfaceEditeur, 160, 96);
    };
    Frame(10000);
    const std::vector<uint32_t> avant = Frame(10600);
    EXPECT_EQ(TempsSurvol, 60);
    const std::vector<uint32_t> apres = Frame(10610);
    EXPECT_EQ(TempsSurvol, 61);
    // The box at (36, 36): its frame in blue (red 0xFF) over what was there.
    EXPECT_NE(apres[36 * 160 + 40], avant[36 * 160 + 40]);
    Vue.curseurX = 40; // another cell: the count starts again
    Frame(10620);
    EXPECT_EQ(TempsSurvol, 0);
}

TEST_F(Composition, NotificationsRemplaceesEtEffaceesALaMilliseconde) {
    EffaceNotifications();
    AjouteNotificationSimple("Map opened: %s", "a");
    DessineNotifications(1000, 100);
    AjouteNotification("Pattern: %i (%04x)", 1, 1u);
    DessineNotifications(500, 100);
    AjouteNotification("Pattern: %i (%04x)", 2, 2u); // replaces the first pattern line, at 3 s again
    ASSERT_EQ(LignesNotification.nombre, 2);
    EXPECT_STREQ(LignesNotification.texte[1], "Pattern: 2 (0002)");
    DessineNotifications(1499, 100);
    EXPECT_EQ(LignesNotification.nombre, 2);
    DessineNotifications(1, 100); // 3000 ms for the first line
    ASSERT_EQ(LignesNotification.nombre, 1);
    EXPECT_STREQ(LignesNotification.texte[0], "Pattern: 2 (0002)");
    DessineNotifications(1499, 100); // 1 ms left for the pattern line
    EXPECT_EQ(LignesNotification.nombre, 1);
    DessineNotifications(1, 100);
    EXPECT_EQ(LignesNotification.nombre, 0);

    // Eleven stacked lines: the oldest goes.
    for (int i = 0; i < 11; ++i) AjouteNotificationSimple("Map saved: %s", std::to_string(i).c_str());
    EXPECT_EQ(LignesNotification.nombre, 10);
    EXPECT_STREQ(LignesNotification.texte[0], "Map saved: 1");

    // The box: 14 pixels a line at the bottom left, the text in white.
    const Cadre cadre = CadreDessin;
    ChoisitCadre(0, 0, 1280, 1024);
    EffaceNotifications();
    AjouteNotificationSimple("Welcome!");
    RemplitRect(&SurfaceEditeur, 0, 0, 200, 100, 0);
    DessineNotifications(0, 100);
    const std::vector<uint32_t> v = Vue24(SurfaceEditeur, 200, 100);
    EXPECT_EQ(v[90 * 200 + 100], 0u);                                   // beside the box
    EXPECT_EQ(v[95 * 200 + 20], Melange(0x003060, 0, 0x80));            // its fill: colour 0x603000, blue 0x60
    EXPECT_EQ(v[99 * 200 + 20], Melange(0xFFC000, 0, 0xC0));            // its frame: colour 0xC0FF
    EXPECT_EQ(v[89 * 200 + 2], 0xFFFFFFu);                              // the W's first column, 3 rows down
    EXPECT_EQ(LignesNotification.largeur[0], 8 * LARGEUR_CAR_POLICE);
    CadreDessin = cadre;
}

} // namespace
