// The value loops write through a format read once and a memory buffer; they
// must give the bytes of the plain way, one printf and one template call for
// each value, on random formats, templates and values: conversions with and
// without width and zeros, binary widths good and bad, a lone '%', the
// character 8 in templates (taken back in the buffer or in the file) and
// templates with fields.
#include "format/ecriture.h"
#include "format/formats.h"
#include "format/variables.h"
#include "tests/support/enregistreur.h"
#include "tests/support/tampons.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

// One value through an element format, the plain way.
void ValeurSimple(FILE* fichier, const char* format, uint32_t valeur) {
    int largeur = 0;
    for (const char* p = format; p && *p; ++p) {
        if (*p != '%') {
            fputc(*p, fichier);
            continue;
        }
        const char* q = p + 1;
        std::string conversion = "%";
        if (q[0] == '0' && q[1] >= '0' && q[1] <= '9') {
            largeur = q[1] - '0';
            conversion += q[0];
            conversion += q[1];
            q += 2;
        } else if (q[0] >= '1' && q[0] <= '9') {
            largeur = q[0] - '0';
            conversion += q[0];
            q += 1;
        }
        const char lettre = *q;
        if (!lettre) break;
        conversion += lettre;
        char texte[32];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        if (lettre == 'i') fwrite(texte, 1, (size_t)snprintf(texte, sizeof texte, conversion.c_str(), (int)valeur), fichier);
        if (lettre == 'x' || lettre == 'X')
            fwrite(texte, 1, (size_t)snprintf(texte, sizeof texte, conversion.c_str(), valeur), fichier);
#pragma GCC diagnostic pop
        if (lettre == 'b') {
            if (largeur == 1 || largeur == 2 || largeur == 4)
                for (int i = 0; i < largeur; ++i) fputc((int)(valeur >> (8 * i) & 0xff), fichier);
            else
                MessageDebug("Binary type error (please use %1b, %2b, %4b only)");
        }
        p = q;
    }
}

void Avant(FILE* f, const SectionFormat& s, long v) {
    if (s.n_every >= 1 && v >= 1 && v % s.n_every == 0) EcritGabarit(s.every_x, f);
}

void LignesSimples(FILE* f, const SectionFormat& s, const char* element, const std::vector<uint32_t>& v, int l, int h,
                   bool parColonne) {
    const bool colonne = parColonne || s.line[0] != 0;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < l; ++x) {
            Avant(f, s, colonne ? x : (long)y * l + x);
            ValeurSimple(f, element, v[(size_t)(y * l + x)]);
        }
        EcritGabarit(s.line, f);
    }
}

void MosaiqueSimple(FILE* f, const SectionFormat& s, const std::vector<uint32_t>& pixels, int tuiles, int parTuile,
                    int profondeur) {
    const bool dansTuile = s.line[0] != 0;
    const int pas = profondeur == 4 ? 2 : 1;
    const char* element = profondeur == 4 ? s.element2 : profondeur == 15 ? s.element3 : s.element;
    long numero = 0;
    for (int t = 0; t < tuiles; ++t) {
        const uint32_t* tuile = pixels.data() + (size_t)t * parTuile;
        for (int i = 0; i < parTuile; i += pas, ++numero) {
            Avant(f, s, dansTuile ? i : numero);
            uint32_t valeur = tuile[i];
            if (pas == 2) valeur = (tuile[i] & 0xf) | (i + 1 < parTuile ? (tuile[i + 1] & 0xf) << 4 : 0);
            ValeurSimple(f, element, valeur);
        }
        EcritGabarit(s.line, f);
    }
}

struct Valeurs : TestFormat {};

} // namespace

TEST_F(Valeurs, BouclesRapidesEgalesALaFaconSimple) {
    std::mt19937 alea(20261123);
    auto un = [&](const std::vector<std::string>& choix) { return choix[alea() % choix.size()]; };
    const std::vector<std::string> morceaux = {"0x", ", ", "\b", "%i", "%x", "%X", "%04x", "%5i", "%02X", "%09i",
                                               "%00x", "%0x", "%1b", "%2b", "%4b", "%3b", "%q", "abc", "\t", "%%"};
    const std::vector<std::string> gabarits = {"", "\n", "\b\n", "\r\n", "\b\b", "%name%\n", "};\b\n",
                                               "%+if%x%+else%y%+end%"};
    MetTexteVariable("name", "n");
    int messagesAttendus = 0;
    for (int essai = 0; essai < 400; ++essai) {
        std::string element;
        for (int k = 1 + (int)(alea() % 4); k > 0; --k) element += un(morceaux);
        if (alea() % 10 == 0) element += "%"; // a lone '%' ends the format
        const std::string every = un(gabarits), ligne = un(gabarits);
        SectionFormat s = FormatCourant.sections[SECTION_MAP];
        s.element = s.element2 = s.element3 = element.c_str();
        s.every_x = every.c_str();
        s.line = ligne.c_str();
        s.n_every = (int32_t)(alea() % 5) - 1;
        // Now and then a loop long enough for the written forms to be kept.
        const bool longue = alea() % 4 == 0;
        const int l = longue ? 70 + (int)(alea() % 30) : 1 + (int)(alea() % 9);
        const int h = longue ? 60 + (int)(alea() % 10) : 1 + (int)(alea() % 4);
        std::vector<uint32_t> v((size_t)l * h * 64);
        for (uint32_t& x : v) x = alea() % 3 == 0 ? alea() : alea() % 300 - (alea() % 2 ? 150 : 0);
        const bool colonne = alea() % 2;
        const int profondeur = (int)(std::vector<int>{4, 8, 15})[alea() % 3];
        SCOPED_TRACE("element \"" + element + "\" every_x \"" + every + "\" line \"" + ligne + "\" n_every " +
                     std::to_string(s.n_every));

        journal.messages.clear();
        const std::string rapide = Ecrit([&](FILE* f) {
            fputs("tete", f); // something to take back before the first value
            EcritValeursLignes(f, s, element.c_str(), v.data(), l, h, colonne);
            EcritValeursPalette(f, s, v.data(), l);
            EcritValeursMosaique(f, s, v.data(), h, 64, profondeur);
        });
        const size_t messagesRapides = journal.messages.size();
        journal.messages.clear();
        const std::string simple = Ecrit([&](FILE* f) {
            fputs("tete", f);
            LignesSimples(f, s, element.c_str(), v, l, h, colonne);
            for (int i = 0; i < l; ++i) {
                Avant(f, s, i);
                ValeurSimple(f, element.c_str(), v[(size_t)i]);
            }
            MosaiqueSimple(f, s, v, h, 64, profondeur);
        });
        ASSERT_EQ(rapide, simple);
        ASSERT_EQ(messagesRapides, journal.messages.size());
        messagesAttendus += (int)messagesRapides;
    }
    EXPECT_GT(messagesAttendus, 0); // the bad binary width was met
}

// Kept forms after a template that took back more bytes than the next value
// writes: the bytes it does not write over stay.
TEST_F(Valeurs, FormesGardeesApresUnRetour) {
    SectionFormat s = FormatCourant.sections[SECTION_MAP];
    s.every_x = "\b\b\b";
    s.line = "";
    s.n_every = 2;
    std::vector<uint32_t> v(80 * 80);
    for (size_t i = 0; i < v.size(); ++i) v[i] = (uint32_t)(i * 7 % 23);
    for (const char* element : {"%x", "%i,", "<%X>"}) {
        SCOPED_TRACE(element);
        const std::string rapide = Ecrit([&](FILE* f) { EcritValeursLignes(f, s, element, v.data(), 80, 80, false); });
        const std::string simple = Ecrit([&](FILE* f) { LignesSimples(f, s, element, v, 80, 80, false); });
        ASSERT_EQ(rapide, simple);
    }
}

// A loop longer than the buffer: the bytes taken back across a flush still
// come off the file.
TEST_F(Valeurs, RetourEnArriereAuBordDuTampon) {
    SectionFormat s = FormatCourant.sections[SECTION_BITMAP16];
    s.element = "%04x, ";
    s.line = "\b\b\b\n";
    s.n_every = 0;
    std::vector<uint32_t> v(40000);
    for (size_t i = 0; i < v.size(); ++i) v[i] = (uint32_t)(i * 7919);
    const std::string rapide = Ecrit([&](FILE* f) { EcritValeursLignes(f, s, s.element, v.data(), 10923, 3, false); });
    const std::string simple = Ecrit([&](FILE* f) { LignesSimples(f, s, s.element, v, 10923, 3, false); });
    EXPECT_EQ(rapide, simple);
    // A literal longer than the buffer goes to the file piece by piece.
    const std::string long_ = "%x" + std::string(40000, 'z') + "%2b";
    const std::string a = Ecrit([&](FILE* f) { EcritValeursLignes(f, s, long_.c_str(), v.data(), 3, 2, false); });
    const std::string b = Ecrit([&](FILE* f) { LignesSimples(f, s, long_.c_str(), v, 3, 2, false); });
    EXPECT_EQ(a, b);
}
