// Action lists, which close every element record: the reader of every generation, the writer of
// the present one.
#include "KorelEdit.h"
#include "base/truncate.h"
#include "core/linkedList.h"
#include "files/Reader.h"
#include "files/Writer.h"
#include "files/viewFileReaders.h"

namespace {

// Lower, upper, value and three colour components.
constexpr size_t kThresholdBytes = 6 * 4;

// The smallest record a layout stores: its fixed fields, texts and empty threshold blocks.
size_t actionBytes(const Layout& L)
{
    size_t integers = 2 + 4 + 2 + 1 + size_t(L.reservedIntegers); // id, type, mapping, offset, slope, cg
    integers += L.secondVariable ? 6 : 0;
    integers += (L.limit ? 1 : 0) + (L.filter ? 2 : 0) + (L.blinkClock ? 1 : 0) + (L.mouse ? 7 : 0);
    integers += (L.mouseHiddenActive ? 1 : 0) + (L.visibleMode ? 2 : 0) + (L.colorGroup ? 5 : 0);
    const int blocks = (L.colorGroup ? 0 : 4) + (L.blinkBlock ? 1 : 0);
    const size_t texts = size_t(L.varBytes) + (L.secondVariable ? 64 : 0) + 64 + (L.translatePoly ? 64 : 0);
    return integers * 4 + texts + size_t(blocks) * 12;
}

TH_STRUCT* appendThreshold(TH_STRUCT** head, float lower, float upper, int32_t value, const float color[3])
{
    TH_STRUCT* th = createTh();
    if (!th)
        return nullptr;
    th->lower = lower;
    th->upper = upper;
    th->value = value;
    std::copy(color, color + 3, th->color);
    appendNode(head, th);
    return th;
}

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

// Revision 1.00 stored one colour and one width for an action instead of threshold blocks:
// they become one entry, over the whole range, in each block that later files store.
void readColorGroup(Reader& in, ACTION_STRUCT* a)
{
    float color[3];
    in.reals(color, 3);
    in.real(); // unused
    const int32_t value = truncToInt(in.real()); // the file may say anything, NaN included
    const float upper = 120.0f;
    TH_STRUCT** blocks[] = {&a->colorThresholds, &a->widthThresholds, &a->styleThresholds, &a->visibleThresholds};
    for (TH_STRUCT** block : blocks)
        if (!appendThreshold(block, 0, upper, value, color))
            in.stream->abandon();
    // Those graphs were fed the value as it came.
    if (a->type == KR_ACTION_GRAPH) {
        a->a0 = a->b0 = 0;
        a->a1 = a->b1 = 1.0f;
        a->offset = 0;
    }
}

// Fields in file order, which is not the order of the record; each layout stores a part of them.
void readAction(Reader& in, const Layout& L, ACTION_STRUCT* a)
{
    a->id = in.integer();
    a->type = in.integer();
    KGetFString(a->var, sizeof a->var, in.stream, L.varBytes);
    if (L.secondVariable)
        in.fixed(a->var2);
    a->a0 = in.real();
    a->a1 = in.real();
    a->b0 = in.real();
    a->b1 = in.real();
    a->limit = L.limit ? in.integer() : 0;
    if (L.secondVariable) {
        a->var2A0 = in.real();
        a->var2A1 = in.real();
        a->var2B0 = in.real();
        a->var2B1 = in.real();
    }
    a->offset = in.real();
    a->slope = in.real();
    if (L.secondVariable) {
        a->offset2 = in.real();
        a->slope2 = in.real();
    }
    a->cg = in.integer();
    if (L.colorGroup)
        readColorGroup(in, a);
    in.fixed(a->format);
    if (L.filter) {
        a->filter = in.integer();
        a->filterTime = in.real();
    }
    const int32_t blinkClock = L.blinkClock ? in.integer() : 0;
    if (L.mouse) {
        a->mouseButton = in.integer();
        a->mouseAction = in.integer();
        a->mouseMode = in.integer();
        a->mouseClamp = in.integer();
        a->mouseInc = in.real();
        a->mouseMin = in.real();
        a->mouseMax = in.real();
    }
    if (L.mouseHiddenActive)
        a->mouseHiddenActive = in.integer();
    if (L.translatePoly)
        in.fixed(a->translatePoly);
    a->visibleMode = L.visibleMode ? in.integer() : 0;
    a->visibleValue = L.visibleMode ? in.integer() : 0;
    in.skipIntegers(L.reservedIntegers);
    if (!L.colorGroup) {
        readThresholdBlock(in, &a->colorMin, &a->colorMax, &a->colorThresholds);
        readThresholdBlock(in, &a->widthMin, &a->widthMax, &a->widthThresholds);
        readThresholdBlock(in, &a->styleMin, &a->styleMax, &a->styleThresholds);
        readThresholdBlock(in, &a->visibleMin, &a->visibleMax, &a->visibleThresholds);
    }
    if (L.blinkBlock)
        readThresholdBlock(in, &a->blinkMin, &a->blinkMax, &a->blinkThresholds);
    // Before each entry had its own clock, an entry that blinked at all took the action's.
    if (L.blinkClock)
        for (TH_STRUCT* th = a->blinkThresholds; th; th = th->next)
            if (th->value)
                th->value = blinkClock;
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

int actionLoad(const Layout& layout, KStream* stream, ACTION_STRUCT** head)
{
    Reader in{stream};
    int32_t count = in.integer();
    TailAppender<ACTION_STRUCT> actions(head);
    const size_t leastBytes = actionBytes(layout);
    for (int32_t i = 0; i < count && in.roomFor(leastBytes); ++i) {
        ACTION_STRUCT* action = createAction();
        if (!action) {
            stream->abandon();
            break;
        }
        readAction(in, layout, action);
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
