// Which data-source plug-ins a view finds as it loads, which it refuses and why, how the sources
// it stored take on what the plug-ins declare, and what a started view then gets from them.
#include "Korel2D.h"
#include "LoadedView.h"
#include "PluginDirs.h"
#include "dataViews.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

using namespace k2dtest;
using namespace korelgen;
using Place = PluginDirs::Place;

namespace {

constexpr int kExampleType = 100, kWideType = 102, kGlobalsType = 101;
const std::string kNotFound = "Warning: data type 100 not found. deleted !\n";

// The memory log is one per process: each case starts with it empty and sees warnings.
class PluginDiscovery : public testing::Test {
protected:
    void SetUp() override { setLogLevel(2), getLogMsg(nullptr, 0); }
    static std::string takeLog()
    {
        std::vector<char> text(20000);
        getLogMsg(text.data(), int(text.size()));
        return text.data();
    }
};

// A source of the sample plug-in's layout: two data parameters and, per variable, what it GIVES.
SourceFields exampleSource(int type,
                           std::vector<VariableFields> variables = {{KR_VAR_INT32, "EX_RUNS", "", {{0, "RUNS"}}}})
{
    return SourceFields{type, {{0, "0"}, {0, "label"}}, 1, std::move(variables)};
}

// The library name of the example-type source in a view loaded now; "unknown" if it found none.
std::string pluginFound()
{
    LoadedView loaded(viewWith({exampleSource(kExampleType)}));
    DD_DATA_TYPE_STRUCT* source = loaded.view ? loaded.view->dataTypes : nullptr;
    return !source ? "no source" : source->found ? krDataSourceLibName(source) : "unknown";
}

// What a view gets from the plug-ins it found: its list of sources, the plug-ins' counts over
// the file's (a variable gets the parameter the file lacked, a source more data slots, empty,
// which the plug-in reads while it runs), and variables that follow a plug-in's globals.
TEST_F(PluginDiscovery, AViewTakesOnWhatThePluginsDeclare)
{
    PluginDirs dirs;
    for (const std::string& plugin :
         {examplePlugin(), variant("wide", "libKrdWide.so"), variant("globals", "libKrdGlobals.so")})
        dirs.copy(Place::HomeBin, plugin);
    SourceFields noGives = exampleSource(kExampleType);
    noGives.varParamCount = 0;
    LoadedView loaded(viewWith(
        {SourceFields{2, {}, 1, {}}, SourceFields{999, {}, 0, {}}, noGives,
         SourceFields{kWideType, {{1, "0"}, {2, "b"}, {3, "c"}}, 1, {{KR_VAR_INT32, "wideRuns", "", {}}}},
         exampleSource(kGlobalsType, {{KR_VAR_INT32, "exampleGlobalCount", "", {}},
                                      {KR_VAR_FLOAT, "exampleGlobalFloat", "", {}}, {KR_VAR_INT32, "noSuchGlobal", "", {}}})}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);
    int count = 0;
    DD_DATA_TYPE_STRUCT** all = krDataSourceGetAll(view, &count);
    std::string listed; // with the library of each plug-in
    for (int i = 0; i < count; ++i)
        listed += std::to_string(krDataSourceType(all[i])) + " " + krDataSourceName(all[i]) + " " +
                  (all[i]->libName[0] ? krDataSourceLibName(all[i]) : "") + "\n";
    ASSERT_EQ(listed, "2 Constant Data \n999 unknown Data Source 999 \n100 Example Data libKrdExample.so\n"
                      "102 Example Data libKrdWide.so\n101 Example Data libKrdGlobals.so\n");
    VARIABLE_STRUCT* runs = all[2]->variables;
    const DD_DATA_TYPE_STRUCT* wide = all[3];
    krFree(all);
    EXPECT_EQ(takeLog(), "Warning: data type 999 not found. deleted !\n"
                         "Warning: nr of variable parameter mismatch\nData type 100 Example Data\n"
                         "Library has 1 parameters, view has 0 parameters\n"
                         "Warning: nr of data parameter mismatch\nData type 102 Example Data\n"
                         "Library has 20 parameters, view has 3 parameters\n");

    int item = -1;
    char text[64] = "x";
    EXPECT_EQ(krVarSetPara(runs, 0, 2, nullptr), 0);
    EXPECT_EQ(krVarGetPara(runs, 0, &item, text), 0);
    EXPECT_EQ(std::to_string(item) + text, "2");
    ASSERT_EQ(wide->nrData, 20);
    EXPECT_EQ(std::string(wide->para[2].sval) + "|" + wide->para[19].sval, "c|");

    ASSERT_EQ(krViewStartAnim(view), 0);
    EXPECT_EQ(takeLog(), "error global variable noSuchGlobal\n");
    EXPECT_TRUE(waitFor([&] { return number(view, "wideRuns") >= 5; }));
    ASSERT_TRUE(waitFor([&] { return number(view, "exampleGlobalCount") > 0; }));
    // Each Run counts up the plug-in's globals and sets the float to half the count; read
    // second, the float can only have gone further.
    const double globals = number(view, "exampleGlobalCount");
    EXPECT_GE(number(view, "exampleGlobalFloat"), 0.5 * globals);
    EXPECT_EQ(number(view, "noSuchGlobal"), 0);
    EXPECT_EQ(krViewStop(view), 0);
}

// Each refused plug-in is named in the log, and none of them hides a good plug-in further along
// the search.
TEST_F(PluginDiscovery, RefusedPluginsAreReportedAndTheViewStillLoads)
{
    const struct {
        const char* dir;
        const char* file;
        const char* message;
    } refused[] = {
        {"oldVersion", "libKrdOldVersion.so", "Module <./libKrdOldVersion.so> Wrong version 323, recompile datasource !\n"},
        {"newVersion", "libKrdNewVersion.so", "Module <./libKrdNewVersion.so> Wrong version 325, recompile datasource !\n"},
        {"noVersion", "libKrdNoVersion.so",
         "Module <./libKrdNoVersion.so> No Version Information, recompile datasource !\n"},
        {"noInfo", "libKrdNoInfo.so", "Module <./libKrdNoInfo.so> Function <krdNoInfoInfo> not found !\n"},
        {"junk", "libKrdJunk.so", "error opening Dynamic Data Source ./libKrdJunk.so\n"},
    };
    PluginDirs dirs;
    for (const auto& r : refused)
        dirs.copy(Place::WorkDir, variant(r.dir, r.file));
    dirs.copy(Place::HomeBin, examplePlugin());
    EXPECT_EQ(pluginFound(), "libKrdExample.so");
    const std::string log = takeLog();
    for (const auto& r : refused)
        EXPECT_NE(log.find(r.message), std::string::npos) << log << "has no\n" << r.message;
}

// The search covers ".", then KOREL_HOME/bin, then KOREL_HOME itself, only for exact names;
// the first holder of a type number wins, and no plug-in takes the number of a built-in source.
TEST_F(PluginDiscovery, SearchOrderAndExactNamesDecideWhichPluginServesAType)
{
    using Copies = std::vector<std::tuple<Place, std::string, std::string>>;
    const std::string twin = variant("twin", "libKrdTwin.so"), example = examplePlugin();
    const std::string taken = "Data Type <100> already present. skipped ...\n";
    Copies nearNames;
    for (const char* name : {"libKrdExample.so.1", "libKrdExample.sox", "libkrdExample.so", "Example.so"})
        for (Place place : {Place::WorkDir, Place::HomeBin})
            nearNames.emplace_back(place, example, name);
    const struct {
        PluginDirs::Home home;
        Copies copies;
        const char* found;
        std::string log;
    } rows[] = {
        {PluginDirs::Home::Fresh, {{Place::WorkDir, twin, ""}, {Place::HomeBin, example, ""}}, "libKrdTwin.so", taken},
        {PluginDirs::Home::Fresh, {{Place::HomeBin, twin, ""}, {Place::Home, example, ""}}, "libKrdTwin.so", taken},
        {PluginDirs::Home::Fresh, {{Place::Home, example, ""}}, "libKrdExample.so", ""},
        {PluginDirs::Home::PluginDir, {}, "libKrdExample.so", ""},
        // Without KOREL_HOME only "." counts.
        {PluginDirs::Home::Unset, {{Place::HomeBin, example, ""}, {Place::Home, example, ""}}, "unknown", kNotFound},
        {PluginDirs::Home::Unset, {{Place::Home, example, ""}, {Place::WorkDir, example, ""}}, "libKrdExample.so", ""},
        {PluginDirs::Home::Fresh, nearNames, "unknown", kNotFound},
        {PluginDirs::Home::Fresh,
         {{Place::WorkDir, variant("builtinClash", "libKrdBuiltinClash.so"), ""}, {Place::HomeBin, example, ""}},
         "libKrdExample.so", "Data Type <2> already present. skipped ...\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << &row - rows);
        PluginDirs dirs(row.home);
        for (const auto& [place, path, as] : row.copies)
            dirs.copy(place, path, as);
        EXPECT_EQ(pluginFound(), row.found);
        EXPECT_EQ(takeLog(), row.log);
    }
}

} // namespace
