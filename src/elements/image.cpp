// Image: a texture on four corners, tinted by the fill colour.
#include "KorelEdit.h"
#include "edit/handles.h"
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

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

// The text reader hands over the bitmap it unpacked; the binary readers take theirs from the stream.
int loadTextureFromData(const uint8_t* bytes, IMAGE_STRUCT* record)
{
    if (!record)
        return -1;
    record->texture = txCreate(record->width, record->height, bytes);
    return record->texture < 0 ? -1 : 0;
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
    addBoundsStickies(element);
    return imageSetAttr(element);
}

// A picture is tinted by its fill colour; its pattern stays as loaded.
static StyleFields imageStyle(void* data)
{
    IMAGE_STRUCT* image = static_cast<IMAGE_STRUCT*>(data);
    StyleFields f;
    f.fill = image->fillColor;
    f.fillStyle = &image->fillStyle;
    return f;
}

int editImage(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    static const KindEdit kind{sizeof(IMAGE_STRUCT), applyCorners<IMAGE_STRUCT>, imageSetAttr, nullptr, nullptr,
                               imageStyle};
    return runKindEdit(element, stickies, code, phase, value, kind);
}

// The texture environment modulates, so the fill colour tints the picture and its alpha fades it.
int drawImage(IMAGE_STRUCT* image, ELEMENT_ATTR* attr, int selected)
{
    tkLineStipple(1, 0xFFFF);
    tkAliasBlend(1, attr->fillColor[3]);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    kvColor4f(attr->fillColor[0], attr->fillColor[1], attr->fillColor[2], attr->fillColor[3]);
    setStipple(image->fillStyle, image->fillPattern);
    txDraw(image->texture, image->localX, image->localY);
    tkAliasBlend(0, 1.0f);
    setStipple(0, nullptr);
    if (selected && !attr->live)
        drawSelectionLoop(image->localX, image->localY);
    return 0;
}
