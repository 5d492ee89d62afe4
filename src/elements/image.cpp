// Image: a texture on four corners, tinted by the fill colour.
#include "elements/kindCommon.h"

IMAGE_STRUCT* createImage(void)
{
    IMAGE_STRUCT defaults = {};
    setColor(defaults.fillColor, 1, 1, 1, 1);
    return createRecordOf<IMAGE_STRUCT>(nullptr, defaults, "createImage");
}
