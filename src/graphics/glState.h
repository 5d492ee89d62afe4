// Sizes of the fixed style tables, for the code that stores, hashes and matches fill patterns.
#pragma once

// Fill patterns 0..59, each a 32 x 32 polygon stipple of 32 rows of 4 bytes.
constexpr int kFillPatternCount = 60;
constexpr int kFillPatternBytes = 128;
