// Graph traces fed by krViewPutData in mode 1: what arrives in the display ring, in order.
#include "KorelEdit.h"
#include "ViewFixture.h"
#include "actionViews.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using namespace k2dtest;
using namespace korelgen;

struct GraphSampling : ViewTest {
    // A time graph with one trace of the float v, started in mode 1.
    void start(float rate, int samples)
    {
        GraphFields g;
        g.rate = rate, g.samples = samples;
        ViewBuilder b = blackPage();
        view = load(b.actions({act(KR_ACTION_GRAPH, "v")}).graph(g).dataSection({internalSource({{KR_VAR_FLOAT, "v", "", {}}})}));
        ASSERT_EQ(krViewStart(view), 0);
    }
    // The display ring from its oldest sample on, after `cycles` of `delta`, each with v one more.
    std::vector<float> put(int cycles, double delta)
    {
        for (int i = 0; i < cycles; ++i, ++v) {
            krVarSet(view, "v", &v);
            EXPECT_EQ(krViewPutData(view, delta), 0);
        }
        const ACTION_STRUCT* a = view->elements->actions;
        std::vector<float> shown;
        for (int i = a->outTail; i != a->outHead; i = (i + 1) % a->outSize)
            shown.push_back(a->outY[i]);
        return shown;
    }
    VIEW_STRUCT* view = nullptr;
    float v = 1;
};

// Rate 4 in a window of 8: a slot due exactly now waits, a late cycle repeats the present value
// for each slot it missed, a full window rolls. Halted, the trace stands; on release what came
// meanwhile follows, as much as the window holds.
TEST_F(GraphSampling, SamplesAtTheRateAndStandsWhileHalted)
{
    struct Step {
        int halt, cycles;
        double delta;
        std::vector<float> shown;
        float xmin;
    } steps[] = {
        {0, 8, 0.125, {1, 3, 5, 7}, 0},
        {0, 1, 1.0, {1, 3, 5, 7, 9, 9, 9, 9}, 0},
        {0, 1, 1.0, {9, 9, 9, 9, 10, 10, 10, 10}, 0.75f}, // 12 samples
        {1, 4, 0.25, {9, 9, 9, 9, 10, 10, 10, 10}, 0.75f},
        {0, 1, 0.0, {10, 10, 10, 10, 11, 12, 13, 14}, 1.75f},
        {1, 12, 0.25, {10, 10, 10, 10, 11, 12, 13, 14}, 1.75f},
        {0, 1, 0.0, {20, 21, 22, 23, 24, 25, 26, 27}, 4.75f},
    };
    start(4, 8);
    for (const Step& s : steps) {
        SCOPED_TRACE(v);
        EXPECT_EQ(krViewSetHaltMode(view, s.halt), 0);
        EXPECT_EQ(put(s.cycles, s.delta), s.shown);
        EXPECT_EQ(static_cast<GRAPH_STRUCT*>(view->elements->data)->xmin, s.xmin);
    }
}

// Rates that are no positive number take no sample; one so high that the clock can't move by a
// period fills the ring once and then takes no more. A refused count takes none either.
TEST_F(GraphSampling, AbsurdRatesAndCountsEndTheSampling)
{
    struct Case {
        float rate;
        int samples;
        std::vector<float> shown;
    } cases[] = {{0, 8, {}}, {-4, 8, {}}, {NAN, 8, {}}, {INFINITY, 8, {}}, {1e30f, 8, std::vector<float>(8, 1)}, {4, -1, {}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.rate);
        start(c.rate, c.samples);
        v = 1;
        put(1, 1.0);
        EXPECT_EQ(put(1, 1.0), c.shown);
    }
}

} // namespace
