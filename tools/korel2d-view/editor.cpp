#include "editor.h"

#include <GL/gl.h>

#include <algorithm>
#include <cstdio>

Editor::Point Editor::toView(float x, float y) const
{
    // The inverse of the draw: the page's lower left corner at (posX, posY) pixels, y upwards.
    return {(x - view_->posX) / view_->zoom + view_->x, (window_->height - y - view_->posY) / view_->zoom + view_->y};
}

void Editor::select(ELEMENT_STRUCT* element)
{
    // The flag makes the library outline the element in a stopped view.
    if (selected_)
        selected_->selected = 0;
    selected_ = element;
    if (selected_)
        selected_->selected = 1;
}

void Editor::pointer(int event, int button, float x, float y, bool shift, bool ctrl)
{
    if (button != KR_MOUSE_LEFT)
        return;
    if (event == KR_EVENT_PRESS)
        press(x, y, shift, ctrl);
    else if (event == KR_EVENT_RELEASE)
        release(x, y, shift, ctrl);
    else
        move(x, y, shift, ctrl);
}

void Editor::press(float x, float y, bool shift, bool ctrl)
{
    if (code_ || view_->zoom <= 0)
        return;
    const Point at = toView(x, y);
    if (selected_ && selected_->edit) {
        if (int handle = findSticky(selected_->stickies, at.x, at.y, view_->zoom)) {
            code_ = handle;
            offset_ = {0, 0};
            step(x, y, shift, ctrl, KR_EDIT_BEGIN);
            return;
        }
    }
    int count = 0;
    ELEMENT_STRUCT** hits = krObjPick(window_, view_, int(x), int(y), &count);
    ELEMENT_STRUCT** end = hits + count;
    const STICKY_STRUCT* centre = selected_ ? getSticky(selected_->stickies, KR_HANDLE_CENTRE) : nullptr;
    if (centre && selected_->edit && std::find(hits, end, selected_) != end) {
        // A move takes the new centre: the one at the press, shifted as far as the pointer goes.
        code_ = KR_HANDLE_CENTRE;
        offset_ = {centre->x - at.x, centre->y - at.y};
        step(x, y, shift, ctrl, KR_EDIT_BEGIN);
        return;
    }
    // The last hit is the topmost: a group rather than its child.
    select(count > 0 ? end[-1] : nullptr);
}

void Editor::move(float x, float y, bool shift, bool ctrl)
{
    if (code_)
        step(x, y, shift, ctrl, KR_EDIT_UPDATE);
}

void Editor::release(float x, float y, bool shift, bool ctrl)
{
    if (!code_)
        return;
    step(x, y, shift, ctrl, KR_EDIT_UPDATE);
    step(x, y, shift, ctrl, KR_EDIT_END);
    code_ = 0;
}

void Editor::step(float x, float y, bool shift, bool ctrl, int phase)
{
    setShift(shift);
    setCtrl(ctrl);
    const Point at = toView(x, y);
    KR_EDIT_VALUE value = {};
    value.x = at.x + offset_.x;
    value.y = at.y + offset_.y;
    selected_->edit(selected_, selected_->stickies, code_, phase, &value);
}

namespace {

void square(float x, float y, float w, float h, const float fill[3])
{
    glColor3fv(fill);
    glRectf(x - w, y - h, x + w, y + h);
    glColor3f(0, 0, 0);
    glBegin(GL_LINE_LOOP);
    glVertex2f(x - w, y - h);
    glVertex2f(x + w, y - h);
    glVertex2f(x + w, y + h);
    glVertex2f(x - w, y + h);
    glEnd();
}

// White under black dashes, so that it shows on any page.
void dashed(GLenum mode, const float* xy, int points)
{
    for (int pass = 0; pass < 2; ++pass) {
        glColor3f(float(1 - pass), float(1 - pass), float(1 - pass));
        if (pass)
            glEnable(GL_LINE_STIPPLE);
        glBegin(mode);
        for (int i = 0; i < points; ++i)
            glVertex2f(xy[2 * i], xy[2 * i + 1]);
        glEnd();
    }
}

} // namespace

void Editor::drawHandles() const
{
    if (!selected_)
        return;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    for (GLenum cap : {GL_TEXTURE_2D, GL_STENCIL_TEST, GL_SCISSOR_TEST, GL_DEPTH_TEST, GL_BLEND, GL_LINE_SMOOTH,
                       GL_LINE_STIPPLE, GL_POLYGON_STIPPLE})
        glDisable(cap);
    glLineWidth(1);
    glLineStipple(1, 0x0F0F);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, window_->width, 0, window_->height, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    // Handles keep their size in pixels whatever the zoom, as findSticky takes them.
    const float zoom = view_->zoom;
    auto px = [&](float x) { return (x - view_->x) * zoom + view_->posX; };
    auto py = [&](float y) { return (y - view_->y) * zoom + view_->posY; };
    static const float kBox[3] = {1, 1, 1}, kCentre[3] = {1, 0.85f, 0}, kAnchor[3] = {1, 0.2f, 0.2f};
    for (const STICKY_STRUCT* s = selected_->stickies; s; s = s->next) {
        switch (s->kind) {
        case KR_STICKY_FRAME: {
            const float xy[] = {px(s->x), py(s->y), px(s->x + s->w), py(s->y), px(s->x + s->w), py(s->y + s->h),
                                px(s->x), py(s->y + s->h)};
            dashed(GL_LINE_LOOP, xy, 4);
            break;
        }
        case KR_STICKY_SEGMENT: {
            const float xy[] = {px(s->x), py(s->y), px(s->w), py(s->h)};
            dashed(GL_LINES, xy, 2);
            break;
        }
        case KR_STICKY_SQUARE:
        case KR_STICKY_CENTRE:
        case KR_STICKY_ANCHOR:
            square(px(s->x), py(s->y), s->w, s->h,
                   s->kind == KR_STICKY_SQUARE ? kBox : s->kind == KR_STICKY_CENTRE ? kCentre : kAnchor);
            break;
        default:
            break;
        }
    }
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopAttrib();
}

bool Editor::save() const
{
    const bool saved = saveFile(savePath_.c_str(), view_->elements, view_->dataTypes, view_) == 0;
    if (saved)
        std::printf("korel2d-view: saved the view to %s\n", savePath_.c_str());
    else
        std::fprintf(stderr, "korel2d-view: cannot save the view to %s\n", savePath_.c_str());
    return saved;
}
