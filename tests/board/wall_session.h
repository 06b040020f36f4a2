/*
 * wall_session.h - a live wall of any number of cameras and both codecs, driven as an application
 * drives it: ext_device_init, ext_change_display_format, ext_send_stream.
 *
 * Start-up creates every decoder for H.265 in whole frames. The first H.264 frame of a camera makes
 * the library create its decoder anew, for a byte stream: from then on a frame comes out when the
 * next one begins.
 */
#ifndef WALL_SESSION_H
#define WALL_SESSION_H

#include <memory>
#include <vector>

#include "playback_session.h"

namespace wall
{

/* A pane in output pixels. */
struct Place {
    int x, y, w, h;
};

/* Pane `index` of an even grid on the 1920 x 1080 output. */
Place grid_place(int32_t side, uint32_t index);

DispAttrib pane(uint32_t channel, const Place &place, uint16_t bind_status = 1);

/* A picture as a pane shows it: the decoder and the display scale every dimension at most once. */
rig::Picture shown_in(const rig::Picture &picture, const Place &place);

rig::Picture part_of(const rig::Picture &picture, const Place &place);
std::optional<stamp::Stamp> stamp_in(const rig::Picture &picture, const Place &place);

/* A camera: its stream, and what a reference decoder makes of it. */
struct Camera {
    rig::Stream stream;
    std::vector<rig::Picture> pictures;

    explicit Camera(const std::string &name);
    uint32_t codec() const; // the application's code
    size_t lag() const;     // frames sent that are still to come out, once the codec is settled
};

class Wall : public testing::Test
{
protected:
    /* Start the library with so many cameras; the board is fresh, as the process is. */
    void start(int32_t cameras);

    /* Let the library meet every camera's codec, then forget what was decoded by laying out anew. */
    void meet(const std::vector<Camera> &cameras);

    /* A layout, without its waits. */
    static int32_t lay_out(const std::vector<DispAttrib> &panes);

    /* Channels 0 to count - 1 on an even grid. */
    static std::vector<DispAttrib> grid(int32_t side, uint32_t count);

    /* Send one frame and wait until its decoder has nothing left to do. */
    static void send(uint32_t channel, const rig::Bytes &frame, uint32_t codec);
};

} // namespace wall

#endif
