// Views from bytes, loaded, started, run for K2DFUZZ_FRAMES data cycles, each drawn off-screen
// on K2DFUZZ_SIDE x K2DFUZZ_SIDE pixels, and stopped. The draw harness runs two, which reaches
// the drawing of many views quickly; the load harness a hundred, long enough for graphs to fill
// their traces, on fewer pixels, which keeps every drawing call at less than half the time.
#include "fuzzView.h"

#include <cstdlib>

#ifndef K2DFUZZ_FRAMES
#define K2DFUZZ_FRAMES 2
#endif
#ifndef K2DFUZZ_SIDE
#define K2DFUZZ_SIDE 96
#endif

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    k2dfuzz::prepareProcess();
    if (!k2dfuzz::prepareDrawing(K2DFUZZ_SIDE))
        std::exit(1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    k2dfuzz::runView(data, size, K2DFUZZ_FRAMES);
    return 0;
}
