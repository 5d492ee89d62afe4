// The line styles and fill patterns that style numbers in view files refer to. Stored views
// depend on every bit, so the patterns are generated from their defining rules, once, at first use.
#include "graphics/graphics.h"
#include "base/md5.h"

#include <array>

namespace {

// Differences of column and row go negative; the rules want a remainder in 0..n-1.
constexpr int wrap(int a, int n)
{
    return (a % n + n) % n;
}

constexpr bool oneOf(int v, int a, int b, int c)
{
    return v == a || v == b || v == c;
}

// Whether pattern `number` covers column c, row r (both 0..31, row 0 drawn at the bottom).
constexpr bool covers(int number, int c, int r)
{
    const int up = c + r;   // constant along rising diagonals
    const int down = c - r; // constant along falling diagonals
    switch (number) {
    case 1: return up % 2 == 1;
    case 2: case 3: case 4: case 5: {
        const int n = 2 << (number - 2);
        return (c / n + r / n) % 2 == 0;
    }
    case 6: case 7: case 8: case 9: {
        const int n = 2 << (number - 6);
        return c % n == 0 && r % n == 0;
    }
    case 10: case 11: case 12: case 13: {
        const int n = 4 << (number - 10);
        return c % n == 0 || r % n == 0;
    }
    case 14: return up % 4 == 3;
    case 15: return up % 8 == 7;
    case 17: return up % 16 == 15;
    case 19: return up % 32 == 31;
    case 16: return oneOf(up % 8, 7, 0, 1);
    case 18: return oneOf(up % 16, 15, 0, 1);
    case 20: return oneOf(up % 32, 30, 31, 0);
    case 21: return wrap(down, 4) == 0;
    case 22: return wrap(down, 8) == 0;
    case 24: return wrap(down, 16) == 0;
    case 26: return wrap(down, 32) == 0;
    case 23: return oneOf(wrap(down, 8), 6, 7, 0);
    case 25: return oneOf(wrap(down, 16), 14, 15, 0);
    case 27: return oneOf(wrap(down, 32), 31, 0, 1);
    case 28: return wrap(down, 8) == 0 || up % 8 == 0;
    case 29: return wrap(down, 16) == 0 || up % 16 == 0;
    case 30: return oneOf(wrap(down, 16), 15, 0, 1) || oneOf(up % 16, 15, 0, 1);
    case 31: return wrap(down, 32) == 0 || up % 32 == 31;
    case 32: return oneOf(wrap(down, 32), 31, 0, 1) || oneOf(up % 32, 30, 31, 0);
    case 33: return r % 2 == 0;
    case 34: return r % 4 == 0;
    case 36: return r % 8 == 0;
    case 38: return r % 16 == 0;
    case 40: return r % 32 == 0;
    case 35: case 37: case 39: case 41: {
        const int n = 2 << ((number - 35) / 2);
        return (r / n) % 2 == 0;
    }
    case 42: return c % 2 == 0;
    case 43: return c % 4 == 0;
    case 45: return c % 8 == 0;
    case 47: return c % 16 == 0;
    case 49: return c % 32 == 0;
    case 44: case 46: case 48: case 50: {
        const int n = 2 << ((number - 44) / 2);
        return (c / n) % 2 == 0;
    }
    case 51: return c % 8 == r % 4 || c % 8 == 7 - r % 4;
    case 52: return r % 8 < 4 ? c % 4 == r % 8 : c % 4 == 7 - r % 8;
    case 53: return c % 8 < 4 && r % 8 < 4 && (c % 8 == 0 || c % 8 == 3 || r % 8 == 0 || r % 8 == 3);
    case 54: return c % 8 < 4 && r % 8 < 4;
    case 55: return c / 4 == 7 - r % 8;
    case 56: return c / 4 == r % 8;
    case 57: return c % 8 == r / 4;
    case 58: return c % 8 == 7 - r / 4;
    case 59: {
        constexpr unsigned char diamond[8] = {0x18, 0x24, 0x42, 0x81, 0x81, 0x42, 0x24, 0x18};
        return c % 16 < 8 && r % 16 < 8 && ((diamond[r % 16] >> (7 - c % 16)) & 1) != 0;
    }
    default: return true; // pattern 0: solid
    }
}

struct PatternTable {
    uint8_t bytes[kFillPatternCount][kFillPatternBytes];
};

// Laid out as glPolygonStipple reads it: row 0 first, the leftmost column in the high bit.
PatternTable makePatterns()
{
    PatternTable table{};
    for (int number = 0; number < kFillPatternCount; ++number)
        for (int r = 0; r < 32; ++r)
            for (int c = 0; c < 32; ++c)
                if (covers(number, c, r))
                    table.bytes[number][r * 4 + c / 8] |= uint8_t(0x80 >> (c % 8));
    return table;
}

// Built at run time: as a compile-time table it takes more evaluation steps than some
// compilers allow.
const PatternTable& patterns()
{
    static const PatternTable table = makePatterns();
    return table;
}

constexpr uint16_t kLineStyles[kLineStyleCount] = {0xFFFF, 0xAAAA, 0xCCCC, 0xF0F0, 0xFF00,
                                                   0x8888, 0x8080, 0x8181, 0xEEEE, 0x0C0F};

// Negative numbers count as large unsigned ones and fall back to the solid fill.
int patternIndex(int number)
{
    return unsigned(number) < kFillPatternCount ? number : 0;
}

} // namespace

const uint8_t* getPattern(int number)
{
    return patterns().bytes[patternIndex(number)];
}

const uint8_t* getPatternHash(int number)
{
    // A function-local static: the first caller digests, concurrent first callers wait for it.
    static const std::array<Md5Hash, kFillPatternCount> digests = [] {
        std::array<Md5Hash, kFillPatternCount> table;
        Md5 md5;
        for (int n = 0; n < kFillPatternCount; ++n)
            table[n] = md5.getMd5(getPattern(n), kFillPatternBytes);
        return table;
    }();
    return digests[patternIndex(number)].bytes;
}

int getLineStipple(int style, int32_t* factor, uint16_t* pattern)
{
    *factor = 1;
    *pattern = kLineStyles[unsigned(style) < kLineStyleCount ? style : 0];
    return 0;
}
