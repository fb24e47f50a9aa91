#include "convert/quantification.h"

#include "convert/couleurs.h"
#include "convert/images.h"
#include "core/gba.h"
#include "core/reglages.h"
#include "platform/plateforme.h"
#include "render/surfaces.h"
#include "script/interpreteur.h"

#include <atomic>
#include <algorithm>
#include <cstring>
#include <memory>
#ifdef __SSE2__
#include <emmintrin.h>
#endif
#include <thread>
#include <vector>

namespace {

// A 15-bit colour code: red in bits 0-4, green 5-9, blue 10-14. Bit 15 marks a
// transparent pixel (mask colour or padding).
constexpr uint16_t TRANSPARENT = 0x8000;
constexpr int CODES = 32768;
// No two 5-bit colours are further apart than this (3 x 31 squared): every
// threshold from here up matches the same triples.
constexpr int DISTANCE_MAX = 3 * 31 * 31;

inline int Rouge(uint16_t c) { return RougeGba(c); }
inline int Vert(uint16_t c) { return VertGba(c); }
inline int Bleu(uint16_t c) { return BleuGba(c); }

bool EstMasque(uint8_t r, uint8_t g, uint8_t b) {
    const uint8_t* m = ReglagesConv.masque;
    return r == m[0] && g == m[1] && b == m[2];
}

// The area's pixels through the colour tables, row by row from the top, and
// the distinct colours in the order they are first met. A pass of the normal
// method adds a triple only for a colour it meets for the first time (a
// colour met again is within the threshold of the triple that took it then),
// so its count depends on this list alone.
struct Source {
    int largeur = 0;
    int hauteur = 0;
    std::vector<uint16_t> codes;
    std::vector<uint16_t> distinctes;
    std::vector<uint32_t> premiers; // where each distinct colour is first met, in codes
};

void PrepareSource(Source& s, int largeur, int hauteur) {
    s.largeur = largeur > 0 ? largeur : 0;
    s.hauteur = hauteur > 0 ? hauteur : 0;
    s.codes.assign((size_t)s.largeur * s.hauteur, TRANSPARENT);
    s.distinctes.clear();
    s.premiers.clear();
    const Image& image = SurfaceApercu;
    if (!image.pixels) return;
    const Cadre& c = CadreDessin;
    const int xFin = c.xLimite < image.largeur ? c.xLimite : image.largeur;
    const int yFin = c.yLimite < image.hauteur ? c.yLimite : image.hauteur;
    std::vector<uint8_t> vu(CODES, 0);
    // The mask as the three bytes of a pixel (blue, green, red), and the
    // columns inside both the area and the picture, worked out once.
    const uint8_t* m = ReglagesConv.masque;
    const uint32_t masque = (uint32_t)m[2] | (uint32_t)m[1] << 8 | (uint32_t)m[0] << 16;
    const int xDebut = c.xOrigine < 0 ? -c.xOrigine : 0;
    const int xFinArea = xFin - c.xOrigine < s.largeur ? xFin - c.xOrigine : s.largeur;
    uint8_t rouges[256], verts[256], bleus[256];
    memcpy(rouges, TableRouge, 256);
    memcpy(verts, TableVerte, 256);
    memcpy(bleus, TableBleue, 256);
    if (xDebut >= xFinArea) return; // no column of the area lies on the picture
    for (int y = 0; y < s.hauteur; ++y) {
        const int Y = c.yOrigine + y;
        if (Y < 0) continue;
        if (Y >= yFin) break;
        const uint8_t* p = image.pixels + (size_t)(image.hauteur - 1 - Y) * image.pas + 3 * (ptrdiff_t)(c.xOrigine + xDebut);
        uint16_t* sortie = s.codes.data() + (size_t)y * s.largeur;
        auto pose = [&](int x, uint32_t v) {
            if (v == masque) return;
            const uint16_t code = (uint16_t)CouleurGba(rouges[v >> 16], verts[v >> 8 & 255], bleus[v & 255]);
            sortie[x] = code;
            if (!vu[code]) {
                vu[code] = 1;
                s.distinctes.push_back(code);
                s.premiers.push_back((uint32_t)((size_t)y * s.largeur + x));
            }
        };
        // Four bytes at a time, the fourth cut off; the row's last pixel
        // byte by byte, as nothing may follow it.
        int x = xDebut;
        for (; x < xFinArea - 1; ++x, p += 3) {
            uint32_t v;
            memcpy(&v, p, 4);
            pose(x, v & 0xFFFFFF);
        }
        pose(x, (uint32_t)p[0] | (uint32_t)p[1] << 8 | (uint32_t)p[2] << 16);
    }
}

int Borne(int v, int bas, int haut) { return v < bas ? bas : v > haut ? haut : v; }

// Working memory of the passes, made once for a search.
struct Espace {
    // The covered colours: one bit a colour, one 32-bit word for the 32 reds
    // of each (blue, green).
    uint32_t couvert[CODES / 32];
    // Per colour, the pass's nearest triple so far, its distance, and how
    // many triples there were then (-1: not met yet). Only vus is set before
    // a pass; the other two are read only where vus says they were written.
    std::unique_ptr<int16_t[]> meilleur = std::make_unique_for_overwrite<int16_t[]>(CODES);
    std::unique_ptr<int32_t[]> distance = std::make_unique_for_overwrite<int32_t[]>(CODES);
    std::unique_ptr<int16_t[]> vus = std::make_unique_for_overwrite<int16_t[]>(CODES);
    uint8_t racine[DISTANCE_MAX + 1];
    // The red half-width at every blue and green offset within the threshold,
    // blue by blue: the offsets of blue db hold green -rayonVert..rayonVert
    // from premier. Made again when the threshold changes.
    std::vector<int8_t> profil;
    int premier[63] = {}, rayonVert[63] = {};
    int rayonBleu = 0;
    int seuilProfil = -1;
    // The reds start - halfWidth .. start + halfWidth, cut to 0..31.
    uint32_t masques[32][32];
    // The colours of the picture, one bit each, as couvert.
    uint32_t presentes[CODES / 32] = {};
    size_t nbPresentes = 0;
    // The triples the last count marked, as colour codes; not valid when that
    // count went through a pass (a threshold below 0, a triple beyond 5 bits).
    uint16_t triples[TRIPLES_REDUCTION];
    int nbTriples = 0;
    bool triplesValides = false;
    // Of the triples above, how many came from the palette (the rest were
    // added), and the distinct colour each added one came from.
    int nbDonnes = 0;
    uint16_t origines[TRIPLES_REDUCTION];
    // The offsets at exactly one distance, made again when it changes.
    struct Decalage {
        int8_t db, dg, dr;
    };
    std::vector<Decalage> coquille;
    int distanceCoquille = -1;

    Espace() {
        for (int i = 0, r = 0; i <= DISTANCE_MAX; ++i) {
            while ((r + 1) * (r + 1) <= i) ++r;
            racine[i] = (uint8_t)r;
        }
        for (int r = 0; r < 32; ++r)
            for (int dr = 0; dr < 32; ++dr) {
                const int debut = r - dr < 0 ? 0 : r - dr, fin = r + dr > 31 ? 31 : r + dr;
                masques[r][dr] = (fin == 31 ? ~0u : (2u << fin) - 1) & ~((1u << debut) - 1);
            }
    }

    void Profil(int seuil) {
        const int s = seuil < DISTANCE_MAX ? seuil : DISTANCE_MAX;
        if (s == seuilProfil) return;
        seuilProfil = s;
        profil.clear();
        rayonBleu = racine[s] < 31 ? racine[s] : 31;
        for (int db = -rayonBleu; db <= rayonBleu; ++db) {
            const int reste = s - db * db;
            const int rg = racine[reste] < 31 ? racine[reste] : 31;
            premier[db + 31] = (int)profil.size();
            rayonVert[db + 31] = rg;
            for (int dg = -rg; dg <= rg; ++dg) {
                const int rr = racine[reste - dg * dg];
                profil.push_back((int8_t)(rr < 31 ? rr : 31));
            }
        }
    }

    void Presentes(const Source& s) {
        for (const uint16_t c : s.distinctes) presentes[c >> 5] |= 1u << (c & 31);
        nbPresentes = s.distinctes.size();
    }

    // True when the count one below distance gives what the last count (at
    // distance) gave: no colour of the picture lies at exactly that distance
    // from a triple it marked, so every colour is covered or not alike and
    // the same triples are added. False when that is not known cheaply.
    bool MemeEnDessous(int distance) {
        if (!triplesValides) return false;
        if (distance != distanceCoquille) {
            distanceCoquille = distance;
            coquille.clear();
            const int rb = racine[distance < DISTANCE_MAX ? distance : DISTANCE_MAX];
            for (int db = -rb; db <= rb && distance <= DISTANCE_MAX; ++db)
                for (int dg = -31; dg <= 31; ++dg) {
                    const int reste = distance - db * db - dg * dg;
                    if (reste < 0 || reste > 31 * 31 || racine[reste] * racine[reste] != reste) continue;
                    const int dr = racine[reste];
                    coquille.push_back({(int8_t)db, (int8_t)dg, (int8_t)dr});
                    if (dr) coquille.push_back({(int8_t)db, (int8_t)dg, (int8_t)-dr});
                }
        }
        // Walking every shell must stay cheaper than counting again.
        if ((size_t)nbTriples * coquille.size() > nbPresentes) return false;
        for (int t = 0; t < nbTriples; ++t) {
            const int r = Rouge(triples[t]), g = Vert(triples[t]), b = Bleu(triples[t]);
            for (const Decalage& d : coquille) {
                const int rr = r + d.dr, gg = g + d.dg, bb = b + d.db;
                if ((unsigned)rr > 31 || (unsigned)gg > 31 || (unsigned)bb > 31) continue;
                if (presentes[bb << 5 | gg] >> rr & 1) return false;
            }
        }
        return true;
    }

    void Efface() { memset(couvert, 0, sizeof couvert); }
    bool Couvert(uint16_t c) const { return couvert[c >> 5] >> (c & 31) & 1; }

    // Marks every colour within the threshold of the profile around (r, g, b):
    // only the offsets that stay inside the cube are walked.
    void Marque(int r, int g, int b) {
        const uint32_t* masque = masques[r];
        const int dbBas = -rayonBleu > -b ? -rayonBleu : -b, dbHaut = rayonBleu < 31 - b ? rayonBleu : 31 - b;
        for (int db = dbBas; db <= dbHaut; ++db) {
            const int rg = rayonVert[db + 31];
            const int8_t* centre = profil.data() + premier[db + 31] + rg;
            const int dgBas = -rg > -g ? -rg : -g, dgHaut = rg < 31 - g ? rg : 31 - g;
            uint32_t* rangee = couvert + ((b + db) << 5) + g;
            for (int dg = dgBas; dg <= dgHaut; ++dg) rangee[dg] |= masque[centre[dg]];
        }
    }
};

// The triples of a pass, as components.
struct Triples {
    int16_t r[TRIPLES_REDUCTION], g[TRIPLES_REDUCTION], b[TRIPLES_REDUCTION];
    int n = 0;
    bool horsCube = false; // a component beyond 5 bits: squares may pass 16 bits
    void Ajoute(int rouge, int vert, int bleu) {
        r[n] = (int16_t)rouge;
        g[n] = (int16_t)vert;
        b[n] = (int16_t)bleu;
        horsCube = horsCube || (rouge | vert | bleu) > 31;
        ++n;
    }
};

// The nearest of triples t..n - 1 to (r, g, b), eight at a time: a triple
// at distance proche or nearer replaces meilleur, the later of two at the
// same distance winning, as a walk in order would. Components within 5 bits,
// so that a square distance (at most 2883) holds in 16 bits. Leaves t at the
// triples it did not look at (fewer than eight). Kept out of line: the pass's
// loop around it stays in registers.
#ifdef __SSE2__
constexpr int TRIPLES_PAR_HUIT = 16; // below this many, one at a time is as quick

// Lane by lane, si where masque is set, else sinon.
inline __m128i Choisit(__m128i masque, __m128i si, __m128i sinon) {
    return _mm_or_si128(_mm_and_si128(masque, si), _mm_andnot_si128(masque, sinon));
}

__attribute__((noinline)) void PlusProcheParHuit(const Triples& p, int r, int g, int b, int& t, int n, int& proche,
                                                 int& meilleur) {
    const __m128i vr = _mm_set1_epi16((int16_t)r), vg = _mm_set1_epi16((int16_t)g), vb = _mm_set1_epi16((int16_t)b);
    const __m128i huit = _mm_set1_epi16(8);
    __m128i rang = _mm_add_epi16(_mm_set1_epi16((int16_t)t), _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7));
    __m128i plusPetit = _mm_set1_epi16(0x7FFF), ou = _mm_set1_epi16(-1);
    for (; t + 8 <= n; t += 8) {
        const __m128i dr = _mm_sub_epi16(_mm_loadu_si128((const __m128i*)(p.r + t)), vr);
        const __m128i dg = _mm_sub_epi16(_mm_loadu_si128((const __m128i*)(p.g + t)), vg);
        const __m128i db = _mm_sub_epi16(_mm_loadu_si128((const __m128i*)(p.b + t)), vb);
        const __m128i d = _mm_add_epi16(_mm_add_epi16(_mm_mullo_epi16(dr, dr), _mm_mullo_epi16(dg, dg)),
                                        _mm_mullo_epi16(db, db));
        const __m128i pris = _mm_cmpgt_epi16(d, plusPetit); // lanes that keep their own
        plusPetit = Choisit(pris, plusPetit, d);
        ou = Choisit(pris, ou, rang);
        rang = _mm_add_epi16(rang, huit);
    }
    int16_t m8[8], o8[8];
    _mm_storeu_si128((__m128i*)m8, plusPetit);
    _mm_storeu_si128((__m128i*)o8, ou);
    int m = 0x7FFF, i = -1;
    for (int k = 0; k < 8; ++k)
        if (m8[k] < m || (m8[k] == m && o8[k] > i)) {
            m = m8[k];
            i = o8[k];
        }
    if (i >= 0 && m <= proche) {
        proche = m;
        meilleur = i;
    }
}
#endif

// The palette's triples up to fixes.
void TriplesDonnes(Triples& p, const uint8_t* palette, int fixes) {
    p.n = 0;
    p.horsCube = false;
    for (int t = 0; t < fixes; ++t) p.Ajoute(palette[3 * t + 2], palette[3 * t + 1], palette[3 * t]);
}

// Pixels i0..i1 - 1 of a pass, as the method describes it, with indices,
// from the triples p holds (it gets those added). A colour keeps the best
// triple found so far and the palette size it had seen, so meeting it again
// only looks at the triples added since; the later of two triples at the
// same distance still wins. Gives false when the limit is passed.
bool Parcourt(Espace& e, const Source& s, uint32_t* indices, Triples& p, int seuil, int debut, int limite,
              uint32_t transparent, size_t i0, size_t i1) {
    std::fill_n(e.vus.get(), CODES, (int16_t)-1);
    int n = p.n;
    for (size_t i = i0; i < i1; ++i) {
        const uint16_t c = s.codes[i];
        if (c & TRANSPARENT) {
            if (indices) indices[i] = transparent;
            continue;
        }
        if (e.vus[c] == n) { // no triple added since this colour was last met
            if (indices) indices[i] = (uint32_t)e.meilleur[c] + 1;
            continue;
        }
        const int r = Rouge(c), g = Vert(c), b = Bleu(c);
        int meilleur = -1, proche = seuil, t = debut;
        if (e.vus[c] >= 0) {
            meilleur = e.meilleur[c];
            proche = e.distance[c];
            t = e.vus[c];
        }
#ifdef __SSE2__
        if (n - t >= TRIPLES_PAR_HUIT && !p.horsCube) PlusProcheParHuit(p, r, g, b, t, n, proche, meilleur);
#endif
        for (; t < n; ++t) {
            const int d = (p.r[t] - r) * (p.r[t] - r) + (p.g[t] - g) * (p.g[t] - g) + (p.b[t] - b) * (p.b[t] - b);
            if (d <= proche) {
                proche = d;
                meilleur = t;
            }
        }
        if (meilleur < 0) {
            if (n >= limite) {
                p.n = n;
                return false;
            }
            p.n = n;
            p.Ajoute(r, g, b);
            meilleur = n++;
            proche = 0;
        }
        // A negative threshold matches nothing, not even the same colour: no
        // colour may then be remembered.
        if (seuil >= 0) {
            e.meilleur[c] = (int16_t)meilleur;
            e.distance[c] = proche;
            e.vus[c] = (int16_t)n;
        }
        if (indices) indices[i] = (uint32_t)meilleur + 1;
    }
    p.n = n;
    return true;
}

// The triples added, after the fixed ones, into the palette block; the rest
// of the block is cleared.
void EcritTriples(uint8_t* palette, const Triples& p, int fixes) {
    memset(palette + 3 * fixes, 0, (size_t)3 * (TRIPLES_REDUCTION - fixes));
    for (int t = fixes; t < p.n; ++t) {
        palette[3 * t] = (uint8_t)p.b[t];
        palette[3 * t + 1] = (uint8_t)p.g[t];
        palette[3 * t + 2] = (uint8_t)p.r[t];
    }
}

// One full pass over the area.
int Passe(Espace& e, const Source& s, uint32_t* indices, uint8_t* palette, int seuil, int fixes, int debut, int maxi,
          uint32_t transparent) {
    fixes = Borne(fixes, 0, TRIPLES_REDUCTION);
    debut = Borne(debut, 0, fixes);
    // The palette block holds 257 triples, whatever limit was asked.
    const int limite = maxi < TRIPLES_REDUCTION ? maxi : TRIPLES_REDUCTION;
    Triples p;
    TriplesDonnes(p, palette, fixes);
    const bool bon = Parcourt(e, s, indices, p, seuil, debut, limite, transparent, 0, s.codes.size());
    if (!bon) {
        p.n = fixes; // a failed pass leaves the block cleared past the fixes
        EcritTriples(palette, p, fixes);
        return -1;
    }
    EcritTriples(palette, p, fixes);
    return ReglagesConv.utilMaxCoul ? limite : p.n;
}

// The count of a pass without its indices: a colour needs a triple of its
// own exactly when no matchable triple lies within the threshold, so the
// pass keeps the set of covered colours and walks the distinct colours once.
int Compte(Espace& e, const Source& s, const uint8_t* palette, int seuil, int fixes, int debut, int maxi) {
    bool horsGamme = false; // a triple beyond 5 bits has no place in the covered set
    for (int t = Borne(debut, 0, TRIPLES_REDUCTION); t < Borne(fixes, 0, TRIPLES_REDUCTION); ++t)
        horsGamme = horsGamme || palette[3 * t] > 31 || palette[3 * t + 1] > 31 || palette[3 * t + 2] > 31;
    e.triplesValides = false;
    if (seuil < 0 || horsGamme) {
        uint8_t copie[TAILLE_PALETTE_REDUCTION];
        memcpy(copie, palette, sizeof copie);
        return Passe(e, s, nullptr, copie, seuil, fixes, debut, maxi, 0);
    }
    fixes = Borne(fixes, 0, TRIPLES_REDUCTION);
    debut = Borne(debut, 0, fixes);
    const int limite = maxi < TRIPLES_REDUCTION ? maxi : TRIPLES_REDUCTION;
    e.Profil(seuil);
    e.Efface();
    e.nbTriples = 0;
    for (int t = debut; t < fixes; ++t) {
        e.Marque(palette[3 * t + 2], palette[3 * t + 1], palette[3 * t]);
        e.triples[e.nbTriples++] = (uint16_t)CouleurGba(palette[3 * t + 2], palette[3 * t + 1], palette[3 * t]);
    }
    e.nbDonnes = e.nbTriples;
    int n = fixes;
    const size_t nbDistinctes = s.distinctes.size();
    const uint16_t* const d = s.distinctes.data();
    const uint32_t* const couvert = e.couvert;
    for (size_t j = 0; j < nbDistinctes; ++j) {
        // Most colours are covered: four at a time, with one test for all.
        if (j + 4 <= nbDistinctes &&
            (couvert[d[j] >> 5] >> (d[j] & 31) & couvert[d[j + 1] >> 5] >> (d[j + 1] & 31) &
             couvert[d[j + 2] >> 5] >> (d[j + 2] & 31) & couvert[d[j + 3] >> 5] >> (d[j + 3] & 31) & 1)) {
            j += 3;
            continue;
        }
        const uint16_t c = d[j];
        if (e.Couvert(c)) continue;
        if (n >= limite) return -1;
        e.origines[n - fixes] = (uint16_t)j;
        ++n;
        e.Marque(Rouge(c), Vert(c), Bleu(c));
        e.triples[e.nbTriples++] = c;
    }
    e.triplesValides = true;
    return ReglagesConv.utilMaxCoul ? limite : n;
}

// At most how many colours a pass at a threshold can add: each colour it
// adds lies further than the threshold from every colour added before it, so
// no two of them share a box whose diagonal stays within the threshold. The
// boxes that hold a colour of the picture bound them.
struct BornesAjouts {
    const uint32_t* presentes;
    // By box sides: red + 33 * (green + 33 * blue), 0 when not known yet.
    std::vector<int> occupees = std::vector<int>(33 * 33 * 33, 0);

    // The boxes of a x b x c (red, green, blue) colours, laid from 0, that
    // hold a colour.
    int Occupees(int a, int b, int c) {
        int& memo = occupees[(size_t)(a + 33 * (b + 33 * c))];
        if (memo) return memo - 1;
        uint32_t rouges[32];
        int nbRouges = 0;
        for (int r0 = 0; r0 < 32; r0 += a) {
            const int r1 = r0 + a > 32 ? 32 : r0 + a;
            rouges[nbRouges++] = (r1 == 32 ? ~0u : (1u << r1) - 1) & ~((1u << r0) - 1);
        }
        int total = 0;
        for (int b0 = 0; b0 < 32; b0 += c)
            for (int g0 = 0; g0 < 32; g0 += b) {
                uint32_t m = 0;
                for (int bb = b0; bb < b0 + c && bb < 32; ++bb)
                    for (int gg = g0; gg < g0 + b && gg < 32; ++gg) m |= presentes[bb << 5 | gg];
                if (m)
                    for (int k = 0; k < nbRouges; ++k) total += (m & rouges[k]) != 0;
            }
        memo = total + 1;
        return total;
    }

    // The fewest boxes among those whose diagonal stays within the threshold:
    // sides as near each other as they can be, the longer ones on each axis.
    int Borne(int seuil) {
        int k = 0;
        while (k < 31 && 3 * (k + 1) * (k + 1) <= seuil) ++k;
        const int s = k + 1;
        int meilleur = Occupees(s, s, s);
        if (s < 32 && (k + 1) * (k + 1) + 2 * k * k <= seuil) {
            const int un[3][3] = {{s + 1, s, s}, {s, s + 1, s}, {s, s, s + 1}};
            for (const auto& c : un) meilleur = std::min(meilleur, Occupees(c[0], c[1], c[2]));
            if (2 * (k + 1) * (k + 1) + k * k <= seuil) {
                const int deux[3][3] = {{s, s + 1, s + 1}, {s + 1, s, s + 1}, {s + 1, s + 1, s}};
                for (const auto& c : deux) meilleur = std::min(meilleur, Occupees(c[0], c[1], c[2]));
            }
        }
        return meilleur;
    }
};

// The counts of the downward search, comptes[t] for the thresholds voulus
// from haut down to bas or to the first one that does not fit (-1), which
// ends it; below that nothing is needed. Thresholds go in blocks of
// consecutive ones, so that each block can carry counts over from the
// threshold above; with many colours a second thread takes every other block.
// Thresholds not counted keep -2.
constexpr int SEUILS_PAR_BLOC = 8;
constexpr size_t COULEURS_POUR_DEUX = 1024;

template <typename Voulu>
void ComptesDescendants(Espace& e, const Source& s, const uint8_t* palette, int haut, int bas, int fixes, int debut,
                        int maxi, std::vector<int>& comptes, Voulu voulu) {
    std::atomic<int> prochain{haut}; // the top of the next block to take
    std::atomic<int> arret{bas - 1}; // the highest threshold known not to fit
    auto travaille = [&](Espace& espace) {
        for (;;) {
            const int debutBloc = prochain.fetch_sub(SEUILS_PAR_BLOC);
            if (debutBloc < bas || debutBloc <= arret.load()) return;
            bool suite = false; // espace holds the count of the threshold above
            for (int t = debutBloc; t > debutBloc - SEUILS_PAR_BLOC && t >= bas; --t) {
                if (t <= arret.load()) return;
                if (!voulu(t)) {
                    suite = false;
                    continue;
                }
                const bool meme = suite && espace.MemeEnDessous(t + 1);
                const int r = meme ? comptes[(size_t)t + 1] : Compte(espace, s, palette, t, fixes, debut, maxi);
                comptes[(size_t)t] = r;
                suite = true;
                if (r == -1) {
                    int vu = arret.load();
                    while (vu < t && !arret.compare_exchange_weak(vu, t)) {
                    }
                    return;
                }
            }
        }
    };
    if (s.distinctes.size() >= COULEURS_POUR_DEUX && haut - bas >= 2 * SEUILS_PAR_BLOC) {
        std::thread aide([&] {
            Espace autre;
            autre.Presentes(s);
            travaille(autre);
        });
        travaille(e);
        aide.join();
    } else {
        travaille(e);
    }
}

// The last pass at threshold 0, once counted: a colour is matched only by a
// triple equal to it, the last such given triple from debut or else the one
// added for it, and the count has listed both kinds in order. Each colour's
// index is known before the pixels are read.
int PasseExacte(Espace& e, const Source& s, uint32_t* indices, uint8_t* palette, int fixes, int limite,
                uint32_t transparent) {
    int16_t* const triple = e.meilleur.get(); // written for every colour of the picture
    const int debut = fixes - e.nbDonnes;
    for (int k = 0; k < e.nbDonnes; ++k) triple[e.triples[k]] = (int16_t)(debut + k);
    Triples p;
    TriplesDonnes(p, palette, fixes);
    for (int k = e.nbDonnes; k < e.nbTriples; ++k) {
        const uint16_t c = e.triples[k];
        triple[c] = (int16_t)p.n;
        p.Ajoute(Rouge(c), Vert(c), Bleu(c));
    }
    const uint16_t* const codes = s.codes.data();
    for (size_t i = 0, n = s.codes.size(); i < n; ++i)
        indices[i] = codes[i] & TRANSPARENT ? transparent : (uint32_t)triple[codes[i]] + 1;
    EcritTriples(palette, p, fixes);
    return ReglagesConv.utilMaxCoul ? limite : p.n;
}

// The last pass of a search (at threshold 0, the one above). Over a large
// picture its triples are known beforehand (the count at that threshold adds
// them, in the order the pass would), so the second half of the pixels can
// start from the triples added before it and run on a second thread beside
// the first half. The indices and the palette are those of one pass.
constexpr size_t PIXELS_POUR_DEUX = 65536;

int PasseFinale(Espace& e, const Source& s, uint32_t* indices, uint8_t* palette, int seuil, int fixes, int debut,
                int maxi, uint32_t transparent) {
    const size_t total = s.codes.size();
    if (seuil < 0 || Compte(e, s, palette, seuil, fixes, debut, maxi) == -1 || !e.triplesValides)
        return Passe(e, s, indices, palette, seuil, fixes, debut, maxi, transparent);
    fixes = Borne(fixes, 0, TRIPLES_REDUCTION);
    debut = Borne(debut, 0, fixes);
    const int limite = maxi < TRIPLES_REDUCTION ? maxi : TRIPLES_REDUCTION;
    if (seuil == 0) return PasseExacte(e, s, indices, palette, fixes, limite, transparent);
    if (total < PIXELS_POUR_DEUX) return Passe(e, s, indices, palette, seuil, fixes, debut, maxi, transparent);
    const size_t milieu = total / 2;
    const int ajoutes = e.nbTriples - e.nbDonnes;
    int avant = 0;
    while (avant < ajoutes && s.premiers[e.origines[avant]] < milieu) ++avant;
    Triples haut, bas;
    TriplesDonnes(haut, palette, fixes);
    TriplesDonnes(bas, palette, fixes);
    for (int k = 0; k < avant; ++k) {
        const uint16_t c = e.triples[e.nbDonnes + k];
        bas.Ajoute(Rouge(c), Vert(c), Bleu(c));
    }
    bool bonBas = false;
    std::thread aide([&] {
        Espace autre;
        bonBas = Parcourt(autre, s, indices, bas, seuil, debut, limite, transparent, milieu, total);
    });
    const bool bonHaut = Parcourt(e, s, indices, haut, seuil, debut, limite, transparent, 0, milieu);
    aide.join();
    // The first half must have added just the triples the second started
    // from; it always does, but a single pass is the rule.
    if (!bonHaut || !bonBas || haut.n != fixes + avant)
        return Passe(e, s, indices, palette, seuil, fixes, debut, maxi, transparent);
    EcritTriples(palette, bas, fixes);
    return ReglagesConv.utilMaxCoul ? limite : bas.n;
}

void MessageCouleursInatteignables() {
    BoiteMessage("Unable to convert the bitmap because the required colors count cannot be reached.", "Oops...",
                 BOITE_OK | ICONE_ARRET);
}

} // namespace

int ReductionNormale(uint32_t* indices, uint8_t* palette, int hauteur, int largeur, int seuil, int fixes, int debut,
                     int maxi, uint32_t transparent) {
    Source s;
    PrepareSource(s, largeur, hauteur);
    Espace e;
    return Passe(e, s, indices, palette, seuil, fixes, debut, maxi, transparent);
}

int ReductionNormaleCherchee(uint32_t* indices, uint8_t* palette, int hauteur, int largeur, int fixes, int debut,
                             int maxi, bool tuiles, uint32_t transparent) {
    Source s;
    PrepareSource(s, largeur, hauteur);
    Espace e;
    e.Presentes(s);
    if (Compte(e, s, palette, 0, fixes, debut, maxi) != -1)
        return PasseFinale(e, s, indices, palette, 0, fixes, debut, maxi, transparent);

    if (messages) {
        const int reponse = BoiteMessage(
            "The source bitmap contains more colors than wanted.\n"
            "A filter will be applied (don't worry, it will be much better than with paint ;)\n"
            "However, this can be very long!\nIt is still recommended to continue.",
            "Oops...", BOITE_OKANNULER | ICONE_QUESTION);
        if (reponse == REPONSE_ANNULER) return -1;
        PlateformeCourante.titreAttente(1);
    }
    const int precision = ReglagesConv.precisionMax;
    int seuil;
    if (!tuiles) {
        // Downward: the threshold of the most colours ever seen, the first
        // (highest) one among equals.
        int plus = -1;
        seuil = 0;
        int t = precision;
        if (t > DISTANCE_MAX) {
            // Every threshold from DISTANCE_MAX up gives the same pass.
            const int r = Compte(e, s, palette, DISTANCE_MAX, fixes, debut, maxi);
            if (r == -1) t = -1; // stops at once, as the first trial would
            else {
                plus = r;
                seuil = precision;
                t = DISTANCE_MAX - 1;
            }
        }
        if (t >= 0) {
            // A threshold whose bound keeps within the limit fits for sure:
            // only those below the highest uncertain one can end the search,
            // so they are counted first. Above it, a threshold is counted
            // only when its bound could beat the best count found.
            const int f = Borne(fixes, 0, TRIPLES_REDUCTION);
            const int limite = maxi < TRIPLES_REDUCTION ? maxi : TRIPLES_REDUCTION;
            BornesAjouts bornes{e.presentes};
            std::vector<int> borne((size_t)t + 1);
            int incertain = -1;
            for (int u = t; u >= 0; --u) {
                borne[(size_t)u] = f + bornes.Borne(u);
                if (incertain < 0 && borne[(size_t)u] > limite) incertain = u;
            }
            std::vector<int> comptes((size_t)t + 1, -2);
            auto tous = [](int) { return true; };
            if (incertain >= 0) ComptesDescendants(e, s, palette, incertain, 0, fixes, debut, maxi, comptes, tous);
            // The count at the top, when the threshold went past every
            // distance, stands above all of these.
            int meilleur = plus, seuilMeilleur = plus >= 0 ? precision : -1;
            for (int u = incertain; u >= 0 && comptes[(size_t)u] != -1; --u)
                if (comptes[(size_t)u] > meilleur) {
                    meilleur = comptes[(size_t)u];
                    seuilMeilleur = u;
                }
            if (incertain < t) {
                // With utilmaxcoul every count that fits is the limit.
                auto peutGagner = [&](int u) {
                    const int b = ReglagesConv.utilMaxCoul ? limite : borne[(size_t)u];
                    return b > meilleur || (b == meilleur && u > seuilMeilleur);
                };
                ComptesDescendants(e, s, palette, t, incertain + 1, fixes, debut, maxi, comptes, peutGagner);
            }
            // As one downward walk over every count would choose: the most
            // colours, the highest threshold among equals, nothing below the
            // first that does not fit. Thresholds not counted cannot win.
            for (; t >= 0; --t) {
                const int r = comptes[(size_t)t];
                if (r == -1) break;
                if (r > plus) {
                    plus = r;
                    seuil = t;
                }
            }
        }
    } else {
        // Bisection: the smallest threshold that fits.
        int64_t bas = -1, haut = precision, essai = haut;
        for (;;) {
            const int r = Compte(e, s, palette, (int)essai, fixes, debut, maxi);
            if (r == -1) bas = essai;
            else haut = essai;
            if (bas + 1 >= haut) break;
            essai = (bas + haut) / 2;
        }
        seuil = (int)haut;
    }
    const int resultat = PasseFinale(e, s, indices, palette, seuil, fixes, debut, maxi, transparent);
    if (messages) PlateformeCourante.titreAttente(0);
    if (resultat < 1) {
        MessageCouleursInatteignables();
        return -1;
    }
    return resultat;
}

// ---- Halftone ------------------------------------------------------------------------

void PaletteTramee(uint8_t sortie[256][3]) {
    // A 6 x 6 x 6 cube, then 40 greys; two entries replaced as the method wants.
    for (int i = 0; i < 216; ++i) {
        sortie[i][0] = (uint8_t)(i / 36 * 51);
        sortie[i][1] = (uint8_t)(i / 6 % 6 * 51);
        sortie[i][2] = (uint8_t)(i % 6 * 51);
    }
    for (int i = 216; i < 256; ++i) sortie[i][0] = sortie[i][1] = sortie[i][2] = (uint8_t)((i - 216) * 255 / 39);
    sortie[245][0] = sortie[245][1] = sortie[245][2] = 255;
    sortie[255][0] = 0;
    sortie[255][1] = 0;
    sortie[255][2] = 1;
}

namespace {

// The picture kept aside: pixel (x, y from the top).
uint8_t* PixelGarde(int x, int y) {
    return ImageGardee.pixels + (size_t)(ImageGardee.hauteur - 1 - y) * ImageGardee.pas + (size_t)x * 3;
}

void LimitesGardees(int hauteur, int largeur, int& h, int& l) {
    h = ImageGardee.pixels ? (ImageGardee.hauteur < hauteur ? ImageGardee.hauteur : hauteur) : 0;
    l = ImageGardee.pixels ? (ImageGardee.largeur < largeur ? ImageGardee.largeur : largeur) : 0;
}

} // namespace

int ReductionTramee(uint32_t* indices, uint8_t* palette, int hauteur, int largeur) {
    // Ordered 8 x 8 dithering onto the cube: each component of 0..255 falls
    // between two of the six levels, and the pattern's threshold chooses.
    static const uint8_t bayer[8][8] = {
        {0, 32, 8, 40, 2, 34, 10, 42},  {48, 16, 56, 24, 50, 18, 58, 26}, {12, 44, 4, 36, 14, 46, 6, 38},
        {60, 28, 52, 20, 62, 30, 54, 22}, {3, 35, 11, 43, 1, 33, 9, 41},  {51, 19, 59, 27, 49, 17, 57, 25},
        {15, 47, 7, 39, 13, 45, 5, 37},  {63, 31, 55, 23, 61, 29, 53, 21}};
    auto niveau = [](int v, int seuil) {
        const int n = (v * 128 + (2 * seuil + 1) * 51) / (51 * 128);
        return n > 5 ? 5 : n;
    };
    if (hauteur > 0 && largeur > 0) memset(indices, 0, sizeof(uint32_t) * (size_t)hauteur * largeur);
    int h, l;
    LimitesGardees(hauteur, largeur, h, l);
    for (int y = 0; y < h; ++y) {
        const uint8_t* ligne = PixelGarde(0, y);
        for (int x = 0; x < l; ++x) {
            const uint8_t* p = ligne + 3 * x;
            if (EstMasque(p[2], p[1], p[0])) continue;
            const int s = bayer[y & 7][x & 7];
            indices[(size_t)y * largeur + x] = (uint32_t)(niveau(p[2], s) * 36 + niveau(p[1], s) * 6 + niveau(p[0], s) + 1);
        }
    }
    uint8_t table[256][3];
    PaletteTramee(table);
    for (int i = 0; i < 256; ++i) {
        palette[3 * i] = TableBleue[table[i][2]];
        palette[3 * i + 1] = TableVerte[table[i][1]];
        palette[3 * i + 2] = TableRouge[table[i][0]];
    }
    LibereImageGardee();
    return 255;
}

// ---- Octree ------------------------------------------------------------------------

namespace {

struct NoeudOctal {
    bool feuille = false;
    uint32_t nbPixels = 0;
    uint64_t sommeRouge = 0;
    uint64_t sommeVert = 0;
    uint64_t sommeBleu = 0;
    int32_t fils[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
    int32_t suivant = -1; // the list of reducible nodes of its level
};

// Nodes live in a pool, addressed by number; freed nodes are used again.
struct Octree {
    std::vector<NoeudOctal> noeuds;
    std::vector<int32_t> libres;
    int32_t reductibles[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
    int feuilles = 0;

    int32_t Nouveau(int niveau) {
        int32_t n;
        if (!libres.empty()) {
            n = libres.back();
            libres.pop_back();
            noeuds[(size_t)n] = NoeudOctal{};
        } else {
            n = (int32_t)noeuds.size();
            noeuds.emplace_back();
        }
        if (niveau == 8) {
            noeuds[(size_t)n].feuille = true;
            ++feuilles;
        } else {
            noeuds[(size_t)n].suivant = reductibles[niveau];
            reductibles[niveau] = n;
        }
        return n;
    }

    // Walks a colour down from the root to the leaf it ends at, making the
    // nodes missing on the way.
    int32_t Insere(int r, int g, int b) {
        int32_t n = 0; // the root
        for (int k = 0; k < 8 && !noeuds[(size_t)n].feuille; ++k) {
            const int bit = 7 - k;
            const int f = 4 * (r >> bit & 1) + 2 * (g >> bit & 1) + (b >> bit & 1);
            if (noeuds[(size_t)n].fils[f] < 0) {
                const int32_t nouveau = Nouveau(k + 1);
                noeuds[(size_t)n].fils[f] = nouveau;
            }
            n = noeuds[(size_t)n].fils[f];
        }
        return n;
    }

    // A colour met for the first time walks in, and the tree reduces to
    // place leaves. Gives false when it cannot (kept out of the pixel loop).
    __attribute__((noinline)) bool Premiere(uint32_t code, int place) {
        Insere(RougeGba(code) << 3, VertGba(code) << 3, BleuGba(code) << 3);
        while (feuilles > place)
            if (!Reduit()) return false;
        return true;
    }

    // Folds the first node of the deepest level with a reducible node into a
    // leaf. Gives false when nothing is left to fold.
    bool Reduit() {
        int niveau = 7;
        while (niveau > 0 && reductibles[niveau] < 0) --niveau;
        const int32_t n = reductibles[niveau];
        if (n < 0) return false;
        reductibles[niveau] = noeuds[(size_t)n].suivant;
        int enfants = 0;
        for (int f = 0; f < 8; ++f) {
            const int32_t e = noeuds[(size_t)n].fils[f];
            if (e < 0) continue;
            NoeudOctal& noeud = noeuds[(size_t)n];
            const NoeudOctal& enfant = noeuds[(size_t)e];
            noeud.nbPixels += enfant.nbPixels;
            noeud.sommeRouge += enfant.sommeRouge;
            noeud.sommeVert += enfant.sommeVert;
            noeud.sommeBleu += enfant.sommeBleu;
            noeud.fils[f] = -1;
            libres.push_back(e);
            ++enfants;
        }
        noeuds[(size_t)n].feuille = true;
        feuilles += 1 - enfants;
        return true;
    }

    // Leaves depth first, children 0 to 7: one colour each.
    void Couleurs(int32_t n, std::vector<int>& sortie) const {
        const NoeudOctal& noeud = noeuds[(size_t)n];
        if (noeud.feuille) {
            if (!noeud.nbPixels) return;
            sortie.push_back((int)(noeud.sommeRouge / noeud.nbPixels));
            sortie.push_back((int)(noeud.sommeVert / noeud.nbPixels));
            sortie.push_back((int)(noeud.sommeBleu / noeud.nbPixels));
            return;
        }
        for (int f = 0; f < 8; ++f)
            if (noeud.fils[f] >= 0) Couleurs(noeud.fils[f], sortie);
    }
};

} // namespace

namespace {

// The octree's colours for the nearest-colour search: Euclidean, the first
// among equals. With SSE2, four colours at a time: components go in 16-bit
// pairs (red, green) and (blue, 0) whose products add up into 32 bits.
struct PalettePlusProche {
    std::vector<int> couleurs; // r, g, b for each
    int nombre = 0;
#ifdef __SSE2__
    // Padded to four colours with one no colour can be near.
    std::vector<int16_t> rougeVert, bleuZero;
#endif

    explicit PalettePlusProche(const std::vector<int>& c) : couleurs(c), nombre((int)c.size() / 3) {
#ifdef __SSE2__
        const int arrondi = (nombre + 3) / 4 * 4;
        rougeVert.assign((size_t)2 * arrondi, 0x3FFF);
        bleuZero.assign((size_t)2 * arrondi, 0);
        for (int k = 0; k < arrondi; ++k) {
            if (k < nombre) {
                rougeVert[(size_t)2 * k] = (int16_t)c[(size_t)3 * k];
                rougeVert[(size_t)2 * k + 1] = (int16_t)c[(size_t)3 * k + 1];
            }
            bleuZero[(size_t)2 * k] = k < nombre ? (int16_t)c[(size_t)3 * k + 2] : 0x3FFF;
        }
#endif
    }

    int Cherche(int r, int g, int b) const {
#ifdef __SSE2__
        const __m128i rg = _mm_set1_epi32((int)((uint32_t)r | (uint32_t)g << 16));
        const __m128i b0 = _mm_set1_epi32(b);
        __m128i plusPetit = _mm_set1_epi32(0x7FFFFFFF), ou = _mm_setzero_si128();
        __m128i rang = _mm_setr_epi32(0, 1, 2, 3);
        const __m128i quatre = _mm_set1_epi32(4);
        for (size_t k = 0; k < bleuZero.size(); k += 8) {
            const __m128i drg = _mm_sub_epi16(_mm_loadu_si128((const __m128i*)(rougeVert.data() + k)), rg);
            const __m128i db = _mm_sub_epi16(_mm_loadu_si128((const __m128i*)(bleuZero.data() + k)), b0);
            const __m128i d = _mm_add_epi32(_mm_madd_epi16(drg, drg), _mm_madd_epi16(db, db));
            const __m128i pris = _mm_cmplt_epi32(d, plusPetit); // the first among equals stays
            plusPetit = Choisit(pris, d, plusPetit);
            ou = Choisit(pris, rang, ou);
            rang = _mm_add_epi32(rang, quatre);
        }
        int32_t d4[4], o4[4];
        _mm_storeu_si128((__m128i*)d4, plusPetit);
        _mm_storeu_si128((__m128i*)o4, ou);
        int meilleur = o4[0], plusProche = d4[0];
        for (int k = 1; k < 4; ++k)
            if (d4[k] < plusProche || (d4[k] == plusProche && o4[k] < meilleur)) {
                plusProche = d4[k];
                meilleur = o4[k];
            }
        return meilleur;
#else
        int meilleur = 0, plusProche = -1;
        for (int k = 0; k < nombre; ++k) {
            const int dr = couleurs[(size_t)3 * k] - r, dg = couleurs[(size_t)3 * k + 1] - g,
                      db = couleurs[(size_t)3 * k + 2] - b;
            const int d = dr * dr + dg * dg + db * db;
            if (plusProche < 0 || d < plusProche) {
                plusProche = d;
                meilleur = k;
            }
        }
        return meilleur;
#endif
    }
};

} // namespace

int ReductionOptimale(uint32_t* indices, uint8_t* palette, int hauteur, int largeur, int fixes, int limite) {
    if (limite > TRIPLES_REDUCTION) limite = TRIPLES_REDUCTION; // the palette block's size
    fixes = Borne(fixes, 0, TRIPLES_REDUCTION);
    const int place = limite - fixes;
    if (place < 2) {
        BoiteMessage("The available color number is too low for this conversion.", "Fatal error",
                     BOITE_OK | ICONE_ARRET);
        LibereImageGardee();
        return 0;
    }
    // Only a picture of 24 bits gives colours.
    const bool utilisable = ImageGardee.pixels && BitsImageGardee == 24;
    const int hg = utilisable ? ImageGardee.hauteur : 0, lg = utilisable ? ImageGardee.largeur : 0;
    const int h = hg < hauteur ? hg : hauteur, l = lg < largeur ? lg : largeur;
    // Colours hold 5 bits a component after the tables, so a 15-bit code
    // names each one. The tree's shape depends only on the order in which
    // colours are first met: a colour met again ends at the leaf it made or at
    // an ancestor folded since, which makes no node, and what a leaf holds
    // only ever moves up into its parent. So a colour walks the tree when it
    // is first met, the tree reduces then, and its pixels are counted and
    // added to the leaf it ends at once the picture is read.
    constexpr uint32_t SANS_COULEUR = CODES; // a mask pixel in indices until the mapping
    std::vector<uint32_t> nombres(CODES + 1, 0);
    uint32_t vues[CODES / 32] = {};
    Octree arbre;
    arbre.Nouveau(0);
    bool rempli = true;
    // From the bottom row upward, as the picture lies in memory. Each pixel's
    // code waits in indices for the mapping; those are counted afterwards in
    // a loop of their own, the others (beyond the area) here.
    for (int rangee = 0; rangee < hg && rempli; ++rangee) {
        const int y = hg - 1 - rangee;
        const uint8_t* ligne = PixelGarde(0, y);
        uint32_t* sortie = y < h ? indices + (size_t)y * largeur : nullptr;
        const int gardes = sortie ? l : 0;
        for (int x = 0; x < lg; ++x) {
            const uint8_t* p = ligne + 3 * x;
            uint32_t code = SANS_COULEUR;
            if (!EstMasque(p[2], p[1], p[0])) {
                code = CouleurGba(TableRouge[p[2]], TableVerte[p[1]], TableBleue[p[0]]);
                if (!(vues[code >> 5] >> (code & 31) & 1)) {
                    vues[code >> 5] |= 1u << (code & 31);
                    rempli = arbre.Premiere(code, place);
                    if (!rempli) break;
                }
            }
            if (x < gardes) sortie[x] = code;
            else ++nombres[code];
        }
    }
    if (!rempli) {
        LibereImageGardee();
        return 0;
    }
    for (int y = 0; y < h; ++y) {
        const uint32_t* ligne = indices + (size_t)y * largeur;
        for (int x = 0; x < l; ++x) ++nombres[ligne[x]];
    }
    for (uint32_t code = 0; code < (uint32_t)CODES; ++code) {
        const uint64_t n = nombres[code];
        if (!n) continue;
        const int r = RougeGba(code) << 3, g = VertGba(code) << 3, b = BleuGba(code) << 3;
        NoeudOctal& feuille = arbre.noeuds[(size_t)arbre.Insere(r, g, b)];
        feuille.nbPixels += (uint32_t)n;
        feuille.sommeRouge += n * (uint64_t)r;
        feuille.sommeVert += n * (uint64_t)g;
        feuille.sommeBleu += n * (uint64_t)b;
    }
    std::vector<int> couleurs;
    arbre.Couleurs(0, couleurs);
    const int nombre = (int)couleurs.size() / 3;
    if (nombre < 2) {
        MessageCouleursInatteignables();
        LibereImageGardee();
        return 0;
    }

    // Nearest colour, Euclidean; among equals the first: once for each
    // colour of the picture, then each pixel's code becomes its index.
    const PalettePlusProche palettePlusProche(couleurs);
    std::vector<uint16_t> index(CODES + 1, 0);
    for (uint32_t code = 0; code < (uint32_t)CODES; ++code)
        if (nombres[code])
            index[code] = (uint16_t)(palettePlusProche.Cherche(RougeGba(code) << 3, VertGba(code) << 3, BleuGba(code) << 3) +
                                     fixes + 1);
    for (int y = 0; y < hauteur; ++y) {
        uint32_t* ligne = indices + (size_t)y * largeur;
        const int n = y < h ? l : 0;
        for (int x = 0; x < n; ++x) ligne[x] = index[ligne[x]];
        if (n < largeur) memset(ligne + n, 0, sizeof(uint32_t) * (size_t)(largeur - n));
    }
    for (int k = 0; k < nombre; ++k) {
        palette[3 * (fixes + k)] = (uint8_t)(couleurs[3 * k + 2] >> 3);
        palette[3 * (fixes + k) + 1] = (uint8_t)(couleurs[3 * k + 1] >> 3);
        palette[3 * (fixes + k) + 2] = (uint8_t)(couleurs[3 * k] >> 3);
    }
    LibereImageGardee();
    return fixes + nombre;
}
