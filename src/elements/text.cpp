// Text: a string in a font, anchored at one of nine positions of its box.
#include "KorelEdit.h"
#include "base/angles.h"
#include "base/truncate.h"
#include "edit/handles.h"
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"
#include "glyph/GlyphKit.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstring>

static TEXT_STRUCT textDefaults(int textSize)
{
    TEXT_STRUCT t = {};
    strcpy(t.text, "Text");
    t.align = KR_POS_LOWER_LEFT;
    strcpy(t.fontFamily, "Arial");
    t.fontStyle = 1;
    t.fontSize = textSize;
    t.textSize = textSize;
    t.matrix[0] = 1;
    t.matrix[3] = 1;
    setColor(t.strokeColor, 0, 1, 1, 1);
    t.strokeWidth = 1.0f;
    t.stippleFactor = 1;
    t.stipplePattern = 0xFFFF;
    return t;
}

// Callers pass a family and a font size as well, but a new text takes its size from the
// text height alone; the font itself is made once a reader has filled the record.
TEXT_STRUCT* createText(const char*, int, int textSize)
{
    return createRecordOf<TEXT_STRUCT>(nullptr, textDefaults(textSize), "createText");
}

void textFreeData(void* data)
{
    TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(data);
    gkFontFree(t->font);
    t->font = 0;
}

int textSetAttr(ELEMENT_STRUCT* element)
{
    const TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(element->data);
    ELEMENT_ATTR* attr = &element->attr;
    attrSeedCommon(attr);
    attrSeedStroke(attr, t->strokeStyle, t->stippleFactor, t->stipplePattern, t->strokeWidth, t->strokeColor);
    setColor(attr->fillColor, 0, 0, 0, 0);
    // A string an action showed is replaced by the stored one.
    memcpy(attr->text, t->text, sizeof attr->text);
    attr->text[sizeof attr->text - 1] = 0;
    return 0;
}

// Size of a string as drawn: an outline font is scaled to the text height, a bitmap font
// shows at its own size. A font that can't measure gives an empty box.
static void measureText(const TEXT_STRUCT* t, const char* s, int* width, int* height)
{
    int metric[2] = {0, 0};
    if (gkFontStringMetric(t->font, s, metric) != 0)
        metric[0] = metric[1] = 0;
    *width = metric[0];
    *height = metric[1];
    if (t->scalable) {
        const float ratio = float(t->textSize) / float(t->fontSize);
        *width = truncToInt(ratio * float(metric[0]));
        *height = t->textSize;
    }
}

// A font for the record's family, style and size in place of the old one; outline or bitmap asked anew.
static void remakeFont(TEXT_STRUCT* t)
{
    gkFontFree(t->font);
    t->font = gkFontCreate(t->fontFamily, t->fontStyle, t->fontSize);
    t->scalable = gkFontScalable(t->font);
}

// Set whenever an edit makes a text's font anew, so that a host knows to redraw; each draw clears it.
static int updateFlag = 0;

int krTextUpdate(void)
{
    return updateFlag;
}

int calcVecTextNew(TEXT_STRUCT* t)
{
    int w, h;
    measureText(t, t->text, &w, &h);
    const float hw = float(w * 0.5), hh = float(h * 0.5);
    const float cornerX[4] = {hw, hw, -hw, -hw}, cornerY[4] = {-hh, hh, hh, -hh};
    std::copy(cornerX, cornerX + 4, t->cornerX);
    std::copy(cornerY, cornerY + 4, t->cornerY);
    return 0;
}

// The box of the stored text about the record's position; only an outline font turns with the matrix.
int textSetPickSticky(ELEMENT_STRUCT* element)
{
    TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(element->data);
    calcVecTextNew(t);
    float turnedX[4], turnedY[4];
    for (int i = 0; i < 4; ++i) {
        const float x = t->cornerX[i], y = t->cornerY[i];
        turnedX[i] = t->scalable ? t->matrix[0] * x + t->matrix[1] * y : x;
        turnedY[i] = t->scalable ? t->matrix[2] * x + t->matrix[3] * y : y;
    }
    pointsBox(turnedX, turnedY, 4, t->span);
    boxGeometry(element, t->x + t->span[0], t->y + t->span[1], t->x + t->span[2], t->y + t->span[3]);
    placeCentre(element, t->x, t->y);
    // Only an outline font can be sized by its box.
    StickyList handles(element);
    if (t->scalable)
        handles.box(element->bounds, t->x, t->y, kBoxThenCentre, t->align);
    else
        handles.box(element->bounds, t->x, t->y, kCentreOnly, t->align);
    return textSetAttr(element);
}

int textSetNewText(ELEMENT_STRUCT* element, char* text)
{
    if (!text)
        return -1;
    if (strlen(text) > 254)
        text[255] = '\0';
    if (!element || element->type != KR_TEXT)
        return -1;
    TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(element->data);
    strcpy(t->text, text);
    calcVecTextNew(t);
    textSetPickSticky(element);
    return 0;
}

// An outline font turns and stretches with the record's matrix; a bitmap font does neither.
static void applyMatrix(const TEXT_STRUCT* t)
{
    if (!t->scalable)
        return;
    const float m[16] = {t->matrix[0], t->matrix[2], 0, 0, t->matrix[1], t->matrix[3], 0, 0,
                         0, 0, 1, 0, 0, 0, 0, 1};
    glMultMatrixf(m);
}

int drawText(TEXT_STRUCT* t, ELEMENT_ATTR* attr, int selected)
{
    updateFlag = 0;
    // Loaded texts have their font; one made by an editor gets it on its first draw.
    if (!t->font) {
        remakeFont(t);
        calcVecTextNew(t);
    }
    // The stored text was measured by the geometry pass; only a string an action shows is
    // measured per frame.
    const float halfStored = t->cornerX[0];
    int shownWidth = truncToInt(2 * t->cornerX[0]), shownHeight = truncToInt(2 * t->cornerY[1]);
    if (strcmp(attr->text, t->text) != 0)
        measureText(t, attr->text, &shownWidth, &shownHeight);
    // A shown string keeps the stored box's left edge, centre or right edge; it is always
    // centred in y, the vertical part of the anchor having placed the record's position.
    float tx = 0, ty = -float(shownHeight) * 0.5f;
    switch (t->align) {
    case KR_POS_UPPER_LEFT:
    case KR_POS_LOWER_LEFT:
    case KR_POS_LEFT: tx = -halfStored; break;
    case KR_POS_TOP:
    case KR_POS_BOTTOM:
    case KR_POS_CENTRE: tx = -float(shownWidth) * 0.5f; break;
    case KR_POS_UPPER_RIGHT:
    case KR_POS_RIGHT:
    case KR_POS_LOWER_RIGHT: tx = halfStored - float(shownWidth); break;
    default: ty = 0; break;
    }

    tkLineStipple(attr->stippleFactor, attr->stipplePattern);
    tkLineWidth(attr->lineWidth);
    kvColor4f(attr->strokeColor[0], attr->strokeColor[1], attr->strokeColor[2], attr->strokeColor[3]);
    setStipple(t->fillStyle, t->fillPattern);
    tkPushMatrix();
    applyMatrix(t);
    glTranslatef(tx, ty, 0);
    if (t->scalable) {
        const float ratio = float(t->textSize) / float(t->fontSize);
        glScalef(ratio, ratio, 1);
    }
    gkFontRender(t->font, attr->text);
    tkPopMatrix();
    setStipple(0, nullptr);

    if (selected && !attr->live) {
        const float w = float(shownWidth), h = float(shownHeight);
        const float loopX[4] = {0, w, w, 0}, loopY[4] = {0, 0, h, h};
        tkPushMatrix();
        applyMatrix(t);
        glTranslatef(tx, ty, 0);
        drawSelectionLoop(loopX, loopY);
        tkPopMatrix();
    }
    return 0;
}

static void applyText(ELEMENT_STRUCT* element, const void* saved, int code, const KR_EDIT_VALUE* value)
{
    TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(element->data);
    const TEXT_STRUCT* o = static_cast<const TEXT_STRUCT*>(saved);
    applyMatrixShape(element, code, value, &t->x, &t->y, t->matrix, o->x, o->y, o->matrix, o->span);
}

// A resized outline font is made anew at the size it now shows, so that its glyphs stay sharp;
// textSize and the matrix stay, and with them the drawn size.
static void finishText(ELEMENT_STRUCT* element)
{
    TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(element->data);
    if (!t->scalable)
        return;
    const double height = float(t->textSize);
    const double size = std::sqrt(std::pow(t->matrix[2] * height, 2) + std::pow(t->matrix[3] * height, 2));
    // The font layer bounds sizes it can't render; a box dragged flat still asks for one pixel.
    t->fontSize = std::max(truncToInt(size), 1);
    remakeFont(t);
    updateFlag = 1;
}

static StyleFields textStyle(void* data)
{
    TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(data);
    StyleFields f;
    f.width = &t->strokeWidth;
    f.lineStyle = &t->strokeStyle;
    f.stippleFactor = &t->stippleFactor;
    f.stipplePattern = &t->stipplePattern;
    f.stroke = t->strokeColor;
    f.antialias = &t->antialias;
    f.fillStyle = &t->fillStyle;
    f.fillPattern = t->fillPattern;
    return f;
}

int editTextx(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    if (!element || !value || !element->data || element->type != KR_TEXT)
        return -1;
    TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(element->data);
    KR_EDIT_VALUE* v = static_cast<KR_EDIT_VALUE*>(value);
    switch (code) {
    case KR_EDIT_FONT_SIZE: {
        // At least a pixel, so that the matrix keeps a finite factor; a damaged file's size of
        // 0 or below leaves the matrix alone.
        const int size = std::max(nearestSize(t->fontFamily, t->fontStyle, v->number), 1);
        v->number = size;
        const float factor = t->fontSize > 0 ? float(size) / float(t->fontSize) : 1.0f;
        for (float& m : t->matrix)
            m *= factor;
        t->fontSize = size;
        remakeFont(t);
        break;
    }
    case KR_EDIT_FONT_FAMILY: {
        const size_t n = strnlen(v->string, sizeof t->fontFamily - 1);
        memcpy(t->fontFamily, v->string, n);
        t->fontFamily[n] = '\0';
        t->fontStyle = styleOfFamily(t->fontFamily, t->fontStyle);
        t->fontSize = nearestSize(t->fontFamily, t->fontStyle, t->fontSize);
        remakeFont(t);
        if (!t->scalable) {
            const float identity[4] = {1, 0, 0, 1};
            std::copy(identity, identity + 4, t->matrix);
            t->textSize = t->fontSize;
        }
        break;
    }
    case KR_EDIT_FONT_STYLE:
        t->fontStyle = v->number;
        remakeFont(t);
        break;
    case KR_EDIT_TEXT:
        v->string[sizeof v->string - 1] = '\0';
        textSetNewText(element, v->string);
        return textSetAttr(element);
    case KR_EDIT_ALIGN: t->align = v->number; return textSetAttr(element);
    default: {
        static const KindEdit kind{sizeof(TEXT_STRUCT), applyText, textSetAttr, nullptr, finishText, textStyle};
        return runKindEdit(element, stickies, code, phase, value, kind);
    }
    }
    // The font changed: the box follows, and a host learns to redraw.
    textSetPickSticky(element);
    updateFlag = 1;
    return textSetAttr(element);
}

// Older files: what they stored of a text, brought to the present record.

int convertTextNewFormat(TEXT_STRUCT* t, int fontCode)
{
    t->underline = 0;
    strcpy(t->fontFamily, "Courier [fixed]");
    if (fontCode >= 0 && fontCode < 40) {
        static const int styles[4] = {GK_PLAIN, GK_ITALIC, GK_BOLD, GK_BOLD_ITALIC};
        static const int firstCode[6] = {0, 8, 16, 20, 28, 36}, sizes[6] = {11, 14, 17, 20, 25, 34};
        t->fontStyle = styles[fontCode & 3];
        for (int i = 0; i < 6; ++i)
            if (fontCode >= firstCode[i])
                t->fontSize = sizes[i];
    }
    remakeFont(t);
    t->textSize = t->fontSize;
    // These files placed the text by its anchor; the record now holds the centre.
    int metric[2] = {0, 0};
    gkFontStringMetric(t->font, t->text, metric);
    const float hw = float(metric[0]) * 0.5f, hh = float(metric[1]) * 0.5f;
    switch (t->align) {
    case KR_POS_UPPER_LEFT: t->x += hw, t->y -= hh; break;
    case KR_POS_TOP: t->y -= hh; break;
    case KR_POS_UPPER_RIGHT: t->x -= hw, t->y -= hh; break;
    case KR_POS_RIGHT: t->x -= hw; break;
    case KR_POS_LOWER_RIGHT: t->x -= hw, t->y += hh; break;
    case KR_POS_BOTTOM: t->y += hh; break;
    case KR_POS_LOWER_LEFT: t->x += hw, t->y += hh; break;
    case KR_POS_LEFT: t->x += hw; break;
    default: break;
    }
    const float identity[4] = {1, 0, 0, 1};
    std::copy(identity, identity + 4, t->matrix);
    return 0;
}

// Vector text of old files had no font of its own: it becomes Arial at 30, its old code unused.
int convertTextNewFormatVec(TEXT_STRUCT* t, int)
{
    strcpy(t->fontFamily, "Arial");
    t->underline = 0;
    t->fontSize = t->textSize = 30;
    remakeFont(t);
    return 0;
}

// The oldest files kept four corner points; position and matrix follow from them. The width
// scale divides by the width times the number of characters, as those files were written.
int calcVecText(TEXT_STRUCT* t)
{
    int w, h;
    measureText(t, t->text, &w, &h);
    const double baseX = t->cornerX[3] - t->cornerX[0], baseY = t->cornerY[3] - t->cornerY[0];
    const double length = std::hypot(baseX, baseY);
    const double height = std::hypot(t->cornerX[1] - t->cornerX[0], t->cornerY[1] - t->cornerY[0]);
    const double angle = float(std::atan2(baseY, baseX) * kRadiansToDegrees) * kDegreesToRadians;
    // An empty text or a font that measures nothing would divide by zero: that axis keeps its scale.
    const float widthDivisor = float(double(w) * double(strlen(t->text))), heightDivisor = float(h);
    const float sx = widthDivisor != 0 ? float(length) / widthDivisor : 1;
    const float sy = heightDivisor != 0 ? float(height) / heightDivisor : 1;
    float box[4];
    pointsBox(t->cornerX, t->cornerY, 4, box);
    t->x = float(box[0] + (box[2] - box[0]) * 0.5);
    t->y = float(box[1] + (box[3] - box[1]) * 0.5);
    const double c = std::cos(angle), s = std::sin(angle);
    t->matrix[0] = float(sx * c);
    t->matrix[1] = float(-sy * s);
    t->matrix[2] = float(sx * s);
    t->matrix[3] = float(sy * c);
    return calcVecTextNew(t);
}
