// Test support for the script layer.
#pragma once
#include "core/reglages.h"
#include "platform/texte.h"
#include "script/interpreteur.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>
#include <cstdint>
#include <string>

// Runs the text as a script file of the working directory.
inline void Execute(const std::string& texte) {
    EcritFichier("essai.spt", texte);
    ASSERT_EQ(ExecuteFichierScript("essai.spt", nullptr), 1);
}

// Three settings as "a,b,c".
inline std::string Texte(const double (&v)[3]) {
    char s[96];
    FormateBorne(s, sizeof s, "%g,%g,%g", v[0], v[1], v[2]);
    return s;
}
inline std::string Texte(const uint8_t (&v)[3]) {
    return std::to_string(v[0]) + "," + std::to_string(v[1]) + "," + std::to_string(v[2]);
}

// The editor settings that the scripts of the tests set, as
// "t<timing> g<grid> a<alphagrid> z<zeromask>".
inline std::string Editeur() {
    const ReglagesEditeur& r = ReglagesEdit;
    return "t" + std::to_string(r.timing) + " g" + std::to_string(r.grille) + " a" +
           std::to_string(r.alphaGrille) + " z" + std::to_string(r.masqueZero);
}
