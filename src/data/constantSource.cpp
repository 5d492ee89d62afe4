// Constant Data (type 2): each variable gives the value stored in its VALUE parameter. The text
// is read anew every cycle, so whatever wrote into the buffer in between is overwritten.
#include "data/builtinSources.h"
#include "data/valueBuffer.h"

namespace {

// The stored VALUE is decimal, and a long takes all eight bytes of it.
constexpr TextRules kValueText{10, false, LongWidth::Whole};

int krdConstVarInfo(DD_DATA_TYPE_STRUCT* source)
{
    source->init(source, "Constant Data", 2, 0);
    source->option(source, 1, 0, 0, "VALUE");
    return 0;
}

int krdConstVarGet(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT*)
{
    if (!variable->value)
        return 0;
    const char* text = variable->para && variable->nrPara > 0 && variable->para[0].sval ? variable->para[0].sval : "";
    parseValue(variable->value, variable->type, text, kValueText);
    return 0;
}

} // namespace

void constantSourceEntries(DD_DATA_TYPE_STRUCT* source)
{
    quietEntries(source);
    source->info = krdConstVarInfo;
    source->get = krdConstVarGet;
}
