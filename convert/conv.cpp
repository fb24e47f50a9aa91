#include "convert/conv.h"

#include "convert/conversion.h"
#include "convert/images.h"
#include "core/chemins.h"
#include "core/elements.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "render/surfaces.h"

#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace {

constexpr size_t LONGUEUR_NOM_PARAMETRE = 100;
constexpr size_t LONGUEUR_VALEUR_PARAMETRE = 500;
constexpr size_t TAILLE_TEXTE_CONV = 512;

enum Prefixe { PREFIXE_AUCUN, PREFIXE_OUI, PREFIXE_NON, PREFIXE_SPECIAL };

enum GenreParametre { SELECTEUR, TEXTE, ENTIER, DRAPEAU };

// What one conv statement gathers; everything starts again at each call.
struct EtatConv {
    int cible = 0; // 1 tileset, palette, map; 2 8-bit bitmap; 3 16-bit bitmap
    char src[TAILLE_TEXTE_CONV] = "";
    char dst[TAILLE_TEXTE_CONV] = "";
    char map[TAILLE_TEXTE_CONV] = "";
    char pal[TAILLE_TEXTE_CONV] = "";
    char upal[TAILLE_TEXTE_CONV] = "";
    char util[TAILLE_TEXTE_CONV] = "";
    char cmode[TAILLE_TEXTE_CONV] = "";
    char mapmode[TAILLE_TEXTE_CONV] = "";
    char mdim[TAILLE_TEXTE_CONV] = "";
    char tdim[TAILLE_TEXTE_CONV] = "";
    char nom[TAILLE_TEXTE_CONV] = ""; // name: all five at once
    int32_t col = 255;
};

// A text the statement fills, with its room.
struct Champ {
    char* texte;
    size_t taille;
};

enum Derivation { SANS, DERIVE_SRC, DERIVE_DST, DERIVE_MAP, DERIVE_PAL, DERIVE_NOM, DERIVE_16C };

struct ParametreConv {
    const char* nom;
    GenreParametre genre;
    int cible;                   // SELECTEUR: the target kind
    Champ (*texte)(EtatConv&);   // TEXTE: where the value goes
    Derivation derivation;
    int* (*drapeau)();           // DRAPEAU: the setting, taken as on (1) or off (0)
};

Champ Src(EtatConv& e) { return {e.src, sizeof e.src}; }
Champ Dst(EtatConv& e) { return {e.dst, sizeof e.dst}; }
Champ Map(EtatConv& e) { return {e.map, sizeof e.map}; }
Champ Pal(EtatConv& e) { return {e.pal, sizeof e.pal}; }
Champ Nom(EtatConv& e) { return {e.nom, sizeof e.nom}; }
Champ NomTil(EtatConv&) { return {ReglagesConv.nomMosaique, sizeof ReglagesConv.nomMosaique}; }
Champ NomB8(EtatConv&) { return {ReglagesConv.nomBitmap8, sizeof ReglagesConv.nomBitmap8}; }
Champ NomB16(EtatConv&) { return {ReglagesConv.nomBitmap16, sizeof ReglagesConv.nomBitmap16}; }
Champ NomPal(EtatConv&) { return {ReglagesConv.nomPalette, sizeof ReglagesConv.nomPalette}; }
Champ NomMap(EtatConv&) { return {ReglagesConv.nomCarte, sizeof ReglagesConv.nomCarte}; }
Champ UPal(EtatConv& e) { return {e.upal, sizeof e.upal}; }
Champ UTil(EtatConv& e) { return {e.util, sizeof e.util}; }
Champ CMode(EtatConv& e) { return {e.cmode, sizeof e.cmode}; }
Champ MapMode(EtatConv& e) { return {e.mapmode, sizeof e.mapmode}; }
Champ MDim(EtatConv& e) { return {e.mdim, sizeof e.mdim}; }
Champ TDim(EtatConv& e) { return {e.tdim, sizeof e.tdim}; }
int* Txt() { return &ReglagesConv.typeCarte; }
int* Seize() { return &ReglagesConv.quatreBits; }
int* GMap() { return &ReglagesConv.genereCarte; }
int* Opt() { return &ReglagesConv.optimise; }

// In the order of the command's documentation; looked up from the last row.
const ParametreConv TableParametres[] = {
    {"tset", SELECTEUR, 1, nullptr, SANS, nullptr},
    {"b8", SELECTEUR, 2, nullptr, SANS, nullptr},
    {"b16", SELECTEUR, 3, nullptr, SANS, nullptr},
    {"bmp", TEXTE, 0, Src, DERIVE_SRC, nullptr},
    {"src", TEXTE, 0, Src, DERIVE_SRC, nullptr},
    {"dst", TEXTE, 0, Dst, DERIVE_DST, nullptr},
    {"til", TEXTE, 0, Dst, DERIVE_DST, nullptr},
    {"map", TEXTE, 0, Map, DERIVE_MAP, nullptr},
    {"pal", TEXTE, 0, Pal, DERIVE_PAL, nullptr},
    {"name", TEXTE, 0, Nom, DERIVE_NOM, nullptr},
    {"nametil", TEXTE, 0, NomTil, SANS, nullptr},
    {"nameb8", TEXTE, 0, NomB8, SANS, nullptr},
    {"nameb16", TEXTE, 0, NomB16, SANS, nullptr},
    {"namepal", TEXTE, 0, NomPal, SANS, nullptr},
    {"namemap", TEXTE, 0, NomMap, SANS, nullptr},
    {"col", ENTIER, 0, nullptr, SANS, nullptr},
    {"upal", TEXTE, 0, UPal, SANS, nullptr},
    {"util", TEXTE, 0, UTil, SANS, nullptr},
    {"txt", DRAPEAU, 0, nullptr, SANS, Txt},
    {"16c", DRAPEAU, 0, nullptr, DERIVE_16C, Seize},
    {"cmode", TEXTE, 0, CMode, SANS, nullptr},
    {"gmap", DRAPEAU, 0, nullptr, SANS, GMap},
    {"opt", DRAPEAU, 0, nullptr, SANS, Opt},
    {"mapmode", TEXTE, 0, MapMode, SANS, nullptr},
    {"mdim", TEXTE, 0, MDim, SANS, nullptr},
    {"tdim", TEXTE, 0, TDim, SANS, nullptr},
};
constexpr int NbParametres = (int)(sizeof TableParametres / sizeof TableParametres[0]);

int TrouveParametre(const char* nom) {
    for (int i = NbParametres - 1; i >= 0; --i)
        if (strcmp(TableParametres[i].nom, nom) == 0) return i;
    return -1;
}

const char* Ext(IndexSection section) {
    const char* e = FormatCourant.sections[section].ext;
    return e ? e : "";
}

void Concatene(char* cible, const char* base, const char* ext) {
    CopieBorneeN(cible, TAILLE_TEXTE_CONV, base, strlen(base));
    AjouteBorne(cible, TAILLE_TEXTE_CONV, ext);
}

// The dot of the path's last extension, or null (a dot in a folder's name
// does not count).
const char* DerniereExtension(const char* chemin) {
    const char* point = strrchr(chemin, '.');
    const char* separateur = DernierSeparateur(chemin);
    return point && (!separateur || point > separateur) ? point : nullptr;
}

void DeriveSource(EtatConv& e) {
    char base[TAILLE_TEXTE_CONV];
    CopieBornee(base, e.src);
    if (char* point = (char*)DerniereExtension(base)) *point = 0;
    switch (e.cible) {
    case 3:
        Concatene(e.dst, base, Ext(SECTION_BITMAP16));
        break;
    case 2:
        Concatene(e.dst, base, Ext(SECTION_BITMAP8));
        Concatene(e.pal, base, Ext(SECTION_PALETTE));
        break;
    case 1:
        Concatene(e.dst, base, Ext(SECTION_TILESET));
        Concatene(e.pal, base, Ext(SECTION_PALETTE));
        Concatene(e.map, base, Ext(SECTION_MAP));
        break;
    default:
        break;
    }
    // A source named without an extension: the first picture type present.
    if (!DerniereExtension(e.src)) {
        static const char* const types[] = {".bmp", ".png", ".jpg", ".gif", ".tif"};
        char essai[TAILLE_TEXTE_CONV];
        for (const char* t : types) {
            Concatene(essai, e.src, t);
            if (FichierExiste(essai)) {
                CopieBornee(e.src, essai);
                return;
            }
        }
        Concatene(essai, e.src, ".bmp");
        CopieBornee(e.src, essai);
    }
}

void DeriveDestination(EtatConv& e) {
    char base[TAILLE_TEXTE_CONV];
    CopieBornee(base, e.dst);
    switch (e.cible) {
    case 3:
        Concatene(e.dst, base, Ext(SECTION_BITMAP16));
        break;
    case 2:
        Concatene(e.pal, base, Ext(SECTION_PALETTE));
        Concatene(e.dst, base, Ext(SECTION_BITMAP8));
        break;
    case 1:
        Concatene(e.pal, base, Ext(SECTION_PALETTE));
        Concatene(e.map, base, Ext(SECTION_MAP));
        Concatene(e.dst, base, Ext(SECTION_TILESET));
        break;
    default:
        break;
    }
}

void Applique(EtatConv& e, const ParametreConv& p, Prefixe prefixe, const char* valeur) {
    switch (p.genre) {
    case SELECTEUR:
        e.cible = p.cible;
        return;
    case ENTIER:
        e.col = (int32_t)strtol(valeur, nullptr, 10);
        return;
    case DRAPEAU: {
        if (prefixe == PREFIXE_AUCUN) return; // keeps its value
        // "!" on a flag counts as on.
        const int oui = prefixe != PREFIXE_NON;
        *p.drapeau() = oui;
        if (p.derivation == DERIVE_16C) e.col = oui ? 15 : 255;
        return;
    }
    case TEXTE:
        break;
    }
    const Champ cible = p.texte(e);
    CopieBorneeN(cible.texte, cible.taille, valeur, strlen(valeur));
    if (p.texte == UPal) ReglagesConv.compareCouleurs = prefixe != PREFIXE_SPECIAL;
    if (p.texte == UTil) ReglagesConv.compareTuiles = prefixe != PREFIXE_SPECIAL;
    switch (p.derivation) {
    case DERIVE_SRC:
        DeriveSource(e);
        break;
    case DERIVE_DST:
        DeriveDestination(e);
        break;
    case DERIVE_MAP:
        if (e.cible == 1) AjouteBorne(e.map, TAILLE_TEXTE_CONV, Ext(SECTION_MAP));
        break;
    case DERIVE_PAL:
        if (e.cible == 1 || e.cible == 2) AjouteBorne(e.pal, TAILLE_TEXTE_CONV, Ext(SECTION_PALETTE));
        break;
    case DERIVE_NOM:
        for (char* n : {ReglagesConv.nomMosaique, ReglagesConv.nomBitmap8, ReglagesConv.nomBitmap16,
                        ReglagesConv.nomPalette, ReglagesConv.nomCarte})
            CopieBorneeN(n, TAILLE_TEXTE_REGLAGE, valeur, strlen(valeur));
        break;
    default:
        break;
    }
}

// "width x height" or "width": the two numbers around the x.
void LitDimensions(const char* texte, int& largeur, int& hauteur, bool hauteurSansX) {
    largeur = (int)strtol(texte, nullptr, 10);
    const char* x = strchr(texte, 'x');
    if (x) hauteur = (int)strtol(x + 1, nullptr, 10);
    else if (hauteurSansX) hauteur = 0;
}

void Ligne(ElementProjet& ligne, uint32_t type, const char* fichier, const char* source) {
    ligne = ElementProjet{};
    CopieBornee(ligne.fichierBase, source);
    CopieBornee(ligne.fichier, fichier);
    NomCourt(fichier, ligne.nom);
    ligne.type = type;
}

void Reinitialise(EtatConv& e) {
    e = EtatConv{};
    ReglagesConversion& c = ReglagesConv;
    c.paletteExistante = c.mosaiqueExistante = -1;
    c.compareCouleurs = c.compareTuiles = 1;
    c.typeCarte = 1;
    c.genereCarte = c.optimise = 1;
    c.quatreBits = c.quinzeBits = 0;
    c.sortieLargeur = c.sortieHauteur = 0;
    for (char* n : {c.nomMosaique, c.nomBitmap8, c.nomBitmap16, c.nomPalette, c.nomCarte}) n[0] = 0;
}

void Execute(EtatConv& e) {
    ReglagesConversion& c = ReglagesConv;
    if (e.upal[0]) {
        c.paletteExistante = TrouveElement(TYPE_PALETTE, e.upal);
        if (c.paletteExistante < 0) {
            MessageDebug("Internal error: TrouveElement(TYPE_PALETTE,chneUPal)");
            return;
        }
    }
    if (e.util[0]) {
        c.mosaiqueExistante = TrouveElement(TYPE_MOSAIQUE, e.util);
        if (c.mosaiqueExistante < 0) {
            MessageDebug("Internal error: TrouveElement(TYPE_MOSAIQUE,chneUTil)");
            return;
        }
    }
    ElementProjet lignes[3];
    switch (e.cible) {
    case 3:
        Ligne(lignes[0], TYPE_BITMAP16, e.dst, e.src);
        if (!ChargeImage(e.src, sizex, sizey, false)) return;
        if (ConvertitBitmap16(lignes)) AjouteElement(lignes[0]);
        return;
    case 2:
        if (e.col < 1 || e.col > 255) return;
        Ligne(lignes[0], TYPE_BITMAP8, e.dst, e.src);
        if (!ChargeImage(e.src, sizex, sizey, true)) return;
        Ligne(lignes[1], TYPE_PALETTE, c.paletteExistante >= 0 ? Elements[c.paletteExistante].fichier : e.pal, e.src);
        if (ConvertitBitmap8(lignes, e.col)) {
            AjouteElement(lignes[0]);
            AjouteElement(lignes[1]);
        }
        return;
    case 1: {
        if (e.col < 1 || e.col > 255) return;
        int largeur = 0, hauteur = 0;
        if (e.mdim[0]) LitDimensions(e.mdim, largeur, hauteur, true);
        if (largeur < 0 || hauteur < 0) {
            MessageDebug("Negative map dimensions");
            return;
        }
        c.sortieLargeur = largeur;
        c.sortieHauteur = hauteur;
        tilex = tiley = 8;
        if (e.tdim[0]) LitDimensions(e.tdim, tilex, tiley, false);
        if (e.mapmode[0]) {
            if (strcmp(e.mapmode, "32") == 0) c.typeCarte = 2;
            else if (strcmp(e.mapmode, "16") == 0) c.typeCarte = 1;
            else if (strcmp(e.mapmode, "8") == 0) c.typeCarte = 0;
        }
        if (e.cmode[0] == '4') {
            c.quatreBits = 1;
            if (e.col > 15) e.col = 15;
        } else if (strcmp(e.cmode, "15") == 0) {
            c.quinzeBits = 1;
        }
        // A size of 0 is refused with the others: a tile has at least one unit.
        if (tilex % 8 || tiley % 8 || tilex <= 0 || tiley <= 0 || tilex > 128 || tiley > 128) {
            MessageDebug("Error on tileset dimensions (must be multiple of 8 and less than 128)");
            return;
        }
        EffaceImage(SurfaceApercu);
        Ligne(lignes[0], TYPE_MOSAIQUE, c.mosaiqueExistante >= 0 ? Elements[c.mosaiqueExistante].fichier : e.dst, e.src);
        if (!ChargeImage(e.src, sizex, sizey, true)) return;
        Ligne(lignes[1], TYPE_PALETTE, c.paletteExistante >= 0 ? Elements[c.paletteExistante].fichier : e.pal, e.src);
        Ligne(lignes[2], TYPE_CARTE, e.map, e.src);
        if (ConvertitMosaique(lignes, e.col)) {
            AjouteElement(lignes[0]);
            if (!c.quinzeBits) AjouteElement(lignes[1]);
            if (c.genereCarte) AjouteElement(lignes[2]);
        }
        return;
    }
    default:
        return; // no target: nothing to do
    }
}

} // namespace

void ExecuteConv(const char* texte) {
    EtatConv etat;
    Reinitialise(etat);
    const char* p = texte ? texte : "";
    while (*p == '\t') ++p;
    while (*p) {
        while (*p == ' ') ++p;
        if (!*p) break;
        Prefixe prefixe = PREFIXE_AUCUN;
        if (*p == '+') prefixe = PREFIXE_OUI;
        else if (*p == '-') prefixe = PREFIXE_NON;
        else if (*p == '!') prefixe = PREFIXE_SPECIAL;
        if (prefixe != PREFIXE_AUCUN) ++p;

        // Names and values longer than their limits are cut.
        char nom[LONGUEUR_NOM_PARAMETRE + 1];
        const char* debut = p;
        while (*p && *p != ' ' && *p != '=') ++p;
        CopieBorneeN(nom, sizeof nom, debut, (size_t)(p - debut));

        char valeur[LONGUEUR_VALEUR_PARAMETRE + 1] = "";
        if (*p == '=') {
            ++p;
            if (*p == '"') {
                debut = ++p;
                while (*p && *p != '"') ++p;
                CopieBorneeN(valeur, sizeof valeur, debut, (size_t)(p - debut));
                if (*p == '"') ++p;
            } else {
                debut = p;
                while (*p && *p != ' ') ++p;
                CopieBorneeN(valeur, sizeof valeur, debut, (size_t)(p - debut));
            }
        }
        // A lone prefix ("-" on its own) names nothing and is passed over.
        if (!nom[0] && !valeur[0]) continue;
        const int i = TrouveParametre(nom);
        if (i < 0) MessageDebugF("Unrecognized convertion identifier: %s", nom);
        else Applique(etat, TableParametres[i], prefixe, valeur);
    }
    Execute(etat);
}
