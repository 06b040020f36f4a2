/*
 * What happens on the virtual board reaches the library: the remote control, the clock, the analog inputs,
 * the mouse. All waiting is on the stepped board clock.
 */
#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <thread>

#include "ad_driver.h"
#include "board_io.h"
#include "ir_driver.h"
#include "mouse_driver.h"
#include "nvrhal.h"
#include "stepped_peripherals.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace
{

using namespace peripherals;

using Remote = Peripherals;
using Rtc = Peripherals;
using Analog = Peripherals;
using Mouse = Peripherals;

constexpr uint32_t kMenu = 0x659AFF00; // key 109

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

} // namespace
