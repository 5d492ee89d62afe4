// The values a running view's sources deliver, as text.
#pragma once

#include "Korel2D.h"

#include <cstdio>

// One line per source (name, type number, library, found) and one per variable with its value
// as krVarGetStr prints it. The view must be running.
void printVariables(VIEW_STRUCT* view, FILE* out);
