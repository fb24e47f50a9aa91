// Output formats: how each kind of element looks as a file. One definition
// serves writing and reading back. Slot 0 is the built-in "Standard"; users
// add their own with `defformat` blocks; FormatCourant is the working copy
// that every reader and writer uses.
#pragma once
#include <cstdint>
#include <cstdio>

enum IndexSection {
    SECTION_BITMAP16 = 0,
    SECTION_BITMAP8,
    SECTION_PALETTE,
    SECTION_TILESET,
    SECTION_MAP,
    SECTION_LIST,
    NB_SECTIONS,
};

// All texts are zero-ended and never null: a field not given is "".
struct SectionFormat {
    const char* declaration; // written once at the head of the file
    int32_t n_every;         // values between two every_x; below 1: never
    const char* every_x;
    const char* element;     // number format of one value
    const char* element2;    // map: 8-bit cell; tileset: two 4-bit pixels
    const char* element3;    // map: 32-bit cell; tileset: 15-bit pixel
    const char* line;        // after each line (row, tile, object)
    const char* end;         // once at the end of the file
    const char* ext;         // file extension with its dot: ".map.c"
};

constexpr int TAILLE_NOM_FORMAT = 100;
constexpr int NB_USER = 9; // user[1] to user[8]; user[0] is unused

struct DefinitionFormat {
    char nom[TAILLE_NOM_FORMAT];
    char* pool; // 1 MiB of texts for this slot's definitions; null until the first
    SectionFormat sections[NB_SECTIONS];
    const char* type8;
    const char* type16;
    const char* type32;
    const char* bits4; // stored, read by nothing
    const char* bits8;
    const char* typesd; // the type text of a new list element
    const char* user[NB_USER];
};

struct FormatChoisi {
    SectionFormat sections[NB_SECTIONS];
    const char* type8;
    const char* type16;
    const char* type32;
    const char* typesd;
    const char* user[NB_USER];
    int slot; // the DefinitionFormat it was copied from
};

constexpr int NB_FORMATS_MAX = 100;
constexpr size_t TAILLE_POOL_FORMAT = 1048576;

extern DefinitionFormat TableFormats[NB_FORMATS_MAX];
extern int NbFormats;
extern FormatChoisi FormatCourant;

// The built-in "Standard" (C source) is the format in force.
inline bool FormatCourantEstC() { return FormatCourant.slot == 0; }

// Start-up: empties the table, builds "Standard" in slot 0 and chooses it.
void InitialiseFormats();
// Reads a definition block from the script file for the format of that name:
// an existing slot keeps what the block does not name; a new slot starts as a
// copy of FormatCourant. Does not select it.
void DefinitFormat(FILE* fichier, const char* nom);
// Selects the format of exactly that name; else "Format not found: %s".
void ChoisitFormat(const char* nom);
// Selects the first format that has the file's extension in any section,
// when automatic selection is on; else nothing changes.
void ChoisitFormatParExtension(const char* chemin);
// Name of the selected format.
const char* NomFormatCourant();
// Sets the hooks through which the core and the interpreter reach formats.
void InstalleFormats();
