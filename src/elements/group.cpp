// Group: holds children whose x, y are kept relative to the group's centre, so that
// moving the group moves them. It has no look of its own but the editing outline.
#include "KorelEdit.h"
#include "edit/handles.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

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
            boxInclude(box, c->bounds[0], c->bounds[1]);
            boxInclude(box, c->bounds[2], c->bounds[3]);
        }
    }
    boxGeometry(element, box[0], box[1], box[2], box[3]);
    // A group thinner than a pixel can't be hit by its box: pick it as the line it is.
    if (element->width < 1 || element->height < 1) {
        element->pickShape = 1;
        std::copy(box, box + 4, element->pickLine);
    }
    StickyList handles(element);
    handles.box(element->bounds, element->refX, element->refY, kCentreThenBox);
    handles.frame();
    for (ELEMENT_STRUCT* c = element->child; c; c = c->next) {
        c->parent = element;
        if (c->setPickSticky)
            c->setPickSticky(c);
        c->x -= element->x;
        c->y -= element->y;
    }
    return groupSetAttr(element);
}

// The group's handles go down unchanged, so that every child, nested groups included,
// scales about the group's anchor rather than its own; the box then follows the children.
int editGroup(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    for (ELEMENT_STRUCT* c = element->child; c; c = c->next)
        if (c->edit)
            c->edit(c, stickies, code, phase, value);
    groupSetPickSticky(element);
    return 0;
}

int drawGroup(ELEMENT_STRUCT* element, ELEMENT_ATTR* attr)
{
    if (!element->selected || attr->live)
        return 0;
    setSelectionPen(2);
    tkAliasBlend(0, 1.0f);
    const float halfW = element->width * 0.5f, halfH = element->height * 0.5f;
    const float cornerX[4] = {-halfW, -halfW, halfW, halfW}, cornerY[4] = {-halfH, halfH, halfH, -halfH};
    drawCorners(GL_LINE_LOOP, cornerX, cornerY);
    return 0;
}
