// Template writer.
//
// Sections: templates; variables; element formats; value loops.
#include "format/ecriture.h"

#include "format/variables.h"
#include "platform/plateforme.h"
#include "platform/texte.h"

#include <cstring>
#include <vector>

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

namespace {

// An element format read once: literal runs and conversions, so that a loop
// of a million values formats them without parsing the format or calling
// printf each time. The reading follows the writer's rules to the letter.
struct Segment {
    enum Genre { TEXTE, DECIMAL, HEXA, HEXA_MAJ, BINAIRE, ERREUR_BINAIRE } genre;
    size_t debut, longueur; // TEXTE: the run in the format
    int largeur;            // the printf width of this conversion, or 0
    bool zeros;             // padded with zeros rather than blanks
    int octets;             // BINAIRE: the width in force
};

struct FormatValeur {
    const char* format = nullptr;
    std::vector<Segment> segments;
    size_t longueurMax = 0; // bytes one value can take at most

    void Compile(const char* f, size_t valeurs = 0) {
        format = f;
        segments.clear();
        Lit(f);
        longueurMax = 0;
        bool message = false;
        for (const Segment& s : segments) {
            longueurMax += s.genre == Segment::TEXTE ? s.longueur : s.genre == Segment::BINAIRE ? 4 : 16;
            message = message || s.genre == Segment::ERREUR_BINAIRE;
        }
        // A long loop keeps the written form of each small value: values
        // repeat (palette indices, colours, tile numbers), and a copy costs
        // less than formatting. Not for a format that shows a message.
        memoire.clear();
        if (valeurs >= 4096 && !message && longueurMax < sizeof(Forme::octets))
            memoire.resize(VALEURS_MEMOIRE);
    }

    static constexpr uint32_t VALEURS_MEMOIRE = 32768;
    struct Forme {
        uint8_t longueur; // bytes + 1; 0 while not yet made
        char octets[31];
    };
    mutable std::vector<Forme> memoire;

    void Lit(const char* f) {
        int largeur = 0; // stays for the following conversions of this format
        const char* texte = f;
        auto ferme = [&](const char* fin) {
            if (fin > texte) segments.push_back({Segment::TEXTE, (size_t)(texte - f), (size_t)(fin - texte), 0, false, 0});
        };
        for (const char* p = f; p && *p; ++p) {
            if (*p != '%') continue;
            ferme(p);
            const char* q = p + 1;
            int propre = 0;
            bool zeros = false;
            if (q[0] == '0' && q[1] >= '0' && q[1] <= '9') {
                largeur = propre = q[1] - '0';
                zeros = true;
                q += 2;
            } else if (q[0] >= '1' && q[0] <= '9') {
                largeur = propre = q[0] - '0';
                q += 1;
            }
            const char lettre = *q;
            if (!lettre) {
                texte = q; // the rest of the format is dropped
                return;
            }
            if (lettre == 'i') segments.push_back({Segment::DECIMAL, 0, 0, propre, zeros, 0});
            else if (lettre == 'x') segments.push_back({Segment::HEXA, 0, 0, propre, zeros, 0});
            else if (lettre == 'X') segments.push_back({Segment::HEXA_MAJ, 0, 0, propre, zeros, 0});
            else if (lettre == 'b')
                segments.push_back({largeur == 1 || largeur == 2 || largeur == 4 ? Segment::BINAIRE : Segment::ERREUR_BINAIRE,
                                    0, 0, 0, false, largeur});
            // any other letter: both characters are dropped
            p = q;
            texte = q + 1;
        }
        if (f) ferme(f + strlen(f));
    }
};

// printf's %i, %x and %X with one width digit and the zero flag.
size_t FormateEntier(char* sortie, const Segment& s, uint32_t valeur) {
    char chiffres[16];
    size_t n = 0;
    bool negatif = false;
    if (s.genre == Segment::DECIMAL) {
        const int32_t v = (int32_t)valeur;
        negatif = v < 0;
        uint32_t a = negatif ? 0u - (uint32_t)v : (uint32_t)v;
        do chiffres[n++] = (char)('0' + a % 10); while ((a /= 10) != 0);
    } else {
        const char* hexa = s.genre == Segment::HEXA ? "0123456789abcdef" : "0123456789ABCDEF";
        // Straight into place when no padding is due, the common "%04x" included.
        const int nombre = valeur ? (32 - __builtin_clz(valeur) + 3) / 4 : 1;
        if (nombre >= s.largeur) {
            for (int i = nombre - 1; i >= 0; --i, valeur >>= 4) sortie[i] = hexa[valeur & 15];
            return (size_t)nombre;
        }
        if (s.zeros) {
            for (int i = s.largeur - 1; i >= 0; --i, valeur >>= 4) sortie[i] = hexa[valeur & 15];
            return (size_t)s.largeur;
        }
        do chiffres[n++] = hexa[valeur & 15]; while ((valeur >>= 4) != 0);
    }
    const size_t utiles = n + (negatif ? 1 : 0);
    const size_t remplissage = (size_t)s.largeur > utiles ? (size_t)s.largeur - utiles : 0;
    size_t k = 0;
    if (!s.zeros)
        for (size_t i = 0; i < remplissage; ++i) sortie[k++] = ' ';
    if (negatif) sortie[k++] = '-';
    if (s.zeros)
        for (size_t i = 0; i < remplissage; ++i) sortie[k++] = '0';
    while (n) sortie[k++] = chiffres[--n];
    return k;
}

// A template of the value loops, read once. The usual ones are some
// characters 8 and then plain text at least as long ("\b\r\n"): in the
// buffer such a one takes back bytes and writes over them all, which the
// writer does with one copy.
struct GabaritLu {
    const char* texte;
    size_t recul = 0, longueur = 0; // the characters 8, then the text after them
    bool simple = false;
    explicit GabaritLu(const char* g) : texte(g) {
        if (!g) return;
        while (g[recul] == '\b') ++recul;
        const char* reste = g + recul;
        if (strchr(reste, '%') || strchr(reste, '\b')) return;
        longueur = strlen(reste);
        simple = longueur >= recul && longueur <= 256;
    }
};

// What the value loops write: bytes gathered in memory and handed to the file
// in large blocks. A character 8 moves the place of the next byte one back,
// in memory or in the file, without cutting anything: a byte that is not
// written over stays. A template with fields goes through EcritGabarit after
// what is gathered.
class Redacteur {
  public:
    explicit Redacteur(FILE* f) : fichier(f) {}
    ~Redacteur() { Vide(); }
    Redacteur(const Redacteur&) = delete;
    Redacteur& operator=(const Redacteur&) = delete;

    void Gabarit(const char* gabarit) {
        if (!gabarit || !*gabarit) return;
        if (strchr(gabarit, '%')) {
            Vide();
            EcritGabarit(gabarit, fichier);
            return;
        }
        for (const char* p = gabarit; *p; ++p) {
            if (*p == '\b') {
                if (n > 0) {
                    --n;
                } else {
                    Vide();
                    Recule(fichier);
                }
            } else {
                Place(1);
                tampon[n++] = *p;
                Marque();
            }
        }
    }

    // As Gabarit(g.texte): with nothing gathered past the place and the
    // bytes to take back in the buffer, one copy.
    void Gabarit(const GabaritLu& g) {
        if (g.simple && haut == n && n >= g.recul && n - g.recul + g.longueur <= sizeof tampon) {
            n -= g.recul;
            const char* texte = g.texte + g.recul;
            for (size_t k = 0; k < g.longueur; ++k) tampon[n + k] = texte[k]; // a few bytes: no call
            n += g.longueur;
            haut = n;
            return;
        }
        Gabarit(g.texte);
    }

    void Valeur(const FormatValeur& f, uint32_t valeur) {
        if (f.longueurMax > sizeof tampon / 2) {
            ValeurLongue(f, valeur);
            return;
        }
        const size_t place = f.longueurMax > sizeof(FormatValeur::Forme::octets) ? f.longueurMax
                                                                                 : sizeof(FormatValeur::Forme::octets);
        if (n + place > sizeof tampon) Vide();
        // Written through a local pointer: stores to the buffer could
        // otherwise alias the counters.
        char* t = tampon + n;
        if (valeur < FormatValeur::VALEURS_MEMOIRE && !f.memoire.empty()) {
            FormatValeur::Forme& forme = f.memoire[valeur];
            if (!forme.longueur) forme.longueur = (uint8_t)(Formate(f, valeur, forme.octets) - forme.octets + 1);
            // With nothing gathered past the place, the whole form is copied
            // at a fixed size (no call); the bytes past the value are not
            // counted and are written over next.
            if (haut == n) memcpy(t, forme.octets, sizeof forme.octets);
            else memcpy(t, forme.octets, forme.longueur - 1u);
            t += forme.longueur - 1;
        } else {
            t = Formate(f, valeur, t);
        }
        n = (size_t)(t - tampon);
        Marque();
    }

    // Values one after another with no template between them: as Valeur
    // each. Once nothing gathered lies past the place (no byte taken back
    // waits to be written over), every kept form is copied whole at a fixed
    // size with the place in a register: the bytes past the value are not
    // counted and are written over next.
    void Suite(const FormatValeur& f, const uint32_t* valeurs, size_t nombre) {
        size_t i = 0;
        if (f.memoire.empty() || f.longueurMax > sizeof tampon / 2) {
            for (; i < nombre; ++i) Valeur(f, valeurs[i]);
            return;
        }
        for (; i < nombre && haut > n; ++i) Valeur(f, valeurs[i]);
        if (i == nombre) return;
        const size_t place = f.longueurMax > sizeof(FormatValeur::Forme::octets) ? f.longueurMax
                                                                                 : sizeof(FormatValeur::Forme::octets);
        FormatValeur::Forme* const memoire = f.memoire.data();
        char* const base = tampon;
        size_t ici = n;
        while (i < nombre) {
            if (ici + place > sizeof tampon) {
                n = haut = ici;
                Vide();
                ici = n;
            }
            // As many values as surely fit, with no check of the room left.
            size_t lot = nombre - i;
            if (ici + lot * place > sizeof tampon) lot = (sizeof tampon - ici) / place;
            // Forms of up to 16 bytes (the usual "0x%02x, ") take one copy.
            if (f.longueurMax <= 16) ici = Lot<16>(f, memoire, valeurs, i, i + lot, base, ici);
            else ici = Lot<sizeof(FormatValeur::Forme::octets)>(f, memoire, valeurs, i, i + lot, base, ici);
            i += lot;
        }
        n = haut = ici;
    }

    // Values i..fin - 1 from ici, each form copied at a fixed size; gives the
    // place after them.
    template <size_t COPIE>
    static size_t Lot(const FormatValeur& f, FormatValeur::Forme* memoire, const uint32_t* valeurs, size_t i,
                      size_t fin, char* base, size_t ici) {
        for (; i < fin; ++i) {
            const uint32_t valeur = valeurs[i];
            if (valeur >= FormatValeur::VALEURS_MEMOIRE) {
                ici = (size_t)(Formate(f, valeur, base + ici) - base);
                continue;
            }
            FormatValeur::Forme& forme = memoire[valeur];
            if (!forme.longueur) Garde(f, valeur, forme);
            const size_t longueur = forme.longueur - 1u;
            memcpy(base + ici, forme.octets, COPIE);
            ici += longueur;
        }
        return ici;
    }

    // Makes and keeps the written form of a value (out of the loop above).
    __attribute__((noinline)) static void Garde(const FormatValeur& f, uint32_t valeur, FormatValeur::Forme& forme) {
        forme.longueur = (uint8_t)(Formate(f, valeur, forme.octets) - forme.octets + 1);
    }

    // One value through the format's pieces; gives the end of what it wrote.
    static char* Formate(const FormatValeur& f, uint32_t valeur, char* t) {
        for (const Segment& s : f.segments) {
            switch (s.genre) {
            case Segment::TEXTE: {
                const char* texte = f.format + s.debut;
                for (size_t i = 0; i < s.longueur; ++i) t[i] = texte[i];
                t += s.longueur;
                break;
            }
            case Segment::BINAIRE:
                for (int i = 0; i < s.octets; ++i) *t++ = (char)(valeur >> (8 * i) & 0xff);
                break;
            case Segment::ERREUR_BINAIRE:
                MessageDebug("Binary type error (please use %1b, %2b, %4b only)");
                break;
            default:
                t += FormateEntier(t, s, valeur);
            }
        }
        return t;
    }

    // A format with a literal run too long for the buffer: piece by piece.
    void ValeurLongue(const FormatValeur& f, uint32_t valeur) {
        for (const Segment& s : f.segments) {
            switch (s.genre) {
            case Segment::TEXTE: {
                const char* texte = f.format + s.debut;
                if (s.longueur > sizeof tampon / 2) {
                    Vide();
                    fwrite(texte, 1, s.longueur, fichier);
                    break;
                }
                Place(s.longueur);
                if (s.longueur <= 8) { // the usual ", " and "0x": no call
                    for (size_t i = 0; i < s.longueur; ++i) tampon[n + i] = texte[i];
                } else {
                    memcpy(tampon + n, texte, s.longueur);
                }
                n += s.longueur;
                break;
            }
            case Segment::BINAIRE:
                Place(4);
                for (int i = 0; i < s.octets; ++i) tampon[n++] = (char)(valeur >> (8 * i) & 0xff);
                break;
            case Segment::ERREUR_BINAIRE:
                MessageDebug("Binary type error (please use %1b, %2b, %4b only)");
                break;
            default:
                Place(16);
                n += FormateEntier(tampon + n, s, valeur);
            }
            Marque();
        }
    }

    // Hands what is gathered to the file; the file's place is then that of
    // the next byte.
    void Vide() {
        if (haut) fwrite(tampon, 1, haut, fichier);
        if (n < haut) fseek(fichier, -(long)(haut - n), SEEK_CUR);
        n = haut = 0;
    }

  private:
    void Place(size_t octets) {
        if (n + octets > sizeof tampon) Vide();
    }
    void Marque() {
        if (n > haut) haut = n;
    }

    FILE* fichier;
    size_t n = 0;    // where the next byte goes
    size_t haut = 0; // bytes gathered, some perhaps behind n
    char tampon[65536];
};

} // namespace

void EcritValeur(FILE* fichier, const char* format, uint32_t valeur) {
    FormatValeur f;
    f.Compile(format);
    Redacteur r(fichier);
    r.Valeur(f, valeur);
}

// ---- Value loops -------------------------------------------------------------------

namespace {

// The number v of a value and v modulo n_every, kept as v goes up, so that
// the test before each value costs no division.
struct Compteur {
    explicit Compteur(int32_t n) : n(n) {}
    void Remet() { v = reste = 0; }
    void Avant(Redacteur& r, const GabaritLu& chaque) const {
        if (n >= 1 && v >= 1 && reste == 0) r.Gabarit(chaque);
    }
    void Avance(int pas) {
        v += pas;
        if (n < 1) return;
        reste += pas;
        while (reste >= n) reste -= n;
    }
    const int64_t n;
    int64_t v = 0, reste = 0;
};

} // namespace

void EcritValeursLignes(FILE* fichier, const SectionFormat& section, const char* element, const uint32_t* valeurs,
                        int largeur, int hauteur, bool parColonne) {
    // v is the column when rows have a line template (or when asked), else
    // the number in the file.
    const bool colonne = parColonne || section.line[0] != 0;
    FormatValeur f;
    f.Compile(element, (size_t)(largeur > 0 ? largeur : 0) * (size_t)(hauteur > 0 ? hauteur : 0));
    Redacteur r(fichier);
    const GabaritLu chaque(section.every_x), ligne(section.line);
    Compteur c(section.n_every);
    for (int y = 0; y < hauteur; ++y) {
        if (colonne) c.Remet();
        const uint32_t* rangee = valeurs + (size_t)y * (size_t)largeur;
        // Runs of values up to the next every_x, each written in one go.
        for (int x = 0; x < largeur;) {
            c.Avant(r, chaque);
            const int64_t reste = largeur - x;
            const int suite = (int)(c.n >= 1 && c.n - c.reste < reste ? c.n - c.reste : reste);
            r.Suite(f, rangee + x, (size_t)suite);
            c.Avance(suite);
            x += suite;
        }
        r.Gabarit(ligne);
    }
}

void EcritValeursPalette(FILE* fichier, const SectionFormat& section, const uint32_t* couleurs, int nombre) {
    FormatValeur f;
    f.Compile(section.element);
    Redacteur r(fichier);
    const GabaritLu chaque(section.every_x);
    Compteur c(section.n_every);
    for (int i = 0; i < nombre; ++i) {
        c.Avant(r, chaque);
        r.Valeur(f, couleurs[i]);
        c.Avance(1);
    }
}

void EcritValeursMosaique(FILE* fichier, const SectionFormat& section, const uint32_t* pixels, int nbTuiles,
                          int pixelsParTuile, int profondeur) {
    // v is the pixel inside the tile when tiles have a line template (two a
    // value at 4 bits), else the running number of the value.
    const bool dansTuile = section.line[0] != 0;
    const int pas = profondeur == 4 ? 2 : 1;
    FormatValeur f;
    f.Compile(profondeur == 4 ? section.element2 : profondeur == 15 ? section.element3 : section.element,
              (size_t)(nbTuiles > 0 ? nbTuiles : 0) * (size_t)(pixelsParTuile > 0 ? pixelsParTuile : 0));
    Redacteur r(fichier);
    const GabaritLu chaque(section.every_x), ligne(section.line);
    Compteur c(section.n_every);
    for (int t = 0; t < nbTuiles; ++t) {
        if (dansTuile) c.Remet();
        const uint32_t* tuile = pixels + (size_t)t * (size_t)pixelsParTuile;
        for (int i = 0; i < pixelsParTuile; i += pas) {
            c.Avant(r, chaque);
            uint32_t valeur = tuile[i];
            if (pas == 2) valeur = (tuile[i] & 0xf) | (i + 1 < pixelsParTuile ? (tuile[i + 1] & 0xf) << 4 : 0);
            r.Valeur(f, valeur);
            c.Avance(dansTuile ? pas : 1);
        }
        r.Gabarit(ligne);
    }
}
