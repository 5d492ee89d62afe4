// The sources inside the library: the entry points each one puts into its record.
#pragma once

#include "Korel2D.h"

// Entry points that exist and have nothing to do: Open, Close, Run, StartView, NewData,
// NewVariable and both callbacks. A source puts these first and then its own; Info, Get, Set
// and PostRun stay as they were.
void quietEntries(DD_DATA_TYPE_STRUCT* source);
// A Get or Set that does nothing.
int emptyVariableEntry(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source);

// A source's parameter slots as the file left them: fewer than declared, or without text. A
// missing text reads as empty, a missing item as 0, and a missing slot takes no text.
const char* dataParaText(const DD_DATA_TYPE_STRUCT* source, int index);
int dataParaItem(const DD_DATA_TYPE_STRUCT* source, int index);
const char* variableParaText(const VARIABLE_STRUCT* variable, int index);
void setDataParaText(DD_DATA_TYPE_STRUCT* source, int index, const char* text);
void setVariableParaText(VARIABLE_STRUCT* variable, int index, const char* text);

// Each puts its entry points into a record; those it leaves out stay null.
void autoSourceEntries(DD_DATA_TYPE_STRUCT* source);     // type 1
void constantSourceEntries(DD_DATA_TYPE_STRUCT* source); // type 2
void internalSourceEntries(DD_DATA_TYPE_STRUCT* source); // type 5
void sharedMemorySourceEntries(DD_DATA_TYPE_STRUCT* source); // type 3
void udpSourceEntries(DD_DATA_TYPE_STRUCT* source);          // type 4
void calculatorSourceEntries(DD_DATA_TYPE_STRUCT* source);   // type 6
