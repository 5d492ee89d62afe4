// The process-wide store of pictures behind image elements. It keeps every picture in
// memory under a small integer id, so that views load before any GL context exists and
// their pictures survive the loss of one.
#include "KorelEdit.h"
#include "base/base.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

struct Texture {
    int refCount;
    int width, height;
    uint8_t* pixels; // width * height RGBA, row after row
};

// Ids are never reused, so a stale id finds nothing rather than another picture.
struct Store {
    mpiHash* hash = nullptr;
    int32_t nextId = 1;
};

Store store;

bool storeReady()
{
    if (!store.hash) {
        store.hash = mpiHashCreate(10);
        if (store.hash)
            mpiHashSetAutoDelete(store.hash, 0);
    }
    return store.hash != nullptr;
}

Texture* findTexture(int id)
{
    if (id < 0 || !store.hash)
        return nullptr;
    return static_cast<Texture*>(mpiHashSearch(store.hash, uint32_t(id)));
}

} // namespace

int txCreate(int width, int height, const void* pixels)
{
    if (!pixels || width <= 0 || height <= 0 || store.nextId == INT32_MAX || !storeReady())
        return -1;
    const size_t size = size_t(width) * size_t(height) * 4;
    Texture* t = static_cast<Texture*>(calloc(1, sizeof(Texture)));
    uint8_t* copy = static_cast<uint8_t*>(malloc(size));
    if (!t || !copy || mpiHashInsert(store.hash, uint32_t(store.nextId), t) != 0) {
        free(t);
        free(copy);
        logMsg(1, "txCreate: out of memory\n");
        return -1;
    }
    memcpy(copy, pixels, size);
    t->refCount = 1;
    t->width = width;
    t->height = height;
    t->pixels = copy;
    return store.nextId++;
}

int txDelete(int id)
{
    Texture* t = findTexture(id);
    if (!t)
        return -1;
    mpiHashDelete(store.hash, uint32_t(id));
    if (--t->refCount > 0)
        return 0;
    free(t->pixels);
    free(t);
    return 0;
}

const uint8_t* txData(int id)
{
    const Texture* t = findTexture(id);
    return t ? t->pixels : nullptr;
}
