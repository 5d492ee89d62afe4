#include "StoredView.h"

#include "KorelEdit.h"
#include "LoadedView.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <iomanip>
#include <map>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace k2dtest {

namespace {

// Texts up to their terminators, within `size` bytes.
std::string differText(const char* a, const char* b, size_t size)
{
    const std::string ta = a ? std::string(a, strnlen(a, size)) : "", tb = b ? std::string(b, strnlen(b, size)) : "";
    return ta == tb ? "" : ": '" + ta + "' / '" + tb + "'";
}

// "" for equal values, else the place within the field and both values. Numbers compare bit for
// bit, as a stored -0 or NaN must come back as it was.
template <class T> std::string differ(const T& a, const T& b)
{
    if constexpr (std::is_same_v<T, char[sizeof(T)]>) {
        return differText(a, b, sizeof a);
    } else if constexpr (std::is_array_v<T>) {
        for (size_t i = 0; i < std::extent_v<T>; ++i)
            if (std::string d = differ(a[i], b[i]); !d.empty())
                return "[" + std::to_string(i) + "]" + d;
        return "";
    } else {
        if (memcmp(&a, &b, sizeof a) == 0)
            return "";
        std::ostringstream text;
        text << std::setprecision(9) << ": " << a << " / " << b;
        return text.str();
    }
}

// One stored field of a record: its name (none for a list, which names its items) and how two
// records differ in it.
struct Field {
    const char* name;
    std::function<std::string(const void*, const void*)> differ;
};

// The stored fields of a record; called on two records, it names the first that differs.
struct Fields : std::vector<Field> {
    using std::vector<Field>::vector;
    std::string operator()(const void* a, const void* b) const
    {
        for (const Field& f : *this)
            if (std::string d = f.differ(a, b); !d.empty())
                return f.name ? " " + std::string(f.name) + d : d;
        return "";
    }
};

// Walks two lists side by side; `item` gives the difference of two records.
template <class R, class Item> std::string listDifference(const char* what, const R* a, const R* b, const Item& item)
{
    if (std::string d = differ(countList(a), countList(b)); !d.empty())
        return " " + std::string(what) + " count" + d;
    for (int i = 0; a; a = a->next, b = b->next, ++i)
        if (std::string d = item(a, b); !d.empty())
            return " " + std::string(what) + " " + std::to_string(i) + d;
    return "";
}

template <class R, class T> Field field(const char* name, T R::*member)
{
    return {name, [member](const void* a, const void* b) {
                return differ(static_cast<const R*>(a)->*member, static_cast<const R*>(b)->*member);
            }};
}

template <class R, class Item, class Compare> Field list(const char* name, Item* R::*head, Compare compare)
{
    return {nullptr, [=](const void* a, const void* b) {
                return listDifference(name, static_cast<const R*>(a)->*head, static_cast<const R*>(b)->*head, compare);
            }};
}

// A table of a record's fields, each member named once as F(member).
#define F(member) field(#member, &Rec::member)
#define TABLE(Record, ...) [] { using Rec = Record; return Fields{__VA_ARGS__}; }()

const Fields rectFields = TABLE(RECT_STRUCT, F(cornerX), F(cornerY), F(strokeOn), F(strokeWidth), F(strokeStyle),
                                F(strokeColor), F(fillOn), F(fillColor), F(antialias), F(fillStyle));

const Fields pointFields = TABLE(COORD_STRUCT, F(id), F(x), F(y));
// A polyline doesn't store its fill pattern; a closed polygon does.
#define POLY_FIELDS F(closed), F(strokeOn), F(strokeWidth), F(strokeStyle), F(strokeColor), F(fillOn), F(fillColor), \
                    F(antialias), list("point", &Rec::coords, pointFields)
const Fields polylineFields = TABLE(POLY_STRUCT, POLY_FIELDS);
const Fields cpolyFields = TABLE(POLY_STRUCT, POLY_FIELDS, F(fillStyle));

const Fields circleFields = TABLE(CIRCLE_STRUCT, F(x), F(y), F(matrix), F(start), F(end), F(strokeOn), F(strokeWidth),
                                  F(strokeStyle), F(strokeColor), F(fillOn), F(fillColor), F(antialias), F(fillStyle));

const Fields textFields = TABLE(TEXT_STRUCT, F(x), F(y), F(strokeColor), F(align), F(matrix), F(fontFamily),
                                F(fontStyle), F(underline), F(fontSize), F(textSize), F(fillStyle), F(text));

const Fields lineFields = TABLE(LINE_STRUCT, F(x1), F(y1), F(x2), F(y2), F(strokeWidth), F(strokeStyle),
                                F(strokeColor), F(antialias));

// What an image stores of its picture: the picture's size and pixels, nothing without a picture.
std::string storedPicture(const void* record)
{
    const IMAGE_STRUCT& image = *static_cast<const IMAGE_STRUCT*>(record);
    const uint8_t* data = image.width > 0 && image.height > 0 ? txData(image.texture) : nullptr;
    const std::string size = std::to_string(image.width) + "x" + std::to_string(image.height);
    return data ? size + std::string(reinterpret_cast<const char*>(data), size_t(image.width) * image.height * 4) : "";
}

const Fields imageFields = TABLE(IMAGE_STRUCT, F(cornerX), F(cornerY), F(fillColor), F(fillStyle),
                                 Field{"picture", [](const void* a, const void* b) {
                                           return storedPicture(a) == storedPicture(b) ? "" : ": size or pixels";
                                       }});

const Fields buttonFields = TABLE(BUTTON_STRUCT, F(cornerX), F(cornerY), F(color0), F(color1), F(color2),
                                  F(strokeWidth), F(state));

const Fields sliderFields = TABLE(SLIDER_STRUCT, F(x), F(y), F(width), F(height), F(faceColor), F(darkColor),
                                  F(lightColor), F(bevelWidth), F(knobHalfSize), F(reserved1), F(reserved2));

const Fields scissorFields = TABLE(SCISSOR_STRUCT, F(cornerX), F(cornerY));

const Fields graphFields = TABLE(
    GRAPH_STRUCT, F(type), F(x), F(y), F(width), F(height), F(ymin), F(ymax), F(xmin), F(xmax), F(rate), F(autoscale),
    F(minspready), F(autoscalex), F(minspreadx), F(samples), F(bars), F(outlineColor), F(backgroundColor),
    F(outlineWidth), F(gridx), F(gridy), F(gridxAuto), F(gridyAuto), F(gridxSpace), F(gridySpace), F(gridxRef),
    F(gridyRef), F(gridStyle), F(gridColor), F(labelx), F(labely), F(labelyr), F(tickx), F(ticky), F(tickyr),
    F(tickxAuto), F(tickyAuto), F(tickxSpace), F(tickySpace), F(tickxRef), F(tickyRef), F(tickxSub), F(tickySub),
    F(tickWidth), F(fontFamily), F(fontStyle), F(fontSize), F(labelFixx), F(labelFixy), F(labelXmin), F(labelXmax),
    F(labelYmin), F(labelYmax));

const Fields thresholdFields = TABLE(TH_STRUCT, F(lower), F(upper), F(value), F(color));
// A threshold block: its range and its entries.
#define BLOCK(kind) F(kind##Min), F(kind##Max), list(#kind " threshold", &Rec::kind##Thresholds, thresholdFields)

const Fields actionFields = TABLE(
    ACTION_STRUCT, F(id), F(type), F(var), F(var2), F(a0), F(a1), F(b0), F(b1), F(limit), F(var2A0), F(var2A1),
    F(var2B0), F(var2B1), F(offset), F(slope), F(offset2), F(slope2), F(cg), F(format), F(filter), F(filterTime),
    F(mouseButton), F(mouseAction), F(mouseMode), F(mouseClamp), F(mouseInc), F(mouseMin), F(mouseMax),
    F(mouseHiddenActive), F(translatePoly), F(visibleMode), F(visibleValue), BLOCK(color), BLOCK(width),
    BLOCK(style), BLOCK(visible), BLOCK(blink));

// The stored body of each kind that has one; a group's body is its children.
const std::map<uint32_t, const Fields*> bodies = {
    {KR_GRAPH, &graphFields},   {KR_RECT, &rectFields},   {KR_POLYLINE, &polylineFields}, {KR_CIRCLE, &circleFields},
    {KR_TEXT, &textFields},     {KR_LINE, &lineFields},   {KR_ARC, &circleFields},        {KR_IMAGE, &imageFields},
    {KR_BUTTON, &buttonFields}, {KR_SLIDER, &sliderFields}, {KR_CPOLY, &cpolyFields},     {KR_SCISSOR, &scissorFields},
};

const Fields elementHeadFields = TABLE(ELEMENT_STRUCT, field("kind", &Rec::type), F(name), F(id));

std::string elementDifference(const ELEMENT_STRUCT* a, const ELEMENT_STRUCT* b)
{
    std::string d = elementHeadFields(a, b);
    if (const auto kind = bodies.find(a->type); d.empty() && kind != bodies.end())
        d = (*kind->second)(a->data, b->data);
    if (d.empty())
        d = listDifference("child", a->child, b->child, elementDifference);
    if (d.empty())
        d = listDifference("action", a->actions, b->actions, actionFields);
    return d.empty() ? "" : " '" + std::string(a->name, strnlen(a->name, sizeof a->name)) + "'" + d;
}

// Parameter slots: their values and texts, whatever the capacity of the texts' buffers.
std::string parametersDifference(const PARA_STRUCT* a, const PARA_STRUCT* b, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const size_t size = std::min(a[i].size, b[i].size);
        const std::string d = differ(a[i].ival, b[i].ival) + differText(a[i].sval, b[i].sval, size);
        if (!d.empty())
            return " parameter " + std::to_string(i) + d;
    }
    return "";
}

const Fields sourceFields = TABLE(DD_DATA_TYPE_STRUCT, F(id), F(nrData), F(nrVar));
const Fields variableFields = TABLE(VARIABLE_STRUCT, F(type), F(name), F(defaultValue));

std::string sourceDifference(const DD_DATA_TYPE_STRUCT* a, const DD_DATA_TYPE_STRUCT* b)
{
    std::string d = sourceFields(a, b);
    if (d.empty())
        d = parametersDifference(a->para, b->para, a->nrData);
    // Slots a variable lacks are stored empty and come back as such.
    const auto variable = [a](const VARIABLE_STRUCT* p, const VARIABLE_STRUCT* q) {
        const std::string v = variableFields(p, q);
        return v.empty() ? parametersDifference(p->para, q->para, std::min({a->nrVar, p->nrPara, q->nrPara})) : v;
    };
    return d.empty() ? listDifference("variable", a->variables, b->variables, variable) : d;
}

const Fields viewFields = TABLE(VIEW_STRUCT, F(x), F(y), F(width), F(height), F(pageColor),
                                list("element", &Rec::elements, elementDifference),
                                list("source", &Rec::dataTypes, sourceDifference));

} // namespace

std::string firstStoredDifference(const VIEW_STRUCT* a, const VIEW_STRUCT* b)
{
    if (!a || !b)
        return a == b ? "" : "view: one of the two is missing";
    const std::string d = viewFields(a, b);
    return d.empty() ? "" : d.substr(1);
}

} // namespace k2dtest
