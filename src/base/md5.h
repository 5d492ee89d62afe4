// The MD5 message digest (RFC 1321). The library digests fill patterns and image pixels to find
// equal ones; hosts compare files through getMd5 and filesMatch (KorelEdit.h).
//
// Misuse (an update after finalize, a second finalize, asking for the digest before finalize)
// changes nothing and is reported on standard error, because the caller is a programmer who
// should see it at once.
#pragma once

#include <cstdint>
#include <cstdio>
#include <istream>
#include <string>

// A digest as a value: the key of sorted maps, ordered like memcmp (unsigned bytes, first first).
struct Md5Hash {
    uint8_t bytes[16];

    bool operator<(const Md5Hash& other) const;
    bool operator==(const Md5Hash& other) const;
    bool operator!=(const Md5Hash& other) const { return !(*this == other); }
};

class Md5 {
public:
    // Ready for update.
    Md5();
    // The digest of the rest of the file, finalized; the file is closed. A null file digests
    // nothing.
    explicit Md5(FILE* file);
    // The digest of the rest of the stream (a file stream too), finalized; the stream stays open.
    explicit Md5(std::istream& stream);

    void update(const uint8_t* input, unsigned length);
    // Reads 1024-byte blocks until a read gives nothing, then closes the file (also when the
    // digest is already finalized, so that the file never leaks).
    void update(FILE* file);
    // Reads 1024-byte blocks while the stream is good; the stream stays open.
    void update(std::istream& stream);
    // Pads the message and computes the digest; no update after this.
    void finalize();

    // A new array of the 16 digest bytes that the caller frees with delete[]. Before finalize:
    // an empty constant text, which the caller must not free.
    const uint8_t* raw_digest();
    // 32 lowercase hexadecimal digits; empty before finalize.
    std::string hex_digest();

    // Starts over and digests these bytes in one go; any number of times on one instance.
    Md5Hash getMd5(const uint8_t* input, unsigned length);

private:
    void init();
    void transform(const uint8_t block[64]);

    uint32_t state[4];
    uint32_t count[2]; // bits digested, low word first
    uint8_t buffer[64]; // the bytes of an incomplete block
    uint8_t digest[16];
    bool finalized;
};
