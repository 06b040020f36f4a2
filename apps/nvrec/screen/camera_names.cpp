/* camera_names.cpp - see camera_names.h. */
#include "screen/camera_names.h"

namespace nvrec
{
namespace
{

constexpr size_t kLongestName = 64; /* units; what does not fit the pane is cut anyway */

} // namespace

std::string CameraNames::text_of(int channel) const
{
    const auto found = given.find(channel);
    const std::string number = std::to_string(channel + 1);
    return found != given.end()             ? found->second
           : language == Language::kChinese ? "通道" + number
                                            : "Camera " + number;
}

std::u16string CameraNames::of(int channel) const
{
    return units_of(text_of(channel), script).substr(0, kLongestName);
}

void CameraNames::name(int channel, const std::string &text)
{
    if (text.empty()) {
        given.erase(channel);
    } else {
        given.insert_or_assign(channel, text);
    }
}

} // namespace nvrec
