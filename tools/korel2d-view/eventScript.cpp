#include "eventScript.h"

#include "Korel2D.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

const char* const kEventScriptHelp =
    "SCRIPT is a file of lines, one gesture each, in window pixels from the upper left corner:\n"
    "  press X Y [WORDS]   move X Y [WORDS]   release X Y [WORDS]   key s\n"
    "WORDS: shift, ctrl (keys held), button N (0 left, the default; 1 centre; 2 right).\n"
    "Keys held at a press stay held through its moves and release.\n"
    "'#' starts a comment. \"key s\" saves the view, with --edit only.\n";

namespace {

// Far enough off any window, and near enough that a pick can take it as a whole number.
constexpr float kMaxPixel = 1e6f;

bool parseNumber(const std::string& word, float* value)
{
    char* end = nullptr;
    *value = std::strtof(word.c_str(), &end);
    return !word.empty() && *end == '\0' && std::fabs(*value) <= kMaxPixel;
}

// Empty when the line is a gesture (or nothing), written to *event; else what is wrong with it.
std::string parseLine(const std::string& text, bool keys, ScriptEvent* event, bool* empty)
{
    static const struct {
        const char* word;
        int event;
    } kPointerWords[] = {{"press", KR_EVENT_PRESS}, {"release", KR_EVENT_RELEASE}, {"move", KR_EVENT_MOVE}};
    std::istringstream words(text.substr(0, text.find('#')));
    std::string word;
    *empty = !(words >> word);
    if (*empty)
        return "";
    if (word == "key") {
        std::string key, more;
        if (!(words >> key) || (key != "s" && key != "S") || (words >> more))
            return "a key line must read \"key s\"";
        if (!keys)
            return "key s saves the view, with --edit only";
        event->what = ScriptEvent::SaveKey;
        return "";
    }
    const auto* kind = std::begin(kPointerWords);
    while (kind != std::end(kPointerWords) && word != kind->word)
        ++kind;
    if (kind == std::end(kPointerWords))
        return "unknown gesture \"" + word + "\": press, move, release or key";
    std::string x, y;
    if (!(words >> x >> y) || !parseNumber(x, &event->x) || !parseNumber(y, &event->y))
        return word + " needs X and Y, two numbers of at most " + std::to_string(int(kMaxPixel)) + " in size";
    event->what = ScriptEvent::Pointer;
    event->event = kind->event;
    while (words >> word) {
        std::string number;
        if (word == "shift" || word == "ctrl") {
            (word == "shift" ? event->shift : event->ctrl) = true;
        } else if (word == "button") {
            char* end = nullptr;
            if (!(words >> number))
                return "button needs N";
            long n = std::strtol(number.c_str(), &end, 10);
            if (*end != '\0' || n < KR_MOUSE_LEFT || n > KR_MOUSE_RIGHT)
                return "button " + number + ": N must be 0, 1 or 2";
            event->button = int(n);
        } else {
            return "unknown word \"" + word + "\": shift, ctrl or button N";
        }
    }
    return "";
}

} // namespace

bool readEventScript(const std::string& path, bool keys, std::vector<ScriptEvent>* events, std::string* error)
{
    std::ifstream file(path);
    if (!file) {
        *error = "cannot read " + path + ": " + std::strerror(errno);
        return false;
    }
    std::string text;
    bool shiftHeld = false, ctrlHeld = false; // since the last press
    for (int line = 1; std::getline(file, text); ++line) {
        ScriptEvent event = {ScriptEvent::Pointer, KR_EVENT_MOVE, 0, 0, KR_MOUSE_LEFT, false, false, line};
        bool empty = false;
        std::string wrong = parseLine(text, keys, &event, &empty);
        if (!wrong.empty()) {
            *error = path + ":" + std::to_string(line) + ": " + wrong;
            return false;
        }
        if (empty)
            continue;
        if (event.what == ScriptEvent::Pointer && event.event == KR_EVENT_PRESS) {
            shiftHeld = event.shift, ctrlHeld = event.ctrl;
        } else {
            event.shift = event.shift || shiftHeld;
            event.ctrl = event.ctrl || ctrlHeld;
        }
        events->push_back(event);
    }
    return true;
}
