// A large panel of plain rectangles: what loading it costs against reading its bytes, and what
// drawing it costs against the same rectangles drawn by hand. Each benchmark names its reference
// in its label; after the run the summary prints the ratios.
#include "Korel2D.h"
#include "OffscreenGl.h"
#include "ViewBuilder.h"
#include "benchCommon.h"

#include <GL/gl.h>
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using korelbench::Lcg;
using korelbench::ViewFile;
using korelgen::RectFields;

constexpr int kWidth = 1024, kHeight = 768;
constexpr int kPanels = 10, kBlocksPerPanel = 10, kRectsPerBlock = 100;
constexpr float kPage[3] = {0.1f, 0.1f, 0.15f};

// File order is drawing order. Integer corners make the library's pixels and the reference's
// agree exactly, so the comparison below can be strict.
std::vector<RectFields> panelRects()
{
    Lcg random;
    std::vector<RectFields> rects(kPanels * kBlocksPerPanel * kRectsPerBlock);
    for (RectFields& r : rects) {
        int w = 10 + random.below(31), h = 10 + random.below(31);
        r.x0 = float(random.below(kWidth - w));
        r.y0 = float(random.below(kHeight - h));
        r.x1 = r.x0 + float(w);
        r.y1 = r.y0 + float(h);
        r.strokeOn = 1;
        r.strokeWidth = 1;
        for (int i = 0; i < 3; ++i) {
            r.fill[i] = random.unit();
            r.stroke[i] = random.unit();
        }
        r.antialias = 0; // measure the library's overhead, not line smoothing
    }
    return rects;
}

// Ten panels of ten blocks of a hundred rectangles each, as a large control panel nests them.
std::vector<uint8_t> panelView(const std::vector<RectFields>& rects)
{
    korelgen::ViewBuilder b;
    b.page(0, 0, kWidth, kHeight, kPage[0], kPage[1], kPage[2]);
    auto next = rects.begin();
    for (int p = 0; p < kPanels; ++p) {
        b.beginGroup(kBlocksPerPanel, "panel");
        for (int k = 0; k < kBlocksPerPanel; ++k) {
            b.beginGroup(kRectsPerBlock, "block");
            for (int i = 0; i < kRectsPerBlock; ++i)
                b.rect(*next++);
            b.endGroup();
        }
        b.endGroup();
    }
    return b.dataSection().bytes();
}

// The rectangles and the file that holds them.
struct Panel {
    std::vector<RectFields> rects = panelRects();
    ViewFile file{panelView(rects)};
};

void BM_DrawFrame(benchmark::State& state, const Panel* panel)
{
    VIEW_STRUCT* view = krViewLoad(panel->file.path.c_str());
    WINDOW_STRUCT* window = krWindowCreate();
    if (!view || krWindowInit(window, kWidth, kHeight) != 0) {
        state.SkipWithError("cannot load the view or set up the window");
    } else {
        for (auto _ : state) {
            krWindowClear(window, view);
            if (krViewDraw(window, view, 0, 0, 1) != 0) {
                state.SkipWithError("krViewDraw failed");
                break;
            }
            glFinish(); // llvmpipe renders on its own threads; count its work too
        }
    }
    krWindowFree(window);
    krViewFree(view);
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(panel->rects.size()));
    state.SetLabel("reference BM_ImmediateReference");
}


void drawByHand(const std::vector<RectFields>& rects)
{
    glClear(GL_COLOR_BUFFER_BIT);
    for (const RectFields& r : rects) {
        glColor4fv(r.fill);
        glBegin(GL_QUADS);
        glVertex2f(r.x0, r.y0);
        glVertex2f(r.x0, r.y1);
        glVertex2f(r.x1, r.y1);
        glVertex2f(r.x1, r.y0);
        glEnd();
        glColor4fv(r.stroke);
        glBegin(GL_LINE_LOOP);
        glVertex2f(r.x0, r.y0);
        glVertex2f(r.x0, r.y1);
        glVertex2f(r.x1, r.y1);
        glVertex2f(r.x1, r.y0);
        glEnd();
    }
}

// Reference for BM_DrawFrame: the same rectangles, colours and projection in immediate mode,
// one glBegin/glEnd per fill and per outline, with none of the library's walk or state handling.
void BM_ImmediateReference(benchmark::State& state, const Panel* panel)
{
    korelbench::setUpLikeTheLibrary(kWidth, kHeight, kPage);
    for (auto _ : state) {
        drawByHand(panel->rects);
        glFinish();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(panel->rects.size()));
}

// A ratio means something only if both sides draw the same picture: the pixels that differ.
long differingPixels(const Panel& panel)
{
    VIEW_STRUCT* view = krViewLoad(panel.file.path.c_str());
    WINDOW_STRUCT* window = krWindowCreate();
    krWindowInit(window, kWidth, kHeight);
    krWindowClear(window, view);
    krViewDraw(window, view, 0, 0, 1);
    std::vector<uint8_t> library = korelbench::readFrame(kWidth, kHeight);
    krWindowFree(window);
    krViewFree(view);

    korelbench::setUpLikeTheLibrary(kWidth, kHeight, kPage);
    drawByHand(panel.rects);
    return korelbench::countDifferingPixels(library, korelbench::readFrame(kWidth, kHeight));
}

} // namespace

int main(int argc, char** argv)
{
    Panel panel;
    korelgen::OffscreenGl gl;
    if (!korelbench::startDrawingProgram(&argc, argv, "korel2d_bench_rects", panel.file, gl, kWidth, kHeight))
        return 1;
    std::printf("%zu rectangles, %zu bytes; %s on %s\n", panel.rects.size(), panel.file.bytes.size(), gl.kind(),
                reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    if (long differing = differingPixels(panel)) {
        std::fprintf(stderr, "korel2d_bench_rects: library and reference differ in %ld pixels\n", differing);
        return 1;
    }

    // Real time throughout: it is what a host waits, and llvmpipe draws on threads of its own
    // while this one waits in glFinish.
    benchmark::RegisterBenchmark("BM_ReadFileReference", korelbench::readFileReference, &panel.file)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark("BM_LoadView", korelbench::loadView, &panel.file, "BM_ReadFileReference")
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark("BM_DrawFrame", BM_DrawFrame, &panel)->Unit(benchmark::kMillisecond)->UseRealTime();
    benchmark::RegisterBenchmark("BM_ImmediateReference", BM_ImmediateReference, &panel)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    auto& s = reporter.seconds;
    reporter.printRatio("BM_DrawFrame", "BM_ImmediateReference");
    if (s.count("BM_LoadView"))
        std::printf("load: %.1f MB/s\n", double(panel.file.bytes.size()) / s["BM_LoadView"] / 1e6);
    return 0;
}
