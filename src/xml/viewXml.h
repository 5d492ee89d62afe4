// Views in XML: the file frame, its shared definitions (strokes, patterns, pictures, fonts) and
// the data sources. Elements refer to definitions by numbers valid in one file only, so a load
// and a save each keep a set of file-level tables alive for the length of one call.
//
// The tables are process-wide: loadFileXml and saveFileXml hold xmlFileLock for their whole
// run, so two loads or saves on different threads take turns instead of mixing their numbers.
#pragma once

#include "KorelEdit.h"
#include "base/md5.h"
#include "xml/xml.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

// ------------------------------------------------------------------ reader tables

// The 128 bytes of a polygon stipple.
struct FillPattern {
    uint8_t bytes[128];
};

// Pixels of a "bitmap", 4 bytes each, width * height of them.
struct Image {
    std::vector<uint8_t> pixels;
    int width = 0;
    int height = 0;
};

// A "font": type 0 for "truetype", 1 for anything else.
struct KFont {
    int type = 0;
    std::string family;
    int size = 0;
    uint8_t bold = 0;
    uint8_t italic = 0;
    uint8_t underline = 0;
};

// Filled by a "definition" section, read by the element readers through calcStroke, calcFill
// and the font and image look-ups; emptied at the end of a load.
struct XmlReadTables {
    std::map<int, int32_t> mapStrokeStyle; // factor << 16 | pattern
    std::map<int, FillPattern> mapFillStyle;
    std::map<int, Image> mapImage;
    std::map<int, KFont> mapFont;
    // Sum of the offsets of the groups around the element being read; added to its coordinates.
    double wx = 0.0;
    double wy = 0.0;
    // Elements of the geometry of no known name, skipped with their content; told once a load.
    int unknownElements = 0;
};

// ------------------------------------------------------------------ writer tables

// Content of a definition to its number, so that equal things share one entry. `uniquex` is the
// next number for all four kinds; it starts at 1 with every save.
struct XmlWriteTables {
    std::map<uint32_t, int> mapLineStyle; // factor << 16 | pattern
    std::map<Md5Hash, int> mapPatternStyle;
    std::map<Md5Hash, int> mapImage;
    std::map<std::string, int> mapFont;
    int uniquex = 1;
    // Sum of the offsets of the groups around the element being written; subtracted.
    double wx = 0.0;
    double wy = 0.0;
};

extern XmlReadTables xmlRead;
extern XmlWriteTables xmlWrite;
extern std::mutex xmlFileLock;

// ------------------------------------------------------------------ style tables

// Each stores the number of the thing through its last argument and appends an element to
// `section` only when the thing is new to this file.
void saveStroke(XmlElement& section, int strokeStyle, int32_t stippleFactor, uint16_t stipplePattern,
                int32_t* strokeStyleId);
void savePattern(XmlElement& section, int fillStyle, const uint8_t* fillPattern, int32_t* fillStyleId);
void saveImage(XmlElement& section, int width, int height, const uint8_t* data, int32_t* imageId);
void saveFont(XmlElement& section, TEXT_STRUCT* text, int32_t* fontId);
void saveFont(XmlElement& section, GRAPH_STRUCT* graph, int32_t* fontId);

// The definition pass for one element, its children and its actions' line-style thresholds:
// numbers the element's styles, font and picture, writing them into its records.
void definitionSaveXml(ELEMENT_STRUCT* element, XmlElement& section);
// Reads a "definition" section into xmlRead (entries with a known number are replaced).
void loadDefinition(const XmlElement& section);
// A stroke number of this file back into factor, pattern and stipple number (100 for none of
// the table's); an unknown number gets factor 0 and pattern 0.
void calcStroke(int strokeStyleId, int32_t* stippleFactor, uint16_t* stipplePattern, int32_t* strokeStyle);
// A pattern number back into its 128 bytes and pattern number (100 for none of the table's);
// an unknown number gets zero bytes.
void calcFill(int fillStyleId, uint8_t* fillPattern, int32_t* fillStyle);

// ------------------------------------------------------------------ data sources

// Writes the sources in list order into the "data" section.
void dataSaveXml(XmlElement& section, const DD_DATA_TYPE_STRUCT* dataTypes);
// Appends the "datasource" children of the section to the list; `mode` has no effect.
int dataLoadXml(const XmlElement& section, DD_DATA_TYPE_STRUCT** dataTypes, int mode);

// ------------------------------------------------------------------ frame

// The sections of a document's root, in document order, by name; unknown ones are skipped.
// Leaves xmlRead filled (loadFileXml empties it); the caller holds xmlFileLock.
void loadSections(const XmlElement& root, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes,
                  VIEW_STRUCT* view);

// ------------------------------------------------------------------ geometry

// Writes one element (with its children and actions) into `parent`, coordinates less
// xmlWrite.wx, wy.
void elementSaveXml(ELEMENT_STRUCT* element, XmlElement& parent);
// Reads one element of the geometry and appends what it makes to the list (the view's, or a
// group's children), coordinates plus xmlRead.wx, wy. Gives what it made (for a "path" the
// element of its last sub-path), or null for a name of no kind, counted in unknownElements.
ELEMENT_STRUCT* elementLoadXml(const XmlElement& node, ELEMENT_STRUCT** list);

// ------------------------------------------------------------------ actions

// Writes the list that starts at `action` as "action" children of `parent`.
void actionSaveXml(const ACTION_STRUCT* action, XmlElement& parent);
// Appends the "action" children of `node` to the list; their ids count from 0. Result 0.
int actionLoadXml(const XmlElement& node, ACTION_STRUCT** list);
