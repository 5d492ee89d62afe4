// Graph traces on screen: the range follows the shown samples, each trace is one line strip whose
// colour and width change where the value crosses a threshold, and an xy trace marks its newest
// point.
#include "KorelEdit.h"
#include "base/truncate.h"
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <atomic>
#include <cmath>
#include <utility>

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

std::atomic<bool> reduceLongTraces{true};

// Feeds the samples of a trace to the pen, each with the one fed before it.
class TraceFeed {
public:
    TraceFeed(const ACTION_STRUCT* a, const Samples& s, const Placement& at) : pen_(a, at.sy, at.oy), s_(s), at_(at) {}

    // The n-th sample, oldest first.
    void feed(int n)
    {
        const int i = index(n);
        const float v = s_.y[i];
        const float x = s_.x ? at_.sx * s_.x[i] + at_.ox : timeX(n);
        const float y = at_.sy * v + at_.oy;
        pen_.sample(fed_++, x, y, v, p_, px_, py_);
        p_ = v, px_ = x, py_ = y;
    }

    int index(int n) const { return (s_.first + n) % s_.size; }
    float timeX(int n) const { return float(n) * at_.period * at_.sx; }

private:
    TracePen pen_;
    const Samples& s_;
    const Placement& at_;
    int fed_ = 0;
    float p_ = 0, px_ = 0, py_ = 0;
};

// Where the frame's pixel columns lie: local x lands in column floor(left + x * perUnit).
struct Columns {
    double left, perUnit, count;
};

// The window's pixel columns along the frame's lower edge, in the trace's coordinates. False
// when the frame has no finite width on screen.
bool frameColumns(const GRAPH_STRUCT* g, Columns* c)
{
    const float x[2] = {0, g->width}, y[2] = {0, 0};
    double wx[2], wy[2];
    projectToWindow(x, y, 2, wx, wy);
    c->count = std::hypot(wx[1] - wx[0], wy[1] - wy[0]);
    c->left = wx[0];
    c->perUnit = c->count / g->width;
    return std::isfinite(c->count) && std::isfinite(c->left) && std::isfinite(c->perUnit);
}

// The samples of one pixel column: what a strip through all of them lights there, the
// first, lowest, highest and last one also light. Unless the colour or width changes in it.
struct Column {
    long long k;
    int first, last, low, high;
    float lowY, highY;
    const TH_STRUCT *colour, *width;
    bool mixed;
};

// The time trace with every sample of a column that adds nothing to the column's pixels left out.
void feedReduced(TraceFeed& feed, const ACTION_STRUCT* a, const Samples& s, const Placement& at, const Columns& c)
{
    // Beyond this a column number means nothing and such samples go through as they are.
    constexpr double kColumnReach = 1e15;
    Column col{};
    bool open = false;
    auto flush = [&] {
        if (!open)
            return;
        open = false;
        if (col.mixed) {
            for (int n = col.first; n <= col.last; ++n)
                feed.feed(n);
            return;
        }
        int kept[4] = {col.first, col.low, col.high, col.last};
        if (kept[1] > kept[2])
            std::swap(kept[1], kept[2]);
        int previous = -1;
        for (int n : kept)
            if (n > previous)
                feed.feed(previous = n);
    };
    for (int n = 0; n < s.count; ++n) {
        const float v = s.y[feed.index(n)];
        const double column = std::floor(c.left + double(feed.timeX(n)) * c.perUnit);
        if (!(std::fabs(column) < kColumnReach)) {
            flush();
            feed.feed(n);
            continue;
        }
        const long long k = (long long)column;
        const TH_STRUCT* colour = entryFor(a->colorThresholds, v);
        const TH_STRUCT* width = entryFor(a->widthThresholds, v);
        if (!open || k != col.k) {
            flush();
            col = {k, n, n, -1, -1, 0, 0, colour, width, false};
            open = true;
        }
        col.last = n;
        col.mixed = col.mixed || colour != col.colour || width != col.width;
        const float y = at.sy * v + at.oy;
        if (!(std::fabs(y) < kFar))
            continue;
        if (col.low < 0 || y < col.lowY)
            col.low = n, col.lowY = y;
        if (col.high < 0 || y > col.highY)
            col.high = n, col.highY = y;
    }
    flush();
}

// Every vertex of one trace. The one place that decides which samples reach GL.
void emitTrace(const ACTION_STRUCT* a, const Samples& s, const Placement& at, const GRAPH_STRUCT* g)
{
    Columns columns; // measured before the pen opens its strip: GL answers no query inside one
    const bool reduce = !s.x && reduceLongTraces && frameColumns(g, &columns) && s.count > 2 * columns.count;
    TraceFeed feed(a, s, at);
    if (reduce) {
        feedReduced(feed, a, s, at, columns);
        return;
    }
    for (int n = 0; n < s.count; ++n)
        feed.feed(n);
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

void graphTraceReduction(int on)
{
    reduceLongTraces = on != 0;
}

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
    emitTrace(a, {a->outY, nullptr, a->outTail, count, a->outSize}, placement(g), g);
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
    emitTrace(a, {a->outY, a->outX, a->outTail, a->outCount > 1 ? a->outCount - 1 : 0, a->outSize}, at, g);
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
