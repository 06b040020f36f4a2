/* board_rig.cpp - see board_rig.h. */
#include "board_rig.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>

#include "host/scaler.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace rig
{
namespace
{

uint32_t codec_of(const std::string &name)
{
    if (name.find("h265") != std::string::npos) return MI_VDEC_CODEC_H265;
    return name.find("jpeg") != std::string::npos ? MI_VDEC_CODEC_JPEG : MI_VDEC_CODEC_H264;
}

AVCodecID reference_codec(uint32_t codec)
{
    if (codec == MI_VDEC_CODEC_H265) return AV_CODEC_ID_HEVC;
    return codec == MI_VDEC_CODEC_JPEG ? AV_CODEC_ID_MJPEG : AV_CODEC_ID_H264;
}

Picture picture_of(const AVFrame &frame)
{
    Picture picture;
    picture.width = frame.width;
    picture.height = frame.height;
    for (int plane = 0; plane < 3; ++plane) {
        const int width = plane == 0 ? frame.width : (frame.width + 1) / 2;
        const int height = plane == 0 ? frame.height : (frame.height + 1) / 2;
        for (int row = 0; row < height; ++row) {
            const uint8_t *from = frame.data[plane] + static_cast<ptrdiff_t>(row) * frame.linesize[plane];
            picture.bytes.insert(picture.bytes.end(), from, from + width);
        }
    }
    return picture;
}

Picture take_image(vboard_image &image)
{
    Picture picture{static_cast<int>(image.width), static_cast<int>(image.height),
                    Bytes(image.bytes, image.bytes + image.size)};
    vboard_image_free(&image);
    return picture;
}

} // namespace

Bytes Stream::joined() const
{
    Bytes all;
    for (const Bytes &frame : frames)
        all.insert(all.end(), frame.begin(), frame.end());
    return all;
}

Stream load_stream(const std::string &name)
{
    const std::string path = std::string(STREAM_DIR) + "/" + name;
    std::ifstream file(path, std::ios::binary);
    const Bytes all((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::ifstream lengths(path + ".frames");
    Stream stream{codec_of(name), {}};
    size_t at = 0;
    for (size_t length = 0; lengths >> length; at += length)
        stream.frames.emplace_back(all.begin() + static_cast<ptrdiff_t>(at),
                                   all.begin() + static_cast<ptrdiff_t>(at + length));
    EXPECT_EQ(at, all.size()) << path;
    EXPECT_FALSE(stream.frames.empty()) << path;
    return stream;
}

Bytes noise(size_t size, uint32_t seed)
{
    std::mt19937 generator(seed);
    Bytes bytes(size);
    for (uint8_t &byte : bytes)
        byte = static_cast<uint8_t>(generator());
    return bytes;
}

Bytes with_flipped_bits(Bytes frame, uint32_t seed, int flips)
{
    std::mt19937 generator(seed);
    for (int i = 0; i < flips; ++i)
        frame[generator() % frame.size()] ^= static_cast<uint8_t>(1u << generator() % 8);
    return frame;
}

const uint8_t *Picture::chroma(int plane) const
{
    const size_t size = static_cast<size_t>(width) * static_cast<size_t>(height);
    return bytes.data() + size +
           (plane == 2 ? static_cast<size_t>((width + 1) / 2) * static_cast<size_t>((height + 1) / 2) : 0);
}

Picture Picture::part(int x, int y, int w, int h) const
{
    Picture result{w, h, {}};
    for (int plane = 0; plane < 3; ++plane) {
        const int shift = plane == 0 ? 0 : 1;
        const uint8_t *from = plane == 0 ? luma() : chroma(plane);
        const int stride = width >> shift;
        for (int row = 0; row < h >> shift; ++row) {
            const uint8_t *line = from + static_cast<ptrdiff_t>((y >> shift) + row) * stride + (x >> shift);
            result.bytes.insert(result.bytes.end(), line, line + (w >> shift));
        }
    }
    return result;
}

bool Picture::is_black() const
{
    const auto luma_end = bytes.begin() + static_cast<ptrdiff_t>(width) * height;
    return std::all_of(bytes.begin(), luma_end, [](uint8_t value) { return value == 16; }) &&
           std::all_of(luma_end, bytes.end(), [](uint8_t value) { return value == 128; });
}

Picture look(int32_t device)
{
    vboard_image image;
    EXPECT_EQ(vboard_display_capture(device, VBOARD_FORMAT_I420, &image), 0);
    return take_image(image);
}

Picture look_at_monitor(bool *blank)
{
    vboard_image image;
    EXPECT_EQ(vboard_monitor_capture(VBOARD_FORMAT_I420, &image), 0);
    if (blank != nullptr) *blank = image.blank != 0;
    return take_image(image);
}

std::optional<stamp::Stamp> stamp_at(const Picture &wall, int x, int y, int w, int h)
{
    return stamp::read(wall.luma() + static_cast<ptrdiff_t>(y) * wall.width + x, wall.width, w, h);
}

std::vector<Picture> reference_decode(const Stream &stream)
{
    std::vector<Picture> pictures;
    AVCodecContext *context = avcodec_alloc_context3(avcodec_find_decoder(reference_codec(stream.codec)));
    context->thread_count = 1;
    EXPECT_EQ(avcodec_open2(context, nullptr, nullptr), 0);
    AVPacket *packet = av_packet_alloc();
    AVFrame *frame = av_frame_alloc();
    const auto take_all = [&] {
        while (avcodec_receive_frame(context, frame) >= 0)
            pictures.push_back(picture_of(*frame));
    };
    for (const Bytes &bytes : stream.frames) {
        EXPECT_EQ(av_new_packet(packet, static_cast<int>(bytes.size())), 0);
        memcpy(packet->data, bytes.data(), bytes.size());
        EXPECT_EQ(avcodec_send_packet(context, packet), 0);
        av_packet_unref(packet);
        take_all();
    }
    avcodec_send_packet(context, nullptr);
    take_all();
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&context);
    return pictures;
}

Picture scaled(const Picture &picture, int width, int height)
{
    Picture result{width, height, Bytes(static_cast<size_t>(width) * static_cast<size_t>(height) * 3 / 2)};
    vboard::PlanarView from;
    vboard::MutablePlanarView to;
    from.width = picture.width;
    from.height = picture.height;
    to.width = width;
    to.height = height;
    uint8_t *at = result.bytes.data();
    for (int plane = 0; plane < 3; ++plane) {
        from.plane[plane] = plane == 0 ? picture.luma() : picture.chroma(plane);
        from.stride[plane] = plane == 0 ? picture.width : (picture.width + 1) / 2;
        to.plane[plane] = at;
        to.stride[plane] = plane == 0 ? width : width / 2;
        at += static_cast<ptrdiff_t>(to.stride[plane]) * (plane == 0 ? height : height / 2);
    }
    vboard::Scaler scaler;
    EXPECT_TRUE(scaler.scale(from, to));
    return result;
}

void power_up(uint32_t timing, int32_t device)
{
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    MI_DISP_PubAttr attr = {};
    attr.background = 0x800080;
    attr.interface_type = MI_DISP_INTERFACE_DEFAULT;
    attr.timing = timing;
    ASSERT_EQ(MI_DISP_SetPubAttr(device, &attr), MI_SUCCESS);
    ASSERT_EQ(MI_DISP_Enable(device), MI_SUCCESS);
    const uint32_t layer = device == 0 ? 0 : 3;
    ASSERT_EQ(MI_DISP_BindVideoLayer(layer, device), MI_SUCCESS);
    MI_DISP_VideoLayerAttr layer_attr = {};
    layer_attr.width = timing == kTiming1080p60 ? 1920 : 1280;
    layer_attr.height = timing == kTiming1080p60 ? 1080 : 720;
    layer_attr.window = {0, 0, static_cast<uint16_t>(layer_attr.width),
                         static_cast<uint16_t>(layer_attr.height)};
    layer_attr.pixel_format = MI_PIXEL_YUV420_LAYER;
    ASSERT_EQ(MI_DISP_SetVideoLayerAttr(layer, &layer_attr), MI_SUCCESS);
    ASSERT_EQ(MI_DISP_EnableVideoLayer(layer), MI_SUCCESS);
}

MI_VDEC_ChnAttr channel_attr(uint32_t codec, uint32_t mode, uint32_t buffer_bytes)
{
    MI_VDEC_ChnAttr attr = {};
    attr.codec = codec;
    attr.stream_buffer_bytes = buffer_bytes;
    attr.max_width = 1920;
    attr.max_height = 1080;
    attr.video_mode = mode;
    attr.reference_frames = 2;
    attr.decode_buffers = 2;
    return attr;
}

void start_channel(uint32_t channel, uint32_t codec, uint32_t mode, uint32_t buffer_bytes)
{
    const MI_VDEC_ChnAttr attr = channel_attr(codec, mode, buffer_bytes);
    ASSERT_EQ(MI_VDEC_CreateChn(channel, &attr), MI_SUCCESS);
    ASSERT_EQ(MI_VDEC_StartChn(channel), MI_SUCCESS);
}

void open_window(uint32_t port, int x, int y, int w, int h, int32_t device)
{
    MI_DISP_InputPortAttr attr = {};
    attr.window = {static_cast<uint16_t>(x), static_cast<uint16_t>(y), static_cast<uint16_t>(w),
                   static_cast<uint16_t>(h)};
    ASSERT_EQ(MI_DISP_SetInputPortAttr(device, port, &attr), MI_SUCCESS);
    ASSERT_EQ(MI_DISP_EnableInputPort(device, port), MI_SUCCESS);
}

MI_SYS_ChnPort vdec_end(uint32_t channel)
{
    return {MI_MODULE_VDEC, 0, channel, 0};
}

MI_SYS_ChnPort disp_end(uint32_t port, int32_t device)
{
    return {MI_MODULE_DISP, static_cast<uint32_t>(device), port, 0};
}

int32_t bind(uint32_t channel, uint32_t port, int32_t device)
{
    const MI_SYS_ChnPort source = vdec_end(channel);
    const MI_SYS_ChnPort sink = disp_end(port, device);
    return MI_SYS_BindChnPort(&source, &sink, 15, 15);
}

int32_t unbind(uint32_t channel, uint32_t port, int32_t device)
{
    const MI_SYS_ChnPort source = vdec_end(channel);
    const MI_SYS_ChnPort sink = disp_end(port, device);
    return MI_SYS_UnBindChnPort(&source, &sink);
}

int32_t send(uint32_t channel, const Bytes &bytes, int32_t timeout_ms, uint64_t pts)
{
    MI_VDEC_Stream stream = {};
    stream.address = bytes.data();
    stream.length_bytes = static_cast<uint32_t>(bytes.size());
    stream.pts = pts;
    return MI_VDEC_SendStream(channel, &stream, timeout_ms);
}

void send_and_settle(uint32_t channel, const Bytes &bytes)
{
    ASSERT_EQ(send(channel, bytes), MI_SUCCESS);
    ASSERT_EQ(vboard_decoder_wait_idle(channel, kPatience_ms), 0);
}

vboard_decoder_stat counters(uint32_t channel)
{
    vboard_decoder_stat stat = {};
    EXPECT_EQ(vboard_decoder_get_stat(channel, &stat), 0);
    return stat;
}

vboard_port_stat port_state(uint32_t port, int32_t device)
{
    vboard_port_stat stat = {};
    EXPECT_EQ(vboard_port_get_stat(device, port, &stat), 0);
    return stat;
}

std::string last_refusal()
{
    char text[512];
    vboard_last_refusal(text, sizeof text);
    return text;
}

} // namespace rig
