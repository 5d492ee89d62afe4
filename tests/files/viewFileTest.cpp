// Reading binary view files: header checks, revisions, the element tree, hostile counts, and the
// handles' refusals. Cut and garbled files are the damaged-files tests' concern.
#include "GlContext.h"
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewBuilder.h"
#include "graphics/graphics.h"

#include <gtest/gtest.h>

#include <dirent.h>

#include <chrono>
#include <iterator>
#include <cstring>
#include <set>
#include <thread>
#include <string>

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
    ASSERT_NE(loaded.view, nullptr);
    EXPECT_EQ(countElements(loaded.view->elements), 1);
    const std::string log = takeLog();
    EXPECT_NE(log.find("reading view file from /tmp/"), std::string::npos) << log;
    EXPECT_NE(log.find("Version = 3.4\n"), std::string::npos) << log;
    EXPECT_EQ(log.rfind("-------------------------------------\n", 0), 0u) << log;
}

TEST(ViewFileContent, PageAndTreeAsStored)
{
    LoadedView loaded(samplePanel());
    VIEW_STRUCT* v = loaded.view;
    ASSERT_NE(v, nullptr);
    EXPECT_FLOAT_EQ(v->x, 10);
    EXPECT_FLOAT_EQ(v->y, 20);
    EXPECT_FLOAT_EQ(v->pageColor[0], 0.2f);
    EXPECT_FLOAT_EQ(v->pageColor[2], 0.4f);
    EXPECT_EQ(krViewWidth(v), 640);
    EXPECT_EQ(krViewHeight(v), 480);
    EXPECT_EQ(krViewPosX(v), 330);
    EXPECT_EQ(krViewPosY(v), 260);
    EXPECT_EQ(countElements(v->elements), 8);

    const ELEMENT_STRUCT* first = v->elements;
    EXPECT_STREQ(first->name, "first");
    EXPECT_STREQ(first->id, "rect-ID");
    const ELEMENT_STRUCT* outer = first->next;
    ASSERT_EQ(outer->type, uint32_t(KR_GROUP));
    EXPECT_STREQ(outer->name, "outer");
    const ELEMENT_STRUCT* nobody = outer->next;
    EXPECT_EQ(nobody->type, 9u);
    EXPECT_EQ(nobody->data, nullptr);
    EXPECT_STREQ(nobody->next->name, "last");
    EXPECT_EQ(nobody->next->next, nullptr);

    // The group's box is the union of its children's; children sit relative to its centre.
    const float bounds[4] = {100, 100, 230, 180};
    for (int i = 0; i < 4; ++i)
        EXPECT_FLOAT_EQ(outer->bounds[i], bounds[i]) << i;
    EXPECT_FLOAT_EQ(outer->x, 165);
    EXPECT_FLOAT_EQ(outer->y, 140);
    const ELEMENT_STRUCT* a = outer->child;
    EXPECT_FLOAT_EQ(a->x, 110 - 165);
    EXPECT_FLOAT_EQ(a->y, 110 - 140);
    EXPECT_EQ(a->parent, outer);
    const ELEMENT_STRUCT* inner = a->next;
    EXPECT_FLOAT_EQ(inner->x, 210 - 165);
    EXPECT_FLOAT_EQ(inner->y, 160 - 140);
    EXPECT_EQ(inner->child->parent, inner);
    EXPECT_FLOAT_EQ(inner->child->x, 205 - 210);
    EXPECT_EQ(first->parent, nullptr);

    // Corners in view units and the expanded fill pattern are in the record.
    const RECT_STRUCT* r = static_cast<const RECT_STRUCT*>(a->data);
    EXPECT_FLOAT_EQ(r->cornerX[2], 120);
    EXPECT_FLOAT_EQ(r->cornerY[1], 120);
    EXPECT_FLOAT_EQ(r->localX[0], -10);
    EXPECT_EQ(r->fillPattern[0], 0xFF);
}

TEST(ViewFileContent, StylesExpandIntoStipplesAndPatterns)
{
    RectFields s = square(0, 0, 10);
    s.strokeStyle = 3;
    s.fillStyle = 1;
    ViewBuilder b = ViewBuilder();
    b.page(0, 0, 100, 100, 0, 0, 0).rect(s);
    LoadedView loaded(b);
    ASSERT_NE(loaded.view, nullptr);
    const ELEMENT_STRUCT* e = loaded.view->elements;
    const RECT_STRUCT* r = static_cast<const RECT_STRUCT*>(e->data);
    EXPECT_EQ(r->stippleFactor, 1);
    EXPECT_EQ(r->stipplePattern, 0xF0F0);
    EXPECT_EQ(e->attr.stipplePattern, 0xF0F0);
    EXPECT_EQ(0, memcmp(r->fillPattern, getPattern(1), 128));
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
    // Ends right after the page: no element, no source.
    ViewBuilder pageOnly;
    pageOnly.page(0, 0, 50, 60, 0, 0, 0);
    LoadedView a(pageOnly);
    ASSERT_NE(a.view, nullptr);
    EXPECT_EQ(a.view->elements, nullptr);
    EXPECT_EQ(krViewHeight(a.view), 60);

    // No marker 20 at all: the elements still load.
    ViewBuilder noMarker;
    noMarker.page(0, 0, 50, 60, 0, 0, 0).rect(square(0, 0, 1)).rect(square(0, 0, 2));
    LoadedView b(noMarker);
    EXPECT_EQ(countElements(b.view->elements), 2);

    // A stored -1 as a kind ends the load there.
    ViewBuilder stop;
    stop.page(0, 0, 50, 60, 0, 0, 0).rect(square(0, 0, 1)).integer(-1);
    stop.rect(square(0, 0, 2));
    LoadedView c(stop);
    EXPECT_EQ(countElements(c.view->elements), 1);

    // Element runs on both sides of a data section, and an empty group.
    ViewBuilder runs;
    runs.page(0, 0, 50, 60, 0, 0, 0).rect(square(0, 0, 1)).dataSection().beginGroup(0).endGroup();
    LoadedView d(runs);
    ASSERT_EQ(countElements(d.view->elements), 2);
    const ELEMENT_STRUCT* group = d.view->elements->next;
    EXPECT_EQ(group->child, nullptr);
    EXPECT_FLOAT_EQ(group->width, 0);
    EXPECT_EQ(group->pickShape, 1);
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
    EXPECT_LE(countElements(b.view->elements), 201);

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

TEST(ViewHandles, NullAndWrongMagic)
{
    EXPECT_EQ(krViewWidth(nullptr), -1);
    EXPECT_EQ(krViewFree(nullptr), -1);
    EXPECT_EQ(krViewSetScissorType(nullptr, 1), -1);
    VIEW_STRUCT fake = {};
    fake.magic = 0x12345678;
    EXPECT_EQ(krViewWidth(&fake), -2);
    EXPECT_EQ(krViewHeight(&fake), -2);
    EXPECT_EQ(krViewPosX(&fake), -2);
    EXPECT_EQ(krViewSetColorFactor(&fake, 1, 1, 1, 1), -2);
    EXPECT_EQ(krViewSetUseDepthBuffer(&fake, 1), -2);
    EXPECT_EQ(krViewSetUseLineScaling(&fake, 1), -2);
    EXPECT_EQ(krViewFree(&fake), -2);
    krSetBackgroundMode(&fake, 0);
    EXPECT_EQ(fake.backgroundMode, 0u);

    WINDOW_STRUCT* window = krWindowCreate();
    EXPECT_EQ(krViewDraw(window, nullptr, 0, 0, 1), -1);
    EXPECT_EQ(krViewDraw(nullptr, &fake, 0, 0, 1), -1);
    EXPECT_EQ(krViewDraw(window, &fake, 0, 0, 1), -2);
    EXPECT_EQ(krWindowClear(window, &fake), -2);
    EXPECT_EQ(krWindowInit(nullptr, 10, 10), -1);
    EXPECT_EQ(krViewDrawPlane_Direct(&fake), -2);
    EXPECT_EQ(krViewDrawWindow(nullptr), -1);
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
