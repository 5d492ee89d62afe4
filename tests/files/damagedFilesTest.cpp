// Files damaged on disk or by a careless writer: a view with every structure the reader knows,
// cut at every byte and garbled in thousands of ways, loads and frees without harm, and
// without claiming memory out of proportion to its size.
#include "Korel2D.h"
#include "LoadedView.h"
#include "ViewBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

constexpr size_t kHeaderSize = 38; // magic text and revision

// An action of `type` with `entries` thresholds in threshold block `block`.
ActionFields banded(int type, int block, int entries = 3)
{
    ActionFields a;
    a.type = type;
    a.var = "level";
    a.blocks[block].max = float(entries * 10);
    for (int i = 0; i < entries; ++i) {
        ThresholdFields t;
        t.lower = float(i * 10), t.upper = float(i * 10 + 10);
        t.value = 0; // no small integers outside the counts: see countAndSizeOffsets
        t.color[1] = 0.25f * float(i % 4);
        a.blocks[block].entries.push_back(t);
    }
    return a;
}

SourceFields source(int id, int variables, int capacity)
{
    SourceFields s;
    s.id = id;
    s.dataParams = {{0, "host"}, {0, "port"}};
    s.varParamCount = 2;
    for (int i = 0; i < variables; ++i) {
        VariableFields v;
        v.name = "v" + std::to_string(i);
        v.params = {{0, "offset"}, {0, "scale"}};
        v.capacity = capacity;
        s.variables.push_back(v);
    }
    return s;
}

// Every kind, a clip and a bodiless code, nested two deep. Text and graph each build a font
// (about a millisecond): they come last so that most cuts don't pay for them.
constexpr int kEveryKindElements = 17, kEveryKindActions = 8, kEveryKindVariables = 3;

std::vector<uint8_t> everyKindPanel(bool withFonts = true)
{
    ViewBuilder b;
    b.page(0, 0, 400, 300, 0, 0, 0);
    b.actions({banded(KR_ACTION_MOVE_X, KR_THRESHOLDS_COLOR), banded(KR_ACTION_FILL_COLOR, KR_THRESHOLDS_COLOR)})
        .rect(RectFields(), "lamp");
    b.beginGroup(10, "gauges");
    b.actions({banded(KR_ACTION_STROKE_WIDTH, KR_THRESHOLDS_WIDTH)}).polyline(PolyFields());
    PolyFields closed;
    closed.fillOn = 1;
    b.actions({banded(KR_ACTION_STROKE_STYLE, KR_THRESHOLDS_STYLE)}).cpoly(closed);
    b.actions({banded(KR_ACTION_VISIBLE, KR_THRESHOLDS_VISIBLE)}).circle(CircleFields());
    b.actions({banded(KR_ACTION_STROKE_COLOR, KR_THRESHOLDS_BLINK)}).arc(CircleFields());
    b.line(LineFields());
    ImageFields picture;
    picture.width = picture.height = 2;
    picture.pixels.assign(16, 0x80);
    b.image(picture).button(ButtonFields()).slider(SliderFields()).scissor(0, 0, 200, 100);
    b.beginGroup(1, "inner").rect(RectFields(), "deep");
    b.actions({banded(KR_ACTION_MOVE_Y, KR_THRESHOLDS_COLOR)}).endGroup();
    b.actions({banded(KR_ACTION_FILL_COLOR, KR_THRESHOLDS_COLOR)}).endGroup();
    b.bodiless(9, "nobody");
    b.dataSection({source(1, 2, 64), source(2, 1, 80)});
    b.rect(RectFields(), "last");
    if (withFonts)
        b.text(TextFields()).graph(GraphFields());
    return b.bytes();
}

int countVariables(const DD_DATA_TYPE_STRUCT* sources)
{
    int n = 0;
    for (; sources; sources = sources->next)
        n += countList(sources->variables);
    return n;
}

TEST(DamagedFiles, EveryKindCutAtEveryOffsetKeepsWhatWasRead)
{
    const std::vector<uint8_t> whole = everyKindPanel();
    std::array<int, 4> kept{};
    for (size_t n = 0; n <= whole.size(); ++n) {
        LoadedView loaded(std::vector<uint8_t>(whole.begin(), whole.begin() + long(n)));
        // Short of the magic text there is no view; past it, at least an empty one.
        if (n < 9) {
            EXPECT_EQ(loaded.view, nullptr) << n;
            continue;
        }
        ASSERT_NE(loaded.view, nullptr) << n;
        const std::array<int, 4> now = {countElements(loaded.first()), countActions(loaded.first()),
                                        countList(loaded.view->dataTypes), countVariables(loaded.view->dataTypes)};
        for (size_t i = 0; i < kept.size(); ++i)
            EXPECT_GE(now[i], kept[i]) << "a longer file never holds less: count " << i << " at " << n;
        kept = now;
    }
    EXPECT_EQ(kept, (std::array<int, 4>{kEveryKindElements, kEveryKindActions, 2, kEveryKindVariables}));
}

// Stroke widths no editor writes, on every kind that keeps one: the view still starts and stops.
TEST(DamagedFiles, StrokeWidthsOfNoNumberStartAndStop)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (float width : {nan, -nan, inf, -inf, 1e30f, -1e30f}) {
        SCOPED_TRACE(width);
        RectFields rect;
        rect.strokeOn = 1;
        CircleFields circle;
        LineFields line;
        PolyFields poly;
        rect.strokeWidth = circle.strokeWidth = line.strokeWidth = poly.strokeWidth = width;
        ViewBuilder b;
        b.page(0, 0, 400, 300, 0, 0, 0).rect(rect).circle(circle).arc(circle).line(line).polyline(poly);
        poly.closed = poly.fillOn = 1;
        b.cpoly(poly).dataSection();
        LoadedView loaded(b);
        ASSERT_NE(loaded.view, nullptr);
        EXPECT_EQ(countElements(loaded.first()), 6);
        EXPECT_EQ(krViewStart(loaded.view), 0);
        EXPECT_EQ(krViewStop(loaded.view), 0);
    }
}

// Integers a reader must not trust: counts and sizes far beyond any file, and below zero.
const int32_t kHostileIntegers[] = {INT32_MAX, INT32_MIN, -1, -100000, 0x40000000, 2000000000, 0x10000};

void writeInteger(std::vector<uint8_t>& bytes, size_t at, int32_t value)
{
    for (int i = 0; i < 4 && at + size_t(i) < bytes.size(); ++i)
        bytes[at + size_t(i)] = uint8_t(uint32_t(value) >> (24 - 8 * i));
}

// In turn: a few bytes flipped, an integer made hostile, or a flip and a cut at random.
std::vector<uint8_t> garbled(const std::vector<uint8_t>& whole, int round, std::mt19937& random)
{
    std::vector<uint8_t> copy = whole;
    auto somewhere = [&] { return kHeaderSize + random() % (copy.size() - kHeaderSize); };
    switch (round % 3) {
    case 0:
        for (int flips = 1 + int(random() % 8); flips > 0; --flips)
            copy[somewhere()] ^= uint8_t(1 + random() % 255);
        break;
    case 1:
        writeInteger(copy, somewhere(), kHostileIntegers[random() % std::size(kHostileIntegers)]);
        break;
    default:
        copy[somewhere()] ^= uint8_t(1 + random() % 255);
        copy.resize(somewhere());
        break;
    }
    return copy;
}

// One copy in eight keeps text and graph, so that their fonts don't take over the run time.
TEST(DamagedFiles, TenThousandGarbledCopiesLoadAndFree)
{
    const std::vector<uint8_t> withFonts = everyKindPanel(), withoutFonts = everyKindPanel(false);
    std::mt19937 random(97);
    for (int round = 0; round < 10000; ++round) {
        LoadedView loaded(garbled(round % 8 == 0 ? withFonts : withoutFonts, round, random));
        ASSERT_NE(loaded.view, nullptr) << round;
    }
}

// Nearly a megabyte sized from stored counts: picture, long polygons, hundreds of thresholds,
// many wide variables. Names of 3 and ids of 7 characters keep fields on the 4-byte grid.
std::vector<uint8_t> largePanel()
{
    ViewBuilder b;
    b.page(0, 0, 1024, 768, 0, 0, 0);
    ImageFields picture;
    picture.width = picture.height = 352;
    picture.pixels.assign(352 * 352 * 4, 0x80);
    std::vector<ActionFields> many;
    for (int block = 0; block < KR_THRESHOLD_BLOCKS; ++block)
        many.push_back(banded(KR_ACTION_FILL_COLOR, block, 300));
    b.beginGroup(4, "big", "big-id0");
    b.actions(many).image(picture, "pic", "pic-id0");
    PolyFields longLine;
    longLine.points.assign(15000, {0, 1.5f, 2.5f});
    b.polyline(longLine, "pln", "pln-id0");
    longLine.points.resize(8000);
    b.actions(many).cpoly(longLine, "cpl", "cpl-id0");
    b.beginGroup(1, "sub", "sub-id0").rect(RectFields(), "box", "box-id0").endGroup();
    b.endGroup();
    b.dataSection({source(1, 60, 256), source(2, 10, 1024)});
    return b.bytes();
}

// Small positive integers: with ids and threshold values zero, nearly all are counts and sizes.
std::vector<size_t> countAndSizeOffsets(const std::vector<uint8_t>& bytes)
{
    std::vector<size_t> offsets;
    for (size_t at = kHeaderSize; at + 4 <= bytes.size(); at += 4) {
        const uint32_t v = uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 | uint32_t(bytes[at + 2]) << 8 |
                           bytes[at + 3];
        if (v >= 1 && v < (1u << 20))
            offsets.push_back(at);
    }
    return offsets;
}

long statusKilobytes(const char* field)
{
    std::ifstream status("/proc/self/status");
    const std::string key = std::string(field) + ":";
    for (std::string line; std::getline(status, line);)
        if (line.compare(0, key.size(), key) == 0)
            return std::strtol(line.c_str() + key.size(), nullptr, 10);
    return -1;
}

// Starts the process's peak resident size afresh from its present size, where the kernel allows.
bool resetPeakResidentSize()
{
    std::ofstream clearRefs("/proc/self/clear_refs");
    clearRefs << "5";
    clearRefs.flush();
    return bool(clearRefs);
}

TEST(DamagedFiles, HostileCountsInALargeFileClaimLittleMemory)
{
    const std::vector<uint8_t> whole = largePanel();
    ASSERT_GT(whole.size(), 800u * 1024);
    ASSERT_LT(whole.size(), 1024u * 1024);
    ASSERT_GT(statusKilobytes("VmHWM"), 0) << "no peak resident size to watch";
    const std::vector<size_t> offsets = countAndSizeOffsets(whole);
    ASSERT_GT(offsets.size(), 20u);

    long worstGrowth = 0;
    for (size_t i = 0; i < offsets.size(); ++i) {
        std::vector<uint8_t> copy = whole;
        writeInteger(copy, offsets[i], kHostileIntegers[i % std::size(kHostileIntegers)]);
        // Without a reset the growth is that of the peak so far: a bound that only errs on the lenient side.
        const long before = resetPeakResidentSize() ? statusKilobytes("VmRSS") : statusKilobytes("VmHWM");
        {
            LoadedView loaded(copy);
            ASSERT_NE(loaded.view, nullptr) << offsets[i];
        }
        worstGrowth = std::max(worstGrowth, statusKilobytes("VmHWM") - before);
    }
    EXPECT_LT(worstGrowth, 100 * 1024) << "kB of peak resident size for a file of " << whole.size() << " bytes";
}

} // namespace
