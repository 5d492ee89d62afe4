#include "ViewBuilder.h"

#include <cstring>

namespace korelgen {

ViewBuilder::ViewBuilder(int major, int minor, const char* magic)
{
    fixed(magic, 30);
    integer(major);
    integer(minor);
}

ViewBuilder& ViewBuilder::page(float x, float y, float width, float height, float r, float g, float b)
{
    real(x).real(y).real(width).real(height).real(r).real(g).real(b);
    for (int i = 0; i < 4; ++i)
        integer(0);
    return *this;
}

ViewBuilder& ViewBuilder::head(int kind, const char* name, const char* id)
{
    return integer(kind).counted(name).counted(id);
}

// Lower left, upper left, upper right, lower right; each point x then y.
ViewBuilder& ViewBuilder::corners(float x0, float y0, float x1, float y1)
{
    return real(x0).real(y0).real(x0).real(y1).real(x1).real(y1).real(x1).real(y0);
}

ViewBuilder& ViewBuilder::rect(const RectSpec& s, const char* name, const char* id)
{
    head(1, name, id).corners(s.x0, s.y0, s.x1, s.y1);
    integer(s.strokeOn).real(s.strokeWidth).integer(s.strokeStyle);
    for (float c : s.stroke)
        real(c);
    integer(s.fillOn);
    for (float c : s.fill)
        real(c);
    integer(s.antialias).integer(s.fillStyle);
    return integer(0).integer(0).integer(0).integer(0); // reserved tail, empty action list
}

ViewBuilder& ViewBuilder::beginGroup(int children, const char* name, const char* id)
{
    return head(8, name, id).integer(children);
}

ViewBuilder& ViewBuilder::endGroup()
{
    return integer(0);
}

ViewBuilder& ViewBuilder::scissor(float x0, float y0, float x1, float y1, const char* name)
{
    head(14, name, "clip-ID").corners(x0, y0, x1, y1);
    return integer(0).integer(0).integer(0).integer(0).integer(0);
}

ViewBuilder& ViewBuilder::bodiless(int kind, const char* name)
{
    return head(kind, name, "none-ID").integer(0);
}

ViewBuilder& ViewBuilder::dataSection()
{
    return integer(20).integer(0);
}

ViewBuilder& ViewBuilder::integer(int32_t value)
{
    uint32_t v = uint32_t(value);
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes_.push_back(uint8_t(v >> shift));
    return *this;
}

ViewBuilder& ViewBuilder::real(float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    return integer(int32_t(bits));
}

ViewBuilder& ViewBuilder::fixed(const std::string& text, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        bytes_.push_back(i < text.size() ? uint8_t(text[i]) : 0);
    return *this;
}

ViewBuilder& ViewBuilder::counted(const std::string& text)
{
    integer(int32_t(text.size() + 1));
    return fixed(text, text.size() + 1);
}

} // namespace korelgen
