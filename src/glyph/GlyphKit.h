// Our font layer: finds font files, measures strings and draws them in the current
// OpenGL context. It stands on FreeType and fontconfig and knows nothing else of the
// library, so that the rest of the code reaches text only through these twelve calls.
#ifndef KOREL2D_GLYPHKIT_H
#define KOREL2D_GLYPHKIT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Opaque font handle; 0 is "no font".
typedef uint64_t GK_FONT;

// Style mask bits.
enum { GK_PLAIN = 1, GK_BOLD = 2, GK_ITALIC = 4, GK_BOLD_ITALIC = 8 };

// Verbosity of the layer's own diagnostics on stderr (0 silent).
void gkSetDebugLevel(int level);
// 1 when the layer is ready to take search paths; may be called at every view load.
int gkLibraryInit(void);
// Adds a directory searched for font files before fontconfig. Missing directories are fine.
int gkLibraryAddPath(const char* directory);
// Scans the added directories; call once after the last path.
int gkLibraryParseFonts(void);
// A font of `family` (e.g. "Arial", "Courier [fixed]"), style mask and size in pixels.
// Works without a GL context. An unknown family still yields a usable font.
GK_FONT gkFontCreate(const char* family, int style, int size);
// Releases a font; 0 is ignored.
void gkFontFree(GK_FONT font);
// Non-zero for outline fonts that follow the modelview matrix, 0 for "[fixed]" bitmap fonts.
int gkFontScalable(GK_FONT font);
// metric[0] = advance width, metric[1] = height (ascent + descent) in pixels at the font's size.
int gkFontStringMetric(GK_FONT font, const char* text, int metric[2]);
// Draws `text` with the lower left corner of its metric box at the modelview origin, in the
// current colour. Needs a current GL context.
int gkFontRender(GK_FONT font, const char* text);
// Mask of the styles the family has.
int gkFamilyGetStyles(const char* family);
// Sizes the family has in that style; *count <= 0 means any size (and null is returned).
int* gkFamilyGetSizes(const char* family, int style, int* count);
// Releases an array from gkFamilyGetSizes.
void gkFree(void* array);

#ifdef __cplusplus
}
#endif

#endif
