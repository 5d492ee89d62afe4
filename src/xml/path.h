// Outlines of the "path" element: the compact text of SVG path data, its command letters and
// numbers, turned into lists of points at load. Lines stay as they are; curves and arcs are
// flattened at once, so the element only ever holds points.
#pragma once

#include "base/planeMath.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

using PathPoints = std::vector<Vector2<double>>;

class Path {
public:
    // A curve takes at most this many steps, however long its chord.
    static constexpr int kMaxCurveSteps = 100000;
    // One text yields at most this many points in all, more than an outline drawn by hand has:
    // a few bytes of curve text may ask for kMaxCurveSteps points, and a text is as long as its file.
    static constexpr size_t kMaxPoints = size_t(1) << 17;

    Path();

    // True if the token is one of the command letters, as a whole.
    bool isCommand(const std::string& token) const;

    // One list per sub-path, in the order of the text. The tokens and the construction of the
    // curves are printed on standard output, for the author of a view file.
    std::vector<PathPoints> pointsFromString(const std::string& text) const;

    static Vector2<double> getCubicBezier(double t, const Vector2<double>& p0, const Vector2<double>& p1,
                                          const Vector2<double>& p2, const Vector2<double>& p3);
    static Vector2<double> getQuadraticBezier(double t, const Vector2<double>& p0, const Vector2<double>& p1,
                                              const Vector2<double>& p2);
    // The elliptic arc from start to end in 51 points, the first and last close to start and
    // end; radii too small for the distance are scaled up until the arc reaches.
    static PathPoints getEllipse(double rx, double ry, double rotationDegrees, bool largeArc, bool sweep,
                                 const Vector2<double>& start, const Vector2<double>& end);

private:
    std::set<std::string> commands_;
};
