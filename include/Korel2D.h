/**
 * @file Korel2D.h
 * libKorel2D for a host: load a view, run it against its data sources, draw it into the host's
 * OpenGL 1.x context, and read and write its variables.
 *
 * Sections:
 *  1. Version, export macro and named codes
 *  2. Records a host reads: element, attributes, action, threshold
 *  3. View and window handles
 *  4. Views: load, free, settings
 *  5. Running a view
 *  6. Sources and variables
 *  7. Windows and drawing
 *  8. Log
 *
 * Compiles as C (C89 and later) and as C++; every function has C linkage. An editing tool adds
 * KorelEdit.h; a data-source plug-in needs only KorelDataSource.h.
 *
 * Units: positions and sizes are view units, y upwards; at zoom 1 one view unit is one window
 * pixel. Colours are r, g, b, a from 0 to 1. Angles in records are radians.
 * Integer results of the handle functions: 0 done, -1 null handle, -2 wrong magic, -3 wrong state
 * or no GL context. Functions take no ownership of what they are given unless they say so.
 */
#ifndef KOREL2D_H
#define KOREL2D_H

#include <pthread.h>
#include <stddef.h>
#include <stdint.h>

#include "KorelDataSource.h"

/** Marks what the library exports; everything else in it is hidden. */
#if defined(__GNUC__)
#define KOREL2D_API __attribute__((visibility("default")))
#else
#define KOREL2D_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ================================================================ 1. version and named codes */

/** Major version; the shared object's soname number. */
#define KOREL2D_VERSION_MAJOR 3
/** Minor version. */
#define KOREL2D_VERSION_MINOR 4
/** Patch level. */
#define KOREL2D_VERSION_PATCH 1

/** Release number: 304, for revision 3.04 of the view files. */
KOREL2D_API int KGet_releasenr(void);
/** "Korel2D <major>.<minor>.<patch> <year of the build>", in a buffer that the next call of this
 *  or KGet_releaseshort overwrites. */
KOREL2D_API const char* KGet_release(void);
/** "<major>.<minor>.<patch>", in the buffer KGet_release uses. */
KOREL2D_API const char* KGet_releaseshort(void);

/** VIEW_STRUCT.magic of a live view. */
#define KR_VIEW_MAGIC 0x10203040u
/** WINDOW_STRUCT.magic of a live window record. */
#define KR_WINDOW_MAGIC 0x10203041u

/** Element kind codes (ELEMENT_STRUCT.type). 10 is an older code for text, folded to 4. */
enum {
    KR_GRAPH = 0,
    KR_RECT = 1,
    KR_POLYLINE = 2,
    KR_CIRCLE = 3,
    KR_TEXT = 4,
    KR_LINE = 5,
    KR_ARC = 6,
    KR_IMAGE = 7,
    KR_GROUP = 8,
    KR_TEXT_OLD = 10,
    KR_BUTTON = 11,
    KR_SLIDER = 12,
    KR_CPOLY = 13,
    KR_SCISSOR = 14
};

/** Action type codes (ACTION_STRUCT.type): what the value of the action's variable changes. */
enum {
    KR_ACTION_TEXT = 0,                 /* formats the value into a text element */
    KR_ACTION_MOVE_X = 1,               /* moves in x by the value */
    KR_ACTION_MOVE_Y = 2,
    KR_ACTION_SCALE_X = 3,
    KR_ACTION_SCALE_Y = 4,
    KR_ACTION_ROTATE = 5,               /* degrees, positive clockwise */
    KR_ACTION_GRAPH = 6,                /* feeds a trace of a graph */
    KR_ACTION_MOVE_X_RELATIVE = 7,      /* by the value times the element's width */
    KR_ACTION_MOVE_Y_RELATIVE = 8,      /* by the value times the element's height */
    KR_ACTION_MOVE_X_ABSOLUTE = 9,      /* so that the element's x equals the value */
    KR_ACTION_MOVE_Y_ABSOLUTE = 10,
    KR_ACTION_MOVE_ALONG_POLYLINE = 11, /* the value is the fraction of the polyline's length */
    KR_ACTION_STROKE_COLOR = 12,        /* 12 to 15 and 25 choose by threshold */
    KR_ACTION_FILL_COLOR = 13,
    KR_ACTION_STROKE_WIDTH = 14,
    KR_ACTION_STROKE_STYLE = 15,
    KR_ACTION_SCALE_XY = 16,
    KR_ACTION_VISIBLE = 17,             /* shows or hides the element and all below it */
    KR_ACTION_FILL_UP = 18,             /* fills a closed polygon from below up to the value */
    KR_ACTION_FILL_DOWN = 19,
    KR_ACTION_FILL_LEFT = 20,
    KR_ACTION_FILL_RIGHT = 21,
    KR_ACTION_INPUT = 22,               /* pointer events write the variable */
    KR_ACTION_BUTTON_STATE = 23,        /* the pressed state of a button */
    KR_ACTION_ARC_END = 24,             /* end angle of a circle or arc, in degrees */
    KR_ACTION_BLINK = 25                /* selects the blink clock */
};

/** The threshold blocks of an action, in the order a file stores them. */
enum {
    KR_THRESHOLDS_COLOR = 0,   /* colorThresholds: TH_STRUCT.color */
    KR_THRESHOLDS_WIDTH = 1,   /* widthThresholds: value is the line width */
    KR_THRESHOLDS_STYLE = 2,   /* styleThresholds: value is the line style */
    KR_THRESHOLDS_VISIBLE = 3, /* visibleThresholds: value 0 hides, else shows */
    KR_THRESHOLDS_BLINK = 4,   /* blinkThresholds: value is the blink clock, 0 none */
    KR_THRESHOLD_BLOCKS = 5
};

/** Run modes (VIEW_STRUCT.runMode). */
enum {
    KR_RUN_STOPPED = 0,
    KR_RUN_SYNCHRONOUS = 1, /* each draw runs the data cycle */
    KR_RUN_ANIMATED = 2     /* a data thread runs it */
};

/** Position words: points of an element's box, clockwise from the upper left, 9 the centre. They
 *  number the centre of scale and rotate actions (ACTION_STRUCT.cg) and text anchors. */
enum {
    KR_POS_UPPER_LEFT = 1,
    KR_POS_TOP = 2,
    KR_POS_UPPER_RIGHT = 3,
    KR_POS_RIGHT = 4,
    KR_POS_LOWER_RIGHT = 5,
    KR_POS_BOTTOM = 6,
    KR_POS_LOWER_LEFT = 7,
    KR_POS_LEFT = 8,
    KR_POS_CENTRE = 9
};

/** Filters of an action's value (ACTION_STRUCT.filter). */
enum {
    KR_FILTER_NONE = 0,
    KR_FILTER_TIME = 1, /* holds the value, taking a new one each filterTime seconds */
    KR_FILTER_LAG = 2   /* first-order lag with time constant filterTime */
};

/** Pointer events of krViewEvent; any other code reaches the picked element and runs nothing. */
enum {
    KR_EVENT_PRESS = 0,
    KR_EVENT_RELEASE = 1,
    KR_EVENT_MOVE = 7
};

/** Pointer buttons (ACTION_STRUCT.mouseButton and the button of an event). */
enum {
    KR_MOUSE_LEFT = 0,
    KR_MOUSE_CENTRE = 1,
    KR_MOUSE_RIGHT = 2
};

/** What a pointer action does (ACTION_STRUCT.mouseAction): steps on press or release, or follows moves. */
enum {
    KR_MOUSE_ACTION_PRESS = 0,      /* "press": a step by mouseMode */
    KR_MOUSE_ACTION_RELEASE = 1,    /* "release": a step by mouseMode */
    KR_MOUSE_ACTION_MOVEX = 2,      /* "movex": x across the element's width over the mouse range */
    KR_MOUSE_ACTION_MOVEY = 3,      /* "movey" */
    KR_MOUSE_ACTION_MOVEX_ABS = 4,  /* "movexabs": x in view units */
    KR_MOUSE_ACTION_MOVEY_ABS = 5,  /* "moveyabs" */
    KR_MOUSE_ACTION_ROTATE = 6,     /* "rotate": degrees clockwise from straight up about the centre */
    KR_MOUSE_ACTION_MOVE = 7        /* "move": takes the pick, writes nothing */
};

/** How a pointer action writes (ACTION_STRUCT.mouseMode). For moves, 0 is absolute and 1 or 2
 *  relative to the press. */
enum {
    KR_MOUSE_MODE_SET = 0, /* "set": mouseInc */
    KR_MOUSE_MODE_INC = 1, /* "inc": up by mouseInc */
    KR_MOUSE_MODE_DEC = 2  /* "dec": down by mouseInc */
};

/** An element of a view: see struct ELEMENT_STRUCT. */
typedef struct ELEMENT_STRUCT ELEMENT_STRUCT;
/** An action of an element: see struct ACTION_STRUCT. */
typedef struct ACTION_STRUCT ACTION_STRUCT;
/** A grab handle of an element in an editing tool; opaque to a host. */
typedef struct STICKY_STRUCT STICKY_STRUCT;
/** The library's hash table of a view's variables; opaque to a host. */
typedef struct mpiHash mpiHash;

/* ================================================================ 2. records a host reads */

/** @typedef ELEMENT_ATTR
 * Run-time look of an element. Each value with a `...Set` flag was written by an action;
 * a group hands flagged values down to its children. Values and flags are laid out in
 * pairs so that they can be copied together. */
typedef struct ELEMENT_ATTR {
    uint8_t lineStyle; /* for a button: the pressed state */
    uint8_t lineStyleSet;
    int32_t stippleFactor;
    uint16_t stipplePattern;
    int8_t lineWidth;
    uint8_t lineWidthSet;
    float strokeColor[4];
    uint8_t strokeColorSet;
    float fillColor[4];
    uint8_t fillColorSet;
    uint8_t visible;
    uint8_t visibleSet;
    uint8_t blink;
    uint8_t blinkSet;
    uint8_t blinkRate; /* blink clock 1..8, anything else: no blinking */
    char text[256];
    uint8_t textSet;
    uint8_t live; /* 1 when the last draw pass ran with the view running */
    float arcEnd;
} ELEMENT_ATTR;

/** A kind's geometry pass, ELEMENT_STRUCT.setPickSticky: rebuilds handles and derived geometry,
 *  then seeds attr. */
typedef int (*KR_SET_PICK_STICKY)(ELEMENT_STRUCT* element);
/** A kind's edit operation, ELEMENT_STRUCT.edit: (element, handle list, attribute or handle id,
 *  phase, value pointer). */
typedef int (*KR_EDIT)(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** A kind's hit test, ELEMENT_STRUCT.pick: non-zero when (x, y), in view units, hits the element. */
typedef int (*KR_PICK)(ELEMENT_STRUCT* element, float x, float y);

struct ELEMENT_STRUCT {
    char name[64];
    char id[256];
    uint32_t type;
    ELEMENT_STRUCT* child;
    ELEMENT_STRUCT* next;
    ELEMENT_STRUCT* prev;
    ACTION_STRUCT* actions;
    float x, y; /* centre of the box; relative to the group's centre inside a group */
    float width, height;
    int32_t selected;
    int32_t hasScissor;
    int32_t scissorX, scissorY, scissorWidth, scissorHeight;
    float scissorCornerX[4];
    float scissorCornerY[4];
    KR_SET_PICK_STICKY setPickSticky;
    KR_EDIT edit;
    KR_PICK pick;
    int32_t pickShape;
    float pickLine[4];
    float bounds[4]; /* xmin, ymin, xmax, ymax in view units */
    float refX, refY;
    STICKY_STRUCT* stickies;
    void* data;
    void* editData;
    ELEMENT_ATTR attr;
    float pickMatrix[6];
    float grabPoints[10][2];
    ELEMENT_STRUCT* parent;
};

/** @typedef TH_STRUCT
 * One threshold of an action. */
typedef struct TH_STRUCT {
    float lower;
    float upper;
    int32_t value;
    float color[3];
    int32_t styleId;
    int32_t stippleFactor;
    uint16_t stipplePattern;
    struct TH_STRUCT* prev;
    struct TH_STRUCT* next;
} TH_STRUCT;

/* Ties one property of an element to a variable. One record for all types: `type` (0..25)
 * selects which fields mean anything. The mapping is mapped = offset + slope * raw, the line through
 * (a0, b0) and (a1, b1), worked out when variables are bound. */
struct ACTION_STRUCT {
    int32_t type;
    char var[64];
    float a0, a1; /* input range: raw values */
    float b0, b1; /* what a0 and a1 map to */
    int32_t limit; /* non-zero: clamp the mapped value to b0..b1 */
    char var2[64]; /* second variable of a graph trace */
    float var2A0, var2A1, var2B0, var2B1;
    char format[64]; /* printf format of a text action */
    int32_t cg;      /* position word (KR_POS_...) of the centre of scale and rotate */
    int32_t filter;  /* KR_FILTER_... */
    float filterTime;
    ACTION_STRUCT* next;
    ACTION_STRUCT* prev;
    double filterElapsed;
    float filterValue;
    int32_t mouseButton; /* 0 left, 1 centre, 2 right */
    int32_t mouseAction; /* 0 press, 1 release, 2/3 move in x/y, 4/5 absolute in x/y, 6 rotate, 7 move */
    int32_t mouseMode;   /* 0 set, 1 increment, 2 decrement */
    int32_t mouseClamp;  /* 0: the value wraps at the ends of its range */
    float mouseInc;
    float mouseMin, mouseMax;
    char translatePoly[64]; /* name of the polyline to move along */
    int32_t mouseHiddenActive;
    int32_t id;
    int32_t disabled; /* a graph trace that isn't drawn */
    void* value;      /* the variable's value buffers, owned by the library's binding */
    void* value2;
    void* heldValue; /* this action's own copies, the ones a frame reads */
    void* heldValue2;
    VARIABLE_STRUCT* variable;
    int32_t varType;
    float offset, slope;
    float offset2, slope2;
    float pressX, pressY;
    float lastX, lastY;
    double pressValue;
    int32_t visibleMode; /* 0: visibility by thresholds, 1: compare with visibleValue */
    int32_t visibleValue;
    int32_t inTail, inHead, inSize, inCount; /* input ring of a graph trace */
    float inStart, inNextTime;
    float* inY;
    float* inX;
    int32_t outTail, outHead, outSize, outCount; /* display ring of a graph trace */
    float outStart, outNextTime;
    float* outY;
    float* outX;
    /* Threshold blocks; the ranges are for the editing tool only. */
    float colorMin, colorMax;
    TH_STRUCT* colorThresholds; /* TH_STRUCT.color */
    float widthMin, widthMax;
    TH_STRUCT* widthThresholds; /* value: line width */
    float styleMin, styleMax;
    TH_STRUCT* styleThresholds; /* value: line style, with its stipple */
    float visibleMin, visibleMax;
    TH_STRUCT* visibleThresholds; /* value: visibility */
    float blinkMin, blinkMax;
    TH_STRUCT* blinkThresholds; /* value: blink clock, 0 for none */
    ELEMENT_STRUCT* movePoly;   /* the polyline of translatePoly, found at start */
};

/* ================================================================ 3. view and window handles */

/** @typedef DRAW_SETTINGS
 * Settings of one draw pass, taken from the view and the window. */
typedef struct DRAW_SETTINGS {
    float zoom;
    uint32_t scissorType;
    uint32_t useDepthBuffer;
    uint32_t useLineScaling;
} DRAW_SETTINGS;

/** @typedef VIEW_STRUCT
 * A loaded view: page, element and source lists, run mode and clock, draw settings. Made by
 * krViewLoad, destroyed by krViewFree; a host reads it and changes it only through the kr
 * functions. */
typedef struct VIEW_STRUCT {
    uint32_t magic;
    float pageColor[3];
    float x, y;
    float width, height;
    ELEMENT_STRUCT* elements;
    DD_DATA_TYPE_STRUCT* dataTypes;
    DD_DATA_TYPE_STRUCT* knownTypes;
    uint32_t runMode;  /* 0 stopped, 1 synchronous, 2 animated */
    uint32_t haltMode;
    uint32_t threadDone;
    int32_t posX, posY;
    float zoom;
    int32_t lastPosX, lastPosY;
    float lastZoom;
    double startTime;
    double time;
    mpiHash* varHash;
    pthread_mutex_t mutex;
    float colorFactor[4];
    uint32_t scissorType; /* 1: scissor box; anything else: stencil */
    uint32_t useDepthBuffer;
    uint32_t useLineScaling;
    uint32_t backgroundMode;
    uint32_t planeDirty;
    uint32_t planeTexture;
    uint32_t planeList;
    ELEMENT_STRUCT* pickedElement;
    int64_t pickEvent;
    /* Private to the library: the data thread of mode 2 until it is joined, and whether the
     * sources are still open after a stop that could not wait for that thread. */
    void* dataThread;
    uint32_t sourcesOpen;
} VIEW_STRUCT;

/** @typedef WINDOW_STRUCT
 * A window record of the krWindow functions: its size in pixels and the last draw settings. */
typedef struct WINDOW_STRUCT {
    uint32_t magic;
    int32_t width, height;
    DRAW_SETTINGS settings;
} WINDOW_STRUCT;

/* ================================================================ 4. views */

/**
 * Loads a binary view file, finds its data sources and prepares it to be drawn.
 * @param path file name.
 * @return a stopped view that the caller gives back with krViewFree; null on failure, with the
 *         reason in the log (getLogMsg).
 */
KOREL2D_API VIEW_STRUCT* krViewLoad(const char* path);
/**
 * As krViewLoad, from the bytes of a view file in memory.
 * @param buffer the bytes; only read during the call. @param size their number.
 * @return a stopped view (krViewFree), or null.
 */
KOREL2D_API VIEW_STRUCT* krViewLoadData(const void* buffer, size_t size);
/** Stops a running view and destroys it with everything it owns; the handle is invalid afterwards.
 *  @return 0, -1, -2. */
KOREL2D_API int krViewFree(VIEW_STRUCT* view);

/** Colour factor multiplied into every colour drawn; each 0..1, default 1, 1, 1, 1. @return 0, -1, -2. */
KOREL2D_API int krViewSetColorFactor(VIEW_STRUCT* view, float r, float g, float b, float a);
/** Clipping of groups: 1 scissor box, anything else stencil (default 0). @return 0, -1, -2. */
KOREL2D_API int krViewSetScissorType(VIEW_STRUCT* view, int type);
/** Non-zero: elements are spread over the depth range (default 0). @return 0, -1, -2. */
KOREL2D_API int krViewSetUseDepthBuffer(VIEW_STRUCT* view, int flag);
/** Non-zero: line widths follow the projection's scale (default 0). @return 0, -1, -2. */
KOREL2D_API int krViewSetUseLineScaling(VIEW_STRUCT* view, int flag);
/** Non-zero: krViewDrawPlane_Direct paints the page first (default 1). A bad view is ignored. */
KOREL2D_API void krSetBackgroundMode(VIEW_STRUCT* view, int flag);
/** Page width in view units, truncated; -1 or -2 for a bad handle. */
KOREL2D_API int krViewWidth(VIEW_STRUCT* view);
/** Page height in view units, truncated; -1 or -2 for a bad handle. */
KOREL2D_API int krViewHeight(VIEW_STRUCT* view);
/** x of the page's centre in view units, truncated; -1 or -2 for a bad handle. */
KOREL2D_API int krViewPosX(VIEW_STRUCT* view);
/** y of the page's centre in view units, truncated; -1 or -2 for a bad handle. */
KOREL2D_API int krViewPosY(VIEW_STRUCT* view);

/* ================================================================ 5. running a view */

/** Starts a stopped view in mode 1: each draw runs one data cycle. Opens the sources and gives
 *  every variable its value buffer. @return 0, -1, -2, -3 if not stopped. */
KOREL2D_API int krViewStart(VIEW_STRUCT* view);
/** Starts a stopped view in mode 2: the thread "Korel2D:Data" runs a data cycle every 10 ms.
 *  @return 0, -1, -2, -3 if not stopped or if the thread can't be made. */
KOREL2D_API int krViewStartAnim(VIEW_STRUCT* view);
/** Stops either mode: waits at most 0.5 s for the data thread, restores the static look,
 *  closes the sources. Value buffers (krVarGetAddr) are gone afterwards. @return 0, -1, -2, -3 if stopped. */
KOREL2D_API int krViewStop(VIEW_STRUCT* view);
/** Stops mode 2 only, as krViewStop. @return 0, -1, -2, -3 in any other mode. */
KOREL2D_API int krViewStopAnim(VIEW_STRUCT* view);
/** Adds delta seconds to the view clock (mode 1). @return 0, -1, -2, -3 if stopped. */
KOREL2D_API int krViewPutData(VIEW_STRUCT* view, double delta);
/** Sets the view clock to t seconds and restarts the graphs there, as krViewResetGraph; any
 *  mode. @return 0, -1, -2. */
KOREL2D_API int krViewSetTime(VIEW_STRUCT* view, float t);
/** Empties every graph's traces and starts their windows at view time t, without moving the
 *  view clock; any mode. @return 0, -1, -2. */
KOREL2D_API int krViewResetGraph(VIEW_STRUCT* view, float t);
/** Non-zero freezes what is shown while the data cycle goes on; 0 (the default) lets it follow.
 *  @return 0, -1, -2, -3 if stopped. */
KOREL2D_API int krViewSetHaltMode(VIEW_STRUCT* view, int mode);

/**
 * Hands a pointer event of the host's window to a running view: finds the element under the
 * pointer and runs its pointer actions (type KR_ACTION_INPUT), which write their variables.
 * A press captures the element until the release.
 * @param window the window the view was drawn into: its height and last zoom convert the position.
 * @param view a started view.
 * @param button KR_MOUSE_LEFT, _CENTRE or _RIGHT. @param event KR_EVENT_PRESS, _RELEASE or _MOVE.
 * @param x, y window pixels, y counted down from the top; a non-finite position runs nothing.
 * @return 0, -1, -2, -3 if the view is stopped.
 */
KOREL2D_API int krViewEvent(WINDOW_STRUCT* window, VIEW_STRUCT* view, int button, int event, float x, float y);
/** The pick of krViewEvent for a position already in view units (y upwards) at the given zoom,
 *  which sets how close a line must be. Needs no run mode. @return 0. */
KOREL2D_API int kriViewPickElementRun(VIEW_STRUCT* view, int event, int button, float x, float y, float zoom);
/** As kriViewPickElementRun on a bare element list, with one process-wide pick state: one list
 *  at a time, one thread. @return 0. */
KOREL2D_API int krieViewPickElementRun(ELEMENT_STRUCT* list, int event, int button, float x, float y, float zoom);

/* ================================================================ 6. sources and variables */

/**
 * The view's data sources.
 * @param view the view.
 * @param count set to the number of entries (0 on failure); may be null.
 * @return an array made for the caller, given back with krFree; the records stay the view's.
 *         Null for a bad view or when out of memory.
 */
KOREL2D_API DD_DATA_TYPE_STRUCT** krDataSourceGetAll(VIEW_STRUCT* view, int* count);
/** The source's name, owned by the source; null for a null source. */
KOREL2D_API const char* krDataSourceName(DD_DATA_TYPE_STRUCT* source);
/** "libKrd<Name>.so" in a buffer overwritten by the next call; null for a null source. */
KOREL2D_API const char* krDataSourceLibName(DD_DATA_TYPE_STRUCT* source);
/** The source's type number; -1 for a null source. */
KOREL2D_API int krDataSourceType(DD_DATA_TYPE_STRUCT* source);
/** The source's variables as an array for the caller (krFree); count set as in krDataSourceGetAll. */
KOREL2D_API VARIABLE_STRUCT** krVarGetAll(DD_DATA_TYPE_STRUCT* source, int* count);
/** The variable's name, owned by the variable; null for null. */
KOREL2D_API const char* krVarName(VARIABLE_STRUCT* variable);
/** The variable's type code 0..10 (see VARIABLE_STRUCT); -1 for null. */
KOREL2D_API int krVarType(VARIABLE_STRUCT* variable);
/** 1 if the view writes the variable, 0 if it only reads it; -1 for null. */
KOREL2D_API int krVarReadWrite(VARIABLE_STRUCT* variable);
/** Type number of the first source holding a variable of this name; -1 if none. */
KOREL2D_API int krVarSource(VIEW_STRUCT* view, const char* name);
/** Sets parameter `index` of a variable: ival, and text (may be null) copied into the slot,
 *  cut to the slot's size. @return 0, -1 null variable, -2 index out of range. */
KOREL2D_API int krVarSetPara(VARIABLE_STRUCT* variable, int index, int ival, const char* text);
/** Reads parameter `index` of a variable; either output may be null, text gets the slot's size.
 *  @return 0, -1 null variable, -2 index out of range. */
KOREL2D_API int krVarGetPara(VARIABLE_STRUCT* variable, int index, int* ival, char* text);
/** Gives back an array of the Get-all functions; null is ignored. */
KOREL2D_API void krFree(void* pointer);

/**
 * Writes a variable by name, between start and stop; the view sees it from the next data cycle.
 * @param view a started view.
 * @param name the variable's name.
 * @param value copied by the variable's type: 4 bytes for codes 0 and 6 to 9, 8 for 1, 1 for 2
 *        and 3, 2 for 4 and 5, a text of up to 255 characters for 10.
 * @return 1 if the variable exists, else 0; -1 null view, -2 not a view, -3 not started,
 *         -4 null name, -5 null value.
 */
KOREL2D_API int krVarSet(VIEW_STRUCT* view, const char* name, const void* value);
/** As krVarSet, converting text to the variable's type. */
KOREL2D_API int krVarSetStr(VIEW_STRUCT* view, const char* name, const char* text);
/** Prints the value into text (256 bytes). @return as krVarSet, -6 for an unknown name, else
 *  whether an input action wrote the value since the last call (1 or 0). */
KOREL2D_API int krVarGetStr(VIEW_STRUCT* view, const char* name, char* text);
/** The variable's value buffer (8 bytes, 256 for text), owned by the view: it lives from
 *  krViewStart to krViewStop. Null for an unknown name or a stopped view. */
KOREL2D_API void* krVarGetAddr(VIEW_STRUCT* view, const char* name);

/* ================================================================ 7. windows and drawing */

/** A window record (zoom 1) for the krWindow functions; give it back with krWindowFree. Null when
 *  out of memory. */
KOREL2D_API WINDOW_STRUCT* krWindowCreate(void);
/** Destroys a window record; the handle is invalid afterwards. @return 0, -1, -2. */
KOREL2D_API int krWindowFree(WINDOW_STRUCT* window);
/** Sets up the current GL context for a surface of width x height pixels: viewport, projection
 *  (as krdSetViewport), blending. Needs a current context. @return 0, -1, -2. */
KOREL2D_API int krWindowInit(WINDOW_STRUCT* window, int width, int height);
/** Clears the colour buffer with the view's page colour. Needs a current context. @return 0, -1, -2. */
KOREL2D_API int krWindowClear(WINDOW_STRUCT* window, VIEW_STRUCT* view);
/** Blend function, orthographic projection 0..width, 0..height in pixels, viewport. @return 0. */
KOREL2D_API int krdSetViewport(int width, int height);
/** Draws the view as the whole window: its page's lower left corner at (x, y) pixels, scaled by
 *  zoom (1 = 1 pixel per view unit). A started view in mode 1 runs one data cycle first.
 *  @return 0, -1, -2, -3 without a GL context. */
KOREL2D_API int krViewDraw(WINDOW_STRUCT* window, VIEW_STRUCT* view, float x, float y, float zoom);
/** Draws into the host's matrices at the view's last position and zoom (those of the last
 *  krViewDraw). @return 0, -1, -2, -3. */
KOREL2D_API int krViewDrawPlane_Direct(VIEW_STRUCT* view);
/** 1 when an edit has made a text's font anew since the last text was drawn, so the host
 *  should draw again; 0 otherwise. Process-wide, not per view. */
KOREL2D_API int krTextUpdate(void);
/** Modes of krViewDrawPlane. */
enum {
    KR_PLANE_CACHED = 0, /* the page's texture as last rendered (rendered first if none is due) */
    KR_PLANE_RENDER = 1, /* the page rendered into its texture again, then shown */
    KR_PLANE_DIRECT = 2  /* no texture: as krViewDrawPlane_Direct */
};
/** Shows the page as one textured quad at the view's last position and zoom, in the host's
 *  matrices; what the page doesn't paint stays transparent. The texture is 1024 x 1024: a larger
 *  page keeps the last rendering that fitted. Rendering overwrites the lower left of the host's
 *  colour buffer (cleared to transparent black) and runs the data cycle of a view started in
 *  mode 1; a cached frame runs neither. mode: a KR_PLANE_... word, any other non-zero acts as
 *  KR_PLANE_RENDER. @return 0, -1, -2, -3 without a GL context (KR_PLANE_DIRECT: always 0). */
KOREL2D_API int krViewDrawPlane(VIEW_STRUCT* view, int mode);
/** Draws into the current matrices, with no transform and no GL state saving of its own.
 *  @return 0, -1, -2, -3. */
KOREL2D_API int krViewDrawWindow(VIEW_STRUCT* view);

/* ================================================================ 8. log */

/**
 * Logs a printf-style message: printed to stderr and kept in the memory log if level is at most
 * the set level.
 * @param level 1 error, 2 warning, 3 progress.
 * @param format printf format, followed by its arguments.
 * @return 0.
 */
KOREL2D_API int logMsg(int level, const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;
/** The highest level logged; default 1 (errors only). @return 0. */
KOREL2D_API int setLogLevel(int level);
/** Copies at most n-1 characters of the memory log into destination, null-terminated, and
 *  empties the log; a null destination or n of 0 only empties it. @return 0. */
KOREL2D_API int getLogMsg(char* destination, int n);

#ifdef __cplusplus
}
#endif

#endif /* KOREL2D_H */
