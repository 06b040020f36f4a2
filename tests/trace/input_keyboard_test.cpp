/* Opening and closing the front panel, the key threads' bookkeeping, and the mouse event. */
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <thread>

#include "board_io.h"
#include "board_thread_refusal.h"
#include "input/key_state.h"
#include "input_remote_reader.h"

using recording::platform;
using recording::trace;

namespace
{

void *sleep_for_ever(void *)
{
    for (;;)
        board_sleep_us(1000000);
}

/* Ends only when it is cancelled, and says so. */
void *sleep_until_cancelled(void *ended)
{
    pthread_cleanup_push([](void *flag) { static_cast<std::atomic<bool> *>(flag)->store(true); }, ended);
    sleep_for_ever(nullptr);
    pthread_cleanup_pop(0);
    return nullptr;
}

pthread_t sleeping_thread()
{
    pthread_t thread = 0;
    EXPECT_EQ(pthread_create(&thread, nullptr, sleep_for_ever, nullptr), 0);
    return thread;
}

} // namespace

TEST(Keyboard, OpensThePanelAndEmptiesTheQueue)
{
    key_que.read_index = 5;
    key_que.write_index = 9;
    EXPECT_EQ(ext_keyboard_initial(), 0);
    EXPECT_EQ(platform.calls(), "board_open /dev/KeyBoard rdonly");
    EXPECT_EQ(key_que.read_index, 0u);
    EXPECT_EQ(key_que.write_index, 0u);
    EXPECT_PRINTED_IN_ORDER(R"(
        EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEmisc.c,ext_keyboard_initial,#
        Open hi_stop_record_proc dev ok!)");
    EXPECT_PRINTED_WITHOUT_PREFIX("Open hi_stop_record_proc dev ok!");
}

TEST(Keyboard, OpensThePanelOnce)
{
    EXPECT_EQ(ext_keyboard_initial(), 0);
    EXPECT_EQ(ext_keyboard_initial(), 0);
    EXPECT_EQ(platform.count("board_open"), 1u);
}

TEST(Keyboard, GoesOnWithoutAPanel)
{
    platform.node("/dev/KeyBoard").fails_to_open();
    key_que.read_index = 5;
    key_que.write_index = 9;
    EXPECT_EQ(ext_keyboard_initial(), 0);
    EXPECT_EQ(key_que.read_index, 0u);
    EXPECT_EQ(key_que.write_index, 0u);
    EXPECT_PRINTED_AS_ERROR("misc.c", "Open BUTTON_irq dev error!");
    EXPECT_PRINTED("Open hi_stop_record_proc dev ok!");
}

TEST(Keyboard, FailsWithoutThreadAttributes)
{
    for (const auto refused : {&thread_refusal::attr_init, &thread_refusal::attr_scope,
                               &thread_refusal::attr_detach, &thread_refusal::attr_destroy}) {
        *refused = true;
        platform.forget();
        EXPECT_EQ(hi_start_key_proc(), -1);
        EXPECT_EQ(ext_keyboard_initial(), -1);
        EXPECT_PRINTED_AS_ERROR("misc.c", "Open hi_stop_record_proc dev error!");
        EXPECT_NOT_PRINTED("Open hi_stop_record_proc dev ok!");
        *refused = false;
    }
    EXPECT_EQ(hi_start_key_proc(), 0);
}

TEST(Keyboard, WorksOnDescriptorZero)
{
    platform.node("/dev/KeyBoard").opens_as(0);
    EXPECT_EQ(ext_keyboard_initial(), 0);
    EXPECT_NOT_PRINTED("Open BUTTON_irq dev error!");
    uint32_t event[5] = {};
    EXPECT_EQ(ext_keyboard_value(event), -1);
    EXPECT_EQ(platform.count("board_ioctl /dev/KeyBoard 0x610a"), 1u);
    EXPECT_EQ(ext_keyboard_initial(), 0);
    EXPECT_EQ(platform.count("board_open"), 1u);
    ext_keyboard_close();
    EXPECT_EQ(platform.count("board_close /dev/KeyBoard"), 1u);
}

TEST(Keyboard, ClosesAReceiverOnDescriptorZero)
{
    platform.node("/dev/Hi_IR").opens_as(0);
    input_test::RemoteReader().run();
    EXPECT_EQ(ext_keyboard_close(), 0);
    EXPECT_EQ(platform.count("board_close /dev/Hi_IR"), 1u);
    EXPECT_EQ(nvrhal::remoteFd, -1);
}

TEST(Keyboard, ClosingStopsTheKeyThreads)
{
    nvrhal::localkeyThread = sleeping_thread();
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    ext_keyboard_close();
    EXPECT_EQ(nvrhal::localkeyThread, 0u);
}

TEST(Keyboard, ClosesThePanelAndTheReceiver)
{
    ext_keyboard_initial();
    input_test::RemoteReader().run(); // opens the receiver
    platform.forget();
    EXPECT_EQ(ext_keyboard_close(), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        board_close /dev/KeyBoard
        board_close /dev/Hi_IR
    )"));
    EXPECT_PRINTED("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEmisc.c,ext_keyboard_close,#");
    EXPECT_EQ(nvrhal::remoteFd, -1);
}

TEST(Keyboard, ClosingGivesTheReceiversResult)
{
    input_test::RemoteReader().run();
    platform.script("board_close").with("/dev/Hi_IR").returns(-5);
    EXPECT_EQ(ext_keyboard_close(), -5);
}

TEST(Keyboard, ClosingWithoutAReceiverFails)
{
    EXPECT_EQ(ext_keyboard_close(), -1);
    EXPECT_EQ(platform.calls(), "");
    ext_keyboard_initial();
    platform.forget();
    EXPECT_EQ(ext_keyboard_close(), -1);
    EXPECT_EQ(platform.calls(), "board_close /dev/KeyBoard");
}

// The panel's descriptor is not reset when it is closed.
TEST(Keyboard, PollsTheClosedDescriptorAfterClosing)
{
    platform.node("/dev/KeyBoard").opens_as(33);
    ext_keyboard_initial();
    ext_keyboard_close();
    platform.forget();
    uint32_t event[5] = {};
    EXPECT_EQ(ext_keyboard_value(event), -1);
    EXPECT_EQ(platform.calls({"board_open"}), "");
    EXPECT_EQ(platform.count("board_ioctl 33 0x610a"), 1u);
    ext_keyboard_initial();
    EXPECT_EQ(platform.count("board_open"), 0u);
}

TEST(KeyThreads, StartingPreparesAThreadAndCreatesNone)
{
    thread_refusal::create = true; // would show
    EXPECT_EQ(hi_start_key_proc(), 0);
    EXPECT_EQ(nvrhal::localkeyThread, 0u);
    EXPECT_EQ(nvrhal::remotekeyThread, 0u);
}

TEST(KeyThreads, StartingIsRefusedOnlyWhenBothRun)
{
    nvrhal::localkeyThread = 4711;
    EXPECT_EQ(hi_start_key_proc(), 0);
    EXPECT_EQ(recording::printed_text(), "");
    nvrhal::remotekeyThread = 4712;
    EXPECT_EQ(hi_start_key_proc(), 0);
    EXPECT_PRINTED_AS_ERROR("misc.c",
                            "not allow to create thread of layer=, there is still a thread 4711 running");
}

TEST(KeyThreads, StoppingWaitsForTheLocalThreadsEnd)
{
    std::atomic<bool> ended{false};
    ASSERT_EQ(pthread_create(&nvrhal::localkeyThread, nullptr, sleep_until_cancelled, &ended), 0);
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    hi_stop_key_proc();
    EXPECT_EQ(thread_refusal::joined, 1u);
    EXPECT_TRUE(ended.load());
    EXPECT_EQ(nvrhal::localkeyThread, 0u);
}

// The test of the remote handle stands the other way round: a thread that runs is left running.
TEST(KeyThreads, StoppingLeavesTheRemoteThreadRunning)
{
    const pthread_t remote = sleeping_thread();
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    nvrhal::remotekeyThread = remote;
    hi_stop_key_proc();
    EXPECT_EQ(nvrhal::remotekeyThread, remote);
    EXPECT_EQ(pthread_kill(remote, 0), 0);
    EXPECT_TRUE(platform.wait_for_sleepers(1));
    pthread_cancel(remote);
    pthread_join(remote, nullptr);
}

TEST(KeyThreads, StoppingWithoutThreadsDoesNothing)
{
    hi_stop_key_proc();
    EXPECT_EQ(nvrhal::localkeyThread, 0u);
    EXPECT_EQ(nvrhal::remotekeyThread, 0u);
    translateKey();
    hi_localkey_proc();
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(Mouse, HandsAnEventOutOnce)
{
    const uint32_t sent[5] = {1, 0x80000000, 0xFFFFFFFF, 4, 5};
    std::copy(std::begin(sent), std::end(sent), g_s32KeyValue);
    g_bMouseEvent = 7; // any value but 0
    std::array<uint32_t, 5> event = {};
    EXPECT_EQ(ext_mouse_get_status(event.data()), 0);
    EXPECT_TRUE(std::equal(std::begin(sent), std::end(sent), event.begin()));
    EXPECT_EQ(g_bMouseEvent, 0u);
    event = {9, 9, 9, 9, 9};
    EXPECT_EQ(ext_mouse_get_status(event.data()), -1);
    EXPECT_EQ(event, (std::array<uint32_t, 5>{9, 9, 9, 9, 9}));
    EXPECT_EQ(recording::times_printed("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEmouse.c,ext_mouse_get_status,#"),
              2u);
}

/* Its writer holds the lock while it fills the slot; so does whoever takes it. */
TEST(Mouse, HandsEventsOutWhole)
{
    constexpr uint32_t kEvents = 2000;
    std::atomic<bool> done{false};
    std::thread writer([&] {
        for (uint32_t i = 1; i <= kEvents; ++i) {
            pthread_mutex_lock(&g_mouse_lock);
            std::fill(std::begin(g_s32KeyValue), std::end(g_s32KeyValue), i);
            g_bMouseEvent = 1;
            pthread_mutex_unlock(&g_mouse_lock);
        }
        done.store(true);
    });
    uint32_t last = 0;
    for (bool last_look = false; !last_look;) {
        last_look = done.load();
        std::array<uint32_t, 5> event = {};
        if (ext_mouse_get_status(event.data()) != 0) continue;
        EXPECT_EQ(std::count(event.begin(), event.end(), event[0]), 5);
        EXPECT_GT(event[0], last);
        last = event[0];
    }
    writer.join();
    EXPECT_EQ(last, kEvents);
}

TEST(Mouse, IsNotOpenedByTheLibrary)
{
    EXPECT_EQ(g_mouse_fd, -1);
    EXPECT_EQ(ext_mouse_get_status(nullptr), -1);
    EXPECT_EQ(platform.calls(), "");
}

TEST(Mouse, ANullRecordLeavesTheEventWaiting)
{
    g_bMouseEvent = 1;
    EXPECT_EQ(ext_mouse_get_status(nullptr), -1);
    EXPECT_EQ(g_bMouseEvent, 1u);
}
