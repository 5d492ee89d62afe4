// A C++ host with a window of its own: it opens an X window with a GLX context and then works
// the view only through Korel2D::KorelView. It starts the view, drawn through a texture, and in
// a few frames moves the slider's variable LEVEL up to 0.75 and presses the PUSH button with the
// pointer; then it prints what the view holds and stops it.
// Usage: panelHost examples/controls.k2d (needs an X display); the README's host section shows
// how to build it.
#include <KorelView.h>

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>

#include <cstdio>

namespace {

constexpr int kWidth = 800, kHeight = 400, kFrames = 3;
// The centre of the PUSH button of examples/controls.k2d, in view units (y upwards).
constexpr double kPushX = 262, kPushY = 230;

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
            long pushed = 0;
            for (int frame = 1; frame <= kFrames; ++frame) {
                view.setVar("LEVEL", 0.25 * frame);
                if (frame == 2) {
                    view.setEvent(Korel2D::eMouseLeft, Korel2D::eEventPress, kPushX, kPushY);
                    view.getVar("PUSH", pushed);
                    view.setEvent(Korel2D::eMouseLeft, Korel2D::eEventRelease, kPushX, kPushY);
                }
                glClear(GL_COLOR_BUFFER_BIT);
                view.draw(true); // rendered anew, as the values changed
                glXSwapBuffers(w.display, w.window);
            }
            double level = 0;
            if (view.getVar("LEVEL", level)) {
                std::printf("LEVEL = %g\nPUSH = %ld while pressed\n", level, pushed);
                status = 0;
            }
            view.stopView();
        }
    } // the view goes before its context
    closeWindow(w);
    return status;
}
