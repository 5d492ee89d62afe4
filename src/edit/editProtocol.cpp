// Moving and sizing by handles: the point rule every kind runs its points through, and the
// phases an edit goes through.
#include "edit/handles.h"
#include "base/base.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace {

int shiftPressed = 0;
int ctrlPressed = 0;

// Below this a factor would collapse the shape onto its anchor, which no drag can undo.
constexpr float kMinFactor = 0.001f;

} // namespace

void setShift(int flag)
{
    shiftPressed = flag;
}

void setCtrl(int flag)
{
    ctrlPressed = flag;
}

// A factor or extent kept away from zero, so that a flattened shape can grow again.
static float awayFromZero(float value)
{
    return std::fabs(value) < kMinFactor ? kMinFactor : value;
}

// The factor that takes a handle from `grab` to `pointer` about `anchor`, along one axis; a
// handle on the anchor's line gives 1, so that a flat box keeps that axis.
static float axisFactor(float pointer, float grab, float anchor)
{
    const float span = grab - anchor;
    return std::fabs(span) > 0 ? (pointer - anchor) / span : 1.0f;
}

void resizeMoveElement(ELEMENT_STRUCT* element, int code, float* outX, float* outY, float mx, float my, float oldX,
                       float oldY)
{
    if (!element || !outX || !outY)
        return;
    const float(*g)[2] = element->grabPoints;
    const float* centre = g[KR_HANDLE_CENTRE];
    float ax = centre[0], ay = centre[1];
    if (code >= KR_POS_UPPER_LEFT && code <= KR_POS_LEFT && !shiftPressed) {
        const int opposite = (code + 3) % 8 + 1; // k and k + 4 face each other
        ax = g[opposite][0];
        ay = g[opposite][1];
    }
    switch (code) {
    case KR_POS_UPPER_LEFT:
    case KR_POS_UPPER_RIGHT:
    case KR_POS_LOWER_RIGHT:
    case KR_POS_LOWER_LEFT: {
        float fx = axisFactor(mx, g[code][0], ax), fy = axisFactor(my, g[code][1], ay);
        if (ctrlPressed)
            fx = fy = std::fabs(fx) > std::fabs(fy) ? fx : fy;
        if (std::fabs(fx) > kMinFactor)
            *outX = fx * (oldX - ax) + ax;
        if (std::fabs(fy) > kMinFactor)
            *outY = fy * (oldY - ay) + ay;
        break;
    }
    case KR_POS_TOP:
    case KR_POS_BOTTOM: {
        const float f = axisFactor(my, g[code][1], ay);
        if (std::fabs(f) <= kMinFactor && g[code][1] != ay)
            return;
        *outY = (oldY - ay) * f + ay;
        *outX = oldX;
        break;
    }
    case KR_POS_RIGHT:
    case KR_POS_LEFT: {
        const float f = axisFactor(mx, g[code][0], ax);
        if (std::fabs(f) <= kMinFactor && g[code][0] != ax)
            return;
        *outX = (oldX - ax) * f + ax;
        *outY = oldY;
        break;
    }
    case KR_HANDLE_CENTRE:
        *outX = mx - centre[0] + oldX;
        *outY = my - centre[1] + oldY;
        break;
    case KR_EDIT_WIDTH:
    case KR_EDIT_HEIGHT: {
        // The new size over the box's size at the start, about the centre.
        const bool inX = code == KR_EDIT_WIDTH;
        const float size = inX ? std::fabs(g[KR_POS_RIGHT][0] - g[KR_POS_LEFT][0])
                               : std::fabs(g[KR_POS_TOP][1] - g[KR_POS_BOTTOM][1]);
        const float f = size > 0 ? (inX ? mx : my) / size : 1.0f;
        if (std::fabs(f) <= kMinFactor && size > 0)
            return;
        *outX = inX ? (oldX - centre[0]) * f + centre[0] : oldX;
        *outY = inX ? oldY : (oldY - centre[1]) * f + centre[1];
        break;
    }
    case KR_EDIT_SCALE_X:
        if (std::fabs(mx) > kMinFactor)
            *outX = (oldX - centre[0]) * mx + centre[0];
        break;
    case KR_EDIT_SCALE_Y:
        if (std::fabs(my) > kMinFactor)
            *outY = (oldY - centre[1]) * my + centre[1];
        break;
    case KR_EDIT_MIRROR_X:
        *outX = ax - (oldX - ax);
        *outY = oldY;
        break;
    case KR_EDIT_MIRROR_Y:
        *outY = ay - (oldY - ay);
        *outX = oldX;
        break;
    case KR_EDIT_ROTATE: {
        const float a = float(mx * 0.017453292);
        const double dx = double(oldX) - ax, dy = double(oldY) - ay;
        *outX = float(dx * std::cos(a) - dy * std::sin(a) + ax);
        *outY = float(dx * std::sin(a) + dy * std::cos(a) + ay);
        break;
    }
    default: break;
    }
}

void movePoints(ELEMENT_STRUCT* element, int code, const KR_EDIT_VALUE* value, float* x, float* y,
                const float* savedX, const float* savedY, int n)
{
    for (int i = 0; i < n; ++i)
        movePoint(element, code, value, &x[i], &y[i], savedX[i], savedY[i]);
}

void releaseEditData(ELEMENT_STRUCT* element)
{
    if (!element->editData)
        return;
    // A polygon's saved copy holds its own points.
    if (element->type == KR_POLYLINE || element->type == KR_CPOLY) {
        POLY_STRUCT* saved = static_cast<POLY_STRUCT*>(element->editData);
        while (saved->coords)
            delCoord(&saved->coords, saved->coords);
    }
    free(element->editData);
    element->editData = nullptr;
}

// Saves the record, and where each handle stood. Ids a kind has no handle for start at the
// reference point, so that an edit never works from the handles of an earlier one.
static void beginEdit(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, const KindEdit& kind)
{
    releaseEditData(element);
    void* saved = malloc(kind.recordSize);
    if (!saved) {
        logMsg(1, "edit: out of memory\n");
        return;
    }
    memcpy(saved, element->data, kind.recordSize);
    if (kind.ownSaved)
        kind.ownSaved(saved);
    element->editData = saved;
    for (float* g : element->grabPoints) {
        g[0] = element->refX;
        g[1] = element->refY;
    }
    for (const STICKY_STRUCT* s = stickies; s; s = s->next)
        if (s->id >= 0 && s->id <= KR_HANDLE_CENTRE) {
            element->grabPoints[s->id][0] = s->x;
            element->grabPoints[s->id][1] = s->y;
        }
}

int runKindEdit(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value,
                const KindEdit& kind)
{
    if (!element || !value || !element->data)
        return -1;
    const KR_EDIT_VALUE* v = static_cast<const KR_EDIT_VALUE*>(value);
    if (isBoxEditCode(code)) {
        switch (phase) {
        case KR_EDIT_BEGIN: beginEdit(element, stickies, kind); break;
        case KR_EDIT_UPDATE:
            if (element->editData)
                kind.apply(element, element->editData, code, v);
            break;
        case KR_EDIT_END:
            if (element->editData && kind.finish)
                kind.finish(element);
            releaseEditData(element);
            break;
        case KR_EDIT_ALL:
            for (int step : {KR_EDIT_BEGIN, KR_EDIT_UPDATE, KR_EDIT_END})
                element->edit(element, stickies, code, step, value);
            return 0;
        default: return 0;
        }
        if (element->setPickSticky)
            element->setPickSticky(element);
    } else if (kind.movePointCode && kind.movePointCode(element, code, phase, v)) {
        if (element->setPickSticky)
            element->setPickSticky(element);
    } else if (kind.style) {
        applyStyleCode(kind.style(element->data), code, v);
    }
    if (kind.setAttr)
        kind.setAttr(element);
    return 0;
}

void applyMatrixShape(ELEMENT_STRUCT* element, int code, const KR_EDIT_VALUE* value, float* x, float* y,
                      float matrix[4], float savedX, float savedY, const float savedMatrix[4],
                      const float savedBox[4])
{
    movePoint(element, code, value, x, y, savedX, savedY);
    if (code == KR_EDIT_ROTATE) {
        const double a = value->x * 0.017453292, s = std::sin(a), c = std::cos(a);
        const double m00 = matrix[0], m01 = matrix[1], m10 = matrix[2], m11 = matrix[3];
        matrix[0] = float(m00 * c - m10 * s);
        matrix[1] = float(m01 * c - m11 * s);
        matrix[2] = float(m10 * c + m00 * s);
        matrix[3] = float(m11 * c + m01 * s);
        return;
    }
    const float fromX[2] = {savedX + savedBox[0], savedX + savedBox[2]};
    const float fromY[2] = {savedY + savedBox[1], savedY + savedBox[3]};
    float toX[2] = {fromX[0], fromX[1]}, toY[2] = {fromY[0], fromY[1]};
    movePoints(element, code, value, toX, toY, fromX, fromY, 2);
    const float sx = awayFromZero(awayFromZero(toX[1] - toX[0]) / awayFromZero(fromX[1] - fromX[0]));
    const float sy = awayFromZero(awayFromZero(toY[1] - toY[0]) / awayFromZero(fromY[1] - fromY[0]));
    matrix[0] = savedMatrix[0] * sx;
    matrix[1] = savedMatrix[1] * sx;
    matrix[2] = savedMatrix[2] * sy;
    matrix[3] = savedMatrix[3] * sy;
}
