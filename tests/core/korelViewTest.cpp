// The C++ object face: what a host's values become in the variables and what it reads back,
// how often a view drawn through a texture asks its sources, and picking and pointer events.
#include "../actions/actionViews.h"
#include "KorelView.h"
#include "PluginDirs.h"
#include "ViewFixture.h"

#include <cmath>
#include <string>
#include <variant>
#include <vector>

namespace {

using namespace k2dtest;
using namespace korelgen;
using Korel2D::KorelView;
using Value = std::variant<long, double, std::string>;

using Facade = ViewTest;

// Reads the variable the way the expected value is typed; a long starts out as kUntouched.
constexpr long kUntouched = -99;
Value readAs(KorelView& view, const std::string& name, const Value& expected)
{
    Value got = expected.index() == 0 ? Value(kUntouched) : expected.index() == 1 ? Value(0.0) : Value("");
    std::visit([&](auto& v) { EXPECT_TRUE(view.getVar(name, v)) << name; }, got);
    return got;
}

TEST_F(Facade, ValuesConvertByTheVariablesType)
{
    const std::vector<VariableFields> variables = {
        {KR_VAR_INT32, "i32", "", {}}, {KR_VAR_UINT32, "u32", "", {}}, {KR_VAR_INT64, "i64", "", {}},
        {KR_VAR_UINT64, "u64", "", {}}, {KR_VAR_FLOAT, "f", "", {}}, {KR_VAR_DOUBLE, "d", "", {}},
        {KR_VAR_TEXT, "t", "", {}}};
    // A constant holds all 64 bits of its value, which setVar can't write.
    const SourceFields constant{2, {}, 1, {{KR_VAR_INT64, "big", "", {{0, "4294967297"}}}}};
    const ViewBuilder page = blackPage().dataSection({internalSource(variables), constant});
    KorelView view;
    ASSERT_TRUE(view.load(page.bytes().data(), uint32_t(page.size())));
    EXPECT_FALSE(view.setVar("i32", 5));
    ASSERT_TRUE(view.startView(false));
    EXPECT_FALSE(view.setVar("unknown", 5));
    EXPECT_TRUE(view.setVar("t", 5)); // nothing stored, but the name is known
    const std::string cut = std::string(254, 'a') + std::string(46, 'z'), whole = std::string(253, 'a') + "b";
    const struct { const char* name; Value set, read; } rows[] = {
        {"i32", 3.7, 3L},
        {"d", 3.7, double(3.7f)},
        {"i64", 5000000000L, 705032704L},
        {"f", 5000000000L, 5e9},
        {"u64", -1L, -1L}, // sign-extended into the unsigned long too
        {"u32", 3000000000L, "-1294967296"},
        {"u32", 3000000000L, 3000000000L},
        {"i32", std::nan(""), 0L},
        {"i32", 1e20, 2147483647L},
        {"i32", std::string("-12.9"), -12L},
        {"d", std::string("0.1"), double(0.1f)},
        {"t", cut, std::string(254, 'a')},
        {"t", whole, whole},
        {"t", std::string("text"), kUntouched},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(std::visit([&](const auto& v) { return view.setVar(row.name, v); }, row.set)) << row.name;
        EXPECT_EQ(readAs(view, row.name, row.read), row.read) << row.name << " row " << &row - rows;
    }
    view.draw(false); // the constant's data cycle
    EXPECT_EQ(readAs(view, "big", "1"), Value("1"));
    EXPECT_EQ(readAs(view, "big", 0L), Value(4294967297L));
    // A second start fails, and the variables are closed to the host although the view runs on.
    EXPECT_FALSE(view.startView(false) || view.setVar("i32", 1L));
    EXPECT_TRUE(view.stopView());
    long value = kUntouched;
    EXPECT_FALSE(view.getVar("i32", value) || view.setVar("i32", 1L));
    EXPECT_EQ(value, kUntouched);
}

// Drawn through a texture, the view asks its sources in the first frames after the start and
// then only when the host forces a rendering; drawn directly, in every frame, with the page
// placed by the position and zoom in the host's matrices.
TEST_F(Facade, PlaneModeRunsTheDataCycleOnlyWhileItRenders)
{
    PluginDirs dirs;
    dirs.copy(PluginDirs::Place::HomeBin, examplePlugin());
    const SourceFields example{100, {{0, "0"}, {0, "label"}}, 1, {{KR_VAR_INT32, "EX_RUNS", "", {{0, "RUNS"}}}}};
    for (const auto mode : {Korel2D::eRenderDirect, Korel2D::eRenderPlane}) {
        const ViewBuilder page = blackPage().rect(box(0, 0, 10, 10)).dataSection({example});
        KorelView view;
        ASSERT_TRUE(view.load(page.bytes().data(), uint32_t(page.size())));
        view.setRenderMode(mode);
        view.setPosition(100.7, 50);
        view.setZoom(2);
        ASSERT_TRUE(view.startView(false));
        long runs[2] = {0, 0}; // after ten plain draws, and after one forced
        for (int frame = 0; frame < 11; ++frame) {
            view.draw(frame == 10);
            view.getVar("EX_RUNS", runs[frame / 10]);
        }
        const bool plane = mode == Korel2D::eRenderPlane;
        EXPECT_EQ(std::make_pair(runs[0], runs[1]), std::make_pair(plane ? 4L : 10L, plane ? 5L : 11L)) << "mode " << mode;
        if (plane) // how the plane is shown: planeTest
            continue;
        const Ink ink = Frame::grab().ink();
        EXPECT_EQ(ink, (Ink{ink.lit, 100, 50, 120, 70})) << ink.x0 << "," << ink.y0 << " " << ink.x1 << "," << ink.y1;
    }
}

// Picking by the resting boxes, and events at view units: an unknown button acts as the left
// one, and the release reaches the pressed element.
TEST_F(Facade, PointerFindsTheTopmostElement)
{
    ActionFields press = act(KR_ACTION_INPUT, "pressed"), release = act(KR_ACTION_INPUT, "released");
    release.mouseAction = KR_MOUSE_ACTION_RELEASE;
    ViewBuilder b = blackPage().rect(box(0, 0, 40, 40), "under").rect(box(20, 20, 60, 60), "over");
    b.actions({press, release}).button({100, 100, 180, 130}, "push");
    b.dataSection({internalSource({{KR_VAR_FLOAT, "pressed", "", {}}, {KR_VAR_FLOAT, "released", "", {}}}),
                   SourceFields{2, {}, 1, {{KR_VAR_INT32, "k", "", {}}}}});
    TempFile file(b.bytes());
    KorelView view;
    std::string name = "none";
    EXPECT_TRUE(view.getAllVars().empty());
    EXPECT_FALSE(view.draw(false) || view.getObject(30, 30, name) || view.load(file.path() + ".missing"));
    ASSERT_TRUE(view.load(file.path()));
    EXPECT_EQ(view.getAllVars(), std::vector<std::string>({"pressed", "released", "k"}));
    EXPECT_TRUE(view.getObject(30.9, 30.9, name));
    EXPECT_EQ(name, "over");
    EXPECT_FALSE(view.getObject(70, 70, name));
    EXPECT_EQ(name, "over");

    ASSERT_TRUE(view.startView(false));
    view.draw(false); // places the elements as the pointer finds them
    const struct { Korel2D::eMouseButton button; double pressed, released; } rows[] = {
        {Korel2D::eMouseLeft, 1, 1}, {Korel2D::eMouseButton(7), 1, 1}, {Korel2D::eMouseRight, 0, 0}};
    for (const auto& row : rows) {
        view.setVar("pressed", 0.0), view.setVar("released", 0.0);
        view.setEvent(row.button, Korel2D::eEventPress, 140, 115);
        view.setEvent(row.button, Korel2D::eEventRelease, -1000, -1000); // reaches the pressed element
        EXPECT_EQ(readAs(view, "pressed", 0.0), Value(row.pressed)) << "button " << row.button;
        EXPECT_EQ(readAs(view, "released", 0.0), Value(row.released)) << "button " << row.button;
    }
}

} // namespace
