// Loading a panel as a real one mixes it: every kind but pictures, nested in groups, each element
// animated by two actions. Held against reading the same bytes; the summary prints the rate.
#include "Korel2D.h"
#include "ViewBuilder.h"
#include "benchCommon.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace korelgen;
using korelbench::Lcg;
using korelbench::ViewFile;

constexpr int kPanels = 10, kBlocksPerPanel = 10, kElementsPerBlock = 100;
constexpr int kWidth = 1024, kHeight = 768;

// Per block of 100: one text (1 %) and, in every tenth block, one graph (0.1 %). Each of them
// builds a font when loaded, which costs milliseconds and would otherwise measure the font
// layer rather than the reader. Texts share two fonts, graphs their fixed one.
constexpr int kGraphEveryNthBlock = 10;
const char* const kTextFonts[] = {"Helvetica [fixed]", "Arial"};

// Moves the element by a variable and colours its fill from three bands of it.
std::vector<ActionFields> twoActions(int k)
{
    ActionFields move;
    move.id = 2 * k;
    move.type = KR_ACTION_MOVE_X;
    move.var = "position" + std::to_string(k % 50);
    move.a1 = 100, move.b1 = 200;
    ActionFields colour;
    colour.id = 2 * k + 1;
    colour.type = KR_ACTION_FILL_COLOR;
    colour.var = "level" + std::to_string(k % 50);
    colour.blocks[KR_THRESHOLDS_COLOR].min = 0, colour.blocks[KR_THRESHOLDS_COLOR].max = 100;
    for (int band = 0; band < 3; ++band) {
        ThresholdFields t;
        t.lower = float(band * 33), t.upper = float(band * 33 + 33);
        t.value = band;
        t.color[0] = 0.3f * float(band);
        colour.blocks[KR_THRESHOLDS_COLOR].entries.push_back(t);
    }
    return {move, colour};
}

void randomColor(Lcg& random, float rgba[4])
{
    for (int i = 0; i < 3; ++i)
        rgba[i] = random.unit();
    rgba[3] = 1;
}

// One element of a kind chosen by its place in the block; slot 0 holds the rare kinds.
void writeElement(ViewBuilder& b, Lcg& random, int block, int slot, int k)
{
    const float x = float(random.below(kWidth - 100)), y = float(random.below(kHeight - 100));
    b.actions(twoActions(k));
    if (slot == 0 && block % kGraphEveryNthBlock == 0) {
        GraphFields g;
        g.x = x, g.y = y;
        b.graph(g);
    } else if (slot == 0) {
        TextFields t;
        t.x = x, t.y = y;
        t.fontFamily = kTextFonts[block % 2];
        t.fontSize = t.textSize = 12;
        t.text = "Tank " + std::to_string(k);
        b.text(t);
    } else if (slot == 1) {
        b.scissor(x, y, x + 400, y + 300);
    } else {
        switch (slot % 9) {
        case 0: {
            RectFields r;
            r.x0 = x, r.y0 = y, r.x1 = x + 40, r.y1 = y + 20;
            randomColor(random, r.fill);
            b.rect(r);
            break;
        }
        case 1: {
            LineFields l;
            l.x1 = x, l.y1 = y, l.x2 = x + float(random.below(80)), l.y2 = y + float(random.below(80));
            b.line(l);
            break;
        }
        case 2:
        case 3: {
            CircleFields c;
            c.x = x, c.y = y;
            randomColor(random, c.fill);
            if (slot % 9 == 2)
                b.circle(c);
            else
                b.arc(c);
            break;
        }
        case 4:
        case 5: {
            PolyFields p;
            p.points.clear();
            for (int i = 0; i < 6; ++i)
                p.points.push_back({i, x + float(random.below(60)), y + float(random.below(60))});
            if (slot % 9 == 4) {
                b.polyline(p);
            } else {
                p.fillOn = 1;
                b.cpoly(p);
            }
            break;
        }
        case 6: {
            ButtonFields s;
            s.x0 = x, s.y0 = y, s.x1 = x + 60, s.y1 = y + 25;
            b.button(s);
            break;
        }
        case 7: {
            SliderFields s;
            s.x = x, s.y = y;
            b.slider(s);
            break;
        }
        default: {
            RectFields r;
            r.x0 = x, r.y0 = y, r.x1 = x + 10, r.y1 = y + 30;
            r.strokeOn = 1;
            b.rect(r);
            break;
        }
        }
    }
}

// Ten panels of ten blocks of a hundred elements; the groups carry two actions as well.
std::vector<uint8_t> mixedView()
{
    Lcg random;
    ViewBuilder b;
    b.page(0, 0, kWidth, kHeight, 0.1f, 0.1f, 0.15f);
    int k = 0;
    for (int p = 0; p < kPanels; ++p) {
        b.beginGroup(kBlocksPerPanel, "panel");
        for (int block = p * kBlocksPerPanel; block < (p + 1) * kBlocksPerPanel; ++block) {
            b.beginGroup(kElementsPerBlock, "block");
            for (int slot = 0; slot < kElementsPerBlock; ++slot)
                writeElement(b, random, block, slot, k++);
            b.actions(twoActions(k++)).endGroup();
        }
        b.actions(twoActions(k++)).endGroup();
    }
    return b.dataSection().bytes();
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    ViewFile file(mixedView());
    if (file.path.empty()) {
        std::fprintf(stderr, "korel2d_bench_mixed: cannot write the view file\n");
        return 1;
    }
    std::printf("%d mixed elements in %d groups, %zu bytes\n", kPanels * kBlocksPerPanel * kElementsPerBlock,
                kPanels * (kBlocksPerPanel + 1), file.bytes.size());

    benchmark::RegisterBenchmark("BM_ReadMixedFileReference", korelbench::readFileReference, &file)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark("BM_LoadMixedView", korelbench::loadView, &file, "BM_ReadMixedFileReference")
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    if (reporter.seconds.count("BM_LoadMixedView"))
        std::printf("mixed load: %.1f MB/s\n", double(file.bytes.size()) / reporter.seconds["BM_LoadMixedView"] / 1e6);
    return 0;
}
