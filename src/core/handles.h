// The one test every public entry makes of its handles: -1 null, -2 wrong magic.
#pragma once

#include "Korel2D.h"

inline int checkView(const VIEW_STRUCT* view)
{
    if (!view)
        return -1;
    return view->magic == KR_VIEW_MAGIC ? 0 : -2;
}

inline int checkWindow(const WINDOW_STRUCT* window)
{
    if (!window)
        return -1;
    return window->magic == KR_WINDOW_MAGIC ? 0 : -2;
}

// Both handles of a draw into a window: a null wins over a wrong magic.
inline int checkWindowAndView(const WINDOW_STRUCT* window, const VIEW_STRUCT* view)
{
    if (!window || !view)
        return -1;
    return checkWindow(window) ? -2 : checkView(view);
}

// Holds the view's lock while the data thread of the animated mode may change values: for a draw pass,
// or for one access to a variable by name, so that a value is never seen half-written.
class ViewLock {
public:
    explicit ViewLock(VIEW_STRUCT* view) : view_(view->runMode == KR_RUN_ANIMATED ? view : nullptr)
    {
        if (view_)
            pthread_mutex_lock(&view_->mutex);
    }
    ~ViewLock()
    {
        if (view_)
            pthread_mutex_unlock(&view_->mutex);
    }
    ViewLock(const ViewLock&) = delete;
    ViewLock& operator=(const ViewLock&) = delete;

private:
    VIEW_STRUCT* view_;
};
