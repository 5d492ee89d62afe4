// Rails measured and walked: a fraction of a polyline's length becomes a point on it.
#include "KorelEdit.h"
#include "LoadedView.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using korelgen::PointFields;

TEST(Rail, FractionOfTheLengthIsAPointOnThePolyline)
{
    const std::vector<PointFields> bent = {{0, 0, 0}, {1, 3, 4}, {2, 3, 14}}, same = {{0, 5, 5}, {1, 5, 5}};
    const struct {
        std::vector<PointFields> points;
        double at, length, x, y;
    } cases[] = {{bent, 1.0 / 3, 15, 3, 4}, {bent, 0.5, 15, 3, 6.5}, {same, 0.5, 0, 5, 5},
                 {{{0, 5, 5}}, 0.5, 0, -7, -7}}; // nothing to move along: the point isn't written
    for (const auto& c : cases) {
        korelgen::PolyFields fields;
        fields.points = c.points;
        k2dtest::LoadedView loaded(korelgen::ViewBuilder().page(0, 0, 400, 300, 0, 0, 0).polyline(fields));
        ASSERT_NE(loaded.first(), nullptr);
        calcPolyLength(loaded.first());
        float x = -7, y = -7;
        EXPECT_EQ(getMovePolyCoord(loaded.first(), &x, &y, c.at), 0);
        EXPECT_FLOAT_EQ(static_cast<POLY_STRUCT*>(loaded.first()->data)->length, c.length);
        EXPECT_EQ(std::vector<double>({x, y}), std::vector<double>({c.x, c.y})) << c.at;
    }
}

} // namespace
