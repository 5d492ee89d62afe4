// Variables as a host and a source meet them: the services a source builds itself with, the
// built-in Constant and Internal sources, and reading and writing values by name.
//
// Conversion tables run one data cycle with fillDP and need no GL context; tests about what a
// cycle leaves behind draw instead, since in mode 1 a draw is where a host's cycle happens.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewFixture.h"
#include "dataViews.h"
#include "actions/actions.h"
#include "data/data.h"

#include <gtest/gtest.h>

#include <cstring>
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

std::string nameOf(size_t row) { return "v" + std::to_string(row); }

struct TextCase {
    int type;
    std::string text;
    std::string expected;
};

// A started view with a variable v<row> of each row's type in one source; the row's text is
// a Constant's VALUE, an Internal's default, or nothing.
enum class Text { Value, Default, None };
struct TableView : LoadedView {
    TableView(const std::vector<TextCase>& rows, Text use) : LoadedView(build(rows, use))
    {
        EXPECT_NE(view, nullptr);
        EXPECT_EQ(krViewStart(view), 0);
    }
    static ViewBuilder build(const std::vector<TextCase>& rows, Text use)
    {
        std::vector<VariableFields> vars;
        for (size_t i = 0; i < rows.size(); ++i)
            vars.push_back(var(rows[i].type, nameOf(i), use == Text::Default ? rows[i].text : "",
                               use == Text::Value ? rows[i].text : ""));
        return viewWith({source(use == Text::Value ? 2 : 5, vars)});
    }
    void expectReads(const std::vector<TextCase>& rows) const
    {
        for (size_t i = 0; i < rows.size(); ++i)
            EXPECT_EQ(read(view, nameOf(i)), rows[i].expected)
                << "type " << rows[i].type << " from \"" << rows[i].text.substr(0, 20) << "\"";
    }
};

// What a plug-in builds its record with: a name cut to its field, the descriptions of its
// parameters with their item lists, and variables whose parameters follow those descriptions.
TEST(SourceServices, BuildTheRecordAPluginDescribes)
{
    DD_DATA_TYPE_STRUCT* source = createDataType(0);
    source->nrData = 4;
    EXPECT_EQ(krdInit(source, std::string(70, 'n').c_str(), 4711, 7), 0);
    EXPECT_EQ(std::string(source->name) + " " + std::to_string(source->id), std::string(63, 'n') + " 4711");
    EXPECT_EQ(source->nrData, 0);
    EXPECT_EQ(source->globalVariables, 1);

    EXPECT_EQ(krdOption(source, 0, 1, 3u, "MODE", "fast", std::string(40, 'i').c_str(), "off", nullptr), 0);
    // Button and formula parameters take no argument: the text after them still lands last.
    krdOption(source, 1, 0, 0u, "UNIT");
    krdOption(source, 1, 2, 0u, std::string(40, 't').c_str(), "Zero");
    krdOption(source, 1, 3, 5u, "FORMULA");
    krdOption(source, 1, 1, 0u, "RANGE", "low", "high", nullptr);
    krdOption(source, 1, 0, 0u, "NOTE");
    ASSERT_EQ(source->nrData, 1);
    ASSERT_EQ(source->nrVar, 5);
    const OPTION_STRUCT& mode = source->dataOptions[0];
    ASSERT_EQ(mode.count, 3);
    EXPECT_EQ(std::string(mode.items) + "|" + (mode.items + 32) + "|" + (mode.items + 64),
              "fast|" + std::string(31, 'i') + "|off");
    EXPECT_EQ(mode.flags, 3u);
    EXPECT_EQ(std::string(source->varOptions[1].title), std::string(31, 't'));
    EXPECT_EQ(source->varOptions[2].kind + source->varOptions[2].flags, 3u + 5u);

    EXPECT_EQ(krdAddVariable(source, "speed", KR_VAR_INT32, "km/h", 1, "front axle"), 0);
    EXPECT_EQ(krdAddVariable(source, "gear", KR_VAR_UINT8, "", 0, ""), 0);
    const VARIABLE_STRUCT* speed = source->variables;
    ASSERT_EQ(speed->nrPara, 5);
    EXPECT_EQ(std::string(speed->para[0].sval) + "|" + speed->para[2].sval + "|" + speed->para[4].sval,
              "km/h||front axle");
    EXPECT_EQ(speed->para[3].ival, 1);

    char** names = krdGetAllVariables(source);
    ASSERT_NE(names, nullptr);
    EXPECT_EQ(std::string(names[0]) + names[1], "speedgear");
    EXPECT_EQ(names[2], nullptr);
    VARIABLE_STRUCT** records = krdGetAllVariablesS(source);
    ASSERT_NE(records, nullptr);
    EXPECT_EQ(records[1], speed->next);
    EXPECT_EQ(records[2], nullptr);
    EXPECT_EQ(krdDeleteAllVariables(source), 0);
    EXPECT_EQ(krdGetAllVariables(source)[0], nullptr);
    delDataType(nullptr, source, 1);
}

// Each code's conversion is the value room's; these rows show the rules of each writer.
TEST(ConstantSource, EachCycleParsesTheValueByType)
{
    const std::vector<TextCase> rows = {
        {KR_VAR_DOUBLE, "16777217", "16777217.000000"}, {KR_VAR_INT32, "0x10", "0"}, {KR_VAR_FLOAT, "", "0.000000"},
        {KR_VAR_INT64, "-5000000000", "-5000000000"},   {KR_VAR_TEXT, "hello world", "hello world"},
    };
    TableView t(rows, Text::Value);
    fillDP(t.view->dataTypes);
    t.expectReads(rows);
    // A double is read as a double, not through a float.
    EXPECT_EQ(*static_cast<double*>(krVarGetAddr(t.view, nameOf(0).c_str())), 16777217.0);
}

TEST(InternalSource, DefaultsAreWrittenAtStart)
{
    const std::vector<TextCase> rows = {
        {KR_VAR_INT32, "0x1F", "31"}, {KR_VAR_UINT8, "010", "8"}, {KR_VAR_DOUBLE, "1e3", "1000.000000"},
        // The long codes take only the low half of a default, as every transfer moves them.
        {KR_VAR_INT64, "-1", "4294967295"}, {KR_VAR_TEXT, std::string(63, 'd'), std::string(63, 'd')},
    };
    TableView(rows, Text::Default).expectReads(rows);
}

TEST(VariablesByName, SetCopiesTheWidthOfTheType)
{
    float quarter = 1.25f;
    double tenth = 0.1;
    int64_t floatBits = 0, doubleBits;
    memcpy(&floatBits, &quarter, 4);
    memcpy(&doubleBits, &tenth, 8);
    // The text of each row is the raw bytes krVarSet is given, as an int64_t.
    const std::vector<std::pair<int64_t, TextCase>> rows = {
        {floatBits, {KR_VAR_FLOAT, "", "1.250000"}}, {doubleBits, {KR_VAR_DOUBLE, "", "0.100000"}},
        {-1, {KR_VAR_INT8, "", "-1"}}, {-1, {KR_VAR_UINT8, "", "255"}}, {0x12345, {KR_VAR_INT16, "", "9029"}},
        {-1, {KR_VAR_UINT16, "", "65535"}}, {-7, {KR_VAR_INT32, "", "-7"}},
        {3000000000, {KR_VAR_UINT32, "", "-1294967296"}}, {-1, {KR_VAR_INT64, "", "4294967295"}},
        {0x100000005, {KR_VAR_UINT64, "", "5"}},
        {-1, {11, "", ""}}, // an unknown code stores nothing
    };
    std::vector<TextCase> cases;
    for (const auto& row : rows)
        cases.push_back(row.second);
    cases.push_back({KR_VAR_TEXT, kLong, std::string(255, 'x')});
    TableView t(cases, Text::None);
    for (size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(krVarSet(t.view, nameOf(i).c_str(), &rows[i].first), 1) << i;
    EXPECT_EQ(krVarSet(t.view, nameOf(rows.size()).c_str(), kLong.c_str()), 1);
    t.expectReads(cases);
    EXPECT_EQ(*static_cast<int64_t*>(krVarGetAddr(t.view, nameOf(10).c_str())), 0);
    // The address given is the buffer that is read by name.
    *static_cast<int32_t*>(krVarGetAddr(t.view, nameOf(6).c_str())) = 77;
    EXPECT_EQ(read(t.view, nameOf(6)), "77");
}

// A double goes through a float on its way in; a long is cut to 32 bits and sign-extended.
TEST(VariablesByName, SetStrConvertsTextToTheType)
{
    const std::vector<TextCase> rows = {
        {KR_VAR_DOUBLE, "16777217", "16777216.000000"}, {KR_VAR_UINT8, "0x10", "0"},
        {KR_VAR_INT64, "4294967295", "-1"}, {KR_VAR_INT64, "5000000000", "705032704"}, {KR_VAR_UINT64, "-7", "-7"},
        {KR_VAR_TEXT, kLong, std::string(255, 'x')},
    };
    TableView t(rows, Text::None);
    for (size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(krVarSetStr(t.view, nameOf(i).c_str(), rows[i].text.c_str()), 1) << i;
    t.expectReads(rows);
}

TEST(VariablesByName, ResultsOutsideARunningView)
{
    char text[256];
    int32_t value = 1;
    VIEW_STRUCT notAView{};
    LoadedView loaded(viewWith({source(5, {var(KR_VAR_INT32, "a")})}));
    ASSERT_NE(loaded.view, nullptr);
    auto expectAll = [&](VIEW_STRUCT* view, const char* name, int set, int setStr, int getStr) {
        EXPECT_EQ(krVarSet(view, name, &value), set) << name;
        EXPECT_EQ(krVarSetStr(view, name, "1"), setStr) << name;
        EXPECT_EQ(krVarGetStr(view, name, text), getStr) << name;
        if (set != 1) {
            EXPECT_EQ(krVarGetAddr(view, name), nullptr) << name;
        }
    };
    expectAll(nullptr, "a", -1, -1, -1);
    expectAll(&notAView, "a", -2, -2, -2);
    expectAll(loaded.view, "a", -3, -3, -3);

    for (int mode : {KR_RUN_SYNCHRONOUS, KR_RUN_ANIMATED}) {
        SCOPED_TRACE(mode);
        VIEW_STRUCT* view = loaded.view;
        ASSERT_EQ(mode == KR_RUN_SYNCHRONOUS ? krViewStart(view) : krViewStartAnim(view), 0);
        expectAll(view, nullptr, -4, -4, -4);
        EXPECT_EQ(krVarSet(view, "a", nullptr), -5);
        EXPECT_EQ(krVarSetStr(view, "a", nullptr), -5);
        EXPECT_EQ(krVarGetStr(view, "a", nullptr), -5);
        expectAll(view, "missing", 0, 0, -6);
        expectAll(view, "a", 1, 1, 0);
        EXPECT_STREQ(text, "1");
        EXPECT_NE(krVarGetAddr(view, "a"), nullptr);
        ASSERT_EQ(krViewStop(view), 0);
        expectAll(view, "a", -3, -3, -3);
    }
}

TEST(VariablesByName, SourcesOfNamesAndParametersAsAHostEditsThem)
{
    LoadedView loaded(
        viewWith({source(2, {var(KR_VAR_INT32, "shared", "", "3"), var(KR_VAR_FLOAT, "gain", "", "1")}),
                  source(5, {var(KR_VAR_TEXT, "shared"), var(KR_VAR_UINT32, "own")})}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);
    const std::pair<const char*, int> holders[] = {{"shared", 2}, {"own", 5}, {"none", -1}, {nullptr, -1}};
    for (const auto& [name, type] : holders) // the first source holding the name
        EXPECT_EQ(krVarSource(view, name), type) << (name ? name : "null");
    VARIABLE_STRUCT* text = view->dataTypes->next->variables;
    EXPECT_EQ(krVarType(text), KR_VAR_TEXT);
    EXPECT_EQ(krVarReadWrite(text), 0);

    // The Constant's VALUE is its parameter 0: a new text is what the next cycle reads.
    VARIABLE_STRUCT* gain = view->dataTypes->variables->next;
    char value[256];
    int ival = -1;
    EXPECT_EQ(krVarSetPara(gain, 0, 4, "12.5"), 0);
    EXPECT_EQ(krVarGetPara(gain, 0, &ival, value), 0);
    EXPECT_EQ(std::to_string(ival) + " " + value, "4 12.5");
    EXPECT_EQ(krVarGetPara(gain, 0, nullptr, nullptr), 0);
    ASSERT_EQ(krViewStart(view), 0);
    fillDP(view->dataTypes);
    EXPECT_EQ(read(view, "gain"), "12.500000");

    for (int index : {-1, 1}) {
        EXPECT_EQ(krVarSetPara(gain, index, 0, "x"), -2) << index;
        EXPECT_EQ(krVarGetPara(gain, index, &ival, value), -2) << index;
    }
    EXPECT_EQ(krVarSetPara(nullptr, 0, 0, "x"), -1);
    EXPECT_EQ(krVarGetPara(nullptr, 0, &ival, value), -1);
    EXPECT_EQ(krVarName(nullptr), nullptr);
    EXPECT_EQ(krVarType(nullptr), -1);
    EXPECT_EQ(krVarReadWrite(nullptr), -1);
    VIEW_STRUCT notAView{};
    int count = 5;
    EXPECT_EQ(krDataSourceGetAll(&notAView, &count), nullptr);
    EXPECT_EQ(count, 0);
    count = 5;
    EXPECT_EQ(krVarGetAll(nullptr, &count), nullptr);
    EXPECT_EQ(count, 0);
}

class RunningVariables : public ViewTest {};

// A Constant's cycle overwrites what a host wrote, an Internal keeps it while the view runs, and
// a restart begins again from the defaults.
TEST_F(RunningVariables, WritesLastUntilTheSourceWritesOrTheViewRestarts)
{
    VIEW_STRUCT* view = load(viewWith(
        {source(2, {var(KR_VAR_INT32, "level", "99", "12")}),
         source(5, {var(KR_VAR_INT32, "plain"), var(KR_VAR_INT32, "preset", "0x1F"), var(KR_VAR_TEXT, "label", "idle")})}));
    ASSERT_NE(view, nullptr);
    auto values = [view] {
        return read(view, "level") + " " + read(view, "plain") + " " + read(view, "preset") + " " + read(view, "label");
    };
    ASSERT_EQ(krViewStart(view), 0);
    // Defaults only go through a Set entry, which a Constant lacks: nothing before the first cycle.
    EXPECT_EQ(values(), "0 0 31 idle");
    const int32_t written = 41;
    for (const char* name : {"level", "plain", "preset"})
        EXPECT_EQ(krVarSet(view, name, &written), 1);
    EXPECT_EQ(krVarSetStr(view, "label", "ready"), 1);
    EXPECT_EQ(values(), "41 41 41 ready");
    // A hundred cycles: three drawn as a host does, the rest run directly.
    for (int i = 0; i < 3; ++i)
        draw(view);
    for (int i = 3; i < 100; ++i)
        fillDP(view->dataTypes);
    EXPECT_EQ(values(), "12 41 41 ready");

    ASSERT_EQ(krViewStop(view), 0);
    ASSERT_EQ(krViewStart(view), 0);
    EXPECT_EQ(values(), "0 0 31 idle");
    draw(view);
    EXPECT_EQ(values(), "12 0 31 idle");
}

} // namespace
