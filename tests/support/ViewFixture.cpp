#include "ViewFixture.h"

namespace k2dtest {

void ViewTest::SetUp()
{
    GlTest::SetUp();
    window = krWindowCreate();
    ASSERT_NE(window, nullptr);
    ASSERT_EQ(krWindowInit(window, kSurfaceWidth, kSurfaceHeight), 0);
}

void ViewTest::TearDown()
{
    for (VIEW_STRUCT* v : views)
        krViewFree(v);
    views.clear();
    krWindowFree(window);
}

VIEW_STRUCT* ViewTest::load(const ViewBuilder& builder)
{
    VIEW_STRUCT* view = krViewLoadData(builder.bytes().data(), builder.size());
    if (view)
        views.push_back(view);
    return view;
}

Frame ViewTest::draw(VIEW_STRUCT* view, float x, float y, float zoom)
{
    EXPECT_EQ(krWindowClear(window, view), 0);
    EXPECT_EQ(krViewDraw(window, view, x, y, zoom), 0);
    return Frame::grab();
}

ViewBuilder blackPage()
{
    ViewBuilder b;
    b.page(0, 0, 400, 300, 0, 0, 0);
    return b;
}

} // namespace k2dtest
