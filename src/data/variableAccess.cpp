// What a host sees of sources and variables: listing them, their parameters, and reading and
// writing values by name while the view runs.
#include "base/base.h"
#include "core/handles.h"
#include "data/valueBuffer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Shared by all calls: the result of one call lives until the next.
char libraryNameText[128];

// An array of the list's records, made for the caller; with nothing to list an empty
// allocation, so that a non-null result always means success.
template <class Record> Record** listArray(Record* head, int* count)
{
    int n = 0;
    for (Record* record = head; record; record = record->next)
        ++n;
    Record** array = static_cast<Record**>(malloc(n > 0 ? size_t(n) * sizeof(Record*) : 1));
    if (!array) {
        if (count)
            *count = 0;
        return nullptr;
    }
    int i = 0;
    for (Record* record = head; record; record = record->next)
        array[i++] = record;
    if (count)
        *count = n;
    return array;
}

// The common checks of the access by name; fills `variable` (null if unknown) on success.
int findRunning(VIEW_STRUCT* view, const char* name, const void* value, VARIABLE_STRUCT** variable)
{
    if (int check = checkView(view))
        return check;
    if (view->runMode == KR_RUN_STOPPED)
        return -3;
    if (!name)
        return -4;
    if (!value)
        return -5;
    *variable = static_cast<VARIABLE_STRUCT*>(mpiHashSearchAscii(view->varHash, name));
    return 0;
}

// A host's text is decimal; a double passes through a float and loses its low digits, and a
// long is cut to 32 bits and sign-extended, as hosts expect.
constexpr TextRules kHostText{10, true, LongWidth::SignExtended32};

} // namespace

DD_DATA_TYPE_STRUCT** krDataSourceGetAll(VIEW_STRUCT* view, int* count)
{
    if (checkView(view) != 0) {
        if (count)
            *count = 0;
        return nullptr;
    }
    return listArray(view->dataTypes, count);
}

const char* krDataSourceName(DD_DATA_TYPE_STRUCT* source)
{
    return source ? source->name : nullptr;
}

const char* krDataSourceLibName(DD_DATA_TYPE_STRUCT* source)
{
    if (!source)
        return nullptr;
    // "libKrd" and ".so" take 9 of the 128 bytes.
    snprintf(libraryNameText, sizeof libraryNameText, "libKrd%.118s.so", source->libName);
    return libraryNameText;
}

int krDataSourceType(DD_DATA_TYPE_STRUCT* source)
{
    return source ? source->id : -1;
}

VARIABLE_STRUCT** krVarGetAll(DD_DATA_TYPE_STRUCT* source, int* count)
{
    if (!source) {
        if (count)
            *count = 0;
        return nullptr;
    }
    return listArray(source->variables, count);
}

const char* krVarName(VARIABLE_STRUCT* variable)
{
    return variable ? variable->name : nullptr;
}

int krVarType(VARIABLE_STRUCT* variable)
{
    return variable ? variable->type : -1;
}

int krVarReadWrite(VARIABLE_STRUCT* variable)
{
    return variable ? variable->readWrite : -1;
}

int krVarSource(VIEW_STRUCT* view, const char* name)
{
    if (!name || checkView(view) != 0)
        return -1;
    for (const DD_DATA_TYPE_STRUCT* source = view->dataTypes; source; source = source->next)
        for (const VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next)
            if (strcmp(variable->name, name) == 0)
                return source->id;
    return -1;
}

int krVarSetPara(VARIABLE_STRUCT* variable, int index, int ival, const char* text)
{
    if (!variable)
        return -1;
    if (index < 0 || index >= variable->nrPara)
        return -2;
    PARA_STRUCT& slot = variable->para[index];
    slot.ival = ival;
    if (text && slot.sval && slot.size > 0)
        snprintf(slot.sval, slot.size, "%s", text);
    return 0;
}

int krVarGetPara(VARIABLE_STRUCT* variable, int index, int* ival, char* text)
{
    if (!variable)
        return -1;
    if (index < 0 || index >= variable->nrPara)
        return -2;
    const PARA_STRUCT& slot = variable->para[index];
    if (ival)
        *ival = slot.ival;
    if (text)
        snprintf(text, slot.size > 0 ? slot.size : 1, "%s", slot.sval ? slot.sval : "");
    return 0;
}

void krFree(void* pointer)
{
    free(pointer);
}

int krVarSet(VIEW_STRUCT* view, const char* name, const void* value)
{
    VARIABLE_STRUCT* variable = nullptr;
    if (int check = findRunning(view, name, value, &variable))
        return check;
    ViewLock lock(view);
    if (!variable)
        return 0;
    if (variable->value)
        transferValue(variable->value, value, variable->type);
    return 1;
}

int krVarSetStr(VIEW_STRUCT* view, const char* name, const char* text)
{
    VARIABLE_STRUCT* variable = nullptr;
    if (int check = findRunning(view, name, text, &variable))
        return check;
    ViewLock lock(view);
    if (!variable)
        return 0;
    if (variable->value)
        parseValue(variable->value, variable->type, text, kHostText);
    return 1;
}

int krVarGetStr(VIEW_STRUCT* view, const char* name, char* text)
{
    VARIABLE_STRUCT* variable = nullptr;
    if (int check = findRunning(view, name, text, &variable))
        return check;
    ViewLock lock(view);
    if (!variable)
        return -6;
    if (variable->value)
        formatValue(text, variable->value, variable->type);
    else
        text[0] = '\0';
    int written = variable->written;
    variable->written = 0;
    return written;
}

void* krVarGetAddr(VIEW_STRUCT* view, const char* name)
{
    if (checkView(view) != 0 || view->runMode == KR_RUN_STOPPED || !name)
        return nullptr;
    VARIABLE_STRUCT* variable = static_cast<VARIABLE_STRUCT*>(mpiHashSearchAscii(view->varHash, name));
    return variable ? variable->value : nullptr;
}
