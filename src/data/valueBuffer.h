// The value buffer of a variable by its type code: the one place that reads, writes, parses,
// formats and byte-swaps the values of every code. Sources, actions and the host interface
// keep their own rules for text (see TextRules) and come here for the rest.
#pragma once

#include "Korel2D.h"

#include <cstddef>
#include <cstdint>

constexpr size_t kTextBufferSize = 256;

// 256 bytes for a text variable, 8 for all others.
size_t valueBufferSize(int type);
// Bytes a copy between buffers moves: those of the type, but only the low half of a long;
// 0 for text and unknown codes.
size_t transferSize(int type);

// The value as a double; 0 for text and unknown codes. Longs beyond 2^53 are rounded.
double readValue(const void* buffer, int type);
// Stores a double as the type: a float or a double as it is; an integer truncated toward zero
// and cut to the type's width (300 into an unsigned byte is 44). NaN stores 0, and values
// beyond 64 bits stop at the ends. Text and unknown codes are left as they are.
void writeValue(void* buffer, int type, double value);

// What becomes of the eight bytes of a long when a writer parses text into one.
enum class LongWidth {
    Whole,          // all eight
    LowHalf,        // the low four, as every transfer moves them; the high half stays
    SignExtended32, // the number cut to 32 bits, then widened with its sign
};

// How one writer of text reads numbers: the base strtol gets (0 takes "0x1F" and "010"
// as C does), whether a double first passes through a float, and what a long keeps.
struct TextRules {
    int integerBase;
    bool realThroughFloat;
    LongWidth longs;
};

// Parses text as the type under the writer's rules; a text is stored up to 255 characters.
// Unknown codes store nothing; null reads as the empty text.
void parseValue(void* buffer, int type, const char* text, const TextRules& rules);
// Prints the value into kTextBufferSize bytes: %f for float and double, the long codes as
// signed 64-bit, the others with %d; a text as it is; nothing for unknown codes.
void formatValue(char* text, const void* buffer, int type);
// Reverses the order of the first `width` bytes: a value of a big-endian peer becomes one of
// this little-endian target, and back.
void swapByteOrder(void* value, size_t width);

// At most 255 characters and a terminator.
void storeText(void* buffer, const char* text);
// Copies a value between two buffers as a transfer does: transferSize bytes, or the text.
void transferValue(void* destination, const void* source, int type);
// The first 8 bytes of a buffer, for change detection.
uint64_t firstEightBytes(const void* buffer);
