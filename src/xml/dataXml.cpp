// The "data" section of an XML view: the sources with their parameters and variables, in the
// same records the binary files fill, so that a view reads the same from either form.
#include "core/linkedList.h"
#include "xml/viewXml.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// The source found at run time may have more parameters than the file stored, so every
// record gets at least this many slots, as in the binary files.
constexpr int kMinimumSlots = 10;
// Head room behind a variable parameter's text, as the binary reader gives a buffer it grows.
constexpr size_t kTextSlack = 12;

int slotsFor(int count)
{
    return std::max(count, kMinimumSlots);
}

// A fixed buffer of a record written up to its terminator, or whole if a plug-in left none.
std::string fixedText(const char* text, size_t size)
{
    return text ? std::string(text, strnlen(text, size)) : std::string();
}

void cutInto(char* buffer, size_t size, const std::string& text)
{
    std::snprintf(buffer, size, "%s", text.c_str());
}

void saveParameter(XmlElement& parent, const char* name, const PARA_STRUCT& slot)
{
    XmlElement parameter(name);
    parameter.setAttributeInt("ival", slot.ival);
    parameter.setAttributeString("sval", fixedText(slot.sval, slot.size));
    parent.appendElement(parameter);
}

void saveVariable(XmlElement& source, const VARIABLE_STRUCT* variable, int32_t parameterCount)
{
    XmlElement element("datasource-var");
    element.setAttributeInt("type", variable->type);
    element.setAttributeString("name", fixedText(variable->name, sizeof variable->name));
    element.setAttributeString("default", fixedText(variable->defaultValue, sizeof variable->defaultValue));
    // Slots the variable hasn't got are written empty, so that the count of the source holds.
    const PARA_STRUCT empty = {0, nullptr, 0};
    for (int32_t i = 0; i < parameterCount; ++i)
        saveParameter(element, "datasource-var-para", i < variable->nrPara ? variable->para[i] : empty);
    source.appendElement(element);
}

// The counts of a file are believed only as far as its children back them: a damaged count
// would otherwise make slots that nothing fills, billions of them.
struct Counts {
    int data = 0;
    int variable = 0;
};

int childrenNamed(const XmlElement& parent, const char* name)
{
    int count = 0;
    for (XmlElement child = parent.firstElement(); child.valid(); child = child.nextElement())
        count += child.name() == name;
    return count;
}

Counts countsOf(const XmlElement& source)
{
    int variableParameters = 0;
    for (XmlElement child = source.firstElement(); child.valid(); child = child.nextElement())
        if (child.name() == "datasource-var")
            variableParameters = std::max(variableParameters, childrenNamed(child, "datasource-var-para"));
    const auto within = [](int stored, int present) { return std::clamp(stored, 0, present); };
    return {within(source.getAttributeInt("nr-data-para"), childrenNamed(source, "datasource-para")),
            within(source.getAttributeInt("nr-var-para"), variableParameters)};
}

// The text keeps its whole length in a buffer of its own; on a failed allocation the slot
// keeps the empty text it was made with.
void loadVariableParameter(const XmlElement& element, PARA_STRUCT* slot)
{
    slot->ival = element.getAttributeInt("ival");
    const std::string text = element.getAttributeString("sval");
    const size_t size = text.size() + kTextSlack;
    if (size > UINT32_MAX)
        return;
    char* buffer = static_cast<char*>(calloc(1, size));
    if (!buffer)
        return;
    std::memcpy(buffer, text.data(), text.size());
    free(slot->sval);
    slot->sval = buffer;
    slot->size = uint32_t(size);
}

// Null when out of memory.
VARIABLE_STRUCT* loadVariable(const XmlElement& element, int parameterCount)
{
    const int slots = slotsFor(parameterCount);
    VARIABLE_STRUCT* variable = createVariable(slots);
    if (!variable)
        return nullptr;
    variable->nrPara = parameterCount;
    variable->type = element.getAttributeInt("type");
    cutInto(variable->name, sizeof variable->name, element.getAttributeString("name"));
    cutInto(variable->defaultValue, sizeof variable->defaultValue, element.getAttributeString("default"));
    int index = 0;
    for (XmlElement child = element.firstElement(); child.valid() && index < slots; child = child.nextElement())
        if (child.name() == "datasource-var-para")
            loadVariableParameter(child, &variable->para[index++]);
    return variable;
}

// Parameters and variables in document order: a parameter behind the variables still takes
// the next slot. Null when out of memory.
DD_DATA_TYPE_STRUCT* loadSource(const XmlElement& element)
{
    const Counts counts = countsOf(element);
    const int slots = slotsFor(counts.data);
    DD_DATA_TYPE_STRUCT* source = createDataType(slots);
    if (!source)
        return nullptr;
    source->id = element.getAttributeInt("id");
    source->nrData = counts.data;
    source->nrVar = counts.variable;
    TailAppender<VARIABLE_STRUCT> variables(&source->variables);
    int index = 0;
    for (XmlElement child = element.firstElement(); child.valid(); child = child.nextElement()) {
        const std::string name = child.name();
        if (name == "datasource-para" && index < slots) {
            PARA_STRUCT& slot = source->para[index++];
            slot.ival = child.getAttributeInt("ival");
            cutInto(slot.sval, slot.size, child.getAttributeString("sval"));
        } else if (name == "datasource-var") {
            VARIABLE_STRUCT* variable = loadVariable(child, counts.variable);
            if (!variable)
                break;
            variables.add(variable);
        }
    }
    return source;
}

} // namespace

void dataSaveXml(XmlElement& section, const DD_DATA_TYPE_STRUCT* dataTypes)
{
    for (const DD_DATA_TYPE_STRUCT* source = dataTypes; source; source = source->next) {
        XmlElement element("datasource");
        // The name of a source is looked up by its type number at run time; the attribute
        // only labels the element.
        element.setAttributeString("name", "DatasourceName");
        element.setAttributeInt("id", source->id);
        element.setAttributeInt("nr-data-para", source->nrData);
        element.setAttributeInt("nr-var-para", source->nrVar);
        for (int32_t i = 0; i < source->nrData; ++i)
            saveParameter(element, "datasource-para", source->para[i]);
        for (const VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next)
            saveVariable(element, variable, source->nrVar);
        section.appendElement(element);
    }
}

int dataLoadXml(const XmlElement& section, DD_DATA_TYPE_STRUCT** dataTypes, int /*mode: no effect*/)
{
    TailAppender<DD_DATA_TYPE_STRUCT> sources(dataTypes);
    for (XmlElement child = section.firstElement(); child.valid(); child = child.nextElement()) {
        if (child.name() != "datasource")
            continue;
        DD_DATA_TYPE_STRUCT* source = loadSource(child);
        if (!source)
            break;
        sources.add(source);
    }
    return 0;
}
