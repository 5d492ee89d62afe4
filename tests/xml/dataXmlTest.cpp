// The data sources of an XML view: what the writer puts on disk, what the reader makes of a
// section, damaged ones included, and the sources of a sample view through both.
#include "xml/viewXml.h"

#include "GlContext.h"
#include "SampleFiles.h"
#include "StoredView.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

namespace {

struct Sources {
    DD_DATA_TYPE_STRUCT* list = nullptr;
    ~Sources()
    {
        while (list)
            delDataType(&list, list, 0);
    }
};

int slotCount(const PARA_STRUCT* para)
{
    int slots = 0;
    while (para && para[slots].sval)
        ++slots;
    return slots;
}

// Per source "{id nrData/nrVar slots ival:text...", per variable "(type name=default slots
// ival:text/size...)": what a loaded list holds, in order.
std::string describe(const DD_DATA_TYPE_STRUCT* list)
{
    std::ostringstream out;
    for (const DD_DATA_TYPE_STRUCT* s = list; s; s = s->next) {
        out << '{' << s->id << ' ' << s->nrData << '/' << s->nrVar << ' ' << slotCount(s->para);
        for (int i = 0; i < s->nrData; ++i)
            out << ' ' << s->para[i].ival << ':' << s->para[i].sval;
        for (const VARIABLE_STRUCT* v = s->variables; v; v = v->next) {
            out << " (" << v->type << ' ' << v->name << '=' << v->defaultValue << ' ' << slotCount(v->para);
            for (int i = 0; i < v->nrPara; ++i)
                out << ' ' << v->para[i].ival << ':' << v->para[i].sval << '/' << v->para[i].size;
            out << ')';
        }
        out << '}';
    }
    return out.str();
}

std::string load(const std::string& section)
{
    k2dtest::TempFile file(std::vector<uint8_t>(section.begin(), section.end()), ".xml");
    XmlDocument document;
    document.read(file.path());
    Sources sources;
    dataLoadXml(document.root(), &sources.list, 0);
    return describe(sources.list);
}

TEST(DataXml, SectionsReadAsTheirSourcesWithDamagedCountsHarmless)
{
    const std::string d70(70, 'd'), v70(70, 'v');
    const auto twelve = [](const std::string& name) {
        std::string children;
        for (int i = 0; i < 12; ++i)
            children += "<" + name + " ival='" + std::to_string(i) + "'/>";
        return children;
    };
    const std::pair<std::string, std::string> cases[] = { // {children of "data", description}
        {"<datasource id='7'/><other/>", "{7 0/0 10}"},
        {"<datasource nr-data-para='1'><datasource-para ival='3' sval='" + d70 + "'/><datasource-var type='6' "
         "name='n' default='x'><datasource-var-para ival='4' sval='" + v70 + "'/></datasource-var></datasource>",
         "{0 1/0 10 3:" + d70.substr(0, 63) + " (6 n=x 10)}"},
        {"<datasource nr-data-para='2' nr-var-para='1'><datasource-para ival='1'/><datasource-var name='a'>"
         "<datasource-var-para ival='4' sval='" + v70 + "'/></datasource-var><datasource-para ival='2' sval='b'/>"
         "</datasource><datasource id='2'/>",
         "{0 2/1 10 1: 2:b (0 a= 10 4:" + v70 + "/82)}{2 0/0 10}"},
        {"<datasource nr-data-para='2000000000' nr-var-para='2000000000'><datasource-para/><datasource-var>"
         "<datasource-var-para sval='p'/><datasource-var-para/></datasource-var></datasource>",
         "{0 1/2 10 0: (0 = 10 0:p/13 0:/12)}"},
        {"<datasource nr-data-para='-5' nr-var-para='-1'>" + twelve("datasource-para") + "<datasource-var>" +
             twelve("datasource-var-para") + "</datasource-var></datasource>",
         "{0 0/0 10 (0 = 10)}"},
        {"<datasource nr-data-para='12'>" + twelve("datasource-para") + "</datasource>",
         "{0 12/0 12 0: 1: 2: 3: 4: 5: 6: 7: 8: 9: 10: 11:}"},
    };
    for (const auto& [children, expected] : cases)
        EXPECT_EQ(load("<data>" + children + "</data>"), expected) << children;
}

// On disk: attributes in their order, texts to their terminators, slots a variable lacks empty.
TEST(DataXml, SourcesWriteTheirElements)
{
    Sources sources;
    appendDataType(&sources.list, createDataType(0));
    DD_DATA_TYPE_STRUCT* source = createDataType(1);
    source->id = 9;
    source->nrData = source->nrVar = 1;
    source->para[0].ival = -3;
    std::memset(source->para[0].sval, 'p', 64); // no terminator: the buffer's 64 bytes
    VARIABLE_STRUCT* variable = createVariable(0);
    variable->type = KR_VAR_TEXT;
    std::strcpy(variable->name, "v");
    std::strcpy(variable->defaultValue, "a<b");
    appendVariable(&source->variables, variable);
    appendDataType(&sources.list, source);
    XmlDocument document;
    XmlElement section("data");
    document.appendElement(section);
    dataSaveXml(section, sources.list);
    k2dtest::TempFile file({}, ".xml");
    document.write(file.path());
    std::ifstream in(file.path(), std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}),
              "<?xml version=\"1.0\" ?>\n<data>\n    <datasource name=\"DatasourceName\" id=\"0\" nr-data-para=\"0\" "
              "nr-var-para=\"0\" />\n    <datasource name=\"DatasourceName\" id=\"9\" nr-data-para=\"1\" "
              "nr-var-para=\"1\">\n        <datasource-para ival=\"-3\" sval=\"" + std::string(64, 'p') +
                  "\" />\n        <datasource-var type=\"10\" name=\"v\" default=\"a&lt;b\">\n            "
                  "<datasource-var-para ival=\"0\" sval=\"\" />\n        </datasource-var>\n    </datasource>\n"
                  "</data>\n");
}

// Every source, parameter and variable of the sample comes back, in order.
TEST(DataXml, SampleSourcesRoundTrip)
{
    k2dtest::FileView sample(std::string(KOREL2D_EXAMPLES_DIR) + "/sources.k2d");
    ASSERT_EQ(sample.result, 0);
    XmlElement section("data");
    XmlDocument document;
    document.appendElement(section);
    dataSaveXml(section, sample.view.dataTypes);
    Sources back;
    dataLoadXml(section, &back.list, 0);
    VIEW_STRUCT written = {}, read = {};
    written.dataTypes = sample.view.dataTypes;
    read.dataTypes = back.list;
    EXPECT_EQ(k2dtest::firstStoredDifference(&written, &read), "");
}

} // namespace
