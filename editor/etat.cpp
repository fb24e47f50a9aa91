// The state script: one statement a line, four blanks in front.
#include "editor/etat.h"

#include "core/reglages.h"
#include "editor/plans.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "script/evenements.h"
#include "script/fonctions.h"
#include "script/syntaxe.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

PlaceEditeur PositionEditeur;

namespace {

const char* Booleen(int v) { return v ? "true" : "false"; }

} // namespace

int EcritEtatEditeur() {
    if (!ReglagesSys.sauverParamsMaps || NbPlans <= 0 || !PlanElement[0]) return 1;
    char chemin[TAILLE_TEXTE_PLAN];
    NomScriptParams(PlanElement[0]->fichier, chemin, sizeof chemin);
    EcritureSure ecriture;
    FILE* f = CommenceEcritureSure(ecriture, chemin);
    if (!f) {
        BoiteMessage("Unable to open the file for writing.\nThe file name is probably erroneous.", chemin,
                     BOITE_OK | ICONE_ARRET);
        return 0;
    }
    for (int i = 0; i < NbPlans; ++i) {
        if (!PlanRouvrir[i] || !PlanElement[i]) continue;
        const Plan& p = Plans[i];
        const int n = i + 1;
        fprintf(f, "    Maps.Add \"%s\", %i\n", PlanElement[i]->nom, n);
        if (!ReglagesPlans.visible[i]) fprintf(f, "    Maps[%i].Visible = false\n", n);
        if (p.vitesseX != 1.0 || p.vitesseY != 1.0) fprintf(f, "    Maps[%i].ScrollRate %f, %f\n", n, p.vitesseX, p.vitesseY);
        if (p.grilleX != p.tilex || p.grilleY != p.tiley) fprintf(f, "    Maps[%i].Grid %i, %i\n", n, p.grilleX, p.grilleY);
        for (int k = 0; k < NbConditions[i] && k < NB_CONDITIONS_MAX; ++k) {
            const Condition& c = Conditions[i][k];
            fprintf(f, "    Maps[%i].AddCondition 0x%x,0x%x 0x%x%s\n", n, (unsigned)c.valeurMin, (unsigned)c.valeurMax,
                    (unsigned)(c.valeurMin - c.decalage), c.sansIncrement ? "=" : "");
        }
        if (p.emulgba) fprintf(f, "    Maps[%i].EmulGBA = %s\n", n, Booleen(p.emulgba));
    }
    const ReglagesFonds& fonds = ReglagesPlans;
    const ReglagesEditeur& e = ReglagesEdit;
    if (fonds.transparence) fprintf(f, "    Maps.Transparency = %s\n", Booleen(fonds.transparence));
    if (ReglagesHexa.actif) fprintf(f, "    ModeHexa.Enabled = %s\n", Booleen(ReglagesHexa.actif));
    if (ReglagesHexa.fondActif) fprintf(f, "    ModeHexa.ActiveMap = %s\n", Booleen(ReglagesHexa.fondActif));
    if (ReglagesHexa.combleZeros) fprintf(f, "    ModeHexa.FillZeros = %s\n", Booleen(ReglagesHexa.combleZeros));
    if (e.grille) fprintf(f, "    Editor.Grid = %s\n", Booleen(e.grille));
    if (e.couleurGrille != 0x404040)
        fprintf(f, "    Editor.GridColor = RGB(%i,%i,%i)\n", e.couleurGrille & 255, e.couleurGrille >> 8 & 255,
                e.couleurGrille >> 16 & 255);
    if (e.alphaGrille != 0x60) fprintf(f, "    Editor.AlphaGrid = %i\n", e.alphaGrille);
    if (fonds.alphaPremierPlan != 0xA0) fprintf(f, "    Maps.AlphaForeground = %i\n", fonds.alphaPremierPlan);
    if (fonds.alphaGfx != 0x80) fprintf(f, "    Maps.AlphaGfx = %i\n", fonds.alphaGfx);
    if (fonds.alphaHex != 0x60) fprintf(f, "    Maps.AlphaHex = %i\n", fonds.alphaHex);
    if (e.zoom != 1.0) fprintf(f, "    Editor.Zoom = %#.2f\n", e.zoom);
    if (e.zoomPrecis) fprintf(f, "    Editor.PreciseZoom = %s\n", Booleen(e.zoomPrecis));
    const PlaceEditeur& w = PositionEditeur;
    fprintf(f, "    Editor.Move %i, %i, %i, %i, %s\n", w.largeur, w.hauteur, w.x, w.y, Booleen(w.maximisee));
    // Each group of links once; a plane alone is no group.
    for (int r = 0; r < NB_PLANS_MAX; ++r) {
        bool vue = false;
        for (int k = 0; k < r && !vue; ++k) vue = memcmp(Liens[k], Liens[r], NB_PLANS_MAX) == 0;
        int n = 0;
        while (n < NB_PLANS_MAX && Liens[r][n] != FIN_LIENS) ++n;
        if (vue || n < 2) continue;
        fputs("    Fonds.Link ", f);
        for (int k = 0; k < n; ++k) fprintf(f, k + 1 < n ? "%i, " : "%i\n", Liens[r][k] + 1);
    }
    fputs("    End\n\n\n\n", f);
    if (!TermineEcritureSure(ecriture)) {
        BoiteMessage("Unable to open the file for writing.\nThe file name is probably erroneous.", chemin,
                     BOITE_OK | ICONE_ARRET);
        return 0;
    }
    return 1;
}

void EnregistreEditeur() {
    EnregistreLies();
    EcritEtatEditeur();
}
