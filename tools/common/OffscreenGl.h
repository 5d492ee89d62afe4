// An OpenGL context for the demo host, the benchmarks and the tests: a GLX pbuffer on an X
// display, or, where no display exists, an EGL pbuffer on Mesa's surfaceless platform; a
// mapped GLX window where an alpha channel is needed.
#pragma once

#include <string>

namespace korelgen {

class OffscreenGl {
public:
    OffscreenGl() = default;
    ~OffscreenGl();
    OffscreenGl(const OffscreenGl&) = delete;
    OffscreenGl& operator=(const OffscreenGl&) = delete;

    // A pbuffer of width x height with 8-bit RGB, stencil and depth, made current.
    // False with the reason in *why when it can't be had.
    bool openGlx(int width, int height, std::string* why);
    bool openEgl(int width, int height, std::string* why);
    // A mapped, double-buffered GLX window with 8-bit RGBA, stencil and depth, made current; GL
    // reads its back buffer. For what needs an alpha channel, which pbuffers lack on Xvfb.
    bool openGlxWindow(int width, int height, std::string* why);
    // GLX where an X display answers, EGL otherwise.
    bool open(int width, int height, std::string* why);

    bool makeCurrent();
    void release();
    const char* kind() const { return kind_; }

private:
    void close();
    bool connectGlx(std::string* why);

    const char* kind_ = "none";
    void* display_ = nullptr;   // Display* or EGLDisplay
    unsigned long surface_ = 0; // GLXPbuffer or GLXWindow
    unsigned long window_ = 0;  // the X window of a GLXWindow
    void* eglSurface_ = nullptr;
    void* context_ = nullptr;   // GLXContext or EGLContext
};

} // namespace korelgen
