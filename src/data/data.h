// Inside the library: the registry of data sources (built-in and plug-ins), their life at start
// and stop, and the services every source record carries.
#pragma once

#include "KorelEdit.h"

extern "C" {

// The built-in sources, then the plug-ins of ".", $KOREL_HOME/bin and $KOREL_HOME, each
// described by its Info; the first holder of a type number stays.
KOREL2D_API int kriLoadStaticDataSources(DD_DATA_TYPE_STRUCT** knownTypes);
KOREL2D_API int kriLoadDataSources(DD_DATA_TYPE_STRUCT** knownTypes);
KOREL2D_API int kriAppendDDsource(DD_DATA_TYPE_STRUCT** knownTypes, const char* path, const char* baseName);
// Loads (0) or unloads one plug-in; nothing for a built-in source. -1 on failure.
KOREL2D_API int openDDsource(const char* path, const char* baseName, DD_DATA_TYPE_STRUCT* source);
KOREL2D_API int closeDDsource(DD_DATA_TYPE_STRUCT* source);
// Gives the view's sources the descriptions and entry points of the known ones.
KOREL2D_API int updateDataTypes(DD_DATA_TYPE_STRUCT* knownTypes, DD_DATA_TYPE_STRUCT* dataTypes);
KOREL2D_API int openDataSources(DD_DATA_TYPE_STRUCT* list);
KOREL2D_API int callStartView(DD_DATA_TYPE_STRUCT* list);
KOREL2D_API int closeDataSources(DD_DATA_TYPE_STRUCT* list);

// Services a source reaches through its record.
KOREL2D_API int krdInit(DD_DATA_TYPE_STRUCT* source, const char* name, int id, int mode);
KOREL2D_API int krdOption(DD_DATA_TYPE_STRUCT* source, int scope, int kind, unsigned flags, const char* title, ...);
KOREL2D_API int krdAddVariable(DD_DATA_TYPE_STRUCT* source, const char* name, int type, ...);
KOREL2D_API int krdDeleteAllVariables(DD_DATA_TYPE_STRUCT* source);
KOREL2D_API char** krdGetAllVariables(DD_DATA_TYPE_STRUCT* source);
KOREL2D_API VARIABLE_STRUCT** krdGetAllVariablesS(DD_DATA_TYPE_STRUCT* source);

} // extern "C"
