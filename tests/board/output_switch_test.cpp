/* output_switch_test.cpp - the output switch under live pictures: a GUI of the new size, video behind. */
#include "gui_reference.h"
#include "playback_session.h"

using namespace session;
using rig::look;
using rig::Picture;

namespace
{

constexpr int32_t kFurtherOutput = 2;

class OutputSwitchOnTheBoard : public Session
{
protected:
    static int32_t change_output(int32_t type, int32_t width, int32_t height)
    {
        return ext_change_output_device(&type, &width, &height);
    }

    static void expect_gui_size(uint32_t width, uint32_t height)
    {
        uint32_t info[6] = {};
        ASSERT_EQ(ext_get_fb_info(0, info), 0);
        EXPECT_EQ(info[0], width);
        EXPECT_EQ(info[1], height);
        EXPECT_EQ(info[2], width * 2); // bytes of a row
    }
};

bool is_plain(const Picture &picture, const gui_test::Video &colour)
{
    for (int i = 0; i < picture.width * picture.height; ++i)
        if (picture.luma()[i] != colour.y) return false;
    for (int i = 0; i < picture.width * picture.height / 4; ++i)
        if (picture.chroma(1)[i] != colour.u || picture.chroma(2)[i] != colour.v) return false;
    return true;
}

TEST_F(OutputSwitchOnTheBoard, GivesAFramebufferOfTheNewSizeWithVideoBehindIt)
{
    show_live(3);
    expect_gui_size(kWallWidth, kWallHeight);
    drawRect(0, 0, 500, 500, 0xFFFFFFFF);
    const Picture covered = look();
    const gui_test::Video red = gui_test::to_video({255, 0, 0, 255});
    uint32_t next = 3;
    for (const auto &[width, height] : {std::pair{1280, 720}, std::pair{800, 600}, std::pair{1920, 1080}}) {
        ASSERT_EQ(change_output(0, width, height), 0);
        expect_gui_size(static_cast<uint32_t>(width), static_cast<uint32_t>(height));
        const Picture before = look();
        EXPECT_FALSE(before == covered) << "the old GUI is gone";
        for (uint32_t channel = 0; channel < kCameras; ++channel)
            EXPECT_EQ(stamp_of(before, channel), (stamp::Stamp{channel, next - 1})) << channel;

        drawRect(width / 2, 0, width / 2, height / 2, 0xFFFF0000); // over pane 1 exactly
        const Picture with_gui = look();
        EXPECT_TRUE(is_plain(pane_of(with_gui, 1), red)) << width;
        for (uint32_t channel : {0u, 2u, 3u})
            EXPECT_EQ(pane_of(with_gui, channel), pane_of(before, channel)) << channel;

        for (uint32_t channel = 0; channel < kCameras; ++channel) { // and the video goes on
            ASSERT_EQ(send_live(channel, live_stream(channel).frames[next]), 0);
            settle(channel);
        }
        EXPECT_EQ(stamp_of(look(), 2), (stamp::Stamp{2, next}));
        EXPECT_TRUE(is_plain(pane_of(look(), 1), red)) << width;
        drawRect(0, 0, width, height, 0);
        EXPECT_EQ(stamp_of(look(), 1), (stamp::Stamp{1, next}));
        ++next;
    }
}

TEST_F(OutputSwitchOnTheBoard, ToTheSecondaryOutputKeepsTheMainPicture)
{
    show_live(2);
    ASSERT_EQ(change_output(3, 1024, 768), 0);
    EXPECT_EQ(globalVoDev, -1);
    expect_gui_size(1024, 768);
    for (uint32_t channel = 0; channel < kCameras; ++channel)
        EXPECT_EQ(stamp_of(look(), channel), (stamp::Stamp{channel, 1})) << channel;
}

/* The application used the further output and had the decoders bound there. */
TEST_F(OutputSwitchOnTheBoard, FromTheFurtherOutputBringsTheDecodersBack)
{
    show_live(2);
    for (uint32_t channel = 0; channel < kCameras; ++channel)
        ASSERT_EQ(rig::unbind(channel, channel), 0);
    globalVoDev = kFurtherOutput;
    vboard_set_loud(0); // that output was never started, and its ports cannot be stopped
    EXPECT_EQ(change_output(0, 1280, 720), 0);
    vboard_set_loud(1);
    EXPECT_EQ(globalVoDev, 0);
    for (uint32_t channel = 0; channel < kCameras; ++channel) {
        ASSERT_EQ(send_live(channel, live_stream(channel).frames[2]), 0);
        settle(channel);
    }
    for (uint32_t channel = 0; channel < kCameras; ++channel)
        EXPECT_EQ(stamp_of(look(), channel), (stamp::Stamp{channel, 2})) << channel;
}

/* A framebuffer that is not there is none of the switch's failures; one that cannot be read is. */
TEST_F(OutputSwitchOnTheBoard, FailsWithTheFramebufferAndTheNextOneWorks)
{
    show_live(2);
    ASSERT_EQ(vboard_fault_set("board_map", 1, 1, 0), 0);
    EXPECT_EQ(change_output(0, 1280, 720), -1);
    vboard_fault_clear("board_map");
    EXPECT_EQ(enNorm_vga, 9u) << "the choice stands";
    ASSERT_EQ(change_output(0, 1280, 720), 0);
    expect_gui_size(1280, 720);
    EXPECT_EQ(stamp_of(look(), 3), (stamp::Stamp{3, 1}));
}

/* Each leaves the old mapping and descriptor behind: an address space holds some dozens of them. */
TEST_F(OutputSwitchOnTheBoard, TwentySwitchesInARowWork)
{
    show_live(1);
    for (int i = 0; i < 20; ++i) {
        const int32_t width = i % 2 == 0 ? 1280 : 1920;
        ASSERT_EQ(change_output(0, width, width * 9 / 16), 0) << i;
    }
    expect_gui_size(1920, 1080);
    EXPECT_EQ(stamp_of(look(), 0), (stamp::Stamp{0, 0}));
}

} // namespace
