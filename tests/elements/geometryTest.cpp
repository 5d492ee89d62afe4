// The geometry every kind derives after loading: box, centre and how it is picked, alone and
// in groups built from all of them.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewFixture.h"
#include "glyph/GlyphKit.h"

#include <cmath>
#include <functional>
#include <utility>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

const float kPi = 3.14159265f, kCos30 = 50 * 0.8660254f;

struct Box { float xmin, ymin, xmax, ymax; };

::testing::AssertionResult HasBounds(const ELEMENT_STRUCT* e, Box b)
{
    const float want[4] = {b.xmin, b.ymin, b.xmax, b.ymax};
    for (int i = 0; i < 4; ++i)
        if (!(std::fabs(e->bounds[i] - want[i]) <= 0.05f))
            return ::testing::AssertionFailure() << e->name << ": bound " << i << " is " << e->bounds[i];
    return ::testing::AssertionSuccess();
}

Box unite(Box a, Box b)
{
    return {std::min(a.xmin, b.xmin), std::min(a.ymin, b.ymin), std::max(a.xmax, b.xmax), std::max(a.ymax, b.ymax)};
}

// A kind written with known geometry, the box it must come up with and its centre, which is
// the box's middle unless given.
struct GeometryCase {
    const char* label;
    std::function<void(ViewBuilder&)> write;
    Box box;
    float x = NAN, y = NAN;
};

// An arc of radius 50 about (200, 150) from `start` clockwise to `end`; its box, given about
// the centre, holds the centre too, even where the rim keeps away from it.
GeometryCase arc(const char* label, float start, float end, Box a)
{
    auto write = [start, end](ViewBuilder& b) { b.arc(CircleFields{200, 150, {0.5f, 0, 0, 0.5f}, start, end}); };
    return {label, write, {200 + a.xmin, 150 + a.ymin, 200 + a.xmax, 150 + a.ymax}, 200, 150};
}

// "Gauge" at (200, 100), 40 units high: an outline font is scaled to that height, a bitmap font
// shows at its own size. A quarter turn swaps an outline text's width and height, not a bitmap one's.
GeometryCase text(const char* label, const char* family, bool scalable, bool turned)
{
    const TextFields s{4, 200, 100, {0, 1, 1, 1}, 7, {float(!turned), -float(turned), float(turned), float(!turned)},
                       family, 1, 0, 20, 40, 0, "Gauge"};
    int metric[2] = {0, 0};
    const GK_FONT font = gkFontCreate(family, 1, 20);
    gkFontStringMetric(font, "Gauge", metric);
    gkFontFree(font);
    float w = scalable ? float(2 * metric[0]) : float(metric[0]), h = scalable ? 40 : float(metric[1]);
    if (scalable && turned)
        std::swap(w, h);
    return {label, [s](ViewBuilder& b) { b.text(s); }, {200 - w / 2, 100 - h / 2, 200 + w / 2, 100 + h / 2}};
}

const std::vector<GeometryCase>& geometryCases()
{
    static const std::vector<GeometryCase> cases = {
        {"graph", [](ViewBuilder& b) { b.graph(GraphFields{0, 20, 30, 200, 100}); }, {20, 30, 220, 130}},
        {"rectangle", [](ViewBuilder& b) { b.rect(RectFields{5, 6, 15, 26}); }, {5, 6, 15, 26}},
        {"polyline", [](ViewBuilder& b) { b.polyline(PolyFields()); }, {10, 10, 60, 40}},
        {"closed polygon",
         [](ViewBuilder& b) { PolyFields s; s.points = {{0, -20, 5}, {1, 10, -15}, {2, 30, 45}}; b.cpoly(s); },
         {-20, -15, 30, 45}},
        {"circle", [](ViewBuilder& b) { b.circle(CircleFields()); }, {50, 50, 150, 150}},
        // Stretched along x and turned by 90 degrees, the ellipse stands upright.
        {"turned ellipse", [](ViewBuilder& b) { b.circle(CircleFields{100, 80, {0, -0.2f, 0.5f, 0}}); },
         {80, 30, 120, 130}},
        arc("arc of 30 to 60 degrees", kPi / 6, kPi / 3, {0, -kCos30, kCos30, 0}),
        arc("arc across the right", -kPi / 6, kPi / 6, {0, -25, 50, 25}),
        arc("arc at the lower left", 2 * kPi / 3, 5 * kPi / 6, {-kCos30, -kCos30, 0, 0}),
        arc("arc beyond a turn", kPi / 2, 3 * kPi, {-50, -50, 50, 50}),
        arc("arc ending before its start", kPi / 6, 0, {0, 0, 0, 0}),
        text("outline text", "Arial", true, false),
        text("turned outline text", "Arial", true, true),
        text("turned bitmap text", "Courier [fixed]", false, true),
        {"line", [](ViewBuilder& b) { b.line(LineFields{300, 10, 250, 70}); }, {250, 10, 300, 70}},
        {"image", [](ViewBuilder& b) { ImageFields s; s.x0 = 40, s.y0 = 200, s.x1 = 104, s.y1 = 232; b.image(s); },
         {40, 200, 104, 232}},
        {"button", [](ViewBuilder& b) { b.button(ButtonFields()); }, {0, 0, 80, 30}},
        {"slider", [](ViewBuilder& b) { b.slider(SliderFields{350, 150, 20, 100}); }, {340, 100, 360, 200}},
        {"scissor", [](ViewBuilder& b) { b.scissor(1, 2, 3, 4); }, {1, 2, 3, 4}},
    };
    return cases;
}

// Each kind alone, then in a group beside a small square far away, then all kinds in one group.
TEST(KindGeometry, EveryKindHasItsBoxAndCentreAloneAndInGroups)
{
    const Box farBox = {380, 280, 390, 290};
    const RectFields far{380, 280, 390, 290};
    Box all = farBox;
    ViewBuilder together = blackPage();
    together.beginGroup(int(geometryCases().size()) + 1, "all").rect(far);
    for (const GeometryCase& c : geometryCases()) {
        SCOPED_TRACE(c.label);
        ViewBuilder alone = blackPage(), grouped = blackPage();
        c.write(alone);
        c.write(grouped.beginGroup(2));
        c.write(together);
        all = unite(all, c.box);
        LoadedView loaded(alone), group(grouped.rect(far).endGroup());
        const ELEMENT_STRUCT *e = loaded.first(), *g = group.first();
        ASSERT_TRUE(e && g);
        EXPECT_TRUE(HasBounds(e, c.box));
        EXPECT_NEAR(e->x, std::isnan(c.x) ? (c.box.xmin + c.box.xmax) / 2 : c.x, 0.05f);
        EXPECT_NEAR(e->y, std::isnan(c.y) ? (c.box.ymin + c.box.ymax) / 2 : c.y, 0.05f);
        EXPECT_TRUE(HasBounds(g, unite(c.box, farBox)));
        // Children sit relative to the group's centre.
        EXPECT_FLOAT_EQ(g->child->x + g->x, g->child->refX);
    }
    LoadedView loaded(together.endGroup());
    EXPECT_TRUE(HasBounds(loaded.first(), all));
}

// A line, and a group of one flat line, are picked as the segment; a group of a slanted line
// by its box. The stroke width is truncated to whole pixels.
TEST(KindGeometry, LinesArePickedAsTheirSegment)
{
    const LineFields slanted{300, 10, 250, 70, 2.9f}, flat{20, 50, 180, 50};
    LoadedView line(blackPage().line(slanted)), flatGroup(blackPage().beginGroup(1).line(flat).endGroup()),
        slantedGroup(blackPage().beginGroup(1).line(slanted).endGroup());
    const ELEMENT_STRUCT* g = flatGroup.first();
    EXPECT_EQ(line.first()->pickShape, 1);
    EXPECT_EQ(g->pickShape, 1);
    EXPECT_EQ(std::vector<float>(g->pickLine, g->pickLine + 4), (std::vector<float>{20, 50, 180, 50}));
    EXPECT_EQ(slantedGroup.first()->pickShape, 0);
    EXPECT_EQ(line.first()->attr.lineWidth, 2);
}

// Angles far beyond a turn must neither hang the rim's walk nor widen the box.
TEST(KindGeometry, AnglesBeyondAnyTurnStillEnd)
{
    for (float start : {-1e30f, 0.0f, 1e20f}) {
        LoadedView loaded(blackPage().circle(CircleFields{100, 100, {0.5f, 0, 0, 0.5f}, start, 1e30f}));
        ASSERT_NE(loaded.first(), nullptr);
        EXPECT_LE(loaded.first()->width, 100.05f) << start;
    }
}

} // namespace
