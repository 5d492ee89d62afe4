// Our font layer: finds font files, measures strings and draws them in the current
// OpenGL context. It stands on FreeType and fontconfig and knows nothing else of the
// library, so that the rest of the code reaches text only through these twelve calls.
#ifndef KOREL2D_GLYPHKIT_H
#define KOREL2D_GLYPHKIT_H

#include <stdint.h>

// The library exports the layer's functions; built with hidden visibility, all else stays inside.
#if defined(__GNUC__)
#define GK_API __attribute__((visibility("default")))
#else
#define GK_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

// Opaque font handle; 0 is "no font".
typedef uint64_t GK_FONT;

// Style mask bits.
enum { GK_PLAIN = 1, GK_BOLD = 2, GK_ITALIC = 4, GK_BOLD_ITALIC = 8 };

// Verbosity of the layer's own diagnostics on stderr: 0 silent, 1 failures, 2 also which file serves a font.
GK_API void gkSetDebugLevel(int level);
// 1 when the layer is ready to take search paths. Forgets the paths of an earlier call, so that
// it may run at every view load.
GK_API int gkLibraryInit(void);
// Adds a directory searched for font files before fontconfig; 1 when it is in the list (once),
// 0 for no name. Missing directories are fine.
GK_API int gkLibraryAddPath(const char* directory);
// Scans the added directories, replacing what an earlier scan found; call after the last path.
// Returns the number of font faces found.
GK_API int gkLibraryParseFonts(void);
// A font of `family` (e.g. "Arial", "Courier [fixed]"), style mask and size in pixels.
// Works without a GL context. An unknown family still yields a usable font (a sans face);
// styles the family lacks are synthesized.
GK_API GK_FONT gkFontCreate(const char* family, int style, int size);
// Releases a font, and its texture when a context is current; 0 and unknown handles are ignored.
GK_API void gkFontFree(GK_FONT font);
// Non-zero for outline fonts that follow the modelview matrix, 0 for "[fixed]" bitmap fonts.
GK_API int gkFontScalable(GK_FONT font);
// metric[0] = advance width, metric[1] = height (ascent + descent) in pixels at the font's size.
// Text is 8-bit, each byte a Latin-1 code point. 0 on success, -1 for an unknown font or no metric.
GK_API int gkFontStringMetric(GK_FONT font, const char* text, int metric[2]);
// Draws `text` with the lower left corner of its metric box at the modelview origin (baseline
// at y = descent), in the current colour; GL state is left as found. Outline fonts draw in
// modelview units (1 unit = 1 pixel at the font's size), bitmap fonts in window pixels.
// 0 on success, -1 for an unknown font or no current GL context.
GK_API int gkFontRender(GK_FONT font, const char* text);
// Mask of the styles the family has as real faces (plain at least).
GK_API int gkFamilyGetStyles(const char* family);
// Sizes the family has in that style, from malloc; *count <= 0 means any size (and null is returned).
GK_API int* gkFamilyGetSizes(const char* family, int style, int* count);
// Releases an array from gkFamilyGetSizes.
GK_API void gkFree(void* array);

#ifdef __cplusplus
}
#endif

#endif
