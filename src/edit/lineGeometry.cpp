// Crossings of two segments, for picking, for cutting polygons at a level and for the editor.
#include "KorelEdit.h"

namespace {

// The crossing of the infinite lines through (x1, y1)-(x2, y2) and (x3, y3)-(x4, y4):
// at x1 + u (x2 - x1) on the first and x3 + t (x4 - x3) on the second. False for parallel
// lines and for a first segment of zero length.
template <class Real>
bool crossing(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3, Real x4, Real y4, Real* t, Real* u)
{
    const Real d1x = x2 - x1, d1y = y2 - y1;
    const Real d2x = x4 - x3, d2y = y4 - y3;
    if (d1x != 0) {
        const Real den = d1y * d2x - d1x * d2y;
        if (den == 0)
            return false;
        *t = (d1x * y3 - y1 * d1x - d1y * x3 + x1 * d1y) / den;
        *u = (d2x * *t + x3 - x1) / d1x;
    } else {
        // A vertical first segment: solve along y, so that u has no zero divisor.
        const Real den = d1x * d2y - d1y * d2x;
        if (den == 0)
            return false;
        *t = (d1y * x3 - x1 * d1y - d1x * y3 + y1 * d1x) / den;
        *u = (d2y * *t + y3 - y1) / d1y;
    }
    return true;
}

template <class Real> bool within(Real t, Real u)
{
    return t >= 0 && t <= 1 && u >= 0 && u <= 1;
}

} // namespace

// In float on purpose: picking works on float view coordinates, as the files store them.
int lineCross(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4)
{
    float t, u;
    return crossing(x1, y1, x2, y2, x3, y3, x4, y4, &t, &u) && within(t, u);
}

// The point is written even when the segments fall short of each other: the level cut
// gives its limit line as two points and wants the crossing of the whole lines.
int KLineCross2(double* ox, double* oy, double x1, double y1, double x2, double y2, double x3, double y3, double x4,
                double y4)
{
    double t, u;
    if (!crossing(x1, y1, x2, y2, x3, y3, x4, y4, &t, &u))
        return 0;
    *ox = x1 + (x2 - x1) * u;
    *oy = y1 + (y2 - y1) * u;
    return within(t, u);
}
