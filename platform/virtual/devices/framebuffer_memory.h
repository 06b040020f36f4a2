/*
 * framebuffer_memory.h - the framebuffer's memory, which really maps: 3840 x 2160 pixels of 16 bits. On
 * a 64-bit PC it is mapped below 4 GiB, since the library tells its address in a 32-bit word. After
 * power-on it holds a pattern, not zeros.
 */
#ifndef VBOARD_FRAMEBUFFER_MEMORY_H
#define VBOARD_FRAMEBUFFER_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <mutex>

namespace vboard
{

constexpr size_t kFramebufferMemory_bytes = size_t{3840} * 2160 * 2;

/* Any thread. */
class FramebufferMemory
{
public:
    FramebufferMemory();
    FramebufferMemory(const FramebufferMemory &) = delete;
    FramebufferMemory &operator=(const FramebufferMemory &) = delete;

    /* False = the PC gives no memory. */
    bool is_there() const { return bytes_ != nullptr; }

    /* The board's own view of it. */
    uint8_t *bytes() const { return bytes_; }

    /* Map the first `size` bytes of it. Null = there is no room below 4 GiB. */
    void *map(size_t size);

    /* It holds anything from now on: whoever maps it first must clear it. */
    void power_on();

    /* Zero bytes from here to the end of the memory, without a page of the PC under them. */
    void forget_from(size_t offset);

private:
    int file_ = -1;
    uint8_t *bytes_ = nullptr;

    std::mutex mutex_;       // one fills or empties it; guards what follows
    bool is_filled_ = false; // with the pattern, since power-on
};

} // namespace vboard

#endif
