// Rectangle: four corners, an optional fill with a pattern and an optional outline.
#include "KorelEdit.h"
#include "edit/handles.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <algorithm>

static RECT_STRUCT rectDefaults()
{
    RECT_STRUCT r = {};
    r.strokeOn = 1;
    r.strokeWidth = 2.0f;
    setColor(r.strokeColor, 1, 0, 1, 1);
    r.fillOn = 1;
    setColor(r.fillColor, 0, 0, 1, 1);
    r.antialias = 1;
    r.stippleFactor = 1;
    r.stipplePattern = 0xFFFF;
    return r;
}

RECT_STRUCT* createRect(const RECT_STRUCT* source)
{
    return createRecordOf(source, rectDefaults(), "createRect");
}

int rectSetAttr(ELEMENT_STRUCT* element)
{
    const RECT_STRUCT* r = static_cast<RECT_STRUCT*>(element->data);
    attrSeedCommon(&element->attr);
    attrSeedStroke(&element->attr, r->strokeStyle, r->stippleFactor, r->stipplePattern, r->strokeWidth, r->strokeColor);
    std::copy(r->fillColor, r->fillColor + 4, element->attr.fillColor);
    return 0;
}

int rectSetPickSticky(ELEMENT_STRUCT* element)
{
    RECT_STRUCT* r = static_cast<RECT_STRUCT*>(element->data);
    cornerGeometry(element, r->cornerX, r->cornerY, r->localX, r->localY);
    addBoundsStickies(element);
    return rectSetAttr(element);
}

int editRect(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    static const KindEdit kind{sizeof(RECT_STRUCT), applyCorners<RECT_STRUCT>, rectSetAttr, nullptr, nullptr,
                               shapeStyle<RECT_STRUCT>};
    return runKindEdit(element, stickies, code, phase, value, kind);
}

int drawRect(RECT_STRUCT* r, ELEMENT_ATTR* attr, int selected)
{
    tkAliasBlend(r->antialias, attr->fillColor[3]);
    if (r->fillOn) {
        kvColor4f(attr->fillColor[0], attr->fillColor[1], attr->fillColor[2], attr->fillColor[3]);
        setStipple(r->fillStyle, r->fillPattern);
        drawCorners(GL_QUADS, r->localX, r->localY);
        setStipple(0, nullptr);
    }
    tkAliasBlend(r->antialias, attr->strokeColor[3]);
    if (r->strokeOn) {
        tkLineStipple(attr->stippleFactor, attr->stipplePattern);
        tkLineWidth(attr->lineWidth);
        kvColor4f(attr->strokeColor[0], attr->strokeColor[1], attr->strokeColor[2], attr->strokeColor[3]);
        drawCorners(GL_LINE_LOOP, r->localX, r->localY);
    }
    if (selected && !attr->live)
        drawSelectionLoop(r->localX, r->localY);
    return 0;
}
