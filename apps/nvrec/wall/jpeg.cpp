/* jpeg.cpp - see jpeg.h. */
#include "wall/jpeg.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/pixdesc.h>
}

#include "console/text.h"

namespace nvrec
{
namespace
{

constexpr int kFineQuality = 3; /* quantiser, 1 is the finest: no block is seen at this one */
constexpr int kLargestSide = 16384;

struct FreeFrame {
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
};
struct FreePacket {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};
struct FreeContext {
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
};
using Frame = std::unique_ptr<AVFrame, FreeFrame>;

Frame new_picture(int width, int height, AVPixelFormat format)
{
    Frame frame(av_frame_alloc());
    if (!frame || width < 1 || height < 1 || width > kLargestSide || height > kLargestSide) return nullptr;
    frame->width = width;
    frame->height = height;
    frame->format = format;
    frame->color_range = AVCOL_RANGE_JPEG;
    if (av_frame_get_buffer(frame.get(), 0) < 0) return nullptr;
    return frame;
}

std::optional<std::vector<uint8_t>> encode(const AVFrame &frame)
{
    const AVCodec *codec = avcodec_find_encoder(AV_CODEC_ID_MJPEG);
    if (!codec) return std::nullopt;
    const std::unique_ptr<AVCodecContext, FreeContext> context(avcodec_alloc_context3(codec));
    const std::unique_ptr<AVPacket, FreePacket> packet(av_packet_alloc());
    if (!context || !packet) return std::nullopt;
    context->width = frame.width;
    context->height = frame.height;
    context->pix_fmt = static_cast<AVPixelFormat>(frame.format);
    context->color_range = AVCOL_RANGE_JPEG;
    context->time_base = {1, 25}; /* it is asked for one */
    context->flags |= AV_CODEC_FLAG_QSCALE;
    context->global_quality = kFineQuality * FF_QP2LAMBDA;
    if (avcodec_open2(context.get(), codec, nullptr) < 0) return std::nullopt;
    if (avcodec_send_frame(context.get(), &frame) < 0) return std::nullopt;
    if (avcodec_receive_packet(context.get(), packet.get()) < 0) return std::nullopt;
    return std::vector<uint8_t>(packet->data, packet->data + packet->size);
}

uint8_t to_byte(int value)
{
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

/* A table from samples in 8 bits to bytes of full range. */
std::array<uint8_t, 256> range_table(bool full_range, bool luma)
{
    constexpr int kBlack = 16, kLumaSteps = 219, kChromaSteps = 224, kMiddle = 128;
    std::array<uint8_t, 256> table = {};
    for (int value = 0; value < 256; ++value) {
        const int whole = luma ? ((value - kBlack) * 255 + kLumaSteps / 2) / kLumaSteps
                               : (value - kMiddle) * 255 / kChromaSteps + kMiddle;
        table[static_cast<size_t>(value)] = full_range ? to_byte(value) : to_byte(whole);
    }
    return table;
}

/* The JPEG pixel format with this chroma subsampling; none = JPEG has no such format. */
AVPixelFormat format_with(int shift_x, int shift_y)
{
    if (shift_x == 1 && shift_y == 1) return AV_PIX_FMT_YUVJ420P;
    if (shift_x == 1 && shift_y == 0) return AV_PIX_FMT_YUVJ422P;
    if (shift_x == 0 && shift_y == 0) return AV_PIX_FMT_YUVJ444P;
    return AV_PIX_FMT_NONE;
}

void copy_plane(const AVFrame &from, AVFrame &to, int plane, int width, int height, int depth,
                const std::array<uint8_t, 256> &table)
{
    for (int y = 0; y < height; ++y) {
        const uint8_t *source = from.data[plane] + static_cast<ptrdiff_t>(y) * from.linesize[plane];
        uint8_t *target = to.data[plane] + static_cast<ptrdiff_t>(y) * to.linesize[plane];
        for (int x = 0; x < width; ++x) {
            const int value = depth > 8 ? (source[2 * x] | source[2 * x + 1] << 8) >> (depth - 8) : source[x];
            target[x] = table[static_cast<size_t>(value & 0xFF)];
        }
    }
}

} // namespace

/* BT.601 in full range, as JPEG files have it. */
std::optional<std::vector<uint8_t>> jpeg_of_rgb(int width, int height, const uint8_t *rgb)
{
    const Frame frame = new_picture(width, height, AV_PIX_FMT_YUVJ444P);
    if (!frame) return std::nullopt;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const uint8_t *pixel = rgb + (static_cast<ptrdiff_t>(y) * width + x) * 3;
            const int r = pixel[0], g = pixel[1], b = pixel[2];
            constexpr int kHalf = 1 << 15, kMiddle = 128 << 16;
            frame->data[0][static_cast<ptrdiff_t>(y) * frame->linesize[0] + x] =
                to_byte((19595 * r + 38470 * g + 7471 * b + kHalf) >> 16);
            frame->data[1][static_cast<ptrdiff_t>(y) * frame->linesize[1] + x] =
                to_byte((-11059 * r - 21709 * g + 32768 * b + kMiddle + kHalf) >> 16);
            frame->data[2][static_cast<ptrdiff_t>(y) * frame->linesize[2] + x] =
                to_byte((32768 * r - 27439 * g - 5329 * b + kMiddle + kHalf) >> 16);
        }
    }
    return encode(*frame);
}

std::optional<std::vector<uint8_t>> jpeg_of_picture(const AVFrame &picture)
{
    const AVPixFmtDescriptor *kind = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
    constexpr uint64_t kNotPlanes = AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BE |
                                    AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM;
    if (!kind || kind->nb_components < 3 || (kind->flags & AV_PIX_FMT_FLAG_PLANAR) == 0 ||
        (kind->flags & kNotPlanes) != 0)
        return std::nullopt;
    const int depth = kind->comp[0].depth;
    const AVPixelFormat format = format_with(kind->log2_chroma_w, kind->log2_chroma_h);
    if (depth < 8 || depth > 16 || format == AV_PIX_FMT_NONE) return std::nullopt;
    const Frame frame = new_picture(picture.width, picture.height, format);
    if (!frame) return std::nullopt;

    const bool full = picture.color_range == AVCOL_RANGE_JPEG || picture.format == AV_PIX_FMT_YUVJ420P ||
                      picture.format == AV_PIX_FMT_YUVJ422P || picture.format == AV_PIX_FMT_YUVJ444P;
    for (int plane = 0; plane < 3; ++plane) {
        const int width = plane == 0 ? picture.width : AV_CEIL_RSHIFT(picture.width, kind->log2_chroma_w);
        const int height = plane == 0 ? picture.height : AV_CEIL_RSHIFT(picture.height, kind->log2_chroma_h);
        copy_plane(picture, *frame, plane, width, height, depth, range_table(full, plane == 0));
    }
    return encode(*frame);
}

bool names_jpeg(const std::string &path)
{
    const std::string ending = small_letters(std::filesystem::path(path).extension().string());
    return ending == ".jpg" || ending == ".jpeg";
}

bool write_picture_file(const std::string &path, const void *bytes, size_t size)
{
    std::error_code ignored; /* the write tells whether it worked */
    const std::filesystem::path directory = std::filesystem::path(path).parent_path();
    if (!directory.empty()) std::filesystem::create_directories(directory, ignored);
    std::ofstream file(path, std::ios::binary);
    file.write(static_cast<const char *>(bytes), static_cast<std::streamsize>(size));
    file.close();
    return bool(file);
}

} // namespace nvrec
