// A page rendered once into its texture and shown as one quad: what the host sees of each
// mode, on a window with an alpha channel as hosts have (pbuffers lack one on Xvfb).
#include "GlContext.h"
#include "Korel2D.h"
#include "OffscreenGl.h"
#include "ViewBuilder.h"

#include <GL/gl.h>

#include <cstdlib>
#include <string>

using namespace k2dtest;
using namespace korelgen;

namespace {

constexpr int kWidth = 640, kHeight = 480;

// Made once and kept to the end of the process, as the shared context is: closing the display
// unloads the driver, whose allocations the leak checker could then no longer place.
korelgen::OffscreenGl* windowContext(std::string* why)
{
    static korelgen::OffscreenGl* gl = new korelgen::OffscreenGl;
    static const bool opened = gl->openGlxWindow(kWidth, kHeight, why);
    return opened && gl->makeCurrent() ? gl : nullptr;
}

class PlaneTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string why = "making the window's context current failed";
        gl_ = windowContext(&why);
        if (!gl_)
            FAIL() << why;
        window_ = krWindowCreate();
        krWindowInit(window_, kWidth, kHeight);
    }
    void TearDown() override
    {
        krViewFree(view_);
        krWindowFree(window_);
        if (gl_)
            gl_->release();
    }
    // Loads the view and places it at position 0 and zoom 1.
    VIEW_STRUCT* load(const ViewBuilder& b)
    {
        const std::vector<uint8_t> bytes = b.bytes();
        view_ = krViewLoadData(bytes.data(), uint32_t(bytes.size()));
        if (view_)
            krViewDraw(window_, view_, 0, 0, 1);
        return view_;
    }
    // A frame of the host: its clear and projection, then the plane in `mode`.
    Frame frame(int mode, float r = 0, float g = 0, float b = 0)
    {
        glClearColor(r, g, b, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        krdSetViewport(kWidth, kHeight);
        EXPECT_EQ(krViewDrawPlane(view_, mode), 0);
        return Frame::grab(kWidth, kHeight);
    }

    korelgen::OffscreenGl* gl_ = nullptr;
    WINDOW_STRUCT* window_ = nullptr;
    VIEW_STRUCT* view_ = nullptr;
};

// Opaque: a page-sized rectangle under shapes with edges in every direction and a text.
ViewBuilder opaquePanel()
{
    ViewBuilder b;
    b.page(0, 0, kWidth, kHeight, 0, 0, 0).rect({0, 0, kWidth, kHeight, 0, 1, 0, {}, 1, {0.2f, 0.3f, 0.5f, 1}});
    CircleFields dial;
    dial.x = 200, dial.y = 240, dial.matrix[0] = dial.matrix[3] = 1.2f;
    TextFields label;
    label.x = 450, label.y = 100, label.matrix[1] = 0.3f;
    label.text = "Plane 42";
    return b.circle(dial).rect({380, 200, 600, 420, 1, 3, 0, {1, 1, 1, 1}, 1, {0.9f, 0.4f, 0.1f, 1}}).text(label);
}

bool oneColour(const Frame& f, int x, int y)
{
    const auto same = [&](int dx, int dy) {
        const Rgb a = f.at(x, y), b = f.at(x + dx, y + dy);
        return a.r == b.r && a.g == b.g && a.b == b.b;
    };
    return same(1, 0) && same(0, 1) && same(1, 1);
}

TEST_F(PlaneTest, CachedFrameMatchesTheDirectOne)
{
    ASSERT_TRUE(load(opaquePanel()));
    const Frame direct = frame(KR_PLANE_DIRECT);
    frame(KR_PLANE_RENDER);
    krWindowClear(window_, view_);
    const Frame cached = frame(KR_PLANE_CACHED, 1, 1, 1);
    int compared = 0, differing = 0;
    for (int y = 0; y + 1 < kHeight; ++y)
        for (int x = 0; x + 1 < kWidth; ++x) {
            if (!oneColour(direct, x, y))
                continue;
            ++compared;
            const Rgb a = direct.at(x, y), b = cached.at(x, y);
            differing += std::abs(a.r - b.r) > 1 || std::abs(a.g - b.g) > 1 || std::abs(a.b - b.b) > 1;
        }
    EXPECT_GT(compared, kWidth * kHeight * 9 / 10);
    EXPECT_EQ(differing, 0);
}

// The rendering clears the host's buffer to transparent black, and a value change shows only
// when the page is rendered again. A page beyond the texture leaves the plane as it was.
TEST_F(PlaneTest, RendersOnlyWhenAskedAndKeepsWhatDoesNotFit)
{
    ActionFields moveX;
    moveX.type = KR_ACTION_MOVE_X;
    moveX.var = "shift";
    ViewBuilder b;
    b.page(0, 0, kWidth, kHeight, 1, 1, 1).actions({moveX}).rect({100, 100, 200, 200});
    ASSERT_TRUE(load(b.dataSection({{5, {}, 0, {{KR_VAR_FLOAT, "shift", "0", {}}}}})));
    ASSERT_EQ(krViewStart(view_), 0);
    const Rgb kRed{255, 0, 0}, kBlack{0, 0, 0}, kWhite{255, 255, 255};

    Frame f = frame(KR_PLANE_RENDER, 1, 1, 1);
    EXPECT_TRUE(PixelIs(f, 150, 150, kRed) && PixelIs(f, 400, 400, kBlack));
    const float shift = 200;
    ASSERT_EQ(krVarSet(view_, "shift", &shift), 1);
    f = frame(KR_PLANE_CACHED, 1, 1, 1);
    EXPECT_TRUE(PixelIs(f, 150, 150, kRed) && PixelIs(f, 350, 150, kWhite)) << "cached: the old place";
    f = frame(KR_PLANE_RENDER);
    EXPECT_TRUE(PixelIs(f, 150, 150, kBlack) && PixelIs(f, 350, 150, kRed)) << "rendered: the new place";

    view_->width = 1100;
    const float back = 0;
    ASSERT_EQ(krVarSet(view_, "shift", &back), 1);
    f = frame(KR_PLANE_RENDER);
    EXPECT_TRUE(PixelIs(f, 350, 150, kRed)) << "too wide: the last rendering";
    krViewStop(view_);
}

} // namespace
