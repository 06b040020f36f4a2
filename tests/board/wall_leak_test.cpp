/*
 * wall_leak_test.cpp - what is left behind by changes of layout and codec, by damage and by the plug:
 * nothing.
 */
#include "process_counts.h"
#include "wall_session.h"

using namespace wall;

namespace
{

class LeaksOfTheWall : public Wall
{
protected:
    /* Everything that makes and drops decoders and pictures, ending in the same state every time. */
    void live_through_a_round()
    {
        ASSERT_EQ(lay_out(grid(2, 4)), 0);
        for (uint32_t channel = 0; channel < 4; ++channel) {
            for (const Camera *camera : {&h264_, &h265_}) {
                for (size_t frame = 0; frame < 6; ++frame) {
                    rig::Bytes bytes = camera->stream.frames[frame];
                    if (frame == 3) bytes.resize(bytes.size() / 2);
                    send(channel, bytes, camera->codec());
                }
                send(channel, h265_.stream.frames[0], session::kH264); // a lie
            }
        }
        vboard_monitor_unplug();
        vboard_monitor_plug();
        ASSERT_EQ(vboard_monitor_wait_events(rig::kPatience_ms), 0);
        ASSERT_EQ(session::lay_out_single(1), 0);
        rig::look();
    }

    const Camera h264_{"h264_640x360"}, h265_{"h265_640x360"};
};

TEST_F(LeaksOfTheWall, RoundsOfEverythingLeaveNothingBehind)
{
    constexpr int kWarmUp = 10, kRounds = process_counts::kCountsBytes ? 50 : 14;
    start(4);
    size_t bytes = 0, resident = 0, threads = 0, descriptors = 0;
    for (int round = 0; round < kRounds; ++round) {
        live_through_a_round();
        if (round != kWarmUp) continue;
        bytes = process_counts::allocated_bytes();
        resident = process_counts::resident_bytes();
        threads = process_counts::threads();
        descriptors = process_counts::descriptors();
    }
    EXPECT_EQ(process_counts::threads(), threads);
    EXPECT_EQ(process_counts::descriptors(), descriptors);
    if (!process_counts::kCountsBytes) return;
    // A picture a channel and round, 340 KiB, would be 53 MiB; a kilobyte a frame 2 MiB.
    EXPECT_LT(process_counts::allocated_bytes(), bytes + (1 << 20));
    EXPECT_LT(process_counts::resident_bytes(), resident + (16 << 20));
}

} // namespace
