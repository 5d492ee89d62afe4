// Running views move: values written by the host between frames reach the screen through the
// actions of each element, drawn for real in mode 1 (one data cycle per draw).
#include "PluginDirs.h"
#include "ViewFixture.h"
#include "actionViews.h"
#include "actions/actions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

using namespace k2dtest;
using namespace korelgen;

constexpr Rgb kBlack{0, 0, 0}, kRed{255, 0, 0}, kWhite{255, 255, 255};

// A source of the sample plug-in, or of one of its variants, with one float variable.
SourceFields pluginSource(int id, const char* name)
{
    return {id, {{0, "0"}, {0, ""}}, 1, {{KR_VAR_FLOAT, name, "", {{1, ""}}}}};
}

class Animation : public ViewTest {
protected:
    // Loads and starts in mode 1 with the variables of `source`.
    void start(ViewBuilder& b, const SourceFields& source)
    {
        view = load(b.dataSection({source}));
        ASSERT_NE(view, nullptr);
        EXPECT_EQ(krViewStart(view), 0);
    }
    // The same with float variables of the internal source.
    void start(ViewBuilder& b, const std::vector<std::string>& names)
    {
        std::vector<VariableFields> variables;
        for (const std::string& name : names)
            variables.push_back({KR_VAR_FLOAT, name, "", {}});
        start(b, internalSource(variables));
    }
    void set(const char* name, float value) { EXPECT_EQ(krVarSet(view, name, &value), 1) << name; }
    Frame frameWith(const char* name, float value) { return set(name, value), draw(view); }
    std::string shown(const char* name)
    {
        char text[256];
        krVarGetStr(view, name, text);
        return text;
    }

    VIEW_STRUCT* view = nullptr;
};

// Red over all of [x0, x1) x [y0, y1) but its outermost pixels, and nowhere a pixel beyond.
void expectRedBox(const Frame& f, int x0, int y0, int x1, int y1)
{
    EXPECT_EQ(f.count(x0 + 1, y0 + 1, x1 - 1, y1 - 1, kRed), (x1 - x0 - 2) * (y1 - y0 - 2));
    EXPECT_LE(f.count(0, 0, kSurfaceWidth, kSurfaceHeight, kRed), (x1 - x0 + 2) * (y1 - y0 + 2));
}

// An action on a variable that doesn't exist is left out, with a word in the log, whatever its
// mapping would make of a zero; the others act.
TEST_F(Animation, TranslationsAndScalesPlaceTheElement)
{
    ActionFields missing = act(KR_ACTION_MOVE_X, "nosuch");
    missing.b0 = 5, missing.b1 = 6;
    setLogLevel(1);
    const struct { int type, cg; float value; int x0, y0, x1, y1; } cases[] = {
        {KR_ACTION_MOVE_X, 0, 50, 130, 80, 170, 120},            // by v in x
        {KR_ACTION_MOVE_Y, 0, 30, 80, 110, 120, 150},            // by v in y
        {KR_ACTION_MOVE_X_RELATIVE, 0, 0.5f, 100, 80, 140, 120}, // by v widths
        {KR_ACTION_MOVE_Y_RELATIVE, 0, -1, 80, 40, 120, 80},     // by v heights
        {KR_ACTION_MOVE_X_ABSOLUTE, 0, 200, 180, 80, 220, 120},  // to x = v
        {KR_ACTION_MOVE_Y_ABSOLUTE, 0, 50, 80, 30, 120, 70},     // to y = v
        {KR_ACTION_SCALE_X, 7, 2, 80, 80, 160, 120},             // wider about the lower left corner
        {KR_ACTION_SCALE_Y, 7, 2, 80, 80, 120, 160},             // taller about it
        {KR_ACTION_SCALE_XY, 7, 0.5f, 80, 80, 100, 100},         // both about it
        {KR_ACTION_SCALE_XY, 9, 2, 60, 60, 140, 140},            // both about the centre
        {KR_ACTION_SCALE_XY, 3, 0.5f, 100, 100, 120, 120},       // both about the upper right corner
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("type " + std::to_string(c.type) + " cg " + std::to_string(c.cg));
        ViewBuilder b = blackPage();
        takeLog();
        start(b.actions({missing, act(c.type, "v", c.cg)}).rect(square()), {"v"});
        EXPECT_NE(takeLog().find("error: var <nosuch> not found\n"), std::string::npos);
        expectRedBox(frameWith("v", c.value), c.x0, c.y0, c.x1, c.y1);
    }
}

TEST_F(Animation, ColourThresholdsPickByStrictLowerLimitAndKeepAlpha)
{
    RectFields r = square();
    r.fill[3] = 0.8f; // drawn over black: each channel at 80 %
    ActionFields colour = act(KR_ACTION_FILL_COLOR, "level");
    colour.blocks[KR_THRESHOLDS_COLOR].entries = {entry(0, 0, 1, 0, 0), entry(10, 0, 0, 1, 0), entry(20, 0, 0, 0, 1)};
    ViewBuilder b = blackPage();
    start(b.actions({colour}).rect(r), {"level"});
    const Rgb first{204, 0, 0}, second{0, 204, 0}, third{0, 0, 204};
    const std::pair<float, Rgb> cases[] = {{5, first}, {10, first}, {10.5f, second}, {25, third}, {-1, first}};
    for (const auto& [value, expected] : cases)
        EXPECT_TRUE(PixelIs(frameWith("level", value), 100, 100, expected)) << "value " << value;
}

// Set on a group, the width and the style reach the outline of its child.
TEST_F(Animation, WidthAndStyleThresholdsOfAGroupChangeTheOutline)
{
    const RectFields r{100, 100, 300, 200, 1, 1, 0, {1, 1, 1, 1}, 0};
    ActionFields width = act(KR_ACTION_STROKE_WIDTH, "w");
    width.blocks[KR_THRESHOLDS_WIDTH].entries = {entry(0, 1), entry(10, 9)};
    ActionFields style = act(KR_ACTION_STROKE_STYLE, "s");
    style.blocks[KR_THRESHOLDS_STYLE].entries = {entry(0, 0), entry(10, 2)};
    ViewBuilder b = blackPage();
    b.beginGroup(1).rect(r);
    b.actions({width, style}).endGroup();
    start(b, {"w", "s"});
    set("s", 0);
    // Rows lit across the lower edge at x = 200.
    EXPECT_LE(frameWith("w", 5).count(200, 90, 201, 110, kWhite), 2);
    EXPECT_GE(frameWith("w", 15).count(200, 90, 201, 110, kWhite), 8);
    // Along the upper edge: solid, then with gaps.
    set("w", 5);
    EXPECT_GE(frameWith("s", 5).count(110, 199, 290, 201, kWhite), 175);
    const int lit = frameWith("s", 15).count(110, 199, 290, 201, kWhite);
    EXPECT_TRUE(lit > 20 && lit < 160) << lit;
}

TEST_F(Animation, VisibilityHidesAGroupWithEverythingBelowIt)
{
    ActionFields visible = act(KR_ACTION_VISIBLE, "show");
    visible.blocks[KR_THRESHOLDS_VISIBLE].entries = {entry(0, 1), entry(10, 0)};
    ViewBuilder b = blackPage();
    b.beginGroup(2).rect(box(20, 20, 60, 60)).beginGroup(1).rect(box(200, 200, 240, 240)).endGroup();
    b.actions({visible}).endGroup(); // a group's record closes at its end
    start(b, {"show"});
    for (float value : {5.0f, 15.0f, 5.0f}) // both squares, or neither
        EXPECT_EQ(frameWith("show", value).count(0, 0, kSurfaceWidth, kSurfaceHeight, kRed), value < 10 ? 3200 : 0)
            << value;
}

// Angles run clockwise from the right: a needle turns about its end, and an arc from 0 to 180
// degrees sweeps the lower half of a disc. A level fills a bar from below.
TEST_F(Animation, NeedleArcEndAndFillLevelFollowTheirValues)
{
    const LineFields needle{160, 280, 240, 280, 3, 0, {1, 1, 1, 1}};
    const CircleFields disc{100, 150, {0.5f, 0, 0, 0.5f}, 0, 6.2831855f, 0, 2, 0, {1, 1, 1, 1}, 1, {1, 0, 0, 1}};
    const PolyFields bar{1, 0, 3, 0, {1, 1, 1, 1}, 1, {0, 1, 0, 1}, 0, 0,
                         {{0, 250, 50}, {1, 350, 50}, {2, 350, 250}, {3, 250, 250}}};
    ViewBuilder b = blackPage();
    b.actions({act(KR_ACTION_ROTATE, "angle", 8)}).line(needle).actions({act(KR_ACTION_ARC_END, "end")}).circle(disc);
    b.actions({act(KR_ACTION_FILL_UP, "level")}).cpoly(bar);
    start(b, {"angle", "end", "level"});
    EXPECT_TRUE(PixelIs(frameWith("angle", 0), 200, 280, kWhite));
    set("end", 180);
    set("level", 0.5f);
    Frame f = frameWith("angle", 90);
    EXPECT_TRUE(PixelIs(f, 160, 230, kWhite) && PixelIs(f, 200, 280, kBlack));
    EXPECT_TRUE(PixelIs(f, 100, 120, kRed) && PixelIs(f, 100, 180, kBlack));
    EXPECT_TRUE(PixelIs(f, 60, 140, kRed) && PixelIs(f, 60, 160, kBlack));
    // Filled up to half its height.
    const Rgb green{0, 255, 0};
    EXPECT_EQ(f.count(260, 60, 340, 146, green), 80 * 86);
    EXPECT_EQ(f.count(260, 60, 340, 240, green), f.count(260, 60, 340, 152, green));
}

// The rail stands in a sibling group, behind a closed polygon and a group of its name, neither of
// which serves; the blue marker, whose rail is missing, stays put. Drawn 50 pixels low to show y = 300.
// The start measures every polyline (those off the screen too): a fraction of the length is a
// point on it, and a single point gives nothing to move along.
TEST_F(Animation, MarkerRidesItsRailByFractionOfTheLength)
{
    PolyFields rail, bent, same, dot;
    rail.strokeOn = 0;
    rail.points = {{0, 100, 100}, {1, 300, 100}, {2, 300, 300}};
    bent.points = {{0, 0, 0}, {1, 3, 4}, {2, 3, 14}}, same.points = {{0, 5, 5}, {1, 5, 5}}, dot.points = {{0, 5, 5}};
    ActionFields ride = act(KR_ACTION_MOVE_ALONG_POLYLINE, "at"), lost = ride;
    ride.translatePoly = "rail", lost.translatePoly = "nosuch";
    const RectFields stay{45, 195, 55, 205, 0, 1, 0, {1, 1, 1, 1}, 1, {0, 0, 1, 1}}; // blue
    ViewBuilder b;
    b.page(0, 0, 400, 350, 0, 0, 0).cpoly(rail, "rail").beginGroup(1, "rail").polyline(rail, "rail").endGroup();
    b.polyline(bent, "bent").polyline(same, "same").polyline(dot, "dot");
    b.actions({ride}).rect(box(15, 15, 25, 25)).actions({lost}).rect(stay);
    setLogLevel(2);
    takeLog();
    start(b, {"at"});
    EXPECT_EQ(takeLog(), "Polygon nosuch not found !\n");
    const struct { const char* name; double at; float length, x, y; } measured[] = {
        {"bent", 1.0 / 3, 15, 3, 4}, {"bent", 0.5, 15, 3, 6.5f}, {"same", 0.5, 0, 5, 5}, {"dot", 0.5, 0, -7, -7}};
    for (const auto& m : measured) {
        ELEMENT_STRUCT* p = getPolyByName(view->elements, m.name);
        float x = -7, y = -7;
        ASSERT_EQ(getMovePolyCoord(p, &x, &y, m.at), 0) << m.name;
        EXPECT_EQ(std::vector<float>({static_cast<POLY_STRUCT*>(p->data)->length, x, y}),
                  std::vector<float>({m.length, m.x, m.y})) << m.name << " at " << m.at;
    }
    const int cases[][3] = {{-100, 100, 100}, {25, 200, 100}, {75, 300, 200}, {200, 300, 300}}; // per cent, x, y
    for (const auto& [at, x, y] : cases) {
        set("at", at / 100.0f);
        Frame f = draw(view, 0, -50);
        expectRedBox(f, x - 5, y - 55, x + 5, y - 45);
        EXPECT_EQ(f.count(46, 146, 54, 154, {0, 0, 255}), 64) << at;
    }
}

TEST_F(Animation, MappingLimitsAndFiltersShapeTheValue)
{
    ActionFields limited = act(KR_ACTION_MOVE_X, "raw");
    limited.b0 = 10, limited.b1 = 0, limited.limit = 1; // v = 10 - 10 raw, kept within 0..10
    ActionFields timed = act(KR_ACTION_MOVE_Y, "raw");
    timed.filter = KR_FILTER_TIME, timed.filterTime = 0.25f;
    ActionFields lagged = act(KR_ACTION_MOVE_Y, "raw");
    lagged.filter = KR_FILTER_LAG, lagged.filterTime = 0.1f;
    ViewBuilder b = blackPage();
    b.actions({limited}).rect(square()).actions({timed}).rect(square());
    start(b.actions({lagged}).rect(square()), {"raw"});
    const ELEMENT_STRUCT* limitedRect = view->elements;
    // Each frame counts as a step of 0.1 for the filters.
    const struct { float raw, limited, timed, lagged; } steps[] = {
        {0.25f, 7.5f, 0, 0.125f},
        {-5, 10, 0, -2.4375f},    // clamped at the upper end
        {5, 0, 5, 1.28125f},      // at the lower; 0.3 > 0.25: the time filter passes the value
        {1, 0, 5, 1.140625f},     // and holds it for the next 0.25
    };
    for (const auto& s : steps) {
        set("raw", s.raw);
        draw(view);
        SCOPED_TRACE(s.raw);
        EXPECT_FLOAT_EQ(limitedRect->pickMatrix[2], s.limited);
        EXPECT_FLOAT_EQ(limitedRect->next->pickMatrix[5], s.timed);
        EXPECT_FLOAT_EQ(limitedRect->next->next->pickMatrix[5], s.lagged);
    }
}

// Halted, the screen stands still while values go on, and catches up when it goes on; stopped,
// a view looks as before its start, whatever its actions did.
TEST_F(Animation, StoppedViewLooksAsBeforeTheStart)
{
    RectFields r = square();
    r.strokeOn = 1;
    ActionFields colour = act(KR_ACTION_STROKE_COLOR, "c");
    colour.blocks[KR_THRESHOLDS_COLOR].entries = {entry(0, 0, 0, 0, 1)};
    ActionFields hide = act(KR_ACTION_VISIBLE, "c");
    hide.visibleMode = 1, hide.visibleValue = 3;
    ViewBuilder b = blackPage();
    b.actions({act(KR_ACTION_MOVE_X, "c"), colour}).rect(r).actions({hide}).rect(box(200, 200, 240, 240));
    start(b, {"c"});
    ASSERT_EQ(krViewStop(view), 0);
    const uint64_t before = frameHash(draw(view));
    ASSERT_EQ(krViewStart(view), 0);
    const uint64_t moved = frameHash(frameWith("c", 40));
    EXPECT_NE(moved, before);
    ASSERT_EQ(krViewSetHaltMode(view, 1), 0);
    EXPECT_EQ(frameHash(frameWith("c", 140)), moved);
    EXPECT_EQ(shown("c"), "140.000000");
    ASSERT_EQ(krViewSetHaltMode(view, 0), 0);
    EXPECT_TRUE(PixelIs(draw(view), 240, 100, kRed)); // moved by 140
    ASSERT_EQ(krViewStop(view), 0);
    EXPECT_EQ(frameHash(draw(view)), before);
}

// A variable that a mouse action writes gets Set calls before its source's Get, so a host's
// write reaches the plug-in and comes back; without such an action the plug-in's Get wins.
TEST_F(Animation, InputActionsMakeVariablesReadWrite)
{
    PluginDirs dirs(PluginDirs::Home::PluginDir);
    for (bool withInput : {true, false}) {
        ViewBuilder b = blackPage();
        if (withInput)
            b.actions({act(KR_ACTION_INPUT, "lastSet")});
        start(b.rect(square()), pluginSource(100, "lastSet"));
        frameWith("lastSet", 7.5f);
        EXPECT_EQ(shown("lastSet"), withInput ? "7.500000" : "0.000000") << withInput;
        krViewStop(view);
    }
}

// With a plug-in whose variables are its globals, a written value goes out in the next cycle,
// once: the cycle after it brings the plug-in's own value back (half its count of Runs).
TEST_F(Animation, WrittenGlobalGoesOutOnce)
{
    PluginDirs dirs;
    dirs.copy(PluginDirs::Place::HomeBin, variant("globals", "libKrdGlobals.so"));
    ViewBuilder b = blackPage();
    b.actions({act(KR_ACTION_INPUT, "exampleGlobalFloat")}).rect(square());
    start(b, pluginSource(101, "exampleGlobalFloat"));
    putFloatData(view->elements->actions, 7.5);
    char text[256];
    for (const char* expected : {"7.500000", "1.000000"}) {
        draw(view);
        EXPECT_EQ(krVarGetStr(view, "exampleGlobalFloat", text), 0);
        EXPECT_STREQ(text, expected);
    }
}

// What an input action writes: clamped to its range, converted to the variable's type, and
// flagged for a host that polls with krVarGetStr only when the stored value changed.
TEST_F(Animation, WrittenValuesAreClampedConvertedAndFlagged)
{
    ActionFields limited = act(KR_ACTION_MOVE_X, "count");
    limited.b0 = 10, limited.b1 = 0, limited.limit = 1;
    ViewBuilder b = blackPage();
    start(b.actions({limited}).rect(square()), internalSource({{KR_VAR_INT32, "count", "", {}}}));
    const struct {
        double written;
        const char* reads;
        int flagged;
    } cases[] = {{7.9, "7", 1}, {7.2, "7", 0}, {25, "10", 1}, {-3, "0", 1}, {NAN, "0", 0}};
    char text[256];
    for (const auto& c : cases) {
        putFloatData(view->elements->actions, c.written);
        EXPECT_EQ(krVarGetStr(view, "count", text), c.flagged) << c.written;
        EXPECT_STREQ(text, c.reads) << c.written;
        EXPECT_EQ(krVarGetStr(view, "count", text), 0) << "read again after " << c.written;
    }
}

} // namespace
