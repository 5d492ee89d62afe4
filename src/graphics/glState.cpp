// Every colour and line width of the library passes through here, so that one colour factor
// and one line scale reach all element kinds. OpenGL state is only ever written, never read
// back: a read would stall the pipeline once per element.
#include "graphics/graphics.h"

#include <GL/gl.h>

namespace {

// Process-wide and unlocked: a draw entry sets them before its walk, on the drawing thread.
float fr = 1, fg = 1, fb = 1, fa = 1;
float lineScale = 1;
float offsetX = 0, offsetY = 0;

// Until a host supplies its table, every lookup answers 0.
constexpr int kRgbSteps = 21;
uint32_t zeroColorIndex[kRgbSteps * kRgbSteps * kRgbSteps];
uint32_t* rgbColorIndex = zeroColorIndex;

// Below this alpha a colour counts as translucent.
constexpr double kOpaque = 0.98;

float unit(float v)
{
    return v < 0 ? 0 : v > 1 ? 1 : v;
}

} // namespace

void tkBegin(unsigned int mode)
{
    glBegin(mode);
}

void tkEnd(void)
{
    glEnd();
}

void tkPushMatrix(void)
{
    glPushMatrix();
}

void tkPopMatrix(void)
{
    glPopMatrix();
}

void tkSetOffset(float x, float y)
{
    offsetX = x;
    offsetY = y;
}

void tkGetOffset(float* x, float* y)
{
    *x = offsetX;
    *y = offsetY;
}

void tkVertex2f(float x, float y)
{
    glVertex2f(x + offsetX, y + offsetY);
}

// Each draw function closes its own primitive, so a walk leaves nothing open to finish.
void tkFinish(void) {}

void tkLineStipple(int factor, uint16_t pattern)
{
    if (factor == 1 && pattern == 0xFFFF) {
        glDisable(GL_LINE_STIPPLE);
        return;
    }
    glLineStipple(factor, pattern);
    glEnable(GL_LINE_STIPPLE);
}

void tkLineWidth(int width)
{
    glLineWidth(float(width) * lineScale);
}

void tkAliasBlend(int antialias, float alpha)
{
    if (antialias) {
        glEnable(GL_LINE_SMOOTH);
        glEnable(GL_BLEND);
        return;
    }
    // A translucent colour factor blends every element, even opaque ones.
    if (double(alpha) < kOpaque || double(fa) < kOpaque)
        glEnable(GL_BLEND);
    else
        glDisable(GL_BLEND);
    glDisable(GL_LINE_SMOOTH);
}

void tkClearColor(float r, float g, float b)
{
    glClearColor(r, g, b, 0);
}

// Kept for the window functions that call them; RGBA is the only mode.
int tkSetRgbMode(int)
{
    return 0;
}

int kriUpdateAttr(void)
{
    return 0;
}

void kvSetColorFactor(float r, float g, float b, float a)
{
    fr = unit(r);
    fg = unit(g);
    fb = unit(b);
    fa = unit(a);
    // Only switched on here: tkAliasBlend decides per element whether blending goes off again.
    if (double(fa) < kOpaque)
        glEnable(GL_BLEND);
}

void kvSetLineScale(float scale)
{
    lineScale = scale;
}

void kvColor4f(float r, float g, float b, float a)
{
    glColor4f(r * fr, g * fg, b * fb, a * fa);
}

void setStipple(int number, const uint8_t* pattern)
{
    if (number == 0) {
        glDisable(GL_POLYGON_STIPPLE);
        return;
    }
    glEnable(GL_POLYGON_STIPPLE);
    glPolygonStipple(pattern);
}

void setRgbColorIndex(uint32_t* table)
{
    rgbColorIndex = table;
}

// Components must lie in 0..1: the table has no guard. The products are taken in float, as a
// host's own (int)(r * 20) on the same f32 values would be.
uint32_t getFastRGBcolor(float r, float g, float b)
{
    return rgbColorIndex[int(r * 20) * kRgbSteps * kRgbSteps + int(g * 20) * kRgbSteps + int(b * 20)];
}
