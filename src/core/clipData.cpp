// Clip data of groups: where each group's scissor child lies, in the group's own
// coordinates for the draw pass and in screen pixels for the host.
#include "KorelEdit.h"
#include "base/truncate.h"
#include "core/core.h"

#include <algorithm>
#include <cmath>

void kriDraw2screenpix(float* px, float* py, float posX, float posY, float refX, float refY, float zoom, float x,
                       float y)
{
    *px = (x - refX) * zoom + posX;
    *py = (y - refY) * zoom + posY;
}

static void takeScissor(ELEMENT_STRUCT* group, const ELEMENT_STRUCT* scissor, float posX, float posY, float refX,
                        float refY, float zoom)
{
    const SCISSOR_STRUCT* s = static_cast<const SCISSOR_STRUCT*>(scissor->data);
    float px[4], py[4];
    for (int i = 0; i < 4; ++i)
        kriDraw2screenpix(&px[i], &py[i], posX, posY, refX, refY, zoom, s->cornerX[i], s->cornerY[i]);
    group->hasScissor = 1;
    group->scissorX = truncToInt(std::min(px[0], px[2]));
    group->scissorY = truncToInt(std::min(py[0], py[1]));
    group->scissorWidth = truncToInt(std::fabs(px[0] - px[2]));
    group->scissorHeight = truncToInt(std::fabs(py[0] - py[1]));
    const double x = scissor->x, y = scissor->y, halfW = scissor->width / 2.0, halfH = scissor->height / 2.0;
    const double cornerX[4] = {x - halfW, x + halfW, x + halfW, x - halfW};
    const double cornerY[4] = {y - halfH, y - halfH, y + halfH, y + halfH};
    for (int i = 0; i < 4; ++i) {
        group->scissorCornerX[i] = float(cornerX[i]);
        group->scissorCornerY[i] = float(cornerY[i]);
    }
}

int kriFindScissor(ELEMENT_STRUCT* list, float posX, float posY, float refX, float refY, float zoom)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        e->hasScissor = 0;
        if (e->type != KR_GROUP)
            continue;
        // With several scissor children the last one stands.
        for (ELEMENT_STRUCT* c = e->child; c; c = c->next)
            if (c->type == KR_SCISSOR && c->data)
                takeScissor(e, c, posX, posY, refX, refY, zoom);
        kriFindScissor(e->child, posX, posY, refX, refY, zoom);
    }
    return 0;
}
