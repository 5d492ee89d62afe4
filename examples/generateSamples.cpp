// Writes the sample views shipped in examples/: a small operator panel built only from kinds the
// reader takes today (rectangles, groups, clip areas). Usage: korel2d-samples OUTPUT_DIR
#include "ViewBuilder.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using korelgen::RectSpec;
using korelgen::ViewBuilder;

namespace {

struct Colour {
    float r, g, b;
};

constexpr Colour kPage{0.70f, 0.74f, 0.78f};
constexpr Colour kPanel{0.14f, 0.16f, 0.19f};
constexpr Colour kFrame{0.86f, 0.88f, 0.90f};
constexpr Colour kHeader{0.20f, 0.36f, 0.58f};
constexpr Colour kBezel{0.45f, 0.47f, 0.50f};
constexpr Colour kDark{0.06f, 0.07f, 0.08f};
constexpr Colour kGreen{0.10f, 0.85f, 0.25f};
constexpr Colour kAmber{1.00f, 0.70f, 0.05f};
constexpr Colour kRed{0.90f, 0.12f, 0.10f};
constexpr Colour kLampOff{0.25f, 0.27f, 0.30f};
constexpr Colour kCyan{0.15f, 0.70f, 0.90f};
constexpr Colour kTeal{0.05f, 0.30f, 0.35f};
constexpr Colour kYellow{0.95f, 0.80f, 0.10f};

// Crisp edges throughout: the sample is also read back pixel by pixel.
RectSpec filled(float x0, float y0, float x1, float y1, Colour fill)
{
    RectSpec s;
    s.x0 = x0;
    s.y0 = y0;
    s.x1 = x1;
    s.y1 = y1;
    s.fill[0] = fill.r;
    s.fill[1] = fill.g;
    s.fill[2] = fill.b;
    s.fill[3] = 1;
    return s;
}

RectSpec framed(float x0, float y0, float x1, float y1, Colour fill, Colour stroke, float width)
{
    RectSpec s = filled(x0, y0, x1, y1, fill);
    s.strokeOn = 1;
    s.strokeWidth = width;
    s.stroke[0] = stroke.r;
    s.stroke[1] = stroke.g;
    s.stroke[2] = stroke.b;
    return s;
}

// Five lamps in bezels of 50 x 50 along the top of the instrument area.
void lampRow(ViewBuilder& b)
{
    const Colour lights[] = {kGreen, kGreen, kAmber, kRed, kLampOff};
    b.beginGroup(5, "lamps", "lamps-ID");
    for (int i = 0; i < 5; ++i) {
        float x = 48 + 62 * i;
        std::string name = "lamp" + std::to_string(i + 1);
        b.beginGroup(2, name.c_str(), (name + "-ID").c_str());
        b.rect(framed(x, 340, x + 50, 390, kBezel, kDark, 1), "bezel", "bezel-ID");
        b.rect(filled(x + 9, 349, x + 41, 381, lights[i]), "light", "light-ID");
        b.endGroup();
    }
    b.endGroup();
}

// Four vertical bar gauges: a trough, the bar at its level, and a red limit mark at 80 %.
void gauges(ViewBuilder& b)
{
    const float levels[] = {0.35f, 0.70f, 0.92f, 0.55f};
    const float bottom = 110, top = 310;
    b.beginGroup(4, "gauges", "gauges-ID");
    for (int i = 0; i < 4; ++i) {
        float x = 60 + 75 * i;
        float level = bottom + (top - bottom) * levels[i];
        std::string name = "gauge" + std::to_string(i + 1);
        b.beginGroup(3, name.c_str(), (name + "-ID").c_str());
        b.rect(framed(x, bottom, x + 36, top, kDark, kBezel, 1), "trough", "trough-ID");
        b.rect(filled(x + 4, bottom + 2, x + 32, level, levels[i] > 0.8f ? kAmber : kCyan), "bar", "bar-ID");
        float limit = bottom + (top - bottom) * 0.8f;
        b.rect(filled(x - 4, limit - 1, x + 40, limit + 1, kRed), "limit", "limit-ID");
        b.endGroup();
    }
    b.endGroup();
}

// A chequered screen much larger than its window: only the part inside the clip area shows.
void clippedScreen(ViewBuilder& b)
{
    b.beginGroup(3, "screen", "screen-ID");
    b.rect(filled(380, 40, 620, 410, kTeal), "ground", "ground-ID");
    RectSpec chequer = filled(380, 40, 620, 410, kAmber);
    chequer.fillStyle = 4; // 8-pixel squares
    b.rect(chequer, "chequer", "chequer-ID");
    b.scissor(410, 120, 590, 380, "window");
    b.endGroup();
    // A dashed bezel just outside the window.
    RectSpec bezel = framed(404, 114, 596, 386, kFrame, kFrame, 2);
    bezel.fillOn = 0;
    bezel.strokeStyle = 4; // 8 on, 8 off
    b.rect(bezel, "window frame", "window-frame-ID");
}

std::vector<uint8_t> panel()
{
    ViewBuilder b;
    b.page(0, 0, 640, 480, kPage.r, kPage.g, kPage.b);
    b.rect(framed(16, 16, 624, 464, kPanel, kFrame, 3), "panel", "panel-ID");
    b.rect(framed(16, 420, 624, 464, kHeader, kFrame, 1), "header", "header-ID");
    b.beginGroup(3, "status", "status-ID");
    for (int i = 0; i < 3; ++i) {
        float x = 540 + 26 * i;
        b.rect(framed(x, 434, x + 16, 450, kFrame, kDark, 1), "status light", "status-light-ID");
    }
    b.endGroup();

    b.beginGroup(2, "instruments", "instruments-ID");
    lampRow(b);
    gauges(b);
    b.endGroup();

    clippedScreen(b);

    // Warning strip: yellow diagonal hatching over black.
    b.rect(filled(40, 40, 360, 80, kDark), "strip", "strip-ID");
    RectSpec hatch = filled(40, 40, 360, 80, kYellow);
    hatch.fillStyle = 23;
    b.rect(hatch, "hatch", "hatch-ID");

    b.dataSection();
    return b.bytes();
}

bool writeFile(const std::string& path, const std::vector<uint8_t>& bytes)
{
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) {
        std::fprintf(stderr, "korel2d-samples: cannot create %s: %s\n", path.c_str(), std::strerror(errno));
        return false;
    }
    bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !written) {
        std::fprintf(stderr, "korel2d-samples: cannot write %s\n", path.c_str());
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: korel2d-samples OUTPUT_DIR\n");
        return 2;
    }
    std::string path = std::string(argv[1]) + "/panel.k2d";
    if (!writeFile(path, panel()))
        return 1;
    std::printf("wrote %s\n", path.c_str());
    return 0;
}
