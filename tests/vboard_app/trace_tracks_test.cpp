/* trace_tracks_test.cpp - the rows of a trace's calls, and what is counted of them over time. */
#include <gtest/gtest.h>

#include <string>

#include "trace/counters.h"
#include "trace/trace_reader.h"
#include "trace/tracks.h"

namespace
{

using namespace vboard_app;

CallLine parsed(const std::string &line)
{
    CallLine call;
    EXPECT_EQ(parse_call(line, call), "") << line;
    return call;
}

TEST(Tracks, AreWhatACallIsAbout)
{
    Tracks tracks;
    const std::pair<const char *, const char *> lines[] = {
        {"1 MI_VDEC_StartChn 3 = 0", "VDEC 3"},
        {"1 MI_DISP_Enable -1 = 0", "DISP -1"},
        {"1 MI_DISP_EnableVideoLayer 1 = 0", "DISP layer 1"},
        {"1 MI_DISP_BindVideoLayer 1 0 = 0", "DISP layer 1"},
        {"1 MI_DISP_ShowInputPort 0 5 = 0", "DISP 0 port 5"},
        {"1 MI_AO_EnableChn 3 0 = 0", "AO 3"},
        {"1 MI_HDMI_Start 0 = 0", "HDMI 0"},
        {"1 MI_HDMI_DeInit = 0", "HDMI"},
        {"1 MI_DIVP_StopChn 0 = 0", "DIVP 0"},
        {"1 MI_SYS_Init = 0", "SYS"},
        {"1 MI_SYS_BindChnPort {module=8 device=0 channel=3 port=0} {module=15 device=0 channel=1 port=0} 15 "
         "15 = 0",
         "VDEC 3"},
        {"1 MI_SYS_UnBindChnPort {module=99 device=0 channel=3 port=0} null = -1", "SYS"},
        {"1 MI_SYS_SetChnOutputPortDepth {module=12 device=0 channel=2 port=0} 0 4 = 0", "DIVP 2"},
        {"1 board_open \"/dev/rtc0\" 2 = 1001", "/dev/rtc0"},
        {"1 board_ioctl 1001 5 data = 0", "/dev/rtc0"},
        {"1 board_ioctl 1002 5 data = 0", "descriptor 1002"},
        {"1 board_close 1001 = 0", "/dev/rtc0"},
        {"1 board_read 1001 data 4 = -1", "descriptor 1001"},
        {"1 board_sleep_us 5 = 0", "system"},
        {"1 event plug {plugged=0}", "events"},
        {"1 MI_VDEC_GetChnStat {a=1} - = -1", "VDEC {a=1}"},
        {"1 elsewhere = 0", "system"},
    };
    for (const auto &[line, track] : lines)
        EXPECT_EQ(tracks.of(parsed(line)), track) << line;
}

TEST(Tracks, StandInTheOrderOfTheirKindsAndNumbers)
{
    const char *ordered[] = {"events",        "SYS",          "VDEC 2",        "VDEC 10",
                             "DISP 0",        "DISP layer 0", "DISP 0 port 2", "DISP 0 port 11",
                             "DISP 1 port 0", "VENC 0",       "AO 3",          "HDMI 0",
                             "/dev/fb0",      "system",       "descriptor 7"};
    for (size_t at = 1; at < std::size(ordered); ++at)
        EXPECT_LT(Tracks::order(ordered[at - 1]), Tracks::order(ordered[at])) << ordered[at];
}

class Counted : public testing::Test
{
protected:
    void count(const std::string &line) { counters_.count(parsed(line)); }
    std::string told_since()
    {
        std::string all;
        all.swap(told_);
        return all;
    }

    std::string told_;
    Counters counters_{[this](const std::string &name, int64_t at_us, double value) {
        told_ +=
            name + " at " + std::to_string(at_us) + ": " + std::to_string(static_cast<int64_t>(value)) + "\n";
    }};
};

TEST_F(Counted, BacklogIsWhatTheDecoderSays)
{
    count("10 MI_VDEC_GetChnStat 2 {bytes=900 frames=3 pictures=1} = 0");
    EXPECT_EQ(told_since(), "VDEC 2 backlog, bytes at 10: 900\nVDEC 2 backlog, frames at 10: 3\n"
                            "VDEC 2 pictures waiting at 10: 1\n");
    count("20 MI_VDEC_GetChnStat 2 {bytes=900 frames=2 pictures=1} = 0");
    EXPECT_EQ(told_since(), "VDEC 2 backlog, frames at 20: 2\n");
    count("30 MI_VDEC_GetChnStat 2 - = 0xa0080005");
    count("40 MI_VDEC_StopChn 1 = 0");
    EXPECT_EQ(told_since(), "");
    count("50 MI_VDEC_StopChn 2 = 0");
    EXPECT_EQ(told_since(), "VDEC 2 backlog, bytes at 50: 0\nVDEC 2 backlog, frames at 50: 0\n"
                            "VDEC 2 pictures waiting at 50: 0\n");
}

TEST_F(Counted, SendsAreCountedOverASecond)
{
    const auto send = [&](int64_t at_us, const char *result) {
        count(std::to_string(at_us) +
              " MI_VDEC_SendStream 0 {length=1000 pts=0 end_of_frame=0 end_of_stream=0 crc32=0} 20 = " +
              result);
    };
    send(1000000, "0");
    send(1050000, "0");
    send(1060000, "0xa008000f"); // was not taken
    EXPECT_EQ(told_since(), "");
    send(1100000, "0");
    EXPECT_EQ(told_since(), "VDEC 0 sends/s at 1100000: 2\nVDEC 0 sent, kbit/s at 1100000: 16\n");
    count("5000000 MI_SYS_Init = 0");
    EXPECT_EQ(told_since(), "VDEC 0 sends/s at 1200000: 3\nVDEC 0 sent, kbit/s at 1200000: 24\n"
                            "VDEC 0 sends/s at 2100000: 1\nVDEC 0 sent, kbit/s at 2100000: 8\n"
                            "VDEC 0 sends/s at 2200000: 0\nVDEC 0 sent, kbit/s at 2200000: 0\n");
    send(6000000, "0");
    counters_.finish();
    EXPECT_EQ(told_since(), "VDEC 0 sends/s at 6100000: 1\nVDEC 0 sent, kbit/s at 6100000: 8\n");
}

TEST_F(Counted, PortsSoundAndPicturesAreCounted)
{
    count("1 MI_DISP_EnableInputPort 0 0 = 0");
    count("2 MI_DISP_EnableInputPort 0 1 = 0");
    count("3 MI_DISP_HideInputPort 0 0 = 0");
    count("4 MI_DISP_DisableInputPort 0 1 = 0xa00f0005");
    count("5 MI_DISP_ShowInputPort 0 0 = 0");
    count("6 MI_DISP_DisableInputPort 0 1 = 0");
    EXPECT_EQ(told_since(),
              "DISP 0 ports shown at 1: 1\nDISP 0 ports shown at 2: 2\nDISP 0 ports shown at 3: 1\n"
              "DISP 0 ports shown at 5: 2\nDISP 0 ports shown at 6: 1\n");
    count("7 MI_VENC_GetStream 1 {packs=1 sequence=0} 100 = 0");
    count("8 MI_VENC_GetStream 1 {packs=1 sequence=1} 100 = 0");
    EXPECT_EQ(told_since(), "VENC 1 pictures at 7: 1\nVENC 1 pictures at 8: 2\n");
    count("9 MI_AO_SendFrame 3 0 {bit_width=0 sound_mode=0 pts=0 sequence=0 length=320 crc32=0} 0 = 0");
    count("100000 MI_SYS_Init = 0");
    EXPECT_EQ(told_since(), "AO 3 sent, kbit/s at 100000: 2\n");
}

} // namespace
