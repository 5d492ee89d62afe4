#include "StoredView.h"

#include "KorelEdit.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace k2dtest {

namespace {

// Each differ gives "" for equal values, else the place within the field and both values.
std::string shown(float v)
{
    char text[32];
    snprintf(text, sizeof text, "%.9g", double(v));
    return text;
}

std::string differ(int32_t a, int32_t b)
{
    return a == b ? "" : ": " + std::to_string(a) + " / " + std::to_string(b);
}

std::string differ(uint32_t a, uint32_t b)
{
    return a == b ? "" : ": " + std::to_string(a) + " / " + std::to_string(b);
}

// Bit for bit: a stored -0 or NaN must come back as it was.
std::string differ(float a, float b)
{
    return memcmp(&a, &b, sizeof a) == 0 ? "" : ": " + shown(a) + " / " + shown(b);
}

template <size_t N> std::string differ(const float (&a)[N], const float (&b)[N])
{
    for (size_t i = 0; i < N; ++i)
        if (std::string d = differ(a[i], b[i]); !d.empty())
            return "[" + std::to_string(i) + "]" + d;
    return "";
}

std::string differText(const char* a, const char* b, size_t size)
{
    const std::string ta = a ? std::string(a, strnlen(a, size)) : "", tb = b ? std::string(b, strnlen(b, size)) : "";
    return ta == tb ? "" : ": '" + ta + "' / '" + tb + "'";
}

template <size_t N> std::string differ(const char (&a)[N], const char (&b)[N])
{
    return differText(a, b, N);
}

// One stored field of a record: its name and how two records differ in it.
template <class R> struct Field {
    const char* name;
    std::function<std::string(const R&, const R&)> differ;
};

template <class R, class T> Field<R> field(const char* name, T R::*member)
{
    return {name, [member](const R& a, const R& b) { return differ(a.*member, b.*member); }};
}

template <class R> std::string firstDifference(const std::vector<Field<R>>& fields, const R& a, const R& b)
{
    for (const Field<R>& f : fields)
        if (std::string d = f.differ(a, b); !d.empty())
            return " " + std::string(f.name) + d;
    return "";
}

template <class R> std::string countDifference(const char* what, const R* a, const R* b)
{
    int na = 0, nb = 0;
    for (; a; a = a->next)
        ++na;
    for (; b; b = b->next)
        ++nb;
    return differ(na, nb).empty() ? "" : " " + std::string(what) + " count" + differ(na, nb);
}

// Walks two lists side by side; `item` gives the difference of two records.
template <class R, class Item> std::string listDifference(const char* what, const R* a, const R* b, Item item)
{
    if (std::string d = countDifference(what, a, b); !d.empty())
        return d;
    for (int i = 0; a; a = a->next, b = b->next, ++i)
        if (std::string d = item(a, b); !d.empty())
            return " " + std::string(what) + " " + std::to_string(i) + d;
    return "";
}

using R = RECT_STRUCT;
const std::vector<Field<R>> rectFields = {
    field("cornerX", &R::cornerX),   field("cornerY", &R::cornerY),     field("strokeOn", &R::strokeOn),
    field("strokeWidth", &R::strokeWidth), field("strokeStyle", &R::strokeStyle), field("strokeColor", &R::strokeColor),
    field("fillOn", &R::fillOn),     field("fillColor", &R::fillColor), field("antialias", &R::antialias),
    field("fillStyle", &R::fillStyle),
};

using P = POLY_STRUCT;
// A polyline doesn't store its fill pattern; a closed polygon does.
const std::vector<Field<P>> polylineFields = {
    field("closed", &P::closed),           field("strokeOn", &P::strokeOn),   field("strokeWidth", &P::strokeWidth),
    field("strokeStyle", &P::strokeStyle), field("strokeColor", &P::strokeColor), field("fillOn", &P::fillOn),
    field("fillColor", &P::fillColor),     field("antialias", &P::antialias),
    {"points", [](const P& a, const P& b) {
         return listDifference("point", a.coords, b.coords, [](const COORD_STRUCT* p, const COORD_STRUCT* q) {
             return firstDifference<COORD_STRUCT>(
                 {field("id", &COORD_STRUCT::id), field("x", &COORD_STRUCT::x), field("y", &COORD_STRUCT::y)}, *p, *q);
         });
     }},
};
const std::vector<Field<P>> cpolyFields = [] {
    std::vector<Field<P>> fields = polylineFields;
    fields.push_back(field("fillStyle", &P::fillStyle));
    return fields;
}();

using C = CIRCLE_STRUCT;
const std::vector<Field<C>> circleFields = {
    field("x", &C::x),           field("y", &C::y),           field("matrix", &C::matrix),
    field("start", &C::start),   field("end", &C::end),       field("strokeOn", &C::strokeOn),
    field("strokeWidth", &C::strokeWidth), field("strokeStyle", &C::strokeStyle), field("strokeColor", &C::strokeColor),
    field("fillOn", &C::fillOn), field("fillColor", &C::fillColor), field("antialias", &C::antialias),
    field("fillStyle", &C::fillStyle),
};

using T = TEXT_STRUCT;
const std::vector<Field<T>> textFields = {
    field("x", &T::x),                   field("y", &T::y),               field("strokeColor", &T::strokeColor),
    field("align", &T::align),           field("matrix", &T::matrix),     field("fontFamily", &T::fontFamily),
    field("fontStyle", &T::fontStyle),   field("underline", &T::underline), field("fontSize", &T::fontSize),
    field("textSize", &T::textSize),     field("fillStyle", &T::fillStyle), field("text", &T::text),
};

using L = LINE_STRUCT;
const std::vector<Field<L>> lineFields = {
    field("x1", &L::x1), field("y1", &L::y1), field("x2", &L::x2), field("y2", &L::y2),
    field("strokeWidth", &L::strokeWidth), field("strokeStyle", &L::strokeStyle),
    field("strokeColor", &L::strokeColor), field("antialias", &L::antialias),
};

using I = IMAGE_STRUCT;
// What an image stores of its picture: the picture's size and pixels, none without a picture.
struct StoredPicture {
    int32_t width = 0, height = 0;
    std::vector<uint8_t> pixels;
};
StoredPicture storedPicture(const I& image)
{
    StoredPicture p;
    const uint8_t* data = image.width > 0 && image.height > 0 ? txData(image.texture) : nullptr;
    if (data) {
        p.width = image.width, p.height = image.height;
        p.pixels.assign(data, data + size_t(image.width) * size_t(image.height) * 4);
    }
    return p;
}
const std::vector<Field<I>> imageFields = {
    field("cornerX", &I::cornerX), field("cornerY", &I::cornerY), field("fillColor", &I::fillColor),
    field("fillStyle", &I::fillStyle),
    {"picture", [](const I& a, const I& b) {
         const StoredPicture pa = storedPicture(a), pb = storedPicture(b);
         if (std::string d = differ(pa.width, pb.width) + differ(pa.height, pb.height); !d.empty())
             return " size" + d;
         return pa.pixels == pb.pixels ? std::string() : std::string(" pixels differ");
     }},
};

using B = BUTTON_STRUCT;
const std::vector<Field<B>> buttonFields = {
    field("cornerX", &B::cornerX), field("cornerY", &B::cornerY), field("color0", &B::color0),
    field("color1", &B::color1),   field("color2", &B::color2),   field("strokeWidth", &B::strokeWidth),
    field("state", &B::state),
};

using S = SLIDER_STRUCT;
const std::vector<Field<S>> sliderFields = {
    field("x", &S::x), field("y", &S::y), field("width", &S::width), field("height", &S::height),
    field("faceColor", &S::faceColor), field("darkColor", &S::darkColor), field("lightColor", &S::lightColor),
    field("bevelWidth", &S::bevelWidth), field("knobHalfSize", &S::knobHalfSize),
    field("reserved1", &S::reserved1), field("reserved2", &S::reserved2),
};

const std::vector<Field<SCISSOR_STRUCT>> scissorFields = {
    field("cornerX", &SCISSOR_STRUCT::cornerX), field("cornerY", &SCISSOR_STRUCT::cornerY),
};

using G = GRAPH_STRUCT;
const std::vector<Field<G>> graphFields = {
    field("type", &G::type), field("x", &G::x), field("y", &G::y), field("width", &G::width),
    field("height", &G::height), field("ymin", &G::ymin), field("ymax", &G::ymax), field("xmin", &G::xmin),
    field("xmax", &G::xmax), field("rate", &G::rate), field("autoscale", &G::autoscale),
    field("minspready", &G::minspready), field("autoscalex", &G::autoscalex), field("minspreadx", &G::minspreadx),
    field("samples", &G::samples), field("bars", &G::bars), field("outlineColor", &G::outlineColor),
    field("backgroundColor", &G::backgroundColor), field("outlineWidth", &G::outlineWidth),
    field("gridx", &G::gridx), field("gridy", &G::gridy), field("gridxAuto", &G::gridxAuto),
    field("gridyAuto", &G::gridyAuto), field("gridxSpace", &G::gridxSpace), field("gridySpace", &G::gridySpace),
    field("gridxRef", &G::gridxRef), field("gridyRef", &G::gridyRef), field("gridStyle", &G::gridStyle),
    field("gridColor", &G::gridColor), field("labelx", &G::labelx), field("labely", &G::labely),
    field("labelyr", &G::labelyr), field("tickx", &G::tickx), field("ticky", &G::ticky), field("tickyr", &G::tickyr),
    field("tickxAuto", &G::tickxAuto), field("tickyAuto", &G::tickyAuto), field("tickxSpace", &G::tickxSpace),
    field("tickySpace", &G::tickySpace), field("tickxRef", &G::tickxRef), field("tickyRef", &G::tickyRef),
    field("tickxSub", &G::tickxSub), field("tickySub", &G::tickySub), field("tickWidth", &G::tickWidth),
    field("fontFamily", &G::fontFamily), field("fontStyle", &G::fontStyle), field("fontSize", &G::fontSize),
    field("labelFixx", &G::labelFixx), field("labelFixy", &G::labelFixy), field("labelXmin", &G::labelXmin),
    field("labelXmax", &G::labelXmax), field("labelYmin", &G::labelYmin), field("labelYmax", &G::labelYmax),
};

const std::vector<Field<TH_STRUCT>> thresholdFields = {
    field("lower", &TH_STRUCT::lower), field("upper", &TH_STRUCT::upper), field("value", &TH_STRUCT::value),
    field("color", &TH_STRUCT::color),
};

// A threshold block: its range and its entries.
template <float ACTION_STRUCT::*Min, float ACTION_STRUCT::*Max, TH_STRUCT* ACTION_STRUCT::*List>
Field<ACTION_STRUCT> block(const char* name)
{
    return {name, [](const ACTION_STRUCT& a, const ACTION_STRUCT& b) {
                if (std::string d = differ(a.*Min, b.*Min) + differ(a.*Max, b.*Max); !d.empty())
                    return " range" + d;
                return listDifference("threshold", a.*List, b.*List, [](const TH_STRUCT* p, const TH_STRUCT* q) {
                    return firstDifference(thresholdFields, *p, *q);
                });
            }};
}

using A = ACTION_STRUCT;
const std::vector<Field<A>> actionFields = {
    field("id", &A::id), field("type", &A::type), field("var", &A::var), field("var2", &A::var2),
    field("a0", &A::a0), field("a1", &A::a1), field("b0", &A::b0), field("b1", &A::b1), field("limit", &A::limit),
    field("var2A0", &A::var2A0), field("var2A1", &A::var2A1), field("var2B0", &A::var2B0),
    field("var2B1", &A::var2B1), field("offset", &A::offset), field("slope", &A::slope),
    field("offset2", &A::offset2), field("slope2", &A::slope2), field("cg", &A::cg), field("format", &A::format),
    field("filter", &A::filter), field("filterTime", &A::filterTime), field("mouseButton", &A::mouseButton),
    field("mouseAction", &A::mouseAction), field("mouseMode", &A::mouseMode), field("mouseClamp", &A::mouseClamp),
    field("mouseInc", &A::mouseInc), field("mouseMin", &A::mouseMin), field("mouseMax", &A::mouseMax),
    field("mouseHiddenActive", &A::mouseHiddenActive), field("translatePoly", &A::translatePoly),
    field("visibleMode", &A::visibleMode), field("visibleValue", &A::visibleValue),
    block<&A::colorMin, &A::colorMax, &A::colorThresholds>("color thresholds"),
    block<&A::widthMin, &A::widthMax, &A::widthThresholds>("width thresholds"),
    block<&A::styleMin, &A::styleMax, &A::styleThresholds>("style thresholds"),
    block<&A::visibleMin, &A::visibleMax, &A::visibleThresholds>("visibility thresholds"),
    block<&A::blinkMin, &A::blinkMax, &A::blinkThresholds>("blink thresholds"),
};

template <class Record> std::function<std::string(const void*, const void*)> body(const std::vector<Field<Record>>& f)
{
    return [&f](const void* a, const void* b) {
        return firstDifference(f, *static_cast<const Record*>(a), *static_cast<const Record*>(b));
    };
}

// The stored body of each kind that has one; a group's body is its children.
const struct {
    uint32_t kind;
    std::function<std::string(const void*, const void*)> differ;
} bodies[] = {
    {KR_GRAPH, body(graphFields)},     {KR_RECT, body(rectFields)},     {KR_POLYLINE, body(polylineFields)},
    {KR_CIRCLE, body(circleFields)},   {KR_TEXT, body(textFields)},     {KR_LINE, body(lineFields)},
    {KR_ARC, body(circleFields)},      {KR_IMAGE, body(imageFields)},   {KR_BUTTON, body(buttonFields)},
    {KR_SLIDER, body(sliderFields)},   {KR_CPOLY, body(cpolyFields)},   {KR_SCISSOR, body(scissorFields)},
};

std::string elementsDifference(const ELEMENT_STRUCT* a, const ELEMENT_STRUCT* b, const char* what);

std::string elementDifference(const ELEMENT_STRUCT& a, const ELEMENT_STRUCT& b)
{
    const std::string path = " '" + std::string(a.name, strnlen(a.name, sizeof a.name)) + "'";
    using E = ELEMENT_STRUCT;
    std::string d = firstDifference<E>({field("kind", &E::type), field("name", &E::name), field("id", &E::id)}, a, b);
    for (const auto& kind : bodies)
        if (d.empty() && kind.kind == a.type)
            d = kind.differ(a.data, b.data);
    if (d.empty())
        d = elementsDifference(a.child, b.child, "child");
    if (d.empty())
        d = listDifference("action", a.actions, b.actions,
                           [](const ACTION_STRUCT* p, const ACTION_STRUCT* q) {
                               return firstDifference(actionFields, *p, *q);
                           });
    return d.empty() ? "" : path + d;
}

std::string elementsDifference(const ELEMENT_STRUCT* a, const ELEMENT_STRUCT* b, const char* what)
{
    return listDifference(what, a, b, [](const ELEMENT_STRUCT* p, const ELEMENT_STRUCT* q) {
        return elementDifference(*p, *q);
    });
}

// A parameter slot: its value and its text, whatever the capacity of the text's buffer.
std::string parameterDifference(const PARA_STRUCT& a, const PARA_STRUCT& b)
{
    if (std::string d = differ(a.ival, b.ival); !d.empty())
        return " ival" + d;
    if (std::string d = differText(a.sval, b.sval, a.size < b.size ? a.size : b.size); !d.empty())
        return " text" + d;
    return "";
}

std::string parametersDifference(const PARA_STRUCT* a, const PARA_STRUCT* b, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        if (std::string d = parameterDifference(a[i], b[i]); !d.empty())
            return " parameter " + std::to_string(i) + d;
    return "";
}

std::string sourceDifference(const DD_DATA_TYPE_STRUCT& a, const DD_DATA_TYPE_STRUCT& b)
{
    std::string d = firstDifference<DD_DATA_TYPE_STRUCT>(
        {field("id", &DD_DATA_TYPE_STRUCT::id), field("nrData", &DD_DATA_TYPE_STRUCT::nrData),
         field("nrVar", &DD_DATA_TYPE_STRUCT::nrVar)}, a, b);
    if (d.empty())
        d = parametersDifference(a.para, b.para, a.nrData);
    if (d.empty())
        d = listDifference("variable", a.variables, b.variables,
                           [&a](const VARIABLE_STRUCT* p, const VARIABLE_STRUCT* q) {
                               std::string v = firstDifference<VARIABLE_STRUCT>(
                                   {field("type", &VARIABLE_STRUCT::type), field("name", &VARIABLE_STRUCT::name),
                                    field("defaultValue", &VARIABLE_STRUCT::defaultValue)}, *p, *q);
                               // Slots a variable lacks are stored empty and come back as such.
                               const int32_t n = std::min({a.nrVar, p->nrPara, q->nrPara});
                               return v.empty() ? parametersDifference(p->para, q->para, n) : v;
                           });
    return d;
}

} // namespace

std::string firstStoredDifference(const VIEW_STRUCT* a, const VIEW_STRUCT* b)
{
    if (!a || !b)
        return a == b ? "" : "view: one of the two is missing";
    std::string d = firstDifference<VIEW_STRUCT>(
        {field("x", &VIEW_STRUCT::x), field("y", &VIEW_STRUCT::y), field("width", &VIEW_STRUCT::width),
         field("height", &VIEW_STRUCT::height), field("pageColor", &VIEW_STRUCT::pageColor)}, *a, *b);
    if (d.empty())
        d = elementsDifference(a->elements, b->elements, "element");
    if (d.empty())
        d = listDifference("source", a->dataTypes, b->dataTypes,
                           [](const DD_DATA_TYPE_STRUCT* p, const DD_DATA_TYPE_STRUCT* q) {
                               return sourceDifference(*p, *q);
                           });
    return d.empty() ? "" : (d[0] == ' ' ? d.substr(1) : d);
}

} // namespace k2dtest
