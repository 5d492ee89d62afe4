// The shipped XML samples hold what their binary namesakes hold.
#include "xml/viewXml.h"

#include "SampleFiles.h"
#include "StoredView.h"

#include <gtest/gtest.h>

namespace {

// The page colour is stored in 8 bits a channel, so it comes back within a step of 1/255.
TEST(XmlSamples, BothFormsLoadTheSamePageAndSources)
{
    for (const char* name : {"everykind", "sources"}) {
        const std::string base = std::string(KOREL2D_EXAMPLES_DIR) + "/" + name;
        k2dtest::FileView binary(base + ".k2d"), xml(base + ".xml", loadFileXml);
        ASSERT_TRUE(binary.result == 0 && xml.result == 0) << name;
        // Copies of the page and list heads; the XML forms hold no elements yet.
        VIEW_STRUCT a = binary.view, b = xml.view;
        a.elements = b.elements = nullptr;
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(b.pageColor[i], a.pageColor[i], 1 / 255.0f) << name;
            b.pageColor[i] = a.pageColor[i];
        }
        EXPECT_EQ(k2dtest::firstStoredDifference(&a, &b), "") << name;
    }
}

} // namespace
