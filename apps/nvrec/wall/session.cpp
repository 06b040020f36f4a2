/* session.cpp - see session.h. */
#include "wall/session.h"

#include <utility>

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
    return show(make_panes(layout, mode_->width_px, mode_->height_px, channels_));
}

bool Session::apply_single(int channel)
{
    std::vector<DispAttrib> panes = make_panes(Layout::kSingle, mode_->width_px, mode_->height_px, 1);
    panes.front().channel = static_cast<uint16_t>(channel);
    return show(std::move(panes));
}

bool Session::show(std::vector<DispAttrib> panes)
{
    panes_ = std::move(panes);
    return ext_change_display_format(panes_.data(), static_cast<int32_t>(panes_.size())) == 0;
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
