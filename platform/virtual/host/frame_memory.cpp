/* frame_memory.cpp - the decoder's buffer callback over a pool of mappings. */
#include "host/frame_memory.h"

#include <sys/mman.h>

#include <cstdint>

namespace vboard
{
namespace
{

constexpr size_t kAlignment = 64;
constexpr size_t kSlack = 64; // decoders read and write a little past a plane's end

void unmap(void *opaque, uint8_t *data)
{
    munmap(data, reinterpret_cast<uintptr_t>(opaque));
}

AVBufferRef *map_picture(void *, size_t size)
{
    void *memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    AVBufferRef *buffer = av_buffer_create(static_cast<uint8_t *>(memory), size, unmap,
                                           reinterpret_cast<void *>(static_cast<uintptr_t>(size)), 0);
    if (buffer == nullptr) munmap(memory, size);
    return buffer;
}

size_t rounded_up(size_t size)
{
    return (size + kAlignment - 1) & ~(kAlignment - 1);
}

} // namespace

FrameMemory::~FrameMemory()
{
    av_buffer_pool_uninit(&pool_); // lives on until its last buffer comes back
}

void FrameMemory::serve(AVCodecContext &context)
{
    context.opaque = this;
    context.get_buffer2 = get_buffer;
}

int FrameMemory::get_buffer(AVCodecContext *context, AVFrame *frame, int flags)
{
    const bool planar_420 = frame->format == AV_PIX_FMT_YUV420P || frame->format == AV_PIX_FMT_YUVJ420P;
    if (!planar_420) return avcodec_default_get_buffer2(context, frame, flags);
    return static_cast<FrameMemory *>(context->opaque)->fill(*context, *frame);
}

int FrameMemory::fill(AVCodecContext &context, AVFrame &frame)
{
    int width = frame.width;
    int height = frame.height;
    int stride_alignment[AV_NUM_DATA_POINTERS];
    avcodec_align_dimensions2(&context, &width, &height, stride_alignment);
    // A luma stride of twice the alignment gives chroma one that is aligned as well.
    const size_t luma_stride = (static_cast<size_t>(width) + 2 * kAlignment - 1) & ~(2 * kAlignment - 1);
    const size_t rows[3] = {static_cast<size_t>(height), static_cast<size_t>((height + 1) / 2),
                            static_cast<size_t>((height + 1) / 2)};
    const size_t strides[3] = {luma_stride, luma_stride / 2, luma_stride / 2};
    size_t offset[3];
    size_t size = 0;
    for (int plane = 0; plane < 3; ++plane) {
        offset[plane] = size;
        size += rounded_up(strides[plane] * rows[plane] + kSlack);
    }
    if (pool_ == nullptr || pool_size_ != size) {
        av_buffer_pool_uninit(&pool_);
        pool_ = av_buffer_pool_init2(size, nullptr, map_picture, nullptr);
        pool_size_ = size;
    }
    frame.buf[0] = pool_ != nullptr ? av_buffer_pool_get(pool_) : nullptr;
    if (frame.buf[0] == nullptr) return AVERROR(ENOMEM);
    for (int plane = 0; plane < 3; ++plane) {
        frame.data[plane] = frame.buf[0]->data + offset[plane];
        frame.linesize[plane] = static_cast<int>(strides[plane]);
    }
    frame.extended_data = frame.data;
    return 0;
}

} // namespace vboard
