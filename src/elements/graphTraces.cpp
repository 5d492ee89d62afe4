// Graph traces on screen: the range follows the shown samples, each trace is one line strip whose
// colour and width change where the value crosses a threshold, and an xy trace marks its newest
// point.
#include "KorelEdit.h"
#include "base/truncate.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <cmath>

namespace {

// Positions this far out are no place in the frame: such a vertex is left out.
constexpr float kFar = 1e10f;
constexpr float kMarkerHalf = 5;

bool inReach(float a, float b)
{
    return std::fabs(a) < kFar && std::fabs(b) < kFar;
}

// A trace with a variable that is shown, and whose rings binding made.
bool counts(const ACTION_STRUCT* a)
{
    return a->type == KR_ACTION_GRAPH && a->value && !a->disabled && a->outSize > 0;
}

// Moves one axis a third of the way toward the span of the shown samples of every counted trace,
// widened to `minSpread` / 1.2 and by `margin` of it on each side. The slots are read raw, in no
// order: only their extremes matter; the first trace's slot 0 counts even before its first
// sample, as the zero the rings start with. A flat span jumps to one unit either side at once.
// A NaN or infinite sample would stay in the smoothed range for good: those don't count.
void autoscaleAxis(ELEMENT_STRUCT* element, bool alongX, float minSpread, double margin, float* smoothMin,
                   float* smoothMax, float* rangeMin, float* rangeMax)
{
    float lo = 0, hi = 0;
    bool first = true, firstTrace = true;
    for (const ACTION_STRUCT* a = element->actions; a; a = a->next) {
        if (!counts(a))
            continue;
        const float* slots = alongX ? a->outX : a->outY;
        const int n = firstTrace && a->outCount < 1 ? 1 : a->outCount;
        firstTrace = false;
        for (int i = 0; i < n; ++i) {
            if (!std::isfinite(slots[i]))
                continue;
            lo = first || slots[i] < lo ? slots[i] : lo;
            hi = first || slots[i] > hi ? slots[i] : hi;
            first = false;
        }
    }
    const double m = minSpread / 1.2;
    if (m > std::fabs(hi - lo)) {
        const double e = (m - (double(hi) - lo)) * 0.5;
        lo = float(lo - e);
        hi = float(hi + e);
    }
    if (lo == hi) {
        *rangeMin = lo - 1;
        *rangeMax = hi + 1;
        return;
    }
    const float d = float((double(hi) - lo) * margin);
    *smoothMin = ((lo - d) * 0.1f + *smoothMin * 0.2f) / 0.3f;
    *smoothMax = ((hi + d) * 0.1f + *smoothMax * 0.2f) / 0.3f;
    *rangeMin = *smoothMin;
    *rangeMax = *smoothMax;
}

void autoscale(ELEMENT_STRUCT* element, GRAPH_STRUCT* g)
{
    const bool scaleX = g->type == 1 && g->autoscalex;
    if (g->autoscale)
        autoscaleAxis(element, false, g->minspready, 0.1, &g->smoothYmin, &g->smoothYmax, &g->ymin, &g->ymax);
    if (scaleX)
        autoscaleAxis(element, true, g->minspreadx, 0.001, &g->smoothXmin, &g->smoothXmax, &g->xmin, &g->xmax);
    if ((g->autoscale || scaleX) && !g->labelFixx)
        KGraphSetXLabel(g, g->xmin, g->xmax);
    if ((g->autoscale || scaleX) && !g->labelFixy)
        KGraphSetYLabel(g, g->ymin, g->ymax);
}

// Where a value lands in the frame, whose lower left corner is 0, 0. A time trace has no x
// samples: its n-th sample lies n periods right of the left edge.
struct Placement {
    float sx, ox, sy, oy, period;
};

// The samples of a trace, oldest first: the n-th is at (first + n) % size.
struct Samples {
    const float* y;
    const float* x; // null on a time graph
    int first, count, size;
};

// The entry of a threshold list that a value selects: the last one it exceeds, or the first.
const TH_STRUCT* entryFor(const TH_STRUCT* list, float v)
{
    const TH_STRUCT* found = list;
    for (const TH_STRUCT* t = list; t; t = t->next)
        if (v > t->lower)
            found = t;
    return found;
}

// Draws a trace point by point: an open line strip whose colour and width follow the thresholds.
// Where a sample selects another entry, the strip gets a vertex where the line crosses the
// entry's limit, so the change sits on the threshold and not on a sample.
class TracePen {
public:
    TracePen(const ACTION_STRUCT* a, float sy, float oy)
        : colours_(a->colorThresholds), widths_(a->widthThresholds), sy_(sy), oy_(oy)
    {
        setColour(colours_);
        tkLineWidth(widthOf(widths_));
        tkBegin(GL_LINE_STRIP);
    }
    ~TracePen() { tkEnd(); }

    // The sample of value v at (x, y); the one before had value p at (px, py).
    void sample(int n, float x, float y, float v, float p, float px, float py)
    {
        const TH_STRUCT* colour = entryFor(colours_, v);
        if (n == 0) {
            setColour(colour);
        } else if (colour != colour_) {
            float ix, yT;
            const bool crossed = crossing(colour, v, p, px, py, x, y, &ix, &yT);
            if (crossed)
                tkVertex2f(ix, yT);
            setColour(colour);
            if (inReach(x, y))
                tkVertex2f(x, y);
        }
        colour_ = colour;

        const TH_STRUCT* width = entryFor(widths_, v);
        if (n == 0) {
            restart(width);
        } else if (width != width_) {
            float ix, yT;
            const bool crossed = crossing(width, v, p, px, py, x, y, &ix, &yT);
            if (crossed)
                tkVertex2f(ix, yT);
            restart(width);
            if (crossed)
                tkVertex2f(ix, yT);
            if (!inReach(x, y))
                return;
            tkVertex2f(x, y);
        }
        pixel(x, y);
    }

private:
    // A width takes a new strip: GL can't change it inside one.
    void restart(const TH_STRUCT* width)
    {
        tkEnd();
        tkLineWidth(widthOf(width));
        tkBegin(GL_LINE_STRIP);
        width_ = width;
    }

    // Samples that truncate to the same unit as the last one add nothing to see: one vertex for them.
    void pixel(float x, float y)
    {
        if (!inReach(x, y))
            return;
        const int ix = truncToInt(x), iy = truncToInt(y);
        if (ix == lastX_ && iy == lastY_)
            return;
        tkVertex2f(x, y);
        lastX_ = ix, lastY_ = iy;
    }

    // Where the line from the previous point reaches the entry's limit: its lower limit on the
    // way up, its upper one on the way down. False when that lies out of reach.
    bool crossing(const TH_STRUCT* entry, float v, float p, float px, float py, float x, float y, float* ix,
                  float* yT) const
    {
        const float t = v > p ? entry->lower : entry->upper;
        *yT = sy_ * t + oy_;
        getIpol(ix, px, py, x, y, *yT);
        return inReach(*ix, t);
    }

    // An empty colour list keeps the colour the trace was started with.
    static void setColour(const TH_STRUCT* entry)
    {
        if (entry)
            kvColor4f(entry->color[0], entry->color[1], entry->color[2], 1.0f);
    }

    static int widthOf(const TH_STRUCT* entry) { return entry ? entry->value : 1; }

    const TH_STRUCT *colours_, *widths_;
    const TH_STRUCT *colour_ = nullptr, *width_ = nullptr;
    float sy_, oy_;
    int lastX_ = 0, lastY_ = 0;
};

// Every vertex of one trace. The one place that decides which samples reach GL.
void emitTrace(const ACTION_STRUCT* a, const Samples& s, const Placement& at)
{
    TracePen pen(a, at.sy, at.oy);
    float p = 0, px = 0, py = 0;
    for (int n = 0, i = s.first; n < s.count; ++n, i = (i + 1) % s.size) {
        const float v = s.y[i];
        const float x = s.x ? at.sx * s.x[i] + at.ox : float(n) * at.period * at.sx;
        const float y = at.sy * v + at.oy;
        pen.sample(n, x, y, v, p, px, py);
        p = v, px = x, py = y;
    }
}

Placement placement(const GRAPH_STRUCT* g)
{
    const float sx = g->width / std::fabs(g->xmax - g->xmin), sy = g->height / std::fabs(g->ymax - g->ymin);
    return {sx, -sx * g->xmin, sy, -sy * g->ymin, 1 / g->rate};
}

// The trace's coordinates: the frame's lower left corner at the origin, dashes off.
void enterFrame(const GRAPH_STRUCT* g)
{
    tkPushMatrix();
    glTranslatef(-g->width * 0.5f, -g->height * 0.5f, 0);
    tkLineStipple(1, 0xFFFF);
}

float clampTo(float v, float hi)
{
    return !(v > 0) ? 0 : v > hi ? hi : v;
}

// A cross on the newest sample, kept inside the frame so that a point off the range still
// shows where it went; it is drawn over the frame's edge, unclipped.
void drawMarker(const GRAPH_STRUCT* g, const ACTION_STRUCT* a, const Placement& at)
{
    const int newest = a->outHead > 0 ? a->outHead - 1 : a->outSize - 1;
    const float x = clampTo(at.sx * a->outX[newest] + at.ox, g->width);
    const float y = clampTo(at.sy * a->outY[newest] + at.oy, g->height);
    glDisable(GL_SCISSOR_TEST);
    tkLineWidth(2);
    tkAliasBlend(1, 1.0f);
    tkPushMatrix();
    glTranslatef(-g->width * 0.5f + x, -g->height * 0.5f + y, 0);
    tkBegin(GL_LINES);
    tkVertex2f(-kMarkerHalf, -kMarkerHalf), tkVertex2f(kMarkerHalf, kMarkerHalf);
    tkVertex2f(-kMarkerHalf, kMarkerHalf), tkVertex2f(kMarkerHalf, -kMarkerHalf);
    tkEnd();
    tkPopMatrix();
    glEnable(GL_SCISSOR_TEST);
}

} // namespace

int getIpol(float* out, float x1, float y1, float x2, float y2, float y)
{
    *out = (x2 - x1) / (y2 - y1) * (y - y1) + x1;
    return 0;
}

// The samples from the oldest up to the newest: a full ring's slot at its head is stale.
int drawGraphValue(GRAPH_STRUCT* g, ACTION_STRUCT* a)
{
    g->xmax = float(g->samples) / g->rate + g->xmin;
    if (a->outSize <= 0)
        return 0;
    enterFrame(g);
    const int count = (a->outHead - a->outTail + a->outSize) % a->outSize;
    emitTrace(a, {a->outY, nullptr, a->outTail, count, a->outSize}, placement(g));
    tkPopMatrix();
    return 0;
}

// All but the newest sample until the ring is full; the marker shows the newest.
int drawGraphValueX(GRAPH_STRUCT* g, ACTION_STRUCT* a)
{
    if (a->outSize <= 0)
        return 0;
    const Placement at = placement(g);
    enterFrame(g);
    emitTrace(a, {a->outY, a->outX, a->outTail, a->outCount > 1 ? a->outCount - 1 : 0, a->outSize}, at);
    tkPopMatrix();
    drawMarker(g, a, at);
    return 0;
}

int drawAllGraphValues(ELEMENT_STRUCT* element, GRAPH_STRUCT* g)
{
    autoscale(element, g);
    const float w = g->width * 0.5f, h = g->height * 0.5f;
    const float spanX[3] = {-w, w, -w}, spanY[3] = {-h, -h, h};
    scissorToSpan(spanX, spanY);
    const float* outline = element->attr.strokeColor;
    for (ACTION_STRUCT* a = element->actions; a; a = a->next) {
        if (!counts(a))
            continue;
        kvColor4f(outline[0], outline[1], outline[2], outline[3]);
        if (g->type == 0)
            drawGraphValue(g, a);
        else
            drawGraphValueX(g, a);
    }
    // Off after the traces, whatever an enclosing group had set.
    glDisable(GL_SCISSOR_TEST);
    return 0;
}
