/*
 * The library on the virtual board's peripherals: what it drives is seen from the control face, and
 * what happens there reaches the library. All waiting is on the stepped board clock.
 */
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <array>
#include <thread>

#include "ad_driver.h"
#include "board_io.h"
#include "ir_driver.h"
#include "mouse_driver.h"
#include "nvrhal.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace
{

constexpr int32_t kPatience_ms = 10000;
constexpr int64_t kSecond_us = 1000000;
constexpr uint32_t kPlay = 0x649BFF00; // key 105
constexpr uint32_t kMenu = 0x659AFF00; // key 109

class Peripherals : public testing::Test
{
protected:
    void SetUp() override { vboard_clock_take(); }

    static void step_us(int64_t microseconds) { ASSERT_EQ(vboard_clock_step_us(microseconds), 0); }
    static void wait_sleepers(uint32_t count)
    {
        ASSERT_EQ(vboard_clock_wait_sleepers(count, kPatience_ms), 0);
    }
};

using Watchdog = Peripherals;
using Indicator = Peripherals;
using Remote = Peripherals;
using Threads = Peripherals;
using Rtc = Peripherals;
using Analog = Peripherals;
using Mouse = Peripherals;

/* Their set-up sleeps a millisecond on the test's own thread: the clock runs. */
class Lines : public testing::Test
{
};

vboard_watchdog_stat watchdog()
{
    vboard_watchdog_stat stat;
    EXPECT_EQ(vboard_watchdog_get_stat(&stat), 0);
    return stat;
}

vboard_panel_stat panel()
{
    vboard_panel_stat stat;
    EXPECT_EQ(vboard_panel_get_stat(&stat), 0);
    return stat;
}

std::array<int32_t, 9> read_clock()
{
    std::array<int32_t, 9> tm = {};
    EXPECT_EQ(ext_rtc_time_system(tm.data(), 0), 0);
    return tm;
}

void *run_remote_reader(void *)
{
    hi_remotekey_proc();
    return nullptr;
}

/* Keys in the queue; the reader's thread sleeps in its read. */
uint32_t queued()
{
    pthread_mutex_lock(&g_key_lock);
    const uint32_t count = key_que.write_index;
    pthread_mutex_unlock(&g_key_lock);
    return count;
}

} // namespace

TEST_F(Watchdog, RunsForAHundredSecondsAndIsSeenToExpire)
{
    ASSERT_EQ(local_wdg_init(), 0u);
    EXPECT_EQ(watchdog().enabled, 1u);
    EXPECT_EQ(watchdog().timeout_s, 100u);
    EXPECT_EQ(watchdog().feeds, 1u);
    step_us(100 * kSecond_us - 1);
    EXPECT_EQ(watchdog().expired, 0u);
    EXPECT_EQ(watchdog().remaining_us, 1);
    EXPECT_EQ(vboard_watchdog_wait_expired(0), -1);
    std::thread clock([] { vboard_clock_step_us(1); });
    EXPECT_EQ(vboard_watchdog_wait_expired(kPatience_ms), 0);
    clock.join();
    EXPECT_EQ(watchdog().expired, 1u);
    EXPECT_EQ(watchdog().boot_reason, static_cast<uint32_t>(VBOARD_BOOT_POWER));
    vboard_reset();
    EXPECT_EQ(watchdog().boot_reason, static_cast<uint32_t>(VBOARD_BOOT_WATCHDOG));
    EXPECT_EQ(watchdog().expired, 0u);
    vboard_reset();
    EXPECT_EQ(watchdog().boot_reason, static_cast<uint32_t>(VBOARD_BOOT_POWER));
}

TEST_F(Watchdog, IsKeptQuietByTheFeedingThreadUntilTheFlagIsCleared)
{
    ASSERT_EQ(local_wdg_init(), 0u);
    ASSERT_EQ(local_wdg_set_timeout(5), 0);
    Set_Wdt_Fing(1);
    ASSERT_EQ(wdt_feed_pt(), 0);
    for (int i = 0; i < 20; ++i) {
        wait_sleepers(1);
        step_us(3 * kSecond_us);
    }
    wait_sleepers(1);
    EXPECT_EQ(watchdog().expired, 0u);
    EXPECT_EQ(watchdog().feeds, 22u);
    Set_Wdt_Fing(0);
    step_us(3 * kSecond_us);
    wait_sleepers(1); // the thread's last 100 microseconds
    step_us(2 * kSecond_us);
    EXPECT_EQ(watchdog().expired, 1u);
}

TEST_F(Watchdog, DoesNotExpireWhileItIsSwitchedOff)
{
    ASSERT_EQ(local_wdg_init(), 0u);
    EXPECT_EQ(ext_wdg_set(0), 1u);
    step_us(1000 * kSecond_us);
    EXPECT_EQ(watchdog().expired, 0u);
    EXPECT_EQ(ext_wdg_set(1), 1u);
    step_us(100 * kSecond_us);
    EXPECT_EQ(watchdog().expired, 1u);
}

TEST_F(Lines, AreSetUpAndLoggedInOrder)
{
    ASSERT_EQ(local_gpio_init(), 0);
    EXPECT_EQ(vboard_gpio_level(25), 0);
    EXPECT_EQ(vboard_gpio_level(26), 0);
    for (const uint32_t line : {28u, 34u, 90u})
        EXPECT_EQ(vboard_gpio_level(line), 1) << line;
    EXPECT_EQ(vboard_gpio_level(27), -1);
    constexpr uint32_t kOrder[][3] = {{25, 1, 1}, {25, 0, 0}, {28, 1, 1}, {26, 1, 1},
                                      {26, 0, 1}, {90, 1, 1}, {34, 1, 1}};
    ASSERT_EQ(vboard_gpio_change_count(), 7u);
    for (uint32_t i = 0; i < 7; ++i) {
        vboard_gpio_change change;
        ASSERT_EQ(vboard_gpio_get_change(i, &change), 0);
        EXPECT_EQ(change.line, kOrder[i][0]);
        EXPECT_EQ(change.value, kOrder[i][1]);
        EXPECT_EQ(change.configured, kOrder[i][2]);
    }
    EXPECT_EQ(ext_buzzer_set(0), 0);
    EXPECT_EQ(vboard_gpio_level(28), 0);
}

TEST_F(Lines, RefuseToBeDrivenBeforeTheirSetUp)
{
    ASSERT_EQ(local_gpio_init(), 0);
    vboard_reset(); // closes the descriptor too
    EXPECT_EQ(ext_buzzer_set(1), -1);
    EXPECT_EQ(vboard_gpio_level(28), -1);
}

TEST_F(Indicator, BlinksThePanelsLampAndLeavesItLit)
{
    ASSERT_EQ(hi_start_record_proc(), 0);
    wait_sleepers(1);
    EXPECT_EQ(panel().record_lamp, 0u);
    for (uint32_t i = 1; i <= 4; ++i) {
        step_us(500000);
        wait_sleepers(1);
        EXPECT_EQ(panel().record_lamp, i % 2) << i;
        EXPECT_EQ(panel().lamp_changes, i);
    }
    EXPECT_EQ(hi_stop_record_proc(), 0); // the clock stands still: the thread is ended in its sleep
    EXPECT_EQ(panel().record_lamp, 1u);
    step_us(10 * kSecond_us);
    EXPECT_EQ(panel().lamp_changes, 5u);
}

TEST_F(Indicator, TellsThePanelAboutPolls)
{
    ASSERT_EQ(ext_keyboard_initial(), 0);
    uint32_t event[5];
    EXPECT_EQ(ext_keyboard_value(event), -1);
    EXPECT_EQ(ext_keyboard_value(event), -1);
    EXPECT_EQ(panel().empty_polls, 2u);
    EXPECT_EQ(panel().keys_taken, 0u);
}

/*
 * The library's three threads, started in every order and stopped in every order: whichever still
 * runs works on, and one that was stopped does nothing any more. The IR poll has no stop: it runs
 * to the end beside the others.
 */
TEST_F(Threads, StartAndStopInEveryOrder)
{
    enum { kBlinker, kFeeder, kPoll };
    ASSERT_EQ(local_wdg_init(), 0u);
    g_S32Irfd = board_open(IR_NODE, 0);
    std::array<int, 3> starts = {kBlinker, kFeeder, kPoll};
    bool polls = false;
    do {
        for (const int first_stopped : {kBlinker, kFeeder}) {
            uint32_t running = polls ? 1 : 0;
            for (const int thread : starts) {
                if (thread == kPoll && polls) continue; // it is started once
                switch (thread) {
                case kBlinker: ASSERT_EQ(hi_start_record_proc(), 0); break;
                case kFeeder:
                    Set_Wdt_Fing(1);
                    ASSERT_EQ(wdt_feed_pt(), 0);
                    break;
                default: ASSERT_EQ(localKey_init(), 1); polls = true;
                }
                wait_sleepers(++running);
            }
            bool blinks = true, feeds = true;
            for (const int stopped : {first_stopped, kBlinker + kFeeder - first_stopped}) {
                const uint32_t lamp_changes = panel().lamp_changes, fed = watchdog().feeds;
                for (int i = 0; i < 6; ++i) { // half seconds: a whole period of the feeder
                    step_us(500000);
                    wait_sleepers(running);
                }
                EXPECT_EQ(panel().lamp_changes - lamp_changes, blinks ? 6u : 0u);
                EXPECT_EQ(watchdog().feeds - fed, feeds ? 1u : 0u);
                if (stopped == kBlinker) {
                    EXPECT_EQ(hi_stop_record_proc(), 0);
                    blinks = false;
                } else {
                    Set_Wdt_Fing(0);
                    step_us(3 * kSecond_us); // the flag is looked at when the feeder wakes ...
                    wait_sleepers(running);
                    step_us(1000); // ... and then it sleeps a last time
                    feeds = false;
                }
                --running;
                if (running > 0) wait_sleepers(running);
            }
            const uint32_t lamp_changes = panel().lamp_changes, fed = watchdog().feeds;
            EXPECT_EQ(panel().record_lamp, 1u) << "lit when it does not blink";
            step_us(10 * kSecond_us);
            EXPECT_EQ(panel().lamp_changes, lamp_changes);
            EXPECT_EQ(watchdog().feeds, fed);

            vboard_ir_press(kPlay);
            for (int i = 0; i < 3; ++i) {
                wait_sleepers(1);
                step_us(200000); // longer than the poll's pause and its wait for a frame
            }
            wait_sleepers(1);
            EXPECT_EQ(__atomic_load_n(&key.code, __ATOMIC_RELAXED), 105u);
            __atomic_store_n(&key.code, 0, __ATOMIC_RELAXED);
        }
    } while (std::next_permutation(starts.begin(), starts.end()));
    EXPECT_EQ(watchdog().expired, 0u);
}

TEST_F(Remote, APressIsOneKeyAndAHeldButtonRepeatsEvery108Milliseconds)
{
    pthread_t reader;
    ASSERT_EQ(pthread_create(&reader, nullptr, run_remote_reader, nullptr), 0);
    wait_sleepers(1);
    vboard_ir_press(kPlay);
    while (queued() < 1)
        std::this_thread::yield();
    wait_sleepers(1);
    step_us(108000);
    wait_sleepers(1);
    EXPECT_EQ(queued(), 1u);

    vboard_ir_hold(kMenu);
    while (queued() < 2)
        std::this_thread::yield();
    for (uint32_t repeats = 1; repeats <= 5; ++repeats) {
        wait_sleepers(1);
        step_us(108000);
        wait_sleepers(1);
        EXPECT_EQ(queued(), 2 + repeats);
    }
    vboard_ir_release();
    wait_sleepers(1);
    pthread_cancel(reader);
    pthread_join(reader, nullptr);

    uint32_t event[5] = {};
    EXPECT_EQ(ext_keyboard_value(event), 0);
    EXPECT_EQ(event[2], 105u);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(ext_keyboard_value(event), 0);
        EXPECT_EQ(event[2], 109u);
    }
    EXPECT_EQ(ext_keyboard_value(event), -1);
    EXPECT_EQ(panel().keys_taken, 7u);
}

TEST_F(Remote, TheLocalReaderSeesTheButtonToo)
{
    g_S32Irfd = board_open(IR_NODE, 0);
    vboard_ir_press(kPlay);
    LocalKey status = {};
    EXPECT_EQ(local_irkey_status_get(&status), 0);
    EXPECT_EQ(status.valid, 1u);
    EXPECT_EQ(status.code, 105u);
    EXPECT_EQ(local_irkey_status_get(&status), 0); // let go: another state, the record stays
    EXPECT_EQ(status.code, 105u);
    vboard_ir_send(0x12345678, 0);
    EXPECT_EQ(local_irkey_status_get(&status), 0);
    EXPECT_EQ(status.valid, 0u);
    EXPECT_EQ(status.code, 122u);
}

TEST_F(Rtc, IsReadBackAcrossMonthsAndLeapYears)
{
    constexpr struct {
        std::array<int32_t, 6> set, then; // second to year; one second later
        int32_t week_day, year_day;       // of the later one
    } kTurns[] = {
        {{59, 59, 23, 28, 2, 2023}, {0, 0, 0, 1, 3, 2023}, 3, 59},
        {{59, 59, 23, 28, 2, 2024}, {0, 0, 0, 29, 2, 2024}, 4, 59},
        {{59, 59, 23, 29, 2, 2024}, {0, 0, 0, 1, 3, 2024}, 5, 60},
        {{59, 59, 23, 28, 2, 2000}, {0, 0, 0, 29, 2, 2000}, 2, 59},
        {{59, 59, 23, 28, 2, 2100}, {0, 0, 0, 1, 3, 2100}, 1, 59},
        {{59, 59, 23, 30, 4, 2026}, {0, 0, 0, 1, 5, 2026}, 5, 120},
        {{59, 59, 23, 31, 12, 1999}, {0, 0, 0, 1, 1, 2000}, 6, 0},
        {{59, 59, 23, 31, 12, 2037}, {0, 0, 0, 1, 1, 2038}, 5, 0},
    };
    for (const auto &turn : kTurns) {
        std::array<int32_t, 9> tm = {};
        std::copy(turn.set.begin(), turn.set.end(), tm.begin());
        ASSERT_EQ(ext_rtc_time_system(tm.data(), 1), 0);
        std::array<int32_t, 9> read = read_clock();
        EXPECT_TRUE(std::equal(turn.set.begin(), turn.set.end(), read.begin())) << turn.set[5];
        step_us(kSecond_us);
        read = read_clock();
        EXPECT_TRUE(std::equal(turn.then.begin(), turn.then.end(), read.begin())) << turn.set[5];
        EXPECT_EQ(read[6], turn.week_day) << turn.set[5];
        EXPECT_EQ(read[7], turn.year_day) << turn.set[5];
    }
}

TEST_F(Rtc, RefusesDatesThatDoNotExist)
{
    constexpr int32_t kBad[][6] = {{0, 0, 0, 29, 2, 2023}, {0, 0, 0, 31, 4, 2024}, {60, 0, 0, 1, 1, 2024},
                                   {0, 0, 24, 1, 1, 2024}, {0, 0, 0, 1, 13, 2024}, {0, 0, 0, 1, 0, 2024},
                                   {0, 0, 0, 0, 1, 2024},  {0, 0, 0, 1, 1, 1969}};
    vboard_rtc_set(1700000000);
    for (const auto &date : kBad) {
        std::array<int32_t, 9> tm = {};
        std::copy(std::begin(date), std::end(date), tm.begin());
        EXPECT_EQ(ext_rtc_time_system(tm.data(), 1), -1);
    }
    EXPECT_EQ(vboard_rtc_get(), 1700000000);
}

TEST_F(Rtc, CannotBeReadAfterItsBatteryFailedUntilItIsSet)
{
    vboard_rtc_fail_battery();
    std::array<int32_t, 9> tm = {};
    EXPECT_EQ(ext_rtc_time_system(tm.data(), 0), -1);
    tm = {0, 0, 12, 5, 3, 2024, 0, 0, 0};
    EXPECT_EQ(ext_rtc_time_system(tm.data(), 1), 0);
    EXPECT_EQ(read_clock()[4], 3);
}

TEST_F(Analog, LossReachesTheMask)
{
    g_vi_chn_num = 16;
    for (const uint32_t channel : {1u, 7u, 15u})
        ASSERT_EQ(vboard_ad_set_loss(channel, 1), 0);
    uint32_t mask[2] = {};
    EXPECT_EQ(ext_get_video_loss_status(mask), 0);
    EXPECT_EQ(mask[0], 0x8082u);
    vboard_ad_set_loss(7, 0);
    EXPECT_EQ(ext_get_video_loss_status(mask), 0);
    EXPECT_EQ(mask[0], 0x8002u);
    g_vi_chn_num = 17; // a fifth chip: there is none
    EXPECT_EQ(ext_get_video_loss_status(mask), -1);
    EXPECT_EQ(vboard_ad_set_loss(16, 1), -1);
}

TEST_F(Analog, KeepsWhatTheChipsAreTold)
{
    major_stream[3].size_class = 5;
    EXPECT_EQ(Init_AD(0), 0);
    uint8_t norm = 0;
    EXPECT_EQ(ad_get_norm(&norm), 0);
    EXPECT_EQ(norm, 2);
    vboard_ad_input input;
    ASSERT_EQ(vboard_ad_get_input(7, &input), 0);
    EXPECT_EQ(input.mode, 3u);
    EXPECT_EQ(ad_set_sample_rate(44100), 0);
    EXPECT_EQ(ad_set_audio_volume(9), 0);
    EXPECT_EQ(ad_set_adjust(1, 2, 3), 0);
    AdColorAdjust adjust = {};
    EXPECT_EQ(ad_get_adjust(&adjust), 0);
    EXPECT_EQ(adjust.values[2], 3u);
    vboard_ad_stat stat;
    ASSERT_EQ(vboard_ad_get_stat(&stat), 0);
    EXPECT_EQ(stat.rate_code, 3u);
    EXPECT_EQ(stat.volume, 9u);
}

TEST_F(Analog, MotionIsAnsweredOnceItWasStarted)
{
    ASSERT_EQ(vboard_ad_set_motion(5, 12), 0);
    AdMotionQuery query = {1, 1, {}, 0};
    EXPECT_EQ(GetMotionArea(&query), 0);
    EXPECT_EQ(query.result, 0u);
    EXPECT_EQ(InitMotion(), 0);
    EXPECT_EQ(GetMotionArea(&query), 0);
    EXPECT_EQ(query.result, 12u);
    AdMotionArea area = {1, 1, {0xFF, 0x01}};
    EXPECT_EQ(SetMotionArea(&area), 0);
    vboard_ad_input input;
    ASSERT_EQ(vboard_ad_get_input(5, &input), 0);
    EXPECT_EQ(input.area_bits, 9u);
    EXPECT_EQ(input.sensitivity, 6u);
}

TEST_F(Mouse, EventsCarryTheStateAfterThem)
{
    const int mouse = board_open(MOUSE_NODE, 0);
    vboard_mouse_move(100, 50);
    vboard_mouse_buttons(MOUSE_BUTTON_LEFT);
    vboard_mouse_wheel(-2);
    MouseEvent event = {};
    ASSERT_EQ(board_read(mouse, &event, sizeof event), 20);
    EXPECT_EQ(event.x, 100);
    ASSERT_EQ(board_read(mouse, &event, sizeof event), 20);
    EXPECT_EQ(event.type, static_cast<uint32_t>(MOUSE_EVENT_BUTTON));
    EXPECT_EQ(event.buttons, static_cast<uint32_t>(MOUSE_BUTTON_LEFT));
    EXPECT_EQ(event.y, 50);
    ASSERT_EQ(board_read(mouse, &event, sizeof event), 20);
    EXPECT_EQ(event.wheel, -2);
    EXPECT_EQ(board_read(mouse, &event, 19), -1);
}

TEST_F(Peripherals, TheMemoryOfThePcIsNotOffered)
{
    for (const char *path : {"/dev/mem", "/dev/null", "/dev/watchdog0", "/etc/passwd"})
        EXPECT_EQ(board_open(path, 0), -1) << path;
}
