// Circle (kind 3) and arc (kind 6): a unit shape under a 2x2 matrix, between two angles.
#include "elements/kindCommon.h"

#include <algorithm>
#include <cmath>

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

int circleSetAttr(ELEMENT_STRUCT* element)
{
    const CIRCLE_STRUCT* c = static_cast<CIRCLE_STRUCT*>(element->data);
    ELEMENT_ATTR* attr = &element->attr;
    attrSeedCommon(attr);
    attrSeedStroke(attr, c->strokeStyle, c->stippleFactor, c->stipplePattern, c->strokeWidth, c->strokeColor);
    std::copy(c->fillColor, c->fillColor + 4, attr->fillColor);
    attr->arcEnd = c->end;
    attr->text[0] = 0;
    return 0;
}

// Visits the angles from start to end, `step` apart; the last one lands on end. At most
// maxPoints angles, so that angles too large for the step to move still end the walk.
template <class Visit> static void walkArc(float start, float end, float step, int maxPoints, Visit visit)
{
    if (!(end >= start))
        return;
    float a = start;
    bool lastStep = false;
    for (int n = 0; n < maxPoints; ++n) {
        visit(a);
        if (lastStep)
            return;
        float next = a + step;
        if (next > end) {
            step = end - a;
            a += step;
            lastStep = true;
        } else {
            a = next;
        }
        if (a > end)
            return;
    }
}

// The point of angle a on the rim, relative to the centre: angles grow clockwise.
static void rimPoint(const CIRCLE_STRUCT* c, float a, float* x, float* y)
{
    const float u = c->rx * std::cos(-a), v = c->ry * std::sin(-a);
    *x = c->matrix[0] * u + c->matrix[1] * v;
    *y = c->matrix[2] * u + c->matrix[3] * v;
}

// The box is that of the drawn section and its centre, so a pie-shaped arc reaches the centre.
int circleSetPickSticky(ELEMENT_STRUCT* element)
{
    CIRCLE_STRUCT* c = static_cast<CIRCLE_STRUCT*>(element->data);
    c->fanX = 0;
    c->fanY = 0;
    const float step = 0.06283186f;
    const float turn = 6.2831855f;
    // Beyond one turn the rim only repeats itself.
    const float end = c->end - c->start > turn ? c->start + turn : c->end;
    float local[4] = {0, 0, 0, 0};
    walkArc(c->start, end, step, int(turn / step) + 3, [&](float a) {
        float x, y;
        rimPoint(c, a, &x, &y);
        boxInclude(local, x, y);
    });
    std::copy(local, local + 4, c->localBounds);
    boxGeometry(element, c->x + local[0], c->y + local[1], c->x + local[2], c->y + local[3]);
    placeCentre(element, c->x, c->y);
    return circleSetAttr(element);
}
