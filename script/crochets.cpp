#include "script/crochets.h"

#include <cstring>

namespace {

void RacineSansFenetre(int) {}
int ControleAbsent(int) { return 0; }
void TexteSansFenetre(int, const char*) {}
void CocheSansFenetre(int, int) {}
int ComboSansFenetre(int, const char*) { return 0; }
void Rien() {}
void VisibleSansFenetre(int) {}

void FormatPasse(FILE* fichier, const char*) { PasseDefinitionFormat(fichier); }
void FormatInconnu(const char*) {}
void ConvAbsent(const char*) {}

} // namespace

const OperationsFormulaire FormulaireAbsent = {RacineSansFenetre, ControleAbsent,    TexteSansFenetre, CocheSansFenetre,
                                               ComboSansFenetre,  Rien, VisibleSansFenetre};
OperationsFormulaire CrochetsFormulaire = FormulaireAbsent;

const OperationsScript CrochetsScriptParDefaut = {FormatPasse, FormatInconnu, Rien, ConvAbsent};
OperationsScript CrochetsScript = CrochetsScriptParDefaut;

void PasseDefinitionFormat(FILE* fichier) {
    static const char* const sections[] = {"bitmap16", "bitmap8", "palette", "tileset", "map", "list", "liste"};
    bool dansSection = false;
    char ligne[4097];
    while (fgets(ligne, sizeof ligne, fichier)) {
        // Quoted runs are passed over; '#' outside them ends the line.
        char guillemet = 0;
        char* p = ligne;
        for (; *p; ++p) {
            if (guillemet) {
                if (*p == guillemet && p[-1] != '\\') guillemet = 0;
            } else if (*p == '"' || *p == '\'') {
                guillemet = *p;
            } else if (*p == '#' || *p == '\n') {
                *p = 0;
                break;
            } else if (*p >= 'A' && *p <= 'Z') {
                *p = (char)(*p - 'A' + 'a');
            }
        }
        p = ligne;
        while (*p == ' ' || *p == '\t' || *p == '\r') ++p;
        char* cle = p;
        while ((*p >= 'a' && *p <= 'z') || (*p >= '0' && *p <= '9') || *p == '_' || *p == '[' || *p == ']') ++p;
        size_t longueur = (size_t)(p - cle);
        while (*p == ' ' || *p == '\t' || *p == '\r') ++p;
        if (*p == '{') {
            for (const char* s : sections)
                if (strlen(s) == longueur && strncmp(cle, s, longueur) == 0) dansSection = true;
        } else if (*p == '}') {
            if (!dansSection) return;
            dansSection = false;
        }
    }
}
