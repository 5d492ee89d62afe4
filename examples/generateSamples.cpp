// Writes the sample views shipped in examples/: panel.k2d, a small operator panel (lamps, bar
// gauges with their scale and readouts, a clipped screen), and everykind.k2d, one of each element
// kind with actions and data sources, for tools that read every record, and sources.k2d, a view
// of constants, internal variables and the example plug-in's variables, and live.k2d, a panel
// that moves on the Auto source's test signals, and readouts.k2d, texts, a marker on a track and
// a tinted picture on the same signals, and stripchart.k2d, a time graph and an xy graph, sliders
// and a scrolling tape on them, and feed.k2d, a panel on what korel2d-feed writes into shared
// memory and sends in datagrams, and controls.k2d, buttons, a slider and a knob worked by the
// pointer. everykind.xml and sources.xml are the XML form of their binary namesakes, and
// handmade.xml is an XML view written as a person would write one: outlines as path texts, a
// circle, one picture shown twice.
// legacy/ holds everykind.k2d as revisions 1.00, 1.07, 2.03 and 3.01 wrote it, and symbols.sym, a
// symbol library of three labelled symbols.
// Usage: korel2d-samples [--seeds] OUTPUT_DIR | --reader-seeds OUTPUT_DIR REVISION...
// With --seeds it also writes small views of each element kind, each action type and every
// variable type, a few path texts and damaged copies of the XML samples: the seed corpus of the
// fuzzing harnesses. --reader-seeds writes the seeds of the harnesses of one format generation
// each: for a REVISION such as 107, OUTPUT_DIR/g107/ holds the views of one kind each and the
// every-kind view at that revision, less the header, which the harness supplies;
// OUTPUT_DIR/symbols/ holds symbols.sym.
#include "KorelEdit.h"
#include "KshmSegment.h"
#include "base/base64.h"
#include "ViewBuilder.h"
#include "panelPalette.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

using namespace korelgen;
using namespace samplepanel;

namespace {


// An opaque colour into a record's r, g, b, a.
void setColour(float rgba[4], Colour colour)
{
    rgba[0] = colour.r;
    rgba[1] = colour.g;
    rgba[2] = colour.b;
    rgba[3] = 1;
}

// A round shape centred on (x, y), `size` times the unit circle, filled and outlined.
CircleFields disc(float x, float y, float size, Colour fill, Colour stroke)
{
    CircleFields c;
    c.x = x, c.y = y;
    c.matrix[0] = c.matrix[3] = size;
    setColour(c.fill, fill);
    setColour(c.stroke, stroke);
    return c;
}

// Crisp edges throughout: the sample is also read back pixel by pixel.
RectFields filled(float x0, float y0, float x1, float y1, Colour fill)
{
    RectFields s;
    s.x0 = x0;
    s.y0 = y0;
    s.x1 = x1;
    s.y1 = y1;
    setColour(s.fill, fill);
    return s;
}

RectFields framed(float x0, float y0, float x1, float y1, Colour fill, Colour stroke, float width)
{
    RectFields s = filled(x0, y0, x1, y1, fill);
    s.strokeOn = 1;
    s.strokeWidth = width;
    setColour(s.stroke, stroke);
    return s;
}

ThresholdBlockFields thresholds(float min, float max, std::vector<ThresholdFields> entries)
{
    ThresholdBlockFields block;
    block.min = min;
    block.max = max;
    block.entries = std::move(entries);
    return block;
}

ThresholdFields threshold(float lower, float upper, int value, Colour colour)
{
    ThresholdFields t;
    t.lower = lower;
    t.upper = upper;
    t.value = value;
    t.color[0] = colour.r;
    t.color[1] = colour.g;
    t.color[2] = colour.b;
    return t;
}

ActionFields action(int id, int type, const char* var, float a0, float a1, float b0, float b1)
{
    ActionFields a;
    a.id = id;
    a.type = type;
    a.var = var;
    a.a0 = a0;
    a.a1 = a1;
    a.b0 = b0;
    a.b1 = b1;
    return a;
}

// ---------------------------------------------------------------- what an operator reads

constexpr int kBold = 2; // font style bits: 1 plain, 2 bold
// Readouts are set in an outline monospace font, so that digits don't jump as a value changes;
// its advance is 0.6 of the text height, which sizes a readout's box before any font is at hand.
const char* const kReadoutFont = "Courier";
constexpr float kMonoAdvance = 0.6f;

// Positions computed with sin and cos are kept to quarter units, so that the bytes written
// don't hang on the last bit of a maths library.
float snap(double v)
{
    return float(std::round(v * 4) / 4);
}

// A text centred on (x, y): the stored string fixes the box that x, y is the centre of.
TextFields caption(float x, float y, const std::string& text, int size, Colour colour, int style = 1)
{
    TextFields t;
    t.x = x;
    t.y = y;
    setColour(t.color, colour);
    t.align = KR_POS_CENTRE;
    t.fontStyle = style;
    t.fontSize = t.textSize = size;
    t.text = text;
    return t;
}

// A type-0 action: the value of `var`, mapped from a0..a1 to b0..b1, printed in `format`.
ActionFields shown(int id, const char* var, const char* format, float a0 = 0, float a1 = 1, float b0 = 0,
                   float b1 = 1)
{
    ActionFields a = action(id, KR_ACTION_TEXT, var, a0, a1, b0, b1);
    a.format = format;
    return a;
}

// A digital readout centred on (x, y): a dark framed box, and in it the action's value in green.
// The stored text, a row of `chars` dashes, is what shows before the first value arrives; a
// value shorter than that keeps the dashes' left edge, centre or right edge, as `align` says.
void readout(ViewBuilder& b, const char* name, float x, float y, int chars, int size, const ActionFields& value,
             int align = KR_POS_RIGHT)
{
    const float halfWidth = float(chars) * kMonoAdvance * float(size) * 0.5f + 8, halfHeight = float(size) * 0.5f + 6;
    const std::string id = std::string(name) + "-ID";
    b.beginGroup(2, name, id.c_str());
    b.rect(framed(x - halfWidth, y - halfHeight, x + halfWidth, y + halfHeight, kDark, kBezel, 1), "box", "box-ID");
    TextFields digits = caption(x, y, std::string(size_t(chars), '-'), size, kGreen);
    digits.fontFamily = kReadoutFont;
    digits.align = align;
    b.actions({value}).text(digits, "value", "value-ID");
    b.endGroup();
}

// Where a scale puts the tick of a fraction of its range: the tick's two ends and the centre of
// its number.
struct TickPlace {
    float x0, y0, x1, y1, numberX, numberY;
};

// A scale as one group: `majors` numbered ticks from `from` to `to` and `minors` short ones
// between each two; `place` lays a tick out by its fraction of the range and its length.
void scale(ViewBuilder& b, const char* name, int majors, int minors, float from, float to, const char* format,
           const std::function<TickPlace(float fraction, float length)>& place)
{
    const int ticks = (majors - 1) * (minors + 1) + 1;
    const std::string id = std::string(name) + "-ID";
    b.beginGroup(ticks + majors, name, id.c_str());
    for (int i = 0; i < ticks; ++i) {
        const bool major = i % (minors + 1) == 0;
        const float fraction = float(i) / float(ticks - 1);
        const TickPlace t = place(fraction, major ? 10.0f : 5.0f);
        LineFields tick;
        tick.x1 = t.x0, tick.y1 = t.y0, tick.x2 = t.x1, tick.y2 = t.y1;
        tick.strokeWidth = major ? 2 : 1;
        setColour(tick.stroke, kFrame);
        b.line(tick, "tick", "tick-ID");
        if (major) {
            char number[32];
            std::snprintf(number, sizeof number, format, from + (to - from) * fraction);
            b.text(caption(t.numberX, t.numberY, number, 12, kFrame), "number", "number-ID");
        }
    }
    b.endGroup();
}

// A scale round a dial centred on (x, y): ticks reach inwards from `radius`, from the angle
// `fromDegrees` (counter-clockwise from the right) to `toDegrees`; numbers stand at `numbers`.
void dialScale(ViewBuilder& b, const char* name, float x, float y, float radius, float numbers, float fromDegrees,
               float toDegrees, int majors, int minors, float from, float to, const char* format)
{
    scale(b, name, majors, minors, from, to, format, [=](float fraction, float length) {
        const double angle = (fromDegrees + (toDegrees - fromDegrees) * fraction) * 3.14159265358979 / 180;
        const double c = std::cos(angle), s = std::sin(angle);
        return TickPlace{snap(x + (radius - length) * c), snap(y + (radius - length) * s), snap(x + radius * c),
                         snap(y + radius * s),              snap(x + numbers * c),            snap(y + numbers * s)};
    });
}

// A scale up the left side of an upright bar from `bottom` to `top`, its ticks ending at x.
void barScale(ViewBuilder& b, const char* name, float x, float bottom, float top, int majors, int minors,
              float from, float to, const char* format)
{
    scale(b, name, majors, minors, from, to, format, [=](float fraction, float length) {
        const float y = bottom + (top - bottom) * fraction;
        return TickPlace{x - length, y, x, y, x - 26, y};
    });
}

// A round dial face centred on (x, y), `size` times the unit circle, with a scale from -1 to 1
// over its upper half; the caption goes on it before its needle.
void sineDialFace(ViewBuilder& b, float x, float y, float size, float scaleRadius, float numbers)
{
    CircleFields dial = disc(x, y, size, kDark, kBezel);
    dial.strokeWidth = 3;
    b.circle(dial, "dial", "dial-ID");
    dialScale(b, "dial scale", x, y, scaleRadius, numbers, 180, 0, 5, 4, -1, 1, "%.1f");
}

// The needle of that dial, `length` long, turned by `variable` from -1 (pointing left) over the
// top to 1 (pointing right), on a hub of `hubSize`.
void sineDialNeedle(ViewBuilder& b, float x, float y, float length, float hubSize, const char* variable)
{
    LineFields needle;
    needle.x1 = x, needle.y1 = y, needle.x2 = x + length, needle.y2 = y;
    needle.strokeWidth = 4;
    setColour(needle.stroke, kYellow);
    ActionFields turn = action(1, KR_ACTION_ROTATE, variable, -1, 1, -180, 0);
    turn.cg = KR_POS_LEFT;
    b.actions({turn}).line(needle, "needle", "needle-ID");
    CircleFields hub = disc(x, y, hubSize, kBezel, kBezel);
    hub.strokeWidth = 3;
    hub.strokeOn = 0;
    b.circle(hub, "hub", "hub-ID");
}

// An upright cyan bar from x0 to x1 that `variable` fills from `bottom` up to `top` as it goes
// from 0 to 1.
void levelBar(ViewBuilder& b, float x0, float x1, float bottom, float top, int actionId, const char* variable)
{
    PolyFields bar;
    bar.closed = 1, bar.fillOn = 1;
    setColour(bar.fill, kCyan);
    setColour(bar.stroke, kFrame);
    bar.strokeWidth = 2;
    bar.points = {{0, x0, bottom}, {1, x1, bottom}, {2, x1, top}, {3, x0, top}};
    b.actions({action(actionId, KR_ACTION_FILL_UP, variable, 0, 1, 0, 1)}).cpoly(bar, "bar", "bar-ID");
}

// Five lamps in bezels of 50 x 50 along the top of the instrument area, each named above it.
void lampRow(ViewBuilder& b)
{
    const Colour lights[] = {kGreen, kGreen, kAmber, kRed, kLampOff};
    const char* const names[] = {"FEED", "MIX", "HEAT", "ALARM", "SPARE"};
    b.beginGroup(5, "lamps", "lamps-ID");
    for (int i = 0; i < 5; ++i) {
        float x = 48 + 62 * i;
        std::string name = "lamp" + std::to_string(i + 1);
        b.beginGroup(3, name.c_str(), (name + "-ID").c_str());
        b.rect(framed(x, 340, x + 50, 390, kBezel, kDark, 1), "bezel", "bezel-ID");
        b.rect(filled(x + 9, 349, x + 41, 381, lights[i]), "light", "light-ID");
        b.text(caption(x + 25, 405, names[i], 11, kFrame), "caption", "caption-ID");
        b.endGroup();
    }
    b.endGroup();
}

// The levels of the four tanks, in per cent: their bars show them and their readouts print them.
const float kTankLevels[] = {35, 70, 92, 55};

// Four vertical bar gauges: a trough, the bar at its level, a red limit mark at 80 %, the tank's
// name above and its level in digits below; one scale in per cent on the left serves all four.
void gauges(ViewBuilder& b)
{
    const float bottom = 110, top = 310;
    b.beginGroup(6, "gauges", "gauges-ID");
    for (int i = 0; i < 4; ++i) {
        float x = 60 + 75 * i;
        float fraction = kTankLevels[i] / 100;
        float level = bottom + (top - bottom) * fraction;
        std::string name = "gauge" + std::to_string(i + 1);
        b.beginGroup(5, name.c_str(), (name + "-ID").c_str());
        b.rect(framed(x, bottom, x + 36, top, kDark, kBezel, 1), "trough", "trough-ID");
        b.rect(filled(x + 4, bottom + 2, x + 32, level, fraction > 0.8f ? kAmber : kCyan), "bar", "bar-ID");
        float limit = bottom + (top - bottom) * 0.8f;
        b.rect(filled(x - 4, limit - 1, x + 40, limit + 1, kRed), "limit", "limit-ID");
        b.text(caption(x + 18, 325, "TANK " + std::to_string(i + 1), 11, kFrame), "caption", "caption-ID");
        std::string variable = "level" + std::to_string(i + 1);
        readout(b, "readout", x + 18, 95, 5, 12, shown(i + 1, variable.c_str(), "%3.0f %%"));
        b.endGroup();
    }
    barScale(b, "scale", 55, bottom, top, 6, 1, 0, 100, "%.0f");
    b.text(caption(29, 325, "%", 12, kFrame), "unit", "unit-ID");
    b.endGroup();
}

// A chequered screen much larger than its window: only the part inside the clip area shows.
void clippedScreen(ViewBuilder& b)
{
    b.beginGroup(3, "screen", "screen-ID");
    b.rect(filled(380, 40, 620, 410, kTeal), "ground", "ground-ID");
    RectFields chequer = filled(380, 40, 620, 410, kAmber);
    chequer.fillStyle = 4; // 8-pixel squares
    b.rect(chequer, "chequer", "chequer-ID");
    b.scissor(410, 120, 590, 380, "window");
    b.endGroup();
    // A dashed bezel just outside the window.
    RectFields bezel = framed(404, 114, 596, 386, kFrame, kFrame, 2);
    bezel.fillOn = 0;
    bezel.strokeStyle = 4; // 8 on, 8 off
    b.rect(bezel, "window frame", "window-frame-ID");
}

std::vector<uint8_t> panel()
{
    ViewBuilder b;
    b.page(0, 0, 640, 480, kPage.r, kPage.g, kPage.b);
    b.rect(framed(16, 16, 624, 464, kPanel, kFrame, 3), "panel", "panel-ID");
    b.rect(framed(16, 420, 624, 464, kHeader, kFrame, 1), "header", "header-ID");
    b.text(caption(150, 442, "TANK FARM - LINE 2", 20, kFrame, kBold), "title", "title-ID");
    b.beginGroup(3, "status", "status-ID");
    for (int i = 0; i < 3; ++i) {
        float x = 540 + 26 * i;
        b.rect(framed(x, 434, x + 16, 450, kFrame, kDark, 1), "status light", "status-light-ID");
    }
    b.endGroup();

    b.beginGroup(2, "instruments", "instruments-ID");
    lampRow(b);
    gauges(b);
    b.endGroup();

    clippedScreen(b);

    // Warning strip: yellow diagonal hatching over black.
    b.rect(filled(40, 40, 360, 80, kDark), "strip", "strip-ID");
    RectFields hatch = filled(40, 40, 360, 80, kYellow);
    hatch.fillStyle = 23;
    b.rect(hatch, "hatch", "hatch-ID");

    // The tanks' levels as internal variables, which hold the value they start with.
    SourceFields levels;
    levels.id = 5;
    for (int i = 0; i < 4; ++i)
        levels.variables.push_back(
            {KR_VAR_FLOAT, "level" + std::to_string(i + 1), std::to_string(int(kTankLevels[i])), {}});
    b.dataSection({levels});
    return b.bytes();
}

// A 16 x 16 picture: red grows to the right, green upwards, with a blue half on the right.
ImageFields gradientImage(float x0, float y0)
{
    const int side = 16;
    ImageFields s;
    s.x0 = x0;
    s.y0 = y0;
    s.x1 = x0 + 64;
    s.y1 = y0 + 64;
    s.width = side;
    s.height = side;
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            s.pixels.push_back(uint8_t(column * 17));
            s.pixels.push_back(uint8_t(row * 17));
            s.pixels.push_back(column < side / 2 ? 0 : 255);
            s.pixels.push_back(255);
        }
    }
    return s;
}

// A dial three groups deep: the clipped gauge group holds the dial face, its needle and label,
// and a hub group whose innermost group holds the hub and the pointer.
void dial(ViewBuilder& b)
{
    b.beginGroup(6, "gauge", "gauge-ID");
    CircleFields face;
    face.x = 560;
    face.y = 440;
    b.circle(face, "dial", "dial-ID");

    CircleFields sweep = face;
    sweep.start = 0.5f;
    sweep.end = 2.6f;
    sweep.fillOn = 0;
    sweep.strokeWidth = 4;
    ActionFields turn = action(2, KR_ACTION_ARC_END, "speed", 0, 200, 29, 149);
    turn.limit = 1;
    turn.cg = KR_POS_LOWER_RIGHT;
    b.actions({turn}).arc(sweep, "sweep", "sweep-ID");

    LineFields needle;
    needle.x1 = 560;
    needle.y1 = 440;
    needle.x2 = 600;
    needle.y2 = 470;
    needle.strokeWidth = 3;
    b.line(needle, "needle", "needle-ID");

    TextFields label;
    label.x = 560;
    label.y = 400;
    label.text = "km/h";
    label.fontSize = 14;
    label.textSize = 14;
    ActionFields readout = action(3, KR_ACTION_TEXT, "speed", 0, 1, 0, 1);
    readout.format = "%5.1f km/h";
    b.actions({readout}).text(label, "label", "label-ID");

    b.beginGroup(1, "hub", "hub-ID");
    b.beginGroup(2, "core", "core-ID");
    b.rect(filled(552, 432, 568, 448, kDark), "cap", "cap-ID");
    PolyFields pointer;
    pointer.closed = 1;
    pointer.fillOn = 1;
    pointer.points = {{0, 556, 448}, {1, 564, 448}, {2, 560, 470}};
    b.cpoly(pointer, "pointer", "pointer-ID");
    b.endGroup();
    b.endGroup();

    b.scissor(500, 380, 620, 500, "dial window");
    b.endGroup();
}

using NamedView = std::pair<std::string, std::vector<uint8_t>>;

// The old source code of internal variables, in files of revisions 1.00 to 1.10.
constexpr int kOldInternalCode = 7;
constexpr int kLastWithOldSources = 110;
constexpr int kPresentRevision = 303;

// Written at `revision`, of the form major * 100 + minor: older revisions leave out what they lacked.
std::vector<uint8_t> everyKind(int revision = kPresentRevision)
{
    ViewBuilder b(revision / 100, revision % 100);
    b.page(0, 0, 640, 520, kPage.r, kPage.g, kPage.b);

    ActionFields alarm = action(1, KR_ACTION_STROKE_COLOR, "alarm", 0, 2, 0, 2);
    alarm.blocks[KR_THRESHOLDS_COLOR] = thresholds(0, 2, {threshold(0, 1, 0, kGreen), threshold(1, 2, 1, kRed)});
    alarm.blocks[KR_THRESHOLDS_BLINK] = thresholds(0, 2, {threshold(1, 2, 3, kRed)});
    b.actions({alarm}).rect(framed(16, 16, 624, 504, kPanel, kFrame, 2), "backdrop", "backdrop-ID");

    GraphFields trend;
    trend.x = 40;
    trend.y = 300;
    trend.width = 380;
    trend.height = 180;
    trend.ymin = 0;
    trend.ymax = 200;
    ActionFields trace = action(4, KR_ACTION_GRAPH, "speed", 0, 200, 0, 200);
    trace.var2 = "clock";
    b.actions({trace}).graph(trend, "trend", "trend-ID");

    dial(b);

    PolyFields history;
    history.points = {{0, 40, 200}, {1, 120, 260}, {2, 200, 220}, {3, 280, 270}};
    b.polyline(history, "history", "history-ID");

    b.image(gradientImage(460, 220), "logo", "logo-ID");

    ButtonFields start;
    start.x0 = 40;
    start.y0 = 40;
    start.x1 = 160;
    start.y1 = 80;
    start.state = 1;
    b.actions({action(5, KR_ACTION_BUTTON_STATE, "running", 0, 1, 0, 1)}).button(start, "start", "start-ID");

    SliderFields level;
    level.x = 300;
    level.y = 120;
    level.width = 20;
    level.height = 160;
    b.slider(level, "level", "level-ID");

    PolyFields warning;
    warning.closed = 1;
    warning.fillOn = 1;
    warning.fill[0] = kAmber.r;
    warning.fill[1] = kAmber.g;
    warning.fill[2] = kAmber.b;
    warning.fillStyle = 23;
    warning.points = {{0, 380, 60}, {1, 440, 160}, {2, 500, 60}};
    // The alarm widens the outline and shows the triangle, each by its own threshold block.
    ActionFields widen = action(6, KR_ACTION_STROKE_WIDTH, "alarm", 0, 2, 0, 2);
    widen.blocks[KR_THRESHOLDS_WIDTH] = thresholds(0, 2, {threshold(1, 2, 5, kRed)});
    ActionFields show = action(7, KR_ACTION_VISIBLE, "alarm", 0, 2, 0, 2);
    show.blocks[KR_THRESHOLDS_VISIBLE] = thresholds(0, 2, {threshold(0, 1, 0, kLampOff), threshold(1, 2, 1, kAmber)});
    b.actions({widen, show}).cpoly(warning, "warning", "warning-ID");

    // A plug-in's source that isn't installed here: the view keeps what it stored.
    SourceFields link;
    link.id = 77;
    link.dataParams = {{502, "localhost"}, {1, "udp"}, {0, "250 ms"}};
    SourceFields values;
    values.id = 2;
    values.varParamCount = 2;
    values.variables = {{KR_VAR_FLOAT, "speed", "0", {{3, "sensor A"}, {1, "km/h"}}},
                        {KR_VAR_INT32, "alarm", "0", {{4, "sensor B"}}},
                        {KR_VAR_TEXT, "running", "no", {}}};
    if (revision <= kLastWithOldSources) {
        // No plug-ins yet: the values are internal variables.
        OldSourceFields internal;
        internal.code = kOldInternalCode;
        internal.variables = {{KR_VAR_FLOAT, "speed"}, {KR_VAR_INT32, "alarm"}, {KR_VAR_TEXT, "running"}};
        b.oldDataSection({internal});
    } else {
        b.dataSection({link, values});
    }
    return b.bytes();
}

// A symbol library of three symbols, each with its label; "Öl" in Latin-1, as the editors that
// wrote these libraries stored it.
std::string symbols()
{
    return "SYMBOL-NR. 1\nBEZUGSPUNKT_X 20 BEZUGSPUNK_Y 20\n"
           "KREIS\nX1 20 Y1 20 RADIUS 18 RGB-Farbe 0 0 128\n"
           "POLYGON\nX1 12 Y1 10 X2 32 Y2 20 RGB-Farbe 0 0 128\n"
           "POLYGON\nX1 32 Y1 20 X2 12 Y2 30 RGB-Farbe 0 0 128\n"
           "POLYGON\nX1 12 Y1 30 X2 12 Y2 10 RGB-Farbe 0 0 128\n"
           "TEXT\nX1 0 Y1 -14 Font 2 RGB-Farbe 0 0 0 CHARACTER Pumpe\n"
           "SYMBOL-NR. 2\nBEZUGSPUNKT_X 80 BEZUGSPUNK_Y 20\n"
           "POLYGON\nX1 60 Y1 8 X2 100 Y2 32 RGB-Farbe 128 0 0\n"
           "POLYGON\nX1 100 Y1 32 X2 100 Y2 8 RGB-Farbe 128 0 0\n"
           "POLYGON\nX1 100 Y1 8 X2 60 Y2 32 RGB-Farbe 128 0 0\n"
           "POLYGON\nX1 60 Y1 32 X2 60 Y2 8 RGB-Farbe 128 0 0\n"
           "VEKTOR\nX1 80 Y1 20 X2 80 Y2 44 RGB-Farbe 0 0 0\n"
           "RECHTECK\nX1 72 Y1 44 X2 88 Y2 50 RGB-Farbe 0 0 0 GESTRICHELT\n"
           "TEXT\nX1 60 Y1 -14 Font 2 RGB-Farbe 0 0 0 CHARACTER Ventil\n"
           "SYMBOL-NR. 3\nBEZUGSPUNKT_X 150 BEZUGSPUNK_Y 25\n"
           "GEF. RECHTECK\nX1 130 Y1 0 X2 170 Y2 30 RGB-Farbe 200 160 0\n"
           "RECHTECK\nX1 130 Y1 0 X2 170 Y2 50 RGB-Farbe 0 0 0\n"
           "KREIS_BOGEN\nX1 150 Y1 50 RADIUS 20 Winkelanfang[Grad] 270 Winkelende[GRAD] 90 RGB-Farbe 0 0 0\n"
           "TEXT\nX1 142 Y1 -14 Font 2 RGB-Farbe 0 0 0 CHARACTER \xd6l\n";
}

// The revisions of examples/legacy/: the first of 1.x, the first with pictures, the first that
// stores a graph's font, and the last before fill styles.
const int kLegacyRevisions[] = {100, 107, 203, 301};

std::string revisionName(int revision)
{
    char name[16];
    std::snprintf(name, sizeof name, "%d.%02d", revision / 100, revision % 100);
    return name;
}

std::vector<NamedView> legacyViews()
{
    std::vector<NamedView> views;
    for (int revision : kLegacyRevisions)
        views.emplace_back("legacy/everykind-" + revisionName(revision) + ".k2d", everyKind(revision));
    const std::string library = symbols();
    views.emplace_back("legacy/symbols.sym", std::vector<uint8_t>(library.begin(), library.end()));
    return views;
}

// A view that is mostly its sources: constants, internal variables, the example plug-in's
// variables, and a source whose plug-in isn't installed, to show how a view copes with that.
std::vector<uint8_t> sources()
{
    ViewBuilder b;
    b.page(0, 0, 320, 200, kPage.r, kPage.g, kPage.b);
    b.rect(framed(8, 8, 312, 192, kPanel, kFrame, 2), "panel", "panel-ID");
    b.rect(framed(8, 160, 312, 192, kHeader, kFrame, 1), "header", "header-ID");

    SourceFields constants;
    constants.id = 2;
    constants.varParamCount = 1;
    constants.variables = {{KR_VAR_FLOAT, "CONST_PI", "", {{0, "3.5"}}},
                           {KR_VAR_UINT8, "CONST_BYTE", "", {{0, "300"}}}};
    SourceFields internal;
    internal.id = 5;
    internal.variables = {{KR_VAR_INT32, "INT_MASK", "0x1F", {}}, {KR_VAR_FLOAT, "INT_LEVEL", "", {}}};
    // The example plug-in: Run blocks for the first parameter's milliseconds; each variable's
    // list parameter picks what it gives: 0 Run calls, 1 the last Set value, 2 the thread's name.
    SourceFields example;
    example.id = 100;
    example.dataParams = {{0, "0"}, {0, "sample"}};
    example.varParamCount = 1;
    example.variables = {{KR_VAR_INT32, "EX_RUNS", "", {{0, ""}}}, {KR_VAR_FLOAT, "EX_LAST_SET", "", {{1, ""}}},
                         {KR_VAR_TEXT, "EX_THREAD", "", {{2, ""}}}};
    SourceFields missing;
    missing.id = 999;
    missing.variables = {{KR_VAR_FLOAT, "OUTSIDE_VALUE", "", {}}};
    b.dataSection({constants, internal, example, missing});
    return b.bytes();
}

// The page, a framed panel and a header bar with the title: the frame of every instrument panel.
void panelFrame(ViewBuilder& b, float width, float height, const char* title)
{
    b.page(0, 0, width, height, kPage.r, kPage.g, kPage.b);
    b.rect(framed(10, 10, width - 10, height - 10, kPanel, kFrame, 2), "panel", "panel-ID");
    b.rect(framed(10, height - 50, width - 10, height - 10, kHeader, kFrame, 1), "header", "header-ID");
    b.text(caption(width / 2, height - 30, title, 20, kFrame, kBold), "title", "title-ID");
}

// An Auto variable: wave form, frequency item (3: 0.1 Hz, 4: 0.2 Hz), MIN, MAX. The date and the
// time are text, and take no range.
VariableFields autoVariable(const char* name, int wave, int frequency, const char* min, const char* max,
                            int type = KR_VAR_FLOAT)
{
    return {type, name, "", {{wave, ""}, {frequency, ""}, {0, min}, {0, max}}};
}

// A pointer action on `var`: on which event it works, how it writes and over which range.
ActionFields pointerAction(int id, const char* var, int what, int mode, float min, float max, int clamp = 0,
                           float inc = 1)
{
    ActionFields a = action(id, KR_ACTION_INPUT, var, 0, 1, 0, 1);
    a.mouseAction = what, a.mouseMode = mode, a.mouseMin = min, a.mouseMax = max, a.mouseClamp = clamp;
    a.mouseInc = inc;
    return a;
}

// The panel that moves, on test signals of the Auto source: a needle on a sine, a bar that
// fills with a triangle wave, a lamp that changes colour with the sine, an arc gauge on a saw
// tooth and an alarm that blinks while a square wave is high. Each instrument has its scale,
// its unit and its value in digits below it. The bar also shows a setpoint, an internal variable
// that hosts set, or the pointer on the bar.
std::vector<uint8_t> live()
{
    ViewBuilder b;
    panelFrame(b, 640, 400, "AUTO SOURCE TEST SIGNALS");

    // A sine in volts on a dial whose upper half is the scale.
    sineDialFace(b, 150, 190, 1.1f, 104, 80);
    b.text(caption(150, 150, "SIN  V", 14, kFrame), "dial unit", "dial-unit-ID");
    sineDialNeedle(b, 150, 190, 65, 0.08f, "SIN");
    readout(b, "dial readout", 150, 50, 8, 18, shown(7, "SIN", "%6.3f V"));

    // A triangle wave as the level of a bar, in per cent.
    levelBar(b, 320, 370, 100, 300, 2, "TRIANGLE");
    barScale(b, "bar scale", 314, 100, 300, 5, 1, 0, 100, "%.0f");
    b.text(caption(345, 320, "LEVEL  %", 14, kFrame), "bar unit", "bar-unit-ID");
    readout(b, "bar readout", 345, 50, 7, 18, shown(8, "TRIANGLE", "%5.1f %%", 0, 1, 0, 100));
    // A setpoint that the host sets, or the pointer: a press or a drag over the bar puts it at
    // that height. The marker beside the bar, stored at 0 %, rides on it.
    RectFields area = filled(320, 100, 370, 300, kCyan);
    area.fillOn = 0;
    b.actions({pointerAction(10, "SETPOINT", KR_MOUSE_ACTION_MOVEY, KR_MOUSE_MODE_SET, 0, 100, 1)})
        .rect(area, "setpoint area", "setpoint-area-ID");
    PolyFields marker;
    marker.closed = 1, marker.fillOn = 1, marker.strokeWidth = 1;
    setColour(marker.fill, kYellow);
    setColour(marker.stroke, kFrame);
    marker.points = {{0, 372, 100}, {1, 384, 94}, {2, 384, 106}};
    b.actions({action(11, KR_ACTION_MOVE_Y, "SETPOINT", 0, 100, 0, 200)}).cpoly(marker, "setpoint", "setpoint-ID");

    // A saw tooth as the end of an arc that sweeps the upper half, in per cent.
    CircleFields gauge;
    gauge.x = 515, gauge.y = 170;
    gauge.matrix[0] = gauge.matrix[3] = 0.7f;
    gauge.start = 3.1415927f, gauge.end = 6.2831855f;
    setColour(gauge.fill, kGreen);
    setColour(gauge.stroke, kFrame);
    CircleFields face = gauge;
    setColour(face.fill, kDark);
    setColour(face.stroke, kBezel);
    b.arc(face, "gauge face", "gauge-face-ID");
    // SAW 0..1 sweeps the end from the left, over the top, to the right: 180..360 degrees.
    b.actions({action(4, KR_ACTION_ARC_END, "SAW", 0, 1, 180, 360)}).arc(gauge, "gauge", "gauge-ID");
    dialScale(b, "gauge scale", 515, 170, 84, 98, 180, 0, 5, 1, 0, 100, "%.0f");
    b.text(caption(515, 150, "SAW  %", 14, kFrame), "gauge unit", "gauge-unit-ID");
    readout(b, "gauge readout", 515, 115, 7, 18, shown(9, "SAW", "%5.1f %%", 0, 1, 0, 100));

    const CircleFields lamp = disc(450, 50, 0.25f, kLampOff, kBezel);
    ActionFields lampColour = action(3, KR_ACTION_FILL_COLOR, "SIN", 0, 1, 0, 1);
    lampColour.blocks[KR_THRESHOLDS_COLOR] =
        thresholds(-1, 1, {threshold(-1, -0.3f, 0, kGreen), threshold(-0.3f, 0.5f, 0, kAmber), threshold(0.5f, 1, 0, kRed)});
    b.actions({lampColour}).circle(lamp, "lamp", "lamp-ID");

    ActionFields alarmColour = action(5, KR_ACTION_FILL_COLOR, "ALARM", 0, 1, 0, 1);
    alarmColour.blocks[KR_THRESHOLDS_COLOR] =
        thresholds(0, 1, {threshold(0, 0.5f, 0, kLampOff), threshold(0.5f, 1, 0, kRed)});
    ActionFields alarmBlink = action(6, KR_ACTION_BLINK, "ALARM", 0, 1, 0, 1);
    alarmBlink.blocks[KR_THRESHOLDS_BLINK] =
        thresholds(0, 1, {threshold(0, 0.5f, 0, kRed), threshold(0.5f, 1, 3, kRed)});
    b.actions({alarmColour, alarmBlink}).rect(framed(500, 32, 610, 68, kLampOff, kFrame, 2), "alarm", "alarm-ID");
    b.text(caption(555, 50, "ALARM", 14, kFrame, kBold), "alarm caption", "alarm-caption-ID");

    SourceFields signals;
    signals.id = 1;
    signals.varParamCount = 4;
    signals.variables = {autoVariable("SIN", 0, 4, "-1.0", "1.0"), autoVariable("TRIANGLE", 4, 3, "0.0", "1.0"),
                         autoVariable("SAW", 5, 4, "0.0", "1.0"), autoVariable("ALARM", 7, 3, "0.0", "1.0")};
    SourceFields host;
    host.id = KRD_TYPE_INTERNAL;
    host.variables = {{KR_VAR_FLOAT, "SETPOINT", "50", {}}};
    b.dataSection({signals, host});
    return b.bytes();
}

// A round lamp of `side` x `side` pixels: white in the middle, darker towards the rim, and
// transparent outside the circle, its edge faded over a pixel, so that only the disc takes the
// tint of its element.
ImageFields lampPicture(float x0, float y0, float size, int side)
{
    ImageFields s;
    s.x0 = x0, s.y0 = y0, s.x1 = x0 + size, s.y1 = y0 + size;
    s.width = s.height = side;
    const float middle = float(side - 1) / 2, radius = float(side) / 2 - 1;
    for (int row = 0; row < side; ++row)
        for (int column = 0; column < side; ++column) {
            const float d = std::hypot(float(column) - middle, float(row) - middle), r = std::min(d / radius, 1.0f);
            const uint8_t grey = uint8_t(r < 0.5f ? 255 : 255 - (r - 0.5f) * 2 * 140);
            const uint8_t alpha = uint8_t(255 * std::clamp(radius + 0.5f - d, 0.0f, 1.0f));
            s.pixels.insert(s.pixels.end(), {grey, grey, grey, alpha});
        }
    return s;
}

// A framed section of a panel, with its name in the upper left corner.
void section(ViewBuilder& b, const char* name, float x0, float y0, float x1, float y1, float nameWidth)
{
    RectFields frame = framed(x0, y0, x1, y1, kPanel, kBezel, 1);
    frame.fillOn = 0;
    b.rect(frame, name, (std::string(name) + "-ID").c_str());
    b.text(caption(x0 + 6 + nameWidth / 2, y1 - 12, name, 11, kBezel, kBold), "section name", "section-name-ID");
}

// Readouts of the Auto source's signals: a sine and random numbers in boxes aligned left, centre
// and right; the date and the time; a fixed and a turned label; a marker that rides a winding
// track on a saw tooth; and a lamp picture that the sine tints green, amber or red.
std::vector<uint8_t> readouts()
{
    ViewBuilder b;
    panelFrame(b, 640, 480, "READOUTS");
    readout(b, "date", 470, 450, 11, 14, shown(1, "DATE", ""));
    readout(b, "time", 575, 450, 8, 14, shown(2, "TIME", ""));

    // The same values in three boxes each: a value shorter than the box keeps its anchor.
    section(b, "ALIGNMENT", 20, 268, 470, 414, 70);
    const struct {
        const char* name;
        int align;
        float x;
    } columns[] = {{"LEFT", KR_POS_LEFT, 168}, {"CENTRE", KR_POS_CENTRE, 286}, {"RIGHT", KR_POS_RIGHT, 404}};
    for (const auto& column : columns) {
        b.text(caption(column.x, 385, column.name, 12, kFrame), "heading", "heading-ID");
        readout(b, "sine", column.x, 352, 9, 18, shown(3, "SIN", "%6.2f"), column.align);
        readout(b, "random", column.x, 300, 9, 18, shown(4, "RANDOM", "%.3f"), column.align);
    }
    b.text(caption(66, 358, "SIN", 14, kFrame), "sine name", "sine-name-ID");
    b.text(caption(66, 340, "kPa", 11, kBezel), "sine unit", "sine-unit-ID");
    b.text(caption(66, 300, "RANDOM", 14, kFrame), "random name", "random-name-ID");

    // The sine tints the lamp: green while low, amber in the middle, red while high.
    section(b, "LAMP", 480, 268, 620, 414, 34);
    ActionFields tint = action(5, KR_ACTION_FILL_COLOR, "SIN", 0, 1, 0, 1);
    tint.blocks[KR_THRESHOLDS_COLOR] =
        thresholds(0, 200, {threshold(0, 60, 0, kGreen), threshold(60, 140, 0, kAmber), threshold(140, 200, 0, kRed)});
    b.actions({tint}).image(lampPicture(502, 282, 96, 32), "lamp", "lamp-ID");

    // The track winds across the section. The marker is stored on its last point; the saw tooth
    // takes it to the first at each start, and along to the last in ten seconds.
    section(b, "TRACK", 20, 60, 620, 258, 46);
    PolyFields track;
    track.points.clear();
    track.strokeWidth = 3;
    setColour(track.stroke, kBezel);
    for (int i = 0; i <= 24; ++i) {
        const double along = i / 24.0;
        track.points.push_back({i, snap(60 + 360 * along), snap(150 + 60 * std::sin(along * 3 * 6.283185307179586))});
    }
    b.polyline(track, "track", "track-ID");
    ActionFields ride = action(6, KR_ACTION_MOVE_ALONG_POLYLINE, "SAW 1", 0, 1, 0, 1);
    ride.translatePoly = "track";
    b.actions({ride}).rect(framed(413, 143, 427, 157, kAmber, kDark, 1), "marker", "marker-ID");
    TextFields turned = caption(40, 150, "POSITION", 14, kFrame);
    turned.matrix[0] = 0, turned.matrix[1] = -1, turned.matrix[2] = 1, turned.matrix[3] = 0; // a quarter turn
    b.text(turned, "turned label", "turned-label-ID");
    b.text(caption(530, 200, "ALONG THE TRACK", 12, kFrame), "position name", "position-name-ID");
    readout(b, "position", 530, 170, 7, 18, shown(7, "SAW 1", "%5.1f %%", 0, 1, 0, 100));

    TextFields fixed = caption(320, 35, "AUTO DATA  SIN 0.1 Hz  RANDOM  SAW 1 0.1 Hz", 14, kFrame);
    fixed.fontFamily = "Courier [fixed]";
    b.text(fixed, "source line", "source-line-ID");

    SourceFields signals;
    signals.id = 1;
    signals.varParamCount = 4;
    signals.variables = {autoVariable("SIN", 0, 3, "0", "200"), autoVariable("RANDOM", 8, 3, "-1", "1"),
                         autoVariable("SAW 1", 5, 3, "0", "1"), autoVariable("DATE", 10, 0, "0.0", "0.0", KR_VAR_TEXT),
                         autoVariable("TIME", 11, 0, "0.0", "0.0", KR_VAR_TEXT)};
    b.dataSection({signals});
    return b.bytes();
}

// ---------------------------------------------------------------- strip charts

// A graph in the panel's colours: a dark ground, a light outline with ticks and labels, a dim grid.
// The stored ranges are those of the signals, which the stopped view shows; running, it scales
// itself to the samples.
GraphFields chart(int type, float x, float y, float width, float height, float rate, int samples)
{
    GraphFields g;
    g.type = type;
    g.x = x, g.y = y, g.width = width, g.height = height;
    g.ymin = -1, g.ymax = 1, g.xmin = 0, g.xmax = 1;
    g.rate = rate;
    g.samples = samples;
    setColour(g.background, kDark);
    setColour(g.outline, kFrame);
    setColour(g.grid, kLampOff);
    g.fontSize = 12;
    return g;
}

// The levels at which a time trace changes its pen: green, amber above 0.5, red and wider above 0.8.
constexpr float kAmberAbove = 0.5f, kRedAbove = 0.8f;

ActionFields levelTrace(int id, const char* var)
{
    ActionFields trace = action(id, KR_ACTION_GRAPH, var, 0, 1, 0, 1);
    trace.blocks[KR_THRESHOLDS_COLOR] = thresholds(
        -1, 1, {threshold(-1, kAmberAbove, 0, kGreen), threshold(kAmberAbove, kRedAbove, 0, kAmber),
                threshold(kRedAbove, 1, 0, kRed)});
    trace.blocks[KR_THRESHOLDS_WIDTH] =
        thresholds(-1, 1, {threshold(-1, kRedAbove, 2, kGreen), threshold(kRedAbove, 1, 4, kRed)});
    return trace;
}

// The key to the pens: a swatch of each colour and the levels it stands for.
void penKey(ViewBuilder& b, float x, float y)
{
    const struct {
        Colour colour;
        const char* levels;
    } pens[] = {{kGreen, "UP TO 0.5"}, {kAmber, "0.5 TO 0.8"}, {kRed, "ABOVE 0.8, WIDER"}};
    // An estimate of the caption's width, capitals and digits, to set it just right of its swatch.
    constexpr float kAdvance = 0.55f;
    b.beginGroup(6, "pen key", "pen-key-ID");
    for (const auto& pen : pens) {
        b.rect(framed(x, y - 6, x + 12, y + 6, pen.colour, kDark, 1), "swatch", "swatch-ID");
        const float width = kAdvance * 12 * float(std::strlen(pen.levels));
        b.text(caption(x + 20 + width / 2, y, pen.levels, 12, kFrame), "levels", "levels-ID");
        x += 150;
    }
    b.endGroup();
}

// The height of the windows that the sliders and the tape show through.
constexpr float kWindow = 200;

// A slider whose knob follows `var` from `from` to `to` up its groove, with a scale on the left, its
// name above and its value below; its actions take `id` and the next. The knob sits in the middle of the slider and moves only with the
// whole slider, so the groove is twice as long as the window it shows through: the group's scissor
// keeps it to the window, and the groove seems to stand while the knob moves.
void fader(ViewBuilder& b, const char* name, float x, float y, int id, const char* var, float from, float to)
{
    constexpr float kHalfWidth = 12, kKnob = 12;
    const float travel = kWindow / 2 - kKnob - 2;
    const std::string group = std::string(name) + " slider";
    b.beginGroup(2, group.c_str(), (group + "-ID").c_str());
    b.scissor(x - kHalfWidth, y - kWindow / 2, x + kHalfWidth, y + kWindow / 2, "slider window");
    SliderFields slider;
    slider.x = x, slider.y = y;
    slider.width = 2 * kHalfWidth, slider.height = 2 * kWindow;
    setColour(slider.face, kBezel);
    setColour(slider.dark, kDark);
    setColour(slider.light, kFrame);
    slider.bevelWidth = 3;
    slider.knobHalfSize = kKnob;
    ActionFields ride = action(id, KR_ACTION_MOVE_Y, var, from, to, -travel, travel);
    ride.limit = 1;
    b.actions({ride}).slider(slider, "slider", "slider-ID");
    b.endGroup();
    barScale(b, "slider scale", x - kHalfWidth - 4, y - travel, y + travel, 5, 1, from, to, "%.1f");
    b.text(caption(x, y + kWindow / 2 + 25, name, 14, kFrame), "slider name", "slider-name-ID");
    readout(b, "slider readout", x, y - kWindow / 2 - 35, 7, 18, shown(id + 1, var, "%6.3f"));
}

// SIN read off a tape that scrolls behind a fixed pointer. The tape is four times as long as its
// window, 400 pixels to the unit; the group's scissor shows only the part in the window.
void tape(ViewBuilder& b, float x, float y)
{
    constexpr float kHalfWidth = 60, kPerUnit = 400;
    const float x0 = x - kHalfWidth, y0 = y - kWindow / 2, x1 = x + kHalfWidth, y1 = y + kWindow / 2;
    b.beginGroup(3, "tape window", "tape-window-ID");
    b.scissor(x0, y0, x1, y1, "tape clip");
    b.rect(filled(x0, y0, x1, y1, kDark), "tape ground", "tape-ground-ID");
    // Stored with 0 at the pointer; SIN -1..1 moves it from 400 pixels up to 400 down, so that
    // the value stands at the pointer.
    b.beginGroup(1, "tape", "tape-ID");
    barScale(b, "tape scale", x1 - 20, y - kPerUnit, y + kPerUnit, 9, 1, -1, 1, "%.2f");
    b.actions({action(8, KR_ACTION_MOVE_Y, "SIN", -1, 1, kPerUnit, -kPerUnit)}).endGroup();
    b.endGroup();
    RectFields bezel = framed(x0 - 2, y0 - 2, x1 + 2, y1 + 2, kBezel, kBezel, 2);
    bezel.fillOn = 0;
    b.rect(bezel, "tape frame", "tape-frame-ID");
    LineFields hairline;
    hairline.x1 = x0, hairline.y1 = y, hairline.x2 = x1, hairline.y2 = y;
    hairline.strokeWidth = 1;
    setColour(hairline.stroke, kYellow);
    b.line(hairline, "hairline", "hairline-ID");
    PolyFields pointer;
    pointer.closed = 1, pointer.fillOn = 1, pointer.strokeOn = 0;
    setColour(pointer.fill, kYellow);
    pointer.points = {{0, x1 + 4, y}, {1, x1 + 18, y + 8}, {2, x1 + 18, y - 8}};
    b.cpoly(pointer, "pointer", "pointer-ID");
    b.text(caption(x, y1 + 25, "SIN ON A TAPE", 14, kFrame), "tape name", "tape-name-ID");
    readout(b, "tape readout", x, y0 - 35, 7, 18, shown(9, "SIN", "%6.3f"));
}

// Strip charts on the Auto source's signals: a time graph of a sine and of random numbers held
// for half a second, their pens changing at levels; an xy graph of the sine against a faster
// triangle wave; the same two signals on sliders, and the sine on a tape scrolling in a window.
std::vector<uint8_t> stripChart()
{
    ViewBuilder b;
    panelFrame(b, 1024, 768, "STRIP CHARTS - AUTO SOURCE SIGNALS");

    section(b, "TIME GRAPH", 20, 385, 1004, 706, 78);
    b.text(caption(290, 680, "SIN 0.2 Hz  AND  RANDOM, EACH HELD 0.5 s", 14, kFrame), "time caption",
           "time-caption-ID");
    penKey(b, 560, 680);
    ActionFields held = levelTrace(2, "RANDOM");
    held.filter = KR_FILTER_TIME;
    held.filterTime = 0.5f;
    b.actions({levelTrace(1, "SIN"), held}).graph(chart(0, 80, 430, 900, 230, 25, 250), "time graph",
                                                    "time-graph-ID");

    section(b, "XY GRAPH", 20, 20, 360, 370, 64);
    b.text(caption(205, 335, "SIN UP, TRIANGLE 0.5 Hz ACROSS", 12, kFrame), "xy caption", "xy-caption-ID");
    ActionFields figure = action(3, KR_ACTION_GRAPH, "SIN", 0, 1, 0, 1);
    figure.var2 = "TRIANGLE";
    figure.blocks[KR_THRESHOLDS_COLOR] = thresholds(-1, 1, {threshold(-1, 1, 0, kCyan)});
    figure.blocks[KR_THRESHOLDS_WIDTH] = thresholds(-1, 1, {threshold(-1, 1, 2, kCyan)});
    // Ten seconds of samples, the common period of the two waves: the figure closes on itself.
    b.actions({figure}).graph(chart(1, 75, 70, 260, 240, 25, 250), "xy graph", "xy-graph-ID");

    section(b, "SLIDERS", 370, 20, 690, 370, 56);
    fader(b, "SIN", 480, 200, 4, "SIN", -1, 1);
    fader(b, "TRIANGLE", 610, 200, 6, "TRIANGLE", 0, 1);

    section(b, "TAPE", 700, 20, 1004, 370, 34);
    tape(b, 850, 200);

    SourceFields signals;
    signals.id = 1;
    signals.varParamCount = 4;
    signals.variables = {autoVariable("SIN", 0, 4, "-1.0", "1.0"), autoVariable("TRIANGLE", 4, 5, "0.0", "1.0"),
                         autoVariable("RANDOM", 8, 0, "0.0", "1.0")};
    b.dataSection({signals});
    return b.bytes();
}

// ---------------------------------------------------------------- fed by another process

// The sources that take values from another process, and the Calculator, by type number, and
// the items of their list parameters that the feed panel picks.
constexpr int kShmSource = 3, kUdpSource = 4, kCalculatorSource = 6;
constexpr int kBigEndian = 0, kAutoLoadOn = 1;
// What korel2d-feed writes by default: its segment's key and the port of its datagrams.
const char* const kFeedKey = "0x4b324446";
const char* const kFeedPort = "47020";

// A value read at `offset` of a segment or a datagram.
VariableFields atOffset(int type, const char* name, int offset)
{
    return {type, name, "", {{0, std::to_string(offset)}}};
}

// A readout of a count with its name above it.
void counter(ViewBuilder& b, const char* name, float x, int id, const char* var)
{
    b.text(caption(x, 80, name, 12, kFrame), "counter name", "counter-name-ID");
    readout(b, "counter", x, 52, 8, 18, shown(id, var, "%d"));
}

// The panel of korel2d-feed: the sine of its segment on a needle, the ramp of its datagrams as
// a bar, the count of writes from each, and a lamp that a Calculator lights while the sine is
// above 0.8. The segment's directory names its variables, and the source rebuilds its list from
// it at each start, before the actions bind by name; the three are stored with their offsets
// all the same, so that the file makes sense without the segment.
std::vector<uint8_t> feed()
{
    ViewBuilder b;
    panelFrame(b, 640, 400, "KOREL2D-FEED: SHARED MEMORY AND UDP");

    section(b, "SHARED MEMORY", 20, 20, 250, 340, 101);
    b.text(caption(135, 306, std::string("KEY ") + kFeedKey + "  BIG ENDIAN", 11, kFrame), "segment key",
           "segment-key-ID");
    sineDialFace(b, 135, 180, 0.9f, 85, 64);
    b.text(caption(135, 145, "SINE", 14, kFrame), "dial name", "dial-name-ID");
    sineDialNeedle(b, 135, 180, 50, 0.07f, "SINE");
    counter(b, "COUNTER", 135, 2, "COUNTER");

    section(b, "UDP DATAGRAMS", 260, 20, 450, 340, 101);
    b.text(caption(355, 306, std::string("PORT ") + kFeedPort + "  BIG ENDIAN", 11, kFrame), "datagram port",
           "datagram-port-ID");
    levelBar(b, 340, 390, 100, 270, 3, "UDP_RAMP");
    barScale(b, "bar scale", 334, 100, 270, 5, 1, 0, 1, "%.2f");
    b.text(caption(365, 284, "UDP_RAMP", 14, kFrame), "bar name", "bar-name-ID");
    counter(b, "UDP_COUNTER", 355, 4, "UDP_COUNTER");

    section(b, "CALCULATOR", 460, 20, 620, 340, 78);
    b.text(caption(540, 306, "HIGH = SINE > 0.8", 11, kFrame), "expression", "expression-ID");
    CircleFields lamp = disc(540, 190, 0.35f, kLampOff, kBezel);
    lamp.strokeWidth = 3;
    ActionFields light = action(5, KR_ACTION_FILL_COLOR, "HIGH", 0, 1, 0, 1);
    light.blocks[KR_THRESHOLDS_COLOR] = thresholds(0, 1, {threshold(0, 0.5f, 0, kLampOff), threshold(0.5f, 1, 0, kRed)});
    b.actions({light}).circle(lamp, "lamp", "lamp-ID");
    b.text(caption(540, 140, "HIGH", 14, kFrame), "lamp name", "lamp-name-ID");

    SourceFields segment;
    segment.id = kShmSource;
    segment.dataParams = {{0, kFeedKey}, {kBigEndian, ""}, {kAutoLoadOn, ""}, {0, ""}};
    segment.varParamCount = 1;
    segment.variables = {atOffset(KR_VAR_FLOAT, "SINE", 120), atOffset(KR_VAR_FLOAT, "RAMP", 184),
                         atOffset(KR_VAR_INT32, "COUNTER", 248)};
    SourceFields datagrams;
    datagrams.id = kUdpSource;
    datagrams.dataParams = {{0, kFeedPort}, {0, "64"}, {kBigEndian, ""}};
    datagrams.varParamCount = 1;
    datagrams.variables = {atOffset(KR_VAR_FLOAT, "UDP_SINE", 0), atOffset(KR_VAR_FLOAT, "UDP_RAMP", 4),
                           atOffset(KR_VAR_INT32, "UDP_COUNTER", 8)};
    // After the segment's source, so that HIGH follows the sine in the same data cycle.
    SourceFields calculator;
    calculator.id = kCalculatorSource;
    calculator.varParamCount = 2;
    calculator.variables = {{KR_VAR_INT32, "HIGH", "", {{0, "SINE > 0.8"}, {0, ""}}}};
    b.dataSection({segment, datagrams, calculator});
    return b.bytes();
}

// ---------------------------------------------------------------- worked by the pointer

// A button from (x0, y0) to (x1, y1) worked by `actions`, its label on its face. The label has
// no action of its own, so the pointer goes through it to the button.
void pushButton(ViewBuilder& b, const char* name, float x0, float y0, float x1, float y1, const char* label,
                const std::vector<ActionFields>& actions)
{
    ButtonFields button;
    button.x0 = x0, button.y0 = y0, button.x1 = x1, button.y1 = y1;
    setColour(button.face, kBezel);
    b.actions(actions).button(button, name, (std::string(name) + "-ID").c_str());
    b.text(caption((x0 + x1) / 2, (y0 + y1) / 2, label, label[1] ? 14 : 24, kFrame, kBold), "label", "label-ID");
}

// Controls that write internal variables, each value shown in digits below: buttons that step a
// counter from 0 to 9 and round again, a button held down while pressed and a switch that stays
// in, both showing it on their faces, a slider knob that follows the pointer along its groove,
// and a knob that turns with the pointer round its centre.
std::vector<uint8_t> controls()
{
    ViewBuilder b;
    panelFrame(b, 800, 400, "CONTROLS - WORKED BY THE POINTER");

    section(b, "STEPPER", 20, 20, 200, 340, 60);
    pushButton(b, "minus", 40, 200, 100, 260, "-", {pointerAction(1, "COUNT", KR_MOUSE_ACTION_PRESS, KR_MOUSE_MODE_DEC, 0, 9)});
    pushButton(b, "plus", 120, 200, 180, 260, "+", {pointerAction(2, "COUNT", KR_MOUSE_ACTION_PRESS, KR_MOUSE_MODE_INC, 0, 9)});
    readout(b, "count readout", 110, 110, 1, 40, shown(3, "COUNT", "%d"), KR_POS_CENTRE);

    section(b, "BUTTONS", 210, 20, 400, 340, 60);
    pushButton(b, "push", 225, 200, 300, 260, "PUSH",
               {pointerAction(4, "PUSH", KR_MOUSE_ACTION_PRESS, KR_MOUSE_MODE_SET, 0, 1),
                pointerAction(5, "PUSH", KR_MOUSE_ACTION_RELEASE, KR_MOUSE_MODE_SET, 0, 1, 0, 0),
                action(6, KR_ACTION_BUTTON_STATE, "PUSH", 0, 1, 0, 1)});
    pushButton(b, "switch", 310, 200, 385, 260, "ON/OFF",
               {pointerAction(7, "SWITCH", KR_MOUSE_ACTION_PRESS, KR_MOUSE_MODE_INC, 0, 1),
                action(8, KR_ACTION_BUTTON_STATE, "SWITCH", 0, 1, 0, 1)});
    readout(b, "push readout", 262, 110, 1, 40, shown(9, "PUSH", "%d"), KR_POS_CENTRE);
    readout(b, "switch readout", 347, 110, 1, 40, shown(10, "SWITCH", "%d"), KR_POS_CENTRE);

    // The groove takes the pointer: dragged, LEVEL follows the travel from where it was, a
    // groove's length from -1 to 1, and stops at the ends. The knob on it lets the pointer
    // through and rides on LEVEL.
    section(b, "SLIDER", 410, 20, 600, 340, 52);
    constexpr float kGrooveX0 = 430, kGrooveX1 = 580, kGrooveY = 230, kKnob = 10;
    b.actions({pointerAction(11, "LEVEL", KR_MOUSE_ACTION_MOVEX, KR_MOUSE_MODE_INC, -1, 1, 1)})
        .rect(framed(kGrooveX0, kGrooveY - 6, kGrooveX1, kGrooveY + 6, kDark, kBezel, 1), "groove", "groove-ID");
    const float middle = (kGrooveX0 + kGrooveX1) / 2, half = (kGrooveX1 - kGrooveX0) / 2;
    ActionFields ride = action(12, KR_ACTION_MOVE_X, "LEVEL", -1, 1, -half, half);
    ride.limit = 1;
    b.actions({ride}).rect(framed(middle - kKnob, kGrooveY - 20, middle + kKnob, kGrooveY + 20, kBezel, kFrame, 2),
                           "slider knob", "slider-knob-ID");
    readout(b, "level readout", middle, 110, 5, 30, shown(13, "LEVEL", "%5.2f"), KR_POS_CENTRE);

    // Turned round its centre by the pointer, the short way each time, and round again past 360.
    section(b, "KNOB", 610, 20, 780, 340, 40);
    constexpr float kKnobX = 695, kKnobY = 230;
    const CircleFields knob = disc(kKnobX, kKnobY, 0.5f, kBezel, kFrame);
    b.actions({pointerAction(14, "ANGLE", KR_MOUSE_ACTION_ROTATE, KR_MOUSE_MODE_INC, 0, 360)})
        .circle(knob, "knob", "knob-ID");
    LineFields mark;
    mark.x1 = kKnobX, mark.y1 = kKnobY, mark.x2 = kKnobX, mark.y2 = kKnobY + 45;
    mark.strokeWidth = 4;
    setColour(mark.stroke, kYellow);
    ActionFields turn = action(15, KR_ACTION_ROTATE, "ANGLE", 0, 1, 0, 1);
    turn.cg = KR_POS_BOTTOM;
    b.actions({turn}).line(mark, "knob mark", "knob-mark-ID");
    readout(b, "angle readout", kKnobX, 110, 5, 30, shown(16, "ANGLE", "%5.1f"), KR_POS_CENTRE);

    SourceFields internal;
    internal.id = KRD_TYPE_INTERNAL;
    internal.variables = {{KR_VAR_INT32, "COUNT", "0", {}}, {KR_VAR_INT32, "PUSH", "0", {}},
                          {KR_VAR_INT32, "SWITCH", "0", {}}, {KR_VAR_FLOAT, "LEVEL", "0", {}},
                          {KR_VAR_FLOAT, "ANGLE", "0", {}}};
    b.dataSection({internal});
    return b.bytes();
}

// ---------------------------------------------------------------- seed corpus


ViewBuilder seedPage(int revision = kPresentRevision)
{
    ViewBuilder b(revision / 100, revision % 100);
    b.page(0, 0, 200, 150, kPage.r, kPage.g, kPage.b);
    return b;
}

PolyFields closedPoly()
{
    PolyFields p;
    p.closed = p.fillOn = 1;
    return p;
}

// Each element kind alone on a page, written at `revision`.
std::vector<NamedView> kindSeeds(int revision = kPresentRevision)
{
    const struct {
        const char* name;
        void (*add)(ViewBuilder&);
    } kinds[] = {
        {"rect", [](ViewBuilder& b) { b.rect(framed(10, 10, 90, 60, kAmber, kFrame, 2)); }},
        {"group", [](ViewBuilder& b) { b.beginGroup(2).rect(RectFields()).scissor(0, 0, 50, 50).endGroup(); }},
        {"graph", [](ViewBuilder& b) { b.graph(GraphFields()); }},
        {"polyline", [](ViewBuilder& b) { b.polyline(PolyFields()); }},
        {"cpoly", [](ViewBuilder& b) { b.cpoly(closedPoly()); }},
        {"circle", [](ViewBuilder& b) { b.circle(CircleFields()); }},
        {"arc", [](ViewBuilder& b) { b.arc(CircleFields()); }},
        {"text", [](ViewBuilder& b) { b.text(TextFields()); }},
        {"line", [](ViewBuilder& b) { b.line(LineFields()); }},
        {"image", [](ViewBuilder& b) { b.image(gradientImage(10, 10)); }},
        {"button", [](ViewBuilder& b) { b.button(ButtonFields()); }},
        {"slider", [](ViewBuilder& b) { b.slider(SliderFields()); }},
        {"bodiless", [](ViewBuilder& b) { b.bodiless(9); }},
    };
    std::vector<NamedView> seeds;
    for (const auto& kind : kinds) {
        ViewBuilder b = seedPage(revision);
        kind.add(b);
        if (revision <= kLastWithOldSources)
            b.oldDataSection({});
        else
            b.dataSection();
        seeds.emplace_back(std::string("kind-") + kind.name, b.bytes());
    }
    return seeds;
}

// An action of `type` on every kind an action may move, with two entries in each threshold block.
std::vector<uint8_t> actionSeed(int type)
{
    ActionFields a = action(1, type, "level", 0, 1, 0, 1);
    a.format = "%5.1f";
    for (ThresholdBlockFields& block : a.blocks)
        block = thresholds(0, 1, {threshold(0, 0.5f, 0, kGreen), threshold(0.5f, 1, 1, kRed)});
    ViewBuilder b = seedPage();
    b.actions({a}).rect(RectFields()).actions({a}).cpoly(closedPoly()).actions({a}).arc(CircleFields());
    b.actions({a}).line(LineFields()).actions({a}).text(TextFields()).actions({a}).graph(GraphFields());
    b.actions({a}).slider(SliderFields()).actions({a}).button(ButtonFields());
    b.beginGroup(1).rect(RectFields()).actions({a}).endGroup();
    SourceFields internal;
    internal.id = 5;
    internal.variables = {{0, "level", "0.5", {}}};
    return b.dataSection({internal}).bytes();
}

// Internal variables of every type code, each moving a rectangle.
std::vector<uint8_t> everyTypeSeed()
{
    constexpr int kTypeCodes = KR_VAR_TEXT + 1;
    SourceFields internal;
    internal.id = 5;
    ViewBuilder b = seedPage();
    for (int type = 0; type < kTypeCodes; ++type) {
        const std::string name = "v" + std::to_string(type);
        internal.variables.push_back({type, name, "1", {}});
        b.actions({action(type, KR_ACTION_MOVE_X, name.c_str(), 0, 1, 0, 1)}).rect(RectFields());
    }
    return b.dataSection({internal}).bytes();
}

// For the harness of segments and datagrams, whose first byte picks the case (1: a segment, 2:
// its directory read): a segment of the feeder's layout, its first bytes holding the offsets
// that its variables take, one per type, and its directory the feeder's names.
std::vector<uint8_t> segmentSeed()
{
    constexpr uint8_t kSegmentWithDirectory = 1 | 2;
    std::vector<uint8_t> image(4 * kKshmEntrySize);
    const std::vector<KshmEntry> directory = {{"SINE", kKshmFloat}, {"RAMP", kKshmFloat}, {"COUNTER", kKshmInt32}};
    writeKshmDirectory(image.data(), image.size(), directory);
    for (int type = 0; type <= KR_VAR_TEXT; ++type) {
        const uint32_t offset = uint32_t(KshmSegment::valueOffset(type % 3)) + uint32_t(type / 3);
        std::memcpy(&image[size_t(type) * sizeof offset], &offset, sizeof offset);
    }
    image.insert(image.begin(), kSegmentWithDirectory);
    return image;
}

// Outline texts of the path element, for its harness: every command, absolute and relative,
// curves that reflect their control points, arcs of both flags, a chord past the step bound.
std::vector<NamedView> pathSeeds()
{
    const std::string texts[] = {"M 0 0 L 10 0 l 5 5 H 3 h 2 V 4 v 1 Z", "M10,20C0,10 10,10 10,0S20,-5 20,0s5 5 10 0",
                                 "m 5 5 Q 5 5 10 0 T 20 0 q 1 1 2 0 t 4 4 z",
                                 "M 0 0 A 5 5 30 1 0 10 0 a 1 2 -45 0 1 -3 4 M 1e9 0 c 0 0 0 0 -1e9 0"};
    std::vector<NamedView> seeds;
    for (const std::string& text : texts)
        seeds.emplace_back("path-" + std::to_string(seeds.size()), std::vector<uint8_t>(text.begin(), text.end()));
    return seeds;
}

std::vector<NamedView> seedViews()
{
    constexpr int kActionTypes = KR_ACTION_BLINK + 1;
    std::vector<NamedView> seeds = kindSeeds();
    for (int type = 0; type < kActionTypes; ++type)
        seeds.emplace_back("action-" + std::to_string(type), actionSeed(type));
    seeds.emplace_back("source-every-type", everyTypeSeed());
    seeds.emplace_back("segment-directory", segmentSeed());
    const std::vector<NamedView> paths = pathSeeds();
    seeds.insert(seeds.end(), paths.begin(), paths.end());
    return seeds;
}

// The binary samples that also ship in XML form.
const char* const kXmlSamples[] = {"everykind", "sources"};

// Each XML sample cut in half, with every attribute a huge negative number, and with its data
// section twice: start points for the fuzzer away from the well-formed files. Read from the
// working directory, the output directory once writeXmlForms has run.
std::vector<NamedView> xmlSeeds()
{
    std::vector<NamedView> seeds;
    for (const char* name : kXmlSamples) {
        std::ifstream in(std::string(name) + ".xml", std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        std::string huge;
        size_t at = 0;
        for (size_t open, close; (open = text.find("=\"", at)) != std::string::npos &&
                                 (close = text.find('"', open + 2)) != std::string::npos;
             at = close + 1)
            huge += text.substr(at, open - at) + "=\"-9e99\"";
        huge += text.substr(at);
        const size_t first = text.find("<data"), after = text.find("<definition");
        std::string twice = text;
        if (first != std::string::npos && after != std::string::npos)
            twice.insert(first, text, first, after - first);
        const std::pair<const char*, std::string> damaged[] = {
            {"cut", text.substr(0, text.size() / 2)}, {"huge", huge}, {"twice", twice}};
        for (const auto& [what, bytes] : damaged)
            seeds.emplace_back(std::string("xml-") + name + "-" + what, std::vector<uint8_t>(bytes.begin(), bytes.end()));
    }
    return seeds;
}

// An 8 x 8 tile of four coloured quarters, RGBA, compressed and in Base64 as a "bitmap" holds it.
std::string tileData()
{
    constexpr int side = 8;
    const uint8_t quarters[4][4] = {{230, 60, 40, 255}, {250, 200, 40, 255}, {40, 150, 80, 255}, {40, 90, 200, 255}};
    std::vector<uint8_t> pixels;
    for (int row = 0; row < side; ++row)
        for (int column = 0; column < side; ++column) {
            const uint8_t* colour = quarters[(row < side / 2 ? 0 : 2) + (column < side / 2 ? 0 : 1)];
            pixels.insert(pixels.end(), colour, colour + 4);
        }
    uLongf packedSize = compressBound(pixels.size());
    std::vector<uint8_t> packed(packedSize);
    compress(packed.data(), &packedSize, pixels.data(), pixels.size());
    std::string text(size_t(Base64::getSize(int(packedSize))), '\0');
    Base64::encode(packed.data(), &text[0], int(packedSize), 0);
    return text;
}

// Written as text, the way a person writes a view by hand: a closed outline of two curves and an
// arc with an open wave beside it in one "path", a "circle", and one picture in two places.
std::string handmade()
{
    return R"(<?xml version="1.0" ?>
<Korel2D version="3.4">
    <header date="24.05.2008" name="handmade.xml" x="0" y="0" width="400" height="300" pagecolor="#203040ff" />
    <definition>
        <stroke name="solid" id="1" factor="1" data="0xffff" />
        <stroke name="dashed" id="2" factor="2" data="0x0f0f" />
        <pattern name="full" id="3" data=")" +
           std::string(170, '/') + R"(8=" />
        <font name="label" id="4" type="truetype" family="Arial" size="18" bold="true" italic="false" underline="false" />
        <bitmap name="tile" id="5" width="8" height="8" compression="zlib" data=")" +
           tileData() + R"(" />
    </definition>
    <geometry>
        <path name="outline" stroke="#ffd040ff" stroke-width="3" stroke-style="1" fill="#406080ff" fill-style="3"
              path="M 40 160 C 60 260 140 260 160 160 A 60 40 0 0 0 40 160 Z M 200 160 Q 230 240 260 160 T 320 160" />
        <circle name="dot" x="330" y="70" r="40" start="0" end="360" stroke="#ffffffff" stroke-width="2" stroke-style="2"
                fill="#c03030ff" fill-style="3" />
        <group name="pictures" x="20" y="10">
            <rect name="tile" bitmap="5" x="50" y="60" width="64" height="64" fill="#ffffffff" fill-style="3" mask="false" />
            <rect name="tile-turned" bitmap="5" x="170" y="60" width="96" height="48"
                  matrix="0.866025 0.5 -0.5 0.866025 0 0" fill="#ffffffff" fill-style="3" mask="false" />
        </group>
        <text name="title" x="200" y="280" align="center" text="made by hand" stroke="#ffffffff" fill="#ffffffff"
              fill-style="3" font="4" />
    </geometry>
</Korel2D>
)";
}

bool writeFile(const std::string& path, const std::vector<uint8_t>& bytes)
{
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) {
        std::fprintf(stderr, "korel2d-samples: cannot create %s: %s\n", path.c_str(), std::strerror(errno));
        return false;
    }
    bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !written) {
        std::fprintf(stderr, "korel2d-samples: cannot write %s\n", path.c_str());
        return false;
    }
    return true;
}

// The XML forms are what the library's own reader and writer make of the binary files, so that
// they say exactly what the binary ones do: this is why the generator links the library. They
// are written from the output directory under their bare names, as the header keeps the name
// they were saved under and the files must not depend on where they were made.
bool writeXmlForms(const std::string& dir)
{
    if (chdir(dir.c_str()) != 0) {
        std::fprintf(stderr, "korel2d-samples: cannot enter %s: %s\n", dir.c_str(), std::strerror(errno));
        return false;
    }
    for (const char* name : kXmlSamples) {
        const std::string binary = std::string(name) + ".k2d", xml = std::string(name) + ".xml";
        VIEW_STRUCT view = {};
        const bool loaded = loadFile(binary.c_str(), &view.elements, &view.dataTypes, &view) == 0;
        if (loaded)
            saveFileXml(xml.c_str(), view.elements, view.dataTypes, &view);
        elementDeleteAll(&view.elements);
        while (view.dataTypes)
            delDataType(&view.dataTypes, view.dataTypes, 0);
        if (!loaded || access(xml.c_str(), R_OK) != 0) {
            std::fprintf(stderr, "korel2d-samples: cannot turn %s/%s into XML\n", dir.c_str(), binary.c_str());
            return false;
        }
        std::printf("wrote %s/%s\n", dir.c_str(), xml.c_str());
    }
    return true;
}

bool makeDirectory(const std::string& path)
{
    if (mkdir(path.c_str(), 0755) == 0 || errno == EEXIST)
        return true;
    std::fprintf(stderr, "korel2d-samples: cannot make %s: %s\n", path.c_str(), std::strerror(errno));
    return false;
}

bool writeViews(const std::string& dir, const std::vector<NamedView>& views)
{
    for (const auto& [name, bytes] : views) {
        const std::string path = dir + "/" + name;
        if (!writeFile(path, bytes))
            return false;
        std::printf("wrote %s\n", path.c_str());
    }
    return true;
}

// The bytes after the header: the magic text and the two revision numbers.
constexpr size_t kHeaderSize = 38;

int writeReaderSeeds(const std::string& dir, char** revisions, int count)
{
    if (!makeDirectory(dir))
        return 1;
    for (int i = 0; i < count; ++i) {
        const int revision = std::atoi(revisions[i]);
        const std::string generation = "g" + std::to_string(revision);
        std::vector<NamedView> views = kindSeeds(revision);
        views.emplace_back("everykind", everyKind(revision));
        for (auto& [name, bytes] : views)
            name = generation + "/" + name, bytes.erase(bytes.begin(), bytes.begin() + kHeaderSize);
        if (!makeDirectory(dir + "/" + generation) || !writeViews(dir, views))
            return 1;
    }
    const std::string library = symbols();
    return makeDirectory(dir + "/symbols") &&
                   writeViews(dir, {{"symbols/symbols.sym", {library.begin(), library.end()}}})
               ? 0
               : 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc >= 3 && std::strcmp(argv[1], "--reader-seeds") == 0)
        return writeReaderSeeds(argv[2], argv + 3, argc - 3);
    const bool withSeeds = argc == 3 && std::strcmp(argv[1], "--seeds") == 0;
    if (argc != 2 && !withSeeds) {
        std::fprintf(stderr, "usage: korel2d-samples [--seeds] OUTPUT_DIR | --reader-seeds OUTPUT_DIR REVISION...\n");
        return 2;
    }
    const std::string dir = argv[argc - 1];
    std::vector<NamedView> views = {
        {"panel.k2d", panel()}, {"everykind.k2d", everyKind()}, {"sources.k2d", sources()}, {"live.k2d", live()},
        {"readouts.k2d", readouts()}, {"stripchart.k2d", stripChart()}, {"feed.k2d", feed()},
        {"controls.k2d", controls()}};
    const std::vector<NamedView> legacy = legacyViews();
    views.insert(views.end(), legacy.begin(), legacy.end());
    if (withSeeds) {
        std::vector<NamedView> seeds = seedViews();
        views.insert(views.end(), seeds.begin(), seeds.end());
    }
    if (!makeDirectory(dir + "/legacy") || !writeViews(dir, views))
        return 1;
    const std::string handmadeText = handmade();
    if (!writeFile(dir + "/handmade.xml", std::vector<uint8_t>(handmadeText.begin(), handmadeText.end())))
        return 1;
    std::printf("wrote %s/handmade.xml\n", dir.c_str());
    if (!writeXmlForms(dir))
        return 1;
    if (withSeeds)
        for (const auto& [name, bytes] : xmlSeeds()) {
            if (!writeFile(name, bytes))
                return 1;
            std::printf("wrote %s/%s\n", dir.c_str(), name.c_str());
        }
    return 0;
}
