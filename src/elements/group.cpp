// Group: holds children whose x, y are kept relative to the group's centre, so that
// moving the group moves them. It has no look of its own but the editing outline.
#include "elements/kindCommon.h"
#include "graphics/glState.h"

#include <GL/gl.h>

#include <algorithm>

int groupSetAttr(ELEMENT_STRUCT* element)
{
    attrSeedCommon(&element->attr);
    element->attr.strokeColor[3] = 1.0f;
    element->attr.fillColor[3] = 1.0f;
    return 0;
}

int groupSetPickSticky(ELEMENT_STRUCT* element)
{
    // The box is the union of the children's boxes as they stand on entry.
    float box[4] = {0, 0, 0, 0};
    if (const ELEMENT_STRUCT* first = element->child) {
        std::copy(first->bounds, first->bounds + 4, box);
        for (const ELEMENT_STRUCT* c = first->next; c; c = c->next) {
            box[0] = std::min(box[0], c->bounds[0]);
            box[1] = std::min(box[1], c->bounds[1]);
            box[2] = std::max(box[2], c->bounds[2]);
            box[3] = std::max(box[3], c->bounds[3]);
        }
    }
    element->width = box[2] - box[0];
    element->height = box[3] - box[1];
    element->x = float(box[0] + double(element->width) * 0.5);
    element->y = float(box[1] + double(element->height) * 0.5);
    element->refX = element->x;
    element->refY = element->y;
    std::copy(box, box + 4, element->bounds);
    // A group thinner than a pixel can't be hit by its box: pick it as the line it is.
    element->pickShape = 0;
    if (element->width < 1 || element->height < 1) {
        element->pickShape = 1;
        std::copy(box, box + 4, element->pickLine);
    }
    for (ELEMENT_STRUCT* c = element->child; c; c = c->next) {
        if (c->setPickSticky)
            c->setPickSticky(c);
        c->x -= element->x;
        c->y -= element->y;
    }
    return groupSetAttr(element);
}

int drawGroup(ELEMENT_STRUCT* element, ELEMENT_ATTR* attr)
{
    if (!element->selected || attr->live)
        return 0;
    tkLineStipple(1, 0xF0F0);
    tkLineWidth(2);
    tkAliasBlend(0, 1.0f);
    kvColor4f(1, 0, 0, 1);
    const float halfW = element->width * 0.5f, halfH = element->height * 0.5f;
    tkBegin(GL_LINE_LOOP);
    tkVertex2f(-halfW, -halfH);
    tkVertex2f(-halfW, halfH);
    tkVertex2f(halfW, halfH);
    tkVertex2f(halfW, -halfH);
    tkEnd();
    return 0;
}
