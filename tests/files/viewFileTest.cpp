// Reading binary view files: header checks, revisions, the element tree, hostile counts, and the
// handles' refusals. Cut and garbled files are the damaged-files tests' concern.
#include "GlContext.h"
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewBuilder.h"

#include <gtest/gtest.h>

#include <dirent.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

std::string takeLog()
{
    char text[16384];
    getLogMsg(text, sizeof text);
    return text;
}

RectFields square(float x, float y, float size)
{
    RectFields s;
    s.x0 = x, s.y0 = y, s.x1 = x + size, s.y1 = y + size;
    return s;
}

// A panel with every structure the reader knows: top-level rectangles, nested groups, a clip.
ViewBuilder samplePanel()
{
    ViewBuilder b;
    b.page(10, 20, 640, 480, 0.2f, 0.3f, 0.4f);
    b.rect(square(0, 0, 50), "first");
    b.beginGroup(2, "outer");
    b.rect(square(100, 100, 20), "a");
    b.beginGroup(2, "inner").rect(square(200, 150, 10), "b").scissor(190, 140, 230, 180).endGroup();
    b.endGroup();
    b.bodiless(9, "nobody");
    b.rect(square(300, 300, 5), "last");
    b.dataSection();
    return b;
}

TEST(ViewFileHeader, WrongMagicAndMissingFilesAreRefusedWithMessage)
{
    takeLog();
    ViewBuilder b(3, 3, "VIEW FILF 3.3");
    EXPECT_EQ(LoadedView(b.page(0, 0, 100, 100, 0, 0, 0)).view, nullptr);
    EXPECT_EQ(takeLog(), "wrong file format\n");
    EXPECT_EQ(krViewLoad("/nonexistent/view.k2d"), nullptr);
    EXPECT_EQ(takeLog(), "cannot open file /nonexistent/view.k2d\n");
    EXPECT_EQ(krViewLoad(nullptr), nullptr);
}

TEST(ViewFileHeader, OnlyTheFirstNineBytesAndTheTwoIntegersCount)
{
    ViewBuilder b(3, 3, "VIEW FILE 9.9 and anything else");
    b.page(1, 2, 300, 200, 1, 0, 0).rect(square(0, 0, 10));
    LoadedView loaded(b);
    ASSERT_NE(loaded.view, nullptr);
    EXPECT_EQ(countElements(loaded.view->elements), 1);
    EXPECT_FLOAT_EQ(loaded.view->width, 300);
}

TEST(ViewFileRevisions, UnsupportedRevisionsGiveAnEmptyView)
{
    for (int revision : {117, 205, 305}) {
        takeLog();
        ViewBuilder b(revision / 100, revision % 100);
        b.page(0, 0, 100, 100, 1, 1, 1).rect(square(0, 0, 10));
        LoadedView loaded(b);
        ASSERT_NE(loaded.view, nullptr) << revision;
        EXPECT_EQ(loaded.view->elements, nullptr);
        EXPECT_EQ(krViewWidth(loaded.view), 0); // the page fields were not read either
        EXPECT_EQ(takeLog(), "loadFile: rev " + std::to_string(revision) + " not supported\n");
    }
}

TEST(ViewFileRevisions, Revision304ReadsAs303WithProgressAtLevelThree)
{
    setLogLevel(3);
    takeLog();
    ViewBuilder b(3, 4);
    LoadedView loaded(b.page(0, 0, 100, 100, 1, 1, 1).rect(square(0, 0, 10)).dataSection());
    setLogLevel(1);
    EXPECT_EQ(countElements(loaded.first()), 1);
    const std::string log = takeLog();
    EXPECT_EQ(log.rfind("-------------------------------------\n", 0), 0u) << log;
    EXPECT_NE(log.find("reading view file from /tmp/"), std::string::npos) << log;
    EXPECT_NE(log.find("Version = 3.4\n"), std::string::npos) << log;
}

// Page and tree as stored; a group's box is the union of its children's, about its centre.
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
    EXPECT_EQ(outer->next->type, 9u);
    EXPECT_EQ(outer->next->data, nullptr);
    EXPECT_EQ(std::vector<float>(outer->bounds, outer->bounds + 4), (std::vector<float>{100, 100, 230, 180}));
    EXPECT_EQ(std::make_pair(outer->x, outer->y), std::make_pair(165.0f, 140.0f));
    const ELEMENT_STRUCT* inner = outer->child->next;
    EXPECT_EQ(std::make_pair(inner->x, inner->y), std::make_pair(210.0f - 165, 160.0f - 140));
    EXPECT_EQ(inner->child->parent, inner);
}

TEST(ViewFileContent, NamesAtAndBeyondTheirFieldKeepTheStreamInStep)
{
    ViewBuilder b;
    b.page(0, 0, 100, 100, 0, 0, 0);
    std::string name64(64, 'n');  // stored with 64 bytes: the last one is forced to zero
    std::string id300(299, 'i');  // 300 bytes, beyond the 256-byte field
    b.integer(1).integer(64).fixed(name64, 64).counted(id300);
    b.real(0).real(0).real(0).real(10).real(10).real(10).real(10).real(0);
    b.integer(0).real(1).integer(0).real(1).real(1).real(1).real(1).integer(1).real(1).real(0).real(0).real(1);
    b.integer(0).integer(0).integer(0).integer(0).integer(0).integer(0);
    b.rect(square(20, 20, 10), "second");
    LoadedView loaded(b);
    ASSERT_NE(loaded.view, nullptr);
    const ELEMENT_STRUCT* e = loaded.view->elements;
    EXPECT_EQ(strlen(e->name), 63u);
    EXPECT_EQ(strlen(e->id), 255u);
    ASSERT_NE(e->next, nullptr);
    EXPECT_STREQ(e->next->name, "second");
}

TEST(ViewFileContent, EndsAndMarkers)
{
    struct Case {
        const char* label;
        std::function<void(ViewBuilder&)> write;
        int elements;
    };
    const Case cases[] = {
        {"ends after the page", [](ViewBuilder&) {}, 0},
        {"no marker 20 at all", [](ViewBuilder& b) { b.rect(square(0, 0, 1)).rect(square(0, 0, 2)); }, 2},
        {"a kind of -1 ends it", [](ViewBuilder& b) { b.rect(square(0, 0, 1)).integer(-1).rect(square(0, 0, 2)); }, 1},
        {"elements on both sides of a data section, and an empty group",
         [](ViewBuilder& b) { b.rect(square(0, 0, 1)).dataSection().beginGroup(0).endGroup(); }, 2},
    };
    for (const Case& c : cases) {
        ViewBuilder b;
        b.page(0, 0, 50, 60, 0, 0, 0);
        c.write(b);
        LoadedView loaded(b);
        ASSERT_NE(loaded.view, nullptr) << c.label;
        EXPECT_EQ(countElements(loaded.first()), c.elements) << c.label;
        EXPECT_EQ(krViewHeight(loaded.view), 60) << c.label;
    }
}

TEST(ViewFileContent, ConfigurationOnly)
{
    TempFile file(samplePanel().bytes());
    VIEW_STRUCT config = {};
    EXPECT_EQ(loadConfigFile(file.path().c_str(), &config), 0);
    EXPECT_FLOAT_EQ(config.width, 640);
    EXPECT_FLOAT_EQ(config.pageColor[1], 0.3f);
    EXPECT_EQ(config.elements, nullptr);
    EXPECT_LT(loadConfigFile("/nonexistent/view.k2d", &config), 0);
}

TEST(ViewFileRobustness, HugeCountsAndDeepNestingEndSoftly)
{
    ViewBuilder huge;
    huge.page(0, 0, 100, 100, 0, 0, 0).beginGroup(2000000000).rect(square(0, 0, 5));
    LoadedView a(huge);
    ASSERT_NE(a.view, nullptr);
    EXPECT_EQ(countElements(a.view->elements), 2);

    // Far deeper than any drawn view: the reader must neither recurse without bound nor crash.
    ViewBuilder deep;
    deep.page(0, 0, 100, 100, 0, 0, 0);
    for (int i = 0; i < 100000; ++i)
        deep.beginGroup(1);
    LoadedView b(deep);
    ASSERT_NE(b.view, nullptr);
    EXPECT_EQ(countElements(b.view->elements), 201) << "groups 200 deep and the one that stops it";

    ViewBuilder longName;
    longName.page(0, 0, 100, 100, 0, 0, 0).integer(1).integer(0x7FFFFFFF).fixed("x", 100);
    LoadedView c(longName);
    ASSERT_NE(c.view, nullptr);
}

std::set<std::string> temporaryFiles()
{
    std::set<std::string> names;
    DIR* dir = opendir("/tmp");
    while (dirent* entry = readdir(dir))
        if (strncmp(entry->d_name, "krTmp", 5) == 0)
            names.insert(entry->d_name);
    closedir(dir);
    return names;
}

TEST(ViewFromMemory, LeavesNoTemporaryFile)
{
    std::set<std::string> before = temporaryFiles();
    {
        LoadedView good(samplePanel());
        EXPECT_NE(good.view, nullptr);
    }
    const uint8_t junk[] = {1, 2, 3};
    EXPECT_EQ(krViewLoadData(junk, sizeof junk), nullptr);
    EXPECT_EQ(krViewLoadData(nullptr, 0), nullptr);
    // Other processes' loads come and go, slowly under a sanitizer: a file that stays for seconds is left behind.
    std::set<std::string> pending;
    for (const std::string& name : temporaryFiles())
        if (!before.count(name))
            pending.insert(name);
    for (int wait = 0; wait < 50 && !pending.empty(); ++wait) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const std::set<std::string> now = temporaryFiles();
        for (auto it = pending.begin(); it != pending.end();)
            it = now.count(*it) ? std::next(it) : pending.erase(it);
    }
    for (const std::string& name : pending)
        ADD_FAILURE() << "left behind: /tmp/" << name;
}

// -1 for a missing handle, -2 for one that is not a view or a window.
TEST(ViewHandles, NullAndWrongMagic)
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
    krSetBackgroundMode(&fake, 0);
    EXPECT_EQ(fake.backgroundMode, 0u);
    krWindowFree(window);
}

TEST(ViewHandles, DrawingWithoutContextIsRefused)
{
    releaseGlContext();
    LoadedView loaded(samplePanel());
    ASSERT_NE(loaded.view, nullptr);
    WINDOW_STRUCT* window = krWindowCreate();
    EXPECT_EQ(krViewDraw(window, loaded.view, 0, 0, 1), -3);
    EXPECT_EQ(krViewDrawPlane_Direct(loaded.view), -3);
    EXPECT_EQ(krViewDrawWindow(loaded.view), -3);
    EXPECT_EQ(krViewDrawPlane(loaded.view, 0), -3);
    krWindowFree(window);
}

} // namespace
