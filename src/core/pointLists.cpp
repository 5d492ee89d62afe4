// Polygon points and action thresholds: small doubly linked lists owned by their holder.
#include "KorelEdit.h"
#include "core/linkedList.h"

#include <cstdlib>

// Running point ids for the whole process; file readers replace them with stored ids.
static int32_t coordCounter = 0;

COORD_STRUCT* createCoord(void)
{
    COORD_STRUCT* coord = static_cast<COORD_STRUCT*>(calloc(1, sizeof(COORD_STRUCT)));
    if (!coord) {
        logMsg(1, "createCoord: out of memory\n");
        return nullptr;
    }
    coord->id = coordCounter++;
    return coord;
}

int appendCoord(COORD_STRUCT** head, COORD_STRUCT* coord)
{
    if (head && coord)
        appendNode(head, coord);
    return 0;
}

int delCoord(COORD_STRUCT** head, COORD_STRUCT* coord)
{
    if (!head || !coord)
        return 0;
    unlinkNode(head, coord);
    free(coord);
    return 0;
}

TH_STRUCT* createTh(void)
{
    TH_STRUCT* th = static_cast<TH_STRUCT*>(calloc(1, sizeof(TH_STRUCT)));
    if (!th) {
        logMsg(1, "createTh: out of memory\n");
        return nullptr;
    }
    th->value = 1;
    th->color[0] = 0.5f;
    th->color[1] = 1.0f;
    th->color[2] = 0.5f;
    return th;
}

int appendTh(TH_STRUCT** head, TH_STRUCT* th)
{
    if (head && th)
        appendNode(head, th);
    return 0;
}

int thInsertBefore(TH_STRUCT* th, TH_STRUCT* position, TH_STRUCT** head)
{
    if (th && head)
        insertNode(th, position, head, true);
    return 0;
}

int thInsertAfter(TH_STRUCT* th, TH_STRUCT* position, TH_STRUCT** head)
{
    if (th && head)
        insertNode(th, position, head, false);
    return 0;
}

int delTh(TH_STRUCT** head, TH_STRUCT* th)
{
    if (!head || !th)
        return 0;
    unlinkNode(head, th);
    free(th);
    return 0;
}
