// Reading the bodies of every element kind: each kind's box and looks arrive, fonts are made
// or replaced as the reader decides, pictures reach the picture store, and bodies cut short
// or garbled load without harm.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewBuilder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

using Box = std::array<float, 4>;
using Colour = std::array<float, 4>;

RectFields marker()
{
    RectFields s;
    s.x0 = 1, s.y0 = 2, s.x1 = 3, s.y1 = 4;
    return s;
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

// Samples with values unlike every default, so that a field the reader skips or misplaces
// shows in the box or the colours the walk starts from.
GraphFields sampleGraph()
{
    GraphFields s;
    s.x = 11, s.y = 12, s.width = 301, s.height = 151, s.outline[0] = 0.25f, s.grid[1] = 0.125f;
    return s;
}

PolyFields samplePoly()
{
    PolyFields s;
    s.closed = 1, s.strokeWidth = 4.5f, s.strokeStyle = 2, s.stroke[2] = 0.5f, s.fillOn = 1, s.fill[0] = 0.25f;
    s.fillStyle = 5, s.points = {{7, 1, 2}, {3, 30, 4}, {9, 25, 50}, {1, -5, 20}};
    return s;
}

// Radii are not stored: the matrix scales a unit shape of radius 100, and angles run clockwise.
CircleFields sampleCircle(float end)
{
    CircleFields s;
    s.x = 150, s.y = 160, s.end = end, s.matrix[0] = 0.3f, s.matrix[3] = 0.6f;
    s.strokeWidth = 3.5f, s.strokeStyle = 4, s.stroke[0] = 0.5f, s.fill[3] = 0.5f;
    return s;
}

// Unlike a graph's, a text's font is taken as stored whatever its size.
TextFields sampleText(int kind, const char* family)
{
    TextFields s;
    s.kind = kind, s.x = 70, s.y = 80, s.color[0] = 0.75f, s.align = 3, s.fontFamily = family;
    s.fontSize = 50, s.text = "Pressure 42";
    return s;
}

LineFields sampleLine()
{
    LineFields s;
    s.x1 = 5, s.y1 = 6, s.x2 = 95, s.y2 = 46, s.strokeWidth = 2.5f, s.strokeStyle = 5, s.stroke[1] = 0.25f;
    return s;
}

ImageFields sampleImage()
{
    ImageFields s;
    s.x0 = 10, s.y0 = 20, s.x1 = 74, s.y1 = 52, s.tint[2] = 0.5f, s.width = 3, s.height = 2;
    s.pixels = gradient(3, 2);
    return s;
}

ButtonFields sampleButton()
{
    ButtonFields s;
    s.x0 = 200, s.y0 = 10, s.x1 = 260, s.y1 = 40, s.face[0] = 0.125f;
    return s;
}

SliderFields sampleSlider()
{
    SliderFields s;
    s.x = 300, s.y = 150, s.width = 24, s.height = 180, s.face[3] = 0.5f;
    return s;
}

// A text's box comes from its font: only its centre, the stored anchor, is known here.
const Box kMeasured = {-1, -1, -1, -1};

struct KindCase {
    const char* label;
    uint32_t kind; // as the element holds it after loading
    std::function<void(ViewBuilder&)> write;
    Box box;
    Colour stroke, fill;
    int lineStyle, lineWidth;
};

const std::vector<KindCase>& kindCases()
{
    const Colour none = {0, 0, 0, 0};
    static const std::vector<KindCase> cases = {
        // A graph's outline and grid colours are what colour actions reach.
        {"graph", KR_GRAPH, [](ViewBuilder& b) { b.graph(sampleGraph()); }, {11, 12, 312, 163}, {0.25f, 1, 1, 1},
         {0.5f, 0.125f, 0.25f, 1}, 0, 0},
        {"polyline", KR_POLYLINE, [](ViewBuilder& b) { b.polyline(samplePoly()); }, {-5, 2, 30, 50},
         {1, 1, 0.5f, 1}, {0.25f, 1, 0, 1}, 2, 4},
        {"closed polygon", KR_CPOLY, [](ViewBuilder& b) { b.cpoly(samplePoly()); }, {-5, 2, 30, 50},
         {1, 1, 0.5f, 1}, {0.25f, 1, 0, 1}, 2, 4},
        {"circle", KR_CIRCLE, [](ViewBuilder& b) { b.circle(sampleCircle(6.2831855f)); }, {120, 100, 180, 220},
         {0.5f, 1, 1, 1}, {1, 1, 0.5f, 0.5f}, 4, 3},
        // A quarter from 0 to 90 degrees, clockwise, with the centre in its box.
        {"arc", KR_ARC, [](ViewBuilder& b) { b.arc(sampleCircle(1.5707964f)); }, {150, 100, 180, 160},
         {0.5f, 1, 1, 1}, {1, 1, 0.5f, 0.5f}, 4, 3},
        // A text's width and style are not stored: the created record's 1 and solid stay.
        {"text", KR_TEXT, [](ViewBuilder& b) { b.text(sampleText(4, "Courier [fixed]")); }, kMeasured,
         {0.75f, 1, 1, 1}, none, 0, 1},
        {"old text code", KR_TEXT, [](ViewBuilder& b) { b.text(sampleText(10, "Arial")); }, kMeasured,
         {0.75f, 1, 1, 1}, none, 0, 1},
        {"line", KR_LINE, [](ViewBuilder& b) { b.line(sampleLine()); }, {5, 6, 95, 46}, {0.5f, 0.25f, 0.5f, 1},
         none, 5, 2},
        {"image", KR_IMAGE, [](ViewBuilder& b) { b.image(sampleImage()); }, {10, 20, 74, 52}, none,
         {1, 1, 0.5f, 1}, 0, 0},
        {"button", KR_BUTTON, [](ViewBuilder& b) { b.button(sampleButton()); }, {200, 10, 260, 40}, none,
         {0.125f, 0.7f, 0.7f, 1}, 0, 0},
        {"slider", KR_SLIDER, [](ViewBuilder& b) { b.slider(sampleSlider()); }, {288, 60, 312, 240}, none,
         {0.5f, 0.5f, 0.5f, 0.5f}, 0, 0},
    };
    return cases;
}

ViewBuilder page(int revision = 303)
{
    ViewBuilder b(revision / 100, revision % 100);
    b.page(0, 0, 400, 300, 0, 0, 0);
    return b;
}

std::array<float, 4> four(const float* v)
{
    return {v[0], v[1], v[2], v[3]};
}

// Every kind once, each followed by a marker rectangle, so that a body read one word too
// short or too long shows as a lost or garbled marker.
TEST(ElementBodies, EveryKindArrivesWithItsBoxAndLooks)
{
    for (int revision : {303, 304}) {
        ViewBuilder b = page(revision);
        for (const KindCase& c : kindCases()) {
            c.write(b);
            b.rect(marker(), c.label);
        }
        LoadedView loaded(b);
        const ELEMENT_STRUCT* e = loaded.first();
        for (const KindCase& c : kindCases()) {
            SCOPED_TRACE(std::string(c.label) + " at revision " + std::to_string(revision));
            ASSERT_NE(e, nullptr);
            EXPECT_EQ(e->type, c.kind);
            if (c.box == kMeasured) {
                const TEXT_STRUCT* t = recordOf<TEXT_STRUCT>(e);
                EXPECT_EQ(std::make_tuple(e->x, e->y, t->fontSize), std::make_tuple(70.0f, 80.0f, 50));
                EXPECT_STREQ(e->attr.text, "Pressure 42");
                // Only an outline font scales with the text's matrix.
                EXPECT_EQ(t->scalable != 0, strcmp(t->fontFamily, "Arial") == 0) << t->fontFamily;
            } else {
                EXPECT_EQ(four(e->bounds), c.box);
            }
            EXPECT_EQ(four(e->attr.strokeColor), c.stroke);
            EXPECT_EQ(four(e->attr.fillColor), c.fill);
            EXPECT_EQ(e->attr.lineStyle, c.lineStyle);
            EXPECT_EQ(e->attr.lineWidth, c.lineWidth);
            const ELEMENT_STRUCT* m = e->next;
            ASSERT_NE(m, nullptr);
            EXPECT_STREQ(m->name, c.label);
            EXPECT_EQ(four(m->bounds), (Box{1, 2, 3, 4}));
            e = m->next;
        }
        EXPECT_EQ(e, nullptr);
    }
}

TEST(ElementBodies, GraphFontOutsideTheUsableRangeFallsBack)
{
    struct Case {
        std::string family;
        int style, size;
        bool stands;
    };
    const Case cases[] = {
        {"Helvetica [fixed]", 1, 0, false}, {"Helvetica [fixed]", 1, 41, false}, {"Helvetica [fixed]", 5, 10, false},
        {"", 1, 10, false},                 {"Helvetica [fixed]", -1, 10, false}, {"Helvetica [fixed]", 1, 40, true},
        {"Helvetica [fixed]", 4, 1, true},  {"Arial", 2, 18, true},
    };
    for (const Case& c : cases) {
        GraphFields s;
        s.fontFamily = c.family, s.fontStyle = c.style, s.fontSize = c.size;
        ViewBuilder b = page();
        LoadedView loaded(b.graph(s).rect(marker(), "after"));
        ASSERT_EQ(countElements(loaded.first()), 2);
        const GRAPH_STRUCT* g = recordOf<GRAPH_STRUCT>(loaded.first());
        SCOPED_TRACE("\"" + c.family + "\" style " + std::to_string(c.style) + " size " + std::to_string(c.size));
        EXPECT_STREQ(g->fontFamily, c.stands ? c.family.c_str() : "Courier [fixed]");
        EXPECT_EQ(g->fontStyle, c.stands ? c.style : 1);
        EXPECT_EQ(g->fontSize, c.stands ? c.size : 12);
        EXPECT_NE(g->font, 0u);
        // The font is made before the fixed label ranges, which follow it undisturbed.
        EXPECT_FLOAT_EQ(g->labelYmax, 100);
    }
}

// Texts up to the 255-character field, beyond it (cut), and empty; a marker after each.
TEST(ElementBodies, TextLengthsKeepTheStreamInStep)
{
    const std::string texts[] = {"", std::string(255, 'e'), std::string(300, 'x')};
    ViewBuilder b = page();
    for (const std::string& text : texts) {
        TextFields s;
        s.text = text;
        b.text(s).rect(marker(), "after");
    }
    LoadedView loaded(b);
    ASSERT_EQ(countElements(loaded.first()), 6);
    const ELEMENT_STRUCT* e = loaded.first();
    for (const std::string& text : texts) {
        EXPECT_EQ(recordOf<TEXT_STRUCT>(e)->text, text.substr(0, 255)) << text.size();
        EXPECT_STREQ(e->next->name, "after") << text.size();
        e = e->next->next;
    }
}

TEST(ElementBodies, EmptyPicturesAndPolygonsTakeNoBytes)
{
    PolyFields none;
    none.points.clear();
    ViewBuilder b = page();
    LoadedView loaded(b.image(ImageFields()).cpoly(none).rect(marker(), "after"));
    ASSERT_EQ(countElements(loaded.first()), 3);
    EXPECT_LE(recordOf<IMAGE_STRUCT>(loaded.first())->texture, 0);
    EXPECT_EQ(recordOf<POLY_STRUCT>(loaded.first()->next)->coords, nullptr);
    EXPECT_STREQ(loaded.first()->next->next->name, "after");
}

TEST(ElementBodies, PicturesLeaveTheStoreWithTheirElement)
{
    ViewBuilder b = page();
    LoadedView loaded(b.image(sampleImage()).image(sampleImage()));
    const int first = recordOf<IMAGE_STRUCT>(loaded.first())->texture;
    const int second = recordOf<IMAGE_STRUCT>(loaded.first()->next)->texture;
    EXPECT_NE(first, second);
    EXPECT_EQ(0, memcmp(txData(second), gradient(3, 2).data(), 24));
    elementDelete(loaded.view->elements, &loaded.view->elements);
    EXPECT_EQ(txData(first), nullptr);
    EXPECT_NE(txData(second), nullptr);
    krViewFree(loaded.view);
    loaded.view = nullptr;
    EXPECT_EQ(txData(second), nullptr);
}

TEST(PictureStore, CopiesPixelsAndNeverReusesIds)
{
    const std::vector<uint8_t> pixels = gradient(2, 2);
    EXPECT_EQ(txCreate(0, 5, pixels.data()), -1);
    EXPECT_EQ(txCreate(5, -1, pixels.data()), -1);
    EXPECT_EQ(txCreate(1, 1, nullptr), -1);
    const int a = txCreate(2, 2, pixels.data());
    ASSERT_GT(a, 0);
    std::vector<uint8_t> changed = pixels;
    changed[0] ^= 0xFF;
    const int b = txCreate(2, 2, changed.data());
    EXPECT_EQ(b, a + 1);
    EXPECT_EQ(0, memcmp(txData(a), pixels.data(), pixels.size()));
    EXPECT_EQ(txData(b)[0], changed[0]);
    EXPECT_EQ(txDelete(a), 0);
    EXPECT_EQ(txDelete(a), -1);
    EXPECT_EQ(txDelete(-3), -1);
    EXPECT_EQ(txData(a), nullptr);
    const int c = txCreate(1, 1, pixels.data());
    EXPECT_GT(c, b);
    txDelete(b);
    txDelete(c);
}

TEST(ElementBodiesRobustness, HugeCountsAndSizesEndSoftly)
{
    // 60000 x 60000 pixels promised in a file of a few hundred bytes, then the largest sizes
    // whose product fits no integer: no picture, and the marker is not misread.
    ImageFields huge;
    huge.pixels = gradient(4, 4);
    for (int side : {60000, 0x7FFFFFFF}) {
        huge.width = huge.height = side;
        ViewBuilder image = page();
        LoadedView a(image.image(huge).rect(marker()));
        ASSERT_EQ(countElements(a.first()), 1) << side;
        EXPECT_LE(recordOf<IMAGE_STRUCT>(a.first())->texture, 0) << side;
    }

    // Two billion points promised, three stored: the three are kept.
    PolyFields many;
    many.storedCount = 2000000000;
    ViewBuilder points = page();
    LoadedView c(points.cpoly(many));
    ASSERT_EQ(countElements(c.first()), 1);
    EXPECT_EQ(countList(recordOf<POLY_STRUCT>(c.first())->coords), 3);

    // A text length no file can hold: it stands before "Text", its zero and the action count.
    ViewBuilder text = page();
    std::vector<uint8_t> bytes = text.text(TextFields()).bytes();
    bytes[bytes.size() - 4 - 5 - 4] = 0x7F;
    LoadedView d(bytes);
    ASSERT_EQ(countElements(d.first()), 1);
}

// One file per kind, so that each cut and each garbled byte meets that kind's body.
TEST(ElementBodiesRobustness, EveryKindCutOrGarbledLoadsWhatItHolds)
{
    std::mt19937 random(4321);
    for (const KindCase& c : kindCases()) {
        SCOPED_TRACE(c.label);
        ViewBuilder b = page();
        c.write(b);
        const std::vector<uint8_t> whole = b.rect(marker(), "after").bytes();
        int previous = 0;
        for (size_t n = 38; n <= whole.size(); ++n) {
            LoadedView loaded(std::vector<uint8_t>(whole.begin(), whole.begin() + long(n)));
            ASSERT_NE(loaded.view, nullptr) << n;
            const int count = countElements(loaded.first());
            EXPECT_GE(count, previous) << n;
            previous = count;
        }
        EXPECT_EQ(previous, 2);
        for (int round = 0; round < 200; ++round) {
            LoadedView loaded(withGarbledBytes(whole, random));
            ASSERT_NE(loaded.view, nullptr) << round;
        }
    }
}

} // namespace
