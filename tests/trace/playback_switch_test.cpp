/* ext_playback_start, _stop, _exit and the calls beside them: the display changes hands. */
#include "view_frame.h"

using namespace view_test;
using recording::platform;
using recording::trace;

namespace
{

/** Start-up's decoder count: one channel more than there are cameras. */
void start_decoders(int32_t cameras)
{
    g_vi_chn_num = cameras;
    vdec_create(1, cameras + 1);
    platform.forget();
}

void expect_audio_words(uint32_t mode)
{
    EXPECT_EQ(audio_ctrl.mode, mode);
    EXPECT_EQ(audio_ctrl.reset_1, 0u);
    EXPECT_EQ(audio_ctrl.reset_2, 0u);
    EXPECT_EQ(audio_ctrl.enabled, 1u);
    EXPECT_EQ(audio_ctrl.reset_4, 0u);
}

TEST(PlaybackStart, RebindsEveryPortAndResetsEveryDecoder)
{
    start_decoders(2);
    platform.have_bindings(2);
    globalVoDev = 2;
    EXPECT_EQ(ext_playback_start(0x8000000A, 7), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_SYS_UnBindChnPort {vdec,0,0,0} {disp,0,0,0}
        MI_SYS_BindChnPort {vdec,0,0,0} {disp,0,0,0} 15 15
        MI_DISP_ClearInputPortBuffer 2 0 1
        MI_SYS_UnBindChnPort {vdec,0,0,0} {disp,0,0,0}
        MI_SYS_BindChnPort {vdec,0,0,0} {disp,0,0,0} 15 15
        MI_SYS_UnBindChnPort {vdec,0,1,0} {disp,0,1,0}
        MI_SYS_BindChnPort {vdec,0,1,0} {disp,0,1,0} 15 15
        MI_DISP_ClearInputPortBuffer 2 1 1
        MI_SYS_UnBindChnPort {vdec,0,1,0} {disp,0,1,0}
        MI_SYS_BindChnPort {vdec,0,1,0} {disp,0,1,0} 15 15
        MI_VDEC_StopChn 0
        MI_VDEC_StartChn 0
        MI_VDEC_StopChn 1
        MI_VDEC_StartChn 1
    )"));
    EXPECT_EQ(playback_status, 1u);
    EXPECT_PRINTED_IN_ORDER(R"(
        ------------ext_playback_start------------ChnnBits 2147483658 8000000a playback_start---SignalSpitMode:7 
        unbind vpss success! 
        [vdec_venc.c-#] Vo :0 sucess to bind vpss:0 
        unbind vpss success! 
        unbind vpss success! 
        [vdec_venc.c-#] Vo :1 sucess to bind vpss:1 
    )");
    EXPECT_EQ(recording::printed_text().find("fault"), std::string::npos);
}

TEST(PlaybackStart, PutsTheAudioControlIntoPlayback)
{
    audio_ctrl = {1, 8, 9, 0, 7, {3, 4, 5}, 6, {1, 2, 3, 4}};
    start_decoders(1);
    EXPECT_EQ(ext_playback_start(0, 0), 0);
    expect_audio_words(2);
    EXPECT_EQ(audio_ctrl.chn_num, 6u);
    EXPECT_EQ(audio_ctrl.zero_5[1], 4u);
}

/* Live intake and the audio thread see playback before the first port changes hands. */
TEST(PlaybackStart, OwnsTheDisplayBeforeItTouchesThePorts)
{
    start_decoders(1);
    uint32_t status = 0, audio = 0;
    platform.script("MI_SYS_UnBindChnPort").once().fills([&](recording::Args &) {
        status = playback_status;
        audio = audio_ctrl.mode;
    });
    EXPECT_EQ(ext_playback_start(0, 0), 0);
    EXPECT_EQ(status, 1u);
    EXPECT_EQ(audio, 2u);
}

TEST(PlaybackStart, GoesOnWhenAPortWasNotBoundBefore)
{
    start_decoders(1);
    platform.script("MI_SYS_UnBindChnPort").once().returns(kDisplayRefused);
    EXPECT_EQ(ext_playback_start(0, 0), 0);
    EXPECT_PRINTED("[vdec_venc.c-#] Vo fault to unbind vpss errno is 0xffffffff");
    EXPECT_EQ(platform.count("MI_SYS_BindChnPort"), 2u);
    EXPECT_EQ(platform.count("MI_VDEC_StartChn"), 1u);
}

TEST(PlaybackStart, EndsAtThePortThatCannotBeBoundWithPlaybackOwningTheDisplay)
{
    start_decoders(3);
    platform.script("MI_SYS_BindChnPort").with("{vdec,0,1,0}").once().returns(kDisplayRefused);
    EXPECT_EQ(ext_playback_start(0, 0), -1);
    EXPECT_PRINTED("[vdec_venc.c-#] Vo fault to bind vpss errno is 0xffffffff");
    EXPECT_EQ(playback_status, 1u);
    EXPECT_EQ(platform.count("MI_SYS_UnBindChnPort {vdec,0,2,0}"), 0u);
    EXPECT_EQ(platform.count("MI_VDEC_StopChn"), 0u);
}

TEST(PlaybackStart, GoesOnWhenTheSecondBindingFails)
{
    start_decoders(2);
    platform.script("MI_SYS_BindChnPort").nth(2).returns(kDisplayRefused);
    EXPECT_EQ(ext_playback_start(0, 0), 0);
    EXPECT_PRINTED("[vdec_venc.c-#] Vo:0 fault to bind vpss:0 errno is 0xffffffff");
    EXPECT_EQ(platform.count("MI_SYS_BindChnPort"), 4u);
}

/* The decoder count is start-up's: ports beyond it stay without a decoder. */
TEST(PlaybackStart, BindsNoDecoderThatWasNeverAskedFor)
{
    start_decoders(1);
    platform.have_decoders(3);
    g_vi_chn_num = 3;
    EXPECT_EQ(ext_playback_start(0, 0), 0);
    EXPECT_EQ(platform.count("MI_SYS_BindChnPort {vdec,0,0,0}"), 2u);
    EXPECT_EQ(platform.count("MI_SYS_BindChnPort {vdec,0,1,0}"), 2u); // vdec_chnn is 2
    EXPECT_EQ(platform.count("MI_SYS_BindChnPort {vdec,0,2,0}"), 1u);
}

TEST(PlaybackStart, NeverReachesBeyondItsPortTable)
{
    for (int32_t cameras : {-1, 0, 1000000}) {
        g_vi_chn_num = cameras;
        platform.forget();
        platform.ignore("MI_VDEC_");
        if (cameras > 0) {
            // The decoder reset runs over all cameras; this is about the table of 16 ports.
            platform.script("MI_SYS_BindChnPort").with("{vdec,0,15,0}").returns(kDisplayRefused);
            EXPECT_EQ(ext_playback_start(0, 0), -1);
        } else {
            EXPECT_EQ(ext_playback_start(0, 0), 0);
            EXPECT_EQ(platform.calls(), "");
        }
        EXPECT_EQ(platform.count("MI_SYS_BindChnPort {vdec,0,16,0}"), 0u);
    }
}

TEST(Playback, LiveFramesStayOutFromStartToExit)
{
    start_decoders(2);
    cur_display_chnn = 0x01;
    EXPECT_EQ(send_video(0), 0);
    EXPECT_EQ(ext_playback_start(0, 0), 0);
    EXPECT_EQ(send_video(0), -1);
    EXPECT_EQ(ext_playback_exit(), 0);
    EXPECT_EQ(send_video(0), 0);
    platform.forget();
    EXPECT_EQ(send_video(1), 0); // not shown before, and decoded now
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 1"), 1u);
}

TEST(PlaybackExit, ResetsTheDecodersAndClearsEveryPortOfTheCurrentDevice)
{
    platform.have_decoders(2);
    g_vi_chn_num = 2;
    globalVoDev = -1;
    playback_status = 1;
    cur_display_chnn = 0;
    EXPECT_EQ(ext_playback_exit(), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VDEC_StopChn 0
        MI_VDEC_StartChn 0
        MI_VDEC_StopChn 1
        MI_VDEC_StartChn 1
        MI_DISP_ClearInputPortBuffer -1 0 1
        MI_DISP_ClearInputPortBuffer -1 1 1
    )"));
    EXPECT_EQ(playback_status, 0u);
    EXPECT_EQ(cur_display_chnn, 255);
    EXPECT_EQ(recording::printed_text().find("fail"), std::string::npos);
    EXPECT_PRINTED_IN_ORDER(R"(
        MI_DISP_ClearInputPortBuffer###chn=0
        MI_DISP_ClearInputPortBuffer###chn=1
    )");
}

/* Live intake runs beside it: frames come in before the reset, and hidden channels only behind it. */
TEST(PlaybackExit, IsLiveBeforeTheDecodersAreResetAndShowsEveryChannelAfterwards)
{
    g_vi_chn_num = 1;
    playback_status = 1;
    cur_display_chnn = 0x02;
    uint32_t status_at_reset = 9;
    int32_t shown_at_reset = 0, shown_at_clear = 0;
    platform.script("MI_VDEC_StopChn").fills([&](recording::Args &) {
        status_at_reset = playback_status;
        shown_at_reset = cur_display_chnn;
    });
    platform.script("MI_DISP_ClearInputPortBuffer").fills([&](recording::Args &) {
        shown_at_clear = cur_display_chnn;
    });
    EXPECT_EQ(ext_playback_exit(), 0);
    EXPECT_EQ(status_at_reset, 0u);
    EXPECT_EQ(shown_at_reset, 0x02);
    EXPECT_EQ(shown_at_clear, 255);
}

TEST(PlaybackStop, GivesTheAudioControlBackToLiveAndStaysInPlayback)
{
    playback_status = 1;
    audio_ctrl = {2, 8, 9, 0, 7, {0, 0, 0}, 6, {0, 0, 0, 0}};
    EXPECT_EQ(ext_playback_stop(), 0);
    expect_audio_words(1);
    EXPECT_EQ(playback_status, 1u);
    EXPECT_EQ(platform.calls(), "");
}

TEST(PlaybackDisableChannel, SwitchesThePortOfDevice0Off)
{
    globalVoDev = 2;
    EXPECT_EQ(ext_playback_disable_channel(5), 0);
    EXPECT_EQ(platform.calls(), trace("MI_DISP_DisableInputPort 0 5"));
    EXPECT_PRINTED("DISENABLE");
}

/* The result of a failure is the length of its text. */
TEST(PlaybackDisableChannel, AnswersTheNumberOfCharactersPrinted)
{
    platform.script("MI_DISP_DisableInputPort").returns(kDisplayRefused);
    int32_t result = ext_playback_disable_channel(3);
    EXPECT_PRINTED("[vdec_venc.c-#] Vo fault to unbind vpss errno is 0xa00f0003");
    std::string text = recording::printed_text();
    size_t line = text.find('[');
    ASSERT_NE(line, std::string::npos);
    EXPECT_EQ(result, static_cast<int32_t>(text.size() - line));
}

TEST(Playback, ResetAndStopGoThroughEveryCamera)
{
    g_vi_chn_num = 2;
    EXPECT_EQ(ext_resetplaychn(), 0);
    EXPECT_EQ(ext_stopplaychn(), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VDEC_StopChn 0
        MI_VDEC_StartChn 0
        MI_VDEC_StopChn 1
        MI_VDEC_StartChn 1
        MI_VDEC_StopChn 0
        MI_VDEC_StopChn 1
    )"));
}

TEST(Playback, PausingTakesAnythingAndDoesNothing)
{
    EXPECT_EQ(ext_playback_set_pause_flag(), 0);
    EXPECT_EQ(ext_playback_set_pause_flag(3, "x"), 0);
    EXPECT_EQ(platform.calls(), "");
}

} // namespace
