// The "definition" section of an XML view file: strokes, fill patterns, pictures and fonts,
// stored once and referred to by number. The writer finds equal things by their content (a
// digest for bytes), so a hundred lines of one stipple or ten copies of one picture cost one
// entry each.
#include "xml/viewXml.h"

#include "base/base64.h"
#include "graphics/graphics.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <sstream>

namespace {

// The style number of a stipple or pattern that no table entry matches; the record's own
// factor and pattern, or bytes, count then.
constexpr int kCustomStyle = 100;
// Pattern numbers from here on are custom; those between the table's end and this one fall
// back to the table's first pattern, as getPattern does.
constexpr int kFirstCustomPattern = 65;
// A "bitmap" larger than this many pixels (an 8192 x 8192 picture) is taken for damage: its
// buffer alone would be 256 MiB.
constexpr int64_t kMaxPixels = int64_t(1) << 26;

// Bytes of a width x height picture, 4 per pixel; 0 for a size below one pixel or too large.
size_t pictureBytes(int width, int height)
{
    const int64_t pixels = int64_t(width) * int64_t(height);
    return width > 0 && height > 0 && pixels <= kMaxPixels ? size_t(pixels) * 4 : 0;
}

std::string encodeBase64(const uint8_t* bytes, size_t length)
{
    std::string text(size_t(Base64::getSize(int(length))), '\0');
    Base64::encode(bytes, &text[0], int(length), 0);
    return text;
}

// Decodes at most `length` characters of the text into a buffer sized by that length, so that
// no text can write past it. @return the bytes, as many as the text gives whole.
std::vector<uint8_t> decodeBase64(const std::string& text, size_t length)
{
    const int characters = int(std::min(text.size(), length));
    std::vector<uint8_t> bytes(size_t(3 * (characters / 4)));
    // A text that ends inside a group gives nothing rather than bytes of unknown number.
    const int decoded = Base64::decode(text.data(), bytes.data(), characters);
    bytes.resize(size_t(std::max(decoded, 0)));
    return bytes;
}

// The number of a thing new to the file, taken from the counter shared by all four tables.
int32_t newId()
{
    return xmlWrite.uniquex++;
}

XmlElement appendEntry(XmlElement& section, const char* kind, const char* name, int id)
{
    XmlElement entry(kind);
    entry.setAttributeString("name", name);
    entry.setAttributeInt("id", id);
    section.appendElement(entry);
    return entry;
}

void saveFontKey(XmlElement& section, int type, const char* family, size_t familyCapacity, int size, bool bold,
                 bool italic, bool underline, int32_t* fontId)
{
    const std::string name(family, strnlen(family, familyCapacity));
    std::ostringstream key;
    key << type << ' ' << name << ' ' << size << ' ' << bold << ' ' << italic << ' ' << underline;
    const auto known = xmlWrite.mapFont.find(key.str());
    if (known != xmlWrite.mapFont.end()) {
        *fontId = known->second;
        return;
    }
    *fontId = xmlWrite.mapFont[key.str()] = newId();
    XmlElement entry = appendEntry(section, "font", "FontName", *fontId);
    entry.setAttributeString("type", "truetype");
    entry.setAttributeString("family", name);
    entry.setAttributeInt("size", size);
    entry.setAttributeBool("bold", bold);
    entry.setAttributeBool("italic", italic);
    entry.setAttributeBool("underline", underline);
}

// Bits of fontStyle that a "font" stores.
constexpr int kFontBold = 2;
constexpr int kFontItalic = 4;

// The kinds that carry both a stroke and a fill in the same fields.
template <class Record> void saveStrokeAndPattern(XmlElement& section, Record* r)
{
    saveStroke(section, r->strokeStyle, r->stippleFactor, r->stipplePattern, &r->strokeStyleId);
    savePattern(section, r->fillStyle, r->fillPattern, &r->fillStyleId);
}

void saveImageOf(XmlElement& section, IMAGE_STRUCT* image)
{
    const uint8_t* pixels = txData(image->texture);
    if (pixels)
        saveImage(section, image->width, image->height, pixels, &image->imageId);
    else
        image->imageId = 0;
}

void loadStroke(const XmlElement& e)
{
    const uint32_t factor = uint32_t(e.getAttributeInt("factor"));
    const uint32_t pattern = uint32_t(e.getAttributeInt("data")) & 0xffffu;
    xmlRead.mapStrokeStyle[e.getAttributeInt("id")] = int32_t(factor << 16 | pattern);
}

void loadPattern(const XmlElement& e)
{
    const std::vector<uint8_t> bytes =
        decodeBase64(e.getAttributeString("data"), size_t(Base64::getSize(kFillPatternBytes)));
    FillPattern& pattern = xmlRead.mapFillStyle[e.getAttributeInt("id")];
    memset(pattern.bytes, 0, sizeof pattern.bytes);
    // Not memcpy: an empty text decodes to no buffer at all.
    std::copy_n(bytes.begin(), std::min(bytes.size(), sizeof pattern.bytes), pattern.bytes);
}

// Pixels that the text does not supply, whole or through zlib, stay zero.
void loadBitmap(const XmlElement& e)
{
    const int width = e.getAttributeInt("width"), height = e.getAttributeInt("height");
    const size_t size = pictureBytes(width, height);
    if (!size)
        return;
    const std::string text = e.getAttributeString("data");
    const std::vector<uint8_t> decoded = decodeBase64(text, text.size());
    Image image;
    image.width = width;
    image.height = height;
    image.pixels.assign(size, 0);
    if (e.getAttributeString("compression") == "zlib") {
        uLongf length = uLongf(size);
        uncompress(image.pixels.data(), &length, decoded.data(), uLong(decoded.size()));
    } else {
        std::copy_n(decoded.begin(), std::min(decoded.size(), size), image.pixels.begin());
    }
    xmlRead.mapImage[e.getAttributeInt("id")] = std::move(image);
}

void loadFont(const XmlElement& e)
{
    KFont font;
    font.type = e.getAttributeString("type") == "truetype" ? 0 : 1;
    font.family = e.getAttributeString("family");
    font.size = e.getAttributeInt("size");
    font.bold = e.getAttributeBool("bold");
    font.italic = e.getAttributeBool("italic");
    font.underline = e.getAttributeBool("underline");
    xmlRead.mapFont[e.getAttributeInt("id")] = font;
}

} // namespace

void saveStroke(XmlElement& section, int strokeStyle, int32_t stippleFactor, uint16_t stipplePattern,
                int32_t* strokeStyleId)
{
    if (strokeStyle < kLineStyleCount)
        getLineStipple(strokeStyle, &stippleFactor, &stipplePattern);
    const uint32_t key = uint32_t(stippleFactor) << 16 | stipplePattern;
    const auto known = xmlWrite.mapLineStyle.find(key);
    if (known != xmlWrite.mapLineStyle.end()) {
        *strokeStyleId = known->second;
        return;
    }
    *strokeStyleId = xmlWrite.mapLineStyle[key] = newId();
    XmlElement entry = appendEntry(section, "stroke", "StrokeName", *strokeStyleId);
    entry.setAttributeInt("factor", stippleFactor);
    entry.setAttributeHex("data", stipplePattern);
}

void savePattern(XmlElement& section, int fillStyle, const uint8_t* fillPattern, int32_t* fillStyleId)
{
    const uint8_t* bytes = fillStyle < kFirstCustomPattern ? getPattern(fillStyle) : fillPattern;
    const Md5Hash key = Md5().getMd5(bytes, kFillPatternBytes);
    const auto known = xmlWrite.mapPatternStyle.find(key);
    if (known != xmlWrite.mapPatternStyle.end()) {
        *fillStyleId = known->second;
        return;
    }
    *fillStyleId = xmlWrite.mapPatternStyle[key] = newId();
    appendEntry(section, "pattern", "PatternName", *fillStyleId)
        .setAttributeString("data", encodeBase64(bytes, kFillPatternBytes));
}

// Pictures are told apart by their pixels alone: a 2 x 8 and a 4 x 4 picture of the same bytes
// share the entry of the first. A picture of no pixels, or too many to read back, gets the
// number 0, which no entry has.
void saveImage(XmlElement& section, int width, int height, const uint8_t* data, int32_t* imageId)
{
    const size_t size = pictureBytes(width, height);
    if (!size || !data) {
        *imageId = 0;
        return;
    }
    const Md5Hash key = Md5().getMd5(data, unsigned(size));
    const auto known = xmlWrite.mapImage.find(key);
    if (known != xmlWrite.mapImage.end()) {
        *imageId = known->second;
        return;
    }
    *imageId = xmlWrite.mapImage[key] = newId();
    uLongf length = compressBound(uLong(size));
    std::vector<uint8_t> compressed(length);
    if (compress(compressed.data(), &length, data, uLong(size)) != Z_OK)
        length = 0;
    XmlElement entry = appendEntry(section, "bitmap", "BitmapName", *imageId);
    entry.setAttributeString("path", "BitmapPath");
    entry.setAttributeInt("width", width);
    entry.setAttributeInt("height", height);
    entry.setAttributeString("compression", "zlib");
    entry.setAttributeString("data", encodeBase64(compressed.data(), length));
}

// A text has no outline switch of its own: its glyphs are always drawn in the stroke colour, so
// its type number is that of a drawn stroke, 1. A graph's is 0, so a text and a graph of one
// font take two entries.
void saveFont(XmlElement& section, TEXT_STRUCT* text, int32_t* fontId)
{
    saveFontKey(section, 1, text->fontFamily, sizeof text->fontFamily, text->fontSize,
                (text->fontStyle & kFontBold) != 0, (text->fontStyle & kFontItalic) != 0, text->underline != 0,
                fontId);
}

void saveFont(XmlElement& section, GRAPH_STRUCT* graph, int32_t* fontId)
{
    saveFontKey(section, 0, graph->fontFamily, sizeof graph->fontFamily, graph->fontSize,
                (graph->fontStyle & kFontBold) != 0, (graph->fontStyle & kFontItalic) != 0, false, fontId);
}

void definitionSaveXml(ELEMENT_STRUCT* element, XmlElement& section)
{
    switch (element->type) {
    case KR_GRAPH: {
        GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(element->data);
        saveStroke(section, g->gridStyle, g->gridStippleFactor, g->gridStipplePattern, &g->gridStyleId);
        saveFont(section, g, &g->fontId);
        break;
    }
    case KR_RECT: saveStrokeAndPattern(section, static_cast<RECT_STRUCT*>(element->data)); break;
    case KR_POLYLINE:
    case KR_CPOLY: saveStrokeAndPattern(section, static_cast<POLY_STRUCT*>(element->data)); break;
    case KR_CIRCLE:
    case KR_ARC: saveStrokeAndPattern(section, static_cast<CIRCLE_STRUCT*>(element->data)); break;
    case KR_TEXT:
    case KR_TEXT_OLD: {
        TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(element->data);
        saveStrokeAndPattern(section, t);
        saveFont(section, t, &t->fontId);
        break;
    }
    case KR_LINE: {
        LINE_STRUCT* l = static_cast<LINE_STRUCT*>(element->data);
        saveStroke(section, l->strokeStyle, l->stippleFactor, l->stipplePattern, &l->strokeStyleId);
        break;
    }
    case KR_IMAGE: {
        IMAGE_STRUCT* image = static_cast<IMAGE_STRUCT*>(element->data);
        savePattern(section, image->fillStyle, image->fillPattern, &image->fillStyleId);
        saveImageOf(section, image);
        break;
    }
    case KR_GROUP:
        for (ELEMENT_STRUCT* child = element->child; child; child = child->next)
            definitionSaveXml(child, section);
        break;
    default: break;
    }
    for (ACTION_STRUCT* action = element->actions; action; action = action->next)
        for (TH_STRUCT* th = action->styleThresholds; th; th = th->next)
            saveStroke(section, th->value, th->stippleFactor, th->stipplePattern, &th->styleId);
}

void loadDefinition(const XmlElement& section)
{
    for (XmlElement e = section.firstElement(); e.valid(); e = e.nextElement()) {
        const std::string name = e.name();
        if (name == "stroke")
            loadStroke(e);
        else if (name == "pattern")
            loadPattern(e);
        else if (name == "bitmap")
            loadBitmap(e);
        else if (name == "font")
            loadFont(e);
    }
}

void calcStroke(int strokeStyleId, int32_t* stippleFactor, uint16_t* stipplePattern, int32_t* strokeStyle)
{
    const int32_t value = xmlRead.mapStrokeStyle[strokeStyleId];
    *stippleFactor = value >> 16;
    *stipplePattern = uint16_t(value & 0xffff);
    *strokeStyle = kCustomStyle;
    for (int style = 0; style < kLineStyleCount; ++style) {
        int32_t factor;
        uint16_t pattern;
        getLineStipple(style, &factor, &pattern);
        if (factor == *stippleFactor && pattern == *stipplePattern)
            *strokeStyle = style;
    }
}

void calcFill(int fillStyleId, uint8_t* fillPattern, int32_t* fillStyle)
{
    const FillPattern& bytes = xmlRead.mapFillStyle[fillStyleId];
    memcpy(fillPattern, bytes.bytes, kFillPatternBytes);
    *fillStyle = kCustomStyle;
    const Md5Hash hash = Md5().getMd5(bytes.bytes, kFillPatternBytes);
    for (int number = 0; number < kFillPatternCount; ++number)
        if (memcmp(hash.bytes, getPatternHash(number), sizeof hash.bytes) == 0)
            *fillStyle = number;
}
