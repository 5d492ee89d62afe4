// Running views under what the field sends them: a damaged file started and drawn, values no
// sensor should produce, and bindings a damaged file may hold. The sanitizers judge memory and
// undefined behaviour; these tests check that every call still answers, that the values shown
// are sane, and that the panel comes back once the values do.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewFixture.h"
#include "actionViews.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace k2dtest;
using namespace korelgen;

// A name whose stored length runs past it makes the reader take the rest of a closed polygon
// from the bytes that follow: hundreds of points, many at NaN. The tessellator of the fill
// must never see those, at load or at a level change; stopped, the view looks as before.
using RunningFile = ViewTest;

// A running graph scales its range to its samples and keeps it: held fixed here.
void holdGraphRanges(ELEMENT_STRUCT* e)
{
    for (; e; e = e->next)
        if (e->type == KR_GRAPH)
            static_cast<GRAPH_STRUCT*>(e->data)->autoscale = 0;
        else
            holdGraphRanges(e->child);
}

TEST_F(RunningFile, PolygonReadFromTheWrongBytesLoadsAndRuns)
{
    std::ifstream in(std::string(KOREL2D_EXAMPLES_DIR) + "/everykind.k2d", std::ios::binary);
    std::vector<uint8_t> bytes(std::istreambuf_iterator<char>(in), {});
    const std::string name("\0\0\0\x08pointer\0", 12);
    const auto at = std::search(bytes.begin(), bytes.end(), name.begin(), name.end());
    ASSERT_NE(at, bytes.end()) << "the sample no longer holds the polygon";
    at[3] = 0x5E;
    LoadedView loaded(bytes);
    ASSERT_NE(loaded.view, nullptr);
    holdGraphRanges(loaded.view->elements);
    const uint64_t before = frameHash(draw(loaded.view, 0, 0, 0.5f));
    ASSERT_EQ(krViewStart(loaded.view), 0);
    for (int i = 0; i < 5; ++i)
        draw(loaded.view, 0, 0, 0.5f);
    ASSERT_EQ(krViewStop(loaded.view), 0);
    EXPECT_EQ(frameHash(draw(loaded.view, 0, 0, 0.5f)), before);
}

// ---------------------------------------------------------------- hostile values

// Internal variables of every numeric code and one text, which keep what the host writes.
const char* const kNumericVariables[] = {"f", "d", "i8", "u8", "i16", "u16", "i32", "u32", "i64", "u64"};

// Actions of `type`, one on each numeric variable, with blocks that hold absurd entries past a
// harmless first one: at zero every block picks its first entry, so the panel can come back.
std::vector<ActionFields> onEveryVariable(int type)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    std::vector<ActionFields> list;
    for (int i = 0; i < 10; ++i) {
        ActionFields a = act(type, kNumericVariables[i], i); // every centre, and numbers that aren't one
        a.format = "%5.1f";
        a.visibleMode = i % 2;
        for (int block = 0; block < KR_THRESHOLD_BLOCKS; ++block) // the last: a clock that really blinks
            a.blocks[block].entries = {entry(0, block == KR_THRESHOLDS_VISIBLE), entry(10, 1000, nan, inf, -1),
                                       entry(1e20f, -1, 1e30f, -inf, 0), entry(nan, 255), entry(100, 3)};
        list.push_back(a);
    }
    return list;
}

// Formats a panel designer may type, good and bad.
const char* const kFormats[] = {"%5.1f", "%d", "%s", "%n", "%*d", "%99999d", "%%", "abc",
                                "%x%n", "%.999f", "%.9999f", "%c", "%lld", "%-+ #0e", "%", "%5.1f %d"};

// Elements of every kind that an action acts on, each with actions of one type on every
// numeric variable, and text elements for each format on each variable.
ViewBuilder hostilePanel()
{
    ViewBuilder b = blackPage();
    RectFields r = box(150, 100, 250, 200);
    r.strokeOn = 1;
    PolyFields bar;
    bar.closed = 1, bar.fillOn = 1;
    bar.points = {{0, 20, 20}, {1, 60, 20}, {2, 60, 200}, {3, 20, 200}};
    PolyFields flat = bar; // no height and no width: a level has nowhere to go
    flat.points = {{0, 300, 50}, {1, 300, 50}, {2, 300, 50}};
    CircleFields disc;
    LineFields needle;
    needle.x1 = 200, needle.y1 = 150, needle.x2 = 300, needle.y2 = 150;
    for (int type = KR_ACTION_TEXT + 1; type <= KR_ACTION_BLINK; ++type) { // text: the elements below
        const std::vector<ActionFields> list = onEveryVariable(type);
        switch (type) {
        case KR_ACTION_ROTATE: b.actions(list).line(needle); break;
        case KR_ACTION_GRAPH: b.actions(list).slider(SliderFields()); break;
        case KR_ACTION_VISIBLE: b.beginGroup(2).rect(r).circle(disc).actions(list).endGroup(); break;
        case KR_ACTION_FILL_UP:
        case KR_ACTION_FILL_DOWN:
        case KR_ACTION_FILL_LEFT:
        case KR_ACTION_FILL_RIGHT: b.actions(list).cpoly(bar).actions(list).cpoly(flat).actions(list).rect(r); break;
        case KR_ACTION_INPUT:
        case KR_ACTION_BUTTON_STATE: b.actions(list).button(ButtonFields()); break;
        case KR_ACTION_ARC_END: b.actions(list).arc(disc).actions(list).circle(disc); break;
        default: b.actions(list).rect(r).actions(list).circle(disc); break;
        }
    }
    for (const char* format : kFormats)
        for (const char* var : kNumericVariables) {
            ActionFields a = act(KR_ACTION_TEXT, var);
            a.format = format;
            b.actions({a}).text(TextFields(), (std::string(format) + " of " + var).c_str());
        }
    ActionFields shown = act(KR_ACTION_TEXT, "t");
    shown.format = "%d"; // a text variable is shown as it is, whatever the format
    b.actions({shown}).text(TextFields(), "textVariable");
    std::vector<VariableFields> variables;
    for (int type = KR_VAR_FLOAT; type <= KR_VAR_UINT64; ++type)
        variables.push_back({type, kNumericVariables[type], "", {}});
    variables.push_back({KR_VAR_TEXT, "t", "", {}});
    return b.dataSection({internalSource(variables)});
}

// The text an element of that name shows.
std::string shownBy(const VIEW_STRUCT* view, const std::string& name)
{
    for (const ELEMENT_STRUCT* e = view->elements; e; e = e->next)
        if (name == e->name)
            return e->attr.text;
    ADD_FAILURE() << "no element " << name;
    return "";
}

// Writes one value to every numeric variable, each as its code stores it: the integer codes
// take the low bytes of `integer` (this is a little-endian host), through their buffers.
void setAll(VIEW_STRUCT* view, double real, int64_t integer)
{
    const float f = float(real);
    EXPECT_EQ(krVarSet(view, "f", &f), 1);
    EXPECT_EQ(krVarSet(view, "d", &real), 1);
    const size_t widths[] = {1, 1, 2, 2, 4, 4, 8, 8};
    for (int type = KR_VAR_INT8; type <= KR_VAR_UINT64; ++type) {
        void* buffer = krVarGetAddr(view, kNumericVariables[type]);
        ASSERT_NE(buffer, nullptr) << kNumericVariables[type];
        memcpy(buffer, &integer, widths[type - KR_VAR_INT8]);
    }
}

using RunningHostileValues = ViewTest;

// Every action type survives values no sensor should send, and the panel comes back once they
// are gone. A format shows a number of the variable's code, or itself, as typed, where printf
// can't take it with one number (which formats those are, the formatter's own tests say). A
// text variable is shown as the host wrote it, up to the 255 characters it holds, even when it
// looks like a format.
TEST_F(RunningHostileValues, FormatsShowNumbersOrThemselves)
{
    VIEW_STRUCT* view = load(hostilePanel());
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(krViewStart(view), 0);
    setAll(view, 0, 0);
    const uint64_t calm = frameHash(draw(view));
    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    const struct { double real; int64_t integer; const char *format, *var, *shown; } cases[] = {
        {nan, INT64_MIN, "%5.1f", "f", "  nan"},
        {nan, INT64_MIN, "%d", "d", "0"}, // truncated, clamped to the range, nothing for NaN
        {inf, INT64_MAX, "%d", "d", "9223372036854775807"},
        {1e30, INT32_MIN, "%5.1f", "f", "1000000015047466219876688855040.0"},
        {-1e30, INT32_MAX, "%d", "d", "-9223372036854775808"},
        {1e-40, 0x7F7F7F7F7F7F7F7Fll, "%5.1f", "f", "  0.0"}, // a float denormal
        {5e-324, int64_t(0x8000000080000000ull), "%d", "i64", "-9223372034707292160"}, // the least double
        {1e300, 65535, "%5.1f", "f", "  inf"},                 // beyond any float
        {3.4e38, -128, "%d", "u8", "128"},
        {-2.5, -2, "%d", "u16", "65534"},
        {-2.5, -2, "abc", "i64", "abc"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.real);
        setAll(view, c.real, c.integer);
        // Two frames: the second starts from what the first left behind.
        draw(view);
        draw(view);
        for (const ELEMENT_STRUCT* e = view->elements; e; e = e->next)
            EXPECT_LT(strlen(e->attr.text), sizeof e->attr.text) << e->name;
        EXPECT_EQ(shownBy(view, std::string(c.format) + " of " + c.var), c.shown);
    }
    setAll(view, 0, 0);
    draw(view); // a blink clock may still be off for the frame that ends it
    EXPECT_EQ(frameHash(draw(view)), calm) << "the panel stays as the hostile values left it";

    std::string longest;
    for (int i = 0; longest.size() < 255; ++i)
        longest += "%n%s%d"[i % 6];
    for (const std::string& text : {longest, longest + "beyond the buffer"}) {
        EXPECT_EQ(krVarSet(view, "t", text.c_str()), 1);
        draw(view);
        EXPECT_EQ(shownBy(view, "textVariable"), longest);
        char back[256];
        krVarGetStr(view, "t", back);
        EXPECT_EQ(std::string(back), longest);
    }
}

// ---------------------------------------------------------------- binding

using RunningBinding = ViewTest;

// A second variable of another code, or a name used twice in one action, reads within its
// buffer; absurd sample counts in a damaged graph are refused with a word in the log. The graph
// and everything else still draw, start after start.
TEST_F(RunningBinding, SecondVariablesAndAbsurdSampleCountsStillRun)
{
    for (int samples : {500, -1, 0, (1 << 24) + 1, 2000000000, INT32_MIN}) {
        SCOPED_TRACE(samples);
        GraphFields g;
        g.samples = samples;
        ViewBuilder b = blackPage();
        b.actions({act(KR_ACTION_MOVE_X, "x", 0, "x")}).graph(g);
        b.actions({act(KR_ACTION_MOVE_X, "x")}).rect(square());
        b.actions({act(KR_ACTION_MOVE_X, "x", 0, "label"), act(KR_ACTION_TEXT, "x", 0, "label"),
                   act(KR_ACTION_TEXT, "small", 0, "label"), act(KR_ACTION_TEXT, "label", 0, "wide"),
                   act(KR_ACTION_MOVE_Y, "label", 0, "x")})
            .text(TextFields());
        b.dataSection({internalSource({{KR_VAR_FLOAT, "x", "", {}}, {KR_VAR_TEXT, "label", "", {}},
                                        {KR_VAR_DOUBLE, "wide", "", {}}, {KR_VAR_INT8, "small", "", {}}})});
        setLogLevel(1);
        getLogMsg(nullptr, 0);
        VIEW_STRUCT* view = load(b);
        ASSERT_NE(view, nullptr);
        for (int start = 0; start < 3; ++start) {
            ASSERT_EQ(krViewStart(view), 0);
            const float x = 100;
            const double wide = 1e300;
            EXPECT_EQ(krVarSet(view, "x", &x), 1);
            EXPECT_EQ(krVarSet(view, "label", std::string(255, '7').c_str()), 1);
            EXPECT_EQ(krVarSet(view, "wide", &wide), 1);
            const Frame f = draw(view);
            // Moved by 100 from (100, 100).
            EXPECT_TRUE(PixelIs(f, 200, 100, Rgb{255, 0, 0}) && PixelIs(f, 100, 100, Rgb{0, 0, 0}));
            ASSERT_EQ(krViewStop(view), 0);
        }
        char log[4096];
        getLogMsg(log, sizeof log);
        EXPECT_EQ(std::string(log).find("samples not sampled") != std::string::npos, samples < 0 || samples > (1 << 24))
            << log;
    }
}

} // namespace
