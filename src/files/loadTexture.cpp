// The pixels stored behind an image record, into the picture store. A size the file can't
// hold ends the load there, before anything is allocated for it, so that no count in a
// garbled file costs more memory than the file itself.
#include "KorelEdit.h"
#include "files/Reader.h"
#include "files/viewFileReaders.h"

#include <cstdint>
#include <vector>

namespace {

// The stored size in bytes of width x height pixels of `depth` bytes, or 0 when the size
// is not a picture or the stream hasn't that many bytes left.
size_t storedPixels(KStream* stream, const IMAGE_STRUCT* record, int depth)
{
    if (record->width <= 0 || record->height <= 0)
        return 0;
    const uint64_t bytes = uint64_t(record->width) * uint64_t(record->height) * uint64_t(depth);
    Reader in{stream};
    return in.roomFor(bytes) ? size_t(bytes) : 0;
}

} // namespace

int loadTexture(KStream* stream, IMAGE_STRUCT* record)
{
    const size_t bytes = storedPixels(stream, record, 4);
    if (!bytes)
        return -1;
    record->texture = txCreate(record->width, record->height, stream->data + stream->pos);
    stream->skip(bytes);
    return record->texture < 0 ? -1 : 0;
}

int loadTextureOld(KStream* stream, IMAGE_STRUCT* record)
{
    const size_t bytes = storedPixels(stream, record, 3);
    if (!bytes)
        return -1;
    std::vector<uint8_t> rgba;
    rgba.reserve(bytes / 3 * 4);
    const uint8_t* rgb = stream->data + stream->pos;
    for (size_t i = 0; i < bytes; i += 3)
        rgba.insert(rgba.end(), {rgb[i], rgb[i + 1], rgb[i + 2], 255});
    stream->skip(bytes);
    record->texture = txCreate(record->width, record->height, rgba.data());
    return record->texture < 0 ? -1 : 0;
}
