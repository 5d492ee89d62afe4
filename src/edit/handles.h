// What the kinds share for their handles and their edits: building the handle list in the
// geometry pass, and running the phased edit over the points each kind keeps.
#pragma once

#include "KorelEdit.h"

#include <cstddef>

// Half size of the box handles, and of the point handles of polygons and arcs.
constexpr float kHandleSize = 4.0f;
constexpr float kPointHandleSize = 2.0f;

// Handle ids of a box in the orders the kinds list them: 1 to 8 clockwise from the upper left.
constexpr int kBoxThenCentre[] = {1, 2, 3, 4, 5, 6, 7, 8, KR_HANDLE_CENTRE};
constexpr int kCentreThenBox[] = {KR_HANDLE_CENTRE, 1, 2, 3, 4, 5, 6, 7, 8};
constexpr int kCentreOnly[] = {KR_HANDLE_CENTRE};
// Circles: centre, corners, then the middles of the sides.
constexpr int kCentreCornersSides[] = {KR_HANDLE_CENTRE, 1, 3, 5, 7, 2, 4, 6, 8};

// Frees every handle of the element.
void deleteStickies(ELEMENT_STRUCT* element);

// Builds an element's handle list anew, appending at its tail in constant time, as a polygon
// may have a handle for each of very many points. Exhausted memory skips a handle
// (createSticky has logged it).
class StickyList {
public:
    explicit StickyList(ELEMENT_STRUCT* element);
    void add(int id, int kind, float x, float y, float w = kHandleSize, float h = kHandleSize);
    // Box handles (xmin, ymin, xmax, ymax) by id in the given order; the middles of the sides and
    // the centre handle stand on the lines through (cx, cy). An id equal to `anchor` is drawn as
    // the anchor handle.
    void box(const float box[4], float cx, float cy, const int* ids, size_t n, int anchor = -1);
    template <size_t N> void box(const float b[4], float cx, float cy, const int (&ids)[N], int anchor = -1)
    {
        box(b, cx, cy, ids, N, anchor);
    }
    // The frame of the element's bounds.
    void frame();

private:
    ELEMENT_STRUCT* element_;
    STICKY_STRUCT* tail_ = nullptr;
};

// The usual handles of a box-shaped kind: 1 to 8 and the centre on its bounds, then the frame.
void addBoundsStickies(ELEMENT_STRUCT* element);

// How the phased edit reaches one kind's record.
struct KindEdit {
    size_t recordSize;
    // Runs the kind's points from the saved record through resizeMoveElement into the record.
    void (*apply)(ELEMENT_STRUCT* element, const void* saved, int code, const KR_EDIT_VALUE* value);
    // Seeds the look; null for a kind without one.
    int (*setAttr)(ELEMENT_STRUCT* element);
    // Optional: makes the saved copy own what the record points to (a polygon's points, which
    // releaseEditData frees again).
    void (*ownSaved)(void* saved) = nullptr;
    // Optional: runs at the end of an edit, before the geometry pass.
    void (*finish)(ELEMENT_STRUCT* element) = nullptr;
};

inline bool isBoxEditCode(int code)
{
    return code >= KR_POS_UPPER_LEFT && code <= KR_EDIT_ROTATE;
}

// The edit protocol for one kind: codes of the box go through the phases, each phase ending
// with the geometry pass; the look is seeded after every code.
int runKindEdit(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value,
                const KindEdit& kind);
// Frees the saved record of an edit that was begun and not ended.
void releaseEditData(ELEMENT_STRUCT* element);

// One point from its saved place by the code and the pointer, written into x, y.
inline void movePoint(ELEMENT_STRUCT* element, int code, const KR_EDIT_VALUE* value, float* x, float* y, float savedX,
                      float savedY)
{
    resizeMoveElement(element, code, x, y, value->x, value->y, savedX, savedY);
}
// n points from saved arrays into the record's arrays.
void movePoints(ELEMENT_STRUCT* element, int code, const KR_EDIT_VALUE* value, float* x, float* y,
                const float* savedX, const float* savedY, int n);
// The edit of the four-cornered kinds, whose records start with cornerX[4], cornerY[4].
template <class Record> void applyCorners(ELEMENT_STRUCT* element, const void* saved, int code,
                                          const KR_EDIT_VALUE* value)
{
    Record* r = static_cast<Record*>(element->data);
    const Record* s = static_cast<const Record*>(saved);
    movePoints(element, code, value, r->cornerX, r->cornerY, s->cornerX, s->cornerY, 4);
}
// The edit of a shape drawn through a matrix about its centre (circles, texts): the centre moves
// by the code; a turn turns the present matrix, any other code scales the saved matrix's rows
// by how the saved box (xmin, ymin, xmax, ymax about the centre) stretched.
void applyMatrixShape(ELEMENT_STRUCT* element, int code, const KR_EDIT_VALUE* value, float* x, float* y,
                      float matrix[4], float savedX, float savedY, const float savedMatrix[4],
                      const float savedBox[4]);
