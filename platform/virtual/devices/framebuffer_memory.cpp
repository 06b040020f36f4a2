/* framebuffer_memory.cpp - see framebuffer_memory.h. */
#include "devices/framebuffer_memory.h"

#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace vboard
{
namespace
{

constexpr uint8_t kPowerOnByte = 0xA7;

} // namespace

FramebufferMemory::FramebufferMemory()
{
    file_ = memfd_create("vboard framebuffer", MFD_CLOEXEC);
    if (file_ < 0 || ftruncate(file_, kFramebufferMemory_bytes) != 0) return;
    void *memory = mmap(nullptr, kFramebufferMemory_bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
    if (memory != MAP_FAILED) bytes_ = static_cast<uint8_t *>(memory);
}

void *FramebufferMemory::map(size_t size)
{
    int flags = MAP_SHARED;
#ifdef MAP_32BIT
    flags |= MAP_32BIT;
#endif
    void *address = mmap(nullptr, size, PROT_READ | PROT_WRITE, flags, file_, 0);
    if (address == MAP_FAILED) return nullptr;
    const std::lock_guard guard(mutex_);
    if (!is_filled_) memset(bytes_, kPowerOnByte, kFramebufferMemory_bytes);
    is_filled_ = true;
    return address;
}

void FramebufferMemory::power_on()
{
    const std::lock_guard guard(mutex_);
    is_filled_ = false;
}

void FramebufferMemory::forget_from(size_t offset)
{
    if (bytes_ == nullptr || offset >= kFramebufferMemory_bytes) return;
    const std::lock_guard guard(mutex_);
    if (fallocate(file_, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, static_cast<off_t>(offset),
                  static_cast<off_t>(kFramebufferMemory_bytes - offset)) != 0)
        memset(bytes_ + offset, 0, kFramebufferMemory_bytes - offset);
}

} // namespace vboard
