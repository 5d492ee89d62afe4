// Data-source sections from revision 1.11 on: sources with their parameters and variables, read
// in every later form and written in the present one.
#include "KorelEdit.h"
#include "core/linkedList.h"
#include "files/Reader.h"
#include "files/Writer.h"
#include "files/viewFileReaders.h"

#include <cstdlib>

namespace {

// Data parameter texts are always stored with their whole 64 bytes.
constexpr int32_t kDataTextBytes = 64;
constexpr size_t kDataParameterBytes = 4 + kDataTextBytes;
// Type number, the two parameter counts and the variable count.
constexpr size_t kSourceHeadBytes = 4 * 4;
// Type and name, and the default value where stored.
constexpr size_t kVariableHeadBytes = 4 + 64;
constexpr size_t kDefaultValueBytes = 64;
// A variable parameter with an empty text: its value and the text's size; before 3.02 its
// value and a fixed text.
constexpr size_t kVariableParameterBytes = 4 + 4;
constexpr size_t kFixedParameterBytes = 4 + kDataTextBytes;
// Head room given to a text buffer that has to grow.
constexpr uint32_t kTextSlack = 12;

size_t atLeastZero(int32_t count)
{
    return count > 0 ? size_t(count) : 0;
}

// A counted text into a parameter slot, whose buffer grows when the text doesn't fit.
// False when the file is short.
bool readParameterText(Reader& in, PARA_STRUCT* slot)
{
    int32_t n = in.integer();
    if (n <= 0)
        return true; // nothing stored: the text stays as it is
    if (!in.roomFor(size_t(n)))
        return false;
    if (uint32_t(n) >= slot->size) {
        uint32_t capacity = uint32_t(n) + kTextSlack;
        char* grown = static_cast<char*>(realloc(slot->sval, capacity));
        if (!grown) {
            logMsg(1, "dataLoad: out of memory\n");
            in.stream->abandon();
            return false;
        }
        slot->sval = grown;
        slot->size = capacity;
    }
    // The whole buffer is filled: a grown tail is zeroed rather than left to chance.
    KGetFString(slot->sval, slot->size, in.stream, n);
    return true;
}

// Null when the file ends before the variable's fixed part and its parameters can be there.
VARIABLE_STRUCT* readVariable(Reader& in, SourceForm form, int32_t parameterCount)
{
    const bool defaultValue = form >= SourceForm::defaultAndFixedParameters;
    const bool countedTexts = form == SourceForm::present;
    const size_t headBytes = kVariableHeadBytes + (defaultValue ? kDefaultValueBytes : 0);
    const size_t parameterBytes = countedTexts ? kVariableParameterBytes : kFixedParameterBytes;
    if (!in.roomFor(headBytes + atLeastZero(parameterCount) * parameterBytes))
        return nullptr;
    VARIABLE_STRUCT* variable = createVariable(slotsFor(parameterCount));
    if (!variable) {
        in.stream->abandon();
        return nullptr;
    }
    variable->nrPara = parameterCount;
    variable->type = in.integer();
    in.fixed(variable->name);
    if (defaultValue)
        in.fixed(variable->defaultValue);
    for (int32_t i = 0; i < parameterCount; ++i) {
        PARA_STRUCT* slot = &variable->para[i];
        slot->ival = in.integer();
        if (!countedTexts)
            KGetFString(slot->sval, slot->size, in.stream, kDataTextBytes);
        else if (!readParameterText(in, slot))
            break;
    }
    return variable;
}

// The counts stay as stored, whatever number of slots the record got.
DD_DATA_TYPE_STRUCT* readSource(Reader& in, SourceForm form)
{
    int32_t id = in.integer();
    int32_t dataCount = in.integer();
    int32_t variableParameterCount = in.integer();
    if (!in.roomFor(atLeastZero(dataCount) * kDataParameterBytes))
        return nullptr;
    DD_DATA_TYPE_STRUCT* source = createDataType(slotsFor(dataCount));
    if (!source) {
        in.stream->abandon();
        return nullptr;
    }
    source->id = id;
    source->nrData = dataCount;
    source->nrVar = variableParameterCount;
    for (int32_t i = 0; i < dataCount; ++i) {
        source->para[i].ival = in.integer();
        KGetFString(source->para[i].sval, source->para[i].size, in.stream, kDataTextBytes);
    }
    int32_t variableCount = in.integer();
    TailAppender<VARIABLE_STRUCT> variables(&source->variables);
    for (int32_t i = 0; i < variableCount; ++i) {
        VARIABLE_STRUCT* variable = readVariable(in, form, variableParameterCount);
        if (!variable)
            break;
        variables.add(variable);
    }
    return source;
}

// A variable parameter's text is stored with its whole buffer, the size it has in memory.
void writeParameterText(Writer& out, const PARA_STRUCT* slot)
{
    out.integer(int32_t(slot->size));
    out.text(slot->sval, slot->size, slot->size);
}

void writeVariable(Writer& out, const VARIABLE_STRUCT* variable, int32_t parameterCount)
{
    out.integer(variable->type);
    out.fixed(variable->name);
    out.fixed(variable->defaultValue);
    // Slots the variable hasn't got are stored empty, so that the count of the source holds.
    const PARA_STRUCT empty = {0, nullptr, 0};
    for (int32_t i = 0; i < parameterCount; ++i) {
        const PARA_STRUCT* slot = i < variable->nrPara ? &variable->para[i] : &empty;
        out.integer(slot->ival);
        writeParameterText(out, slot);
    }
}

// The counts are the source's own, which loading has matched to the library that provides it.
void writeSource(Writer& out, const DD_DATA_TYPE_STRUCT* source)
{
    out.integer(source->id);
    out.integer(source->nrData);
    out.integer(source->nrVar);
    for (int32_t i = 0; i < source->nrData; ++i) {
        out.integer(source->para[i].ival);
        out.text(source->para[i].sval, source->para[i].size, kDataTextBytes);
    }
    out.integer(listLength(source->variables));
    for (const VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next)
        writeVariable(out, variable, source->nrVar);
}

} // namespace

int dataLoad(const Layout& layout, KStream* stream, DD_DATA_TYPE_STRUCT** head, int revision)
{
    if (layout.sources == SourceForm::old)
        return dataLoadOld(stream, head, revision);
    Reader in{stream};
    int32_t count = in.integer();
    TailAppender<DD_DATA_TYPE_STRUCT> sources(head);
    for (int32_t i = 0; i < count && in.roomFor(kSourceHeadBytes); ++i) {
        DD_DATA_TYPE_STRUCT* source = readSource(in, layout.sources);
        if (!source)
            break;
        sources.add(source);
    }
    return 0;
}

int dataSave_303(const DD_DATA_TYPE_STRUCT* dataTypes, FILE* stream)
{
    Writer out{stream};
    out.integer(listLength(dataTypes));
    for (const DD_DATA_TYPE_STRUCT* source = dataTypes; source; source = source->next)
        writeSource(out, source);
    return 0;
}
