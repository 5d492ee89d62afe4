/* A minimal host: it makes an OpenGL context, loads a view, runs it for 100 frames and prints
 * the colour at the centre of the last one. The context here is off-screen (EGL on Mesa's
 * surfaceless platform), so it runs with or without a display; a host with a window makes it
 * with GLX instead and swaps buffers after each frame. The library's calls are the same.
 * Usage: minimalHost VIEWFILE; the README's host section shows how to build it.
 */
#include <Korel2D.h>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>

#include <stdio.h>

enum { kWidth = 640, kHeight = 480, kFrames = 100 };

/* 8-bit colour and a stencil buffer, which the groups' clip areas need; made current. */
static EGLDisplay makeContext(void)
{
    const EGLint attributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                 EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_STENCIL_SIZE, 8,
                                 EGL_NONE};
    const EGLint size[] = {EGL_WIDTH, kWidth, EGL_HEIGHT, kHeight, EGL_NONE};
    PFNEGLGETPLATFORMDISPLAYEXTPROC getDisplay =
        (PFNEGLGETPLATFORMDISPLAYEXTPROC)eglGetProcAddress("eglGetPlatformDisplayEXT");
    EGLDisplay display =
        getDisplay ? getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, NULL) : EGL_NO_DISPLAY;
    EGLConfig config;
    EGLint count = 0;
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, NULL, NULL) || !eglBindAPI(EGL_OPENGL_API) ||
        !eglChooseConfig(display, attributes, &config, 1, &count) || count == 0)
        return EGL_NO_DISPLAY;
    EGLSurface surface = eglCreatePbufferSurface(display, config, size);
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, NULL);
    if (surface == EGL_NO_SURFACE || context == EGL_NO_CONTEXT || !eglMakeCurrent(display, surface, surface, context))
        return EGL_NO_DISPLAY;
    return display;
}

int main(int argc, char** argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: minimalHost VIEWFILE\n");
        return 2;
    }
    /* The context comes first: a load makes the textures of the view's images. */
    EGLDisplay display = makeContext();
    if (display == EGL_NO_DISPLAY) {
        fprintf(stderr, "minimalHost: no EGL context\n");
        return 1;
    }
    VIEW_STRUCT* view = krViewLoad(argv[1]);
    if (!view) {
        char why[1024];
        getLogMsg(why, sizeof why);
        fprintf(stderr, "minimalHost: cannot load %s: %s", argv[1], why);
        return 1;
    }
    WINDOW_STRUCT* window = krWindowCreate();
    krWindowInit(window, kWidth, kHeight);
    /* Animated: the library's data thread asks the view's sources every 10 ms. */
    if (krViewStartAnim(view) != 0)
        fprintf(stderr, "minimalHost: %s did not start; it is drawn as stored\n", argv[1]);
    for (int frame = 0; frame < kFrames; ++frame) {
        krWindowClear(window, view);
        krViewDraw(window, view, 0, 0, 1.0f); /* page origin at pixel (0, 0), zoom 1 */
        /* A host with a window swaps its buffers here. */
    }
    unsigned char rgb[3];
    glReadPixels(kWidth / 2, kHeight / 2, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, rgb);
    printf("minimalHost: %s drawn %d times, centre pixel %d %d %d\n", argv[1], kFrames, rgb[0], rgb[1], rgb[2]);
    krViewStop(view);
    krViewFree(view);
    krWindowFree(window);
    eglTerminate(display);
    return 0;
}
