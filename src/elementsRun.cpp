// The walk of one frame over the element tree: groups hand their flagged looks down,
// blink and visibility decide what shows, groups clip their children, kinds draw.
#include "KorelEdit.h"
#include "actions/actions.h"
#include "base/base.h"
#include "base/truncate.h"
#include "core/core.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <cstring>

namespace {

// Blink clocks shared by every view of the process: each flag flips after its half period.
struct BlinkClock {
    double halfPeriod;
    int flag;
    double lastChange;
};

BlinkClock blinkClocks[8] = {
    {2.0, 0, 0}, {1.0, 0, 0}, {0.5, 0, 0}, {0.25, 0, 0}, {0.166, 0, 0}, {0.125, 0, 0}, {0.1, 0, 0}, {0.083, 0, 0},
};

// Each element of a pass gets a slightly nearer far limit, so later elements win.
double depthOffset = 0.1;

void advanceBlinkClocks()
{
    double now = apiGetTime();
    for (BlinkClock& clock : blinkClocks) {
        if (now - clock.lastChange > clock.halfPeriod) {
            clock.flag = !clock.flag;
            clock.lastChange = now;
        }
    }
}

int blinkState(const ELEMENT_ATTR& attr)
{
    if (attr.blink && attr.blinkSet && attr.blinkRate >= 1 && attr.blinkRate <= 8)
        return blinkClocks[attr.blinkRate - 1].flag;
    return 1;
}

// How much the current projection scales a line: the distance of two projected points.
void followProjectionWithLineScale()
{
    GLint viewport[4];
    GLdouble model[16], projection[16];
    glGetIntegerv(GL_VIEWPORT, viewport);
    glGetDoublev(GL_MODELVIEW_MATRIX, model);
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    GLdouble x0, y0, z0, x1, y1, z1;
    gluProject(0, 0, 0, model, projection, viewport, &x0, &y0, &z0);
    gluProject(100, 100, 0, model, projection, viewport, &x1, &y1, &z1);
    kvSetLineScale(float((x1 - x0) / 100.0));
}

// Flagged values of the parent replace the child's, each with its flag.
void inherit(ELEMENT_ATTR* attr, const ELEMENT_ATTR* parent)
{
    if (parent->lineStyleSet) {
        attr->lineStyle = parent->lineStyle;
        attr->lineStyleSet = parent->lineStyleSet;
        attr->stippleFactor = parent->stippleFactor;
        attr->stipplePattern = parent->stipplePattern;
    }
    if (parent->lineWidthSet) {
        attr->lineWidth = parent->lineWidth;
        attr->lineWidthSet = parent->lineWidthSet;
    }
    if (parent->strokeColorSet) {
        memcpy(attr->strokeColor, parent->strokeColor, sizeof attr->strokeColor);
        attr->strokeColorSet = parent->strokeColorSet;
    }
    if (parent->fillColorSet) {
        memcpy(attr->fillColor, parent->fillColor, sizeof attr->fillColor);
        attr->fillColorSet = parent->fillColorSet;
    }
    if (parent->visibleSet) {
        attr->visible = parent->visible;
        attr->visibleSet = parent->visibleSet;
    }
    if (parent->textSet) {
        memcpy(attr->text, parent->text, sizeof attr->text);
        attr->textSet = parent->textSet;
    }
}

void drawStencilBox(const ELEMENT_STRUCT* group)
{
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glColor3f(1, 1, 1);
    tkBegin(GL_QUADS);
    for (int i = 0; i < 4; ++i)
        tkVertex2f(group->scissorCornerX[i], group->scissorCornerY[i]);
    tkEnd();
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

// Stencil clipping: the group's box raises the stencil by one level where the enclosing
// levels already hold, so nested boxes intersect.
void walkGroupStencil(ELEMENT_STRUCT* group, int run, int halt, int clip, DRAW_SETTINGS* settings, int depth)
{
    if (!group->hasScissor || !clip) {
        drawUserElements(group->child, &group->attr, run, halt, clip, settings, depth);
        if (!run)
            drawGroup(group, &group->attr);
        return;
    }
    glEnable(GL_STENCIL_TEST);
    if (depth == 0) {
        glClearStencil(0);
        glClear(GL_STENCIL_BUFFER_BIT);
        glStencilFunc(GL_ALWAYS, 1, 0xFF);
        glStencilOp(GL_REPLACE, GL_REPLACE, GL_REPLACE);
    } else {
        glStencilFunc(GL_EQUAL, depth, 0xFF);
        glStencilOp(GL_KEEP, GL_INCR, GL_INCR);
    }
    drawStencilBox(group);
    glStencilFunc(GL_LESS, depth, 0xFF);
    glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    drawUserElements(group->child, &group->attr, run, halt, clip, settings, depth + 1);
    if (!run)
        drawGroup(group, &group->attr);
    glDisable(GL_STENCIL_TEST);
}

// Scissor-box clipping: one window rectangle spanned by three projected corners of the box.
void walkGroupScissorBox(ELEMENT_STRUCT* group, int run, int halt, int clip, DRAW_SETTINGS* settings, int depth)
{
    bool boxSet = false;
    if (group->hasScissor && (run || clip)) {
        scissorToSpan(group->scissorCornerX, group->scissorCornerY);
        boxSet = true;
    }
    if (!run)
        drawGroup(group, &group->attr);
    drawUserElements(group->child, &group->attr, run, halt, clip, settings, depth + 1);
    if (boxSet)
        glDisable(GL_SCISSOR_TEST);
}

// Kinds whose drawing is plain vertices through tkVertex2f, placed by the walk's offset.
bool drawsAtOffset(const ELEMENT_STRUCT* e)
{
    switch (e->type) {
    case KR_RECT:
    case KR_LINE:
    case KR_GROUP:
    case KR_SLIDER:
    case KR_SCISSOR:
        return !e->actions;
    default:
        return false;
    }
}

void drawElement(ELEMENT_STRUCT* e, int run, int halt, int clip, DRAW_SETTINGS* settings, int depth)
{
    switch (e->type) {
    case KR_RECT:
        drawRect(static_cast<RECT_STRUCT*>(e->data), &e->attr, e->selected);
        break;
    case KR_POLYLINE:
    case KR_CPOLY:
        // The fill is a display list of points about the centre: always under the pushed matrix.
        drawPoly(static_cast<POLY_STRUCT*>(e->data), &e->attr, e->selected);
        break;
    case KR_CIRCLE:
    case KR_ARC:
        drawCircle(static_cast<CIRCLE_STRUCT*>(e->data), &e->attr, e->selected);
        break;
    case KR_TEXT:
        drawText(static_cast<TEXT_STRUCT*>(e->data), &e->attr, e->selected);
        break;
    case KR_LINE:
        // Placed by the offset or the pushed matrix like every kind: no offset of its own.
        drawLine(static_cast<LINE_STRUCT*>(e->data), &e->attr, e->selected, 0, 0);
        break;
    case KR_IMAGE:
        drawImage(static_cast<IMAGE_STRUCT*>(e->data), &e->attr, e->selected);
        break;
    case KR_GRAPH:
        KDrawGraph(static_cast<GRAPH_STRUCT*>(e->data), &e->attr, e->selected);
        if (run)
            drawAllGraphValues(e, static_cast<GRAPH_STRUCT*>(e->data));
        break;
    case KR_SLIDER:
        drawSlider(static_cast<SLIDER_STRUCT*>(e->data), &e->attr, e->selected);
        break;
    case KR_BUTTON:
        drawButton(static_cast<BUTTON_STRUCT*>(e->data), &e->attr, e->selected);
        break;
    case KR_GROUP:
        if (settings->scissorType == 1)
            walkGroupScissorBox(e, run, halt, clip, settings, depth);
        else
            walkGroupStencil(e, run, halt, clip, settings, depth);
        break;
    case KR_SCISSOR:
        if (!run && !clip)
            drawScissor(static_cast<SCISSOR_STRUCT*>(e->data), &e->attr, e->selected);
        break;
    default:
        break;
    }
}

} // namespace

int drawUserElements(ELEMENT_STRUCT* list, ELEMENT_ATTR* parentAttr, int run, int halt, int clip,
                     DRAW_SETTINGS* settings, int depth)
{
    if (!parentAttr) {
        depthOffset = 0.1;
        if (settings->useLineScaling)
            followProjectionWithLineScale();
        else
            kvSetLineScale(1.0f);
        advanceBlinkClocks();
    } else if (!settings->useLineScaling) {
        kvSetLineScale(1.0f);
    }

    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (settings->useDepthBuffer) {
            depthOffset *= 0.99998;
            glDepthRange(0, 1.0 - (0.1 - depthOffset));
        }
        if (parentAttr)
            inherit(&e->attr, parentAttr);
        int blink = blinkState(e->attr);
        // The element's translation: added to its vertices where it can be, else a matrix.
        float offsetX, offsetY;
        tkGetOffset(&offsetX, &offsetY);
        bool pushed = !drawsAtOffset(e);
        if (pushed) {
            tkPushMatrix();
            glTranslatef(offsetX + e->x, offsetY + e->y, 0);
            tkSetOffset(0, 0);
        } else {
            tkSetOffset(offsetX + e->x, offsetY + e->y);
        }
        if (!run) {
            e->attr.live = 0;
            drawElement(e, run, halt, clip, settings, depth);
        } else {
            doAction(e, halt);
            e->attr.live = 1;
            if (e->attr.visible && blink)
                drawElement(e, run, halt, clip, settings, depth);
        }
        if (pushed)
            tkPopMatrix();
        tkSetOffset(offsetX, offsetY);
    }

    if (settings->useDepthBuffer)
        glDepthRange(0, 1);
    tkFinish();
    return 0;
}
