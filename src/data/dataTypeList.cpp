// Data-source and variable records and their lists.
#include "KorelEdit.h"
#include "core/linkedList.h"
#include "data/sourceRecords.h"

#include <cstddef>
#include <cstdlib>

// Plug-ins are compiled separately against these records: their layout must not drift.
static_assert(sizeof(PARA_STRUCT) == 24 && offsetof(PARA_STRUCT, sval) == 8 && offsetof(PARA_STRUCT, size) == 16,
              "PARA_STRUCT layout");
static_assert(sizeof(OPTION_STRUCT) == 56 && offsetof(OPTION_STRUCT, flags) == 36 && offsetof(OPTION_STRUCT, items) == 48,
              "OPTION_STRUCT layout");
static_assert(sizeof(VARIABLE_STRUCT) == 216 && offsetof(VARIABLE_STRUCT, para) == 72 &&
                  offsetof(VARIABLE_STRUCT, changed) == 88 && offsetof(VARIABLE_STRUCT, user) == 96 &&
                  offsetof(VARIABLE_STRUCT, readWrite) == 104 && offsetof(VARIABLE_STRUCT, lastValue) == 120 &&
                  offsetof(VARIABLE_STRUCT, next) == 136 && offsetof(VARIABLE_STRUCT, defaultValue) == 144 &&
                  offsetof(VARIABLE_STRUCT, written) == 208,
              "VARIABLE_STRUCT layout");
static_assert(sizeof(DD_DATA_TYPE_STRUCT) == 1104 && offsetof(DD_DATA_TYPE_STRUCT, id) == 64 &&
                  offsetof(DD_DATA_TYPE_STRUCT, para) == 72 && offsetof(DD_DATA_TYPE_STRUCT, init) == 88 &&
                  offsetof(DD_DATA_TYPE_STRUCT, log) == 136 && offsetof(DD_DATA_TYPE_STRUCT, variables) == 144 &&
                  offsetof(DD_DATA_TYPE_STRUCT, nrVar) == 160 && offsetof(DD_DATA_TYPE_STRUCT, dataOptions) == 168 &&
                  offsetof(DD_DATA_TYPE_STRUCT, libPath) == 184 && offsetof(DD_DATA_TYPE_STRUCT, libName) == 696 &&
                  offsetof(DD_DATA_TYPE_STRUCT, found) == 952 && offsetof(DD_DATA_TYPE_STRUCT, handle) == 960 &&
                  offsetof(DD_DATA_TYPE_STRUCT, versionFn) == 976 && offsetof(DD_DATA_TYPE_STRUCT, info) == 984 &&
                  offsetof(DD_DATA_TYPE_STRUCT, callbackVar) == 1080 && offsetof(DD_DATA_TYPE_STRUCT, prev) == 1088,
              "DD_DATA_TYPE_STRUCT layout");

namespace {

constexpr uint32_t kParaTextSize = 64;

// `slots` slots with empty texts, and behind them one slot without a text. The counts in a
// record (nrData, nrPara) say how many parameters a source uses, which can be fewer or more
// than the slots it has; the end mark lets the slots be freed without a count.
PARA_STRUCT* createParaSlots(int slots)
{
    PARA_STRUCT* para = static_cast<PARA_STRUCT*>(calloc(size_t(slots) + 1, sizeof(PARA_STRUCT)));
    if (!para)
        return nullptr;
    for (int i = 0; i < slots; ++i) {
        para[i].sval = static_cast<char*>(calloc(1, kParaTextSize));
        if (!para[i].sval) {
            para[i].size = 0;
            for (int j = 0; j < i; ++j)
                free(para[j].sval);
            free(para);
            return nullptr;
        }
        para[i].size = kParaTextSize;
    }
    return para;
}

int countParaSlots(const PARA_STRUCT* para)
{
    int slots = 0;
    if (para)
        while (para[slots].sval)
            ++slots;
    return slots;
}

void freeParaSlots(PARA_STRUCT* para)
{
    if (!para)
        return;
    for (PARA_STRUCT* slot = para; slot->sval; ++slot)
        free(slot->sval);
    free(para);
}

void freeOptions(OPTION_STRUCT* options, int32_t count, bool withItems)
{
    if (options && withItems)
        for (int32_t i = 0; i < count; ++i)
            free(options[i].items);
    free(options);
}

} // namespace

int ensureParaSlots(PARA_STRUCT** para, int slots)
{
    int have = countParaSlots(*para);
    if (have >= slots)
        return 0;
    PARA_STRUCT* grown = createParaSlots(slots);
    if (!grown)
        return -1;
    for (int i = 0; i < have; ++i) {
        free(grown[i].sval);
        grown[i] = (*para)[i];
    }
    free(*para);
    *para = grown;
    return 0;
}

DD_DATA_TYPE_STRUCT* createDataType(int slots)
{
    DD_DATA_TYPE_STRUCT* source = static_cast<DD_DATA_TYPE_STRUCT*>(calloc(1, sizeof(DD_DATA_TYPE_STRUCT)));
    if (source && slots > 0) {
        source->para = createParaSlots(slots);
        if (!source->para) {
            free(source);
            source = nullptr;
        }
    }
    if (!source) {
        logMsg(1, "createDataType: out of memory\n");
        return nullptr;
    }
    source->found = 1;
    return source;
}

int appendDataType(DD_DATA_TYPE_STRUCT** head, DD_DATA_TYPE_STRUCT* source)
{
    if (head && source)
        appendNode(head, source);
    return 0;
}

int checkDataType(DD_DATA_TYPE_STRUCT* list, int id)
{
    for (const DD_DATA_TYPE_STRUCT* source = list; source; source = source->next)
        if (source->id == id)
            return 1;
    return 0;
}

int KDataInsertBefore(DD_DATA_TYPE_STRUCT* source, DD_DATA_TYPE_STRUCT* before, DD_DATA_TYPE_STRUCT** head)
{
    if (head && source)
        insertNode(source, before, head, true);
    return 0;
}

int KDataInsertAfter(DD_DATA_TYPE_STRUCT* source, DD_DATA_TYPE_STRUCT* after, DD_DATA_TYPE_STRUCT** head)
{
    if (head && source)
        insertNode(source, after, head, false);
    return 0;
}

int delDataType(DD_DATA_TYPE_STRUCT** head, DD_DATA_TYPE_STRUCT* source, int withOptions)
{
    if (!source)
        return 0;
    if (head && *head)
        unlinkNode(head, source);
    while (source->variables)
        delVariable(&source->variables, source->variables);
    freeParaSlots(source->para);
    // The description arrays are the record's own in any case; their item lists may be
    // shared with another record, which is why they go only when asked for.
    freeOptions(source->dataOptions, source->nrData, withOptions != 0);
    freeOptions(source->varOptions, source->nrVar, withOptions != 0);
    free(source);
    return 0;
}

VARIABLE_STRUCT* createVariable(int slots)
{
    VARIABLE_STRUCT* variable = static_cast<VARIABLE_STRUCT*>(calloc(1, sizeof(VARIABLE_STRUCT)));
    if (variable && slots > 0) {
        variable->para = createParaSlots(slots);
        if (!variable->para) {
            free(variable);
            variable = nullptr;
        }
    }
    if (!variable) {
        logMsg(1, "createVariable: out of memory\n");
        return nullptr;
    }
    variable->nrPara = slots;
    return variable;
}

int appendVariable(VARIABLE_STRUCT** head, VARIABLE_STRUCT* variable)
{
    if (head && variable)
        appendNode(head, variable);
    return 0;
}

int variableInsertBefore(VARIABLE_STRUCT* variable, VARIABLE_STRUCT* before, VARIABLE_STRUCT** head)
{
    if (head && variable)
        insertNode(variable, before, head, true);
    return 0;
}

int variableInsertAfter(VARIABLE_STRUCT* variable, VARIABLE_STRUCT* after, VARIABLE_STRUCT** head)
{
    if (head && variable)
        insertNode(variable, after, head, false);
    return 0;
}

int delVariable(VARIABLE_STRUCT** head, VARIABLE_STRUCT* variable)
{
    if (!variable)
        return 0;
    if (head && *head)
        unlinkNode(head, variable);
    freeParaSlots(variable->para);
    free(variable->value);
    free(variable);
    return 0;
}
