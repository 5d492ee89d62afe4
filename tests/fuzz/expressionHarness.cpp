// The Calculator's expression engine on any text: compiled, then evaluated twice with a
// callback whose values include NaN, the infinities and numbers past 32 bits. Nothing may
// crash, and a compiled expression must give the same value each time.
#include "fuzzView.h"

#include "data/expression.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

double readVariable(void*, Token*, const char* name)
{
    static const double values[] = {0.0, -1.0, 2.5, NAN, INFINITY, -INFINITY, 3e9, -2147483648.0};
    return values[strlen(name) % (sizeof(values) / sizeof(values[0]))];
}

bool same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    k2dfuzz::prepareProcess();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // The engine reads up to the terminator, as the Calculator hands it its texts.
    const std::string text(reinterpret_cast<const char*>(data), size);
    Parser parser{};
    parser.text = text.c_str();
    const bool refused = parse(&parser) != 0;
    if (size % 2)
        setVarFunc(&parser, nullptr, readVariable);
    const double first = evaluate(&parser);
    if (!same(first, evaluate(&parser)) || (refused && first != 0))
        std::abort();
    cleanup(&parser);
    return 0;
}
