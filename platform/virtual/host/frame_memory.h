/*
 * frame_memory.h - where a decoder's pictures lie: one mapping a picture, taken from the PC and given
 * back whole. The heap would keep the room of a decoder that is gone, split among its threads'
 * arenas; recorders destroy and create decoders at every layout change.
 */
#ifndef VBOARD_FRAME_MEMORY_H
#define VBOARD_FRAME_MEMORY_H

#include "host/av_handles.h"

namespace vboard
{

/* The pictures of one decoder; goes when the decoder and the last picture have gone. */
class FrameMemory
{
public:
    FrameMemory() = default;
    ~FrameMemory();
    FrameMemory(const FrameMemory &) = delete;
    FrameMemory &operator=(const FrameMemory &) = delete;

    /* Let a context that is not open yet take its pictures from here. */
    void serve(AVCodecContext &context);

private:
    static int get_buffer(AVCodecContext *context, AVFrame *frame, int flags);
    int fill(AVCodecContext &context, AVFrame &frame);

    AVBufferPool *pool_ = nullptr;
    size_t pool_size_ = 0; // bytes a picture
};

} // namespace vboard

#endif
