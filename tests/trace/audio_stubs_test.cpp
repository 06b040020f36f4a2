/* What does nothing, what is only kept, and the state before start-up. */
#include "audio/audio.h"

#include "audio_words.h"

using namespace audio_test;
using recording::platform;

namespace
{

TEST(AudioStubs, ReturnZeroAndDoNothing)
{
    struct Stub {
        const char *name;
        int (*call)(...);
    };
    constexpr Stub kStubs[] = {
        {"audio_aenc_proc", audio_aenc_proc},
        {"audio_ai_proc", audio_ai_proc},
        {"audio_enable_ai", audio_enable_ai},
        {"audio_stop_ao", audio_stop_ao},
        {"audio_ao_bind_adec", audio_ao_bind_adec},
        {"audio_ao_unbind_adec", audio_ao_unbind_adec},
        {"audio_deinit", audio_deinit},
        {"ext_audio_speek_get_buf", ext_audio_speek_get_buf},
        {"ext_release_audio_speek_buf", ext_release_audio_speek_buf},
        {"ext_set_audio_input_volume", ext_set_audio_input_volume},
    };
    fill_audio_words();
    speak_flag = kPattern;
    for (const Stub &stub : kStubs) {
        SCOPED_TRACE(stub.name);
        recording::forget_printed();
        EXPECT_EQ(stub.call(), 0);
        EXPECT_EQ(stub.call(-1, nullptr, 3), 0);
        EXPECT_EQ(recording::times_printed(entry_of(stub.name)), 2u);
        EXPECT_EQ(recording::printed_lines().size(), 2u);
    }
    Words untouched;
    untouched.fill(kPattern);
    EXPECT_EQ(audio_words(), untouched);
    EXPECT_EQ(speak_flag, kPattern);
    EXPECT_EQ(platform.calls(), "");
}

TEST(AudioStubs, TheHdmiPathGivesItsArgumentBack)
{
    audio_start_hdmi();
    for (int32_t argument : {0, 1, -1, 5, INT32_MAX, INT32_MIN})
        EXPECT_EQ(audio_stop_hdmi(argument), argument);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_PRINTED(entry_of("audio_start_hdmi"));
    EXPECT_EQ(recording::times_printed(entry_of("audio_stop_hdmi")), 6u);
}

TEST(AudioFormat, IsOnlyStored)
{
    fill_audio_words();
    for (uint32_t format : {0u, 1u, 6u, UINT32_MAX})
        EXPECT_EQ(ext_change_boot_audio_format(format), 0);
    EXPECT_EQ(recording::times_printed(entry_of("ext_change_boot_audio_format")), 4u);
    EXPECT_EQ(platform.calls(), "");
    Words untouched;
    untouched.fill(kPattern);
    EXPECT_EQ(audio_words(), untouched);
}

TEST(AudioState, IsZeroBeforeStartUp)
{
    EXPECT_EQ(audio_words(), Words{});
    EXPECT_EQ(speak_flag, 0u);
    EXPECT_EQ(nvrhal::u32BufLen, 0u);
}

TEST(AudioState, LendsABufferOfTheLargestBlock)
{
    EXPECT_EQ(sizeof nvrhal::pu8Buf, 0xA0000u);
    FrameInfo rec = {};
    ASSERT_EQ(ext_playback_get_buf(&rec), 0);
    EXPECT_EQ(rec.data, nvrhal::pu8Buf);
    EXPECT_EQ(nvrhal::u32BufLen, 0xA0000u);
}

/* Before start-up the switches ask the platform as ever; the answer is the platform's. */
TEST(AudioState, IsSwitchedBeforeStartUp)
{
    EXPECT_EQ(ext_set_audio_live_channel(1, 0), 0);
    EXPECT_EQ(ext_set_audio_output_volume(50), 0);
    EXPECT_EQ(ext_audio_speek_start(), 0);
    EXPECT_EQ(ext_audio_speek_stop(), 0);
    EXPECT_EQ(platform.calls(), recording::trace(R"(
        MI_AO_SetMute 3 0
        MI_AO_SetVolume 3 -15
        board_sleep_us 1000000
    )"));
    platform.script("MI_AO_SetMute").returns(kRefused);
    platform.script("MI_AO_SetVolume").returns(kRefused);
    EXPECT_EQ(ext_set_audio_live_channel(1, 0), 0);
    EXPECT_EQ(ext_set_audio_output_volume(0), -1);
    EXPECT_EQ(audio_ctrl.mode, AUDIO_USE_LIVE);
}

} // namespace
