// The draw entries a host calls once per frame. Each saves the GL state it touches, sets up
// what the walk needs, refreshes the groups' clip data when position or zoom changed, and walks.
#include "actions/actions.h"
#include "base/base.h"
#include "base/truncate.h"
#include "core/core.h"
#include "core/handles.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <cmath>

namespace {

// GL_TEXTURE_BIT | GL_VIEWPORT_BIT | GL_STENCIL_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_LIGHTING_BIT |
// GL_POLYGON_STIPPLE_BIT | GL_LINE_BIT | GL_POINT_BIT | GL_CURRENT_BIT
constexpr GLbitfield kSavedAttributes = 0x40D57;

void disableForDraw()
{
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_STENCIL_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_DITHER);
    glDisable(GL_FOG);
    glDisable(GL_CULL_FACE);
}

void applyColorFactor(const VIEW_STRUCT* view)
{
    kvSetColorFactor(view->colorFactor[0], view->colorFactor[1], view->colorFactor[2], view->colorFactor[3]);
}

DRAW_SETTINGS settingsOf(const VIEW_STRUCT* view, float zoom)
{
    return DRAW_SETTINGS{zoom, view->scissorType, view->useDepthBuffer, view->useLineScaling};
}

// Clip boxes follow the page on the screen: they are worked out again only when the page
// moved or the zoom changed noticeably.
bool placementChanged(VIEW_STRUCT* view)
{
    if (view->posX == view->lastPosX && view->posY == view->lastPosY && std::fabs(view->zoom - view->lastZoom) <= 0.01f)
        return false;
    view->lastPosX = view->posX;
    view->lastPosY = view->posY;
    view->lastZoom = view->zoom;
    return true;
}

// Running synchronously, the draw runs the data cycle itself, right before the values are used.
void walk(VIEW_STRUCT* view, DRAW_SETTINGS* settings)
{
    if (view->runMode == KR_RUN_SYNCHRONOUS)
        fillDP(view->dataTypes);
    drawUserElements(view->elements, nullptr, int(view->runMode), int(view->haltMode), 1, settings, 0);
}

// What the direct and the plane entries switch off, beyond what every draw does.
void disableForPlane()
{
    disableForDraw();
    glDisable(GL_BLEND);
    glDisable(GL_TEXTURE_2D);
}

// The state both plane entries draw the page with, the colour factor, and the groups' clip
// data, refreshed when the page moved or zoomed.
DRAW_SETTINGS prepareForPlane(VIEW_STRUCT* view, float zoom)
{
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_FASTEST);
    applyColorFactor(view);
    if (placementChanged(view))
        kriFindScissor(view->elements, 0, 0, 0, 0, 1.0f);
    return settingsOf(view, zoom);
}

int checkViewAndContext(VIEW_STRUCT* view)
{
    if (int check = checkView(view))
        return check;
    return getGlContext() ? 0 : -3;
}

} // namespace

int krViewDraw(WINDOW_STRUCT* window, VIEW_STRUCT* view, float x, float y, float zoom)
{
    if (int check = checkWindowAndView(window, view))
        return check;
    if (!getGlContext())
        return -3;
    ViewLock lock(view);
    glPushAttrib(kSavedAttributes);
    applyColorFactor(view);
    disableForDraw();
    glMatrixMode(GL_PROJECTION);
    tkPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    krdSetViewport(window->width, window->height);

    view->posX = truncToInt(x);
    view->posY = truncToInt(y);
    view->zoom = zoom;
    window->settings = settingsOf(view, zoom);
    if (placementChanged(view))
        kriFindScissor(view->elements, x, y, view->x, view->y, zoom);

    tkPushMatrix();
    glTranslatef(x, y, 0);
    glScalef(zoom, zoom, 1);
    glTranslatef(-view->x, -view->y, 0);
    walk(view, &window->settings);
    tkPopMatrix();

    glMatrixMode(GL_PROJECTION);
    tkPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopAttrib();
    return 0;
}

int krViewDrawPlane_Direct(VIEW_STRUCT* view)
{
    if (int check = checkViewAndContext(view))
        return check;
    ViewLock lock(view);
    glPushAttrib(kSavedAttributes);
    disableForPlane();
    if (view->useDepthBuffer)
        glEnable(GL_DEPTH_TEST);
    else
        glDisable(GL_DEPTH_TEST);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    DRAW_SETTINGS settings = prepareForPlane(view, view->zoom);

    tkPushMatrix();
    glTranslatef(float(view->posX), float(view->posY), 0);
    glScalef(view->zoom, view->zoom, 1);
    if (view->backgroundMode) {
        glColor3f(view->pageColor[0], view->pageColor[1], view->pageColor[2]);
        tkBegin(GL_POLYGON);
        glVertex2f(view->x, view->y);
        glVertex2f(view->x, view->y + view->height);
        glVertex2f(view->x + view->width, view->y + view->height);
        glVertex2f(view->x + view->width, view->y);
        tkEnd();
    }
    walk(view, &settings);
    tkPopMatrix();
    glPopAttrib();
    return 0;
}

// The page at zoom 1 into the lower left of the host's colour buffer, and from there into the
// plane's texture. The host's projection is kept, so that the quad that follows lands where
// a direct frame would draw.
static void renderPlane(VIEW_STRUCT* view)
{
    renderSaveViewport(view);
    glMatrixMode(GL_PROJECTION);
    tkPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    tkPushMatrix();
    if (!view->planeTexture) {
        pbufferInit(kPlaneTextureSize, kPlaneTextureSize);
        pbufferEnable();
        createRenderTexture(view);
    } else {
        pbufferEnable();
    }
    renderSetViewport(view);
    // Making the texture left texturing and blending on.
    disableForPlane();
    DRAW_SETTINGS settings = prepareForPlane(view, 1.0f);
    // Cleared to transparent black, so that what the page doesn't paint stays see-through; the
    // host's own clear colour is given back.
    GLfloat hostClear[4];
    glGetFloatv(GL_COLOR_CLEAR_VALUE, hostClear);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glClearColor(hostClear[0], hostClear[1], hostClear[2], hostClear[3]);
    walk(view, &settings);
    glFlush();
    fillRenderTexture(view);
    view->planeDirty = 0;
    pbufferDisable();
    restoreViewPort(view);
    tkPopMatrix();
    glMatrixMode(GL_PROJECTION);
    tkPopMatrix();
    glMatrixMode(GL_MODELVIEW);
}

int krViewDrawPlane(VIEW_STRUCT* view, int mode)
{
    if (mode == KR_PLANE_DIRECT) {
        krViewDrawPlane_Direct(view);
        return 0;
    }
    if (int check = checkViewAndContext(view))
        return check;
    const GLboolean depthTest = glIsEnabled(GL_DEPTH_TEST);
    ViewLock lock(view);
    glPushAttrib(kSavedAttributes);
    disableForPlane();
    glDisable(GL_DEPTH_TEST);
    if (mode != KR_PLANE_CACHED)
        view->planeDirty = 1;
    if (view->planeDirty) {
        renderPlane(view);
        if (depthTest)
            glEnable(GL_DEPTH_TEST);
    }
    tkPushMatrix();
    glTranslatef(float(view->posX), float(view->posY), 0);
    glScalef(view->zoom, view->zoom, 1);
    drawRenderTexture(view);
    tkPopMatrix();
    glPopAttrib();
    return 0;
}

int krViewDrawWindow(VIEW_STRUCT* view)
{
    if (int check = checkViewAndContext(view))
        return check;
    ViewLock lock(view);
    glDisable(GL_STENCIL_TEST);
    glDisable(GL_BLEND);
    glDisable(GL_LIGHTING);
    glDisable(GL_DITHER);
    glDisable(GL_FOG);
    glDisable(GL_CULL_FACE);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_FASTEST);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexEnvf(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glShadeModel(GL_FLAT);
    applyColorFactor(view);

    DRAW_SETTINGS settings = settingsOf(view, 1.0f);
    if (placementChanged(view))
        kriFindScissor(view->elements, 0, 0, view->x, view->y, 1.0f);

    tkPushMatrix();
    walk(view, &settings);
    tkPopMatrix();
    return 0;
}
