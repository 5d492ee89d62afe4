// A graph as a user sees it: grid, ticks, labels and outline drawn and read back, the spacings it
// chose kept in its record, colour actions, the view clock and absurd records; traces fed by
// krViewPutData, their thresholds, clipping, markers and the range that follows them.
#include "../actions/actionViews.h"
#include "KorelEdit.h"
#include "elements/elementKinds.h"
#include "ViewFixture.h"

#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

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
    Shot at(VIEW_STRUCT* view, float dx) { return {draw(view, dx, -40), dx}; }
    Shot left(VIEW_STRUCT* view) { return at(view, 0); }     // the y axis
    Shot right(VIEW_STRUCT* view) { return at(view, -110); } // every x tick
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

// Ticks closer than their labels are high get a label only where it overlaps none: rows stay
// blank between the labels.
TEST_F(Graph, CrowdedLabelsStayApart)
{
    GraphFields g = timeGraph();
    g.tickyAuto = 0, g.tickySpace = 5;
    const Shot l = left(load(blackPage().graph(g)));
    int blank = 0;
    for (float v = 100; v < 300; ++v)
        blank += !l.ink(50, v, 86, v + 1).lit;
    EXPECT_GT(blank, 60);
}

// Outline only, ranges 0 to 100 held fixed; a time graph holds 500 samples at 10 a second.
GraphFields bareGraph(int type, float x, float y, float width, float height)
{
    GraphFields g;
    g.type = type, g.x = x, g.y = y, g.width = width, g.height = height, g.ymin = 0, g.ymax = 100;
    g.gridx = g.gridy = g.tickx = g.ticky = g.autoscale = g.autoscalex = 0;
    return g;
}

class GraphTraces : public Graph {
protected:
    void TearDown() override
    {
        graphTraceReduction(1);
        Graph::TearDown();
    }
    // The graph with its traces over the floats u, v and w, running in mode 1.
    VIEW_STRUCT* run(const GraphFields& g, const std::vector<ActionFields>& traces)
    {
        VIEW_STRUCT* view = load(blackPage().actions(traces).graph(g).dataSection(
            {internalSource({{KR_VAR_FLOAT, "u", "", {}}, {KR_VAR_FLOAT, "v", "", {}}, {KR_VAR_FLOAT, "w", "", {}}})}));
        EXPECT_EQ(krViewStart(view), 0);
        return view;
    }
    // Holds the values for `seconds` of samples.
    static void feed(VIEW_STRUCT* view, std::vector<std::pair<const char*, float>> values, double seconds)
    {
        for (const auto& value : values)
            krVarSet(view, value.first, &value.second);
        EXPECT_EQ(krViewPutData(view, seconds), 0);
    }
    // First and last pixel column from u0 to u1 with at least `least` pixels of colour c in rows
    // v0 to v1; -1, -1 for none.
    static std::pair<int, int> columns(const Shot& s, Rgb c, float u0, float u1, float v0, float v1, int least = 1)
    {
        std::pair<int, int> found{-1, -1};
        for (int x = s.px(u0); x <= s.px(u1); ++x)
            if (s.frame.count(x, s.py(v0), x + 1, s.py(v1) + 1, c, 60) >= least)
                found = {found.first < 0 ? x : found.first, x};
        return found;
    }
};

// What a trace shows must not depend on whether long traces are reduced: these run both ways.
class EveryTrace : public GraphTraces, public ::testing::WithParamInterface<bool> {
protected:
    void SetUp() override
    {
        GraphTraces::SetUp();
        graphTraceReduction(GetParam());
    }
};
INSTANTIATE_TEST_SUITE_P(Reduction, EveryTrace, ::testing::Bool());

// A frame 500 x 100 at (0, 100), one unit per sample. Trace v: 10, then 60 from the 250th with
// one sample of 1e12 at the 312th; red and 1 wide up to 50, blue and 5 wide above. Trace w, white
// and 1 wide without lists: 200 up to the 375th, then -50, outside the frame but for its fall.
TEST_P(EveryTrace, TimeTraceStepsSkipsFarSamplesAndStaysInTheFrame)
{
    ActionFields v = act(KR_ACTION_GRAPH, "v");
    v.blocks[KR_THRESHOLDS_COLOR].entries = {entry(0, 0, 1, 0, 0), entry(50, 0, 0, 0, 1)};
    v.blocks[KR_THRESHOLDS_WIDTH].entries = {entry(0, 1), entry(50, 5)};
    VIEW_STRUCT* view = run(bareGraph(0, 0, 100, 500, 100), {v, act(KR_ACTION_GRAPH, "w")});
    // Each feed ends half a period between two samples.
    const float feeds[][3] = {{10, 200, 24.95f}, {60, 200, 6.2f}, {1e12f, 200, .1f}, {60, 200, 6.2f}, {60, -50, 12.5f}};
    for (const auto& f : feeds)
        feed(view, {{"v", f[0]}, {"w", f[1]}}, double(f[2]));
    const Shot l = at(view, 0), r = at(view, -100);
    for (float u : {10, 60, 125, 210, 246, 254, 310, 311, 312, 313, 314, 370, 380, 450, 495}) {
        const Shot& s = u < 300 ? l : r;
        const float level = u < 250 ? 110 : 160;
        const Ink onLevel = s.ink(u, level - 4, u + 1, level + 4);
        EXPECT_TRUE((u < 250 ? onLevel.height() <= 2 : onLevel.height() >= 4) && s.ink(u, 102, u + 1, 198) == onLevel)
            << u;
    }
    // The step changes colour where it crosses 50; w falls through the frame in white.
    const std::pair<int, int> step = columns(l, kRed, 5, 360, 120, 148), fall = columns(r, kWhite, 105, 495, 102, 198);
    EXPECT_TRUE(std::abs(step.first - l.px(250)) <= 1 && std::abs(step.second - l.px(250)) <= 1);
    EXPECT_TRUE(columns(l, kBlue, 240, 260, 140, 148).first < 0 && columns(l, kRed, 240, 260, 152, 158).first < 0);
    EXPECT_TRUE(std::abs(fall.first - r.px(375)) <= 1 && std::abs(fall.second - r.px(375)) <= 1);
    for (const Shot* s : {&l, &r})
        EXPECT_TRUE(!s->ink(-s->dx, 40, -s->dx + 400, 97).lit && !s->ink(-s->dx, 203, -s->dx + 400, 340).lit);
}

// The y range follows the samples of the traces that count: a flat one at once to one unit either
// side, others a third of the way each frame toward a tenth more than their span, widened to
// minspready / 1.2 first. A disabled trace at 1000 doesn't count, nor does a NaN.
TEST_P(EveryTrace, AutoscaleFollowsTheShownSamples)
{
    const struct {
        std::vector<float> values;
        float minspread, frames, ymin, ymax;
    } cases[] = {{{5}, 0, 1, 4, 6}, {{0, 10}, 0, 30, -1, 11}, {{3, 7}, 12, 30, -1, 11}, {{NAN, 0, 10}, 0, 30, -1, 11}};
    for (const auto& c : cases) {
        GraphFields g = bareGraph(0, 0, 100, 500, 100);
        g.autoscale = 1, g.minspready = c.minspread;
        VIEW_STRUCT* view = run(g, {act(KR_ACTION_GRAPH, "v"), act(KR_ACTION_GRAPH, "w")});
        view->elements->actions->next->disabled = 1;
        for (float value : c.values)
            feed(view, {{"v", value}, {"w", 1000}}, 1);
        const GRAPH_STRUCT* r = record(view);
        for (int frame = 1; frame <= c.frames; ++frame) {
            at(view, 0);
            EXPECT_TRUE(frame > 1 || c.frames == 1 || r->ymax > c.ymax + 10); // smoothed: still far
        }
        EXPECT_TRUE(std::fabs(r->ymin - c.ymin) < 0.01f && std::fabs(r->ymax - c.ymax) < 0.01f) << r->ymin;
    }
}

// An xy trace round a square of 20 to 80 in a 200 x 200 frame at (100, 100): four sides, the
// cross on the newest point; for a point beyond the range, on the frame's edge.
TEST_P(EveryTrace, XyTraceDrawsItsPathAndMarksTheNewestPoint)
{
    ActionFields t = act(KR_ACTION_GRAPH, "v", 0, "u");
    t.blocks[KR_THRESHOLDS_COLOR].entries = {entry(-1000, 0, 0, 1, 0)};
    VIEW_STRUCT* view = run(bareGraph(1, 100, 100, 200, 200), {t});
    const float path[][3] = {{20, 20, 0.95f}, {80, 20, 1}, {80, 80, 1}, {20, 80, 1}, {20, 20, 1}, {20, 20, 1}};
    for (const auto& p : path)
        feed(view, {{"u", p[0]}, {"v", p[1]}}, double(p[2]));
    // Smoothed lines: some pixel next to the point is green.
    const auto green = [](const Shot& s, float u, float v) {
        return columns(s, kGreen, u - 1, u + 1, v - 1, v + 1).first >= 0;
    };
    const Shot s = at(view, 0);
    EXPECT_TRUE(green(s, 200, 140) && green(s, 260, 200) && green(s, 200, 260) && green(s, 140, 200));
    EXPECT_TRUE(!s.ink(170, 170, 230, 230).lit && green(s, 143, 137) && green(s, 137, 143));
    // Until the ring is full the newest point has the cross only: no line leads to it.
    feed(view, {{"u", 150}, {"v", 50}}, 0.1);
    const Shot beyond = at(view, 0);
    EXPECT_TRUE(green(beyond, 303, 203) && green(beyond, 303, 197));
    EXPECT_TRUE(!green(beyond, 143, 137) && !green(beyond, 220, 158));
}

// A running graph in a group clipped to (100, 150) - (200, 200), a red strip after it: by stencil
// the frame's blue background, the traces and the strip show only in the box; by scissor box the traces clip to
// the graph's own frame, which ends the group's clip, and the strip shows.
TEST_P(EveryTrace, ClippedGroupsAndRunningGraphs)
{
    ActionFields t = act(KR_ACTION_GRAPH, "v");
    t.blocks[KR_THRESHOLDS_COLOR].entries = {entry(0, 0, 0, 1, 0)};
    GraphFields g = bareGraph(0, 20, 60, 360, 240);
    g.background[2] = g.background[3] = 1, g.samples = 20;
    VIEW_STRUCT* view = load(blackPage()
                                 .beginGroup(3)
                                 .actions({t})
                                 .graph(g)
                                 .rect({0, 45, 400, 55})
                                 .scissor(100, 150, 200, 200)
                                 .endGroup()
                                 .dataSection({internalSource({{KR_VAR_FLOAT, "v", "", {}}})}));
    ASSERT_EQ(krViewStart(view), 0);
    ACTION_STRUCT* a = view->elements->child->actions;
    for (int i = 0; i < 20; ++i)
        a->outY[i] = i % 2 ? 90 : 10; // a zigzag over the whole frame
    a->outHead = a->outCount = 20;
    for (int type : {0, 1}) {
        krViewSetScissorType(view, type);
        const Shot s = at(view, 0);
        const auto inBox = [&](std::pair<int, int> c) {
            return c.first >= s.px(100) - 1 && c.second <= s.px(200) + 1 && c.second > c.first;
        };
        const std::pair<int, int> trace = columns(s, kGreen, 0, 400, 40, 340);
        const bool inFrame = trace.first <= s.px(21) && trace.second >= s.px(360) && !s.ink(0, 302, 400, 340).lit;
        EXPECT_TRUE(type ? inFrame : inBox(trace)) << type;
        EXPECT_TRUE(inBox(columns(s, kBlue, 0, 400, 40, 340))) << type;
        EXPECT_EQ(s.frame.count(0, 0, 400, 300, kRed) > 0, type == 1);
    }
}

// A slow sine with noise that crosses a colour and a width threshold four times, as many samples
// as the ring holds: reduced, each pixel column lights the rows the full trace lights, to a
// pixel, and sampled pixels have the same colour but on a one-pixel edge.
TEST_F(GraphTraces, ReducedTraceLooksLikeTheFullOne)
{
    for (int samples : {5000, 1000000}) {
        ActionFields t = act(KR_ACTION_GRAPH, "v");
        t.blocks[KR_THRESHOLDS_COLOR].entries = {entry(0, 0, 0, 1, 0), entry(60, 0, 0, 0, 1)};
        t.blocks[KR_THRESHOLDS_WIDTH].entries = {entry(0, 1), entry(70, 3)};
        GraphFields g = bareGraph(0, 10, 60, 380, 220);
        g.samples = samples;
        VIEW_STRUCT* view = run(g, {t});
        ACTION_STRUCT* a = view->elements->actions;
        std::mt19937 noise(7);
        for (int i = 0; i < samples; ++i)
            a->outY[i] = 50 + 35 * std::sin(8 * float(M_PI) * float(i) / float(samples)) +
                         std::uniform_real_distribution<float>(-3, 3)(noise);
        a->outHead = a->outCount = samples;
        graphTraceReduction(0);
        const Shot full = at(view, 0);
        graphTraceReduction(1);
        const Shot reduced = at(view, 0);
        for (int x = full.px(11); x < full.px(389); ++x) {
            const Ink f = full.frame.ink(x, 0, x + 1, 300), r = reduced.frame.ink(x, 0, x + 1, 300);
            ASSERT_TRUE(f.lit && std::abs(f.y0 - r.y0) <= 1 && std::abs(f.y1 - r.y1) <= 1) << samples << " " << x;
        }
        // A pixel of the other frame's colour within one pixel either way.
        const auto near = [](const Frame& in, int x, int y, Rgb c) {
            return in.count(x - 1, y - 1, x + 2, y + 2, c, 60) > 0;
        };
        std::mt19937 pick(11);
        int differ = 0;
        for (int n = 0; n < 10000; ++n) {
            const int x = full.px(11) + int(pick() % 376), y = int(pick() % 300);
            const Rgb c = full.frame.at(x, y), d = reduced.frame.at(x, y);
            if (std::abs(c.r - d.r) + std::abs(c.g - d.g) + std::abs(c.b - d.b) <= 60)
                continue;
            ++differ;
            EXPECT_TRUE(near(reduced.frame, x, y, c) && near(full.frame, x, y, d)) << x << " " << y;
        }
        EXPECT_LE(differ, 10) << samples;
    }
}

} // namespace
