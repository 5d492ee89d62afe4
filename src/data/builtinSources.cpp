#include "data/builtinSources.h"

namespace {

int emptySourceEntry(DD_DATA_TYPE_STRUCT*)
{
    return 0;
}

int emptyNewVariable(VARIABLE_STRUCT*)
{
    return 0;
}

int emptyCallbackData(int, int, void*, DD_DATA_TYPE_STRUCT*)
{
    return 0;
}

int emptyCallbackVar(int, int, void*, VARIABLE_STRUCT*)
{
    return 0;
}

} // namespace

int emptyVariableEntry(VARIABLE_STRUCT*, DD_DATA_TYPE_STRUCT*)
{
    return 0;
}

void quietEntries(DD_DATA_TYPE_STRUCT* source)
{
    source->open = source->close = source->run = source->startView = source->newData = emptySourceEntry;
    source->newVariable = emptyNewVariable;
    source->callbackData = emptyCallbackData;
    source->callbackVar = emptyCallbackVar;
}
