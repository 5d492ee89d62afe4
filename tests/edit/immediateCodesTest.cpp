// The codes an edit applies at once, on each kind that has what they set, as the view then shows it.
#include "KorelEdit.h"
#include "ViewFixture.h"

#include <cstring>
#include <string>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

// One element on a black page: a rectangle (100, 100)-(300, 200) filled red with a white
// outline 2 wide, and the other kinds about the same place.
enum Page { kRect, kCircle, kLine, kPoly, kText, kImage, kButton, kSlider, kGraph };

ViewBuilder page(Page p)
{
    switch (p) {
    case kRect: return blackPage().rect({100, 100, 300, 200, 1, 2});
    case kCircle: return blackPage().circle({200, 150}); // radius 50, white outline, pale yellow
    case kLine: return blackPage().line({100, 150, 300, 150});
    case kPoly: return blackPage().cpoly({1, 1, 3, 0, {1, 1, 1, 1}, 1, {0, 1, 0, 1}, 0, 0,
                                          {{0, 100, 100}, {1, 300, 100}, {2, 200, 250}}});
    case kText: return blackPage().text({});
    case kImage: return blackPage().image({100, 100, 200, 200, {1, 1, 1, 1}, 2, 2, 0, std::vector<uint8_t>(16, 255)});
    case kButton: return blackPage().button({100, 100, 300, 200});
    case kSlider: return blackPage().slider({200, 150, 40, 200});
    case kGraph: return blackPage().graph({0, 100, 100, 200, 100});
    }
    return blackPage();
}

// What an edit reads: the pointer, a width, a colour (its first entry also an alpha), a number.
struct Operand {
    float x = 0, y = 0, width = 0, r = 0, g = 0, b = 0;
    int number = 0;
};

struct CodeCase {
    const char* what;
    Page page;
    int code, phase;
    Operand value;
    int x0, y0, x1, y1; // where to look
    Rgb colour;
    int atLeast, atMost; // pixels of that colour there
};

constexpr Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255}, kWhite{255, 255, 255}, kBlack{0, 0, 0};
constexpr Rgb kPale{255, 255, 128}, kLineGreen{128, 255, 128};
constexpr int kAll = 1 << 20;

const CodeCase kCases[] = {
    {"fill colour", kRect, KR_EDIT_FILL, 0, {0, 0, 0, 0, 1, 0, 1}, 150, 130, 250, 170, kGreen, 4000, kAll},
    {"fill off", kRect, KR_EDIT_FILL, 0, {0, 0, 0, 0, 1, 0, 0}, 150, 130, 250, 170, kBlack, 4000, kAll},
    {"stroke colour", kRect, KR_EDIT_STROKE, 0, {0, 0, 0, 0, 0, 1, 1}, 150, 95, 250, 105, kBlue, 200, kAll},
    {"stroke off", kRect, KR_EDIT_STROKE, 0, {0, 0, 0, 1, 1, 1, 0}, 150, 95, 250, 105, kWhite, 0, 0},
    {"width 8", kRect, KR_EDIT_STROKE_WIDTH, 0, {0, 0, 8}, 200, 90, 201, 110, kWhite, 7, 9},
    {"width below 1: no stroke", kRect, KR_EDIT_STROKE_WIDTH, 0, {0, 0, 0.5f}, 150, 95, 250, 105, kWhite, 0, 0},
    {"dotted line style", kRect, KR_EDIT_STROKE_STYLE, 0, {0, 0, 0, 0, 0, 0, 1}, 150, 95, 250, 105, kWhite, 60, 140},
    {"fill alpha", kRect, KR_EDIT_FILL_ALPHA, 0, {0, 0, 0, 0.5f}, 150, 130, 250, 170, {128, 0, 0}, 4000, kAll},
    {"stroke alpha", kRect, KR_EDIT_STROKE_ALPHA, 0, {0, 0, 0, 0.5f}, 150, 95, 250, 105, {128, 128, 128}, 100, kAll},
    {"fill pattern", kRect, KR_EDIT_FILL_STYLE, 0, {0, 0, 0, 0, 0, 0, 5}, 150, 130, 250, 170, kRed, 400, 3600},
    {"circle fill", kCircle, KR_EDIT_FILL, 0, {0, 0, 0, 0, 1, 0, 1}, 190, 140, 210, 160, kGreen, 400, kAll},
    {"arc end at the top: no upper right", kCircle, KR_HANDLE_ARC_END, 0, {200, 200}, 215, 165, 235, 185, kPale, 0, 0},
    {"arc start at the top", kCircle, KR_HANDLE_ARC_START, 0, {200, 200}, 165, 115, 185, 135, kPale, 0, 0},
    {"line colour", kLine, KR_EDIT_STROKE, 0, {0, 0, 0, 1, 0, 0}, 150, 145, 250, 155, kRed, 100, kAll},
    {"line end, update", kLine, KR_HANDLE_POINT, KR_EDIT_UPDATE, {100, 250}, 195, 195, 205, 205, kLineGreen, 5, kAll},
    {"line end, begin", kLine, KR_HANDLE_POINT, KR_EDIT_BEGIN, {100, 250}, 150, 145, 250, 155, kLineGreen, 100, kAll},
    {"polygon point of id 2", kPoly, KR_HANDLE_POINT + 2, KR_EDIT_END, {200, 120}, 190, 150, 210, 200, kGreen, 0, 0},
    {"text colour", kText, KR_EDIT_STROKE, 0, {0, 0, 0, 1, 0, 0}, 50, 80, 150, 120, kRed, 50, kAll},
    {"image tint", kImage, KR_EDIT_FILL, 0, {0, 0, 0, 0, 0, 1}, 120, 120, 180, 180, kBlue, 3600, kAll},
    {"button face, shaded", kButton, KR_EDIT_FILL, 0, {0, 0, 0, 0, 0, 1}, 150, 130, 250, 170, {0, 0, 179}, 4000, kAll},
    {"slider face", kSlider, KR_EDIT_FILL, 0, {0, 0, 0, 0, 0, 1}, 180, 50, 220, 250, kBlue, 100, kAll},
    {"graph outline", kGraph, KR_EDIT_STROKE, 0, {0, 0, 0, 1, 0, 0}, 98, 120, 102, 180, kRed, 50, kAll},
};

KR_EDIT_VALUE valueOf(const Operand& o)
{
    KR_EDIT_VALUE v = {};
    v.x = o.x, v.y = o.y, v.width = o.width, v.number = o.number;
    v.color[0] = o.r, v.color[1] = o.g, v.color[2] = o.b;
    return v;
}

using ImmediateCodes = ViewTest;

TEST_F(ImmediateCodes, ShowAsTheKindDrawsThem)
{
    for (const CodeCase& c : kCases) {
        VIEW_STRUCT* view = load(page(c.page));
        ASSERT_TRUE(view);
        ELEMENT_STRUCT* e = view->elements;
        KR_EDIT_VALUE value = valueOf(c.value);
        EXPECT_EQ(e->edit(e, e->stickies, c.code, c.phase, &value), 0);
        const int n = draw(view).count(c.x0, c.y0, c.x1, c.y1, c.colour);
        EXPECT_TRUE(n >= c.atLeast && n <= c.atMost) << c.what << ": " << n;
    }
}

// What the kinds keep but draw otherwise: a button's edges follow its face, a graph's labels
// take the sizes the frame can show and a family's own.
TEST_F(ImmediateCodes, StoredWhereNotDrawn)
{
    VIEW_STRUCT* view = load(page(kButton).graph({}));
    ASSERT_TRUE(view);
    ELEMENT_STRUCT *button = view->elements, *graph = button->next;
    KR_EDIT_VALUE value = valueOf({0, 0, 0, 1, 0.5f, 0, 1000});
    button->edit(button, nullptr, KR_EDIT_STROKE, 0, &value);
    const BUTTON_STRUCT* b = static_cast<BUTTON_STRUCT*>(button->data);
    EXPECT_EQ(std::vector<float>(b->color1, b->color1 + 3), (std::vector<float>{1, 0.5f, 0}));
    EXPECT_EQ(std::vector<float>(b->color2, b->color2 + 3), (std::vector<float>{0.4f, 0.2f, 0}));
    const GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(graph->data);
    graph->edit(graph, nullptr, KR_EDIT_FONT_SIZE, 0, &value);
    EXPECT_EQ(g->fontSize, 40);
    strcpy(value.string, "Courier [fixed]");
    graph->edit(graph, nullptr, KR_EDIT_FONT_FAMILY, 0, &value);
    EXPECT_EQ(std::string(g->fontFamily) + " " + std::to_string(g->fontSize), "Courier [fixed] 24");
}

} // namespace
