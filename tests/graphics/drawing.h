// Shared set-up for the graphics tests: window-pixel coordinates and a neutral GL state layer.
#pragma once

#include "GlContext.h"
#include "graphics/graphics.h"

#include <GL/gl.h>

namespace k2dtest {

class GraphicsTest : public GlTest {
protected:
    void SetUp() override
    {
        GlTest::SetUp();
        if (HasFatalFailure())
            return;
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, kSurfaceWidth, 0, kSurfaceHeight, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        // The layer's state outlives a test: start each one from a plain, opaque look.
        kvSetColorFactor(1, 1, 1, 1);
        kvSetLineScale(1);
        tkAliasBlend(0, 1);
        tkLineStipple(1, 0xFFFF);
        tkLineWidth(1);
        setStipple(0, nullptr);
        while (glGetError() != GL_NO_ERROR) {
        }
    }

    static void quad(float x0, float y0, float x1, float y1)
    {
        tkBegin(GL_QUADS);
        glVertex2f(x0, y0);
        glVertex2f(x1, y0);
        glVertex2f(x1, y1);
        glVertex2f(x0, y1);
        tkEnd();
    }

    static void line(float x0, float y0, float x1, float y1)
    {
        tkBegin(GL_LINES);
        glVertex2f(x0, y0);
        glVertex2f(x1, y1);
        tkEnd();
    }

    static bool lit(const Frame& frame, int x, int y) { return frame.at(x, y).r > 127; }
};

} // namespace k2dtest
