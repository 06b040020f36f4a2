/* wall_layout.cpp - see wall.h: the panes, the shapes of the pictures in them, the selected one. */
#include <algorithm>
#include <utility>

#include "wall/wall.h"

namespace nvrec
{

/* Put the panes on the screen as they are wanted now. */
bool Wall::lay_out()
{
    take_shapes();
    modules_.before_layout();
    for (const auto &feeder : feeders_)
        feeder->expect_key();
    const bool done = enlarged_ >= 0 ? session_.apply_single(enlarged_) : session_.apply(layout_);
    choose_streams();
    for (const auto &feeder : feeders_)
        feeder->layout_done();
    modules_.on_layout();
    return done;
}

/* A layout shows channels from the first on: it has to reach to the last one with a camera. */
Layout Wall::fitting_layout() const
{
    if (feeders_.empty()) return layout_for(options_.channels);
    int channels = 0;
    for (const auto &feeder : feeders_)
        channels = feeder->has_camera() ? feeder->channel() + 1 : channels;
    return layout_for(channels);
}

/*
 * Panes, layout and selection for the cameras that there are. Channels behind those of cameras show what
 * modules play. @return true = the layout is another one, and is not on the screen yet.
 */
bool Wall::follow_cameras()
{
    uint32_t free = 0;
    for (const auto &feeder : feeders_)
        free |= feeder->has_camera() ? 0 : 1u << feeder->channel();
    const bool divided = session_.set_free(free);
    const Layout before = std::exchange(layout_, layout_fits_ ? fitting_layout() : layout_);
    const bool lost = enlarged_ >= 0 && session_.is_free(enlarged_);
    if (lost) enlarged_ = -1;
    const auto first =
        std::ranges::find_if(feeders_, [](const auto &feeder) { return feeder->has_camera(); });
    if (first != feeders_.end() && session_.is_free(selected_)) selected_ = (*first)->channel();
    if (lost || (before != layout_ && enlarged_ < 0)) return true;
    if (divided) modules_.on_layout();
    return false;
}

/* Cameras in small panes, and those without one, are fed from their smaller stream. */
void Wall::choose_streams()
{
    for (const auto &feeder : feeders_) {
        const auto &panes = session_.panes();
        const auto pane = std::ranges::find(panes, feeder->channel(), &DispAttrib::channel);
        const bool large = pane != panes.end() && pane->w * 2 > session_.mode().width_px;
        feeder->want_stream(large ? StreamChoice::kMain : StreamChoice::kSub);
    }
}

/* Take the shapes of the pictures that the channels show now: a module's own, or the camera's. */
bool Wall::take_shapes()
{
    bool differ = false;
    for (int channel = 0; channel < session_.channels(); ++channel) {
        auto [width, height] = modules_.picture_size(channel);
        const auto index = static_cast<size_t>(channel);
        if (width == 0 && index < feeders_.size() && feeders_[index]->opened()) {
            const StreamFacts facts = feeders_[index]->facts();
            width = facts.width_px;
            height = facts.height_px;
        }
        differ |= session_.set_shape(channel, {width, height});
    }
    return differ;
}

/* The panes stay; only pictures move in them, and what modules draw around the pictures. */
void Wall::follow_shapes()
{
    if (!take_shapes()) return;
    session_.refit();
    modules_.on_layout();
}

/* The camera's thread. */
void Wall::note_shape(int channel, const StreamFacts &facts)
{
    const uint64_t shape = static_cast<uint64_t>(facts.width_px) << 32 | facts.height_px;
    const auto index = static_cast<size_t>(channel);
    if (index >= noted_shapes_.size() || noted_shapes_[index].exchange(shape) == shape) return;
    wakeup_.wake();
}

void Wall::set_aspect(int channel, Aspect aspect)
{
    session_.set_aspect(channel, aspect);
    session_.refit();
    modules_.on_layout();
}

void Wall::show_layout(Layout layout)
{
    layout_fits_ = false;
    layout_ = layout;
    enlarged_ = -1;
    lay_out();
}

void Wall::show_fitting_layout()
{
    show_layout(fitting_layout());
    layout_fits_ = true;
}

void Wall::enlarge(int channel)
{
    if (channel >= session_.channels() || channel == enlarged_) return;
    if (channel >= 0 && session_.is_free(channel)) return;
    enlarged_ = channel;
    if (channel >= 0) selected_ = channel;
    lay_out();
}

void Wall::select(int channel)
{
    if (channel < 0 || channel >= session_.channels() || channel == selected_) return;
    if (session_.is_free(channel)) return;
    selected_ = channel;
    modules_.on_layout();
}

} // namespace nvrec
