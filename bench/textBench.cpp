// A frame of live readouts: a thousand texts, each showing the formatted value of its own
// Internal variable (float, double or 32-bit integer) through a text action, every value
// changed before every frame. Measured against the same strings formatted, measured, placed
// and drawn by hand through the font layer. The summary prints the frame's ratio to its
// reference.
#include "Korel2D.h"
#include "OffscreenGl.h"
#include "ViewBuilder.h"
#include "benchCommon.h"
#include "glyph/GlyphKit.h"

#include <GL/gl.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace korelgen;
using korelbench::Lcg;
using korelbench::ViewFile;

constexpr int kWidth = 1024, kHeight = 768;
constexpr int kColumns = 25, kRows = 40, kCellWidth = 40, kCellHeight = 19;
constexpr int kMarginX = 12, kMarginY = 10;
constexpr float kPage[3] = {0.05f, 0.05f, 0.1f};
constexpr int kInternalSource = 5;
constexpr const char* kFamily = "Arial";
constexpr int kStyle = GK_PLAIN;
constexpr int kSizes[2] = {12, 14};
constexpr int kAligns[3] = {KR_POS_LEFT, KR_POS_CENTRE, KR_POS_RIGHT};
// What a panel designer types as the placeholder that fixes each readout's box.
const char kPlaceholder[] = "0000";

// One readout as both sides know it.
struct Readout {
    int type; // KR_VAR_FLOAT, KR_VAR_DOUBLE or KR_VAR_INT32
    const char* format;
    int align, size;
    float x, y; // centre of the placeholder's box
    float colour[4];
    double base, step; // see valueAt
};

const char* const kFloatFormats[] = {"%.2f", "%.1f bar", "%5.1f"};
const char* const kDoubleFormats[] = {"%.3f", "%+.2f kW", "%8.2f"};
const char* const kIntegerFormats[] = {"%d", "%d rpm", "%05d"};

std::vector<Readout> makeReadouts()
{
    Lcg random;
    std::vector<Readout> readouts;
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            const int k = int(readouts.size());
            Readout r{};
            const int pick = random.below(3);
            switch (k % 3) {
            case 0:
                r.type = KR_VAR_FLOAT, r.format = kFloatFormats[pick];
                r.base = 100 * random.unit(), r.step = 0.37;
                break;
            case 1:
                r.type = KR_VAR_DOUBLE, r.format = kDoubleFormats[pick];
                r.base = -50 + 100 * random.unit(), r.step = 0.0113;
                break;
            default:
                r.type = KR_VAR_INT32, r.format = kIntegerFormats[pick];
                r.base = double(random.below(9000)), r.step = 7;
                break;
            }
            r.align = kAligns[random.below(3)];
            r.size = kSizes[random.below(2)];
            r.x = float(kMarginX + column * kCellWidth + kCellWidth / 2);
            r.y = float(kMarginY + row * kCellHeight + kCellHeight / 2);
            for (int i = 0; i < 3; ++i)
                r.colour[i] = 0.4f + 0.6f * random.unit();
            r.colour[3] = 1;
            readouts.push_back(r);
        }
    }
    return readouts;
}

// Frame n's value of a readout: it moves every frame, wrapped into a band so that the strings
// keep about their length.
double valueAt(const Readout& r, int64_t frame)
{
    const double travelled = std::fmod(double(frame) * r.step, 100.0);
    return r.type == KR_VAR_INT32 ? std::floor(r.base + travelled * 10) : r.base + travelled;
}

std::string varName(int k)
{
    return "v" + std::to_string(k);
}

std::vector<uint8_t> textView(const std::vector<Readout>& readouts)
{
    ViewBuilder b;
    b.page(0, 0, kWidth, kHeight, kPage[0], kPage[1], kPage[2]);
    SourceFields internal;
    internal.id = kInternalSource;
    for (size_t k = 0; k < readouts.size(); ++k) {
        const Readout& r = readouts[k];
        ActionFields a;
        a.id = int(k);
        a.type = KR_ACTION_TEXT;
        a.var = varName(int(k));
        a.format = r.format;
        b.actions({a});
        TextFields t;
        t.x = r.x, t.y = r.y;
        std::copy(r.colour, r.colour + 4, t.color);
        t.align = r.align;
        t.fontFamily = kFamily;
        t.fontStyle = kStyle;
        t.fontSize = t.textSize = r.size;
        t.text = kPlaceholder;
        b.text(t);
        internal.variables.push_back({r.type, a.var, "0", {}});
    }
    return b.dataSection({internal}).bytes();
}

struct Panel {
    std::vector<Readout> readouts = makeReadouts();
    ViewFile file{textView(readouts)};
};

// ---------------------------------------------------------------- the library

// A started view whose host writes every variable's buffer before each frame, as a host with
// fresh readings does.
struct LiveTexts {
    const Panel& panel;
    VIEW_STRUCT* view = nullptr;
    WINDOW_STRUCT* window = nullptr;
    std::vector<void*> buffers;

    explicit LiveTexts(const Panel& p) : panel(p) {}
    bool start()
    {
        view = krViewLoad(panel.file.path.c_str());
        window = krWindowCreate();
        if (!view || krWindowInit(window, kWidth, kHeight) != 0 || krViewStart(view) != 0)
            return false;
        for (size_t k = 0; k < panel.readouts.size(); ++k) {
            buffers.push_back(krVarGetAddr(view, varName(int(k)).c_str()));
            if (!buffers.back())
                return false;
        }
        return true;
    }
    void write(int64_t frame)
    {
        for (size_t k = 0; k < buffers.size(); ++k) {
            const Readout& r = panel.readouts[k];
            const double v = valueAt(r, frame);
            switch (r.type) {
            case KR_VAR_FLOAT: *static_cast<float*>(buffers[k]) = float(v); break;
            case KR_VAR_DOUBLE: *static_cast<double*>(buffers[k]) = v; break;
            default: *static_cast<int32_t*>(buffers[k]) = int32_t(v); break;
            }
        }
    }
    int draw(int64_t frame)
    {
        write(frame);
        krWindowClear(window, view);
        return krViewDraw(window, view, 0, 0, 1);
    }
    ~LiveTexts()
    {
        krWindowFree(window);
        krViewFree(view);
    }
};

// In mode 1 each draw runs the data cycle itself: one thread, like the reference.
void BM_DrawTextFrame(benchmark::State& state, LiveTexts* live)
{
    int64_t frame = 0;
    for (auto _ : state) {
        if (live->draw(++frame) != 0) {
            state.SkipWithError("krViewDraw failed");
            break;
        }
        glFinish(); // llvmpipe renders on its own threads; count its work too
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(live->buffers.size()));
    state.SetLabel("reference BM_TextImmediateReference");
}

// ---------------------------------------------------------------- by hand

// A readout as a hand-written panel keeps it: its value in its own type, its font, and the
// half width of its placeholder, measured once, which left and right alignment keep.
struct HandReadout {
    const Readout* readout;
    float floatValue;
    double doubleValue;
    int32_t intValue;
    GK_FONT font;
    float halfPlaceholder;
};

struct HandPanel {
    std::vector<HandReadout> items;
    GK_FONT fonts[2] = {0, 0};

    explicit HandPanel(const Panel& panel)
    {
        for (int i = 0; i < 2; ++i)
            fonts[i] = gkFontCreate(kFamily, kStyle, kSizes[i]);
        for (const Readout& r : panel.readouts) {
            HandReadout h{&r, 0, 0, 0, fonts[r.size == kSizes[0] ? 0 : 1], 0};
            int metric[2] = {0, 0};
            gkFontStringMetric(h.font, kPlaceholder, metric);
            h.halfPlaceholder = float(metric[0] * 0.5);
            items.push_back(h);
        }
    }
    ~HandPanel()
    {
        for (GK_FONT f : fonts)
            gkFontFree(f);
    }
    HandPanel(const HandPanel&) = delete;
    HandPanel& operator=(const HandPanel&) = delete;

    void write(int64_t frame)
    {
        for (HandReadout& h : items) {
            const double v = valueAt(*h.readout, frame);
            switch (h.readout->type) {
            case KR_VAR_FLOAT: h.floatValue = float(v); break;
            case KR_VAR_DOUBLE: h.doubleValue = v; break;
            default: h.intValue = int32_t(v); break;
            }
        }
    }

    // Per readout: its value printed through its format, the string measured, the matrix pushed
    // and moved to the string's corner as the alignment wants it, the colour, the string.
    void draw() const
    {
        glClear(GL_COLOR_BUFFER_BIT);
        char text[256];
        for (const HandReadout& h : items) {
            const Readout& r = *h.readout;
            switch (r.type) {
            case KR_VAR_FLOAT: std::snprintf(text, sizeof text, r.format, double(h.floatValue)); break;
            case KR_VAR_DOUBLE: std::snprintf(text, sizeof text, r.format, h.doubleValue); break;
            default: std::snprintf(text, sizeof text, r.format, h.intValue); break;
            }
            int metric[2];
            gkFontStringMetric(h.font, text, metric);
            const float width = float(metric[0]);
            const float dx = r.align == KR_POS_LEFT     ? -h.halfPlaceholder
                             : r.align == KR_POS_CENTRE ? -width * 0.5f
                                                        : h.halfPlaceholder - width;
            glPushMatrix();
            glTranslatef(r.x + dx, r.y - float(r.size) * 0.5f, 0);
            glColor4fv(r.colour);
            gkFontRender(h.font, text);
            glPopMatrix();
        }
    }
};

// Reference for BM_DrawTextFrame: the same strings in the same fonts and places, with none
// of the library's walk, actions or data cycle.
void BM_TextImmediateReference(benchmark::State& state, HandPanel* hand)
{
    korelbench::setUpLikeTheLibrary(kWidth, kHeight, kPage);
    int64_t frame = 0;
    for (auto _ : state) {
        hand->write(++frame);
        hand->draw();
        glFinish();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(hand->items.size()));
}

// ---------------------------------------------------------------- the comparison

// A ratio means something only if both sides draw the same picture: the pixels that differ,
// at the values of one frame.
long differingPixels(LiveTexts& live, HandPanel& hand, int64_t frame)
{
    live.draw(frame);
    std::vector<uint8_t> library = korelbench::readFrame(kWidth, kHeight);
    korelbench::setUpLikeTheLibrary(kWidth, kHeight, kPage);
    hand.write(frame);
    hand.draw();
    return korelbench::countDifferingPixels(library, korelbench::readFrame(kWidth, kHeight));
}

} // namespace

int main(int argc, char** argv)
{
    Panel panel;
    korelgen::OffscreenGl gl;
    if (!korelbench::startDrawingProgram(&argc, argv, "korel2d_bench_text", panel.file, gl, kWidth, kHeight))
        return 1;
    LiveTexts live(panel);
    if (!live.start()) {
        std::fprintf(stderr, "korel2d_bench_text: cannot load and start the view\n");
        return 1;
    }
    HandPanel hand(panel);
    std::printf("%zu live texts, %zu bytes; %s on %s\n", panel.readouts.size(), panel.file.bytes.size(), gl.kind(),
                reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    const long differing = differingPixels(live, hand, 123);
    std::printf("library and reference differ in %ld pixels\n", differing);
    if (differing != 0) {
        std::fprintf(stderr, "korel2d_bench_text: library and reference draw different pictures\n");
        return 1;
    }

    korelbench::timedAsFrames(benchmark::RegisterBenchmark("BM_DrawTextFrame", BM_DrawTextFrame, &live));
    korelbench::timedAsFrames(
        benchmark::RegisterBenchmark("BM_TextImmediateReference", BM_TextImmediateReference, &hand));
    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    reporter.printRatio("BM_DrawTextFrame", "BM_TextImmediateReference");
    int64_t frame = 0;
    korelbench::setUpLikeTheLibrary(kWidth, kHeight, kPage);
    const double paired = korelbench::medianPairedRatio(
        200, [&] { live.draw(++frame); }, [] { korelbench::setUpLikeTheLibrary(kWidth, kHeight, kPage); },
        [&] {
            hand.write(frame);
            hand.draw();
        });
    std::printf("draw/reference ratio, median of 200 frames drawn in turns: %.2f\n", paired);
    return 0;
}
