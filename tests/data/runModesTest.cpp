// Starting and stopping views: values that arrive in each mode, the data thread's life, and a
// plug-in that blocks. The sample plug-in is found through KOREL_HOME, as a host would find it.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "PluginDirs.h"
#include "ViewFixture.h"
#include "dataViews.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace {

using namespace k2dtest;
using korelgen::SourceFields;
using korelgen::ViewBuilder;

constexpr const char* kDataThread = "Korel2D:Data";

// Constants, and the example's run count (item 0) and calling thread (item 2); Run blocks for
// blockMs. A graph samples pi at 1000 per second in a window of 8.
ViewBuilder sourcesView(int blockMs = 0)
{
    SourceFields constants{2, {}, 1, {{KR_VAR_FLOAT, "pi", "", {{0, "3.5"}}}, {KR_VAR_UINT8, "byte", "", {{0, "300"}}}}};
    SourceFields example{100, {{0, std::to_string(blockMs)}, {0, "test"}}, 1,
                         {{KR_VAR_INT32, "runs", "", {{0, ""}}}, {KR_VAR_TEXT, "thread", "", {{2, ""}}}}};
    korelgen::ActionFields trace;
    trace.type = KR_ACTION_GRAPH, trace.var = "pi";
    korelgen::GraphFields graph;
    graph.rate = 1000, graph.samples = 8;
    return blackPage().actions({trace}).graph(graph).dataSection({constants, example});
}

// Entries of a /proc directory; with a name, only the threads of this process called so.
int entriesIn(const char* directory, const char* threadName = nullptr)
{
    int n = 0;
    std::error_code error; // a thread may end while its entry is read
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        std::ifstream comm(entry.path() / "comm");
        std::string line;
        n += !threadName || (std::getline(comm, line) && line == threadName);
    }
    return n;
}

int dataThreads()
{
    return entriesIn("/proc/self/task", kDataThread);
}

class SynchronousMode : public ViewTest {};

// Each entry answers only in its state; in mode 1 each draw runs one data cycle.
TEST_F(SynchronousMode, EachDrawRunsOneDataCycle)
{
    PluginDirs home(PluginDirs::Home::PluginDir);
    VIEW_STRUCT* view = load(sourcesView());
    ASSERT_NE(view, nullptr);
    VIEW_STRUCT notAView = {};
    EXPECT_EQ(std::vector<int>({krViewStop(view), krViewPutData(view, 0.5), krViewSetHaltMode(view, 1),
                                krViewSetTime(view, 2.0f), krViewStart(&notAView), krViewStart(view), krViewStart(view),
                                krViewStartAnim(view), krViewStopAnim(view)}),
              std::vector<int>({-3, -3, -3, 0, -2, 0, -3, -3, -3}));
    // Before the first draw no source has been asked.
    EXPECT_EQ(read(view, "pi"), "0.000000");
    draw(view);
    EXPECT_EQ(read(view, "pi") + " " + read(view, "byte") + " " + read(view, "runs"), "3.500000 44 1");
    for (int i = 0; i < 5; ++i)
        draw(view);
    EXPECT_EQ(read(view, "runs"), "6");
    // The drawing thread asks the source itself.
    EXPECT_NE(read(view, "thread"), kDataThread);
    EXPECT_EQ(dataThreads(), 0);
    ASSERT_EQ(krViewStop(view), 0);

    // A new start opens the plug-in afresh: its count begins again.
    ASSERT_EQ(krViewStart(view), 0);
    draw(view);
    EXPECT_EQ(read(view, "runs"), "1");
    EXPECT_EQ(krViewPutData(view, 0.5), 0);
    EXPECT_DOUBLE_EQ(view->time, 2.5);
    EXPECT_EQ(krViewSetHaltMode(view, 1), 0);
    ASSERT_EQ(krViewStop(view), 0);
    // A start clears halt; the clock goes on from where it was.
    ASSERT_EQ(krViewStartAnim(view), 0);
    EXPECT_EQ(view->haltMode, 0u);
    EXPECT_EQ(krViewStopAnim(view), 0);
    EXPECT_EQ(krViewStop(view), -3);
}

// One data thread cycles every ten milliseconds while the view runs, feeding the graph up to its
// last cycle whatever halts and clock steps the host sent meanwhile; a thousand starts and
// stops after it leave no thread and no open file behind.
TEST(AnimatedMode, TheDataThreadCyclesWhileRunningAndLeavesNothingBehind)
{
    PluginDirs home(PluginDirs::Home::PluginDir);
    LoadedView loaded(sourcesView());
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(krViewStartAnim(view), 0);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(krViewSetHaltMode(view, 1 - i % 2) + krViewPutData(view, 0.001), 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(dataThreads(), 1);
    const double before = number(view, "runs");
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    // 10 ms of pause plus the cycle: about 50; a loaded machine runs fewer.
    EXPECT_GE(number(view, "runs") - before, 20);
    EXPECT_LE(number(view, "runs") - before, 55);
    EXPECT_EQ(read(view, "thread") + " " + read(view, "pi"), std::string(kDataThread) + " 3.500000");
    ASSERT_EQ(krViewStop(view), 0);
    EXPECT_EQ(dataThreads(), 0);
    EXPECT_EQ(read(view, "runs"), "<-3>");
    const ACTION_STRUCT* trace = view->elements->actions;
    EXPECT_EQ(std::vector<float>(trace->outY, trace->outY + trace->outSize), std::vector<float>(9, 3.5f));
    EXPECT_LT(view->time - static_cast<GRAPH_STRUCT*>(view->elements->data)->xmin, 0.02);

    // Counted only now that the process has settled: a sanitizer starts its own thread on demand.
    const int threads = entriesIn("/proc/self/task");
    const int files = entriesIn("/proc/self/fd");
    for (int round = 1; round < 1000; ++round) {
        ASSERT_EQ(krViewStartAnim(view), 0) << round;
        ASSERT_EQ(krViewStop(view), 0) << round;
    }
    EXPECT_EQ(entriesIn("/proc/self/task"), threads);
    EXPECT_EQ(entriesIn("/proc/self/fd"), files);
}

// A stop gives the data thread half a second; one blocked in a plug-in's Run for three is left
// to come back on its own into a stopped view, and the free waits for it before unloading.
TEST(AnimatedMode, StopDoesNotWaitForABlockedPlugin)
{
    PluginDirs home(PluginDirs::Home::PluginDir);
    for (bool freeAtOnce : {false, true}) {
        const std::vector<uint8_t> bytes = sourcesView(3000).bytes();
        VIEW_STRUCT* view = krViewLoadData(bytes.data(), bytes.size());
        ASSERT_NE(view, nullptr);
        ASSERT_EQ(krViewStartAnim(view), 0);
        // The thread holds the view's lock through a cycle: once it is busy, the first Run blocks.
        ASSERT_TRUE(waitFor([view] {
            return pthread_mutex_trylock(&view->mutex) != 0 || pthread_mutex_unlock(&view->mutex) != 0;
        })) << "the data thread never held the view's lock";
        const auto before = std::chrono::steady_clock::now();
        EXPECT_EQ(krViewStop(view), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
        EXPECT_EQ(dataThreads(), 1); // still inside Run
        EXPECT_EQ(read(view, "pi"), "<-3>");
        EXPECT_EQ(krViewResetGraph(view, 0), 0); // the graph is the host's alone now
        if (!freeAtOnce) {
            EXPECT_TRUE(waitFor([] { return dataThreads() == 0; })); // back into a stopped view, it ends
            EXPECT_EQ(view->elements->actions->inCount, 0);          // and feeds no graph of it
        }
        EXPECT_EQ(krViewFree(view), 0);
        EXPECT_EQ(dataThreads(), 0);
    }
}

} // namespace
