#include "ViewBuilder.h"

#include <cstring>

namespace korelgen {

ViewBuilder::ViewBuilder(int major, int minor, const char* magic) : revision_(major * 100 + minor)
{
    fixed(magic, 30);
    integer(major);
    integer(minor);
}

ViewBuilder& ViewBuilder::page(float x, float y, float width, float height, float r, float g, float b)
{
    real(x).real(y).real(width).real(height).real(r).real(g).real(b);
    if (from(107) && !from(111))
        fixed("", 5 * 128);
    if (from(301))
        integer(0).integer(0).integer(0).integer(0);
    return *this;
}

// Name and id from 2.02 on; a fixed name from 1.01; nothing at 1.00.
ViewBuilder& ViewBuilder::head(int kind, const char* name, const char* id)
{
    integer(kind);
    if (from(202))
        return counted(name).counted(id);
    return from(101) ? fixed(name, 64) : *this;
}

// 3.01 reserved the four words in which 3.02 stores the fill style: both get the same bytes, so
// that a reader taking a style at 3.01 shows.
ViewBuilder& ViewBuilder::bodyEnd(int fillStyle)
{
    return from(301) ? integer(fillStyle).integer(0).integer(0).integer(0) : *this;
}

// Lower left, upper left, upper right, lower right; each point x then y.
ViewBuilder& ViewBuilder::corners(float x0, float y0, float x1, float y1)
{
    return real(x0).real(y0).real(x0).real(y1).real(x1).real(y1).real(x1).real(y0);
}

ViewBuilder& ViewBuilder::rect(const RectFields& s, const char* name, const char* id)
{
    head(1, name, id).corners(s.x0, s.y0, s.x1, s.y1);
    integer(s.strokeOn).real(s.strokeWidth).integer(s.strokeStyle);
    for (float c : s.stroke)
        real(c);
    integer(s.fillOn);
    for (float c : s.fill)
        real(c);
    return integer(s.antialias).bodyEnd(s.fillStyle).actionList();
}

ViewBuilder& ViewBuilder::beginGroup(int children, const char* name, const char* id)
{
    return head(8, name, id).integer(children);
}

ViewBuilder& ViewBuilder::endGroup()
{
    return actionList();
}

ViewBuilder& ViewBuilder::scissor(float x0, float y0, float x1, float y1, const char* name)
{
    return head(14, name, "clip-ID").corners(x0, y0, x1, y1).bodyEnd().actionList();
}

ViewBuilder& ViewBuilder::color(const float rgba[4])
{
    return real(rgba[0]).real(rgba[1]).real(rgba[2]).real(rgba[3]);
}

// The y pair of autoscale comes before the x pair, and the fixed label ranges after the font.
// Older graphs lacked the x range (before 2.01), the right axis and background (before 1.11),
// the font (before 2.03) and the label ranges (before 2.04).
ViewBuilder& ViewBuilder::graph(const GraphFields& s, const char* name, const char* id)
{
    head(0, name, id);
    if (from(201))
        integer(s.type);
    real(s.x).real(s.y).real(s.width).real(s.height).real(s.ymin).real(s.ymax);
    if (from(201))
        real(s.xmin).real(s.xmax);
    real(s.rate).integer(s.autoscale);
    if (from(107))
        real(s.minspready);
    if (from(201))
        integer(s.autoscalex).real(s.minspreadx);
    integer(s.samples);
    if (from(107))
        integer(s.bars);
    color(s.outline);
    if (from(111))
        color(s.background);
    real(s.outlineWidth);
    integer(s.gridx).integer(s.gridy).integer(s.gridxAuto).integer(s.gridyAuto);
    real(s.gridxSpace).real(s.gridySpace).real(s.gridxRef).real(s.gridyRef);
    integer(s.gridStyle).color(s.grid).integer(s.labelx).integer(s.labely);
    if (from(111))
        integer(s.labelyr);
    integer(s.tickx).integer(s.ticky);
    if (from(111))
        integer(s.tickyr);
    integer(s.tickxAuto).integer(s.tickyAuto);
    real(s.tickxSpace).real(s.tickySpace).real(s.tickxRef).real(s.tickyRef);
    integer(s.tickxSub).integer(s.tickySub).real(s.tickWidth).integer(7);
    if (from(203))
        fixed(s.fontFamily, 64).integer(s.fontStyle).integer(s.fontSize);
    if (from(204)) {
        integer(s.labelFixx).integer(s.labelFixy);
        real(s.labelXmin).real(s.labelXmax).real(s.labelYmin).real(s.labelYmax).bodyEnd();
    }
    return actionList();
}

ViewBuilder& ViewBuilder::polyBody(int kind, const PolyFields& s, const char* name, const char* id)
{
    head(kind, name, id).integer(s.closed).integer(s.strokeOn).real(s.strokeWidth).integer(s.strokeStyle);
    color(s.stroke).integer(s.fillOn).color(s.fill).integer(s.antialias).bodyEnd(s.fillStyle);
    integer(s.storedCount < 0 ? int32_t(s.points.size()) : s.storedCount);
    for (const PointFields& p : s.points)
        integer(p.id).real(p.x).real(p.y);
    return actionList();
}

ViewBuilder& ViewBuilder::polyline(const PolyFields& s, const char* name, const char* id)
{
    return polyBody(2, s, name, id);
}

ViewBuilder& ViewBuilder::cpoly(const PolyFields& s, const char* name, const char* id)
{
    return polyBody(13, s, name, id);
}

ViewBuilder& ViewBuilder::circleBody(int kind, const CircleFields& s, const char* name, const char* id)
{
    head(kind, name, id).real(s.x).real(s.y);
    if (from(102)) // before, two radii and four unused Reals
        real(s.matrix[0]).real(s.matrix[1]).real(s.matrix[2]).real(s.matrix[3]);
    else
        real(s.matrix[0] * 100).real(s.matrix[3] * 100).real(0).real(0).real(0).real(0);
    real(s.start).real(s.end).integer(s.strokeOn).real(s.strokeWidth).integer(s.strokeStyle).color(s.stroke);
    integer(s.fillOn).color(s.fill).integer(s.antialias).bodyEnd(s.fillStyle);
    return actionList();
}

ViewBuilder& ViewBuilder::circle(const CircleFields& s, const char* name, const char* id)
{
    return circleBody(3, s, name, id);
}

ViewBuilder& ViewBuilder::arc(const CircleFields& s, const char* name, const char* id)
{
    return circleBody(6, s, name, id);
}

// The stored length leaves out the terminator that follows the text.
ViewBuilder& ViewBuilder::text(const TextFields& s, const char* name, const char* id)
{
    head(s.kind, name, id);
    if (!from(203))
        return oldText(s).actionList();
    real(s.x).real(s.y).color(s.color).integer(s.align);
    real(s.matrix[0]).real(s.matrix[1]).real(s.matrix[2]).real(s.matrix[3]);
    fixed(s.fontFamily, 64).integer(s.fontStyle).integer(s.underline).integer(s.fontSize).integer(s.textSize);
    integer(s.fillStyle);
    for (int i = 0; i < 5; ++i)
        integer(0);
    integer(int32_t(s.text.size())).fixed(s.text, s.text.size() + 1);
    return actionList();
}

// A text up to 2.02: a font code in place of the font, no align at 1.00, corners up to 1.06.
ViewBuilder& ViewBuilder::oldText(const TextFields& s)
{
    integer(0).real(s.x).real(s.y).integer(s.fontCode).real(s.strokeWidth).integer(s.strokeStyle);
    color(s.color).integer(s.antialias);
    if (from(101))
        integer(s.align);
    if (from(101) && !from(107))
        for (float c : s.corners)
            real(c);
    if (from(107))
        real(s.matrix[0]).real(s.matrix[1]).real(s.matrix[2]).real(s.matrix[3]);
    return integer(int32_t(s.text.size())).fixed(s.text, s.text.size() + 1);
}

ViewBuilder& ViewBuilder::line(const LineFields& s, const char* name, const char* id)
{
    head(5, name, id).real(s.x1).real(s.y1).real(s.x2).real(s.y2);
    real(s.strokeWidth).integer(s.strokeStyle).color(s.stroke).integer(s.antialias);
    return bodyEnd().actionList();
}

// No pixels before 1.07, and no alpha before 2.04.
ViewBuilder& ViewBuilder::image(const ImageFields& s, const char* name, const char* id)
{
    head(7, name, id).corners(s.x0, s.y0, s.x1, s.y1).color(s.tint);
    if (!from(102))
        return actionList();
    integer(0).fixed("", 128).integer(0);
    if (!from(107))
        return actionList();
    integer(s.width).integer(s.height);
    if (from(302))
        integer(s.fillStyle).integer(0).integer(0).integer(0);
    else if (from(301))
        integer(0).integer(0).integer(0).integer(0);
    for (size_t i = 0; i < s.pixels.size(); ++i)
        if (from(204) || i % 4 != 3)
            bytes_.push_back(s.pixels[i]);
    return actionList();
}

ViewBuilder& ViewBuilder::button(const ButtonFields& s, const char* name, const char* id)
{
    head(11, name, id).corners(s.x0, s.y0, s.x1, s.y1).color(s.face).color(s.light).color(s.dark);
    return real(s.bevelWidth).integer(s.state).bodyEnd().actionList();
}

ViewBuilder& ViewBuilder::slider(const SliderFields& s, const char* name, const char* id)
{
    head(12, name, id).real(s.x).real(s.y).real(s.width).real(s.height);
    color(s.face).color(s.dark).color(s.light).real(s.bevelWidth).real(s.knobHalfSize);
    return integer(s.reserved1).real(s.reserved2).bodyEnd().actionList();
}

ViewBuilder& ViewBuilder::bodiless(int kind, const char* name)
{
    return head(kind, name, "none-ID").actionList();
}

ViewBuilder& ViewBuilder::actions(const std::vector<ActionFields>& list)
{
    pendingActions_ = list;
    return *this;
}

ViewBuilder& ViewBuilder::actionList()
{
    integer(int32_t(pendingActions_.size()));
    for (const ActionFields& a : pendingActions_)
        action(a);
    pendingActions_.clear();
    return *this;
}

ViewBuilder& ViewBuilder::thresholdBlock(const ThresholdBlockFields& block)
{
    real(block.min).real(block.max).integer(int32_t(block.entries.size()));
    for (const ThresholdFields& t : block.entries)
        real(t.lower).real(t.upper).integer(t.value).real(t.color[0]).real(t.color[1]).real(t.color[2]);
    return *this;
}

// The fields each revision stored, in file order.
ViewBuilder& ViewBuilder::action(const ActionFields& a)
{
    const bool secondVariable = from(201);
    integer(a.id).integer(a.type).fixed(a.var, secondVariable ? 64 : 32);
    if (secondVariable)
        fixed(a.var2, 64);
    real(a.a0).real(a.a1).real(a.b0).real(a.b1);
    if (from(303))
        integer(a.limit);
    if (secondVariable)
        real(a.var2A0).real(a.var2A1).real(a.var2B0).real(a.var2B1);
    real(a.offset).real(a.slope);
    if (secondVariable)
        real(a.offset2).real(a.slope2);
    integer(a.cg);
    if (!from(101)) {
        const std::vector<ThresholdFields>& colors = a.blocks[0].entries;
        const ThresholdFields first = colors.empty() ? ThresholdFields() : colors.front();
        const float* rgb = first.color;
        real(rgb[0]).real(rgb[1]).real(rgb[2]).real(0).real(a.groupWidth);
    }
    fixed(a.format, 64);
    if (from(107))
        integer(a.filter).real(a.filterTime);
    if (from(203) && !from(303))
        integer(a.blinkClock);
    if (from(113)) {
        integer(a.mouseButton).integer(a.mouseAction).integer(a.mouseMode).integer(a.mouseClamp);
        real(a.mouseInc).real(a.mouseMin).real(a.mouseMax);
    }
    if (from(301))
        integer(a.mouseHiddenActive);
    if ((from(113) && !from(201)) || from(301))
        fixed(a.translatePoly, 64);
    if (from(303))
        integer(a.visibleMode).integer(a.visibleValue);
    for (int i = 0, reserved = from(303) ? 8 : from(301) ? 6 : 0; i < reserved; ++i)
        integer(0);
    for (int block = 0; block < 5; ++block)
        if ((block < 4 && from(101)) || (block == 4 && from(203)))
            thresholdBlock(a.blocks[block]);
    return *this;
}

ViewBuilder& ViewBuilder::dataSection(const std::vector<SourceFields>& sources)
{
    integer(20).integer(int32_t(sources.size()));
    for (const SourceFields& s : sources)
        source(s);
    return *this;
}

// Before 3.02 a variable parameter's text was a fixed field; before 3.01 there was no default value.
ViewBuilder& ViewBuilder::source(const SourceFields& s)
{
    integer(s.id).integer(int32_t(s.dataParams.size())).integer(s.varParamCount);
    for (const ParaFields& p : s.dataParams)
        integer(p.ival).fixed(p.text, 64);
    integer(int32_t(s.variables.size()));
    for (const VariableFields& v : s.variables) {
        integer(v.type).fixed(v.name, 64);
        if (from(301))
            fixed(v.defaultValue, 64);
        for (int i = 0; i < s.varParamCount; ++i) {
            ParaFields p = size_t(i) < v.params.size() ? v.params[size_t(i)] : ParaFields();
            integer(p.ival);
            if (from(302))
                integer(v.capacity).fixed(p.text, size_t(v.capacity));
            else
                fixed(p.text, 64);
        }
    }
    return *this;
}

ViewBuilder& ViewBuilder::oldDataSection(const std::vector<OldSourceFields>& sources)
{
    integer(20).integer(int32_t(sources.size()));
    for (const OldSourceFields& s : sources) {
        integer(s.code).integer(s.a).integer(s.b).integer(s.e).integer(s.f).integer(s.g).integer(s.h).integer(s.i);
        if (from(102))
            integer(s.j);
        fixed(s.t, 128).integer(int32_t(s.variables.size()));
        for (const OldVariableFields& v : s.variables) {
            integer(v.type).fixed(v.name, 64).integer(v.offset);
            if (from(101))
                real(v.c).integer(v.wave).integer(v.frequency);
        }
    }
    return *this;
}

ViewBuilder& ViewBuilder::integer(int32_t value)
{
    uint32_t v = uint32_t(value);
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes_.push_back(uint8_t(v >> shift));
    return *this;
}

ViewBuilder& ViewBuilder::real(float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    return integer(int32_t(bits));
}

ViewBuilder& ViewBuilder::fixed(const std::string& text, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        bytes_.push_back(i < text.size() ? uint8_t(text[i]) : 0);
    return *this;
}

ViewBuilder& ViewBuilder::counted(const std::string& text)
{
    integer(int32_t(text.size() + 1));
    return fixed(text, text.size() + 1);
}

} // namespace korelgen
