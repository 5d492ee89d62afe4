// Action records: defaults, the list operations an editing tool uses, copies, and ownership.
#include "KorelEdit.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

// A list of actions told apart by their ids; freed with the test.
struct ActionList {
    ACTION_STRUCT* head = nullptr;
    ~ActionList()
    {
        while (head)
            delAction(&head, head);
    }
    ACTION_STRUCT* add(int id)
    {
        ACTION_STRUCT* a = createAction();
        a->id = id;
        appendAction(&head, a);
        return a;
    }
    // Ids from the head, checking that the backward links agree.
    std::vector<int> ids() const
    {
        std::vector<int> result;
        const ACTION_STRUCT* previous = nullptr;
        for (const ACTION_STRUCT* a = head; a; a = a->next) {
            EXPECT_EQ(a->prev, previous) << "at id " << a->id;
            result.push_back(a->id);
            previous = a;
        }
        return result;
    }
};

using Ids = std::vector<int>;

ACTION_STRUCT* freeStanding(int id)
{
    ACTION_STRUCT* a = createAction();
    a->id = id;
    return a;
}

TEST(ActionRecords, NewActionPassesItsValueThrough)
{
    ACTION_STRUCT* a = createAction();
    ACTION_STRUCT* b = createAction();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(b->id, a->id + 1);
    EXPECT_EQ(a->type, KR_ACTION_TEXT);
    EXPECT_FLOAT_EQ(a->a0, 0);
    EXPECT_FLOAT_EQ(a->a1, 1);
    EXPECT_FLOAT_EQ(a->b0, 0);
    EXPECT_FLOAT_EQ(a->b1, 1);
    EXPECT_FLOAT_EQ(a->var2A1, 1);
    EXPECT_FLOAT_EQ(a->var2B1, 1);
    EXPECT_EQ(a->limit, 0);
    EXPECT_EQ(a->filter, 0);
    EXPECT_FLOAT_EQ(a->filterTime, 1);
    EXPECT_FLOAT_EQ(a->mouseInc, 1);
    EXPECT_FLOAT_EQ(a->mouseMax, 1);
    EXPECT_EQ(a->mouseHiddenActive, 1);
    EXPECT_STREQ(a->var, "");
    for (float max : {a->colorMax, a->widthMax, a->styleMax, a->visibleMax, a->blinkMax})
        EXPECT_FLOAT_EQ(max, 120);
    EXPECT_EQ(a->colorThresholds, nullptr);
    EXPECT_EQ(a->next, nullptr);
    delAction(nullptr, a);
    delAction(nullptr, b);
}

TEST(ActionLists, InsertionsBesideAPositionOrTheHead)
{
    ActionList list;
    actionInsertAfter(freeStanding(1), nullptr, &list.head); // into an empty list
    EXPECT_EQ(list.ids(), Ids({1}));
    list.add(2);
    actionInsertBefore(freeStanding(3), nullptr, &list.head);
    EXPECT_EQ(list.ids(), Ids({3, 1, 2}));
    actionInsertAfter(freeStanding(4), nullptr, &list.head); // second, not last
    EXPECT_EQ(list.ids(), Ids({3, 4, 1, 2}));
    ACTION_STRUCT* tail = list.head->next->next->next;
    actionInsertAfter(freeStanding(5), tail, &list.head);
    actionInsertBefore(freeStanding(6), tail, &list.head);
    EXPECT_EQ(list.ids(), Ids({3, 4, 1, 6, 2, 5}));

    ACTION_STRUCT* stray = freeStanding(7);
    actionInsertBefore(nullptr, list.head, &list.head);
    actionInsertAfter(stray, list.head, nullptr);
    appendAction(&list.head, nullptr);
    appendAction(nullptr, stray);
    EXPECT_EQ(list.ids(), Ids({3, 4, 1, 6, 2, 5}));
    delAction(nullptr, stray);
}

TEST(ActionLists, CutKeepsTheActionAndItsLinks)
{
    ActionList list;
    ACTION_STRUCT* first = list.add(1);
    ACTION_STRUCT* middle = list.add(2);
    ACTION_STRUCT* last = list.add(3);
    actionCut(middle, &list.head);
    EXPECT_EQ(list.ids(), Ids({1, 3}));
    EXPECT_EQ(middle->prev, first);
    EXPECT_EQ(middle->next, last);
    actionCut(first, &list.head);
    EXPECT_EQ(list.ids(), Ids({3}));
    EXPECT_EQ(first->next, last);

    actionCut(nullptr, &list.head);
    EXPECT_EQ(list.ids(), Ids({3}));
    ACTION_STRUCT* empty = nullptr;
    actionCut(middle, &empty);
    EXPECT_EQ(empty, nullptr);
    delAction(nullptr, first);
    delAction(nullptr, middle);
}

TEST(ActionLists, UpAndDownStopAtTheEnds)
{
    ActionList list;
    ACTION_STRUCT* a = list.add(1);
    ACTION_STRUCT* b = list.add(2);
    ACTION_STRUCT* c = list.add(3);
    actionUp(a, &list.head);
    actionDown(c, &list.head);
    EXPECT_EQ(list.ids(), Ids({1, 2, 3}));
    actionUp(b, &list.head);
    EXPECT_EQ(list.ids(), Ids({2, 1, 3}));
    actionDown(a, &list.head);
    EXPECT_EQ(list.ids(), Ids({2, 3, 1}));
    actionDown(b, &list.head);
    actionUp(a, &list.head);
    EXPECT_EQ(list.ids(), Ids({3, 1, 2}));

    actionUp(nullptr, &list.head);
    actionDown(nullptr, &list.head);
    ACTION_STRUCT* empty = nullptr;
    actionUp(b, &empty);
    actionDown(b, &empty);
    EXPECT_EQ(empty, nullptr);
    EXPECT_EQ(list.ids(), Ids({3, 1, 2}));
}

TEST(ActionLists, DeleteAtEitherEndAndInTheMiddle)
{
    ActionList list;
    ACTION_STRUCT* a = list.add(1);
    ACTION_STRUCT* b = list.add(2);
    list.add(3);
    ACTION_STRUCT* d = list.add(4);
    // Thresholds and run-time buffers go with the action.
    appendTh(&b->styleThresholds, createTh());
    appendTh(&b->blinkThresholds, createTh());
    b->heldValue = malloc(8);
    b->inY = static_cast<float*>(malloc(16));
    b->outX = static_cast<float*>(malloc(16));
    delAction(&list.head, b);
    EXPECT_EQ(list.ids(), Ids({1, 3, 4}));
    delAction(&list.head, a);
    EXPECT_EQ(list.ids(), Ids({3, 4}));
    delAction(&list.head, d);
    EXPECT_EQ(list.ids(), Ids({3}));
    EXPECT_EQ(delAction(&list.head, nullptr), 0);
    EXPECT_EQ(list.ids(), Ids({3}));
}

TEST(ActionCopies, StoredContentAndOwnThresholds)
{
    ACTION_STRUCT* source = createAction();
    source->type = KR_ACTION_STROKE_STYLE;
    snprintf(source->var, sizeof source->var, "speed");
    snprintf(source->var2, sizeof source->var2, "time");
    snprintf(source->format, sizeof source->format, "%%5.1f");
    snprintf(source->translatePoly, sizeof source->translatePoly, "track");
    source->a0 = -3;
    source->b1 = 7;
    source->limit = 1;
    source->var2B0 = 4;
    source->offset = 2;
    source->slope2 = 9;
    source->cg = 9;
    source->filter = 2;
    source->filterTime = 0.25f;
    source->mouseButton = 2;
    source->mouseMax = 50;
    source->mouseHiddenActive = 0;
    source->visibleMode = 1;
    source->visibleValue = 3;
    source->styleMin = -1;
    source->blinkMax = 8;
    source->heldValue = malloc(8);
    source->filterValue = 5;
    for (int i = 0; i < 3; ++i) {
        TH_STRUCT* th = createTh();
        th->lower = float(i);
        th->upper = float(i + 1);
        th->value = i + 2;
        th->color[1] = 0.125f * float(i);
        appendTh(&source->styleThresholds, th);
    }
    appendTh(&source->colorThresholds, createTh());

    ACTION_STRUCT* copy = actionCopy(source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->id, source->id);
    EXPECT_EQ(copy->type, KR_ACTION_STROKE_STYLE);
    EXPECT_STREQ(copy->var, "speed");
    EXPECT_STREQ(copy->var2, "time");
    EXPECT_STREQ(copy->format, "%5.1f");
    EXPECT_STREQ(copy->translatePoly, "track");
    EXPECT_FLOAT_EQ(copy->a0, -3);
    EXPECT_FLOAT_EQ(copy->b1, 7);
    EXPECT_EQ(copy->limit, 1);
    EXPECT_FLOAT_EQ(copy->var2B0, 4);
    EXPECT_FLOAT_EQ(copy->offset, 2);
    EXPECT_FLOAT_EQ(copy->slope2, 9);
    EXPECT_EQ(copy->cg, 9);
    EXPECT_EQ(copy->filter, 2);
    EXPECT_FLOAT_EQ(copy->filterTime, 0.25f);
    EXPECT_EQ(copy->mouseButton, 2);
    EXPECT_FLOAT_EQ(copy->mouseMax, 50);
    EXPECT_EQ(copy->mouseHiddenActive, 0);
    EXPECT_EQ(copy->visibleMode, 1);
    EXPECT_EQ(copy->visibleValue, 3);
    EXPECT_FLOAT_EQ(copy->styleMin, -1);
    EXPECT_FLOAT_EQ(copy->blinkMax, 8);
    EXPECT_FLOAT_EQ(copy->colorMax, 120);
    // Run-time state starts afresh.
    EXPECT_EQ(copy->heldValue, nullptr);
    EXPECT_FLOAT_EQ(copy->filterValue, 0);
    EXPECT_EQ(copy->next, nullptr);

    const TH_STRUCT* original = source->styleThresholds;
    const TH_STRUCT* copied = copy->styleThresholds;
    int n = 0;
    for (; original && copied; original = original->next, copied = copied->next, ++n) {
        EXPECT_NE(original, copied);
        EXPECT_FLOAT_EQ(copied->lower, original->lower);
        EXPECT_FLOAT_EQ(copied->upper, original->upper);
        EXPECT_EQ(copied->value, original->value);
        EXPECT_FLOAT_EQ(copied->color[1], original->color[1]);
    }
    EXPECT_EQ(n, 3);
    EXPECT_EQ(original, nullptr);
    EXPECT_EQ(copied, nullptr);
    ASSERT_NE(copy->colorThresholds, nullptr);
    EXPECT_NE(copy->colorThresholds, source->colorThresholds);
    EXPECT_EQ(copy->colorThresholds->next, nullptr);
    EXPECT_EQ(copy->widthThresholds, nullptr);

    // Deleting the source leaves the copy whole.
    delAction(nullptr, source);
    EXPECT_EQ(copy->styleThresholds->next->next->value, 4);
    delAction(nullptr, copy);
    EXPECT_EQ(actionCopy(nullptr), nullptr);
}

TEST(ActionOwnership, DeletingAnElementDeletesItsActions)
{
    ELEMENT_STRUCT* head = nullptr;
    ELEMENT_STRUCT* group = elementCreate(KR_GROUP);
    elementAppend(group, &head);
    ELEMENT_STRUCT* rect = elementCreate(KR_RECT);
    elementAppend(rect, &group->child);
    for (ELEMENT_STRUCT* e : {group, rect}) {
        for (int i = 0; i < 3; ++i) {
            ACTION_STRUCT* a = createAction();
            appendTh(&a->colorThresholds, createTh());
            a->heldValue2 = malloc(8);
            appendAction(&e->actions, a);
        }
    }
    // The leak checker of the sanitized build sees anything left behind.
    EXPECT_EQ(elementDeleteAll(&head), 0);
    EXPECT_EQ(head, nullptr);
}

} // namespace
