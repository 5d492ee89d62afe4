// The sample views we ship are what users try first: each loads whole, and survives being
// cut at every byte and garbled thousands of times.
#include "LoadedView.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

using namespace k2dtest;

namespace {

std::vector<uint8_t> shippedSample(const char* name)
{
    std::ifstream in(std::string(KOREL2D_EXAMPLES_DIR) + "/" + name, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

class ShippedSample : public ::testing::TestWithParam<const char*> {};

TEST_P(ShippedSample, LoadsWholeCutAndGarbled)
{
    const std::vector<uint8_t> whole = shippedSample(GetParam());
    ASSERT_GT(whole.size(), 100u);
    int elements;
    {
        LoadedView loaded(whole);
        ASSERT_NE(loaded.view, nullptr);
        elements = countElements(loaded.first());
        EXPECT_GT(elements, 5);
    }
    for (size_t n = 9; n < whole.size(); ++n) {
        LoadedView cut(std::vector<uint8_t>(whole.begin(), whole.begin() + n));
        ASSERT_NE(cut.view, nullptr) << n;
        EXPECT_LE(countElements(cut.first()), elements) << n;
    }
    std::mt19937 random(2026);
    for (int round = 0; round < 10000; ++round) {
        LoadedView garbled(withGarbledBytes(whole, random));
        ASSERT_NE(garbled.view, nullptr) << round;
    }
}

INSTANTIATE_TEST_SUITE_P(Examples, ShippedSample, ::testing::Values("panel.k2d", "everykind.k2d"));

} // namespace
