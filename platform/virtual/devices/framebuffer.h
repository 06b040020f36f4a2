/*
 * framebuffer.h - the framebuffer as the display sees it. It lies over the video of device 0, on top
 * of both layers.
 */
#ifndef VBOARD_FRAMEBUFFER_H
#define VBOARD_FRAMEBUFFER_H

#include "devices/device_node.h"
#include "host/picture.h"

namespace vboard
{

/* The node "/dev/fb0". */
DeviceNode *framebuffer_node();

/* Whether anything of the framebuffer can be seen over a device's picture of this size now. */
bool framebuffer_covers(int32_t device, int width, int height);

/* Draw the framebuffer over a composed picture. Width and height are even. */
void framebuffer_draw(const MutablePlanarView &picture);

} // namespace vboard

#endif
