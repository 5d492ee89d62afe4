// A press on a running panel of 10,000 mixed elements in nested groups, nine in ten of them with
// a pointer action: the library walks the tree for the topmost element that takes it. Held
// against a plain array of the same boxes tested in the same order; a press must stay under 1 ms.
#include "Korel2D.h"
#include "ViewBuilder.h"
#include "benchCommon.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace korelgen;

constexpr int kPoints = 4096;

// Every element but each tenth one takes the left button; all move by a variable at rest.
std::vector<ActionFields> pickActions(int k)
{
    ActionFields move;
    move.id = 2 * k;
    move.type = KR_ACTION_MOVE_X;
    move.var = "position";
    if (k % 10 == 0)
        return {move};
    ActionFields press;
    press.id = 2 * k + 1;
    press.type = KR_ACTION_INPUT;
    press.var = "pressed";
    press.mouseMode = KR_MOUSE_MODE_INC;
    press.mouseMax = 100;
    return {move, press};
}

struct Point {
    float x, y;
};

std::vector<Point> randomPoints()
{
    korelbench::Lcg random(7);
    std::vector<Point> points(kPoints);
    for (Point& p : points)
        p = {random.unit() * korelbench::kMixedWidth, random.unit() * korelbench::kMixedHeight};
    return points;
}

void pressLibrary(benchmark::State& state, VIEW_STRUCT* view)
{
    const std::vector<Point> points = randomPoints();
    size_t i = 0, hits = 0;
    for (auto _ : state) {
        const Point& p = points[i++ % points.size()];
        kriViewPickElementRun(view, KR_EVENT_PRESS, KR_MOUSE_LEFT, p.x, p.y, 1);
        hits += view->pickedElement != nullptr;
        // As after a release elsewhere: the next press picks anew.
        view->pickEvent = KR_EVENT_RELEASE;
    }
    state.counters["hit_share"] = double(hits) / double(state.iterations());
    state.SetLabel("reference BM_PressPlainBoxesReference");
}

// The reference: the same boxes, groups after their children, in one array, each with whether
// its element takes the pointer; the last box that holds the point wins.
struct Box {
    float x0, y0, x1, y1;
    bool takes;
};

void collectBoxes(const ELEMENT_STRUCT* list, std::vector<Box>* boxes)
{
    for (const ELEMENT_STRUCT* e = list; e; e = e->next) {
        collectBoxes(e->child, boxes);
        bool takes = false;
        for (const ACTION_STRUCT* a = e->actions; a; a = a->next)
            takes = takes || a->type == KR_ACTION_INPUT;
        boxes->push_back({e->bounds[0], e->bounds[1], e->bounds[2], e->bounds[3], takes});
    }
}

void pressPlainBoxes(benchmark::State& state, const std::vector<Box>* boxes)
{
    const std::vector<Point> points = randomPoints();
    size_t i = 0;
    for (auto _ : state) {
        const Point& p = points[i++ % points.size()];
        const Box* found = nullptr;
        for (const Box& b : *boxes)
            if (b.x0 <= p.x && p.x <= b.x1 && b.y0 <= p.y && p.y <= b.y1 && b.takes)
                found = &b;
        benchmark::DoNotOptimize(found);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<SourceFields> sources = {
        {KRD_TYPE_INTERNAL, {}, 0, {{KR_VAR_FLOAT, "position", "", {}}, {KR_VAR_FLOAT, "pressed", "", {}}}}};
    korelbench::ViewFile file(korelbench::mixedView(pickActions, sources));
    korelgen::OffscreenGl gl;
    if (!korelbench::startDrawingProgram(&argc, argv, "korel2d_bench_pick", file, gl, korelbench::kMixedWidth,
                                         korelbench::kMixedHeight))
        return 1;
    VIEW_STRUCT* view = krViewLoad(file.path.c_str());
    WINDOW_STRUCT* window = krWindowCreate();
    if (!view || !window || krViewStart(view) != 0) {
        std::fprintf(stderr, "korel2d_bench_pick: the view did not load or start\n");
        return 1;
    }
    // One frame places the elements where the pointer finds them.
    krWindowInit(window, korelbench::kMixedWidth, korelbench::kMixedHeight);
    krViewDraw(window, view, 0, 0, 1);
    std::vector<Box> boxes;
    collectBoxes(view->elements, &boxes);
    std::printf("%zu elements and groups, %d random press points\n", boxes.size(), kPoints);

    benchmark::RegisterBenchmark("BM_PressPlainBoxesReference", pressPlainBoxes, &boxes)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark("BM_PressPicksElement", pressLibrary, view)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    reporter.printRatio("BM_PressPicksElement", "BM_PressPlainBoxesReference", "press/reference");
    if (reporter.seconds.count("BM_PressPicksElement"))
        std::printf("press: %.1f us, bound 1000 us\n", reporter.seconds["BM_PressPicksElement"] * 1e6);
    krViewStop(view);
    krViewFree(view);
    krWindowFree(window);
    return 0;
}
