// Every view file of a directory, as it ships and damaged in the ways a copy or a careless
// writer damages one, each run through runView, or loaded and freed for XML view files.
#pragma once

#include <filesystem>

namespace k2dfuzz {

// Runs each *.k2d of `dir` cut at every length, one cut in every `longCutStride` for 100 frames,
// with each text record garbled in its sizes, alignment, style, family and length, and each
// graph record in its rate, sample count, ranges and spacings, run for 100 frames (random
// changes are the fuzzers' part). Needs prepareProcess and prepareDrawing. Returns the exit
// status: 1 when there is no sample, a sample doesn't load whole, no sample holds a text or a
// graph record to garble, or a timed case runs too long.
int sweepSamples(const std::filesystem::path& dir, size_t longCutStride);

// Loads and frees each *.xml of `dir` cut at every length and in 10,000 garbled copies: values
// huge, negative, NaN or no number, Base64 and zlib data broken, elements dropped or repeated.
// Needs prepareProcess and prepareDrawing. Returns the exit status: 1 when there is no sample
// or a sample loads nothing whole.
int sweepXmlSamples(const std::filesystem::path& dir);

} // namespace k2dfuzz
