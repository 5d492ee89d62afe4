// What an action does to its element in a frame: the value of its variable, filtered, mapped
// and clamped, becomes a matrix operation inside the element's translation or a change of its
// run-time look. Runs per element per frame: nothing here allocates but the level fill.
#include "KorelEdit.h"
#include "actions/actions.h"
#include "actions/textFormat.h"
#include "base/angles.h"
#include "base/truncate.h"
#include "data/valueBuffer.h"

#include <GL/gl.h>

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr float kFrameStep = 0.1f;
constexpr size_t kTextBytes = sizeof(ELEMENT_ATTR::text);

// Bytes of the buffers an action reads: they were made for its variable's type.
size_t boundSize(const ACTION_STRUCT* action)
{
    return valueBufferSize(action->variable ? action->variable->type : action->varType);
}

double clampToRange(double v, float b0, float b1)
{
    double lower = std::fmin(b0, b1), upper = std::fmax(b0, b1);
    return v < lower ? lower : v > upper ? upper : v;
}

// The entry that wins: the last in list order whose lower limit v exceeds, else the first.
const TH_STRUCT* findThreshold(const TH_STRUCT* head, double v)
{
    const TH_STRUCT* found = head;
    for (const TH_STRUCT* entry = head; entry; entry = entry->next)
        if (v > double(entry->lower))
            found = entry;
    return found;
}

void translate(ELEMENT_STRUCT* element, double dx, double dy)
{
    glTranslatef(float(dx), float(dy), 0);
    element->pickMatrix[2] += float(dx);
    element->pickMatrix[5] += float(dy);
}

// Scale and rotation work about the point cg of the element; the centre means the element as it stands.
template <class Operation> void aboutPoint(ELEMENT_STRUCT* element, int cg, Operation operation)
{
    if (cg != KR_POS_CENTRE)
        objMove(element, cg, 0);
    operation();
    if (cg != KR_POS_CENTRE)
        objMove(element, cg, 1);
}

void fillStep(ELEMENT_STRUCT* element, double v, bool vertical, int (*rebuild)(ELEMENT_STRUCT*))
{
    if (element->type != KR_CPOLY || !element->data)
        return;
    POLY_STRUCT* poly = static_cast<POLY_STRUCT*>(element->data);
    double lo = element->bounds[vertical ? 1 : 0], hi = element->bounds[vertical ? 3 : 2];
    v = v < 0.0 ? 0.0 : v > 1.0 ? 1.0 : v;
    // Only a move of more than one view unit re-tessellates.
    if (std::fabs(poly->fillLevel - v) > 1.0 / (hi - lo)) {
        poly->fillLevel = float(v);
        rebuild(element);
        polyMakeList(poly, 1);
    }
}

FormatArgument formatArgument(const ACTION_STRUCT* action, double v)
{
    FormatArgument a{FormatArgument::Signed, 0, 0, 0};
    switch (action->varType) {
    case KR_VAR_FLOAT: a = {FormatArgument::Real, double(float(v)), 0, 0}; break;
    case KR_VAR_DOUBLE: a = {FormatArgument::Real, v, 0, 0}; break;
    case KR_VAR_INT8: a.integer = int8_t(truncToInt64(v)); break;
    case KR_VAR_UINT8: a.integer = uint8_t(truncToInt64(v)); break;
    case KR_VAR_INT16: a.integer = int16_t(truncToInt64(v)); break;
    case KR_VAR_UINT16: a.integer = uint16_t(truncToInt64(v)); break;
    case KR_VAR_INT32:
        if (strchr(action->format, 'f'))
            a = {FormatArgument::Real, double(float(v)), 0, 0};
        else
            a.integer = truncToInt(v);
        break;
    case KR_VAR_UINT32:
    case KR_VAR_INT64: a.integer = truncToInt64(v); break;
    default: a = {FormatArgument::Unsigned, 0, 0, truncToUint64(v)}; break;
    }
    return a;
}

void formatText(ELEMENT_STRUCT* element, const ACTION_STRUCT* action, double v)
{
    if (element->type != KR_TEXT)
        return;
    ELEMENT_ATTR& attr = element->attr;
    attr.textSet = 1;
    if (action->varType > KR_VAR_TEXT)
        return;
    char text[512];
    if (action->varType == KR_VAR_TEXT) {
        if (!action->value)
            snprintf(text, sizeof text, "Var %s not found", action->var);
        else if (action->heldValue && boundSize(action) == kTextBufferSize)
            storeText(text, static_cast<const char*>(action->heldValue));
        else
            text[0] = '\0';
    } else {
        formatActionText(text, sizeof text, action->format, formatArgument(action, v));
    }
    storeText(attr.text, text);
    static_assert(kTextBytes == kTextBufferSize, "the shown text holds what a text variable holds");
}

void applyThresholdVisibility(ELEMENT_STRUCT* element, const ACTION_STRUCT* action, double v)
{
    if (action->visibleMode == 0) {
        if (const TH_STRUCT* entry = findThreshold(action->visibleThresholds, v))
            setVisible(element, entry->value);
    } else if (action->visibleMode == 1) {
        setVisible(element, std::fabs(v - action->visibleValue) < 0.1);
    }
}

void apply(ELEMENT_STRUCT* element, ACTION_STRUCT* action, double v)
{
    ELEMENT_ATTR& attr = element->attr;
    switch (action->type) {
    case KR_ACTION_TEXT: formatText(element, action, v); break;
    case KR_ACTION_MOVE_X: translate(element, v, 0); break;
    case KR_ACTION_MOVE_Y: translate(element, 0, v); break;
    case KR_ACTION_SCALE_X: aboutPoint(element, action->cg, [v] { glScalef(float(v), 1, 1); }); break;
    case KR_ACTION_SCALE_Y: aboutPoint(element, action->cg, [v] { glScalef(1, float(v), 1); }); break;
    case KR_ACTION_ROTATE: aboutPoint(element, action->cg, [v] { glRotatef(float(-v), 0, 0, 1); }); break;
    case KR_ACTION_MOVE_X_RELATIVE: translate(element, element->width * v, 0); break;
    case KR_ACTION_MOVE_Y_RELATIVE: translate(element, 0, element->height * v); break;
    case KR_ACTION_MOVE_X_ABSOLUTE: translate(element, v - element->x, 0); break;
    case KR_ACTION_MOVE_Y_ABSOLUTE: translate(element, 0, v - element->y); break;
    case KR_ACTION_MOVE_ALONG_POLYLINE: {
        // A rail without a segment leaves the point unwritten: no movement then. The rail's points
        // are view units and x, y of an element in a group are relative to it, so such an element
        // follows its rail only while the group is centred on the origin.
        float x = element->x, y = element->y;
        if (getMovePolyCoord(action->movePoly, &x, &y, v) == 0)
            translate(element, double(x) - element->x, double(y) - element->y);
        break;
    }
    case KR_ACTION_STROKE_COLOR:
    case KR_ACTION_FILL_COLOR: {
        const bool stroke = action->type == KR_ACTION_STROKE_COLOR;
        float* colour = stroke ? attr.strokeColor : attr.fillColor;
        (stroke ? attr.strokeColorSet : attr.fillColorSet) = 1;
        if (const TH_STRUCT* entry = findThreshold(action->colorThresholds, v))
            memcpy(colour, entry->color, sizeof entry->color); // alpha stays
        break;
    }
    case KR_ACTION_STROKE_WIDTH:
        attr.lineWidthSet = 1;
        if (const TH_STRUCT* entry = findThreshold(action->widthThresholds, v))
            attr.lineWidth = int8_t(entry->value);
        break;
    case KR_ACTION_STROKE_STYLE:
        attr.lineStyleSet = 1;
        if (const TH_STRUCT* entry = findThreshold(action->styleThresholds, v)) {
            attr.lineStyle = uint8_t(entry->value);
            attr.stippleFactor = entry->stippleFactor;
            attr.stipplePattern = entry->stipplePattern;
        }
        break;
    case KR_ACTION_SCALE_XY: aboutPoint(element, action->cg, [v] { glScalef(float(v), float(v), 1); }); break;
    case KR_ACTION_VISIBLE: applyThresholdVisibility(element, action, v); break;
    case KR_ACTION_FILL_UP: fillStep(element, v, true, polyCreateFillCoordUp); break;
    case KR_ACTION_FILL_DOWN: fillStep(element, v, true, polyCreateFillCoordDown); break;
    case KR_ACTION_FILL_LEFT: fillStep(element, v, false, polyCreateFillCoordLeft); break;
    case KR_ACTION_FILL_RIGHT: fillStep(element, v, false, polyCreateFillCoordRight); break;
    case KR_ACTION_BUTTON_STATE:
        // On a button this byte is its pressed state.
        attr.lineStyle = uint8_t(truncToInt(v));
        attr.strokeColorSet = 1;
        break;
    case KR_ACTION_ARC_END: attr.arcEnd = float(v * kDegreesToRadians); break;
    case KR_ACTION_BLINK:
        attr.blinkSet = 1;
        if (const TH_STRUCT* entry = findThreshold(action->blinkThresholds, v)) {
            attr.blinkRate = uint8_t(entry->value);
            attr.blink = entry->value != 0;
        }
        break;
    default: break; // graphs and input actions are read elsewhere
    }
}

} // namespace

int objMove(ELEMENT_STRUCT* element, int cg, int back)
{
    const double s = back ? -1.0 : 1.0;
    const double w = element->width * 0.5 * s, h = element->height * 0.5 * s;
    double x = 0, y = 0;
    switch (cg) {
    case KR_POS_UPPER_LEFT: x = -w, y = h; break;
    case KR_POS_TOP: y = h; break;
    case KR_POS_UPPER_RIGHT: x = w, y = h; break;
    case KR_POS_RIGHT: x = w; break;
    case KR_POS_LOWER_RIGHT: x = w, y = -h; break;
    case KR_POS_BOTTOM: y = -h; break;
    case KR_POS_LOWER_LEFT: x = -w, y = -h; break;
    case KR_POS_LEFT: x = -w; break;
    default: break;
    }
    glTranslatef(float(x), float(y), 0);
    return 0;
}

void setVisible(ELEMENT_STRUCT* element, int flag)
{
    element->attr.visible = uint8_t(flag);
    element->attr.visibleSet = 1;
    for (ELEMENT_STRUCT* child = element->child; child; child = child->next)
        setVisible(child, flag);
}

double getActionFloatData(ACTION_STRUCT* action, int which, float dt)
{
    if (!action)
        return 0.0;
    const void* buffer = which == 0 ? action->heldValue : which == 1 ? action->value : action->value2;
    if (!buffer)
        return 0.0;
    double raw = readValue(buffer, action->varType);
    switch (action->filter) {
    case KR_FILTER_NONE:
        return raw;
    case KR_FILTER_TIME:
        action->filterElapsed += dt;
        if (action->filterElapsed > action->filterTime) {
            action->filterElapsed = 0;
            action->filterValue = float(raw);
            return raw;
        }
        return action->filterValue;
    case KR_FILTER_LAG:
        action->filterValue = float((raw * dt + action->filterValue * action->filterTime) / (dt + action->filterTime));
        return action->filterValue;
    default:
        return 0.0;
    }
}

void putFloatData(ACTION_STRUCT* action, double v)
{
    if (!action || !action->value)
        return;
    if (action->limit)
        v = clampToRange(v, action->b0, action->b1);
    uint64_t before = firstEightBytes(action->value);
    writeValue(action->value, action->varType, v);
    // A text or an unknown code takes nothing, so it never counts as written.
    if (action->variable)
        action->variable->written = firstEightBytes(action->value) != before;
}

int doAction(ELEMENT_STRUCT* element, int halt)
{
    static const float kIdentity[6] = {1, 0, 0, 0, 1, 0};
    memcpy(element->pickMatrix, kIdentity, sizeof kIdentity);
    for (ACTION_STRUCT* action = element->actions; action; action = action->next) {
        // Halted, the action goes on with the value it held when the halt began.
        if (!halt && action->value && action->heldValue)
            memcpy(action->heldValue, action->value, boundSize(action));
        double v = 0;
        if (action->value) {
            if (action->type == KR_ACTION_GRAPH)
                continue;
            v = action->offset + action->slope * getActionFloatData(action, 0, kFrameStep);
            if (action->limit)
                v = clampToRange(v, action->b0, action->b1);
        }
        apply(element, action, v);
    }
    return 0;
}
