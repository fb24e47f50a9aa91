// Template reader.
//
// Sections: the input buffer; variables; templates and recovery; element
// formats.
#include "format/lecture.h"

#include "format/ecriture.h"
#include "format/variables.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>

bool SilenceLecture = false;

// ---- The input buffer ---------------------------------------------------------------

int ChargeTampon(const char* chemin, TamponLecture& tampon) {
    LibereTampon(tampon);
    FILE* f = OuvreFichier(chemin, "rb");
    if (!f) return 0;
    // Sized to the file, so that a small file costs a small buffer and
    // nothing past its end is ever readable; a file that is no regular file
    // (or grows meanwhile) is read in growing steps up to the cut.
    struct stat etat;
    size_t capacite = 65536;
    if (fstat(fileno(f), &etat) == 0 && S_ISREG(etat.st_mode) && etat.st_size >= 0)
        capacite = (size_t)etat.st_size < (size_t)TAILLE_TAMPON_LECTURE ? (size_t)etat.st_size + 1
                                                                          : (size_t)TAILLE_TAMPON_LECTURE;
    size_t lu = 0;
    char* donnees = (char*)malloc(capacite + 1);
    while (donnees) {
        lu += fread(donnees + lu, 1, capacite - lu, f);
        if (lu < capacite || capacite == (size_t)TAILLE_TAMPON_LECTURE) break;
        size_t suivante = capacite * 2 < (size_t)TAILLE_TAMPON_LECTURE ? capacite * 2 : (size_t)TAILLE_TAMPON_LECTURE;
        char* plus = (char*)realloc(donnees, suivante + 1);
        if (!plus) {
            free(donnees);
            donnees = nullptr;
            break;
        }
        donnees = plus;
        capacite = suivante;
    }
    fclose(f);
    if (!donnees) return 0;
    tampon.donnees = donnees;
    tampon.taille = (int32_t)lu;
    tampon.donnees[lu] = 0;
    return 1;
}

void LibereTampon(TamponLecture& tampon) {
    free(tampon.donnees);
    tampon = TamponLecture{};
}

// ---- Variables -----------------------------------------------------------------

namespace {

int32_t LitOctets(const unsigned char* p, int n) {
    uint32_t v = 0;
    for (int i = 0; i < n; ++i) v |= (uint32_t)p[i] << (8 * i);
    if (n == 1) return (int8_t)v;
    if (n == 2) return (int16_t)v;
    return (int32_t)v;
}

int ValeurHexa(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

} // namespace

void LitVariable(const char* texte, const char* valeur, size_t longueur) {
    // A value is at most 999 characters; a longer one is cut.
    if (longueur > (size_t)LONGUEUR_CHAMP_MAX) longueur = LONGUEUR_CHAMP_MAX;
    const ChampVariable c = AnalyseChamp(texte);
    if (c.user) {
        CopieBorneeN(TextesUser[c.user], TAILLE_TEXTE_USER, valeur, longueur);
        return;
    }
    const char* champ = c.nom;
    const int octets = c.octets;
    for (VariableGabarit& v : TableVariables) {
        if (strcmp(v.nom, champ) != 0) continue;
        if (v.genre == VARIABLE_TEXTE) {
            if (!v.texte) continue; // absent: the value is dropped
            if (v.tampon) CopieBorneeN(v.tampon, v.taille, valeur, longueur);
            return;
        }
        int32_t nombre = 0;
        if (c.forme == CHAMP_BINAIRE) {
            if (octets != 1 && octets != 2 && octets != 4) {
                MessageDebug("Binary tiping error");
                return;
            }
            unsigned char octetsLus[4] = {};
            memcpy(octetsLus, valeur, longueur < (size_t)octets ? longueur : (size_t)octets);
            nombre = LitOctets(octetsLus, octets);
        } else {
            std::string texte(valeur, longueur);
            if (c.forme == CHAMP_DECIMAL) {
                nombre = (int32_t)strtol(texte.c_str(), nullptr, 10);
            } else {
                uint32_t h = 0;
                for (const char* p = texte.c_str(); ValeurHexa(*p) >= 0; ++p) h = h * 16u + (uint32_t)ValeurHexa(*p);
                nombre = (int32_t)h;
            }
        }
        if (v.genre == VARIABLE_POINTEUR) {
            if (v.pointeur) *v.pointeur = nombre;
        } else {
            v.entier = nombre;
        }
        return;
    }
}

// ---- Templates and recovery -------------------------------------------------------

namespace {

// A literal of the template: from a place up to the next '%' or the end, the
// characters 8 left out, since the writer took those bytes back.
struct Litteral {
    std::string texte;
    const char* fin; // the '%' or the template's end
};

Litteral LitLitteral(const char* place) {
    Litteral l{{}, place};
    for (; *l.fin && *l.fin != '%'; ++l.fin)
        if (*l.fin != '\b') l.texte += *l.fin;
    return l;
}

bool EstA(const TamponLecture& t, int32_t position, const std::string& texte) {
    if (position < 0 || (int64_t)position + (int64_t)texte.size() > t.taille) return false;
    return memcmp(t.donnees + position, texte.data(), texte.size()) == 0;
}

// Moves forward until the text stands at the position, or until it would
// reach the data's end; gives the position reached. One search of the rest of
// the data: the occurrence must end before the data's last byte.
int32_t Cherche(const TamponLecture& t, int32_t position, const std::string& texte) {
    if (position >= 0 && !texte.empty() && (int64_t)position + (int64_t)texte.size() < t.taille) {
        const void* trouve =
            memmem(t.donnees + position, (size_t)(t.taille - 1 - position), texte.data(), texte.size());
        return trouve ? (int32_t)((const char*)trouve - t.donnees) : t.taille - (int32_t)texte.size();
    }
    while ((int64_t)position + (int64_t)texte.size() < t.taille && !EstA(t, position, texte)) ++position;
    return position;
}

// The field behind a '%' (at most 999 characters) and the place behind it.
const char* LitChampGabarit(const char* p, std::string& champ) {
    champ.clear();
    while (*p && *p != '%') {
        if (champ.size() < (size_t)LONGUEUR_CHAMP_MAX) champ += *p;
        ++p;
    }
    return *p ? p + 1 : p;
}

// The place behind the next field that begins with that text, or the end.
const char* ApresChamp(const char* p, const char* debut) {
    std::string champ;
    while (*p) {
        if (*p++ != '%') continue;
        p = LitChampGabarit(p, champ);
        if (champ.compare(0, strlen(debut), debut) == 0) return p;
    }
    return p;
}

bool Condition(const TamponLecture& t, int32_t position, const std::string& condition) {
    bool egal = condition.compare(0, 1, "=") == 0;
    bool different = condition.compare(0, 2, "<>") == 0;
    if (!egal && !different) return false;
    std::string texte = condition.substr(egal ? 1 : 2, 99);
    return EstA(t, position, texte) == egal;
}

// Recovery from a delimiter found nowhere: shorter and later delimiters are
// tried from the template's place. Gives true, with the position and the
// template's place of the delimiter found; false when the template ran out.
bool Recupere(const TamponLecture& t, int32_t debutValeur, const char*& place, int32_t& position,
              size_t& longueur) {
    if (!SilenceLecture) MessageDebug("Attempts to recover from a fatal reading error...");
    const char* q = place;
    bool coupe = false; // behind a skipped field the literal loses its last character
    while (*q) {
        if (*q == '%') {
            std::string champ;
            q = LitChampGabarit(q + 1, champ);
            coupe = true;
            if (!*q) break;
        }
        Litteral l = LitLitteral(q);
        std::string d = l.texte;
        if (coupe && !d.empty()) d.pop_back();
        if (d.size() >= (size_t)LONGUEUR_DELIMITEUR_SUR) {
            int32_t p = Cherche(t, debutValeur, d);
            if ((int64_t)p + (int64_t)d.size() < t.taille) {
                place = q;
                position = p;
                longueur = d.size();
                return true;
            }
        }
        ++q;
    }
    return false;
}

} // namespace

int32_t LitGabarit(int32_t position, const TamponLecture& t, const char* gabarit) {
    const int32_t echec = EchecLecture(t);
    if (!gabarit || position < 0 || position > t.taille) return echec;
    // A last literal is not compared: passing it may go beyond the data.
    auto Apres = [&](int32_t p, size_t longueur) {
        return (int64_t)p + (int64_t)longueur > t.taille ? echec : p + (int32_t)longueur;
    };
    const char* place = gabarit;
    while (*place == '\b') ++place;
    // Junk before the head is skipped without a word.
    Litteral tete = LitLitteral(place);
    position = Cherche(t, position, tete.texte);

    std::string champ;
    for (;;) {
        // The literal, compared with the data; the template's last one is not.
        Litteral l = LitLitteral(place);
        if (!*l.fin) return Apres(position, l.texte.size());
        if (!EstA(t, position, l.texte)) {
            MessageDebug("The file format doesn't match with the expected one.");
            return echec;
        }
        position += (int32_t)l.texte.size();
        place = LitChampGabarit(l.fin + 1, champ);

        bool directive = champ[0] == '+';
        if (directive) {
            if (champ == "+noerror")
                SilenceLecture = true;
            else if (champ == "+endnoerror")
                SilenceLecture = false;
            else if (champ.compare(0, 3, "+if") == 0) {
                if (Condition(t, position, champ.substr(3))) continue; // the branch's literal at once
                place = ApresChamp(place, "+else");
            } else if (champ.compare(0, 5, "+else") == 0)
                place = ApresChamp(place, "+end");
        }

        // The value runs up to the delimiter, the next literal.
        Litteral d = LitLitteral(place);
        int32_t debut = position;
        position = Cherche(t, position, d.texte);
        size_t longueurDelimiteur = d.texte.size();
        if ((int64_t)position + (int64_t)longueurDelimiteur >= t.taille) {
            const char* trouve = place;
            int32_t p;
            size_t l2;
            if (Recupere(t, debut, trouve, p, l2)) {
                if (p > debut && !directive) LitVariable(champ.c_str(), t.donnees + debut, (size_t)(p - debut));
                // The found text counts as the delimiter and is passed.
                position = p + (int32_t)l2;
                place = trouve;
                for (size_t k = 0; k < l2 && *place; ++place)
                    if (*place != '\b') ++k;
                continue;
            }
            position = debut;
        }
        if (position > debut) {
            if (!directive) LitVariable(champ.c_str(), t.donnees + debut, (size_t)(position - debut));
            continue;
        }
        if (!directive && champ[0] == '#' && champ[1] >= '0' && champ[1] <= '9') {
            int n = champ[1] - '0';
            int32_t disponibles = t.taille - position;
            LitVariable(champ.c_str(), t.donnees + position, (size_t)(n < disponibles ? n : disponibles));
            position += n;
        }
        if (!*d.fin) return Apres(position, d.texte.size());
    }
}

// ---- Element formats -----------------------------------------------------------------

int32_t LitValeur(int32_t position, const TamponLecture& t, const char* format, int32_t& resultat) {
    if (position < 0 || position > t.taille) return EchecLecture(t);
    const unsigned char* d = (const unsigned char*)t.donnees;
    int32_t p = position;
    int largeur = 0;
    for (const char* f = format; f && *f; ++f) {
        if (*f != '%') {
            if (p >= t.taille || d[p] == 0 || d[p] != (unsigned char)*f) break;
            ++p;
            continue;
        }
        const char* q = f + 1;
        if (q[0] == '0' && q[1] >= '0' && q[1] <= '9') {
            largeur = q[1] - '0';
            q += 2;
        } else if (q[0] >= '1' && q[0] <= '9') {
            largeur = q[0] - '0';
            q += 1;
        }
        char lettre = *q;
        if (!lettre) break;
        f = q;
        uint32_t v = 0;
        if (lettre == 'i') {
            for (; p < t.taille && d[p] >= '0' && d[p] <= '9'; ++p) v = v * 10u + (uint32_t)(d[p] - '0');
            resultat = (int32_t)v;
        } else if (lettre == 'x' || lettre == 'X') {
            for (; p < t.taille; ++p) {
                char c = (char)d[p];
                int h = (c >= '0' && c <= '9') ? c - '0'
                        : (lettre == 'x' && c >= 'a' && c <= 'f') ? c - 'a' + 10
                        : (lettre == 'X' && c >= 'A' && c <= 'F') ? c - 'A' + 10
                                                                   : -1;
                if (h < 0) break;
                v = v * 16u + (uint32_t)h;
            }
            resultat = (int32_t)v;
        } else if (lettre == 'b') {
            int n = largeur;
            if (n == 1 || n == 2 || n == 4) {
                if (p + n > t.taille) break;
                resultat = LitOctets(d + p, n);
            } else {
                MessageDebug("Binary tiping error");
            }
            p = p + n > t.taille ? t.taille : p + n;
        }
    }
    if (p == position) return EchecLecture(t);
    return p;
}
