/* requests_look.cpp - requests that look at the board: pictures, sound's level, line changes, the state. */
#include <chrono>

#include "board_functions.h"
#include "requests.h"

namespace vboard_remote
{
namespace
{

using nlohmann::json;

constexpr int32_t kSettleTime_ms = 10000;
constexpr uint32_t kMostChanges = 4096; // as many as the board keeps

struct Image {
    ~Image() { vboard_image_free(&content); }
    vboard_image content = {};
};

void wait_for_all_decoders()
{
    using Real = std::chrono::steady_clock;
    const Real::time_point until = Real::now() + std::chrono::milliseconds(kSettleTime_ms);
    for (uint32_t channel = 0; channel < VBOARD_DECODER_CHANNELS; ++channel) {
        vboard_decoder_stat stat = {};
        if (vboard_decoder_get_stat(channel, &stat) != 0 || stat.created == 0) continue;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Real::now());
        const auto left_ms = static_cast<int32_t>(std::max<int64_t>(left.count(), 0));
        if (vboard_decoder_wait_idle(channel, left_ms) != 0)
            throw RequestFailure("timed_out",
                                 "decoder channel " + std::to_string(channel) + " is still at work");
    }
}

Answer picture(const Parameters &with, Context &)
{
    const bool of_monitor = !with.has("device");
    const int32_t device = with.device();
    if (with.boolean_or("settled", false)) wait_for_all_decoders();
    Image image;
    checked([&] {
        return of_monitor ? vboard_monitor_capture(VBOARD_FORMAT_I420, &image.content)
                          : vboard_display_capture(device, VBOARD_FORMAT_I420, &image.content);
    });
    const vboard_image &seen = image.content;
    return {{{"width", seen.width}, {"height", seen.height}, {"blank", seen.blank != 0}},
            Bytes(seen.bytes, seen.bytes + seen.size)};
}

Answer state(const Parameters &, Context &)
{
    return {board_state(), {}};
}

Answer gpio_changes(const Parameters &with, Context &)
{
    const auto first = static_cast<uint32_t>(with.integer_or("first", 0, kMostChanges, 0));
    const uint32_t count = vboard_gpio_change_count();
    json changes = json::array();
    vboard_gpio_change change = {};
    for (uint32_t i = first; i < std::min(count, kMostChanges); ++i)
        if (vboard_gpio_get_change(i, &change) == 0)
            changes.push_back({{"time_us", change.time_us},
                               {"line", change.line},
                               {"value", change.value},
                               {"configured", change.configured != 0}});
    return {{{"count", count}, {"changes", changes}}, {}};
}

Answer audio_level(const Parameters &with, Context &)
{
    const auto window_ms = static_cast<uint32_t>(with.integer_or("window", 1, 10000, 300));
    vboard_audio_level level = {};
    checked([&] { return vboard_audio_get_level(with.audio_device(), window_ms, &level); });
    return {{{"peak_dbfs", level.peak_dbfs}, {"rms_dbfs", level.rms_dbfs}}, {}};
}

} // namespace

const Request kLookRequests[] = {{"picture", picture, true},
                                 {"state", state, false},
                                 {"gpio.changes", gpio_changes, false},
                                 {"audio.level", audio_level, false},
                                 {nullptr, nullptr, false}};

} // namespace vboard_remote
