// The readers of binary view files, one set per format generation, and what they share.
#pragma once

#include "KorelEdit.h"
#include "files/KStream.h"

// Deeper nesting than this is no view a person drew: the rest of such a file is dropped
// rather than risking the stack on a garbled group count.
constexpr int kMaxGroupDepth = 200;

// Revision 303 and 304.
int loadFile_303(KStream* stream, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes, VIEW_STRUCT* view,
                 int revision);
int loadConfigFile_303(KStream* stream, VIEW_STRUCT* view);
ELEMENT_STRUCT* elementLoad_303(uint32_t kind, KStream* stream, ELEMENT_STRUCT** list);
// One action list into the list at `head`, in file order.
int actionLoad_303(KStream* stream, ACTION_STRUCT** head);
// The data-source section behind marker 20: sources, their parameters and variables.
int dataLoad_303(KStream* stream, DD_DATA_TYPE_STRUCT** head, int revision);

// The pixels behind an image record's fields, width x height as the record says, into the
// picture store: sets record->texture. RGBA for revision 3.03 on, RGB (made opaque) for
// revisions 1.07 to 2.03. A size the rest of the file can't hold ends the reading there.
// Return 0, or -1 when no picture was stored.
int loadTexture(KStream* stream, IMAGE_STRUCT* record);
int loadTextureOld(KStream* stream, IMAGE_STRUCT* record);
