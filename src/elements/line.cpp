// Line: two end points with a width, a style and a colour.
#include "KorelEdit.h"
#include "edit/handles.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

static LINE_STRUCT lineDefaults()
{
    LINE_STRUCT l = {};
    l.strokeWidth = 1.0f;
    setColor(l.strokeColor, 0.5f, 1, 0.5f, 1);
    l.stippleFactor = 1;
    l.stipplePattern = 0xFFFF;
    return l;
}

LINE_STRUCT* createLine(const LINE_STRUCT* source)
{
    return createRecordOf(source, lineDefaults(), "createLine");
}

int lineSetAttr(ELEMENT_STRUCT* element)
{
    const LINE_STRUCT* l = static_cast<LINE_STRUCT*>(element->data);
    ELEMENT_ATTR* attr = &element->attr;
    attrSeedCommon(attr);
    attrSeedStroke(attr, l->strokeStyle, l->stippleFactor, l->stipplePattern, l->strokeWidth, l->strokeColor);
    setColor(attr->fillColor, 0, 0, 0, 0);
    attr->text[0] = 0;
    return 0;
}

// A line is picked as the segment it is, not by its box, which may be flat.
int lineSetPickSticky(ELEMENT_STRUCT* element)
{
    LINE_STRUCT* l = static_cast<LINE_STRUCT*>(element->data);
    const float x[2] = {l->x1, l->x2}, y[2] = {l->y1, l->y2};
    float box[4];
    pointsBox(x, y, 2, box);
    boxGeometry(element, box[0], box[1], box[2], box[3]);
    l->localX1 = l->x1 - element->x;
    l->localY1 = l->y1 - element->y;
    l->localX2 = l->x2 - element->x;
    l->localY2 = l->y2 - element->y;
    element->pickShape = 1;
    element->pickLine[0] = l->x1;
    element->pickLine[1] = l->y1;
    element->pickLine[2] = l->x2;
    element->pickLine[3] = l->y2;
    StickyList handles(element);
    handles.add(KR_HANDLE_POINT, KR_STICKY_SQUARE, l->x1, l->y1);
    handles.add(KR_HANDLE_POINT + 1, KR_STICKY_SQUARE, l->x2, l->y2);
    handles.add(KR_HANDLE_CENTRE, KR_STICKY_CENTRE, element->refX, element->refY);
    handles.add(KR_HANDLE_FRAME, KR_STICKY_SEGMENT, l->x1, l->y1, l->x2, l->y2);
    return lineSetAttr(element);
}

static void applyLine(ELEMENT_STRUCT* element, const void* saved, int code, const KR_EDIT_VALUE* value)
{
    LINE_STRUCT* l = static_cast<LINE_STRUCT*>(element->data);
    const LINE_STRUCT* o = static_cast<const LINE_STRUCT*>(saved);
    movePoint(element, code, value, &l->x1, &l->y1, o->x1, o->y1);
    movePoint(element, code, value, &l->x2, &l->y2, o->x2, o->y2);
}

static StyleFields lineStyle(void* data)
{
    LINE_STRUCT* l = static_cast<LINE_STRUCT*>(data);
    StyleFields f;
    f.width = &l->strokeWidth;
    f.lineStyle = &l->strokeStyle;
    f.stippleFactor = &l->stippleFactor;
    f.stipplePattern = &l->stipplePattern;
    f.stroke = l->strokeColor;
    f.antialias = &l->antialias;
    return f;
}

// An end dragged by its handle follows the pointer while the drag lasts.
static bool moveLineEnd(ELEMENT_STRUCT* element, int code, int phase, const KR_EDIT_VALUE* value)
{
    if (phase != KR_EDIT_UPDATE || (code != KR_HANDLE_POINT && code != KR_HANDLE_POINT + 1))
        return false;
    LINE_STRUCT* l = static_cast<LINE_STRUCT*>(element->data);
    const bool first = code == KR_HANDLE_POINT;
    (first ? l->x1 : l->x2) = value->x;
    (first ? l->y1 : l->y2) = value->y;
    return true;
}

int editLine(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    static const KindEdit kind{sizeof(LINE_STRUCT), applyLine, lineSetAttr, nullptr, nullptr, lineStyle,
                               moveLineEnd};
    return runKindEdit(element, stickies, code, phase, value, kind);
}

// The walk places a line without actions by its vertex offset, which tkVertex2f adds, and
// one with actions by a pushed matrix; either way it passes dx = dy = 0. A caller drawing
// outside a walk, where the offset is zero, places the line through dx and dy instead.
int drawLine(LINE_STRUCT* l, ELEMENT_ATTR* attr, int selected, float dx, float dy)
{
    const auto segment = [&] {
        tkBegin(GL_LINES);
        tkVertex2f(dx + l->localX1, dy + l->localY1);
        tkVertex2f(dx + l->localX2, dy + l->localY2);
        tkEnd();
    };
    tkLineStipple(attr->stippleFactor, attr->stipplePattern);
    tkLineWidth(attr->lineWidth);
    tkAliasBlend(l->antialias, attr->strokeColor[3]);
    kvColor4f(attr->strokeColor[0], attr->strokeColor[1], attr->strokeColor[2], attr->strokeColor[3]);
    segment();
    if (selected && !attr->live) {
        setSelectionPen(1);
        segment();
    }
    return 0;
}
