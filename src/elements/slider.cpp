// Slider: a groove with a knob.
#include "KorelEdit.h"
#include "elements/kindCommon.h"

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
    return sliderSetAttr(element);
}
