// Inside the library: the log's helpers, the platform layer and the hash tables. Depends on
// nothing else of the library.
#pragma once

#include "Korel2D.h"

#include <stdint.h>

extern "C" {

// Data sources log through this: their messages are progress reports (level 3).
KOREL2D_API int logMsgData(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Digits behind the decimal point that a label needs for a step of this size; for a range a..b.
KOREL2D_API int getDots(double value);
KOREL2D_API int getPre(double a, double b);

// Platform layer.
KOREL2D_API double apiGetTime(void);
KOREL2D_API void* apiOpenDir(const char* path);
// buffer: 256 bytes. 1 for an entry, 0 at the end.
KOREL2D_API int apiReadDir(void* handle, char* buffer);
KOREL2D_API int apiCloseDir(void* handle);
KOREL2D_API void* apiDllOpen(const char* path);
KOREL2D_API void* apiDllGetSymbol(void* handle, const char* symbol);
KOREL2D_API int apiDllClose(void* handle);
// Non-zero while an OpenGL context is current on this thread.
KOREL2D_API void* getGlContext(void);
// Date and time of the build.
KOREL2D_API const char* get_ctime(void);

// Hash tables.
typedef struct mpiHashSlot {
    uint32_t key;
    char* name;
    void* value;
} mpiHashSlot;

struct mpiHash {
    uint32_t size;
    uint32_t count;
    uint32_t autoDelete;
    mpiHashSlot* slots; // size + 1 slots
};

// A table for about n entries, or null.
KOREL2D_API mpiHash* mpiHashCreate(uint32_t n);
KOREL2D_API int mpiHashSetAutoDelete(mpiHash* table, int on);
KOREL2D_API int mpiHashInsert(mpiHash* table, uint32_t key, void* value);
KOREL2D_API void* mpiHashSearch(mpiHash* table, uint32_t key);
KOREL2D_API int mpiHashDelete(mpiHash* table, uint32_t key);
KOREL2D_API int mpiHashInsertAscii(mpiHash* table, const char* name, void* value);
KOREL2D_API void* mpiHashSearchAscii(mpiHash* table, const char* name);
KOREL2D_API int mpiHashDeleteAscii(mpiHash* table, const char* name);
KOREL2D_API int mpiHashClear(mpiHash* table);
KOREL2D_API int mpiHashRemove(mpiHash* table);
KOREL2D_API uint32_t mpiHashCalcKey(double a, double b);
KOREL2D_API uint32_t mpiHashCalcAsciiKey(void);

} // extern "C"
