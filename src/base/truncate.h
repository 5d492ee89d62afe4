// Float to integer as C truncates it, but defined for every input: values from files and
// from the host may be NaN or beyond the integer range. NaN gives 0, a value beyond the range
// the nearer end.
#pragma once

#include <cstdint>
#include <limits>

template <class Integer> Integer truncTo(double value)
{
    constexpr Integer lowest = std::numeric_limits<Integer>::min(), highest = std::numeric_limits<Integer>::max();
    if (value != value)
        return 0;
    if (value <= double(lowest))
        return lowest;
    if (value >= double(highest))
        return highest;
    return Integer(value);
}

inline int truncToInt(double value)
{
    return truncTo<int32_t>(value);
}

inline int64_t truncToInt64(double value)
{
    return truncTo<int64_t>(value);
}

inline uint64_t truncToUint64(double value)
{
    return truncTo<uint64_t>(value);
}
