// Whole conversions as the conv command runs them, picture file to element
// files: a 256 x 256 level of 15 colours to 4-bit tiles, a 1024 x 1024 level
// of 255 colours and 400 distinct tiles to 8-bit tiles, and a 1024 x 1024
// photo-like picture to an 8-bit bitmap (threshold search) and to a 16-bit
// bitmap. (A photo of that size has 16,384 distinct tiles, past the 8,192
// units a tileset holds.) The pictures are 24-bit
// BMP files written once in a temporary folder.
#include "convert/conv.h"
#include "convert/couleurs.h"
#include "convert/images.h"
#include "core/elements.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "format/variables.h"
#include "platform/fichiers.h"
#include "platform/imagefichier.h"
#include "render/apercus.h"
#include "render/surfaces.h"
#include "script/interpreteur.h"

#include "bench/images_bench.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <string>

namespace {

using bench::Niveau;
using bench::Photo;

struct Dossier {
    std::string chemin;
    Dossier() {
        char modele[] = "/tmp/tess_bench_XXXXXX";
        chemin = mkdtemp(modele);
        ChangeRepertoire(chemin.c_str());
        InstalleFormats();
        ReinitialiseReglages();
        InitialiseFormats();
        ConstruitTablesCouleur();
        InitialiseImages();
        SauveVariables();
        CreeSurfaceApercu();
        messages = 0;
        Image image;
        CreeImage(image, 256, 256, 24);
        Niveau(image, 256, 15, 40);
        EcritBmp("niveau.bmp", image, 256, 256);
        CreeImage(image, 1024, 1024, 24);
        Niveau(image, 1024, 255, 400);
        EcritBmp("niveau1024.bmp", image, 1024, 1024);
        CreeImage(image, 1024, 1024, 24);
        Photo(image, 1024);
        EcritBmp("photo.bmp", image, 1024, 1024);
        LibereImage(image);
    }
    ~Dossier() {
        std::string commande = "rm -rf '" + chemin + "'";
        if (std::system(commande.c_str()) != 0) return;
    }
};

Dossier& LeDossier() {
    static Dossier d;
    return d;
}

void Conv(benchmark::State& etat, const char* commande) {
    LeDossier();
    for (auto _ : etat) {
        NbElements = 0;
        ExecuteConv(commande);
        if (NbElements == 0) etat.SkipWithError("the conversion failed");
    }
}

void BM_Niveau256Tuiles4Bits(benchmark::State& e) { Conv(e, "tset src=niveau.bmp +16c"); }
void BM_Niveau1024Tuiles8Bits(benchmark::State& e) { Conv(e, "tset src=niveau1024.bmp"); }
void BM_Photo1024Bitmap8(benchmark::State& e) { Conv(e, "b8 src=photo.bmp"); }
void BM_Photo1024Bitmap16(benchmark::State& e) { Conv(e, "b16 src=photo.bmp"); }
BENCHMARK(BM_Niveau256Tuiles4Bits)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Niveau1024Tuiles8Bits)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Photo1024Bitmap8)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Photo1024Bitmap16)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
