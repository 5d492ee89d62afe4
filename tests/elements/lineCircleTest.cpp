// Lines, circles and arcs as a user sees them: drawn through the flat interface into a real
// GL surface and read back, picked through the element's own hit test, outlined when selected.
#include "LoadedView.h"
#include "ViewFixture.h"

#include <algorithm>
#include <cmath>

using namespace k2dtest;
using namespace korelgen;

namespace {

const Rgb kBlack{0, 0, 0}, kRed{255, 0, 0}, kGreen{0, 255, 0}, kTeal{51, 204, 153};
const float kPi = 3.14159265f;

// The window lays 400 x 300 units onto 399 x 299 pixels.
float pixelX(float u) { return u * 399 / 400; }
float pixelY(float v) { return v * 299 / 300; }

void paint(float target[4], Rgb c)
{
    target[0] = c.r / 255.0f, target[1] = c.g / 255.0f, target[2] = c.b / 255.0f, target[3] = 1;
}

LineFields segment(float x1, float y1, float x2, float y2, float width = 1, int style = 0)
{
    return {x1, y1, x2, y2, width, style, {0.2f, 0.8f, 0.6f, 1}}; // teal
}

// A red ellipse section without outline about (x, y); the file scales a radius of 100.
CircleFields disc(float x, float y, float m00, float m01, float m10, float m11, float start = 0,
                  float end = 2 * kPi)
{
    CircleFields s{x, y, {m00, m01, m10, m11}, start, end, 0};
    paint(s.fill, kRed);
    return s;
}

// Some pixel of the 3 x 3 block about (x, y) has the colour.
bool litNear(const Frame& f, int x, int y, Rgb c) { return f.count(x - 1, y - 1, x + 2, y + 2, c, 40) > 0; }

using LineCircle = ViewTest;

// How a line is placed: by the walk's offset (no actions, in groups or not) or by a matrix of
// its own or of its group (elements with actions). A small unpainted rectangle moves each
// group's centre away from the line's.
enum Placement { kAlone, kThreeGroupsDeep, kInAGroupWithActions, kWithActionsOfItsOwn };

ViewBuilder placed(Placement placement, const LineFields& line)
{
    ActionFields moveX;
    moveX.type = KR_ACTION_MOVE_X, moveX.var = "v";
    const RectFields unpainted{0, 0, 10, 10, 0, 1, 0, {1, 1, 1, 1}, 0};
    switch (placement) {
    case kThreeGroupsDeep:
        return blackPage().beginGroup(2).rect(unpainted).beginGroup(1).beginGroup(1).line(line).endGroup().endGroup()
            .endGroup();
    case kInAGroupWithActions:
        return blackPage().actions({moveX}).beginGroup(2).rect(unpainted).line(line).endGroup();
    case kWithActionsOfItsOwn:
        return blackPage().beginGroup(2).rect(unpainted).actions({moveX}).line(line).endGroup();
    default: return blackPage().line(line);
    }
}

// The line lands where it is stored, however placed, at any position and zoom: every lit
// pixel is teal and lies within half the width of the segment, and the whole segment is lit.
TEST_F(LineCircle, LineLightsItsSegmentAndNothingElse)
{
    const LineFields stored = segment(50, 80, 150, 80, 3);
    const struct { const char* label; LineFields line; Placement placement; float x, y, zoom; } cases[] = {
        {"flat and wide", segment(60, 150, 340, 150, 3), kAlone, 0, 0, 1},
        {"upright", segment(200, 40, 200, 260, 5), kAlone, 0, 0, 1},
        {"rising", segment(100, 50, 250, 200, 1), kAlone, 0, 0, 1},
        {"falling", segment(320, 60, 80, 240, 2), kAlone, 0, 0, 1},
        {"zoomed", stored, kAlone, 20, 10, 2},
        {"zoomed three groups deep", stored, kThreeGroupsDeep, 20, 10, 2},
        {"zoomed in a group with actions", stored, kInAGroupWithActions, 20, 10, 2},
        {"zoomed with actions of its own", stored, kWithActionsOfItsOwn, 20, 10, 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        Frame f = draw(load(placed(c.placement, c.line)), c.x, c.y, c.zoom);
        const LineFields& l = c.line;
        const float ax = pixelX(c.x + c.zoom * l.x1), ay = pixelY(c.y + c.zoom * l.y1);
        const float bx = pixelX(c.x + c.zoom * l.x2), by = pixelY(c.y + c.zoom * l.y2);
        const float length = std::hypot(bx - ax, by - ay);
        int lit = 0, astray = 0;
        for (int y = 0; y < f.height(); ++y)
            for (int x = 0; x < f.width(); ++x) {
                if (PixelIs(f, x, y, kBlack, 2))
                    continue;
                const float px = x + 0.5f - ax, py = y + 0.5f - ay;
                const float t = std::clamp((px * (bx - ax) + py * (by - ay)) / (length * length), 0.0f, 1.0f);
                ++lit;
                astray += !PixelIs(f, x, y, kTeal) ||
                          std::hypot(px - t * (bx - ax), py - t * (by - ay)) > l.strokeWidth / 2 + 1.5f;
            }
        EXPECT_EQ(astray, 0);
        // As wide as asked across its major axis, as GL draws wide lines.
        for (float t = 0.05f; t < 1; t += 0.1f)
            EXPECT_TRUE(litNear(f, int(ax + t * (bx - ax)), int(ay + t * (by - ay)), kTeal)) << t;
        EXPECT_GT(lit, 0.6f * length * l.strokeWidth);
        EXPECT_LT(lit, 1.1f * (length + 2) * l.strokeWidth);
    }
}

// Style 4 is eight pixels on, eight off: about half the row is lit, in runs, not scattered.
TEST_F(LineCircle, DashedLineLeavesGaps)
{
    Frame dashed = draw(load(blackPage().line(segment(60, 150, 340, 150, 1, 4))));
    const int row = int(pixelY(150));
    EXPECT_NEAR(dashed.count(70, row, 330, row + 1, kTeal), 130, 30);
    int longestGap = 0;
    for (int x = 70, gap = 0; x < 330; ++x) {
        gap = PixelIs(dashed, x, row, kTeal) ? 0 : gap + 1;
        longestGap = std::max(longestGap, gap);
    }
    EXPECT_NEAR(longestGap, 8.5, 1.5);
}

// Fills, and picks, reach the rim of the ellipse the matrix makes, whatever its size and turn.
TEST_F(LineCircle, FillCoversTheEllipseOfItsMatrix)
{
    // The extent along the axes, in units.
    const struct { const char* label; float m[4]; float halfX, halfY; } cases[] = {
        {"circle", {0.5f, 0, 0, 0.5f}, 50, 50},
        {"wide", {1, 0, 0, 0.4f}, 100, 40},
        {"turned upright", {0, -0.3f, 0.8f, 0}, 30, 80},
        {"tiny", {0.06f, 0, 0, 0.06f}, 6, 6},
    };
    const float cx = 200, cy = 150;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        VIEW_STRUCT* v = load(blackPage().circle(disc(cx, cy, c.m[0], c.m[1], c.m[2], c.m[3])));
        ELEMENT_STRUCT* e = v->elements;
        Frame f = draw(v);
        EXPECT_TRUE(PixelIs(f, int(pixelX(cx)), int(pixelY(cy)), kRed));
        // 2 units inside the rim and 2 beyond it, along both axes, the fill and the pick agree.
        // The smallest circles are octagons: test their extent where the corners lie.
        for (int axis : {0, 1})
            for (float d : {-2.0f, 2.0f})
                for (int sign : {-1, 1}) {
                    const float dx = axis ? 0 : sign * (c.halfX + d), dy = axis ? sign * (c.halfY + d) : 0;
                    EXPECT_TRUE(PixelIs(f, int(pixelX(cx + dx)), int(pixelY(cy + dy)), d < 0 ? kRed : kBlack))
                        << dx << ", " << dy;
                    EXPECT_EQ(bool(e->pick(e, cx + dx, cy + dy)), d < 0) << dx << ", " << dy;
                }
        const float area = kPi * c.halfX * c.halfY;
        EXPECT_NEAR(f.count(0, 0, 400, 300, kRed), area, 0.05f * area + 20);
    }
}

// Strokes follow the rim: a half arc's strip stays open across its centre, and below a radius
// of 8 a circle's rim takes eighth turns, an octagon of about 31 units.
TEST_F(LineCircle, StrokesFollowTheRim)
{
    CircleFields half = disc(200, 150, 0.8f, 0, 0, 0.8f, 0, kPi), ring = disc(40, 40, 0.05f, 0, 0, 0.05f);
    half.strokeOn = ring.strokeOn = 1, half.strokeWidth = 3, ring.strokeWidth = 1, ring.fillOn = 0;
    for (float* stroke : {half.stroke, ring.stroke})
        paint(stroke, kGreen);
    Frame f = draw(load(blackPage().arc(half).circle(ring)));
    const int cx = int(pixelX(200)), cy = int(pixelY(150));
    // The lower half only, and no chord across the centre.
    EXPECT_TRUE(litNear(f, cx, int(pixelY(70)), kGreen) && !litNear(f, cx, int(pixelY(230)), kGreen));
    EXPECT_FALSE(litNear(f, cx, cy + 1, kGreen));

    const int rx = int(pixelX(40)), ry = int(pixelY(40));
    EXPECT_TRUE(PixelIs(f, rx, ry, kBlack));
    for (int d : {-5, 5})
        EXPECT_TRUE(litNear(f, rx + d, ry, kGreen) && litNear(f, rx, ry + d, kGreen)) << d;
    const int lit = f.count(rx - 10, ry - 10, rx + 11, ry + 11, kGreen, 40);
    EXPECT_NEAR(lit, 32, 12);
    EXPECT_EQ(f.count(0, 0, 100, 100, kGreen, 40), lit);
}

TEST_F(LineCircle, SelectedShapesShowARedDashedOutlineWhileStopped)
{
    CircleFields c = disc(100, 150, 0.5f, 0, 0, 0.5f);
    RectFields low{200, 220, 210, 230}, high{340, 270, 350, 280};
    for (float* fill : {c.fill, low.fill, high.fill})
        paint(fill, kGreen);
    // The polygon's frame runs along its lower edge at y = 10 from x = 10 to 60; the group's
    // box is 200..350 x 220..280.
    ViewBuilder b = blackPage().circle(c).line(segment(200, 150, 350, 150, 5)).cpoly(PolyFields());
    VIEW_STRUCT* v = load(b.beginGroup(2).rect(low).rect(high).endGroup());
    Frame plain = draw(v);
    EXPECT_EQ(plain.count(0, 0, 400, 300, kRed, 60), 0);
    for (ELEMENT_STRUCT* e = v->elements; e; e = e->next)
        e->selected = 1;
    Frame marked = draw(v);
    EXPECT_GT(marked.count(40, 90, 160, 210, kRed, 60), 60);           // on the circle's rim
    EXPECT_EQ(marked.count(80, 130, 120, 170, kRed, 60), 0);           // not inside it
    EXPECT_GT(marked.count(200, 145, 350, 155, kRed, 60), 50);         // along the line
    EXPECT_EQ(marked.count(200, 151, 350, 155, kRed, 60), 0);          // one pixel wide, not five
    EXPECT_NEAR(marked.count(15, 7, 55, 13, kRed, 60), 20, 6);         // dashed half on, half off
    EXPECT_GT(marked.count(220, 276, 330, 282, kRed, 60), 20);         // along the group's top
    EXPECT_EQ(marked.count(220, 235, 330, 265, kRed, 60), 0);          // not inside it
}

// The pick ignores the drawn section: a half circle is hit in its undrawn half too. A singular
// matrix is never hit, and an arc has no hit test of its own.
TEST(CirclePick, WholeEllipseHitsWhateverTheSection)
{
    LoadedView half(blackPage().circle(disc(200, 150, 0.8f, 0, 0, 0.3f, 0, kPi)));
    LoadedView singular(blackPage().circle(disc(200, 150, 1, 1, 1, 1)));
    LoadedView arc(blackPage().arc(disc(200, 150, 0.8f, 0, 0, 0.3f)));
    ELEMENT_STRUCT *h = half.first(), *s = singular.first();
    EXPECT_TRUE(h->pick(h, 200, 170) && h->pick(h, 255, 170));
    EXPECT_FALSE(h->pick(h, 260, 175));
    EXPECT_FALSE(s->pick(s, 200, 150) || s->pick(s, 210, 150));
    EXPECT_EQ(arc.first()->pick, nullptr);
}

} // namespace
