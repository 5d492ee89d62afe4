// Angles: records keep radians, actions and the wave generator count in degrees.
#pragma once

// Rounded as the library has always had it, so that arcs and generated waves stay the same
// to the last bit.
constexpr double kDegreesToRadians = 0.017453292;
// The way back, rounded as old files were written with it.
constexpr double kRadiansToDegrees = 57.29577951;
