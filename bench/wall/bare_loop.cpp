/*
 * The limit: one thread a stream decodes with libavcodec and scales with libyuv into its own part
 * of one canvas. No queue, no clock, no library. The clips come through the same loader.
 */
#include "walls.h"

#include <cstdio>
#include <thread>

#include <libyuv.h>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "clip.h"

namespace wallbench
{

namespace
{

struct Canvas {
    std::vector<uint8_t> y = std::vector<uint8_t>(kOutputWidth * kOutputHeight);
    std::vector<uint8_t> u = std::vector<uint8_t>(kOutputWidth * kOutputHeight / 4);
    std::vector<uint8_t> v = std::vector<uint8_t>(kOutputWidth * kOutputHeight / 4);
};

void put_into_pane(const AVFrame &frame, const Mix &mix, int pane, Canvas &canvas)
{
    const int x = mix.pane_x(pane);
    const int y = mix.pane_y(pane);
    const int chroma = y / 2 * (kOutputWidth / 2) + x / 2;
    libyuv::I420Scale(frame.data[0], frame.linesize[0], frame.data[1], frame.linesize[1], frame.data[2],
                      frame.linesize[2], frame.width, frame.height, canvas.y.data() + y * kOutputWidth + x,
                      kOutputWidth, canvas.u.data() + chroma, kOutputWidth / 2, canvas.v.data() + chroma,
                      kOutputWidth / 2, mix.pane_width(), mix.pane_height(), libyuv::kFilterBox);
}

void decode_stream(const Clip &clip, const Mix &mix, int pane, Canvas &canvas)
{
    const AVCodec *codec = avcodec_find_decoder(clip.h265 ? AV_CODEC_ID_HEVC : AV_CODEC_ID_H264);
    AVCodecContext *context = avcodec_alloc_context3(codec);
    context->thread_count = 1;
    avcodec_open2(context, codec, nullptr);
    AVPacket *packet = av_packet_alloc();
    AVFrame *frame = av_frame_alloc();
    for (const std::vector<uint8_t> &bytes : clip.frames) {
        av_new_packet(packet, static_cast<int>(bytes.size()));
        std::copy(bytes.begin(), bytes.end(), packet->data);
        avcodec_send_packet(context, packet);
        av_packet_unref(packet);
        while (avcodec_receive_frame(context, frame) == 0)
            put_into_pane(*frame, mix, pane, canvas);
    }
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&context);
}

} // namespace

int run_bare_loop(const Mix &mix)
{
    Canvas canvas;
    const LoadedClips clips(mix);
    std::vector<std::thread> streams;
    for (int pane = 0; pane < mix.panes(); ++pane)
        streams.emplace_back([&, pane] { decode_stream(clips.of_pane(pane), mix, pane, canvas); });
    for (std::thread &stream : streams)
        stream.join();
    return 0;
}

} // namespace wallbench
