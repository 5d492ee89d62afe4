// The handle list of an element: what the geometry passes build and an editing tool hits.
#include "edit/handles.h"
#include "base/base.h"
#include "core/linkedList.h"

#include <cstdlib>

STICKY_STRUCT* createSticky(void)
{
    STICKY_STRUCT* sticky = static_cast<STICKY_STRUCT*>(calloc(1, sizeof(STICKY_STRUCT)));
    if (!sticky)
        logMsg(1, "createSticky: out of memory\n");
    return sticky;
}

int appendSticky(STICKY_STRUCT** head, STICKY_STRUCT* sticky)
{
    if (head && sticky)
        appendNode(head, sticky);
    return 0;
}

int delSticky(STICKY_STRUCT** head, STICKY_STRUCT* sticky)
{
    if (!head || !sticky)
        return 0;
    unlinkNode(head, sticky);
    free(sticky);
    return 0;
}

STICKY_STRUCT* getSticky(STICKY_STRUCT* head, int id)
{
    for (STICKY_STRUCT* s = head; s; s = s->next)
        if (s->id == id)
            return s;
    return nullptr;
}

// Handles keep their size on the screen: their half size is in pixels, so it shrinks in view
// units as the zoom grows. Frames and segments only show the shape.
int findSticky(STICKY_STRUCT* head, float x, float y, float zoom)
{
    for (STICKY_STRUCT* s = head; s; s = s->next) {
        if (s->kind != KR_STICKY_SQUARE && s->kind != KR_STICKY_CENTRE && s->kind != KR_STICKY_ANCHOR)
            continue;
        const float w = s->w / zoom, h = s->h / zoom;
        s->hit = x > s->x - w && x < s->x + w && y > s->y - h && y < s->y + h;
        if (s->hit)
            return s->id;
    }
    return 0;
}

int pointInRect(float px, float py, float x1, float y1, float x2, float y2)
{
    const bool inX = x1 <= x2 ? px >= x1 && px <= x2 : px >= x2 && px <= x1;
    const bool inY = y1 <= y2 ? py >= y1 && py <= y2 : py >= y2 && py <= y1;
    return inX && inY;
}

void deleteStickies(ELEMENT_STRUCT* element)
{
    while (element->stickies)
        delSticky(&element->stickies, element->stickies);
}

StickyList::StickyList(ELEMENT_STRUCT* element) : element_(element)
{
    deleteStickies(element);
}

void StickyList::add(int id, int kind, float x, float y, float w, float h)
{
    STICKY_STRUCT* s = createSticky();
    if (!s)
        return;
    s->id = id;
    s->kind = uint8_t(kind);
    s->x = x;
    s->y = y;
    s->w = w;
    s->h = h;
    s->prev = tail_;
    if (tail_)
        tail_->next = s;
    else
        element_->stickies = s;
    tail_ = s;
}

void StickyList::box(const float box[4], float cx, float cy, const int* ids, size_t n, int anchor)
{
    // Clockwise from the upper left; index 0 unused, 9 the centre.
    const float xs[10] = {0, box[0], cx, box[2], box[2], box[2], cx, box[0], box[0], cx};
    const float ys[10] = {0, box[3], box[3], box[3], cy, box[1], box[1], box[1], cy, cy};
    for (size_t i = 0; i < n; ++i) {
        const int id = ids[i];
        const int kind = id == anchor ? KR_STICKY_ANCHOR : id == KR_HANDLE_CENTRE ? KR_STICKY_CENTRE : KR_STICKY_SQUARE;
        add(id, kind, xs[id], ys[id]);
    }
}

void StickyList::frame()
{
    const float* b = element_->bounds;
    add(KR_HANDLE_FRAME, KR_STICKY_FRAME, b[0], b[1], b[2] - b[0], b[3] - b[1]);
}

void addBoundsStickies(ELEMENT_STRUCT* element)
{
    StickyList list(element);
    list.box(element->bounds, element->refX, element->refY, kBoxThenCentre);
    list.frame();
}
