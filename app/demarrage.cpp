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
#include "format/formats.h"
#include "format/variables.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "render/surfaces.h"
#include "script/crochets.h"
#include "script/interpreteur.h"
#include "shell/fenetre.h"

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
}

} // namespace

int Demarre(const char* ligne, const char* argv0) {
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

    ChargeProjet(CheminProjet);
    DefinitProjet(CheminProjet);
    SauveVariables(); // the template variables as the project's scripts left them
    CreeSurfaceApercu();

    if (mode == MODE_LOT) {
        ExecuteChaineLot(ligne);
        // Rewritten on every batch run, whatever the links did.
        SauveProjet(CheminProjet);
        return 0;
    }
    return LanceFenetrePrincipale();
}
