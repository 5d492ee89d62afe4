// The primitives of a binary view file. A whole file is read into memory first, so every count
// and length can be weighed against the bytes that are left; the writer's KPut... functions
// (declared in KorelEdit.h) write straight to a stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The radius of both axes of a circle or arc read from a binary file, which stores no radii:
// its matrix carries the size.
constexpr float kStoredRadius = 100.0f;

struct KStream {
    const uint8_t* data = nullptr;
    size_t size = 0;
    size_t pos = 0;

    size_t left() const { return size - pos; }
    bool atEnd() const { return pos >= size; }
    // Ends all reading: what was read so far stays, every further read sees the end.
    void abandon() { pos = size; }
    void skip(size_t n) { pos += n < left() ? n : left(); }
};

// Big-endian 4-byte integer, or -1 when fewer than four bytes are left.
int32_t KGetFInt(KStream* stream);
// Big-endian IEEE single; 0 when fewer than four bytes are left.
float KGetFFloat(KStream* stream);
// Consumes exactly n stored bytes (fewer at the end of the data) and keeps what fits into a
// field of `fieldSize` bytes, always zero-terminated. n <= 0 reads nothing and leaves the field.
void KGetFString(char* field, size_t fieldSize, KStream* stream, int32_t n);
// A length Integer followed by that many bytes, into a fixed field.
void KGetFCounted(char* field, size_t fieldSize, KStream* stream);

// The whole file at `path`; false when it can't be opened or read.
bool readWholeFile(const char* path, std::vector<uint8_t>* bytes);
