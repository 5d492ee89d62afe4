// Buttons as a user sees them: a face and bevels in shades of the fill colour, lit from the upper
// left when released and from the lower right while a running view holds them pressed.
#include "../actions/actionViews.h"
#include "KorelEdit.h"
#include "ViewFixture.h"

#include <utility>

using namespace k2dtest;
using namespace korelgen;

namespace {

// Shades of the fill colour (0.8, 0.4, 1.0).
const Rgb kFull{204, 102, 255}, kHalf{102, 51, 128}, kFace70{143, 71, 179}, kFace60{122, 61, 153};

// A button from (100, 100) to (300, 200) of the black 400 x 300 page, bevels 20 wide; a running
// view presses it while "down" is 1.
using ButtonDraw = ViewTest;

TEST_F(ButtonDraw, BevelsShowTheReleasedAndPressedLook)
{
    enum { left, upper, right, lower, face };
    const struct {
        int x, y;
        int band;
    } points[] = {{105, 150, left}, {200, 195, upper}, {295, 150, right}, {200, 105, lower}, {200, 150, face}};
    const struct {
        const char* what;
        bool mirrored, running;
        float down;
        Rgb shown[5];
    } cases[] = {
        {"stopped, stored as pressed", false, false, 1, {kFull, kFull, kHalf, kHalf, kFace70}},
        {"running, released", false, true, 0, {kFull, kFull, kHalf, kHalf, kFace70}},
        {"running, pressed", false, true, 1, {kHalf, kHalf, kFull, kFull, kFace60}},
        {"mirrored both ways, released", true, true, 0, {kFull, kFull, kHalf, kHalf, kFace70}},
    };
    for (const auto& c : cases) {
        ButtonFields fields{100, 100, 300, 200};
        if (c.mirrored)
            std::swap(fields.x0, fields.x1), std::swap(fields.y0, fields.y1);
        fields.face[0] = 0.8f, fields.face[1] = 0.4f, fields.face[2] = 1;
        fields.bevelWidth = 20;
        fields.state = 1;
        ActionFields press = act(KR_ACTION_BUTTON_STATE, "down");
        VIEW_STRUCT* v = load(blackPage().actions({press}).button(fields).dataSection(
            {internalSource({{KR_VAR_FLOAT, "down", "", {}}})}));
        if (c.running) {
            ASSERT_EQ(krViewStart(v), 0);
            krVarSet(v, "down", &c.down);
        }
        const Frame f = draw(v);
        for (const auto& p : points)
            EXPECT_TRUE(PixelIs(f, p.x, p.y, c.shown[p.band])) << c.what << " at (" << p.x << ", " << p.y << ")";
        // The state a file stores is what was last shown.
        EXPECT_EQ(static_cast<BUTTON_STRUCT*>(v->elements->data)->state, c.running ? int(c.down) : 0) << c.what;
    }
}

} // namespace
