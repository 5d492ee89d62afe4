// Float to integer as C truncates it, but defined for every input: values from files and
// from the host may be NaN or beyond the integer range.
#pragma once

#include <cstdint>

inline int truncToInt(double value)
{
    if (value != value)
        return 0;
    if (value <= -2147483648.0)
        return INT32_MIN;
    if (value >= 2147483647.0)
        return INT32_MAX;
    return int(value);
}
