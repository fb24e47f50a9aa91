#include "convert/conv.h"

#include "convert/conversion.h"
#include "convert/images.h"
#include "core/chaines.h"
#include "core/chemins.h"
#include "core/elements.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "render/surfaces.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

namespace {

constexpr size_t LONGUEUR_NOM_PARAMETRE = 100;
constexpr size_t LONGUEUR_VALEUR_PARAMETRE = 500;
constexpr size_t TAILLE_TEXTE_CONV = 512;

enum Prefixe { PREFIXE_AUCUN, PREFIXE_OUI, PREFIXE_NON, PREFIXE_SPECIAL };

enum GenreParametre { SELECTEUR, TEXTE, ENTIER, DRAPEAU };

// What a conv statement makes: chosen by tset, b8 or b16.
enum CibleConv { CIBLE_AUCUNE, CIBLE_MOSAIQUE, CIBLE_BITMAP8, CIBLE_BITMAP16 };

// What one conv statement gathers; everything starts again at each call.
struct EtatConv {
    CibleConv cible = CIBLE_AUCUNE; // tileset, palette and map; 8-bit bitmap and palette; 16-bit bitmap
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
    char srcDonne[TAILLE_TEXTE_CONV] = ""; // src as written, before an extension was looked for
    int parametres = 0;                    // how many the statement named
    std::string problemes;                 // what a strict run refuses, one per line
};

// A text the statement fills, with its room.
struct Champ {
    char* texte;
    size_t taille;
};

// Notes what a strict run refuses in the statement.
void Refuse(EtatConv& e, const char* format, ...) __attribute__((format(printf, 2, 3)));
void Refuse(EtatConv& e, const char* format, ...) {
    char texte[1200];
    va_list args;
    va_start(args, format);
    vsnprintf(texte, sizeof texte, format, args);
    va_end(args);
    e.problemes += texte;
    e.problemes += '\n';
}

// A whole decimal number from mini to maxi.
bool EstNombreDans(const char* texte, long mini, long maxi) {
    char* fin;
    errno = 0;
    const long n = strtol(texte, &fin, 10);
    return fin != texte && *fin == 0 && errno == 0 && n >= mini && n <= maxi;
}

enum Derivation { SANS, DERIVE_SRC, DERIVE_DST, DERIVE_MAP, DERIVE_PAL, DERIVE_NOM, DERIVE_16C };

struct ParametreConv {
    const char* nom;
    GenreParametre genre;
    CibleConv cible;             // SELECTEUR: the target kind
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
    {"tset", SELECTEUR, CIBLE_MOSAIQUE, nullptr, SANS, nullptr},
    {"b8", SELECTEUR, CIBLE_BITMAP8, nullptr, SANS, nullptr},
    {"b16", SELECTEUR, CIBLE_BITMAP16, nullptr, SANS, nullptr},
    {"bmp", TEXTE, CIBLE_AUCUNE, Src, DERIVE_SRC, nullptr},
    {"src", TEXTE, CIBLE_AUCUNE, Src, DERIVE_SRC, nullptr},
    {"dst", TEXTE, CIBLE_AUCUNE, Dst, DERIVE_DST, nullptr},
    {"til", TEXTE, CIBLE_AUCUNE, Dst, DERIVE_DST, nullptr},
    {"map", TEXTE, CIBLE_AUCUNE, Map, DERIVE_MAP, nullptr},
    {"pal", TEXTE, CIBLE_AUCUNE, Pal, DERIVE_PAL, nullptr},
    {"name", TEXTE, CIBLE_AUCUNE, Nom, DERIVE_NOM, nullptr},
    {"nametil", TEXTE, CIBLE_AUCUNE, NomTil, SANS, nullptr},
    {"nameb8", TEXTE, CIBLE_AUCUNE, NomB8, SANS, nullptr},
    {"nameb16", TEXTE, CIBLE_AUCUNE, NomB16, SANS, nullptr},
    {"namepal", TEXTE, CIBLE_AUCUNE, NomPal, SANS, nullptr},
    {"namemap", TEXTE, CIBLE_AUCUNE, NomMap, SANS, nullptr},
    {"col", ENTIER, CIBLE_AUCUNE, nullptr, SANS, nullptr},
    {"upal", TEXTE, CIBLE_AUCUNE, UPal, SANS, nullptr},
    {"util", TEXTE, CIBLE_AUCUNE, UTil, SANS, nullptr},
    {"txt", DRAPEAU, CIBLE_AUCUNE, nullptr, SANS, Txt},
    {"16c", DRAPEAU, CIBLE_AUCUNE, nullptr, DERIVE_16C, Seize},
    {"cmode", TEXTE, CIBLE_AUCUNE, CMode, SANS, nullptr},
    {"gmap", DRAPEAU, CIBLE_AUCUNE, nullptr, SANS, GMap},
    {"opt", DRAPEAU, CIBLE_AUCUNE, nullptr, SANS, Opt},
    {"mapmode", TEXTE, CIBLE_AUCUNE, MapMode, SANS, nullptr},
    {"mdim", TEXTE, CIBLE_AUCUNE, MDim, SANS, nullptr},
    {"tdim", TEXTE, CIBLE_AUCUNE, TDim, SANS, nullptr},
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

const char* const TypesImage[] = {".bmp", ".png", ".jpg", ".gif", ".tif", ".jpeg", ".tiff"};
constexpr int NB_TYPES_IMAGE = (int)(sizeof TypesImage / sizeof TypesImage[0]);

void DeriveSource(EtatConv& e) {
    char base[TAILLE_TEXTE_CONV];
    CopieBornee(base, e.src);
    if (char* point = (char*)DerniereExtension(base)) *point = 0;
    switch (e.cible) {
    case CIBLE_BITMAP16:
        Concatene(e.dst, base, Ext(SECTION_BITMAP16));
        break;
    case CIBLE_BITMAP8:
        Concatene(e.dst, base, Ext(SECTION_BITMAP8));
        Concatene(e.pal, base, Ext(SECTION_PALETTE));
        break;
    case CIBLE_MOSAIQUE:
        Concatene(e.dst, base, Ext(SECTION_TILESET));
        Concatene(e.pal, base, Ext(SECTION_PALETTE));
        Concatene(e.map, base, Ext(SECTION_MAP));
        break;
    default:
        break;
    }
    // A source named without an extension: the first picture type present,
    // the extension in any letter case; else ".bmp".
    CopieBornee(e.srcDonne, e.src);
    if (!DerniereExtension(e.src)) {
        char trouve[TAILLE_TEXTE_CONV];
        if (TrouveExtension(e.src, TypesImage, NB_TYPES_IMAGE, trouve, sizeof trouve))
            CopieBornee(e.src, trouve);
        else
            AjouteBorne(e.src, TAILLE_TEXTE_CONV, ".bmp");
    }
}

void DeriveDestination(EtatConv& e) {
    char base[TAILLE_TEXTE_CONV];
    CopieBornee(base, e.dst);
    switch (e.cible) {
    case CIBLE_BITMAP16:
        Concatene(e.dst, base, Ext(SECTION_BITMAP16));
        break;
    case CIBLE_BITMAP8:
        Concatene(e.pal, base, Ext(SECTION_PALETTE));
        Concatene(e.dst, base, Ext(SECTION_BITMAP8));
        break;
    case CIBLE_MOSAIQUE:
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
        // Paths are derived when src is read: a kind behind it names no output.
        if (e.src[0]) Refuse(e, "%s stands behind src: put the kind first", p.nom);
        e.cible = p.cible;
        return;
    case ENTIER:
        e.col = (int32_t)strtol(valeur, nullptr, 10);
        if (!EstNombreDans(valeur, 1, 255)) Refuse(e, "%s=%s is not a number from 1 to 255", p.nom, valeur);
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
        if (e.cible == CIBLE_MOSAIQUE) AjouteBorne(e.map, TAILLE_TEXTE_CONV, Ext(SECTION_MAP));
        break;
    case DERIVE_PAL:
        if (e.cible == CIBLE_MOSAIQUE || e.cible == CIBLE_BITMAP8) AjouteBorne(e.pal, TAILLE_TEXTE_CONV, Ext(SECTION_PALETTE));
        break;
    case DERIVE_NOM:
        for (char* n : {ReglagesConv.nomMosaique, ReglagesConv.nomBitmap8, ReglagesConv.nomBitmap16,
                        ReglagesConv.nomPalette, ReglagesConv.nomCarte})
            CopieBorneeN(n, TAILLE_TEXTE_REGLAGE, valeur, strlen(valeur));
        break;
    default:
        break;
    }
    // Names go into the C files as they are given.
    if (strncmp(p.nom, "name", 4) == 0 && FormatCourantEstC() && !EstIdentifiantC(valeur))
        Refuse(e, "%s=%s is not a C identifier", p.nom, valeur);
}

// "n", "n x m", each number at most 6 digits with an optional minus sign
// (negative sizes get their own message).
bool EstDimension(const char* texte) {
    auto nombre = [](const char*& p) {
        if (*p == '-') ++p;
        const char* debut = p;
        while (*p >= '0' && *p <= '9') ++p;
        return p > debut && p - debut <= 6;
    };
    const char* p = texte;
    if (!nombre(p)) return false;
    if (*p == 'x' && !nombre(++p)) return false;
    return *p == 0;
}

// The values that the command would read as something else, or pass over.
void VerifieValeurs(EtatConv& e) {
    if (e.mapmode[0] && strcmp(e.mapmode, "8") != 0 && strcmp(e.mapmode, "16") != 0 && strcmp(e.mapmode, "32") != 0)
        Refuse(e, "mapmode=%s is not 8, 16 or 32", e.mapmode);
    if (e.cmode[0] && e.cmode[0] != '4' && strcmp(e.cmode, "8") != 0 && strcmp(e.cmode, "15") != 0)
        Refuse(e, "cmode=%s is not 4, 8 or 15", e.cmode);
    if (e.mdim[0] && !EstDimension(e.mdim)) Refuse(e, "mdim=%s is not a size such as 256x256", e.mdim);
    if (e.tdim[0] && !EstDimension(e.tdim)) Refuse(e, "tdim=%s is not a size such as 16x16", e.tdim);
}

// "width x height" or "width": the two numbers around the x.
void LitDimensions(const char* texte, int& largeur, int& hauteur, bool hauteurSansX) {
    largeur = (int)strtol(texte, nullptr, 10);
    const char* x = strchr(texte, 'x');
    if (x) hauteur = (int)strtol(x + 1, nullptr, 10);
    else if (hauteurSansX) hauteur = 0;
}

// A row named after its file. With the C format the name is a C identifier
// ("hero-walk" gives hero_walk, "8x8font" _8x8font), as in the file's
// declarations, so that reading the file back finds the element.
void Ligne(ElementProjet& ligne, uint32_t type, const char* fichier, const char* source) {
    ligne = ElementProjet{};
    CopieBornee(ligne.fichierBase, source);
    CopieBornee(ligne.fichier, fichier);
    NomCourt(fichier, ligne.nom);
    if (FormatCourantEstC()) RendIdentifiantC(ligne.nom, sizeof ligne.nom);
    ligne.type = type;
}

// The picture could not be loaded: ChargeImage says nothing, a strict run
// says which file and why.
bool EchecImage(const EtatConv& e) {
    if (strcmp(e.srcDonne, e.src) != 0 && !FichierExiste(e.src))
        SignaleEchec("cannot read picture %s: not found (no %s.bmp, .png, .jpg, .jpeg, .gif, .tif or .tiff)",
                     e.srcDonne, e.srcDonne);
    else
        SignaleEchec("cannot read picture %s: %s", e.src, RaisonEchecImage);
    return false;
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

// Gives false when the statement failed or did nothing.
bool Execute(EtatConv& e) {
    ReglagesConversion& c = ReglagesConv;
    if (e.upal[0]) {
        c.paletteExistante = TrouveElement(TYPE_PALETTE, e.upal);
        if (c.paletteExistante < 0) {
            MessageDebug("Internal error: TrouveElement(TYPE_PALETTE,chneUPal)");
            SignaleEchec("%s: upal=%s: no palette element of that name in the project", e.src, e.upal);
            return false;
        }
    }
    if (e.util[0]) {
        c.mosaiqueExistante = TrouveElement(TYPE_MOSAIQUE, e.util);
        if (c.mosaiqueExistante < 0) {
            MessageDebug("Internal error: TrouveElement(TYPE_MOSAIQUE,chneUTil)");
            SignaleEchec("%s: util=%s: no tileset element of that name in the project", e.src, e.util);
            return false;
        }
    }
    ElementProjet lignes[3];
    switch (e.cible) {
    case CIBLE_BITMAP16:
        Ligne(lignes[0], TYPE_BITMAP16, e.dst, e.src);
        if (!ChargeImage(e.src, sizex, sizey, false)) return EchecImage(e);
        if (!ConvertitBitmap16(lignes)) return false;
        AjouteElement(lignes[0]);
        return true;
    case CIBLE_BITMAP8:
        if (e.col < 1 || e.col > 255) return false;
        Ligne(lignes[0], TYPE_BITMAP8, e.dst, e.src);
        if (!ChargeImage(e.src, sizex, sizey, true)) return EchecImage(e);
        Ligne(lignes[1], TYPE_PALETTE, c.paletteExistante >= 0 ? Elements[c.paletteExistante].fichier : e.pal, e.src);
        if (!ConvertitBitmap8(lignes, e.col)) return false;
        AjouteElement(lignes[0]);
        AjouteElement(lignes[1]);
        return true;
    case CIBLE_MOSAIQUE: {
        if (e.col < 1 || e.col > 255) return false;
        int largeur = 0, hauteur = 0;
        if (e.mdim[0]) LitDimensions(e.mdim, largeur, hauteur, true);
        if (largeur < 0 || hauteur < 0) {
            MessageDebug("Negative map dimensions");
            SignaleEchec("%s: mdim=%s: negative size", e.src, e.mdim);
            return false;
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
            SignaleEchec("%s: tiles of %d x %d pixels: sides must be multiples of 8 up to 128", e.src, tilex, tiley);
            return false;
        }
        EffaceImage(SurfaceApercu);
        Ligne(lignes[0], TYPE_MOSAIQUE, c.mosaiqueExistante >= 0 ? Elements[c.mosaiqueExistante].fichier : e.dst, e.src);
        if (!ChargeImage(e.src, sizex, sizey, true)) return EchecImage(e);
        Ligne(lignes[1], TYPE_PALETTE, c.paletteExistante >= 0 ? Elements[c.paletteExistante].fichier : e.pal, e.src);
        Ligne(lignes[2], TYPE_CARTE, e.map, e.src);
        if (!ConvertitMosaique(lignes, e.col)) return false;
        AjouteElement(lignes[0]);
        if (!c.quinzeBits) AjouteElement(lignes[1]);
        if (c.genereCarte) AjouteElement(lignes[2]);
        return true;
    }
    default:
        return false; // no target: nothing to do
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
        ++etat.parametres;
        const int i = TrouveParametre(nom);
        if (i >= 0) {
            Applique(etat, TableParametres[i], prefixe, valeur);
        } else {
            MessageDebugF("Unrecognized convertion identifier: %s", nom);
            Refuse(etat, "unknown conv parameter %s", nom);
        }
    }
    if (!etat.parametres) return; // an empty link: nothing asked, nothing done

    // A strict run refuses what the command would misread, and says what it
    // is about: the picture, else the statement.
    const char* sujet = FichierExiste(etat.src) ? etat.src : etat.srcDonne[0] ? etat.srcDonne : texte;
    if (Rigueur.stricte) {
        VerifieValeurs(etat);
        if (etat.cible == CIBLE_AUCUNE) Refuse(etat, "no kind of output: tset, b8 or b16 first");
        if (!etat.problemes.empty()) {
            for (size_t debut = 0, fin; (fin = etat.problemes.find('\n', debut)) != std::string::npos; debut = fin + 1)
                SignaleEchec("%s: %s", sujet, etat.problemes.substr(debut, fin - debut).c_str());
            return;
        }
    }
    const int avant = Rigueur.echecs;
    if (!Execute(etat) && Rigueur.echecs == avant) SignaleEchec("%s: not converted", sujet);
}
