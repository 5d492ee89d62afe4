/* A host written in C: it includes the public header as C and finds the flat interface by
 * plain names through dlopen, as hosts in other languages do.
 *
 *   cHost LIBRARY VIEWFILE            loads the view and checks its size
 *   cHost LIBRARY VIEWFILE sources    runs a view whose sources are built in, plug-ins found
 *                                     through KOREL_HOME, and one whose plug-in is missing
 */
#define _POSIX_C_SOURCE 200809L /* nanosleep */

#include <Korel2D.h>
#include <KorelDataSource.h>

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

/* A plug-in compiled as C sees the data-source records laid out as the library sees them. */
#define LAYOUT(name, condition) typedef char name[(condition) ? 1 : -1]
LAYOUT(paraLayout, sizeof(PARA_STRUCT) == 24 && offsetof(PARA_STRUCT, size) == 16);
LAYOUT(optionLayout, sizeof(OPTION_STRUCT) == 56 && offsetof(OPTION_STRUCT, items) == 48);
LAYOUT(variableLayout, sizeof(VARIABLE_STRUCT) == 216 && offsetof(VARIABLE_STRUCT, lastValue) == 120 &&
                           offsetof(VARIABLE_STRUCT, written) == 208);
LAYOUT(sourceLayout, sizeof(DD_DATA_TYPE_STRUCT) == 1104 && offsetof(DD_DATA_TYPE_STRUCT, libPath) == 184 &&
                         offsetof(DD_DATA_TYPE_STRUCT, info) == 984 && offsetof(DD_DATA_TYPE_STRUCT, next) == 1096);

typedef VIEW_STRUCT* (*LoadFn)(const char*);
typedef int (*ViewFn)(VIEW_STRUCT*);
typedef const char* (*TextFn)(void);
typedef DD_DATA_TYPE_STRUCT** (*SourcesFn)(VIEW_STRUCT*, int*);
typedef const char* (*SourceTextFn)(DD_DATA_TYPE_STRUCT*);
typedef int (*SourceTypeFn)(DD_DATA_TYPE_STRUCT*);
typedef VARIABLE_STRUCT** (*VariablesFn)(DD_DATA_TYPE_STRUCT*, int*);
typedef const char* (*VariableNameFn)(VARIABLE_STRUCT*);
typedef int (*GetStrFn)(VIEW_STRUCT*, const char*, char*);
typedef void (*FreeFn)(void*);
typedef int (*LogFn)(char*, int);
typedef int (*LevelFn)(int);

static int failures;

static void expect(int condition, const char* what)
{
    if (!condition) {
        fprintf(stderr, "C host: %s\n", what);
        ++failures;
    }
}

static void* symbol(void* library, const char* name)
{
    void* address = dlsym(library, name);
    if (!address) {
        fprintf(stderr, "C host: the library lacks %s\n", name);
        ++failures;
    }
    return address;
}

static void sleepMs(long ms)
{
    struct timespec pause;
    pause.tv_sec = ms / 1000;
    pause.tv_nsec = (ms % 1000) * 1000000L;
    nanosleep(&pause, NULL);
}

/* The view's sources: the built-in Constant (2) and Internal (5), the installed sample plug-in
 * (100) and type 999, which no installed plug-in provides. With `outside` set, KOREL_HOME holds
 * instead a plug-in built out of the tree against the installed header, which provides 999. */
static int runSources(void* library, VIEW_STRUCT* view, const char* log, int outside)
{
    SourcesFn getAll = (SourcesFn)symbol(library, "krDataSourceGetAll");
    SourceTextFn name = (SourceTextFn)symbol(library, "krDataSourceName");
    SourceTextFn libName = (SourceTextFn)symbol(library, "krDataSourceLibName");
    SourceTypeFn type = (SourceTypeFn)symbol(library, "krDataSourceType");
    VariablesFn variables = (VariablesFn)symbol(library, "krVarGetAll");
    VariableNameFn variableName = (VariableNameFn)symbol(library, "krVarName");
    GetStrFn getStr = (GetStrFn)symbol(library, "krVarGetStr");
    ViewFn startAnim = (ViewFn)symbol(library, "krViewStartAnim");
    ViewFn stop = (ViewFn)symbol(library, "krViewStop");
    FreeFn release = (FreeFn)symbol(library, "krFree");
    if (failures)
        return 1;

    int count = 0;
    DD_DATA_TYPE_STRUCT** sources = getAll(view, &count);
    expect(sources != NULL && count == 4, "the view does not list four sources");
    int seen = 0;
    for (int i = 0; sources && i < count; ++i) {
        DD_DATA_TYPE_STRUCT* source = sources[i];
        switch (type(source)) {
        case 2: seen |= 1; break;
        case 5: seen |= 2; break;
        case 100:
            seen |= 4;
            expect(outside || (libName(source) && strcmp(libName(source), "libKrdExample.so") == 0),
                   "the sample source does not come from libKrdExample.so");
            break;
        case 999: {
            seen |= 8;
            if (outside) {
                expect(name(source) && strcmp(name(source), "Outside") == 0 && libName(source) &&
                           strcmp(libName(source), "libKrdOutside.so") == 0,
                       "type 999 does not come from the out-of-tree libKrdOutside.so");
            } else {
                expect(name(source) && strcmp(name(source), "unknown Data Source 999") == 0,
                       "the source without a plug-in is not named as unknown");
            }
            int n = 0;
            VARIABLE_STRUCT** kept = variables(source, &n);
            expect(kept != NULL && n == 1 && strcmp(variableName(kept[0]), "OUTSIDE_VALUE") == 0,
                   "the source of type 999 lost its variable");
            release(kept);
            break;
        }
        default: expect(0, "the view lists a source it does not hold"); break;
        }
    }
    release(sources);
    expect(seen == 15, "a source of the view is missing from its list");
    expect(outside || strstr(log, "Warning: data type 999 not found. deleted !\n") != NULL,
           "the load did not warn of the missing plug-in");

    expect(startAnim(view) == 0, "krViewStartAnim failed");
    /* The data thread cycles every 10 ms; give it time on a loaded machine. */
    char text[256];
    const char* progress = outside ? "OUTSIDE_VALUE" : "EX_RUNS";
    for (int waited = 0; waited < 3000; waited += 10) {
        sleepMs(10);
        if (getStr(view, progress, text) >= 0 && atof(text) > 2)
            break;
    }
    expect(getStr(view, "CONST_PI", text) >= 0 && strcmp(text, "3.500000") == 0, "CONST_PI is not 3.500000");
    expect(getStr(view, "INT_MASK", text) >= 0 && strcmp(text, "31") == 0, "INT_MASK did not start at 0x1F");
    if (outside) {
        expect(getStr(view, "OUTSIDE_VALUE", text) >= 0 && strcmp(text, "7.250000") == 0,
               "OUTSIDE_VALUE is not 7.250000");
    } else {
        expect(getStr(view, "EX_RUNS", text) >= 0 && atoi(text) > 0, "the sample plug-in never ran");
        expect(getStr(view, "EX_THREAD", text) >= 0 && strcmp(text, "Korel2D:Data") == 0,
               "the sample plug-in was not asked on the data thread");
    }
    expect(stop(view) == 0, "krViewStop failed");
    return failures ? 1 : 0;
}

int main(int argc, char** argv)
{
    int outside = argc == 4 && strcmp(argv[3], "outside") == 0;
    int sourcesMode = outside || (argc == 4 && strcmp(argv[3], "sources") == 0);
    if (argc != 3 && !sourcesMode) {
        fprintf(stderr, "usage: cHost LIBRARY VIEWFILE [sources|outside]\n");
        return 2;
    }
    void* library = dlopen(argv[1], RTLD_NOW);
    if (!library) {
        fprintf(stderr, "dlopen: %s\n", dlerror());
        return 1;
    }
    LoadFn load = (LoadFn)dlsym(library, "krViewLoad");
    ViewFn width = (ViewFn)dlsym(library, "krViewWidth");
    ViewFn release = (ViewFn)dlsym(library, "krViewFree");
    TextFn version = (TextFn)dlsym(library, "KGet_releaseshort");
    LogFn getLog = (LogFn)dlsym(library, "getLogMsg");
    LevelFn logLevel = (LevelFn)dlsym(library, "setLogLevel");
    if (!load || !width || !release || !version || !dlsym(library, "elementCreate") || !getLog || !logLevel) {
        fprintf(stderr, "a symbol of the flat interface is missing\n");
        return 1;
    }
    if (strcmp(version(), "3.4.1") != 0) {
        fprintf(stderr, "version %s\n", version());
        return 1;
    }
    /* Warnings are kept only at level 2 and above. */
    static char log[65536];
    if (sourcesMode)
        logLevel(2);
    VIEW_STRUCT* view = load(argv[2]);
    getLog(log, (int)sizeof log);
    if (!view || width(view) <= 0 || width(NULL) != -1) {
        fprintf(stderr, "the view did not load\n%s", log);
        return 1;
    }
    if (sourcesMode) {
        int result = runSources(library, view, log, outside);
        if (release(view) != 0)
            result = 1;
        if (result == 0)
            printf("C host: %s ran its sources%s\n", argv[2], outside ? " with an out-of-tree plug-in" : "");
        return result;
    }
    printf("C host: %s loaded, %d units wide\n", argv[2], width(view));
    return release(view) == 0 ? 0 : 1;
}
