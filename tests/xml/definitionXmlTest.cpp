// The shared definitions of an XML view file: what the writer's pass puts into the section and
// the records, and what the reader makes of it, damaged entries included.
#include "xml/viewXml.h"

#include "graphics/graphics.h"

#include "GlContext.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

namespace {

// A "definition" section owned by its document, with the file tables as a save or load starts.
struct Section {
    XmlDocument document;
    XmlElement section{"definition"};
    Section() { document.appendElement(section), xmlWrite = XmlWriteTables(), xmlRead = XmlReadTables(); }
    // Each entry as its name and attribute values, "name" left out and long texts as "...".
    std::string text() const
    {
        std::string all;
        for (XmlElement e = section.firstElement(); e.valid(); e = e.nextElement()) {
            all += e.name();
            for (const TiXmlAttribute* a = e.data()->FirstAttribute()->Next(); a; a = a->Next())
                all += std::string(" ") + (strlen(a->Value()) > 12 ? "..." : a->Value());
            all += "\n";
        }
        return all;
    }
};

template <class Record> Record* add(ELEMENT_STRUCT** list, uint32_t type)
{
    ELEMENT_STRUCT* element = elementCreate(type);
    elementAppend(element, list);
    return static_cast<Record*>(element->data);
}

// Equal things share one entry, numbered by first use across the four kinds; the records take
// the numbers, and the section reads back to what they held.
TEST(DefinitionSection, EqualThingsShareOneEntryNumberedByFirstUse)
{
    Section s;
    ELEMENT_STRUCT *list = nullptr, *group = elementCreate(KR_GROUP);
    LINE_STRUCT* lines[11];
    for (int i = 0; i < 11; ++i) { // the first at the top, nine in a group, then one custom
        (lines[i] = add<LINE_STRUCT>(i % 10 ? &group->child : &list, KR_LINE))->strokeStyle = 2;
        if (i == 0)
            elementAppend(group, &list);
    }
    std::tie(lines[10]->strokeStyle, lines[10]->stippleFactor, lines[10]->stipplePattern) =
        std::make_tuple(100, 3, 0x0f0f);
    RECT_STRUCT* rect = add<RECT_STRUCT>(&list, KR_RECT);
    std::tie(rect->strokeStyle, rect->stippleFactor, rect->fillStyle) = std::make_tuple(3, 7, 5);
    CIRCLE_STRUCT* arc = add<CIRCLE_STRUCT>(&list, KR_ARC);
    std::tie(arc->strokeStyle, arc->fillStyle) = std::make_tuple(2, 100);
    memcpy(arc->fillPattern, getPattern(5), kFillPatternBytes);
    std::vector<uint8_t> pixels(64, 7);
    pixels[9] = 200;
    IMAGE_STRUCT* images[2] = {add<IMAGE_STRUCT>(&list, KR_IMAGE), add<IMAGE_STRUCT>(&list, KR_IMAGE)};
    std::tie(images[0]->width, images[0]->height, images[1]->width, images[1]->height) = std::make_tuple(2, 8, 4, 4);
    images[1]->fillStyle = 62; // past the table: its first pattern, as images[0] has
    for (IMAGE_STRUCT* image : images)
        image->texture = txCreate(image->width, image->height, pixels.data());
    TEXT_STRUCT* texts[2] = {add<TEXT_STRUCT>(&list, KR_TEXT), add<TEXT_STRUCT>(&list, KR_TEXT)};
    texts[0]->fontStyle = 1 | 2 | 4, texts[1]->fontStyle = 2 | 4 | 8; // bits 1 and 8 aren't stored
    GRAPH_STRUCT* graph = add<GRAPH_STRUCT>(&list, KR_GRAPH); // the texts' font, yet an entry of its own
    std::tie(graph->gridStyle, graph->fontSize, graph->fontStyle) = std::make_tuple(2, 30, 1 | 2 | 4);
    strcpy(graph->fontFamily, "Arial");
    ACTION_STRUCT* action = createAction(); // its line styles come right after its element's
    appendAction(&list->actions, action);
    TH_STRUCT* th[2] = {createTh(), createTh()};
    for (int i = 0; i < 2; ++i)
        th[i]->value = 4 - 2 * i, appendTh(&action->styleThresholds, th[i]);

    for (ELEMENT_STRUCT* e = list; e; e = e->next)
        definitionSaveXml(e, s.section);
    EXPECT_EQ(s.text(), "stroke 1 1 0xcccc\nstroke 2 1 0xff00\nstroke 3 3 0xf0f\nstroke 4 1 0xf0f0\npattern 5 ...\n"
                        "pattern 6 ...\nbitmap 7 BitmapPath 2 8 zlib ...\nstroke 8 1 0xffff\n"
                        "font 9 truetype Arial 30 true true false\nfont 10 truetype Arial 30 true true false\n");
    const std::string pattern = s.section.firstElement().nextElement().nextElement().nextElement().nextElement()
                                    .getAttributeString("data");
    EXPECT_TRUE(pattern.size() == 172 && pattern.find('=') == 171) << pattern;
    const int32_t ids[][2] = {{lines[0]->strokeStyleId, 1}, {th[0]->styleId, 2}, {th[1]->styleId, 1},
        {lines[9]->strokeStyleId, 1}, {lines[10]->strokeStyleId, 3}, {rect->strokeStyleId, 4}, {rect->fillStyleId, 5},
        {arc->strokeStyleId, 1}, {arc->fillStyleId, 5}, {images[1]->fillStyleId, 6}, {images[0]->imageId, 7},
        {images[1]->imageId, 7}, {texts[1]->strokeStyleId, 8}, {texts[1]->fillStyleId, 6}, {texts[0]->fontId, 9},
        {texts[1]->fontId, 9}, {graph->gridStyleId, 1}, {graph->fontId, 10}};
    for (size_t i = 0; i < std::size(ids); ++i)
        EXPECT_EQ(ids[i][0], ids[i][1]) << i;

    loadDefinition(s.section);
    int32_t factor, style;
    uint16_t stipple;
    calcStroke(3, &factor, &stipple, &style);
    EXPECT_EQ(std::make_tuple(factor, stipple, style), std::make_tuple(3, 0x0f0f, 100));
    const Image& picture = xmlRead.mapImage[7];
    EXPECT_TRUE(picture.width == 2 && picture.height == 8 && picture.pixels == pixels);
    EXPECT_TRUE(xmlRead.mapFont[10].family == "Arial" && xmlRead.mapFont[10].bold && !xmlRead.mapFont[10].underline);
    elementDeleteAll(&list);
}

// Each table stipple and pattern comes back as its number, one changed bit as custom, and an id
// no definition gave as nothing drawn. Damaged entries load harmlessly: what a text doesn't
// supply is zero, an impossible size gives no picture.
TEST(DefinitionSection, LookUpsFindTableNumbersAndDamageStaysHarmless)
{
    Section s;
    int32_t factor, style;
    uint16_t stipple;
    uint8_t bytes[kFillPatternBytes];
    for (int n = 0; n < kFillPatternCount; ++n) {
        getLineStipple(n, &factor, &stipple);
        xmlRead.mapStrokeStyle[n] = n < kLineStyleCount ? factor << 16 | stipple : 0x1000f;
        memcpy(xmlRead.mapFillStyle[n].bytes, getPattern(n), kFillPatternBytes);
        xmlRead.mapFillStyle[n].bytes[77] ^= n == 59 ? 0x10 : 0; // the last one changed by a bit
        calcStroke(n, &factor, &stipple, &style);
        EXPECT_EQ(style, n < kLineStyleCount ? n : 100);
        calcFill(n, bytes, &style);
        EXPECT_EQ(style, n < 59 ? n : 100);
    }
    for (int outside : {-1, 60}) // numbers past the table have the digest of the first pattern
        EXPECT_EQ(memcmp(getPatternHash(outside), getPatternHash(0), 16), 0) << outside;
    calcStroke(99, &factor, &stipple, &style);
    calcFill(99, bytes, &style);
    EXPECT_EQ(std::make_tuple(factor, stipple, style, std::vector<uint8_t>(bytes, bytes + sizeof bytes)),
              std::make_tuple(0, 0, 100, std::vector<uint8_t>(sizeof bytes)));

    const uint8_t eight[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    int32_t id;
    saveImage(s.section, 2, 1, eight, &id); // a zlib stream of 8 bytes, read as 2 x 2 below
    const std::string hand = "<definition><bitmap id='1' width='2' height='2' compression='zlib' data='" +
        s.section.firstElement().getAttributeString("data") + "'/>"
        "<bitmap id='2' width='2' height='2' compression='none' data='AQIDBAUG'/>" // raw and short
        "<bitmap id='3' width='2' height='2' compression='zlib' data='AQIDBAUG'/>" // not zlib
        "<bitmap id='4' width='2' height='2' compression='none' data='AQIDBA!!!'/>" // ends inside a group
        "<bitmap id='5' width='65537' height='65537'/><bitmap id='6' width='-2' height='-3'/><bitmap id='7'/>"
        "<pattern id='8' data='/w=='/><pattern id='9' data='" + std::string(200, '/') + "'/>"
        "<font id='10' type='bitmap'/></definition>";
    k2dtest::TempFile file(std::vector<uint8_t>(hand.begin(), hand.end()), ".xml");
    XmlDocument document;
    ASSERT_TRUE(document.read(file.path()));
    loadDefinition(document.root());
    const int given[] = {8, 6, 0, 0, -1, -1, -1}; // pixel bytes the entry supplies; -1: no picture
    for (int i = 0; i < 7; ++i) {
        std::vector<uint8_t> expected(16);
        std::copy(eight, eight + std::max(given[i], 0), expected.begin());
        const auto found = xmlRead.mapImage.find(i + 1);
        EXPECT_TRUE(given[i] < 0 ? found == xmlRead.mapImage.end() : found->second.pixels == expected) << i + 1;
    }
    calcFill(8, bytes, &style);
    EXPECT_TRUE(style == 100 && bytes[0] == 0xff && bytes[1] == 0 && bytes[127] == 0);
    calcFill(9, bytes, &style); // the first 172 characters: 128 bytes of ones, the solid fill
    EXPECT_TRUE(style == 0 && xmlRead.mapFont[10].type == 1);
}

} // namespace
