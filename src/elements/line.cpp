// Line: two end points with a width, a style and a colour.
#include "elements/kindCommon.h"

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
