// A C++ host with a window of its own: it opens an X window with a GLX context and then works
// the view only through Korel2D::KorelView. It starts the live panel, drawn through a texture,
// sets the bar's setpoint in a few frames, then moves it with the pointer, prints what the view
// holds and stops it.
// Usage: panelHost examples/live.k2d (needs an X display); the README's host section shows how
// to build it.
#include <KorelView.h>

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>

#include <cstdio>

namespace {

constexpr int kWidth = 640, kHeight = 400, kFrames = 3;
// 40 % up the bar of examples/live.k2d, in view units (y upwards).
constexpr double kBarX = 345, kBarY = 180;

struct GlWindow {
    Display* display = nullptr;
    Window window = 0;
    GLXContext context = nullptr;
};

// A mapped window with double-buffered RGBA and the 8 stencil bits that groups clip with; its
// context is current and its matrices count pixels from the lower left corner.
bool openWindow(GlWindow& w)
{
    w.display = XOpenDisplay(nullptr);
    if (!w.display)
        return false;
    int attributes[] = {GLX_RGBA, GLX_DOUBLEBUFFER, GLX_RED_SIZE, 8, GLX_GREEN_SIZE, 8, GLX_BLUE_SIZE, 8,
                        GLX_STENCIL_SIZE, 8, None};
    XVisualInfo* visual = glXChooseVisual(w.display, DefaultScreen(w.display), attributes);
    if (!visual)
        return false;
    const Window root = RootWindow(w.display, visual->screen);
    XSetWindowAttributes settings = {};
    settings.colormap = XCreateColormap(w.display, root, visual->visual, AllocNone);
    settings.event_mask = StructureNotifyMask;
    w.window = XCreateWindow(w.display, root, 0, 0, kWidth, kHeight, 0, visual->depth, InputOutput, visual->visual,
                             CWColormap | CWEventMask, &settings);
    w.context = glXCreateContext(w.display, visual, nullptr, True);
    XFree(visual);
    if (!w.context)
        return false;
    XStoreName(w.display, w.window, "panelHost");
    XMapWindow(w.display, w.window);
    XEvent event;
    do
        XNextEvent(w.display, &event);
    while (event.type != MapNotify);
    if (!glXMakeCurrent(w.display, w.window, w.context))
        return false;
    glViewport(0, 0, kWidth, kHeight);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, kWidth, 0, kHeight, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    return true;
}

void closeWindow(GlWindow& w)
{
    if (w.context) {
        glXMakeCurrent(w.display, None, nullptr);
        glXDestroyContext(w.display, w.context);
    }
    if (w.window)
        XDestroyWindow(w.display, w.window);
    if (w.display)
        XCloseDisplay(w.display);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: panelHost VIEWFILE\n");
        return 2;
    }
    // The context comes first: a load makes the textures of the view's images.
    GlWindow w;
    if (!openWindow(w)) {
        std::fprintf(stderr, "panelHost: no GLX window on the display\n");
        closeWindow(w);
        return 1;
    }
    int status = 1;
    {
        Korel2D::KorelView view;
        if (!view.load(argv[1])) {
            std::fprintf(stderr, "panelHost: cannot load %s\n", argv[1]);
        } else {
            view.setRenderMode(Korel2D::eRenderPlane);
            view.startView(false); // each draw runs one data cycle
            for (int frame = 1; frame <= kFrames; ++frame) {
                view.setVar("SETPOINT", 25.0 * frame);
                glClear(GL_COLOR_BUFFER_BIT);
                view.draw(true); // rendered anew, as a value changed
                glXSwapBuffers(w.display, w.window);
            }
            double set = 0, pointed = 0;
            view.getVar("SETPOINT", set);
            // A press on the bar puts the setpoint at that height.
            view.setEvent(Korel2D::eMouseLeft, Korel2D::eEventPress, kBarX, kBarY);
            view.setEvent(Korel2D::eMouseLeft, Korel2D::eEventRelease, kBarX, kBarY);
            if (view.getVar("SETPOINT", pointed)) {
                std::printf("SETPOINT = %g\nSETPOINT = %g after a press on the bar\n", set, pointed);
                status = 0;
            }
            glClear(GL_COLOR_BUFFER_BIT);
            view.draw(true);
            glXSwapBuffers(w.display, w.window);
            view.stopView();
        }
    } // the view goes before its context
    closeWindow(w);
    return status;
}
