// Plane compositing and display.
//
// Sections: wave and palettes; the blitter route (DessineCarte,
// DessineListe, the grid); the unit route (resolved tilesets, units, the two
// threads); the frame; the cursor and its popup; the picker.
#include "editor/composition.h"

#include "editor/edition.h"
#include "editor/liste.h"
#include "editor/notifications.h"
#include "editor/plans.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "render/blitters.h"
#include "render/surfaces.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <thread>
#include <vector>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

Image SurfaceSelecteur;
int AlphaSelecteur = 75;
int TempsSurvol = 0;
int FilsComposition = 2;
bool RouteParUnites = true;
bool ComposeAvx2 = true;

namespace {

int64_t DernierTick = -1;    // clock at the last frame
int64_t DernierSelecteur = -1; // clock at the last picker frame
int64_t DernierCurseur = -1;   // clock at the last cursor frame
int CelluleSurvolX = -1, CelluleSurvolY = -1;
Image Travail; // the 32-bit work picture of the unit route

// The surface the blitter route draws into.
Image* Cible = &SurfaceEditeur;

} // namespace

// ---- Wave and palettes -----------------------------------------------------------------------

int Pulsation(int64_t millisecondes) {
    const int t = (int)((millisecondes & 1023) / 2);
    const int p = t < 256 ? 255 - t : t & 255;
    return p == 0 ? 1 : p;
}

namespace {

uint8_t* PalettePlan(int plan) {
    if (!ReglagesPlans.proprePalette && PlanActif >= 0 && PlanActif < NbPlans) return Plans[PlanActif].palette;
    return plan >= 0 && plan < NB_PLANS_MAX ? Plans[plan].palette : nullptr;
}

void EntreeFond(uint8_t* palette) {
    if (!palette) return;
    palette[0] = (uint8_t)(CouleurFond >> 16);
    palette[1] = (uint8_t)(CouleurFond >> 8);
    palette[2] = (uint8_t)CouleurFond;
}

int AlphaAutres() {
    if (!ReglagesPlans.transparence) return 0;
    return ReglagesHexa.actif ? ReglagesPlans.alphaHex : ReglagesPlans.alphaGfx;
}

int AlphaActif() { return NbPlans >= 2 && ReglagesPlans.transparence ? ReglagesPlans.alphaPremierPlan : 0; }

// Offset of a plane in cells: whole part of the position times the speed
// over the cell size.
int DecalageCellules(int decalage, double vitesse, int cote) { return cote > 0 ? (int)(decalage * vitesse / cote) : 0; }

// Cells of a plane drawn across a view of that many pixels.
int CellulesVues(int taille, int decalage, int vue, int cote) {
    int n = taille - decalage;
    if (cote > 0 && n > vue / cote) n = vue / cote + 1;
    return n;
}

// One block of a map plane at a view position, through the blitters.
void DessineBloc(Image* s, const Plan& p, const uint8_t* palette, int x, int y, int32_t t, int alpha, bool opaque) {
    const VueTuiles vue{p.tuiles4Bits, palette, p.tuiles};
    for (int sy = 0; sy < p.baseY; sy += 8)
        for (int sx = 0; sx < p.baseX; sx += 8) {
            const uint32_t unite = (uint32_t)((p.baseX / 8) * (sy / 8) + sx / 8);
            if (p.emulgba > 0) {
                const uint32_t c = unite + (uint32_t)t * (uint32_t)(p.baseX * p.baseY / 64);
                if (opaque) AfficheTuileOpaque(s, x + sx, y + sy, vue, c, alpha);
                else AfficheTuile(s, x + sx, y + sy, vue, c, alpha);
            } else {
                const uint32_t* src = p.tuiles + ((size_t)t * (size_t)(p.baseX * p.baseY) + (size_t)unite * 64);
                if (opaque) AfficheBlocAlpha(s, x + sx, y + sy, 8, 8, src, palette, alpha);
                else if (alpha == 0) AfficheBlocTransp(s, x + sx, y + sy, 8, 8, src, palette);
                else AfficheBlocTranspAlpha(s, x + sx, y + sy, 8, 8, src, palette, alpha);
            }
        }
}

// Whether a tile number draws on a plane.
bool TuileVisible(const Plan& p, int32_t t) { return t >= 0 && ((uint32_t)t & MasqueCellule(p)) < (uint32_t)p.nbTuiles; }

void DessineGrille(Image* s, const Plan& p, int px, int py) {
    if (!ReglagesEdit.grille || p.grilleX < 4 || p.grilleY < 4) return;
    int wl = Vue.largeurVueZ, hl = Vue.hauteurVueZ;
    const int64_t largeur = (int64_t)p.sizex * p.tilex, hauteur = (int64_t)p.sizey * p.tiley;
    if (wl + px >= largeur) wl = (int)(largeur - px - 1);
    if (hl + py >= hauteur) hl = (int)(hauteur - py - 1);
    for (int y = -(py % p.grilleY); y < hl; y += p.grilleY)
        for (int x = -(px % p.grilleX); x < wl; x += p.grilleX)
            AfficheBordBloc(s, x, y + 1, p.grilleX, p.grilleY, (uint32_t)ReglagesEdit.couleurGrille,
                            ReglagesEdit.alphaGrille);
}

void GrillePlan(Image* s, int plan) {
    const Plan& p = Plans[plan];
    if (p.typePlan == TYPE_LISTE) {
        const int ox = p.grilleX > 0 ? (int)(DecalageX * p.vitesseX / p.grilleX) * p.grilleX : 0;
        const int oy = p.grilleY > 0 ? (int)(DecalageY * p.vitesseY / p.grilleY) * p.grilleY : 0;
        DessineGrille(s, p, ox, oy);
    } else if (p.tilex > 0 && p.tiley > 0) {
        DessineGrille(s, p, (int)(DecalageX * p.vitesseX) & ~(p.tilex - 1), (int)(DecalageY * p.vitesseY) & ~(p.tiley - 1));
    }
}

} // namespace

// ---- The blitter route --------------------------------------------------------------------------

void DessineCarte(const uint8_t* palette, int decalageX, int decalageY, int alpha, int plan) {
    if (plan < 0 || plan >= NbPlans) return;
    const Plan& p = Plans[plan];
    if (!p.cellules || !p.tuiles || !palette || p.tilex <= 0 || p.tiley <= 0) return;
    EntreeFond(const_cast<uint8_t*>(palette));
    const int ox = DecalageCellules(decalageX, p.vitesseX, p.tilex);
    const int oy = DecalageCellules(decalageY, p.vitesseY, p.tiley);
    const int nx = CellulesVues(p.sizex, ox, Vue.largeurVueZ, p.tilex);
    const int ny = CellulesVues(p.sizey, oy, Vue.hauteurVueZ, p.tiley);
    const int modeAvant = ModeDirect;
    ModeDirect = p.modeDirect;
    // The digits are placed by the shared cell size.
    const TaillesPartagees tailles = TaillesPartagees::Sauve();
    tilex = p.tilex;
    tiley = p.tiley;
    for (int j = 0; j < ny; ++j) {
        if (oy + j < 0) continue;
        const uint32_t* ligne = p.cellules + (size_t)(oy + j) * p.sizex;
        for (int i = 0; i < nx; ++i) {
            if (ox + i < 0) continue;
            const uint32_t v = ligne[ox + i] + (uint32_t)p.tilebase;
            if (ReglagesHexa.actif) {
                AfficheNombreBloc(i * p.tilex, j * p.tiley, v, 0, p.formatCellule > 0);
                continue;
            }
            const int32_t t = ConvertitCellule(v, plan, p.gfxmask);
            if (TuileVisible(p, t)) DessineBloc(Cible, p, palette, i * p.tilex, j * p.tiley, t, alpha, false);
        }
    }
    tailles.Restaure(TAILLES_TUILE);
    ModeDirect = modeAvant;
    if (plan == PlanActif) GrillePlan(Cible, plan);
}

void DessineListe(const uint8_t* palette, int decalageX, int decalageY, int alpha, int plan) {
    if (plan < 0 || plan >= NbPlans) return;
    const Plan& p = Plans[plan];
    if (!p.objets || !palette || p.grilleX <= 0 || p.grilleY <= 0) return;
    EntreeFond(const_cast<uint8_t*>(palette));
    const int ox = (int)(decalageX * p.vitesseX / p.grilleX) * p.grilleX;
    const int oy = (int)(decalageY * p.vitesseY / p.grilleY) * p.grilleY;
    const int modeAvant = ModeDirect;
    ModeDirect = p.modeDirect;
    const int pulsation = Pulsation(Millisecondes());
    for (int n = 0; n < p.nbObjets; ++n) {
        const uint8_t* o = p.objets + (size_t)n * (size_t)p.tailleObjet;
        int32_t champs[3];
        memcpy(champs, o, sizeof champs);
        const int32_t t = ConvertitCellule((uint32_t)champs[2], plan, p.gfxmask);
        if (t < 0 || t >= p.nbTuiles) continue;
        const int x = champs[0] - ox, y = champs[1] - oy;
        DessineBloc(Cible, p, palette, x, y, t, alpha, false);
        bool choisi = NbSelectionObjets == 0 && n == ObjetCourant;
        for (int k = 0; k < NbSelectionObjets && !choisi; ++k) choisi = SelectionObjets[k] == n;
        if (choisi) {
            AfficheCadreAlpha(Cible, x - 1, y, p.tilex + 2, p.tiley + 2, 0xFF0000, 0x80);
            RemplitRectAlpha(Cible, x, y, p.tilex, p.tiley, 0xFFu | (uint32_t)pulsation << 8, 0x80);
        }
    }
    ModeDirect = modeAvant;
    if (plan == PlanActif) DessineGrille(Cible, p, ox, oy);
}

namespace {

// The planes through the blitters, straight into the editor surface.
void ComposeParBlitters() {
    Cible = &SurfaceEditeur;
    const int hexa = ReglagesHexa.actif;
    const int alphaAutres = AlphaAutres(); // alphahex in hex mode
    ReglagesHexa.actif = 0;
    for (int i = 0; i < NbPlans; ++i) {
        if (i == PlanActif || !ReglagesPlans.visible[i]) continue;
        if (Plans[i].typePlan == TYPE_LISTE) DessineListe(PalettePlan(i), DecalageX, DecalageY, alphaAutres, i);
        else DessineCarte(PalettePlan(i), DecalageX, DecalageY, alphaAutres, i);
    }
    ReglagesHexa.actif = hexa;
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    const int alpha = AlphaActif();
    if (Plans[PlanActif].typePlan == TYPE_LISTE) {
        DessineListe(PalettePlan(PlanActif), DecalageX, DecalageY, alpha, PlanActif);
        return;
    }
    if (hexa && ReglagesHexa.fondActif) {
        ReglagesHexa.actif = 0;
        DessineCarte(PalettePlan(PlanActif), DecalageX, DecalageY, ReglagesPlans.alphaHex, PlanActif);
        ReglagesHexa.actif = hexa;
    }
    DessineCarte(PalettePlan(PlanActif), DecalageX, DecalageY, alpha, PlanActif);
}

// ---- The unit route ---------------------------------------------------------------------------
// A resolved unit is 64 words, blue in bits 0-7, green 8-15, red 16-23; a
// transparent pixel has the top byte 0xFF.

constexpr uint32_t TRANSPARENT = 0xFF000000u;

struct Resolution {
    uint64_t signature = 0;
    int unites = 0;  // units of one bank
    int banques = 0; // 16 for 4-bit tiles under emulgba, else 1
    std::vector<uint32_t> pixels;
    std::vector<uint8_t> plein; // no transparent pixel
};
Resolution Resolutions[NB_PLANS_MAX];

uint64_t Empreinte(const void* donnees, size_t n, uint64_t h) {
    const uint8_t* d = (const uint8_t*)donnees;
    for (size_t i = 0; i < n; ++i) h = (h ^ d[i]) * 1099511628211ull;
    return h;
}

// The plane's tileset in pixels, made again when anything it depends on
// has changed since the last frame.
const Resolution& Resous(int plan, const uint8_t* palette) {
    const Plan& p = Plans[plan];
    Resolution& r = Resolutions[plan];
    const bool emul = p.emulgba > 0;
    const bool banques = emul && p.tuiles4Bits && !p.modeDirect;
    const int64_t parBloc = (int64_t)(p.baseX / 8) * (p.baseY / 8);
    int64_t unites = (int64_t)p.nbTuiles * parBloc;
    if (emul && unites > 1024) unites = 1024;
    if (unites < 0) unites = 0;
    struct {
        const void* tuiles;
        int64_t unites;
        int emul, banques, direct;
    } cle{p.tuiles, unites, emul, banques, p.modeDirect};
    uint64_t h = Empreinte(&cle, sizeof cle, 14695981039346656037ull);
    h = Empreinte(palette, 768, h);
    if (h == r.signature && !r.pixels.empty()) return r;
    r.signature = h;
    r.unites = (int)unites;
    r.banques = banques ? 16 : 1;
    r.pixels.assign((size_t)unites * 64 * r.banques, TRANSPARENT);
    r.plein.assign((size_t)unites * r.banques, 0);
    for (int b = 0; b < r.banques; ++b) {
        const uint8_t* pal = palette + (size_t)b * 48;
        const uint32_t masque = banques ? 15 : 255;
        for (int64_t u = 0; u < unites; ++u) {
            const uint32_t* src = p.tuiles + (size_t)u * 64;
            uint32_t* d = r.pixels.data() + ((size_t)b * (size_t)unites + (size_t)u) * 64;
            bool plein = true;
            for (int k = 0; k < 64; ++k) {
                const uint32_t w = src[k];
                if (p.modeDirect) {
                    if (w >= 0x1000000u) plein = false;
                    else d[k] = w;
                } else if (w == 0) {
                    plein = false;
                } else {
                    const uint8_t* c = pal + (size_t)(w & masque) * 3;
                    d[k] = (uint32_t)c[0] | (uint32_t)c[1] << 8 | (uint32_t)c[2] << 16;
                }
            }
            r.plein[(size_t)b * (size_t)unites + (size_t)u] = plein;
        }
    }
    return r;
}

// What one map plane gives the units of the view this frame: its fields
// taken once, and for each unit column and row of the view the cell and the
// unit inside the block (-1: nothing there).
struct PlanUnites {
    int plan;
    int alpha;
    const Resolution* resolution;
    const uint32_t* cellules;
    int sizex;
    uint32_t tilebase, gfxmask, masque, parBloc, unitesLigne, nbTuiles, unites;
    bool conditions, emul, banques;
    std::vector<int> colonneCellule, colonneUnite;
    std::vector<int> ligneCellule, ligneUnite;
};

// A unit of a plane at a unit of the view: its pixels and mirrors, or null.
struct Unite {
    const uint32_t* pixels;
    bool miroirH, miroirV, plein;
};

inline Unite UniteDe(const PlanUnites& u, int ux, int uy) {
    const int i = u.colonneCellule[(size_t)ux], j = u.ligneCellule[(size_t)uy];
    if (i < 0 || j < 0) return {nullptr, false, false, false};
    const uint32_t v = u.cellules[(size_t)j * (size_t)u.sizex + (size_t)i] + u.tilebase;
    const int32_t t = u.conditions ? ConvertitCellule(v, u.plan, u.gfxmask) : (int32_t)(v & u.gfxmask);
    if (t < 0 || ((uint32_t)t & u.masque) >= u.nbTuiles) return {nullptr, false, false, false};
    const uint32_t dans = (uint32_t)u.ligneUnite[(size_t)uy] * u.unitesLigne + (uint32_t)u.colonneUnite[(size_t)ux];
    uint32_t index;
    bool mh = false, mv = false;
    int banque = 0;
    if (u.emul) {
        const uint32_t c = dans + (uint32_t)t * u.parBloc;
        index = TuileDeCellule(c);
        mh = MiroirHDeCellule(c);
        mv = MiroirVDeCellule(c);
        if (u.banques) banque = BanqueDeCellule(c);
    } else {
        index = (uint32_t)t * u.parBloc + dans;
    }
    if (index >= u.unites) return {nullptr, false, false, false};
    const size_t k = (size_t)banque * u.unites + index;
    const Resolution& r = *u.resolution;
    return {r.pixels.data() + k * 64, mh, mv, r.plein[k] != 0};
}

uint32_t* LigneTravail(int ligne) { return (uint32_t*)(Travail.pixels + (size_t)(Travail.hauteur - 1 - ligne) * Travail.pas); }

// One unit over the work picture: pixels that are not transparent replace
// (alpha 0) or blend into what is there.
void PoseUniteSse2(uint32_t* d, ptrdiff_t pas, const Unite& u, int alpha) {
    if (alpha == 0 && u.plein && !u.miroirH) {
        for (int r = 0; r < 8; ++r, d -= pas) memcpy(d, u.pixels + (u.miroirV ? 7 - r : r) * 8, 32);
        return;
    }
    for (int r = 0; r < 8; ++r, d -= pas) {
        const uint32_t* s = u.pixels + (u.miroirV ? 7 - r : r) * 8;
#if defined(__SSE2__)
        __m128i a = _mm_loadu_si128((const __m128i*)s), b = _mm_loadu_si128((const __m128i*)(s + 4));
        if (u.miroirH) {
            const __m128i t = _mm_shuffle_epi32(b, 0x1B);
            b = _mm_shuffle_epi32(a, 0x1B);
            a = t;
        }
        __m128i* da = (__m128i*)d;
        __m128i* db = (__m128i*)(d + 4);
        const __m128i tous = _mm_set1_epi32(-1);
        const __m128i da0 = _mm_loadu_si128(da), db0 = _mm_loadu_si128(db);
        const __m128i ma = _mm_cmpgt_epi32(a, tous), mb = _mm_cmpgt_epi32(b, tous); // drawn pixels
        if (alpha != 0) {
            const __m128i zero = _mm_setzero_si128(), fa = _mm_set1_epi16((short)alpha),
                          fn = _mm_set1_epi16((short)(255 - alpha));
            auto Melange = [&](__m128i s4, __m128i d4) {
                const __m128i sl = _mm_unpacklo_epi8(s4, zero), sh = _mm_unpackhi_epi8(s4, zero);
                const __m128i dl = _mm_unpacklo_epi8(d4, zero), dh = _mm_unpackhi_epi8(d4, zero);
                const __m128i rl = _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(sl, fa), _mm_mullo_epi16(dl, fn)), 8);
                const __m128i rh = _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(sh, fa), _mm_mullo_epi16(dh, fn)), 8);
                return _mm_packus_epi16(rl, rh);
            };
            a = Melange(a, da0);
            b = Melange(b, db0);
        }
        _mm_storeu_si128(da, _mm_or_si128(_mm_and_si128(ma, a), _mm_andnot_si128(ma, da0)));
        _mm_storeu_si128(db, _mm_or_si128(_mm_and_si128(mb, b), _mm_andnot_si128(mb, db0)));
#else
        for (int k = 0; k < 8; ++k) {
            const uint32_t w = s[u.miroirH ? 7 - k : k];
            if (w & TRANSPARENT) continue;
            if (alpha == 0) {
                d[k] = w;
                continue;
            }
            uint32_t sortie = 0;
            for (int c = 0; c < 24; c += 8) {
                const uint32_t sc = w >> c & 255, dc = d[k] >> c & 255;
                sortie |= ((sc * (uint32_t)alpha + dc * (uint32_t)(255 - alpha)) >> 8) << c;
            }
            d[k] = sortie;
        }
#endif
    }
}

#if defined(__x86_64__)
// The same, a row of eight pixels in one register, where the processor has AVX2.
__attribute__((target("avx2"))) void PoseUniteAvx2(uint32_t* d, ptrdiff_t pas, const Unite& u, int alpha) {
    if (alpha == 0 && u.plein && !u.miroirH) {
        for (int r = 0; r < 8; ++r, d -= pas) memcpy(d, u.pixels + (u.miroirV ? 7 - r : r) * 8, 32);
        return;
    }
    const __m256i inverse = _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0), tous = _mm256_set1_epi32(-1);
    const __m256i zero = _mm256_setzero_si256(), fa = _mm256_set1_epi16((short)alpha),
                  fn = _mm256_set1_epi16((short)(255 - alpha));
    for (int r = 0; r < 8; ++r, d -= pas) {
        __m256i s = _mm256_loadu_si256((const __m256i*)(u.pixels + (u.miroirV ? 7 - r : r) * 8));
        if (u.miroirH) s = _mm256_permutevar8x32_epi32(s, inverse);
        const __m256i ici = _mm256_loadu_si256((const __m256i*)d);
        const __m256i dessines = _mm256_cmpgt_epi32(s, tous);
        if (alpha != 0) {
            // Unpacking and packing stay within each half: the order comes back.
            const __m256i sl = _mm256_unpacklo_epi8(s, zero), sh = _mm256_unpackhi_epi8(s, zero);
            const __m256i dl = _mm256_unpacklo_epi8(ici, zero), dh = _mm256_unpackhi_epi8(ici, zero);
            const __m256i rl =
                _mm256_srli_epi16(_mm256_add_epi16(_mm256_mullo_epi16(sl, fa), _mm256_mullo_epi16(dl, fn)), 8);
            const __m256i rh =
                _mm256_srli_epi16(_mm256_add_epi16(_mm256_mullo_epi16(sh, fa), _mm256_mullo_epi16(dh, fn)), 8);
            s = _mm256_packus_epi16(rl, rh);
        }
        _mm256_storeu_si256((__m256i*)d, _mm256_blendv_epi8(ici, s, dessines));
    }
}
#endif

using PoseurUnite = void (*)(uint32_t*, ptrdiff_t, const Unite&, int);
PoseurUnite PoseUnite = PoseUniteSse2;

// What a run of units does before and after its planes: the first run
// fills the background, the last turns the rows into the 24-bit surface,
// each row while it is still in the cache.
struct Bornes {
    bool remplit, convertit;
    uint32_t fond;
    int largeur, hauteur; // of the view, within the surface
};

#if defined(__x86_64__)
// Sixteen pixels a step with SSSE3's byte shuffle, where the processor has it.
__attribute__((target("ssse3"))) int Convertit16(const uint32_t* s, uint8_t* d, int largeur) {
    const __m128i ordre = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    int x = 0;
    // Each store writes 16 bytes for 12: the last group of a row stops
    // early enough that the 4 extra bytes stay inside the row.
    for (; x + 16 + 2 <= largeur; x += 16, d += 48) {
        for (int k = 0; k < 4; ++k) {
            const __m128i p = _mm_loadu_si128((const __m128i*)(s + x + 4 * k));
            _mm_storeu_si128((__m128i*)(d + 12 * k), _mm_shuffle_epi8(p, ordre));
        }
    }
    return x;
}
bool AvecSsse3 = false; // read at each frame, as the other processor features
#endif

// Rows of the work picture into SurfaceEditeur: four pixels a step, as
// three words of the 24-bit row.
void Convertit(int y0, int y1, int largeur) {
    for (int y = y0; y < y1; ++y) {
        const uint32_t* s = LigneTravail(y);
        uint8_t* d = SurfaceEditeur.pixels + (size_t)(SurfaceEditeur.hauteur - 1 - y) * SurfaceEditeur.pas;
        int x = 0;
#if defined(__x86_64__)
        if (AvecSsse3) {
            x = Convertit16(s, d, largeur);
            d += 3 * x;
        }
#endif
        for (; x + 4 <= largeur; x += 4, d += 12) {
            const uint32_t a = s[x] & 0xFFFFFF, b = s[x + 1] & 0xFFFFFF, c = s[x + 2] & 0xFFFFFF,
                           e = s[x + 3] & 0xFFFFFF;
            const uint64_t premiers = (uint64_t)(a | b << 24) | (uint64_t)(b >> 8 | c << 16) << 32;
            const uint32_t dernier = c >> 16 | e << 8;
            memcpy(d, &premiers, 8);
            memcpy(d + 8, &dernier, 4);
        }
        for (; x < largeur; ++x, d += 3) {
            const uint32_t w = s[x];
            d[0] = (uint8_t)w;
            d[1] = (uint8_t)(w >> 8);
            d[2] = (uint8_t)(w >> 16);
        }
    }
}

// A run of map planes over unit rows [debut, fin) of the work picture. When
// no plane of the run blends, a unit starts at the highest plane that covers
// it whole.
void ComposeUnites(const std::vector<PlanUnites>& plans, int debut, int fin, int colonnes, const Bornes& b) {
    bool opaque = true;
    for (const PlanUnites& p : plans) opaque &= p.alpha == 0;
    const ptrdiff_t pas = Travail.pas / 4;
    const size_t n = plans.size();
    // The units of the next unit of the view are found, and their lines
    // asked for, while the current one is drawn: the units of a tileset lie
    // all over the cache. From the top plane down, when nothing blends, the
    // search stops at the first unit that covers the place whole.
    std::vector<Unite> unites[2] = {std::vector<Unite>(n), std::vector<Unite>(n)};
    size_t premiers[2] = {0, 0};
    auto Cherche = [&](int ux, int uy, int t) {
        size_t premier = 0;
        for (size_t k = n; k-- > 0;) {
            Unite& u = unites[t][k];
            u = UniteDe(plans[k], ux, uy);
            if (!u.pixels) continue;
            for (int l = 0; l < 4; ++l) __builtin_prefetch(u.pixels + 16 * l);
            if (opaque && u.plein) {
                premier = k;
                break;
            }
        }
        premiers[t] = premier;
    };
    for (int uy = debut; uy < fin; ++uy) {
        uint32_t* ligne = LigneTravail(uy * 8);
        Cherche(0, uy, 0);
        for (int ux = 0; ux < colonnes; ++ux) {
            const int t = ux & 1;
            if (ux + 1 < colonnes) Cherche(ux + 1, uy, t ^ 1);
            const std::vector<Unite>& u = unites[t];
            const size_t premier = premiers[t];
            // The background, unless a whole unit covers it.
            if (b.remplit && !(opaque && n > 0 && u[premier].pixels && u[premier].plein))
                for (int r = 0; r < 8; ++r) std::fill_n(ligne + ux * 8 - r * pas, 8, b.fond);
            for (size_t k = premier; k < n; ++k)
                if (u[k].pixels) PoseUnite(ligne + ux * 8, pas, u[k], plans[k].alpha);
        }
        if (b.convertit) Convertit(uy * 8, uy * 8 + 8 < b.hauteur ? uy * 8 + 8 : b.hauteur, b.largeur);
    }
}

// Runs f(debut, fin) over the rows [0, n), in two halves on two threads.
template <class F> void EnDeux(int n, F f) {
    if (FilsComposition < 2 || n < 16) {
        f(0, n);
        return;
    }
    const int milieu = n / 2;
    std::thread second([&] { f(milieu, n); });
    f(0, milieu);
    second.join();
}

// For each unit of one axis of the view: the plane's cell over it and the
// unit inside the block, or -1 where the plane draws nothing.
void Axe(std::vector<int>& cellule, std::vector<int>& unite, int unites, int decalage, int vues, int cote, int base) {
    cellule.assign((size_t)unites, -1);
    unite.assign((size_t)unites, -1);
    for (int k = 0; k < unites; ++k) {
        const int i = k * 8 / cote, dans = k * 8 - i * cote;
        if (i < vues && decalage + i >= 0 && dans < base) {
            cellule[(size_t)k] = decalage + i;
            unite[(size_t)k] = dans / 8;
        }
    }
}

PlanUnites PrepareUnites(int plan, int alpha, int colonnes, int lignes) {
    const Plan& p = Plans[plan];
    uint8_t* palette = PalettePlan(plan);
    EntreeFond(palette);
    PlanUnites u{};
    u.plan = plan;
    u.alpha = alpha;
    u.resolution = &Resous(plan, palette);
    u.cellules = p.cellules;
    u.sizex = p.sizex;
    u.tilebase = (uint32_t)p.tilebase;
    u.gfxmask = p.gfxmask;
    u.masque = MasqueCellule(p);
    u.parBloc = (uint32_t)(p.baseX * p.baseY / 64);
    u.unitesLigne = (uint32_t)(p.baseX / 8);
    u.nbTuiles = (uint32_t)(p.nbTuiles > 0 ? p.nbTuiles : 0);
    u.unites = (uint32_t)u.resolution->unites;
    u.conditions = NbConditions[plan] > 0;
    u.emul = p.emulgba > 0;
    u.banques = u.resolution->banques > 1;
    const int ox = DecalageCellules(DecalageX, p.vitesseX, p.tilex);
    const int oy = DecalageCellules(DecalageY, p.vitesseY, p.tiley);
    const int nx = CellulesVues(p.sizex, ox, Vue.largeurVueZ, p.tilex);
    const int ny = CellulesVues(p.sizey, oy, Vue.hauteurVueZ, p.tiley);
    Axe(u.colonneCellule, u.colonneUnite, colonnes, ox, nx, p.tilex, p.baseX);
    Axe(u.ligneCellule, u.ligneUnite, lignes, oy, ny, p.tiley, p.baseY);
    return u;
}

// Units line up when every map plane drawn has cells of whole units that
// its tiles fill, and hex mode is off.
bool UnitesAlignees() {
    if (ReglagesHexa.actif) return false;
    for (int i = 0; i < NbPlans; ++i) {
        if (i != PlanActif && !ReglagesPlans.visible[i]) continue;
        const Plan& p = Plans[i];
        if (p.typePlan == TYPE_LISTE) continue;
        if (!p.cellules || !p.tuiles || p.tilex <= 0 || p.tiley <= 0 || p.tilex % 8 || p.tiley % 8 ||
            p.baseX > p.tilex || p.baseY > p.tiley || p.baseX % 8 || p.baseY % 8)
            return false;
    }
    return true;
}

void ComposeParUnites() {
    const int colonnes = (Vue.largeurVueZ + 7) / 8, lignes = (Vue.hauteurVueZ + 7) / 8;
    if (Travail.largeur != colonnes * 8 || Travail.hauteur != lignes * 8)
        if (!CreeImage(Travail, colonnes * 8, lignes * 8, 32)) return;
    Bornes bornes{true, false, (CouleurFond >> 16 & 255) | (CouleurFond & 0xFF00) | (CouleurFond & 255) << 16,
                  Vue.largeurVueZ < SurfaceEditeur.largeur ? Vue.largeurVueZ : SurfaceEditeur.largeur,
                  Vue.hauteurVueZ < SurfaceEditeur.hauteur ? Vue.hauteurVueZ : SurfaceEditeur.hauteur};
    // Planes in drawing order; a list plane ends a run of map planes.
    int ordre[NB_PLANS_MAX + 1], n = 0;
    for (int i = 0; i < NbPlans; ++i)
        if (i != PlanActif && ReglagesPlans.visible[i]) ordre[n++] = i;
    if (PlanActif >= 0 && PlanActif < NbPlans) ordre[n++] = PlanActif;
    std::vector<PlanUnites> serie;
    auto Vide = [&](bool dernier) {
        bornes.convertit = dernier;
        if (serie.empty() && !bornes.remplit && !dernier) return;
        EnDeux(lignes, [&](int debut, int fin) { ComposeUnites(serie, debut, fin, colonnes, bornes); });
        serie.clear();
        bornes.remplit = false;
    };
    for (int k = 0; k < n; ++k) {
        const int i = ordre[k];
        const int alpha = i == PlanActif ? AlphaActif() : AlphaAutres();
        if (Plans[i].typePlan == TYPE_LISTE) {
            Vide(false);
            Cible = &Travail;
            DessineListe(PalettePlan(i), DecalageX, DecalageY, alpha, i);
            Cible = &SurfaceEditeur;
        } else {
            serie.push_back(PrepareUnites(i, alpha, colonnes, lignes));
        }
    }
    Vide(true);
    // A list's grid went into the work picture with it.
    if (PlanActif >= 0 && PlanActif < NbPlans && Plans[PlanActif].typePlan == TYPE_CARTE)
        GrillePlan(&SurfaceEditeur, PlanActif);
}

} // namespace

// ---- The frame ---------------------------------------------------------------------------------------

void ComposePlans() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    PoseUnite = ComposeAvx2 && __builtin_cpu_supports("avx2") ? PoseUniteAvx2 : PoseUniteSse2;
    AvecSsse3 = ComposeAvx2 && __builtin_cpu_supports("ssse3");
#endif
    const Cadre avant = CadreDessin;
    ChoisitCadre(0, 0, Vue.largeurVueZ, Vue.hauteurVueZ);
    if (RouteParUnites && UnitesAlignees()) {
        ComposeParUnites();
    } else {
        RemplitRect(&SurfaceEditeur, 0, 0, Vue.largeurVueZ, Vue.hauteurVueZ,
                    ReglagesHexa.actif ? 0xFFFFFFu : CouleurFond);
        ComposeParBlitters();
    }
    CadreDessin = avant;
}

void ComposeVue() {
    const int64_t maintenant = Millisecondes();
    const int ecoule = DernierTick < 0 ? 0 : (int)(maintenant - DernierTick < 3000 ? maintenant - DernierTick : 3000);
    DernierTick = maintenant;
    if (!ReglagesHexa.actif) DessineSelecteur(maintenant);
    ComposePlans();
    const Cadre avant = CadreDessin;
    ChoisitCadre(0, 0, Vue.largeurVueZ, Vue.hauteurVueZ);
    if (PlanActif >= 0 && PlanActif < NbPlans) {
        if (Plans[PlanActif].typePlan == TYPE_CARTE) DessineCurseurCarte(Vue.curseurX, Vue.curseurY, maintenant);
        else DessineCurseurListe(Vue.curseurX, Vue.curseurY, maintenant);
    }
    DessineNotifications(ecoule, Vue.hauteurVueZ);
    CadreDessin = avant;
}

// ---- The cursor and its popup ------------------------------------------------------------------

namespace {

void Popup(int x, int y, const char* premiere, const char* seconde) {
    const int w = (LargeurTexte(premiere) > LargeurTexte(seconde) ? LargeurTexte(premiere) : LargeurTexte(seconde)) + 10;
    const int gauche = x + 16 + w >= Vue.largeurVueZ ? x - w : x + 16;
    const int haut = y + 51 >= Vue.hauteurVueZ ? y - 35 : y + 16;
    AfficheCadreAlpha(&SurfaceEditeur, gauche, haut, w, 35, 0xFF, 0x80);
    RemplitRectAlpha(&SurfaceEditeur, gauche + 1, haut, w - 2, 33, 0, 0x80);
    DessineTexte(SurfaceEditeur, gauche + 5, haut + 1, premiere, 0xFFFFFF);
    DessineTexte(SurfaceEditeur, gauche + 5, haut + 16, seconde, 0xFFFFFF);
}

} // namespace

void DessineCurseurCarte(int x, int y, int64_t maintenant) {
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    const Plan& p = Plans[PlanActif];
    if (x < 0 || y < 0 || x >= Vue.largeurVueZ || y >= Vue.hauteurVueZ || p.tilex <= 0 || p.tiley <= 0) return;
    const int pulsation = Pulsation(maintenant);
    const int cx = x / p.tilex, cy = y / p.tiley;
    const uint32_t* s = EmplacementMotif(MotifActif());
    const uint8_t* palette = PalettePlan(PlanActif);
    const int ox = DecalageCellules(DecalageX, p.vitesseX, p.tilex);
    const int oy = DecalageCellules(DecalageY, p.vitesseY, p.tiley);
    const bool bloc = MotifTenu() && s;
    const int modeAvant = ModeDirect;
    ModeDirect = p.modeDirect;
    const TaillesPartagees tailles = TaillesPartagees::Sauve();
    tilex = p.tilex;
    tiley = p.tiley;
    auto Valeur = [&](int vx, int vy, uint32_t v) {
        if (ReglagesHexa.actif) {
            AfficheNombreBloc(vx * p.tilex, vy * p.tiley, v, (uint32_t)(255 - pulsation) | (uint32_t)pulsation << 16,
                              p.formatCellule > 0);
            return;
        }
        if (TuileVisible(p, (int32_t)v))
            DessineBloc(&SurfaceEditeur, p, palette, vx * p.tilex, vy * p.tiley, (int32_t)v, pulsation, true);
    };
    // The rectangle of a drag in view cells, ordered.
    int r[4] = {0, 0, 0, 0};
    const bool glisse = Vue.peintureActive || Vue.copieActive;
    if (glisse) {
        const int dx = VersVueX(Vue.departX), dy = VersVueY(Vue.departY);
        auto Cellule = [](int v, int cote) { return v < 0 && v % cote ? v / cote - 1 : v / cote; };
        r[0] = Cellule(dx, p.tilex);
        r[1] = Cellule(dy, p.tiley);
        r[2] = cx;
        r[3] = cy;
        if (r[0] > r[2]) std::swap(r[0], r[2]);
        if (r[1] > r[3]) std::swap(r[1], r[3]);
    }
    if (!glisse) {
        if (ox + cx < p.sizex && oy + cy < p.sizey)
            Valeur(cx, cy, (bloc ? s[0] : ValeurCourante) + (uint32_t)p.tilebase);
    } else if (Vue.peintureActive) {
        if (ox + r[2] < p.sizex && oy + r[3] < p.sizey)
            for (int j = r[1]; j <= r[3]; ++j)
                for (int i = r[0]; i <= r[2]; ++i) {
                    const uint32_t v = bloc ? s[(size_t)((j - r[1]) % Motif.hauteurMotif) * COTE_MOTIF +
                                                (size_t)((i - r[0]) % Motif.largeurMotif)]
                                            : ValeurCourante;
                    Valeur(i, j, v + (uint32_t)p.tilebase);
                }
    } else {
        RemplitRectAlpha(&SurfaceEditeur, r[0] * p.tilex, r[1] * p.tiley, (r[2] - r[0] + 1) * p.tilex,
                         (r[3] - r[1] + 1) * p.tiley, 0xFF0000, pulsation);
    }
    ModeDirect = modeAvant;
    tailles.Restaure(TAILLES_TUILE);

    // The popup, once the cursor has rested on one cell long enough.
    const int64_t ecoule = DernierCurseur < 0 ? 0 : maintenant - DernierCurseur;
    DernierCurseur = maintenant;
    if (cx != CelluleSurvolX || cy != CelluleSurvolY) {
        CelluleSurvolX = cx;
        CelluleSurvolY = cy;
        if (!glisse) TempsSurvol = 0;
    } else {
        TempsSurvol += (int)(ecoule / 10);
    }
    if (!ReglagesEdit.popupInfos || TempsSurvol < ReglagesEdit.tempsPopup) return;
    char premiere[64], seconde[64];
    const int X = ox + cx, Y = oy + cy;
    if (!glisse) {
        FormateBorne(premiere, sizeof premiere, "Position: %i,%i", X, Y);
        const uint32_t v = X >= 0 && Y >= 0 && X < p.sizex && Y < p.sizey ? p.cellules[(size_t)Y * p.sizex + X] : 0;
        FormateBorne(seconde, sizeof seconde, "Value: %i (%x)", (int)v, v);
    } else if (Vue.copieActive || !bloc) {
        FormateBorne(premiere, sizeof premiere, "Start: %i,%i", ox + r[0], oy + r[1]);
        FormateBorne(seconde, sizeof seconde, "Size: %ix%i", r[2] - r[0] + 1, r[3] - r[1] + 1);
    } else {
        FormateBorne(premiere, sizeof premiere, "Size: %ix%i", r[2] - r[0] + 1, r[3] - r[1] + 1);
        FormateBorne(seconde, sizeof seconde, "Pattern: %ix%i", Motif.largeurMotif, Motif.hauteurMotif);
    }
    Popup(x, y, premiere, seconde);
}

void DessineCurseurListe(int x, int y, int64_t maintenant) {
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    const Plan& p = Plans[PlanActif];
    if (x < 0 || y < 0 || x >= Vue.largeurVueZ || y >= Vue.hauteurVueZ || p.grilleX <= 0 || p.grilleY <= 0) return;
    auto Bas = [](int v, int g) { return v & ~(g - 1); };
    auto Haut = [](int v, int g) { return (v + g - 1) & ~(g - 1); };
    if (Vue.magnetisme) {
        x = Bas(x, p.grilleX);
        y = Bas(y, p.grilleY);
    }
    const int pulsation = Pulsation(maintenant);
    const uint8_t* palette = PalettePlan(PlanActif);
    const int modeAvant = ModeDirect;
    ModeDirect = p.modeDirect;
    auto Bloc = [&](int bx, int by, int32_t t) {
        if (t >= 0 && t < p.nbTuiles) DessineBloc(&SurfaceEditeur, p, palette, bx, by, t, pulsation, true);
    };
    // The drag's rectangle in view pixels, ordered, on the grid with the magnet.
    int r[4] = {VersVueX(Vue.departX), VersVueY(Vue.departY), x, y};
    if (r[0] > r[2]) std::swap(r[0], r[2]);
    if (r[1] > r[3]) std::swap(r[1], r[3]);
    if (Vue.magnetisme) {
        r[0] = Bas(r[0], p.grilleX);
        r[1] = Bas(r[1], p.grilleY);
        r[2] = Haut(r[2], p.grilleX);
        r[3] = Haut(r[3], p.grilleY);
    }
    if (Vue.objetTire > 0 && Vue.objetTire - 1 < p.nbObjets && p.objets) {
        int32_t type;
        memcpy(&type, p.objets + (size_t)(Vue.objetTire - 1) * (size_t)p.tailleObjet + 8, 4);
        Bloc(x, y, type);
        AfficheCadreAlpha(&SurfaceEditeur, x - 1, y, p.tilex + 2, p.tiley + 2, 0xFF0000, 0x80);
        RemplitRectAlpha(&SurfaceEditeur, x, y, p.tilex, p.tiley, 0xFFu | (uint32_t)pulsation << 8, 0x80);
    } else if (Vue.copieActive) {
        RemplitRectAlpha(&SurfaceEditeur, r[0], r[1], r[2] - r[0] + 1, r[3] - r[1] + 1, 0xFF0000, pulsation);
    } else if (Vue.peintureActive && !MotifTenu()) {
        Bloc(x, y, p.tilebase + (int32_t)ValeurCourante);
    } else if (Vue.peintureActive) {
        const int l = r[2] - r[0], h = r[3] - r[1];
        AfficheCadreAlpha(&SurfaceEditeur, r[0] - 1, r[1], l + 2, h + 2, 0x800000, pulsation);
        RemplitRectAlpha(&SurfaceEditeur, r[0], r[1], l, h, 0xFFC080, pulsation);
        const EmplacementObjets& e = MotifObjets[MotifActif() < 5 ? MotifActif() : 0];
        // The block's objects, repeated; the first out of the tileset ends the drawing.
        auto Objets = [&] {
            if (Motif.largeurMotifPx <= 0 || Motif.hauteurMotifPx <= 0 || !e.objets) return;
            for (int by = 0; by < h; by += Motif.hauteurMotifPx)
                for (int bx = 0; bx < l; bx += Motif.largeurMotifPx)
                    for (int k = 0; k < e.nombre; ++k) {
                        int32_t o[3];
                        memcpy(o, e.objets + (size_t)k * (size_t)e.taille, 12);
                        if (o[2] < 0 || o[2] >= p.nbTuiles) return;
                        if (o[0] < l && o[1] < h) Bloc(r[0] + bx + o[0], r[1] + by + o[1], o[2]);
                    }
        };
        Objets();
    } else if (ValeurCourante > 0) {
        Bloc(x, y, p.tilebase + (int32_t)ValeurCourante);
    }
    ModeDirect = modeAvant;
}

// ---- The picker ------------------------------------------------------------------------------------

void DessineSelecteur(int64_t maintenant) {
    const int ecoule = DernierSelecteur < 0 ? 0 : (int)(maintenant - DernierSelecteur);
    DernierSelecteur = maintenant;
    const int largeur = Vue.largeurSelecteur > 0 ? Vue.largeurSelecteur : 8, hauteur = Vue.hauteurVueZ;
    if (SurfaceSelecteur.largeur != largeur || SurfaceSelecteur.hauteur != hauteur)
        if (!CreeImage(SurfaceSelecteur, largeur, hauteur, 24)) return;
    const Cadre avant = CadreDessin;
    ChoisitCadre(0, 0, largeur, hauteur);
    RemplitRect(&SurfaceSelecteur, 0, 0, largeur, hauteur, CouleurFond);
    // Fading, in steps of 5 for each 10 ms since the last frame.
    for (int n = (ecoule + 9) / 10; n > 0; --n) {
        if (Vue.sourisDansSelecteur) {
            if (AlphaSelecteur < 255) AlphaSelecteur += 5;
        } else if (!MotifTenu()) {
            if (AlphaSelecteur < 75) AlphaSelecteur += 5;
            else if (AlphaSelecteur > 75) AlphaSelecteur -= 5;
        } else if (AlphaSelecteur > 25) {
            AlphaSelecteur -= 5;
        }
    }
    if (AlphaSelecteur > 255) AlphaSelecteur = 255;
    if (PlanActif < 0 || PlanActif >= NbPlans) {
        CadreDessin = avant;
        return;
    }
    const Plan& p = Plans[PlanActif];
    if (!p.tuiles || p.nbTuiles <= 0 || p.tilex <= 0 || p.tiley <= 0) {
        CadreDessin = avant;
        return;
    }
    const int t = (int)((maintenant & 1023) / 2);
    const int vague = t < 256 ? 255 - t : t & 255;
    const uint32_t marqueActive = 0xFF0000u | (uint32_t)vague << 8;
    const uint32_t marqueSurvol = 0xFFu | (uint32_t)(255 - vague) << 8;
    const int parLigne = largeur / p.tilex > 0 ? largeur / p.tilex : 1;
    const uint8_t* palette = PalettePlan(PlanActif);
    const int valeur = (int)ValeurCourante + p.tilebase;
    const int survol = p.tilebase + (Vue.decalageSelecteur / p.tiley + Vue.selecteurY / p.tiley) * parLigne +
                       Vue.selecteurX / p.tilex;
    const int modeAvant = ModeDirect;
    ModeDirect = p.modeDirect;
    int k = (Vue.decalageSelecteur / p.tiley) * parLigne + p.tilebase;
    int xk = -1, yk = -1, xs = -1, ys = -1;
    for (int y = 0; y < hauteur && k < p.nbTuiles; y += p.tiley)
        for (int x = 0; x + p.tilex <= largeur && k < p.nbTuiles; x += p.tilex, ++k) {
            if (k < 0) continue;
            const int alpha = k == valeur && !MotifTenu() ? 255 : AlphaSelecteur;
            for (int sy = 0; sy < p.baseY; sy += 8)
                for (int sx = 0; sx < p.baseX; sx += 8) {
                    const size_t unite = (size_t)k * (size_t)(p.baseX * p.baseY / 64) +
                                         (size_t)((p.baseX / 8) * (sy / 8) + sx / 8);
                    AfficheBlocAlpha(&SurfaceSelecteur, x + sx, y + sy, 8, 8, p.tuiles + unite * 64, palette, alpha);
                }
            if (k == valeur) xk = x, yk = y;
            if (k == survol) xs = x, ys = y;
        }
    if (AlphaSelecteur > 75) {
        if (xk >= 0) RemplitRectAlpha(&SurfaceSelecteur, xk, yk, p.tilex, p.tiley, marqueActive, (AlphaSelecteur - 75) / 2);
        if (Vue.sourisDansSelecteur && xs >= 0)
            RemplitRectAlpha(&SurfaceSelecteur, xs, ys, p.tilex, p.tiley, marqueSurvol, (AlphaSelecteur - 75) / 2);
    }
    ModeDirect = modeAvant;
    CadreDessin = avant;
}
