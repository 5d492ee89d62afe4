// Colours of the sample panel, shared by its generator and by the checker that reads its
// picture back, so that the two can't drift apart.
#pragma once

namespace samplepanel {

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

} // namespace samplepanel
