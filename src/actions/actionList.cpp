// Action records and the operations on an element's action list.
#include "KorelEdit.h"
#include "core/linkedList.h"

#include <cstdlib>
#include <cstring>

// Running action numbers for the whole process; file readers replace them with stored ids.
static int32_t actionCounter = 0;

namespace {

// The five threshold blocks, for the operations that treat them alike.
constexpr TH_STRUCT* ACTION_STRUCT::*kThresholdLists[] = {
    &ACTION_STRUCT::colorThresholds, &ACTION_STRUCT::widthThresholds, &ACTION_STRUCT::styleThresholds,
    &ACTION_STRUCT::visibleThresholds, &ACTION_STRUCT::blinkThresholds};

void deleteThresholds(TH_STRUCT** head)
{
    while (*head)
        delTh(head, *head);
}

// Entries in list order; a copy that runs out of memory keeps what it made.
void copyThresholds(const TH_STRUCT* source, TH_STRUCT** target)
{
    TailAppender<TH_STRUCT> copies(target);
    for (const TH_STRUCT* th = source; th; th = th->next) {
        TH_STRUCT* copy = createTh();
        if (!copy)
            return;
        copy->lower = th->lower;
        copy->upper = th->upper;
        copy->value = th->value;
        memcpy(copy->color, th->color, sizeof copy->color);
        copy->styleId = th->styleId;
        copy->stippleFactor = th->stippleFactor;
        copy->stipplePattern = th->stipplePattern;
        copies.add(copy);
    }
}

// The part of the record from `first` up to, not including, `end`.
template <class First, class End> void copyRange(ACTION_STRUCT* to, const ACTION_STRUCT* from, First ACTION_STRUCT::*first,
                                                 End ACTION_STRUCT::*end)
{
    const char* begin = reinterpret_cast<const char*>(&(from->*first));
    const char* stop = reinterpret_cast<const char*>(&(from->*end));
    memcpy(&(to->*first), begin, size_t(stop - begin));
}

} // namespace

ACTION_STRUCT* createAction(void)
{
    ACTION_STRUCT* action = static_cast<ACTION_STRUCT*>(calloc(1, sizeof(ACTION_STRUCT)));
    if (!action) {
        logMsg(1, "createAction: out of memory\n");
        return nullptr;
    }
    // Identity mappings for both variables: a new action passes its value through.
    action->a1 = action->b1 = 1.0f;
    action->var2A1 = action->var2B1 = 1.0f;
    action->filterTime = 1.0f;
    action->mouseInc = 1.0f;
    action->mouseMax = 1.0f;
    action->mouseHiddenActive = 1;
    action->colorMax = action->widthMax = action->styleMax = action->visibleMax = action->blinkMax = 120.0f;
    action->id = actionCounter++;
    return action;
}

int appendAction(ACTION_STRUCT** head, ACTION_STRUCT* action)
{
    if (head && action)
        appendNode(head, action);
    return 0;
}

int actionInsertBefore(ACTION_STRUCT* action, ACTION_STRUCT* position, ACTION_STRUCT** head)
{
    if (action && head)
        insertNode(action, position, head, true);
    return 0;
}

int actionInsertAfter(ACTION_STRUCT* action, ACTION_STRUCT* position, ACTION_STRUCT** head)
{
    if (action && head)
        insertNode(action, position, head, false);
    return 0;
}

int actionCut(ACTION_STRUCT* action, ACTION_STRUCT** head)
{
    if (action && head && *head)
        cutNode(head, action);
    return 0;
}

int actionUp(ACTION_STRUCT* action, ACTION_STRUCT** head)
{
    if (!action || !head || !*head || !action->prev)
        return 0;
    ACTION_STRUCT* before = action->prev;
    actionCut(action, head);
    actionInsertBefore(action, before, head);
    return 0;
}

int actionDown(ACTION_STRUCT* action, ACTION_STRUCT** head)
{
    if (!action || !head || !*head || !action->next)
        return 0;
    ACTION_STRUCT* after = action->next;
    actionCut(action, head);
    actionInsertAfter(action, after, head);
    return 0;
}

int delAction(ACTION_STRUCT** head, ACTION_STRUCT* action)
{
    if (!action)
        return 0;
    if (head && *head)
        cutNode(head, action);
    for (TH_STRUCT* ACTION_STRUCT::*list : kThresholdLists)
        deleteThresholds(&(action->*list));
    free(action->heldValue);
    free(action->heldValue2);
    free(action->inY);
    free(action->inX);
    free(action->outY);
    free(action->outX);
    free(action);
    return 0;
}

ACTION_STRUCT* actionCopy(const ACTION_STRUCT* source)
{
    if (!source)
        return nullptr;
    ACTION_STRUCT* copy = createAction();
    if (!copy)
        return nullptr;
    // Stored fields that lie together in the record travel in runs.
    copyRange(copy, source, &ACTION_STRUCT::type, &ACTION_STRUCT::next);
    copyRange(copy, source, &ACTION_STRUCT::mouseButton, &ACTION_STRUCT::disabled); // up to mouseHiddenActive and id
    copy->offset = source->offset;
    copy->slope = source->slope;
    copy->offset2 = source->offset2;
    copy->slope2 = source->slope2;
    copy->visibleMode = source->visibleMode;
    copy->visibleValue = source->visibleValue;
    copy->colorMin = source->colorMin;
    copy->colorMax = source->colorMax;
    copy->widthMin = source->widthMin;
    copy->widthMax = source->widthMax;
    copy->styleMin = source->styleMin;
    copy->styleMax = source->styleMax;
    copy->visibleMin = source->visibleMin;
    copy->visibleMax = source->visibleMax;
    copy->blinkMin = source->blinkMin;
    copy->blinkMax = source->blinkMax;
    for (TH_STRUCT* ACTION_STRUCT::*list : kThresholdLists)
        copyThresholds(source->*list, &(copy->*list));
    return copy;
}
