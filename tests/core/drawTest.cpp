// What a stopped view looks like on the screen: page, rectangles, groups and clipping,
// drawn through the flat interface into a real GL surface and read back pixel by pixel.
#include "ViewFixture.h"

#include <GL/gl.h>

#include <string>
#include <tuple>
#include <vector>

using namespace k2dtest;

namespace {

const Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255}, kBlack{0, 0, 0}, kWhite{255, 255, 255};
const Rgb kPage{51, 102, 153};

RectFields filled(float x0, float y0, float x1, float y1, Rgb c)
{
    return {x0, y0, x1, y1, 0, 1, 0, {1, 1, 1, 1}, 1, {c.r / 255.0f, c.g / 255.0f, c.b / 255.0f, 1}};
}

ViewBuilder page() { return ViewBuilder().page(0, 0, 400, 300, 0.2f, 0.4f, 0.6f); }

using ViewDraw = ViewTest;

// A stopped view doesn't show scissors, and one outside a group clips nothing.
TEST_F(ViewDraw, RectangleFillsItsCornersOnThePageColour)
{
    Frame f = draw(load(page().scissor(0, 0, 10, 10).rect(filled(100, 100, 200, 150, kRed))));
    EXPECT_TRUE(PixelIs(f, 102, 102, kRed) && PixelIs(f, 197, 147, kRed));
    // About 100 x 50 pixels are red, no more (the surface maps 400 units to 399 pixels); the
    // rest is the page.
    const int red = f.count(0, 0, 400, 300, kRed);
    EXPECT_TRUE(red > 96 * 48 && red < 101 * 51) << red;
    EXPECT_EQ(f.count(0, 0, 400, 300, kPage, 2), 400 * 300 - red);
}

// A chequered fill under a green outline five pixels wide.
TEST_F(ViewDraw, OutlineAndChequeredFill)
{
    RectFields s = filled(100, 100, 200, 200, kRed);
    s.strokeOn = 1, s.strokeWidth = 5, s.fillStyle = 1;
    s.stroke[0] = s.stroke[2] = 0; // green
    Frame f = draw(load(page().rect(s)));
    // The 5-pixel line reaches 2 pixels beyond the edge, not 4.
    EXPECT_TRUE(PixelIs(f, 100, 150, kGreen) && PixelIs(f, 98, 150, kGreen) && PixelIs(f, 95, 150, kPage));
    // Half the inside is red, and neighbours differ: the chequer has a period of one pixel.
    int red = f.count(110, 110, 190, 190, kRed);
    EXPECT_EQ(red + f.count(110, 110, 190, 190, kPage, 2), 80 * 80);
    EXPECT_NEAR(red, 80 * 80 / 2, 80);
    const bool first = PixelIs(f, 150, 150, kRed);
    EXPECT_TRUE(first != PixelIs(f, 151, 150, kRed) && first != PixelIs(f, 150, 151, kRed));
}

TEST_F(ViewDraw, ColourFactorScalesEveryColour)
{
    VIEW_STRUCT* v = load(page().rect(filled(100, 100, 200, 200, kWhite)));
    ASSERT_EQ(krViewSetColorFactor(v, 1, 0.5f, 0, 0.5f), 0);
    Frame f = draw(v);
    // Scaled to (255, 128, 0), then half blended with the page beneath (alpha below 1 blends
    // opaque elements too). The page colour is not a drawn element: it stays.
    EXPECT_TRUE(PixelIs(f, 150, 150, Rgb{153, 115, 76}, 4));
    EXPECT_TRUE(PixelIs(f, 50, 50, kPage, 2));
}

TEST_F(ViewDraw, PositionAndZoomPlaceThePage)
{
    VIEW_STRUCT* v = load(ViewBuilder().page(50, 40, 400, 300, 0, 0, 0).rect(filled(100, 100, 150, 150, kRed)));
    // Offset (20, 10) and zoom 2 from the page's corner (50, 40): units 100..150 land on
    // 20 + 100..200, 10 + 120..220.
    Frame f = draw(v, 20, 10, 2);
    EXPECT_TRUE(PixelIs(f, 125, 135, kRed) && PixelIs(f, 215, 225, kRed));
    EXPECT_TRUE(PixelIs(f, 115, 135, kBlack) && PixelIs(f, 125, 232, kBlack));
    // The page position is truncated for the host, the drawing keeps the fraction.
    draw(v, 10.7f, 0, 1);
    EXPECT_TRUE(v->posX == 10 && v->zoom == 1);
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
    const struct { int scissorType; bool nested; int redX, redY, pageX, pageY; int redCount; } cases[] = {
        {0, false, 150, 125, 90, 125, 100 * 50},
        {0, true, 225, 150, 275, 150, 50 * 100},
        {1, false, 150, 125, 150, 160, 100 * 50},
        {1, true, 275, 150, 150, 150, 150 * 100},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("scissor type " + std::to_string(c.scissorType) + (c.nested ? ", nested" : ""));
        ViewBuilder b = page();
        if (c.nested)
            clippedGroup(b.beginGroup(2).scissor(50, 50, 250, 250), 200, 100, 350, 200).endGroup();
        else
            clippedGroup(b, 100, 100, 200, 150);
        VIEW_STRUCT* v = load(b);
        krViewSetScissorType(v, c.scissorType);
        Frame f = draw(v);
        EXPECT_TRUE(PixelIs(f, c.redX, c.redY, kRed));
        EXPECT_TRUE(PixelIs(f, c.pageX, c.pageY, kPage, 2));
        EXPECT_NEAR(f.count(0, 0, 400, 300, kRed), c.redCount, 300);
    }
    // Other kinds larger than the box show only inside it; a box of no size hides them all.
    const struct { const char* what; void (*add)(ViewBuilder&); float size; } kinds[] = {
        {"text",
         [](ViewBuilder& b) { b.text({4, 150, 100, {1, 1, 1, 1}, 4, {1, 0, 0, 1}, "Arial", 1, 0, 90, 90, 0, "WWW"}); },
         50},
        {"image",
         [](ViewBuilder& b) { b.image({0, 0, 300, 300, {1, 1, 1, 1}, 2, 2, 0, std::vector<uint8_t>(16, 255)}); }, 50},
        {"slider", [](ViewBuilder& b) { b.slider({150, 125, 60, 200}); }, 50},
        {"graph frame",
         [](ViewBuilder& b) {
             korelgen::GraphFields g;
             g.x = g.y = 0, g.width = 400, g.height = 300, g.background[0] = g.background[3] = 1;
             b.graph(g);
         },
         50},
        {"rectangle, zero-size box", [](ViewBuilder& b) { b.rect(filled(0, 0, 400, 300, kRed)); }, 0},
    };
    for (int type : {0, 1})
        for (const auto& k : kinds) {
            ViewBuilder b = blackPage();
            k.add(b.beginGroup(2));
            VIEW_STRUCT* v = load(b.scissor(150 - k.size, 125 - k.size / 2, 150 + k.size, 125 + k.size / 2).endGroup());
            krViewSetScissorType(v, type);
            const Ink ink = draw(v).ink();
            EXPECT_TRUE(k.size ? ink.lit > 1000 && ink.x0 >= 99 && ink.y0 >= 99 && ink.x1 <= 201 && ink.y1 <= 151
                               : ink.lit == 0)
                << k.what << ", scissor type " << type;
        }
}

// The clip box follows the placement of the page, refreshed only when it changes.
TEST_F(ViewDraw, ClipFollowsZoomAndPosition)
{
    ViewBuilder b = page();
    VIEW_STRUCT* v = load(clippedGroup(b, 100, 100, 150, 150));
    const ELEMENT_STRUCT* group = v->elements;
    // A zoom that changes by no more than 0.01 keeps the box.
    const std::tuple<float, float, int, int> placements[] = {
        {0, 1, 100, 50}, {0, 1.01f, 100, 50}, {0, 1.02f, 102, 51}, {1, 1.02f, 103, 51}};
    for (const auto& [x, zoom, left, width] : placements) {
        draw(v, x, 0, zoom);
        EXPECT_EQ(std::make_pair(group->scissorX, group->scissorWidth), std::make_pair(left, width)) << zoom;
    }
    for (int type : {0, 1}) {
        krViewSetScissorType(v, type);
        // Units 100..150 land on 10 + 200..300 and 20 + 200..300.
        Frame f = draw(v, 10, 20, 2);
        EXPECT_TRUE(PixelIs(f, 215, 225, kRed)) << type;
        EXPECT_TRUE(PixelIs(f, 205, 270, kPage, 2)) << type;
        EXPECT_TRUE(PixelIs(f, 250, 215, kPage, 2)) << type;
    }
    EXPECT_EQ(std::make_pair(group->scissorX, group->scissorWidth), std::make_pair(210, 100));
}

// The plane and window entries draw into what the host has set up.
TEST_F(ViewDraw, DirectEntryPaintsThePageAndSpreadsDepth)
{
    ViewBuilder b;
    VIEW_STRUCT* v =
        load(b.page(0, 0, 200, 100, 0, 1, 0).rect(filled(20, 20, 80, 80, kRed)).rect(filled(50, 50, 120, 90, kBlue)));
    krViewSetUseDepthBuffer(v, 1);
    draw(v, 0, 0, 1); // the direct entry draws where the last draw placed the page

    glClearColor(0, 0, 0, 0);
    glClearDepth(1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDepthFunc(GL_LESS);
    krdSetViewport(kSurfaceWidth, kSurfaceHeight);
    ASSERT_EQ(krViewDrawPlane_Direct(v), 0);
    Frame f = Frame::grab();
    // The page inside its 200 x 100 only; the later element wins with depth test on, then off again.
    EXPECT_TRUE(PixelIs(f, 150, 20, kGreen) && PixelIs(f, 250, 50, kBlack));
    EXPECT_TRUE(PixelIs(f, 30, 30, kRed) && PixelIs(f, 60, 60, kBlue));
    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));

    krSetBackgroundMode(v, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    ASSERT_EQ(krViewDrawPlane(v, 2), 0);
    Frame g = Frame::grab();
    EXPECT_TRUE(PixelIs(g, 150, 20, kBlack) && PixelIs(g, 30, 30, kRed));

    // The window entry draws in the host's matrices: the red square moves by (100, 50).
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    krdSetViewport(kSurfaceWidth, kSurfaceHeight);
    glTranslatef(100, 50, 0);
    ASSERT_EQ(krViewDrawWindow(v), 0);
    glLoadIdentity();
    Frame w = Frame::grab();
    EXPECT_TRUE(PixelIs(w, 130, 80, kRed) && !PixelIs(w, 30, 30, kRed));
}

// The host's line width and stencil survive a draw: a group without a scissor leaves the
// stencil alone, one with a scissor leaves no test on.
TEST_F(ViewDraw, DrawLeavesTheHostsStateAsItWas)
{
    ViewBuilder plain = page(), clipped = page();
    plain.beginGroup(1).rect(filled(0, 0, 100, 100, kRed)).endGroup();
    clippedGroup(clipped, 100, 100, 200, 150);
    for (const ViewBuilder* b : {&plain, &clipped}) {
        glClearStencil(7);
        glClear(GL_STENCIL_BUFFER_BIT);
        glLineWidth(3);
        draw(load(*b));
        GLfloat width = 0;
        glGetFloatv(GL_LINE_WIDTH, &width);
        EXPECT_FLOAT_EQ(width, 3);
        EXPECT_FALSE(glIsEnabled(GL_STENCIL_TEST));
        GLubyte stencil = 0;
        glReadPixels(50, 50, 1, 1, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, &stencil);
        EXPECT_TRUE(b != &plain || stencil == 7) << int(stencil);
    }
    glLineWidth(1);
    glClearStencil(0);
}

} // namespace
