// The object interface: a view seen as a list of elements that a host finds by name or place,
// reads and changes without knowing the kinds' records; and the actions of an element.
#include "KorelEdit.h"
#include "actions/actions.h"
#include "base/truncate.h"
#include "core/handles.h"
#include "edit/handles.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// At most this many hits are reported; one slot more takes the hits beyond them.
constexpr int kMaxPicks = 499;
ELEMENT_STRUCT* pickElement[kMaxPicks + 1];
int nrPickElements = 0;

constexpr float kPickLineLimit = 5.0f;

ELEMENT_STRUCT* errorPointer(int code)
{
    return reinterpret_cast<ELEMENT_STRUCT*>(intptr_t(code));
}

ELEMENT_STRUCT* findByName(ELEMENT_STRUCT* list, const char* name)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP)
            if (ELEMENT_STRUCT* found = findByName(e->child, name))
                return found;
        if (strcmp(e->name, name) == 0)
            return e;
    }
    return nullptr;
}

// Pre-order: counts when out is null, else fills it.
int collect(ELEMENT_STRUCT* list, ELEMENT_STRUCT** out, int n)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (out)
            out[n] = e;
        ++n;
        if (e->type == KR_GROUP)
            n = collect(e->child, out, n);
    }
    return n;
}

// Resting places only: no action, visibility or run-time placement plays a part.
void pickWalk(ELEMENT_STRUCT* list, int x, int y, float zoom)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP)
            pickWalk(e->child, x, y, zoom);
        const float* b = e->bounds;
        bool hit = false;
        if (e->pickShape == 0)
            hit = b[0] <= x && x <= b[2] && b[1] <= y && y <= b[3];
        else if (e->pickShape == 1)
            hit = pointNearSegment(e->pickLine, float(x), float(y), kPickLineLimit / zoom);
        if (!hit)
            continue;
        pickElement[nrPickElements] = e;
        if (nrPickElements < kMaxPicks)
            ++nrPickElements;
    }
}

ELEMENT_STRUCT** pickResult(int* count)
{
    *count = nrPickElements;
    return nrPickElements ? pickElement : nullptr;
}

// A child's record changed alone: the groups above take in its new box and hold it relative
// to their centre again.
void refitGroups(ELEMENT_STRUCT* element)
{
    ELEMENT_STRUCT* top = nullptr;
    for (ELEMENT_STRUCT* p = element->parent; p; p = p->parent)
        top = p;
    if (top && top->setPickSticky)
        top->setPickSticky(top);
}

// One complete edit step with a point.
int editStep(ELEMENT_STRUCT* element, int code, float x, float y)
{
    if (!element || !element->edit)
        return -1;
    KR_EDIT_VALUE value = {};
    value.x = x;
    value.y = y;
    element->edit(element, element->stickies, code, KR_EDIT_ALL, &value);
    refitGroups(element);
    return 0;
}

// Copies fields one way between an OBJ_ATTR and a kind's record.
struct Transfer {
    bool toAttr;
    template <class T> void operator()(T& attr, T& record) const
    {
        if (toAttr)
            attr = record;
        else
            record = attr;
    }
    void operator()(float (&attr)[4], float (&record)[4]) const
    {
        for (int i = 0; i < 4; ++i)
            (*this)(attr[i], record[i]);
    }
    // The record's width is fractional; the attribute holds whole units.
    void width(int32_t& attr, float& record) const
    {
        if (toAttr)
            attr = truncToInt(record);
        else
            record = float(attr);
    }
    void text(char (&attr)[256], char (&record)[256]) const
    {
        char* to = toAttr ? attr : record;
        const char* from = toAttr ? record : attr;
        const size_t n = strnlen(from, sizeof attr - 1);
        memcpy(to, from, n);
        to[n] = '\0';
    }
};

template <class Record> void strokeFields(const Transfer& t, OBJ_ATTR* a, Record* r)
{
    t(a->strokeStyle, r->strokeStyle);
    t.width(a->strokeWidth, r->strokeWidth);
    t(a->antialias, r->antialias);
    t(a->strokeColor, r->strokeColor);
}

template <class Record> void shapeFields(const Transfer& t, OBJ_ATTR* a, Record* r)
{
    strokeFields(t, a, r);
    t(a->strokeOn, r->strokeOn);
    t(a->fillOn, r->fillOn);
    t(a->fillColor, r->fillColor);
}

void graphFields(const Transfer& t, OBJ_ATTR* a, GRAPH_STRUCT* r)
{
    t(a->fillColor, r->backgroundColor);
    t(a->tickx, r->tickx);
    t(a->tickxAuto, r->tickxAuto);
    t(a->tickxSpace, r->tickxSpace);
    t(a->tickxSub, r->tickxSub);
    t(a->ticky, r->ticky);
    t(a->tickyr, r->tickyr);
    t(a->tickyAuto, r->tickyAuto);
    t(a->tickySpace, r->tickySpace);
    t(a->tickySub, r->tickySub);
    t(a->labelx, r->labelx);
    t(a->labely, r->labely);
    t(a->labelyr, r->labelyr);
    t(a->gridx, r->gridx);
    t(a->gridxAuto, r->gridxAuto);
    t(a->gridxSpace, r->gridxSpace);
    t(a->gridy, r->gridy);
    t(a->gridyAuto, r->gridyAuto);
    t(a->gridySpace, r->gridySpace);
    t(a->outlineColor, r->outlineColor);
    t(a->gridColor, r->gridColor);
    t(a->gridStyle, r->gridStyle);
    t(a->rate, r->rate);
    t(a->samples, r->samples);
    t(a->autoscale, r->autoscale);
    t(a->minspready, r->minspready);
    t(a->ymin, r->ymin);
    t(a->ymax, r->ymax);
    t(a->autoscalex, r->autoscalex);
    t(a->minspreadx, r->minspreadx);
    t(a->xmin, r->xmin);
    t(a->xmax, r->xmax);
    t(a->labelFixx, r->labelFixx);
    t(a->labelFixy, r->labelFixy);
    t(a->labelXmin, r->labelXmin);
    t(a->labelXmax, r->labelXmax);
    t(a->labelYmin, r->labelYmin);
    t(a->labelYmax, r->labelYmax);
}

// The kind's own fields one way; stored ones re-seed the look. -1 for a kind without fields.
int transferKind(ELEMENT_STRUCT* e, OBJ_ATTR* a, const Transfer& t)
{
    int (*seed)(ELEMENT_STRUCT*) = nullptr;
    switch (e->type) {
    case KR_GRAPH: graphFields(t, a, static_cast<GRAPH_STRUCT*>(e->data)), seed = graphSetAttr; break;
    case KR_RECT: shapeFields(t, a, static_cast<RECT_STRUCT*>(e->data)), seed = rectSetAttr; break;
    case KR_POLYLINE:
    case KR_CPOLY: shapeFields(t, a, static_cast<POLY_STRUCT*>(e->data)), seed = polySetAttr; break;
    case KR_CIRCLE:
    case KR_ARC: shapeFields(t, a, static_cast<CIRCLE_STRUCT*>(e->data)), seed = circleSetAttr; break;
    case KR_TEXT: {
        TEXT_STRUCT* r = static_cast<TEXT_STRUCT*>(e->data);
        strokeFields(t, a, r);
        t.text(a->text, r->text);
        seed = textSetAttr;
        break;
    }
    case KR_LINE: strokeFields(t, a, static_cast<LINE_STRUCT*>(e->data)), seed = lineSetAttr; break;
    case KR_IMAGE: t(a->fillColor, static_cast<IMAGE_STRUCT*>(e->data)->fillColor), seed = imageSetAttr; break;
    case KR_BUTTON: t(a->fillColor, static_cast<BUTTON_STRUCT*>(e->data)->color0), seed = buttonSetAttr; break;
    case KR_SLIDER: t(a->fillColor, static_cast<SLIDER_STRUCT*>(e->data)->faceColor), seed = sliderSetAttr; break;
    case KR_GROUP:
    case KR_SCISSOR: break;
    default: return -1;
    }
    if (!t.toAttr && seed)
        seed(e);
    return 0;
}

} // namespace

ELEMENT_STRUCT* krObjGet(VIEW_STRUCT* view, const char* name)
{
    if (const int bad = checkView(view))
        return errorPointer(bad);
    return name ? findByName(view->elements, name) : nullptr;
}

ELEMENT_STRUCT** krObjGetAll(VIEW_STRUCT* view, int* count)
{
    if (checkView(view) || !count)
        return nullptr;
    const int n = collect(view->elements, nullptr, 0);
    // An empty tree still gets an array, of no entries.
    ELEMENT_STRUCT** all = static_cast<ELEMENT_STRUCT**>(malloc(sizeof(ELEMENT_STRUCT*) * (n ? n : 1)));
    if (!all)
        return nullptr;
    collect(view->elements, all, 0);
    *count = n;
    return all;
}

void krObjFree(ELEMENT_STRUCT** objects)
{
    free(objects);
}

ELEMENT_STRUCT** krObjPick(WINDOW_STRUCT* window, VIEW_STRUCT* view, int x, int y, int* count)
{
    if (!count)
        return nullptr;
    *count = 0;
    if (checkWindowAndView(window, view))
        return nullptr;
    const float zoom = window->settings.zoom;
    // In 64 bits: pixels far off the window must not overflow on the way.
    const float fx = float(int64_t(x) - view->posX) / zoom;
    const float fy = float(int64_t(window->height) - y - view->posY) / zoom;
    nrPickElements = 0;
    pickWalk(view->elements, truncToInt(truncToInt(fx) + view->x), truncToInt(truncToInt(fy) + view->y), zoom);
    return pickResult(count);
}

ELEMENT_STRUCT** krObjPickView(VIEW_STRUCT* view, int x, int y, int* count)
{
    if (!count)
        return nullptr;
    *count = 0;
    if (checkView(view))
        return nullptr;
    nrPickElements = 0;
    pickWalk(view->elements, x, y, 1.0f);
    return pickResult(count);
}

char* krObjName(ELEMENT_STRUCT* element)
{
    return element ? element->name : nullptr;
}

char* krObjId(ELEMENT_STRUCT* element)
{
    return element ? element->id : nullptr;
}

int krObjType(ELEMENT_STRUCT* element)
{
    return element ? int(element->type) : -1;
}

float krObjX(ELEMENT_STRUCT* element)
{
    return element ? element->x : -1.0f;
}

float krObjY(ELEMENT_STRUCT* element)
{
    return element ? element->y : -1.0f;
}

float krObjWidth(ELEMENT_STRUCT* element)
{
    return element ? element->width : -1.0f;
}

float krObjHeight(ELEMENT_STRUCT* element)
{
    return element ? element->height : -1.0f;
}

// The reference point is in view units also for a group's child, whose x, y are not.
int krObjSetX(ELEMENT_STRUCT* element, float x)
{
    return element ? editStep(element, KR_HANDLE_CENTRE, x, element->refY) : -1;
}

int krObjSetY(ELEMENT_STRUCT* element, float y)
{
    return element ? editStep(element, KR_HANDLE_CENTRE, element->refX, y) : -1;
}

int krObjSetWidth(ELEMENT_STRUCT* element, float width)
{
    return editStep(element, KR_EDIT_WIDTH, width, width);
}

int krObjSetHeight(ELEMENT_STRUCT* element, float height)
{
    return editStep(element, KR_EDIT_HEIGHT, height, height);
}

int krObjSetSamples(ELEMENT_STRUCT* element, int samples)
{
    if (!element)
        return -1;
    if (element->type != KR_GRAPH)
        return -2;
    static_cast<GRAPH_STRUCT*>(element->data)->samples = samples;
    return 0;
}

int krObjSetUpdateRate(ELEMENT_STRUCT* element, int rate)
{
    if (!element)
        return -1;
    if (element->type != KR_GRAPH)
        return -2;
    static_cast<GRAPH_STRUCT*>(element->data)->rate = float(rate);
    return 0;
}

int krObjGetAttr(ELEMENT_STRUCT* element, OBJ_ATTR* attr)
{
    if (!element || !attr || transferKind(element, attr, Transfer{true}))
        return -1;
    attr->x = element->x;
    attr->y = element->y;
    attr->width = element->width;
    attr->height = element->height;
    return 0;
}

int krObjSetAttr(ELEMENT_STRUCT* element, OBJ_ATTR* attr)
{
    if (!element || !attr)
        return -1;
    int result = 0;
    const auto step = [&](uint32_t bit, int (*set)(ELEMENT_STRUCT*, float), float value) {
        if ((attr->mask & bit) && set(element, value))
            result = -1;
    };
    step(KR_OBJ_X, krObjSetX, attr->x);
    step(KR_OBJ_Y, krObjSetY, attr->y);
    step(KR_OBJ_WIDTH, krObjSetWidth, attr->width);
    step(KR_OBJ_HEIGHT, krObjSetHeight, attr->height);
    if ((attr->mask & KR_OBJ_KIND_FIELDS) && transferKind(element, attr, Transfer{false}))
        result = -1;
    return result;
}

ACTION_STRUCT** krActionGetAll(ELEMENT_STRUCT* element, int* count)
{
    if (!count)
        return nullptr;
    *count = 0;
    if (!element)
        return nullptr;
    int n = 0;
    for (ACTION_STRUCT* a = element->actions; a; a = a->next)
        ++n;
    *count = n;
    ACTION_STRUCT** all = static_cast<ACTION_STRUCT**>(malloc(sizeof(ACTION_STRUCT*) * (n ? n : 1)));
    if (!all)
        return nullptr;
    n = 0;
    for (ACTION_STRUCT* a = element->actions; a; a = a->next)
        all[n++] = a;
    return all;
}

void krActionFree(ACTION_STRUCT** actions)
{
    free(actions);
}

char* krActionVar(ACTION_STRUCT* action)
{
    return action ? action->var : nullptr;
}

char* krActionVar2(ACTION_STRUCT* action)
{
    return action ? action->var2 : nullptr;
}

int krActionType(ACTION_STRUCT* action)
{
    return action ? action->type : -1;
}

int krActionEnable(ACTION_STRUCT* action, int flag)
{
    if (!action)
        return -1;
    action->disabled = flag == 0;
    return 0;
}

// Stores a scaling and works out its line as binding does.
static int setScale(ACTION_STRUCT* action, float ACTION_STRUCT::*a0, float ACTION_STRUCT::*a1,
                    float ACTION_STRUCT::*b0, float ACTION_STRUCT::*b1, float ACTION_STRUCT::*offset,
                    float ACTION_STRUCT::*slope, const float values[4])
{
    if (!action)
        return -1;
    action->*a0 = values[0];
    action->*a1 = values[1];
    action->*b0 = values[2];
    action->*b1 = values[3];
    getAB(&(action->*offset), &(action->*slope), values[0], values[2], values[1], values[3]);
    return 0;
}

int krActionSetScale(ACTION_STRUCT* action, float a0, float a1, float b0, float b1)
{
    const float values[4] = {a0, a1, b0, b1};
    return setScale(action, &ACTION_STRUCT::a0, &ACTION_STRUCT::a1, &ACTION_STRUCT::b0, &ACTION_STRUCT::b1,
                    &ACTION_STRUCT::offset, &ACTION_STRUCT::slope, values);
}

int krActionSetScale2(ACTION_STRUCT* action, float a0, float a1, float b0, float b1)
{
    const float values[4] = {a0, a1, b0, b1};
    return setScale(action, &ACTION_STRUCT::var2A0, &ACTION_STRUCT::var2A1, &ACTION_STRUCT::var2B0,
                    &ACTION_STRUCT::var2B1, &ACTION_STRUCT::offset2, &ACTION_STRUCT::slope2, values);
}

static int getScale(const float* from[4], float* a0, float* a1, float* b0, float* b1)
{
    float* to[4] = {a0, a1, b0, b1};
    for (int i = 0; i < 4; ++i)
        if (to[i])
            *to[i] = *from[i];
    return 0;
}

int krActionGetScale(ACTION_STRUCT* action, float* a0, float* a1, float* b0, float* b1)
{
    if (!action)
        return -1;
    const float* from[4] = {&action->a0, &action->a1, &action->b0, &action->b1};
    return getScale(from, a0, a1, b0, b1);
}

int krActionGetScale2(ACTION_STRUCT* action, float* a0, float* a1, float* b0, float* b1)
{
    if (!action)
        return -1;
    const float* from[4] = {&action->var2A0, &action->var2A1, &action->var2B0, &action->var2B1};
    return getScale(from, a0, a1, b0, b1);
}

int krActionSetColor(ACTION_STRUCT* action, float r, float g, float b)
{
    if (!action || !action->colorThresholds)
        return -1;
    float* color = action->colorThresholds->color;
    color[0] = r;
    color[1] = g;
    color[2] = b;
    return 0;
}

int krActionGetColor(ACTION_STRUCT* action, float* r, float* g, float* b)
{
    if (!action || !action->colorThresholds)
        return -1;
    const float* color = action->colorThresholds->color;
    float* to[3] = {r, g, b};
    for (int i = 0; i < 3; ++i)
        if (to[i])
            *to[i] = color[i];
    return 0;
}
