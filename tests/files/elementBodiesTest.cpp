// Reading the bodies of every element kind: stored fields arrive in the records, fonts are
// made or replaced as the reader decides, pictures reach the picture store, and bodies cut
// short or garbled load without harm.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewBuilder.h"
#include "glyph/GlyphKit.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

// A loaded field against the value written; ints and floats alike compare as floats.
struct Field {
    template <class A, class B> Field(const char* n, A a, B w) : name(n), loaded(double(a)), written(double(w)) {}
    const char* name;
    double loaded, written;
};
// A field of the record `r` in scope, named in the failure message.
#define FIELD(name, value) Field(#name, r->name, value)

void expectFields(std::initializer_list<Field> fields)
{
    for (const Field& f : fields)
        EXPECT_FLOAT_EQ(float(f.loaded), float(f.written)) << f.name;
}

void expectColor(const float actual[4], std::array<float, 4> expected, const char* what)
{
    for (int i = 0; i < 4; ++i)
        EXPECT_FLOAT_EQ(actual[i], expected[size_t(i)]) << what << " component " << i;
}

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

// Values unlike every default, so that a field the reader skips or misplaces shows.
GraphFields sampleGraph()
{
    GraphFields s;
    s.type = 1, s.x = 11, s.y = 12, s.width = 301, s.height = 151;
    s.ymin = -7, s.ymax = 70, s.xmin = 3, s.xmax = 33, s.rate = 25;
    s.autoscale = 0, s.minspready = 4.5f, s.autoscalex = 0, s.minspreadx = 5.5f, s.samples = 321, s.bars = 1;
    s.outline[0] = 0.25f, s.background[3] = 0.75f, s.outlineWidth = 2.5f;
    s.gridx = 0, s.gridy = 0, s.gridxAuto = 0, s.gridyAuto = 0;
    s.gridxSpace = 12, s.gridySpace = 13, s.gridxRef = 14, s.gridyRef = 15, s.gridStyle = 3, s.grid[1] = 0.125f;
    s.labelx = 0, s.labely = 0, s.labelyr = 1;
    s.tickx = 0, s.ticky = 0, s.tickyr = 1, s.tickxAuto = 0, s.tickyAuto = 0;
    s.tickxSpace = 6, s.tickySpace = 7, s.tickxRef = 8, s.tickyRef = 9, s.tickxSub = 3, s.tickySub = 4, s.tickWidth = 1.5f;
    s.fontFamily = "Courier [fixed]", s.fontStyle = 2, s.fontSize = 14;
    s.labelFixx = 1, s.labelFixy = 1, s.labelXmin = -1, s.labelXmax = 41, s.labelYmin = -2, s.labelYmax = 42;
    return s;
}

void checkGraph(const ELEMENT_STRUCT* e)
{
    const GRAPH_STRUCT* r = recordOf<GRAPH_STRUCT>(e);
    expectFields({FIELD(type, 1), FIELD(x, 11), FIELD(height, 151), FIELD(ymin, -7), FIELD(xmax, 33), FIELD(rate, 25),
                  FIELD(autoscale, 0), FIELD(minspready, 4.5f), FIELD(minspreadx, 5.5f), FIELD(samples, 321),
                  FIELD(bars, 1), FIELD(outlineWidth, 2.5f), FIELD(gridyAuto, 0), FIELD(gridxSpace, 12),
                  FIELD(gridyRef, 15), FIELD(gridStyle, 3), FIELD(labelyr, 1), FIELD(tickyr, 1), FIELD(tickySpace, 7),
                  FIELD(tickyRef, 9), FIELD(tickxSub, 3), FIELD(tickySub, 4), FIELD(tickWidth, 1.5f),
                  FIELD(fontStyle, 2), FIELD(fontSize, 14), FIELD(labelFixx, 1), FIELD(labelXmin, -1),
                  FIELD(labelYmax, 42)});
    expectColor(r->outlineColor, {0.25f, 1, 1, 1}, "outline");
    expectColor(r->backgroundColor, {0, 0, 0, 0.75f}, "background");
    expectColor(r->gridColor, {0.5f, 0.125f, 0.25f, 1}, "grid");
    EXPECT_STREQ(r->fontFamily, "Courier [fixed]");
    EXPECT_NE(r->font, 0u);
}

PolyFields samplePoly(int fillStyle)
{
    PolyFields s;
    s.closed = 1, s.strokeOn = 0, s.strokeWidth = 4.5f, s.strokeStyle = 2, s.stroke[2] = 0.5f;
    s.fillOn = 1, s.fill[0] = 0.25f, s.antialias = 1, s.fillStyle = fillStyle;
    s.points = {{7, 1, 2}, {3, 30, 4}, {9, 25, 50}, {1, -5, 20}};
    return s;
}

void checkPoly(const ELEMENT_STRUCT* e, int fillStyle)
{
    const POLY_STRUCT* r = recordOf<POLY_STRUCT>(e);
    expectFields({FIELD(closed, 1), FIELD(strokeOn, 0), FIELD(strokeWidth, 4.5f), FIELD(strokeStyle, 2),
                  FIELD(fillOn, 1), FIELD(antialias, 1), FIELD(fillStyle, fillStyle)});
    expectColor(r->strokeColor, {1, 1, 0.5f, 1}, "stroke");
    expectColor(r->fillColor, {0.25f, 1, 0, 1}, "fill");
    const COORD_STRUCT* c = r->coords;
    for (const PointFields& p : samplePoly(0).points) {
        ASSERT_NE(c, nullptr) << p.id;
        expectFields({Field("id", c->id, p.id), Field("x", c->x, p.x), Field("y", c->y, p.y)});
        c = c->next;
    }
    EXPECT_EQ(c, nullptr);
}

CircleFields sampleCircle()
{
    CircleFields s;
    s.x = 150, s.y = 160, s.start = 0.5f, s.end = 2.5f;
    s.matrix[0] = 0.3f, s.matrix[1] = 0.1f, s.matrix[2] = -0.1f, s.matrix[3] = 0.6f;
    s.strokeOn = 0, s.strokeWidth = 3.5f, s.strokeStyle = 4, s.stroke[0] = 0.5f;
    s.fillOn = 0, s.fill[3] = 0.5f, s.antialias = 1, s.fillStyle = 6;
    return s;
}

void checkCircle(const ELEMENT_STRUCT* e)
{
    const CIRCLE_STRUCT* r = recordOf<CIRCLE_STRUCT>(e);
    // Radii are not stored: whatever the matrix, the unit shape has radius 100.
    expectFields({FIELD(x, 150), FIELD(y, 160), FIELD(matrix[1], 0.1f), FIELD(matrix[3], 0.6f), FIELD(start, 0.5f),
                  FIELD(end, 2.5f), FIELD(strokeOn, 0), FIELD(strokeWidth, 3.5f), FIELD(strokeStyle, 4),
                  FIELD(fillOn, 0), FIELD(antialias, 1), FIELD(fillStyle, 6), FIELD(rx, 100), FIELD(ry, 100)});
    expectColor(r->strokeColor, {0.5f, 1, 1, 1}, "stroke");
    expectColor(r->fillColor, {1, 1, 0.5f, 0.5f}, "fill");
}

TextFields sampleText(int kind)
{
    TextFields s;
    s.kind = kind, s.x = 70, s.y = 80, s.color[0] = 0.75f, s.align = 3, s.matrix[1] = 0.5f;
    s.fontFamily = "Courier [fixed]", s.fontStyle = 2, s.underline = 1, s.fontSize = 17, s.textSize = 21;
    s.fillStyle = 8, s.text = "Pressure 42";
    return s;
}

void checkText(const ELEMENT_STRUCT* e)
{
    const TEXT_STRUCT* r = recordOf<TEXT_STRUCT>(e);
    // strokeWidth and antialias are not stored: they keep the created record's values.
    expectFields({FIELD(x, 70), FIELD(y, 80), FIELD(align, 3), FIELD(matrix[1], 0.5f), FIELD(fontStyle, 2),
                  FIELD(underline, 1), FIELD(fontSize, 17), FIELD(textSize, 21), FIELD(fillStyle, 8),
                  FIELD(strokeWidth, 1), FIELD(antialias, 0)});
    expectColor(r->strokeColor, {0.75f, 1, 1, 1}, "text colour");
    EXPECT_STREQ(r->fontFamily, "Courier [fixed]");
    EXPECT_STREQ(r->text, "Pressure 42");
    EXPECT_NE(r->font, 0u);
}

LineFields sampleLine()
{
    LineFields s;
    s.x1 = 5, s.y1 = 6, s.x2 = 95, s.y2 = 46, s.strokeWidth = 2.5f, s.strokeStyle = 5, s.stroke[1] = 0.25f;
    s.antialias = 1;
    return s;
}

void checkLine(const ELEMENT_STRUCT* e)
{
    const LINE_STRUCT* r = recordOf<LINE_STRUCT>(e);
    expectFields({FIELD(x1, 5), FIELD(y1, 6), FIELD(x2, 95), FIELD(y2, 46), FIELD(strokeWidth, 2.5f),
                  FIELD(strokeStyle, 5), FIELD(antialias, 1)});
    expectColor(r->strokeColor, {0.5f, 0.25f, 0.5f, 1}, "stroke");
}

std::vector<uint8_t> gradient(int width, int height)
{
    std::vector<uint8_t> pixels(size_t(width) * height * 4);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = uint8_t(i * 7 + 3);
    return pixels;
}

ImageFields sampleImage()
{
    ImageFields s;
    s.x0 = 10, s.y0 = 20, s.x1 = 74, s.y1 = 52, s.tint[2] = 0.5f;
    s.width = 3, s.height = 2, s.fillStyle = 9, s.pixels = gradient(3, 2);
    return s;
}

void checkImage(const ELEMENT_STRUCT* e)
{
    const IMAGE_STRUCT* r = recordOf<IMAGE_STRUCT>(e);
    expectFields({FIELD(cornerX[0], 10), FIELD(cornerY[1], 52), FIELD(cornerX[2], 74), FIELD(cornerY[3], 20),
                  FIELD(width, 3), FIELD(height, 2), FIELD(fillStyle, 9)});
    expectColor(r->fillColor, {1, 1, 0.5f, 1}, "tint");
    ASSERT_GT(r->texture, 0);
    const uint8_t* pixels = txData(r->texture);
    ASSERT_NE(pixels, nullptr);
    EXPECT_EQ(0, memcmp(pixels, gradient(3, 2).data(), 24));
}

ButtonFields sampleButton()
{
    ButtonFields s;
    s.x0 = 200, s.y0 = 10, s.x1 = 260, s.y1 = 40;
    s.face[0] = 0.125f, s.light[1] = 0.25f, s.dark[2] = 0.75f, s.bevelWidth = 6, s.state = 1;
    return s;
}

void checkButton(const ELEMENT_STRUCT* e)
{
    const BUTTON_STRUCT* r = recordOf<BUTTON_STRUCT>(e);
    expectFields({FIELD(cornerX[0], 200), FIELD(cornerY[2], 40), FIELD(strokeWidth, 6), FIELD(state, 1)});
    expectColor(r->color0, {0.125f, 0.7f, 0.7f, 1}, "face");
    expectColor(r->color1, {0.9f, 0.25f, 0.9f, 1}, "light");
    expectColor(r->color2, {0.3f, 0.3f, 0.75f, 1}, "dark");
}

SliderFields sampleSlider()
{
    SliderFields s;
    s.x = 300, s.y = 150, s.width = 24, s.height = 180, s.face[3] = 0.5f, s.dark[0] = 0.125f, s.light[1] = 0.375f;
    s.bevelWidth = 3, s.knobHalfSize = 11, s.reserved1 = 77, s.reserved2 = 7.5f;
    return s;
}

void checkSlider(const ELEMENT_STRUCT* e)
{
    const SLIDER_STRUCT* r = recordOf<SLIDER_STRUCT>(e);
    expectFields({FIELD(x, 300), FIELD(y, 150), FIELD(width, 24), FIELD(height, 180), FIELD(bevelWidth, 3),
                  FIELD(knobHalfSize, 11), FIELD(reserved1, 77), FIELD(reserved2, 7.5f)});
    expectColor(r->faceColor, {0.5f, 0.5f, 0.5f, 0.5f}, "face");
    expectColor(r->darkColor, {0.125f, 0.3f, 0.3f, 1}, "dark");
    expectColor(r->lightColor, {0.9f, 0.375f, 0.9f, 1}, "light");
}

struct KindCase {
    const char* label;
    uint32_t kind; // as the element holds it after loading
    std::function<void(ViewBuilder&)> write;
    std::function<void(const ELEMENT_STRUCT*)> check;
};

const std::vector<KindCase>& kindCases()
{
    static const std::vector<KindCase> cases = {
        {"graph", KR_GRAPH, [](ViewBuilder& b) { b.graph(sampleGraph()); }, checkGraph},
        // Field 15 of a polyline is a reserved word, of a closed polygon its fill pattern.
        {"polyline", KR_POLYLINE, [](ViewBuilder& b) { b.polyline(samplePoly(5)); },
         [](const ELEMENT_STRUCT* e) { checkPoly(e, 0); }},
        {"closed polygon", KR_CPOLY, [](ViewBuilder& b) { b.cpoly(samplePoly(5)); },
         [](const ELEMENT_STRUCT* e) { checkPoly(e, 5); }},
        {"circle", KR_CIRCLE, [](ViewBuilder& b) { b.circle(sampleCircle()); }, checkCircle},
        {"arc", KR_ARC, [](ViewBuilder& b) { b.arc(sampleCircle()); }, checkCircle},
        {"text", KR_TEXT, [](ViewBuilder& b) { b.text(sampleText(4)); }, checkText},
        {"old text code", KR_TEXT, [](ViewBuilder& b) { b.text(sampleText(10)); }, checkText},
        {"line", KR_LINE, [](ViewBuilder& b) { b.line(sampleLine()); }, checkLine},
        {"image", KR_IMAGE, [](ViewBuilder& b) { b.image(sampleImage()); }, checkImage},
        {"button", KR_BUTTON, [](ViewBuilder& b) { b.button(sampleButton()); }, checkButton},
        {"slider", KR_SLIDER, [](ViewBuilder& b) { b.slider(sampleSlider()); }, checkSlider},
    };
    return cases;
}

ViewBuilder page(int revision = 303)
{
    ViewBuilder b(revision / 100, revision % 100);
    b.page(0, 0, 400, 300, 0, 0, 0);
    return b;
}

// Every kind once, each followed by a marker rectangle, so that a body read one word too
// short or too long shows as a lost or garbled marker.
TEST(ElementBodies, EveryKindComesBackAsStored)
{
    for (int revision : {303, 304}) {
        ViewBuilder b = page(revision);
        for (const KindCase& c : kindCases()) {
            c.write(b);
            b.rect(marker(), c.label);
        }
        LoadedView loaded(b);
        ASSERT_NE(loaded.view, nullptr);
        const ELEMENT_STRUCT* e = loaded.first();
        for (const KindCase& c : kindCases()) {
            SCOPED_TRACE(std::string(c.label) + " at revision " + std::to_string(revision));
            ASSERT_NE(e, nullptr);
            EXPECT_EQ(e->type, c.kind);
            c.check(e);
            const ELEMENT_STRUCT* m = e->next;
            ASSERT_NE(m, nullptr);
            EXPECT_EQ(m->type, uint32_t(KR_RECT));
            EXPECT_STREQ(m->name, c.label);
            EXPECT_FLOAT_EQ(recordOf<RECT_STRUCT>(m)->cornerY[1], 4);
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
        b.graph(s).rect(marker(), "after");
        LoadedView loaded(b);
        ASSERT_NE(loaded.first(), nullptr);
        const GRAPH_STRUCT* g = recordOf<GRAPH_STRUCT>(loaded.first());
        SCOPED_TRACE("\"" + c.family + "\" style " + std::to_string(c.style) + " size " + std::to_string(c.size));
        EXPECT_STREQ(g->fontFamily, c.stands ? c.family.c_str() : "Courier [fixed]");
        EXPECT_EQ(g->fontStyle, c.stands ? c.style : 1);
        EXPECT_EQ(g->fontSize, c.stands ? c.size : 12);
        EXPECT_NE(g->font, 0u);
        // The font is made before the fixed label ranges, which follow it undisturbed.
        EXPECT_FLOAT_EQ(g->labelYmax, 100);
        ASSERT_NE(loaded.first()->next, nullptr);
        EXPECT_STREQ(loaded.first()->next->name, "after");
    }
}

TEST(ElementBodies, TextFontIsTakenAsStoredAndAskedWhetherItScales)
{
    for (const char* family : {"Arial", "Courier [fixed]"}) {
        TextFields s;
        s.fontFamily = family;
        s.fontSize = 50; // no fall-back for texts, whatever the size
        ViewBuilder b = page();
        LoadedView loaded(b.text(s));
        ASSERT_NE(loaded.first(), nullptr);
        const TEXT_STRUCT* t = recordOf<TEXT_STRUCT>(loaded.first());
        EXPECT_STREQ(t->fontFamily, family);
        EXPECT_EQ(t->fontSize, 50);
        EXPECT_EQ(t->scalable, gkFontScalable(t->font)) << family;
        EXPECT_EQ(t->scalable != 0, strcmp(family, "Arial") == 0) << family;
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
    const IMAGE_STRUCT* image = recordOf<IMAGE_STRUCT>(loaded.first());
    EXPECT_EQ(image->width, 0);
    EXPECT_LE(image->texture, 0);
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
    // 60000 x 60000 pixels promised in a file of a few hundred bytes.
    ImageFields huge;
    huge.width = 60000, huge.height = 60000;
    huge.pixels = gradient(4, 4);
    ViewBuilder image = page();
    LoadedView a(image.image(huge).rect(marker()));
    ASSERT_EQ(countElements(a.first()), 1);
    EXPECT_LE(recordOf<IMAGE_STRUCT>(a.first())->texture, 0);

    // The largest sizes whose product still fits no integer.
    huge.width = 0x7FFFFFFF, huge.height = 0x7FFFFFFF;
    ViewBuilder widest = page();
    LoadedView b(widest.image(huge));
    ASSERT_EQ(countElements(b.first()), 1);

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
