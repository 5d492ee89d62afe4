// Fonts are resolved through our own search directories first, then fontconfig. Every glyph
// of the 8-bit code page is rasterized when the font is made, so measuring and drawing need
// neither FreeType nor the loading thread's state afterwards, and GL resources wait for the
// first draw, in the thread that holds the context.
#include "GlyphKit.h"

#include <GL/gl.h>
#include <dirent.h>
#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_SYNTHESIS_H

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <strings.h>
#include <unordered_map>
#include <vector>

namespace {

constexpr int kFirstCode = 32;   // control characters have no glyphs
constexpr int kMaxSize = 1000;   // a larger request is taken as garbage
constexpr int kMaxRaster = 128;  // outline glyphs above this are rasterized smaller and stretched
constexpr int kMaxFixed = 256;   // bitmap fonts are drawn 1:1, so keep their memory bounded
constexpr int kFixedMin = 8, kFixedMax = 24;  // sizes offered for bitmap families
const char kFixedSuffix[] = " [fixed]";
constexpr size_t kRecentFonts = 16;  // kept alive after their last handle is freed

struct Glyph {
    int advance = 0;         // pixels at the font's size
    int left = 0, top = 0;   // bitmap offset from the pen on the baseline, in raster pixels
    int width = 0, height = 0;
    int x = 0, y = 0;        // outline fonts: place in the atlas
    size_t bits = 0;         // bitmap fonts: offset of the glyph's rows in Font::pixels
};

bool glContextCurrent();

struct Font {
    bool scalable = true;
    int ascent = 0, descent = 0;
    float stretch = 1;       // font pixels per raster pixel
    Glyph glyphs[256];
    std::vector<uint8_t> pixels;  // outline: GL_ALPHA atlas, rows top-down; bitmap: glBitmap rows
    int atlasWidth = 0, atlasHeight = 0;
    GLuint texture = 0;

    Font() = default;
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    // The atlas goes with the last owner, a handle or the recent list. Without a context the
    // texture died with its own, or belongs to one we cannot reach.
    ~Font()
    {
        if (texture && glContextCurrent())
            glDeleteTextures(1, &texture);
    }
};

struct FaceFile {
    std::string path;
    int index;
    std::string family;
    bool bold, italic;
};

struct State {
    int debug = 0;
    std::vector<std::string> paths;
    std::vector<FaceFile> files;  // from the search paths, in path order
    std::mutex lock;              // guards the handle table: fonts may be freed from the draw thread
    std::unordered_map<GK_FONT, std::shared_ptr<Font>> fonts;
    // Fonts already made, by the request that made them: views repeat a few fonts many
    // times, and making one rasterizes every glyph. Forgotten when the search paths change.
    std::map<std::tuple<std::string, int, int>, std::weak_ptr<Font>> made;
    // The last fonts made stay alive, so that loading a view again finds its fonts ready.
    std::deque<std::shared_ptr<Font>> recent;
    GK_FONT nextHandle = 1;
};

// Never destroyed: a host may free fonts from its own static destructors.
State& state()
{
    static State* s = new State;
    return *s;
}

__attribute__((format(printf, 2, 3))) void note(int level, const char* format, ...)
{
    if (state().debug < level)
        return;
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
}

// A private FreeType instance per operation keeps fonts made in different threads apart.
struct FreeType {
    FT_Library lib = nullptr;
    FreeType()
    {
        if (FT_Init_FreeType(&lib))
            lib = nullptr;
    }
    ~FreeType()
    {
        if (lib)
            FT_Done_FreeType(lib);  // also closes its faces
    }
};

struct Request {
    std::string family;
    bool fixed = false, bold = false, italic = false;
};

Request parseRequest(const char* family, int style)
{
    Request r;
    r.family = family ? family : "";
    const size_t n = sizeof kFixedSuffix - 1;
    if (r.family.size() >= n && r.family.compare(r.family.size() - n, n, kFixedSuffix) == 0) {
        r.fixed = true;
        r.family.resize(r.family.size() - n);
    }
    r.bold = style & (GK_BOLD | GK_BOLD_ITALIC);
    r.italic = style & (GK_ITALIC | GK_BOLD_ITALIC);
    return r;
}

int styleBit(bool bold, bool italic)
{
    return bold ? (italic ? GK_BOLD_ITALIC : GK_BOLD) : (italic ? GK_ITALIC : GK_PLAIN);
}

// Stand-ins for the classic PostScript and Windows names, tried right after the name itself:
// fontconfig aliases these only weakly, and a generic family alone would lose the metrics.
const char* const* standIns(const std::string& family)
{
    static const char* const mono[] = {"Liberation Mono", "Courier New", "monospace", nullptr};
    static const char* const serif[] = {"Liberation Serif", "Times New Roman", "serif", nullptr};
    static const char* const sans[] = {"Liberation Sans", "Arial", "sans-serif", nullptr};
    const char* f = family.c_str();
    if (strncasecmp(f, "courier", 7) == 0)
        return mono;
    if (strncasecmp(f, "times", 5) == 0)
        return serif;
    if (strncasecmp(f, "arial", 5) == 0 || strncasecmp(f, "helvetica", 9) == 0)
        return sans;
    return nullptr;
}

// fontconfig's best match for the request; the caller destroys it.
FcPattern* matchFont(const Request& r)
{
    FcPattern* pattern = FcPatternCreate();
    if (!pattern)
        return nullptr;
    if (!r.family.empty())
        FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(r.family.c_str()));
    for (const char* const* f = standIns(r.family); f && *f; ++f)
        FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(*f));
    FcPatternAddInteger(pattern, FC_WEIGHT, r.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern, FC_SLANT, r.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result;
    FcPattern* match = FcFontMatch(nullptr, pattern, &result);
    FcPatternDestroy(pattern);
    return match;
}

// File and face index for a request: a search-path font of that family wins, the closest style first.
bool findFace(const Request& r, std::string& path, int& index)
{
    int best = -1;
    for (const FaceFile& f : state().files) {
        const int score = (f.bold == r.bold) + (f.italic == r.italic);
        if (score > best && strcasecmp(f.family.c_str(), r.family.c_str()) == 0) {
            best = score;
            path = f.path;
            index = f.index;
        }
    }
    if (best >= 0)
        return true;
    FcPattern* match = matchFont(r);
    FcChar8* file = nullptr;
    const bool found = match && FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch;
    if (found) {
        path = reinterpret_cast<const char*>(file);
        index = 0;
        FcPatternGetInteger(match, FC_INDEX, 0, &index);
    }
    if (match)
        FcPatternDestroy(match);
    return found;
}

// Coverage 0..255 of one pixel of a rendered glyph, whatever depth FreeType delivered.
int coverage(const FT_Bitmap& b, int x, int y)
{
    const unsigned char* row = b.buffer + (b.pitch >= 0 ? y * b.pitch : (int(b.rows) - 1 - y) * -b.pitch);
    if (b.pixel_mode == FT_PIXEL_MODE_MONO)
        return (row[x >> 3] >> (7 - (x & 7))) & 1 ? 255 : 0;
    return b.pixel_mode == FT_PIXEL_MODE_GRAY ? row[x] : 0;
}

// Keeps a glyph's image: 8-bit coverage for the atlas, or bottom-up bit rows for glBitmap.
void keepGlyph(Font& font, Glyph& g, const FT_Bitmap& b, std::vector<uint8_t>& ink)
{
    if (font.scalable) {
        ink.resize(size_t(g.width) * g.height);
        for (int y = 0; y < g.height; ++y)
            for (int x = 0; x < g.width; ++x)
                ink[size_t(y) * g.width + x] = uint8_t(coverage(b, x, y));
        return;
    }
    const int rowBytes = (g.width + 7) / 8;
    g.bits = font.pixels.size();
    font.pixels.resize(g.bits + size_t(rowBytes) * g.height);
    for (int y = 0; y < g.height; ++y)
        for (int x = 0; x < g.width; ++x)
            if (coverage(b, x, g.height - 1 - y) >= 128)
                font.pixels[g.bits + size_t(y) * rowBytes + x / 8] |= uint8_t(0x80 >> (x & 7));
}

// Shelf-packs the glyph images, with a blank texel around each so filtering doesn't bleed,
// into a power-of-two atlas.
void packAtlas(Font& font, const std::vector<uint8_t> (&ink)[256])
{
    long area = 0;
    int widest = 0;
    for (const Glyph& g : font.glyphs) {
        area += long(g.width + 1) * (g.height + 1);
        widest = std::max(widest, g.width + 2);
    }
    int w = 64;
    while (long(w) * w < area || w < widest)
        w *= 2;
    int x = 1, y = 1, shelf = 0;
    for (Glyph& g : font.glyphs) {
        if (g.width == 0 || g.height == 0)
            continue;
        if (x + g.width + 1 > w) {
            x = 1;
            y += shelf + 1;
            shelf = 0;
        }
        g.x = x;
        g.y = y;
        x += g.width + 1;
        shelf = std::max(shelf, g.height);
    }
    int h = 64;
    while (h < y + shelf + 1)
        h *= 2;
    font.atlasWidth = w;
    font.atlasHeight = h;
    font.pixels.assign(size_t(w) * h, 0);
    for (int c = 0; c < 256; ++c) {
        const Glyph& g = font.glyphs[c];
        for (int row = 0; row < g.height; ++row)
            std::copy_n(&ink[c][size_t(row) * g.width], g.width, &font.pixels[size_t(g.y + row) * w + g.x]);
    }
}

// Rasterizes the code page 32..255 of one face. Styles the face lacks are synthesized.
void rasterize(Font& font, FT_Face face, const Request& r, int size)
{
    if (FT_Set_Pixel_Sizes(face, 0, FT_UInt(size)) && face->num_fixed_sizes > 0) {
        int nearest = 0;  // a bitmap-only face: draw with its closest strike
        for (int i = 1; i < face->num_fixed_sizes; ++i)
            if (std::abs(face->available_sizes[i].height - size) < std::abs(face->available_sizes[nearest].height - size))
                nearest = i;
        FT_Select_Size(face, nearest);
    }
    font.ascent = int((face->size->metrics.ascender + 63) >> 6);
    font.descent = int((-face->size->metrics.descender + 63) >> 6);
    const bool embolden = r.bold && !(face->style_flags & FT_STYLE_FLAG_BOLD);
    const bool slant = r.italic && !(face->style_flags & FT_STYLE_FLAG_ITALIC);
    const int raster = font.scalable ? std::min(size, kMaxRaster) : size;
    font.stretch = float(size) / float(raster);
    const FT_Matrix shrink = {FT_Fixed(0x10000L * raster / size), 0, 0, FT_Fixed(0x10000L * raster / size)};
    std::vector<uint8_t> ink[256];
    for (int code = kFirstCode; code < 256; ++code) {
        const FT_UInt index = FT_Get_Char_Index(face, FT_ULong(code));
        if (!index || FT_Load_Glyph(face, index, font.scalable ? FT_LOAD_DEFAULT : FT_LOAD_TARGET_MONO))
            continue;
        FT_GlyphSlot slot = face->glyph;
        if (embolden)
            FT_GlyphSlot_Embolden(slot);
        if (slant)
            FT_GlyphSlot_Oblique(slot);
        Glyph& g = font.glyphs[code];
        g.advance = int((slot->advance.x + 32) >> 6);
        if (raster != size && slot->format == FT_GLYPH_FORMAT_OUTLINE)
            FT_Outline_Transform(&slot->outline, &shrink);
        if (FT_Render_Glyph(slot, font.scalable ? FT_RENDER_MODE_NORMAL : FT_RENDER_MODE_MONO))
            continue;
        g.left = slot->bitmap_left;
        g.top = slot->bitmap_top;
        g.width = int(slot->bitmap.width);
        g.height = int(slot->bitmap.rows);
        keepGlyph(font, g, slot->bitmap, ink[code]);
    }
    if (font.scalable)
        packAtlas(font, ink);
}

std::shared_ptr<Font> makeFont(const char* family, int style, int size)
{
    const Request r = parseRequest(family, style);
    auto font = std::make_shared<Font>();
    font->scalable = !r.fixed;
    size = std::clamp(size, 1, r.fixed ? kMaxFixed : kMaxSize);
    std::string path;
    int index = 0;
    FreeType ft;
    FT_Face face = nullptr;
    if (!ft.lib || !findFace(r, path, index) || FT_New_Face(ft.lib, path.c_str(), index, &face)) {
        // No font file at all: a blank font that still measures like text of its size.
        note(1, "gkFontCreate: no font for \"%s\"\n", r.family.c_str());
        font->ascent = size - size / 5;
        font->descent = size / 5;
        return font;
    }
    note(2, "gkFontCreate: \"%s\" %d px from %s\n", family ? family : "", size, path.c_str());
    rasterize(*font, face, r, size);
    return font;
}

bool sameFaces(const std::vector<FaceFile>& a, const std::vector<FaceFile>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const FaceFile& x, const FaceFile& y) {
        return x.path == y.path && x.index == y.index;
    });
}

Font* findFont(GK_FONT handle)
{
    State& s = state();
    std::lock_guard<std::mutex> hold(s.lock);
    auto it = s.fonts.find(handle);
    return it == s.fonts.end() ? nullptr : it->second.get();
}

// glGetString answers null when no context is current, without touching GLX.
bool glContextCurrent()
{
    return glGetString(GL_VERSION) != nullptr;
}

void uploadAtlas(Font& font)
{
    glGenTextures(1, &font.texture);
    glBindTexture(GL_TEXTURE_2D, font.texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA8, font.atlasWidth, font.atlasHeight, 0, GL_ALPHA, GL_UNSIGNED_BYTE,
                 font.pixels.data());
    glPopClientAttrib();
}

// Outline text: one textured quad per glyph in modelview units, so it follows the matrix.
void drawOutline(Font& font, const unsigned char* text)
{
    glPushAttrib(GL_ENABLE_BIT | GL_TEXTURE_BIT | GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT);
    // A texture of an earlier, destroyed context is unknown to this one: make it anew.
    if (!font.texture || !glIsTexture(font.texture))
        uploadAtlas(font);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_GEN_S);
    glDisable(GL_TEXTURE_GEN_T);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, font.texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    const float k = font.stretch, sw = 1.0f / float(font.atlasWidth), sh = 1.0f / float(font.atlasHeight);
    float pen = 0;
    glBegin(GL_QUADS);
    for (; *text; ++text) {
        const Glyph& g = font.glyphs[*text];
        if (g.width > 0 && g.height > 0) {
            const float x0 = pen + float(g.left) * k, x1 = x0 + float(g.width) * k;
            const float y1 = float(font.descent) + float(g.top) * k, y0 = y1 - float(g.height) * k;
            const float s0 = float(g.x) * sw, s1 = float(g.x + g.width) * sw;
            const float t0 = float(g.y) * sh, t1 = float(g.y + g.height) * sh;
            glTexCoord2f(s0, t1);
            glVertex2f(x0, y0);
            glTexCoord2f(s1, t1);
            glVertex2f(x1, y0);
            glTexCoord2f(s1, t0);
            glVertex2f(x1, y1);
            glTexCoord2f(s0, t0);
            glVertex2f(x0, y1);
        }
        pen += float(g.advance);
    }
    glEnd();
    glPopAttrib();
}

// Puts the raster position `lift` pixels above the modelview origin. glRasterPos there would
// lose the whole string whenever the origin lies outside the viewport, so start from the
// viewport's centre and move by a null bitmap, which may leave the viewport.
bool placeRaster(int lift)
{
    GLdouble m[16], p[16];
    GLint v[4];
    glGetDoublev(GL_MODELVIEW_MATRIX, m);
    glGetDoublev(GL_PROJECTION_MATRIX, p);
    glGetIntegerv(GL_VIEWPORT, v);
    double clip[4];
    for (int i = 0; i < 4; ++i)
        clip[i] = p[i] * m[12] + p[4 + i] * m[13] + p[8 + i] * m[14] + p[12 + i] * m[15];
    if (clip[3] <= 0)
        return false;
    const double dx = clip[0] / clip[3] * v[2] / 2, dy = clip[1] / clip[3] * v[3] / 2;
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glRasterPos3d(0, 0, std::clamp(clip[2] / clip[3], -1.0, 1.0));
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glBitmap(0, 0, 0, 0, GLfloat(dx), GLfloat(dy + lift), nullptr);
    return true;
}

// Bitmap text: drawn pixel for pixel at the origin's window position, whatever the scale.
void drawFixed(const Font& font, const unsigned char* text)
{
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT | GL_TRANSFORM_BIT);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_UNPACK_LSB_FIRST, GL_FALSE);
    glDisable(GL_LIGHTING);  // the raster colour must be the current colour
    glDisable(GL_TEXTURE_1D);
    glDisable(GL_TEXTURE_2D);
    if (placeRaster(font.descent)) {
        for (; *text; ++text) {
            const Glyph& g = font.glyphs[*text];
            glBitmap(g.width, g.height, GLfloat(-g.left), GLfloat(g.height - g.top), GLfloat(g.advance), 0,
                     g.width > 0 && g.height > 0 ? font.pixels.data() + g.bits : nullptr);
        }
    }
    glPopClientAttrib();
    glPopAttrib();
}

bool hasFontExtension(const char* name)
{
    static const char* const extensions[] = {".ttf", ".otf", ".ttc", ".otc", ".pfb", ".pfa", ".pcf", ".bdf"};
    const char* dot = std::strrchr(name, '.');
    for (const char* e : extensions)
        if (dot && strcasecmp(dot, e) == 0)
            return true;
    return false;
}

} // namespace

extern "C" {

void gkSetDebugLevel(int level)
{
    state().debug = level;
}

int gkLibraryInit(void)
{
    state().paths.clear();
    return 1;
}

int gkLibraryAddPath(const char* directory)
{
    if (!directory || !*directory)
        return 0;
    std::vector<std::string>& paths = state().paths;
    if (std::find(paths.begin(), paths.end(), directory) == paths.end())
        paths.emplace_back(directory);
    return 1;
}

int gkLibraryParseFonts(void)
{
    State& s = state();
    const std::vector<FaceFile> before = std::move(s.files);
    s.files.clear();
    FreeType ft;
    if (!ft.lib)
        return 0;
    for (const std::string& dir : s.paths) {
        DIR* d = opendir(dir.c_str());
        if (!d)
            continue;
        while (const dirent* entry = readdir(d)) {
            if (!hasFontExtension(entry->d_name))
                continue;
            const std::string path = dir + "/" + entry->d_name;
            FT_Long faces = 1;
            for (FT_Long i = 0; i < faces; ++i) {
                FT_Face face;
                if (FT_New_Face(ft.lib, path.c_str(), i, &face))
                    break;
                faces = face->num_faces;
                if (face->family_name)
                    s.files.push_back({path, int(i), face->family_name, (face->style_flags & FT_STYLE_FLAG_BOLD) != 0,
                                       (face->style_flags & FT_STYLE_FLAG_ITALIC) != 0});
                FT_Done_Face(face);
            }
        }
        closedir(d);
    }
    if (!sameFaces(before, s.files)) {
        std::lock_guard<std::mutex> hold(s.lock);
        s.made.clear();
        s.recent.clear();
    }
    note(2, "gkLibraryParseFonts: %zu faces in the search paths\n", s.files.size());
    return int(s.files.size());
}

GK_FONT gkFontCreate(const char* family, int style, int size)
{
    State& s = state();
    const auto request = std::make_tuple(std::string(family ? family : ""), style, size);
    std::shared_ptr<Font> font;
    {
        std::lock_guard<std::mutex> hold(s.lock);
        auto it = s.made.find(request);
        if (it != s.made.end())
            font = it->second.lock();
    }
    const bool fresh = !font;
    if (fresh)
        font = makeFont(family, style, size);
    std::lock_guard<std::mutex> hold(s.lock);
    s.made[request] = font;
    if (fresh) {
        s.recent.push_back(font);
        if (s.recent.size() > kRecentFonts)
            s.recent.pop_front();
        // A request whose font is gone still holds the font's memory through its weak
        // pointer; damaged views ask for any family and size, so forget such requests.
        for (auto it = s.made.begin(); it != s.made.end();)
            it = it->second.expired() ? s.made.erase(it) : std::next(it);
    }
    const GK_FONT handle = s.nextHandle++;
    s.fonts.emplace(handle, std::move(font));
    return handle;
}

void gkFontFree(GK_FONT handle)
{
    // Let go outside the lock: the last owner's release deletes the texture.
    std::shared_ptr<Font> font;
    {
        State& s = state();
        std::lock_guard<std::mutex> hold(s.lock);
        auto it = s.fonts.find(handle);
        if (it == s.fonts.end())
            return;
        font = std::move(it->second);
        s.fonts.erase(it);
    }
}

int gkFontScalable(GK_FONT handle)
{
    const Font* font = findFont(handle);
    return font && font->scalable ? 1 : 0;
}

int gkFontStringMetric(GK_FONT handle, const char* text, int metric[2])
{
    const Font* font = findFont(handle);
    if (!metric)
        return -1;
    metric[0] = metric[1] = 0;
    if (!font)
        return -1;
    for (const unsigned char* c = reinterpret_cast<const unsigned char*>(text); c && *c; ++c)
        metric[0] += font->glyphs[*c].advance;
    metric[1] = font->ascent + font->descent;
    return 0;
}

int gkFontRender(GK_FONT handle, const char* text)
{
    Font* font = findFont(handle);
    if (!font || !glContextCurrent())
        return -1;
    if (!text || !*text)
        return 0;
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text);
    if (font->scalable)
        drawOutline(*font, bytes);
    else
        drawFixed(*font, bytes);
    return 0;
}

int gkFamilyGetStyles(const char* family)
{
    const Request r = parseRequest(family, GK_PLAIN);
    int mask = 0;
    for (const FaceFile& f : state().files)
        if (strcasecmp(f.family.c_str(), r.family.c_str()) == 0)
            mask |= styleBit(f.bold, f.italic);
    if (mask)
        return mask;
    // The faces fontconfig has under the family name that the request resolves to.
    FcPattern* match = matchFont(r);
    FcChar8* name = nullptr;
    if (match && FcPatternGetString(match, FC_FAMILY, 0, &name) == FcResultMatch) {
        FcPattern* pattern = FcPatternBuild(nullptr, FC_FAMILY, FcTypeString, name, static_cast<char*>(nullptr));
        FcObjectSet* objects = FcObjectSetBuild(FC_WEIGHT, FC_SLANT, static_cast<char*>(nullptr));
        FcFontSet* set = pattern && objects ? FcFontList(nullptr, pattern, objects) : nullptr;
        for (int i = 0; set && i < set->nfont; ++i) {
            int weight = FC_WEIGHT_REGULAR, slant = FC_SLANT_ROMAN;
            FcPatternGetInteger(set->fonts[i], FC_WEIGHT, 0, &weight);
            FcPatternGetInteger(set->fonts[i], FC_SLANT, 0, &slant);
            mask |= styleBit(weight >= FC_WEIGHT_DEMIBOLD, slant != FC_SLANT_ROMAN);
        }
        if (set)
            FcFontSetDestroy(set);
        if (objects)
            FcObjectSetDestroy(objects);
        if (pattern)
            FcPatternDestroy(pattern);
    }
    if (match)
        FcPatternDestroy(match);
    // Whatever the family lacks is synthesized, but plain text is always there.
    return mask ? mask : GK_PLAIN;
}

int* gkFamilyGetSizes(const char* family, int /*style*/, int* count)
{
    if (!count)
        return nullptr;
    *count = 0;
    if (!parseRequest(family, GK_PLAIN).fixed)
        return nullptr;
    const int n = kFixedMax - kFixedMin + 1;
    int* sizes = static_cast<int*>(std::malloc(sizeof(int) * n));
    if (!sizes)
        return nullptr;
    for (int i = 0; i < n; ++i)
        sizes[i] = kFixedMin + i;
    *count = n;
    return sizes;
}

void gkFree(void* array)
{
    std::free(array);
}

} // extern "C"
