/* wall_race_test.cpp - the library's intake from several threads at once, on real decoders. */
#include "wall_session.h"

using namespace wall;
using rig::look;
using rig::Picture;

namespace
{

constexpr int kRounds = 6;

class IntakeRaces : public Wall
{
};

/* Each thread turns its channel from one codec to the other and back, both at the same time. */
TEST_F(IntakeRaces, TwoChannelsChangeCodecAtOnceFromTwoThreads)
{
    // Both streams of a channel carry its number.
    const Camera h264[] = {Camera("wall_0_h264"), Camera("h264_640x360")};
    const Camera h265[] = {Camera("session_live_0_h265"), Camera("session_live_1_h265")};
    start(4);
    ASSERT_EQ(lay_out(grid(2, 2)), 0);
    const uint64_t before[] = {rig::counters(0).recreations, rig::counters(1).recreations};

    std::atomic<unsigned> running{2};
    std::atomic<int> arrived{0};
    std::vector<std::thread> threads;
    for (uint32_t channel = 0; channel < 2; ++channel)
        threads.emplace_back([&, channel] {
            for (int round = 0; round < kRounds; ++round) {
                // Both at the line, so that the changes really meet.
                ++arrived;
                while (arrived.load() < 2 * (round + 1))
                    std::this_thread::yield();
                const Camera &camera = round % 2 == 0 ? h264[channel] : h265[channel];
                for (size_t frame = 0; frame < 10; ++frame)
                    EXPECT_EQ(session::send_live(channel, camera.stream.frames[frame], camera.codec()), 0);
            }
            session::settle(channel);
            --running;
        });
    while (running.load() > 0) {
        const Picture picture = look();
        for (uint32_t channel = 0; channel < 2; ++channel) {
            const auto seen = stamp_in(picture, grid_place(2, channel));
            if (seen)
                EXPECT_EQ(seen->channel, channel);
            else
                EXPECT_TRUE(part_of(picture, grid_place(2, channel)).is_black());
        }
    }
    for (std::thread &thread : threads)
        thread.join();

    const Picture picture = look();
    for (uint32_t channel = 0; channel < 2; ++channel) {
        EXPECT_EQ(rig::counters(channel).recreations - before[channel], uint64_t{kRounds});
        const Place place = grid_place(2, channel);
        // Nine of the ten frames of the last turn have come out of the byte stream.
        EXPECT_EQ(stamp_in(picture, place), (stamp::Stamp{channel, 8}));
        EXPECT_TRUE(part_of(picture, place) == shown_in(h265[channel].pictures[8], place));
    }
}

/* Frames of all channels against layouts: a frame is taken, dropped or refused, and the wall lives on. */
TEST_F(IntakeRaces, FramesMeetLayouts)
{
    std::vector<Camera> cameras;
    for (uint32_t channel = 0; channel < 4; ++channel)
        cameras.emplace_back("session_live_" + std::to_string(channel) + "_h265");
    start(4);
    ASSERT_EQ(lay_out(grid(2, 4)), 0);
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    for (uint32_t channel = 0; channel < 4; ++channel)
        threads.emplace_back([&, channel] {
            for (size_t at = 0; !done; at = (at + 1) % cameras[channel].stream.frames.size())
                session::send_live(channel, cameras[channel].stream.frames[at], cameras[channel].codec());
        });
    for (int round = 0; round < kRounds; ++round) {
        EXPECT_EQ(session::lay_out_single(static_cast<uint32_t>(round) % 4), 0);
        EXPECT_EQ(lay_out(grid(2, 4)), 0);
    }
    done = true;
    for (std::thread &thread : threads)
        thread.join();
    ASSERT_EQ(lay_out(grid(2, 4)), 0);
    for (uint32_t channel = 0; channel < 4; ++channel)
        send(channel, cameras[channel].stream.frames[0], cameras[channel].codec());
    const Picture picture = look();
    for (uint32_t channel = 0; channel < 4; ++channel)
        EXPECT_EQ(stamp_in(picture, grid_place(2, channel)), (stamp::Stamp{channel, 0}));
}

} // namespace
