// The primitives of a binary view file as a writer of records puts them, mirroring Reader.
// Texts are written up to their terminator and padded with zeros: no byte behind a terminator
// or beyond a buffer reaches the file, so one view always gives the same bytes.
#pragma once

#include "KorelEdit.h"

#include <algorithm>
#include <cstring>
#include <vector>

struct Writer {
    FILE* stream;

    void real(float value) { KPutFFloat(stream, value); }
    void integer(int32_t value) { KPutFInt(value, stream); }
    void reals(const float* values, int n)
    {
        for (int i = 0; i < n; ++i)
            real(values[i]);
    }
    // `n` bytes: the text held in a buffer of `capacity` bytes, then zeros.
    void text(const char* buffer, size_t capacity, size_t n)
    {
        std::vector<char> field(n, 0);
        if (buffer)
            memcpy(field.data(), buffer, std::min(strnlen(buffer, capacity), n));
        KPutFString(field.data(), stream, int(n));
    }
    template <size_t N> void fixed(const char (&field)[N]) { text(field, N, N); }
    void zeros(int integers)
    {
        for (int i = 0; i < integers; ++i)
            integer(0);
    }
    void corners(const float cornerX[4], const float cornerY[4])
    {
        for (int i = 0; i < 4; ++i) {
            real(cornerX[i]);
            real(cornerY[i]);
        }
    }
};

// A list's length, by walking it.
template <class Record> int32_t listLength(const Record* head)
{
    int32_t n = 0;
    for (; head; head = head->next)
        ++n;
    return n;
}

// The action list that closes every element record, in the layout of revision 303 and 304.
int actionSave_303(const ACTION_STRUCT* head, FILE* stream);
