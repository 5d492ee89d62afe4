// The outline text of a "path" element, any bytes: flattened to sub-paths, which must all hold
// points, and no more of them in all than the parser's bound.
#include "xml/path.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // The parser prints every token for the author of a view: at a million runs that would be
    // the whole log.
    if (!std::freopen("/dev/null", "w", stdout))
        std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const Path path;
    size_t total = 0;
    for (const PathPoints& list : path.pointsFromString(std::string(reinterpret_cast<const char*>(data), size))) {
        if (list.empty())
            std::abort();
        total += list.size();
    }
    if (total > Path::kMaxPoints)
        std::abort();
    return 0;
}
