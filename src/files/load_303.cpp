// Reader of revisions 303 and 304: configuration block, element runs, data sections.
#include "KorelEdit.h"
#include "core/linkedList.h"
#include "files/Reader.h"
#include "files/viewFileReaders.h"
#include "glyph/GlyphKit.h"

#include <algorithm>
#include <cstdio>

namespace {

void readRectBody(Reader& in, RECT_STRUCT* r)
{
    in.corners(r->cornerX, r->cornerY);
    r->strokeOn = in.integer();
    r->strokeWidth = in.real();
    r->strokeStyle = in.integer();
    in.reals(r->strokeColor, 4);
    r->fillOn = in.integer();
    in.reals(r->fillColor, 4);
    r->antialias = in.integer();
    r->fillStyle = in.integer();
    in.skipIntegers(3);
}

void readScissorBody(Reader& in, SCISSOR_STRUCT* s)
{
    in.corners(s->cornerX, s->cornerY);
    in.skipIntegers(4);
}

// A font the record owns is replaced, never leaked, when the file names another.
void replaceFont(KR_FONT* font, const char* family, int style, int size)
{
    gkFontFree(*font);
    *font = gkFontCreate(family, style, size);
}

// Label fonts outside what the frame can show fall back to a plain fixed font, kept in the
// record so that the file is stored with the font that is really used.
void useGraphFont(GRAPH_STRUCT* g)
{
    const bool stands = g->fontSize >= 1 && g->fontSize <= 40 && uint32_t(g->fontStyle) <= 4 && g->fontFamily[0];
    if (!stands) {
        snprintf(g->fontFamily, sizeof g->fontFamily, "%s", "Courier [fixed]");
        g->fontStyle = 1;
        g->fontSize = 12;
    }
    replaceFont(&g->font, g->fontFamily, g->fontStyle, g->fontSize);
}

void readGraphBody(Reader& in, GRAPH_STRUCT* g)
{
    g->type = in.integer();
    g->x = in.real();
    g->y = in.real();
    g->width = in.real();
    g->height = in.real();
    g->ymin = in.real();
    g->ymax = in.real();
    g->xmin = in.real();
    g->xmax = in.real();
    g->rate = in.real();
    g->autoscale = in.integer();
    g->minspready = in.real();
    g->autoscalex = in.integer();
    g->minspreadx = in.real();
    g->samples = in.integer();
    g->bars = in.integer();
    in.reals(g->outlineColor, 4);
    in.reals(g->backgroundColor, 4);
    g->outlineWidth = in.real();
    g->gridx = in.integer();
    g->gridy = in.integer();
    g->gridxAuto = in.integer();
    g->gridyAuto = in.integer();
    g->gridxSpace = in.real();
    g->gridySpace = in.real();
    g->gridxRef = in.real();
    g->gridyRef = in.real();
    g->gridStyle = in.integer();
    in.reals(g->gridColor, 4);
    g->labelx = in.integer();
    g->labely = in.integer();
    g->labelyr = in.integer();
    g->tickx = in.integer();
    g->ticky = in.integer();
    g->tickyr = in.integer();
    g->tickxAuto = in.integer();
    g->tickyAuto = in.integer();
    g->tickxSpace = in.real();
    g->tickySpace = in.real();
    g->tickxRef = in.real();
    g->tickyRef = in.real();
    g->tickxSub = in.integer();
    g->tickySub = in.integer();
    g->tickWidth = in.real();
    in.skipIntegers(1);
    in.fixed(g->fontFamily);
    g->fontStyle = in.integer();
    g->fontSize = in.integer();
    useGraphFont(g);
    g->labelFixx = in.integer();
    g->labelFixy = in.integer();
    g->labelXmin = in.real();
    g->labelXmax = in.real();
    g->labelYmin = in.real();
    g->labelYmax = in.real();
    in.skipIntegers(4);
}

// Points come in file order with their stored running numbers. Only a polygon that is
// closed by kind has a fill pattern; a polyline's copy of that field is ignored.
void readPolyBody(Reader& in, POLY_STRUCT* p, bool closedKind)
{
    p->closed = in.integer();
    p->strokeOn = in.integer();
    p->strokeWidth = in.real();
    p->strokeStyle = in.integer();
    in.reals(p->strokeColor, 4);
    p->fillOn = in.integer();
    in.reals(p->fillColor, 4);
    p->antialias = in.integer();
    const int32_t fillStyle = in.integer();
    if (closedKind)
        p->fillStyle = fillStyle;
    in.skipIntegers(3);
    const int32_t count = in.integer();
    const size_t pointBytes = 12;
    TailAppender<COORD_STRUCT> points(&p->coords);
    for (int32_t i = 0; i < count && in.roomFor(pointBytes); ++i) {
        COORD_STRUCT* c = createCoord();
        if (!c) {
            in.stream->abandon();
            return;
        }
        c->id = in.integer();
        c->x = in.real();
        c->y = in.real();
        points.add(c);
    }
}

// Radii are not stored: the stored matrix scales an ellipse of radius kStoredRadius.
void readCircleBody(Reader& in, CIRCLE_STRUCT* c)
{
    c->x = in.real();
    c->y = in.real();
    in.reals(c->matrix, 4);
    c->start = in.real();
    c->end = in.real();
    c->rx = kStoredRadius;
    c->ry = kStoredRadius;
    c->strokeOn = in.integer();
    c->strokeWidth = in.real();
    c->strokeStyle = in.integer();
    in.reals(c->strokeColor, 4);
    c->fillOn = in.integer();
    in.reals(c->fillColor, 4);
    c->antialias = in.integer();
    c->fillStyle = in.integer();
    in.skipIntegers(3);
}

// The stored length leaves out the terminator. A longer text than the field holds keeps
// what fits, and the stream stays in step with the stored bytes.
void readTextBody(Reader& in, TEXT_STRUCT* t)
{
    t->x = in.real();
    t->y = in.real();
    in.reals(t->strokeColor, 4);
    t->align = in.integer();
    in.reals(t->matrix, 4);
    in.fixed(t->fontFamily);
    t->fontStyle = in.integer();
    t->underline = in.integer();
    t->fontSize = in.integer();
    t->textSize = in.integer();
    t->fillStyle = in.integer();
    in.skipIntegers(5);
    const int64_t length = in.integer();
    if (length >= 0)
        KGetFString(t->text, sizeof t->text, in.stream, int32_t(std::min<int64_t>(length + 1, INT32_MAX)));
    replaceFont(&t->font, t->fontFamily, t->fontStyle, t->fontSize);
    t->scalable = gkFontScalable(t->font);
}

void readLineBody(Reader& in, LINE_STRUCT* l)
{
    l->x1 = in.real();
    l->y1 = in.real();
    l->x2 = in.real();
    l->y2 = in.real();
    l->strokeWidth = in.real();
    l->strokeStyle = in.integer();
    in.reals(l->strokeColor, 4);
    l->antialias = in.integer();
    in.skipIntegers(4);
}

void readImageBody(Reader& in, IMAGE_STRUCT* image)
{
    in.corners(image->cornerX, image->cornerY);
    in.reals(image->fillColor, 4);
    in.skipIntegers(1);
    in.stream->skip(128);
    in.skipIntegers(1);
    image->width = in.integer();
    image->height = in.integer();
    image->fillStyle = in.integer();
    in.skipIntegers(3);
    loadTexture(in.stream, image);
}

void readButtonBody(Reader& in, BUTTON_STRUCT* b)
{
    in.corners(b->cornerX, b->cornerY);
    in.reals(b->color0, 4);
    in.reals(b->color1, 4);
    in.reals(b->color2, 4);
    b->strokeWidth = in.real();
    b->state = in.integer();
    in.skipIntegers(4);
}

void readSliderBody(Reader& in, SLIDER_STRUCT* s)
{
    s->x = in.real();
    s->y = in.real();
    s->width = in.real();
    s->height = in.real();
    in.reals(s->faceColor, 4);
    in.reals(s->darkColor, 4);
    in.reals(s->lightColor, 4);
    s->bevelWidth = in.real();
    s->knobHalfSize = in.real();
    s->reserved1 = in.integer();
    s->reserved2 = in.real();
    in.skipIntegers(4);
}

ELEMENT_STRUCT* readElement(uint32_t kind, KStream* stream, ELEMENT_STRUCT** list, int depth);

void readGroupBody(Reader& in, ELEMENT_STRUCT* group, int depth)
{
    int32_t count = in.integer();
    if (count > 0 && depth >= kMaxGroupDepth) {
        in.stream->abandon();
        return;
    }
    TailAppender<ELEMENT_STRUCT> children(&group->child);
    // A count is only a promise: the children end with the data.
    for (int32_t i = 0; i < count && !in.stream->atEnd(); ++i) {
        uint32_t kind = uint32_t(in.integer());
        ELEMENT_STRUCT* child = readElement(kind, in.stream, nullptr, depth + 1);
        if (!child)
            return;
        child->parent = group;
        children.add(child);
    }
}

// Reads one element record and returns the element, not yet linked to any list unless `list` is given.
ELEMENT_STRUCT* readElement(uint32_t kind, KStream* stream, ELEMENT_STRUCT** list, int depth)
{
    Reader in{stream};
    ELEMENT_STRUCT* element = elementCreate(kind);
    if (!element) {
        stream->abandon();
        return nullptr;
    }
    if (list)
        elementAppend(element, list);
    KGetFCounted(element->name, sizeof element->name, stream);
    KGetFCounted(element->id, sizeof element->id, stream);
    void* data = element->data;
    switch (element->type) {
    case KR_GRAPH:
        readGraphBody(in, static_cast<GRAPH_STRUCT*>(data));
        break;
    case KR_RECT:
        readRectBody(in, static_cast<RECT_STRUCT*>(data));
        break;
    case KR_POLYLINE:
    case KR_CPOLY:
        readPolyBody(in, static_cast<POLY_STRUCT*>(data), element->type == KR_CPOLY);
        break;
    case KR_CIRCLE:
    case KR_ARC:
        readCircleBody(in, static_cast<CIRCLE_STRUCT*>(data));
        break;
    case KR_TEXT:
        readTextBody(in, static_cast<TEXT_STRUCT*>(data));
        break;
    case KR_LINE:
        readLineBody(in, static_cast<LINE_STRUCT*>(data));
        break;
    case KR_IMAGE:
        readImageBody(in, static_cast<IMAGE_STRUCT*>(data));
        break;
    case KR_BUTTON:
        readButtonBody(in, static_cast<BUTTON_STRUCT*>(data));
        break;
    case KR_SLIDER:
        readSliderBody(in, static_cast<SLIDER_STRUCT*>(data));
        break;
    case KR_GROUP:
        readGroupBody(in, element, depth);
        break;
    case KR_SCISSOR:
        readScissorBody(in, static_cast<SCISSOR_STRUCT*>(data));
        break;
    default:
        break;
    }
    if (element->setPickSticky)
        element->setPickSticky(element);
    actionLoad_303(stream, &element->actions);
    return element;
}

} // namespace

ELEMENT_STRUCT* elementLoad_303(uint32_t kind, KStream* stream, ELEMENT_STRUCT** list)
{
    return readElement(kind, stream, list, 0);
}

int loadConfigFile_303(KStream* stream, VIEW_STRUCT* view)
{
    Reader in{stream};
    view->x = in.real();
    view->y = in.real();
    view->width = in.real();
    view->height = in.real();
    in.reals(view->pageColor, 3);
    in.skipIntegers(4);
    return 0;
}

int loadFile_303(KStream* stream, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes, VIEW_STRUCT* view,
                 int revision)
{
    // A caller that wants no sources still has their records read past.
    DD_DATA_TYPE_STRUCT* unwanted = nullptr;
    if (!dataTypes)
        dataTypes = &unwanted;
    Reader in{stream};
    loadConfigFile_303(stream, view);
    TailAppender<ELEMENT_STRUCT> topLevel(elements);
    const int32_t sectionMarker = 20;
    int32_t kind = in.integer();
    while (kind != -1) {
        if (kind == sectionMarker) {
            dataLoad_303(stream, dataTypes, revision);
        } else {
            ELEMENT_STRUCT* element = readElement(uint32_t(kind), stream, nullptr, 0);
            if (!element)
                break;
            topLevel.add(element);
        }
        kind = in.integer();
    }
    while (unwanted)
        delDataType(&unwanted, unwanted, 0);
    return 0;
}
