/* control_window.cpp - the control face's window on the desk of a PC: what the monitor shows, and the hands.
 */
#include <memory>

#include "host/picture.h"
#include "host/window.h"
#include "media/call.h"
#include "media/canvas.h"
#include "media/display.h"
#include "media/picture_view.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace vboard
{
namespace
{

// The window belongs to the one thread that opened it.
std::unique_ptr<DeskWindow> &desk_window()
{
    static auto *window = new std::unique_ptr<DeskWindow>;
    return *window;
}
uint64_t window_sequence = 0;

// Written by vboard_window_set_keys, read by vboard_window_poll: never at the same time.
WindowKeys &window_keys()
{
    static auto *keys = new WindowKeys;
    return *keys;
}

// The user's hands, on the remote control and the mouse.
class WindowInput final : public DeskInput
{
public:
    void press(uint32_t ir_code) override { vboard_ir_press(ir_code); }
    void move(int32_t x, int32_t y) override { vboard_mouse_move(x, y); }
    void set_buttons(uint32_t buttons) override { vboard_mouse_buttons(buttons); }
    void turn_wheel(int32_t notches) override { vboard_mouse_wheel(notches); }
};

} // namespace
} // namespace vboard

using namespace vboard;

extern "C" {

int vboard_window_open(const char *title)
{
    if (desk_window() != nullptr) return refuse_plainly("the window is open already");
    const Scene scene = display_scene(0);
    desk_window() = DeskWindow::open(title != nullptr ? title : "vboard", scene.width, scene.height);
    window_sequence = 0;
    return desk_window() != nullptr ? 0 : refuse_plainly("this PC has no screen to open a window on");
}

int vboard_window_set_keys(const vboard_window_key *keys, size_t count)
{
    WindowKeys next;
    for (size_t i = 0; i < count; ++i) {
        const int32_t number = keys != nullptr && keys[i].pc_key != nullptr ? key_number(keys[i].pc_key) : 0;
        if (number == 0) return refuse_plainly("the PC has no key number %zu of the list", i);
        next[number] = keys[i].ir_code;
    }
    window_keys() = std::move(next);
    return 0;
}

int vboard_window_poll(void)
{
    if (desk_window() == nullptr) return refuse_plainly("no window is open");
    WindowInput input;
    if (!desk_window()->handle_events(window_keys(), input)) return VBOARD_WINDOW_CLOSED;
    if (vboard_monitor_has_signal() != 0) {
        const CanvasLook look(0);
        desk_window()->show(view_of(look.picture()));
        return VBOARD_WINDOW_OPEN;
    }
    vboard_image image;
    if (vboard_monitor_capture(VBOARD_FORMAT_I420, &image) != 0) return -1;
    desk_window()->show(
        read_only(packed_view(image.bytes, static_cast<int>(image.width), static_cast<int>(image.height))));
    vboard_image_free(&image);
    return VBOARD_WINDOW_OPEN;
}

void vboard_window_close(void)
{
    desk_window().reset();
}

} // extern "C"
