/*
 * zoom.h - enlarges a part of one picture to the whole screen.
 *
 *   whole wall -> begin(): the channel alone, vo_for_ezoom = 1 -> ext_vidoe_image_zoom a move
 *              -> end(): the whole picture, vo_for_ezoom = 0, the panes of before
 *
 * Keys: zoom switches it on and off, zoom in and zoom out act around the middle, arrows move the part. Mouse:
 * the wheel zooms around the pointer, dragging moves. Zooming out to the whole picture ends it, and so does
 * any other layout.
 */
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "wall/module.h"

namespace nvrec
{

/** The visible part of a picture: the whole picture is 0, 0, 1, 1. Always inside the picture. */
class ZoomWindow
{
public:
    double x = 0, y = 0, w = 1, h = 1;

    bool is_whole() const { return w >= 1 && h >= 1; }

    /**
     * Show less (factor > 1) or more of the picture; the point at px, py stays at its place on the screen.
     */
    void scale_around(double px, double py, double factor);

    /** Show a part further right and down. */
    void move(double dx, double dy);

    /** The point of the picture at a place of the pane, both from 0 to 1. */
    std::pair<double, double> point_at(double pane_x, double pane_y) const;

private:
    void keep_inside();
};

/** A part in pixels of the camera's picture, as a user gives it. */
struct ZoomRect {
    int x = 0, y = 0, w = 0, h = 0;
};

/** "x,y,w,h", numbers of 0 or more, w and h of at least 1. */
std::optional<ZoomRect> zoom_rect(const std::string &text);

struct ZoomOptions {
    std::string rect; /* as zoom_rect takes it; empty = no zoom at the start */
    int channel = 0;  /* for rect                                            */
};

class Zoom final : public Module
{
public:
    /** Width and height of the picture on a channel; zeros = not known. */
    using SizeOf = std::function<std::pair<uint32_t, uint32_t>(int channel)>;

    /** @param size_of  tells the size of a picture that is no camera's; may be empty */
    explicit Zoom(const ZoomOptions &options, SizeOf size_of = {});

    bool start(WallControl &wall) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    void before_layout() override;
    void on_layout() override;
    InputLayer input_layer() const override { return InputLayer::kZoom; }
    bool on_key(Key key) override;
    bool on_pointer(const PointerEvent &event) override;
    void stop() override;

    /** Enlarge a part of a channel's picture. @return empty, or why not. */
    bool begin_as_asked();
    std::string begin(int channel, const ZoomRect &rect);

    /** Go back to the panes of before. */
    void end();

    bool zoomed() const { return channel_ >= 0; }

private:
    std::pair<uint32_t, uint32_t> size_of_picture(int channel) const;
    bool begin(int channel, const ZoomWindow &window);
    bool show(const ZoomWindow &window);
    bool apply();
    void let_go();
    bool change(const std::function<void(ZoomWindow &)> &how);

    const ZoomOptions options_;
    const SizeOf size_of_;
    WallControl *wall_ = nullptr;
    bool asked_ = false; /* the options' zoom was begun */
    ZoomWindow window_;
    int channel_ = -1; /* what is zoomed, -1 = nothing         */
    int enlarged_before_ = -1;
    int drag_x_ = 0, drag_y_ = 0; /* the pointer at the last event    */
};

} // namespace nvrec
