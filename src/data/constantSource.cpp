// Constant Data (type 2): each variable gives the value stored in its VALUE parameter. The text
// is read anew every cycle, so whatever wrote into the buffer in between is overwritten.
#include "data/builtinSources.h"
#include "data/valueBuffer.h"

namespace {

// The stored VALUE is decimal, and a long takes all eight bytes of it.
constexpr TextRules kValueText{10, false, LongWidth::Whole};

int krdConstVarInfo(DD_DATA_TYPE_STRUCT* source)
{
    source->init(source, "Constant Data", KRD_TYPE_CONSTANT, 0);
    source->option(source, KRD_SCOPE_VARIABLE, KRD_FIELD_TEXT, 0, "VALUE");
    return 0;
}

int krdConstVarGet(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT*)
{
    if (!variable->value)
        return 0;
    parseValue(variable->value, variable->type, variableParaText(variable, 0), kValueText);
    return 0;
}

} // namespace

void constantSourceEntries(DD_DATA_TYPE_STRUCT* source)
{
    quietEntries(source);
    source->info = krdConstVarInfo;
    source->get = krdConstVarGet;
}
