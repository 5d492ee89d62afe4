// Every kind moves and sizes through the object interface as it then draws: each element,
// moved and sized, shows as one loaded at the target place. Garbage operands neither crash nor
// reach an integer conversion unclamped (the sanitizer build checks that).
#include "KorelEdit.h"
#include "ViewFixture.h"

#include <cmath>
#include <functional>
#include <limits>

using namespace k2dtest;

namespace {

using Add = std::function<void(ViewBuilder&)>;

struct KindCase {
    const char* kind;
    Add original;          // somewhere else and of another size
    Add target;            // as it should be: centred on (200, 150), 120 x 60 where the kind sizes;
                           // null where only the ink's centre can be told
    bool sizes = true;     // a line has no side handles to size it by
    bool drawn = true;     // a scissor shows nothing in a view
    float tolerance = 1e-3f; // a text re-measured in its re-rendered font is near the size only
};

korelgen::PolyFields triangle(float x0, float y0, float x1, float y1)
{
    korelgen::PolyFields p;
    p.closed = 1;
    p.fillOn = 1;
    p.points = {{0, x0, y0}, {1, x1, y0}, {2, x1, y1}};
    return p;
}

korelgen::CircleFields ellipse(float x, float y, float mx, float my, float end = 6.2831855f)
{
    korelgen::CircleFields c;
    c.x = x, c.y = y, c.matrix[0] = mx, c.matrix[3] = my, c.end = end;
    return c;
}

korelgen::ImageFields picture(float x0, float y0, float x1, float y1)
{
    korelgen::ImageFields i;
    i.x0 = x0, i.y0 = y0, i.x1 = x1, i.y1 = y1;
    i.width = i.height = 2;
    i.pixels.assign(16, 255);
    return i;
}

korelgen::GraphFields frame(float x, float y, float w, float h)
{
    korelgen::GraphFields g;
    g.x = x, g.y = y, g.width = w, g.height = h;
    g.labelx = g.labely = 0;
    return g;
}

const float kHalfTurn = 3.1415927f;

const KindCase kCases[] = {
    {"rectangle", [](ViewBuilder& b) { b.rect({10, 10, 50, 30}); }, [](ViewBuilder& b) { b.rect({140, 120, 260, 180}); }, true},
    {"polygon", [](ViewBuilder& b) { b.cpoly(triangle(10, 10, 50, 30)); },
     [](ViewBuilder& b) { b.cpoly(triangle(140, 120, 260, 180)); }, true},
    {"circle", [](ViewBuilder& b) { b.circle(ellipse(100, 100, 0.5f, 0.5f)); },
     [](ViewBuilder& b) { b.circle(ellipse(200, 150, 0.6f, 0.3f)); }, true},
    // The box of a lower half arc reaches up to its centre, which stays the element's centre.
    {"arc", [](ViewBuilder& b) { b.arc(ellipse(100, 100, 0.5f, 0.5f, kHalfTurn)); },
     [](ViewBuilder& b) { b.arc(ellipse(200, 150, 0.6f, 0.6f, kHalfTurn)); }, true},
    {"line", [](ViewBuilder& b) { b.line({10, 10, 50, 10}); }, [](ViewBuilder& b) { b.line({180, 150, 220, 150}); }, false},
    {"image", [](ViewBuilder& b) { b.image(picture(0, 0, 64, 64)); },
     [](ViewBuilder& b) { b.image(picture(140, 120, 260, 180)); }, true},
    {"button", [](ViewBuilder& b) { b.button({10, 10, 90, 40}); }, [](ViewBuilder& b) { b.button({140, 120, 260, 180}); }, true},
    {"slider", [](ViewBuilder& b) { b.slider({}); }, [](ViewBuilder& b) { b.slider({200, 150, 120, 60}); }, true},
    {"graph", [](ViewBuilder& b) { b.graph(frame(20, 20, 200, 100)); },
     [](ViewBuilder& b) { b.graph(frame(140, 120, 120, 60)); }, true},
    {"scissor", [](ViewBuilder& b) { b.scissor(10, 10, 50, 30); }, [](ViewBuilder& b) { b.scissor(140, 120, 260, 180); }, true, false},
    {"text", [](ViewBuilder& b) { b.text({}); }, nullptr, true, true, 3},
    {"group", [](ViewBuilder& b) { b.beginGroup(1).rect({10, 10, 50, 30}).endGroup(); },
     [](ViewBuilder& b) { b.beginGroup(1).rect({140, 120, 260, 180}).endGroup(); }, true},
};

void PrintTo(const KindCase& c, std::ostream* out)
{
    *out << c.kind;
}

class EveryKind : public ViewTest, public ::testing::WithParamInterface<KindCase> {
protected:
    VIEW_STRUCT* loadWith(const Add& add)
    {
        ViewBuilder b = blackPage();
        add(b);
        return load(b);
    }
};

TEST_P(EveryKind, MovesAndSizesAsDrawn)
{
    const KindCase& c = GetParam();
    VIEW_STRUCT* view = loadWith(c.original);
    ASSERT_TRUE(view);
    ELEMENT_STRUCT* e = view->elements;
    const float width = e->width, height = e->height;
    EXPECT_EQ(krObjSetX(e, 200), 0);
    EXPECT_EQ(krObjSetY(e, 150), 0);
    EXPECT_EQ(krObjSetWidth(e, 120), 0);
    EXPECT_EQ(krObjSetHeight(e, 60), 0);
    EXPECT_NEAR(krObjX(e), 200, 1e-3);
    EXPECT_NEAR(krObjY(e), 150, 1e-3);
    EXPECT_NEAR(krObjWidth(e), c.sizes ? 120 : width, c.tolerance);
    EXPECT_NEAR(krObjHeight(e), c.sizes ? 60 : height, c.tolerance);
    const Ink moved = draw(view).ink();
    EXPECT_EQ(moved.lit > 0, c.drawn);
    if (c.target) {
        VIEW_STRUCT* target = loadWith(c.target);
        ASSERT_TRUE(target);
        const Ink expected = draw(target).ink();
        for (auto edge : {&Ink::x0, &Ink::y0, &Ink::x1, &Ink::y1})
            EXPECT_NEAR(moved.*edge, expected.*edge, 1);
    } else {
        EXPECT_NEAR((moved.x0 + moved.x1) / 2, 200, 3);
        EXPECT_NEAR((moved.y0 + moved.y1) / 2, 150, 3);
    }

    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (float garbage : {1e30f, -1e30f, 0.0f, nan, 200.0f}) {
        for (auto set : {krObjSetWidth, krObjSetHeight, krObjSetX, krObjSetY})
            EXPECT_EQ(set(e, garbage), 0);
        OBJ_ATTR attr;
        EXPECT_EQ(krObjGetAttr(e, &attr), 0);
        draw(view);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.kind); });

} // namespace
