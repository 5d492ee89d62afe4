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

const Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlack{0, 0, 0};

RectFields redSquare(float x0, float y0, float size)
{
    RectFields s;
    s.x0 = x0;
    s.y0 = y0;
    s.x1 = x0 + size;
    s.y1 = y0 + size;
    return s;
}

class Walk : public ViewTest {
protected:
    // One pass over the view's tree as the draw entries make it, running or stopped.
    Frame walk(VIEW_STRUCT* view, int run)
    {
        krdSetViewport(kSurfaceWidth, kSurfaceHeight);
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        kvSetColorFactor(1, 1, 1, 1);
        DRAW_SETTINGS settings = {1.0f, 0, 0, 0};
        drawUserElements(view->elements, nullptr, run, 0, 1, &settings, 0);
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

TEST_F(Walk, HiddenGroupHidesEverythingBelowIt)
{
    ViewBuilder b = blackPage();
    b.beginGroup(2).rect(redSquare(50, 50, 40)).beginGroup(1).rect(redSquare(200, 200, 40)).endGroup().endGroup();
    VIEW_STRUCT* v = load(b);
    v->elements->attr.visible = 0;
    v->elements->attr.visibleSet = 1;
    Frame f = walk(v, 1);
    EXPECT_EQ(f.count(0, 0, 400, 300, kRed), 0);
}

TEST_F(Walk, GroupLookReachesChildrenAtAnyDepth)
{
    ViewBuilder b = blackPage();
    b.beginGroup(2).rect(redSquare(50, 50, 40)).beginGroup(1).rect(redSquare(200, 200, 40)).endGroup().endGroup();
    VIEW_STRUCT* v = load(b);
    ELEMENT_ATTR& look = v->elements->attr;
    look.fillColor[0] = 0;
    look.fillColor[1] = 1;
    look.fillColor[2] = 0;
    look.fillColorSet = 1;
    Frame f = walk(v, 1);
    EXPECT_TRUE(PixelIs(f, 70, 70, kGreen));
    EXPECT_TRUE(PixelIs(f, 220, 220, kGreen));
    // The flag travels with the value: the inner group now hands it on too.
    EXPECT_EQ(v->elements->child->next->attr.fillColorSet, 1);
}

TEST_F(Walk, UnflaggedGroupValuesStayWithTheGroup)
{
    ViewBuilder b = blackPage();
    b.beginGroup(1).rect(redSquare(50, 50, 40)).endGroup();
    VIEW_STRUCT* v = load(b);
    v->elements->attr.fillColor[0] = 0; // changed, but not marked as set
    EXPECT_TRUE(PixelIs(walk(v, 1), 70, 70, kRed));
}

TEST_F(Walk, BlinkClockThreeShowsBothStatesWithinASecond)
{
    VIEW_STRUCT* v = load(blackPage().rect(redSquare(100, 100, 50)));
    ELEMENT_ATTR& look = v->elements->attr;
    look.blink = 1;
    look.blinkSet = 1;
    look.blinkRate = 3;
    bool seenOn = false, seenOff = false;
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1200);
    while (std::chrono::steady_clock::now() < end && !(seenOn && seenOff)) {
        bool on = PixelIs(walk(v, 1), 125, 125, kRed);
        (on ? seenOn : seenOff) = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
    }
    EXPECT_TRUE(seenOn);
    EXPECT_TRUE(seenOff);
}

TEST_F(Walk, BlinkNeedsARateAndAnEvaluation)
{
    VIEW_STRUCT* v = load(blackPage().rect(redSquare(100, 100, 50)));
    ELEMENT_ATTR& look = v->elements->attr;
    look.blink = 1;
    for (int rate : {0, 9}) {
        look.blinkSet = 1;
        look.blinkRate = uint8_t(rate);
        for (int i = 0; i < 6; ++i) {
            EXPECT_TRUE(PixelIs(walk(v, 1), 125, 125, kRed)) << rate;
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    }
    look.blinkSet = 0; // no blink action evaluated since the last seeding
    look.blinkRate = 7;
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(PixelIs(walk(v, 1), 125, 125, kRed));
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
    }
}

TEST_F(Walk, LineScalingFollowsTheZoom)
{
    RectFields frame = redSquare(50, 50, 100);
    frame.fillOn = 0;
    frame.strokeOn = 1;
    frame.strokeWidth = 2;
    VIEW_STRUCT* v = load(blackPage().rect(frame));
    const Rgb white{255, 255, 255};
    Frame thin = draw(v, 0, 0, 2);
    int thinRows = thin.count(200, 80, 201, 120, white, 40);
    krViewSetUseLineScaling(v, 1);
    Frame thick = draw(v, 0, 0, 2);
    int thickRows = thick.count(200, 80, 201, 120, white, 40);
    EXPECT_EQ(thinRows, 2);
    EXPECT_EQ(thickRows, 4);
}

} // namespace
