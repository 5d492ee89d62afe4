/* A host that includes Korel2D.h alone, compiled as C89 and as C++11 by headerCheck.sh: it
 * loads, runs, draws and reads a view through the flat interface only. */
#include <Korel2D.h>

#include <stdio.h>

int runOnce(const char* path, WINDOW_STRUCT* window)
{
    char text[256];
    int written;
    VIEW_STRUCT* view = krViewLoad(path);
    if (!view) {
        getLogMsg(text, (int)sizeof text);
        fprintf(stderr, "%s", text);
        return 1;
    }
    krViewStart(view);
    krViewDraw(window, view, 0.0f, 0.0f, 1.0f);
    written = krVarGetStr(view, "VALUE", text);
    krViewStop(view);
    krViewFree(view);
    return written < 0;
}
