/* A host written in C: it includes the public headers as C and finds the flat interface by
 * plain names through dlopen, as hosts in other languages do. It runs a view of the built-in
 * Constant (2) and Internal (5) sources, the installed sample plug-in (100) and type 999, which
 * no installed plug-in provides; with `outside`, KOREL_HOME holds a plug-in built out of the
 * tree against the installed header, which provides 999.
 *   cHost LIBRARY VIEWFILE [outside]
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

static void* library;
static int failures;

static void expect(int condition, const char* what)
{
    if (!condition) {
        fprintf(stderr, "C host: %s\n", what);
        ++failures;
    }
}

static int is(const char* text, const char* expected)
{
    return text && strcmp(text, expected) == 0;
}

/* Declares name_, the function found by its plain name, typed as the header declares it. */
#define FIND(name) __typeof__(&name) name##_ = (__typeof__(&name))dlsym(library, #name); \
    expect(name##_ != NULL, "the library lacks " #name)

int main(int argc, char** argv)
{
    static char log[65536];
    char text[256];
    const int outside = argc == 4 && strcmp(argv[3], "outside") == 0;
    if (argc < 3 || !(library = dlopen(argv[1], RTLD_NOW))) {
        fprintf(stderr, "usage: cHost LIBRARY VIEWFILE [outside]\n%s\n", argc < 3 ? "" : dlerror());
        return 2;
    }
    FIND(krViewLoad); FIND(krViewWidth); FIND(krViewFree); FIND(KGet_releaseshort);
    FIND(getLogMsg); FIND(setLogLevel); FIND(krDataSourceGetAll); FIND(krDataSourceName);
    FIND(krDataSourceLibName); FIND(krDataSourceType); FIND(krVarGetAll); FIND(krVarName); FIND(krVarGetStr);
    FIND(krViewStartAnim); FIND(krViewStop); FIND(krFree);
    /* The editing interface, declared in a header of its own, is exported all the same. */
    expect(dlsym(library, "elementCreate") != NULL, "the library lacks elementCreate");
    if (failures)
        return 1;
    expect(is(KGet_releaseshort_(), "3.4.1"), "the version is not 3.4.1");

    /* Warnings are kept only at level 2 and above. */
    setLogLevel_(2);
    VIEW_STRUCT* view = krViewLoad_(argv[2]);
    getLogMsg_(log, (int)sizeof log);
    if (!view || krViewWidth_(view) <= 0 || krViewWidth_(NULL) != -1) {
        fprintf(stderr, "C host: the view did not load\n%s", log);
        return 1;
    }
    int count = 0, seen = 0;
    DD_DATA_TYPE_STRUCT** sources = krDataSourceGetAll_(view, &count);
    expect(sources != NULL && count == 4, "the view does not list four sources");
    for (int i = 0; sources && i < count; ++i) {
        const char* name = krDataSourceName_(sources[i]);
        const char* libName = krDataSourceLibName_(sources[i]);
        const int type = krDataSourceType_(sources[i]);
        seen |= type == 2 ? 1 : type == 5 ? 2 : type == 100 ? 4 : type == 999 ? 8 : 16;
        if (type == 100)
            expect(outside || is(libName, "libKrdExample.so"), "the sample source does not come from libKrdExample.so");
        if (type == 999) {
            expect(outside ? is(name, "Outside") && is(libName, "libKrdOutside.so")
                           : is(name, "unknown Data Source 999"),
                   "type 999 is not named by the out-of-tree plug-in, or as unknown without it");
            int n = 0;
            VARIABLE_STRUCT** kept = krVarGetAll_(sources[i], &n);
            expect(kept && n == 1 && is(krVarName_(kept[0]), "OUTSIDE_VALUE"),
                   "the source of type 999 lost its variable");
            krFree_(kept);
        }
    }
    krFree_(sources);
    expect(seen == 15, "the view's list of sources differs from what it holds");
    expect(outside || strstr(log, "Warning: data type 999 not found. deleted !\n") != NULL,
           "the load did not warn of the missing plug-in");

    expect(krViewStartAnim_(view) == 0, "krViewStartAnim failed");
    /* The data thread cycles every 10 ms; give it time on a loaded machine. */
    const char* progress = outside ? "OUTSIDE_VALUE" : "EX_RUNS";
    const struct timespec pause = {0, 10000000L};
    for (int waited = 0; waited < 3000 && !(krVarGetStr_(view, progress, text) >= 0 && atof(text) > 2); waited += 10)
        nanosleep(&pause, NULL);
    expect(krVarGetStr_(view, "CONST_PI", text) >= 0 && is(text, "3.500000"), "CONST_PI is not 3.500000");
    expect(krVarGetStr_(view, "INT_MASK", text) >= 0 && is(text, "31"), "INT_MASK did not start at 0x1F");
    if (outside)
        expect(krVarGetStr_(view, "OUTSIDE_VALUE", text) >= 0 && is(text, "7.250000"), "OUTSIDE_VALUE is not 7.250000");
    else
        expect(krVarGetStr_(view, "EX_THREAD", text) >= 0 && is(text, "Korel2D:Data"),
               "the sample plug-in was not asked on the data thread");
    expect(krViewStop_(view) == 0, "krViewStop failed");
    expect(krViewFree_(view) == 0, "krViewFree failed");
    if (!failures)
        printf("C host: %s ran its sources%s\n", argv[2], outside ? " with an out-of-tree plug-in" : "");
    return failures ? 1 : 0;
}
