// Colours and plane maths as the file formats use them: defaults, tolerant comparison, the
// normalised columns of a rectangle's matrix and points moved by a matrix.
#include "base/planeMath.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(ColorValue, DefaultIsOpaqueWhiteAndComponentsCompareWithinOneThousandth)
{
    Color c(0.5f, 0.5f, 0.5f, 0.5f), none = c;
    none.setNone(true);
    EXPECT_EQ(Color(), Color(1, 1, 1));
    EXPECT_EQ(c, none); // the flag takes no part
    EXPECT_EQ(c, Color(0.5005f, 0.4995f, 0.5005f, 0.4995f));
    EXPECT_NE(c, Color(0.5f, 0.5f, 0.5f, 0.502f));
    c[7] = 0.9f; // any index but 0..3 is r
    c.setRgb(c.r(), 0.2f, 0.3f);
    EXPECT_EQ(c, Color(0.9f, 0.2f, 0.3f, 1));
}

// Columns (3, 4) and (0, 2) become unit columns; a zero column keeps factor 1. The product takes
// all three rows: a point (w = 1) is moved by the translation, a direction (w = 0) is not.
TEST(PlaneMatrix, NormalizeGivesUnitColumnsAndProductTakesAllThreeRows)
{
    Matrix2<double> m(3, 0, 7, 4, 2, 8), zero(0, 0, 0, 0, 0, 0);
    double ab[4];
    m.normalize(&ab[0], &ab[1]);
    zero.normalize(&ab[2], &ab[3]);
    const double expected[] = {0.6, 0, 7, 0.8, 1, 8, 0, 0, 1, 0.2, 0.5, 1, 1};
    for (int i = 0; i < 13; ++i)
        EXPECT_NEAR(i < 9 ? m.m[i / 3][i % 3] : ab[i - 9], expected[i], 1e-7) << i;
    auto xyw = [](const Vector2<double>& v) { return std::vector<double>({v.x, v.y, v.w}); };
    EXPECT_EQ(xyw(Matrix2<double>(1, 0, 2, 0, 1, 3) * Vector2<double>(1, 1, 1)), std::vector<double>({3, 4, 1}));
    EXPECT_EQ(xyw(Matrix2<double>(0, -1, 2, 1, 0, 3, 1, 0, 1) * Vector2<double>(1, 2, 0)),
              std::vector<double>({-2, 1, 1}));
}

} // namespace
