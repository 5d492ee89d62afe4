// Circle (kind 3) and arc (kind 6): a unit shape under a 2x2 matrix, between two angles.
#include "elements/kindCommon.h"

static CIRCLE_STRUCT circleDefaults(bool arc)
{
    CIRCLE_STRUCT c = {};
    c.start = arc ? 3.1415927f : 0.0f;
    c.end = 6.2831855f;
    c.strokeOn = 1;
    c.strokeWidth = 2.0f;
    setColor(c.strokeColor, 1, 1, 1, 1);
    c.fillOn = arc ? 0 : 1;
    if (arc)
        setColor(c.fillColor, 0, 1, 0, 1);
    else
        setColor(c.fillColor, 1, 1, 0.5f, 1);
    c.antialias = arc ? 0 : 1;
    c.stippleFactor = 1;
    c.stipplePattern = 0xFFFF;
    return c;
}

CIRCLE_STRUCT* createCircle(const CIRCLE_STRUCT* source)
{
    return createRecordOf(source, circleDefaults(false), "createCircle");
}

CIRCLE_STRUCT* createArc(const CIRCLE_STRUCT* source)
{
    return createRecordOf(source, circleDefaults(true), "createCircle");
}
