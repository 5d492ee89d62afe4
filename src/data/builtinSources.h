// The sources inside the library: the entry points each one puts into its record.
#pragma once

#include "Korel2D.h"

struct BuiltinSource {
    KRD_SOURCE_FN info;
    KRD_SOURCE_FN open;
    KRD_SOURCE_FN close;
    KRD_SOURCE_FN run;
    KRD_SOURCE_FN postRun;
    KRD_VARIABLE_FN get;
    KRD_VARIABLE_FN set;
    KRD_SOURCE_FN startView;
    KRD_START_VIEW_ALL startViewAll;
    KRD_SOURCE_FN newData;
    KRD_NEW_VARIABLE newVariable;
    KRD_CALLBACK_DATA callbackData;
    KRD_CALLBACK_VAR callbackVar;
};

// Entry points that exist and have nothing to do, shared by the sources that need them.
int emptySourceEntry(DD_DATA_TYPE_STRUCT* source);
int emptyVariableEntry(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source);
int emptyNewVariable(VARIABLE_STRUCT* variable);
int emptyCallbackData(int index, int value, void* argument, DD_DATA_TYPE_STRUCT* source);
int emptyCallbackVar(int index, int value, void* argument, VARIABLE_STRUCT* variable);

extern const BuiltinSource autoSource;     // type 1
extern const BuiltinSource constantSource; // type 2
extern const BuiltinSource internalSource; // type 5
