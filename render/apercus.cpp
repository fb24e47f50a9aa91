// Element previews.
//
// Sections: the surface's size; palettes, tilesets, maps, bitmaps; the
// preview of a row; writing the preview as BMP.
#include "render/apercus.h"

#include "core/elements.h"
#include "core/reglages.h"
#include "platform/fichiers.h"
#include "platform/imagefichier.h"
#include "render/blitters.h"
#include "render/chargeurs.h"
#include "render/surfaces.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

int TypeApercu = APERCU_AUCUN;
uint64_t MemoireRefusee = 0;
int EmulGba = 1;

// ---- The surface's size ------------------------------------------------------------

void LimiteApercu(int& largeur, int& hauteur) {
    const uint64_t limite = ReglagesSys.memoireMax;
    if (limite == 0 || largeur <= 0 || hauteur <= 0) return;
    const uint64_t p = limite / 3;
    if ((uint64_t)largeur * (uint64_t)hauteur < p) return;
    MemoireRefusee = (uint64_t)largeur * (uint64_t)hauteur * 3;
    const int r = largeur / hauteur;
    if (r >= 1) {
        largeur = (int)(std::sqrt((double)r) * std::sqrt((double)p));
        hauteur = (int)(std::sqrt((double)p) / std::sqrt((double)r));
    } else {
        // Taller than wide: keep the true shape, with an area near the limit.
        const double forme = (double)largeur / hauteur;
        largeur = (int)std::sqrt((double)p * forme);
        hauteur = (int)std::sqrt((double)p / forme);
    }
    if (largeur < 1) largeur = 1;
    if (hauteur < 1) hauteur = 1;
}

int DimensionneApercu(int largeur, int hauteur, bool exact) {
    if (!exact) LimiteApercu(largeur, hauteur);
    if (SurfaceApercu.pixels && largeur == LargeurApercu && hauteur == HauteurApercu) return 1;
    const int w = largeur > 0 ? (int)(((int64_t)largeur + 3) / 4 * 4) : largeur;
    Image nouvelle;
    int bon = CreeImage(nouvelle, w, hauteur, 24);
    if (bon) {
        LibereImage(SurfaceApercu);
        SurfaceApercu = nouvelle;
        LargeurApercu = largeur;
        HauteurApercu = hauteur;
        ChoisitCadre(0, 0, largeur, hauteur);
    } else if (SurfaceApercu.largeur < largeur || SurfaceApercu.hauteur < hauteur) {
        MemoireRefusee = (uint64_t)(largeur > 0 ? largeur : 0) * (uint64_t)(hauteur > 0 ? hauteur : 0) * 3;
    }
    RemplitRect(&SurfaceApercu, 0, 0, LargeurApercu, HauteurApercu, CouleurFond);
    return bon;
}

// ---- Palettes, tilesets, maps ------------------------------------------------------------

namespace {

void EntreeFond(uint8_t* palette) {
    palette[0] = (uint8_t)(CouleurFond >> 16);
    palette[1] = (uint8_t)(CouleurFond >> 8);
    palette[2] = (uint8_t)CouleurFond;
}

void Fond() { RemplitRect(&SurfaceApercu, 0, 0, LargeurApercu, HauteurApercu, CouleurFond); }

} // namespace

void ApercuPalette(uint8_t* palette, int nombre) {
    if (!palette || nombre <= 0) return;
    Fond();
    const int n = nombre < 256 ? nombre : 256;
    const int lignes = (n + 15) / 16;
    DimensionneApercu(16, lignes, false);
    for (int i = 0; i < n; ++i) {
        const int x = i % 16, r = i / 16;
        if (x >= CadreDessin.xLimite || r >= CadreDessin.yLimite || x >= SurfaceApercu.largeur ||
            r >= SurfaceApercu.hauteur)
            continue;
        uint8_t* d = SurfaceApercu.pixels + (size_t)(SurfaceApercu.hauteur - 1 - r) * SurfaceApercu.pas + x * 3;
        memcpy(d, palette + i * 3, 3);
    }
    sizex = 16;
    sizey = lignes;
}

void ApercuMosaique(uint8_t* palette, const uint32_t* tuiles) {
    if (!palette || !tuiles || tilex < 8 || tiley < 8) return;
    Fond();
    EntreeFond(palette);
    const int64_t s = (int64_t)tilex * tiley / 64;
    const size_t mots = (size_t)(NbTuiles > 0 ? NbTuiles : 0) * 64; // words of the units in the buffer
    const int blocs = (int)(NbTuiles / s);
    NbTuiles = blocs;
    const int parLigne = 256 / tilex > 0 ? 256 / tilex : 1;
    const int lignes = (blocs + parLigne - 1) / parLigne;
    if (blocs <= 0) return;
    DimensionneApercu(256, lignes * tiley, false);
    for (int b = 0; b < blocs; ++b) {
        const int bx = (b % parLigne) * tilex, by = (b / parLigne) * tiley;
        if (by >= HauteurApercu) break;
        for (int j = 0; j < tiley / 8; ++j)
            for (int i = 0; i < tilex / 8; ++i) {
                const size_t debut = (size_t)(j * (tilex / 8) + i) * 64 + (size_t)b * tilex * tiley;
                // A block side that isn't a multiple of 8 would reach past the units.
                if (debut + 64 > mots) continue;
                AfficheBloc(&SurfaceApercu, bx + i * 8, by + j * 8, 8, 8, tuiles + debut, palette);
            }
    }
    sizex = 256;
    sizey = lignes * tiley;
}

void ApercuCarte(uint8_t* palette, const uint32_t* tuiles, const uint32_t* cellules) {
    if (!palette || !tuiles || !cellules || tilex < 8 || tiley < 8 || sizex <= 0 || sizey <= 0) return;
    // A size in pixels past the int range comes from a damaged file: nothing to draw.
    if ((int64_t)tilex * sizex > INT32_MAX || (int64_t)tiley * sizey > INT32_MAX) return;
    EntreeFond(palette);
    DimensionneApercu(tilex * sizex, tiley * sizey, false);
    const int maxX = LargeurApercu / tilex, maxY = HauteurApercu / tiley;
    const uint32_t masque = EmulGba ? CELLULE_TUILE : 0xFFFFFFFFu;
    // Units held by the tile buffer: the loader counted (tilex / 8) x (tiley / 8) a block.
    const int64_t unites = (int64_t)NbTuiles * (tilex / 8) * (tiley / 8);
    const VueTuiles vue{ReglagesConv.quatreBits, palette, tuiles};
    for (int y = 0; y < sizey && y <= maxY; ++y)
        for (int x = 0; x < sizex && x < maxX; ++x) {
            const int32_t cellule = (int32_t)((cellules[(size_t)y * sizex + x] + (uint32_t)tilebase) & (uint32_t)gfxmask);
            if (cellule < 0 || ((uint32_t)cellule & masque) >= (uint32_t)NbTuiles) continue;
            for (int j = 0; j < tiley; j += 8)
                for (int i = 0; i < tilex; i += 8) {
                    if (EmulGba) {
                        const uint32_t valeur =
                            (uint32_t)((tilex / 8) * (j / 8)) + (uint32_t)((int64_t)tilex * tiley * cellule / 64) +
                            (uint32_t)(i / 8);
                        // Mirror and bank bits may push the tile number past the buffer.
                        if ((int64_t)(valeur & CELLULE_TUILE) >= unites) continue;
                        AfficheTuile(&SurfaceApercu, tilex * x + i, tiley * y + j, vue, valeur, 0);
                    } else {
                        const uint64_t debut = (uint64_t)((tilex / 8) * (j / 8) + i / 8) * 64 +
                                               (uint64_t)tilex * (uint64_t)tiley * (uint64_t)cellule;
                        // A block side that isn't a multiple of 8 would reach past the units.
                        if (debut + 64 > (uint64_t)unites * 64) continue;
                        AfficheBloc(&SurfaceApercu, tilex * x + i, tiley * y + j, 8, 8, tuiles + debut,
                                    palette);
                    }
                }
        }
    sizex *= tilex;
    sizey *= tiley;
}

// ---- Bitmaps and element rows ------------------------------------------------------------

void ApercuBitmap16(int element) {
    TypeApercu = APERCU_BITMAP16;
    ChargeBitmap16(element);
}

void ApercuBitmap8(int element) {
    TypeApercu = APERCU_BITMAP8;
    ChargeBitmap8(element);
}

void ApercuElement(int element) {
    MemoireRefusee = 0;
    TypeApercu = APERCU_AUCUN;
    if (element < 0 || element >= NbElements || EstDossier(Elements[element])) return;
    const char* fichier = Elements[element].fichier;
    uint8_t palette[256 * 3] = {};
    uint32_t* tuiles = nullptr;
    uint32_t* cellules = nullptr;
    ModeDirect = 0;
    switch (TypeDe(Elements[element])) {
    case TYPE_PALETTE: {
        int n = ChargePalette(palette, fichier);
        TypeApercu = APERCU_PALETTE;
        ApercuPalette(palette, n);
        break;
    }
    case TYPE_MOSAIQUE:
        if (ChargeMosaique(palette, &tuiles, fichier, false) > 0) {
            TypeApercu = APERCU_MOSAIQUE;
            ModeDirect = ReglagesConv.quinzeBits;
            ApercuMosaique(palette, tuiles);
        }
        break;
    case TYPE_CARTE:
        if (ChargeCarte(palette, &tuiles, &cellules, element)) {
            TypeApercu = APERCU_CARTE;
            ModeDirect = ReglagesConv.quinzeBits;
            ApercuCarte(palette, tuiles, cellules);
        }
        break;
    case TYPE_BITMAP8: ApercuBitmap8(element); break;
    case TYPE_BITMAP16: ApercuBitmap16(element); break;
    default: break;
    }
    ModeDirect = 0;
    free(tuiles);
    free(cellules);
}

// ---- Writing the preview as BMP ------------------------------------------------------------

int EcritApercuBmp(const char* chemin) { return EcritBmp(chemin, SurfaceApercu, LargeurApercu, HauteurApercu); }
