#include "sampleSweep.h"

#include "Korel2D.h"
#include "fuzzView.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace k2dfuzz {
namespace {

using Bytes = std::vector<uint8_t>;

// One frame before start and one running: enough to lay out, format and draw each element once.
constexpr int kFramesRunning = 1;

// Byte offsets in a text record's body, which follows the kind code, the name and the id.
constexpr size_t kAlignAt = 24;
constexpr size_t kFamilyAt = 44;
constexpr size_t kFamilySize = 64;
constexpr size_t kFontStyleAt = 108;
constexpr size_t kFontSizeAt = 116;
constexpr size_t kTextSizeAt = 120;
constexpr size_t kLengthAt = 148;
constexpr size_t kTextAt = 152;

// Byte offsets in a graph record's body, and its size.
constexpr size_t kGraphTypeAt = 0;
constexpr size_t kGraphXAt = 4;
constexpr size_t kGraphYAt = 8;
constexpr size_t kGraphWidthAt = 12;
constexpr size_t kGraphHeightAt = 16;
constexpr size_t kGraphYminAt = 20;
constexpr size_t kGraphYmaxAt = 24;
constexpr size_t kGraphXminAt = 28;
constexpr size_t kGraphXmaxAt = 32;
constexpr size_t kGraphRateAt = 36;
constexpr size_t kGraphAutoscaleAt = 40;
constexpr size_t kGraphAutoscaleXAt = 48;
constexpr size_t kGraphSamplesAt = 56;
constexpr size_t kGridAutoAt = 108; // x, then y
constexpr size_t kGridSpaceAt = 116;
constexpr size_t kTickAutoAt = 176;
constexpr size_t kTickSpaceAt = 184;
constexpr size_t kLabelFixXAt = 288;
constexpr size_t kLabelXminAt = 296;
constexpr size_t kLabelXmaxAt = 300;
constexpr size_t kGraphBodySize = 328;

// Garbled graphs, and one cut in every `longCutStride`, run this many frames, each after a data
// cycle: enough for traces to fill and for a slow frame to show. A case may take this much
// processor time, sanitizers included: a grid or labels drawn for each of a dense spacing's
// steps take seconds.
constexpr int kLongFrames = 100;
constexpr double kCaseSeconds = 0.6;

// With K2DFUZZ_SWEEP_CASES set, each case is named before it runs: the last name printed is
// the case that died, to be rebuilt by hand.
bool namingCases = false;

template <typename... Args>
void describe(const char* format, Args... args)
{
    if (namingCases)
        std::fprintf(stderr, format, args...);
}

int32_t integerAt(const Bytes& bytes, size_t at)
{
    return int32_t(uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 | uint32_t(bytes[at + 2]) << 8 |
                   uint32_t(bytes[at + 3]));
}

void setInteger(Bytes& bytes, size_t at, int32_t value)
{
    for (int i = 0; i < 4; ++i)
        bytes[at + size_t(i)] = uint8_t(uint32_t(value) >> (24 - 8 * i));
}

void setReal(Bytes& bytes, size_t at, float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    setInteger(bytes, at, int32_t(bits));
}

// A counted string as a file stores it: its length with the terminator, then the bytes.
Bytes counted(const char* text)
{
    const size_t length = strlen(text) + 1;
    Bytes bytes(4 + length);
    setInteger(bytes, 0, int32_t(length));
    std::copy(text, text + length, bytes.begin() + 4);
    return bytes;
}

// Where the fields of each record of element type `type` begin: the elements the reader found,
// sought again in the bytes by the kind code, name and id that open their records.
void findBodies(const Bytes& bytes, const ELEMENT_STRUCT* list, uint32_t type, size_t bodySize,
                std::set<size_t>& bodies)
{
    for (const ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP)
            findBodies(bytes, e->child, type, bodySize, bodies);
        if (e->type != type)
            continue;
        Bytes opening = counted(e->name), id = counted(e->id);
        opening.insert(opening.end(), id.begin(), id.end());
        const auto find = [&](Bytes::const_iterator from) {
            return std::search(from, bytes.end(), opening.begin(), opening.end());
        };
        for (auto at = find(bytes.begin() + 4); at != bytes.end(); at = find(at + 1)) {
            const size_t start = size_t(at - bytes.begin());
            const int32_t kind = integerAt(bytes, start - 4);
            const bool sameKind = kind == int32_t(type) || (type == KR_TEXT && kind == KR_TEXT_OLD);
            if (sameKind && start + opening.size() + bodySize <= bytes.size())
                bodies.insert(start + opening.size());
        }
    }
}

struct IntegerGarble {
    size_t at;
    int32_t value;
    const char* what;
};

const IntegerGarble kIntegerGarbles[] = {
    {kTextSizeAt, 0, "text size 0"},
    {kTextSizeAt, -30, "text size -30"},
    {kTextSizeAt, INT32_MAX, "text size 2^31-1"},
    {kTextSizeAt, INT32_MIN, "text size -2^31"},
    {kFontSizeAt, 0, "font size 0"},
    {kFontSizeAt, -30, "font size -30"},
    {kFontSizeAt, INT32_MAX, "font size 2^31-1"},
    {kAlignAt, 99, "align 99"},
    {kAlignAt, -1, "align -1"},
    {kFontStyleAt, 99, "font style 99"},
    {kLengthAt, INT32_MAX, "text length 2^31-1"},
    {kLengthAt, -2, "text length -2"},
};

// A graph field and the value written there, an integer or a real.
struct GraphField {
    size_t at;
    bool integer;
    int32_t whole;
    float real;
};

constexpr GraphField integerField(size_t at, int32_t value)
{
    return {at, true, value, 0};
}

constexpr GraphField realField(size_t at, float value)
{
    return {at, false, 0, value};
}

// Ranges set by hand: y, x of an xy graph, and the x labels of a time graph.
std::vector<GraphField> yRange(float lo, float hi)
{
    return {integerField(kGraphAutoscaleAt, 0), realField(kGraphYminAt, lo), realField(kGraphYmaxAt, hi)};
}

std::vector<GraphField> xyRange(float lo, float hi)
{
    return {integerField(kGraphTypeAt, 1), integerField(kGraphAutoscaleXAt, 0), realField(kGraphXminAt, lo),
            realField(kGraphXmaxAt, hi)};
}

std::vector<GraphField> xLabels(float lo, float hi)
{
    return {integerField(kLabelFixXAt, 1), realField(kLabelXminAt, lo), realField(kLabelXmaxAt, hi)};
}

// Spacings of grid and ticks on both axes, set by hand.
std::vector<GraphField> spacings(float space)
{
    std::vector<GraphField> fields;
    for (size_t axis = 0; axis < 2; ++axis)
        for (size_t at : {kGridAutoAt, kTickAutoAt})
            fields.push_back(integerField(at + 4 * axis, 0));
    for (size_t axis = 0; axis < 2; ++axis)
        for (size_t at : {kGridSpaceAt, kTickSpaceAt})
            fields.push_back(realField(at + 4 * axis, space));
    return fields;
}

// An xy graph of 200 x 200 units at the page's origin, where the sweep's window is, showing 0
// to 200 on both axes, so that a spacing's lines per pixel are known.
std::vector<GraphField> squareSpacings(float space)
{
    std::vector<GraphField> fields = spacings(space);
    for (GraphField f : {integerField(kGraphTypeAt, 1), integerField(kGraphAutoscaleAt, 0),
                         integerField(kGraphAutoscaleXAt, 0), realField(kGraphXAt, 0), realField(kGraphYAt, 0),
                         realField(kGraphWidthAt, 200), realField(kGraphHeightAt, 200), realField(kGraphXminAt, 0),
                         realField(kGraphXmaxAt, 200), realField(kGraphYminAt, 0), realField(kGraphYmaxAt, 200)})
        fields.push_back(f);
    return fields;
}

struct GraphGarble {
    const char* what;
    std::vector<GraphField> fields;
};

const GraphGarble kGraphGarbles[] = {
    {"rate 0", {realField(kGraphRateAt, 0)}},
    {"rate -10", {realField(kGraphRateAt, -10)}},
    {"rate NaN", {realField(kGraphRateAt, NAN)}},
    {"samples 2^31-1", {integerField(kGraphSamplesAt, INT32_MAX)}},
    {"y range 50 to 50", yRange(50, 50)},
    {"y range NaN", yRange(NAN, NAN)},
    {"xy, x range 50 to 50", xyRange(50, 50)},
    {"xy, x range NaN", xyRange(NAN, NAN)},
    {"x labels 50 to 50", xLabels(50, 50)},
    {"x labels NaN", xLabels(NAN, NAN)},
    {"a frame 1e7 units wide and high", {realField(kGraphWidthAt, 1e7f), realField(kGraphHeightAt, 1e7f)}},
    {"grid and ticks 1e-30 apart", spacings(1e-30f)},
    {"grid and ticks 0.001 apart on 200 units", squareSpacings(0.001f)},
    {"grid and ticks 0.9 apart on 200 units", squareSpacings(0.9f)},
};

// Unknown, empty, and a field with no terminator.
const std::string kFamilyGarbles[] = {"No Such Family", "", std::string(kFamilySize, 'W')};

void run(const Bytes& bytes, size_t size)
{
    runView(bytes.data(), size, kFramesRunning);
}

// What the sweep found to garble, its slowest case and the cases over time.
struct Tally {
    size_t textRecords = 0, graphRecords = 0, slowCases = 0;
    double slowestSeconds = 0;
    std::string slowest;
};

void garbleTexts(const std::string& name, const Bytes& sample, const std::set<size_t>& bodies)
{
    for (size_t body : bodies) {
        for (const IntegerGarble& garble : kIntegerGarbles) {
            describe("sweep: %s, text at %zu with %s\n", name.c_str(), body, garble.what);
            Bytes copy = sample;
            setInteger(copy, body + garble.at, garble.value);
            run(copy, copy.size());
        }
        for (const std::string& family : kFamilyGarbles) {
            describe("sweep: %s, text at %zu in family \"%s\"\n", name.c_str(), body, family.c_str());
            Bytes copy = sample;
            std::fill_n(copy.begin() + long(body + kFamilyAt), kFamilySize, 0);
            std::copy(family.begin(), family.end(), copy.begin() + long(body + kFamilyAt));
            run(copy, copy.size());
        }
    }
}

// Runs a case for `frames` frames, timed in processor time, which other work on the machine
// barely changes.
void timedRun(const std::string& what, const Bytes& bytes, size_t size, int frames, Tally& tally)
{
    const std::clock_t start = std::clock();
    runView(bytes.data(), size, frames);
    const double seconds = double(std::clock() - start) / CLOCKS_PER_SEC;
    describe("sweep: %.3f s\n", seconds);
    if (seconds > kCaseSeconds) {
        std::fprintf(stderr, "sweep: %s took %.2f s\n", what.c_str(), seconds);
        ++tally.slowCases;
    }
    if (seconds > tally.slowestSeconds)
        tally.slowestSeconds = seconds, tally.slowest = what;
}

void garbleGraphs(const std::string& name, const Bytes& sample, const std::set<size_t>& bodies, Tally& tally)
{
    for (size_t body : bodies)
        for (const GraphGarble& garble : kGraphGarbles) {
            describe("sweep: %s, graph at %zu with %s\n", name.c_str(), body, garble.what);
            Bytes copy = sample;
            for (const GraphField& field : garble.fields) {
                if (field.integer)
                    setInteger(copy, body + field.at, field.whole);
                else
                    setReal(copy, body + field.at, field.real);
            }
            timedRun(name + ", graph with " + garble.what, copy, copy.size(), kLongFrames, tally);
        }
}

// Returns false when the sample itself doesn't load.
bool sweepSample(const std::string& name, const Bytes& sample, size_t longCutStride, Tally& tally)
{
    describe("sweep: %s whole\n", name.c_str());
    if (!runView(sample.data(), sample.size(), kFramesRunning)) {
        std::fprintf(stderr, "sweep: %s doesn't load\n", name.c_str());
        return false;
    }
    for (size_t cut = 0; cut < sample.size(); ++cut) {
        describe("sweep: %s cut to %zu bytes\n", name.c_str(), cut);
        timedRun(name + " cut to " + std::to_string(cut) + " bytes", sample, cut,
                 cut % longCutStride ? kFramesRunning : kLongFrames, tally);
    }

    std::set<size_t> texts, graphs;
    if (VIEW_STRUCT* view = krViewLoadData(sample.data(), sample.size())) {
        findBodies(sample, view->elements, KR_TEXT, kTextAt, texts);
        findBodies(sample, view->elements, KR_GRAPH, kGraphBodySize, graphs);
        krViewFree(view);
    }
    garbleTexts(name, sample, texts);
    garbleGraphs(name, sample, graphs, tally);
    tally.textRecords += texts.size();
    tally.graphRecords += graphs.size();
    std::printf("sweep: %s: %zu cuts, %zu text and %zu graph records garbled\n", name.c_str(), sample.size(),
                texts.size(), graphs.size());
    std::fflush(stdout);
    return true;
}

} // namespace

int sweepSamples(const fs::path& dir, size_t longCutStride)
{
    std::vector<fs::path> samples;
    for (const fs::directory_entry& entry : fs::directory_iterator(dir))
        if (entry.is_regular_file() && entry.path().extension() == ".k2d")
            samples.push_back(entry.path());
    std::sort(samples.begin(), samples.end());
    if (samples.empty()) {
        std::fprintf(stderr, "sweep: no *.k2d in %s\n", dir.c_str());
        return 1;
    }
    namingCases = std::getenv("K2DFUZZ_SWEEP_CASES") != nullptr;
    Tally tally;
    for (const fs::path& path : samples) {
        std::ifstream in(path, std::ios::binary);
        const Bytes sample{std::istreambuf_iterator<char>(in), {}};
        if (!sweepSample(path.filename().string(), sample, longCutStride, tally))
            return 1;
    }
    if (tally.textRecords == 0 || tally.graphRecords == 0) {
        std::fprintf(stderr, "sweep: no text or no graph record found to garble in %s\n", dir.c_str());
        return 1;
    }
    std::printf("sweep: %zu samples ran; slowest case %.3f s: %s\n", samples.size(), tally.slowestSeconds,
                tally.slowest.c_str());
    return tally.slowCases == 0 ? 0 : 1;
}

} // namespace k2dfuzz
