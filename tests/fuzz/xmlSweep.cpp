// The XML samples damaged: cut at every length, and garbled in their values, their Base64 and
// zlib data and their elements, each loaded and freed.
#include "sampleSweep.h"

#include "fuzzView.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace k2dfuzz {
namespace {

constexpr int kGarbledCopies = 10000;

// Where the parts of a document lie: each attribute's value, each element from its start tag
// to the end of its end tag, and the values of "data" attributes, which hold Base64 (of zlib
// streams, for pictures).
struct Span {
    size_t begin, end;
};

struct Layout {
    std::vector<Span> values, elements, encoded;
};

Layout layoutOf(const std::string& text)
{
    Layout layout;
    std::vector<std::pair<std::string, size_t>> open;
    for (size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) {
        const size_t close = text.find('>', at);
        if (close == std::string::npos)
            break;
        const bool endTag = text[at + 1] == '/';
        const size_t nameAt = at + (endTag ? 2 : 1);
        const std::string name = text.substr(nameAt, text.find_first_of(" />", nameAt) - nameAt);
        if (endTag) {
            // Well-formed samples: the innermost open element is the one that ends here.
            if (!open.empty() && open.back().first == name) {
                layout.elements.push_back({open.back().second, close + 1});
                open.pop_back();
            }
            continue;
        }
        for (size_t q = text.find("=\"", at); q < close; q = text.find("=\"", q + 1)) {
            const size_t end = text.find('"', q + 2);
            if (end > close)
                break;
            layout.values.push_back({q + 2, end});
            if (q >= 4 && text.compare(q - 4, 4, "data") == 0)
                layout.encoded.push_back({q + 2, end});
            q = end;
        }
        if (text[close - 1] == '/')
            layout.elements.push_back({at, close + 1});
        else if (text[at + 1] != '?')
            open.emplace_back(name, at);
    }
    return layout;
}

// Values where a number, a colour, a Base64 text or a name is expected.
const char* const kValues[] = {"1e39", "-1e39", "3.4e38", "1e-45", "99999999999999999999", "2147483648",
                               "-2147483649", "-1", "0", "nan", "-nan", "inf", "-inf", "x", "", " 7 ",
                               "0x", "#", "#zz", "#ffffffffff", "1.5.2", "true", "====", "&amp;&lt;"};
const char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

using Random = std::mt19937;

size_t pick(Random& random, size_t count)
{
    return std::uniform_int_distribution<size_t>(0, count - 1)(random);
}

// One to three of: a value replaced, a Base64 text cut, changed or given a stray character, an
// element dropped or repeated. Each change is made on the text as it stands, its layout found anew.
std::string garble(const std::string& sample, Random& random)
{
    std::string text = sample;
    for (size_t changes = 1 + pick(random, 3); changes > 0; --changes) {
        const Layout layout = layoutOf(text);
        switch (pick(random, 3)) {
        case 0:
            if (!layout.values.empty()) {
                const Span v = layout.values[pick(random, layout.values.size())];
                text.replace(v.begin, v.end - v.begin, kValues[pick(random, std::size(kValues))]);
            }
            break;
        case 1:
            if (!layout.encoded.empty()) {
                const Span v = layout.encoded[pick(random, layout.encoded.size())];
                const size_t at = v.begin + pick(random, v.end - v.begin + 1);
                switch (pick(random, 3)) {
                case 0: text.erase(at, v.end - at); break;
                case 1: if (at < v.end) text[at] = kBase64[pick(random, 64)]; break;
                default: text.insert(at, 1, "!=*\n"[pick(random, 4)]);
                }
            }
            break;
        default:
            if (!layout.elements.empty()) {
                const Span e = layout.elements[pick(random, layout.elements.size())];
                if (pick(random, 2))
                    text.erase(e.begin, e.end - e.begin);
                else
                    text.insert(e.end, text.substr(e.begin, e.end - e.begin));
            }
        }
    }
    return text;
}

int load(const std::string& text)
{
    return loadXmlView(reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

} // namespace

int sweepXmlSamples(const fs::path& dir)
{
    std::vector<fs::path> samples;
    for (const fs::directory_entry& entry : fs::directory_iterator(dir))
        if (entry.is_regular_file() && entry.path().extension() == ".xml")
            samples.push_back(entry.path());
    std::sort(samples.begin(), samples.end());
    if (samples.empty()) {
        std::fprintf(stderr, "sweep: no *.xml in %s\n", dir.c_str());
        return 1;
    }
    const auto start = std::chrono::steady_clock::now();
    Random random(2008); // the same copies in every run, so a failure repeats
    for (const fs::path& path : samples) {
        std::ifstream in(path, std::ios::binary);
        const std::string sample{std::istreambuf_iterator<char>(in), {}};
        const std::string name = path.filename().string();
        if (load(sample) <= 0) {
            std::fprintf(stderr, "sweep: %s loads nothing\n", name.c_str());
            return 1;
        }
        for (size_t cut = 0; cut < sample.size(); ++cut)
            load(sample.substr(0, cut));
        size_t loaded = 0;
        for (int i = 0; i < kGarbledCopies; ++i)
            loaded += load(garble(sample, random)) >= 0;
        std::printf("sweep: %s: %zu cuts, %d garbled copies (%zu loaded)\n", name.c_str(), sample.size(),
                    kGarbledCopies, loaded);
        std::fflush(stdout);
    }
    std::printf("sweep: %zu XML samples in %.1f s\n", samples.size(),
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    return 0;
}

} // namespace k2dfuzz
