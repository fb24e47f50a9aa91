#include "format/liste.h"

#include "format/ecriture.h"
#include "format/formats.h"
#include "platform/plateforme.h"
#include "platform/texte.h"

#include <cstdlib>
#include <cstring>
#include <string>

char GabaritListe[TAILLE_GABARIT_LISTE];

int32_t DecalageParametre(const ModeleParametres& modele, int i) {
    int32_t decalage = 0;
    for (int k = 0; k < i && k < NB_PARAMETRES_MAX; ++k) decalage += TailleParametreBornee(modele.tailles[k]);
    return decalage;
}

void PoseEntierParametre(uint8_t* champ, int32_t taille, int32_t valeur) {
    const int32_t n = TailleParametreBornee(taille);
    memcpy(champ, &valeur, n < 4 ? (size_t)n : 4);
}

int32_t EntierParametre(const uint8_t* champ, int32_t taille) {
    const int32_t n = TailleParametreBornee(taille);
    int32_t valeur = 0;
    memcpy(&valeur, champ, n < 4 ? (size_t)n : 4);
    return valeur;
}

namespace {

int NbParametres(const ModeleParametres& m) {
    return m.nbParametres < 0 ? 0 : m.nbParametres > NB_PARAMETRES_MAX ? NB_PARAMETRES_MAX : m.nbParametres;
}

const ModeleParametres& ModeleChoisi() {
    int i = ModeleSelectionne >= 0 && ModeleSelectionne < NB_MODELES_MAX ? ModeleSelectionne : 0;
    return TableModeles[i];
}

// A quoted text (" or ') at p: its content, and the place behind it.
bool LitCite(const std::string& s, size_t& p, std::string& texte) {
    if (p >= s.size() || (s[p] != '"' && s[p] != '\'')) return false;
    size_t fin = s.find(s[p], p + 1);
    if (fin == std::string::npos) return false;
    texte = s.substr(p + 1, fin - p - 1);
    p = fin + 1;
    return true;
}

// The decoration of a parameter's name in files: the text before the last
// '<' that stands before the first '>', and the text behind that '>'.
void Decoration(const char* nom, std::string& prefixe, std::string& suffixe) {
    prefixe.clear();
    suffixe.clear();
    const char* ferme = strchr(nom, '>');
    if (!ferme) return;
    suffixe = ferme + 1;
    for (const char* p = ferme; p > nom;)
        if (*--p == '<') {
            prefixe.assign(nom, p);
            break;
        }
}

// Where a field of the object lies, or null for a name the model lacks.
struct Champ {
    int genre; // 0 x, y or type; PARAMETRE_ENTIER; PARAMETRE_BRUT
    int32_t decalage;
    int32_t taille;
};

bool TrouveChamp(const ModeleParametres& modele, const char* nom, Champ& champ) {
    if (strcmp(nom, "x") == 0) return champ = {0, 0, 4}, true;
    if (strcmp(nom, "y") == 0) return champ = {0, 4, 4}, true;
    if (strcmp(nom, "type") == 0) return champ = {0, 8, 4}, true;
    for (int i = 0; i < NbParametres(modele); ++i)
        if (strcmp(modele.noms[i], nom) == 0) {
            champ = {modele.genres[i], TAILLE_OBJET_BASE + DecalageParametre(modele, i),
                     TailleParametreBornee(modele.tailles[i])};
            return true;
        }
    return false;
}

} // namespace

void ConstruitGabaritListe() {
    std::string g = FormatCourant.sections[SECTION_LIST].element;
    if (FormatCourantEstC()) {
        const ModeleParametres& modele = ModeleChoisi();
        size_t debut = 0;
        while ((debut = g.find("#+param:", debut)) != std::string::npos) {
            size_t p = debut + 8;
            std::string avant, apres;
            if (!LitCite(g, p, avant)) break;
            while (p < g.size() && g[p] != '"' && g[p] != '\'') ++p;
            if (!LitCite(g, p, apres)) break;
            size_t fin = g.find('#', p);
            if (fin == std::string::npos) break; // malformed: the text stays
            std::string champs;
            for (int i = 0; i < NbParametres(modele); ++i) {
                std::string prefixe, suffixe;
                Decoration(modele.noms[i], prefixe, suffixe);
                champs += avant + prefixe + "#" + modele.noms[i] + "#" + suffixe + apres;
            }
            g.replace(debut, fin + 1 - debut, champs);
            debut += champs.size();
        }
    }
    CopieBornee(GabaritListe, g.c_str());
}

void EcritObjetListe(FILE* fichier, const char* gabarit, const ModeleParametres& modele, const uint8_t* objet) {
    for (const char* p = gabarit; p && *p; ++p) {
        if (*p != '#') {
            fputc(*p, fichier);
            continue;
        }
        char nom[100];
        size_t n = 0;
        const char* q = p + 1;
        while (*q && *q != '#') {
            if (n + 1 < sizeof nom) nom[n++] = *q;
            ++q;
        }
        nom[n] = 0;
        if (!*q) return; // the template ends inside a field
        p = q;
        Champ c;
        if (!TrouveChamp(modele, nom, c)) continue;
        if (c.genre == PARAMETRE_BRUT) {
            const char* texte = (const char*)objet + c.decalage;
            fwrite(texte, 1, strnlen(texte, (size_t)(c.taille > 0 ? c.taille : 0)), fichier);
        } else {
            fprintf(fichier, "%i", EntierParametre(objet + c.decalage, c.taille));
        }
    }
}

namespace {

bool EstA(const TamponLecture& t, int32_t position, const char* texte, size_t n) {
    if (n == 0 || (int64_t)position + (int64_t)n > t.taille) return false;
    return memcmp(t.donnees + position, texte, n) == 0;
}

void Stocke(const ModeleParametres& modele, uint8_t* objet, const char* nom, const char* valeur, size_t n) {
    Champ c;
    if (!TrouveChamp(modele, nom, c)) return;
    if (n > (size_t)LONGUEUR_CHAMP_MAX) n = LONGUEUR_CHAMP_MAX;
    std::string texte(valeur, n);
    if (c.genre == PARAMETRE_BRUT) {
        if (c.taille > 0) CopieBornee((char*)objet + c.decalage, (size_t)c.taille, texte.c_str());
        return;
    }
    PoseEntierParametre(objet + c.decalage, c.taille, (int32_t)strtol(texte.c_str(), nullptr, 10));
}

} // namespace

int32_t LitObjetListe(int32_t position, const TamponLecture& t, const char* gabarit,
                      const ModeleParametres& modele, uint8_t* objet, int mode, const char* marqueFin, bool& erreur) {
    const int32_t echec = EchecLecture(t);
    if (position < 0 || position > t.taille) return echec;
    const bool recuperation = mode == LISTE_RECUPERATION;
    const char* marque = marqueFin ? marqueFin : "";
    const size_t lm = strlen(marque);

    const char* place = gabarit;
    size_t lh = strcspn(place, "#");
    if (lh)
        while ((int64_t)position + (int64_t)lh < t.taille && !EstA(t, position, place, lh)) ++position;
    for (;;) {
        size_t l = strcspn(place, "#");
        if (!place[l]) return position + (int32_t)l;
        if (l && !EstA(t, position, place, l)) {
            erreur = true;
            if (recuperation) return position;
            MessageDebug("The file format doesn't match with the expected one. (#)");
            return echec;
        }
        position += (int32_t)l;
        // The field, then its delimiter: the next literal.
        const char* nom = place + l + 1;
        size_t ln = strcspn(nom, "#");
        std::string champ(nom, ln < (size_t)LONGUEUR_CHAMP_MAX ? ln : (size_t)LONGUEUR_CHAMP_MAX);
        place = nom[ln] ? nom + ln + 1 : nom + ln;
        size_t ld = strcspn(place, "#");
        int32_t debut = position;
        // An empty delimiter (two fields side by side) gives an empty value.
        if (ld && !(recuperation && EstA(t, position, marque, lm)))
            while ((int64_t)position + (int64_t)ld < t.taille && !EstA(t, position, place, ld) &&
                   !(recuperation && EstA(t, position, marque, lm)))
                ++position;
        if ((int64_t)position + (int64_t)ld >= t.taille) {
            erreur = true;
            if (recuperation) return position;
            MessageDebug("File format fatal error (#)");
            return echec;
        }
        Stocke(modele, objet, champ.c_str(), t.donnees + debut, (size_t)(position - debut));
        if (recuperation && EstA(t, position, marque, lm)) return position;
    }
}
