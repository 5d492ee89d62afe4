// Small builders of views whose elements carry actions, shared by the tests of running views.
#pragma once

#include "GlContext.h"
#include "ViewBuilder.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace k2dtest {

inline korelgen::ActionFields act(int type, const char* var, int cg = 0, const char* var2 = "")
{
    korelgen::ActionFields a;
    a.type = type, a.var = var, a.var2 = var2, a.cg = cg;
    return a;
}

// A threshold from `lower` with its value and colour; the upper limit is for editors only.
inline korelgen::ThresholdFields entry(float lower, int value, float r = 0, float g = 0, float b = 0)
{
    return {lower, lower + 10, value, {r, g, b}};
}

inline korelgen::RectFields box(float x0, float y0, float x1, float y1)
{
    return {x0, y0, x1, y1};
}

// A red 40 x 40 square centred on (100, 100).
inline korelgen::RectFields square()
{
    return box(80, 80, 120, 120);
}

// Every pixel in one number, to tell frames apart without keeping them.
inline uint64_t frameHash(const Frame& frame)
{
    uint64_t hash = 1469598103934665603ull;
    for (int y = 0; y < frame.height(); ++y)
        for (int x = 0; x < frame.width(); ++x) {
            const Rgb c = frame.at(x, y);
            hash = (hash ^ uint64_t(c.r << 16 | c.g << 8 | c.b)) * 1099511628211ull;
        }
    return hash;
}

// The internal source, whose variables keep what the host writes.
inline korelgen::SourceFields internalSource(std::vector<korelgen::VariableFields> variables)
{
    return {5, {}, 0, std::move(variables)};
}

} // namespace k2dtest
