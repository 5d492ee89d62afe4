// korel2d-view: shows a view file in a GLX window, or renders it off-screen into a PNG file
// when asked to or when no X display answers, or lists its records as text; or edits it; or
// writes it as an XML view file. A symbol library is taken as the view of its symbols.
#include "KorelEdit.h"
#include "LibraryLog.h"
#include "OffscreenGl.h"
#include "StoredLists.h"
#include "SymbolView.h"
#include "dumpView.h"
#include "editor.h"
#include "eventScript.h"
#include "pngWrite.h"
#include "printVariables.h"

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kMinSide = 64;
constexpr int kMaxSide = 4096;
constexpr int kMaxFrames = 1000000000;
constexpr float kMaxZoom = 100;
const char* const kDefaultPng = "korel2d-view.png";

// Exit statuses.
constexpr int kDone = 0;
constexpr int kFailed = 1; // the view could not be loaded, started, drawn or written
constexpr int kBadArguments = 2;

struct Options {
    std::string file; // what the library reads: FILE, or the view made of the symbol library FILE
    std::string name; // FILE as given, for the window's title and the reports
    std::string png; // empty: a window where a display answers
    int frames = 0;  // 0: until closed in a window, one frame off-screen
    int width = 0;   // 0: from the page
    int height = 0;
    float zoom = 1;
    bool dump = false;
    bool vars = false;
    bool anim = false;
    bool help = false;
    bool edit = false;
    std::string save;   // empty: the view file itself
    std::string xmlOut; // the file of --save-xml
    std::string script; // the file of --events
    std::vector<ScriptEvent> events;
};

// ---------------------------------------------------------------- arguments

bool parseInt(const char* text, int lo, int hi, int* value)
{
    char* end = nullptr;
    long v = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || v < lo || v > hi)
        return false;
    *value = int(v);
    return true;
}

// An option that takes a value: its name and placeholder, what the value must be (for the
// message that refuses it and for the help), what it does, and the parser that stores it.
struct ValuedOption {
    const char* name;
    const char* placeholder;
    std::string rule;
    std::string meaning;
    bool (*parse)(const char* value, Options* o);
};

const std::vector<ValuedOption>& valuedOptions()
{
    static const std::vector<ValuedOption> options = {
        {"--png", "OUT", "OUT must be a file name",
         "render off-screen and write the last frame to OUT, in every mode\n"
         "(default: a window, or " + std::string(kDefaultPng) + " without a display)",
         [](const char* value, Options* o) {
             o->png = value;
             return !o->png.empty();
         }},
        {"--frames", "N", "N must be a whole number in 1.." + std::to_string(kMaxFrames),
         "draw N frames of the running view, then quit and print the mean and worst\n"
         "frame time; with --vars, run N data cycles (default: until the window is\n"
         "closed; one frame off-screen; one data cycle)",
         [](const char* value, Options* o) { return parseInt(value, 1, kMaxFrames, &o->frames); }},
        {"--size", "WxH", "W and H must be whole numbers in 1.." + std::to_string(kMaxSide) + ", as in 640x480",
         "picture size in pixels (default: the page size times the zoom, each side\n"
         "kept to " + std::to_string(kMinSide) + ".." + std::to_string(kMaxSide) + ")",
         [](const char* value, Options* o) {
             const char* x = std::strchr(value, 'x');
             return x && parseInt(std::string(value, x).c_str(), 1, kMaxSide, &o->width) &&
                    parseInt(x + 1, 1, kMaxSide, &o->height);
         }},
        {"--zoom", "Z", "Z must be a number above 0 and at most " + std::to_string(int(kMaxZoom)),
         "pixels per view unit (default 1)",
         [](const char* value, Options* o) {
             char* end = nullptr;
             float z = std::strtof(value, &end);
             if (end == value || *end != '\0' || !(z > 0.0f && z <= kMaxZoom))
                 return false;
             o->zoom = z;
             return true;
         }},
        {"--events", "SCRIPT", "SCRIPT must be a file name",
         "off-screen, after a first frame, play the gestures of SCRIPT (below): to the\n"
         "running view, or with --edit to the editor (default none)",
         [](const char* value, Options* o) {
             o->script = value;
             return !o->script.empty();
         }},
        {"--save", "OUT", "OUT must be a file name",
         "with --edit: where key s saves the view (default: FILE itself; a symbol\n"
         "library needs OUT)",
         [](const char* value, Options* o) {
             o->save = value;
             return !o->save.empty();
         }},
        {"--save-xml", "OUT", "OUT must be a file name",
         "write the view as an XML view file to OUT and quit; nothing is drawn\n"
         "(default off)",
         [](const char* value, Options* o) {
             o->xmlOut = value;
             return !o->xmlOut.empty();
         }},
    };
    return options;
}

const char* const kSynopsis = "usage: korel2d-view FILE [--png OUT] [--frames N] [--size WxH] [--zoom Z] [--events SCRIPT]\n"
                              "       korel2d-view FILE --edit [--save OUT] [--events SCRIPT] [--png OUT ...]\n"
                              "       korel2d-view FILE --dump [--png OUT ...]\n"
                              "       korel2d-view FILE --vars [--anim] [--frames N] [--png OUT ...]\n"
                              "       korel2d-view FILE --save-xml OUT\n";

// Each option with what its value must be, what it does and its default.
std::string helpText()
{
    const std::string indent(15, ' ');
    std::string text = std::string(kSynopsis) +
                       "Shows the view file FILE running: in a window where an X display answers, else\n"
                       "off-screen into a PNG file. --dump and --save-xml also read an XML view file:\n"
                       "one whose name ends in .xml or whose first non-blank character is '<'.\n"
                       "FILE may also be a symbol library: text in which a line of its first " +
                       std::to_string(korelgen::kSymbolHeadBytes) + " bytes\n"
                       "begins with the keyword SYMBOL-NR. Every mode takes it as the view of its\n"
                       "symbols: groups on a white page that covers them and " +
                       std::to_string(int(korelgen::kSymbolPageMargin)) + " units on every side.\n";
    for (const ValuedOption& option : valuedOptions()) {
        std::string head = std::string("  ") + option.name + " " + option.placeholder;
        // A head too long for the column puts its rule on the next line.
        const std::string gap = head.size() < indent.size() ? std::string(indent.size() - head.size(), ' ') : "\n" + indent;
        text += head + gap + option.rule + "\n" + indent;
        for (char c : option.meaning)
            text += c == '\n' ? "\n" + indent : std::string(1, c);
        text += "\n";
    }
    return text + "  --dump       print the view's elements, actions and data sources as text and quit;\n"
                  "               nothing is drawn unless --png asks for a picture (default off)\n"
                  "  --vars       start the view, run N data cycles (one per frame, drawn off-screen),\n"
                  "               print each source and the value of each variable, stop (default off)\n"
                  "  --anim       with --vars: the library's data thread runs a cycle every 10 ms\n"
                  "               instead (default off)\n"
                  "  --edit       edit the view, stopped: a left click selects the topmost element\n"
                  "               under the pointer (for an element inside a group, the group, whose\n"
                  "               box holds it) and shows its handles; dragging a handle reshapes it,\n"
                  "               shift about its centre, ctrl keeping its aspect; dragging its body\n"
                  "               moves it; a click on nothing drops the selection; key s saves\n"
                  "               (default off)\n"
                  "  -h, --help   print this help and quit\n" +
                  std::string(kEventScriptHelp) +
                  "Exit status: 0 done; 1 the view could not be loaded, started, drawn or written;\n"
                  "2 bad arguments or a bad line in SCRIPT.\n";
}

// Empty when the arguments make sense; otherwise what is wrong, naming the argument.
std::string parseArguments(int argc, char** argv, Options* o)
{
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            o->help = true;
            return "";
        }
        if (arg == "--dump" || arg == "--vars" || arg == "--anim" || arg == "--edit") {
            (arg == "--dump" ? o->dump : arg == "--vars" ? o->vars : arg == "--anim" ? o->anim : o->edit) = true;
            continue;
        }
        if (arg.size() > 1 && arg[0] == '-') {
            const auto& options = valuedOptions();
            auto option = std::find_if(options.begin(), options.end(),
                                       [&](const ValuedOption& v) { return arg == v.name; });
            if (option == options.end())
                return "unknown option " + arg;
            if (i + 1 >= argc)
                return arg + " needs a value: " + option->rule;
            const char* value = argv[++i];
            if (!option->parse(value, o))
                return arg + " " + value + ": " + option->rule;
        } else if (o->file.empty()) {
            o->file = o->name = arg;
        } else {
            return "one view file only, but " + arg + " follows " + o->file;
        }
    }
    if (o->file.empty())
        return "no view file given";
    if (o->anim && !o->vars)
        return "--anim goes with --vars only";
    if (o->edit && (o->dump || o->vars))
        return "--edit goes with neither --dump nor --vars";
    if (!o->save.empty() && !o->edit)
        return "--save goes with --edit only";
    if (!o->xmlOut.empty() && (o->edit || o->dump || o->vars || !o->png.empty() || !o->script.empty()))
        return "--save-xml goes with none of --edit, --dump, --vars, --png and --events";
    if (o->edit && o->save.empty() && korelgen::isSymbolFile(o->file))
        return "--edit of the symbol library " + o->file + " needs --save OUT, as the editor writes a view file";
    return "";
}

// ---------------------------------------------------------------- the view

using ViewPtr = std::unique_ptr<VIEW_STRUCT, int (*)(VIEW_STRUCT*)>;
using WindowPtr = std::unique_ptr<WINDOW_STRUCT, int (*)(WINDOW_STRUCT*)>;

// The reason is the library's own words where it logged any, as they name the fault.
void reportLoadFailure(const std::string& file, const std::string& reason)
{
    std::fprintf(stderr, "korel2d-view: cannot load %s: %s\n", file.c_str(), reason.c_str());
}

// Reads only the page fields. Unlike the full load it tells why a file fails: missing,
// unreadable, or not a view file. The page read logs an error only when nothing came back.
bool readPage(const std::string& file, VIEW_STRUCT* page)
{
    int result = loadConfigFile(file.c_str(), page);
    std::string log = takeLibraryLog();
    if (result == 0 && log.empty())
        return true;
    reportLoadFailure(file, !log.empty() ? log : result < -1 ? std::strerror(-result) : "not a view file");
    return false;
}

// The picture size follows the page unless --size gave one. Only the page is read here: the
// size is needed before the GL context that the full load then runs in.
bool pictureSize(const Options& o, int* width, int* height)
{
    if (o.width > 0) {
        *width = o.width;
        *height = o.height;
        return true;
    }
    VIEW_STRUCT page = {};
    if (!readPage(o.file, &page))
        return false;
    auto side = [&](float units) {
        float pixels = units * o.zoom;
        // Compared before the conversion, which also turns a NaN from a damaged page into the minimum.
        return pixels >= kMaxSide ? kMaxSide : pixels >= kMinSide ? int(pixels) : kMinSide;
    };
    *width = side(page.width);
    *height = side(page.height);
    return true;
}

// A file of a revision the library doesn't read still gives a view: an empty one, with an error
// in the log. That counts as a failure; errors beside elements or sources (a plug-in that
// doesn't open) don't.
ViewPtr loadView(const std::string& file)
{
    ViewPtr view(krViewLoad(file.c_str()), krViewFree);
    std::string log = takeLibraryLog();
    bool empty = view && !view->elements && !view->dataTypes;
    if (view && !(empty && !log.empty()))
        return view;
    reportLoadFailure(file, log.empty() ? "not a view file" : log);
    return ViewPtr(nullptr, krViewFree);
}

void drawFrame(WINDOW_STRUCT* window, VIEW_STRUCT* view, float zoom)
{
    krWindowClear(window, view);
    krViewDraw(window, view, 0, 0, zoom);
}

// The gestures reach the elements where the first frame placed them, so one is drawn before them.
// They go to the editor where there is one, else to the running view. False when a save failed.
bool playScript(const Options& o, WINDOW_STRUCT* window, VIEW_STRUCT* view, Editor* editor)
{
    if (o.events.empty())
        return true;
    drawFrame(window, view, o.zoom);
    for (const ScriptEvent& e : o.events) {
        if (e.what == ScriptEvent::SaveKey) { // the script was read with keys only for the editor
            if (!editor->save())
                return false;
        } else if (editor) {
            editor->pointer(e.event, e.button, e.x, e.y, e.shift, e.ctrl);
        } else {
            krViewEvent(window, view, e.button, e.event, e.x, e.y);
        }
    }
    return true;
}

// Mean and worst time of the frames drawn, each up to glFinish: what the library and the
// driver took, without the wait for the display.
class FrameTimes {
public:
    void drawTimed(WINDOW_STRUCT* window, VIEW_STRUCT* view, float zoom)
    {
        auto start = std::chrono::steady_clock::now();
        drawFrame(window, view, zoom);
        glFinish();
        double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        total_ += ms;
        worst_ = std::max(worst_, ms);
        ++count_;
    }
    int count() const { return count_; }
    void print() const
    {
        if (count_ > 0)
            std::printf("korel2d-view: %d frame%s, mean %.2f ms, worst %.2f ms\n", count_, count_ == 1 ? "" : "s",
                        total_ / count_, worst_);
    }

private:
    int count_ = 0;
    double total_ = 0, worst_ = 0;
};

// Running synchronously, the graphs move only when the host feeds them: after each frame they get
// the real time since the one before, so that traces keep pace with sources that follow the clock.
class GraphFeed {
public:
    void afterFrame(VIEW_STRUCT* view)
    {
        const auto now = std::chrono::steady_clock::now();
        krViewPutData(view, std::chrono::duration<double>(now - last_).count());
        last_ = now;
    }

private:
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

// A window's view runs animated: the library's data thread feeds it every 10 ms while the
// frames are drawn. Off-screen, each draw runs a data cycle first, so that even a single
// frame shows live values. A view without sources looks the same running or not.
ViewPtr loadRunningView(const std::string& file, bool animated)
{
    ViewPtr view = loadView(file);
    if (view && (animated ? krViewStartAnim(view.get()) : krViewStart(view.get())) != 0)
        std::fprintf(stderr, "korel2d-view: %s did not start; it is shown as stored\n", file.c_str());
    return view;
}

// The editor works on the stopped view.
ViewPtr loadViewFor(const Options& o, bool animated)
{
    return o.edit ? loadView(o.file) : loadRunningView(o.file, animated);
}

std::unique_ptr<Editor> editorFor(const Options& o, WINDOW_STRUCT* window, VIEW_STRUCT* view)
{
    if (!o.edit)
        return nullptr;
    return std::make_unique<Editor>(window, view, o.save.empty() ? o.file : o.save);
}

// By its name, or by its first non-blank byte: a binary view file begins with a number.
bool isXmlFile(const std::string& file)
{
    const std::string suffix = ".xml";
    if (file.size() >= suffix.size() && file.compare(file.size() - suffix.size(), suffix.size(), suffix) == 0)
        return true;
    std::ifstream in(file, std::ios::binary);
    char c = 0;
    while (in.get(c) && std::isspace(static_cast<unsigned char>(c)))
        ;
    return in && c == '<';
}

// The page and the lists as a file stores them, read by the reader alone: sources aren't
// matched to plug-ins, nothing is prepared for drawing.
struct StoredView : StoredLists {
    // False, with the reason on stderr, when the file doesn't load.
    bool read(const std::string& file)
    {
        if (!isXmlFile(file)) {
            if (!readPage(file, &view))
                return false;
            const bool loaded = loadFile(file.c_str(), &view.elements, &view.dataTypes, &view) == 0;
            std::string log = takeLibraryLog();
            if (!loaded)
                reportLoadFailure(file, log.empty() ? "not a view file" : log);
            return loaded;
        }
        if (loadFileXml(file.c_str(), &view.elements, &view.dataTypes, &view) == 0)
            return true;
        std::ifstream in(file);
        reportLoadFailure(file, in ? "no XML element in it" : std::strerror(errno));
        return false;
    }
};

// No GL context is made: the library keeps the pictures of image records in its own store.
// The page of a binary file is read first only for its clearer report of a file that fails.
int dumpToStdout(const Options& o)
{
    if (isXmlFile(o.file)) {
        StoredView stored;
        if (!stored.read(o.file))
            return kFailed;
        dumpView(&stored.view, stdout);
        return kDone;
    }
    VIEW_STRUCT page = {};
    if (!readPage(o.file, &page))
        return kFailed;
    ViewPtr view = loadView(o.file);
    if (!view)
        return kFailed;
    dumpView(view.get(), stdout);
    return kDone;
}

// The writer reports nothing, so the file is checked first by opening it, and afterwards by
// reading it back.
int saveAsXml(const Options& o)
{
    StoredView stored;
    if (!stored.read(o.file))
        return kFailed;
    FILE* out = std::fopen(o.xmlOut.c_str(), "wb");
    if (!out) {
        std::fprintf(stderr, "korel2d-view: cannot write %s: %s\n", o.xmlOut.c_str(), std::strerror(errno));
        return kFailed;
    }
    std::fclose(out);
    saveFileXml(o.xmlOut.c_str(), stored.view.elements, stored.view.dataTypes, &stored.view);
    StoredView back;
    if (loadFileXml(o.xmlOut.c_str(), &back.view.elements, &back.view.dataTypes, &back.view) != 0) {
        std::fprintf(stderr, "korel2d-view: cannot write %s: it does not read back\n", o.xmlOut.c_str());
        return kFailed;
    }
    std::printf("korel2d-view: wrote %s\n", o.xmlOut.c_str());
    return kDone;
}

// Reads back the picture drawn off-screen and writes it as a PNG file.
bool writePicture(const std::string& out, int width, int height, const char* kind)
{
    const size_t stride = size_t(width) * 3;
    std::vector<uint8_t> pixels(stride * size_t(height));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    // GL's first row is the bottom one, a PNG's the top one.
    std::vector<uint8_t> flipped(pixels.size());
    for (int y = 0; y < height; ++y)
        std::memcpy(&flipped[size_t(y) * stride], &pixels[size_t(height - 1 - y) * stride], stride);
    std::string why;
    if (!writeRgbPng(out, width, height, flipped.data(), &why)) {
        std::fprintf(stderr, "korel2d-view: cannot write %s: %s\n", out.c_str(), why.c_str());
        return false;
    }
    std::printf("korel2d-view: wrote a %dx%d picture to %s (off-screen, %s)\n", width, height, out.c_str(), kind);
    return true;
}

// Mode 1 runs a data cycle per frame, so frames are drawn off-screen: into a small picture, or
// the view's own when --png asks for it. Mode 2 needs no drawing, its thread runs a cycle every
// 10 ms; with --png one frame is drawn after the cycles.
int runAndPrintVariables(const Options& o)
{
    const int cycles = std::max(o.frames, 1);
    const bool picture = !o.png.empty();
    int width = kMinSide, height = kMinSide;
    if (picture && !pictureSize(o, &width, &height))
        return kFailed;
    korelgen::OffscreenGl gl;
    std::string why;
    const bool draws = picture || !o.anim || !o.events.empty();
    if (draws && !gl.open(width, height, &why)) {
        std::fprintf(stderr, "korel2d-view: no off-screen GL context for the data cycles: %s\n", why.c_str());
        return kFailed;
    }
    ViewPtr view = loadView(o.file);
    if (!view)
        return kFailed;
    if ((o.anim ? krViewStartAnim(view.get()) : krViewStart(view.get())) != 0) {
        std::fprintf(stderr, "korel2d-view: the view did not start\n");
        return kFailed;
    }
    WindowPtr window(krWindowCreate(), krWindowFree);
    if (draws) {
        krWindowInit(window.get(), width, height);
        playScript(o, window.get(), view.get(), nullptr);
    }
    if (o.anim) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10) * cycles);
        if (picture)
            drawFrame(window.get(), view.get(), o.zoom);
    } else {
        GraphFeed graphs;
        for (int i = 0; i < cycles; ++i) {
            drawFrame(window.get(), view.get(), o.zoom);
            graphs.afterFrame(view.get());
        }
    }
    if (picture && !writePicture(o.png, width, height, gl.kind()))
        return kFailed;
    std::printf("korel2d-view: %s after %d data cycle%s%s\n", o.name.c_str(), cycles, cycles == 1 ? "" : "s",
                o.anim ? " of 10 ms (animated)" : " (one per frame)");
    printVariables(view.get(), stdout);
    krViewStop(view.get());
    return kDone;
}

// ---------------------------------------------------------------- live window

bool xErrorSeen = false;

// Xlib's default handler exits the process; a failed request must end the program cleanly.
int onXError(Display* display, XErrorEvent* event)
{
    char text[256];
    XGetErrorText(display, event->error_code, text, sizeof text);
    std::fprintf(stderr, "korel2d-view: X error: %s (request %d)\n", text, event->request_code);
    xErrorSeen = true;
    return 0;
}

// A mapped, double-buffered RGBA window with a stencil buffer for the groups' clip areas,
// and its GL context made current.
class GlxWindow {
public:
    explicit GlxWindow(Display* display) : display_(display) {}
    ~GlxWindow()
    {
        if (context_) {
            glXMakeCurrent(display_, None, nullptr);
            glXDestroyContext(display_, context_);
        }
        if (window_)
            XDestroyWindow(display_, window_);
        if (colormap_)
            XFreeColormap(display_, colormap_);
        XCloseDisplay(display_);
    }
    GlxWindow(const GlxWindow&) = delete;
    GlxWindow& operator=(const GlxWindow&) = delete;

    bool open(int width, int height, const std::string& title, std::string* why)
    {
        const int attributes[] = {GLX_X_RENDERABLE, True, GLX_DRAWABLE_TYPE, GLX_WINDOW_BIT, GLX_RENDER_TYPE,
                                  GLX_RGBA_BIT, GLX_DOUBLEBUFFER, True, GLX_RED_SIZE, 8, GLX_GREEN_SIZE, 8,
                                  GLX_BLUE_SIZE, 8, GLX_ALPHA_SIZE, 8, GLX_STENCIL_SIZE, 8, None};
        int count = 0;
        GLXFBConfig* configs = glXChooseFBConfig(display_, DefaultScreen(display_), attributes, &count);
        if (!configs || count == 0) {
            *why = "no double-buffered GLX configuration with stencil";
            return false;
        }
        GLXFBConfig config = configs[0];
        XFree(configs);
        XVisualInfo* visual = glXGetVisualFromFBConfig(display_, config);
        if (!visual) {
            *why = "the GLX configuration has no X visual";
            return false;
        }
        Window root = RootWindow(display_, visual->screen);
        colormap_ = XCreateColormap(display_, root, visual->visual, AllocNone);
        XSetWindowAttributes wa = {};
        wa.colormap = colormap_;
        wa.event_mask = ExposureMask | StructureNotifyMask | KeyPressMask | ButtonPressMask | ButtonReleaseMask |
                        PointerMotionMask;
        window_ = XCreateWindow(display_, root, 0, 0, unsigned(width), unsigned(height), 0, visual->depth,
                                InputOutput, visual->visual, CWColormap | CWEventMask, &wa);
        XFree(visual);
        XStoreName(display_, window_, title.c_str());
        deleteAtom_ = XInternAtom(display_, "WM_DELETE_WINDOW", False);
        XSetWMProtocols(display_, window_, &deleteAtom_, 1);
        context_ = glXCreateNewContext(display_, config, GLX_RGBA_TYPE, nullptr, True);
        if (!context_ || !glXMakeCurrent(display_, window_, context_)) {
            *why = "cannot create or bind a GLX context";
            return false;
        }
        XMapWindow(display_, window_);
        XSync(display_, False);
        if (xErrorSeen) {
            *why = "the X server refused the window";
            return false;
        }
        return true;
    }

    Display* display() const { return display_; }
    Window window() const { return window_; }
    Atom deleteAtom() const { return deleteAtom_; }

private:
    Display* display_;
    Colormap colormap_ = 0;
    Window window_ = 0;
    Atom deleteAtom_ = 0;
    GLXContext context_ = nullptr;
};

// A pointer event of the window: to the editor where there is one, with the modifier keys of
// its state, else to the running view.
void pointer(Editor* editor, WINDOW_STRUCT* window, VIEW_STRUCT* view, int button, int event, int x, int y,
             unsigned state)
{
    if (editor)
        editor->pointer(event, button, float(x), float(y), state & ShiftMask, state & ControlMask);
    else
        krViewEvent(window, view, button, event, float(x), float(y));
}

int showInWindow(Display* display, const Options& o, int width, int height)
{
    GlxWindow x(display);
    std::string why;
    if (!x.open(width, height, "korel2d-view: " + o.name, &why)) {
        std::fprintf(stderr, "korel2d-view: no window: %s\n", why.c_str());
        return kFailed;
    }
    ViewPtr view = loadViewFor(o, true);
    if (!view)
        return kFailed;
    WindowPtr window(krWindowCreate(), krWindowFree);
    std::unique_ptr<Editor> editor = editorFor(o, window.get(), view.get());
    FrameTimes times;

    // Nothing here waits for the display's refresh, so frames are paced at about 60 per second
    // rather than spinning the processor.
    using Clock = std::chrono::steady_clock;
    const auto period = std::chrono::microseconds(16667);
    auto next = Clock::now();
    bool sized = false;
    bool open = true;
    int drawn = 0;
    while (open && (o.frames == 0 || drawn < o.frames)) {
        while (open && XPending(display)) {
            XEvent event;
            XNextEvent(display, &event);
            switch (event.type) {
            case ConfigureNotify:
                sized = sized && event.xconfigure.width == width && event.xconfigure.height == height;
                width = event.xconfigure.width;
                height = event.xconfigure.height;
                break;
            case Expose:
                sized = false;
                break;
            case KeyPress: {
                KeySym key = XLookupKeysym(&event.xkey, 0);
                open = key != XK_Escape && key != XK_q;
                if (editor && key == XK_s)
                    editor->save();
                break;
            }
            case ButtonPress:
            case ButtonRelease:
                // X numbers the buttons from 1 and uses 4 and up for the wheel, which views don't take.
                if (event.xbutton.button >= Button1 && event.xbutton.button <= Button3)
                    pointer(editor.get(), window.get(), view.get(), int(event.xbutton.button - Button1),
                            event.type == ButtonPress ? KR_EVENT_PRESS : KR_EVENT_RELEASE, event.xbutton.x,
                            event.xbutton.y, event.xbutton.state);
                break;
            case MotionNotify: {
                const unsigned held = event.xmotion.state;
                const int button = held & Button2Mask ? KR_MOUSE_CENTRE : held & Button3Mask ? KR_MOUSE_RIGHT : KR_MOUSE_LEFT;
                pointer(editor.get(), window.get(), view.get(), button, KR_EVENT_MOVE, event.xmotion.x,
                        event.xmotion.y, held);
                break;
            }
            case ClientMessage:
                open = Atom(event.xclient.data.l[0]) != x.deleteAtom();
                break;
            default:
                break;
            }
        }
        if (!open)
            break;
        if (!sized) {
            krWindowInit(window.get(), width, height);
            sized = true;
        }
        times.drawTimed(window.get(), view.get(), o.zoom);
        if (editor)
            editor->drawHandles();
        glXSwapBuffers(display, x.window());
        ++drawn;
        next = std::max(next + period, Clock::now());
        std::this_thread::sleep_until(next);
    }
    std::printf("korel2d-view: drew %d frame%s in a %dx%d window\n", drawn, drawn == 1 ? "" : "s", width, height);
    times.print();
    return kDone;
}

// ---------------------------------------------------------------- symbol libraries

// The view made of a symbol library, written to a file in memory that every mode then reads by
// its name under /proc, as it reads FILE: nothing is left on disk, however the tool ends.
class SymbolViewFile {
public:
    SymbolViewFile() = default;
    ~SymbolViewFile()
    {
        if (file_ >= 0)
            close(file_);
    }
    SymbolViewFile(const SymbolViewFile&) = delete;
    SymbolViewFile& operator=(const SymbolViewFile&) = delete;

    // False, with the reason on stderr, when the library doesn't load or its view can't be written.
    bool make(const std::string& symbols)
    {
        StoredLists stored;
        std::string why;
        if (!korelgen::loadSymbolView(symbols, &stored.view, &why)) {
            reportLoadFailure(symbols, why);
            return false;
        }
        file_ = memfd_create("korel2d-view", MFD_CLOEXEC);
        path_ = "/proc/self/fd/" + std::to_string(file_);
        const VIEW_STRUCT& v = stored.view;
        if (file_ < 0 || saveFile(path_.c_str(), v.elements, v.dataTypes, &v) != 0) {
            std::fprintf(stderr, "korel2d-view: cannot make the view of %s: %s\n", symbols.c_str(),
                         file_ < 0 ? std::strerror(errno) : "it could not be written");
            return false;
        }
        return true;
    }
    const std::string& path() const { return path_; }

private:
    int file_ = -1;
    std::string path_;
};

// ---------------------------------------------------------------- off-screen picture

int renderToPng(const Options& o, int width, int height)
{
    korelgen::OffscreenGl gl;
    std::string why;
    if (!gl.open(width, height, &why)) {
        std::fprintf(stderr, "korel2d-view: no off-screen GL context: %s\n", why.c_str());
        return kFailed;
    }
    ViewPtr view = loadViewFor(o, false);
    if (!view)
        return kFailed;
    WindowPtr window(krWindowCreate(), krWindowFree);
    krWindowInit(window.get(), width, height);
    std::unique_ptr<Editor> editor = editorFor(o, window.get(), view.get());
    if (!playScript(o, window.get(), view.get(), editor.get()))
        return kFailed;
    // What an edit makes is the saved file; a picture of it only where asked for.
    if (editor && o.png.empty())
        return kDone;
    FrameTimes times;
    GraphFeed graphs;
    for (int i = 0; i < std::max(o.frames, 1); ++i) {
        times.drawTimed(window.get(), view.get(), o.zoom);
        graphs.afterFrame(view.get());
    }
    if (editor)
        editor->drawHandles();
    if (!writePicture(o.png.empty() ? kDefaultPng : o.png, width, height, gl.kind()))
        return kFailed;
    times.print();
    return kDone;
}

// A window where a display answers and neither --png nor --events asks for off-screen work; else
// a picture off-screen. The editor needs a window or a script.
int showOrRender(const Options& o)
{
    int width = 0, height = 0;
    if (!pictureSize(o, &width, &height))
        return kFailed;
    if (o.png.empty() && o.script.empty()) {
        XSetErrorHandler(onXError);
        if (Display* display = XOpenDisplay(nullptr))
            return showInWindow(display, o, width, height);
        if (o.edit) {
            std::fprintf(stderr, "korel2d-view: --edit needs an X display, or --events SCRIPT\n");
            return kFailed;
        }
    }
    return renderToPng(o, width, height);
}

} // namespace

int main(int argc, char** argv)
{
    Options o;
    std::string wrong = parseArguments(argc, argv, &o);
    if (!wrong.empty()) {
        std::fprintf(stderr, "korel2d-view: %s\n%skorel2d-view --help tells more.\n", wrong.c_str(), kSynopsis);
        return kBadArguments;
    }
    if (o.help) {
        std::fputs(helpText().c_str(), stdout);
        return kDone;
    }
    if (!o.script.empty() && !readEventScript(o.script, o.edit, &o.events, &wrong)) {
        std::fprintf(stderr, "korel2d-view: %s\n", wrong.c_str());
        return kBadArguments;
    }
    SymbolViewFile symbols;
    if (korelgen::isSymbolFile(o.file)) {
        if (!symbols.make(o.file))
            return kFailed;
        o.file = symbols.path();
    }
    if (o.dump) {
        int status = dumpToStdout(o);
        return status != kDone || o.png.empty() ? status : showOrRender(o);
    }
    if (!o.xmlOut.empty())
        return saveAsXml(o);
    if (o.vars)
        return runAndPrintVariables(o);
    return showOrRender(o);
}
