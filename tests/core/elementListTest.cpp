// Element records and the list operations an editing tool and the readers use.
#include "KorelEdit.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstdio>
#include <string>
#include <vector>

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

TEST(GraphLabels, FormatFollowsStepAndRange)
{
    ListOwner owner;
    GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(owner.add(KR_GRAPH)->data);
    // Ticks of 2 over 0..100 need three integer digits and no decimals.
    EXPECT_STREQ(g->labelXFormat, "%3.0f");
    g->tickySpace = 0.5f;
    KGraphSetYLabel(g, -100, 100);
    EXPECT_STREQ(g->labelYFormat, "%5.1f");
    g->tickySpace = 0.01f;
    KGraphSetYLabel(g, 0, 5);
    EXPECT_STREQ(g->labelYFormat, "%5.3f");
    // A zero step or an empty range must still give a usable format.
    g->tickySpace = 0;
    KGraphSetYLabel(g, 0, 0);
    char text[64];
    snprintf(text, sizeof text, g->labelYFormat, 1.5);
    EXPECT_NE(std::string(text).find('1'), std::string::npos);
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
    EXPECT_EQ(a->next, c);
    EXPECT_EQ(c->prev, a);
    elementDelete(a, &list.head);
    EXPECT_EQ(list.head, c);
    EXPECT_EQ(c->prev, nullptr);
    EXPECT_EQ(elementDelete(nullptr, &list.head), 0);
    ELEMENT_STRUCT* empty = nullptr;
    EXPECT_EQ(elementDeleteAll(&empty), 0);
}

TEST(Thresholds, InsertionsBesideAPositionOrTheHead)
{
    TH_STRUCT* head = nullptr;
    TH_STRUCT* made[5];
    for (int i = 0; i < 5; ++i) {
        made[i] = createTh();
        made[i]->value = i;
    }
    thInsertBefore(made[0], nullptr, &head); // into an empty list: the only entry
    thInsertBefore(made[1], made[0], &head); // before the head: the new head
    thInsertAfter(made[2], made[1], &head);
    thInsertAfter(made[3], nullptr, &head); // null position: after the head
    appendTh(&head, made[4]);
    std::vector<int> values;
    for (const TH_STRUCT* t = head; t; t = t->next)
        values.push_back(t->value);
    EXPECT_EQ(values, std::vector<int>({1, 3, 2, 0, 4}));
    EXPECT_EQ(made[0]->prev, made[2]);
    while (head)
        delTh(&head, head);
}

} // namespace
