#include "data/valueBuffer.h"

#include <cstring>

size_t valueBufferSize(int type)
{
    return type == kTextType ? kTextBufferSize : 8;
}

size_t transferSize(int type)
{
    switch (type) {
    case 1:
        return 8;
    case 2:
    case 3:
        return 1;
    case 4:
    case 5:
        return 2;
    case 0:
    case 6:
    case 7:
    case 8:
    case 9:
        return 4;
    default:
        return 0;
    }
}

size_t integerSize(int type)
{
    return type == 8 || type == 9 ? 8 : type >= 2 && type <= 7 ? transferSize(type) : 0;
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
    if (type == 0) {
        float single = float(value);
        memcpy(buffer, &single, sizeof single);
    } else if (type == 1) {
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
    if (type == kTextType)
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
