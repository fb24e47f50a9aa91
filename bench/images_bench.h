// The pictures of the benchmarks, the same at every run: levels built from
// repeated 8 x 8 tiles, and a photo-like picture.
#pragma once
#include "platform/image.h"

#include <cmath>
#include <cstdint>

namespace bench {

inline uint8_t* Pixel(Image& image, int x, int y) {
    return image.pixels + (size_t)(image.hauteur - 1 - y) * image.pas + (size_t)x * 3;
}

// A level: 8 x 8 tiles chosen among `uniques` by position, each drawn in
// `couleurs` colours (at most 256, all distinct after the 5-bit reduction).
inline void Niveau(Image& image, int cote, int couleurs, int uniques) {
    for (int y = 0; y < cote; ++y)
        for (int x = 0; x < cote; ++x) {
            const uint32_t position = (uint32_t)(x / 8) * 2654435761u ^ (uint32_t)(y / 8) * 40503u;
            const int tuile = (int)(position % (uint32_t)uniques);
            const int c = (tuile * 7 + (x % 8) + (y % 8) * 3) % couleurs;
            uint8_t* p = Pixel(image, x, y);
            p[2] = (uint8_t)((c & 7) * 32 + 16);
            p[1] = (uint8_t)((c >> 3 & 7) * 32 + 16);
            p[0] = (uint8_t)((c >> 6 & 3) * 64 + 16);
        }
}

// Smooth light and hue changes with grain: hundreds of thousands of 24-bit
// colours, tens of thousands after the 5-bit reduction.
inline void Photo(Image& image, int cote) {
    uint32_t graine = 12345;
    auto borne = [](double c) { return (uint8_t)(c < 0 ? 0 : c > 255 ? 255 : c); };
    for (int y = 0; y < cote; ++y)
        for (int x = 0; x < cote; ++x) {
            graine = graine * 1103515245u + 12345u;
            const int grain = (int)(graine >> 27) - 16;
            const double u = (double)x / cote, v = (double)y / cote;
            uint8_t* p = Pixel(image, x, y);
            p[2] = borne(128 + 110 * std::sin(6.0 * u + 2.0 * v) + grain);
            p[1] = borne(128 + 100 * std::cos(5.0 * v - 3.0 * u * v) + grain * 0.7);
            p[0] = borne(128 + 120 * std::sin(4.0 * (u + v) + 1.0) - grain * 0.5);
        }
}

} // namespace bench
