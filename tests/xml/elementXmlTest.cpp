// Elements of XML view files: which kind a file element makes, what each kind writes and reads
// back, the group offsets, fonts, paths, and damaged documents that must stay harmless.
#include "xml/viewXml.h"

#include "SampleFiles.h"
#include "ViewFixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace {

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
        return section.data()->LastChild() ? section.data()->LastChild()->ToElement() : nullptr;
    }
};

template <class Record> Record* record(ELEMENT_STRUCT* element)
{
    return static_cast<Record*>(element->data);
}

int count(const ELEMENT_STRUCT* list, bool withSliders = true)
{
    int n = 0;
    for (; list; list = list->next)
        n += (withSliders || list->type != KR_SLIDER) + (list->type == KR_GROUP ? count(list->child, withSliders) : 0);
    return n;
}

// The corners of the kinds that keep four.
float* cornersOf(ELEMENT_STRUCT* e)
{
    switch (e->type) {
    case KR_RECT: return record<RECT_STRUCT>(e)->cornerX;
    case KR_BUTTON: return record<BUTTON_STRUCT>(e)->cornerX;
    default: return record<SCISSOR_STRUCT>(e)->cornerX;
    }
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
        const char *x, *y, *width, *height, *matrix;
        float back[8];
    } rows[] = {{{}, "100", "50", "40", "20", "0.866025 0.500000 -0.500000 0.866025 0.000000 0.000000", {}},
                {{0, 0, 20, 25, 0, 10, 10, 0}, "12.5", "5", "20", "11.1803",
                 "1.000000 0.000000 -0.447214 0.894427 0.000000 0.000000", {5, 0, 20, 25, 0, 10, 10, 0}},
                {{3, 3, 3, 3, 4, 4, 4, 4}, "3", "4", "1", "1",
                 "0.000000 0.000000 0.000000 0.000000 0.000000 0.000000", {3, 3, 3, 3, 4, 4, 4, 4}}};
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
            EXPECT_EQ(saved.getAttributeString("x") + " " + saved.getAttributeString("y") + " " +
                          saved.getAttributeString("width") + " " + saved.getAttributeString("height") + " " +
                          saved.getAttributeString("matrix"),
                      std::string(row.x) + " " + row.y + " " + row.width + " " + row.height + " " + row.matrix);
            ELEMENT_STRUCT* back = elementLoadXml(saved, &g.list);
            ASSERT_EQ(back->type, kind);
            for (int i = 0; i < 8; ++i)
                EXPECT_NEAR(cornersOf(back)[i], row.back[i], 2e-3) << row.x << " kind " << kind << " " << i;
        }
    }
}

// The element name and "mask" and "bitmap" choose the kind; names of no kind make nothing.
TEST(ElementXml, NamesAndAttributesChooseTheKind)
{
    const std::pair<const char*, int> rows[] = {
        {"<rect mask='true' bitmap='5'/>", KR_SCISSOR}, {"<rect bitmap='5'/>", KR_IMAGE}, {"<rect/>", KR_RECT},
        {"<button/>", KR_BUTTON}, {"<circle/>", KR_CIRCLE}, {"<ellipse/>", KR_CIRCLE}, {"<polygon/>", KR_CPOLY},
        {"<polyline/>", KR_POLYLINE}, {"<graph/>", KR_GRAPH}, {"<line/>", KR_LINE}, {"<text/>", KR_TEXT},
        {"<slider/>", -1}, {"<Line/>", -1}, {"<action/>", -1}};
    Geometry g;
    int unknown = 0;
    for (const auto& row : rows) {
        ELEMENT_STRUCT* element = g.load(row.first);
        EXPECT_EQ(element ? int(element->type) : -1, row.second) << row.first;
        EXPECT_EQ(xmlRead.unknownElements, unknown += row.second < 0);
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
    ELEMENT_STRUCT* turned[] = {g.load("<ellipse matrix='2 0.5 0 3 7 8'/>"), g.load("<text matrix='2 0.5 0 3 7 8'/>")};
    for (ELEMENT_STRUCT* e : turned) {
        const float* m = e->type == KR_TEXT ? record<TEXT_STRUCT>(e)->matrix : record<CIRCLE_STRUCT>(e)->matrix;
        EXPECT_TRUE(m[0] == 2 && m[1] == 0 && m[2] == 0.5f && m[3] == 3 && e->bounds[0] < 7) << e->type;
    }
}

// A text takes the entry's style alone, a graph adds it to its own; an unknown number leaves the
// family of the element's creation, and a text still gets a font to measure with.
TEST(ElementXml, FontsResolveByKind)
{
    struct Row {
        const char* element;
        int style;
        const char* family;
        int size;
    } rows[] = {{"<text font='1'/>", 6, "Serif", 12}, {"<text font='2'/>", 0, "Serif", 12},
                {"<text font='9'/>", 1, "Arial", 30},  {"<graph font='2'/>", 1, "Serif", 12},
                {"<graph font='3'/>", 3, "Serif", 12}, {"<graph font='9'/>", 1, "Helvetica [fixed]", 10}};
    for (const Row& row : rows) {
        Geometry g;
        xmlRead.mapFont[1] = {0, "Serif", 12, 1, 1, 0};
        xmlRead.mapFont[2] = {0, "Serif", 12, 0, 0, 0};
        xmlRead.mapFont[3] = {0, "Serif", 12, 1, 0, 0};
        ELEMENT_STRUCT* e = g.load(row.element);
        if (e->type == KR_TEXT) {
            const TEXT_STRUCT* t = record<TEXT_STRUCT>(e);
            EXPECT_TRUE(t->fontStyle == row.style && t->fontSize == row.size && t->font && t->textSize == 30 &&
                        t->fontFamily == std::string(row.family))
                << row.element;
        } else {
            const GRAPH_STRUCT* graph = record<GRAPH_STRUCT>(e);
            EXPECT_TRUE(graph->fontStyle == row.style && graph->fontSize == row.size && graph->font &&
                        graph->fontFamily == std::string(row.family))
                << row.element;
        }
    }
}

// "none" switches a polygon's stroke off but not a polyline's; both read white. Points come in
// whole pairs, numbered from 0, and are written as read.
TEST(ElementXml, StrokeSwitchAndPoints)
{
    Geometry g;
    for (const auto& row : {std::make_pair("polygon", 0), std::make_pair("polyline", 1)}) {
        const POLY_STRUCT* p = record<POLY_STRUCT>(g.load(std::string("<") + row.first + " stroke='none'/>"));
        EXPECT_EQ(p->strokeOn, row.second) << row.first;
        EXPECT_TRUE(p->strokeColor[0] == 1 && p->strokeColor[1] == 1 && p->strokeColor[2] == 1 && p->strokeColor[3] == 1);
    }
    ELEMENT_STRUCT* line = g.load("<polyline points=' 1 2\n3\t4 5'/>");
    const COORD_STRUCT* first = record<POLY_STRUCT>(line)->coords;
    ASSERT_TRUE(first && first->next && !first->next->next);
    EXPECT_TRUE(first->id == 0 && first->next->id == 1 && first->next->x == 3 && first->next->y == 4);
    EXPECT_EQ(g.save(line).getAttributeString("points"), "1 2 3 4");
}

// Each closed sub-path makes a polygon of the path's name; the actions go to the last one, which
// is what the load gives. A path of no sub-path makes nothing.
TEST(ElementXml, PathMakesOneElementPerSubPath)
{
    Geometry g;
    const std::string text = "<path name='P' path='M 0 0 L 10 0 L 10 10 Z M 20 20 L 30 20 L 30 30 Z'>"
                             "<action type='1' var='v'/></path>";
    ELEMENT_STRUCT* last = g.load(text);
    ASSERT_TRUE(g.list && g.list->next == last && last && !last->next);
    for (ELEMENT_STRUCT* e : {g.list, last})
        EXPECT_TRUE(e->type == KR_CPOLY && std::string(e->name) == "P" && record<POLY_STRUCT>(e)->fillOn);
    // The actions are whatever the action reader makes of the children: all of them, on the last.
    ACTION_STRUCT* expected = nullptr;
    actionLoadXml(g.input.FirstChildElement(), &expected);
    int made = 0, wanted = 0;
    for (ACTION_STRUCT* a = last->actions; a; a = a->next)
        ++made;
    for (; expected; ++wanted)
        delAction(&expected, expected);
    EXPECT_TRUE(made == wanted && !g.list->actions);
    EXPECT_EQ(g.load("<path path='5 5 L 7'><action/></path>"), nullptr);
    EXPECT_EQ(count(g.list), 2);
}

// Damaged documents load, save and load again without harm; names are cut to their field.
TEST(ElementXml, DamagedElementsStayHarmless)
{
    std::string points;
    for (int i = 0; i < 100000; ++i)
        points += std::to_string(i % 977) + " ";
    const std::pair<std::string, int> rows[] = {
        {"<blob a='1'><line/></blob>", 0},
        {"<line x1='abc' y1='1e400' x2='nan' stroke='#zz' stroke-style='99999999999' bogus='1'/>", 1},
        {"<rect width='1e400' height='nan' matrix='nan 1e400 x'/>", 1},
        {"<rect mask='true' bitmap='nan' x='-1e400'/>", 1},
        {"<button state='1e400' width='-1e308' color0='#'/>", 1},
        {"<ellipse rx='-1e400' start='nan' end='1e400' fill-style='-7'/>", 1},
        {"<text text='" + std::string(1000, 't') + "' font='-5' align='nowhere' x='nan'/>", 1},
        {"<group x='1e400' y='nan'><line x1='1'/><polygon points='nan 1e400 2'/><group/></group>", 4},
        {"<polyline points='" + points + "'/>", 1},
        {"<path path='M 0 0 C 1e30 1e30 1e30 1e30 1e30 1e30'/>", 1},
        {"<graph font='7' grid-style='-1' samples='1e400' x='inf'/>", 1}};
    for (const auto& row : rows) {
        Geometry g;
        g.load(row.first);
        EXPECT_EQ(count(g.list), row.second) << row.first.substr(0, 60);
        ELEMENT_STRUCT* again = nullptr;
        for (ELEMENT_STRUCT* e = g.list; e; e = e->next)
            elementLoadXml(g.save(e), &again);
        EXPECT_EQ(count(again), row.second) << row.first.substr(0, 60);
        elementDeleteAll(&again);
    }
    Geometry g;
    EXPECT_EQ(strlen(g.load("<polygon name='" + std::string(65536, 'n') + "'/>")->name), 63u);
}

using WholeView = k2dtest::ViewTest;

// The sample of every kind goes through an XML file with all its elements but its sliders, and
// the result, stored as a view, draws.
TEST_F(WholeView, EveryKindSurvivesAnXmlFile)
{
    const std::string sample = std::string(KOREL2D_EXAMPLES_DIR) + "/everykind.k2d";
    k2dtest::FileView binary(sample);
    k2dtest::TempFile xml({}, ".xml"), stored({}, ".k2d");
    ASSERT_EQ(saveFileXml(xml.path().c_str(), binary.view.elements, binary.view.dataTypes, &binary.view), 0);
    k2dtest::FileView back(xml.path(), loadFileXml);
    ASSERT_GT(count(binary.view.elements, false), 10);
    EXPECT_EQ(count(back.view.elements), count(binary.view.elements, false));
    ASSERT_EQ(saveFile(stored.path().c_str(), back.view.elements, back.view.dataTypes, &back.view), 0);
    VIEW_STRUCT* view = krViewLoad(stored.path().c_str());
    ASSERT_NE(view, nullptr);
    views.push_back(view);
    EXPECT_GT(draw(view).ink().lit, 1000);
}

} // namespace
