// Format definitions.
//
// Sections: the built-in "Standard"; the table and the working copy; reading
// a definition block; selecting a format.
#include "format/formats.h"

#include "core/chaines.h"
#include "core/chemins.h"
#include "core/crochets.h"
#include "core/reglages.h"
#include "platform/plateforme.h"
#include "platform/texte.h"
#include "script/crochets.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

DefinitionFormat TableFormats[NB_FORMATS_MAX];
int NbFormats = 0;
FormatChoisi FormatCourant;

// ---- The built-in "Standard" ----------------------------------------------------

namespace {

const SectionFormat SectionsStandard[NB_SECTIONS] = {
    // bitmap16
    {"//%file%\r\n//Converti avec %user2% par Zorvan\r\n//Bitmap 16 bits\r\n//Taille: %sizex%*%sizey%\r\n"
     "//M\xE9moire: %memory% octets\r\n\r\nconst unsigned short %name%_bitmap16[%sizey%][%sizex%]=\t{\r\n",
     8, "\b\r\n", "0x%04x, ", "", "", "\b\r\n", "\b\b};\r\n", ".b16.c"},
    // bitmap8
    {"//%file%\r\n//Converti avec Tessellarium par Zorvan\r\n//Bitmap 8 bits (\"%link%\")\r\n"
     "//Taille: %sizex%*%sizey%\r\n//M\xE9moire: %memory% octets\r\n\r\n"
     "const unsigned char %name%_bitmap8[%sizey%][%sizex%]=\t{\r\n",
     12, "\b\r\n", "0x%02x, ", "", "", "", "\b\b};\r\n", ".b8.c"},
    // palette
    {"//%file%\r\n//Converti avec Tessellarium par Zorvan\r\n//Palette\r\n//Taille: %size%\r\n"
     "//M\xE9moire: %memory% octets\r\n\r\nconst unsigned short %name%_palette[%size%]=\t{\r\n",
     8, "\b\r\n", "0x%04x, ", "", "", "\b\r\n", "\b\b};\r\n", ".pal.c"},
    // tileset
    {"//%file%\r\n//Converti avec Tessellarium par Zorvan\r\n"
     "//Tileset %+if<>(%%depth% bits (\"%link%\")%+else%(\"%link%\")%+end%\r\n"
     "//Taille: %tilex%*%tiley%*%size%\r\n//M\xE9moire: %memory% octets\r\n\r\n"
     "const unsigned %type%%user[2]% %name%_tiles[%memory%]=\t{\r\n",
     12, "\b\r\n", "0x%02x, ", "0x%02x, ", "0x%04x, ", "", "\b\b};\r\n", ".til.c"},
    // map
    {"//%file%\r\n//Converti avec Tessellarium par Zorvan\r\n"
     "//Map (\"%null%\",\"%link%\"%+if=,%,%tilebase%,%$gfxmask%)%+else%)%+end%\r\n"
     "//Taille: %tilex%*%tiley% * %sizex%*%sizey%\r\n//M\xE9moire: %memory% octets\r\n"
     "%+if<>c%\r\nc%+else%c%+endif%onst unsigned %type% %name%_map[%sizey%][%sizex%]=\t{\r\n\t{",
     8, "\b\r\n", "0x%04x, ", "0x%02x, ", "0x%08x, ", "\b\b},\r\n\t{", "\b\b\b\b\b\r\n};\r\n", ".map.c"},
    // list
    {"//%file%\r\n//Converti avec Tessellarium par Zorvan\r\n"
     "//Liste (\"%link%\"%+if=,%, \"%model%\")%+else%)%+end%\r\n//Taille: %tilex%*%tiley%\r\n"
     "//M\xE9moire: %memory% octets\r\n\r\n%user[1]%\r\n\r\n"
     "const unsigned int %name%_liste_nbEle=%size%;\r\n\r\nconst %type% %name%_liste[]=\t{",
     0, "", "\r\n\t{#type#,#x#,#y##+param:\",\":\"\"#},", "", "", "", "\r\n};\r\n", ".lst.c"},
};

void CopieVersSlot(DefinitionFormat& d, const FormatChoisi& f) {
    for (int s = 0; s < NB_SECTIONS; ++s) d.sections[s] = f.sections[s];
    d.type8 = f.type8;
    d.type16 = f.type16;
    d.type32 = f.type32;
    d.typesd = f.typesd;
    d.bits4 = d.bits8 = "";
    for (int i = 0; i < NB_USER; ++i) d.user[i] = f.user[i];
}

void CopieDepuisSlot(FormatChoisi& f, int slot) {
    const DefinitionFormat& d = TableFormats[slot];
    for (int s = 0; s < NB_SECTIONS; ++s) f.sections[s] = d.sections[s];
    f.type8 = d.type8;
    f.type16 = d.type16;
    f.type32 = d.type32;
    f.typesd = d.typesd;
    for (int i = 0; i < NB_USER; ++i) f.user[i] = d.user[i];
    f.slot = slot;
}

} // namespace

namespace {
// Pools of a table that was started again, given to the next slots that need
// one. Only tests and fuzzers start it more than once.
char* PoolsLibres[NB_FORMATS_MAX];
int NbPoolsLibres = 0;
} // namespace

void InitialiseFormats() {
    // Pools are never freed. Starting the table again drops every definition,
    // and their pools serve the next ones.
    for (int i = 0; i < NbFormats; ++i) {
        char* pool = TableFormats[i].pool;
        bool deja = pool == nullptr; // a slot copied from another shares its pool
        for (int j = 0; j < NbPoolsLibres && !deja; ++j) deja = PoolsLibres[j] == pool;
        if (!deja && NbPoolsLibres < NB_FORMATS_MAX) PoolsLibres[NbPoolsLibres++] = pool;
    }
    NbFormats = 0;
    FormatChoisi standard{};
    for (int s = 0; s < NB_SECTIONS; ++s) standard.sections[s] = SectionsStandard[s];
    standard.type8 = "char";
    standard.type16 = "short";
    standard.type32 = "long";
    standard.typesd = "SPRITE_LISTE";
    for (int i = 0; i < NB_USER; ++i) standard.user[i] = "";
    standard.user[1] = "#include \"def.h\"";
    DefinitionFormat& d = TableFormats[0];
    d = DefinitionFormat{};
    CopieBornee(d.nom, "Standard");
    CopieVersSlot(d, standard);
    NbFormats = 1;
    CopieDepuisSlot(FormatCourant, 0);
}

// ---- Reading a definition block ----------------------------------------------------

namespace {

// One write position for all pools: a redefinition goes on writing where the
// last definition stopped, in whatever pool that was.
char* PositionPool = nullptr;
char* FinPool = nullptr;

// Stores a quoted value in the pool; an unquoted one stores "". Gives null
// when the pool is full, and the key keeps its value.
const char* StockeTexte(const char* valeur) {
    const char* apres = CopieChaineEchappee(nullptr, valeur, 0);
    if (apres == valeur) return "";
    size_t besoin = (size_t)(apres - valeur) + 1; // the value as written always has room
    if (!PositionPool || besoin > (size_t)(FinPool - PositionPool)) return nullptr;
    char* texte = PositionPool;
    CopieChaineEchappee(texte, valeur, besoin);
    PositionPool += besoin;
    return texte;
}

struct CleSection {
    const char* nom;
    size_t champ; // offset of the text field in SectionFormat, or (size_t)-1 for n_every
};
constexpr size_t N_EVERY = (size_t)-1;
const CleSection ClesSection[] = {
    {"declaration", offsetof(SectionFormat, declaration)},
    {"n_every", N_EVERY},
    {"n_chaque", N_EVERY},
    {"every_x", offsetof(SectionFormat, every_x)},
    {"chaque_x", offsetof(SectionFormat, every_x)},
    {"element", offsetof(SectionFormat, element)},
    {"element2", offsetof(SectionFormat, element2)},
    {"element3", offsetof(SectionFormat, element3)},
    {"line", offsetof(SectionFormat, line)},
    {"ligne", offsetof(SectionFormat, line)},
    {"end", offsetof(SectionFormat, end)},
    {"fin", offsetof(SectionFormat, end)},
    {"ext", offsetof(SectionFormat, ext)},
};

// A decimal number with an optional sign, wrapping at 32 bits.
int32_t LitNombreDecimal(const char* p) {
    bool negatif = *p == '-';
    if (*p == '-' || *p == '+') ++p;
    uint32_t v = 0;
    for (; *p >= '0' && *p <= '9'; ++p) v = v * 10u + (uint32_t)(*p - '0');
    return (int32_t)(negatif ? 0u - v : v);
}

void AppliqueCle(DefinitionFormat& d, int section, const char* cle, const char* valeur) {
    for (const CleSection& c : ClesSection) {
        if (strcmp(cle, c.nom) != 0) continue;
        if (section < 0) {
            MessageDebugF("Field definition must be defined in a section (%s=%s)", cle, valeur);
            return;
        }
        SectionFormat& s = d.sections[section];
        if (c.champ == N_EVERY) {
            s.n_every = LitNombreDecimal(valeur);
            return;
        }
        if (const char* texte = StockeTexte(valeur)) *(const char**)((char*)&s + c.champ) = texte;
        return;
    }
    const char** champ = nullptr;
    if (strcmp(cle, "type8") == 0) champ = &d.type8;
    else if (strcmp(cle, "type16") == 0) champ = &d.type16;
    else if (strcmp(cle, "type32") == 0) champ = &d.type32;
    else if (strcmp(cle, "bits4") == 0) champ = &d.bits4;
    else if (strcmp(cle, "bits8") == 0) champ = &d.bits8;
    else if (strcmp(cle, "typesd") == 0) champ = &d.typesd;
    else if (strncmp(cle, "user[", 5) == 0 && cle[5] >= '1' && cle[5] <= '8') champ = &d.user[cle[5] - '0'];
    if (!champ) return; // a key nobody knows is passed over
    if (const char* texte = StockeTexte(valeur)) *champ = texte;
}

int SectionDeNom(const char* nom) {
    static const char* const noms[] = {"bitmap16", "bitmap8", "palette", "tileset", "map", "list"};
    for (int s = 0; s < NB_SECTIONS; ++s)
        if (strcmp(nom, noms[s]) == 0) return s;
    return strcmp(nom, "liste") == 0 ? SECTION_LIST : -1;
}

// Letters folded, tabs made blanks, the line cut at '#' or its end; quoted
// runs (" or ') stay as written, and the character right after a closing
// quote is not looked at.
void PrepareLigne(char* ligne) {
    for (char* p = ligne; *p; ++p) {
        if (*p == '"' || *p == '\'') {
            char q = *p;
            for (++p; *p && !(*p == q && p[-1] != '\\'); ++p) {
            }
            if (!*p || !p[1]) return;
            ++p; // the character behind the closing quote
            continue;
        }
        if (*p == '#' || *p == '\n') {
            *p = 0;
            return;
        }
        if (*p == '\t') *p = ' ';
        else if (*p >= 'A' && *p <= 'Z') *p = (char)(*p - 'A' + 'a');
    }
}

} // namespace

void DefinitFormat(FILE* fichier, const char* nom) {
    int slot = -1;
    for (int i = 0; i < NbFormats; ++i)
        if (strcmp(TableFormats[i].nom, nom) == 0) slot = i;
    bool nouveau = slot < 0;
    if (nouveau && NbFormats >= NB_FORMATS_MAX) {
        // The table is full: the block is read over and nothing is stored.
        PasseDefinitionFormat(fichier);
        return;
    }
    if (nouveau) {
        slot = NbFormats;
        DefinitionFormat& d = TableFormats[slot];
        d = DefinitionFormat{};
        CopieVersSlot(d, FormatCourant);
        CopieBornee(d.nom, nom);
    }
    DefinitionFormat& d = TableFormats[slot];
    if (!d.pool) {
        d.pool = NbPoolsLibres > 0 ? PoolsLibres[--NbPoolsLibres] : (char*)malloc(TAILLE_POOL_FORMAT);
        PositionPool = d.pool;
        FinPool = d.pool ? d.pool + TAILLE_POOL_FORMAT : nullptr;
    }

    int section = -1;
    char ligne[4097];
    while (fgets(ligne, sizeof ligne, fichier)) {
        // The line end goes first, so that it never joins a value.
        size_t fin = strlen(ligne);
        if (fin > 0 && ligne[fin - 1] == '\n') ligne[--fin] = 0;
        if (fin > 0 && ligne[fin - 1] == '\r') ligne[--fin] = 0;
        PrepareLigne(ligne);
        char* p = ligne;
        while (*p == ' ') ++p;
        char cle[100];
        size_t n = 0;
        while (((*p >= 'a' && *p <= 'z') || (*p >= '0' && *p <= '9') || *p == '_' || *p == '[' || *p == ']') &&
               n + 1 < sizeof cle)
            cle[n++] = *p++;
        cle[n] = 0;
        while (*p == ' ') ++p;
        if (*p == '=') {
            ++p;
            while (*p == ' ') ++p;
            AppliqueCle(d, section, cle, p);
        } else if (*p == '{') {
            int s = SectionDeNom(cle);
            if (s >= 0) section = s;
        } else if (*p == '}') {
            if (section < 0) break;
            section = -1;
        } else if (*p) {
            MessageDebugF("Unexpected character: %c", *p);
        }
    }
    if (nouveau) ++NbFormats;
}

// ---- Selecting a format --------------------------------------------------------------

void ChoisitFormat(const char* nom) {
    for (int i = 0; i < NbFormats; ++i)
        if (strcmp(TableFormats[i].nom, nom) == 0) {
            CopieDepuisSlot(FormatCourant, i);
            return;
        }
    BoiteMessageF("Internal error: ChoisitFormat", BOITE_OK, "Format not found: %s", nom);
}

void ChoisitFormatParExtension(const char* chemin) {
    if (ReglagesSys.selectionFormatAuto == 0) return;
    const char* ext = Extension(chemin);
    for (int i = 0; i < NbFormats; ++i)
        for (const SectionFormat& s : TableFormats[i].sections)
            if (s.ext[0] && strcmp(ext, s.ext + 1) == 0) {
                CopieDepuisSlot(FormatCourant, i);
                return;
            }
}

const char* NomFormatCourant() {
    int slot = FormatCourant.slot;
    return slot >= 0 && slot < NbFormats ? TableFormats[slot].nom : nullptr;
}

void InstalleFormats() {
    Crochets.nomFormatCourant = NomFormatCourant;
    CrochetsScript.definitFormat = DefinitFormat;
    CrochetsScript.choisitFormat = ChoisitFormat;
}
