#include "files/KStream.h"
#include "KorelEdit.h"

#include <cstdio>
#include <cstring>

#include <sys/stat.h>

int32_t KGetFInt(KStream* s)
{
    if (s->left() < 4) {
        s->abandon();
        return -1;
    }
    const uint8_t* p = s->data + s->pos;
    s->pos += 4;
    return int32_t(uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | uint32_t(p[3]));
}

float KGetFFloat(KStream* s)
{
    if (s->left() < 4) {
        s->abandon();
        return 0.0f;
    }
    uint32_t bits = uint32_t(KGetFInt(s));
    float value;
    memcpy(&value, &bits, sizeof value);
    return value;
}

void KGetFString(char* field, size_t fieldSize, KStream* s, int32_t n)
{
    if (n <= 0 || fieldSize == 0)
        return;
    size_t stored = size_t(n) < s->left() ? size_t(n) : s->left();
    size_t kept = stored < fieldSize ? stored : fieldSize;
    if (kept > 0)
        memcpy(field, s->data + s->pos, kept);
    // The last byte of what was stored is forced to zero, and so is the end of the field.
    if (kept < fieldSize)
        memset(field + kept, 0, fieldSize - kept);
    if (kept > 0 && kept == size_t(n))
        field[kept - 1] = 0;
    field[fieldSize - 1] = 0;
    s->pos += stored;
}

void KGetFCounted(char* field, size_t fieldSize, KStream* s)
{
    int32_t n = KGetFInt(s);
    KGetFString(field, fieldSize, s, n);
}

int KPutFInt(int32_t value, FILE* stream)
{
    const uint32_t v = uint32_t(value);
    const uint8_t bytes[4] = {uint8_t(v >> 24), uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)};
    return stream && fwrite(bytes, 1, sizeof bytes, stream) == sizeof bytes ? 0 : -1;
}

int KPutFFloat(FILE* stream, float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    return KPutFInt(int32_t(bits), stream);
}

int KPutFString(const char* buffer, FILE* stream, int n)
{
    if (n <= 0)
        return 0;
    return stream && buffer && fwrite(buffer, 1, size_t(n), stream) == size_t(n) ? 0 : -1;
}

bool readWholeFile(const char* path, std::vector<uint8_t>* bytes)
{
    FILE* f = fopen(path, "rb");
    if (!f)
        return false;
    // One buffer of the file's size where it can be known; pipes and the like grow as they come.
    struct stat info;
    bytes->clear();
    if (fstat(fileno(f), &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0) {
        bytes->resize(size_t(info.st_size));
        bytes->resize(fread(bytes->data(), 1, bytes->size(), f));
    }
    uint8_t chunk[65536];
    size_t got;
    while ((got = fread(chunk, 1, sizeof chunk, f)) > 0)
        bytes->insert(bytes->end(), chunk, chunk + got);
    bool ok = !ferror(f);
    fclose(f);
    return ok;
}
