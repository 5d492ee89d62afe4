// Helpers shared by the element kinds: seeding the run-time look and the geometry of
// corner-based shapes. Kinds share these instead of repeating them.
#pragma once

#include "Korel2D.h"

#include <cstddef>

// The part of seeding that every kind does: shown, and no value marked as set by an action.
void attrSeedCommon(ELEMENT_ATTR* attr);
// Line look of a stroked kind: style, stipple, width (truncated) and colour from its record.
void attrSeedStroke(ELEMENT_ATTR* attr, int style, int32_t stippleFactor, uint16_t stipplePattern, float width,
                    const float strokeColor[4]);
// The look of the bevelled and textured kinds: no line style or width, the stroke colour
// cleared but for its alpha, and the face colour as fill.
void attrSeedFace(ELEMENT_ATTR* attr, const float faceColor[4]);
// Bounds, size, centre and reference point of a shape picked by its box. The centre is
// the lower edge plus half the span, in double.
void boxGeometry(ELEMENT_STRUCT* element, float xmin, float ymin, float xmax, float ymax);
// For kinds whose record names the centre rather than the middle of the box.
void placeCentre(ELEMENT_STRUCT* element, float x, float y);
// Extremes of n points, as xmin, ymin, xmax, ymax.
void pointsBox(const float* x, const float* y, int n, float box[4]);
// Widens box (xmin, ymin, xmax, ymax) so that it holds the point.
void boxInclude(float box[4], float x, float y);
// Box, centre, size, reference point and local corners of a four-cornered shape.
void cornerGeometry(ELEMENT_STRUCT* element, const float cornerX[4], const float cornerY[4], float localX[4],
                    float localY[4]);
// One GL primitive through four local corners.
void drawCorners(unsigned int mode, const float localX[4], const float localY[4]);
// A bevelled panel: the face on the inner box (il, ib)-(ir, it), then the left and upper bands
// in `lit` and the right and lower ones in `shaded`, each band between the outer corners (lower
// left, upper left, upper right, lower right) and the inner box, each quad on its own. Raised
// or sunken is only which colour lights which side.
void drawBevelPanel(const float outerX[4], const float outerY[4], float il, float ib, float ir, float it,
                    const float face[4], const float lit[4], const float shaded[4]);
// The dash pattern of the editing tool's frames.
constexpr uint16_t kDashPattern = 0xF0F0;
// The pen of the red dashed frame the editing tool sees around a selected element; the kind
// draws the frame along its own outline.
void setSelectionPen(int width);
// That frame, one unit wide, through four local corners.
void drawSelectionLoop(const float localX[4], const float localY[4]);

// A new per-kind record, a byte copy of `source` or of the kind's defaults. Logs
// "<creator>: out of memory" and returns null when memory is exhausted.
void* createKindRecord(const void* source, const void* defaults, size_t size, const char* creator);

template <class Record> Record* createRecordOf(const Record* source, const Record& defaults, const char* creator)
{
    return static_cast<Record*>(createKindRecord(source, &defaults, sizeof(Record), creator));
}

inline void setColor(float target[4], float r, float g, float b, float a)
{
    target[0] = r;
    target[1] = g;
    target[2] = b;
    target[3] = a;
}

// Window coordinates of n points of the current model space, the walk's offset included.
void projectToWindow(const float x[], const float y[], int n, double wx[], double wy[]);

// Clips to the window box spanned by three points of the current model space, offset included
// (lower left, lower right, upper left), and enables the scissor test.
void scissorToSpan(const float x[3], const float y[3]);
