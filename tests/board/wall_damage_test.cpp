/*
 * wall_damage_test.cpp - bad frames through ext_send_stream: a defined result each, nothing of it in
 * any other pane, and good pictures again from the damaged channel's next key frame on.
 */
#include <algorithm>
#include <cstring>

#include "wall_session.h"

using namespace wall;
using rig::Bytes;
using rig::look;
using rig::noise;
using rig::Picture;
using rig::with_flipped_bits;

namespace
{

constexpr uint32_t kCameras = 16;
constexpr size_t kDamaged = 3, kNextKey = 10; // frames

Bytes first_part(const Bytes &frame, size_t size)
{
    return Bytes(frame.begin(), frame.begin() + static_cast<ptrdiff_t>(size));
}

/* What comes in place of a good frame; `foreign` is a frame of the other codec. */
struct Harm {
    const char *name;
    int32_t result; // of ext_send_stream
    Bytes (*make)(const Bytes &frame, const Bytes &foreign, uint32_t seed);
};
const Harm kHarms[] = {
    {"half a frame", 0,
     [](const Bytes &frame, const Bytes &, uint32_t) { return first_part(frame, frame.size() / 2); }},
    {"eight bytes", 0, [](const Bytes &frame, const Bytes &, uint32_t) { return first_part(frame, 8); }},
    {"one flipped bit", 0,
     [](const Bytes &frame, const Bytes &, uint32_t seed) { return with_flipped_bits(frame, seed, 1); }},
    {"forty flipped bits", 0,
     [](const Bytes &frame, const Bytes &, uint32_t seed) { return with_flipped_bits(frame, seed, 40); }},
    {"noise", 0, [](const Bytes &frame, const Bytes &, uint32_t seed) { return noise(frame.size(), seed); }},
    {"zeros", 0, [](const Bytes &frame, const Bytes &, uint32_t) { return Bytes(frame.size(), 0); }},
    {"nothing", -1, [](const Bytes &, const Bytes &, uint32_t) { return Bytes(); }},
    {"another codec's frame", 0, [](const Bytes &, const Bytes &foreign, uint32_t) { return foreign; }},
};

const Harm *find_harm(const char *name)
{
    return std::find_if(std::begin(kHarms), std::end(kHarms),
                        [&](const Harm &harm) { return strcmp(harm.name, name) == 0; });
}

class DamageOnTheWall : public Wall
{
protected:
    void show_sixteen()
    {
        for (uint32_t channel = 0; channel < kCameras; ++channel)
            cameras_.emplace_back("wall_" + std::to_string(channel) + (channel % 2 != 0 ? "_h265" : "_h264"));
        start(kCameras);
        meet(cameras_);
        ASSERT_EQ(lay_out(grid(4, kCameras)), 0);
    }

    bool pane_shows(const Picture &picture, uint32_t channel, size_t frame) const
    {
        const Place place = grid_place(4, channel);
        return part_of(picture, place) == shown_in(cameras_[channel].pictures[frame], place);
    }

    /* Frame `frame` from all cameras at once, a thread each; `harms` gives what some send instead. */
    void send_from_all(size_t frame, const std::vector<const Harm *> &harms)
    {
        std::vector<std::thread> senders;
        for (uint32_t channel = 0; channel < kCameras; ++channel)
            senders.emplace_back([&, channel] {
                const Camera &camera = cameras_[channel];
                const Bytes &good = camera.stream.frames[frame];
                const Harm *harm = harms[channel];
                const Bytes &foreign = cameras_[channel ^ 1].stream.frames[0];
                const Bytes bytes = harm != nullptr ? harm->make(good, foreign, channel) : good;
                EXPECT_EQ(session::send_live(channel, bytes, camera.codec()),
                          harm != nullptr ? harm->result : 0)
                    << "channel " << channel;
                session::settle(channel);
            });
        for (std::thread &sender : senders)
            sender.join();
    }

    /* Two groups of pictures from everybody; the harmed ones lose frame kDamaged of the first. */
    void expect_damage_to_stay_where_it_is(const std::vector<const Harm *> &harms)
    {
        const std::vector<const Harm *> none(kCameras);
        for (size_t frame = 0; frame < cameras_[0].stream.frames.size(); ++frame) {
            send_from_all(frame, frame == kDamaged ? harms : none);
            const Picture picture = look();
            for (uint32_t channel = 0; channel < kCameras; ++channel) {
                const size_t lag = cameras_[channel].lag();
                const bool healthy = harms[channel] == nullptr || frame < kDamaged || frame >= kNextKey + lag;
                if (frame < lag || !healthy) continue;
                ASSERT_TRUE(pane_shows(picture, channel, frame - lag))
                    << "channel " << channel << " frame " << frame - lag << " after "
                    << (harms[channel] != nullptr ? harms[channel]->name : "no harm");
            }
        }
    }

    std::vector<Camera> cameras_;
};

TEST_F(DamageOnTheWall, HalfOfSixteenChannelsAreHarmedEachInItsWayAndTheOthersAreUntouched)
{
    show_sixteen();
    for (const uint32_t first : {0u, 1u}) { // every harm meets both codecs
        std::vector<const Harm *> harms(kCameras);
        for (uint32_t channel = 0; channel < kCameras; ++channel) {
            const uint32_t pair = channel / 2;
            if (channel % 2 == (pair + first) % 2) harms[channel] = &kHarms[pair];
        }
        expect_damage_to_stay_where_it_is(harms);
    }
}

TEST_F(DamageOnTheWall, AllSixteenChannelsAreHarmedAtOnceAndAllComeBack)
{
    show_sixteen();
    for (uint32_t turn = 0; turn < 2; ++turn) {
        std::vector<const Harm *> harms(kCameras);
        for (uint32_t channel = 0; channel < kCameras; ++channel)
            harms[channel] = &kHarms[(channel + turn * 5) % std::size(kHarms)];
        expect_damage_to_stay_where_it_is(harms);
    }
}

/*
 * What a decoder can tell to be broken is not shown: until the next key frame the pane keeps a good
 * picture. In a byte stream noise and zeros are told from a frame that never came by nobody.
 */
TEST_F(DamageOnTheWall, TheLastGoodPictureStaysUntilTheNextKeyFrame)
{
    show_sixteen();
    const char *whole_frames[] = {"noise", "zeros", "another codec's frame", "eight bytes"};
    const char *byte_stream[] = {"half a frame", "another codec's frame"};
    std::vector<const Harm *> harms(kCameras);
    for (uint32_t channel = 0; channel < kCameras; ++channel)
        harms[channel] = cameras_[channel].codec() == session::kH265
                             ? find_harm(whole_frames[channel / 2 % std::size(whole_frames)])
                             : find_harm(byte_stream[channel / 2 % std::size(byte_stream)]);
    const std::vector<const Harm *> none(kCameras);
    for (size_t frame = 0; frame < kNextKey; ++frame) {
        send_from_all(frame, frame == kDamaged ? harms : none);
        if (frame < kDamaged) continue;
        const Picture picture = look();
        for (uint32_t channel = 0; channel < kCameras; ++channel) {
            // The frame before the damage comes out of a byte stream together with it, or not at all.
            const bool kept = pane_shows(picture, channel, kDamaged - 1) ||
                              pane_shows(picture, channel, kDamaged - 1 - cameras_[channel].lag());
            EXPECT_TRUE(kept) << "channel " << channel << " frame " << frame << " after "
                              << harms[channel]->name;
        }
    }
}

/* A lying codec code makes a decoder of the wrong kind; the true code brings the picture back. */
TEST_F(DamageOnTheWall, ACodecCodeThatLiesShowsNothingUntilItTellsTheTruth)
{
    const Camera cameras[] = {Camera("wall_0_h264"), Camera("wall_1_h265")};
    const std::vector<uint32_t> lies[] = {{1}, {0, 2, 7, 0xffffffff}}; // any code but 1 means H.264
    start(4);
    ASSERT_EQ(lay_out(grid(2, 4)), 0);
    for (uint32_t channel = 0; channel < 2; ++channel) {
        const Camera &camera = cameras[channel];
        const Place place = grid_place(2, channel);
        for (const uint32_t lie : lies[channel])
            for (const Bytes &frame : camera.stream.frames)
                send(channel, frame, lie);
        EXPECT_EQ(rig::counters(channel).decoded, 0u);
        EXPECT_TRUE(part_of(look(), place).is_black());
        for (const Bytes &frame : camera.stream.frames)
            send(channel, frame, camera.codec());
        // Created anew, every decoder takes a byte stream: its last frame stays in.
        EXPECT_TRUE(part_of(look(), place) == shown_in(camera.pictures[camera.pictures.size() - 2], place));
    }
}

TEST_F(DamageOnTheWall, AChangeOfSizeInMidStreamChangesThePaneAndNothingElse)
{
    // The same channel in 640 x 360, then 1280 x 720, then back; beside it an undisturbed one.
    const Camera small("h265_640x360"), large("h265_1280x720"), beside("session_live_1_h265");
    start(4);
    ASSERT_EQ(lay_out(grid(2, 4)), 0);
    const uint64_t recreations = rig::counters(0).recreations;
    size_t at = 0;
    for (const Camera *camera : {&small, &large, &small})
        for (size_t frame = 0; frame < 6; ++frame, ++at) {
            send(0, camera->stream.frames[frame], session::kH265);
            send(1, beside.stream.frames[at], session::kH265);
            const Picture picture = look();
            const Place place = grid_place(2, 0), other = grid_place(2, 1);
            ASSERT_TRUE(part_of(picture, place) == shown_in(camera->pictures[frame], place)) << at;
            ASSERT_TRUE(part_of(picture, other) == shown_in(beside.pictures[at], other)) << at;
        }
    EXPECT_EQ(rig::counters(0).width, 640u);
    EXPECT_EQ(rig::counters(0).recreations, recreations) << "a size is no reason to recreate";
}

/* The seam of two sizes inside a group of pictures: the second begins without its key frame. */
TEST_F(DamageOnTheWall, ASizeThatChangesWithoutAKeyFrameWaitsForOne)
{
    const Camera small("h265_640x360"), large("h265_1280x720");
    start(4);
    ASSERT_EQ(lay_out(grid(2, 4)), 0);
    const Place place = grid_place(2, 0);
    for (size_t frame = 0; frame < 3; ++frame)
        send(0, small.stream.frames[frame], session::kH265);
    for (size_t frame = 1; frame < 12; ++frame) {
        send(0, large.stream.frames[frame], session::kH265);
        if (frame < kNextKey) continue;
        EXPECT_TRUE(part_of(look(), place) == shown_in(large.pictures[frame], place)) << frame;
    }
}

} // namespace
