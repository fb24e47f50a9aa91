// Colour quantisation on generated pictures: a 1024 x 1024 photo-like picture
// (smooth light and hue changes with grain, tens of thousands of 15-bit
// colours) reduced to 255 colours by the bitmap search and by the tile
// bisection, a 256 x 256 one reduced to 15, and the octree on the photo.
#include "convert/couleurs.h"
#include "convert/images.h"
#include "convert/quantification.h"
#include "core/reglages.h"
#include "render/apercus.h"
#include "render/surfaces.h"
#include "script/interpreteur.h"

#include "bench/images_bench.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <vector>

namespace {

using bench::Photo;

void Prepare(int cote) {
    ReinitialiseReglages();
    ConstruitTablesCouleur();
    messages = 0;
    DimensionneApercu(cote, cote, true);
    Photo(SurfaceApercu, cote);
}

void Normale(benchmark::State& etat, int cote, int maxi, bool tuiles) {
    Prepare(cote);
    std::vector<uint32_t> indices((size_t)cote * cote);
    uint8_t palette[TAILLE_PALETTE_REDUCTION] = {};
    int n = 0;
    for (auto _ : etat) {
        n = ReductionNormaleCherchee(indices.data(), palette, cote, cote, 0, 0, maxi, tuiles);
        benchmark::DoNotOptimize(n);
    }
    etat.counters["couleurs"] = n;
    LibereImage(SurfaceApercu);
}

void BM_Photo1024Bitmap255(benchmark::State& e) { Normale(e, 1024, 255, false); }
void BM_Photo1024Tuiles255(benchmark::State& e) { Normale(e, 1024, 255, true); }
void BM_Photo256Tuiles15(benchmark::State& e) { Normale(e, 256, 15, true); }
BENCHMARK(BM_Photo1024Bitmap255)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Photo1024Tuiles255)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Photo256Tuiles15)->Unit(benchmark::kMillisecond);

void BM_Photo1024Octree255(benchmark::State& etat) {
    Prepare(1024);
    std::vector<uint32_t> indices((size_t)1024 * 1024);
    uint8_t palette[TAILLE_PALETTE_REDUCTION] = {};
    int n = 0;
    for (auto _ : etat) {
        etat.PauseTiming();
        CreeImage(ImageGardee, 1024, 1024, 24);
        BitsImageGardee = 24;
        memcpy(ImageGardee.pixels, SurfaceApercu.pixels, (size_t)ImageGardee.pas * 1024);
        etat.ResumeTiming();
        n = ReductionOptimale(indices.data(), palette, 1024, 1024, 0, 254);
        benchmark::DoNotOptimize(n);
    }
    etat.counters["couleurs"] = n;
    LibereImage(SurfaceApercu);
}
BENCHMARK(BM_Photo1024Octree255)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
