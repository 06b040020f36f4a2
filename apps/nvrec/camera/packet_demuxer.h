/* packet_demuxer.h - what a packet source holds of libavformat. Included by packet_source*.cpp alone. */
#pragma once

#include <deque>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
}

#include "camera/packet_source.h"

namespace nvrec
{

struct PacketRelease {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};
using Packet = std::unique_ptr<AVPacket, PacketRelease>;

/* A packet, and when it arrived, which only packets of a network camera have. */
struct TimedPacket {
    Packet packet;
    Clock::time_point at;
};

/* Everything that libavformat and libavcodec hold for one open input. */
struct PacketSource::Demuxer {
    AVFormatContext *format = nullptr;
    AVStream *stream = nullptr;
    AVBSFContext *filter = nullptr;
    AVCodecParserContext *parser = nullptr; /* looks into key frames: size, true random access */
    AVCodecContext *parser_context = nullptr;
    std::unique_ptr<SoundTrack> sound;
    AVRational sound_time_base = {1, 1};
    AVPacket *packet = av_packet_alloc();
    std::deque<TimedPacket> ahead; /* of the video stream, read and not filtered yet */
    int ahead_end = 0;             /* why no more of them can be read; 0 = they can  */
    bool filter_drained = false;
    bool bare = false; /* the bare stream of the codec: no time stamps, no index */

    ~Demuxer()
    {
        av_packet_free(&packet);
        if (parser) av_parser_close(parser);
        avcodec_free_context(&parser_context);
        av_bsf_free(&filter);
        avformat_close_input(&format);
    }
};

} // namespace nvrec
