#include "data/builtinSources.h"

#include <cstdio>

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

const char* paraText(const PARA_STRUCT* para, int count, int index)
{
    return para && index >= 0 && index < count && para[index].sval ? para[index].sval : "";
}

void setParaText(PARA_STRUCT* para, int count, int index, const char* text)
{
    if (para && index >= 0 && index < count && para[index].sval && para[index].size)
        snprintf(para[index].sval, para[index].size, "%s", text);
}

} // namespace

const char* dataParaText(const DD_DATA_TYPE_STRUCT* source, int index)
{
    return paraText(source->para, source->nrData, index);
}

int dataParaItem(const DD_DATA_TYPE_STRUCT* source, int index)
{
    return source->para && index >= 0 && index < source->nrData ? source->para[index].ival : 0;
}

const char* variableParaText(const VARIABLE_STRUCT* variable, int index)
{
    return paraText(variable->para, variable->nrPara, index);
}

void setDataParaText(DD_DATA_TYPE_STRUCT* source, int index, const char* text)
{
    setParaText(source->para, source->nrData, index, text);
}

void setVariableParaText(VARIABLE_STRUCT* variable, int index, const char* text)
{
    setParaText(variable->para, variable->nrPara, index, text);
}

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
