// Pointer input on a running view: a press captures the element under the pointer until the
// release, and that element's pointer actions turn the pointer's place into values of their
// variables. The written value reaches the source in the next data cycle and moves the element
// in the next frame; nothing here draws.
#include "actions/actions.h"
#include "base/angles.h"
#include "core/handles.h"

#include <cmath>

namespace {

// How near a line the pointer must come, in window pixels, whatever the zoom.
constexpr float kLineReach = 5.0f;
// Bounds the wrapping of a relative turn, so that a range of 0 or a far-off value can't loop.
constexpr int kMaxWraps = 100;

// The two fields of a pick: the element that takes the events and the last event that picked.
struct PickState {
    ELEMENT_STRUCT*& picked;
    int64_t& event;
};

bool boxHit(const ELEMENT_STRUCT* e, float x, float y)
{
    const float* m = e->pickMatrix;
    const float* b = e->bounds;
    return b[0] * m[0] + b[1] * m[1] + m[2] <= x && x <= b[2] * m[0] + b[3] * m[1] + m[2] &&
           b[0] * m[3] + b[1] * m[4] + m[5] <= y && y <= b[2] * m[3] + b[3] * m[4] + m[5];
}

// An element hidden by an action takes the pointer only through an action that asks for it;
// a line is thin enough to be taken whatever its visibility.
bool acceptsPointer(const ELEMENT_STRUCT* e, bool lineShape)
{
    const bool hidden = !lineShape && !e->attr.visible && e->attr.visibleSet;
    for (const ACTION_STRUCT* a = e->actions; a; a = a->next)
        if (a->type == KR_ACTION_INPUT && (!hidden || a->mouseHiddenActive))
            return true;
    return false;
}

// A value of the action's variable in mouse units; a mapping without slope has no such units.
double toMouse(const ACTION_STRUCT* a, double raw)
{
    return a->slope == 0 ? 0.0 : (raw - a->offset) / a->slope;
}

double currentMouseValue(ACTION_STRUCT* a)
{
    return toMouse(a, getActionFloatData(a, 1, 0.0f));
}

void writeMouseValue(ACTION_STRUCT* a, double u)
{
    putFloatData(a, a->offset + a->slope * u);
}

// A value beyond the mouse range stops at its end, or wraps round by the range.
double rangeRule(const ACTION_STRUCT* a, double u)
{
    const double range = double(a->mouseMax) - a->mouseMin;
    if (u > a->mouseMax) {
        if (!a->mouseClamp) {
            u -= range;
            return u < a->mouseMin ? u + range : u;
        }
        u = a->mouseMax;
    }
    if (u < a->mouseMin)
        u = a->mouseClamp ? a->mouseMin : u + range;
    return u;
}

// Degrees clockwise from straight up, as a knob is read.
float compassDegrees(float dx, float dy)
{
    return float(std::atan2(dx, dy) * kRadiansToDegrees);
}

double absoluteTurn(const ACTION_STRUCT* a, float dx, float dy)
{
    float degrees = compassDegrees(dx, dy);
    if (degrees < 0)
        degrees += 360;
    double u = degrees > a->mouseMax ? a->mouseMax : degrees;
    return u < a->mouseMin ? a->mouseMin : u;
}

// The turn since the last event, the short way round, added to the value: a wrapping knob
// follows the pointer without jumps, a clamped one waits at its end for the pointer.
double relativeTurn(ACTION_STRUCT* a, float x, float y, float cx, float cy)
{
    float diff = compassDegrees(x - cx, y - cy) - compassDegrees(a->lastX - cx, a->lastY - cy);
    a->lastX = x, a->lastY = y;
    if (diff > 180)
        diff -= 360;
    else if (diff < -180)
        diff += 360;
    double u = diff + currentMouseValue(a);
    if (a->mouseClamp)
        return u > a->mouseMax ? a->mouseMax : u < a->mouseMin ? a->mouseMin : u;
    const double range = double(a->mouseMax) - a->mouseMin;
    for (int i = 0; i < kMaxWraps && u > a->mouseMax; ++i)
        u -= range;
    for (int i = 0; i < kMaxWraps && u < a->mouseMin; ++i)
        u += range;
    return u;
}

// A press or release action: a fixed value or a step up or down.
void step(ACTION_STRUCT* a)
{
    double u;
    switch (a->mouseMode) {
    case KR_MOUSE_MODE_SET: u = a->mouseInc; break;
    case KR_MOUSE_MODE_INC:
        u = currentMouseValue(a) + a->mouseInc;
        if (u > a->mouseMax)
            u = a->mouseClamp ? a->mouseMax : a->mouseMin;
        break;
    case KR_MOUSE_MODE_DEC:
        u = currentMouseValue(a) - a->mouseInc;
        if (u < a->mouseMin)
            u = a->mouseClamp ? a->mouseMin : a->mouseMax;
        break;
    default: return;
    }
    writeMouseValue(a, u);
}

// A move action: the pointer's place as a value. Mode 0 is absolute; modes 1 and 2 add the
// travel since the press to the value the press found. (cx, cy) is the element's centre at rest.
void follow(ACTION_STRUCT* a, const ELEMENT_STRUCT* e, float x, float y, float cx, float cy)
{
    const bool absolute = a->mouseMode == KR_MOUSE_MODE_SET;
    if (!absolute && a->mouseMode != KR_MOUSE_MODE_INC && a->mouseMode != KR_MOUSE_MODE_DEC)
        return;
    float offset, scale; // over the mouse range as t goes from -1 to 1
    getAB(&offset, &scale, -1.0f, a->mouseMin, 1.0f, a->mouseMax);
    double u;
    switch (a->mouseAction) {
    case KR_MOUSE_ACTION_MOVEX:
        u = absolute ? offset + 2 * ((x - cx) / e->width) * scale
                     : rangeRule(a, a->pressValue + 2 * (x - cx) / e->width - 2 * (a->pressX - cx) / e->width);
        break;
    case KR_MOUSE_ACTION_MOVEY:
        u = absolute ? offset + 2 * ((y - cy) / e->height) * scale
                     : rangeRule(a, a->pressValue + 2 * (y - cy) / e->height - 2 * (a->pressY - cy) / e->height);
        break;
    case KR_MOUSE_ACTION_MOVEX_ABS: u = absolute ? x : rangeRule(a, (x - a->pressX) + a->pressValue); break;
    case KR_MOUSE_ACTION_MOVEY_ABS: u = absolute ? y : rangeRule(a, (y - a->pressY) + a->pressValue); break;
    case KR_MOUSE_ACTION_ROTATE: u = absolute ? absoluteTurn(a, x - cx, y - cy) : relativeTurn(a, x, y, cx, cy); break;
    default: return; // "move" only holds the pick
    }
    writeMouseValue(a, u);
}

// A press picks anew unless the last pick was a press too; a release goes to the element that
// had the pick, then the element under the release point takes the following moves.
int runPick(PickState state, ELEMENT_STRUCT* list, int event, int button, float x, float y, float zoom)
{
    if (!std::isfinite(x) || !std::isfinite(y))
        return 0;
    if (event == KR_EVENT_PRESS) {
        if (state.event != KR_EVENT_PRESS) {
            state.picked = kriPickElementRun(x, y, zoom, list);
            state.event = KR_EVENT_PRESS;
        }
        return doActionInput(event, button, state.picked, x, y);
    }
    doActionInput(event, button, state.picked, x, y);
    if (event == KR_EVENT_RELEASE && state.event != KR_EVENT_RELEASE) {
        state.picked = kriPickElementRun(x, y, zoom, list);
        state.event = KR_EVENT_RELEASE;
    }
    return 0;
}

} // namespace

bool pointNearSegment(const float* line, float x, float y, float reach)
{
    const float dx = line[2] - line[0], dy = line[3] - line[1];
    const float length = std::sqrt(dx * dx + dy * dy);
    if (!(length > 0))
        return false;
    const float across = std::fabs((y - line[1]) * dx - (x - line[0]) * dy) / length;
    const float alongX = x - (line[0] + dx * 0.5f), alongY = y - (line[1] + dy * 0.5f);
    return across < reach && std::sqrt(alongX * alongX + alongY * alongY) <= length * 0.5f;
}

ELEMENT_STRUCT* kriPickElementRun(float x, float y, float zoom, ELEMENT_STRUCT* list)
{
    // Later elements are drawn on top, so the last hit wins; a group comes after its children.
    ELEMENT_STRUCT* result = nullptr;
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        // Elements are large and apart in memory: ask for the next one's fields while this one is tested.
        if (const ELEMENT_STRUCT* next = e->next) {
            __builtin_prefetch(&next->next);
            __builtin_prefetch(next->bounds);
            __builtin_prefetch(next->pickMatrix);
        }
        const float* m = e->pickMatrix;
        if (e->type == KR_GROUP)
            if (ELEMENT_STRUCT* inside = kriPickElementRun(x - m[2], y - m[5], zoom, e->child))
                result = inside;
        const bool lineShape = !e->pick && e->pickShape == 1;
        bool hit = false;
        if (e->pick)
            hit = e->pick(e, x * m[0] + y * m[1] - m[2], x * m[3] + y * m[4] - m[5]);
        else if (e->pickShape == 0)
            hit = boxHit(e, x, y);
        else if (lineShape)
            hit = pointNearSegment(e->pickLine, x, y, kLineReach / zoom);
        if (hit && acceptsPointer(e, lineShape))
            result = e;
    }
    return result;
}

int doActionInput(int event, int button, ELEMENT_STRUCT* element, float x, float y)
{
    if (!element)
        return 0;
    // Children keep their place relative to their group's centre.
    float cx = element->x, cy = element->y;
    for (const ELEMENT_STRUCT* p = element->parent; p; p = p->parent)
        cx += p->x, cy += p->y;
    for (ACTION_STRUCT* a = element->actions; a; a = a->next) {
        if (a->type != KR_ACTION_INPUT || a->mouseButton != button)
            continue;
        if (event == KR_EVENT_PRESS) {
            a->pressX = a->lastX = x;
            a->pressY = a->lastY = y;
            a->pressValue = currentMouseValue(a);
        }
        if ((a->mouseAction == KR_MOUSE_ACTION_PRESS && event == KR_EVENT_PRESS) ||
            (a->mouseAction == KR_MOUSE_ACTION_RELEASE && event == KR_EVENT_RELEASE))
            step(a);
        else if (event == KR_EVENT_PRESS || event == KR_EVENT_MOVE)
            follow(a, element, x, y, cx, cy);
    }
    return 0;
}

int kriViewPickElementRun(VIEW_STRUCT* view, int event, int button, float x, float y, float zoom)
{
    if (!view)
        return 0;
    return runPick({view->pickedElement, view->pickEvent}, view->elements, event, button, x, y, zoom);
}

int krieViewPickElementRun(ELEMENT_STRUCT* list, int event, int button, float x, float y, float zoom)
{
    static ELEMENT_STRUCT* picked = nullptr;
    static int64_t lastEvent = -1;
    return runPick({picked, lastEvent}, list, event, button, x, y, zoom);
}

int krViewEvent(WINDOW_STRUCT* window, VIEW_STRUCT* view, int button, int event, float x, float y)
{
    if (int check = checkWindowAndView(window, view))
        return check;
    if (view->runMode == KR_RUN_STOPPED)
        return -3;
    // Window pixels, y down from the top, to view units, y up.
    const float zoom = window->settings.zoom;
    const float vx = (x - float(view->posX)) / zoom + view->x;
    const float vy = (float(window->height) - y - float(view->posY)) / zoom + view->y;
    return kriViewPickElementRun(view, event, button, vx, vy, zoom);
}
