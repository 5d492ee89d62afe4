// The frame of an XML view file: root, header and the order of the sections. The sections
// themselves are written and read by the data-source, style-table and element code.
#include "xml/viewXml.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

// Fixed texts of the header, kept as files of earlier releases have them.
const char* const kRootName = "Korel2D";
const char* const kHeaderDate = "24.05.2008";

XmlElement makeHeader(const std::string& path, const VIEW_STRUCT& view)
{
    XmlElement header("header");
    header.setAttributeString("date", kHeaderDate);
    header.setAttributeString("name", path);
    header.setAttributeDouble("x", view.x);
    header.setAttributeDouble("y", view.y);
    header.setAttributeDouble("width", view.width);
    header.setAttributeDouble("height", view.height);
    header.setAttributeColor("pagecolor", Color(view.pageColor[0], view.pageColor[1], view.pageColor[2], 1.0f));
    return header;
}

void readHeader(const XmlElement& header, VIEW_STRUCT* view)
{
    view->x = float(header.getAttributeDouble("x"));
    view->y = float(header.getAttributeDouble("y"));
    view->width = float(header.getAttributeDouble("width"));
    view->height = float(header.getAttributeDouble("height"));
    const Color page = header.getAttributeColor("pagecolor");
    for (int i = 0; i < 3; ++i)
        view->pageColor[i] = page[i];
}

void emptyReadTables()
{
    xmlRead = XmlReadTables();
}

// Levels of the document above and below the deepest element: root and "geometry"; "action",
// "threshold" and "threshold-value".
constexpr int kLevelsAroundElements = 2 + 3;

// Whether the list, its groups' children included, is more than `levels` levels deep. Looks no
// deeper than that, so a tree of any depth is judged in bounded recursion.
bool nestedDeeperThan(const ELEMENT_STRUCT* list, int levels)
{
    if (!list)
        return false;
    if (levels <= 0)
        return true;
    for (const ELEMENT_STRUCT* element = list; element; element = element->next)
        if (element->child && nestedDeeperThan(element->child, levels - 1))
            return true;
    return false;
}

void setReport(XML_LOAD_REPORT* report, int result, const std::string& reason)
{
    if (!report)
        return;
    report->result = result;
    std::snprintf(report->reason, sizeof report->reason, "%s", reason.c_str());
}

// The reason of a load that gives nothing, in the words of the one line printed for it.
std::string unreadableReason(const XmlDocument& document)
{
    switch (document.problem()) {
    case XmlReadProblem::CannotOpen:
        return "cannot open";
    case XmlReadProblem::TooDeep:
        return "nested deeper than " + std::to_string(kXmlMaxDepth) + " elements";
    case XmlReadProblem::Broken:
        return document.errorText();
    case XmlReadProblem::None:
        break;
    }
    return "no root element";
}

} // namespace

int saveFileXml(const char* path, ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* dataTypes, const VIEW_STRUCT* view)
{
    if (!path)
        return 0;
    // The tree holds one level per group; a file the reader would refuse is not written.
    if (nestedDeeperThan(elements, kXmlMaxDepth - kLevelsAroundElements)) {
        std::printf("saveFileXml: %s: elements nested deeper than %d levels\n", path,
                    kXmlMaxDepth - kLevelsAroundElements);
        return 0;
    }
    std::lock_guard<std::mutex> hold(xmlFileLock);
    const ClassicNumbers numbers;
    static const VIEW_STRUCT noPage = {};
    XmlDocument document;
    xmlWrite = XmlWriteTables();

    const int release = KGet_releasenr();
    char version[32];
    std::snprintf(version, sizeof version, "%d.%d", release / 100, release % 100);
    XmlElement root(kRootName);
    root.setAttributeString("version", version);
    document.appendElement(root);

    XmlElement header = makeHeader(path, view ? *view : noPage);
    root.appendElement(header);
    XmlElement editor("editor");
    root.appendElement(editor);

    XmlElement data("data");
    dataSaveXml(data, dataTypes);
    root.appendElement(data);

    // Numbers the definitions and writes them into the records, which the geometry then writes.
    XmlElement definition("definition");
    for (ELEMENT_STRUCT* element = elements; element; element = element->next)
        definitionSaveXml(element, definition);
    root.appendElement(definition);

    XmlElement geometry("geometry");
    xmlWrite.wx = xmlWrite.wy = 0.0;
    for (ELEMENT_STRUCT* element = elements; element; element = element->next)
        elementSaveXml(element, geometry);
    root.appendElement(geometry);

    if (!document.write(path))
        std::printf("saveFileXml: %s: %s\n", path, std::strerror(errno));
    xmlWrite = XmlWriteTables();
    return 0;
}

void loadSections(const XmlElement& root, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes,
                  VIEW_STRUCT* view)
{
    for (XmlElement section = root.firstElement(); section.valid(); section = section.nextElement()) {
        const std::string name = section.name();
        if (name == "header") {
            if (view)
                readHeader(section, view);
        } else if (name == "data") {
            if (dataTypes)
                dataLoadXml(section, dataTypes, 0);
        } else if (name == "definition") {
            // A later section wins: strokes, patterns and pictures start over, fonts are
            // replaced number by number.
            xmlRead.mapStrokeStyle.clear();
            xmlRead.mapFillStyle.clear();
            xmlRead.mapImage.clear();
            loadDefinition(section);
        } else if (name == "geometry" && elements) {
            xmlRead.wx = xmlRead.wy = 0.0;
            for (XmlElement node = section.firstElement(); node.valid(); node = node.nextElement())
                elementLoadXml(node, elements);
        }
    }
}

int loadFileXmlReport(const char* path, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes,
                      VIEW_STRUCT* view, XML_LOAD_REPORT* report)
{
    if (report)
        *report = XML_LOAD_REPORT();
    if (!path) {
        setReport(report, -1, "no file name");
        return -1;
    }
    std::lock_guard<std::mutex> hold(xmlFileLock);
    const ClassicNumbers numbers;
    XmlDocument document;
    document.read(path);
    // A document the parser gave up on midway still has its root: what was read before the
    // error loads, as far as it goes.
    const XmlElement root = document.root();
    if (!root.valid()) {
        const std::string reason = unreadableReason(document);
        std::printf("loadFileXml: %s: %s\n", path, reason.c_str());
        setReport(report, -1, reason);
        return -1;
    }
    if (document.problem() == XmlReadProblem::Broken) {
        std::printf("loadFileXml: %s: %s at line %d, column %d\n", path, document.errorText().c_str(),
                    document.errorRow(), document.errorColumn());
        setReport(report, 0, document.errorText());
        if (report) {
            report->broken = 1;
            report->line = document.errorRow();
            report->column = document.errorColumn();
        }
    }
    emptyReadTables();
    loadSections(root, elements, dataTypes, view);
    const int unknown = xmlRead.unknownElements;
    if (unknown > 0)
        std::printf("loadFileXml: %s: %d unknown elements skipped\n", path, unknown);
    if (report)
        report->unknownElements = unknown;
    // Pictures have their own copies in the texture store by now.
    emptyReadTables();
    return 0;
}

int loadFileXml(const char* path, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes, VIEW_STRUCT* view)
{
    return loadFileXmlReport(path, elements, dataTypes, view, nullptr);
}
