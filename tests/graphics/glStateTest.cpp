// The GL state layer as elements reach it: colours, blending, line styles and fill patterns,
// seen in the pixels of a real GL context in window-pixel coordinates.
#include "GlContext.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <array>
#include <climits>
#include <cstring>
#include <tuple>
#include <vector>

using k2dtest::Frame;
using k2dtest::Rgb;

namespace {

const Rgb kWhite{255, 255, 255};

class GraphicsTest : public k2dtest::GlTest {
protected:
    void SetUp() override
    {
        GlTest::SetUp();
        if (HasFatalFailure())
            return;
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, k2dtest::kSurfaceWidth, 0, k2dtest::kSurfaceHeight, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        // The layer's state outlives a test: start each one from a plain, opaque look.
        kvSetColorFactor(1, 1, 1, 1);
        kvSetLineScale(1);
        tkAliasBlend(0, 1);
        tkLineStipple(1, 0xFFFF);
        tkLineWidth(1);
        setStipple(0, nullptr);
    }

    static bool lit(const Frame& frame, int x, int y) { return frame.at(x, y).r > 127; }

    // A white 64 x 64 square at the window origin, where the stipple's row 0 and column 0 fall.
    static Frame drawPattern(int number, const uint8_t* bytes)
    {
        glClear(GL_COLOR_BUFFER_BIT);
        setStipple(number, bytes);
        kvColor4f(1, 1, 1, 1);
        glRectf(0, 0, 64, 64);
        setStipple(0, nullptr);
        return Frame::grab();
    }
};

class Blending : public GraphicsTest {};
class Lines : public GraphicsTest {};
class FillPatterns : public GraphicsTest {};

// Drawn as an element draws, over a blue page: a translucent factor or colour blends, and the
// page's clear colour is transparent.
TEST_F(Blending, ColourFactorScalesEveryDrawnColourClampedToUnitRange)
{
    // Grey shows the clamp: an unclamped red factor of 2 would double it to 204.
    const struct { float factor[4], colour[4]; Rgb expected; } cases[] = {
        {{1, 0.5f, 1, 1}, {1, 1, 1, 1}, {255, 128, 255}}, {{1, 0.5f, 1, 1}, {0.5f, 1, 0, 1}, {128, 128, 0}},
        {{2, -1, 0.5f, 1}, {1, 1, 1, 1}, {255, 0, 128}},  {{2, -1, 0.5f, 1}, {.4f, .4f, .4f, 1}, {102, 0, 51}},
        {{1, 1, 1, 0.5f}, {1, 0, 0, 1}, {128, 0, 128}},   {{1, 1, 1, 1}, {1, 0, 0, 1}, {255, 0, 0}},
        {{1, 1, 1, 1}, {1, 0, 0, 0.5f}, {128, 0, 128}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "row " << &c - cases);
        tkClearColor(0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        kvSetColorFactor(c.factor[0], c.factor[1], c.factor[2], c.factor[3]);
        tkAliasBlend(0, c.colour[3]);
        kvColor4f(c.colour[0], c.colour[1], c.colour[2], c.colour[3]);
        glRectf(100, 100, 150, 150);
        EXPECT_TRUE(k2dtest::PixelIs(Frame::grab(), 125, 125, c.expected, 3));
    }
    GLfloat clear[4] = {1, 1, 1, 1};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    EXPECT_EQ(clear[3], 0.0f);
}

// Styles 0 to 9 come from a table, any other number is solid, and solid lines are drawn with
// stippling off. A one-pixel line along row 150 from x = 10 to 330 shows the stipple counter
// starting at the first fragment and reading the pattern from its lowest bit, `factor` pixels a bit.
TEST_F(Lines, StylesAndStipplesReachThePixels)
{
    const uint16_t styles[10] = {0xFFFF, 0xAAAA, 0xCCCC, 0xF0F0, 0xFF00, 0x8888, 0x8080, 0x8181, 0xEEEE, 0x0C0F};
    std::vector<std::tuple<int32_t, uint16_t, bool>> cases = {{2, 0xFFFF, true}, {2, 0xF0F0, true}};
    for (int style : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 255, -1, INT_MIN}) {
        int32_t factor = 0;
        uint16_t pattern = 0;
        EXPECT_EQ(getLineStipple(style, &factor, &pattern), 0);
        EXPECT_EQ(factor, 1) << "style " << style;
        EXPECT_EQ(pattern, style >= 0 && style < 10 ? styles[style] : 0xFFFF) << "style " << style;
        cases.emplace_back(factor, pattern, style > 0 && style < 10);
    }
    for (const auto& [factor, pattern, stippled] : cases) {
        SCOPED_TRACE(testing::Message() << "factor " << factor << ", pattern " << std::hex << pattern);
        glClear(GL_COLOR_BUFFER_BIT);
        tkLineStipple(factor, pattern);
        EXPECT_EQ(bool(glIsEnabled(GL_LINE_STIPPLE)), stippled);
        kvColor4f(1, 1, 1, 1);
        tkBegin(GL_LINES);
        glVertex2f(10, 150.5f);
        glVertex2f(330, 150.5f);
        tkEnd();
        const Frame frame = Frame::grab();
        for (int i = -1; i <= 320; ++i) // and nothing beyond the ends
            EXPECT_EQ(lit(frame, 10 + i, 150), i >= 0 && i < 320 && (pattern >> (i / factor % 16) & 1)) << i;
    }
}

// One test owns the lookup table, so that it can also see the table of zeros before a host sets one.
TEST(FastColour, IndexesTheHostTableByTruncatedSteps)
{
    EXPECT_EQ(getFastRGBcolor(0.5f, 0.5f, 0.5f), 0u) << "no table set yet: zeros";

    // Static: the layer keeps the pointer after the test.
    static std::vector<uint32_t> table(21 * 21 * 21);
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = uint32_t(100000 + i);
    setRgbColorIndex(table.data());

    // Entry 441 r + 21 g + b of the steps: 0.999 * 20 = 19.98 is truncated to 19, and 0.35f * 20 is
    // 6.99999988 in exact arithmetic but 7.0 once rounded to float, as a host's f32 maths gives.
    const std::tuple<float, float, float, uint32_t> cases[] = {
        {1, 1, 1, 9260}, {0.5f, 0.25f, 0.1f, 4517}, {0.999f, 0, 0, 8379}, {0, 0, 0.35f, 7}};
    for (const auto& [r, g, b, index] : cases)
        EXPECT_EQ(getFastRGBcolor(r, g, b), 100000u + index) << r << ", " << g << ", " << b;
    table[441 * 20] = 42;
    EXPECT_EQ(getFastRGBcolor(1, 0, 0), 42u) << "the table is read, not copied";
}

// The table is fixed: a few rows worked by hand from the rules that made it, bit 7 of a byte
// its leftmost column, and a digest that holds every other byte of it in place. Patterns are
// matched back to their numbers by content, so no two may be alike; numbers outside the table
// give the solid fill.
TEST(FillPatternTable, KnownRowsDistinctPatternsAndSolidOutsideTheTable)
{
    const std::tuple<int, int, std::array<unsigned, 4>> rows[] = {
        {0, 31, {0xFF, 0xFF, 0xFF, 0xFF}},  // solid
        {2, 2, {0x33, 0x33, 0x33, 0x33}},   // 2 x 2 chequer, flipped every second row pair
        {16, 1, {0x83, 0x83, 0x83, 0x83}},  // three-pixel diagonal moving one column a row
        {55, 12, {0x00, 0x0F, 0x00, 0x00}}, // staircase of 4-pixel steps
    };
    for (const auto& [number, row, bytes] : rows) {
        const uint8_t* p = getPattern(number) + row * 4;
        EXPECT_EQ((std::array<unsigned, 4>{p[0], p[1], p[2], p[3]}), bytes) << number << ", row " << row;
    }
    uint64_t digest = 14695981039346656037u; // FNV-1a over the patterns in order
    for (int a = 0; a < kFillPatternCount; ++a) {
        for (int i = 0; i < kFillPatternBytes; ++i)
            digest = (digest ^ getPattern(a)[i]) * 1099511628211u;
        for (int b = a + 1; b < kFillPatternCount; ++b)
            EXPECT_NE(std::memcmp(getPattern(a), getPattern(b), kFillPatternBytes), 0) << a << " and " << b;
    }
    EXPECT_EQ(digest, 5920327559602568973u);
    for (int number : {60, -1, INT_MIN})
        EXPECT_EQ(getPattern(number), getPattern(0)) << number;
}

// Pattern 55 is a staircase: its row 0 holds columns 28..31 only, row 7 columns 0..3. Seen in
// the window, row 0 is the bottom row and the high bit of the first byte the left column. The
// bytes decide what is drawn; the number only switches the stipple on or off.
TEST_F(FillPatterns, RowZeroIsAtTheBottomAndTheBytesDecide)
{
    Frame frame = drawPattern(55, getPattern(55));
    EXPECT_TRUE(lit(frame, 29, 0) && !lit(frame, 2, 0) && lit(frame, 2, 7) && !lit(frame, 29, 7));
    EXPECT_TRUE(lit(frame, 29 + 32, 8)) << "the pattern tiles every 32 columns and 8 rows";
    EXPECT_EQ(frame.count(0, 0, 64, 64, kWhite, 100), 64 * 64 / 8);

    frame = drawPattern(7, getPattern(1));
    EXPECT_EQ(frame.count(0, 0, 64, 64, kWhite, 100), 2048);
    EXPECT_TRUE(lit(frame, 1, 0));
    EXPECT_EQ(drawPattern(0, getPattern(1)).count(0, 0, 64, 64, kWhite, 100), 4096);
}

} // namespace
