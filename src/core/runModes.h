// Inside the view core: what a stop may have left for later.
#pragma once

#include "Korel2D.h"

// Waits for a data thread that outlived its stop's time limit, then closes the sources it was
// using. Nothing to do after an ordinary stop.
void finishPendingStop(VIEW_STRUCT* view);
