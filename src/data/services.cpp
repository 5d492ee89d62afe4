// The services a source reaches through its record: it names itself, declares its parameters
// and makes its variables with them, in Info and StartView.
#include "KorelEdit.h"
#include "data/data.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr size_t kItemSize = 32;

// Process-wide arrays of the Get-all services, each given back at the next call.
char** allVariableNames;
VARIABLE_STRUCT** allVariableRecords;

void copyText(char* destination, size_t size, const char* text)
{
    snprintf(destination, size, "%s", text ? text : "");
}

// Grows the description array of a scope by one zeroed record; null when out of memory.
OPTION_STRUCT* appendOption(OPTION_STRUCT** options, int32_t count)
{
    OPTION_STRUCT* grown = static_cast<OPTION_STRUCT*>(realloc(*options, (size_t(count) + 1) * sizeof(OPTION_STRUCT)));
    if (!grown)
        return nullptr;
    *options = grown;
    memset(&grown[count], 0, sizeof(OPTION_STRUCT));
    return &grown[count];
}

int countVariables(const DD_DATA_TYPE_STRUCT* source)
{
    int count = 0;
    for (const VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next)
        ++count;
    return count;
}

} // namespace

int krdInit(DD_DATA_TYPE_STRUCT* source, const char* name, int id, int mode)
{
    if (!source)
        return -1;
    copyText(source->name, sizeof source->name, name);
    source->id = id;
    source->nrData = 0;
    source->globalVariables = mode ? 1 : 0;
    return 0;
}

int krdOption(DD_DATA_TYPE_STRUCT* source, int scope, int kind, unsigned flags, const char* title, ...)
{
    if (!source)
        return -1;
    OPTION_STRUCT** options = scope == KRD_SCOPE_DATA ? &source->dataOptions : &source->varOptions;
    int32_t* count = scope == KRD_SCOPE_DATA ? &source->nrData : &source->nrVar;
    OPTION_STRUCT* option = appendOption(options, *count);
    if (!option) {
        logMsg(1, "data->option 1: out of memory\n");
        return -1;
    }
    option->kind = kind;
    copyText(option->title, sizeof option->title, title);
    option->flags = flags;

    va_list args;
    va_start(args, title);
    if (kind == KRD_FIELD_BUTTON) {
        const char* caption = va_arg(args, const char*);
        option->items = static_cast<char*>(calloc(1, kItemSize));
        if (!option->items) {
            va_end(args);
            logMsg(1, "data->option 5: out of memory\n");
            return -1;
        }
        copyText(option->items, kItemSize, caption);
        option->count = 1;
    } else if (kind == KRD_FIELD_LIST) {
        va_list counting;
        va_copy(counting, args);
        int items = 0;
        while (va_arg(counting, const char*))
            ++items;
        va_end(counting);
        if (items > 0) {
            option->items = static_cast<char*>(calloc(size_t(items), kItemSize));
            if (!option->items) {
                va_end(args);
                logMsg(1, "data->option 4: out of memory\n");
                return -1;
            }
            for (int i = 0; i < items; ++i)
                copyText(option->items + size_t(i) * kItemSize, kItemSize, va_arg(args, const char*));
        }
        option->count = items;
    }
    va_end(args);
    ++*count;
    return 0;
}

int krdAddVariable(DD_DATA_TYPE_STRUCT* source, const char* name, int type, ...)
{
    if (!source)
        return -1;
    int slots = source->nrVar > 0 ? source->nrVar : 0;
    VARIABLE_STRUCT* variable = createVariable(slots);
    if (!variable)
        return -1;
    copyText(variable->name, sizeof variable->name, name);
    variable->type = type;
    va_list args;
    va_start(args, type);
    for (int i = 0; i < slots && source->varOptions; ++i) {
        PARA_STRUCT& slot = variable->para[i];
        int kind = source->varOptions[i].kind;
        if (kind == KRD_FIELD_TEXT)
            copyText(slot.sval, slot.size, va_arg(args, const char*));
        else if (kind == KRD_FIELD_LIST)
            slot.ival = va_arg(args, int);
    }
    va_end(args);
    appendVariable(&source->variables, variable);
    return 0;
}

int krdDeleteAllVariables(DD_DATA_TYPE_STRUCT* source)
{
    if (!source)
        return 0;
    while (source->variables)
        delVariable(&source->variables, source->variables);
    return 0;
}

char** krdGetAllVariables(DD_DATA_TYPE_STRUCT* source)
{
    if (allVariableNames) {
        for (char** name = allVariableNames; *name; ++name)
            free(*name);
        free(allVariableNames);
        allVariableNames = nullptr;
    }
    if (!source)
        return nullptr;
    allVariableNames = static_cast<char**>(calloc(size_t(countVariables(source)) + 1, sizeof(char*)));
    if (!allVariableNames)
        return nullptr;
    char** next = allVariableNames;
    for (const VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next)
        if (char* copy = strdup(variable->name))
            *next++ = copy;
    return allVariableNames;
}

VARIABLE_STRUCT** krdGetAllVariablesS(DD_DATA_TYPE_STRUCT* source)
{
    free(allVariableRecords);
    allVariableRecords = nullptr;
    if (!source)
        return nullptr;
    allVariableRecords = static_cast<VARIABLE_STRUCT**>(calloc(size_t(countVariables(source)) + 1, sizeof(VARIABLE_STRUCT*)));
    if (!allVariableRecords)
        return nullptr;
    VARIABLE_STRUCT** next = allVariableRecords;
    for (VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next)
        *next++ = variable;
    return allVariableRecords;
}
