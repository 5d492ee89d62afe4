#include "xml/path.h"

#include "base/truncate.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

using Point = Vector2<double>;

constexpr double kRadiansPerDegree = 0.017453292;
constexpr double kDegreesPerRadian = 57.29577951;
constexpr double kFullTurn = 6.283185308;
constexpr int kArcSegments = 50;

// One step for each 10/3 units of the chord, whatever the curve's true length. A chord that
// isn't finite takes none: only its end point is added.
int curveSteps(const Point& from, const Point& to)
{
    const double chord = std::hypot(to.x - from.x, to.y - from.y);
    if (!std::isfinite(chord))
        return 0;
    return std::min(truncToInt(chord * 0.3), Path::kMaxCurveSteps);
}

// The state of one pass over a text.
class PathParser {
public:
    explicit PathParser(const Path& path) : path_(path) {}

    void token(const std::string& token)
    {
        std::printf("Token <%s>\n", token.c_str());
        if (path_.isCommand(token)) {
            command(token[0]);
            counter_ = 0;
            return;
        }
        number(token);
        ++counter_;
    }

    std::vector<PathPoints> finish()
    {
        closeList();
        return std::move(result_);
    }

private:
    void command(char letter)
    {
        command_ = letter;
        switch (std::toupper(static_cast<unsigned char>(letter))) {
        case 'M':
            closeList();
            break;
        case 'Z':
            // The list stays open: what follows belongs to this sub-path until the next M.
            add(start_);
            break;
        case 'S':
            p1_ = Point(current_.x + p3_.x - p2_.x, current_.y + p3_.y - p2_.y);
            p0_ = current_;
            break;
        case 'T':
            p1_ = Point(current_.x + p2_.x - p1_.x, current_.y + p2_.y - p1_.y);
            p0_ = current_;
            break;
        case 'C':
        case 'Q':
        case 'A':
            p0_ = current_;
            break;
        }
    }

    void number(const std::string& token)
    {
        if (!command_)
            return;
        const char upper = char(std::toupper(static_cast<unsigned char>(command_)));
        const bool relative = upper != command_;
        const double value = std::strtod(token.c_str(), nullptr);
        const auto move = [&](double& coordinate) { coordinate = relative ? coordinate + value : value; };
        // x and y alternate, and a curve's points take the coordinate just moved.
        const bool isY = counter_ % 2;
        double& coordinate = isY ? current_.y : current_.x;
        const auto take = [&](Point& point) { (isY ? point.y : point.x) = coordinate; };

        switch (upper) {
        case 'M':
        case 'L':
            move(coordinate);
            if (isY) {
                if (command_ == 'M' && counter_ == 1)
                    start_ = current_;
                add(current_);
            }
            break;
        case 'H':
            move(current_.x);
            add(current_);
            break;
        case 'V':
            move(current_.y);
            add(current_);
            break;
        case 'C':
            move(coordinate);
            take(counter_ % 6 < 2 ? p1_ : counter_ % 6 < 4 ? p2_ : p3_);
            if (counter_ % 6 == 5)
                flattenCubic();
            break;
        case 'S':
            move(coordinate);
            take(counter_ % 4 < 2 ? p2_ : p3_);
            if (counter_ % 4 == 3)
                flattenCubic();
            break;
        case 'Q':
            move(coordinate);
            take(counter_ % 4 < 2 ? p1_ : p2_);
            if (counter_ % 4 == 3)
                flattenQuadratic();
            break;
        case 'T':
            // Numbers past the first pair only move the current point.
            move(coordinate);
            if (counter_ < 2)
                take(p2_);
            if (counter_ == 1) {
                std::printf("p0 %f %f\np1 %f %f\np2 %f %f\n", p0_.x, p0_.y, p1_.x, p1_.y, p2_.x, p2_.y);
                std::printf("nr %d\n", curveSteps(p0_, p2_));
                flattenQuadratic();
            }
            break;
        case 'A':
            arcNumber(token, value, move);
            break;
        }
    }

    template <class Move> void arcNumber(const std::string& token, double value, const Move& move)
    {
        switch (counter_ % 7) {
        case 0:
            rx_ = value;
            break;
        case 1:
            ry_ = value;
            break;
        case 2:
            rotation_ = value;
            break;
        case 3:
            largeArc_ = std::strtol(token.c_str(), nullptr, 0) != 0;
            break;
        case 4:
            sweep_ = std::strtol(token.c_str(), nullptr, 0) != 0;
            break;
        case 5:
            move(current_.x);
            break;
        case 6:
            move(current_.y);
            for (const Point& point : Path::getEllipse(rx_, ry_, rotation_, largeArc_, sweep_, p0_, current_))
                add(point);
            break;
        }
    }

    void flattenCubic()
    {
        flatten(p3_, [this](double t) { return Path::getCubicBezier(t, p0_, p1_, p2_, p3_); });
    }

    void flattenQuadratic()
    {
        flatten(p2_, [this](double t) { return Path::getQuadraticBezier(t, p0_, p1_, p2_); });
    }

    // t = 0 gives p0 again, so a sub-path holds its start point twice there.
    template <class Curve> void flatten(const Point& end, const Curve& pointAt)
    {
        const int steps = curveSteps(p0_, end);
        const double step = 1.0 / steps;
        // Written in place: a long chord makes this the one loop of the parser that counts.
        const size_t count = std::min(size_t(steps), Path::kMaxPoints - points_), first = list_.size();
        list_.resize(first + count);
        for (size_t i = 0; i < count; ++i)
            list_[first + i] = pointAt(double(i) * step);
        points_ += count;
        add(end);
    }

    void add(const Point& point)
    {
        if (points_ == Path::kMaxPoints)
            return;
        ++points_;
        list_.push_back(point);
    }

    void closeList()
    {
        if (!list_.empty())
            result_.push_back(std::move(list_));
        list_.clear();
    }

    const Path& path_;
    Point current_, start_, p0_, p1_, p2_, p3_;
    char command_ = 0;
    size_t counter_ = 0;
    double rx_ = 0, ry_ = 0, rotation_ = 0;
    bool largeArc_ = false, sweep_ = false;
    PathPoints list_;
    std::vector<PathPoints> result_;
    size_t points_ = 0;
};

} // namespace

Path::Path()
    : commands_{"M", "m", "Z", "z", "L", "l", "H", "h", "V", "v", "C", "c", "S", "s", "Q", "q", "T", "t", "A", "a"}
{
}

bool Path::isCommand(const std::string& token) const
{
    return commands_.count(token) != 0;
}

std::vector<PathPoints> Path::pointsFromString(const std::string& text) const
{
    PathParser parser(*this);
    bool isLetter[256] = {};
    for (const std::string& command : commands_)
        isLetter[static_cast<unsigned char>(command[0])] = true;
    std::string token;
    const auto take = [&] {
        if (!token.empty())
            parser.token(token);
        token.clear();
    };
    // Only blanks and commas separate: a tab or a line break stays in the number. A command
    // letter is a token of its own, and a sign doesn't start a number, so "10-5" reads as 10.
    for (const char c : text) {
        if (c == ' ' || c == ',') {
            take();
        } else if (isLetter[static_cast<unsigned char>(c)]) {
            take();
            token = c;
            take();
        } else {
            token += c;
        }
    }
    take();
    return parser.finish();
}

Vector2<double> Path::getCubicBezier(double t, const Vector2<double>& p0, const Vector2<double>& p1,
                                     const Vector2<double>& p2, const Vector2<double>& p3)
{
    const double u = 1 - t, a = u * u * u, b = 3 * t * u * u, c = 3 * t * t * u, d = t * t * t;
    return {a * p0.x + b * p1.x + c * p2.x + d * p3.x, a * p0.y + b * p1.y + c * p2.y + d * p3.y};
}

Vector2<double> Path::getQuadraticBezier(double t, const Vector2<double>& p0, const Vector2<double>& p1,
                                         const Vector2<double>& p2)
{
    const double u = 1 - t, a = u * u, b = 2 * t * u, c = t * t;
    return {a * p0.x + b * p1.x + c * p2.x, a * p0.y + b * p1.y + c * p2.y};
}

// From end points to the centre form of the arc. The large-arc flag only picks the side of the
// centre; the angles of the end points decide the rest.
PathPoints Path::getEllipse(double rx, double ry, double rotationDegrees, bool largeArc, bool sweep,
                            const Vector2<double>& start, const Vector2<double>& end)
{
    if (std::fabs(rx) < 0.01 || std::fabs(ry) < 0.01)
        return {start, end};
    rx = std::fabs(rx), ry = std::fabs(ry);
    const double c = std::cos(rotationDegrees * kRadiansPerDegree), s = std::sin(rotationDegrees * kRadiansPerDegree);
    const double dx = (start.x - end.x) * 0.5, dy = (start.y - end.y) * 0.5;
    const double x1 = c * dx + s * dy, y1 = c * dy - s * dx;
    std::printf("x1i %f y1i %f\n", x1, y1);

    const double reach = x1 * x1 / (rx * rx) + y1 * y1 / (ry * ry);
    std::printf("r %f\n", reach);
    if (reach > 1)
        rx *= std::sqrt(reach), ry *= std::sqrt(reach);
    std::printf("rx %f ry %f\n", rx, ry);

    const double numerator = rx * rx * ry * ry - rx * rx * y1 * y1 - ry * ry * x1 * x1;
    const double denominator = rx * rx * y1 * y1 + ry * ry * x1 * x1;
    std::printf("c1 %f c2 %f\n", numerator, denominator);
    double f = numerator * denominator < 0 ? 0 : std::sqrt(numerator / denominator);
    if (largeArc == sweep)
        f = -f;
    const double cx1 = f * rx * y1 / ry, cy1 = -f * ry * x1 / rx;
    const double cx = c * cx1 - s * cy1 + (start.x + end.x) * 0.5, cy = s * cx1 + c * cy1 + (start.y + end.y) * 0.5;
    std::printf("cx %f cy %f\n", cx, cy);

    const double ux = (x1 - cx1) / rx, uy = (y1 - cy1) / ry, vx = (-x1 - cx1) / rx, vy = (-y1 - cy1) / ry;
    const double uLength = std::sqrt(ux * ux + uy * uy), vLength = std::sqrt(vx * vx + vy * vy);
    double theta = std::acos(ux / uLength);
    if (uy < 0)
        theta = -theta;
    const double quotient = (ux * vx + uy * vy) / (uLength * vLength);
    std::printf("11 dtheta %f\n", quotient);
    const double a = std::acos(std::clamp(quotient, -1.0, 1.0));
    double turn;
    if (ux * vy - uy * vx < 0)
        turn = sweep && a > 0 ? kFullTurn - a : -a;
    else
        turn = !sweep && a > 0 ? a - kFullTurn : a;
    std::printf("Theta1 %f dtheta %f\n", theta * kDegreesPerRadian, turn * kDegreesPerRadian);

    PathPoints points;
    points.reserve(kArcSegments + 1);
    for (int i = 0; i <= kArcSegments; ++i) {
        const double w = theta + i * (turn / double(kArcSegments));
        const double ex = rx * std::cos(w), ey = ry * std::sin(w);
        points.emplace_back(c * ex - s * ey + cx, s * ex + c * ey + cy);
    }
    return points;
}
