#include "OffscreenGl.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/glx.h>
#include <X11/Xlib.h>

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace korelgen {
namespace {

// Xlib's default handler exits the process; a failed request must only fail the open.
int reportXError(Display*, XErrorEvent* event)
{
    std::fprintf(stderr, "X error: request %d, code %d\n", event->request_code, event->error_code);
    return 0;
}

} // namespace

OffscreenGl::~OffscreenGl()
{
    close();
}

void OffscreenGl::close()
{
    release();
    if (kind_[0] == 'G') {
        Display* d = static_cast<Display*>(display_);
        if (context_)
            glXDestroyContext(d, static_cast<GLXContext>(context_));
        if (surface_ && window_)
            glXDestroyWindow(d, surface_);
        else if (surface_)
            glXDestroyPbuffer(d, surface_);
        if (window_)
            XDestroyWindow(d, window_);
        XCloseDisplay(d);
    } else if (kind_[0] == 'E') {
        EGLDisplay d = display_;
        if (context_)
            eglDestroyContext(d, context_);
        if (eglSurface_)
            eglDestroySurface(d, eglSurface_);
        eglTerminate(d);
    }
    kind_ = "none";
    display_ = nullptr;
    surface_ = 0;
    window_ = 0;
    eglSurface_ = nullptr;
    context_ = nullptr;
}

bool OffscreenGl::connectGlx(std::string* why)
{
    XSetErrorHandler(reportXError);
    // A virtual server that many test processes reach at once may refuse a connection now
    // and then; a few tries tell a busy server from a missing one.
    Display* d = nullptr;
    for (int attempt = 0; attempt < 5 && !d; ++attempt) {
        d = XOpenDisplay(nullptr);
        if (!d && getenv("DISPLAY"))
            usleep(200000);
    }
    if (!d) {
        *why = "no X display (DISPLAY unset or unreachable)";
        return false;
    }
    display_ = d;
    kind_ = "GLX";
    return true;
}

bool OffscreenGl::openGlx(int width, int height, std::string* why)
{
    if (!connectGlx(why))
        return false;
    Display* d = static_cast<Display*>(display_);
    // Pbuffers refuse an alpha channel on Xvfb (BadMatch): ask for none.
    const int attributes[] = {GLX_DRAWABLE_TYPE, GLX_PBUFFER_BIT, GLX_RENDER_TYPE, GLX_RGBA_BIT, GLX_RED_SIZE, 8,
                              GLX_GREEN_SIZE, 8, GLX_BLUE_SIZE, 8, GLX_ALPHA_SIZE, 0, GLX_STENCIL_SIZE, 8,
                              GLX_DEPTH_SIZE, 16, None};
    int count = 0;
    GLXFBConfig* configs = glXChooseFBConfig(d, DefaultScreen(d), attributes, &count);
    if (!configs || count == 0) {
        *why = "no GLX pbuffer configuration with stencil";
        return false;
    }
    const int size[] = {GLX_PBUFFER_WIDTH, width, GLX_PBUFFER_HEIGHT, height, None};
    surface_ = glXCreatePbuffer(d, configs[0], size);
    context_ = glXCreateNewContext(d, configs[0], GLX_RGBA_TYPE, nullptr, True);
    XFree(configs);
    if (!surface_ || !context_) {
        *why = "GLX pbuffer or context creation failed";
        return false;
    }
    return makeCurrent() || (*why = "glXMakeContextCurrent failed", false);
}

static Bool isMapNotify(Display*, XEvent* event, XPointer window)
{
    return event->type == MapNotify && event->xmap.window == reinterpret_cast<Window>(window);
}

bool OffscreenGl::openGlxWindow(int width, int height, std::string* why)
{
    if (!connectGlx(why))
        return false;
    Display* d = static_cast<Display*>(display_);
    const int attributes[] = {GLX_DRAWABLE_TYPE, GLX_WINDOW_BIT, GLX_RENDER_TYPE, GLX_RGBA_BIT, GLX_DOUBLEBUFFER, True,
                              GLX_RED_SIZE, 8, GLX_GREEN_SIZE, 8, GLX_BLUE_SIZE, 8, GLX_ALPHA_SIZE, 8,
                              GLX_STENCIL_SIZE, 8, GLX_DEPTH_SIZE, 16, None};
    int count = 0;
    GLXFBConfig* configs = glXChooseFBConfig(d, DefaultScreen(d), attributes, &count);
    XVisualInfo* visual = configs && count > 0 ? glXGetVisualFromFBConfig(d, configs[0]) : nullptr;
    if (!visual) {
        XFree(configs);
        *why = "no GLX window configuration with alpha and stencil";
        return false;
    }
    const Window root = RootWindow(d, visual->screen);
    XSetWindowAttributes set = {};
    set.colormap = XCreateColormap(d, root, visual->visual, AllocNone);
    set.event_mask = StructureNotifyMask;
    window_ = XCreateWindow(d, root, 0, 0, unsigned(width), unsigned(height), 0, visual->depth, InputOutput,
                            visual->visual, CWColormap | CWEventMask | CWBorderPixel, &set);
    XFree(visual);
    XMapWindow(d, window_);
    XEvent event;
    XIfEvent(d, &event, isMapNotify, reinterpret_cast<XPointer>(window_));
    surface_ = glXCreateWindow(d, configs[0], window_, nullptr);
    context_ = glXCreateNewContext(d, configs[0], GLX_RGBA_TYPE, nullptr, True);
    XFree(configs);
    if (!surface_ || !context_) {
        *why = "GLX window or context creation failed";
        return false;
    }
    return makeCurrent() || (*why = "glXMakeContextCurrent failed", false);
}

bool OffscreenGl::openEgl(int width, int height, std::string* why)
{
    auto getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    EGLDisplay d = getPlatformDisplay ? getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr)
                                      : EGL_NO_DISPLAY;
    EGLint major = 0, minor = 0;
    if (d == EGL_NO_DISPLAY || !eglInitialize(d, &major, &minor)) {
        *why = "no EGL surfaceless display";
        return false;
    }
    display_ = d;
    kind_ = "EGL";
    eglBindAPI(EGL_OPENGL_API);
    const EGLint attributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                 EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_STENCIL_SIZE, 8,
                                 EGL_DEPTH_SIZE, 16, EGL_NONE};
    EGLConfig config;
    EGLint count = 0;
    if (!eglChooseConfig(d, attributes, &config, 1, &count) || count == 0) {
        *why = "no EGL pbuffer configuration with stencil";
        return false;
    }
    const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    eglSurface_ = eglCreatePbufferSurface(d, config, size);
    context_ = eglCreateContext(d, config, EGL_NO_CONTEXT, nullptr);
    if (eglSurface_ == EGL_NO_SURFACE || context_ == EGL_NO_CONTEXT) {
        *why = "EGL pbuffer or context creation failed";
        return false;
    }
    return makeCurrent() || (*why = "eglMakeCurrent failed", false);
}

bool OffscreenGl::open(int width, int height, std::string* why)
{
    std::string glxWhy;
    if (openGlx(width, height, &glxWhy))
        return true;
    close();
    if (openEgl(width, height, why))
        return true;
    *why = glxWhy + "; " + *why;
    return false;
}

bool OffscreenGl::makeCurrent()
{
    if (kind_[0] == 'G')
        return glXMakeContextCurrent(static_cast<Display*>(display_), surface_, surface_,
                                     static_cast<GLXContext>(context_));
    if (kind_[0] == 'E')
        return eglMakeCurrent(display_, eglSurface_, eglSurface_, context_);
    return false;
}

void OffscreenGl::release()
{
    if (kind_[0] == 'G')
        glXMakeContextCurrent(static_cast<Display*>(display_), None, None, nullptr);
    else if (kind_[0] == 'E')
        eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

} // namespace korelgen
