// Element file loaders.
//
// Sections: shared steps; palettes; bitmaps; tilesets; maps.
#include "render/chargeurs.h"

#include "core/elements.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "format/lecture.h"
#include "format/variables.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "render/apercus.h"
#include "render/surfaces.h"

#include <cstdlib>
#include <cstring>

char CheminCarteChargee[260];

// ---- Shared steps --------------------------------------------------------------------

namespace {

// Chooses the format by extension, reads the file, resets the variables.
// On failure shows the box with the path as title.
bool Ouvre(const char* chemin, TamponLecture& t, const char* message) {
    ChoisitFormatParExtension(chemin);
    if (!ChargeTampon(chemin, t)) {
        BoiteMessage(message, chemin, BOITE_OK | ICONE_ARRET);
        return false;
    }
    RestaureVariables();
    ChargeTextesUser();
    return true;
}

bool Echoue(const TamponLecture& t, int32_t position) { return position > t.taille; }

// The writer's every_x rule: before value v when v is a non-zero multiple.
int32_t AvantValeur(int32_t pos, const TamponLecture& t, const SectionFormat& s, long v) {
    if (s.n_every >= 1 && v >= 1 && v % s.n_every == 0) return LitGabarit(pos, t, s.every_x);
    return pos;
}

void EffaceApercu() {
    if (SurfaceApercu.pixels) memset(SurfaceApercu.pixels, 0, (size_t)SurfaceApercu.pas * SurfaceApercu.hauteur);
}

// A pixel of a preview, clipped by the frame as a single pixel.
void PoseApercu(int x, int ligne, uint8_t b, uint8_t g, uint8_t r) {
    Image& s = SurfaceApercu;
    if (!s.pixels || x < 0 || ligne < 0 || x >= CadreDessin.xLimite || ligne >= CadreDessin.yLimite ||
        x >= s.largeur || ligne >= s.hauteur)
        return;
    uint8_t* d = s.pixels + (size_t)(s.hauteur - 1 - ligne) * s.pas + (size_t)x * 3;
    d[0] = b;
    d[1] = g;
    d[2] = r;
}

uint8_t Composante(uint32_t v, int decalage) { return (uint8_t)(((v >> decalage) & 31) * 8); }

} // namespace

// ---- Palettes --------------------------------------------------------------------------

int ChargePalette(uint8_t* palette, const char* chemin) {
    if (palette) memset(palette, 0, 256 * 3);
    TamponLecture t;
    if (!palette || !Ouvre(chemin, t, "The palette file doesn't exist.")) return 0;
    const SectionFormat s = FormatCourant.sections[SECTION_PALETTE];
    int32_t pos = LitGabarit(0, t, s.declaration);
    int n = 0;
    while (!Echoue(t, pos) && n < 256) {
        int32_t v = 0;
        int32_t suivante = LitValeur(pos, t, s.element, v);
        if (Echoue(t, suivante)) break;
        pos = suivante;
        palette[n * 3] = Composante((uint32_t)v, 10);
        palette[n * 3 + 1] = Composante((uint32_t)v, 5);
        palette[n * 3 + 2] = Composante((uint32_t)v, 0);
        ++n;
        if (s.n_every >= 1 && n % s.n_every == 0) pos = LitGabarit(pos, t, s.every_x);
    }
    LibereTampon(t);
    return n;
}

// ---- Bitmaps ---------------------------------------------------------------------------

namespace {

// Reads the values of a bitmap, row by row, and hands each to pose.
template <typename Pose> void LitBitmap(const TamponLecture& t, int32_t pos, const SectionFormat& s, Pose pose) {
    const int largeur = sizex, hauteur = sizey;
    const bool colonne = s.line[0] != 0;
    for (int y = 0; y < hauteur; ++y) {
        for (int x = 0; x < largeur; ++x) {
            pos = AvantValeur(pos, t, s, colonne ? x : (long)y * largeur + x);
            int32_t v = 0;
            pos = LitValeur(pos, t, s.element, v);
            if (Echoue(t, pos)) return;
            pose(x, y, (uint32_t)v);
        }
        pos = LitGabarit(pos, t, s.line);
        if (Echoue(t, pos)) return;
    }
}

bool TailleBitmapValide() { return sizex > 0 && sizey > 0 && (int64_t)sizex * sizey <= CELLULES_MAX; }

} // namespace

void ChargeBitmap16(int element) {
    if (element < 0 || element >= NbElements) return;
    TamponLecture t;
    if (!Ouvre(Elements[element].fichier, t, "The specified 16 bits bitmap file doesn't exist")) return;
    EffaceApercu();
    const SectionFormat s = FormatCourant.sections[SECTION_BITMAP16];
    int32_t pos = LitGabarit(0, t, s.declaration);
    if (!Echoue(t, pos) && TailleBitmapValide() && DimensionneApercu(sizex, sizey, false))
        LitBitmap(t, pos, s, [](int x, int y, uint32_t c) {
            PoseApercu(x, y, (uint8_t)((c >> 10) * 8), (uint8_t)((c >> 5) * 8), (uint8_t)(c * 8));
        });
    LibereTampon(t);
}

void ChargeBitmap8(int element) {
    if (element < 0 || element >= NbElements) return;
    TamponLecture t;
    if (!Ouvre(Elements[element].fichier, t, "The specified 8 bits bitmap file doesn't exist")) return;
    EffaceApercu();
    char lien[TAILLE_CHEMIN_PROJET] = "";
    MetTamponVariable("link", lien, sizeof lien);
    const SectionFormat s = FormatCourant.sections[SECTION_BITMAP8];
    int32_t pos = LitGabarit(0, t, s.declaration);
    const int largeur = sizex, hauteur = sizey;
    uint8_t palette[256 * 3];
    int couleurs = Echoue(t, pos) ? 0 : ChargePalette(palette, lien);
    sizex = largeur;
    sizey = hauteur;
    if (couleurs > 0 && TailleBitmapValide() && DimensionneApercu(sizex, sizey, false))
        LitBitmap(t, pos, s, [&](int x, int y, uint32_t i) {
            if (i < (uint32_t)couleurs) PoseApercu(x, y, palette[i * 3], palette[i * 3 + 1], palette[i * 3 + 2]);
        });
    LibereTampon(t);
}

// ---- Tilesets --------------------------------------------------------------------------

int ChargeMosaique(uint8_t* palette, uint32_t** tuiles, const char* chemin, bool brut) {
    if (!tuiles) return 0;
    TamponLecture t;
    if (!Ouvre(chemin, t, "The specified tileset file doesn't exist")) return 0;
    EffaceApercu();
    char lien[TAILLE_CHEMIN_PROJET] = "", bits[TAILLE_CHEMIN_PROJET] = "";
    MetTamponVariable("link", lien, sizeof lien);
    MetTamponVariable("bits", bits, sizeof bits);
    const SectionFormat s = FormatCourant.sections[SECTION_TILESET];
    int32_t pos = LitGabarit(0, t, s.declaration);
    if (Echoue(t, pos)) {
        LibereTampon(t);
        return 0;
    }
    // The palette's load resets the variables: keep what the declaration gave.
    const int32_t taille = ValeurVariable("size");
    const int32_t profondeur = ValeurVariable("depth");
    ReglagesConv.quinzeBits = profondeur == 15;
    ReglagesConv.quatreBits = profondeur == 4;
    const int tx = tilex, ty = tiley;
    if (palette && !ReglagesConv.quinzeBits && ChargePalette(palette, lien) == 0) {
        LibereTampon(t);
        return 0;
    }
    int64_t unites = (int64_t)(ty / 8) * (tx / 8) * (int64_t)taille;
    if (unites < 0) unites = 0;
    // Room for the units that can be read: one past the limit shows the box.
    const int64_t lisibles = unites < UNITES_MAX ? unites : UNITES_MAX;
    bool alloue = false;
    if (!*tuiles) {
        *tuiles = (uint32_t*)calloc((size_t)(lisibles > 0 ? lisibles : 1) * 64, sizeof(uint32_t));
        if (!*tuiles) {
            LibereTampon(t);
            return 0;
        }
        alloue = true;
    }
    tilex = tiley = 8; // the file lists 8 x 8 units
    const bool dansUnite = s.line[0] != 0;
    const int pas = ReglagesConv.quatreBits ? 2 : 1;
    const char* element = ReglagesConv.quatreBits ? s.element2 : ReglagesConv.quinzeBits ? s.element3 : s.element;
    long numero = 0;
    int lues = 0;
    bool fin = false;
    for (int64_t u = 0; u < unites && !fin; ++u) {
        if (u >= UNITES_MAX) {
            BoiteMessage("The tiles count is greater than available memory. The format is probably wrong...", chemin,
                         BOITE_OK | ICONE_ATTENTION);
            if (alloue) {
                free(*tuiles);
                *tuiles = nullptr;
            }
            tilex = tx;
            tiley = ty;
            LibereTampon(t);
            return -1;
        }
        uint32_t* unite = *tuiles + u * 64;
        for (int i = 0; i < 64; i += pas, ++numero) {
            pos = AvantValeur(pos, t, s, dansUnite ? i : numero);
            int32_t v = 0;
            pos = LitValeur(pos, t, element, v);
            if (Echoue(t, pos)) {
                fin = true;
                break;
            }
            if (i == 0) ++lues;
            const uint32_t w = (uint32_t)v;
            if (pas == 2) {
                unite[i] = w & 0xF;
                unite[i + 1] = w >> 4 & 0xF;
            } else if (ReglagesConv.quinzeBits && !brut) {
                if (w == 65535) {
                    // Transparent: the background, red and blue exchanged, top byte set.
                    unite[i] = (CouleurFond >> 16 & 0xFF) | (CouleurFond & 0xFF00) | (CouleurFond & 0xFF) << 16 |
                               0xFF000000u;
                } else {
                    unite[i] = (uint32_t)Composante(w, 10) | (uint32_t)Composante(w, 5) << 8 |
                               (uint32_t)Composante(w, 0) << 16;
                }
            } else {
                unite[i] = w;
            }
        }
        if (!fin) {
            pos = LitGabarit(pos, t, s.line);
            fin = Echoue(t, pos);
        }
    }
    tilex = tx;
    tiley = ty;
    NbTuiles = lues;
    LibereTampon(t);
    return lues;
}

// ---- Maps ------------------------------------------------------------------------------

int ChargeCarte(uint8_t* palette, uint32_t** tuiles, uint32_t** cellules, int element) {
    if (element < 0 || element >= NbElements || !tuiles || !cellules) return 0;
    const char* chemin = Elements[element].fichier;
    CopieBornee(CheminCarteChargee, chemin);
    TamponLecture t;
    if (!Ouvre(chemin, t, "The specified map file doesn't exist")) return 0;
    EffaceApercu();
    char nom[TAILLE_CHEMIN_PROJET] = "", lien[TAILLE_CHEMIN_PROJET] = "", type[TAILLE_CHEMIN_PROJET] = "";
    MetTamponVariable("name", nom, sizeof nom);
    MetTamponVariable("link", lien, sizeof lien);
    MetTamponVariable("type", type, sizeof type);
    gfxmask = -1;
    // The tileset's load may choose another format: keep the map's section.
    const SectionFormat s = FormatCourant.sections[SECTION_MAP];
    const char* type8 = FormatCourant.type8;
    const char* type32 = FormatCourant.type32;
    int32_t pos = LitGabarit(0, t, s.declaration);
    if (Echoue(t, pos)) {
        LibereTampon(t);
        return 0;
    }
    char textes[9][TAILLE_TEXTE_USER];
    memcpy(textes, TextesUser, sizeof textes);
    const int tx = tilex, ty = tiley, largeur = sizex, hauteur = sizey;
    const int32_t profondeur = ValeurVariable("depth");
    int typeCarte;
    if (profondeur == 32) typeCarte = 2;
    else if (profondeur == 8) typeCarte = 0;
    else if (profondeur != 0) typeCarte = 1;
    else typeCarte = strcmp(type, type32) == 0 ? 2 : strcmp(type, type8) == 0 ? 0 : 1;

    bool bon = true;
    if (lien[0])
        bon = ChargeMosaique(palette, tuiles, lien, false) > 0;
    else
        bon = NbTuiles != 0; // the tiles of an earlier load stay in use
    if (bon && (largeur <= 0 || hauteur <= 0 || (int64_t)largeur * hauteur > CELLULES_MAX)) bon = false;
    if (bon && !*cellules) {
        *cellules = (uint32_t*)calloc((size_t)largeur * (size_t)hauteur, sizeof(uint32_t));
        bon = *cellules != nullptr;
    }
    tilex = tx;
    tiley = ty;
    sizex = largeur;
    sizey = hauteur;
    if (bon) {
        const int unitesParTuile = (tx / 8) * (ty / 8);
        if (unitesParTuile > 0) NbTuiles /= unitesParTuile;
        const char* format = typeCarte == 2 ? s.element3 : typeCarte == 1 ? s.element : s.element2;
        const bool colonne = s.line[0] != 0;
        for (int y = 0; y < hauteur; ++y) {
            int x = 0;
            for (; x < largeur; ++x) {
                pos = AvantValeur(pos, t, s, colonne ? x : (long)y * largeur + x);
                int32_t v = 0;
                pos = LitValeur(pos, t, format, v);
                if (Echoue(t, pos)) break;
                (*cellules)[(size_t)y * largeur + x] = (uint32_t)v;
            }
            if (x < largeur) break; // what was read stays
            pos = LitGabarit(pos, t, s.line);
            if (Echoue(t, pos)) break;
        }
    }
    memcpy(TextesUser, textes, sizeof textes);
    LibereTampon(t);
    return bon ? 1 : 0;
}
