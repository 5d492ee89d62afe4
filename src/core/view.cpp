// Loading, freeing and configuring a view handle.
#include "KorelEdit.h"
#include "actions/actions.h"
#include "base/base.h"
#include "base/truncate.h"
#include "core/handles.h"
#include "core/runModes.h"
#include "data/data.h"
#include "glyph/GlyphKit.h"

#include <GL/gl.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

static void setUpFonts()
{
    gkSetDebugLevel(1);
    if (gkLibraryInit() != 1)
        return;
    gkLibraryAddPath(".");
    gkLibraryAddPath("../fonts");
    gkLibraryAddPath("../../fonts");
    if (const char* home = getenv("KOREL_HOME")) {
        char path[1024];
        snprintf(path, sizeof path, "%s/fonts", home);
        gkLibraryAddPath(path);
    }
    gkLibraryParseFonts();
}

static void deleteSources(DD_DATA_TYPE_STRUCT** list, int withOptions)
{
    while (*list)
        delDataType(list, *list, withOptions);
}

static void releaseView(VIEW_STRUCT* view)
{
    elementDeleteAll(&view->elements);
    deleteSources(&view->dataTypes, 0);
    deleteSources(&view->knownTypes, 1);
    mpiHashRemove(view->varHash);
    pthread_mutex_destroy(&view->mutex);
    view->magic = 0;
    free(view);
}

VIEW_STRUCT* krViewLoad(const char* path)
{
    if (!path)
        return nullptr;
    VIEW_STRUCT* view = static_cast<VIEW_STRUCT*>(calloc(1, sizeof(VIEW_STRUCT)));
    // Numbers in the library are always read with a decimal point.
    setlocale(LC_NUMERIC, "C");
    if (!view)
        return nullptr;
    view->magic = KR_VIEW_MAGIC;
    view->zoom = 1.0f;
    view->backgroundMode = 1;
    for (float& f : view->colorFactor)
        f = 1.0f;
    view->varHash = mpiHashCreate(50);
    pthread_mutex_init(&view->mutex, nullptr);
    setUpFonts();
    // Image records make their textures while loading.
    if (getGlContext())
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    int result = loadFile(path, &view->elements, &view->dataTypes, view);
    view->runMode = KR_RUN_STOPPED;
    if (result != 0) {
        releaseView(view);
        return nullptr;
    }
    // What is installed here describes itself; the view's sources take over the descriptions
    // and entry points of the matching kinds. Nothing is opened before the start.
    kriLoadStaticDataSources(&view->knownTypes);
    kriLoadDataSources(&view->knownTypes);
    updateDataTypes(view->knownTypes, view->dataTypes);
    deleteSources(&view->knownTypes, 1);
    assignVariablesReadWrite(view->elements, view->dataTypes);
    return view;
}

VIEW_STRUCT* krViewLoadData(const void* buffer, size_t size)
{
    if (!buffer && size > 0)
        return nullptr;
    // A unique name per load, so that two loads at the same moment don't meet in one file.
    char path[1024];
    snprintf(path, sizeof path, "%s/%s", "/tmp", "krTmpXXXXXX.k");
    int fd = mkstemps(path, 2);
    if (fd < 0) {
        perror("open fd");
        return nullptr;
    }
    FILE* file = fdopen(fd, "wb");
    if (!file) {
        perror("open fd");
        close(fd);
        remove(path);
        return nullptr;
    }
    bool written = size == 0 || fwrite(buffer, 1, size, file) == size;
    fclose(file);
    VIEW_STRUCT* view = written ? krViewLoad(path) : nullptr;
    remove(path);
    return view;
}

int krViewFree(VIEW_STRUCT* view)
{
    if (int check = checkView(view))
        return check;
    if (view->runMode != KR_RUN_STOPPED)
        krViewStop(view);
    finishPendingStop(view);
    if (view->planeTexture && getGlContext())
        glDeleteTextures(1, &view->planeTexture);
    releaseView(view);
    return 0;
}

int krViewSetColorFactor(VIEW_STRUCT* view, float r, float g, float b, float a)
{
    if (int check = checkView(view))
        return check;
    view->colorFactor[0] = r;
    view->colorFactor[1] = g;
    view->colorFactor[2] = b;
    view->colorFactor[3] = a;
    return 0;
}

int krViewSetScissorType(VIEW_STRUCT* view, int type)
{
    if (int check = checkView(view))
        return check;
    view->scissorType = uint32_t(type);
    return 0;
}

int krViewSetUseDepthBuffer(VIEW_STRUCT* view, int flag)
{
    if (int check = checkView(view))
        return check;
    view->useDepthBuffer = uint32_t(flag);
    return 0;
}

int krViewSetUseLineScaling(VIEW_STRUCT* view, int flag)
{
    if (int check = checkView(view))
        return check;
    view->useLineScaling = uint32_t(flag);
    return 0;
}

void krSetBackgroundMode(VIEW_STRUCT* view, int flag)
{
    if (checkView(view) == 0)
        view->backgroundMode = uint32_t(flag);
}

// Sizes and positions share the result with the error codes.
int krViewWidth(VIEW_STRUCT* view)
{
    if (int check = checkView(view))
        return check;
    return truncToInt(view->width);
}

int krViewHeight(VIEW_STRUCT* view)
{
    if (int check = checkView(view))
        return check;
    return truncToInt(view->height);
}

int krViewPosX(VIEW_STRUCT* view)
{
    if (int check = checkView(view))
        return check;
    return truncToInt(view->x + view->width * 0.5);
}

int krViewPosY(VIEW_STRUCT* view)
{
    if (int check = checkView(view))
        return check;
    return truncToInt(view->y + view->height * 0.5);
}
