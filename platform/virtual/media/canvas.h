/*
 * canvas.h - the composed picture of a display device. It is brought up to date only when someone
 * looks, and only where something has changed since the last look.
 *
 * Under step pacing several sheets take turns, one a step: while one is on screen, decoder workers
 * draw the pictures that their ports queue for the steps to come into the others, in parallel. What
 * they drew counts only if it is what the step wants to show.
 *
 * Locks, in this order: the canvas (one looker), a sheet (looker alone, workers together), a pane
 * slot (one worker). The display lock is taken inside the canvas's, never inside a sheet's.
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
    std::unique_lock<std::shared_mutex> sheet_lock_;
    vboard_picture picture_;
};

/* Draw a pane before its step; does nothing where that cannot be done safely. */
void canvas_draw_ahead(int32_t device, const PaneAhead &ahead);

void canvas_reset();

} // namespace vboard

#endif
