#include "convert/conversion.h"

#include "convert/couleurs.h"
#include "convert/quantification.h"
#include "core/gba.h"
#include "core/reglages.h"
#include "format/ecriture.h"
#include "format/formats.h"
#include "format/variables.h"
#include "platform/fichiers.h"
#include "platform/imagefichier.h"
#include "platform/memoire.h"
#include "platform/plateforme.h"
#include "render/chargeurs.h"
#include "render/surfaces.h"
#include "script/interpreteur.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <vector>

const uint8_t* LigneSource(int y, int& debut, int& fin) {
    const Cadre& c = CadreDessin;
    const Image& s = SurfaceApercu;
    const int Y = c.yOrigine + y;
    debut = fin = 0;
    if (!s.pixels || Y < 0 || Y >= c.yLimite || Y >= s.hauteur) return nullptr;
    debut = c.xOrigine < 0 ? -c.xOrigine : 0;
    const int limite = c.xLimite < s.largeur ? c.xLimite : s.largeur;
    fin = limite - c.xOrigine;
    if (fin < debut) fin = debut;
    return s.pixels + (size_t)(s.hauteur - 1 - Y) * s.pas + (ptrdiff_t)c.xOrigine * 3;
}


namespace {

const char* const MESSAGE_OUVERTURE_IMAGE =
    "Unable to open the file for writing.\nMaybe the name is wrong or you don't have access to this directory.";
const char* const MESSAGE_OUVERTURE_DONNEES = "Unable to open the file for writing.\nThe file name is probably erroneous.";
const char* const TITRE_TUILES = "Tiles converter";

// A palette in conversion: triples blue, green, red of 5 bits, with room for
// the 257 of a quantisation and the entry 0 put in front afterwards.
constexpr int TAILLE_PALETTE_CONVERSION = TAILLE_PALETTE_REDUCTION + 3;

inline uint32_t Couleur15(const uint8_t* bgr) {
    return CouleurGba(TableRouge[bgr[2]], TableVerte[bgr[1]], TableBleue[bgr[0]]);
}

// One output file of a conversion. Its bytes go to a new file of its own,
// which takes the target's place only when every output of the conversion is
// complete (PlaceSorties): a failure or a kill anywhere leaves the previous
// set whole. A file that cannot be opened or written to the end (a full
// disk) gets the message of its kind.
struct Sortie {
    EcritureSure ecriture;
    const char* chemin = nullptr;
    const char* message = nullptr;
    Sortie() = default;
    Sortie(const Sortie&) = delete;
    Sortie& operator=(const Sortie&) = delete;
    ~Sortie() { AbandonneEcritureSure(ecriture); } // dropped unless placed
};

void EchecSortie(const Sortie& sortie) {
    BoiteMessage(sortie.message, sortie.chemin, BOITE_OK | ICONE_ARRET);
    SignaleEchec("cannot write %s: %s", sortie.chemin, strerror(sortie.ecriture.erreur));
}

// Opens one output and puts the template variables in their start state.
FILE* OuvreSortie(Sortie& sortie, const char* chemin, const char* message) {
    sortie.chemin = chemin;
    sortie.message = message;
    FILE* f = CommenceEcritureSure(sortie.ecriture, chemin);
    if (!f) {
        EchecSortie(sortie);
        return nullptr;
    }
    RestaureVariables();
    ChargeTextesUser();
    return f;
}

// Every byte of the output has reached its new file.
bool AcheveSortie(Sortie& sortie) {
    RestaureVariables(); // the rows point into the caller's element rows
    if (AcheveEcritureSure(sortie.ecriture)) return true;
    EchecSortie(sortie);
    return false;
}

// The outputs of one conversion, in the order they were written, replace
// their old files together.
bool PlaceSorties(Sortie* const* sorties, int nombre) {
    EcritureSure* ecritures[3];
    for (int i = 0; i < nombre && i < 3; ++i) ecritures[i] = &sorties[i]->ecriture;
    int echec = -1;
    if (PlaceEcrituresSures(ecritures, nombre < 3 ? nombre : 3, &echec)) return true;
    if (echec >= 0) EchecSortie(*sorties[echec]);
    return false;
}

// The name of an output: the one given to the conversion, else the row's.
const char* NomSortie(const char* donne, const ElementProjet& ligne) { return donne[0] ? donne : ligne.nom; }

void MetVariables(const ElementProjet& ligne, const char* nom, const char* lien, int64_t taille, int64_t memoire,
                  int profondeur, const char* type) {
    MetTexteVariable("file", ligne.fichierBase);
    MetTexteVariable("name", nom);
    MetTexteVariable("link", lien);
    MetEntierVariable("size", (int32_t)taille);
    MetEntierVariable("memory", (int32_t)memoire);
    MetEntierVariable("depth", profondeur);
    MetTexteVariable("type", type);
}

bool EcritPalette(Sortie& sortie, const ElementProjet& ligne, const uint8_t* palette, int nombre) {
    FILE* f = OuvreSortie(sortie, ligne.fichier, MESSAGE_OUVERTURE_DONNEES);
    if (!f) return false;
    MetVariables(ligne, NomSortie(ReglagesConv.nomPalette, ligne), nullptr, nombre, (int64_t)nombre * 2, 0, nullptr);
    const SectionFormat& s = FormatCourant.sections[SECTION_PALETTE];
    std::vector<uint32_t> couleurs((size_t)nombre);
    for (int i = 0; i < nombre; ++i)
        couleurs[(size_t)i] = CouleurGba(palette[3 * i + 2], palette[3 * i + 1], palette[3 * i]);
    EcritGabarit(s.declaration, f);
    EcritValeursPalette(f, s, couleurs.data(), nombre);
    EcritGabarit(s.end, f);
    return AcheveSortie(sortie);
}

// An existing palette as the first triples: its entry 0 is dropped. Gives
// false when it cannot be read (the loader has said why).
bool PaletteExistante(const ElementProjet& ligne, uint8_t* palette, int& fixes, int& debut) {
    fixes = debut = 0;
    if (ReglagesConv.paletteExistante < 0) return true;
    uint8_t lue[256 * 3];
    const int n = ChargePalette(lue, ligne.fichier);
    if (n <= 0) return false;
    fixes = n - 1;
    for (int i = 0; i < 3 * fixes; ++i) palette[i] = (uint8_t)(lue[3 + i] >> 3);
    debut = ReglagesConv.compareCouleurs ? 0 : fixes;
    return true;
}

// The method of convert.mode. Gives the number of triples, or -1 after a
// message (or a Cancel).
int Quantifie(uint32_t* indices, uint8_t* palette, int hauteur, int largeur, int fixes, int debut, int maxi, bool tuiles,
              uint32_t transparent) {
    switch (ReglagesConv.mode) {
    case METHODE_TRAMEE:
        return ReductionTramee(indices, palette, hauteur, largeur);
    case METHODE_OPTIMALE: {
        const int n = ReductionOptimale(indices, palette, hauteur, largeur, fixes, maxi - 1);
        return n > 0 ? n : -1;
    }
    default:
        return ReductionNormaleCherchee(indices, palette, hauteur, largeur, fixes, debut, maxi, tuiles, transparent);
    }
}

// Entry 0 takes the zero colour; the others move up by one. Gives the count.
int InsereCouleurZero(uint8_t* palette, int nombre) {
    memmove(palette + 3, palette, (size_t)3 * nombre);
    palette[0] = ReglagesConv.zero[2];
    palette[1] = ReglagesConv.zero[1];
    palette[2] = ReglagesConv.zero[0];
    return nombre + 1;
}

// A tile's words, hashed to find its equals among the stored tiles.
uint64_t Empreinte(const uint32_t* mots, int nombre) {
    uint64_t h = 0x9E3779B97F4A7C15ull;
    int i = 0;
    for (; i + 1 < nombre; i += 2) {
        h = (h ^ (mots[i] | (uint64_t)mots[i + 1] << 32)) * 0x9E3779B97F4A7C15ull;
        h ^= h >> 32;
    }
    if (i < nombre) h = (h ^ mots[i]) * 0x9E3779B97F4A7C15ull;
    return h;
}

} // namespace

int ConvertitBitmap16(ElementProjet* lignes) {
    const ElementProjet& b = lignes[0];
    Sortie sortie;
    FILE* f = OuvreSortie(sortie, b.fichier, MESSAGE_OUVERTURE_IMAGE);
    if (!f) return 0;
    const int l = sizex > 0 ? sizex : 0, h = sizey > 0 ? sizey : 0;
    std::vector<uint32_t> valeurs((size_t)l * h, 0);
    // The mask colour has no meaning here: every pixel is a colour.
    for (int y = 0; y < h; ++y) {
        int debut, fin;
        const uint8_t* ligne = LigneSource(y, debut, fin);
        if (!ligne) continue;
        uint32_t* sortie = valeurs.data() + (size_t)y * l;
        for (int x = debut; x < fin && x < l; ++x) sortie[x] = Couleur15(ligne + 3 * x);
    }
    MetVariables(b, NomSortie(ReglagesConv.nomBitmap16, b), nullptr, 0, (int64_t)l * h * 2, 0, nullptr);
    const SectionFormat& s = FormatCourant.sections[SECTION_BITMAP16];
    EcritGabarit(s.declaration, f);
    EcritValeursLignes(f, s, s.element, valeurs.data(), l, h);
    EcritGabarit(s.end, f);
    Sortie* une[] = {&sortie};
    return AcheveSortie(sortie) && PlaceSorties(une, 1) ? 1 : 0;
}

int ConvertitBitmap8(ElementProjet* lignes, int maxi) {
    ReglagesConversion& c = ReglagesConv;
    c.sortieLargeur = c.sortieHauteur = 0;
    uint8_t palette[TAILLE_PALETTE_CONVERSION] = {};
    int fixes, debut;
    if (!PaletteExistante(lignes[1], palette, fixes, debut)) return 0;
    const int l = sizex > 0 ? sizex : 0, h = sizey > 0 ? sizey : 0;
    const auto indices = std::make_unique_for_overwrite<uint32_t[]>((size_t)l * h);
    const PagesEnFond pages(indices.get(), sizeof(uint32_t) * (size_t)l * h);
    int n = Quantifie(indices.get(), palette, h, l, fixes, debut, maxi, false, 0);
    if (n < 0) return 0;
    n = InsereCouleurZero(palette, n);

    const ElementProjet& b = lignes[0];
    Sortie sortie;
    FILE* f = OuvreSortie(sortie, b.fichier, MESSAGE_OUVERTURE_IMAGE);
    if (!f) return 0;
    MetVariables(b, NomSortie(c.nomBitmap8, b), lignes[1].fichier, 0, (int64_t)l * h, 0, nullptr);
    const SectionFormat& s = FormatCourant.sections[SECTION_BITMAP8];
    EcritGabarit(s.declaration, f);
    EcritValeursLignes(f, s, s.element, indices.get(), l, h);
    EcritGabarit(s.end, f);
    Sortie sortiePalette;
    if (!AcheveSortie(sortie) || !EcritPalette(sortiePalette, lignes[1], palette, n)) return 0;
    Sortie* deux[] = {&sortie, &sortiePalette};
    return PlaceSorties(deux, 2) ? 1 : 0;
}

int ConvertitMosaique(ElementProjet* lignes, int maxi) {
    ReglagesConversion& c = ReglagesConv;
    const TaillesPartagees avant = TaillesPartagees::Sauve();
    const int tx = avant.tilex, ty = avant.tiley;
    if (tx < 8 || ty < 8 || tx % 8 || ty % 8 || tx > 128 || ty > 128) return 0; // the callers check first

    // The area: the picture's size where none is given, up to whole tiles.
    int64_t l = c.sortieLargeur > 0 ? c.sortieLargeur : sizex, h = c.sortieHauteur > 0 ? c.sortieHauteur : sizey;
    l = (l + tx - 1) / tx * tx;
    h = (h + ty - 1) / ty * ty;
    if (l > 0 && h > 0 && !TailleImageAdmise(l, h)) {
        BoiteMessageF(TITRE_TUILES, BOITE_OK | ICONE_ARRET,
                      "Unable to convert an area of %lld x %lld pixels: an area may have at most %d pixels a side "
                      "and %lld pixels in all.",
                      (long long)l, (long long)h, COTE_IMAGE_MAX, (long long)PixelsImageMax);
        SignaleEchec("%s: the area of %lld x %lld pixels is larger than %d a side or %lld in all", lignes[0].fichierBase,
                     (long long)l, (long long)h, COTE_IMAGE_MAX, (long long)PixelsImageMax);
        return 0;
    }
    if (l <= 0 || h <= 0) {
        BoiteMessage("Unable to convert because there are too many tiles.", TITRE_TUILES, BOITE_OK | ICONE_ARRET);
        return 0;
    }
    const int L = (int)l, H = (int)h;

    // Written whole by the quantisation or the direct colours below.
    const auto pixels = std::make_unique_for_overwrite<uint32_t[]>((size_t)L * H);
    const PagesEnFond pages(pixels.get(), sizeof(uint32_t) * (size_t)L * H);
    uint8_t palette[TAILLE_PALETTE_CONVERSION] = {};
    int nombre = 0;
    if (c.quinzeBits) {
        // Direct colours: the mask colour and the padding are 0xFFFF.
        const uint8_t* m = c.masque;
        std::fill_n(pixels.get(), (size_t)L * H, 65535u);
        for (int y = 0; y < H; ++y) {
            int debut, fin;
            const uint8_t* ligne = LigneSource(y, debut, fin);
            if (!ligne) continue;
            uint32_t* sortie = pixels.get() + (size_t)y * L;
            for (int x = debut; x < fin && x < L; ++x) {
                const uint8_t* p = ligne + 3 * x;
                if (!(p[2] == m[0] && p[1] == m[1] && p[0] == m[2])) sortie[x] = Couleur15(p);
            }
        }
    } else {
        int fixes, debut;
        if (!PaletteExistante(lignes[1], palette, fixes, debut)) return 0;
        uint32_t transparent = 0;
        if (!c.compareCouleurs && c.quatreBits) {
            // The new colours form a row of 16 of their own, whose entry 0
            // (transparent in 4 bits) is the padding triple before them. The
            // padding itself is never matched: the row stays whole.
            fixes = (fixes / 16 + 1) * 16;
            debut = fixes;
            maxi = fixes + 15;
            transparent = (uint32_t)fixes;
        }
        nombre = Quantifie(pixels.get(), palette, H, L, fixes, debut, maxi, true, transparent);
        if (nombre < 0) return 0;
    }

    sizex = L;
    sizey = H;
    const int unitesTuile = (tx / 8) * (ty / 8), motsTuile = tx * ty;
    std::vector<uint32_t> magasin;
    int nbTuiles = 0;
    if (c.mosaiqueExistante >= 0) {
        uint32_t* lues = nullptr;
        const int unites = ChargeMosaique(nullptr, &lues, lignes[0].fichier, true);
        avant.Restaure(TAILLES_TUILE);
        if (unites < 0 || !lues) {
            free(lues);
            return 0;
        }
        nbTuiles = unites / unitesTuile;
        magasin.assign(lues, lues + (size_t)nbTuiles * motsTuile);
        free(lues);
    }
    if (!c.quinzeBits) nombre = InsereCouleurZero(palette, nombre);

    // Tiles: each position's pixels in store order (8 x 8 units left to
    // right, then top to bottom), the first equal stored tile from the search
    // start, else a new one.
    const int debutRecherche = c.compareTuiles ? 0 : nbTuiles;
    const int colonnes = L / tx, rangees = H / ty;
    std::vector<uint32_t> cellules((size_t)colonnes * rangees);
    std::unordered_map<uint64_t, std::vector<int>> candidats;
    if (c.optimise)
        for (int t = 0; t < nbTuiles; ++t) candidats[Empreinte(&magasin[(size_t)t * motsTuile], motsTuile)].push_back(t);
    std::vector<uint32_t> tuile((size_t)motsTuile);
    for (int r = 0; r < rangees; ++r)
        for (int k = 0; k < colonnes; ++k) {
            uint32_t* sortie = tuile.data();
            for (int v = 0; v < ty / 8; ++v)
                for (int u = 0; u < tx / 8; ++u)
                    for (int y = 0; y < 8; ++y) {
                        const uint32_t* ligne = &pixels[(size_t)(r * ty + v * 8 + y) * L + (size_t)(k * tx + u * 8)];
                        memcpy(sortie, ligne, 8 * sizeof(uint32_t));
                        sortie += 8;
                    }
            int numero = -1;
            uint64_t empreinte = 0;
            if (c.optimise) {
                empreinte = Empreinte(tuile.data(), motsTuile);
                auto trouve = candidats.find(empreinte);
                if (trouve != candidats.end())
                    for (int t : trouve->second)
                        if (t >= debutRecherche &&
                            memcmp(&magasin[(size_t)t * motsTuile], tuile.data(), sizeof(uint32_t) * motsTuile) == 0) {
                            numero = t;
                            break;
                        }
            }
            if (numero < 0) {
                // A tile of several units may pass the mark by its own size.
                if (nbTuiles * unitesTuile >= UNITES_MAX) {
                    BoiteMessage("Unable to convert because there are too many tiles.", TITRE_TUILES,
                                 BOITE_OK | ICONE_ARRET);
                    SignaleEchec("%s: too many tiles (a tileset holds at most %d units of 8 x 8 pixels)",
                                 lignes[0].fichierBase, UNITES_MAX);
                    return 0;
                }
                magasin.insert(magasin.end(), tuile.begin(), tuile.end());
                numero = nbTuiles++;
                if (c.optimise) candidats[empreinte].push_back(numero);
            }
            cellules[(size_t)r * colonnes + k] = c.typeCarte == 0 ? (uint32_t)numero % 256 : (uint32_t)numero;
        }

    bool attente = false;
    if (messages && nbTuiles * unitesTuile > (c.typeCarte > 0 ? 1024 : 256)) {
        if (BoiteMessage("The bitmap contains more tiles than available on GBA (1024 tiles for text mode and 256 for "
                         "rotation mode)\nThe result should be crappy...",
                         TITRE_TUILES, BOITE_OKANNULER | ICONE_ATTENTION) == REPONSE_ANNULER)
            return 0;
        PlateformeCourante.titreAttente(1);
        attente = true;
    }
    auto fin = [&](int resultat) {
        if (attente) PlateformeCourante.titreAttente(0);
        return resultat;
    };

    // Map, tileset, palette, in that order; the set replaces the old files
    // only once all are written.
    Sortie sortieCarte, sortieMosaique, sortiePalette;
    if (c.genereCarte) {
        const ElementProjet& carte = lignes[2];
        FILE* f = OuvreSortie(sortieCarte, carte.fichier, MESSAGE_OUVERTURE_DONNEES);
        if (!f) return fin(0);
        sizex = colonnes;
        sizey = rangees;
        const int octets = c.typeCarte == 0 ? 1 : c.typeCarte == 2 ? 4 : 2;
        const char* type = octets == 1 ? FormatCourant.type8 : octets == 4 ? FormatCourant.type32 : FormatCourant.type16;
        MetVariables(carte, NomSortie(c.nomCarte, carte), lignes[0].fichier, 0, (int64_t)colonnes * rangees * octets,
                     octets * 8, type);
        const SectionFormat& s = FormatCourant.sections[SECTION_MAP];
        const char* element = octets == 1 ? s.element2 : octets == 4 ? s.element3 : s.element;
        EcritGabarit(s.declaration, f);
        EcritValeursLignes(f, s, element, cellules.data(), colonnes, rangees);
        EcritGabarit(s.end, f);
        if (!AcheveSortie(sortieCarte)) return fin(0);
    }

    const ElementProjet& mosaique = lignes[0];
    FILE* f = OuvreSortie(sortieMosaique, mosaique.fichier, MESSAGE_OUVERTURE_IMAGE);
    if (!f) return fin(0);
    const int profondeur = c.quinzeBits ? 15 : c.quatreBits ? 4 : 8;
    int64_t memoire = (int64_t)tx * ty * nbTuiles;
    if (profondeur == 4) memoire /= 2;
    MetVariables(mosaique, NomSortie(c.nomMosaique, mosaique), c.quinzeBits ? "" : lignes[1].fichier, nbTuiles, memoire,
                 profondeur, c.quinzeBits ? FormatCourant.type16 : FormatCourant.type8);
    const SectionFormat& s = FormatCourant.sections[SECTION_TILESET];
    EcritGabarit(s.declaration, f);
    // The values are a series of 8 x 8 units whatever the tile size, so line
    // ends a unit; the settings stay so after the conversion.
    tilex = tiley = 8;
    EcritValeursMosaique(f, s, magasin.data(), nbTuiles * unitesTuile, 64, profondeur);
    EcritGabarit(s.end, f);
    if (!AcheveSortie(sortieMosaique)) return fin(0);

    if (!c.quinzeBits && !EcritPalette(sortiePalette, lignes[1], palette, nombre)) return fin(0);
    Sortie* placees[3];
    int n = 0;
    if (c.genereCarte) placees[n++] = &sortieCarte;
    placees[n++] = &sortieMosaique;
    if (!c.quinzeBits) placees[n++] = &sortiePalette;
    const bool place = PlaceSorties(placees, n);
    return fin(place ? 1 : 0);
}
