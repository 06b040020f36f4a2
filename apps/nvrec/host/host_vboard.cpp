/* host_vboard.cpp - host.h and device_node.h over the board in software: screen, sound, keys, decoders. */
#include <algorithm>
#include <cstdlib>

#include <fcntl.h>

#include "board_io.h"
#include "host/device_node.h"
#include "host/host.h"
#include "ir_buttons.h"
#include "vboard.h"
#include "vboard_audio.h"
#include "vboard_devices.h"

namespace nvrec
{
namespace
{

constexpr uint32_t kLoudspeaker = 3; /* the audio output that the library plays on */

struct RemoteButton {
    std::string_view name;
    uint32_t code;
};

#define NAMED(name, code) {name, code},
constexpr RemoteButton kRemoteButtons[] = {IR_BUTTONS(NAMED)};
#undef NAMED

std::optional<uint32_t> ir_code_of(std::string_view name)
{
    const auto found = std::ranges::find(kRemoteButtons, name, &RemoteButton::name);
    return found != std::end(kRemoteButtons) ? std::optional(found->code) : std::nullopt;
}

bool is_set(const char *name)
{
    const char *value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): only the main thread writes it
    return value && *value;
}

} // namespace

namespace host
{

bool has_desktop()
{
    return is_set("DISPLAY") || is_set("WAYLAND_DISPLAY");
}

bool has_own_monitor()
{
    return false;
}

void set_window_keys(const std::vector<WindowKey> &keys)
{
    std::vector<vboard_window_key> board_keys;
    board_keys.reserve(keys.size());
    for (const WindowKey &key : keys)
        if (const auto code = ir_code_of(key.button)) board_keys.push_back({key.pc_key, *code});
    vboard_window_set_keys(board_keys.data(), board_keys.size());
}

/* The board draws its window by SDL, which without a screen would draw it nowhere and call that success. */
std::string open_window(const char *title)
{
    if (!has_desktop() && !is_set("SDL_VIDEODRIVER"))
        return "no window could be opened: there is no screen (neither DISPLAY nor WAYLAND_DISPLAY is set)";
    return vboard_window_open(title) == 0 ? "" : "no window could be opened";
}

bool refresh_window()
{
    return vboard_window_poll() == VBOARD_WINDOW_OPEN;
}

void close_window()
{
    vboard_window_close();
}

std::string save_monitor_picture(const std::string &path)
{
    vboard_image image = {};
    if (vboard_monitor_capture(VBOARD_FORMAT_RGB24, &image) != 0) return "the board gave no picture";
    std::string problem;
    if (vboard_image_save_png(&image, path.c_str()) != 0) {
        problem = "cannot write it";
    } else if (image.blank) {
        problem = "the monitor has no signal: the picture is black";
    }
    vboard_image_free(&image);
    return problem;
}

std::string take_monitor_picture(MonitorPicture *picture)
{
    vboard_image image = {};
    if (vboard_monitor_capture(VBOARD_FORMAT_RGB24, &image) != 0) return "the board gave no picture";
    picture->width = static_cast<int>(image.width);
    picture->height = static_cast<int>(image.height);
    picture->rgb.assign(image.bytes, image.bytes + image.size);
    const bool blank = image.blank != 0;
    vboard_image_free(&image);
    return blank ? "the monitor has no signal: the picture is black" : "";
}

std::string open_sound_file(const std::string &path)
{
    return vboard_audio_open_wav(kLoudspeaker, path.c_str()) == 0 ? "" : "cannot write " + path;
}

std::string open_loudspeaker()
{
    return vboard_audio_open_sound(kLoudspeaker) == 0 ? "" : "no sound card; nothing will be heard";
}

void wait_for_sound(std::chrono::milliseconds limit)
{
    vboard_audio_wait_played(kLoudspeaker, static_cast<int32_t>(limit.count()));
}

void close_sound()
{
    vboard_audio_close(kLoudspeaker);
}

std::string press_remote_button(std::string_view name)
{
    const auto code = ir_code_of(name);
    if (!code) return "the remote control has no button \"" + std::string(name) + "\"";
    vboard_ir_press(*code);
    return {};
}

std::string press_panel_key(uint32_t key_code)
{
    vboard_panel_press(key_code);
    return {};
}

std::optional<DecoderCounters> decoder_counters(int channel)
{
    vboard_decoder_stat stat = {};
    if (vboard_decoder_get_stat(static_cast<uint32_t>(channel), &stat) != 0) return std::nullopt;
    return DecoderCounters{stat.decoded, stat.shown,  stat.dropped,
                           stat.damaged, stat.resets, stat.frames_sent};
}

std::optional<DecoderBacklog> decoder_backlog(int channel)
{
    uint32_t bytes = 0;
    uint32_t sends = 0;
    if (vboard_decoder_get_backlog(static_cast<uint32_t>(channel), &bytes, &sends) != 0) return std::nullopt;
    return DecoderBacklog{sends, bytes};
}

void wait_for_decoder(int channel, std::chrono::milliseconds limit)
{
    vboard_decoder_wait_idle(static_cast<uint32_t>(channel), static_cast<int32_t>(limit.count()));
}

} // namespace host

bool DeviceNode::open(const char *path, std::chrono::milliseconds patience)
{
    close();
    patience_ = patience;
    descriptor_ = board_open(path, O_RDONLY);
    return is_open();
}

int DeviceNode::read(void *record, size_t size) const
{
    return board_read(descriptor_, record, size);
}

void DeviceNode::close()
{
    if (is_open()) board_close(descriptor_);
    descriptor_ = -1;
}

} // namespace nvrec
