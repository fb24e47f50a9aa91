// Operation and condition language; block copy by coordinates.
#include "tools/operations.h"

#include "core/reglages.h"
#include "editor/edition.h"
#include "editor/plans.h"
#include "platform/plateforme.h"
#include "script/syntaxe.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int NB_OPERATIONS_MAX = 10;
constexpr size_t LONGUEUR_TEXTE_MAX = 999;

struct Operation {
    char operateur;
    uint32_t operande;
};

struct Test {
    char test;
    int32_t valeur;
    bool ouEgal;
    char lien; // '&' or '|' for every test but the first
};

bool EstHexa(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

// The operand's text: "0x" or "0b" and hexadecimal digits, else decimal digits.
const char* ApresNombre(const char* p) {
    if (p[0] == '0' && (p[1] == 'x' || p[1] == 'b')) {
        p += 2;
        while (EstHexa(*p)) ++p;
    } else {
        while (*p >= '0' && *p <= '9') ++p;
    }
    return p;
}

int LitOperations(const char* p, Operation* ops) {
    int n = 0;
    while (n < NB_OPERATIONS_MAX) {
        Operation& o = ops[n++];
        o.operateur = *p;
        o.operande = 0;
        if (!*p) break; // the end of the text is an operator too, which nothing knows
        ++p;
        const bool complement = *p == '~';
        if (complement) ++p;
        o.operande = (uint32_t)LitNombre(p);
        if (complement) o.operande = ~o.operande;
        p = ApresNombre(p);
        if (!*p) break;
    }
    return n;
}

// The tests of the condition text; -1 after the unknown-link message.
int LitTests(const char* p, Test* tests) {
    if (!*p) return 0;
    int n = 0;
    char lien = 0;
    while (n < NB_OPERATIONS_MAX) {
        Test& t = tests[n++];
        t.test = *p;
        t.lien = lien;
        if (*p) ++p;
        t.ouEgal = *p == '=';
        if (t.ouEgal) ++p;
        t.valeur = LitNombre(p);
        while (*p && *p != ' ') ++p;
        if (!*p) break;
        ++p;
        if (strncmp(p, "and", 3) == 0) {
            lien = '&';
            p += 3;
        } else if (strncmp(p, "or", 2) == 0) {
            lien = '|';
            p += 2;
        } else {
            BoiteMessage("Unknown test linker.\nValid links: and, or.\nExample: >=10 and <=13",
                         "Error during condition execution", BOITE_OK | ICONE_ARRET);
            return -1;
        }
        if (*p == ' ') ++p;
    }
    return n;
}

// The result of one test on a cell; false after the unknown-test message.
bool Teste(const Test& t, int32_t c, int32_t& r) {
    switch (t.test) {
    case '=': r = c == t.valeur; return true;
    case '&': r = c & t.valeur; return true;
    case '~': r = (c & t.valeur) == 0; return true;
    case '>': r = t.ouEgal ? c >= t.valeur : c > t.valeur; return true;
    case '<': r = t.ouEgal ? c <= t.valeur : c < t.valeur; return true;
    case '!': r = c != t.valeur; return true;
    default:
        BoiteMessage("Unknown test to do.\nValid tests: =, <, <=, >=, >, !=\nExample: >10",
                     "Error during condition execution", BOITE_OK | ICONE_ARRET);
        return false;
    }
}

// One operation on a cell; false after the unknown-operator message.
// Division and modulo by 0 leave the cell as it is.
bool Applique(const Operation& o, uint32_t& v) {
    switch (o.operateur) {
    case '|': v |= o.operande; return true;
    case '&': v &= o.operande; return true;
    case '+': v += o.operande; return true;
    case '-': v -= o.operande; return true;
    case '*': v *= o.operande; return true;
    case '/': if (o.operande) v /= o.operande; return true;
    case '%': if (o.operande) v %= o.operande; return true;
    case '^': v ^= o.operande; return true;
    case '=': v = o.operande; return true;
    default:
        BoiteMessage("Unknown operator.\nValid operators: |, &, +, -, *, /, %, ^, =.\nExample: +10",
                     "Error during operation execution", BOITE_OK | ICONE_ARRET);
        return false;
    }
}

// A text as the dialog reads it: at most 999 characters.
std::string Borne(const char* texte) {
    std::string s = texte ? texte : "";
    if (s.size() > LONGUEUR_TEXTE_MAX) s.resize(LONGUEUR_TEXTE_MAX);
    return s;
}

} // namespace

int ExecuteOperations(const char* operation, const char* condition, bool seulActif) {
    const std::string textOp = Borne(operation), textCond = Borne(condition);
    Operation ops[NB_OPERATIONS_MAX];
    Test tests[NB_OPERATIONS_MAX];
    const int nbOps = LitOperations(textOp.c_str(), ops);
    const int nbTests = LitTests(textCond.c_str(), tests);
    if (nbTests < 0) return 0;
    if (Motif.nbPlansMotif <= 0 || !MotifTenu()) return 1;
    // The slots worked on: the active plane's alone, or every plane's of the
    // last copy. Slot 5 stands for a plane the copy missed: it stays zero.
    int emplacements[5], n = 0;
    if (seulActif) {
        emplacements[n++] = MotifActif();
    } else {
        for (int i = 0; i < Motif.nbPlansMotif && i < 5; ++i) emplacements[n++] = i;
    }
    const uint32_t invisible = (uint32_t)ReglagesEdit.blocInvisible;
    for (int e = 0; e < n; ++e) {
        if (emplacements[e] >= 5) continue;
        uint32_t* slot = EmplacementMotif(emplacements[e]);
        if (!slot) continue;
        for (int y = 0; y < Motif.hauteurMotif; ++y)
            for (int x = 0; x < Motif.largeurMotif; ++x) {
                uint32_t& cellule = slot[(size_t)y * COTE_MOTIF + x];
                if (cellule == invisible || (cellule == 0 && ReglagesEdit.masqueZero)) continue;
                if (nbTests > 0) {
                    int32_t r = 0;
                    for (int k = 0; k < nbTests; ++k) {
                        int32_t t;
                        if (!Teste(tests[k], (int32_t)cellule, t)) return 0;
                        r = k == 0 ? t : tests[k].lien == '&' ? (r & t) : (r | t);
                    }
                    if (r == 0) continue;
                }
                uint32_t v = cellule;
                for (int k = 0; k < nbOps; ++k) {
                    if (!Applique(ops[k], v)) {
                        cellule = v;
                        return 0;
                    }
                }
                cellule = v;
            }
    }
    return 1;
}
