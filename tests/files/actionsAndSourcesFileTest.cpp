// The records that follow the element bodies in a view file: action lists with their
// threshold blocks, and data-source sections with variables and parameters. Cut and garbled
// files are the damaged-files tests' concern.
#include "LoadedView.h"
#include "ViewBuilder.h"

#include <gtest/gtest.h>

#include <iterator>
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
        for (int i = 0; i <= (k + block) % 3; ++i)
            a.blocks[block].entries.push_back(
                {float(10 * block + i), float(10 * block + i + 1), block + i, {0.1f * float(i), 0.2f * float(block), f / 32}});
    }
    return a;
}

// A field of the loaded action `a` beside the same field of the written `s`; ints and floats
// alike compare as floats.
#define SAME(name) std::make_tuple(#name, float(a->name), float(s.name))

void expectAction(const ActionFields& s, const ACTION_STRUCT* a)
{
    SCOPED_TRACE("action type " + std::to_string(s.type));
    for (const auto& [name, loaded, written] :
         {SAME(id), SAME(type), SAME(a0), SAME(a1), SAME(b0), SAME(b1), SAME(limit), SAME(var2A0), SAME(var2A1),
          SAME(var2B0), SAME(var2B1), SAME(offset), SAME(slope), SAME(offset2), SAME(slope2), SAME(cg), SAME(filter),
          SAME(filterTime), SAME(mouseButton), SAME(mouseAction), SAME(mouseMode), SAME(mouseClamp), SAME(mouseInc),
          SAME(mouseMin), SAME(mouseMax), SAME(mouseHiddenActive), SAME(visibleMode), SAME(visibleValue)})
        EXPECT_EQ(loaded, written) << name;
    EXPECT_EQ(std::vector<std::string>({a->var, a->var2, a->format, a->translatePoly}),
              std::vector<std::string>({s.var, s.var2, s.format, s.translatePoly}));
    const std::tuple<float, float, const TH_STRUCT*> blocks[KR_THRESHOLD_BLOCKS] = {
        {a->colorMin, a->colorMax, a->colorThresholds}, {a->widthMin, a->widthMax, a->widthThresholds},
        {a->styleMin, a->styleMax, a->styleThresholds}, {a->visibleMin, a->visibleMax, a->visibleThresholds},
        {a->blinkMin, a->blinkMax, a->blinkThresholds}};
    for (int k = 0; k < KR_THRESHOLD_BLOCKS; ++k) {
        const auto& [min, max, head] = blocks[k];
        EXPECT_EQ(std::make_pair(min, max), std::make_pair(s.blocks[k].min, s.blocks[k].max)) << k;
        ASSERT_EQ(countList(head), int(s.blocks[k].entries.size())) << k;
        const TH_STRUCT* t = head;
        for (const ThresholdFields& w : s.blocks[k].entries) {
            EXPECT_EQ(std::make_tuple(t->lower, t->upper, t->value, t->color[0], t->color[1], t->color[2]),
                      std::make_tuple(w.lower, w.upper, w.value, w.color[0], w.color[1], w.color[2])) << k;
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
    LoadedView loaded(b.rect(RectFields(), "still"));
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
    return {KR_VAR_INT32, name, "1.5", std::move(params), capacity};
}

// Sources on both sides of an element keep their stored counts; parameter texts of any size
// keep the stream in step.
TEST(DataSectionsInFiles, SourcesKeepTheirStoredCountsAndTexts)
{
    SourceFields few;
    few.id = 3;
    few.dataParams = {{7, "4711"}, {1, "big"}, {0, ""}};
    few.varParamCount = 2;
    few.variables = {variable("level", 64, {{2, "offset 8"}, {5, std::string(63, 'x')}}),
                     variable("flow", 63, {{3, std::string(62, 'y')}}), variable("long", 300, {{1, std::string(299, 'z')}})};
    SourceFields many;
    many.id = 1234;
    for (int i = 0; i < 12; ++i)
        many.dataParams.push_back({i, "p" + std::to_string(i)});
    many.variables = {variable("bare", 64, {})};
    ViewBuilder b = page();
    b.dataSection({few, many}).rect(RectFields(), "between");
    // A parameter with no stored text leaves its slot empty and the stream in step.
    b.integer(20).integer(1).integer(9).integer(0).integer(1).integer(1);
    b.integer(0).fixed("empty", 64).fixed("", 64).integer(4).integer(0);
    LoadedView loaded(b.rect(RectFields(), "last"));
    ASSERT_NE(loaded.view, nullptr);
    EXPECT_EQ(countList(loaded.view->elements), 2);
    const DD_DATA_TYPE_STRUCT* s = loaded.view->dataTypes;
    ASSERT_EQ(countList(s), 3);
    // No source of type 3 is installed here: the view keeps what it stored.
    EXPECT_EQ(std::make_tuple(s->id, s->nrData, s->nrVar, s->found), std::make_tuple(3, 3, 2, 0));
    EXPECT_STREQ(s->name, "unknown Data Source 3");
    const DD_DATA_TYPE_STRUCT *wide = s->next, *raw = wide->next;
    EXPECT_EQ(std::make_tuple(wide->id, wide->nrData, wide->nrVar, raw->id), std::make_tuple(1234, 12, 0, 9));
    ASSERT_EQ(std::make_tuple(countList(s->variables), countList(wide->variables), countList(raw->variables)),
              std::make_tuple(3, 1, 1));
    const VARIABLE_STRUCT* level = s->variables;
    EXPECT_EQ(std::make_tuple(level->type, std::string(level->name), std::string(level->defaultValue), level->nrPara),
              std::make_tuple(int(KR_VAR_INT32), std::string("level"), std::string("1.5"), 2));
    EXPECT_EQ(std::make_pair(wide->variables->nrPara, std::string(raw->variables->name)),
              std::make_pair(0, std::string("empty")));
    // Slots beyond the stored count, up to ten, are there and empty. A text stored with n bytes
    // grows its buffer to n + 12 unless it fits 64 with room to spare.
    const std::tuple<const PARA_STRUCT&, int32_t, uint32_t, std::string> params[] = {
        {s->para[0], 7, 64, "4711"},
        {s->para[1], 1, 64, "big"},
        {s->para[9], 0, 64, ""},
        {wide->para[11], 11, 64, "p11"},
        {level->para[0], 2, 76, "offset 8"},
        {level->para[1], 5, 76, std::string(63, 'x')},
        {level->para[9], 0, 64, ""},
        {level->next->para[0], 3, 64, std::string(62, 'y')}, // n = 63 fits as it is
        {level->next->next->para[0], 1, 312, std::string(299, 'z')},
        {raw->variables->para[0], 4, 64, ""},
    };
    for (size_t i = 0; i < std::size(params); ++i) {
        const auto& [para, ival, size, text] = params[i];
        EXPECT_EQ(std::make_tuple(para.ival, para.size, std::string(para.sval)), std::make_tuple(ival, size, text))
            << "parameter " << i;
    }
    EXPECT_STREQ(loaded.view->elements->next->name, "last");
}

} // namespace
