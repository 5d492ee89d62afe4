// Colour and plane maths of the file formats: the value of a colour attribute, homogeneous points
// and the affine 3 x 3 matrices of rectangles and paths. The records of a view keep plain float
// arrays; these types only carry values on their way to and from a file.
#pragma once

#include <cmath>

// r, g, b, a from 0 to 1. `none` says there is no colour at all (stroke or fill off); the
// components then mean nothing, and comparisons ignore the flag.
class Color {
public:
    Color() = default; // opaque white
    Color(float r, float g, float b, float a = 1.0f) : c_{r, g, b, a} {}

    void setRgba(float r, float g, float b, float a)
    {
        c_[0] = r, c_[1] = g, c_[2] = b, c_[3] = a;
    }
    void setRgb(float r, float g, float b) { setRgba(r, g, b, 1.0f); }
    void setRed(float v) { c_[0] = v; }
    void setGreen(float v) { c_[1] = v; }
    void setBlue(float v) { c_[2] = v; }
    void setAlpha(float v) { c_[3] = v; }
    void setNone(bool none) { none_ = none; }

    float r() const { return c_[0]; }
    float g() const { return c_[1]; }
    float b() const { return c_[2]; }
    float a() const { return c_[3]; }
    bool none() const { return none_; }

    // 0..3 are r, g, b, a; any other index falls back to r rather than off the end.
    float& operator[](int i) { return c_[i >= 0 && i < 4 ? i : 0]; }
    float operator[](int i) const { return c_[i >= 0 && i < 4 ? i : 0]; }

    // Within 0.001 per component: a colour read back from a file's 8-bit digits equals the one
    // written, though the float it came from wasn't a multiple of 1/255.
    friend bool operator==(const Color& x, const Color& y)
    {
        for (int i = 0; i < 4; ++i)
            if (std::fabs(x.c_[i] - y.c_[i]) > 0.001f)
                return false;
        return true;
    }
    friend bool operator!=(const Color& x, const Color& y) { return !(x == y); }

private:
    float c_[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    bool none_ = false;
};

// A homogeneous point of the plane: w is 1 for a point, so that a matrix's translation moves it.
template <class T> struct Vector2 {
    T x = 0, y = 0, w = 1;

    Vector2() = default;
    Vector2(T x_, T y_, T w_ = 1) : x(x_), y(y_), w(w_) {}
};

// A 3 x 3 matrix, m[row][column]. Used as an affine map: the upper left 2 x 2 is the linear part,
// m[0][2] and m[1][2] the translation, the last row 0, 0, 1. The default is the identity.
template <class T> struct Matrix2 {
    T m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

    Matrix2() = default;
    Matrix2(T m00, T m01, T m02, T m10, T m11, T m12, T m20 = 0, T m21 = 0, T m22 = 1)
        : m{{m00, m01, m02}, {m10, m11, m12}, {m20, m21, m22}}
    {
    }

    // Scales both columns of the linear part to length 1 and stores the factors used through a
    // and b (either may be null): 1/a and 1/b are the lengths the columns had. A zero column
    // keeps factor 1. Lengths are taken in single precision, the precision of the records the
    // columns come from, so a unit column holds about seven digits.
    void normalize(T* a, T* b)
    {
        const T fa = columnFactor(0), fb = columnFactor(1);
        m[0][0] *= fa, m[1][0] *= fa;
        m[0][1] *= fb, m[1][1] *= fb;
        if (a)
            *a = fa;
        if (b)
            *b = fb;
    }

    Vector2<T> operator*(const Vector2<T>& v) const
    {
        return {m[0][0] * v.x + m[0][1] * v.y + m[0][2] * v.w, m[1][0] * v.x + m[1][1] * v.y + m[1][2] * v.w,
                m[2][0] * v.x + m[2][1] * v.y + m[2][2] * v.w};
    }

private:
    T columnFactor(int column) const
    {
        const float top = float(m[0][column]), bottom = float(m[1][column]);
        const float squared = top * top + bottom * bottom;
        return squared == 0.0f ? T(1) : T(std::sqrt(double(1.0f / squared)));
    }
};
