// Hooks: the few places where the core calls a subsystem built above it. Each
// is a function pointer with a harmless default; the library that owns the
// real function sets it at start-up (app/demarrage.cpp). ARCHITECTURE.md
// lists them.
#pragma once
#include <cstdio>

struct CrochetsCore {
    // Runs the statements of an open text file from its position, from the
    // label when one is given, and closes the file. Default: closes it, so
    // the statements are read over.
    void (*executeScript)(FILE* fichier, const char* etiquette);
    // Name of the chosen format, or null when none is chosen. Default: null.
    const char* (*nomFormatCourant)();
};

extern CrochetsCore Crochets;
// The defaults, to put back after a test.
extern const CrochetsCore CrochetsParDefaut;
