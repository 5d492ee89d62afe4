// Action lists of revisions 303 and 304, which close every element record: reader and writer.
#include "KorelEdit.h"
#include "core/linkedList.h"
#include "files/Reader.h"
#include "files/Writer.h"
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

void writeThresholdBlock(Writer& out, float min, float max, const TH_STRUCT* head)
{
    out.real(min);
    out.real(max);
    out.integer(listLength(head));
    for (const TH_STRUCT* th = head; th; th = th->next) {
        out.real(th->lower);
        out.real(th->upper);
        out.integer(th->value);
        out.reals(th->color, 3);
    }
}

// The fields that readAction reads, in the same order; run-time state stays out.
void writeAction(Writer& out, const ACTION_STRUCT* a)
{
    out.integer(a->id);
    out.integer(a->type);
    out.fixed(a->var);
    out.fixed(a->var2);
    out.real(a->a0);
    out.real(a->a1);
    out.real(a->b0);
    out.real(a->b1);
    out.integer(a->limit);
    out.real(a->var2A0);
    out.real(a->var2A1);
    out.real(a->var2B0);
    out.real(a->var2B1);
    out.real(a->offset);
    out.real(a->slope);
    out.real(a->offset2);
    out.real(a->slope2);
    out.integer(a->cg);
    out.fixed(a->format);
    out.integer(a->filter);
    out.real(a->filterTime);
    out.integer(a->mouseButton);
    out.integer(a->mouseAction);
    out.integer(a->mouseMode);
    out.integer(a->mouseClamp);
    out.real(a->mouseInc);
    out.real(a->mouseMin);
    out.real(a->mouseMax);
    out.integer(a->mouseHiddenActive);
    out.fixed(a->translatePoly);
    out.integer(a->visibleMode);
    out.integer(a->visibleValue);
    out.zeros(8);
    writeThresholdBlock(out, a->colorMin, a->colorMax, a->colorThresholds);
    writeThresholdBlock(out, a->widthMin, a->widthMax, a->widthThresholds);
    writeThresholdBlock(out, a->styleMin, a->styleMax, a->styleThresholds);
    writeThresholdBlock(out, a->visibleMin, a->visibleMax, a->visibleThresholds);
    writeThresholdBlock(out, a->blinkMin, a->blinkMax, a->blinkThresholds);
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

int actionSave_303(const ACTION_STRUCT* head, FILE* stream)
{
    Writer out{stream};
    out.integer(listLength(head));
    for (const ACTION_STRUCT* action = head; action; action = action->next)
        writeAction(out, action);
    return 0;
}
