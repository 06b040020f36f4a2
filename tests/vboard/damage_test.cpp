/*
 * board_damage_test.cpp - what bad data does to a decoder channel: nothing to the board, nothing to
 * the other channels, and the damaged channel shows good pictures again from its next key frame on.
 */
#include "board_rig.h"

using namespace rig;

namespace
{

constexpr size_t kGop = 10;

class Damage : public Board
{
protected:
    // One pane that shows channel 0, fed with `stream` in frame mode unless told otherwise.
    void show(const Stream &stream, uint32_t mode = MI_VDEC_MODE_FRAME)
    {
        vboard_reset();
        power_up();
        start_channel(0, stream.codec, mode);
        open_window(0, 0, 0, 640, 360);
        ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    }

    static Picture pane() { return look().part(0, 0, 640, 360); }
};

// Cut off the second half of a frame.
Bytes halved(const Bytes &frame)
{
    return Bytes(frame.begin(), frame.begin() + static_cast<ptrdiff_t>(frame.size() / 2));
}

// Whatever happened before: from a key frame on the pane equals the reference again.
void expect_recovery(const Stream &stream, size_t key_frame)
{
    const std::vector<Picture> expected = reference_decode(stream);
    for (size_t frame = key_frame; frame < key_frame + 3; ++frame) {
        send_and_settle(0, stream.frames[frame]);
        ASSERT_TRUE(look().part(0, 0, 640, 360) == expected[frame]) << "frame " << frame;
    }
}

TEST_F(Damage, ATruncatedH264FrameHoldsTheLastGoodPictureUntilTheNextKeyFrame)
{
    for (const char *name : {"h264_640x360", "h264_slices"}) {
        const Stream stream = load_stream(name);
        const std::vector<Picture> expected = reference_decode(stream);
        show(stream);
        for (size_t frame = 0; frame < 3; ++frame)
            send_and_settle(0, stream.frames[frame]);
        send_and_settle(0, halved(stream.frames[3]));
        ASSERT_TRUE(pane() == expected[2]) << name;
        for (size_t frame = 4; frame < kGop; ++frame) {
            send_and_settle(0, stream.frames[frame]);
            ASSERT_TRUE(pane() == expected[2]) << name << " frame " << frame;
        }
        EXPECT_GT(counters(0).decode_errors + counters(0).damaged, 0u);
        expect_recovery(stream, kGop);
    }
}

TEST_F(Damage, ATruncatedKeyFrameIsNotShownNorWhatHangsOnIt)
{
    const Stream stream = load_stream("h264_640x360");
    const std::vector<Picture> expected = reference_decode(stream);
    show(stream);
    send_and_settle(0, stream.frames[0]);
    send_and_settle(0, halved(stream.frames[kGop]));
    for (size_t frame = kGop + 1; frame < 2 * kGop; ++frame) {
        send_and_settle(0, stream.frames[frame]);
        ASSERT_TRUE(pane() == expected[0]) << "frame " << frame;
    }
    expect_recovery(stream, 2 * kGop);
}

TEST_F(Damage, NoiseInsteadOfAFrameHoldsTheLastGoodPicture)
{
    for (const char *name : {"h264_640x360", "h265_640x360"}) {
        const Stream stream = load_stream(name);
        const std::vector<Picture> expected = reference_decode(stream);
        show(stream);
        send_and_settle(0, stream.frames[0]);
        send_and_settle(0, noise(5000, 1));
        send_and_settle(0, stream.frames[2]);
        ASSERT_TRUE(pane() == expected[0]) << name;
        expect_recovery(stream, kGop);
    }
}

TEST_F(Damage, ParameterSetsSentOnTheirOwnAreNoDamage)
{
    const Stream stream = load_stream("h264_640x360");
    show(stream);
    // The first frame begins with its parameter sets; find the first slice (type 5) behind them.
    const Bytes &key = stream.frames[0];
    size_t slice = 0;
    for (size_t at = 0; at + 3 < key.size() && slice == 0; ++at)
        if (key[at] == 0 && key[at + 1] == 0 && key[at + 2] == 1 && (key[at + 3] & 0x1f) == 5) slice = at;
    ASSERT_GT(slice, 0u);
    send_and_settle(0, Bytes(key.begin(), key.begin() + static_cast<ptrdiff_t>(slice)));
    send_and_settle(0, Bytes(key.begin() + static_cast<ptrdiff_t>(slice), key.end()));
    send_and_settle(0, Bytes(key.begin(), key.begin() + static_cast<ptrdiff_t>(slice)));
    send_and_settle(0, stream.frames[1]);
    EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 1u);
    EXPECT_EQ(counters(0).decode_errors, 0u);
}

TEST_F(Damage, FlippedBitsNeverStopTheWorker)
{
    for (const char *name : {"h264_640x360", "h265_640x360"}) {
        const Stream stream = load_stream(name);
        show(stream);
        for (uint32_t seed = 0; seed < 8; ++seed)
            for (size_t frame = 0; frame < kGop; ++frame)
                send_and_settle(0, with_flipped_bits(stream.frames[frame],
                                                     seed * 100 + static_cast<uint32_t>(frame),
                                                     1 + static_cast<int>(seed) * 3));
        expect_recovery(stream, kGop);
    }
}

TEST_F(Damage, EveryLengthOfATruncatedFrameIsSurvived)
{
    for (const char *name : {"h264_640x360", "h265_640x360"}) {
        const Stream stream = load_stream(name);
        show(stream);
        const Bytes &key = stream.frames[0];
        for (size_t length = 1; length < key.size(); length += 1 + length / 8)
            send_and_settle(0, Bytes(key.begin(), key.begin() + static_cast<ptrdiff_t>(length)));
        expect_recovery(stream, kGop);
    }
}

TEST_F(Damage, NoiseInStreamModeIsThrownAwayAndForgotten)
{
    for (const char *name : {"h264_640x360", "h265_640x360"}) {
        const Stream stream = load_stream(name);
        show(stream, MI_VDEC_MODE_STREAM);
        for (uint32_t seed = 0; seed < 12; ++seed) // more than a frame may ever have
            send_and_settle(0, noise(1000000, seed));
        ASSERT_EQ(MI_VDEC_StopChn(0), MI_SUCCESS);
        ASSERT_EQ(MI_VDEC_StartChn(0), MI_SUCCESS);
        const uint64_t before = counters(0).decoded;
        send_and_settle(0, stream.joined());
        EXPECT_EQ(counters(0).decoded - before, stream.frames.size() - 1) << name;
    }
}

TEST_F(Damage, ACodecCodeThatLiesShowsNothing)
{
    const Stream h264 = load_stream("h264_640x360");
    const Stream h265 = load_stream("h265_640x360");
    const Stream jpeg = load_stream("jpeg_320x240");
    for (const uint32_t mode : {MI_VDEC_MODE_FRAME, MI_VDEC_MODE_STREAM})
        for (const uint32_t claimed : {MI_VDEC_CODEC_H264, MI_VDEC_CODEC_H265, MI_VDEC_CODEC_JPEG})
            for (const Stream *stream : {&h264, &h265, &jpeg}) {
                if (stream->codec == claimed) continue;
                show({claimed, {}}, mode);
                for (const Bytes &frame : stream->frames)
                    send_and_settle(0, frame);
                EXPECT_EQ(counters(0).decoded, 0u) << "codec " << stream->codec << " as " << claimed;
                EXPECT_TRUE(look().is_black());
                ASSERT_EQ(MI_VDEC_StopChn(0), MI_SUCCESS);
                ASSERT_EQ(MI_VDEC_DestroyChn(0), MI_SUCCESS);
            }
}

TEST_F(Damage, AHeaderThatClaimsAHugePictureIsRefused)
{
    // A JPEG whose frame header says 65500 x 65500.
    Bytes jpeg = load_stream("jpeg_320x240").frames[0];
    bool patched = false;
    for (size_t at = 0; at + 9 < jpeg.size() && !patched; ++at)
        if (jpeg[at] == 0xff && jpeg[at + 1] == 0xc0) {
            jpeg[at + 5] = jpeg[at + 7] = 0xff;
            jpeg[at + 6] = jpeg[at + 8] = 0xdc;
            patched = true;
        }
    ASSERT_TRUE(patched);
    show({MI_VDEC_CODEC_JPEG, {}});
    send_and_settle(0, jpeg);
    EXPECT_EQ(counters(0).decoded, 0u);
    EXPECT_GT(counters(0).decode_errors, 0u);
}

TEST_F(Damage, OneChannelsDamageLeavesTheOthersUntouched)
{
    const Stream good = load_stream("h264_640x360");
    const std::vector<Picture> expected = reference_decode(good);
    show(good);
    start_channel(1, MI_VDEC_CODEC_H264);
    open_window(1, 640, 0, 640, 360);
    ASSERT_EQ(bind(1, 1), MI_SUCCESS);
    for (size_t frame = 0; frame < good.frames.size(); ++frame) {
        ASSERT_EQ(send(1, noise(20000, static_cast<uint32_t>(frame))), MI_SUCCESS);
        send_and_settle(0, good.frames[frame]);
        ASSERT_TRUE(pane() == expected[frame]);
    }
    ASSERT_EQ(vboard_decoder_wait_idle(1, kPatience_ms), 0);
    EXPECT_EQ(counters(0).decode_errors, 0u);
    EXPECT_EQ(counters(1).decoded, 0u);
}

} // namespace
