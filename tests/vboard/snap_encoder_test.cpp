/* snap_encoder_test.cpp - the board's JPEG encoder by itself: states, quality, waits, buffer, release. */
#include <cstring>
#include <thread>

#include "mi_divp.h"
#include "mi_venc.h"
#include "snap_pictures.h"

using namespace rig;
using snap_test::decode_jpeg;
using snap_test::full_range;
using snap_test::psnr_db;

namespace
{

constexpr uint32_t kWidth = 352, kHeight = 288;
constexpr MI_VENC_ChnAttr kAttr = {MI_VENC_CODEC_JPEG, kWidth, kHeight, 101376, kWidth, kHeight, 1, 6};
constexpr int32_t kTimeout = MI_ERROR(MI_MODULE_VENC, MI_REASON_TIMEOUT);

class Encoder : public Board
{
protected:
    /* Decoder 0 -> scaler 0 -> encoder 2, receiving. */
    void connect(const MI_VENC_ChnAttr &attr = kAttr)
    {
        power_up();
        start_channel(0, MI_VDEC_CODEC_H264);
        const MI_DIVP_ChnAttr scaler_attr = {1920, 1080, 0, 0, 0, {0, 0, 0, 0}, 0, 0, {0, 0}};
        const MI_DIVP_OutputPortAttr output = {attr.width, attr.height, MI_PIXEL_YUV420_SEMIPLANAR, 0};
        ASSERT_EQ(MI_DIVP_CreateChn(0, &scaler_attr), MI_SUCCESS);
        ASSERT_EQ(MI_DIVP_SetOutputPortAttr(0, 0, &output), MI_SUCCESS);
        ASSERT_EQ(MI_VENC_CreateChn(2, &attr), MI_SUCCESS);
        uint32_t device = 99;
        ASSERT_EQ(MI_VENC_GetChnDevid(2, &device), MI_SUCCESS);
        const MI_SYS_ChnPort scaler = {MI_MODULE_DIVP, 0, 0, 0}, decoder = vdec_end(0);
        const MI_SYS_ChnPort encoder = {MI_MODULE_VENC, device, 2, 0};
        ASSERT_EQ(MI_SYS_SetChnOutputPortDepth(&scaler, 0, 3), MI_SUCCESS);
        ASSERT_EQ(MI_SYS_BindChnPort(&scaler, &encoder, 10, 10), MI_SUCCESS);
        ASSERT_EQ(MI_DIVP_StartChn(0), MI_SUCCESS);
        ASSERT_EQ(MI_SYS_BindChnPort(&decoder, &scaler, 10, 10), MI_SUCCESS);
        ASSERT_EQ(MI_VENC_StartRecvPic(2), MI_SUCCESS);
    }

    int32_t get(int32_t timeout_ms = kPatience_ms)
    {
        stream = {};
        stream.packs = &pack;
        stream.pack_count = 1;
        return MI_VENC_GetStream(2, &stream, timeout_ms);
    }

    const Stream video = load_stream("h264_640x360");
    MI_VENC_Pack pack = {};
    MI_VENC_Stream stream = {};
};

TEST_F(Encoder, RefusesWhatItsStateDoesNotAllow)
{
    EXPECT_EQ(MI_VENC_CreateChn(2, &kAttr), code(MI_MODULE_VENC, MI_REASON_NOT_READY));
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    const int32_t absent = code(MI_MODULE_VENC, MI_REASON_ABSENT);
    MI_VENC_JpegParam param = {};
    uint32_t device = 0;
    EXPECT_EQ(MI_VENC_DestroyChn(2), absent);
    EXPECT_EQ(MI_VENC_ResetChn(2), absent);
    EXPECT_EQ(MI_VENC_GetJpegParam(2, &param), absent);
    EXPECT_EQ(MI_VENC_GetChnDevid(2, &device), absent);
    EXPECT_EQ(MI_VENC_StartRecvPic(2), absent);
    EXPECT_EQ(MI_VENC_StopRecvPic(2), absent);
    EXPECT_EQ(get(0), absent);
    EXPECT_EQ(MI_VENC_CreateChn(32, &kAttr), code(MI_MODULE_VENC, MI_REASON_BAD_CHANNEL));

    ASSERT_EQ(MI_VENC_CreateChn(2, &kAttr), MI_SUCCESS);
    EXPECT_EQ(MI_VENC_CreateChn(2, &kAttr), code(MI_MODULE_VENC, MI_REASON_EXISTS));
    EXPECT_EQ(get(0), code(MI_MODULE_VENC, MI_REASON_NOT_READY)); // receives nothing
    EXPECT_EQ(MI_VENC_StartRecvPic(2), MI_SUCCESS);
    EXPECT_EQ(MI_VENC_DestroyChn(2), code(MI_MODULE_VENC, MI_REASON_NOT_PERMITTED));
    stream.packs = nullptr;
    EXPECT_EQ(MI_VENC_GetStream(2, &stream, 0), code(MI_MODULE_VENC, MI_REASON_NULL_POINTER));
    stream.packs = &pack;
    stream.pack_count = 0;
    EXPECT_EQ(MI_VENC_GetStream(2, &stream, 0), code(MI_MODULE_VENC, MI_REASON_BAD_VALUE));
    EXPECT_EQ(MI_VENC_ReleaseStream(2, &stream), code(MI_MODULE_VENC, MI_REASON_BAD_VALUE));
    EXPECT_EQ(MI_VENC_StopRecvPic(2), MI_SUCCESS);
    EXPECT_EQ(MI_VENC_DestroyChn(2), MI_SUCCESS);
}

TEST_F(Encoder, RefusesWhatItCannotDo)
{
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    const auto created = [](void (*change)(MI_VENC_ChnAttr &)) {
        MI_VENC_ChnAttr attr = kAttr;
        change(attr);
        return MI_VENC_CreateChn(2, &attr);
    };
    const int32_t bad = code(MI_MODULE_VENC, MI_REASON_BAD_VALUE);
    const int32_t unsupported = code(MI_MODULE_VENC, MI_REASON_UNSUPPORTED);
    EXPECT_EQ(created([](MI_VENC_ChnAttr &attr) { attr.codec = 0; }), unsupported);
    EXPECT_EQ(created([](MI_VENC_ChnAttr &attr) { attr.by_frame = 0; }), unsupported);
    EXPECT_EQ(created([](MI_VENC_ChnAttr &attr) { attr.width = 0; }), bad);
    EXPECT_EQ(created([](MI_VENC_ChnAttr &attr) { attr.height = 289; }), bad);
    EXPECT_EQ(created([](MI_VENC_ChnAttr &attr) { attr.stream_buffer_bytes = 0; }), bad);
    EXPECT_EQ(created([](MI_VENC_ChnAttr &attr) { attr.restart_rows = 70000; }), bad);
    ASSERT_EQ(created([](MI_VENC_ChnAttr &) {}), MI_SUCCESS);
    for (uint32_t quality : {0u, 100u, 0xFFFFFFFFu}) {
        const MI_VENC_JpegParam param = {quality, 0};
        EXPECT_EQ(MI_VENC_SetJpegParam(2, &param), bad);
    }
    const MI_VENC_JpegParam param = {50, 4321};
    MI_VENC_JpegParam read = {};
    EXPECT_EQ(MI_VENC_SetJpegParam(2, &param), MI_SUCCESS);
    EXPECT_EQ(MI_VENC_GetJpegParam(2, &read), MI_SUCCESS);
    EXPECT_EQ(read.reserved, 4321u);
}

TEST_F(Encoder, EncodesAtTheQualityAskedFor)
{
    connect();
    const Picture picture = full_range(scaled(reference_decode(video)[0], kWidth, kHeight));
    const struct {
        uint32_t quality, first_step; // 16 scaled by the standard's rule
        double least_db;
    } rows[] = {{99, 1, 44}, {90, 3, 38}, {50, 16, 30}, {10, 80, 24}, {1, 255, 10}};
    size_t last_size = SIZE_MAX;
    double last_db = 100;
    for (const auto &row : rows) {
        const MI_VENC_JpegParam param = {row.quality, 0};
        ASSERT_EQ(MI_VENC_SetJpegParam(2, &param), MI_SUCCESS);
        ASSERT_EQ(send(0, video.frames[0]), MI_SUCCESS);
        ASSERT_EQ(get(), MI_SUCCESS) << row.quality;
        EXPECT_EQ(snap_test::first_luma_step(pack.address, pack.length_bytes), row.first_step);
        const double db = psnr_db(decode_jpeg(pack.address, pack.length_bytes), picture);
        EXPECT_GE(db, row.least_db) << row.quality;
        EXPECT_LT(db, last_db) << row.quality;
        EXPECT_LT(pack.length_bytes, last_size) << row.quality;
        last_db = db;
        last_size = pack.length_bytes;
        ASSERT_EQ(MI_VENC_ReleaseStream(2, &stream), MI_SUCCESS);
    }
}

TEST_F(Encoder, GivesOnePackAPictureWithItsTimeStamp)
{
    connect();
    ASSERT_EQ(send(0, video.frames[0], -1, 0x123456789ABCull), MI_SUCCESS);
    ASSERT_EQ(get(), MI_SUCCESS);
    EXPECT_EQ(stream.pack_count, 1u);
    EXPECT_EQ(stream.sequence, 0u);
    EXPECT_EQ(uint64_t{pack.pts}, 0x123456789ABCull); // a copy: the field is 4-byte aligned
    EXPECT_EQ(pack.offset_bytes, 0u);
    EXPECT_EQ(pack.frame_end, 1u);
    EXPECT_EQ(memcmp(pack.address, "\xFF\xD8", 2), 0);
    EXPECT_EQ(memcmp(pack.address + pack.length_bytes - 2, "\xFF\xD9", 2), 0);
}

/* Six rows of 16 lines between restart markers leave two of them in 18 rows. */
TEST_F(Encoder, SetsRestartMarkers)
{
    connect();
    ASSERT_EQ(send(0, video.frames[0]), MI_SUCCESS);
    ASSERT_EQ(get(), MI_SUCCESS);
    unsigned markers = 0;
    for (uint32_t i = 0; i + 1 < pack.length_bytes; ++i)
        markers += pack.address[i] == 0xFF && pack.address[i + 1] >= 0xD0 && pack.address[i + 1] <= 0xD7;
    EXPECT_EQ(markers, 2u);
}

TEST_F(Encoder, EncodesOddSizesToTheEdge)
{
    MI_VENC_ChnAttr attr = kAttr;
    attr.max_width = attr.width = 354; // no whole number of blocks
    attr.max_height = attr.height = 290;
    connect(attr);
    ASSERT_EQ(send(0, video.frames[0]), MI_SUCCESS);
    ASSERT_EQ(get(), MI_SUCCESS);
    const Picture seen = decode_jpeg(pack.address, pack.length_bytes);
    EXPECT_EQ(seen.width, 354);
    EXPECT_EQ(seen.height, 290);
    EXPECT_GE(psnr_db(seen, full_range(scaled(reference_decode(video)[0], 354, 290))), 30);
}

TEST_F(Encoder, WaitsForAPictureOnTheBoardsClock)
{
    connect();
    vboard_clock_take();
    const int64_t before_us = vboard_clock_us();
    int32_t result = 0;
    std::thread waiter([&] { result = get(40); });
    EXPECT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    EXPECT_EQ(vboard_clock_step_us(39999), 0);
    EXPECT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0); // not yet
    EXPECT_EQ(vboard_clock_step_us(1), 0);
    waiter.join();
    EXPECT_EQ(result, kTimeout);
    EXPECT_EQ(vboard_clock_us() - before_us, 40000);
    EXPECT_EQ(get(0), kTimeout);
}

/* An image that was got stays whole, whatever is encoded meanwhile, until it is released. */
TEST_F(Encoder, LendsAnImageUntilItsRelease)
{
    connect();
    ASSERT_EQ(send(0, video.frames[0]), MI_SUCCESS);
    ASSERT_EQ(get(), MI_SUCCESS);
    const MI_VENC_Stream first = stream;
    const MI_VENC_Pack kept = pack;
    const Bytes copy(kept.address, kept.address + kept.length_bytes);
    for (size_t i = 1; i < 10; ++i) {
        ASSERT_EQ(send(0, video.frames[i]), MI_SUCCESS);
        ASSERT_EQ(get(), MI_SUCCESS);
        EXPECT_EQ(stream.sequence, i);
        ASSERT_EQ(MI_VENC_ReleaseStream(2, &stream), MI_SUCCESS);
    }
    EXPECT_EQ(Bytes(kept.address, kept.address + kept.length_bytes), copy);
    MI_VENC_Stream again = first;
    EXPECT_EQ(MI_VENC_ReleaseStream(2, &again), MI_SUCCESS);
    EXPECT_EQ(MI_VENC_ReleaseStream(2, &again), code(MI_MODULE_VENC, MI_REASON_BAD_VALUE));
}

/* With its buffer full of images the encoder takes no more, and the decoder goes on all the same. */
TEST_F(Encoder, HoldsTheScalerBackAndNotTheDecoder)
{
    connect();
    for (const Bytes &frame : video.frames)
        send_and_settle(0, frame);
    EXPECT_EQ(counters(0).decoded, video.frames.size());
    uint32_t images = 0, last = 0;
    while (get(200) == MI_SUCCESS) {
        EXPECT_TRUE(images == 0 || stream.sequence == last + 1) << stream.sequence;
        last = stream.sequence;
        ++images;
        ASSERT_EQ(MI_VENC_ReleaseStream(2, &stream), MI_SUCCESS);
    }
    EXPECT_GT(images, 3u);
    EXPECT_LE(images, video.frames.size());
}

TEST_F(Encoder, ForgetsEverythingOnReset)
{
    connect();
    ASSERT_EQ(send(0, video.frames[0]), MI_SUCCESS);
    ASSERT_EQ(get(), MI_SUCCESS);
    ASSERT_EQ(MI_VENC_ResetChn(2), MI_SUCCESS);
    EXPECT_EQ(get(0), kTimeout);
    EXPECT_EQ(MI_VENC_ReleaseStream(2, &stream), code(MI_MODULE_VENC, MI_REASON_BAD_VALUE));
    ASSERT_EQ(send(0, video.frames[1]), MI_SUCCESS);
    EXPECT_EQ(get(), MI_SUCCESS);
}

TEST_F(Encoder, StopsWhileSomebodyWaits)
{
    connect();
    int32_t result = 0;
    vboard_clock_take();
    std::thread waiter([&] { result = get(1000000); });
    EXPECT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    ASSERT_EQ(MI_VENC_StopRecvPic(2), MI_SUCCESS);
    waiter.join();
    EXPECT_EQ(result, code(MI_MODULE_VENC, MI_REASON_NOT_READY));
}

/* Pictures that come before the encoder receives wait behind the scaler, as deep as was set. */
TEST_F(Encoder, FindsThePictureThatWaitedForIt)
{
    connect();
    ASSERT_EQ(MI_VENC_StopRecvPic(2), MI_SUCCESS);
    send_and_settle(0, video.frames[0]);
    ASSERT_EQ(MI_VENC_StartRecvPic(2), MI_SUCCESS);
    EXPECT_EQ(get(), MI_SUCCESS);
}

} // namespace
