// Text: a string in a font, anchored at one of nine positions of its box.
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"
#include "glyph/GlyphKit.h"

#include <cstring>

static TEXT_STRUCT textDefaults(int textSize)
{
    TEXT_STRUCT t = {};
    strcpy(t.text, "Text");
    t.align = 7;
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
