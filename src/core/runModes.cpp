// Starting and stopping a view, and the data thread of the animated mode.
//
// A stop gives the data thread 0.5 s to end. A thread still inside a source after that (a
// plug-in blocking in Run) is not waited for, but nothing is closed or unloaded under it: the
// sources stay open until the thread has ended, which the next start or the free waits for.
#include "KorelEdit.h"
#include "actions/actions.h"
#include "base/base.h"
#include "core/handles.h"
#include "core/runModes.h"
#include "data/data.h"

#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kCyclePause = std::chrono::milliseconds(10);
constexpr auto kStopWait = std::chrono::milliseconds(500);

// The data thread and what wakes it: a stop needn't wait out the pause between two cycles.
struct DataThread {
    pthread_t thread{};
    std::mutex wakeLock;
    std::condition_variable wake;
    bool done = false;
};

DataThread* dataThreadOf(const VIEW_STRUCT* view)
{
    return static_cast<DataThread*>(view->dataThread);
}

uint32_t runModeSeenByThread(VIEW_STRUCT* view)
{
    return __atomic_load_n(&view->runMode, __ATOMIC_ACQUIRE);
}

void* runDataCycles(void* argument)
{
    VIEW_STRUCT* view = static_cast<VIEW_STRUCT*>(argument);
    DataThread* self = dataThreadOf(view);
    for (;;) {
        pthread_mutex_lock(&view->mutex);
        bool running = runModeSeenByThread(view) != KR_RUN_STOPPED;
        if (running) {
            fillDP(view->dataTypes);
            // A stop that came while a source blocked has handed clock and graphs back to the
            // host, which no longer locks for them.
            if (runModeSeenByThread(view) != KR_RUN_STOPPED) {
                view->time = apiGetTime() - view->startTime;
                fillActions(view->elements, int(view->haltMode), view->time);
            }
        }
        pthread_mutex_unlock(&view->mutex);
        if (!running)
            break;
        std::unique_lock<std::mutex> lock(self->wakeLock);
        if (self->wake.wait_for(lock, kCyclePause, [view] { return runModeSeenByThread(view) == KR_RUN_STOPPED; }))
            break;
    }
    __atomic_store_n(&view->threadDone, 1u, __ATOMIC_RELEASE);
    {
        std::lock_guard<std::mutex> lock(self->wakeLock);
        self->done = true;
    }
    self->wake.notify_all();
    return nullptr;
}

void joinDataThread(VIEW_STRUCT* view)
{
    DataThread* self = dataThreadOf(view);
    pthread_join(self->thread, nullptr);
    delete self;
    view->dataThread = nullptr;
}

// Ends the thread within the stop's time limit; true if it ended and was joined.
bool endDataThread(VIEW_STRUCT* view)
{
    DataThread* self = dataThreadOf(view);
    if (!self)
        return true;
    bool ended;
    {
        std::unique_lock<std::mutex> lock(self->wakeLock);
        __atomic_store_n(&view->runMode, uint32_t(KR_RUN_STOPPED), __ATOMIC_RELEASE);
        self->wake.notify_all();
        ended = self->wake.wait_until(lock, Clock::now() + kStopWait, [self] { return self->done; });
    }
    if (ended)
        joinDataThread(view);
    return ended;
}

void closeSourcesIfFree(VIEW_STRUCT* view)
{
    if (view->sourcesOpen && !view->dataThread) {
        closeDataSources(view->dataTypes);
        view->sourcesOpen = 0;
    }
}

void forgetVariables(VIEW_STRUCT* view)
{
    mpiHashClear(view->varHash);
    setElementAttr(view->elements);
    closeSourcesIfFree(view);
}

int startView(VIEW_STRUCT* view, uint32_t mode)
{
    if (int check = checkView(view))
        return check;
    if (view->runMode != KR_RUN_STOPPED)
        return -3;
    finishPendingStop(view);
    view->startTime = apiGetTime();
    resetAllGraphs(view->elements, 0.0f);
    resetAllPoly(view->elements);
    openDataSources(view->dataTypes);
    callStartView(view->dataTypes);
    view->sourcesOpen = 1;
    // After StartView, which may have replaced a source's variables.
    assignVariables(view->elements, view->dataTypes);
    assignMovePoly(view->elements);
    for (DD_DATA_TYPE_STRUCT* source = view->dataTypes; source; source = source->next)
        for (VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next)
            mpiHashInsertAscii(view->varHash, variable->name, variable);
    writeDefault(view->dataTypes);
    view->haltMode = 0;
    view->planeDirty = 1;
    view->pickedElement = nullptr;
    view->pickEvent = -1;
    view->threadDone = 0;
    view->runMode = mode;
    if (mode != KR_RUN_ANIMATED)
        return 0;

    DataThread* self = new DataThread;
    view->dataThread = self;
    if (pthread_create(&self->thread, nullptr, runDataCycles, view) != 0) {
        logMsg(1, "krViewStartAnim: no data thread\n");
        delete self;
        view->dataThread = nullptr;
        view->runMode = KR_RUN_STOPPED;
        forgetVariables(view);
        return -3;
    }
    pthread_setname_np(self->thread, "Korel2D:Data");
    return 0;
}

} // namespace

void finishPendingStop(VIEW_STRUCT* view)
{
    if (view->runMode == KR_RUN_STOPPED && view->dataThread)
        joinDataThread(view);
    closeSourcesIfFree(view);
}

int krViewStart(VIEW_STRUCT* view)
{
    return startView(view, KR_RUN_SYNCHRONOUS);
}

int krViewStartAnim(VIEW_STRUCT* view)
{
    return startView(view, KR_RUN_ANIMATED);
}

int krViewStopAnim(VIEW_STRUCT* view)
{
    if (int check = checkView(view))
        return check;
    if (view->runMode != KR_RUN_ANIMATED)
        return -3;
    endDataThread(view);
    forgetVariables(view);
    return 0;
}

int krViewStop(VIEW_STRUCT* view)
{
    if (int check = checkView(view))
        return check;
    if (view->runMode == KR_RUN_STOPPED)
        return -3;
    if (view->runMode == KR_RUN_ANIMATED)
        return krViewStopAnim(view);
    view->runMode = KR_RUN_STOPPED;
    forgetVariables(view);
    return 0;
}

int krViewPutData(VIEW_STRUCT* view, double delta)
{
    if (int check = checkView(view))
        return check;
    if (view->runMode == KR_RUN_STOPPED)
        return -3;
    // The graphs' rings are the data thread's too, in the animated mode.
    ViewLock lock(view);
    view->time += delta;
    fillActions(view->elements, int(view->haltMode), view->time);
    return 0;
}

int krViewSetTime(VIEW_STRUCT* view, float t)
{
    if (int check = checkView(view))
        return check;
    // The rings are the data thread's too, in the animated mode.
    ViewLock lock(view);
    view->time = t;
    return resetAllGraphs(view->elements, t);
}

int krViewResetGraph(VIEW_STRUCT* view, float t)
{
    if (int check = checkView(view))
        return check;
    ViewLock lock(view);
    return resetAllGraphs(view->elements, t);
}

int krViewSetHaltMode(VIEW_STRUCT* view, int mode)
{
    if (int check = checkView(view))
        return check;
    if (view->runMode == KR_RUN_STOPPED)
        return -3;
    // The data thread reads it in each cycle.
    ViewLock lock(view);
    view->haltMode = uint32_t(mode);
    return 0;
}
