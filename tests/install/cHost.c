/* A host written in C: it includes the public header as C and finds the flat interface by
 * plain names through dlopen, as hosts in other languages do. */
#include <Korel2D.h>
#include <KorelDataSource.h>

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

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

int main(int argc, char** argv)
{
    if (argc != 3) {
        fprintf(stderr, "usage: cHost LIBRARY VIEWFILE\n");
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
    if (!load || !width || !release || !version || !dlsym(library, "elementCreate") || !dlsym(library, "getLogMsg")) {
        fprintf(stderr, "a symbol of the flat interface is missing\n");
        return 1;
    }
    if (strcmp(version(), "3.4.1") != 0) {
        fprintf(stderr, "version %s\n", version());
        return 1;
    }
    VIEW_STRUCT* view = load(argv[2]);
    if (!view || width(view) <= 0 || width(NULL) != -1) {
        fprintf(stderr, "the view did not load\n");
        return 1;
    }
    printf("C host: %s loaded, %d units wide\n", argv[2], width(view));
    return release(view) == 0 ? 0 : 1;
}
