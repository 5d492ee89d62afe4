// Writing into and reading from the value buffer of a variable by its type code. Each writer
// (a constant, a default, a host's text) parses its own way; these store the result.
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
// Bytes an integer of this code occupies: 1, 2, 4 or 8; 0 for float, double, text, unknown.
size_t integerSize(int type);
bool isIntegerType(int type);
// The low `bytes` bytes of value, as they lie in memory on this little-endian target.
void storeInteger(void* buffer, size_t bytes, int64_t value);
// A float or a double, as the code says.
void storeReal(void* buffer, int type, double value);
// At most 255 characters and a terminator.
void storeText(void* buffer, const char* text);
// Copies a value between two buffers as a transfer does: transferSize bytes, or the text.
void transferValue(void* destination, const void* source, int type);
// The first 8 bytes of a buffer, for change detection.
uint64_t firstEightBytes(const void* buffer);
