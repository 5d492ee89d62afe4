// Elements in XML view files: one XML element per element, its kind told by the name, its
// fields as typed attributes. Coordinates in a file stand relative to the groups around them
// (xmlRead/xmlWrite .wx, .wy); sizes, radii, angles and matrices are not moved. Styles, fonts
// and pictures are numbers into the file's definitions, resolved here through the read tables.
#include "xml/elementXml.h"

#include "core/linkedList.h"
#include "glyph/GlyphKit.h"
#include "xml/path.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <map>
#include <sstream>

namespace elementXml {

// Files store angles in degrees; these factors, not ones derived from pi, are what files of
// earlier releases were written and read with.
constexpr double kDegreesPerRadian = 57.29577951;
constexpr double kRadiansPerDegree = 0.017453292;
// The first and last point of a "path" sub-path closer than this make it a closed polygon.
constexpr double kClosedDistance = 0.001;
// Bits of fontStyle that a "font" entry stores.
constexpr int kFontBold = 2;
constexpr int kFontItalic = 4;

ELEMENT_STRUCT* createNamed(uint32_t kind, const XmlElement& e, ELEMENT_STRUCT** list)
{
    ELEMENT_STRUCT* element = elementCreate(kind);
    if (!element)
        return nullptr;
    elementAppend(element, list);
    cutInto(element->name, e.getAttributeString("name"));
    return element;
}

ELEMENT_STRUCT* finish(ELEMENT_STRUCT* element, const XmlElement& e)
{
    if (element->setPickSticky)
        element->setPickSticky(element);
    actionLoadXml(e, &element->actions);
    return element;
}

const KFont* fontEntry(int fontId)
{
    const auto found = xmlRead.mapFont.find(fontId);
    return found == xmlRead.mapFont.end() ? nullptr : &found->second;
}

int entryStyle(const KFont& entry)
{
    return (entry.bold ? kFontBold : 0) | (entry.italic ? kFontItalic : 0);
}

void replaceFont(KR_FONT* font, const char* family, int style, int size)
{
    gkFontFree(*font);
    *font = gkFontCreate(family, style, size);
}

namespace {

// The linear part of a record's 2 x 2 matrix (m00, m01, m10, m11); a translation in the file
// has no field to go to.
void writeMatrix(XmlElement& e, const float* m)
{
    e.setAttributeMatrix("matrix", Matrix2<double>(m[0], m[1], 0, m[2], m[3], 0));
}

void readMatrix(const XmlElement& e, float* m)
{
    const Matrix2<double> matrix = e.getAttributeMatrix("matrix");
    m[0] = float(matrix.m[0][0]), m[1] = float(matrix.m[0][1]);
    m[2] = float(matrix.m[1][0]), m[3] = float(matrix.m[1][1]);
}

// ------------------------------------------------------------------ points

// "x y x y ...", six significant digits as every number of the file, one blank between.
void writePoints(XmlElement& e, const COORD_STRUCT* coords)
{
    std::ostringstream out;
    out.imbue(std::locale::classic());
    for (const COORD_STRUCT* c = coords; c; c = c->next)
        out << (c == coords ? "" : " ") << c->x - xmlWrite.wx << ' ' << c->y - xmlWrite.wy;
    e.setAttributeString("points", out.str());
}

// Appends a point with the next running number; false when out of memory.
bool addPoint(TailAppender<COORD_STRUCT>& points, int32_t id, double x, double y)
{
    COORD_STRUCT* c = createCoord();
    if (!c)
        return false;
    c->id = id;
    c->x = float(x);
    c->y = float(y);
    points.add(c);
    return true;
}

// Pairs of numbers apart by any white space; a pair counts only whole, and reading stops at the
// first text that is no number.
void readPoints(const XmlElement& e, POLY_STRUCT* p)
{
    const std::string text = e.getAttributeString("points");
    TailAppender<COORD_STRUCT> points(&p->coords);
    const char* at = text.c_str();
    for (int32_t id = 0;; ++id) {
        char* end;
        const double x = std::strtod(at, &end);
        if (end == at)
            return;
        at = end;
        const double y = std::strtod(at, &end);
        if (end == at || !addPoint(points, id, x + xmlRead.wx, y + xmlRead.wy))
            return;
        at = end;
    }
}

// A text of an unknown font keeps the family its creation gave it, with a font made for it, so
// the font layer is never handed an empty handle.
void resolveTextFont(TEXT_STRUCT* t)
{
    if (const KFont* entry = fontEntry(t->fontId)) {
        cutInto(t->fontFamily, entry->family);
        t->fontStyle = entryStyle(*entry);
        t->underline = entry->underline;
        t->fontSize = entry->size;
        t->textSize = 30;
    }
    replaceFont(&t->font, t->fontFamily, t->fontStyle, t->fontSize);
    t->scalable = gkFontScalable(t->font);
}

// ------------------------------------------------------------------ the other kinds, writing

void writeLine(XmlElement& e, const LINE_STRUCT* l)
{
    writeX(e, "x1", l->x1);
    writeY(e, "y1", l->y1);
    writeX(e, "x2", l->x2);
    writeY(e, "y2", l->y2);
    writeStroke(e, l, nullptr);
}

// A polyline's fill and switches aren't stored; "none" switches a polygon's stroke or fill off.
void writePoly(XmlElement& e, const POLY_STRUCT* p, bool polygon)
{
    writeStroke(e, p, polygon ? &p->strokeOn : nullptr);
    if (polygon)
        writeFill(e, p, &p->fillOn);
    writePoints(e, p->coords);
}

// Circles and arcs alike: an arc comes back as a circle with its angles.
void writeCircle(XmlElement& e, const CIRCLE_STRUCT* c)
{
    writeX(e, "x", c->x);
    writeY(e, "y", c->y);
    e.setAttributeDouble("rx", c->rx);
    e.setAttributeDouble("ry", c->ry);
    e.setAttributeDouble("start", c->start * kDegreesPerRadian);
    e.setAttributeDouble("end", c->end * kDegreesPerRadian);
    writeStroke(e, c, &c->strokeOn);
    writeFill(e, c, &c->fillOn);
    writeMatrix(e, c->matrix);
}

void writeText(XmlElement& e, const TEXT_STRUCT* t)
{
    writeX(e, "x", t->x);
    writeY(e, "y", t->y);
    e.setAttributePosition("align", t->align);
    e.setAttributeString("text", std::string(t->text, strnlen(t->text, sizeof t->text)));
    writeStroke(e, t, nullptr);
    writeFill(e, t, nullptr);
    e.setAttributeInt("font", t->fontId);
    writeMatrix(e, t->matrix);
}

// The XML name of a kind that files store, or null for one they leave out (sliders, unknown).
const char* xmlName(uint32_t kind)
{
    switch (kind) {
    case KR_GRAPH: return "graph";
    case KR_RECT:
    case KR_IMAGE:
    case KR_SCISSOR: return "rect";
    case KR_POLYLINE: return "polyline";
    case KR_CPOLY: return "polygon";
    case KR_CIRCLE:
    case KR_ARC: return "ellipse";
    case KR_TEXT:
    case KR_TEXT_OLD: return "text";
    case KR_LINE: return "line";
    case KR_GROUP: return "group";
    case KR_BUTTON: return "button";
    default: return nullptr;
    }
}

// The group's own offset is written as it stands: only the sum over the nesting has to agree
// between writer and reader.
void writeGroup(XmlElement& e, ELEMENT_STRUCT* group)
{
    e.setAttributeDouble("x", group->x);
    e.setAttributeDouble("y", group->y);
    e.setAttributeBool("render", true);
    e.setAttributeBool("editor", true);
    const double wx = xmlWrite.wx, wy = xmlWrite.wy;
    xmlWrite.wx += group->x;
    xmlWrite.wy += group->y;
    for (ELEMENT_STRUCT* child = group->child; child; child = child->next)
        elementSaveXml(child, e);
    xmlWrite.wx = wx;
    xmlWrite.wy = wy;
}

void readLine(const XmlElement& e, LINE_STRUCT* l)
{
    l->x1 = readX(e, "x1");
    l->y1 = readY(e, "y1");
    l->x2 = readX(e, "x2");
    l->y2 = readY(e, "y2");
    readStroke(e, l, nullptr);
}

// A polyline reads its stroke colour only, so "none" leaves it drawn in white.
void readPoly(const XmlElement& e, POLY_STRUCT* p, bool polygon)
{
    readStroke(e, p, polygon ? &p->strokeOn : nullptr);
    if (polygon)
        readFill(e, p, &p->fillOn);
    readPoints(e, p);
}

// A "circle" has one radius for both; a missing "end" is 0, not a full turn.
void readCircle(const XmlElement& e, CIRCLE_STRUCT* c, bool oneRadius)
{
    c->x = readX(e, "x");
    c->y = readY(e, "y");
    c->rx = readFloat(e, oneRadius ? "r" : "rx");
    c->ry = readFloat(e, oneRadius ? "r" : "ry");
    c->start = float(e.getAttributeDouble("start") * kRadiansPerDegree);
    c->end = float(e.getAttributeDouble("end") * kRadiansPerDegree);
    readStroke(e, c, &c->strokeOn);
    readFill(e, c, &c->fillOn);
    readMatrix(e, c->matrix);
}

void readText(const XmlElement& e, TEXT_STRUCT* t)
{
    t->x = readX(e, "x");
    t->y = readY(e, "y");
    t->align = e.getAttributePosition("align");
    cutInto(t->text, e.getAttributeString("text"));
    readStroke(e, t, nullptr);
    readFill(e, t, nullptr);
    t->fontId = e.getAttributeInt("font");
    resolveTextFont(t);
    readMatrix(e, t->matrix);
}

// The group's offset is added for its children only: its own x and y become the centre of
// their box. "action" children are the group's own and are read after the members.
ELEMENT_STRUCT* readGroup(const XmlElement& e, ELEMENT_STRUCT** list)
{
    ELEMENT_STRUCT* group = createNamed(KR_GROUP, e, list);
    if (!group)
        return nullptr;
    const double x = e.getAttributeDouble("x"), y = e.getAttributeDouble("y");
    group->x = float(x);
    group->y = float(y);
    // Restored, not subtracted: an infinite offset would leave NaN to the group's siblings.
    const double wx = xmlRead.wx, wy = xmlRead.wy;
    xmlRead.wx += x;
    xmlRead.wy += y;
    for (XmlElement child = e.firstElement(); child.valid(); child = child.nextElement())
        if (child.name() != "action")
            elementLoadXml(child, &group->child);
    // Every member is the group's, a path's first sub-paths too, though only its last comes back.
    for (ELEMENT_STRUCT* child = group->child; child; child = child->next)
        child->parent = group;
    group->setPickSticky(group);
    xmlRead.wx = wx;
    xmlRead.wy = wy;
    actionLoadXml(e, &group->actions);
    return group;
}

// One element per sub-path of at least one point, all of one name: closed polygons where the
// path returns to its start, polylines, which are never filled, elsewhere. The actions go to
// the last; a path of no sub-path has none to take them.
ELEMENT_STRUCT* readPath(const XmlElement& e, ELEMENT_STRUCT** list)
{
    ELEMENT_STRUCT* last = nullptr;
    for (const PathPoints& points : Path().pointsFromString(e.getAttributeString("path"))) {
        if (points.empty())
            continue;
        const double dx = points.back().x - points.front().x, dy = points.back().y - points.front().y;
        const bool closed = std::sqrt(dx * dx + dy * dy) < kClosedDistance;
        ELEMENT_STRUCT* element = createNamed(closed ? KR_CPOLY : KR_POLYLINE, e, list);
        if (!element)
            break;
        POLY_STRUCT* p = static_cast<POLY_STRUCT*>(element->data);
        TailAppender<COORD_STRUCT> coords(&p->coords);
        for (size_t i = 0; i < points.size(); ++i)
            if (!addPoint(coords, int32_t(i), points[i].x + xmlRead.wx, points[i].y + xmlRead.wy))
                break;
        readStroke(e, p, &p->strokeOn);
        readFill(e, p, closed ? &p->fillOn : nullptr);
        element->setPickSticky(element);
        last = element;
    }
    if (last)
        actionLoadXml(e, &last->actions);
    return last;
}

// The kinds of one XML element each, read through their record.
ELEMENT_STRUCT* readSimple(const std::string& name, const XmlElement& e, ELEMENT_STRUCT** list)
{
    static const std::map<std::string, uint32_t> kinds = {
        {"graph", KR_GRAPH}, {"line", KR_LINE},     {"polyline", KR_POLYLINE}, {"polygon", KR_CPOLY},
        {"ellipse", KR_CIRCLE}, {"circle", KR_CIRCLE}, {"text", KR_TEXT}};
    const auto found = kinds.find(name);
    if (found == kinds.end()) {
        ++xmlRead.unknownElements;
        return nullptr;
    }
    ELEMENT_STRUCT* element = createNamed(found->second, e, list);
    if (!element)
        return nullptr;
    void* data = element->data;
    switch (element->type) {
    case KR_GRAPH: readGraph(e, static_cast<GRAPH_STRUCT*>(data)); break;
    case KR_LINE: readLine(e, static_cast<LINE_STRUCT*>(data)); break;
    case KR_POLYLINE:
    case KR_CPOLY: readPoly(e, static_cast<POLY_STRUCT*>(data), element->type == KR_CPOLY); break;
    case KR_CIRCLE: readCircle(e, static_cast<CIRCLE_STRUCT*>(data), name == "circle"); break;
    case KR_TEXT: readText(e, static_cast<TEXT_STRUCT*>(data)); break;
    default: break;
    }
    return finish(element, e);
}

} // namespace
} // namespace elementXml

using namespace elementXml;

void elementSaveXml(ELEMENT_STRUCT* element, XmlElement& parent)
{
    const char* name = xmlName(element->type);
    if (!name)
        return;
    XmlElement e(name);
    e.setAttributeString("name", std::string(element->name, strnlen(element->name, sizeof element->name)));
    void* data = element->data;
    switch (element->type) {
    case KR_GRAPH: writeGraph(e, static_cast<GRAPH_STRUCT*>(data)); break;
    case KR_POLYLINE:
    case KR_CPOLY: writePoly(e, static_cast<POLY_STRUCT*>(data), element->type == KR_CPOLY); break;
    case KR_CIRCLE:
    case KR_ARC: writeCircle(e, static_cast<CIRCLE_STRUCT*>(data)); break;
    case KR_TEXT:
    case KR_TEXT_OLD: writeText(e, static_cast<TEXT_STRUCT*>(data)); break;
    case KR_LINE: writeLine(e, static_cast<LINE_STRUCT*>(data)); break;
    case KR_GROUP: writeGroup(e, element); break;
    default: writeRectFamily(e, element); break;
    }
    parent.appendElement(e);
    actionSaveXml(element->actions, e);
}

ELEMENT_STRUCT* elementLoadXml(const XmlElement& node, ELEMENT_STRUCT** list)
{
    const std::string name = node.name();
    if (name == "group")
        return readGroup(node, list);
    if (name == "rect" || name == "button")
        return readRectFamily(node, list);
    if (name == "path")
        return readPath(node, list);
    return readSimple(name, node, list);
}
