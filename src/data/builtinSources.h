// The sources inside the library: the entry points each one puts into its record.
#pragma once

#include "Korel2D.h"

// Entry points that exist and have nothing to do: Open, Close, Run, StartView, NewData,
// NewVariable and both callbacks. A source puts these first and then its own; Info, Get, Set
// and PostRun stay as they were.
void quietEntries(DD_DATA_TYPE_STRUCT* source);
// A Get or Set that does nothing.
int emptyVariableEntry(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source);

// Each puts its entry points into a record; those it leaves out stay null.
void autoSourceEntries(DD_DATA_TYPE_STRUCT* source);     // type 1
void constantSourceEntries(DD_DATA_TYPE_STRUCT* source); // type 2
void internalSourceEntries(DD_DATA_TYPE_STRUCT* source); // type 5
