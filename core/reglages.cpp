#include "core/reglages.h"

#include "core/elements.h"
#include "platform/texte.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

char RepertoireProgramme[260];
char CheminProjet[TAILLE_CHEMIN_PROJET];
char ScriptPrincipal[TAILLE_TEXTE_REGLAGE] = "script.spt";
char AideUtilisateur[TAILLE_TEXTE_REGLAGE] = "lisezmoi.htm";
char RepertoireNote[TAILLE_TEXTE_REGLAGE];

ReglagesConversion ReglagesConv;
ReglagesSysteme ReglagesSys;
ReglagesEditeur ReglagesEdit;
ReglagesFonds ReglagesPlans;
ReglagesModeHexa ReglagesHexa;

int tilex = 8;
int tiley = 8;
int sizex = 0;
int sizey = 0;
int NbTuiles = 0;
int tilebase = 0;
int gfxmask = -1;

TaillesPartagees TaillesPartagees::Sauve() {
    return {::tilex, ::tiley, ::sizex, ::sizey, NbTuiles, ::tilebase, ::gfxmask};
}

void TaillesPartagees::Restaure(unsigned parties) const {
    if (parties & TAILLES_TUILE) {
        ::tilex = tilex;
        ::tiley = tiley;
    }
    if (parties & TAILLES_CARTE) {
        ::sizex = sizex;
        ::sizey = sizey;
    }
    if (parties & TAILLES_NB_TUILES) NbTuiles = nbTuiles;
    if (parties & TAILLES_AFFICHAGE) {
        ::tilebase = tilebase;
        ::gfxmask = gfxmask;
    }
}

void ReinitialiseReglages() {
    ReglagesConv = ReglagesConversion{};
    ReglagesSys = ReglagesSysteme{};
    ReglagesEdit = ReglagesEditeur{};
    ReglagesPlans = ReglagesFonds{};
    ReglagesHexa = ReglagesModeHexa{};
    tilex = tiley = 8;
    sizex = sizey = NbTuiles = 0;
    tilebase = 0;
    gfxmask = -1;
    CopieBornee(ScriptPrincipal, "script.spt");
    CopieBornee(AideUtilisateur, "lisezmoi.htm");
    RepertoireNote[0] = 0;
    memset(DossierDefaut, 0, sizeof DossierDefaut);
}

uint32_t LitTailleMemoire(const char* texte) {
    char* fin = nullptr;
    double nombre = strtod(texte, &fin);
    if (fin == texte) return 0; // "Max.": no limit

    // The unit letter is looked for behind the leading digits, in the order
    // t, g, m, k, o; a fraction's point stops the digits.
    const char* reste = texte;
    while (*reste >= '0' && *reste <= '9') ++reste;
    static const struct {
        char lettre;
        int exposant;
    } unites[] = {{'t', 40}, {'g', 30}, {'m', 20}, {'k', 10}, {'o', 0}};
    int exposant = -1;
    for (const auto& u : unites) {
        for (const char* p = reste; *p; ++p)
            if (*p == u.lettre || *p == u.lettre - 'a' + 'A') {
                exposant = u.exposant;
                break;
            }
        if (exposant >= 0) break;
    }
    double octets = nombre;
    if (exposant > 0) octets = nombre * std::ldexp(1.0, exposant) + std::ldexp(1.0, exposant - 10);
    octets = std::trunc(octets);
    if (!(octets >= 0.0) || octets >= 4294967296.0) return 0;
    return (uint32_t)octets;
}

void TexteTailleMemoire(uint32_t valeur, char* sortie, size_t taille) {
    if (valeur == 0) {
        CopieBornee(sortie, taille, "Max.");
        return;
    }
    static const char* const unites[] = {"B", "kB", "MB", "GB", "TB"};
    int k = 0;
    while (k < 4 && !((double)valeur < 1000.0 * std::ldexp(1.0, 10 * k))) ++k;
    // A 32-bit value always stops below TB; the "%i TB" form of 1000 TB and
    // more cannot arise.
    char nombre[64];
    FormateBorne(nombre, sizeof nombre, "%f", (double)valeur / std::ldexp(1.0, 10 * k));
    if (char* point = strchr(nombre, '.')) {
        if (strlen(point) > 4) point[4] = 0; // three decimals
        size_t n = strlen(nombre);
        while (n > 0 && nombre[n - 1] == '0') nombre[--n] = 0;
        if (n > 0 && nombre[n - 1] == '.') nombre[--n] = 0;
    }
    FormateBorne(sortie, taille, "%s %s", nombre, unites[k]);
}
