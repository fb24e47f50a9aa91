// Hex mode: the toggle and the value box.
#include "editor/edition.h"
#include "editor/notifications.h"
#include "editor/plans.h"
#include "platform/texte.h"

void BasculeModeHexa() {
    ReglagesHexa.actif = !ReglagesHexa.actif;
    if (PlanActif < 0 || PlanActif >= NbPlans) return;
    Plan& p = Plans[PlanActif];
    p.tilex = ReglagesHexa.actif ? 16 : p.baseX;
    p.tiley = ReglagesHexa.actif ? 16 : p.baseY;
}

uint32_t TapeValeurHexa(const char* texte) {
    uint32_t v = 0;
    for (int i = 0; texte && i < 100 && texte[i]; ++i) {
        const char c = texte[i];
        const int d = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                             : -1;
        if (d < 0) break;
        v = v << 4 | (uint32_t)d;
    }
    const int format = PlanActif >= 0 && PlanActif < NbPlans ? Plans[PlanActif].formatCellule : CELLULE_16_BITS;
    v &= MasqueFormat(format);
    ChoisitValeur(v);
    return v;
}

void TexteValeurHexa(char* sortie, int taille) { FormateBorne(sortie, (size_t)taille, "%x", ValeurCourante); }
