/*
 * jpeg_encoder.h - one picture to one JPEG (JFIF) image.
 *
 * Video is limited range; JFIF is full range. The encoder stretches luma and chroma accordingly, so
 * that any viewer shows the colours that the display shows.
 */
#ifndef VBOARD_JPEG_ENCODER_H
#define VBOARD_JPEG_ENCODER_H

#include <cstddef>
#include <cstdint>
#include <memory>

#include "host/picture.h"

namespace vboard
{

/* An encoded image. */
class JpegImage
{
public:
    JpegImage() = default;
    JpegImage(uint8_t *bytes, size_t size) : bytes_(bytes), size_(size) {} // bytes from malloc
    uint8_t *bytes() const { return bytes_.get(); }
    size_t size() const { return size_; }
    explicit operator bool() const { return bytes_ != nullptr; }

private:
    struct Free {
        void operator()(uint8_t *bytes) const;
    };
    std::unique_ptr<uint8_t, Free> bytes_;
    size_t size_ = 0;
};

/*
 * Encode as 4:2:0. `quality` 1 to 100 scales the standard's tables; `restart_rows`: rows of 16
 * luma lines between restart markers, 0 = none. Empty: a size of 0 or above 65535, or no memory.
 */
JpegImage encode_jpeg(const PlanarView &picture, int quality, int restart_rows);

} // namespace vboard

#endif
