// The records that follow the element bodies in a view file: action lists with their
// threshold blocks, and data-source sections with variables and parameters. Cut and garbled
// files are the damaged-files tests' concern.
#include "GlContext.h"
#include "LoadedView.h"
#include "ViewBuilder.h"
#include "graphics/graphics.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

ViewBuilder page()
{
    ViewBuilder b;
    b.page(0, 0, 400, 300, 0, 0, 0);
    return b;
}

// Every stored field differs from its default and from the same field of the other actions.
ActionFields numberedAction(int k)
{
    const float f = float(k);
    ActionFields a;
    a.id = 1000 + k, a.type = k, a.var = "var" + std::to_string(k), a.var2 = "second" + std::to_string(k);
    a.a0 = f + 0.5f, a.a1 = f + 1.5f, a.b0 = f + 2.5f, a.b1 = f + 3.5f, a.limit = k % 2;
    a.var2A0 = f + 4.5f, a.var2A1 = f + 5.5f, a.var2B0 = f + 6.5f, a.var2B1 = f + 7.5f;
    a.offset = f + 8.5f, a.slope = f + 9.5f, a.offset2 = f + 10.5f, a.slope2 = f + 11.5f, a.cg = 1 + k % 9;
    a.format = "%" + std::to_string(k) + ".2f", a.filter = k % 3, a.filterTime = f + 0.25f;
    a.mouseButton = k % 3, a.mouseAction = k % 8, a.mouseMode = (k + 1) % 3, a.mouseClamp = k + 1;
    a.mouseInc = f + 0.75f, a.mouseMin = -f, a.mouseMax = f + 100, a.mouseHiddenActive = k % 2 == 0 ? 0 : 7;
    a.translatePoly = "poly" + std::to_string(k), a.visibleMode = k % 2, a.visibleValue = k + 5;
    for (int block = 0; block < KR_THRESHOLD_BLOCKS; ++block) {
        a.blocks[block].min = f - float(block);
        a.blocks[block].max = f + 50 + float(block);
        for (int i = 0; i <= (k + block) % 3; ++i) {
            ThresholdFields t;
            t.lower = float(10 * block + i), t.upper = float(10 * block + i + 1), t.value = block + i;
            t.color[0] = 0.1f * float(i), t.color[1] = 0.2f * float(block), t.color[2] = f / 32;
            a.blocks[block].entries.push_back(t);
        }
    }
    return a;
}

// A loaded field against the value written; ints and floats alike compare as floats.
struct Field {
    template <class A, class B> Field(const char* n, A a, B w) : name(n), loaded(double(a)), written(double(w)) {}
    const char* name;
    double loaded, written;
};
// The field of the loaded action `a` against the same field of the written `s`.
#define SAME(name) Field(#name, a->name, s.name)

void expectAction(const ActionFields& s, const ACTION_STRUCT* a)
{
    SCOPED_TRACE("action type " + std::to_string(s.type));
    for (const Field& f : {SAME(id), SAME(type), SAME(a0), SAME(a1), SAME(b0), SAME(b1), SAME(limit), SAME(var2A0),
                           SAME(var2A1), SAME(var2B0), SAME(var2B1), SAME(offset), SAME(slope), SAME(offset2),
                           SAME(slope2), SAME(cg), SAME(filter), SAME(filterTime), SAME(mouseButton),
                           SAME(mouseAction), SAME(mouseMode), SAME(mouseClamp), SAME(mouseInc), SAME(mouseMin),
                           SAME(mouseMax), SAME(mouseHiddenActive), SAME(visibleMode), SAME(visibleValue)})
        EXPECT_FLOAT_EQ(float(f.loaded), float(f.written)) << f.name;
    EXPECT_EQ(std::vector<std::string>({a->var, a->var2, a->format, a->translatePoly}),
              std::vector<std::string>({s.var, s.var2, s.format, s.translatePoly}));
    const struct {
        float min, max;
        const TH_STRUCT* head;
    } blocks[KR_THRESHOLD_BLOCKS] = {{a->colorMin, a->colorMax, a->colorThresholds},
                                     {a->widthMin, a->widthMax, a->widthThresholds},
                                     {a->styleMin, a->styleMax, a->styleThresholds},
                                     {a->visibleMin, a->visibleMax, a->visibleThresholds},
                                     {a->blinkMin, a->blinkMax, a->blinkThresholds}};
    for (int k = 0; k < KR_THRESHOLD_BLOCKS; ++k) {
        const ThresholdBlockFields& written = s.blocks[k];
        EXPECT_EQ(std::make_pair(blocks[k].min, blocks[k].max), std::make_pair(written.min, written.max)) << k;
        ASSERT_EQ(countList(blocks[k].head), int(written.entries.size())) << k;
        const TH_STRUCT* t = blocks[k].head;
        for (const ThresholdFields& w : written.entries) {
            EXPECT_EQ(std::make_tuple(t->lower, t->upper, t->value, t->color[0], t->color[1], t->color[2]),
                      std::make_tuple(w.lower, w.upper, w.value, w.color[0], w.color[1], w.color[2])) << k;
            // Line styles arrive expanded into the stipple that draws them.
            int32_t factor = 0;
            uint16_t pattern = 0;
            getLineStipple(w.value, &factor, &pattern);
            if (k == KR_THRESHOLDS_STYLE) {
                EXPECT_EQ(std::make_pair(t->stippleFactor, t->stipplePattern), std::make_pair(factor, pattern));
            }
            t = t->next;
        }
    }
}

// Every type on a clip inside a group; the group and a code without a body carry actions too.
TEST(ActionRecordsInFiles, EveryTypeGivesBackEveryStoredField)
{
    std::vector<ActionFields> all;
    for (int type = KR_ACTION_TEXT; type <= KR_ACTION_BLINK; ++type)
        all.push_back(numberedAction(type));
    ViewBuilder b = page();
    b.beginGroup(2, "group").actions(all).scissor(0, 0, 10, 10);
    b.actions({numberedAction(KR_ACTION_INPUT)}).bodiless(9);
    b.actions({numberedAction(KR_ACTION_VISIBLE)}).endGroup();
    b.rect(RectFields(), "still");
    LoadedView loaded(b);
    const ELEMENT_STRUCT* group = loaded.first();
    ASSERT_EQ(countActions(group), 28);
    expectAction(numberedAction(KR_ACTION_VISIBLE), group->actions);
    const ACTION_STRUCT* a = group->child->actions;
    for (const ActionFields& fields : all) {
        expectAction(fields, a);
        a = a->next;
    }
    expectAction(numberedAction(KR_ACTION_INPUT), group->child->next->actions);
    // The next element follows in step, with no action of its own.
    ASSERT_NE(group->next, nullptr);
    EXPECT_STREQ(group->next->name, "still");
    EXPECT_EQ(group->next->actions, nullptr);
}

VariableFields variable(const std::string& name, int capacity, std::vector<ParaFields> params)
{
    VariableFields v;
    v.type = KR_VAR_INT32, v.name = name, v.defaultValue = "1.5";
    v.capacity = capacity, v.params = std::move(params);
    return v;
}

TEST(DataSectionsInFiles, SourcesKeepTheirStoredCounts)
{
    SourceFields few;
    few.id = 3;
    few.dataParams = {{7, "4711"}, {1, "big"}, {0, ""}};
    few.varParamCount = 2;
    few.variables = {variable("level", 64, {{2, "offset 8"}, {5, std::string(63, 'x')}}),
                     variable("flow", 63, {{3, std::string(62, 'y')}})};
    SourceFields many;
    many.id = 1234;
    for (int i = 0; i < 12; ++i)
        many.dataParams.push_back({i, "p" + std::to_string(i)});
    many.varParamCount = 0;
    many.variables = {variable("bare", 64, {})};
    SourceFields later;
    later.id = 9;

    ViewBuilder b = page();
    b.dataSection({few, many}).rect(RectFields(), "between").dataSection({later});
    LoadedView loaded(b);
    ASSERT_NE(loaded.view, nullptr);
    EXPECT_EQ(countList(loaded.view->elements), 1);
    const DD_DATA_TYPE_STRUCT* s = loaded.view->dataTypes;
    ASSERT_EQ(countList(s), 3);

    // No source of type 3 is installed here: the view keeps what it stored.
    EXPECT_EQ(std::make_tuple(s->id, s->nrData, s->nrVar, s->found), std::make_tuple(3, 3, 2, 0));
    EXPECT_STREQ(s->name, "unknown Data Source 3");
    EXPECT_EQ(s->para[0].ival, 7);
    EXPECT_STREQ(s->para[1].sval, "big");
    // Slots beyond the stored count, up to ten, are there and empty.
    EXPECT_EQ(s->para[9].size, 64u);
    EXPECT_STREQ(s->para[9].sval, "");
    ASSERT_EQ(countList(s->variables), 2);
    const VARIABLE_STRUCT* level = s->variables;
    EXPECT_EQ(std::make_tuple(level->type, std::string(level->name), std::string(level->defaultValue), level->nrPara),
              std::make_tuple(int(KR_VAR_INT32), std::string("level"), std::string("1.5"), 2));
    // A text stored with n = 64 doesn't fit a 64-byte buffer with room to spare: it grows to 76.
    EXPECT_EQ(level->para[0].ival, 2);
    EXPECT_STREQ(level->para[0].sval, "offset 8");
    EXPECT_EQ(level->para[1].size, 76u);
    EXPECT_EQ(std::string(level->para[1].sval), std::string(63, 'x'));
    EXPECT_EQ(level->para[9].size, 64u);
    const VARIABLE_STRUCT* flow = level->next;
    EXPECT_EQ(flow->para[0].size, 64u); // n = 63 fits as it is
    EXPECT_EQ(std::string(flow->para[0].sval), std::string(62, 'y'));

    s = s->next;
    EXPECT_EQ(std::make_tuple(s->id, s->nrData, s->nrVar), std::make_tuple(1234, 12, 0));
    EXPECT_STREQ(s->para[11].sval, "p11");
    ASSERT_EQ(countList(s->variables), 1);
    EXPECT_EQ(s->variables->nrPara, 0);
    EXPECT_EQ(s->next->id, 9);
    EXPECT_EQ(s->next->variables, nullptr);
}

TEST(DataSectionsInFiles, VariableTextsOfAnySizeKeepTheStreamInStep)
{
    SourceFields s;
    s.varParamCount = 1;
    s.variables = {variable("long", 300, {{1, std::string(299, 'z')}}), variable("next", 64, {{2, "ok"}})};
    ViewBuilder b = page();
    b.dataSection({s});
    // A parameter with no stored text leaves its slot empty and the stream in step.
    b.integer(20).integer(1).integer(2).integer(0).integer(1).integer(1);
    b.integer(0).fixed("empty", 64).fixed("", 64).integer(4).integer(0);
    b.rect(RectFields(), "last");
    LoadedView loaded(b);
    ASSERT_NE(loaded.view, nullptr);
    const VARIABLE_STRUCT* v = loaded.view->dataTypes->variables;
    EXPECT_EQ(v->para[0].size, 312u);
    EXPECT_EQ(std::string(v->para[0].sval), std::string(299, 'z'));
    EXPECT_STREQ(v->next->para[0].sval, "ok");
    const DD_DATA_TYPE_STRUCT* second = loaded.view->dataTypes->next;
    ASSERT_NE(second, nullptr);
    EXPECT_STREQ(second->variables->name, "empty");
    EXPECT_EQ(second->variables->para[0].ival, 4);
    EXPECT_STREQ(second->variables->para[0].sval, "");
    ASSERT_NE(loaded.view->elements, nullptr);
    EXPECT_STREQ(loaded.view->elements->name, "last");
}

TEST(ActionAndDataRobustness, HugeCountsInASmallFileEndSoftly)
{
    const int32_t huge = 2000000000;
    SourceFields one;
    one.id = 5;

    ViewBuilder sources = page();
    sources.dataSection({one}).integer(20).integer(huge).integer(6).integer(0).integer(0).integer(0);
    LoadedView a(sources);
    ASSERT_NE(a.view, nullptr);
    ASSERT_EQ(countList(a.view->dataTypes), 2); // the first section, then what the bytes held
    EXPECT_EQ(a.view->dataTypes->next->id, 6);

    // Counts of parameters and variables that the bytes can't hold.
    ViewBuilder parameters = page();
    parameters.integer(20).integer(3).integer(7).integer(0).integer(huge).integer(0);
    parameters.integer(8).integer(0).integer(0).integer(huge).integer(0).fixed("only", 64).fixed("", 64);
    parameters.integer(9).integer(huge).integer(0).integer(0);
    LoadedView b(parameters);
    ASSERT_NE(b.view, nullptr);
    const DD_DATA_TYPE_STRUCT* noVariables = b.view->dataTypes;
    ASSERT_EQ(countList(noVariables), 2);
    EXPECT_EQ(noVariables->id, 7);
    EXPECT_EQ(noVariables->nrVar, huge); // as stored: nothing was made for it
    EXPECT_EQ(countList(noVariables->next->variables), 1);
    EXPECT_STREQ(noVariables->next->variables->name, "only");

    ViewBuilder texts = page();
    texts.integer(20).integer(1).integer(1).integer(0).integer(1).integer(1);
    texts.integer(0).fixed("v", 64).fixed("", 64).integer(3).integer(huge).fixed("short", 16);
    LoadedView c(texts);
    ASSERT_NE(c.view, nullptr);
    ASSERT_EQ(countList(c.view->dataTypes), 1);
    const VARIABLE_STRUCT* cut = c.view->dataTypes->variables;
    ASSERT_NE(cut, nullptr); // what was read of it stays, and its buffer did not grow
    EXPECT_EQ(cut->para[0].ival, 3);
    EXPECT_EQ(cut->para[0].size, 64u);
    EXPECT_STREQ(cut->para[0].sval, "");

    ViewBuilder actions = page();
    actions.rect(RectFields(), "first");
    actions.integer(1).counted("lots").counted("lots-ID");
    for (int i = 0; i < 8 * 2 + 9; ++i)
        actions.integer(0);
    actions.integer(huge);
    LoadedView d(actions);
    ASSERT_NE(d.view, nullptr);
    ASSERT_EQ(countList(d.view->elements), 2);
    EXPECT_EQ(d.view->elements->next->actions, nullptr);

    ActionFields thresholds = numberedAction(KR_ACTION_STROKE_COLOR);
    ViewBuilder entries = page();
    entries.actions({thresholds}).rect(RectFields());
    std::vector<uint8_t> bytes = entries.bytes();
    // The blink block's count stands right before its entries, which end the file.
    size_t blinkCount = bytes.size() - 4 - 24 * thresholds.blocks[KR_THRESHOLDS_BLINK].entries.size();
    bytes[blinkCount] = 0x7F;
    LoadedView e(bytes);
    ASSERT_NE(e.view, nullptr);
    const ACTION_STRUCT* action = e.view->elements->actions;
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(countList(action->blinkThresholds), int(thresholds.blocks[KR_THRESHOLDS_BLINK].entries.size()));
    EXPECT_EQ(countList(action->colorThresholds), int(thresholds.blocks[KR_THRESHOLDS_COLOR].entries.size()));
}

} // namespace
