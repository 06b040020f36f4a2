/*
 * board_misuse_test.cpp - the control face and the nodes used the wrong way: refused with a line that
 * says why, and nobody hangs.
 */
#include <fcntl.h>

#include <cerrno>
#include <thread>

#include "board_io.h"
#include "board_rig.h"
#include "vboard_devices.h"

using namespace rig;

namespace
{

class Misuse : public Board
{
protected:
    void SetUp() override
    {
        Board::SetUp();
        vboard_set_loud(0);
    }
};

TEST_F(Misuse, ASecondLoanToTheSameThreadIsRefused)
{
    vboard_picture picture;
    EXPECT_EQ(vboard_display_borrow(0, nullptr), -1);
    EXPECT_EQ(vboard_display_borrow(3, &picture), -1);
    ASSERT_EQ(vboard_display_borrow(0, &picture), 0);
    EXPECT_EQ(vboard_display_borrow(0, &picture), -1);
    EXPECT_EQ(last_refusal(), "board: display device 0 is lent to this thread already");
    vboard_image image;
    EXPECT_EQ(vboard_display_capture(0, VBOARD_FORMAT_I420, &image), -1);
    EXPECT_EQ(vboard_monitor_capture(VBOARD_FORMAT_I420, &image), -1);
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    EXPECT_EQ(vboard_display_step(0), -1);
    ASSERT_EQ(vboard_display_borrow(1, &picture), 0) << "another device's picture";
    EXPECT_EQ(vboard_display_give_back(1), 0);
    EXPECT_EQ(vboard_display_give_back(0), 0);
    EXPECT_EQ(vboard_display_step(0), 0);
}

TEST_F(Misuse, ASecondBorrowerWaitsForTheFirst)
{
    vboard_picture picture;
    ASSERT_EQ(vboard_display_borrow(0, &picture), 0);
    std::atomic<bool> has_it{false};
    std::thread second([&] {
        vboard_picture own;
        EXPECT_EQ(vboard_display_borrow(0, &own), 0);
        has_it = true;
        EXPECT_EQ(vboard_display_give_back(0), 0);
    });
    EXPECT_FALSE(has_it);
    ASSERT_EQ(vboard_display_give_back(0), 0);
    second.join();
    EXPECT_TRUE(has_it);
}

TEST_F(Misuse, ImagesThatHoldTooFewBytesAreNotWritten)
{
    uint8_t bytes[12] = {};
    vboard_image image = {};
    image.width = image.height = 4;
    image.bytes = bytes;
    image.size = sizeof bytes;
    for (const uint32_t format : {VBOARD_FORMAT_I420, VBOARD_FORMAT_RGB24}) {
        image.format = format;
        EXPECT_EQ(vboard_image_save_png(&image, "/dev/null"), -1);
        EXPECT_NE(last_refusal().find("12 bytes are no picture of 4 x 4"), std::string::npos);
    }
    image.format = 7;
    EXPECT_EQ(vboard_image_save_png(&image, "/dev/null"), -1);
    EXPECT_EQ(vboard_image_save_png(nullptr, "/dev/null"), -1);
}

TEST_F(Misuse, TheClockMakesNoEndlessStep)
{
    vboard_clock_take();
    const int64_t before = vboard_clock_us();
    for (const int64_t step : {INT64_MAX, INT64_MIN, int64_t{-1}})
        EXPECT_EQ(vboard_clock_step_us(step), -1) << step;
    EXPECT_EQ(vboard_clock_us(), before);
    EXPECT_EQ(vboard_clock_step_us(0), 0);
}

TEST_F(Misuse, TheBatteryBackedClockStaysWithinItsYears)
{
    vboard_clock_take();
    vboard_rtc_set(INT64_MAX);
    EXPECT_EQ(vboard_rtc_get(), 253402300799); // the end of 9999
    vboard_rtc_set(INT64_MIN);
    EXPECT_EQ(vboard_rtc_get(), 0);
}

TEST_F(Misuse, NodesSayWhatTheyCannotDo)
{
    const int watchdog = board_open("/dev/watchdog", O_RDWR);
    const int panel = board_open("/dev/KeyBoard", O_RDWR);
    ASSERT_GE(watchdog, 0);
    ASSERT_GE(panel, 0);
    char byte = 0;
    errno = 0;
    EXPECT_EQ(board_read(watchdog, &byte, 1), -1);
    EXPECT_EQ(errno, ENOTTY);
    EXPECT_EQ(last_refusal(), "board_read: this node cannot be read");
    EXPECT_EQ(board_map(panel, 4096), nullptr);
    EXPECT_EQ(last_refusal(), "board_map: this node cannot be mapped");
    const uint64_t before = vboard_refusal_count();
    EXPECT_EQ(board_ioctl(watchdog, 0x12345, &byte), -1);
    EXPECT_EQ(vboard_refusal_count(), before + 1);
    EXPECT_EQ(board_close(watchdog), 0);
    EXPECT_EQ(board_close(panel), 0);
}

TEST_F(Misuse, AQueueNeedsADecoderThatExists)
{
    const auto depth_of = [](uint32_t channel, uint32_t port) {
        const MI_SYS_ChnPort end = {MI_MODULE_VDEC, 0, channel, port};
        return MI_SYS_SetChnOutputPortDepth(&end, 1, 2);
    };
    for (const uint32_t channel : {0u, 64u, 0xffffffffu})
        EXPECT_EQ(depth_of(channel, 0), code(MI_MODULE_SYS, MI_REASON_ABSENT)) << channel;
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    start_channel(0, MI_VDEC_CODEC_H264);
    EXPECT_EQ(depth_of(0, 0), MI_SUCCESS);
    EXPECT_EQ(depth_of(0, 1), code(MI_MODULE_SYS, MI_REASON_ABSENT));
}

/* A length that was never mapped would take memory of the PC away. */
TEST_F(Misuse, OnlyWhatWasMappedIsUnmapped)
{
    const int framebuffer = board_open("/dev/fb0", O_RDWR);
    ASSERT_GE(framebuffer, 0);
    void *memory = board_map(framebuffer, 8192);
    ASSERT_NE(memory, nullptr);
    for (const size_t size : {size_t{0}, size_t{4096}, size_t{1} << 30, SIZE_MAX}) {
        errno = 0;
        EXPECT_EQ(board_unmap(memory, size), -1) << size;
        EXPECT_EQ(errno, EINVAL);
    }
    static_cast<volatile char *>(memory)[8191] = 1; // still there
    EXPECT_EQ(board_unmap(memory, 8192), 0);
    EXPECT_EQ(board_unmap(memory, 8192), -1);
    EXPECT_EQ(board_close(framebuffer), 0);
}

/* A chip does not clear its memory: an application that forgets to would show what was there. */
TEST_F(Misuse, FramebufferMemoryIsNotClearAtPowerOn)
{
    constexpr size_t kSize = 8192;
    const int framebuffer = board_open("/dev/fb0", O_RDWR);
    auto *memory = static_cast<uint8_t *>(board_map(framebuffer, kSize));
    ASSERT_NE(memory, nullptr);
    for (size_t at = 0; at < kSize; ++at)
        ASSERT_EQ(memory[at], 0xA7) << at;
    memory[kSize - 1] = 5;
    ASSERT_EQ(board_unmap(memory, kSize), 0);
    memory = static_cast<uint8_t *>(board_map(framebuffer, kSize));
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(memory[kSize - 1], 5) << "it keeps what was written";
    EXPECT_EQ(board_unmap(memory, kSize), 0);
    EXPECT_EQ(board_close(framebuffer), 0);
}

TEST_F(Misuse, WaitingForEventsEndsWhenTheTransmitterIsShutDown)
{
    // The callback holds the first event until the second waits behind it.
    static std::atomic<bool> go;
    go = false;
    static std::atomic<bool> inside;
    inside = false;
    const MI_HDMI_InitParam param = {[](uint32_t, uint32_t, void *, void *) -> int32_t {
                                         inside = true;
                                         inside.notify_all();
                                         go.wait(false);
                                         return 0;
                                     },
                                     nullptr};
    ASSERT_EQ(MI_HDMI_Init(&param), MI_SUCCESS);
    vboard_monitor_unplug();
    inside.wait(false);
    vboard_monitor_plug();
    EXPECT_EQ(vboard_monitor_wait_events(0), -1);
    std::thread waiter([] { EXPECT_EQ(vboard_monitor_wait_events(kPatience_ms), 0); });
    EXPECT_EQ(MI_HDMI_DeInit(), MI_SUCCESS); // the second event is forgotten
    go = true;
    go.notify_all();
    waiter.join();
}

} // namespace
