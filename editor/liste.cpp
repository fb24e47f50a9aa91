// The list editor.
//
// Sections: objects; copy and paint; selection; commands; gestures.
#include "editor/liste.h"

#include "core/modeles.h"
#include "editor/edition.h"
#include "editor/plans.h"
#include "format/liste.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "script/syntaxe.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

EmplacementObjets MotifObjets[5];
uint8_t* ObjetsCopies = nullptr;
int NbObjetsCopies = 0;
int TailleObjetsCopies = 0;
int (*DialogueParametresObjets)() = nullptr;

namespace {

constexpr const char* MESSAGE_PLEINE =
    "Too many elements, please redefine the maximum number of elements for lists in the general options.";

bool EstListe(int plan) {
    return plan >= 0 && plan < NbPlans && Plans[plan].typePlan == TYPE_LISTE && Plans[plan].objets &&
           Plans[plan].tailleObjet >= TAILLE_OBJET_BASE;
}

uint8_t* Objet(Plan& p, int n) { return p.objets + (size_t)n * (size_t)p.tailleObjet; }
int32_t Champ(const uint8_t* o, int k) {
    int32_t v;
    memcpy(&v, o + 4 * k, 4);
    return v;
}
void PoseChamp(uint8_t* o, int k, int32_t v) { memcpy(o + 4 * k, &v, 4); }

int Bas(int v, int grille) { return grille > 0 ? v & ~(grille - 1) : v; }
int Haut(int v, int grille) { return grille > 0 ? (v + grille - 1) & ~(grille - 1) : v; }

// A view rectangle in plane pixels: the plane's offset in whole grid steps
// added, the pairs ordered, and with the magnet the corners on the grid.
void Rectangle(const Plan& p, int& x0, int& y0, int& x1, int& y1) {
    const int ox = p.grilleX > 0 ? (int)(DecalageX * p.vitesseX / p.grilleX) * p.grilleX : 0;
    const int oy = p.grilleY > 0 ? (int)(DecalageY * p.vitesseY / p.grilleY) * p.grilleY : 0;
    x0 += ox;
    x1 += ox;
    y0 += oy;
    y1 += oy;
    if (x0 > x1) std::swap(x0, x1);
    if (y0 > y1) std::swap(y0, y1);
    if (Vue.magnetisme) {
        x0 = Bas(x0, p.grilleX);
        y0 = Bas(y0, p.grilleY);
        x1 = Haut(x1, p.grilleX);
        y1 = Haut(y1, p.grilleY);
    }
}

bool Chevauche(const Plan& p, const uint8_t* o, int x0, int y0, int x1, int y1) {
    const int x = Champ(o, 0), y = Champ(o, 1);
    return x0 < x + p.tilex && x < x1 && y0 < y + p.tiley && y < y1;
}

bool DansSelection(int n) {
    for (int i = 0; i < NbSelectionObjets; ++i)
        if (SelectionObjets[i] == n) return true;
    return false;
}

void Ajoute(Plan& p, const uint8_t* source, int taille, int dx, int dy) {
    uint8_t* o = Objet(p, p.nbObjets++);
    memset(o, 0, (size_t)p.tailleObjet);
    memcpy(o, source, (size_t)std::min(taille, p.tailleObjet));
    PoseChamp(o, 0, Champ(o, 0) + dx);
    PoseChamp(o, 1, Champ(o, 1) + dy);
}

} // namespace

// ---- Objects ------------------------------------------------------------------------------------

int AjouteObjet(int plan, int x, int y, int type) {
    if (!EstListe(plan)) return 0;
    Plan& p = Plans[plan];
    if (p.nbObjets < p.capaciteObjets) memset(Objet(p, p.nbObjets), 0, (size_t)p.tailleObjet);
    if (p.nbObjets >= p.capaciteObjets) {
        BoiteMessage(MESSAGE_PLEINE, "Error", BOITE_OK | ICONE_ARRET);
        return 0;
    }
    uint8_t* o = Objet(p, p.nbObjets);
    PoseChamp(o, 0, x);
    PoseChamp(o, 1, y);
    PoseChamp(o, 2, type);
    if (p.modele) {
        const ModeleParametres& m = *p.modele;
        for (int i = 0; i < m.nbParametres && i < NB_PARAMETRES_MAX; ++i) {
            const int32_t decalage = TAILLE_OBJET_BASE + DecalageParametre(m, i);
            const int32_t taille = TailleParametreBornee(m.tailles[i]);
            if (decalage + taille > p.tailleObjet) break;
            uint8_t* champ = o + decalage;
            if (m.genres[i] == PARAMETRE_BRUT) {
                if (taille > 0) CopieBorneeN((char*)champ, (size_t)taille, m.defauts[i], strlen(m.defauts[i]));
            } else {
                PoseEntierParametre(champ, taille, LitNombre(m.defauts[i]));
            }
        }
    }
    ++p.nbObjets;
    return 1;
}

void RetireObjet(int plan, int n) {
    if (!EstListe(plan) || n < 0 || n >= Plans[plan].nbObjets) return;
    Plan& p = Plans[plan];
    memmove(Objet(p, n), Objet(p, n + 1), (size_t)(p.nbObjets - n - 1) * (size_t)p.tailleObjet);
    --p.nbObjets;
}

int ObjetTouche(int plan, int px, int py) {
    if (!EstListe(plan)) return -1;
    Plan& p = Plans[plan];
    int touche = -1;
    for (int n = 0; n < p.nbObjets; ++n) {
        const uint8_t* o = Objet(p, n);
        const int x = Champ(o, 0), y = Champ(o, 1);
        if (x <= px && px < x + p.tilex && y <= py && py < y + p.tiley) touche = n;
    }
    return touche;
}

// ---- Copy and paint -------------------------------------------------------------------------------

int CopieObjets(int plan, int emplacement, int x0, int y0, int x1, int y1) {
    if (!EstListe(plan) || emplacement < 0 || emplacement >= 5) return 0;
    Plan& p = Plans[plan];
    Rectangle(p, x0, y0, x1, y1);
    EmplacementObjets& e = MotifObjets[emplacement];
    if (e.capacite < p.capaciteObjets || e.taille != p.tailleObjet) {
        uint8_t* neuf = (uint8_t*)realloc(e.objets, (size_t)p.capaciteObjets * (size_t)p.tailleObjet);
        if (!neuf) return 0;
        e.objets = neuf;
        e.capacite = p.capaciteObjets;
    }
    e.taille = p.tailleObjet;
    e.nombre = 0;
    for (int n = 0; n < p.nbObjets && p.nbObjets < p.capaciteObjets; ++n) {
        const uint8_t* o = Objet(p, n);
        if (!Chevauche(p, o, x0, y0, x1, y1)) continue;
        uint8_t* copie = e.objets + (size_t)e.nombre++ * (size_t)e.taille;
        memcpy(copie, o, (size_t)e.taille);
        PoseChamp(copie, 0, Champ(o, 0) - x0);
        PoseChamp(copie, 1, Champ(o, 1) - y0);
    }
    Motif.largeurMotifPx = x1 - x0;
    Motif.hauteurMotifPx = y1 - y0;
    auto Cellules = [](int d, int cote) {
        int a = d - 1;
        if (cote > 0 && a % cote) a += cote;
        return cote > 0 ? a / cote : 0;
    };
    Motif.largeurMotif = Cellules(x1 - x0, p.tilex);
    Motif.hauteurMotif = Cellules(y1 - y0, p.tiley);
    return 1;
}

void PeintObjets(int plan, int emplacement, int x0, int y0, int x1, int y1) {
    if (!EstListe(plan) || emplacement < 0 || emplacement >= 5) return;
    Plan& p = Plans[plan];
    Rectangle(p, x0, y0, x1, y1);
    if (Motif.largeurMotif == 0 && Motif.hauteurMotif == 0) {
        AjouteObjet(plan, x0, y0, (int)ValeurCourante);
        return;
    }
    const int lpx = Motif.largeurMotifPx, hpx = Motif.hauteurMotifPx;
    if (lpx <= 0 || hpx <= 0) return;
    const int n = (x1 - x0 - 1) / lpx + ((x1 - x0 - 1) % lpx ? 1 : 0);
    const int m = (y1 - y0 - 1) / hpx + ((y1 - y0 - 1) % hpx ? 1 : 0);
    for (int k = p.nbObjets - 1; k >= 0; --k)
        if (Chevauche(p, Objet(p, k), x0, y0, x1, y1)) RetireObjet(plan, k);
    const EmplacementObjets& e = MotifObjets[emplacement];
    for (int r = 0; r < m; ++r)
        for (int c = 0; c < n; ++c)
            for (int k = 0; k < e.nombre; ++k) {
                if (p.nbObjets >= p.capaciteObjets) {
                    BoiteMessage(MESSAGE_PLEINE, "Error", BOITE_OK | ICONE_ARRET);
                    break;
                }
                const uint8_t* o = e.objets + (size_t)k * (size_t)e.taille;
                if (Champ(o, 0) < x1 - x0 && Champ(o, 1) < y1 - y0) Ajoute(p, o, e.taille, x0 + c * lpx, y0 + r * hpx);
            }
}

// ---- Selection ---------------------------------------------------------------------------------

void BasculeObjet(int n) {
    for (int i = 0; i < NbSelectionObjets; ++i)
        if (SelectionObjets[i] == n) {
            memmove(SelectionObjets + i, SelectionObjets + i + 1, sizeof(int) * (size_t)(NbSelectionObjets - i - 1));
            --NbSelectionObjets;
            return;
        }
    if (NbSelectionObjets < NB_SELECTION_MAX) SelectionObjets[NbSelectionObjets++] = n;
}

void SelectionneRectangle(int plan, int x0, int y0, int x1, int y1) {
    if (!EstListe(plan)) return;
    Plan& p = Plans[plan];
    Rectangle(p, x0, y0, x1, y1);
    for (int n = 0; n < p.nbObjets; ++n)
        if (Chevauche(p, Objet(p, n), x0, y0, x1, y1)) BasculeObjet(n);
}

// ---- Commands ---------------------------------------------------------------------------------

void CopieObjetsChoisis() {
    if (!EstListe(PlanActif)) return;
    Plan& p = Plans[PlanActif];
    if ((ObjetCourant < 0 && NbSelectionObjets == 0) || p.nbObjets < 1) return;
    if (!ObjetsCopies || TailleObjetsCopies != p.tailleObjet) {
        uint8_t* neuf = (uint8_t*)realloc(ObjetsCopies, (size_t)NB_COPIES_MAX * (size_t)p.tailleObjet);
        if (!neuf) return;
        ObjetsCopies = neuf;
        TailleObjetsCopies = p.tailleObjet;
    }
    NbObjetsCopies = 0;
    auto Copie = [&](int n) {
        if (n >= 0 && n < p.nbObjets && NbObjetsCopies < NB_COPIES_MAX)
            memcpy(ObjetsCopies + (size_t)NbObjetsCopies++ * (size_t)TailleObjetsCopies, Objet(p, n), (size_t)p.tailleObjet);
    };
    if (NbSelectionObjets > 0)
        for (int i = 0; i < NbSelectionObjets; ++i) Copie(SelectionObjets[i]);
    else
        Copie(ObjetCourant);
}

void SupprimeObjetsChoisis() {
    if (!EstListe(PlanActif)) return;
    Plan& p = Plans[PlanActif];
    if ((ObjetCourant < 0 && NbSelectionObjets == 0) || p.nbObjets < 1) return;
    if (NbSelectionObjets > 0) {
        std::sort(SelectionObjets, SelectionObjets + NbSelectionObjets, [](int a, int b) { return a > b; });
        for (int i = 0; i < NbSelectionObjets; ++i) RetireObjet(PlanActif, SelectionObjets[i]);
    } else {
        RetireObjet(PlanActif, ObjetCourant);
    }
    NbSelectionObjets = 0;
    ObjetCourant = -1;
    EmpileLies();
}

void CoupeObjetsChoisis() {
    CopieObjetsChoisis();
    SupprimeObjetsChoisis();
}

void ColleObjetsCopies() {
    if (!EstListe(PlanActif) || NbObjetsCopies == 0 || !ObjetsCopies) return;
    Plan& p = Plans[PlanActif];
    int mx = INT32_MAX, my = INT32_MAX;
    for (int k = 0; k < NbObjetsCopies; ++k) {
        const uint8_t* o = ObjetsCopies + (size_t)k * (size_t)TailleObjetsCopies;
        mx = std::min(mx, Champ(o, 0));
        my = std::min(my, Champ(o, 1));
    }
    NbSelectionObjets = 0;
    const int dx = (int)(DecalageX * p.vitesseX) - mx, dy = (int)(DecalageY * p.vitesseY) - my;
    for (int k = 0; k < NbObjetsCopies; ++k) {
        if (p.nbObjets >= p.capaciteObjets) {
            BoiteMessage(MESSAGE_PLEINE, PlanElement[PlanActif] ? PlanElement[PlanActif]->nom : p.name,
                         BOITE_OK | ICONE_ARRET);
            break;
        }
        Ajoute(p, ObjetsCopies + (size_t)k * (size_t)TailleObjetsCopies, TailleObjetsCopies, dx, dy);
        BasculeObjet(p.nbObjets - 1);
    }
    EmpileLies();
}

// ---- Gestures --------------------------------------------------------------------------------------

void PresseListe(bool ctrl, bool doubleClic) {
    if (!EstListe(PlanActif)) return;
    const int precedent = ObjetCourant;
    if (doubleClic && (ObjetCourant >= 0 || NbSelectionObjets > 0) && DialogueParametresObjets) {
        if (DialogueParametresObjets() == 1) EmpileLies();
        return;
    }
    const int touche = ObjetTouche(PlanActif, VersMondeX(Vue.curseurX), VersMondeY(Vue.curseurY));
    ObjetCourant = touche;
    if (precedent != -1) {
        if (!ctrl) {
            if (NbSelectionObjets > 0 && !DansSelection(touche)) NbSelectionObjets = 0;
        } else if (touche >= 0) {
            if (NbSelectionObjets == 0) {
                SelectionObjets[0] = precedent;
                NbSelectionObjets = 1;
                if (touche != precedent) SelectionObjets[NbSelectionObjets++] = touche;
            } else {
                BasculeObjet(touche);
            }
        }
    }
    if (touche >= 0) {
        Vue.capturee = true;
        ValeurCourante = 0;
        Motif.largeurMotif = Motif.hauteurMotif = Motif.largeurMotifPx = Motif.hauteurMotifPx = 0;
        Vue.objetTire = touche + 1;
        return;
    }
    if (NbSelectionObjets == 0) {
        if (ValeurCourante == 0) {
            if (MotifTenu()) {
                Vue.capturee = true;
                Vue.departX = VersMondeX(Vue.curseurX);
                Vue.departY = VersMondeY(Vue.curseurY);
                Vue.peintureActive = true;
            }
        } else if (!MotifTenu() && precedent == -1) {
            PeintSelection(Vue.curseurX, Vue.curseurY, Vue.curseurX, Vue.curseurY, false);
        }
    } else if (!ctrl) {
        NbSelectionObjets = 0;
    }
}

void RelacheObjetTire() {
    if (!EstListe(PlanActif) || Vue.objetTire <= 0) return;
    Plan& p = Plans[PlanActif];
    int cx = VersMondeX(Vue.curseurX), cy = VersMondeY(Vue.curseurY);
    if (Vue.magnetisme) {
        cx = Bas(cx, p.grilleX);
        cy = Bas(cy, p.grilleY);
    }
    if (NbSelectionObjets == 0) {
        if (ObjetCourant >= 0 && ObjetCourant < p.nbObjets) {
            uint8_t* o = Objet(p, ObjetCourant);
            if (cx != Champ(o, 0) || cy != Champ(o, 1)) {
                PoseChamp(o, 0, cx);
                PoseChamp(o, 1, cy);
                EmpileLies();
            }
        }
    } else if (Vue.objetTire - 1 < p.nbObjets) {
        const uint8_t* presse = Objet(p, Vue.objetTire - 1);
        const int dx = cx - Champ(presse, 0), dy = cy - Champ(presse, 1);
        if (dx != 0 || dy != 0) {
            const int largeur = p.sizex * p.tilex, hauteur = p.sizey * p.tiley;
            for (int i = 0; i < NbSelectionObjets; ++i) {
                if (SelectionObjets[i] < 0 || SelectionObjets[i] >= p.nbObjets) continue;
                uint8_t* o = Objet(p, SelectionObjets[i]);
                int x = Champ(o, 0) + dx, y = Champ(o, 1) + dy;
                if (Vue.magnetisme) {
                    x = Bas(x, p.grilleX);
                    y = Bas(y, p.grilleY);
                }
                x = std::max(0, std::min(x, largeur - p.tilex));
                y = std::max(0, std::min(y, hauteur - p.tiley));
                PoseChamp(o, 0, x);
                PoseChamp(o, 1, y);
            }
            EmpileLies();
        }
    }
    Vue.objetTire = 0;
    Vue.capturee = false;
}

void GlisseDroitListe(int x0, int y0, int x1, int y1, bool ctrl) {
    if (!EstListe(PlanActif)) return;
    const Plan& p = Plans[PlanActif];
    if (Vue.magnetisme) {
        x0 = Bas(x0, p.grilleX);
        y0 = Bas(y0, p.grilleY);
        x1 = Haut(x1, p.grilleX);
        y1 = Haut(y1, p.grilleY);
    }
    --x1;
    --y1;
    if (ctrl) {
        ValeurCourante = 0;
        Motif.largeurMotif = Motif.hauteurMotif = Motif.largeurMotifPx = Motif.hauteurMotifPx = 0;
        SelectionneRectangle(PlanActif, x0, y0, x1, y1);
    } else {
        CopieSelection(x0, y0, x1, y1, false);
    }
}

void LibereMotifObjets() {
    for (EmplacementObjets& e : MotifObjets) {
        free(e.objets);
        e = EmplacementObjets{};
    }
}
