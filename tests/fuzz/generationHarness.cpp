// View files of one generation of the binary format, K2DFUZZ_REVISION: the fuzzer's bytes follow
// a fixed header of that revision, so that none of its work goes into the magic text and the
// revision numbers. Each input is loaded in a GL context, as a host loads, and freed.
#include "Korel2D.h"
#include "ViewBuilder.h"
#include "fuzzView.h"

#include <vector>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    k2dfuzz::prepareLoading();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::vector<uint8_t> header =
        korelgen::ViewBuilder(K2DFUZZ_REVISION / 100, K2DFUZZ_REVISION % 100).bytes();
    std::vector<uint8_t> file = header;
    file.insert(file.end(), data, data + size);
    if (VIEW_STRUCT* view = krViewLoadData(file.data(), file.size()))
        krViewFree(view);
    return 0;
}
