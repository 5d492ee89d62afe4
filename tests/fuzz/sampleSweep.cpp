#include "sampleSweep.h"

#include "Korel2D.h"
#include "fuzzView.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace k2dfuzz {
namespace {

using Bytes = std::vector<uint8_t>;

// One frame before start and one running: enough to lay out, format and draw each element once.
constexpr int kFramesRunning = 1;

// Byte offsets in a text record's body, which follows the kind code, the name and the id.
constexpr size_t kAlignAt = 24;
constexpr size_t kFamilyAt = 44;
constexpr size_t kFamilySize = 64;
constexpr size_t kFontStyleAt = 108;
constexpr size_t kFontSizeAt = 116;
constexpr size_t kTextSizeAt = 120;
constexpr size_t kLengthAt = 148;
constexpr size_t kTextAt = 152;

// With K2DFUZZ_SWEEP_CASES set, each case is named before it runs: the last name printed is
// the case that died, to be rebuilt by hand.
bool namingCases = false;

template <typename... Args>
void describe(const char* format, Args... args)
{
    if (namingCases)
        std::fprintf(stderr, format, args...);
}

int32_t integerAt(const Bytes& bytes, size_t at)
{
    return int32_t(uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 | uint32_t(bytes[at + 2]) << 8 |
                   uint32_t(bytes[at + 3]));
}

void setInteger(Bytes& bytes, size_t at, int32_t value)
{
    for (int i = 0; i < 4; ++i)
        bytes[at + size_t(i)] = uint8_t(uint32_t(value) >> (24 - 8 * i));
}

// A counted string as a file stores it: its length with the terminator, then the bytes.
Bytes counted(const char* text)
{
    const size_t length = strlen(text) + 1;
    Bytes bytes(4 + length);
    setInteger(bytes, 0, int32_t(length));
    std::copy(text, text + length, bytes.begin() + 4);
    return bytes;
}

// Where the fields of each text record begin: the texts the reader found, sought again in the
// bytes by the kind code, name and id that open their records.
void findTextBodies(const Bytes& bytes, const ELEMENT_STRUCT* list, std::set<size_t>& bodies)
{
    for (const ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP)
            findTextBodies(bytes, e->child, bodies);
        if (e->type != KR_TEXT)
            continue;
        Bytes opening = counted(e->name), id = counted(e->id);
        opening.insert(opening.end(), id.begin(), id.end());
        const auto find = [&](Bytes::const_iterator from) {
            return std::search(from, bytes.end(), opening.begin(), opening.end());
        };
        for (auto at = find(bytes.begin() + 4); at != bytes.end(); at = find(at + 1)) {
            const size_t start = size_t(at - bytes.begin());
            const int32_t kind = integerAt(bytes, start - 4);
            if ((kind == KR_TEXT || kind == KR_TEXT_OLD) && start + opening.size() + kTextAt <= bytes.size())
                bodies.insert(start + opening.size());
        }
    }
}

struct IntegerGarble {
    size_t at;
    int32_t value;
    const char* what;
};

const IntegerGarble kIntegerGarbles[] = {
    {kTextSizeAt, 0, "text size 0"},
    {kTextSizeAt, -30, "text size -30"},
    {kTextSizeAt, INT32_MAX, "text size 2^31-1"},
    {kTextSizeAt, INT32_MIN, "text size -2^31"},
    {kFontSizeAt, 0, "font size 0"},
    {kFontSizeAt, -30, "font size -30"},
    {kFontSizeAt, INT32_MAX, "font size 2^31-1"},
    {kAlignAt, 99, "align 99"},
    {kAlignAt, -1, "align -1"},
    {kFontStyleAt, 99, "font style 99"},
    {kLengthAt, INT32_MAX, "text length 2^31-1"},
    {kLengthAt, -2, "text length -2"},
};

// Unknown, empty, and a field with no terminator.
const std::string kFamilyGarbles[] = {"No Such Family", "", std::string(kFamilySize, 'W')};

void run(const Bytes& bytes, size_t size)
{
    runView(bytes.data(), size, kFramesRunning);
}

// Returns false when the sample itself doesn't load.
bool sweepSample(const std::string& name, const Bytes& sample, size_t& textRecords)
{
    describe("sweep: %s whole\n", name.c_str());
    if (!runView(sample.data(), sample.size(), kFramesRunning)) {
        std::fprintf(stderr, "sweep: %s doesn't load\n", name.c_str());
        return false;
    }
    for (size_t cut = 0; cut < sample.size(); ++cut) {
        describe("sweep: %s cut to %zu bytes\n", name.c_str(), cut);
        run(sample, cut);
    }

    std::set<size_t> bodies;
    if (VIEW_STRUCT* view = krViewLoadData(sample.data(), sample.size())) {
        findTextBodies(sample, view->elements, bodies);
        krViewFree(view);
    }
    textRecords += bodies.size();
    for (size_t body : bodies) {
        for (const IntegerGarble& garble : kIntegerGarbles) {
            describe("sweep: %s, text at %zu with %s\n", name.c_str(), body, garble.what);
            Bytes copy = sample;
            setInteger(copy, body + garble.at, garble.value);
            run(copy, copy.size());
        }
        for (const std::string& family : kFamilyGarbles) {
            describe("sweep: %s, text at %zu in family \"%s\"\n", name.c_str(), body, family.c_str());
            Bytes copy = sample;
            std::fill_n(copy.begin() + long(body + kFamilyAt), kFamilySize, 0);
            std::copy(family.begin(), family.end(), copy.begin() + long(body + kFamilyAt));
            run(copy, copy.size());
        }
    }

    std::printf("sweep: %s: %zu cuts, %zu text records garbled\n", name.c_str(), sample.size(), bodies.size());
    std::fflush(stdout);
    return true;
}

} // namespace

int sweepSamples(const fs::path& dir)
{
    std::vector<fs::path> samples;
    for (const fs::directory_entry& entry : fs::directory_iterator(dir))
        if (entry.is_regular_file() && entry.path().extension() == ".k2d")
            samples.push_back(entry.path());
    std::sort(samples.begin(), samples.end());
    if (samples.empty()) {
        std::fprintf(stderr, "sweep: no *.k2d in %s\n", dir.c_str());
        return 1;
    }
    namingCases = std::getenv("K2DFUZZ_SWEEP_CASES") != nullptr;
    size_t textRecords = 0;
    for (const fs::path& path : samples) {
        std::ifstream in(path, std::ios::binary);
        const Bytes sample{std::istreambuf_iterator<char>(in), {}};
        if (!sweepSample(path.filename().string(), sample, textRecords))
            return 1;
    }
    if (textRecords == 0) {
        std::fprintf(stderr, "sweep: no text record found to garble in %s\n", dir.c_str());
        return 1;
    }
    std::printf("sweep: %zu samples ran\n", samples.size());
    return 0;
}

} // namespace k2dfuzz
