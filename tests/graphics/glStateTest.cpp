#include "drawing.h"
#include "graphics/graphics.h"

#include <cmath>
#include <vector>

using k2dtest::Frame;
using k2dtest::PixelIs;
using k2dtest::Rgb;

namespace {

const Rgb kWhite{255, 255, 255};

class ColourFactor : public k2dtest::GraphicsTest {};
class AliasBlend : public k2dtest::GraphicsTest {};
class LineStipple : public k2dtest::GraphicsTest {};
class LineWidth : public k2dtest::GraphicsTest {};
class GlWrappers : public k2dtest::GraphicsTest {};

// Drawn as an element draws, over a blue page: a translucent factor blends even opaque colours.
TEST_F(ColourFactor, ScalesEveryDrawnColourClampedToUnitRange)
{
    struct Case {
        float factor[4], colour[3];
        Rgb expected;
    };
    // Grey shows the clamp: an unclamped red factor of 2 would double it to 204.
    const Case cases[] = {{{1, 0.5f, 1, 1}, {1, 1, 1}, {255, 128, 255}},  {{1, 0.5f, 1, 1}, {0.5f, 1, 0}, {128, 128, 0}},
                          {{2, -1, 0.5f, 1}, {1, 1, 1}, {255, 0, 128}},   {{2, -1, 0.5f, 1}, {0.4f, 0.4f, 0.4f}, {102, 0, 51}},
                          {{1, 1, 1, 0.5f}, {1, 0, 0}, {128, 0, 128}},    {{1, 1, 1, 1}, {1, 0, 0}, {255, 0, 0}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "factor " << c.factor[0] << ", " << c.factor[1] << ", " << c.factor[2]
                                        << ", " << c.factor[3]);
        tkClearColor(0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        kvSetColorFactor(c.factor[0], c.factor[1], c.factor[2], c.factor[3]);
        tkAliasBlend(0, 1);
        kvColor4f(c.colour[0], c.colour[1], c.colour[2], 1);
        quad(100, 100, 150, 150);
        EXPECT_TRUE(PixelIs(Frame::grab(), 125, 125, c.expected, 3));
    }
    // Switching to an opaque factor never turns blending off: that is left to each element.
    glEnable(GL_BLEND);
    kvSetColorFactor(1, 1, 1, 5);
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
}

// Antialiasing smooths and blends; below an alpha of 0.98 blending alone is switched on.
TEST_F(AliasBlend, AntialiasOrTranslucencyBlends)
{
    struct Case {
        int antialias;
        float alpha;
        bool smooth, blend;
    };
    for (const Case& c : {Case{1, 1, true, true}, Case{0, 1, false, false}, Case{0, 0.98f, false, false},
                          Case{0, std::nextafter(0.98f, 0.0f), false, true}}) {
        tkAliasBlend(c.antialias, c.alpha);
        EXPECT_EQ(bool(glIsEnabled(GL_LINE_SMOOTH)), c.smooth) << c.antialias << ", " << c.alpha;
        EXPECT_EQ(bool(glIsEnabled(GL_BLEND)), c.blend) << c.antialias << ", " << c.alpha;
    }
    tkClearColor(0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    tkAliasBlend(0, 0.5f);
    kvColor4f(1, 0, 0, 0.5f);
    quad(100, 100, 150, 150);
    EXPECT_TRUE(PixelIs(Frame::grab(), 125, 125, Rgb{128, 0, 128}, 3));
}

// A one-pixel line along row 150 from x = 10 to 330: 320 fragments, the stipple counter
// starting at the first one and reading the pattern from its lowest bit, `factor` pixels a bit.
TEST_F(LineStipple, PatternAndFactorReachThePixels)
{
    struct Case {
        int32_t factor;
        uint16_t pattern;
        bool stippled; // a full pattern at factor 1 is drawn solid, with stippling off
        int lit;
    };
    int32_t factor9 = 0;
    uint16_t pattern9 = 0;
    getLineStipple(9, &factor9, &pattern9); // on x4, off x6, on x2, off x4
    const Case cases[] = {{1, 0xF0F0, true, 160}, {1, 0xFFFF, false, 320}, {2, 0xFFFF, true, 320},
                          {2, 0xF0F0, true, 160}, {factor9, pattern9, true, 120}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "factor " << c.factor << ", pattern " << std::hex << c.pattern);
        glClear(GL_COLOR_BUFFER_BIT);
        tkLineStipple(c.factor, c.pattern);
        EXPECT_EQ(bool(glIsEnabled(GL_LINE_STIPPLE)), c.stippled);
        kvColor4f(1, 1, 1, 1);
        line(10, 150.5f, 330, 150.5f);
        const Frame frame = Frame::grab();
        EXPECT_EQ(frame.count(0, 150, k2dtest::kSurfaceWidth, 151, kWhite, 100), c.lit);
        for (int i = 0; i < 320; ++i)
            EXPECT_EQ(lit(frame, 10 + i, 150), bool(c.pattern >> (i / c.factor % 16) & 1)) << "pixel " << i;
    }
}

// Rows lit by a horizontal line at y = 150 in column 200.
int thickness()
{
    return Frame::grab().count(200, 130, 201, 170, kWhite, 100);
}

TEST_F(LineWidth, LineScaleMultipliesWidth)
{
    struct Case {
        float scale, width;
        int rows;
    };
    for (const Case& c : {Case{1, 2, 2}, Case{2, 2, 4}, Case{3, 3, 9}}) {
        glClear(GL_COLOR_BUFFER_BIT);
        kvSetLineScale(c.scale);
        tkLineWidth(c.width);
        kvColor4f(1, 1, 1, 1);
        line(10, 150, 390, 150);
        EXPECT_EQ(thickness(), c.rows) << "scale " << c.scale << ", width " << c.width;
    }
}

TEST_F(LineWidth, ZeroWidthIsRefusedAndKeepsTheLastOne)
{
    tkLineWidth(3);
    tkLineWidth(0);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_VALUE));
    GLfloat width = 0;
    glGetFloatv(GL_LINE_WIDTH, &width);
    EXPECT_FLOAT_EQ(width, 3);
}

TEST_F(GlWrappers, PopMatrixUndoesATransform)
{
    kvColor4f(1, 1, 1, 1);
    tkPushMatrix();
    glTranslatef(100, 0, 0);
    quad(10, 10, 20, 20);
    tkPopMatrix();
    quad(10, 50, 20, 60);
    const Frame frame = Frame::grab();
    EXPECT_EQ(frame.count(0, 0, 200, 100, kWhite, 100), 200) << "two 10 x 10 squares";
    EXPECT_TRUE(lit(frame, 115, 15) && lit(frame, 15, 55));
}

TEST_F(GlWrappers, ClearColourHasZeroAlpha)
{
    tkClearColor(0, 1, 0.5f);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_TRUE(PixelIs(Frame::grab(), 10, 10, Rgb{0, 255, 128}, 2));
    GLfloat clear[4] = {1, 1, 1, 1};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    EXPECT_EQ(clear[3], 0.0f);
}

// One test owns the lookup table, so that it can also see the table of zeros before a host sets one.
TEST(FastColour, IndexesTheHostTableByTruncatedSteps)
{
    EXPECT_EQ(getFastRGBcolor(0.5f, 0.5f, 0.5f), 0u) << "no table set yet: zeros";
    EXPECT_EQ(getFastRGBcolor(1, 1, 1), 0u);

    // Static: the layer keeps the pointer after the test.
    static std::vector<uint32_t> table(21 * 21 * 21);
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = uint32_t(100000 + i);
    setRgbColorIndex(table.data());

    EXPECT_EQ(getFastRGBcolor(0, 0, 0), 100000u);
    EXPECT_EQ(getFastRGBcolor(1, 1, 1), 100000u + 9260);
    // 10 * 441 + 5 * 21 + 2
    EXPECT_EQ(getFastRGBcolor(0.5f, 0.25f, 0.1f), 100000u + 4517);
    // 0.999 * 20 = 19.98, truncated to 19: 19 * 441
    EXPECT_EQ(getFastRGBcolor(0.999f, 0, 0), 100000u + 8379);
    // 0.35f * 20 is 6.99999988 in exact arithmetic but 7.0 once rounded to float, as a host's f32 maths gives.
    EXPECT_EQ(getFastRGBcolor(0, 0, 0.35f), 100000u + 7);
    table[441 * 20] = 42;
    EXPECT_EQ(getFastRGBcolor(1, 0, 0), 42u) << "the table is read, not copied";
}

} // namespace
