// Text: a string in a font, anchored at one of nine positions of its box.
#include "KorelEdit.h"
#include "base/truncate.h"
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"
#include "glyph/GlyphKit.h"

#include <algorithm>
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

// The box of the stored text about the record's position; only an outline font turns with the matrix.
int textSetPickSticky(ELEMENT_STRUCT* element)
{
    TEXT_STRUCT* t = static_cast<TEXT_STRUCT*>(element->data);
    int w, h;
    measureText(t, t->text, &w, &h);
    const float hw = float(w * 0.5), hh = float(h * 0.5);
    const float cornerX[4] = {hw, hw, -hw, -hw}, cornerY[4] = {-hh, hh, hh, -hh};
    std::copy(cornerX, cornerX + 4, t->cornerX);
    std::copy(cornerY, cornerY + 4, t->cornerY);
    float turnedX[4], turnedY[4];
    for (int i = 0; i < 4; ++i) {
        turnedX[i] = t->scalable ? t->matrix[0] * cornerX[i] + t->matrix[1] * cornerY[i] : cornerX[i];
        turnedY[i] = t->scalable ? t->matrix[2] * cornerX[i] + t->matrix[3] * cornerY[i] : cornerY[i];
    }
    pointsBox(turnedX, turnedY, 4, t->span);
    boxGeometry(element, t->x + t->span[0], t->y + t->span[1], t->x + t->span[2], t->y + t->span[3]);
    placeCentre(element, t->x, t->y);
    return textSetAttr(element);
}
