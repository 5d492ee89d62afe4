// Runs a harness over files instead of under the fuzzer, so that compilers without libFuzzer
// replay the regression corpus too (the drawing harness, or for *.xml the XML one), or sweeps the damaged copies of every sample view of a
// directory. Usage: korel2d-fuzz-replay FILE_OR_DIRECTORY... | --sweep DIRECTORY | --long-sweep DIRECTORY
// | --xml-sweep DIRECTORY (--long-sweep runs every cut for 100 frames, not one in 97: minutes a
// sample; --xml-sweep loads the damaged copies of the XML view files).
#include "fuzzView.h"
#include "sampleSweep.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> inputFiles(int argc, char** argv)
{
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i) {
        if (!fs::is_directory(argv[i])) {
            files.emplace_back(argv[i]);
            continue;
        }
        std::vector<fs::path> inside;
        for (const fs::directory_entry& entry : fs::directory_iterator(argv[i]))
            if (entry.is_regular_file())
                inside.push_back(entry.path());
        std::sort(inside.begin(), inside.end());
        files.insert(files.end(), inside.begin(), inside.end());
    }
    return files;
}

// As under the fuzzer: an empty working directory, where the search for plug-ins and fonts finds nothing.
bool enterScratch(std::string& scratch)
{
    scratch = (fs::temp_directory_path() / "k2dReplayXXXXXX").string();
    if (!mkdtemp(scratch.data()) || chdir(scratch.c_str()) != 0) {
        std::fprintf(stderr, "replay: cannot enter a scratch directory\n");
        return false;
    }
    return true;
}

void leaveScratch(const std::string& scratch)
{
    if (chdir("/") == 0)
        fs::remove_all(scratch);
}

// Unlike the fuzzer, which checks for leaks after each input, the sweep checks once at exit: so
// llvmpipe, whose shaders compiled once draw faster than softpipe interprets. A frame of a few
// pixels still takes every drawing call, and a larger one costs a third more time.
// The test run's sweep runs one cut in this many for 100 frames, the long sweep every cut.
constexpr size_t kSomeCutsLong = 97, kEveryCutLong = 1;

// longCutStride 0: the XML sweep.
int sweep(const char* dir, size_t longCutStride)
{
    constexpr int kSweepSide = 8;
    const fs::path samples = fs::absolute(dir);
    std::string scratch;
    if (!enterScratch(scratch))
        return 1;
    setenv("GALLIUM_DRIVER", "llvmpipe", 0);
    k2dfuzz::prepareProcess();
    if (!k2dfuzz::prepareDrawing(kSweepSide))
        return 1;
    const int status = longCutStride ? k2dfuzz::sweepSamples(samples, longCutStride) : k2dfuzz::sweepXmlSamples(samples);
    leaveScratch(scratch);
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--sweep") == 0)
        return sweep(argv[2], kSomeCutsLong);
    if (argc == 3 && std::strcmp(argv[1], "--long-sweep") == 0)
        return sweep(argv[2], kEveryCutLong);
    if (argc == 3 && std::strcmp(argv[1], "--xml-sweep") == 0)
        return sweep(argv[2], 0);
    std::vector<std::pair<std::string, std::vector<uint8_t>>> inputs;
    for (const fs::path& file : inputFiles(argc, argv)) {
        std::ifstream in(file, std::ios::binary);
        if (!in) {
            std::fprintf(stderr, "replay: cannot read %s\n", file.c_str());
            return 1;
        }
        inputs.emplace_back(file.filename().string(), std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {}));
    }
    if (inputs.empty()) {
        std::fprintf(stderr, "replay: no input files\n");
        return 1;
    }
    std::string scratch;
    if (!enterScratch(scratch))
        return 1;
    LLVMFuzzerInitialize(&argc, &argv);
    for (const auto& [name, bytes] : inputs) {
        std::printf("replay: %s (%zu bytes)\n", name.c_str(), bytes.size());
        std::fflush(stdout);
        if (fs::path(name).extension() == ".xml")
            k2dfuzz::loadXmlView(bytes.data(), bytes.size());
        else
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("replay: %zu inputs ran\n", inputs.size());
    leaveScratch(scratch);
    return 0;
}
