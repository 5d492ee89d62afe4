// A graph's frame as a user sees it: grid, ticks, labels and outline drawn and read back, the
// spacings it chose kept in its record, colour actions, the view clock and absurd records.
#include "../actions/actionViews.h"
#include "KorelEdit.h"
#include "ViewFixture.h"

#include <cmath>
#include <string>

using namespace k2dtest;
using namespace korelgen;

namespace {

const Rgb kWhite{255, 255, 255}, kGreen{0, 255, 0}, kBlue{0, 0, 255}, kRed{255, 0, 0};

// A time graph at (100, 100), 400 x 200, y -100 to 100, 500 samples at 10 a second, all automatic;
// the grid solid green, the rest white.
GraphFields timeGraph(float height = 200)
{
    GraphFields g;
    g.x = 100, g.y = 100, g.width = 400, g.height = height, g.gridStyle = 0, g.grid[0] = g.grid[2] = 0, g.grid[1] = 1;
    return g;
}

// A frame drawn with the view moved by (dx, -40) units, read in view units: 400 x 300 pixels hold
// only part of the graph, and the window lays 400 x 300 units onto 399 x 299 pixels.
struct Shot {
    Frame frame;
    float dx;
    int px(float u) const { return int(std::lround((u + dx) * 399 / 400)); }
    int py(float v) const { return int(std::lround((v - 40) * 299 / 300)); }
    Ink ink(float u0, float v0, float u1, float v1) const { return frame.ink(px(u0), py(v0), px(u1), py(v1)); }
    // The lines of colour c that cross column u from v0 to v1 (across: row u) lie at first, first
    // + step, ... last, to a pixel.
    ::testing::AssertionResult lines(bool across, float u, float v0, float v1, Rgb c, float first, float step,
                                     float last) const
    {
        const auto at = [&](float v) { return across ? px(v) : py(v); };
        int n = 0, end = at(v1);
        bool same = true;
        for (int p = at(v0), start = -1; p <= end + 1; ++p) {
            const int x = across ? p : px(u), y = across ? py(u) : p;
            const bool lit = p <= end && frame.count(x, y, x + 1, y + 1, c, 60);
            if (!lit && start >= 0)
                same = same && std::abs(start + p - 1 - 2 * at(first + float(n++) * step)) <= 2;
            start = lit ? (start < 0 ? p : start) : -1;
        }
        same = same && n == std::lround((last - first) / step) + 1;
        return (same ? ::testing::AssertionSuccess() : ::testing::AssertionFailure()) << n << " lines";
    }
};

class Graph : public ViewTest {
protected:
    Shot left(VIEW_STRUCT* view) { return {draw(view, 0, -40), 0}; }        // the y axis
    Shot right(VIEW_STRUCT* view) { return {draw(view, -110, -40), -110}; } // every x tick
    static GRAPH_STRUCT* record(VIEW_STRUCT* view) { return static_cast<GRAPH_STRUCT*>(view->elements->data); }
};

// Grid; major ticks 12 long, sub-ticks 5 long at every fifth of a step, majors included; a label
// beside each major tick and none between; the spacings and formats kept in the record.
TEST_F(Graph, AutomaticFrameOfAStoppedTimeGraph)
{
    VIEW_STRUCT* view = load(blackPage().graph(timeGraph()));
    const Shot l = left(view), r = right(view);
    EXPECT_TRUE(l.lines(false, 120, 102, 298, kGreen, 150, 50, 250));
    EXPECT_TRUE(r.lines(true, 120, 112, 498, kGreen, 180, 80, 420));
    EXPECT_TRUE(l.lines(false, 89, 92, 308, kWhite, 100, 50, 300) && l.lines(false, 93, 92, 308, kWhite, 100, 50, 300));
    EXPECT_TRUE(r.lines(true, 89, 112, 505, kWhite, 180, 80, 500) && r.lines(true, 93, 112, 505, kWhite, 180, 80, 500));
    EXPECT_TRUE(l.lines(false, 96, 92, 308, kWhite, 100, 10, 300) && r.lines(true, 96, 112, 505, kWhite, 116, 16, 500));
    for (float v = 100; v <= 300; v += 50) {
        const Ink label = l.ink(50, v - 5, 88, v + 6);
        EXPECT_TRUE(label.lit > 0 && label.x1 <= l.px(88) + 1 && (v == 300 || !l.ink(50, v + 12, 88, v + 38).lit)) << v;
    }
    for (float u = 180; u <= 500; u += 80)
        EXPECT_TRUE(r.ink(u - 8, 60, u + 9, 86).lit > 0 && (u == 500 || !r.ink(u + 20, 60, u + 60, 86).lit)) << u;
    const GRAPH_STRUCT* g = record(view);
    EXPECT_TRUE(g->tickySpace == 50 && g->tickxSpace == 10 && g->gridySpace == 50 && g->gridxSpace == 10);
    EXPECT_TRUE(std::string(g->labelYFormat) == "%3.0f" && std::string(g->labelXFormat) == "%2.0f");
    // The view clock starts the window, and so the x labels; a reset moves the window, not the clock.
    ASSERT_EQ(krViewSetTime(view, 20), 0);
    const Shot later = right(view);
    EXPECT_TRUE(g->xmin == 20 && g->xmax == 70 && view->time == 20 && frameHash(later.frame) != frameHash(r.frame));
    EXPECT_TRUE(later.lines(true, 89, 112, 505, kWhite, 180, 80, 500));
    ASSERT_EQ(krViewResetGraph(view, 5), 0);
    right(view);
    EXPECT_TRUE(g->xmin == 5 && g->xmax == 55 && view->time == 20);
}

// Below one step per 20 pixels there is no y spacing; the x axis stays. A background needs an
// alpha above 0.1.
TEST_F(Graph, ShortFrameAndFaintBackgroundDrawNothing)
{
    VIEW_STRUCT* view = load(blackPage().graph(timeGraph(19)));
    const Shot l = left(view);
    EXPECT_TRUE(l.lines(false, 93, 102, 117, kWhite, 0, 1, -1) && l.lines(false, 120, 101, 118, kGreen, 0, 1, -1));
    EXPECT_TRUE(!l.ink(40, 102, 88, 118).lit && record(view)->tickySpace == -1);
    EXPECT_TRUE(right(view).lines(true, 93, 112, 505, kWhite, 180, 80, 500));
    for (float alpha : {0.1f, 0.11f}) {
        GraphFields g = timeGraph();
        g.background[2] = 1, g.background[3] = alpha;
        const Shot s = left(load(blackPage().graph(g)));
        EXPECT_TRUE(PixelIs(s.frame, s.px(130), s.py(120), alpha > 0.1f ? kBlue : Rgb{0, 0, 0})) << alpha;
    }
}

// Running, a fill-colour action reaches the grid, a stroke-colour action ticks, labels and outline:
// nothing is white or green any more.
TEST_F(Graph, ColourActionsRecolourGridAndFrame)
{
    ActionFields fill = act(KR_ACTION_FILL_COLOR, "c"), stroke = act(KR_ACTION_STROKE_COLOR, "c");
    fill.blocks[KR_THRESHOLDS_COLOR].entries = {entry(0, 0, 0, 0, 1)};
    stroke.blocks[KR_THRESHOLDS_COLOR].entries = {entry(0, 0, 1, 0, 0)};
    VIEW_STRUCT* view = load(blackPage().actions({fill, stroke}).graph(timeGraph()).dataSection(
        {internalSource({{KR_VAR_FLOAT, "c", "1", {}}})}));
    ASSERT_EQ(krViewStart(view), 0);
    const Shot l = left(view);
    EXPECT_TRUE(l.lines(false, 120, 102, 298, kBlue, 150, 50, 250) && l.lines(false, 93, 92, 308, kRed, 100, 50, 300));
    EXPECT_GT(l.frame.count(l.px(50), l.py(140), l.px(88), l.py(160), kRed, 60), 0); // label "-50"
    EXPECT_EQ(l.frame.count(0, 0, 400, 300, kWhite, 60) + l.frame.count(0, 0, 400, 300, kGreen, 60), 0);
}

// Ranges and spacings no sensible record holds draw the outline, and the loops end. A spacing of
// 1e-30 piles its y ticks up at the first value above 0, the frame's middle.
TEST_F(Graph, AbsurdRangesAndSpacingsDrawAndEnd)
{
    const float rows[][3] = {{5, 5, 0}, {NAN, 100, 0}, {-100, 100, 1e-30f}}; // ymin, ymax, every spacing
    for (const auto& row : rows) {
        GraphFields g = timeGraph();
        g.ymin = row[0], g.ymax = row[1];
        if (row[2] != 0) {
            g.tickyAuto = g.gridyAuto = g.tickxAuto = g.gridxAuto = 0;
            g.tickySpace = g.gridySpace = g.tickxSpace = g.gridxSpace = row[2];
        }
        const Shot l = left(load(blackPage().graph(g)));
        EXPECT_TRUE(l.lines(true, 250, 92, 150, kWhite, 100, 1, 100)) << row[0];
        const float tick = row[2] != 0 ? 200 : 0; // no tick: none from 0 to -1
        EXPECT_TRUE(l.lines(false, 93, 92, 308, kWhite, tick, 1, tick - float(row[2] == 0)));
    }
}

} // namespace
