/* The audio output's own start-up, and the start of any further device. */
#include "audio_words.h"
#include "mi_ao.h"

using namespace audio_test;
using recording::platform;

namespace
{

TEST(AudioStart, SetsTheOutputUpInThisOrder)
{
    EXPECT_EQ(audio_init(), 0);
    EXPECT_EQ(platform.calls(), recording::trace(R"(
        MI_AO_SetPubAttr 3 {rate 48000 width 0 work 0 sound 0 frames 0 samples 2048 channels 1 codec channels 0}
        MI_AO_Enable 3
        MI_AO_EnableChn 3 0
        MI_AO_SetAdecAttr 3 0 {codec 0 rate 48000 sound 0}
        MI_AO_EnableAdec 3 0
        MI_AO_EnableReSmp 3 0 8000
    )"));
    EXPECT_EQ(recording::printed_lines().size(), 1u) << "the entry trace alone";
    EXPECT_PRINTED_WITHOUT_PREFIX(entry_of("audio_init"));
}

TEST(AudioStart, ClearsTheStateAndKeepsTheChannelCount)
{
    fill_audio_words();
    g_vi_chn_num = 11;
    ASSERT_EQ(audio_init(), 0);
    Words expected = {};
    expected[3] = 1;
    expected[8] = 11;
    EXPECT_EQ(audio_words(), expected);
}

TEST(AudioStart, LeavesTheStateAloneUntilEveryCallHasSucceeded)
{
    fill_audio_words();
    Words seen = {};
    platform.script("MI_AO_EnableReSmp").fills([&](recording::Args &) { seen = audio_words(); });
    ASSERT_EQ(audio_init(), 0);
    Words untouched;
    untouched.fill(kPattern);
    EXPECT_EQ(seen, untouched);
}

TEST(AudioStart, LeavesTalkbackAsItIs)
{
    speak_flag = 1;
    ASSERT_EQ(audio_init(), 0);
    EXPECT_EQ(speak_flag, 1u);
}

struct Step {
    const char *call, *message;
};
constexpr Step kSteps[] = {
    {"MI_AO_SetPubAttr", "MI_AO_SetPubAttr faile =0xa0050007"},
    {"MI_AO_Enable", "MI_AO_Enable faile =0xa0050007"},
    {"MI_AO_EnableChn", "MI_AO_EnableChn faile =0xa0050007"},
    {"MI_AO_SetAdecAttr", "MI_AO_SetAdecAttr faile =0xa0050007"},
    {"MI_AO_EnableAdec", "MI_AO_EnableAdec faile =0xa0050007"},
    {"MI_AO_EnableReSmp", "MI_AO_EnableReSmp faile =0xa0050007"},
};

TEST(AudioStart, StopsAtTheFirstFailureWithItsMessage)
{
    for (unsigned failing = 0; failing < std::size(kSteps); ++failing) {
        SCOPED_TRACE(kSteps[failing].call);
        platform.reset();
        recording::forget_printed();
        fill_audio_words();
        platform.script(kSteps[failing].call).returns(kRefused);
        EXPECT_EQ(audio_init(), -1);
        EXPECT_PRINTED_AS_ERROR("audio.c", kSteps[failing].message);
        EXPECT_EQ(recording::printed_lines().size(), 2u) << "the entry and one message";
        EXPECT_EQ(platform.count(""), failing + 1) << "nothing is called after it, nothing is taken back";
        Words untouched;
        untouched.fill(kPattern);
        EXPECT_EQ(audio_words(), untouched);
    }
}

/* Whatever is not 0 is a failure, a positive code too. */
TEST(AudioStart, TakesAPositiveCodeAsAFailure)
{
    platform.script("MI_AO_Enable").returns(1);
    EXPECT_EQ(audio_init(), -1);
    EXPECT_PRINTED_AS_ERROR("audio.c", "MI_AO_Enable faile =0x1");
}

TEST(AudioStart, IsRepeatedAsAWhole)
{
    ASSERT_EQ(audio_init(), 0);
    const std::string once = audio_calls();
    ext_audio_speek_start();
    platform.forget();
    ASSERT_EQ(audio_init(), 0);
    EXPECT_EQ(audio_calls(), once);
    EXPECT_EQ(audio_ctrl.mode, AUDIO_USE_OFF);
}

constexpr MI_AO_PubAttr kOtherAttr = {16000, 1, 2, 3, 4, 160, 5, 6};

TEST(AudioDeviceStart, SetsTheGivenAttributesAndEnables)
{
    fill_audio_words();
    EXPECT_EQ(audio_start_ao(0, 99, &kOtherAttr), 0);
    EXPECT_EQ(platform.calls(), recording::trace(R"(
        MI_AO_SetPubAttr 0 {rate 16000 width 1 work 2 sound 3 frames 4 samples 160 channels 5 codec channels 6}
        MI_AO_Enable 0
    )"));
    EXPECT_PRINTED(entry_of("audio_start_ao"));
    EXPECT_NOT_PRINTED(entry_of("audio_start_hdmi"));
    Words untouched;
    untouched.fill(kPattern);
    EXPECT_EQ(audio_words(), untouched);
}

TEST(AudioDeviceStart, TellsTheHdmiPathOfDeviceFiveFirst)
{
    platform.script("MI_AO_SetPubAttr").returns(kRefused);
    EXPECT_EQ(audio_start_ao(5, 0, &kOtherAttr), -1);
    EXPECT_PRINTED_IN_ORDER(entry_of("audio_start_ao") + "\n" + entry_of("audio_start_hdmi"));
}

TEST(AudioDeviceStart, TakesAnyDeviceNumberAndNoRecordToThePlatform)
{
    for (uint32_t device : {1u, 2u, 4u, 6u, 7u, 0x80000000u, UINT32_MAX}) {
        platform.forget();
        EXPECT_EQ(audio_start_ao(device, UINT32_MAX, nullptr), 0);
        const std::string number = std::to_string(device);
        EXPECT_EQ(platform.calls(), "MI_AO_SetPubAttr " + number + " null\nMI_AO_Enable " + number);
        EXPECT_NOT_PRINTED(entry_of("audio_start_hdmi"));
    }
}

/* The texts that name the failing call are the start-up sequence's. */
TEST(AudioDeviceStart, StopsAtTheFirstFailureWithoutAWord)
{
    platform.script("MI_AO_SetPubAttr").once().returns(kRefused);
    EXPECT_EQ(audio_start_ao(3, 0, &kOtherAttr), -1);
    EXPECT_EQ(platform.count("MI_AO_Enable"), 0u);
    platform.script("MI_AO_Enable").returns(kRefused);
    EXPECT_EQ(audio_start_ao(3, 0, &kOtherAttr), -1);
    EXPECT_EQ(platform.count("MI_AO_Enable"), 1u);
    EXPECT_PRINTED(entry_of("audio_start_ao"));
    EXPECT_EQ(recording::printed_lines().size(), 2u) << "the two entries";
}

} // namespace
