// Slider: a groove with a knob.
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
