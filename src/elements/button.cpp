// Button: a bevelled face that shows a pressed state.
#include "KorelEdit.h"
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
    return buttonSetAttr(element);
}
