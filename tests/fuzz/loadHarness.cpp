// Views from bytes, loaded, started and stopped without a GL context.
#include "fuzzView.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    k2dfuzz::prepareProcess();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    k2dfuzz::runView(data, size, 0);
    return 0;
}
