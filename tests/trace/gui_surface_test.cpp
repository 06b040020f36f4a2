/* What the application asks of the framebuffer: geometry, job brackets, words of its own. */
#include <gtest/gtest.h>

#include "gui_screen.h"

using gui_test::plug_framebuffer;
using gui_test::Screen;
using recording::platform;

namespace
{

std::string entry_trace(const char *function)
{
    return std::string("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEfb.c,") + function + ",#";
}

} // namespace

TEST(Surface, EveryCallPrintsItsEntry)
{
    plug_framebuffer();
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    uint32_t info[6], words[3];
    EXPECT_EQ(ext_get_fb_info(0, info), 0);
    EXPECT_EQ(ext_app_buf_addr(&words[0], &words[1], &words[2]), 0);
    EXPECT_EQ(ext_fb_copy(), 0);
    EXPECT_EQ(ext_fb_quick_fill(), 0);
    EXPECT_EQ(ext_tde_begin_job(), 0);
    EXPECT_EQ(ext_tde_end_job(), 0);
    for (const char *function : {"ext_get_fb_info", "ext_app_buf_addr", "ext_fb_copy", "ext_fb_quick_fill",
                                 "ext_tde_begin_job", "ext_tde_end_job"}) {
        EXPECT_PRINTED(entry_trace(function));
        EXPECT_EQ(recording::times_printed(entry_trace(function)), 1u) << function;
    }
}

// The record is zero at load, and 0 counts as an open descriptor.
TEST(Surface, CountsAsOpenBeforeItWasEverSetUp)
{
    EXPECT_EQ(ext_tde_begin_job(), 0);
    EXPECT_EQ(ext_fb_copy(), 0);
    EXPECT_EQ(platform.calls(), "");
}

TEST(Surface, WithoutADeviceJobsFail)
{
    platform.node("/dev/fb0").fails_to_open();
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    platform.forget();
    EXPECT_EQ(ext_tde_begin_job(), -1);
    EXPECT_PRINTED_AS_ERROR("fb.c", "++++>>>>>>g_osd_info FrameBufferFd is NULL");
    EXPECT_EQ(ext_fb_copy(), -1);
    EXPECT_EQ(ext_fb_quick_fill(), 0);
    recording::forget_printed();
    EXPECT_EQ(ext_tde_end_job(), -1);
    EXPECT_EQ(recording::printed_lines().size(), 1u) << "nothing but the entry";
    EXPECT_EQ(platform.calls(), "");
}

TEST(Surface, EndOfAJobPansToTheTop)
{
    Screen screen;
    screen.x_offset = 5;
    screen.y_offset = 77;
    plug_framebuffer(screen);
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    platform.forget();
    EXPECT_EQ(ext_tde_begin_job(), 0);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(ext_tde_end_job(), 0);
    EXPECT_EQ(platform.calls(), "board_ioctl /dev/fb0 0x4606 {5 0}");
    EXPECT_EQ(g_osd_info.variable.yoffset, 0u);
}

TEST(Surface, APanningThatFailsIsLogged)
{
    plug_framebuffer();
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    platform.node("/dev/fb0").ioctl(FBIOPAN_DISPLAY).returns(-7);
    EXPECT_EQ(ext_tde_end_job(), -1);
    EXPECT_PRINTED_AS_ERROR("fb.c", "FBIOPAN_DISPLAY failed!");
    platform.node("/dev/fb0").ioctl(FBIOPAN_DISPLAY).returns(4);
    EXPECT_EQ(ext_tde_end_job(), 0) << "only a negative result is a failure";
}

TEST(Surface, InformationHasSixWords)
{
    plug_framebuffer();
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    uint32_t info[7] = {1, 1, 1, 1, 1, 1, 0xCAFE};
    EXPECT_EQ(ext_get_fb_info(3, info), 0);
    EXPECT_EQ(info[0], 1280u);
    EXPECT_EQ(info[1], 720u);
    EXPECT_EQ(info[2], 2560u);
    EXPECT_EQ(info[3], 2u);
    EXPECT_EQ(info[4], static_cast<uint32_t>(reinterpret_cast<uintptr_t>(g_osd_info.mapped_address)));
    EXPECT_EQ(info[5], 0x2F000000u);
    EXPECT_EQ(info[6], 0xCAFEu);
    EXPECT_EQ(ext_get_fb_info(3, nullptr), 0);
}

TEST(Surface, ReportsTwoBytesAPixelWhateverTheDepth)
{
    for (uint32_t bits : {16u, 24u, 32u}) {
        Screen screen;
        screen.bits = bits;
        screen.memory = 5120 * 720;
        plug_framebuffer(screen);
        EXPECT_EQ(fb_init(0, 1280, 720), 0);
        uint32_t info[6];
        EXPECT_EQ(ext_get_fb_info(0, info), 0);
        EXPECT_EQ(info[3], 2u) << bits;
    }
}

TEST(Surface, ReportsTheApplicationsBufferWords)
{
    uint32_t first = 9, second = 9, third = 9;
    EXPECT_EQ(ext_app_buf_addr(&first, &second, &third), 0);
    EXPECT_EQ(first, 0u);
    EXPECT_EQ(second, 0u);
    EXPECT_EQ(third, 0u);

    g_osd_info.app_buffer_first = 11;
    g_osd_info.app_buffer_second = 22;
    g_osd_info.app_buffer_third = 33;
    EXPECT_EQ(ext_app_buf_addr(&first, nullptr, &third), 0);
    EXPECT_EQ(first, 11u);
    EXPECT_EQ(second, 0u);
    EXPECT_EQ(third, 33u);
    EXPECT_EQ(ext_app_buf_addr(nullptr, &second, nullptr), 0);
    EXPECT_EQ(second, 22u);
}

TEST(PhysicalMemory, IsOpenedOnce)
{
    platform.node("/dev/mem").opens_as(21);
    EXPECT_EQ(memopen(), 21);
    EXPECT_EQ(memopen(), 21);
    EXPECT_EQ(platform.calls(), "board_open /dev/mem rdwr+sync+creat");
}

TEST(PhysicalMemory, DescriptorZeroIsAFailure)
{
    platform.node("/dev/mem").opens_as(0);
    EXPECT_EQ(memopen(), -1);
    platform.node("/dev/mem").fails_to_open();
    EXPECT_EQ(memopen(), -1);
    platform.node("/dev/mem").opens_as(30);
    EXPECT_EQ(memopen(), 30) << "a failure is not kept";
    EXPECT_EQ(platform.count("board_open"), 3u);
}
