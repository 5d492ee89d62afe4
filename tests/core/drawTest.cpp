// What a stopped view looks like on the screen: page, rectangles, groups and clipping,
// drawn through the flat interface into a real GL surface and read back pixel by pixel.
#include "ViewFixture.h"

#include <GL/gl.h>

#include <string>

using namespace k2dtest;

namespace {

const Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255}, kBlack{0, 0, 0}, kWhite{255, 255, 255};
const Rgb kPage{51, 102, 153};

struct Point {
    int x, y;
};

RectFields filled(float x0, float y0, float x1, float y1, Rgb colour)
{
    RectFields s;
    s.x0 = x0, s.y0 = y0, s.x1 = x1, s.y1 = y1;
    s.fill[0] = colour.r / 255.0f, s.fill[1] = colour.g / 255.0f, s.fill[2] = colour.b / 255.0f;
    return s;
}

ViewBuilder page()
{
    ViewBuilder b;
    b.page(0, 0, 400, 300, 0.2f, 0.4f, 0.6f);
    return b;
}

using ViewDraw = ViewTest;

TEST_F(ViewDraw, RectangleFillsItsCornersOnThePageColour)
{
    VIEW_STRUCT* v = load(page().rect(filled(100, 100, 200, 150, kRed)));
    ASSERT_NE(v, nullptr);
    Frame f = draw(v);
    EXPECT_TRUE(PixelIs(f, 102, 102, kRed));
    EXPECT_TRUE(PixelIs(f, 197, 147, kRed));
    // About 100 x 50 pixels are red, no more (the surface maps 400 units to 399 pixels); the
    // rest is the page.
    int red = f.count(0, 0, 400, 300, kRed);
    EXPECT_GT(red, 96 * 48);
    EXPECT_LT(red, 101 * 51);
    EXPECT_EQ(f.count(0, 0, 400, 300, kPage, 2), 400 * 300 - red);
}

TEST_F(ViewDraw, OutlineColourAndWidth)
{
    RectFields s = filled(100, 100, 200, 200, kRed);
    s.strokeOn = 1;
    s.strokeWidth = 5;
    s.stroke[0] = s.stroke[2] = 0; // green
    VIEW_STRUCT* v = load(page().rect(s));
    Frame f = draw(v);
    EXPECT_TRUE(PixelIs(f, 150, 150, kRed));
    EXPECT_TRUE(PixelIs(f, 100, 150, kGreen));
    EXPECT_TRUE(PixelIs(f, 150, 199, kGreen));
    // The 5-pixel line reaches 2 pixels beyond the edge, not 4.
    EXPECT_TRUE(PixelIs(f, 98, 150, kGreen));
    EXPECT_TRUE(PixelIs(f, 95, 150, kPage));
}

TEST_F(ViewDraw, FillPatternChequers)
{
    RectFields s = filled(100, 100, 200, 200, kRed);
    s.fillStyle = 1;
    VIEW_STRUCT* v = load(page().rect(s));
    Frame f = draw(v);
    int red = f.count(110, 110, 190, 190, kRed);
    EXPECT_EQ(red + f.count(110, 110, 190, 190, kPage, 2), 80 * 80);
    EXPECT_NEAR(red, 80 * 80 / 2, 80);
    // Neighbours differ: the chequer has a period of one pixel.
    bool first = PixelIs(f, 150, 150, kRed);
    EXPECT_NE(first, bool(PixelIs(f, 151, 150, kRed)));
    EXPECT_NE(first, bool(PixelIs(f, 150, 151, kRed)));
}

TEST_F(ViewDraw, ColourFactorScalesEveryColour)
{
    VIEW_STRUCT* v = load(page().rect(filled(100, 100, 200, 200, kWhite)));
    ASSERT_EQ(krViewSetColorFactor(v, 1, 0.5f, 0, 1), 0);
    Frame f = draw(v);
    EXPECT_TRUE(PixelIs(f, 150, 150, Rgb{255, 128, 0}, 3));
    // The page colour is not a drawn element: it stays.
    EXPECT_TRUE(PixelIs(f, 50, 50, kPage, 2));

    // Alpha below 1 blends opaque elements with what lies beneath.
    krViewSetColorFactor(v, 1, 1, 1, 0.5f);
    EXPECT_TRUE(PixelIs(draw(v), 150, 150, Rgb{153, 178, 204}, 4));
}

TEST_F(ViewDraw, PositionAndZoomPlaceThePage)
{
    ViewBuilder b;
    b.page(50, 40, 400, 300, 0, 0, 0);
    b.rect(filled(100, 100, 150, 150, kRed));
    VIEW_STRUCT* v = load(b);
    // Zoom 1 at (0, 0): the page's lower left corner (50, 40) lands on the window origin.
    Frame a = draw(v);
    EXPECT_TRUE(PixelIs(a, 75, 85, kRed));
    EXPECT_TRUE(PixelIs(a, 110, 85, kBlack));
    // Offset and zoom 2: units 100..150 land on 20 + 100..200, 10 + 120..220.
    Frame c = draw(v, 20, 10, 2);
    EXPECT_TRUE(PixelIs(c, 125, 135, kRed));
    EXPECT_TRUE(PixelIs(c, 215, 225, kRed));
    EXPECT_TRUE(PixelIs(c, 115, 135, kBlack));
    EXPECT_TRUE(PixelIs(c, 125, 232, kBlack));
    // The page position is truncated for the host, the drawing keeps the fraction.
    draw(v, 10.7f, 0, 1);
    EXPECT_EQ(v->posX, 10);
    EXPECT_FLOAT_EQ(v->zoom, 1);
}

TEST_F(ViewDraw, GroupsNestedThreeDeepDrawTheirChildrenWhereStored)
{
    ViewBuilder b = page();
    b.beginGroup(2, "g1").rect(filled(20, 20, 60, 60, kRed));
    b.beginGroup(2, "g2").rect(filled(100, 30, 140, 70, kGreen));
    b.beginGroup(1, "g3").rect(filled(300, 200, 380, 280, kBlue)).endGroup();
    b.endGroup().endGroup();
    VIEW_STRUCT* v = load(b);
    Frame f = draw(v, 0, 0, 2);
    EXPECT_TRUE(PixelIs(f, 80, 80, kRed));
    EXPECT_TRUE(PixelIs(f, 240, 100, kGreen));
    EXPECT_TRUE(PixelIs(f, 160, 80, kPage, 2));
    Frame shifted = draw(v, -30, 15, 1);
    EXPECT_TRUE(PixelIs(shifted, 310, 255, kBlue));
    EXPECT_TRUE(PixelIs(shifted, 90, 65, kGreen));
}

// A group holding a large red rectangle, clipped by a scissor child.
ViewBuilder& clippedGroup(ViewBuilder& b, float x0, float y0, float x1, float y1, Rgb colour = kRed)
{
    return b.beginGroup(2).rect(filled(0, 0, 400, 300, colour)).scissor(x0, y0, x1, y1).endGroup();
}

// Both kinds of clipping, of one box and of a box inside another: the stencil intersects
// nested boxes, the scissor box lets the inner one replace the outer.
TEST_F(ViewDraw, ClippingShowsOnlyTheScissorArea)
{
    struct Case {
        int scissorType;
        bool nested;
        Point red[2], page[2];
        int redCount;
    } cases[] = {
        {0, false, {{150, 125}, {150, 125}}, {{90, 125}, {150, 160}}, 100 * 50},
        {0, true, {{225, 150}, {225, 150}}, {{275, 150}, {150, 150}}, 50 * 100},
        {1, false, {{150, 125}, {150, 125}}, {{90, 125}, {150, 160}}, 100 * 50},
        {1, true, {{225, 150}, {275, 150}}, {{150, 150}, {150, 150}}, 150 * 100},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("scissor type " + std::to_string(c.scissorType) + (c.nested ? ", nested" : ""));
        ViewBuilder b = page();
        if (c.nested) {
            b.beginGroup(2).scissor(50, 50, 250, 250);
            clippedGroup(b, 200, 100, 350, 200).endGroup();
        } else {
            clippedGroup(b, 100, 100, 200, 150);
        }
        VIEW_STRUCT* v = load(b);
        krViewSetScissorType(v, c.scissorType);
        Frame f = draw(v);
        for (const Point& p : c.red)
            EXPECT_TRUE(PixelIs(f, p.x, p.y, kRed));
        for (const Point& p : c.page)
            EXPECT_TRUE(PixelIs(f, p.x, p.y, kPage, 2));
        EXPECT_NEAR(f.count(0, 0, 400, 300, kRed), c.redCount, 300);
    }
}

// The clip box follows the placement of the page, refreshed only when it changes.
TEST_F(ViewDraw, ClipFollowsZoomAndPosition)
{
    ViewBuilder b = page();
    clippedGroup(b, 100, 100, 150, 150);
    VIEW_STRUCT* v = load(b);
    const ELEMENT_STRUCT* group = v->elements;
    draw(v, 0, 0, 1);
    EXPECT_EQ(group->scissorWidth, 50);
    draw(v, 0, 0, 1.01f); // not more than 0.01: kept
    EXPECT_EQ(group->scissorWidth, 50);
    draw(v, 0, 0, 1.02f);
    EXPECT_EQ(group->scissorWidth, 51);
    draw(v, 1, 0, 1.02f);
    EXPECT_EQ(group->scissorX, 103);
    for (int type : {0, 1}) {
        krViewSetScissorType(v, type);
        // Units 100..150 land on 10 + 200..300 and 20 + 200..300.
        Frame f = draw(v, 10, 20, 2);
        EXPECT_TRUE(PixelIs(f, 250, 270, kRed)) << type;
        EXPECT_TRUE(PixelIs(f, 215, 225, kRed)) << type;
        EXPECT_TRUE(PixelIs(f, 205, 270, kPage, 2)) << type;
        EXPECT_TRUE(PixelIs(f, 250, 215, kPage, 2)) << type;
        EXPECT_TRUE(PixelIs(f, 315, 270, kPage, 2)) << type;
    }
    EXPECT_EQ(group->scissorX, 210);
    EXPECT_EQ(group->scissorWidth, 100);
}

TEST_F(ViewDraw, ScissorOutsideAGroupClipsNothing)
{
    ViewBuilder b = page();
    b.scissor(0, 0, 10, 10).rect(filled(100, 100, 200, 200, kRed));
    VIEW_STRUCT* v = load(b);
    Frame f = draw(v);
    EXPECT_TRUE(PixelIs(f, 150, 150, kRed));
    // A stopped view doesn't show scissors: the walk draws them only when a host asks with clip 0.
    EXPECT_EQ(f.count(0, 0, 20, 20, kPage, 2), 400);
}

TEST_F(ViewDraw, SelectedGroupShowsItsRedOutlineWhileStopped)
{
    ViewBuilder b = page();
    b.beginGroup(2).rect(filled(100, 100, 120, 120, kBlue)).rect(filled(280, 180, 300, 200, kBlue)).endGroup();
    VIEW_STRUCT* v = load(b);
    v->elements->selected = 1;
    Frame f = draw(v);
    // The dashed outline runs along the box 100..300 x 100..200: some of its pixels are red.
    EXPECT_GT(f.count(130, 197, 270, 202, kRed, 60), 20);
    EXPECT_GT(f.count(297, 130, 302, 170, kRed, 60), 10);
    EXPECT_EQ(f.count(130, 130, 270, 170, kRed, 60), 0);
    v->elements->selected = 0;
    Frame g = draw(v);
    EXPECT_EQ(g.count(0, 0, 400, 300, kRed, 60), 0);
}

TEST_F(ViewDraw, DirectEntryPaintsThePageAndSpreadsDepth)
{
    ViewBuilder b;
    b.page(0, 0, 200, 100, 0, 1, 0);
    b.rect(filled(20, 20, 80, 80, kRed)).rect(filled(50, 50, 120, 90, kBlue));
    VIEW_STRUCT* v = load(b);
    krViewSetUseDepthBuffer(v, 1);
    draw(v, 0, 0, 1); // the direct entry draws where the last draw placed the page

    glClearColor(0, 0, 0, 0);
    glClearDepth(1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDepthFunc(GL_LESS);
    krdSetViewport(kSurfaceWidth, kSurfaceHeight);
    ASSERT_EQ(krViewDrawPlane_Direct(v), 0);
    Frame f = Frame::grab();
    EXPECT_TRUE(PixelIs(f, 150, 20, kGreen));   // page inside its 200 x 100
    EXPECT_TRUE(PixelIs(f, 250, 50, kBlack));   // beyond the page
    EXPECT_TRUE(PixelIs(f, 30, 30, kRed));
    EXPECT_TRUE(PixelIs(f, 60, 60, kBlue));     // the later element wins with depth test on
    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));   // restored

    krSetBackgroundMode(v, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    ASSERT_EQ(krViewDrawPlane(v, 2), 0);
    Frame g = Frame::grab();
    EXPECT_TRUE(PixelIs(g, 150, 20, kBlack));
    EXPECT_TRUE(PixelIs(g, 30, 30, kRed));
}

TEST_F(ViewDraw, WindowEntryDrawsInTheCurrentMatrices)
{
    ViewBuilder b;
    b.page(0, 0, 200, 100, 0, 0, 0);
    b.rect(filled(20, 20, 40, 40, kRed));
    VIEW_STRUCT* v = load(b);
    krdSetViewport(kSurfaceWidth, kSurfaceHeight);
    glClear(GL_COLOR_BUFFER_BIT);
    glTranslatef(100, 50, 0);
    ASSERT_EQ(krViewDrawWindow(v), 0);
    glLoadIdentity();
    Frame f = Frame::grab();
    EXPECT_TRUE(PixelIs(f, 130, 80, kRed));
    EXPECT_TRUE(PixelIs(f, 30, 30, kBlack));
}

// A group without a scissor leaves the stencil alone; one with a scissor leaves no test on.
TEST_F(ViewDraw, DrawLeavesTheHostsStateAsItWas)
{
    ViewBuilder plain = page(), clipped = page();
    plain.beginGroup(1).rect(filled(0, 0, 100, 100, kRed)).endGroup();
    clippedGroup(clipped, 100, 100, 200, 150);
    for (const ViewBuilder* b : {&plain, &clipped}) {
        VIEW_STRUCT* v = load(*b);
        glClearStencil(7);
        glClear(GL_STENCIL_BUFFER_BIT);
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, 400, 300);
        glLineWidth(3);
        draw(v);
        GLfloat width = 0;
        glGetFloatv(GL_LINE_WIDTH, &width);
        EXPECT_FLOAT_EQ(width, 3);
        EXPECT_FALSE(glIsEnabled(GL_STENCIL_TEST));
        GLubyte stencil = 0;
        glReadPixels(50, 50, 1, 1, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, &stencil);
        if (b == &plain) {
            EXPECT_EQ(stencil, 7);
        }
        glDisable(GL_SCISSOR_TEST);
        glLineWidth(1);
        glClearStencil(0);
    }
}

} // namespace
