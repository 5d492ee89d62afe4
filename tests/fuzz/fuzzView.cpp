#include "fuzzView.h"

#include "KorelEdit.h"
#include "OffscreenGl.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace k2dfuzz {
namespace {

korelgen::OffscreenGl* surface = nullptr;
WINDOW_STRUCT* window = nullptr;

void expectZero(int answer, const char* call)
{
    if (answer != 0) {
        std::fprintf(stderr, "fuzz: %s answered %d\n", call, answer);
        std::abort();
    }
}

void drawFrame(VIEW_STRUCT* view)
{
    if (!window)
        return;
    expectZero(krWindowClear(window, view), "krWindowClear");
    expectZero(krViewDraw(window, view, 0, 0, 1), "krViewDraw");
}

// The XML reader tells on standard output what it skipped and where a document broke: at
// thousands of inputs a second that output would cost more than the loads.
class QuietStdout {
public:
    QuietStdout()
    {
        std::fflush(stdout);
        saved_ = dup(STDOUT_FILENO);
        const int sink = open("/dev/null", O_WRONLY);
        dup2(sink, STDOUT_FILENO);
        close(sink);
    }
    ~QuietStdout()
    {
        std::fflush(stdout);
        dup2(saved_, STDOUT_FILENO);
        close(saved_);
    }

private:
    int saved_;
};

// One name per process: the harnesses of a fuzzing run share their working directory.
const std::string& processStem()
{
    static const std::string stem = std::to_string(getpid());
    return stem;
}

// The readers of text files take a path: the bytes go to a file of this process first.
std::string writeInput(const uint8_t* data, size_t size, const char* suffix)
{
    const std::string path = "input-" + processStem() + suffix;
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file || std::fwrite(data, 1, size, file) != size || std::fclose(file) != 0) {
        std::fprintf(stderr, "fuzz: cannot write %s\n", path.c_str());
        std::abort();
    }
    return path;
}

} // namespace

void prepareProcess()
{
    setLogLevel(0);
    unsetenv("KOREL_HOME");
}

bool prepareDrawing(int side)
{
    // Mesa's llvmpipe compiles and keeps a shader for each new combination of GL state: that
    // makes nearly every input look like a leak to libFuzzer, and the leak check it then runs
    // costs more than the drawing. softpipe interprets; a small surface keeps its pixels cheap.
    setenv("GALLIUM_DRIVER", "softpipe", 0);
    // Lives as long as the process: the harness draws until it is killed.
    surface = new korelgen::OffscreenGl;
    std::string why;
    if (!surface->openEgl(side, side, &why)) {
        std::fprintf(stderr, "fuzz: no off-screen GL context: %s\n", why.c_str());
        return false;
    }
    window = krWindowCreate();
    return window && krWindowInit(window, side, side) == 0;
}

void prepareLoading()
{
    prepareProcess();
    if (!prepareDrawing(8))
        std::exit(1);
}

bool runView(const uint8_t* data, size_t size, int frames)
{
    // A tenth of a second per cycle: a graph at its default rate takes a sample in each.
    constexpr double kCycleSeconds = 0.1;
    VIEW_STRUCT* view = krViewLoadData(data, size);
    if (!view)
        return false;
    drawFrame(view);
    expectZero(krViewStart(view), "krViewStart");
    for (int i = 0; i < frames; ++i) {
        expectZero(krViewPutData(view, kCycleSeconds), "krViewPutData");
        drawFrame(view);
    }
    expectZero(krViewStop(view), "krViewStop");
    krViewFree(view);
    return true;
}

int loadXmlView(const uint8_t* data, size_t size)
{
    static const std::string xmlCopy = "output-" + processStem() + ".xml";
    static const std::string binaryCopy = "output-" + processStem() + ".k2d";
    const std::string path = writeInput(data, size, ".xml");
    QuietStdout quiet;
    VIEW_STRUCT view = {};
    if (loadFileXml(path.c_str(), &view.elements, &view.dataTypes, &view) != 0)
        return -1;
    // Whatever loaded is stored again in both forms, as an editing tool would.
    expectZero(saveFileXml(xmlCopy.c_str(), view.elements, view.dataTypes, &view), "saveFileXml");
    expectZero(saveFile(binaryCopy.c_str(), view.elements, view.dataTypes, &view), "saveFile");
    int loaded = 0;
    for (; view.dataTypes; ++loaded)
        delDataType(&view.dataTypes, view.dataTypes, 0);
    for (const ELEMENT_STRUCT* e = view.elements; e; e = e->next)
        ++loaded;
    elementDeleteAll(&view.elements);
    return loaded;
}

int loadSymbols(const uint8_t* data, size_t size)
{
    ELEMENT_STRUCT* groups = nullptr;
    if (loadSymbolFile(writeInput(data, size, ".sym").c_str(), &groups) != 0)
        return -1;
    int loaded = 0;
    for (const ELEMENT_STRUCT* g = groups; g; g = g->next)
        ++loaded;
    elementDeleteAll(&groups);
    return loaded;
}

} // namespace k2dfuzz
