/* audio_speaker.cpp - see audio_speaker.h. */
#include "audio_speaker.h"

#include <algorithm>

namespace speaker
{

vboard_audio_stat stat(uint32_t device)
{
    vboard_audio_stat now;
    EXPECT_EQ(vboard_audio_get_stat(device, &now), 0);
    return now;
}

int32_t send_block(const tone::Bytes &bytes)
{
    FrameInfo frame = {};
    frame.media = FRAME_MEDIA_AUDIO;
    frame.length = static_cast<uint32_t>(bytes.size());
    frame.data = const_cast<uint8_t *>(bytes.data());
    return ext_send_stream(&frame, 0, 0, 0);
}

tone::Bytes block_of(const tone::Bytes &a_law)
{
    tone::Bytes block(kHeaderBytes + a_law.size(), 0xEE); // the header must not be heard
    std::copy(a_law.begin(), a_law.end(), block.begin() + kHeaderBytes);
    return block;
}

MI_AO_Frame frame_of(const tone::Bytes &bytes)
{
    MI_AO_Frame frame = {};
    frame.data[0] = bytes.data();
    frame.length_bytes = static_cast<uint32_t>(bytes.size());
    return frame;
}

void say(const tone::Bytes &a_law)
{
    for (size_t at = 0; at < a_law.size(); at += kFrameBytes) {
        const auto begin = a_law.begin() + static_cast<std::ptrdiff_t>(at);
        const auto end =
            begin + static_cast<std::ptrdiff_t>(std::min<size_t>(kFrameBytes, a_law.size() - at));
        while (stat().queued + kFrameSamples > kCapacity)
            ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
        ASSERT_EQ(send_block(block_of({begin, end})), 0);
    }
}

void play_out()
{
    while (stat().queued > 0)
        ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
}

tone::Samples heard(uint64_t first)
{
    tone::Samples samples(stat().played - first);
    EXPECT_EQ(vboard_audio_read(kDevice, first, samples.data(), samples.size()),
              static_cast<int64_t>(samples.size()));
    return samples;
}

void Speaker::SetUp()
{
    Board::SetUp();
    vboard_clock_take();
    ASSERT_EQ(audio_init(), 0);
}

void Speaker::TearDown()
{
    EXPECT_EQ(vboard_audio_close(kDevice), 0);
    Board::TearDown();
}

} // namespace speaker
