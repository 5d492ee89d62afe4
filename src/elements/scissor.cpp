// Scissor: marks the clip area of its group. It has no look in a running view; the
// editing tool sees it as an orange frame.
#include "KorelEdit.h"
#include "edit/handles.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

SCISSOR_STRUCT* createScissor(const SCISSOR_STRUCT* source)
{
    return createRecordOf(source, SCISSOR_STRUCT{}, "createScissor");
}

// The run-time look stays all zero (hidden): a scissor is never seeded.
int scissorSetPickSticky(ELEMENT_STRUCT* element)
{
    SCISSOR_STRUCT* s = static_cast<SCISSOR_STRUCT*>(element->data);
    cornerGeometry(element, s->cornerX, s->cornerY, s->localX, s->localY);
    addBoundsStickies(element);
    return 0;
}

int editScissor(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    static const KindEdit kind{sizeof(SCISSOR_STRUCT), applyCorners<SCISSOR_STRUCT>, nullptr};
    return runKindEdit(element, stickies, code, phase, value, kind);
}

int drawScissor(SCISSOR_STRUCT* s, ELEMENT_ATTR*, int selected)
{
    kvColor4f(1, 0.5f, 0, 1);
    tkLineStipple(1, 0xFFFF);
    tkLineWidth(1);
    drawCorners(GL_LINE_LOOP, s->localX, s->localY);
    tkLineStipple(1, kDashPattern);
    tkLineWidth(3);
    drawCorners(GL_LINE_LOOP, s->localX, s->localY);
    if (selected)
        drawSelectionLoop(s->localX, s->localY);
    return 0;
}
