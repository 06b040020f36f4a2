/* Sound through ext_playback_set_buf: its frames, when it is refused, and what a failure changes. */
#include <cstring>
#include <ostream>

#include "audio/audio.h"
#include "media_call_count.h"
#include "playback_delivery.h"
#include "view_frame.h"

using namespace view_test;
using recording::platform;

namespace
{

struct AudioRow {
    uint32_t length, frames;
};
constexpr AudioRow kAudioRows[] = {{1, 0},   {323, 0},   {324, 1},
                                   {325, 1}, {644, 1},   {647, 1},
                                   {648, 2}, {3244, 10}, {NVRHAL_MAX_SEND_BYTES, 2022}};

class PlaybackAudio : public testing::TestWithParam<AudioRow>
{
};

void PrintTo(const AudioRow &row, std::ostream *out)
{
    *out << row.length << " bytes";
}

INSTANTIATE_TEST_SUITE_P(Lengths, PlaybackAudio, testing::ValuesIn(kAudioRows));

TEST_P(PlaybackAudio, SendsItsFramesBehindTheHeader)
{
    std::vector<uint8_t> bytes(GetParam().length);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<uint8_t>(i * 7 + i / 251);
    audio_ctrl.mode = 2;
    FrameInfo rec = frame_of(FRAME_MEDIA_AUDIO, 99, bytes);
    EXPECT_EQ(deliver(rec), 0);
    auto sent = platform.bytes_sent("MI_AO_SendFrame");
    ASSERT_EQ(sent.size(), GetParam().frames);
    EXPECT_EQ(platform.count("MI_AO_SendFrame 3 0"), GetParam().frames);
    EXPECT_EQ(recording::media_calls(), GetParam().frames);
    for (size_t i = 0; i < sent.size(); ++i) {
        auto from = bytes.begin() + 4 + static_cast<long>(320 * i);
        EXPECT_EQ(sent[i], std::vector<uint8_t>(from, from + 320)) << "frame " << i;
    }
}

TEST(PlaybackAudio, IsSentAsAZeroedRecordThatWaitsForRoom)
{
    std::vector<uint8_t> audio(324), video(100);
    audio_ctrl.mode = 1;
    FrameInfo rec = frame_of(FRAME_MEDIA_AUDIO, 0, audio);
    EXPECT_EQ(deliver(rec), 0);
    std::string live = platform.calls();
    EXPECT_NE(live.find(" -1"), std::string::npos);
    platform.script("MI_AO_SendFrame").once().fills([](recording::Args &call) {
        MI_AO_Frame expected = {};
        expected.data[0] = call.record<MI_AO_Frame>(2).data[0];
        expected.length_bytes = 320;
        EXPECT_EQ(std::memcmp(&call.record<MI_AO_Frame>(2), &expected, sizeof expected), 0);
        EXPECT_EQ(call.number(3), -1);
    });
    rec = frame_of(FRAME_MEDIA_AUDIO, 0, audio);
    EXPECT_EQ(deliver(rec), 0);
}

TEST(PlaybackAudio, IsRefusedWhileTheOutputIsOff)
{
    std::vector<uint8_t> bytes(324);
    audio_ctrl.mode = 0;
    FrameInfo rec = frame_of(FRAME_MEDIA_AUDIO, 0, bytes);
    EXPECT_EQ(deliver(rec), -1);
    EXPECT_EQ(platform.calls(), "");
}

// The stop gives the output back to live sound and closes nothing.
TEST(PlaybackAudio, IsStillPlayedAfterTheStop)
{
    std::vector<uint8_t> bytes(324);
    audio_ctrl.mode = 2;
    EXPECT_EQ(ext_playback_stop(), 0);
    FrameInfo rec = frame_of(FRAME_MEDIA_AUDIO, 0, bytes);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_EQ(platform.count("MI_AO_SendFrame 3 0"), 1u);
}

TEST(PlaybackAudio, GoesOnAfterAFrameThatFails)
{
    std::vector<uint8_t> bytes(972);
    audio_ctrl.mode = 3;
    platform.script("MI_AO_SendFrame").once().returns(kDisplayRefused);
    FrameInfo rec = frame_of(FRAME_MEDIA_AUDIO, 0, bytes);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_EQ(platform.count("MI_AO_SendFrame"), 3u);
    EXPECT_PRINTED("MI_AO_SendFrame fail=0xa00f0003");
}

TEST(PlaybackAudio, WithoutAnAddressSendsNothing)
{
    audio_ctrl.mode = 2;
    FrameInfo rec = {};
    rec.media = FRAME_MEDIA_AUDIO;
    rec.length = 972;
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_EQ(platform.calls(), "");
}

} // namespace
