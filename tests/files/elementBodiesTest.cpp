// Reading the bodies of every element kind: stored fields arrive in the records, fonts are
// made or replaced as the reader decides, pictures reach the picture store, and files cut
// short or garbled inside any body load without harm.
#include "Korel2D.h"
#include "LoadedView.h"
#include "ViewBuilder.h"
#include "glyph/GlyphKit.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

void expectColor(const float actual[4], float r, float g, float b, float a, const char* what)
{
    EXPECT_FLOAT_EQ(actual[0], r) << what;
    EXPECT_FLOAT_EQ(actual[1], g) << what;
    EXPECT_FLOAT_EQ(actual[2], b) << what;
    EXPECT_FLOAT_EQ(actual[3], a) << what;
}

RectFields marker()
{
    RectFields s;
    s.x0 = 1;
    s.y0 = 2;
    s.x1 = 3;
    s.y1 = 4;
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
    s.type = 1;
    s.x = 11, s.y = 12, s.width = 301, s.height = 151;
    s.ymin = -7, s.ymax = 70, s.xmin = 3, s.xmax = 33, s.rate = 25;
    s.autoscale = 0, s.minspready = 4.5f, s.autoscalex = 0, s.minspreadx = 5.5f;
    s.samples = 321, s.bars = 1;
    s.outline[0] = 0.25f;
    s.background[3] = 0.75f;
    s.outlineWidth = 2.5f;
    s.gridx = 0, s.gridy = 0, s.gridxAuto = 0, s.gridyAuto = 0;
    s.gridxSpace = 12, s.gridySpace = 13, s.gridxRef = 14, s.gridyRef = 15;
    s.gridStyle = 3;
    s.grid[1] = 0.125f;
    s.labelx = 0, s.labely = 0, s.labelyr = 1;
    s.tickx = 0, s.ticky = 0, s.tickyr = 1, s.tickxAuto = 0, s.tickyAuto = 0;
    s.tickxSpace = 6, s.tickySpace = 7, s.tickxRef = 8, s.tickyRef = 9;
    s.tickxSub = 3, s.tickySub = 4, s.tickWidth = 1.5f;
    s.fontFamily = "Courier [fixed]", s.fontStyle = 2, s.fontSize = 14;
    s.labelFixx = 1, s.labelFixy = 1;
    s.labelXmin = -1, s.labelXmax = 41, s.labelYmin = -2, s.labelYmax = 42;
    return s;
}

void checkGraph(const ELEMENT_STRUCT* e)
{
    const GRAPH_STRUCT* g = recordOf<GRAPH_STRUCT>(e);
    EXPECT_EQ(g->type, 1);
    EXPECT_FLOAT_EQ(g->x, 11);
    EXPECT_FLOAT_EQ(g->height, 151);
    EXPECT_FLOAT_EQ(g->ymin, -7);
    EXPECT_FLOAT_EQ(g->xmax, 33);
    EXPECT_FLOAT_EQ(g->rate, 25);
    EXPECT_EQ(g->autoscale, 0);
    EXPECT_FLOAT_EQ(g->minspready, 4.5f);
    EXPECT_FLOAT_EQ(g->minspreadx, 5.5f);
    EXPECT_EQ(g->samples, 321);
    EXPECT_EQ(g->bars, 1);
    expectColor(g->outlineColor, 0.25f, 1, 1, 1, "outline");
    expectColor(g->backgroundColor, 0, 0, 0, 0.75f, "background");
    EXPECT_FLOAT_EQ(g->outlineWidth, 2.5f);
    EXPECT_EQ(g->gridyAuto, 0);
    EXPECT_FLOAT_EQ(g->gridxSpace, 12);
    EXPECT_FLOAT_EQ(g->gridyRef, 15);
    EXPECT_EQ(g->gridStyle, 3);
    expectColor(g->gridColor, 0.5f, 0.125f, 0.25f, 1, "grid");
    EXPECT_EQ(g->labelyr, 1);
    EXPECT_EQ(g->tickyr, 1);
    EXPECT_FLOAT_EQ(g->tickySpace, 7);
    EXPECT_FLOAT_EQ(g->tickyRef, 9);
    EXPECT_EQ(g->tickxSub, 3);
    EXPECT_EQ(g->tickySub, 4);
    EXPECT_FLOAT_EQ(g->tickWidth, 1.5f);
    EXPECT_STREQ(g->fontFamily, "Courier [fixed]");
    EXPECT_EQ(g->fontStyle, 2);
    EXPECT_EQ(g->fontSize, 14);
    EXPECT_NE(g->font, 0u);
    EXPECT_EQ(g->labelFixx, 1);
    EXPECT_FLOAT_EQ(g->labelXmin, -1);
    EXPECT_FLOAT_EQ(g->labelYmax, 42);
}

PolyFields samplePoly(int fillStyle)
{
    PolyFields s;
    s.closed = 1;
    s.strokeOn = 0, s.strokeWidth = 4.5f, s.strokeStyle = 2;
    s.stroke[2] = 0.5f;
    s.fillOn = 1;
    s.fill[0] = 0.25f;
    s.antialias = 1;
    s.fillStyle = fillStyle;
    s.points = {{7, 1, 2}, {3, 30, 4}, {9, 25, 50}, {1, -5, 20}};
    return s;
}

void checkPoly(const ELEMENT_STRUCT* e, int fillStyle)
{
    const POLY_STRUCT* p = recordOf<POLY_STRUCT>(e);
    EXPECT_EQ(p->closed, 1);
    EXPECT_EQ(p->strokeOn, 0);
    EXPECT_FLOAT_EQ(p->strokeWidth, 4.5f);
    EXPECT_EQ(p->strokeStyle, 2);
    expectColor(p->strokeColor, 1, 1, 0.5f, 1, "stroke");
    EXPECT_EQ(p->fillOn, 1);
    expectColor(p->fillColor, 0.25f, 1, 0, 1, "fill");
    EXPECT_EQ(p->antialias, 1);
    EXPECT_EQ(p->fillStyle, fillStyle);
    const int ids[] = {7, 3, 9, 1};
    const float xs[] = {1, 30, 25, -5};
    const float ys[] = {2, 4, 50, 20};
    const COORD_STRUCT* c = p->coords;
    for (int i = 0; i < 4; ++i, c = c->next) {
        ASSERT_NE(c, nullptr) << i;
        EXPECT_EQ(c->id, ids[i]);
        EXPECT_FLOAT_EQ(c->x, xs[i]);
        EXPECT_FLOAT_EQ(c->y, ys[i]);
    }
    EXPECT_EQ(c, nullptr);
}

CircleFields sampleCircle()
{
    CircleFields s;
    s.x = 150, s.y = 160;
    s.matrix[0] = 0.3f, s.matrix[1] = 0.1f, s.matrix[2] = -0.1f, s.matrix[3] = 0.6f;
    s.start = 0.5f, s.end = 2.5f;
    s.strokeOn = 0, s.strokeWidth = 3.5f, s.strokeStyle = 4;
    s.stroke[0] = 0.5f;
    s.fillOn = 0;
    s.fill[3] = 0.5f;
    s.antialias = 1, s.fillStyle = 6;
    return s;
}

void checkCircle(const ELEMENT_STRUCT* e)
{
    const CIRCLE_STRUCT* c = recordOf<CIRCLE_STRUCT>(e);
    EXPECT_FLOAT_EQ(c->x, 150);
    EXPECT_FLOAT_EQ(c->y, 160);
    EXPECT_FLOAT_EQ(c->matrix[1], 0.1f);
    EXPECT_FLOAT_EQ(c->matrix[3], 0.6f);
    EXPECT_FLOAT_EQ(c->start, 0.5f);
    EXPECT_FLOAT_EQ(c->end, 2.5f);
    EXPECT_EQ(c->strokeOn, 0);
    EXPECT_FLOAT_EQ(c->strokeWidth, 3.5f);
    EXPECT_EQ(c->strokeStyle, 4);
    expectColor(c->strokeColor, 0.5f, 1, 1, 1, "stroke");
    EXPECT_EQ(c->fillOn, 0);
    expectColor(c->fillColor, 1, 1, 0.5f, 0.5f, "fill");
    EXPECT_EQ(c->antialias, 1);
    EXPECT_EQ(c->fillStyle, 6);
    // Radii are not stored: whatever the matrix, the unit shape has radius 100.
    EXPECT_FLOAT_EQ(c->rx, 100);
    EXPECT_FLOAT_EQ(c->ry, 100);
}

TextFields sampleText(int kind)
{
    TextFields s;
    s.kind = kind;
    s.x = 70, s.y = 80;
    s.color[0] = 0.75f;
    s.align = 3;
    s.matrix[1] = 0.5f;
    s.fontFamily = "Courier [fixed]", s.fontStyle = 2, s.underline = 1, s.fontSize = 17, s.textSize = 21;
    s.fillStyle = 8;
    s.text = "Pressure 42";
    return s;
}

void checkText(const ELEMENT_STRUCT* e)
{
    EXPECT_EQ(e->type, uint32_t(KR_TEXT));
    const TEXT_STRUCT* t = recordOf<TEXT_STRUCT>(e);
    EXPECT_FLOAT_EQ(t->x, 70);
    EXPECT_FLOAT_EQ(t->y, 80);
    expectColor(t->strokeColor, 0.75f, 1, 1, 1, "text colour");
    EXPECT_EQ(t->align, 3);
    EXPECT_FLOAT_EQ(t->matrix[1], 0.5f);
    EXPECT_STREQ(t->fontFamily, "Courier [fixed]");
    EXPECT_EQ(t->fontStyle, 2);
    EXPECT_EQ(t->underline, 1);
    EXPECT_EQ(t->fontSize, 17);
    EXPECT_EQ(t->textSize, 21);
    EXPECT_EQ(t->fillStyle, 8);
    EXPECT_STREQ(t->text, "Pressure 42");
    EXPECT_NE(t->font, 0u);
    // Not stored: these keep the created record's values.
    EXPECT_FLOAT_EQ(t->strokeWidth, 1);
    EXPECT_EQ(t->antialias, 0);
}

LineFields sampleLine()
{
    LineFields s;
    s.x1 = 5, s.y1 = 6, s.x2 = 95, s.y2 = 46;
    s.strokeWidth = 2.5f, s.strokeStyle = 5;
    s.stroke[1] = 0.25f;
    s.antialias = 1;
    return s;
}

void checkLine(const ELEMENT_STRUCT* e)
{
    const LINE_STRUCT* l = recordOf<LINE_STRUCT>(e);
    EXPECT_FLOAT_EQ(l->x1, 5);
    EXPECT_FLOAT_EQ(l->y1, 6);
    EXPECT_FLOAT_EQ(l->x2, 95);
    EXPECT_FLOAT_EQ(l->y2, 46);
    EXPECT_FLOAT_EQ(l->strokeWidth, 2.5f);
    EXPECT_EQ(l->strokeStyle, 5);
    expectColor(l->strokeColor, 0.5f, 0.25f, 0.5f, 1, "stroke");
    EXPECT_EQ(l->antialias, 1);
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
    s.x0 = 10, s.y0 = 20, s.x1 = 74, s.y1 = 52;
    s.tint[2] = 0.5f;
    s.width = 3, s.height = 2;
    s.fillStyle = 9;
    s.pixels = gradient(3, 2);
    return s;
}

void checkImage(const ELEMENT_STRUCT* e)
{
    const IMAGE_STRUCT* image = recordOf<IMAGE_STRUCT>(e);
    EXPECT_FLOAT_EQ(image->cornerX[0], 10);
    EXPECT_FLOAT_EQ(image->cornerY[1], 52);
    EXPECT_FLOAT_EQ(image->cornerX[2], 74);
    EXPECT_FLOAT_EQ(image->cornerY[3], 20);
    expectColor(image->fillColor, 1, 1, 0.5f, 1, "tint");
    EXPECT_EQ(image->width, 3);
    EXPECT_EQ(image->height, 2);
    EXPECT_EQ(image->fillStyle, 9);
    ASSERT_GT(image->texture, 0);
    const uint8_t* pixels = txData(image->texture);
    ASSERT_NE(pixels, nullptr);
    EXPECT_EQ(0, memcmp(pixels, gradient(3, 2).data(), 24));
}

ButtonFields sampleButton()
{
    ButtonFields s;
    s.x0 = 200, s.y0 = 10, s.x1 = 260, s.y1 = 40;
    s.face[0] = 0.125f;
    s.light[1] = 0.25f;
    s.dark[2] = 0.75f;
    s.bevelWidth = 6;
    s.state = 1;
    return s;
}

void checkButton(const ELEMENT_STRUCT* e)
{
    const BUTTON_STRUCT* b = recordOf<BUTTON_STRUCT>(e);
    EXPECT_FLOAT_EQ(b->cornerX[0], 200);
    EXPECT_FLOAT_EQ(b->cornerY[2], 40);
    expectColor(b->color0, 0.125f, 0.7f, 0.7f, 1, "face");
    expectColor(b->color1, 0.9f, 0.25f, 0.9f, 1, "light");
    expectColor(b->color2, 0.3f, 0.3f, 0.75f, 1, "dark");
    EXPECT_FLOAT_EQ(b->strokeWidth, 6);
    EXPECT_EQ(b->state, 1);
}

SliderFields sampleSlider()
{
    SliderFields s;
    s.x = 300, s.y = 150, s.width = 24, s.height = 180;
    s.face[3] = 0.5f;
    s.dark[0] = 0.125f;
    s.light[1] = 0.375f;
    s.bevelWidth = 3, s.knobHalfSize = 11;
    s.reserved1 = 77, s.reserved2 = 7.5f;
    return s;
}

void checkSlider(const ELEMENT_STRUCT* e)
{
    const SLIDER_STRUCT* s = recordOf<SLIDER_STRUCT>(e);
    EXPECT_FLOAT_EQ(s->x, 300);
    EXPECT_FLOAT_EQ(s->y, 150);
    EXPECT_FLOAT_EQ(s->width, 24);
    EXPECT_FLOAT_EQ(s->height, 180);
    expectColor(s->faceColor, 0.5f, 0.5f, 0.5f, 0.5f, "face");
    expectColor(s->darkColor, 0.125f, 0.3f, 0.3f, 1, "dark");
    expectColor(s->lightColor, 0.9f, 0.375f, 0.9f, 1, "light");
    EXPECT_FLOAT_EQ(s->bevelWidth, 3);
    EXPECT_FLOAT_EQ(s->knobHalfSize, 11);
    EXPECT_EQ(s->reserved1, 77);
    EXPECT_FLOAT_EQ(s->reserved2, 7.5f);
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

// Every kind once, each followed by a marker rectangle, so that a body read one word too
// short or too long shows as a lost or garbled marker.
ViewBuilder everyKind(int revision = 303)
{
    ViewBuilder b(revision / 100, revision % 100);
    b.page(0, 0, 400, 300, 0, 0, 0);
    for (const KindCase& c : kindCases()) {
        c.write(b);
        b.rect(marker(), c.label);
    }
    return b;
}

TEST(ElementBodies, EveryKindComesBackAsStored)
{
    for (int revision : {303, 304}) {
        LoadedView loaded(everyKind(revision));
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
        ViewBuilder b;
        b.page(0, 0, 100, 100, 0, 0, 0).graph(s).rect(marker(), "after");
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
        ViewBuilder b;
        b.page(0, 0, 100, 100, 0, 0, 0).text(s);
        LoadedView loaded(b);
        ASSERT_NE(loaded.first(), nullptr);
        const TEXT_STRUCT* t = recordOf<TEXT_STRUCT>(loaded.first());
        EXPECT_STREQ(t->fontFamily, family);
        EXPECT_EQ(t->fontSize, 50);
        EXPECT_EQ(t->scalable, gkFontScalable(t->font)) << family;
        EXPECT_EQ(t->scalable != 0, strcmp(family, "Arial") == 0) << family;
    }
}

TEST(ElementBodies, TextLengthsKeepTheStreamInStep)
{
    const std::string exact(255, 'e');
    const std::string tooLong(300, 'x');
    ViewBuilder b;
    b.page(0, 0, 100, 100, 0, 0, 0);
    for (const std::string& text : {std::string(), exact, tooLong}) {
        TextFields s;
        s.text = text;
        b.text(s).rect(marker(), "after");
    }
    LoadedView loaded(b);
    ASSERT_EQ(countElements(loaded.first()), 6);
    const ELEMENT_STRUCT* e = loaded.first();
    EXPECT_STREQ(recordOf<TEXT_STRUCT>(e)->text, "");
    e = e->next->next;
    EXPECT_EQ(recordOf<TEXT_STRUCT>(e)->text, exact);
    e = e->next->next;
    EXPECT_EQ(recordOf<TEXT_STRUCT>(e)->text, tooLong.substr(0, 255));
    EXPECT_STREQ(e->next->name, "after");
}

TEST(ElementBodies, EmptyPicturesAndPolygonsTakeNoBytes)
{
    ImageFields empty;
    PolyFields none;
    none.points.clear();
    ViewBuilder b;
    b.page(0, 0, 100, 100, 0, 0, 0).image(empty).cpoly(none).rect(marker(), "after");
    LoadedView loaded(b);
    ASSERT_EQ(countElements(loaded.first()), 3);
    const IMAGE_STRUCT* image = recordOf<IMAGE_STRUCT>(loaded.first());
    EXPECT_EQ(image->width, 0);
    EXPECT_LE(image->texture, 0);
    EXPECT_EQ(recordOf<POLY_STRUCT>(loaded.first()->next)->coords, nullptr);
    EXPECT_STREQ(loaded.first()->next->next->name, "after");
}

TEST(ElementBodies, PicturesLeaveTheStoreWithTheirElement)
{
    ViewBuilder b;
    b.page(0, 0, 100, 100, 0, 0, 0).image(sampleImage()).image(sampleImage());
    LoadedView loaded(b);
    const IMAGE_STRUCT* one = recordOf<IMAGE_STRUCT>(loaded.first());
    const IMAGE_STRUCT* two = recordOf<IMAGE_STRUCT>(loaded.first()->next);
    const int first = one->texture, second = two->texture;
    EXPECT_NE(first, second);
    ELEMENT_STRUCT* head = loaded.view->elements;
    elementDelete(head, &loaded.view->elements);
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
    ViewBuilder image;
    image.page(0, 0, 100, 100, 0, 0, 0).image(huge).rect(marker());
    LoadedView a(image);
    ASSERT_EQ(countElements(a.first()), 1);
    EXPECT_LE(recordOf<IMAGE_STRUCT>(a.first())->texture, 0);

    // The largest sizes whose product still fits no integer.
    huge.width = 0x7FFFFFFF, huge.height = 0x7FFFFFFF;
    ViewBuilder widest;
    widest.page(0, 0, 100, 100, 0, 0, 0).image(huge);
    LoadedView b(widest);
    ASSERT_EQ(countElements(b.first()), 1);

    // Two billion points promised, three stored: the three are kept.
    PolyFields many;
    many.storedCount = 2000000000;
    ViewBuilder points;
    points.page(0, 0, 100, 100, 0, 0, 0).cpoly(many);
    LoadedView c(points);
    ASSERT_EQ(countElements(c.first()), 1);
    int kept = 0;
    for (const COORD_STRUCT* p = recordOf<POLY_STRUCT>(c.first())->coords; p; p = p->next)
        ++kept;
    EXPECT_EQ(kept, 3);

    // A text length no file can hold.
    ViewBuilder text;
    text.page(0, 0, 100, 100, 0, 0, 0);
    TextFields s;
    text.text(s);
    std::vector<uint8_t> bytes = text.bytes();
    const size_t lengthAt = bytes.size() - 4 - 5 - 4; // before "Text", its zero and the action count
    bytes[lengthAt] = 0x7F;
    LoadedView d(bytes);
    ASSERT_EQ(countElements(d.first()), 1);
}

// One file per kind, so that each cut and each garbled byte meets that kind's body.
std::vector<uint8_t> oneKind(const KindCase& c)
{
    ViewBuilder b;
    b.page(0, 0, 400, 300, 0, 0, 0);
    c.write(b);
    b.rect(marker(), "after");
    return b.bytes();
}

TEST(ElementBodiesRobustness, EveryKindCutAtEveryOffsetLoadsWhatItHolds)
{
    for (const KindCase& c : kindCases()) {
        SCOPED_TRACE(c.label);
        const std::vector<uint8_t> whole = oneKind(c);
        int previous = 0;
        for (size_t n = 38; n <= whole.size(); ++n) {
            std::vector<uint8_t> cut(whole.begin(), whole.begin() + n);
            LoadedView loaded(cut);
            ASSERT_NE(loaded.view, nullptr) << n;
            const int count = countElements(loaded.first());
            EXPECT_GE(count, previous) << n;
            previous = count;
        }
        EXPECT_EQ(previous, 2);
    }
}

TEST(ElementBodiesRobustness, GarbledCopiesLoadWithoutHarm)
{
    std::vector<std::vector<uint8_t>> files;
    for (const KindCase& c : kindCases())
        files.push_back(oneKind(c));
    std::mt19937 random(4321);
    for (int round = 0; round < 2000; ++round) {
        std::vector<uint8_t> copy = files[size_t(round) % files.size()];
        const int flips = 1 + int(random() % 8);
        for (int i = 0; i < flips; ++i)
            copy[38 + random() % (copy.size() - 38)] = uint8_t(random());
        LoadedView loaded(copy);
        ASSERT_NE(loaded.view, nullptr) << round;
    }
}

} // namespace
