/* Clips through libavformat, turned into Annex B by its bit-stream filters. */
#include "clip.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
}

namespace wallbench
{

namespace
{

[[noreturn]] void give_up(const std::string &path, const char *why)
{
    std::fprintf(stderr, "bench_wall: %s: %s\n", path.c_str(), why);
    std::exit(1);
}

struct FormatCloser {
    void operator()(AVFormatContext *context) const { avformat_close_input(&context); }
};
struct FilterCloser {
    void operator()(AVBSFContext *context) const { av_bsf_free(&context); }
};
struct PacketCloser {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};

} // namespace

Clip load_clip(const std::string &path)
{
    AVFormatContext *opened = nullptr;
    if (avformat_open_input(&opened, path.c_str(), nullptr, nullptr) != 0) give_up(path, "cannot be opened");
    std::unique_ptr<AVFormatContext, FormatCloser> format(opened);
    if (avformat_find_stream_info(format.get(), nullptr) < 0) give_up(path, "has no stream information");
    const int index = av_find_best_stream(format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0) give_up(path, "has no video stream");
    const AVCodecParameters *parameters = format->streams[index]->codecpar;

    Clip clip;
    clip.h265 = parameters->codec_id == AV_CODEC_ID_HEVC;
    clip.width = parameters->width;
    clip.height = parameters->height;

    AVBSFContext *allocated = nullptr;
    const AVBitStreamFilter *filter = av_bsf_get_by_name(clip.h265 ? "hevc_mp4toannexb" : "h264_mp4toannexb");
    if (filter == nullptr || av_bsf_alloc(filter, &allocated) != 0) give_up(path, "no Annex B filter");
    std::unique_ptr<AVBSFContext, FilterCloser> annex_b(allocated);
    avcodec_parameters_copy(annex_b->par_in, parameters);
    annex_b->time_base_in = format->streams[index]->time_base;
    if (av_bsf_init(annex_b.get()) != 0) give_up(path, "its stream cannot be turned into Annex B");

    std::unique_ptr<AVPacket, PacketCloser> packet(av_packet_alloc());
    while (av_read_frame(format.get(), packet.get()) == 0) {
        const bool wanted = packet->stream_index == index;
        if (!wanted || av_bsf_send_packet(annex_b.get(), packet.get()) != 0) {
            av_packet_unref(packet.get());
            continue;
        }
        while (av_bsf_receive_packet(annex_b.get(), packet.get()) == 0) {
            clip.frames.emplace_back(packet->data, packet->data + packet->size);
            av_packet_unref(packet.get());
        }
    }
    if (clip.frames.empty()) give_up(path, "has no frames");
    return clip;
}

} // namespace wallbench
