// Writes binary view files byte by byte, as the format stores them, so that tests don't
// depend on the library's own writer. Big-endian throughout.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace korelgen {

struct RectSpec {
    float x0 = 0, y0 = 0, x1 = 10, y1 = 10; // lower left and upper right corner
    int strokeOn = 0;
    float strokeWidth = 1;
    int strokeStyle = 0;
    float stroke[4] = {1, 1, 1, 1};
    int fillOn = 1;
    float fill[4] = {1, 0, 0, 1};
    int antialias = 0;
    int fillStyle = 0;
};

class ViewBuilder {
public:
    // Header and page. The magic text carries the version it claims, which readers ignore.
    explicit ViewBuilder(int major = 3, int minor = 3, const char* magic = "VIEW FILE 3.3\n");
    ViewBuilder& page(float x, float y, float width, float height, float r, float g, float b);

    ViewBuilder& rect(const RectSpec& spec, const char* name = "rect", const char* id = "rect-ID");
    // A group of `children` elements; the children follow, then endGroup() closes it.
    ViewBuilder& beginGroup(int children, const char* name = "group", const char* id = "group-ID");
    ViewBuilder& endGroup();
    ViewBuilder& scissor(float x0, float y0, float x1, float y1, const char* name = "clip");
    // An element of a code without a body: only the head and an empty action list.
    ViewBuilder& bodiless(int kind, const char* name = "none");
    // Marker 20 and an empty data-source section.
    ViewBuilder& dataSection();

    ViewBuilder& integer(int32_t value);
    ViewBuilder& real(float value);
    ViewBuilder& fixed(const std::string& text, size_t n);
    ViewBuilder& counted(const std::string& text); // length with terminator, then the bytes

    const std::vector<uint8_t>& bytes() const { return bytes_; }
    size_t size() const { return bytes_.size(); }

private:
    ViewBuilder& head(int kind, const char* name, const char* id);
    ViewBuilder& corners(float x0, float y0, float x1, float y1);
    std::vector<uint8_t> bytes_;
};

} // namespace korelgen
