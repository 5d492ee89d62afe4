// Action records: the list operations an editing tool uses, and copies.
#include "KorelEdit.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace {

using Ids = std::vector<int>;

ACTION_STRUCT* freeStanding(int id)
{
    ACTION_STRUCT* a = createAction();
    a->id = id;
    return a;
}

// A list of actions told apart by their ids; freed with the test.
struct ActionList {
    ACTION_STRUCT* head = nullptr;
    ~ActionList()
    {
        while (head)
            delAction(&head, head);
    }
    ACTION_STRUCT* at(int id) const
    {
        for (ACTION_STRUCT* a = head; a; a = a->next)
            if (a->id == id)
                return a;
        return nullptr;
    }
    // Ids from the head, checking that the backward links agree.
    Ids ids() const
    {
        Ids result;
        const ACTION_STRUCT* previous = nullptr;
        for (const ACTION_STRUCT* a = head; a; a = a->next) {
            EXPECT_EQ(a->prev, previous) << "at id " << a->id;
            result.push_back(a->id);
            previous = a;
        }
        return result;
    }
};

// Each edit runs on what the edits before it left.
TEST(ActionLists, EditsKeepBothLinksInStep)
{
    ActionList list;
    actionInsertAfter(freeStanding(1), nullptr, &list.head); // into an empty list
    appendAction(&list.head, freeStanding(2));
    actionInsertBefore(freeStanding(3), nullptr, &list.head); // the head
    EXPECT_EQ(list.ids(), Ids({3, 1, 2}));
    actionInsertAfter(freeStanding(4), nullptr, &list.head); // second, not last
    actionInsertAfter(freeStanding(5), list.at(2), &list.head);
    actionInsertBefore(freeStanding(6), list.at(2), &list.head);
    EXPECT_EQ(list.ids(), Ids({3, 4, 1, 6, 2, 5}));

    actionUp(list.at(3), &list.head); // already at the ends: nothing changes
    actionDown(list.at(5), &list.head);
    actionUp(list.at(1), &list.head);
    actionDown(list.at(3), &list.head);
    EXPECT_EQ(list.ids(), Ids({1, 3, 4, 6, 2, 5}));

    // A cut action keeps its links, to be pasted back; from the head or the middle.
    for (ACTION_STRUCT* cut : {list.at(4), list.head}) {
        ACTION_STRUCT *before = cut->prev, *after = cut->next;
        actionCut(cut, &list.head);
        EXPECT_TRUE(cut->prev == before && cut->next == after);
        delAction(nullptr, cut);
    }
    EXPECT_EQ(list.ids(), Ids({3, 6, 2, 5}));

    // Thresholds and run-time buffers go with a deleted action.
    ACTION_STRUCT* owner = list.at(6);
    appendTh(&owner->styleThresholds, createTh());
    owner->heldValue = malloc(8);
    delAction(&list.head, owner);
    delAction(&list.head, list.head);
    delAction(&list.head, list.at(5));
    EXPECT_EQ(list.ids(), Ids({2}));
}

// A copy keeps what a file stores, starts its run afresh, and owns its thresholds.
TEST(ActionCopies, StoredContentAndOwnThresholds)
{
    ACTION_STRUCT* source = createAction();
    source->type = KR_ACTION_STROKE_STYLE;
    source->heldValue = malloc(8);
    for (int i = 0; i < 3; ++i) {
        TH_STRUCT* th = createTh();
        th->value = i + 2;
        appendTh(&source->styleThresholds, th);
    }
    ACTION_STRUCT* copy = actionCopy(source);
    delAction(nullptr, source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(std::make_pair(copy->type, copy->heldValue), std::make_pair(int(KR_ACTION_STROKE_STYLE), (void*)nullptr));
    Ids values;
    for (const TH_STRUCT* th = copy->styleThresholds; th; th = th->next)
        values.push_back(th->value);
    EXPECT_EQ(values, Ids({2, 3, 4}));
    delAction(nullptr, copy);
    EXPECT_EQ(actionCopy(nullptr), nullptr);
}

} // namespace
