// The editor's input state machine.
//
// Sections: layout; bounds; mouse; wheel; keys and scroll bars; the tick.
#include "editor/entree.h"

#include "core/reglages.h"
#include "editor/composition.h"
#include "editor/edition.h"
#include "editor/etat.h"
#include "editor/liste.h"
#include "editor/notifications.h"
#include "editor/plans.h"
#include "platform/plateforme.h"

#include <algorithm>

Disposition DispositionEditeur;

namespace {

// Where the pointer was, the pan's anchor, the splitter's grip, the edges.
int SourisX = 0, SourisY = 0;
int Panoramique = 0; // 2 armed, 1 panning, 0 none
int AncreX = 0, AncreY = 0;
bool PartageTire = false;
int PartageX = 0;
int BordsSouris = 0; // 1 left, 2 top, 4 right, 8 bottom
int64_t MinuterieBords = 0;
int64_t DernierTickEntree = -1;

Plan* Actif() { return PlanActif >= 0 && PlanActif < NbPlans ? &Plans[PlanActif] : nullptr; }
bool ListeActive() { return Actif() && Actif()->typePlan == TYPE_LISTE; }

bool DansVue(int x, int y) { return x >= 10 && x < Vue.largeurVue + 10 && y >= 10 && y < Vue.hauteurVue + 10; }
bool DansSelecteur(int x, int y) {
    const int gauche = Vue.largeurVue + 54;
    return !ReglagesHexa.actif && x >= gauche && x < gauche + DispositionEditeur.largeurSelecteurEcran && y >= 10 &&
           y < Vue.hauteurVue + 10;
}
double Zoom() { return ReglagesEdit.zoom > 0 ? ReglagesEdit.zoom : 1.0; }

void PositionCurseur(int x, int y) {
    Vue.curseurX = (int)((x - 10) / Zoom());
    Vue.curseurY = (int)((y - 10) / Zoom());
}

int Bas(int v, int g) { return g > 0 ? v & ~(g - 1) : v; }
int Haut(int v, int g) { return g > 0 ? (v + g - 1) & ~(g - 1) : v; }

} // namespace

// ---- Layout ------------------------------------------------------------------------------------

void DisposeEditeur(int largeurClient, int hauteurClient) {
    Disposition& d = DispositionEditeur;
    if (d.largeurInitiale == 0) {
        d.largeurInitiale = largeurClient;
        d.hauteurInitiale = hauteurClient;
    }
    d.deltaL = largeurClient - d.largeurInitiale;
    d.deltaH = hauteurClient - d.hauteurInitiale;
    d.panneauSelecteur = std::max(64, std::min(d.panneauSelecteur, largeurClient - 128));
    const Plan* p = Actif();
    const int tx = p && p->tilex > 0 ? p->tilex : 8;
    Vue.largeurVue = d.deltaL - d.panneauSelecteur + 384;
    Vue.hauteurVue = d.deltaH + 256;
    Vue.largeurVueZ = (int)(Vue.largeurVue / Zoom());
    Vue.hauteurVueZ = (int)(Vue.hauteurVue / Zoom());
    Vue.largeurSelecteur = std::max(tx, (int)(d.panneauSelecteur / Zoom()) / tx * tx);
    d.largeurSelecteurEcran = std::max((int)(tx * Zoom()), (int)(Vue.largeurSelecteur * Zoom()));
    BorneDefilement();
}

// ---- Bounds -----------------------------------------------------------------------------------

void BorneCurseur() {
    const Plan* p = Actif();
    if (!p || p->tilex <= 0 || p->tiley <= 0) return;
    const int largeur = p->sizex * p->tilex, hauteur = p->sizey * p->tiley;
    if (VersMondeX(Vue.curseurX) < 0) Vue.curseurX = 0;
    if (VersMondeY(Vue.curseurY) < 0) Vue.curseurY = 0;
    if (VersMondeX(Vue.curseurX) >= largeur) Vue.curseurX = VersVueX(largeur) - 1;
    if (VersMondeY(Vue.curseurY) >= hauteur) Vue.curseurY = VersVueY(hauteur) - 1;
    if ((Vue.curseurX / p->tilex + 1) * p->tilex > Vue.largeurVueZ)
        Vue.curseurX = Vue.largeurVueZ - Vue.largeurVueZ % p->tilex - 1;
    if ((Vue.curseurY / p->tiley + 1) * p->tiley > Vue.hauteurVueZ)
        Vue.curseurY = Vue.hauteurVueZ - Vue.hauteurVueZ % p->tiley - 1;
}

void BorneDefilement() {
    const Plan* p = Actif();
    if (!p) return;
    auto Borne = [](int& decalage, int taille, int cote, double vitesse, int grille, int vue) {
        if (vitesse > 0) decalage = std::min(decalage, (int)(((taille + 1) * cote - vue - 1) / vitesse));
        decalage = Bas(std::max(decalage, 0), grille);
    };
    Borne(DecalageX, p->sizex, p->tilex, p->vitesseX, p->grilleX, Vue.largeurVueZ);
    Borne(DecalageY, p->sizey, p->tiley, p->vitesseY, p->grilleY, Vue.hauteurVueZ);
}

// ---- Mouse --------------------------------------------------------------------------------------

void SourisBouge(int x, int y) {
    SourisX = x;
    SourisY = y;
    Plan* p = Actif();
    if (Panoramique && p) {
        const int px = (int)(x / Zoom()), py = (int)(y / Zoom());
        if (Panoramique == 2) {
            AncreX = px - p->grilleX / 2;
            AncreY = py - p->grilleY / 2;
            Panoramique = 1;
        }
        const int dx = Bas(px - AncreX, p->grilleX), dy = Bas(py - AncreY, p->grilleY);
        if (p->vitesseX > 0) DecalageX -= (int)(dx / p->vitesseX);
        if (p->vitesseY > 0) DecalageY -= (int)(dy / p->vitesseY);
        AncreX += dx;
        AncreY += dy;
        BorneDefilement();
        return;
    }
    if (Vue.capturee) {
        // The mouse stays in the view; where it pushes past an edge is noted.
        BordsSouris = (x < 10 ? 1 : 0) | (y < 10 ? 2 : 0) | (x >= Vue.largeurVue + 10 ? 4 : 0) |
                      (y >= Vue.hauteurVue + 10 ? 8 : 0);
        x = std::max(10, std::min(x, Vue.largeurVue + 9));
        y = std::max(10, std::min(y, Vue.hauteurVue + 9));
        PositionCurseur(x, y);
        BorneCurseur();
        return;
    }
    Vue.sourisDansSelecteur = DansSelecteur(x, y);
    if (DansVue(x, y)) {
        PositionCurseur(x, y);
        BorneCurseur();
    } else if (Vue.sourisDansSelecteur) {
        Vue.selecteurX = (int)((x - Vue.largeurVue - 54) / Zoom());
        Vue.selecteurY = (int)((y - 10) / Zoom());
    }
}

void SourisPresse(BoutonSouris bouton, int x, int y, bool doubleClic) {
    const bool ctrl = Modificateurs() & MODIF_CTRL;
    switch (bouton) {
    case BOUTON_GAUCHE:
        if (Vue.copieActive) {
            Vue.copieActive = false;
            return;
        }
        if (!DansVue(x, y)) return;
        SourisBouge(x, y);
        if (ListeActive()) {
            PresseListe(ctrl, doubleClic);
            return;
        }
        Vue.capturee = true;
        Vue.departX = VersMondeX(Vue.curseurX);
        Vue.departY = VersMondeY(Vue.curseurY);
        Vue.peintureActive = true;
        return;
    case BOUTON_DROIT:
        if (Vue.objetTire) {
            Vue.objetTire = 0;
            Vue.capturee = false;
            return;
        }
        if (Vue.peintureActive) {
            Vue.peintureActive = false;
            Vue.capturee = false;
            return;
        }
        if (!DansVue(x, y)) return; // the picker does nothing; elsewhere the window shows its menu
        SourisBouge(x, y);
        Vue.capturee = true;
        Vue.departX = VersMondeX(Vue.curseurX);
        Vue.departY = VersMondeY(Vue.curseurY);
        Vue.copieActive = true;
        return;
    case BOUTON_MILIEU:
        Panoramique = 2;
        return;
    }
}

void SourisRelache(BoutonSouris bouton, int x, int y) {
    const bool ctrl = Modificateurs() & MODIF_CTRL;
    const bool dansVue = Vue.capturee || DansVue(x, y);
    Plan* p = Actif();
    switch (bouton) {
    case BOUTON_GAUCHE: {
        if (PartageTire) {
            PartageTire = false;
            return;
        }
        Vue.capturee = false;
        if (DansSelecteur(x, y) && !Vue.peintureActive && p && p->tilex > 0 && p->tiley > 0) {
            // A tile of the picker becomes the value painted.
            SourisBouge(x, y);
            const int parLigne = Vue.largeurSelecteur / p->tilex;
            const int n = (Vue.selecteurY / p->tiley + Vue.decalageSelecteur / p->tiley) * parLigne +
                          Vue.selecteurX / p->tilex;
            if (n >= 0 && n < p->nbTuiles) ChoisitValeur((uint32_t)InverseCellule(n, PlanActif));
            LacheMotif();
            Vue.peintureActive = false;
            return;
        }
        if (dansVue && Vue.peintureActive && p) {
            int x0 = VersVueX(Vue.departX), y0 = VersVueY(Vue.departY), x1 = Vue.curseurX, y1 = Vue.curseurY;
            if (p->typePlan == TYPE_LISTE) {
                if (Vue.magnetisme) {
                    x0 = Bas(x0, p->grilleX);
                    y0 = Bas(y0, p->grilleY);
                    x1 = Haut(x1, p->grilleX);
                    y1 = Haut(y1, p->grilleY);
                }
                --x1;
                --y1;
            }
            PeintSelection(x0, y0, x1, y1, ctrl);
        } else if (dansVue && Vue.objetTire && ListeActive()) {
            RelacheObjetTire();
        }
        Vue.peintureActive = false;
        return;
    }
    case BOUTON_DROIT: {
        Vue.capturee = false;
        if (!dansVue || !Vue.copieActive || !p) {
            Vue.copieActive = false;
            return;
        }
        const int x0 = VersVueX(Vue.departX), y0 = VersVueY(Vue.departY);
        if (p->typePlan == TYPE_LISTE) {
            GlisseDroitListe(x0, y0, Vue.curseurX, Vue.curseurY, ctrl);
        } else {
            CopieSelection(x0, y0, Vue.curseurX, Vue.curseurY, ctrl);
            // One cell with no links (or Ctrl): its value is picked.
            const bool seul = Liens[PlanActif][1] == FIN_LIENS || ctrl;
            if (Motif.largeurMotif == 1 && Motif.hauteurMotif == 1 && seul) {
                ChoisitValeur(EmplacementMotif(0)[0]);
                LacheMotif();
            }
        }
        Vue.copieActive = false;
        return;
    }
    case BOUTON_MILIEU:
        Panoramique = 0;
        return;
    }
}

void SaisitPartage(int x) {
    PartageTire = true;
    PartageX = x;
}

void CaptureePerdue() {
    Vue.capturee = false;
    Panoramique = 0;
    PartageTire = false;
}

// ---- Wheel ---------------------------------------------------------------------------------------

void Molette(int delta) {
    Plan* p = Actif();
    if (Modificateurs() & MODIF_CTRL) {
        double& z = ReglagesEdit.zoom;
        const double avant = z;
        if (delta > 0 && z < 4.0) z += 0.5;
        if (delta < 0 && z > 1.0) z -= 0.5;
        if (z != avant) {
            AjouteNotification("Zoom: %i%%", (int)(z * 100));
            DisposeEditeur(DispositionEditeur.largeurInitiale + DispositionEditeur.deltaL,
                           DispositionEditeur.hauteurInitiale + DispositionEditeur.deltaH);
        }
        return;
    }
    if (delta != 0 && MotifTenu()) {
        LacheMotif();
    } else {
        const uint32_t masque = MasqueFormat(p ? p->formatCellule : CELLULE_16_BITS);
        uint32_t v = ValeurCourante;
        if (ReglagesHexa.actif) {
            if (delta > 0) --v;
            else if (delta < 0) ++v;
        } else {
            if (delta > 0 && v > 0) --v;
            else if (delta < 0 && v < masque) ++v;
        }
        ValeurCourante = v & masque;
    }
    AjouteNotification("Pattern: %i (%04x)", (int)ValeurCourante, ValeurCourante);
}

// ---- Keys and scroll bars ----------------------------------------------------------------------

void DefileVue(bool horizontal, int requete, int position) {
    Plan* p = Actif();
    if (!p || Vue.peintureActive || Vue.copieActive || Vue.objetTire) return;
    const double v = horizontal ? p->vitesseX : p->vitesseY;
    const int cote = horizontal ? p->tilex : p->tiley;
    int& d = horizontal ? DecalageX : DecalageY;
    auto Pas = [v](int n) { return v > 0 ? (int)(n / v) : n; };
    switch (requete) {
    case 0: d += Pas(-32); break;
    case 1: d += Pas(32); break;
    case 2: d += Pas(-192); break;
    case 3: d += Pas(192); break;
    case 4: d = 0; break;
    case 5: d = 32767; break;
    default: d = cote > 0 ? position - position % cote : position; break;
    }
    BorneDefilement();
}

bool CommandeClavier(int c) {
    switch (c) {
    case ED_SAUVER: EnregistreEditeur(); return true;
    case ED_ANNULER: AnnuleLies(); return true;
    case ED_RETABLIR: RetablitLies(); return true;
    case ED_HEXA: BasculeModeHexa(); return true;
    case ED_GAUCHE: DefileVue(true, 0, 0); return true;
    case ED_DROITE: DefileVue(true, 1, 0); return true;
    case ED_HAUT: DefileVue(false, 0, 0); return true;
    case ED_BAS: DefileVue(false, 1, 0); return true;
    case ED_COLLER:
        if (ListeActive()) ColleObjetsCopies();
        else ColleMotif();
        return true;
    case ED_COPIER: CopieObjetsChoisis(); return true;
    case ED_SUPPRIMER: SupprimeObjetsChoisis(); return true;
    case ED_COUPER: CoupeObjetsChoisis(); return true;
    case ED_GRILLE_PLUS: DoubleGrille(); return true;
    case ED_GRILLE_MOINS: DiviseGrille(); return true;
    default: break;
    }
    if (c >= ED_PLAN_1 && c <= ED_PLAN_1 + 4) {
        ActivePlan(c - ED_PLAN_1);
        return true;
    }
    if (c >= ED_PLAN_6 && c <= ED_PLAN_10) {
        ActivePlan(5 + c - ED_PLAN_6);
        return true;
    }
    return false; // help, dialogs, the specimen: the window's
}

// ---- The tick -----------------------------------------------------------------------------------------

void TickEditeur() {
    const int64_t maintenant = Millisecondes();
    const int64_t ecoule = DernierTickEntree < 0 ? 0 : maintenant - DernierTickEntree;
    DernierTickEntree = maintenant;
    Plan* p = Actif();
    if (p && p->typePlan == TYPE_CARTE) {
        p->grilleX = std::max(p->grilleX, p->tilex);
        p->grilleY = std::max(p->grilleY, p->tiley);
    }
    // The splitter: the picker's pane grows by what the pointer moved left.
    if (PartageTire && SourisX != PartageX) {
        DispositionEditeur.panneauSelecteur += PartageX - SourisX;
        PartageX = SourisX;
        DisposeEditeur(DispositionEditeur.largeurInitiale + DispositionEditeur.deltaL,
                       DispositionEditeur.hauteurInitiale + DispositionEditeur.deltaH);
    }
    if (VitesseChangee) {
        VitesseChangee = false;
        DisposeEditeur(DispositionEditeur.largeurInitiale + DispositionEditeur.deltaL,
                       DispositionEditeur.hauteurInitiale + DispositionEditeur.deltaH);
    }
    const bool shift = Modificateurs() & MODIF_SHIFT;
    Vue.magnetisme = !(shift && ListeActive());
    // Edge scrolling, only while a drag holds the mouse past an edge: a step
    // of a cell every 50 ms, every 10 ms with Shift.
    const bool glisse = Vue.peintureActive || Vue.copieActive || Vue.objetTire;
    if (!(Vue.capturee && BordsSouris && glisse) || !p) {
        MinuterieBords = 0;
    } else {
        MinuterieBords += ecoule;
        const int pas = shift ? 10 : 50;
        const int64_t n = MinuterieBords / pas;
        MinuterieBords -= n * pas;
        for (int64_t k = 0; k < n; ++k) {
            const int dx = p->vitesseX > 0 ? (int)(p->tilex / p->vitesseX) : 0;
            const int dy = p->vitesseY > 0 ? (int)(p->tiley / p->vitesseY) : 0;
            if (BordsSouris & 1) DecalageX -= dx;
            if (BordsSouris & 4) DecalageX += dx;
            if (BordsSouris & 2) DecalageY -= dy;
            if (BordsSouris & 8) DecalageY += dy;
        }
        if (n > 0) BorneDefilement();
    }
    ComposeVue();
}
