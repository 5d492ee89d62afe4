// A strip chart a million samples long: one time graph of 1000 x 700 pixels with its grid,
// ticks and labels, one trace of a slow sine with a little noise that crosses a colour and a
// width threshold four times each. The ring is filled through the host interface before the
// timing starts; one frame is timed with long traces reduced per pixel column and one with
// every sample sent to GL. The same pair runs again with noise free to cross the thresholds,
// as a measured signal's noise is: then each crossing is hundreds. The summary prints the
// frames and their ratios.
#include "Korel2D.h"
#include "OffscreenGl.h"
#include "ViewBuilder.h"
#include "benchCommon.h"
#include "elements/elementKinds.h"

#include <GL/gl.h>
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

namespace {

using namespace korelgen;
using korelbench::Lcg;
using korelbench::ViewFile;

constexpr int kWidth = 1024, kHeight = 768;
constexpr float kPage[3] = {0.1f, 0.1f, 0.15f};
constexpr int kInternalSource = 5;
constexpr const char* kVariable = "level";
constexpr int kSamples = 1000000;
// A power of two, so that the view clock and the sampling times stay exact in float over the
// whole ring and every data cycle of one period takes exactly one sample.
constexpr float kRate = 1024;
constexpr double kPeriod = 1.0 / kRate;
// Two turns of the sine over the ring, so that it passes each threshold four times.
constexpr double kTurns = 2;
constexpr double kFullTurn = 6.283185307179586;
constexpr float kNoise = 0.02f; // peak to peak, about six pixels
constexpr float kColourLimit = 0.5f, kWidthLimit = -0.5f;

ThresholdFields threshold(float lower, int value, float r, float g, float b)
{
    return {lower, lower + 1, value, {r, g, b}};
}

// Green below 0.5, amber above; three pixels wide below -0.5, one above.
ActionFields trace()
{
    ActionFields a;
    a.type = KR_ACTION_GRAPH;
    a.var = kVariable;
    ThresholdBlockFields& colours = a.blocks[KR_THRESHOLDS_COLOR];
    colours.min = -1.2f, colours.max = 1.2f;
    colours.entries = {threshold(-2, 0, 0.2f, 0.9f, 0.3f), threshold(kColourLimit, 0, 1.0f, 0.7f, 0.1f)};
    ThresholdBlockFields& widths = a.blocks[KR_THRESHOLDS_WIDTH];
    widths.min = -1.2f, widths.max = 1.2f;
    widths.entries = {threshold(-2, 3, 0, 0, 0), threshold(kWidthLimit, 1, 0, 0, 0)};
    return a;
}

std::vector<uint8_t> chartView()
{
    GraphFields g;
    g.x = 12, g.y = 34, g.width = 1000, g.height = 700;
    g.ymin = -1.2f, g.ymax = 1.2f, g.autoscale = 0;
    g.xmin = 0;
    g.rate = kRate;
    g.samples = kSamples;
    ViewBuilder b;
    b.page(0, 0, kWidth, kHeight, kPage[0], kPage[1], kPage[2]);
    b.actions({trace()}).graph(g);
    return b.dataSection({{kInternalSource, {}, 0, {{KR_VAR_FLOAT, kVariable, "0", {}}}}}).bytes();
}

// Two turns of the sine with the noise on top. Where the sine is near a threshold, noise that
// would carry a sample across it goes the other way, unless `chattering`: then it flips the
// colour or width back and forth hundreds of times at each crossing.
float sample(int n, Lcg& random, bool chattering)
{
    const float sine = float(std::sin(kFullTurn * kTurns * n / kSamples));
    const float noise = kNoise * (random.unit() - 0.5f);
    const auto crosses = [&](float limit) { return (sine + noise > limit) != (sine > limit); };
    return chattering || !(crosses(kColourLimit) || crosses(kWidthLimit)) ? sine + noise : sine - noise;
}

// The chart started in mode 1 with its ring full. The draw's own data cycle runs the sources
// only; no sample is taken without krViewPutData, so every frame shows the same million.
struct Chart {
    ViewFile file{chartView()};
    VIEW_STRUCT* view = nullptr;
    WINDOW_STRUCT* window = nullptr;

    bool start(bool chattering)
    {
        view = krViewLoad(file.path.c_str());
        window = krWindowCreate();
        if (!view || krWindowInit(window, kWidth, kHeight) != 0 || krViewStart(view) != 0)
            return false;
        Lcg random;
        for (int n = 0; n < kSamples; ++n) {
            const float v = sample(n, random, chattering);
            if (krVarSet(view, kVariable, &v) != 1 || krViewPutData(view, kPeriod) != 0)
                return false;
        }
        return true;
    }
    void draw()
    {
        krWindowClear(window, view);
        krViewDraw(window, view, 0, 0, 1);
    }
    ~Chart()
    {
        krWindowFree(window);
        krViewFree(view);
    }
};

double processCpuMilliseconds()
{
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

// Besides real time, the processor time of all threads per frame, llvmpipe's included: on a
// machine shared with other work, real time swings with the load while this doesn't.
void drawFrames(benchmark::State& state, Chart* chart, bool reduced)
{
    graphTraceReduction(reduced);
    const double start = processCpuMilliseconds();
    for (auto _ : state) {
        chart->draw();
        glFinish(); // llvmpipe renders on its own threads; count its work too
    }
    state.counters["cpu_ms_all_threads"] =
        benchmark::Counter(processCpuMilliseconds() - start, benchmark::Counter::kAvgIterations);
    graphTraceReduction(1);
    state.SetItemsProcessed(int64_t(state.iterations()) * kSamples);
}

// Each reduced frame is held against the full frame of the same chart, which its label names.
void BM_DrawReducedTrace(benchmark::State& state, Chart* chart, const char* full)
{
    drawFrames(state, chart, true);
    state.SetLabel(std::string("reference ") + full);
}

void BM_DrawFullTrace(benchmark::State& state, Chart* chart)
{
    drawFrames(state, chart, false);
}

// The reduction keeps what each pixel column shows: the pixels the two frames differ in.
long differingPixels(Chart& chart)
{
    graphTraceReduction(1);
    chart.draw();
    const std::vector<uint8_t> reduced = korelbench::readFrame(kWidth, kHeight);
    graphTraceReduction(0);
    chart.draw();
    graphTraceReduction(1);
    return korelbench::countDifferingPixels(reduced, korelbench::readFrame(kWidth, kHeight));
}

// Where samples are left out, wide segments meet at other angles and a pixel at some of their
// edges goes the other way: about a hundred per frame. A trace drawn wrong differs in thousands.
constexpr double kMostDifferingFraction = 1e-3;

struct Pair {
    const char* reduced;
    const char* full;
    bool chattering;
    Chart chart;
};

} // namespace

int main(int argc, char** argv)
{
    Pair pairs[] = {{"BM_DrawReducedTrace", "BM_DrawFullTrace", false, {}},
                    {"BM_DrawReducedChatteringTrace", "BM_DrawFullChatteringTrace", true, {}}};
    korelgen::OffscreenGl gl;
    if (!korelbench::startDrawingProgram(&argc, argv, "korel2d_bench_graph", pairs[0].chart.file, gl, kWidth, kHeight))
        return 1;
    for (Pair& pair : pairs) {
        if (!pair.chart.start(pair.chattering)) {
            std::fprintf(stderr, "korel2d_bench_graph: cannot load, start and fill the chart\n");
            return 1;
        }
        korelbench::timedAsFrames(
            benchmark::RegisterBenchmark(pair.reduced, BM_DrawReducedTrace, &pair.chart, pair.full));
        korelbench::timedAsFrames(benchmark::RegisterBenchmark(pair.full, BM_DrawFullTrace, &pair.chart));
    }
    std::printf("one trace of %d samples; %s on %s\n", kSamples, gl.kind(),
                reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    for (Pair& pair : pairs) {
        const long differing = differingPixels(pair.chart);
        std::printf("%s: reduced and full frames differ in %ld pixels\n", pair.reduced, differing);
        if (double(differing) > kMostDifferingFraction * kWidth * kHeight) {
            std::fprintf(stderr, "korel2d_bench_graph: reduced and full frames draw different pictures\n");
            return 1;
        }
    }

    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    auto& s = reporter.seconds;
    for (const Pair& pair : pairs) {
        if (!s.count(pair.reduced) || !s.count(pair.full))
            continue;
        std::printf("%s: %.1f ms reduced, %.1f ms full; ", pair.reduced, s[pair.reduced] * 1e3, s[pair.full] * 1e3);
        reporter.printRatio(pair.reduced, pair.full);
    }
    return 0;
}
