// Tile blitters: 8 x 8 tiles drawn per second over a 1280 x 1024 surface,
// indexed and direct, opaque and blended, with the mirror bits of real maps.
#include "render/blitters.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

void DessineTuiles(benchmark::State& etat, int direct, int alpha, bool transparent) {
    Image surface;
    CreeImage(surface, 1280, 1024, 24);
    ChoisitCadre(0, 0, 1280, 1024);
    ModeDirect = direct;
    std::vector<uint32_t> tuiles(1024 * 64);
    for (size_t i = 0; i < tuiles.size(); ++i)
        tuiles[i] = direct ? (uint32_t)(i * 2654435761u) & 0xFFFFFF : (uint32_t)(i * 7 % 256);
    std::vector<uint8_t> palette(256 * 3);
    for (size_t i = 0; i < palette.size(); ++i) palette[i] = (uint8_t)(i * 5);
    const int parLigne = 1280 / 8, lignes = 1024 / 8;
    for (auto _ : etat) {
        for (int r = 0; r < lignes; ++r)
            for (int c = 0; c < parLigne; ++c) {
                const uint32_t cellule = (uint32_t)((r * parLigne + c) % 1024) | (uint32_t)(c & 3) << 10;
                const uint32_t* src = tuiles.data() + TuileDeCellule(cellule) * 64;
                const int mh = (cellule >> 10) & 1, mv = (cellule >> 11) & 1;
                if (transparent)
                    AfficheBlocMiroirTranspAlpha(&surface, c * 8, r * 8, 8, 8, src, palette.data(), mh, mv, 255, alpha);
                else if (alpha)
                    AfficheBlocMiroirAlpha(&surface, c * 8, r * 8, 8, 8, src, palette.data(), mh, mv, 255, alpha);
                else
                    AfficheBlocMiroir(&surface, c * 8, r * 8, 8, 8, src, palette.data(), mh, mv, 255);
            }
        benchmark::ClobberMemory();
    }
    etat.SetItemsProcessed(etat.iterations() * parLigne * lignes);
    ModeDirect = 0;
    LibereImage(surface);
}

void BM_TuilesIndexees(benchmark::State& e) { DessineTuiles(e, 0, 0, false); }
void BM_TuilesIndexeesAlpha(benchmark::State& e) { DessineTuiles(e, 0, 160, true); }
void BM_TuilesDirectes(benchmark::State& e) { DessineTuiles(e, 1, 0, false); }
void BM_TuilesDirectesAlpha(benchmark::State& e) { DessineTuiles(e, 1, 160, true); }
BENCHMARK(BM_TuilesIndexees);
BENCHMARK(BM_TuilesIndexeesAlpha);
BENCHMARK(BM_TuilesDirectes);
BENCHMARK(BM_TuilesDirectesAlpha);

} // namespace

BENCHMARK_MAIN();
