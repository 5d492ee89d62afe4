// Graph traces in the data cycle: each trace turns its variable into samples at the graph's
// rate, kept in an input ring that always fills; the display ring, the one drawn, takes them
// over unless the view is halted, so a halted trace stands while nothing is lost but what the
// input ring overwrote.
#include "actions/actions.h"

#include <cmath>

namespace {

// One ring of a trace: the input and the display ring share the layout.
struct Ring {
    int32_t& tail;
    int32_t& head;
    int32_t size;
    int32_t& count;
    float* y;
    float* x;
};

Ring inputRing(ACTION_STRUCT* a)
{
    return {a->inTail, a->inHead, a->inSize, a->inCount, a->inY, a->inX};
}

Ring displayRing(ACTION_STRUCT* a)
{
    return {a->outTail, a->outHead, a->outSize, a->outCount, a->outY, a->outX};
}

// A trace whose rings binding refused has nothing to sample into or to show.
bool isTrace(const ACTION_STRUCT* a)
{
    return a->type == KR_ACTION_GRAPH && a->inSize > 0 && a->outSize > 0;
}

// Writes at the head; a full ring loses its oldest entry. False if the ring was already full,
// which is when a time graph's window starts to roll.
bool store(Ring ring, float y, const float* x)
{
    ring.y[ring.head] = y;
    if (x)
        ring.x[ring.head] = *x;
    ring.head = (ring.head + 1) % ring.size;
    if (ring.head == ring.tail)
        ring.tail = (ring.tail + 1) % ring.size;
    if (ring.count >= ring.size)
        return false;
    ++ring.count;
    return true;
}

// Every slot due before `time` repeats the present value: a late cycle fills the gap with it.
// A rate that is no positive number takes no samples, and one so high that float time no
// longer moves by a period takes no more, rather than looping for ever.
void sample(ACTION_STRUCT* a, const GRAPH_STRUCT* g, float time, float delta, bool xy)
{
    const float v = float(getActionFloatData(a, 1, delta)) * a->slope + a->offset;
    float u = 0;
    if (xy)
        u = float(getActionFloatData(a, 2, delta)) * a->slope2 + a->offset2;
    if (!(g->rate > 0) || !std::isfinite(g->rate))
        return;
    const float dt = 1.0f / g->rate;
    while (time > a->inNextTime) {
        const float next = a->inNextTime + dt;
        if (!(next > a->inNextTime))
            return;
        const bool growing = store(inputRing(a), v, xy ? &u : nullptr);
        a->inNextTime = next;
        if (!growing && !xy)
            a->inStart += dt;
    }
}

// Moves what the input ring took since the last pass behind the older samples on display.
void showNewSamples(ACTION_STRUCT* a, bool xy)
{
    const Ring display = displayRing(a);
    for (; a->inTail != a->inHead; a->inTail = (a->inTail + 1) % a->inSize)
        store(display, a->inY[a->inTail], xy ? &a->inX[a->inTail] : nullptr);
}

} // namespace

int fillGraph(ELEMENT_STRUCT* element, GRAPH_STRUCT* record, int halt, float time)
{
    const float delta = float(double(time) - record->lastTime);
    record->lastTime = double(time);
    const bool xy = record->type != 0;
    for (ACTION_STRUCT* a = element->actions; a; a = a->next)
        if (isTrace(a) && a->value)
            sample(a, record, time, delta, xy);
    if (halt)
        return 0;
    const ACTION_STRUCT* last = nullptr;
    for (ACTION_STRUCT* a = element->actions; a; a = a->next)
        if (a->type == KR_ACTION_GRAPH) {
            last = a;
            if (isTrace(a))
                showNewSamples(a, xy);
        }
    // A time graph's window starts where its last trace's does.
    if (last && !xy)
        record->xmin = last->inStart;
    return 0;
}

int fillActions(ELEMENT_STRUCT* list, int halt, double time)
{
    if (!list)
        return -1;
    for (ELEMENT_STRUCT* element = list; element; element = element->next) {
        if (element->type == KR_GROUP)
            fillActions(element->child, halt, time);
        else if (element->type == KR_GRAPH && element->data)
            fillGraph(element, static_cast<GRAPH_STRUCT*>(element->data), halt, float(time));
    }
    return 0;
}
