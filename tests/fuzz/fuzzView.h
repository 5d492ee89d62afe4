// One input's life as a host lives it, shared by the fuzzing harnesses and by the replay of
// the regression corpus: bytes loaded as a view, started, drawn, stopped and freed. An answer
// no host expects aborts, so that the fuzzer reports it as it reports a crash.
#pragma once

#include <cstddef>
#include <cstdint>

namespace k2dfuzz {

// Once per process: a silent log, so that inputs aren't bound by formatting and writing
// messages, and no KOREL_HOME, so that starting a view never loads an installed plug-in.
void prepareProcess();

// For the harnesses that load and free: prepareProcess, and a small GL context, as pictures and
// fonts are made in the current context when a host loads. Exits when the machine offers none.
void prepareLoading();

// An off-screen GL context (EGL, no display) of side x side pixels and the library's window on
// it; false when the machine offers none. Without it runView draws nothing.
bool prepareDrawing(int side = 96);

// Loads the bytes, draws a frame, starts in mode 1, draws `frames` more, each after a data
// cycle that moves the view clock (graphs sample their traces), stops and frees. False when the
// bytes didn't load.
bool runView(const uint8_t* data, size_t size, int frames);

// Writes the bytes to a file in the working directory, loads it as an XML view file into fresh
// lists, saves those as XML and as a binary file beside it and frees them. Returns the number of sources and top-level elements it gave, or -1
// when it didn't load.
int loadXmlView(const uint8_t* data, size_t size);

// Writes the bytes to a file in the working directory and imports it as a symbol library into a
// fresh list, which it frees. Returns the number of symbols it gave, or -1 when it didn't load.
int loadSymbols(const uint8_t* data, size_t size);

} // namespace k2dfuzz
