/* The recorder's layouts: panes are even, fill the output, and do not overlap. */
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "wall/layout.h"
#include "wall/session.h"

namespace
{

using namespace nvrec;

const std::pair<std::string, int> kNamed[] = {{"1", 1},    {"2x2", 4}, {"3x3", 9},
                                              {"4x4", 16}, {"1+5", 6}, {"1+7", 8}};

class NvrecLayout : public testing::TestWithParam<std::tuple<std::pair<std::string, int>, std::string>>
{
};

TEST_P(NvrecLayout, FillsTheOutputWithEvenPanesThatDoNotOverlap)
{
    const auto [named, output] = GetParam();
    const auto layout = layout_named(named.first);
    const OutputMode *mode = output_mode_named(output);
    ASSERT_TRUE(layout && mode);
    EXPECT_EQ(pane_count(*layout), named.second);

    const std::vector<DispAttrib> panes = make_panes(*layout, mode->width_px, mode->height_px, 16);
    ASSERT_EQ(panes.size(), static_cast<size_t>(named.second));
    std::vector<int> covered(static_cast<size_t>(mode->width_px * mode->height_px), 0);
    for (size_t i = 0; i < panes.size(); ++i) {
        const DispAttrib &pane = panes[i];
        EXPECT_EQ(pane.channel, i);
        EXPECT_EQ(pane.bind_status, 1);
        EXPECT_EQ((pane.x | pane.y | pane.w | pane.h) & 1, 0) << "pane " << i;
        ASSERT_LE(pane.x + pane.w, mode->width_px);
        ASSERT_LE(pane.y + pane.h, mode->height_px);
        for (int y = pane.y; y < pane.y + pane.h; ++y) {
            for (int x = pane.x; x < pane.x + pane.w; ++x)
                ++covered[static_cast<size_t>(y * mode->width_px + x)];
        }
    }
    size_t wrong = 0;
    for (const int times : covered)
        wrong += times != 1;
    EXPECT_EQ(wrong, 0u) << "pixels in no pane or in several";
}

INSTANTIATE_TEST_SUITE_P(All, NvrecLayout,
                         testing::Combine(testing::ValuesIn(kNamed), testing::ValuesIn(output_mode_names())));

TEST(NvrecLayouts, OneAndFiveHasItsLargePaneOverTwoThirds)
{
    const auto panes = make_panes(Layout::kOneAndFive, 1920, 1080, 6);
    ASSERT_EQ(panes.size(), 6u);
    EXPECT_EQ(panes[0].w, 1280);
    EXPECT_EQ(panes[0].h, 720);
    EXPECT_EQ(panes[1].x, 1280);
    EXPECT_EQ(panes[5].x, 1280);
    EXPECT_EQ(panes[5].y, 720);
}

TEST(NvrecLayouts, FewerCamerasThanPanesLeaveTheLastPanesOut)
{
    EXPECT_EQ(make_panes(Layout::kGrid3, 1920, 1080, 5).size(), 5u);
    EXPECT_EQ(make_panes(Layout::kGrid2, 1920, 1080, 16).size(), 4u);
    EXPECT_TRUE(make_panes(Layout::kGrid2, 1920, 1080, 0).empty());
}

TEST(NvrecLayouts, TheSmallestGridThatFitsIsChosen)
{
    for (const auto &[cameras, layout] : {std::pair(1, Layout::kSingle),
                                          {2, Layout::kGrid2},
                                          {4, Layout::kGrid2},
                                          {5, Layout::kGrid3},
                                          {9, Layout::kGrid3},
                                          {10, Layout::kGrid4},
                                          {16, Layout::kGrid4}})
        EXPECT_EQ(layout_for(cameras), layout) << cameras;
}

TEST(NvrecLayouts, UnknownNamesAreRefused)
{
    EXPECT_FALSE(layout_named("2x3"));
    EXPECT_FALSE(layout_named(""));
    EXPECT_EQ(output_mode_named("640x480"), nullptr);
}

} // namespace
