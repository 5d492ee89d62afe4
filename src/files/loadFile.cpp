// Opening a binary view file: header, choice of the reader generation, finishing pass.
#include "KorelEdit.h"
#include "files/viewFileReaders.h"
#include "graphics/graphics.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

struct Header {
    char magic[30];
    int32_t major, minor;
    // Wrapping arithmetic: a garbled header must give a revision, not undefined behaviour.
    int revision() const { return int(uint32_t(major) * 100u + uint32_t(minor)); }
    bool valid() const { return memcmp(magic, "VIEW FILE", 9) == 0; }
};

// All three header fields are read before anything is tested.
Header readHeader(KStream* stream)
{
    Header h = {};
    KGetFString(h.magic, sizeof h.magic, stream, sizeof h.magic);
    h.major = KGetFInt(stream);
    h.minor = KGetFInt(stream);
    return h;
}

const char* const kDashes = "-------------------------------------\n";

enum class Opened { ok, unreadable, wrongFormat };

// Reads the file and its header, and says so in the log.
Opened openViewFile(const char* path, const char* readingText, const char* versionFormat, std::vector<uint8_t>* bytes,
                    KStream* stream, Header* header)
{
    if (!path || !readWholeFile(path, bytes))
        return Opened::unreadable;
    *stream = KStream{bytes->data(), bytes->size(), 0};
    *header = readHeader(stream);
    if (!header->valid()) {
        logMsg(1, "wrong file format\n");
        return Opened::wrongFormat;
    }
    logMsg(3, "%s", kDashes);
    logMsg(3, readingText, path);
    logMsg(3, versionFormat, header->major, header->minor);
    logMsg(3, "%s", kDashes);
    return Opened::ok;
}

} // namespace

int loadFile(const char* path, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes, VIEW_STRUCT* view)
{
    std::vector<uint8_t> bytes;
    KStream stream;
    Header header;
    switch (openViewFile(path, "reading view file from %s\n", "Version = %d.%d\n", &bytes, &stream, &header)) {
    case Opened::unreadable:
        logMsg(1, "cannot open file %s\n", path ? path : "(null)");
        return -1;
    case Opened::wrongFormat:
        return -1;
    case Opened::ok:
        break;
    }
    const Layout* layout = layoutOf(header.revision());
    if (!layout) {
        logMsg(1, "loadFile: rev %d not supported\n", header.revision());
        return 0;
    }
    loadGeneration(*layout, &stream, elements, dataTypes, view, header.revision());
    for (ELEMENT_STRUCT* e = *elements; e; e = e->next)
        definitionLoad(e);
    return 0;
}

int loadConfigFile(const char* path, VIEW_STRUCT* view)
{
    std::vector<uint8_t> bytes;
    KStream stream;
    Header header;
    switch (openViewFile(path, "reading config from %s\n", "Version = %d.%02d\n", &bytes, &stream, &header)) {
    case Opened::unreadable: {
        int error = path && errno ? errno : EINVAL;
        errno = error;
        perror("file open");
        return -error;
    }
    case Opened::wrongFormat:
        return -1;
    case Opened::ok:
        break;
    }
    const Layout* layout = layoutOf(header.revision());
    if (!layout) {
        logMsg(1, "loadConfigFile: rev %d not supported\n", header.revision());
        return 0;
    }
    return loadConfigGeneration(*layout, &stream, view);
}

namespace {

template <class Record> void expandStroke(Record* r)
{
    getLineStipple(r->strokeStyle, &r->stippleFactor, &r->stipplePattern);
}

template <class Record> void expandFill(Record* r)
{
    memcpy(r->fillPattern, getPattern(r->fillStyle), sizeof r->fillPattern);
}

template <class Record> void expandBoth(void* data)
{
    Record* r = static_cast<Record*>(data);
    expandStroke(r);
    expandFill(r);
}

} // namespace

int definitionLoad(ELEMENT_STRUCT* element)
{
    void* data = element->data;
    switch (element->type) {
    case KR_GRAPH: {
        GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(data);
        getLineStipple(g->gridStyle, &g->gridStippleFactor, &g->gridStipplePattern);
        break;
    }
    case KR_RECT:
        expandBoth<RECT_STRUCT>(data);
        break;
    case KR_POLYLINE:
    case KR_CPOLY:
        expandBoth<POLY_STRUCT>(data);
        break;
    case KR_CIRCLE:
    case KR_ARC:
        expandBoth<CIRCLE_STRUCT>(data);
        break;
    case KR_TEXT:
        expandBoth<TEXT_STRUCT>(data);
        break;
    case KR_LINE:
        expandStroke(static_cast<LINE_STRUCT*>(data));
        break;
    case KR_IMAGE:
        expandFill(static_cast<IMAGE_STRUCT*>(data));
        break;
    case KR_GROUP:
        for (ELEMENT_STRUCT* c = element->child; c; c = c->next)
            definitionLoad(c);
        break;
    default:
        break;
    }
    // Line-style thresholds store only the style number.
    for (ACTION_STRUCT* action = element->actions; action; action = action->next)
        for (TH_STRUCT* th = action->styleThresholds; th; th = th->next)
            getLineStipple(th->value, &th->stippleFactor, &th->stipplePattern);
    if (element->setPickSticky)
        element->setPickSticky(element);
    return 0;
}
