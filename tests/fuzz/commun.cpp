// Shared parts of the fuzz targets.
//
// Sections: the quiet platform; the scratch folder; hooks and the reset of
// the globals; input filters; sample files.
#include "tests/fuzz/commun.h"

#include "convert/conv.h"
#include "convert/couleurs.h"
#include "convert/images.h"
#include "core/crochets.h"
#include "core/elements.h"
#include "core/modeles.h"
#include "core/projet.h"
#include "core/reglages.h"
#include "editor/editeur.h"
#include "editor/plans.h"
#include "platform/fichiers.h"
#include "format/ecriture.h"
#include "format/formats.h"
#include "format/lecture.h"
#include "format/liste.h"
#include "format/variables.h"
#include "platform/image.h"
#include "platform/imagefichier.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "render/apercus.h"
#include "render/blitters.h"
#include "render/chargeurs.h"
#include "render/surfaces.h"
#include "script/crochets.h"
#include "script/fonctions.h"
#include "script/interpreteur.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <filesystem>
#include <map>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// ---- The quiet platform -------------------------------------------------------------

namespace {

// The first button, as a headless run answers, without a word.
int BoiteMuette(const char*, const char*, int style) {
    int boutons = style & MASQUE_BOUTONS;
    return boutons == BOITE_OUINON || boutons == BOITE_OUINONANNULER ? REPONSE_OUI : REPONSE_OK;
}
void RienAttente(int) {}
int DialogueAnnule(int, char* sortie, size_t taille, const char*, const char*, const char*) {
    if (sortie && taille) sortie[0] = 0;
    return 0;
}
int AucuneCommande(const char*) { return 0; }

const Plateforme PlateformeMuette = {BoiteMuette,          RienAttente,
                                     DialogueAnnule,       AucuneCommande,
                                     RienAttente,          PlateformeSansFenetre.millisecondes,
                                     PlateformeSansFenetre.memoireLibre, PlateformeSansFenetre.dessineTexte,
                                     PlateformeSansFenetre.largeurTexte, PlateformeSansFenetre.modificateurs};

// ---- The scratch folder --------------------------------------------------------------

std::string Dossier;
constexpr int COTE_SURFACE = 64;

// A kept file, and what stat said of it when it was last written: a file
// that still looks the same is not written again. Its time is set far in
// the past, so that a write in place shows even within one clock tick.
struct Garde {
    std::string contenu;
    struct stat etat;
};
std::map<std::string, Garde> Gardes;

bool MemeEtat(const struct stat& a, const struct stat& b) {
    return a.st_ino == b.st_ino && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
           a.st_mtim.tv_nsec == b.st_mtim.tv_nsec && a.st_mode == b.st_mode;
}

// The colour tables as start-up builds them (rebuilding means pow calls).
uint8_t TablesDefaut[3][256];

void EffaceDossier() {
    if (Dossier.empty()) return;
    std::error_code ec;
    std::filesystem::remove_all(Dossier, ec);
}

// ---- Hooks ------------------------------------------------------------------------------

// conv writes wherever its text, the format's extensions and the element
// rows say: only paths that stay inside the scratch folder are let through.
void ConvLocale(const char* texte) {
    if (!CheminsLocaux(texte)) return;
    for (int i = 0; i < NbElements; ++i)
        if (!CheminsLocaux(Elements[i].fichier)) return;
    for (const SectionFormat& s : FormatCourant.sections)
        if (strchr(s.ext, '/') || strchr(s.ext, '\\')) return;
    ExecuteConv(texte);
}

void InstalleCrochetsFuzz() {
    InstalleInterpreteur();
    InstalleFormats();
    CrochetsScript.conv = ConvLocale;
    CrochetsScript.reconstruitTablesCouleur = ConstruitTablesCouleur;
    InstalleEditeur(); // the fonds rows, with no editor open
}

// libFuzzer reads its arguments after LLVMFuzzerInitialize, and the working
// directory is then the scratch folder: paths given relative to where the
// target was started are made full, and crash files go there by default.
void ArgumentsComplets(int* argc, char*** argv) {
    static std::vector<std::string> textes;
    static std::vector<char*> pointeurs;
    const std::string depart = std::filesystem::current_path().string() + "/";
    auto complet = [&](const std::string& chemin) {
        return chemin.empty() || chemin[0] == '/' ? chemin : depart + chemin;
    };
    static const char* const drapeaux[] = {"-artifact_prefix=", "-exact_artifact_path=", "-dict=",
                                           "-merge_control_file=", "-features_dir="};
    bool prefixe = false;
    for (int i = 0; i < *argc; ++i) {
        std::string a = (*argv)[i];
        if (i > 0 && !a.empty() && a[0] != '-') a = complet(a);
        for (const char* d : drapeaux) {
            size_t n = strlen(d);
            if (a.compare(0, n, d) == 0) {
                a = d + complet(a.substr(n));
                if (d == drapeaux[0]) prefixe = true;
            }
        }
        textes.push_back(a);
    }
    if (!prefixe) textes.push_back("-artifact_prefix=" + depart);
    for (std::string& t : textes) pointeurs.push_back(t.data());
    pointeurs.push_back(nullptr);
    *argc = (int)textes.size();
    *argv = pointeurs.data();
}

} // namespace

void PrepareCible(const char* nom, int* argc, char*** argv) {
    if (argc && argv) ArgumentsComplets(argc, argv);
    PlateformeCourante = PlateformeMuette;
    PixelsImageMax = PIXELS_FUZZ;
    BasculeSeparee = false; // no kill to survive here, and a fork costs most of a run
    std::error_code ec;
    std::filesystem::path base = "/dev/shm";
    if (!std::filesystem::is_directory(base, ec)) base = std::filesystem::temp_directory_path();
    // A target that crashes ends without its exit handlers: the folders of
    // targets no longer running (named by their process) go first.
    if (std::filesystem::exists("/proc/self", ec))
        for (const auto& e : std::filesystem::directory_iterator(base, ec)) {
            const std::string n = e.path().filename().string();
            if (n.compare(0, 10, "tess_fuzz_") != 0) continue;
            const std::string pid = n.substr(n.rfind('_') + 1);
            if (!pid.empty() && pid.find_first_not_of("0123456789") == std::string::npos &&
                !std::filesystem::exists("/proc/" + pid, ec))
                std::filesystem::remove_all(e.path(), ec);
        }
    Dossier = (base / ("tess_fuzz_" + std::string(nom) + "_" + std::to_string(getpid()))).string();
    std::filesystem::remove_all(Dossier, ec);
    if (!std::filesystem::create_directory(Dossier, ec)) abort();
    if (chdir(Dossier.c_str()) != 0) abort();
    atexit(EffaceDossier);

    InstalleCrochetsFuzz();
    InitialiseImages();
    ReinitialiseReglages();
    InitialiseModeles();
    InitialiseFormats();
    ConstruitTablesCouleur();
    memcpy(TablesDefaut[0], TableRouge, 256);
    memcpy(TablesDefaut[1], TableVerte, 256);
    memcpy(TablesDefaut[2], TableBleue, 256);
    SauveVariables();
    ReinitialiseEtat();
}

void ReinitialiseEtat(bool formats) {
    PlateformeCourante = PlateformeMuette;
    Fonctions = FonctionsParDefaut;
    CrochetsFormulaire = FormulaireAbsent;
    Crochets = CrochetsParDefaut;
    CrochetsScript = CrochetsScriptParDefaut;
    InstalleCrochetsFuzz();

    NbElements = 0;
    EditeurOuvert = false;
    ReinitialiseReglages();
    ReinitialiseDocument();
    memcpy(TableRouge, TablesDefaut[0], 256);
    memcpy(TableVerte, TablesDefaut[1], 256);
    memcpy(TableBleue, TablesDefaut[2], 256);
    InitialiseModeles();
    if (formats) {
        // The user formats' pools are kept for the next input's.
        InitialiseFormats();
    } else {
        ChoisitFormat("Standard");
    }
    RestaureVariables();
    memset(TextesUser, 0, sizeof TextesUser);
    SilenceLecture = false;
    GabaritListe[0] = 0;

    free(DonneesProjet);
    DonneesProjet = nullptr;
    TailleDonneesProjet = 0;
    std::string projet = Dossier + "/" + NOM_PROJET_DEFAUT;
    CopieBornee(CheminProjet, projet.c_str());

    // As the project's scripts leave them at start-up.
    FinScript = 0;
    ResultatScript = 1;
    IndiceCourant = 0;
    FichierScriptCourant = nullptr;
    messages = 1;
    SelectionArbreActive = true;
    EtiquetteCherchee[0] = 0;
    FormatNote[0] = ModeleNote[0] = 0;

    LibereImageGardee();
    // A small preview surface rather than the window's 1280 x 1024: loaders
    // and conversions size it themselves, and clearing the big one would
    // cost more than most inputs.
    if (!SurfaceApercu.pixels || LargeurApercu != COTE_SURFACE || HauteurApercu != COTE_SURFACE ||
        SurfaceApercu.largeur != COTE_SURFACE || SurfaceApercu.hauteur != COTE_SURFACE) {
        if (!CreeImage(SurfaceApercu, COTE_SURFACE, COTE_SURFACE, 24)) abort();
        LargeurApercu = HauteurApercu = COTE_SURFACE;
    }
    ChoisitCadre(0, 0, COTE_SURFACE, COTE_SURFACE);
    TypeApercu = APERCU_AUCUN;
    MemoireRefusee = 0;
    EmulGba = 1;
    ModeDirect = 0;
    DerniereCarte.chemin[0] = 0;
}

namespace {

void NoteEtat(const std::string& nom, Garde& g) {
    static const struct timespec ancien[2] = {{1, 0}, {1, 0}};
    if (utimensat(AT_FDCWD, nom.c_str(), ancien, 0) != 0 || stat(nom.c_str(), &g.etat) != 0)
        memset(&g.etat, 0, sizeof g.etat);
}

} // namespace

void GardeFichier(const std::string& nom) {
    Garde& g = Gardes[nom];
    g.contenu = LitFichier(nom);
    NoteEtat(nom, g);
}

void RemetFichiers() {
    if (DIR* d = opendir(".")) {
        while (dirent* e = readdir(d)) {
            std::string nom = e->d_name;
            if (nom == "." || nom == ".." || Gardes.count(nom)) continue;
            std::error_code ec;
            std::filesystem::remove_all(nom, ec);
        }
        closedir(d);
    }
    for (auto& [nom, g] : Gardes) {
        struct stat etat;
        if (stat(nom.c_str(), &etat) == 0 && MemeEtat(etat, g.etat)) continue;
        // Rewritten, renamed over or removed: written again from scratch.
        std::error_code ec;
        std::filesystem::remove_all(nom, ec);
        EcritFichier(nom, g.contenu);
        NoteEtat(nom, g);
    }
}

void EcritFichier(const std::string& nom, const void* donnees, size_t taille) {
    FILE* f = fopen(nom.c_str(), "wb");
    if (!f) abort();
    if (taille && fwrite(donnees, 1, taille, f) != taille) abort();
    fclose(f);
}

void EcritFichier(const std::string& nom, const std::string& contenu) {
    EcritFichier(nom, contenu.data(), contenu.size());
}

std::string LitFichier(const std::string& nom) {
    std::string contenu;
    FILE* f = fopen(nom.c_str(), "rb");
    if (!f) return contenu;
    char tampon[65536];
    size_t n;
    while ((n = fread(tampon, 1, sizeof tampon, f)) > 0) contenu.append(tampon, n);
    fclose(f);
    return contenu;
}

std::string Texte(const uint8_t* donnees, size_t taille) {
    std::string s((const char*)donnees, taille);
    size_t zero = s.find('\0');
    if (zero != std::string::npos) s.resize(zero);
    return s;
}

// ---- Input filters ----------------------------------------------------------------------

bool SansPeripherique(const uint8_t* donnees, size_t taille) {
    static const char* const dossiers[] = {"dev", "proc", "sys"};
    for (size_t i = 0; i < taille; ++i) {
        if (donnees[i] != '/' && donnees[i] != '\\') continue;
        for (const char* d : dossiers) {
            size_t n = strlen(d);
            if (i + 1 + n < taille && memcmp(donnees + i + 1, d, n) == 0 &&
                (donnees[i + 1 + n] == '/' || donnees[i + 1 + n] == '\\'))
                return false;
        }
    }
    return true;
}

bool CheminsLocaux(const char* texte) {
    if (strstr(texte, "..")) return false;
    for (const char* p = texte; *p; ++p) {
        if (*p != '/' && *p != '\\') continue;
        // A separator must follow a name: anything else may begin a path.
        if (p == texte) return false;
        char c = p[-1];
        if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
              c == '.'))
            return false;
    }
    return true;
}

// ---- Sample files -------------------------------------------------------------------------

bool EcritImageExemple(const char* chemin, const char* mime, int largeur, int hauteur) {
    Image image;
    if (!CreeImage(image, largeur, hauteur, 24)) return false;
    // Four colours in 4 x 4 blocks, a diagonal of a fifth: tiles repeat and
    // differ.
    static const uint8_t couleurs[5][3] = {{0, 0, 0}, {255, 0, 0}, {0, 200, 40}, {30, 60, 250}, {255, 255, 255}};
    for (int y = 0; y < hauteur; ++y)
        for (int x = 0; x < largeur; ++x) {
            int c = x == y ? 4 : ((x / 4) + (y / 4)) % 4;
            uint8_t* p = image.pixels + (size_t)(hauteur - 1 - y) * image.pas + (size_t)x * 3;
            p[0] = couleurs[c][2];
            p[1] = couleurs[c][1];
            p[2] = couleurs[c][0];
        }
    int bon = EcritImageType(chemin, mime, image, largeur, hauteur);
    LibereImage(image);
    return bon != 0;
}

bool EcritImageCouleurs(const char* chemin, const char* mime) {
    Image image;
    if (!CreeImage(image, 16, 16, 24)) return false;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            uint8_t* p = image.pixels + (size_t)(15 - y) * image.pas + (size_t)x * 3;
            p[0] = (uint8_t)(x * 16);
            p[1] = (uint8_t)(y * 16);
            p[2] = (uint8_t)((x + y) * 8);
        }
    int bon = EcritImageType(chemin, mime, image, 16, 16);
    LibereImage(image);
    return bon != 0;
}

void PrepareElementsExemple() {
    if (!EcritImageExemple("image.bmp", "image/bmp")) abort();
    ExecuteConv("-tset src=image");
    ExecuteConv("-b8 src=image col=16");
    ExecuteConv("-b16 src=image");
    if (!EcritImageCouleurs("couleurs.bmp", "image/bmp")) abort();
    ExecuteConv("-b8 src=couleurs col=255");
    if (DIR* d = opendir(".")) {
        while (dirent* e = readdir(d))
            if (e->d_type == DT_REG) GardeFichier(e->d_name);
        closedir(d);
    }
}

void PrepareElementsEtInclusion(const char* script) {
    PrepareElementsExemple();
    EcritFichier("inclus.spt", script);
    GardeFichier("inclus.spt");
}

void DefinitFormatEssai() {
    // Binary, hexadecimal and decimal fields, conditions, user texts and
    // every_x, line and end templates that Standard does not use.
    static const char script[] =
        "defformat \"Essai\" {\n"
        "  type8 = \"u8\"\n"
        "  type16 = \"u16\"\n"
        "  type32 = \"u32\"\n"
        "  user[1] = \"/* essai */\"\n"
        "  user[2] = \"ok\"\n"
        "  bitmap16 {\n"
        "    declaration = \"B16 %name% %sizex% %sizey%\\n\"\n"
        "    element = \"%04X \"\n"
        "    line = \"\\b\\n\"\n"
        "    end = \".\"\n"
        "    ext = \".e16\"\n"
        "  }\n"
        "  bitmap8 {\n"
        "    declaration = \"B8 '%link%' %#2sizex%%#2sizey%;\"\n"
        "    element = \"%1b\"\n"
        "    n_every = 5\n"
        "    every_x = \"|\"\n"
        "    end = \"!\"\n"
        "    ext = \".e8\"\n"
        "  }\n"
        "  palette {\n"
        "    declaration = \"PAL %size%=%user[1]%\\n\"\n"
        "    element = \"%x;\"\n"
        "    n_every = 4\n"
        "    every_x = \"\\n\"\n"
        "    end = \"END\"\n"
        "    ext = \".epa\"\n"
        "  }\n"
        "  tileset {\n"
        "    declaration = \"TIL %$size% %depth% [%link%] %tilex%/%tiley% %+noerror%{\"\n"
        "    element = \"%02x \"\n"
        "    element2 = \"%02X \"\n"
        "    element3 = \"%04x,\"\n"
        "    line = \"\\b}\\n{\"\n"
        "    end = \"\\b\\b%+endnoerror%\"\n"
        "    ext = \".eti\"\n"
        "  }\n"
        "  map {\n"
        "    declaration = \"MAP %+if<>z%%type% %depth% [%link%] %sizex%*%sizey% %$tilebase% %#4gfxmask%%+else%z%+end%\\n\"\n"
        "    element = \"%2b\"\n"
        "    element2 = \"%1b\"\n"
        "    element3 = \"%4b\"\n"
        "    n_every = 16\n"
        "    every_x = \"\\n\"\n"
        "    end = \"\\n\"\n"
        "    ext = \".ema\"\n"
        "  }\n"
        "  list {\n"
        "    declaration = \"LST %size% '%link%' '%model%' %user[2]%\\n\"\n"
        "    element = \"(#x#,#y#,#type#,#vie#,#nom#)\"\n"
        "    line = \"\\n\"\n"
        "    end = \"END\\n\"\n"
        "    ext = \".eli\"\n"
        "  }\n"
        "}\n";
    FILE* f = fmemopen((void*)script, sizeof script - 1, "rb");
    if (!f) abort();
    ExecuteScript(f, nullptr);
}

void DefinitModeleEnnemis() {
    int slot = NbModeles < NB_MODELES_MAX ? NbModeles : NB_MODELES_MAX - 1;
    ModeleParametres& m = TableModeles[slot];
    memset(&m, 0, sizeof m);
    CopieBornee(m.nom, "Ennemis");
    AjouteParametre(m, "vie", PARAMETRE_ENTIER, 4, "7");
    AjouteParametre(m, "nom", PARAMETRE_BRUT, 8, "");
    if (slot == NbModeles) ++NbModeles;
}

void EcritListeExemple(const char* chemin, const char* lienMosaique) {
    struct Objet {
        int32_t x, y, type, vie;
        char nom[8];
    };
    static const Objet objets[3] = {{1, 2, 3, 40, "a"}, {-5, 600, 7, -1, "bcdefg"}, {0, 0, 0, 0, ""}};
    int avant = ModeleSelectionne;
    if (!SelectionneModele("Ennemis")) abort();
    ConstruitGabaritListe();
    FILE* f = fopen(chemin, "wb");
    if (!f) abort();
    RestaureVariables();
    ChargeTextesUser();
    MetTexteVariable("name", "essai");
    MetTexteVariable("link", lienMosaique);
    MetTexteVariable("type", FormatCourant.typesd);
    MetTexteVariable("model", "Ennemis");
    MetEntierVariable("size", 3);
    const SectionFormat& s = FormatCourant.sections[SECTION_LIST];
    EcritGabarit(s.declaration, f);
    const ModeleParametres& m = TableModeles[ModeleSelectionne];
    for (const Objet& o : objets) {
        uint8_t octets[sizeof(Objet)] = {};
        memcpy(octets, &o, sizeof o);
        EcritObjetListe(f, GabaritListe, m, octets);
        EcritGabarit(s.line, f);
    }
    EcritGabarit(s.end, f);
    fclose(f);
    RestaureVariables();
    ModeleSelectionne = avant;
}

void PrepareDeuxFormats() {
    PrepareElementsExemple();
    DefinitFormatEssai();
    ChoisitFormat(FORMAT_ESSAI);
    PrepareElementsExemple();
    ChoisitFormat("Standard");
}
