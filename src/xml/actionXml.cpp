// Actions in XML view files. A binary record holds every field of an action; here an action
// holds only what its type uses: the type told in words, then per type its further attributes,
// threshold blocks and variables. One table of types serves the writer and the reader alike.
#include "xml/viewXml.h"

#include "base/truncate.h"
#include "core/linkedList.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

// visibleMode of a visibility action: by its thresholds, or by comparing with visibleValue.
// Other values make it do neither.
constexpr int32_t kVisibleByThresholds = 0;
constexpr int32_t kVisibleByValue = 1;

// A record's fixed text up to its terminator, or whole if it has none.
template <size_t N> std::string fixedText(const char (&field)[N])
{
    return std::string(field, strnlen(field, N));
}

template <size_t N> void cutInto(char (&field)[N], const std::string& text)
{
    std::snprintf(field, N, "%s", text.c_str());
}

// ------------------------------------------------------------------ closed word lists

struct Word {
    int code;
    const char* word;
};

const Word kMouseButtons[] = {{KR_MOUSE_LEFT, "left"}, {KR_MOUSE_CENTRE, "center"}, {KR_MOUSE_RIGHT, "right"}};
const Word kMouseActions[] = {{KR_MOUSE_ACTION_PRESS, "press"},        {KR_MOUSE_ACTION_RELEASE, "release"},
                              {KR_MOUSE_ACTION_MOVEX, "movex"},        {KR_MOUSE_ACTION_MOVEY, "movey"},
                              {KR_MOUSE_ACTION_MOVEX_ABS, "movexabs"}, {KR_MOUSE_ACTION_MOVEY_ABS, "moveyabs"},
                              {KR_MOUSE_ACTION_ROTATE, "rotate"},      {KR_MOUSE_ACTION_MOVE, "move"}};
const Word kMouseModes[] = {{KR_MOUSE_MODE_SET, "set"}, {KR_MOUSE_MODE_INC, "inc"}, {KR_MOUSE_MODE_DEC, "dec"}};
const Word kFilters[] = {{KR_FILTER_NONE, "none"}, {KR_FILTER_TIME, "time"}, {KR_FILTER_LAG, "pt1"}};

// A code outside the list writes no attribute.
template <size_t N> void saveWord(XmlElement& e, const char* attribute, const Word (&words)[N], int code)
{
    for (const Word& w : words)
        if (w.code == code)
            e.setAttributeString(attribute, w.word);
}

// A word outside the list, or none, leaves the field as it is.
template <size_t N> void loadWord(const XmlElement& e, const char* attribute, const Word (&words)[N], int32_t* field)
{
    const std::string text = e.getAttributeString(attribute);
    for (const Word& w : words)
        if (text == w.word)
            *field = w.code;
}

// ------------------------------------------------------------------ threshold blocks

// One block of thresholds: its word, its range, its list, and how an entry's value is stored.
struct Block {
    const char* word;
    float ACTION_STRUCT::*min;
    float ACTION_STRUCT::*max;
    TH_STRUCT* ACTION_STRUCT::*entries;
    void (*saveValue)(XmlElement& entry, const TH_STRUCT& th);
    void (*loadValue)(const XmlElement& entry, TH_STRUCT* th);
};

// Indexed by KR_THRESHOLDS_...
const Block kBlocks[KR_THRESHOLD_BLOCKS] = {
    {"color", &ACTION_STRUCT::colorMin, &ACTION_STRUCT::colorMax, &ACTION_STRUCT::colorThresholds,
     [](XmlElement& entry, const TH_STRUCT& th) {
         entry.setAttributeColor("value", Color(th.color[0], th.color[1], th.color[2], 1.0f));
     },
     [](const XmlElement& entry, TH_STRUCT* th) {
         const Color color = entry.getAttributeColor("value"); // its alpha has no field
         for (int i = 0; i < 3; ++i)
             th->color[i] = color[i];
     }},
    {"linewidth", &ACTION_STRUCT::widthMin, &ACTION_STRUCT::widthMax, &ACTION_STRUCT::widthThresholds,
     [](XmlElement& entry, const TH_STRUCT& th) { entry.setAttributeInt("value", th.value); },
     [](const XmlElement& entry, TH_STRUCT* th) { th->value = entry.getAttributeInt("value"); }},
    // The number of a "stroke" of this file, which the definition pass put into styleId.
    {"linestyle", &ACTION_STRUCT::styleMin, &ACTION_STRUCT::styleMax, &ACTION_STRUCT::styleThresholds,
     [](XmlElement& entry, const TH_STRUCT& th) { entry.setAttributeInt("value", th.styleId); },
     [](const XmlElement& entry, TH_STRUCT* th) {
         th->styleId = entry.getAttributeInt("value");
         calcStroke(th->styleId, &th->stippleFactor, &th->stipplePattern, &th->value);
     }},
    {"visibility", &ACTION_STRUCT::visibleMin, &ACTION_STRUCT::visibleMax, &ACTION_STRUCT::visibleThresholds,
     [](XmlElement& entry, const TH_STRUCT& th) { entry.setAttributeBool("value", th.value != 0); },
     [](const XmlElement& entry, TH_STRUCT* th) { th->value = entry.getAttributeBool("value"); }},
    // Files may hold a fraction here; the clock number is its integer part.
    {"blink", &ACTION_STRUCT::blinkMin, &ACTION_STRUCT::blinkMax, &ACTION_STRUCT::blinkThresholds,
     [](XmlElement& entry, const TH_STRUCT& th) { entry.setAttributeInt("value", th.value); },
     [](const XmlElement& entry, TH_STRUCT* th) { th->value = truncToInt(entry.getAttributeDouble("value")); }},
};

constexpr unsigned blockBit(int block)
{
    return 1u << block;
}

void saveBlock(XmlElement& action, const ACTION_STRUCT* a, const Block& block)
{
    XmlElement e("threshold");
    e.setAttributeString("type", block.word);
    e.setAttributeDouble("min", a->*block.min);
    e.setAttributeDouble("max", a->*block.max);
    for (const TH_STRUCT* th = a->*block.entries; th; th = th->next) {
        XmlElement entry("threshold-value");
        entry.setAttributeDouble("x", th->lower);
        block.saveValue(entry, *th);
        e.appendElement(entry);
    }
    action.appendElement(e);
}

// `upper` isn't stored: an entry ends where the next one of its block begins, the last at the
// block's max. A block of an unknown word is skipped with its entries.
void loadBlock(const XmlElement& e, ACTION_STRUCT* a)
{
    const std::string type = e.getAttributeString("type");
    const Block* block = std::find_if(std::begin(kBlocks), std::end(kBlocks),
                                      [&type](const Block& b) { return type == b.word; });
    if (block == std::end(kBlocks))
        return;
    const float max = float(e.getAttributeDouble("max"));
    a->*block->min = float(e.getAttributeDouble("min"));
    a->*block->max = max;
    TH_STRUCT** head = &(a->*block->entries);
    TailAppender<TH_STRUCT> entries(head);
    TH_STRUCT* previous = *head;
    while (previous && previous->next)
        previous = previous->next;
    for (XmlElement child = e.firstElement(); child.valid(); child = child.nextElement()) {
        if (child.name() != "threshold-value")
            continue;
        TH_STRUCT* th = createTh();
        if (!th)
            return;
        th->lower = float(child.getAttributeDouble("x"));
        th->upper = max;
        if (previous)
            previous->upper = th->lower;
        block->loadValue(child, th);
        entries.add(th);
        previous = th;
    }
}

// ------------------------------------------------------------------ variables

// The fields of the first variable or of the second; limit and filter are shared.
struct Variable {
    char (ACTION_STRUCT::*name)[64];
    float ACTION_STRUCT::*range[4];
};

const char* const kRangeAttributes[4] = {"a0", "a1", "b0", "b1"};
const Variable kFirstVariable = {&ACTION_STRUCT::var,
                                 {&ACTION_STRUCT::a0, &ACTION_STRUCT::a1, &ACTION_STRUCT::b0, &ACTION_STRUCT::b1}};
const Variable kSecondVariable = {
    &ACTION_STRUCT::var2,
    {&ACTION_STRUCT::var2A0, &ACTION_STRUCT::var2A1, &ACTION_STRUCT::var2B0, &ACTION_STRUCT::var2B1}};

void saveVariable(XmlElement& action, const ACTION_STRUCT* a, const Variable& v)
{
    XmlElement e("action-para");
    e.setAttributeString("id", fixedText(a->*v.name));
    for (int i = 0; i < 4; ++i)
        e.setAttributeDouble(kRangeAttributes[i], a->*v.range[i]);
    e.setAttributeBool("limit", a->limit != 0);
    saveWord(e, "filter", kFilters, a->filter);
    e.setAttributeDouble("filter-time", a->filterTime);
    action.appendElement(e);
}

void loadVariable(const XmlElement& e, ACTION_STRUCT* a, const Variable& v)
{
    cutInto(a->*v.name, e.getAttributeString("id"));
    for (int i = 0; i < 4; ++i)
        a->*v.range[i] = float(e.getAttributeDouble(kRangeAttributes[i]));
    a->limit = e.getAttributeBool("limit");
    loadWord(e, "filter", kFilters, &a->filter);
    a->filterTime = float(e.getAttributeDouble("filter-time"));
}

// ------------------------------------------------------------------ the types

// An attribute and the word it must hold to select a type.
struct Selector {
    const char* attribute;
    const char* word;
};

// What a type writes beyond its words.
enum Further : unsigned {
    kFormat = 1u << 0,
    kTranslatePoly = 1u << 1,
    kCentre = 1u << 2,        // "cg"
    kUseThresholds = 1u << 3, // "usethr" true
    kVisibleChoice = 1u << 4, // "usethr" and the blocks, or "visible-value", by visibleMode
    kMouse = 1u << 5,
    kPointId = 1u << 6,
    kTwoVariables = 1u << 7,
};

struct Row {
    int code;
    const char* type; // null: the type has no words
    Selector select[2];
    unsigned further;
    unsigned blocks; // blockBit(KR_THRESHOLDS_...)
};

const Row kRows[] = {
    {KR_ACTION_TEXT, "text", {}, kFormat, 0},
    {KR_ACTION_MOVE_X, "translate", {{"translate-type", "normal"}, {"axis", "x"}}, 0, 0},
    {KR_ACTION_MOVE_Y, "translate", {{"translate-type", "normal"}, {"axis", "y"}}, 0, 0},
    {KR_ACTION_SCALE_X, "scale", {{"axis", "x"}}, 0, 0},
    {KR_ACTION_SCALE_Y, "scale", {{"axis", "y"}}, 0, 0},
    {KR_ACTION_ROTATE, "rotate", {}, kCentre, 0},
    {KR_ACTION_GRAPH, "graph", {}, kTwoVariables, blockBit(KR_THRESHOLDS_COLOR) | blockBit(KR_THRESHOLDS_WIDTH)},
    {KR_ACTION_MOVE_X_RELATIVE, "translate", {{"translate-type", "relative"}, {"axis", "x"}}, 0, 0},
    {KR_ACTION_MOVE_Y_RELATIVE, "translate", {{"translate-type", "relative"}, {"axis", "y"}}, 0, 0},
    {KR_ACTION_MOVE_X_ABSOLUTE, "translate", {{"translate-type", "absolute"}, {"axis", "x"}}, 0, 0},
    {KR_ACTION_MOVE_Y_ABSOLUTE, "translate", {{"translate-type", "absolute"}, {"axis", "y"}}, 0, 0},
    // Whatever "axis" says.
    {KR_ACTION_MOVE_ALONG_POLYLINE, "translate", {{"translate-type", "polyline"}}, kTranslatePoly, 0},
    {KR_ACTION_STROKE_COLOR, "stroke-color", {}, kUseThresholds, blockBit(KR_THRESHOLDS_COLOR)},
    {KR_ACTION_FILL_COLOR, "fill-color", {}, kUseThresholds, blockBit(KR_THRESHOLDS_COLOR)},
    {KR_ACTION_STROKE_WIDTH, "stroke-width", {}, kUseThresholds, blockBit(KR_THRESHOLDS_WIDTH)},
    {KR_ACTION_STROKE_STYLE, "stroke-style", {}, 0, blockBit(KR_THRESHOLDS_STYLE)},
    {KR_ACTION_SCALE_XY, "scale", {{"axis", "xy"}}, 0, 0},
    {KR_ACTION_VISIBLE, "visible", {}, kVisibleChoice, blockBit(KR_THRESHOLDS_VISIBLE)},
    {KR_ACTION_FILL_UP, "fill", {{"fill-direction", "up"}}, 0, 0},
    {KR_ACTION_FILL_DOWN, "fill", {{"fill-direction", "down"}}, 0, 0},
    {KR_ACTION_FILL_LEFT, "fill", {{"fill-direction", "left"}}, 0, 0},
    {KR_ACTION_FILL_RIGHT, "fill", {{"fill-direction", "right"}}, 0, 0},
    {KR_ACTION_INPUT, "mouse", {}, kMouse, 0},
    // Binary files only: written with its variable alone, read back as a text action.
    {KR_ACTION_BUTTON_STATE, nullptr, {}, 0, 0},
    {KR_ACTION_ARC_END, "arc", {}, kPointId, 0},
    {KR_ACTION_BLINK, "blink", {}, kUseThresholds, blockBit(KR_THRESHOLDS_BLINK)},
};

// A code of no row, from a damaged binary file, is written like the type of no words.
const Row kNoRow = {-1, nullptr, {}, 0, 0};

const Row& rowOf(int code)
{
    const Row* row = std::find_if(std::begin(kRows), std::end(kRows), [code](const Row& r) { return r.code == code; });
    return row != std::end(kRows) ? *row : kNoRow;
}

// Words that fit no row read as a text action.
int32_t codeOf(const XmlElement& e)
{
    const std::string type = e.getAttributeString("type");
    for (const Row& row : kRows) {
        if (!row.type || type != row.type)
            continue;
        bool selected = true;
        for (const Selector& s : row.select)
            selected = selected && (!s.attribute || e.getAttributeString(s.attribute) == s.word);
        if (selected)
            return row.code;
    }
    return KR_ACTION_TEXT;
}

void saveMouse(XmlElement& e, const ACTION_STRUCT* a)
{
    saveWord(e, "mouse-button", kMouseButtons, a->mouseButton);
    saveWord(e, "mouse-action", kMouseActions, a->mouseAction);
    saveWord(e, "mouse-mode", kMouseModes, a->mouseMode);
    e.setAttributeBool("mouse-loop", !a->mouseClamp);
    e.setAttributeDouble("mouse-inc", a->mouseInc);
    e.setAttributeDouble("mouse-min", a->mouseMin);
    e.setAttributeDouble("mouse-max", a->mouseMax);
    e.setAttributeBool("mouse-hidden-active", a->mouseHiddenActive != 0);
}

// @return the threshold blocks to write.
unsigned saveFurther(XmlElement& e, const ACTION_STRUCT* a, const Row& row)
{
    unsigned blocks = row.blocks;
    if (row.further & kFormat)
        e.setAttributeString("format", fixedText(a->format));
    if (row.further & kTranslatePoly)
        e.setAttributeString("translate-poly", fixedText(a->translatePoly));
    if (row.further & kCentre)
        e.setAttributePosition("cg", a->cg);
    if (row.further & kUseThresholds)
        e.setAttributeBool("usethr", true);
    if (row.further & kVisibleChoice) {
        if (a->visibleMode == kVisibleByThresholds) {
            e.setAttributeBool("usethr", true);
        } else {
            blocks = 0;
            if (a->visibleMode == kVisibleByValue) {
                e.setAttributeBool("usethr", false);
                e.setAttributeInt("visible-value", a->visibleValue);
            }
        }
    }
    if (row.further & kMouse)
        saveMouse(e, a);
    if (row.further & kPointId)
        e.setAttributeString("point-id", "begin"); // readers ignore it
    return blocks;
}

void saveAction(XmlElement& parent, const ACTION_STRUCT* a)
{
    XmlElement e("action");
    e.setAttributeString("name", "ActionName"); // readers ignore it
    const Row& row = rowOf(a->type);
    if (row.type) {
        e.setAttributeString("type", row.type);
        for (const Selector& s : row.select)
            if (s.attribute)
                e.setAttributeString(s.attribute, s.word);
    }
    const unsigned blocks = saveFurther(e, a, row);
    for (int block = 0; block < KR_THRESHOLD_BLOCKS; ++block)
        if (blocks & blockBit(block))
            saveBlock(e, a, kBlocks[block]);
    saveVariable(e, a, kFirstVariable);
    if (row.further & kTwoVariables)
        saveVariable(e, a, kSecondVariable);
    parent.appendElement(e);
}

// Every attribute is read whatever the type; a missing one gives its type's default. The
// negated fields (usethr, mouse-loop) thus default to 1.
void loadAction(const XmlElement& e, ACTION_STRUCT* a)
{
    a->type = codeOf(e);
    cutInto(a->format, e.getAttributeString("format"));
    cutInto(a->translatePoly, e.getAttributeString("translate-poly"));
    a->cg = e.getAttributePosition("cg");
    a->visibleMode = !e.getAttributeBool("usethr");
    a->visibleValue = e.getAttributeInt("visible-value");
    loadWord(e, "mouse-button", kMouseButtons, &a->mouseButton);
    loadWord(e, "mouse-action", kMouseActions, &a->mouseAction);
    loadWord(e, "mouse-mode", kMouseModes, &a->mouseMode);
    a->mouseClamp = !e.getAttributeBool("mouse-loop");
    a->mouseInc = float(e.getAttributeDouble("mouse-inc"));
    a->mouseMin = float(e.getAttributeDouble("mouse-min"));
    a->mouseMax = float(e.getAttributeDouble("mouse-max"));
    a->mouseHiddenActive = e.getAttributeBool("mouse-hidden-active");
    bool first = true; // the first fills var, every further one var2
    for (XmlElement child = e.firstElement(); child.valid(); child = child.nextElement()) {
        const std::string name = child.name();
        if (name == "action-para") {
            loadVariable(child, a, first ? kFirstVariable : kSecondVariable);
            first = false;
        } else if (name == "threshold")
            loadBlock(child, a);
    }
}

} // namespace

void actionSaveXml(const ACTION_STRUCT* action, XmlElement& parent)
{
    if (!parent.valid())
        return;
    for (; action; action = action->next)
        saveAction(parent, action);
}

int actionLoadXml(const XmlElement& node, ACTION_STRUCT** list)
{
    TailAppender<ACTION_STRUCT> actions(list);
    int32_t place = 0;
    for (XmlElement child = node.firstElement(); child.valid(); child = child.nextElement()) {
        if (child.name() != "action")
            continue;
        ACTION_STRUCT* action = createAction();
        if (!action)
            break;
        action->id = place++;
        loadAction(child, action);
        actions.add(action);
    }
    return 0;
}
