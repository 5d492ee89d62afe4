// The process-wide store of pictures behind image elements. It keeps every picture in
// memory under a small integer id, so that views load before any GL context exists and
// their pictures survive the loss of one: the GL texture is only a cache of the pixels.
#include "KorelEdit.h"
#include "base/base.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#ifndef GL_CLAMP_TO_EDGE
#define GL_CLAMP_TO_EDGE 0x812F
#endif

namespace {

struct Texture {
    int refCount; // ids that name this record
    int width, height;
    int texWidth, texHeight; // of the GL texture, set at upload
    uint8_t* pixels;         // width * height RGBA, row after row
    float texS[4], texT[4];  // texture coordinates of the four corners
    GLuint glName;           // 0 until uploaded
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

// Filters, wraps and environment, set at upload and again at each draw since another
// texture user may have changed the bound one's.
void setTextureParameters()
{
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
}

// Makes a new GL texture of the picture in the current context. A picture the driver can't
// hold is never scaled: it stays undrawn and each attempt says why.
void createTexture(Texture* t)
{
    if (!t->pixels)
        return;
    // Only ever called when the current context doesn't know the old name, if there is one.
    t->glName = 0;
    if (!getGlContext()) {
        logMsg(2, "Warning txCreateTexture: no valid openGL context !\n");
        return;
    }
    GLint maxSize = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxSize);
    if (t->width > maxSize || t->height > maxSize) {
        logMsg(2, "image too large max = %d\n", maxSize);
        return;
    }
    t->texWidth = t->width;
    t->texHeight = t->height;
    const size_t size = size_t(t->width) * size_t(t->height) * 4;
    uint8_t* scratch = static_cast<uint8_t*>(malloc(size));
    if (!scratch) {
        logMsg(1, "create texture: out of memory\n");
        return;
    }
    // Opaque pictures take no alpha channel in the driver's memory.
    bool translucent = false;
    for (size_t i = 0; i < size; i += 4) {
        memcpy(scratch + i, t->pixels + i, 4);
        translucent = translucent || scratch[i + 3] != 255;
    }
    const float s[4] = {0, 0, 1, 1}, tc[4] = {0, 1, 1, 0};
    memcpy(t->texS, s, sizeof s);
    memcpy(t->texT, tc, sizeof tc);
    glGenTextures(1, &t->glName);
    glBindTexture(GL_TEXTURE_2D, t->glName);
    setTextureParameters();
    glTexImage2D(GL_TEXTURE_2D, 0, translucent ? GL_RGBA : GL_RGB, t->texWidth, t->texHeight, 0, GL_RGBA,
                 GL_UNSIGNED_BYTE, scratch);
    free(scratch);
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
    createTexture(t);
    return store.nextId++;
}

int txCopy(int id)
{
    Texture* t = findTexture(id);
    if (!t || store.nextId == INT32_MAX || mpiHashInsert(store.hash, uint32_t(store.nextId), t) != 0)
        return -1;
    ++t->refCount;
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
    // Without a context there is nothing to give the name back to.
    if (t->glName && getGlContext())
        glDeleteTextures(1, &t->glName);
    free(t);
    return 0;
}

const uint8_t* txData(int id)
{
    const Texture* t = findTexture(id);
    return t ? t->pixels : nullptr;
}

int txDraw(int id, const float* xs, const float* ys)
{
    if (id < 0 || !xs || !ys || !store.hash)
        return -1;
    Texture* t = findTexture(id);
    if (!t)
        return -1;
    if (!t->glName)
        createTexture(t);
    // A context made since the upload doesn't know the name: this is how a replaced
    // context gets its textures back without the host's help.
    if (!getGlContext() || !glIsTexture(t->glName))
        createTexture(t);
    if (!t->glName)
        return 0;
    glShadeModel(GL_FLAT);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBindTexture(GL_TEXTURE_2D, t->glName);
    setTextureParameters();
    tkPushMatrix();
    tkBegin(GL_QUADS);
    for (int k = 0; k < 4; ++k) {
        glTexCoord2f(t->texS[k], t->texT[k]);
        tkVertex2f(xs[k], ys[k]);
    }
    tkEnd();
    tkPopMatrix();
    glDisable(GL_TEXTURE_2D);
    return 0;
}
