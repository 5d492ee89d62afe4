// What a host sees of sources and variables: listing them, their parameters, and reading and
// writing values by name while the view runs.
#include "Korel2D.h"
#include "core/handles.h"
#include "data/valueBuffer.h"

#include <cinttypes>
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

int64_t readSigned(const void* buffer, int type)
{
    switch (type) {
    case KR_VAR_INT8: return *static_cast<const int8_t*>(buffer);
    case KR_VAR_UINT8: return *static_cast<const uint8_t*>(buffer);
    case KR_VAR_INT16: return *static_cast<const int16_t*>(buffer);
    case KR_VAR_UINT16: return *static_cast<const uint16_t*>(buffer);
    case KR_VAR_INT32: return *static_cast<const int32_t*>(buffer);
    // Printed with %d as the other codes, so above 2^31 - 1 it reads negative.
    case KR_VAR_UINT32: return *static_cast<const int32_t*>(buffer);
    default: return *static_cast<const int64_t*>(buffer);
    }
}

// Into 256 bytes: %f for float and double, %ld for the long codes, %d for the others.
void printValue(char* text, const void* buffer, int type)
{
    if (type == KR_VAR_FLOAT)
        snprintf(text, kTextBufferSize, "%f", double(*static_cast<const float*>(buffer)));
    else if (type == KR_VAR_DOUBLE)
        snprintf(text, kTextBufferSize, "%f", *static_cast<const double*>(buffer));
    else if (type == KR_VAR_INT64 || type == KR_VAR_UINT64)
        snprintf(text, kTextBufferSize, "%" PRId64, readSigned(buffer, type));
    else if (isIntegerType(type))
        snprintf(text, kTextBufferSize, "%d", int(readSigned(buffer, type)));
    else if (type == KR_VAR_TEXT)
        storeText(text, static_cast<const char*>(buffer));
}

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
    void* buffer = variable->value;
    if (!buffer)
        return 1;
    int type = variable->type;
    if (type == KR_VAR_FLOAT || type == KR_VAR_DOUBLE)
        // A double passes through a float here and loses its low digits, as hosts expect.
        storeReal(buffer, type, double(float(strtod(text, nullptr))));
    else if (type == KR_VAR_INT64 || type == KR_VAR_UINT64)
        storeInteger(buffer, 8, int64_t(int32_t(strtol(text, nullptr, 10))));
    else if (isIntegerType(type))
        storeInteger(buffer, integerSize(type), strtol(text, nullptr, 10));
    else if (type == KR_VAR_TEXT)
        storeText(buffer, text);
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
    text[0] = '\0';
    if (variable->value)
        printValue(text, variable->value, variable->type);
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
