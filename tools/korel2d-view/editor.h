// The editor of korel2d-view: selects an element of a stopped view with a click, drags its
// handles or its body, draws its handles, saves the view.
#pragma once

#include "KorelEdit.h"

#include <string>
#include <utility>

class Editor {
public:
    // The view is drawn into the window by krViewDraw: pointer positions are taken the way the
    // last draw showed the view. savePath: where save() writes it.
    Editor(WINDOW_STRUCT* window, VIEW_STRUCT* view, std::string savePath)
        : window_(window), view_(view), savePath_(std::move(savePath))
    {
    }

    // A pointer event (KR_EVENT_...) in window pixels from the upper left corner, with the
    // modifier keys held. The editor takes the left button only.
    void pointer(int event, int button, float x, float y, bool shift, bool ctrl);

    // Draws the selected element's handles over the last frame.
    void drawHandles() const;

    // Writes the view and says where; false, with the reason on stderr, when it couldn't.
    bool save() const;

private:
    struct Point {
        float x, y;
    };
    void press(float x, float y, bool shift, bool ctrl);
    void move(float x, float y, bool shift, bool ctrl);
    void release(float x, float y, bool shift, bool ctrl);
    Point toView(float x, float y) const;
    void select(ELEMENT_STRUCT* element);
    void step(float x, float y, bool shift, bool ctrl, int phase);

    WINDOW_STRUCT* window_;
    VIEW_STRUCT* view_;
    std::string savePath_;
    ELEMENT_STRUCT* selected_ = nullptr;
    int code_ = 0;           // the edit a drag runs: a handle id, KR_HANDLE_CENTRE for the body; 0 none
    Point press_ = {0, 0};   // where the drag began, in view units
    Point offset_ = {0, 0};  // added to the pointer to give the edit's value
};
