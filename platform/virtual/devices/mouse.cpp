/* mouse.cpp - the mouse: events with the state after them. */
#include "mouse_driver.h"

#include <mutex>

#include "devices/event_node.h"
#include "devices/peripheral_nodes.h"
#include "vboard_devices.h"

namespace vboard
{
namespace
{

constexpr int64_t kMousePatience_us = 100000;

class Mouse : public EventNode<MouseEvent>
{
public:
    Mouse() : EventNode(MOUSE_NODE, kMousePatience_us) {}

    void reset() override
    {
        EventNode::reset();
        const std::lock_guard guard(mutex_);
        state_ = {};
    }

    /* Change the state and report it. */
    template <typename Change> void report(MouseEventType type, Change change)
    {
        const std::lock_guard guard(mutex_);
        state_.type = type;
        state_.wheel = 0;
        change(state_);
        trace_event("mouse {type=%u buttons=%u x=%d y=%d wheel=%d}", static_cast<unsigned>(state_.type),
                    static_cast<unsigned>(state_.buttons), state_.x, state_.y, state_.wheel);
        post(state_);
    }

private:
    std::mutex mutex_; // guards the state, and so the order of events; taken before the queue's
    MouseEvent state_ = {};
};

Mouse &mouse()
{
    static auto *node = new Mouse;
    return *node;
}

} // namespace

DeviceNode *mouse_node()
{
    return &mouse();
}

} // namespace vboard

using namespace vboard;

extern "C" {

void vboard_mouse_move(int32_t x, int32_t y)
{
    mouse().report(MOUSE_EVENT_MOVE, [=](MouseEvent &event) {
        event.x = x;
        event.y = y;
    });
}

void vboard_mouse_buttons(uint32_t buttons)
{
    mouse().report(MOUSE_EVENT_BUTTON, [=](MouseEvent &event) { event.buttons = buttons; });
}

void vboard_mouse_wheel(int32_t notches)
{
    mouse().report(MOUSE_EVENT_WHEEL, [=](MouseEvent &event) { event.wheel = notches; });
}

} // extern "C"
