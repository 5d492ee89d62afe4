// A Calculator of a thousand variables over a few Auto waves and Internal values, some of its
// expressions reading earlier Calculator variables. Measures one data cycle of the started view;
// before that, one chained variable must read the value its expressions give. The summary prints
// the data cycle in milliseconds.
#include "Korel2D.h"
#include "ViewBuilder.h"
#include "actions/actions.h"
#include "benchCommon.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace korelgen;
using korelbench::ViewFile;

constexpr int kAutoSource = 1, kInternalSource = 5, kCalculatorSource = 6;
constexpr int kSinWave = 0, kSawWave = 5; // the Auto source's TYPE items
constexpr int kInputs = 4;                // Auto and Internal variables each
constexpr int kCalculated = 1000;

// Internal i0..i3 hold 1..4, so c0 = i1 * 10 + i2 is 23 and c1 = c0 * 2 - i0 is 45 in any
// cycle after the first, whatever order the Calculator takes.
constexpr const char* kChecked = "c1";
constexpr double kCheckedValue = 45;
constexpr int kCyclesBeforeCheck = 2;

std::string name(const char* stem, int i)
{
    return stem + std::to_string(i);
}

// The rest take turns: products and sums, a conditional over functions, and three that read
// Calculator variables one to three places back.
std::string expression(int k)
{
    const std::string a = name("a", k % kInputs), b = name("a", (k + 1) % kInputs), i = name("i", k % kInputs);
    switch (k) {
    case 0: return "i1 * 10 + i2";
    case 1: return "c0 * 2 - i0";
    }
    switch (k % 5) {
    case 0: return a + " * 2 + " + name("i", (k + 1) % kInputs);
    case 1: return "(" + i + " > 2) ? sin(" + a + ") : cos(" + b + ")";
    case 2: return name("c", k - 1) + " + " + i + " / 2";
    case 3: return "max(" + a + ", " + i + ") - min(" + name("c", k - 3) + ", 10)";
    default: return "sqrt(fabs(" + name("c", k - 2) + ")) + pow(" + i + ", 2)";
    }
}

std::vector<SourceFields> sources()
{
    SourceFields waves;
    waves.id = kAutoSource;
    waves.varParamCount = 4; // TYPE, FREQUENCY, MIN, MAX
    for (int k = 0; k < kInputs; ++k)
        waves.variables.push_back(
            {KR_VAR_FLOAT, name("a", k), "", {{k % 2 ? kSawWave : kSinWave, ""}, {k + 2, ""}, {0, "-1"}, {0, "1"}}});
    SourceFields internal;
    internal.id = kInternalSource;
    for (int k = 0; k < kInputs; ++k)
        internal.variables.push_back({KR_VAR_FLOAT, name("i", k), std::to_string(k + 1), {}});
    SourceFields calculator;
    calculator.id = kCalculatorSource;
    calculator.varParamCount = 2; // the expression, OUTPUT
    for (int k = 0; k < kCalculated; ++k)
        calculator.variables.push_back({KR_VAR_DOUBLE, name("c", k), "", {{0, expression(k)}, {0, ""}}});
    return {waves, internal, calculator};
}

std::vector<uint8_t> calculatorView()
{
    ViewBuilder b;
    b.page(0, 0, 320, 200, 0.1f, 0.1f, 0.15f);
    return b.dataSection(sources()).bytes();
}

// Without a working Calculator the cycle has nothing to compute and its time says nothing.
bool calculatorWorks(VIEW_STRUCT* view)
{
    for (int cycle = 0; cycle < kCyclesBeforeCheck; ++cycle)
        fillDP(view->dataTypes);
    char text[256] = "";
    if (krVarGetStr(view, kChecked, text) < 0 || std::fabs(std::strtod(text, nullptr) - kCheckedValue) > 1e-9) {
        std::fprintf(stderr, "korel2d_bench_calculator: %s reads \"%s\", not %g: the Calculator source computes nothing\n",
                     kChecked, text, kCheckedValue);
        return false;
    }
    return true;
}

void BM_CalculatorDataCycle(benchmark::State& state, VIEW_STRUCT* view)
{
    for (auto _ : state)
        fillDP(view->dataTypes);
    state.SetItemsProcessed(int64_t(state.iterations()) * kCalculated);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    const ViewFile file(calculatorView());
    VIEW_STRUCT* view = file.path.empty() ? nullptr : krViewLoad(file.path.c_str());
    if (!view || krViewStart(view) != 0) {
        std::fprintf(stderr, "korel2d_bench_calculator: cannot write, load or start the view\n");
        krViewFree(view);
        return 1;
    }
    if (!calculatorWorks(view)) {
        krViewStop(view);
        krViewFree(view);
        return 1;
    }
    std::printf("%d Calculator variables over %d Auto and %d Internal ones\n", kCalculated, kInputs, kInputs);

    benchmark::RegisterBenchmark("BM_CalculatorDataCycle", BM_CalculatorDataCycle, view)
        ->Unit(benchmark::kMicrosecond)->UseRealTime();
    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    krViewStop(view);
    krViewFree(view);

    auto& s = reporter.seconds;
    if (s.count("BM_CalculatorDataCycle"))
        std::printf("data cycle: %.3f ms\n", s["BM_CalculatorDataCycle"] * 1e3);
    return 0;
}
