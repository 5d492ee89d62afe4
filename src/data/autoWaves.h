// The test signals of the Auto Data source, computed apart from the clock so that a wave can be
// looked at for any moment.
#pragma once

constexpr int kAutoWaveRows = 9;       // the wave forms held in the table: 0 to 8
constexpr int kAutoFrequencies = 10;   // 0.01 Hz to 10 Hz

// The wave forms a variable picks: those below kAutoWaveRows are tabled, the rest are not signals.
enum AutoWave {
    kSin, kSinIncrease, kSinHalf, kSinRandom, kTriangle, kSaw1, kSaw2, kRectangle, kRandom, kFrequency, kDate, kTime
};

// Frequency item number -> Hz.
extern const double kAutoFrequencyHz[kAutoFrequencies];

// Every tabled wave form at every frequency, t seconds after the start, with r (0 to 1) the
// random number of this cycle.
void autoWaveTable(double t, float r, float table[kAutoWaveRows][kAutoFrequencies]);
