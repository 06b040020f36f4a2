/* av_handles.h - FFmpeg's objects with owners. Only the sources of host/ include this. */
#ifndef VBOARD_AV_HANDLES_H
#define VBOARD_AV_HANDLES_H

#include <memory>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libavutil/log.h>
#include <libswscale/swscale.h>
}

namespace vboard
{

struct AvDelete {
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
    void operator()(AVCodecParserContext *parser) const { av_parser_close(parser); }
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(AVBufferRef *buffer) const { av_buffer_unref(&buffer); }
    void operator()(SwsContext *context) const { sws_freeContext(context); }
};

using ContextPtr = std::unique_ptr<AVCodecContext, AvDelete>;
using ParserPtr = std::unique_ptr<AVCodecParserContext, AvDelete>;
using PacketPtr = std::unique_ptr<AVPacket, AvDelete>;
using FramePtr = std::unique_ptr<AVFrame, AvDelete>;
using BufferPtr = std::unique_ptr<AVBufferRef, AvDelete>;
using SwsPtr = std::unique_ptr<SwsContext, AvDelete>;

} // namespace vboard

#endif
