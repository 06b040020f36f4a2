/*
 * session.h - the library as a recorder holds it: started once, with a layout on the screen.
 *
 * Order of a start: start() brings the board up; every channel's first frame goes through
 * ext_send_stream, which gives the channel a decoder of the stream's codec; apply() then lays the
 * panes out and sets every decoder's output size. The other way round, a decoder that is recreated
 * for its codec after the layout would be neither bound to its pane nor sized for it.
 */
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "wall/layout.h"

namespace nvrec
{

/** An output that the library can be started with. */
struct OutputMode {
    std::string_view name;
    int gui_width_px; /* chooses the mode in DeviceParams */
    int width_px;
    int height_px;
};

/** The mode of that name, or null. */
const OutputMode *output_mode_named(std::string_view name);
std::vector<std::string> output_mode_names();

class Session
{
public:
    /** Bring the board up for that many cameras, 1 to 16. Once a process. */
    bool start(const OutputMode &mode, int channels);

    /** Put the layout on the screen. Flushes the decoders of its channels; about 100 ms a pane. */
    bool apply(Layout layout);

    /** Put one channel alone on the whole screen. */
    bool apply_single(int channel);

    /** Take the pictures off the screen. Everything else runs until the process ends. */
    void stop();

    /** The display device that the library chose. */
    int device() const;

    const OutputMode &mode() const { return *mode_; }
    int channels() const { return channels_; }
    const std::vector<DispAttrib> &panes() const { return panes_; }

private:
    bool show(std::vector<DispAttrib> panes);

    const OutputMode *mode_ = nullptr;
    int channels_ = 0;
    std::vector<DispAttrib> panes_;
};

} // namespace nvrec
