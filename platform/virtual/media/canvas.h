/*
 * canvas.h - the composed picture of a display device. It is brought up to date only when someone
 * looks, and only where something has changed since the last look.
 *
 * Under step pacing a device has several composition buffers and shows them in turn, one a step.
 * While one is on screen, the decoder workers draw the pictures that their ports have queued for the
 * next steps into the others, in parallel. A step uses a pane drawn so only if it is the picture that
 * the step is to show; otherwise it draws the pane itself.
 *
 * Locks, in this order: the canvas (by the thread that looks), a composition buffer (exclusively by
 * that thread, shared by the workers), a pane slot (by one worker). The display lock is taken inside
 * the canvas's, never inside a composition buffer's.
 */
#ifndef VBOARD_CANVAS_H
#define VBOARD_CANVAS_H

#include <cstdint>
#include <mutex>
#include <shared_mutex>

#include "media/display.h"
#include "vboard.h"

namespace vboard
{

/* Whether the framebuffer is looked at as well; reading through all of it takes its time. */
enum class Overlay { no, yes };

/* The canvas of a device, locked and up to date for as long as this lives. */
class CanvasLook
{
public:
    explicit CanvasLook(int32_t device, Overlay overlay = Overlay::yes); // an existing device
    const vboard_picture &picture() const { return picture_; }

private:
    std::unique_lock<std::mutex> lock_;
    std::unique_lock<std::shared_mutex> buffer_lock_;
    vboard_picture picture_;
};

/* Draw a pane before its step; does nothing where that cannot be done safely. */
void canvas_draw_ahead(int32_t device, const PaneAhead &ahead);

void canvas_reset();

} // namespace vboard

#endif
