// Symbol libraries from bytes: written to a file in the working directory, imported into a fresh
// list and freed.
#include "fuzzView.h"

#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    k2dfuzz::prepareProcess();
    // Texts make their fonts in the current GL context, as an editing host's import makes them.
    if (!k2dfuzz::prepareDrawing(8))
        std::exit(1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    k2dfuzz::loadSymbols(data, size);
    return 0;
}
