/**
 * @file KorelView.h
 * libKorel2D for a C++ host, as one object per view: Korel2D::KorelView loads a view, runs it,
 * reads and writes its variables by name, hands it pointer events and draws it, with plain
 * values in and out and no handles of the flat interface (Korel2D.h) in sight.
 *
 * A host's order: an OpenGL context current (a load makes the textures of the view's images),
 * load(), startView(), then per frame any setVar(), getVar(), setEvent() and one draw(), and
 * stopView() at the end. One object belongs to one thread, the one with the context.
 *
 * Units: positions are view units with y upwards; at zoom 1 one view unit is one pixel.
 * This header needs only the standard library; link with -lKorel2D.
 */
#ifndef KORELVIEW_H
#define KORELVIEW_H

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#ifndef KOREL2D_API
/** Marks what the library exports; everything else in it is hidden. */
#if defined(__GNUC__)
#define KOREL2D_API __attribute__((visibility("default")))
#else
#define KOREL2D_API
#endif
#endif

/** The C++ face of libKorel2D. */
namespace Korel2D {

/** How draw() puts the view on the screen. */
enum eRenderMode : int {
    eRenderDirect = 0, /**< Draws the elements into the scene in every call. */
    eRenderPlane = 1   /**< Renders the page into a texture and draws that; any non-zero value acts so. */
};

/** How groups clip their children; any other value acts as eScissorStencil. */
enum eScissorType : int {
    eScissorStencil = 0, /**< With the stencil buffer (the context needs one). */
    eScissorBox = 1      /**< With the OpenGL scissor box: rectangles only. */
};

/** The pointer button of an event; any other value acts as eMouseLeft. */
enum eMouseButton : int {
    eMouseLeft = 0,   /**< Left button. */
    eMouseCenter = 1, /**< Centre button. */
    eMouseRight = 2   /**< Right button. */
};

/** What a pointer event reports; any other value acts as eEventPress. */
enum eEventType : int {
    eEventPress = 0,   /**< A button went down. */
    eEventRelease = 1, /**< A button went up. */
    eEventMove = 2     /**< The pointer moved. */
};

/** The highest level of messages the library logs, for the whole process. */
enum eLogLevel : int {
    eLogError = 1,   /**< Errors only (the default). */
    eLogWarning = 2, /**< Errors and warnings. */
    eLogInfo = 3     /**< Everything, progress included. */
};

class KorelViewImpl;

/**
 * One view and its run. Operations with a bool result give false when there is no view or
 * the name is unknown; they never throw. Not copyable: the object owns its view.
 */
class KOREL2D_API KorelView {
public:
    /** An object without a view. Sets the process's LC_NUMERIC to "C", so that numbers are
     *  printed and read as the view files write them. */
    KorelView();
    /** Frees the view, stopping it first if it runs. */
    ~KorelView();
    /** Not copyable. */
    KorelView(const KorelView&) = delete;
    /** Not copyable. */
    KorelView& operator=(const KorelView&) = delete;

    /** Loads a binary view file in place of the view held, which is freed first (also when the
     *  load fails). @param path file name. @return true if the view loaded; the reason of a
     *  failure is in the library's log. */
    bool load(const std::string& path);
    /** As load(path), from the bytes of a view file in memory, only read during the call.
     *  @param data the bytes. @param size their number. @return true if the view loaded. */
    bool load(const void* data, uint32_t size);

    /** Writes a variable of the started view, found by its bare name in any source. A float or
     *  double variable receives the value as a float; an integer variable its low bits, at most
     *  32 of them, sign-extended into a 64-bit variable; a text variable nothing.
     *  @param name variable name. @param value the number.
     *  @return false before startView(), after stopView(), or for an unknown name. */
    bool setVar(const std::string& name, long value);
    /** As setVar(name, long), for any integer type (so that setVar(name, 5) is not ambiguous).
     *  @param name variable name. @param value the number. @return as setVar(name, long). */
    template <class Integer, typename std::enable_if<std::is_integral<Integer>::value, int>::type = 0>
    bool setVar(const std::string& name, Integer value)
    {
        return setVar(name, static_cast<long>(value));
    }
    /** Writes a number: a float or double variable receives it as a float; an integer variable
     *  the value truncated to 32 bits (NaN as 0, beyond the range the nearer end), cut to the
     *  variable's width; a text variable nothing. @param name variable name. @param value the
     *  number. @return as setVar(name, long). */
    bool setVar(const std::string& name, double value);
    /** Writes a text: a text variable keeps its first 254 bytes; a number variable the decimal
     *  number the text starts with, stored as by the other setVar. @param name variable name.
     *  @param value the text. @return as setVar(name, long). */
    bool setVar(const std::string& name, const std::string& value);

    /** Reads a number variable as an integer: float and double truncated, the other codes
     *  whole (all 64 bits of a 64-bit variable). A text variable leaves value as it was.
     *  @param name variable name. @param value receives the value.
     *  @return false before startView(), after stopView(), or for an unknown name. */
    bool getVar(const std::string& name, long& value);
    /** Reads a number variable as a double, unsigned codes without sign; a text variable leaves
     *  value as it was. @param name variable name. @param value receives the value.
     *  @return as getVar(name, long&). */
    bool getVar(const std::string& name, double& value);
    /** Reads a variable as a text: "%f" for float and double, "%d" of the low 32 bits for the
     *  integer codes (so an unsigned value above 2^31 - 1 reads negative), a text as it is.
     *  @param name variable name. @param value replaced by the text.
     *  @return as getVar(name, long&). */
    bool getVar(const std::string& name, std::string& value);

    /** Starts the view: opens its sources and binds its variables.
     *  @param animated true: the library's data thread runs a data cycle every 10 ms; false:
     *  each draw() runs one. @return true if it started; false also when it already runs. */
    bool startView(bool animated);
    /** Stops the view and closes its sources; the variables can no longer be read or written
     *  by name. @return true, also for a view that wasn't running. */
    bool stopView();
    /** Draws the view into the host's current matrices, at its position and zoom (setPosition(),
     *  setZoom()). In eRenderPlane mode the page is rendered anew only in the first four draws
     *  after startView() and when force is true; the other draws show the last rendering and run
     *  no data cycle. @param force render the plane anew. @return false without a view. */
    bool draw(bool force);

    /** @param mode how draw() works from now on (default eRenderDirect). */
    void setRenderMode(eRenderMode mode);
    /** @param flag true (the default): draw() paints the page colour behind the elements. */
    void setBackgroundMode(bool flag);
    /** @param flag true: elements are spread over the depth range (default false). */
    void setUseDepthBuffer(bool flag);
    /** @param flag true: line widths follow the projection's scale (default false). */
    void setUseLineScaling(bool flag);
    /** Factors multiplied into every colour drawn, each 0..1 (default 1, 1, 1, 1).
     *  @param r red. @param g green. @param b blue. @param a alpha. */
    void setColor(float r, float g, float b, float a);
    /** @param type how groups clip (default eScissorStencil). */
    void setScissorType(eScissorType type);
    /** @param zoom pixels per view unit for draw() (default 1). */
    void setZoom(double zoom);
    /** Where draw() puts the page's origin, in pixels of the current matrices, truncated to
     *  whole pixels (default 0, 0). @param x to the right. @param y upwards. */
    void setPosition(double x, double y);
    /** Hands a pointer event to the view, running or not: finds the element under the point and
     *  runs its pointer actions. A press captures the element until the release.
     *  @param button the button. @param type the event.
     *  @param x, y the point in view units, y upwards, as the host converted it. */
    void setEvent(eMouseButton button, eEventType type, double x, double y);
    /** @return the page width in view units, truncated; 0 without a view. */
    double width();
    /** @return the page height in view units, truncated; 0 without a view. */
    double height();
    /** @return x of the page's centre in view units, truncated; -1 without a view. */
    double xPos();
    /** @return y of the page's centre in view units, truncated; -1 without a view. */
    double yPos();
    /** Works without a view. @param level the highest level logged, for the whole process. */
    void setLogLevel(eLogLevel level);
    /** @param flag kept for hosts that set it; it changes nothing. */
    void setProfile(bool flag);
    /** The topmost element at a point, by the elements' resting boxes.
     *  @param x, y the point in view units, y upwards, truncated to whole units.
     *  @param name receives the element's name; left as it was when nothing is there.
     *  @return true if an element is there. */
    bool getObject(double x, double y, std::string& name);
    /** @return the names of all variables, source after source, each source's in its order;
     *  empty without a view. */
    std::vector<std::string> getAllVars();

private:
    KorelViewImpl* impl_;
};

} // namespace Korel2D

#endif /* KORELVIEW_H */
