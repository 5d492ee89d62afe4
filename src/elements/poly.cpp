// Polyline (kind 2) and closed polygon (kind 13): a list of points, outlined and filled.
#include "KorelEdit.h"
#include "base/base.h"
#include "core/linkedList.h"
#include "edit/handles.h"
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

static POLY_STRUCT polyDefaults(int closed)
{
    POLY_STRUCT p = {};
    p.closed = closed;
    p.strokeOn = 1;
    p.strokeWidth = 3.0f;
    setColor(p.strokeColor, 1, 1, 1, 1);
    setColor(p.fillColor, 0, 1, 0, 1);
    p.fillLevel = 1.0f;
    p.antialias = closed ? 0 : 1;
    p.stippleFactor = 1;
    p.stipplePattern = 0xFFFF;
    return p;
}

POLY_STRUCT* createPoly(const POLY_STRUCT* source)
{
    return createRecordOf(source, polyDefaults(0), "createPoly");
}

POLY_STRUCT* createCPoly(const POLY_STRUCT* source)
{
    return createRecordOf(source, polyDefaults(1), "createPoly");
}

void polyFreeData(void* data)
{
    POLY_STRUCT* p = static_cast<POLY_STRUCT*>(data);
    while (p->coords)
        delCoord(&p->coords, p->coords);
    while (p->fillCoords)
        delCoord(&p->fillCoords, p->fillCoords);
    // A list lives in its context: without a current one there is nothing to give it back to.
    if (p->displayList && getGlContext())
        glDeleteLists(p->displayList, 1);
    p->displayList = 0;
}

int polySetAttr(ELEMENT_STRUCT* element)
{
    const POLY_STRUCT* p = static_cast<POLY_STRUCT*>(element->data);
    attrSeedCommon(&element->attr);
    attrSeedStroke(&element->attr, p->strokeStyle, p->stippleFactor, p->stipplePattern, p->strokeWidth,
                   p->strokeColor);
    std::copy(p->fillColor, p->fillColor + 4, element->attr.fillColor);
    element->attr.text[0] = 0;
    return 0;
}

// Vertices are kept relative to the centre, as the outline and the fill draw them. A level
// cut is dropped: the polygon shows whole until the next level change rebuilds it.
int polySetPickSticky(ELEMENT_STRUCT* element)
{
    POLY_STRUCT* p = static_cast<POLY_STRUCT*>(element->data);
    float box[4] = {0, 0, 0, 0};
    if (p->coords) {
        box[0] = box[2] = p->coords->x;
        box[1] = box[3] = p->coords->y;
        for (const COORD_STRUCT* c = p->coords->next; c; c = c->next)
            boxInclude(box, c->x, c->y);
    }
    boxGeometry(element, box[0], box[1], box[2], box[3]);
    float local[4] = {0, 0, 0, 0};
    for (COORD_STRUCT* c = p->coords; c; c = c->next) {
        c->vertex[0] = c->x - element->x;
        c->vertex[1] = c->y - element->y;
        c->vertex[2] = 0;
        if (c == p->coords) {
            local[0] = local[2] = float(c->vertex[0]);
            local[1] = local[3] = float(c->vertex[1]);
        }
        boxInclude(local, float(c->vertex[0]), float(c->vertex[1]));
    }
    std::copy(local, local + 4, p->localBounds);
    while (p->fillCoords)
        delCoord(&p->fillCoords, p->fillCoords);
    polyMakeList(p, 0);
    StickyList handles(element);
    // Ids come from files: wrap rather than overflow.
    for (const COORD_STRUCT* c = p->coords; c; c = c->next) {
        const int id = int(uint32_t(KR_HANDLE_POINT) + uint32_t(c->id));
        handles.add(id, KR_STICKY_SQUARE, c->x, c->y, kPointHandleSize, kPointHandleSize);
    }
    handles.box(element->bounds, element->refX, element->refY, kBoxThenCentre);
    return polySetAttr(element);
}

// The saved copy gets points of its own; the level cut and the display list stay the record's.
static void savePolyPoints(void* saved)
{
    POLY_STRUCT* copy = static_cast<POLY_STRUCT*>(saved);
    const COORD_STRUCT* points = copy->coords;
    copy->coords = nullptr;
    copy->fillCoords = nullptr;
    copy->displayList = 0;
    for (const COORD_STRUCT* c = points; c; c = c->next)
        if (COORD_STRUCT* twin = createCoord()) {
            twin->id = c->id;
            twin->x = c->x;
            twin->y = c->y;
            twin->distance = c->distance;
            appendCoord(&copy->coords, twin);
        }
}

// Points pair with their saved twins by position in the list.
static void applyPoly(ELEMENT_STRUCT* element, const void* saved, int code, const KR_EDIT_VALUE* value)
{
    COORD_STRUCT* c = static_cast<POLY_STRUCT*>(element->data)->coords;
    const COORD_STRUCT* s = static_cast<const POLY_STRUCT*>(saved)->coords;
    for (; c && s; c = c->next, s = s->next)
        movePoint(element, code, value, &c->x, &c->y, s->x, s->y);
}

// A point's handle moves every point of its id, in any phase: a reader may have given several
// points one id, and they stay together.
static bool movePolyPoint(ELEMENT_STRUCT* element, int code, int, const KR_EDIT_VALUE* value)
{
    if (code < KR_HANDLE_POINT)
        return false;
    // Handle ids wrap as the geometry pass made them.
    const uint32_t id = uint32_t(code) - uint32_t(KR_HANDLE_POINT);
    for (COORD_STRUCT* c = static_cast<POLY_STRUCT*>(element->data)->coords; c; c = c->next)
        if (uint32_t(c->id) == id) {
            c->x = value->x;
            c->y = value->y;
        }
    return true;
}

int editPoly(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    static const KindEdit kind{sizeof(POLY_STRUCT), applyPoly, polySetAttr, savePolyPoints, nullptr,
                               shapeStyle<POLY_STRUCT>, movePolyPoint};
    return runKindEdit(element, stickies, code, phase, value, kind);
}

// ---------------------------------------------------------------- fill

void errorCB(unsigned int code)
{
    (void)gluErrorString(code);
}

void beginCB(unsigned int mode)
{
    tkBegin(mode);
}

void endCB(void)
{
    tkEnd();
}

void vertexCB(void* vertex)
{
    const double* v = static_cast<const double*>(vertex);
    glVertex3f(float(v[0]), float(v[1]), float(v[2]));
}

// The new vertex belongs to the caller's tessellation; the caller frees it with free().
void combineCB(double coords[3], void* data[4], float weights[4], void** out)
{
    (void)data;
    (void)weights;
    double* vertex = static_cast<double*>(malloc(3 * sizeof(double)));
    if (vertex)
        std::copy(coords, coords + 3, vertex);
    *out = vertex;
}

namespace {

// GLU's tessellator makes the fill, but its time isn't bounded by the number of points alone:
// its sweep keeps the edges across the sweep line in a list searched end to end and finds every
// crossing of a self-crossing outline before giving up on the fill (2,000 points crossing
// everywhere take 6 s), and a curve that floats have flattened into near-collinear steps makes
// it work over and over (31,000 points of one curve took 5 s). So the fill takes at most this
// many points of an outline, every n-th of a longer one: where an outline is that dense, a pixel
// shows no difference, and the outline itself is drawn whole...
constexpr size_t kMaxFilledPoints = 4096;
// ...and is left empty when an estimate of the sweep's work passes this, some hundredths of a
// second; real outlines stay far below it, a vertical line meeting them a few times.
constexpr double kMaxTessellationWork = 2e7;

// The points GLU gets: every stride-th one but NaN, which breaks its sweep (it clamps huge
// coordinates itself).
std::vector<double*> fillPoints(const COORD_STRUCT* coords)
{
    std::vector<double*> all;
    for (const COORD_STRUCT* c = coords; c; c = c->next)
        if (!std::isnan(c->vertex[0]) && !std::isnan(c->vertex[1]))
            all.push_back(const_cast<double*>(c->vertex));
    if (all.size() <= kMaxFilledPoints)
        return all;
    const size_t stride = (all.size() + kMaxFilledPoints - 1) / kMaxFilledPoints;
    std::vector<double*> kept;
    for (size_t i = 0; i < all.size(); i += stride)
        kept.push_back(all[i]);
    return kept;
}

// (points + the sum over the points of the edges whose x range holds theirs) times the most
// edges at any point, from sorted edge ends.
double tessellationWork(const std::vector<double*>& points)
{
    const size_t n = points.size();
    std::vector<double> lows(n), highs(n);
    for (size_t i = 0; i < n; ++i) {
        const double x = points[i][0], next = points[(i + 1) % n][0];
        lows[i] = std::min(x, next);
        highs[i] = std::max(x, next);
    }
    std::sort(lows.begin(), lows.end());
    std::sort(highs.begin(), highs.end());
    double sum = 0, most = 0;
    for (const double* point : points) {
        const double x = point[0];
        const double spanning = double(std::upper_bound(lows.begin(), lows.end(), x) - lows.begin()) -
                                double(std::lower_bound(highs.begin(), highs.end(), x) - highs.begin());
        sum += spanning;
        most = std::max(most, spanning);
    }
    return (double(n) + sum) * most;
}

void tessellate(const std::vector<double*>& points)
{
    GLUtesselator* tess = gluNewTess();
    if (!tess)
        return;
    using Callback = void (*)();
    gluTessCallback(tess, GLU_TESS_VERTEX, reinterpret_cast<Callback>(&glVertex3dv));
    gluTessCallback(tess, GLU_TESS_BEGIN, reinterpret_cast<Callback>(&tkBegin));
    gluTessCallback(tess, GLU_TESS_END, reinterpret_cast<Callback>(&tkEnd));
    gluTessCallback(tess, GLU_TESS_ERROR, reinterpret_cast<Callback>(&errorCB));
    gluBeginPolygon(tess);
    // GLU keeps pointers to the points until gluEndPolygon; the list holds its own copy after.
    for (double* vertex : points)
        gluTessVertex(tess, vertex, vertex);
    gluEndPolygon(tess);
    gluDeleteTess(tess);
}

} // namespace

// The fill is tessellated once into a display list and replayed each frame. No combine
// callback: a self-crossing outline fills only as far as GLU gets without new vertices,
// which for most such shapes is nothing. An outline too tangled to tessellate in good time
// gets an empty list, so a draw doesn't try again.
int polyMakeList(POLY_STRUCT* record, int useFill)
{
    if (!getGlContext()) {
        // The old name may belong to a context that is gone; forget it, the next draw retries.
        logMsg(2, "Warning polyMakeList: no valid openGL context !\n");
        record->displayList = 0;
        return -1;
    }
    if (record->displayList)
        glDeleteLists(record->displayList, 1);
    const COORD_STRUCT* source = useFill && record->fillCoords ? record->fillCoords : record->coords;
    record->displayList = glGenLists(1);
    glNewList(record->displayList, GL_COMPILE);
    const std::vector<double*> points = fillPoints(source);
    if (tessellationWork(points) <= kMaxTessellationWork)
        tessellate(points);
    else
        logMsg(2, "Warning polyMakeList: outline of %zu points too tangled to fill\n", points.size());
    glEndList();
    return 0;
}

// ---------------------------------------------------------------- level fill

namespace {

enum Axis { kAxisX = 0, kAxisY = 1 };

// Keeps the part of the polygon on one side of a line across `axis` at `level` of its
// extent, in one pass over the closed ring: inside vertices stay, and an outside vertex is
// replaced by where its edges to inside neighbours meet the line. fromLow grows the kept
// part from the lower bound (left or bottom), else from the upper bound. A concave
// polygon may give a ring that touches itself along the line; the tessellator copes.
void clipFill(ELEMENT_STRUCT* element, Axis axis, bool fromLow)
{
    POLY_STRUCT* p = static_cast<POLY_STRUCT*>(element->data);
    while (p->fillCoords)
        delCoord(&p->fillCoords, p->fillCoords);
    if (!p->coords)
        return;

    const float lo = p->localBounds[axis], hi = p->localBounds[axis + 2];
    const float limit = fromLow ? lo + (hi - lo) * p->fillLevel : hi - (hi - lo) * p->fillLevel;
    auto inside = [&](const COORD_STRUCT* c) { return fromLow ? limit >= c->vertex[axis] : c->vertex[axis] >= limit; };
    // The limit line as two points; only its direction and position matter.
    double lx1 = 1.0, ly1 = limit, lx2 = -1.0, ly2 = limit;
    if (axis == kAxisX) {
        lx1 = lx2 = limit;
        ly1 = 1.0;
        ly2 = -1.0;
    }

    COORD_STRUCT* last = p->coords;
    while (last->next)
        last = last->next;
    TailAppender<COORD_STRUCT> fill(&p->fillCoords);
    auto append = [&](const COORD_STRUCT* from, double x, double y) {
        COORD_STRUCT* c = createCoord();
        if (!c)
            return;
        c->x = float(element->x + x);
        c->y = float(element->y + y);
        c->vertex[0] = x;
        c->vertex[1] = y;
        c->vertex[2] = from->vertex[2];
        fill.add(c);
    };
    auto appendCrossing = [&](const COORD_STRUCT* v, const COORD_STRUCT* neighbour) {
        // The two points lie on both sides of the line, so the lines always meet.
        double x = v->vertex[0], y = v->vertex[1];
        KLineCross2(&x, &y, v->vertex[0], v->vertex[1], neighbour->vertex[0], neighbour->vertex[1], lx1, ly1, lx2,
                    ly2);
        append(v, x, y);
    };

    for (const COORD_STRUCT* v = p->coords; v; v = v->next) {
        if (inside(v)) {
            append(v, v->vertex[0], v->vertex[1]);
            continue;
        }
        const COORD_STRUCT* before = v->prev ? v->prev : last;
        const COORD_STRUCT* after = v->next ? v->next : p->coords;
        if (inside(before))
            appendCrossing(v, before);
        if (inside(after))
            appendCrossing(v, after);
    }
}

} // namespace

int polyCreateFillCoordRight(ELEMENT_STRUCT* element)
{
    clipFill(element, kAxisX, true);
    return 0;
}

int polyCreateFillCoordLeft(ELEMENT_STRUCT* element)
{
    clipFill(element, kAxisX, false);
    return 0;
}

int polyCreateFillCoordUp(ELEMENT_STRUCT* element)
{
    clipFill(element, kAxisY, true);
    return 0;
}

int polyCreateFillCoordDown(ELEMENT_STRUCT* element)
{
    clipFill(element, kAxisY, false);
    return 0;
}

// ---------------------------------------------------------------- drawing and picking

namespace {

// The outline is always the whole polygon, whatever the level of the fill.
void outline(const POLY_STRUCT* p)
{
    tkBegin(p->closed ? GL_LINE_LOOP : GL_LINE_STRIP);
    for (const COORD_STRUCT* c = p->coords; c; c = c->next)
        glVertex2f(float(c->vertex[0]), float(c->vertex[1]));
    tkEnd();
}

} // namespace

int drawPoly(POLY_STRUCT* record, ELEMENT_ATTR* attr, int selected)
{
    tkAliasBlend(record->antialias, attr->fillColor[3]);
    // A view loaded without a context gets its fill here, at its first draw.
    if (!record->displayList)
        polyMakeList(record, 0);
    if (record->fillOn) {
        kvColor4f(attr->fillColor[0], attr->fillColor[1], attr->fillColor[2], attr->fillColor[3]);
        setStipple(record->fillStyle, record->fillPattern);
        if (record->displayList)
            glCallList(record->displayList);
        setStipple(0, nullptr);
    }
    tkAliasBlend(record->antialias, attr->strokeColor[3]);
    if (record->strokeOn) {
        tkLineStipple(attr->stippleFactor, attr->stipplePattern);
        tkLineWidth(attr->lineWidth);
        kvColor4f(attr->strokeColor[0], attr->strokeColor[1], attr->strokeColor[2], attr->strokeColor[3]);
        outline(record);
    }
    if (selected && !attr->live) {
        setSelectionPen(1);
        outline(record);
    }
    return 0;
}

// Even-odd rule with a ray to the right; an open polyline is picked as if it were closed.
int pickPoly(ELEMENT_STRUCT* element, float x, float y)
{
    const POLY_STRUCT* p = static_cast<POLY_STRUCT*>(element->data);
    int crossings = 0;
    for (const COORD_STRUCT* c = p->coords; c; c = c->next) {
        const COORD_STRUCT* n = c->next ? c->next : p->coords;
        crossings += lineCross(x, y, x + 1000000.0f, y, c->x, c->y, n->x, n->y);
    }
    return crossings & 1;
}

int resetAllPoly(ELEMENT_STRUCT* list)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP)
            resetAllPoly(e->child);
        else if (e->type == KR_POLYLINE)
            static_cast<POLY_STRUCT*>(e->data)->fillLevel = -1.0f;
    }
    return 0;
}
