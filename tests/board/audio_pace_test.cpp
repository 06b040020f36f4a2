/* A blocking send paces like a sound card, on the board's clock. */
#include <atomic>
#include <chrono>
#include <thread>

#include "audio_speaker.h"

using namespace speaker;

namespace
{

constexpr int32_t kNoRoom = rig::code(MI_MODULE_AO, MI_REASON_BUFFER_FULL);
// When the seventh frame fits: 7 * 1920 - 12288 samples later.
constexpr int64_t kRoomForNext_us =
    (int64_t{kFramesThatFit + 1} * kFrameSamples - kCapacity) * 1000000 / 48000;

const tone::Bytes &frame_bytes()
{
    static const tone::Bytes bytes = tone::sine(1000, 10000, kFrameBytes);
    return bytes;
}

int32_t send_frame(int32_t timeout_ms)
{
    const MI_AO_Frame frame = frame_of(frame_bytes());
    return MI_AO_SendFrame(kDevice, 0, &frame, timeout_ms);
}

void fill_queue()
{
    for (uint32_t i = 0; i < kFramesThatFit; ++i)
        ASSERT_EQ(send_frame(0), MI_SUCCESS);
}

TEST_F(Speaker, TakesWhatFitsWithoutWaiting)
{
    fill_queue();
    EXPECT_EQ(stat().queued, kFramesThatFit * kFrameSamples);
    EXPECT_EQ(stat().capacity, kCapacity);
    EXPECT_EQ(stat().played, 0u) << "the clock stands";
}

TEST_F(Speaker, MakesTheSenderWaitForRoom)
{
    constexpr uint32_t kFrames = 12;
    std::thread sender([] {
        tone::Bytes sound;
        for (uint32_t i = 0; i < kFrames; ++i)
            sound.insert(sound.end(), frame_bytes().begin(), frame_bytes().end());
        EXPECT_EQ(send_block(block_of(sound)), 0);
    });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0);
    EXPECT_EQ(stat().blocks, kFramesThatFit);
    ASSERT_EQ(vboard_clock_step_us(kRoomForNext_us - 1), 0);
    ASSERT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0);
    EXPECT_EQ(stat().blocks, kFramesThatFit) << "a microsecond early";
    for (uint32_t frames = kFramesThatFit + 1; frames < kFrames; ++frames) {
        ASSERT_EQ(vboard_clock_step_us(frames == kFramesThatFit + 1 ? 1 : kFrame_us), 0);
        ASSERT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0);
        EXPECT_EQ(stat().blocks, frames) << "one frame every 40 ms";
    }
    ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
    sender.join();
    play_out();
    EXPECT_EQ(stat().played, kFrames * kFrameSamples);
    EXPECT_EQ(stat().ran_dry, 1u) << "a sender that never sleeps longer than it must leaves no gap";
}

TEST_F(Speaker, GivesUpWhenTheTimeIsOver)
{
    fill_queue();
    vboard_set_loud(0);
    EXPECT_EQ(send_frame(0), kNoRoom) << "at once";
    EXPECT_EQ(rig::last_refusal(),
              "MI_AO_SendFrame: audio device 3: no room within the time-out (buffer full)");
    std::thread sender([] { EXPECT_EQ(send_frame(10), kNoRoom); });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0);
    ASSERT_EQ(vboard_clock_step_us(9999), 0);
    ASSERT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0) << "still waiting";
    ASSERT_EQ(vboard_clock_step_us(1), 0);
    sender.join();
    EXPECT_EQ(stat().blocks, kFramesThatFit);
}

TEST_F(Speaker, FindsRoomWithinTheTime)
{
    fill_queue();
    std::thread sender([] { EXPECT_EQ(send_frame(100), MI_SUCCESS); });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0);
    ASSERT_EQ(vboard_clock_step_us(kRoomForNext_us), 0);
    sender.join();
    EXPECT_EQ(stat().blocks, kFramesThatFit + 1);
}

TEST_F(Speaker, PlaysFromTheMomentOfTheFirstBlockAfterAPause)
{
    ASSERT_EQ(send_frame(0), MI_SUCCESS);
    ASSERT_EQ(vboard_clock_step_us(1000000), 0);
    EXPECT_EQ(stat().played, kFrameSamples);
    EXPECT_EQ(stat().ran_dry, 1u);
    ASSERT_EQ(send_frame(0), MI_SUCCESS);
    EXPECT_EQ(stat().played, kFrameSamples) << "the pause is not made up for";
    ASSERT_EQ(vboard_clock_step_us(kFrame_us / 2), 0);
    EXPECT_EQ(stat().played, kFrameSamples * 3 / 2);
    EXPECT_EQ(stat().queued, kFrameSamples / 2);
    ASSERT_EQ(vboard_clock_step_us(kFrame_us / 2), 0);
    EXPECT_EQ(stat().ran_dry, 2u);
}

/* Two senders share the room; none of their frames is lost, and both get through. */
TEST_F(Speaker, ServesTwoSenders)
{
    constexpr int kEach = 10;
    const auto send_all = [] {
        for (int i = 0; i < kEach; ++i)
            EXPECT_EQ(send_frame(-1), MI_SUCCESS);
    };
    std::atomic<int> left{2};
    std::thread one([&] { send_all(), --left; });
    std::thread two([&] { send_all(), --left; });
    while (left > 0)
        if (vboard_clock_wait_sleepers(1, 20) == 0) vboard_clock_step_us(kFrame_us);
    one.join();
    two.join();
    play_out();
    EXPECT_EQ(stat().played, 2u * kEach * kFrameSamples);
}

/* The power goes while a sender waits for ever. */
TEST_F(Speaker, LetsAWaitingSenderGoWhenThePowerGoes)
{
    fill_queue();
    vboard_set_loud(0);
    std::thread sender([] { EXPECT_EQ(send_frame(-1), rig::code(MI_MODULE_AO, MI_REASON_NOT_READY)); });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0);
    vboard_reset();
    sender.join();
}

/* On a running clock: 12 frames of 40 ms take 480 ms, less what the queue holds. */
TEST_F(Speaker, PacesInRealTimeWhenTheClockRuns)
{
    using Steady = std::chrono::steady_clock;
    using Milliseconds = std::chrono::duration<double, std::milli>;
    vboard_clock_release();
    const Steady::time_point begin = Steady::now();
    for (int i = 0; i < 12; ++i)
        ASSERT_EQ(send_frame(-1), MI_SUCCESS);
    EXPECT_GE(Milliseconds(Steady::now() - begin).count(), 480 - 256 - 1);
    ASSERT_EQ(vboard_audio_wait_played(kDevice, rig::kPatience_ms), 0);
    EXPECT_GE(Milliseconds(Steady::now() - begin).count(), 480 - 1);
    EXPECT_EQ(stat().played, 12u * kFrameSamples);
}

TEST_F(Speaker, WaitPlayedEndsWithItsPatienceOrTheStep)
{
    EXPECT_EQ(vboard_audio_wait_played(kDevice, 0), 0) << "nothing is queued";
    ASSERT_EQ(send_frame(0), MI_SUCCESS);
    EXPECT_EQ(vboard_audio_wait_played(kDevice, 0), -1);
    EXPECT_EQ(vboard_audio_wait_played(kDevice, 5), -1) << "nobody steps";
    std::thread waiter([] { EXPECT_EQ(vboard_audio_wait_played(kDevice, rig::kPatience_ms), 0); });
    ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
    waiter.join();
}

} // namespace
