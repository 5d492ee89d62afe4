// Thin wrappers over the system for time, directories and dynamic loading, and the
// release texts of the library.

#include "base/base.h"

#include <GL/glx.h>
#include <dirent.h>
#include <dlfcn.h>
#include <sys/time.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace {

// Shared by KGet_release and KGet_releaseshort: each call overwrites the other's text.
char releaseText[128];
char buildTime[256];

// Loader messages go straight to standard output, not through the log: a missing optional
// symbol of a plug-in is reported but isn't an error of the library.
void printLine(const char* format, ...) __attribute__((format(printf, 1, 2)));
void printLine(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    vprintf(format, args);
    va_end(args);
    fflush(stdout);
}

} // namespace

extern "C" {

double apiGetTime(void)
{
    timeval now;
    gettimeofday(&now, nullptr);
    return now.tv_sec + now.tv_usec * 1e-6;
}

void* apiOpenDir(const char* path)
{
    return path ? opendir(path) : nullptr;
}

int apiReadDir(void* handle, char* buffer)
{
    if (!handle || !buffer)
        return 0;
    const dirent* entry = readdir(static_cast<DIR*>(handle));
    if (!entry)
        return 0;
    snprintf(buffer, 256, "%s", entry->d_name);
    return 1;
}

int apiCloseDir(void* handle)
{
    if (!handle)
        return 0;
    closedir(static_cast<DIR*>(handle));
    return 1;
}

void* apiDllOpen(const char* path)
{
    if (!path) {
        printLine("apiDllOpen: path = NULL\n");
        return nullptr;
    }
    dlerror(); // a stale message from an earlier call must not count as this call's failure
    void* handle = dlopen(path, RTLD_NOW);
    if (const char* error = dlerror()) {
        printLine("apiDllOpen: %s\n", error);
        return nullptr;
    }
    return handle;
}

void* apiDllGetSymbol(void* handle, const char* symbol)
{
    if (!handle || !symbol) {
        printLine("apiDllGetSymbol: handle 0x%x symbol 0x%x\n", static_cast<unsigned>(reinterpret_cast<uintptr_t>(handle)),
                  static_cast<unsigned>(reinterpret_cast<uintptr_t>(symbol)));
        return nullptr;
    }
    dlerror();
    void* address = dlsym(handle, symbol);
    if (const char* error = dlerror()) {
        printLine("apiDllGetSymbol: %s\n", error);
        return nullptr;
    }
    return address;
}

int apiDllClose(void* handle)
{
    if (handle)
        dlclose(handle);
    return 0;
}

// A host may render through EGL (off-screen, without an X display); its context counts as
// well. EGL is found in the process rather than linked, so hosts without it pay nothing.
// The look-up is repeated until it succeeds, since a host may load EGL after the first call.
void* getGlContext(void)
{
    if (void* context = glXGetCurrentContext())
        return context;
    using GetContext = void* (*)();
    static std::atomic<GetContext> eglGetCurrentContext{nullptr};
    GetContext get = eglGetCurrentContext.load(std::memory_order_relaxed);
    if (!get) {
        get = reinterpret_cast<GetContext>(dlsym(RTLD_DEFAULT, "eglGetCurrentContext"));
        eglGetCurrentContext.store(get, std::memory_order_relaxed);
    }
    return get ? get() : nullptr;
}

// Also the file revision the writer stores.
int KGet_releasenr(void)
{
    return 304;
}

const char* KGet_release(void)
{
    // __DATE__ is "Mmm dd yyyy": the year starts at offset 7.
    snprintf(releaseText, sizeof releaseText, "Korel2D %d.%d.%d %s", KOREL2D_VERSION_MAJOR, KOREL2D_VERSION_MINOR,
             KOREL2D_VERSION_PATCH, &__DATE__[7]);
    return releaseText;
}

const char* KGet_releaseshort(void)
{
    snprintf(releaseText, sizeof releaseText, "%d.%d.%d", KOREL2D_VERSION_MAJOR, KOREL2D_VERSION_MINOR,
             KOREL2D_VERSION_PATCH);
    return releaseText;
}

const char* get_ctime(void)
{
    snprintf(buildTime, sizeof buildTime, "%s %s", __DATE__, __TIME__);
    return buildTime;
}

} // extern "C"
