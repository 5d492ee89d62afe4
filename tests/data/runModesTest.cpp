// Starting and stopping views: values that arrive in each mode, the data thread's life, and a
// plug-in that blocks. The sample plug-in is found through KOREL_HOME, as a host would find it.
#include "LoadedView.h"
#include "PluginDirs.h"
#include "ViewFixture.h"

#include <gtest/gtest.h>

#include <dirent.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

namespace {

using namespace k2dtest;
using korelgen::SourceFields;
using korelgen::ViewBuilder;
using Clock = std::chrono::steady_clock;

constexpr int kExampleType = 100;
constexpr int kRuns = 0, kThreadName = 2; // what an example variable gives

// The sample plug-in found through KOREL_HOME, from a working directory of the test's own.
class ExampleHome : public PluginDirs {
public:
    ExampleHome() : PluginDirs(Home::PluginDir) {}
};

// Constants, and the example's run count and calling thread; Run blocks for blockMs.
ViewBuilder sourcesView(int blockMs = 0)
{
    ViewBuilder b = blackPage();
    SourceFields constants;
    constants.id = 2;
    constants.varParamCount = 1;
    constants.variables = {{KR_VAR_FLOAT, "pi", "", {{0, "3.5"}}}, {KR_VAR_UINT8, "byte", "", {{0, "300"}}}};
    SourceFields example;
    example.id = kExampleType;
    example.dataParams = {{0, std::to_string(blockMs)}, {0, "test"}};
    example.varParamCount = 1;
    example.variables = {{KR_VAR_INT32, "runs", "", {{kRuns, ""}}}, {KR_VAR_TEXT, "thread", "", {{kThreadName, ""}}}};
    b.dataSection({constants, example});
    return b;
}

std::string valueOf(VIEW_STRUCT* view, const char* name)
{
    char text[256] = "";
    int result = krVarGetStr(view, name, text);
    return result < 0 ? "error " + std::to_string(result) : text;
}

int runsOf(VIEW_STRUCT* view)
{
    return std::atoi(valueOf(view, "runs").c_str());
}

// Threads of this process with the given name, and open file descriptors: what a run leaves.
int threadsNamed(const char* name)
{
    int n = 0;
    DIR* tasks = opendir("/proc/self/task");
    while (const dirent* task = tasks ? readdir(tasks) : nullptr) {
        std::ifstream comm(std::string("/proc/self/task/") + task->d_name + "/comm");
        std::string line;
        if (std::getline(comm, line) && line == name)
            ++n;
    }
    if (tasks)
        closedir(tasks);
    return n;
}

int entriesIn(const char* directory)
{
    int n = 0;
    DIR* dir = opendir(directory);
    while (dir && readdir(dir))
        ++n;
    if (dir)
        closedir(dir);
    return n;
}

TEST(RunModeStates, EachEntryAnswersOnlyInItsState)
{
    ExampleHome home;
    LoadedView loaded(sourcesView());
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);

    EXPECT_EQ(krViewStop(view), -3);
    EXPECT_EQ(krViewStopAnim(view), -3);
    EXPECT_EQ(krViewPutData(view, 0.5), -3);
    EXPECT_EQ(krViewSetHaltMode(view, 1), -3);
    EXPECT_EQ(krViewSetTime(view, 2.0f), 0);
    EXPECT_EQ(valueOf(view, "pi"), "error -3");

    ASSERT_EQ(krViewStart(view), 0);
    EXPECT_EQ(view->runMode, uint32_t(KR_RUN_SYNCHRONOUS));
    EXPECT_EQ(krViewStart(view), -3);
    EXPECT_EQ(krViewStartAnim(view), -3);
    EXPECT_EQ(krViewStopAnim(view), -3);
    EXPECT_EQ(krViewPutData(view, 0.5), 0);
    EXPECT_DOUBLE_EQ(view->time, 2.5);
    EXPECT_EQ(krViewSetHaltMode(view, 1), 0);
    EXPECT_EQ(krViewStop(view), 0);
    EXPECT_EQ(view->runMode, uint32_t(KR_RUN_STOPPED));

    // A start clears halt; the clock goes on from where it was.
    ASSERT_EQ(krViewStartAnim(view), 0);
    EXPECT_EQ(view->haltMode, 0u);
    EXPECT_EQ(krViewStopAnim(view), 0);
    EXPECT_EQ(krViewStop(view), -3);

    VIEW_STRUCT notAView = {};
    EXPECT_EQ(krViewStart(nullptr), -1);
    EXPECT_EQ(krViewStart(&notAView), -2);
    EXPECT_EQ(krViewStop(&notAView), -2);
}

class SynchronousMode : public ViewTest {
protected:
    ExampleHome home;
};

TEST_F(SynchronousMode, EachDrawRunsOneDataCycle)
{
    VIEW_STRUCT* view = load(sourcesView());
    ASSERT_EQ(krViewStart(view), 0);
    // Before the first draw no source has been asked.
    EXPECT_EQ(valueOf(view, "pi"), "0.000000");
    draw(view);
    EXPECT_EQ(valueOf(view, "pi"), "3.500000");
    EXPECT_EQ(valueOf(view, "byte"), "44");
    int first = runsOf(view);
    EXPECT_EQ(first, 1);
    for (int i = 0; i < 5; ++i)
        draw(view);
    EXPECT_EQ(runsOf(view), first + 5);
    // The drawing thread asks the source itself.
    EXPECT_NE(valueOf(view, "thread"), "Korel2D:Data");
    EXPECT_EQ(threadsNamed("Korel2D:Data"), 0);
    ASSERT_EQ(krViewStop(view), 0);

    // A new start opens the plug-in afresh: its count begins again.
    ASSERT_EQ(krViewStart(view), 0);
    draw(view);
    EXPECT_EQ(runsOf(view), 1);
    krViewStop(view);
}

TEST(AnimatedMode, TheDataThreadCyclesEveryTenMillisecondsWhileRunning)
{
    ExampleHome home;
    LoadedView loaded(sourcesView());
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(threadsNamed("Korel2D:Data"), 0);

    ASSERT_EQ(krViewStartAnim(view), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(threadsNamed("Korel2D:Data"), 1);
    int before = runsOf(view);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    int inHalfASecond = runsOf(view) - before;
    // 10 ms of pause plus the cycle: about 50; a loaded machine runs fewer.
    EXPECT_GE(inHalfASecond, 20);
    EXPECT_LE(inHalfASecond, 55);
    EXPECT_EQ(valueOf(view, "thread"), "Korel2D:Data");
    EXPECT_EQ(valueOf(view, "pi"), "3.500000");

    ASSERT_EQ(krViewStop(view), 0);
    EXPECT_EQ(threadsNamed("Korel2D:Data"), 0);
    EXPECT_EQ(valueOf(view, "runs"), "error -3");
}

TEST(AnimatedMode, StopDoesNotWaitForABlockedPlugin)
{
    ExampleHome home;
    for (bool freeAtOnce : {false, true}) {
        const std::vector<uint8_t> bytes = sourcesView(2000).bytes();
        VIEW_STRUCT* view = krViewLoadData(bytes.data(), bytes.size());
        ASSERT_NE(view, nullptr);
        ASSERT_EQ(krViewStartAnim(view), 0);
        // Let the thread enter the first Run, which sleeps for two seconds.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        auto before = Clock::now();
        EXPECT_EQ(krViewStop(view), 0);
        EXPECT_LT(Clock::now() - before, std::chrono::milliseconds(600));
        EXPECT_EQ(view->runMode, uint32_t(KR_RUN_STOPPED));
        if (!freeAtOnce) {
            // The thread comes back from Run into a stopped view, then ends on its own.
            std::this_thread::sleep_for(std::chrono::milliseconds(2200));
            EXPECT_EQ(threadsNamed("Korel2D:Data"), 0);
        }
        // The free waits for a thread still inside the plug-in before it unloads anything.
        EXPECT_EQ(krViewFree(view), 0);
        EXPECT_EQ(threadsNamed("Korel2D:Data"), 0);
    }
}

TEST(AnimatedMode, AThousandRoundsLeaveNoThreadAndNoOpenFile)
{
    ExampleHome home;
    LoadedView loaded(sourcesView());
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);
    // A first round lets the process settle: a sanitizer starts its own thread on demand.
    ASSERT_EQ(krViewStartAnim(view), 0);
    ASSERT_EQ(krViewStop(view), 0);
    const int threads = entriesIn("/proc/self/task");
    const int files = entriesIn("/proc/self/fd");
    for (int round = 1; round < 1000; ++round) {
        ASSERT_EQ(krViewStartAnim(view), 0) << round;
        ASSERT_EQ(krViewStop(view), 0) << round;
    }
    EXPECT_EQ(threadsNamed("Korel2D:Data"), 0);
    EXPECT_EQ(entriesIn("/proc/self/task"), threads);
    EXPECT_EQ(entriesIn("/proc/self/fd"), files);
}

} // namespace
