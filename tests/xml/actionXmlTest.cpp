// Actions of an XML view: the words each type writes and reads, thresholds and variables, and
// damaged or huge input loading harmlessly.
#include "xml/viewXml.h"

#include "graphics/graphics.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>
#include <tuple>

namespace {

struct Loaded {
    ACTION_STRUCT* list = nullptr;
    Loaded() = default;
    explicit Loaded(const std::string& text)
    {
        TiXmlDocument document;
        document.Parse(text.c_str());
        actionLoadXml(XmlElement(document.RootElement()), &list);
    }
    ~Loaded() { while (list) delAction(&list, list); }
};

// One action written and freed, then read back.
struct Written : Loaded {
    XmlDocument document;
    XmlElement parent{"e"};
    explicit Written(ACTION_STRUCT* action)
    {
        document.appendElement(parent);
        actionSaveXml(action, parent);
        delAction(&action, action);
        actionLoadXml(parent, &list);
    }
    // The attributes but "name" as k=v, then each block as type:value of its entry, each
    // variable as para:id.
    std::string words() const
    {
        const XmlElement action = parent.firstElement();
        std::string all;
        for (const TiXmlAttribute* a = action.data()->FirstAttribute()->Next(); a; a = a->Next())
            all += std::string(a->Name()) + "=" + a->Value() + " ";
        for (XmlElement child = action.firstElement(); child.valid(); child = child.nextElement())
            all += child.name() == "threshold"
                       ? child.getAttributeString("type") + ":" + child.firstElement().getAttributeString("value") + " "
                       : "para:" + child.getAttributeString("id") + " ";
        return all;
    }
};

// Variables "v" and "w", one new entry in each block (colour 0.5, 1, 0.5; value 1; styleId 0).
ACTION_STRUCT* actionOf(int code, int32_t ACTION_STRUCT::*field, int value)
{
    ACTION_STRUCT* action = createAction();
    action->type = code;
    if (field)
        action->*field = value;
    strcpy(action->var, "v"), strcpy(action->var2, "w");
    for (TH_STRUCT** list : {&action->colorThresholds, &action->widthThresholds, &action->styleThresholds,
                             &action->visibleThresholds, &action->blinkThresholds})
        appendTh(list, createTh());
    return action;
}

// A type reads back as itself when it has words, else as a text action; "usethr" true as
// visibleMode 0. A field set before writing reads back as the last number.
TEST(ActionXml, EachTypeWritesItsWordsAndReadsBackAsItself)
{
    const std::tuple<int, std::string, int32_t ACTION_STRUCT::*, int, int> cases[] = {
        {KR_ACTION_TEXT, "type=text format= para:v ", nullptr, 0, 0},
        {KR_ACTION_MOVE_X, "type=translate translate-type=normal axis=x para:v ", nullptr, 0, 0},
        {KR_ACTION_MOVE_Y, "type=translate translate-type=normal axis=y para:v ", nullptr, 0, 0},
        {KR_ACTION_SCALE_X, "type=scale axis=x para:v ", nullptr, 0, 0},
        {KR_ACTION_SCALE_Y, "type=scale axis=y para:v ", nullptr, 0, 0},
        {KR_ACTION_ROTATE, "type=rotate cg=leftCenter para:v ", &ACTION_STRUCT::cg, KR_POS_LEFT, KR_POS_LEFT},
        {KR_ACTION_GRAPH, "type=graph color:#7fff7fff linewidth:1 para:v para:w ", &ACTION_STRUCT::limit, 1, 1},
        {KR_ACTION_MOVE_X_RELATIVE, "type=translate translate-type=relative axis=x para:v ", nullptr, 0, 0},
        {KR_ACTION_MOVE_Y_RELATIVE, "type=translate translate-type=relative axis=y para:v ", nullptr, 0, 0},
        {KR_ACTION_MOVE_X_ABSOLUTE, "type=translate translate-type=absolute axis=x para:v ", nullptr, 0, 0},
        {KR_ACTION_MOVE_Y_ABSOLUTE, "type=translate translate-type=absolute axis=y para:v ", nullptr, 0, 0},
        {KR_ACTION_MOVE_ALONG_POLYLINE, "type=translate translate-type=polyline translate-poly= para:v ", nullptr, 0,
         0},
        {KR_ACTION_STROKE_COLOR, "type=stroke-color usethr=true color:#7fff7fff para:v ", nullptr, 0, 0},
        {KR_ACTION_FILL_COLOR, "type=fill-color usethr=true color:#7fff7fff para:v ", nullptr, 0, 0},
        {KR_ACTION_STROKE_WIDTH, "type=stroke-width usethr=true linewidth:1 para:v ", nullptr, 0, 0},
        {KR_ACTION_STROKE_STYLE, "type=stroke-style linestyle:0 para:v ", nullptr, 0, 0},
        {KR_ACTION_SCALE_XY, "type=scale axis=xy para:v ", nullptr, 0, 0},
        {KR_ACTION_VISIBLE, "type=visible usethr=true visibility:true para:v ", nullptr, 0, 0},
        {KR_ACTION_VISIBLE, "type=visible usethr=false visible-value=0 para:v ", &ACTION_STRUCT::visibleMode, 1, 1},
        {KR_ACTION_VISIBLE, "type=visible para:v ", &ACTION_STRUCT::visibleMode, 2, 1},
        {KR_ACTION_FILL_UP, "type=fill fill-direction=up para:v ", nullptr, 0, 0},
        {KR_ACTION_FILL_DOWN, "type=fill fill-direction=down para:v ", nullptr, 0, 0},
        {KR_ACTION_FILL_LEFT, "type=fill fill-direction=left para:v ", nullptr, 0, 0},
        {KR_ACTION_FILL_RIGHT, "type=fill fill-direction=right para:v ", nullptr, 0, 0},
        {KR_ACTION_INPUT, "type=mouse mouse-button=left mouse-mode=set mouse-loop=true mouse-inc=1 mouse-min=0 "
         "mouse-max=1 mouse-hidden-active=true para:v ", &ACTION_STRUCT::mouseAction, 9, KR_MOUSE_ACTION_PRESS},
        {KR_ACTION_BUTTON_STATE, "para:v ", nullptr, 0, 0},
        {KR_ACTION_BUTTON_STATE + 99, "para:v ", nullptr, 0, 0},
        {KR_ACTION_ARC_END, "type=arc point-id=begin para:v ", nullptr, 0, 0},
        {KR_ACTION_BLINK, "type=blink usethr=true blink:1 para:v ", nullptr, 0, 0},
    };
    for (const auto& [code, words, field, value, back] : cases) {
        Written w(actionOf(code, field, value));
        EXPECT_EQ(w.words(), words) << code;
        EXPECT_EQ(w.list->type, words.rfind("type=", 0) == 0 ? code : KR_ACTION_TEXT) << code;
        EXPECT_EQ(w.list->visibleMode, words.find("usethr=true") == std::string::npos) << code;
        EXPECT_EQ(field ? w.list->*field : 0, back) << code;
    }
}

// Words of a file, garbage among them, into integer fields.
TEST(ActionXml, FieldsFromWordsAndGarbage)
{
    const std::tuple<const char*, int32_t ACTION_STRUCT::*, int> cases[] = {
        {"type='scale' axis='z'>", &ACTION_STRUCT::type, KR_ACTION_TEXT},
        {"type='translate' translate-type='relative'>", &ACTION_STRUCT::type, KR_ACTION_TEXT},
        {"type='translate' translate-type='polyline' axis='y'>", &ACTION_STRUCT::type, KR_ACTION_MOVE_ALONG_POLYLINE},
        {"type='rotate'>", &ACTION_STRUCT::cg, KR_POS_CENTRE},
        {"mouse-button='middle' mouse-action='movexabs'>", &ACTION_STRUCT::mouseButton, KR_MOUSE_LEFT},
        {"mouse-button='middle' mouse-action='movexabs'>", &ACTION_STRUCT::mouseAction, KR_MOUSE_ACTION_MOVEX_ABS},
        {"mouse-loop='true'>", &ACTION_STRUCT::mouseClamp, 0},
        {"visible-value='1e400' mouse-inc='nan' mouse-min='1e400'>", &ACTION_STRUCT::visibleValue, 1},
        {"><action-para a0='nan' a1='1e400' limit='yes' filter='2'/>", &ACTION_STRUCT::limit, 0},
    };
    for (const auto& [action, field, value] : cases)
        EXPECT_EQ(Loaded(std::string("<e><action ") + action + "</action></e>").list->*field, value) << action;
    const std::string x64k(65536, 'x'); // texts are cut to their fields
    Loaded huge("<e><action format='" + x64k + "' translate-poly='" + x64k + "'><action-para id='" + x64k +
                "'/><action-para id='" + x64k + "'/></action></e>");
    const ACTION_STRUCT* a = huge.list;
    EXPECT_EQ(std::string(a->format) + a->translatePoly + a->var + a->var2, std::string(4 * 63, 'x'));
}

// Entries of each block as "lower-upper:value "; each block ends in "|".
std::string blocks(const ACTION_STRUCT* a)
{
    std::ostringstream out;
    for (const TH_STRUCT* list : {a->colorThresholds, a->widthThresholds, a->styleThresholds, a->visibleThresholds,
                                  a->blinkThresholds}) {
        for (const TH_STRUCT* th = list; th; th = th->next)
            out << th->lower << '-' << th->upper << ':' << th->value << ' ';
        out << '|';
    }
    return out.str();
}

TEST(ActionXml, ThresholdBlocksAndVariablesRead)
{
    int32_t factor;
    uint16_t pattern;
    getLineStipple(3, &factor, &pattern);
    xmlRead = XmlReadTables();
    xmlRead.mapStrokeStyle[5] = factor << 16 | pattern;
    Loaded read("<e><action><threshold type='linewidth' max='50'><threshold-value x='0' value='2'/><threshold-value "
                "x='10' value='3'/></threshold><threshold type='linestyle'><threshold-value value='5'/>"
                "<threshold-value value='6'/></threshold><threshold type='visibility'><threshold-value "
                "value='true'/><threshold-value value='1'/></threshold><threshold type='blink' max='7'>"
                "<threshold-value value='2.9'/><threshold-value value='nan'/><threshold-value x='4' value='1e400'/>"
                "</threshold><threshold type='visibility' max='8'><threshold-value x='5' value='true'/></threshold>"
                "<threshold type='bogus'><threshold-value/></threshold><action-para id='a' a1='2'/>"
                "<action-para id='b'/><action-para id='c' b1='4' filter='pt1'/></action><x/><action/>"
                "<action><action-para filter='lag' filter-time='3'/></action></e>");
    xmlRead = XmlReadTables();
    const ACTION_STRUCT *a = read.list, *plain = a->next; // plain has no variable: a new action's ranges
    EXPECT_EQ(blocks(a), "|0-10:2 10-50:3 |0-0:3 0-0:100 |0-0:1 0-5:0 5-8:1 |0-0:2 0-4:0 4-7:2147483647 |");
    EXPECT_EQ(std::make_tuple(std::string(a->var), a->a1, std::string(a->var2), a->var2B1, a->filter),
              std::make_tuple(std::string("a"), 2.0f, std::string("c"), 4.0f, int(KR_FILTER_LAG)));
    EXPECT_EQ(std::make_tuple(a->id, plain->id, plain->a1, plain->filterTime, plain->next->id, plain->next->filter,
                              plain->next->filterTime),
              std::make_tuple(0, 1, 1.0f, 1.0f, 2, int(KR_FILTER_NONE), 3.0f));
}

} // namespace
