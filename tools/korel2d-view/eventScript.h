// The gestures of --events: a file of pointer events and keys, played off-screen.
#pragma once

#include <string>
#include <vector>

// One line of a script. Pointer events carry the modifier keys held, as X reports them with each
// event: those of its own line and, for a move or a release, those held at the last press.
struct ScriptEvent {
    enum What { Pointer, SaveKey } what;
    int event;  // KR_EVENT_PRESS, _RELEASE or _MOVE
    float x, y; // window pixels from the upper left corner
    int button; // KR_MOUSE_...
    bool shift, ctrl;
    int line; // where it stands in the script
};

// Reads the script at `path`; key lines only where `keys` allows them. On a line it can't take,
// or a file it can't read, gives false and one line that names the file and the line.
bool readEventScript(const std::string& path, bool keys, std::vector<ScriptEvent>* events, std::string* error);

// The help text of --events.
extern const char* const kEventScriptHelp;
