/*
 * libKorel2D: 2-D instrument and control-panel views in a host's OpenGL 1.x context.
 *
 * The flat interface, the records an editing tool works on, and the helpers shared by
 * the library's parts. Compiles as C and as C++; every function has C linkage.
 *
 * Units: positions and sizes are view units (f32), y upwards; at zoom 1 one view unit
 * is one window pixel. Colours are r, g, b, a from 0 to 1. Angles in records are radians.
 * Integer results: 0 done, -1 null handle, -2 wrong magic, -3 wrong state or no GL context.
 */
#ifndef KOREL2D_H
#define KOREL2D_H

#include <pthread.h>
#include <stddef.h>
#include <stdint.h>

#include "KorelDataSource.h"

#ifdef __cplusplus
extern "C" {
#endif

#define KOREL2D_VERSION_MAJOR 3
#define KOREL2D_VERSION_MINOR 4
#define KOREL2D_VERSION_PATCH 1

#define KR_VIEW_MAGIC 0x10203040u
#define KR_WINDOW_MAGIC 0x10203041u

/* Element kind codes (ELEMENT_STRUCT.type). 10 is an older code for text, folded to 4. */
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

/* Action type codes (ACTION_STRUCT.type): what the value of the action's variable changes. */
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

/* The threshold blocks of an action, in the order a file stores them. */
enum {
    KR_THRESHOLDS_COLOR = 0,   /* colorThresholds: TH_STRUCT.color */
    KR_THRESHOLDS_WIDTH = 1,   /* widthThresholds: value is the line width */
    KR_THRESHOLDS_STYLE = 2,   /* styleThresholds: value is the line style */
    KR_THRESHOLDS_VISIBLE = 3, /* visibleThresholds: value 0 hides, else shows */
    KR_THRESHOLDS_BLINK = 4,   /* blinkThresholds: value is the blink clock, 0 none */
    KR_THRESHOLD_BLOCKS = 5
};

/* Run modes (VIEW_STRUCT.runMode). */
enum {
    KR_RUN_STOPPED = 0,
    KR_RUN_SYNCHRONOUS = 1, /* each draw runs the data cycle */
    KR_RUN_ANIMATED = 2     /* a data thread runs it */
};

typedef struct ELEMENT_STRUCT ELEMENT_STRUCT;
typedef struct ACTION_STRUCT ACTION_STRUCT;
typedef struct STICKY_STRUCT STICKY_STRUCT;
typedef struct mpiHash mpiHash;

/* Font handle of the font layer; 0 means no font. */
typedef uint64_t KR_FONT;

/* ---------------------------------------------------------------- records of an element */

/* Run-time look of an element. Each value with a `...Set` flag was written by an action;
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

/* setPickSticky(element): rebuild handles and derived geometry, then seed attr. */
typedef int (*KR_SET_PICK_STICKY)(ELEMENT_STRUCT* element);
/* edit(element, sticky list, attribute or handle id, phase, value pointer). */
typedef int (*KR_EDIT)(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/* pick(element, x, y): non-zero on a hit. */
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

/* One point of a polygon. */
typedef struct COORD_STRUCT {
    int32_t id;
    float x, y;
    float distance;
    double vertex[3];
    struct COORD_STRUCT* next;
    struct COORD_STRUCT* prev;
} COORD_STRUCT;

/* One threshold of an action. */
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
    int32_t cg;      /* position word 1..9 of the centre of scale and rotate */
    int32_t filter;  /* 0 none, 1 time, 2 first-order lag */
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

/* Corner order of corner-based kinds: lower left, upper left, upper right, lower right. */
typedef struct RECT_STRUCT {
    float cornerX[4], cornerY[4];
    float localX[4], localY[4];
    int32_t strokeOn;
    float strokeWidth;
    int32_t strokeStyle;
    float strokeColor[4];
    int32_t fillOn;
    int32_t fillStyle;
    float fillColor[4];
    int32_t antialias;
    int32_t strokeStyleId;
    int32_t stippleFactor;
    uint16_t stipplePattern;
    int32_t fillStyleId;
    uint8_t fillPattern[128];
} RECT_STRUCT;

typedef struct POLY_STRUCT {
    int32_t closed;
    int32_t strokeOn;
    float strokeWidth;
    int32_t strokeStyle;
    float strokeColor[4];
    int32_t fillOn;
    int32_t fillStyle;
    float fillColor[4];
    COORD_STRUCT* coords;
    COORD_STRUCT* fillCoords;
    float fillLevel;
    float localBounds[4];
    float length;
    int32_t antialias;
    uint32_t displayList;
    int32_t strokeStyleId;
    int32_t stippleFactor;
    uint16_t stipplePattern;
    int32_t fillStyleId;
    uint8_t fillPattern[128];
} POLY_STRUCT;

typedef struct CIRCLE_STRUCT {
    float x, y;
    float fanX, fanY;
    float localBounds[4];
    float rx, ry;
    float start, end;
    float matrix[4];
    int32_t strokeOn;
    float strokeWidth;
    int32_t strokeStyle;
    float strokeColor[4];
    int32_t fillOn;
    int32_t fillStyle;
    float fillColor[4];
    int32_t antialias;
    int32_t strokeStyleId;
    int32_t stippleFactor;
    uint16_t stipplePattern;
    int32_t fillStyleId;
    uint8_t fillPattern[128];
} CIRCLE_STRUCT;

typedef struct LINE_STRUCT {
    float x1, y1, x2, y2;
    float localX1, localY1, localX2, localY2;
    float strokeWidth;
    int32_t strokeStyle;
    float strokeColor[4];
    int32_t antialias;
    int32_t strokeStyleId;
    int32_t stippleFactor;
    uint16_t stipplePattern;
} LINE_STRUCT;

typedef struct TEXT_STRUCT {
    float x, y;
    char text[256];
    int32_t align;
    KR_FONT font;
    char fontFamily[64];
    int32_t fontStyle;
    int32_t underline;
    int32_t fontSize;
    int32_t scalable;
    int32_t textSize;
    int32_t fontId;
    float cornerX[4], cornerY[4];
    float span[4];
    float matrix[4];
    int32_t fillStyle;
    float strokeColor[4];
    float fillColor[4];
    float strokeWidth;
    int32_t strokeStyle;
    int32_t antialias;
    int32_t strokeStyleId;
    int32_t stippleFactor;
    uint16_t stipplePattern;
    int32_t fillStyleId;
    uint8_t fillPattern[128];
} TEXT_STRUCT;

typedef struct IMAGE_STRUCT {
    float cornerX[4], cornerY[4];
    float localX[4], localY[4];
    int32_t width, height; /* of the pixel data */
    int32_t texture;       /* texture store id, -1 or 0 while none */
    int32_t fillStyle;
    float fillColor[4];
    int32_t imageId;
    int32_t fillStyleId;
    uint8_t fillPattern[128];
} IMAGE_STRUCT;

typedef struct BUTTON_STRUCT {
    float cornerX[4], cornerY[4];
    float localX[4], localY[4];
    float color0[4], color1[4], color2[4]; /* face, light edge, dark edge */
    float strokeWidth;
    int32_t state;
} BUTTON_STRUCT;

typedef struct SLIDER_STRUCT {
    float x, y;
    float width, height;
    float faceColor[4];
    float darkColor[4];
    float lightColor[4];
    float bevelWidth;
    float knobHalfSize;
    int32_t reserved1;
    float reserved2;
} SLIDER_STRUCT;

typedef struct SCISSOR_STRUCT {
    float cornerX[4], cornerY[4];
    float localX[4], localY[4];
} SCISSOR_STRUCT;

typedef struct GRAPH_STRUCT {
    int32_t type;
    float x, y;
    float width, height;
    float ymin, ymax;
    float xmin, xmax;
    float rate;
    int32_t autoscale;
    float minspready;
    int32_t autoscalex;
    float minspreadx;
    int32_t samples;
    int32_t bars;
    char labelYFormat[32];
    char labelXFormat[32];
    float outlineColor[4];
    float backgroundColor[4];
    float outlineWidth;
    int32_t gridx, gridy;
    int32_t gridxAuto, gridyAuto;
    float gridxSpace, gridySpace;
    float gridxRef, gridyRef;
    int32_t gridStyleId;
    int32_t gridStippleFactor;
    uint16_t gridStipplePattern;
    int32_t gridStyle;
    float gridColor[4];
    int32_t labelx, labely, labelyr;
    int32_t labelFixx, labelFixy;
    float labelXmin, labelXmax;
    float labelYmin, labelYmax;
    int32_t tickx, ticky, tickyr;
    int32_t tickxAuto, tickyAuto;
    float tickxSpace, tickySpace;
    float tickxRef, tickyRef;
    int32_t tickxSub, tickySub;
    float tickWidth;
    KR_FONT font;
    char fontFamily[64];
    int32_t fontStyle;
    int32_t fontSize;
    int32_t fontId;
    float smoothYmin, smoothYmax;
    float smoothXmin, smoothXmax;
    double startTime;
    double lastTime;
} GRAPH_STRUCT;

/* ---------------------------------------------------------------- view and window handles */

typedef struct DRAW_SETTINGS {
    float zoom;
    uint32_t scissorType;
    uint32_t useDepthBuffer;
    uint32_t useLineScaling;
} DRAW_SETTINGS;

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

typedef struct WINDOW_STRUCT {
    uint32_t magic;
    int32_t width, height;
    DRAW_SETTINGS settings;
} WINDOW_STRUCT;

/* ---------------------------------------------------------------- flat interface: views */

/* Loads a binary view file. path: file name. Null on failure (see getLogMsg). */
VIEW_STRUCT* krViewLoad(const char* path);
/* Loads a view from `size` bytes of memory (the bytes of a view file). */
VIEW_STRUCT* krViewLoadData(const void* buffer, size_t size);
/* Stops a running view and destroys it; the handle is invalid afterwards. */
int krViewFree(VIEW_STRUCT* view);

/* Colour factor multiplied into every colour; each 0..1, default 1, 1, 1, 1. */
int krViewSetColorFactor(VIEW_STRUCT* view, float r, float g, float b, float a);
/* Clipping of groups: 1 scissor box, anything else stencil (default 0). */
int krViewSetScissorType(VIEW_STRUCT* view, int type);
/* Non-zero: elements are spread over the depth range (default 0). */
int krViewSetUseDepthBuffer(VIEW_STRUCT* view, int flag);
/* Non-zero: line widths follow the projection's scale (default 0). */
int krViewSetUseLineScaling(VIEW_STRUCT* view, int flag);
/* Non-zero: krViewDrawPlane_Direct paints the page first (default 1). */
void krSetBackgroundMode(VIEW_STRUCT* view, int flag);
/* Page size in view units, truncated. */
int krViewWidth(VIEW_STRUCT* view);
int krViewHeight(VIEW_STRUCT* view);
/* Centre of the page in view units, truncated. */
int krViewPosX(VIEW_STRUCT* view);
int krViewPosY(VIEW_STRUCT* view);

/* ---------------------------------------------------------------- flat interface: running a view */

/* Starts a stopped view in mode 1: each draw runs one data cycle. -3 if not stopped. */
int krViewStart(VIEW_STRUCT* view);
/* Starts a stopped view in mode 2: the thread "Korel2D:Data" runs a data cycle every 10 ms.
 * -3 if not stopped or if the thread can't be made. */
int krViewStartAnim(VIEW_STRUCT* view);
/* Stops either mode: waits at most 0.5 s for the data thread, restores the static look,
 * closes the sources. -3 if stopped. */
int krViewStop(VIEW_STRUCT* view);
/* Stops mode 2 only; -3 in any other mode. */
int krViewStopAnim(VIEW_STRUCT* view);
/* Adds delta seconds to the view clock (mode 1). -3 if stopped. */
int krViewPutData(VIEW_STRUCT* view, double delta);
/* Sets the view clock to t seconds; any mode. */
int krViewSetTime(VIEW_STRUCT* view, float t);
/* Non-zero freezes what is shown while the data cycle goes on. -3 if stopped. */
int krViewSetHaltMode(VIEW_STRUCT* view, int mode);

/* ---------------------------------------------------------------- flat interface: sources and variables */

/* The view's sources as an array made for the caller (give it back with krFree); count set.
 * Null and count 0 for a bad view. */
DD_DATA_TYPE_STRUCT** krDataSourceGetAll(VIEW_STRUCT* view, int* count);
const char* krDataSourceName(DD_DATA_TYPE_STRUCT* source);
/* "libKrd<Name>.so" in a buffer overwritten by the next call; null for a null source. */
const char* krDataSourceLibName(DD_DATA_TYPE_STRUCT* source);
/* Type number; -1 for a null source. */
int krDataSourceType(DD_DATA_TYPE_STRUCT* source);
/* The source's variables as an array for the caller (krFree); count set. */
VARIABLE_STRUCT** krVarGetAll(DD_DATA_TYPE_STRUCT* source, int* count);
const char* krVarName(VARIABLE_STRUCT* variable);
/* Type code 0..10; -1 for null. */
int krVarType(VARIABLE_STRUCT* variable);
/* 1 if the view writes the variable; -1 for null. */
int krVarReadWrite(VARIABLE_STRUCT* variable);
/* Type number of the first source holding a variable of this name; -1 if none. */
int krVarSource(VIEW_STRUCT* view, const char* name);
/* Parameter `index` of a variable: 0, -1 null variable, -2 index out of range.
 * Set: text (may be null) must fit the slot. Get: either output may be null; text gets the slot's size. */
int krVarSetPara(VARIABLE_STRUCT* variable, int index, int ival, const char* text);
int krVarGetPara(VARIABLE_STRUCT* variable, int index, int* ival, char* text);
/* Gives back an array of the Get-all operations; null is ignored. */
void krFree(void* pointer);

/* By name, between start and stop. Results: -1 null view, -2 not a view, -3 not started,
 * -4 null name, -5 null value. krVarSet copies from value by the variable's type (4 bytes
 * for codes 0, 6 to 9; 8 for 1; 1 for 2, 3; 2 for 4, 5; text for 10): 1 if it exists, else 0. */
int krVarSet(VIEW_STRUCT* view, const char* name, const void* value);
/* As krVarSet, converting text to the variable's type. */
int krVarSetStr(VIEW_STRUCT* view, const char* name, const char* text);
/* Prints the value into text (256 bytes). -6 for an unknown name, else whether an input
 * action wrote the value since the last call (1 or 0). */
int krVarGetStr(VIEW_STRUCT* view, const char* name, char* text);
/* The variable's value buffer, or null. */
void* krVarGetAddr(VIEW_STRUCT* view, const char* name);

/* ---------------------------------------------------------------- data-source registry */

/* A zeroed source with found = 1 and `slots` empty 64-byte parameter slots; null when out of memory. */
DD_DATA_TYPE_STRUCT* createDataType(int slots);
int appendDataType(DD_DATA_TYPE_STRUCT** head, DD_DATA_TYPE_STRUCT* source);
/* Unlinks and destroys the source with its variables and parameter slots. withOptions non-zero:
 * the item lists of its parameter descriptions go too. */
int delDataType(DD_DATA_TYPE_STRUCT** head, DD_DATA_TYPE_STRUCT* source, int withOptions);

/* A zeroed variable with `slots` empty 64-byte parameter slots and nrPara = slots. */
VARIABLE_STRUCT* createVariable(int slots);
int appendVariable(VARIABLE_STRUCT** head, VARIABLE_STRUCT* variable);
int delVariable(VARIABLE_STRUCT** head, VARIABLE_STRUCT* variable);

/* 1 if the list holds a source of type number id. */
int checkDataType(DD_DATA_TYPE_STRUCT* list, int id);
/* Insert beside `before`/`after`, or beside the head when that is null. */
int KDataInsertBefore(DD_DATA_TYPE_STRUCT* source, DD_DATA_TYPE_STRUCT* before, DD_DATA_TYPE_STRUCT** head);
int KDataInsertAfter(DD_DATA_TYPE_STRUCT* source, DD_DATA_TYPE_STRUCT* after, DD_DATA_TYPE_STRUCT** head);
int variableInsertBefore(VARIABLE_STRUCT* variable, VARIABLE_STRUCT* before, VARIABLE_STRUCT** head);
int variableInsertAfter(VARIABLE_STRUCT* variable, VARIABLE_STRUCT* after, VARIABLE_STRUCT** head);

/* The built-in sources, then the plug-ins of ".", $KOREL_HOME/bin and $KOREL_HOME, each
 * described by its Info; the first holder of a type number stays. */
int kriLoadStaticDataSources(DD_DATA_TYPE_STRUCT** knownTypes);
int kriLoadDataSources(DD_DATA_TYPE_STRUCT** knownTypes);
int kriAppendDDsource(DD_DATA_TYPE_STRUCT** knownTypes, const char* path, const char* baseName);
/* Loads (0) or unloads one plug-in; nothing for a built-in source. -1 on failure. */
int openDDsource(const char* path, const char* baseName, DD_DATA_TYPE_STRUCT* source);
int closeDDsource(DD_DATA_TYPE_STRUCT* source);
/* Gives the view's sources the descriptions and entry points of the known ones. */
int updateDataTypes(DD_DATA_TYPE_STRUCT* knownTypes, DD_DATA_TYPE_STRUCT* dataTypes);
int openDataSources(DD_DATA_TYPE_STRUCT* list);
int callStartView(DD_DATA_TYPE_STRUCT* list);
int closeDataSources(DD_DATA_TYPE_STRUCT* list);

/* Services a source reaches through its record. */
int krdInit(DD_DATA_TYPE_STRUCT* source, const char* name, int id, int mode);
int krdOption(DD_DATA_TYPE_STRUCT* source, int scope, int kind, unsigned flags, const char* title, ...);
int krdAddVariable(DD_DATA_TYPE_STRUCT* source, const char* name, int type, ...);
int krdDeleteAllVariables(DD_DATA_TYPE_STRUCT* source);
char** krdGetAllVariables(DD_DATA_TYPE_STRUCT* source);
VARIABLE_STRUCT** krdGetAllVariablesS(DD_DATA_TYPE_STRUCT* source);

/* Binding, at each start: every action gets its variable's value buffer, a held copy of its
 * own and the mapping through (a0, b0), (a1, b1). Variables that mouse actions write are
 * marked read-write (also at load). getAB: the line through (x0, y0), (x1, y1) as
 * y = a + b x; a = 0, b = 1 when x0 equals x1. */
int assignVariables(ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* sources);
int assignVariablesAction(ELEMENT_STRUCT* list, DD_DATA_TYPE_STRUCT* sources);
int assignVariablesReadWrite(ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* sources);
void getAB(float* a, float* b, float x0, float y0, float x1, float y1);

/* Animation, once per frame and element of a running view, inside the element's translation:
 * each action's value becomes a matrix operation or a change of attr. halt non-zero keeps
 * the values held when the halt began. */
int doAction(ELEMENT_STRUCT* element, int halt);
/* which: 0 the held copy, 1 the value buffer, 2 the second variable's; dt in filter time units. */
double getActionFloatData(ACTION_STRUCT* action, int which, float dt);
/* Writes v to the action's variable by its type, clamped if the action limits; marks it written. */
void putFloatData(ACTION_STRUCT* action, double v);
/* glTranslatef to the point cg (1..8 around the box, others: the centre) of the element, or back. */
int objMove(ELEMENT_STRUCT* element, int cg, int back);
/* Visibility, flagged, for the element and everything below it. */
void setVisible(ELEMENT_STRUCT* element, int flag);

/* The value pipeline: fresh zeroed value buffers at each start (256 bytes for text, else 8),
 * defaults written through Set, and one data cycle over all sources. */
int makeValueBuffers(DD_DATA_TYPE_STRUCT* sources);
int writeDefault(DD_DATA_TYPE_STRUCT* sources);
int fillDP(DD_DATA_TYPE_STRUCT* sources);

/* ---------------------------------------------------------------- flat interface: windows and drawing */

/* A window record (zoom 1); give it back with krWindowFree. */
WINDOW_STRUCT* krWindowCreate(void);
int krWindowFree(WINDOW_STRUCT* window);
/* Sets up the current GL context for a surface of width x height pixels. */
int krWindowInit(WINDOW_STRUCT* window, int width, int height);
/* Clears the colour buffer with the view's page colour. */
int krWindowClear(WINDOW_STRUCT* window, VIEW_STRUCT* view);
/* Blend function, orthographic projection 0..width, 0..height, viewport. Always 0. */
int krdSetViewport(int width, int height);
/* Draws the view as the whole window: its page's lower left corner at (x, y) pixels, scaled by zoom (1 = 1 px per unit). */
int krViewDraw(WINDOW_STRUCT* window, VIEW_STRUCT* view, float x, float y, float zoom);
/* Draws into the host's matrices at the view's last posX, posY, zoom. */
int krViewDrawPlane_Direct(VIEW_STRUCT* view);
/* Mode 0: cached texture, 1: render again, 2: same as krViewDrawPlane_Direct. */
int krViewDrawPlane(VIEW_STRUCT* view, int mode);
/* Draws into the current matrices, no transform and no GL state saving of its own. */
int krViewDrawWindow(VIEW_STRUCT* view);

/* The walk of one frame over a list; the entries call it with parentAttr null, clip 1, depth 0. */
int drawUserElements(ELEMENT_STRUCT* list, ELEMENT_ATTR* parentAttr, int run, int halt, int clip,
                     DRAW_SETTINGS* settings, int depth);
/* Recomputes the clip data of every group of a list for a page at posX, posY (pixels). */
int kriFindScissor(ELEMENT_STRUCT* list, float posX, float posY, float refX, float refY, float zoom);
void kriDraw2screenpix(float* px, float* py, float posX, float posY, float refX, float refY, float zoom,
                       float x, float y);

/* ---------------------------------------------------------------- element lists */

ELEMENT_STRUCT* elementCreate(uint32_t type);
int elementAppend(ELEMENT_STRUCT* element, ELEMENT_STRUCT** head);
int elementDelete(ELEMENT_STRUCT* element, ELEMENT_STRUCT** head);
int elementDeleteAll(ELEMENT_STRUCT** head);
int elementNewName(ELEMENT_STRUCT* element, ELEMENT_STRUCT* list);
int elementCheckName(ELEMENT_STRUCT* list, const char* name);
/* Runs setPickSticky over the whole tree, children before their group. Always 0. */
int setElementAttr(ELEMENT_STRUCT* list);

COORD_STRUCT* createCoord(void);
int appendCoord(COORD_STRUCT** head, COORD_STRUCT* coord);
int delCoord(COORD_STRUCT** head, COORD_STRUCT* coord);

TH_STRUCT* createTh(void);
int appendTh(TH_STRUCT** head, TH_STRUCT* th);
int thInsertBefore(TH_STRUCT* th, TH_STRUCT* position, TH_STRUCT** head);
int thInsertAfter(TH_STRUCT* th, TH_STRUCT* position, TH_STRUCT** head);
int delTh(TH_STRUCT** head, TH_STRUCT* th);

/* A new action with its defaults, in no list; null when out of memory. */
ACTION_STRUCT* createAction(void);
int appendAction(ACTION_STRUCT** head, ACTION_STRUCT* action);
/* Beside `position`, or beside the head for a null position; into an empty list as its only entry. */
int actionInsertBefore(ACTION_STRUCT* action, ACTION_STRUCT* position, ACTION_STRUCT** head);
int actionInsertAfter(ACTION_STRUCT* action, ACTION_STRUCT* position, ACTION_STRUCT** head);
/* Takes the action out of the list; its own links stay as they were. */
int actionCut(ACTION_STRUCT* action, ACTION_STRUCT** head);
/* One place towards the head or the tail; nothing at the end of the list. */
int actionUp(ACTION_STRUCT* action, ACTION_STRUCT** head);
int actionDown(ACTION_STRUCT* action, ACTION_STRUCT** head);
/* Unlinks and destroys the action with its thresholds and run-time buffers. */
int delAction(ACTION_STRUCT** head, ACTION_STRUCT* action);
/* A new action with the stored content of `source` and copies of its thresholds; run-time state fresh. */
ACTION_STRUCT* actionCopy(const ACTION_STRUCT* source);

/* ---------------------------------------------------------------- element kinds */

/* Each creator copies `source`, or takes the defaults for null. */
RECT_STRUCT* createRect(const RECT_STRUCT* source);
POLY_STRUCT* createPoly(const POLY_STRUCT* source);
POLY_STRUCT* createCPoly(const POLY_STRUCT* source);
CIRCLE_STRUCT* createCircle(const CIRCLE_STRUCT* source);
CIRCLE_STRUCT* createArc(const CIRCLE_STRUCT* source);
LINE_STRUCT* createLine(const LINE_STRUCT* source);
BUTTON_STRUCT* createButton(const BUTTON_STRUCT* source);
SLIDER_STRUCT* createSlider(const SLIDER_STRUCT* source);
SCISSOR_STRUCT* createScissor(const SCISSOR_STRUCT* source);
GRAPH_STRUCT* createGraph(const GRAPH_STRUCT* source);
IMAGE_STRUCT* createImage(void);
/* Only textSize is used: it sets fontSize and textSize. */
TEXT_STRUCT* createText(const char* family, int size, int textSize);

int rectSetAttr(ELEMENT_STRUCT* element);
int rectSetPickSticky(ELEMENT_STRUCT* element);
int drawRect(RECT_STRUCT* record, ELEMENT_ATTR* attr, int selected);

int groupSetAttr(ELEMENT_STRUCT* element);
int groupSetPickSticky(ELEMENT_STRUCT* element);
/* Hands the edit to every child with the group's own handle list, then re-derives the group. Always 0. */
int editGroup(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
int drawGroup(ELEMENT_STRUCT* element, ELEMENT_ATTR* attr);

int scissorSetPickSticky(ELEMENT_STRUCT* element);
int drawScissor(SCISSOR_STRUCT* record, ELEMENT_ATTR* attr, int selected);

/* dx, dy are added to both end points; the walk passes 0 and places the line itself. */
int drawLine(LINE_STRUCT* record, ELEMENT_ATTR* attr, int selected, float dx, float dy);
/* Circle and arc: the section from start to attr->arcEnd about the centre. */
int drawCircle(CIRCLE_STRUCT* record, ELEMENT_ATTR* attr, int selected);
/* Non-zero when (x, y) lies inside the whole ellipse, whatever section is drawn. */
int pickCircle(ELEMENT_STRUCT* element, float x, float y);

/* Geometry pass of each kind: bounds, centre, size, local fields and pick shape from the
 * record, then the run-time look seeded from it (...SetAttr). Circle and arc share one. */
int graphSetAttr(ELEMENT_STRUCT* element);
int graphSetPickSticky(ELEMENT_STRUCT* element);
int polySetAttr(ELEMENT_STRUCT* element);
int polySetPickSticky(ELEMENT_STRUCT* element);
int circleSetAttr(ELEMENT_STRUCT* element);
int circleSetPickSticky(ELEMENT_STRUCT* element);
int textSetAttr(ELEMENT_STRUCT* element);
int textSetPickSticky(ELEMENT_STRUCT* element);
int lineSetAttr(ELEMENT_STRUCT* element);
int lineSetPickSticky(ELEMENT_STRUCT* element);
int imageSetAttr(ELEMENT_STRUCT* element);
int imageSetPickSticky(ELEMENT_STRUCT* element);
int buttonSetAttr(ELEMENT_STRUCT* element);
int buttonSetPickSticky(ELEMENT_STRUCT* element);
int sliderSetAttr(ELEMENT_STRUCT* element);
int sliderSetPickSticky(ELEMENT_STRUCT* element);

/* Polygons: the fill as a display list tessellated from the points (useFill non-zero: from
 * the level-cut points when there are some); the level cuts, each from fillLevel. */
int polyMakeList(POLY_STRUCT* record, int useFill);
int polyCreateFillCoordLeft(ELEMENT_STRUCT* element);
int polyCreateFillCoordRight(ELEMENT_STRUCT* element);
int polyCreateFillCoordUp(ELEMENT_STRUCT* element);
int polyCreateFillCoordDown(ELEMENT_STRUCT* element);
/* Makes the list first if there is none yet, so a view loaded without a context fills at its first draw. */
int drawPoly(POLY_STRUCT* record, ELEMENT_ATTR* attr, int selected);
/* Even-odd rule over the closed ring of points in view units; an open polyline counts as closed. */
int pickPoly(ELEMENT_STRUCT* element, float x, float y);
/* fillLevel -1 on every polyline (kind 2) of the tree, groups included. Always 0. */
int resetAllPoly(ELEMENT_STRUCT* list);
/* Tessellator callbacks for callers with a GLU tessellator of their own: begin, end and vertex
 * draw, combine hands back a new vertex of three doubles that the caller frees with free(). */
void errorCB(unsigned int code);
void beginCB(unsigned int mode);
void endCB(void);
void vertexCB(void* vertex);
void combineCB(double coords[3], void* data[4], float weights[4], void** out);

/* Segment crossings. lineCross (in float): 1 when the segments (x1, y1)-(x2, y2) and
 * (x3, y3)-(x4, y4) meet, ends included; parallel segments never do. KLineCross2 (in double)
 * also writes where the infinite lines meet, even where the segments don't reach; parallel
 * lines write nothing. */
int lineCross(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4);
int KLineCross2(double* ox, double* oy, double x1, double y1, double x2, double y2, double x3, double y3, double x4,
                double y4);

/* Process-wide picture store of image elements. txCreate copies width x height RGBA pixels
 * and returns a new id (ids are never reused), or -1 for no pixels, a size not above 0 or
 * exhausted memory. txDelete frees the picture: 0, or -1 for an unknown id. txData gives the
 * stored pixels, or null. */
int txCreate(int width, int height, const void* pixels);
int txDelete(int id);
const uint8_t* txData(int id);

/* Rebuild the printf formats of the graph's labels for a range lo..hi. */
int KGraphSetXLabel(GRAPH_STRUCT* record, float lo, float hi);
int KGraphSetYLabel(GRAPH_STRUCT* record, float lo, float hi);

/* ---------------------------------------------------------------- binary view files */

/* Reads a whole binary view file into the lists and the view's page fields. 0 or -1. */
int loadFile(const char* path, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes, VIEW_STRUCT* view);
/* Reads only the header and the page fields. 0, -1 wrong format, or -errno. */
int loadConfigFile(const char* path, VIEW_STRUCT* view);
/* Expands stored style numbers into stipples and patterns, then re-derives geometry. */
int definitionLoad(ELEMENT_STRUCT* element);

/* ---------------------------------------------------------------- GL state layer */

void tkBegin(unsigned int mode);
void tkEnd(void);
void tkPushMatrix(void);
void tkPopMatrix(void);
void tkFinish(void);
void tkLineStipple(int factor, uint16_t pattern);
/* Width in pixels, multiplied by the line scale. */
void tkLineWidth(int width);
void tkAliasBlend(int antialias, float alpha);
void tkClearColor(float r, float g, float b);
int tkSetRgbMode(int mode);
int kriUpdateAttr(void);
void kvSetColorFactor(float r, float g, float b, float a);
void kvSetLineScale(float scale);
void kvColor4f(float r, float g, float b, float a);
/* Polygon stipple on with `pattern` (128 bytes) for a non-zero number, off for 0. */
void setStipple(int number, const uint8_t* pattern);
/* The 128-byte bitmap of fill pattern 0..59; other numbers give pattern 0. */
const uint8_t* getPattern(int number);
/* Stipple factor and pattern of line style 0..9; others are solid. Result 0. */
int getLineStipple(int style, int32_t* factor, uint16_t* pattern);
void setRgbColorIndex(uint32_t* table);
uint32_t getFastRGBcolor(float r, float g, float b);

/* ---------------------------------------------------------------- logging */

/* level 1 error, 2 warning, 3 progress; printed and kept if level <= the set level (1). */
int logMsg(int level, const char* format, ...) __attribute__((format(printf, 2, 3)));
int logMsgData(const char* format, ...) __attribute__((format(printf, 1, 2)));
int setLogLevel(int level);
/* Copies at most n-1 characters of the memory log into destination and empties the log. */
int getLogMsg(char* destination, int n);
int getDots(double value);
int getPre(double a, double b);

/* ---------------------------------------------------------------- platform */

double apiGetTime(void);
void* apiOpenDir(const char* path);
/* buffer: 256 bytes. 1 for an entry, 0 at the end. */
int apiReadDir(void* handle, char* buffer);
int apiCloseDir(void* handle);
void* apiDllOpen(const char* path);
void* apiDllGetSymbol(void* handle, const char* symbol);
int apiDllClose(void* handle);
/* Non-zero while an OpenGL context is current on this thread. */
void* getGlContext(void);
int KGet_releasenr(void);
const char* KGet_release(void);
const char* KGet_releaseshort(void);
const char* get_ctime(void);

/* ---------------------------------------------------------------- hash tables */

typedef struct mpiHashSlot {
    uint32_t key;
    char* name;
    void* value;
} mpiHashSlot;

struct mpiHash {
    uint32_t size;
    uint32_t count;
    uint32_t autoDelete;
    mpiHashSlot* slots; /* size + 1 slots */
};

/* A table for about n entries, or null. */
mpiHash* mpiHashCreate(uint32_t n);
int mpiHashSetAutoDelete(mpiHash* table, int on);
int mpiHashInsert(mpiHash* table, uint32_t key, void* value);
void* mpiHashSearch(mpiHash* table, uint32_t key);
int mpiHashDelete(mpiHash* table, uint32_t key);
int mpiHashInsertAscii(mpiHash* table, const char* name, void* value);
void* mpiHashSearchAscii(mpiHash* table, const char* name);
int mpiHashDeleteAscii(mpiHash* table, const char* name);
int mpiHashClear(mpiHash* table);
int mpiHashRemove(mpiHash* table);
uint32_t mpiHashCalcKey(double a, double b);
uint32_t mpiHashCalcAsciiKey(void);

#ifdef __cplusplus
}
#endif

#endif /* KOREL2D_H */
