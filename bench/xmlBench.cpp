// Saving and loading a view as an XML file: the mixed panel with a stroke and a fill pattern of
// its own on every element, a hundred pictures and twenty sources of a hundred variables. The
// load is held against TinyXML parsing the same file bare, and beside it stands krViewLoad of
// the same view as a binary file; the save against TinyXML writing the parsed document bare.
// The summary prints the rates and ratios.
#include "KorelDataSource.h"
#include "KorelEdit.h"
#include "ViewBuilder.h"
#include "benchCommon.h"

#include <benchmark/benchmark.h>
#include <tinyxml.h>

#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace korelgen;
using korelbench::countElements;
using korelbench::Lcg;
using korelbench::ViewFile;

constexpr int kPictures = 100, kPictureSize = 64;
constexpr int kSources = 20, kVariablesPerSource = 100;
// The style number that makes the record's own stipple and pattern bytes count.
constexpr int kCustomStyle = 100;

// Auto sources with their four parameters per variable, between Internal ones with defaults.
std::vector<SourceFields> sources()
{
    std::vector<SourceFields> list;
    for (int s = 0; s < kSources; ++s) {
        SourceFields source;
        const bool waves = s % 2 == 0;
        source.id = waves ? KRD_TYPE_AUTO : KRD_TYPE_INTERNAL;
        source.varParamCount = waves ? 4 : 0; // TYPE, FREQUENCY, MIN, MAX
        for (int v = 0; v < kVariablesPerSource; ++v) {
            const std::string name = "source" + std::to_string(s) + ".value" + std::to_string(v);
            if (waves)
                source.variables.push_back({KR_VAR_FLOAT, name, "", {{v % 3, ""}, {v + 1, ""}, {0, "-1"}, {0, "1"}}});
            else
                source.variables.push_back({KR_VAR_DOUBLE, name, std::to_string(v), {}});
        }
        list.push_back(source);
    }
    return list;
}

// Distinct pictures that still compress as drawings do: gradients shifted per picture.
std::vector<uint8_t> picturesView()
{
    ViewBuilder b;
    b.page(0, 0, korelbench::kMixedWidth, korelbench::kMixedHeight, 0.1f, 0.1f, 0.15f);
    for (int n = 0; n < kPictures; ++n) {
        ImageFields image;
        image.x0 = float(n % 10 * 100), image.y0 = float(n / 10 * 70);
        image.x1 = image.x0 + kPictureSize, image.y1 = image.y0 + kPictureSize;
        image.width = image.height = kPictureSize;
        for (int y = 0; y < kPictureSize; ++y)
            for (int x = 0; x < kPictureSize; ++x)
                image.pixels.insert(image.pixels.end(),
                                    {uint8_t(4 * x + n), uint8_t(4 * y), uint8_t((x ^ y) + 7 * n), 255});
        b.image(image);
    }
    return b.bytes();
}

// Stipple and pattern bytes that no other element of the view has.
template <class Record> void customStroke(Record* r, int k)
{
    r->strokeStyle = kCustomStyle;
    r->stippleFactor = 1 + k % 8;
    r->stipplePattern = uint16_t(k * 7919 + 1);
}

template <class Record> void customFill(Record* r, int k)
{
    Lcg random(uint32_t(k) + 1);
    r->fillStyle = kCustomStyle;
    for (uint8_t& byte : r->fillPattern)
        byte = uint8_t(random.below(256));
}

void customiseStyles(ELEMENT_STRUCT* list, int* k)
{
    for (ELEMENT_STRUCT* element = list; element; element = element->next, ++*k) {
        void* record = element->data;
        switch (element->type) {
        case KR_RECT:
            customStroke(static_cast<RECT_STRUCT*>(record), *k);
            customFill(static_cast<RECT_STRUCT*>(record), *k);
            break;
        case KR_POLYLINE:
        case KR_CPOLY:
            customStroke(static_cast<POLY_STRUCT*>(record), *k);
            customFill(static_cast<POLY_STRUCT*>(record), *k);
            break;
        case KR_CIRCLE:
        case KR_ARC:
            customStroke(static_cast<CIRCLE_STRUCT*>(record), *k);
            customFill(static_cast<CIRCLE_STRUCT*>(record), *k);
            break;
        case KR_TEXT:
            customStroke(static_cast<TEXT_STRUCT*>(record), *k);
            customFill(static_cast<TEXT_STRUCT*>(record), *k);
            break;
        case KR_LINE: customStroke(static_cast<LINE_STRUCT*>(record), *k); break;
        case KR_IMAGE: customFill(static_cast<IMAGE_STRUCT*>(record), *k); break;
        case KR_GRAPH: {
            GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(record);
            g->gridStyle = kCustomStyle;
            g->gridStippleFactor = 1 + *k % 8;
            g->gridStipplePattern = uint16_t(*k * 7919 + 1);
            break;
        }
        case KR_GROUP: customiseStyles(element->child, k); break;
        default: break;
        }
    }
}

void freeLists(ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes)
{
    elementDeleteAll(elements);
    while (*dataTypes)
        delDataType(dataTypes, *dataTypes, 1);
}

// The view in memory, as an editor holds it after opening the binary file.
struct View {
    ELEMENT_STRUCT* elements = nullptr;
    DD_DATA_TYPE_STRUCT* dataTypes = nullptr;
    VIEW_STRUCT page = {};
    ~View() { freeLists(&elements, &dataTypes); }
    bool add(const ViewFile& file)
    {
        return !file.path.empty() && loadFile(file.path.c_str(), &elements, &dataTypes, &page) == 0;
    }
};

// The bytes a writer leaves of the view.
std::vector<uint8_t> writtenBytes(int (*save)(const char*, ELEMENT_STRUCT*, DD_DATA_TYPE_STRUCT*, const VIEW_STRUCT*),
                                  const View& view)
{
    return korelbench::bytesWrittenBy(
        [&](const char* path) { save(path, view.elements, view.dataTypes, &view.page); });
}

void saveXml(benchmark::State& state, const View* view, const ViewFile* file)
{
    // Into the path of the file the loads read: the same bytes again.
    for (auto _ : state)
        saveFileXml(file->path.c_str(), view->elements, view->dataTypes, &view->page);
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(file->bytes.size()));
    state.SetLabel("reference BM_TinyXmlSaveFile");
}

// The printer alone: the floor under any save of the same document.
void tinyXmlSaveFile(benchmark::State& state, const ViewFile* file)
{
    TiXmlDocument document;
    if (!document.LoadFile(file->path.c_str())) {
        state.SkipWithError("TinyXML cannot parse the file");
        return;
    }
    const std::string copy = file->path + ".copy";
    for (auto _ : state)
        if (!document.SaveFile(copy.c_str())) {
            state.SkipWithError("TinyXML cannot write the copy");
            break;
        }
    unlink(copy.c_str());
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(file->bytes.size()));
}

void loadXml(benchmark::State& state, const ViewFile* file)
{
    ELEMENT_STRUCT* elements = nullptr;
    DD_DATA_TYPE_STRUCT* dataTypes = nullptr;
    VIEW_STRUCT page = {};
    for (auto _ : state) {
        if (loadFileXml(file->path.c_str(), &elements, &dataTypes, &page) != 0) {
            state.SkipWithError("loadFileXml failed");
            break;
        }
        // As for the binary load, giving the lists back is the editor's later business.
        state.PauseTiming();
        freeLists(&elements, &dataTypes);
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(file->bytes.size()));
    state.counters["file_bytes"] = double(file->bytes.size());
    state.SetLabel("reference BM_TinyXmlLoadFile");
}

// The parser alone: the floor under any load of the XML file.
void tinyXmlLoadFile(benchmark::State& state, const ViewFile* file)
{
    for (auto _ : state) {
        TiXmlDocument document;
        if (!document.LoadFile(file->path.c_str())) {
            state.SkipWithError("TinyXML cannot parse the file");
            break;
        }
        benchmark::DoNotOptimize(document.RootElement());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(file->bytes.size()));
}

int countOf(const DD_DATA_TYPE_STRUCT* source, int (*count)(const DD_DATA_TYPE_STRUCT*))
{
    int n = 0;
    for (; source; source = source->next)
        n += count(source);
    return n;
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    View view;
    if (!view.add(ViewFile(korelbench::mixedView(korelbench::mixedActionPair, sources()))) ||
        !view.add(ViewFile(picturesView()))) {
        std::fprintf(stderr, "korel2d_bench_xml: cannot make the view\n");
        return 1;
    }
    int k = 0;
    customiseStyles(view.elements, &k);
    ViewFile binary(writtenBytes(saveFile, view));
    ViewFile xml(writtenBytes(saveFileXml, view));
    if (binary.path.empty() || xml.path.empty() || binary.bytes.empty() || xml.bytes.empty()) {
        std::fprintf(stderr, "korel2d_bench_xml: cannot write the view files\n");
        return 1;
    }

    // What a load of the XML file gives back, so that a run shows what its rate covers.
    View back;
    loadFileXml(xml.path.c_str(), &back.elements, &back.dataTypes, &back.page);
    std::printf("%d elements, %d pictures, %d sources; binary file %zu bytes, XML file %zu bytes\n", k, kPictures,
                kSources, binary.bytes.size(), xml.bytes.size());
    std::printf("read back from XML: %d elements, %d sources of %d variables\n", countElements(back.elements),
                countOf(back.dataTypes, [](const DD_DATA_TYPE_STRUCT*) { return 1; }),
                countOf(back.dataTypes, [](const DD_DATA_TYPE_STRUCT* s) {
                    int n = 0;
                    for (const VARIABLE_STRUCT* v = s->variables; v; v = v->next)
                        ++n;
                    return n;
                }));

    benchmark::RegisterBenchmark("BM_TinyXmlSaveFile", tinyXmlSaveFile, &xml)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark("BM_SaveXmlView", saveXml, &view, &xml)->Unit(benchmark::kMillisecond)->UseRealTime();
    benchmark::RegisterBenchmark("BM_TinyXmlLoadFile", tinyXmlLoadFile, &xml)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark("BM_LoadXmlView", loadXml, &xml)->Unit(benchmark::kMillisecond)->UseRealTime();
    benchmark::RegisterBenchmark("BM_LoadBinaryView", korelbench::loadView, &binary, "BM_LoadXmlView")
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    for (const char* name : {"BM_SaveXmlView", "BM_LoadXmlView"})
        if (reporter.seconds.count(name))
            std::printf("%s: %.1f MB/s of XML\n", name, double(xml.bytes.size()) / reporter.seconds[name] / 1e6);
    reporter.printRatio("BM_SaveXmlView", "BM_TinyXmlSaveFile", "XML save/TinyXML SaveFile");
    reporter.printRatio("BM_LoadXmlView", "BM_TinyXmlLoadFile", "XML load/TinyXML LoadFile");
    reporter.printRatio("BM_LoadBinaryView", "BM_LoadXmlView", "binary load/XML load");
    return 0;
}
