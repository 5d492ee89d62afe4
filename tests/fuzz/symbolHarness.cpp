// Symbol libraries from bytes: written to a file in the working directory, imported into a fresh
// list and freed.
#include "fuzzView.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    k2dfuzz::prepareLoading();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    k2dfuzz::loadSymbols(data, size);
    return 0;
}
