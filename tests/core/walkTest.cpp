// The walk of one frame as a running view sees it: visibility, blinking, looks handed down
// by groups, and line widths that follow the zoom.
#include "ViewFixture.h"
#include "core/core.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <chrono>
#include <thread>

using namespace k2dtest;

namespace {

const Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlack{0, 0, 0}, kWhite{255, 255, 255};

RectFields redSquare(float x0, float y0, float size) { return RectFields{x0, y0, x0 + size, y0 + size}; }

class Walk : public ViewTest {
protected:
    // One pass over the view's tree, running or stopped; the draw entries pass clip 1.
    Frame walk(VIEW_STRUCT* view, int run, int clip = 1, uint32_t scissorType = 0)
    {
        krdSetViewport(kSurfaceWidth, kSurfaceHeight);
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        kvSetColorFactor(1, 1, 1, 1);
        DRAW_SETTINGS settings = {1.0f, scissorType, 0, 0};
        drawUserElements(view->elements, nullptr, run, 0, clip, &settings, 0);
        return Frame::grab();
    }
};

TEST_F(Walk, HiddenElementsShowOnlyWhileStopped)
{
    VIEW_STRUCT* v = load(blackPage().rect(redSquare(100, 100, 50)));
    ELEMENT_STRUCT* rect = v->elements;
    rect->attr.visible = 0;
    EXPECT_TRUE(PixelIs(walk(v, 0), 125, 125, kRed));
    EXPECT_EQ(rect->attr.live, 0);
    EXPECT_TRUE(PixelIs(walk(v, 1), 125, 125, kBlack));
    EXPECT_EQ(rect->attr.live, 1);
}

// Only a stopped walk with clip 0, which an editing tool makes, shows a scissor: as an orange
// frame, and its group unclipped.
TEST_F(Walk, StoppedWalkWithoutClipShowsScissorsAndClipsNothing)
{
    ViewBuilder b = blackPage();
    VIEW_STRUCT* v = load(b.beginGroup(2).rect(redSquare(20, 20, 40)).scissor(100, 100, 200, 150).endGroup());
    kriFindScissor(v->elements, 0, 0, 0, 0, 1);
    const struct { int run, clip; bool framed; } cases[] = {{0, 0, true}, {0, 1, false}, {1, 1, false}};
    for (uint32_t type : {0u, 1u})
        for (const auto& c : cases) {
            const Frame f = walk(v, c.run, c.clip, type);
            EXPECT_EQ(f.count(95, 95, 205, 155, {255, 128, 0})  > 0, c.framed) << type << c.run << c.clip;
            EXPECT_EQ(bool(PixelIs(f, 40, 40, kRed)), c.framed) << type << c.run << c.clip;
        }
}

// A look the outer of two nested groups holds reaches the children at both depths only when
// it is flagged; the flag travels with the value, so the inner group hands it on too.
TEST_F(Walk, FlaggedGroupLooksReachChildrenAtAnyDepth)
{
    const struct { const char* look; void (*apply)(ELEMENT_ATTR&); Rgb expected; } cases[] = {
        {"hidden", [](ELEMENT_ATTR& a) { a.visible = 0, a.visibleSet = 1; }, kBlack},
        {"green", [](ELEMENT_ATTR& a) { a.fillColor[0] = 0, a.fillColor[1] = 1, a.fillColorSet = 1; }, kGreen},
        {"green, unflagged", [](ELEMENT_ATTR& a) { a.fillColor[0] = 0, a.fillColor[1] = 1; }, kRed},
    };
    for (const auto& c : cases) {
        ViewBuilder b = blackPage();
        b.beginGroup(2).rect(redSquare(50, 50, 40)).beginGroup(1).rect(redSquare(200, 200, 40)).endGroup().endGroup();
        VIEW_STRUCT* v = load(b);
        c.apply(v->elements->attr);
        Frame f = walk(v, 1);
        EXPECT_TRUE(PixelIs(f, 70, 70, c.expected) && PixelIs(f, 220, 220, c.expected)) << c.look;
    }
}

// Without a rate from 1 to 8, or without a blink action evaluated since the last seeding, an
// element shows steadily however long the clocks run.
TEST_F(Walk, BlinkNeedsARateAndAnEvaluation)
{
    VIEW_STRUCT* v =
        load(blackPage().rect(redSquare(20, 20, 40)).rect(redSquare(120, 20, 40)).rect(redSquare(220, 20, 40)));
    const uint8_t rates[] = {0, 9, 7}, evaluated[] = {1, 1, 0};
    int i = 0;
    for (ELEMENT_STRUCT* e = v->elements; e; e = e->next, ++i)
        e->attr.blink = 1, e->attr.blinkRate = rates[i], e->attr.blinkSet = evaluated[i];
    for (int frame = 0; frame < 8; ++frame) {
        Frame f = walk(v, 1);
        for (int x : {40, 140, 240})
            EXPECT_TRUE(PixelIs(f, x, 40, kRed)) << x << " in frame " << frame;
        std::this_thread::sleep_for(std::chrono::milliseconds(80));
    }
}

// A 2-pixel frame drawn at zoom 2 keeps its width, or doubles it with line scaling on.
TEST_F(Walk, LineScalingFollowsTheZoom)
{
    RectFields frame = redSquare(50, 50, 100);
    frame.fillOn = 0, frame.strokeOn = 1, frame.strokeWidth = 2;
    VIEW_STRUCT* v = load(blackPage().rect(frame));
    EXPECT_EQ(draw(v, 0, 0, 2).count(200, 80, 201, 120, kWhite, 40), 2);
    krViewSetUseLineScaling(v, 1);
    EXPECT_EQ(draw(v, 0, 0, 2).count(200, 80, 201, 120, kWhite, 40), 4);
}

} // namespace
