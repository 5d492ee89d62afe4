// The table of element kinds: what elementCreate makes for each kind code, and the
// operations a kind puts into its elements.
#pragma once

#include "KorelEdit.h"

struct KindInfo {
    const char* prefix;                 // start of generated names
    void* (*createData)();              // per-kind record with defaults, null on exhausted memory
    void (*freeData)(void* data);       // releases what the record owns (fonts, points); may be null
    KR_SET_PICK_STICKY setPickSticky;
    KR_EDIT edit;
    KR_PICK pick;
};

// Null for codes without a kind (9, above 14). Code 10 must be folded to 4 first.
const KindInfo* kindInfo(uint32_t type);

void polyFreeData(void* data);
void textFreeData(void* data);
void graphFreeData(void* data);
void imageFreeData(void* data);

// Time traces of more samples than twice their frame's pixel columns reach GL reduced to each
// column's first, lowest, highest and last sample (on from the start). Off, every sample goes
// to GL: the tests and the benchmark compare both. Process-wide, and no part of the interface.
extern "C" KOREL2D_API void graphTraceReduction(int on);

// Tessellator callbacks for callers with a GLU tessellator of their own: begin, end and vertex
// draw, combine hands back a new vertex of three doubles that the caller frees with free().
extern "C" {
KOREL2D_API void errorCB(unsigned int code);
KOREL2D_API void beginCB(unsigned int mode);
KOREL2D_API void endCB(void);
KOREL2D_API void vertexCB(void* vertex);
KOREL2D_API void combineCB(double coords[3], void* data[4], float weights[4], void** out);
}
