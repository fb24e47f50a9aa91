// Start sequence. Batch mode ends here: defaults, the project, the chain of
// conv links, the save. Only the other road reaches the window layer.
#include "app/demarrage.h"

#include "convert/conv.h"
#include "convert/couleurs.h"
#include "convert/images.h"
#include "core/elements.h"
#include "core/modeles.h"
#include "core/projet.h"
#include "core/reglages.h"
#include "editor/editeur.h"
#include "editor/plans.h"
#include "format/formats.h"
#include "format/variables.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "render/surfaces.h"
#include "script/crochets.h"
#include "script/interpreteur.h"
#include "shell/fenetre.h"

#include <cstdio>
#include <cstring>
#include <string>

ModeDemarrage AnalyseLigneCommande(const char* ligne, char* projet, size_t taille) {
    if (!ligne || !*ligne) {
        CopieBornee(projet, taille, NOM_PROJET_DEFAUT);
        return MODE_FENETRE;
    }
    if (ligne[0] == '-') {
        // A batch command line cannot name a project.
        CopieBornee(projet, taille, NOM_PROJET_DEFAUT);
        return MODE_LOT;
    }
    if (ligne[0] == '"') {
        // The first and the last character go, whatever the last one is.
        size_t n = strlen(ligne);
        CopieBorneeN(projet, taille, ligne + 1, n >= 2 ? n - 2 : 0);
        return MODE_FENETRE;
    }
    CopieBornee(projet, taille, ligne);
    return MODE_FENETRE;
}

void ExecuteChaineLot(const char* ligne) {
    std::string chaine = ligne ? ligne : "";
    size_t debut = 0;
    while (debut < chaine.size()) {
        // The first ':' outside double quotes ends the link; an unclosed quote
        // runs to the end, and there is no escape for a quote.
        size_t p = debut;
        while (p < chaine.size() && chaine[p] != ':') {
            if (chaine[p] == '"') {
                size_t fin = chaine.find('"', p + 1);
                p = fin == std::string::npos ? chaine.size() : fin;
                if (p == chaine.size()) break;
            }
            ++p;
        }
        std::string lien = chaine.substr(debut, p - debut);
        ExecuteConv(lien.c_str());
        debut = p + 1; // past the ':' or past the end
    }
}

namespace {

void ConvDepuisScript(const char* texte) { ExecuteConv(texte); }

// The calls from lower libraries up to the ones that own them.
void InstalleCrochets() {
    InstalleInterpreteur();
    InstalleFormats();
    CrochetsScript.conv = ConvDepuisScript;
    CrochetsScript.reconstruitTablesCouleur = ConstruitTablesCouleur;
    InstalleEditeur();
}

} // namespace

int DelaiVerrouProjet = 60000;

int Demarre(const char* ligne, const char* argv0, bool strict) {
    Rigueur = RigueurLot{};
    Rigueur.stricte = strict;
    InstalleCrochets();
    NbElements = 0;
    EditeurOuvert = false;
    PlateformeCourante.afficheAttente(1);

    char programme[TAILLE_CHEMIN_PROJET];
    CheminExecutable(argv0, programme, sizeof programme);
    CopieBornee(RepertoireProgramme, programme);
    if (char* sep = (char*)DernierSeparateur(RepertoireProgramme)) *sep = 0;
    InitialiseImages(); // are the image libraries at hand?

    // Defaults of every setting, default folders and the main script's names.
    ReinitialiseReglages();
    InitialiseModeles();
    ConstruitTablesCouleur(); // from the defaults, before the project is read
    messages = 0; // until the first script has ended

    char projet[TAILLE_CHEMIN_PROJET];
    ModeDemarrage mode = AnalyseLigneCommande(ligne, projet, sizeof projet);
    DefinitProjet(projet);
    InitialiseFormats();

    // Batch runs started together in one folder (make -j) take turns: each
    // loads, converts and saves while the others wait, so none loses the rows
    // of another.
    int verrou = -2;
    if (mode == MODE_LOT) {
        verrou = VerrouilleDossierDe(CheminProjet, DelaiVerrouProjet);
        if (verrou == -1) {
            const int secondes = DelaiVerrouProjet / 1000;
            BoiteMessageF("Project file", BOITE_OK | ICONE_ATTENTION,
                          "Another run has held %s for %i seconds.\nThis run goes on without waiting for it.",
                          CheminProjet, secondes);
            SignaleEchec("%s: still in use by another run after %i seconds", CheminProjet, secondes);
            if (strict) return 1;
        }
    }

    ChargeProjet(CheminProjet);
    DefinitProjet(CheminProjet);
    SauveVariables(); // the template variables as the project's scripts left them
    CreeSurfaceApercu();

    if (mode == MODE_LOT) {
        ExecuteChaineLot(ligne);
        // Rewritten on every batch run, whatever the links did.
        SauveProjet(CheminProjet);
        LibereVerrou(verrou);
        return strict && Rigueur.echecs > 0 ? 1 : 0;
    }
    return LanceFenetrePrincipale();
}

// ---- Options ---------------------------------------------------------------------

namespace {

const char* const USAGE =
    "Usage: tessellarium [options] \"-<kind> src=<picture> [parameters][:-<kind> ...]\"\n"
    "       tessellarium [project.tsl]\n"
    "\n"
    "A command line that begins with '-' is a batch run: a chain of conv links\n"
    "separated by ':', run with no window. The project is always projet.tsl in\n"
    "the folder the program starts in; it is loaded first and saved with the new\n"
    "elements. Any other command line opens a project in the desktop program.\n"
    "\n"
    "Kinds: tset (tileset, palette and map), b8 (8-bit bitmap and palette),\n"
    "       b16 (16-bit bitmap). Put the kind first.\n"
    "Main parameters:\n"
    "  src=<picture>        BMP, PNG, JPEG, GIF or TIFF; without an extension the\n"
    "                       first of .bmp .png .jpg .gif .tif .jpeg .tiff found\n"
    "  dst= map= pal=       output names without extension\n"
    "  name=                the C names in the files\n"
    "  col=1..255           colour limit (255)\n"
    "  +16c, cmode=4|8|15   4-bit tiles of 15 colours; 15: direct colours\n"
    "  tdim=16x16           tile size, multiples of 8 up to 128\n"
    "  mdim=256x256         area converted\n"
    "  mapmode=8|16|32      map cell width\n"
    "  -gmap, -opt          no map; keep duplicate tiles\n"
    "  upal=, util=         extend an existing palette or tileset element\n"
    "\n"
    "Options:\n"
    "  --strict   for Makefiles: each failure also writes a line naming its file\n"
    "             and the reason, unknown parameters and wrong values fail their\n"
    "             link, and the exit code is 1 if any link failed\n"
    "  --help     this text\n"
    "  --version  the program's name and version\n"
    "\n"
    "Example, in a Makefile:\n"
    "  gfx/%.til.c: gfx/%.png\n"
    "  \tcd gfx && tessellarium --strict \"-tset src=$* +16c\"\n";

// Where the guide is: installed beside the program, else in the sources it
// was built from.
std::string CheminGuide(const char* argv0) {
    char programme[TAILLE_CHEMIN_PROJET];
    CheminExecutable(argv0, programme, sizeof programme);
    if (char* sep = (char*)DernierSeparateur(programme)) *sep = 0;
    const std::string installe = std::string(programme) + "/../share/doc/tessellarium/README.md";
    char complet[TAILLE_CHEMIN_PROJET];
    if (FichierExiste(installe.c_str()) && CheminComplet(installe.c_str(), complet, sizeof complet)) return complet;
    return TESS_SOURCES "/README.md";
}

} // namespace

OptionsProgramme LitArguments(int argc, char** argv, std::string& ligne) {
    OptionsProgramme options;
    ligne.clear();
    bool premier = true;
    for (int i = 1; i < argc; ++i) {
        const char* a = argv[i];
        if (strncmp(a, "--", 2) != 0) {
            if (!premier) ligne += ' ';
            ligne += a;
            premier = false;
        } else if (strcmp(a, "--strict") == 0) {
            options.strict = true;
        } else if (strcmp(a, "--help") == 0) {
            options.aide = true;
        } else if (strcmp(a, "--version") == 0) {
            options.version = true;
        } else if (!options.inconnue) {
            options.inconnue = a;
        }
    }
    return options;
}

int Principal(int argc, char** argv) {
    std::string ligne;
    const OptionsProgramme options = LitArguments(argc, argv, ligne);
    const char* argv0 = argc > 0 ? argv[0] : nullptr;
    if (options.inconnue) {
        fprintf(stderr, "tessellarium: unknown option %s (tessellarium --help lists them)\n", options.inconnue);
        return 2;
    }
    if (options.aide) {
        fputs(USAGE, stdout);
        printf("\nThe guide: %s\n", CheminGuide(argv0).c_str());
        return 0;
    }
    if (options.version) {
        puts("Tessellarium " TESS_VERSION);
        return 0;
    }
    if (options.strict && ligne.compare(0, 1, "-") != 0) {
        fputs("tessellarium: --strict is for a batch command line, one that begins with '-'\n", stderr);
        return 2;
    }
    return Demarre(ligne.c_str(), argv0, options.strict);
}
