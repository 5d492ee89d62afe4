// Internal Data (type 5): plain variables that only the view and its host write. Its Set exists
// and does nothing, so that defaults and input actions reach the buffer and stay there; with no
// Get nothing overwrites them.
#include "data/builtinSources.h"

namespace {

int krdIntVarInfo(DD_DATA_TYPE_STRUCT* source)
{
    source->init(source, "Internal Data", 5, 0);
    return 0;
}

} // namespace

int emptySourceEntry(DD_DATA_TYPE_STRUCT*)
{
    return 0;
}

int emptyVariableEntry(VARIABLE_STRUCT*, DD_DATA_TYPE_STRUCT*)
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

void internalSourceEntries(DD_DATA_TYPE_STRUCT* source)
{
    source->info = krdIntVarInfo;
    source->open = source->close = source->run = source->startView = source->newData = emptySourceEntry;
    source->get = source->set = emptyVariableEntry;
    source->newVariable = emptyNewVariable;
    source->callbackData = emptyCallbackData;
    source->callbackVar = emptyCallbackVar;
}
