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

inline int64_t truncToInt64(double value)
{
    if (value != value)
        return 0;
    if (value <= -9223372036854775808.0)
        return INT64_MIN;
    if (value >= 9223372036854775807.0)
        return INT64_MAX;
    return int64_t(value);
}

inline uint64_t truncToUint64(double value)
{
    if (!(value > 0))
        return 0;
    if (value >= 18446744073709551615.0)
        return UINT64_MAX;
    return uint64_t(value);
}
