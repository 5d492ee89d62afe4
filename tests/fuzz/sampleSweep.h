// Every view file of a directory, as it ships and damaged in the ways a copy or a careless
// writer damages one, each run through runView.
#pragma once

#include <filesystem>

namespace k2dfuzz {

// Runs each *.k2d of `dir` cut at every length, and with each text record garbled in its sizes,
// alignment, style, family and length (random changes are the fuzzers' part). Needs prepareProcess
// and prepareDrawing. Returns the exit status: 1 when there is no sample, a sample doesn't
// load whole, or no sample holds a text record to garble.
int sweepSamples(const std::filesystem::path& dir);

} // namespace k2dfuzz
