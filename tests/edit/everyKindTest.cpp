// Every kind moves and sizes through the object interface as it then draws: each element,
// moved and sized, shows as one loaded at the target place. (Garbage operands: the random
// edits of editRoundTripTest.)
#include "KorelEdit.h"
#include "ViewFixture.h"

using namespace k2dtest;

namespace {

struct Box {
    float x0, y0, x1, y1;
    float cx() const { return (x0 + x1) / 2; }
    float cy() const { return (y0 + y1) / 2; }
};

// A page with the element of a kind that fills the box; the box's centre is the element's centre.
using Add = ViewBuilder (*)(const Box&);

struct KindCase {
    const char* kind;
    Add add;
    bool sizes = true;        // a line has no side handles to size it by
    bool drawn = true;        // a scissor shows nothing in a view
    float tolerance = 1e-3f;  // a text re-measured in its re-rendered font is near the size only
    bool exact = true;        // else only the ink's centre can be told
};

// Centred on the box, as wide; a radius of 100 scaled by the matrix.
korelgen::CircleFields ellipse(const Box& r, float ry, float end = 6.2831855f)
{
    korelgen::CircleFields c;
    c.x = r.cx(), c.y = r.cy(), c.matrix[0] = (r.x1 - r.cx()) / 100, c.matrix[3] = ry / 100, c.end = end;
    return c;
}

const KindCase kCases[] = {
    {"rectangle", [](const Box& r) { return blackPage().rect({r.x0, r.y0, r.x1, r.y1}); }},
    {"polygon", [](const Box& r) {
         korelgen::PolyFields p;
         p.closed = p.fillOn = 1;
         p.points = {{0, r.x0, r.y0}, {1, r.x1, r.y0}, {2, r.x1, r.y1}};
         return blackPage().cpoly(p);
     }},
    {"circle", [](const Box& r) { return blackPage().circle(ellipse(r, r.y1 - r.cy())); }},
    // A lower half arc: its box reaches up to its centre, which stays the element's centre.
    {"arc", [](const Box& r) { return blackPage().arc(ellipse(r, r.y1 - r.y0, 3.1415927f)); }},
    {"line", [](const Box& r) { return blackPage().line({r.x0, r.cy(), r.x1, r.cy()}); }, false},
    {"image", [](const Box& r) {
         korelgen::ImageFields i;
         i.x0 = r.x0, i.y0 = r.y0, i.x1 = r.x1, i.y1 = r.y1, i.width = i.height = 2;
         i.pixels.assign(16, 255);
         return blackPage().image(i);
     }},
    {"button", [](const Box& r) { return blackPage().button({r.x0, r.y0, r.x1, r.y1}); }},
    {"slider", [](const Box& r) { return blackPage().slider({r.cx(), r.cy(), r.x1 - r.x0, r.y1 - r.y0}); }},
    {"graph", [](const Box& r) { return blackPage().graph({0, r.x0, r.y0, r.x1 - r.x0, r.y1 - r.y0}); }},
    {"scissor", [](const Box& r) { return blackPage().scissor(r.x0, r.y0, r.x1, r.y1); }, true, false},
    {"text", [](const Box&) { return blackPage().text({}); }, true, true, 3, false},
    {"group", [](const Box& r) { return blackPage().beginGroup(1).rect({r.x0, r.y0, r.x1, r.y1}).endGroup(); }},
};

using EveryKind = ViewTest;

TEST_F(EveryKind, MovesAndSizesAsDrawn)
{
    for (const KindCase& c : kCases) {
        SCOPED_TRACE(c.kind);
        VIEW_STRUCT* view = load(c.add({10, 10, 50, 30}));
        ASSERT_TRUE(view);
        ELEMENT_STRUCT* e = view->elements;
        const float width = e->width, height = e->height;
        // Unequal factors in x and y (3 and 4), so that neither can stand in for the other.
        for (auto [set, value] :
             {std::pair{krObjSetX, 200}, {krObjSetY, 150}, {krObjSetWidth, 120}, {krObjSetHeight, 80}})
            EXPECT_EQ(set(e, value), 0);
        EXPECT_NEAR(krObjX(e), 200, 1e-3);
        EXPECT_NEAR(krObjY(e), 150, 1e-3);
        EXPECT_NEAR(krObjWidth(e), c.sizes ? 120 : width, c.tolerance);
        EXPECT_NEAR(krObjHeight(e), c.sizes ? 80 : height, c.tolerance);
        const Ink moved = draw(view).ink();
        EXPECT_EQ(moved.lit > 0, c.drawn);
        if (c.exact) {
            const Box target = c.sizes ? Box{140, 110, 260, 190} : Box{180, 140, 220, 160};
            const Ink expected = draw(load(c.add(target))).ink();
            for (auto edge : {&Ink::x0, &Ink::y0, &Ink::x1, &Ink::y1})
                EXPECT_NEAR(moved.*edge, expected.*edge, 1);
        } else {
            EXPECT_NEAR((moved.x0 + moved.x1) / 2, 200, 3);
            EXPECT_NEAR((moved.y0 + moved.y1) / 2, 150, 3);
        }
    }
}

} // namespace
