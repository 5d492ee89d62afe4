// Inside the library: the GL state layer every kind draws through, line styles and fill patterns.
#pragma once

#include <stdint.h>

#include "Korel2D.h"

extern "C" {

KOREL2D_API void tkBegin(unsigned int mode);
KOREL2D_API void tkEnd(void);
KOREL2D_API void tkPushMatrix(void);
KOREL2D_API void tkPopMatrix(void);
KOREL2D_API void tkFinish(void);
KOREL2D_API void tkLineStipple(int factor, uint16_t pattern);
// Width in pixels, multiplied by the line scale.
KOREL2D_API void tkLineWidth(int width);
KOREL2D_API void tkAliasBlend(int antialias, float alpha);
KOREL2D_API void tkClearColor(float r, float g, float b);
KOREL2D_API int tkSetRgbMode(int mode);
KOREL2D_API int kriUpdateAttr(void);
KOREL2D_API void kvSetColorFactor(float r, float g, float b, float a);
KOREL2D_API void kvSetLineScale(float scale);
KOREL2D_API void kvColor4f(float r, float g, float b, float a);
// Polygon stipple on with `pattern` (128 bytes) for a non-zero number, off for 0.
KOREL2D_API void setStipple(int number, const uint8_t* pattern);
// The 128-byte bitmap of fill pattern 0..59; other numbers give pattern 0.
KOREL2D_API const uint8_t* getPattern(int number);
// The 16-byte MD5 digest of fill pattern 0..59, by which a pattern met as bytes is matched back
// to its number; other numbers give pattern 0's. The digests are made once, at the first call.
KOREL2D_API const uint8_t* getPatternHash(int number);
// Stipple factor and pattern of line style 0..9; others are solid. Result 0.
KOREL2D_API int getLineStipple(int style, int32_t* factor, uint16_t* pattern);
KOREL2D_API void setRgbColorIndex(uint32_t* table);
KOREL2D_API uint32_t getFastRGBcolor(float r, float g, float b);

// The render plane: a view drawn once into the host's frame buffer, copied into its
// 1024 x 1024 texture, and shown as one textured quad until it is rendered again. Each gives 0.
// Off-screen buffers are not used: the rendering goes to the current frame buffer.
constexpr int kPlaneTextureSize = 1024; // texels in each direction
KOREL2D_API int pbufferInit(int width, int height);
KOREL2D_API void pbufferEnable(void);
KOREL2D_API void pbufferDisable(void);
KOREL2D_API void pbufferDestroy(void);
KOREL2D_API int createRenderTexture(VIEW_STRUCT* view);
KOREL2D_API int renderSaveViewport(VIEW_STRUCT* view);
KOREL2D_API int renderSetViewport(VIEW_STRUCT* view);
KOREL2D_API int fillRenderTexture(VIEW_STRUCT* view);
KOREL2D_API int restoreViewPort(VIEW_STRUCT* view);
KOREL2D_API int drawRenderTexture(VIEW_STRUCT* view);
KOREL2D_API int drawListTexture(VIEW_STRUCT* view);

} // extern "C"

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
// Line styles 0..9.
constexpr int kLineStyleCount = 10;
