// Reading the bodies of every element kind: each kind's box and looks arrive, fonts are made
// or replaced as the reader decides, pictures reach the picture store, and bodies of any
// length keep the stream in step.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewBuilder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

using Four = std::array<float, 4>;

Four four(const float* v)
{
    return {v[0], v[1], v[2], v[3]};
}

template <class Record> const Record* recordOf(const ELEMENT_STRUCT* e)
{
    return static_cast<const Record*>(e->data);
}

std::vector<uint8_t> gradient(int width, int height)
{
    std::vector<uint8_t> pixels(size_t(width) * height * 4);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = uint8_t(i * 7 + 3);
    return pixels;
}

ViewBuilder page(int revision = 303)
{
    ViewBuilder b(revision / 100, revision % 100);
    b.page(0, 0, 400, 300, 0, 0, 0);
    return b;
}

// A small rectangle after a body: a body read one word too short or too long shows as a lost
// or garbled marker.
ViewBuilder& marker(ViewBuilder& b, const char* name = "after")
{
    return b.rect(RectFields{1, 2, 3, 4}, name);
}

// Every kind once with values unlike every default, each followed by a marker named after it,
// so that a field the reader skips or misplaces shows in the box or the colours.
ViewBuilder everyKind(int revision)
{
    ViewBuilder b = page(revision);
    GraphFields graph;
    graph.x = 11, graph.y = 12, graph.width = 301, graph.height = 151, graph.outline[0] = 0.25f, graph.grid[1] = 0.125f;
    marker(b.graph(graph), "graph");
    PolyFields poly;
    poly.closed = 1, poly.strokeWidth = 4.5f, poly.strokeStyle = 2, poly.stroke[2] = 0.5f, poly.fill[0] = 0.25f;
    poly.fillOn = 1, poly.fillStyle = 5, poly.points = {{7, 1, 2}, {3, 30, 4}, {9, 25, 50}, {1, -5, 20}};
    marker(marker(b.polyline(poly), "polyline").cpoly(poly), "closed polygon");
    // Radii are not stored: the matrix scales a unit shape of radius 100, and angles run clockwise.
    CircleFields circle;
    circle.x = 150, circle.y = 160, circle.matrix[0] = 0.3f, circle.matrix[3] = 0.6f;
    circle.strokeWidth = 3.5f, circle.strokeStyle = 4, circle.stroke[0] = 0.5f, circle.fill[3] = 0.5f;
    marker(b.circle(circle), "circle");
    circle.end = 1.5707964f;
    marker(b.arc(circle), "arc");
    // Unlike a graph's, a text's font is taken as stored whatever its size.
    TextFields text;
    text.x = 70, text.y = 80, text.color[0] = 0.75f, text.align = 3, text.fontSize = 50, text.text = "Pressure 42";
    text.fontFamily = "Courier [fixed]";
    marker(b.text(text), "text");
    text.kind = 10, text.fontFamily = "Arial";
    marker(b.text(text), "old text code");
    marker(b.line({5, 6, 95, 46, 2.5f, 5, {0.5f, 0.25f, 0.5f, 1}}), "line");
    marker(b.image({10, 20, 74, 52, {1, 1, 0.5f, 1}, 3, 2, 0, gradient(3, 2)}), "image");
    marker(b.button({200, 10, 260, 40, {0.125f, 0.7f, 0.7f, 1}}), "button");
    return marker(b.slider({300, 150, 24, 180, {0.5f, 0.5f, 0.5f, 0.5f}}), "slider");
}

TEST(ElementBodies, EveryKindArrivesWithItsBoxAndLooks)
{
    // A text's box comes from its font: only its centre, the stored anchor, is known here.
    const Four measured = {-1, -1, -1, -1}, none = {0, 0, 0, 0};
    const struct {
        const char* label;
        uint32_t kind;
        Four box, stroke, fill;
        int lineStyle, lineWidth;
    } cases[] = {
        // A graph's outline and grid colours are what colour actions reach.
        {"graph", KR_GRAPH, {11, 12, 312, 163}, {0.25f, 1, 1, 1}, {0.5f, 0.125f, 0.25f, 1}, 0, 0},
        {"polyline", KR_POLYLINE, {-5, 2, 30, 50}, {1, 1, 0.5f, 1}, {0.25f, 1, 0, 1}, 2, 4},
        {"closed polygon", KR_CPOLY, {-5, 2, 30, 50}, {1, 1, 0.5f, 1}, {0.25f, 1, 0, 1}, 2, 4},
        {"circle", KR_CIRCLE, {120, 100, 180, 220}, {0.5f, 1, 1, 1}, {1, 1, 0.5f, 0.5f}, 4, 3},
        // A quarter from 0 to 90 degrees, clockwise, with the centre in its box.
        {"arc", KR_ARC, {150, 100, 180, 160}, {0.5f, 1, 1, 1}, {1, 1, 0.5f, 0.5f}, 4, 3},
        // A text's width and style are not stored: the created record's 1 and solid stay.
        {"text", KR_TEXT, measured, {0.75f, 1, 1, 1}, none, 0, 1},
        {"old text code", KR_TEXT, measured, {0.75f, 1, 1, 1}, none, 0, 1},
        {"line", KR_LINE, {5, 6, 95, 46}, {0.5f, 0.25f, 0.5f, 1}, none, 5, 2},
        {"image", KR_IMAGE, {10, 20, 74, 52}, none, {1, 1, 0.5f, 1}, 0, 0},
        {"button", KR_BUTTON, {200, 10, 260, 40}, none, {0.125f, 0.7f, 0.7f, 1}, 0, 0},
        {"slider", KR_SLIDER, {288, 60, 312, 240}, none, {0.5f, 0.5f, 0.5f, 0.5f}, 0, 0},
    };
    for (int revision : {303, 304}) {
        LoadedView loaded(everyKind(revision));
        const ELEMENT_STRUCT* e = loaded.first();
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(c.label) + " at revision " + std::to_string(revision));
            ASSERT_NE(e, nullptr);
            EXPECT_EQ(e->type, c.kind);
            if (c.box == measured) {
                const TEXT_STRUCT* t = recordOf<TEXT_STRUCT>(e);
                EXPECT_EQ(std::make_tuple(e->x, e->y, t->fontSize), std::make_tuple(70.0f, 80.0f, 50));
                EXPECT_STREQ(e->attr.text, "Pressure 42");
                // Only an outline font scales with the text's matrix.
                EXPECT_EQ(t->scalable != 0, strcmp(t->fontFamily, "Arial") == 0) << t->fontFamily;
            } else {
                EXPECT_EQ(four(e->bounds), c.box);
            }
            EXPECT_EQ(std::make_tuple(four(e->attr.strokeColor), four(e->attr.fillColor), e->attr.lineStyle,
                                      e->attr.lineWidth),
                      std::make_tuple(c.stroke, c.fill, c.lineStyle, c.lineWidth));
            const ELEMENT_STRUCT* m = e->next;
            ASSERT_NE(m, nullptr);
            EXPECT_STREQ(m->name, c.label);
            EXPECT_EQ(four(m->bounds), (Four{1, 2, 3, 4}));
            e = m->next;
        }
        EXPECT_EQ(e, nullptr);
    }
}

TEST(ElementBodies, GraphFontOutsideTheUsableRangeFallsBack)
{
    const struct {
        std::string family;
        int style, size;
        bool stands;
    } cases[] = {
        {"Helvetica [fixed]", 1, 0, false}, {"Helvetica [fixed]", 1, 41, false}, {"Helvetica [fixed]", 5, 10, false},
        {"", 1, 10, false},                 {"Helvetica [fixed]", -1, 10, false}, {"Helvetica [fixed]", 1, 40, true},
        {"Helvetica [fixed]", 4, 1, true},  {"Arial", 2, 18, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("\"" + c.family + "\" style " + std::to_string(c.style) + " size " + std::to_string(c.size));
        GraphFields s;
        s.fontFamily = c.family, s.fontStyle = c.style, s.fontSize = c.size;
        ViewBuilder b = page();
        LoadedView loaded(marker(b.graph(s)));
        ASSERT_EQ(countElements(loaded.first()), 2);
        const GRAPH_STRUCT* g = recordOf<GRAPH_STRUCT>(loaded.first());
        EXPECT_STREQ(g->fontFamily, c.stands ? c.family.c_str() : "Courier [fixed]");
        EXPECT_EQ(std::make_pair(g->fontStyle, g->fontSize), c.stands ? std::make_pair(c.style, c.size) : std::make_pair(1, 12));
        EXPECT_NE(g->font, 0u);
        // The font is made before the fixed label ranges, which follow it undisturbed.
        EXPECT_FLOAT_EQ(g->labelYmax, 100);
    }
}

// Texts up to the 255-character field, beyond it (cut) and empty, and a picture and a polygon
// with nothing in them take no bytes beyond their own; a marker after each.
TEST(ElementBodies, BodiesOfAnyLengthKeepTheStreamInStep)
{
    const std::string texts[] = {"", std::string(255, 'e'), std::string(300, 'x')};
    ViewBuilder b = page();
    for (const std::string& text : texts) {
        TextFields s;
        s.text = text;
        marker(b.text(s));
    }
    PolyFields empty;
    empty.points.clear();
    LoadedView loaded(marker(marker(b.image(ImageFields())).cpoly(empty)));
    // The text of each text, the name of every other element.
    std::vector<const ELEMENT_STRUCT*> elements;
    std::vector<std::string> seen;
    for (const ELEMENT_STRUCT* e = loaded.first(); e; e = e->next) {
        elements.push_back(e);
        seen.push_back(e->type == KR_TEXT ? recordOf<TEXT_STRUCT>(e)->text : e->name);
    }
    EXPECT_EQ(seen, (std::vector<std::string>{texts[0], "after", texts[1], "after", texts[2].substr(0, 255), "after",
                                              "image", "after", "cpoly", "after"}));
    ASSERT_EQ(seen.size(), 10u);
    EXPECT_LE(recordOf<IMAGE_STRUCT>(elements[6])->texture, 0);
    EXPECT_EQ(recordOf<POLY_STRUCT>(elements[8])->coords, nullptr);
}

// Pictures reach the store with their element and leave it with their element; ids are never
// reused, and sizes or pixels of no picture are refused.
TEST(PictureStore, PicturesComeAndGoWithTheirElement)
{
    const std::vector<uint8_t> pixels = gradient(3, 2);
    ViewBuilder b = page();
    const ImageFields picture = {10, 20, 74, 52, {1, 1, 1, 1}, 3, 2, 0, pixels};
    LoadedView loaded(b.image(picture).image(picture));
    const int first = recordOf<IMAGE_STRUCT>(loaded.first())->texture;
    const int second = recordOf<IMAGE_STRUCT>(loaded.first()->next)->texture;
    EXPECT_GT(second, first);
    EXPECT_EQ(0, memcmp(txData(second), pixels.data(), pixels.size()));
    elementDelete(loaded.view->elements, &loaded.view->elements);
    EXPECT_EQ(txData(first), nullptr);
    EXPECT_EQ(txDelete(first), -1);
    EXPECT_NE(txData(second), nullptr);
    krViewFree(loaded.view);
    loaded.view = nullptr;
    EXPECT_EQ(txData(second), nullptr);
    const int third = txCreate(3, 2, pixels.data());
    EXPECT_GT(third, second);
    EXPECT_EQ(txDelete(third), 0);
    EXPECT_EQ(txCreate(0, 5, pixels.data()), -1);
    EXPECT_EQ(txCreate(5, -1, pixels.data()), -1);
    EXPECT_EQ(txCreate(1, 1, nullptr), -1);
    EXPECT_EQ(txDelete(-3), -1);
}

} // namespace
