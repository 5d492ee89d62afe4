#include "printVariables.h"

namespace {

const char* const kTypeNames[] = {"float", "double", "int8", "uint8", "int16", "uint16",
                                  "int32", "uint32", "long", "ulong", "text"};

const char* typeName(int type)
{
    return type >= KR_VAR_FLOAT && type <= KR_VAR_TEXT ? kTypeNames[type] : "unknown type";
}

const char* libraryOf(DD_DATA_TYPE_STRUCT* source)
{
    if (source->isStatic)
        return "built-in";
    return source->libName[0] ? krDataSourceLibName(source) : "none";
}

} // namespace

void printVariables(VIEW_STRUCT* view, FILE* out)
{
    int sourceCount = 0;
    DD_DATA_TYPE_STRUCT** sources = krDataSourceGetAll(view, &sourceCount);
    for (int i = 0; i < sourceCount; ++i) {
        DD_DATA_TYPE_STRUCT* source = sources[i];
        std::fprintf(out, "source \"%s\" type %d library %s found %d\n", krDataSourceName(source),
                     krDataSourceType(source), libraryOf(source), source->found);
        int variableCount = 0;
        VARIABLE_STRUCT** variables = krVarGetAll(source, &variableCount);
        for (int j = 0; j < variableCount; ++j) {
            char value[256];
            if (krVarGetStr(view, krVarName(variables[j]), value) < 0)
                std::snprintf(value, sizeof value, "(not readable)");
            std::fprintf(out, "  %s %s = %s\n", typeName(krVarType(variables[j])), krVarName(variables[j]), value);
        }
        krFree(variables);
    }
    krFree(sources);
}
