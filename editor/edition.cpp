// Editing, selection and undo.
//
// Sections: state; rectangles; copy; paint; pattern and grid; undo.
#include "editor/edition.h"

#include "editor/liste.h"
#include "editor/notifications.h"
#include "platform/plateforme.h"

#include <cstdlib>
#include <utility>
#include <cstring>

VueEditeur Vue;
int DecalageX = 0;
int DecalageY = 0;
EtatMotif Motif;
uint32_t ValeurCourante = 0;
uint32_t* MotifCellules = nullptr;
int ObjetCourant = -1;
int SelectionObjets[NB_SELECTION_MAX];
int NbSelectionObjets = 0;
bool AnnulerActif = false;
bool RetablirActif = false;
int64_t OctetsAnnulationMax = INT64_MAX;

namespace {

constexpr int INSTANTANES_MAX = 100000;
constexpr size_t CELLULES_EMPLACEMENT = (size_t)COTE_MOTIF * COTE_MOTIF;

} // namespace

namespace {

int DecalageMonde(int decalage, double vitesse, int grille) {
    const int v = (int)(decalage * vitesse);
    return grille > 0 ? v & ~(grille - 1) : v;
}

const Plan* Actif() { return PlanActif >= 0 && PlanActif < NbPlans ? &Plans[PlanActif] : nullptr; }

} // namespace

int VersMondeX(int x) { return Actif() ? x + DecalageMonde(DecalageX, Actif()->vitesseX, Actif()->grilleX) : x; }
int VersMondeY(int y) { return Actif() ? y + DecalageMonde(DecalageY, Actif()->vitesseY, Actif()->grilleY) : y; }
int VersVueX(int x) { return Actif() ? x - DecalageMonde(DecalageX, Actif()->vitesseX, Actif()->grilleX) : x; }
int VersVueY(int y) { return Actif() ? y - DecalageMonde(DecalageY, Actif()->vitesseY, Actif()->grilleY) : y; }

bool PrepareMotif() {
    if (MotifCellules) return true;
    MotifCellules = (uint32_t*)calloc(CELLULES_EMPLACEMENT * NB_EMPLACEMENTS_MOTIF, sizeof(uint32_t));
    if (!MotifCellules) BoiteMessage("Insufficient memory...", "Error", BOITE_OK | ICONE_ARRET);
    return MotifCellules != nullptr;
}

uint32_t* EmplacementMotif(int emplacement) {
    if (!MotifCellules || emplacement < 0 || emplacement >= NB_EMPLACEMENTS_MOTIF) return nullptr;
    return MotifCellules + (size_t)emplacement * CELLULES_EMPLACEMENT;
}

bool MotifTenu() { return Motif.largeurMotif > 0 && Motif.hauteurMotif > 0; }

int MotifActif() {
    if (Motif.nbPlansMotif > 1 && MotifTenu() && Motif.planSource >= 0 && Motif.planSource < NB_PLANS_MAX) {
        const uint8_t* liens = Liens[Motif.planSource];
        for (int i = 0; i < Motif.nbPlansMotif && i < 5 && liens[i] != FIN_LIENS; ++i)
            if (liens[i] == PlanActif) return Motif.planPresent[i] ? i : 5;
    }
    return 0;
}

// ---- Rectangles ------------------------------------------------------------------------------

namespace {

// A coordinate in view pixels to a cell, rounding down.
int VersCellule(int v, int cote) {
    if (v < 0 && v % cote != 0) v -= cote;
    return v / cote;
}

} // namespace

bool RectangleCellules(int plan, int x0, int y0, int x1, int y1, int c[4]) {
    if (plan < 0 || plan >= NbPlans) return false;
    const Plan& p = Plans[plan];
    const PreparationPlan e = PreparePlan(plan);
    if (e.tilex <= 0 || e.tiley <= 0) return false;
    const int ox = (int)(DecalageX * e.vitesseX / e.tilex), oy = (int)(DecalageY * e.vitesseY / e.tiley);
    x0 = VersCellule(x0, e.tilex) + ox;
    x1 = VersCellule(x1, e.tilex) + ox;
    y0 = VersCellule(y0, e.tiley) + oy;
    y1 = VersCellule(y1, e.tiley) + oy;
    if (x0 > x1) std::swap(x0, x1);
    if (y0 > y1) std::swap(y0, y1);
    if (x1 < 0 || y1 < 0 || x0 >= p.sizex || y0 >= p.sizey) return false;
    c[0] = x0 < 0 ? 0 : x0;
    c[1] = y0 < 0 ? 0 : y0;
    c[2] = x1 > p.sizex - 1 ? p.sizex - 1 : x1;
    c[3] = y1 > p.sizey - 1 ? p.sizey - 1 : y1;
    return true;
}

// The pairs of a rectangle ordered.
static void Ordonne(int r[4]) {
    if (r[0] > r[2]) std::swap(r[0], r[2]);
    if (r[1] > r[3]) std::swap(r[1], r[3]);
}

// ---- Copy ---------------------------------------------------------------------------------------

int CopieBloc(int plan, int emplacement, int x0, int y0, int x1, int y1) {
    if (plan < 0 || plan >= NbPlans) return 0;
    if (Plans[plan].typePlan == TYPE_LISTE) return CopieObjets(plan, emplacement, x0, y0, x1, y1);
    uint32_t* cible = EmplacementMotif(emplacement);
    int c[4];
    if (!cible || !RectangleCellules(plan, x0, y0, x1, y1, c)) return 0;
    if (c[2] - c[0] >= COTE_MOTIF || c[3] - c[1] >= COTE_MOTIF) {
        BoiteMessage("Selection is too big to be copied.", "Oops...", BOITE_OK | ICONE_ARRET);
        return 0;
    }
    const Plan& p = Plans[plan];
    Motif.largeurMotif = c[2] - c[0] + 1;
    Motif.hauteurMotif = c[3] - c[1] + 1;
    for (int y = 0; y < Motif.hauteurMotif; ++y)
        memcpy(cible + (size_t)y * COTE_MOTIF, p.cellules + (size_t)(c[1] + y) * p.sizex + c[0],
               sizeof(uint32_t) * (size_t)Motif.largeurMotif);
    return 1;
}

void CopieSelection(int x0, int y0, int x1, int y1, bool seulActif) {
    Motif.rectangleMotif[0] = x0;
    Motif.rectangleMotif[1] = y0;
    Motif.rectangleMotif[2] = x1;
    Motif.rectangleMotif[3] = y1;
    Motif.largeurMotif = Motif.hauteurMotif = Motif.largeurMotifPx = Motif.hauteurMotifPx = 0;
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    if (seulActif) {
        Motif.nbPlansMotif = CopieBloc(PlanActif, 0, x0, y0, x1, y1);
    } else {
        Motif.nbPlansMotif = 0;
        const uint8_t* liens = Liens[PlanActif];
        for (int i = 0; i < 5 && i < NB_PLANS_MAX && liens[i] != FIN_LIENS; ++i) {
            ++Motif.nbPlansMotif;
            int r[4] = {x0, y0, x1, y1};
            if (Plans[PlanActif].typePlan == TYPE_CARTE && Plans[liens[i]].typePlan == TYPE_LISTE) Ordonne(r);
            Motif.planPresent[i] = (uint8_t)CopieBloc(liens[i], i, r[0], r[1], r[2], r[3]);
        }
    }
    // A list's copy gives the block's size in pixels itself.
    const Plan& a = Plans[PlanActif];
    if (Motif.largeurMotifPx == 0 || Motif.hauteurMotifPx == 0) {
        Motif.largeurMotifPx = a.tilex * Motif.largeurMotif;
        Motif.hauteurMotifPx = a.tiley * Motif.hauteurMotif;
    }
    if (Motif.largeurMotifPx == 0 || Motif.hauteurMotifPx == 0)
        Motif.largeurMotif = Motif.hauteurMotif = Motif.largeurMotifPx = Motif.hauteurMotifPx = 0;
    Motif.planSource = PlanActif;
}

// ---- Paint ---------------------------------------------------------------------------------------

void PeintBloc(int plan, int emplacement, int x0, int y0, int x1, int y1) {
    if (plan < 0 || plan >= NbPlans) return;
    if (Plans[plan].typePlan == TYPE_LISTE) return PeintObjets(plan, emplacement, x0, y0, x1, y1);
    if (!Vue.peintureActive) return;
    int c[4];
    if (!RectangleCellules(plan, x0, y0, x1, y1, c)) return;
    Plan& p = Plans[plan];
    const uint32_t* source = EmplacementMotif(emplacement);
    const bool bloc = MotifTenu() && source;
    const uint32_t invisible = (uint32_t)ReglagesEdit.blocInvisible;
    for (int y = c[1]; y <= c[3]; ++y) {
        uint32_t* ligne = p.cellules + (size_t)y * p.sizex;
        for (int x = c[0]; x <= c[2]; ++x) {
            if (!bloc) {
                ligne[x] = ValeurCourante;
                continue;
            }
            const uint32_t v = source[(size_t)((y - c[1]) % Motif.hauteurMotif) * COTE_MOTIF +
                                      (size_t)((x - c[0]) % Motif.largeurMotif)];
            if (v == invisible || (v == 0 && ReglagesEdit.masqueZero)) continue;
            ligne[x] = v;
        }
    }
}

void PeintSelection(int x0, int y0, int x1, int y1, bool seulActif) {
    if (Motif.nbPlansMotif == 0 || PlanActif < 0 || PlanActif >= NbPlans) return;
    if (Motif.nbPlansMotif == 1) {
        PeintBloc(PlanActif, 0, x0, y0, x1, y1);
        EmpileLies();
        return;
    }
    const uint8_t* liens = Liens[PlanActif];
    const Plan& a = Plans[PlanActif];
    for (int i = 0; i < 5 && i < Motif.nbPlansMotif && liens[i] != FIN_LIENS; ++i) {
        const int p = liens[i];
        int r[4] = {x0, y0, x1, y1};
        if (a.typePlan == TYPE_CARTE && Plans[p].typePlan == TYPE_LISTE && a.tilex > 0 && a.tiley > 0) {
            // The objects' rectangle covers the same whole cells of the active plane.
            Ordonne(r);
            auto Bas = [](int v, int c) { return (v < 0 && v % c ? v / c - 1 : v / c) * c; };
            r[0] = Bas(r[0], a.tilex);
            r[1] = Bas(r[1], a.tiley);
            r[2] = Bas(r[2], a.tilex) + a.tilex;
            r[3] = Bas(r[3], a.tiley) + a.tiley;
        }
        if ((!seulActif || p == PlanActif) && Motif.planPresent[i]) PeintBloc(p, i, r[0], r[1], r[2], r[3]);
    }
    EmpileLies();
}

void ColleMotif() {
    if (Motif.largeurMotif <= 1 && Motif.hauteurMotif <= 1) return;
    Vue.peintureActive = true;
    PeintSelection(Motif.rectangleMotif[0], Motif.rectangleMotif[1], Motif.rectangleMotif[2],
                   Motif.rectangleMotif[3], false);
    Vue.peintureActive = false;
}

void LacheMotif() {
    Motif.largeurMotif = Motif.hauteurMotif = Motif.largeurMotifPx = Motif.hauteurMotifPx = 0;
    Motif.nbPlansMotif = 1;
}

// ---- Pattern and grid -------------------------------------------------------------------------

void ChoisitValeur(uint32_t valeur) {
    ValeurCourante = valeur;
    AjouteNotification("Pattern: %i (%04x)", (int)valeur, valeur);
}

void DoubleGrille() {
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    Plan& p = Plans[PlanActif];
    if (p.grilleX < 64) p.grilleX *= 2;
    if (p.grilleY < 64) p.grilleY *= 2;
    AjouteNotification("Grid step: %ix%i", p.grilleX, p.grilleY);
}

void DiviseGrille() {
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    Plan& p = Plans[PlanActif];
    if (p.grilleX > 1) p.grilleX /= 2;
    if (p.grilleY > 1) p.grilleY /= 2;
    AjouteNotification("Grid step: %ix%i", p.grilleX, p.grilleY);
}

// ---- Undo ----------------------------------------------------------------------------------------
// A map snapshot is the plane's cells. A list snapshot is a header of the
// object size, the object count and the capacity, then the whole capacity
// of objects, used or not.

namespace {

int64_t TailleInstantane(const Plan& p) {
    if (p.typePlan == TYPE_LISTE) return 12 + (int64_t)p.capaciteObjets * p.tailleObjet;
    return (int64_t)p.sizex * p.sizey * 4;
}

void Prend(const Plan& p, uint8_t* d) {
    if (p.typePlan == TYPE_LISTE) {
        const int32_t entete[3] = {p.tailleObjet, p.nbObjets, p.capaciteObjets};
        memcpy(d, entete, 12);
        if (p.objets) memcpy(d + 12, p.objets, (size_t)p.capaciteObjets * (size_t)p.tailleObjet);
    } else if (p.cellules) {
        memcpy(d, p.cellules, (size_t)p.sizex * p.sizey * 4);
    }
}

void Rend(Plan& p, const uint8_t* d) {
    if (p.typePlan == TYPE_LISTE) {
        int32_t entete[3];
        memcpy(entete, d, 12);
        p.nbObjets = entete[1];
        if (p.objets) memcpy(p.objets, d + 12, (size_t)p.capaciteObjets * (size_t)p.tailleObjet);
    } else if (p.cellules) {
        memcpy(p.cellules, d, (size_t)p.sizex * p.sizey * 4);
    }
}

} // namespace

void LiberePile(int plan) {
    if (plan < 0 || plan >= NB_PLANS_MAX) return;
    PileAnnulation& a = Piles[plan];
    MemoireAnnulation -= a.octets;
    free(a.tampon);
    a = PileAnnulation{};
}

void EmpileEtat(int plan) {
    if (plan < 0 || plan >= NbPlans + 1 || plan >= NB_PLANS_MAX) return;
    const Plan& p = Plans[plan];
    PileAnnulation& a = Piles[plan];
    const int64_t taille = TailleInstantane(p);
    if (taille <= 0) return;
    if ((a.courant >= INSTANTANES_MAX || MemoireAnnulation >= LimiteMemoireAnnulation) && a.courant >= 2) {
        memmove(a.tampon, a.tampon + taille, (size_t)(taille * a.courant));
        a.perdu = 1;
        --a.courant;
    }
    const int64_t nouvelle = (a.courant + 2) * taille;
    uint8_t* tampon = nouvelle <= OctetsAnnulationMax ? (uint8_t*)realloc(a.tampon, (size_t)nouvelle) : nullptr;
    if (!tampon) {
        // No message: the stack starts over with the next snapshot, and the
        // saved state can no longer be reached.
        MemoireAnnulation -= a.octets;
        free(a.tampon);
        a.tampon = nullptr;
        a.octets = 0;
        a.courant = a.sommet = -1;
        a.perdu = 1;
        MajMemoire();
        return;
    }
    MemoireAnnulation += nouvelle - a.octets;
    a.octets = nouvelle;
    a.tampon = tampon;
    ++a.courant;
    Prend(p, a.tampon + taille * a.courant);
    a.sommet = a.courant;
    MajMemoire();
    if (plan == PlanActif) {
        AnnulerActif = a.courant > 0;
        RetablirActif = false;
        MajTitre();
    }
}

void EmpileLies() {
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    const uint8_t* liens = Liens[PlanActif];
    for (int i = 0; i < NB_PLANS_MAX && liens[i] != FIN_LIENS; ++i) EmpileEtat(liens[i]);
}

void AnnuleEtat(int plan) {
    if (plan < 0 || plan >= NbPlans) return;
    PileAnnulation& a = Piles[plan];
    if (!a.tampon || a.courant <= 0) return;
    --a.courant;
    Rend(Plans[plan], a.tampon + TailleInstantane(Plans[plan]) * a.courant);
    if (plan == PlanActif) {
        AnnulerActif = a.courant > 0;
        RetablirActif = true;
        MajTitre();
    }
}

void RetablitEtat(int plan) {
    if (plan < 0 || plan >= NbPlans) return;
    PileAnnulation& a = Piles[plan];
    if (!a.tampon || a.courant >= a.sommet) return;
    ++a.courant;
    Rend(Plans[plan], a.tampon + TailleInstantane(Plans[plan]) * a.courant);
    if (plan == PlanActif) {
        RetablirActif = a.courant < a.sommet;
        AnnulerActif = a.courant >= 1;
        MajTitre();
    }
}

void AnnuleLies() {
    ObjetCourant = -1;
    NbSelectionObjets = 0;
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    const uint8_t* liens = Liens[PlanActif];
    for (int i = 0; i < NB_PLANS_MAX && liens[i] != FIN_LIENS; ++i) AnnuleEtat(liens[i]);
}

void RetablitLies() {
    ObjetCourant = -1;
    NbSelectionObjets = 0;
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    const uint8_t* liens = Liens[PlanActif];
    for (int i = 0; i < NB_PLANS_MAX && liens[i] != FIN_LIENS; ++i) RetablitEtat(liens[i]);
}

void ReinitAnnulation(int plan) {
    if (plan < 0 || plan >= NbPlans) return;
    LiberePile(plan);
    EmpileEtat(plan);
    Piles[plan].perdu = 1;
    MajTitre();
    MajBoutonsAnnulation();
}

void ReinitLies() {
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    uint8_t liens[NB_PLANS_MAX];
    memcpy(liens, Liens[PlanActif], sizeof liens);
    for (int i = 0; i < NB_PLANS_MAX && liens[i] != FIN_LIENS; ++i) ReinitAnnulation(liens[i]);
}

void MajBoutonsAnnulation() {
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    const PileAnnulation& a = Piles[PlanActif];
    if (!a.tampon) return;
    AnnulerActif = a.courant >= 1;
    RetablirActif = a.sommet != a.courant;
}
