// Fixture for tests that load a view and draw it through the flat interface.
#pragma once

#include "GlContext.h"
#include "Korel2D.h"
#include "ViewBuilder.h"

namespace k2dtest {

using korelgen::RectFields;
using korelgen::ViewBuilder;

class ViewTest : public GlTest {
protected:
    void SetUp() override;
    void TearDown() override;

    // Loads the builder's bytes through krViewLoadData; the view is freed after the test.
    VIEW_STRUCT* load(const ViewBuilder& builder);
    // Clears with the page colour, draws with krViewDraw and reads the frame back.
    Frame draw(VIEW_STRUCT* view, float x = 0, float y = 0, float zoom = 1);

    WINDOW_STRUCT* window = nullptr;
    std::vector<VIEW_STRUCT*> views;
};

// A view of one page of 400 x 300 units at the origin with a black page.
ViewBuilder blackPage();

// Empties the log and gives back what it held.
inline std::string takeLog()
{
    char text[16384];
    getLogMsg(text, sizeof text);
    return text;
}

} // namespace k2dtest
