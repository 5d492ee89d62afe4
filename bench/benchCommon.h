// Pieces every benchmark program shares: a fixed random generator, a generated view as a file
// on disk, the read-only reference under any load, and a reporter that keeps the times for the
// summary each program prints after its run.
#pragma once

#include "Korel2D.h"
#include "OffscreenGl.h"
#include "ViewBuilder.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace korelbench {

// A generator of our own, so that every run and every standard library makes the same view.
class Lcg {
public:
    explicit Lcg(uint32_t seed = 20240601u) : state_(seed) {}
    int below(int n) { return int(next() % uint32_t(n)); }
    float unit() { return float(next() & 0xFFFF) / 65535.0f; }

private:
    uint32_t next()
    {
        state_ = state_ * 1664525u + 1013904223u;
        return state_ >> 8;
    }
    uint32_t state_;
};

// The view as a host finds it: a file in /tmp, removed with this object. `path` stays empty
// when the file could not be written.
class ViewFile {
public:
    explicit ViewFile(std::vector<uint8_t> content);
    ~ViewFile();
    ViewFile(const ViewFile&) = delete;
    ViewFile& operator=(const ViewFile&) = delete;

    const std::vector<uint8_t> bytes;
    std::string path;
};

// Reading the file's bytes: the floor under any load of it.
void readFileReference(benchmark::State& state, const ViewFile* file);
// krViewLoad and krViewFree of the file; `reference` names the benchmark it is held against,
// null for a load that is itself the reference.
void loadView(benchmark::State& state, const ViewFile* file, const char* reference);
// The bytes that `write` leaves in a file of its own, read back; empty when it wrote nothing.
std::vector<uint8_t> bytesWrittenBy(const std::function<void(const char* path)>& write);
// Elements and groups of a tree, all levels.
int countElements(const ELEMENT_STRUCT* list);

// The start every drawing benchmark program shares: its arguments taken by Google Benchmark,
// the view file written, an off-screen context of width x height made current. False, with
// the reason on standard error under the program's name, if any of it fails.
bool startDrawingProgram(int* argc, char** argv, const char* program, const ViewFile& file,
                         korelgen::OffscreenGl& gl, int width, int height);

// The projection and state the library's window set-up leaves, for a hand-written reference:
// window pixels as units, the viewport one pixel short in both directions, opaque colours
// without blending, no smoothing or stipples, lines one pixel wide, the page as clear colour.
void setUpLikeTheLibrary(int width, int height, const float page[3]);
// The colour buffer, RGBA rows from the bottom.
std::vector<uint8_t> readFrame(int width, int height);
// Pixels whose colour differs between two frames of readFrame, alpha aside.
long countDifferingPixels(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b);

// The software renderer's speed on this kind of machine drifts by tens of percent within a
// minute, more than the differences measured; frames drawn in turns see the same drift, so the
// median of their ratios, library over reference, is the figure to trust. Each frame is timed
// to its glFinish; `setUpReference`, untimed, runs before each reference frame.
double medianPairedRatio(int pairs, const std::function<void()>& library, const std::function<void()>& setUpReference,
                         const std::function<void()>& reference);

// A panel as real ones mix it, the same in every run: ten panels of ten blocks of a hundred
// elements of every kind but pictures, on a page of kMixedWidth x kMixedHeight; `actions` gives
// the actions of element or group number k, `sources` the data section. The view is written at
// `revision` (major * 100 + minor); `sources` have the form of 1.11 on, and older revisions get
// an empty section of their own form.
constexpr int kMixedWidth = 1024, kMixedHeight = 768;
constexpr int kMixedElements = 10000, kMixedGroups = 110;
using MixedActions = std::function<std::vector<korelgen::ActionFields>(int k)>;
std::vector<uint8_t> mixedView(const MixedActions& actions, const std::vector<korelgen::SourceFields>& sources = {},
                               int revision = 303);
// The actions the mixed panel is loaded with: element k moved by a variable and its fill
// coloured from three bands of another.
std::vector<korelgen::ActionFields> mixedActionPair(int k);

// Keeps each benchmark's real seconds per iteration, the median where runs are repeated.
class SummaryReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override;
    // Prints "<what> ratio: R", drawn over reference, when both benchmarks ran.
    void printRatio(const std::string& drawn, const std::string& reference, const char* what = "draw/reference") const;
    std::map<std::string, double> seconds;
};

// A frame benchmark as the drawing programs time it: milliseconds of real time, which is what
// a host waits (llvmpipe draws on threads of its own while this one waits in glFinish), after a
// second of frames, as the first ones of a process run slower by a varying amount.
benchmark::internal::Benchmark* timedAsFrames(benchmark::internal::Benchmark* benchmark);

} // namespace korelbench
