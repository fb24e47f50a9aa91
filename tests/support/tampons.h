// Test support for the format layer: files written and read back.
#pragma once
#include "format/formats.h"
#include "format/lecture.h"
#include "format/variables.h"
#include "tests/support/enregistreur.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>

// A test of the format layer: a fresh folder, recorded messages, "Standard"
// chosen, the variables and user texts as a file's read or write starts.
struct TestFormat : testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages journal;
    void SetUp() override {
        InitialiseFormats();
        RestaureVariables();
        ChargeTextesUser();
        SilenceLecture = false;
    }
    void TearDown() override { SilenceLecture = false; }
};

// A read buffer of exactly the data and its terminator, so that a read past
// the end is caught by the address sanitizer.
struct Donnees {
    TamponLecture t;
    explicit Donnees(const std::string& s) {
        t.donnees = (char*)malloc(s.size() + 1);
        memcpy(t.donnees, s.data(), s.size());
        t.donnees[s.size()] = 0;
        t.taille = (int32_t)s.size();
    }
    ~Donnees() { LibereTampon(t); }
    Donnees(const Donnees&) = delete;
    Donnees& operator=(const Donnees&) = delete;
};

// The bytes of a file written by f, opened as every output is ("wb").
inline std::string Ecrit(const std::function<void(FILE*)>& f) {
    FILE* fichier = fopen("sortie.bin", "wb");
    if (!fichier) return "<not opened>";
    f(fichier);
    fclose(fichier);
    return LitFichier("sortie.bin");
}

// The buffers that a read fills for the text variables name, link and type.
template <size_t N> struct TamponsTexte {
    char nom[N] = "", lien[N] = "", type[N] = "";
    TamponsTexte() {
        MetTamponVariable("name", nom, N);
        MetTamponVariable("link", lien, N);
        MetTamponVariable("type", type, N);
    }
};

// Damages a file in one to three ways: cut, bytes changed, junk inserted (now
// and then more than a field holds), a span twice, a span removed, junk before
// the head. The junk is mostly made of the characters given.
inline std::string Abime(std::string s, std::mt19937& alea, const std::string& syntaxe) {
    auto Au = [&] { return alea() % 4 ? syntaxe[alea() % syntaxe.size()] : (char)alea(); };
    for (int k = 1 + (int)(alea() % 3); k > 0; --k) {
        size_t n = s.size(), a = n ? alea() % n : 0, b = n ? alea() % n : 0;
        if (a > b) std::swap(a, b);
        switch (alea() % 6) {
        case 0:
            s.resize(a);
            break;
        case 1:
            for (int i = 0; i < 1 + (int)(alea() % 8) && n; ++i)
                s[alea() % n] = Au();
            break;
        case 2:
            for (size_t l = alea() % 8 == 0 ? 1200 : 1 + alea() % 40; l > 0; --l)
                s.insert(s.begin() + (ptrdiff_t)a, Au());
            break;
        case 3:
            s.insert(b, s.substr(a, b - a));
            break;
        case 4:
            s.erase(a, b - a);
            break;
        default:
            s.insert(0, std::string(1 + alea() % 5, Au()));
            break;
        }
    }
    return s;
}
