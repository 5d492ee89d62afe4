#include "elements/kindCommon.h"
#include "base/truncate.h"
#include "graphics/graphics.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

void attrSeedCommon(ELEMENT_ATTR* attr)
{
    attr->visible = 1;
    attr->lineStyleSet = 0;
    attr->lineWidthSet = 0;
    attr->strokeColorSet = 0;
    attr->fillColorSet = 0;
    attr->visibleSet = 0;
    attr->blinkSet = 0;
    attr->textSet = 0;
}

void attrSeedStroke(ELEMENT_ATTR* attr, int style, int32_t stippleFactor, uint16_t stipplePattern, float width,
                    const float strokeColor[4])
{
    attr->lineStyle = uint8_t(style);
    attr->stippleFactor = stippleFactor;
    attr->stipplePattern = stipplePattern;
    // Widths beyond the byte's range are no line a user can want; clamp instead of wrapping.
    // A width that is no number (a damaged file) draws none.
    attr->lineWidth = int8_t(std::clamp(truncToInt(width), -128, 127));
    std::copy(strokeColor, strokeColor + 4, attr->strokeColor);
}

void attrSeedFace(ELEMENT_ATTR* attr, const float faceColor[4])
{
    attr->lineStyle = 0;
    attr->lineWidth = 0;
    std::fill(attr->strokeColor, attr->strokeColor + 3, 0.0f);
    std::copy(faceColor, faceColor + 4, attr->fillColor);
}

void boxGeometry(ELEMENT_STRUCT* element, float xmin, float ymin, float xmax, float ymax)
{
    float* b = element->bounds;
    b[0] = xmin;
    b[1] = ymin;
    b[2] = xmax;
    b[3] = ymax;
    element->width = xmax - xmin;
    element->height = ymax - ymin;
    placeCentre(element, float(xmin + double(element->width) * 0.5), float(ymin + double(element->height) * 0.5));
    element->pickShape = 0;
}

void placeCentre(ELEMENT_STRUCT* element, float x, float y)
{
    element->x = x;
    element->y = y;
    element->refX = x;
    element->refY = y;
}

void pointsBox(const float* x, const float* y, int n, float box[4])
{
    box[0] = box[2] = x[0];
    box[1] = box[3] = y[0];
    for (int i = 1; i < n; ++i)
        boxInclude(box, x[i], y[i]);
}

void boxInclude(float box[4], float x, float y)
{
    box[0] = std::min(box[0], x);
    box[1] = std::min(box[1], y);
    box[2] = std::max(box[2], x);
    box[3] = std::max(box[3], y);
}

void cornerGeometry(ELEMENT_STRUCT* element, const float cornerX[4], const float cornerY[4], float localX[4],
                    float localY[4])
{
    float box[4];
    pointsBox(cornerX, cornerY, 4, box);
    boxGeometry(element, box[0], box[1], box[2], box[3]);
    for (int i = 0; i < 4; ++i) {
        localX[i] = cornerX[i] - element->x;
        localY[i] = cornerY[i] - element->y;
    }
}

void drawCorners(unsigned int mode, const float localX[4], const float localY[4])
{
    tkBegin(mode);
    for (int i = 0; i < 4; ++i)
        tkVertex2f(localX[i], localY[i]);
    tkEnd();
}

static void setColor4(const float rgba[4])
{
    kvColor4f(rgba[0], rgba[1], rgba[2], rgba[3]);
}

void drawBevelPanel(const float outerX[4], const float outerY[4], float il, float ib, float ir, float it,
                    const float face[4], const float lit[4], const float shaded[4])
{
    const float innerX[4] = {il, il, ir, ir}, innerY[4] = {ib, it, it, ib};
    setColor4(face);
    drawCorners(GL_QUADS, innerX, innerY);
    // Band k runs along the outer side from corner k to the next and back along the inner box:
    // left, upper, right, lower.
    for (int k = 0; k < 4; ++k) {
        if (k == 0 || k == 2)
            setColor4(k == 0 ? lit : shaded);
        const int n = (k + 1) % 4;
        const float x[4] = {outerX[k], outerX[n], innerX[n], innerX[k]};
        const float y[4] = {outerY[k], outerY[n], innerY[n], innerY[k]};
        drawCorners(GL_QUADS, x, y);
    }
}

void setSelectionPen(int width)
{
    tkLineStipple(1, kDashPattern);
    tkLineWidth(width);
    kvColor4f(1, 0, 0, 1);
}

void drawSelectionLoop(const float localX[4], const float localY[4])
{
    setSelectionPen(1);
    drawCorners(GL_LINE_LOOP, localX, localY);
}

void* createKindRecord(const void* source, const void* defaults, size_t size, const char* creator)
{
    void* record = malloc(size);
    if (!record) {
        logMsg(1, "%s: out of memory\n", creator);
        return nullptr;
    }
    memcpy(record, source ? source : defaults, size);
    return record;
}

void projectToWindow(const float x[], const float y[], int n, double wx[], double wy[])
{
    GLint viewport[4];
    GLdouble model[16], projection[16];
    glGetIntegerv(GL_VIEWPORT, viewport);
    glGetDoublev(GL_MODELVIEW_MATRIX, model);
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    GLdouble wz;
    float offsetX, offsetY;
    tkGetOffset(&offsetX, &offsetY);
    for (int i = 0; i < n; ++i)
        gluProject(x[i] + offsetX, y[i] + offsetY, 0, model, projection, viewport, &wx[i], &wy[i], &wz);
}

void scissorToSpan(const float x[3], const float y[3])
{
    double wx[3], wy[3];
    projectToWindow(x, y, 3, wx, wy);
    glScissor(truncToInt(wx[0]), truncToInt(wy[0]), truncToInt(wx[1] - wx[0]), truncToInt(wy[2] - wy[0]));
    glEnable(GL_SCISSOR_TEST);
}
