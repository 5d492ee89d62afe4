// Every type code through the conversions, at the edges that files, plug-ins and hosts reach.
// Buffers start as 0xAA bytes, so that what a code must leave alone shows.
#include "data/valueBuffer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr uint64_t kFill = 0xAAAAAAAAAAAAAAAAu;
constexpr int kUnknownType = KR_VAR_TEXT + 1;
constexpr TextRules kDecimal{10, false, LongWidth::Whole};
constexpr TextRules kAnyBase{0, false, LongWidth::LowHalf};
constexpr TextRules kHost{10, true, LongWidth::SignExtended32};

struct Buffer {
    char bytes[kTextBufferSize];
    Buffer() { memset(bytes, 0xAA, sizeof bytes); }
    std::string shown(int type) const
    {
        char text[kTextBufferSize];
        formatValue(text, bytes, type);
        return text;
    }
};

TEST(ValueBuffer, EveryCodeReadsWritesParsesAndFormats)
{
    // Rows with rules parse their text; the others write their number.
    const std::string tooLong(300, 'x');
    const struct {
        int type;
        double written;
        const TextRules* rules;
        const char* text;
        uint64_t bits;
        double read;
        std::string shown;
    } rows[] = {
        {KR_VAR_FLOAT, 2.5, nullptr, nullptr, 0xAAAAAAAA40200000, 2.5, "2.500000"},
        {KR_VAR_FLOAT, -kInf, nullptr, nullptr, 0xAAAAAAAAFF800000, -kInf, "-inf"},
        {KR_VAR_FLOAT, kNaN, nullptr, nullptr, 0xAAAAAAAA7FC00000, kNaN, "nan"},
        {KR_VAR_FLOAT, 0, &kHost, "0.1", 0xAAAAAAAA3DCCCCCD, 0.1f, "0.100000"},
        {KR_VAR_DOUBLE, 0.1, nullptr, nullptr, 0x3FB999999999999A, 0.1, "0.100000"},
        {KR_VAR_DOUBLE, 0, &kDecimal, "0.1", 0x3FB999999999999A, 0.1, "0.100000"},
        {KR_VAR_DOUBLE, 0, &kHost, "0.1", 0x3FB99999A0000000, 0.1f, "0.100000"}, // through a float
        {KR_VAR_INT8, -1.9, nullptr, nullptr, 0xAAAAAAAAAAAAAAFF, -1, "-1"},   // truncated toward zero
        {KR_VAR_INT8, 200, nullptr, nullptr, 0xAAAAAAAAAAAAAAC8, -56, "-56"}, // and cut to the width
        {KR_VAR_UINT8, kNaN, nullptr, nullptr, 0xAAAAAAAAAAAAAA00, 0, "0"},
        {KR_VAR_UINT8, 0, &kAnyBase, "010", 0xAAAAAAAAAAAAAA08, 8, "8"},
        {KR_VAR_UINT8, 0, &kDecimal, "010", 0xAAAAAAAAAAAAAA0A, 10, "10"},
        {KR_VAR_INT16, -70000, nullptr, nullptr, 0xAAAAAAAAAAAAEE90, -4464, "-4464"},
        {KR_VAR_UINT16, 70000, nullptr, nullptr, 0xAAAAAAAAAAAA1170, 4464, "4464"},
        {KR_VAR_UINT16, 0, &kHost, "-1", 0xAAAAAAAAAAAAFFFF, 65535, "65535"},
        {KR_VAR_INT32, -2147483649.0, nullptr, nullptr, 0xAAAAAAAA7FFFFFFF, 2147483647, "2147483647"},
        {KR_VAR_INT32, 0, &kAnyBase, "0x1F", 0xAAAAAAAA0000001F, 31, "31"},
        {KR_VAR_UINT32, 4294967295.0, nullptr, nullptr, 0xAAAAAAAAFFFFFFFF, 4294967295.0, "-1"}, // printed with %d
        {KR_VAR_UINT32, 0, &kDecimal, nullptr, 0xAAAAAAAA00000000, 0, "0"},
        {KR_VAR_INT64, -kInf, nullptr, nullptr, 0x8000000000000000, -9223372036854775808.0, "-9223372036854775808"},
        {KR_VAR_INT64, 0, &kDecimal, "-5000000000", 0xFFFFFFFED5FA0E00, -5000000000.0, "-5000000000"},
        // Only the low half of a long parsed with any base: the high half stays.
        {KR_VAR_INT64, 0, &kAnyBase, "-1", 0xAAAAAAAAFFFFFFFF, -6148914689804861441.0, "-6148914689804861441"},
        {KR_VAR_INT64, 0, &kHost, "5000000000", 0x000000002A05F200, 705032704, "705032704"},
        {KR_VAR_UINT64, -5, nullptr, nullptr, 0, 0, "0"},
        {KR_VAR_UINT64, kInf, nullptr, nullptr, 0xFFFFFFFFFFFFFFFF, 18446744073709551615.0, "-1"},
        {KR_VAR_UINT64, 0, &kHost, "-7", 0xFFFFFFFFFFFFFFF9, 18446744073709551609.0, "-7"},
        {KR_VAR_TEXT, 5, nullptr, nullptr, kFill, 0, std::string(255, '\xAA')}, // a text without end shows 255
        {KR_VAR_TEXT, 0, &kDecimal, "ab", 0xAAAAAAAAAA006261, 0, "ab"},
        {KR_VAR_TEXT, 0, &kHost, tooLong.c_str(), 0x7878787878787878, 0, std::string(255, 'x')},
        {kUnknownType, 5, nullptr, nullptr, kFill, 0, ""},
        {kUnknownType, 0, &kHost, "1", kFill, 0, ""},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << "row " << &r - rows);
        Buffer b;
        if (r.rules)
            parseValue(b.bytes, r.type, r.text, *r.rules);
        else
            writeValue(b.bytes, r.type, r.written);
        EXPECT_EQ(firstEightBytes(b.bytes), r.bits);
        const double read = readValue(b.bytes, r.type);
        EXPECT_TRUE(std::isnan(r.read) ? std::isnan(read) : read == r.read) << read;
        EXPECT_EQ(b.shown(r.type), r.shown);
    }
}

} // namespace
