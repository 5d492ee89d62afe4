// The readers of binary view files and what they share. Thirteen format generations differ in a
// few fields each, so one reader walks every file and a layout per generation says what is
// stored where; the present generation is one row of that table like the others.
#pragma once

#include "KorelEdit.h"
#include "files/KStream.h"

// Deeper nesting than this is no view a person drew: the rest of such a file is dropped
// rather than risking the stack on a garbled group count.
constexpr int kMaxGroupDepth = 200;

// The source found at run time may have more parameters than the file stored, so every source
// and variable record gets at least this many parameter slots.
constexpr int32_t kMinimumSlots = 10;
inline int32_t slotsFor(int32_t count)
{
    return count > kMinimumSlots ? count : kMinimumSlots;
}

// Each enumeration runs from the oldest form to the present one, so that "from this form on"
// is a comparison.
enum class ConfigTail { none, fiveTexts, reserved };
enum class ElementHead { generated, fixedName, counted };
// The end of the bodies that later grew a reserved tail: none, four reserved Integers, or the
// present one whose first slot is a field of some kinds.
enum class BodyEnd { none, reserved, fields };
enum class GraphForm { g100, g107, g111, g201, g203, g204 };
enum class TextForm { fontCode, fontCodeCorners, fontCodeMatrix, present };
enum class ImageForm { none, noPixels, rgb, rgba, rgbaAfterReserved, present };
enum class SourceForm { old, fixedParameters, defaultAndFixedParameters, present };

// What one generation stores where it differs from the present one.
struct Layout {
    int first, last; // the revisions it covers
    ConfigTail config;
    ElementHead head;
    BodyEnd bodyEnd;
    GraphForm graph;
    TextForm text;
    bool circleRadii; // two radii and four unused Reals in place of the matrix
    ImageForm image;
    // Action records.
    int varBytes;
    bool secondVariable;   // var2 and its mapping and offset
    bool limit;
    bool colorGroup;       // a colour and a width in place of the threshold blocks
    bool filter;
    bool blinkClock;       // one clock per action, given to its blink entries
    bool mouse;
    bool mouseHiddenActive;
    bool translatePoly;
    bool visibleMode;
    int reservedIntegers;
    bool blinkBlock;
    SourceForm sources;
};

// The generation that reads `revision`, or null for a revision no program ever wrote.
const Layout* layoutOf(int revision);

// A generation's reader for a file of `revision`: the configuration block, then element records
// and data sections up to the end mark.
int loadGeneration(const Layout& layout, KStream* stream, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes,
                   VIEW_STRUCT* view, int revision);
int loadConfigGeneration(const Layout& layout, KStream* stream, VIEW_STRUCT* view);
// One element record of stored `kind`, appended to `list` when one is given; null when the file
// ends before it or memory is short.
ELEMENT_STRUCT* elementLoad(const Layout& layout, uint32_t kind, KStream* stream, ELEMENT_STRUCT** list);
// One action list into the list at `head`, in file order.
int actionLoad(const Layout& layout, KStream* stream, ACTION_STRUCT** head);
// The data-source section behind marker 20: sources, their parameters and variables.
int dataLoad(const Layout& layout, KStream* stream, DD_DATA_TYPE_STRUCT** head, int revision);
// The source section of revisions 1.00 to 1.10: old source codes and their settings, made into
// present-day sources.
int dataLoadOld(KStream* stream, DD_DATA_TYPE_STRUCT** head, int revision);

// The pixels behind an image record's fields, width x height as the record says, into the
// picture store: sets record->texture. RGBA for revision 2.04 on, RGB (made opaque) for
// revisions 1.07 to 2.03. A size the rest of the file can't hold ends the reading there.
// Return 0, or -1 when no picture was stored.
int loadTexture(KStream* stream, IMAGE_STRUCT* record);
int loadTextureOld(KStream* stream, IMAGE_STRUCT* record);
