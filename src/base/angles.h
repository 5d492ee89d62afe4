// Angles: records keep radians, actions and the wave generator count in degrees.
#pragma once

// Rounded as the library has always had it, so that arcs and generated waves stay the same
// to the last bit.
constexpr double kDegreesToRadians = 0.017453292;
