/* The format records byte by byte, the alarm inputs, and the calls that only answer. */
#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;

namespace
{

using VideoRecord = std::array<uint8_t, 42>; // two bytes more than the record

constexpr VideoRecord kFull = {40, 0, 0,   0,   0xC0, 3,   0, 0, 0x40, 2, 0, 0, 1,    0,
                               16, 0, 'H', '2', '6',  '5', 0, 0, 0,    0, 0, 0, 0,    0,
                               0,  0, 0,   0,   0,    0,   0, 0, 0,    0, 0, 0, 0xEE, 0xEE};

VideoRecord format_of(uint32_t channel)
{
    VideoRecord record;
    record.fill(0xEE);
    EXPECT_EQ(ext_get_video_format(channel, record.data()), 0);
    return record;
}

std::array<uint32_t, 2> size_of(uint32_t channel)
{
    const VideoRecord record = format_of(channel);
    std::array<uint32_t, 2> size;
    std::memcpy(size.data(), record.data() + 4, sizeof size);
    return size;
}

using Size = std::array<uint32_t, 2>;

} // namespace

TEST(VideoFormat, IsThisRecordByteByByte)
{
    major_stream[2].width = 960;
    major_stream[2].height = 576;
    EXPECT_EQ(format_of(2), kFull);
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(VideoFormat, IsTheMainStreamsBelowNAndTheNetworkStreamsFromThereOn)
{
    for (uint32_t i = 0; i < 17; ++i)
        major_stream[i].width = 100 + i, major_stream[i].height = 200 + i;
    for (uint32_t i = 0; i < 16; ++i)
        minor_stream[i].width = 300 + i, minor_stream[i].height = 400 + i;
    EXPECT_EQ(size_of(0), (Size{100, 200}));
    EXPECT_EQ(size_of(7), (Size{107, 207}));
    EXPECT_EQ(size_of(8), (Size{300, 400}));
    EXPECT_EQ(size_of(23), (Size{315, 415}));
    EXPECT_EQ(size_of(24), (Size{0, 0}));
    EXPECT_EQ(size_of(0xFFFFFFFF), (Size{0, 0}));
    g_vi_chn_num = 100;
    EXPECT_EQ(size_of(16), (Size{116, 216}));
    EXPECT_EQ(size_of(17), (Size{0, 0}));
    EXPECT_EQ(size_of(100), (Size{300, 400}));
    g_vi_chn_num = 0;
    EXPECT_EQ(size_of(0), (Size{300, 400}));
}

TEST(VideoFormat, RefusesNull)
{
    EXPECT_EQ(ext_get_video_format(0, nullptr), -1);
}

TEST(AudioFormat, IsThisRecordByteByByte)
{
    std::array<uint8_t, 20> record;
    record.fill(0xEE);
    EXPECT_EQ(ext_get_audio_format(record.data()), 0);
    EXPECT_EQ(record, (std::array<uint8_t, 20>{6, 0, 1, 0, 0x40, 0x1F, 0, 0, 0x80, 0x3E,
                                               0, 0, 2, 0, 16,   0,    0, 0, 0xEE, 0xEE}));
    EXPECT_PRINTED("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEmisc.c,ext_get_audio_format,#");
    EXPECT_EQ(ext_get_audio_format(nullptr), -1);
}

TEST(Alarms, ThereAreNone)
{
    nvrhal_u64 status = 0x1122334455667788;
    EXPECT_EQ(ext_alarm_status_get(&status), 0);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(ext_alarm_status_get(nullptr), -1);
    EXPECT_PRINTED("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEmisc.c,ext_alarm_status_get,#");
}

struct ConstantAnswer {
    const char *name;
    int (*call)(...);
    int answer;
};

const ConstantAnswer kAnswers[] = {
    {"ext_capture_start", ext_capture_start, 1},
    {"ext_capture_stop", ext_capture_stop, 1},
    {"ext_chagne_system_time_flag", ext_chagne_system_time_flag, 1},
    {"ext_set_voutdev_brightness", ext_set_voutdev_brightness, 1},
    {"ext_led_set", ext_led_set, 1},
    {"ext_release_buf", ext_release_buf, 1},
    {"ext_rec_water_mark_set", ext_rec_water_mark_set, 1},
    {"ext_rec_water_mask_clean", ext_rec_water_mask_clean, 1},
    {"ext_set_output_nomenu_image", ext_set_output_nomenu_image, 1},
    {"ext_err_get_last_value", ext_err_get_last_value, 1},
    {"ext_lcd_screen_onoff", ext_lcd_screen_onoff, 1},
    {"ext_get_flash_param", ext_get_flash_param, 1},
    {"ext_get_board_used_chip_type", ext_get_board_used_chip_type, 1},
    {"ext_rec_osd_print", ext_rec_osd_print, 1},
    {"ext_rec_osd_clean", ext_rec_osd_clean, 1},
    {"ext_set_cover_area", ext_set_cover_area, 1},
    {"ext_clean_cover_area", ext_clean_cover_area, 1},
    {"ext_alarm_output_set", ext_alarm_output_set, 0},
    {"ext_change_display_zorder", ext_change_display_zorder, 0},
};

void PrintTo(const ConstantAnswer &row, std::ostream *out)
{
    *out << row.name;
}

class BoardNoop : public testing::TestWithParam<ConstantAnswer>
{
};

TEST_P(BoardNoop, LeavesItsTraceAndAnswersItsConstant)
{
    const ConstantAnswer &row = GetParam();
    const std::string trace = std::string("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEmisc.c,") + row.name + ",#";
    EXPECT_EQ(row.call(), row.answer);
    EXPECT_EQ(row.call(1, 2, 3), row.answer);
    EXPECT_EQ(row.call(nullptr, "text"), row.answer);
    EXPECT_EQ(recording::times_printed(trace), 3u);
    EXPECT_EQ(recording::printed_lines().size(), 3u);
    EXPECT_EQ(platform.calls(), "");
}

INSTANTIATE_TEST_SUITE_P(Each, BoardNoop, testing::ValuesIn(kAnswers));
