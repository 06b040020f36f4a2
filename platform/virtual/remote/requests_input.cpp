/* requests_input.cpp - requests of a user's hands: remote control, front panel, mouse. */
#include "board_functions.h"
#include "ir_buttons.h"
#include "mouse_driver.h"
#include "requests.h"

namespace vboard_remote
{
namespace
{

constexpr int64_t kFarthest_px = 32768;

bool is_number(const Parameters &with, const char *name)
{
    return with.has(name) && !with.is_text(name);
}

Answer press(const Parameters &with, Context &)
{
    if (is_number(with, "button"))
        vboard_ir_press(with.word("button"));
    else
        checked([&] { return vboard_ir_press_named(with.text("button").c_str()); });
    return {};
}

Answer hold(const Parameters &with, Context &)
{
    if (is_number(with, "button")) {
        vboard_ir_hold(with.word("button"));
        return {};
    }
    const std::string name = with.text("button");
#define HOLD_WHEN_NAMED(button, code)                                                                        \
    if (name == (button)) {                                                                                  \
        vboard_ir_hold(code);                                                                                \
        return {};                                                                                           \
    }
    IR_BUTTONS(HOLD_WHEN_NAMED)
#undef HOLD_WHEN_NAMED
    checked([&] { return vboard_ir_press_named(name.c_str()); }); // refused, with the nearest name
    return {};
}

Answer release(const Parameters &, Context &)
{
    vboard_ir_release();
    return {};
}

Answer send_frame(const Parameters &with, Context &)
{
    const uint32_t code = with.word("code");
    vboard_ir_send(code, with.word("state"));
    return {};
}

Answer press_panel(const Parameters &with, Context &)
{
    if (is_number(with, "key"))
        vboard_panel_press(with.word("key"));
    else
        checked([&] { return vboard_panel_press_named(with.text("key").c_str()); });
    return {};
}

int32_t coordinate(const Parameters &with, const char *name)
{
    return static_cast<int32_t>(with.integer(name, -kFarthest_px, kFarthest_px - 1));
}

Answer mouse(const Parameters &with, Context &)
{
    const bool moves = with.has("x") || with.has("y");
    const int32_t x = moves ? coordinate(with, "x") : 0;
    const int32_t y = moves ? coordinate(with, "y") : 0;
    const int64_t buttons = with.integer_or("buttons", 0, 7, -1);
    const int64_t notches = with.integer_or("wheel", -100, 100, 0);
    if (moves) vboard_mouse_move(x, y);
    if (buttons >= 0) vboard_mouse_buttons(static_cast<uint32_t>(buttons));
    if (notches != 0) vboard_mouse_wheel(static_cast<int32_t>(notches));
    return {};
}

Answer click(const Parameters &with, Context &)
{
    constexpr uint32_t kButtons[] = {MOUSE_BUTTON_LEFT, MOUSE_BUTTON_RIGHT, MOUSE_BUTTON_MIDDLE};
    const int32_t x = coordinate(with, "x"), y = coordinate(with, "y");
    const size_t button = with.has("button") ? with.one_of("button", {"left", "right", "middle"}) : 0;
    const int64_t times = with.integer_or("times", 1, 3, 1);
    vboard_mouse_move(x, y);
    for (int64_t i = 0; i < times; ++i) {
        vboard_mouse_buttons(kButtons[button]);
        vboard_mouse_buttons(0);
    }
    return {};
}

} // namespace

const Request kInputRequests[] = {{"press", press, false},       {"hold", hold, false},
                                  {"release", release, false},   {"ir", send_frame, false},
                                  {"panel", press_panel, false}, {"mouse", mouse, false},
                                  {"click", click, false},       {nullptr, nullptr, false}};

} // namespace vboard_remote
