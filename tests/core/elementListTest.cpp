// Element records and the list operations an editing tool and the readers use.
#include "KorelEdit.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct ListOwner {
    ELEMENT_STRUCT* head = nullptr;
    ~ListOwner() { elementDeleteAll(&head); }
    ELEMENT_STRUCT* add(uint32_t type)
    {
        ELEMENT_STRUCT* e = elementCreate(type);
        elementAppend(e, &head);
        return e;
    }
};

TEST(ElementRecords, OldTextCodeBecomesTextWithItsRecord)
{
    ListOwner list;
    ELEMENT_STRUCT* e = list.add(KR_TEXT_OLD);
    EXPECT_EQ(e->type, uint32_t(KR_TEXT));
    EXPECT_EQ(std::string(e->name).rfind("TEXT-", 0), 0u) << e->name;
    ASSERT_NE(e->data, nullptr);
    const TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(e->data);
    EXPECT_STREQ(t->text, "Text");
    EXPECT_STREQ(t->fontFamily, "Arial");
    EXPECT_EQ(t->fontSize, 30);
    EXPECT_EQ(t->textSize, 30);
    EXPECT_EQ(t->align, 7);
}

TEST(ElementRecords, CodesWithoutKindHaveNoRecordAndNoOperations)
{
    ListOwner list;
    for (uint32_t code : {9u, 15u, 20u, 0xFFFFFFFFu}) {
        ELEMENT_STRUCT* e = list.add(code);
        ASSERT_NE(e, nullptr);
        EXPECT_EQ(e->data, nullptr);
        EXPECT_EQ(e->setPickSticky, nullptr);
        EXPECT_EQ(e->type, code);
    }
    EXPECT_EQ(setElementAttr(list.head), 0);
}

TEST(ElementRecords, KindDefaults)
{
    ListOwner list;
    const RECT_STRUCT* r = static_cast<RECT_STRUCT*>(list.add(KR_RECT)->data);
    EXPECT_EQ(r->strokeOn, 1);
    EXPECT_FLOAT_EQ(r->strokeWidth, 2.0f);
    EXPECT_FLOAT_EQ(r->strokeColor[2], 1.0f);
    EXPECT_FLOAT_EQ(r->fillColor[2], 1.0f);
    EXPECT_EQ(r->stipplePattern, 0xFFFF);

    const CIRCLE_STRUCT* arc = static_cast<CIRCLE_STRUCT*>(list.add(KR_ARC)->data);
    EXPECT_FLOAT_EQ(arc->start, 3.1415927f);
    EXPECT_EQ(arc->fillOn, 0);
    const CIRCLE_STRUCT* circle = static_cast<CIRCLE_STRUCT*>(list.add(KR_CIRCLE)->data);
    EXPECT_FLOAT_EQ(circle->end, 6.2831855f);
    EXPECT_FLOAT_EQ(circle->fillColor[2], 0.5f);

    const POLY_STRUCT* open = static_cast<POLY_STRUCT*>(list.add(KR_POLYLINE)->data);
    const POLY_STRUCT* closed = static_cast<POLY_STRUCT*>(list.add(KR_CPOLY)->data);
    EXPECT_EQ(open->closed, 0);
    EXPECT_EQ(closed->closed, 1);
    EXPECT_EQ(open->antialias, 1);
    EXPECT_EQ(closed->antialias, 0);
    EXPECT_FLOAT_EQ(closed->fillLevel, 1.0f);

    const GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(list.add(KR_GRAPH)->data);
    EXPECT_STREQ(g->fontFamily, "Helvetica [fixed]");
    EXPECT_NE(g->font, 0u);
    EXPECT_EQ(g->samples, 500);
    // Ticks of 2 over 0..100 need three integer digits and no decimals.
    EXPECT_STREQ(g->labelXFormat, "%3.0f");

    const SLIDER_STRUCT* s = static_cast<SLIDER_STRUCT*>(list.add(KR_SLIDER)->data);
    EXPECT_FLOAT_EQ(s->knobHalfSize, 15.0f);
    const BUTTON_STRUCT* b = static_cast<BUTTON_STRUCT*>(list.add(KR_BUTTON)->data);
    EXPECT_FLOAT_EQ(b->strokeWidth, 4.0f);
    const IMAGE_STRUCT* i = static_cast<IMAGE_STRUCT*>(list.add(KR_IMAGE)->data);
    EXPECT_FLOAT_EQ(i->fillColor[3], 1.0f);
    const LINE_STRUCT* l = static_cast<LINE_STRUCT*>(list.add(KR_LINE)->data);
    EXPECT_FLOAT_EQ(l->strokeColor[0], 0.5f);
}

TEST(ElementRecords, CreatorsCopyTheirSource)
{
    RECT_STRUCT source = {};
    source.strokeWidth = 7;
    source.fillStyle = 12;
    RECT_STRUCT* copy = createRect(&source);
    ASSERT_NE(copy, nullptr);
    EXPECT_FLOAT_EQ(copy->strokeWidth, 7);
    EXPECT_EQ(copy->fillStyle, 12);
    free(copy);
}

TEST(GraphLabels, FormatFollowsStepAndRange)
{
    ListOwner owner;
    GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(owner.add(KR_GRAPH)->data);
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

TEST(ElementNames, FreeNamesDoNotUseUpTheCounter)
{
    ListOwner list;
    ELEMENT_STRUCT* a = list.add(KR_LINE);
    ELEMENT_STRUCT* b = elementCreate(KR_LINE);
    EXPECT_STREQ(a->name, b->name);
    EXPECT_EQ(std::string(a->id), std::string(a->name) + "-ID");
    elementNewName(b, list.head);
    EXPECT_STRNE(a->name, b->name);
    elementAppend(b, &list.head);
    // The counter moved once: a new element without a list now gets the later name.
    ELEMENT_STRUCT* c = list.add(KR_LINE);
    EXPECT_STREQ(c->name, b->name);
}

TEST(ElementNames, CheckSearchesGroupsAtAnyDepth)
{
    ListOwner list;
    ELEMENT_STRUCT* outer = list.add(KR_GROUP);
    strcpy(outer->name, "outer");
    ELEMENT_STRUCT* inner = elementCreate(KR_GROUP);
    strcpy(inner->name, "inner");
    elementAppend(inner, &outer->child);
    ELEMENT_STRUCT* leaf = elementCreate(KR_RECT);
    strcpy(leaf->name, "leaf");
    elementAppend(leaf, &inner->child);
    list.add(KR_RECT);

    EXPECT_EQ(elementCheckName(list.head, "outer"), 1);
    EXPECT_EQ(elementCheckName(list.head, "inner"), 1);
    EXPECT_EQ(elementCheckName(list.head, "leaf"), 1);
    EXPECT_EQ(elementCheckName(list.head, "Leaf"), 0);
    EXPECT_EQ(elementCheckName(nullptr, "leaf"), 0);
}

TEST(ElementLists, DeleteUnlinksFromAnyPosition)
{
    ListOwner list;
    ELEMENT_STRUCT* a = list.add(KR_RECT);
    ELEMENT_STRUCT* b = list.add(KR_RECT);
    ELEMENT_STRUCT* c = list.add(KR_RECT);
    elementDelete(b, &list.head);
    EXPECT_EQ(a->next, c);
    EXPECT_EQ(c->prev, a);
    elementDelete(a, &list.head);
    EXPECT_EQ(list.head, c);
    EXPECT_EQ(c->prev, nullptr);
    EXPECT_EQ(elementDelete(nullptr, &list.head), 0);
    ELEMENT_STRUCT* empty = nullptr;
    EXPECT_EQ(elementDeleteAll(&empty), 0);
}

TEST(ElementLists, DeletingAGroupDeletesItsTree)
{
    // Run under the sanitizers, a leak or double free here fails the suite.
    ListOwner list;
    ELEMENT_STRUCT* group = list.add(KR_GROUP);
    for (int i = 0; i < 3; ++i) {
        ELEMENT_STRUCT* inner = elementCreate(KR_GROUP);
        elementAppend(inner, &group->child);
        elementAppend(elementCreate(KR_TEXT), &inner->child);
        ELEMENT_STRUCT* poly = elementCreate(KR_CPOLY);
        for (int p = 0; p < 4; ++p)
            appendCoord(&static_cast<POLY_STRUCT*>(poly->data)->coords, createCoord());
        elementAppend(poly, &inner->child);
    }
    elementDeleteAll(&list.head);
    EXPECT_EQ(list.head, nullptr);
}

TEST(ElementLists, SeedingShowsEverythingButScissors)
{
    ListOwner list;
    ELEMENT_STRUCT* rect = list.add(KR_RECT);
    ELEMENT_STRUCT* group = list.add(KR_GROUP);
    ELEMENT_STRUCT* scissor = elementCreate(KR_SCISSOR);
    elementAppend(scissor, &group->child);
    rect->attr.visible = 0;
    rect->attr.strokeColorSet = 1;
    rect->attr.visibleSet = 1;
    rect->attr.blink = 1;
    group->attr.fillColorSet = 1;
    EXPECT_EQ(setElementAttr(list.head), 0);
    EXPECT_EQ(rect->attr.visible, 1);
    EXPECT_EQ(rect->attr.strokeColorSet, 0);
    EXPECT_EQ(rect->attr.visibleSet, 0);
    EXPECT_EQ(rect->attr.blink, 1); // blink is left as it is
    EXPECT_EQ(group->attr.visible, 1);
    EXPECT_EQ(group->attr.fillColorSet, 0);
    EXPECT_FLOAT_EQ(group->attr.fillColor[3], 1.0f);
    EXPECT_EQ(scissor->attr.visible, 0);
}

TEST(Thresholds, DefaultsAndInsertions)
{
    TH_STRUCT* head = nullptr;
    TH_STRUCT* a = createTh();
    EXPECT_EQ(a->value, 1);
    EXPECT_FLOAT_EQ(a->color[0], 0.5f);
    EXPECT_FLOAT_EQ(a->color[1], 1.0f);
    EXPECT_FLOAT_EQ(a->color[2], 0.5f);

    thInsertBefore(a, nullptr, &head); // into an empty list: the only entry
    EXPECT_EQ(head, a);
    TH_STRUCT* b = createTh();
    thInsertBefore(b, a, &head); // before the head: the new head
    EXPECT_EQ(head, b);
    TH_STRUCT* c = createTh();
    thInsertAfter(c, b, &head); // b, c, a
    EXPECT_EQ(b->next, c);
    EXPECT_EQ(c->next, a);
    EXPECT_EQ(a->prev, c);
    TH_STRUCT* d = createTh();
    thInsertAfter(d, nullptr, &head); // null position: after the head
    EXPECT_EQ(head->next, d);
    TH_STRUCT* e = createTh();
    appendTh(&head, e);
    EXPECT_EQ(a->next, e);

    int n = 0;
    for (TH_STRUCT* t = head; t; t = t->next)
        ++n;
    EXPECT_EQ(n, 5);
    while (head)
        delTh(&head, head);
}

TEST(Points, IdsRunOnAndListsKeepOrder)
{
    COORD_STRUCT* head = nullptr;
    COORD_STRUCT* first = createCoord();
    COORD_STRUCT* second = createCoord();
    EXPECT_EQ(second->id, first->id + 1);
    appendCoord(&head, first);
    appendCoord(&head, second);
    EXPECT_EQ(head, first);
    EXPECT_EQ(first->next, second);
    delCoord(&head, first);
    EXPECT_EQ(head, second);
    EXPECT_EQ(second->prev, nullptr);
    delCoord(&head, second);
    EXPECT_EQ(head, nullptr);
}

} // namespace
