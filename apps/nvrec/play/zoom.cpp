/* zoom.cpp - see zoom.h. */
#include "play/zoom.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>

#include "console/exit_code.h"
#include "console/terminal.h"
#include "nvrhal.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr double kSmallest = 1.0 / 32; /* of the picture, either way */
constexpr double kStep = 1.25;         /* a key or a notch of the wheel */
constexpr double kMove = 1.0 / 8;      /* of what is seen, an arrow key */
constexpr ZoomWindow kMiddle = {.x = 0.25, .y = 0.25, .w = 0.5, .h = 0.5};

/* The cameras' threads read these words while they send. */
void publish(uint32_t &word, uint32_t value)
{
    std::atomic_ref<uint32_t>(word).store(value, std::memory_order_release);
}

/* What the library and the key reader are told about the zoom. */
void announce(int channel)
{
    const bool on = channel >= 0;
    publish(vo_for_ezoom, on ? 1 : 0);
    publish(zoom_flag_click, on ? 1 : 0);
    if (!on) return;
    zoom_arg[0] = zoom_arg[1] = static_cast<uint32_t>(channel);
    zoom_arg[2] = 0;
}

} // namespace

void ZoomWindow::keep_inside()
{
    w = std::clamp(w, kSmallest, 1.0);
    h = std::clamp(h, kSmallest, 1.0);
    x = std::clamp(x, 0.0, 1.0 - w);
    y = std::clamp(y, 0.0, 1.0 - h);
}

void ZoomWindow::scale_around(double px, double py, double factor)
{
    const double scale = std::clamp(1 / factor, kSmallest / std::min(w, h), 1 / std::max(w, h));
    x = px - (px - x) * scale;
    y = py - (py - y) * scale;
    w *= scale;
    h *= scale;
    keep_inside();
}

void ZoomWindow::move(double dx, double dy)
{
    x += dx;
    y += dy;
    keep_inside();
}

std::pair<double, double> ZoomWindow::point_at(double pane_x, double pane_y) const
{
    return {x + w * pane_x, y + h * pane_y};
}

std::optional<ZoomRect> zoom_rect(const std::string &text)
{
    ZoomRect rect;
    int used = 0;
    const int read =
        std::sscanf(text.c_str(), "%6d,%6d,%6d,%6d%n", &rect.x, &rect.y, &rect.w, &rect.h, &used);
    if (read != 4 || static_cast<size_t>(used) != text.size()) return std::nullopt;
    if (rect.x < 0 || rect.y < 0 || rect.w < 2 || rect.h < 2) return std::nullopt;
    return rect;
}

Zoom::Zoom(const ZoomOptions &options, SizeOf size_of) : options_(options), size_of_(std::move(size_of)) {}

bool Zoom::start(WallControl &wall)
{
    wall_ = &wall;
    // Cameras: before they run, so that their first key frame reaches the enlarged picture's decoder.
    return size_of_ != nullptr || begin_as_asked();
}

bool Zoom::begin_as_asked()
{
    if (std::exchange(asked_, true) || options_.rect.empty()) return true;
    const std::string problem = begin(options_.channel, *zoom_rect(options_.rect));
    if (problem.empty()) return true;
    wall_->terminal().error("zoom: " + problem);
    wall_->end(kExitUsage);
    return false;
}

/* By the first turn recordings are on the screen. */
Clock::time_point Zoom::take_turn(Clock::time_point /*now*/)
{
    begin_as_asked();
    return Clock::time_point::max();
}

std::pair<uint32_t, uint32_t> Zoom::size_of_picture(int channel) const
{
    if (size_of_) {
        const auto size = size_of_(channel);
        if (size.first > 0) return size;
    }
    const auto index = static_cast<size_t>(channel);
    if (index >= wall_->cameras().size()) return {0, 0};
    const StreamFacts facts = wall_->cameras()[index]->facts();
    return {facts.width_px, facts.height_px};
}

std::string Zoom::begin(int channel, const ZoomRect &rect)
{
    if (channel < 0 || channel >= wall_->session().channels())
        return "there is no channel " + std::to_string(channel);
    const auto [width, height] = size_of_picture(channel);
    if (width == 0 || height == 0) return "channel " + std::to_string(channel) + " has no picture";
    if (rect.x + rect.w > static_cast<int>(width) || rect.y + rect.h > static_cast<int>(height))
        return "the part leaves the picture of " + std::to_string(width) + " x " + std::to_string(height);
    const ZoomWindow window = {.x = static_cast<double>(rect.x) / width,
                               .y = static_cast<double>(rect.y) / height,
                               .w = static_cast<double>(rect.w) / width,
                               .h = static_cast<double>(rect.h) / height};
    return begin(channel, window) ? "" : "the library refused it";
}

bool Zoom::begin(int channel, const ZoomWindow &window)
{
    if (!zoomed()) enlarged_before_ = wall_->enlarged();
    if (channel != channel_) {
        wall_->enlarge(channel); /* ends a zoom of another channel */
        channel_ = channel;
        announce(channel);
    }
    return show(window);
}

bool Zoom::show(const ZoomWindow &window)
{
    window_ = window;
    if (apply()) return true;
    end();
    return false;
}

/*
 * The library wants the part in pixels of the largest picture that its decoders were made for, which has the
 * screen's size, and scales it down for smaller pictures.
 */
bool Zoom::apply()
{
    const OutputMode &mode = wall_->session().mode();
    auto pixels = [](double part, int size) { return static_cast<int32_t>(std::lround(part * size)); };
    const int32_t x = pixels(window_.x, mode.width_px);
    const int32_t y = pixels(window_.y, mode.height_px);
    const int32_t right = pixels(window_.x + window_.w, mode.width_px);
    const int32_t bottom = pixels(window_.y + window_.h, mode.height_px);
    return ext_vidoe_image_zoom(0, x, y, right - x, bottom - y) == 0;
}

/* The display keeps a port's part across layouts, so show the whole picture first. */
void Zoom::let_go()
{
    if (!zoomed()) return;
    ext_vidoe_image_zoom(0, 0, 0, 0, 0);
    channel_ = -1;
    announce(-1);
}

void Zoom::end()
{
    if (!zoomed()) return;
    let_go();
    wall_->enlarge(enlarged_before_);
}

void Zoom::before_layout()
{
    if (wall_->enlarged() != channel_) let_go();
}

void Zoom::on_layout()
{
    if (zoomed()) apply();
}

bool Zoom::change(const std::function<void(ZoomWindow &)> &how)
{
    ZoomWindow window = window_;
    how(window);
    if (window.is_whole())
        end();
    else
        show(window);
    return true;
}

bool Zoom::on_key(Key key)
{
    if (key == Key::kZoom) {
        if (zoomed())
            end();
        else
            begin(wall_->enlarged() >= 0 ? wall_->enlarged() : wall_->selected(), kMiddle);
        return true;
    }
    if (key == Key::kZoomIn && !zoomed()) {
        begin(wall_->enlarged() >= 0 ? wall_->enlarged() : wall_->selected(), ZoomWindow());
    }
    if (!zoomed()) return false;
    auto scale = [this](double factor) {
        return change([factor](ZoomWindow &window) {
            const auto [x, y] = window.point_at(0.5, 0.5);
            window.scale_around(x, y, factor);
        });
    };
    auto move = [this](double dx, double dy) {
        return change([dx, dy](ZoomWindow &window) { window.move(dx * window.w, dy * window.h); });
    };
    switch (key) {
    case Key::kZoomIn: return scale(kStep);
    case Key::kZoomOut: return scale(1 / kStep);
    case Key::kLeft: return move(-kMove, 0);
    case Key::kRight: return move(kMove, 0);
    case Key::kUp: return move(0, -kMove);
    case Key::kDown: return move(0, kMove);
    case Key::kBack: end(); return true;
    case Key::kMenu: end(); return false; /* the menu needs the arrows */
    default: return false;
    }
}

bool Zoom::on_pointer(const PointerEvent &event)
{
    const OutputMode &mode = wall_->session().mode();
    const int dx = event.x - drag_x_, dy = event.y - drag_y_;
    drag_x_ = event.x;
    drag_y_ = event.y;
    if (event.wheel > 0 && !zoomed()) {
        const int channel = channel_at(wall_->session().panes(), event.x, event.y);
        if (channel < 0 || !begin(channel, ZoomWindow())) return false;
    }
    if (!zoomed()) return false;
    const auto picture = wall_->session().picture_of(channel_); /* it may have bars beside it */
    const double width = picture ? picture->w : mode.width_px;
    const double height = picture ? picture->h : mode.height_px;
    const double left = picture ? picture->x : 0, top = picture ? picture->y : 0;
    if (event.wheel != 0)
        return change([&](ZoomWindow &window) {
            const auto [x, y] = window.point_at(std::clamp((event.x - left) / width, 0.0, 1.0),
                                                std::clamp((event.y - top) / height, 0.0, 1.0));
            window.scale_around(x, y, std::pow(kStep, event.wheel));
        });
    const bool held_before = (event.buttons & 1) != 0 && (event.pressed & 1) == 0;
    if (held_before && (dx != 0 || dy != 0)) /* the picture follows the pointer */
        return change(
            [&](ZoomWindow &window) { window.move(-dx / width * window.w, -dy / height * window.h); });
    return (event.buttons & 1) != 0;
}

void Zoom::stop()
{
    let_go();
}

} // namespace nvrec
