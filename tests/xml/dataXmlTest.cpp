// The data sources of an XML view through a file and back, damaged sections included.
#include "xml/viewXml.h"

#include "GlContext.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// Per source "{id nrData/nrVar ival:text/size... slots", per variable "(name=default
// ival:text/size... slots)"; parameters as far as the counts go, slots up to the end mark.
std::string describe(const DD_DATA_TYPE_STRUCT* s)
{
    std::ostringstream out;
    const auto slots = [&out](const PARA_STRUCT* p, int used) {
        int n = 0;
        for (; p[n].sval; ++n)
            if (n < used)
                out << ' ' << p[n].ival << ':' << p[n].sval << '/' << p[n].size;
        out << ' ' << n;
    };
    for (; s; s = s->next, out << '}') {
        out << '{' << s->id << ' ' << s->nrData << '/' << s->nrVar;
        slots(s->para, s->nrData);
        for (const VARIABLE_STRUCT* v = s->variables; v; v = v->next, out << ')') {
            out << " (" << v->name << '=' << v->defaultValue;
            slots(v->para, v->nrPara);
        }
    }
    return out.str();
}

// The sources of a document's "data" root, read from a file.
struct Loaded {
    VIEW_STRUCT view = {};
    explicit Loaded(const std::string& text)
    {
        k2dtest::TempFile file(std::vector<uint8_t>(text.begin(), text.end()), ".xml");
        XmlDocument document;
        document.read(file.path());
        dataLoadXml(document.root(), &view.dataTypes, 0);
    }
    ~Loaded() { while (view.dataTypes) delDataType(&view.dataTypes, view.dataTypes, 0); }
};

TEST(DataXml, SectionsReadInDocumentOrderWithDamagedCountsHarmless)
{
    const std::string d70(70, 'd'), v70(70, 'v');
    std::string paras, varParas; // twelve of each, more than the slots of a count of 0
    for (int i = 0; i < 12; ++i)
        paras += "<datasource-para ival='" + std::to_string(i) + "'/>", varParas += "<datasource-var-para/>";
    const std::pair<std::string, std::string> cases[] = { // {children of "data", what loads}
        {"<datasource id='7'/><other/>", "{7 0/0 10}"},
        {"<datasource nr-data-para='2' nr-var-para='1'><datasource-para ival='1' sval='" + d70 + "'/>"
         "<datasource-var name='a'><datasource-var-para ival='4' sval='" + v70 + "'/></datasource-var>"
         "<datasource-para ival='2' sval='b'/></datasource><datasource id='2'/>",
         "{0 2/1 1:" + d70.substr(0, 63) + "/64 2:b/64 10 (a= 4:" + v70 + "/82 10)}{2 0/0 10}"},
        {"<datasource nr-data-para='2000000000' nr-var-para='2000000000'><datasource-para/><datasource-var>"
         "<datasource-var-para sval='p'/><datasource-var-para/></datasource-var></datasource>",
         "{0 1/2 0:/64 10 (= 0:p/13 0:/12 10)}"},
        {"<datasource nr-data-para='-5' nr-var-para='-1'>" + paras + "<datasource-var>" + varParas +
             "</datasource-var></datasource>",
         "{0 0/0 10 (= 10)}"},
        {"<datasource nr-data-para='12'>" + paras + "</datasource>",
         "{0 12/0 0:/64 1:/64 2:/64 3:/64 4:/64 5:/64 6:/64 7:/64 8:/64 9:/64 10:/64 11:/64 12}"},
    };
    for (const auto& [children, expected] : cases)
        EXPECT_EQ(describe(Loaded("<data>" + children + "</data>").view.dataTypes), expected) << children;
}

// A source without parameters or variables is one empty element. (The sample's sources come
// back field by field through the round trip of whole views.)
TEST(DataXml, SourceWithoutParametersIsOneEmptyElement)
{
    XmlDocument document;
    XmlElement section("data");
    document.appendElement(section);
    DD_DATA_TYPE_STRUCT* empty = createDataType(0);
    empty->id = 7;
    dataSaveXml(section, empty);
    delDataType(&empty, empty, 0);
    TiXmlPrinter printer;
    section.data()->Accept(&printer);
    EXPECT_EQ(printer.Str(), "<data>\n    <datasource name=\"DatasourceName\" id=\"7\" nr-data-para=\"0\" "
                             "nr-var-para=\"0\" />\n</data>\n");
}

} // namespace
