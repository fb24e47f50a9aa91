// The document of planes.
//
// Sections: tables; conditions; opening; saving; title and memory texts;
// the active plane; tile size conversion; maps.add, links, conditions;
// the editor's opening and closing; script rows.
#include "editor/plans.h"

#include "editor/composition.h"
#include "editor/editeur.h"
#include "editor/etat.h"
#include "editor/liste.h"
#include "editor/edition.h"
#include "editor/notifications.h"
#include "format/ecriture.h"
#include "format/formats.h"
#include "format/liste.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "render/chargeurs.h"
#include "script/evenements.h"
#include "script/fonctions.h"
#include "script/interpreteur.h"
#include "script/syntaxe.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

Plan Plans[NB_PLANS_MAX];
int NbPlans = 0;
int PlanActif = 0;
ElementProjet* PlanElement[NB_PLANS_MAX];
int PlanRouvrir[NB_PLANS_MAX];
uint16_t NbConditions[NB_PLANS_MAX];
Condition Conditions[NB_PLANS_MAX][NB_CONDITIONS_MAX];
uint8_t Liens[NB_PLANS_MAX][NB_PLANS_MAX];
PileAnnulation Piles[NB_PLANS_MAX];
int64_t MemoireAnnulation = 0;
int64_t LimiteMemoireAnnulation = INT64_MAX;
char TitreEditeur[TAILLE_TEXTE_PLAN + 32] = "";
char TexteMemoire[32] = "Mem: 0 ko";
bool VitesseChangee = false;

uint32_t MasqueFormat(int formatCellule) {
    return formatCellule == CELLULE_8_BITS ? 0xFFu : formatCellule == CELLULE_16_BITS ? 0xFFFFu : 0xFFFFFFFFu;
}

namespace {

void LiensDeDepart(int n) {
    memset(Liens[n], FIN_LIENS, sizeof Liens[n]);
    Liens[n][0] = (uint8_t)n;
}

// The part of a name behind its last separator.
const char* NomCourtPlan(int n) {
    const char* nom = PlanElement[n] ? PlanElement[n]->nom : Plans[n].name;
    const char* s = DernierSeparateur(nom);
    return s ? s + 1 : nom;
}

void LiberePlan(Plan& p) {
    free(p.palette);
    free(p.tuiles);
    free(p.cellules);
    free(p.objets);
    p.palette = nullptr;
    p.tuiles = nullptr;
    p.cellules = nullptr;
    p.objets = nullptr;
}

} // namespace

// ---- Working state ------------------------------------------------------------------------

void SauvePlan(Plan& p) {
    p.sizex = sizex;
    p.sizey = sizey;
    p.tilex = tilex;
    p.tiley = tiley;
    p.nbTuiles = NbTuiles;
    p.tilebase = tilebase;
    p.gfxmask = (uint32_t)gfxmask;
    p.tuiles4Bits = ReglagesConv.quatreBits;
    p.modeDirect = ReglagesConv.quinzeBits;
}

void ChargePlan(const Plan& p) {
    const TaillesPartagees t{p.baseX, p.baseY, p.sizex, p.sizey, p.nbTuiles, p.tilebase, (int)p.gfxmask};
    t.Restaure();
}

PreparationPlan PreparePlan(int n) {
    const Plan& p = Plans[n];
    PreparationPlan e{p.tilex, p.tiley, p.grilleX, p.grilleY, p.vitesseX, p.vitesseY, MasqueCellule(p)};
    if (n == PlanActif || PlanActif < 0 || PlanActif >= NbPlans) return e;
    const Plan& a = Plans[PlanActif];
    e.grilleX = p.tilex;
    e.grilleY = p.tiley;
    if (a.vitesseX != 0) e.vitesseX /= a.vitesseX;
    if (a.vitesseY != 0) e.vitesseY /= a.vitesseY;
    return e;
}

// ---- Conditions ------------------------------------------------------------------------

int32_t ConvertitCellule(uint32_t valeur, int plan, uint32_t masque) {
    if (plan >= 0 && plan < NB_PLANS_MAX) {
        const int n = NbConditions[plan] < NB_CONDITIONS_MAX ? NbConditions[plan] : NB_CONDITIONS_MAX;
        for (int i = 0; i < n; ++i) {
            const Condition& c = Conditions[plan][i];
            if ((int32_t)valeur >= c.valeurMin && (int32_t)valeur <= c.valeurMax)
                return c.sansIncrement ? c.valeurMin - c.decalage : (int32_t)valeur - c.decalage;
        }
    }
    return (int32_t)(valeur & masque);
}

int32_t InverseCellule(int32_t t, int plan) {
    if (plan >= 0 && plan < NB_PLANS_MAX) {
        const int n = NbConditions[plan] < NB_CONDITIONS_MAX ? NbConditions[plan] : NB_CONDITIONS_MAX;
        for (int i = 0; i < n; ++i) {
            const Condition& c = Conditions[plan][i];
            const int32_t r = c.valeurMin - c.decalage;
            const bool touche = c.sansIncrement ? t == r : r <= t && t <= c.valeurMax - c.valeurMin + r;
            if (touche) return t + c.decalage;
        }
    }
    return t;
}

// ---- Opening ------------------------------------------------------------------------------

namespace {

// The first state of a plane loaded into slot: what every new plane starts
// with, its first snapshot, its notification.
void InstallePlan(int slot, int element, Plan& p, const char* notification) {
    p.grilleX = p.tilex;
    p.grilleY = p.tiley;
    p.baseX = p.tilex;
    p.baseY = p.tiley;
    p.vitesseX = p.vitesseY = 1.0;
    p.emulgba = 0;
    const int choisi = ModeleSelectionne >= 0 && ModeleSelectionne < NB_MODELES_MAX ? ModeleSelectionne : 0;
    p.modele = &TableModeles[choisi];
    Plans[slot] = p;
    Piles[slot] = PileAnnulation{};
    PlanElement[slot] = &Elements[element];
    ReglagesPlans.visible[slot] = 1;
    PlanRouvrir[slot] = 1;
    EmpileEtat(slot);
    AjouteNotificationSimple(notification, Elements[element].nom);
}

// The texts the load read, into the new plane.
void Lus(Plan& p, int element) {
    CopieBornee(p.file, Elements[element].fichier);
    CopieBornee(p.name, DerniereCarte.nom);
    CopieBornee(p.link, DerniereCarte.lien);
    CopieBornee(p.type, DerniereCarte.type);
    CopieBornee(p.lienTileset, DerniereCarte.lienMosaique);
    for (int i = 0; i < 8; ++i) CopieBornee(p.textes[i], DerniereCarte.textes[i]);
}

// Loads a map or a list into a new plane of slot; the shared sizes are put
// back whatever happens. 0 opened; 1 the load failed.
int Charge(int element, int slot) {
    const TaillesPartagees avant = TaillesPartagees::Sauve();
    const bool liste = TypeDe(Elements[element]) == TYPE_LISTE;
    Plan p{};
    p.palette = (uint8_t*)calloc(768, 1);
    ListeObjets objets;
    const bool lu = p.palette && (liste ? ChargeListe(p.palette, &p.tuiles, element, objets)
                                        : ChargeCarte(p.palette, &p.tuiles, &p.cellules, element));
    if (lu) {
        SauvePlan(p);
        Lus(p, element);
        p.typePlan = liste ? TYPE_LISTE : TYPE_CARTE;
        p.formatCellule = liste ? CELLULE_16_BITS : DerniereCarte.formatCellule;
        p.objets = objets.objets;
        p.nbObjets = objets.nombre;
        p.tailleObjet = liste ? objets.taille : TAILLE_OBJET_BASE_PLAN;
        p.capaciteObjets = objets.capacite;
    } else {
        free(objets.objets);
        LiberePlan(p);
    }
    avant.Restaure();
    if (!lu) return 1;
    InstallePlan(slot, element, p, liste ? "List opened: %s" : "Map opened: %s");
    return 0;
}

} // namespace

int OuvrePlan(int element) {
    if (element < 0 || element >= NbElements) return 1;
    for (int i = 0; i < NB_PLANS_MAX; ++i)
        if (PlanElement[i] == &Elements[element]) return 2;
    if (NbPlans >= NB_PLANS_MAX) return 3;
    const int resultat = Charge(element, NbPlans);
    if (resultat == 0) {
        ++NbPlans;
        MajTitre();
    }
    return resultat;
}

int AjouteFond(int element) {
    if (NbPlans >= NB_PLANS_MAX) {
        BoiteMessage("The background limit is reached!", "Error", BOITE_OK | ICONE_ARRET);
        return -1;
    }
    return OuvrePlan(element);
}

// ---- Saving ---------------------------------------------------------------------------------

namespace {

constexpr const char* MESSAGE_ECRITURE = "Unable to open the file for writing.\nThe file name is probably erroneous.";

// What a save changes around the format engine, and puts back.
struct Sauvegarde {
    EcritureSure ecriture;
    TaillesPartagees avant;
    char textes[9][TAILLE_TEXTE_USER];
};

// The plane's file opened through the format of its extension, the shared
// sizes and the template variables set from the plane. Null after the
// message.
FILE* CommenceSauvegarde(const Plan& p, Sauvegarde& s) {
    ChoisitFormatParExtension(p.file);
    FILE* f = CommenceEcritureSure(s.ecriture, p.file);
    if (!f) {
        BoiteMessage(MESSAGE_ECRITURE, p.file, BOITE_OK | ICONE_ARRET);
        return nullptr;
    }
    s.avant = TaillesPartagees::Sauve();
    memcpy(s.textes, TextesUser, sizeof s.textes);
    ChargePlan(p);
    RestaureVariables();
    ChargeTextesUser();
    MetTexteVariable("file", p.file);
    MetTexteVariable("name", p.name);
    MetTexteVariable("link", p.link);
    return f;
}

// The file put in place whole, or the old one kept; then the hook, the
// saved state and the notification.
int TermineSauvegarde(int n, Sauvegarde& s, const char* notification) {
    const Plan& p = Plans[n];
    RestaureVariables();
    memcpy(TextesUser, s.textes, sizeof s.textes);
    s.avant.Restaure();
    if (!TermineEcritureSure(s.ecriture)) {
        BoiteMessage(MESSAGE_ECRITURE, p.file, BOITE_OK | ICONE_ARRET);
        return 0;
    }
    if (PlanElement[n]) EvenementSauvegarde(PlanElement[n]->nom);
    Piles[n].perdu = 0;
    Piles[n].enregistre = Piles[n].courant;
    MajTitre();
    AjouteNotificationSimple(notification, PlanElement[n] ? PlanElement[n]->nom : p.name);
    return 1;
}

void TextesPlan(const Plan& p) {
    for (int i = 0; i < 8; ++i) CopieBornee(TextesUser[i + 1], p.textes[i]);
}

// A list plane goes through the list template, its objects sorted by x, then
// y, in the file only: the order in memory stays.
int EnregistrePlanListe(int n) {
    const Plan& p = Plans[n];
    if (!p.objets || p.tailleObjet < TAILLE_OBJET_BASE_PLAN) return 0;
    Sauvegarde sauvegarde;
    FILE* f = CommenceSauvegarde(p, sauvegarde);
    if (!f) return 0;
    const ModeleParametres& modele = p.modele ? *p.modele : TableModeles[0];
    MetEntierVariable("size", p.nbObjets);
    MetEntierVariable("memory", (int32_t)((int64_t)p.nbObjets * p.tailleObjet));
    MetTexteVariable("type", p.type);
    MetTexteVariable("model", modele.nom);
    TextesPlan(p);
    const SectionFormat& s = FormatCourant.sections[SECTION_LIST];
    EcritGabarit(s.declaration, f);
    // Sorted by rising x, then y; of two at one place the later one first.
    const size_t t = (size_t)p.tailleObjet;
    std::vector<int> ordre((size_t)p.nbObjets);
    for (int i = 0; i < p.nbObjets; ++i) ordre[(size_t)i] = i;
    auto Champ = [&](int i, int k) {
        int32_t v;
        memcpy(&v, p.objets + (size_t)i * t + 4 * (size_t)k, 4);
        return v;
    };
    std::stable_sort(ordre.begin(), ordre.end(), [&](int a, int b) {
        const int32_t xa = Champ(a, 0), xb = Champ(b, 0), ya = Champ(a, 1), yb = Champ(b, 1);
        if (xa != xb) return xa < xb;
        if (ya != yb) return ya < yb;
        return a > b;
    });
    ConstruitGabaritListe();
    for (size_t i = 0; i < ordre.size(); ++i) {
        if (s.n_every > 0 && i % (size_t)s.n_every == 0) EcritGabarit(s.every_x, f);
        EcritObjetListe(f, GabaritListe, modele, p.objets + (size_t)ordre[i] * t);
        EcritGabarit(s.line, f);
    }
    EcritGabarit(s.end, f);
    return TermineSauvegarde(n, sauvegarde, "List saved: %s");
}

} // namespace

int EnregistrePlan(int n) {
    if (n < 0 || n >= NbPlans) return 0;
    const Plan& p = Plans[n];
    if (p.typePlan == TYPE_LISTE) return EnregistrePlanListe(n);
    if (!p.cellules) return 0;
    Sauvegarde sauvegarde;
    FILE* f = CommenceSauvegarde(p, sauvegarde);
    if (!f) return 0;
    const int octets = p.formatCellule == CELLULE_8_BITS ? 1 : p.formatCellule == CELLULE_32_BITS ? 4 : 2;
    MetEntierVariable("memory", (int32_t)((int64_t)p.sizex * p.sizey * octets));
    MetEntierVariable("depth", octets * 8);
    MetTexteVariable("type", octets == 1   ? FormatCourant.type8
                             : octets == 4 ? FormatCourant.type32
                                           : FormatCourant.type16);
    TextesPlan(p);
    // Cells row by row, the value's place counted from the row's start.
    const SectionFormat& s = FormatCourant.sections[SECTION_MAP];
    EcritGabarit(s.declaration, f);
    EcritValeursLignes(f, s, octets == 1 ? s.element2 : octets == 4 ? s.element3 : s.element, p.cellules, p.sizex,
                       p.sizey, true);
    EcritGabarit(s.end, f);
    return TermineSauvegarde(n, sauvegarde, "Map saved: %s");
}

void EnregistreLies() {
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    const uint8_t* liens = Liens[PlanActif];
    for (int i = 0; i < NB_PLANS_MAX && liens[i] != FIN_LIENS; ++i) EnregistrePlan(liens[i]);
}

// ---- Title and memory ------------------------------------------------------------------------

bool PlanModifie(int n) {
    if (n < 0 || n >= NbPlans) return false;
    return Piles[n].courant != Piles[n].enregistre || Piles[n].perdu;
}

void MajTitre() {
    if (PlanActif < 0 || PlanActif >= NbPlans || !Piles[PlanActif].tampon) return;
    FormateBorne(TitreEditeur, sizeof TitreEditeur, PlanModifie(PlanActif) ? "%s* - Map editor" : "%s - Map editor",
                 NomCourtPlan(PlanActif));
}

void MajMemoire() {
    const int64_t m = MemoireAnnulation;
    char* t = TexteMemoire;
    const size_t n = sizeof TexteMemoire;
    if (m < 10240) FormateBorne(t, n, "Mem: %#.2f ko", m / 1024.0);
    else if (m < 102400) FormateBorne(t, n, "Mem: %#.1f ko", m / 1024.0);
    else if (m < 1024000) FormateBorne(t, n, "Mem: %i ko", (int)(m / 1024));
    else if (m < 10485760) FormateBorne(t, n, "Mem: %#.2f Mo", m / 1048576.0);
    else if (m < 104857600) FormateBorne(t, n, "Mem: %#.1f Mo", m / 1048576.0);
    else if (m < 1048576000) FormateBorne(t, n, "Mem: %i Mo", (int)(m / 1048576));
    else FormateBorne(t, n, "Mem: %#.2f Go", m / 1073741824.0);
}

// ---- The active plane ------------------------------------------------------------------------

void ActivePlan(int n) {
    if (n < 0 || n >= NbPlans || n == PlanActif) return;
    ObjetCourant = -1;
    NbSelectionObjets = 0;
    if (PlanActif >= 0 && PlanActif < NbPlans) {
        Plan& ancien = Plans[PlanActif];
        ancien.tilex = ancien.baseX;
        ancien.tiley = ancien.baseY;
    }
    PlanActif = n;
    Plan& p = Plans[n];
    p.tilex = ReglagesHexa.actif ? 16 : p.baseX;
    p.tiley = ReglagesHexa.actif ? 16 : p.baseY;
    MajBoutonsAnnulation();
    MajTitre();
}

// ---- Tile size conversion ------------------------------------------------------------------

int ConvertitTailleTuiles(int nw, int nh) {
    if (PlanActif < 0 || PlanActif >= NbPlans) return 0;
    Plan& p = Plans[PlanActif];
    const int ow = p.baseX, oh = p.baseY;
    if (p.typePlan != TYPE_CARTE || !p.cellules || ow < 8 || oh < 8 || nw < 8 || nh < 8) return 0;
    const int64_t W8 = (int64_t)p.sizex * (ow / 8), H8 = (int64_t)p.sizey * (oh / 8);
    uint32_t* grille = W8 * H8 > 0 && W8 * H8 <= CELLULES_MAX * 64
                           ? (uint32_t*)calloc((size_t)(W8 * H8), sizeof(uint32_t))
                           : nullptr;
    if (!grille) {
        BoiteMessage("Insufficient memory...", "Error", BOITE_OK | ICONE_ARRET);
        return 0;
    }
    const int64_t parAncien = (int64_t)ow * oh / 64;
    for (int y = 0; y < p.sizey; ++y)
        for (int x = 0; x < p.sizex; ++x) {
            const int64_t v = (int64_t)p.cellules[(size_t)y * p.sizex + x] + p.tilebase;
            if (v < 0 || v >= p.nbTuiles) continue;
            for (int r = 0; r < oh / 8; ++r)
                for (int c = 0; c < ow / 8; ++c)
                    grille[(size_t)(((int64_t)(oh / 8) * y + r) * W8 + (int64_t)(ow / 8) * x + c)] =
                        (uint32_t)(v * parAncien + (int64_t)r * (ow / 8) + c);
        }
    const int64_t parNouveau = (int64_t)nw * nh / 64;
    const int64_t sx = W8 / (nw / 8), sy = H8 / (nh / 8);
    uint32_t* cellules = sx * sy > 0 ? (uint32_t*)calloc((size_t)(sx * sy), sizeof(uint32_t)) : nullptr;
    if (!cellules) {
        free(grille);
        BoiteMessage("Insufficient memory", "Oops...", BOITE_OK | ICONE_ARRET);
        return 0;
    }
    for (int64_t y = 0; y < sy; ++y)
        for (int64_t x = 0; x < sx; ++x)
            cellules[(size_t)(y * sx + x)] =
                (uint32_t)(grille[(size_t)((int64_t)(nh / 8) * y * W8 + (int64_t)(nw / 8) * x)] / parNouveau);
    free(grille);
    p.nbTuiles = (int)((int64_t)p.nbTuiles * parAncien / parNouveau);
    p.sizex = (int)sx;
    p.sizey = (int)sy;
    p.baseX = nw;
    p.baseY = nh;
    p.tilex = ReglagesHexa.actif ? 16 : nw;
    p.tiley = ReglagesHexa.actif ? 16 : nh;
    free(p.cellules);
    p.cellules = cellules;
    ReinitLies();
    return 1;
}

// ---- maps.add, links, conditions --------------------------------------------------------------

void AjoutePlanNomme(const char* nom, int emplacement) {
    int element = -1;
    for (int i = 0; i < NbElements && element < 0; ++i) {
        const uint32_t t = TypeDe(Elements[i]);
        if ((t == TYPE_CARTE || t == TYPE_LISTE) && !EstDossier(Elements[i]) && strcmp(Elements[i].nom, nom) == 0)
            element = i;
    }
    if (element < 0) return;
    if (emplacement >= 1 && emplacement <= NB_PLANS_MAX && emplacement - 1 < NbPlans) {
        const int slot = emplacement - 1;
        if (PlanElement[slot] == &Elements[element]) return;
        // The plane takes the slot's place; the count stays.
        Plan ancien = Plans[slot];
        PileAnnulation pile = Piles[slot];
        ElementProjet* ancienElement = PlanElement[slot];
        PlanElement[slot] = nullptr; // the slot's element may be opened again elsewhere later
        const int compte = NbPlans;
        NbPlans = slot;
        const int resultat = OuvrePlan(element);
        NbPlans = compte;
        if (resultat == 0) {
            LiberePlan(ancien);
            MemoireAnnulation -= pile.octets;
            free(pile.tampon);
            MajMemoire();
        } else {
            PlanElement[slot] = ancienElement;
        }
        return;
    }
    OuvrePlan(element);
}

void LiePlans(const int* numeros, int nombre) {
    uint8_t liste[NB_PLANS_MAX];
    memset(liste, FIN_LIENS, sizeof liste);
    int n = 0;
    for (int i = 0; i < nombre && n < NB_PLANS_MAX; ++i) {
        const int p = numeros[i];
        if (p <= 0 || p > NbPlans) continue;
        bool vu = false;
        for (int k = 0; k < n; ++k) vu |= liste[k] == p - 1;
        if (!vu) liste[n++] = (uint8_t)(p - 1);
    }
    if (n == 0) return;
    for (int k = 0; k < n; ++k) {
        const int p = liste[k];
        const bool modifie = PlanModifie(p);
        ReinitAnnulation(p);
        Piles[p].perdu = modifie;
        memcpy(Liens[p], liste, sizeof liste);
    }
    MajTitre();
}

void AjouteCondition(int plan, int32_t bas, int32_t haut, int32_t remplacement, bool constant) {
    if (plan < 0 || plan >= NB_PLANS_MAX || NbConditions[plan] >= NB_CONDITIONS_MAX) return;
    const Condition c{bas, haut, bas - remplacement, (uint8_t)(constant ? 1 : 0)};
    for (int i = 0; i < NbConditions[plan]; ++i) {
        const Condition& d = Conditions[plan][i];
        if (d.valeurMin == c.valeurMin && d.valeurMax == c.valeurMax && d.decalage == c.decalage &&
            d.sansIncrement == c.sansIncrement)
            return;
    }
    Conditions[plan][NbConditions[plan]++] = c;
}

void ReinitialiseDocument() {
    for (int i = 0; i < NB_PLANS_MAX; ++i) {
        NbConditions[i] = 0;
        LiensDeDepart(i);
        PlanRouvrir[i] = 1;
        ReglagesPlans.visible[i] = 1;
    }
    const int transparence = ReglagesPlans.transparence;
    ReglagesPlans = ReglagesFonds{};
    ReglagesPlans.transparence = transparence;
    ReglagesHexa = ReglagesModeHexa{};
    ReglagesEdit.grille = 0;
    ReglagesEdit.couleurGrille = 0x404040;
    ReglagesEdit.alphaGrille = 0x60;
    ReglagesEdit.zoom = 1.0;
    ReglagesEdit.zoomPrecis = 0;
    ObjetCourant = -1;
    NbSelectionObjets = 0;
    VitesseChangee = false;
}

void FermePlans() {
    for (int i = 0; i < NB_PLANS_MAX; ++i) {
        if (i < NbPlans) LiberePlan(Plans[i]);
        LiberePile(i);
        PlanElement[i] = nullptr;
    }
    NbPlans = 0;
    PlanActif = 0;
    MajMemoire();
}

// ---- The editor's life ------------------------------------------------------------------------

int OuvreEditeur(int element) {
    if (element < 0 || element >= NbElements) return 0;
    const uint64_t libre = PlateformeCourante.memoireLibre();
    LimiteMemoireAnnulation = libre > 0 ? (int64_t)(libre / 4) : INT64_MAX;
    EffaceNotifications();
    AjouteNotificationSimple("Welcome!");
    EditeurOuvert = true;
    FermePlans();
    ReinitialiseDocument();
    MemoireAnnulation = 0;
    MajMemoire();
    if (!PrepareMotif()) {
        EditeurOuvert = false;
        return 0;
    }
    PlanActif = 0;
    OuvrePlan(element);
    // The element's tile size decides whether the editor can show it.
    auto Cote = [](int c) { return c == 8 || c == 16 || c == 32 || c == 64; };
    if (NbPlans > 0 && !(Cote(Plans[0].baseX) && Cote(Plans[0].baseY))) {
        BoiteMessage("Your map format is not useable on the editor. The tile format must be one of these values: 8, "
                     "16, 32, 64.\nSorry, but you cannot open this file here.",
                     "Oops!", BOITE_OK | ICONE_ARRET);
        FermePlans();
        EditeurOuvert = false;
        return 0;
    }
    MajTitre();
    // The state script beside the map, then the project's hook.
    char script[TAILLE_TEXTE_PLAN];
    NomScriptParams(Elements[element].fichier, script, sizeof script);
    ResultatScript = 1;
    if (FichierExiste(script)) ExecuteFichierScript(script, "");
    int resultat = ResultatScript;
    const int crochet = EvenementOuverture(Elements[element].nom);
    if (resultat != 0) resultat = crochet;
    if (resultat == 0 || NbPlans == 0) {
        FermePlans();
        EditeurOuvert = false;
        return 0;
    }
    ObjetCourant = -1;
    Vue.objetTire = 0;
    return 1;
}

int FermeEditeur() {
    bool demande[NB_PLANS_MAX] = {};
    bool enregistre = false;
    const int actif = PlanActif;
    for (int i = 0; i < NbPlans; ++i) {
        if (demande[i] || !PlanModifie(i)) continue;
        char texte[TAILLE_TEXTE_PLAN + 80];
        FormateBorne(texte, sizeof texte, "The file %s has been modified. Do you want to save the changes?",
                     NomCourtPlan(i));
        const int r = BoiteMessage(texte, "Question", BOITE_OUINONANNULER | ICONE_QUESTION);
        if (r == REPONSE_ANNULER) {
            PlanActif = actif;
            return 0;
        }
        if (r == REPONSE_OUI) {
            PlanActif = i;
            EnregistreLies();
            enregistre = true;
        }
        for (int k = 0; k < NB_PLANS_MAX && Liens[i][k] != FIN_LIENS; ++k) demande[Liens[i][k]] = true;
    }
    if (enregistre || ReglagesSys.sauverParamsMapsAuto) EcritEtatEditeur();
    FermePlans();
    LibereMotifObjets();
    EditeurOuvert = false;
    return 1;
}

// ---- Script rows ---------------------------------------------------------------------------------

namespace {

int PlanIndexe() { return IndiceCourant; }

void FondsAjoute(char* a) {
    if (!EditeurOuvert) return; // planes exist only in an open editor
    char* p = a;
    const char* nom = LitChaine(&p);
    if (!nom) return;
    while (*p == ' ' || *p == '\t' || *p == ',') ++p;
    const int emplacement = *p ? LitNombre(p) : 0;
    AjoutePlanNomme(nom, emplacement);
}

void FondsReinit(char*) { FermePlans(); }

void FondsLie(char* a) {
    int numeros[64];
    int n = 0;
    for (char* p = a; *p && n < 64; p = ArgumentSuivant(p)) numeros[n++] = LitNombre(p);
    LiePlans(numeros, n);
}

void FondsVitesse(char* a) {
    const int n = PlanIndexe();
    if (n < 0 || n >= NbPlans) return;
    const double vx = atof(a), vy = atof(ArgumentSuivant(a));
    if (vx > 0) Plans[n].vitesseX = vx;
    if (vy > 0) Plans[n].vitesseY = vy;
    VitesseChangee = true;
}

void FondsCondition(char* a) {
    const int n = PlanIndexe();
    if (n < 0 || n >= NB_PLANS_MAX) return;
    const char* b = ArgumentSuivant(a);
    const char* c = ArgumentSuivant(b);
    size_t l = strlen(a);
    while (l > 0 && (a[l - 1] == ' ' || a[l - 1] == '\t' || a[l - 1] == '\r' || a[l - 1] == '\n')) --l;
    AjouteCondition(n, LitNombre(a), LitNombre(b), LitNombre(c), l > 0 && a[l - 1] == '=');
}

void FondsGrille(char* a) {
    const int n = PlanIndexe();
    if (n < 0 || n >= NbPlans) return;
    const int gx = atoi(a), gy = atoi(ArgumentSuivant(a));
    if (gx > 0) Plans[n].grilleX = gx;
    Plans[n].grilleY = gy < 1 ? Plans[n].grilleX : gy;
}

// editor.move width, height[, x, y[, maximised]]: two numbers change the size only.
void EditeurDeplace(char* a) {
    int v[5] = {}, n = 0;
    for (char* p = a; *p && n < 5; p = ArgumentSuivant(p)) v[n++] = LitNombre(p);
    if (n < 2) return;
    PositionEditeur.largeur = v[0];
    PositionEditeur.hauteur = v[1];
    if (n >= 4) {
        PositionEditeur.x = v[2];
        PositionEditeur.y = v[3];
    }
    PositionEditeur.maximisee = n >= 5 && v[4] != 0;
}

void FondsEmulGba(char* a) {
    const int n = PlanIndexe();
    if (n < 0 || n >= NbPlans) return;
    Plans[n].emulgba = LitNombre(a);
}

} // namespace

void InstalleEditeur() {
    Fonctions.fondsAjoute = FondsAjoute;
    Fonctions.fondsReinit = FondsReinit;
    Fonctions.fondsLie = FondsLie;
    Fonctions.fondsVitesse = FondsVitesse;
    Fonctions.fondsCondition = FondsCondition;
    Fonctions.fondsGrille = FondsGrille;
    Fonctions.fondsEmulGba = FondsEmulGba;
    Fonctions.editeurDeplace = EditeurDeplace;
}
