/* session.cpp - see session.h. */
#include "wall/session.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "camera/shown_channels.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr OutputMode kModes[] = {
    {"1920x1080", 1920, 1920, 1080},
    {"1440x900", 1440, 1440, 900},
    {"1280x1024", 1280, 1280, 1024},
    {"1024x768", 1024, 1024, 768},
};

bool same_places(const std::vector<DispAttrib> &a, const std::vector<DispAttrib> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const DispAttrib &p, const DispAttrib &q) {
        return p.channel == q.channel && p.x == q.x && p.y == q.y && p.w == q.w && p.h == q.h;
    });
}

} // namespace

const OutputMode *output_mode_named(std::string_view name)
{
    for (const OutputMode &mode : kModes) {
        if (mode.name == name) return &mode;
    }
    return nullptr;
}

std::vector<std::string> output_mode_names()
{
    std::vector<std::string> names;
    for (const OutputMode &mode : kModes)
        names.emplace_back(mode.name);
    return names;
}

bool Session::start(const OutputMode &mode, int channels)
{
    mode_ = &mode;
    channels_ = channels;
    DeviceParams params = {};
    params.vi_chn_num = channels;
    params.gui_width = mode.gui_width_px;
    params.gui_height = mode.height_px;
    return ext_device_init(&params) == 0;
}

bool Session::apply(Layout layout)
{
    std::vector<DispAttrib> panes = make_panes(layout, mode_->width_px, mode_->height_px, pane_count(layout));
    const auto used = std::min(panes.size(), static_cast<size_t>(channels_));
    beyond_.assign(panes.begin() + static_cast<std::ptrdiff_t>(used), panes.end());
    panes.resize(used);
    return show(std::move(panes));
}

bool Session::apply_single(int channel)
{
    std::vector<DispAttrib> panes = make_panes(Layout::kSingle, mode_->width_px, mode_->height_px, 1);
    panes.front().channel = static_cast<uint16_t>(channel);
    beyond_.clear();
    return show(std::move(panes));
}

bool Session::set_free(uint32_t channels)
{
    free_ = channels;
    const std::vector<DispAttrib> before = panes_;
    divide();
    return !same_places(before, panes_);
}

int Session::used_channels() const
{
    return std::bit_width(~free_ & ((1u << channels_) - 1));
}

/* The library is given the panes of free channels, too: what was shown there is taken away. */
void Session::divide()
{
    panes_.clear();
    unused_.clear();
    for (const DispAttrib &pane : laid_)
        (is_free(pane.channel) ? unused_ : panes_).push_back(pane);
    unused_.insert(unused_.end(), beyond_.begin(), beyond_.end());
}

/* From here on the frames of channels that disappear are held back; the library drops them meanwhile. */
bool Session::show(std::vector<DispAttrib> panes)
{
    laid_ = std::move(panes);
    divide();
    uint32_t shown = 0;
    for (const DispAttrib &pane : laid_)
        shown |= 1u << pane.channel;
    note_shown_channels(shown);
    const bool single = laid_.size() == 1;
    std::vector<DispAttrib> wanted = single ? laid_ : pictures();
    if (ext_change_display_format(wanted.data(), static_cast<int32_t>(wanted.size())) != 0) return false;
    open_library_mask();
    if (single) wanted.front() = whole_screen(wanted.front());
    placed_ = std::move(wanted);
    return refit();
}

bool Session::set_shape(int channel, const PictureShape &shape)
{
    if (channel < 0 || static_cast<size_t>(channel) >= shapes_.size()) return false;
    shapes_[static_cast<size_t>(channel)] = shape;
    return !same_places(placed_, pictures());
}

/* Where the library puts a single pane, whatever its size. */
DispAttrib Session::whole_screen(DispAttrib pane) const
{
    pane.x = pane.y = 0;
    pane.w = static_cast<uint16_t>(mode_->width_px);
    pane.h = static_cast<uint16_t>(mode_->height_px);
    return pane;
}

DispAttrib Session::picture_in(const DispAttrib &pane) const
{
    return aspect_.of(pane.channel) == Aspect::kStretch ? pane : fitted(pane, shapes_[pane.channel]);
}

std::vector<DispAttrib> Session::pictures() const
{
    std::vector<DispAttrib> pictures;
    pictures.reserve(laid_.size());
    for (const DispAttrib &pane : laid_)
        pictures.push_back(picture_in(pane));
    return pictures;
}

std::optional<DispAttrib> Session::picture_of(int channel) const
{
    for (const DispAttrib &pane : panes_) {
        if (pane.channel == channel) return picture_in(pane);
    }
    return std::nullopt;
}

/* Name all ports: a port that is left out would stay hidden in the next layout. */
bool Session::refit()
{
    std::vector<DispAttrib> wanted = pictures();
    if (same_places(placed_, wanted)) return true;
    if (wanted.empty()) return true;
    std::vector<DispAttrib> ports(static_cast<size_t>(channels_), wanted.front());
    for (const DispAttrib &picture : wanted)
        ports[picture.channel] = picture;
    if (ext_change_zoom_format(ports.data(), static_cast<int32_t>(ports.size())) != 0) return false;
    placed_ = std::move(wanted);
    return true;
}

void Session::stop()
{
    ext_device_quit();
}

int Session::device() const
{
    return globalVoDev;
}

} // namespace nvrec
