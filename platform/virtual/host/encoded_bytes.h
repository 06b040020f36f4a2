/* encoded_bytes.h - a piece of an encoded stream, in memory that libavcodec can share. */
#ifndef VBOARD_ENCODED_BYTES_H
#define VBOARD_ENCODED_BYTES_H

#include <cstddef>
#include <cstdint>

struct AVBufferRef;

namespace vboard
{

/* Encoded bytes with the padding that the decoder reads over. Empty when there was no memory. */
class EncodedBytes
{
public:
    EncodedBytes() = default;
    EncodedBytes(const uint8_t *bytes, size_t size);
    ~EncodedBytes();
    EncodedBytes(EncodedBytes &&other) noexcept;
    EncodedBytes &operator=(EncodedBytes &&other) noexcept;

    explicit operator bool() const { return buffer_ != nullptr; }
    size_t size() const { return size_; }
    const uint8_t *data() const;
    AVBufferRef *buffer() const { return buffer_; }

private:
    AVBufferRef *buffer_ = nullptr;
    size_t size_ = 0;
};

} // namespace vboard

#endif
