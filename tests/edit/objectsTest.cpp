// The object interface as an editing tool uses it: finding elements by name and by place, and
// changing them, every kind as it then draws.
#include "KorelEdit.h"
#include "ViewFixture.h"
#include "../actions/actionViews.h"

#include <cstring>
#include <string>
#include <vector>

using namespace k2dtest;

namespace {

std::vector<std::string> names(ELEMENT_STRUCT** list, int count)
{
    std::vector<std::string> out;
    for (int i = 0; i < count; ++i)
        out.push_back(krObjName(list[i]));
    return out;
}

using ObjectsTest = ViewTest;

TEST_F(ObjectsTest, FindsAndSizesChildrenBeforeAndWithinTheirGroup)
{
    VIEW_STRUCT* view = load(blackPage().line({0, 50, 400, 50}, "across").beginGroup(2, "same")
                                 .rect(box(100, 100, 200, 200), "same").rect(box(150, 150, 250, 250), "square")
                                 .endGroup());
    ASSERT_TRUE(view);
    ELEMENT_STRUCT* child = krObjGet(view, "same");
    int count = -5;
    ELEMENT_STRUCT** all = krObjGetAll(view, &count);
    EXPECT_EQ(names(all, count), (std::vector<std::string>{"across", "same", "same", "square"}));
    EXPECT_EQ(child, all[2]) << "the child comes before its group";
    krObjFree(all);
    EXPECT_EQ(krObjGet(nullptr, "same"), reinterpret_cast<ELEMENT_STRUCT*>(-1));

    // Window pixel (160, 140 from the top) is view (160, 160): both squares and their group.
    draw(view);
    ELEMENT_STRUCT** hits = krObjPick(window, view, 160, 140, &count);
    EXPECT_EQ(names(hits, count), (std::vector<std::string>{"same", "square", "same"}));
    EXPECT_EQ(hits[0], child);
    // The line reaches 5 units at zoom 1, half as far at zoom 2.
    EXPECT_EQ(krObjPickView(view, 20, 46, &count)[0], view->elements);
    EXPECT_EQ(krObjPickView(view, 20, 55, &count), nullptr);
    draw(view, 0, 0, 2);
    EXPECT_EQ(krObjPick(window, view, 40, 300 - 106, &count), nullptr) << "3 units off";
    EXPECT_EQ(krObjPick(window, view, 40, 300 - 104, &count)[0], view->elements) << "2 units off";

    // A child is placed in view units and read relative to its group (a group's scaling: the
    // group row of EveryKindMovesAndSizesAsDrawn).
    EXPECT_EQ(krObjSetX(child, 40), 0);
    EXPECT_EQ((std::vector<float>(child->bounds, child->bounds + 4)), (std::vector<float>{-10, 100, 90, 200}));
    EXPECT_FLOAT_EQ(krObjX(child), 40 - krObjX(child->parent));
}

// Hits go by resting places alone: a moved, hidden or plain element is found all the same,
// and of 600 stacked ones 499 are reported.
TEST_F(ObjectsTest, PicksAtRestHiddenMovedOrPlainAndCountsAtMost499)
{
    ViewBuilder b = blackPage();
    for (int i = 0; i < 600; ++i)
        b.rect(box(10, 10, 20, 20), ("r" + std::to_string(i)).c_str());
    VIEW_STRUCT* view = load(b);
    ASSERT_TRUE(view);
    view->elements->attr.visible = 0;
    view->elements->pickMatrix[4] = 1000;
    int count = 0;
    ELEMENT_STRUCT** hits = krObjPickView(view, 15, 15, &count);
    ASSERT_EQ(count, 499);
    EXPECT_EQ(hits[0], view->elements);
    EXPECT_STREQ(krObjName(hits[499]), "r599") << "later hits overwrite the slot behind the table";
}

// A mask of 0 changes nothing; a record's fields re-seed the look; a graph takes the fill as its
// background, a text its string cut to 255; a kind without a record has no attributes.
TEST_F(ObjectsTest, AttributesTravelByKindAndMask)
{
    RectFields r = box(100, 80, 200, 120);
    r.strokeWidth = 2.5f;
    VIEW_STRUCT* view = load(blackPage().rect(r, "bar").graph({}, "graph").text({}, "label").bodiless(9, "odd"));
    ASSERT_TRUE(view);
    ELEMENT_STRUCT* bar = krObjGet(view, "bar");
    const RECT_STRUCT* record = static_cast<RECT_STRUCT*>(bar->data);
    OBJ_ATTR attr = {};
    ASSERT_EQ(krObjGetAttr(bar, &attr), 0);
    const RECT_STRUCT before = *record;
    attr.x = 1e30f;
    EXPECT_EQ(krObjSetAttr(bar, &attr), 0);
    EXPECT_EQ(memcmp(&before, record, sizeof before), 0) << "mask 0 changes nothing";

    attr.mask = KR_OBJ_KIND_FIELDS | KR_OBJ_X;
    attr.x = 300;
    attr.fillColor[1] = attr.fillColor[2] = 0.25f;
    EXPECT_EQ(krObjSetAttr(bar, &attr) + krObjSetAttr(krObjGet(view, "graph"), &attr), 0);
    const std::vector<float> stored = {record->strokeWidth, bar->attr.fillColor[1], bar->x};
    EXPECT_EQ(stored, (std::vector<float>{2, 0.25f, 300})) << "stroke width, look seeded, x";
    EXPECT_FLOAT_EQ(static_cast<GRAPH_STRUCT*>(krObjGet(view, "graph")->data)->backgroundColor[2], 0.25f);
    ELEMENT_STRUCT* label = krObjGet(view, "label");
    memset(attr.text, 'x', sizeof attr.text);
    attr.mask = KR_OBJ_KIND_FIELDS;
    EXPECT_EQ(krObjSetAttr(label, &attr), 0);
    EXPECT_EQ(strlen(label->attr.text), 255u) << "stored, then seeded";
    ELEMENT_STRUCT* odd = krObjGet(view, "odd");
    EXPECT_EQ(krObjGetAttr(odd, &attr) + krObjSetAttr(odd, &attr) + krObjSetWidth(odd, 5), -3);
}

// A scale's two points become the line an action maps by.
TEST_F(ObjectsTest, ActionsScaleAndEnable)
{
    VIEW_STRUCT* view = load(blackPage().actions({act(KR_ACTION_GRAPH, "wave")}).graph({}));
    ASSERT_TRUE(view);
    int count = 0;
    ACTION_STRUCT** actions = krActionGetAll(krObjGet(view, "graph"), &count);
    ASSERT_EQ(count, 1);
    ACTION_STRUCT* a = actions[0];
    EXPECT_EQ(krActionSetScale(a, 0, 10, 0, 100) + krActionSetScale2(a, 0, 2, 5, 9) + krActionEnable(a, 0), 0);
    EXPECT_EQ((std::vector<float>{a->offset, a->slope, a->offset2, a->slope2}), (std::vector<float>{0, 10, 5, 2}));
    EXPECT_EQ(a->disabled, 1);
    krActionFree(actions);
}

struct Box {
    float x0, y0, x1, y1;
    float cx() const { return (x0 + x1) / 2; }
    float cy() const { return (y0 + y1) / 2; }
};

const std::vector<uint8_t> kWhite(16, 255); // 2 x 2 pixels

// A page with the element of a kind that fills the box; the box's centre is the element's centre.
using Add = ViewBuilder (*)(const Box&);

struct KindCase {
    const char* kind;
    Add add;
    bool sizes = true;        // a line has no side handles to size it by
    bool drawn = true;        // a scissor shows nothing in a view
    float tolerance = 1e-3f;  // a text re-measured in its re-rendered font is near the size only
    bool exact = true;        // else only the ink's centre can be told
};

// Centred on the box, as wide; a radius of 100 scaled by the matrix.
korelgen::CircleFields ellipse(const Box& r, float ry, float end = 6.2831855f)
{
    korelgen::CircleFields c;
    c.x = r.cx(), c.y = r.cy(), c.matrix[0] = (r.x1 - r.cx()) / 100, c.matrix[3] = ry / 100, c.end = end;
    return c;
}

const KindCase kCases[] = {
    {"rectangle", [](const Box& r) { return blackPage().rect({r.x0, r.y0, r.x1, r.y1}); }},
    {"polygon", [](const Box& r) {
         return blackPage().cpoly({1, 1, 3, 0, {1, 1, 1, 1}, 1, {0, 1, 0, 1}, 0, 0,
                                   {{0, r.x0, r.y0}, {1, r.x1, r.y0}, {2, r.x1, r.y1}}});
     }},
    {"circle", [](const Box& r) { return blackPage().circle(ellipse(r, r.y1 - r.cy())); }},
    // A lower half arc: its box reaches up to its centre, which stays the element's centre.
    {"arc", [](const Box& r) { return blackPage().arc(ellipse(r, r.y1 - r.y0, 3.1415927f)); }},
    {"line", [](const Box& r) { return blackPage().line({r.x0, r.cy(), r.x1, r.cy()}); }, false},
    {"image", [](const Box& r) { return blackPage().image({r.x0, r.y0, r.x1, r.y1, {1, 1, 1, 1}, 2, 2, 0, kWhite}); }},
    {"button", [](const Box& r) { return blackPage().button({r.x0, r.y0, r.x1, r.y1}); }},
    {"slider", [](const Box& r) { return blackPage().slider({r.cx(), r.cy(), r.x1 - r.x0, r.y1 - r.y0}); }},
    {"graph", [](const Box& r) { return blackPage().graph({0, r.x0, r.y0, r.x1 - r.x0, r.y1 - r.y0}); }},
    {"scissor", [](const Box& r) { return blackPage().scissor(r.x0, r.y0, r.x1, r.y1); }, true, false},
    {"text", [](const Box&) { return blackPage().text({}); }, true, true, 3, false},
    {"group", [](const Box& r) { return blackPage().beginGroup(1).rect({r.x0, r.y0, r.x1, r.y1}).endGroup(); }},
};

// Each element, moved and sized, shows as one loaded at the target place. (Garbage operands:
// the random edits of editRoundTripTest.)
TEST_F(ObjectsTest, EveryKindMovesAndSizesAsDrawn)
{
    for (const KindCase& c : kCases) {
        SCOPED_TRACE(c.kind);
        VIEW_STRUCT* view = load(c.add({10, 10, 50, 30}));
        ASSERT_TRUE(view);
        ELEMENT_STRUCT* e = view->elements;
        const float width = e->width, height = e->height;
        // Unequal factors in x and y (3 and 4), so that neither can stand in for the other.
        for (auto [set, value] :
             {std::pair{krObjSetX, 200}, {krObjSetY, 150}, {krObjSetWidth, 120}, {krObjSetHeight, 80}})
            EXPECT_EQ(set(e, value), 0);
        EXPECT_NEAR(krObjWidth(e), c.sizes ? 120 : width, c.tolerance);
        EXPECT_NEAR(krObjHeight(e), c.sizes ? 80 : height, c.tolerance);
        const Ink moved = draw(view).ink();
        EXPECT_EQ(moved.lit > 0, c.drawn);
        if (c.exact) {
            const Box target = c.sizes ? Box{140, 110, 260, 190} : Box{180, 140, 220, 160};
            const Ink expected = draw(load(c.add(target))).ink();
            for (auto edge : {&Ink::x0, &Ink::y0, &Ink::x1, &Ink::y1})
                EXPECT_NEAR(moved.*edge, expected.*edge, 1);
        } else {
            EXPECT_NEAR((moved.x0 + moved.x1) / 2, 200, 3);
            EXPECT_NEAR((moved.y0 + moved.y1) / 2, 150, 3);
        }
    }
}

} // namespace
