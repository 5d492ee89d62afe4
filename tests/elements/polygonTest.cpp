// Polylines and closed polygons on the screen: the tessellated fill, the outline, the fill cut
// at a level, the display list's life, and picking by the even-odd rule.
#include "KorelEdit.h"
#include "ViewFixture.h"

#include <GL/gl.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace k2dtest;
using korelgen::PointFields;
using korelgen::PolyFields;

namespace {

const Rgb kPage{51, 102, 153}, kGreen{0, 255, 0}, kRed{255, 0, 0};
const float kRedF[4] = {1, 0, 0, 1};

ViewBuilder page()
{
    ViewBuilder b;
    b.page(0, 0, 400, 300, 0.2f, 0.4f, 0.6f);
    return b;
}

// An L: a foot along the bottom, a leg up the left side, the notch at the upper right.
const std::vector<PointFields> kEll = {{0, 100, 50}, {1, 300, 50}, {2, 300, 100}, {3, 150, 100}, {4, 150, 250},
                                       {5, 100, 250}};
// 100..300 x 100..200.
const std::vector<PointFields> kBox = {{0, 100, 100}, {1, 300, 100}, {2, 300, 200}, {3, 100, 200}};

// Green fill, no outline unless asked for.
PolyFields shape(const std::vector<PointFields>& points, int fillOn = 1, int strokeOn = 0)
{
    PolyFields s;
    s.points = points;
    s.fillOn = fillOn;
    s.strokeOn = strokeOn;
    return s;
}

POLY_STRUCT* polyOf(const ELEMENT_STRUCT* e)
{
    return static_cast<POLY_STRUCT*>(e->data);
}

std::string takeLog()
{
    char text[16384];
    getLogMsg(text, sizeof text);
    return text;
}

using PolygonDraw = ViewTest;

// An open polyline fills just like a closed polygon when its fill is on.
TEST_F(PolygonDraw, ConcaveFillLeavesTheNotchEmpty)
{
    for (int kind : {KR_CPOLY, KR_POLYLINE}) {
        SCOPED_TRACE(kind);
        VIEW_STRUCT* v = load(kind == KR_CPOLY ? page().cpoly(shape(kEll)) : page().polyline(shape(kEll)));
        ASSERT_NE(v, nullptr);
        Frame f = draw(v);
        EXPECT_TRUE(PixelIs(f, 250, 75, kGreen)) << "foot";
        EXPECT_TRUE(PixelIs(f, 125, 200, kGreen)) << "leg";
        EXPECT_TRUE(PixelIs(f, 225, 175, kPage)) << "notch";
        EXPECT_TRUE(PixelIs(f, 50, 75, kPage));
        // Foot 200 x 50 plus leg 50 x 150 units, a little less in pixels (400 units on 399 pixels).
        int green = f.count(0, 0, 400, 300, kGreen);
        EXPECT_GT(green, 16800);
        EXPECT_LT(green, 17600);
    }
}

// A red five-pixel outline; the closing edge (the left side) shows only on a closed polygon,
// as its stored flag says.
TEST_F(PolygonDraw, OutlineFollowsTheEdgesAndClosesOnlyAClosedPolygon)
{
    PolyFields s = shape(kBox, 0, 1);
    s.strokeWidth = 5;
    std::copy(kRedF, kRedF + 4, s.stroke);
    for (int kind : {KR_CPOLY, KR_POLYLINE}) {
        SCOPED_TRACE(kind);
        s.closed = kind == KR_CPOLY;
        VIEW_STRUCT* v = load(kind == KR_CPOLY ? page().cpoly(s) : page().polyline(s));
        ASSERT_NE(v, nullptr);
        Frame f = draw(v);
        EXPECT_TRUE(PixelIs(f, 200, 100, kRed)) << "bottom";
        EXPECT_TRUE(PixelIs(f, 299, 150, kRed)) << "right";
        EXPECT_TRUE(PixelIs(f, 200, 199, kRed)) << "top";
        EXPECT_TRUE(PixelIs(f, 200, 150, kPage)) << "inside, fill off";
        EXPECT_EQ(bool(PixelIs(f, 100, 150, kRed)), kind == KR_CPOLY) << "closing edge";
    }
}

TEST_F(PolygonDraw, SelectedPolygonShowsADashedRedFrameWhileStopped)
{
    VIEW_STRUCT* v = load(page().cpoly(shape(kBox, 0, 0)));
    ASSERT_NE(v, nullptr);
    v->elements->selected = 1;
    Frame f = draw(v);
    // 0xF0F0: half of a one-pixel line along the bottom edge is lit.
    int red = f.count(110, 98, 290, 103, kRed, 40);
    EXPECT_GT(red, 60);
    EXPECT_LT(red, 120);
}

// The loader without a context can't make the list; the first draw does.
TEST_F(PolygonDraw, ViewLoadedWithoutContextFillsAtFirstDraw)
{
    releaseGlContext();
    setLogLevel(2);
    takeLog();
    VIEW_STRUCT* v = load(page().cpoly(shape(kBox)));
    std::string log = takeLog();
    setLogLevel(1);
    std::string why;
    ASSERT_TRUE(ensureGlContext(&why)) << why;
    ASSERT_NE(v, nullptr);
    EXPECT_NE(log.find("Warning polyMakeList: no valid openGL context !\n"), std::string::npos) << log;
    EXPECT_EQ(polyOf(v->elements)->displayList, 0u);

    Frame f = draw(v);
    EXPECT_TRUE(PixelIs(f, 200, 150, kGreen));
    EXPECT_NE(polyOf(v->elements)->displayList, 0u);
}

TEST_F(PolygonDraw, FreeingTheViewGivesTheListBack)
{
    VIEW_STRUCT* v = load(page().cpoly(shape(kBox)));
    ASSERT_NE(v, nullptr);
    GLuint list = polyOf(v->elements)->displayList;
    ASSERT_TRUE(glIsList(list));
    krViewFree(v);
    views.clear();
    EXPECT_FALSE(glIsList(list));
}

// Shapes the tessellator can't fill whole must still load, draw their outline and pick.
TEST_F(PolygonDraw, DegenerateShapesLoadAndDraw)
{
    struct Case {
        const char* label;
        std::vector<PointFields> points;
        bool outlineShows;
        bool wingPicks;
    };
    // The bow tie's right wing holds (280, 150); (200, 120) lies between the wings.
    const Case cases[] = {
        {"self-crossing", {{0, 100, 100}, {1, 300, 200}, {2, 300, 100}, {3, 100, 200}}, true, true},
        {"one point", {{0, 200, 150}}, false, false},
        {"no point", {}, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        PolyFields s = shape(c.points, 1, 1);
        s.strokeWidth = 5;
        std::copy(kRedF, kRedF + 4, s.stroke);
        VIEW_STRUCT* v = load(page().cpoly(s));
        ASSERT_NE(v, nullptr);
        Frame f = draw(v);
        if (c.outlineShows) {
            EXPECT_TRUE(PixelIs(f, 299, 150, kRed));
        } else {
            EXPECT_EQ(f.count(0, 0, 400, 300, kPage, 2), 400 * 300);
        }
        ELEMENT_STRUCT* e = v->elements;
        ASSERT_NE(e->pick, nullptr);
        EXPECT_EQ(bool(e->pick(e, 280, 150)), c.wingPicks);
        EXPECT_FALSE(e->pick(e, 200, 120));
    }
}

TEST(PolygonPick, EvenOddRuleOverTheClosedRing)
{
    struct Case {
        float x, y;
        bool hit;
    };
    const Case ell[] = {
        {250, 75, true}, {125, 200, true}, {225, 175, false}, {50, 75, false}, {125, 270, false}, {350, 75, false},
    };
    for (int kind : {KR_CPOLY, KR_POLYLINE}) {
        // An open polyline is picked as if it were closed.
        ViewBuilder b = page();
        if (kind == KR_CPOLY)
            b.cpoly(shape(kEll));
        else
            b.polyline(shape(kEll));
        VIEW_STRUCT* v = krViewLoadData(b.bytes().data(), b.size());
        ASSERT_NE(v, nullptr);
        ELEMENT_STRUCT* e = v->elements;
        ASSERT_NE(e->pick, nullptr);
        for (const Case& c : ell)
            EXPECT_EQ(bool(e->pick(e, c.x, c.y)), c.hit) << "kind " << kind << " at " << c.x << ", " << c.y;
        krViewFree(v);
    }
}

// The box filled to half of its extent in each direction: only the half it grows into paints.
TEST_F(PolygonDraw, FillLevelPaintsTheSideItGrowsFrom)
{
    struct Case {
        const char* label;
        int (*cut)(ELEMENT_STRUCT*);
        int inX, inY, outX, outY;
    };
    const Case cases[] = {
        {"up", polyCreateFillCoordUp, 200, 125, 200, 175},
        {"down", polyCreateFillCoordDown, 200, 175, 200, 125},
        {"right", polyCreateFillCoordRight, 150, 150, 250, 150},
        {"left", polyCreateFillCoordLeft, 250, 150, 150, 150},
    };
    VIEW_STRUCT* v = load(page().cpoly(shape(kBox)));
    ASSERT_NE(v, nullptr);
    ELEMENT_STRUCT* e = v->elements;
    POLY_STRUCT* p = polyOf(e);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        p->fillLevel = 0.5f;
        EXPECT_EQ(c.cut(e), 0);
        EXPECT_EQ(polyMakeList(p, 1), 0);
        Frame f = draw(v);
        EXPECT_TRUE(PixelIs(f, c.inX, c.inY, kGreen));
        EXPECT_TRUE(PixelIs(f, c.outX, c.outY, kPage));
        int green = f.count(0, 0, 400, 300, kGreen);
        EXPECT_GT(green, 9700);
        EXPECT_LT(green, 10200);
    }

    // The next geometry pass forgets the cut: the whole box fills again.
    e->setPickSticky(e);
    EXPECT_EQ(p->fillCoords, nullptr);
    EXPECT_TRUE(PixelIs(draw(v), 200, 175, kGreen));
}

TEST_F(PolygonDraw, FillLevelEndsKeepAllOrNothing)
{
    VIEW_STRUCT* v = load(page().cpoly(shape(kBox)));
    ASSERT_NE(v, nullptr);
    ELEMENT_STRUCT* e = v->elements;
    POLY_STRUCT* p = polyOf(e);

    p->fillLevel = 1;
    polyCreateFillCoordUp(e);
    std::vector<std::pair<double, double>> all, cut;
    for (const COORD_STRUCT* c = p->coords; c; c = c->next)
        all.emplace_back(c->vertex[0], c->vertex[1]);
    for (const COORD_STRUCT* c = p->fillCoords; c; c = c->next)
        cut.emplace_back(c->vertex[0], c->vertex[1]);
    EXPECT_EQ(cut, all);

    // Level 0 leaves the bottom edge only: a fill without area.
    p->fillLevel = 0;
    polyCreateFillCoordUp(e);
    polyMakeList(p, 1);
    EXPECT_EQ(draw(v).count(0, 0, 400, 300, kGreen), 0);
}

// Cutting the L halfway up keeps the whole foot and the lower part of the leg.
TEST_F(PolygonDraw, FillLevelCutsAConcaveShapeOnItsSide)
{
    VIEW_STRUCT* v = load(page().cpoly(shape(kEll)));
    ASSERT_NE(v, nullptr);
    ELEMENT_STRUCT* e = v->elements;
    polyOf(e)->fillLevel = 0.5f;
    polyCreateFillCoordUp(e);
    polyMakeList(polyOf(e), 1);
    Frame f = draw(v);
    EXPECT_TRUE(PixelIs(f, 250, 75, kGreen));
    EXPECT_TRUE(PixelIs(f, 125, 125, kGreen));
    EXPECT_TRUE(PixelIs(f, 125, 200, kPage));
    EXPECT_TRUE(PixelIs(f, 225, 125, kPage));
}

TEST(PolygonLevels, ResetReachesEveryPolylineButNoClosedPolygon)
{
    ViewBuilder b = page();
    b.polyline(shape(kBox), "top").cpoly(shape(kBox), "closed").beginGroup(1).polyline(shape(kBox), "inner");
    b.endGroup();
    VIEW_STRUCT* v = krViewLoadData(b.bytes().data(), b.size());
    ASSERT_NE(v, nullptr);
    ELEMENT_STRUCT* top = v->elements;
    ELEMENT_STRUCT* closed = top->next;
    ELEMENT_STRUCT* inner = closed->next->child;
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(resetAllPoly(v->elements), 0);
    EXPECT_EQ(polyOf(top)->fillLevel, -1.0f);
    EXPECT_EQ(polyOf(inner)->fillLevel, -1.0f);
    EXPECT_EQ(polyOf(closed)->fillLevel, 1.0f);
    krViewFree(v);
}

TEST(SegmentCrossing, InFloatAndInDouble)
{
    struct Case {
        const char* label;
        double s[8];
        int meets;
        bool lines;   // the infinite lines meet
        double x, y;  // where
    };
    const Case cases[] = {
        {"cross", {0, 0, 2, 2, 0, 2, 2, 0}, 1, true, 1, 1},
        {"ends touch", {0, 0, 1, 0, 1, -1, 1, 1}, 1, true, 1, 0},
        {"vertical first", {1, -1, 1, 1, 0, 0, 2, 0}, 1, true, 1, 0},
        {"short of each other", {0, 0, 1, 1, 3, 0, 3, 5}, 0, true, 3, 3},
        {"parallel", {0, 0, 1, 1, 0, 1, 1, 2}, 0, false, 0, 0},
        {"first is a point", {1, 1, 1, 1, 0, 0, 2, 2}, 0, false, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        const double* s = c.s;
        EXPECT_EQ(lineCross(float(s[0]), float(s[1]), float(s[2]), float(s[3]), float(s[4]), float(s[5]),
                            float(s[6]), float(s[7])),
                  c.meets);
        double x = -99, y = -99;
        EXPECT_EQ(KLineCross2(&x, &y, s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7]), c.meets);
        EXPECT_DOUBLE_EQ(x, c.lines ? c.x : -99);
        EXPECT_DOUBLE_EQ(y, c.lines ? c.y : -99);
    }
}

} // namespace
