// Texts drawn for real: the box the font's metric gives, scaling and turning, the anchor of a
// string an action shows in place of the stored one, values that reach the screen, old records.
#include "../actions/actionViews.h"
#include "KorelEdit.h"
#include "ViewFixture.h"
#include "glyph/GlyphKit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace k2dtest;
using namespace korelgen;

// Width and height of a string in a font of the layer.
std::pair<int, int> metric(const char* s, const char* family = "Arial", int style = 1, int size = 30)
{
    GK_FONT font = gkFontCreate(family, style, size);
    int m[2] = {0, 0};
    gkFontStringMetric(font, s, m);
    gkFontFree(font);
    return {m[0], m[1]};
}

TextFields textAt(const char* s, float x, float y, int align = KR_POS_CENTRE, const char* family = "Arial")
{
    return {4, x, y, {0, 1, 1, 1}, align, {1, 0, 0, 1}, family, 1, 0, 30, 30, 0, s};
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

// An outline text's box is textSize high and its metric width scaled to textSize; the ink lies
// in it, centred, and follows size, zoom and matrix. A bitmap text keeps its pixels and stays level.
TEST_F(Text, OutlineTextsScaleAndTurnBitmapTextsKeepTheirPixels)
{
    const int w = metric("Hello 123").first;
    const struct {
        const char* family;
        int size, zoom, turned, widthTimes;
    } rows[] = {{"Arial", 30, 1, 0, 1}, {"Arial", 60, 1, 0, 2}, {"Arial", 30, 2, 0, 2}, {"Arial", 30, 1, 1, 0},
                {"Courier [fixed]", 30, 2, 0, 1}, {"Courier [fixed]", 30, 1, 1, 0}};
    for (const auto& r : rows) {
        SCOPED_TRACE(std::string(r.family) + " " + std::to_string(r.size * 10 + r.zoom));
        TextFields t = textAt("Hello 123", 130, 75, KR_POS_CENTRE, r.family);
        const Frame base = drawOne(t);
        t.textSize = r.size;
        t.matrix[0] = t.matrix[3] = float(!r.turned), t.matrix[1] = -r.turned, t.matrix[2] = r.turned;
        VIEW_STRUCT* view = load(blackPage().text(t));
        const TEXT_STRUCT* c = static_cast<TEXT_STRUCT*>(view->elements->data);
        const float hw = float(w * r.size / 30 * 0.5), hh = r.size * 0.5f;
        const Ink ink = draw(view, 0, 0, float(r.zoom)).ink(), was = base.ink();
        if (r.turned)
            EXPECT_TRUE(c->scalable ? ink.height() > ink.width() : frameHash(draw(view)) == frameHash(base));
        else
            EXPECT_TRUE(std::abs(ink.width() - r.widthTimes * was.width()) <= 2 &&
                        (r.zoom == 1 || std::abs(ink.x0 - was.x0) > 10)); // zoomed texts move
        if (c->scalable && !r.turned) {
            EXPECT_TRUE(c->cornerX[0] == hw && c->cornerX[2] == -hw && c->cornerY[0] == -hh && c->cornerY[1] == hh);
            EXPECT_TRUE(ink.x0 >= (130 - hw - 1) * r.zoom && ink.x1 <= (130 + hw + 1) * r.zoom);
            EXPECT_TRUE(ink.y0 >= (74 - hh) * r.zoom && ink.y1 <= (76 + hh) * r.zoom);
            EXPECT_NEAR((ink.x0 + ink.x1) * 0.5f, 130 * r.zoom, 2);
        }
    }
}

// A shown "1" keeps the left edge, centre or right edge of a stored "88888"; always centred in y.
TEST_F(Text, ShownStringKeepsTheEdgeItsAnchorNames)
{
    const float wr = float(metric("88888").first), ws = float(metric("1").first);
    const int sameAs[10] = {0, 7, 9, 5, 5, 5, 9, 7, 7, 9};
    float shiftFromLeft[10] = {};
    shiftFromLeft[9] = (wr - ws) / 2, shiftFromLeft[5] = wr - ws;
    const Ink left = drawOne(textAt("1", 200 - wr / 2 + ws / 2, 150)).ink(); // a stored "1" where the "88888" starts
    uint64_t looks[10];
    for (int align : {7, 9, 5, 1, 8, 2, 6, 3, 4}) {
        ViewBuilder b = blackPage();
        VIEW_STRUCT* view = start(b.actions({act(KR_ACTION_TEXT, "t")}).text(textAt("88888", 200, 150, align)));
        ASSERT_EQ(krVarSet(view, "t", "1"), 1);
        const Frame f = draw(view);
        const Ink ink = f.ink();
        looks[align] = frameHash(f);
        EXPECT_EQ(looks[align], looks[sameAs[align]]) << align;
        EXPECT_NEAR(ink.x0 - left.x0, shiftFromLeft[sameAs[align]], 1) << align;
        EXPECT_EQ(ink.y0, left.y0) << align;
    }
    // Without an anchor the metric box's lower left corner sits on the position.
    EXPECT_EQ(frameHash(drawOne(textAt("1", 200, 150, 0))), frameHash(drawOne(textAt("1", 200 + ws / 2, 165))));
}

// Each text shows its variable, pixel for pixel as a text storing that string, until the stop.
TEST_F(Text, ValuesShowAsTheirFormattedTextWouldStandUntilStopped)
{
    ActionFields d = act(KR_ACTION_TEXT, "d"), i = act(KR_ACTION_TEXT, "i");
    d.format = "%6.2f", i.format = "%d";
    ViewBuilder b = blackPage();
    b.actions({d}).text(textAt("Text", 200, 50)).actions({i}).text(textAt("Text", 200, 150));
    VIEW_STRUCT* view = start(b.actions({act(KR_ACTION_TEXT, "t")}).text(textAt("Text", 200, 250)));
    const auto stored = [&](const char* a, const char* b, const char* c) {
        ViewBuilder v = blackPage();
        return frameHash(draw(load(v.text(textAt(a, 200, 50)).text(textAt(b, 200, 150)).text(textAt(c, 200, 250)))));
    };
    const double pi = 3.14159, later = 2.5;
    const int32_t n = 42;
    ASSERT_EQ(krVarSet(view, "d", &pi) + krVarSet(view, "i", &n) + krVarSet(view, "t", "Volts"), 3);
    EXPECT_EQ(frameHash(draw(view)), stored("  3.14", "42", "Volts"));
    EXPECT_EQ(krVarSet(view, "d", &later), 1);
    EXPECT_EQ(frameHash(draw(view)), stored("  2.50", "42", "Volts"));
    EXPECT_EQ(krViewStop(view), 0);
    EXPECT_EQ(frameHash(draw(view)), stored("Text", "Text", "Text"));
}

// Font edits re-make the font and raise the host's flag until the next draw; an anchor edit
// shows at once and leaves the position; a new text is cut to 255 characters, and only a text takes it.
TEST_F(Text, EditsChangeFontTextAndAnchorAtOnce)
{
    VIEW_STRUCT* view = load(blackPage().text(textAt("Hello 123", 100, 75)));
    ELEMENT_STRUCT* e = view->elements;
    const TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(e->data);
    KR_EDIT_VALUE v = {};
    EXPECT_EQ(e->edit(e, nullptr, KR_EDIT_ALIGN, 0, &v), 0); // to 0
    const Ink atZero = draw(view).ink();
    EXPECT_TRUE(frameHash(drawOne(textAt("Hello 123", 100, 75, 0))) == frameHash(draw(view)) && e->x == 100);
    v.number = 60; // any size for an outline family: the drawn text doubles with the matrix
    e->edit(e, nullptr, KR_EDIT_FONT_SIZE, 0, &v);
    EXPECT_TRUE(krTextUpdate() == 1 && v.number == 60 && t->fontSize == 60 && t->matrix[0] == 2 && t->matrix[3] == 2);
    EXPECT_NEAR(draw(view).ink().height(), 2 * atZero.height(), 2);
    EXPECT_EQ(krTextUpdate(), 0);
    strcpy(v.string, "Courier [fixed]");
    e->edit(e, nullptr, KR_EDIT_FONT_FAMILY, 0, &v);
    EXPECT_TRUE(!t->scalable && t->textSize == t->fontSize && t->matrix[0] == 1 && t->matrix[3] == 1);
    const uint64_t plain = frameHash(draw(view));
    v.number = GK_BOLD;
    e->edit(e, nullptr, KR_EDIT_FONT_STYLE, 0, &v);
    EXPECT_TRUE(t->fontStyle == GK_BOLD && krTextUpdate() == 1 && frameHash(draw(view)) != plain);
    std::string longer(300, 'y');
    ELEMENT_STRUCT* rect = load(blackPage().rect(box(0, 0, 9, 9)))->elements;
    EXPECT_TRUE(textSetNewText(rect, longer.data()) == -1 && strlen(longer.c_str()) == 255);
    EXPECT_TRUE(textSetNewText(e, longer.data()) == 0 && t->text + std::string(e->attr.text) == std::string(510, 'y'));
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
    EXPECT_TRUE(t->x == 100 + w * 0.5f && t->y == 100 + h * 0.5f);

    convertTextNewFormatVec(t, 23);
    const float w2 = float(metric("AB", "Arial", 8).first); // style kept; a quarter turn, sx 0.5, sy 1
    const float cornerX[4] = {10, -20, -20, 10}, cornerY[4] = {20, 20, 20 + w2, 20 + w2};
    std::copy(cornerX, cornerX + 4, t->cornerX), std::copy(cornerY, cornerY + 4, t->cornerY);
    calcVecText(t);
    EXPECT_TRUE(t->fontSize == 30 && t->textSize == 30 && t->scalable && t->x == -5 && t->y == 20 + w2 * 0.5f);
    const float* m = t->matrix;
    EXPECT_TRUE(std::abs(m[0]) + std::abs(m[1] + 1) + std::abs(m[2] - 0.5f) + std::abs(m[3]) < 1e-6);
    gkFontFree(t->font);
    free(t);
}

} // namespace
