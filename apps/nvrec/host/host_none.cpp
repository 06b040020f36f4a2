/*
 * host_none.cpp - host.h and device_node.h on a real board. Its picture is on the monitor, its sound
 * on the loudspeaker, its keys are pressed by hand, and what its devices stand at is for the eye.
 * Device nodes are those of the system.
 */
#include <algorithm>
#include <cerrno>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "host/device_node.h"
#include "host/host.h"

namespace nvrec
{
namespace host
{

bool has_desktop()
{
    return false;
}

bool has_own_monitor()
{
    return true;
}

void set_window_keys(const std::vector<WindowKey> &) {}

std::string open_window(const char *)
{
    return "there is no window on this board: its picture is on the monitor";
}

bool refresh_window()
{
    return true;
}

void close_window() {}

std::string save_monitor_picture(const std::string &)
{
    return "this board does not give back what its monitor shows";
}

std::string take_monitor_picture(MonitorPicture *)
{
    return "this board does not give back what its monitor shows";
}

std::string open_sound_file(const std::string &path)
{
    return "cannot write " + path + ": this board's sound goes to its loudspeaker alone";
}

/* It is wired to the output: what the library plays is heard. */
std::string open_loudspeaker()
{
    return {};
}

/* The library's sends wait for the output, so no more than its queue is left; it plays out by itself. */
void wait_for_sound(std::chrono::milliseconds) {}

void close_sound() {}

std::string press_remote_button(std::string_view)
{
    return "this board's remote control is pressed by hand";
}

std::string press_panel_key(uint32_t)
{
    return "this board's front panel is pressed by hand";
}

std::optional<DecoderCounters> decoder_counters(int)
{
    return std::nullopt;
}

std::optional<DecoderBacklog> decoder_backlog(int)
{
    return std::nullopt;
}

void wait_for_decoder(int, std::chrono::milliseconds limit)
{
    constexpr auto kPicture = std::chrono::milliseconds(40); /* at 25 pictures a second */
    std::this_thread::sleep_for(std::min<std::chrono::milliseconds>(limit, kPicture));
}

std::optional<BoardState> board_state()
{
    return std::nullopt;
}

std::optional<int> output_line_level(uint32_t)
{
    return std::nullopt;
}

/* It resets the board, and no recorder is left to say so. */
bool watchdog_has_expired()
{
    return false;
}

} // namespace host

bool DeviceNode::open(const char *path, std::chrono::milliseconds patience)
{
    close();
    patience_ = patience;
    descriptor_ = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    return is_open();
}

int DeviceNode::read(void *record, size_t size) const
{
    pollfd source = {descriptor_, POLLIN, 0};
    if (poll(&source, 1, static_cast<int>(patience_.count())) <= 0) return 0;
    const ssize_t count = ::read(descriptor_, record, size);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return 0;
    return static_cast<int>(count);
}

void DeviceNode::close()
{
    if (is_open()) ::close(descriptor_);
    descriptor_ = -1;
}

} // namespace nvrec
