// Inside the view core: the walk of one frame and the clip data of groups, shared by the draw
// entries and the picture plane.
#pragma once

#include "KorelEdit.h"

extern "C" {

// The walk of one frame over a list; the entries call it with parentAttr null, clip 1, depth 0.
KOREL2D_API int drawUserElements(ELEMENT_STRUCT* list, ELEMENT_ATTR* parentAttr, int run, int halt, int clip,
                                 DRAW_SETTINGS* settings, int depth);
// Recomputes the clip data of every group of a list for a page at posX, posY (pixels).
KOREL2D_API int kriFindScissor(ELEMENT_STRUCT* list, float posX, float posY, float refX, float refY, float zoom);
KOREL2D_API void kriDraw2screenpix(float* px, float* py, float posX, float posY, float refX, float refY, float zoom,
                                   float x, float y);

} // extern "C"
