// A strip chart fed by the data thread and drawn at full speed while the host halts, resumes and
// resets it. The example plug-in's run count only grows, so in every frame its trace rises or
// stays from left to right: a fall means the ring drawn held samples of two moments.
#include "../actions/actionViews.h"
#include "PluginDirs.h"
#include "ViewFixture.h"
#include "elements/elementKinds.h"

#include <chrono>

#ifndef __has_feature
#define __has_feature(x) 0
#endif

namespace {

using namespace k2dtest;
using korelgen::SourceFields;

// ThreadSanitizer slows the data thread and the draws alike: a shorter run still halts, resumes
// and resets in both halves.
#if defined(__SANITIZE_THREAD__) || __has_feature(thread_sanitizer)
constexpr int kSeconds = 6;
#else
constexpr int kSeconds = 20;
#endif

// The run count as a green trace, 2500 samples a second in a window of 0.4 s: the ring rolls in
// each run, and once full holds more samples than twice the frame's pixel columns. The y range
// holds the most the count can reach, one cycle per 10 ms.
ViewBuilder countChart()
{
    SourceFields example{100, {{0, "0"}, {0, "test"}}, 1, {{KR_VAR_INT32, "runs", "", {{0, ""}}}}};
    korelgen::ActionFields trace = act(KR_ACTION_GRAPH, "runs");
    trace.blocks[KR_THRESHOLDS_COLOR].entries = {entry(0, 0, 0, 1, 0)};
    korelgen::GraphFields g;
    g.x = 10, g.y = 10, g.width = 380, g.height = 280, g.ymin = 0, g.ymax = 100 * kSeconds + 100;
    g.rate = 2500, g.samples = 1000, g.autoscale = g.gridx = g.gridy = g.tickx = g.ticky = g.labelx = g.labely = 0;
    return blackPage().actions({trace}).graph(g).dataSection({example});
}

// The trace in a frame read back: how many pixel columns it lights, the last of them, and whether
// its top row ever goes down from one lit column to the next.
struct TraceShape {
    int lit = 0, last = -1, falls = 0;
};

TraceShape shapeOf(const Frame& frame)
{
    TraceShape shape;
    for (int x = 0, previous = -1; x < frame.width(); ++x)
        for (int y = frame.height() - 1; y >= 0; --y) {
            const Rgb c = frame.at(x, y);
            if (c.g > 128 && c.r < 64 && c.b < 64) {
                shape.falls |= y < previous;
                previous = y, shape.last = x, ++shape.lit;
                break;
            }
        }
    return shape;
}

class AnimatedGraph : public ViewTest {};

// Halt toggles each second; half a second into each run the rings are reset. The first half of
// the time draws long traces reduced per pixel column, the second sample by sample.
TEST_F(AnimatedGraph, TraceOfAGrowingCountNeverFalls)
{
    PluginDirs home(PluginDirs::Home::PluginDir);
    VIEW_STRUCT* view = load(countChart());
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(krViewStartAnim(view), 0);
    const auto start = std::chrono::steady_clock::now();
    int checked[2] = {}, longTrace[2] = {}, torn = 0, tick = 0; // ticks of half a second
    for (double t = 0; t < kSeconds;
         t = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count()) {
        if (int(2 * t) > tick) {
            tick = int(2 * t);
            const int result = tick % 2 == 0   ? krViewSetHaltMode(view, tick / 2 % 2)
                               : tick % 4 == 1 ? krViewResetGraph(view, float(t))
                                               : 0;
            EXPECT_EQ(result, 0) << t;
        }
        const int half = int(2 * t) / kSeconds;
        graphTraceReduction(half == 0);
        const TraceShape trace = shapeOf(draw(view));
        if (trace.lit < 2)
            continue;
        ++checked[half];
        // Past 4/5 of the frame the ring holds over 800 samples, more than twice its 380 columns.
        longTrace[half] += trace.last > 10 + 380 * 4 / 5;
        if (trace.falls && torn++ == 0)
            ADD_FAILURE() << "the first torn frame came at " << t << " s";
    }
    graphTraceReduction(1);
    EXPECT_EQ(krViewStop(view), 0);
    EXPECT_EQ(torn, 0);
    // Thousands of frames a half in a plain build, a hundred or more under ThreadSanitizer.
    for (int half : {0, 1})
        EXPECT_TRUE(checked[half] >= 5 * kSeconds && longTrace[half] >= checked[half] / 4)
            << half << ": " << checked[half] << " frames, " << longTrace[half] << " long";
    RecordProperty("framesChecked", checked[0] + checked[1]);
}

} // namespace
