// The codes an edit applies at once, whatever the phase: line and fill style and colour,
// smoothing, and a kind's label font. Each kind says where it keeps these; one rule sets them.
#include "edit/handles.h"
#include "glyph/GlyphKit.h"
#include "graphics/graphics.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

// The label sizes a frame can show, and a stored file keeps.
constexpr int kLabelFontMin = 1, kLabelFontMax = 40;
// A bevel's dark side against its light one.
constexpr float kShade = 0.4f;

void setRgb(float* target, const float rgb[3], float factor = 1)
{
    if (target)
        for (int i = 0; i < 3; ++i)
            target[i] = rgb[i] * factor;
}

template <class T> void setIf(T* target, T value)
{
    if (target)
        *target = value;
}

void applyFontCode(const StyleFields& f, int code, const KR_EDIT_VALUE* v)
{
    if (!f.font)
        return;
    switch (code) {
    case KR_EDIT_FONT_SIZE: *f.fontSize = std::clamp(int(v->number), kLabelFontMin, kLabelFontMax); break;
    case KR_EDIT_FONT_FAMILY: {
        // The caller's string need not end within its field.
        const size_t n = strnlen(v->string, std::min(sizeof v->string, size_t(63)));
        memcpy(f.fontFamily, v->string, n);
        f.fontFamily[n] = '\0';
        *f.fontStyle = styleOfFamily(f.fontFamily, *f.fontStyle);
        *f.fontSize = nearestSize(f.fontFamily, *f.fontStyle, *f.fontSize);
        break;
    }
    case KR_EDIT_FONT_STYLE: *f.fontStyle = v->number; break;
    default: return;
    }
    gkFontFree(*f.font);
    *f.font = gkFontCreate(f.fontFamily, *f.fontStyle, *f.fontSize);
}

} // namespace

void applyStyleCode(const StyleFields& f, int code, const KR_EDIT_VALUE* v)
{
    switch (code) {
    case KR_EDIT_STROKE_WIDTH:
        setIf(f.width, v->width);
        setIf(f.strokeOn, int32_t(v->width >= 1));
        break;
    case KR_EDIT_STROKE_STYLE:
        if (f.lineStyle) {
            *f.lineStyle = v->number;
            getLineStipple(v->number, f.stippleFactor, f.stipplePattern);
        }
        break;
    case KR_EDIT_FILL:
        setIf(f.fillOn, v->number);
        setRgb(f.fill, v->color);
        break;
    case KR_EDIT_STROKE:
        setIf(f.strokeOn, v->number);
        setRgb(f.stroke, v->color);
        setRgb(f.shade, v->color, kShade);
        break;
    case KR_EDIT_ANTIALIAS: setIf(f.antialias, v->number); break;
    case KR_EDIT_FILL_ALPHA:
        if (f.fill)
            f.fill[3] = v->color[0];
        break;
    case KR_EDIT_STROKE_ALPHA:
        for (float* c : {f.stroke, f.shade})
            if (c)
                c[3] = v->color[0];
        break;
    case KR_EDIT_FILL_STYLE:
        setIf(f.fillStyle, v->number);
        if (f.fillPattern)
            memcpy(f.fillPattern, getPattern(v->number), sizeof RECT_STRUCT::fillPattern);
        break;
    default: applyFontCode(f, code, v); break;
    }
}

int styleOfFamily(const char* family, int style)
{
    const int has = gkFamilyGetStyles(family);
    if (style & has)
        return style;
    for (int bit : {GK_PLAIN, GK_BOLD, GK_ITALIC, GK_BOLD_ITALIC})
        if (has & bit)
            return bit;
    return style;
}

// The first wins a tie, and a family that takes any size keeps the wish.
int nearestSize(const char* family, int style, int wanted)
{
    int count = 0;
    int* sizes = gkFamilyGetSizes(family, style, &count);
    int best = wanted;
    long long bestDistance = 100000;
    for (int i = 0; i < count; ++i) {
        const long long distance = std::llabs(static_cast<long long>(sizes[i]) - wanted);
        if (distance < bestDistance)
            best = sizes[i], bestDistance = distance;
    }
    if (count > 0)
        gkFree(sizes);
    return best;
}
