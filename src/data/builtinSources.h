// The sources inside the library: the entry points each one puts into its record.
#pragma once

#include "Korel2D.h"

// Entry points that exist and have nothing to do, shared by the sources that need them.
int emptySourceEntry(DD_DATA_TYPE_STRUCT* source);
int emptyVariableEntry(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source);
int emptyNewVariable(VARIABLE_STRUCT* variable);
int emptyCallbackData(int index, int value, void* argument, DD_DATA_TYPE_STRUCT* source);
int emptyCallbackVar(int index, int value, void* argument, VARIABLE_STRUCT* variable);

// Each puts its entry points into a record; those it leaves out stay null.
void autoSourceEntries(DD_DATA_TYPE_STRUCT* source);     // type 1
void constantSourceEntries(DD_DATA_TYPE_STRUCT* source); // type 2
void internalSourceEntries(DD_DATA_TYPE_STRUCT* source); // type 5
