#include "GlContext.h"

#include "OffscreenGl.h"

#include <GL/gl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace k2dtest {
namespace {

struct Context {
    korelgen::OffscreenGl gl;
    std::string failure;
    bool made = false;
    bool ok = false;
};

// Kept until the process ends on purpose: closing the display unloads the GL driver, and the
// leak checker could then no longer tell the driver's own allocations from ours.
Context& theContext()
{
    static Context* context = new Context;
    return *context;
}

} // namespace

bool ensureGlContext(std::string* why)
{
    Context& c = theContext();
    if (!c.made) {
        c.made = true;
        // The rendering tests run on GLX, as hosts do; no fall-back to another platform.
        c.ok = c.gl.openGlx(kSurfaceWidth, kSurfaceHeight, &c.failure);
        if (!c.ok)
            c.failure += ": run the tests under xvfb-run";
    }
    const bool current = c.ok && c.gl.makeCurrent();
    if (!current && why)
        *why = c.ok ? "making the GL context current failed" : c.failure;
    return current;
}

void releaseGlContext() { theContext().gl.release(); }

Frame Frame::grab(int width, int height)
{
    Frame frame;
    frame.width_ = width, frame.height_ = height;
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

Ink Frame::ink(int x0, int y0, int x1, int y1) const
{
    Ink ink;
    for (int y = y0; y < (y1 < 0 ? height_ : y1); ++y)
        for (int x = x0; x < (x1 < 0 ? width_ : x1); ++x)
            if (const Rgb c = at(x, y); std::max({c.r, c.g, c.b}) > 24) {
                ++ink.lit;
                ink.x0 = std::min(ink.x0, x), ink.x1 = std::max(ink.x1, x + 1);
                ink.y0 = std::min(ink.y0, y), ink.y1 = std::max(ink.y1, y + 1);
            }
    return ink;
}

::testing::AssertionResult PixelIs(const Frame& frame, int x, int y, Rgb expected, int tolerance)
{
    if (colourNear(frame.at(x, y), expected, tolerance))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "pixel (" << x << ", " << y << ") is " << frame.at(x, y) << ", expected "
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

TempFile::~TempFile() { std::remove(path_.c_str()); }

std::vector<uint8_t> fileBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

} // namespace k2dtest
