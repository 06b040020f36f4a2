/* The recorder's playback engine on the board: what the display and the loudspeaker get from it. */
#include <future>

#include "mi_disp.h"
#include "play/playback.h"
#include "play_clips.h"
#include "playback_session.h"
#include "vboard_audio.h"

using namespace session;
using nvrec_test::clip;

namespace
{

constexpr uint32_t kLoudspeaker = 3;
constexpr uint32_t kBase = 30; /* the library's video standard */
constexpr auto kPatience = std::chrono::seconds(60);

class PlaybackEngine : public Session
{
protected:
    /* One file alone on the screen, as far as its first picture. */
    void begin(nvrec::Playback &playback, uint32_t codec)
    {
        ASSERT_EQ(playback.open(), 1U) << playback.tracks()[0]->trouble();
        playback.start([this] { ended_.set_value(); });
        ASSERT_EQ(ext_playback_start(1, 0), 0);
        if (codec != kH265) {
            ASSERT_EQ(vdec_recreate(0, codec), 0);
        }
        ASSERT_EQ(lay_out_single(0), 0);
        playback.pause(true);
        playback.thaw({0});
    }

    void play_to_the_end(nvrec::Playback &playback)
    {
        playback.pause(false);
        ASSERT_EQ(ended_.get_future().wait_for(kPatience), std::future_status::ready);
        EXPECT_TRUE(playback.ended());
    }

    static uint32_t display_rate()
    {
        MI_DISP_PubAttr attr = {};
        EXPECT_EQ(MI_DISP_GetPubAttr(0, &attr), 0);
        return attr.frame_rate;
    }

    static uint64_t blocks_heard()
    {
        vboard_audio_stat stat = {};
        EXPECT_EQ(vboard_audio_get_stat(kLoudspeaker, &stat), 0);
        return stat.blocks;
    }

    std::promise<void> ended_;
};

TEST_F(PlaybackEngine, DoubleSpeedDoublesTheDisplaysRate)
{
    nvrec::Playback playback({clip("play_1.h265")});
    begin(playback, kH265);
    const uint32_t before = display_rate();
    EXPECT_NE(before, 2 * kBase);
    playback.seek(3'000'000);
    EXPECT_EQ(display_rate(), before) << "the recorded speed leaves it alone";
    playback.set_speed(2);
    play_to_the_end(playback);
    EXPECT_EQ(display_rate(), 2 * kBase);
}

TEST_F(PlaybackEngine, ShowsKeyFramesOnlyAtFourTimes)
{
    nvrec::Playback playback({clip("play_1.h265")});
    begin(playback, kH265);
    playback.set_speed(4);
    play_to_the_end(playback);
    EXPECT_EQ(playback.sent(), 6U)
        << "the first picture was there; the one held then, and the key frames of seconds 1 to 4";
    EXPECT_EQ(rig::stamp_at(rig::look(), 0, 0, kWallWidth, kWallHeight), (stamp::Stamp{21, 100}));
}

TEST_F(PlaybackEngine, OnlyTheChosenFileIsHeard)
{
    nvrec::Playback playback({clip("play_sound.mp4")});
    begin(playback, kH264);
    playback.seek(3'000'000);
    EXPECT_EQ(blocks_heard(), 0U) << "a jump makes no sound";
    playback.listen_to(0);
    play_to_the_end(playback);
    /* Two seconds in blocks of 40 ms; the codec's frames need not begin with the key frame. */
    EXPECT_GE(blocks_heard(), 45U);
    EXPECT_LE(blocks_heard(), 51U);
    vboard_audio_level level = {};
    ASSERT_EQ(vboard_audio_get_level(kLoudspeaker, 1000, &level), 0);
    EXPECT_GT(level.rms_dbfs, -60.0);
}

TEST_F(PlaybackEngine, UnchosenFilesAreSilent)
{
    nvrec::Playback playback({clip("play_sound.mp4")});
    begin(playback, kH264);
    playback.seek(4'000'000);
    playback.listen_to(-1);
    play_to_the_end(playback);
    EXPECT_EQ(blocks_heard(), 0U);
}

} // namespace
