// Rails: an element moved along a polyline of its view. The polyline is found by name once per
// start and measured then, so a frame only walks its points to turn a fraction into a position.
#include "KorelEdit.h"

#include <cmath>
#include <cstring>

namespace {

POLY_STRUCT* polylineRecord(ELEMENT_STRUCT* element)
{
    return element && element->type == KR_POLYLINE ? static_cast<POLY_STRUCT*>(element->data) : nullptr;
}

// Names come from files and editors: compare no further than the field reaches.
bool sameName(const char* a, const char* b)
{
    return strncmp(a, b, sizeof ELEMENT_STRUCT::name) == 0;
}

void bindRails(ELEMENT_STRUCT* list)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP)
            bindRails(e->child);
        for (ACTION_STRUCT* action = e->actions; action; action = action->next) {
            action->movePoly = nullptr;
            if (action->type != KR_ACTION_MOVE_ALONG_POLYLINE)
                continue;
            // Searched from the list the moved element stands in, never from the levels above.
            action->movePoly = getPolyByName(list, action->translatePoly);
            if (!action->movePoly)
                logMsg(2, "Polygon %.64s not found !\n", action->translatePoly);
        }
    }
}

} // namespace

int assignMovePoly(ELEMENT_STRUCT* list)
{
    bindRails(list);
    calcPolyLength(list);
    return 0;
}

ELEMENT_STRUCT* getPolyByName(ELEMENT_STRUCT* list, const char* name)
{
    if (!name)
        return nullptr;
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP) {
            if (ELEMENT_STRUCT* hit = getPolyByName(e->child, name))
                return hit;
        } else if (e->type == KR_POLYLINE && sameName(e->name, name)) {
            return e;
        }
    }
    return nullptr;
}

// Steps in single precision, each root in double, as the records keep their points.
int calcPolyLength(ELEMENT_STRUCT* list)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP)
            calcPolyLength(e->child);
        POLY_STRUCT* p = polylineRecord(e);
        if (!p)
            continue;
        float sum = 0;
        for (COORD_STRUCT *c = p->coords, *before = nullptr; c; before = c, c = c->next) {
            if (before) {
                const float dx = c->x - before->x, dy = c->y - before->y;
                sum = float(sum + std::sqrt(double(dx * dx + dy * dy)));
            }
            c->distance = sum;
        }
        p->length = sum;
    }
    return 0;
}

int getMovePolyCoord(ELEMENT_STRUCT* element, float* x, float* y, double fraction)
{
    const POLY_STRUCT* p = polylineRecord(element);
    if (!p || !x || !y)
        return -1;
    fraction = fraction < 0.0 ? 0.0 : fraction > 1.0 ? 1.0 : fraction;
    const double target = p->length * fraction;
    // Every segment that holds the target answers and the last one stands: a point shared by two
    // segments gives the same position from both, and a segment of no length gives its end.
    for (const COORD_STRUCT* a = p->coords; a && a->next; a = a->next) {
        const COORD_STRUCT* b = a->next;
        if (!(a->distance <= target && target <= b->distance))
            continue;
        const double span = double(b->distance) - a->distance;
        double dx = double(b->x) - a->x, dy = double(b->y) - a->y;
        if (span != 0) {
            const double t = (target - a->distance) / span;
            dx *= t, dy *= t;
        }
        *x = float(a->x + dx), *y = float(a->y + dy);
    }
    return 0;
}
