#include "benchCommon.h"

#include "Korel2D.h"

#include <GL/gl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace korelbench {

ViewFile::ViewFile(std::vector<uint8_t> content) : bytes(std::move(content))
{
    char name[] = "/tmp/korel2d-benchXXXXXX.k";
    int fd = mkstemps(name, 2);
    if (fd >= 0 && write(fd, bytes.data(), bytes.size()) == ssize_t(bytes.size()))
        path = name;
    if (fd >= 0)
        close(fd);
}

ViewFile::~ViewFile()
{
    if (!path.empty())
        unlink(path.c_str());
}

void readFileReference(benchmark::State& state, const ViewFile* file)
{
    std::vector<uint8_t> buffer(file->bytes.size());
    for (auto _ : state) {
        FILE* stream = fopen(file->path.c_str(), "rb");
        size_t got = stream ? fread(buffer.data(), 1, buffer.size(), stream) : 0;
        if (stream)
            fclose(stream);
        if (got != buffer.size()) {
            state.SkipWithError("cannot read the view file");
            break;
        }
        benchmark::DoNotOptimize(buffer.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(buffer.size()));
}

void loadView(benchmark::State& state, const ViewFile* file, const char* reference)
{
    for (auto _ : state) {
        VIEW_STRUCT* view = krViewLoad(file->path.c_str());
        if (!view) {
            state.SkipWithError("krViewLoad failed");
            break;
        }
        // Only the load is measured; giving the view back is the host's later business.
        state.PauseTiming();
        krViewFree(view);
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(file->bytes.size()));
    state.counters["file_bytes"] = double(file->bytes.size());
    if (reference)
        state.SetLabel(std::string("reference ") + reference);
}

std::vector<uint8_t> bytesWrittenBy(const std::function<void(const char* path)>& write)
{
    char name[] = "/tmp/korel2d-benchXXXXXX";
    const int fd = mkstemp(name);
    if (fd < 0)
        return {};
    close(fd);
    write(name);
    std::ifstream in(name, std::ios::binary);
    std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    unlink(name);
    return bytes;
}

int countElements(const ELEMENT_STRUCT* list)
{
    int n = 0;
    for (; list; list = list->next)
        n += 1 + countElements(list->child);
    return n;
}

void SummaryReporter::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs)
        if (!run.error_occurred && (run.run_type == Run::RT_Iteration || run.aggregate_name == "median"))
            seconds[run.run_name.function_name] =
                run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
    ConsoleReporter::ReportRuns(runs);
}

void SummaryReporter::printRatio(const std::string& drawn, const std::string& reference, const char* what) const
{
    if (seconds.count(drawn) && seconds.count(reference))
        std::printf("%s ratio: %.2f\n", what, seconds.at(drawn) / seconds.at(reference));
}

benchmark::internal::Benchmark* timedAsFrames(benchmark::internal::Benchmark* benchmark)
{
    return benchmark->Unit(benchmark::kMillisecond)->MinWarmUpTime(1.0)->UseRealTime();
}


// ---------------------------------------------------------------- the mixed panel

namespace {

using namespace korelgen;

constexpr int kPanels = 10, kBlocksPerPanel = 10, kElementsPerBlock = 100;
static_assert(kPanels * kBlocksPerPanel * kElementsPerBlock == kMixedElements, "");
static_assert(kPanels * (kBlocksPerPanel + 1) == kMixedGroups, "");

// Per block of 100: one text (1 %) and, in every tenth block, one graph (0.1 %). Each of them
// builds a font when loaded, which costs milliseconds and would otherwise measure the font
// layer rather than the reader. Texts share two fonts, graphs their fixed one.
constexpr int kGraphEveryNthBlock = 10;
const char* const kTextFonts[] = {"Helvetica [fixed]", "Arial"};
// Sources took their present form, and older revisions a section of their own, at 1.11.
constexpr int kFirstPresentSourcesRevision = 111;

void randomColor(Lcg& random, float rgba[4])
{
    for (int i = 0; i < 3; ++i)
        rgba[i] = random.unit();
    rgba[3] = 1;
}

// One element of a kind chosen by its place in the block; slot 0 holds the rare kinds.
void writeElement(ViewBuilder& b, Lcg& random, int block, int slot, int k, const MixedActions& actions)
{
    const float x = float(random.below(kMixedWidth - 100)), y = float(random.below(kMixedHeight - 100));
    b.actions(actions(k));
    if (slot == 0 && block % kGraphEveryNthBlock == 0) {
        GraphFields g;
        g.x = x, g.y = y;
        b.graph(g);
    } else if (slot == 0) {
        TextFields t;
        t.x = x, t.y = y;
        t.fontFamily = kTextFonts[block % 2];
        t.fontSize = t.textSize = 12;
        t.text = "Tank " + std::to_string(k);
        b.text(t);
    } else if (slot == 1) {
        b.scissor(x, y, x + 400, y + 300);
    } else {
        switch (slot % 9) {
        case 0: {
            RectFields r;
            r.x0 = x, r.y0 = y, r.x1 = x + 40, r.y1 = y + 20;
            randomColor(random, r.fill);
            b.rect(r);
            break;
        }
        case 1: {
            LineFields l;
            l.x1 = x, l.y1 = y, l.x2 = x + float(random.below(80)), l.y2 = y + float(random.below(80));
            b.line(l);
            break;
        }
        case 2:
        case 3: {
            CircleFields c;
            c.x = x, c.y = y;
            randomColor(random, c.fill);
            if (slot % 9 == 2)
                b.circle(c);
            else
                b.arc(c);
            break;
        }
        case 4:
        case 5: {
            PolyFields p;
            p.points.clear();
            for (int i = 0; i < 6; ++i)
                p.points.push_back({i, x + float(random.below(60)), y + float(random.below(60))});
            if (slot % 9 == 4) {
                b.polyline(p);
            } else {
                p.fillOn = 1;
                b.cpoly(p);
            }
            break;
        }
        case 6: {
            ButtonFields s;
            s.x0 = x, s.y0 = y, s.x1 = x + 60, s.y1 = y + 25;
            b.button(s);
            break;
        }
        case 7: {
            SliderFields s;
            s.x = x, s.y = y;
            b.slider(s);
            break;
        }
        default: {
            RectFields r;
            r.x0 = x, r.y0 = y, r.x1 = x + 10, r.y1 = y + 30;
            r.strokeOn = 1;
            b.rect(r);
            break;
        }
        }
    }
}

} // namespace

std::vector<ActionFields> mixedActionPair(int k)
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

std::vector<uint8_t> mixedView(const MixedActions& actions, const std::vector<SourceFields>& sources, int revision)
{
    Lcg random;
    ViewBuilder b(revision / 100, revision % 100);
    b.page(0, 0, kMixedWidth, kMixedHeight, 0.1f, 0.1f, 0.15f);
    int k = 0;
    for (int p = 0; p < kPanels; ++p) {
        b.beginGroup(kBlocksPerPanel, "panel");
        for (int block = p * kBlocksPerPanel; block < (p + 1) * kBlocksPerPanel; ++block) {
            b.beginGroup(kElementsPerBlock, "block");
            for (int slot = 0; slot < kElementsPerBlock; ++slot)
                writeElement(b, random, block, slot, k++, actions);
            b.actions(actions(k++)).endGroup();
        }
        b.actions(actions(k++)).endGroup();
    }
    if (revision < kFirstPresentSourcesRevision)
        return b.oldDataSection({}).bytes();
    return b.dataSection(sources).bytes();
}

} // namespace korelbench

void korelbench::setUpLikeTheLibrary(int width, int height, const float page[3])
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width, 0, height, -1, 1);
    glViewport(0, 0, width - 1, height - 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_BLEND);
    glDisable(GL_LINE_SMOOTH);
    glDisable(GL_LINE_STIPPLE);
    glDisable(GL_POLYGON_STIPPLE);
    glLineWidth(1);
    glClearColor(page[0], page[1], page[2], 0);
}

std::vector<uint8_t> korelbench::readFrame(int width, int height)
{
    std::vector<uint8_t> pixels(size_t(width) * size_t(height) * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

long korelbench::countDifferingPixels(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b)
{
    long differing = 0;
    for (size_t i = 0; i + 3 < a.size() && i + 3 < b.size(); i += 4)
        differing += a[i] != b[i] || a[i + 1] != b[i + 1] || a[i + 2] != b[i + 2];
    return differing;
}

namespace {

double millisecondsOf(const std::function<void()>& draw)
{
    auto start = std::chrono::steady_clock::now();
    draw();
    glFinish();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

double korelbench::medianPairedRatio(int pairs, const std::function<void()>& library,
                                     const std::function<void()>& setUpReference,
                                     const std::function<void()>& reference)
{
    std::vector<double> ratios;
    for (int i = 0; i < pairs; ++i) {
        const double took = millisecondsOf(library);
        setUpReference();
        ratios.push_back(took / millisecondsOf(reference));
    }
    std::sort(ratios.begin(), ratios.end());
    return ratios[ratios.size() / 2];
}

bool korelbench::startDrawingProgram(int* argc, char** argv, const char* program, const ViewFile& file,
                                     korelgen::OffscreenGl& gl, int width, int height)
{
    benchmark::Initialize(argc, argv);
    if (benchmark::ReportUnrecognizedArguments(*argc, argv))
        return false;
    std::string why = "cannot write the view file";
    if (file.path.empty() || !gl.open(width, height, &why)) {
        std::fprintf(stderr, "%s: %s\n", program, why.c_str());
        return false;
    }
    return true;
}
