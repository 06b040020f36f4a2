/*
 * session.h - the library as a recorder holds it: started once, with a layout on the screen.
 *
 * Order of a start: start() brings the board up; every channel's first frame goes through
 * ext_send_stream, which gives the channel a decoder of the stream's codec; apply() then lays the
 * panes out and sets every decoder's output size. In another order it would fail: a decoder that is made anew
 * for its codec after the layout is neither bound to its pane nor set to its size.
 *
 * A pane is a part of the screen; the picture in it keeps its shape unless it is to be stretched. The library
 * gives a single pane the whole screen. So after the layout a single picture of another shape is put into its
 * place by the call that moves display ports without touching decoders. The same call is used when a shape
 * becomes known later.
 */
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "nvrhal/limits.h"
#include "wall/aspect.h"
#include "wall/layout.h"
#include "wall/motion_chips.h"

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

    /**
     * These channels have nothing to show, bit n = channel n: their panes are nobody's. It holds for the
     * layout that stands, too. @return true = its panes are divided otherwise now.
     */
    bool set_free(uint32_t channels);
    bool is_free(int channel) const { return (free_ >> channel & 1) != 0; }

    /** Channels up to the last one that is not free. */
    int used_channels() const;

    /** How pictures are placed in their panes, from the next layout on. */
    void set_aspect(AspectOptions options) { aspect_ = std::move(options); }

    /** The same for one channel; refit() applies it to the present layout. */
    void set_aspect(int channel, Aspect aspect) { aspect_.given.insert_or_assign(channel, aspect); }

    /** A channel's picture is of that shape now. @return true = refit() has something to do. */
    bool set_shape(int channel, const PictureShape &shape);

    /** Place the pictures of the present layout by their shapes; no decoder is flushed. */
    bool refit();

    /** Take the pictures off the screen. Everything else runs until the process ends. */
    void stop();

    /** The chips that see motion, for all parts that need it. */
    MotionChips &motion() { return motion_; }

    /** The display device that the library chose. */
    int device() const;

    const OutputMode &mode() const { return *mode_; }
    int channels() const { return channels_; }

    /** Panes of the channels that have something to show. */
    const std::vector<DispAttrib> &panes() const { return panes_; }

    /** All others of the layout. */
    const std::vector<DispAttrib> &unused_panes() const { return unused_; }

    /** Where a channel's picture lies in its pane; nothing = it has none. */
    std::optional<DispAttrib> picture_of(int channel) const;

private:
    bool show(std::vector<DispAttrib> panes);
    void divide();
    DispAttrib whole_screen(DispAttrib pane) const;
    DispAttrib picture_in(const DispAttrib &pane) const;
    std::vector<DispAttrib> pictures() const;

    const OutputMode *mode_ = nullptr;
    int channels_ = 0;
    uint32_t free_ = 0;              /* bit n = channel n has nothing to show              */
    std::vector<DispAttrib> laid_;   /* panes of the board's channels, as the library has them */
    std::vector<DispAttrib> panes_;  /* of these, those with something to show             */
    std::vector<DispAttrib> beyond_; /* panes of no channel of the board                  */
    std::vector<DispAttrib> unused_; /* those of free channels and these, in their order  */
    std::vector<DispAttrib> placed_; /* the pictures, as the library shows them */
    MotionChips motion_;
    AspectOptions aspect_;
    std::array<PictureShape, NVRHAL_MAX_CAMERAS> shapes_;
};

} // namespace nvrec
