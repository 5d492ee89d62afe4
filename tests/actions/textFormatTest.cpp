// The text an action prints through a format typed into an editing tool or stored in a file:
// what a user meant comes out, and what printf can't take safely with one number is shown as
// typed instead of reaching printf.
#include "actions/textFormat.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

FormatArgument real(double v)
{
    return {FormatArgument::Real, v, 0, 0};
}

FormatArgument integer(int64_t v)
{
    return {FormatArgument::Signed, 0, v, 0};
}

std::string format(const char* text, const FormatArgument& argument, size_t size = 512)
{
    std::string out(size, '#');
    formatActionText(&out[0], size, text, argument);
    return out.c_str();
}

// The last rows give a buffer smaller than the text: it is cut, never overrun.
TEST(ActionTextFormat, OneConversionPrintsTheValue)
{
    const struct { const char* format; FormatArgument argument; std::string expected; size_t size = 512; } cases[] = {
        {"%5.1f km/h", real(42.25), " 42.2 km/h"},
        {"%d rpm", integer(-7), "-7 rpm"},
        {"%ld", integer(5000000000LL), "5000000000"},
        {"%hhd", integer(300), "300"},         // lengths give way to the value's own width
        {"%u", {FormatArgument::Unsigned, 0, 0, 18446744073709551615ULL}, "18446744073709551615"},
        {"%x", integer(255), "ff"},
        {"%.2e", integer(1500), "1.50e+03"},   // an integer through a real conversion
        {"%d", real(2.9), "2"},                // a real through an integer one: truncated
        {"%c", integer(65), "A"},
        {"100%% at %d", integer(3), "100% at 3"},
        {"level: %-6.2f|", real(-1.5), "level: -1.50 |"},
        {"%999d", integer(1), std::string(15, ' '), 16},
        {"%f", real(std::numeric_limits<double>::max()), "1797693", 8},
        {"%d", integer(42), "", 1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(format(c.format, c.argument, c.size), c.expected) << c.format;
}

TEST(ActionTextFormat, UnsafeFormatsAreShownAsTyped)
{
    for (const char* typed : {"%s", "%n", "%p", "%*d", "%.*f", "%d and %d", "%99999d", "%1.9999f", "%", "%l", "%$d"})
        EXPECT_EQ(format(typed, integer(12345)), typed) << typed;
    EXPECT_EQ(format(nullptr, integer(1)), "");
}

} // namespace
