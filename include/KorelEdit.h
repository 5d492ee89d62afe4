/**
 * @file KorelEdit.h
 * libKorel2D for an editing tool: the records of each element kind, the lists a view is made of,
 * the families of functions of each kind, the data-source lists and the view-file reader and writer.
 *
 * Sections:
 *  1. Records of the element kinds
 *  2. Element, point, threshold and action lists
 *  3. Element kinds: create, geometry pass, draw, pick, edit
 *  4. Polygons
 *  5. Geometry helpers, picture store, graph labels
 *  6. Data-source and variable lists
 *  7. Binary view files
 *  8. Handles, edits and objects
 *
 * Includes Korel2D.h. Units as there: view units, y upwards; colours 0..1; angles in radians.
 * A list operation takes the address of the list's head and keeps the prev/next links and the
 * head consistent; it returns 0, and does nothing for null arguments. A record made by a create
 * function is the caller's until it goes into a list or an element, whose delete frees it.
 */
#ifndef KOREL_EDIT_H
#define KOREL_EDIT_H

#include "Korel2D.h"

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ================================================================ 1. records of the element kinds */

/** Font handle of the font layer; 0 means no font. */
typedef uint64_t KR_FONT;

/** @typedef COORD_STRUCT
 * One point of a polygon. */
typedef struct COORD_STRUCT {
    int32_t id;
    float x, y;
    float distance;
    double vertex[3];
    struct COORD_STRUCT* next;
    struct COORD_STRUCT* prev;
} COORD_STRUCT;

/** @typedef RECT_STRUCT
 * Record of a rectangle (KR_RECT): corners, stroke and fill. Corner order of the corner-based
 * kinds: lower left, upper left, upper right, lower right. */
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

/** @typedef POLY_STRUCT
 * Record of a polyline (KR_POLYLINE) or polygon (KR_CPOLY): its points, stroke, fill and
 * level cut. */
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

/** @typedef CIRCLE_STRUCT
 * Record of a circle or arc (KR_CIRCLE, KR_ARC): centre, radii, section start and end in
 * radians, stroke and fill. */
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

/** @typedef LINE_STRUCT
 * Record of a line (KR_LINE): end points, stroke. */
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

/** @typedef TEXT_STRUCT
 * Record of a text (KR_TEXT): position, text of up to 255 characters, alignment, font, colours. */
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

/** @typedef IMAGE_STRUCT
 * Record of an image (KR_IMAGE): corners, pixel size and its picture in the store (txCreate). */
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

/** @typedef BUTTON_STRUCT
 * Record of a button (KR_BUTTON): corners, face and edge colours, state (pressed when non-zero). */
typedef struct BUTTON_STRUCT {
    float cornerX[4], cornerY[4];
    float localX[4], localY[4];
    float color0[4], color1[4], color2[4]; /* face, light edge, dark edge */
    float strokeWidth;
    int32_t state;
} BUTTON_STRUCT;

/** @typedef SLIDER_STRUCT
 * Record of a slider (KR_SLIDER): box, colours, bevel and knob size. */
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

/** @typedef SCISSOR_STRUCT
 * Record of a clip area (KR_SCISSOR): its corners. */
typedef struct SCISSOR_STRUCT {
    float cornerX[4], cornerY[4];
    float localX[4], localY[4];
} SCISSOR_STRUCT;

/** @typedef GRAPH_STRUCT
 * Record of a graph (KR_GRAPH): ranges, sampling, autoscale, grid, ticks, labels and font. */
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
/* ================================================================ 2. lists */

/** A new element of kind `type` (KR_TEXT_OLD becomes KR_TEXT) with its kind's record and
 *  defaults and a fresh name; in no list. Null when out of memory. */
KOREL2D_API ELEMENT_STRUCT* elementCreate(uint32_t type);
/** Appends the element at the tail of the list. */
KOREL2D_API int elementAppend(ELEMENT_STRUCT* element, ELEMENT_STRUCT** head);
/** Unlinks the element and destroys it with its children, actions and kind record. */
KOREL2D_API int elementDelete(ELEMENT_STRUCT* element, ELEMENT_STRUCT** head);
/** Deletes every element of the list; the head is null afterwards. */
KOREL2D_API int elementDeleteAll(ELEMENT_STRUCT** head);
/** Gives the element a name "<kind>-<number>" (and id "<name>-ID") that no element of the list,
 *  groups included, has; list may be null. */
KOREL2D_API int elementNewName(ELEMENT_STRUCT* element, ELEMENT_STRUCT* list);
/** 1 if an element of the list or of its groups has this name, else 0. */
KOREL2D_API int elementCheckName(ELEMENT_STRUCT* list, const char* name);
/** Runs each element's setPickSticky over the whole tree, children before their group. @return 0. */
KOREL2D_API int setElementAttr(ELEMENT_STRUCT* list);

/** A zeroed point in no list; null when out of memory. */
KOREL2D_API COORD_STRUCT* createCoord(void);
/** Appends the point at the tail. */
KOREL2D_API int appendCoord(COORD_STRUCT** head, COORD_STRUCT* coord);
/** Unlinks and frees the point. */
KOREL2D_API int delCoord(COORD_STRUCT** head, COORD_STRUCT* coord);

/** A threshold with its defaults in no list; null when out of memory. */
KOREL2D_API TH_STRUCT* createTh(void);
/** Appends the threshold at the tail. */
KOREL2D_API int appendTh(TH_STRUCT** head, TH_STRUCT* th);
/** Inserts before `position`, or before the head for a null position. */
KOREL2D_API int thInsertBefore(TH_STRUCT* th, TH_STRUCT* position, TH_STRUCT** head);
/** Inserts after `position`, or after the head for a null position. */
KOREL2D_API int thInsertAfter(TH_STRUCT* th, TH_STRUCT* position, TH_STRUCT** head);
/** Unlinks and frees the threshold. */
KOREL2D_API int delTh(TH_STRUCT** head, TH_STRUCT* th);

/** A new action with its defaults, in no list; null when out of memory. */
KOREL2D_API ACTION_STRUCT* createAction(void);
/** Appends the action at the tail. */
KOREL2D_API int appendAction(ACTION_STRUCT** head, ACTION_STRUCT* action);
/** Inserts before `position`, or before the head for a null position; into an empty list as its
 *  only entry. */
KOREL2D_API int actionInsertBefore(ACTION_STRUCT* action, ACTION_STRUCT* position, ACTION_STRUCT** head);
/** Inserts after `position`, or after the head for a null position; into an empty list as its
 *  only entry. */
KOREL2D_API int actionInsertAfter(ACTION_STRUCT* action, ACTION_STRUCT* position, ACTION_STRUCT** head);
/** Takes the action out of the list without freeing it; its own links stay as they were. */
KOREL2D_API int actionCut(ACTION_STRUCT* action, ACTION_STRUCT** head);
/** Moves the action one place towards the head; nothing at the head. */
KOREL2D_API int actionUp(ACTION_STRUCT* action, ACTION_STRUCT** head);
/** Moves the action one place towards the tail; nothing at the tail. */
KOREL2D_API int actionDown(ACTION_STRUCT* action, ACTION_STRUCT** head);
/** Unlinks and destroys the action with its thresholds and run-time buffers. */
KOREL2D_API int delAction(ACTION_STRUCT** head, ACTION_STRUCT* action);
/** A new action (in no list) with the stored content of `source` and copies of its thresholds;
 *  run-time state fresh. Null for a null source or when out of memory. */
KOREL2D_API ACTION_STRUCT* actionCopy(const ACTION_STRUCT* source);

/* ================================================================ 3. element kinds */

/** Codes of an element's edit (ELEMENT_STRUCT.edit) that take effect at once, whatever the phase.
 *  A kind without the field a code sets ignores the code; each edit's comment names its fields. */
enum {
    KR_EDIT_STROKE_WIDTH = 20, /* width: the line width; a shape's stroke is on from width 1 */
    KR_EDIT_STROKE_STYLE = 21, /* number: line style 0 to 9, with the stipple it stands for */
    KR_EDIT_FILL = 22,         /* color: the fill colour; number: a shape's fill on or off */
    KR_EDIT_STROKE = 23,       /* color: the line colour; number: a shape's stroke on or off */
    KR_EDIT_ANTIALIAS = 24,    /* number: smoothing on or off */
    KR_EDIT_FILL_ALPHA = 25,   /* color[0]: the fill colour's alpha */
    KR_EDIT_STROKE_ALPHA = 26, /* color[0]: the line colour's alpha */
    KR_EDIT_FILL_STYLE = 47,   /* number: fill pattern, with the bitmap it stands for */
    KR_EDIT_FONT_SIZE = 28,    /* number: wanted font size, replaced by the nearest the family has */
    KR_EDIT_TEXT = 120,        /* string: the new text */
    KR_EDIT_ALIGN = 121,       /* number: anchor, a KR_POS_... word */
    KR_EDIT_FONT_FAMILY = 123, /* string: the new family; style and size follow what it has */
    KR_EDIT_FONT_STYLE = 124   /* number: style mask, 1 plain, 2 bold, 4 italic, 8 bold italic */
};

/** @typedef KR_EDIT_VALUE
 * What `value` of an element's edit points to; each code reads its own fields. */
typedef struct KR_EDIT_VALUE {
    float x, y;       /* the pointer, or the operand of a move, scale or turn */
    float width;      /* a line width */
    float color[3];   /* a colour */
    int32_t number;   /* a size, anchor, style or other whole operand */
    char string[256]; /* a text or a font family */
} KR_EDIT_VALUE;

/** A new rectangle record, a copy of `source` or the defaults for null; the caller's (free()) until
 *  it becomes an element's data. Null when out of memory. The other create functions alike. */
KOREL2D_API RECT_STRUCT* createRect(const RECT_STRUCT* source);
/** A new open polyline record; copies the fields of `source`, not its points. */
KOREL2D_API POLY_STRUCT* createPoly(const POLY_STRUCT* source);
/** A new closed polygon record; copies the fields of `source`, not its points. */
KOREL2D_API POLY_STRUCT* createCPoly(const POLY_STRUCT* source);
/** A new circle record (a whole turn). */
KOREL2D_API CIRCLE_STRUCT* createCircle(const CIRCLE_STRUCT* source);
/** A new arc record. */
KOREL2D_API CIRCLE_STRUCT* createArc(const CIRCLE_STRUCT* source);
/** A new line record. */
KOREL2D_API LINE_STRUCT* createLine(const LINE_STRUCT* source);
/** A new button record. */
KOREL2D_API BUTTON_STRUCT* createButton(const BUTTON_STRUCT* source);
/** A new slider record. */
KOREL2D_API SLIDER_STRUCT* createSlider(const SLIDER_STRUCT* source);
/** A new clip-area record. */
KOREL2D_API SCISSOR_STRUCT* createScissor(const SCISSOR_STRUCT* source);
/** A new graph record. */
KOREL2D_API GRAPH_STRUCT* createGraph(const GRAPH_STRUCT* source);
/** A new image record with no picture. */
KOREL2D_API IMAGE_STRUCT* createImage(void);
/** A new text record; only textSize is used: it sets fontSize and textSize (pixels). */
KOREL2D_API TEXT_STRUCT* createText(const char* family, int size, int textSize);

/** Geometry pass of a rectangle: bounds, centre, size, local corners and pick shape from the
 *  record. The other ...SetPickSticky functions alike for their kind. @return 0. */
KOREL2D_API int rectSetPickSticky(ELEMENT_STRUCT* element);
/** Seeds the element's run-time look (attr) from its rectangle record. The other ...SetAttr
 *  functions alike for their kind. @return 0. */
KOREL2D_API int rectSetAttr(ELEMENT_STRUCT* element);
/** Draws a rectangle with the look in attr; selected non-zero adds the selection outline.
 *  Needs a current GL context. @return 0. */
KOREL2D_API int drawRect(RECT_STRUCT* record, ELEMENT_ATTR* attr, int selected);

/** Geometry pass of a group: its box from its children's. */
KOREL2D_API int groupSetPickSticky(ELEMENT_STRUCT* element);
/** Look of a group. */
KOREL2D_API int groupSetAttr(ELEMENT_STRUCT* element);
/** Hands the edit to every child with the group's own handle list, then re-derives the group. @return 0. */
KOREL2D_API int editGroup(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** Draws a group's own part, its selection outline in an editing tool; the walk draws the
 *  children. @return 0. */
KOREL2D_API int drawGroup(ELEMENT_STRUCT* element, ELEMENT_ATTR* attr);

/** Geometry pass of a clip area. */
KOREL2D_API int scissorSetPickSticky(ELEMENT_STRUCT* element);
/** Draws a clip area's outline, for an editing tool. @return 0. */
KOREL2D_API int drawScissor(SCISSOR_STRUCT* record, ELEMENT_ATTR* attr, int selected);

/** Draws a line; dx, dy (view units) are added to both end points (the walk passes 0). @return 0. */
KOREL2D_API int drawLine(LINE_STRUCT* record, ELEMENT_ATTR* attr, int selected, float dx, float dy);
/** Draws a circle or an arc: the section from start to attr->arcEnd (radians) about the centre. @return 0. */
KOREL2D_API int drawCircle(CIRCLE_STRUCT* record, ELEMENT_ATTR* attr, int selected);
/** Non-zero when (x, y) (view units) lies inside the whole ellipse, whatever section is drawn. */
KOREL2D_API int pickCircle(ELEMENT_STRUCT* element, float x, float y);

/** Geometry pass of a graph. */
KOREL2D_API int graphSetPickSticky(ELEMENT_STRUCT* element);
/** Look of a graph. */
KOREL2D_API int graphSetAttr(ELEMENT_STRUCT* element);
/** Geometry pass of a polyline or polygon. */
KOREL2D_API int polySetPickSticky(ELEMENT_STRUCT* element);
/** Look of a polyline or polygon. */
KOREL2D_API int polySetAttr(ELEMENT_STRUCT* element);
/** Geometry pass of a circle or arc. */
KOREL2D_API int circleSetPickSticky(ELEMENT_STRUCT* element);
/** Look of a circle or arc. */
KOREL2D_API int circleSetAttr(ELEMENT_STRUCT* element);
/** Geometry pass of a text. */
KOREL2D_API int textSetPickSticky(ELEMENT_STRUCT* element);
/** Look of a text. */
KOREL2D_API int textSetAttr(ELEMENT_STRUCT* element);
/** Corners of a text's unturned box about its position, from its stored text measured in its
 *  font: an outline font at textSize, its width scaled by textSize / fontSize (truncated), a
 *  bitmap font as the font measures it. @return 0. */
KOREL2D_API int calcVecTextNew(TEXT_STRUCT* record);
/** Replaces a text's stored string and re-derives its box. A string of more than 254 characters
 *  is cut in the caller's buffer, whose index 255 must exist. @return 0, -1 when the element is
 *  not a text (nothing changes but the cut) or text is NULL. */
KOREL2D_API int textSetNewText(ELEMENT_STRUCT* element, char* text);
/** Edit of a text; value points to a KR_EDIT_VALUE. KR_EDIT_FONT_SIZE takes the family's size
 *  nearest value->number, at least 1 (written back there), scales the matrix by new / old fontSize and makes
 *  the font anew; KR_EDIT_FONT_FAMILY takes value->string (cut to 63 characters) with the first
 *  style the family has when it lacks the current one and its size nearest fontSize, and a bitmap
 *  family resets the matrix and sets textSize = fontSize; KR_EDIT_FONT_STYLE sets the style;
 *  KR_EDIT_TEXT is textSetNewText; KR_EDIT_ALIGN sets align alone. Font changes re-derive the box
 *  and raise the flag krTextUpdate reports. Codes 1 to 16 move, size and turn it as the other
 *  kinds' edits do; at their end an outline font is made anew at the size it now shows. The line
 *  codes set strokeWidth, strokeStyle, strokeColor and its alpha, antialias; KR_EDIT_FILL_STYLE
 *  fillStyle with its pattern. Other codes only re-seed the look. @return 0, -1 for a null
 *  element or value or an element that is not a text. */
KOREL2D_API int editTextx(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** Brings a fixed text of an old file to the present record: font "Courier [fixed]", style and
 *  size from fontCode 0 to 39 (40 and more keep both), textSize = fontSize, the position moved
 *  from the align anchor to the centre by the unscaled metric, identity matrix; the font is made
 *  anew. @return 0. */
KOREL2D_API int convertTextNewFormat(TEXT_STRUCT* record, int fontCode);
/** Brings a vector text of an old file to the present record: "Arial" at fontSize and textSize
 *  30, style kept, font made anew; fontCode is not used. @return 0. */
KOREL2D_API int convertTextNewFormatVec(TEXT_STRUCT* record, int fontCode);
/** Position and matrix of a text from the four corner points of an old file, held in cornerX and
 *  cornerY: corner 0 to 3 runs along the baseline, corner 0 to 1 up the height. Then its corners as
 *  calcVecTextNew. @return 0. */
KOREL2D_API int calcVecText(TEXT_STRUCT* record);
/** Draws the string attr->text in the record's font and the colour attr->strokeColor, aligned in
 *  the stored text's box by align; an outline font follows the matrix and is scaled to textSize.
 *  A record without a font gets one here. selected non-zero adds the selection outline in an
 *  editing tool. Needs a current GL context; clears the flag krTextUpdate reports. @return 0. */
KOREL2D_API int drawText(TEXT_STRUCT* record, ELEMENT_ATTR* attr, int selected);
/** Geometry pass of a line. */
KOREL2D_API int lineSetPickSticky(ELEMENT_STRUCT* element);
/** Look of a line. */
KOREL2D_API int lineSetAttr(ELEMENT_STRUCT* element);
/** Geometry pass of an image. */
KOREL2D_API int imageSetPickSticky(ELEMENT_STRUCT* element);
/** Look of an image. */
KOREL2D_API int imageSetAttr(ELEMENT_STRUCT* element);
/** Draws an image's picture on its four local corners, tinted and faded by attr->fillColor;
 *  selected non-zero adds the selection outline. A picture without a GL texture is uploaded
 *  first; one that can't be (no context, too large) draws nothing. @return 0. */
KOREL2D_API int drawImage(IMAGE_STRUCT* record, ELEMENT_ATTR* attr, int selected);
/** Geometry pass of a button. */
KOREL2D_API int buttonSetPickSticky(ELEMENT_STRUCT* element);
/** Look of a button. */
KOREL2D_API int buttonSetAttr(ELEMENT_STRUCT* element);
/** Draws a button on its four local corners: a face and four bevels in shades of
 *  attr->fillColor, lit from the upper left, the other way round while a running view holds it
 *  pressed (attr->lineStyle non-zero); a mirrored button still bevels the right way. Writes the
 *  pressed state it shows into record->state. selected non-zero adds the selection outline in a
 *  stopped view. Needs a current GL context. @return 0. */
KOREL2D_API int drawButton(BUTTON_STRUCT* record, ELEMENT_ATTR* attr, int selected);
/** Geometry pass of a slider. */
KOREL2D_API int sliderSetPickSticky(ELEMENT_STRUCT* element);
/** Look of a slider. */
KOREL2D_API int sliderSetAttr(ELEMENT_STRUCT* element);
/** Draws a slider about its centre: the groove sunken, the knob raised across the groove's
 *  inner width on the centre; both faces in attr->fillColor. selected non-zero adds the selection
 *  outline in an editing tool. Needs a current GL context. @return 0. */
KOREL2D_API int drawSlider(SLIDER_STRUCT* record, ELEMENT_ATTR* attr, int selected);

/* ================================================================ 4. polygons */

/** Tessellates the fill into a GL display list (needs a current context); useFill non-zero takes
 *  the level-cut points when there are some. @return 0, -1 without a context. */
KOREL2D_API int polyMakeList(POLY_STRUCT* record, int useFill);
/** Level cut for a fill that grows leftwards: fillCoords become the part of the polygon from its
 *  right edge to fillLevel (0..1) of its width. @return 0. */
KOREL2D_API int polyCreateFillCoordLeft(ELEMENT_STRUCT* element);
/** Level cut for a fill that grows rightwards, from the left edge. @return 0. */
KOREL2D_API int polyCreateFillCoordRight(ELEMENT_STRUCT* element);
/** Level cut for a fill that grows upwards, from the bottom edge. @return 0. */
KOREL2D_API int polyCreateFillCoordUp(ELEMENT_STRUCT* element);
/** Level cut for a fill that grows downwards, from the top edge. @return 0. */
KOREL2D_API int polyCreateFillCoordDown(ELEMENT_STRUCT* element);
/** Draws a polyline or polygon; makes the display list first if there is none yet, so a view
 *  loaded without a context fills at its first draw. @return 0. */
KOREL2D_API int drawPoly(POLY_STRUCT* record, ELEMENT_ATTR* attr, int selected);
/** Even-odd rule over the closed ring of points (view units); an open polyline counts as closed.
 *  Non-zero on a hit. */
KOREL2D_API int pickPoly(ELEMENT_STRUCT* element, float x, float y);
/** Sets fillLevel to -1 (no cut) on every polyline of the tree, groups included. @return 0. */
KOREL2D_API int resetAllPoly(ELEMENT_STRUCT* list);

/* Rails: an action of type KR_ACTION_MOVE_ALONG_POLYLINE moves its element along a polyline
 * (KR_POLYLINE; a closed polygon never serves) named by the action's translatePoly. */

/** Binds each rail action of the list and of the groups below it to its polyline, searched by
 *  getPolyByName from the list the moved element stands in (never from the levels above); a
 *  missing one logs "Polygon <name> not found !" at level 2 and leaves movePoly null. Then
 *  measures the polylines (calcPolyLength). Run at each start. @return 0. */
KOREL2D_API int assignMovePoly(ELEMENT_STRUCT* list);
/** The first polyline named `name`, depth first in list order, groups searched through their
 *  children; a group's own name and closed polygons never match. Null if there is none. */
KOREL2D_API ELEMENT_STRUCT* getPolyByName(ELEMENT_STRUCT* list, const char* name);
/** Fills each point's distance (view units along the polyline from its first point) and the
 *  record's length on every polyline of the tree, groups included. @return 0. */
KOREL2D_API int calcPolyLength(ELEMENT_STRUCT* list);
/** The point (view units) at `fraction` of a measured polyline's length, fraction clamped to
 *  0..1. With fewer than two points x and y are not written. @return 0, or -1 for a null
 *  element or output, or an element that isn't a polyline. */
KOREL2D_API int getMovePolyCoord(ELEMENT_STRUCT* element, float* x, float* y, double fraction);

/* ================================================================ 5. geometry, pictures, graph labels */

/** 1 when the segments (x1, y1)-(x2, y2) and (x3, y3)-(x4, y4) meet, ends included; parallel
 *  segments never do. Else 0. */
KOREL2D_API int lineCross(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4);
/** As lineCross in double; also writes to ox, oy where the infinite lines meet, even where the
 *  segments don't reach; parallel lines write nothing. */
KOREL2D_API int KLineCross2(double* ox, double* oy, double x1, double y1, double x2, double y2, double x3,
                            double y3, double x4, double y4);

/** Copies width x height RGBA pixels into the process-wide picture store of image elements.
 *  @return a new id (ids are never reused), or -1 for no pixels, a size not above 0 or exhausted memory. */
KOREL2D_API int txCreate(int width, int height, const void* pixels);
/** A second id for the same stored picture; the pixels are freed when the last id is deleted.
 *  @return the new id, or -1 for a negative or unknown id. */
KOREL2D_API int txCopy(int id);
/** Removes one id of a stored picture; the last one frees the pixels and the GL texture.
 *  @return 0, or -1 for an unknown id. */
KOREL2D_API int txDelete(int id);
/** The stored pixels, owned by the store until txDelete; null for an unknown id. */
KOREL2D_API const uint8_t* txData(int id);
/** Draws the picture on the quad of corners (xs[k], ys[k]), k = 0..3 in view units; the first
 *  pixel row runs along corners 0 to 3. The current colour tints it and its alpha fades it.
 *  The GL texture is made, or made again for a context that doesn't know it, as needed;
 *  without a context, or for a picture larger than GL_MAX_TEXTURE_SIZE, nothing is drawn.
 *  @return 0, also when nothing is drawn; -1 for a negative or unknown id or null arrays. */
KOREL2D_API int txDraw(int id, const float* xs, const float* ys);
/** Stores record->width x record->height RGBA pixels from bytes (the unpacked bitmap of a
 *  text view file) and sets record->texture to the new id, or -1 on failure. @return 0 or -1. */
KOREL2D_API int loadTextureFromData(const uint8_t* bytes, IMAGE_STRUCT* record);

/** Rebuilds the printf format of the graph's x labels for a range lo..hi. @return 0. */
KOREL2D_API int KGraphSetXLabel(GRAPH_STRUCT* record, float lo, float hi);
/** Rebuilds the printf format of the graph's y labels for a range lo..hi. @return 0. */
KOREL2D_API int KGraphSetYLabel(GRAPH_STRUCT* record, float lo, float hi);
/** A round x spacing for lo..hi over `pixels`, about one step per 50 pixels: 1, 2, 5 or 10 times
 *  a power of ten, with sub-steps per step in sub and ref = space. A range too short for one step
 *  gives space -1 and ref 0, sub unchanged; a zero range gives space 0. @return 0. */
KOREL2D_API int KGraphGetAutoParaX(float* space, float* ref, int* sub, float lo, float hi, float pixels);
/** As KGraphGetAutoParaX for y: about one step per 20 pixels, and ref = 0. @return 0. */
KOREL2D_API int KGraphGetAutoParaY(float* space, float* ref, int* sub, float lo, float hi, float pixels);
/** Draws a graph's frame about the current origin, its centre: background, grid in attr's fill
 *  colour, ticks, labels and outline in attr's stroke colour. A time graph's xmax becomes
 *  samples / rate + xmin, and the automatic spacings chosen are written to the record.
 *  selected non-zero outside a run draws the outline red and dashed. @return 0. */
KOREL2D_API int KDrawGraph(GRAPH_STRUCT* record, ELEMENT_ATTR* attr, int selected);
/** Draws the traces of a running graph over its frame, clipped to it: with autoscale the y range
 *  (and for type 1 with autoscalex the x range) first moves a third of the way toward the span of
 *  the shown samples plus a margin, then each trace of the element's actions that has a variable
 *  and is not disabled is drawn by drawGraphValue (type 0) or drawGraphValueX. @return 0. */
KOREL2D_API int drawAllGraphValues(ELEMENT_STRUCT* element, GRAPH_STRUCT* record);
/** One trace of a time graph: its shown samples as a line strip from the left edge, one sample
 *  per 1 / rate seconds, in the colour and width of the thresholds the value passes (an empty
 *  colour list keeps the current colour, an empty width list draws 1 pixel wide). Positions of
 *  1e10 units or more are left out. Stores xmax = samples / rate + xmin. @return 0. */
KOREL2D_API int drawGraphValue(GRAPH_STRUCT* record, ACTION_STRUCT* action);
/** One trace of an xy graph, as drawGraphValue with x from the second variable, and a cross on
 *  the newest sample, kept inside the frame. @return 0. */
KOREL2D_API int drawGraphValueX(GRAPH_STRUCT* record, ACTION_STRUCT* action);
/** *out = the x at which the line through (x1, y1) and (x2, y2) reaches y. @return 0. */
KOREL2D_API int getIpol(float* out, float x1, float y1, float x2, float y2, float y);
/** At view time t, over the tree: every time graph's xmin and every graph's startTime and
 *  lastTime become t and its label formats are rebuilt; both trace rings of every action of
 *  every element are emptied, their times set to t. @return 0. */
KOREL2D_API int resetAllGraphs(ELEMENT_STRUCT* list, float t);
/** Sets xmin = t on every time graph (type 0) of the tree, groups included. @return 0. */
KOREL2D_API int graphSetTime(ELEMENT_STRUCT* list, float t);

/* ================================================================ 6. data-source and variable lists */

/** A zeroed source with found = 1 and `slots` empty 64-byte parameter slots, in no list; null
 *  when out of memory. */
KOREL2D_API DD_DATA_TYPE_STRUCT* createDataType(int slots);
/** Appends the source at the tail. */
KOREL2D_API int appendDataType(DD_DATA_TYPE_STRUCT** head, DD_DATA_TYPE_STRUCT* source);
/** Unlinks and destroys the source with its variables and parameter slots; withOptions non-zero:
 *  the item lists of its parameter descriptions go too. */
KOREL2D_API int delDataType(DD_DATA_TYPE_STRUCT** head, DD_DATA_TYPE_STRUCT* source, int withOptions);
/** 1 if the list holds a source of type number id, else 0. */
KOREL2D_API int checkDataType(DD_DATA_TYPE_STRUCT* list, int id);
/** Inserts before `before`, or before the head when that is null. */
KOREL2D_API int KDataInsertBefore(DD_DATA_TYPE_STRUCT* source, DD_DATA_TYPE_STRUCT* before, DD_DATA_TYPE_STRUCT** head);
/** Inserts after `after`, or after the head when that is null. */
KOREL2D_API int KDataInsertAfter(DD_DATA_TYPE_STRUCT* source, DD_DATA_TYPE_STRUCT* after, DD_DATA_TYPE_STRUCT** head);

/** A zeroed variable with `slots` empty 64-byte parameter slots and nrPara = slots; null when out
 *  of memory. */
KOREL2D_API VARIABLE_STRUCT* createVariable(int slots);
/** Appends the variable at the tail. */
KOREL2D_API int appendVariable(VARIABLE_STRUCT** head, VARIABLE_STRUCT* variable);
/** Inserts before `before`, or before the head when that is null. */
KOREL2D_API int variableInsertBefore(VARIABLE_STRUCT* variable, VARIABLE_STRUCT* before, VARIABLE_STRUCT** head);
/** Inserts after `after`, or after the head when that is null. */
KOREL2D_API int variableInsertAfter(VARIABLE_STRUCT* variable, VARIABLE_STRUCT* after, VARIABLE_STRUCT** head);
/** Unlinks and destroys the variable with its parameter slots and value buffer. */
KOREL2D_API int delVariable(VARIABLE_STRUCT** head, VARIABLE_STRUCT* variable);

/* ================================================================ 7. view files, binary and XML */

/** Reads a whole binary view file into the two lists (appended) and the view's page fields.
 *  @return 0, or -1 for a file that can't be read or isn't a view file (reason in the log). */
KOREL2D_API int loadFile(const char* path, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes,
                         VIEW_STRUCT* view);
/** Reads only the header and the page fields. @return 0, -1 wrong format, or -errno. */
KOREL2D_API int loadConfigFile(const char* path, VIEW_STRUCT* view);
/** Expands stored style numbers of the element (and below) into stipples and patterns, then
 *  re-derives its geometry. @return 0. */
KOREL2D_API int definitionLoad(ELEMENT_STRUCT* element);

/** Writes the view as a binary file of this library's revision (KGet_releasenr), replacing any
 *  file at `path`: the page fields of `view`, the element tree and the data sources, as they
 *  are edited (nothing of a run). Names above 63 and ids above 255 characters are cut in place.
 *  @return the result of saveFile_303; 0 without writing for a revision it can't write. */
KOREL2D_API int saveFile(const char* path, ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* dataTypes,
                         const VIEW_STRUCT* view);
/** Writes the view in the layout of revision 3.03/3.04, labelled with this library's revision.
 *  @return 0; -1 when the file can't be opened (the system's reason on stderr after "file open")
 *  or not all of it could be written. */
KOREL2D_API int saveFile_303(const char* path, ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* dataTypes,
                             const VIEW_STRUCT* view);
/** Writes one element record, its kind in front, with its children and actions. @return 0. */
KOREL2D_API int elementSave_303(ELEMENT_STRUCT* element, FILE* stream);
/** Writes the data-source section: sources, their parameters and variables. @return 0. */
KOREL2D_API int dataSave_303(const DD_DATA_TYPE_STRUCT* dataTypes, FILE* stream);
/** Writes a 4-byte big-endian integer. @return 0, or -1 when it couldn't be written. */
KOREL2D_API int KPutFInt(int32_t value, FILE* stream);
/** Writes a 4-byte big-endian IEEE single. @return 0, or -1 when it couldn't be written. */
KOREL2D_API int KPutFFloat(FILE* stream, float value);
/** Writes the n bytes at buffer as they stand. @return 0, or -1 when they couldn't be written. */
KOREL2D_API int KPutFString(const char* buffer, FILE* stream, int n);

/** Appends the symbols of a symbol library (a text file of German keywords) to `elements`, each a
 *  group named "SYMBOL n" of lines, rectangles, polygons, circles, arcs and texts. A file in UTF-8
 *  is taken as such, any other as Latin-1. Lines that fit nothing are passed over.
 *  @return 0; -1 when the file can't be read ("cannot open file" in the log). */
KOREL2D_API int loadSymbolFile(const char* path, ELEMENT_STRUCT** elements);

/** Reads an XML view file: the page fields into `view`, the sources appended to `dataTypes`, the
 *  elements to `elements`. The sources are taken as stored, not matched against the installed
 *  ones. Loads and saves on several threads take turns. Pictures and fonts are made in the
 *  current GL context. What goes wrong is told in one line on standard output, "loadFileXml: ",
 *  the path and the reason: a file it can't load; a document broken at a line and column, of
 *  which what stands before the error loads; the number of elements of unknown names skipped.
 *  @return 0; -1, adding nothing, for a file that can't be read, is nested deeper than 1000
 *  elements or has no root element. */
KOREL2D_API int loadFileXml(const char* path, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes,
                            VIEW_STRUCT* view);

/** @typedef XML_LOAD_REPORT
 *  What a load of an XML view file found beside what it loaded, for a tool that must refuse
 *  what loadFileXml takes in part. */
typedef struct XML_LOAD_REPORT {
    int32_t result;          /* that of loadFileXml: 0 or -1 */
    int32_t broken;          /* 1: the document has an error at line, column (from 1) */
    int32_t line, column;
    int32_t unknownElements; /* elements of no known name, skipped with their content */
    char reason[128];        /* why the result is -1 or the document broken; "" otherwise */
} XML_LOAD_REPORT;
/** loadFileXml, which also fills `report` when it isn't null. @return as loadFileXml. */
KOREL2D_API int loadFileXmlReport(const char* path, ELEMENT_STRUCT** elements, DD_DATA_TYPE_STRUCT** dataTypes,
                                  VIEW_STRUCT* view, XML_LOAD_REPORT* report);
/** Writes the view as an XML view file, replacing any file at `path`: the page fields of `view`,
 *  the data sources, the shared strokes, patterns, pictures and fonts, the element tree. The
 *  elements' style, font and picture numbers are rewritten for this file. Each of the lists may
 *  be null. A tree of more levels than loadFileXml reads (995, groups and their elements) is refused,
 *  nothing written. A refusal or a file that can't be written whole is told in one line on
 *  standard output, "saveFileXml: ", the path and the reason. @return 0 all the same. */
KOREL2D_API int saveFileXml(const char* path, ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* dataTypes,
                            const VIEW_STRUCT* view);

/** Writes the MD5 digest (RFC 1321) of the rest of the stream as 32 lowercase hexadecimal digits
 *  and a terminator into hex (33 chars). The stream stays open, read to its end.
 *  @return 0; -1 for a null argument or a read error, hex then empty (unless it is null). */
KOREL2D_API int getMd5(FILE* stream, char hex[33]);
/** Compares the MD5 digest of the rest of the stream with digest, exactly: the digits given must
 *  be lowercase. The stream stays open, read to its end.
 *  @return 1 when they are equal; 0 when not, or for a null argument or a read error. */
KOREL2D_API int filesMatch(FILE* stream, const char* digest);

/* ================================================================ 8. handles, edits and objects */

/** Phases of an element's edit for the handle codes 1 to 16. */
enum {
    KR_EDIT_BEGIN = 0,  /* saves the record and the handles' start positions */
    KR_EDIT_UPDATE = 1, /* applies the pointer to the saved state */
    KR_EDIT_END = 2,    /* drops the saved state */
    KR_EDIT_ALL = 3     /* begin, update and end in one step */
};

/** Handle ids, and the edit codes they stand for: 1 to 8 the box clockwise from the upper left,
 *  numbered as the KR_POS_ words (k and k + 4 opposite), then what else an edit can do with a box. */
enum {
    KR_HANDLE_FRAME = 0,       /* frame or segment: never hit */
    KR_HANDLE_CENTRE = 9,      /* as a code: move, x and y the new centre */
    KR_EDIT_WIDTH = 10,        /* x: the new width, about the centre */
    KR_EDIT_HEIGHT = 11,       /* y: the new height, about the centre */
    KR_EDIT_SCALE_X = 12,      /* x: factor about the centre */
    KR_EDIT_SCALE_Y = 13,      /* y: factor about the centre */
    KR_EDIT_MIRROR_X = 14,
    KR_EDIT_MIRROR_Y = 15,
    KR_EDIT_ROTATE = 16,       /* x: degrees about the centre */
    KR_HANDLE_ARC_START = 50,
    KR_HANDLE_ARC_END = 51,
    KR_HANDLE_POINT = 100      /* + point id of a polygon; 100 and 101 the ends of a line */
};

/** Shapes of a handle (STICKY_STRUCT.kind). */
enum {
    KR_STICKY_FRAME = 0,   /* x, y lower left corner, w, h size of the box; never hit */
    KR_STICKY_SQUARE = 1,
    KR_STICKY_SEGMENT = 2, /* x, y, w, h hold the two ends; never hit */
    KR_STICKY_CENTRE = 3,
    KR_STICKY_ANCHOR = 4   /* the handle of a text's alignment */
};

/** One handle of an element (ELEMENT_STRUCT.stickies), made by the kind's geometry pass. */
struct STICKY_STRUCT {
    uint8_t hit;         /**< 1 after findSticky found it, 0 after it tested and missed it */
    uint8_t kind;        /**< KR_STICKY_... */
    uint8_t reserved;    /**< 0 */
    int32_t id;          /**< 1 to 8 on the box, 9 the centre, 50, 51 arc ends, 100 and up points */
    float x;             /**< position in view units (a frame: its lower left corner) */
    float y;             /**< position in view units */
    float w;             /**< half width in pixels at zoom 1 */
    float h;             /**< half height in pixels at zoom 1 */
    STICKY_STRUCT* next; /**< next handle of the element */
    STICKY_STRUCT* prev; /**< previous handle of the element */
};

/** A zeroed handle in no list; logs "createSticky: out of memory" and gives null when out of memory. */
KOREL2D_API STICKY_STRUCT* createSticky(void);
/** Appends the handle at the tail. */
KOREL2D_API int appendSticky(STICKY_STRUCT** head, STICKY_STRUCT* sticky);
/** Unlinks and frees the handle; a null handle does nothing. */
KOREL2D_API int delSticky(STICKY_STRUCT** head, STICKY_STRUCT* sticky);
/** The first handle with this id, or null. */
KOREL2D_API STICKY_STRUCT* getSticky(STICKY_STRUCT* head, int id);
/** The id of the first square, centre or anchor handle whose box, its half size divided by zoom,
 *  holds (x, y) strictly inside, or 0. Marks the handles tested up to it: hit 1 for it, 0 before. */
KOREL2D_API int findSticky(STICKY_STRUCT* head, float x, float y, float zoom);
/** Sets the process-wide shift flag of the editing tool (non-zero: handles scale about the centre). */
KOREL2D_API void setShift(int flag);
/** Sets the ctrl flag (non-zero: a corner drag keeps the aspect, both axes taking the larger factor). */
KOREL2D_API void setCtrl(int flag);
/** 1 when (px, py) lies in the box of the corners (x1, y1), (x2, y2), edges included. */
KOREL2D_API int pointInRect(float px, float py, float x1, float y1, float x2, float y2);
/** Moves one point (oldX, oldY) by the handle code and the pointer (mx, my), from the element's
 *  grab points; writes outX, outY, or leaves one unwritten where a factor would collapse it. */
KOREL2D_API void resizeMoveElement(ELEMENT_STRUCT* element, int code, float* outX, float* outY, float mx, float my,
                                   float oldX, float oldY);

/** The edits of the kinds; value points to a KR_EDIT_VALUE. Codes 1 to 16 run through the phases
 *  (KR_EDIT_BEGIN ...), each ending with the geometry pass; the other codes act in any phase, and
 *  codes of points (arc ends, line ends, polygon points) end with the geometry pass too. Any code
 *  re-seeds the look. A rectangle, polygon or circle takes every immediate code: the width sets
 *  strokeWidth and turns the stroke on from 1; KR_EDIT_STROKE and KR_EDIT_FILL set the colour and
 *  strokeOn or fillOn from value->number; the style codes set the stipple or pattern too.
 *  @return 0, -1 for a null element or value. */
KOREL2D_API int editRect(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** The edit of a polyline or polygon; codes 100 + n move every point of id n to value->x, y, in
 *  any phase. As editRect. */
KOREL2D_API int editPoly(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** The edit of a circle or arc: its matrix scales with its box; KR_HANDLE_ARC_START and
 *  KR_HANDLE_ARC_END set start or end to the angle of value->x, y (a turn back or on, so that
 *  start stays before end). As editRect. */
KOREL2D_API int editCircle(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** The edit of a line: its two end points; codes 100 and 101 put the first or second at
 *  value->x, y while an edit is in KR_EDIT_UPDATE. The line codes set strokeWidth, strokeStyle,
 *  strokeColor and its alpha, antialias. As editRect. */
KOREL2D_API int editLine(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** The edit of a picture: its four corners; KR_EDIT_FILL and KR_EDIT_FILL_ALPHA its tint
 *  (fillColor), KR_EDIT_FILL_STYLE fillStyle alone. As editRect. */
KOREL2D_API int editImage(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** The edit of a button: its four corners; KR_EDIT_FILL and KR_EDIT_FILL_ALPHA its face
 *  (color0), KR_EDIT_STROKE its light edge color1 and the dark edge color2 at 0.4 of it,
 *  KR_EDIT_STROKE_ALPHA the alpha of both. As editRect. */
KOREL2D_API int editButton(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** The edit of a slider: its centre and size; the colour codes as a button's, on faceColor,
 *  lightColor and darkColor. As editRect. */
KOREL2D_API int editSlider(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** The edit of a graph frame: its lower left corner and size. The width sets outlineWidth,
 *  KR_EDIT_STROKE_STYLE gridStyle with its stipple, KR_EDIT_FILL gridColor, KR_EDIT_STROKE
 *  outlineColor, the alpha codes theirs; the font codes set the label font's size (1 to 40),
 *  family (style and size following what it has) or style, and make it anew. As editRect. */
KOREL2D_API int editGraph(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);
/** The edit of a clip area: its four corners. As editRect. */
KOREL2D_API int editScissor(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value);

/** @typedef OBJ_ATTR
 * The attributes of any kind of element, as krObjGetAttr hands them out and krObjSetAttr takes
 * them in. Which fields a kind uses: stroked shapes (rectangle, polygons, circle, arc) the stroke
 * and fill fields, a text the stroke fields and text, a line the stroke fields without On, an
 * image fillColor, a button fillColor as its face colour, a slider fillColor as its face colour,
 * a graph fillColor as its background and every field from tickx on. */
typedef struct OBJ_ATTR {
    uint32_t mask; /* krObjSetAttr: KR_OBJ_X ... which parts to set */
    float x, y;
    float width, height;
    int32_t strokeStyle;
    int32_t strokeWidth; /* truncated from the record's float */
    int32_t antialias;
    int32_t strokeOn;
    int32_t fillOn;
    float strokeColor[4];
    float fillColor[4];
    char text[256];
    int32_t tickx, tickxAuto;
    float tickxSpace;
    int32_t tickxSub;
    int32_t ticky, tickyr, tickyAuto;
    float tickySpace;
    int32_t tickySub;
    int32_t labelx, labely, labelyr;
    int32_t gridx, gridxAuto;
    float gridxSpace;
    int32_t gridy, gridyAuto;
    float gridySpace;
    float outlineColor[4];
    float gridColor[4];
    int32_t gridStyle;
    float rate;
    int32_t samples;
    int32_t autoscale;
    float minspready, ymin, ymax;
    int32_t autoscalex;
    float minspreadx, xmin, xmax;
    int32_t labelFixx, labelFixy;
    float labelXmin, labelXmax, labelYmin, labelYmax;
} OBJ_ATTR;

/** Bits of OBJ_ATTR.mask. */
enum { KR_OBJ_X = 0x1, KR_OBJ_Y = 0x2, KR_OBJ_WIDTH = 0x4, KR_OBJ_HEIGHT = 0x8, KR_OBJ_KIND_FIELDS = 0x10 };

/** The element of that name, children searched before their group; null if none. For a null view
 *  the pointer value -1, for a wrong magic -2. */
KOREL2D_API ELEMENT_STRUCT* krObjGet(VIEW_STRUCT* view, const char* name);
/** Every element, each group before its children, as a new array for krObjFree; count set.
 *  Null (count untouched) for a bad view or exhausted memory. */
KOREL2D_API ELEMENT_STRUCT** krObjGetAll(VIEW_STRUCT* view, int* count);
/** Frees an array of krObjGetAll; null is ignored. */
KOREL2D_API void krObjFree(ELEMENT_STRUCT** objects);
/** The elements at window pixel (x, y), y from the top, by their resting boxes (lines by their
 *  segment): children before their group, the topmost last, at most 499. The table is the
 *  library's, valid until the next pick. Null when nothing is hit or a handle is bad. */
KOREL2D_API ELEMENT_STRUCT** krObjPick(WINDOW_STRUCT* window, VIEW_STRUCT* view, int x, int y, int* count);
/** As krObjPick at (x, y) in view units, zoom 1. */
KOREL2D_API ELEMENT_STRUCT** krObjPickView(VIEW_STRUCT* view, int x, int y, int* count);
/** The element's name (the pointer itself, the name being its first field); null for a null element. */
KOREL2D_API char* krObjName(ELEMENT_STRUCT* element);
/** The element's id text; null for a null element. */
KOREL2D_API char* krObjId(ELEMENT_STRUCT* element);
/** The element's kind code (KR_GRAPH ...); -1 for a null element. */
KOREL2D_API int krObjType(ELEMENT_STRUCT* element);
/** Centre x in view units, relative to the group for a group's child; -1.0 for a null element. */
KOREL2D_API float krObjX(ELEMENT_STRUCT* element);
/** Centre y in view units, as krObjX; -1.0 for a null element. */
KOREL2D_API float krObjY(ELEMENT_STRUCT* element);
/** Width of the element's box in view units; -1.0 for a null element. */
KOREL2D_API float krObjWidth(ELEMENT_STRUCT* element);
/** Height of the element's box in view units; -1.0 for a null element. */
KOREL2D_API float krObjHeight(ELEMENT_STRUCT* element);
/** Moves the centre to x (view units, also in a group) through the element's edit. @return 0, -1
 *  for a null element or one without an edit. */
KOREL2D_API int krObjSetX(ELEMENT_STRUCT* element, float x);
/** Moves the centre to y (view units, also in a group). @return as krObjSetX. */
KOREL2D_API int krObjSetY(ELEMENT_STRUCT* element, float y);
/** Sizes the box to width (view units) about its centre. @return as krObjSetX. */
KOREL2D_API int krObjSetWidth(ELEMENT_STRUCT* element, float width);
/** Sizes the box to height (view units) about its centre. @return as krObjSetX. */
KOREL2D_API int krObjSetHeight(ELEMENT_STRUCT* element, float height);
/** A graph's number of samples. @return 0, -1 null element, -2 not a graph. */
KOREL2D_API int krObjSetSamples(ELEMENT_STRUCT* element, int samples);
/** A graph's sampling rate from a whole number. @return 0, -1 null element, -2 not a graph. */
KOREL2D_API int krObjSetUpdateRate(ELEMENT_STRUCT* element, int rate);
/** Fills attr from the element; mask is left alone. @return 0, -1 for a null element or a kind
 *  without attributes. */
KOREL2D_API int krObjGetAttr(ELEMENT_STRUCT* element, OBJ_ATTR* attr);
/** Sets what attr->mask names: x, y, width, height in this order through the edit, then the
 *  kind's fields into its record and the look re-seeded from it. Derived state (stipples,
 *  patterns, a text's box) is not rebuilt. @return 0, -1 for a null element, or a kind without
 *  attributes when its fields are asked for. */
KOREL2D_API int krObjSetAttr(ELEMENT_STRUCT* element, OBJ_ATTR* attr);

/** The element's actions in list order, as a new array for krActionFree; count set (0 and null
 *  for a null element). */
KOREL2D_API ACTION_STRUCT** krActionGetAll(ELEMENT_STRUCT* element, int* count);
/** Frees an array of krActionGetAll; null is ignored. */
KOREL2D_API void krActionFree(ACTION_STRUCT** actions);
/** The name of the action's variable; null for a null action. */
KOREL2D_API char* krActionVar(ACTION_STRUCT* action);
/** The name of the action's second variable; null for a null action. */
KOREL2D_API char* krActionVar2(ACTION_STRUCT* action);
/** The action's type code (KR_ACTION_...); -1 for a null action. */
KOREL2D_API int krActionType(ACTION_STRUCT* action);
/** flag 0 disables the action (a graph trace is then not drawn). @return 0 or -1. */
KOREL2D_API int krActionEnable(ACTION_STRUCT* action, int flag);
/** The scaling (a0, b0)-(a1, b1) of the first variable, offset and slope worked out anew.
 *  @return 0 or -1. */
KOREL2D_API int krActionSetScale(ACTION_STRUCT* action, float a0, float a1, float b0, float b1);
/** As krActionSetScale for the second variable: offset2 and slope2. @return 0 or -1. */
KOREL2D_API int krActionSetScale2(ACTION_STRUCT* action, float a0, float a1, float b0, float b1);
/** The stored scaling points of the first variable. @return 0 or -1 for a null action. */
KOREL2D_API int krActionGetScale(ACTION_STRUCT* action, float* a0, float* a1, float* b0, float* b1);
/** The stored scaling points of the second variable. @return 0 or -1 for a null action. */
KOREL2D_API int krActionGetScale2(ACTION_STRUCT* action, float* a0, float* a1, float* b0, float* b1);
/** Sets the colour of the action's first colour threshold (a graph trace's colour). @return 0,
 *  -1 for a null action or an empty colour list. */
KOREL2D_API int krActionSetColor(ACTION_STRUCT* action, float r, float g, float b);
/** Reads the colour of the action's first colour threshold. @return as krActionSetColor. */
KOREL2D_API int krActionGetColor(ACTION_STRUCT* action, float* r, float* g, float* b);

#ifdef __cplusplus
}
#endif

#endif /* KOREL_EDIT_H */
