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

struct RowCase {
    int number;
    int row;
    std::array<unsigned, 4> bytes; // left to right
};

std::array<unsigned, 4> rowOf(int number, int row)
{
    const uint8_t* p = getPattern(number) + row * 4;
    return {p[0], p[1], p[2], p[3]};
}

// Worked by hand from the defining rules; c is the column, r the row, bit 7 of a byte its leftmost column.
const RowCase kRows[] = {
    {2, 0, {0xCC, 0xCC, 0xCC, 0xCC}},  // c/2 + 0 even: c = 0,1, 4,5 of each 4
    {2, 2, {0x33, 0x33, 0x33, 0x33}},  // r/2 = 1 flips the chequer
    {5, 0, {0xFF, 0xFF, 0x00, 0x00}},  // c/16 even: left half
    {5, 16, {0x00, 0x00, 0xFF, 0xFF}}, // r/16 = 1: right half
    {7, 0, {0x88, 0x88, 0x88, 0x88}},  // dots at c % 4 = 0
    {7, 1, {0x00, 0x00, 0x00, 0x00}},  // r % 4 != 0: empty
    {13, 0, {0xFF, 0xFF, 0xFF, 0xFF}}, // r % 32 = 0: full grid line
    {13, 1, {0x80, 0x00, 0x00, 0x00}}, // only c = 0
    {14, 0, {0x11, 0x11, 0x11, 0x11}}, // (c + 0) % 4 = 3: c = 3, 7
    {14, 1, {0x22, 0x22, 0x22, 0x22}}, // (c + 1) % 4 = 3: c = 2, 6
    {16, 0, {0xC1, 0xC1, 0xC1, 0xC1}}, // c % 8 in 7, 0, 1
    {16, 1, {0x83, 0x83, 0x83, 0x83}}, // (c + 1) % 8 in 7, 0, 1: c % 8 in 6, 7, 0
    {20, 0, {0x80, 0x00, 0x00, 0x03}}, // c in 30, 31, 0
    {20, 2, {0x00, 0x00, 0x00, 0x0E}}, // c + 2 in 30, 31, 32: c = 28, 29, 30
    {21, 0, {0x88, 0x88, 0x88, 0x88}}, // (c - 0) % 4 = 0
    {21, 1, {0x44, 0x44, 0x44, 0x44}}, // c = 1, 5; c = 0 gives -1, which is 3
    {23, 1, {0xC1, 0xC1, 0xC1, 0xC1}}, // (c - 1) % 8 in 6, 7, 0: c % 8 in 7, 0, 1; c = 0 gives 7
    {27, 0, {0xC0, 0x00, 0x00, 0x01}}, // (c - 0) % 32 in 31, 0, 1: c = 0, 1, 31
    {27, 31, {0x80, 0x00, 0x00, 0x03}}, // c - 31 in -1, 0, 1 mod 32: c = 30, 31, and 0 (-31 is 1)
    {28, 0, {0x80, 0x80, 0x80, 0x80}}, // c % 8 = 0 either way
    {28, 2, {0x22, 0x22, 0x22, 0x22}}, // (c - 2) % 8 = 0 at c % 8 = 2, (c + 2) % 8 = 0 at 6
    {28, 4, {0x08, 0x08, 0x08, 0x08}}, // both diagonals meet at c % 8 = 4
    {31, 0, {0x80, 0x00, 0x00, 0x01}}, // c = 0 falling, c = 31 rising
    {31, 16, {0x00, 0x01, 0x80, 0x00}}, // c = 16 falling, c = 15 rising
    {35, 1, {0xFF, 0xFF, 0xFF, 0xFF}}, // r/2 = 0 even
    {35, 2, {0x00, 0x00, 0x00, 0x00}}, // r/2 = 1 odd
    {40, 0, {0xFF, 0xFF, 0xFF, 0xFF}}, // one line every 32 rows
    {40, 1, {0x00, 0x00, 0x00, 0x00}},
    {41, 15, {0xFF, 0xFF, 0xFF, 0xFF}}, // r/16 = 0
    {41, 16, {0x00, 0x00, 0x00, 0x00}}, // r/16 = 1
    {44, 9, {0xCC, 0xCC, 0xCC, 0xCC}}, // c/2 even: c % 4 in 0, 1
    {49, 5, {0x80, 0x00, 0x00, 0x00}}, // c % 32 = 0
    {50, 7, {0xFF, 0xFF, 0x00, 0x00}}, // c/16 = 0
    // The figures.
    {51, 0, {0x81, 0x81, 0x81, 0x81}}, // c % 8 = 0 or 7
    {51, 1, {0x42, 0x42, 0x42, 0x42}}, // 1 or 6
    {51, 3, {0x18, 0x18, 0x18, 0x18}}, // 3 or 4
    {51, 6, {0x24, 0x24, 0x24, 0x24}}, // r % 4 = 2: 2 or 5
    {52, 0, {0x88, 0x88, 0x88, 0x88}}, // c % 4 = 0
    {52, 3, {0x11, 0x11, 0x11, 0x11}}, // c % 4 = 3
    {52, 4, {0x11, 0x11, 0x11, 0x11}}, // c % 4 = 7 - 4 = 3
    {52, 5, {0x22, 0x22, 0x22, 0x22}}, // c % 4 = 2
    {52, 7, {0x88, 0x88, 0x88, 0x88}}, // c % 4 = 0
    {53, 0, {0xF0, 0xF0, 0xF0, 0xF0}}, // top edge of a hollow 4 x 4 square
    {53, 1, {0x90, 0x90, 0x90, 0x90}}, // its sides at c % 8 = 0 and 3
    {53, 3, {0xF0, 0xF0, 0xF0, 0xF0}},
    {53, 4, {0x00, 0x00, 0x00, 0x00}}, // r % 8 = 4: the gap
    {54, 2, {0xF0, 0xF0, 0xF0, 0xF0}}, // filled 4 x 4 squares
    {54, 5, {0x00, 0x00, 0x00, 0x00}},
    {55, 0, {0x00, 0x00, 0x00, 0x0F}}, // c/4 = 7: c = 28..31
    {55, 1, {0x00, 0x00, 0x00, 0xF0}}, // c/4 = 6: c = 24..27
    {55, 7, {0xF0, 0x00, 0x00, 0x00}}, // c/4 = 0
    {55, 12, {0x00, 0x0F, 0x00, 0x00}}, // r % 8 = 4: c/4 = 3, c = 12..15
    {56, 0, {0xF0, 0x00, 0x00, 0x00}}, // c/4 = 0
    {56, 3, {0x00, 0x0F, 0x00, 0x00}}, // c = 12..15
    {56, 15, {0x00, 0x00, 0x00, 0x0F}}, // r % 8 = 7: c = 28..31
    {57, 0, {0x80, 0x80, 0x80, 0x80}}, // c % 8 = r/4 = 0
    {57, 5, {0x40, 0x40, 0x40, 0x40}}, // r/4 = 1
    {57, 31, {0x01, 0x01, 0x01, 0x01}}, // r/4 = 7
    {58, 0, {0x01, 0x01, 0x01, 0x01}}, // c % 8 = 7
    {58, 12, {0x08, 0x08, 0x08, 0x08}}, // 7 - 3 = 4
    {58, 31, {0x80, 0x80, 0x80, 0x80}}, // 7 - 7 = 0
    {59, 0, {0x18, 0x00, 0x18, 0x00}}, // first diamond byte in the left 8 of each 16 columns
    {59, 3, {0x81, 0x00, 0x81, 0x00}}, // its widest row
    {59, 8, {0x00, 0x00, 0x00, 0x00}}, // r % 16 = 8: the gap between diamonds
    {59, 21, {0x42, 0x00, 0x42, 0x00}}, // r % 16 = 5
};

TEST(FillPatternTable, RowsMatchHandWorkedBits)
{
    for (const RowCase& c : kRows)
        EXPECT_EQ(rowOf(c.number, c.row), c.bytes) << "pattern " << c.number << ", row " << c.row;
}

TEST_F(FillPatterns, PatternOneIsAPixelChequer)
{
    Frame frame = drawPattern(1);
    int wrong = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            wrong += lit(frame, x, y) != ((x + y) % 2 == 1);
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(litIn(frame, 0, 0, 64, 64), 2048);
    EXPECT_EQ(litIn(frame, 64, 0, 128, 64), 0) << "nothing outside the square";
}

TEST_F(FillPatterns, DotsRepeatAtTheirSpacing)
{
    for (int number = 6, n = 2; number <= 9; ++number, n *= 2) {
        SCOPED_TRACE(number);
        Frame frame = drawPattern(number);
        EXPECT_EQ(litIn(frame, 0, 0, 64, 64), (64 / n) * (64 / n));
        EXPECT_TRUE(lit(frame, 0, 0));
        EXPECT_TRUE(lit(frame, n, n));
        EXPECT_TRUE(lit(frame, 3 * n, 2 * n));
        EXPECT_FALSE(lit(frame, 1, 0));
        EXPECT_FALSE(lit(frame, n, n - 1));
    }
}

TEST_F(FillPatterns, GridsHaveFullRowsAndColumns)
{
    for (int number = 10, n = 4; number <= 13; ++number, n *= 2) {
        SCOPED_TRACE(number);
        Frame frame = drawPattern(number);
        EXPECT_EQ(litIn(frame, 0, 0, 64, 64), 64 * 64 - (64 - 64 / n) * (64 - 64 / n));
        EXPECT_EQ(litIn(frame, 0, n, 64, n + 1), 64) << "a grid row";
        EXPECT_EQ(litIn(frame, n, 0, n + 1, 64), 64) << "a grid column";
        EXPECT_EQ(litIn(frame, 0, 1, 64, 2), 64 / n) << "between grid rows only the columns";
    }
}

TEST_F(FillPatterns, LinesEveryOtherRowOrColumn)
{
    for (bool rows : {true, false}) {
        SCOPED_TRACE(rows ? "rows" : "columns");
        Frame frame = drawPattern(rows ? 33 : 42);
        // The one-pixel strip at position i: a full row, or a full column.
        auto strip = [&](int i) { return rows ? litIn(frame, 0, i, 64, i + 1) : litIn(frame, i, 0, i + 1, 64); };
        EXPECT_EQ(strip(0), 64);
        EXPECT_EQ(strip(1), 0);
        EXPECT_EQ(strip(62), 64);
        EXPECT_EQ(litIn(frame, 0, 0, 64, 64), 2048);
    }
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
