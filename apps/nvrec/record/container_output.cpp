/* container_output.cpp - see container_output.h. */
#include "record/container_output.h"

#include <algorithm>

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/mem.h>
}

namespace nvrec
{
namespace
{

constexpr int kOutputBuffer_bytes = 64 << 10;

} // namespace

ContainerFile::Output::Output()
    : context_(avio_alloc_context(static_cast<uint8_t *>(av_malloc(kOutputBuffer_bytes)), kOutputBuffer_bytes,
                                  1, this, nullptr, write, seek))
{
}

ContainerFile::Output::~Output()
{
    if (context_) av_freep(&context_->buffer);
    avio_context_free(&context_);
}

int ContainerFile::Output::write(void *self, uint8_t *bytes, int size)
{
    auto &output = *static_cast<Output *>(self);
    auto &extents = output.extents_;
    const bool goes_on = !extents.empty() &&
                         extents.back().at + static_cast<int64_t>(extents.back().bytes.size()) == output.at_;
    if (!goes_on) extents.push_back({output.at_, {}});
    extents.back().bytes.insert(extents.back().bytes.end(), bytes, bytes + size);
    output.at_ += size;
    output.size_ = std::max(output.size_, output.at_);
    return size;
}

int64_t ContainerFile::Output::seek(void *self, int64_t offset, int whence)
{
    auto &output = *static_cast<Output *>(self);
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE: return output.size_;
    case SEEK_SET: break;
    case SEEK_CUR: offset += output.at_; break;
    case SEEK_END: offset += output.size_; break;
    default: return AVERROR(EINVAL);
    }
    if (offset < 0) return AVERROR(EINVAL);
    return output.at_ = offset;
}

} // namespace nvrec
