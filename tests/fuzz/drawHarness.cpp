// Views from bytes, loaded, started, drawn off-screen for a few frames, and stopped.
#include "fuzzView.h"

#include <cstdlib>

namespace {
constexpr int kFramesRunning = 2;
}

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    k2dfuzz::prepareProcess();
    if (!k2dfuzz::prepareDrawing())
        std::exit(1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    k2dfuzz::runView(data, size, kFramesRunning);
    return 0;
}
