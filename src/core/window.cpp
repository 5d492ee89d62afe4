// The window handle: the size of the host's drawing surface and the settings of the last draw.
#include "core/handles.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <cstdlib>

WINDOW_STRUCT* krWindowCreate(void)
{
    WINDOW_STRUCT* window = static_cast<WINDOW_STRUCT*>(calloc(1, sizeof(WINDOW_STRUCT)));
    if (!window)
        return nullptr;
    window->magic = KR_WINDOW_MAGIC;
    window->settings.zoom = 1.0f;
    tkSetRgbMode(1);
    return window;
}

int krWindowFree(WINDOW_STRUCT* window)
{
    if (int check = checkWindow(window))
        return check;
    window->magic = 0;
    free(window);
    return 0;
}

int krWindowInit(WINDOW_STRUCT* window, int width, int height)
{
    if (int check = checkWindow(window))
        return check;
    glHint(GL_LINE_SMOOTH_HINT, GL_DONT_CARE);
    krdSetViewport(width, height);
    glFinish();
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    window->width = width;
    window->height = height;
    kriUpdateAttr();
    return 0;
}

int krWindowClear(WINDOW_STRUCT* window, VIEW_STRUCT* view)
{
    if (int check = checkWindowAndView(window, view))
        return check;
    glClearColor(view->pageColor[0], view->pageColor[1], view->pageColor[2], 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    return 0;
}

int krdSetViewport(int width, int height)
{
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width, 0, height, -1, 1);
    // One pixel less than the surface in both directions, as views have always been laid out.
    glViewport(0, 0, width - 1, height - 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    return 0;
}
