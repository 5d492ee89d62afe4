// The wave table of the Auto Data source, apart from its clock and its records.
#include "data/autoWaves.h"

#include "base/angles.h"

#include <cmath>
#include <cstdint>

const double kAutoFrequencyHz[kAutoFrequencies] = {0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10};

namespace {

// Whole turns come off through a 32-bit integer, which keeps the fraction of a degree. Beyond
// its reach (about a week at 10 Hz) a float phase has no fraction left anyway, so fmod does as well.
float limitPhase(float phase)
{
    if (std::fabs(phase) < 2.0e9f)
        return phase - float(int32_t(phase) / 360 * 360);
    return std::fmod(phase, 360.0f);
}

} // namespace

void autoWaveTable(double t, float r, float table[kAutoWaveRows][kAutoFrequencies])
{
    const float noise = (r - 0.5f) * 0.3f;
    // Not reduced, and the same at every frequency: the wave climbs without end.
    const float climb = float(0.1 * t);
    for (int f = 0; f < kAutoFrequencies; ++f) {
        const float p = limitPhase(float(t * kAutoFrequencyHz[f] * 360.0));
        const float s = float(std::sin(double(p) * kDegreesToRadians));
        table[kSin][f] = s;
        table[kSinIncrease][f] = s + climb;
        table[kSinHalf][f] = std::fabs(s);
        table[kSinRandom][f] = s + noise;
        table[kTriangle][f] = p < 180 ? p / 180 : 1 - (p - 180) / 180;
        table[kSaw1][f] = p / 360;
        table[kSaw2][f] = 1 - p / 360;
        table[kRectangle][f] = p < 180 ? 0.0f : 1.0f;
        table[kRandom][f] = r;
    }
}
