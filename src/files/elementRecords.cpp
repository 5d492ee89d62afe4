// Element records of every generation: the bodies of all kinds, as each layout stores them.
#include "KorelEdit.h"
#include "core/linkedList.h"
#include "files/Reader.h"
#include "files/viewFileReaders.h"
#include "glyph/GlyphKit.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

// The end of a body that later grew a reserved tail. From 3.02 on the first of its four slots is
// `fillStyle` in the kinds that have one (pass null for the others).
void readBodyEnd(Reader& in, const Layout& layout, int32_t* fillStyle)
{
    switch (layout.bodyEnd) {
    case BodyEnd::none: return;
    case BodyEnd::reserved: in.skipIntegers(4); return;
    case BodyEnd::fields: {
        const int32_t first = in.integer();
        if (fillStyle)
            *fillStyle = first;
        in.skipIntegers(3);
        return;
    }
    }
}

void readRectBody(Reader& in, const Layout& layout, RECT_STRUCT* r)
{
    in.corners(r->cornerX, r->cornerY);
    r->strokeOn = in.integer();
    r->strokeWidth = in.real();
    r->strokeStyle = in.integer();
    in.reals(r->strokeColor, 4);
    r->fillOn = in.integer();
    in.reals(r->fillColor, 4);
    r->antialias = in.integer();
    readBodyEnd(in, layout, &r->fillStyle);
}

void readScissorBody(Reader& in, const Layout& layout, SCISSOR_STRUCT* s)
{
    in.corners(s->cornerX, s->cornerY);
    readBodyEnd(in, layout, nullptr);
}

// A font the record owns is replaced, never leaked, when the file names another.
void replaceFont(KR_FONT* font, const char* family, int style, int size)
{
    gkFontFree(*font);
    *font = gkFontCreate(family, style, size);
}

const char* const kFixedFont = "Courier [fixed]";

void setGraphFont(GRAPH_STRUCT* g, const char* family, int style, int size)
{
    if (family != g->fontFamily)
        snprintf(g->fontFamily, sizeof g->fontFamily, "%s", family);
    g->fontStyle = style;
    g->fontSize = size;
    replaceFont(&g->font, g->fontFamily, g->fontStyle, g->fontSize);
}

// Label fonts outside what the frame can show fall back to a plain fixed font, kept in the
// record so that the file is stored with the font that is really used. Revision 2.03 checked
// less and fell back to a smaller size.
void useGraphFont(GRAPH_STRUCT* g, GraphForm form)
{
    const bool stands = form == GraphForm::g203
                            ? g->fontSize < 41 && uint32_t(g->fontStyle) < 5
                            : g->fontSize >= 1 && g->fontSize <= 40 && uint32_t(g->fontStyle) <= 4 && g->fontFamily[0];
    if (stands)
        setGraphFont(g, g->fontFamily, g->fontStyle, g->fontSize);
    else
        setGraphFont(g, kFixedFont, GK_PLAIN, form == GraphForm::g203 ? 10 : 12);
}

// Fields 1 to 16: the oldest graphs had no x range and kept fewer of the autoscale settings.
void readGraphRange(Reader& in, GraphForm form, GRAPH_STRUCT* g)
{
    const bool xRange = form >= GraphForm::g201;
    if (xRange)
        g->type = in.integer();
    g->x = in.real();
    g->y = in.real();
    g->width = in.real();
    g->height = in.real();
    g->ymin = in.real();
    g->ymax = in.real();
    if (xRange) {
        g->xmin = in.real();
        g->xmax = in.real();
    }
    g->rate = in.real();
    g->autoscale = in.integer();
    if (form >= GraphForm::g107)
        g->minspready = in.real();
    if (xRange) {
        g->autoscalex = in.integer();
        g->minspreadx = in.real();
    }
    g->samples = in.integer();
    if (form >= GraphForm::g107)
        g->bars = in.integer();
}

// Fields 54 on: the label font, then fixed label ranges.
void readGraphLabels(Reader& in, const Layout& layout, GRAPH_STRUCT* g)
{
    in.skipIntegers(1);
    if (layout.graph < GraphForm::g203) {
        setGraphFont(g, kFixedFont, GK_PLAIN, 10);
        return;
    }
    in.fixed(g->fontFamily);
    g->fontStyle = in.integer();
    g->fontSize = in.integer();
    useGraphFont(g, layout.graph);
    if (layout.graph < GraphForm::g204)
        return;
    g->labelFixx = in.integer();
    g->labelFixy = in.integer();
    g->labelXmin = in.real();
    g->labelXmax = in.real();
    g->labelYmin = in.real();
    g->labelYmax = in.real();
    readBodyEnd(in, layout, nullptr);
}

// What the oldest forms lacked is set to how those programs drew.
void completeOldGraph(GraphForm form, GRAPH_STRUCT* g)
{
    if (form < GraphForm::g111) {
        const float opaqueBlack[4] = {0, 0, 0, 1};
        std::copy(opaqueBlack, opaqueBlack + 4, g->backgroundColor);
        g->labelyr = g->tickyr = 0;
    }
    if (form < GraphForm::g204) {
        g->labelFixx = g->labelFixy = 0;
        g->labelXmin = g->labelYmin = 0;
        g->labelXmax = g->labelYmax = 100.0f;
    }
}

void readGraphBody(Reader& in, const Layout& layout, GRAPH_STRUCT* g)
{
    const bool rightAxis = layout.graph >= GraphForm::g111;
    readGraphRange(in, layout.graph, g);
    in.reals(g->outlineColor, 4);
    if (rightAxis)
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
    if (rightAxis)
        g->labelyr = in.integer();
    g->tickx = in.integer();
    g->ticky = in.integer();
    if (rightAxis)
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
    readGraphLabels(in, layout, g);
    completeOldGraph(layout.graph, g);
}

// Points come in file order with their stored running numbers. Only a polygon that is
// closed by kind has a fill pattern; a polyline's copy of that field is ignored.
void readPolyBody(Reader& in, const Layout& layout, POLY_STRUCT* p, bool closedKind)
{
    p->closed = in.integer();
    p->strokeOn = in.integer();
    p->strokeWidth = in.real();
    p->strokeStyle = in.integer();
    in.reals(p->strokeColor, 4);
    p->fillOn = in.integer();
    in.reals(p->fillColor, 4);
    p->antialias = in.integer();
    readBodyEnd(in, layout, closedKind ? &p->fillStyle : nullptr);
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

// Radii are not stored: the stored matrix scales an ellipse of radius kStoredRadius. The oldest
// files stored two radii instead, which become that matrix.
void readCircleBody(Reader& in, const Layout& layout, CIRCLE_STRUCT* c)
{
    c->x = in.real();
    c->y = in.real();
    if (layout.circleRadii) {
        const float r1 = in.real(), r2 = in.real();
        float unused[4];
        in.reals(unused, 4);
        const float matrix[4] = {std::fabs(r1) / kStoredRadius, 0, 0, std::fabs(r2) / kStoredRadius};
        std::copy(matrix, matrix + 4, c->matrix);
    } else {
        in.reals(c->matrix, 4);
    }
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
    readBodyEnd(in, layout, &c->fillStyle);
}

// The stored length leaves out the terminator. A longer text than the field holds keeps
// what fits, and the stream stays in step with the stored bytes.
void readStoredText(Reader& in, TEXT_STRUCT* t)
{
    const int64_t length = in.integer();
    if (length >= 0)
        KGetFString(t->text, sizeof t->text, in.stream, int32_t(std::min<int64_t>(length + 1, INT32_MAX)));
}

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
    readStoredText(in, t);
    replaceFont(&t->font, t->fontFamily, t->fontStyle, t->fontSize);
    t->scalable = gkFontScalable(t->font);
}

// Up to 2.02 a text stored a font code and a line style of its own, and placed itself by its
// anchor; fixed text and vector text (the older kind code) are brought to the present record
// in different ways.
void readOldTextBody(Reader& in, TextForm form, TEXT_STRUCT* t, bool vectorText)
{
    in.skipIntegers(1);
    t->x = in.real();
    t->y = in.real();
    const int32_t fontCode = in.integer();
    t->strokeWidth = in.real();
    t->strokeStyle = in.integer();
    in.reals(t->strokeColor, 4);
    t->antialias = in.integer();
    if (form >= TextForm::fontCodeCorners)
        t->align = in.integer();
    if (form == TextForm::fontCodeCorners)
        in.corners(t->cornerX, t->cornerY);
    if (form == TextForm::fontCodeMatrix)
        in.reals(t->matrix, 4);
    readStoredText(in, t);
    if (!vectorText) {
        convertTextNewFormat(t, fontCode);
        return;
    }
    convertTextNewFormatVec(t, fontCode);
    if (form == TextForm::fontCodeCorners)
        calcVecText(t);
    else if (form == TextForm::fontCodeMatrix)
        calcVecTextNew(t);
}

void readLineBody(Reader& in, const Layout& layout, LINE_STRUCT* l)
{
    l->x1 = in.real();
    l->y1 = in.real();
    l->x2 = in.real();
    l->y2 = in.real();
    l->strokeWidth = in.real();
    l->strokeStyle = in.integer();
    in.reals(l->strokeColor, 4);
    l->antialias = in.integer();
    readBodyEnd(in, layout, nullptr);
}

// Older images stored a picture name, then pixels without alpha, and the oldest none at all.
void readImageBody(Reader& in, const Layout& layout, IMAGE_STRUCT* image)
{
    in.corners(image->cornerX, image->cornerY);
    in.reals(image->fillColor, 4);
    if (layout.image == ImageForm::none)
        return;
    const size_t unusedNameBytes = 128;
    in.skipIntegers(1);
    in.stream->skip(unusedNameBytes);
    in.skipIntegers(1);
    if (layout.image == ImageForm::noPixels)
        return;
    image->width = in.integer();
    image->height = in.integer();
    switch (layout.image) {
    case ImageForm::rgb: loadTextureOld(in.stream, image); return;
    case ImageForm::rgbaAfterReserved: in.skipIntegers(4); break;
    case ImageForm::present:
        image->fillStyle = in.integer();
        in.skipIntegers(3);
        break;
    default: break;
    }
    loadTexture(in.stream, image);
}

void readButtonBody(Reader& in, const Layout& layout, BUTTON_STRUCT* b)
{
    in.corners(b->cornerX, b->cornerY);
    in.reals(b->color0, 4);
    in.reals(b->color1, 4);
    in.reals(b->color2, 4);
    b->strokeWidth = in.real();
    b->state = in.integer();
    readBodyEnd(in, layout, nullptr);
}

void readSliderBody(Reader& in, const Layout& layout, SLIDER_STRUCT* s)
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
    readBodyEnd(in, layout, nullptr);
}

ELEMENT_STRUCT* readElement(const Layout& layout, uint32_t kind, KStream* stream, ELEMENT_STRUCT** list, int depth);

void readGroupBody(Reader& in, const Layout& layout, ELEMENT_STRUCT* group, int depth)
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
        ELEMENT_STRUCT* child = readElement(layout, kind, in.stream, nullptr, depth + 1);
        if (!child)
            return;
        child->parent = group;
        children.add(child);
    }
}

// Name and id: both stored from 2.02 on; before, a fixed name and the generated id; at first
// neither, and the element keeps what elementCreate generated.
void readHead(Reader& in, ElementHead head, ELEMENT_STRUCT* element)
{
    switch (head) {
    case ElementHead::generated: break;
    case ElementHead::fixedName: in.fixed(element->name); break;
    case ElementHead::counted:
        KGetFCounted(element->name, sizeof element->name, in.stream);
        KGetFCounted(element->id, sizeof element->id, in.stream);
        break;
    }
}

void readBody(Reader& in, const Layout& layout, uint32_t kind, ELEMENT_STRUCT* element, int depth)
{
    void* data = element->data;
    switch (element->type) {
    case KR_GRAPH: readGraphBody(in, layout, static_cast<GRAPH_STRUCT*>(data)); break;
    case KR_RECT: readRectBody(in, layout, static_cast<RECT_STRUCT*>(data)); break;
    case KR_POLYLINE:
    case KR_CPOLY:
        readPolyBody(in, layout, static_cast<POLY_STRUCT*>(data), element->type == KR_CPOLY);
        break;
    case KR_CIRCLE:
    case KR_ARC: readCircleBody(in, layout, static_cast<CIRCLE_STRUCT*>(data)); break;
    case KR_TEXT:
        if (layout.text == TextForm::present)
            readTextBody(in, static_cast<TEXT_STRUCT*>(data));
        else
            readOldTextBody(in, layout.text, static_cast<TEXT_STRUCT*>(data), kind == KR_TEXT_OLD);
        break;
    case KR_LINE: readLineBody(in, layout, static_cast<LINE_STRUCT*>(data)); break;
    case KR_IMAGE: readImageBody(in, layout, static_cast<IMAGE_STRUCT*>(data)); break;
    case KR_BUTTON: readButtonBody(in, layout, static_cast<BUTTON_STRUCT*>(data)); break;
    case KR_SLIDER: readSliderBody(in, layout, static_cast<SLIDER_STRUCT*>(data)); break;
    case KR_GROUP: readGroupBody(in, layout, element, depth); break;
    case KR_SCISSOR: readScissorBody(in, layout, static_cast<SCISSOR_STRUCT*>(data)); break;
    default: break;
    }
}

// Reads one element record and returns the element, not yet linked to any list unless `list` is given.
ELEMENT_STRUCT* readElement(const Layout& layout, uint32_t kind, KStream* stream, ELEMENT_STRUCT** list, int depth)
{
    Reader in{stream};
    ELEMENT_STRUCT* element = elementCreate(kind);
    if (!element) {
        stream->abandon();
        return nullptr;
    }
    if (list)
        elementAppend(element, list);
    readHead(in, layout.head, element);
    readBody(in, layout, kind, element, depth);
    if (element->setPickSticky)
        element->setPickSticky(element);
    actionLoad(layout, stream, &element->actions);
    return element;
}

} // namespace

ELEMENT_STRUCT* elementLoad(const Layout& layout, uint32_t kind, KStream* stream, ELEMENT_STRUCT** list)
{
    return readElement(layout, kind, stream, list, 0);
}
