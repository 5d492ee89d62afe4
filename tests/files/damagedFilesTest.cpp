// Files damaged on disk or by a careless writer: cut at every byte and garbled in thousands of
// ways, a view with every structure the reader knows, in every generation of the format, loads
// and frees without harm (the fuzzing tests sweep the samples we ship, running); hostile counts
// keep what was read before them and claim no memory out of proportion to the file's size.
#include "LoadedView.h"
#include "ViewFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

constexpr size_t kHeaderSize = 38; // magic text and revision

// An action of `type` with `entries` thresholds in threshold block `block`. Threshold values
// are zero, so that no small integers stand outside the counts and sizes.
ActionFields banded(int type, int block, int entries = 3)
{
    ActionFields a;
    a.type = type, a.var = "level", a.blocks[block].max = float(entries * 10);
    for (int i = 0; i < entries; ++i)
        a.blocks[block].entries.push_back({float(i * 10), float(i * 10 + 10), 0, {0.5f, 0.25f * float(i % 4), 0}});
    return a;
}

SourceFields source(int id, int variables, int capacity)
{
    SourceFields s{id, {{0, "host"}, {0, "port"}}, 2, {}};
    for (int i = 0; i < variables; ++i)
        s.variables.push_back({0, "v" + std::to_string(i), "", {{0, "offset"}, {0, "scale"}}, capacity});
    return s;
}

// The first revision of each generation of the format: what a file stores, and where, changes
// from one to the next.
const int kGenerations[] = {100, 101, 102, 107, 111, 113, 201, 202, 203, 204, 301, 302, 303};
constexpr int kLastWithOldSources = 110;

// Every kind, a clip and a bodiless code, nested two deep, written at `revision`. Text and graph
// each build a font (about a millisecond): they come last so that most cuts don't pay for them.
std::vector<uint8_t> everyKindPanel(int revision, bool withFonts = true)
{
    ViewBuilder b(revision / 100, revision % 100);
    b.page(0, 0, 400, 300, 0, 0, 0);
    b.actions({banded(KR_ACTION_MOVE_X, KR_THRESHOLDS_COLOR), banded(KR_ACTION_FILL_COLOR, KR_THRESHOLDS_COLOR)})
        .rect(RectFields(), "lamp");
    b.beginGroup(10, "gauges");
    b.actions({banded(KR_ACTION_STROKE_WIDTH, KR_THRESHOLDS_WIDTH)}).polyline(PolyFields());
    b.actions({banded(KR_ACTION_STROKE_STYLE, KR_THRESHOLDS_STYLE)}).cpoly(PolyFields());
    b.actions({banded(KR_ACTION_VISIBLE, KR_THRESHOLDS_VISIBLE)}).circle(CircleFields());
    b.actions({banded(KR_ACTION_STROKE_COLOR, KR_THRESHOLDS_BLINK)}).arc(CircleFields());
    b.line(LineFields()).image({0, 0, 64, 64, {1, 1, 1, 1}, 2, 2, 0, std::vector<uint8_t>(16, 0x80)});
    b.button(ButtonFields()).slider(SliderFields()).scissor(0, 0, 200, 100);
    b.beginGroup(1, "inner").rect(RectFields(), "deep");
    b.actions({banded(KR_ACTION_MOVE_Y, KR_THRESHOLDS_COLOR)}).endGroup();
    b.actions({banded(KR_ACTION_FILL_COLOR, KR_THRESHOLDS_COLOR)}).endGroup();
    b.bodiless(9, "nobody");
    if (revision <= kLastWithOldSources)
        b.oldDataSection({{0, 1, 2, 0, 0, 0, 0, 0, 0, "", {{0, "v0"}, {0, "v1"}}}, {7, 0, 0, 0, 0, 0, 0, 0, 0, "", {{0, "v0"}}}});
    else
        b.dataSection({source(1, 2, 64), source(2, 1, 80)});
    b.rect(RectFields(), "last");
    if (withFonts)
        b.text(TextFields()).graph(GraphFields());
    return b.bytes();
}

// Elements, actions, sources and variables, counted through the whole view.
std::array<int, 4> holdings(const VIEW_STRUCT* v)
{
    int variables = 0;
    for (const DD_DATA_TYPE_STRUCT* s = v->dataTypes; s; s = s->next)
        variables += countList(s->variables);
    return {countElements(v->elements), countActions(v->elements), countList(v->dataTypes), variables};
}

// Cut at every byte: short of the magic text there is no view, past it at least an empty one,
// and a longer piece never holds less. Gives back what the whole file holds.
std::array<int, 4> expectEveryCutKeepsWhatWasRead(const std::vector<uint8_t>& whole)
{
    std::array<int, 4> kept{};
    for (size_t n = 0; n <= whole.size(); ++n) {
        LoadedView loaded(std::vector<uint8_t>(whole.begin(), whole.begin() + long(n)));
        EXPECT_EQ(loaded.view == nullptr, n < 9) << n;
        if (!loaded.view)
            continue;
        const std::array<int, 4> now = holdings(loaded.view);
        for (size_t i = 0; i < kept.size(); ++i)
            EXPECT_GE(now[i], kept[i]) << "a longer file never holds less: count " << i << " at " << n;
        kept = now;
    }
    return kept;
}

// Integers a reader must not trust: counts and sizes far beyond any file, and below zero.
const int32_t kHostileIntegers[] = {INT32_MAX, INT32_MIN, -1, -100000, 0x40000000, 2000000000, 0x10000};

void writeInteger(std::vector<uint8_t>& bytes, size_t at, int32_t value)
{
    for (int i = 0; i < 4 && at + size_t(i) < bytes.size(); ++i)
        bytes[at + size_t(i)] = uint8_t(uint32_t(value) >> (24 - 8 * i));
}

// `rounds` copies, each in turn with a few bytes flipped, an integer made hostile, or a flip
// and a cut at random: every one loads and frees.
void expectGarbledCopiesLoad(const std::vector<uint8_t>& whole, int rounds, unsigned seed)
{
    std::mt19937 random(seed);
    for (int round = 0; round < rounds; ++round) {
        std::vector<uint8_t> copy = whole;
        auto somewhere = [&] { return kHeaderSize + random() % (copy.size() - kHeaderSize); };
        if (round % 3 == 1) {
            writeInteger(copy, somewhere(), kHostileIntegers[random() % std::size(kHostileIntegers)]);
        } else {
            for (int flips = round % 3 == 0 ? 1 + int(random() % 8) : 1; flips > 0; --flips)
                copy[somewhere()] ^= uint8_t(1 + random() % 255);
            if (round % 3 == 2)
                copy.resize(somewhere());
        }
        LoadedView loaded(copy);
        ASSERT_NE(loaded.view, nullptr) << round;
    }
}

class EveryGeneration : public testing::TestWithParam<int> {};

TEST_P(EveryGeneration, EveryKindCutOrGarbledKeepsWhatWasRead)
{
    const int revision = GetParam();
    EXPECT_EQ(expectEveryCutKeepsWhatWasRead(everyKindPanel(revision)), (std::array<int, 4>{17, 8, 2, 3}));
    // One copy in eight keeps text and graph, so that their fonts don't take over the run time.
    expectGarbledCopiesLoad(everyKindPanel(revision), 1250, 97);
    expectGarbledCopiesLoad(everyKindPanel(revision, false), 8750, 98);
}

INSTANTIATE_TEST_SUITE_P(DamagedFiles, EveryGeneration, testing::ValuesIn(kGenerations));

// Stroke widths no editor writes, on every kind that keeps one: the view still starts and stops.
TEST(DamagedFiles, StrokeWidthsOfNoNumberStartAndStop)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (float width : {nan, -nan, inf, -inf, 1e30f, -1e30f}) {
        const CircleFields circle{100, 100, {0.5f, 0, 0, 0.5f}, 0, 6.2831855f, 1, width};
        const PolyFields poly{1, 1, width, 0, {1, 1, 1, 1}, 1};
        LoadedView loaded(blackPage().rect({0, 0, 10, 10, 1, width}).circle(circle).arc(circle)
                              .line({0, 0, 100, 0, width}).polyline(poly).cpoly(poly).dataSection());
        ASSERT_EQ(countElements(loaded.first()), 6) << width;
        EXPECT_EQ(krViewStart(loaded.view), 0) << width;
        EXPECT_EQ(krViewStop(loaded.view), 0) << width;
    }
}

// Counts and sizes that no small file can hold, each where the reader must trust or refuse
// one: loading ends softly, with what was read before it.
TEST(DamagedFiles, HugeCountsInASmallFileKeepWhatWasRead)
{
    const int32_t huge = 2000000000;
    const ImageFields picture{0, 0, 64, 64, {1, 1, 1, 1}, 60000, 60000, 0, std::vector<uint8_t>(64, 0x80)};
    ImageFields wider = picture;
    wider.width = wider.height = 0x7FFFFFFF; // sides whose product fits no integer
    PolyFields points;
    points.storedCount = huge;
    std::vector<uint8_t> text = blackPage().text(TextFields()).bytes();
    std::vector<uint8_t> oldText = ViewBuilder(1, 7).page(0, 0, 400, 300, 0, 0, 0).text(TextFields()).bytes();
    for (std::vector<uint8_t>* t : {&text, &oldText}) // the length, before "Text", its zero and the action count
        (*t)[t->size() - 4 - 5 - 4] = 0x7F;
    ActionFields wide = banded(KR_ACTION_MOVE_X, KR_THRESHOLDS_COLOR);
    wide.groupWidth = 1e30f; // the oldest files' colour group: a width far past any integer
    std::vector<uint8_t> blink = blackPage().actions({banded(KR_ACTION_MOVE_X, KR_THRESHOLDS_BLINK)}).rect({}).bytes();
    blink[blink.size() - 4 - 3 * 24] = 0x7F; // the count of the last block, before its three entries
    ViewBuilder deep = blackPage(), actions = blackPage();
    for (int i = 0; i < 100000; ++i)
        deep.beginGroup(1);
    actions.rect({}).integer(1).counted("lots").counted("lots-ID");
    for (int i = 0; i < 8 * 2 + 9; ++i)
        actions.integer(0);
    const struct {
        const char* label;
        std::vector<uint8_t> bytes;
        std::array<int, 4> held; // elements, actions, sources, variables
    } cases[] = {
        {"group's children", blackPage().beginGroup(huge).rect({}).bytes(), {2, 0, 0, 0}},
        {"nesting far deeper than any drawn view: 200 groups and the one that stops it", deep.bytes(),
         {201, 0, 0, 0}},
        {"name length", blackPage().integer(1).integer(0x7FFFFFFF).fixed("x", 100).bytes(), {1, 0, 0, 0}},
        {"picture size", blackPage().image(picture).rect({}).bytes(), {1, 0, 0, 0}},
        {"picture size past any integer", blackPage().image(wider).rect({}).bytes(), {1, 0, 0, 0}},
        {"points, three stored", blackPage().cpoly(points).bytes(), {1, 0, 0, 0}},
        {"text length", text, {1, 0, 0, 0}},
        {"text length of 1.07", oldText, {1, 0, 0, 0}},
        {"colour group of 1.00", ViewBuilder(1, 0).page(0, 0, 400, 300, 0, 0, 0).actions({wide}).rect({}).bytes(),
         {1, 1, 0, 0}},
        {"actions", actions.integer(huge).bytes(), {2, 0, 0, 0}},
        {"thresholds", blink, {1, 1, 0, 0}},
        {"sources", blackPage().dataSection({source(5, 0, 64)}).integer(20).integer(huge).integer(6).integer(0)
                        .integer(0).integer(0).bytes(), {0, 0, 2, 0}},
        {"parameters and variables", blackPage().integer(20).integer(3).integer(7).integer(0).integer(huge).integer(0)
                                         .integer(8).integer(0).integer(0).integer(huge).integer(0)
                                         .fixed("only", 64).fixed("", 64).integer(9).integer(huge).bytes(),
         {0, 0, 2, 1}},
        {"parameter text", blackPage().integer(20).integer(1).integer(1).integer(0).integer(1).integer(1).integer(0)
                               .fixed("v", 64).fixed("", 64).integer(3).integer(huge).fixed("short", 16).bytes(),
         {0, 0, 1, 1}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        LoadedView loaded(c.bytes);
        ASSERT_NE(loaded.view, nullptr);
        EXPECT_EQ(holdings(loaded.view), c.held);
    }
}

// Nearly a megabyte sized from stored counts: picture, long polygons, hundreds of thresholds,
// many wide variables. Names of 3 and ids of 7 characters keep fields on the 4-byte grid.
std::vector<uint8_t> largePanel()
{
    ViewBuilder b = blackPage();
    const ImageFields picture = {0, 0, 64, 64, {1, 1, 1, 1}, 352, 352, 0, std::vector<uint8_t>(352 * 352 * 4, 0x80)};
    std::vector<ActionFields> many;
    for (int block = 0; block < KR_THRESHOLD_BLOCKS; ++block)
        many.push_back(banded(KR_ACTION_FILL_COLOR, block, 300));
    b.beginGroup(4, "big", "big-id0").actions(many).image(picture, "pic", "pic-id0");
    PolyFields longLine;
    longLine.points.assign(15000, {0, 1.5f, 2.5f});
    b.polyline(longLine, "pln", "pln-id0");
    longLine.points.resize(8000);
    b.actions(many).cpoly(longLine, "cpl", "cpl-id0");
    b.beginGroup(1, "sub", "sub-id0").rect(RectFields(), "box", "box-id0").endGroup().endGroup();
    return b.dataSection({source(1, 60, 256), source(2, 10, 1024)}).bytes();
}

// A field of the process's status in kB, such as its peak resident size VmHWM.
long statusKilobytes(const std::string& field)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(field + ":", 0) == 0)
            return std::stol(line.substr(field.size() + 1));
    return -1;
}

TEST(DamagedFiles, HostileCountsInALargeFileClaimLittleMemory)
{
    const std::vector<uint8_t> whole = largePanel();
    ASSERT_GT(whole.size(), 800u * 1024);
    ASSERT_LT(whole.size(), 1024u * 1024);
    ASSERT_GT(statusKilobytes("VmHWM"), 0) << "no peak resident size to watch";
    long worstGrowth = 0, counts = 0;
    // Small positive integers: with ids and threshold values zero, nearly all are counts and sizes.
    for (size_t at = kHeaderSize; at + 4 <= whole.size(); at += 4) {
        const uint32_t v = uint32_t(whole[at]) << 24 | uint32_t(whole[at + 1]) << 16 | uint32_t(whole[at + 2]) << 8 |
                           whole[at + 3];
        if (v < 1 || v >= (1u << 20))
            continue;
        std::vector<uint8_t> copy = whole;
        writeInteger(copy, at, kHostileIntegers[counts++ % std::size(kHostileIntegers)]);
        // Where the kernel allows, the peak starts afresh from the present size; without that
        // the growth is that of the peak so far, a bound that only errs on the lenient side.
        std::ofstream clearRefs("/proc/self/clear_refs");
        const long before = (clearRefs << "5" << std::flush) ? statusKilobytes("VmRSS") : statusKilobytes("VmHWM");
        {
            LoadedView loaded(copy);
            ASSERT_NE(loaded.view, nullptr) << at;
        }
        worstGrowth = std::max(worstGrowth, statusKilobytes("VmHWM") - before);
    }
    EXPECT_GT(counts, 20);
    EXPECT_LT(worstGrowth, 100 * 1024) << "kB of peak resident size for a file of " << whole.size() << " bytes";
}

} // namespace
