/* The ext_ functions: one FrameInfo in, one out. */
#include "recording_expect.h"
#include "stream_support.h"

#include <cstdio>

using namespace stream_test;
using recording::platform;

namespace
{

struct Stream {
    const char *name;
    int32_t (*set)(uint32_t, const FrameInfo *);
    int32_t (*get)(uint32_t, FrameInfo *);
    int32_t pool;

    friend void PrintTo(const Stream &stream, std::ostream *out) { *out << stream.name; }
};

constexpr Stream kStreams[] = {
    {"primary", ext_set_primary_video_stream, ext_get_primary_video_stream, STREAM_POOL_MAIN},
    {"network", ext_set_network_video_stream, ext_get_network_video_stream, STREAM_POOL_SUB},
    {"audio", ext_set_audio_stream, ext_get_audio_stream, STREAM_POOL_AUDIO},
};

class StreamExchange : public testing::TestWithParam<Stream>
{
protected:
    void SetUp() override
    {
        g_vi_chn_num = 8;
        for (int32_t pool = 0; pool < 3; ++pool)
            make_pool(pool, {100, 1000, 40}, 8);
        platform.set_time_us(1700000000123456);
    }

    FrameInfo frame(uint64_t number, uint32_t length, uint32_t type = 1)
    {
        bytes_ = payload(number, length);
        FrameInfo info;
        memset(&info, 0xEE, sizeof info);
        info.frame_type = type;
        info.length = length;
        info.width = 1920;
        info.height = 1080;
        info.data = bytes_.data();
        info.pts = number;
        return info;
    }

    bool is_audio() const { return GetParam().pool == STREAM_POOL_AUDIO; }

    std::vector<uint8_t> bytes_;
};

std::string stream_name(const testing::TestParamInfo<Stream> &stream)
{
    return stream.param.name;
}

std::vector<uint8_t> bytes_of(const FrameInfo &info)
{
    const auto *at = static_cast<const uint8_t *>(info.data);
    return {at, at + info.length};
}

TEST_P(StreamExchange, DeliversWhatWasStoredInOrder)
{
    const Stream &stream = GetParam();
    for (uint32_t channel : {0u, 3u, 7u}) {
        FrameInfo out{};
        EXPECT_EQ(stream.get(channel, &out), -1) << "empty; the position is entry 0";
        for (uint64_t i = 1; i <= 4; ++i) {
            const FrameInfo in = frame(i, 50 + static_cast<uint32_t>(i));
            EXPECT_EQ(stream.set(channel, &in), 0);
        }
        for (uint64_t i = 1; i <= 4; ++i) {
            ASSERT_EQ(stream.get(channel, &out), 0);
            EXPECT_EQ(bytes_of(out), payload(i, 50 + static_cast<uint32_t>(i)));
            EXPECT_EQ(out.channel, channel);
        }
        EXPECT_EQ(stream.get(channel, &out), -1);
    }
}

TEST_P(StreamExchange, FillsTheDescriptor)
{
    const Stream &stream = GetParam();
    const FrameInfo in = frame(77, 60, 3);
    ASSERT_EQ(stream.set(2, &in), 0);
    FrameInfo out;
    memset(&out, 0xEE, sizeof out);
    ASSERT_EQ(stream.get(2, &out), 0);
    EXPECT_EQ(out.length, 60u);
    EXPECT_EQ(out.channel, 2u);
    EXPECT_EQ(uint64_t{out.local_time}, 1700000000123456u);
    EXPECT_EQ(out.reserved[0], 0xEEEEEEEEu);
    EXPECT_EQ(out.reserved[1], 0xEEEEEEEEu);
    if (is_audio()) {
        EXPECT_EQ(out.frame_type, 0u);
        EXPECT_EQ(out.media, 2u);
        EXPECT_EQ(out.width, 0u);
        EXPECT_EQ(out.height, 0u);
        EXPECT_EQ(out.stream_id, 2u + 2 * 8);
        EXPECT_EQ(out.display_rate, 0u);
        EXPECT_EQ(uint64_t{out.pts}, 1u) << "always";
    } else {
        EXPECT_EQ(out.frame_type, 3u);
        EXPECT_EQ(out.media, 1u);
        EXPECT_EQ(out.width, 1920u);
        EXPECT_EQ(out.height, 1080u);
        EXPECT_EQ(out.stream_id, 0xEEEEEEEEu) << "left as it was";
        EXPECT_EQ(out.display_rate, 0xEEEEEEEEu);
        EXPECT_EQ(uint64_t{out.pts}, 77u);
    }
    EXPECT_EQ(platform.count("board_time_us"), is_audio() ? 2u : 1u);
}

TEST_P(StreamExchange, ANullFrameIsRefused)
{
    EXPECT_EQ(GetParam().set(0, nullptr), -1);
    EXPECT_EQ(GetParam().get(0, nullptr), -1);
    FrameInfo out{};
    EXPECT_EQ(GetParam().get(0, &out), -1);
}

TEST_P(StreamExchange, AFrameWithoutBytesIsRefused)
{
    FrameInfo in = frame(1, 10);
    in.length = 0;
    (void)GetParam().set(0, &in);
    in = frame(1, 10);
    in.data = nullptr;
    (void)GetParam().set(0, &in);
    FrameInfo out{};
    EXPECT_EQ(GetParam().get(0, &out), -1);
}

TEST_P(StreamExchange, AFailedGetLeavesTheDescriptorAsItIs)
{
    FrameInfo out;
    memset(&out, 0xEE, sizeof out);
    const auto before = image(&out, sizeof out);
    EXPECT_EQ(GetParam().get(0, &out), -1);
    EXPECT_EQ(GetParam().get(8, &out), -1);
    EXPECT_EQ(image(&out, sizeof out), before);
}

TEST_P(StreamExchange, ChannelsAtOrAboveTheCamerasHaveNoConsumer)
{
    FrameInfo out{};
    for (uint32_t channel : {8u, 16u, 43u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        recording::forget_printed();
        EXPECT_EQ(GetParam().get(channel, &out), -1);
        if (is_audio())
            EXPECT_PRINTED_AS_ERROR("stream.c", "ext_get_audio_stream failed channel:" +
                                                    std::to_string(static_cast<int32_t>(channel)) + "!");
        else
            EXPECT_EQ(recording::printed_text(), "");
    }
    g_vi_chn_num = 0;
    EXPECT_EQ(GetParam().get(0, &out), -1);
    g_vi_chn_num = -5;
    EXPECT_EQ(GetParam().get(0, &out), -1);
    g_vi_chn_num = INT32_MAX;
    for (uint32_t channel : {42u, 43u, 100u, 0x7FFFFFFEu})
        EXPECT_EQ(GetParam().get(channel, &out), -1);
}

TEST_P(StreamExchange, AProducerOutsideTheAttributesStoresNothing)
{
    const FrameInfo in = frame(1, 10);
    for (uint32_t channel : {8u, 15u, 16u, 17u, 43u, 0x80000000u, 0xFFFFFFFFu}) {
        recording::forget_printed();
        EXPECT_EQ(GetParam().set(channel, &in), GetParam().pool == STREAM_POOL_MAIN ? 0 : -1) << channel;
        EXPECT_PRINTED_WITHOUT_PREFIX("kx_stream_sendFrameToPool-error frame ch:" +
                                      std::to_string(static_cast<int32_t>(channel)));
    }
}

// They are cameras, and have rings; but no producer may write to them.
TEST_P(StreamExchange, CamerasBehindTheStoredChannelsNeverHaveAFrame)
{
    g_vi_chn_num = NVRHAL_MAX_CAMERAS;
    for (int32_t pool = 0; pool < 3; ++pool)
        make_pool(pool, {100, 1000, 40}, NVRHAL_MAX_CAMERAS);
    const Stream &stream = GetParam();
    const FrameInfo in = frame(1, 10);
    for (uint32_t channel = 0; channel < NVRHAL_MAX_CAMERAS; ++channel) {
        const bool is_stored = channel < NVRHAL_STORED_CHANNELS;
        stream.set(channel, &in);
        StreamReader reader{};
        const auto number = static_cast<int32_t>(channel);
        EXPECT_EQ(kx_stream_getStartPos(number, &reader, stream.pool), 0) << channel;
        EXPECT_EQ(kx_stream_getOneFrame(number, 0, &reader, stream.pool), is_stored ? 10 : 0) << channel;
        EXPECT_EQ(kx_stream_getLastPos(number, &reader, stream.pool), 0) << channel;
        EXPECT_EQ(kx_stream_getOneFrame(number, 0, &reader, stream.pool), is_stored ? 10 : 0) << channel;
        FrameInfo out{};
        recording::forget_printed();
        EXPECT_EQ(stream.get(channel, &out), is_stored ? 0 : -1) << channel;
        EXPECT_EQ(recording::printed_text(), "");
    }
}

TEST_P(StreamExchange, APositionThatFailsIsTriedAgain)
{
    for (int32_t pool = 0; pool < 3; ++pool)
        make_pool(pool, {100, 150, 40}, 8);
    const Stream &stream = GetParam();
    const FrameInfo in = frame(1, 100);
    ASSERT_EQ(stream.set(0, &in), 0); // 50 bytes are left: no place is safe
    FrameInfo out{};
    for (int i = 0; i < 2; ++i) {
        recording::forget_printed();
        EXPECT_EQ(stream.get(0, &out), -1);
        EXPECT_PRINTED_AS_ERROR("stream.c", "kx_stream_getStartPos failed!");
    }
}

TEST_P(StreamExchange, ConsumersFollowThePoolsOfASecondStart)
{
    const Stream &stream = GetParam();
    FrameInfo in = frame(1, 40), out{};
    ASSERT_EQ(stream.set(0, &in), 0);
    ASSERT_EQ(stream.get(0, &out), 0);
    for (int32_t pool = 0; pool < 3; ++pool)
        make_pool(pool, {100, 1000, 40}, 8);
    EXPECT_EQ(stream.get(0, &out), -1);
    in = frame(2, 41);
    ASSERT_EQ(stream.set(0, &in), 0);
    ASSERT_EQ(stream.get(0, &out), 0);
    EXPECT_EQ(bytes_of(out), payload(2, 41));
}

INSTANTIATE_TEST_SUITE_P(Streams, StreamExchange, testing::ValuesIn(kStreams), stream_name);

using StreamExchangeVideo = StreamExchange;

TEST_P(StreamExchangeVideo, TheStampComesBackSignExtended)
{
    const Stream &stream = GetParam();
    FrameInfo in = frame(0, 10), out{};
    in.pts = 0x1234567880000001u; // only the low word is kept
    ASSERT_EQ(stream.set(0, &in), 0);
    in.pts = 0x7FFFFFFF;
    ASSERT_EQ(stream.set(0, &in), 0);
    ASSERT_EQ(stream.get(0, &out), 0);
    EXPECT_EQ(uint64_t{out.pts}, 0xFFFFFFFF80000001u);
    ASSERT_EQ(stream.get(0, &out), 0);
    EXPECT_EQ(uint64_t{out.pts}, 0x7FFFFFFFu);
}

TEST_P(StreamExchangeVideo, ARefusedFrameStillTellsTheSize)
{
    const Stream &stream = GetParam();
    FrameInfo in = frame(1, 101), out{};
    EXPECT_EQ(stream.set(1, &in), stream.pool == STREAM_POOL_MAIN ? 0 : -1);
    EXPECT_EQ(stream.get(1, &out), -1) << "nothing is stored";
    const StreamAttr &attributes = stream.pool == STREAM_POOL_MAIN ? major_stream[1] : minor_stream[1];
    EXPECT_EQ(attributes.width, 1920u);
    EXPECT_EQ(attributes.height, 1080u);
    EXPECT_EQ(major_stream[0].width, 0u);
    EXPECT_EQ(minor_stream[0].width, 0u);
}

TEST_P(StreamExchangeVideo, ASizeIsThatOfTheFrameStoredLast)
{
    const Stream &stream = GetParam();
    FrameInfo in = frame(1, 10), out{};
    ASSERT_EQ(stream.set(1, &in), 0);
    in.width = 640;
    in.height = 360;
    ASSERT_EQ(stream.set(1, &in), 0);
    ASSERT_EQ(stream.get(1, &out), 0);
    EXPECT_EQ(out.width, 640u);
    EXPECT_EQ(out.height, 360u);
}

INSTANTIATE_TEST_SUITE_P(Streams, StreamExchangeVideo, testing::Values(kStreams[0], kStreams[1]),
                         stream_name);

TEST(StreamExchangeAudio, EveryFrameCountsAsAKeyFrame)
{
    make_pool(STREAM_POOL_AUDIO, {100, 1000, 40});
    StreamReader reader{};
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, STREAM_POOL_AUDIO), 0);
    FrameInfo in{};
    uint8_t bytes[10] = {};
    in.data = bytes;
    in.length = sizeof bytes;
    in.frame_type = 9;
    in.width = 5;
    in.pts = 4711;
    ASSERT_EQ(ext_set_audio_stream(0, &in), 0);
    ASSERT_EQ(kx_stream_getOneFrame(0, 0, &reader, STREAM_POOL_AUDIO), 10);
    EXPECT_EQ(reader.p_stream_index[0].frame_type, 1);
    EXPECT_EQ(reader.p_stream_index[0].timestamp, 4711u) << "stored, though a consumer reads 1";
    EXPECT_EQ(major_stream[0].width, 0u);
    EXPECT_EQ(minor_stream[0].width, 0u);
}

TEST(StreamExchangeAudio, ThereIsNoTalkbackCapture)
{
    EXPECT_EQ(ext_get_audio_speek_stream(), -1);
    EXPECT_PRINTED("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEE@,@,#");
}

TEST(StreamExchangeTime, IsTheWallClockInMicroseconds)
{
    platform.set_time_us(5000000000000123);
    EXPECT_EQ(local_get_curtime(), 5000000000000123);
}

} // namespace
