// Pointer input on running views: which element an event reaches, and what the pointer's
// place writes to the variables, read back as the host reads them.
#include "KshmSegment.h"
#include "SampleFiles.h"
#include "ViewFixture.h"
#include "actionViews.h"
#include "actions/actions.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace k2dtest;
using namespace korelgen;

ActionFields mouse(const char* var, int action, int mode, float min = 0, float max = 1, int clamp = 0, float inc = 1)
{
    ActionFields a = act(KR_ACTION_INPUT, var);
    a.mouseAction = action, a.mouseMode = mode, a.mouseMin = min, a.mouseMax = max, a.mouseClamp = clamp;
    a.mouseInc = inc;
    return a;
}

const ActionFields kTap = mouse("v", KR_MOUSE_ACTION_PRESS, KR_MOUSE_MODE_SET);

class Input : public ViewTest {
protected:
    // Starts the view with float variables of the internal source and draws once, which places
    // the elements as the pointer finds them.
    void start(ViewBuilder& b, const std::vector<std::string>& names = {"v"})
    {
        std::vector<VariableFields> variables;
        for (const std::string& name : names)
            variables.push_back({KR_VAR_FLOAT, name, "", {}});
        view = load(b.dataSection({internalSource(variables)}));
        ASSERT_NE(view, nullptr);
        ASSERT_EQ(krViewStart(view), 0);
        draw(view);
    }
    // An event in view units; the name of the element that holds the pick afterwards.
    std::string event(int type, float x, float y, float zoom = 1, int button = KR_MOUSE_LEFT)
    {
        EXPECT_EQ(kriViewPickElementRun(view, type, button, x, y, zoom), 0);
        return picked();
    }
    std::string picked() { return view->pickedElement ? view->pickedElement->name : ""; }
    double value(const char* name = "v") { return *static_cast<const float*>(krVarGetAddr(view, name)); }

    VIEW_STRUCT* view = nullptr;
};

// Each case in a column of its own: the topmost element with a pointer action takes a press.
// A page at (5, 7), drawn at (10, 20) with zoom 2 into a window 480 pixels high, shows the view
// point (55, 137), the corner of "edge", at the pixel (110, 200).
TEST_F(Input, PressFindsTheTopmostElementThatTakesThePointer)
{
    ActionFields hide = act(KR_ACTION_VISIBLE, "h"), hiddenTap = kTap, rightOnly = kTap, slide = act(KR_ACTION_MOVE_X, "dx");
    hide.visibleMode = 1, hide.visibleValue = 1; // h stays 0: hidden
    hiddenTap.mouseHiddenActive = 0;
    rightOnly.mouseButton = KR_MOUSE_RIGHT;
    const LineFields line{0, 250, 100, 250};
    ViewBuilder b;
    b.page(5, 7, 400, 300, 0, 0, 0).actions({hiddenTap}).rect(box(120, 0, 140, 20), "unset");
    b.actions({kTap}).rect(box(0, 0, 20, 20), "under").actions({kTap}).rect(box(0, 0, 20, 20), "over");
    b.actions({kTap}).rect(box(30, 0, 50, 20), "below").rect(box(30, 0, 50, 20), "glass");
    b.actions({kTap}).rect(box(60, 0, 80, 20), "shown").actions({hide, hiddenTap}).rect(box(60, 0, 80, 20), "hidden");
    b.actions({kTap}).rect(box(90, 0, 110, 20), "shown2").actions({hide, kTap}).rect(box(90, 0, 110, 20), "active");
    b.beginGroup(1).actions({kTap}).rect(box(150, 0, 170, 20), "child").actions({kTap}).endGroup();
    b.beginGroup(1).actions({kTap}).rect(box(180, 0, 190, 10), "moved").actions({slide}).endGroup();
    b.actions({kTap}).rect(box(300, 0, 320, 20), "left").actions({rightOnly}).rect(box(300, 0, 320, 20), "rightOnly");
    b.actions({kTap}).line(line, "line").actions({kTap}).rect(box(55, 137, 65, 147), "edge");
    b.actions({kTap}).rect(box(55.5f, 137.5f, 65, 147), "off");
    start(b, {"v", "h", "dx"});
    const float dx = 100, zero = 0;
    krVarSet(view, "dx", &dx);
    draw(view);
    view->elements->attr.visible = 0; // "unset": hidden, but by no action
    const struct { float x, y, zoom; const char* picked; } rows[] = {
        {10, 10, 1, "over"},    {40, 10, 1, "below"},  {70, 10, 1, "shown"},    {100, 10, 1, "active"},
        {130, 10, 1, "unset"},  {160, 10, 1, "group"}, {285, 5, 1, "moved"},    {185, 5, 1, ""},
        {310, 10, 1, "rightOnly"}, {50, 254, 1, "line"}, {50, 245, 1, ""},   {50, 252.4f, 2, "line"},
        {50, 247.5f, 2, ""},    {101, 250, 1, ""},     {-0.5f, 250, 1, ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(event(KR_EVENT_PRESS, row.x, row.y, row.zoom), row.picked) << row.x << ", " << row.y;
        event(KR_EVENT_RELEASE, -1000, -1000);
    }
    krVarSet(view, "v", &zero); // the left button runs nothing on the right-button element, nor below it
    event(KR_EVENT_PRESS, 310, 10);
    EXPECT_EQ(value(), 0);
    event(KR_EVENT_RELEASE, -1000, -1000);
    window->height = 480, window->settings.zoom = 2;
    view->posX = 10, view->posY = 20;
    EXPECT_EQ(krViewEvent(window, view, KR_MOUSE_LEFT, KR_EVENT_PRESS, 110, 200), 0);
    EXPECT_EQ(picked(), "edge");
    krViewStop(view);
    EXPECT_EQ(krViewEvent(window, view, KR_MOUSE_LEFT, KR_EVENT_PRESS, 0, 0), -3);
    EXPECT_EQ(picked(), "edge");
}

// The press captures: a release elsewhere goes to the pressed element, and the element under
// the release point takes the moves that follow.
TEST_F(Input, ReleaseGoesToThePressedElementAndMovesToTheOneUnderIt)
{
    ViewBuilder b = blackPage();
    b.actions({mouse("a", KR_MOUSE_ACTION_RELEASE, KR_MOUSE_MODE_SET)}).rect(box(0, 0, 20, 20), "a");
    b.actions({mouse("b", KR_MOUSE_ACTION_RELEASE, KR_MOUSE_MODE_SET), mouse("bx", KR_MOUSE_ACTION_MOVEX_ABS, KR_MOUSE_MODE_SET)})
        .rect(box(50, 0, 70, 20), "b");
    start(b, {"a", "b", "bx"});
    const std::string picks[] = {event(KR_EVENT_PRESS, 10, 10), event(KR_EVENT_MOVE, 60, 10),
                                 event(KR_EVENT_RELEASE, 60, 10), event(KR_EVENT_MOVE, 200, 10)};
    EXPECT_EQ(picks[0] + picks[1] + picks[2] + picks[3], "aabb");
    EXPECT_EQ(std::vector<double>({value("a"), value("b"), value("bx")}), std::vector<double>({1, 0, 200}));
}

// What each event leaves in the variable, on a box 100 wide centred on (50, 50) and tall enough
// for turns far below the centre.
TEST_F(Input, PointerWritesTheVariable)
{
    using Ev = std::array<float, 3>; // event code, x, y
    constexpr float kPress = KR_EVENT_PRESS, kMove = KR_EVENT_MOVE, nan = std::numeric_limits<float>::quiet_NaN();
    const Ev click = {kPress, 50, 50}, up = {KR_EVENT_RELEASE, 50, 50};
    ActionFields flat = mouse("v", KR_MOUSE_ACTION_PRESS, KR_MOUSE_MODE_DEC, 0, 10);
    flat.b0 = flat.b1 = 4; // a mapping without slope writes its offset
    const int stepUp = KR_MOUSE_MODE_INC, stepDown = KR_MOUSE_MODE_DEC, absolute = KR_MOUSE_MODE_SET, relative = stepUp;
    const struct {
        const char* what;
        ActionFields action;
        float start;
        std::vector<Ev> events;
        std::vector<double> values;
    } rows[] = {
        {"inc wraps", mouse("v", 0, stepUp, 0, 3), 0, {click, up, click, up, click, up, click, up}, {1, 1, 2, 2, 3, 3, 0, 0}},
        {"inc clamps", mouse("v", 0, stepUp, 0, 3, 1), 0, {click, click, click, click}, {1, 2, 3, 3}},
        {"dec wraps", mouse("v", 0, stepDown, 0, 3), 0, {click}, {3}},
        {"dec clamps", mouse("v", 0, stepDown, 0, 3, 1), 0, {click}, {0}},
        {"no slope", flat, 0, {click}, {4}},
        {"movex", mouse("v", KR_MOUSE_ACTION_MOVEX, absolute, 0, 10), 0,
         {{kPress, 0, 50}, {kMove, 50, 0}, {kMove, 100, 0}, {kMove, 150, 0}}, {0, 5, 10, 15}},
        {"movexabs wraps both ways", mouse("v", KR_MOUSE_ACTION_MOVEX_ABS, relative, 0, 10), 8,
         {click, {kMove, 55, 50}, {kMove, 40, 50}}, {8, 3, 8}},
        {"movexabs clamps", mouse("v", KR_MOUSE_ACTION_MOVEX_ABS, relative, 0, 10, 1), 8, {click, {kMove, 55, 50}}, {8, 10}},
        {"rotate", mouse("v", KR_MOUSE_ACTION_ROTATE, absolute, 0, 360), 0,
         {{kPress, 50, 90}, {kMove, 90, 50}, {kMove, 50, 10}, {kMove, 10, 50}}, {0, 90, 180, 270}},
        {"rotate across the jump", mouse("v", KR_MOUSE_ACTION_ROTATE, relative, 0, 720), 100,
         {{kPress, 51, -50}, {kMove, 49, -50}, {kMove, 51, -50}}, {100, 101.146, 100}},
        {"rotate in no range", mouse("v", KR_MOUSE_ACTION_ROTATE, relative, 0, 0), 0,
         {{kPress, 51, -50}, {kMove, 49, -50}}, {0, 1.146}},
        {"nowhere", mouse("v", KR_MOUSE_ACTION_MOVEX_ABS, absolute, 0, 10), 6,
         {click, {kMove, nan, 50}, {kMove, 1e30f, nan}}, {50, 50, 50}},
    };
    for (const auto& row : rows) {
        ViewBuilder b = blackPage();
        start(b.actions({row.action}).rect(box(0, -100, 100, 200)));
        krVarSet(view, "v", &row.start);
        for (size_t i = 0; i < row.events.size(); ++i) {
            event(int(row.events[i][0]), row.events[i][1], row.events[i][2]);
            EXPECT_NEAR(value(), row.values[i], 0.01) << row.what << ", event " << i;
        }
        krViewStop(view);
    }
}

// A press reaches another process: a big-endian int32 in shared memory after a data cycle.
TEST_F(Input, PressWritesSharedMemoryInItsByteOrder)
{
    KshmSegment segment(uniqueKshmKey(40), 64);
    ASSERT_TRUE(segment.ok());
    char key[16];
    snprintf(key, sizeof key, "0x%x", unsigned(segment.key()));
    ViewBuilder b = blackPage();
    b.actions({mouse("v", KR_MOUSE_ACTION_PRESS, KR_MOUSE_MODE_SET, 0, 10, 0, 7)}).rect(box(0, 0, 100, 100));
    view = load(b.dataSection({{KRD_TYPE_SHARED_MEMORY, {{0, key}, {0, ""}, {0, ""}, {0, ""}}, 1,
                                {{KR_VAR_INT32, "v", "", {{0, "8"}}}}}}));
    ASSERT_EQ(krViewStart(view), 0);
    draw(view);
    event(KR_EVENT_PRESS, 50, 50);
    fillDP(view->dataTypes);
    EXPECT_EQ(std::vector<uint8_t>(segment.bytes() + 8, segment.bytes() + 12), std::vector<uint8_t>({0, 0, 0, 7}));
}

// Every sample takes a storm of events while it runs, drawn between batches: positions far off
// or not numbers, codes and buttons that mean nothing.
TEST_F(Input, SamplesTakeRandomEventsWhileRunning)
{
    std::mt19937 random(14);
    const float odd[] = {std::numeric_limits<float>::quiet_NaN(), 1e30f, -1e30f, std::numeric_limits<float>::infinity()};
    ASSERT_GE(samplePaths().size(), 8u);
    for (const std::string& file : samplePaths()) {
        VIEW_STRUCT* sample = krViewLoad(file.c_str());
        ASSERT_NE(sample, nullptr) << file;
        views.push_back(sample);
        ASSERT_EQ(krViewStart(sample), 0) << file;
        for (int i = 0; i < 10000; ++i) {
            if (i % 500 == 0)
                draw(sample, 0, 0, 0.5f);
            const unsigned r = random();
            const int codes[] = {KR_EVENT_PRESS, KR_EVENT_RELEASE, KR_EVENT_MOVE, int(r >> 8) - 1000};
            const float x = r % 50 == 0 ? odd[r % 4] : float(random() % 500), y = float(random() % 400) - 50;
            EXPECT_EQ(krViewEvent(window, sample, int(r >> 4) % 4, codes[(r >> 2) % 4], x, y), 0);
        }
    }
}

} // namespace
