// Element file loaders.
//
// Sections: shared steps; palettes; bitmaps; tilesets; maps.
#include "render/chargeurs.h"

#include "core/elements.h"
#include "core/gba.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "format/lecture.h"
#include "format/liste.h"
#include "core/modeles.h"
#include "format/variables.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "render/apercus.h"
#include "render/surfaces.h"

#include <cstdlib>
#include <cstring>

CarteLue DerniereCarte;

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

// The texts that a map or a list file names, read into buffers of the loader.
struct TextesElement {
    char nom[TAILLE_CHEMIN_PROJET] = "";
    char lien[TAILLE_CHEMIN_PROJET] = "";
    char type[TAILLE_CHEMIN_PROJET] = "";
    TextesElement() {
        MetTamponVariable("name", nom, sizeof nom);
        MetTamponVariable("link", lien, sizeof lien);
        MetTamponVariable("type", type, sizeof type);
    }
};

void EffaceApercu();

// What a map or list declaration gave, kept for the editor before the
// tileset's load resets the variables.
void Retient(const TextesElement& lus, int formatCellule) {
    CopieBornee(DerniereCarte.nom, lus.nom);
    CopieBornee(DerniereCarte.lien, lus.lien);
    CopieBornee(DerniereCarte.type, lus.type);
    DerniereCarte.formatCellule = formatCellule;
    for (int i = 0; i < 8; ++i) CopieBornee(DerniereCarte.textes[i], TextesUser[i + 1]);
}

// The first steps of a map or a list: the path remembered for the editor, the
// file read, the surface cleared.
bool OuvreCarteOuListe(int element, TamponLecture& t) {
    const char* chemin = Elements[element].fichier;
    CopieBornee(DerniereCarte.chemin, chemin);
    if (!Ouvre(chemin, t, "The specified map file doesn't exist")) return false;
    EffaceApercu();
    return true;
}

void EffaceApercu() { EffaceImage(SurfaceApercu); }

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
        palette[n * 3] = (uint8_t)(BleuGba((uint32_t)v) * 8);
        palette[n * 3 + 1] = (uint8_t)(VertGba((uint32_t)v) * 8);
        palette[n * 3 + 2] = (uint8_t)(RougeGba((uint32_t)v) * 8);
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

// A size that isn't positive goes on to DimensionneApercu, which reports it.
bool TailleBitmapValide() { return (int64_t)sizex * sizey <= CELLULES_MAX; }

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
            PoseApercu(x, y, (uint8_t)(BleuGba(c) * 8), (uint8_t)(VertGba(c) * 8), (uint8_t)(RougeGba(c) * 8));
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
    const TaillesPartagees declarees = TaillesPartagees::Sauve();
    uint8_t palette[256 * 3];
    int couleurs = Echoue(t, pos) ? 0 : ChargePalette(palette, lien);
    declarees.Restaure(TAILLES_CARTE);
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
    CopieBornee(DerniereCarte.lienMosaique, lien);
    // The palette's load resets the variables: keep what the declaration gave.
    const int32_t taille = ValeurVariable("size");
    const int32_t profondeur = ValeurVariable("depth");
    ReglagesConv.quinzeBits = profondeur == 15;
    ReglagesConv.quatreBits = profondeur == 4;
    const TaillesPartagees declarees = TaillesPartagees::Sauve();
    const int tx = declarees.tilex, ty = declarees.tiley;
    if (palette && !ReglagesConv.quinzeBits && ChargePalette(palette, lien) == 0) {
        LibereTampon(t);
        return 0;
    }
    // The three factors come from the file and their product may not fit in
    // 64 bits; past UNITES_MAX every count behaves alike, so it stops there.
    const int64_t parTuile = (int64_t)(ty / 8) * (tx / 8);
    int64_t unites = 0;
    if (parTuile != 0 && taille != 0 && (parTuile < 0) == (taille < 0)) {
        const int64_t a = parTuile < 0 ? -parTuile : parTuile, b = taille < 0 ? -(int64_t)taille : taille;
        unites = a > UNITES_MAX || b > UNITES_MAX ? (int64_t)UNITES_MAX + 1 : a * b;
    }
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
            declarees.Restaure(TAILLES_TUILE);
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
                    unite[i] = (uint32_t)BleuGba(w) * 8 | (uint32_t)VertGba(w) * 8 << 8 | (uint32_t)RougeGba(w) * 8 << 16;
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
    declarees.Restaure(TAILLES_TUILE);
    NbTuiles = lues;
    LibereTampon(t);
    return lues;
}

// ---- Maps ------------------------------------------------------------------------------

int ChargeCarte(uint8_t* palette, uint32_t** tuiles, uint32_t** cellules, int element) {
    if (element < 0 || element >= NbElements || !tuiles || !cellules) return 0;
    TamponLecture t;
    if (!OuvreCarteOuListe(element, t)) return 0;
    TextesElement textesLus;
    const char* lien = textesLus.lien;
    const char* type = textesLus.type;
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
    const TaillesPartagees declarees = TaillesPartagees::Sauve();
    const int tx = declarees.tilex, ty = declarees.tiley, largeur = declarees.sizex, hauteur = declarees.sizey;
    const int32_t profondeur = ValeurVariable("depth");
    int typeCarte;
    if (profondeur == 32) typeCarte = 2;
    else if (profondeur == 8) typeCarte = 0;
    else if (profondeur != 0) typeCarte = 1;
    else typeCarte = strcmp(type, type32) == 0 ? 2 : strcmp(type, type8) == 0 ? 0 : 1;
    Retient(textesLus, typeCarte);

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
    declarees.Restaure(TAILLES_TUILE | TAILLES_CARTE);
    if (bon) {
        const int64_t unitesParTuile = (int64_t)(tx / 8) * (ty / 8);
        if (unitesParTuile > 0) NbTuiles = (int)(NbTuiles / unitesParTuile);
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

// ---- Lists -----------------------------------------------------------------------------

namespace {

// No list of the system comes near this: a model or a maximum that asks for
// more is refused rather than tried.
constexpr uint64_t OCTETS_LISTE_MAX = 64u << 20;

void ValeursParDefaut(const ModeleParametres& modele, uint8_t* objet) {
    for (int i = 0; i < modele.nbParametres && i < NB_PARAMETRES_MAX; ++i) {
        uint8_t* champ = objet + TAILLE_OBJET_BASE + DecalageParametre(modele, i);
        const int32_t taille = TailleParametreBornee(modele.tailles[i]);
        if (modele.genres[i] == PARAMETRE_BRUT) {
            if (taille > 0) CopieBornee((char*)champ, (size_t)taille, modele.defauts[i]);
        } else {
            PoseEntierParametre(champ, taille, (int32_t)strtol(modele.defauts[i], nullptr, 10));
        }
    }
}

// Reads the objects from a position; gives false when a mismatch was met.
bool LitObjets(const TamponLecture& t, int32_t pos, const SectionFormat& s, const ModeleParametres& modele,
               ListeObjets& liste, int nombre, int mode, const char* marque) {
    bool erreur = false;
    liste.nombre = 0;
    for (int i = 0; i < nombre; ++i) {
        if (s.n_every > 0 && i % s.n_every == 0) pos = LitGabarit(pos, t, s.every_x);
        if (Echoue(t, pos)) break;
        pos = LitObjetListe(pos, t, GabaritListe, modele, liste.objets + (size_t)i * liste.taille, mode, marque,
                            erreur);
        if (Echoue(t, pos)) break;
        liste.nombre = i + 1;
        pos = LitGabarit(pos, t, s.line);
        if (Echoue(t, pos)) break;
    }
    return !erreur;
}

} // namespace

int ChargeListe(uint8_t* palette, uint32_t** tuiles, int element, ListeObjets& liste) {
    if (element < 0 || element >= NbElements || !tuiles) return 0;
    const char* chemin = Elements[element].fichier;
    TamponLecture t;
    if (!OuvreCarteOuListe(element, t)) return 0;
    TextesElement textesLus;
    const char* lien = textesLus.lien;
    char modeleNom[TAILLE_NOM_MODELE];
    int choisi = ModeleSelectionne >= 0 && ModeleSelectionne < NB_MODELES_MAX ? ModeleSelectionne : 0;
    CopieBornee(modeleNom, TableModeles[choisi].nom);
    MetTamponVariable("model", modeleNom, sizeof modeleNom);
    const SectionFormat s = FormatCourant.sections[SECTION_LIST];
    const int32_t debut = LitGabarit(0, t, s.declaration);
    if (Echoue(t, debut)) {
        LibereTampon(t);
        return 0;
    }
    const int32_t nombre = ValeurVariable("size");
    Retient(textesLus, 0);
    const TaillesPartagees declarees = TaillesPartagees::Sauve();
    const int tx = declarees.tilex, ty = declarees.tiley, largeur = declarees.sizex, hauteur = declarees.sizey;
    char textes[9][TAILLE_TEXTE_USER];
    memcpy(textes, TextesUser, sizeof textes);
    auto Fin = [&](int resultat) {
        memcpy(TextesUser, textes, sizeof textes);
        LibereTampon(t);
        return resultat;
    };

    if (!SelectionneModele(modeleNom)) {
        BoiteMessageF("Error", BOITE_OK | ICONE_ARRET, "Unable to use the specified parameter model: %s", modeleNom);
        return Fin(0);
    }
    ConstruitGabaritListe();
    const ModeleParametres& modele = TableModeles[ModeleSelectionne];
    const int32_t taille = TailleModele(modele);
    const int capacite = ReglagesSys.objetsMax;
    if (taille < TAILLE_OBJET_BASE || capacite < 1 || (uint64_t)taille * (uint64_t)capacite > OCTETS_LISTE_MAX)
        return Fin(0);
    uint8_t* objets = (uint8_t*)realloc(liste.objets, (size_t)taille * (size_t)capacite);
    if (!objets) return Fin(0);
    liste.objets = objets;
    liste.capacite = capacite;
    liste.taille = taille;
    liste.nombre = 0;
    memset(liste.objets, 0, (size_t)taille * (size_t)capacite);

    if (ChargeMosaique(palette, tuiles, lien, false) <= 0) return Fin(0);
    declarees.Restaure(TAILLES_TUILE);
    sizex = tx > 0 ? largeur / tx : 0;
    sizey = ty > 0 ? hauteur / ty : 0;
    if (nombre > capacite) {
        BoiteMessage("Unable to load this list because it contains more elements than the maximum allowed. Modify "
                     "the maximum number of elements per list in the options.",
                     chemin, BOITE_OK | ICONE_ATTENTION);
        return Fin(0);
    }
    const int n = nombre > 0 ? nombre : 0;
    if (!LitObjets(t, debut, s, modele, liste, n, LISTE_NORMALE, "")) {
        memset(liste.objets, 0, (size_t)taille * (size_t)capacite);
        if (BoiteMessage("The list format is incorrect, a more powerful algorithm will be tried to recuperate your "
                         "file even if some data is missing or the model has changed. This operation can fail, so "
                         "you have to verify if your list is correct before saving it.",
                         "Attention", BOITE_OKANNULER | ICONE_ATTENTION) != REPONSE_OK)
            return Fin(0);
        for (int i = 0; i < n; ++i) ValeursParDefaut(modele, liste.objets + (size_t)i * taille);
        // The end mark: the line template, else what follows the template's last field.
        const char* marque = s.line;
        if (!marque[0]) {
            const char* dernier = strrchr(GabaritListe, '#');
            marque = dernier ? dernier + 1 : "";
        }
        LitObjets(t, debut, s, modele, liste, n, LISTE_RECUPERATION, marque);
    }
    return Fin(1);
}
