// Writer of revisions 303 and 304: the frame, and each element record as load_303.cpp reads it.
#include "KorelEdit.h"
#include "files/KStream.h"
#include "files/Writer.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

// Marks the end of the element run; no element kind has this code.
constexpr int32_t kSectionMarker = 20;
// Files of this format always hold this value in the graph's reserved Integer.
constexpr int32_t kGraphReservedMark = 7;
// The magic field and the texts of the element head, in bytes with their terminators.
constexpr size_t kMagicBytes = 30;
constexpr size_t kNameBytes = sizeof(ELEMENT_STRUCT::name);
constexpr size_t kIdBytes = sizeof(ELEMENT_STRUCT::id);
constexpr size_t kImageReservedBytes = 128;
// Revisions whose layout this writer produces; older ones are read only.
constexpr int kFirstWritten = 303, kLastWritten = 304;

// The length with terminator of the text in a field of `size` bytes. A text that fills the
// field, or has no terminator in it, is cut in place so that the field holds what is written.
int32_t cutToField(char* field, size_t size)
{
    const size_t length = strnlen(field, size);
    if (length < size)
        return int32_t(length + 1);
    field[size - 1] = 0;
    return int32_t(size);
}

// A length Integer, then the text and its terminator.
void writeCounted(Writer& out, char* field, size_t size)
{
    const int32_t n = cutToField(field, size);
    out.integer(n);
    KPutFString(field, out.stream, n);
}

void writeRectBody(Writer& out, const RECT_STRUCT* r)
{
    out.corners(r->cornerX, r->cornerY);
    out.integer(r->strokeOn);
    out.real(r->strokeWidth);
    out.integer(r->strokeStyle);
    out.reals(r->strokeColor, 4);
    out.integer(r->fillOn);
    out.reals(r->fillColor, 4);
    out.integer(r->antialias);
    out.integer(r->fillStyle);
    out.zeros(3);
}

void writeScissorBody(Writer& out, const SCISSOR_STRUCT* s)
{
    out.corners(s->cornerX, s->cornerY);
    out.zeros(4);
}

// The font fields are those in use: after loading, the fall-back font where the file's was bad.
void writeGraphBody(Writer& out, const GRAPH_STRUCT* g)
{
    out.integer(g->type);
    out.real(g->x);
    out.real(g->y);
    out.real(g->width);
    out.real(g->height);
    out.real(g->ymin);
    out.real(g->ymax);
    out.real(g->xmin);
    out.real(g->xmax);
    out.real(g->rate);
    out.integer(g->autoscale);
    out.real(g->minspready);
    out.integer(g->autoscalex);
    out.real(g->minspreadx);
    out.integer(g->samples);
    out.integer(g->bars);
    out.reals(g->outlineColor, 4);
    out.reals(g->backgroundColor, 4);
    out.real(g->outlineWidth);
    out.integer(g->gridx);
    out.integer(g->gridy);
    out.integer(g->gridxAuto);
    out.integer(g->gridyAuto);
    out.real(g->gridxSpace);
    out.real(g->gridySpace);
    out.real(g->gridxRef);
    out.real(g->gridyRef);
    out.integer(g->gridStyle);
    out.reals(g->gridColor, 4);
    out.integer(g->labelx);
    out.integer(g->labely);
    out.integer(g->labelyr);
    out.integer(g->tickx);
    out.integer(g->ticky);
    out.integer(g->tickyr);
    out.integer(g->tickxAuto);
    out.integer(g->tickyAuto);
    out.real(g->tickxSpace);
    out.real(g->tickySpace);
    out.real(g->tickxRef);
    out.real(g->tickyRef);
    out.integer(g->tickxSub);
    out.integer(g->tickySub);
    out.real(g->tickWidth);
    out.integer(kGraphReservedMark);
    out.fixed(g->fontFamily);
    out.integer(g->fontStyle);
    out.integer(g->fontSize);
    out.integer(g->labelFixx);
    out.integer(g->labelFixy);
    out.real(g->labelXmin);
    out.real(g->labelXmax);
    out.real(g->labelYmin);
    out.real(g->labelYmax);
    out.zeros(4);
}

// Only a polygon that is closed by kind stores its fill pattern.
void writePolyBody(Writer& out, const POLY_STRUCT* p, bool closedKind)
{
    out.integer(p->closed);
    out.integer(p->strokeOn);
    out.real(p->strokeWidth);
    out.integer(p->strokeStyle);
    out.reals(p->strokeColor, 4);
    out.integer(p->fillOn);
    out.reals(p->fillColor, 4);
    out.integer(p->antialias);
    out.integer(closedKind ? p->fillStyle : 0);
    out.zeros(3);
    out.integer(listLength(p->coords));
    for (const COORD_STRUCT* c = p->coords; c; c = c->next) {
        out.integer(c->id);
        out.real(c->x);
        out.real(c->y);
    }
}

// The radii are not stored and read back as kStoredRadius. A rim point is
// matrix * (rx cos a, ry sin a), so scaling the matrix's columns by rx and ry over kStoredRadius
// keeps every point where it is drawn, whatever radii the element had.
void writeCircleBody(Writer& out, const CIRCLE_STRUCT* c)
{
    const float sx = c->rx / kStoredRadius, sy = c->ry / kStoredRadius;
    const float* m = c->matrix;
    const float matrix[4] = {m[0] * sx, m[1] * sy, m[2] * sx, m[3] * sy};
    out.real(c->x);
    out.real(c->y);
    out.reals(matrix, 4);
    out.real(c->start);
    out.real(c->end);
    out.integer(c->strokeOn);
    out.real(c->strokeWidth);
    out.integer(c->strokeStyle);
    out.reals(c->strokeColor, 4);
    out.integer(c->fillOn);
    out.reals(c->fillColor, 4);
    out.integer(c->antialias);
    out.integer(c->fillStyle);
    out.zeros(3);
}

// The stored length leaves out the terminator, which follows the text.
void writeTextBody(Writer& out, TEXT_STRUCT* t)
{
    out.real(t->x);
    out.real(t->y);
    out.reals(t->strokeColor, 4);
    out.integer(t->align);
    out.reals(t->matrix, 4);
    out.fixed(t->fontFamily);
    out.integer(t->fontStyle);
    out.integer(t->underline);
    out.integer(t->fontSize);
    out.integer(t->textSize);
    out.integer(t->fillStyle);
    out.zeros(5);
    const int32_t n = cutToField(t->text, sizeof t->text);
    out.integer(n - 1);
    KPutFString(t->text, out.stream, n);
}

void writeLineBody(Writer& out, const LINE_STRUCT* l)
{
    out.real(l->x1);
    out.real(l->y1);
    out.real(l->x2);
    out.real(l->y2);
    out.real(l->strokeWidth);
    out.integer(l->strokeStyle);
    out.reals(l->strokeColor, 4);
    out.integer(l->antialias);
    out.zeros(4);
}

// The pixels come from the picture store; an image whose picture isn't kept there is stored
// without pixels, whatever size its record holds.
void writeImageBody(Writer& out, const IMAGE_STRUCT* image)
{
    const uint8_t* pixels = image->width > 0 && image->height > 0 ? txData(image->texture) : nullptr;
    out.corners(image->cornerX, image->cornerY);
    out.reals(image->fillColor, 4);
    out.zeros(1);
    out.text(nullptr, 0, kImageReservedBytes);
    out.zeros(1);
    out.integer(pixels ? image->width : 0);
    out.integer(pixels ? image->height : 0);
    out.integer(image->fillStyle);
    out.zeros(3);
    if (pixels)
        fwrite(pixels, 4 * size_t(image->width), size_t(image->height), out.stream);
}

void writeButtonBody(Writer& out, const BUTTON_STRUCT* b)
{
    out.corners(b->cornerX, b->cornerY);
    out.reals(b->color0, 4);
    out.reals(b->color1, 4);
    out.reals(b->color2, 4);
    out.real(b->strokeWidth);
    out.integer(b->state);
    out.zeros(4);
}

void writeSliderBody(Writer& out, const SLIDER_STRUCT* s)
{
    out.real(s->x);
    out.real(s->y);
    out.real(s->width);
    out.real(s->height);
    out.reals(s->faceColor, 4);
    out.reals(s->darkColor, 4);
    out.reals(s->lightColor, 4);
    out.real(s->bevelWidth);
    out.real(s->knobHalfSize);
    out.integer(s->reserved1);
    out.real(s->reserved2);
    out.zeros(4);
}

void writeGroupBody(Writer& out, ELEMENT_STRUCT* group)
{
    out.integer(listLength(group->child));
    for (ELEMENT_STRUCT* child = group->child; child; child = child->next)
        elementSave_303(child, out.stream);
}

} // namespace

int elementSave_303(ELEMENT_STRUCT* element, FILE* stream)
{
    Writer out{stream};
    out.integer(int32_t(element->type));
    writeCounted(out, element->name, kNameBytes);
    writeCounted(out, element->id, kIdBytes);
    void* data = element->data;
    // Kinds without a record have no body: head and action list only.
    switch (element->type) {
    case KR_GRAPH:
        writeGraphBody(out, static_cast<const GRAPH_STRUCT*>(data));
        break;
    case KR_RECT:
        writeRectBody(out, static_cast<const RECT_STRUCT*>(data));
        break;
    case KR_POLYLINE:
    case KR_CPOLY:
        writePolyBody(out, static_cast<const POLY_STRUCT*>(data), element->type == KR_CPOLY);
        break;
    case KR_CIRCLE:
    case KR_ARC:
        writeCircleBody(out, static_cast<const CIRCLE_STRUCT*>(data));
        break;
    case KR_TEXT:
        writeTextBody(out, static_cast<TEXT_STRUCT*>(data));
        break;
    case KR_LINE:
        writeLineBody(out, static_cast<const LINE_STRUCT*>(data));
        break;
    case KR_IMAGE:
        writeImageBody(out, static_cast<const IMAGE_STRUCT*>(data));
        break;
    case KR_BUTTON:
        writeButtonBody(out, static_cast<const BUTTON_STRUCT*>(data));
        break;
    case KR_SLIDER:
        writeSliderBody(out, static_cast<const SLIDER_STRUCT*>(data));
        break;
    case KR_GROUP:
        writeGroupBody(out, element);
        break;
    case KR_SCISSOR:
        writeScissorBody(out, static_cast<const SCISSOR_STRUCT*>(data));
        break;
    default:
        break;
    }
    actionSave_303(element->actions, stream);
    return 0;
}

int saveFile_303(const char* path, ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* dataTypes, const VIEW_STRUCT* view)
{
    const int revision = KGet_releasenr();
    FILE* stream = path ? fopen(path, "wb") : nullptr;
    if (!stream) {
        if (!path)
            errno = EINVAL;
        perror("file open");
        return -1;
    }
    Writer out{stream};
    char magic[kMagicBytes + 1] = {};
    snprintf(magic, sizeof magic, "VIEW FILE %d.%d\n", revision / 100, revision % 100);
    out.text(magic, sizeof magic, kMagicBytes);
    out.integer(revision / 100);
    out.integer(revision % 100);
    static const VIEW_STRUCT noPage = {};
    const VIEW_STRUCT* page = view ? view : &noPage;
    out.real(page->x);
    out.real(page->y);
    out.real(page->width);
    out.real(page->height);
    out.reals(page->pageColor, 3);
    out.zeros(4);
    for (ELEMENT_STRUCT* element = elements; element; element = element->next)
        elementSave_303(element, stream);
    out.integer(kSectionMarker);
    dataSave_303(dataTypes, stream);
    // A full disk shows only here: a file that is not whole is no save.
    const bool written = !ferror(stream);
    if (fclose(stream) != 0 || !written) {
        logMsg(1, "saveFile: cannot write %s\n", path);
        return -1;
    }
    return 0;
}

int saveFile(const char* path, ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* dataTypes, const VIEW_STRUCT* view)
{
    const int revision = KGet_releasenr();
    if (revision >= kFirstWritten && revision <= kLastWritten)
        return saveFile_303(path, elements, dataTypes, view);
    logMsg(1, "saveFile: rev %d not supported\n", revision);
    return 0;
}
