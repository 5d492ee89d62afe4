// XML view files from bytes: written to a file in the working directory (a scratch directory
// under scripts/fuzz.sh), loaded into fresh lists, saved in both forms and freed.
#include "fuzzView.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    k2dfuzz::prepareLoading();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    k2dfuzz::loadXmlView(data, size);
    return 0;
}
