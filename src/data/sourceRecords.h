// Inside the data-source part: slot arrays that grow to what a source declares.
#pragma once

#include "Korel2D.h"

// Gives a slot array at least `slots` slots; old slots keep their texts, new ones hold an
// empty 64-byte text and 0. 0, or -1 when out of memory (the array is then unchanged).
int ensureParaSlots(PARA_STRUCT** para, int slots);
