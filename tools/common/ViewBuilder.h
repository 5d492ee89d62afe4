// Writes binary view files byte by byte, as the format stores them, so that tests don't
// depend on the library's own writer. Big-endian throughout. One view description is written
// at any revision from 1.00 on: what a revision lacks is left out, what it stored otherwise
// (font codes, radii, colour groups, old source codes) comes from the fields marked as old.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace korelgen {

struct RectFields {
    float x0 = 0, y0 = 0, x1 = 10, y1 = 10; // lower left and upper right corner
    int strokeOn = 0;
    float strokeWidth = 1;
    int strokeStyle = 0;
    float stroke[4] = {1, 1, 1, 1};
    int fillOn = 1;
    float fill[4] = {1, 0, 0, 1};
    int antialias = 0;
    int fillStyle = 0;
};

struct GraphFields {
    int type = 0;
    float x = 20, y = 20, width = 200, height = 100; // lower left corner and size
    float ymin = -100, ymax = 100, xmin = 0, xmax = 100;
    float rate = 10;
    int autoscale = 1;
    float minspready = 0;
    int autoscalex = 1;
    float minspreadx = 0;
    int samples = 500, bars = 0;
    float outline[4] = {1, 1, 1, 1};
    float background[4] = {0, 0, 0, 0};
    float outlineWidth = 1;
    int gridx = 1, gridy = 1, gridxAuto = 1, gridyAuto = 1;
    float gridxSpace = 10, gridySpace = 1, gridxRef = 0, gridyRef = 0;
    int gridStyle = 1;
    float grid[4] = {0.5f, 0.25f, 0.25f, 1};
    int labelx = 1, labely = 1, labelyr = 0;
    int tickx = 1, ticky = 1, tickyr = 0, tickxAuto = 1, tickyAuto = 1;
    float tickxSpace = 2, tickySpace = 2, tickxRef = 0, tickyRef = 0;
    int tickxSub = 5, tickySub = 5;
    float tickWidth = 0;
    std::string fontFamily = "Helvetica [fixed]";
    int fontStyle = 1, fontSize = 10;
    int labelFixx = 0, labelFixy = 0;
    float labelXmin = 0, labelXmax = 100, labelYmin = 0, labelYmax = 100;
};

struct PointFields {
    int id;
    float x, y;
};

// Polyline and closed polygon share the layout.
struct PolyFields {
    int closed = 0;
    int strokeOn = 1;
    float strokeWidth = 3;
    int strokeStyle = 0;
    float stroke[4] = {1, 1, 1, 1};
    int fillOn = 0;
    float fill[4] = {0, 1, 0, 1};
    int antialias = 0;
    int fillStyle = 0;
    std::vector<PointFields> points = {{0, 10, 10}, {1, 60, 10}, {2, 60, 40}};
    int storedCount = -1; // the point count written; -1 writes the number of points
};

// Circle and arc share the layout. The matrix scales a stored ellipse of radius 100.
struct CircleFields {
    float x = 100, y = 100;
    float matrix[4] = {0.5f, 0, 0, 0.5f};
    float start = 0, end = 6.2831855f;
    int strokeOn = 1;
    float strokeWidth = 2;
    int strokeStyle = 0;
    float stroke[4] = {1, 1, 1, 1};
    int fillOn = 1;
    float fill[4] = {1, 1, 0.5f, 1};
    int antialias = 0;
    int fillStyle = 0;
};

struct TextFields {
    int kind = 4; // 10, the older code, reads the same
    float x = 100, y = 100;
    float color[4] = {0, 1, 1, 1};
    int align = 7;
    float matrix[4] = {1, 0, 0, 1};
    std::string fontFamily = "Arial";
    int fontStyle = 1, underline = 0, fontSize = 30, textSize = 30, fillStyle = 0;
    std::string text = "Text";
    // Up to 2.02: the font as a code, a line style of its own, and corners up to 1.06.
    int fontCode = 0;
    float strokeWidth = 1;
    int strokeStyle = 0, antialias = 0;
    float corners[8] = {}; // point by point
};

struct LineFields {
    float x1 = 0, y1 = 0, x2 = 100, y2 = 0;
    float strokeWidth = 1;
    int strokeStyle = 0;
    float stroke[4] = {0.5f, 1, 0.5f, 1};
    int antialias = 0;
};

// The pixels are written as given, whatever width and height claim.
struct ImageFields {
    float x0 = 0, y0 = 0, x1 = 64, y1 = 64; // lower left and upper right corner
    float tint[4] = {1, 1, 1, 1};
    int width = 0, height = 0;
    int fillStyle = 0;
    std::vector<uint8_t> pixels; // RGBA, row after row
};

struct ButtonFields {
    float x0 = 0, y0 = 0, x1 = 80, y1 = 30; // lower left and upper right corner
    float face[4] = {0.7f, 0.7f, 0.7f, 1};
    float light[4] = {0.9f, 0.9f, 0.9f, 1};
    float dark[4] = {0.3f, 0.3f, 0.3f, 1};
    float bevelWidth = 4;
    int state = 0;
};

struct SliderFields {
    float x = 100, y = 100, width = 20, height = 200; // centre and size of the groove
    float face[4] = {0.5f, 0.5f, 0.5f, 1};
    float dark[4] = {0.3f, 0.3f, 0.3f, 1};
    float light[4] = {0.9f, 0.9f, 0.9f, 1};
    float bevelWidth = 2, knobHalfSize = 15;
    int reserved1 = 0;
    float reserved2 = 0;
};

struct ThresholdFields {
    float lower = 0, upper = 1;
    int value = 1;
    float color[3] = {0.5f, 1, 0.5f};
};

// One stored threshold block: its range and its entries.
struct ThresholdBlockFields {
    float min = 0, max = 120;
    std::vector<ThresholdFields> entries;
};

// An action record as stored. Blocks in file order: colour, line width, line style,
// visibility, blink.
struct ActionFields {
    int id = 0;
    int type = 0;
    std::string var, var2;
    float a0 = 0, a1 = 1, b0 = 0, b1 = 1;
    int limit = 0;
    float var2A0 = 0, var2A1 = 1, var2B0 = 0, var2B1 = 1;
    float offset = 0, slope = 0, offset2 = 0, slope2 = 0;
    int cg = 0;
    std::string format;
    int filter = 0;
    float filterTime = 1;
    int mouseButton = 0, mouseAction = 0, mouseMode = 0, mouseClamp = 0;
    float mouseInc = 1, mouseMin = 0, mouseMax = 1;
    int mouseHiddenActive = 1;
    std::string translatePoly;
    int visibleMode = 0, visibleValue = 0;
    ThresholdBlockFields blocks[5];
    // 2.03 to 3.02: the clock that the blinking entries take.
    int blinkClock = 0;
    // 1.00: a colour group, the first colour entry's colour and this width, instead of blocks.
    float groupWidth = 0;
};

struct ParaFields {
    int ival = 0;
    std::string text;
};

// A variable; each of its parameters is stored with a text buffer of `capacity` bytes.
struct VariableFields {
    int type = 0;
    std::string name;
    std::string defaultValue;
    std::vector<ParaFields> params;
    int capacity = 64;
};

// A source record. The count of variable parameters is stored as given; each variable
// stores that many parameters, empty ones where its list is shorter.
struct SourceFields {
    int id = 1;
    std::vector<ParaFields> dataParams;
    int varParamCount = 0;
    std::vector<VariableFields> variables;
};

// A variable of the source section of revisions 1.00 to 1.10.
struct OldVariableFields {
    int type = 0;
    std::string name;
    int offset = 0;
    float c = 0;                 // from 1.01 on, as are wave and frequency
    int wave = 0, frequency = 0;
};

// A source of revisions 1.00 to 1.10: an old source code and its settings.
struct OldSourceFields {
    int code = 0;
    int a = 0, b = 0, e = 0, f = 0, g = 0, h = 0, i = 0;
    int j = 0; // from 1.02 on; read from 1.07 on
    std::string t;
    std::vector<OldVariableFields> variables;
};

class ViewBuilder {
public:
    // Header and page. The magic text carries the version it claims, which readers ignore.
    explicit ViewBuilder(int major = 3, int minor = 3, const char* magic = "VIEW FILE 3.3\n");
    ViewBuilder& page(float x, float y, float width, float height, float r, float g, float b);

    ViewBuilder& rect(const RectFields& fields, const char* name = "rect", const char* id = "rect-ID");
    // A group of `children` elements; the children follow, then endGroup() closes it.
    ViewBuilder& beginGroup(int children, const char* name = "group", const char* id = "group-ID");
    ViewBuilder& endGroup();
    ViewBuilder& scissor(float x0, float y0, float x1, float y1, const char* name = "clip");
    ViewBuilder& graph(const GraphFields& fields, const char* name = "graph", const char* id = "graph-ID");
    ViewBuilder& polyline(const PolyFields& fields, const char* name = "polyline", const char* id = "polyline-ID");
    ViewBuilder& cpoly(const PolyFields& fields, const char* name = "cpoly", const char* id = "cpoly-ID");
    ViewBuilder& circle(const CircleFields& fields, const char* name = "circle", const char* id = "circle-ID");
    ViewBuilder& arc(const CircleFields& fields, const char* name = "arc", const char* id = "arc-ID");
    ViewBuilder& text(const TextFields& fields, const char* name = "text", const char* id = "text-ID");
    ViewBuilder& line(const LineFields& fields, const char* name = "line", const char* id = "line-ID");
    ViewBuilder& image(const ImageFields& fields, const char* name = "image", const char* id = "image-ID");
    ViewBuilder& button(const ButtonFields& fields, const char* name = "button", const char* id = "button-ID");
    ViewBuilder& slider(const SliderFields& fields, const char* name = "slider", const char* id = "slider-ID");
    // An element of a code without a body: only the head and an empty action list.
    ViewBuilder& bodiless(int kind, const char* name = "none");
    // The action list that the next element record to be closed stores: the next element
    // written, or endGroup(). Without it an element stores no action.
    ViewBuilder& actions(const std::vector<ActionFields>& list);
    // Marker 20 and a data-source section, in the form of the builder's revision from 1.11 on.
    ViewBuilder& dataSection(const std::vector<SourceFields>& sources = {});
    // Marker 20 and a data-source section of revisions 1.00 to 1.10.
    ViewBuilder& oldDataSection(const std::vector<OldSourceFields>& sources);

    ViewBuilder& integer(int32_t value);
    ViewBuilder& real(float value);
    ViewBuilder& fixed(const std::string& text, size_t n);
    ViewBuilder& counted(const std::string& text); // length with terminator, then the bytes

    const std::vector<uint8_t>& bytes() const { return bytes_; }
    size_t size() const { return bytes_.size(); }

private:
    bool from(int revision) const { return revision_ >= revision; }
    ViewBuilder& head(int kind, const char* name, const char* id);
    // The end of the bodies that grew a reserved tail; `fillStyle` for the kinds that store one.
    ViewBuilder& bodyEnd(int fillStyle = 0);
    ViewBuilder& oldText(const TextFields& fields);
    ViewBuilder& thresholdBlock(const ThresholdBlockFields& block);
    ViewBuilder& corners(float x0, float y0, float x1, float y1);
    ViewBuilder& color(const float rgba[4]);
    ViewBuilder& polyBody(int kind, const PolyFields& fields, const char* name, const char* id);
    ViewBuilder& circleBody(int kind, const CircleFields& fields, const char* name, const char* id);
    // Closes an element record with the pending actions.
    ViewBuilder& actionList();
    ViewBuilder& action(const ActionFields& fields);
    ViewBuilder& source(const SourceFields& fields);
    int revision_;
    std::vector<uint8_t> bytes_;
    std::vector<ActionFields> pendingActions_;
};

} // namespace korelgen
