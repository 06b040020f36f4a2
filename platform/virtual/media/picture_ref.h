/*
 * picture_ref.h - a decoded picture that the board's stages hand on and share, and the count of what
 * became of it: it counts as shown the first time a display shows it, and as dropped when its last
 * owner lets go of it before any display has.
 */
#ifndef VBOARD_PICTURE_REF_H
#define VBOARD_PICTURE_REF_H

#include <atomic>
#include <cstdint>
#include <memory>

#include "host/picture.h"

namespace vboard
{

/* Where a decoder channel's pictures ended. Lives as long as the board. */
struct PictureTally {
    std::atomic<uint64_t> shown{0};
    std::atomic<uint64_t> dropped{0};
};

class PictureRef
{
public:
    /* `width` x `height`: the size at which the output port delivers the picture. */
    PictureRef(PicturePtr picture, int width, int height, uint32_t channel, PictureTally &tally)
        : picture_(std::move(picture)), width_(width), height_(height), channel_(channel),
          serial_(next_serial()), tally_(tally)
    {
    }
    ~PictureRef()
    {
        if (!seen_.load(std::memory_order_relaxed)) tally_.dropped.fetch_add(1);
    }
    PictureRef(const PictureRef &) = delete;
    PictureRef &operator=(const PictureRef &) = delete;

    void mark_seen() const
    {
        if (!seen_.exchange(true, std::memory_order_relaxed)) tally_.shown.fetch_add(1);
    }

    const Picture &picture() const { return *picture_; }
    int width() const { return width_; }
    int height() const { return height_; }
    uint32_t channel() const { return channel_; }
    uint64_t serial() const { return serial_; } // unique, from 1

private:
    static uint64_t next_serial()
    {
        static std::atomic<uint64_t> last{0};
        return last.fetch_add(1, std::memory_order_relaxed) + 1;
    }

    PicturePtr picture_;
    int width_;
    int height_;
    uint32_t channel_;
    uint64_t serial_;
    PictureTally &tally_;
    mutable std::atomic<bool> seen_{false};
};

using PictureRefPtr = std::shared_ptr<const PictureRef>;

} // namespace vboard

#endif
