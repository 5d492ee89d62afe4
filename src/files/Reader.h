// The primitives of a binary view file as a reader of records sees them: Integers, Reals,
// fixed strings, and the groupings the records use.
#pragma once

#include "files/KStream.h"

struct Reader {
    KStream* stream;

    float real() { return KGetFFloat(stream); }
    int32_t integer() { return KGetFInt(stream); }
    void reals(float* target, int n)
    {
        for (int i = 0; i < n; ++i)
            target[i] = real();
    }
    // A fixed string: the whole field is stored.
    template <size_t N> void fixed(char (&field)[N]) { KGetFString(field, N, stream, int32_t(N)); }
    // True when `bytes` more are stored; otherwise the file is short and reading ends here.
    bool roomFor(size_t bytes)
    {
        if (bytes <= stream->left())
            return true;
        stream->abandon();
        return false;
    }
    void skipIntegers(int n)
    {
        for (int i = 0; i < n; ++i)
            integer();
    }
    // Corners are stored point by point; the records keep x and y apart.
    void corners(float cornerX[4], float cornerY[4])
    {
        for (int i = 0; i < 4; ++i) {
            cornerX[i] = real();
            cornerY[i] = real();
        }
    }
};
