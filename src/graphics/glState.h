// What the GL state layer offers the library beyond its public wrappers.
#pragma once

// A translation the walk has not handed to GL. Changing the matrix ends the batch of
// primitives the driver collects, so for elements that move only by translation the walk
// adds it to their vertices instead; tkVertex2f applies it. Outside a walk it is zero.
void tkSetOffset(float x, float y);
void tkGetOffset(float* x, float* y);
void tkVertex2f(float x, float y);

// Sizes of the fixed style tables, for the code that stores, hashes and matches fill patterns.

// Fill patterns 0..59, each a 32 x 32 polygon stipple of 32 rows of 4 bytes.
constexpr int kFillPatternCount = 60;
constexpr int kFillPatternBytes = 128;
