// The object interface as an editing tool uses it: finding elements by name and by place, and
// changing them.
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

std::vector<float> boundsOf(const ELEMENT_STRUCT* e)
{
    return std::vector<float>(e->bounds, e->bounds + 4);
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
    EXPECT_EQ(krObjGetAll(nullptr, &count), nullptr);
    EXPECT_EQ(krObjPick(nullptr, view, 0, 0, &count), nullptr);

    // Window pixel (160, 140 from the top) is view (160, 160): both squares and their group.
    draw(view);
    ELEMENT_STRUCT** hits = krObjPick(window, view, 160, 140, &count);
    EXPECT_EQ(names(hits, count), (std::vector<std::string>{"same", "square", "same"}));
    EXPECT_EQ(hits[0], child);
    // The line reaches 5 units at zoom 1, half as far at zoom 2.
    hits = krObjPickView(view, 20, 46, &count);
    EXPECT_EQ(names(hits, count), (std::vector<std::string>{"across"}));
    EXPECT_EQ(krObjPickView(view, 20, 55, &count), nullptr);
    draw(view, 0, 0, 2);
    EXPECT_EQ(krObjPick(window, view, 40, 300 - 106, &count), nullptr) << "3 units off";
    EXPECT_EQ(krObjPick(window, view, 40, 300 - 104, &count)[0], view->elements) << "2 units off";

    // The children scale about their group's centre, 175; a child is placed in view units and
    // read relative to its group.
    EXPECT_EQ(krObjSetWidth(child->parent, 300), 0);
    EXPECT_EQ(boundsOf(child), (std::vector<float>{25, 100, 225, 200}));
    EXPECT_EQ(boundsOf(krObjGet(view, "square")), (std::vector<float>{125, 150, 325, 250}));
    EXPECT_EQ(krObjSetX(child, 40), 0);
    EXPECT_EQ(boundsOf(child), (std::vector<float>{-60, 100, 140, 200}));
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
    EXPECT_EQ(krActionGetAll(nullptr, &count), nullptr);
}

} // namespace
