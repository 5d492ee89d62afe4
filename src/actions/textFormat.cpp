#include "actions/textFormat.h"
#include "base/truncate.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr const char* kFlags = "-+ #0'";
constexpr const char* kLengths = "hlLqjzt";
constexpr const char* kRealConversions = "fFeEgGaA";
constexpr const char* kIntegerConversions = "diouxXc";
// Wider fields than this would only make every frame print padding nobody sees.
constexpr int kMaxFieldDigits = 3;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool copyDigits(const char*& p, std::string* out)
{
    int digits = 0;
    while (isDigit(*p)) {
        out->push_back(*p++);
        ++digits;
    }
    return digits <= kMaxFieldDigits;
}

// The format with its one conversion rewritten for the argument we pass: "ll" for integers,
// no length for reals. False when the format can't be used.
bool rewriteFormat(const char* format, std::string* rewritten, char* conversion)
{
    *conversion = 0;
    for (const char* p = format; *p; ++p) {
        rewritten->push_back(*p);
        if (*p != '%')
            continue;
        if (p[1] == '%') {
            rewritten->push_back(*++p);
            continue;
        }
        if (*conversion)
            return false;
        ++p;
        while (*p && strchr(kFlags, *p))
            rewritten->push_back(*p++);
        if (!copyDigits(p, rewritten))
            return false;
        if (*p == '.') {
            rewritten->push_back(*p++);
            if (!copyDigits(p, rewritten))
                return false;
        }
        while (*p && strchr(kLengths, *p))
            ++p;
        if (!*p)
            return false;
        if (strchr(kRealConversions, *p)) {
            *conversion = 'f';
        } else if (strchr(kIntegerConversions, *p)) {
            *conversion = *p == 'c' ? 'c' : strchr("di", *p) ? 'd' : 'u';
            if (*conversion != 'c')
                rewritten->append("ll");
        } else {
            return false;
        }
        rewritten->push_back(*p);
    }
    return true;
}

} // namespace

void formatActionText(char* out, size_t size, const char* format, const FormatArgument& argument)
{
    if (!out || size == 0)
        return;
    std::string rewritten;
    char conversion = 0;
    if (!format || !rewriteFormat(format, &rewritten, &conversion)) {
        snprintf(out, size, "%s", format ? format : "");
        return;
    }
    const bool isReal = argument.kind == FormatArgument::Real;
    const bool isSigned = argument.kind == FormatArgument::Signed;
    double real = isReal ? argument.real : isSigned ? double(argument.integer) : double(argument.unsignedInteger);
    // A real reaches an integer conversion truncated, NaN and values beyond the range clamped.
    long long integer = isReal     ? truncToInt64(argument.real)
                        : isSigned ? argument.integer
                                   : static_cast<long long>(argument.unsignedInteger);
    switch (conversion) {
    case 'f':
        snprintf(out, size, rewritten.c_str(), real);
        break;
    case 'd':
    case 'u':
        snprintf(out, size, rewritten.c_str(), integer);
        break;
    case 'c':
        snprintf(out, size, rewritten.c_str(), int(static_cast<unsigned char>(integer)));
        break;
    default:
        // No conversion: only "%%" is left to resolve; the spare argument is never read.
        snprintf(out, size, rewritten.c_str(), 0);
        break;
    }
}
