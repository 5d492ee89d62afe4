// Inside the library: binding actions to variables, the value pipeline and the animation of one
// frame. Hosts reach all of this through the view's run modes.
#pragma once

#include "KorelEdit.h"

extern "C" {

// Binding, at each start: every action gets its variable's value buffer, a held copy of its
// own and the mapping through (a0, b0), (a1, b1). Variables that mouse actions write are
// marked read-write (also at load). getAB: the line through (x0, y0), (x1, y1) as
// y = a + b x; a = 0, b = 1 when x0 equals x1.
KOREL2D_API int assignVariables(ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* sources);
KOREL2D_API int assignVariablesAction(ELEMENT_STRUCT* list, DD_DATA_TYPE_STRUCT* sources);
KOREL2D_API int assignVariablesReadWrite(ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* sources);
KOREL2D_API void getAB(float* a, float* b, float x0, float y0, float x1, float y1);

// Animation, once per frame and element of a running view, inside the element's translation:
// each action's value becomes a matrix operation or a change of attr. halt non-zero keeps
// the values held when the halt began.
KOREL2D_API int doAction(ELEMENT_STRUCT* element, int halt);
// which: 0 the held copy, 1 the value buffer, 2 the second variable's; dt in filter time units.
KOREL2D_API double getActionFloatData(ACTION_STRUCT* action, int which, float dt);
// Writes v to the action's variable by its type, clamped if the action limits; marks it written.
KOREL2D_API void putFloatData(ACTION_STRUCT* action, double v);
// glTranslatef to the point cg (1..8 around the box, others: the centre) of the element, or back.
KOREL2D_API int objMove(ELEMENT_STRUCT* element, int cg, int back);
// Visibility, flagged, for the element and everything below it.
KOREL2D_API void setVisible(ELEMENT_STRUCT* element, int flag);

// Pointer input: the element of a list hit at (x, y) in view units, the topmost that has a
// pointer action (null if none); and the run of an element's pointer actions for one event.
KOREL2D_API ELEMENT_STRUCT* kriPickElementRun(float x, float y, float zoom, ELEMENT_STRUCT* list);
KOREL2D_API int doActionInput(int event, int button, ELEMENT_STRUCT* element, float x, float y);
// A line (x1, y1, x2, y2) is hit closer than `reach` to it and between its ends; one of no
// length never. Shared with the editing tool's pick.
bool pointNearSegment(const float* line, float x, float y, float reach);

// The value pipeline: fresh zeroed value buffers at each start (256 bytes for text, else 8),
// defaults written through Set, and one data cycle over all sources.
int makeValueBuffers(DD_DATA_TYPE_STRUCT* sources);
KOREL2D_API int writeDefault(DD_DATA_TYPE_STRUCT* sources);
KOREL2D_API int fillDP(DD_DATA_TYPE_STRUCT* sources);

// Graph traces, once per data cycle after fillDP: every graph of the tree, groups included,
// samples its traces' variables at its rate into their input rings; unless halt is set the
// display rings take over the new samples and a time graph's xmin follows its window. time is
// the view's clock. fillActions returns -1 for an empty tree.
KOREL2D_API int fillActions(ELEMENT_STRUCT* list, int halt, double time);
KOREL2D_API int fillGraph(ELEMENT_STRUCT* element, GRAPH_STRUCT* record, int halt, float time);

} // extern "C"
