/*
 * canvas.h - the composed picture of a display device. It is brought up to date only when someone
 * looks, and only where something has changed since the last look.
 *
 * A canvas has a lock of its own, held while it is composed or lent; the display lock is taken
 * inside it, shortly, to see what is visible.
 */
#ifndef VBOARD_CANVAS_H
#define VBOARD_CANVAS_H

#include <cstdint>
#include <mutex>

#include "vboard.h"

namespace vboard
{

/* The canvas of a device, locked and up to date for as long as this lives. */
class CanvasLook
{
public:
    explicit CanvasLook(int32_t device); // an existing device
    const vboard_picture &picture() const { return picture_; }

private:
    std::unique_lock<std::mutex> lock_;
    vboard_picture picture_;
};

void canvas_reset();

} // namespace vboard

#endif
