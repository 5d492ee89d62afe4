// Loading a panel as a real one mixes it: every kind but pictures, nested in groups, each element
// animated by two actions. Held against reading the same bytes; the summary prints the rate.
#include "Korel2D.h"
#include "benchCommon.h"

#include <benchmark/benchmark.h>

#include <cstdio>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    korelbench::ViewFile file(korelbench::mixedView(korelbench::mixedActionPair));
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
