/* png_file.cpp - libavcodec's PNG encoder behind png_file.h. */
#include "host/png_file.h"

#include <cstdio>
#include <cstring>

#include "host/av_handles.h"

namespace vboard
{
namespace
{

FramePtr rgb_frame(const uint8_t *rgb, int width, int height, int stride)
{
    FramePtr frame(av_frame_alloc());
    if (frame == nullptr) return nullptr;
    frame->format = AV_PIX_FMT_RGB24;
    frame->width = width;
    frame->height = height;
    if (av_frame_get_buffer(frame.get(), 0) < 0) return nullptr;
    for (int row = 0; row < height; ++row)
        memcpy(frame->data[0] + static_cast<ptrdiff_t>(row) * frame->linesize[0],
               rgb + static_cast<ptrdiff_t>(row) * stride, static_cast<size_t>(width) * 3);
    return frame;
}

PacketPtr encode(const FramePtr &frame)
{
    const AVCodec *encoder = avcodec_find_encoder(AV_CODEC_ID_PNG);
    ContextPtr context(encoder != nullptr ? avcodec_alloc_context3(encoder) : nullptr);
    PacketPtr packet(av_packet_alloc());
    if (context == nullptr || packet == nullptr || frame == nullptr) return nullptr;
    context->width = frame->width;
    context->height = frame->height;
    context->pix_fmt = AV_PIX_FMT_RGB24;
    context->time_base = {1, 25};
    context->thread_count = 1;
    context->compression_level = 3;
    if (avcodec_open2(context.get(), encoder, nullptr) < 0) return nullptr;
    if (avcodec_send_frame(context.get(), frame.get()) < 0) return nullptr;
    if (avcodec_send_frame(context.get(), nullptr) < 0) return nullptr;
    if (avcodec_receive_packet(context.get(), packet.get()) < 0) return nullptr;
    return packet;
}

} // namespace

bool write_png(const char *path, const uint8_t *rgb, int width, int height, int stride)
{
    if (path == nullptr || rgb == nullptr || width <= 0 || height <= 0) return false;
    const PacketPtr packet = encode(rgb_frame(rgb, width, height, stride));
    if (packet == nullptr) return false;
    FILE *file = fopen(path, "wb");
    if (file == nullptr) return false;
    const size_t size = static_cast<size_t>(packet->size);
    const bool written = fwrite(packet->data, 1, size, file) == size;
    return (fclose(file) == 0) && written;
}

} // namespace vboard
