// The render plane: a view rendered into a texture of its own, which stands in for the whole
// view in the frames where nothing changed. A host that places a view in a scene of its own
// pays one textured quad per frame instead of the whole walk.
#include "base/truncate.h"
#include "graphics/graphics.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <cstring>

namespace {

constexpr float kTexel = 1.0f / float(kPlaneTextureSize);

// What the texture starts out as: transparent black, so that an unrendered corner shows nothing.
const unsigned char kBlankPlane[kPlaneTextureSize * kPlaneTextureSize * 4] = {};

// The driver's best anisotropic filtering, 1 where it has none.
GLfloat maxAnisotropy = 1.0f;

// The host's viewport while a rendering runs; one rendering at a time.
GLint savedViewport[4];

} // namespace

// Off-screen buffers would spare the host's frame buffer, but need what not every display
// has; the rendering goes to the current buffer and the host's next clear covers it again.
int pbufferInit(int, int)
{
    return 0;
}

void pbufferEnable(void) {}

void pbufferDisable(void) {}

void pbufferDestroy(void) {}

int createRenderTexture(VIEW_STRUCT* view)
{
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glGenTextures(1, &view->planeTexture);
    glBindTexture(GL_TEXTURE_2D, view->planeTexture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, kPlaneTextureSize, kPlaneTextureSize, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 kBlankPlane);
    // Asked only of a driver that has it, so that no GL error is left for the host to find.
    const char* extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    if (extensions && std::strstr(extensions, "GL_EXT_texture_filter_anisotropic"))
        glGetFloatv(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, &maxAnisotropy);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    return 0;
}

int renderSaveViewport(VIEW_STRUCT*)
{
    glGetIntegerv(GL_VIEWPORT, savedViewport);
    return 0;
}

// The page fills the lower left of the frame buffer, laid out as windows lay out views: one
// pixel less than the page in each direction.
int renderSetViewport(VIEW_STRUCT* view)
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(double(view->x), double(view->x) + double(view->width), double(view->y),
            double(view->y) + double(view->height), -1, 1);
    glViewport(0, 0, truncToInt(view->width - 1), truncToInt(view->height - 1));
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    return 0;
}

// A page larger than the texture keeps the plane's last rendering, as GL would refuse the copy.
int fillRenderTexture(VIEW_STRUCT* view)
{
    const int width = truncToInt(view->width), height = truncToInt(view->height);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBindTexture(GL_TEXTURE_2D, view->planeTexture);
    if (width >= 0 && height >= 0 && width <= kPlaneTextureSize && height <= kPlaneTextureSize)
        glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, width, height);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    return 0;
}

int restoreViewPort(VIEW_STRUCT*)
{
    glViewport(savedViewport[0], savedViewport[1], savedViewport[2], savedViewport[3]);
    return 0;
}

// The quad covers the page in view units; the caller's matrix places and zooms it. White, not
// the colour factor: the factor was applied when the page was rendered.
int drawRenderTexture(VIEW_STRUCT* view)
{
    const float x = view->x, y = view->y, w = view->width, h = view->height;
    glColor4f(1, 1, 1, 1);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBindTexture(GL_TEXTURE_2D, view->planeTexture);
    // A zoomed page, maybe tilted in the host's scene, is sharper with anisotropic filtering;
    // at its own size llvmpipe's would blur it where plain filtering copies it texel for texel.
    if (maxAnisotropy > 1.0f)
        glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, view->zoom == 1.0f ? 1.0f : maxAnisotropy);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2f(x, y);
    glTexCoord2f(0, h * kTexel);
    glVertex2f(x, y + h);
    glTexCoord2f(w * kTexel, h * kTexel);
    glVertex2f(x + w, y + h);
    glTexCoord2f(w * kTexel, 0);
    glVertex2f(x + w, y);
    glEnd();
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    return 0;
}

// For hosts that compiled the quad into a list of their own.
int drawListTexture(VIEW_STRUCT* view)
{
    glCallList(view->planeList);
    return 0;
}
