/* The record indicator's thread on the stepped clock: start and stop in every order. */
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "board_io.h"
#include "board_thread_refusal.h"
#include "input/key_state.h"
#include "keyboard_driver.h"
#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

constexpr int64_t kHalfPeriodUs = 500000;

void show_lamp()
{
    platform.describe_request(KEYBOARD_RECORD_LAMP, [](const void *value) {
        return std::to_string(*static_cast<const uint32_t *>(value));
    });
}

void step_half_period()
{
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    platform.step_us(kHalfPeriodUs);
    ASSERT_TRUE(platform.wait_for_sleepers(1));
}

} // namespace

TEST(RecordIndicator, BlinksDarkFirstEveryHalfSecond)
{
    show_lamp();
    EXPECT_EQ(hi_start_record_proc(), 0);
    for (int i = 0; i < 3; ++i)
        step_half_period();
    EXPECT_EQ(platform.calls(), trace(R"(
        board_open /dev/KeyBoard rdonly
        board_ioctl /dev/KeyBoard 0x6109 0
        board_sleep_us 500000
        board_ioctl /dev/KeyBoard 0x6109 1
        board_sleep_us 500000
        board_ioctl /dev/KeyBoard 0x6109 0
        board_sleep_us 500000
        board_ioctl /dev/KeyBoard 0x6109 1
        board_sleep_us 500000
    )"));
}

TEST(RecordIndicator, IsSteadyAfterStoppingAndNothingBlinksAnyMore)
{
    show_lamp();
    hi_start_record_proc();
    step_half_period();
    platform.forget();
    EXPECT_EQ(hi_stop_record_proc(), 0);
    platform.step_us(10 * kHalfPeriodUs);
    EXPECT_EQ(platform.calls(), "board_ioctl /dev/KeyBoard 0x6109 1");
}

TEST(RecordIndicator, StoppingWithoutBlinkingSendsNothing)
{
    EXPECT_EQ(hi_stop_record_proc(), 0);
    EXPECT_EQ(platform.calls(), "");
    hi_start_record_proc();
    EXPECT_EQ(hi_stop_record_proc(), 0);
    platform.forget();
    EXPECT_EQ(hi_stop_record_proc(), 0);
    EXPECT_EQ(platform.calls(), "");
}

TEST(RecordIndicator, StopsBeforeItsThreadHasRun)
{
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(hi_start_record_proc(), 0);
        EXPECT_EQ(hi_stop_record_proc(), 0);
    }
}

TEST(RecordIndicator, BlinksAgainAfterStopping)
{
    show_lamp();
    for (int i = 0; i < 3; ++i) {
        hi_start_record_proc();
        ASSERT_TRUE(platform.wait_for_sleepers(1));
        hi_stop_record_proc();
    }
    EXPECT_EQ(platform.calls({"board_open", "board_ioctl"}), trace(R"(
        board_open /dev/KeyBoard rdonly
        board_ioctl /dev/KeyBoard 0x6109 0
        board_ioctl /dev/KeyBoard 0x6109 1
        board_ioctl /dev/KeyBoard 0x6109 0
        board_ioctl /dev/KeyBoard 0x6109 1
        board_ioctl /dev/KeyBoard 0x6109 0
        board_ioctl /dev/KeyBoard 0x6109 1
    )"));
}

// The number printed is the local key thread's, not the blinker's.
TEST(RecordIndicator, StartingTwiceIsReportedAndAccepted)
{
    hi_start_record_proc();
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    nvrhal::localkeyThread = 4711;
    EXPECT_EQ(hi_start_record_proc(), 0);
    EXPECT_PRINTED_AS_ERROR("misc.c",
                            "not allow to create thread of layer=, there is still a thread 4711 running");
    step_half_period();
    EXPECT_EQ(platform.count("board_ioctl"), 2u); // one thread blinks, not two
}

TEST(RecordIndicator, NeedsAThread)
{
    for (const auto refused :
         {&thread_refusal::create, &thread_refusal::attr_init, &thread_refusal::attr_scope}) {
        *refused = true;
        platform.forget();
        EXPECT_EQ(hi_start_record_proc(), -1);
        EXPECT_PRINTED_AS_ERROR("misc.c", "fail to create thread # to show layer");
        *refused = false;
        EXPECT_EQ(hi_stop_record_proc(), 0);
        EXPECT_EQ(platform.calls(), "");
    }
}

TEST(RecordIndicator, StoppingReportsAPanelThatRefuses)
{
    hi_start_record_proc();
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    platform.node(KEYBOARD_NODE).ioctl(KEYBOARD_RECORD_LAMP).returns(-1);
    EXPECT_EQ(hi_stop_record_proc(), -1);
    platform.forget();
    EXPECT_EQ(hi_stop_record_proc(), 0); // the thread is gone all the same
}

TEST(RecordIndicator, EndsWithoutAPanel)
{
    platform.node(KEYBOARD_NODE).fails_to_open();
    EXPECT_EQ(hi_record_proc(nullptr), nullptr);
    int cancel_state = -1;
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &cancel_state);
    EXPECT_EQ(cancel_state, PTHREAD_CANCEL_ENABLE) << "the calling thread is as it was";
    EXPECT_PRINTED("Open BUTTON_irq dev error!");
    EXPECT_EQ(platform.calls(), "board_open /dev/KeyBoard rdonly");
}

TEST(RecordIndicator, BlinksOnDescriptorZero)
{
    platform.node(KEYBOARD_NODE).opens_as(0);
    EXPECT_EQ(hi_start_record_proc(), 0);
    step_half_period();
    EXPECT_EQ(platform.count("board_ioctl /dev/KeyBoard 0x6109"), 2u);
    EXPECT_EQ(hi_stop_record_proc(), 0);
}

TEST(RecordIndicator, AThreadThatFoundNoPanelStillCountsAsRunning)
{
    platform.script("board_open").once().returns(-1);
    hi_start_record_proc();
    while (recording::times_printed("[misc.c]-#: Open BUTTON_irq dev error!") == 0)
        std::this_thread::yield();
    EXPECT_EQ(hi_start_record_proc(), 0);
    EXPECT_EQ(platform.count("board_open"), 1u);
    EXPECT_EQ(hi_stop_record_proc(), -1) << "there is no lamp to light";
    EXPECT_EQ(platform.count("board_ioctl"), 1u);
}

TEST(RecordIndicator, SharesThePanelWithTheKeyCalls)
{
    ext_keyboard_initial();
    hi_start_record_proc();
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    EXPECT_EQ(platform.count("board_open"), 1u);
    ext_keyboard_close();
    step_half_period(); // goes on with the stale number
    EXPECT_EQ(platform.count("board_ioctl 3 0x6109"), 1u);
}

TEST(RecordIndicator, IsStartedAndStoppedFromTwoThreads)
{
    platform.ignore("board_");
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([i] {
            for (int round = 0; round < 200; ++round)
                (round + i) % 2 == 0 ? hi_start_record_proc() : hi_stop_record_proc();
        });
    for (std::thread &thread : threads)
        thread.join();
    hi_stop_record_proc();
    platform.forget();
    EXPECT_EQ(hi_stop_record_proc(), 0);
    hi_start_record_proc();
    EXPECT_TRUE(platform.wait_for_sleepers(1));
}

// Applications may run the blinker themselves, with cancelling switched off: it stays off.
TEST(RecordIndicator, KeepsTheCancelStateOfItsThread)
{
    pthread_t thread;
    ASSERT_EQ(pthread_create(
                  &thread, nullptr,
                  [](void *) -> void * {
                      pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
                      return hi_record_proc(nullptr);
                  },
                  nullptr),
              0);
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    pthread_cancel(thread);
    step_half_period();
    step_half_period();
    EXPECT_EQ(platform.count("board_ioctl /dev/KeyBoard 0x6109"), 3u);
    pthread_detach(thread);
}
