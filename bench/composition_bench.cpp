// One recompose of the editor's planes over a 1280 x 1024 view of 8 x 8
// tiles, scrolled with parallax (speeds from 0.5 to 2), for 1, 4 and 20
// planes, opaque and blended. Two kinds of tilesets:
// - "trous": every tile has transparent pixels, so every plane shows
//   through every other (the worst case: nothing hides anything);
// - "niveau": a level as games have them, the first plane of whole tiles,
//   the others a third whole, a third holed, a third empty.
// The blitter route (tile by tile) is timed beside for comparison; then an
// undo snapshot of a 1024 x 1024-cell plane and its restore.
#include "editor/composition.h"
#include "editor/edition.h"
#include "editor/plans.h"
#include "render/surfaces.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <random>

namespace {

void Installe(int slot, int genre, std::mt19937& aleas) {
    Plan& p = Plans[slot];
    p = Plan{};
    p.typePlan = TYPE_CARTE;
    p.sizex = p.sizey = 256;
    p.tilex = p.tiley = p.baseX = p.baseY = p.grilleX = p.grilleY = 8;
    p.nbTuiles = 256;
    p.gfxmask = 0xFFFFFFFF;
    p.vitesseX = p.vitesseY = 0.5 + 0.25 * (slot % 7);
    p.formatCellule = CELLULE_16_BITS;
    p.palette = (uint8_t*)malloc(768);
    for (int i = 0; i < 768; ++i) p.palette[i] = (uint8_t)aleas();
    p.tuiles = (uint32_t*)malloc(256 * 64 * 4);
    for (int t = 0; t < 256; ++t)
        for (int k = 0; k < 64; ++k) {
            const uint32_t r = aleas();
            const bool trou = genre == 0 ? r % 4 == 0 : (slot > 0 && t % 3 == 1 && r % 4 == 0);
            p.tuiles[t * 64 + k] = trou ? 0 : 1 + r % 255;
        }
    p.cellules = (uint32_t*)malloc(256 * 256 * 4);
    for (int i = 0; i < 256 * 256; ++i) {
        uint32_t t = aleas() % 256;
        // "niveau": the other planes are a third empty (tile 256 is past the tileset).
        if (genre == 1 && slot > 0 && t % 3 == 2) t = 256;
        p.cellules[i] = t;
    }
    ReglagesPlans.visible[slot] = 1;
}

void Prepare(int plans, int genre, bool melange) {
    static bool surfaces = false;
    if (!surfaces) surfaces = CreeSurfacesEditeur();
    for (int i = 0; i < NbPlans; ++i) {
        free(Plans[i].palette);
        free(Plans[i].tuiles);
        free(Plans[i].cellules);
    }
    std::mt19937 aleas(42);
    NbPlans = plans;
    for (int i = 0; i < plans; ++i) Installe(i, genre, aleas);
    PlanActif = plans - 1;
    Vue.largeurVueZ = 1280;
    Vue.hauteurVueZ = 1024;
    DecalageX = 1000;
    DecalageY = 600;
    ReglagesPlans.transparence = melange;
}

void Recompose(benchmark::State& etat, bool unites) {
    Prepare((int)etat.range(0), (int)etat.range(1), etat.range(2) != 0);
    RouteParUnites = unites;
    ComposePlans(); // the tilesets resolved once, as in the editor
    for (auto _ : etat) {
        ComposePlans();
        benchmark::ClobberMemory();
    }
    etat.SetLabel(std::string(etat.range(1) ? "niveau" : "trous") + (etat.range(2) ? " blended" : " opaque"));
}

void BM_Recompose(benchmark::State& e) { Recompose(e, true); }
void BM_RecomposeBlitters(benchmark::State& e) { Recompose(e, false); }

void Cas(benchmark::internal::Benchmark* b) {
    for (int genre : {0, 1})
        for (int melange : {0, 1})
            for (int plans : {1, 4, 20}) b->Args({plans, genre, melange});
    b->Unit(benchmark::kMillisecond)->UseRealTime();
}
BENCHMARK(BM_Recompose)->Apply(Cas);
BENCHMARK(BM_RecomposeBlitters)->Args({20, 0, 0})->Args({20, 0, 1})->Unit(benchmark::kMillisecond)->UseRealTime();

// An undo snapshot of a 1024 x 1024-cell plane (4 MB), and its restore.
void PlanUndo() {
    for (int i = 0; i < NbPlans; ++i) LiberePile(i);
    NbPlans = 1;
    PlanActif = 0;
    Plan& p = Plans[0];
    free(p.cellules);
    p.sizex = p.sizey = 1024;
    p.cellules = (uint32_t*)calloc(1024 * 1024, 4);
    LimiteMemoireAnnulation = 1ll << 40;
    LiberePile(0);
    EmpileEtat(0);
}

void BM_Instantane(benchmark::State& etat) {
    PlanUndo();
    for (auto _ : etat) {
        EmpileEtat(0);
        etat.PauseTiming();
        if (Piles[0].courant > 8) {
            LiberePile(0);
            EmpileEtat(0);
        }
        etat.ResumeTiming();
    }
}
BENCHMARK(BM_Instantane)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Restauration(benchmark::State& etat) {
    PlanUndo();
    EmpileEtat(0);
    for (auto _ : etat) {
        AnnuleEtat(0);
        RetablitEtat(0);
    }
    etat.SetLabel("undo + redo");
}
BENCHMARK(BM_Restauration)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
