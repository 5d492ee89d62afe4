// Image: a texture on four corners, tinted by the fill colour.
#include "KorelEdit.h"
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"

IMAGE_STRUCT* createImage(void)
{
    IMAGE_STRUCT defaults = {};
    setColor(defaults.fillColor, 1, 1, 1, 1);
    return createRecordOf<IMAGE_STRUCT>(nullptr, defaults, "createImage");
}

// The picture belongs to the element; a record without one holds 0 or -1, which the store ignores.
void imageFreeData(void* data)
{
    IMAGE_STRUCT* image = static_cast<IMAGE_STRUCT*>(data);
    if (image->texture > 0)
        txDelete(image->texture);
    image->texture = 0;
}

int imageSetAttr(ELEMENT_STRUCT* element)
{
    const IMAGE_STRUCT* image = static_cast<IMAGE_STRUCT*>(element->data);
    attrSeedCommon(&element->attr);
    attrSeedFace(&element->attr, image->fillColor);
    element->attr.text[0] = 0;
    return 0;
}

int imageSetPickSticky(ELEMENT_STRUCT* element)
{
    IMAGE_STRUCT* image = static_cast<IMAGE_STRUCT*>(element->data);
    cornerGeometry(element, image->cornerX, image->cornerY, image->localX, image->localY);
    return imageSetAttr(element);
}
