// The handles each kind lists, finding them under the pointer, the point rule of moves and
// sizes, and the phases of an edit.
#include "KorelEdit.h"
#include "ViewFixture.h"

#include <cstring>
#include <tuple>
#include <vector>

using namespace k2dtest;

namespace {

using HandlesTest = ViewTest;

std::vector<int> ids(const STICKY_STRUCT* s)
{
    std::vector<int> out;
    for (; s; s = s->next)
        out.push_back(s->id);
    return out;
}

TEST_F(HandlesTest, EachKindListsItsHandlesInItsOrder)
{
    korelgen::TextFields text;
    text.align = KR_POS_UPPER_RIGHT;
    VIEW_STRUCT* view = load(blackPage().rect({10, 20, 50, 40}, "rect").line({}, "line").polyline({}, "poly")
                                 .circle({}, "circle").text(text, "text").beginGroup(1, "group").rect({}).endGroup());
    ASSERT_TRUE(view);
    const std::vector<std::pair<const char*, std::vector<int>>> expected = {
        {"rect", {1, 2, 3, 4, 5, 6, 7, 8, 9, 0}},
        {"line", {100, 101, 9, 0}},
        {"poly", {100, 101, 102, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"circle", {50, 51, 9, 1, 3, 5, 7, 2, 4, 6, 8, 0}},
        {"text", {1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"group", {9, 1, 2, 3, 4, 5, 6, 7, 8, 0}},
    };
    for (const auto& [name, order] : expected)
        EXPECT_EQ(ids(krObjGet(view, name)->stickies), order) << name;
    EXPECT_EQ(getSticky(krObjGet(view, "poly")->stickies, 101)->w, 2);
    EXPECT_EQ(getSticky(krObjGet(view, "text")->stickies, KR_POS_UPPER_RIGHT)->kind, KR_STICKY_ANCHOR);

    // Handles keep their size on the screen: the upper right corner (50, 40) has a half size
    // of 4 pixels, 2 units at zoom 2.
    STICKY_STRUCT* handles = krObjGet(view, "rect")->stickies;
    for (auto [x, zoom, id] : {std::tuple{53.5f, 1, 3}, {53.5f, 2, 0}, {51.5f, 2, 3}})
        EXPECT_EQ(findSticky(handles, x, 40, float(zoom)), id) << x << " at zoom " << zoom;
    EXPECT_EQ(getSticky(handles, 3)->hit, 1);
    EXPECT_EQ(getSticky(handles, 1)->hit, 0);
    // The frame comes last: from it, the list holds only a frame, which is never hit.
    EXPECT_EQ(findSticky(getSticky(handles, KR_HANDLE_FRAME), 10, 20, 1), 0);
}

struct PointCase {
    const char* what;
    int code, shift, ctrl;
    float mx, my;
    float outX, outY; // from the point (30, 30), written into (-1, -1)
    float width = 20; // of the box the grab points frame
};

const PointCase kPointCases[] = {
    {"corner 3 doubles about corner 7", 3, 0, 0, 40, 20, 60, 60},
    {"shift scales about the centre", 3, 1, 0, 30, 15, 50, 55},
    {"ctrl takes the larger factor: 2 and -3 give -3", 3, 0, 1, 40, -30, -90, -90},
    {"onto the anchor leaves the point", 3, 0, 0, 0, 0, -1, -1},
    {"edge 4 moves x only", 4, 0, 0, 40, 99, 60, 30},
    {"move by the centre", KR_HANDLE_CENTRE, 0, 0, 15, 0, 35, 25},
    {"width 40 about the centre", KR_EDIT_WIDTH, 0, 0, 40, 0, 50, 30},
    {"height 5 about the centre", KR_EDIT_HEIGHT, 0, 0, 0, 5, 30, 17.5f},
    {"width 0 leaves the point", KR_EDIT_WIDTH, 0, 0, 0, 0, -1, -1},
    {"mirror in x about the centre", KR_EDIT_MIRROR_X, 0, 0, 0, 0, -10, 30},
    {"quarter turn", KR_EDIT_ROTATE, 0, 0, 90, 0, -15, 25},
    {"unknown code", 99, 0, 0, 1, 1, -1, -1},
    {"modifiers off again", 3, 0, 0, 40, 20, 60, 60},
    {"a box of no width keeps x", 3, 0, 0, 40, 20, 30, 60, 0},
};

TEST(ResizeMove, PointRules)
{
    for (const PointCase& c : kPointCases) {
        // The box (0, 0)-(width, 10): handles clockwise from the upper left, 9 the centre.
        const float w = c.width, grab[10][2] = {{0, 0}, {0, 10}, {w / 2, 10}, {w, 10}, {w, 5},
                                                {w, 0}, {w / 2, 0}, {0, 0}, {0, 5}, {w / 2, 5}};
        ELEMENT_STRUCT e = {};
        memcpy(e.grabPoints, grab, sizeof grab);
        setShift(c.shift);
        setCtrl(c.ctrl);
        float x = -1, y = -1;
        resizeMoveElement(&e, c.code, &x, &y, c.mx, c.my, 30, 30);
        EXPECT_NEAR(x, c.outX, 1e-4) << c.what;
        EXPECT_NEAR(y, c.outY, 1e-4) << c.what;
    }
    EXPECT_EQ(pointInRect(5, 5, 10, 10, 0, 0) + pointInRect(10, 0, 0, 10, 10, 0) + pointInRect(11, 5, 0, 0, 10, 10), 2);
}

// Each update works from the start of the edit; a corner dragged across its opposite flips
// the shape, and the geometry pass sorts the box out. Leaving an edit open costs nothing: the
// element is freed with its saved copy (the leak checker watches).
TEST_F(HandlesTest, PhasesWorkFromTheSavedStart)
{
    VIEW_STRUCT* view = load(blackPage().rect({0, 0, 20, 10}).polyline({}).beginGroup(1).line({0, 50, 100, 50})
                                 .endGroup());
    ASSERT_TRUE(view);
    ELEMENT_STRUCT* rect = view->elements;
    ELEMENT_STRUCT* poly = rect->next;
    KR_EDIT_VALUE v = {};
    const auto edit = [&](ELEMENT_STRUCT* e, int code, int phase) { return e->edit(e, e->stickies, code, phase, &v); };
    v.x = 40, v.y = 20;
    EXPECT_EQ(edit(rect, 3, KR_EDIT_UPDATE), 0);
    EXPECT_EQ(rect->bounds[2], 20) << "no update before a begin";
    for (int phase : {KR_EDIT_BEGIN, KR_EDIT_UPDATE, KR_EDIT_UPDATE})
        edit(rect, 3, phase);
    EXPECT_EQ(std::vector<float>(rect->bounds, rect->bounds + 4), (std::vector<float>{0, 0, 40, 20}));
    v.x = -20, v.y = -10;
    edit(rect, 3, KR_EDIT_UPDATE);
    EXPECT_EQ(std::vector<float>(rect->bounds, rect->bounds + 4), (std::vector<float>{-20, -10, 0, 0}));
    edit(rect, 3, KR_EDIT_END);
    EXPECT_EQ(rect->editData, nullptr);
    edit(poly, KR_HANDLE_CENTRE, KR_EDIT_BEGIN);
    edit(poly, KR_HANDLE_CENTRE, KR_EDIT_UPDATE);
    EXPECT_EQ(poly->x, -20);

    // A line has no side handles: sized through its group it follows the group's, sized alone
    // it keeps its width, whatever the group's edit left behind.
    ELEMENT_STRUCT* group = poly->next;
    EXPECT_EQ(krObjSetWidth(group, 200), 0);
    EXPECT_EQ(krObjSetWidth(group->child, 50), 0);
    EXPECT_EQ(krObjWidth(group->child), 200);
}

} // namespace
