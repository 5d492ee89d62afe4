// Path texts as a view file holds them, turned into the points the "path" element keeps.
#include "xml/path.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

// The parser prints each token: kept off the console.
std::vector<PathPoints> parse(const std::string& text)
{
    CaptureStdout();
    std::vector<PathPoints> paths = Path().pointsFromString(text);
    GetCapturedStdout();
    return paths;
}

// "x y, x y | x y": sub-paths apart, four digits a coordinate.
std::string points(const std::string& text)
{
    std::ostringstream out;
    out.precision(4);
    for (const PathPoints& list : parse(text))
        for (size_t i = 0; i < list.size(); ++i)
            out << (i ? ", " : out.tellp() ? " | " : "") << list[i].x << ' ' << list[i].y;
    return out.str();
}

TEST(PathText, CommandsGiveTheirPoints)
{
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"M 0 0 L 10 0 L 10 10 Z", "0 0, 10 0, 10 10, 0 0"},
        {"M 0 0 L 1 1 M 5 5 L 6 6", "0 0, 1 1 | 5 5, 6 6"},
        {"m 5 5 l 1 0 z l 0 1", "5 5, 6 5, 0 0, 6 6"},
        {"M10,20L30,40", "10 20, 30 40"},
        {"M 0 0 L 5 5 6 6", "0 0, 5 5, 6 6"},
        {"M 0 0 H 10 20 v 5", "0 0, 10 0, 20 0, 20 5"},
        {"M 10-5 20", "10 20"},
        {"M 5\t6 7", "5 7"},
        {"5 5 M 1 x", "1 0"},
        // Flattened at one step for each 10/3 units of the chord, from t = 0.
        {"M 0 0 C 0 10 10 10 10 0", "0 0, 0 0, 2.593 6.667, 7.407 6.667, 10 0"},
        {"M 0 0 c 1 1 2 2 3 3", "0 0, 0 0, 2.25 2.25, 6 6"},
        {"M 0 0 C 0 5 10 5 10 0 S 20 -5 20 0",
         "0 0, 0 0, 2.593 3.333, 7.407 3.333, 10 0, 10 0, 12.59 -3.333, 17.41 -3.333, 20 0"},
        {"M 0 0 Q 5 5 10 0 T 20 0 30 0",
         "0 0, 0 0, 3.333 2.222, 6.667 2.222, 10 0, 10 0, 13.33 -2.222, 16.67 -2.222, 20 0"},
        // A repeated group starts where the letter did; an incomplete one still moves the point.
        {"M 0 0 Q 0 0 2 0 0 0 4 0", "0 0, 2 0, 0 0, 4 0"},
        {"M 0 0 C 1 1 2 2 l 1 1", "0 0, 3 3"},
        {"M 0 0 A 0 5 0 0 1 10 0", "0 0, 0 0, 10 0"},
        // A chord that isn't finite takes no steps.
        {"M 0 0 C 0 0 0 0 inf 0", "0 0, inf 0"},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(expected, points(text)) << text;
}

// Arcs of 51 points on their circle around (5, 0), from near the start to near the end through
// the side the sweep flag picks: radii too small for the chord grow to reach it.
TEST(PathText, ArcsPassThroughBothEnds)
{
    const std::pair<const char*, double> rows[] = {
        {"M 0 0 A 5 5 0 0 1 10 0", -5}, {"M 0 0 A 1 1 0 0 1 10 0", -5}, {"M 0 0 a 1 1 0 1 0.5 10 0", 5}};
    for (const auto& [text, middleY] : rows) {
        const std::vector<PathPoints> paths = parse(text);
        ASSERT_TRUE(paths.size() == 1 && paths[0].size() == 52) << text;
        const PathPoints& arc = paths[0];
        for (size_t i = 1; i < 52; ++i)
            EXPECT_NEAR(5, std::hypot(arc[i].x - 5, arc[i].y), 0.001) << text << i;
        const double ends = std::hypot(arc[1].x, arc[1].y) + std::hypot(arc[51].x - 10, arc[51].y);
        EXPECT_NEAR(0, ends + std::hypot(arc[26].x - 5, arc[26].y - middleY), 0.003) << text;
    }
}

// Tokens are printed as split; curves of absurd chords and texts of many of them stay bounded.
TEST(PathText, TokensArePrintedAndPointsBounded)
{
    CaptureStdout();
    Path().pointsFromString("M10-5,2");
    EXPECT_EQ(0u, GetCapturedStdout().find("Token <M>\nToken <10-5>\nToken <2>\n"));
    EXPECT_EQ(size_t(Path::kMaxCurveSteps) + 2, parse("M 0 0 C 0 0 0 0 1e300 0")[0].size());
    EXPECT_EQ(Path::kMaxPoints, parse("M 0 0 Q 0 0 1e9 0 0 0 -1e9 0")[0].size());
}

// Random runs of commands, numbers, absurd numbers and words run clean under the sanitizers,
// and never leave an empty sub-path.
TEST(PathText, GarbledTextsRunClean)
{
    const char* const tokens[] = {"M", "m", "L", "l", "H", "v", "C", "s", "Q", "T", "A", "a", "Z", "0", "5", "-3",
                                  "10", "1", "1e308", "-1e-308", "1e999", "nan", "-inf", "x", "0x1p9", "--", "1e-320"};
    std::mt19937 random(7);
    std::string wrong;
    CaptureStdout();
    for (int round = 0; round < 10000; ++round) {
        std::string text;
        for (int n = random() % 40; n > 0; --n)
            text += tokens[random() % std::size(tokens)] + std::string(" ");
        for (const PathPoints& list : Path().pointsFromString(text))
            if (list.empty())
                wrong = text;
    }
    GetCapturedStdout();
    EXPECT_EQ("", wrong);
}

} // namespace
