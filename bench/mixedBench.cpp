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

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    ViewFile file(korelbench::mixedView(twoActions));
    if (file.path.empty()) {
        std::fprintf(stderr, "korel2d_bench_mixed: cannot write the view file\n");
        return 1;
    }
    std::printf("%d mixed elements in %d groups, %zu bytes\n", korelbench::kMixedElements, korelbench::kMixedGroups,
                file.bytes.size());

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
