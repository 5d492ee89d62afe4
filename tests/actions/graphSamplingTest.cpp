// Graph traces fed by krViewPutData in mode 1: what arrives in the display ring, in order.
#include "KorelEdit.h"
#include "ViewFixture.h"
#include "actionViews.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

using namespace k2dtest;
using namespace korelgen;

struct GraphSampling : ViewTest {
    // A graph with one trace of the float v, in y and in x, started in mode 1; only an xy graph
    // keeps the xmin of its file.
    void start(float rate, int samples, int type = 0)
    {
        GraphFields g;
        g.rate = rate, g.samples = samples, g.type = type, g.xmin = -5;
        ViewBuilder b = blackPage();
        b.actions({act(KR_ACTION_GRAPH, "v", 0, "v")}).graph(g);
        view = load(b.dataSection({internalSource({{KR_VAR_FLOAT, "v", "", {}}})}));
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

// An xy graph samples x as well and keeps its window where it is. Rates that are no positive
// number take no sample; one so high that the clock can't move by a period fills the ring once
// and then takes no more. A refused count takes none either.
TEST_F(GraphSampling, XyGraphsAndAbsurdRatesAndCounts)
{
    struct Case {
        int type;
        float rate;
        int samples;
        std::vector<float> shown;
        float xmin;
    } cases[] = {{0, 4, 4, {2, 2, 2, 2}, 0.75f}, {1, 4, 4, {2, 2, 2, 2}, -5}, {0, 0, 8, {}, 0}, {0, -4, 8, {}, 0},
                 {0, NAN, 8, {}, 0}, {0, INFINITY, 8, {}, 0}, {0, 1e30f, 8, std::vector<float>(8, 1), 0},
                 {0, 4, -1, {}, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.type) + " " + std::to_string(c.rate));
        start(c.rate, c.samples, c.type);
        v = 1;
        put(1, 1.0);
        EXPECT_EQ(put(1, 1.0), c.shown);
        const ACTION_STRUCT* a = view->elements->actions;
        const std::vector<float> y(a->outY, a->outY + a->outSize), x(a->outX, a->outX + a->outSize);
        EXPECT_EQ(x, c.type ? y : std::vector<float>(y.size(), 0));
        EXPECT_NEAR(static_cast<GRAPH_STRUCT*>(view->elements->data)->xmin, c.xmin, 1e-6);
    }
}

} // namespace
