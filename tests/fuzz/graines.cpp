// Writes the seed corpora of the fuzz targets, every file made by our own
// code: conversions of a small picture, the template writer, the project
// writer, the picture writers, and BMP files put together byte by byte.
//
//   fuzz_graines <folder>   writes <folder>/<target>/<seed> for every target
//
// The inputs that once crashed a target are kept beside the seeds and are
// not written here.
#include "convert/conv.h"
#include "core/elements.h"
#include "core/projet.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "platform/fichiers.h"
#include "platform/image.h"
#include "platform/imagefichier.h"
#include "script/interpreteur.h"
#include "tests/fuzz/commun.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

std::filesystem::path Sortie;

void Graine(const char* cible, const std::string& nom, const std::string& contenu) {
    std::filesystem::create_directories(Sortie / cible);
    std::string chemin = (Sortie / cible / nom).string();
    FILE* f = fopen(chemin.c_str(), "wb");
    if (!f || fwrite(contenu.data(), 1, contenu.size(), f) != contenu.size()) {
        fprintf(stderr, "cannot write %s\n", chemin.c_str());
        exit(1);
    }
    fclose(f);
}

std::string Octet(int n) { return std::string(1, (char)n); }

void ExecuteTexte(const std::string& texte) {
    std::vector<char> copie(texte.begin(), texte.end());
    FILE* f = fmemopen(copie.data(), copie.size(), "rb");
    if (!f) abort();
    ExecuteScript(f, nullptr);
}

// ---- BMP files, byte by byte -------------------------------------------------------

struct Octets {
    std::string s;
    void u8(int v) { s += (char)v; }
    void u16(int v) {
        u8(v & 0xff);
        u8(v >> 8 & 0xff);
    }
    void u32(uint32_t v) {
        u16((int)(v & 0xffff));
        u16((int)(v >> 16));
    }
};

constexpr int BI_RGB = 0, BI_RLE8 = 1, BI_RLE4 = 2, BI_BITFIELDS = 3;

int Indice(int x, int y, int couleurs) { return (x / 2 + y) % couleurs; }

// A picture of largeur x hauteur: palette depths show a pattern of indices,
// the others a gradient. entete: 12 (core), 40, 108 (V4) or 124 (V5).
std::string Bmp(int largeur, int hauteur, int bits, int compression, int entete, bool hautEnBas = false) {
    const int couleurs = bits <= 8 ? (bits == 8 ? 16 : 1 << bits) : 0;
    const bool champs = compression == BI_BITFIELDS;
    Octets pixels;
    if (compression == BI_RLE8 || compression == BI_RLE4) {
        for (int r = 0; r < hauteur; ++r) {
            int y = hautEnBas ? r : hauteur - 1 - r;
            int x = 0;
            if (compression == BI_RLE8 && largeur >= 4) {
                // An absolute run of three, padded to a word, then encoded pairs.
                pixels.u8(0);
                pixels.u8(3);
                for (int k = 0; k < 3; ++k) pixels.u8(Indice(k, y, couleurs));
                pixels.u8(0);
                x = 3;
            }
            for (; x < largeur; x += 2) {
                int n = x + 2 <= largeur ? 2 : 1;
                pixels.u8(n);
                int a = Indice(x, y, couleurs), b = Indice(x + 1, y, couleurs);
                pixels.u8(compression == BI_RLE8 ? a : (a << 4 | b));
            }
            pixels.u8(0);
            pixels.u8(0); // end of line
        }
        pixels.u8(0);
        pixels.u8(1); // end of picture
    } else {
        const int pas = ((largeur * bits + 31) / 32) * 4;
        for (int r = 0; r < hauteur; ++r) {
            int y = hautEnBas ? r : hauteur - 1 - r;
            std::string rangee((size_t)pas, '\0');
            for (int x = 0; x < largeur; ++x) {
                int rouge = x * 255 / (largeur > 1 ? largeur - 1 : 1), vert = y * 255 / (hauteur > 1 ? hauteur - 1 : 1),
                    bleu = (x + y) * 16 & 255;
                switch (bits) {
                case 1:
                case 4:
                case 8: {
                    int bit = x * bits;
                    int decalage = 8 - bits - bit % 8;
                    rangee[(size_t)bit / 8] = (char)(rangee[(size_t)bit / 8] | Indice(x, y, couleurs) << decalage);
                    break;
                }
                case 16: {
                    int v = champs ? (rouge >> 3) << 11 | (vert >> 2) << 5 | bleu >> 3
                                   : (rouge >> 3) << 10 | (vert >> 3) << 5 | bleu >> 3;
                    rangee[(size_t)x * 2] = (char)(v & 0xff);
                    rangee[(size_t)x * 2 + 1] = (char)(v >> 8);
                    break;
                }
                default: {
                    int octets = bits / 8;
                    rangee[(size_t)x * octets] = (char)bleu;
                    rangee[(size_t)x * octets + 1] = (char)vert;
                    rangee[(size_t)x * octets + 2] = (char)rouge;
                    if (octets == 4) rangee[(size_t)x * octets + 3] = (char)(x == y ? 0 : 255);
                }
                }
            }
            pixels.s += rangee;
        }
    }

    Octets tete;
    const bool masquesApart = champs && entete == 40;
    const int tailleEntree = entete == 12 ? 3 : 4;
    const uint32_t decalage = 14 + (uint32_t)entete + (masquesApart ? 12 : 0) + (uint32_t)(couleurs * tailleEntree);
    tete.s = "BM";
    tete.u32(decalage + (uint32_t)pixels.s.size());
    tete.u32(0);
    tete.u32(decalage);
    tete.u32((uint32_t)entete);
    if (entete == 12) {
        tete.u16(largeur);
        tete.u16(hauteur);
        tete.u16(1);
        tete.u16(bits);
    } else {
        tete.u32((uint32_t)largeur);
        tete.u32((uint32_t)(hautEnBas ? -hauteur : hauteur));
        tete.u16(1);
        tete.u16(bits);
        tete.u32((uint32_t)compression);
        tete.u32((uint32_t)pixels.s.size());
        tete.u32(2835);
        tete.u32(2835);
        tete.u32((uint32_t)(bits == 8 ? couleurs : 0));
        tete.u32(0);
        uint32_t masques[4] = {0, 0, 0, 0};
        if (champs && bits == 16) {
            masques[0] = 0xF800;
            masques[1] = 0x07E0;
            masques[2] = 0x001F;
        } else if (champs) {
            masques[0] = 0x00FF0000;
            masques[1] = 0x0000FF00;
            masques[2] = 0x000000FF;
            masques[3] = 0xFF000000;
        }
        if (masquesApart)
            for (int i = 0; i < 3; ++i) tete.u32(masques[i]);
        if (entete >= 108) {
            for (uint32_t m : masques) tete.u32(m);
            tete.u32(0x73524742); // "sRGB"
            for (int i = 0; i < 12; ++i) tete.u32(0); // end points and gammas
            if (entete == 124)
                for (int i = 0; i < 4; ++i) tete.u32(0); // intent, profile, reserved
        }
    }
    for (int i = 0; i < couleurs; ++i) {
        tete.u8(i * 40 & 255);
        tete.u8(255 - i * 16);
        tete.u8(i * 90 & 255);
        if (tailleEntree == 4) tete.u8(0);
    }
    return tete.s + pixels.s;
}

// ---- Seeds of each target ------------------------------------------------------------

void GrainesBmp() {
    Graine("bmp", "b1.bmp", Bmp(9, 3, 1, BI_RGB, 40));
    Graine("bmp", "b4.bmp", Bmp(7, 4, 4, BI_RGB, 40, true));
    Graine("bmp", "b8-core.bmp", Bmp(6, 3, 8, BI_RGB, 12));
    Graine("bmp", "b8-rle.bmp", Bmp(8, 4, 8, BI_RLE8, 40));
    Graine("bmp", "b4-rle.bmp", Bmp(7, 3, 4, BI_RLE4, 40));
    Graine("bmp", "b16.bmp", Bmp(5, 3, 16, BI_RGB, 40));
    Graine("bmp", "b16-champs.bmp", Bmp(5, 3, 16, BI_BITFIELDS, 40));
    Graine("bmp", "b32-v5.bmp", Bmp(4, 4, 32, BI_BITFIELDS, 124, true));
    Graine("bmp", "b32-v4.bmp", Bmp(3, 2, 32, BI_RGB, 108));
    EcritImageExemple("b24.bmp", "image/bmp", 6, 5);
    Graine("bmp", "b24.bmp", LitFichier("b24.bmp"));
}

void GrainesImages() {
    struct Type {
        const char* mime;
        const char* nom;
    };
    static const Type types[] = {
        {"image/png", "png"}, {"image/jpeg", "jpg"}, {"image/gif", "gif"}, {"image/tiff", "tif"}};
    for (const Type& t : types) {
        std::string fichier = std::string("image.") + t.nom;
        if (!EcritImageExemple(fichier.c_str(), t.mime, 8, 6)) {
            fprintf(stderr, "no %s writer in this build\n", t.nom);
            continue;
        }
        std::string contenu = LitFichier(fichier);
        Graine("images", std::string("memoire-") + t.nom, Octet(0) + contenu);
        if (std::string(t.nom) == "png") Graine("images", "fichier-png", Octet(1) + contenu);
        if (std::string(t.nom) == "gif") Graine("images", "gardee-gif", Octet(3) + contenu);
    }
    EcritImageExemple("image.bmp", "image/bmp", 5, 4);
    Graine("images", "fichier-bmp", Octet(2) + LitFichier("image.bmp"));
    Graine("images", "memoire-bmp", Octet(0) + Bmp(6, 3, 8, BI_RLE8, 40));
}

// Element files of an 8 x 8 picture in both formats, read back through the
// loaders by the gabarit target, and lists of "Ennemis".
void GrainesGabaritEtListe() {
    ReinitialiseEtat();
    EcritImageExemple("image.bmp", "image/bmp", 8, 8);
    DefinitFormatEssai();
    DefinitModeleEnnemis();
    for (int essai = 0; essai < 2; ++essai) {
        ChoisitFormat(essai ? FORMAT_ESSAI : "Standard");
        ExecuteConv("-tset src=image");
        ExecuteConv("-b8 src=image col=16");
        ExecuteConv("-b16 src=image");
        const SectionFormat* s = FormatCourant.sections;
        const std::string base = "image";
        const std::string pal = base + s[SECTION_PALETTE].ext, til = base + s[SECTION_TILESET].ext,
                          map = base + s[SECTION_MAP].ext;
        const std::string fichiers[7] = {pal, til, til, til, map, base + s[SECTION_BITMAP8].ext,
                                         base + s[SECTION_BITMAP16].ext};
        static const char* const noms[7] = {"palette", "mosaique-brute", "mosaique", "mosaique-seule",
                                            "carte",   "bitmap8",        "bitmap16"};
        const std::string format = essai ? "-essai" : "-standard";
        for (int c = 0; c < 7; ++c)
            Graine("gabarit", noms[c] + format, Octet(c) + Octet(essai) + LitFichier(fichiers[c]));
        Graine("gabarit", "carte-extension" + format, Octet(4) + Octet(essai | 2) + LitFichier(map));

        std::string liste = base + s[SECTION_LIST].ext;
        EcritListeExemple(liste.c_str(), til.c_str());
        std::string contenu = LitFichier(liste);
        Graine("liste", "liste" + format, Octet(essai) + contenu);
        Graine("liste", "liste-extension" + format, Octet(essai | 2) + contenu);
        if (!essai) {
            // A field lost in the second object: the recovery pass takes over.
            size_t p = contenu.find("-5,");
            if (p != std::string::npos) contenu.erase(p, 3);
            Graine("liste", "liste-abimee-standard", Octet(0) + contenu);
            // The model as the input defines it: a parameter more, so the
            // recovery pass reads it.
            Graine("liste", "liste-modele-standard",
                   Octet(4) + "defmodele \"Ennemis\" {\n 1, 4, \"vie\", \"7\"\n 2, 8, \"nom\", \"\"\n"
                   " 1, 4, \"force\", \"3\"\n}\n" + Octet(0) + LitFichier(liste));
        }
    }
    ChoisitFormat("Standard");
}

std::string SansDossier(std::string texte) {
    char dossier[TAILLE_CHEMIN_PROJET];
    if (RepertoireCourant(dossier, sizeof dossier))
        for (size_t p; (p = texte.find(dossier)) != std::string::npos;) texte.replace(p, strlen(dossier), ".");
    return texte;
}

void GrainesProjet() {
    ReinitialiseEtat();
    SauveProjet("vide.tsl");
    Graine("projet", "vide.tsl", SansDossier(LitFichier("vide.tsl")));

    // Settings away from their defaults, rows of every kind, a model, a
    // format, and statements of its own in `données`.
    ReinitialiseEtat();
    EcritImageExemple("image.bmp", "image/bmp", 8, 8);
    ExecuteTexte("convert.couleurmasque = RGB(10,20,30)\nconvert.luminosite GAMMA=RGB(2.0,1.0,4.0) ADD=10%\n"
                 "convert.mode = 2\nconvert.nuances = 16\nsystem.objetsmax = 300\nsystem.memoiremax = 8 MB\n"
                 "editeur.timing = 25\ndossierd\xE9" "f[2] = \"cartes\"\n"
                 "defmodele \"Ennemis\" {\n 1, 4, \"vie\", \"100\"\n 2, 8, \"nom \\\"x\\\"\", \"a\"\n}\n"
                 "selmodele \"Ennemis\"\n"
                 "defformat \"Essai\" {\n palette {\n  element = \"%i,\"\n  ext = \".p2\"\n }\n}\n"
                 "conv -tset src=image\nconv -b8 src=image col=8\nselformat \"Essai\"\n");
    AjouteElement(NouvelElement(ELEMENT_DOSSIER, "niveaux", ""));
    static const char donnees[] = "  defformat \"Essai\" {\n    map {\n      element = \"%i \"\n      ext = \".m2\"\n"
                                  "    }\n  }\n  selformat \"Essai\"\n  conv -b16 src=image dst=titre\n"
                                  "  goto suite\n  msgbox \"jamais\"\n  suite:\n"
                                  "  liste.ajparam \"vitesse\", 1, 2\n  End\n";
    DonneesProjet = (char*)malloc(sizeof donnees);
    memcpy(DonneesProjet, donnees, sizeof donnees);
    TailleDonneesProjet = sizeof donnees - 1;
    SauveProjet("complet.tsl");
    std::string complet = SansDossier(LitFichier("complet.tsl"));
    Graine("projet", "complet.tsl", complet);

    // The same as a modern editor may leave it: a byte order mark and CR LF.
    std::string crlf = "\xEF\xBB\xBF";
    for (char c : complet) {
        if (c == '\n') crlf += '\r';
        crlf += c;
    }
    Graine("projet", "complet-crlf.tsl", crlf);

    // The older binary form: magic, count, then rows of 560 bytes.
    Octets ancien;
    ancien.s = "Tessellarium 02";
    ancien.u32(3);
    struct Rangee {
        const char* base;
        const char* fichier;
        const char* nom;
        uint32_t type; // element type less 1
    };
    static const Rangee rangees[3] = {{"image.bmp", "image.map.c", "image", TYPE_CARTE - 1},
                                      {"image.bmp", "image.til.c", "image", TYPE_MOSAIQUE - 1},
                                      {"", "image.pal.c", "couleurs", TYPE_PALETTE - 1}};
    for (const Rangee& r : rangees) {
        std::string enregistrement(560, '\0');
        memcpy(&enregistrement[4], r.base, strlen(r.base));
        memcpy(&enregistrement[264], r.fichier, strlen(r.fichier));
        memcpy(&enregistrement[524], r.nom, strlen(r.nom));
        Octets type;
        type.u32(r.type);
        enregistrement.replace(556, 4, type.s);
        ancien.s += enregistrement;
    }
    Graine("projet", "ancien.tsl", ancien.s);
    free(DonneesProjet);
    DonneesProjet = nullptr;
    TailleDonneesProjet = 0;
}

void GrainesScript() {
    Graine("script", "reglages.spt",
           "# Settings of every kind\n"
           "convert.couleurMasque = RGB(10,20,30)\n"
           "convert.couleurzero = 0x102030\n"
           "convert.luminosite GAMMA=RGB(2.0,1.0,4.0) ADD=50% ALPHA=RGB(-5,0,30)\n"
           "convert.nuances = 16 ; shades\n"
           "convert.mode = tram\xE9\n"
           "convert.tilex = 16\n"
           "system.MemoireMax = 8 MB\n"
           "system.objetsmax = 300\n"
           "editeur.zoom = 2.5\n"
           "fonds.visible[3] = 0\n"
           "dossierd\xE9" "f[2] = \"cartes\"\n"
           "folders.maps = 'Cartes'\n"
           "modehexa.actif = true\n"
           "bits.textebit 9\n"
           "messages = 0\n"
           "script = \"jeu.spt\"\n"
           "msgbox \"question\", \"titre\" sinon goto plus_loin\n"
           "msgbox \"jamais vu\"\n"
           "_plus_loin:\n"
           "retour 5\n");
    Graine("script", "formats.spt",
           "defformat \"Essai\" {\n"
           "  palette {\n    declaration = \"PAL %size%\\n\"\n    element = \"%x;\"\n    n_every = 4\n"
           "    every_x = \"\\n\"\n    ext = \".epa\"\n  }\n"
           "  tileset {\n    element = \"%02x\"\n    line = \"\\b}\\n{\"\n    ext = \".eti\"\n  }\n"
           "  map {\n    element = \"%2b\"\n    ext = \".ema\"\n  }\n"
           "  user[1] = \"essai\"\n"
           "}\n"
           "selformat \"Essai\"\n"
           "conv -tset src=image dst=sortie\n"
           "conv -b8 src=image col=8\n"
           "selformat \"Standard\"\n"
           "convert.mode = 1\n"
           "conv -b16 src=image\n");
    Graine("script", "modeles.spt",
           "defmodele \"Ennemis\" {\n"
           "  1, 4, \"vie\", \"100\"\n"
           "  2, 8, \"nom\", \"x\"\n"
           "}\n"
           "selmodele \"Ennemis\"\n"
           "liste.reinitparams\n"
           "liste.ajparam \"vitesse\", 1, 2\n"
           "modele \"Ennemis\"\n"
           "format \"Standard\"\n"
           "include \"inclus.spt\"\n"
           "include \"absent.spt\"\n"
           "exec \"commande\"\n"
           "quitte\n");
    Graine("script", "erreurs.spt",
           "inconnu = 3\n"
           "convert.inconnu = 3\n"
           "fonds.visible[99] = 1\n"
           "convert.mode = bizarre\n"
           "convert.luminosite BETA=1\n"
           "convert.luminosite GAMMA=RGB(1,x)\n"
           "script = pas de guillemets\n"
           "aideperso = \"non ferm\xE9\n"
           "defformat sans accolade\n"
           "defmodele \"M\"\n"
           "goto nulle_part\n"
           "convert.nuances = 4\n");
}

void GrainesConv() {
    static const char* const commandes[][2] = {
        {"tset", "-tset src=image"},
        {"tset-16c", "-tset src=image.bmp +16c dst=quatre"},
        {"tset-existants", "-tset src=image upal=pal util=til mapmode=32 tdim=16x16 mdim=32x24"},
        {"tset-speciaux", "-tset src=image !upal=pal !util=til cmode=4 -gmap -opt"},
        {"tset-direct", "-tset src=image cmode=15 name=direct txt"},
        {"b8", "-b8 src=image col=16 dst=huit namepal=couleurs"},
        {"b16", "-b16 src=image nameb16=seize"},
        {"noms", "-tset bmp=image map=carte pal=couleurs til=tuiles col=200 +opt +gmap mapmode=8"},
        {"palette-pleine", "-tset src=couleurs !upal=pal256 cmode=4 util=til"},
        {"b8-couleurs", "-b8 src=couleurs.bmp col=40 upal=pal256"},
    };
    for (const auto& c : commandes) Graine("conv", c[0], c[1]);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: fuzz_graines <folder>\n");
        return 2;
    }
    Sortie = std::filesystem::absolute(argv[1]);
    PrepareCible("graines");
    GrainesBmp();
    GrainesImages();
    GrainesGabaritEtListe();
    GrainesProjet();
    GrainesScript();
    GrainesConv();
    return 0;
}
