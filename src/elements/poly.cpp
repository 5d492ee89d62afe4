// Polyline (kind 2) and closed polygon (kind 13): a list of points, outlined and filled.
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"

#include <algorithm>

static POLY_STRUCT polyDefaults(int closed)
{
    POLY_STRUCT p = {};
    p.closed = closed;
    p.strokeOn = 1;
    p.strokeWidth = 3.0f;
    setColor(p.strokeColor, 1, 1, 1, 1);
    setColor(p.fillColor, 0, 1, 0, 1);
    p.fillLevel = 1.0f;
    p.antialias = closed ? 0 : 1;
    p.stippleFactor = 1;
    p.stipplePattern = 0xFFFF;
    return p;
}

POLY_STRUCT* createPoly(const POLY_STRUCT* source)
{
    return createRecordOf(source, polyDefaults(0), "createPoly");
}

POLY_STRUCT* createCPoly(const POLY_STRUCT* source)
{
    return createRecordOf(source, polyDefaults(1), "createPoly");
}

void polyFreeData(void* data)
{
    POLY_STRUCT* p = static_cast<POLY_STRUCT*>(data);
    while (p->coords)
        delCoord(&p->coords, p->coords);
    while (p->fillCoords)
        delCoord(&p->fillCoords, p->fillCoords);
}

int polySetAttr(ELEMENT_STRUCT* element)
{
    const POLY_STRUCT* p = static_cast<POLY_STRUCT*>(element->data);
    attrSeedCommon(&element->attr);
    attrSeedStroke(&element->attr, p->strokeStyle, p->stippleFactor, p->stipplePattern, p->strokeWidth,
                   p->strokeColor);
    std::copy(p->fillColor, p->fillColor + 4, element->attr.fillColor);
    element->attr.text[0] = 0;
    return 0;
}

// Vertices are kept relative to the centre, as the outline and the fill draw them. A level
// cut is dropped: the polygon shows whole until the next level change rebuilds it.
int polySetPickSticky(ELEMENT_STRUCT* element)
{
    POLY_STRUCT* p = static_cast<POLY_STRUCT*>(element->data);
    float box[4] = {0, 0, 0, 0};
    if (p->coords) {
        box[0] = box[2] = p->coords->x;
        box[1] = box[3] = p->coords->y;
        for (const COORD_STRUCT* c = p->coords->next; c; c = c->next)
            boxInclude(box, c->x, c->y);
    }
    boxGeometry(element, box[0], box[1], box[2], box[3]);
    float local[4] = {0, 0, 0, 0};
    for (COORD_STRUCT* c = p->coords; c; c = c->next) {
        c->vertex[0] = c->x - element->x;
        c->vertex[1] = c->y - element->y;
        c->vertex[2] = 0;
        if (c == p->coords) {
            local[0] = local[2] = float(c->vertex[0]);
            local[1] = local[3] = float(c->vertex[1]);
        }
        boxInclude(local, float(c->vertex[0]), float(c->vertex[1]));
    }
    std::copy(local, local + 4, p->localBounds);
    while (p->fillCoords)
        delCoord(&p->fillCoords, p->fillCoords);
    return polySetAttr(element);
}
