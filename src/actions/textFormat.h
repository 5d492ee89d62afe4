// Printing one value through a format that comes from a view file or an editing tool.
#pragma once

#include <cstddef>
#include <cstdint>

struct FormatArgument {
    enum Kind { Real, Signed, Unsigned } kind;
    double real;
    int64_t integer;
    uint64_t unsignedInteger;
};

// Prints `argument` through `format` into out (size bytes, always terminated). The format may
// hold at most one conversion; a floating conversion gets the value as a double, an integer
// conversion as a 64-bit integer, whatever the argument's kind. A format that printf could
// not take safely with one number (%s, %n, %*d, two conversions, ...) is printed as it stands.
void formatActionText(char* out, size_t size, const char* format, const FormatArgument& argument);
