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

// Where a kind keeps what the immediate codes (KR_EDIT_STROKE_WIDTH ...) set; a null field is
// one the kind lacks, and its code leaves the kind alone.
struct StyleFields {
    float* width = nullptr;
    int32_t* strokeOn = nullptr; // a shape's: KR_EDIT_STROKE's number, or on from a width of 1
    int32_t* lineStyle = nullptr;
    int32_t* stippleFactor = nullptr;
    uint16_t* stipplePattern = nullptr;
    int32_t* fillOn = nullptr;
    float* fill = nullptr;
    float* stroke = nullptr;
    float* shade = nullptr; // a bevel's dark side: 0.4 of the stroke colour, its alpha alike
    int32_t* antialias = nullptr;
    int32_t* fillStyle = nullptr;
    uint8_t* fillPattern = nullptr; // 128 bytes
    // A label font the kind owns, made anew after each change.
    KR_FONT* font = nullptr;
    char* fontFamily = nullptr; // 64 bytes
    int32_t* fontStyle = nullptr;
    int32_t* fontSize = nullptr;
};

// The fields of the stroked and filled shapes (rectangle, polygon, circle), named alike in each.
template <class Record> StyleFields shapeStyle(void* data)
{
    Record* r = static_cast<Record*>(data);
    StyleFields f;
    f.width = &r->strokeWidth;
    f.strokeOn = &r->strokeOn;
    f.lineStyle = &r->strokeStyle;
    f.stippleFactor = &r->stippleFactor;
    f.stipplePattern = &r->stipplePattern;
    f.fillOn = &r->fillOn;
    f.fill = r->fillColor;
    f.stroke = r->strokeColor;
    f.antialias = &r->antialias;
    f.fillStyle = &r->fillStyle;
    f.fillPattern = r->fillPattern;
    return f;
}

// The bevelled kinds (button, slider): the face is the fill, the lit edge the stroke, the dark
// edge its shade.
inline StyleFields bevelStyle(float face[4], float lit[4], float shade[4])
{
    StyleFields f;
    f.fill = face;
    f.stroke = lit;
    f.shade = shade;
    return f;
}

// Applies one immediate code to the fields a kind has.
void applyStyleCode(const StyleFields& fields, int code, const KR_EDIT_VALUE* value);

// After a change of family: a style the family has (the present one if they share a bit) and
// the family's size nearest the wanted one.
int styleOfFamily(const char* family, int style);
int nearestSize(const char* family, int style, int wanted);

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
    // Optional: where the immediate codes write.
    StyleFields (*style)(void* record) = nullptr;
    // Optional: a code of the kind's own points (arc ends, line ends, polygon points) in this
    // phase; true where it moved one, so that the geometry pass follows.
    bool (*movePointCode)(ELEMENT_STRUCT* element, int code, int phase, const KR_EDIT_VALUE* value) = nullptr;
};

inline bool isBoxEditCode(int code)
{
    return code >= KR_POS_UPPER_LEFT && code <= KR_EDIT_ROTATE;
}

// The edit protocol for one kind: codes of the box go through the phases, each phase ending
// with the geometry pass; the kind's point codes and the immediate codes act at once. The
// look is seeded after every code.
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
