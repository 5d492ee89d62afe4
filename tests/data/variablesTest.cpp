// Variables as a host and a source meet them: the services a source builds itself with, the
// built-in Constant and Internal sources, and reading and writing values by name.
//
// Tests about what a cycle leaves behind draw, since in mode 1 a draw is where a host's cycle
// happens.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewFixture.h"
#include "dataViews.h"
#include "actions/actions.h"
#include "data/data.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

const std::string kLong(300, 'x');

VariableFields var(int type, const std::string& name, const std::string& defaultValue = "",
                   const std::string& constant = "")
{
    return VariableFields{type, name, defaultValue, {{0, constant}}};
}

// Constant Data (2) keeps its value in its one variable parameter; Internal Data (5) has none.
SourceFields source(int id, std::vector<VariableFields> variables)
{
    return SourceFields{id, {}, id == 2 ? 1 : 0, std::move(variables)};
}

// What a plug-in builds its record with: a name cut to its field, the descriptions of its
// parameters with their item lists, and variables whose parameters follow those descriptions.
TEST(SourceServices, BuildTheRecordAPluginDescribes)
{
    DD_DATA_TYPE_STRUCT* source = createDataType(0);
    EXPECT_EQ(krdInit(source, std::string(70, 'n').c_str(), 4711, 7), 0);
    EXPECT_EQ(std::string(source->name), std::string(63, 'n'));
    EXPECT_EQ(krdOption(source, 0, 1, 3u, "MODE", "fast", std::string(40, 'i').c_str(), "off", nullptr), 0);
    // Button and formula parameters take no argument: the text after them still lands last.
    krdOption(source, 1, 0, 0u, "UNIT");
    krdOption(source, 1, 2, 0u, "ZERO", "Zero");
    krdOption(source, 1, 3, 5u, "FORMULA");
    krdOption(source, 1, 1, 0u, "RANGE", "low", "high", nullptr);
    krdOption(source, 1, 0, 0u, "NOTE");
    ASSERT_EQ(source->nrVar, 5);
    const OPTION_STRUCT& mode = source->dataOptions[0];
    ASSERT_EQ(mode.count, 3);
    EXPECT_EQ(std::string(mode.items) + "|" + (mode.items + 32) + "|" + (mode.items + 64),
              "fast|" + std::string(31, 'i') + "|off");

    EXPECT_EQ(krdAddVariable(source, "speed", KR_VAR_INT32, "km/h", 1, "front axle"), 0);
    const VARIABLE_STRUCT* speed = source->variables;
    ASSERT_EQ(speed->nrPara, 5);
    EXPECT_EQ(std::string(speed->para[0].sval) + "|" + speed->para[2].sval + "|" + std::to_string(speed->para[3].ival) +
                  "|" + speed->para[4].sval,
              "km/h||1|front axle");
    EXPECT_EQ(krdDeleteAllVariables(source), 0);
    EXPECT_EQ(krdGetAllVariables(source)[0], nullptr);
    delDataType(nullptr, source, 1);
}

// Each writer has its own rules of conversion: a Constant parses its VALUE each cycle, an
// Internal its default at start, krVarSetStr goes through a float for a double and cuts a long
// to 32 bits, and krVarSet copies the width of the type from the bytes it is given. What a host
// writes lasts until the source writes again or the view restarts from the defaults. The rows
// show which rules a writer follows; the value buffer test holds the rules' edges.
enum Writer { kConstant, kDefault, kSetStr, kSet };

class Variables : public ViewTest {};

TEST_F(Variables, EachWriterConvertsToTheTypeAndLastsUntilTheNextWrite)
{
    const struct {
        Writer by;
        int type;
        std::string text;
        std::string expected;
        int64_t raw;
    } rows[] = {
        {kConstant, KR_VAR_DOUBLE, "16777217", "16777217.000000", 0},
        {kConstant, KR_VAR_INT32, "0x10", "0", 0},
        {kConstant, KR_VAR_INT64, "-5000000000", "-5000000000", 0},
        {kConstant, KR_VAR_TEXT, "hello world", "hello world", 0},
        {kDefault, KR_VAR_UINT8, "010", "8", 0},
        {kDefault, KR_VAR_DOUBLE, "1e3", "1000.000000", 0},
        {kDefault, KR_VAR_INT64, "-1", "4294967295", 0}, // only the low half, as every transfer
        {kDefault, KR_VAR_TEXT, std::string(63, 'd'), std::string(63, 'd'), 0},
        {kSetStr, KR_VAR_DOUBLE, "16777217", "16777216.000000", 0},
        {kSetStr, KR_VAR_INT64, "4294967295", "-1", 0},
        {kSetStr, KR_VAR_TEXT, kLong, std::string(255, 'x'), 0},
        {kSet, KR_VAR_FLOAT, "", "1.250000", 0x3FA00000},
        {kSet, KR_VAR_DOUBLE, "", "0.100000", 0x3FB999999999999A}, // the bits of 1.25f and 0.1
        {kSet, KR_VAR_UINT8, "", "255", -1},
        {kSet, KR_VAR_INT16, "", "9029", 0x12345},
        {kSet, KR_VAR_UINT32, "", "-1294967296", 3000000000},
        {kSet, KR_VAR_UINT64, "", "5", 0x100000005},
        {kSet, KR_VAR_TEXT, kLong, std::string(255, 'x'), 0},
        {kSet, 11, "", "", -1}, // an unknown code stores nothing
    };
    std::vector<VariableFields> constants, internals;
    for (const auto& row : rows) {
        const std::string name = "v" + std::to_string(&row - rows);
        (row.by == kConstant ? constants : internals)
            .push_back(var(row.type, name, row.by == kDefault ? row.text : "", row.by == kConstant ? row.text : ""));
    }
    VIEW_STRUCT* view = load(viewWith({source(2, constants), source(5, internals)}));
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(krViewStart(view), 0);
    // Defaults only go through a Set entry, which a Constant lacks: nothing before the first cycle.
    EXPECT_EQ(read(view, "v0") + " " + read(view, "v4"), "0.000000 8");
    draw(view);
    for (const auto& row : rows) {
        const std::string name = "v" + std::to_string(&row - rows);
        SCOPED_TRACE(name + " from \"" + row.text.substr(0, 20) + "\"");
        const void* bytes = row.type == KR_VAR_TEXT ? row.text.c_str() : static_cast<const void*>(&row.raw);
        EXPECT_EQ(row.by == kSetStr ? krVarSetStr(view, name.c_str(), row.text.c_str())
                  : row.by == kSet  ? krVarSet(view, name.c_str(), bytes)
                                    : 1,
                  1);
        EXPECT_EQ(read(view, name), row.expected);
    }
    EXPECT_EQ(*static_cast<int64_t*>(krVarGetAddr(view, "v18")), 0); // nothing of the unknown code
    // The address given is the buffer that is read by name (v1, a Constant). A cycle writes the
    // Constant again but keeps what the host gave the Internal (v5); a restart begins again from
    // the defaults, and what krVarSet wrote (v13) is gone.
    *static_cast<int32_t*>(krVarGetAddr(view, "v1")) = 77;
    EXPECT_EQ(krVarSetStr(view, "v5", "2"), 1);
    EXPECT_EQ(read(view, "v1") + " " + read(view, "v5"), "77 2.000000");
    draw(view);
    EXPECT_EQ(read(view, "v1") + " " + read(view, "v5"), "0 2.000000");
    ASSERT_EQ(krViewStop(view), 0);
    ASSERT_EQ(krViewStart(view), 0);
    EXPECT_EQ(read(view, "v1") + " " + read(view, "v5") + " " + read(view, "v13"), "0 1000.000000 0");
}

// What a host gets by name before, while and after the view runs, and the parameters it edits:
// the Constant's VALUE is its parameter 0, and a new text is what the next cycle reads.
TEST(VariablesByName, ResultsSourcesAndParametersAsAHostMeetsThem)
{
    LoadedView loaded(
        viewWith({source(2, {var(KR_VAR_INT32, "shared", "", "3"), var(KR_VAR_FLOAT, "gain", "", "1")}),
                  source(5, {var(KR_VAR_TEXT, "shared"), var(KR_VAR_INT32, "own")})}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);
    char text[256];
    int32_t value = 1;
    VIEW_STRUCT notAView{};
    auto expectAll = [&](VIEW_STRUCT* in, const char* name, int set, int getStr) {
        EXPECT_EQ(krVarSet(in, name, &value), set) << name;
        EXPECT_EQ(krVarSetStr(in, name, "1"), set) << name;
        EXPECT_EQ(krVarGetStr(in, name, text), getStr) << name;
        EXPECT_EQ(krVarGetAddr(in, name) != nullptr, set == 1) << name;
    };
    expectAll(nullptr, "own", -1, -1);
    expectAll(&notAView, "own", -2, -2);
    expectAll(view, "own", -3, -3);
    const std::pair<const char*, int> holders[] = {{"shared", 2}, {"own", 5}, {"none", -1}, {nullptr, -1}};
    for (const auto& [name, type] : holders) // the first source holding the name
        EXPECT_EQ(krVarSource(view, name), type) << (name ? name : "null");
    VARIABLE_STRUCT* shared = view->dataTypes->next->variables;
    EXPECT_EQ(krVarType(shared), KR_VAR_TEXT);
    EXPECT_EQ(krVarReadWrite(shared), 0);
    VARIABLE_STRUCT* gain = view->dataTypes->variables->next;
    int ival = -1;
    EXPECT_EQ(krVarSetPara(gain, 0, 4, "12.5"), 0);
    EXPECT_EQ(krVarGetPara(gain, 0, &ival, text), 0);
    EXPECT_EQ(std::to_string(ival) + " " + text, "4 12.5");
    EXPECT_EQ(krVarSetPara(gain, 1, 0, "x"), -2);
    EXPECT_EQ(krVarGetPara(gain, -1, &ival, text), -2);

    for (int mode : {KR_RUN_SYNCHRONOUS, KR_RUN_ANIMATED}) {
        SCOPED_TRACE(mode);
        ASSERT_EQ(mode == KR_RUN_SYNCHRONOUS ? krViewStart(view) : krViewStartAnim(view), 0);
        expectAll(view, nullptr, -4, -4);
        EXPECT_EQ(krVarSet(view, "own", nullptr), -5);
        EXPECT_EQ(krVarSetStr(view, "own", nullptr), -5);
        EXPECT_EQ(krVarGetStr(view, "own", nullptr), -5);
        expectAll(view, "missing", 0, -6);
        expectAll(view, "own", 1, 0);
        EXPECT_STREQ(text, "1");
        ASSERT_EQ(krViewStop(view), 0);
    }
    ASSERT_EQ(krViewStart(view), 0);
    fillDP(view->dataTypes);
    EXPECT_EQ(read(view, "gain"), "12.500000");
}

} // namespace
