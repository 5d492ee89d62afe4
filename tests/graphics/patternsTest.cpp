#include "drawing.h"
#include "graphics/graphics.h"

#include <array>
#include <climits>
#include <cstring>

using k2dtest::Frame;

namespace {

class FillPatterns : public k2dtest::GraphicsTest {
protected:
    // A white 64 x 64 square at the window origin, where the stipple's row 0 and column 0 fall.
    Frame drawPattern(int number, const uint8_t* bytes)
    {
        glClear(GL_COLOR_BUFFER_BIT);
        setStipple(number, bytes);
        kvColor4f(1, 1, 1, 1);
        quad(0, 0, 64, 64);
        setStipple(0, nullptr);
        return Frame::grab();
    }
    Frame drawPattern(int number) { return drawPattern(number, getPattern(number)); }

    static int litIn(const Frame& frame, int x0, int y0, int x1, int y1)
    {
        return frame.count(x0, y0, x1, y1, k2dtest::Rgb{255, 255, 255}, 100);
    }
};

// Styles 0 to 9 from the table; any other number is solid.
TEST(LineStyles, TableOfPatternsAndSolidOutsideIt)
{
    const uint16_t expected[10] = {0xFFFF, 0xAAAA, 0xCCCC, 0xF0F0, 0xFF00, 0x8888, 0x8080, 0x8181, 0xEEEE, 0x0C0F};
    for (int style : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 255, -1, INT_MIN}) {
        int32_t factor = 0;
        uint16_t pattern = 0;
        EXPECT_EQ(getLineStipple(style, &factor, &pattern), 0);
        EXPECT_EQ(factor, 1) << "style " << style;
        EXPECT_EQ(pattern, style >= 0 && style < 10 ? expected[style] : 0xFFFF) << "style " << style;
    }
}

TEST(FillPatternTable, OutOfRangeNumbersGiveTheSolidFill)
{
    const uint8_t* solid = getPattern(0);
    for (int i = 0; i < kFillPatternBytes; ++i)
        ASSERT_EQ(solid[i], 0xFF) << "byte " << i;
    EXPECT_EQ(getPattern(60), solid);
    EXPECT_EQ(getPattern(-1), solid);
    EXPECT_EQ(getPattern(INT_MIN), solid);
    EXPECT_NE(getPattern(59), solid);
}

// Patterns are matched back to their numbers by content, so no two may be alike.
TEST(FillPatternTable, EveryPatternIsDistinct)
{
    for (int a = 0; a < kFillPatternCount; ++a)
        for (int b = a + 1; b < kFillPatternCount; ++b)
            EXPECT_NE(std::memcmp(getPattern(a), getPattern(b), kFillPatternBytes), 0) << a << " and " << b;
}

// The table is fixed: a few rows worked by hand from the rules that made it, bit 7 of a byte
// its leftmost column, and a digest that holds every other byte of it in place.
TEST(FillPatternTable, KnownRowsAndTheWholeTableStayAsShipped)
{
    struct Row {
        int number, row;
        std::array<unsigned, 4> bytes; // left to right
    };
    const Row rows[] = {
        {2, 2, {0x33, 0x33, 0x33, 0x33}},   // 2 x 2 chequer, flipped every second row pair
        {5, 16, {0x00, 0x00, 0xFF, 0xFF}},  // 16 x 16 chequer, lower right half
        {13, 1, {0x80, 0x00, 0x00, 0x00}},  // 32-pixel grid: only column 0 between its lines
        {16, 1, {0x83, 0x83, 0x83, 0x83}},  // three-pixel diagonal moving one column a row
        {27, 31, {0x80, 0x00, 0x00, 0x03}}, // a diagonal wrapping at column 32
        {31, 16, {0x00, 0x01, 0x80, 0x00}}, // crossing diagonals meeting mid-row
        {55, 12, {0x00, 0x0F, 0x00, 0x00}}, // staircase of 4-pixel steps
        {59, 3, {0x81, 0x00, 0x81, 0x00}},  // the widest row of a diamond
    };
    for (const Row& r : rows) {
        const uint8_t* p = getPattern(r.number) + r.row * 4;
        EXPECT_EQ((std::array<unsigned, 4>{p[0], p[1], p[2], p[3]}), r.bytes) << r.number << ", row " << r.row;
    }
    uint64_t digest = 14695981039346656037u; // FNV-1a over the patterns in order
    for (int number = 0; number < kFillPatternCount; ++number)
        for (int i = 0; i < kFillPatternBytes; ++i)
            digest = (digest ^ getPattern(number)[i]) * 1099511628211u;
    EXPECT_EQ(digest, 5920327559602568973u);
}

// Pattern 55 is a staircase: its row 0 holds columns 28..31 only, row 7 columns 0..3.
// Seen in the window, row 0 is the bottom row and the high bit of the first byte the left column.
TEST_F(FillPatterns, RowZeroIsAtTheBottomAndHighBitAtTheLeft)
{
    Frame frame = drawPattern(55);
    EXPECT_TRUE(lit(frame, 29, 0));
    EXPECT_FALSE(lit(frame, 2, 0));
    EXPECT_TRUE(lit(frame, 2, 7));
    EXPECT_FALSE(lit(frame, 29, 7));
    EXPECT_TRUE(lit(frame, 29 + 32, 8)) << "the pattern tiles every 32 columns and 8 rows";
    EXPECT_EQ(litIn(frame, 0, 0, 64, 64), 64 * 64 / 8);
}

TEST_F(FillPatterns, NumberOnlySwitchesStippleOnOrOff)
{
    Frame chequer = drawPattern(7, getPattern(1));
    EXPECT_EQ(litIn(chequer, 0, 0, 64, 64), 2048) << "the bytes decide, not the number";
    EXPECT_TRUE(lit(chequer, 1, 0));

    Frame solid = drawPattern(0, getPattern(1));
    EXPECT_FALSE(glIsEnabled(GL_POLYGON_STIPPLE));
    EXPECT_EQ(litIn(solid, 0, 0, 64, 64), 4096);
}

} // namespace
