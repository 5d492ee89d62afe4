#include "elements/kindCommon.h"
#include "graphics/glState.h"

#include <GL/gl.h>

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
    attr->lineWidth = int8_t(std::clamp(width, -128.0f, 127.0f));
    std::copy(strokeColor, strokeColor + 4, attr->strokeColor);
}

void cornerGeometry(ELEMENT_STRUCT* element, const float cornerX[4], const float cornerY[4], float localX[4],
                    float localY[4])
{
    float* b = element->bounds;
    b[0] = *std::min_element(cornerX, cornerX + 4);
    b[1] = *std::min_element(cornerY, cornerY + 4);
    b[2] = *std::max_element(cornerX, cornerX + 4);
    b[3] = *std::max_element(cornerY, cornerY + 4);
    element->width = b[2] - b[0];
    element->height = b[3] - b[1];
    element->x = float(b[0] + element->width * 0.5);
    element->y = float(b[1] + element->height * 0.5);
    element->refX = element->x;
    element->refY = element->y;
    element->pickShape = 0;
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

void drawSelectionLoop(const float localX[4], const float localY[4])
{
    tkLineStipple(1, 0xF0F0);
    tkLineWidth(1);
    kvColor4f(1, 0, 0, 1);
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
