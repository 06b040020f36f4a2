/* wall_session.cpp - see wall_session.h. */
#include "wall_session.h"

namespace wall
{

Place grid_place(int32_t side, uint32_t index)
{
    const int w = session::kWallWidth / side;
    const int h = session::kWallHeight / side;
    const auto at = static_cast<int>(index);
    return {at % side * w & ~1, at / side * h & ~1, w & ~1, h & ~1};
}

DispAttrib pane(uint32_t channel, const Place &place, uint16_t bind_status)
{
    return {bind_status,
            static_cast<uint16_t>(channel),
            static_cast<uint16_t>(place.x),
            static_cast<uint16_t>(place.y),
            static_cast<uint16_t>(place.w),
            static_cast<uint16_t>(place.h),
            {0, 0}};
}

rig::Picture shown_in(const rig::Picture &picture, const Place &place)
{
    return rig::scaled(picture, place.w, place.h);
}

rig::Picture part_of(const rig::Picture &picture, const Place &place)
{
    return picture.part(place.x, place.y, place.w, place.h);
}

std::optional<stamp::Stamp> stamp_in(const rig::Picture &picture, const Place &place)
{
    return rig::stamp_at(picture, place.x, place.y, place.w, place.h);
}

Camera::Camera(const std::string &name)
    : stream(rig::load_stream(name)), pictures(rig::reference_decode(stream))
{
}

uint32_t Camera::codec() const
{
    return stream.codec == MI_VDEC_CODEC_H265 ? session::kH265 : session::kH264;
}

size_t Camera::lag() const
{
    return codec() == session::kH264 ? 1 : 0;
}

void Wall::start(int32_t cameras)
{
    DeviceParams params = {};
    params.vi_chn_num = cameras;
    params.gui_width = session::kWallWidth;
    params.gui_height = session::kWallHeight;
    ASSERT_EQ(ext_device_init(&params), 0);
}

void Wall::meet(const std::vector<Camera> &cameras)
{
    for (uint32_t channel = 0; channel < cameras.size(); ++channel)
        send(channel, cameras[channel].stream.frames[0], cameras[channel].codec());
}

int32_t Wall::lay_out(const std::vector<DispAttrib> &panes)
{
    const session::HurriedClock hurried;
    return ext_change_display_format(panes.data(), static_cast<int32_t>(panes.size()));
}

std::vector<DispAttrib> Wall::grid(int32_t side, uint32_t count)
{
    std::vector<DispAttrib> panes;
    for (uint32_t channel = 0; channel < count; ++channel)
        panes.push_back(pane(channel, grid_place(side, channel)));
    return panes;
}

void Wall::send(uint32_t channel, const rig::Bytes &frame, uint32_t codec)
{
    ASSERT_EQ(session::send_live(channel, frame, codec), 0) << "channel " << channel;
    session::settle(channel);
}

} // namespace wall
