// The shared definitions of an XML view file: what the writer's pass puts into the section and
// into the records, and what the reader makes of it, garbage included.
#include "xml/viewXml.h"

#include "base/base64.h"
#include "graphics/graphics.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

namespace {

// A "definition" section owned by its document, and file tables as a save or load starts them.
struct Section {
    XmlDocument document;
    XmlElement section{"definition"};
    Section()
    {
        document.appendElement(section);
        xmlWrite = XmlWriteTables();
        xmlRead = XmlReadTables();
    }
    XmlElement entry(int index) const
    {
        XmlElement e = section.firstElement();
        while (index-- > 0)
            e = e.nextElement();
        return e;
    }
    std::string names() const
    {
        std::string all;
        for (XmlElement e = section.firstElement(); e.valid(); e = e.nextElement())
            all += e.name() + std::to_string(e.getAttributeInt("id")) + " ";
        return all;
    }
};

template <class Record> Record* add(ELEMENT_STRUCT** list, uint32_t type)
{
    ELEMENT_STRUCT* element = elementCreate(type);
    elementAppend(element, list);
    return static_cast<Record*>(element->data);
}

// One pass over every kind that holds a style: equal things share one entry, numbered in the
// order of first use across the four kinds, and read back as the records had them.
TEST(DefinitionSection, EqualThingsShareOneEntryNumberedByFirstUse)
{
    Section s;
    ELEMENT_STRUCT* list = nullptr;
    ELEMENT_STRUCT* group = elementCreate(KR_GROUP);
    std::vector<LINE_STRUCT*> lines;
    for (int i = 0; i < 10; ++i)
        (lines.emplace_back(add<LINE_STRUCT>(i ? &group->child : &list, KR_LINE)))->strokeStyle = 2;
    elementAppend(group, &list);
    LINE_STRUCT* custom = add<LINE_STRUCT>(&list, KR_LINE);
    std::tie(custom->strokeStyle, custom->stippleFactor, custom->stipplePattern) = std::make_tuple(100, 3, 0x0f0f);
    RECT_STRUCT* rect = add<RECT_STRUCT>(&list, KR_RECT);
    std::tie(rect->strokeStyle, rect->stippleFactor, rect->fillStyle) = std::make_tuple(3, 7, 5);
    CIRCLE_STRUCT* circle = add<CIRCLE_STRUCT>(&list, KR_ARC);
    std::tie(circle->strokeStyle, circle->fillStyle) = std::make_tuple(2, 100);
    memcpy(circle->fillPattern, getPattern(5), kFillPatternBytes);
    std::vector<uint8_t> pixels(64);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = uint8_t(i * 7);
    IMAGE_STRUCT* images[2];
    for (IMAGE_STRUCT*& image : images)
        image = add<IMAGE_STRUCT>(&list, KR_IMAGE);
    std::tie(images[0]->width, images[0]->height, images[1]->width, images[1]->height) = std::make_tuple(2, 8, 4, 4);
    images[1]->fillStyle = 62; // past the table: its first pattern, as for images[0]
    for (IMAGE_STRUCT* image : images)
        image->texture = txCreate(image->width, image->height, pixels.data());
    TEXT_STRUCT* texts[2] = {add<TEXT_STRUCT>(&list, KR_TEXT), add<TEXT_STRUCT>(&list, KR_TEXT)};
    texts[0]->fontStyle = 1 | 2 | 4, texts[1]->fontStyle = 2 | 4 | 8; // bits 1 and 8 aren't stored
    GRAPH_STRUCT* graph = add<GRAPH_STRUCT>(&list, KR_GRAPH); // the texts' font, yet an entry of its own
    ELEMENT_STRUCT* last = list;
    while (last->next)
        last = last->next;
    std::tie(graph->gridStyle, graph->fontSize, graph->fontStyle) = std::make_tuple(2, 30, 1 | 2 | 4);
    strcpy(graph->fontFamily, "Arial");
    ACTION_STRUCT* action = createAction();
    appendAction(&last->actions, action);
    TH_STRUCT* th[2] = {createTh(), createTh()};
    th[0]->value = 4, th[1]->value = 2;
    for (TH_STRUCT* t : th)
        appendTh(&action->styleThresholds, t);

    for (ELEMENT_STRUCT* e = list; e; e = e->next)
        definitionSaveXml(e, s.section);
    EXPECT_EQ(s.names(), "stroke1 stroke2 stroke3 pattern4 pattern5 bitmap6 stroke7 font8 font9 stroke10 ");
    const std::pair<int32_t, int> ids[] = {{lines[0]->strokeStyleId, 1}, {lines[9]->strokeStyleId, 1},
        {custom->strokeStyleId, 2}, {rect->strokeStyleId, 3}, {rect->fillStyleId, 4}, {circle->strokeStyleId, 1},
        {circle->fillStyleId, 4}, {images[1]->fillStyleId, 5}, {images[0]->imageId, 6}, {images[1]->imageId, 6},
        {texts[0]->strokeStyleId, 7}, {texts[1]->fillStyleId, 5}, {texts[0]->fontId, 8}, {texts[1]->fontId, 8},
        {graph->gridStyleId, 1}, {graph->fontId, 9}, {th[0]->styleId, 10}, {th[1]->styleId, 1}};
    for (size_t i = 0; i < std::size(ids); ++i)
        EXPECT_EQ(ids[i].first, ids[i].second) << i;
    const std::tuple<int, const char*, const char*> written[] = {{0, "factor", "1"}, {0, "data", "0xcccc"},
        {1, "factor", "3"}, {1, "data", "0xf0f"}, {2, "factor", "1"}, {2, "data", "0xf0f0"}, {5, "compression", "zlib"}, {5, "width", "2"},
        {7, "family", "Arial"}, {7, "bold", "true"}, {7, "italic", "true"}, {7, "underline", "false"}};
    for (const auto& [index, name, text] : written)
        EXPECT_EQ(s.entry(index).getAttributeString(name), text) << index << name;
    const std::string pattern = s.entry(3).getAttributeString("data");
    EXPECT_TRUE(pattern.size() == 172 && pattern.find('=') == 171) << pattern;

    loadDefinition(s.section);
    int32_t factor, style;
    uint16_t stipple;
    calcStroke(2, &factor, &stipple, &style);
    EXPECT_EQ(std::make_tuple(factor, stipple, style), std::make_tuple(3, 0x0f0f, 100));
    calcStroke(3, &factor, &stipple, &style); // stipple 3 whatever factor the record held
    EXPECT_EQ(std::make_tuple(factor, stipple, style), std::make_tuple(1, 0xf0f0, 3));
    uint8_t bytes[kFillPatternBytes];
    calcFill(4, bytes, &style);
    EXPECT_TRUE(style == 5 && memcmp(bytes, getPattern(5), sizeof bytes) == 0);
    const Image& picture = xmlRead.mapImage[6];
    EXPECT_TRUE(picture.width == 2 && picture.height == 8 && picture.pixels == pixels);
    const KFont& font = xmlRead.mapFont[9];
    EXPECT_TRUE(font.type == 0 && font.family == "Arial" && font.size == 30 && font.bold && font.italic);
    elementDeleteAll(&list);
}

// Every table stipple and pattern is found by its values, one changed bit is custom, and a
// number no definition gave resolves to nothing drawn.
TEST(DefinitionSection, LookUpsFindTheTableNumbers)
{
    Section s;
    int32_t factor, style;
    uint16_t stipple;
    for (int n = 0; n < kLineStyleCount; ++n) {
        getLineStipple(n, &factor, &stipple);
        xmlRead.mapStrokeStyle[n + 1] = factor << 16 | stipple;
        calcStroke(n + 1, &factor, &stipple, &style);
        EXPECT_EQ(style, n);
    }
    uint8_t bytes[kFillPatternBytes];
    for (int n = 0; n < kFillPatternCount; ++n) {
        memcpy(xmlRead.mapFillStyle[n + 1].bytes, getPattern(n), kFillPatternBytes);
        calcFill(n + 1, bytes, &style);
        EXPECT_EQ(style, n);
    }
    xmlRead.mapFillStyle[1].bytes[77] ^= 0x10;
    calcFill(1, bytes, &style);
    EXPECT_TRUE(style == 100 && bytes[77] == 0xef);
    calcStroke(99, &factor, &stipple, &style);
    calcFill(99, bytes, &style);
    EXPECT_EQ(std::make_tuple(factor, stipple, style), std::make_tuple(0, 0, 100));
    EXPECT_EQ(std::vector<uint8_t>(bytes, bytes + sizeof bytes), std::vector<uint8_t>(sizeof bytes));
    for (int outside : {-1, 60})
        EXPECT_EQ(memcmp(getPatternHash(outside), getPatternHash(0), 16), 0);
}

// Hand-made and damaged entries load without harm: pixels and pattern bytes that the text
// doesn't supply are zero, impossible sizes give no picture, and "type" other than "truetype" is 1.
TEST(DefinitionSection, DamagedEntriesLoadHarmlessly)
{
    Section s;
    const uint8_t eight[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    uint8_t stream[64];
    uLongf length = sizeof stream;
    compress(stream, &length, eight, sizeof eight);
    char zlibText[128] = {};
    Base64::encode(stream, zlibText, int(length), 0);
    const std::tuple<const char*, int, int, const char*, const char*, int> bitmaps[] = {
        {"1", 2, 2, "zlib", zlibText, 8},    // uncompresses to half the pixels
        {"2", 2, 2, "none", "AQIDBAUG", 6},  // raw and short
        {"3", 2, 2, "zlib", "AQIDBAUG", 0},  // no zlib stream
        {"4", 2, 2, "none", "AQIDBA!!!", 0}, // ends inside a group
        {"5", 65537, 65537, "none", "", -1}, // over 2^32 pixels: too many
        {"6", -2, -3, "none", "", -1}, {"7", 0, 5, "zlib", "", -1}};
    for (const auto& [id, width, height, compression, data, supplied] : bitmaps) {
        XmlElement e("bitmap");
        e.setAttributeString("id", id), e.setAttributeInt("width", width), e.setAttributeInt("height", height);
        e.setAttributeString("compression", compression), e.setAttributeString("data", data);
        s.section.appendElement(e);
    }
    const std::pair<const char*, std::string> patterns[] = {{"8", "/w=="}, {"9", std::string(200, '/')}};
    for (const auto& [id, data] : patterns) {
        XmlElement e("pattern");
        e.setAttributeString("id", id), e.setAttributeString("data", data);
        s.section.appendElement(e);
    }
    XmlElement font("font");
    font.setAttributeString("id", "10"), font.setAttributeString("type", "bitmap");
    s.section.appendElement(font);
    loadDefinition(s.section);

    for (const auto& [id, width, height, compression, data, supplied] : bitmaps) {
        const auto found = xmlRead.mapImage.find(atoi(id));
        ASSERT_EQ(found != xmlRead.mapImage.end(), supplied >= 0) << id;
        if (supplied < 0)
            continue;
        std::vector<uint8_t> expected(16);
        std::copy(eight, eight + supplied, expected.begin());
        EXPECT_EQ(found->second.pixels, expected) << id;
    }
    uint8_t bytes[kFillPatternBytes];
    int32_t style;
    calcFill(8, bytes, &style);
    EXPECT_TRUE(style == 100 && bytes[0] == 0xff && bytes[1] == 0 && bytes[127] == 0);
    calcFill(9, bytes, &style); // the first 172 characters: 128 bytes of ones, the solid fill
    EXPECT_EQ(style, 0);
    EXPECT_EQ(xmlRead.mapFont[10].type, 1);
}

} // namespace
