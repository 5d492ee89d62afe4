// Reader of revisions 303 and 304: configuration block, element runs, data sections.
#include "core/linkedList.h"
#include "files/viewFileReaders.h"

namespace {

struct Reader {
    KStream* stream;

    float real() { return KGetFFloat(stream); }
    int32_t integer() { return KGetFInt(stream); }
    void reals(float* target, int n)
    {
        for (int i = 0; i < n; ++i)
            target[i] = real();
    }
    void skipIntegers(int n)
    {
        for (int i = 0; i < n; ++i)
            integer();
    }
    // Corners are stored point by point; the records keep x and y apart.
    void corners(float cornerX[4], float cornerY[4])
    {
        for (int i = 0; i < 4; ++i) {
            cornerX[i] = real();
            cornerY[i] = real();
        }
    }
};

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

// The action list closes every element record.
void readActionList(Reader& in)
{
    // Action records are not read yet: a file that holds some loads up to this element.
    if (in.integer() > 0)
        in.stream->abandon();
}

bool bodyIsReadable(uint32_t kind)
{
    switch (kind) {
    case KR_RECT:
    case KR_GROUP:
    case KR_SCISSOR:
        return true;
    default:
        // Codes without a kind have no body; the kinds with bodies not read yet end the load.
        return kind == 9 || kind > KR_SCISSOR;
    }
}

// Reads one element record and returns the element, not yet linked to any list unless `list` is given.
ELEMENT_STRUCT* readElement(uint32_t kind, KStream* stream, ELEMENT_STRUCT** list, int depth)
{
    Reader in{stream};
    if (!bodyIsReadable(kind)) {
        stream->abandon();
        return nullptr;
    }
    ELEMENT_STRUCT* element = elementCreate(kind);
    if (!element) {
        stream->abandon();
        return nullptr;
    }
    if (list)
        elementAppend(element, list);
    KGetFCounted(element->name, sizeof element->name, stream);
    KGetFCounted(element->id, sizeof element->id, stream);
    switch (element->type) {
    case KR_RECT:
        readRectBody(in, static_cast<RECT_STRUCT*>(element->data));
        break;
    case KR_GROUP:
        readGroupBody(in, element, depth);
        break;
    case KR_SCISSOR:
        readScissorBody(in, static_cast<SCISSOR_STRUCT*>(element->data));
        break;
    default:
        break;
    }
    if (element->setPickSticky)
        element->setPickSticky(element);
    readActionList(in);
    return element;
}

void readDataSection(Reader& in)
{
    // Data-source records are not read yet: a file with sources keeps its elements.
    if (in.integer() > 0)
        in.stream->abandon();
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

int loadFile_303(KStream* stream, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT**, VIEW_STRUCT* view, int)
{
    Reader in{stream};
    loadConfigFile_303(stream, view);
    TailAppender<ELEMENT_STRUCT> topLevel(elements);
    const int32_t sectionMarker = 20;
    int32_t kind = in.integer();
    while (kind != -1) {
        if (kind == sectionMarker) {
            readDataSection(in);
        } else {
            ELEMENT_STRUCT* element = readElement(uint32_t(kind), stream, nullptr, 0);
            if (!element)
                break;
            topLevel.add(element);
        }
        kind = in.integer();
    }
    return 0;
}
