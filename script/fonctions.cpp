// Built-in functions of the dictionary.
//
// Sections: control flow; names noted and chosen; blocks; system; colour
// settings; editor; bits; model parameters; the table of functions.
#include "script/fonctions.h"

#include "core/chaines.h"
#include "core/modeles.h"
#include "core/reglages.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "script/crochets.h"
#include "script/syntaxe.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

char FormatNote[TAILLE_CHAINE_SCRIPT];
char ModeleNote[TAILLE_CHAINE_SCRIPT];

namespace {

bool EstBlanc(char c) { return c == ' ' || c == '\t'; }

void Inactive(char*) {}

// ---- Control flow ------------------------------------------------------------

void Ok(char*) { CrochetsFormulaire.ok(); }
void Visible(char* a) { CrochetsFormulaire.visible(LitNombre(a)); }
void Quitte(char*) { FinScript = 2; }
void Fin(char*) { FinScript = 1; }

void Retour(char* a) {
    ResultatScript = LitNombre(a);
    FinScript = 1;
}

void Aller(char* a) {
    size_t n = strlen(a);
    while (n > 0 && EstBlanc(a[n - 1])) --n;
    CopieBorneeN(EtiquetteCherchee, sizeof EtiquetteCherchee, a, n);
}

void Exec(char* a) {
    if (char* commande = LitChaine(&a)) PlateformeCourante.lanceCommande(commande);
}

void Msgbox(char* a) {
    char texte[TAILLE_CHAINE_SCRIPT * 2] = "Breakpoint defined here (MsgBox without argument).";
    char titre[TAILLE_CHAINE_SCRIPT] = "User message";
    const char* p = a;
    const char* apres = CopieChaineEchappee(nullptr, p, 0);
    if (apres != p) {
        p = CopieChaineEchappee(texte, p, sizeof texte);
        // Each further string, behind a comma and blanks, replaces the title.
        for (;;) {
            const char* q = p;
            while (*q == ',' || EstBlanc(*q)) ++q;
            if (CopieChaineEchappee(nullptr, q, 0) == q) break;
            p = CopieChaineEchappee(titre, q, sizeof titre);
        }
    }
    while (EstBlanc(*p)) ++p;
    const char* etiquette = strncmp(p, "sinon goto ", 11) == 0 ? p + 11 : nullptr;
    int reponse = BoiteMessage(texte, titre, BOITE_OKANNULER | ICONE_INFORMATION);
    if (reponse == REPONSE_OK) return;
    if (etiquette) {
        char copie[TAILLE_ETIQUETTE];
        CopieBornee(copie, etiquette);
        Aller(copie);
    } else {
        FinScript = 1;
    }
}

// Includes nest, 32 deep at most, and a file that is running is not included
// again: a script that includes itself would otherwise never end.
constexpr int PROFONDEUR_INCLUSION_MAX = 32;
char CheminsInclus[PROFONDEUR_INCLUSION_MAX][TAILLE_CHEMIN_PROJET];
int ProfondeurInclusion = 0;

bool DejaInclus(const char* complet) {
    for (int i = 0; i < ProfondeurInclusion; ++i)
        if (strcmp(CheminsInclus[i], complet) == 0) return true;
    return false;
}

void Inclure(char* a) {
    char* chemin = LitChaine(&a);
    if (!chemin) {
        ErreurScript("Function: include\nFilename incorrectly defined (don't forget quote marks)");
        return;
    }
    char complet[TAILLE_CHEMIN_PROJET];
    if (!CheminComplet(chemin, complet, sizeof complet)) CopieBornee(complet, chemin);
    bool ouvert = false;
    if (ProfondeurInclusion < PROFONDEUR_INCLUSION_MAX && !DejaInclus(complet)) {
        CopieBornee(CheminsInclus[ProfondeurInclusion++], complet);
        ouvert = ExecuteFichierScript(chemin, nullptr) != 0;
        --ProfondeurInclusion;
    }
    if (!ouvert) BoiteMessage(chemin, "Unable to include this file", BOITE_OK | ICONE_ARRET);
}

// ---- Names noted and chosen ------------------------------------------------------

void NoteFormat(char* a) {
    if (char* nom = LitChaine(&a)) CopieBornee(FormatNote, nom);
}
void NoteModele(char* a) {
    if (char* nom = LitChaine(&a)) CopieBornee(ModeleNote, nom);
}
void SelFormat(char* a) {
    if (char* nom = LitChaine(&a)) CrochetsScript.choisitFormat(nom);
}
void SelModele(char* a) {
    if (char* nom = LitChaine(&a)) ChoisitModele(nom);
}
void Conv(char* a) { CrochetsScript.conv(a); }

// ---- Blocks ------------------------------------------------------------------

void DefFormat(char* a) {
    char nom[TAILLE_CHAINE_SCRIPT];
    if (!NomDeBloc(a, nom, sizeof nom) || !FichierScriptCourant) return;
    CrochetsScript.definitFormat(FichierScriptCourant, nom);
}

void DefModele(char* a) {
    char nom[TAILLE_CHAINE_SCRIPT];
    if (!NomDeBloc(a, nom, sizeof nom) || !FichierScriptCourant) return;
    DefinitModele(FichierScriptCourant, nom);
}

// ---- System --------------------------------------------------------------------

void ObjetsMax(char* a) {
    int n = LitNombre(a);
    ReglagesSys.objetsMax = n < 3 ? 3 : n;
}
void MemoireMax(char* a) { ReglagesSys.memoireMax = LitTailleMemoire(a); }
void SystemeEmulGba(char*) {
    BoiteMessage("System.emulGBA is not available anymore. Please use Maps[x].emulGBA instead", "Error",
                 BOITE_OK | ICONE_ARRET);
}

// ---- Colour settings -------------------------------------------------------------

void Reconstruit() { CrochetsScript.reconstruitTablesCouleur(); }

void CouleurMasque(char* a) {
    uint32_t c = (uint32_t)LitNombre(a);
    for (int i = 0; i < 3; ++i) ReglagesConv.masque[i] = (uint8_t)(c >> (8 * i));
}
void CouleurZero(char* a) {
    uint32_t c = (uint32_t)LitNombre(a);
    for (int i = 0; i < 3; ++i) ReglagesConv.zero[i] = (uint8_t)((c >> (8 * i) & 0xff) >> 3);
}
void Nuances(char* a) {
    // At least one shade: the tables divide by the count less one.
    int n = LitNombre(a);
    ReglagesConv.nuances = n < 1 ? 1 : n;
    Reconstruit();
}
void NuancesAvant(char* a) {
    ReglagesConv.nuancesAvant = LitNombre(a);
    Reconstruit();
}
void Tronquer(char* a) {
    ReglagesConv.tronquer = LitNombre(a);
    Reconstruit();
}

void Mode(char* a) {
    size_t n = strlen(a);
    while (n > 0 && EstBlanc(a[n - 1])) a[--n] = 0;
    static const struct {
        const char* mot;
        MethodeCouleurs mode;
    } mots[] = {{"0", METHODE_NORMALE},      {"1", METHODE_TRAMEE},         {"2", METHODE_OPTIMALE},
                {"initial", METHODE_NORMALE}, {"normal", METHODE_NORMALE},   {"halftone", METHODE_TRAMEE},
                {"tram\xE9", METHODE_TRAMEE}, {"optimal", METHODE_OPTIMALE}, {"meilleur", METHODE_OPTIMALE}};
    for (const auto& m : mots) {
        size_t l = CommenceParLatin1(a, m.mot);
        if (l && a[l] == 0) {
            ReglagesConv.mode = m.mode;
            return;
        }
    }
    ErreurScript("The following color quantization method was not found: %s", a);
}

// One number of a lighting value: "50%" means 127.5.
bool LitValeurLumiere(const char*& p, double& valeur) {
    char* fin = nullptr;
    valeur = strtod(p, &fin);
    if (fin == p) return false;
    p = fin;
    if (*p == '%') {
        valeur = valeur * 255.0 * 0.01;
        ++p;
    }
    return true;
}

void Luminosite(char* a) {
    const char* p = a;
    for (;;) {
        while (EstBlanc(*p)) ++p;
        if (!*p) break;
        double* cible;
        bool inverse = false;
        if (strncmp(p, "gamma", 5) == 0) {
            cible = ReglagesConv.gamma;
            inverse = true;
            p += 5;
        } else if (strncmp(p, "add", 3) == 0) {
            cible = ReglagesConv.add;
            p += 3;
        } else if (strncmp(p, "alpha", 5) == 0) {
            cible = ReglagesConv.alpha;
            p += 5;
        } else {
            BoiteMessage("Dans la fonction de convert.luminosite: le param\xE8tre \xE0 r\xE9gler n'est pas connu.\n"
                         "Exemple: convert.luminosite GAMMA=RGB(1.0,1.3,1.0)",
                         "Erreur d'ex\xE9" "cution de macro", BOITE_OK | ICONE_ARRET);
            break;
        }
        while (EstBlanc(*p)) ++p;
        if (*p == '=') ++p;
        while (EstBlanc(*p)) ++p;

        double valeurs[3];
        bool bon = true;
        if (*p >= '0' && *p <= '9') {
            bon = LitValeurLumiere(p, valeurs[0]);
            valeurs[1] = valeurs[2] = valeurs[0];
            while (EstBlanc(*p)) ++p;
        } else if (strncmp(p, "rgb", 3) == 0) {
            p += 3;
            while (EstBlanc(*p)) ++p;
            if (*p == '(') ++p;
            for (int i = 0; i < 3 && bon; ++i) {
                while (EstBlanc(*p) || *p == ',') ++p;
                bon = LitValeurLumiere(p, valeurs[i]);
                if (*p == ')') ++p;
            }
        } else {
            bon = false;
        }
        if (!bon) {
            ErreurScript("Color effects system error, parsing: %s", p);
            break;
        }
        for (int i = 0; i < 3; ++i) cible[i] = inverse ? 1.0 / valeurs[i] : valeurs[i];
    }
    Reconstruit();
}

// ---- Editor --------------------------------------------------------------------

void EditeurZoom(char* a) {
    double z = atof(a);
    if (z > 0) ReglagesEdit.zoom = z;
}

// ---- Bits --------------------------------------------------------------------

void BitsTexte(char* a) { VerifieNumeroBit(LitNombre(a)); }
void BitsActif(char* a) { VerifieNumeroBit(LitNombre(a)); }

// ---- Model parameters ------------------------------------------------------------

ModeleParametres& ModeleCourant() {
    int i = ModeleSelectionne >= 0 && ModeleSelectionne < NB_MODELES_MAX ? ModeleSelectionne : 0;
    return TableModeles[i];
}

void ReinitParams(char*) {
    ModeleCourant().nbParametres = 0;
    ModeleCourant().taille = TailleModele(ModeleCourant());
}

void AjParam(char* a) {
    char* nom = LitChaine(&a);
    if (!nom) return;
    while (*a == ',' || EstBlanc(*a)) ++a;
    int genre = LitNombre(a);
    int taille = LitNombre(ArgumentSuivant(a));
    AjouteParametre(ModeleCourant(), nom, genre, taille == 0 ? 4 : taille, "");
}

} // namespace

// ---- Shared helpers ----------------------------------------------------------------

int LitChiffres(const char*& p) {
    // The next run of digits, wrapping at 32 bits as script numbers do.
    while (*p && !(*p >= '0' && *p <= '9')) ++p;
    uint32_t v = 0;
    for (; *p >= '0' && *p <= '9'; ++p) v = v * 10u + (uint32_t)(*p - '0');
    return (int)v;
}

int NomDeBloc(const char* arguments, char* nom, size_t taille) {
    if (arguments[0] == '"') {
        const char* fin = strchr(arguments + 1, '"');
        size_t n = fin ? (size_t)(fin - arguments - 1) : strlen(arguments + 1);
        CopieBorneeN(nom, taille, arguments + 1, n);
        return 1;
    }
    const char* accolade = strchr(arguments, '{');
    if (!accolade) {
        ErreurScript("You have forgotten the format opening { (on the same line).");
        return 0;
    }
    size_t n = (size_t)(accolade - arguments);
    while (n > 0 && EstBlanc(arguments[n - 1])) --n;
    CopieBorneeN(nom, taille, arguments, n);
    return 1;
}

int VerifieNumeroBit(int bit) {
    if (bit >= 8 && bit <= 15) return 1;
    MessageDebug("Bits renaming: the specified bit number is out of range (valid values are 8 to 15).");
    return 0;
}

void DefinitModele(FILE* fichier, const char* nom) {
    int slot = TrouveModele(nom);
    bool nouveau = slot < 0;
    // A full table still reads the block through, and stores nothing.
    ModeleParametres refuse;
    ModeleParametres* modele = &refuse;
    if (nouveau && NbModeles < NB_MODELES_MAX) slot = NbModeles;
    if (slot >= 0) modele = &TableModeles[slot];
    if (nouveau) memset(modele, 0, sizeof *modele);
    modele->nbParametres = 0;

    char ligne[1024];
    while (fgets(ligne, sizeof ligne, fichier)) {
        size_t n = strlen(ligne);
        while (n > 0 && (ligne[n - 1] == '\n' || ligne[n - 1] == '\r')) ligne[--n] = 0;
        const char* p = ligne;
        while (EstBlanc(*p)) ++p;
        if (!*p || *p == '{') continue;
        if (*p == '}') break;
        // Kind, size, then the name and the default value as quoted strings.
        int genre = LitChiffres(p);
        int taille = LitChiffres(p);
        char nomParametre[100], defaut[1024];
        nomParametre[0] = defaut[0] = 0;
        for (char* champ : {nomParametre, defaut}) {
            if (*p == ',') ++p;
            if (*p == ' ') ++p;
            p = CopieChaineEchappee(champ, p, champ == nomParametre ? sizeof nomParametre : sizeof defaut);
        }
        int i = modele->nbParametres;
        if (i >= NB_PARAMETRES_MAX) continue;
        modele->genres[i] = genre;
        modele->tailles[i] = TailleParametreBornee(taille);
        CopieBornee(modele->noms[i], nomParametre);
        CopieBornee(modele->defauts[i], defaut);
        modele->nbParametres = i + 1;
    }
    if (modele == &refuse) return;
    CopieBornee(modele->nom, nom);
    modele->taille = TailleModele(*modele);
    if (nouveau) ++NbModeles;
}

const FonctionsDictionnaire FonctionsParDefaut = {
    Ok, Msgbox, Visible, Quitte, Fin, Exec, Aller, Retour, Luminosite,
    DefFormat, DefModele, NoteFormat, NoteModele, SelFormat, SelModele, Inclure, Conv,
    Inactive, Inactive, Inactive, Inactive, Inactive, Inactive, Inactive,
    ObjetsMax, MemoireMax, SystemeEmulGba,
    CouleurMasque, CouleurZero, Luminosite, Nuances, NuancesAvant, Mode, Tronquer,
    Inactive, EditeurZoom,
    Inactive, Inactive, Inactive,
    Inactive, BitsTexte, BitsActif, Inactive,
    ReinitParams, AjParam,
};
FonctionsDictionnaire Fonctions = FonctionsParDefaut;
