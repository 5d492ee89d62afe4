// The handles each kind lists, finding them under the pointer, the point rule of moves and
// sizes, and the phases of an edit. Edits left open cost nothing: the element is freed with
// its saved copy (the leak checker watches).
#include "KorelEdit.h"
#include "ViewFixture.h"

#include <tuple>
#include <vector>

using namespace k2dtest;

namespace {

using HandlesTest = ViewTest;

// Where a handle stands and how large it is, as a tool draws it.
using Place = std::tuple<int, int, float, float, float, float>; // id, kind, x, y, w, h

std::vector<Place> places(const STICKY_STRUCT* s)
{
    std::vector<Place> out;
    for (; s; s = s->next)
        out.emplace_back(s->id, s->kind, s->x, s->y, s->w, s->h);
    return out;
}

TEST_F(HandlesTest, EachKindListsItsHandlesInItsOrder)
{
    korelgen::TextFields arial, courier;
    arial.align = KR_POS_UPPER_RIGHT;
    courier.fontFamily = "Courier [fixed]";
    VIEW_STRUCT* view = load(blackPage().rect({100, 100, 200, 150}, "rect").line({}, "line").polyline({}, "poly")
                                 .circle({}, "circle").text(arial, "text").text(courier, "fixed")
                                 .beginGroup(1, "group").rect({}).endGroup());
    ASSERT_TRUE(view);
    const std::vector<std::pair<const char*, std::vector<int>>> expected = {
        {"line", {100, 101, 9, 0}},
        {"poly", {100, 101, 102, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"circle", {50, 51, 9, 1, 3, 5, 7, 2, 4, 6, 8, 0}},
        {"text", {1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"fixed", {9}},
        {"group", {9, 1, 2, 3, 4, 5, 6, 7, 8, 0}},
    };
    for (const auto& [name, order] : expected) {
        std::vector<int> ids;
        for (const Place& handle : places(krObjGet(view, name)->stickies))
            ids.push_back(std::get<0>(handle));
        EXPECT_EQ(ids, order) << name;
    }
    // Clockwise from the upper left, the centre, then the frame as lower left corner and size.
    STICKY_STRUCT* handles = krObjGet(view, "rect")->stickies;
    const std::vector<Place> rect = {
        {1, 1, 100, 150, 4, 4}, {2, 1, 150, 150, 4, 4}, {3, 1, 200, 150, 4, 4}, {4, 1, 200, 125, 4, 4},
        {5, 1, 200, 100, 4, 4}, {6, 1, 150, 100, 4, 4}, {7, 1, 100, 100, 4, 4}, {8, 1, 100, 125, 4, 4},
        {9, 3, 150, 125, 4, 4}, {0, 0, 100, 100, 100, 50}};
    EXPECT_EQ(places(handles), rect);
    EXPECT_EQ(getSticky(krObjGet(view, "poly")->stickies, 101)->w, 2);
    EXPECT_EQ(getSticky(krObjGet(view, "text")->stickies, KR_POS_UPPER_RIGHT)->kind, KR_STICKY_ANCHOR);

    // Handles keep their size on the screen: 4 pixels are 2 units at zoom 2; the edge is outside.
    for (auto [x, zoom, id] : {std::tuple{204.0f, 1, 0}, {202.0f, 2, 0}, {201.9f, 2, 3}, {203.9f, 1, 3}})
        EXPECT_EQ(findSticky(handles, x, 150, float(zoom)), id) << x << " at zoom " << zoom;
    EXPECT_EQ(std::pair(int(getSticky(handles, 3)->hit), int(getSticky(handles, 1)->hit)), std::pair(1, 0));
    // The frame comes last: from it, the list holds only a frame, which is never hit.
    EXPECT_EQ(findSticky(getSticky(handles, KR_HANDLE_FRAME), 100, 100, 1), 0);
}

struct DragCase {
    const char* what;
    int handle, shift, ctrl;
    std::vector<std::pair<float, float>> moves; // the pointer of each update
    float expected[4]; // the box after the end
};

// The rectangle (100, 100)-(200, 150) dragged by a handle as a tool does: begin with its own
// handles, an update per move, end. A stray update before the begin does nothing.
const DragCase kDrags[] = {
    {"corner 3 about corner 7", 3, 0, 0, {{250, 200}}, {100, 100, 250, 200}},
    {"ctrl: the larger factor on both axes", 3, 0, 1, {{250, 200}}, {100, 100, 300, 200}},
    {"shift: about the centre", 3, 1, 0, {{250, 200}}, {50, 50, 250, 200}},
    {"shift and ctrl", 3, 1, 1, {{250, 200}}, {0, 50, 300, 200}},
    {"each update from the start", 3, 0, 0, {{260, 210}, {250, 200}}, {100, 100, 250, 200}},
    {"onto the anchor nothing moves", 3, 0, 0, {{100, 100}}, {100, 100, 200, 150}},
    {"across the anchor it mirrors", 3, 0, 0, {{50, 50}}, {50, 50, 100, 100}},
    {"ctrl on a tie of 2 and -2 takes -2, y's", 3, 0, 1, {{300, 0}}, {-100, 0, 100, 100}},
    {"edge 2 moves the top only", 2, 0, 0, {{0, 175}}, {100, 100, 200, 175}},
    {"move: the pointer is the new centre", KR_HANDLE_CENTRE, 0, 0, {{160, 140}}, {110, 115, 210, 165}},
    {"a quarter turn", KR_EDIT_ROTATE, 0, 0, {{90, 0}}, {125, 75, 175, 175}},
    {"width 40 about the centre", KR_EDIT_WIDTH, 0, 0, {{40, 0}}, {130, 100, 170, 150}},
    {"height 10 about the centre", KR_EDIT_HEIGHT, 0, 0, {{0, 10}}, {100, 120, 200, 130}},
};

TEST_F(HandlesTest, DraggingAHandleResizesTheBox)
{
    for (const DragCase& c : kDrags) {
        VIEW_STRUCT* view = load(blackPage().rect({100, 100, 200, 150}));
        ASSERT_TRUE(view);
        ELEMENT_STRUCT* e = view->elements;
        setShift(c.shift);
        setCtrl(c.ctrl);
        KR_EDIT_VALUE v = {};
        EXPECT_EQ(e->edit(e, e->stickies, c.handle, KR_EDIT_UPDATE, &v), 0);
        e->edit(e, e->stickies, c.handle, KR_EDIT_BEGIN, &v);
        for (auto [x, y] : c.moves) {
            v.x = x, v.y = y;
            e->edit(e, e->stickies, c.handle, KR_EDIT_UPDATE, &v);
        }
        e->edit(e, e->stickies, c.handle, KR_EDIT_END, &v);
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(e->bounds[i], c.expected[i], 1e-3) << c.what;
    }
    setShift(0);
    setCtrl(0);
}

// Kinds that keep no corners: a circle scales its matrix, a graph keeps a positive size, a text
// is drawn through its matrix until its font is made anew at the size it shows.
TEST_F(HandlesTest, CircleGraphAndTextFollowTheirHandles)
{
    KR_EDIT_VALUE v = {};
    const auto drag = [&](ELEMENT_STRUCT* e, int handle, float x, float y) {
        e->edit(e, e->stickies, handle, KR_EDIT_BEGIN, &v);
        v.x = x, v.y = y;
        e->edit(e, e->stickies, handle, KR_EDIT_UPDATE, &v);
    };
    VIEW_STRUCT* view = load(blackPage().circle({200, 200})); // radius 50
    ASSERT_TRUE(view);
    ELEMENT_STRUCT* e = view->elements;
    const Ink before = draw(view).ink();
    drag(e, KR_POS_RIGHT, 300, 200);
    const Ink after = draw(view).ink();
    EXPECT_NEAR(after.x0, 150, 1);
    EXPECT_NEAR(after.x1, 300, 1);
    EXPECT_EQ(after.height(), before.height());

    view = load(blackPage().graph({0, 100, 100, 400, 200}));
    ASSERT_TRUE(view);
    drag(view->elements, KR_POS_LOWER_RIGHT, 600, 50);
    const GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(view->elements->data);
    EXPECT_EQ(std::vector<float>({g->x, g->y, g->width, g->height}), (std::vector<float>{100, 50, 500, 250}));

    // Twice as high by its upper middle handle, an Arial text of 30.
    view = load(blackPage().text({}));
    ASSERT_TRUE(view);
    e = view->elements;
    const TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(e->data);
    const float top = getSticky(e->stickies, KR_POS_TOP)->y, bottom = getSticky(e->stickies, KR_POS_BOTTOM)->y;
    drag(e, KR_POS_TOP, t->x, bottom + 2 * (top - bottom));
    EXPECT_NEAR(t->matrix[3], 2, 1e-3);
    const int stretched = draw(view).ink().height();
    e->edit(e, e->stickies, KR_POS_TOP, KR_EDIT_END, &v);
    EXPECT_EQ(std::pair(t->fontSize, t->textSize), std::pair(60, 30));
    EXPECT_NEAR(draw(view).ink().height(), stretched, 2);
}

} // namespace
