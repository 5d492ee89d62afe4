// Variables laid out at byte offsets of a foreign image: a shared-memory segment or the last
// datagram. The image's owner may write anything, so every access is bounded by the image.
#pragma once

#include "Korel2D.h"

#include <cstddef>
#include <cstdint>
#include <unordered_set>

// Byte order of an image, as the ENDIAN list items number them; this target is little-endian.
enum ByteOrder { kBigEndian = 0, kLittleEndian = 1 };
constexpr int kHostByteOrder = kLittleEndian;

struct ByteImage {
    uint8_t* bytes;
    size_t size;
    bool swap; // the image's order differs from the host's
};

// Reports each variable whose offset lies outside the image once per start, at level 2.
struct OffsetWarnings {
    const char* sourceName;
    std::unordered_set<const VARIABLE_STRUCT*> reported;
};

// The variable's OFFSET parameter, decimal; a missing text reads 0.
long imageOffset(const VARIABLE_STRUCT* variable);
// Copies between the image at the variable's offset and its value buffer. Numbers take 4 bytes
// for float and the 32- and 64-bit codes (the long ones only their low half), 8 for double, 1
// and 2 for the small ones, swapped as the image asks; a number that doesn't lie wholly inside
// the image is left alone and reported. A text reads at most 255 characters, never past the end;
// writing one takes 256 bytes: up to 255 characters and a terminator at offset + 255.
void readFromImage(const ByteImage& image, VARIABLE_STRUCT* variable, OffsetWarnings& warnings);
void writeToImage(const ByteImage& image, const VARIABLE_STRUCT* variable, OffsetWarnings& warnings);
