// The graph frame in XML view files: its attributes, one for each stored field, in one table
// that the writer and the reader walk alike.
#include "xml/elementXml.h"

#include <vector>

namespace elementXml {
namespace {

// A graph's attributes in written order, each with the field it stands for.
enum class FieldType { Real, ViewX, ViewY, Int, Bool, Colour };

struct GraphField {
    const char* name;
    FieldType type;
    float GRAPH_STRUCT::*real = nullptr;
    int32_t GRAPH_STRUCT::*integer = nullptr;
    float (GRAPH_STRUCT::*colour)[4] = nullptr;
};

GraphField real(const char* name, float GRAPH_STRUCT::*field, FieldType type = FieldType::Real)
{
    return {name, type, field};
}

GraphField integer(const char* name, int32_t GRAPH_STRUCT::*field, FieldType type = FieldType::Int)
{
    return {name, type, nullptr, field};
}

GraphField flag(const char* name, int32_t GRAPH_STRUCT::*field)
{
    return integer(name, field, FieldType::Bool);
}

GraphField colour(const char* name, float (GRAPH_STRUCT::*field)[4])
{
    return {name, FieldType::Colour, nullptr, nullptr, field};
}

const std::vector<GraphField>& graphFields()
{
    using G = GRAPH_STRUCT;
    static const std::vector<GraphField> fields = {
        real("x", &G::x, FieldType::ViewX), real("y", &G::y, FieldType::ViewY), real("width", &G::width),
        real("height", &G::height), integer("type", &G::type), real("ymin", &G::ymin), real("ymax", &G::ymax),
        real("xmin", &G::xmin), real("xmax", &G::xmax), real("rate", &G::rate), flag("autoscale", &G::autoscale),
        flag("autoscalex", &G::autoscalex), real("minspreadx", &G::minspreadx), real("minspready", &G::minspready),
        integer("samples", &G::samples), flag("bars", &G::bars), colour("outline-color", &G::outlineColor),
        colour("background-color", &G::backgroundColor), real("outline-width", &G::outlineWidth),
        flag("gridx", &G::gridx), flag("gridy", &G::gridy), flag("gridx-auto", &G::gridxAuto),
        flag("gridy-auto", &G::gridyAuto), real("gridx-space", &G::gridxSpace), real("gridy-space", &G::gridySpace),
        real("gridx-ref", &G::gridxRef), real("gridy-ref", &G::gridyRef), integer("grid-style", &G::gridStyleId),
        colour("grid-color", &G::gridColor), flag("labelx", &G::labelx), flag("labely", &G::labely),
        flag("labelyr", &G::labelyr), flag("tickx", &G::tickx), flag("ticky", &G::ticky), flag("tickyr", &G::tickyr),
        flag("tickx-auto", &G::tickxAuto), flag("ticky-auto", &G::tickyAuto), real("tickx-space", &G::tickxSpace),
        real("ticky-space", &G::tickySpace), real("tickx-ref", &G::tickxRef), real("ticky-ref", &G::tickyRef),
        integer("tickx-sub", &G::tickxSub), integer("ticky-sub", &G::tickySub), real("tick-width", &G::tickWidth),
        integer("font", &G::fontId), flag("label-fixx", &G::labelFixx), flag("label-fixy", &G::labelFixy),
        real("label-xmin", &G::labelXmin), real("label-xmax", &G::labelXmax), real("label-ymin", &G::labelYmin),
        real("label-ymax", &G::labelYmax)};
    return fields;
}

// A graph adds the entry's bits to those it has; an unknown font leaves the one of its creation.
void resolveGraphFont(GRAPH_STRUCT* g)
{
    const KFont* entry = fontEntry(g->fontId);
    if (!entry)
        return;
    cutInto(g->fontFamily, entry->family);
    g->fontStyle |= entryStyle(*entry);
    g->fontSize = entry->size;
    replaceFont(&g->font, g->fontFamily, g->fontStyle, g->fontSize);
}

} // namespace

void writeGraph(XmlElement& e, const GRAPH_STRUCT* g)
{
    for (const GraphField& f : graphFields()) {
        switch (f.type) {
        case FieldType::Real: e.setAttributeDouble(f.name, g->*f.real); break;
        case FieldType::ViewX: writeX(e, f.name, g->*f.real); break;
        case FieldType::ViewY: writeY(e, f.name, g->*f.real); break;
        case FieldType::Int: e.setAttributeInt(f.name, g->*f.integer); break;
        case FieldType::Bool: e.setAttributeBool(f.name, g->*f.integer != 0); break;
        case FieldType::Colour: writeColor(e, f.name, g->*f.colour); break;
        }
    }
}

void readGraph(const XmlElement& e, GRAPH_STRUCT* g)
{
    for (const GraphField& f : graphFields()) {
        switch (f.type) {
        case FieldType::Real: g->*f.real = readFloat(e, f.name); break;
        case FieldType::ViewX: g->*f.real = readX(e, f.name); break;
        case FieldType::ViewY: g->*f.real = readY(e, f.name); break;
        case FieldType::Int: g->*f.integer = e.getAttributeInt(f.name); break;
        case FieldType::Bool: g->*f.integer = e.getAttributeBool(f.name); break;
        case FieldType::Colour: readColor(e, f.name, g->*f.colour); break;
        }
    }
    calcStroke(g->gridStyleId, &g->gridStippleFactor, &g->gridStipplePattern, &g->gridStyle);
    resolveGraphFont(g);
}

} // namespace elementXml
