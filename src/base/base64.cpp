// Base64 encoding and a forgiving decoder: line breaks and other noise may stand anywhere in
// a text, and a short group (padded with "=") ends it.

#include "base/base64.h"

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The number of each character, built once at compile time: the decoder looks up every
// character of picture data, megabytes of it in a large view file.
struct DecodeTable {
    unsigned char value[256];
    constexpr DecodeTable() : value()
    {
        for (unsigned char& v : value)
            v = Base64::kNoise;
        for (int i = 0; i < 64; ++i)
            value[static_cast<unsigned char>(kAlphabet[i])] = static_cast<unsigned char>(i);
        value[static_cast<unsigned char>('=')] = Base64::kPad;
    }
};
constexpr DecodeTable kDecodeTable;

} // namespace

char Base64::ntc(unsigned char number)
{
    return kAlphabet[number & 63];
}

int Base64::ctn(char c)
{
    return kDecodeTable.value[static_cast<unsigned char>(c)];
}

int Base64::getSize(int n)
{
    if (n < 1)
        return 0;
    return 4 * (n / 3) + (n % 3 ? 4 : 0);
}

int Base64::encode(const unsigned char* input, char* output, int length, int groupsPerLine)
{
    if (!input || !output)
        return 0;
    int written = 0;
    int groups = 0;
    for (int i = 0; i < length; i += 3) {
        const int rest = length - i;
        const unsigned b0 = input[i];
        const unsigned b1 = rest > 1 ? input[i + 1] : 0;
        const unsigned b2 = rest > 2 ? input[i + 2] : 0;
        output[written++] = ntc(b0 >> 2);
        output[written++] = ntc(b0 << 4 | b1 >> 4);
        output[written++] = rest > 1 ? ntc(b1 << 2 | b2 >> 6) : '=';
        output[written++] = rest > 2 ? ntc(b2) : '=';
        if (rest < 3)
            return written;
        if (++groups == groupsPerLine) {
            output[written++] = '\n';
            groups = 0;
        }
    }
    return written;
}

int Base64::decode(const char* input, unsigned char* output, int length)
{
    if (!input || !output)
        return 0;
    int pos = 0;
    int written = 0;
    while (length - pos >= 4) {
        // The common case, four characters of the alphabet in a row, without the noise walk.
        const unsigned char* group = reinterpret_cast<const unsigned char*>(input + pos);
        const unsigned a = kDecodeTable.value[group[0]], b = kDecodeTable.value[group[1]],
                       c = kDecodeTable.value[group[2]], d = kDecodeTable.value[group[3]];
        if ((a | b | c | d) < 64) {
            output[written++] = static_cast<unsigned char>(a << 2 | b >> 4);
            output[written++] = static_cast<unsigned char>(b << 4 | c >> 2);
            output[written++] = static_cast<unsigned char>(c << 6 | d);
            pos += 4;
            continue;
        }
        int v[4];
        for (int k = 0; k < 4; ++k) {
            while (pos < length && ctn(input[pos]) == kNoise)
                ++pos;
            if (pos == length) // only a whole group may end the text
                return -1;
            v[k] = ctn(input[pos++]);
        }
        if (v[0] > 63 || v[1] > 63)
            continue;
        output[written++] = static_cast<unsigned char>(v[0] << 2 | v[1] >> 4);
        if (v[2] <= 63)
            output[written++] = static_cast<unsigned char>(v[1] << 4 | v[2] >> 2);
        if (v[3] <= 63)
            output[written++] = static_cast<unsigned char>(v[2] << 6 | v[3]);
        if (v[3] == kPad)
            break;
    }
    return written;
}

int Base64::strip(char* text, int length)
{
    if (!text)
        return 0;
    int kept = 0;
    for (int i = 0; i < length; ++i)
        if (ctn(text[i]) != kNoise)
            text[kept++] = text[i];
    return kept;
}
