// The geometry every kind derives after loading: box, centre, size, local coordinates and
// how it is picked; the look seeded from the record; and groups built from all of them.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewBuilder.h"
#include "glyph/GlyphKit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

struct Box {
    float xmin, ymin, xmax, ymax;
};

::testing::AssertionResult HasBounds(const ELEMENT_STRUCT* e, Box b, float tolerance = 1e-3f)
{
    const float want[4] = {b.xmin, b.ymin, b.xmax, b.ymax};
    for (int i = 0; i < 4; ++i)
        if (!(std::fabs(e->bounds[i] - want[i]) <= tolerance))
            return ::testing::AssertionFailure()
                   << e->name << ": bounds " << e->bounds[0] << ", " << e->bounds[1] << ", " << e->bounds[2] << ", "
                   << e->bounds[3] << " instead of " << want[0] << ", " << want[1] << ", " << want[2] << ", "
                   << want[3];
    return ::testing::AssertionSuccess();
}

Box unite(Box a, Box b)
{
    return {std::min(a.xmin, b.xmin), std::min(a.ymin, b.ymin), std::max(a.xmax, b.xmax), std::max(a.ymax, b.ymax)};
}

ViewBuilder page()
{
    ViewBuilder b;
    b.page(0, 0, 400, 300, 0, 0, 0);
    return b;
}

template <class Record> Record* recordOf(const ELEMENT_STRUCT* e)
{
    return static_cast<Record*>(e->data);
}

// A kind written with known geometry, and the box it must come up with.
struct GeometryCase {
    const char* label;
    std::function<void(ViewBuilder&)> write;
    std::function<Box()> box;
};

// An arc of 30 to 60 degrees (clockwise) with radius 50: its rim lies well away from the
// axes, so only widening to the centre brings the box to (0, 0).
CircleFields pieArc()
{
    CircleFields s;
    s.x = 200, s.y = 150;
    s.start = 3.14159265f / 6, s.end = 3.14159265f / 3;
    return s;
}

TextFields bitmapText()
{
    TextFields s;
    s.x = 120, s.y = 260;
    s.fontFamily = "Courier [fixed]", s.fontSize = 20;
    s.text = "Level";
    return s;
}

// A bitmap text's box is its string's metric about the stored position.
Box bitmapTextBox()
{
    LoadedView loaded(page().text(bitmapText()));
    const TEXT_STRUCT* t = recordOf<TEXT_STRUCT>(loaded.first());
    int metric[2] = {0, 0};
    gkFontStringMetric(t->font, t->text, metric);
    const float hw = metric[0] * 0.5f, hh = metric[1] * 0.5f;
    return {120 - hw, 260 - hh, 120 + hw, 260 + hh};
}

const std::vector<GeometryCase>& geometryCases()
{
    static const std::vector<GeometryCase> cases = {
        {"graph", [](ViewBuilder& b) { GraphFields s; s.x = 20, s.y = 30, s.width = 200, s.height = 100; b.graph(s); },
         [] { return Box{20, 30, 220, 130}; }},
        {"rectangle", [](ViewBuilder& b) { RectFields s; s.x0 = 5, s.y0 = 6, s.x1 = 15, s.y1 = 26; b.rect(s); },
         [] { return Box{5, 6, 15, 26}; }},
        {"polyline", [](ViewBuilder& b) { b.polyline(PolyFields()); }, [] { return Box{10, 10, 60, 40}; }},
        {"closed polygon",
         [](ViewBuilder& b) {
             PolyFields s;
             s.points = {{0, -20, 5}, {1, 10, -15}, {2, 30, 45}};
             b.cpoly(s);
         },
         [] { return Box{-20, -15, 30, 45}; }},
        {"circle", [](ViewBuilder& b) { b.circle(CircleFields()); }, [] { return Box{50, 50, 150, 150}; }},
        {"arc", [](ViewBuilder& b) { b.arc(pieArc()); }, [] { return Box{200, 150 - 43.30127f, 243.30127f, 150}; }},
        {"text", [](ViewBuilder& b) { b.text(bitmapText()); }, bitmapTextBox},
        {"line", [](ViewBuilder& b) { LineFields s; s.x1 = 300, s.y1 = 10, s.x2 = 250, s.y2 = 70; b.line(s); },
         [] { return Box{250, 10, 300, 70}; }},
        {"image", [](ViewBuilder& b) { ImageFields s; s.x0 = 40, s.y0 = 200, s.x1 = 104, s.y1 = 232; b.image(s); },
         [] { return Box{40, 200, 104, 232}; }},
        {"button", [](ViewBuilder& b) { b.button(ButtonFields()); }, [] { return Box{0, 0, 80, 30}; }},
        {"slider", [](ViewBuilder& b) { SliderFields s; s.x = 350, s.y = 150, s.width = 20, s.height = 100; b.slider(s); },
         [] { return Box{340, 100, 360, 200}; }},
        {"scissor", [](ViewBuilder& b) { b.scissor(1, 2, 3, 4); }, [] { return Box{1, 2, 3, 4}; }},
    };
    return cases;
}

TEST(KindGeometry, EveryKindHasItsBoxAndCentre)
{
    for (const GeometryCase& c : geometryCases()) {
        SCOPED_TRACE(c.label);
        ViewBuilder b = page();
        c.write(b);
        LoadedView loaded(b);
        const ELEMENT_STRUCT* e = loaded.first();
        ASSERT_NE(e, nullptr);
        const Box box = c.box();
        EXPECT_TRUE(HasBounds(e, box, 0.05f));
        EXPECT_NEAR(e->width, box.xmax - box.xmin, 0.05f);
        EXPECT_NEAR(e->height, box.ymax - box.ymin, 0.05f);
        EXPECT_FLOAT_EQ(e->refX, e->x);
        EXPECT_FLOAT_EQ(e->refY, e->y);
    }
}

TEST(KindGeometry, LineIsPickedAsItsSegmentAndDrawnAboutItsMiddle)
{
    LineFields s;
    s.x1 = 300, s.y1 = 10, s.x2 = 250, s.y2 = 70;
    s.strokeWidth = 2.9f;
    LoadedView loaded(page().line(s));
    const ELEMENT_STRUCT* e = loaded.first();
    const LINE_STRUCT* l = recordOf<LINE_STRUCT>(e);
    EXPECT_FLOAT_EQ(e->x, 275);
    EXPECT_FLOAT_EQ(e->y, 40);
    EXPECT_EQ(e->pickShape, 1);
    EXPECT_FLOAT_EQ(e->pickLine[0], 300);
    EXPECT_FLOAT_EQ(e->pickLine[1], 10);
    EXPECT_FLOAT_EQ(e->pickLine[2], 250);
    EXPECT_FLOAT_EQ(e->pickLine[3], 70);
    EXPECT_FLOAT_EQ(l->localX1, 25);
    EXPECT_FLOAT_EQ(l->localY1, -30);
    EXPECT_FLOAT_EQ(l->localX2, -25);
    EXPECT_FLOAT_EQ(l->localY2, 30);
    // The look: width truncated, no fill, nothing to show as text.
    EXPECT_EQ(e->attr.lineWidth, 2);
    EXPECT_FLOAT_EQ(e->attr.strokeColor[1], 1);
    EXPECT_FLOAT_EQ(e->attr.fillColor[3], 0);
    EXPECT_EQ(e->attr.visible, 1);
}

TEST(KindGeometry, PolygonVerticesAreRelativeToItsCentre)
{
    PolyFields s;
    s.points = {{0, -20, 5}, {1, 10, -15}, {2, 30, 45}};
    LoadedView loaded(page().cpoly(s));
    const ELEMENT_STRUCT* e = loaded.first();
    const POLY_STRUCT* p = recordOf<POLY_STRUCT>(e);
    EXPECT_EQ(e->pickShape, 0);
    EXPECT_FLOAT_EQ(e->x, 5);
    EXPECT_FLOAT_EQ(e->y, 15);
    const COORD_STRUCT* c = p->coords;
    EXPECT_DOUBLE_EQ(c->vertex[0], -25);
    EXPECT_DOUBLE_EQ(c->vertex[1], -10);
    EXPECT_DOUBLE_EQ(c->next->next->vertex[1], 30);
    EXPECT_FLOAT_EQ(p->localBounds[0], -25);
    EXPECT_FLOAT_EQ(p->localBounds[1], -30);
    EXPECT_FLOAT_EQ(p->localBounds[2], 25);
    EXPECT_FLOAT_EQ(p->localBounds[3], 30);
}

TEST(KindGeometry, CircleKeepsItsStoredCentreAndTurnsWithItsMatrix)
{
    // An ellipse stretched along x and turned by 90 degrees stands upright.
    CircleFields s;
    s.x = 100, s.y = 80;
    s.matrix[0] = 0, s.matrix[1] = -0.2f, s.matrix[2] = 0.5f, s.matrix[3] = 0;
    LoadedView loaded(page().circle(s));
    const ELEMENT_STRUCT* e = loaded.first();
    const CIRCLE_STRUCT* c = recordOf<CIRCLE_STRUCT>(e);
    EXPECT_TRUE(HasBounds(e, {80, 30, 120, 130}, 0.05f));
    EXPECT_FLOAT_EQ(e->x, 100);
    EXPECT_FLOAT_EQ(e->y, 80);
    EXPECT_NEAR(c->localBounds[1], -50, 0.05f);
    EXPECT_FLOAT_EQ(c->fanX, 0);
    EXPECT_FLOAT_EQ(e->attr.arcEnd, 6.2831855f);
    EXPECT_EQ(e->attr.lineWidth, 2);
}

TEST(KindGeometry, ArcBoxReachesItsCentre)
{
    LoadedView loaded(page().arc(pieArc()));
    const ELEMENT_STRUCT* e = loaded.first();
    // The rim runs from (43.3, -25) to (25, -43.3) about the centre; the box holds (0, 0) too.
    EXPECT_TRUE(HasBounds(e, {200, 150 - 43.30127f, 243.30127f, 150}, 0.05f));
    EXPECT_FLOAT_EQ(e->x, 200);
    EXPECT_FLOAT_EQ(e->y, 150);
    // An end before the start draws nothing: the box shrinks to the centre.
    CircleFields backwards = pieArc();
    backwards.end = 0;
    LoadedView empty(page().arc(backwards));
    EXPECT_TRUE(HasBounds(empty.first(), {200, 150, 200, 150}));
}

TEST(KindGeometry, AnglesBeyondAnyTurnStillEnd)
{
    for (float start : {-1e30f, 0.0f, 1e20f}) {
        CircleFields s;
        s.start = start, s.end = 1e30f;
        LoadedView loaded(page().circle(s));
        ASSERT_NE(loaded.first(), nullptr);
        EXPECT_LE(loaded.first()->width, 100.05f) << start;
    }
}

TEST(KindGeometry, TextBoxFollowsFontAndMatrix)
{
    TextFields s;
    s.x = 200, s.y = 100;
    s.fontFamily = "Arial", s.fontSize = 20, s.textSize = 40;
    s.text = "Gauge";
    LoadedView loaded(page().text(s));
    const ELEMENT_STRUCT* e = loaded.first();
    const TEXT_STRUCT* t = recordOf<TEXT_STRUCT>(e);
    ASSERT_NE(t->scalable, 0);
    int metric[2];
    ASSERT_EQ(gkFontStringMetric(t->font, "Gauge", metric), 0);
    // An outline font is scaled to the text height.
    const int width = int(2.0f * float(metric[0]));
    EXPECT_FLOAT_EQ(e->width, float(width));
    EXPECT_FLOAT_EQ(e->height, 40);
    EXPECT_FLOAT_EQ(e->x, 200);
    EXPECT_FLOAT_EQ(e->bounds[1], 80);
    EXPECT_STREQ(e->attr.text, "Gauge");
    EXPECT_EQ(e->pickShape, 0);

    // Turned a quarter: width and height change places.
    s.matrix[0] = 0, s.matrix[1] = -1, s.matrix[2] = 1, s.matrix[3] = 0;
    LoadedView turned(page().text(s));
    EXPECT_FLOAT_EQ(turned.first()->width, 40);
    EXPECT_FLOAT_EQ(turned.first()->height, float(width));

    // A bitmap font shows at its own size and does not turn.
    s.fontFamily = "Courier [fixed]";
    LoadedView fixed(page().text(s));
    const TEXT_STRUCT* f = recordOf<TEXT_STRUCT>(fixed.first());
    ASSERT_EQ(f->scalable, 0);
    ASSERT_EQ(gkFontStringMetric(f->font, "Gauge", metric), 0);
    EXPECT_FLOAT_EQ(fixed.first()->width, float(metric[0]));
    EXPECT_FLOAT_EQ(fixed.first()->height, float(metric[1]));
}

TEST(KindGeometry, LooksSeededFromEachRecord)
{
    GraphFields g;
    g.outline[0] = 0.25f;
    g.grid[1] = 0.75f;
    ImageFields image;
    image.tint[0] = 0.5f;
    ButtonFields button;
    button.face[2] = 0.125f;
    SliderFields slider;
    slider.face[1] = 0.375f;
    LoadedView loaded(page().graph(g).image(image).button(button).slider(slider));
    const ELEMENT_STRUCT* e = loaded.first();
    EXPECT_FLOAT_EQ(e->attr.strokeColor[0], 0.25f);
    EXPECT_FLOAT_EQ(e->attr.fillColor[1], 0.75f);
    // Faces alone carry colour; line and stroke colour are cleared.
    const float faces[3][2] = {{0, 0.5f}, {2, 0.125f}, {1, 0.375f}};
    for (int i = 0; i < 3; ++i) {
        e = e->next;
        SCOPED_TRACE(e->name);
        EXPECT_FLOAT_EQ(e->attr.fillColor[int(faces[i][0])], faces[i][1]);
        EXPECT_EQ(e->attr.lineWidth, 0);
        EXPECT_EQ(e->attr.lineStyle, 0);
        EXPECT_FLOAT_EQ(e->attr.strokeColor[0], 0);
        EXPECT_EQ(e->attr.visible, 1);
    }
}

TEST(GroupGeometry, BoxIsTheUnionOfEveryKindOfChild)
{
    // Each kind beside a small square far away, then all kinds together.
    RectFields far;
    far.x0 = 380, far.y0 = 280, far.x1 = 390, far.y1 = 290;
    const Box farBox = {380, 280, 390, 290};
    Box all = farBox;
    ViewBuilder together = page();
    together.beginGroup(int(geometryCases().size()) + 1, "all").rect(far);
    for (const GeometryCase& c : geometryCases()) {
        SCOPED_TRACE(c.label);
        ViewBuilder b = page();
        b.beginGroup(2);
        c.write(b);
        b.rect(far).endGroup();
        LoadedView loaded(b);
        const ELEMENT_STRUCT* group = loaded.first();
        ASSERT_NE(group, nullptr);
        const Box want = unite(c.box(), farBox);
        EXPECT_TRUE(HasBounds(group, want, 0.05f));
        // Children sit relative to the group's centre.
        const ELEMENT_STRUCT* child = group->child;
        EXPECT_FLOAT_EQ(child->x + group->x, child->refX);
        EXPECT_FLOAT_EQ(child->y + group->y, child->refY);
        c.write(together);
        all = unite(all, c.box());
    }
    together.endGroup();
    LoadedView loaded(together);
    EXPECT_TRUE(HasBounds(loaded.first(), all, 0.05f));
}

TEST(GroupGeometry, NestedThreeDeepAddsUpToViewUnits)
{
    LineFields line;
    line.x1 = 10, line.y1 = 20, line.x2 = 50, line.y2 = 60;
    CircleFields circle; // centre 100, 100, radius 50
    ViewBuilder b = page();
    b.beginGroup(1, "outer").beginGroup(1, "middle").beginGroup(2, "inner");
    b.line(line).circle(circle).endGroup().endGroup().endGroup();
    LoadedView loaded(b);
    const ELEMENT_STRUCT* outer = loaded.first();
    const ELEMENT_STRUCT* middle = outer->child;
    const ELEMENT_STRUCT* inner = middle->child;
    for (const ELEMENT_STRUCT* g : {outer, middle, inner})
        EXPECT_TRUE(HasBounds(g, {10, 20, 150, 150}, 0.05f));
    EXPECT_NEAR(outer->x, 80, 0.05f);
    EXPECT_FLOAT_EQ(middle->x, 0);
    EXPECT_FLOAT_EQ(inner->y, 0);
    // The translations of the walk add up to the line's middle in view units.
    const ELEMENT_STRUCT* l = inner->child;
    EXPECT_NEAR(outer->x + middle->x + inner->x + l->x, 30, 1e-4);
    EXPECT_NEAR(outer->y + middle->y + inner->y + l->y, 40, 1e-4);
    EXPECT_FLOAT_EQ(l->refX, 30);
    EXPECT_EQ(l->parent, inner);
}

TEST(GroupGeometry, GroupOfOneFlatLineIsPickedAsThatLine)
{
    LineFields line;
    line.x1 = 20, line.y1 = 50, line.x2 = 180, line.y2 = 50;
    LoadedView loaded(page().beginGroup(1).line(line).endGroup());
    const ELEMENT_STRUCT* group = loaded.first();
    EXPECT_FLOAT_EQ(group->height, 0);
    EXPECT_EQ(group->pickShape, 1);
    EXPECT_FLOAT_EQ(group->pickLine[0], 20);
    EXPECT_FLOAT_EQ(group->pickLine[1], 50);
    EXPECT_FLOAT_EQ(group->pickLine[2], 180);
    EXPECT_FLOAT_EQ(group->pickLine[3], 50);

    // A slanted line gives its group a box to pick by.
    line.y2 = 90;
    LoadedView slanted(page().beginGroup(1).line(line).endGroup());
    EXPECT_EQ(slanted.first()->pickShape, 0);
}

} // namespace
