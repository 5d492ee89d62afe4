// Pictures as a user sees them: drawn into a real GL surface and read back, tinted and faded
// by the fill colour, and shown again in a context that replaced the one they were made in.
#include "OffscreenGl.h"
#include "ViewFixture.h"

#include <GL/gl.h>

#include <algorithm>
#include <string>

using namespace k2dtest;
using namespace korelgen;

namespace {

const Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255}, kWhite{255, 255, 255}, kBlack{0, 0, 0};
const Rgb kAsStored[4] = {kRed, kGreen, kBlue, kWhite};

// A 100-unit square at (x0, 100): red, green in the first pixel row, blue, white in the second.
ImageFields quartered(float x0, uint8_t whiteAlpha = 255)
{
    return {x0, 100, x0 + 100, 200, {1, 1, 1, 1}, 2, 2, 0,
            {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, whiteAlpha}};
}

// Quadrant centres: lower left, lower right, upper left, upper right. The window maps 400 units
// onto 399 pixels, so linear filtering mixes in a trace of the neighbours.
::testing::AssertionResult shows(const Frame& f, int x0, const Rgb* colours)
{
    for (int k = 0; k < 4; ++k)
        if (::testing::AssertionResult r = PixelIs(f, x0 + 25 + 50 * (k % 2), 125 + 50 * (k / 2), colours[k], 16); !r)
            return r << " in quadrant " << k;
    return ::testing::AssertionSuccess();
}

using ImageDraw = ViewTest;

// The first pixel row runs along corners 0 to 3 (the lower edge). The fill colour multiplies
// the picture, its alpha blends with the page (black), and so does the picture's own.
TEST_F(ImageDraw, PixelsFillTheirQuadrantsTintedAndFaded)
{
    const Rgb redTint[4] = {kRed, kBlack, kBlack, kRed}, seeThrough[4] = {kRed, kGreen, kBlue, kBlack};
    const Rgb halfFaded[4] = {{128, 0, 0}, {0, 128, 0}, {0, 0, 128}, {128, 128, 128}};
    const struct { float tint[4]; uint8_t whiteAlpha; const Rgb* expected; } cases[] = {
        {{1, 1, 1, 1}, 255, kAsStored}, {{1, 0, 0, 1}, 255, redTint}, {{1, 1, 1, 0.5f}, 255, halfFaded},
        {{1, 1, 1, 1}, 0, seeThrough}};
    for (const auto& c : cases) {
        ImageFields f = quartered(100, c.whiteAlpha);
        std::copy(c.tint, c.tint + 4, f.tint);
        const Frame frame = draw(load(blackPage().image(f)));
        EXPECT_TRUE(shows(frame, 100, c.expected)) << "case " << &c - cases;
        // Drawing leaves the picture's texture bound: opaque pictures need no alpha channel.
        GLint format = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
        EXPECT_EQ(format, c.whiteAlpha == 255 ? GL_RGB : GL_RGBA);
        EXPECT_EQ(frame.count(0, 0, 400, 100, kBlack) + frame.count(200, 100, 400, 200, kBlack), 400 * 100 + 200 * 100);
    }
}

// Loaded before any context exists, pictures show at the first draw, and a context that
// replaces that one shows them all at its first frame, without a call from the host. A picture
// wider than the driver's limit never shows and says why at each try; the rest draws.
TEST_F(ImageDraw, PicturesOutliveTheirContextUnlessTooLarge)
{
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    ImageFields wide = quartered(0);
    wide.width = limit + 1, wide.height = 1;
    wide.pixels.assign(size_t(limit + 1) * 4, 255);
    releaseGlContext();
    setLogLevel(2);
    takeLog();
    VIEW_STRUCT* v = load(blackPage().image(wide).image(quartered(150)).image(quartered(300)));
    EXPECT_NE(takeLog().find("Warning txCreateTexture: no valid openGL context !\n"), std::string::npos);
    std::string why;
    ASSERT_TRUE(ensureGlContext(&why)) << why;
    EXPECT_TRUE(shows(draw(v), 150, kAsStored));
    EXPECT_NE(takeLog().find("image too large max = " + std::to_string(limit) + "\n"), std::string::npos);
    setLogLevel(1);
    {
        OffscreenGl replacement;
        ASSERT_TRUE(replacement.openGlx(kSurfaceWidth, kSurfaceHeight, &why)) << why;
        const Frame f = draw(v);
        EXPECT_EQ(f.count(0, 100, 100, 200, kBlack), 100 * 100);
        EXPECT_TRUE(shows(f, 150, kAsStored));
        EXPECT_TRUE(shows(f, 300, kAsStored));
        // The texture names belong to this context: give them back here.
        krViewFree(v);
        views.clear();
    }
    ASSERT_TRUE(ensureGlContext(&why)) << why;
}

} // namespace
