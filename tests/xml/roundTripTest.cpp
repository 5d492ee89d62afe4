// Views through both stored forms: the samples and random views of every kind and action code go
// binary -> XML -> binary and keep every field that both forms carry, in the form the XML text
// gives it. What one form can't carry, as the README has it (expectElement and expectAction
// take each row from the view that came back or apply its form):
//
// | What | Comes back as |
// |---|---|
// | sliders, kinds without a record, and their actions | left out |
// | an arc | an ellipse (kind 3) with its angles |
// | element ids; an action's running number | made anew from the name; its place among the element's actions, from 0 |
// | a text's `textSize`; its `fontStyle` | 30; bold (2) and italic (4) alone |
// | a graph's `fontStyle` | 1 with bold and italic; an italic one (5, 7) gets the binary reader's fall-back "Courier [fixed]" 1, 12 |
// | a polyline's `strokeOn`, `fillOn` and fill colour; `closed` of any polyline or polygon | as a new element has them |
// | the colour of a stroke or fill that is off | opaque white |
// | rectangles, images, buttons, clip areas | the parallelogram of corners 1 to 3, as centre, size and matrix |
// | numbers | six significant digits, matrix entries six decimals, colours 8 bits a channel, angles through degrees |
// | an action's fields its type doesn't use, `offset`, `slope`; type 23 | the reader's defaults; type 0 |
// | a threshold's `upper`; the value of a colour entry, the colour of any other | the next entry's `x` or the block's `max`; the reader's defaults |
// | a source's count of variable parameters | at most the most that any of its variables has |
// | custom line stipples and fill patterns (XML only) | binary stores the style number alone (0 to 9, 0 to 59) |
// | group offsets and ellipse radii (XML only) | binary derives the offsets from the children; radii other than 100 go into the matrix |

#include "KorelEdit.h"
#include "base/planeMath.h"

#include "GlContext.h"
#include "LoadedView.h"
#include "SampleFiles.h"
#include "StoredView.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <regex>
#include <sstream>
#include <string>

namespace {

using Random = std::mt19937;

int below(Random& r, int n)
{
    return int(r() % unsigned(n));
}

float uniform(Random& r, float lo, float hi)
{
    return std::uniform_real_distribution<float>(lo, hi)(r);
}

// Names and texts with Latin-1 letters and every character that XML escapes.
template <size_t N> void randomText(Random& r, char (&out)[N])
{
    static const char* const pieces[] = {"valve", "caf\xe9", "<a&b>", "\"q\"", "'s'", "\xfc" "ber", "m\xb2", ""};
    std::snprintf(out, N, "%s%d%s", pieces[below(r, 8)], below(r, 1000), pieces[below(r, 8)]);
}

template <size_t N> void randomColour(Random& r, float (&c)[N])
{
    for (float& v : c)
        v = uniform(r, 0, 1);
}

template <class Record> void randomStroke(Random& r, Record* s)
{
    s->strokeWidth = float(below(r, 8));
    s->strokeStyle = below(r, 10);
    randomColour(r, s->strokeColor);
    s->antialias = below(r, 2);
}

// Shapes with an outline that can be switched off and a fill.
template <class Record> void randomShape(Random& r, Record* s)
{
    randomStroke(r, s);
    s->strokeOn = below(r, 2);
    s->fillOn = below(r, 2);
    randomColour(r, s->fillColor);
    s->fillStyle = below(r, 60);
}

// Any four corners: the rectangle family keeps a parallelogram of them.
void randomCorners(Random& r, float* xs, float* ys)
{
    for (int k = 0; k < 4; ++k)
        xs[k] = uniform(r, -500, 500), ys[k] = uniform(r, -500, 500);
}

void randomPoints(Random& r, COORD_STRUCT** head)
{
    for (int i = below(r, 6); i-- > 0;) {
        COORD_STRUCT* c = createCoord();
        c->id = k2dtest::countList(*head);
        c->x = uniform(r, -500, 500), c->y = uniform(r, -500, 500);
        appendCoord(head, c);
    }
}

// The threshold blocks of an action, with the number of values an entry of each takes.
enum Block { kColour = 1, kWidth = 2, kStyle = 4, kVisible = 8, kBlink = 16 };
const struct BlockFields {
    Block block;
    float ACTION_STRUCT::*min;
    float ACTION_STRUCT::*max;
    TH_STRUCT* ACTION_STRUCT::*list;
    int values;
} kBlocks[] = {{kColour, &ACTION_STRUCT::colorMin, &ACTION_STRUCT::colorMax, &ACTION_STRUCT::colorThresholds, 2},
               {kWidth, &ACTION_STRUCT::widthMin, &ACTION_STRUCT::widthMax, &ACTION_STRUCT::widthThresholds, 20},
               {kStyle, &ACTION_STRUCT::styleMin, &ACTION_STRUCT::styleMax, &ACTION_STRUCT::styleThresholds, 10},
               {kVisible, &ACTION_STRUCT::visibleMin, &ACTION_STRUCT::visibleMax, &ACTION_STRUCT::visibleThresholds, 2},
               {kBlink, &ACTION_STRUCT::blinkMin, &ACTION_STRUCT::blinkMax, &ACTION_STRUCT::blinkThresholds, 9}};

void randomBlock(Random& r, ACTION_STRUCT* a, const BlockFields& b)
{
    a->*b.min = uniform(r, -100, 0), a->*b.max = uniform(r, 0, 100);
    for (int i = below(r, 4); i-- > 0;) {
        TH_STRUCT* th = createTh();
        th->lower = uniform(r, -100, 100), th->upper = uniform(r, -100, 100);
        th->value = below(r, b.values);
        randomColour(r, th->color);
        appendTh(&(a->*b.list), th);
    }
}

ACTION_STRUCT* randomAction(Random& r, int code)
{
    ACTION_STRUCT* a = createAction();
    a->type = code;
    randomText(r, a->var), randomText(r, a->var2), randomText(r, a->format), randomText(r, a->translatePoly);
    for (float* v : {&a->a0, &a->a1, &a->b0, &a->b1, &a->var2A0, &a->var2A1, &a->var2B0, &a->var2B1, &a->offset,
                     &a->slope, &a->filterTime, &a->mouseInc, &a->mouseMin, &a->mouseMax})
        *v = uniform(r, -1000, 1000);
    a->limit = below(r, 2), a->cg = 1 + below(r, 9), a->filter = below(r, 3);
    a->mouseButton = below(r, 3), a->mouseAction = below(r, 8), a->mouseMode = below(r, 3);
    a->mouseClamp = below(r, 2), a->mouseHiddenActive = below(r, 2);
    a->visibleMode = below(r, 3), a->visibleValue = below(r, 100);
    for (const BlockFields& b : kBlocks)
        randomBlock(r, a, b);
    return a;
}

// Groups last: below a few levels they are left out.
const uint32_t kKinds[] = {KR_GRAPH, KR_RECT,   KR_POLYLINE, KR_CIRCLE, KR_TEXT,    KR_LINE, KR_ARC,
                           KR_IMAGE, KR_BUTTON, KR_SLIDER,   KR_CPOLY,  KR_SCISSOR, KR_GROUP};

// A graph's numbers but its position, and its switches.
float GRAPH_STRUCT::*const kGraphNumbers[] = {
    &GRAPH_STRUCT::width, &GRAPH_STRUCT::height, &GRAPH_STRUCT::ymin, &GRAPH_STRUCT::ymax, &GRAPH_STRUCT::xmin,
    &GRAPH_STRUCT::xmax, &GRAPH_STRUCT::rate, &GRAPH_STRUCT::minspready, &GRAPH_STRUCT::minspreadx,
    &GRAPH_STRUCT::outlineWidth, &GRAPH_STRUCT::gridxSpace, &GRAPH_STRUCT::gridySpace, &GRAPH_STRUCT::gridxRef,
    &GRAPH_STRUCT::gridyRef, &GRAPH_STRUCT::tickxSpace, &GRAPH_STRUCT::tickySpace, &GRAPH_STRUCT::tickxRef,
    &GRAPH_STRUCT::tickyRef, &GRAPH_STRUCT::tickWidth, &GRAPH_STRUCT::labelXmin, &GRAPH_STRUCT::labelXmax,
    &GRAPH_STRUCT::labelYmin, &GRAPH_STRUCT::labelYmax};
int32_t GRAPH_STRUCT::*const kGraphSwitches[] = {
    &GRAPH_STRUCT::autoscale, &GRAPH_STRUCT::autoscalex, &GRAPH_STRUCT::bars, &GRAPH_STRUCT::gridx,
    &GRAPH_STRUCT::gridy, &GRAPH_STRUCT::gridxAuto, &GRAPH_STRUCT::gridyAuto, &GRAPH_STRUCT::labelx,
    &GRAPH_STRUCT::labely, &GRAPH_STRUCT::labelyr, &GRAPH_STRUCT::tickx, &GRAPH_STRUCT::ticky,
    &GRAPH_STRUCT::tickyr, &GRAPH_STRUCT::tickxAuto, &GRAPH_STRUCT::tickyAuto, &GRAPH_STRUCT::labelFixx,
    &GRAPH_STRUCT::labelFixy};

void randomBody(Random& r, ELEMENT_STRUCT* e, int depth, int* code);

// An element of a random kind, groups only a few levels deep, with actions of the codes in turn
// so that each view holds most of them.
ELEMENT_STRUCT* randomElement(Random& r, int depth, int* code)
{
    const uint32_t kind = kKinds[below(r, depth < 3 ? 13 : 12)];
    ELEMENT_STRUCT* e = elementCreate(kind);
    randomText(r, e->name);
    randomBody(r, e, depth, code);
    for (int i = below(r, 4), id = 0; i-- > 0;) {
        ACTION_STRUCT* a = randomAction(r, (*code)++ % (KR_ACTION_BLINK + 1));
        a->id = id++;
        appendAction(&e->actions, a);
    }
    return e;
}

void randomBody(Random& r, ELEMENT_STRUCT* e, int depth, int* code)
{
    switch (e->type) {
    case KR_GROUP:
        for (int i = 1 + below(r, 4); i-- > 0;)
            elementAppend(randomElement(r, depth + 1, code), &e->child);
        break;
    case KR_RECT: {
        auto* s = static_cast<RECT_STRUCT*>(e->data);
        randomCorners(r, s->cornerX, s->cornerY), randomShape(r, s);
        break;
    }
    case KR_SCISSOR:
        randomCorners(r, static_cast<SCISSOR_STRUCT*>(e->data)->cornerX, static_cast<SCISSOR_STRUCT*>(e->data)->cornerY);
        break;
    case KR_BUTTON: {
        auto* s = static_cast<BUTTON_STRUCT*>(e->data);
        randomCorners(r, s->cornerX, s->cornerY);
        randomColour(r, s->color0), randomColour(r, s->color1), randomColour(r, s->color2);
        s->strokeWidth = uniform(r, 0, 9), s->state = below(r, 2);
        break;
    }
    case KR_IMAGE: {
        auto* s = static_cast<IMAGE_STRUCT*>(e->data);
        randomCorners(r, s->cornerX, s->cornerY);
        randomColour(r, s->fillColor);
        s->fillStyle = below(r, 60);
        s->width = 1 + below(r, 4), s->height = 1 + below(r, 4);
        std::vector<uint8_t> pixels(size_t(s->width * s->height * 4));
        for (uint8_t& p : pixels)
            p = uint8_t(r());
        loadTextureFromData(pixels.data(), s);
        break;
    }
    case KR_POLYLINE:
    case KR_CPOLY: {
        auto* s = static_cast<POLY_STRUCT*>(e->data);
        randomShape(r, s), randomPoints(r, &s->coords);
        break;
    }
    case KR_CIRCLE:
    case KR_ARC: {
        auto* s = static_cast<CIRCLE_STRUCT*>(e->data);
        s->x = uniform(r, -500, 500), s->y = uniform(r, -500, 500);
        for (float& m : s->matrix)
            m = uniform(r, -2, 2);
        s->start = uniform(r, 0, 6.3f), s->end = uniform(r, 0, 6.3f);
        randomShape(r, s);
        break;
    }
    case KR_TEXT: {
        auto* s = static_cast<TEXT_STRUCT*>(e->data);
        s->x = uniform(r, -500, 500), s->y = uniform(r, -500, 500);
        randomText(r, s->text);
        randomColour(r, s->strokeColor);
        s->align = 1 + below(r, 9);
        for (float& m : s->matrix)
            m = uniform(r, -2, 2);
        std::snprintf(s->fontFamily, sizeof s->fontFamily, "%s", below(r, 2) ? "Arial" : "Courier");
        s->fontStyle = below(r, 16), s->underline = below(r, 2), s->fontSize = 8 + below(r, 30);
        s->textSize = s->fontSize, s->fillStyle = below(r, 60);
        break;
    }
    case KR_LINE: {
        auto* s = static_cast<LINE_STRUCT*>(e->data);
        for (float* v : {&s->x1, &s->y1, &s->x2, &s->y2})
            *v = uniform(r, -500, 500);
        randomStroke(r, s);
        break;
    }
    case KR_GRAPH: {
        auto* s = static_cast<GRAPH_STRUCT*>(e->data);
        s->type = below(r, 2);
        s->x = uniform(r, -500, 500), s->y = uniform(r, -500, 500);
        for (float GRAPH_STRUCT::*v : kGraphNumbers)
            s->*v = uniform(r, -500, 500);
        for (int32_t GRAPH_STRUCT::*v : kGraphSwitches)
            s->*v = below(r, 2);
        s->samples = 1 + below(r, 1000), s->tickxSub = below(r, 10), s->tickySub = below(r, 10);
        s->gridStyle = below(r, 10);
        randomColour(r, s->outlineColor), randomColour(r, s->backgroundColor), randomColour(r, s->gridColor);
        s->fontStyle = below(r, 5), s->fontSize = 8 + below(r, 20);
        break;
    }
    default: // a slider: XML leaves it out
        break;
    }
}

DD_DATA_TYPE_STRUCT* randomSources(Random& r)
{
    DD_DATA_TYPE_STRUCT* list = nullptr;
    for (int s = below(r, 3); s-- > 0;) {
        const int slots = below(r, 4), varSlots = below(r, 3);
        DD_DATA_TYPE_STRUCT* source = createDataType(slots);
        randomText(r, source->name);
        source->id = 1 + k2dtest::countList(list), source->nrData = slots, source->nrVar = varSlots;
        for (int i = 0; i < slots; ++i)
            source->para[i].ival = below(r, 100), std::snprintf(source->para[i].sval, 64, "p%d & <%d>", i, below(r, 9));
        for (int v = 1 + below(r, 3); v-- > 0;) {
            VARIABLE_STRUCT* variable = createVariable(varSlots);
            randomText(r, variable->name), randomText(r, variable->defaultValue);
            variable->type = below(r, KR_VAR_TEXT + 1);
            for (int i = 0; i < varSlots; ++i)
                variable->para[i].ival = below(r, 100), std::snprintf(variable->para[i].sval, 64, "v%d'\"", i);
            appendVariable(&source->variables, variable);
        }
        appendDataType(&list, source);
    }
    return list;
}

// The view saved by `save` and read back by `load`.
std::unique_ptr<k2dtest::FileView> through(const VIEW_STRUCT& view, decltype(&saveFile) save,
                                           k2dtest::FileView::Reader load, const char* suffix)
{
    k2dtest::TempFile file({}, suffix);
    save(file.path().c_str(), view.elements, view.dataTypes, &view);
    return std::make_unique<k2dtest::FileView>(file.path(), load);
}

// ------------------------------------------------------------------ the XML forms

// A number as a "double" attribute holds it: six significant digits.
double six(double v)
{
    std::ostringstream text;
    text << v;
    return std::strtod(text.str().c_str(), nullptr);
}

// A matrix entry: six decimals.
double decimals(double v)
{
    char text[64];
    std::snprintf(text, sizeof text, "%f", v);
    return std::strtod(text, nullptr);
}

float component(float v)
{
    return float(std::clamp(int(double(v) * 255.0), 0, 255) / 255.0);
}

template <size_t N> void components(float (&c)[N])
{
    for (float& v : c)
        v = component(v);
}

// A colour with an on flag: "none" for off, which reads back opaque white.
void switched(int32_t* on, float (&c)[4])
{
    *on = *on != 0;
    for (float& v : c)
        v = *on ? component(v) : 1.0f;
}

// Offsets of the groups around an element: as the writer sums the records' values and as the
// reader sums the printed ones.
struct Offsets {
    double writtenX = 0, writtenY = 0, readX = 0, readY = 0;
    float x(float v) const { return float(six(double(v) - writtenX) + readX); }
    float y(float v) const { return float(six(double(v) - writtenY) + readY); }
};

void rectangle(float* xs, float* ys, const Offsets& o)
{
    double x[4], y[4];
    for (int k = 0; k < 4; ++k)
        x[k] = xs[k] - o.writtenX, y[k] = ys[k] - o.writtenY;
    const double tx = x[1] - (x[2] - x[3]), ty = y[1] - (y[2] - y[3]);
    Matrix2<double> m(x[3] - tx, x[2] - x[3], 0, y[3] - ty, y[2] - y[3], 0);
    double a, b;
    m.normalize(&a, &b);
    const double width = six(1 / a), height = six(1 / b);
    const double cx = six(m.m[0][0] * (1 / a) / 2 + m.m[0][1] * (1 / b) / 2 + tx) + o.readX;
    const double cy = six(m.m[1][0] * (1 / a) / 2 + m.m[1][1] * (1 / b) / 2 + ty) + o.readY;
    const double d[4][2] = {{-1, -1}, {-1, 1}, {1, 1}, {1, -1}};
    for (int k = 0; k < 4; ++k) {
        const double dx = d[k][0] * width / 2, dy = d[k][1] * height / 2;
        xs[k] = float(cx + decimals(m.m[0][0]) * dx + decimals(m.m[0][1]) * dy);
        ys[k] = float(cy + decimals(m.m[1][0]) * dx + decimals(m.m[1][1]) * dy);
    }
}

float angle(float radians)
{
    return float(six(double(radians) * 57.29577951) * 0.017453292);
}

// The threshold blocks that a code writes.
int blocksOf(const ACTION_STRUCT* a)
{
    switch (a->type) {
    case KR_ACTION_GRAPH: return kColour | kWidth;
    case KR_ACTION_STROKE_COLOR:
    case KR_ACTION_FILL_COLOR: return kColour;
    case KR_ACTION_STROKE_WIDTH: return kWidth;
    case KR_ACTION_STROKE_STYLE: return kStyle;
    case KR_ACTION_VISIBLE: return a->visibleMode == 0 ? kVisible : 0;
    case KR_ACTION_BLINK: return kBlink;
    default: return 0;
    }
}

// A written block: its range and entries in six digits, each upper end the next entry's lower
// end or the range's end, colours in 8 bits a channel, visibility as 0 or 1. A block that isn't
// written is the actual one.
void expectBlock(bool written, const BlockFields& b, ACTION_STRUCT* e, const ACTION_STRUCT* actualAction)
{
    float *min = &(e->*b.min), *max = &(e->*b.max);
    TH_STRUCT** head = &(e->*b.list);
    TH_STRUCT* actual = actualAction->*b.list;
    if (!written) {
        while (*head)
            delTh(head, *head);
        for (; actual; actual = actual->next) {
            TH_STRUCT* th = createTh();
            *th = *actual;
            th->prev = th->next = nullptr;
            appendTh(head, th);
        }
        *min = actualAction->*b.min, *max = actualAction->*b.max;
        return;
    }
    *min = float(six(*min)), *max = float(six(*max));
    for (TH_STRUCT* th = *head; th; th = th->next, actual = actual ? actual->next : nullptr) {
        th->lower = float(six(th->lower));
        th->upper = th->next ? float(six(th->next->lower)) : *max;
        if (b.block == kColour) {
            components(th->color);
            if (actual)
                th->value = actual->value;
        } else if (actual) {
            std::memcpy(th->color, actual->color, sizeof th->color);
        }
        if (b.block == kVisible)
            th->value = th->value != 0;
    }
}

// The expected action: what its code writes, in the forms of the text. Fields that the code
// doesn't write are the actual ones.
void expectAction(ACTION_STRUCT* e, const ACTION_STRUCT* b)
{
    const int code = e->type;
    const bool graph = code == KR_ACTION_GRAPH, mouse = code == KR_ACTION_INPUT;
    if (code == KR_ACTION_BUTTON_STATE)
        e->type = KR_ACTION_TEXT;
    for (float* v : {&e->a0, &e->a1, &e->b0, &e->b1, &e->filterTime})
        *v = float(six(*v));
    e->limit = e->limit != 0;
    if (graph) {
        for (float* v : {&e->var2A0, &e->var2A1, &e->var2B0, &e->var2B1})
            *v = float(six(*v));
    } else {
        std::memcpy(e->var2, b->var2, sizeof e->var2);
        e->var2A0 = b->var2A0, e->var2A1 = b->var2A1, e->var2B0 = b->var2B0, e->var2B1 = b->var2B1;
    }
    e->offset = b->offset, e->slope = b->slope, e->offset2 = b->offset2, e->slope2 = b->slope2;
    if (code != KR_ACTION_TEXT)
        std::memcpy(e->format, b->format, sizeof e->format);
    if (code != KR_ACTION_ROTATE)
        e->cg = b->cg;
    if (code != KR_ACTION_MOVE_ALONG_POLYLINE)
        std::memcpy(e->translatePoly, b->translatePoly, sizeof e->translatePoly);
    if (mouse) {
        e->mouseClamp = e->mouseClamp != 0, e->mouseHiddenActive = e->mouseHiddenActive != 0;
        for (float* v : {&e->mouseInc, &e->mouseMin, &e->mouseMax})
            *v = float(six(*v));
    } else {
        e->mouseButton = b->mouseButton, e->mouseAction = b->mouseAction, e->mouseMode = b->mouseMode;
        e->mouseClamp = b->mouseClamp, e->mouseHiddenActive = b->mouseHiddenActive;
        e->mouseInc = b->mouseInc, e->mouseMin = b->mouseMin, e->mouseMax = b->mouseMax;
    }
    const int blocks = blocksOf(e);
    const bool thresholded = code == KR_ACTION_STROKE_COLOR || code == KR_ACTION_FILL_COLOR ||
                             code == KR_ACTION_STROKE_WIDTH || code == KR_ACTION_BLINK;
    if (code != KR_ACTION_VISIBLE || e->visibleMode != 1)
        e->visibleValue = b->visibleValue;
    e->visibleMode = thresholded || (code == KR_ACTION_VISIBLE && e->visibleMode == 0) ? 0 : 1;
    for (const BlockFields& block : kBlocks)
        expectBlock(blocks & block.block, block, e, b);
}

void expectPoints(COORD_STRUCT* c, const Offsets& o)
{
    for (; c; c = c->next)
        c->x = o.x(c->x), c->y = o.y(c->y);
}

template <class Record> void expectStroke(Record* s)
{
    s->strokeWidth = float(six(s->strokeWidth)), s->antialias = s->antialias != 0;
}

void expectElements(ELEMENT_STRUCT** list, const ELEMENT_STRUCT* actual, const Offsets& o);

void expectElement(ELEMENT_STRUCT* e, const ELEMENT_STRUCT* actual, const Offsets& o)
{
    std::memcpy(e->id, actual->id, sizeof e->id); // not stored in XML
    if (e->type == KR_ARC)
        e->type = KR_CIRCLE;
    void* data = e->data;
    switch (e->type) {
    case KR_GROUP: {
        Offsets inner = o;
        inner.writtenX += e->x, inner.writtenY += e->y;
        inner.readX += six(e->x), inner.readY += six(e->y);
        expectElements(&e->child, actual->child, inner);
        break;
    }
    case KR_RECT: {
        auto* s = static_cast<RECT_STRUCT*>(data);
        rectangle(s->cornerX, s->cornerY, o);
        switched(&s->strokeOn, s->strokeColor), switched(&s->fillOn, s->fillColor), expectStroke(s);
        break;
    }
    case KR_SCISSOR:
        rectangle(static_cast<SCISSOR_STRUCT*>(data)->cornerX, static_cast<SCISSOR_STRUCT*>(data)->cornerY, o);
        break;
    case KR_BUTTON: {
        auto* s = static_cast<BUTTON_STRUCT*>(data);
        rectangle(s->cornerX, s->cornerY, o);
        components(s->color0), components(s->color1), components(s->color2);
        s->strokeWidth = float(six(s->strokeWidth));
        break;
    }
    case KR_IMAGE: {
        auto* s = static_cast<IMAGE_STRUCT*>(data);
        rectangle(s->cornerX, s->cornerY, o);
        components(s->fillColor);
        break;
    }
    case KR_POLYLINE:
    case KR_CPOLY: {
        auto* s = static_cast<POLY_STRUCT*>(data);
        const auto* b = static_cast<const POLY_STRUCT*>(actual->data);
        expectPoints(s->coords, o), expectStroke(s);
        s->closed = b->closed;
        if (e->type == KR_CPOLY) {
            switched(&s->strokeOn, s->strokeColor), switched(&s->fillOn, s->fillColor);
        } else {
            components(s->strokeColor);
            s->strokeOn = b->strokeOn, s->fillOn = b->fillOn;
            std::memcpy(s->fillColor, b->fillColor, sizeof s->fillColor);
        }
        break;
    }
    case KR_CIRCLE: {
        auto* s = static_cast<CIRCLE_STRUCT*>(data);
        s->x = o.x(s->x), s->y = o.y(s->y);
        for (float& m : s->matrix)
            m = float(decimals(m));
        s->start = angle(s->start), s->end = angle(s->end);
        switched(&s->strokeOn, s->strokeColor), switched(&s->fillOn, s->fillColor), expectStroke(s);
        break;
    }
    case KR_TEXT: {
        auto* s = static_cast<TEXT_STRUCT*>(data);
        s->x = o.x(s->x), s->y = o.y(s->y);
        components(s->strokeColor);
        for (float& m : s->matrix)
            m = float(decimals(m));
        s->fontStyle &= 2 | 4, s->underline = s->underline != 0, s->textSize = 30;
        break;
    }
    case KR_LINE: {
        auto* s = static_cast<LINE_STRUCT*>(data);
        s->x1 = o.x(s->x1), s->y1 = o.y(s->y1), s->x2 = o.x(s->x2), s->y2 = o.y(s->y2);
        components(s->strokeColor), expectStroke(s);
        break;
    }
    case KR_GRAPH: {
        auto* s = static_cast<GRAPH_STRUCT*>(data);
        s->x = o.x(s->x), s->y = o.y(s->y);
        for (float GRAPH_STRUCT::*v : kGraphNumbers)
            s->*v = float(six(s->*v));
        for (int32_t GRAPH_STRUCT::*v : kGraphSwitches)
            s->*v = s->*v != 0;
        components(s->outlineColor), components(s->backgroundColor), components(s->gridColor);
        s->fontStyle = 1 | (s->fontStyle & (2 | 4));
        if (s->fontStyle > 4) // italic: a style the binary reader replaces
            std::snprintf(s->fontFamily, sizeof s->fontFamily, "Courier [fixed]"), s->fontStyle = 1, s->fontSize = 12;
        break;
    }
    default:
        break;
    }
    int place = 0; // the running number is the place among the element's actions
    for (ACTION_STRUCT *a = e->actions, *b = actual->actions; a && b; a = a->next, b = b->next) {
        a->id = place++;
        expectAction(a, b);
    }
}

void expectElements(ELEMENT_STRUCT** list, const ELEMENT_STRUCT* actual, const Offsets& o)
{
    for (ELEMENT_STRUCT *e = *list, *next; e; e = next) {
        next = e->next;
        if (e->type == KR_SLIDER) {
            elementDelete(e, list);
            continue;
        }
        if (actual) {
            expectElement(e, actual, o);
            actual = actual->next;
        }
    }
}

// A random view as the binary reader gives it: every kind in nested groups, actions of every code
// with entries in every block, sources with parameters.
std::unique_ptr<k2dtest::FileView> randomView(int seed)
{
    Random r(seed);
    VIEW_STRUCT made = {};
    made.x = uniform(r, -100, 100), made.y = uniform(r, -100, 100);
    made.width = uniform(r, 1, 2000), made.height = uniform(r, 1, 2000);
    randomColour(r, made.pageColor);
    int code = seed;
    for (int i = 1 + below(r, 6); i-- > 0;)
        elementAppend(randomElement(r, 0, &code), &made.elements);
    made.dataTypes = randomSources(r);
    auto binary = through(made, saveFile, loadFile, ".k2d");
    elementDeleteAll(&made.elements);
    while (made.dataTypes)
        delDataType(&made.dataTypes, made.dataTypes, 0);
    return binary;
}

// The view through XML and back to binary against the view in the forms of the XML text.
std::string roundTripDifference(const VIEW_STRUCT& binary)
{
    const auto xml = through(binary, saveFileXml, loadFileXml, ".xml");
    const auto back = through(xml->view, saveFile, loadFile, ".k2d");
    const auto expected = through(binary, saveFile, loadFile, ".k2d");
    VIEW_STRUCT& e = expected->view;
    e.x = float(six(e.x)), e.y = float(six(e.y)), e.width = float(six(e.width)), e.height = float(six(e.height));
    components(e.pageColor);
    expectElements(&e.elements, back->view.elements, Offsets());
    return k2dtest::firstStoredDifference(&e, &back->view);
}

TEST(RoundTrip, SamplesAndRandomViewsKeepWhatBothFormsCarry)
{
    for (const std::string& path : k2dtest::samplePaths()) {
        const k2dtest::FileView sample(path);
        EXPECT_EQ(roundTripDifference(sample.view), "") << path;
    }
    for (int seed = 0; seed < 2000; ++seed)
        ASSERT_EQ(roundTripDifference(randomView(seed)->view), "") << "seed " << seed;
}

// The largest gap between the numbers of two texts that are equal but for their numbers, as a
// fraction of the largest number; 1 when they differ in anything else.
double numberDrift(const std::string& a, const std::string& b)
{
    const std::regex number("-?[0-9][0-9.]*(e[-+][0-9]+)?");
    std::sregex_token_iterator pa(a.begin(), a.end(), number, {-1, 0}), pb(b.begin(), b.end(), number, {-1, 0}), end;
    double gap = 0, largest = 0;
    for (bool isNumber = false; pa != end && pb != end; ++pa, ++pb, isNumber = !isNumber) {
        if (!isNumber && pa->str() != pb->str())
            return 1;
        if (isNumber) {
            const double x = std::strtod(pa->str().c_str(), nullptr), y = std::strtod(pb->str().c_str(), nullptr);
            gap = std::max(gap, std::fabs(x - y)), largest = std::max({largest, std::fabs(x), std::fabs(y)});
        }
    }
    return pa != end || pb != end ? 1 : largest > 0 ? gap / largest : 0;
}

// XML -> binary -> XML settles from the second pass on: the text stays, or only the rectangle
// family's float corners and six digits move a last digit, never far over ten passes.
TEST(RoundTrip, XmlThroughBinarySettlesAfterOnePass)
{
    int settled = 0;
    for (int seed = 0; seed < 200; ++seed) {
        auto view = randomView(seed);
        k2dtest::TempFile file({}, ".xml");
        std::string second;
        bool same = true;
        for (int pass = 1; pass <= 10; ++pass) {
            saveFileXml(file.path().c_str(), view->view.elements, view->view.dataTypes, &view->view);
            std::ifstream in(file.path(), std::ios::binary);
            const std::string text{std::istreambuf_iterator<char>(in), {}};
            if (pass == 2)
                second = text;
            if (pass > 2) {
                same = same && text == second;
                ASSERT_LE(numberDrift(second, text), 1e-5) << "seed " << seed << " pass " << pass;
            }
            const k2dtest::FileView xml(file.path(), loadFileXml);
            view = through(xml.view, saveFile, loadFile, ".k2d");
        }
        // A group's offset is the centre of its children's float bounds: a last digit that
        // moves there moves all its children's numbers.
        const bool moving = std::regex_search(second, std::regex("<(rect|button|group) "));
        EXPECT_TRUE(same || moving) << "seed " << seed;
        settled += same;
    }
    EXPECT_GT(settled, 100) << "views whose text stays from the second pass on";
}

} // namespace
