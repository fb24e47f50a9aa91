#include "convert/couleurs.h"

#include "core/reglages.h"

#include <cmath>

uint8_t TableRouge[256];
uint8_t TableVerte[256];
uint8_t TableBleue[256];

namespace {

// trunc, bounded to what the tables hold: values out of range (or not a
// number, from a gamma of 0) land on the nearest end.
int Tronque(double v) {
    if (!(v > -1.0)) return v > 0 ? 31 : 0; // NaN and large negatives
    if (v >= 32.0) return 31;
    return (int)std::trunc(v);
}

} // namespace

void ConstruitTablesCouleur() {
    const ReglagesConversion& c = ReglagesConv;
    const int n = (c.nuances < 1 ? 1 : c.nuances) - 1;
    const double a = 256.0 / (n + 1);
    const double b = n > 0 ? 31.0 / n : 0.0; // one shade: every entry is 0
    uint8_t* tables[3] = {TableRouge, TableVerte, TableBleue};
    for (int k = 0; k < 3; ++k) {
        const double w = c.alpha[k] >= 0 ? c.alpha[k] : 0.0;
        const double m = std::fabs(c.alpha[k]);
        for (int i = 0; i < 256; ++i) {
            double t, valeur;
            if (!c.nuancesAvant) {
                t = i * 0.00392156862745098;
                const double u = (std::pow(t, c.gamma[k]) * 255 + c.add[k]) * (255 - m) * 0.00392156862745098 + w + 0.5;
                valeur = std::trunc(std::trunc(u / a) * b);
            } else {
                t = std::trunc(std::trunc(i / a) * b * 8) * 0.00392156862745098;
                const double u = (std::pow(t, c.gamma[k]) * 255 + c.add[k]) * (255 - m) * 0.00392156862745098 + w + 0.5;
                valeur = std::trunc(u * 0.125);
            }
            int v = Tronque(valeur);
            tables[k][i] = (uint8_t)(v < 0 ? 0 : v > 31 ? 31 : v);
        }
    }
}
