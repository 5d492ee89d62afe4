// Reading binary view files: header checks, revisions, the element tree, loads from memory, and
// the handles' refusals. Cut, garbled and hostile files are the damaged-files tests' concern.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewFixture.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

RectFields square(float x, float y, float size) { return {x, y, x + size, y + size}; }

// A panel with every structure the reader knows: top-level rectangles, nested groups, a clip.
ViewBuilder samplePanel()
{
    ViewBuilder b;
    b.page(10, 20, 640, 480, 0.2f, 0.3f, 0.4f).rect(square(0, 0, 50), "first");
    b.beginGroup(2, "outer").rect(square(100, 100, 20), "a");
    b.beginGroup(2, "inner").rect(square(200, 150, 10), "b").scissor(190, 140, 230, 180).endGroup().endGroup();
    b.bodiless(9, "nobody").rect(square(300, 300, 5), "last").dataSection();
    return b;
}

// Only the first nine bytes of the magic text and the two revision integers count; another
// revision gives an empty view whose page was not read either.
TEST(ViewFileHeader, MagicAndRevisionDecideWhatIsRead)
{
    const struct {
        const char* magic;
        int revision, elements, width; // no view at all where elements is -1
        std::string log;
    } cases[] = {
        {"VIEW FILF 3.3", 303, -1, 0, "wrong file format\n"},
        {"VIEW FILE 9.9 and anything else", 303, 1, 300, ""},
        {"VIEW FILE 3.4\n", 304, 1, 300, ""},
        {"VIEW FILE 3.3\n", 205, 0, 0, "loadFile: rev 205 not supported\n"},
        {"VIEW FILE 3.3\n", 305, 0, 0, "loadFile: rev 305 not supported\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.magic) + " revision " + std::to_string(c.revision));
        takeLog();
        ViewBuilder b(c.revision / 100, c.revision % 100, c.magic);
        LoadedView loaded(b.page(1, 2, 300, 200, 1, 0, 0).rect(square(0, 0, 10)));
        EXPECT_EQ(takeLog(), c.log);
        EXPECT_EQ(loaded.view ? std::make_pair(countElements(loaded.first()), krViewWidth(loaded.view))
                              : std::make_pair(-1, 0), std::make_pair(c.elements, c.width));
    }
    EXPECT_EQ(krViewLoad("/nonexistent/view.k2d"), nullptr);
    EXPECT_EQ(takeLog(), "cannot open file /nonexistent/view.k2d\n");
    EXPECT_EQ(krViewLoad(nullptr), nullptr);
}

// A view read from memory passes through a temporary file, named in the progress reports of
// level three, that is gone once the load returns.
TEST(ViewFromMemory, LeavesNoTemporaryFile)
{
    setLogLevel(3);
    takeLog();
    LoadedView loaded(ViewBuilder().page(0, 0, 100, 100, 1, 1, 1).rect(square(0, 0, 10)).dataSection());
    setLogLevel(1);
    EXPECT_EQ(countElements(loaded.first()), 1);
    const std::string log = takeLog(), reading = "reading view file from ";
    const size_t at = log.find(reading + "/tmp/"), from = at + reading.size();
    ASSERT_NE(at, std::string::npos) << log;
    const std::string path = log.substr(from, log.find('\n', from) - from);
    EXPECT_FALSE(std::ifstream(path).good()) << "left behind: " << path;
    EXPECT_EQ(krViewLoadData(nullptr, 0), nullptr);
}

// Page and tree as stored. (The boxes and centres of groups are the geometry tests' concern.)
TEST(ViewFileContent, PageAndTreeAsStored)
{
    LoadedView loaded(samplePanel());
    VIEW_STRUCT* v = loaded.view;
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(std::make_tuple(v->x, v->y, v->pageColor[0], v->pageColor[2]), std::make_tuple(10.0f, 20.0f, 0.2f, 0.4f));
    EXPECT_EQ(std::make_tuple(krViewWidth(v), krViewHeight(v), krViewPosX(v), krViewPosY(v)),
              std::make_tuple(640, 480, 330, 260));
    EXPECT_EQ(countElements(v->elements), 8);
    std::vector<std::string> topLevel;
    for (const ELEMENT_STRUCT* e = v->elements; e; e = e->next)
        topLevel.push_back(e->name);
    EXPECT_EQ(topLevel, (std::vector<std::string>{"first", "outer", "nobody", "last"}));
    const ELEMENT_STRUCT* outer = v->elements->next;
    EXPECT_EQ(std::make_pair(outer->next->type, outer->next->data), std::make_pair(9u, (void*)nullptr));
    EXPECT_EQ(outer->child->next->child->parent, outer->child->next);
}

TEST(ViewFileContent, EndsAndMarkers)
{
    const struct { const char* label; std::function<void(ViewBuilder&)> write; int elements; } cases[] = {
        {"ends after the page", [](ViewBuilder&) {}, 0},
        {"no marker 20 at all", [](ViewBuilder& b) { b.rect(square(0, 0, 1)).rect(square(0, 0, 2)); }, 2},
        {"a kind of -1 ends it", [](ViewBuilder& b) { b.rect(square(0, 0, 1)).integer(-1).rect(square(0, 0, 2)); }, 1},
        {"elements on both sides of a data section, and an empty group",
         [](ViewBuilder& b) { b.rect(square(0, 0, 1)).dataSection().beginGroup(0).endGroup(); }, 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        ViewBuilder b;
        c.write(b.page(0, 0, 50, 60, 0, 0, 0));
        LoadedView loaded(b);
        ASSERT_NE(loaded.view, nullptr);
        EXPECT_EQ(countElements(loaded.first()), c.elements);
        EXPECT_EQ(krViewHeight(loaded.view), 60);
    }
}

TEST(ViewFileContent, ConfigurationOnly)
{
    TempFile file(samplePanel().bytes());
    VIEW_STRUCT config = {};
    EXPECT_EQ(loadConfigFile(file.path().c_str(), &config), 0);
    EXPECT_EQ(std::make_tuple(config.width, config.pageColor[1], config.elements),
              std::make_tuple(640.0f, 0.3f, nullptr));
    EXPECT_LT(loadConfigFile("/nonexistent/view.k2d", &config), 0);
}

// -1 for a missing handle, -2 for one that is not a view or a window, -3 for drawing without
// a context.
TEST(ViewHandles, RefusedWithTheirReason)
{
    VIEW_STRUCT fake = {};
    fake.magic = 0x12345678;
    WINDOW_STRUCT* window = krWindowCreate();
    const int results[][2] = {{krViewWidth(nullptr), -1}, {krViewFree(nullptr), -1},
                              {krViewSetScissorType(nullptr, 1), -1}, {krViewWidth(&fake), -2},
                              {krViewHeight(&fake), -2}, {krViewPosX(&fake), -2},
                              {krViewSetColorFactor(&fake, 1, 1, 1, 1), -2}, {krViewSetUseDepthBuffer(&fake, 1), -2},
                              {krViewSetUseLineScaling(&fake, 1), -2}, {krViewFree(&fake), -2},
                              {krViewDraw(window, nullptr, 0, 0, 1), -1}, {krViewDraw(nullptr, &fake, 0, 0, 1), -1},
                              {krViewDraw(window, &fake, 0, 0, 1), -2}, {krWindowClear(window, &fake), -2},
                              {krWindowInit(nullptr, 10, 10), -1}, {krViewDrawPlane_Direct(&fake), -2},
                              {krViewDrawWindow(nullptr), -1}};
    for (size_t i = 0; i < std::size(results); ++i)
        EXPECT_EQ(results[i][0], results[i][1]) << "call " << i;
    releaseGlContext();
    LoadedView loaded(samplePanel());
    EXPECT_EQ(std::vector<int>({krViewDraw(window, loaded.view, 0, 0, 1), krViewDrawPlane_Direct(loaded.view),
                                krViewDrawWindow(loaded.view), krViewDrawPlane(loaded.view, 0)}),
              std::vector<int>(4, -3));
    krWindowFree(window);
}

} // namespace
