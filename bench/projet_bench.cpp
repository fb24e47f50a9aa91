// Loading and saving a full project (1000 rows) and filling the table through
// AjouteElement, whose duplicate search is a linear scan of the table.
#include "core/elements.h"
#include "core/modeles.h"
#include "core/projet.h"
#include "core/reglages.h"
#include "platform/texte.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>

namespace {

void RemplitTable() {
    NbElements = 0;
    for (int i = 0; i < NB_ELEMENTS_MAX; ++i) {
        char nom[32], fichier[64];
        FormateBorne(nom, sizeof nom, "element%d", i);
        FormateBorne(fichier, sizeof fichier, "gfx\\element%d.map.c", i);
        AjouteElement(NouvelElement(TYPE_CARTE, nom, fichier, "gfx\\source.png"));
    }
}

std::string CheminBanc() { return (std::filesystem::temp_directory_path() / "tess_bench_projet.tsl").string(); }

void BM_AjouteElement1000(benchmark::State& etat) {
    for (auto _ : etat) {
        RemplitTable();
        benchmark::DoNotOptimize(NbElements);
    }
}
BENCHMARK(BM_AjouteElement1000);

void BM_SauveProjet1000(benchmark::State& etat) {
    InitialiseModeles();
    RemplitTable();
    std::string chemin = CheminBanc();
    for (auto _ : etat) SauveProjet(chemin.c_str());
    std::remove(chemin.c_str());
}
BENCHMARK(BM_SauveProjet1000);

void BM_ChargeProjet1000(benchmark::State& etat) {
    InitialiseModeles();
    RemplitTable();
    std::string chemin = CheminBanc();
    SauveProjet(chemin.c_str());
    for (auto _ : etat) {
        ChargeProjet(chemin.c_str());
        benchmark::DoNotOptimize(NbElements);
    }
    if (NbElements != NB_ELEMENTS_MAX) etat.SkipWithError("rows lost on reading");
    std::remove(chemin.c_str());
}
BENCHMARK(BM_ChargeProjet1000);

} // namespace

BENCHMARK_MAIN();
