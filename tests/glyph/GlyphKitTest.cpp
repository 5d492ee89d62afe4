// The font layer as its callers see it: measured strings, resolved families, and the pixels
// that text leaves in a real GL context.
#include "GlyphKit.h"

#include "GlContext.h"

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <unistd.h>

namespace {

using k2dtest::Frame;
using k2dtest::GlTest;
using k2dtest::kSurfaceHeight;
using k2dtest::kSurfaceWidth;
using k2dtest::Rgb;

const char kSansFile[] = "/usr/share/fonts/truetype/liberation2/LiberationSans-Regular.ttf";
const Rgb kRed{255, 0, 0};

// Frees its font however the test ends.
class Font {
public:
    Font(const char* family, int style, int size) : handle_(gkFontCreate(family, style, size)) {}
    ~Font() { gkFontFree(handle_); }
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    GK_FONT handle() const { return handle_; }
    operator GK_FONT() const { return handle_; }
    std::array<int, 2> metric(const char* text) const
    {
        std::array<int, 2> m{-1, -1};
        EXPECT_EQ(0, gkFontStringMetric(handle_, text, m.data()));
        return m;
    }

private:
    GK_FONT handle_;
};

// Pixels brighter than the black background, and their bounding box.
struct Ink {
    int lit = 0;
    int x0 = INT_MAX, y0 = INT_MAX, x1 = INT_MIN, y1 = INT_MIN;  // inclusive
    int width() const { return lit ? x1 - x0 + 1 : 0; }
    int height() const { return lit ? y1 - y0 + 1 : 0; }
    bool operator==(const Ink& o) const { return std::tie(lit, x0, y0, x1, y1) == std::tie(o.lit, o.x0, o.y0, o.x1, o.y1); }
};

Ink inkIn(const Frame& frame, int x0 = 0, int y0 = 0, int x1 = kSurfaceWidth, int y1 = kSurfaceHeight)
{
    Ink ink;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x) {
            const Rgb c = frame.at(x, y);
            if (std::max({c.r, c.g, c.b}) > 24) {
                ++ink.lit;
                ink.x0 = std::min(ink.x0, x);
                ink.y0 = std::min(ink.y0, y);
                ink.x1 = std::max(ink.x1, x);
                ink.y1 = std::max(ink.y1, y);
            }
        }
    return ink;
}

void pixelProjection()
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, kSurfaceWidth, 0, kSurfaceHeight, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

// Draws `text` in red with the origin at (x, y), optionally scaled, and grabs the result.
Frame drawAt(GK_FONT font, const char* text, float x, float y, float scale = 1)
{
    glClear(GL_COLOR_BUFFER_BIT);
    pixelProjection();
    glTranslatef(x, y, 0);
    glScalef(scale, scale, 1);
    glColor3f(1, 0, 0);
    EXPECT_EQ(0, gkFontRender(font, text));
    return Frame::grab();
}

TEST(GlyphMetrics, StringsMeasureInPixelsAtTheFontSize)
{
    Font sans("Liberation Sans", GK_PLAIN, 30);
    Font mono("Liberation Mono", GK_PLAIN, 30);
    const auto s = sans.metric("Hello 123");
    EXPECT_NEAR(s[0], 129, 3);
    EXPECT_EQ(s[1], 35);  // ascent 28 + descent 7
    const auto m = mono.metric("Hello 123");
    EXPECT_NEAR(m[0], 162, 3);
    EXPECT_GT(m[0], s[0]);

    // The width adds up glyph by glyph; the height belongs to the font, not the text.
    EXPECT_EQ(s[0], sans.metric("Hello")[0] + sans.metric(" 123")[0]);
    EXPECT_EQ((std::array<int, 2>{0, s[1]}), sans.metric(""));
    EXPECT_EQ((std::array<int, 2>{0, s[1]}), sans.metric(nullptr));

    Font small("Liberation Sans", GK_PLAIN, 15);
    EXPECT_NEAR(small.metric("Hello 123")[0], s[0] / 2, 4);
    EXPECT_NEAR(small.metric("Hello 123")[1], s[1] / 2, 1);
}

TEST(GlyphMetrics, FamilyNamesAndStylesResolveToMatchingFaces)
{
    const char* text = "Hello World 0123456789";
    auto width = [&](const char* family) { return Font(family, GK_PLAIN, 24).metric(text)[0]; };
    const int sans = width("Liberation Sans"), mono = width("Liberation Mono"), serif = width("Liberation Serif");
    EXPECT_EQ(3u, (std::set<int>{sans, mono, serif}.size()));
    for (const auto& [alias, face] : {std::pair{"Arial", sans}, {"Helvetica", sans}, {"Courier", mono},
                                      {"Courier New", mono}, {"Times", serif}, {"Times New Roman", serif}})
        EXPECT_EQ(width(alias), face) << alias;

    // Bitmap families measure like the outline family of the same name.
    EXPECT_NEAR(width("Courier [fixed]"), mono, 4);

    Font unknown("No Such Family At All", GK_PLAIN, 24);
    EXPECT_GT(unknown.metric(text)[0], 0);
    EXPECT_GT(unknown.metric(text)[1], 0);

    EXPECT_GT(Font("Arial", GK_BOLD, 24).metric(text)[0], sans);
    EXPECT_GT(Font("Arial", GK_BOLD_ITALIC, 24).metric(text)[0], sans);
}

TEST(GlyphFamilies, StylesSizesAndScalability)
{
    const int all = GK_PLAIN | GK_BOLD | GK_ITALIC | GK_BOLD_ITALIC;
    EXPECT_EQ(all, gkFamilyGetStyles("Arial"));
    EXPECT_EQ(all, gkFamilyGetStyles("Courier [fixed]"));
    EXPECT_NE(0, gkFamilyGetStyles("No Such Family At All") & GK_PLAIN);

    int count = -1;
    EXPECT_EQ(nullptr, gkFamilyGetSizes("Arial", GK_PLAIN, &count));
    EXPECT_EQ(0, count);

    int* sizes = gkFamilyGetSizes("Helvetica [fixed]", GK_BOLD, &count);
    ASSERT_NE(nullptr, sizes);
    ASSERT_GT(count, 0);
    EXPECT_TRUE(std::is_sorted(sizes, sizes + count));
    EXPECT_NE(sizes + count, std::find(sizes, sizes + count, 12));
    gkFree(sizes);

    Font outline("Helvetica", GK_PLAIN, 12);
    Font fixed("Helvetica [fixed]", GK_PLAIN, 12);
    EXPECT_NE(0, gkFontScalable(outline.handle()));
    EXPECT_EQ(0, gkFontScalable(fixed.handle()));
    EXPECT_EQ(0, gkFontScalable(0));
}

TEST(GlyphRobustness, NullAndBogusArgumentsAreHarmless)
{
    gkFontFree(0);
    gkFontFree(0xdeadbeef);
    int metric[2] = {7, 7};
    EXPECT_EQ(-1, gkFontStringMetric(0, "x", metric));
    EXPECT_EQ(0, metric[0]);
    EXPECT_EQ(-1, gkFontStringMetric(0xdeadbeef, "x", metric));
    EXPECT_EQ(-1, gkFontRender(0, "x"));
    EXPECT_EQ(0, gkFamilyGetSizes("Courier [fixed]", GK_PLAIN, nullptr));
    EXPECT_EQ(0, gkLibraryAddPath(nullptr));
    EXPECT_NE(0, gkFamilyGetStyles(nullptr));
    gkFree(nullptr);

    // Garbage requests still give fonts that measure.
    for (GK_FONT f : {gkFontCreate(nullptr, 0, 12), gkFontCreate("", -3, -5), gkFontCreate("Arial", 0x7fff, 1 << 30),
                      gkFontCreate(" [fixed]", GK_BOLD, 0)}) {
        EXPECT_EQ(0, gkFontStringMetric(f, "Hi", metric));
        EXPECT_GT(metric[1], 0);
        EXPECT_EQ(-1, gkFontStringMetric(f, "Hi", nullptr));
        gkFontFree(f);
        gkFontFree(f);  // a second free is ignored
        EXPECT_EQ(-1, gkFontStringMetric(f, "Hi", metric));
    }
}

// Fonts in the search directories are preferred to the system's; a repeated set-up replaces,
// rather than adds to, what an earlier one found.
TEST(GlyphSearchPath, DirectoryFontsWinOverFontconfig)
{
    namespace fs = std::filesystem;
    ASSERT_TRUE(fs::exists(kSansFile)) << "fonts-liberation2 is not installed";
    const fs::path dir = fs::temp_directory_path() / ("glyphkit-" + std::to_string(::getpid()));
    fs::create_directories(dir);
    fs::copy_file(kSansFile, dir / "OnlyRegular.TTF", fs::copy_options::overwrite_existing);
    std::FILE* junk = std::fopen((dir / "broken.ttf").c_str(), "w");
    ASSERT_NE(nullptr, junk);
    std::fputs("not a font", junk);
    std::fclose(junk);

    const char* text = "Hello World 0123456789";
    const int systemBold = Font("Liberation Sans", GK_BOLD, 24).metric(text)[0];
    EXPECT_EQ(15, gkFamilyGetStyles("Liberation Sans"));

    for (int load = 0; load < 3; ++load) {
        ASSERT_EQ(1, gkLibraryInit());
        EXPECT_EQ(1, gkLibraryAddPath(dir.c_str()));
        EXPECT_EQ(1, gkLibraryAddPath(dir.c_str()));
        EXPECT_EQ(1, gkLibraryAddPath("/no/such/directory"));
        EXPECT_EQ(1, gkLibraryParseFonts());
    }
    // The directory holds only the regular face, so bold is synthesized from it.
    EXPECT_EQ(GK_PLAIN, gkFamilyGetStyles("liberation sans"));
    const int synthetic = Font("Liberation Sans", GK_BOLD, 24).metric(text)[0];
    EXPECT_NE(systemBold, synthetic);
    EXPECT_GT(synthetic, Font("Liberation Sans", GK_PLAIN, 24).metric(text)[0]);

    ASSERT_EQ(1, gkLibraryInit());
    EXPECT_EQ(0, gkLibraryParseFonts());
    EXPECT_EQ(systemBold, Font("Liberation Sans", GK_BOLD, 24).metric(text)[0]);
    fs::remove_all(dir);
}

class GlyphRender : public GlTest {};

TEST_F(GlyphRender, TextStaysInsideItsMetricBox)
{
    Font sans("Arial", GK_PLAIN, 30);
    const auto m = sans.metric("Hello 123");
    const Frame frame = drawAt(sans, "Hello 123", 50, 100);
    const Ink inside = inkIn(frame, 50, 100, 50 + m[0], 100 + m[1]);
    EXPECT_GT(frame.count(50, 100, 50 + m[0], 100 + m[1], kRed), 300);
    EXPECT_EQ(inside.lit, inkIn(frame).lit) << "ink outside the metric box";
    // The ink spans nearly the whole advance; "H" starts at the baseline, which is `descent` up.
    EXPECT_GT(inside.width(), m[0] - 8);
    EXPECT_NEAR(inside.y0, 100 + 7, 1);

    // Bitmap text is monochrome: no partly covered pixels.
    Font fixed("Helvetica [fixed]", GK_PLAIN, 14);
    const auto f = fixed.metric("Fixy 0123");
    const Frame fixedFrame = drawAt(fixed, "Fixy 0123", 20, 200);
    const Ink fixedInside = inkIn(fixedFrame, 20, 200, 20 + f[0], 200 + f[1]);
    EXPECT_GT(fixedInside.lit, 80);
    EXPECT_EQ(fixedInside.lit, inkIn(fixedFrame).lit) << "ink outside the metric box";
    EXPECT_EQ(fixedInside.lit, fixedFrame.count(0, 0, kSurfaceWidth, kSurfaceHeight, kRed, 0));
}

// The bitmap face is the outline face in whole pixels: the two drawings nearly coincide.
TEST_F(GlyphRender, FixedAndOutlineFontsDrawTheSameLetters)
{
    Font outline("Helvetica", GK_PLAIN, 30);
    Font fixed("Helvetica [fixed]", GK_PLAIN, 30);
    const Frame a = drawAt(outline, "FL7", 20, 100);
    const Frame b = drawAt(fixed, "FL7", 20, 100);
    int both = 0, either = 0;
    for (int y = 90; y < 150; ++y)
        for (int x = 0; x < 200; ++x) {
            const bool inA = a.at(x, y).r > 128, inB = b.at(x, y).r > 128;
            both += inA && inB;
            either += inA || inB;
        }
    ASSERT_GT(either, 150);
    EXPECT_GT(double(both) / either, 0.8) << both << " of " << either;
}

TEST_F(GlyphRender, OnlyOutlineTextFollowsTheModelviewScale)
{
    Font sans("Arial", GK_PLAIN, 20);
    const Ink plain = inkIn(drawAt(sans, "Hello 123", 10, 20));
    const Ink doubled = inkIn(drawAt(sans, "Hello 123", 10, 20, 2));
    ASSERT_GT(plain.lit, 0);
    EXPECT_NEAR(doubled.width(), 2 * plain.width(), 4);
    EXPECT_NEAR(doubled.height(), 2 * plain.height(), 4);
    EXPECT_NEAR(doubled.x0 - 10, 2 * (plain.x0 - 10), 3);

    // Above the size where glyphs are rasterized once and stretched, the proportions hold.
    Font huge("Arial", GK_PLAIN, 200);
    const auto m = huge.metric("Hi");
    const Ink big = inkIn(drawAt(huge, "Hi", 10, 10));
    EXPECT_EQ(big.lit, inkIn(drawAt(huge, "Hi", 10, 10), 10, 10, 10 + m[0], 10 + m[1]).lit);
    EXPECT_GT(big.width(), m[0] * 3 / 4);
    EXPECT_NEAR(big.height(), 143, 6);  // cap height of Liberation Sans is 0.716 em

    // Bitmap text keeps its pixel size.
    Font fixed("Courier [fixed]", GK_PLAIN, 16);
    const Ink fixedPlain = inkIn(drawAt(fixed, "Hello 123", 10, 20));
    ASSERT_GT(fixedPlain.lit, 0);
    EXPECT_TRUE(fixedPlain == inkIn(drawAt(fixed, "Hello 123", 10, 20, 3)));
}

TEST_F(GlyphRender, FixedTextStartingLeftOfTheViewportShowsItsVisiblePart)
{
    Font fixed("Helvetica [fixed]", GK_PLAIN, 18);
    const Frame whole = drawAt(fixed, "Hello 123", 40, 100);
    const Frame cut = drawAt(fixed, "Hello 123", -20, 100);
    int compared = 0;
    for (int y = 95; y < 125; ++y)
        for (int x = 0; x + 60 < kSurfaceWidth; ++x) {
            const Rgb a = cut.at(x, y), b = whole.at(x + 60, y);
            ASSERT_TRUE(a.r == b.r && a.g == b.g && a.b == b.b) << "at " << x << ", " << y;
            compared += a.r > 0;
        }
    EXPECT_GT(compared, 30);
}

// The host textures and blends its own drawing; text still comes out in the current colour,
// and every setting the host made is there afterwards.
TEST_F(GlyphRender, LeavesTheCallersGlStateAlone)
{
    const Rgb kGreen{0, 255, 0}, kBlue{0, 0, 255};
    GLuint hostTexture = 0;
    glGenTextures(1, &hostTexture);
    glBindTexture(GL_TEXTURE_2D, hostTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    const uint8_t blue[3] = {0, 0, 255};
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 1, 1, 0, GL_RGB, GL_UNSIGNED_BYTE, blue);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ZERO);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    Font outline("Arial", GK_BOLD, 18);
    Font fixed("Courier [fixed]", GK_ITALIC, 12);
    for (const Font* font : {&outline, &fixed}) {
        glClear(GL_COLOR_BUFFER_BIT);
        pixelProjection();
        glTranslatef(30, 30, 0);
        glColor3f(0, 1, 0);
        EXPECT_EQ(0, gkFontRender(font->handle(), "State"));
        const Frame frame = Frame::grab();
        EXPECT_GT(frame.count(30, 30, 130, 60, kGreen), 20);
        EXPECT_EQ(0, frame.count(0, 0, kSurfaceWidth, kSurfaceHeight, kBlue, 100));

        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D) && glIsEnabled(GL_BLEND));
        GLint value = 0;
        for (const auto& [name, expected] : {std::pair<GLenum, GLint>{GL_TEXTURE_BINDING_2D, GLint(hostTexture)},
                                             {GL_UNPACK_ALIGNMENT, 8}, {GL_BLEND_SRC, GL_ONE}, {GL_BLEND_DST, GL_ZERO},
                                             {GL_MATRIX_MODE, GL_MODELVIEW}}) {
            glGetIntegerv(name, &value);
            EXPECT_EQ(expected, value) << "GL state 0x" << std::hex << name;
        }
        glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &value);
        EXPECT_EQ(GL_REPLACE, value);
        GLfloat colour[4];
        glGetFloatv(GL_CURRENT_COLOR, colour);
        EXPECT_EQ(1.0f, colour[1]);
        EXPECT_EQ(GL_NO_ERROR, glGetError());
    }
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    glBindTexture(GL_TEXTURE_2D, 0);
    glDeleteTextures(1, &hostTexture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
}

TEST_F(GlyphRender, FontsMadeWithoutAContextRenderLater)
{
    k2dtest::releaseGlContext();
    Font sans("Arial", GK_PLAIN, 24);
    const auto m = sans.metric("Later");
    EXPECT_GT(m[0], 0);
    EXPECT_EQ(-1, gkFontRender(sans.handle(), "Later"));
    ASSERT_TRUE(k2dtest::ensureGlContext(nullptr));

    const Frame frame = drawAt(sans, "Later", 100, 100);
    EXPECT_GT(frame.count(100, 100, 100 + m[0], 100 + m[1], kRed), 100);

    // A font that owns a texture may be freed after the context is gone.
    GK_FONT drawn = gkFontCreate("Times", GK_ITALIC, 20);
    EXPECT_EQ(0, gkFontRender(drawn, "gone"));
    k2dtest::releaseGlContext();
    gkFontFree(drawn);
    ASSERT_TRUE(k2dtest::ensureGlContext(nullptr));
}

// Text is 8-bit: bytes are Latin-1 code points, and control bytes have no glyph.
TEST_F(GlyphRender, AccentedLettersDrawAndControlBytesDoNot)
{
    Font sans("Arial", GK_PLAIN, 24);
    EXPECT_GT(sans.metric("\xc4\xd6\xdc\xe9\xff")[0], 50);
    EXPECT_EQ(0, sans.metric("\x01\x02\x1f")[0]);
    EXPECT_EQ(sans.metric("AB")[0], sans.metric("A\x01" "B")[0]);
    EXPECT_GT(inkIn(drawAt(sans, "\xc4\xd6\xdc", 20, 20)).lit, 100);
    EXPECT_EQ(0, inkIn(drawAt(sans, "\x01\x7f\x81", 20, 20)).lit);
    EXPECT_EQ(0, inkIn(drawAt(sans, "", 20, 20)).lit);
}

} // namespace

// Views repeat a few fonts many times: equal requests share one font, and freeing one of
// them leaves the others drawing.
TEST_F(GlyphRender, EqualRequestsShareAFontThatOutlivesEachHandle)
{
    GK_FONT first = gkFontCreate("Arial", GK_BOLD, 26);
    EXPECT_EQ(0, gkFontRender(first, "warm"));
    GK_FONT second = gkFontCreate("Arial", GK_BOLD, 26);
    EXPECT_NE(first, second);
    int a[2], b[2];
    gkFontStringMetric(first, "Shared", a);
    gkFontStringMetric(second, "Shared", b);
    EXPECT_EQ(a[0], b[0]);
    gkFontFree(first);
    EXPECT_EQ(-1, gkFontRender(first, "gone"));
    EXPECT_GT(drawAt(second, "Shared", 50, 50).count(50, 50, 50 + b[0], 50 + b[1], kRed), 100);
    gkFontFree(second);
}

// A host that draws views of ever new font sizes keeps a bounded number of textures: a font
// neither held nor among the few recent ones gives its texture back.
TEST_F(GlyphRender, FontsLetGoGiveTheirTexturesBack)
{
    const auto liveTextures = [] {
        int n = 0;
        for (GLuint name = 1; name < 4096; ++name)
            n += glIsTexture(name) ? 1 : 0;
        return n;
    };
    const int before = liveTextures();
    for (int size = 10; size < 90; ++size) {
        Font font("Arial", 0, size);
        EXPECT_EQ(0, gkFontRender(font, "A"));
    }
    EXPECT_LE(liveTextures() - before, 20);
}
