// The preview of a 256 x 256-cell map of 8 x 8 tiles (a 2048 x 2048 picture),
// with and without the GBA cell layout (mirrors and banks).
#include "core/reglages.h"
#include "render/apercus.h"
#include "render/surfaces.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

void ApercuCarte256(benchmark::State& etat, int emulGba) {
    CreeSurfaceApercu();
    std::vector<uint8_t> palette(256 * 3);
    for (size_t i = 0; i < palette.size(); ++i) palette[i] = (uint8_t)(i * 3);
    const int nbTuiles = 512;
    std::vector<uint32_t> tuiles((size_t)nbTuiles * 64);
    for (size_t i = 0; i < tuiles.size(); ++i) tuiles[i] = (uint32_t)(i * 13 % 256);
    std::vector<uint32_t> cellules(256 * 256);
    for (size_t i = 0; i < cellules.size(); ++i)
        cellules[i] = (uint32_t)(i * 2654435761u % nbTuiles) | (uint32_t)(i & 3) << 10;
    EmulGba = emulGba;
    tilex = tiley = 8;
    for (auto _ : etat) {
        sizex = sizey = 256;
        NbTuiles = nbTuiles;
        ApercuCarte(palette.data(), tuiles.data(), cellules.data());
        benchmark::ClobberMemory();
    }
    etat.SetItemsProcessed(etat.iterations() * 256 * 256);
    LibereImage(SurfaceApercu);
}

void BM_ApercuCarte256(benchmark::State& e) { ApercuCarte256(e, 0); }
void BM_ApercuCarte256Gba(benchmark::State& e) { ApercuCarte256(e, 1); }
BENCHMARK(BM_ApercuCarte256)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ApercuCarte256Gba)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
