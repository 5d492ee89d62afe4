// Files of every revision ever written load to the records of today. One view with every kind,
// every action type and every old source code is written at each revision and compared field by
// field with its present form, which differs only by the table of what older files lacked. Then
// the upgrades that can't be written as such a difference: fonts, texts, colour groups, clocks.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "StoredView.h"
#include "ViewFixture.h"
#include "glyph/GlyphKit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <unistd.h>

using namespace k2dtest;
using namespace korelgen;

namespace {

const int kRevisions[] = {100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112,
                          113, 114, 115, 116, 200, 201, 202, 203, 204, 300, 301, 302};

// One view as a description, written at any revision.
struct Description {
    RectFields rect;
    PolyFields polyline, cpoly;
    CircleFields circle, arc;
    LineFields line;
    ImageFields image;
    ButtonFields button;
    SliderFields slider;
    TextFields text;
    GraphFields graph;
    std::vector<ActionFields> actions; // one of each type, spread over the elements
    std::vector<SourceFields> sources;
    std::vector<OldSourceFields> oldSources;
};

ActionFields actionOfType(int type)
{
    ActionFields a;
    a.id = 100 + type, a.type = type, a.var = "a variable name of forty characters long";
    a.var2 = "second", a.a0 = 1, a.a1 = 3, a.b0 = 2, a.b1 = 5, a.limit = 1;
    a.var2A0 = 0.5f, a.var2A1 = 2, a.var2B0 = 1, a.var2B1 = 4, a.offset = 7, a.slope = 0.25f;
    a.offset2 = 3, a.slope2 = 0.75f, a.cg = 2, a.format = "%5.1f", a.filter = 1, a.filterTime = 2.5f;
    a.mouseButton = 1, a.mouseAction = 2, a.mouseMode = 1, a.mouseClamp = 1;
    a.mouseInc = 0.5f, a.mouseMin = -5, a.mouseMax = 5, a.mouseHiddenActive = 0, a.translatePoly = "rail";
    a.visibleMode = 1, a.visibleValue = 3, a.blinkClock = 5, a.groupWidth = 2.7f;
    for (int b = 0; b < 5; ++b) {
        a.blocks[b].min = float(b), a.blocks[b].max = 50.0f + float(b);
        a.blocks[b].entries = {{0, 10, b == 4 ? 1 : b + 1, {0.5f, 0.25f, 1}}, {10, 20, b == 4 ? 0 : 4, {1, 0, 0.5f}}};
    }
    return a;
}

// Every old source code with settings unlike each other, and one code no program wrote.
std::vector<OldSourceFields> oldSources()
{
    std::vector<OldSourceFields> sources;
    for (int code : {0, 1, 2, 3, 4, 5, 6, 7, 9})
        sources.push_back({code, 0x1234, 8, 0, 11, 12, 13, 0x77, 5, "device", {{1, "old", 16, 2.5f, 2, 3}}});
    return sources;
}

// What the Part's table makes of oldSources() at `revision`.
std::vector<SourceFields> oldSourcesToday(int revision)
{
    const bool late = revision >= 107, waves = revision >= 101;
    const auto variable = [](std::vector<ParaFields> params) {
        return std::vector<VariableFields>{{1, "old", "", std::move(params), 64}};
    };
    const std::vector<ParaFields> offset = late ? std::vector<ParaFields>{{0, "16"}, {1, ""}} : std::vector<ParaFields>{{0, "16"}};
    return {
        {3, {{0, "0x1234"}, {1, ""}, {late ? 5 : 0, ""}, {0, ""}}, 1, variable({{0, "16"}})},
        {4, {{0, "0x77"}, {0, "8"}, {1, ""}}, 1, variable({{0, "16"}})},
        {late ? 51 : 50, {{0, "device"}, {11, ""}, {12, ""}, {13, ""}, {1, ""}}, late ? 2 : 1, variable(offset)},
        {late ? 54 : 51, {{0, "device"}, {11, ""}, {1, ""}}, late ? 2 : 1, variable(offset)},
        {2, {}, 1, variable({{0, waves ? "2.500000" : "0.000000"}})},
        {1, {}, 2, variable({{waves ? 4 : 0, ""}, {waves ? 3 : 0, ""}})},
        {52, late ? std::vector<ParaFields>{{0, "device"}, {1, ""}} : std::vector<ParaFields>{{0, "device"}, {11, ""}, {1, ""}},
         late ? 2 : 1, variable(offset)},
        {5, {}, 0, variable({})},
        {0, {}, 0, variable({})},
    };
}

Description everything()
{
    Description d;
    d.rect.fillStyle = 3, d.rect.strokeStyle = 2;
    d.polyline.strokeStyle = 1;
    d.cpoly.closed = 1, d.cpoly.fillOn = 1, d.cpoly.fillStyle = 2;
    d.circle.fillStyle = 1, d.circle.matrix[1] = 0.125f, d.circle.matrix[3] = -0.25f;
    d.arc.fillStyle = 4, d.arc.start = 0.5f, d.arc.end = 2;
    d.image = {0, 0, 64, 64, {1, 1, 1, 1}, 2, 2, 1, std::vector<uint8_t>(16, 0x80)};
    d.slider.reserved1 = 3, d.slider.reserved2 = 0.5f;
    d.text.fontFamily = "Courier [fixed]", d.text.fontCode = 21, d.text.fontStyle = GK_ITALIC;
    d.text.fontSize = d.text.textSize = 20, d.text.align = KR_POS_CENTRE, d.text.text = "Pressure";
    d.graph.type = 1, d.graph.xmin = 5, d.graph.xmax = 50, d.graph.autoscalex = 0, d.graph.minspreadx = 2;
    d.graph.minspready = 3, d.graph.bars = 1, d.graph.background[0] = 0.5f, d.graph.labelyr = 1, d.graph.tickyr = 1;
    d.graph.labelFixx = 1, d.graph.labelFixy = 1, d.graph.labelXmin = 3, d.graph.labelYmax = 7;
    for (int type = KR_ACTION_TEXT; type <= KR_ACTION_BLINK; ++type)
        d.actions.push_back(actionOfType(type));
    d.sources = {{KRD_TYPE_SHARED_MEMORY, {{0, "0x42"}, {1, ""}, {0, ""}, {0, ""}}, 1,
                  {{KR_VAR_FLOAT, "level", "", {{0, "8"}}, 64}, {KR_VAR_INT32, "count", "", {{0, "12"}}, 64}}}};
    d.oldSources = oldSources();
    return d;
}

// Every element takes a share of the actions, so that each type stands in some list.
std::vector<uint8_t> write(const Description& d, int revision)
{
    ViewBuilder b(revision / 100, revision % 100);
    b.page(1, 2, 640, 480, 0.25f, 0.5f, 0.75f);
    size_t next = 0;
    const auto some = [&](ViewBuilder& v) -> ViewBuilder& {
        std::vector<ActionFields> share;
        for (int i = 0; i < 3 && next < d.actions.size(); ++i)
            share.push_back(d.actions[next++]);
        return v.actions(share);
    };
    some(b).rect(d.rect, "rect", "rect-id");
    b.beginGroup(11, "gauges", "gauges-id");
    some(b).polyline(d.polyline).cpoly(d.cpoly);
    some(b).circle(d.circle).arc(d.arc);
    some(b).line(d.line).image(d.image);
    some(b).button(d.button).slider(d.slider);
    some(b).scissor(0, 0, 200, 100).text(d.text);
    b.graph(d.graph);
    some(b).endGroup();
    some(b).rect(d.rect, "last", "last-id");
    if (revision <= 110)
        b.oldDataSection(d.oldSources);
    else
        b.dataSection(d.sources);
    return b.integer(-1).bytes();
}

// What a revision lacked, as the difference it makes to the description. Absent fields keep
// the defaults of a new record, which a description made with defaults reproduces.
struct Rule {
    int first, last;
    const char* what;
    std::function<void(Description&, int revision)> apply;
};

const Rule kRules[] = {
    {100, 301, "fillStyle 0", [](Description& d, int) {
         d.rect.fillStyle = d.cpoly.fillStyle = d.circle.fillStyle = d.arc.fillStyle = d.image.fillStyle = 0;
     }},
    {100, 110, "graph background opaque black, no right axis", [](Description& d, int) {
         const float black[4] = {0, 0, 0, 1};
         std::copy(black, black + 4, d.graph.background);
         d.graph.labelyr = d.graph.tickyr = 0;
     }},
    {100, 106, "graph y spread and bars", [](Description& d, int) { d.graph.minspready = GraphFields().minspready, d.graph.bars = 0; }},
    {100, 200, "graph x range", [](Description& d, int) {
         const GraphFields fresh;
         d.graph.type = 0, d.graph.xmin = 0, d.graph.xmax = 100, d.graph.autoscalex = fresh.autoscalex, d.graph.minspreadx = 0;
     }},
    {100, 203, "label ranges 0 to 100", [](Description& d, int) {
         d.graph.labelFixx = d.graph.labelFixy = 0, d.graph.labelXmin = d.graph.labelYmin = 0;
         d.graph.labelXmax = d.graph.labelYmax = 100;
     }},
    {100, 202, "graph font Courier [fixed] 10", [](Description& d, int) {
         d.graph.fontFamily = "Courier [fixed]", d.graph.fontStyle = GK_PLAIN, d.graph.fontSize = 10;
     }},
    {100, 101, "circles of two radii", [](Description& d, int) {
         for (CircleFields* c : {&d.circle, &d.arc})
             c->matrix[1] = c->matrix[2] = 0, c->matrix[0] = std::fabs(c->matrix[0]), c->matrix[3] = std::fabs(c->matrix[3]);
     }},
    {100, 106, "no pixels", [](Description& d, int) { d.image.width = d.image.height = 0, d.image.pixels.clear(); }},
    {107, 203, "RGB pixels made opaque", [](Description& d, int) {
         for (size_t i = 3; i < d.image.pixels.size(); i += 4)
             d.image.pixels[i] = 255;
     }},
    {100, 200, "var of 31 characters, no second variable", [](Description& d, int) {
         const ActionFields fresh;
         for (ActionFields& a : d.actions) {
             a.var.resize(31), a.var2.clear();
             a.var2A0 = fresh.var2A0, a.var2A1 = fresh.var2A1, a.var2B0 = fresh.var2B0, a.var2B1 = fresh.var2B1;
             a.offset2 = a.slope2 = 0;
         }
     }},
    {100, 106, "no filter", [](Description& d, int) {
         for (ActionFields& a : d.actions)
             a.filter = 0, a.filterTime = 1;
     }},
    {100, 112, "no mouse fields", [](Description& d, int) {
         const ActionFields fresh;
         for (ActionFields& a : d.actions)
             a.mouseButton = a.mouseAction = a.mouseMode = a.mouseClamp = 0, a.mouseInc = fresh.mouseInc,
             a.mouseMin = fresh.mouseMin, a.mouseMax = fresh.mouseMax;
     }},
    {100, 300, "mouseHiddenActive 1", [](Description& d, int) {
         for (ActionFields& a : d.actions)
             a.mouseHiddenActive = 1;
     }},
    {100, 300, "translatePoly read at 1.13 to 2.00 only", [](Description& d, int revision) {
         for (ActionFields& a : d.actions)
             if (revision < 113 || revision > 200)
                 a.translatePoly.clear();
     }},
    {100, 302, "limit, visibleMode, visibleValue 0", [](Description& d, int) {
         for (ActionFields& a : d.actions)
             a.limit = a.visibleMode = a.visibleValue = 0;
     }},
    {203, 302, "blinking entries take the action's clock", [](Description& d, int) {
         for (ActionFields& a : d.actions)
             for (ThresholdFields& t : a.blocks[4].entries)
                 t.value = t.value ? a.blinkClock : 0;
     }},
    {100, 202, "no blink block", [](Description& d, int) {
         for (ActionFields& a : d.actions)
             a.blocks[4] = ThresholdBlockFields();
     }},
    {100, 100, "one colour group for every block", [](Description& d, int) {
         for (ActionFields& a : d.actions) {
             const ThresholdFields entry{0, 120, 2, {0.5f, 0.25f, 1}};
             for (int b = 0; b < 4; ++b)
                 a.blocks[b] = {0, 120, {entry}};
             if (a.type == KR_ACTION_GRAPH)
                 a.a0 = a.b0 = 0, a.a1 = a.b1 = 1, a.offset = 0;
         }
     }},
    {100, 110, "old source codes", [](Description& d, int revision) { d.sources = oldSourcesToday(revision); }},
    {111, 300, "no default value", [](Description& d, int) {
         for (SourceFields& s : d.sources)
             for (VariableFields& v : s.variables)
                 v.defaultValue.clear();
     }},
};

// Names of 1.00 and ids up to 2.01 are generated: the present form takes them from the old load.
void takeGeneratedNames(const ELEMENT_STRUCT* from, ELEMENT_STRUCT* to, int revision)
{
    for (; from && to; from = from->next, to = to->next) {
        if (revision == 100)
            memcpy(to->name, from->name, sizeof to->name);
        if (revision <= 201) {
            EXPECT_EQ(std::string(from->id).substr(std::strlen(from->id) - 3), "-ID");
            memcpy(to->id, from->id, sizeof to->id);
        }
        takeGeneratedNames(from->child, to->child, revision);
    }
}

// At 1.00 a text has no align: it keeps that of a new text and moves from that anchor to its centre.
void placeOldestText(Description& d)
{
    GK_FONT font = gkFontCreate(d.text.fontFamily.c_str(), d.text.fontStyle, d.text.fontSize);
    int metric[2] = {0, 0};
    gkFontStringMetric(font, d.text.text.c_str(), metric);
    gkFontFree(font);
    d.text.align = KR_POS_LOWER_LEFT;
    d.text.x += float(metric[0]) * 0.5f, d.text.y += float(metric[1]) * 0.5f;
}

// A view as the file stores it, read by loadFile alone: its sources are not yet matched with
// those installed, which would drop the plug-in types no library here provides.
struct FileRecords {
    VIEW_STRUCT view = {};
    explicit FileRecords(const std::vector<uint8_t>& bytes)
    {
        TempFile file(bytes);
        loadFile(file.path().c_str(), &view.elements, &view.dataTypes, &view);
    }
    ~FileRecords()
    {
        while (view.elements)
            elementDelete(view.elements, &view.elements);
        while (view.dataTypes)
            delDataType(&view.dataTypes, view.dataTypes, 0);
    }
};

TEST(OlderRevisions, EveryRevisionLoadsAsItsPresentFormAndUpgradesToIt)
{
    for (int revision : kRevisions) {
        SCOPED_TRACE("revision " + std::to_string(revision));
        Description present = everything();
        for (const Rule& rule : kRules)
            if (revision >= rule.first && revision <= rule.last)
                rule.apply(present, revision);
        if (revision == 100)
            placeOldestText(present);
        setLogLevel(2);
        takeLog();
        LoadedView old(write(everything(), revision));
        const std::string oldLog = takeLog();
        ASSERT_NE(old.view, nullptr);
        FileRecords oldRecords(write(everything(), revision)), todaysRecords(write(present, 303));
        takeGeneratedNames(oldRecords.view.elements, todaysRecords.view.elements, revision);
        EXPECT_EQ(firstStoredDifference(&oldRecords.view, &todaysRecords.view), "");

        // Written back, the file is of today and loads to the same records with the same warnings.
        TempFile upgraded({});
        ASSERT_EQ(saveFile(upgraded.path().c_str(), oldRecords.view.elements, oldRecords.view.dataTypes, &oldRecords.view), 0);
        takeLog();
        VIEW_STRUCT* again = krViewLoad(upgraded.path().c_str());
        EXPECT_EQ(takeLog(), oldLog);
        EXPECT_EQ(firstStoredDifference(old.view, again), "");
        krViewFree(again);

        // Converted once more, the file grows by 12 bytes a variable parameter and by nothing else:
        // a load leaves that much room past each parameter's text, and the writer stores the room.
        FileRecords upgradedRecords(fileBytes(upgraded.path()));
        TempFile twice({});
        ASSERT_EQ(saveFile(twice.path().c_str(), upgradedRecords.view.elements, upgradedRecords.view.dataTypes,
                           &upgradedRecords.view), 0);
        size_t parameters = 0;
        for (const DD_DATA_TYPE_STRUCT* source = oldRecords.view.dataTypes; source; source = source->next)
            for (const VARIABLE_STRUCT* v = source->variables; v; v = v->next)
                parameters += size_t(v->nrPara);
        EXPECT_EQ(fileBytes(twice.path()).size(), fileBytes(upgraded.path()).size() + 12 * parameters);
    }
}

// The one list of what a file of today can't carry of an older one, as the README lists it: the
// old load holds it, the upgraded file doesn't.
TEST(OlderRevisions, UpgradesLoseOnlyWhatTodaysFilesCannotCarry)
{
    TextFields text;
    text.strokeWidth = 3, text.strokeStyle = 2, text.antialias = 1;
    GraphFields graph;
    graph.fontSize = 0, graph.fontFamily = "";
    const auto textLine = [](const ELEMENT_STRUCT* e) {
        const TEXT_STRUCT* t = static_cast<const TEXT_STRUCT*>(e->data);
        return std::to_string(t->strokeWidth) + " " + std::to_string(t->strokeStyle) + " " + std::to_string(t->antialias);
    };
    const auto graphFont = [](const ELEMENT_STRUCT* e) {
        const GRAPH_STRUCT* g = static_cast<const GRAPH_STRUCT*>(e->data);
        return std::string(g->fontFamily) + " " + std::to_string(g->fontSize);
    };
    const struct {
        const char* what;
        std::vector<uint8_t> file;
        std::function<std::string(const ELEMENT_STRUCT*)> field;
        const char *old, *upgraded;
    } losses[] = {
        {"text stroke width, style and antialias of 1.00 to 2.02",
         ViewBuilder(2, 2).page(0, 0, 400, 300, 0, 0, 0).text(text).bytes(), textLine, "3.000000 2 1", "1.000000 0 0"},
        {"a graph font only 2.03's check accepts", ViewBuilder(2, 3).page(0, 0, 400, 300, 0, 0, 0).graph(graph).bytes(),
         graphFont, " 0", "Courier [fixed] 12"},
    };
    for (const auto& loss : losses) {
        FileRecords old(loss.file);
        TempFile upgraded({});
        ASSERT_EQ(saveFile(upgraded.path().c_str(), old.view.elements, old.view.dataTypes, &old.view), 0);
        FileRecords again(fileBytes(upgraded.path()));
        ASSERT_NE(old.view.elements, nullptr);
        ASSERT_NE(again.view.elements, nullptr);
        EXPECT_EQ(loss.field(old.view.elements), loss.old) << loss.what;
        EXPECT_EQ(loss.field(again.view.elements), loss.upgraded) << loss.what;
    }
}

template <class Record> const Record* only(const LoadedView& v)
{
    return v.first() ? static_cast<const Record*>(v.first()->data) : nullptr;
}

// Each revision checked a graph's font in its own way; a font that fails gets "Courier [fixed]".
TEST(OlderRevisions, GraphFontsFallBackAsTheirRevisionChecked)
{
    struct Case {
        int revision, size, style;
        const char* family;
        const char* expected; // family, style, size
    } const cases[] = {
        {203, 50, 1, "Arial", "Courier [fixed] 1 10"}, {203, 12, -1, "Arial", "Courier [fixed] 1 10"},
        {203, 0, 1, "", " 1 0"},                       {203, 40, 4, "Arial", "Arial 4 40"},
        {204, 50, 1, "Arial", "Courier [fixed] 1 12"}, {204, 0, 1, "", "Courier [fixed] 1 12"},
        {202, 20, 2, "Arial", "Courier [fixed] 1 10"}, {303, 41, 1, "Arial", "Courier [fixed] 1 12"},
        {303, 10, 5, "Arial", "Courier [fixed] 1 12"}, {303, 10, 1, "", "Courier [fixed] 1 12"},
        {303, 1, 4, "Helvetica [fixed]", "Helvetica [fixed] 4 1"},
    };
    for (const Case& c : cases) {
        GraphFields graph;
        graph.fontSize = c.size, graph.fontStyle = c.style, graph.fontFamily = c.family;
        graph.labelFixy = 1, graph.labelYmax = 7; // read after the font, undisturbed
        LoadedView v(ViewBuilder(c.revision / 100, c.revision % 100).page(0, 0, 400, 300, 0, 0, 0).graph(graph));
        const GRAPH_STRUCT* g = only<GRAPH_STRUCT>(v);
        ASSERT_NE(g, nullptr);
        EXPECT_EQ(std::string(g->fontFamily) + " " + std::to_string(g->fontStyle) + " " + std::to_string(g->fontSize),
                  c.expected)
            << c.revision << " " << c.size << " " << c.style;
        EXPECT_EQ(g->labelYmax, c.revision >= 204 ? 7 : 100);
    }
}

TEST(OlderRevisions, FontCodesBecomeFixedFontsPlacedAtTheirCentre)
{
    struct Case {
        int code, style, size;
    } const cases[] = {{21, GK_ITALIC, 20}, {0, GK_PLAIN, 11}, {9, GK_ITALIC, 14}, {38, GK_BOLD, 34}, {45, GK_PLAIN, 30}};
    for (const Case& c : cases) {
        TextFields text;
        text.fontCode = c.code, text.align = KR_POS_UPPER_LEFT, text.matrix[1] = 0.5f, text.text = "Flow";
        LoadedView v(ViewBuilder(1, 7).page(0, 0, 400, 300, 0, 0, 0).text(text));
        const TEXT_STRUCT* t = only<TEXT_STRUCT>(v);
        ASSERT_NE(t, nullptr);
        int metric[2] = {0, 0};
        gkFontStringMetric(t->font, t->text, metric);
        EXPECT_EQ(std::string(t->fontFamily), "Courier [fixed]");
        EXPECT_EQ(std::vector<int>({t->fontStyle, t->fontSize, t->textSize}),
                  std::vector<int>({c.style, c.size, c.size}))
            << "code " << c.code;
        EXPECT_EQ(std::vector<float>(t->matrix, t->matrix + 4), std::vector<float>({1, 0, 0, 1}));
        EXPECT_EQ(t->x, text.x + float(metric[0]) / 2);
        EXPECT_EQ(t->y, text.y - float(metric[1]) / 2);
    }
}

TEST(OlderRevisions, VectorTextOfCornersTakesTheirBoxAndTurn)
{
    TextFields text;
    text.kind = KR_TEXT_OLD, text.text = "AB";
    const double angle = 30 * M_PI / 180, l1 = 120, l2 = 40;
    const double c = std::cos(angle), s = std::sin(angle);
    const double xs[4] = {10, 10 - l2 * s, 10 - l2 * s + l1 * c, 10 + l1 * c};
    const double ys[4] = {20, 20 + l2 * c, 20 + l2 * c + l1 * s, 20 + l1 * s};
    for (int i = 0; i < 4; ++i)
        text.corners[2 * i] = float(xs[i]), text.corners[2 * i + 1] = float(ys[i]);
    LoadedView v(ViewBuilder(1, 5).page(0, 0, 400, 300, 0, 0, 0).text(text));
    const TEXT_STRUCT* t = only<TEXT_STRUCT>(v);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(std::string(t->fontFamily) + std::to_string(t->fontSize) + std::to_string(t->textSize), "Arial3030");
    EXPECT_NEAR(t->x, (xs[1] + xs[3]) / 2, 1e-3);
    EXPECT_NEAR(t->y, (ys[0] + ys[2]) / 2, 1e-3);
    int metric[2] = {0, 0};
    gkFontStringMetric(t->font, "AB", metric);
    EXPECT_NEAR(t->matrix[0], l1 / (metric[0] * 2.0) * c, 1e-4);
    EXPECT_NEAR(t->matrix[3], l2 / t->textSize * c, 1e-4); // an outline font is as high as its size
    text.text = ""; // no width to divide by: the width keeps its scale
    LoadedView empty(ViewBuilder(1, 5).page(0, 0, 400, 300, 0, 0, 0).text(text));
    EXPECT_NEAR(only<TEXT_STRUCT>(empty)->matrix[0], c, 1e-4);
}

TEST(OlderRevisions, AnAutoSourceOfTwoParametersWarnsAndRuns)
{
    OldSourceFields autoSource{5, 0, 0, 0, 0, 0, 0, 0, 0, "", {{KR_VAR_FLOAT, "wave", 0, 0, 2, 3}}};
    setLogLevel(2);
    takeLog();
    LoadedView v(ViewBuilder(1, 3).page(0, 0, 400, 300, 0, 0, 0).oldDataSection({autoSource}).integer(-1));
    ASSERT_NE(v.view, nullptr);
    EXPECT_EQ(takeLog(), "Warning: nr of variable parameter mismatch\nData type 1 Auto Data\n"
                         "Library has 4 parameters, view has 2 parameters\n");
    VARIABLE_STRUCT* wave = v.view->dataTypes->variables;
    const auto parameters = [wave] {
        std::string read;
        for (int i = 0; i < 4; ++i) {
            int item = -1;
            char text[64] = "";
            krVarGetPara(wave, i, &item, text);
            read += std::to_string(item) + "'" + text + "' ";
        }
        return read;
    };
    // The empty range is the wave's own, which the running source writes back.
    ASSERT_EQ(krViewStartAnim(v.view), 0);
    const std::string running = "4'' 3'' 0'0.0' 0'1.0' ";
    for (int tries = 0; tries < 500 && parameters() != running; ++tries)
        usleep(10000);
    krViewStopAnim(v.view);
    EXPECT_EQ(parameters(), running);
}

} // namespace
