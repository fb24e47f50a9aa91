// Statement interpreter.
//
// Sections: state; reading and cleaning a line; labels; the statement
// grammar; execution by kind; runs.
#include "script/interpreteur.h"

#include "core/chaines.h"
#include "core/projet.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "script/crochets.h"
#include "script/syntaxe.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>

// ---- State -------------------------------------------------------------------

int FinScript = 0;
int ResultatScript = 1;
int IndiceCourant = 0;
FILE* FichierScriptCourant = nullptr;
int32_t messages = 1;
bool SelectionArbreActive = true;
char EtiquetteCherchee[TAILLE_ETIQUETTE];

void ErreurScript(const char* format, ...) {
    va_list args;
    va_start(args, format);
    BoiteMessageV("Macro execution error", BOITE_OK | ICONE_ARRET, format, args);
    va_end(args);
}

// ---- Reading and cleaning a line -------------------------------------------

namespace {

constexpr int LONGUEUR_LIGNE_SCRIPT = 999;

bool EstBlanc(char c) { return c == ' ' || c == '\t'; }

char* SauteBlancs(char* p) {
    while (EstBlanc(*p)) ++p;
    return p;
}

// A line of at most 999 characters without its line end ("\n" or "\r\n");
// a longer line goes on as the next one.
bool LitLigneScript(FILE* f, char* ligne) { return LitLigneTexte(f, ligne, LONGUEUR_LIGNE_SCRIPT + 1) != 0; }

// Outside strings: A to Z folded, '#' or ';' ends the line with the blanks
// before it. Strings open with ", ' or * and close at the same character
// without a backslash before it; an unclosed one runs to the end.
void NettoieLigne(char* ligne) {
    char guillemet = 0;
    for (char* p = ligne; *p; ++p) {
        if (guillemet) {
            if (*p == guillemet && p[-1] != '\\') guillemet = 0;
            continue;
        }
        if (EstGuillemet(*p)) {
            guillemet = *p;
        } else if (*p == '#' || *p == ';') {
            *p = 0;
            while (p > ligne && EstBlanc(p[-1])) *--p = 0;
            return;
        } else if (*p >= 'A' && *p <= 'Z') {
            *p = (char)(*p - 'A' + 'a');
        }
    }
}

// ---- Labels ------------------------------------------------------------------

// A label is a line whose last character, trailing blanks aside, is ':'.
// Gives the label's text, ended in place, with the blanks and one '_' before
// it skipped; null for any other line.
char* Etiquette(char* ligne) {
    size_t n = strlen(ligne);
    while (n > 0 && EstBlanc(ligne[n - 1])) --n;
    if (n == 0 || ligne[n - 1] != ':') return nullptr;
    ligne[n - 1] = 0;
    char* p = SauteBlancs(ligne);
    if (*p == '_') ++p;
    return p;
}

void MinusculesAscii(char* p) {
    for (; *p; ++p)
        if (*p >= 'A' && *p <= 'Z') *p = (char)(*p - 'A' + 'a');
}

// ---- The statement grammar ---------------------------------------------------

struct Instruction {
    char objet[TAILLE_ETIQUETTE];
    char membre[TAILLE_ETIQUETTE];
    int indice;       // as written less 1
    char* arguments;  // the rest of the line
};

// Copies a name up to one of the stop characters; gives where it stopped.
char* LitNom(char* p, const char* arrets, char* nom) {
    char* debut = p;
    while (*p && !EstBlanc(*p) && !strchr(arrets, *p)) ++p;
    CopieBorneeN(nom, TAILLE_ETIQUETTE, debut, (size_t)(p - debut));
    return p;
}

void Analyse(char* ligne, Instruction& ins) {
    ins.membre[0] = 0;
    ins.indice = 0;
    char* p = SauteBlancs(ligne);
    p = LitNom(p, ".=[", ins.objet);
    if (*p == '.') p = LitNom(SauteBlancs(p + 1), "=[", ins.membre);
    for (;;) {
        p = SauteBlancs(p);
        if (*p == '.') {
            p = LitNom(SauteBlancs(p + 1), "=[", ins.membre);
        } else if (*p == '[') {
            // Numbers wrap at 32 bits, and so does the index less 1.
            ins.indice = (int)((uint32_t)LitNombre(p + 1) - 1u);
            char* ferme = strchr(p, ']');
            p = ferme ? ferme + 1 : p + strlen(p);
        } else if (*p == '=') {
            ++p;
        } else {
            break;
        }
    }
    ins.arguments = p;
}

// ---- Execution by kind ---------------------------------------------------------

// Names are looked up as written, accents also in their UTF-8 spelling.
const LigneDictionnaire* Trouve(const TableDictionnaire& table, const char* nom) {
    for (int i = 0; i < table.nombre; ++i) {
        const char* cle = table.lignes[i].nom;
        size_t n = CommenceParLatin1(nom, cle);
        if (n && nom[n] == 0) return &table.lignes[i];
    }
    return nullptr;
}

void ErreurArguments(const char* objet) {
    ErreurScript("Object %s.\nIt is missing arguments and/or their type is wrong.", objet);
}

// A quoted string at the start of the arguments, copied into a field.
bool LitChaineArgument(char* arguments, char* champ, size_t taille) {
    char* p = arguments;
    char* texte = LitChaine(&p);
    if (!texte) {
        // An unclosed string still runs to the end of the line.
        if (!EstGuillemet(*arguments)) return false;
        texte = arguments + 1;
    }
    CopieBornee(champ, taille, texte);
    return true;
}

void Affecte(int genre, void* valeur, char* arguments, const Instruction& ins) {
    switch (genre) {
    case GENRE_ENTIER:
        *(int32_t*)valeur = LitNombre(arguments);
        break;
    case GENRE_REEL:
        *(double*)valeur = atof(arguments);
        break;
    case GENRE_CHAINE:
        if (!LitChaineArgument(arguments, (char*)valeur, TAILLE_CHAINE_SCRIPT)) ErreurArguments(ins.objet);
        break;
    }
}

void Execute(Instruction& ins) {
    const LigneDictionnaire* ligne = Trouve(DictionnairePrincipal, ins.objet);
    if (!ligne) {
        ErreurScript("The object %s doesn't exist.", ins.objet);
        return;
    }
    IndiceCourant = ins.indice;
    if (ligne->genre == GENRE_OBJET) {
        const LigneDictionnaire* membre = Trouve(*ligne->membres, ins.membre);
        if (!membre || !*ins.membre) {
            ErreurScript("The method %s of the object %s doesn't exist.", ins.membre, ins.objet);
            return;
        }
        ligne = membre;
    }
    switch (ligne->genre) {
    case GENRE_TABLEAU: {
        const TableauScript& t = *ligne->tableau;
        if (ins.indice < 0 || ins.indice >= t.nombre) {
            ErreurScript("Table %s of object %s.\nThe array index (%i) is out of bounds.", ins.membre, ins.objet,
                         (int)((uint32_t)ins.indice + 1u));
            return;
        }
        char* base = (char*)t.base;
        switch (t.genre) {
        case GENRE_ENTIER:
            Affecte(t.genre, base + sizeof(int32_t) * (size_t)ins.indice, ins.arguments, ins);
            break;
        case GENRE_CHAINE:
            Affecte(t.genre, base + (size_t)TAILLE_CHAINE_SCRIPT * (size_t)ins.indice, ins.arguments, ins);
            break;
        case GENRE_REEL:
            Affecte(t.genre, base + sizeof(double) * (size_t)ins.indice, ins.arguments, ins);
            break;
        default:
            ErreurScript("The table %s of object %s as an unrecognized type.", ins.membre, ins.objet);
        }
        return;
    }
    case GENRE_FONCTION:
        (*ligne->fonction)(ins.arguments);
        return;
    case GENRE_ENTIER:
        Affecte(GENRE_ENTIER, ligne->entier, ins.arguments, ins);
        return;
    case GENRE_CHAINE:
        Affecte(GENRE_CHAINE, ligne->chaine, ins.arguments, ins);
        return;
    case GENRE_REEL:
        Affecte(GENRE_REEL, ligne->reel, ins.arguments, ins);
        return;
    case GENRE_NOEUD:
        CrochetsFormulaire.selectionneRacine(ligne->controle);
        return;
    case GENRE_TEXTE:
    case GENRE_COMBO: {
        // A statement on a control that the form on show lacks does nothing.
        if (!CrochetsFormulaire.controlePresent(ligne->controle)) return;
        char texte[TAILLE_CHAINE_SCRIPT];
        if (!LitChaineArgument(ins.arguments, texte, sizeof texte)) {
            ErreurArguments(ins.objet);
            return;
        }
        if (ligne->genre == GENRE_TEXTE)
            CrochetsFormulaire.metTexte(ligne->controle, texte);
        else if (!CrochetsFormulaire.choisitDansCombo(ligne->controle, texte))
            ErreurScript("Object: %s.\nThe searched text into the combobox has not been found (%s).", ins.objet,
                         texte);
        return;
    }
    case GENRE_COCHE:
    case GENRE_RADIO:
        if (CrochetsFormulaire.controlePresent(ligne->controle))
            CrochetsFormulaire.metCoche(ligne->controle, LitNombre(ins.arguments));
        return;
    }
}

} // namespace

// ---- Runs --------------------------------------------------------------------

void ExecuteScript(FILE* fichier, const char* etiquette) {
    if (!fichier) return;
    // A nested run (include) keeps the label search of the run around it.
    char rechercheAppelant[TAILLE_ETIQUETTE];
    CopieBornee(rechercheAppelant, EtiquetteCherchee);
    CopieBornee(EtiquetteCherchee, etiquette);
    MinusculesAscii(EtiquetteCherchee);

    FinScript = 0;
    messages = 0;
    SelectionArbreActive = false;
    ResultatScript = 1;

    char ligne[LONGUEUR_LIGNE_SCRIPT + 1];
    while (FinScript == 0 && LitLigneScript(fichier, ligne)) {
        NettoieLigne(ligne);
        if (char* nom = Etiquette(ligne)) {
            // Outside a search a label is passed over.
            if (EtiquetteCherchee[0] && strcmp(nom, EtiquetteCherchee) == 0) EtiquetteCherchee[0] = 0;
            continue;
        }
        if (EtiquetteCherchee[0]) continue;
        Instruction ins;
        Analyse(ligne, ins);
        if (!ins.objet[0]) continue; // an empty line, or one such as "="
        FichierScriptCourant = fichier;
        Execute(ins);
    }

    messages = 1;
    SelectionArbreActive = true;
    fclose(fichier);
    if (FichierScriptCourant == fichier) FichierScriptCourant = nullptr;
    CopieBornee(EtiquetteCherchee, rechercheAppelant);
    CrochetsFormulaire.visible(1);
}

int ExecuteFichierScript(const char* chemin, const char* etiquette) {
    ResultatScript = 1;
    if (!chemin || !*chemin) return 0;
    FILE* fichier = OuvreFichier(chemin, "rb");
    if (!fichier) return 0;
    ExecuteScript(fichier, etiquette);
    return 1;
}

#include "core/crochets.h"

void InstalleInterpreteur() { Crochets.executeScript = ExecuteScript; }
