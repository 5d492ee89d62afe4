#include "data/byteImage.h"
#include "base/base.h"
#include "data/builtinSources.h"
#include "data/valueBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

// Bytes of a value in an image; kTextBufferSize for a written text; 0 for unknown codes.
size_t imageWidth(int type)
{
    switch (type) {
    case KR_VAR_INT64:
    case KR_VAR_UINT64:
        return 4;
    case KR_VAR_TEXT:
        return kTextBufferSize;
    default:
        return transferSize(type);
    }
}

// The first byte of `width` bytes at the variable's offset, or null where they don't all lie
// inside the image (reported once per start).
uint8_t* placeOf(const ByteImage& image, const VARIABLE_STRUCT* variable, size_t width, OffsetWarnings& warnings)
{
    const long offset = imageOffset(variable);
    if (offset >= 0 && size_t(offset) <= image.size && image.size - size_t(offset) >= width)
        return image.bytes + offset;
    if (warnings.reported.insert(variable).second)
        logMsg(2, "%s: %s at offset %ld lies outside the %zu bytes of data\n", warnings.sourceName, variable->name,
               offset, image.size);
    return nullptr;
}

} // namespace

long imageOffset(const VARIABLE_STRUCT* variable)
{
    return strtol(variableParaText(variable, 0), nullptr, 10);
}

void readFromImage(const ByteImage& image, VARIABLE_STRUCT* variable, OffsetWarnings& warnings)
{
    if (!variable->value)
        return;
    char* value = static_cast<char*>(variable->value);
    if (variable->type == KR_VAR_TEXT) {
        // One byte must lie inside; a text cut by the end reads what lies before it.
        const uint8_t* place = placeOf(image, variable, 1, warnings);
        if (!place)
            return;
        const size_t room = image.size - size_t(place - image.bytes);
        const size_t length = strnlen(reinterpret_cast<const char*>(place), std::min(kTextBufferSize - 1, room));
        memcpy(value, place, length);
        value[length] = '\0';
        return;
    }
    const size_t width = imageWidth(variable->type);
    const uint8_t* place = width ? placeOf(image, variable, width, warnings) : nullptr;
    if (!place)
        return;
    memcpy(value, place, width);
    if (image.swap)
        swapByteOrder(value, width);
}

void writeToImage(const ByteImage& image, const VARIABLE_STRUCT* variable, OffsetWarnings& warnings)
{
    if (!variable->value)
        return;
    const size_t width = imageWidth(variable->type);
    uint8_t* place = width ? placeOf(image, variable, width, warnings) : nullptr;
    if (!place)
        return;
    if (variable->type == KR_VAR_TEXT) {
        const char* text = static_cast<const char*>(variable->value);
        const size_t length = strnlen(text, kTextBufferSize - 1);
        memcpy(place, text, length);
        place[length] = place[kTextBufferSize - 1] = '\0';
        return;
    }
    memcpy(place, variable->value, width);
    if (image.swap)
        swapByteOrder(place, width);
}
