/* config.cpp - see config.h. */
#include "config/config.h"

#include <algorithm>

namespace nvrec::config
{

bool Camera::same_as(const Camera &other) const
{
    return name == other.name && main == other.main && sub == other.sub && user == other.user &&
           password == other.password && transport == other.transport && aspect == other.aspect &&
           measured_link == other.measured_link && link_quality == other.link_quality &&
           sound == other.sound && loop == other.loop && plan == other.plan;
}

int Config::channel_of(const std::string &name) const
{
    const auto found = std::ranges::find(cameras, name, &Camera::name);
    return found == cameras.end() ? -1 : static_cast<int>(found - cameras.begin());
}

} // namespace nvrec::config
