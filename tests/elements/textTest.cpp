// Texts drawn for real: the box the font's metric gives, scaling and turning, the anchor of a
// string an action shows in place of the stored one, values that reach the screen, old records.
#include "../actions/actionViews.h"
#include "KorelEdit.h"
#include "ViewFixture.h"
#include "glyph/GlyphKit.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace k2dtest;
using namespace korelgen;

// Extremes of the lit pixels, as [x0, x1) x [y0, y1).
struct Ink {
    int x0 = 1 << 20, y0 = 1 << 20, x1 = 0, y1 = 0;
    Ink(const Frame& f)
    {
        for (int y = 0; y < f.height(); ++y)
            for (int x = 0; x < f.width(); ++x)
                if (f.at(x, y).r + f.at(x, y).g + f.at(x, y).b > 96)
                    x0 = std::min(x0, x), x1 = std::max(x1, x + 1), y0 = std::min(y0, y), y1 = std::max(y1, y + 1);
    }
    int width() const { return x1 - x0; }
    int height() const { return y1 - y0; }
};

// Width and height of a string in a font of 30 px.
std::pair<int, int> metric(const char* s, const char* family = "Arial", int style = 1, int size = 30)
{
    GK_FONT font = gkFontCreate(family, style, size);
    int m[2] = {0, 0};
    EXPECT_EQ(gkFontStringMetric(font, s, m), 0);
    gkFontFree(font);
    return {m[0], m[1]};
}

TextFields textAt(const char* s, float x, float y, int align = KR_POS_CENTRE, const char* family = "Arial")
{
    TextFields t;
    t.text = s, t.x = x, t.y = y, t.align = align, t.fontFamily = family;
    return t;
}

class Text : public ViewTest {
protected:
    Frame drawOne(const TextFields& t, float zoom = 1) { return draw(load(blackPage().text(t)), 0, 0, zoom); }
    VIEW_STRUCT* start(ViewBuilder& b)
    {
        VIEW_STRUCT* view = load(b.dataSection({internalSource(
            {{KR_VAR_DOUBLE, "d", "", {}}, {KR_VAR_INT32, "i", "", {}}, {KR_VAR_TEXT, "t", "", {}}})}));
        EXPECT_EQ(krViewStart(view), 0);
        return view;
    }
};

// The box is textSize high and the metric's width scaled to textSize; the ink lies in it, centred.
TEST_F(Text, OutlineTextInkFillsItsMeasuredBox)
{
    const int w = metric("Hello 123").first;
    int inkAtThirty = 0;
    for (int size : {30, 60}) {
        TextFields t = textAt("Hello 123", float(400 - size * 10 / 3), 200);
        t.textSize = size;
        VIEW_STRUCT* view = load(blackPage().text(t));
        const TEXT_STRUCT* r = static_cast<TEXT_STRUCT*>(view->elements->data);
        const float hw = float(w * size / 30 * 0.5), hh = size * 0.5f;
        EXPECT_TRUE(r->cornerX[0] == hw && r->cornerX[2] == -hw && r->cornerY[0] == -hh && r->cornerY[1] == hh);
        const Ink ink(draw(view));
        EXPECT_TRUE(ink.x0 >= t.x - hw - 1 && ink.x1 <= t.x + hw + 1 && ink.y0 >= 199 - hh && ink.y1 <= 201 + hh);
        EXPECT_NEAR((ink.x0 + ink.x1) * 0.5f, t.x, 2) << size;
        if (size == 30)
            inkAtThirty = ink.width();
        EXPECT_NEAR(ink.width(), inkAtThirty * size / 30, 2);
    }
}

// Zoom and matrix act on an outline font; a bitmap font keeps its pixels, moves and stays level.
TEST_F(Text, OnlyOutlineFontsFollowZoomAndMatrix)
{
    for (const char* family : {"Arial", "Courier [fixed]"}) {
        SCOPED_TRACE(family);
        const int scale = std::string(family) == "Arial" ? 2 : 1;
        TextFields t = textAt("Hello 123", 100, 75, KR_POS_CENTRE, family);
        const Frame plainFrame = drawOne(t);
        const Ink plain(plainFrame), zoomed(drawOne(t, 2));
        EXPECT_NEAR(zoomed.width(), scale * plain.width(), 2);
        EXPECT_NEAR(zoomed.height(), scale * plain.height(), 2);
        EXPECT_GT(std::abs(zoomed.x0 - plain.x0), 10);
        t.matrix[0] = 0, t.matrix[1] = -1, t.matrix[2] = 1, t.matrix[3] = 0;
        const Frame turned = drawOne(t);
        EXPECT_TRUE(scale == 2 ? Ink(turned).height() > Ink(turned).width() : frameHash(turned) == frameHash(plainFrame));
    }
}

// A shown "1" keeps the left edge, centre or right edge of a stored "88888"; always centred in y.
TEST_F(Text, ShownStringKeepsTheEdgeItsAnchorNames)
{
    const float wr = float(metric("88888").first), ws = float(metric("1").first);
    const int sameAs[10] = {0, 7, 9, 5, 5, 5, 9, 7, 7, 9};
    uint64_t looks[10];
    for (int align : {7, 9, 5, 1, 8, 2, 6, 3, 4}) {
        VIEW_STRUCT* view = start(blackPage().actions({act(KR_ACTION_TEXT, "t")}).text(textAt("88888", 200, 150, align)));
        ASSERT_EQ(krVarSet(view, "t", "1"), 1);
        const Frame f = draw(view);
        looks[align] = frameHash(f);
        EXPECT_EQ(looks[align], looks[sameAs[align]]) << align;
        EXPECT_NEAR((Ink(f).y0 + Ink(f).y1) * 0.5f, 150, 2) << align;
        const float shift = align == 7 ? 0 : align == 9 ? (wr - ws) / 2 : align == 5 ? wr - ws : -1;
        if (shift >= 0) { // against a stored "1" whose box starts where the "88888" box starts
            EXPECT_NEAR(Ink(f).x0 - Ink(drawOne(textAt("1", 200 - wr / 2 + ws / 2, 150))).x0, shift, 1) << align;
        }
    }
    // Without an anchor the metric box's lower left corner sits on the position.
    EXPECT_EQ(frameHash(drawOne(textAt("1", 200, 150, 0))), frameHash(drawOne(textAt("1", 200 + ws / 2, 165))));
}

TEST_F(Text, ValuesShowAsTheirFormattedTextWouldStandUntilStopped)
{
    const std::pair<const char*, const char*> cases[] = {{"d", "  3.14"}, {"i", "42"}, {"t", "Volts"}};
    for (const auto& [var, shown] : cases) {
        ActionFields a = act(KR_ACTION_TEXT, var);
        a.format = *var == 'd' ? "%6.2f" : "%d";
        VIEW_STRUCT* view = start(blackPage().actions({a}).text(textAt("Text", 200, 150)));
        const double d = 3.14159, later = 2.5;
        const int32_t i = 42;
        ASSERT_EQ(krVarSet(view, "d", &d) + krVarSet(view, "i", &i) + krVarSet(view, "t", "Volts"), 3);
        EXPECT_EQ(frameHash(draw(view)), frameHash(drawOne(textAt(shown, 200, 150)))) << var;
        EXPECT_EQ(krVarSet(view, "d", &later), 1);
        EXPECT_EQ(frameHash(draw(view)), frameHash(drawOne(textAt(*var == 'd' ? "  2.50" : shown, 200, 150))));
        EXPECT_EQ(krViewStop(view), 0);
        EXPECT_EQ(frameHash(draw(view)), frameHash(drawOne(textAt("Text", 200, 150))));
    }
}

TEST_F(Text, NewTextIsCutTo255AndOnlyTakenByAText)
{
    VIEW_STRUCT* view = load(blackPage().text(textAt("x", 200, 150)).rect(box(0, 0, 10, 10)));
    std::string longer(300, 'y');
    EXPECT_EQ(textSetNewText(view->elements->next, longer.data()), -1);
    EXPECT_EQ(strlen(longer.c_str()), 255u);
    EXPECT_EQ(textSetNewText(view->elements, longer.data()), 0);
    EXPECT_EQ(std::string(static_cast<TEXT_STRUCT*>(view->elements->data)->text) + view->elements->attr.text,
              std::string(510, 'y'));
    EXPECT_GT(view->elements->width, 1000);
}

// Font edits re-make the font and raise the host's flag until the next draw; an anchor edit
// shows at once and leaves the position.
TEST_F(Text, EditsChangeFontAndAnchorAtOnce)
{
    VIEW_STRUCT* view = load(blackPage().text(textAt("Hello 123", 100, 75)));
    ELEMENT_STRUCT* e = view->elements;
    const TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(e->data);
    KR_EDIT_VALUE v = {};
    v.number = 0;
    EXPECT_EQ(e->edit(e, nullptr, KR_EDIT_ALIGN, 0, &v), 0);
    EXPECT_EQ(frameHash(draw(view)), frameHash(drawOne(textAt("Hello 123", 100, 75, 0))));
    EXPECT_TRUE(e->x == 100 && e->y == 75 && krTextUpdate() == 0);
    v.number = 60; // any size for an outline family: the drawn text doubles with the matrix
    e->edit(e, nullptr, KR_EDIT_FONT_SIZE, 0, &v);
    EXPECT_TRUE(krTextUpdate() == 1 && v.number == 60 && t->fontSize == 60 && t->matrix[0] == 2 && t->matrix[3] == 2);
    EXPECT_NEAR(Ink(draw(view)).height(), 2 * Ink(drawOne(textAt("Hello 123", 100, 75, 0))).height(), 2);
    EXPECT_EQ(krTextUpdate(), 0);
    strcpy(v.string, "Courier [fixed]");
    e->edit(e, nullptr, KR_EDIT_FONT_FAMILY, 0, &v);
    EXPECT_TRUE(!t->scalable && t->textSize == t->fontSize && t->fontSize <= 60 && t->matrix[0] == 1 && t->matrix[3] == 1);
    const uint64_t plain = frameHash(draw(view));
    v.number = GK_BOLD;
    e->edit(e, nullptr, KR_EDIT_FONT_STYLE, 0, &v);
    EXPECT_TRUE(t->fontStyle == GK_BOLD && krTextUpdate() == 1 && frameHash(draw(view)) != plain);
}

// Old fixed texts were placed by their anchor and a font code; old vector texts by four corners.
TEST(OldText, RecordsTakeThePresentFormOfTheirFontAndPlace)
{
    TEXT_STRUCT* t = createText(nullptr, 0, 30);
    strcpy(t->text, "AB");
    t->x = 100, t->y = 100, t->matrix[1] = 5;
    convertTextNewFormat(t, 23); // 20 to 27: 20 px; low bits 3: style 8
    const auto [w, h] = metric("AB", "Courier [fixed]", 8, 20);
    EXPECT_TRUE(t->fontSize == 20 && t->textSize == 20 && t->fontStyle == 8 && !t->scalable && t->matrix[1] == 0);
    EXPECT_TRUE(t->x == 100 + w * 0.5f && t->y == 100 + h * 0.5f) << t->x << " " << t->y;

    convertTextNewFormatVec(t, 23);
    const float w2 = float(metric("AB", "Arial", 8).first); // style kept; a quarter turn, sx 0.5, sy 1
    const float cornerX[4] = {10, -20, -20, 10}, cornerY[4] = {20, 20, 20 + w2, 20 + w2};
    std::copy(cornerX, cornerX + 4, t->cornerX), std::copy(cornerY, cornerY + 4, t->cornerY);
    calcVecText(t);
    EXPECT_TRUE(t->fontSize == 30 && t->textSize == 30 && t->scalable && t->x == -5 && t->y == 20 + w2 * 0.5f);
    const float matrix[4] = {0, -1, 0.5f, 0};
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(t->matrix[i], matrix[i], 1e-6) << i;
    gkFontFree(t->font);
    free(t);
}

} // namespace
