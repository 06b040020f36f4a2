/* The analog decoder chips: every command with its record, every failure with its text. */
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>

#include "ad_driver.h"
#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

std::string bytes_of(const void *record, unsigned size)
{
    std::string text = "{";
    char byte[4];
    for (unsigned i = 0; i < size; ++i) {
        std::snprintf(byte, sizeof byte, i == 0 ? "%02x" : " %02x", static_cast<const uint8_t *>(record)[i]);
        text += byte;
    }
    return text + "}";
}

/* Show each request's record as its bytes; the size is in the request's code. */
void show_records()
{
    for (const unsigned long request :
         {AD_GET_LOSS, AD_SET_ADJUST, AD_GET_ADJUST, AD_SET_NORM, AD_GET_NORM, AD_SET_WORK_MODE,
          AD_SET_SAMPLE_RATE, AD_SET_AUDIO_PLAYBACK, AD_SET_AUDIO_VOLUME, AD_SET_AUDIO_FORMAT,
          AD_SET_AUDIO_BITWIDTH, AD_SET_MUTE})
        platform.describe_request(
            request, [request](const void *record) { return bytes_of(record, _IOC_SIZE(request)); });
}

std::string one_request(const std::string &request)
{
    return "board_open /dev/vc0725dev rdwr\nboard_ioctl /dev/vc0725dev " + request +
           "\nboard_close /dev/vc0725dev";
}

AdVideoLoss loss = {3, 1, 0};
AdColorAdjust adjust = {{0x11, 0x22, 0x33}};
uint8_t norm = 0xEE;

struct Command {
    const char *name;
    std::function<int32_t()> call;
    const char *request;
    const char *failure;
};

void PrintTo(const Command &command, std::ostream *out)
{
    *out << command.name;
}

const Command kCommands[] = {
    {"norm", [] { return ad_set_norm(1); }, "0x40087607 {02 00 00 00 01 00 00 00}",
     "set tw2865(2) video set mode fail"},
    {"get_norm", [] { return ad_get_norm(&norm); }, "0xc0087608 {02 00 00 00 00 00 00 00}",
     "set VC0725(2) video get mode fail"},
    {"work_mode", [] { return ad_work_mode(3); }, "0x40037609 {02 03 00}",
     "set vc0725(2) video work mode fail"},
    {"loss", [] { return ad_get_loss(&loss); }, "0xc00c7604 {03 00 00 00 01 00 00 00 00 00 00 00}",
     "set VC0725(3) video get loss fail"},
    {"adjust", [] { return ad_set_adjust(7, 0x1FF, 9); }, "0x400c7605 {07 00 00 00 ff 01 00 00 09 00 00 00}",
     "set VC0725(7) video set adjust fail"},
    {"get_adjust", [] { return ad_get_adjust(&adjust); }, "0xc00c7606 {11 00 00 00 22 00 00 00 33 00 00 00}",
     "set VC0725(17) video get adjust fail"},
    {"rate_8000", [] { return ad_set_sample_rate(8000); }, "0x400c760a {02 00 00 00 00 00 00 00 00 00 00 00}",
     "samplerate = 0 video SET_SAMPLE_RATE fail"},
    {"rate_16000", [] { return ad_set_sample_rate(16000); },
     "0x400c760a {02 00 00 00 01 00 00 00 00 00 00 00}", "samplerate = 1 video SET_SAMPLE_RATE fail"},
    {"rate_32000", [] { return ad_set_sample_rate(32000); },
     "0x400c760a {02 00 00 00 02 00 00 00 00 00 00 00}", "samplerate = 2 video SET_SAMPLE_RATE fail"},
    {"rate_44100", [] { return ad_set_sample_rate(44100); },
     "0x400c760a {02 00 00 00 03 00 00 00 00 00 00 00}", "samplerate = 3 video SET_SAMPLE_RATE fail"},
    {"rate_48000", [] { return ad_set_sample_rate(48000); },
     "0x400c760a {02 00 00 00 04 00 00 00 00 00 00 00}", "samplerate = 4 video SET_SAMPLE_RATE fail"},
    {"playback", [] { return ad_set_audio_playback(5); }, "0x4008760b {02 00 00 00 05 00 00 00}",
     "set VC0725(2) video SET_AUDIO_PLAYBACK fail"},
    {"volume", [] { return ad_set_audio_volume(8); }, "0x4008760d {02 00 00 00 08 00 00 00}",
     "set VC0725(2) video SET_AUDIO_DA_VOLUME fail"},
    {"format", [] { return ad_set_audio_format(6); }, "0x4008760e {02 00 00 00 06 00 00 00}",
     "audio_format =  video SET_AUDIO_FORMAT fail"},
    // The same command as the audio format, on purpose.
    {"audio_mode_2", [] { return ad_audio_work_mode(2); }, "0x4008760e {02 00 00 00 01 00 00 00}",
     "ioctl VC0725_SET_AUDIO_FORMAT err !!! "},
    {"audio_mode_1", [] { return ad_audio_work_mode(1); }, "0x4008760e {02 00 00 00 00 00 00 00}",
     "ioctl VC0725_SET_AUDIO_FORMAT err !!! "},
    {"audio_mode_3", [] { return ad_audio_work_mode(3); }, "0x4008760e {02 00 00 00 00 00 00 00}",
     "ioctl VC0725_SET_AUDIO_FORMAT err !!! "},
    {"bitwidth", [] { return ad_set_audio_bitwidth(0); }, "0x4008760f {02 00 00 00 00 00 00 00}",
     "bitwidth = 0 video SET_AUDIO_BITWIDTH fail"},
    {"mute", [] { return ad_set_mute(1); }, "0x40087610 {02 00 00 00 01 00 00 00}",
     "set VC0725(2) video ad_set_mute fail"},
};

} // namespace

class ChipCommand : public testing::TestWithParam<Command>
{
};

TEST_P(ChipCommand, OpensAsksAndCloses)
{
    show_records();
    EXPECT_EQ(GetParam().call(), 0);
    EXPECT_EQ(platform.calls(), one_request(GetParam().request));
    EXPECT_EQ(recording::printed_text(), "");
}

TEST_P(ChipCommand, PrintsItsFailureAndCloses)
{
    show_records();
    platform.script("board_ioctl").returns(-1);
    EXPECT_EQ(GetParam().call(), -1);
    EXPECT_EQ(platform.calls(), one_request(GetParam().request));
    EXPECT_PRINTED_AS_ERROR("vc0725.c", GetParam().failure);
}

TEST_P(ChipCommand, FailsWithoutADriver)
{
    platform.node(AD_NODE).fails_to_open();
    EXPECT_EQ(GetParam().call(), -1);
    EXPECT_EQ(platform.calls(), "board_open /dev/vc0725dev rdwr");
    EXPECT_PRINTED_AS_ERROR("vc0725.c", "open /dev/vc0725dev fail");
}

INSTANTIATE_TEST_SUITE_P(Each, ChipCommand, testing::ValuesIn(kCommands),
                         [](const auto &param) { return std::string(param.param.name); });

TEST_P(ChipCommand, WorksOnDescriptorZeroAndTakesEveryResultButAnError)
{
    platform.node(AD_NODE).opens_as(0);
    platform.script("board_ioctl").returns(3);
    EXPECT_EQ(GetParam().call(), 0);
    EXPECT_EQ(platform.node(AD_NODE).open_count(), 0u);
}

TEST(Chips, GiveTheNormAsOneByte)
{
    platform.node(AD_NODE).ioctl(AD_GET_NORM).fills([](recording::Args &call) {
        call.record<AdChipValue>(2).value = 0x1234;
    });
    uint8_t bytes[2] = {0xEE, 0xEE};
    EXPECT_EQ(ad_get_norm(bytes), 0);
    EXPECT_EQ(bytes[0], 0x34);
    EXPECT_EQ(bytes[1], 0xEE);
}

TEST(Chips, AFailedReadLeavesTheNorm)
{
    platform.script("board_ioctl").returns(-1);
    uint8_t byte = 0xEE;
    EXPECT_EQ(ad_get_norm(&byte), -1);
    EXPECT_EQ(byte, 0xEE);
}

TEST(Chips, FillTheCallersRecords)
{
    platform.node(AD_NODE).ioctl(AD_GET_LOSS).fills([](recording::Args &call) {
        call.record<AdVideoLoss>(2).lost = 9;
    });
    AdVideoLoss record = {1, 2, 0};
    EXPECT_EQ(ad_get_loss(&record), 0);
    EXPECT_EQ(record.lost, 9u);
}

TEST(Chips, RefuseNullRecordsOtherRatesAndOtherWidths)
{
    EXPECT_EQ(ad_get_norm(nullptr), -1);
    EXPECT_EQ(ad_get_loss(nullptr), -1);
    EXPECT_EQ(ad_get_adjust(nullptr), -1);
    EXPECT_EQ(recording::printed_text(), "");
    for (const uint32_t rate : {0u, 1u, 7999u, 22050u, 0xFFFFFFFFu})
        EXPECT_EQ(ad_set_sample_rate(rate), -1);
    EXPECT_PRINTED_WITHOUT_PREFIX("func(ad_set_sample_rate) line(#): vc0725 not support enSample:22050");
    EXPECT_EQ(ad_set_audio_bitwidth(1), -1);
    EXPECT_PRINTED_WITHOUT_PREFIX("func(ad_set_audio_bitwidth) line(#): vc0725 not support bitwidth 1!");
    EXPECT_EQ(platform.calls(), "");
}

TEST(ChipStart, SetsEveryInputsModeAndTheNorm)
{
    show_records();
    g_vi_chn_num = 5;
    EXPECT_EQ(Init_AD(1), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        board_open /dev/vc0725dev rdwr
        board_ioctl /dev/vc0725dev 0x40037609 {00 01 00}
        board_ioctl /dev/vc0725dev 0x40037609 {00 01 01}
        board_ioctl /dev/vc0725dev 0x40037609 {00 01 02}
        board_ioctl /dev/vc0725dev 0x40037609 {00 01 03}
        board_ioctl /dev/vc0725dev 0x40037609 {01 01 00}
        board_ioctl /dev/vc0725dev 0x40087607 {02 00 00 00 01 00 00 00}
        board_close /dev/vc0725dev
    )"));
}

TEST(ChipStart, UsesModeThreeWhenOneMainStreamIs960By576)
{
    show_records();
    g_vi_chn_num = 2;
    major_stream[1].size_class = 5;
    EXPECT_EQ(Init_AD(0), 0);
    EXPECT_EQ(platform.calls({"board_ioctl"}), trace(R"(
        board_ioctl /dev/vc0725dev 0x40037609 {00 03 00}
        board_ioctl /dev/vc0725dev 0x40037609 {00 03 01}
        board_ioctl /dev/vc0725dev 0x40087607 {02 00 00 00 02 00 00 00}
    )"));
    major_stream[1].size_class = 0;
    major_stream[0].size_class = 5;
    platform.forget();
    EXPECT_EQ(Init_AD(0), 0);
    EXPECT_EQ(platform.count("board_ioctl /dev/vc0725dev 0x40037609 {00 03 01}"), 1u);
    major_stream[0].size_class = 4;
    major_stream[2].size_class = 5; // not one of the two channels
    platform.forget();
    EXPECT_EQ(Init_AD(7), 0);
    EXPECT_EQ(platform.count("board_ioctl /dev/vc0725dev 0x40037609 {00 01 00}"), 1u);
    EXPECT_EQ(platform.count("board_ioctl /dev/vc0725dev 0x40087607 {02 00 00 00 01 00 00 00}"), 1u);
}

TEST(ChipStart, LooksAtTheLastMainStreamToo)
{
    show_records();
    g_vi_chn_num = 17;
    major_stream[16].size_class = 5;
    EXPECT_EQ(Init_AD(1), 0);
    EXPECT_EQ(platform.count("board_ioctl /dev/vc0725dev 0x40037609"), 17u);
    EXPECT_EQ(platform.count("board_ioctl /dev/vc0725dev 0x40037609 {00 03 00}"), 1u);
    EXPECT_EQ(platform.count("board_ioctl /dev/vc0725dev 0x40037609 {04 03 00}"), 1u);
}

TEST(ChipStart, StopsAtTheFirstRefusedInput)
{
    platform.script("board_ioctl").nth(7).returns(-1); // chip 1, input 2
    EXPECT_EQ(Init_AD(1), -1);
    EXPECT_EQ(platform.count("board_ioctl"), 7u);
    EXPECT_PRINTED("set vc0725(1) video work mode fail");
    EXPECT_EQ(platform.node(AD_NODE).open_count(), 0u);
}

// The number is the channel count here, not the record's first field.
TEST(ChipStart, PrintsTheChannelCountWhenTheNormIsRefused)
{
    platform.node(AD_NODE).ioctl(AD_SET_NORM).returns(-1);
    EXPECT_EQ(Init_AD(1), -1);
    EXPECT_PRINTED_AS_ERROR("vc0725.c", "set VC0725(8) video mode fail");
    EXPECT_EQ(platform.node(AD_NODE).open_count(), 0u);
}

TEST(ChipStart, FailsWithoutADriver)
{
    platform.node(AD_NODE).fails_to_open();
    EXPECT_EQ(Init_AD(1), -1);
    EXPECT_PRINTED_AS_ERROR("vc0725.c", "open VC0725 (/dev/vc0725dev) fail");
}
