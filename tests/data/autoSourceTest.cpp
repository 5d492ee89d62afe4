// Auto Data, the built-in test-signal source: the waves at chosen moments, and what a started
// view reads from it as real time passes.
#include "LoadedView.h"
#include "dataViews.h"
#include "actions/actions.h"
#include "data/autoWaves.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

enum Hz { k0_01, k0_02, k0_05, k0_1, k0_2, k0_5, k1, k2, k5, k10 };

TEST(AutoWaves, TableAtChosenMoments)
{
    const struct {
        AutoWave wave;
        Hz frequency;
        double t;
        float r, expected;
    } cases[] = {
        {kSin, k1, 0, 0, 0}, {kSin, k1, 0.25, 0, 1}, {kSin, k1, 0.75, 0, -1}, {kSin, k2, 0.125, 0, 1},
        {kSinHalf, k1, 0.75, 0, 1}, {kTriangle, k0_5, 0, 0, 0}, {kTriangle, k0_5, 0.5, 0, 0.5f},
        {kTriangle, k0_5, 1.0, 0, 1}, {kTriangle, k0_5, 1.5, 0, 0.5f}, {kSaw1, k0_5, 0, 0, 0},
        {kSaw1, k0_5, 1.5, 0, 0.75f}, {kSaw1, k0_5, 2.5, 0, 0.25f}, {kSaw2, k0_5, 0, 0, 1}, {kSaw2, k0_5, 0.5, 0, 0.75f},
        // Low for the first second of the two, high for the second, and again.
        {kRectangle, k0_5, 0.1, 0, 0}, {kRectangle, k0_5, 0.9, 0, 0}, {kRectangle, k0_5, 1.1, 0, 1},
        {kRectangle, k0_5, 1.9, 0, 1}, {kRectangle, k0_5, 2.1, 0, 0},
        // The climb doesn't follow the frequency and keeps going past the range.
        {kSinIncrease, k1, 100, 0, 10}, {kSinIncrease, k0_01, 10, 0, 1.587785f}, {kSinIncrease, k1, 0.25, 0, 1.025f},
        {kSinRandom, k1, 0.25, 1, 1.15f}, {kSinRandom, k1, 0.25, 0, 0.85f}, {kRandom, k0_01, 3, 0.3f, 0.3f},
        {kRandom, k10, 3, 0.8f, 0.8f},
        // A thousand turns later the phase is still whole to a fraction of a degree; weeks of
        // running at 10 Hz leave a float phase coarse, but still within a turn.
        {kSaw1, k10, 100.05, 0, 0.5f}, {kSaw1, k10, 1e7, 0, 0.5f},
    };
    for (const auto& c : cases) {
        float table[kAutoWaveRows][kAutoFrequencies];
        autoWaveTable(c.t, c.r, table);
        EXPECT_NEAR(table[c.wave][c.frequency], c.expected, c.t < 1e6 ? 1e-4 : 0.5)
            << "wave " << c.wave << " item " << c.frequency << " t " << c.t;
    }
}

VariableFields autoVar(int type, const std::string& name, AutoWave wave, Hz frequency, const std::string& min = "0",
                       const std::string& max = "0")
{
    return VariableFields{type, name, "", {{wave, ""}, {frequency, ""}, {0, min}, {0, max}}};
}

// A variable's MIN..MAX texts, as an editor shows them.
std::string rangeOf(const VARIABLE_STRUCT* v)
{
    return std::string(v->para[2].sval) + ".." + v->para[3].sval;
}

std::string localNow(const char* format)
{
    const time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    tm local;
    localtime_r(&now, &local);
    char text[64];
    strftime(text, sizeof text, format, &local);
    return text;
}

// Right after the start a wave of 0.01 Hz has barely left phase 0: SIN sits mid-range, SAW 1 at
// MIN and SAW 2 at MAX, whichever way round the range lies, and a range of 0 to 0 takes the
// wave's own. Date and time are local texts.
TEST(AutoSource, ViewReadsScaledWavesAndClockTextsFromItsStart)
{
    const struct {
        VariableFields variable;
        double expected;
    } cases[] = {
        {autoVar(KR_VAR_FLOAT, "sin", kSin, k0_01, "0", "10"), 5},
        {autoVar(KR_VAR_FLOAT, "saw2", kSaw2, k0_01, "0", "10"), 10},
        {autoVar(KR_VAR_FLOAT, "inverted", kSaw1, k0_01, "10", "0"), 10},
        {autoVar(KR_VAR_FLOAT, "hz", kFrequency, k0_1, "3", "7"), 0.1},
        {autoVar(KR_VAR_FLOAT, "ownSaw2", kSaw2, k0_01), 1},
        // A form or a frequency past the lists stores nothing; so does a text into a float.
        {autoVar(KR_VAR_FLOAT, "noForm", AutoWave(12), k1, "1", "2"), 0},
        {autoVar(KR_VAR_FLOAT, "noFrequency", kSin, Hz(10), "1", "2"), 0},
        {autoVar(KR_VAR_FLOAT, "dateAsFloat", kDate, k1), 0},
    };
    std::vector<VariableFields> variables = {autoVar(KR_VAR_FLOAT, "clock", kSaw1, k0_1, "0", "10"),
                                             autoVar(KR_VAR_TEXT, "date", kDate, k0_01),
                                             autoVar(KR_VAR_TEXT, "time", kTime, k0_01)};
    for (const auto& c : cases)
        variables.push_back(c.variable);
    LoadedView loaded(viewWith({SourceFields{1, {}, 4, variables}}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);

    for (int start = 0; start < 2; ++start) {
        ASSERT_EQ(krViewStart(view), 0);
        const auto first = std::chrono::steady_clock::now();
        const std::string before = localNow("%d.%m.%Y %H:%M:%S");
        fillDP(view->dataTypes);
        const std::string after = localNow("%d.%m.%Y %H:%M:%S");
        for (const auto& c : cases)
            EXPECT_NEAR(number(view, c.variable.name), c.expected, 0.05) << c.variable.name;
        const std::string now = read(view, "date") + read(view, "time");
        EXPECT_TRUE(now == before || now == after) << now << " for " << before;
        // SAW 1 at 0.1 Hz over 0 to 10 counts the seconds since the start, every start anew.
        const double clock = number(view, "clock");
        EXPECT_LT(clock, 0.5);
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        const std::chrono::duration<double> slept = std::chrono::steady_clock::now() - first;
        fillDP(view->dataTypes);
        EXPECT_NEAR(number(view, "clock") - clock, slept.count(), 0.1);
        ASSERT_EQ(krViewStop(view), 0);
    }
}

// The built-in record as an editing host meets it: a new variable, a changed form.
TEST(AutoRecord, NewAndChangedVariablesGetTypeAndRange)
{
    LoadedView loaded(viewWith({SourceFields{1, {}, 4, {autoVar(KR_VAR_UINT32, "v", kSaw1, k1)}}}));
    ASSERT_NE(loaded.view, nullptr);
    DD_DATA_TYPE_STRUCT* source = loaded.view->dataTypes;
    VARIABLE_STRUCT* v = source->variables;
    EXPECT_EQ(source->newVariable(v), 0);
    EXPECT_EQ(std::to_string(v->type) + " " + rangeOf(v), std::to_string(KR_VAR_FLOAT) + " -1.0..1.0");

    const struct {
        int form, type;
        const char* range;
    } chosen[] = {{kSinHalf, KR_VAR_FLOAT, "0.0..1.0"},  {kTriangle, KR_VAR_FLOAT, "0.0..1.0"},
                  {kRectangle, KR_VAR_FLOAT, "0.0..1.0"}, {kDate, KR_VAR_TEXT, "0.0..0.0"},
                  {kSinRandom, KR_VAR_FLOAT, "-1.0..1.0"}, {kTime, KR_VAR_TEXT, "0.0..0.0"},
                  {kRandom, KR_VAR_FLOAT, "-1.0..1.0"},   {kFrequency, KR_VAR_FLOAT, "-1.0..1.0"}};
    for (const auto& c : chosen) {
        EXPECT_EQ(source->callbackVar(0, c.form, nullptr, v), 0);
        EXPECT_EQ(v->type, c.type) << c.form;
        EXPECT_EQ(rangeOf(v), c.range) << c.form;
    }
    // Only the form parameter calls back with consequences.
    source->callbackVar(1, kSinHalf, nullptr, v);
    EXPECT_EQ(rangeOf(v), "-1.0..1.0");
}

} // namespace
