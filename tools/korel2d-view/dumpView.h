// Text listing of a loaded view, for looking into a view file without drawing it.
#pragma once

#include "Korel2D.h"

#include <cstdio>

// Writes the page, the element tree (one line per element, indented by depth, each followed by
// its actions and their thresholds) and the data sources to `out`.
void dumpView(const VIEW_STRUCT* view, FILE* out);
