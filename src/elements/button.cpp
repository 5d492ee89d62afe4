// Button: a bevelled face that shows a pressed state.
#include "elements/kindCommon.h"

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
