// A running view: a thousand lines, circles, arcs and filled polygons, each moved or coloured by
// one action on Auto, Internal and Constant variables. Measures one data cycle of the started
// view, and one frame of it against the same primitives drawn by hand at the same values. The
// summary prints the data cycle in milliseconds and the frame's ratio to its reference. The
// same view stopped is drawn three ways through the render plane: directly (the reference),
// from its cached texture, and rendered into the texture anew.
#include "Korel2D.h"
#include "OffscreenGl.h"
#include "ViewBuilder.h"
#include "actions/actions.h"
#include "base/angles.h"
#include "benchCommon.h"

#include <GL/gl.h>
#include <GL/glu.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace korelgen;
using korelbench::Lcg;
using korelbench::ViewFile;

constexpr int kWidth = 1024, kHeight = 768;
constexpr int kGroups = 4, kElementsPerGroup = 250; // a quadrant each; kinds take turns
constexpr int kVariablesPerSource = 20;
constexpr float kPage[3] = {0.1f, 0.1f, 0.15f};
constexpr float kFullTurn = 6.2831855f, kHalfTurn = 3.1415927f;
constexpr int kAutoSource = 1, kConstantSource = 2, kInternalSource = 5;
constexpr int kSinWave = 0, kSawWave = 5; // the Auto source's TYPE items

enum class Kind { Line, Circle, Arc, Poly };

// One element as both sides know it: its record, its action, and its centre on the page.
struct Item {
    Kind kind;
    LineFields line;
    CircleFields circle;
    PolyFields poly;
    ActionFields action;
    float cx, cy;
};

// The three colours a circle shows, by the level of its Internal variable: below 33, below 66, above.
constexpr float kBandLower[3] = {0, 33, 66};
constexpr float kBandColour[3][3] = {{0.2f, 0.8f, 0.3f}, {1.0f, 0.7f, 0.1f}, {0.9f, 0.15f, 0.1f}};

std::string varName(const char* stem, int i)
{
    return stem + std::to_string(i);
}

void randomColour(Lcg& random, float rgba[4])
{
    for (int i = 0; i < 3; ++i)
        rgba[i] = 0.2f + 0.8f * random.unit();
    rgba[3] = 1;
}

ActionFields makeAction(int id, int type, const std::string& var, float a0, float a1, float b0, float b1)
{
    ActionFields a;
    a.id = id;
    a.type = type;
    a.var = var;
    a.a0 = a0, a.a1 = a1, a.b0 = b0, a.b1 = b1;
    return a;
}

// Integer corners throughout and even sizes, so that every box centre is exact in float.
Item makeItem(Lcg& random, int group, int k)
{
    const float qx = float(group % 2 * kWidth / 2), qy = float(group / 2 * kHeight / 2);
    const int qw = kWidth / 2, qh = kHeight / 2;
    Item item{};
    switch (k % 4) {
    case 0: {
        // A needle turning about its left end with a SIN wave, -90..90 degrees.
        item.kind = Kind::Line;
        const int length = 20 + 2 * random.below(21);
        LineFields& l = item.line;
        l.x1 = qx + float(10 + random.below(qw - length - 20));
        l.y1 = l.y2 = qy + float(10 + random.below(qh - 20));
        l.x2 = l.x1 + float(length);
        l.strokeWidth = 2;
        randomColour(random, l.stroke);
        item.cx = l.x1 + float(length / 2), item.cy = l.y1;
        item.action = makeAction(k, KR_ACTION_ROTATE, varName("sin", k % 10), -1, 1, -90, 90);
        item.action.cg = 8;
        break;
    }
    case 1:
    case 2: {
        // A lamp coloured by thresholds of an Internal level, or a gauge arc whose end a SAW sweeps.
        item.kind = k % 4 == 1 ? Kind::Circle : Kind::Arc;
        const int r = 10 + random.below(21);
        CircleFields& c = item.circle;
        c.x = qx + float(r + 2 + random.below(qw - 2 * r - 4));
        c.y = qy + float(r + 2 + random.below(qh - 2 * r - 4));
        c.matrix[0] = c.matrix[3] = float(r) / 100.0f;
        c.strokeWidth = 1;
        c.antialias = 0;
        randomColour(random, c.fill);
        randomColour(random, c.stroke);
        item.cx = c.x, item.cy = c.y;
        if (item.kind == Kind::Circle) {
            item.action = makeAction(k, KR_ACTION_FILL_COLOR, varName("level", k % kVariablesPerSource), 0, 1, 0, 1);
            ThresholdBlockFields& colours = item.action.blocks[KR_THRESHOLDS_COLOR];
            colours.min = 0, colours.max = 100;
            for (int band = 0; band < 3; ++band) {
                ThresholdFields t;
                t.lower = kBandLower[band];
                t.upper = band < 2 ? kBandLower[band + 1] : 100;
                for (int i = 0; i < 3; ++i)
                    t.color[i] = kBandColour[band][i];
                colours.entries.push_back(t);
            }
        } else {
            c.start = kHalfTurn;
            item.action = makeAction(k, KR_ACTION_ARC_END, varName("saw", k % 10), 0, 1, 190, 360);
        }
        break;
    }
    default: {
        // A tank outline: every other one moved up or down by a constant, the rest filled to a
        // constant level. Concave, so the fill needs the tessellator.
        item.kind = Kind::Poly;
        const int w = 16 + 4 * random.below(7), h = 16 + 2 * random.below(13);
        const float x = qx + float(10 + random.below(qw - w - 20)), y = qy + float(30 + random.below(qh - h - 60));
        PolyFields& p = item.poly;
        p.closed = 1, p.fillOn = 1, p.strokeOn = 1, p.strokeWidth = 1, p.antialias = 0;
        randomColour(random, p.fill);
        randomColour(random, p.stroke);
        const float fw = float(w), fh = float(h);
        if (k / 4 % 2 == 0)
            p.points = {{0, x, y}, {1, x + fw, y}, {2, x + fw, y + fh}, {3, x + fw / 2, y + fh / 2}, {4, x, y + fh}};
        else
            p.points = {{0, x + fw / 2, y + fh},     {1, x + fw, y + fh / 2},     {2, x + fw * 3 / 4, y + fh / 2},
                        {3, x + fw * 3 / 4, y},      {4, x + fw / 4, y},          {5, x + fw / 4, y + fh / 2},
                        {6, x, y + fh / 2}};
        item.cx = x + fw / 2, item.cy = y + fh / 2;
        if (k / 4 % 2 == 0)
            item.action = makeAction(k, KR_ACTION_MOVE_Y, varName("shift", k % 10), 0, 1, 0, 1);
        else
            item.action = makeAction(k, KR_ACTION_FILL_UP, varName("fill", k % 10), 0, 1, 0, 1);
        break;
    }
    }
    return item;
}

std::vector<Item> makeItems()
{
    Lcg random;
    std::vector<Item> items;
    for (int g = 0; g < kGroups; ++g)
        for (int i = 0; i < kElementsPerGroup; ++i)
            items.push_back(makeItem(random, g, int(items.size())));
    return items;
}

std::string number(double v)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", v);
    return text;
}

// Twenty variables per source, shared by the actions: ten SIN and ten SAW waves at various
// frequencies, twenty levels, ten shifts and ten fill levels.
std::vector<SourceFields> sources()
{
    SourceFields waves;
    waves.id = kAutoSource;
    waves.varParamCount = 4; // TYPE, FREQUENCY, MIN, MAX
    for (int i = 0; i < 10; ++i) {
        const int frequency = i % 6 + 2; // 0.05 to 1 Hz
        waves.variables.push_back(
            {KR_VAR_FLOAT, varName("sin", i), "", {{kSinWave, ""}, {frequency, ""}, {0, "-1"}, {0, "1"}}});
        waves.variables.push_back(
            {KR_VAR_FLOAT, varName("saw", i), "", {{kSawWave, ""}, {frequency, ""}, {0, "0"}, {0, "1"}}});
    }
    SourceFields levels;
    levels.id = kInternalSource;
    for (int i = 0; i < kVariablesPerSource; ++i)
        levels.variables.push_back({KR_VAR_FLOAT, varName("level", i), number(2 + 5 * i), {}});
    SourceFields constants;
    constants.id = kConstantSource;
    constants.varParamCount = 1; // VALUE
    for (int i = 0; i < 10; ++i)
        constants.variables.push_back({KR_VAR_FLOAT, varName("shift", i), "", {{0, number(-20 + 4 * i)}}});
    for (int i = 0; i < 10; ++i)
        constants.variables.push_back({KR_VAR_FLOAT, varName("fill", i), "", {{0, number(0.1 + 0.09 * i)}}});
    return {waves, levels, constants};
}

std::vector<uint8_t> liveView(const std::vector<Item>& items)
{
    ViewBuilder b;
    b.page(0, 0, kWidth, kHeight, kPage[0], kPage[1], kPage[2]);
    auto next = items.begin();
    for (int g = 0; g < kGroups; ++g) {
        b.beginGroup(kElementsPerGroup, "quadrant");
        for (int i = 0; i < kElementsPerGroup; ++i, ++next) {
            b.actions({next->action});
            switch (next->kind) {
            case Kind::Line: b.line(next->line); break;
            case Kind::Circle: b.circle(next->circle); break;
            case Kind::Arc: b.arc(next->circle); break;
            case Kind::Poly: b.cpoly(next->poly); break;
            }
        }
        b.endGroup();
    }
    return b.dataSection(sources()).bytes();
}

struct Panel {
    std::vector<Item> items = makeItems();
    ViewFile file{liveView(items)};
};

// ---------------------------------------------------------------- the running view

// A view started in mode 1 and run for a few frames, then halted: every later frame draws the
// values of the last one before the halt, which `values` keeps, item by item, for the
// reference. The data cycle still runs in each frame, as it does in a halted view.
struct FrozenView {
    VIEW_STRUCT* view = nullptr;
    WINDOW_STRUCT* window = nullptr;
    std::vector<double> values; // the raw value of each item's variable

    bool start(const Panel& panel)
    {
        view = krViewLoad(panel.file.path.c_str());
        window = krWindowCreate();
        if (!view || krWindowInit(window, kWidth, kHeight) != 0 || krViewStart(view) != 0)
            return false;
        for (int frame = 0; frame < 3; ++frame) {
            krWindowClear(window, view);
            if (krViewDraw(window, view, 0, 0, 1) != 0)
                return false;
        }
        // No data cycle has run since the last frame, so the buffers still hold what it showed.
        for (const Item& item : panel.items) {
            const float* value = static_cast<const float*>(krVarGetAddr(view, item.action.var.c_str()));
            if (!value)
                return false;
            values.push_back(*value);
        }
        return krViewSetHaltMode(view, 1) == 0;
    }
    ~FrozenView()
    {
        krWindowFree(window);
        krViewFree(view);
    }
};

// In mode 1 the draw runs the data cycle itself; mode 2 would add a data thread that takes the
// view's lock every 10 ms and competes with llvmpipe's render threads for the cores, which
// measures the scheduler more than the frame. So mode 1: one thread, like the reference, and
// the frame a mode-1 host pays. BM_DataCycle says how much of it the cycle is.
void BM_DrawRunningFrame(benchmark::State& state, FrozenView* frozen)
{
    for (auto _ : state) {
        krWindowClear(frozen->window, frozen->view);
        if (krViewDraw(frozen->window, frozen->view, 0, 0, 1) != 0) {
            state.SkipWithError("krViewDraw failed");
            break;
        }
        glFinish(); // llvmpipe renders on its own threads; count its work too
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kGroups * kElementsPerGroup);
    state.SetLabel("reference BM_LiveImmediateReference");
}

// One data cycle of a started view that isn't drawn: every source's Run and every variable's
// Get. Graphs would be fed from here as well, but no graph takes values yet.
void BM_DataCycle(benchmark::State& state, const Panel* panel)
{
    VIEW_STRUCT* view = krViewLoad(panel->file.path.c_str());
    if (!view || krViewStart(view) != 0) {
        state.SkipWithError("cannot load or start the view");
    } else {
        for (auto _ : state)
            fillDP(view->dataTypes);
        krViewStop(view);
    }
    krViewFree(view);
}

// ---------------------------------------------------------------- the render plane

// The same view stopped, as a host shows a panel whose values it doesn't animate, placed at
// the window's origin at zoom 1; the host's projection is the library's window set-up.
struct StoppedView {
    VIEW_STRUCT* view = nullptr;
    WINDOW_STRUCT* window = nullptr;

    bool load(const Panel& panel)
    {
        view = krViewLoad(panel.file.path.c_str());
        window = krWindowCreate();
        return view && krWindowInit(window, kWidth, kHeight) == 0 && krViewDraw(window, view, 0, 0, 1) == 0 &&
               krViewDrawPlane(view, KR_PLANE_RENDER) == 0;
    }
    void frame(int mode)
    {
        krWindowClear(window, view);
        krdSetViewport(kWidth, kHeight);
        krViewDrawPlane(view, mode);
    }
    ~StoppedView()
    {
        krWindowFree(window);
        krViewFree(view);
    }
};

// A frame of the stopped view in a plane mode: KR_PLANE_DIRECT walks the whole tree,
// KR_PLANE_CACHED shows the texture of the last rendering, KR_PLANE_RENDER renders it anew.
void BM_PlaneFrame(benchmark::State& state, StoppedView* stopped, int mode)
{
    for (auto _ : state) {
        stopped->frame(mode);
        glFinish();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kGroups * kElementsPerGroup);
    if (mode != KR_PLANE_DIRECT)
        state.SetLabel("reference BM_PlaneDirectFrame");
}

// ---------------------------------------------------------------- by hand

// What an action's value becomes: the line through (a0, b0) and (a1, b1), taken in float.
double mapped(const ActionFields& a, double raw)
{
    const float slope = (a.b0 - a.b1) / (a.a0 - a.a1), offset = a.b0 - slope * a.a0;
    return offset + slope * raw;
}

// About one unit of rim per step, no coarser than an eighth of a turn, no finer than a hundredth.
float rimStep(float radius)
{
    if (radius < 8)
        return 0.7853982f;
    if (radius > 100)
        return 0.06283186f;
    return float(6.283185308 / double(radius));
}

// Everything the hand-drawn frame needs, worked out once from the items and the frozen values.
struct HandItem {
    Kind kind;
    float cx, cy;
    float colour[4], stroke[4];
    float width;
    float halfLength, angle;           // line
    float scale, start, end, step;     // circle, arc
    GLuint fillList;                   // polygon
    float shift;                       // polygon
    std::vector<float> outline;        // polygon, x y pairs about the centre
};

// The part of a ring at or below y = limit (Sutherland-Hodgman against one line).
std::vector<GLdouble> clipBelow(const std::vector<GLdouble>& ring, double limit)
{
    std::vector<GLdouble> kept;
    const size_t n = ring.size() / 3;
    for (size_t i = 0; i < n; ++i) {
        const GLdouble* p = &ring[(i + n - 1) % n * 3];
        const GLdouble* c = &ring[i * 3];
        const bool pIn = p[1] <= limit, cIn = c[1] <= limit;
        if (pIn != cIn) {
            const double t = (limit - p[1]) / (c[1] - p[1]);
            kept.insert(kept.end(), {p[0] + t * (c[0] - p[0]), limit, 0.0});
        }
        if (cIn)
            kept.insert(kept.end(), {c[0], c[1], 0.0});
    }
    return kept;
}

GLuint tessellatedList(std::vector<GLdouble> ring)
{
    GLUtesselator* tess = gluNewTess();
    using Callback = void (*)();
    gluTessCallback(tess, GLU_TESS_BEGIN, reinterpret_cast<Callback>(&glBegin));
    gluTessCallback(tess, GLU_TESS_VERTEX, reinterpret_cast<Callback>(&glVertex3dv));
    gluTessCallback(tess, GLU_TESS_END, reinterpret_cast<Callback>(&glEnd));
    GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    gluTessBeginPolygon(tess, nullptr);
    gluTessBeginContour(tess);
    for (size_t i = 0; i < ring.size(); i += 3)
        gluTessVertex(tess, &ring[i], &ring[i]);
    gluTessEndContour(tess);
    gluTessEndPolygon(tess);
    glEndList();
    gluDeleteTess(tess);
    return list;
}

std::vector<HandItem> handItems(const Panel& panel, const std::vector<double>& values)
{
    std::vector<HandItem> hand;
    for (size_t i = 0; i < panel.items.size(); ++i) {
        const Item& item = panel.items[i];
        const double v = mapped(item.action, values[i]);
        HandItem h{};
        h.kind = item.kind;
        h.cx = item.cx, h.cy = item.cy;
        switch (item.kind) {
        case Kind::Line:
            std::copy(item.line.stroke, item.line.stroke + 4, h.stroke);
            h.width = item.line.strokeWidth;
            h.halfLength = (item.line.x2 - item.line.x1) / 2;
            h.angle = float(-v); // angles grow clockwise
            break;
        case Kind::Circle:
        case Kind::Arc: {
            const CircleFields& c = item.circle;
            std::copy(c.fill, c.fill + 4, h.colour);
            std::copy(c.stroke, c.stroke + 4, h.stroke);
            h.width = c.strokeWidth;
            h.scale = c.matrix[0];
            h.start = c.start;
            h.end = c.end;
            h.step = rimStep(100.0f * h.scale);
            if (item.kind == Kind::Arc) {
                h.end = float(v * kDegreesToRadians);
            } else {
                int band = v > kBandLower[2] ? 2 : v > kBandLower[1] ? 1 : 0;
                std::copy(kBandColour[band], kBandColour[band] + 3, h.colour);
            }
            break;
        }
        case Kind::Poly: {
            const PolyFields& p = item.poly;
            std::copy(p.fill, p.fill + 4, h.colour);
            std::copy(p.stroke, p.stroke + 4, h.stroke);
            h.width = p.strokeWidth;
            std::vector<GLdouble> ring;
            double low = 1e9, high = -1e9;
            for (const PointFields& point : p.points) {
                const float x = point.x - item.cx, y = point.y - item.cy;
                h.outline.insert(h.outline.end(), {x, y});
                ring.insert(ring.end(), {double(x), double(y), 0.0});
                low = std::fmin(low, y), high = std::fmax(high, y);
            }
            if (item.action.type == KR_ACTION_MOVE_Y) {
                h.shift = float(v);
            } else {
                const float level = float(std::fmin(std::fmax(v, 0.0), 1.0));
                ring = clipBelow(ring, low + (high - low) * level);
            }
            h.fillList = tessellatedList(ring);
            break;
        }
        }
        hand.push_back(std::move(h));
    }
    return hand;
}


// The rim from start to end, `step` apart, landing exactly on end.
template <class Emit> void walkRim(const HandItem& h, Emit emit)
{
    if (!(h.end >= h.start))
        return;
    for (float a = h.start;;) {
        emit(a);
        const float next = a + h.step;
        if (next > h.end) {
            emit(h.end);
            return;
        }
        a = next;
    }
}

void rimVertices(const HandItem& h)
{
    walkRim(h, [&h](float a) { glVertex2f(h.scale * (100.0f * std::cos(-a)), h.scale * (100.0f * std::sin(-a))); });
}

// Immediate mode as a GL programmer writes it for live values: per element a pushed matrix at
// its centre, its action's transform, one glBegin/glEnd per primitive; the rims are walked
// every frame, as they would be for arcs whose ends move, and the polygon fills replayed from
// lists tessellated once.
void drawByHand(const std::vector<HandItem>& hand)
{
    glClear(GL_COLOR_BUFFER_BIT);
    for (const HandItem& h : hand) {
        glPushMatrix();
        glTranslatef(h.cx, h.cy, 0);
        glLineWidth(h.width);
        switch (h.kind) {
        case Kind::Line:
            glTranslatef(-h.halfLength, 0, 0);
            glRotatef(h.angle, 0, 0, 1);
            glTranslatef(h.halfLength, 0, 0);
            glColor4fv(h.stroke);
            glBegin(GL_LINES);
            glVertex2f(-h.halfLength, 0);
            glVertex2f(h.halfLength, 0);
            glEnd();
            break;
        case Kind::Circle:
        case Kind::Arc:
            glColor4fv(h.colour);
            glBegin(GL_TRIANGLE_FAN);
            glVertex2f(0, 0);
            rimVertices(h);
            glEnd();
            glColor4fv(h.stroke);
            glBegin(GL_LINE_STRIP);
            rimVertices(h);
            glEnd();
            break;
        case Kind::Poly:
            glTranslatef(0, h.shift, 0);
            glColor4fv(h.colour);
            glCallList(h.fillList);
            glColor4fv(h.stroke);
            glBegin(GL_LINE_LOOP);
            for (size_t i = 0; i < h.outline.size(); i += 2)
                glVertex2f(h.outline[i], h.outline[i + 1]);
            glEnd();
            break;
        }
        glPopMatrix();
    }
}

// Reference for BM_DrawRunningFrame: the same primitives, transforms, colours and vertex counts
// at the same held values, with none of the library's walk, actions or data cycle.
void BM_LiveImmediateReference(benchmark::State& state, const std::vector<HandItem>* hand)
{
    korelbench::setUpLikeTheLibrary(kWidth, kHeight, kPage);
    for (auto _ : state) {
        drawByHand(*hand);
        glFinish();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(hand->size()));
}

// ---------------------------------------------------------------- the comparison

double pairedRatio(FrozenView& frozen, const std::vector<HandItem>& hand, int pairs)
{
    korelbench::setUpLikeTheLibrary(kWidth, kHeight, kPage);
    return korelbench::medianPairedRatio(
        pairs,
        [&] {
            krWindowClear(frozen.window, frozen.view);
            krViewDraw(frozen.window, frozen.view, 0, 0, 1);
        },
        [] { korelbench::setUpLikeTheLibrary(kWidth, kHeight, kPage); }, [&] { drawByHand(hand); });
}

// A ratio means something only if both sides draw the same picture: the pixels that differ.
long differingPixels(FrozenView& frozen, const std::vector<HandItem>& hand)
{
    krWindowClear(frozen.window, frozen.view);
    krViewDraw(frozen.window, frozen.view, 0, 0, 1);
    std::vector<uint8_t> library = korelbench::readFrame(kWidth, kHeight);
    korelbench::setUpLikeTheLibrary(kWidth, kHeight, kPage);
    drawByHand(hand);
    return korelbench::countDifferingPixels(library, korelbench::readFrame(kWidth, kHeight));
}

// Groups keep their children about the group's centre, so the library places an element at
// the group's centre plus its own offset, which may round differently from the reference's
// page centre in the last bit; an edge that sits on a pixel's centre can go either way.
constexpr double kMostDifferingFraction = 1e-4;

} // namespace

int main(int argc, char** argv)
{
    Panel panel;
    korelgen::OffscreenGl gl;
    if (!korelbench::startDrawingProgram(&argc, argv, "korel2d_bench_live", panel.file, gl, kWidth, kHeight))
        return 1;
    FrozenView frozen;
    if (!frozen.start(panel)) {
        std::fprintf(stderr, "korel2d_bench_live: cannot load, start and draw the view\n");
        return 1;
    }
    const std::vector<HandItem> hand = handItems(panel, frozen.values);
    std::printf("%zu animated elements, %zu bytes; %s on %s\n", panel.items.size(), panel.file.bytes.size(), gl.kind(),
                reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    const long differing = differingPixels(frozen, hand);
    const double fraction = double(differing) / (double(kWidth) * kHeight);
    std::printf("library and reference differ in %ld pixels (%.4f %%)\n", differing, 100 * fraction);
    if (fraction > kMostDifferingFraction) {
        std::fprintf(stderr, "korel2d_bench_live: library and reference draw different pictures\n");
        return 1;
    }

    // Real time throughout: it is what a host waits, and llvmpipe draws on threads of its own
    // while this one waits in glFinish.
    benchmark::RegisterBenchmark("BM_DataCycle", BM_DataCycle, &panel)->Unit(benchmark::kMicrosecond)->UseRealTime();
    korelbench::timedAsFrames(benchmark::RegisterBenchmark("BM_DrawRunningFrame", BM_DrawRunningFrame, &frozen));
    korelbench::timedAsFrames(
        benchmark::RegisterBenchmark("BM_LiveImmediateReference", BM_LiveImmediateReference, &hand));
    StoppedView stopped;
    if (!stopped.load(panel)) {
        std::fprintf(stderr, "korel2d_bench_live: cannot load and render the stopped view\n");
        return 1;
    }
    for (auto [name, mode] : {std::pair{"BM_PlaneDirectFrame", int(KR_PLANE_DIRECT)},
                              {"BM_PlaneCachedFrame", int(KR_PLANE_CACHED)},
                              {"BM_PlaneRenderFrame", int(KR_PLANE_RENDER)}})
        korelbench::timedAsFrames(benchmark::RegisterBenchmark(name, BM_PlaneFrame, &stopped, mode));
    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    auto& s = reporter.seconds;
    if (s.count("BM_DataCycle"))
        std::printf("data cycle: %.3f ms\n", s["BM_DataCycle"] * 1e3);
    reporter.printRatio("BM_DrawRunningFrame", "BM_LiveImmediateReference");
    std::printf("draw/reference ratio, median of 200 frames drawn in turns: %.2f\n", pairedRatio(frozen, hand, 200));
    reporter.printRatio("BM_PlaneCachedFrame", "BM_PlaneDirectFrame", "cached plane/direct");
    reporter.printRatio("BM_PlaneRenderFrame", "BM_PlaneDirectFrame", "rendered plane/direct");
    return 0;
}
