// Button: a bevelled face that shows a pressed state.
#include "KorelEdit.h"
#include "edit/handles.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

static BUTTON_STRUCT buttonDefaults()
{
    BUTTON_STRUCT b = {};
    setColor(b.color0, 0.7f, 0.7f, 0.7f, 1);
    setColor(b.color1, 0.9f, 0.9f, 0.9f, 1);
    setColor(b.color2, 0.3f, 0.3f, 0.3f, 1);
    b.strokeWidth = 4.0f;
    return b;
}

BUTTON_STRUCT* createButton(const BUTTON_STRUCT* source)
{
    return createRecordOf(source, buttonDefaults(), "createButton");
}

int buttonSetAttr(ELEMENT_STRUCT* element)
{
    const BUTTON_STRUCT* b = static_cast<BUTTON_STRUCT*>(element->data);
    attrSeedCommon(&element->attr);
    attrSeedFace(&element->attr, b->color0);
    element->attr.text[0] = 0;
    return 0;
}

int buttonSetPickSticky(ELEMENT_STRUCT* element)
{
    BUTTON_STRUCT* b = static_cast<BUTTON_STRUCT*>(element->data);
    cornerGeometry(element, b->cornerX, b->cornerY, b->localX, b->localY);
    addBoundsStickies(element);
    return buttonSetAttr(element);
}

static StyleFields buttonStyle(void* data)
{
    BUTTON_STRUCT* r = static_cast<BUTTON_STRUCT*>(data);
    return bevelStyle(r->color0, r->color1, r->color2);
}

int editButton(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    static const KindEdit kind{sizeof(BUTTON_STRUCT), applyCorners<BUTTON_STRUCT>, buttonSetAttr, nullptr, nullptr,
                               buttonStyle};
    return runKindEdit(element, stickies, code, phase, value, kind);
}

// The outer corners as the bevels need them (lower left, upper left, upper right, lower right),
// taken from the record's corners so that a mirrored button still bevels the right way.
static void bevelCorners(const BUTTON_STRUCT* b, float x[4], float y[4])
{
    const bool leftToRight = b->localX[2] > b->localX[0], upwards = b->localY[1] > b->localY[0];
    static const int kSame[4] = {0, 1, 2, 3}, kMirroredX[4] = {3, 2, 1, 0}, kMirroredY[4] = {1, 0, 3, 2};
    for (int k = 0; k < 4; ++k) {
        x[k] = b->localX[(leftToRight ? kSame : kMirroredX)[k]];
        y[k] = b->localY[(upwards ? kSame : kMirroredY)[k]];
    }
}

static void shade(const float colour[4], float factor, float shaded[4])
{
    for (int i = 0; i < 3; ++i)
        shaded[i] = colour[i] * factor;
    shaded[3] = colour[3];
}

int drawButton(BUTTON_STRUCT* b, ELEMENT_ATTR* attr, int selected)
{
    // Only an opaque face with edge colours of no alpha at all leaves the blending as it was.
    if (!(attr->fillColor[3] >= 0.99f && b->color1[3] == 0 && b->color2[3] == 0))
        tkAliasBlend(0, 0.5f);
    // While the view runs an input action keeps the pressed state in the line style.
    b->state = attr->live ? attr->lineStyle : 0;
    const bool pressed = b->state != 0;
    float face[4], bright[4], dark[4];
    shade(attr->fillColor, pressed ? 0.6f : 0.7f, face);
    shade(attr->fillColor, pressed ? 0.5f : 1.0f, bright);
    shade(attr->fillColor, pressed ? 1.0f : 0.5f, dark);
    float x[4], y[4];
    bevelCorners(b, x, y);
    // The inner box stays upright even in a turned button; a bevel wider than half the button
    // turns it inside out, and it is drawn all the same.
    const float w = b->strokeWidth;
    drawBevelPanel(x, y, x[0] + w, y[0] + w, x[2] - w, y[1] - w, face, bright, dark);
    if (selected && !attr->live)
        drawSelectionLoop(b->localX, b->localY);
    return 0;
}
