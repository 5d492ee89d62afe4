// Sliders as a user sees them: a sunken groove, a raised knob on the centre, and faces that a
// fill-colour action recolours while the bevels keep theirs.
#include "../actions/actionViews.h"
#include "ViewFixture.h"

using namespace k2dtest;
using namespace korelgen;

namespace {

const Rgb kGrey{128, 128, 128}, kDark{77, 77, 77}, kLight{230, 230, 230}, kGreen{0, 255, 0}, kBlack{0, 0, 0};
const Rgb kFaded{115, 115, 115}; // the grey face at 90 % over black

// A page whose lower left is (200, 150), so that a groove 40 x 200 about (300, 300) fits.
ViewBuilder shiftedPage()
{
    return ViewBuilder().page(200, 150, 400, 300, 0, 0, 0);
}

// The pixel that shows the point (u, v) of the shifted page: 400 units span 399 pixels.
::testing::AssertionResult shows(const Frame& f, float u, float v, Rgb colour)
{
    return PixelIs(f, int((u - 200) * 399 / 400), int((v - 150) * 299 / 300), colour);
}

using SliderDraw = ViewTest;

// Points at least half a unit inside one band of a slider 40 x 200 about (300, 300) with the
// default bevel 2 and knob half size 15: the knob spans rows 285 to 315, columns 282 to 318.
TEST_F(SliderDraw, SunkenGrooveRaisedKnobFacesInTheFillColour)
{
    enum { face, dark, light, knobFace, knobDark, knobLight };
    const struct {
        float u, v;
        int shows;
    } points[] = {{300, 250, face},      {281, 250, dark},      {319, 250, light},    {300, 201, light},
                  {300, 399, dark},      {300, 300, knobFace},  {283, 300, knobLight}, {317, 300, knobDark},
                  {300, 286, knobDark},  {300, 314, knobLight}, {300, 284, face},      {300, 316, face},
                  {281, 300, dark},      {319, 300, light}};
    const struct {
        const char* what;
        float faceAlpha, bevelAlpha;
        bool recoloured;
        Rgb shown[6];
    } cases[] = {
        {"default colours", 1, 1, false, {kGrey, kDark, kLight, kGrey, kDark, kLight}},
        {"fill-colour action", 1, 1, true, {kGreen, kDark, kLight, kGreen, kDark, kLight}},
        {"bevels of no alpha, opaque face: unblended", 1, 0, false, {kGrey, kDark, kLight, kGrey, kDark, kLight}},
        // The knob's face lies over the groove's, its bevels let that show through.
        {"bevels of no alpha, face at 90 %: blended", 0.9f, 0, false,
         {kFaded, kBlack, kBlack, {126, 126, 126}, kFaded, kFaded}},
    };
    for (const auto& c : cases) {
        SliderFields s{300, 300, 40, 200};
        s.face[3] = c.faceAlpha, s.dark[3] = s.light[3] = c.bevelAlpha;
        ActionFields colour = act(KR_ACTION_FILL_COLOR, "level");
        colour.blocks[KR_THRESHOLDS_COLOR].entries = {entry(0, 0, 0, 1, 0)};
        ViewBuilder b = shiftedPage();
        if (c.recoloured)
            b.actions({colour});
        VIEW_STRUCT* v = load(b.slider(s).dataSection({internalSource({{KR_VAR_FLOAT, "level", "", {}}})}));
        ASSERT_EQ(krViewStart(v), 0);
        const float level = 5;
        krVarSet(v, "level", &level);
        const Frame f = draw(v);
        for (const auto& p : points)
            EXPECT_TRUE(shows(f, p.u, p.v, c.shown[p.shows])) << c.what << " at (" << p.u << ", " << p.v << ")";
    }
}

// Nothing keeps the knob inside the groove. Selected in a stopped view, the groove shows the
// editing tool's red dashes round it.
TEST_F(SliderDraw, KnobSticksOutOfTheGroove)
{
    SliderFields tall{300, 300, 40, 200};
    tall.knobHalfSize = 150;
    VIEW_STRUCT* v = load(shiftedPage().slider(tall));
    v->elements->selected = 1;
    const Frame f = draw(v);
    EXPECT_TRUE(shows(f, 300, 420, kGrey) && shows(f, 300, 180, kGrey) && shows(f, 270, 420, kBlack));
    EXPECT_GT(f.count(0, 0, 400, 300, {255, 0, 0}, 0), 100);
}

} // namespace
