/* guide_test.cpp - the figures of docs/writing-a-recorder.md, counted over the library as it is. */
#include <array>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvrec_run.h"
#include "nvrhal.h"

namespace
{

constexpr int kFramesPerSecond = 25;
constexpr int kStored = 3000; /* several times round every ring */

class Guide : public testing::Test
{
protected:
    Guide() : text_(file_text(GUIDE)) {}

    void SetUp() override
    {
        DeviceParams params = {};
        params.vi_chn_num = 8;
        params.gui_width = 1920;
        params.gui_height = 1080;
        ASSERT_EQ(ext_device_init(&params), 0);
    }

    void expect_row(const std::string &row) const
    {
        EXPECT_NE(text_.find("\n" + row + "\n"), std::string::npos) << "the guide has no row\n" << row;
    }

private:
    std::string text_;
};

struct Stream {
    const char *name, *rate;
    uint32_t channel;
    int bytes_per_second;
    int32_t (*store)(uint32_t, const FrameInfo *);
    int32_t (*fetch)(uint32_t, FrameInfo *);
};

constexpr Stream kStreams[] = {
    {"main", "1 Mbit/s", 0, 125000, ext_set_primary_video_stream, ext_get_primary_video_stream},
    {"main", "2 Mbit/s", 1, 250000, ext_set_primary_video_stream, ext_get_primary_video_stream},
    {"main", "4 Mbit/s", 2, 500000, ext_set_primary_video_stream, ext_get_primary_video_stream},
    {"main", "8 Mbit/s", 3, 1000000, ext_set_primary_video_stream, ext_get_primary_video_stream},
    {"main", "16 Mbit/s", 4, 2000000, ext_set_primary_video_stream, ext_get_primary_video_stream},
    {"network", "256 kbit/s", 0, 32000, ext_set_network_video_stream, ext_get_network_video_stream},
    {"network", "512 kbit/s", 1, 64000, ext_set_network_video_stream, ext_get_network_video_stream},
    {"network", "1 Mbit/s", 2, 125000, ext_set_network_video_stream, ext_get_network_video_stream},
    {"network", "2 Mbit/s", 3, 250000, ext_set_network_video_stream, ext_get_network_video_stream},
    {"sound", "64 kbit/s", 0, 8000 + 4 * kFramesPerSecond, ext_set_audio_stream, ext_get_audio_stream},
};

TEST_F(Guide, TellsHowLongFramesCanBeFetched)
{
    for (const Stream &stream : kStreams) {
        std::vector<uint8_t> bytes(static_cast<size_t>(stream.bytes_per_second / kFramesPerSecond));
        FrameInfo frame = {};
        frame.length = static_cast<uint32_t>(bytes.size());
        frame.data = bytes.data();
        for (int i = 0; i < kStored; ++i) {
            frame.frame_type = i % kFramesPerSecond == 0 ? 1 : 0;
            ASSERT_EQ(stream.store(stream.channel, &frame), 0);
        }
        int fetched = 0;
        for (FrameInfo got = {}; stream.fetch(stream.channel, &got) == 0;)
            ++fetched;
        std::array<char, 128> row;
        std::snprintf(row.data(), row.size(), "| %s | %s | %d | %.1f |", stream.name, stream.rate, fetched,
                      static_cast<double>(fetched) / kFramesPerSecond);
        expect_row(row.data());
    }
}

TEST_F(Guide, TellsTheLargestFramesOfThePools)
{
    const struct {
        uint32_t largest;
        int32_t (*store)(uint32_t, const FrameInfo *);
    } kPools[] = {{NVRHAL_SUB_FRAME_BYTES, ext_set_network_video_stream},
                  {NVRHAL_AUDIO_FRAME_BYTES, ext_set_audio_stream}};
    std::vector<uint8_t> bytes(NVRHAL_MAIN_FRAME_BYTES + 1);
    FrameInfo frame = {};
    frame.data = bytes.data();
    for (const auto &pool : kPools) {
        frame.length = pool.largest;
        EXPECT_EQ(pool.store(0, &frame), 0);
        frame.length = pool.largest + 1;
        EXPECT_EQ(pool.store(0, &frame), -1);
        EXPECT_NE(file_text(GUIDE).find(std::to_string(pool.largest)), std::string::npos);
    }
    FrameInfo got = {};
    frame.length = NVRHAL_MAIN_FRAME_BYTES;
    EXPECT_EQ(ext_set_primary_video_stream(0, &frame), 0);
    EXPECT_EQ(ext_get_primary_video_stream(0, &got), 0);
    frame.length = NVRHAL_MAIN_FRAME_BYTES + 1;
    EXPECT_EQ(ext_set_primary_video_stream(0, &frame), 0) << "refused, and says 0";
    EXPECT_EQ(ext_get_primary_video_stream(0, &got), -1);
    EXPECT_NE(file_text(GUIDE).find(std::to_string(NVRHAL_MAIN_FRAME_BYTES)), std::string::npos);
}

} // namespace
