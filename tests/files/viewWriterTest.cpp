// Writing binary view files: the bytes of a saved view, and views that come back from their
// own file with every stored field and every pixel, whole, edited, cut short or garbled.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "StoredView.h"
#include "ViewFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iostream>
#include <tuple>
#include <cstdlib>
#include <dirent.h>
#include <functional>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

using namespace k2dtest;
using namespace korelgen;

namespace {

std::vector<uint8_t> fileBytes(const std::string& path)
{
    std::vector<uint8_t> bytes;
    if (FILE* f = fopen(path.c_str(), "rb")) {
        uint8_t chunk[65536];
        for (size_t got; (got = fread(chunk, 1, sizeof chunk, f)) > 0;)
            bytes.insert(bytes.end(), chunk, chunk + got);
        fclose(f);
    }
    return bytes;
}

// A file of the test's own, removed at the end.
struct ScratchFile {
    std::string path;
    ScratchFile()
    {
        // In memory where the system has it: some tests write tens of thousands of files.
        char inMemory[] = "/dev/shm/krSavedXXXXXX", onDisk[] = "/tmp/krSavedXXXXXX";
        char* name = inMemory;
        int fd = mkstemp(name);
        if (fd < 0)
            fd = mkstemp(name = onDisk);
        close(fd);
        path = name;
    }
    ~ScratchFile() { remove(path.c_str()); }
};

// The bytes saveFile writes for the view, or none when it fails.
std::vector<uint8_t> saved(VIEW_STRUCT* view)
{
    ScratchFile file;
    return saveFile(file.path.c_str(), view->elements, view->dataTypes, view) == 0 ? fileBytes(file.path)
                                                                                    : std::vector<uint8_t>();
}

int32_t integerAt(const std::vector<uint8_t>& bytes, size_t at)
{
    return int32_t(uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 | uint32_t(bytes[at + 2]) << 8 |
                   bytes[at + 3]);
}

// The data section as a reader of the second file expects it: every variable parameter's
// buffer 12 bytes larger than written, zeros at its end.
std::vector<uint8_t> grownParameters(const std::vector<uint8_t>& section)
{
    std::vector<uint8_t> out;
    size_t at = 0;
    auto copy = [&](size_t n) {
        out.insert(out.end(), section.begin() + long(at), section.begin() + long(at + n));
        at += n;
    };
    auto integer = [&] {
        const int32_t v = integerAt(section, at);
        copy(4);
        return v;
    };
    for (int32_t sources = integer(); sources > 0; --sources) {
        copy(4);
        const int32_t dataCount = integer(), parameterCount = integer();
        copy(size_t(std::max(dataCount, 0)) * 68);
        for (int32_t variables = integer(); variables > 0; --variables) {
            copy(4 + 64 + 64);
            for (int32_t i = 0; i < parameterCount; ++i) {
                copy(4);
                const int32_t n = integerAt(section, at);
                at += 4;
                for (int shift = 24; shift >= 0; shift -= 8)
                    out.push_back(uint8_t(uint32_t(n + 12) >> shift));
                copy(size_t(n));
                out.insert(out.end(), 12, 0);
            }
        }
    }
    EXPECT_EQ(at, section.size()) << "the data section ends where the file does";
    return out;
}

// A view as the reader makes it from a file, before any source is matched to a library:
// cheap enough to load tens of thousands of times.
struct FileView {
    VIEW_STRUCT view = {};
    int result;
    explicit FileView(const std::string& path) : result(loadFile(path.c_str(), &view.elements, &view.dataTypes, &view)) {}
    ~FileView()
    {
        elementDeleteAll(&view.elements);
        while (view.dataTypes)
            delDataType(&view.dataTypes, view.dataTypes, 0);
    }
};

void writeFile(const std::string& path, const std::vector<uint8_t>& bytes)
{
    FILE* f = fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr) << path;
    fwrite(bytes.data(), 1, bytes.size(), f);
    fclose(f);
}

// Whatever of the bytes loads is saved and loaded again: both views store the same.
void expectComesBack(const std::vector<uint8_t>& bytes, const std::string& label, const ScratchFile& first,
                     const ScratchFile& second)
{
    writeFile(first.path, bytes);
    FileView loaded(first.path);
    if (loaded.result != 0)
        return;
    ASSERT_EQ(saveFile(second.path.c_str(), loaded.view.elements, loaded.view.dataTypes, &loaded.view), 0) << label;
    FileView back(second.path);
    ASSERT_EQ(back.result, 0) << label;
    ASSERT_EQ(firstStoredDifference(&loaded.view, &back.view), "") << label;
}

std::vector<std::string> samplePaths()
{
    std::vector<std::string> paths;
    if (DIR* dir = opendir(KOREL2D_EXAMPLES_DIR)) {
        while (const dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".k2d") == 0)
                paths.push_back(std::string(KOREL2D_EXAMPLES_DIR) + "/" + name);
        }
        closedir(dir);
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

int differentPixels(const Frame& a, const Frame& b)
{
    int n = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const Rgb p = a.at(x, y), q = b.at(x, y);
            n += p.r != q.r || p.g != q.g || p.b != q.b;
        }
    return n;
}

class ViewWriter : public ViewTest {};

// An empty view: header, page, marker and no source. A file that can't be made is no save.
TEST_F(ViewWriter, EmptyViewIsHeaderPageMarkerAndNoSource)
{
    VIEW_STRUCT page = {};
    page.x = 1, page.y = 2, page.width = 300, page.height = 200;
    page.pageColor[0] = 0.25f, page.pageColor[1] = 0.5f, page.pageColor[2] = 1;
    ScratchFile file;
    ASSERT_EQ(saveFile(file.path.c_str(), nullptr, nullptr, &page), 0);
    const ViewBuilder expected =
        ViewBuilder(3, 4, "VIEW FILE 3.4\n").page(1, 2, 300, 200, 0.25f, 0.5f, 1).dataSection();
    EXPECT_EQ(fileBytes(file.path), expected.bytes());
    EXPECT_EQ(expected.size(), 90u);

    testing::internal::CaptureStderr();
    EXPECT_EQ(saveFile("/nonexistent/dir/view.k2d", nullptr, nullptr, &page), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "file open: No such file or directory\n");
    takeLog();
    EXPECT_EQ(saveFile("/dev/full", nullptr, nullptr, &page), -1);
    EXPECT_EQ(takeLog(), "saveFile: cannot write /dev/full\n");
}

// Every shipped sample comes back from its file with all it stores and the same pixels; a
// view gives the same file twice, and its reloaded copy the same file but for the variable
// parameters, whose buffers every load makes 12 bytes larger.
TEST_F(ViewWriter, SamplesComeBackWithEveryFieldAndPixel)
{
    const std::vector<std::string> samples = samplePaths();
    ASSERT_GE(samples.size(), 7u);
    for (const std::string& path : samples) {
        SCOPED_TRACE(path);
        VIEW_STRUCT* first = krViewLoad(path.c_str());
        ASSERT_NE(first, nullptr);
        views.push_back(first);
        const std::vector<uint8_t> file = saved(first);
        ASSERT_GT(file.size(), 90u);
        EXPECT_EQ(std::string(file.begin(), file.begin() + 14), "VIEW FILE 3.4\n");
        EXPECT_EQ(saved(first), file);
        VIEW_STRUCT* second = krViewLoadData(file.data(), file.size());
        ASSERT_NE(second, nullptr);
        views.push_back(second);
        EXPECT_EQ(firstStoredDifference(first, second), "");

        // The section alone is what a view without elements stores behind its marker.
        ScratchFile sourcesOnly;
        ASSERT_EQ(saveFile(sourcesOnly.path.c_str(), nullptr, first->dataTypes, first), 0);
        const std::vector<uint8_t> emptyView = fileBytes(sourcesOnly.path);
        const std::vector<uint8_t> section(emptyView.begin() + 86, emptyView.end());
        std::vector<uint8_t> expected(file.begin(), file.end() - long(section.size()));
        const std::vector<uint8_t> grown = grownParameters(section);
        expected.insert(expected.end(), grown.begin(), grown.end());
        EXPECT_EQ(saved(second), expected);

        const Frame before = draw(first);
        EXPECT_GT(before.ink().lit, 1000) << "a sample shows something";
        EXPECT_EQ(differentPixels(before, draw(second)), 0);
    }
}

// What the writer does beyond mirroring the reader, each seen on disk and in the view that
// comes back from the file.
TEST_F(ViewWriter, WhatASaveChanges)
{
    GraphFields badFont;
    badFont.fontSize = 41;
    PolyFields filled;
    filled.fillOn = 1;
    ButtonFields pressed;
    pressed.state = 1;
    const ImageFields picture{0, 0, 64, 64, {1, 1, 1, 1}, 2, 2, 0, std::vector<uint8_t>(16, 0x80)};
    // A text record under the code of the old text kind.
    std::vector<uint8_t> oldTextBytes = blackPage().text(TextFields()).bytes();
    oldTextBytes[85] = KR_TEXT_OLD;
    SourceFields missing{77, {{3, "host"}}, 1, {{0, "level", "5", {{4, std::string(70, 'p')}}, 76}}};
    const struct {
        const char* label;
        std::vector<uint8_t> view;
        std::function<void(VIEW_STRUCT*)> edit; // before the save
        std::function<void(const std::vector<uint8_t>& file, const ELEMENT_STRUCT* back)> check;
    } cases[] = {
        {"an old text kind is stored as text", oldTextBytes,
         nullptr,
         [](const std::vector<uint8_t>& file, const ELEMENT_STRUCT* back) {
             EXPECT_EQ(integerAt(file, 82), KR_TEXT);
             EXPECT_EQ(back->type, uint32_t(KR_TEXT));
         }},
        {"a graph's bad font is stored as the fall-back, behind the mark 7", blackPage().graph(badFont).bytes(), nullptr,
         [](const std::vector<uint8_t>& file, const ELEMENT_STRUCT* back) {
             const size_t fontAt = 82 + 4 + 4 + 6 + 4 + 9 + 54 * 4;
             EXPECT_EQ(integerAt(file, fontAt - 4), 7);
             EXPECT_EQ(std::string(reinterpret_cast<const char*>(&file[fontAt])), "Courier [fixed]");
             const GRAPH_STRUCT* g = static_cast<const GRAPH_STRUCT*>(back->data);
             EXPECT_EQ(std::make_tuple(std::string(g->fontFamily), g->fontStyle, g->fontSize),
                       std::make_tuple(std::string("Courier [fixed]"), 1, 12));
         }},
        {"a polyline stores no fill pattern", blackPage().polyline(filled).bytes(),
         [](VIEW_STRUCT* v) { static_cast<POLY_STRUCT*>(v->elements->data)->fillStyle = 5; },
         [](const std::vector<uint8_t>& file, const ELEMENT_STRUCT*) {
             EXPECT_EQ(integerAt(file, 82 + 4 + 4 + 9 + 4 + 12 + 14 * 4), 0);
         }},
        {"names and ids are cut in place to their fields", blackPage().rect({}).bytes(),
         [](VIEW_STRUCT* v) {
             memset(v->elements->name, 'n', sizeof v->elements->name);
             memset(v->elements->id, 'i', sizeof v->elements->id);
         },
         [](const std::vector<uint8_t>& file, const ELEMENT_STRUCT* back) {
             EXPECT_EQ(std::make_tuple(integerAt(file, 86), integerAt(file, 86 + 4 + 64)), std::make_tuple(64, 256));
             EXPECT_EQ(std::string(back->name), std::string(63, 'n'));
             EXPECT_EQ(std::string(back->id), std::string(255, 'i'));
         }},
        {"an image whose picture isn't kept stores none", blackPage().image(picture).rect({}).bytes(),
         [](VIEW_STRUCT* v) {
             IMAGE_STRUCT* image = static_cast<IMAGE_STRUCT*>(v->elements->data);
             txDelete(image->texture);
             image->texture = -1;
         },
         [](const std::vector<uint8_t>& file, const ELEMENT_STRUCT* back) {
             const size_t sizeAt = 82 + 4 + 4 + 6 + 4 + 9 + 12 * 4 + 4 + 128 + 4;
             EXPECT_EQ(std::make_tuple(integerAt(file, sizeAt), integerAt(file, sizeAt + 4)), std::make_tuple(0, 0));
             EXPECT_EQ(txData(static_cast<const IMAGE_STRUCT*>(back->data)->texture), nullptr);
             EXPECT_EQ(back->next->type, uint32_t(KR_RECT));
         }},
        {"a button stores the state its last stopped draw showed", blackPage().button(pressed).bytes(),
         [this](VIEW_STRUCT* v) { draw(v); },
         [](const std::vector<uint8_t>&, const ELEMENT_STRUCT* back) {
             EXPECT_EQ(static_cast<const BUTTON_STRUCT*>(back->data)->state, 0);
         }},
        {"a source without its plug-in keeps type, parameters and variables",
         blackPage().rect({}).dataSection({missing}).bytes(), nullptr,
         [](const std::vector<uint8_t>& file, const ELEMENT_STRUCT*) {
             const size_t sectionAt = file.size() - (4 + 12 + 68 + 4 + 132 + 8 + 88);
             EXPECT_EQ(integerAt(file, sectionAt - 4), 20);
             EXPECT_EQ(std::make_tuple(integerAt(file, sectionAt + 4), integerAt(file, sectionAt + 16)),
                       std::make_tuple(77, 3));
             EXPECT_EQ(integerAt(file, file.size() - 92), 88) << "a buffer of 76 bytes read into 88";
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        VIEW_STRUCT* view = krViewLoadData(c.view.data(), c.view.size());
        ASSERT_NE(view, nullptr);
        views.push_back(view);
        if (c.edit)
            c.edit(view);
        const std::vector<uint8_t> file = saved(view);
        LoadedView back(file);
        ASSERT_NE(back.view, nullptr);
        c.check(file, back.first());
        // The cut name and id stay cut in the saved view too.
        EXPECT_EQ(firstStoredDifference(view, back.view), "");
    }
}

// Cut at every byte and garbled in thousands of ways: whatever of a sample loads, saves and
// comes back the same.
TEST(ViewWriterDamaged, WhateverLoadsComesBackTheSame)
{
    const auto start = std::chrono::steady_clock::now();
    const ScratchFile first, second;
    std::vector<std::vector<uint8_t>> samples;
    for (const std::string& path : samplePaths()) {
        samples.push_back(fileBytes(path));
        const std::vector<uint8_t>& whole = samples.back();
        for (size_t n = 9; n <= whole.size(); ++n)
            expectComesBack(std::vector<uint8_t>(whole.begin(), whole.begin() + long(n)),
                            path + " cut at " + std::to_string(n), first, second);
    }
    ASSERT_FALSE(samples.empty());
    std::mt19937 random(2026);
    for (int round = 0; round < 2000; ++round) {
        std::vector<uint8_t> copy = samples[size_t(round) % samples.size()];
        for (int flips = 1 + int(random() % 6); flips > 0; --flips)
            copy[38 + random() % (copy.size() - 38)] ^= uint8_t(1 + random() % 255);
        expectComesBack(copy, "garbled copy " + std::to_string(round), first, second);
    }
    std::cout << "  " << std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() << " s\n";
}

} // namespace
