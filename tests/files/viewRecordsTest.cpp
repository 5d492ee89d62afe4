// Reading the records of a view file. Element bodies of every kind: their box and looks
// arrive, fonts are made or replaced as the reader decides, pictures reach the picture store,
// and bodies of any length keep the stream in step. Then the action lists with their threshold
// blocks, and data-source sections with variables and parameters. Cut and garbled files are the
// damaged-files tests' concern.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewFixture.h"
#include "files/viewFileReaders.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

using Four = std::array<float, 4>;

Four four(const float* v) { return {v[0], v[1], v[2], v[3]}; }

template <class Record> const Record* recordOf(const ELEMENT_STRUCT* e) { return static_cast<const Record*>(e->data); }

std::vector<uint8_t> gradient(int width, int height)
{
    std::vector<uint8_t> pixels(size_t(width) * height * 4);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = uint8_t(i * 7 + 3);
    return pixels;
}

// A small rectangle after a body: a body read one word too short or too long shows as a lost
// or garbled marker.
ViewBuilder& marker(ViewBuilder& b, const char* name = "after") { return b.rect(RectFields{1, 2, 3, 4}, name); }

// Every kind once with values unlike every default, each followed by a marker named after it,
// so that a field the reader skips or misplaces shows in the box or the colours. Bodies read
// alike at every revision the reader takes.
ViewBuilder everyKind()
{
    ViewBuilder b = blackPage();
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
    const struct { const char* label; uint32_t kind; Four box, stroke, fill; int lineStyle, lineWidth; } cases[] = {
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
    LoadedView loaded(everyKind());
    const ELEMENT_STRUCT* e = loaded.first();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
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

// Texts up to the 255-character field, beyond it (cut) and empty, a name and an id beyond
// their fields (cut with a closing zero), and a picture and a polygon with nothing in them
// take no bytes beyond their own; a marker after each.
TEST(ElementBodies, BodiesOfAnyLengthKeepTheStreamInStep)
{
    const std::string texts[] = {"", std::string(255, 'e'), std::string(300, 'x')};
    ViewBuilder b = blackPage();
    TextFields s;
    for (const std::string& text : texts)
        s.text = text, marker(b.text(s));
    PolyFields empty;
    empty.points.clear();
    marker(marker(b.image(ImageFields())).cpoly(empty));
    LoadedView loaded(marker(b.rect({}, std::string(70, 'n').c_str(), std::string(299, 'i').c_str())));
    // The text of each text, the name of every other element.
    std::vector<const ELEMENT_STRUCT*> elements;
    std::vector<std::string> seen;
    for (const ELEMENT_STRUCT* e = loaded.first(); e; e = e->next) {
        elements.push_back(e);
        seen.push_back(e->type == KR_TEXT ? recordOf<TEXT_STRUCT>(e)->text : e->name);
    }
    EXPECT_EQ(seen, (std::vector<std::string>{texts[0], "after", texts[1], "after", texts[2].substr(0, 255), "after",
                                              "image", "after", "cpoly", "after", std::string(63, 'n'), "after"}));
    ASSERT_EQ(seen.size(), 12u);
    EXPECT_EQ(strlen(elements[10]->id), 255u);
    EXPECT_LE(recordOf<IMAGE_STRUCT>(elements[6])->texture, 0);
    EXPECT_EQ(recordOf<POLY_STRUCT>(elements[8])->coords, nullptr);
}

// Pictures reach the store with their element and leave it with their element; ids are never
// reused. A copy is a second id of the same pixels, which stay until both ids are gone; sizes or
// pixels of no picture are refused and take no id.
TEST(PictureStore, PicturesComeAndGoWithTheirElement)
{
    const std::vector<uint8_t> pixels = gradient(3, 2);
    const ImageFields picture = {10, 20, 74, 52, {1, 1, 1, 1}, 3, 2, 0, pixels};
    LoadedView loaded(blackPage().image(picture).image(picture));
    const int first = recordOf<IMAGE_STRUCT>(loaded.first())->texture;
    const int second = recordOf<IMAGE_STRUCT>(loaded.first()->next)->texture;
    EXPECT_GT(second, first);
    EXPECT_EQ(0, memcmp(txData(second), pixels.data(), pixels.size()));
    elementDelete(loaded.view->elements, &loaded.view->elements);
    EXPECT_EQ(std::make_tuple(txData(first), txDelete(first)), std::make_tuple(nullptr, -1));
    EXPECT_NE(txData(second), nullptr);
    krViewFree(loaded.view);
    loaded.view = nullptr;
    EXPECT_EQ(txData(second), nullptr);
    const int third = txCreate(3, 2, pixels.data()), copy = txCopy(third);
    EXPECT_GT(third, second);
    EXPECT_EQ(txDelete(third), 0);
    ASSERT_NE(txData(copy), nullptr);
    EXPECT_EQ(0, memcmp(txData(copy), pixels.data(), pixels.size()));
    EXPECT_EQ(txDelete(copy), 0);
    EXPECT_EQ(std::make_tuple(txCopy(copy), txCreate(0, 5, pixels.data()), txCreate(5, -1, pixels.data()),
                              txCreate(1, 1, nullptr), txDelete(-3)), std::make_tuple(-1, -1, -1, -1, -1));
    const int next = txCreate(1, 1, pixels.data());
    EXPECT_EQ(next, copy + 1);
    EXPECT_EQ(txDelete(next), 0);
}

// Older files store RGB: the picture becomes opaque RGBA, and a size the rest of the file
// can't hold ends the reading there.
TEST(PictureStore, RgbPicturesBecomeOpaqueAndOversizedOnesEndTheFile)
{
    const uint8_t rgb[] = {1, 2, 3, 4, 5, 6, 7};
    KStream stream{rgb, sizeof rgb, 0};
    IMAGE_STRUCT record = {};
    record.width = 2, record.height = 1;
    ASSERT_EQ(loadTextureOld(&stream, &record), 0);
    EXPECT_EQ(std::vector<uint8_t>(txData(record.texture), txData(record.texture) + 8),
              (std::vector<uint8_t>{1, 2, 3, 255, 4, 5, 6, 255}));
    EXPECT_EQ(txDelete(record.texture), 0);
    record.width = 0x7FFFFFFF;
    EXPECT_EQ(loadTextureOld(&stream, &record), -1);
    EXPECT_TRUE(stream.atEnd());
}

// Every stored field differs from its default and from the same field of the other actions.
ActionFields numberedAction(int k)
{
    const float f = float(k);
    ActionFields a;
    a.id = 1000 + k, a.type = k, a.var = "var" + std::to_string(k), a.var2 = "second" + std::to_string(k);
    a.a0 = f + 0.5f, a.a1 = f + 1.5f, a.b0 = f + 2.5f, a.b1 = f + 3.5f, a.limit = k % 2;
    a.var2A0 = f + 4.5f, a.var2A1 = f + 5.5f, a.var2B0 = f + 6.5f, a.var2B1 = f + 7.5f;
    a.offset = f + 8.5f, a.slope = f + 9.5f, a.offset2 = f + 10.5f, a.slope2 = f + 11.5f, a.cg = 1 + k % 9;
    a.format = "%" + std::to_string(k) + ".2f", a.filter = k % 3, a.filterTime = f + 0.25f;
    a.mouseButton = k % 3, a.mouseAction = k % 8, a.mouseMode = (k + 1) % 3, a.mouseClamp = k + 1;
    a.mouseInc = f + 0.75f, a.mouseMin = -f, a.mouseMax = f + 100, a.mouseHiddenActive = k % 2 == 0 ? 0 : 7;
    a.translatePoly = "poly" + std::to_string(k), a.visibleMode = k % 2, a.visibleValue = k + 5;
    for (int block = 0; block < KR_THRESHOLD_BLOCKS; ++block) {
        a.blocks[block].min = f - float(block);
        a.blocks[block].max = f + 50 + float(block);
        for (int i = 0; i <= (k + block) % 3; ++i)
            a.blocks[block].entries.push_back({float(10 * block + i), float(10 * block + i + 1), block + i,
                                               {0.1f * float(i), 0.2f * float(block), f / 32}});
    }
    return a;
}

// A field of the loaded action `a` beside the same field of the written `s`; ints and floats
// alike compare as floats.
#define SAME(name) std::make_tuple(#name, float(a->name), float(s.name))

void expectAction(const ActionFields& s, const ACTION_STRUCT* a)
{
    SCOPED_TRACE("action type " + std::to_string(s.type));
    for (const auto& [name, loaded, written] :
         {SAME(id), SAME(type), SAME(a0), SAME(a1), SAME(b0), SAME(b1), SAME(limit), SAME(var2A0), SAME(var2A1),
          SAME(var2B0), SAME(var2B1), SAME(offset), SAME(slope), SAME(offset2), SAME(slope2), SAME(cg), SAME(filter),
          SAME(filterTime), SAME(mouseButton), SAME(mouseAction), SAME(mouseMode), SAME(mouseClamp), SAME(mouseInc),
          SAME(mouseMin), SAME(mouseMax), SAME(mouseHiddenActive), SAME(visibleMode), SAME(visibleValue)})
        EXPECT_EQ(loaded, written) << name;
    EXPECT_EQ(std::vector<std::string>({a->var, a->var2, a->format, a->translatePoly}),
              std::vector<std::string>({s.var, s.var2, s.format, s.translatePoly}));
    const std::tuple<float, float, const TH_STRUCT*> blocks[KR_THRESHOLD_BLOCKS] = {
        {a->colorMin, a->colorMax, a->colorThresholds}, {a->widthMin, a->widthMax, a->widthThresholds},
        {a->styleMin, a->styleMax, a->styleThresholds}, {a->visibleMin, a->visibleMax, a->visibleThresholds},
        {a->blinkMin, a->blinkMax, a->blinkThresholds}};
    for (int k = 0; k < KR_THRESHOLD_BLOCKS; ++k) {
        const auto& [min, max, head] = blocks[k];
        EXPECT_EQ(std::make_pair(min, max), std::make_pair(s.blocks[k].min, s.blocks[k].max)) << k;
        ASSERT_EQ(countList(head), int(s.blocks[k].entries.size())) << k;
        const TH_STRUCT* t = head;
        for (const ThresholdFields& w : s.blocks[k].entries) {
            EXPECT_EQ(std::make_tuple(t->lower, t->upper, t->value, t->color[0], t->color[1], t->color[2]),
                      std::make_tuple(w.lower, w.upper, w.value, w.color[0], w.color[1], w.color[2])) << k;
            t = t->next;
        }
    }
}

// Every type on a clip inside a group; the group and a code without a body carry actions too.
TEST(ActionRecordsInFiles, EveryTypeGivesBackEveryStoredField)
{
    std::vector<ActionFields> all;
    for (int type = KR_ACTION_TEXT; type <= KR_ACTION_BLINK; ++type)
        all.push_back(numberedAction(type));
    ViewBuilder b = blackPage();
    b.beginGroup(2, "group").actions(all).scissor(0, 0, 10, 10);
    b.actions({numberedAction(KR_ACTION_INPUT)}).bodiless(9);
    b.actions({numberedAction(KR_ACTION_VISIBLE)}).endGroup();
    LoadedView loaded(b.rect(RectFields(), "still"));
    const ELEMENT_STRUCT* group = loaded.first();
    ASSERT_EQ(countActions(group), 28);
    expectAction(numberedAction(KR_ACTION_VISIBLE), group->actions);
    const ACTION_STRUCT* a = group->child->actions;
    for (const ActionFields& fields : all) {
        expectAction(fields, a);
        a = a->next;
    }
    expectAction(numberedAction(KR_ACTION_INPUT), group->child->next->actions);
    // The next element follows in step, with no action of its own.
    ASSERT_NE(group->next, nullptr);
    EXPECT_TRUE(std::string(group->next->name) == "still" && !group->next->actions);
}

VariableFields variable(const std::string& name, int capacity, std::vector<ParaFields> params)
{
    return {KR_VAR_INT32, name, "1.5", std::move(params), capacity};
}

// Sources on both sides of an element keep their stored counts; parameter texts of any size
// keep the stream in step.
TEST(DataSectionsInFiles, SourcesKeepTheirStoredCountsAndTexts)
{
    const SourceFields few{77, {{7, "4711"}, {1, "big"}, {0, ""}}, 2,
                           {variable("level", 64, {{2, "offset 8"}, {5, std::string(63, 'x')}}),
                            variable("flow", 63, {{3, std::string(62, 'y')}}),
                            variable("long", 300, {{1, std::string(299, 'z')}})}};
    SourceFields many{1234, {}, 0, {variable("bare", 64, {})}};
    for (int i = 0; i < 12; ++i)
        many.dataParams.push_back({i, "p" + std::to_string(i)});
    ViewBuilder b = blackPage();
    b.dataSection({few, many}).rect(RectFields(), "between");
    // A parameter with no stored text leaves its slot empty and the stream in step.
    b.integer(20).integer(1).integer(9).integer(0).integer(1).integer(1);
    b.integer(0).fixed("empty", 64).fixed("", 64).integer(4).integer(0);
    LoadedView loaded(b.rect(RectFields(), "last"));
    ASSERT_EQ(countList(loaded.first()), 2);
    EXPECT_STREQ(loaded.view->elements->next->name, "last");
    const DD_DATA_TYPE_STRUCT* s = loaded.view->dataTypes;
    ASSERT_EQ(countList(s), 3);
    // No source of type 77 is installed here: the view keeps what it stored.
    EXPECT_EQ(std::make_tuple(s->id, s->nrData, s->nrVar, s->found), std::make_tuple(77, 3, 2, 0));
    EXPECT_STREQ(s->name, "unknown Data Source 77");
    const DD_DATA_TYPE_STRUCT *wide = s->next, *raw = wide->next;
    EXPECT_EQ(std::make_tuple(wide->id, wide->nrData, wide->nrVar, raw->id), std::make_tuple(1234, 12, 0, 9));
    ASSERT_EQ(std::make_tuple(countList(s->variables), countList(wide->variables), countList(raw->variables)),
              std::make_tuple(3, 1, 1));
    const VARIABLE_STRUCT* level = s->variables;
    EXPECT_EQ(std::make_tuple(level->nrPara, wide->variables->nrPara, std::string(raw->variables->name)),
              std::make_tuple(2, 0, std::string("empty")));
    // Slots beyond the stored count, up to ten, are there and empty. A text stored with n bytes
    // grows its buffer to n + 12 unless it fits 64 with room to spare.
    const std::tuple<const PARA_STRUCT&, int32_t, uint32_t, std::string> params[] = {
        {s->para[0], 7, 64, "4711"},
        {s->para[1], 1, 64, "big"},
        {s->para[9], 0, 64, ""},
        {wide->para[11], 11, 64, "p11"},
        {level->para[0], 2, 76, "offset 8"},
        {level->para[1], 5, 76, std::string(63, 'x')},
        {level->para[9], 0, 64, ""},
        {level->next->para[0], 3, 64, std::string(62, 'y')}, // n = 63 fits as it is
        {level->next->next->para[0], 1, 312, std::string(299, 'z')},
        {raw->variables->para[0], 4, 64, ""},
    };
    for (size_t i = 0; i < std::size(params); ++i) {
        const auto& [para, ival, size, text] = params[i];
        EXPECT_EQ(std::make_tuple(para.ival, para.size, std::string(para.sval)), std::make_tuple(ival, size, text))
            << "parameter " << i;
    }
}

} // namespace
