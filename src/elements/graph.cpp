// Graph: a strip chart or xy plot with frame, grid, ticks and labels, and the view time its
// window follows.
#include "KorelEdit.h"
#include "base/truncate.h"
#include "edit/handles.h"
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"
#include "glyph/GlyphKit.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

static GRAPH_STRUCT graphDefaults()
{
    GRAPH_STRUCT g = {};
    g.x = 200.0f;
    g.y = 600.0f;
    g.width = 500.0f;
    g.height = 200.0f;
    g.ymin = -100.0f;
    g.ymax = 100.0f;
    g.xmax = 100.0f;
    g.rate = 10.0f;
    g.autoscale = 1;
    g.autoscalex = 1;
    g.samples = 500;
    setColor(g.outlineColor, 1, 1, 1, 1);
    g.outlineWidth = 1.0f;
    g.gridx = g.gridy = 1;
    g.gridxAuto = g.gridyAuto = 1;
    g.gridxSpace = 10.0f;
    g.gridySpace = 1.0f;
    g.gridStippleFactor = 1;
    g.gridStipplePattern = 0xFFFF;
    g.gridStyle = 1;
    setColor(g.gridColor, 0.5f, 0.25f, 0.25f, 1);
    g.labelx = g.labely = 1;
    g.labelXmax = 100.0f;
    g.labelYmax = 100.0f;
    g.tickx = g.ticky = 1;
    g.tickxAuto = g.tickyAuto = 1;
    g.tickxSpace = g.tickySpace = 2.0f;
    g.tickxSub = g.tickySub = 5;
    strcpy(g.fontFamily, "Helvetica [fixed]");
    g.fontStyle = 1;
    g.fontSize = 10;
    g.smoothYmin = -100.0f;
    g.smoothYmax = 100.0f;
    g.smoothXmax = 100.0f;
    return g;
}

GRAPH_STRUCT* createGraph(const GRAPH_STRUCT* source)
{
    GRAPH_STRUCT* g = createRecordOf(source, graphDefaults(), "createGraph");
    if (!g)
        return nullptr;
    // Each graph owns its label font: a copy gets a font of its own.
    g->font = gkFontCreate(g->fontFamily, g->fontStyle, g->fontSize);
    KGraphSetXLabel(g, g->xmin, g->xmax);
    KGraphSetYLabel(g, g->ymin, g->ymax);
    return g;
}

void graphFreeData(void* data)
{
    GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(data);
    gkFontFree(g->font);
    g->font = 0;
}

int graphSetAttr(ELEMENT_STRUCT* element)
{
    const GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(element->data);
    ELEMENT_ATTR* attr = &element->attr;
    attrSeedCommon(attr);
    // Colour actions act on outline and grid: they reach the frame through these two.
    attr->lineStyle = 0;
    std::copy(g->outlineColor, g->outlineColor + 4, attr->strokeColor);
    std::copy(g->gridColor, g->gridColor + 4, attr->fillColor);
    return 0;
}

// The record holds the lower left corner; the element is centred like every other kind.
int graphSetPickSticky(ELEMENT_STRUCT* element)
{
    const GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(element->data);
    const float x[2] = {g->x, g->x + g->width}, y[2] = {g->y, g->y + g->height};
    float box[4];
    pointsBox(x, y, 2, box);
    boxGeometry(element, box[0], box[1], box[2], box[3]);
    placeCentre(element, float(g->x + g->width * 0.5), float(g->y + g->height * 0.5));
    element->width = g->width;
    element->height = g->height;
    addBoundsStickies(element);
    return graphSetAttr(element);
}

// Corners of the record's box: lower left, upper left, upper right, lower right.
static void graphCorners(const GRAPH_STRUCT* g, float x[4], float y[4])
{
    x[0] = x[1] = g->x;
    x[2] = x[3] = g->x + g->width;
    y[0] = y[3] = g->y;
    y[1] = y[2] = g->y + g->height;
}

static void applyGraph(ELEMENT_STRUCT* element, const void* saved, int code, const KR_EDIT_VALUE* value)
{
    GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(element->data);
    float savedX[4], savedY[4], x[4], y[4];
    graphCorners(static_cast<const GRAPH_STRUCT*>(saved), savedX, savedY);
    graphCorners(g, x, y);
    movePoints(element, code, value, x, y, savedX, savedY, 4);
    // The record keeps the lower left corner and a positive size, whichever way the box turned.
    g->x = *std::min_element(x, x + 4);
    g->y = *std::min_element(y, y + 4);
    g->width = std::fabs(x[0] - x[3]);
    g->height = std::fabs(y[0] - y[1]);
}

// The frame's outline is its stroke, the grid its line style and fill colour.
static StyleFields graphStyle(void* data)
{
    GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(data);
    StyleFields f;
    f.width = &g->outlineWidth;
    f.lineStyle = &g->gridStyle;
    f.stippleFactor = &g->gridStippleFactor;
    f.stipplePattern = &g->gridStipplePattern;
    f.fill = g->gridColor;
    f.stroke = g->outlineColor;
    f.font = &g->font;
    f.fontFamily = g->fontFamily;
    f.fontStyle = &g->fontStyle;
    f.fontSize = &g->fontSize;
    return f;
}

int editGraph(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    static const KindEdit kind{sizeof(GRAPH_STRUCT), applyGraph, graphSetAttr, nullptr, nullptr, graphStyle};
    return runKindEdit(element, stickies, code, phase, value, kind);
}

// Truncation that stays defined for NaN and infinities from degenerate ranges.
static int truncInRange(double value, int lo, int hi)
{
    if (!(value >= lo))
        return lo;
    return value > hi ? hi : int(value);
}

// printf format wide enough for the integer digits of lo..hi and the decimals a step of `space` needs.
static void buildLabelFormat(char format[32], float space, float lo, float hi)
{
    float l = float(std::log10(std::fabs(space)));
    int decimals = l >= 0 ? 0 : truncInRange(std::fabs(l) + 1.0, 0, 20);
    float g = float(std::log10(std::max(std::fabs(lo), std::fabs(hi))));
    int digits = g < 1 ? 1 : truncInRange(g + 1.0, 1, 60);
    int width = decimals ? digits + decimals + 1 : digits;
    snprintf(format, 32, "%%%d.%df", width, decimals);
}

int KGraphSetXLabel(GRAPH_STRUCT* record, float lo, float hi)
{
    buildLabelFormat(record->labelXFormat, record->tickxSpace, lo, hi);
    return 0;
}

int KGraphSetYLabel(GRAPH_STRUCT* record, float lo, float hi)
{
    buildLabelFormat(record->labelYFormat, record->tickySpace, lo, hi);
    return 0;
}

// ---------------------------------------------------------------- automatic spacing

// A round spacing (1, 2 or 5 times a power of ten) of about one step per `pixelsPerStep`:
// `limits` are the bounds of the mantissa below which 1, 2 and 5 are taken. A range too short
// for one step gives -1, which draws nothing.
static void autoSpacing(float* space, float* ref, int* sub, float lo, float hi, float pixels, double pixelsPerStep,
                        const float limits[3], bool refOnStep)
{
    const float s = float((hi - lo) / (pixels / pixelsPerStep));
    if (s > hi - lo) {
        *space = -1;
        *ref = 0;
        return;
    }
    const float e = float(std::log10(std::fabs(s)));
    float m = 1, q = s;
    // A zero range makes e infinite: m becomes 0 and q NaN, which ends in a spacing of 0.
    if (e > 1) {
        m = float(std::pow(10.0, truncToInt(e)));
        q = s / m;
    } else if (e < 0) {
        m = float(std::pow(10.0, truncToInt(e - 1)));
        q = s / m;
    }
    if (q < limits[0])
        *space = m, *sub = 5;
    else if (q < limits[1])
        *space = 2 * m, *sub = 4;
    else if (q < limits[2])
        *space = 5 * m, *sub = 5;
    else
        *space = 10 * m, *sub = 5;
    *ref = refOnStep ? *space : 0;
}

int KGraphGetAutoParaX(float* space, float* ref, int* sub, float lo, float hi, float pixels)
{
    static const float limits[3] = {1.1f, 2.1f, 5.1f};
    autoSpacing(space, ref, sub, lo, hi, pixels, 50.0, limits, true);
    return 0;
}

int KGraphGetAutoParaY(float* space, float* ref, int* sub, float lo, float hi, float pixels)
{
    static const float limits[3] = {1, 2, 5};
    autoSpacing(space, ref, sub, lo, hi, pixels, 20.0, limits, false);
    return 0;
}

// ---------------------------------------------------------------- frame

namespace {

// Lines of one kind on one axis; a record may hold any range or spacing, so the walk along
// an axis gives up after drawing this many.
constexpr int kMaxLines = 100000;
constexpr float kTickLength = 12, kSubTickLength = 5;
// Lines this far beyond the window (pixels) are still drawn: their labels may reach into it.
constexpr double kLabelReach = 256;

// The part of one side of the frame that lies in the window, in frame units, and the pixels a
// unit covers there.
struct Span {
    double from, to, pixels;
};

// Spans of the bottom (x) and the left side (y) of a frame w x h at the model origin. A side
// that covers no pixel is one spot on the screen: all of it counts as in the window.
void spansOnScreen(float w, float h, Span& x, Span& y)
{
    const float cornerX[3] = {0, w, 0}, cornerY[3] = {0, 0, h};
    double wx[3], wy[3];
    projectToWindow(cornerX, cornerY, 3, wx, wy);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    const auto span = [](double start, double end, double length, double windowLo, double windowHi) {
        const double pixels = std::fabs((end - start) / length);
        if (!(pixels > 0))
            return Span{-HUGE_VAL, HUGE_VAL, 0};
        const double a = (windowLo - kLabelReach - start) / (end - start) * length;
        const double b = (windowHi + kLabelReach - start) / (end - start) * length;
        return Span{std::min(a, b), std::max(a, b), pixels};
    };
    x = span(wx[0], wx[1], w, viewport[0], double(viewport[0]) + viewport[2]);
    y = span(wy[0], wy[2], h, viewport[1], double(viewport[1]) + viewport[3]);
}

// One axis of the frame: a value v lands at s * v + o, on the screen where its span says.
struct Axis {
    float s, o;
    Span span;
    float at(double v) const { return float(double(s) * v + double(o)); }
};

Axis axisOf(float lo, float hi, float length, const Span& span)
{
    const float s = length / std::fabs(hi - lo);
    return {s, -s * lo, span};
}

// The first line of the spacing through `ref` at or above lo: strictly above when ref <= lo.
float firstLine(float ref, float lo, float space)
{
    if (ref > lo)
        return ref - float(truncToInt((ref - lo) / space)) * space;
    return ref + float(int64_t(truncToInt((lo - ref) / space)) + 1) * space;
}

// Calls line(p, f) for f = first, first + space, ... up to hi, p the place of f on the axis,
// for the lines in the window only, so that a frame far larger than the window costs no more
// than one that fits. Lines less than a pixel apart paint the same pixels: of those only every
// k-th is drawn, k the lines a pixel holds. Lines before the window are passed over k at a
// time, which keeps the lines drawn in place while the view scrolls. Ends when f stops growing
// (a spacing lost in f's precision) or after kMaxLines lines.
template <class Line> void eachLine(double first, float hi, float space, const Axis& axis, Line line)
{
    const double perPixel = 1 / (double(space) * std::fabs(double(axis.s)) * axis.span.pixels);
    const double stride = perPixel > 1 ? std::ceil(perPixel) : 1;
    const double v0 = (axis.span.from - axis.o) / axis.s, v1 = (axis.span.to - axis.o) / axis.s;
    const double highest = std::fmax(v0, v1), before = (std::fmin(v0, v1) - first) / double(space);
    double n = before > 0 ? std::floor(before / stride) * stride : 0;
    double f = first + n * double(space);
    for (int drawn = 0; drawn < kMaxLines && hi >= f && highest >= f && space > 0; ++drawn, n += stride) {
        line(axis.at(f), f);
        const double next = first + (n + stride) * double(space);
        if (!(f + double(space) > f) || !(next > f))
            break;
        f = next;
    }
}

// A grid line or a major x tick never sits on the low end, where the outline is.
double firstInside(float ref, float lo, float space)
{
    const float f = firstLine(ref, lo, space);
    return f == lo ? double(f) + space : double(f);
}

// The labels along one side of an axis, each moved from its tick by its own size times
// (widthTimes, heightTimes) plus (dx, dy). A label that would overlap the last one drawn is left
// out (`across` labels stand side by side, the others one above the other): ticks closer than
// their labels stay readable, and a spacing far below a pixel costs no more than a few labels.
struct LabelSide {
    const GRAPH_STRUCT* g;
    float widthTimes, dx, heightTimes, dy;
    bool across;
    float lastPlace = std::numeric_limits<float>::quiet_NaN(), lastExtent = 0;

    void draw(const char* format, double value, float place)
    {
        if (std::fabs(place - lastPlace) < lastExtent)
            return;
        char text[64];
        snprintf(text, sizeof text, format, value);
        int metric[2] = {0, 0};
        if (gkFontStringMetric(g->font, text, metric) != 0)
            metric[0] = metric[1] = 0;
        lastPlace = place;
        lastExtent = float(metric[across ? 0 : 1]);
        tkPushMatrix();
        glTranslatef(widthTimes * float(metric[0]) + dx, heightTimes * float(metric[1]) + dy, 0);
        gkFontRender(g->font, text);
        tkPopMatrix();
    }
};

void drawGrid(GRAPH_STRUCT* g, const ELEMENT_ATTR* attr, float x0, float x1, float y0, float y1, const Span& onX,
              const Span& onY)
{
    tkLineWidth(1);
    tkLineStipple(g->gridStippleFactor, g->gridStipplePattern);
    kvColor4f(attr->fillColor[0], attr->fillColor[1], attr->fillColor[2], attr->fillColor[3]);
    int scratchSub = 0;
    if (g->gridy) {
        if (g->gridyAuto)
            KGraphGetAutoParaY(&g->gridySpace, &g->gridyRef, &scratchSub, y0, y1, g->height);
        tkBegin(GL_LINES);
        eachLine(firstInside(g->gridyRef, y0, g->gridySpace), y1, g->gridySpace, axisOf(y0, y1, g->height, onY),
                 [g](float p, double) { tkVertex2f(0, p), tkVertex2f(g->width, p); });
        tkEnd();
    }
    if (g->gridx) {
        if (g->gridxAuto)
            KGraphGetAutoParaX(&g->gridxSpace, &g->gridxRef, &scratchSub, x0, x1, g->width);
        tkBegin(GL_LINES);
        eachLine(firstInside(g->gridxRef, x0, g->gridxSpace), x1, g->gridxSpace, axisOf(x0, x1, g->width, onX),
                 [g](float p, double) { tkVertex2f(p, 0), tkVertex2f(p, g->height); });
        tkEnd();
    }
}

void drawTicksY(GRAPH_STRUCT* g, float y0, float y1, const Span& onY)
{
    if (g->tickyAuto)
        KGraphGetAutoParaY(&g->tickySpace, &g->tickyRef, &g->tickySub, y0, y1, g->height);
    const Axis axis = axisOf(y0, y1, g->height, onY);
    // Unlike grid lines, a major y tick may sit on the low end.
    float f = firstLine(g->tickyRef, y0, g->tickySpace);
    if (y0 <= f - g->tickySpace)
        f -= g->tickySpace;
    LabelSide left{g, -1, -kTickLength, -0.5f, 0, false}, right{g, 0, 15 + g->width, -0.5f, 0, false};
    eachLine(f, y1, g->tickySpace, axis, [&](float p, double value) {
        tkPushMatrix();
        glTranslatef(0, p, 0);
        tkBegin(GL_LINES);
        if (g->ticky)
            tkVertex2f(0, 0), tkVertex2f(-kTickLength, 0);
        if (g->tickyr)
            tkVertex2f(g->width, 0), tkVertex2f(g->width + kTickLength, 0);
        tkEnd();
        if (g->labely || g->labelyr)
            KGraphSetYLabel(g, y0, y1);
        if (g->labely)
            left.draw(g->labelYFormat, value, p);
        if (g->labelyr)
            right.draw(g->labelYFormat, value, p);
        tkPopMatrix();
    });
    const float step = g->tickySpace / float(g->tickySub);
    tkBegin(GL_LINES);
    eachLine(firstLine(g->tickyRef, y0, step), y1, step, axis, [g](float p, double) {
        if (g->ticky)
            tkVertex2f(0, p), tkVertex2f(-kSubTickLength, p);
        if (g->tickyr)
            tkVertex2f(g->width, p), tkVertex2f(g->width + kSubTickLength, p);
    });
    tkEnd();
}

void drawTicksX(GRAPH_STRUCT* g, float x0, float x1, const Span& onX)
{
    if (g->tickxAuto)
        KGraphGetAutoParaX(&g->tickxSpace, &g->tickxRef, &g->tickxSub, x0, x1, g->width);
    const Axis axis = axisOf(x0, x1, g->width, onX);
    LabelSide below{g, -0.5f, 0, -1, -kTickLength - 1, true};
    eachLine(firstInside(g->tickxRef, x0, g->tickxSpace), x1, g->tickxSpace, axis, [&](float p, double value) {
        tkPushMatrix();
        glTranslatef(p, 0, 0);
        tkBegin(GL_LINES);
        tkVertex2f(0, 0), tkVertex2f(0, -kTickLength);
        tkEnd();
        if (g->labelx) {
            KGraphSetXLabel(g, x0, x1);
            below.draw(g->labelXFormat, value, p);
        }
        tkPopMatrix();
    });
    const float step = g->tickxSpace / float(g->tickxSub);
    tkBegin(GL_LINES);
    eachLine(firstLine(g->tickxRef, x0, step), x1, step, axis,
             [](float p, double) { tkVertex2f(p, 0), tkVertex2f(p, -kSubTickLength); });
    tkEnd();
}

} // namespace

int KDrawGraph(GRAPH_STRUCT* g, ELEMENT_ATTR* attr, int selected)
{
    tkAliasBlend(0, 1.0f);
    // A time graph's window is always as long as the samples it holds.
    if (g->type == 0)
        g->xmax = float(g->samples) / g->rate + g->xmin;
    // Fixed label ranges move grid, ticks and labels only; the traces keep xmin..xmax, ymin..ymax.
    const float x0 = g->labelFixx ? g->labelXmin : g->xmin, x1 = g->labelFixx ? g->labelXmax : g->xmax;
    const float y0 = g->labelFixy ? g->labelYmin : g->ymin, y1 = g->labelFixy ? g->labelYmax : g->ymax;
    const float w = g->width, h = g->height;
    const float cornerX[4] = {0, w, w, 0}, cornerY[4] = {0, 0, h, h};

    tkPushMatrix();
    glTranslatef(-w * 0.5f, -h * 0.5f, 0);
    if (g->backgroundColor[3] > 0.1f) {
        kvColor4f(g->backgroundColor[0], g->backgroundColor[1], g->backgroundColor[2], g->backgroundColor[3]);
        drawCorners(GL_QUADS, cornerX, cornerY);
    }
    Span onX, onY;
    spansOnScreen(w, h, onX, onY);
    drawGrid(g, attr, x0, x1, y0, y1, onX, onY);
    tkLineStipple(1, 0xFFFF);
    kvColor4f(attr->strokeColor[0], attr->strokeColor[1], attr->strokeColor[2], attr->strokeColor[3]);
    if (g->ticky || g->tickyr)
        drawTicksY(g, y0, y1, onY);
    if (g->tickx)
        drawTicksX(g, x0, x1, onX);
    if (selected && attr->live != 1) {
        setSelectionPen(1);
    } else {
        tkLineStipple(1, 0xFFFF);
        tkLineWidth(1);
    }
    drawCorners(GL_LINE_LOOP, cornerX, cornerY);
    tkPopMatrix();
    return 0;
}

// ---------------------------------------------------------------- view time

// Both rings of a trace, on every action: a fresh run starts them empty at time t.
static void resetRings(ACTION_STRUCT* action, float t)
{
    action->inTail = action->inHead = action->inCount = 0;
    action->outTail = action->outHead = action->outCount = 0;
    action->inStart = action->inNextTime = action->outStart = action->outNextTime = t;
}

int resetAllGraphs(ELEMENT_STRUCT* list, float t)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP)
            resetAllGraphs(e->child, t);
        if (e->type == KR_GRAPH) {
            GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(e->data);
            if (g->type == 0)
                g->xmin = t;
            g->startTime = g->lastTime = t;
            KGraphSetXLabel(g, g->xmin, g->xmax);
            KGraphSetYLabel(g, g->ymin, g->ymax);
        }
        for (ACTION_STRUCT* a = e->actions; a; a = a->next)
            resetRings(a, t);
    }
    return 0;
}

int graphSetTime(ELEMENT_STRUCT* list, float t)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP)
            graphSetTime(e->child, t);
        else if (e->type == KR_GRAPH && static_cast<GRAPH_STRUCT*>(e->data)->type == 0)
            static_cast<GRAPH_STRUCT*>(e->data)->xmin = t;
    }
    return 0;
}
