// Element records and the list operations an editing tool and the readers use.
#include "KorelEdit.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstdio>
#include <string>
#include <tuple>

namespace {

struct ListOwner {
    ELEMENT_STRUCT* head = nullptr;
    ~ListOwner() { elementDeleteAll(&head); }
    ELEMENT_STRUCT* add(uint32_t type, ELEMENT_STRUCT** list = nullptr)
    {
        ELEMENT_STRUCT* e = elementCreate(type);
        elementAppend(e, list ? list : &head);
        return e;
    }
};

TEST(ElementRecords, OldTextCodeBecomesTextAndCodesWithoutKindHaveNoRecord)
{
    ListOwner list;
    ELEMENT_STRUCT* text = list.add(KR_TEXT_OLD);
    EXPECT_EQ(text->type, uint32_t(KR_TEXT));
    EXPECT_EQ(std::string(text->name).rfind("TEXT-", 0), 0u) << text->name;
    ASSERT_NE(text->data, nullptr);
    EXPECT_STREQ(static_cast<TEXT_STRUCT*>(text->data)->text, "Text");
    for (uint32_t code : {9u, 15u, 20u, 0xFFFFFFFFu}) {
        ELEMENT_STRUCT* e = list.add(code);
        EXPECT_TRUE(e && e->type == code && !e->data && !e->setPickSticky) << code;
    }
    EXPECT_EQ(setElementAttr(list.head), 0);
}

// The label text: digits before the point for the range, behind it for the step; a zero step
// or an empty range still gives a usable format, its decimals capped at 20.
TEST(GraphLabels, FormatFollowsStepAndRange)
{
    ListOwner owner;
    GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(owner.add(KR_GRAPH)->data);
    char text[64];
    const std::tuple<float, float, float, const char*> rows[] = {
        {0.5f, -100, 100, "  1.5"}, {0.01f, 0, 5, "1.500"}, {0, 0, 0, "1.50000000000000000000"}};
    for (const auto& [step, low, high, shown] : rows) {
        g->tickySpace = step;
        KGraphSetYLabel(g, low, high);
        snprintf(text, sizeof text, g->labelYFormat, 1.5);
        EXPECT_STREQ(text, shown) << g->labelYFormat;
    }
}

// A new name skips every name the list holds, at any depth; the counter moves only on a
// collision, so a free name doesn't use it up.
TEST(ElementNames, NewNameSkipsNamesTakenAtAnyDepth)
{
    ListOwner list;
    ELEMENT_STRUCT* outer = list.add(KR_GROUP);
    ELEMENT_STRUCT* inner = list.add(KR_GROUP, &outer->child);
    ELEMENT_STRUCT* leaf = list.add(KR_LINE, &inner->child);
    ELEMENT_STRUCT* b = elementCreate(KR_LINE);
    EXPECT_STREQ(leaf->name, b->name);
    EXPECT_EQ(std::string(b->id), std::string(b->name) + "-ID");
    elementNewName(b, list.head);
    EXPECT_STRNE(leaf->name, b->name);
    elementAppend(b, &list.head);
    EXPECT_STREQ(list.add(KR_LINE)->name, b->name);
    EXPECT_EQ(elementCheckName(nullptr, b->name), 0);
}

// Run under the sanitizers, a leak or double free of the deleted tree, with the actions of its
// elements, fails the suite.
TEST(ElementLists, DeleteUnlinksFromAnyPositionWithTheWholeTree)
{
    ListOwner list;
    ELEMENT_STRUCT* a = list.add(KR_RECT);
    ELEMENT_STRUCT* group = list.add(KR_GROUP);
    ELEMENT_STRUCT* c = list.add(KR_RECT);
    ELEMENT_STRUCT* inner = list.add(KR_GROUP, &group->child);
    list.add(KR_TEXT, &inner->child);
    ELEMENT_STRUCT* poly = list.add(KR_CPOLY, &inner->child);
    for (int p = 0; p < 4; ++p)
        appendCoord(&static_cast<POLY_STRUCT*>(poly->data)->coords, createCoord());
    for (ELEMENT_STRUCT* owner : {inner, poly}) {
        ACTION_STRUCT* action = createAction();
        appendTh(&action->colorThresholds, createTh());
        action->heldValue2 = malloc(8);
        appendAction(&owner->actions, action);
    }
    elementDelete(group, &list.head);
    EXPECT_TRUE(a->next == c && c->prev == a);
    elementDelete(a, &list.head);
    EXPECT_TRUE(list.head == c && c->prev == nullptr);
    EXPECT_EQ(elementDelete(nullptr, &list.head), 0);
    ELEMENT_STRUCT* empty = nullptr;
    EXPECT_EQ(elementDeleteAll(&empty), 0);
}

} // namespace
