/* What the audio output refuses, with its code and the line that says why. */
#include "audio_speaker.h"

using namespace speaker;
using rig::code;

namespace
{

class Seam : public rig::Board
{
protected:
    void SetUp() override
    {
        Board::SetUp();
        vboard_set_loud(0);
        vboard_clock_take();
    }
};

constexpr MI_AO_PubAttr kAttr = {48000, 0, 0, 0, 0, 2048, 1, 0};
constexpr MI_AO_AdecAttr kALaw = {MI_AO_CODEC_G711A, 48000, 0};

void expect_refusal(int32_t result, MI_Reason reason, const char *text)
{
    EXPECT_EQ(result, code(MI_MODULE_AO, reason)) << text;
    EXPECT_EQ(rig::last_refusal().rfind(text + std::string(" ("), 0), 0u) << rig::last_refusal();
}

void enable(uint32_t device, const MI_AO_PubAttr &attr = kAttr)
{
    ASSERT_EQ(MI_AO_SetPubAttr(device, &attr), MI_SUCCESS);
    ASSERT_EQ(MI_AO_Enable(device), MI_SUCCESS);
    ASSERT_EQ(MI_AO_EnableChn(device, 0), MI_SUCCESS);
}

TEST_F(Seam, HasEightDevicesWithOneChannelEach)
{
    for (uint32_t device = 0; device < 8; ++device)
        enable(device);
    expect_refusal(MI_AO_SetPubAttr(8, &kAttr), MI_REASON_BAD_DEVICE, "MI_AO_SetPubAttr: audio device 8");
    expect_refusal(MI_AO_Enable(UINT32_MAX), MI_REASON_BAD_DEVICE, "MI_AO_Enable: audio device 4294967295");
    expect_refusal(MI_AO_SetMute(8, 1), MI_REASON_BAD_DEVICE, "MI_AO_SetMute: audio device 8");
    expect_refusal(MI_AO_SetVolume(8, 0), MI_REASON_BAD_DEVICE, "MI_AO_SetVolume: audio device 8");
    expect_refusal(MI_AO_EnableChn(3, 1), MI_REASON_BAD_CHANNEL, "MI_AO_EnableChn: audio channel 1");
    expect_refusal(MI_AO_SetAdecAttr(3, 1, &kALaw), MI_REASON_BAD_CHANNEL,
                   "MI_AO_SetAdecAttr: audio channel 1");
    expect_refusal(MI_AO_EnableAdec(3, 1), MI_REASON_BAD_CHANNEL, "MI_AO_EnableAdec: audio channel 1");
    expect_refusal(MI_AO_EnableReSmp(3, 1, 8000), MI_REASON_BAD_CHANNEL,
                   "MI_AO_EnableReSmp: audio channel 1");
    const tone::Bytes bytes(320);
    const MI_AO_Frame frame = frame_of(bytes);
    expect_refusal(MI_AO_SendFrame(3, 1, &frame, 0), MI_REASON_BAD_CHANNEL,
                   "MI_AO_SendFrame: audio channel 1");
}

TEST_F(Seam, RefusesAttributesThatItCannotPlay)
{
    struct Row {
        MI_AO_PubAttr attr;
        MI_Reason reason;
    };
    constexpr Row kRows[] = {
        {{0, 0, 0, 0, 0, 2048, 1, 0}, MI_REASON_BAD_VALUE},
        {{47999, 0, 0, 0, 0, 2048, 1, 0}, MI_REASON_BAD_VALUE},
        {{96000, 0, 0, 0, 0, 2048, 1, 0}, MI_REASON_BAD_VALUE},
        {{48000, 0, 0, 0, 0, 63, 1, 0}, MI_REASON_BAD_VALUE},
        {{48000, 0, 0, 0, 0, 4097, 1, 0}, MI_REASON_BAD_VALUE},
        {{48000, 0, 0, 0, 65, 2048, 1, 0}, MI_REASON_BAD_VALUE},
        {{48000, 1, 0, 0, 0, 2048, 1, 0}, MI_REASON_UNSUPPORTED},
        {{48000, 0, 1, 0, 0, 2048, 1, 0}, MI_REASON_UNSUPPORTED},
        {{48000, 0, 0, 1, 0, 2048, 1, 0}, MI_REASON_UNSUPPORTED},
        {{48000, 0, 0, 0, 0, 2048, 2, 0}, MI_REASON_UNSUPPORTED},
        {{48000, 0, 0, 0, 0, 2048, 0, 0}, MI_REASON_UNSUPPORTED},
        {{48000, 0, 0, 0, 0, 2048, 1, 1}, MI_REASON_UNSUPPORTED},
    };
    for (const Row &row : kRows)
        EXPECT_EQ(MI_AO_SetPubAttr(3, &row.attr), code(MI_MODULE_AO, row.reason)) << rig::last_refusal();
    expect_refusal(MI_AO_SetPubAttr(3, nullptr), MI_REASON_NULL_POINTER, "MI_AO_SetPubAttr: no attributes");
    expect_refusal(MI_AO_Enable(3), MI_REASON_NOT_READY, "MI_AO_Enable: audio device 3 has no attributes");
}

TEST_F(Seam, KeepsTheAttributesOfADeviceThatRuns)
{
    MI_AO_PubAttr other = kAttr;
    other.sample_rate = 8000;
    ASSERT_EQ(MI_AO_SetPubAttr(3, &other), MI_SUCCESS);
    enable(3);
    EXPECT_EQ(MI_AO_SetPubAttr(3, &kAttr), MI_SUCCESS) << "the same ones";
    expect_refusal(MI_AO_SetPubAttr(3, &other), MI_REASON_NOT_PERMITTED,
                   "MI_AO_SetPubAttr: audio device 3 is enabled: its attributes cannot change");
    EXPECT_EQ(MI_AO_Enable(3), MI_SUCCESS);
}

TEST_F(Seam, WantsItsStepsInOrder)
{
    const tone::Bytes bytes(320);
    const MI_AO_Frame frame = frame_of(bytes);
    const char *not_enabled = "audio device 3 is not enabled";
    const auto text = [](const char *call, const char *why) { return std::string(call) + ": " + why; };
    expect_refusal(MI_AO_EnableChn(3, 0), MI_REASON_NOT_READY, text("MI_AO_EnableChn", not_enabled).c_str());
    expect_refusal(MI_AO_SetMute(3, 1), MI_REASON_NOT_READY, text("MI_AO_SetMute", not_enabled).c_str());
    expect_refusal(MI_AO_SetVolume(3, 0), MI_REASON_NOT_READY, text("MI_AO_SetVolume", not_enabled).c_str());
    expect_refusal(MI_AO_SendFrame(3, 0, &frame, -1), MI_REASON_NOT_READY,
                   text("MI_AO_SendFrame", not_enabled).c_str());
    ASSERT_EQ(MI_AO_SetPubAttr(3, &kAttr), MI_SUCCESS);
    ASSERT_EQ(MI_AO_Enable(3), MI_SUCCESS);
    const char *no_channel = "channel 0 of audio device 3 is not enabled";
    expect_refusal(MI_AO_SetAdecAttr(3, 0, &kALaw), MI_REASON_NOT_READY,
                   text("MI_AO_SetAdecAttr", no_channel).c_str());
    expect_refusal(MI_AO_EnableAdec(3, 0), MI_REASON_NOT_READY, text("MI_AO_EnableAdec", no_channel).c_str());
    expect_refusal(MI_AO_EnableReSmp(3, 0, 8000), MI_REASON_NOT_READY,
                   text("MI_AO_EnableReSmp", no_channel).c_str());
    expect_refusal(MI_AO_SendFrame(3, 0, &frame, -1), MI_REASON_NOT_READY,
                   text("MI_AO_SendFrame", no_channel).c_str());
    ASSERT_EQ(MI_AO_EnableChn(3, 0), MI_SUCCESS);
    expect_refusal(MI_AO_EnableAdec(3, 0), MI_REASON_NOT_READY,
                   "MI_AO_EnableAdec: the decoder of audio device 3 has no attributes");
}

TEST_F(Seam, RefusesDecodersRatesAndVolumesThatItDoesNotHave)
{
    enable(3);
    constexpr MI_AO_AdecAttr kCodec = {1, 48000, 0};
    constexpr MI_AO_AdecAttr kStereo = {0, 48000, 1};
    constexpr MI_AO_AdecAttr kRate = {0, 1, 0};
    expect_refusal(MI_AO_SetAdecAttr(3, 0, &kCodec), MI_REASON_UNSUPPORTED,
                   "MI_AO_SetAdecAttr: audio codec 1, only 0 (A-law)");
    expect_refusal(MI_AO_SetAdecAttr(3, 0, &kStereo), MI_REASON_UNSUPPORTED,
                   "MI_AO_SetAdecAttr: sound mode 1, only 0 (mono)");
    expect_refusal(MI_AO_SetAdecAttr(3, 0, &kRate), MI_REASON_BAD_VALUE,
                   "MI_AO_SetAdecAttr: sample rate 1 Hz");
    expect_refusal(MI_AO_SetAdecAttr(3, 0, nullptr), MI_REASON_NULL_POINTER,
                   "MI_AO_SetAdecAttr: no attributes");
    expect_refusal(MI_AO_EnableReSmp(3, 0, 8001), MI_REASON_BAD_VALUE,
                   "MI_AO_EnableReSmp: input rate 8001 Hz");
    EXPECT_EQ(MI_AO_SetVolume(3, -60), MI_SUCCESS);
    EXPECT_EQ(MI_AO_SetVolume(3, 30), MI_SUCCESS);
    expect_refusal(MI_AO_SetVolume(3, -61), MI_REASON_BAD_VALUE,
                   "MI_AO_SetVolume: volume -61 dB, -60 to 30 can be had");
    expect_refusal(MI_AO_SetVolume(3, INT32_MAX), MI_REASON_BAD_VALUE,
                   "MI_AO_SetVolume: volume 2147483647 dB, -60 to 30 can be had");
    EXPECT_EQ(stat().volume_db, 30);
}

TEST_F(Seam, RefusesBlocksThatItCannotPlay)
{
    enable(3);
    const tone::Bytes bytes(4 * kCapacity);
    MI_AO_Frame frame = frame_of(bytes);
    expect_refusal(MI_AO_SendFrame(3, 0, nullptr, 0), MI_REASON_NULL_POINTER,
                   "MI_AO_SendFrame: no audio block");
    frame.data[0] = nullptr;
    expect_refusal(MI_AO_SendFrame(3, 0, &frame, 0), MI_REASON_NULL_POINTER,
                   "MI_AO_SendFrame: no audio bytes");
    frame = frame_of(bytes);
    frame.length_bytes = 0;
    expect_refusal(MI_AO_SendFrame(3, 0, &frame, 0), MI_REASON_BAD_VALUE,
                   "MI_AO_SendFrame: a block of 0 bytes, 2 a sample");
    frame.length_bytes = 321;
    expect_refusal(MI_AO_SendFrame(3, 0, &frame, 0), MI_REASON_BAD_VALUE,
                   "MI_AO_SendFrame: a block of 321 bytes, 2 a sample");
    for (uint32_t too_long : {2 * kCapacity + 2, UINT32_MAX - 1}) {
        frame.length_bytes = too_long;
        EXPECT_EQ(MI_AO_SendFrame(3, 0, &frame, -1), code(MI_MODULE_AO, MI_REASON_BAD_VALUE));
    }
    frame.length_bytes = 2 * kCapacity;
    frame.sound_mode = 1;
    expect_refusal(MI_AO_SendFrame(3, 0, &frame, 0), MI_REASON_UNSUPPORTED,
                   "MI_AO_SendFrame: bit width code 0, sound mode 1: only 0 of each");
    frame.sound_mode = 0;
    EXPECT_EQ(MI_AO_SendFrame(3, 0, &frame, 0), MI_SUCCESS) << "as much as fits";
    EXPECT_EQ(stat().blocks, 1u);
}

/* Without decoder and resampler a block is 16-bit samples at the device's rate, played as they are. */
TEST_F(Seam, PlaysSamplesAsTheyAre)
{
    enable(3);
    tone::Samples sound(1000);
    for (size_t i = 0; i < sound.size(); ++i)
        sound[i] = static_cast<int16_t>(i * 65 - 32768);
    MI_AO_Frame frame = {};
    frame.data[0] = sound.data();
    frame.length_bytes = 2000;
    ASSERT_EQ(MI_AO_SendFrame(3, 0, &frame, 0), MI_SUCCESS);
    play_out();
    EXPECT_EQ(heard(), sound);
}

TEST_F(Seam, PlaysAtOtherRates)
{
    constexpr uint32_t kRates_hz[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100};
    for (uint32_t rate_hz : kRates_hz) {
        SCOPED_TRACE(rate_hz);
        vboard_reset();
        vboard_clock_take();
        MI_AO_PubAttr attr = kAttr;
        attr.sample_rate = rate_hz;
        enable(3, attr);
        ASSERT_EQ(MI_AO_SetAdecAttr(3, 0, &kALaw), MI_SUCCESS);
        ASSERT_EQ(MI_AO_EnableAdec(3, 0), MI_SUCCESS);
        ASSERT_EQ(MI_AO_EnableReSmp(3, 0, 8000), MI_SUCCESS);
        constexpr int kFrames = 25; // a second
        const tone::Bytes sound = tone::sine(1000, 20000, kFrames * kFrameBytes);
        for (int i = 0; i < kFrames; ++i) {
            const tone::Bytes piece(sound.begin() + i * int{kFrameBytes},
                                    sound.begin() + (i + 1) * int{kFrameBytes});
            const MI_AO_Frame frame = frame_of(piece);
            ASSERT_EQ(MI_AO_SendFrame(3, 0, &frame, 0), MI_SUCCESS);
            ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
        }
        play_out();
        const tone::Samples out = heard(rate_hz / 50);
        EXPECT_NEAR(static_cast<double>(stat().played), rate_hz, 1.0);
        EXPECT_NEAR(tone::frequency_hz(out, rate_hz), 1000, 1);
        const tone::Fit came = tone::fit(out, 1000, rate_hz);
        EXPECT_NEAR(tone::decibels(came.amplitude / 20000), 0, 0.5);
        EXPECT_LT(came.rest_peak, 0.06 * 20000);
    }
}

} // namespace
