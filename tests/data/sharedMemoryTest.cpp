// Shared memory: values at byte offsets of another process's segment, in its byte order; the
// variable list taken from the segment's own directory; and segments that lie about themselves.
#include "KshmSegment.h"
#include "LoadedView.h"
#include "actions/actions.h"
#include "dataViews.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

enum Endian { kBig, kLittle };
enum AutoLoad { kOff, kOn };
constexpr int kLoadButton = 3;

std::string keyText(const KshmSegment& segment)
{
    char text[16];
    snprintf(text, sizeof text, "0x%x", unsigned(segment.key()));
    return text;
}

SourceFields shmSource(const std::string& key, Endian endian, AutoLoad autoLoad, std::vector<VariableFields> variables)
{
    return SourceFields{KRD_TYPE_SHARED_MEMORY, {{0, key}, {endian, ""}, {autoLoad, ""}, {0, ""}}, 1, std::move(variables)};
}

VariableFields at(const std::string& name, int type, const std::string& offset)
{
    return VariableFields{type, name, "", {{0, offset}}};
}

// The type and offset of each variable of the view's first source, one per line.
std::string variableList(VIEW_STRUCT* view)
{
    std::string list;
    for (const VARIABLE_STRUCT* v = view->dataTypes->variables; v; v = v->next)
        list += std::string(v->name) + " " + std::to_string(v->type) + " " + v->para[0].sval + "\n";
    return list;
}

// Bytes 01 02 03 04 05 06 07 08 from offset 8 and a big-endian 1.0f at 0: each type takes its
// width, swapped only where the orders differ and the value is wider than a byte.
TEST(SharedMemory, ReadsEachTypeInTheSegmentsByteOrder)
{
    KshmSegment segment(uniqueKshmKey(10), 64);
    ASSERT_TRUE(segment.ok());
    const uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    std::copy(bytes, bytes + 8, segment.bytes() + 8);
    const float one = 1.0f;
    segment.put(0, &one, sizeof one, true);
    const struct {
        int type;
        Endian endian;
        const char* value;
    } rows[] = {
        {KR_VAR_INT32, kBig, "16909060"},   {KR_VAR_INT32, kLittle, "67305985"}, {KR_VAR_INT8, kBig, "1"},
        {KR_VAR_UINT8, kLittle, "1"},       {KR_VAR_INT16, kBig, "258"},         {KR_VAR_UINT16, kLittle, "513"},
        {KR_VAR_INT64, kLittle, "67305985"}, {KR_VAR_UINT64, kBig, "16909060"},
    };
    for (const auto& row : rows) {
        LoadedView loaded(viewWith({shmSource(keyText(segment), row.endian, kOff,
                                              {at("v", row.type, "8"), at("f", KR_VAR_FLOAT, "0")})}));
        ASSERT_EQ(krViewStart(loaded.view), 0);
        fillDP(loaded.view->dataTypes);
        EXPECT_EQ(read(loaded.view, "v"), row.value) << "type " << row.type << " endian " << row.endian;
        EXPECT_EQ(read(loaded.view, "f"), row.endian == kBig ? "1.000000" : "0.000000");
        krViewStop(loaded.view);
    }
}

// The directory names the variables at each start with AUTO-LOAD on, or at the press of the
// load button; whatever the count claims, only entries inside the segment count, and a name keeps
// 51 characters. Start and stop leave the segment's attach count as it was.
TEST(SharedMemory, DirectoryGivesTheVariables)
{
    KshmSegment segment(uniqueKshmKey(11), 4096);
    ASSERT_TRUE(segment.ok());
    segment.writeDirectory({{"a", 2}, {"b", 99}, {"c", 0}, {std::string(60, 'd'), 16}});
    const int32_t value = 77;
    segment.put(KshmSegment::valueOffset(2), &value, sizeof value, true);
    ActionFields moveByC;
    moveByC.type = KR_ACTION_MOVE_X, moveByC.var = "c";
    LoadedView loaded(blackPage().actions({moveByC}).rect(RectFields()).dataSection(
        {shmSource(keyText(segment), kBig, kOn, {at("stale", KR_VAR_TEXT, "0")})}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);
    const int attached = segment.attachCount();
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(krViewStart(view), 0);
        ASSERT_EQ(krViewStop(view), 0);
    }
    EXPECT_EQ(segment.attachCount(), attached);
    const std::string expected = "a 0 120\nb 0 184\nc 6 248\n" + std::string(51, 'd') + " 3 312\n";
    EXPECT_EQ(variableList(view), expected);
    ASSERT_EQ(krViewStart(view), 0);
    fillDP(view->dataTypes);
    EXPECT_EQ(read(view, "c"), "77");
    // The element's action found the rebuilt variable by its name.
    EXPECT_EQ(view->elements->actions->variable, view->dataTypes->variables->next->next);
    krViewStop(view);

    // A count far beyond the segment, then none at all; the button rebuilds a stopped view.
    DD_DATA_TYPE_STRUCT* source = view->dataTypes;
    const int32_t counts[] = {INT32_MAX, 0};
    for (int i = 0; i < 2; ++i) {
        memcpy(segment.bytes() + 60, &counts[i], sizeof counts[i]);
        ASSERT_EQ(source->callbackData(kLoadButton, 0, nullptr, source), 0);
        EXPECT_EQ(countList(source->variables), i == 0 ? 63 : 0);
        EXPECT_EQ(segment.attachCount(), attached);
    }
}

// A missing segment, one too small for a directory, and offsets outside the segment: the view
// runs, the variables stay 0, and each problem is told once.
TEST(SharedMemory, MissingSegmentsAndStrayOffsetsAreHarmless)
{
    KshmSegment small(uniqueKshmKey(12), 16);
    ASSERT_TRUE(small.ok());
    memset(small.bytes(), 'x', 16);
    KshmSegment gone(uniqueKshmKey(13), 16);
    const std::string goneKey = keyText(gone);
    gone.release();
    setLogLevel(2);
    takeLog();
    testing::internal::CaptureStderr();
    LoadedView loaded(viewWith(
        {shmSource(goneKey, kBig, kOff, {at("none", KR_VAR_INT32, "0")}),
         shmSource(keyText(small), kBig, kOff,
                   {at("negative", KR_VAR_INT32, "-1"), at("lastByte", KR_VAR_INT32, "15"),
                    at("far", KR_VAR_DOUBLE, "2147483647"), at("text", KR_VAR_TEXT, "10"), at("byte", KR_VAR_INT8, "15")}),
         shmSource(keyText(small), kBig, kOn, {at("kept", KR_VAR_INT32, "0")})}));
    VIEW_STRUCT* view = loaded.view;
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(krViewStart(view), 0);
    for (int i = 0; i < 3; ++i)
        fillDP(view->dataTypes);
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_NE(errors.find("krdShmVarOpenShm: shmget: "), std::string::npos) << errors;
    EXPECT_NE(errors.find("key = " + goneKey + "\n"), std::string::npos) << errors;
    for (const char* name : {"none", "negative", "lastByte", "far"})
        EXPECT_EQ(number(view, name), 0) << name;
    EXPECT_EQ(read(view, "text") + read(view, "byte"), "xxxxxx120");
    // Under 64 bytes there is no directory: the source has no variables.
    EXPECT_EQ(countList(view->dataTypes->next->next->variables), 0);
    krViewStop(view);
    const std::string log = takeLog();
    for (const char* name : {"negative", "lastByte", "far"})
        EXPECT_NE(log.find(std::string("SHM DATA: ") + name + " at offset"), std::string::npos) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 3) << log;
}

} // namespace
