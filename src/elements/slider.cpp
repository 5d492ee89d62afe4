// Slider: a sunken groove with a raised knob across it.
#include "KorelEdit.h"
#include "edit/handles.h"
#include "elements/kindCommon.h"

#include <cmath>
#include "graphics/graphics.h"

static SLIDER_STRUCT sliderDefaults()
{
    SLIDER_STRUCT s = {};
    setColor(s.faceColor, 0.5f, 0.5f, 0.5f, 1);
    setColor(s.darkColor, 0.3f, 0.3f, 0.3f, 1);
    setColor(s.lightColor, 0.9f, 0.9f, 0.9f, 1);
    s.bevelWidth = 2.0f;
    s.knobHalfSize = 15.0f;
    return s;
}

SLIDER_STRUCT* createSlider(const SLIDER_STRUCT* source)
{
    return createRecordOf(source, sliderDefaults(), "createSlider");
}

int sliderSetAttr(ELEMENT_STRUCT* element)
{
    const SLIDER_STRUCT* s = static_cast<SLIDER_STRUCT*>(element->data);
    attrSeedCommon(&element->attr);
    attrSeedFace(&element->attr, s->faceColor);
    element->attr.text[0] = 0;
    return 0;
}

// The groove is the box: its centre and size are the record's own.
int sliderSetPickSticky(ELEMENT_STRUCT* element)
{
    const SLIDER_STRUCT* s = static_cast<SLIDER_STRUCT*>(element->data);
    const double halfW = s->width * 0.5, halfH = s->height * 0.5;
    boxGeometry(element, float(s->x - halfW), float(s->y - halfH), float(s->x + halfW), float(s->y + halfH));
    placeCentre(element, s->x, s->y);
    addBoundsStickies(element);
    return sliderSetAttr(element);
}

// The centre and the upper right corner move; the size follows from the two.
static void applySlider(ELEMENT_STRUCT* element, const void* saved, int code, const KR_EDIT_VALUE* value)
{
    SLIDER_STRUCT* s = static_cast<SLIDER_STRUCT*>(element->data);
    const SLIDER_STRUCT* o = static_cast<const SLIDER_STRUCT*>(saved);
    const float cornerX = o->x + o->width / 2, cornerY = o->y + o->height / 2;
    float x = o->x, y = o->y, cx = cornerX, cy = cornerY;
    movePoint(element, code, value, &x, &y, o->x, o->y);
    movePoint(element, code, value, &cx, &cy, cornerX, cornerY);
    s->x = x;
    s->y = y;
    s->width = 2 * std::fabs(cx - x);
    s->height = 2 * std::fabs(cy - y);
}

static StyleFields sliderStyle(void* data)
{
    SLIDER_STRUCT* r = static_cast<SLIDER_STRUCT*>(data);
    return bevelStyle(r->faceColor, r->lightColor, r->darkColor);
}

int editSlider(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    static const KindEdit kind{sizeof(SLIDER_STRUCT), applySlider, sliderSetAttr, nullptr, nullptr, sliderStyle};
    return runKindEdit(element, stickies, code, phase, value, kind);
}

// A box about the local origin bevelled `e` inwards.
static void drawBevelBox(float l, float r, float b, float t, float e, const float face[4], const float lit[4],
                         const float shaded[4])
{
    const float outerX[4] = {l, l, r, r}, outerY[4] = {b, t, t, b};
    drawBevelPanel(outerX, outerY, l + e, b + e, r - e, t - e, face, lit, shaded);
}

int drawSlider(SLIDER_STRUCT* s, ELEMENT_ATTR* attr, int selected)
{
    // Only an opaque face with bevels of no alpha at all draws without blending.
    const bool opaque = double(s->faceColor[3]) >= 0.99 && s->darkColor[3] == 0 && s->lightColor[3] == 0;
    tkAliasBlend(0, opaque ? 1.0f : 0.5f);
    const float r = float(s->width * 0.5), t = float(s->height * 0.5), l = -r, b = -t;
    const float e = s->bevelWidth;
    // Both faces take the fill colour, so that a fill-colour action recolours the whole slider.
    drawBevelBox(l, r, b, t, e, attr->fillColor, s->darkColor, s->lightColor); // the groove, sunken
    if (selected && !attr->live) {
        const float x[4] = {l, l, r, r}, y[4] = {b, t, t, b};
        drawSelectionLoop(x, y);
    }
    // The knob spans the groove's inner width on the local origin: only moving the element moves
    // it, and nothing keeps it inside the groove.
    drawBevelBox(l + e, r - e, -s->knobHalfSize, s->knobHalfSize, e, attr->fillColor, s->lightColor, s->darkColor);
    return 0;
}
