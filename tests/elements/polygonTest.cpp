// Polylines and closed polygons on the screen: the tessellated fill, the outline, the fill cut
// at a level, the display list's life, and picking by the even-odd rule.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewFixture.h"

#include <GL/gl.h>

#include <cmath>

#include <string>
#include <vector>

using namespace k2dtest;
using korelgen::PointFields;
using korelgen::PolyFields;

namespace {

const Rgb kPage{51, 102, 153}, kGreen{0, 255, 0}, kRed{255, 0, 0};

ViewBuilder page() { return ViewBuilder().page(0, 0, 400, 300, 0.2f, 0.4f, 0.6f); }

// An L: a foot along the bottom, a leg up the left side, the notch at the upper right.
const std::vector<PointFields> kEll = {{0, 100, 50}, {1, 300, 50}, {2, 300, 100}, {3, 150, 100}, {4, 150, 250},
                                       {5, 100, 250}};
// 100..300 x 100..200.
const std::vector<PointFields> kBox = {{0, 100, 100}, {1, 300, 100}, {2, 300, 200}, {3, 100, 200}};

// Green fill, or a red outline five pixels wide, or both.
PolyFields shape(const std::vector<PointFields>& points, int fillOn = 1, int strokeOn = 0, int closed = 0)
{
    return PolyFields{closed, strokeOn, 5, 0, {1, 0, 0, 1}, fillOn, {0, 1, 0, 1}, 0, 0, points};
}

ViewBuilder polygon(int kind, const PolyFields& s) { return kind == KR_CPOLY ? page().cpoly(s) : page().polyline(s); }

POLY_STRUCT* polyOf(const ELEMENT_STRUCT* e) { return static_cast<POLY_STRUCT*>(e->data); }

struct Probe { int x, y; Rgb colour; };

using PolygonDraw = ViewTest;

// An open polyline fills, and is picked by the even-odd rule, just like a closed polygon; the
// closing edge of the outline (the box's left side) shows only where the stored flag closes it.
TEST_F(PolygonDraw, FillAndPickLeaveTheNotchAndOutlineClosesOnlyWhenClosed)
{
    const struct { float x, y; bool inside; } ell[] = {
        {250, 75, true}, {125, 200, true}, {225, 175, false}, {50, 75, false}, {125, 270, false}, {350, 75, false}};
    for (int kind : {KR_CPOLY, KR_POLYLINE}) {
        SCOPED_TRACE(kind);
        VIEW_STRUCT* v = load(polygon(kind, shape(kEll)));
        ASSERT_NE(v->elements->pick, nullptr);
        Frame f = draw(v);
        for (const auto& p : ell) {
            EXPECT_TRUE(PixelIs(f, int(p.x), int(p.y), p.inside ? kGreen : kPage));
            EXPECT_EQ(bool(v->elements->pick(v->elements, p.x, p.y)), p.inside) << p.x << ", " << p.y;
        }
        // Foot 200 x 50 plus leg 50 x 150 units, a little less in pixels (400 units on 399 pixels).
        EXPECT_NEAR(f.count(0, 0, 400, 300, kGreen), 17200, 400);

        Frame box = draw(load(polygon(kind, shape(kBox, 0, 1, kind == KR_CPOLY))));
        const Probe edges[] = {{200, 100, kRed}, {299, 150, kRed}, {200, 199, kRed}, {200, 150, kPage}};
        for (const Probe& p : edges)
            EXPECT_TRUE(PixelIs(box, p.x, p.y, p.colour));
        EXPECT_EQ(bool(PixelIs(box, 100, 150, kRed)), kind == KR_CPOLY) << "closing edge";
    }
}

// Shapes the tessellator can't fill whole must still load, draw their outline and pick.
TEST_F(PolygonDraw, DegenerateShapesLoadAndDraw)
{
    // `shows`: the outline, and the bow tie's right wing picks at (280, 150).
    const struct { const char* label; std::vector<PointFields> points; bool shows; } cases[] = {
        {"self-crossing", {{0, 100, 100}, {1, 300, 200}, {2, 300, 100}, {3, 100, 200}}, true},
        {"one point", {{0, 200, 150}}, false},
        {"no point", {}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        VIEW_STRUCT* v = load(page().cpoly(shape(c.points, 1, 1)));
        Frame f = draw(v);
        EXPECT_EQ(bool(PixelIs(f, 299, 150, kRed)), c.shows);
        EXPECT_EQ(f.count(0, 0, 400, 300, kPage, 2) == 400 * 300, !c.shows);
        ELEMENT_STRUCT* e = v->elements;
        ASSERT_NE(e->pick, nullptr);
        EXPECT_EQ(bool(e->pick(e, 280, 150)), c.shows);
        EXPECT_FALSE(e->pick(e, 200, 120)); // between the wings
    }
}

// Cut at a level in each direction, only the part the fill grows into paints; the ends keep
// all or nothing, and a concave shape is cut on its side.
TEST_F(PolygonDraw, FillLevelPaintsTheSideItGrowsFrom)
{
    // `green`: pixels of the fill.
    const struct {
        const char* label;
        const std::vector<PointFields>& points;
        int (*cut)(ELEMENT_STRUCT*);
        float level;
        Probe in, out;
        int green;
    } cases[] = {
        {"up", kBox, polyCreateFillCoordUp, 0.25f, {200, 110, kGreen}, {200, 140, kPage}, 4980},
        {"down", kBox, polyCreateFillCoordDown, 0.75f, {200, 140, kGreen}, {200, 115, kPage}, 14930},
        {"right", kBox, polyCreateFillCoordRight, 0.25f, {140, 150, kGreen}, {160, 150, kPage}, 4980},
        {"left", kBox, polyCreateFillCoordLeft, 0.5f, {250, 150, kGreen}, {150, 150, kPage}, 9950},
        {"up full", kBox, polyCreateFillCoordUp, 1, {200, 195, kGreen}, {50, 50, kPage}, 19900},
        {"up none", kBox, polyCreateFillCoordUp, 0, {50, 50, kPage}, {200, 101, kPage}, 0},
        // Halfway up the L: the whole foot and the lower part of the leg.
        {"concave", kEll, polyCreateFillCoordUp, 0.5f, {125, 125, kGreen}, {125, 200, kPage}, 12450},
    };
    VIEW_STRUCT* v = nullptr;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        v = load(page().cpoly(shape(c.points)));
        polyOf(v->elements)->fillLevel = c.level;
        EXPECT_EQ(c.cut(v->elements), 0);
        EXPECT_EQ(polyMakeList(polyOf(v->elements), 1), 0);
        Frame f = draw(v);
        EXPECT_TRUE(PixelIs(f, c.in.x, c.in.y, c.in.colour) && PixelIs(f, c.out.x, c.out.y, c.out.colour));
        EXPECT_NEAR(f.count(0, 0, 400, 300, kGreen), c.green, 250);
    }
    // The next geometry pass forgets the last cut: the whole L fills again.
    v->elements->setPickSticky(v->elements);
    EXPECT_TRUE(PixelIs(draw(v), 125, 200, kGreen));
}

// The loader without a context can't make the list; the first draw does, and freeing the view
// gives it back.
TEST_F(PolygonDraw, DisplayListMadeAtFirstDrawAndGivenBackOnFree)
{
    releaseGlContext();
    setLogLevel(2);
    takeLog();
    VIEW_STRUCT* v = load(page().cpoly(shape(kBox)));
    const std::string log = takeLog();
    setLogLevel(1);
    std::string why;
    ASSERT_TRUE(ensureGlContext(&why)) << why;
    ASSERT_NE(v, nullptr);
    EXPECT_NE(log.find("Warning polyMakeList: no valid openGL context !\n"), std::string::npos) << log;
    EXPECT_TRUE(PixelIs(draw(v), 200, 150, kGreen));
    GLuint list = polyOf(v->elements)->displayList;
    ASSERT_TRUE(glIsList(list));
    krViewFree(v);
    views.clear();
    EXPECT_FALSE(glIsList(list));
}

// An outline of many points that a vertical line meets a few times fills; one that crosses
// itself everywhere is left unfilled at once, with a line, and its draws don't try again.
TEST_F(PolygonDraw, TangledOutlinesAreLeftUnfilled)
{
    std::vector<PointFields> round, zigzag;
    for (int i = 0; i < 20000; ++i) {
        const double a = 2 * M_PI * i / 20000;
        round.push_back({i, float(200 + 80 * std::cos(a)), float(150 + 80 * std::sin(a))});
    }
    for (int i = 0; i < 2000; ++i) // every edge spans the box and crosses most others
        zigzag.push_back({i, float(100 + (i * 7919) % 2000 / 10.0), i % 2 ? 100.0f : 200.0f});
    const struct { const std::vector<PointFields>& points; bool filled; } cases[] = {{round, true}, {zigzag, false}};
    for (const auto& c : cases) {
        setLogLevel(2);
        takeLog();
        VIEW_STRUCT* v = load(page().cpoly(shape(c.points)));
        const std::string loaded = takeLog();
        const bool filled = PixelIs(draw(v), 200, 150, kGreen);
        draw(v);
        const std::string drawn = takeLog();
        setLogLevel(1);
        EXPECT_EQ(filled, c.filled);
        EXPECT_EQ(loaded.find("Warning polyMakeList: outline of 2000 points too tangled to fill\n") == 0, !c.filled);
        EXPECT_EQ(drawn, "");
    }
}

} // namespace
