#include "data/valueBuffer.h"
#include "base/truncate.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

template <class T> T loadAs(const void* buffer)
{
    T value;
    memcpy(&value, buffer, sizeof value);
    return value;
}

template <class T> void storeAs(void* buffer, T value)
{
    memcpy(buffer, &value, sizeof value);
}

// Bytes an integer of this code occupies: 1, 2, 4 or 8; 0 for float, double, text, unknown.
size_t integerSize(int type)
{
    if (type == KR_VAR_INT64 || type == KR_VAR_UINT64)
        return 8;
    return type >= KR_VAR_INT8 && type <= KR_VAR_UINT32 ? transferSize(type) : 0;
}

// The low `bytes` bytes of the number, as they lie in memory on this little-endian target.
void storeInteger(void* buffer, size_t bytes, uint64_t number)
{
    memcpy(buffer, &number, std::min(bytes, sizeof number));
}

// An integer code's value widened to 64 bits: signed codes with their sign, unsigned ones
// without; the bits of an unsigned long as they are.
int64_t integerBits(const void* buffer, int type)
{
    switch (type) {
    case KR_VAR_INT8: return loadAs<int8_t>(buffer);
    case KR_VAR_UINT8: return loadAs<uint8_t>(buffer);
    case KR_VAR_INT16: return loadAs<int16_t>(buffer);
    case KR_VAR_UINT16: return loadAs<uint16_t>(buffer);
    case KR_VAR_INT32: return loadAs<int32_t>(buffer);
    case KR_VAR_UINT32: return loadAs<uint32_t>(buffer);
    case KR_VAR_INT64:
    case KR_VAR_UINT64: return loadAs<int64_t>(buffer);
    default: return 0;
    }
}

} // namespace

size_t valueBufferSize(int type)
{
    return type == KR_VAR_TEXT ? kTextBufferSize : 8;
}

size_t transferSize(int type)
{
    switch (type) {
    case KR_VAR_DOUBLE:
        return 8;
    case KR_VAR_INT8:
    case KR_VAR_UINT8:
        return 1;
    case KR_VAR_INT16:
    case KR_VAR_UINT16:
        return 2;
    case KR_VAR_FLOAT:
    case KR_VAR_INT32:
    case KR_VAR_UINT32:
    case KR_VAR_INT64:
    case KR_VAR_UINT64:
        return 4;
    default:
        return 0;
    }
}

double readValue(const void* buffer, int type)
{
    switch (type) {
    case KR_VAR_FLOAT: return loadAs<float>(buffer);
    case KR_VAR_DOUBLE: return loadAs<double>(buffer);
    case KR_VAR_UINT64: return double(uint64_t(integerBits(buffer, type)));
    default: return integerSize(type) ? double(integerBits(buffer, type)) : 0.0;
    }
}

void writeValue(void* buffer, int type, double value)
{
    if (type == KR_VAR_FLOAT)
        storeAs(buffer, float(value));
    else if (type == KR_VAR_DOUBLE)
        storeAs(buffer, value);
    else if (type == KR_VAR_UINT64)
        storeInteger(buffer, 8, truncToUint64(value));
    else if (size_t bytes = integerSize(type))
        storeInteger(buffer, bytes, uint64_t(truncToInt64(value)));
}

void parseValue(void* buffer, int type, const char* text, const TextRules& rules)
{
    if (!text)
        text = "";
    if (type == KR_VAR_FLOAT || type == KR_VAR_DOUBLE) {
        const double value = strtod(text, nullptr);
        writeValue(buffer, type, rules.realThroughFloat ? double(float(value)) : value);
    } else if (size_t bytes = integerSize(type)) {
        int64_t number = strtol(text, nullptr, rules.integerBase);
        if (bytes == 8 && rules.longs == LongWidth::LowHalf)
            bytes = 4;
        else if (bytes == 8 && rules.longs == LongWidth::SignExtended32)
            number = int32_t(number);
        storeInteger(buffer, bytes, uint64_t(number));
    } else if (type == KR_VAR_TEXT) {
        storeText(buffer, text);
    }
}

void formatValue(char* text, const void* buffer, int type)
{
    if (type == KR_VAR_FLOAT || type == KR_VAR_DOUBLE)
        snprintf(text, kTextBufferSize, "%f", readValue(buffer, type));
    else if (type == KR_VAR_INT64 || type == KR_VAR_UINT64)
        snprintf(text, kTextBufferSize, "%" PRId64, integerBits(buffer, type));
    else if (integerSize(type))
        // With %d as the other codes, so an unsigned 32-bit value above 2^31 - 1 reads negative.
        snprintf(text, kTextBufferSize, "%d", int(int32_t(integerBits(buffer, type))));
    else if (type == KR_VAR_TEXT)
        storeText(text, static_cast<const char*>(buffer));
    else
        text[0] = '\0';
}

void swapByteOrder(void* value, size_t width)
{
    uint8_t* bytes = static_cast<uint8_t*>(value);
    std::reverse(bytes, bytes + width);
}

void storeText(void* buffer, const char* text)
{
    // Bounded reading: the text may be a plug-in's buffer without a terminator.
    size_t length = text ? strnlen(text, kTextBufferSize - 1) : 0;
    if (length)
        memmove(buffer, text, length);
    static_cast<char*>(buffer)[length] = '\0';
}

void transferValue(void* destination, const void* source, int type)
{
    if (type == KR_VAR_TEXT)
        storeText(destination, static_cast<const char*>(source));
    else
        memcpy(destination, source, transferSize(type));
}

uint64_t firstEightBytes(const void* buffer)
{
    uint64_t bytes = 0;
    if (buffer)
        memcpy(&bytes, buffer, sizeof bytes);
    return bytes;
}
