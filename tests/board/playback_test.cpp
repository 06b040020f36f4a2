/* playback_test.cpp - the wall through playback: no live frame, order, flushes, rates, and back. */
#include "playback_session.h"

using namespace session;
using rig::look;

namespace
{

class PlaybackOnTheBoard : public Session
{
protected:
    /* Deliver frame `index` of every recording and let it reach the wall. */
    void play_everywhere(size_t index)
    {
        for (uint32_t channel = 0; channel < kCameras; ++channel)
            ASSERT_EQ(play(channel, recordings_[channel].frames[index]), 0);
        for (uint32_t channel = 0; channel < kCameras; ++channel)
            settle(channel);
    }

    const std::vector<rig::Stream> recordings_ = {recording(0), recording(1), recording(2), recording(3)};
};

void expect_stamps(unsigned first_channel, uint32_t frame)
{
    const rig::Picture wall = look();
    for (uint32_t channel = 0; channel < kCameras; ++channel)
        EXPECT_EQ(stamp_of(wall, channel), (stamp::Stamp{first_channel + channel, frame}))
            << "pane " << channel;
}

void expect_dark_panes()
{
    const rig::Picture wall = look();
    for (uint32_t channel = 0; channel < kCameras; ++channel)
        EXPECT_TRUE(pane_of(wall, channel).is_black()) << "pane " << channel;
}

TEST_F(PlaybackOnTheBoard, StartLeavesNothingOfTheLivePicture)
{
    show_live(3);
    expect_stamps(0, 2);
    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    expect_dark_panes();
}

TEST_F(PlaybackOnTheBoard, NoLiveFrameAppearsWhileItRuns)
{
    show_live(3);
    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    std::atomic<bool> done{false};
    std::atomic<unsigned> refused{0}, accepted{0};
    std::vector<std::thread> cameras;
    for (uint32_t channel = 0; channel < kCameras; ++channel)
        cameras.emplace_back([&, channel] {
            const rig::Stream stream = live_stream(channel);
            for (size_t i = 0; !done.load(); i = (i + 1) % stream.frames.size()) {
                (send_live(channel, stream.frames[i]) == 0 ? accepted : refused).fetch_add(1);
                std::this_thread::yield();
            }
        });
    for (size_t i = 0; i < 20; ++i) {
        play_everywhere(i);
        expect_stamps(kFirstRecording, static_cast<uint32_t>(1000 + i));
    }
    while (refused.load() < 100)
        std::this_thread::yield();
    done.store(true);
    for (std::thread &camera : cameras)
        camera.join();
    EXPECT_EQ(accepted.load(), 0u);
}

TEST_F(PlaybackOnTheBoard, FramesComeInOrderAndNoneIsLost)
{
    show_live(1);
    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    std::thread player([&] {
        for (const rig::Bytes &frame : recordings_[0].frames)
            while (play(0, frame) != 0) // the decoder is held back by the wall
                ADD_FAILURE() << "a buffer was refused";
    });
    for (uint32_t i = 0; i < recordings_[0].frames.size(); ++i) {
        ASSERT_EQ(vboard_display_wait_queued(0, 1, 1, rig::kPatience_ms), 0);
        ASSERT_EQ(vboard_display_step(0), 1);
        EXPECT_EQ(stamp_of(look(), 0), (stamp::Stamp{kFirstRecording, 1000 + i}));
    }
    player.join();
}

TEST_F(PlaybackOnTheBoard, AFlushLeavesTheOldPictureNowhere)
{
    show_live(1);
    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    play_everywhere(0);
    play_everywhere(1);
    expect_stamps(kFirstRecording, 1001);
    FrameInfo flush = {};
    for (uint32_t channel = 0; channel < kCameras; ++channel) {
        flush.channel = channel;
        EXPECT_EQ(ext_playback_set_buf(&flush), 1);
    }
    expect_dark_panes();
    play_everywhere(20); // the key frame that was sought
    expect_stamps(kFirstRecording, 1020);
}

TEST_F(PlaybackOnTheBoard, AControlBufferClearsItsPaneAlone)
{
    show_live(1);
    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    play_everywhere(0);
    EXPECT_EQ(play(2, {1, 1, 0, 0, 0, 0, 0, 0}), 0);
    const rig::Picture wall = look();
    EXPECT_TRUE(pane_of(wall, 2).is_black());
    EXPECT_EQ(stamp_of(wall, 1), (stamp::Stamp{kFirstRecording + 1, 1000}));
    EXPECT_EQ(stamp_of(wall, 3), (stamp::Stamp{kFirstRecording + 3, 1000}));
}

/* What still waits in the decoder at a seek is drained or flushed, and never seen again. */
TEST_F(PlaybackOnTheBoard, SwitchingToASinglePictureDropsWhatWasQueued)
{
    for (const auto change : {ext_signal_spilt_start, ext_signal_spilt_exit}) {
        show_live(1);
        ASSERT_EQ(ext_playback_start(0xF, 0), 0);
        play_everywhere(0);
        for (size_t i = 1; i < 15; ++i)
            ASSERT_EQ(play(1, recordings_[1].frames[i]), 0);
        EXPECT_EQ(change(1), 0);
        settle(1);
        rig::Picture wall = look();
        EXPECT_EQ(stamp_of(wall, 0), (stamp::Stamp{kFirstRecording, 1000}));
        // A picture that was being handed over at the last clearing may stand there; nothing follows it.
        const vboard_port_stat before = rig::port_state(1);
        ASSERT_EQ(play(1, recordings_[1].frames[20]), 0);
        settle(1);
        EXPECT_EQ(rig::port_state(1).taken, before.taken + 1);
        EXPECT_EQ(stamp_of(look(), 1), (stamp::Stamp{kFirstRecording + 1, 1020}));
        ASSERT_EQ(ext_playback_exit(), 0);
    }
}

TEST_F(PlaybackOnTheBoard, DisablingAChannelTakesItsPaneAway)
{
    show_live(1);
    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    play_everywhere(0);
    EXPECT_EQ(ext_playback_disable_channel(3), 0);
    EXPECT_EQ(rig::port_state(3).enabled, 0u);
    EXPECT_TRUE(pane_of(look(), 3).is_black());
    EXPECT_EQ(stamp_of(look(), 0), (stamp::Stamp{kFirstRecording, 1000}));
}

TEST_F(PlaybackOnTheBoard, AfterExitAndALayoutLivePicturesAreBack)
{
    show_live(2);
    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    play_everywhere(0);
    ASSERT_EQ(ext_playback_exit(), 0);
    expect_dark_panes();
    show_live(4);
    expect_stamps(0, 3);
}

/* Every channel counts as shown after the exit, also one that no layout showed before. */
TEST_F(PlaybackOnTheBoard, AfterExitEveryChannelIsDecodedAgain)
{
    ASSERT_EQ(lay_out_single(0), 0);
    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    ASSERT_EQ(ext_playback_exit(), 0);
    for (uint32_t channel = 0; channel < kCameras; ++channel) {
        const uint64_t before = rig::counters(channel).decoded;
        EXPECT_EQ(send_live(channel, live_stream(channel).frames[0]), 0);
        settle(channel);
        EXPECT_EQ(rig::counters(channel).decoded, before + 1) << channel;
    }
}

/* Compositions that a second of the board's clock brings at the display's present rate. */
unsigned compositions_a_second()
{
    std::atomic<unsigned> count{0};
    vboard_clock_take();
    EXPECT_EQ(vboard_display_follow(
                  0,
                  [](const vboard_picture *, void *user) {
                      static_cast<std::atomic<unsigned> *>(user)->fetch_add(1);
                  },
                  &count),
              0);
    for (int step = 0; step < 1000; ++step) { // the refresh thread sleeps between refreshes
        EXPECT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0);
        EXPECT_EQ(vboard_clock_step_us(1000), 0);
    }
    EXPECT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0);
    EXPECT_EQ(vboard_display_follow(0, nullptr, nullptr), 0);
    vboard_clock_release();
    return count.load();
}

TEST_F(PlaybackOnTheBoard, DoubleRateDoublesThePaceOfTheOutputAndItStays)
{
    show_live(1);
    MI_DISP_PubAttr attr = {};
    ASSERT_EQ(MI_DISP_GetPubAttr(0, &attr), 0);
    attr.frame_rate = 30;
    ASSERT_EQ(MI_DISP_SetPubAttr(0, &attr), 0);
    EXPECT_NEAR(compositions_a_second(), 30, 1);

    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    ASSERT_EQ(play(0, recordings_[0].frames[0], 2), 0);
    ASSERT_EQ(MI_DISP_GetPubAttr(0, &attr), 0);
    EXPECT_EQ(attr.frame_rate, 60u);
    EXPECT_NEAR(compositions_a_second(), 60, 1);

    ASSERT_EQ(play(0, recordings_[0].frames[1], 1), 0); // no other mode writes it back
    EXPECT_NEAR(compositions_a_second(), 60, 1);
}

} // namespace
