// MD5 as RFC 1321 describes it: 64-byte blocks through four rounds of sixteen steps over a
// state of four little-endian words.

#include "base/md5.h"

#include "KorelEdit.h"

#include <cmath>
#include <cstring>

namespace {

constexpr unsigned kBlockSize = 1024; // what one read of a file or stream asks for

const char* const kUpdateFinalized = "Md5::update:  Can't update a finalized digest!";
const char* const kFinalizeTwice = "Md5::finalize:  Already finalized this digest!";
const char* const kRawNotFinal = "Md5::raw_digest:  Can't get digest if you haven't finalized the digest!";
const char* const kHexNotFinal = "Md5::hex_digest:  Can't get digest if you haven't finalized the digest!";

void misuse(const char* text)
{
    std::fprintf(stderr, "%s\n", text);
}

// The sine table: entry i is the integer part of 2^32 * |sin(i + 1)|, i in radians.
struct SineTable {
    uint32_t t[64];
    SineTable()
    {
        for (int i = 0; i < 64; ++i)
            t[i] = static_cast<uint32_t>(std::floor(4294967296.0 * std::fabs(std::sin(i + 1.0))));
    }
};

uint32_t rotateLeft(uint32_t x, unsigned n)
{
    return (x << n) | (x >> (32 - n));
}

void storeWords(uint8_t* out, const uint32_t* words, unsigned count)
{
    for (unsigned i = 0; i < count; ++i)
        for (unsigned b = 0; b < 4; ++b)
            out[4 * i + b] = static_cast<uint8_t>(words[i] >> (8 * b));
}

// Blocks of the file into the digest until a read gives nothing; the file stays open.
void readFile(Md5& md5, FILE* file)
{
    uint8_t block[kBlockSize];
    size_t got;
    while ((got = std::fread(block, 1, sizeof block, file)) > 0)
        md5.update(block, static_cast<unsigned>(got));
}

} // namespace

bool Md5Hash::operator<(const Md5Hash& other) const
{
    return std::memcmp(bytes, other.bytes, sizeof bytes) < 0;
}

bool Md5Hash::operator==(const Md5Hash& other) const
{
    return std::memcmp(bytes, other.bytes, sizeof bytes) == 0;
}

Md5::Md5()
{
    init();
}

Md5::Md5(FILE* file)
{
    init();
    update(file);
    finalize();
}

Md5::Md5(std::istream& stream)
{
    init();
    update(stream);
    finalize();
}

void Md5::init()
{
    state[0] = 0x67452301;
    state[1] = 0xefcdab89;
    state[2] = 0x98badcfe;
    state[3] = 0x10325476;
    count[0] = count[1] = 0;
    std::memset(buffer, 0, sizeof buffer);
    std::memset(digest, 0, sizeof digest);
    finalized = false;
}

void Md5::transform(const uint8_t block[64])
{
    static const SineTable sine;
    // Rotations per step, by round and step modulo 4.
    static const unsigned shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

    uint32_t x[16];
    for (unsigned i = 0; i < 16; ++i)
        x[i] = uint32_t(block[4 * i]) | uint32_t(block[4 * i + 1]) << 8 | uint32_t(block[4 * i + 2]) << 16 |
               uint32_t(block[4 * i + 3]) << 24;

    uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
    for (unsigned i = 0; i < 64; ++i) {
        const unsigned round = i / 16;
        uint32_t f;
        unsigned k; // the message word this step adds
        switch (round) {
        case 0: f = (b & c) | (~b & d); k = i; break;
        case 1: f = (b & d) | (c & ~d); k = (5 * i + 1) % 16; break;
        case 2: f = b ^ c ^ d; k = (3 * i + 5) % 16; break;
        default: f = c ^ (b | ~d); k = (7 * i) % 16; break;
        }
        const uint32_t rotated = rotateLeft(a + f + sine.t[i] + x[k], shifts[round][i % 4]);
        a = d;
        d = c;
        c = b;
        b += rotated;
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
}

void Md5::update(const uint8_t* input, unsigned length)
{
    if (finalized) {
        misuse(kUpdateFinalized);
        return;
    }
    if (!input || length == 0)
        return;
    unsigned used = (count[0] >> 3) & 63;
    const uint32_t bits = length << 3;
    count[0] += bits;
    count[1] += (length >> 29) + (count[0] < bits); // the carry of the low word

    const unsigned space = 64 - used;
    unsigned i = 0;
    if (length >= space) {
        std::memcpy(buffer + used, input, space);
        transform(buffer);
        for (i = space; i + 63 < length; i += 64)
            transform(input + i);
        used = 0;
    }
    std::memcpy(buffer + used, input + i, length - i);
}

void Md5::update(FILE* file)
{
    if (!file)
        return;
    if (finalized)
        misuse(kUpdateFinalized);
    else
        readFile(*this, file);
    std::fclose(file);
}

void Md5::update(std::istream& stream)
{
    if (finalized) {
        misuse(kUpdateFinalized);
        return;
    }
    char block[kBlockSize];
    while (stream.good()) {
        stream.read(block, sizeof block);
        update(reinterpret_cast<const uint8_t*>(block), static_cast<unsigned>(stream.gcount()));
    }
}

void Md5::finalize()
{
    if (finalized) {
        misuse(kFinalizeTwice);
        return;
    }
    // The bit length is taken before the padding changes it.
    uint8_t length[8];
    storeWords(length, count, 2);
    // One 0x80 byte, then zeros up to 56 bytes modulo 64, then the length: 1 to 64 bytes of pad.
    static const uint8_t padding[64] = {0x80};
    const unsigned used = (count[0] >> 3) & 63;
    update(padding, used < 56 ? 56 - used : 120 - used);
    update(length, 8);

    storeWords(digest, state, 4);
    std::memset(buffer, 0, sizeof buffer);
    finalized = true;
}

const uint8_t* Md5::raw_digest()
{
    if (!finalized) {
        misuse(kRawNotFinal);
        return reinterpret_cast<const uint8_t*>("");
    }
    uint8_t* copy = new uint8_t[sizeof digest];
    std::memcpy(copy, digest, sizeof digest);
    return copy;
}

std::string Md5::hex_digest()
{
    if (!finalized) {
        misuse(kHexNotFinal);
        return std::string();
    }
    char hex[2 * sizeof digest + 1];
    for (unsigned i = 0; i < sizeof digest; ++i)
        std::snprintf(hex + 2 * i, 3, "%02x", digest[i]);
    return hex;
}

Md5Hash Md5::getMd5(const uint8_t* input, unsigned length)
{
    init();
    update(input, length);
    finalize();
    Md5Hash hash;
    std::memcpy(hash.bytes, digest, sizeof digest);
    return hash;
}

// Exported for hosts that compare files; the library itself doesn't call them.

extern "C" int getMd5(FILE* stream, char hex[33])
{
    if (!hex)
        return -1;
    hex[0] = '\0';
    if (!stream)
        return -1;
    Md5 md5;
    readFile(md5, stream);
    if (std::ferror(stream))
        return -1;
    md5.finalize();
    std::memcpy(hex, md5.hex_digest().c_str(), 33);
    return 0;
}

extern "C" int filesMatch(FILE* stream, const char* digest)
{
    char hex[33];
    return digest && getMd5(stream, hex) == 0 && std::strcmp(hex, digest) == 0;
}
