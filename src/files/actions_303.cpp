// Action lists of revisions 303 and 304, which close every element record.
#include "KorelEdit.h"
#include "core/linkedList.h"
#include "files/Reader.h"
#include "files/viewFileReaders.h"

namespace {

// Lower, upper, value and three colour components.
constexpr size_t kThresholdBytes = 6 * 4;
// An action with five empty threshold blocks: 36 four-byte fields (eight of them reserved),
// four 64-byte strings, and per block its range and count.
constexpr size_t kActionBytes = 36 * 4 + 4 * 64 + 5 * 12;

void readThresholdBlock(Reader& in, float* min, float* max, TH_STRUCT** head)
{
    *min = in.real();
    *max = in.real();
    int32_t count = in.integer();
    TailAppender<TH_STRUCT> entries(head);
    for (int32_t i = 0; i < count && in.roomFor(kThresholdBytes); ++i) {
        TH_STRUCT* th = createTh();
        if (!th) {
            in.stream->abandon();
            return;
        }
        th->lower = in.real();
        th->upper = in.real();
        th->value = in.integer();
        in.reals(th->color, 3);
        entries.add(th);
    }
}

// Fields in file order, which is not the order of the record.
void readAction(Reader& in, ACTION_STRUCT* a)
{
    a->id = in.integer();
    a->type = in.integer();
    in.fixed(a->var);
    in.fixed(a->var2);
    a->a0 = in.real();
    a->a1 = in.real();
    a->b0 = in.real();
    a->b1 = in.real();
    a->limit = in.integer();
    a->var2A0 = in.real();
    a->var2A1 = in.real();
    a->var2B0 = in.real();
    a->var2B1 = in.real();
    a->offset = in.real();
    a->slope = in.real();
    a->offset2 = in.real();
    a->slope2 = in.real();
    a->cg = in.integer();
    in.fixed(a->format);
    a->filter = in.integer();
    a->filterTime = in.real();
    a->mouseButton = in.integer();
    a->mouseAction = in.integer();
    a->mouseMode = in.integer();
    a->mouseClamp = in.integer();
    a->mouseInc = in.real();
    a->mouseMin = in.real();
    a->mouseMax = in.real();
    a->mouseHiddenActive = in.integer();
    in.fixed(a->translatePoly);
    a->visibleMode = in.integer();
    a->visibleValue = in.integer();
    in.skipIntegers(8);
    readThresholdBlock(in, &a->colorMin, &a->colorMax, &a->colorThresholds);
    readThresholdBlock(in, &a->widthMin, &a->widthMax, &a->widthThresholds);
    readThresholdBlock(in, &a->styleMin, &a->styleMax, &a->styleThresholds);
    readThresholdBlock(in, &a->visibleMin, &a->visibleMax, &a->visibleThresholds);
    readThresholdBlock(in, &a->blinkMin, &a->blinkMax, &a->blinkThresholds);
}

} // namespace

int actionLoad_303(KStream* stream, ACTION_STRUCT** head)
{
    Reader in{stream};
    int32_t count = in.integer();
    TailAppender<ACTION_STRUCT> actions(head);
    for (int32_t i = 0; i < count && in.roomFor(kActionBytes); ++i) {
        ACTION_STRUCT* action = createAction();
        if (!action) {
            stream->abandon();
            break;
        }
        readAction(in, action);
        actions.add(action);
    }
    return 0;
}
