// What the readers and writers of the element kinds share: view coordinates against the group
// offsets, colours with and without an on switch, the stroke and fill attribute groups, and
// the steps every element takes on reading. The rectangle family and the graph have files of
// their own.
#pragma once

#include "xml/viewXml.h"

#include <cstdio>
#include <string>

namespace elementXml {

template <size_t N> void cutInto(char (&field)[N], const std::string& text)
{
    std::snprintf(field, N, "%s", text.c_str());
}

inline float readFloat(const XmlElement& e, const char* name)
{
    return float(e.getAttributeDouble(name));
}

// A coordinate of the view as it stands in the file, and back.
inline float readX(const XmlElement& e, const char* name)
{
    return float(e.getAttributeDouble(name) + xmlRead.wx);
}

inline float readY(const XmlElement& e, const char* name)
{
    return float(e.getAttributeDouble(name) + xmlRead.wy);
}

inline void writeX(XmlElement& e, const char* name, float x)
{
    e.setAttributeDouble(name, x - xmlWrite.wx);
}

inline void writeY(XmlElement& e, const char* name, float y)
{
    e.setAttributeDouble(name, y - xmlWrite.wy);
}

// A colour field; with an on flag, "none" stands for a stroke or fill switched off, whose
// colour is not stored and reads as opaque white.
inline void writeColor(XmlElement& e, const char* name, const float* rgba, const int32_t* on = nullptr)
{
    Color color(rgba[0], rgba[1], rgba[2], rgba[3]);
    color.setNone(on && !*on);
    e.setAttributeColor(name, color);
}

inline void readColor(const XmlElement& e, const char* name, float* rgba, int32_t* on = nullptr)
{
    const Color color = e.getAttributeColor(name);
    for (int i = 0; i < 4; ++i)
        rgba[i] = color[i];
    if (on)
        *on = !color.none();
}

// The stroke attributes of every kind that has a stroke; `on` is null where "none" is no
// switch (lines, texts, polylines).
template <class Record> void writeStroke(XmlElement& e, const Record* r, const int32_t* on)
{
    writeColor(e, "stroke", r->strokeColor, on);
    e.setAttributeDouble("stroke-width", r->strokeWidth);
    e.setAttributeInt("stroke-style", r->strokeStyleId);
    e.setAttributeBool("stroke-antialias", r->antialias != 0);
}

template <class Record> void readStroke(const XmlElement& e, Record* r, int32_t* on)
{
    readColor(e, "stroke", r->strokeColor, on);
    r->strokeWidth = readFloat(e, "stroke-width");
    r->strokeStyleId = e.getAttributeInt("stroke-style");
    calcStroke(r->strokeStyleId, &r->stippleFactor, &r->stipplePattern, &r->strokeStyle);
    r->antialias = e.getAttributeBool("stroke-antialias");
}

template <class Record> void writeFill(XmlElement& e, const Record* r, const int32_t* on)
{
    writeColor(e, "fill", r->fillColor, on);
    e.setAttributeInt("fill-style", r->fillStyleId);
}

template <class Record> void readFill(const XmlElement& e, Record* r, int32_t* on)
{
    readColor(e, "fill", r->fillColor, on);
    r->fillStyleId = e.getAttributeInt("fill-style");
    calcFill(r->fillStyleId, r->fillPattern, &r->fillStyle);
}

// Makes the element at the tail of the list, named as the XML element; null when out of memory.
ELEMENT_STRUCT* createNamed(uint32_t kind, const XmlElement& e, ELEMENT_STRUCT** list);
// The last steps of reading: derived geometry, then the actions, which find the element complete.
ELEMENT_STRUCT* finish(ELEMENT_STRUCT* element, const XmlElement& e);

// The "font" entry of the file, or null for a number no entry has.
const KFont* fontEntry(int fontId);
// fontStyle bits of an entry's bold and italic.
int entryStyle(const KFont& entry);
// A font the record holds is given back when it gets another.
void replaceFont(KR_FONT* font, const char* family, int style, int size);

// Rectangles, images, clip areas ("rect") and buttons ("button"): four corners in the record,
// centre, size and matrix in the file.
void writeRectFamily(XmlElement& e, const ELEMENT_STRUCT* element);
ELEMENT_STRUCT* readRectFamily(const XmlElement& e, ELEMENT_STRUCT** list);

void writeGraph(XmlElement& e, const GRAPH_STRUCT* g);
void readGraph(const XmlElement& e, GRAPH_STRUCT* g);

} // namespace elementXml
