#include "dumpView.h"

#include "KorelEdit.h"

#include <cstring>
#include <string>

namespace {

std::string kindName(uint32_t type)
{
    switch (type) {
    case KR_GRAPH: return "graph";
    case KR_RECT: return "rect";
    case KR_POLYLINE: return "polyline";
    case KR_CIRCLE: return "circle";
    case KR_TEXT: return "text";
    case KR_LINE: return "line";
    case KR_ARC: return "arc";
    case KR_IMAGE: return "image";
    case KR_GROUP: return "group";
    case KR_BUTTON: return "button";
    case KR_SLIDER: return "slider";
    case KR_CPOLY: return "polygon";
    case KR_SCISSOR: return "scissor";
    default: return "kind " + std::to_string(type);
    }
}

std::string variableTypeName(int32_t type)
{
    static const char* const names[] = {"float", "double", "int8",  "uint8", "int16", "uint16",
                                        "int32", "uint32", "int64", "uint64", "text"};
    return type >= KR_VAR_FLOAT && type <= KR_VAR_TEXT ? names[type] : "type " + std::to_string(type);
}

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

// Texts come from the file: anything that would break the line or the quotes is escaped, and
// a field without a terminator ends at its capacity.
std::string quoted(const char* text, size_t capacity)
{
    std::string s = "\"";
    const size_t length = text ? strnlen(text, capacity) : 0;
    for (size_t i = 0; i < length; ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == '"' || c == '\\') {
            s += '\\';
            s += char(c);
        } else if (c < 0x20 || c == 0x7f) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", c);
            s += escape;
        } else {
            s += char(c);
        }
    }
    return s + '"';
}

std::string point(float x, float y)
{
    return number(x) + "," + number(y);
}

template <size_t N> std::string quoted(const char (&field)[N])
{
    return quoted(field, N);
}

// One output line of "label value" words, indented two spaces per level; written when it goes
// out of scope, so that a line reads as one chained expression.
class Line {
public:
    Line(FILE* out, int level, const std::string& first) : out_(out), text_(size_t(level) * 2, ' ') { text_ += first; }
    ~Line() { std::fprintf(out_, "%s\n", text_.c_str()); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    Line& word(const std::string& w)
    {
        text_ += ' ';
        text_ += w;
        return *this;
    }
    Line& field(const char* label, const std::string& value) { return word(label).word(value); }
    Line& real(const char* label, double value) { return field(label, number(value)); }
    Line& integer(const char* label, long long value) { return field(label, std::to_string(value)); }
    Line& onOff(const char* label, int32_t on) { return field(label, on ? "on" : "off"); }
    // Components joined by commas, so that a colour or a point stays one word.
    Line& values(const char* label, const float* v, int n)
    {
        std::string joined;
        for (int i = 0; i < n; ++i)
            joined += (i ? "," : "") + number(v[i]);
        return field(label, joined);
    }
    Line& colour(const char* label, const float rgba[4]) { return values(label, rgba, 4); }
    Line& range(const char* label, float lo, float hi) { return field(label, number(lo) + ".." + number(hi)); }
    Line& size(const char* label, float width, float height)
    {
        return field(label, number(width) + "x" + number(height));
    }

private:
    FILE* out_;
    std::string text_;
};

// Stroke and fill as most kinds store them: switch, colour, line width and style, fill pattern.
void strokeAndFill(Line& line, int32_t strokeOn, const float stroke[4], float width, int32_t style, int32_t fillOn,
                   const float fill[4], int32_t pattern)
{
    line.onOff("stroke", strokeOn).colour("colour", stroke).real("width", width).integer("style", style);
    line.onOff("fill", fillOn).colour("colour", fill).integer("pattern", pattern);
}

void graphFields(Line& line, const GRAPH_STRUCT* g)
{
    line.integer("type", g->type).range("x", g->xmin, g->xmax).range("y", g->ymin, g->ymax).real("rate", g->rate);
    line.integer("samples", g->samples).colour("outline", g->outlineColor).real("width", g->outlineWidth);
    line.colour("background", g->backgroundColor).colour("grid", g->gridColor).integer("style", g->gridStyle);
    line.field("font", quoted(g->fontFamily)).integer("style", g->fontStyle).integer("size", g->fontSize);
}

void polyFields(Line& line, const POLY_STRUCT* p)
{
    line.integer("closed", p->closed);
    strokeAndFill(line, p->strokeOn, p->strokeColor, p->strokeWidth, p->strokeStyle, p->fillOn, p->fillColor,
                  p->fillStyle);
    line.word("points");
    for (const COORD_STRUCT* c = p->coords; c; c = c->next)
        line.word(point(c->x, c->y));
}

void circleFields(Line& line, const CIRCLE_STRUCT* c)
{
    line.field("centre", point(c->x, c->y)).real("start", c->start).real("end", c->end);
    line.values("matrix", c->matrix, 4);
    strokeAndFill(line, c->strokeOn, c->strokeColor, c->strokeWidth, c->strokeStyle, c->fillOn, c->fillColor,
                  c->fillStyle);
}

void textFields(Line& line, const TEXT_STRUCT* t)
{
    line.field("text", quoted(t->text)).integer("align", t->align).colour("colour", t->strokeColor);
    line.field("font", quoted(t->fontFamily)).integer("style", t->fontStyle).integer("size", t->fontSize);
    line.integer("scalable", t->scalable).values("matrix", t->matrix, 4).integer("pattern", t->fillStyle);
}

void lineFields(Line& line, const LINE_STRUCT* l)
{
    line.field("from", point(l->x1, l->y1)).field("to", point(l->x2, l->y2));
    line.colour("stroke", l->strokeColor).real("width", l->strokeWidth).integer("style", l->strokeStyle);
}

void kindFields(Line& line, const ELEMENT_STRUCT* e)
{
    const void* data = e->data;
    if (e->type == KR_GROUP) {
        int children = 0;
        for (const ELEMENT_STRUCT* c = e->child; c; c = c->next)
            ++children;
        line.integer("children", children);
    }
    if (!data)
        return;
    switch (e->type) {
    case KR_GRAPH:
        graphFields(line, static_cast<const GRAPH_STRUCT*>(data));
        break;
    case KR_RECT: {
        const RECT_STRUCT* r = static_cast<const RECT_STRUCT*>(data);
        strokeAndFill(line, r->strokeOn, r->strokeColor, r->strokeWidth, r->strokeStyle, r->fillOn, r->fillColor,
                      r->fillStyle);
        break;
    }
    case KR_POLYLINE:
    case KR_CPOLY:
        polyFields(line, static_cast<const POLY_STRUCT*>(data));
        break;
    case KR_CIRCLE:
    case KR_ARC:
        circleFields(line, static_cast<const CIRCLE_STRUCT*>(data));
        break;
    case KR_TEXT:
        textFields(line, static_cast<const TEXT_STRUCT*>(data));
        break;
    case KR_LINE:
        lineFields(line, static_cast<const LINE_STRUCT*>(data));
        break;
    case KR_IMAGE: {
        const IMAGE_STRUCT* i = static_cast<const IMAGE_STRUCT*>(data);
        line.field("picture", std::to_string(i->width) + "x" + std::to_string(i->height));
        line.integer("texture", i->texture).colour("tint", i->fillColor).integer("pattern", i->fillStyle);
        break;
    }
    case KR_BUTTON: {
        const BUTTON_STRUCT* b = static_cast<const BUTTON_STRUCT*>(data);
        line.integer("state", b->state).colour("face", b->color0).colour("light", b->color1);
        line.colour("dark", b->color2).real("bevel", b->strokeWidth);
        break;
    }
    case KR_SLIDER: {
        const SLIDER_STRUCT* s = static_cast<const SLIDER_STRUCT*>(data);
        line.field("groove", point(s->x, s->y)).size("size", s->width, s->height);
        line.real("knob", s->knobHalfSize).real("bevel", s->bevelWidth).colour("face", s->faceColor);
        line.colour("dark", s->darkColor).colour("light", s->lightColor);
        break;
    }
    default:
        break;
    }
}

void dumpThresholds(FILE* out, int level, const char* block, float min, float max, const TH_STRUCT* entries)
{
    if (!entries)
        return;
    Line(out, level, block).range("thresholds", min, max);
    for (const TH_STRUCT* t = entries; t; t = t->next) {
        Line(out, level + 1, "lower").word(number(t->lower)).real("upper", t->upper).integer("value", t->value)
            .values("colour", t->color, 3);
    }
}

void dumpAction(FILE* out, int level, const ACTION_STRUCT* a)
{
    Line(out, level, "action").integer("type", a->type).field("var", quoted(a->var)).field("var2", quoted(a->var2))
        .real("a0", a->a0).real("a1", a->a1).real("b0", a->b0).real("b1", a->b1).integer("limit", a->limit)
        .integer("cg", a->cg).field("format", quoted(a->format));
    dumpThresholds(out, level + 1, "colour", a->colorMin, a->colorMax, a->colorThresholds);
    dumpThresholds(out, level + 1, "width", a->widthMin, a->widthMax, a->widthThresholds);
    dumpThresholds(out, level + 1, "style", a->styleMin, a->styleMax, a->styleThresholds);
    dumpThresholds(out, level + 1, "visible", a->visibleMin, a->visibleMax, a->visibleThresholds);
    dumpThresholds(out, level + 1, "blink", a->blinkMin, a->blinkMax, a->blinkThresholds);
}

void dumpElementLine(FILE* out, int level, const ELEMENT_STRUCT* e)
{
    Line line(out, level, kindName(e->type));
    line.field("name", quoted(e->name)).field("id", quoted(e->id));
    line.field("at", point(e->x, e->y)).size("size", e->width, e->height);
    line.values("bounds", e->bounds, 4);
    kindFields(line, e);
}

void dumpElements(FILE* out, int level, const ELEMENT_STRUCT* list)
{
    for (const ELEMENT_STRUCT* e = list; e; e = e->next) {
        dumpElementLine(out, level, e);
        for (const ACTION_STRUCT* a = e->actions; a; a = a->next)
            dumpAction(out, level + 1, a);
        dumpElements(out, level + 1, e->child);
    }
}

// A parameter slot as (ival "sval"), bracketed so that slots stay apart on one line.
std::string parameter(const PARA_STRUCT& p)
{
    return "(" + std::to_string(p.ival) + " " + quoted(p.sval, p.size) + ")";
}

void dumpSource(FILE* out, const DD_DATA_TYPE_STRUCT* s)
{
    int variables = 0;
    for (const VARIABLE_STRUCT* v = s->variables; v; v = v->next)
        ++variables;
    Line(out, 0, "source").integer("id", s->id).integer("data", s->nrData).integer("parameters", s->nrVar)
        .integer("variables", variables);
    for (int32_t i = 0; s->para && i < s->nrData; ++i)
        Line(out, 1, "data").word(std::to_string(i)).integer("ival", s->para[i].ival)
            .field("sval", quoted(s->para[i].sval, s->para[i].size));
    for (const VARIABLE_STRUCT* v = s->variables; v; v = v->next) {
        Line line(out, 1, "variable");
        line.word(variableTypeName(v->type)).word(quoted(v->name));
        line.field("default", quoted(v->defaultValue)).word("parameters");
        for (int32_t i = 0; v->para && i < v->nrPara; ++i)
            line.word(parameter(v->para[i]));
    }
}

} // namespace

void dumpView(const VIEW_STRUCT* view, FILE* out)
{
    Line(out, 0, "page").field("at", point(view->x, view->y)).size("size", view->width, view->height)
        .values("colour", view->pageColor, 3);
    dumpElements(out, 0, view->elements);
    for (const DD_DATA_TYPE_STRUCT* s = view->dataTypes; s; s = s->next)
        dumpSource(out, s);
}
