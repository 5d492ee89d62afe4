// The frame of XML view files: what a save puts on disk, and what a load takes from any file.
#include "xml/viewXml.h"

#include "GlContext.h"
#include "LoadedView.h"
#include "SampleFiles.h"
#include "StoredView.h"

#include <gtest/gtest.h>

#include <clocale>
#include <fstream>
#include <iterator>

namespace {

std::string fileText(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

k2dtest::TempFile xmlFile(const std::string& text)
{
    return k2dtest::TempFile(std::vector<uint8_t>(text.begin(), text.end()), ".xml");
}

TEST(XmlFrame, SaveWritesTheSectionsInOrderAndTheHeaderReadsBack)
{
    VIEW_STRUCT view = {};
    view.x = -5;
    view.width = 1234.5678f;
    view.height = 600;
    view.pageColor[1] = 0.5f;
    view.pageColor[2] = 1.0f;
    k2dtest::TempFile file({}, ".xml");
    ASSERT_EQ(saveFileXml(file.path().c_str(), nullptr, nullptr, &view), 0);
    EXPECT_EQ(fileText(file.path()),
              "<?xml version=\"1.0\" ?>\n<Korel2D version=\"3.4\">\n    <header date=\"24.05.2008\" name=\"" +
                  file.path() +
                  "\" x=\"-5\" y=\"0\" width=\"1234.57\" height=\"600\" pagecolor=\"#007fffff\" />\n"
                  "    <editor />\n    <data />\n    <definition />\n    <geometry />\n</Korel2D>\n");

    VIEW_STRUCT back = {};
    ELEMENT_STRUCT* elements = nullptr;
    DD_DATA_TYPE_STRUCT* sources = nullptr;
    ASSERT_EQ(loadFileXml(file.path().c_str(), &elements, &sources, &back), 0);
    EXPECT_TRUE(back.x == -5 && back.width == 1234.57f && back.height == 600 && !elements && !sources);
    EXPECT_TRUE(back.pageColor[0] == 0 && back.pageColor[1] == 127 / 255.0f && back.pageColor[2] == 1);
}

// The reader takes the first element as root whatever its name, skips what it doesn't know,
// and drops the page colour's alpha; without one the page is white.
TEST(XmlFrame, AnyRootAndUnknownSectionsLoad)
{
    struct Case {
        const char* text;
        float page[3];
    } cases[] = {
        {"<View><junk a=\"1\"><x/></junk><header pagecolor=\"#10203000\" height=\"7\"/><editor/></View>",
         {16 / 255.0f, 32 / 255.0f, 48 / 255.0f}},
        {"<Korel2D><header height=\"7\"/></Korel2D>", {1, 1, 1}},
    };
    for (const Case& c : cases) {
        k2dtest::TempFile file = xmlFile(c.text);
        VIEW_STRUCT view = {};
        EXPECT_EQ(loadFileXml(file.path().c_str(), nullptr, nullptr, &view), 0) << c.text;
        EXPECT_TRUE(view.height == 7 && view.pageColor[0] == c.page[0] && view.pageColor[1] == c.page[1] &&
                    view.pageColor[2] == c.page[2])
            << c.text;
    }
}

// A later definition section starts the strokes, patterns and pictures over; fonts are kept
// and replaced by number.
TEST(XmlFrame, SecondDefinitionEmptiesAllButFonts)
{
    const std::string first = "<definition><stroke id=\"1\" factor=\"2\" data=\"0xff\"/>"
                              "<pattern id=\"2\" data=\"\"/><bitmap id=\"3\" width=\"1\" height=\"1\"/>"
                              "<font id=\"4\" family=\"A\"/><font id=\"5\" family=\"B\"/></definition>";
    k2dtest::TempFile file = xmlFile("<Korel2D>" + first + "<definition><font id=\"5\" family=\"C\"/></definition></Korel2D>");
    XmlDocument document;
    ASSERT_TRUE(document.read(file.path()));
    xmlRead = XmlReadTables();
    loadSections(document.root(), nullptr, nullptr, nullptr);
    EXPECT_TRUE(xmlRead.mapStrokeStyle.empty() && xmlRead.mapFillStyle.empty() && xmlRead.mapImage.empty());
    ASSERT_EQ(xmlRead.mapFont.size(), 2u);
    EXPECT_TRUE(xmlRead.mapFont[4].family == "A" && xmlRead.mapFont[5].family == "C");
}

// Nothing to walk: -1, and the lists and the page stay as they were.
// A file that gives nothing adds nothing and says why in one line; a broken document loads up to
// its error and says where; unknown elements are counted once.
TEST(XmlFrame, LoadsSayWhatTheyCouldNotTake)
{
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<group>";
    const struct {
        std::string text; // null for a file that isn't there
        int result, elements;
        std::string says; // after "loadFileXml: PATH: "
    } cases[] = {
        {"", -1, 0, "Error document empty.\n"},
        {"<?xml version=\"1.0\" ?>\n", -1, 0, "no root element\n"},
        {"just text", -1, 0, "Error document empty.\n"},
        {deep, -1, 0, "nested deeper than 1000 elements\n"},
        {"<Korel2D><geometry><line/><line></geometry>", 0, 2, "Error reading end tag. at line 1, column 33\n"},
        {"<K><geometry><blob/><line/><blob><line/></blob><group><rect/><blob/></group></geometry></K>", 0, 2,
         "3 unknown elements skipped\n"},
    };
    auto loadSays = [](const std::string& path, int result, int elements, const std::string& says) {
        VIEW_STRUCT view = {};
        view.width = 42;
        DD_DATA_TYPE_STRUCT* sources = nullptr;
        testing::internal::CaptureStdout();
        EXPECT_EQ(loadFileXml(path.c_str(), &view.elements, &sources, &view), result) << says;
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "loadFileXml: " + path + ": " + says);
        EXPECT_TRUE(view.width == 42 && !sources && k2dtest::countList(view.elements) == elements) << says;
        elementDeleteAll(&view.elements);
    };
    loadSays("/nonexistent/view.xml", -1, 0, "cannot open\n");
    for (const auto& c : cases)
        loadSays(xmlFile(c.text).path(), c.result, c.elements, c.says);
}

// A tree nested as deep as the reader takes is written and read back whole, with the deepest
// action's thresholds; one level more is refused with a line, and nothing is written. A file
// that can't be written is told as well.
TEST(XmlFrame, SaveRefusesTreesTooDeepToReadBackAndSaysWhatFails)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(saveFileXml("/nonexistent/view.xml", nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "saveFileXml: /nonexistent/view.xml: No such file or directory\n");
    for (int depth : {994, 995}) {
        ELEMENT_STRUCT* tree = elementCreate(KR_LINE);
        ACTION_STRUCT* action = createAction();
        action->type = KR_ACTION_STROKE_WIDTH;
        appendTh(&action->widthThresholds, createTh());
        appendAction(&tree->actions, action);
        for (int level = 0; level < depth; ++level) {
            ELEMENT_STRUCT* group = elementCreate(KR_GROUP);
            elementAppend(tree, &group->child);
            tree = group;
        }
        k2dtest::TempFile file({}, ".xml");
        std::remove(file.path().c_str());
        testing::internal::CaptureStdout();
        saveFileXml(file.path().c_str(), tree, nullptr, nullptr);
        const std::string said = testing::internal::GetCapturedStdout();
        elementDeleteAll(&tree);
        if (depth == 995) {
            EXPECT_EQ(said, "saveFileXml: " + file.path() + ": elements nested deeper than 995 levels\n");
            EXPECT_EQ(fileText(file.path()), "");
            continue;
        }
        EXPECT_EQ(said, "");
        ASSERT_EQ(loadFileXml(file.path().c_str(), &tree, nullptr, nullptr), 0);
        const ELEMENT_STRUCT* deepest = tree;
        for (int level = 0; level < depth && deepest; ++level)
            deepest = deepest->child;
        ASSERT_TRUE(deepest && deepest->type == KR_LINE);
        EXPECT_TRUE(deepest->actions && deepest->actions->widthThresholds);
        elementDeleteAll(&tree);
    }
}

// A host in a locale that writes a comma saves and loads the same files as one in "C".
TEST(XmlFrame, NumbersKeepTheirPointInAnyLocale)
{
    const std::string sample = std::string(KOREL2D_EXAMPLES_DIR) + "/everykind.k2d";
    const k2dtest::FileView view(sample);
    const k2dtest::TempFile file({}, ".xml");
    auto savedText = [&view, &file] {
        saveFileXml(file.path().c_str(), view.view.elements, view.view.dataTypes, &view.view);
        return fileText(file.path());
    };
    const std::string classic = savedText();
    const std::string host = std::setlocale(LC_ALL, nullptr);
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
        GTEST_SKIP() << "no de_DE.UTF-8 locale";
    const std::string german = savedText();
    const k2dtest::FileView back(xmlFile(classic).path(), loadFileXml);
    std::setlocale(LC_ALL, host.c_str());
    EXPECT_TRUE(german == classic) << german.substr(0, german.find("<geometry"));
    const k2dtest::FileView again(xmlFile(classic).path(), loadFileXml);
    EXPECT_EQ(k2dtest::firstStoredDifference(&back.view, &again.view), "");
}

} // namespace
