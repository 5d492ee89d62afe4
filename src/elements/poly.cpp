// Polyline (kind 2) and closed polygon (kind 13): a list of points, outlined and filled.
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"

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
