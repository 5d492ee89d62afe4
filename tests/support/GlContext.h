// A real OpenGL context for the rendering tests: a GLX pbuffer with stencil on the X
// display named by DISPLAY (Xvfb with Mesa's software renderer in CI).
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace k2dtest {

constexpr int kSurfaceWidth = 400;
constexpr int kSurfaceHeight = 300;

struct Rgb { int r, g, b; };

// The pixels brighter than a black page and their bounding box [x0, x1) x [y0, y1).
struct Ink {
    int lit = 0, x0 = 1 << 30, y0 = 1 << 30, x1 = 0, y1 = 0;
    int width() const { return lit ? x1 - x0 : 0; }
    int height() const { return lit ? y1 - y0 : 0; }
    bool operator==(const Ink& o) const { return lit == o.lit && x0 == o.x0 && y0 == o.y0 && x1 == o.x1 && y1 == o.y1; }
};

inline std::ostream& operator<<(std::ostream& out, const Rgb& c)
{
    return out << "(" << c.r << ", " << c.g << ", " << c.b << ")";
}

// The process-wide context, made current on first use. Returns false, with the reason, when
// no display or no suitable visual exists.
bool ensureGlContext(std::string* why);
// Releases the context so a test can check the no-context paths; ensureGlContext makes it current again.
void releaseGlContext();

// A copy of the colour buffer, origin at the lower left as in GL.
class Frame {
public:
    static Frame grab(int width = kSurfaceWidth, int height = kSurfaceHeight);
    Rgb at(int x, int y) const;
    int width() const { return width_; }
    int height() const { return height_; }
    // Number of pixels in [x0, x1) x [y0, y1) close to `colour`.
    int count(int x0, int y0, int x1, int y1, Rgb colour, int tolerance = 8) const;
    // The ink in [x0, x1) x [y0, y1); a negative x1 or y1 means the frame's edge.
    Ink ink(int x0 = 0, int y0 = 0, int x1 = -1, int y1 = -1) const;

private:
    int width_ = 0, height_ = 0;
    std::vector<uint8_t> rgba_;
};

::testing::AssertionResult PixelIs(const Frame& frame, int x, int y, Rgb expected, int tolerance = 8);

// Fixture for tests that draw: the context is current and the surface set up for each test.
class GlTest : public ::testing::Test {
protected:
    void SetUp() override;
};

// Temporary file that removes itself.
class TempFile {
public:
    explicit TempFile(const std::vector<uint8_t>& bytes, const char* suffix = ".k2d");
    ~TempFile();
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

// The whole file, or nothing when it can't be read.
std::vector<uint8_t> fileBytes(const std::string& path);

} // namespace k2dtest
