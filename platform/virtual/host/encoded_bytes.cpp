/* encoded_bytes.cpp - see encoded_bytes.h. */
#include "host/encoded_bytes.h"

#include <cstring>
#include <utility>

#include "host/av_handles.h"

namespace vboard
{

EncodedBytes::EncodedBytes(const uint8_t *bytes, size_t size)
    : buffer_(av_buffer_alloc(size + AV_INPUT_BUFFER_PADDING_SIZE)), size_(size)
{
    if (buffer_ == nullptr) return;
    memcpy(buffer_->data, bytes, size);
    memset(buffer_->data + size, 0, AV_INPUT_BUFFER_PADDING_SIZE);
}

EncodedBytes::~EncodedBytes()
{
    av_buffer_unref(&buffer_);
}

EncodedBytes::EncodedBytes(EncodedBytes &&other) noexcept
    : buffer_(std::exchange(other.buffer_, nullptr)), size_(std::exchange(other.size_, 0))
{
}

EncodedBytes &EncodedBytes::operator=(EncodedBytes &&other) noexcept
{
    std::swap(buffer_, other.buffer_);
    std::swap(size_, other.size_);
    return *this;
}

const uint8_t *EncodedBytes::data() const
{
    return buffer_ != nullptr ? buffer_->data : nullptr;
}

} // namespace vboard
