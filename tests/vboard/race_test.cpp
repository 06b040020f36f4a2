/*
 * board_race_test.cpp - control calls against running workers. What counts is that nothing is torn,
 * lost for good or stuck; the sanitizer builds look at the memory.
 */
#include <atomic>
#include <random>
#include <thread>

#include "board_rig.h"

using namespace rig;

namespace
{

constexpr int kRounds = 60;

class Races : public Board
{
protected:
    void SetUp() override
    {
        Board::SetUp();
        vboard_set_loud(0); // refusals are expected by the hundred
        stream_ = load_stream("wall_0_h264");
        power_up();
        start_channel(0, stream_.codec);
        open_window(0, 0, 0, 320, 180);
        ASSERT_EQ(bind(0, 0), MI_SUCCESS);
        sender_ = std::thread([this] {
            for (size_t at = 0; !done_; at = (at + 1) % stream_.frames.size())
                send(0, stream_.frames[at], 5);
        });
    }

    void end_sender()
    {
        done_ = true;
        sender_.join();
    }

    // After the storm the channel still works.
    void expect_alive()
    {
        MI_VDEC_StopChn(0);
        MI_VDEC_DestroyChn(0);
        unbind(0, 0);
        MI_DISP_ClearInputPortBuffer(0, 0, 1);
        MI_DISP_ShowInputPort(0, 0);
        start_channel(0, stream_.codec);
        ASSERT_EQ(bind(0, 0), MI_SUCCESS);
        open_window(0, 0, 0, 320, 180);
        send_and_settle(0, stream_.frames[0]);
        EXPECT_EQ(stamp_at(look(), 0, 0, 320, 180), (stamp::Stamp{0, 0}));
    }

    Stream stream_;
    std::thread sender_;
    std::atomic<bool> done_{false};
};

TEST_F(Races, StopAndStart)
{
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_EQ(MI_VDEC_StopChn(0), MI_SUCCESS);
        MI_VDEC_ChnStat stat = {};
        ASSERT_EQ(MI_VDEC_GetChnStat(0, &stat), MI_SUCCESS);
        EXPECT_EQ(stat.left_stream_bytes, 0u);
        ASSERT_EQ(MI_VDEC_StartChn(0), MI_SUCCESS);
        std::this_thread::yield();
    }
    end_sender();
    expect_alive();
}

TEST_F(Races, DestroyAndCreate)
{
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_EQ(MI_VDEC_StopChn(0), MI_SUCCESS);
        ASSERT_EQ(MI_VDEC_DestroyChn(0), MI_SUCCESS);
        start_channel(0, stream_.codec, round % 2 == 0 ? MI_VDEC_MODE_STREAM : MI_VDEC_MODE_FRAME);
    }
    end_sender();
    expect_alive();
}

TEST_F(Races, UnbindLetsNoMorePicturesThrough)
{
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_EQ(unbind(0, 0), MI_SUCCESS);
        const uint64_t taken = port_state(0).taken;
        ASSERT_EQ(MI_DISP_ClearInputPortBuffer(0, 0, 1), MI_SUCCESS);
        const uint64_t sent = counters(0).frames_sent;
        while (counters(0).frames_sent < sent + 2)
            std::this_thread::yield();
        EXPECT_EQ(port_state(0).taken, taken);
        EXPECT_TRUE(look().part(0, 0, 320, 180).is_black());
        ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    }
    end_sender();
    expect_alive();
}

TEST_F(Races, UnderStepPacingABlockedWorkerIsFreedByWhateverTakesItsSinkAway)
{
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_EQ(vboard_display_wait_queued(0, 1, 1, kPatience_ms), 0);
        switch (round % 5) {
        case 0:
            ASSERT_EQ(MI_VDEC_StopChn(0), MI_SUCCESS);
            ASSERT_EQ(MI_VDEC_StartChn(0), MI_SUCCESS);
            vboard_display_step(0);
            break;
        case 1:
            ASSERT_EQ(unbind(0, 0), MI_SUCCESS);
            ASSERT_EQ(bind(0, 0), MI_SUCCESS);
            break;
        case 2:
            ASSERT_EQ(MI_DISP_DisableInputPort(0, 0), MI_SUCCESS);
            ASSERT_EQ(MI_DISP_EnableInputPort(0, 0), MI_SUCCESS);
            break;
        case 3: ASSERT_EQ(MI_DISP_ClearInputPortBuffer(0, 0, 1), MI_SUCCESS); break;
        case 4:
            ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_REALTIME), 0);
            ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
            break;
        }
    }
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_REALTIME), 0);
    end_sender();
    expect_alive();
}

TEST_F(Races, EverythingAtOnce)
{
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (uint32_t seed = 0; seed < 3; ++seed)
        threads.emplace_back([&, seed] {
            std::mt19937 generator(seed);
            const MI_VDEC_ChnAttr attr = channel_attr(stream_.codec);
            while (!stop) {
                const MI_VDEC_OutputPortAttr output = {static_cast<uint16_t>(generator() % 400), 100};
                MI_DISP_InputPortAttr window = {};
                window.window = {static_cast<uint16_t>(generator() % 500), 0,
                                 static_cast<uint16_t>(generator() % 500), 200};
                const MI_Rect zoom = {static_cast<uint16_t>(generator() % 300), 10, 50, 50};
                switch (generator() % 12) {
                case 0: MI_VDEC_StopChn(0); break;
                case 1: MI_VDEC_StartChn(0); break;
                case 2: MI_VDEC_DestroyChn(0); break;
                case 3: MI_VDEC_CreateChn(0, &attr); break;
                case 4: unbind(0, 0); break;
                case 5: bind(0, 0); break;
                case 6: MI_DISP_ClearInputPortBuffer(0, 0, 1); break;
                case 7: MI_DISP_SetInputPortAttr(0, 0, &window); break;
                case 8: MI_VDEC_SetOutputPortAttr(0, &output); break;
                case 9: MI_DISP_SetZoomInWindow(0, 0, &zoom); break;
                case 10:
                    MI_DISP_HideInputPort(0, 0);
                    MI_DISP_ShowInputPort(0, 0);
                    break;
                case 11:
                    counters(0);
                    port_state(0);
                    break;
                }
            }
        });
    for (int round = 0; round < kRounds; ++round)
        look();
    stop = true;
    for (std::thread &thread : threads)
        thread.join();
    end_sender();
    const MI_Rect whole = {};
    ASSERT_EQ(MI_DISP_SetZoomInWindow(0, 0, &whole), MI_SUCCESS);
    expect_alive();
}

} // namespace
