// Views of a few text and image records whose fields come from the fuzzer's bytes, written
// whole, so that the fuzzer reaches font sizes, families, alignments, formats and pixel
// bodies that flipping the bytes of a view file rarely reaches. Any bytes make a view: the
// empty corpus and view files alike are seeds.
#include "fuzzView.h"

#include "Korel2D.h"
#include "KorelDataSource.h"
#include "ViewBuilder.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace korelgen;

namespace {

constexpr int kFramesRunning = 2;
constexpr int kMostRecords = 4;
constexpr int kInternalSource = 5; // the view's own variables
constexpr size_t kLongestText = 320;  // past the 256 bytes a text record keeps
constexpr size_t kLongestFamily = 80; // past the 64 bytes of the field, which then has no terminator
constexpr size_t kLongestPixels = 64 * 64 * 4;
constexpr int32_t kPlausibleSide = 64;

const char* const kFamilies[] = {"Arial", "Courier [fixed]", "Times New Roman", "Helvetica [fixed]"};
const char* const kFormats[] = {"%5.1f", "%d", "%08x", "%e", "%.300f", "%-40g", "%s", "%n", "%%", "%lld %d"};

// Mostly the values a view means, sometimes any: the fuzzer's comparisons find the edges.
int32_t integerField(FuzzedDataProvider& in)
{
    return in.ConsumeBool() ? in.ConsumeIntegralInRange<int32_t>(-2, 300) : in.ConsumeIntegral<int32_t>();
}

// Any bit pattern when asked, NaN and the infinities included.
float realField(FuzzedDataProvider& in, float low, float high)
{
    if (in.ConsumeBool())
        return in.ConsumeFloatingPointInRange(low, high);
    const uint32_t bits = in.ConsumeIntegral<uint32_t>();
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Each of `count` fields within [low, high] or of any bit pattern.
void realFields(FuzzedDataProvider& in, float* fields, int count, float low, float high)
{
    for (int i = 0; i < count; ++i)
        fields[i] = realField(in, low, high);
}

std::string pick(FuzzedDataProvider& in, const char* const* known, size_t count, size_t longest)
{
    if (in.ConsumeBool())
        return known[in.ConsumeIntegralInRange<size_t>(0, count - 1)];
    return in.ConsumeRandomLengthString(longest);
}

TextFields textFields(FuzzedDataProvider& in)
{
    TextFields t;
    t.kind = in.ConsumeBool() ? KR_TEXT : KR_TEXT_OLD;
    t.x = realField(in, -50, 250);
    t.y = realField(in, -50, 200);
    realFields(in, t.color, 4, 0, 1);
    t.align = integerField(in);
    realFields(in, t.matrix, 4, -4, 4);
    t.fontFamily = pick(in, kFamilies, std::size(kFamilies), kLongestFamily);
    t.fontStyle = integerField(in);
    t.underline = integerField(in);
    t.fontSize = integerField(in);
    t.textSize = integerField(in);
    t.fillStyle = integerField(in);
    t.text = in.ConsumeRandomLengthString(kLongestText);
    return t;
}

// Width, height and the pixel body each on its own: the body may be shorter or longer than
// width * height * 4, and the sides negative or huge.
ImageFields imageFields(FuzzedDataProvider& in)
{
    ImageFields m;
    for (float* corner : {&m.x0, &m.y0, &m.x1, &m.y1})
        *corner = realField(in, -50, 250);
    realFields(in, m.tint, 4, 0, 1);
    const bool plausible = in.ConsumeBool();
    m.width = plausible ? in.ConsumeIntegralInRange<int32_t>(0, kPlausibleSide) : in.ConsumeIntegral<int32_t>();
    m.height = plausible ? in.ConsumeIntegralInRange<int32_t>(0, kPlausibleSide) : in.ConsumeIntegral<int32_t>();
    m.fillStyle = integerField(in);
    const size_t whole = plausible ? size_t(m.width) * size_t(m.height) * 4 : 0;
    const size_t length = in.ConsumeBool() ? whole : in.ConsumeIntegralInRange<size_t>(0, kLongestPixels);
    m.pixels = in.ConsumeBytes<uint8_t>(length);
    m.pixels.resize(length, 0x80); // the fuzzer's bytes may run out before the body does
    return m;
}

// A text action shows the variable through the format, replacing the stored text.
ActionFields textAction(FuzzedDataProvider& in, const std::string& var)
{
    ActionFields a;
    a.type = KR_ACTION_TEXT;
    a.var = var;
    a.format = pick(in, kFormats, std::size(kFormats), kLongestFamily);
    return a;
}

std::vector<uint8_t> textImageView(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    SourceFields variables;
    variables.id = kInternalSource;
    ViewBuilder b;
    b.page(0, 0, 200, 150, 0, 0, 0);
    const int records = in.ConsumeIntegralInRange(1, kMostRecords);
    for (int i = 0; i < records; ++i) {
        if (in.ConsumeBool()) {
            b.image(imageFields(in));
            continue;
        }
        const TextFields text = textFields(in);
        if (in.ConsumeBool()) {
            const std::string var = "v" + std::to_string(i);
            const int type = in.ConsumeIntegralInRange(0, int(KR_VAR_TEXT));
            variables.variables.push_back({type, var, in.ConsumeRandomLengthString(kLongestFamily), {}});
            b.actions({textAction(in, var)});
        }
        b.text(text);
    }
    return b.dataSection({variables}).bytes();
}

// The regression corpus replays views, not this harness's bytes: run on a crash with
// K2DFUZZ_SAVE_VIEW=FILE, the harness writes there the view it made.
const char* saveViewTo = nullptr;

void saveView(const std::vector<uint8_t>& view)
{
    if (FILE* out = std::fopen(saveViewTo, "wb")) {
        std::fwrite(view.data(), 1, view.size(), out);
        std::fclose(out);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    saveViewTo = std::getenv("K2DFUZZ_SAVE_VIEW");
    k2dfuzz::prepareProcess();
    if (!k2dfuzz::prepareDrawing())
        std::exit(1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::vector<uint8_t> view = textImageView(data, size);
    if (saveViewTo)
        saveView(view);
    k2dfuzz::runView(view.data(), view.size(), kFramesRunning);
    return 0;
}
