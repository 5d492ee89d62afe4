// Compares two loaded views by what a view file stores: page, element tree with each kind's
// stored fields, actions with their thresholds, data sources with parameters and variables.
// Run-time state, handles and derived geometry are left out, and so are parameter capacities.
// Floats compare bit for bit, texts up to their terminators, pictures by their pixels.
#pragma once

#include "Korel2D.h"

#include <string>

namespace k2dtest {

// "" when the two views store the same; otherwise the first difference as a path, such as
// "element 3 'NEEDLE' action 1 slope: 0.5 / 0.25".
std::string firstStoredDifference(const VIEW_STRUCT* a, const VIEW_STRUCT* b);

} // namespace k2dtest
