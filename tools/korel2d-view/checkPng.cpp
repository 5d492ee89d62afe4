// Checks that a PNG file shows a shipped sample drawn at a zoom: the panel (examples/panel.k2d)
// or the readouts (examples/readouts.k2d) after their first data cycle, or the controls
// (examples/controls.k2d) after two steps of the counter, or the hand-made XML sample
// (examples/handmade.xml) converted to binary, or the symbol library of the converter's tests.
// Usage: korel2d-view-check PICTURE.png [ZOOM [panel|readouts|controls|handmade|symbols]]; exit status 0
// when every check holds.
// With --same A.png B.png [X0,Y0,X1,Y1 ...] it checks instead that two pictures of one size show
// the same pixels, but inside the boxes named (view units at zoom 1) where they may differ.
// Positions below are view units (y upwards), as the sample's generator lays them out.
#include "panelPalette.h"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

using namespace samplepanel;

namespace {


struct Box {
    float x0, y0, x1, y1;
};

class Picture {
public:
    bool load(const char* path, float zoom)
    {
        png_image image;
        std::memset(&image, 0, sizeof image);
        image.version = PNG_IMAGE_VERSION;
        if (!png_image_begin_read_from_file(&image, path)) {
            std::fprintf(stderr, "%s: %s\n", path, image.message);
            return false;
        }
        image.format = PNG_FORMAT_RGB;
        rgb_.resize(PNG_IMAGE_SIZE(image));
        if (!png_image_finish_read(&image, nullptr, rgb_.data(), 0, nullptr)) {
            std::fprintf(stderr, "%s: %s\n", path, image.message);
            return false;
        }
        width_ = int(image.width);
        height_ = int(image.height);
        zoom_ = zoom;
        return true;
    }

    int width() const { return width_; }
    int height() const { return height_; }

    // Whether the pixel under the view point (x, y) has the colour, within the rounding of
    // GL's conversion to 8 bits.
    bool is(float x, float y, Colour c) const { return matches(pixel(column(x), row(y)), c); }

    // Share of the pixels inside the box that have the colour.
    double share(const Box& box, Colour c) const
    {
        int all = 0, hits = 0;
        for (int r = row(box.y1); r <= row(box.y0); ++r)
            for (int col = column(box.x0); col <= column(box.x1); ++col) {
                ++all;
                hits += matches(pixel(col, r), c);
            }
        return all ? double(hits) / all : 0.0;
    }

    // Share of the columns of the box that have the colour in at least one of its rows.
    double columnShare(const Box& box, Colour c) const
    {
        int all = 0, hits = 0;
        for (int col = column(box.x0); col <= column(box.x1); ++col) {
            bool hit = false;
            for (int r = row(box.y1); r <= row(box.y0); ++r)
                hit = hit || matches(pixel(col, r), c);
            ++all;
            hits += hit;
        }
        return all ? double(hits) / all : 0.0;
    }

    // The smallest box around the pixels of the colour inside `box`; false if there are none.
    bool inkBox(const Box& box, Colour c, Box* ink) const
    {
        int left = width_, right = -1, top = height_, bottom = -1;
        for (int r = row(box.y1); r <= row(box.y0); ++r)
            for (int col = column(box.x0); col <= column(box.x1); ++col)
                if (matches(pixel(col, r), c))
                    left = std::min(left, col), right = std::max(right, col), top = std::min(top, r),
                    bottom = std::max(bottom, r);
        *ink = {left / zoom_, float(height_ - 1 - bottom) / zoom_, right / zoom_, float(height_ - 1 - top) / zoom_};
        return right >= 0;
    }

    // Pixels that differ from the other picture's beyond GL's rounding, outside the boxes.
    int differences(const Picture& other, const std::vector<Box>& allowed) const
    {
        int n = 0;
        for (int r = 0; r < height_; ++r)
            for (int col = 0; col < width_; ++col) {
                const float x = (col + 0.5f) / zoom_, y = (height_ - 1 - r + 0.5f) / zoom_;
                const bool free = std::any_of(allowed.begin(), allowed.end(), [&](const Box& b) {
                    return x >= b.x0 && x <= b.x1 && y >= b.y0 && y <= b.y1;
                });
                const uint8_t *a = pixel(col, r), *b = other.pixel(col, r);
                n += !free && (std::abs(a[0] - b[0]) > 2 || std::abs(a[1] - b[1]) > 2 || std::abs(a[2] - b[2]) > 2);
            }
        return n;
    }

private:
    int column(float x) const { return int(std::floor(x * zoom_)); }
    int row(float y) const { return height_ - 1 - int(std::floor(y * zoom_)); }

    const uint8_t* pixel(int col, int r) const
    {
        static const uint8_t outside[3] = {0, 0, 0};
        if (col < 0 || r < 0 || col >= width_ || r >= height_)
            return outside;
        return &rgb_[(size_t(r) * size_t(width_) + size_t(col)) * 3];
    }

    static bool matches(const uint8_t* p, Colour c)
    {
        const float want[3] = {c.r, c.g, c.b};
        for (int i = 0; i < 3; ++i)
            if (std::abs(int(p[i]) - int(std::lround(want[i] * 255))) > 2)
                return false;
        return true;
    }

    std::vector<uint8_t> rgb_;
    int width_ = 0, height_ = 0;
    float zoom_ = 1;
};

int failures = 0;

void check(bool holds, const std::string& what)
{
    if (!holds) {
        std::fprintf(stderr, "FAILED: %s\n", what.c_str());
        ++failures;
    }
}

void checkPanel(const Picture& p)
{
    for (float x : {4.0f, 636.0f})
        for (float y : {4.0f, 476.0f})
            check(p.is(x, y, kPage), "page colour at the corner " + std::to_string(int(x)) + ", " + std::to_string(int(y)));
    check(p.is(370, 240, kPanel), "dark panel between the gauges and the screen");
    check(p.is(300, 442, kHeader), "header bar");

    const Colour lamps[] = {kGreen, kGreen, kAmber, kRed, kLampOff};
    for (int i = 0; i < 5; ++i)
        check(p.is(73.0f + 62 * i, 365, lamps[i]), "colour of lamp " + std::to_string(i + 1));

    const Colour bars[] = {kCyan, kCyan, kAmber, kCyan};
    for (int i = 0; i < 4; ++i)
        check(p.is(78.0f + 75 * i, 150, bars[i]), "bar of gauge " + std::to_string(i + 1));
    check(p.is(78, 250, kDark), "empty trough above the low bar of gauge 1");

    // The chequered screen shows in its window only.
    const Box window{416, 126, 584, 374};
    double amber = p.share(window, kAmber), teal = p.share(window, kTeal);
    check(amber > 0.35 && teal > 0.35 && amber + teal > 0.95,
          "chequer of amber and teal in the window (" + std::to_string(amber) + ", " + std::to_string(teal) + ")");
    const Box around[] = {{384, 44, 398, 406}, {412, 392, 588, 406}, {412, 44, 588, 106}, {602, 44, 616, 406}};
    for (const Box& b : around)
        check(p.share(b, kPanel) == 1.0, "only the panel around the window, at x " + std::to_string(int(b.x0)) +
                                             ", y " + std::to_string(int(b.y0)));

    double dashes = p.columnShare({420, 383, 580, 389}, kFrame);
    check(dashes > 0.3 && dashes < 0.7, "dashed frame above the window (" + std::to_string(dashes) + ")");

    const Box strip{44, 44, 356, 76};
    double yellow = p.share(strip, kYellow), dark = p.share(strip, kDark);
    check(yellow > 0.25 && yellow < 0.5 && yellow + dark > 0.95,
          "yellow hatching over black in the strip (" + std::to_string(yellow) + ")");
}

// Digits in every readout box, and a sine's value of six characters in boxes of nine keeps the
// left edge, or the right edge, of its box free; the marker on the start of its track; the
// lamp picture tinted amber by the sine's middle range, the panel showing through its corner.
void checkReadouts(const Picture& p)
{
    for (float x : {168.0f, 286.0f, 404.0f})
        for (float y : {352.0f, 300.0f})
            check(p.share({x - 45, y - 8, x + 45, y + 8}, kDark) < 0.9,
                  "digits in the readout at " + std::to_string(int(x)) + ", " + std::to_string(int(y)));
    check(p.share({188, 345, 214, 359}, kDark) == 1, "the left-aligned value leaves its box's right end empty");
    check(p.share({358, 345, 384, 359}, kDark) == 1, "the right-aligned value leaves its box's left end empty");
    check(p.share({46, 136, 110, 216}, kAmber) > 0.02, "the marker near the start of its track");
    check(p.is(550, 330, kAmber), "the lamp picture's centre tinted amber");
    check(p.is(504, 284, kPanel), "the panel through the lamp picture's transparent corner");
}

// The counter's box holds a 2, told from the other digits by its shape: a bar under the whole
// foot, the bow's right side in the upper part, and nothing at the left in the middle.
void checkControls(const Picture& p)
{
    Box d;
    if (!p.inkBox({90, 84, 130, 136}, kGreen, &d))
        return check(false, "a digit in the counter");
    const float w = d.x1 - d.x0, h = d.y1 - d.y0;
    check(p.columnShare({d.x0, d.y0, d.x1, d.y0 + 0.12f * h}, kGreen) > 0.8, "the foot of a 2");
    check(p.share({d.x1 - 0.25f * w, d.y0 + 0.6f * h, d.x1, d.y0 + 0.8f * h}, kGreen) > 0.05, "the bow of a 2");
    check(p.share({d.x0, d.y0 + 0.4f * h, d.x0 + 0.2f * w, d.y0 + 0.6f * h}, kGreen) == 0, "the open left of a 2");
}

// The hand-made XML sample, converted to binary: the filled outline, the circle and the four
// quarters of the upright picture.
void checkHandmade(const Picture& p)
{
    check(p.is(4, 4, {0x20 / 255.0f, 0x30 / 255.0f, 0x40 / 255.0f}), "page colour");
    check(p.is(100, 200, {0x40 / 255.0f, 0x60 / 255.0f, 0x80 / 255.0f}), "the filled outline of curves and arc");
    check(p.is(330, 70, {0xc0 / 255.0f, 0x30 / 255.0f, 0x30 / 255.0f}), "the circle's fill");
    const Colour quarters[] = {{230 / 255.0f, 60 / 255.0f, 40 / 255.0f}, {250 / 255.0f, 200 / 255.0f, 40 / 255.0f},
                               {40 / 255.0f, 150 / 255.0f, 80 / 255.0f}, {40 / 255.0f, 90 / 255.0f, 200 / 255.0f}};
    for (int q = 0; q < 4; ++q)
        check(p.is(q % 2 ? 86 : 54, q / 2 ? 86 : 54, quarters[q]), "quarter " + std::to_string(q) + " of the picture");
}

// The symbol library of the converter's tests: black squares at the lower left and the upper
// right of its shapes, 10 units inside the edges of a white page; a ring, open inside; a label.
// Ring and label are drawn smooth, so they are told by pixels that aren't white.
void checkSymbols(const Picture& p)
{
    const Colour white{1, 1, 1}, black{0, 0, 0};
    for (float x : {2.0f, 247.0f})
        for (float y : {2.0f, 127.0f})
            check(p.is(x, y, white), "white page at the corner " + std::to_string(int(x)) + ", " + std::to_string(int(y)));
    Box ink;
    // The box of the black pixels reaches to the far side of its last ones.
    check(p.inkBox({0, 0, 249, 129}, black, &ink) && std::abs(ink.x0 - 10) <= 1 && std::abs(ink.y0 - 10) <= 1 &&
              std::abs(ink.x1 + 1 - 240) <= 1 && std::abs(ink.y1 + 1 - 120) <= 1,
          "the black shapes 10 units inside the page's edges");
    check(p.share({160, 10, 220, 70}, white) < 0.98 && p.is(190, 40, white), "a ring around a white centre");
    check(p.share({10, 72, 120, 120}, white) < 0.99, "a label above the left square");
}

// The samples a picture can be checked against, with their page sizes.
struct Sample {
    const char* name;
    int width, height;
    void (*check)(const Picture&);
};

const Sample kSamples[] = {{"panel", 640, 480, checkPanel},
                           {"readouts", 640, 480, checkReadouts},
                           {"controls", 800, 400, checkControls},
                           {"handmade", 400, 300, checkHandmade},
                           {"symbols", 250, 130, checkSymbols}};

} // namespace

// --same A.png B.png [BOX ...]
int compare(int argc, char** argv)
{
    Picture a, b;
    if (argc < 4 || !a.load(argv[2], 1) || !b.load(argv[3], 1))
        return 2;
    std::vector<Box> allowed;
    for (int i = 4; i < argc; ++i) {
        Box box;
        if (std::sscanf(argv[i], "%f,%f,%f,%f", &box.x0, &box.y0, &box.x1, &box.y1) != 4) {
            std::fprintf(stderr, "a box is X0,Y0,X1,Y1, not %s\n", argv[i]);
            return 2;
        }
        allowed.push_back(box);
    }
    if (a.width() != b.width() || a.height() != b.height()) {
        std::fprintf(stderr, "FAILED: pictures of %dx%d and %dx%d\n", a.width(), a.height(), b.width(), b.height());
        return 1;
    }
    const int n = a.differences(b, allowed);
    std::printf("%d pixels differ outside the boxes\n", n);
    return n == 0 ? 0 : 1;
}

int main(int argc, char** argv)
{
    if (argc >= 2 && std::strcmp(argv[1], "--same") == 0)
        return compare(argc, argv);
    const std::string name = argc == 4 ? argv[3] : "panel";
    const Sample* sample = std::find_if(std::begin(kSamples), std::end(kSamples),
                                        [&name](const Sample& s) { return name == s.name; });
    if (argc < 2 || argc > 4 || sample == std::end(kSamples)) {
        std::fprintf(stderr, "usage: korel2d-view-check PICTURE.png [ZOOM [panel|readouts|controls|handmade|symbols]]\n");
        return 2;
    }
    float zoom = argc >= 3 ? std::strtof(argv[2], nullptr) : 1.0f;
    Picture picture;
    if (!picture.load(argv[1], zoom))
        return 1;
    const int width = int(std::lround(sample->width * zoom)), height = int(std::lround(sample->height * zoom));
    if (picture.width() != width || picture.height() != height) {
        std::fprintf(stderr, "FAILED: picture of %dx%d, expected %dx%d\n", picture.width(), picture.height(), width,
                     height);
        return 1;
    }
    sample->check(picture);
    return failures == 0 ? 0 : 1;
}
