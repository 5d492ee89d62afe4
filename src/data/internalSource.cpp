// Internal Data (type 5): plain variables that only the view and its host write. Its Set exists
// and does nothing, so that defaults and input actions reach the buffer and stay there; with no
// Get nothing overwrites them.
#include "data/builtinSources.h"

namespace {

int krdIntVarInfo(DD_DATA_TYPE_STRUCT* source)
{
    source->init(source, "Internal Data", KRD_TYPE_INTERNAL, 0);
    return 0;
}

} // namespace

void internalSourceEntries(DD_DATA_TYPE_STRUCT* source)
{
    quietEntries(source);
    source->info = krdIntVarInfo;
    source->get = source->set = emptyVariableEntry;
}
