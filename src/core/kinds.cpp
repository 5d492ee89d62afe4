// Which record and which operations each element kind code brings.
#include "KorelEdit.h"
#include "elements/elementKinds.h"

namespace {

template <class Record, Record* (*create)(const Record*)> void* createDefault()
{
    return create(nullptr);
}

void* createTextDefault()
{
    return createText(nullptr, 12, 30);
}

void* createImageDefault()
{
    return createImage();
}

// Indexed by kind code 0..14; entries with a null prefix are codes without a kind.
const KindInfo kinds[KR_SCISSOR + 1] = {
    /* 0 */ {"GRAPH", createDefault<GRAPH_STRUCT, createGraph>, graphFreeData, graphSetPickSticky, editGraph, nullptr},
    /* 1 */ {"RECTANGLE", createDefault<RECT_STRUCT, createRect>, nullptr, rectSetPickSticky, editRect, nullptr},
    /* 2 */ {"POLYGON", createDefault<POLY_STRUCT, createPoly>, polyFreeData, polySetPickSticky, editPoly, pickPoly},
    /* 3 */ {"CIRCLE", createDefault<CIRCLE_STRUCT, createCircle>, nullptr, circleSetPickSticky, editCircle,
             pickCircle},
    /* 4 */ {"TEXT", createTextDefault, textFreeData, textSetPickSticky, editTextx, nullptr},
    /* 5 */ {"LINE", createDefault<LINE_STRUCT, createLine>, nullptr, lineSetPickSticky, editLine, nullptr},
    /* 6 */ {"ARC", createDefault<CIRCLE_STRUCT, createArc>, nullptr, circleSetPickSticky, editCircle, nullptr},
    /* 7 */ {"TEXTURE", createImageDefault, imageFreeData, imageSetPickSticky, editImage, nullptr},
    /* 8 */ {"GROUP", nullptr, nullptr, groupSetPickSticky, editGroup, nullptr},
    /* 9 */ {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr},
    /* 10 */ {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr},
    /* 11 */ {"BUTTON", createDefault<BUTTON_STRUCT, createButton>, nullptr, buttonSetPickSticky, editButton, nullptr},
    /* 12 */ {"SLIDER", createDefault<SLIDER_STRUCT, createSlider>, nullptr, sliderSetPickSticky, editSlider, nullptr},
    /* 13 */ {"POLYGON", createDefault<POLY_STRUCT, createCPoly>, polyFreeData, polySetPickSticky, editPoly, pickPoly},
    /* 14 */ {"SCISSOR", createDefault<SCISSOR_STRUCT, createScissor>, nullptr, scissorSetPickSticky, editScissor,
              nullptr},
};

} // namespace

const KindInfo* kindInfo(uint32_t type)
{
    if (type > KR_SCISSOR || !kinds[type].prefix)
        return nullptr;
    return &kinds[type];
}
