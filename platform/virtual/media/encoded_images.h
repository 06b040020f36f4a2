/* encoded_images.h - the stream buffer of an encoder channel: images that wait, and images that are lent. */
#ifndef VBOARD_ENCODED_IMAGES_H
#define VBOARD_ENCODED_IMAGES_H

#include <cstdint>
#include <deque>
#include <vector>

#include "host/jpeg_encoder.h"
#include "mi_venc.h"

namespace vboard
{

/* Not thread-safe: the channel's lock guards it. */
class EncodedImages
{
public:
    /* Room, in a buffer of so many bytes, for one more image of the size that the last one had. */
    bool has_room(uint64_t buffer_bytes) const;

    /* False = there is no room for it, and it is lost. */
    bool keep(JpegImage jpeg, uint64_t pts, uint64_t buffer_bytes);

    bool any() const { return !images_.empty(); }

    /* Lend the oldest image out as a stream of one pack. */
    void lend_oldest(MI_VENC_Stream &stream);

    /* False = no image of that handle is lent. */
    bool release(uintptr_t handle);

    /* Let go of all of them. Numbers go on. */
    void clear();

    void number_from_0() { sequence_ = 0; }

private:
    struct Image {
        JpegImage jpeg;
        uint64_t pts;
        uint32_t sequence;
        uintptr_t handle; // unique, from 1
    };

    std::deque<Image> images_; // encoded, oldest first
    std::vector<Image> lent_;  // got, not yet released
    uint64_t held_bytes_ = 0;  // of both
    uint32_t sequence_ = 0;
    uintptr_t last_handle_ = 0;
};

} // namespace vboard

#endif
