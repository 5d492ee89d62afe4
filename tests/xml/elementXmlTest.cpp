// Elements of XML view files: which kind a file element makes, what each kind writes and reads
// back, the group offsets, fonts, paths, and damaged documents that must stay harmless.
#include "xml/viewXml.h"

#include "LoadedView.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <tuple>
#include <vector>

namespace {

using k2dtest::countElements;
using k2dtest::countList;

// Documents of the geometry section read from text, and a section that elements are saved to.
struct Geometry {
    TiXmlDocument input;
    XmlDocument output;
    XmlElement section{"geometry"};
    ELEMENT_STRUCT* list = nullptr;
    Geometry() { output.appendElement(section), xmlRead = XmlReadTables(), xmlWrite = XmlWriteTables(); }
    ~Geometry() { elementDeleteAll(&list); }
    ELEMENT_STRUCT* load(const std::string& text)
    {
        input.Clear();
        input.Parse(text.c_str());
        return elementLoadXml(input.FirstChildElement(), &list);
    }
    XmlElement save(ELEMENT_STRUCT* element)
    {
        elementSaveXml(element, section);
        return section.data()->LastChild()->ToElement();
    }
};

template <class Record> Record* record(ELEMENT_STRUCT* element)
{
    return static_cast<Record*>(element->data);
}

// cornerX and cornerY of the kinds that keep four corners.
float* cornersOf(ELEMENT_STRUCT* e)
{
    return e->type == KR_RECT ? record<RECT_STRUCT>(e)->cornerX
           : e->type == KR_BUTTON ? record<BUTTON_STRUCT>(e)->cornerX : record<SCISSOR_STRUCT>(e)->cornerX;
}

// Offsets of nested groups add up to a child's position, and a save gives them back.
TEST(ElementXml, NestedGroupOffsetsAddUp)
{
    Geometry g;
    ELEMENT_STRUCT* outer = g.load("<group x='10' y='2'><group x='5' y='3'><line x1='1' y1='1'/></group>"
                                   "<action/></group>");
    ASSERT_TRUE(outer && outer->child && outer->child->child);
    EXPECT_EQ(record<LINE_STRUCT>(outer->child->child)->x1, 16);
    EXPECT_EQ(record<LINE_STRUCT>(outer->child->child)->y1, 6);
    EXPECT_EQ(xmlRead.unknownElements, 0); // an "action" in a group is the group's own
    ELEMENT_STRUCT* back = elementLoadXml(g.save(outer), &g.list);
    ASSERT_TRUE(back && back->child && back->child->child);
    EXPECT_EQ(record<LINE_STRUCT>(back->child->child)->x1, 16);
    // An infinite offset ends with its group and leaves nothing to the group's siblings.
    ELEMENT_STRUCT* beside = g.load("<group><group x='1e400'/><line x1='1'/></group>")->child->next;
    EXPECT_EQ(record<LINE_STRUCT>(beside)->x1, 1);
}

// Centre, true side lengths and a matrix of unit columns on disk; corner 0 follows from the other
// three, and a side of length 0 is written as 1 without moving the corners.
TEST(ElementXml, RectangleFamilyStoresCentreSizeAndMatrix)
{
    const double c = std::cos(M_PI / 6), s = std::sin(M_PI / 6), dx[4] = {-20, -20, 20, 20}, dy[4] = {-10, 10, 10, -10};
    struct Row {
        float corners[8];
        const char* written; // x, y, width, height, matrix
        float back[8];
    } rows[] = {{{}, "100 50 40 20 0.866025 0.500000 -0.500000 0.866025 0.000000 0.000000", {}},
                {{0, 0, 20, 25, 0, 10, 10, 0},
                 "12.5 5 20 11.1803 1.000000 0.000000 -0.447214 0.894427 0.000000 0.000000",
                 {5, 0, 20, 25, 0, 10, 10, 0}},
                {{3, 3, 3, 3, 4, 4, 4, 4}, "3 4 1 1 0.000000 0.000000 0.000000 0.000000 0.000000 0.000000",
                 {3, 3, 3, 3, 4, 4, 4, 4}}};
    for (int k = 0; k < 4; ++k) {
        rows[0].corners[k] = rows[0].back[k] = float(100 + c * dx[k] - s * dy[k]);
        rows[0].corners[k + 4] = rows[0].back[k + 4] = float(50 + s * dx[k] + c * dy[k]);
    }
    for (const Row& row : rows) {
        for (uint32_t kind : {KR_RECT, KR_BUTTON, KR_SCISSOR}) {
            Geometry g;
            ELEMENT_STRUCT* element = elementCreate(kind);
            elementAppend(element, &g.list);
            std::memcpy(cornersOf(element), row.corners, sizeof row.corners);
            const XmlElement saved = g.save(element);
            std::string written;
            for (const char* name : {"x", "y", "width", "height", "matrix"})
                written += (written.empty() ? "" : " ") + saved.getAttributeString(name);
            EXPECT_EQ(written, row.written);
            ELEMENT_STRUCT* back = elementLoadXml(saved, &g.list);
            ASSERT_EQ(back->type, kind);
            for (int i = 0; i < 8; ++i)
                EXPECT_NEAR(cornersOf(back)[i], row.back[i], 2e-3) << row.written << " kind " << kind << " " << i;
        }
    }
}

// Angles in degrees on disk, a "circle" of one radius, and the translation of a matrix dropped.
TEST(ElementXml, CirclesAndTextsReadTheirAnglesAndMatrices)
{
    Geometry g;
    ELEMENT_STRUCT* arc = elementCreate(KR_ARC);
    elementAppend(arc, &g.list);
    record<CIRCLE_STRUCT>(arc)->start = float(M_PI);
    const XmlElement saved = g.save(arc);
    EXPECT_EQ(saved.getAttributeString("start"), "180");
    ELEMENT_STRUCT* back = elementLoadXml(saved, &g.list);
    EXPECT_TRUE(back->type == KR_CIRCLE && std::fabs(record<CIRCLE_STRUCT>(back)->start - M_PI) < 1e-6);
    const CIRCLE_STRUCT* circle = record<CIRCLE_STRUCT>(g.load("<circle r='25' start='90'/>"));
    EXPECT_TRUE(circle->rx == 25 && circle->ry == 25 && circle->end == 0);
    ELEMENT_STRUCT* turned[] = {g.load("<ellipse matrix='2 0.5 0 3 7 8'/>"),
                                g.load("<text matrix='2 0.5 0 3 7 8' fill='#ff0000ff'/>")};
    for (ELEMENT_STRUCT* e : turned) {
        const float* m = e->type == KR_TEXT ? record<TEXT_STRUCT>(e)->matrix : record<CIRCLE_STRUCT>(e)->matrix;
        EXPECT_TRUE(m[0] == 2 && m[1] == 0 && m[2] == 0.5f && m[3] == 3 && e->bounds[0] < 7) << e->type;
    }
    EXPECT_TRUE(record<TEXT_STRUCT>(turned[1])->fillColor[0] == 1 && record<TEXT_STRUCT>(turned[1])->fillColor[1] == 0);
}

// A text takes the entry's style alone, a graph adds it to its own; an unknown number leaves the
// family of the element's creation, and a text still gets a font to measure with.
TEST(ElementXml, FontsResolveByKind)
{
    using Font = std::tuple<int, int, std::string, bool, int>; // style, size, family, made, textSize
    const std::pair<const char*, Font> rows[] = {
        {"<text font='1'/>", {6, 12, "Serif", true, 30}},  {"<text font='2'/>", {0, 12, "Serif", true, 30}},
        {"<text font='9'/>", {1, 30, "Arial", true, 30}},  {"<graph font='2'/>", {1, 12, "Serif", true, 30}},
        {"<graph font='3'/>", {3, 12, "Serif", true, 30}},
        {"<graph font='9'/>", {1, 10, "Helvetica [fixed]", true, 30}}};
    Geometry g;
    xmlRead.mapFont[1] = {0, "Serif", 12, 1, 1, 0};
    xmlRead.mapFont[2] = {0, "Serif", 12, 0, 0, 0};
    xmlRead.mapFont[3] = {0, "Serif", 12, 1, 0, 0};
    for (const auto& row : rows) {
        ELEMENT_STRUCT* e = g.load(row.first);
        const TEXT_STRUCT* t = e->type == KR_TEXT ? record<TEXT_STRUCT>(e) : nullptr;
        const GRAPH_STRUCT* graph = t ? nullptr : record<GRAPH_STRUCT>(e);
        EXPECT_EQ(t ? Font(t->fontStyle, t->fontSize, t->fontFamily, t->font != 0, t->textSize)
                    : Font(graph->fontStyle, graph->fontSize, graph->fontFamily, graph->font != 0, 30),
                  row.second)
            << row.first;
    }
}

// "none" switches a polygon's stroke off but not a polyline's; both read white. Points come in
// whole pairs, numbered from 0, and are written as read.
TEST(ElementXml, StrokeSwitchAndPoints)
{
    Geometry g;
    xmlRead.mapStrokeStyle[4] = 3 << 16 | 0x0f0f;
    for (const auto& row : {std::make_pair("polygon", 0), std::make_pair("polyline", 1)}) {
        const std::string text = "<" + std::string(row.first) + " stroke='none' stroke-style='4'/>";
        const POLY_STRUCT* p = record<POLY_STRUCT>(g.load(text));
        EXPECT_TRUE(p->strokeOn == row.second && p->stippleFactor == 3 && p->stipplePattern == 0x0f0f &&
                    std::vector<float>(p->strokeColor, p->strokeColor + 4) == std::vector<float>(4, 1.0f))
            << row.first;
    }
    ELEMENT_STRUCT* line = g.load("<polyline points=' 1 2\n3\t4 5'/>");
    const COORD_STRUCT* first = record<POLY_STRUCT>(line)->coords;
    ASSERT_EQ(countList(first), 2);
    EXPECT_TRUE(first->id == 0 && first->next->id == 1 && first->next->x == 3 && first->next->y == 4);
    EXPECT_EQ(g.save(line).getAttributeString("points"), "1 2 3 4");
}

// Each closed sub-path makes a polygon of the path's name; the actions go to the last one, which
// is what the load gives. A path of no sub-path makes nothing.
TEST(ElementXml, PathMakesOneElementPerSubPath)
{
    Geometry g;
    ELEMENT_STRUCT* last = g.load("<path name='P' path='M 0 0 L 10 0 L 10 10 Z M 20 20 L 30 20 L 30 30 Z'>"
                                  "<action type='1' var='v'/></path>");
    ASSERT_TRUE(g.list && g.list->next == last && last && !last->next);
    for (ELEMENT_STRUCT* e : {g.list, last})
        EXPECT_TRUE(e->type == KR_CPOLY && std::string(e->name) == "P" && record<POLY_STRUCT>(e)->fillOn);
    // The actions are whatever the action reader makes of the children: all of them, on the last.
    ACTION_STRUCT* expected = nullptr;
    actionLoadXml(g.input.FirstChildElement(), &expected);
    EXPECT_TRUE(countList(last->actions) == countList(expected) && !g.list->actions);
    while (expected)
        delAction(&expected, expected);
    EXPECT_EQ(g.load("<path path='5 5 L 7'><action/></path>"), nullptr);
    EXPECT_EQ(countElements(g.list), 2);
}

// "mask" and "bitmap" choose the kind of a "rect"; names of no kind make nothing and are counted.
// Damaged documents load, save and load again to the same kind; names are cut to their field.
TEST(ElementXml, KindsOfDocumentsAndDamageStayHarmless)
{
    std::string points;
    for (int i = 0; i < 100000; ++i)
        points += std::to_string(i % 977) + " ";
    const std::pair<std::string, int> rows[] = {
        {"<rect mask='true' bitmap='5'/>", KR_SCISSOR}, {"<rect bitmap='5'/>", KR_IMAGE}, {"<rect/>", KR_RECT},
        {"<circle/>", KR_CIRCLE}, {"<slider/>", -1}, {"<Line/>", -1}, {"<action/>", -1},
        {"<blob a='1'><line/></blob>", -1},
        {"<line x1='abc' y1='1e400' x2='nan' stroke='#zz' stroke-style='99999999999' bogus='1'/>", KR_LINE},
        {"<rect width='1e400' height='nan' matrix='nan 1e400 x'/>", KR_RECT},
        {"<rect mask='true' bitmap='nan' x='-1e400'/>", KR_SCISSOR},
        {"<button state='1e400' width='-1e308' color0='#'/>", KR_BUTTON},
        {"<ellipse rx='-1e400' start='nan' end='1e400' fill-style='-7'/>", KR_CIRCLE},
        {"<text text='" + std::string(1000, 't') + "' font='-5' align='nowhere' x='nan'/>", KR_TEXT},
        {"<group x='1e400' y='nan'><line x1='1'/><polygon points='nan 1e400 2'/><group/></group>", KR_GROUP},
        {"<polyline points='" + points + "'/>", KR_POLYLINE},
        {"<path path='M 0 0 C 1e30 1e30 1e30 1e30 1e30 1e30'/>", KR_POLYLINE},
        {"<graph font='7' grid-style='-1' samples='1e400' x='inf'/>", KR_GRAPH}};
    for (const auto& row : rows) {
        Geometry g;
        g.load(row.first);
        ELEMENT_STRUCT* again = nullptr;
        for (ELEMENT_STRUCT* e = g.list; e; e = e->next)
            elementLoadXml(g.save(e), &again);
        EXPECT_TRUE((g.list ? int(g.list->type) : -1) == row.second && countElements(again) == countElements(g.list) &&
                    xmlRead.unknownElements == (row.second < 0))
            << row.first.substr(0, 60);
        elementDeleteAll(&again);
    }
    Geometry g;
    EXPECT_EQ(strlen(g.load("<polygon name='" + std::string(65536, 'n') + "'/>")->name), 63u);
}

} // namespace
