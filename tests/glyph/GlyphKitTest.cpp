// The font layer as its callers see it: measured strings, resolved families, and the pixels
// that text leaves in a real GL context.
#include "GlyphKit.h"

#include "GlContext.h"

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

using k2dtest::Frame;
using k2dtest::Ink;
using k2dtest::kSurfaceHeight;
using k2dtest::kSurfaceWidth;
using k2dtest::Rgb;

const Rgb kRed{255, 0, 0};
const char kText[] = "Hello World 0123456789";

// Frees its font however the test ends.
struct Font {
    Font(const char* family, int style, int size) : handle(gkFontCreate(family, style, size)) {}
    ~Font() { gkFontFree(handle); }
    Font(const Font&) = delete;
    operator GK_FONT() const { return handle; }
    std::array<int, 2> metric(const char* text) const
    {
        std::array<int, 2> m{-1, -1};
        EXPECT_EQ(0, gkFontStringMetric(handle, text, m.data()));
        return m;
    }
    const GK_FONT handle;
};

int widthOf(const char* family, int style = GK_PLAIN) { return Font(family, style, 24).metric(kText)[0]; }

// Draws `text` in red with the origin at (x, y) of a pixel projection, optionally scaled.
Frame drawAt(GK_FONT font, const char* text, float x, float y, float scale = 1)
{
    glClear(GL_COLOR_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, kSurfaceWidth, 0, kSurfaceHeight, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(x, y, 0);
    glScalef(scale, scale, 1);
    glColor3f(1, 0, 0);
    EXPECT_EQ(0, gkFontRender(font, text));
    return Frame::grab();
}

TEST(GlyphMetrics, StringsMeasureInPixelsAtTheFontSize)
{
    Font sans("Liberation Sans", GK_PLAIN, 30);
    const auto s = sans.metric("Hello 123");
    EXPECT_NEAR(s[0], 129, 3);
    EXPECT_EQ(s[1], 35);  // ascent 28 + descent 7
    EXPECT_NEAR(Font("Liberation Mono", GK_PLAIN, 30).metric("Hello 123")[0], 162, 3);

    // The width adds up glyph by glyph; the height belongs to the font, not the text.
    EXPECT_EQ(s[0], sans.metric("Hello")[0] + sans.metric(" 123")[0]);
    for (const char* nothing : {"", static_cast<const char*>(nullptr)})
        EXPECT_EQ((std::array<int, 2>{0, s[1]}), sans.metric(nothing));
    const auto small = Font("Liberation Sans", GK_PLAIN, 15).metric("Hello 123");
    EXPECT_NEAR(small[0], s[0] / 2, 4);
    EXPECT_NEAR(small[1], s[1] / 2, 1);
}

TEST(GlyphFamilies, NamesStylesAndSizesResolveToMatchingFaces)
{
    const int sans = widthOf("Liberation Sans"), mono = widthOf("Liberation Mono"), serif = widthOf("Liberation Serif");
    EXPECT_TRUE(sans != mono && mono != serif && serif != sans);
    for (const auto& [alias, face] : {std::pair{"Arial", sans}, {"Helvetica", sans}, {"Courier", mono},
                                      {"Courier New", mono}, {"Times", serif}, {"Times New Roman", serif}})
        EXPECT_EQ(widthOf(alias), face) << alias;
    // Bitmap families measure like the outline family of the same name.
    EXPECT_NEAR(widthOf("Courier [fixed]"), mono, 4);
    EXPECT_TRUE(widthOf("Arial", GK_BOLD) > sans && widthOf("Arial", GK_BOLD_ITALIC) > sans);

    EXPECT_EQ(GK_PLAIN | GK_BOLD | GK_ITALIC | GK_BOLD_ITALIC, gkFamilyGetStyles("Arial"));
    EXPECT_EQ(gkFamilyGetStyles("Arial"), gkFamilyGetStyles("Courier [fixed]"));
    // Outline faces come in any size, bitmap faces in the sizes they hold.
    int count = -1;
    EXPECT_EQ(nullptr, gkFamilyGetSizes("Arial", GK_PLAIN, &count));
    int* sizes = gkFamilyGetSizes("Helvetica [fixed]", GK_BOLD, &count);
    ASSERT_GT(count, 0);
    EXPECT_TRUE(std::is_sorted(sizes, sizes + count) && std::count(sizes, sizes + count, 12) == 1);
    gkFree(sizes);
    EXPECT_NE(0, gkFontScalable(Font("Helvetica", GK_PLAIN, 12)));
    EXPECT_EQ(0, gkFontScalable(Font("Helvetica [fixed]", GK_PLAIN, 12)));
}

// Unknown families and garbage requests still give fonts that measure; freed handles are refused.
TEST(GlyphRobustness, BadRequestsFallBackAndFreedHandlesAreRefused)
{
    int metric[2];
    for (GK_FONT f : {gkFontCreate("No Such Family At All", GK_PLAIN, 24), gkFontCreate(nullptr, 0, 12),
                      gkFontCreate("", -3, -5), gkFontCreate("Arial", 0x7fff, 1 << 30),
                      gkFontCreate(" [fixed]", GK_BOLD, 0)}) {
        EXPECT_TRUE(gkFontStringMetric(f, "Hi", metric) == 0 && metric[0] * metric[1] > 0);
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
    char pattern[] = "/tmp/glyphkit-XXXXXX";
    const std::filesystem::path dir = mkdtemp(pattern);
    std::filesystem::copy_file("/usr/share/fonts/truetype/liberation2/LiberationSans-Regular.ttf", dir / "OnlyRegular.TTF");
    std::ofstream(dir / "broken.ttf") << "not a font";

    const int systemBold = widthOf("Liberation Sans", GK_BOLD);
    for (int load = 0; load < 3; ++load) {
        ASSERT_EQ(1, gkLibraryInit());
        EXPECT_EQ(1, gkLibraryAddPath(dir.c_str()));
        EXPECT_EQ(1, gkLibraryAddPath("/no/such/directory"));
        EXPECT_EQ(1, gkLibraryParseFonts());
    }
    // The directory holds only the regular face, so bold is synthesized from it.
    EXPECT_EQ(GK_PLAIN, gkFamilyGetStyles("liberation sans"));
    const int bold = widthOf("Liberation Sans", GK_BOLD);
    EXPECT_TRUE(bold != systemBold && bold > widthOf("Liberation Sans")) << bold;

    ASSERT_EQ(1, gkLibraryInit());
    EXPECT_EQ(0, gkLibraryParseFonts());
    EXPECT_EQ(systemBold, widthOf("Liberation Sans", GK_BOLD));
    std::filesystem::remove_all(dir);
}

class GlyphRender : public k2dtest::GlTest {};

// Above the size where glyphs are rasterized once and stretched, outline text still lies inside
// its metric box in its proportions. (Texts of views check the box, scale and turn of ordinary
// sizes, and that bitmap texts keep their pixels.)
TEST_F(GlyphRender, HugeTextFillsItsMetricBox)
{
    Font huge("Arial", GK_PLAIN, 200);
    const auto h = huge.metric("Hi");
    const Frame hugeFrame = drawAt(huge, "Hi", 10, 10);
    const Ink big = hugeFrame.ink();
    EXPECT_EQ(big.lit, hugeFrame.ink(10, 10, 10 + h[0], 10 + h[1]).lit);
    EXPECT_GT(big.width(), h[0] * 3 / 4);
    EXPECT_NEAR(big.height(), 143, 6);  // cap height of Liberation Sans is 0.716 em
}

// The bitmap face is the outline face in whole, fully lit pixels: the two drawings nearly
// coincide, also when the text starts left of the viewport and only part of it shows.
TEST_F(GlyphRender, FixedAndOutlineFontsDrawTheSameLetters)
{
    Font outline("Helvetica", GK_PLAIN, 30), fixed("Helvetica [fixed]", GK_PLAIN, 30);
    for (float left : {20.0f, -12.0f}) {
        const Frame a = drawAt(outline, "FL7", left, 100), b = drawAt(fixed, "FL7", left, 100);
        int both = 0, either = 0;
        for (int y = 90; y < 150; ++y)
            for (int x = 0; x < 200; ++x) {
                const bool inA = a.at(x, y).r > 128, inB = b.at(x, y).r > 128;
                both += inA && inB;
                either += inA || inB;
            }
        ASSERT_GT(either, 120) << left;
        EXPECT_EQ(b.ink().lit, b.count(0, 0, kSurfaceWidth, kSurfaceHeight, kRed, 0)) << left;
        EXPECT_GT(double(both) / either, 0.8) << both << " of " << either << " from " << left;
    }
}

// The host textures and blends its own drawing; text still comes out in the current colour,
// and every setting the host made is there afterwards.
TEST_F(GlyphRender, LeavesTheCallersGlStateAlone)
{
    GLuint hostTexture = 0;
    const uint8_t blue[3] = {0, 0, 255};
    glGenTextures(1, &hostTexture);
    glBindTexture(GL_TEXTURE_2D, hostTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 1, 1, 0, GL_RGB, GL_UNSIGNED_BYTE, blue);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ZERO);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    Font outline("Arial", GK_BOLD, 18), fixed("Courier [fixed]", GK_ITALIC, 12);
    for (const Font* font : {&outline, &fixed}) {
        const Frame frame = drawAt(*font, "State", 30, 30);
        EXPECT_GT(frame.count(30, 30, 130, 60, kRed), 20);
        EXPECT_EQ(0, frame.count(0, 0, kSurfaceWidth, kSurfaceHeight, Rgb{0, 0, 255}, 100));

        GLint value[4];
        // The current colour's red of 1 reads as the largest GLint.
        for (const auto& [name, expected] : {std::pair<GLenum, GLint>{GL_TEXTURE_BINDING_2D, GLint(hostTexture)},
                                             {GL_TEXTURE_2D, GL_TRUE}, {GL_BLEND, GL_TRUE}, {GL_BLEND_SRC, GL_ONE},
                                             {GL_BLEND_DST, GL_ZERO}, {GL_UNPACK_ALIGNMENT, 8},
                                             {GL_MATRIX_MODE, GL_MODELVIEW}, {GL_CURRENT_COLOR, INT_MAX}}) {
            glGetIntegerv(name, value);
            EXPECT_EQ(expected, value[0]) << "GL state 0x" << std::hex << name;
        }
        glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, value);
        EXPECT_TRUE(value[0] == GL_REPLACE && glGetError() == GL_NO_ERROR);
    }
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    glDeleteTextures(1, &hostTexture);
}

// A font made without a context measures at once and draws once there is one. Equal requests
// share one font, and freeing one handle leaves the others drawing; a font that owns a texture
// may be freed after the context is gone.
TEST_F(GlyphRender, FontsOutliveTheMissingContextAndEachHandle)
{
    k2dtest::releaseGlContext();
    GK_FONT first = gkFontCreate("Arial", GK_PLAIN, 24);
    int m[2];
    EXPECT_EQ(0, gkFontStringMetric(first, "Later", m));
    EXPECT_EQ(-1, gkFontRender(first, "Later"));
    ASSERT_TRUE(k2dtest::ensureGlContext(nullptr));
    EXPECT_GT(drawAt(first, "Later", 100, 100).count(100, 100, 100 + m[0], 100 + m[1], kRed), 100);
    GK_FONT second = gkFontCreate("Arial", GK_PLAIN, 24);
    EXPECT_NE(first, second);
    gkFontFree(first);
    EXPECT_EQ(-1, gkFontRender(first, "gone"));
    EXPECT_GT(drawAt(second, "Later", 100, 100).count(100, 100, 100 + m[0], 100 + m[1], kRed), 100);
    k2dtest::releaseGlContext();
    gkFontFree(second);
    ASSERT_TRUE(k2dtest::ensureGlContext(nullptr));
}

// Text is 8-bit: bytes are Latin-1 code points, and control bytes have no glyph.
TEST_F(GlyphRender, AccentedLettersDrawAndControlBytesDoNot)
{
    Font sans("Arial", GK_PLAIN, 24);
    EXPECT_EQ(0, sans.metric("\x01\x02\x1f")[0]);
    EXPECT_EQ(sans.metric("AB")[0], sans.metric("A\x01" "B")[0]);
    EXPECT_GT(drawAt(sans, "\xc4\xd6\xdc", 20, 20).ink().lit, 100);
    EXPECT_EQ(0, drawAt(sans, "\x01\x7f\x81", 20, 20).ink().lit);
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
    for (int size = 10; size < 90; ++size)
        EXPECT_EQ(0, gkFontRender(Font("Arial", 0, size), "A"));
    EXPECT_LE(liveTextures() - before, 20);
}

} // namespace
