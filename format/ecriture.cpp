// Template writer.
//
// Sections: templates; variables; element formats; value loops.
#include "format/ecriture.h"

#include "format/variables.h"
#include "platform/plateforme.h"
#include "platform/texte.h"

#include <cstring>

// ---- Templates -------------------------------------------------------------------

namespace {

// Copies the field that starts behind a '%' (at most 999 characters) and
// gives the place behind its closing '%', or the template's end.
const char* LitChamp(const char* p, char* champ) {
    size_t n = 0;
    while (*p && *p != '%') {
        if (n < LONGUEUR_CHAMP_MAX) champ[n++] = *p;
        ++p;
    }
    champ[n] = 0;
    return *p ? p + 1 : p;
}

// The place behind the next field that begins with "+end", or the end.
const char* ApresFin(const char* p) {
    char champ[LONGUEUR_CHAMP_MAX + 1];
    while (*p) {
        if (*p++ != '%') continue;
        p = LitChamp(p, champ);
        if (strncmp(champ, "+end", 4) == 0) return p;
    }
    return p;
}

void Recule(FILE* fichier) {
    if (ftell(fichier) > 0) fseek(fichier, -1, SEEK_CUR);
}

} // namespace

void EcritGabarit(const char* gabarit, FILE* fichier) {
    char champ[LONGUEUR_CHAMP_MAX + 1];
    for (const char* p = gabarit; p && *p;) {
        char c = *p++;
        if (c == '\b') {
            Recule(fichier);
        } else if (c == '%') {
            p = LitChamp(p, champ);
            if (champ[0] != '+')
                EcritVariable(fichier, champ);
            else if (strncmp(champ, "+else", 5) == 0)
                p = ApresFin(p);
            // Other directives write nothing: the writer takes the first branch.
        } else {
            fputc(c, fichier);
        }
    }
}

// ---- Variables -------------------------------------------------------------------

namespace {

void EcritOctets(FILE* fichier, uint32_t valeur, int n) {
    for (int i = 0; i < n; ++i) fputc((int)(valeur >> (8 * i) & 0xff), fichier);
}

} // namespace

void EcritVariable(FILE* fichier, const char* texte) {
    const ChampVariable c = AnalyseChamp(texte);
    if (c.user) {
        fputs(TextesUser[c.user], fichier);
        return;
    }
    const char* champ = c.nom;
    const int octets = c.octets;
    for (const VariableGabarit& v : TableVariables) {
        if (strcmp(v.nom, champ) != 0) continue;
        if (v.genre == VARIABLE_TEXTE) {
            if (!v.texte) continue; // absent: matches nothing
            fputs(v.texte, fichier);
            return;
        }
        int32_t valeur = v.genre == VARIABLE_POINTEUR ? (v.pointeur ? *v.pointeur : 0) : v.entier;
        if (c.forme == CHAMP_DECIMAL)
            fprintf(fichier, "%i", valeur);
        else if (c.forme == CHAMP_HEXA)
            fprintf(fichier, "%x", (unsigned)valeur);
        else if (octets == 1 || octets == 2 || octets == 4)
            EcritOctets(fichier, (uint32_t)valeur, octets);
        else
            MessageDebugF("Binary typing error (%i)", octets);
        return;
    }
}

// ---- Element formats -----------------------------------------------------------------

void EcritValeur(FILE* fichier, const char* format, uint32_t valeur) {
    int largeur = 0; // stays for the following conversions of this format
    for (const char* p = format; p && *p; ++p) {
        if (*p != '%') {
            fputc(*p, fichier);
            continue;
        }
        const char* q = p + 1;
        char conversion[8] = "%";
        size_t n = 1;
        if (q[0] == '0' && q[1] >= '0' && q[1] <= '9') {
            largeur = q[1] - '0';
            conversion[n++] = '0';
            conversion[n++] = q[1];
            q += 2;
        } else if (q[0] >= '1' && q[0] <= '9') {
            largeur = q[0] - '0';
            conversion[n++] = q[0];
            q += 1;
        }
        char lettre = *q;
        if (!lettre) break;
        if (lettre == 'i' || lettre == 'x' || lettre == 'X') {
            conversion[n++] = lettre;
            conversion[n] = 0;
            char texte[32];
            // conversion is only "%", an optional width and the letter.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
            int l = lettre == 'i' ? snprintf(texte, sizeof texte, conversion, (int)(int32_t)valeur)
                                  : snprintf(texte, sizeof texte, conversion, (unsigned)valeur);
#pragma GCC diagnostic pop
            if (l > 0) fwrite(texte, 1, (size_t)l < sizeof texte ? (size_t)l : sizeof texte - 1, fichier);
        } else if (lettre == 'b') {
            if (largeur == 1 || largeur == 2 || largeur == 4)
                EcritOctets(fichier, valeur, largeur);
            else
                MessageDebug("Binary type error (please use %1b, %2b, %4b only)");
        }
        p = q; // any other letter: both characters are dropped
    }
}

// ---- Value loops -------------------------------------------------------------------

namespace {

void AvantValeur(FILE* fichier, const SectionFormat& section, long v) {
    if (section.n_every >= 1 && v >= 1 && v % section.n_every == 0) EcritGabarit(section.every_x, fichier);
}

} // namespace

void EcritValeursLignes(FILE* fichier, const SectionFormat& section, const char* element, const uint32_t* valeurs,
                        int largeur, int hauteur, bool parColonne) {
    bool colonne = parColonne || section.line[0] != 0;
    for (int y = 0; y < hauteur; ++y) {
        for (int x = 0; x < largeur; ++x) {
            AvantValeur(fichier, section, colonne ? x : (long)y * largeur + x);
            EcritValeur(fichier, element, valeurs[(size_t)y * (size_t)largeur + (size_t)x]);
        }
        EcritGabarit(section.line, fichier);
    }
}

void EcritValeursPalette(FILE* fichier, const SectionFormat& section, const uint32_t* couleurs, int nombre) {
    for (int i = 0; i < nombre; ++i) {
        AvantValeur(fichier, section, i);
        EcritValeur(fichier, section.element, couleurs[i]);
    }
}

void EcritValeursMosaique(FILE* fichier, const SectionFormat& section, const uint32_t* pixels, int nbTuiles,
                          int pixelsParTuile, int profondeur) {
    bool dansTuile = section.line[0] != 0;
    int pas = profondeur == 4 ? 2 : 1;
    const char* element = profondeur == 4 ? section.element2 : profondeur == 15 ? section.element3 : section.element;
    long numero = 0;
    for (int t = 0; t < nbTuiles; ++t) {
        const uint32_t* tuile = pixels + (size_t)t * (size_t)pixelsParTuile;
        for (int i = 0; i < pixelsParTuile; i += pas, ++numero) {
            AvantValeur(fichier, section, dansTuile ? i : numero);
            uint32_t valeur = tuile[i];
            if (pas == 2) valeur = (tuile[i] & 0xf) | (i + 1 < pixelsParTuile ? (tuile[i + 1] & 0xf) << 4 : 0);
            EcritValeur(fichier, element, valeur);
        }
        EcritGabarit(section.line, fichier);
    }
}
