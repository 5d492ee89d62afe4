// An editing tool changes a view in any way its interface allows, garbage included, and the
// file it saves brings back every stored field as it stood when saved. Driven by garbage
// through the elements' own edits, on sound and damaged files, nothing breaks (the sanitizer
// build watches the conversions).
#include "KorelEdit.h"
#include "LoadedView.h"
#include "SampleFiles.h"
#include "StoredView.h"
#include "ViewFixture.h"

#include <climits>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

using namespace k2dtest;

namespace {

struct RandomEdits {
    std::mt19937 rng;
    VIEW_STRUCT* view;

    int below(int n) { return int(rng() % unsigned(n)); }
    float number()
    {
        static const float special[] = {0, -1, -250.5f, 1e30f, -1e30f, NAN, HUGE_VALF, -HUGE_VALF, 2.5f};
        return below(3) ? std::uniform_real_distribution<float>(-600, 600)(rng) : special[below(9)];
    }
    int whole()
    {
        static const int special[] = {0, -7, 1, 30, 1000, INT_MAX, INT_MIN};
        return special[below(7)];
    }
    std::string text() { return std::string(size_t(below(301)), char('A' + below(26))); }
    // A pointer anywhere, of no number even, on one of the element's grab points or near its box.
    float pointer(const ELEMENT_STRUCT* e, int axis)
    {
        const float low = e->bounds[axis], high = e->bounds[axis + 2];
        switch (below(4)) {
        case 0: return number();
        case 1: return e->grabPoints[below(10)][axis];
        default: return low + (high - low) * std::uniform_real_distribution<float>(-1, 2)(rng);
        }
    }

    // One entry of a list the interface hands out, or null for an empty one.
    template <class Record> Record* pick(Record** all, const int* count)
    {
        Record* one = *count ? all[below(*count)] : nullptr;
        krFree(all);
        return one;
    }

    // An element's own edit as a tool might call it, modifiers and all, with any code in any
    // phase; then one through the object interface.
    void editOnce()
    {
        int count = 0;
        ELEMENT_STRUCT* e = pick(krObjGetAll(view, &count), &count);
        ACTION_STRUCT* a = pick(krActionGetAll(e, &count), &count);
        DD_DATA_TYPE_STRUCT* s = pick(krDataSourceGetAll(view, &count), &count);
        VARIABLE_STRUCT* v = pick(krVarGetAll(s, &count), &count);
        if (e && e->edit) {
            setShift(below(2));
            setCtrl(below(2));
            KR_EDIT_VALUE value = {};
            value.x = pointer(e, 0), value.y = pointer(e, 1), value.width = number();
            for (float& c : value.color)
                c = below(2) ? number() : float(below(2));
            value.number = below(2) ? whole() : below(20);
            const std::string t = text(); // without a terminator when it fills the field
            memcpy(value.string, t.data(), std::min(t.size() + 1, sizeof value.string));
            e->edit(e, e->stickies, below(131), below(5), &value);
        }
        switch (below(10)) {
        case 0: {
            OBJ_ATTR attr;
            krObjGetAttr(e, &attr);
            attr.mask = uint32_t(below(32));
            attr.x = number(), attr.y = number(), attr.width = number(), attr.height = number();
            attr.strokeWidth = whole(), attr.strokeStyle = whole(), attr.fillOn = whole(), attr.samples = whole();
            attr.strokeColor[below(4)] = number(), attr.fillColor[below(4)] = number(), attr.ymax = number();
            attr.rate = number(), attr.gridColor[below(4)] = number();
            const std::string t = text(); // without a terminator when it fills the field
            memcpy(attr.text, t.data(), std::min(t.size() + 1, sizeof attr.text));
            krObjSetAttr(e, &attr);
            break;
        }
        case 1: krObjSetX(e, number()); break;
        case 2: krObjSetY(e, number()); break;
        case 3: krObjSetWidth(e, number()); break;
        case 4: krObjSetHeight(e, number()); break;
        case 5: krObjSetSamples(e, whole()); break;
        case 6: krObjSetUpdateRate(e, whole()); break;
        case 7: krActionSetScale(a, number(), number(), number(), number()); break;
        case 8: krActionSetColor(a, number(), number(), number()); break;
        default: krVarSetPara(v, below(3), whole(), text().c_str());
        }
    }
};

using EditGarbage = ViewTest;

// 10,000 rounds in all, on each sample and damaged copies of it: an edit through the element's
// own interface and one through the object interface, drawn and saved; the file saved from the
// sound copy then brings back every stored field.
TEST_F(EditGarbage, RandomEditsOfSoundAndDamagedFilesDrawAndSave)
{
    constexpr int kCopies = 25, kEdits = 50; // the first copy sound, the others damaged
    constexpr size_t kHeaderSize = 38;        // kept whole, so that the copies load as views
    const std::string path = "/tmp/krGarbage" + std::to_string(getpid()) + ".k2d";
    std::mt19937 damage(7);
    int edited = 0;
    for (const std::string& sample : samplePaths()) {
        std::ifstream in(sample, std::ios::binary);
        const std::vector<uint8_t> whole{std::istreambuf_iterator<char>(in), {}};
        ASSERT_GT(whole.size(), 64u) << sample;
        for (int copy = 0; copy < kCopies; ++copy) {
            std::vector<uint8_t> bytes = whole;
            for (int flips = copy ? 1 + int(damage() % 8) : 0; flips > 0; --flips)
                bytes[kHeaderSize + damage() % (bytes.size() - kHeaderSize)] ^= uint8_t(1 + damage() % 255);
            LoadedView loaded(bytes);
            if (!loaded.view)
                continue;
            RandomEdits edits{std::mt19937(unsigned(copy)), loaded.view};
            for (int i = 0; i < kEdits; ++i, ++edited) {
                edits.editOnce();
                ASSERT_EQ(krWindowClear(window, loaded.view), 0);
                ASSERT_EQ(krViewDraw(window, loaded.view, 0, 0, 1), 0);
                saveFile(path.c_str(), loaded.view->elements, loaded.view->dataTypes, loaded.view);
            }
            FileView back(path);
            ASSERT_EQ(back.result, 0) << "copy " << copy << " of " << sample;
            if (copy == 0) { // a damaged copy need not come back field for field
                EXPECT_EQ(firstStoredDifference(loaded.view, &back.view), "") << sample;
            }
        }
    }
    setShift(0);
    setCtrl(0);
    remove(path.c_str());
    EXPECT_GT(edited, 8000);
}

} // namespace
