// Circle (kind 3) and arc (kind 6): a unit shape under a 2x2 matrix, between two angles.
#include "KorelEdit.h"
#include "edit/handles.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <utility>

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

// Most angles one walk visits. Far beyond any sensible drawing (over forty turns at the
// finest step), it keeps an end animated or edited to an absurd angle from stalling a frame.
constexpr int kMaxArcPoints = 1 << 16;

constexpr double kWholeTurn = 6.283185308;

// Visits the angles from start to end, `step` apart; the last one lands exactly on end, so an
// end that is a whole number of steps away is visited twice. Nothing for an end before the
// start. Where the step no longer moves the angle (angles too large for it, a step that is
// not a number) or the walk reaches kMaxArcPoints, the next step goes straight to end.
template <class Visit> static void walkArc(float start, float end, float step, Visit visit)
{
    if (!(end >= start))
        return;
    float a = start;
    for (int n = 1;; ++n) {
        visit(a);
        const float next = a + step;
        if (next > end || !(next > a) || n == kMaxArcPoints - 1) {
            visit(end);
            return;
        }
        a = next;
    }
}

// Angular step for drawing: coarse for small circles, fine for large ones, about one unit
// of rim in between.
static float drawStep(const CIRCLE_STRUCT* c)
{
    const float* m = c->matrix;
    const float r = std::max(std::fabs(c->rx * m[0] + c->ry * m[1]), std::fabs(c->rx * m[2] + c->ry * m[3]));
    if (r < 8)
        return 0.7853982f;
    if (r > 100)
        return 0.06283186f;
    return float(6.283185308 / double(r));
}

// The point of angle a on the rim, relative to the centre: angles grow clockwise.
static void rimPoint(const CIRCLE_STRUCT* c, float a, float* x, float* y)
{
    const float u = c->rx * std::cos(-a), v = c->ry * std::sin(-a);
    *x = c->matrix[0] * u + c->matrix[1] * v;
    *y = c->matrix[2] * u + c->matrix[3] * v;
}

// The direction of a point about the centre on the unit shape, the point taken back through
// the matrix; counter-clockwise, as atan2 counts. A singular matrix yields no number.
static double unitDirection(const CIRCLE_STRUCT* c, float x, float y)
{
    const double m00 = c->matrix[0], m01 = c->matrix[1], m10 = c->matrix[2], m11 = c->matrix[3];
    const double dx = double(x) - c->x, dy = double(y) - c->y;
    const double d = 1.0 / (m00 * m11 - m01 * m10);
    return std::atan2(d * (m00 * dy - m10 * dx), d * (m11 * dx - m01 * dy));
}

static void rimVertices(const CIRCLE_STRUCT* c, float end, float step)
{
    walkArc(c->start, end, step, [c](float a) {
        float x, y;
        rimPoint(c, a, &x, &y);
        tkVertex2f(x, y);
    });
}

// The box is that of the stored section and its centre, so a pie-shaped arc reaches the
// centre. It is walked at the finest step whatever the size, so it doesn't change with zoom.
int circleSetPickSticky(ELEMENT_STRUCT* element)
{
    CIRCLE_STRUCT* c = static_cast<CIRCLE_STRUCT*>(element->data);
    c->fanX = 0;
    c->fanY = 0;
    float local[4] = {0, 0, 0, 0};
    walkArc(c->start, c->end, 0.06283186f, [&](float a) {
        float x, y;
        rimPoint(c, a, &x, &y);
        boxInclude(local, x, y);
    });
    std::copy(local, local + 4, c->localBounds);
    boxGeometry(element, c->x + local[0], c->y + local[1], c->x + local[2], c->y + local[3]);
    placeCentre(element, c->x, c->y);
    StickyList handles(element);
    for (const auto& [id, angle] : {std::pair{KR_HANDLE_ARC_START, c->start}, std::pair{KR_HANDLE_ARC_END, c->end}}) {
        float x, y;
        rimPoint(c, angle, &x, &y);
        handles.add(id, KR_STICKY_SQUARE, c->x + x, c->y + y, kPointHandleSize, kPointHandleSize);
    }
    handles.box(element->bounds, c->x, c->y, kCentreCornersSides);
    handles.frame();
    return circleSetAttr(element);
}

static void applyCircle(ELEMENT_STRUCT* element, const void* saved, int code, const KR_EDIT_VALUE* value)
{
    CIRCLE_STRUCT* c = static_cast<CIRCLE_STRUCT*>(element->data);
    const CIRCLE_STRUCT* o = static_cast<const CIRCLE_STRUCT*>(saved);
    applyMatrixShape(element, code, value, &c->x, &c->y, c->matrix, o->x, o->y, o->matrix, o->localBounds);
}

// The rim angle of a point, clockwise from 0 to a whole turn.
static float angleOfPoint(const CIRCLE_STRUCT* c, float x, float y)
{
    const double a = unitDirection(c, x, y);
    return float(a > 0 ? kWholeTurn - a : -a);
}

// An end handle sets its angle where the pointer is; the section keeps start before end by
// taking the new angle a turn back (start) or on (end).
static bool moveArcEnd(ELEMENT_STRUCT* element, int code, int, const KR_EDIT_VALUE* value)
{
    if (code != KR_HANDLE_ARC_START && code != KR_HANDLE_ARC_END)
        return false;
    CIRCLE_STRUCT* c = static_cast<CIRCLE_STRUCT*>(element->data);
    const float angle = angleOfPoint(c, value->x, value->y);
    if (code == KR_HANDLE_ARC_START)
        c->start = angle > c->end ? float(angle - kWholeTurn) : angle;
    else
        c->end = c->start > angle ? float(angle + kWholeTurn) : angle;
    return true;
}

int editCircle(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    static const KindEdit kind{sizeof(CIRCLE_STRUCT), applyCircle, circleSetAttr, nullptr, nullptr,
                               shapeStyle<CIRCLE_STRUCT>, moveArcEnd};
    return runKindEdit(element, stickies, code, phase, value, kind);
}

// Drawn about the centre, which the walk's matrix has placed; the end is the run-time one,
// so an arc action sweeps the section without touching the record.
int drawCircle(CIRCLE_STRUCT* c, ELEMENT_ATTR* attr, int selected)
{
    const float step = drawStep(c);
    if (c->fillOn) {
        tkAliasBlend(0, attr->fillColor[3]);
        kvColor4f(attr->fillColor[0], attr->fillColor[1], attr->fillColor[2], attr->fillColor[3]);
        setStipple(c->fillStyle, c->fillPattern);
        tkBegin(GL_TRIANGLE_FAN);
        tkVertex2f(c->fanX, c->fanY);
        rimVertices(c, attr->arcEnd, step);
        tkEnd();
        setStipple(0, nullptr);
    }
    const auto rim = [&] {
        tkBegin(GL_LINE_STRIP);
        rimVertices(c, attr->arcEnd, step);
        tkEnd();
    };
    if (c->strokeOn) {
        tkLineStipple(attr->stippleFactor, attr->stipplePattern);
        tkLineWidth(attr->lineWidth);
        tkAliasBlend(c->antialias, attr->strokeColor[3]);
        kvColor4f(attr->strokeColor[0], attr->strokeColor[1], attr->strokeColor[2], attr->strokeColor[3]);
        rim();
    }
    if (selected && !attr->live) {
        setSelectionPen(1);
        tkAliasBlend(0, 1.0f);
        rim();
    }
    return 0;
}

// Inside the whole ellipse, whatever section is drawn: the point is taken back through the
// matrix to find its direction, and compared with the rim in that direction. A singular
// matrix yields no number and so no hit.
int pickCircle(ELEMENT_STRUCT* element, float x, float y)
{
    const CIRCLE_STRUCT* c = static_cast<CIRCLE_STRUCT*>(element->data);
    const double m00 = c->matrix[0], m01 = c->matrix[1], m10 = c->matrix[2], m11 = c->matrix[3];
    const double dx = double(x) - c->x, dy = double(y) - c->y;
    const double a = unitDirection(c, x, y);
    const double u = c->rx * std::cos(a), v = c->ry * std::sin(a);
    const double rimX = m00 * u + m01 * v, rimY = m10 * u + m11 * v;
    return std::sqrt(rimX * rimX + rimY * rimY) >= std::sqrt(dx * dx + dy * dy);
}
