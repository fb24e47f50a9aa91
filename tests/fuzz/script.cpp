// A whole script through the interpreter, read from memory: statements,
// labels and goto, defformat and defmodele blocks, include, conv.
//
// goto only searches forward and include neither nests past 32 nor takes a
// file that is running, so a script always ends: no statement budget is
// needed here.
#include "script/interpreteur.h"
#include "tests/fuzz/commun.h"

#include <cstdio>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    PrepareCible("script", argc, argv);
    PrepareElementsEtInclusion("convert.nuances = 16\ndefmodele \"Inclus\" {\n 1, 4, \"a\", \"1\"\n}\nretour 3\n");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
    if (taille == 0 || !SansPeripherique(donnees, taille)) return 0;
    RemetFichiers();
    ReinitialiseEtat();
    std::vector<uint8_t> copie(donnees, donnees + taille);
    FILE* f = fmemopen(copie.data(), copie.size(), "rb");
    if (!f) return 0;
    ExecuteScript(f, nullptr); // closes f
    return 0;
}
