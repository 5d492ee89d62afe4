// The format generations of binary view files, and the frame every one of them shares:
// configuration block, element records, data sections, end mark.
#include "KorelEdit.h"
#include "core/linkedList.h"
#include "files/Reader.h"
#include "files/viewFileReaders.h"

namespace {

using CT = ConfigTail;
using EH = ElementHead;
using BE = BodyEnd;
using GF = GraphForm;
using TF = TextForm;
using IF = ImageForm;
using SF = SourceForm;

// clang-format off
// first last  config         head           body end     graph    text                 radii  image                   var  var2   limit  cgroup filter clock  mouse  hidden transl visMode rsv blink  sources
const Layout kLayouts[] = {
    {100, 100, CT::none,      EH::generated, BE::none,     GF::g100, TF::fontCode,        true,  IF::none,               32, false, false, true,  false, false, false, false, false, false,  0, false, SF::old},
    {101, 101, CT::none,      EH::fixedName, BE::none,     GF::g100, TF::fontCodeCorners, true,  IF::none,               32, false, false, false, false, false, false, false, false, false,  0, false, SF::old},
    {102, 106, CT::none,      EH::fixedName, BE::none,     GF::g100, TF::fontCodeCorners, false, IF::noPixels,           32, false, false, false, false, false, false, false, false, false,  0, false, SF::old},
    {107, 110, CT::fiveTexts, EH::fixedName, BE::none,     GF::g107, TF::fontCodeMatrix,  false, IF::rgb,                32, false, false, false, true,  false, false, false, false, false,  0, false, SF::old},
    {111, 112, CT::none,      EH::fixedName, BE::none,     GF::g111, TF::fontCodeMatrix,  false, IF::rgb,                32, false, false, false, true,  false, false, false, false, false,  0, false, SF::fixedParameters},
    {113, 200, CT::none,      EH::fixedName, BE::none,     GF::g111, TF::fontCodeMatrix,  false, IF::rgb,                32, false, false, false, true,  false, true,  false, true,  false,  0, false, SF::fixedParameters},
    {201, 201, CT::none,      EH::fixedName, BE::none,     GF::g201, TF::fontCodeMatrix,  false, IF::rgb,                64, true,  false, false, true,  false, true,  false, false, false,  0, false, SF::fixedParameters},
    {202, 202, CT::none,      EH::counted,   BE::none,     GF::g201, TF::fontCodeMatrix,  false, IF::rgb,                64, true,  false, false, true,  false, true,  false, false, false,  0, false, SF::fixedParameters},
    {203, 203, CT::none,      EH::counted,   BE::none,     GF::g203, TF::present,         false, IF::rgb,                64, true,  false, false, true,  true,  true,  false, false, false,  0, true,  SF::fixedParameters},
    {204, 300, CT::none,      EH::counted,   BE::none,     GF::g204, TF::present,         false, IF::rgba,               64, true,  false, false, true,  true,  true,  false, false, false,  0, true,  SF::fixedParameters},
    {301, 301, CT::reserved,  EH::counted,   BE::reserved, GF::g204, TF::present,         false, IF::rgbaAfterReserved,  64, true,  false, false, true,  true,  true,  true,  true,  false,  6, true,  SF::defaultAndFixedParameters},
    {302, 302, CT::reserved,  EH::counted,   BE::fields,   GF::g204, TF::present,         false, IF::present,            64, true,  false, false, true,  true,  true,  true,  true,  false,  6, true,  SF::present},
    {303, 304, CT::reserved,  EH::counted,   BE::fields,   GF::g204, TF::present,         false, IF::present,            64, true,  true,  false, true,  false, true,  true,  true,  true,   8, true,  SF::present},
};
// clang-format on

// Revisions between the generations were never written: 1.17 to 1.99 and 2.05 to 2.99.
bool written(int revision)
{
    return (revision >= 100 && revision <= 116) || (revision >= 200 && revision <= 204) ||
           (revision >= 300 && revision <= 304);
}

} // namespace

const Layout* layoutOf(int revision)
{
    if (!written(revision))
        return nullptr;
    for (const Layout& layout : kLayouts)
        if (revision >= layout.first && revision <= layout.last)
            return &layout;
    return nullptr;
}

int loadConfigGeneration(const Layout& layout, KStream* stream, VIEW_STRUCT* view)
{
    Reader in{stream};
    view->x = in.real();
    view->y = in.real();
    view->width = in.real();
    view->height = in.real();
    in.reals(view->pageColor, 3);
    const size_t unusedTextBytes = 128;
    switch (layout.config) {
    case ConfigTail::none: break;
    case ConfigTail::fiveTexts: stream->skip(5 * unusedTextBytes); break;
    case ConfigTail::reserved: in.skipIntegers(4); break;
    }
    return 0;
}

int loadGeneration(const Layout& layout, KStream* stream, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes,
                   VIEW_STRUCT* view, int revision)
{
    // A caller that wants no sources still has their records read past.
    DD_DATA_TYPE_STRUCT* unwanted = nullptr;
    if (!dataTypes)
        dataTypes = &unwanted;
    Reader in{stream};
    loadConfigGeneration(layout, stream, view);
    TailAppender<ELEMENT_STRUCT> topLevel(elements);
    const int32_t sectionMarker = 20, endMark = -1;
    for (int32_t kind = in.integer(); kind != endMark; kind = in.integer()) {
        if (kind == sectionMarker) {
            dataLoad(layout, stream, dataTypes, revision);
            continue;
        }
        ELEMENT_STRUCT* element = elementLoad(layout, uint32_t(kind), stream, nullptr);
        if (!element)
            break;
        topLevel.add(element);
    }
    while (unwanted)
        delDataType(&unwanted, unwanted, 0);
    return 0;
}
