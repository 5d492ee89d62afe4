// The Calculator: variables computed from the view's other variables, cycle by cycle, in the order
// of the source list, stored by their own type and passed on to other sources by OUTPUT.
#include "KshmSegment.h"
#include "PluginDirs.h"
#include "LoadedView.h"
#include "actions/actions.h"
#include "dataViews.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

// A host with engine functions of these names of its own: the library keeps using its own.
extern "C" {
int parse(void*)
{
    return -1;
}
double evaluate(void*)
{
    return -99.0;
}
void cleanup(void*) {}
}

namespace {

constexpr int kExampleType = 100;

VariableFields computed(const std::string& name, const std::string& formula, int type = KR_VAR_DOUBLE,
                        const std::string& output = "")
{
    return VariableFields{type, name, "", {{0, formula}, {0, output}}, std::max(64, int(formula.size()) + 1)};
}

SourceFields calculator(std::vector<VariableFields> variables)
{
    return SourceFields{KRD_TYPE_CALCULATOR, {}, 2, std::move(variables)};
}

std::string nested(int levels, const std::string& open, const std::string& inner)
{
    std::string text;
    for (int i = 0; i < levels; ++i)
        text += open;
    return text + inner + std::string(size_t(levels), ')');
}

class Calculator : public ViewTest {};

// Each draw of mode 1 runs one cycle: a Calculator before a source sees its value of the last
// cycle, one after it the present one; names read their own and each other's last values, and
// every result is stored by the variable's type.
TEST_F(Calculator, ComputesInListOrderAndStoresByType)
{
    PluginDirs home(PluginDirs::Home::PluginDir);
    const SourceFields example{kExampleType, {{0, "0"}, {0, "label"}}, 1, {{KR_VAR_INT32, "EX_RUNS", "", {{0, "RUNS"}}}}};
    VIEW_STRUCT* view = load(viewWith(
        {calculator({computed("before", "EX_RUNS * 2"), computed("y", "y + 1"), computed("a", "b + 1"),
                     computed("b", "a + 1"), computed("unknown", "nosuch + 5"), computed("text", "3.5", KR_VAR_TEXT),
                     computed("byte", "300", KR_VAR_UINT8), computed("long", "-5", KR_VAR_INT64),
                     computed("overflow", "1 / 0", KR_VAR_INT32), computed("nan", "0 / 0", KR_VAR_INT32),
                     computed("toConstant", "42", KR_VAR_INT32, "konst")}),
         example, SourceFields{KRD_TYPE_CONSTANT, {}, 1, {{KR_VAR_INT32, "konst", "", {{0, "7"}}}}},
         calculator({computed("after", "EX_RUNS * 2")})}));
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(krViewStart(view), 0);
    const int n = 5;
    for (int i = 0; i < n; ++i)
        draw(view);
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"before", "8.000000"},    {"after", "10.000000"}, {"y", "5.000000"},         {"a", "9.000000"},
        {"b", "10.000000"},        {"unknown", "5.000000"}, {"text", "3.500000"},     {"byte", "44"},
        {"long", "4294967291"},    {"overflow", "2147483647"}, {"nan", "0"},
        // Written by OUTPUT, then overwritten by the constant's own Get later in the cycle.
        {"konst", "7"},
    };
    for (const auto& [name, value] : expected)
        EXPECT_EQ(read(view, name), value) << name;
    EXPECT_EQ(krViewStop(view), 0);
}

// Deep nesting evaluates on the data thread without recursion; a text far beyond any sensible
// size is refused when the view starts, with one line, and its variable reads 0.
TEST(CalculatorDepth, DeepExpressionsOnTheDataThread)
{
    setLogLevel(2);
    takeLog();
    LoadedView loaded(viewWith({calculator({computed("sum", nested(10000, "1+(", "1")),
                                            computed("signs", nested(10000, "-(", "1")),
                                            computed("huge", nested(1000000, "1+(", "1"))})}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(krViewStartAnim(view), 0);
    EXPECT_TRUE(waitFor([&] { return read(view, "sum") == "10001.000000"; })) << read(view, "sum");
    EXPECT_EQ(read(view, "signs"), "1.000000");
    EXPECT_EQ(read(view, "huge"), "0.000000");
    EXPECT_EQ(krViewStop(view), 0);
    const std::string log = takeLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
}

// OUTPUT reaches a big-endian segment, swapped, in the cycle when the segment's source comes
// later; a Calculator before a segment that rebuilds its variables at start reads the new ones.
TEST(CalculatorOutput, ReachesASegmentAndReadsItsRebuiltVariables)
{
    KshmSegment segment(uniqueKshmKey(1), 4096);
    ASSERT_TRUE(segment.ok());
    segment.writeDirectory({{"level", 2}});
    const float level = 2.5f;
    segment.put(KshmSegment::valueOffset(0), &level, sizeof level, false);
    char key[16];
    snprintf(key, sizeof key, "0x%x", unsigned(segment.key()));
    const SourceFields bigEndian{KRD_TYPE_SHARED_MEMORY, {{0, key}, {0, ""}, {0, ""}, {0, ""}}, 1,
                                 {{KR_VAR_INT32, "target", "", {{0, "16"}}}}};
    const SourceFields autoLoad{KRD_TYPE_SHARED_MEMORY, {{0, key}, {1, ""}, {1, ""}, {0, ""}}, 1,
                                {{KR_VAR_FLOAT, "stale", "", {{0, "0"}}}}};
    LoadedView loaded(viewWith({calculator({computed("out", "16909060", KR_VAR_INT32, "target"),
                                            computed("twice", "level * 2"), computed("old", "stale + 1")}),
                                bigEndian, autoLoad}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(krViewStart(view), 0);
    // The Calculator comes first: the segment's values reach it one cycle later.
    fillDP(view->dataTypes);
    fillDP(view->dataTypes);
    const std::vector<uint8_t> written(segment.bytes() + 16, segment.bytes() + 20);
    EXPECT_EQ(written, std::vector<uint8_t>({1, 2, 3, 4}));
    EXPECT_EQ(read(view, "twice") + " " + read(view, "old"), "5.000000 1.000000");
    EXPECT_EQ(krViewStop(view), 0);
}

} // namespace
