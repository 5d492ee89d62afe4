// Files of older programs: the mixed panel written at revisions 1.00, 1.07, 2.03 and 3.01, each
// loaded beside the same panel at 3.03, and a symbol library of 1,000 symbols imported beside
// loadFile of its conversion to a view file of this library's revision. The summary prints each
// ratio.
#include "Korel2D.h"
#include "KorelEdit.h"
#include "benchCommon.h"

#include <benchmark/benchmark.h>

#include <cstdarg>
#include <cstdio>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

using korelbench::Lcg;
using korelbench::ViewFile;

// Revisions as major * 100 + minor: one of each reader generation that differs most from the
// present one (generated names and colour groups, the old source section, font codes, reserved
// tails without fields), against the present layout.
constexpr int kPresentRevision = 303;
const int kOlderRevisions[] = {100, 107, 203, 301};

std::string loadName(int revision)
{
    char name[64];
    snprintf(name, sizeof name, "BM_LoadRevision%d_%02d", revision / 100, revision % 100);
    return name;
}

std::string revisionText(int revision)
{
    char text[16];
    snprintf(text, sizeof text, "%d.%02d", revision / 100, revision % 100);
    return text;
}

// The mixed panel as a file of one revision.
struct RevisionView {
    explicit RevisionView(int number)
        : revision(number), file(korelbench::mixedView(korelbench::mixedActionPair, {}, number))
    {
    }
    const int revision;
    ViewFile file;
};

// ---------------------------------------------------------------- the symbol library

constexpr int kSymbols = 1000, kSymbolSize = 100;

// One symbol's data lines, each after its keyword, kind by kind; the polygon's sides follow each
// other, as only consecutive sides make one polygon.
struct ShapeShare {
    const char* keyword;
    int lines;
};
constexpr ShapeShare kSymbolShapes[] = {{"VEKTOR", 4}, {"RECHTECK", 3}, {"GEF. RECHTECK", 2}, {"KREIS", 3},
                                        {"KREIS_BOGEN", 2}, {"POLYGON", 4}, {"TEXT", 2}};
constexpr int kShapesPerSymbol = 20;

constexpr int shapeLines()
{
    int n = 0;
    for (const ShapeShare& share : kSymbolShapes)
        n += share.lines;
    return n;
}
static_assert(shapeLines() == kShapesPerSymbol, "");

const char* const kStyleWords[] = {"DURCHGEZOGEN", "GESTRICHELT", "GEPUNKTET", "STRICHPUNKT"};
const char* const kLabels[] = {"Pumpe", "Ventil", "Motor", "Kessel"};
constexpr int kFontCodes = 3; // 1 to 3, Arial 12, 15 and 18

std::string line(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string line(const char* format, ...)
{
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return std::string(text) + "\n";
}

// The data line of one shape that is not a polygon side.
std::string dataLine(const std::string& keyword, Lcg& random)
{
    const int x = random.below(kSymbolSize), y = random.below(kSymbolSize);
    const int r = random.below(256), g = random.below(256), b = random.below(256);
    const char* style = kStyleWords[random.below(int(std::size(kStyleWords)))];
    if (keyword == "KREIS")
        return line("X1 %d Y1 %d RADIUS %d RGB-Farbe %d %d %d %s", x, y, 1 + random.below(30), r, g, b, style);
    if (keyword == "KREIS_BOGEN")
        return line("X1 %d Y1 %d RADIUS %d Winkelanfang[Grad] %d Winkelende[GRAD] %d RGB-Farbe %d %d %d", x, y,
                    1 + random.below(30), random.below(360), random.below(360), r, g, b);
    if (keyword == "TEXT")
        return line("X1 %d Y1 %d Font %d RGB-Farbe %d %d %d CHARACTER %s", x, y, 1 + random.below(kFontCodes), r, g, b,
                    kLabels[random.below(int(std::size(kLabels)))]);
    return line("X1 %d Y1 %d X2 %d Y2 %d RGB-Farbe %d %d %d %s", x, y, random.below(kSymbolSize),
                random.below(kSymbolSize), r, g, b, style);
}

// Sides from corner to corner, the last one back to the first.
std::string polygonLines(int sides, Lcg& random)
{
    std::vector<int> xs, ys;
    for (int i = 0; i < sides; ++i)
        xs.push_back(random.below(kSymbolSize)), ys.push_back(random.below(kSymbolSize));
    const int r = random.below(256), g = random.below(256), b = random.below(256);
    std::string text;
    for (int i = 0; i < sides; ++i) {
        const int next = (i + 1) % sides;
        text += "POLYGON\n" + line("X1 %d Y1 %d X2 %d Y2 %d RGB-Farbe %d %d %d", xs[i], ys[i], xs[next], ys[next],
                                   r, g, b);
    }
    return text;
}

std::vector<uint8_t> symbolLibrary()
{
    Lcg random;
    std::string text;
    for (int n = 1; n <= kSymbols; ++n) {
        text += line("SYMBOL-NR. %d", n);
        text += line("BEZUGSPUNKT_X %d BEZUGSPUNK_Y %d", kSymbolSize / 2, kSymbolSize / 2);
        for (const ShapeShare& share : kSymbolShapes) {
            if (std::string(share.keyword) == "POLYGON") {
                text += polygonLines(share.lines, random);
                continue;
            }
            for (int i = 0; i < share.lines; ++i)
                text += std::string(share.keyword) + "\n" + dataLine(share.keyword, random);
        }
    }
    return std::vector<uint8_t>(text.begin(), text.end());
}

// ---------------------------------------------------------------- the benchmarks

// Each load into a fresh list, timed without the free that follows it, in elements per second.
void loadList(benchmark::State& state, const std::function<int(ELEMENT_STRUCT**)>& load, int elements,
              const char* reference)
{
    ELEMENT_STRUCT* list = nullptr;
    for (auto _ : state) {
        if (load(&list) != 0) {
            state.SkipWithError("the load failed");
            break;
        }
        state.PauseTiming();
        elementDeleteAll(&list);
        state.ResumeTiming();
    }
    elementDeleteAll(&list);
    state.SetItemsProcessed(int64_t(state.iterations()) * elements);
    if (reference)
        state.SetLabel(std::string("reference ") + reference);
}

// The elements krViewLoad makes of a file, 0 when it fails.
int loadedElements(const ViewFile& file)
{
    VIEW_STRUCT* view = file.path.empty() ? nullptr : krViewLoad(file.path.c_str());
    const int n = view ? korelbench::countElements(view->elements) : 0;
    if (view)
        krViewFree(view);
    return n;
}

} // namespace

int main(int argc, char** argv)
{
    // The loads differ by less than the machine's load drifts while they run one after another
    // (builds share its cores): repetitions are taken in random turns, so that each ratio sees the
    // same drift. A flag given on the command line still decides.
    static char inTurns[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, inTurns);
    int count = int(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;

    // Every file must load whole: a reader that stopped early would only seem fast.
    std::vector<std::unique_ptr<RevisionView>> views;
    views.push_back(std::make_unique<RevisionView>(kPresentRevision));
    for (int revision : kOlderRevisions)
        views.push_back(std::make_unique<RevisionView>(revision));
    for (const auto& view : views) {
        const int loaded = loadedElements(view->file);
        std::printf("revision %s: %zu bytes, %d elements and groups loaded\n", revisionText(view->revision).c_str(),
                    view->file.bytes.size(), loaded);
        if (loaded != korelbench::kMixedElements + korelbench::kMixedGroups) {
            std::fprintf(stderr, "korel2d_bench_older: revision %s does not load whole\n",
                         revisionText(view->revision).c_str());
            return 1;
        }
    }

    // The conversion is what an editor saves after importing the library onto a white page.
    ViewFile symbols(symbolLibrary());
    ELEMENT_STRUCT* imported = nullptr;
    if (symbols.path.empty() || loadSymbolFile(symbols.path.c_str(), &imported) != 0) {
        std::fprintf(stderr, "korel2d_bench_older: cannot import the symbol library\n");
        return 1;
    }
    VIEW_STRUCT page = {};
    page.width = korelbench::kMixedWidth, page.height = korelbench::kMixedHeight;
    page.pageColor[0] = page.pageColor[1] = page.pageColor[2] = 1;
    ViewFile converted(korelbench::bytesWrittenBy([&](const char* path) { saveFile(path, imported, nullptr, &page); }));
    const int symbolElements = korelbench::countElements(imported);
    elementDeleteAll(&imported);
    const int convertedElements = loadedElements(converted);
    std::printf("symbol library: %d symbols of %d shapes, %zu bytes, %d elements and groups; converted %zu bytes, "
                "%d loaded\n",
                kSymbols, kShapesPerSymbol, symbols.bytes.size(), symbolElements, converted.bytes.size(),
                convertedElements);
    if (symbolElements == 0 || convertedElements != symbolElements) {
        std::fprintf(stderr, "korel2d_bench_older: the symbol library and its conversion differ\n");
        return 1;
    }

    const std::string presentName = loadName(kPresentRevision);
    for (const auto& view : views)
        benchmark::RegisterBenchmark(loadName(view->revision).c_str(), korelbench::loadView, &view->file,
                                     view->revision == kPresentRevision ? nullptr : presentName.c_str())
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    benchmark::RegisterBenchmark("BM_LoadConvertedSymbols", loadList,
                                 [&converted](ELEMENT_STRUCT** list) {
                                     DD_DATA_TYPE_STRUCT* dataTypes = nullptr;
                                     VIEW_STRUCT into = {};
                                     return loadFile(converted.path.c_str(), list, &dataTypes, &into);
                                 },
                                 symbolElements, nullptr)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark(
        "BM_ImportSymbolFile", loadList,
        [&symbols](ELEMENT_STRUCT** list) { return loadSymbolFile(symbols.path.c_str(), list); }, symbolElements,
        "BM_LoadConvertedSymbols")
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    const std::string presentLoad = revisionText(kPresentRevision) + " load";
    for (int revision : kOlderRevisions)
        reporter.printRatio(loadName(revision), presentName,
                            (revisionText(revision) + " load/" + presentLoad).c_str());
    reporter.printRatio("BM_ImportSymbolFile", "BM_LoadConvertedSymbols", "symbol import/converted load");
    return 0;
}
