// "Blocks copy": taking a pattern, moving a rectangle and repeating the
// pattern, by cell numbers, over the active plane or all its linked planes.
#include "tools/operations.h"

#include "core/reglages.h"
#include "editor/edition.h"
#include "editor/plans.h"
#include "platform/plateforme.h"

#include <cstdint>
#include <cstdlib>

namespace {

// A field: decimal; "*" stands for 1024.
int Champ(const char* t) { return t && t[0] == '*' ? COTE_MOTIF : t ? atoi(t) : 0; }
bool Donne(const char* a, const char* b) { return a && *a && b && *b; }

// The planes an action walks: the links of the active plane from position
// 0, at most limite of them, or the active plane alone. f(plan, slot).
template <class F> int Parcourt(bool seulActif, int limite, F f) {
    if (seulActif) {
        f(PlanActif, 0);
        return 1;
    }
    int k = 0;
    for (; k < limite && k < 5 && Liens[PlanActif][k] != FIN_LIENS; ++k) f((int)Liens[PlanActif][k], k);
    return k;
}

// A size cut so that the rectangle from x stays inside n cells.
void Borne(int x, int& taille, int n) {
    if (x + taille > n) taille = n - x;
    if (taille < 0) taille = 0;
}

int Prend(int sx, int sy, int w, int h, bool seulActif) {
    if (w >= COTE_MOTIF || h >= COTE_MOTIF) {
        BoiteMessage("The copy size is limited to 1024x1024...", "Please don't exagerate! ^^", BOITE_OK | ICONE_ARRET);
        return 0;
    }
    const Plan& a = Plans[PlanActif];
    Motif.rectangleMotif[0] = a.tilex * sx;
    Motif.rectangleMotif[1] = a.tiley * sy;
    Motif.rectangleMotif[2] = a.tilex * (sx + w - 1);
    Motif.rectangleMotif[3] = a.tiley * (sy + h - 1);
    // The active plane alone goes to slot 0, which is what is painted with
    // once one plane took part.
    const int n = Parcourt(seulActif, 5, [&](int plan, int slot) {
        const Plan& p = Plans[plan];
        Borne(sx, w, p.sizex);
        Borne(sy, h, p.sizey);
        uint32_t* cible = EmplacementMotif(slot);
        if (p.typePlan != TYPE_CARTE || !p.cellules || !cible) return;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                cible[(size_t)y * COTE_MOTIF + x] = p.cellules[(size_t)(sy + y) * p.sizex + sx + x];
        Motif.planPresent[slot] = 1;
    });
    Motif.nbPlansMotif = n;
    Motif.largeurMotif = w;
    Motif.hauteurMotif = h;
    Motif.largeurMotifPx = a.tilex * w;
    Motif.hauteurMotifPx = a.tiley * h;
    Motif.planSource = PlanActif;
    return 1;
}

int Deplace(int sx, int sy, int w, int h, int dx, int dy, bool seulActif) {
    uint32_t* bloc = (uint32_t*)malloc(sizeof(uint32_t) * (size_t)(w > 0 ? w : 1) * (size_t)(h > 0 ? h : 1));
    if (!bloc) {
        BoiteMessage("Unable to allocate necessary memory for the treatement...", "Oops...", BOITE_OK | ICONE_ARRET);
        return 0;
    }
    Parcourt(seulActif, 5, [&](int plan, int) {
        Plan& p = Plans[plan];
        Borne(sx, w, p.sizex);
        Borne(sy, h, p.sizey);
        Borne(dx, w, p.sizex);
        Borne(dy, h, p.sizey);
        if (p.typePlan != TYPE_CARTE || !p.cellules || dx < 0 || dy < 0 || sx < 0 || sy < 0) return;
        // The source is cleared before the target is written: overlapping
        // rectangles give a clean move.
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                uint32_t& c = p.cellules[(size_t)(sy + y) * p.sizex + sx + x];
                bloc[(size_t)y * w + x] = c;
                c = 0;
            }
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) p.cellules[(size_t)(dy + y) * p.sizex + dx + x] = bloc[(size_t)y * w + x];
    });
    free(bloc);
    EmpileLies();
    return 1;
}

int Repete(int px, int py, int w, int h, bool avecTaille, bool seulActif) {
    if (!avecTaille) {
        w = Motif.largeurMotif;
        h = Motif.hauteurMotif;
    }
    const Plan& a = Plans[PlanActif];
    Borne(px, w, a.sizex);
    Borne(py, h, a.sizey);
    const bool motif = Motif.largeurMotif >= 1 && Motif.hauteurMotif >= 1;
    const uint32_t invisible = (uint32_t)ReglagesEdit.blocInvisible;
    const int emplacementActif = MotifActif();
    Parcourt(seulActif, Motif.nbPlansMotif, [&](int plan, int slot) {
        Plan& p = Plans[plan];
        Borne(px, w, p.sizex);
        Borne(py, h, p.sizey);
        const uint32_t* source = EmplacementMotif(seulActif ? emplacementActif : slot);
        if (p.typePlan != TYPE_CARTE || !p.cellules || px < 0 || py < 0 || !source) return;
        for (int r = 0; r < h; ++r)
            for (int c = 0; c < w; ++c) {
                uint32_t v = ValeurCourante;
                if (motif) {
                    v = source[(size_t)(r % Motif.hauteurMotif) * COTE_MOTIF + (size_t)(c % Motif.largeurMotif)];
                    if (v == invisible || (v == 0 && ReglagesEdit.masqueZero)) continue;
                }
                p.cellules[(size_t)(py + r) * p.sizex + px + c] = v;
            }
    });
    EmpileLies();
    return 1;
}

} // namespace

int ExecuteCopieBlocs(const char* sx, const char* sy, const char* l, const char* h, const char* dx, const char* dy,
                      bool seulActif) {
    if (PlanActif < 0 || PlanActif >= NbPlans) return 1;
    const bool source = Donne(sx, sy), taille = Donne(l, h), destination = Donne(dx, dy);
    const int x = Champ(sx), y = Champ(sy);
    int w = Champ(l), hh = Champ(h);
    Borne(x, w, Plans[PlanActif].sizex);
    Borne(y, hh, Plans[PlanActif].sizey);
    if (!source && !destination) {
        BoiteMessage("The supplied informations are insufficient.", "Error", BOITE_OK | ICONE_ARRET);
        return 0;
    }
    if (!source) return Repete(Champ(dx), Champ(dy), w, hh, taille, seulActif);
    if (!taille) return Repete(x, y, w, hh, false, seulActif);
    if (!destination) return Prend(x, y, w, hh, seulActif);
    return Deplace(x, y, w, hh, Champ(dx), Champ(dy), seulActif);
}
