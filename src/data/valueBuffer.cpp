#include "data/valueBuffer.h"

#include <cstring>

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

size_t integerSize(int type)
{
    if (type == KR_VAR_INT64 || type == KR_VAR_UINT64)
        return 8;
    return type >= KR_VAR_INT8 && type <= KR_VAR_UINT32 ? transferSize(type) : 0;
}

bool isIntegerType(int type)
{
    return integerSize(type) != 0;
}

void storeInteger(void* buffer, size_t bytes, int64_t value)
{
    memcpy(buffer, &value, bytes < sizeof value ? bytes : sizeof value);
}

void storeReal(void* buffer, int type, double value)
{
    if (type == KR_VAR_FLOAT) {
        float single = float(value);
        memcpy(buffer, &single, sizeof single);
    } else if (type == KR_VAR_DOUBLE) {
        memcpy(buffer, &value, sizeof value);
    }
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
