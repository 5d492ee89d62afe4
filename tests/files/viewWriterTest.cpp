// Writing binary view files: the bytes of a saved view, and views that come back from their
// own file with every stored field and every pixel, whole, edited, cut short or garbled.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "SampleFiles.h"
#include "StoredView.h"
#include "ViewFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

// A file of the test's own, in memory where the system has that: one test writes thousands.
struct ScratchFile {
    static inline int count = 0;
    const std::string path = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + "/krSaved" +
                             std::to_string(getpid()) + "-" + std::to_string(count++);
    ~ScratchFile() { remove(path.c_str()); }
};

// The bytes saveFile writes for the view, or none when it fails.
std::vector<uint8_t> saved(const VIEW_STRUCT* view)
{
    ScratchFile file;
    return saveFile(file.path.c_str(), view->elements, view->dataTypes, view) == 0 ? fileBytes(file.path)
                                                                                    : std::vector<uint8_t>();
}

// "" for equal files, else their sizes and the first offset where they differ.
std::string byteDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b)
{
    const long at = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
    return a == b ? "" : "sizes " + std::to_string(a.size()) + " / " + std::to_string(b.size()) + ", from " +
                             std::to_string(at);
}

int32_t integerAt(const std::vector<uint8_t>& bytes, size_t at)
{
    return int32_t(uint32_t(bytes[at]) << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3]);
}

// What a load does to each variable parameter: its text buffer grows by 12 bytes, zeros at the end.
void growParameterBuffers(DD_DATA_TYPE_STRUCT* sources)
{
    for (; sources; sources = sources->next)
        for (VARIABLE_STRUCT* v = sources->variables; v; v = v->next)
            for (PARA_STRUCT* p = v->para; p < v->para + sources->nrVar; ++p) {
                p->sval = static_cast<char*>(realloc(p->sval, p->size + 12));
                memset(p->sval + p->size, 0, 12);
                p->size += 12;
            }
}

// Whatever of the bytes loads is saved and loaded again, and stores the same.
void expectComesBack(const std::vector<uint8_t>& bytes, const std::string& label)
{
    static const ScratchFile first, second;
    std::ofstream(first.path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), long(bytes.size()));
    FileView loaded(first.path);
    if (loaded.result != 0)
        return;
    ASSERT_EQ(saveFile(second.path.c_str(), loaded.view.elements, loaded.view.dataTypes, &loaded.view), 0) << label;
    FileView back(second.path);
    ASSERT_EQ(firstStoredDifference(&loaded.view, &back.view), "") << label;
}

int differentPixels(const Frame& a, const Frame& b)
{
    int n = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            n += a.at(x, y).r != b.at(x, y).r || a.at(x, y).g != b.at(x, y).g || a.at(x, y).b != b.at(x, y).b;
    return n;
}

class ViewWriter : public ViewTest {};

// An empty view: header, page, marker and no source. A file that can't be made is no save.
TEST_F(ViewWriter, EmptyViewIsHeaderPageMarkerAndNoSource)
{
    const ViewBuilder expected =
        ViewBuilder(3, 4, "VIEW FILE 3.4\n").page(1, 2, 300, 200, 0.25f, 0.5f, 1).dataSection();
    const LoadedView page(expected);
    ASSERT_NE(page.view, nullptr);
    EXPECT_EQ(byteDifference(saved(page.view), expected.bytes()), "");

    testing::internal::CaptureStderr();
    EXPECT_EQ(saveFile("/nonexistent/dir/view.k2d", nullptr, nullptr, page.view), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "file open: No such file or directory\n");
    takeLog();
    EXPECT_EQ(saveFile("/dev/full", nullptr, nullptr, page.view), -1);
    EXPECT_EQ(takeLog(), "saveFile: cannot write /dev/full\n");
}

// Every shipped sample comes back from its file with all it stores and the same pixels. A view
// gives the same file twice, and its reloaded copy the same file but for the variable
// parameters, whose buffers every load makes 12 bytes larger.
TEST_F(ViewWriter, SamplesComeBackWithEveryFieldAndPixel)
{
    ASSERT_GE(samplePaths().size(), 7u);
    for (const std::string& path : samplePaths()) {
        SCOPED_TRACE(path);
        VIEW_STRUCT* first = krViewLoad(path.c_str());
        ASSERT_NE(first, nullptr);
        views.push_back(first);
        const std::vector<uint8_t> file = saved(first);
        EXPECT_EQ(byteDifference(saved(first), file), "");
        LoadedView second(file);
        ASSERT_NE(second.view, nullptr);
        EXPECT_EQ(firstStoredDifference(first, second.view), "");
        const std::vector<uint8_t> again = saved(second.view);
        growParameterBuffers(first->dataTypes);
        EXPECT_EQ(byteDifference(again, saved(first)), "");
        const Frame before = draw(first);
        EXPECT_GT(before.ink().lit, 1000) << "a sample shows something";
        EXPECT_EQ(differentPixels(before, draw(second.view)), 0);
    }
}

// What a save does beyond mirroring the reader, seen in Integers on disk (offsets below zero
// count from the end) and in a reloaded view that stores what the saved one holds.
TEST_F(ViewWriter, WhatASaveChanges)
{
    GraphFields badFont;
    badFont.fontSize = 41;
    ButtonFields pressed;
    pressed.state = 1;
    const ImageFields picture{0, 0, 64, 64, {1, 1, 1, 1}, 2, 2, 0, std::vector<uint8_t>(16, 0x80)};
    std::vector<uint8_t> oldText = blackPage().text(TextFields()).bytes();
    oldText[85] = KR_TEXT_OLD;
    const SourceFields missing{77, {{3, "host"}}, 1, {{0, "level", "5", {{4, std::string(70, 'p')}}, 76}}};
    const size_t body = 82 + 4 + 4 + 4; // kind, name length, id length
    const struct {
        const char* label;
        std::vector<uint8_t> view;
        std::function<void(VIEW_STRUCT*)> edit; // before the save
        std::vector<std::pair<long, int32_t>> onDisk;
    } cases[] = {
        {"an old text kind is stored as text", oldText, nullptr, {{82, KR_TEXT}}},
        {"a graph with a bad font stores the fall-back, behind the mark 7", blackPage().graph(badFont).bytes(),
         nullptr, {{body + 6 + 9 + 53 * 4, 7}, {body + 6 + 9 + 54 * 4 + 64, 1}, {body + 6 + 9 + 54 * 4 + 68, 12}}},
        {"names and ids are cut in place to their fields", blackPage().rect({}).bytes(),
         [](VIEW_STRUCT* v) {
             memset(v->elements->name, 'n', sizeof v->elements->name);
             memset(v->elements->id, 'i', sizeof v->elements->id);
         },
         {{86, 64}, {86 + 4 + 64, 256}}},
        {"an image whose picture isn't kept stores none", blackPage().image(picture).rect({}).bytes(),
         [](VIEW_STRUCT* v) {
             IMAGE_STRUCT* image = static_cast<IMAGE_STRUCT*>(v->elements->data);
             txDelete(image->texture);
             image->texture = -1;
         },
         {{body + 6 + 9 + 12 * 4 + 4 + 128 + 4, 0}, {body + 6 + 9 + 12 * 4 + 4 + 128 + 8, 0}}},
        {"a button stores the state its last stopped draw showed", blackPage().button(pressed).bytes(),
         [this](VIEW_STRUCT* v) { draw(v); }, {{body + 7 + 10 + 21 * 4, 0}}},
        {"a source without its plug-in keeps type, parameters and variables; a parameter buffer of 76 bytes "
         "read into 88 stores 88",
         blackPage().dataSection({missing}).bytes(), nullptr,
         {{-320, 20}, {-316, 1}, {-312, 77}, {-308, 1}, {-304, 1}, {-300, 3}, {-92, 88}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        VIEW_STRUCT* view = krViewLoadData(c.view.data(), c.view.size());
        ASSERT_NE(view, nullptr);
        views.push_back(view);
        if (c.edit)
            c.edit(view);
        const std::vector<uint8_t> file = saved(view);
        for (const auto& [at, value] : c.onDisk)
            EXPECT_EQ(integerAt(file, size_t(at < 0 ? long(file.size()) + at : at)), value) << "at " << at;
        LoadedView back(file);
        EXPECT_EQ(firstStoredDifference(view, back.view), "");
    }
}

// The file stores no radii: an ellipse and an arc whose radii aren't those a load gives are
// drawn from their file at the size they had.
TEST_F(ViewWriter, RadiiSurviveInTheMatrix)
{
    CircleFields arc;
    arc.x = 300;
    arc.end = 4;
    VIEW_STRUCT* view = load(blackPage().circle({}).circle(arc));
    ASSERT_NE(view, nullptr);
    view->elements->next->type = KR_ARC;
    for (ELEMENT_STRUCT* e = view->elements; e; e = e->next) {
        CIRCLE_STRUCT* c = static_cast<CIRCLE_STRUCT*>(e->data);
        c->rx = 50;
        c->ry = 150;
    }
    setElementAttr(view->elements);
    const Frame before = draw(view);
    EXPECT_GT(before.ink(0, 0, 200).height(), 2 * before.ink(0, 0, 200).width()) << "the ellipse is upright";
    LoadedView back(saved(view));
    ASSERT_NE(back.view, nullptr);
    EXPECT_EQ(differentPixels(before, draw(back.view)), 0);
}

// Cut at every byte and garbled in 2,000 ways in all: whatever of a sample loads comes back the
// same. One case per sample, so that each runs within its own time limit.
class ViewWriterDamaged : public testing::TestWithParam<std::string> {};

TEST_P(ViewWriterDamaged, WhateverLoadsComesBackTheSame)
{
    const std::vector<uint8_t> whole = fileBytes(GetParam());
    for (size_t n = 9; n <= whole.size(); ++n)
        expectComesBack({whole.begin(), whole.begin() + long(n)}, "cut at " + std::to_string(n));
    std::mt19937 random(2026);
    const size_t copies = (2000 + samplePaths().size() - 1) / samplePaths().size();
    for (size_t round = 0; round < copies; ++round) {
        std::vector<uint8_t> copy = whole;
        for (int flips = 1 + int(random() % 6); flips > 0; --flips)
            copy[38 + random() % (copy.size() - 38)] ^= uint8_t(1 + random() % 255);
        expectComesBack(copy, "garbled copy " + std::to_string(round));
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, ViewWriterDamaged, testing::ValuesIn(samplePaths()),
                         [](const testing::TestParamInfo<std::string>& info) {
                             return std::filesystem::path(info.param).stem().string();
                         });

} // namespace
