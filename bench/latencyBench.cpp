// From another process's write to the pixels: a view in the animated mode, drawn at 60 frames a
// second and read back after each frame, shows the parity of two counters, one sent in datagrams
// and one written into a shared-memory segment (the Calculator takes the parity, a square moves
// by it). A second thread sends counter after counter, each at a random moment once the last is
// on screen; the time from the write to the first frame read back that shows it is the latency.
// The bound is one data cycle (10 ms), one frame period and 5 ms; the summary prints the median
// and the worst of each source.
#include "Datagram.h"
#include "Korel2D.h"
#include "KshmSegment.h"
#include "OffscreenGl.h"
#include "ViewBuilder.h"
#include "benchCommon.h"

#include <GL/gl.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace korelgen;
using Clock = std::chrono::steady_clock;

constexpr int kWidth = 400, kHeight = 300;
constexpr float kPage[3] = {0, 0, 0};
constexpr int kCounters = 500;
constexpr auto kFramePeriod = std::chrono::microseconds(16667);
constexpr double kBoundMs = 10 + 16.667 + 5;
constexpr int kShift = 200; // pixels a square moves for an odd counter
constexpr int kLongestPauseMs = 40;

enum Source { kDatagram, kSegment, kSources };
const char* const kSourceNames[kSources] = {"datagram", "segment"};

int freePort()
{
    const int probe = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof address);
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
    close(probe);
    return ntohs(address.sin_port);
}

// A red square for the datagrams' counter, a green one for the segment's, each 200 pixels to
// the right while its counter is odd.
std::vector<uint8_t> parityView(int port, key_t key)
{
    char keyText[16];
    std::snprintf(keyText, sizeof keyText, "0x%x", unsigned(key));
    const SourceFields udp{KRD_TYPE_UDP, {{0, std::to_string(port)}, {0, "4"}, {0, ""}}, 1, {{KR_VAR_INT32, "udpCount", "", {{0, "0"}}}}};
    const SourceFields shm{KRD_TYPE_SHARED_MEMORY, {{0, keyText}, {0, ""}, {0, ""}, {0, ""}}, 1, {{KR_VAR_INT32, "shmCount", "", {{0, "0"}}}}};
    const SourceFields calculator{KRD_TYPE_CALCULATOR, {}, 2,
                                  {{KR_VAR_FLOAT, "udpParity", "", {{0, "udpCount % 2"}, {0, ""}}},
                                   {KR_VAR_FLOAT, "shmParity", "", {{0, "shmCount % 2"}, {0, ""}}}}};
    ViewBuilder b;
    b.page(0, 0, kWidth, kHeight, kPage[0], kPage[1], kPage[2]);
    const char* parities[kSources] = {"udpParity", "shmParity"};
    for (int s = 0; s < kSources; ++s) {
        ActionFields move;
        move.type = KR_ACTION_MOVE_X, move.var = parities[s];
        move.a0 = 0, move.a1 = 1, move.b0 = 0, move.b1 = kShift;
        RectFields square{20, 40.0f + 120 * s, 80, 100.0f + 120 * s};
        square.fill[0] = s == kDatagram, square.fill[1] = s == kSegment, square.fill[2] = 0;
        b.actions({move}).rect(square);
    }
    return b.dataSection({udp, shm, calculator}).bytes();
}

// Whether each square stands right of the middle in the frame read back.
void paritiesShown(const std::vector<uint8_t>& frame, int shown[kSources])
{
    for (int s = 0; s < kSources; ++s)
        shown[s] = -1;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const uint8_t* p = &frame[size_t(y * kWidth + x) * 4];
            for (int s = 0; s < kSources; ++s)
                if (p[s] > 128 && p[1 - s] < 64 && shown[s] == -1)
                    shown[s] = x > kWidth / 2;
        }
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct Rig {
    UdpSender* peer;
    KshmSegment* segment;
    WINDOW_STRUCT* window;
    VIEW_STRUCT* view;
};

// Runs the frames on this thread and the writes on another; the latencies of each source in ms.
// A counter not shown within a few seconds ends the run short.
void measure(Rig& rig, std::vector<double> latencies[kSources])
{
    std::atomic<int> shownUpTo[kSources] = {0, 0};
    std::atomic<bool> done{false};
    std::vector<Clock::time_point> sentAt(kCounters + 1);
    std::atomic<int> sent{0};
    std::thread writer([&] {
        korelbench::Lcg random(7);
        for (int32_t k = 1; k <= kCounters; ++k) {
            while (shownUpTo[kDatagram] < k - 1 || shownUpTo[kSegment] < k - 1)
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            std::this_thread::sleep_for(std::chrono::microseconds(random.below(kLongestPauseMs * 1000)));
            sentAt[size_t(k)] = Clock::now();
            rig.segment->put(0, &k, sizeof k, true);
            const int32_t bigEndian = int32_t(htonl(uint32_t(k)));
            rig.peer->send(&bigEndian, sizeof bigEndian);
            sent = k;
        }
        done = true;
    });
    constexpr auto kGiveUp = std::chrono::seconds(5);
    auto next = Clock::now(), progress = next;
    while (!done || shownUpTo[kDatagram] < kCounters || shownUpTo[kSegment] < kCounters) {
        next += kFramePeriod;
        std::this_thread::sleep_until(next);
        krWindowClear(rig.window, rig.view);
        krViewDraw(rig.window, rig.view, 0, 0, 1);
        const std::vector<uint8_t> frame = korelbench::readFrame(kWidth, kHeight);
        const Clock::time_point seen = Clock::now();
        int shown[kSources];
        paritiesShown(frame, shown);
        const int k = sent;
        for (int s = 0; s < kSources; ++s)
            if (k > shownUpTo[s] && shown[s] == k % 2) {
                latencies[s].push_back(std::chrono::duration<double, std::milli>(seen - sentAt[size_t(k)]).count());
                shownUpTo[s] = k;
                progress = seen;
            }
        if (seen - progress > kGiveUp)
            break;
    }
    // Lets a writer that waits for a counter never shown go on to its end.
    shownUpTo[kDatagram] = shownUpTo[kSegment] = kCounters;
    writer.join();
}

void BM_WriteToPixels(benchmark::State& state, Rig* rig)
{
    for (auto _ : state) {
        std::vector<double> latencies[kSources];
        measure(*rig, latencies);
        for (int s = 0; s < kSources; ++s) {
            if (latencies[s].size() != size_t(kCounters)) {
                state.SkipWithError((std::string(kSourceNames[s]) + ": counters never shown").c_str());
                return;
            }
            const double worst = *std::max_element(latencies[s].begin(), latencies[s].end());
            state.counters[std::string(kSourceNames[s]) + "_median_ms"] = median(latencies[s]);
            state.counters[std::string(kSourceNames[s]) + "_worst_ms"] = worst;
            std::printf("%s: %d counters, median %.1f ms, worst %.1f ms, bound %.1f ms: %s\n", kSourceNames[s],
                        kCounters, median(latencies[s]), worst, kBoundMs, worst <= kBoundMs ? "within" : "OVER");
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    KshmSegment segment(uniqueKshmKey(1), 64);
    const int port = freePort();
    UdpSender peer(port);
    korelbench::ViewFile file(parityView(port, segment.key()));
    korelgen::OffscreenGl gl;
    if (!korelbench::startDrawingProgram(&argc, argv, "korel2d_bench_latency", file, gl, kWidth, kHeight))
        return 1;
    if (!segment.ok() || !peer.ok()) {
        std::fprintf(stderr, "korel2d_bench_latency: no segment or no socket\n");
        return 1;
    }
    Rig rig{&peer, &segment, krWindowCreate(), krViewLoad(file.path.c_str())};
    if (!rig.window || krWindowInit(rig.window, kWidth, kHeight) != 0 || !rig.view || krViewStartAnim(rig.view) != 0) {
        std::fprintf(stderr, "korel2d_bench_latency: cannot load and start the view\n");
        return 1;
    }
    benchmark::RegisterBenchmark("BM_WriteToPixels", BM_WriteToPixels, &rig)->Iterations(1)->UseRealTime()->Unit(
        benchmark::kSecond);
    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    krViewStop(rig.view);
    krViewFree(rig.view);
    krWindowFree(rig.window);
    return 0;
}
