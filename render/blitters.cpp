// Pixel layer.
//
// Sections: clipping; blocks (one template, a flat loop for each mode,
// mirror, transparency and blending); fills; frames; tiles; digits.
#include "render/blitters.h"

#include "core/reglages.h"

#include <algorithm>

int ModeDirect = 0;

// ---- Clipping ------------------------------------------------------------------

namespace {

// The part of a block that lands on the surface, in surface coordinates, and
// where the whole block would stand.
struct Zone {
    int tx0, ty0, tx1, ty1;
    int64_t bx, by;
};

// Negative coordinates are cut at the origin, the far sides at the limits.
// The surface's own edges bound the frame too, so that no frame, however it
// is set, lets a write out of the surface.
bool Decoupe(const Image* s, int x, int y, int l, int h, Zone& z) {
    const Cadre& c = CadreDessin;
    z.bx = (int64_t)c.xOrigine + x;
    z.by = (int64_t)c.yOrigine + y;
    int64_t tx0 = (int64_t)c.xOrigine + std::max(x, 0);
    int64_t ty0 = (int64_t)c.yOrigine + std::max(y, 0);
    int64_t tx1 = std::min<int64_t>(z.bx + l, c.xLimite);
    int64_t ty1 = std::min<int64_t>(z.by + h, c.yLimite);
    tx0 = std::max<int64_t>(tx0, 0);
    ty0 = std::max<int64_t>(ty0, 0);
    tx1 = std::min<int64_t>(tx1, s->largeur);
    ty1 = std::min<int64_t>(ty1, s->hauteur);
    if (tx0 >= tx1 || ty0 >= ty1) return false;
    z.tx0 = (int)tx0;
    z.ty0 = (int)ty0;
    z.tx1 = (int)tx1;
    z.ty1 = (int)ty1;
    return true;
}

// 24-bit surfaces, and 32-bit ones whose fourth byte of a pixel becomes 0
// wherever anything is drawn (a work picture cleared to another value tells
// the pixels drawn from the others).
bool SurfacePrete(const Image* s) { return s && s->pixels && (s->bits == 24 || s->bits == 32); }

uint8_t* Pixel(Image* s, int x, int ligne) {
    return s->pixels + (size_t)(s->hauteur - 1 - ligne) * (size_t)s->pas + (size_t)x * (size_t)(s->bits / 8);
}

inline void Pose(uint8_t* d, int o, uint8_t b, uint8_t g, uint8_t r) {
    d[0] = b;
    d[1] = g;
    d[2] = r;
    if (o == 4) d[3] = 0;
}

inline void Melange(uint8_t* d, int o, uint8_t b, uint8_t g, uint8_t r, int a) {
    const int na = 255 - a;
    d[0] = (uint8_t)((b * a + d[0] * na) >> 8);
    d[1] = (uint8_t)((g * a + d[1] * na) >> 8);
    d[2] = (uint8_t)((r * a + d[2] * na) >> 8);
    if (o == 4) d[3] = 0;
}

// ---- Blocks ------------------------------------------------------------------------

// A mirrored block stays mirrored about its own centre: clipping drops target
// pixels only. Palettes hold 256 entries: an index is taken modulo 256.
template <bool Direct, bool Transp, bool Alpha, bool MiroirH, bool MiroirV>
void Bloc(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal, uint32_t masque,
          int alpha) {
    if (!SurfacePrete(s) || !src || (!Direct && !pal) || l <= 0 || h <= 0) return;
    Zone z;
    if (!Decoupe(s, x, y, l, h, z)) return;
    const uint32_t masqueIndex = masque & 0xFF;
    const int o = s->bits / 8;
    for (int ty = z.ty0; ty < z.ty1; ++ty) {
        const int64_t j = MiroirV ? h - 1 - (ty - z.by) : ty - z.by;
        const uint32_t* ligne = src + (size_t)j * (size_t)l;
        int64_t i = MiroirH ? l - 1 - (z.tx0 - z.bx) : z.tx0 - z.bx;
        uint8_t* d = Pixel(s, z.tx0, ty);
        for (int tx = z.tx0; tx < z.tx1; ++tx, d += o, i += MiroirH ? -1 : 1) {
            const uint32_t w = ligne[i];
            uint8_t b, g, r;
            if constexpr (Direct) {
                if (Transp && w >= 0x1000000u) continue;
                b = (uint8_t)w;
                g = (uint8_t)(w >> 8);
                r = (uint8_t)(w >> 16);
            } else {
                if (Transp && w == 0) continue;
                const uint8_t* c = pal + (size_t)(w & masqueIndex) * 3;
                b = c[0];
                g = c[1];
                r = c[2];
            }
            if constexpr (Alpha)
                Melange(d, o, b, g, r, alpha);
            else
                Pose(d, o, b, g, r);
        }
    }
}

template <bool Transp, bool Alpha>
void Famille(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal, int mh, int mv,
             uint32_t masque, int alpha) {
    const int cas = (mh ? 1 : 0) | (mv ? 2 : 0);
    if (ModeDirect) {
        switch (cas) {
        case 0: return Bloc<true, Transp, Alpha, false, false>(s, x, y, l, h, src, pal, masque, alpha);
        case 1: return Bloc<true, Transp, Alpha, true, false>(s, x, y, l, h, src, pal, masque, alpha);
        case 2: return Bloc<true, Transp, Alpha, false, true>(s, x, y, l, h, src, pal, masque, alpha);
        default: return Bloc<true, Transp, Alpha, true, true>(s, x, y, l, h, src, pal, masque, alpha);
        }
    }
    switch (cas) {
    case 0: return Bloc<false, Transp, Alpha, false, false>(s, x, y, l, h, src, pal, masque, alpha);
    case 1: return Bloc<false, Transp, Alpha, true, false>(s, x, y, l, h, src, pal, masque, alpha);
    case 2: return Bloc<false, Transp, Alpha, false, true>(s, x, y, l, h, src, pal, masque, alpha);
    default: return Bloc<false, Transp, Alpha, true, true>(s, x, y, l, h, src, pal, masque, alpha);
    }
}

constexpr uint32_t SANS_MASQUE = 0xFFFFFFFFu;

} // namespace

void AfficheBloc(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal) {
    Famille<false, false>(s, x, y, l, h, src, pal, 0, 0, SANS_MASQUE, 255);
}
void AfficheBlocTransp(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal) {
    Famille<true, false>(s, x, y, l, h, src, pal, 0, 0, SANS_MASQUE, 255);
}
void AfficheBlocAlpha(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal, int alpha) {
    Famille<false, true>(s, x, y, l, h, src, pal, 0, 0, SANS_MASQUE, alpha);
}
void AfficheBlocTranspAlpha(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal,
                            int alpha) {
    Famille<true, true>(s, x, y, l, h, src, pal, 0, 0, SANS_MASQUE, alpha);
}
void AfficheBlocMiroir(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal, int miroirH,
                       int miroirV, uint32_t masque) {
    Famille<false, false>(s, x, y, l, h, src, pal, miroirH, miroirV, masque, 255);
}
void AfficheBlocMiroirTransp(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal,
                             int miroirH, int miroirV, uint32_t masque) {
    Famille<true, false>(s, x, y, l, h, src, pal, miroirH, miroirV, masque, 255);
}
void AfficheBlocMiroirAlpha(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal,
                            int miroirH, int miroirV, uint32_t masque, int alpha) {
    Famille<false, true>(s, x, y, l, h, src, pal, miroirH, miroirV, masque, alpha);
}
void AfficheBlocMiroirTranspAlpha(Image* s, int x, int y, int l, int h, const uint32_t* src, const uint8_t* pal,
                                  int miroirH, int miroirV, uint32_t masque, int alpha) {
    Famille<true, true>(s, x, y, l, h, src, pal, miroirH, miroirV, masque, alpha);
}

// ---- Fills -------------------------------------------------------------------------

namespace {

void Octets(uint32_t couleur, uint8_t& b, uint8_t& g, uint8_t& r) {
    b = (uint8_t)(couleur >> 16);
    g = (uint8_t)(couleur >> 8);
    r = (uint8_t)couleur;
}

template <bool Alpha> void Remplit(Image* s, int x, int y, int l, int h, uint32_t couleur, int alpha) {
    if (!SurfacePrete(s) || l <= 0 || h <= 0) return;
    Zone z;
    if (!Decoupe(s, x, y, l, h, z)) return;
    uint8_t b, g, r;
    Octets(couleur, b, g, r);
    const int o = s->bits / 8;
    for (int ty = z.ty0; ty < z.ty1; ++ty) {
        uint8_t* d = Pixel(s, z.tx0, ty);
        for (int tx = z.tx0; tx < z.tx1; ++tx, d += o) {
            if constexpr (Alpha)
                Melange(d, o, b, g, r, alpha);
            else
                Pose(d, o, b, g, r);
        }
    }
}

} // namespace

void RemplitRect(Image* s, int x, int y, int l, int h, uint32_t couleur) {
    Remplit<false>(s, x, y, l, h, couleur, 255);
}
void RemplitRectAlpha(Image* s, int x, int y, int l, int h, uint32_t couleur, int alpha) {
    Remplit<true>(s, x, y, l, h, couleur, alpha);
}

// ---- Frames ------------------------------------------------------------------------

namespace {

bool DansCadre(const Image* s, int64_t x, int64_t ligne) {
    const Cadre& c = CadreDessin;
    return x >= c.xOrigine && x < c.xLimite && ligne >= c.yOrigine && ligne < c.yLimite && x >= 0 &&
           x < s->largeur && ligne >= 0 && ligne < s->hauteur;
}

// A row of pixels, each tested against the frame.
void Ligne(Image* s, int64_t x, int64_t ligne, int64_t n, uint32_t couleur, int alpha) {
    uint8_t b, g, r;
    Octets(couleur, b, g, r);
    int64_t debut = std::max<int64_t>(x, std::max<int64_t>(CadreDessin.xOrigine, 0));
    int64_t fin = std::min<int64_t>(x + n, std::min<int64_t>(CadreDessin.xLimite, s->largeur));
    for (int64_t i = debut; i < fin; ++i)
        if (DansCadre(s, i, ligne)) Melange(Pixel(s, (int)i, (int)ligne), s->bits / 8, b, g, r, alpha);
}

// A column of pixels from row haut to row bas, each tested against the frame.
void Colonne(Image* s, int64_t x, int64_t haut, int64_t bas, uint32_t couleur, int alpha) {
    uint8_t b, g, r;
    Octets(couleur, b, g, r);
    int64_t debut = std::max<int64_t>(haut, std::max<int64_t>(CadreDessin.yOrigine, 0));
    int64_t fin = std::min<int64_t>(bas, std::min<int64_t>((int64_t)CadreDessin.yLimite - 1, s->hauteur - 1));
    for (int64_t r2 = debut; r2 <= fin; ++r2)
        if (DansCadre(s, x, r2)) Melange(Pixel(s, (int)x, (int)r2), s->bits / 8, b, g, r, alpha);
}

// The horizontal extent of a frame, clipped as the blocks are.
void LargeurCoupee(int x, int l, int64_t& cx, int64_t& cl) {
    cx = x;
    cl = l;
    if (cx < 0) {
        cl += cx;
        cx = 0;
    }
    cx += CadreDessin.xOrigine;
    if (cx + cl >= CadreDessin.xLimite) cl = CadreDessin.xLimite - cx;
}

} // namespace

void AfficheCadreAlpha(Image* s, int x, int y, int l, int h, uint32_t couleur, int alpha) {
    if (!SurfacePrete(s) || l <= 0 || h <= 0) return;
    int64_t cx, cl;
    LargeurCoupee(x, l, cx, cl);
    const int64_t haut = (int64_t)CadreDessin.yOrigine + y - 1;
    const int64_t bas = haut + h - 1;
    // Top and bottom edges leave the corners to the sides, which blend them once.
    if (cl > 2) {
        Ligne(s, cx + 1, haut, cl - 2, couleur, alpha);
        if (h >= 2) Ligne(s, cx + 1, bas, cl - 2, couleur, alpha);
    }
    const int64_t gauche = (int64_t)CadreDessin.xOrigine + x;
    Colonne(s, gauche, haut, bas, couleur, alpha);
    if (l >= 2) Colonne(s, gauche + l - 1, haut, bas, couleur, alpha);
}

void AfficheBordBloc(Image* s, int x, int y, int l, int h, uint32_t couleur, int alpha) {
    if (!SurfacePrete(s) || l <= 0 || h <= 0) return;
    int64_t cx, cl;
    LargeurCoupee(x, l, cx, cl);
    const int64_t haut = (int64_t)CadreDessin.yOrigine + y - 1;
    const int64_t bas = haut + h - 1;
    if (cl >= 2) Ligne(s, cx, bas, cl - 1, couleur, alpha);
    Colonne(s, (int64_t)CadreDessin.xOrigine + x + l - 1, haut, bas, couleur, alpha);
}

// ---- Tiles -------------------------------------------------------------------------

namespace {

template <bool Opaque> void Tuile(Image* s, int x, int y, const VueTuiles& vue, uint32_t cellule, int alpha) {
    if (!vue.tuiles || !vue.palette) return;
    const uint32_t* src = vue.tuiles + (size_t)TuileDeCellule(cellule) * 64;
    const int mh = (cellule & CELLULE_MIROIR_H) != 0;
    const int mv = (cellule & CELLULE_MIROIR_V) != 0;
    const uint8_t* pal = vue.palette;
    uint32_t masque = 255;
    if (vue.quatreBits) {
        pal += (size_t)BanqueDeCellule(cellule) * 16 * 3;
        masque = 15;
    }
    if (Opaque) {
        if (alpha == 0)
            AfficheBlocMiroir(s, x, y, 8, 8, src, pal, mh, mv, masque);
        else
            AfficheBlocMiroirAlpha(s, x, y, 8, 8, src, pal, mh, mv, masque, alpha);
    } else {
        if (alpha == 0)
            AfficheBlocMiroirTransp(s, x, y, 8, 8, src, pal, mh, mv, masque);
        else
            AfficheBlocMiroirTranspAlpha(s, x, y, 8, 8, src, pal, mh, mv, masque, alpha);
    }
}

} // namespace

void AfficheTuile(Image* s, int x, int y, const VueTuiles& vue, uint32_t cellule, int alpha) {
    Tuile<false>(s, x, y, vue, cellule, alpha);
}
void AfficheTuileOpaque(Image* s, int x, int y, const VueTuiles& vue, uint32_t cellule, int alpha) {
    Tuile<true>(s, x, y, vue, cellule, alpha);
}

// ---- Digits ------------------------------------------------------------------------

namespace {

// 3 x 5 glyphs of 0 to F, row by row, 1 for a set pixel.
constexpr uint32_t Glyphes[16][15] = {
    {0, 1, 0, 1, 0, 1, 1, 0, 1, 1, 0, 1, 0, 1, 0}, // 0
    {0, 0, 1, 0, 1, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1}, // 1
    {1, 1, 0, 0, 0, 1, 0, 1, 0, 1, 0, 0, 1, 1, 1}, // 2
    {1, 1, 0, 0, 0, 1, 0, 1, 0, 0, 0, 1, 1, 1, 0}, // 3
    {1, 0, 1, 1, 0, 1, 1, 1, 1, 0, 0, 1, 0, 0, 1}, // 4
    {1, 1, 1, 1, 0, 0, 1, 1, 0, 0, 0, 1, 1, 1, 0}, // 5
    {0, 1, 1, 1, 0, 0, 1, 1, 0, 1, 0, 1, 0, 1, 0}, // 6
    {1, 1, 1, 0, 0, 1, 0, 1, 0, 0, 1, 0, 1, 0, 0}, // 7
    {0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0}, // 8
    {0, 1, 0, 1, 0, 1, 0, 1, 1, 0, 0, 1, 1, 1, 0}, // 9
    {0, 1, 0, 1, 0, 1, 1, 1, 1, 1, 0, 1, 1, 0, 1}, // A
    {1, 1, 0, 1, 0, 1, 1, 1, 0, 1, 0, 1, 1, 1, 0}, // B
    {0, 1, 1, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 1, 1}, // C
    {1, 1, 0, 1, 0, 1, 1, 0, 1, 1, 0, 1, 1, 1, 0}, // D
    {1, 1, 1, 1, 0, 0, 1, 1, 0, 1, 0, 0, 1, 1, 1}, // E
    {1, 1, 1, 1, 0, 0, 1, 1, 0, 1, 0, 0, 1, 0, 0}, // F
};

} // namespace

void AfficheNombreBloc(int x, int y, uint32_t valeur, uint32_t couleur, bool cellulesLarges) {
    // Entry 0 white, entry 1 the colour; the digits are always indexed.
    uint8_t palette[256 * 3] = {0xFF, 0xFF, 0xFF};
    Octets(couleur, palette[3], palette[4], palette[5]);
    int colonne = x + tilex / 2;
    int ligne = y + tiley / 2 - 1;
    const int maximum = cellulesLarges ? 4 : 2;
    for (int k = 0; k < maximum; ++k) {
        Bloc<false, false, false, false, false>(&SurfaceEditeur, colonne, ligne, 3, 5, Glyphes[valeur & 0xF],
                                                palette, SANS_MASQUE, 255);
        valeur >>= 4;
        colonne -= 4;
        if (k == 1) {
            if (!ReglagesHexa.combleZeros && valeur == 0) break;
            ligne -= 6;
            colonne += 8;
        }
    }
}
