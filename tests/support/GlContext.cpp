#include "GlContext.h"

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <unistd.h>

namespace k2dtest {
namespace {

struct Context {
    Display* display = nullptr;
    GLXPbuffer pbuffer = 0;
    GLXContext context = nullptr;
    std::string failure;
    bool made = false;
};

Context& theContext()
{
    static Context context;
    return context;
}

// Xlib's default handler exits the process; a failed request must fail a test instead.
int xErrorHandler(Display*, XErrorEvent* event)
{
    std::fprintf(stderr, "X error: request %d, code %d\n", event->request_code, event->error_code);
    return 0;
}

void makeContext(Context& c)
{
    c.made = true;
    XSetErrorHandler(xErrorHandler);
    c.display = XOpenDisplay(nullptr);
    if (!c.display) {
        c.failure = "no X display (DISPLAY unset or unreachable): run the tests under xvfb-run";
        return;
    }
    // Pbuffers refuse an alpha channel on Xvfb (BadMatch): ask for none.
    const int attributes[] = {GLX_DRAWABLE_TYPE, GLX_PBUFFER_BIT, GLX_RENDER_TYPE, GLX_RGBA_BIT,
                              GLX_RED_SIZE, 8, GLX_GREEN_SIZE, 8, GLX_BLUE_SIZE, 8, GLX_ALPHA_SIZE, 0,
                              GLX_STENCIL_SIZE, 8, GLX_DEPTH_SIZE, 16, None};
    int count = 0;
    GLXFBConfig* configs = glXChooseFBConfig(c.display, DefaultScreen(c.display), attributes, &count);
    if (!configs || count == 0) {
        c.failure = "no GLX pbuffer configuration with stencil";
        return;
    }
    const int pbufferAttributes[] = {GLX_PBUFFER_WIDTH, kSurfaceWidth, GLX_PBUFFER_HEIGHT, kSurfaceHeight, None};
    c.pbuffer = glXCreatePbuffer(c.display, configs[0], pbufferAttributes);
    c.context = glXCreateNewContext(c.display, configs[0], GLX_RGBA_TYPE, nullptr, True);
    XFree(configs);
    if (!c.pbuffer || !c.context) {
        c.failure = "GLX pbuffer or context creation failed";
        return;
    }
}

} // namespace

bool ensureGlContext(std::string* why)
{
    Context& c = theContext();
    if (!c.made)
        makeContext(c);
    if (!c.context) {
        if (why)
            *why = c.failure;
        return false;
    }
    if (!glXMakeContextCurrent(c.display, c.pbuffer, c.pbuffer, c.context)) {
        if (why)
            *why = "glXMakeContextCurrent failed";
        return false;
    }
    return true;
}

void releaseGlContext()
{
    Context& c = theContext();
    if (c.display)
        glXMakeContextCurrent(c.display, None, None, nullptr);
}

Frame Frame::grab(int width, int height)
{
    Frame frame;
    frame.width_ = width;
    frame.height_ = height;
    frame.rgba_.resize(size_t(width) * height * 4);
    glFinish();
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, frame.rgba_.data());
    return frame;
}

Rgb Frame::at(int x, int y) const
{
    if (x < 0 || y < 0 || x >= width_ || y >= height_)
        return Rgb{-1, -1, -1};
    const uint8_t* p = &rgba_[(size_t(y) * width_ + x) * 4];
    return Rgb{p[0], p[1], p[2]};
}

static bool colourNear(Rgb a, Rgb b, int tolerance)
{
    return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance && std::abs(a.b - b.b) <= tolerance;
}

int Frame::count(int x0, int y0, int x1, int y1, Rgb colour, int tolerance) const
{
    int n = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            n += colourNear(at(x, y), colour, tolerance) ? 1 : 0;
    return n;
}

::testing::AssertionResult PixelIs(const Frame& frame, int x, int y, Rgb expected, int tolerance)
{
    Rgb actual = frame.at(x, y);
    if (colourNear(actual, expected, tolerance))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "pixel (" << x << ", " << y << ") is " << actual << ", expected "
                                         << expected;
}

void GlTest::SetUp()
{
    std::string why;
    // A rendering suite that silently skips hides every fault, so a missing display fails.
    ASSERT_TRUE(ensureGlContext(&why)) << why;
    glViewport(0, 0, kSurfaceWidth, kSurfaceHeight);
    glClearColor(0, 0, 0, 0);
    glClearStencil(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_STENCIL_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

TempFile::TempFile(const std::vector<uint8_t>& bytes, const char* suffix)
{
    char pattern[] = "/tmp/k2dtestXXXXXX";
    int fd = mkstemp(pattern);
    if (fd >= 0)
        ::close(fd);
    path_ = std::string(pattern) + suffix;
    std::rename(pattern, path_.c_str());
    std::ofstream out(path_, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

TempFile::~TempFile()
{
    std::remove(path_.c_str());
}

} // namespace k2dtest
